#include "schema/particle_restriction.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "qmxml/schema/complex_type.h"
#include "qmxml/schema/element_declaration.h"
#include "qmxml/schema/simple_type.h"
#include "qmxml/schema/wildcard.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

constexpr std::uint64_t kUnbounded = CParticle::kUnbounded;
// Nesting and effort bounds: beyond them a restriction is taken as valid.
constexpr int kMaxDepth = 128;
constexpr long kMaxSteps = 200000;

std::uint64_t Mul(std::uint64_t a, std::uint64_t b) {
    if (a == 0 || b == 0) return 0;
    if (a == kUnbounded || b == kUnbounded || a > kUnbounded / b) return kUnbounded;
    return a * b;
}

std::uint64_t Add(std::uint64_t a, std::uint64_t b) {
    if (a == kUnbounded || b == kUnbounded || a > kUnbounded - b) return kUnbounded;
    return a + b;
}

struct Range {
    std::uint64_t min;
    std::uint64_t max;
};

bool IsGroup(const CParticle* p) {
    return p->termKind == CParticle::TermKind::ModelGroup && p->modelGroup != nullptr;
}

// A term's particles with pointless nesting removed: a child group of the
// same compositor occurring exactly once is replaced by its particles.
std::vector<const CParticle*> Children(const CModelGroup* group) {
    std::vector<const CParticle*> out;
    std::vector<const CParticle*> stack(group->particles.rbegin(), group->particles.rend());
    int budget = 10000;
    while (!stack.empty() && budget-- > 0) {
        const CParticle* p = stack.back();
        stack.pop_back();
        if (p == nullptr) continue;
        if (IsGroup(p) && p->minOccurs == 1 && p->maxOccurs == 1 &&
            (p->modelGroup->compositor == group->compositor || p->modelGroup->particles.size() == 1) &&
            group->compositor != CModelGroup::Compositor::All) {
            for (auto it = p->modelGroup->particles.rbegin(); it != p->modelGroup->particles.rend(); ++it)
                stack.push_back(*it);
            continue;
        }
        out.push_back(p);
    }
    return out;
}

// A group occurring once with one particle stands for that particle.
const CParticle* Unwrap(const CParticle* p) {
    for (int i = 0; i < kMaxDepth && p != nullptr && IsGroup(p) && p->minOccurs == 1 && p->maxOccurs == 1; ++i) {
        const std::vector<const CParticle*> children = Children(p->modelGroup);
        if (children.size() != 1) break;
        p = children[0];
    }
    return p;
}

class Checker {
public:
    bool Restricts(const CParticle* r, const CParticle* b, int depth) {
        if (depth > kMaxDepth || ++m_steps > kMaxSteps) return true;
        r = Unwrap(r);
        b = Unwrap(b);
        const bool rGroup = IsGroup(r);
        const bool bGroup = IsGroup(b);
        // Whatever restricts one alternative of a choice restricts the choice.
        if (bGroup && b->modelGroup->compositor == CModelGroup::Compositor::Choice && b->maxOccurs >= 1)
            for (const CParticle* c : Children(b->modelGroup))
                if (Restricts(r, c, depth + 1)) return true;
        if (r->termKind == CParticle::TermKind::Element) {
            if (b->termKind == CParticle::TermKind::Element) return ElementElement(r, b);
            if (b->termKind == CParticle::TermKind::Wildcard)
                return Occurs(r, b) && b->wildcard->namespaceConstraint.Allows(r->element->name.ns);
            if (bGroup) return ElementGroup(r, b, depth);
            return true;
        }
        if (r->termKind == CParticle::TermKind::Wildcard) {
            if (b->termKind != CParticle::TermKind::Wildcard) return false;
            return Occurs(r, b) && Subset(*r->wildcard, *b->wildcard);
        }
        if (!rGroup) return true;
        if (b->termKind == CParticle::TermKind::Element) {
            // A choice among a head's substitution group stands for the head.
            if (r->modelGroup->compositor != CModelGroup::Compositor::Choice || b->element->substitutionGroupMembers.empty())
                return false;
            for (const CParticle* c : Children(r->modelGroup))
                if (!Restricts(c, b, depth + 1)) return false;
            return true;
        }
        std::vector<const CParticle*> children = Children(r->modelGroup);
        // Particles that may not occur restrict anything.
        children.erase(std::remove_if(children.begin(), children.end(), [](const CParticle* c) { return c->maxOccurs == 0; }),
                       children.end());
        if (b->termKind == CParticle::TermKind::Wildcard) {
            for (const CParticle* c : children)
                if (!Within(c, *b->wildcard, depth + 1)) return false;
            const Range total = TotalRange(r, depth);
            return total.min >= b->minOccurs && total.max <= b->maxOccurs;
        }
        if (!bGroup) return true;
        return GroupGroup(children, Range{r->minOccurs, r->maxOccurs}, r->modelGroup->compositor, r, b, depth);
    }

    bool Emptiable(const CParticle* p, int depth) { return TotalRange(p, depth).min == 0; }

private:
    static bool Occurs(const CParticle* r, const CParticle* b) {
        return r->minOccurs >= b->minOccurs && r->maxOccurs <= b->maxOccurs;
    }
    static bool OccursRange(Range r, const CParticle* b) { return r.min >= b->minOccurs && r.max <= b->maxOccurs; }

    static bool Subset(const CWildcard& r, const CWildcard& b) {
        using Kind = CNamespaceConstraint::Kind;
        const CNamespaceConstraint& rc = r.namespaceConstraint;
        const CNamespaceConstraint& bc = b.namespaceConstraint;
        bool subset = false;
        if (bc.kind == Kind::Any) subset = true;
        else if (rc.kind == Kind::Any) subset = false;
        else if (rc.kind == Kind::Not) subset = bc.kind == Kind::Not && (bc.namespaces == rc.namespaces || bc.namespaces[0].empty());
        else {
            subset = true;
            for (const std::string& ns : rc.namespaces) subset = subset && bc.Allows(ns);
        }
        // Strict is stronger than lax, lax than skip.
        const auto strength = [](CWildcard::ProcessContents p) {
            return p == CWildcard::ProcessContents::Strict ? 2 : p == CWildcard::ProcessContents::Lax ? 1 : 0;
        };
        return subset && strength(r.processContents) >= strength(b.processContents);
    }

    bool Within(const CParticle* p, const CWildcard& w, int depth) {
        if (depth > kMaxDepth) return true;
        p = Unwrap(p);
        if (p->termKind == CParticle::TermKind::Element) return w.namespaceConstraint.Allows(p->element->name.ns);
        if (p->termKind == CParticle::TermKind::Wildcard) return Subset(*p->wildcard, w);
        if (!IsGroup(p)) return true;
        for (const CParticle* c : Children(p->modelGroup))
            if (!Within(c, w, depth + 1)) return false;
        return true;
    }

    bool ElementElement(const CParticle* r, const CParticle* b) {
        return Occurs(r, b) && NameAndType(r->element, b->element);
    }

    static bool NameAndType(const CElementDeclaration* re, const CElementDeclaration* be) {
        if (re->name != be->name) {
            // A member of the base element's substitution group may stand for it.
            bool member = false;
            if ((be->block & Derivation_Substitution) == 0)
                for (const CElementDeclaration* m : be->substitutionGroupMembers) member = member || m == re;
            if (!member) return false;
            be = re;
        }
        if (re->nillable && !be->nillable) return false;
        if (be->valueConstraint.kind == CValueConstraint::Fixed &&
            (re->valueConstraint.kind != CValueConstraint::Fixed || re->valueConstraint.value != be->valueConstraint.value))
            return false;
        if (re->type == nullptr || be->type == nullptr || re->type == be->type) return true;
        if (re->type->DerivesFrom(be->type)) return true;
        // Union members stand for the union.
        if (be->type->IsSimple()) {
            const CSimpleType* u = static_cast<const CSimpleType*>(be->type);
            if (u->variety == CSimpleType::Variety::Union)
                for (const CSimpleType* m : u->memberTypes)
                    if (re->type->DerivesFrom(m)) return true;
        }
        return false;
    }

    // An element in place of a group: it must restrict one of the group's
    // particles, within the group's total range.
    bool ElementGroup(const CParticle* r, const CParticle* b, int depth) {
        // In place of a sequence or all group, as a group of its own: the
        // base's other particles must be emptiable.
        if (b->modelGroup->compositor != CModelGroup::Compositor::Choice)
            return GroupGroup({r}, Range{1, 1}, b->modelGroup->compositor, r, b, depth);
        const Range total = TotalRange(b, depth);
        if (r->maxOccurs > total.max) return false;
        std::vector<const CParticle*> pending = Children(b->modelGroup);
        for (int budget = 4096; !pending.empty() && budget > 0; --budget) {
            const CParticle* c = Unwrap(pending.back());
            pending.pop_back();
            if (IsGroup(c)) {
                for (const CParticle* x : Children(c->modelGroup)) pending.push_back(x);
                continue;
            }
            if (c->termKind == CParticle::TermKind::Wildcard && c->wildcard->namespaceConstraint.Allows(r->element->name.ns))
                return true;
            if (c->termKind == CParticle::TermKind::Element && NameAndType(r->element, c->element)) return true;
        }
        return false;
    }

    bool GroupGroup(const std::vector<const CParticle*>& rc, Range rRange, CModelGroup::Compositor rKind, const CParticle* r,
                    const CParticle* b, int depth) {
        (void)r;
        using C = CModelGroup::Compositor;
        const C bKind = b->modelGroup->compositor;
        const std::vector<const CParticle*> bc = Children(b->modelGroup);
        // Two all groups map in any order, as a sequence into an all does.
        if (rKind == C::All && bKind == C::All) rKind = C::Sequence;
        if (rKind == bKind && rKind == C::Sequence) {
            if (!OccursRange(rRange, b)) return false;
            std::size_t j = 0;
            for (const CParticle* x : rc) {
                bool matched = false;
                while (j < bc.size()) {
                    const CParticle* y = bc[j++];
                    if (Restricts(x, y, depth + 1)) {
                        matched = true;
                        break;
                    }
                    if (!Emptiable(y, depth + 1)) return false;
                }
                if (!matched) return false;
            }
            for (; j < bc.size(); ++j)
                if (!Emptiable(bc[j], depth + 1)) return false;
            return true;
        }
        if (rKind == C::Choice && bKind == C::Choice) {
            // Any order: a choice's alternatives are a set, whatever order the
            // formal mapping of the first edition asked for.
            if (!OccursRange(rRange, b)) return false;
            for (const CParticle* x : rc) {
                bool matched = false;
                for (std::size_t j = 0; j < bc.size() && !matched; ++j) matched = Restricts(x, bc[j], depth + 1);
                if (!matched) return false;
            }
            return true;
        }
        if (rKind == C::Sequence && bKind == C::All) {
            if (!OccursRange(rRange, b)) return false;
            std::vector<bool> used(bc.size(), false);
            for (const CParticle* x : rc) {
                bool matched = false;
                for (std::size_t j = 0; j < bc.size() && !matched; ++j)
                    if (!used[j] && Restricts(x, bc[j], depth + 1)) used[j] = matched = true;
                if (!matched) return false;
            }
            for (std::size_t j = 0; j < bc.size(); ++j)
                if (!used[j] && !Emptiable(bc[j], depth + 1)) return false;
            return true;
        }
        if (rKind == C::Sequence && bKind == C::Choice) {
            const std::uint64_t n = rc.size();
            if (!OccursRange(Range{Mul(rRange.min, n), Mul(rRange.max, n)}, b)) return false;
            for (const CParticle* x : rc) {
                bool matched = false;
                for (std::size_t j = 0; j < bc.size() && !matched; ++j) matched = Restricts(x, bc[j], depth + 1);
                if (!matched) return false;
            }
            return true;
        }
        return false;
    }

    Range TotalRange(const CParticle* p, int depth) {
        if (p == nullptr) return Range{0, 0};
        if (!IsGroup(p)) return Range{p->minOccurs, p->maxOccurs};
        if (depth > kMaxDepth) return Range{0, kUnbounded};
        const auto known = m_ranges.find(p);
        if (known != m_ranges.end()) return known->second;
        const bool choice = p->modelGroup->compositor == CModelGroup::Compositor::Choice;
        Range sum{choice ? kUnbounded : 0, 0};
        if (p->modelGroup->particles.empty()) sum = Range{0, 0};
        for (const CParticle* c : p->modelGroup->particles) {
            const Range r = TotalRange(c, depth + 1);
            if (choice) {
                sum.min = std::min(sum.min, r.min);
                sum.max = std::max(sum.max, r.max);
            } else {
                sum.min = Add(sum.min, r.min);
                sum.max = Add(sum.max, r.max);
            }
        }
        const Range total{Mul(p->minOccurs, sum.min), Mul(p->maxOccurs, sum.max)};
        m_ranges[p] = total;
        return total;
    }

    std::unordered_map<const CParticle*, Range> m_ranges;
    long m_steps = 0;
};

}  // namespace

bool IsValidParticleRestriction(const CParticle* derived, const CParticle* base) {
    Checker checker;
    if (base == nullptr) return derived == nullptr || checker.Emptiable(derived, 0);
    if (derived == nullptr) return checker.Emptiable(base, 0);
    return checker.Restricts(derived, base, 0);
}

bool IsEmptiable(const CParticle* particle) { return Checker().Emptiable(particle, 0); }

}  // namespace Schema
}  // namespace QmXmlLib10
