// The checks XML Schema makes of a simple value beyond the runtime's own
// conversions and facets, as plain data and the engine that runs them.
//
// A CSimpleTypeDescription says everything the checks need of a simple type
// (its variety, primitive, whitespace rule, the patterns of every derivation
// step, enumeration literals, bounds, digits, lengths, list item and union
// member types, a fixed value) without the schema model: the schema layer
// fills it from a loaded schema, generated code fills it from static data.
// Both then hand it to CSimpleTypeRule, so dynamic and generated classes run
// the same checks with the same messages, and a program that only uses
// generated classes links the runtime alone.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/types/restrictions.h"

namespace QmXmlLib10 {

// XML Schema's whiteSpace facet values.
enum class XsdWhiteSpace : int { Preserve = 0, Replace = 1, Collapse = 2 };

// The 19 primitive types, and AnySimple for anySimpleType (whose lexical
// space is every string).
enum class XsdPrimitive : int {
    AnySimple,
    String,
    Boolean,
    Decimal,
    Float,
    Double,
    Duration,
    DateTime,
    Time,
    Date,
    GYearMonth,
    GYear,
    GMonthDay,
    GDay,
    GMonth,
    HexBinary,
    Base64Binary,
    AnyURI,
    QName,
    Notation,
};

enum class XsdVariety : int { None = 0, Atomic = 1, List = 2, Union = 3 };

// One simple type of a description. Facets are kept as the schema writes
// them (literals, before the type's whitespace rule); the rule parses them
// once, when it is made.
struct CSimpleTypeCheck {
    XsdVariety variety = XsdVariety::None;  // None: anySimpleType, every value
    // For a union, the weakest of its members' (each member normalizes further).
    XsdWhiteSpace whiteSpace = XsdWhiteSpace::Preserve;
    // A type nested deeper than the rule follows: it accepts no value.
    bool refuse = false;
    // One group per derivation step; a value matches some pattern of each group.
    std::vector<std::vector<std::string>> patterns;
    std::vector<std::string> enumeration;
    std::optional<unsigned long long> length, minLength, maxLength;
    // Atomic types.
    XsdPrimitive primitive = XsdPrimitive::AnySimple;
    ItemType runtimeType = ItemType_string;  // the item type the runtime holds values as
    bool integerForm = false;                // derived from xs:integer
    bool ncname = false;                     // derived from xs:NCName
    std::optional<std::string> minInclusive, maxInclusive, minExclusive, maxExclusive;
    std::optional<unsigned long long> totalDigits, fractionDigits;
    // Lists: the item type; unions: the member types, in order (indices into
    // CSimpleTypeDescription::types; a type used twice appears once).
    int item = -1;
    std::vector<int> members;
};

struct CSimpleTypeDescription {
    // types[0] is the type itself; list item and union member types follow.
    std::vector<CSimpleTypeCheck> types;
    std::optional<std::string> fixed;  // the declaration's fixed value, as written
    // A built-in type whose runtime item type holds exactly its value space:
    // a value (as opposed to a text) needs no check.
    bool valuesAlwaysValid = false;
};

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
class CSimpleTypeRule : public CValueRule {
public:
    // An empty description accepts every value. A list without an item type
    // or an index outside the description throws CQmInvalidParamException
    // "Invalid simple type description".
    explicit CSimpleTypeRule(const CSimpleTypeDescription& description);
    ~CSimpleTypeRule() override;
    CSimpleTypeRule(const CSimpleTypeRule&) = delete;
    CSimpleTypeRule& operator=(const CSimpleTypeRule&) = delete;

    // The rule for a member, or null when the type asks nothing of a value
    // beyond the runtime's conversion (see IsTrivial).
    static std::shared_ptr<const CValueRule> Make(const CSimpleTypeDescription& description);

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
    bool m_valuesAlwaysValid = false;
};

}  // namespace QmXmlLib10
