#include <qmxml/types/big_integer.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <typeinfo>

#include <qmxml/core/exception.h>
#include <qmxml/types/decimal.h>

#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectInvalid;

namespace {

using BI = CBigInteger;

std::string Str(const BI& v) { return v.ToString(); }

TEST(BigIntegerTest, ParsesSignsSpacesAndDecimalText) {
    EXPECT_EQ("0", Str(BI("-0")));
    EXPECT_EQ(BI("-0"), BI(0));
    EXPECT_FALSE(BI("-0").GetNegative());
    EXPECT_EQ("42", Str(BI("+42")));
    EXPECT_EQ("7", Str(BI("  7  ")));
    EXPECT_EQ("-7", Str(BI("\t\r\n-7 ")));
    EXPECT_EQ("123", Str(BI("000123")));
    EXPECT_EQ("0", Str(BI("0000")));
    // Anything but sign and digits is read as a decimal and truncated.
    EXPECT_EQ("1", Str(BI("1.9")));
    EXPECT_EQ("-1", Str(BI("-1.9")));
    EXPECT_EQ("150", Str(BI("1.5E2")));
    EXPECT_EQ("0", Str(BI(".5")));
    EXPECT_EQ("2", Str(BI(" 2.5 ")));
    EXPECT_EQ("0", Str(BI(static_cast<const char*>(nullptr))));
}

TEST(BigIntegerTest, MalformedTextThrowsTheDecimalMessage) {
    const std::string prefix = "The string representing a Decimal, contained an invalid char at position ";
    ExpectInvalid([] { BI("abc"); }, prefix + "0 [abc]");
    ExpectInvalid([] { BI("12a"); }, prefix + "2 [12a]");
    ExpectInvalid([] { BI(""); }, prefix + "0 []");
    ExpectInvalid([] { BI("   "); }, prefix + "0 []");
    ExpectInvalid([] { BI("-"); }, prefix + "1 [-]");
    ExpectInvalid([] { BI("- 5"); }, prefix + "1 [- 5]");
    ExpectInvalid([] { BI("1 2"); }, prefix + "1 [1 2]");
    ExpectInvalid([] { BI("+-1"); }, prefix + "1 [+-1]");
    ExpectInvalid([] { BI(std::string("1\0002", 3)); }, prefix + "1 [1]");
}

TEST(BigIntegerTest, NativeConstructionAndBounds) {
    EXPECT_EQ("-2147483648", Str(BI(std::numeric_limits<int>::min())));
    EXPECT_EQ("-9223372036854775808", Str(BI(std::numeric_limits<long long>::min())));
    EXPECT_EQ("-9223372036854775808", Str(BI(std::numeric_limits<long>::min())));
    EXPECT_EQ("18446744073709551615", Str(BI(std::numeric_limits<unsigned long long>::max())));
    EXPECT_EQ("4294967295", Str(BI(4294967295u)));

    EXPECT_EQ(2147483647, static_cast<int>(BI("2147483647")));
    EXPECT_EQ(std::numeric_limits<int>::min(), static_cast<int>(BI("-2147483648")));
    ExpectInvalid([] { static_cast<void>(static_cast<int>(BI("2147483648"))); }, "ERROR: Value out of bound of int.");
    ExpectInvalid([] { BI("-2147483649").ToInt(); }, "ERROR: Value out of bound of int.");
    ExpectInvalid([] { BI("99999999999999999999999").ToInt(); }, "ERROR: Value out of bound of int.");

    EXPECT_EQ(std::numeric_limits<std::int64_t>::max(), static_cast<std::int64_t>(BI("9223372036854775807")));
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), BI("-9223372036854775808").ToInt64());
    ExpectInvalid([] { BI("9223372036854775808").ToInt64(); }, "ERROR: Value out of bound of LONGLONG.");
    ExpectInvalid([] { BI("-9223372036854775809").ToInt64(); }, "ERROR: Value out of bound of LONGLONG.");
    ExpectInvalid([] { BI("99999999999999999999").ToInt64(); }, "ERROR: Value out of bound of LONGLONG.");
}

TEST(BigIntegerTest, FromDoubleTakesTheExactIntegralPart) {
    EXPECT_EQ("0", Str(BI(0.99)));
    EXPECT_EQ("0", Str(BI(-0.99)));
    EXPECT_FALSE(BI(-0.5).GetNegative());
    EXPECT_EQ("-12", Str(BI(-12.7)));
    EXPECT_EQ("9007199254740992", Str(BI(9007199254740992.0)));
    EXPECT_EQ("18446744073709551616", Str(BI(18446744073709551616.0)));
    EXPECT_EQ("1000000000000000052504760255204420248704468581108159154915854115511802457988908195786371375080447864043704443832883878176942523235360430575644792184786706982848387200926575803737830233794788090059368953234970799945081119038967640880074652742780142494579258788820056842838115669472196386865459400540160",
              Str(BI(1e300)));
    EXPECT_EQ(Str(BI(-1e300)), "-" + Str(BI(1e300)));
    ExpectInvalid([] { BI(std::numeric_limits<double>::infinity()); },
                  "The double value [inf] can not be converted to a CBigInteger");
    ExpectInvalid([] { BI(std::numeric_limits<double>::quiet_NaN()); },
                  "The double value [nan] can not be converted to a CBigInteger");
}

TEST(BigIntegerTest, DivisionTruncatesAndRemainderFollowsTheDividend) {
    EXPECT_EQ(BI(3), BI(7) / BI(2));
    EXPECT_EQ(BI(1), BI(7) % BI(2));
    EXPECT_EQ(BI(-3), BI(-7) / BI(2));
    EXPECT_EQ(BI(-1), BI(-7) % BI(2));
    EXPECT_EQ(BI(-3), BI(7) / BI(-2));
    EXPECT_EQ(BI(1), BI(7) % BI(-2));
    EXPECT_EQ(BI(3), BI(-7) / BI(-2));
    EXPECT_EQ(BI(-1), BI(-7) % BI(-2));
    EXPECT_EQ(BI(0), BI(-1) / BI(2));
    EXPECT_FALSE((BI(-1) / BI(2)).GetNegative());
    EXPECT_FALSE((BI(-4) % BI(2)).GetNegative());
    EXPECT_EQ("1234567890123456789", Str(BI("12345678901234567890") / BI(10)));
    // Multi-limb divisors, where the quotient estimate must be corrected.
    const BI big("123456789012345678901234567890123456789012345678901234567890");
    const BI divisor("999999999999999999999");
    const BI q = big / divisor;
    const BI r = big % divisor;
    EXPECT_EQ(big, q * divisor + r);
    EXPECT_TRUE(r >= BI(0) && r < divisor);
    EXPECT_EQ(BI::Pow10(30) - BI(1), (BI::Pow10(61) - BI(1)) / BI::Pow10(31));
    // Leading limbs that make the first quotient estimate one too large, so
    // the divisor has to be added back.
    const BI v("500000000000000000999999999");
    EXPECT_EQ("999999997", Str(BI("499999999000000000000000000000000000") / v));
    EXPECT_EQ("499999999000000003999999997", Str(BI("499999999000000000000000000000000000") % v));
    const BI u("-499999999000000000500000000000000000000000000000012345");
    EXPECT_EQ("-999999997999999999000000005", Str(u / v));
    EXPECT_EQ("-499999998999999994000012350", Str(u % v));
}

TEST(BigIntegerTest, DivisionByZeroThrowsAndLeavesTheOperand) {
    ExpectInvalid([] { static_cast<void>(BI(5) / BI(0)); }, "ERROR: Overflow in operator/.");
    ExpectInvalid([] { static_cast<void>(BI(5) % BI("-0")); }, "ERROR: Overflow in operator%.");
    BI value(5);
    ExpectInvalid([&] { value /= BI(0); }, "ERROR: Overflow in operator /=.");
    ExpectInvalid([&] { value %= BI(0); }, "ERROR: Overflow in operator%=.");
    EXPECT_EQ(BI(5), value);
}

TEST(BigIntegerTest, ArithmeticSignsAndCompoundOperators) {
    EXPECT_FALSE((BI(5) + BI(-5)).GetNegative());
    EXPECT_FALSE((BI(-3) * BI(0)).GetNegative());
    EXPECT_TRUE(BI(-10) < BI(-9) && BI(-1) < BI(0));
    BI x(10);
    x += 5;
    x -= 20;
    x *= BI(-3);
    x /= 4;
    x %= 3;
    EXPECT_EQ(BI(0), x);  // 15 / 4 = 3, 3 % 3 = 0
    BI self(7);
    self *= self;
    self += self;
    EXPECT_EQ(BI(98), self);
    EXPECT_EQ(BI(7), BI(-7).GetAbs());
    BI n(-7);
    n.Abs();
    EXPECT_EQ(BI(7), n);
    n.Negate();
    EXPECT_EQ(BI(-7), n);
    EXPECT_EQ(BI(7), -n);
    BI zero;
    zero.Negate();
    EXPECT_EQ("0", Str(zero));
    EXPECT_EQ("1000", Str(BI::Pow10(3)));
    EXPECT_EQ("1", Str(BI::Pow10(0)));
}

TEST(BigIntegerTest, SquareRootIsTheFloor) {
    EXPECT_EQ(BI(9), BI(99).SquareRoot());
    EXPECT_EQ(BI(10), BI(100).SquareRoot());
    EXPECT_EQ(BI(0), BI(0).SquareRoot());
    EXPECT_EQ(BI(1), BI(3).SquareRoot());
    EXPECT_EQ(BI::Pow10(50), BI::Pow10(100).SquareRoot());
    EXPECT_EQ(BI::Pow10(50) - BI(1), (BI::Pow10(100) - BI(1)).SquareRoot());
    ExpectInvalid([] { BI(-1).SquareRoot(); }, "ERROR: Negative Number in function SquareRoot().");
}

TEST(BigIntegerTest, HugeOperandsStayTractable) {
    const std::string digits(100000, '7');
    const BI a(digits);
    EXPECT_EQ(digits, a.ToString());
    EXPECT_TRUE(a > BI(std::string(99999, '9')));
    EXPECT_TRUE(-a < BI(std::string("-") + std::string(99999, '9')));
    EXPECT_EQ(BI(1), (a + BI(1)) - a);
    const BI m(std::string(1000, '9'));
    const BI product = m * m;
    EXPECT_EQ(2000u, product.ToString().size());
    EXPECT_EQ(m, product / m);
    EXPECT_EQ(BI(0), product % m);
}

}  // namespace
