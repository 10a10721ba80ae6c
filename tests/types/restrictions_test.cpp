#include <qmxml/types/restrictions.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include <qmxml/core/exception.h>
#include <qmxml/core/settings.h>
#include <qmxml/types/variant.h>

#include "expect_throw.h"
#include "types/pattern_matcher.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectThrow;
using namespace std::string_literals;

namespace {

using R = CPrimitiveRestrictions;

R Bounds(const char* minInc, const char* maxInc, const char* minExc, const char* maxExc) {
    return R("", -1, -1, minInc, maxInc, minExc, maxExc, -1);
}

R Lengths(int minLength, int maxLength, int length, const char* pattern = "") {
    return R(pattern, minLength, maxLength, "", "", "", "", length);
}

QmVariant Parsed(const std::string& text, ItemType type) {
    QmVariant v;
    v.FromString(text, type, CWhitespaceUtils::WhitespaceRule_None);
    return v;
}

// Checks text (parsed as type) through the dispatcher: passes, or fails with
// "Invalid Value for m [<shown>]".
void ExpectPass(const std::string& text, ItemType type, const R& facets) {
    EXPECT_NO_THROW(R::CheckRestriction("m", Parsed(text, type), type, facets)) << text;
}

void ExpectFail(const std::string& text, ItemType type, const R& facets, const std::string& shown) {
    SCOPED_TRACE(text);
    ExpectThrow<CQmValidationException>([&] { R::CheckRestriction("m", Parsed(text, type), type, facets); },
                                        "Invalid Value for m [" + shown + "]");
}

TEST(PrimitiveRestrictionsTest, ConstructorTakesFacetsInOrder) {
    const R facets = R("\\d+", 1, 5, "2", "9", "1", "10", 3);
    const R copy(facets);
    EXPECT_EQ("\\d+|1|5|2|9|1|10|3",
              copy.GetPattern() + "|" + std::to_string(copy.GetMinLength()) + "|" +
                  std::to_string(copy.GetMaxLength()) + "|" + copy.GetMinInclusive() + "|" + copy.GetMaxInclusive() +
                  "|" + copy.GetMinExclusive() + "|" + copy.GetMaxExclusive() + "|" + std::to_string(copy.GetLength()));
    const R nulls(nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1);
    EXPECT_EQ("", nulls.GetPattern() + nulls.GetMinInclusive() + nulls.GetMaxExclusive());
}

TEST(PrimitiveRestrictionsTest, UnsetFacetsAcceptEveryType) {
    const R none;
    const char* texts[] = {"0A",  "YQ==", "-128", "-1", "-5", "-9", "255", "1", "4294967295", "18446744073709551615",
                           "NaN", "-INF", "P1M",  "2024-01", "--02-29", "-0001", "--12", "---31", "2024-01-01",
                           "2024-01-01T00:00:00", "23:59:59", "x", "", "false", "-0.5", "-10"};
    for (int t = ItemType_hexBinary; t <= ItemType_integer; ++t) ExpectPass(texts[t - 1], ItemType(t), none);
    QmVariant nil;
    nil.SetNil();  // nil content has nothing to check, even for a wrong type
    EXPECT_NO_THROW(R::CheckRestriction("m", nil, ItemType_i4, Bounds("1", "", "", "")));
}

TEST(PrimitiveRestrictionsTest, DispatcherRefusesUnknownAndMismatchedTypes) {
    QmVariant v;
    v.SetI4(1);
    ExpectThrow<CQmException>([&] { R::CheckRestriction("m", v, ItemType_None, R()); }, "unknown type [0]");
    ExpectThrow<CQmException>([&] { R::CheckRestriction("m", v, ItemType(27), R()); }, "unknown type [27]");
    ExpectThrow<CQmInvalidStateException>([&] { R::CheckRestriction("m", v, ItemType_i8, R()); },
                                          "Cannot read a variant of type [i4] as [i8]");
}

TEST(PrimitiveRestrictionsTest, SignedIntegerBounds) {
    const R inclusive = Bounds("-10", "10", "", "");
    const R exclusive = Bounds("", "", "-10", "10");
    for (ItemType t : {ItemType_i1, ItemType_i2, ItemType_i4, ItemType_i8}) {
        SCOPED_TRACE(static_cast<int>(t));
        ExpectPass("0", t, inclusive);
        ExpectPass("-10", t, inclusive);
        ExpectPass("10", t, inclusive);
        ExpectFail("-11", t, inclusive, "-11");
        ExpectFail("11", t, inclusive, "11");
            ExpectPass("9", t, exclusive);
        ExpectFail("-10", t, exclusive, "-10");
        ExpectFail("10", t, exclusive, "10");
    }
    ExpectFail("-128", ItemType_i1, Bounds("-127", "", "", ""), "-128");
    ExpectFail("-9223372036854775808", ItemType_i8, Bounds("-9223372036854775807", "", "", ""),
               "-9223372036854775808");
    // The member name is the first field of the message.
    ExpectThrow<CQmValidationException>([] { R::CheckI4("quantity", 5, Bounds("", "", "5", "")); },
                                        "Invalid Value for quantity [5]");
    // Bounds are read under the collapse rule.
    ExpectPass("10", ItemType_i4, Bounds("\t1 ", " 10\n", "", ""));
}

TEST(PrimitiveRestrictionsTest, UnsignedIntegerBoundsPrintUnsigned) {
    const R inclusive = Bounds("3", "200", "", "");
    const R exclusive = Bounds("", "", "3", "200");
    for (ItemType t : {ItemType_ui1, ItemType_ui2, ItemType_ui4, ItemType_ui8}) {
        SCOPED_TRACE(static_cast<int>(t));
        ExpectPass("3", t, inclusive);
        ExpectPass("200", t, inclusive);
        ExpectFail("2", t, inclusive, "2");
        ExpectFail("201", t, inclusive, "201");
        ExpectFail("3", t, exclusive, "3");
        ExpectFail("200", t, exclusive, "200");
    }
    ExpectFail("255", ItemType_ui1, inclusive, "255");
    ExpectFail("65535", ItemType_ui2, inclusive, "65535");
    ExpectFail("4294967295", ItemType_ui4, inclusive, "4294967295");
    ExpectFail("18446744073709551615", ItemType_ui8, inclusive, "18446744073709551615");
    ExpectPass("18446744073709551615", ItemType_ui8, Bounds("9223372036854775808", "", "", ""));
}

TEST(PrimitiveRestrictionsTest, BoundsAreParsedInOrderWithTheMemberType) {
    const R facets = Bounds("1", "abc", "", "");
    // minInclusive fails before the bad maxInclusive is read.
    ExpectFail("0", ItemType_i4, facets, "0");
    ExpectThrow<CQmInvalidValueException>([&] { R::CheckRestriction("m", Parsed("5", ItemType_i4), ItemType_i4, facets); },
                                          "The value [abc] can not be converted to a i4");
    // The bound is parsed as the member's type, with that type's range.
    ExpectThrow<CQmInvalidValueException>([] { R::CheckI1("m", 0, Bounds("", "200", "", "")); },
                                          "The value [200] is to large to fit in a i1");
    ExpectThrow<CQmInvalidValueException>([] { R::CheckDate("m", Parsed("2024-01-01", ItemType_date).GetDate(), Bounds("2024-01", "", "", "")); },
                                          "Invalid XSD Date [2024-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
}

TEST(PrimitiveRestrictionsTest, RepeatedChecksKeepTheirResultsAndFollowSetters) {
    // Checks keep the parsed bounds and the compiled pattern between calls;
    // every call must still give what a first call gives.
    R facets = Bounds("1", "abc", "", "");
    for (int round = 0; round < 3; ++round) {
        ExpectFail("0", ItemType_i4, facets, "0");
        ExpectThrow<CQmInvalidValueException>(
            [&] { R::CheckRestriction("m", Parsed("5", ItemType_i4), ItemType_i4, facets); },
            "The value [abc] can not be converted to a i4");
    }
    // Bounds kept for one item type are not used for another.
    ExpectThrow<CQmInvalidValueException>([&] { R::CheckUI1("m", 5, facets); },
                                          "The value [abc] can not be converted to a ui4");
    const R copy = facets;
    facets.SetMaxInclusive("10");
    ExpectPass("5", ItemType_i4, facets);
    ExpectFail("11", ItemType_i4, facets, "11");
    facets.SetMinInclusive("");
    ExpectPass("-3", ItemType_i4, facets);
    // The copy made before keeps the facets it had.
    ExpectFail("0", ItemType_i4, copy, "0");
    ExpectThrow<CQmInvalidValueException>([&] { R::CheckI4("m", 5, copy); },
                                          "The value [abc] can not be converted to a i4");

    R unsignedFacets = Bounds("", "", "2", "");
    for (int round = 0; round < 2; ++round) {
        ExpectFail("2", ItemType_ui8, unsignedFacets, "2");
        ExpectPass("18446744073709551615", ItemType_ui8, unsignedFacets);
    }

    R pattern = Lengths(-1, -1, -1, "\\d{2}");
    for (int round = 0; round < 2; ++round) {
        ExpectPass("12", ItemType_string, pattern);
        ExpectFail("123", ItemType_string, pattern, "123");
    }
    pattern.SetPattern("[a-z]+");
    ExpectPass("abc", ItemType_string, pattern);
    ExpectFail("12", ItemType_string, pattern, "12");
    pattern.SetMaxLength(2);
    ExpectFail("abc", ItemType_string, pattern, "abc");
}

TEST(PrimitiveRestrictionsTest, KeptPatternFollowsTheLocalEncoding) {
    const R latin("\\p{IsLatin-1Supplement}", -1, -1, "", "", "", "", -1);
    ExpectPass("\xC3\xA9", ItemType_string, latin);  // e-acute in UTF-8
    SetLocalCharEncoding(1252);
    bool passed = false;
    try {
        R::CheckString("m", "\xE9", latin);  // e-acute in Windows-1252
        passed = true;
    } catch (...) {
    }
    SetLocalCharEncoding(65001);
    EXPECT_TRUE(passed);
    ExpectPass("\xC3\xA9", ItemType_string, latin);
}

TEST(PrimitiveRestrictionsTest, RealBounds) {
    for (ItemType t : {ItemType_r4, ItemType_r8}) {
        SCOPED_TRACE(static_cast<int>(t));
        ExpectPass("0.5", t, Bounds("0.5", "1.5", "", ""));
        ExpectFail("0.25", t, Bounds("0.5", "", "", ""), "0.250000");
        ExpectFail("1.5", t, Bounds("", "", "", "1.5"), "1.500000");
        ExpectPass("1.25", t, Bounds("", "", "", "1.5"));
        ExpectFail("-INF", t, Bounds("-1e30", "", "", ""), "-inf");
        ExpectPass("INF", t, Bounds("", "", "1e30", ""));
        // NaN is unordered: it fails any bound and passes none.
        ExpectFail("NaN", t, Bounds("", "", "", "INF"), "nan");
        ExpectFail("1", t, Bounds("NaN", "", "", ""), "1.000000");
    }
}

TEST(PrimitiveRestrictionsTest, CalendarPartBounds) {
    ExpectPass("2000", ItemType_year, Bounds("1900", "2000", "", ""));
    ExpectFail("2001", ItemType_year, Bounds("1900", "2000", "", ""), "2001");
    // A negative year compares as the year it is and prints as yearToString does.
    ExpectFail("-0001", ItemType_year, Bounds("1900", "", "", ""), "65535");
    ExpectPass("-0001", ItemType_year, Bounds("-0005", "0001", "", ""));
    ExpectPass("--03", ItemType_month, Bounds("--03", "--06", "", ""));
    ExpectFail("--07", ItemType_month, Bounds("--03", "--06", "", ""), "7");
    ExpectFail("--03", ItemType_month, Bounds("", "", "--03", ""), "3");
    ExpectPass("---15", ItemType_day, Bounds("", "", "---01", "---31"));
    ExpectFail("---31", ItemType_day, Bounds("", "", "---01", "---31"), "31");
}

TEST(PrimitiveRestrictionsTest, DateBoundsHonourZonesAndFailWhenIndeterminate) {
    const R day = Bounds("2024-01-01", "2024-12-31", "", "");
    ExpectPass("2024-01-01", ItemType_date, day);
    ExpectPass("2024-12-31", ItemType_date, day);
    ExpectFail("2025-01-01", ItemType_date, day, "2025-01-01");
    ExpectFail("2023-12-31", ItemType_date, day, "2023-12-31");
    // 2024-01-15+01:00 begins an hour before 2024-01-15Z.
    ExpectFail("2024-01-15Z", ItemType_date, Bounds("", "2024-01-15+01:00", "", ""), "2024-01-15Z");
    ExpectPass("2024-01-15+01:00", ItemType_date, Bounds("", "", "", "2024-01-15Z"));

    const R instant = Bounds("", "", "2024-01-15T12:00:00Z", "");
    ExpectFail("2024-01-15T12:00:00Z", ItemType_datetime, instant, "2024-01-15T12:00:00Z");
    ExpectFail("2024-01-15T12:30:00+00:30", ItemType_datetime, instant, "2024-01-15T12:30:00+00:30");
    ExpectPass("2024-01-15T12:00:00-00:30", ItemType_datetime, instant);
    // Without a zone the value could lie either side of a zoned bound.
    ExpectFail("2024-01-15T12:00:00", ItemType_datetime, Bounds("2024-01-15T12:00:00Z", "", "", ""),
               "2024-01-15T12:00:00");
    ExpectFail("2024-01-15T12:00:00", ItemType_datetime, Bounds("", "2024-01-15T12:00:00Z", "", ""),
               "2024-01-15T12:00:00");
    ExpectPass("2024-01-17T12:00:00", ItemType_datetime, Bounds("2024-01-15T12:00:00Z", "", "", ""));

    ExpectFail("10:00:00", ItemType_time, Bounds("", "", "10:00:00", ""), "10:00:00");
    ExpectPass("10:00:00.001", ItemType_time, Bounds("", "", "10:00:00", ""));
    ExpectFail("2024-03", ItemType_yearMonth, Bounds("", "2024-02", "", ""), "2024-03");
    ExpectPass("--02-29", ItemType_monthDay, Bounds("--02-01", "--02-29", "", ""));
    ExpectFail("--03-01", ItemType_monthDay, Bounds("--02-01", "--02-29", "", ""), "--03-01");
}

TEST(PrimitiveRestrictionsTest, DurationBoundsFailWhenIndeterminate) {
    ExpectPass("PT59M", ItemType_duration, Bounds("", "", "", "PT1H"));
    ExpectFail("PT60M", ItemType_duration, Bounds("", "", "", "PT1H"), "PT60M");
    ExpectPass("PT60M", ItemType_duration, Bounds("PT1H", "PT1H", "", ""));
    ExpectFail("-P1D", ItemType_duration, Bounds("PT0S", "", "", ""), "-P1D");
    // A month is 28 to 31 days long.
    ExpectFail("P1M", ItemType_duration, Bounds("", "P30D", "", ""), "P1M");
    ExpectFail("P1M", ItemType_duration, Bounds("P30D", "", "", ""), "P1M");
    ExpectPass("P1M", ItemType_duration, Bounds("P27D", "P32D", "", ""));
}

TEST(PrimitiveRestrictionsTest, DecimalAndIntegerBounds) {
    const R money = Bounds("0.01", "", "", "1000000");
    ExpectPass("0.01", ItemType_decimal, money);
    ExpectPass("999999.999", ItemType_decimal, money);
    ExpectFail("0.005", ItemType_decimal, money, "0.005");
    ExpectFail("1000000.0", ItemType_decimal, money, "1000000");
    ExpectFail("-5", ItemType_decimal, Bounds("", "", "-5.0", ""), "-5");

    const R big = Bounds("-99999999999999999999", "99999999999999999999", "", "");
    ExpectPass("99999999999999999999", ItemType_integer, big);
    ExpectFail("100000000000000000000", ItemType_integer, big, "100000000000000000000");
    ExpectFail("-100000000000000000000", ItemType_integer, big, "-100000000000000000000");
    ExpectFail("7", ItemType_integer, Bounds("", "", "7", ""), "7");
}

TEST(PrimitiveRestrictionsTest, BinaryLengthsCountBytesAndPrintHex) {
    const R three = Lengths(-1, -1, 3);
    ExpectPass("0A0B0C", ItemType_hexBinary, three);
    ExpectFail("0A0B", ItemType_hexBinary, three, "0A0B");
    ExpectPass("AQID", ItemType_base64Binary, three);
    ExpectFail("AQIDBA==", ItemType_base64Binary, three, "01020304");
    ExpectPass("", ItemType_hexBinary, Lengths(0, 0, -1));
    ExpectFail("", ItemType_base64Binary, Lengths(1, -1, -1), "");
    // Bounds do not apply to binary data.
    ExpectPass("FF", ItemType_hexBinary, Bounds("1", "1", "1", "1"));
}

TEST(PrimitiveRestrictionsTest, StringLengthsThenPattern) {
    ExpectPass("", ItemType_string, Lengths(0, -1, -1));
    ExpectFail("a", ItemType_string, Lengths(-1, -1, 0), "a");
    ExpectFail("ab", ItemType_string, Lengths(3, -1, -1), "ab");
    ExpectPass("abc", ItemType_string, Lengths(3, 3, 3));
    // Lengths are checked first, so a matching value still fails them.
    ExpectFail("abc", ItemType_string, Lengths(-1, 2, -1, "[a-z]+"), "abc");
    // The count is in bytes of the narrow string.
    ExpectFail("\xC3\xA9", ItemType_string, Lengths(-1, 1, -1), "\xC3\xA9");

    const R digits("\\d{3}", -1, -1, "", "", "", "", -1);
    ExpectPass("123", ItemType_string, digits);
    ExpectFail("1234", ItemType_string, digits, "1234");
    ExpectFail("12a", ItemType_string, digits, "12a");
    ExpectPass("", ItemType_string, digits);  // empty values skip the pattern

    const R name("\\i\\c*", -1, -1, "", "", "", "", -1);
    ExpectPass("a1", ItemType_string, name);
    ExpectPass("_x.y-z:w", ItemType_string, name);
    ExpectFail("1a", ItemType_string, name, "1a");
}

TEST(PrimitiveRestrictionsTest, CharAndBooleanAreCheckedOnTheirLexicalForm) {
    const R upper("[A-Z]", -1, -1, "", "", "", "", -1);
    ExpectPass("Q", ItemType_char, upper);
    ExpectFail("q", ItemType_char, upper, "q");
    ExpectFail("Q", ItemType_char, Lengths(2, -1, -1), "Q");

    ExpectPass("1", ItemType_boolean, R("true", -1, -1, "", "", "", "", -1));
    ExpectFail("0", ItemType_boolean, R("true", -1, -1, "", "", "", "", -1), "false");
    ExpectFail("false", ItemType_boolean, Lengths(-1, -1, 4), "false");
    ExpectPass("TRUE", ItemType_boolean, Lengths(-1, -1, 4));
}

// A value read from a document carries the text it was read from: a boolean's
// pattern and lengths see that text after the whitespace rule.
TEST(PrimitiveRestrictionsTest, BooleanFromADocumentIsCheckedOnTheDocumentText) {
    constexpr auto collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
    struct Case {
        const char* text;
        const char* pattern;
        const char* shownOnFailure;  // null: passes
    };
    const Case cases[] = {
        {"1", "[01]", nullptr},          {"0", "[01]", nullptr},           {" 1\n", "[01]", nullptr},
        {"true", "[01]", "true"},        {"false", "[01]", "false"},       {"true", "true|false", nullptr},
        {"false", "true|false", nullptr}, {"1", "true|false", "1"},        {"0", "true|false", "0"},
        {"TRUE", "true|false", "TRUE"},  {"\tfalse ", "false", nullptr},  {"0", "1", "0"},
    };
    for (const Case& c : cases) {
        const std::string text = c.text;
        const R facets(c.pattern, -1, -1, "", "", "", "", -1);
        const QmVariant value = Parsed(CWhitespaceUtils::Collapse(text), ItemType_boolean);
        SCOPED_TRACE(c.text + std::string(" ~ ") + c.pattern);
        if (c.shownOnFailure == nullptr) {
            EXPECT_NO_THROW(R::CheckRestriction("flag", value, ItemType_boolean, facets, text, collapse));
        } else {
            ExpectThrow<CQmValidationException>(
                [&] { R::CheckRestriction("flag", value, ItemType_boolean, facets, text, collapse); },
                "Invalid Value for flag [" + std::string(c.shownOnFailure) + "]");
        }
    }
    // The length facets count the document's characters too.
    ExpectThrow<CQmValidationException>(
        [] { R::CheckRestriction("flag", Parsed("1", ItemType_boolean), ItemType_boolean, Lengths(-1, -1, 4), "1",
                                 CWhitespaceUtils::WhitespaceRule_Collapse); },
        "Invalid Value for flag [1]");
    EXPECT_NO_THROW(R::CheckRestriction("flag", Parsed("true", ItemType_boolean), ItemType_boolean,
                                        Lengths(-1, -1, 4), " true ", CWhitespaceUtils::WhitespaceRule_Collapse));
}

TEST(PrimitiveRestrictionsTest, DocumentTextLeavesOtherTypesAndOddVariantsAsTheyWere) {
    constexpr auto collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
    // Bounds see the value and print it as they always do.
    ExpectThrow<CQmValidationException>(
        [&] { R::CheckRestriction("n", Parsed("5", ItemType_i4), ItemType_i4, Bounds("", "", "5", ""), "+05", collapse); },
        "Invalid Value for n [5]");
    // A string is its own lexical form; the text adds nothing.
    ExpectPass("ab", ItemType_string, Lengths(-1, -1, -1, "[a-z]+"));
    EXPECT_NO_THROW(R::CheckRestriction("s", Parsed("ab", ItemType_string), ItemType_string,
                                        Lengths(-1, -1, -1, "[a-z]+"), "ab", collapse));
    // Nil has no value to restrict; a variant of another type fails in its getter.
    QmVariant nil;
    nil.SetBoolean(true);
    nil.SetNil();
    EXPECT_NO_THROW(R::CheckRestriction("flag", nil, ItemType_boolean, Lengths(-1, -1, -1, "[01]"), "", collapse));
    ExpectThrow<CQmInvalidStateException>(
        [] { R::CheckRestriction("flag", Parsed("1", ItemType_i4), ItemType_boolean, Lengths(-1, -1, -1, "[01]"), "1",
                                 CWhitespaceUtils::WhitespaceRule_Collapse); },
        "Cannot read a variant of type [i4] as [boolean]");
}

TEST(PrimitiveRestrictionsTest, BadPatternFailsEveryNonEmptyValue) {
    const R bad("a(", -1, -1, "", "", "", "", -1);
    const std::string error = "Invalid Regular Expression: a( Error: 'missing closing parenthesis'";
    ExpectThrow<CQmException>([] { R::MatchesPattern("a", "a("); }, error);
    ExpectThrow<CQmValidationException>([&] { R::CheckString("code", "a(", bad); },
                                        error + "\nInvalid Value for code [a(]");
    ExpectThrow<CQmValidationException>([&] { R::CheckString("code", "xyz", bad); },
                                        error + "\nInvalid Value for code [xyz]");
    EXPECT_NO_THROW(R::CheckString("code", "", bad));
    // Unknown block names are left to PCRE2, which refuses them.
    ExpectThrow<CQmException>([] { R::MatchesPattern("a", "\\p{IsKlingon}"); },
                              "Invalid Regular Expression: \\p{IsKlingon} Error: 'unknown property after \\P or \\p'");
}

TEST(PatternTranslationTest, BlockEscapesAndAnchoring) {
    EXPECT_EQ("^(?:[\\000-\\177][\\200-\\377][\\400-\\577][\\600-\\x{24F}])$",
              patterns::Translate("\\p{IsBasicLatin}\\p{IsLatin-1Supplement}\\p{IsLatinExtended-A}"
                                  "\\p{IsLatinExtended-B}"));
    EXPECT_EQ("^(?:[^\\x{370}-\\x{3FF}])$", patterns::Translate("\\P{IsGreek}"));
    // An escaped backslash hides the letter after it from the escapes.
    EXPECT_EQ("^(?:a\\\\i\\\\\\\\w)$", patterns::Translate("a\\\\i\\\\\\\\w"));
    // Other escapes, unknown blocks and a trailing backslash pass unchanged.
    EXPECT_EQ("^(?:\\d\\p{Lu}\\p{IsKlingon}\\)$", patterns::Translate("\\d\\p{Lu}\\p{IsKlingon}\\"));
    // Inside brackets a block is the items of its range, its negation those of the rest.
    EXPECT_EQ("^(?:[a\\000-\\177])$", patterns::Translate("[a\\p{IsBasicLatin}]"));
    EXPECT_EQ("^(?:[\\x{80}-\\x{10FFFF}])$", patterns::Translate("[\\P{IsBasicLatin}]"));
}

TEST(PatternTranslationTest, MatchesWholeValues) {
    EXPECT_TRUE(R::MatchesPattern("a", "a|b"));
    EXPECT_TRUE(R::MatchesPattern("b", "a|b"));
    EXPECT_FALSE(R::MatchesPattern("ab", "a|b"));
    EXPECT_FALSE(R::MatchesPattern("abc\n", "abc"));
    EXPECT_FALSE(R::MatchesPattern("abc\n", "[a-z]+"));
    EXPECT_TRUE(R::MatchesPattern("abc\n", "abc\\n"));
    // "." is any character but a line end, as in XML Schema.
    EXPECT_FALSE(R::MatchesPattern("\n", "."));
    EXPECT_FALSE(R::MatchesPattern("\r", "."));
    EXPECT_TRUE(R::MatchesPattern("\xC3\xA9", "."));  // one character, two bytes
    EXPECT_TRUE(R::MatchesPattern("", ""));
    EXPECT_FALSE(R::MatchesPattern("a", ""));

    EXPECT_TRUE(R::MatchesPattern("a\\b", "a\\\\b"));
    EXPECT_FALSE(R::MatchesPattern("a b", "a\\\\b"));
    EXPECT_TRUE(R::MatchesPattern("a\\i", "a\\\\i"));
    EXPECT_FALSE(R::MatchesPattern("ab", "a\\\\i"));

    EXPECT_TRUE(R::MatchesPattern("1", "\\I"));
    EXPECT_FALSE(R::MatchesPattern("a", "\\I"));
    EXPECT_TRUE(R::MatchesPattern("@", "\\C"));
    EXPECT_FALSE(R::MatchesPattern(":", "\\C"));
    EXPECT_TRUE(R::MatchesPattern("\xC3\xA9t\xC3\xA9", "\\i\\c*"));  // letters beyond ASCII
    EXPECT_TRUE(R::MatchesPattern("\xD9\xA3", "\\d"));                 // ARABIC-INDIC DIGIT THREE
}

TEST(PatternTranslationTest, BlockEscapes) {
    EXPECT_TRUE(R::MatchesPattern("az~", "\\p{IsBasicLatin}+"));
    EXPECT_FALSE(R::MatchesPattern("\xC3\xA9", "\\p{IsBasicLatin}"));
    EXPECT_TRUE(R::MatchesPattern("\xC3\xA9", "\\p{IsLatin-1Supplement}"));     // U+00E9
    EXPECT_TRUE(R::MatchesPattern("\xC6\x80", "\\p{IsLatinExtended-B}"));       // U+0180
    EXPECT_TRUE(R::MatchesPattern("\xC9\x8F", "\\p{IsLatinExtended-B}"));       // U+024F
    EXPECT_FALSE(R::MatchesPattern("\xC9\x90", "\\p{IsLatinExtended-B}"));      // U+0250
    EXPECT_FALSE(R::MatchesPattern("\xC5\xBF", "\\p{IsLatinExtended-B}"));      // U+017F
    EXPECT_TRUE(R::MatchesPattern("\xCE\xB1\xCE\xB2", "\\p{IsGreek}+"));        // alpha beta
    EXPECT_FALSE(R::MatchesPattern("\xCE\xB1", "\\P{IsGreek}"));
    EXPECT_TRUE(R::MatchesPattern("a", "\\P{IsGreek}"));
    EXPECT_TRUE(R::MatchesPattern("\xE4\xB8\xAD", "\\p{IsCJKUnifiedIdeographs}"));       // U+4E2D
    EXPECT_TRUE(R::MatchesPattern("\xF0\x9D\x84\x9E", "\\p{IsMusicalSymbols}"));         // U+1D11E
    EXPECT_TRUE(R::MatchesPattern("\xF3\xB0\x80\x80", "\\p{IsPrivateUse}"));             // U+F0000
    EXPECT_TRUE(R::MatchesPattern("\xEF\xBB\xBF", "\\p{IsSpecials}"));                   // U+FEFF
    EXPECT_FALSE(R::MatchesPattern("\xEF\xBB\xBE", "\\p{IsSpecials}"));                  // U+FEFE
    // No UTF-8 text holds a surrogate.
    EXPECT_FALSE(R::MatchesPattern("a", "\\p{IsHighSurrogates}"));
    EXPECT_TRUE(R::MatchesPattern("a", "\\P{IsLowSurrogates}"));
}

TEST(PatternTranslationTest, LocalEncodingIsConvertedToUtf8) {
    SetLocalCharEncoding(1252);
    bool latin = false;
    bool basic = true;
    try {
        latin = R::MatchesPattern("\xE9", "\\p{IsLatin-1Supplement}");  // e-acute in Windows-1252
        basic = R::MatchesPattern("\xE9", "\\p{IsBasicLatin}");
    } catch (...) {
        SetLocalCharEncoding(65001);
        throw;
    }
    SetLocalCharEncoding(65001);
    EXPECT_TRUE(latin);
    EXPECT_FALSE(basic);
}

TEST(PatternMatchingTest, RunawayBacktrackingEndsInAnException) {
    const std::string as(100000, 'a');
    // A required final character lets the matcher see at once that this fails.
    EXPECT_FALSE(R::MatchesPattern(as, "(a+)+b"));
    ExpectThrow<CQmException>([&] { R::MatchesPattern(as, "(a+)+[bd]"); },
                              "Failed to match the Regular Expression: (a+)+[bd] Error: 'match limit exceeded'");
    ExpectThrow<CQmValidationException>(
        [&] { R::CheckString("m", as + "c", R("(a|aa)+[bd]", -1, -1, "", "", "", "", -1)); },
        "Failed to match the Regular Expression: (a|aa)+[bd] Error: 'match limit exceeded'\nInvalid Value for m [" +
            as + "c]");
    // Invalid UTF-8 in the value is reported, not matched.
    ExpectThrow<CQmException>([] { R::MatchesPattern("\xC3", "."); },
                              "Failed to match the Regular Expression: . Error: 'UTF-8 error: 1 byte missing at end'");
    // The thread goes on matching normally afterwards.
    EXPECT_TRUE(R::MatchesPattern(as, "a+"));
    EXPECT_TRUE(R::MatchesPattern("ab", "(a+)+b"));
}

// Pure ASCII subjects skip the engine's UTF-8 check; any other byte keeps
// it, so invalid UTF-8 is reported exactly as before, after an ASCII prefix too.
TEST(PatternMatchingTest, AsciiAndNonAsciiSubjects) {
    EXPECT_TRUE(R::MatchesPattern("ABC-1234", "[A-Z]{3}-\\d{4}"));
    EXPECT_FALSE(R::MatchesPattern("ABC-12a4", "[A-Z]{3}-\\d{4}"));
    EXPECT_TRUE(R::MatchesPattern("\x7F", "\\p{IsBasicLatin}"));      // the last ASCII byte
    EXPECT_TRUE(R::MatchesPattern("\x01\x7F", ".."));
    EXPECT_FALSE(R::MatchesPattern("12\0" "45"s, "\\d{5}"));            // a zero byte is ASCII too
    EXPECT_TRUE(R::MatchesPattern("12\0" "45"s, ".{5}"));
    EXPECT_TRUE(R::MatchesPattern("\xC2\x80", "\\p{IsLatin-1Supplement}"));  // U+0080, the first beyond
    EXPECT_TRUE(R::MatchesPattern("ABC\xC3\xA9", "[A-Z]{3}."));
    EXPECT_FALSE(R::MatchesPattern("ABC\xC3\xA9", "[A-Z]{4}"));
    const auto invalid = [](const std::string& value, const char* error) {
        ExpectThrow<CQmException>([&] { R::MatchesPattern(value, ".*"); },
                                  std::string("Failed to match the Regular Expression: .* Error: 'UTF-8 error: ") +
                                      error + "'");
    };
    invalid("ABC\xFF", "illegal byte (0xfe or 0xff)");
    invalid("ABC-123\x80", "isolated byte with 0x80 bit set");
    invalid("\xC0\xAF", "overlong 2-byte sequence");
    invalid("a\xED\xA0\x80", "code points 0xd800-0xdfff are not defined");
    invalid("\xC3\xA9\xC3", "1 byte missing at end");
    invalid("\xF4\x90\x80\x80", "code points greater than 0x10ffff are not defined");
    // The kept pattern of a facet takes the same paths.
    const R facets("[A-Z]{3}-\\d{4}", -1, -1, "", "", "", "", -1);
    for (int round = 0; round < 2; ++round) {
        R::CheckString("m", "ABC-1234", facets);
        ExpectThrow<CQmValidationException>([&] { R::CheckString("m", "ABC-12345", facets); },
                                            "Invalid Value for m [ABC-12345]");
        ExpectThrow<CQmValidationException>([&] { R::CheckString("m", "ABC-123\xFF", facets); },
                                            "Failed to match the Regular Expression: [A-Z]{3}-\\d{4} Error: "
                                            "'UTF-8 error: illegal byte (0xfe or 0xff)'\nInvalid Value for m "
                                            "[ABC-123\xFF]");
    }
}

// The first checks of a fresh facet set prepare its pattern and bounds once,
// whichever thread gets there first; every thread sees them complete.
TEST(PatternMatchingTest, FreshFacetsPreparedByConcurrentChecks) {
    for (int round = 0; round < 20; ++round) {
        const R pattern("[A-Z]{3}-\\d{4}", -1, -1, "", "", "", "", -1);
        const R bounds(nullptr, -1, -1, "1", "10000", nullptr, nullptr, -1);
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < 50; ++i) {
                    const bool good = (i + t) % 2 == 0;
                    try {
                        R::CheckString("m", good ? "ABC-1234" : "ABC-12345", pattern);
                        if (!good) ++wrong;
                    } catch (const CQmValidationException& e) {
                        if (good || e.GetMessage() != "Invalid Value for m [ABC-12345]") ++wrong;
                    }
                    try {
                        R::CheckI4("q", good ? 10000 : 10001, bounds);
                        if (!good) ++wrong;
                    } catch (const CQmValidationException& e) {
                        if (good || e.GetMessage() != "Invalid Value for q [10001]") ++wrong;
                    }
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(0, wrong.load()) << round;
    }
}

TEST(PatternMatchingTest, CacheCompilesOnceAndAgreesWithFreshCompiles) {
    const std::string fresh = "[A-Z]{3}-\\d{4}#cache-test";
    const std::size_t before = patterns::CachedCount();
    EXPECT_TRUE(R::MatchesPattern("ABC-1234#cache-test", fresh));
    const std::size_t after = patterns::CachedCount();
    EXPECT_TRUE(after == before + 1 || after == 1);  // 1 if the cache just started over
    EXPECT_FALSE(R::MatchesPattern("AB-1234#cache-test", fresh));
    EXPECT_EQ(after, patterns::CachedCount());

    struct Case {
        const char* value;
        const char* pattern;
    };
    const Case cases[] = {{"ABC-1234", "[A-Z]{3}-\\d{4}"}, {"ABC-12345", "[A-Z]{3}-\\d{4}"},
                          {"12345", "\\d{5}"},             {"1234\n", "\\d{5}"},
                          {"a@b.org", "[^@\\s]+@[^@\\s]+"}, {"a@b@c", "[^@\\s]+@[^@\\s]+"},
                          {"ab", "a|b"},                   {"a\\b", "a\\\\b"},
                          {"x1", "\\i\\c*"},               {"\xCE\xB1", "\\p{IsGreek}"}};
    for (int round = 0; round < 2; ++round) {
        for (const Case& c : cases) {
            EXPECT_EQ(patterns::MatchUncached(c.value, c.pattern), R::MatchesPattern(c.value, c.pattern))
                << c.value << " ~ " << c.pattern;
        }
    }
    // The compile error is kept too, and reported alike.
    for (int round = 0; round < 2; ++round) {
        ExpectThrow<CQmException>([] { R::MatchesPattern("x", "[x"); },
                                  "Invalid Regular Expression: [x Error: 'missing terminating ] for character class'");
        ExpectThrow<CQmException>([] { patterns::MatchUncached("x", "[x"); },
                                  "Invalid Regular Expression: [x Error: 'missing terminating ] for character class'");
    }

    // Threads sharing the cache get the same answers.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                const Case& c = cases[i % (sizeof cases / sizeof cases[0])];
                if (R::MatchesPattern(c.value, c.pattern) != patterns::MatchUncached(c.value, c.pattern)) ++wrong;
            }
        });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(0, wrong.load());
}

}  // namespace
