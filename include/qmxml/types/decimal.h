// Exact decimal number behind xs:decimal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <qmxml/types/big_integer.h>

namespace QmXmlLib10 {

// An integer part and a fraction, both CBigInteger carrying the value's sign,
// and the number of fraction digits (the scale): value = integer + fraction /
// 10^scale. After every operation the fraction has no trailing zero digits, so
// "1.50" prints "1.5" and a whole number prints no point.
//
// Division produces at most GetMaxDecimalPlaces() fraction digits (default 30,
// a library-wide setting to be made before use), rounded to the nearest with
// an exact half cut toward zero (1/8 at two places is 0.12, 63/500 is 0.13).
class CDecimal {
public:
    CDecimal() = default;
    // int, long and long long are distinct types here; all widths and their
    // unsigned forms are given so that no call is ambiguous.
    CDecimal(int value);
    CDecimal(long value);
    CDecimal(long long value);
    CDecimal(unsigned int value);
    CDecimal(unsigned long value);
    CDecimal(unsigned long long value);
    // Printed with 13 fraction digits in fixed notation and parsed, so a double
    // carries at most 13 fraction digits (0.1 is exactly 0.1). NaN and the
    // infinities throw the parse message ("... at position 0 [inf]").
    CDecimal(double value);
    CDecimal(const CBigInteger& value);
    // Parses the text; see Parse.
    explicit CDecimal(const char* text);
    explicit CDecimal(const std::string& text);
    CDecimal(const CDecimal&) = default;
    CDecimal(CDecimal&&) noexcept = default;
    CDecimal& operator=(const CDecimal&) = default;
    CDecimal& operator=(CDecimal&&) noexcept = default;
    ~CDecimal() = default;

    // Every digit, no trailing zeros: "-0.05", "150", "0".
    std::string ToString() const;
    // Appends what ToString() gives, without temporaries.
    void AppendText(std::string& out) const;
    // Exactly decimalPlaces fraction digits (a negative count means 0, which
    // prints no point), rounding half away from zero on the first dropped
    // digit: 2.345 gives "2.35", 0.5 with 2 gives "0.50". A value that rounds
    // to zero prints unsigned.
    std::string ToString(int decimalPlaces) const;

    // The fraction is dropped. Outside the native range these throw
    // CQmOverFlowException "The Decimal value if to large to fit into a LONG"
    // (LONGLONG, Double; the double bound is +-1.7E+308 on the integer part).
    std::int32_t ToLong() const;
    std::int64_t ToLongLong() const;
    double ToDouble() const;
    CBigInteger ToBigInteger() const { return m_integer; }

    bool GetNegative() const { return m_integer.GetNegative() || m_fraction.GetNegative(); }
    void Negate();

    CDecimal operator-() const;
    CDecimal& operator+=(const CDecimal& other);
    CDecimal& operator-=(const CDecimal& other);
    CDecimal& operator*=(const CDecimal& other);
    // A zero divisor throws CQmInvalidValueException "ERROR: Overflow in
    // operator /." ("ERROR: Overflow in operator/." for the binary form).
    CDecimal& operator/=(const CDecimal& other);
    CDecimal& operator++();
    CDecimal operator++(int);
    CDecimal& operator--();
    CDecimal operator--(int);

    friend CDecimal operator+(const CDecimal& a, const CDecimal& b);
    friend CDecimal operator-(const CDecimal& a, const CDecimal& b);
    friend CDecimal operator*(const CDecimal& a, const CDecimal& b);
    friend CDecimal operator/(const CDecimal& a, const CDecimal& b);

    friend bool operator==(const CDecimal& a, const CDecimal& b);
    friend bool operator!=(const CDecimal& a, const CDecimal& b);
    friend bool operator<(const CDecimal& a, const CDecimal& b);
    friend bool operator>(const CDecimal& a, const CDecimal& b);
    friend bool operator<=(const CDecimal& a, const CDecimal& b);
    friend bool operator>=(const CDecimal& a, const CDecimal& b);

    // 0 to 100000; anything else throws CQmInvalidParamException
    // "Invalid number of decimal places [%d]".
    static int GetMaxDecimalPlaces();
    static void SetMaxDecimalPlaces(int places);

    // The largest exponent magnitude Parse accepts.
    static constexpr int kMaxExponent = 100000;

private:
    CDecimal(const CBigInteger& integerPart, const CBigInteger& fraction, int scale);

    // Digits with at most one '.', an optional leading sign and an optional
    // exponent ('e' or 'E', optional sign, at least one digit) that moves the
    // point either way; the mantissa needs at least one digit (".5" and "5."
    // are fine). No white space. The first character that does not fit (or
    // the end of the text where a digit is missing) throws
    // CQmInvalidValueException "The string representing a Decimal, contained
    // an invalid char at position %d [%s]", positions counted from 0. An
    // exponent beyond kMaxExponent throws "The exponent of the Decimal is out
    // of range [%s]" rather than building a gigantic number. Runs on a zero
    // value only (the constructors).
    void Parse(std::string_view text);
    void Rationalise();
    // Rescales the fraction; dropping digits rounds to the nearest, an exact
    // half toward zero, with the carry reaching the integer part.
    void ChangeFractionalDivider(int newScale);
    static int Normalize(CDecimal& a, CDecimal& b);

    // The value times 10^scale, and its inverse.
    CBigInteger Unscaled() const;
    void SetUnscaled(const CBigInteger& unscaled, int scale);
    static int CompareValues(const CDecimal& a, const CDecimal& b);
    CDecimal Divide(const CDecimal& divisor, const char* zeroMessage) const;

    CBigInteger m_integer;
    CBigInteger m_fraction;
    int m_scale = 0;
};

}  // namespace QmXmlLib10
