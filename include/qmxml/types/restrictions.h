// The XSD facets of one simple-typed member and the checks that enforce them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <qmxml/core/enums.h>

namespace QmXmlLib10 {

class CBinaryData;
class CBigInteger;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class QmVariant;

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
//   pattern  strings, chars and booleans (on their lexical form) only, after
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

    // True when the value matches the whole XSD pattern. Value and pattern are
    // converted from the local encoding to UTF-8 and the pattern is translated
    // to PCRE2 syntax:
    //   \\ stays an escaped backslash, and the steps below never see it;
    //   \i -> ([^\W\d]|:)    \I -> ([\W\d])    \c -> (\w|\.|-|:)    \C -> ([^\w\.\-\:])
    //   \p{IsBasicLatin} -> [\000-\177]        \p{IsLatin-1Supplement} -> [\200-\377]
    //   \p{IsLatinExtended-A} -> [\400-\577]   \p{IsLatinExtended-B} -> [\600-\x{24F}]
    //   every other block of XML Schema's list, \p{IsX}, becomes the class of
    //   its code points, and \P{IsX} its negation ([^...]); the surrogate
    //   blocks match nothing. The translation is textual: inside a bracket
    //   expression these escapes are replaced all the same.
    // The result is compiled as ^(?: ... )$ with UTF, UCP, DOLLAR_ENDONLY and
    // CR or LF as line ends (so "." matches neither, as in XML Schema).
    //
    // Compiled patterns (and compile errors) are kept process-wide, keyed by
    // the UTF-8 pattern, so each compiles once; any thread may call this.
    //
    // A pattern that does not compile throws CQmException
    // "Invalid Regular Expression: %s Error: '%s'" (the pattern as written,
    // PCRE2's message). A match that exceeds the engine's limits (10,000,000
    // backtracking steps, 64 MiB of backtracking memory) or meets a value that
    // is not valid UTF-8 throws CQmException
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

    std::string m_pattern;
    int m_minLength = -1;
    int m_maxLength = -1;
    std::string m_minInclusive;
    std::string m_maxInclusive;
    std::string m_minExclusive;
    std::string m_maxExclusive;
    int m_length = -1;
    std::shared_ptr<CPrepared> m_prepared;
};

}  // namespace QmXmlLib10
