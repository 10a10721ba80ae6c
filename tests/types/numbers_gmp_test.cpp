// CBigInteger and CDecimal checked against GMP on seeded random operands.
// GMP is the oracle only; the library never links it.
#include <gmp.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <qmxml/core/exception.h>
#include <qmxml/types/big_integer.h>
#include <qmxml/types/decimal.h>

using namespace QmXmlLib10;

namespace {

class Mpz {
public:
    Mpz() { mpz_init(m_value); }
    explicit Mpz(const std::string& text) { mpz_init_set_str(m_value, text.c_str(), 10); }
    Mpz(const Mpz&) = delete;
    Mpz& operator=(const Mpz&) = delete;
    ~Mpz() { mpz_clear(m_value); }
    operator mpz_ptr() { return m_value; }
    operator mpz_srcptr() const { return m_value; }

private:
    mpz_t m_value;
};

// mpz_sgn is a macro that wants a plain mpz_t.
int Sgn(mpz_srcptr value) { return mpz_sgn(value); }

std::string Text(mpz_srcptr value) {
    std::vector<char> buffer(mpz_sizeinbase(value, 10) + 2);
    mpz_get_str(buffer.data(), 10, value);
    return buffer.data();
}

void MulPow10(mpz_ptr value, unsigned long n) {
    Mpz power;
    mpz_ui_pow_ui(power, 10, n);
    mpz_mul(value, value, power);
}

// The canonical decimal text of unscaled / 10^scale: no trailing fraction
// zeros, no point for whole numbers, "0" unsigned.
std::string DecimalText(mpz_srcptr unscaled, long scale, bool keepZeros = false) {
    Mpz magnitude;
    mpz_abs(magnitude, unscaled);
    std::string digits = Text(magnitude);
    while (!keepZeros && scale > 0 && digits.size() > 1 && digits.back() == '0') {
        digits.pop_back();
        --scale;
    }
    if (!keepZeros && digits == "0") {
        return "0";
    }
    if (scale > 0) {
        if (digits.size() <= static_cast<std::size_t>(scale)) {
            digits.insert(0, static_cast<std::size_t>(scale) + 1 - digits.size(), '0');
        }
        digits.insert(digits.size() - static_cast<std::size_t>(scale), 1, '.');
    }
    const bool negative = mpz_sgn(unscaled) < 0;
    return (negative ? "-" : "") + digits;
}

class Generator {
public:
    explicit Generator(std::uint64_t seed) : m_random(seed) {}

    int Uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    // Random digits; runs of 9s and 0s now and then, to exercise carries,
    // borrows and quotient corrections.
    std::string Digits(int count, bool leadingNonZero) {
        std::string digits;
        const int style = Uniform(0, 3);
        for (int i = 0; i < count; ++i) {
            char c = static_cast<char>('0' + Uniform(0, 9));
            if (style == 1 && Uniform(0, 3) != 0) {
                c = '9';
            } else if (style == 2 && Uniform(0, 3) != 0) {
                c = '0';
            }
            digits.push_back(c);
        }
        if (leadingNonZero && !digits.empty() && digits[0] == '0') {
            digits[0] = static_cast<char>('1' + Uniform(0, 8));
        }
        return digits;
    }

    std::string Sign() { return Uniform(0, 1) == 0 ? "-" : ""; }

    // An integer of 1 to maxDigits digits, length skewed toward short ones.
    std::string Integer(int maxDigits) {
        const int length = Uniform(0, 2) == 0 ? Uniform(1, 20) : Uniform(1, maxDigits);
        return Sign() + Digits(length, true);
    }

    struct DecimalOperand {
        std::string text;
        std::string unscaled;  // signed digits
        long scale;
    };

    // "[-]int.frac" or "[-]mantissa[eE]exp", with the scaled integer GMP reads.
    DecimalOperand Decimal(int maxPart) {
        DecimalOperand operand;
        const std::string sign = Sign();
        const std::string integer = Digits(Uniform(1, maxPart), false);
        const std::string fraction = Digits(Uniform(0, maxPart), false);
        operand.text = sign + integer + (fraction.empty() ? "" : "." + fraction);
        operand.unscaled = sign + integer + fraction;
        operand.scale = static_cast<long>(fraction.size());
        if (Uniform(0, 4) == 0) {
            const int exponent = Uniform(-30, 30);
            operand.text += (Uniform(0, 1) == 0 ? "e" : "E") + std::to_string(exponent);
            operand.scale -= exponent;
            if (operand.scale < 0) {
                operand.unscaled += std::string(static_cast<std::size_t>(-operand.scale), '0');
                operand.scale = 0;
            }
        }
        return operand;
    }

private:
    std::mt19937_64 m_random;
};

int Sign(int c) { return (c > 0) - (c < 0); }

TEST(NumbersGmpTest, BigIntegerArithmeticMatchesGmp) {
    Generator gen(0x5eed1234u);
    for (int i = 0; i < 3000; ++i) {
        const std::string ta = gen.Integer(300);
        const std::string tb = i % 10 == 0 ? ta : gen.Integer(300);
        SCOPED_TRACE(ta + " , " + tb);
        const CBigInteger a(ta);
        const CBigInteger b(tb);
        const Mpz za(ta);
        const Mpz zb(tb);
        Mpz z;
        ASSERT_EQ(Text(za), a.ToString());

        mpz_add(z, za, zb);
        ASSERT_EQ(Text(z), (a + b).ToString());
        mpz_sub(z, za, zb);
        ASSERT_EQ(Text(z), (a - b).ToString());
        mpz_mul(z, za, zb);
        ASSERT_EQ(Text(z), (a * b).ToString());
        if (Sgn(zb) != 0) {
            mpz_tdiv_q(z, za, zb);
            ASSERT_EQ(Text(z), (a / b).ToString());
            mpz_tdiv_r(z, za, zb);
            ASSERT_EQ(Text(z), (a % b).ToString());
        }
        const int c = Sign(mpz_cmp(za, zb));
        ASSERT_EQ(c < 0, a < b);
        ASSERT_EQ(c > 0, a > b);
        ASSERT_EQ(c == 0, a == b);
        ASSERT_EQ(c != 0, a != b);
        ASSERT_EQ(c <= 0, a <= b);
        ASSERT_EQ(c >= 0, a >= b);
        if (i % 3 == 0) {
            mpz_abs(z, za);
            const CBigInteger magnitude = a.GetAbs();
            mpz_sqrt(z, z);
            ASSERT_EQ(Text(z), magnitude.SquareRoot().ToString());
        }
    }
}

TEST(NumbersGmpTest, BigIntegerDivisionByLongDivisorsMatchesGmp) {
    // Dividend and divisor of similar length, where every quotient limb is
    // estimated from the leading limbs.
    Generator gen(0xd1u);
    for (int i = 0; i < 1000; ++i) {
        const int length = gen.Uniform(10, 300);
        const std::string ta = gen.Sign() + gen.Digits(length + gen.Uniform(0, 40), true);
        const std::string tb = gen.Sign() + gen.Digits(std::max(1, length - gen.Uniform(0, 5)), true);
        SCOPED_TRACE(ta + " / " + tb);
        const Mpz za(ta);
        const Mpz zb(tb);
        Mpz q;
        Mpz r;
        mpz_tdiv_qr(q, r, za, zb);
        const CBigInteger a(ta);
        const CBigInteger b(tb);
        ASSERT_EQ(Text(q), (a / b).ToString());
        ASSERT_EQ(Text(r), (a % b).ToString());
    }
}

TEST(NumbersGmpTest, DecimalArithmeticMatchesScaledGmpIntegers) {
    Generator gen(0xdec1a1u);
    const int places = CDecimal::GetMaxDecimalPlaces();
    for (int i = 0; i < 3000; ++i) {
        const auto oa = gen.Decimal(60);
        const auto ob = gen.Decimal(60);
        SCOPED_TRACE(oa.text + " , " + ob.text);
        const CDecimal a(oa.text);
        const CDecimal b(ob.text);
        const Mpz ua(oa.unscaled);
        const Mpz ub(ob.unscaled);
        ASSERT_EQ(DecimalText(ua, oa.scale), a.ToString());

        // Both at the larger scale.
        const long scale = std::max(oa.scale, ob.scale);
        Mpz xa;
        Mpz xb;
        mpz_set(xa, ua);
        mpz_set(xb, ub);
        MulPow10(xa, static_cast<unsigned long>(scale - oa.scale));
        MulPow10(xb, static_cast<unsigned long>(scale - ob.scale));
        Mpz z;
        mpz_add(z, xa, xb);
        ASSERT_EQ(DecimalText(z, scale), (a + b).ToString());
        mpz_sub(z, xa, xb);
        ASSERT_EQ(DecimalText(z, scale), (a - b).ToString());
        const int c = Sign(mpz_cmp(xa, xb));
        ASSERT_EQ(c < 0, a < b);
        ASSERT_EQ(c == 0, a == b);
        ASSERT_EQ(c > 0, a > b);

        mpz_mul(z, ua, ub);
        ASSERT_EQ(DecimalText(z, oa.scale + ob.scale), (a * b).ToString());

        if (Sgn(ub) != 0) {
            // a / b * 10^places, truncated, then rounded to the nearest with an
            // exact half toward zero.
            Mpz numerator;
            Mpz denominator;
            mpz_set(numerator, ua);
            mpz_set(denominator, ub);
            const long shift = ob.scale + places - oa.scale;
            MulPow10(shift >= 0 ? static_cast<mpz_ptr>(numerator) : static_cast<mpz_ptr>(denominator),
                     static_cast<unsigned long>(shift >= 0 ? shift : -shift));
            Mpz q;
            Mpz r;
            mpz_tdiv_qr(q, r, numerator, denominator);
            Mpz twice;
            mpz_mul_ui(twice, r, 2);
            if (mpz_cmpabs(twice, denominator) > 0) {
                if (Sgn(numerator) * Sgn(denominator) < 0) {
                    mpz_sub_ui(q, q, 1);
                } else {
                    mpz_add_ui(q, q, 1);
                }
            }
            ASSERT_EQ(DecimalText(q, places), (a / b).ToString());
        }

        // ToString(n): round half away from zero on the magnitude.
        const int n = gen.Uniform(0, 40);
        Mpz m;
        mpz_abs(m, ua);
        if (n >= oa.scale) {
            MulPow10(m, static_cast<unsigned long>(n - oa.scale));
        } else {
            Mpz power;
            mpz_ui_pow_ui(power, 10, static_cast<unsigned long>(oa.scale - n));
            Mpz r;
            mpz_tdiv_qr(m, r, m, power);
            mpz_mul_ui(r, r, 2);
            if (mpz_cmp(r, power) >= 0) {
                mpz_add_ui(m, m, 1);
            }
        }
        if (Sgn(ua) < 0) {
            mpz_neg(m, m);
        }
        ASSERT_EQ(DecimalText(m, n, true), a.ToString(n));
    }
}

TEST(NumbersGmpTest, DecimalDivisionAtFewPlacesMatchesGmp) {
    // Few places make exact halves frequent, which checks the tie rule.
    struct Restore {
        int saved = CDecimal::GetMaxDecimalPlaces();
        ~Restore() { CDecimal::SetMaxDecimalPlaces(saved); }
    } restore;
    Generator gen(0x7a11u);
    for (int i = 0; i < 2000; ++i) {
        const int places = gen.Uniform(0, 4);
        CDecimal::SetMaxDecimalPlaces(places);
        const long av = gen.Uniform(-100000, 100000);
        const long bv = gen.Uniform(1, 64) * (gen.Uniform(0, 1) == 0 ? -1 : 1);
        SCOPED_TRACE(std::to_string(av) + " / " + std::to_string(bv) + " at " + std::to_string(places));
        Mpz n;
        mpz_set_si(n, av);
        MulPow10(n, static_cast<unsigned long>(places));
        Mpz d;
        mpz_set_si(d, bv);
        Mpz q;
        Mpz r;
        mpz_tdiv_qr(q, r, n, d);
        mpz_mul_ui(r, r, 2);
        if (mpz_cmpabs(r, d) > 0) {
            if ((av < 0) != (bv < 0)) {
                mpz_sub_ui(q, q, 1);
            } else {
                mpz_add_ui(q, q, 1);
            }
        }
        ASSERT_EQ(DecimalText(q, places), (CDecimal(av) / CDecimal(bv)).ToString());
    }
}

}  // namespace
