#include <qmxml/types/conversions.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <qmxml/core/exception.h>

#include "conversion_cases.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using namespace std::string_literals;
using namespace qmxml_test;

namespace {

using C = CConversions;
std::string TooLarge(const std::string& value, const char* type) {
    return "The value [" + value + "] is to large to fit in a " + type;
}

std::string NotConverted(const std::string& value, const char* type) {
    return "The value [" + value + "] can not be converted to a " + type;
}

TEST(ConversionsI4Test, ParsesDecimalWithinThirtyTwoBits) {
    EXPECT_EQ(0, C::i4FromString("", kNone));
    EXPECT_EQ(0, C::i4FromString("", kCollapse));
    EXPECT_EQ(0, C::i4FromString("   ", kNone));
    EXPECT_EQ(0, C::i4FromString(" \t\n", kPreserve));
    EXPECT_EQ(12, C::i4FromString(" 12", kNone));
    EXPECT_EQ(12, C::i4FromString("+12", kNone));
    EXPECT_EQ(-12, C::i4FromString("-012", kNone));
    EXPECT_EQ(12, C::i4FromString("12 ", kCollapse));
    EXPECT_EQ(12, C::i4FromString("\r\n12\t", kCollapse));
    EXPECT_EQ(2147483647, C::i4FromString("2147483647", kNone));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), C::i4FromString("-2147483648", kNone));
    EXPECT_EQ(7, C::i4FromString("0000000000000000000000000007", kNone));

    ExpectInvalid([] { C::i4FromString("2147483648", kNone); }, TooLarge("2147483648", "i4"));
    ExpectInvalid([] { C::i4FromString("-2147483649", kNone); }, TooLarge("-2147483649", "i4"));
    ExpectInvalid([] { C::i4FromString("99999999999999999999999", kNone); },
                  TooLarge("99999999999999999999999", "i4"));
    // The range test comes first, as with strtol.
    ExpectInvalid([] { C::i4FromString("4294967296x", kNone); }, TooLarge("4294967296x", "i4"));

    ExpectInvalid([] { C::i4FromString("12 ", kNone); }, NotConverted("12 ", "i4"));
    ExpectInvalid([] { C::i4FromString("12abc", kNone); }, NotConverted("12abc", "i4"));
    ExpectInvalid([] { C::i4FromString("abc", kNone); }, NotConverted("abc", "i4"));
    ExpectInvalid([] { C::i4FromString("+", kNone); }, NotConverted("+", "i4"));
    ExpectInvalid([] { C::i4FromString(" -", kNone); }, NotConverted(" -", "i4"));
    ExpectInvalid([] { C::i4FromString("+-1", kNone); }, NotConverted("+-1", "i4"));
    ExpectInvalid([] { C::i4FromString("1.5", kNone); }, NotConverted("1.5", "i4"));
    ExpectInvalid([] { C::i4FromString("1 2", kCollapse); }, NotConverted("1 2", "i4"));
    // The message quotes the text after the rule.
    ExpectInvalid([] { C::i4FromString(" 1\t\t2 ", kCollapse); }, NotConverted("1 2", "i4"));
    ExpectInvalid([] { C::i4FromString("1\r\n", kReplace); }, NotConverted("1 ", "i4"));
    ExpectInvalid([] { C::i4FromString("12\0"s, kNone); }, NotConverted("12", "i4"));

    EXPECT_EQ("-2147483648", C::i4ToString(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ("2147483647", C::i4ToString(2147483647));
    EXPECT_EQ("0", C::i4ToString(0));
}

TEST(ConversionsI4Test, SmallerSignedTypesCheckTheirRangeAfterTheI4Step) {
    EXPECT_EQ(127, C::i1FromString("127", kNone));
    EXPECT_EQ(-128, C::i1FromString("-128", kNone));
    ExpectInvalid([] { C::i1FromString("128", kNone); }, TooLarge("128", "i1"));
    ExpectInvalid([] { C::i1FromString("-129", kNone); }, TooLarge("-129", "i1"));
    ExpectInvalid([] { C::i1FromString(" 200 ", kCollapse); }, TooLarge("200", "i1"));
    // The 32-bit step's messages pass through naming i4.
    ExpectInvalid([] { C::i1FromString("1x", kNone); }, NotConverted("1x", "i4"));
    ExpectInvalid([] { C::i1FromString("3000000000", kNone); }, TooLarge("3000000000", "i4"));

    EXPECT_EQ(32767, C::i2FromString("32767", kNone));
    EXPECT_EQ(-32768, C::i2FromString("-32768", kNone));
    ExpectInvalid([] { C::i2FromString("32768", kNone); }, TooLarge("32768", "i2"));
    ExpectInvalid([] { C::i2FromString("-32769", kNone); }, TooLarge("-32769", "i2"));
    ExpectInvalid([] { C::i2FromString("--1", kNone); }, NotConverted("--1", "i4"));

    EXPECT_EQ("-128", C::i1ToString(static_cast<char>(-128)));
    EXPECT_EQ("127", C::i1ToString(127));
    EXPECT_EQ("-32768", C::i2ToString(-32768));
    EXPECT_EQ("32767", C::i2ToString(32767));
}

TEST(ConversionsUI4Test, ParsesUnsignedAndWrapsNegatives) {
    EXPECT_EQ(0u, C::ui4FromString("", kNone));
    EXPECT_EQ(0u, C::ui4FromString("  ", kNone));
    EXPECT_EQ(4294967295u, C::ui4FromString("4294967295", kNone));
    EXPECT_EQ(4294967295u, C::ui4FromString("-1", kNone));
    EXPECT_EQ(1u, C::ui4FromString("-4294967295", kNone));
    EXPECT_EQ(5u, C::ui4FromString("+5", kNone));
    EXPECT_EQ(5u, C::ui4FromString("\t5\n", kCollapse));

    ExpectInvalid([] { C::ui4FromString("4294967296", kNone); }, TooLarge("4294967296", "ui4"));
    ExpectInvalid([] { C::ui4FromString("-4294967296", kNone); }, TooLarge("-4294967296", "ui4"));
    ExpectInvalid([] { C::ui4FromString("18446744073709551616", kNone); },
                  TooLarge("18446744073709551616", "ui4"));
    ExpectInvalid([] { C::ui4FromString("5 ", kNone); }, NotConverted("5 ", "ui4"));
    ExpectInvalid([] { C::ui4FromString("0x10", kNone); }, NotConverted("0x10", "ui4"));

    EXPECT_EQ("4294967295", C::ui4ToString(4294967295u));
    EXPECT_EQ("0", C::ui4ToString(0));
}

TEST(ConversionsUI4Test, SmallerUnsignedTypesCheckTheUpperBound) {
    EXPECT_EQ(255, C::ui1FromString("255", kNone));
    EXPECT_EQ(0, C::ui1FromString("0", kNone));
    ExpectInvalid([] { C::ui1FromString("256", kNone); }, TooLarge("256", "ui1"));
    // "-1" is 4294967295 after the ui4 step.
    ExpectInvalid([] { C::ui1FromString("-1", kNone); }, TooLarge("-1", "ui1"));
    ExpectInvalid([] { C::ui1FromString("1;", kNone); }, NotConverted("1;", "ui4"));

    EXPECT_EQ(65535, C::ui2FromString("65535", kNone));
    ExpectInvalid([] { C::ui2FromString("65536", kNone); }, TooLarge("65536", "ui2"));
    ExpectInvalid([] { C::ui2FromString("-2", kNone); }, TooLarge("-2", "ui2"));

    EXPECT_EQ("255", C::ui1ToString(255));
    EXPECT_EQ("65535", C::ui2ToString(65535));
}

TEST(ConversionsI8Test, SixtyFourBitParsingIsLenientAtTheEnd) {
    EXPECT_EQ(9223372036854775807LL, C::i8FromString("9223372036854775807x", kNone));
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(),
              C::i8FromString("-9223372036854775808", kNone));
    EXPECT_EQ(12, C::i8FromString("12abc", kNone));
    EXPECT_EQ(0, C::i8FromString("abc", kNone));
    EXPECT_EQ(0, C::i8FromString("", kNone));
    EXPECT_EQ(-3, C::i8FromString(" -3 4", kNone));
    EXPECT_EQ(3, C::i8FromString("\n3\n", kCollapse));

    ExpectInvalid([] { C::i8FromString("9223372036854775808", kNone); },
                  TooLarge("9223372036854775808", "i8"));
    ExpectInvalid([] { C::i8FromString("-9223372036854775809", kNone); },
                  TooLarge("-9223372036854775809", "i8"));
    ExpectInvalid([] { C::i8FromString(" 99999999999999999999999999 ", kCollapse); },
                  TooLarge("99999999999999999999999999", "i8"));

    EXPECT_EQ("-9223372036854775808", C::i8ToString(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ("9223372036854775807", C::i8ToString(9223372036854775807LL));
}

TEST(ConversionsI8Test, UnsignedSixtyFourBitsTakesTheSignedBitPatternOfNegatives) {
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(kMax, C::ui8FromString("-1", kNone));
    EXPECT_EQ(std::uint64_t{1} << 63, C::ui8FromString("-9223372036854775808", kNone));
    EXPECT_EQ(42u, C::ui8FromString("42 and more", kNone));
    // Every printed value reads back.
    EXPECT_EQ(kMax, C::ui8FromString(C::ui8ToString(kMax), kNone));
    EXPECT_EQ("18446744073709551615", C::ui8ToString(kMax));

    ExpectInvalid([] { C::ui8FromString("18446744073709551616", kNone); },
                  TooLarge("18446744073709551616", "ui8"));
    ExpectInvalid([] { C::ui8FromString("-9223372036854775809", kNone); },
                  TooLarge("-9223372036854775809", "ui8"));
}

// The first nineteen digits go unchecked (they always fit in 64 bits); the
// range test starts at the twentieth.
TEST(ConversionsI8Test, RangeAroundTheNineteenthDigit) {
    EXPECT_EQ(9999999999999999999ULL, C::ui8FromString("9999999999999999999", kNone));
    EXPECT_EQ(9223372036854775807LL, C::i8FromString("0009223372036854775807", kNone));
    EXPECT_EQ(1, C::i8FromString("00000000000000000001", kNone));
    EXPECT_EQ(18446744073709551615ULL, C::ui8FromString("0000018446744073709551615", kNone));
    EXPECT_EQ(-5, C::i4FromString("-00000000000000000000000005", kNone));
    ExpectInvalid([] { C::ui8FromString("99999999999999999999", kNone); },
                  TooLarge("99999999999999999999", "ui8"));
    ExpectInvalid([] { C::ui8FromString("18446744073709551620", kNone); },
                  TooLarge("18446744073709551620", "ui8"));
    ExpectInvalid([] { C::i8FromString("10000000000000000000", kNone); },
                  TooLarge("10000000000000000000", "i8"));
    ExpectInvalid([] { C::i4FromString("1000000000000000000000000000000", kNone); },
                  TooLarge("1000000000000000000000000000000", "i4"));
    EXPECT_EQ(1234567890123456789LL, C::i8FromString("1234567890123456789z", kNone));
}

TEST(ConversionsFloatTest, SpecialWordsAreExactAndCaseSensitive) {
    EXPECT_TRUE(std::isnan(C::r8FromString("", kNone)));
    EXPECT_TRUE(std::isnan(C::r8FromString("  ", kCollapse)));
    EXPECT_TRUE(std::isnan(C::r8FromString("NaN", kNone)));
    EXPECT_TRUE(std::isnan(C::r8FromString("1.#QNAN", kNone)));
    EXPECT_TRUE(std::isnan(C::r8FromString("-NAN", kNone)));
    EXPECT_TRUE(std::isnan(C::r8FromString(" NaN\n", kCollapse)));
    EXPECT_TRUE(std::isnan(C::r8FromString("-NAN\t", kCollapse)));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), C::r8FromString("INF\0junk"s, kCollapse));
    ExpectInvalid([] { C::r8FromString("INF\0junk"s, kNone); }, NotConverted("INF", "r8"));
    EXPECT_EQ(-std::numeric_limits<double>::infinity(), C::r8FromString("-INF", kNone));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), C::r8FromString("INF", kNone));

    EXPECT_TRUE(std::isnan(C::r4FromString("", kNone)));
    EXPECT_TRUE(std::isnan(C::r4FromString("NaN", kNone)));
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), C::r4FromString("-INF", kNone));
    EXPECT_EQ(std::numeric_limits<float>::infinity(), C::r4FromString("INF", kNone));

    // Words the C library would take, and other spellings, are not XSD forms.
    for (const char* text : {"inf", "-inf", "+INF", "nan", "NAN", "-NaN", "infinity", "Infinity", "INFINITY", "0x1p3",
                             "0x10", "-0X1.8P1", " INF", "NaN ", "NaNa", "Na", "IN", "INF0", "--INF", "1.#QNA",
                             "1.#QNANX", "-NA"}) {
        ExpectInvalid([&] { C::r8FromString(text, kNone); }, NotConverted(text, "r8"));
        ExpectInvalid([&] { C::r4FromString(text, kNone); }, NotConverted(text, "r4"));
    }
}

TEST(ConversionsFloatTest, DecimalFloatingTextAndItsEnd) {
    EXPECT_DOUBLE_EQ(1.5, C::r8FromString("1.5", kNone));
    EXPECT_DOUBLE_EQ(1.5, C::r8FromString(" \t1.5", kNone));
    EXPECT_DOUBLE_EQ(-0.5, C::r8FromString("-.5", kNone));
    EXPECT_DOUBLE_EQ(3.0, C::r8FromString("+3.", kNone));
    EXPECT_DOUBLE_EQ(1250.0, C::r8FromString("1.25E3", kNone));
    EXPECT_DOUBLE_EQ(0.0125, C::r8FromString("1.25e-2", kNone));
    EXPECT_DOUBLE_EQ(12.0, C::r8FromString("12e+0", kNone));
    EXPECT_DOUBLE_EQ(2.5, C::r8FromString("2.5 ", kCollapse));
    EXPECT_TRUE(std::signbit(C::r8FromString("-0", kNone)));
    EXPECT_EQ(0.1, C::r8FromString("0.1", kNone));
    EXPECT_EQ(std::numeric_limits<double>::denorm_min(), C::r8FromString("4.9e-324", kNone));
    EXPECT_FLOAT_EQ(0.1f, C::r4FromString("0.1", kNone));

    // No range test: beyond the range gives an infinity or zero.
    EXPECT_EQ(std::numeric_limits<double>::infinity(), C::r8FromString("1e999", kNone));
    EXPECT_EQ(-std::numeric_limits<double>::infinity(), C::r8FromString("-123.4e99999999999999", kNone));
    EXPECT_EQ(0.0, C::r8FromString("1e-999", kNone));
    EXPECT_EQ(0.0, C::r8FromString("0.000000000000000000001e-320", kNone));
    EXPECT_TRUE(std::signbit(C::r8FromString("-1e-999", kNone)));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), C::r8FromString("1000e306", kNone));
    EXPECT_EQ(std::numeric_limits<float>::infinity(), C::r4FromString("1e39", kNone));
    EXPECT_EQ(0.0, C::r8FromString("0e99999", kNone));

    for (const char* text : {"1.5 ", "1.5x", "1e", "1e+", "1.5e-", ".", "-", "+", "e5", "1..2",
                             "1,5", "abc", "   ", "1 2", "--1"}) {
        ExpectInvalid([&] { C::r8FromString(text, kNone); }, NotConverted(text, "r8"));
    }
    ExpectInvalid([] { C::r4FromString("2.5f", kNone); }, NotConverted("2.5f", "r4"));
    ExpectInvalid([] { C::r8FromString("1.5\0"s, kNone); }, NotConverted("1.5", "r8"));
    ExpectInvalid([] { C::r8FromString("\t1\n\n2 ", kCollapse); }, NotConverted("1 2", "r8"));
}

TEST(ConversionsFloatTest, ParsingIgnoresTheCLocale) {
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous != nullptr ? previous : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // a comma locale, when installed
    const double value = C::r8FromString("2.5", kNone);
    std::setlocale(LC_NUMERIC, saved.c_str());
    EXPECT_DOUBLE_EQ(2.5, value);
}

TEST(ConversionsFloatTest, PrintingSpecialValuesAndPrecision) {
    EXPECT_EQ("NaN", C::r8ToString(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ("NaN", C::r8ToString(-std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ("INF", C::r8ToString(std::numeric_limits<double>::infinity()));
    EXPECT_EQ("-INF", C::r8ToString(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ("NaN", C::r4ToString(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ("INF", C::r4ToString(std::numeric_limits<float>::infinity()));
    EXPECT_EQ("-INF", C::r4ToString(-std::numeric_limits<float>::infinity(), "%.2f"));

    EXPECT_EQ("0.1", C::r8ToString(0.1));
    EXPECT_EQ("0.1", C::r4ToString(0.1f));
    EXPECT_EQ("1.5", C::r8ToString(1.5));
    EXPECT_EQ("-0", C::r8ToString(-0.0));
    EXPECT_EQ("0.3333333333333333", C::r8ToString(1.0 / 3.0));
    EXPECT_EQ("0.3333333", C::r4ToString(1.0f / 3.0f));
    EXPECT_EQ("1e+20", C::r8ToString(1e20));
    EXPECT_EQ("1.797693134862316e+308", C::r8ToString(std::numeric_limits<double>::max()));
    EXPECT_EQ("3.402823e+38", C::r4ToString(std::numeric_limits<float>::max()));

    // Round trips through the default forms.
    for (const double v : {0.1, -2.75, 123456789.125, 1e-300, 6.02214076e23}) {
        EXPECT_DOUBLE_EQ(v, C::r8FromString(C::r8ToString(v), kNone)) << v;
    }

    EXPECT_EQ("2.50", C::r8ToString(2.5, "%.2f"));
    EXPECT_EQ("[2.5]", C::r8ToString(2.5, "[%g]"));
    EXPECT_EQ("100%:3.0e+00", C::r8ToString(3.0, "100%%:%.1e"));
    EXPECT_EQ("1.25", C::r4ToString(1.25f, "%lf").substr(0, 4));
    EXPECT_EQ("2.5", C::r8ToString(2.5, ""));
    // Output longer than the buffer is cut at 47 characters.
    const std::string cut = C::r8ToString(1e300, "%.10f");
    EXPECT_EQ(47u, cut.size());
    EXPECT_EQ("10000000000000000525", cut.substr(0, 20));
}

TEST(ConversionsFloatTest, FormatsThatDoNotPrintOneDoubleAreRefused) {
    for (const char* format : {"%d", "%s", "%f %f", "no conversion", "%*f", "%.*f", "%Lf",
                               "%n", "%", "%10000f", "%.1000f", "%5"}) {
        try {
            C::r8ToString(1.0, format);
            ADD_FAILURE() << "format accepted: " << format;
        } catch (const CQmInvalidParamException& e) {
            EXPECT_EQ("Invalid floating-point format ["s + format + "]", e.GetMessage());
        }
    }
    EXPECT_THROW(C::r4ToString(1.0f, "%x"), CQmInvalidParamException);
}

TEST(ConversionsBooleanTest, AcceptsFourWordsInAnyCase) {
    EXPECT_TRUE(C::booleanFromString("true", kNone));
    EXPECT_TRUE(C::booleanFromString("TRUE", kNone));
    EXPECT_TRUE(C::booleanFromString("tRuE", kNone));
    EXPECT_FALSE(C::booleanFromString("False", kNone));
    EXPECT_TRUE(C::booleanFromString("1", kNone));
    EXPECT_FALSE(C::booleanFromString("0", kNone));
    EXPECT_TRUE(C::booleanFromString(" true\n", kCollapse));

    const auto message = [](const std::string& value) {
        return "A Boolean Value read from an XML document was invalid [" + value +
               "]. Valid values are 'true', 'false', '1', or '0'";
    };
    for (const char* text : {"yes", "", "01", "truex", " true", "2", "t"}) {
        ExpectInvalid([&] { C::booleanFromString(text, kNone); }, message(text));
    }
    ExpectInvalid([] { C::booleanFromString("\ttrue\t", kReplace); }, message(" true "));

    EXPECT_EQ("true", C::booleanToString(true));
    EXPECT_EQ("false", C::booleanToString(false));
}

TEST(ConversionsCharAndStringTest, CharIsExactlyOneCharacter) {
    EXPECT_EQ('a', C::charFromString("a", kNone));
    EXPECT_EQ(' ', C::charFromString(" ", kNone));
    EXPECT_EQ(' ', C::charFromString("\t", kReplace));
    EXPECT_EQ('x', C::charFromString("  x ", kCollapse));

    const auto message = [](const std::string& value) {
        return "The value [" + value +
               "] can not be a char as it is either empty of greater than 1 char long";
    };
    ExpectInvalid([] { C::charFromString("", kNone); }, message(""));
    ExpectInvalid([] { C::charFromString("ab", kNone); }, message("ab"));
    ExpectInvalid([] { C::charFromString(" ", kCollapse); }, message(""));
    ExpectInvalid([] { C::charFromString("\xC3\xA9", kNone); }, message("\xC3\xA9"));

    EXPECT_EQ("z", C::charToString('z'));
    EXPECT_EQ(1u, C::charToString('\0').size());

    EXPECT_EQ(" a\n b ", C::stringFromString(" a\r\n b ", kPreserve));
    EXPECT_EQ("a b", C::stringFromString(" a\r\n b ", kCollapse));
    EXPECT_EQ(" a\r\n b ", C::stringFromString(" a\r\n b ", kNone));
    EXPECT_EQ("x\0y"s, C::stringToString("x\0y"s));
}

TEST(ConversionsRuleTest, EveryParserRejectsAnUnknownRule) {
    const auto bad = static_cast<CWhitespaceUtils::WhitespaceRule>(7);
    const auto expectUnknown = [](auto fn) {
        try {
            fn();
            ADD_FAILURE() << "unknown rule accepted";
        } catch (const CQmInvalidValueException&) {
            ADD_FAILURE() << "unknown rule must be a plain CQmException";
        } catch (const CQmException& e) {
            EXPECT_EQ("Unknown WhitespaceRule", e.GetMessage());
        }
    };
    expectUnknown([&] { C::i4FromString("1", bad); });
    expectUnknown([&] { C::ui8FromString("1", bad); });
    expectUnknown([&] { C::r8FromString("1", bad); });
    expectUnknown([&] { C::booleanFromString("true", bad); });
    expectUnknown([&] { C::charFromString("c", bad); });
    expectUnknown([&] { C::stringFromString("s", bad); });
    expectUnknown([&] { C::hexBinaryFromString("00", bad); });
    expectUnknown([&] { C::base64BinaryFromString("AA==", bad); });
}

TEST(ConversionsBinaryTest, HexAndBase64) {
    const CBinaryData hex = C::hexBinaryFromString(" 0a1B\r\n", kCollapse);
    ASSERT_EQ(2u, hex.GetLength());
    EXPECT_EQ(0x0A, hex[0]);
    EXPECT_EQ(0x1B, hex[1]);
    EXPECT_EQ("0A1B", C::hexBinaryToString(hex));
    EXPECT_EQ(0u, C::hexBinaryFromString("", kNone).GetLength());

    ExpectInvalid([] { C::hexBinaryFromString("abc", kNone); }, "Invalid length in hex string");
    ExpectInvalid([] { C::hexBinaryFromString("0G", kNone); }, "Invalid char in hex string [G]");
    ExpectInvalid([] { C::hexBinaryFromString("0 00", kNone); }, "Invalid char in hex string [ ]");

    const CBinaryData b64 = C::base64BinaryFromString("\tSGVs\nbG8=\n", kPreserve);
    EXPECT_EQ(CBinaryData("Hello"), b64);
    EXPECT_EQ("SGVsbG8=", C::base64BinaryToString(b64));
    EXPECT_EQ(0u, C::base64BinaryFromString("not*base64", kNone).GetLength());
    EXPECT_EQ("", C::base64BinaryToString(CBinaryData()));
}

TEST(ConversionsCalendarTest, YearMonthDayPrinting) {
    EXPECT_EQ("2024", C::yearToString(2024));
    EXPECT_EQ("65535", C::yearToString(65535));
    EXPECT_EQ("--03", C::monthToString(3));
    EXPECT_EQ("--12", C::monthToString(12));
    EXPECT_EQ("---07", C::dayToString(7));
    EXPECT_EQ("---31", C::dayToString(31));
}

}  // namespace
