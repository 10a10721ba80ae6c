#include "qmxml/types/big_integer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "qmxml/core/exception.h"
#include "qmxml/types/decimal.h"

namespace QmXmlLib10 {

void CDigitVector::Grow(size_type count) {
    if (count > UINT32_MAX) throw std::bad_alloc();
    size_type capacity = 2 * static_cast<size_type>(m_capacity);
    if (capacity < count) capacity = count;
    if (capacity > UINT32_MAX) capacity = UINT32_MAX;
    auto* bigger = new signed char[capacity];
    std::memcpy(bigger, data(), m_size);
    if (!IsInline()) delete[] m_heap;
    m_heap = bigger;
    m_capacity = static_cast<std::uint32_t>(capacity);
}


namespace {

using Digits = CBigInteger::Digits;
using Limbs = std::vector<std::uint32_t>;

constexpr std::uint32_t kLimbBase = 1000000000u;  // 10^9: nine decimal digits per limb
constexpr int kLimbDigits = 9;

[[noreturn]] void ThrowInvalid(const char* message) { throw CQmInvalidValueException(message); }

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Nine digits per limb, least significant first; no high zero limbs.
Limbs ToLimbs(const Digits& digits) {
    Limbs limbs((digits.size() + kLimbDigits - 1) / kLimbDigits);
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        const std::size_t low = i * kLimbDigits;
        const std::size_t high = std::min(low + kLimbDigits, digits.size());
        std::uint32_t value = 0;
        for (std::size_t k = high; k-- > low;) {
            value = value * 10 + static_cast<std::uint32_t>(digits[k]);
        }
        limbs[i] = value;
    }
    while (!limbs.empty() && limbs.back() == 0) {
        limbs.pop_back();
    }
    return limbs;
}

void FromLimbs(const Limbs& limbs, Digits& digits) {
    digits.assign(limbs.size() * kLimbDigits, 0);
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        std::uint32_t value = limbs[i];
        for (int k = 0; k < kLimbDigits; ++k) {
            digits[i * kLimbDigits + k] = static_cast<signed char>(value % 10);
            value /= 10;
        }
    }
    while (!digits.empty() && digits.back() == 0) {
        digits.pop_back();
    }
}

// limbs * factor + carry in place; factor < kLimbBase.
void MultiplyLimbsSmall(Limbs& limbs, std::uint32_t factor) {
    std::uint64_t carry = 0;
    for (auto& limb : limbs) {
        const std::uint64_t t = static_cast<std::uint64_t>(limb) * factor + carry;
        limb = static_cast<std::uint32_t>(t % kLimbBase);
        carry = t / kLimbBase;
    }
    if (carry != 0) {
        limbs.push_back(static_cast<std::uint32_t>(carry));
    }
}

// Divides in place by a single limb and returns the remainder.
std::uint32_t DivideLimbsSmall(Limbs& limbs, std::uint32_t divisor) {
    std::uint64_t rem = 0;
    for (std::size_t i = limbs.size(); i-- > 0;) {
        const std::uint64_t cur = rem * kLimbBase + limbs[i];
        limbs[i] = static_cast<std::uint32_t>(cur / divisor);
        rem = cur % divisor;
    }
    while (!limbs.empty() && limbs.back() == 0) {
        limbs.pop_back();
    }
    return static_cast<std::uint32_t>(rem);
}

// Long division of normalised limbs (Knuth's algorithm D); u >= v, v has at
// least two limbs.
void DivideLimbs(Limbs u, Limbs v, Limbs& q, Limbs& r) {
    const std::size_t n = v.size();
    const std::size_t m = u.size() - n;
    // Scale so that the top divisor limb is at least half the base; the
    // quotient estimate is then off by at most two.
    const std::uint32_t d = kLimbBase / (v.back() + 1);
    MultiplyLimbsSmall(v, d);
    u.push_back(0);
    {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i + 1 < u.size(); ++i) {
            const std::uint64_t t = static_cast<std::uint64_t>(u[i]) * d + carry;
            u[i] = static_cast<std::uint32_t>(t % kLimbBase);
            carry = t / kLimbBase;
        }
        u.back() = static_cast<std::uint32_t>(carry);
    }
    q.assign(m + 1, 0);
    Limbs low(n);
    Limbs high(n);
    const std::uint64_t vTop = v[n - 1];
    const std::uint64_t vNext = v[n - 2];
    for (std::size_t j = m + 1; j-- > 0;) {
        const std::uint64_t num = static_cast<std::uint64_t>(u[j + n]) * kLimbBase + u[j + n - 1];
        std::uint64_t qhat = num / vTop;
        std::uint64_t rhat = num % vTop;
        while (qhat >= kLimbBase || qhat * vNext > rhat * kLimbBase + u[j + n - 2]) {
            --qhat;
            rhat += vTop;
            if (rhat >= kLimbBase) {
                break;
            }
        }
        // u[j..j+n] -= qhat * v. The limb products are split first, so the
        // divisions stay out of the borrow chain.
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint64_t p = qhat * v[i];
            high[i] = static_cast<std::uint32_t>(p / kLimbBase);
            low[i] = static_cast<std::uint32_t>(p - static_cast<std::uint64_t>(high[i]) * kLimbBase);
        }
        std::int64_t borrow = 0;
        for (std::size_t i = 0; i < n; ++i) {
            std::int64_t t = static_cast<std::int64_t>(u[i + j]) - low[i] - (i > 0 ? high[i - 1] : 0) - borrow;
            borrow = 0;
            while (t < 0) {  // at most twice: t >= -2 * 10^9
                t += kLimbBase;
                ++borrow;
            }
            u[i + j] = static_cast<std::uint32_t>(t);
        }
        const std::uint64_t carry = high[n - 1];
        std::int64_t top = static_cast<std::int64_t>(u[j + n]) - static_cast<std::int64_t>(carry) - borrow;
        if (top < 0) {
            // The estimate was one too large: add the divisor back once.
            --qhat;
            std::uint64_t c = 0;
            for (std::size_t i = 0; i < n; ++i) {
                const std::uint64_t t = static_cast<std::uint64_t>(u[i + j]) + v[i] + c;
                u[i + j] = static_cast<std::uint32_t>(t % kLimbBase);
                c = t / kLimbBase;
            }
            top += static_cast<std::int64_t>(c);  // the carry out cancels the borrow: top is 0
        }
        u[j + n] = static_cast<std::uint32_t>(top);
        q[j] = static_cast<std::uint32_t>(qhat);
    }
    while (!q.empty() && q.back() == 0) {
        q.pop_back();
    }
    u.resize(n);
    while (!u.empty() && u.back() == 0) {
        u.pop_back();
    }
    DivideLimbsSmall(u, d);
    r = std::move(u);
}

// Exactly an optional sign and one or more digits.
bool IsPlainInteger(const char* begin, const char* end) {
    if (begin != end && (*begin == '+' || *begin == '-')) {
        ++begin;
    }
    if (begin == end) {
        return false;
    }
    for (; begin != end; ++begin) {
        if (*begin < '0' || *begin > '9') {
            return false;
        }
    }
    return true;
}

}  // namespace

// --- Construction -------------------------------------------------------------

CBigInteger::CBigInteger(int value) { SetFromInt64(value); }
CBigInteger::CBigInteger(long value) { SetFromInt64(value); }
CBigInteger::CBigInteger(long long value) { SetFromInt64(value); }
CBigInteger::CBigInteger(unsigned int value) { SetFromUInt64(value); }
CBigInteger::CBigInteger(unsigned long value) { SetFromUInt64(value); }
CBigInteger::CBigInteger(unsigned long long value) { SetFromUInt64(value); }

CBigInteger::CBigInteger(double value) {
    BuildDouble(value, m_digits);
    m_sign = (value < 0 && !m_digits.empty()) ? -1 : 1;
}

CBigInteger::CBigInteger(const CDecimal& value) : CBigInteger(value.ToBigInteger()) {}

CBigInteger::CBigInteger(const char* text) { Parse(text); }

CBigInteger::CBigInteger(const std::string& text) { Parse(text); }

CBigInteger::CBigInteger(int sign, const Digits& digits) : m_sign(sign < 0 ? -1 : 1), m_digits(digits) {
    Clean(m_digits);
    if (m_digits.empty()) {
        m_sign = 1;
    }
}

CBigInteger::CBigInteger(int sign, Digits&& digits) : m_sign(sign < 0 ? -1 : 1), m_digits(std::move(digits)) {
    Clean(m_digits);
    if (m_digits.empty()) {
        m_sign = 1;
    }
}

CBigInteger::~CBigInteger() = default;

void CBigInteger::SetFromInt64(std::int64_t value) {
    // Negate in unsigned arithmetic so that the minimum has a magnitude too.
    const std::uint64_t magnitude =
        value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    BuildDWORDLONG(magnitude, m_digits);
    m_sign = value < 0 ? -1 : 1;
}

void CBigInteger::SetFromUInt64(std::uint64_t value) {
    BuildDWORDLONG(value, m_digits);
    m_sign = 1;
}

void CBigInteger::Parse(const char* text) {
    if (text == nullptr) {
        *this = CBigInteger();
        return;
    }
    Parse(std::string(text));
}

void CBigInteger::Parse(const std::string& text) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    while (begin != end && IsBlank(*begin)) {
        ++begin;
    }
    while (end != begin && IsBlank(end[-1])) {
        --end;
    }
    if (!IsPlainInteger(begin, end)) {
        *this = CDecimal(std::string(begin, end)).ToBigInteger();
        return;
    }
    int sign = 1;
    if (*begin == '+' || *begin == '-') {
        sign = *begin == '-' ? -1 : 1;
        ++begin;
    }
    Digits digits(static_cast<std::size_t>(end - begin));
    for (std::size_t i = 0; i < digits.size(); ++i) {
        digits[i] = static_cast<signed char>(end[-1 - static_cast<std::ptrdiff_t>(i)] - '0');
    }
    *this = CBigInteger(sign, std::move(digits));
}

std::string CBigInteger::ToString() const {
    if (m_digits.empty()) {
        return "0";
    }
    std::string text;
    text.reserve(m_digits.size() + 1);
    if (m_sign < 0) {
        text.push_back('-');
    }
    for (std::size_t i = m_digits.size(); i-- > 0;) {
        text.push_back(static_cast<char>('0' + m_digits[i]));
    }
    return text;
}

// --- Sign -----------------------------------------------------------------------

CBigInteger CBigInteger::GetAbs() const {
    CBigInteger result(*this);
    result.m_sign = 1;
    return result;
}

void CBigInteger::Abs() { m_sign = 1; }

void CBigInteger::Negate() {
    if (!m_digits.empty()) {
        m_sign = -m_sign;
    }
}

CBigInteger CBigInteger::operator-() const {
    CBigInteger result(*this);
    result.Negate();
    return result;
}

// --- Native conversions -----------------------------------------------------------

std::int64_t CBigInteger::ToInt64() const {
    constexpr std::uint64_t kMaxMagnitude = std::uint64_t{1} << 63;  // |INT64_MIN|
    const char* message = "ERROR: Value out of bound of LONGLONG.";
    if (m_digits.size() > 19) {
        ThrowInvalid(message);
    }
    std::uint64_t magnitude = 0;  // 19 digits always fit in 64 unsigned bits
    for (std::size_t i = m_digits.size(); i-- > 0;) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(m_digits[i]);
    }
    if (m_sign < 0) {
        if (magnitude > kMaxMagnitude) {
            ThrowInvalid(message);
        }
        return magnitude == kMaxMagnitude ? std::numeric_limits<std::int64_t>::min()
                                          : -static_cast<std::int64_t>(magnitude);
    }
    if (magnitude >= kMaxMagnitude) {
        ThrowInvalid(message);
    }
    return static_cast<std::int64_t>(magnitude);
}

int CBigInteger::ToInt() const {
    const char* message = "ERROR: Value out of bound of int.";
    if (m_digits.size() > 10) {
        ThrowInvalid(message);
    }
    const std::int64_t value = ToInt64();
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
        ThrowInvalid(message);
    }
    return static_cast<int>(value);
}

// --- Square root and powers ---------------------------------------------------------

CBigInteger CBigInteger::SquareRoot() const {
    if (m_sign < 0) {
        ThrowInvalid("ERROR: Negative Number in function SquareRoot().");
    }
    if (m_digits.empty()) {
        return CBigInteger();
    }
    // 10^ceil(digits/2) is at or above the root, so Newton's iteration falls
    // monotonically onto the floor of the root and then stops decreasing.
    const CBigInteger two(2);
    CBigInteger x = Pow10(static_cast<unsigned int>((m_digits.size() + 1) / 2));
    for (;;) {
        CBigInteger next = (x + *this / x) / two;
        if (next >= x) {
            return x;
        }
        x = std::move(next);
    }
}

CBigInteger CBigInteger::Pow10(unsigned int n) {
    Digits digits;
    Pow10(n, digits);
    return CBigInteger(1, std::move(digits));
}

// --- Arithmetic ------------------------------------------------------------------------

void CBigInteger::AddSigned(const CBigInteger& b, int bSign) {
    Digits result;
    int sign = m_sign;
    if (m_sign == bSign) {
        Add(m_digits, b.m_digits, result);
    } else if (Compare(m_digits, b.m_digits) >= 0) {
        Subtract(m_digits, b.m_digits, result);
    } else {
        Subtract(b.m_digits, m_digits, result);
        sign = bSign;
    }
    *this = CBigInteger(sign, std::move(result));
}

CBigInteger& CBigInteger::operator+=(const CBigInteger& other) {
    AddSigned(other, other.m_sign);
    return *this;
}

CBigInteger& CBigInteger::operator-=(const CBigInteger& other) {
    AddSigned(other, other.m_digits.empty() ? 1 : -other.m_sign);
    return *this;
}

CBigInteger& CBigInteger::operator*=(const CBigInteger& other) {
    Digits result;
    Multiply(m_digits, other.m_digits, result);
    *this = CBigInteger(m_sign * other.m_sign, std::move(result));
    return *this;
}

void CBigInteger::DivMod(const CBigInteger& divisor, CBigInteger* quotient, CBigInteger* remainder,
                         const char* zeroMessage) const {
    if (divisor.m_digits.empty()) {
        ThrowInvalid(zeroMessage);
    }
    Digits q;
    Digits r;
    Divide(m_digits, divisor.m_digits, q, r);
    if (quotient != nullptr) {
        *quotient = CBigInteger(m_sign * divisor.m_sign, std::move(q));
    }
    if (remainder != nullptr) {
        *remainder = CBigInteger(m_sign, std::move(r));
    }
}

CBigInteger& CBigInteger::operator/=(const CBigInteger& other) {
    CBigInteger q;
    DivMod(other, &q, nullptr, "ERROR: Overflow in operator /=.");
    *this = std::move(q);
    return *this;
}

CBigInteger& CBigInteger::operator%=(const CBigInteger& other) {
    CBigInteger r;
    DivMod(other, nullptr, &r, "ERROR: Overflow in operator%=.");
    *this = std::move(r);
    return *this;
}

CBigInteger operator+(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result += b;
    return result;
}

CBigInteger operator-(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result -= b;
    return result;
}

CBigInteger operator*(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result *= b;
    return result;
}

CBigInteger operator/(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger q;
    a.DivMod(b, &q, nullptr, "ERROR: Overflow in operator/.");
    return q;
}

CBigInteger operator%(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger r;
    a.DivMod(b, nullptr, &r, "ERROR: Overflow in operator%.");
    return r;
}

// --- Comparison ---------------------------------------------------------------------------

bool operator==(const CBigInteger& a, const CBigInteger& b) {
    return a.m_sign == b.m_sign && a.m_digits == b.m_digits;
}
bool operator!=(const CBigInteger& a, const CBigInteger& b) { return !(a == b); }
bool operator<(const CBigInteger& a, const CBigInteger& b) {
    if (a.m_sign != b.m_sign) {
        return a.m_sign < b.m_sign;
    }
    const int c = CBigInteger::Compare(a.m_digits, b.m_digits);
    return a.m_sign < 0 ? c > 0 : c < 0;
}
bool operator>(const CBigInteger& a, const CBigInteger& b) { return b < a; }
bool operator<=(const CBigInteger& a, const CBigInteger& b) { return !(b < a); }
bool operator>=(const CBigInteger& a, const CBigInteger& b) { return !(a < b); }

// --- Digit-array helpers ---------------------------------------------------------------------

void CBigInteger::Build(unsigned int value, Digits& digits) { BuildDWORDLONG(value, digits); }

void CBigInteger::BuildDWORDLONG(std::uint64_t value, Digits& digits) {
    digits.clear();
    while (value != 0) {
        digits.push_back(static_cast<signed char>(value % 10));
        value /= 10;
    }
}

void CBigInteger::BuildDouble(double value, Digits& digits) {
    if (!std::isfinite(value)) {
        throw CQmInvalidValueException(
            FormatString("The double value [%g] can not be converted to a CBigInteger", value));
    }
    const double integral = std::trunc(std::fabs(value));
    constexpr double kTwo64 = 18446744073709551616.0;
    if (integral < kTwo64) {
        BuildDWORDLONG(static_cast<std::uint64_t>(integral), digits);
        return;
    }
    // Exact: the 53-bit mantissa times a power of two, doubled 30 bits at a time.
    int exponent = 0;
    const double fraction = std::frexp(integral, &exponent);
    Digits mantissa;
    BuildDWORDLONG(static_cast<std::uint64_t>(std::ldexp(fraction, 53)), mantissa);
    Limbs limbs = ToLimbs(mantissa);
    for (int shift = exponent - 53; shift > 0;) {
        const int step = std::min(shift, 29);
        MultiplyLimbsSmall(limbs, std::uint32_t{1} << step);
        shift -= step;
    }
    FromLimbs(limbs, digits);
}

void CBigInteger::Build(const std::string& text, Digits& digits) {
    digits.resize(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[text.size() - 1 - i];
        digits[i] = static_cast<signed char>(c >= '0' && c <= '9' ? c - '0' : 0);
    }
    Clean(digits);
}

void CBigInteger::Clean(Digits& digits) {
    while (!digits.empty() && digits.back() == 0) {
        digits.pop_back();
    }
}

int CBigInteger::Compare(const Digits& a, const Digits& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    for (std::size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i]) {
            return a[i] < b[i] ? -1 : 1;
        }
    }
    return 0;
}

void CBigInteger::Add(const Digits& a, const Digits& b, Digits& result) {
    const Digits& longer = a.size() >= b.size() ? a : b;
    const Digits& shorter = a.size() >= b.size() ? b : a;
    Digits sum(longer.size() + 1, 0);
    int carry = 0;
    for (std::size_t i = 0; i < longer.size(); ++i) {
        int t = longer[i] + carry + (i < shorter.size() ? shorter[i] : 0);
        carry = t >= 10 ? 1 : 0;
        sum[i] = static_cast<signed char>(t - 10 * carry);
    }
    sum[longer.size()] = static_cast<signed char>(carry);
    Clean(sum);
    result = std::move(sum);
}

void CBigInteger::Subtract(const Digits& a, const Digits& b, Digits& result) {
    Digits difference(a.size(), 0);
    int borrow = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        int t = a[i] - borrow - (i < b.size() ? b[i] : 0);
        borrow = t < 0 ? 1 : 0;
        difference[i] = static_cast<signed char>(t + 10 * borrow);
    }
    Clean(difference);
    result = std::move(difference);
}

void CBigInteger::Multiply(const Digits& a, char digit, Digits& result) {
    Digits product(a.size() + 1, 0);
    int carry = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int t = a[i] * digit + carry;
        product[i] = static_cast<signed char>(t % 10);
        carry = t / 10;
    }
    product[a.size()] = static_cast<signed char>(carry);
    Clean(product);
    result = std::move(product);
}

void CBigInteger::Multiply(const Digits& a, const Digits& b, Digits& result) {
    const Limbs x = ToLimbs(a);
    const Limbs y = ToLimbs(b);
    if (x.empty() || y.empty()) {
        result.clear();
        return;
    }
    // Products are summed without carrying; 16 rows of them fit in 64 bits
    // (16 * (10^9 - 1)^2 + 10^9 < 2^64), so carries are propagated only then.
    constexpr std::size_t kRowsPerCarry = 16;
    std::vector<std::uint64_t> sums(x.size() + y.size(), 0);
    const auto propagate = [&sums] {
        std::uint64_t carry = 0;
        for (auto& sum : sums) {
            const std::uint64_t t = sum + carry;
            carry = t / kLimbBase;
            sum = t - carry * kLimbBase;
        }
    };
    for (std::size_t i = 0; i < x.size(); ++i) {
        const std::uint64_t xi = x[i];
        std::uint64_t* row = sums.data() + i;
        for (std::size_t j = 0; j < y.size(); ++j) {
            row[j] += xi * y[j];
        }
        if ((i + 1) % kRowsPerCarry == 0 || i + 1 == x.size()) {
            propagate();
        }
    }
    Limbs product(sums.begin(), sums.end());
    FromLimbs(product, result);
}

void CBigInteger::ShiftLeft(Digits& digits, int n) {
    if (n > 0 && !digits.empty()) {
        digits.insert(digits.begin(), static_cast<std::size_t>(n), 0);
    }
}

int CBigInteger::Position(const Digits& a) { return a.empty() ? 1 : static_cast<int>(a.size()); }

void CBigInteger::Pow10(unsigned int n, Digits& digits) {
    digits.assign(static_cast<std::size_t>(n) + 1, 0);
    digits.back() = 1;
}

void CBigInteger::Divide(const Digits& a, const Digits& b, Digits& quotient, Digits& remainder) {
    if (Compare(a, b) < 0) {
        Digits r(a);
        Clean(r);
        quotient.clear();
        remainder = std::move(r);
        return;
    }
    Limbs u = ToLimbs(a);
    const Limbs v = ToLimbs(b);
    Limbs q;
    Limbs r;
    if (v.size() == 1) {
        const std::uint32_t rem = DivideLimbsSmall(u, v[0]);
        q = std::move(u);
        if (rem != 0) {
            r.push_back(rem);
        }
    } else {
        DivideLimbs(std::move(u), v, q, r);
    }
    FromLimbs(q, quotient);
    FromLimbs(r, remainder);
}

}  // namespace QmXmlLib10
