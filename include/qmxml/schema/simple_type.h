// Simple type definitions, built-in and user-defined.
#pragma once

#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/schema/facets.h"
#include "qmxml/schema/type_definition.h"

namespace QmXmlLib10 {
namespace Schema {

// A simple type. Built-ins: anySimpleType, the 19 primitives and the 25
// derived built-in types, in the XML Schema namespace. User types derive by
// restriction (of an atomic, list or union type), list or union.
class CSimpleType final : public CTypeDefinition {
public:
    // {variety}; anySimpleType alone has none.
    enum class Variety : int { None = 0, Atomic = 1, List = 2, Union = 3 };

    CSimpleType() : CTypeDefinition(ComponentKind::SimpleType) {}
    ~CSimpleType() override;

    Variety variety = Variety::Atomic;
    // {primitive type definition} for atomic types (the primitive itself for a
    // primitive), null otherwise.
    const CSimpleType* primitiveType = nullptr;
    // {item type definition} of a list (inherited by restrictions of a list).
    const CSimpleType* itemType = nullptr;
    // {member type definitions} of a union (inherited by its restrictions).
    std::vector<const CSimpleType*> memberTypes;
    // The facets in effect, merged along the derivation chain.
    CFacets facets;
    // The facets written on this type's own restriction step.
    CFacets ownFacets;
    // The whitespace handling in effect (lists and most types: collapse;
    // string: preserve; normalizedString: replace).
    WhiteSpace whiteSpace = WhiteSpace::Collapse;
    // The runtime item type closest to this type's value space, through the
    // derivation chain (ItemType_string for lists, unions and types without a
    // closer runtime type).
    ItemType runtimeType = ItemType_string;
};

}  // namespace Schema
}  // namespace QmXmlLib10
