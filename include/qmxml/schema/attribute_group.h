// Named attribute group definitions.
#pragma once

#include <vector>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CAttributeUse;
class CWildcard;

class CAttributeGroup final : public CSchemaComponent {
public:
    CAttributeGroup() : CSchemaComponent(ComponentKind::AttributeGroup) {}
    ~CAttributeGroup() override;

    CQName name;
    // The uses of the group, those of referenced groups included.
    std::vector<const CAttributeUse*> attributeUses;
    // The intersection of the group's anyAttribute and those of the groups it
    // references; null when none has one.
    const CWildcard* attributeWildcard = nullptr;
};

}  // namespace Schema
}  // namespace QmXmlLib10
