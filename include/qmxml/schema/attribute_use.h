// Attribute uses: an attribute declaration as a complex type or attribute
// group uses it.
#pragma once

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CAttributeDeclaration;

class CAttributeUse final : public CSchemaComponent {
public:
    // XML Schema's {required}, with prohibited uses kept too: they matter to
    // restrictions (which remove the base's use) and to printing.
    enum class Use : int { Optional = 0, Required = 1, Prohibited = 2 };

    CAttributeUse() : CSchemaComponent(ComponentKind::AttributeUse) {}
    ~CAttributeUse() override;

    Use use = Use::Optional;
    const CAttributeDeclaration* declaration = nullptr;
    // The use's own default or fixed value (a reference to a global
    // attribute may add one).
    CValueConstraint valueConstraint;
};

}  // namespace Schema
}  // namespace QmXmlLib10
