// The model's small behaviour: names, derivation, namespace constraints.
#include <algorithm>

#include "qmxml/schema/schema_set.h"

namespace QmXmlLib10 {
namespace Schema {

CSchemaComponent::~CSchemaComponent() = default;
CTypeDefinition::~CTypeDefinition() = default;
CSimpleType::~CSimpleType() = default;
CComplexType::~CComplexType() = default;
CElementDeclaration::~CElementDeclaration() = default;
CAttributeDeclaration::~CAttributeDeclaration() = default;
CAttributeUse::~CAttributeUse() = default;
CAttributeGroup::~CAttributeGroup() = default;
CModelGroup::~CModelGroup() = default;
CParticle::~CParticle() = default;
CModelGroupDefinition::~CModelGroupDefinition() = default;
CWildcard::~CWildcard() = default;
CIdentityConstraint::~CIdentityConstraint() = default;
CNotation::~CNotation() = default;

CQmSchemaException::~CQmSchemaException() = default;
CQmException* CQmSchemaException::Clone() const { return new CQmSchemaException(*this); }

std::string CQName::ToString() const {
    if (ns.empty()) return local;
    return "{" + ns + "}" + local;
}

bool CTypeDefinition::DerivesFrom(const CTypeDefinition* other) const noexcept {
    // The loader refuses derivation cycles, so every chain ends at anyType,
    // whose base is itself.
    for (const CTypeDefinition* t = this; t != nullptr; t = t->baseType) {
        if (t == other) return true;
        if (t->baseType == t) break;
    }
    return false;
}

unsigned DerivationMethods(const CTypeDefinition* derived, const CTypeDefinition* base) noexcept {
    unsigned methods = Derivation_None;
    // The loader refuses derivation cycles; the guard only bounds the walk.
    for (int guard = 0; derived != nullptr && derived != base && guard < 10000; ++guard) {
        methods |= derived->derivationMethod == Derivation_Extension ? Derivation_Extension : Derivation_Restriction;
        if (derived->baseType == derived) break;
        derived = derived->baseType;
    }
    return methods;
}

unsigned ProhibitedBy(const CTypeDefinition* type) noexcept {
    return type != nullptr && !type->IsSimple() ? static_cast<const CComplexType*>(type)->block : Derivation_None;
}

bool CFacets::IsEmpty() const noexcept {
    return !length && !minLength && !maxLength && patterns.empty() && enumeration.empty() && !whiteSpace &&
           !maxInclusive && !maxExclusive && !minInclusive && !minExclusive && !totalDigits && !fractionDigits;
}

bool CNamespaceConstraint::Allows(const std::string& ns) const noexcept {
    switch (kind) {
        case Kind::Any:
            return true;
        case Kind::Not:
            // not(x) never allows absent names either.
            return !ns.empty() && (namespaces.empty() || ns != namespaces[0]);
        case Kind::Set:
            return std::binary_search(namespaces.begin(), namespaces.end(), ns);
    }
    return false;
}

namespace {

bool Contains(const std::vector<std::string>& sorted, const std::string& ns) {
    return std::binary_search(sorted.begin(), sorted.end(), ns);
}

}  // namespace

bool UnionOf(const CNamespaceConstraint& a, const CNamespaceConstraint& b, CNamespaceConstraint& result) {
    using Kind = CNamespaceConstraint::Kind;
    if (a == b) {
        result = a;
        return true;
    }
    if (a.kind == Kind::Any || b.kind == Kind::Any) {
        result = CNamespaceConstraint{};
        return true;
    }
    if (a.kind == Kind::Set && b.kind == Kind::Set) {
        result.kind = Kind::Set;
        result.namespaces.clear();
        std::set_union(a.namespaces.begin(), a.namespaces.end(), b.namespaces.begin(), b.namespaces.end(),
                       std::back_inserter(result.namespaces));
        return true;
    }
    if (a.kind == Kind::Not && b.kind == Kind::Not) {
        // Two different negations: not(absent) when either negates absent.
        result.kind = Kind::Not;
        result.namespaces = {std::string()};
        return true;
    }
    const CNamespaceConstraint& negation = a.kind == Kind::Not ? a : b;
    const CNamespaceConstraint& set = a.kind == Kind::Not ? b : a;
    const std::string negated = negation.namespaces.empty() ? std::string() : negation.namespaces[0];
    if (!negated.empty()) {
        const bool hasNegated = Contains(set.namespaces, negated);
        const bool hasAbsent = Contains(set.namespaces, std::string());
        if (hasNegated && hasAbsent) {
            result = CNamespaceConstraint{};
            return true;
        }
        if (hasNegated) {
            result.kind = Kind::Not;
            result.namespaces = {std::string()};
            return true;
        }
        if (hasAbsent) return false;  // not expressible
        result = negation;
        return true;
    }
    // not(absent) with a set: any when the set holds absent.
    if (Contains(set.namespaces, std::string())) {
        result = CNamespaceConstraint{};
        return true;
    }
    result = negation;
    return true;
}

bool IntersectionOf(const CNamespaceConstraint& a, const CNamespaceConstraint& b, CNamespaceConstraint& result) {
    using Kind = CNamespaceConstraint::Kind;
    if (a == b) {
        result = a;
        return true;
    }
    if (a.kind == Kind::Any) {
        result = b;
        return true;
    }
    if (b.kind == Kind::Any) {
        result = a;
        return true;
    }
    if (a.kind == Kind::Set && b.kind == Kind::Set) {
        result.kind = Kind::Set;
        result.namespaces.clear();
        std::set_intersection(a.namespaces.begin(), a.namespaces.end(), b.namespaces.begin(), b.namespaces.end(),
                              std::back_inserter(result.namespaces));
        return true;
    }
    if (a.kind == Kind::Not && b.kind == Kind::Not) {
        // Two different negations, one of them of absent: the other one.
        const std::string an = a.namespaces.empty() ? std::string() : a.namespaces[0];
        const std::string bn = b.namespaces.empty() ? std::string() : b.namespaces[0];
        if (an.empty()) {
            result = b;
            return true;
        }
        if (bn.empty()) {
            result = a;
            return true;
        }
        return false;
    }
    const CNamespaceConstraint& negation = a.kind == Kind::Not ? a : b;
    const CNamespaceConstraint& set = a.kind == Kind::Not ? b : a;
    result.kind = Kind::Set;
    result.namespaces.clear();
    for (const std::string& ns : set.namespaces)
        if (negation.Allows(ns)) result.namespaces.push_back(ns);
    return true;
}

}  // namespace Schema
}  // namespace QmXmlLib10
