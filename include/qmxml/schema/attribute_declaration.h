// Attribute declarations.
#pragma once

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CSimpleType;
class CComplexType;

class CAttributeDeclaration final : public CSchemaComponent {
public:
    enum class Scope : int { Global = 0, Local = 1 };

    CAttributeDeclaration() : CSchemaComponent(ComponentKind::AttributeDeclaration) {}
    ~CAttributeDeclaration() override;

    // {name} and {target namespace} ("" for unqualified local attributes).
    CQName name;
    // {type definition}: anySimpleType when none is given.
    const CSimpleType* type = nullptr;
    Scope scope = Scope::Global;
    const CComplexType* enclosingType = nullptr;
    CValueConstraint valueConstraint;
    // True when qualified in instances (global declarations, or form /
    // attributeFormDefault "qualified").
    bool qualified = true;
};

}  // namespace Schema
}  // namespace QmXmlLib10
