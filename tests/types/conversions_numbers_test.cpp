#include <qmxml/types/conversions.h>

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

using namespace std::string_literals;

#include <qmxml/core/exception.h>
#include <qmxml/types/big_integer.h>
#include <qmxml/types/decimal.h>

#include "conversion_cases.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using namespace qmxml_test;

namespace {

using C = CConversions;
TEST(ConversionsNumbersTest, DecimalFromStringAppliesTheRuleFirst) {
    EXPECT_EQ("1.5", C::decimalFromString("\t1.50\r\n", kCollapse).ToString());
    EXPECT_EQ("-150", C::decimalFromString("-1.5E2", kNone).ToString());
    // The parser itself skips nothing; the quoted text is the text after the rule.
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString(" 1.5", kNone); }, InvalidChar(0, " 1.5"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("\t1.5", kReplace); }, InvalidChar(0, " 1.5"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString(" 1 5 ", kCollapse); }, InvalidChar(1, "1 5"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("", kCollapse); }, InvalidChar(0, ""));
    ExpectThrow<CQmException>([] { C::decimalFromString("1", static_cast<CWhitespaceUtils::WhitespaceRule>(7)); },
                              "Unknown WhitespaceRule");
}

// Texts the rule leaves alone are parsed where they are; the others are
// parsed, and quoted in messages, as the rule rebuilt them.
TEST(ConversionsNumbersTest, DecimalAndIntegerUnderEveryRule) {
    for (const auto rule : {kNone, kPreserve, kReplace, kCollapse}) {
        EXPECT_EQ("1.5", C::decimalFromString("1.50", rule).ToString()) << rule;
        EXPECT_EQ("-673392.91", C::decimalFromString("-673392.91", rule).ToString()) << rule;
        EXPECT_EQ("-42", C::integerFromString("-42", rule).ToString()) << rule;
    }
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString(" 1.5", kPreserve); }, InvalidChar(0, " 1.5"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("1.5\r\n", kPreserve); },
                                          InvalidChar(3, "1.5\n"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("1.5\n", kReplace); }, InvalidChar(3, "1.5 "));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("1.5  ", kReplace); }, InvalidChar(3, "1.5  "));
    EXPECT_EQ("1.5", C::decimalFromString("1.5 ", kCollapse).ToString());
    EXPECT_EQ("-1.5", C::decimalFromString("\n-1.50", kCollapse).ToString());
    // A rebuilt text ends at a zero byte; one left in place is an invalid char.
    EXPECT_EQ("1.5", C::decimalFromString("1.5\0" "9"s, kCollapse).ToString());
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("1.5\0" "9"s, kNone); }, InvalidChar(3, "1.5"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("1.5\0" "9"s, kPreserve); },
                                          InvalidChar(3, "1.5"));
    EXPECT_EQ("12", C::integerFromString("12\t", kCollapse).ToString());
    EXPECT_EQ("12", C::integerFromString("12\0" "3"s, kCollapse).ToString());
    EXPECT_EQ("12", C::integerFromString(" 12\n", kPreserve).ToString());  // the integer parser trims blanks
    ExpectThrow<CQmInvalidValueException>([] { C::integerFromString("1\t2", kReplace); }, InvalidChar(1, "1 2"));
    ExpectThrow<CQmException>([] { C::integerFromString("1", static_cast<CWhitespaceUtils::WhitespaceRule>(7)); },
                              "Unknown WhitespaceRule");
    // A control character is no whitespace: kept by every rule, then refused.
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString("\x01" "1", kCollapse); },
                                          InvalidChar(0, "\x01" "1"));
    ExpectThrow<CQmInvalidValueException>([] { C::decimalFromString(" 1\x1F ", kCollapse); },
                                          InvalidChar(1, "1\x1F"));
}

TEST(ConversionsNumbersTest, DecimalToStringReadsTheFormatAsPlaces) {
    const CDecimal value("2.345");
    EXPECT_EQ("2.345", C::decimalToString(value));
    EXPECT_EQ("2.345", C::decimalToString(value, ""));
    EXPECT_EQ("2.35", C::decimalToString(value, "2"));
    EXPECT_EQ("2.3450", C::decimalToString(value, "4xyz"));
    EXPECT_EQ("2", C::decimalToString(value, "abc"));  // no number reads as 0
    EXPECT_EQ("2", C::decimalToString(value, "-3"));
    EXPECT_EQ("0.50", C::decimalToString(CDecimal("0.5"), " 2"));
}

TEST(ConversionsNumbersTest, IntegerRoundTripAndErrors) {
    EXPECT_EQ("-42", C::integerFromString(" -42 ", kNone).ToString());
    EXPECT_EQ("42", C::integerFromString("\n+42\t", kCollapse).ToString());
    EXPECT_EQ("1", C::integerFromString("1.9", kCollapse).ToString());
    EXPECT_EQ("0", C::integerToString(C::integerFromString("-0", kNone)));
    const std::string big = "-123456789012345678901234567890";
    EXPECT_EQ(big, C::integerToString(C::integerFromString(big, kCollapse)));
    ExpectThrow<CQmInvalidValueException>([] { C::integerFromString("12x", kCollapse); }, InvalidChar(2, "12x"));
    ExpectThrow<CQmInvalidValueException>([] { C::integerFromString("1 2", kCollapse); }, InvalidChar(1, "1 2"));
    ExpectThrow<CQmInvalidValueException>([] { C::integerFromString("", kNone); }, InvalidChar(0, ""));
}

}  // namespace
