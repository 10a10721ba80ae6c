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

// Checks a value against its simple type as XML Schema 1.0 does:
//   the lexical space of the primitive type (stricter than the runtime's
//   conversions: no exponent in a decimal, no empty number, "true" but not
//   "TRUE", zones within 14:00, base64 padding as the grammar has it), the
//   lexical forms of the built-in derived types (integers, NCName and what
//   derives from it), every pattern of every derivation step on the lexical
//   form; then, in the value space, enumeration, bounds, totalDigits and
//   fractionDigits, lengths (characters of strings, octets of binaries, items
//   of lists; none for QName and NOTATION); list items one by one against the
//   item type, unions by their first member type that accepts the value; and
//   the fixed value, compared in the value space.
// QName and NOTATION values compare by their text: the rule has no namespace
// context to resolve prefixes with. Types nested more than 32 levels deep
// (unions of unions ...) accept no value: the rule never follows them further.
//
// Immutable after construction (bounds and enumeration values are parsed
// there, patterns are compiled by the runtime's process-wide cache), so one
// rule serves any number of threads.
class CSchemaValueRule final : public CValueRule {
public:
    // type must outlive nothing: everything needed is copied out of the
    // model. A null type accepts every value.
    CSchemaValueRule(const CSimpleType* type, const CValueConstraint* fixed);
    ~CSchemaValueRule() override;
    CSchemaValueRule(const CSchemaValueRule&) = delete;
    CSchemaValueRule& operator=(const CSchemaValueRule&) = delete;

    // Throws CQmValidationException "Invalid Value for %s [%s]" (member name,
    // text, or when there is none the value's canonical form after the
    // type's whitespace rule, as a document written from it reads back), or
    // "Invalid Value for %s [%s], the fixed value is [%s]"; a pattern the
    // engine cannot run gives its message, a line break, then the first.
    void Check(const std::string& memberName, const QmVariant& value, ItemType type,
               const std::string* text) const override;

    // True when text, after the type's whitespace handling, is a valid value
    // of the type (and equals the fixed value, when there is one).
    bool Accepts(const std::string& text) const;

    // True when the type asks nothing of a value beyond the runtime's
    // conversion, and there is no fixed value.
    bool IsTrivial() const;

    struct Impl;

private:
    std::unique_ptr<const Impl> m_impl;
};

}  // namespace Schema
}  // namespace QmXmlLib10
