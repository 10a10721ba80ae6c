#include "qmxml/types/decimal.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {

using Digits = CBigInteger::Digits;

constexpr int kMaxDecimalPlacesLimit = 100000;

// Library-wide, set before use; a plain int so it needs no start-up order.
int g_maxDecimalPlaces = 30;

// The conversion bounds, built once on first use.
const CBigInteger& MaxLong() { static const CBigInteger v("2147483647"); return v; }
const CBigInteger& MinLong() { static const CBigInteger v("-2147483648"); return v; }
const CBigInteger& MaxLongLong() { static const CBigInteger v("9223372036854775807"); return v; }
const CBigInteger& MinLongLong() { static const CBigInteger v("-9223372036854775808"); return v; }
const CBigInteger& MaxDouble() { static const CBigInteger v(std::string("17") + std::string(307, '0')); return v; }
const CBigInteger& MinDouble() { static const CBigInteger v(-MaxDouble()); return v; }

[[noreturn]] void ThrowScale() { throw CQmOverFlowException("The Decimal scale is out of range"); }

int CheckedScale(long long scale) {
    if (scale < 0 || scale > std::numeric_limits<int>::max()) {
        ThrowScale();
    }
    return static_cast<int>(scale);
}

}  // namespace

// --- Construction -------------------------------------------------------------------

CDecimal::CDecimal(int value) : m_integer(value) {}
CDecimal::CDecimal(long value) : m_integer(value) {}
CDecimal::CDecimal(long long value) : m_integer(value) {}
CDecimal::CDecimal(unsigned int value) : m_integer(value) {}
CDecimal::CDecimal(unsigned long value) : m_integer(value) {}
CDecimal::CDecimal(unsigned long long value) : m_integer(value) {}
CDecimal::CDecimal(const CBigInteger& value) : m_integer(value) {}

CDecimal::CDecimal(double value) {
    // Fixed notation with 13 fraction digits, as "%.13f" but independent of the
    // C locale's decimal point.
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 13);
    Parse(std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)));
}

CDecimal::CDecimal(const char* text) { Parse(text != nullptr ? std::string_view(text) : std::string_view()); }

CDecimal::CDecimal(const std::string& text) { Parse(text); }

CDecimal::CDecimal(const CBigInteger& integerPart, const CBigInteger& fraction, int scale)
    : m_integer(integerPart), m_fraction(fraction), m_scale(scale) {}

void CDecimal::Parse(std::string_view text) {
    const std::size_t n = text.size();
    const auto fail = [&text](std::size_t position) {
        throw CQmInvalidValueException(
            FormatString("The string representing a Decimal, contained an invalid char at position %d [%s]",
                         static_cast<int>(std::min<std::size_t>(position, std::numeric_limits<int>::max())),
                         std::string(text).c_str()));
    };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };

    std::size_t pos = 0;
    int sign = 1;
    if (pos < n && (text[pos] == '+' || text[pos] == '-')) {
        sign = text[pos] == '-' ? -1 : 1;
        ++pos;
    }
    // One scan finds the digits before and after the point; they are read
    // from the text afterwards, straight into their final places.
    const std::size_t mantissaStart = pos;
    std::size_t pointAt = std::string_view::npos;
    for (; pos < n; ++pos) {
        const char c = text[pos];
        if (c == '.' && pointAt == std::string_view::npos) {
            pointAt = pos;
        } else if (!isDigit(c)) {
            break;
        }
    }
    const std::size_t mantissaEnd = pos;
    const bool point = pointAt != std::string_view::npos;
    const std::size_t integerDigits = (point ? pointAt : mantissaEnd) - mantissaStart;
    const std::size_t fractionDigits = point ? mantissaEnd - pointAt - 1 : 0;
    const std::size_t count = integerDigits + fractionDigits;
    if (count == 0) {
        fail(pos);
    }
    long long exponent = 0;
    if (pos < n && (text[pos] == 'e' || text[pos] == 'E')) {
        ++pos;
        int exponentSign = 1;
        if (pos < n && (text[pos] == '+' || text[pos] == '-')) {
            exponentSign = text[pos] == '-' ? -1 : 1;
            ++pos;
        }
        const std::size_t start = pos;
        for (; pos < n && isDigit(text[pos]); ++pos) {
            if (exponent <= kMaxExponent) {  // saturates; the range test follows
                exponent = exponent * 10 + (text[pos] - '0');
            }
        }
        if (pos == start) {
            fail(pos);
        }
        exponent *= exponentSign;
    }
    if (pos != n) {
        fail(pos);
    }
    if (exponent > kMaxExponent || exponent < -kMaxExponent) {
        throw CQmInvalidValueException(
            FormatString("The exponent of the Decimal is out of range [%s]", std::string(text).c_str()));
    }
    const long long scale = static_cast<long long>(fractionDigits) - exponent;
    CheckedScale(std::max(scale, 0LL));

    // Mantissa digit i, most significant first, skipping the point.
    const char* const integerText = text.data() + mantissaStart;
    const char* const fractionText = point ? text.data() + pointAt + 1 : integerText + integerDigits;
    const auto digitAt = [&](std::size_t i) {
        return static_cast<signed char>((i < integerDigits ? integerText[i] : fractionText[i - integerDigits]) - '0');
    };
    // The last `split` digits belong to the fraction, the others to the
    // integer part, which gains -scale zeros when the exponent moves the
    // point past the last digit.
    const std::size_t split = scale > 0 ? std::min(count, static_cast<std::size_t>(scale)) : 0;
    const std::size_t integerEnd = count - split;
    std::size_t first = 0;  // first significant digit
    while (first < integerEnd && digitAt(first) == 0) {
        ++first;
    }
    // Written in place: both parts are still zero here, and a part that
    // stays zero keeps the positive sign.
    if (first < integerEnd) {
        const std::size_t zeros = scale < 0 ? static_cast<std::size_t>(-scale) : 0;
        Digits& digits = m_integer.m_digits;
        digits.assign(integerEnd - first + zeros, 0);
        for (std::size_t i = first, k = digits.size(); i < integerEnd; ++i) {
            digits[--k] = digitAt(i);
        }
        m_integer.m_sign = sign;
    }
    // The fraction without its leading and trailing zeros; the scale loses
    // the trailing ones.
    std::size_t low = count;
    while (low > integerEnd && digitAt(low - 1) == 0) {
        --low;
    }
    if (low == integerEnd) {
        m_scale = 0;
        return;
    }
    std::size_t high = integerEnd;
    while (digitAt(high) == 0) {
        ++high;
    }
    Digits& digits = m_fraction.m_digits;
    digits.resize(low - high);
    for (std::size_t i = high, k = digits.size(); i < low; ++i) {
        digits[--k] = digitAt(i);
    }
    m_fraction.m_sign = sign;
    m_scale = static_cast<int>(scale - static_cast<long long>(count - low));
}

// --- Representation -------------------------------------------------------------------

CBigInteger CDecimal::Unscaled() const {
    // Fraction digits padded to the scale below the integer digits.
    const Digits& fraction = m_fraction.GetDigits();
    const Digits& integer = m_integer.GetDigits();
    Digits digits(static_cast<std::size_t>(m_scale) + integer.size(), 0);
    std::copy(fraction.begin(), fraction.end(), digits.begin());
    std::copy(integer.begin(), integer.end(), digits.begin() + m_scale);
    return CBigInteger(GetNegative() ? -1 : 1, std::move(digits));
}

void CDecimal::SetUnscaled(const CBigInteger& unscaled, int scale) {
    const Digits& digits = unscaled.GetDigits();
    const std::size_t split = std::min(digits.size(), static_cast<std::size_t>(scale));
    const int sign = unscaled.GetSign();
    m_fraction = CBigInteger(sign, Digits(digits.begin(), digits.begin() + split));
    m_integer = CBigInteger(sign, Digits(digits.begin() + split, digits.end()));
    m_scale = scale;
}

void CDecimal::Rationalise() {
    if (m_fraction.IsZero()) {
        m_scale = 0;
        return;
    }
    Digits& digits = m_fraction.m_digits;
    const auto firstNonZero = std::find_if(digits.begin(), digits.end(), [](signed char d) { return d != 0; });
    m_scale -= static_cast<int>(firstNonZero - digits.begin());
    digits.erase(digits.begin(), firstNonZero);
}

void CDecimal::ChangeFractionalDivider(int newScale) {
    if (newScale >= m_scale) {
        CBigInteger::ShiftLeft(m_fraction.m_digits, newScale - m_scale);
        m_scale = newScale;
        return;
    }
    const CBigInteger unscaled = Unscaled();
    const Digits& digits = unscaled.GetDigits();
    const std::size_t dropped = static_cast<std::size_t>(m_scale - newScale);
    const auto digitAt = [&digits](std::size_t i) { return i < digits.size() ? digits[i] : 0; };
    // Compare the dropped digits with half of 10^dropped, i.e. 5 then zeros.
    bool up = digitAt(dropped - 1) > 5;
    if (digitAt(dropped - 1) == 5) {
        const auto end = digits.begin() + static_cast<std::ptrdiff_t>(std::min(dropped - 1, digits.size()));
        up = std::any_of(digits.begin(), end, [](signed char d) { return d != 0; });
    }
    Digits kept;
    if (digits.size() > dropped) {
        kept.assign(digits.begin() + static_cast<std::ptrdiff_t>(dropped), digits.end());
    }
    CBigInteger magnitude(1, std::move(kept));
    if (up) {
        magnitude += CBigInteger(1);
    }
    SetUnscaled(CBigInteger(unscaled.GetSign(), magnitude.GetDigits()), newScale);
}

int CDecimal::Normalize(CDecimal& a, CDecimal& b) {
    const int scale = std::max(a.m_scale, b.m_scale);
    a.ChangeFractionalDivider(scale);
    b.ChangeFractionalDivider(scale);
    return scale;
}

// --- Text -------------------------------------------------------------------------------

std::string CDecimal::ToString() const {
    std::string text;
    AppendText(text);
    return text;
}

void CDecimal::AppendText(std::string& out) const {
    // Digits are stored least significant first; none stands for zero.
    const auto appendMagnitude = [&out](const CBigInteger::Digits& digits) {
        if (digits.empty()) {
            out.push_back('0');
            return;
        }
        for (std::size_t i = digits.size(); i-- > 0;) {
            out.push_back(static_cast<char>('0' + digits[i]));
        }
    };
    if (m_fraction.IsZero()) {
        if (m_integer.GetNegative()) {
            out.push_back('-');
        }
        appendMagnitude(m_integer.GetDigits());
        return;
    }
    if (GetNegative()) {
        out.push_back('-');
    }
    appendMagnitude(m_integer.GetDigits());
    out.push_back('.');
    const std::size_t fractionDigits = m_fraction.GetDigits().size();
    const auto scale = static_cast<std::size_t>(m_scale);
    out.append(scale - std::min(fractionDigits, scale), '0');
    appendMagnitude(m_fraction.GetDigits());
}

std::string CDecimal::ToString(int decimalPlaces) const {
    const int places = std::max(decimalPlaces, 0);
    Digits digits = Unscaled().GetDigits();
    if (places >= m_scale) {
        CBigInteger::ShiftLeft(digits, places - m_scale);
    } else {
        const std::size_t dropped = static_cast<std::size_t>(m_scale - places);
        const bool up = dropped <= digits.size() && digits[dropped - 1] >= 5;
        digits.erase(digits.begin(), digits.begin() + static_cast<std::ptrdiff_t>(std::min(dropped, digits.size())));
        if (up) {
            CBigInteger::Add(digits, Digits{1}, digits);
        }
    }
    std::string text = (GetNegative() && !digits.empty()) ? "-" : "";
    // At least one digit before the point.
    const std::size_t width = std::max(digits.size(), static_cast<std::size_t>(places) + 1);
    for (std::size_t i = width; i-- > 0;) {
        text.push_back(static_cast<char>('0' + (i < digits.size() ? digits[i] : 0)));
        if (i == static_cast<std::size_t>(places) && places > 0) {
            text.push_back('.');
        }
    }
    return text;
}

// --- Conversions ----------------------------------------------------------------------------

std::int32_t CDecimal::ToLong() const {
    if (m_integer > MaxLong() || m_integer < MinLong()) {
        throw CQmOverFlowException("The Decimal value if to large to fit into a LONG");
    }
    return static_cast<std::int32_t>(m_integer.ToInt64());
}

std::int64_t CDecimal::ToLongLong() const {
    if (m_integer > MaxLongLong() || m_integer < MinLongLong()) {
        throw CQmOverFlowException("The Decimal value if to large to fit into a LONGLONG");
    }
    return m_integer.ToInt64();
}

double CDecimal::ToDouble() const {
    if (m_integer > MaxDouble() || m_integer < MinDouble()) {
        throw CQmOverFlowException("The Decimal value if to large to fit into a Double");
    }
    // Correctly rounded from the exact text, whatever the C locale.
    const std::string text = ToString();
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// --- Arithmetic --------------------------------------------------------------------------------

void CDecimal::Negate() {
    m_integer.Negate();
    m_fraction.Negate();
}

CDecimal CDecimal::operator-() const {
    CDecimal result(*this);
    result.Negate();
    return result;
}

CDecimal& CDecimal::operator+=(const CDecimal& other) {
    CDecimal b(other);
    const int scale = Normalize(*this, b);
    SetUnscaled(Unscaled() + b.Unscaled(), scale);
    Rationalise();
    return *this;
}

CDecimal& CDecimal::operator-=(const CDecimal& other) {
    CDecimal b(other);
    const int scale = Normalize(*this, b);
    SetUnscaled(Unscaled() - b.Unscaled(), scale);
    Rationalise();
    return *this;
}

CDecimal& CDecimal::operator*=(const CDecimal& other) {
    const int scale = CheckedScale(static_cast<long long>(m_scale) + other.m_scale);
    SetUnscaled(Unscaled() * other.Unscaled(), scale);
    Rationalise();
    return *this;
}

CDecimal CDecimal::Divide(const CDecimal& divisor, const char* zeroMessage) const {
    if (divisor.m_integer.IsZero() && divisor.m_fraction.IsZero()) {
        throw CQmInvalidValueException(zeroMessage);
    }
    const int places = g_maxDecimalPlaces;
    // a/b * 10^places = (Ua * 10^(sb + places)) / (Ub * 10^sa); only the net
    // power of ten is applied, to the side it belongs to.
    Digits numerator = Unscaled().GetDigits();
    Digits denominator = divisor.Unscaled().GetDigits();
    const long long shift = static_cast<long long>(divisor.m_scale) + places - m_scale;
    if (shift >= 0) {
        CBigInteger::ShiftLeft(numerator, CheckedScale(shift));
    } else {
        CBigInteger::ShiftLeft(denominator, CheckedScale(-shift));
    }
    Digits quotient;
    Digits remainder;
    CBigInteger::Divide(numerator, denominator, quotient, remainder);
    // Nearest, an exact half toward zero: round up only when 2r > d.
    Digits twice;
    CBigInteger::Add(remainder, remainder, twice);
    if (CBigInteger::Compare(twice, denominator) > 0) {
        CBigInteger::Add(quotient, Digits{1}, quotient);
    }
    CDecimal result;
    result.SetUnscaled(CBigInteger(GetNegative() != divisor.GetNegative() ? -1 : 1, std::move(quotient)), places);
    result.Rationalise();
    return result;
}

CDecimal& CDecimal::operator/=(const CDecimal& other) {
    *this = Divide(other, "ERROR: Overflow in operator /.");
    return *this;
}

CDecimal& CDecimal::operator++() { return *this += CDecimal(1); }

CDecimal CDecimal::operator++(int) {
    CDecimal before(*this);
    *this += CDecimal(1);
    return before;
}

CDecimal& CDecimal::operator--() { return *this -= CDecimal(1); }

CDecimal CDecimal::operator--(int) {
    CDecimal before(*this);
    *this -= CDecimal(1);
    return before;
}

CDecimal operator+(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result += b;
    return result;
}

CDecimal operator-(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result -= b;
    return result;
}

CDecimal operator*(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result *= b;
    return result;
}

CDecimal operator/(const CDecimal& a, const CDecimal& b) { return a.Divide(b, "ERROR: Overflow in operator/."); }

// --- Comparison -----------------------------------------------------------------------------------

int CDecimal::CompareValues(const CDecimal& a, const CDecimal& b) {
    const bool negativeA = a.GetNegative();
    if (negativeA != b.GetNegative()) {
        return negativeA ? -1 : 1;
    }
    CDecimal x(a);
    CDecimal y(b);
    Normalize(x, y);
    const int c = CBigInteger::Compare(x.Unscaled().GetDigits(), y.Unscaled().GetDigits());
    return negativeA ? -c : c;
}

bool operator==(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) == 0; }
bool operator!=(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) != 0; }
bool operator<(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) < 0; }
bool operator>(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) > 0; }
bool operator<=(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) <= 0; }
bool operator>=(const CDecimal& a, const CDecimal& b) { return CDecimal::CompareValues(a, b) >= 0; }

// --- Settings ---------------------------------------------------------------------------------------

int CDecimal::GetMaxDecimalPlaces() { return g_maxDecimalPlaces; }

void CDecimal::SetMaxDecimalPlaces(int places) {
    if (places < 0 || places > kMaxDecimalPlacesLimit) {
        throw CQmInvalidParamException(FormatString("Invalid number of decimal places [%d]", places));
    }
    g_maxDecimalPlaces = places;
}

}  // namespace QmXmlLib10
