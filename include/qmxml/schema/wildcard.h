// Element and attribute wildcards (xs:any, xs:anyAttribute).
#pragma once

#include <string>
#include <vector>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

// {namespace constraint}. Namespace names are "" for absent.
struct CNamespaceConstraint {
    enum class Kind : int {
        Any = 0,  // ##any
        Not = 1,  // not(namespaces[0]): ##other, namespaces[0] the target namespace or ""
        Set = 2,  // the listed namespaces, "" standing for ##local (absent)
    };
    Kind kind = Kind::Any;
    // Sorted, without duplicates.
    std::vector<std::string> namespaces;

    // Whether a name in namespace ns ("" for none) is allowed.
    bool Allows(const std::string& ns) const noexcept;
    bool operator==(const CNamespaceConstraint& other) const noexcept {
        return kind == other.kind && namespaces == other.namespaces;
    }
};

// XML Schema 1.0's union and intersection of namespace constraints. Union
// returns false when the union is not expressible (not(a) with a set that
// holds "" but not a, and similar), intersection when it is not
// expressible either.
bool UnionOf(const CNamespaceConstraint& a, const CNamespaceConstraint& b, CNamespaceConstraint& result);
bool IntersectionOf(const CNamespaceConstraint& a, const CNamespaceConstraint& b, CNamespaceConstraint& result);

class CWildcard final : public CSchemaComponent {
public:
    enum class ProcessContents : int { Strict = 0, Lax = 1, Skip = 2 };

    CWildcard() : CSchemaComponent(ComponentKind::Wildcard) {}
    ~CWildcard() override;

    CNamespaceConstraint namespaceConstraint;
    ProcessContents processContents = ProcessContents::Strict;
};

}  // namespace Schema
}  // namespace QmXmlLib10
