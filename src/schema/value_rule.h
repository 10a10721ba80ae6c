// What XML Schema checks of a simple value beyond what the runtime's
// conversions and facets check: the binding of a simple type to a runtime
// item type, whitespace rule and facets, and the rule that does the rest.
// Internal to the schema library; the mapping to runtime metadata uses it.
#pragma once

#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/schema/component.h"
#include "qmxml/schema/simple_type.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/simple_type_rule.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Schema {

// The runtime item type values of the simple type are held as: an atomic
// type's runtimeType, ItemType_string for lists, unions and anySimpleType.
ItemType BindingItemType(const CSimpleType* type);
// The whitespace rule the runtime applies before converting: the type's
// whiteSpace facet (preserve is WhitespaceRule_None: a carriage return from a
// character reference is kept); for a union, the weakest of its members' (the rule
// normalizes the text further for each member it tries).
CWhitespaceUtils::WhitespaceRule BindingWhitespaceRule(const CSimpleType* type);
// The facets the runtime checks itself: none. The runtime counts lengths in
// bytes, prints bounds in its own formats and matches patterns on strings
// only, so the rule checks every facet, once, with one message shape.
CPrimitiveRestrictions BindingFacets(const CSimpleType* type);
// The schema checks of a member of this type: null when the runtime's
// conversion already checks everything XML Schema requires (string,
// normalizedString, token, anyURI without facets, anySimpleType), else a
// CSchemaValueRule. fixed: the declaration's or attribute use's value
// constraint when it is Fixed (anything else counts as none).
std::shared_ptr<const CValueRule> MakeValueRule(const CSimpleType* type, const CValueConstraint* fixed);

// The description of the simple type's checks that CSimpleTypeRule runs:
// everything it needs copied out of the model (type may be null: every value).
// fixed: as for MakeValueRule. Generated code holds the same description.
CSimpleTypeDescription DescribeSimpleType(const CSimpleType* type, const CValueConstraint* fixed);

// The runtime's rule built from the type's description (see
// qmxml/types/simple_type_rule.h for what it checks and its messages).
class CSchemaValueRule final : public CSimpleTypeRule {
public:
    // type must outlive nothing: everything needed is copied out of the
    // model. A null type accepts every value.
    CSchemaValueRule(const CSimpleType* type, const CValueConstraint* fixed)
        : CSimpleTypeRule(DescribeSimpleType(type, fixed)) {}
};

}  // namespace Schema
}  // namespace QmXmlLib10
