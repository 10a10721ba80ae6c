#include <qmxml/types/decimal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <typeinfo>

#include <qmxml/core/exception.h>

#include "conversion_cases.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectThrow;
using qmxml_test::InvalidChar;

namespace {

using D = CDecimal;

std::string Str(const D& v) { return v.ToString(); }

// Restores the library-wide setting whatever a test does.
class MaxPlaces {
public:
    explicit MaxPlaces(int places) : m_saved(D::GetMaxDecimalPlaces()) { D::SetMaxDecimalPlaces(places); }
    ~MaxPlaces() { D::SetMaxDecimalPlaces(m_saved); }

private:
    int m_saved;
};

TEST(DecimalTest, ParsesAndPrintsRationalised) {
    EXPECT_EQ("1.5", Str(D("1.50")));
    EXPECT_EQ("-0.05", Str(D("-0.05")));
    EXPECT_EQ("7", Str(D("007")));
    EXPECT_EQ("0", Str(D("-0.000")));
    EXPECT_FALSE(D("-0.0").GetNegative());
    EXPECT_EQ("12", Str(D("+12.")));
    EXPECT_EQ("0.5", Str(D(".5")));
    EXPECT_EQ("-123.000456", Str(D("-123.000456")));
    EXPECT_EQ("0.0001", Str(D("0.00010")));
    EXPECT_EQ("0", Str(D()));
}

// The parser places the digits straight into the integer part and the
// fraction; these check each boundary of that split through what the value
// then prints, compares and computes.
TEST(DecimalTest, ParseSplitsTheDigitsAtThePoint) {
    const auto same = [](const char* text, const char* expected) { EXPECT_EQ(expected, Str(D(text))) << text; };
    same("100.000", "100");        // integer zeros kept, fraction zeros dropped
    same("000123.4500", "123.45");
    same("0.000", "0");
    same("-000", "0");
    same("0.", "0");
    same("5.", "5");
    same("-5.", "-5");
    same(".5", "0.5");
    same("-.5", "-0.5");
    same("+.050", "0.05");
    same("0.0050", "0.005");
    same("10.01", "10.01");
    same("673392.91", "673392.91");
    EXPECT_FALSE(D("-0.0").GetNegative());
    EXPECT_EQ("0.00", D("-0.0").ToString(2));
    EXPECT_TRUE(D("-0.01").GetNegative());
    EXPECT_TRUE(D("-.5").GetNegative());
    EXPECT_EQ("0", D("-.5").ToBigInteger().ToString());  // a zero integer part is unsigned
    EXPECT_EQ("100.5", Str(D("100.000") + D("0.5")));
    EXPECT_EQ("0.01", Str(D("0.0050") + D("0.0050")));
    EXPECT_EQ("11", Str(D("1.10") * D(10)));
    EXPECT_TRUE(D("000123.4500") == D("123.45"));
    EXPECT_TRUE(D("0.0050") < D("0.0051"));
    EXPECT_EQ(123, D("000123.4500").ToLong());
    ExpectThrow<CQmInvalidValueException>([] { D(static_cast<const char*>(nullptr)); }, InvalidChar(0, ""));
}

TEST(DecimalTest, ParseMovesThePointAcrossTheDigits) {
    const auto same = [](const char* text, const char* expected) { EXPECT_EQ(expected, Str(D(text))) << text; };
    same("12.34e1", "123.4");
    same("12.34e2", "1234");       // the point lands after the last digit
    same("12.34e3", "12340");      // and beyond it: the integer part gains zeros
    same("12.34E-1", "1.234");
    same("12.34e-2", "0.1234");    // before the first digit
    same("12.340e-5", "0.0001234");
    same("0.0012e4", "12");
    same("1200e-2", "12");
    same("1200e-4", "0.12");
    same("1200e-6", "0.0012");
    same(".5e1", "5");
    same("5.e-1", "0.5");
    same("0012.3400e-3", "0.01234");
    same("1.05e1", "10.5");
    same("10.50e1", "105");
    same("-1.5e1", "-15");
    same("-150e-3", "-0.15");
    same("-0.5e0", "-0.5");
    same("0.000e5", "0");
    EXPECT_FALSE(D("-0.0e5").GetNegative());
    EXPECT_FALSE(D("-0e-5").GetNegative());
    EXPECT_EQ("1.2340", D("12.3400e-1").ToString(4));
    EXPECT_EQ(129, D("12.99e1").ToLong());
    EXPECT_EQ("-5", D("-0.5e1").ToBigInteger().ToString());
    EXPECT_TRUE(D("1.5e1") == D(15));
    EXPECT_EQ("15.5", Str(D("1.5e1") + D("5e-1")));
}

TEST(DecimalTest, AppendTextAppendsWhatToStringGives) {
    for (const char* text : {"1.50", "-0.05", "007", "-0.000", "-123.000456", "0.00010", "-42", "99999999999999999999.5"}) {
        std::string out = "x";
        D(text).AppendText(out);
        EXPECT_EQ("x" + Str(D(text)), out) << text;
    }
    std::string out;
    D().AppendText(out);
    EXPECT_EQ("0", out);
}

TEST(DecimalTest, ExponentMovesThePointBothWays) {
    EXPECT_EQ("150", Str(D("1.5E2")));
    EXPECT_EQ("150", Str(D("1.5e+2")));
    EXPECT_EQ("0.015", Str(D("1.5E-2")));
    EXPECT_EQ("-0.0015", Str(D("-15e-4")));
    EXPECT_EQ("1.5", Str(D("150E-2")));
    EXPECT_EQ("1", Str(D("1E0")));
    EXPECT_EQ("0", Str(D("0E-100")));
    EXPECT_EQ("1" + std::string(100000, '0'), Str(D("1E100000")));
    EXPECT_EQ("0." + std::string(99999, '0') + "1", Str(D("1E-100000")));
    EXPECT_EQ("1", Str(D("0000000000000000000001E000000000000000000000")));
    ExpectThrow<CQmInvalidValueException>([] { D("1E100001"); },
                                          "The exponent of the Decimal is out of range [1E100001]");
    ExpectThrow<CQmInvalidValueException>([] { D("1E-99999999999999999999999"); },
                                          "The exponent of the Decimal is out of range [1E-99999999999999999999999]");
}

TEST(DecimalTest, MalformedTextReportsTheFirstBadPosition) {
    const auto bad = [](const std::string& text, int position) {
        ExpectThrow<CQmInvalidValueException>([&] { D{text}; }, InvalidChar(position, text));
    };
    bad("1.2.3", 3);
    bad("12a", 2);
    bad(" 1.5", 0);
    bad("1.5 ", 3);
    bad("", 0);
    bad("-", 1);
    bad("+", 1);
    bad(".", 1);
    bad("-.", 2);
    bad("e5", 0);
    bad(".e5", 1);
    bad("1e", 2);
    bad("1e+", 3);
    bad("1e5.2", 3);
    bad("1e5e5", 3);
    bad("1E2.5", 3);
    bad("+-1", 1);
    bad("--1", 1);
    bad("1-", 1);
    bad("0x10", 1);
    bad("1,5", 1);
    bad("inf", 0);
    bad("NaN", 0);
    ExpectThrow<CQmInvalidValueException>([] { D{std::string("1\0002", 3)}; }, InvalidChar(1, "1"));
    ExpectThrow<CQmInvalidValueException>([] { D(std::numeric_limits<double>::infinity()); }, InvalidChar(0, "inf"));
    ExpectThrow<CQmInvalidValueException>([] { D(-std::numeric_limits<double>::infinity()); }, InvalidChar(1, "-inf"));
}

TEST(DecimalTest, NativeConstructors) {
    EXPECT_EQ("-2147483648", Str(D(std::numeric_limits<int>::min())));
    EXPECT_EQ("-9223372036854775808", Str(D(std::numeric_limits<long>::min())));
    EXPECT_EQ("-9223372036854775808", Str(D(std::numeric_limits<long long>::min())));
    EXPECT_EQ("4294967295", Str(D(4294967295u)));
    EXPECT_EQ("18446744073709551615", Str(D(std::numeric_limits<unsigned long>::max())));
    EXPECT_EQ("18446744073709551615", Str(D(std::numeric_limits<unsigned long long>::max())));
    EXPECT_EQ("0.1", Str(D(0.1)));
    EXPECT_EQ("-2.5", Str(D(-2.5)));
    EXPECT_EQ("0.0000000000001", Str(D(1e-13)));
    EXPECT_EQ("0", Str(D(1e-14)));
    EXPECT_EQ("123456789012", Str(D(CBigInteger("123456789012"))));
}

TEST(DecimalTest, ToStringWithPlacesRoundsHalfUp) {
    EXPECT_EQ("2.35", D("2.345").ToString(2));
    EXPECT_EQ("0.50", D("0.5").ToString(2));
    EXPECT_EQ("-2.35", D("-2.345").ToString(2));
    EXPECT_EQ("2.34", D("2.3449").ToString(2));
    EXPECT_EQ("10.00", D("9.995").ToString(2));
    EXPECT_EQ("3", D("2.5").ToString(0));
    EXPECT_EQ("3", D("2.5").ToString(-4));
    EXPECT_EQ("0.00", D("-0.001").ToString(2));
    EXPECT_EQ("-0.01", D("-0.005").ToString(2));
    EXPECT_EQ("0.001", D("0.001").ToString(3));
    EXPECT_EQ("12.000", D("12").ToString(3));
    EXPECT_EQ("-0.050", D("-0.05").ToString(3));
}

TEST(DecimalTest, DivisionRoundsToTheNearestWithHalfTowardZero) {
    EXPECT_EQ("0." + std::string(30, '3'), Str(D(1) / D(3)));
    EXPECT_EQ("0." + std::string(29, '6') + "7", Str(D(2) / D(3)));
    EXPECT_EQ("-0." + std::string(29, '6') + "7", Str(D(-2) / D(3)));
    EXPECT_EQ("2.5", Str(D("7.5") / D(3)));
    EXPECT_EQ("-2", Str(D(-5) / D("2.5")));
    EXPECT_EQ("400", Str(D(1) / D("0.0025")));
    EXPECT_EQ("0.000001", Str(D("0.000000001") / D("0.001")));
    {
        const MaxPlaces two(2);
        EXPECT_EQ("0.12", Str(D("0.125") / D(1)));   // exact half cut toward zero
        EXPECT_EQ("-0.12", Str(D("-0.125") / D(1)));
        EXPECT_EQ("0.13", Str(D("0.126") / D(1)));
        EXPECT_EQ("0.13", Str(D("0.1250001") / D(1)));  // above the half, however little
        EXPECT_EQ("0.12", Str(D(1) / D(8)));
        EXPECT_EQ("0.13", Str(D(63) / D(500)));
        EXPECT_EQ("1", Str(D("0.996") / D(1)));  // the carry reaches the integer part
    }
    {
        const MaxPlaces none(0);
        EXPECT_EQ("2", Str(D(5) / D(2)));
        EXPECT_EQ("-2", Str(D(-5) / D(2)));
        EXPECT_EQ("3", Str(D(8) / D(3)));
    }
    EXPECT_EQ(30, D::GetMaxDecimalPlaces());
    ExpectThrow<CQmInvalidParamException>([] { D::SetMaxDecimalPlaces(-1); }, "Invalid number of decimal places [-1]");
    ExpectThrow<CQmInvalidParamException>([] { D::SetMaxDecimalPlaces(100001); },
                                          "Invalid number of decimal places [100001]");
    EXPECT_EQ(30, D::GetMaxDecimalPlaces());
    ExpectThrow<CQmInvalidValueException>([] { static_cast<void>(D(1) / D("0.000")); },
                                          "ERROR: Overflow in operator/.");
    D value("1.5");
    ExpectThrow<CQmInvalidValueException>([&] { value /= D(); }, "ERROR: Overflow in operator /.");
    EXPECT_EQ("1.5", Str(value));
}

TEST(DecimalTest, ArithmeticCarriesBetweenFractionAndIntegerPart) {
    EXPECT_EQ("1", Str(D("0.5") + D("0.5")));
    EXPECT_EQ("-0.9", Str(D("0.1") - D(1)));
    EXPECT_EQ("0.9", Str(D(1) - D("0.1")));
    EXPECT_EQ("-1.25", Str(D("-0.75") + D("-0.5")));
    EXPECT_EQ("0.25", Str(D("-0.75") + D(1)));
    EXPECT_EQ("0", Str(D("1.23") - D("1.23")));
    EXPECT_EQ("100.001", Str(D("99.999") + D("0.002")));
    EXPECT_EQ("0.0015", Str(D("0.05") * D("0.03")));
    EXPECT_EQ("-6", Str(D("-2.5") * D("2.4")));
    EXPECT_EQ("0", Str(D("-2.5") * D(0)));
    EXPECT_FALSE((D("-2.5") * D(0)).GetNegative());
    D x("1.5");
    EXPECT_EQ("1.5", Str(x++));
    EXPECT_EQ("2.5", Str(x));
    EXPECT_EQ("3.5", Str(++x));
    EXPECT_EQ("3.5", Str(x--));
    EXPECT_EQ("1.5", Str(--x));
    x = D("-0.5");
    EXPECT_EQ("0.5", Str(++x));
    x *= x;
    x += x;
    x -= D("0.25");
    x /= D("0.5");
    EXPECT_EQ("0.5", Str(x));
    EXPECT_EQ("-0.5", Str(-x));
    x.Negate();
    EXPECT_TRUE(x.GetNegative());
}

TEST(DecimalTest, ComparisonsAlignScales) {
    EXPECT_TRUE(D("1.5") == D("1.50"));
    EXPECT_TRUE(D("-0") == D(0));
    EXPECT_TRUE(D("-0.11") < D("-0.1"));
    EXPECT_TRUE(D("-1") < D("-0.5"));
    EXPECT_TRUE(D("2") >= D("1.9999") && D("2") <= D("2.0") && D("2") != D("2.01"));
}

TEST(DecimalTest, NativeConversionsCheckTheIntegerPart) {
    EXPECT_EQ(2147483647, D("2147483647.99").ToLong());
    EXPECT_EQ(-2147483647 - 1, D("-2147483648.5").ToLong());
    EXPECT_EQ(-1, D("-1.9").ToLong());
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), D("-9223372036854775808.9").ToLongLong());
    EXPECT_EQ(std::numeric_limits<std::int64_t>::max(), D("9223372036854775807").ToLongLong());
    EXPECT_EQ("-12", D("-12.9").ToBigInteger().ToString());
    EXPECT_EQ("0", D("-0.9").ToBigInteger().ToString());
    EXPECT_EQ("3", CBigInteger(D("3.99")).ToString());
    EXPECT_EQ(0.1, D("0.1").ToDouble());
    EXPECT_EQ(-1234.5625, D("-1234.5625").ToDouble());
    EXPECT_EQ(1.7e308, D("1.7E308").ToDouble());
    EXPECT_EQ(0.0, D("1E-100000").ToDouble());

    const std::string tooLong = "The Decimal value if to large to fit into a LONG";
    ExpectThrow<CQmOverFlowException>([] { D(1e300).ToLong(); }, tooLong);
    ExpectThrow<CQmOverFlowException>([] { D("2147483648").ToLong(); }, tooLong);
    ExpectThrow<CQmOverFlowException>([] { D("-2147483649").ToLong(); }, tooLong);
    ExpectThrow<CQmOverFlowException>([] { D("9223372036854775808").ToLongLong(); },
                                      "The Decimal value if to large to fit into a LONGLONG");
    ExpectThrow<CQmOverFlowException>([] { D("-9223372036854775809").ToLongLong(); },
                                      "The Decimal value if to large to fit into a LONGLONG");
    ExpectThrow<CQmOverFlowException>([] { D("1.8E308").ToDouble(); },
                                      "The Decimal value if to large to fit into a Double");
    ExpectThrow<CQmOverFlowException>([] { D("-1.7000000000000000000001E308").ToDouble(); },
                                      "The Decimal value if to large to fit into a Double");
}

TEST(DecimalTest, LongTextsStayLinear) {
    const std::string text = "-" + std::string(50000, '9') + "." + std::string(50000, '1');
    const D value(text);
    EXPECT_EQ(text, Str(value));
    EXPECT_TRUE(value < D(std::string("-") + std::string(50000, '9')));
    EXPECT_EQ(Str(value + D(1) - D(1)), text);
}

}  // namespace
