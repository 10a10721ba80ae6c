#include "qmxml/schema/schema_printer.h"

#include <vector>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

std::string Occurs(const CParticle* p) {
    const std::string max = p->maxOccurs == CParticle::kUnbounded ? std::string("unbounded") : std::to_string(p->maxOccurs);
    return "[" + std::to_string(p->minOccurs) + ".." + max + "]";
}

std::string TypeName(const CTypeDefinition* t) {
    if (t == nullptr) return "?";
    if (!t->IsAnonymous()) return t->name.ToString();
    return t->IsSimple() ? "anonymous simpleType" : "anonymous complexType";
}

std::string Constraint(const CNamespaceConstraint& c) {
    switch (c.kind) {
        case CNamespaceConstraint::Kind::Any:
            return "##any";
        case CNamespaceConstraint::Kind::Not:
            return "not(" + (c.namespaces.empty() || c.namespaces[0].empty() ? std::string("##local") : c.namespaces[0]) + ")";
        case CNamespaceConstraint::Kind::Set: {
            std::string out;
            for (const std::string& ns : c.namespaces) out += (out.empty() ? "" : " ") + (ns.empty() ? std::string("##local") : ns);
            return "{" + out + "}";
        }
    }
    return "";
}

const char* Process(CWildcard::ProcessContents p) {
    switch (p) {
        case CWildcard::ProcessContents::Strict: return "strict";
        case CWildcard::ProcessContents::Lax: return "lax";
        case CWildcard::ProcessContents::Skip: return "skip";
    }
    return "";
}

std::string Value(const CValueConstraint& v) {
    if (v.kind == CValueConstraint::None) return std::string();
    return std::string(v.kind == CValueConstraint::Default ? " default=\"" : " fixed=\"") + v.value + "\"";
}

const char* WhiteSpaceName(WhiteSpace w) {
    switch (w) {
        case WhiteSpace::Preserve: return "preserve";
        case WhiteSpace::Replace: return "replace";
        case WhiteSpace::Collapse: return "collapse";
    }
    return "";
}

// The printer walks nested anonymous types and model groups with its own
// stack, so its depth never depends on the schema's.
class Printer {
public:
    std::string Print(const CSchemaSet& set) {
        for (const CTypeDefinition* t : set.GetTypes()) Type(t, 0);
        for (const CElementDeclaration* e : set.GetElements()) Element(e, 0, nullptr);
        for (const CAttributeDeclaration* a : set.GetAttributes())
            Line(0, "attribute " + a->name.ToString() + " : " + TypeName(a->type) + Value(a->valueConstraint)),
                Anonymous(a->type, 1);
        for (const CModelGroupDefinition* g : set.GetModelGroups()) {
            Line(0, "group " + g->name.ToString());
            if (g->modelGroup != nullptr) Group(g->modelGroup, "", 1);
        }
        for (const CAttributeGroup* g : set.GetAttributeGroups()) {
            Line(0, "attributeGroup " + g->name.ToString());
            Attributes(g->attributeUses, g->attributeWildcard, 1);
        }
        for (const CNotation* n : set.GetNotations())
            Line(0, "notation " + n->name.ToString() + (n->publicId.empty() ? "" : " public=\"" + n->publicId + "\"") +
                        (n->systemId.empty() ? "" : " system=\"" + n->systemId + "\""));
        Run();
        return m_out;
    }

private:
    enum class Kind { Text, Type, Particle };
    struct Item {
        Kind kind;
        int indent;
        std::string text;
        const CTypeDefinition* type = nullptr;
        const CParticle* particle = nullptr;
    };

    // Items are queued per top-level component and expanded in order.
    void Line(int indent, std::string text) { m_queue.push_back({Kind::Text, indent, std::move(text)}); }
    void Type(const CTypeDefinition* t, int indent) { m_queue.push_back({Kind::Type, indent, {}, t}); }
    void Anonymous(const CTypeDefinition* t, int indent) {
        if (t != nullptr && t->IsAnonymous()) Type(t, indent);
    }
    void Element(const CElementDeclaration* e, int indent, const CParticle* p) {
        std::string text = "element " + e->name.ToString() + " : " + TypeName(e->type);
        if (p != nullptr) text += " " + Occurs(p);
        if (e->nillable) text += " nillable";
        if (e->abstract) text += " abstract";
        text += Value(e->valueConstraint);
        if (e->substitutionGroupHead != nullptr) text += " substitutes " + e->substitutionGroupHead->name.ToString();
        Line(indent, text);
        if (p == nullptr || e->scope == CElementDeclaration::Scope::Local) Anonymous(e->type, indent + 1);
        if (p == nullptr && !e->substitutionGroupMembers.empty()) {
            std::string members;
            for (const CElementDeclaration* m : e->substitutionGroupMembers) members += " " + m->name.ToString();
            Line(indent + 1, "substitution group:" + members);
        }
        for (const CIdentityConstraint* ic : e->identityConstraints) {
            const char* kind = ic->category == CIdentityConstraint::Category::Key      ? "key"
                               : ic->category == CIdentityConstraint::Category::KeyRef ? "keyref"
                                                                                       : "unique";
            std::string fields;
            for (const std::string& f : ic->fields) fields += " " + f;
            Line(indent + 1, std::string(kind) + " " + ic->name.ToString() + " selector " + ic->selector + " fields" + fields +
                                 (ic->referencedKey != nullptr ? " refer " + ic->referencedKey->name.ToString() : ""));
        }
    }
    void Group(const CModelGroup* g, const std::string& occurs, int indent) {
        const char* name = g->compositor == CModelGroup::Compositor::Sequence ? "sequence"
                           : g->compositor == CModelGroup::Compositor::Choice ? "choice"
                                                                              : "all";
        Line(indent, std::string(name) + (occurs.empty() ? "" : " " + occurs));
        for (const CParticle* p : g->particles) m_queue.push_back({Kind::Particle, indent + 1, {}, nullptr, p});
    }
    void Attributes(const std::vector<const CAttributeUse*>& uses, const CWildcard* wildcard, int indent) {
        for (const CAttributeUse* u : uses) {
            const CAttributeDeclaration* d = u->declaration;
            const char* use = u->use == CAttributeUse::Use::Required ? " required" : u->use == CAttributeUse::Use::Prohibited ? " prohibited" : " optional";
            CValueConstraint vc = u->valueConstraint.kind != CValueConstraint::None ? u->valueConstraint : d->valueConstraint;
            Line(indent, "attribute " + d->name.ToString() + " : " + TypeName(d->type) + use + Value(vc));
            if (d->scope == CAttributeDeclaration::Scope::Local) Anonymous(d->type, indent + 1);
        }
        if (wildcard != nullptr)
            Line(indent, "anyAttribute " + Constraint(wildcard->namespaceConstraint) + " " + Process(wildcard->processContents));
    }
    void Facets(const CSimpleType* t, int indent) {
        const CFacets& f = t->ownFacets;
        auto n = [&](const char* name, const std::optional<CFacetValue<unsigned long long>>& v) {
            if (v) Line(indent, std::string("facet ") + name + " " + std::to_string(v->value) + (v->fixed ? " fixed" : ""));
        };
        auto s = [&](const char* name, const std::optional<CFacetValue<std::string>>& v) {
            if (v) Line(indent, std::string("facet ") + name + " " + v->value + (v->fixed ? " fixed" : ""));
        };
        n("length", f.length);
        n("minLength", f.minLength);
        n("maxLength", f.maxLength);
        s("minInclusive", f.minInclusive);
        s("minExclusive", f.minExclusive);
        s("maxInclusive", f.maxInclusive);
        s("maxExclusive", f.maxExclusive);
        n("totalDigits", f.totalDigits);
        n("fractionDigits", f.fractionDigits);
        if (f.whiteSpace) Line(indent, std::string("facet whiteSpace ") + WhiteSpaceName(f.whiteSpace->value) + (f.whiteSpace->fixed ? " fixed" : ""));
        for (const auto& step : f.patterns)
            for (const std::string& p : step) Line(indent, "facet pattern " + p);
        for (const std::string& e : f.enumeration) Line(indent, "facet enumeration " + e);
    }
    void ExpandType(const CTypeDefinition* t, int indent) {
        const std::string label = t->IsAnonymous() ? std::string() : " " + t->name.ToString();
        const std::string method = t->derivationMethod == Derivation_Extension ? "extension" : "restriction";
        if (t->IsSimple()) {
            const CSimpleType* s = static_cast<const CSimpleType*>(t);
            const char* variety = s->variety == CSimpleType::Variety::List    ? "list"
                                  : s->variety == CSimpleType::Variety::Union ? "union"
                                                                              : "atomic";
            Line(indent, "simpleType" + label + " (" + variety + ")");
            if (s->variety == CSimpleType::Variety::List && s->baseType != nullptr && s->baseType->IsSimple() &&
                static_cast<const CSimpleType*>(s->baseType)->variety != CSimpleType::Variety::List) {
                Line(indent + 1, "item " + TypeName(s->itemType));
                Anonymous(s->itemType, indent + 2);
            } else if (s->variety == CSimpleType::Variety::Union && s->baseType == nullptr) {
            } else if (s->variety == CSimpleType::Variety::Union && !static_cast<const CSimpleType*>(s->baseType)->memberTypes.size()) {
                for (const CSimpleType* m : s->memberTypes) {
                    Line(indent + 1, "member " + TypeName(m));
                    Anonymous(m, indent + 2);
                }
            } else {
                Line(indent + 1, "base " + TypeName(s->baseType) + " by restriction");
                Anonymous(s->baseType, indent + 2);
            }
            Facets(s, indent + 1);
            return;
        }
        const CComplexType* c = static_cast<const CComplexType*>(t);
        Line(indent, "complexType" + label + (c->abstract ? " abstract" : ""));
        Line(indent + 1, "base " + TypeName(c->baseType) + " by " + method);
        switch (c->contentType) {
            case CComplexType::ContentType::Empty: Line(indent + 1, "content empty"); break;
            case CComplexType::ContentType::Simple:
                Line(indent + 1, "content simple : " + TypeName(c->simpleContentType));
                Anonymous(c->simpleContentType, indent + 2);
                break;
            case CComplexType::ContentType::ElementOnly: Line(indent + 1, "content element-only"); break;
            case CComplexType::ContentType::Mixed: Line(indent + 1, "content mixed"); break;
        }
        const CParticle* content = c->contentModel;
        // An extension's content model starts with its base's: named, not
        // repeated, so that the output grows with the schema, not with the
        // square of its derivation depth.
        const CComplexType* base = c->baseType != nullptr && !c->baseType->IsSimple() ? static_cast<const CComplexType*>(c->baseType) : nullptr;
        if (content != nullptr && base != nullptr && c->derivationMethod == Derivation_Extension && base->contentModel != nullptr) {
            if (content == base->contentModel) {
                Line(indent + 1, "content model of " + TypeName(base));
                content = nullptr;
            } else if (content->modelGroup != nullptr && content->modelGroup->particles.size() == 2 &&
                       content->modelGroup->particles[0] == base->contentModel) {
                Line(indent + 1, "sequence [1..1]");
                Line(indent + 2, "content model of " + TypeName(base));
                m_queue.push_back({Kind::Particle, indent + 2, {}, nullptr, content->modelGroup->particles[1]});
                content = nullptr;
            }
        }
        if (content != nullptr) m_queue.push_back({Kind::Particle, indent + 1, {}, nullptr, content});
        Attributes(c->attributeUses, c->attributeWildcard, indent + 1);
    }
    void ExpandParticle(const CParticle* p, int indent) {
        switch (p->termKind) {
            case CParticle::TermKind::Element: Element(p->element, indent, p); break;
            case CParticle::TermKind::Wildcard:
                Line(indent, "any " + Constraint(p->wildcard->namespaceConstraint) + " " + Process(p->wildcard->processContents) +
                                 " " + Occurs(p));
                break;
            case CParticle::TermKind::ModelGroup:
                if (p->groupDefinition != nullptr) {
                    Line(indent, "group " + p->groupDefinition->name.ToString() + " " + Occurs(p));
                } else if (p->modelGroup != nullptr) {
                    Group(p->modelGroup, Occurs(p), indent);
                }
                break;
        }
    }
    void Run() {
        // m_queue holds the items of one level; expanding an item queues its
        // children, which must print right after it: a stack of queues.
        std::vector<std::vector<Item>> stack;
        stack.push_back(std::move(m_queue));
        std::vector<std::size_t> positions{0};
        m_queue.clear();
        while (!stack.empty()) {
            if (positions.back() >= stack.back().size()) {
                stack.pop_back();
                positions.pop_back();
                continue;
            }
            const Item item = stack.back()[positions.back()++];
            switch (item.kind) {
                case Kind::Text: m_out += std::string(static_cast<std::size_t>(item.indent) * 2, ' ') + item.text + "\n"; break;
                case Kind::Type: ExpandType(item.type, item.indent); break;
                case Kind::Particle: ExpandParticle(item.particle, item.indent); break;
            }
            if (!m_queue.empty()) {
                stack.push_back(std::move(m_queue));
                positions.push_back(0);
                m_queue.clear();
            }
        }
    }

    std::vector<Item> m_queue;
    std::string m_out;
};

}  // namespace

std::string PrintSchemaSet(const CSchemaSet& set) { return Printer().Print(set); }

}  // namespace Schema
}  // namespace QmXmlLib10
