// Complex type definitions.
#pragma once

#include <vector>

#include "qmxml/schema/type_definition.h"

namespace QmXmlLib10 {
namespace Schema {

class CSimpleType;
class CParticle;
class CAttributeUse;
class CWildcard;

// A complex type. anyType is the built-in one (mixed content of any elements
// and attributes, lax).
class CComplexType final : public CTypeDefinition {
public:
    // {content type}'s variety.
    enum class ContentType : int { Empty = 0, Simple = 1, ElementOnly = 2, Mixed = 3 };

    CComplexType() : CTypeDefinition(ComponentKind::ComplexType) {}
    ~CComplexType() override;

    ContentType contentType = ContentType::Empty;
    // The simple type of simple content, else null.
    const CSimpleType* simpleContentType = nullptr;
    // The effective content model of element-only and mixed content: for an
    // extension, a sequence of the base's particle then the type's own (or
    // either alone when the other is empty). Null for empty and simple content.
    const CParticle* contentModel = nullptr;
    // {attribute uses}, inherited ones included (a restriction's own use
    // replaces the base's of the same name; prohibited uses are not listed).
    std::vector<const CAttributeUse*> attributeUses;
    // {attribute wildcard}: for an extension the union of the base's and the
    // type's own, for a restriction the type's own; null when none.
    const CWildcard* attributeWildcard = nullptr;
    bool abstract = false;
    // {prohibited substitutions} (from block / blockDefault): extension and
    // restriction flags.
    unsigned block = Derivation_None;
};

}  // namespace Schema
}  // namespace QmXmlLib10
