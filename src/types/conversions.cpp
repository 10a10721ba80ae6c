#include "qmxml/types/conversions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

#include "qmxml/core/exception.h"
#include "types/whitespace_rule.h"

namespace QmXmlLib10 {

namespace {

using whitespace::Ruled;

// The characters the C library's number conversions skip before a number.
bool IsCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

struct ParsedInteger {
    std::uint64_t magnitude = 0;
    bool negative = false;
    bool tooLarge = false;
    // Where the conversion stopped, as strtol reports it: the start of the
    // text when no digits were found.
    std::size_t end = 0;
};

// Decimal integer as the C library reads it: white space, one sign, digits.
// tooLarge is set when the magnitude exceeds the limit for its sign.
ParsedInteger ParseInteger(const std::string& text, std::uint64_t positiveLimit,
                           std::uint64_t negativeLimit) {
    ParsedInteger result;
    const std::size_t length = text.size();
    std::size_t pos = 0;
    while (pos < length && IsCSpace(text[pos])) {
        ++pos;
    }
    if (pos < length && (text[pos] == '+' || text[pos] == '-')) {
        result.negative = text[pos] == '-';
        ++pos;
    }
    const std::size_t digitsStart = pos;
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    bool saturated = false;
    std::uint64_t magnitude = 0;
    // Nineteen digits always fit in 64 bits; only longer runs are checked.
    const std::size_t uncheckedEnd = std::min(length, digitsStart + 19);
    while (pos < uncheckedEnd && IsDigit(text[pos])) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(text[pos] - '0');
        ++pos;
    }
    while (pos < length && IsDigit(text[pos])) {
        const auto digit = static_cast<std::uint64_t>(text[pos] - '0');
        if (!saturated) {
            if (magnitude > (kMax - digit) / 10) {
                saturated = true;
            } else {
                magnitude = magnitude * 10 + digit;
            }
        }
        ++pos;
    }
    if (pos == digitsStart) {
        result.negative = false;
        result.end = 0;
        return result;
    }
    result.magnitude = magnitude;
    result.tooLarge = saturated || magnitude > (result.negative ? negativeLimit : positiveLimit);
    result.end = pos;
    return result;
}

// True when the whole text is C white space (or empty): such a text converts
// to 0 in the 32-bit parsers.
bool IsBlank(const std::string& text) {
    for (const char c : text) {
        if (!IsCSpace(c)) {
            return false;
        }
    }
    return true;
}

[[noreturn]] void ThrowTooLarge(const std::string& text, const char* type) {
    throw CQmInvalidValueException(
        FormatString("The value [%s] is to large to fit in a %s", text.c_str(), type));
}

[[noreturn]] void ThrowNotConverted(const std::string& text, const char* type) {
    throw CQmInvalidValueException(
        FormatString("The value [%s] can not be converted to a %s", text.c_str(), type));
}

// The 32-bit step shared by i1, i2 and i4. The range test comes before the
// trailing-character test, as with strtol's range error.
std::int32_t ParseI4(const std::string& text) {
    constexpr std::uint64_t kPositive = std::numeric_limits<std::int32_t>::max();
    constexpr std::uint64_t kNegative = kPositive + 1;
    const ParsedInteger parsed = ParseInteger(text, kPositive, kNegative);
    if (parsed.tooLarge) {
        ThrowTooLarge(text, "i4");
    }
    if (parsed.end != text.size() && !IsBlank(text)) {
        ThrowNotConverted(text, "i4");
    }
    if (parsed.negative) {
        return parsed.magnitude == kNegative
                   ? std::numeric_limits<std::int32_t>::min()
                   : -static_cast<std::int32_t>(parsed.magnitude);
    }
    return static_cast<std::int32_t>(parsed.magnitude);
}

std::uint32_t ParseUI4(const std::string& text) {
    // A minus sign negates modulo 2^32, so the magnitude limit is the same
    // for both signs.
    constexpr std::uint64_t kLimit = std::numeric_limits<std::uint32_t>::max();
    const ParsedInteger parsed = ParseInteger(text, kLimit, kLimit);
    if (parsed.tooLarge) {
        ThrowTooLarge(text, "ui4");
    }
    if (parsed.end != text.size() && !IsBlank(text)) {
        ThrowNotConverted(text, "ui4");
    }
    const auto value = static_cast<std::uint32_t>(parsed.magnitude);
    return parsed.negative ? static_cast<std::uint32_t>(0u - value) : value;
}

template <typename T>
std::string IntegerText(T value) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

// --- Floating point -----------------------------------------------------------

enum class Special { None, NaN, PositiveInfinity, NegativeInfinity };

Special SpecialWord(std::string_view text) {
    if (text.empty() || text == "NaN" || text == "1.#QNAN" || text == "-NAN") {
        return Special::NaN;
    }
    if (text == "-INF") {
        return Special::NegativeInfinity;
    }
    if (text == "INF") {
        return Special::PositiveInfinity;
    }
    return Special::None;
}

// Decimal floating text only: the C library would also take "inf", "nan" and
// hexadecimal forms, which are not XSD lexical forms. Returns false when the
// text is not one number with nothing after it.
bool ParseDecimalFloat(const std::string& text, double& value) {
    const char* const begin = text.data();
    const std::size_t length = text.size();
    std::size_t pos = 0;
    while (pos < length && IsCSpace(text[pos])) {
        ++pos;
    }
    bool negative = false;
    if (pos < length && (text[pos] == '+' || text[pos] == '-')) {
        negative = text[pos] == '-';
        ++pos;
    }
    const std::size_t numberStart = pos;
    std::size_t intDigits = 0;
    std::size_t leadingZeros = 0;  // zeros before the first significant digit
    bool significant = false;
    while (pos < length && IsDigit(text[pos])) {
        if (!significant && text[pos] == '0') {
            ++leadingZeros;
        } else {
            significant = true;
        }
        ++intDigits;
        ++pos;
    }
    std::size_t fracDigits = 0;
    if (pos < length && text[pos] == '.') {
        ++pos;
        while (pos < length && IsDigit(text[pos])) {
            if (!significant && text[pos] == '0') {
                ++leadingZeros;
            } else {
                significant = true;
            }
            ++fracDigits;
            ++pos;
        }
    }
    if (intDigits + fracDigits == 0) {
        return false;
    }
    long long exponent = 0;
    if (pos < length && (text[pos] == 'e' || text[pos] == 'E')) {
        std::size_t p = pos + 1;
        bool negativeExponent = false;
        if (p < length && (text[p] == '+' || text[p] == '-')) {
            negativeExponent = text[p] == '-';
            ++p;
        }
        if (p < length && IsDigit(text[p])) {
            while (p < length && IsDigit(text[p])) {
                if (exponent < 1000000000) {
                    exponent = exponent * 10 + (text[p] - '0');
                }
                ++p;
            }
            if (negativeExponent) {
                exponent = -exponent;
            }
            pos = p;
        }
    }
    if (pos != length) {
        return false;
    }
    double parsed = 0.0;
    const auto result = std::from_chars(begin + numberStart, begin + pos, parsed);
    if (result.ptr != begin + pos) {
        return false;
    }
    if (result.ec == std::errc::result_out_of_range) {
        // strtod gives an infinity on overflow and zero on underflow, without
        // failing; the power of ten of the first significant digit tells which.
        const long long power = static_cast<long long>(intDigits) -
                                static_cast<long long>(leadingZeros) - 1 + exponent;
        parsed = significant && power > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    } else if (result.ec != std::errc()) {
        return false;
    }
    value = negative ? -parsed : parsed;
    return true;
}

template <typename T>
T ParseFloat(const std::string& text, const char* type) {
    switch (SpecialWord(text)) {
    case Special::NaN:
        return std::numeric_limits<T>::quiet_NaN();
    case Special::PositiveInfinity:
        return std::numeric_limits<T>::infinity();
    case Special::NegativeInfinity:
        return -std::numeric_limits<T>::infinity();
    case Special::None:
        break;
    }
    double value = 0.0;
    if (!ParseDecimalFloat(text, value)) {
        ThrowNotConverted(text, type);
    }
    return static_cast<T>(value);
}

// A caller's format must consume exactly one double, or snprintf would read
// arguments that are not there. Width and precision are kept to three digits
// so that a format cannot ask for gigabytes of padding.
bool IsDoubleFormat(const std::string& format) {
    const char* p = format.c_str();  // snprintf stops at a zero byte too
    int conversions = 0;
    while (*p != '\0') {
        if (*p++ != '%') {
            continue;
        }
        if (*p == '%') {
            ++p;
            continue;
        }
        while (*p != '\0' && std::strchr("-+ #0", *p) != nullptr) {
            ++p;
        }
        int digits = 0;
        while (IsDigit(*p)) {
            ++p;
            ++digits;
        }
        if (digits > 3) {
            return false;
        }
        if (*p == '.') {
            ++p;
            digits = 0;
            while (IsDigit(*p)) {
                ++p;
                ++digits;
            }
            if (digits > 3) {
                return false;
            }
        }
        if (*p == 'l') {
            ++p;  // "%lf" means double as well
        }
        if (*p == '\0' || std::strchr("eEfFgGaA", *p) == nullptr) {
            return false;
        }
        ++p;
        ++conversions;
    }
    return conversions == 1;
}

std::string FloatText(double value, const std::string& format, const char* defaultFormat) {
    if (std::isnan(value)) {
        return "NaN";
    }
    if (value <= -std::numeric_limits<double>::infinity()) {
        return "-INF";
    }
    if (value >= std::numeric_limits<double>::infinity()) {
        return "INF";
    }
    const char* used = defaultFormat;
    if (!format.empty()) {
        if (!IsDoubleFormat(format)) {
            throw CQmInvalidParamException(
                FormatString("Invalid floating-point format [%s]", format.c_str()));
        }
        used = format.c_str();
    }
    char buffer[48];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int written = std::snprintf(buffer, sizeof buffer, used, value);
#pragma GCC diagnostic pop
    if (written < 0) {
        return std::string();
    }
    return std::string(buffer);  // longer output was cut at the buffer's end
}

bool EqualsIgnoreCase(const std::string& text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (text.size() != length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        char c = text[i];
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
        if (c != word[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

// --- Integers -------------------------------------------------------------------

std::string CConversions::i1ToString(char value) {
    return IntegerText(static_cast<int>(static_cast<signed char>(value)));
}

char CConversions::i1FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    const std::int32_t value = ParseI4(ruled);
    if (value < -128 || value > 127) {
        ThrowTooLarge(ruled, "i1");
    }
    return static_cast<char>(value);
}

std::string CConversions::i2ToString(short value) {
    return IntegerText(static_cast<int>(value));
}

short CConversions::i2FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    const std::int32_t value = ParseI4(ruled);
    if (value < -32768 || value > 32767) {
        ThrowTooLarge(ruled, "i2");
    }
    return static_cast<short>(value);
}

std::string CConversions::i4ToString(std::int32_t value) {
    return IntegerText(value);
}

std::int32_t CConversions::i4FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return ParseI4(Ruled(text, rule, storage));
}

std::string CConversions::ui1ToString(unsigned char value) {
    return IntegerText(static_cast<unsigned>(value));
}

unsigned char CConversions::ui1FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    const std::uint32_t value = ParseUI4(ruled);
    if (value > 255) {
        ThrowTooLarge(ruled, "ui1");
    }
    return static_cast<unsigned char>(value);
}

std::string CConversions::ui2ToString(unsigned short value) {
    return IntegerText(static_cast<unsigned>(value));
}

unsigned short CConversions::ui2FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    const std::uint32_t value = ParseUI4(ruled);
    if (value > 65535) {
        ThrowTooLarge(ruled, "ui2");
    }
    return static_cast<unsigned short>(value);
}

std::string CConversions::ui4ToString(std::uint32_t value) {
    return IntegerText(value);
}

std::uint32_t CConversions::ui4FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return ParseUI4(Ruled(text, rule, storage));
}

std::string CConversions::i8ToString(std::int64_t value) {
    return IntegerText(value);
}

std::int64_t CConversions::i8FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    constexpr std::uint64_t kPositive = std::numeric_limits<std::int64_t>::max();
    constexpr std::uint64_t kNegative = kPositive + 1;
    const ParsedInteger parsed = ParseInteger(ruled, kPositive, kNegative);
    if (parsed.tooLarge) {
        ThrowTooLarge(ruled, "i8");
    }
    // Whatever follows the number is ignored: lenient by design.
    if (parsed.negative) {
        return parsed.magnitude == kNegative ? std::numeric_limits<std::int64_t>::min()
                                             : -static_cast<std::int64_t>(parsed.magnitude);
    }
    return static_cast<std::int64_t>(parsed.magnitude);
}

std::string CConversions::ui8ToString(std::uint64_t value) {
    return IntegerText(value);
}

std::uint64_t CConversions::ui8FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    // Negative texts keep the signed range (their bit pattern is the value);
    // positive ones take the whole unsigned range so printed values read back.
    constexpr std::uint64_t kPositive = std::numeric_limits<std::uint64_t>::max();
    constexpr std::uint64_t kNegative = std::uint64_t{1} << 63;
    const ParsedInteger parsed = ParseInteger(ruled, kPositive, kNegative);
    if (parsed.tooLarge) {
        ThrowTooLarge(ruled, "ui8");
    }
    return parsed.negative ? 0u - parsed.magnitude : parsed.magnitude;
}

// --- Floating point -------------------------------------------------------------

float CConversions::r4FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return ParseFloat<float>(Ruled(text, rule, storage), "r4");
}

double CConversions::r8FromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return ParseFloat<double>(Ruled(text, rule, storage), "r8");
}

std::string CConversions::r4ToString(float value) {
    return FloatText(static_cast<double>(value), std::string(), "%.7g");
}

std::string CConversions::r4ToString(float value, const std::string& format) {
    return FloatText(static_cast<double>(value), format, "%.7g");
}

std::string CConversions::r8ToString(double value) {
    return FloatText(value, std::string(), "%.16g");
}

std::string CConversions::r8ToString(double value, const std::string& format) {
    return FloatText(value, format, "%.16g");
}

// --- boolean, char, string --------------------------------------------------------

std::string CConversions::booleanToString(bool value) {
    return value ? "true" : "false";
}

bool CConversions::booleanFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    if (EqualsIgnoreCase(ruled, "true")) {
        return true;
    }
    if (EqualsIgnoreCase(ruled, "false")) {
        return false;
    }
    if (ruled == "1") {
        return true;
    }
    if (ruled == "0") {
        return false;
    }
    throw CQmInvalidValueException(FormatString(
        "A Boolean Value read from an XML document was invalid [%s]. Valid values are "
        "'true', 'false', '1', or '0'",
        ruled.c_str()));
}

std::string CConversions::charToString(char value) {
    return std::string(1, value);
}

char CConversions::charFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    if (ruled.size() != 1) {
        throw CQmInvalidValueException(FormatString(
            "The value [%s] can not be a char as it is either empty of greater than 1 char long",
            ruled.c_str()));
    }
    return ruled[0];
}

std::string CConversions::stringToString(const std::string& value) {
    return value;
}

std::string CConversions::stringFromString(const std::string& text, WhitespaceRule rule) {
    return CWhitespaceUtils::ApplyRule(rule, text);
}

// --- Binary ---------------------------------------------------------------------

std::string CConversions::hexBinaryToString(const CBinaryData& value) {
    return value.GetAsHexString();
}

CBinaryData CConversions::hexBinaryFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    CBinaryData data;
    try {
        data.SetAsHexString(ruled.c_str());
    } catch (const CQmInvalidValueException&) {
        throw;
    } catch (const CQmException& e) {
        // Bad text is an invalid value here, whatever layer found it.
        throw CQmInvalidValueException(e.GetMessage());
    }
    return data;
}

std::string CConversions::base64BinaryToString(const CBinaryData& value) {
    return value.GetAsBase64();
}

CBinaryData CConversions::base64BinaryFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = Ruled(text, rule, storage);
    CBinaryData data;
    data.SetAsBase64(ruled.c_str());
    return data;
}

// --- Calendar parts -----------------------------------------------------------------

std::string CConversions::yearToString(unsigned short value) {
    return IntegerText(static_cast<unsigned>(value));
}

std::string CConversions::monthToString(unsigned char value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "--%02u", static_cast<unsigned>(value));
    return buffer;
}

std::string CConversions::dayToString(unsigned char value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "---%02u", static_cast<unsigned>(value));
    return buffer;
}

}  // namespace QmXmlLib10
