// What simple and complex type definitions share.
#pragma once

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

// A type definition: XML Schema's {name}, {target namespace}, {base type
// definition}, {derivation method} and {final}.
class CTypeDefinition : public CSchemaComponent {
public:
    using CSchemaComponent::CSchemaComponent;
    ~CTypeDefinition() override;

    bool IsSimple() const noexcept { return GetKind() == ComponentKind::SimpleType; }
    bool IsAnonymous() const noexcept { return name.IsEmpty(); }

    // Empty local name for an anonymous type; the namespace is the target
    // namespace of the schema document either way.
    CQName name;
    // anyType's base is anyType itself; every other type has another base.
    const CTypeDefinition* baseType = nullptr;
    // Derivation_Extension or Derivation_Restriction (simple types: restriction,
    // also for lists and unions, whose base is anySimpleType).
    DerivationFlags derivationMethod = Derivation_Restriction;
    // {final}: a set of Derivation_* flags.
    unsigned final = Derivation_None;
    // True for the built-in types of XML Schema.
    bool builtIn = false;

    // True when this type is other or derives from it (any number of steps).
    bool DerivesFrom(const CTypeDefinition* other) const noexcept;
};

// The derivation methods met on the way from derived up to base, a set of
// Derivation_Extension and Derivation_Restriction flags (none when derived is
// base). With a complex type's block, it decides whether an element may
// carry the derived type in place of its declared one.
unsigned DerivationMethods(const CTypeDefinition* derived, const CTypeDefinition* base) noexcept;
// What a type prohibits of the types that replace it: a complex type's block,
// nothing for a simple type or none.
unsigned ProhibitedBy(const CTypeDefinition* type) noexcept;

}  // namespace Schema
}  // namespace QmXmlLib10
