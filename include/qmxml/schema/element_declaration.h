// Element declarations.
#pragma once

#include <vector>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CTypeDefinition;
class CComplexType;
class CIdentityConstraint;

class CElementDeclaration final : public CSchemaComponent {
public:
    enum class Scope : int { Global = 0, Local = 1 };

    CElementDeclaration() : CSchemaComponent(ComponentKind::ElementDeclaration) {}
    ~CElementDeclaration() override;

    // {name} and {target namespace}: a local element's namespace is the target
    // namespace when qualified, else "".
    CQName name;
    // {type definition}: the named or anonymous type, the head's type when
    // only a substitution group is given, else anyType.
    const CTypeDefinition* type = nullptr;
    Scope scope = Scope::Global;
    // The complex type a local declaration appears in (null for global ones
    // and for locals inside named model groups).
    const CComplexType* enclosingType = nullptr;
    bool nillable = false;
    CValueConstraint valueConstraint;
    // {substitution group affiliation}.
    const CElementDeclaration* substitutionGroupHead = nullptr;
    // Every global element that may substitute for this one, transitively
    // (members of members), in declaration order; empty for non-heads.
    std::vector<const CElementDeclaration*> substitutionGroupMembers;
    bool abstract = false;
    // {disallowed substitutions}: extension, restriction, substitution flags.
    unsigned block = Derivation_None;
    // {substitution group exclusions}: extension and restriction flags.
    unsigned final = Derivation_None;
    // True when the name is namespace-qualified in instances (always for
    // global declarations; for locals from form or elementFormDefault).
    bool qualified = true;
    std::vector<const CIdentityConstraint*> identityConstraints;
};

}  // namespace Schema
}  // namespace QmXmlLib10
