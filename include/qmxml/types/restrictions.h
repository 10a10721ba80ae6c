// The XSD facets of one simple-typed member and the checks that enforce them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <qmxml/core/enums.h>
#include <qmxml/types/whitespace.h>

namespace QmXmlLib10 {

class CBinaryData;
class CBigInteger;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class QmVariant;

// A check beyond the facets below, for members whose simple type comes from a
// schema (enumerations of any type, digits, lengths in characters, lists,
// unions, fixed values). The facets hold it by shared pointer, so copies of
// the facets share one rule; it must be immutable and usable from any thread.
class CValueRule {
public:
    virtual ~CValueRule();
    // text: the lexical form the value was read from, after the member's
    // whitespace rule; null when the value has no document text (set by the
    // application, or being written). Throws CQmValidationException, as the
    // facets do, when the value is not allowed.
    virtual void Check(const std::string& memberName, const QmVariant& value, ItemType type,
                       const std::string* text) const = 0;
};

// Facets as generated code declares them: "" and -1 mean unset. Bounds are kept
// as text and parsed with the member's own type (under the collapse rule) at
// every check; a bound that does not parse throws that conversion's
// CQmInvalidValueException.
//
// A value that breaks a facet throws CQmValidationException
// "Invalid Value for %s [%s]" (member name, value), checked in this order:
//   bounds   minInclusive, maxInclusive, minExclusive, maxExclusive; an
//            indeterminate comparison (dates with and without zone, "P1M"
//            against "P30D", NaN) fails the bound;
//   lengths  minLength, maxLength, length (bytes of the narrow string, or of
//            the binary data);
//   pattern  strings, chars and booleans (on their lexical form: a boolean
//            read from a document on its text there) only, after
//            the lengths; an empty value skips it.
// Which facets a type checks, and how its value prints in the message:
//   i1 i2 i4 ui1 ui2 ui4    bounds, "%d" ("%u" for the unsigned ones)
//   i8 ui8                  bounds, i8ToString / ui8ToString
//   r4 r8                   bounds, "%f"
//   year month day          bounds, "%d" of the number (a year compares as the
//                           signed year it stands for, and prints as
//                           yearToString does)
//   date family, duration   bounds by CompareTo, the value's ToString()
//   decimal integer         bounds, ToString()
//   hexBinary base64Binary  lengths, printed as hex
//   string char boolean     lengths and pattern, printed as they are
//
// A pattern the regular-expression engine cannot compile, or a match that runs
// into the engine's limits (catastrophic backtracking, see MatchesPattern),
// throws CQmValidationException "%s\nInvalid Value for %s [%s]" with the
// engine's message first.
class CPrimitiveRestrictions {
public:
    CPrimitiveRestrictions() = default;
    // Null texts count as "".
    CPrimitiveRestrictions(const char* pattern, int minLength, int maxLength, const char* minInclusive,
                           const char* maxInclusive, const char* minExclusive, const char* maxExclusive,
                           int length);
    CPrimitiveRestrictions(const CPrimitiveRestrictions&) = default;
    CPrimitiveRestrictions& operator=(const CPrimitiveRestrictions&) = default;
    virtual ~CPrimitiveRestrictions();

    const std::string& GetPattern() const { return m_pattern; }
    int GetMinLength() const { return m_minLength; }
    int GetMaxLength() const { return m_maxLength; }
    const std::string& GetMinInclusive() const { return m_minInclusive; }
    const std::string& GetMaxInclusive() const { return m_maxInclusive; }
    const std::string& GetMinExclusive() const { return m_minExclusive; }
    const std::string& GetMaxExclusive() const { return m_maxExclusive; }
    int GetLength() const { return m_length; }
    // The rule checked after the facets (null: none). Not part of Changed():
    // it prepares nothing.
    const std::shared_ptr<const CValueRule>& GetValueRule() const { return m_rule; }
    void SetValueRule(std::shared_ptr<const CValueRule> rule) { m_rule = std::move(rule); }

    void SetPattern(const std::string& pattern) {
        m_pattern = pattern;
        Changed();
    }
    void SetMinLength(int minLength) {
        m_minLength = minLength;
        Changed();
    }
    void SetMaxLength(int maxLength) {
        m_maxLength = maxLength;
        Changed();
    }
    void SetMinInclusive(const std::string& bound) {
        m_minInclusive = bound;
        Changed();
    }
    void SetMaxInclusive(const std::string& bound) {
        m_maxInclusive = bound;
        Changed();
    }
    void SetMinExclusive(const std::string& bound) {
        m_minExclusive = bound;
        Changed();
    }
    void SetMaxExclusive(const std::string& bound) {
        m_maxExclusive = bound;
        Changed();
    }
    void SetLength(int length) {
        m_length = length;
        Changed();
    }

    // Takes the value of the item type out of the variant and runs that type's
    // check. A nil variant passes. A variant of another type throws its
    // getter's CQmInvalidStateException; an item type outside 1..26 throws
    // CQmException "unknown type [%d]".
    static void CheckRestriction(const std::string& memberName, const QmVariant& value, ItemType type,
                                 const CPrimitiveRestrictions& facets);
    // The same for a value read from a document: text is what the value was
    // read from, rule the whitespace rule it was read under. Patterns apply to
    // the lexical form as the document had it, so a boolean's length and
    // pattern facets see that text after the rule ("1" against [01]), not
    // the canonical "true"; a value without document text (set by the
    // application) has only the canonical form. Every other type is checked
    // as above.
    static void CheckRestriction(const std::string& memberName, const QmVariant& value, ItemType type,
                                 const CPrimitiveRestrictions& facets, const std::string& text,
                                 CWhitespaceUtils::WhitespaceRule rule);

    // True when the value matches the whole XSD pattern. Value and pattern are
    // converted from the local encoding to UTF-8 and the pattern is translated
    // to PCRE2 syntax, knowing XML Schema's character classes:
    //   \\ stays an escaped backslash, and nothing below sees it;
    //   \s is space, tab, LF and CR only; \w every character outside the
    //   categories P, Z and C (so "_" is not in it, "+" and "$" are); \i and \c
    //   the name start and name characters of XML 1.0 fifth edition; \S \W
    //   \I \C their complements; inside brackets each becomes the class items
    //   of the same set ([\w-], [^\s]);
    //   \p{IsBasicLatin} -> [\000-\177]        \p{IsLatin-1Supplement} -> [\200-\377]
    //   \p{IsLatinExtended-A} -> [\400-\577]   \p{IsLatinExtended-B} -> [\600-\x{24F}]
    //   every other block of XML Schema's list, \p{IsX}, becomes the class of
    //   its code points, and \P{IsX} its negation; the surrogate blocks match
    //   nothing;
    //   a class subtraction [base-[sub]] becomes (?:(?!sub)[base]).
    // What XML Schema's grammar rules out and PCRE2 would read some other way
    // does not compile: a '-' inside brackets that neither comes first or
    // last nor joins the ends of a range, '[' inside brackets other than a
    // subtraction, anything after a subtraction, an empty class, and an
    // unescaped '{' that starts no quantifier.
    // The result is compiled as ^(?: ... )$ with UTF, UCP, DOLLAR_ENDONLY and
    // CR or LF as line ends (so "." matches neither, as in XML Schema).
    //
    // Compiled patterns (and compile errors) are kept process-wide, keyed by
    // the UTF-8 pattern, so each compiles once; any thread may call this.
    //
    // A pattern that does not compile throws CQmException
    // "Invalid Regular Expression: %s Error: '%s'" (the pattern as written,
    // PCRE2's message or the translation's, e.g. "empty character class"). A
    // match that exceeds the engine's limits (10,000,000 backtracking steps,
    // 64 MiB of backtracking memory) or meets a value that is not valid UTF-8
    // throws CQmException
    // "Failed to match the Regular Expression: %s Error: '%s'".
    static bool MatchesPattern(const std::string& value, const std::string& xsdPattern);

    // The facet checks of each item type.
    static void CheckHexBinary(const std::string& memberName, const CBinaryData& value,
                               const CPrimitiveRestrictions& facets);
    static void CheckBase64Binary(const std::string& memberName, const CBinaryData& value,
                                  const CPrimitiveRestrictions& facets);
    static void CheckI1(const std::string& memberName, char value, const CPrimitiveRestrictions& facets);
    static void CheckI2(const std::string& memberName, short value, const CPrimitiveRestrictions& facets);
    static void CheckI4(const std::string& memberName, std::int32_t value, const CPrimitiveRestrictions& facets);
    static void CheckI8(const std::string& memberName, std::int64_t value, const CPrimitiveRestrictions& facets);
    static void CheckUI1(const std::string& memberName, unsigned char value, const CPrimitiveRestrictions& facets);
    static void CheckUI2(const std::string& memberName, unsigned short value, const CPrimitiveRestrictions& facets);
    static void CheckUI4(const std::string& memberName, std::uint32_t value, const CPrimitiveRestrictions& facets);
    static void CheckUI8(const std::string& memberName, std::uint64_t value, const CPrimitiveRestrictions& facets);
    static void CheckR4(const std::string& memberName, float value, const CPrimitiveRestrictions& facets);
    static void CheckR8(const std::string& memberName, double value, const CPrimitiveRestrictions& facets);
    static void CheckDuration(const std::string& memberName, const CDateTimeSpan& value,
                              const CPrimitiveRestrictions& facets);
    static void CheckYearMonth(const std::string& memberName, const CDateTime& value,
                               const CPrimitiveRestrictions& facets);
    static void CheckMonthDay(const std::string& memberName, const CDateTime& value,
                              const CPrimitiveRestrictions& facets);
    static void CheckYear(const std::string& memberName, unsigned short value, const CPrimitiveRestrictions& facets);
    static void CheckMonth(const std::string& memberName, unsigned char value, const CPrimitiveRestrictions& facets);
    static void CheckDay(const std::string& memberName, unsigned char value, const CPrimitiveRestrictions& facets);
    static void CheckDate(const std::string& memberName, const CDateTime& value,
                          const CPrimitiveRestrictions& facets);
    static void CheckDateTime(const std::string& memberName, const CDateTime& value,
                              const CPrimitiveRestrictions& facets);
    static void CheckTime(const std::string& memberName, const CDateTime& value,
                          const CPrimitiveRestrictions& facets);
    static void CheckChar(const std::string& memberName, char value, const CPrimitiveRestrictions& facets);
    static void CheckString(const std::string& memberName, const std::string& value,
                            const CPrimitiveRestrictions& facets);
    static void CheckBoolean(const std::string& memberName, bool value, const CPrimitiveRestrictions& facets);
    static void CheckDecimal(const std::string& memberName, const CDecimal& value,
                             const CPrimitiveRestrictions& facets);
    static void CheckInteger(const std::string& memberName, const CBigInteger& value,
                             const CPrimitiveRestrictions& facets);

private:
    // What checks keep between calls: the compiled pattern and the parsed
    // bounds. Copies share it; a setter starts a fresh one.
    struct CPrepared;
    void Changed();
    bool MatchesOwnPattern(const std::string& value) const;
    // The bounds parsed once for an integer item type (std::int64_t or
    // std::uint64_t storage), indexed in checking order; null when not kept.
    template <class T, class Parse>
    const std::optional<T>* PreparedBounds(ItemType type, Parse parse) const;
    static void CheckLexical(const std::string& memberName, const std::string& value,
                             const CPrimitiveRestrictions& facets);
    static void CheckFacets(const std::string& memberName, const QmVariant& value, ItemType type,
                            const CPrimitiveRestrictions& facets);
    // Whether the type's facets are checked on the document's lexical form
    // when there is one; the one place to widen when more types check their
    // patterns on the lexical form.
    static bool ChecksDocumentText(ItemType type) { return type == ItemType_boolean; }

    std::string m_pattern;
    int m_minLength = -1;
    int m_maxLength = -1;
    std::string m_minInclusive;
    std::string m_maxInclusive;
    std::string m_minExclusive;
    std::string m_maxExclusive;
    int m_length = -1;
    std::shared_ptr<CPrepared> m_prepared;
    std::shared_ptr<const CValueRule> m_rule;
};

}  // namespace QmXmlLib10
