// Named model group definitions (xs:group name=...).
#pragma once

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CModelGroup;

class CModelGroupDefinition final : public CSchemaComponent {
public:
    CModelGroupDefinition() : CSchemaComponent(ComponentKind::ModelGroupDefinition) {}
    ~CModelGroupDefinition() override;

    CQName name;
    const CModelGroup* modelGroup = nullptr;
};

}  // namespace Schema
}  // namespace QmXmlLib10
