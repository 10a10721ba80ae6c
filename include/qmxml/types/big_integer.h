// Arbitrary-precision signed integer behind xs:integer and the digit store of
// CDecimal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <qmxml/types/digit_vector.h>

namespace QmXmlLib10 {

class CDecimal;

// A sign and a magnitude kept as decimal digits, least significant first, so
// that text converts in linear time and CDecimal can move its point by moving
// digits. Multiplication and division work on base 10^9 limbs regrouped from
// the digits, which keeps 1,000-digit operands fast; the stored form stays
// decimal.
//
// Invariants: no high-order zero digits are kept (zero is the empty array) and
// zero is never negative, so -0 equals and prints as 0.
//
// Every error is a CQmInvalidValueException.
class CBigInteger {
public:
    using Digits = CDigitVector;

    CBigInteger() = default;
    // Native integers; int, long and long long are distinct types here, so all
    // widths and their unsigned forms are given to keep every call unambiguous.
    CBigInteger(int value);
    CBigInteger(long value);
    CBigInteger(long long value);
    CBigInteger(unsigned int value);
    CBigInteger(unsigned long value);
    CBigInteger(unsigned long long value);
    // The integral part (toward zero). NaN and the infinities throw
    // "The double value [%g] can not be converted to a CBigInteger".
    CBigInteger(double value);
    // The integer part of the decimal; the fraction is dropped.
    explicit CBigInteger(const CDecimal& value);
    // Text, as Parse reads it.
    explicit CBigInteger(const char* text);
    explicit CBigInteger(const std::string& text);
    CBigInteger(const CBigInteger&) = default;
    CBigInteger(CBigInteger&&) noexcept = default;
    CBigInteger& operator=(const CBigInteger&) = default;
    CBigInteger& operator=(CBigInteger&&) noexcept = default;
    virtual ~CBigInteger();

    // Surrounding space, tab, CR and LF are trimmed. What remains, if it is an
    // optional sign and decimal digits, is read as an integer; any other text
    // is read as a CDecimal (exponent allowed) and its fraction dropped
    // ("1.9" is 1, "1.5E2" is 150), so malformed text throws the decimal's
    // message, positions counted in the trimmed text. A null text is zero.
    void Parse(const char* text);
    void Parse(const std::string& text);

    // "-" for a negative value, then the digits; zero prints "0".
    std::string ToString() const;

    CBigInteger GetAbs() const;
    void Abs();
    bool GetNegative() const { return m_sign < 0; }
    void Negate();
    bool IsZero() const { return m_digits.empty(); }

    // Outside the range throw "ERROR: Value out of bound of int." and
    // "ERROR: Value out of bound of LONGLONG.".
    explicit operator int() const { return ToInt(); }
    explicit operator std::int64_t() const { return ToInt64(); }
    int ToInt() const;
    std::int64_t ToInt64() const;

    // The floor of the square root; a negative value throws
    // "ERROR: Negative Number in function SquareRoot().".
    CBigInteger SquareRoot() const;

    // 10^n.
    static CBigInteger Pow10(unsigned int n);

    CBigInteger operator-() const;
    CBigInteger& operator+=(const CBigInteger& other);
    CBigInteger& operator-=(const CBigInteger& other);
    CBigInteger& operator*=(const CBigInteger& other);
    // Truncating division: the quotient goes toward zero and the remainder
    // takes the dividend's sign (-7 / 2 is -3, -7 % 2 is -1). A zero divisor
    // throws "ERROR: Overflow in operator /=." and "ERROR: Overflow in
    // operator%=." (the binary forms "ERROR: Overflow in operator/." and
    // "ERROR: Overflow in operator%."); the operand is then unchanged.
    CBigInteger& operator/=(const CBigInteger& other);
    CBigInteger& operator%=(const CBigInteger& other);

    friend CBigInteger operator+(const CBigInteger& a, const CBigInteger& b);
    friend CBigInteger operator-(const CBigInteger& a, const CBigInteger& b);
    friend CBigInteger operator*(const CBigInteger& a, const CBigInteger& b);
    friend CBigInteger operator/(const CBigInteger& a, const CBigInteger& b);
    friend CBigInteger operator%(const CBigInteger& a, const CBigInteger& b);

    friend bool operator==(const CBigInteger& a, const CBigInteger& b);
    friend bool operator!=(const CBigInteger& a, const CBigInteger& b);
    friend bool operator<(const CBigInteger& a, const CBigInteger& b);
    friend bool operator>(const CBigInteger& a, const CBigInteger& b);
    friend bool operator<=(const CBigInteger& a, const CBigInteger& b);
    friend bool operator>=(const CBigInteger& a, const CBigInteger& b);

protected:
    friend class CDecimal;

    // sign: 1 or -1; the digits are cleaned, and a zero gets sign 1.
    CBigInteger(int sign, const Digits& digits);
    CBigInteger(int sign, Digits&& digits);

    // Magnitude helpers on digit arrays, least significant digit first. Results
    // are cleaned and may be the same array as an operand.
    static void Build(unsigned int value, Digits& digits);
    static void BuildDWORDLONG(std::uint64_t value, Digits& digits);
    // The integral part of |value|; value must be finite.
    static void BuildDouble(double value, Digits& digits);
    // Decimal digit characters, most significant first (no sign).
    static void Build(const std::string& text, Digits& digits);
    static void Clean(Digits& digits);
    static int Compare(const Digits& a, const Digits& b);
    static void Add(const Digits& a, const Digits& b, Digits& result);
    // a >= b.
    static void Subtract(const Digits& a, const Digits& b, Digits& result);
    static void Multiply(const Digits& a, char digit, Digits& result);
    static void Multiply(const Digits& a, const Digits& b, Digits& result);
    // Multiply by 10^n in place.
    static void ShiftLeft(Digits& digits, int n);
    // Number of digits, at least 1.
    static int Position(const Digits& a);
    static void Pow10(unsigned int n, Digits& digits);
    // b must not be zero.
    static void Divide(const Digits& a, const Digits& b, Digits& quotient, Digits& remainder);

    const Digits& GetDigits() const { return m_digits; }
    int GetSign() const { return m_sign; }

private:
    int m_sign = 1;
    Digits m_digits;

    // Signed addition of b (its sign multiplied by bSign) into *this.
    void AddSigned(const CBigInteger& b, int bSign);
    void DivMod(const CBigInteger& divisor, CBigInteger* quotient, CBigInteger* remainder,
                const char* zeroMessage) const;
    void SetFromInt64(std::int64_t value);
    void SetFromUInt64(std::uint64_t value);
};

}  // namespace QmXmlLib10
