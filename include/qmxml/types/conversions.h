// Text forms of the XSD primitive types and the native values behind them.
#pragma once

#include <cstdint>
#include <string>

#include <qmxml/types/binary_data.h>
#include <qmxml/types/whitespace.h>

namespace QmXmlLib10 {

class CDecimal;
class CBigInteger;
class CDateTimeSpan;
class CDateTime;

// Stateless conversions; every operation is static.
//
// Each ...FromString first applies the whitespace rule (an unknown rule throws
// CQmException "Unknown WhitespaceRule") and parses the result. A text that
// does not convert throws CQmInvalidValueException; the value quoted in its
// message is the text after the rule.
//
// Parsing never depends on the C locale: the decimal point is always '.'.
class CConversions {
public:
    using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

    CConversions() = delete;

    // --- Integers ------------------------------------------------------------
    // i4/ui4: leading white space (as isspace) and one sign are skipped, then
    // decimal digits up to the end of the text. Beyond the 32-bit range throws
    // "The value [%s] is to large to fit in a i4" (ui4); characters after the
    // number throw "The value [%s] can not be converted to a i4" (ui4). An
    // empty text, or one of white space only, gives 0. ui4 accepts a minus
    // sign and wraps modulo 2^32 ("-1" is 4294967295).
    // i1, i2, ui1, ui2 go through i4/ui4 and then check their own range
    // ("... is to large to fit in a i1" also for values below -128).
    static std::string i1ToString(char value);
    static char i1FromString(const std::string& text, WhitespaceRule rule);
    static std::string i2ToString(short value);
    static short i2FromString(const std::string& text, WhitespaceRule rule);
    static std::string i4ToString(std::int32_t value);
    static std::int32_t i4FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui1ToString(unsigned char value);
    static unsigned char ui1FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui2ToString(unsigned short value);
    static unsigned short ui2FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui4ToString(std::uint32_t value);
    static std::uint32_t ui4FromString(const std::string& text, WhitespaceRule rule);

    // i8/ui8 are lenient: parsing stops at the first non-digit and whatever
    // follows is ignored ("12abc" is 12, "abc" is 0). Outside the range throws
    // "The value [%s] is to large to fit in a i8" (ui8).
    // ui8 reads negative texts as the bit pattern of the signed 64-bit value
    // ("-1" is 18446744073709551615, below -2^63 is too large) and positive
    // texts up to 18446744073709551615, so that every printed ui8 reads back.
    static std::string i8ToString(std::int64_t value);
    static std::int64_t i8FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui8ToString(std::uint64_t value);
    static std::uint64_t ui8FromString(const std::string& text, WhitespaceRule rule);

    // --- Floating point ------------------------------------------------------
    // Accepted: "" (quiet NaN); exactly "NaN", "1.#QNAN", "-NAN" (NaN), "-INF",
    // "INF"; otherwise decimal floating text: leading white space, an optional
    // sign, digits with an optional point (at least one digit), an optional
    // exponent. Anything else, or anything after the number, throws
    // "The value [%s] can not be converted to a r8" (r4). Values beyond the
    // range become an infinity or zero, with no error. r4 rounds the double.
    static float r4FromString(const std::string& text, WhitespaceRule rule);
    static double r8FromString(const std::string& text, WhitespaceRule rule);

    // NaN prints "NaN", infinities "INF" and "-INF"; other values "%.7g" (r4)
    // or "%.16g" (r8), or the caller's format when it is not empty, cut at 47
    // characters. A format must hold exactly one conversion of a double
    // (flags, width and precision allowed, no '*', "%%" anywhere); any other
    // throws CQmInvalidParamException "Invalid floating-point format [%s]".
    static std::string r4ToString(float value);
    static std::string r4ToString(float value, const std::string& format);
    static std::string r8ToString(double value);
    static std::string r8ToString(double value, const std::string& format);

    // --- boolean, char, string -----------------------------------------------
    // "true"/"1" and "false"/"0", any letter case.
    static std::string booleanToString(bool value);
    static bool booleanFromString(const std::string& text, WhitespaceRule rule);
    // Exactly one character (byte) after the rule.
    static std::string charToString(char value);
    static char charFromString(const std::string& text, WhitespaceRule rule);
    static std::string stringToString(const std::string& value);
    static std::string stringFromString(const std::string& text, WhitespaceRule rule);

    // --- Binary --------------------------------------------------------------
    // Upper-case hex. Bad hex text throws CQmInvalidValueException with the
    // binary data's message ("Invalid length in hex string", "Invalid char in
    // hex string [%c]").
    static std::string hexBinaryToString(const CBinaryData& value);
    static CBinaryData hexBinaryFromString(const std::string& text, WhitespaceRule rule);
    // Invalid base64 gives an empty value, as the codec defines.
    static std::string base64BinaryToString(const CBinaryData& value);
    static CBinaryData base64BinaryFromString(const std::string& text, WhitespaceRule rule);

    // --- Calendar parts printed without a value class --------------------------
    // yearToString prints the number unsigned, so a year read back from "-0001"
    // (65535) prints "65535".
    static std::string yearToString(unsigned short value);    // "%u"
    static std::string monthToString(unsigned char value);    // "--%02u"
    static std::string dayToString(unsigned char value);      // "---%02u"

    // --- Value classes -------------------------------------------------------
    // Implemented together with CDecimal, CBigInteger, CDateTimeSpan and
    // CDateTime, not in this unit.
    static std::string decimalToString(const CDecimal& value);
    // An empty format prints every digit; otherwise atoi(format) fraction digits.
    static std::string decimalToString(const CDecimal& value, const std::string& format);
    static CDecimal decimalFromString(const std::string& text, WhitespaceRule rule);
    static std::string integerToString(const CBigInteger& value);
    static CBigInteger integerFromString(const std::string& text, WhitespaceRule rule);
    static std::string durationToString(const CDateTimeSpan& value);
    static CDateTimeSpan durationFromString(const std::string& text, WhitespaceRule rule);
    static CDateTime datetimeFromString(const std::string& text, WhitespaceRule rule);
    static std::string dateToString(const CDateTime& value);
    static CDateTime dateFromString(const std::string& text, WhitespaceRule rule);
    static CDateTime timeFromString(const std::string& text, WhitespaceRule rule);
    static CDateTime yearMonthFromString(const std::string& text, WhitespaceRule rule);
    static CDateTime monthDayFromString(const std::string& text, WhitespaceRule rule);
    // The year, month and day of a parsed gYear, gMonth, gDay; the signed year
    // is returned as its unsigned 16-bit pattern.
    static unsigned short yearFromString(const std::string& text, WhitespaceRule rule);
    static unsigned char monthFromString(const std::string& text, WhitespaceRule rule);
    static unsigned char dayFromString(const std::string& text, WhitespaceRule rule);
};

}  // namespace QmXmlLib10
