// Provisional: the binding's view of simple types (replaced by the full rule).
#pragma once

#include <memory>

#include "qmxml/schema/simple_type.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Schema {

ItemType BindingItemType(const CSimpleType* type);
CWhitespaceUtils::WhitespaceRule BindingWhitespaceRule(const CSimpleType* type);
CPrimitiveRestrictions BindingFacets(const CSimpleType* type);
std::shared_ptr<const CValueRule> MakeValueRule(const CSimpleType* type, const CValueConstraint* fixed);

}  // namespace Schema
}  // namespace QmXmlLib10
