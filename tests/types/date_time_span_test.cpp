#include <qmxml/types/date_time_span.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

#include <qmxml/core/exception.h>

#include "expect_throw.h"

using namespace QmXmlLib10;

namespace {

using DT = CDateTime;

CDateTimeSpan Span(const char* text) {
    CDateTimeSpan s;
    s.ParseXSDDuration(text);
    return s;
}

void ExpectInvalid(const char* text, const std::string& message) {
    CDateTimeSpan s(1, 2, 3);
    try {
        s.ParseXSDDuration(text);
        ADD_FAILURE() << "no exception for " << (text ? text : "null") << ", expected: " << message;
    } catch (const CQmInvalidValueException& e) {
        EXPECT_EQ(message, e.GetMessage());
    }
    // A failed parse leaves the value cleared.
    EXPECT_EQ("PT0S", s.ToString());
}

std::string Expected(const std::string& text) {
    return "Invalid XSD Duration [" + text + "] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";
}

DT::DTCompareResult Compare(const char* a, const char* b) {
    return Span(a).CompareTo(Span(b));
}

TEST(DateTimeSpanTest, ParsesCountsAsWritten) {
    CDateTimeSpan s = Span("P1Y2M3DT10H30M12.3S");
    EXPECT_EQ(1, s.GetYears());
    EXPECT_EQ(2u, s.GetMonths());
    EXPECT_EQ(3u, s.GetDays());
    EXPECT_EQ(10u, s.GetHours());
    EXPECT_EQ(30u, s.GetMinutes());
    EXPECT_EQ(12u, s.GetSeconds());
    EXPECT_EQ(300, s.GetMilliSeconds());
    EXPECT_EQ(0, s.GetMicroSeconds());
    EXPECT_FALSE(s.IsNegative());
    EXPECT_EQ("P1Y2M3DT10H30M12.3S", s.ToString());

    EXPECT_EQ(90u, Span("PT90M").GetMinutes());
    EXPECT_EQ("PT90M", Span("PT90M").ToString());
    EXPECT_TRUE(Span("-P1Y").IsNegative());
    EXPECT_EQ("-P1Y", Span("-P1Y").ToString());
    EXPECT_EQ("P1D", Span("P1DT0H").ToString());
    EXPECT_EQ("PT0S", Span("P0Y").ToString());
    EXPECT_EQ("PT0S", Span("-PT0S").ToString());
    EXPECT_EQ("P1Y", Span("P0001Y").ToString());
    EXPECT_EQ("PT0.000005S", Span("PT0.000005S").ToString());
    EXPECT_EQ("PT1.000000001S", Span("PT1.000000001S").ToString());
    EXPECT_EQ("PT2.12S", Span("PT2.120S").ToString());
    EXPECT_EQ("PT0S", Span("PT0.000S").ToString());
    EXPECT_EQ(123, Span("PT0.123456789S").GetMilliSeconds());
    EXPECT_EQ(456, Span("PT0.123456789S").GetMicroSeconds());
    EXPECT_EQ(789, Span("PT0.123456789S").GetNanoSeconds());
    EXPECT_EQ("P5M", Span("P5M").ToString());
    EXPECT_EQ("PT5M", Span("PT5M").ToString());

    // Every field at its limit.
    s = Span("P65535Y4294967295M4294967295DT4294967295H18446744073709551615M18446744073709551615.999999999S");
    EXPECT_EQ(65535, s.GetYears());
    EXPECT_EQ(4294967295u, s.GetDays());
    EXPECT_EQ(18446744073709551615u, s.GetMinutes());
    EXPECT_EQ(18446744073709551615u, s.GetSeconds());
    EXPECT_EQ("P65535Y4294967295M4294967295DT4294967295H18446744073709551615M18446744073709551615.999999999S",
              s.ToString());
    EXPECT_EQ(1, Span(("P" + std::string(1000, '0') + "1Y").c_str()).GetYears());
}

TEST(DateTimeSpanTest, RejectsEveryOtherShape) {
    ExpectInvalid(nullptr, "Invalid XSD Duration (Null String)");
    ExpectInvalid("", "Invalid XSD Duration (Empty String)");
    for (const char* text : {"P", "PT", "-P", "-", "+P1Y", "1Y", "P1M1Y", "P1Y1Y", "PT1H1H", "PT1S1M", "P1H",
                             "PT1D", "P1.5Y", "PT1.S", "PT.5S", "PT1.5M", "PT1.5H", "P-1Y", "P1YT", "P 1Y",
                             "P1Y ", " P1Y", "PY", "PT1", "P1", "P1DT", "PT1H1", "pt1s", "P1y", "P1YT1HT1M",
                             "P1Y-", "--P1Y", "PT1.5.5S", "P1Y2M3DT", "PT0.5"}) {
        ExpectInvalid(text, Expected(text));
    }
    ExpectInvalid("PT1.1234567891S", "Invalid XSD Duration [PT1.1234567891S] Fraction part too long");
    // The shape is judged before the fraction length and the counts.
    ExpectInvalid("PT1.1234567891X", Expected("PT1.1234567891X"));
    ExpectInvalid("P99999999999999999999999X", Expected("P99999999999999999999999X"));

    // Counts beyond their fields throw instead of wrapping.
    for (const char* text : {"P65536Y", "P4294967296M", "P4294967296D", "PT4294967296H", "PT18446744073709551616M",
                             "PT18446744073709551616S", "PT18446744073709551616.5S", "P99999999999999999999999Y"}) {
        ExpectInvalid(text, std::string("Invalid XSD Duration [") + text + "] Value too large");
    }
    const std::string huge = "PT" + std::string(5000, '9') + "S";
    ExpectInvalid(huge.c_str(), "Invalid XSD Duration [" + huge + "] Value too large");
}

TEST(DateTimeSpanTest, ConstructorsSettersAndSign) {
    CDateTimeSpan s(1, 2, 3);
    EXPECT_EQ("PT1H2M3S", s.ToString());
    s = CDateTimeSpan(1, 2, 3, 4, 5, 6);
    EXPECT_EQ("P1Y2M3DT4H5M6S", s.ToString());
    s = CDateTimeSpan(1, 2, 3, 4, 5, 6, 7, 8, 9);
    EXPECT_EQ("P1Y2M3DT4H5M6.007008009S", s.ToString());
    s.Negate();
    EXPECT_TRUE(s.IsNegative());
    EXPECT_EQ("-P1Y2M3DT4H5M6.007008009S", s.ToString());
    s.SetDateTimeSpan(0, 0, 0, 0, 0, 0, 500, 0, 0);
    EXPECT_FALSE(s.IsNegative());
    EXPECT_EQ("PT0.5S", s.ToString());
    s.SetDateTimeSpan(1, 0, 0);
    EXPECT_EQ("PT1H", s.ToString());
    s.SetDateTimeSpan(0, 1, 0, 0, 0, 0);
    EXPECT_EQ("P1M", s.ToString());

    const CDateTimeSpan negative = s.GetAsNegative();
    EXPECT_TRUE(negative.IsNegative());
    EXPECT_FALSE(s.IsNegative());
    EXPECT_TRUE(negative.GetAsNegative().IsNegative());  // sets the sign, does not flip it

    s.SetYears(2);
    s.SetMonths(3);
    s.SetDays(4);
    s.SetHours(5);
    s.SetMinutes(6);
    s.SetSeconds(7);
    s.SetMilliSeconds(8);
    s.SetMicroSeconds(9);
    s.SetNanoSeconds(10);
    EXPECT_EQ("P2Y3M4DT5H6M7.00800901S", s.ToString());

    const auto expectMessage = [](auto fn, const std::string& message) {
        qmxml_test::ExpectMessage<CQmInvalidValueException>(fn, message);
    };
    expectMessage([&] { s.SetMilliSeconds(1000); }, "Invalid Milli-Second [1000] (0 <= milli <= 999)");
    expectMessage([&] { s.SetMicroSeconds(1000); }, "Invalid Micro-Second [1000] (0 <= micro <= 999)");
    expectMessage([&] { s.SetNanoSeconds(65535); }, "Invalid Nano-Second [65535] (0 <= nano <= 999)");
    expectMessage([] { CDateTimeSpan(0, 0, 0, 0, 0, 0, 0, 1000, 0); },
                  "Invalid Micro-Second [1000] (0 <= micro <= 999)");
    EXPECT_EQ("P2Y3M4DT5H6M7.00800901S", s.ToString());
}

TEST(DateTimeSpanTest, OrderRelation) {
    // Months against days depend on the month.
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1M", "P30D"));
    EXPECT_FALSE(Span("P1M") < Span("P30D"));
    EXPECT_FALSE(Span("P1M") > Span("P30D"));
    EXPECT_FALSE(Span("P1M") == Span("P30D"));
    EXPECT_TRUE(Span("P1M") != Span("P30D"));
    EXPECT_EQ(DT::cmp_greater, Compare("P1M", "P27D"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1M", "P28D"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1M", "P29D"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1M", "P31D"));
    EXPECT_EQ(DT::cmp_less, Compare("P1M", "P32D"));
    EXPECT_EQ(DT::cmp_greater, Compare("P1Y", "P364D"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1Y", "P365D"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P1Y", "P366D"));
    EXPECT_EQ(DT::cmp_less, Compare("P1Y", "P367D"));
    EXPECT_EQ(DT::cmp_equal, Compare("P1Y", "P12M"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("P5M", "P153D"));

    // Time counts carry without normalising the stored value.
    EXPECT_TRUE(Span("PT24H") == Span("P1D"));
    EXPECT_EQ(DT::cmp_equal, Compare("PT1H", "PT60M"));
    EXPECT_EQ(DT::cmp_equal, Compare("PT1M", "PT60S"));
    EXPECT_EQ(DT::cmp_equal, Compare("P1DT1H", "PT1500M"));
    EXPECT_EQ(DT::cmp_less, Compare("P1D", "PT86400.000000001S"));
    EXPECT_EQ(DT::cmp_equal, Compare("PT0.5S", "PT0.500S"));
    EXPECT_EQ(DT::cmp_greater, Compare("PT1.000000001S", "PT1S"));

    // Signs.
    EXPECT_TRUE(Span("-P1Y") < Span("P0Y"));
    EXPECT_TRUE(Span("P0Y") > Span("-P1Y"));
    EXPECT_TRUE(Span("-P0Y") == Span("PT0S"));
    EXPECT_EQ(DT::cmp_less, Compare("-P1D", "-PT23H"));
    EXPECT_EQ(DT::cmp_indeterminate, Compare("-P1M", "-P30D"));
    EXPECT_EQ(DT::cmp_greater, Compare("PT1S", "-P9999Y"));

    // Counts of any size compare exactly, far beyond the year range.
    EXPECT_EQ(DT::cmp_greater, Compare("PT18446744073709551615S", "P1D"));
    EXPECT_EQ(DT::cmp_equal, Compare("PT18446744073709551615S", "PT18446744073709551615S"));
    EXPECT_EQ(DT::cmp_less, Compare("PT18446744073709551614S", "PT18446744073709551615S"));
    EXPECT_EQ(DT::cmp_greater, Compare("PT18446744073709551615M", "PT18446744073709551615S"));
    EXPECT_EQ(DT::cmp_greater, Compare("P4294967295M", "P65535Y"));
    EXPECT_EQ(DT::cmp_less, Compare("-PT18446744073709551615M", "-PT18446744073709551615S"));
    EXPECT_EQ(DT::cmp_equal,
              CDateTimeSpan(0, 0, 0, 0, 1440ULL * 1000000, 0).CompareTo(CDateTimeSpan(0, 0, 1000000, 0, 0, 0)));
    const CDateTimeSpan all = Span(
        "P65535Y4294967295M4294967295DT4294967295H18446744073709551615M18446744073709551615.999999999S");
    EXPECT_TRUE(all == all);
    EXPECT_TRUE(all.GetAsNegative() < all);
}

TEST(DateTimeSpanTest, MalformedTextNeverCrashesAndParsedTextRoundTrips) {
    std::mt19937 random(4242);
    const std::string alphabet = "P-T.0123456789YMDHS9";
    std::uniform_int_distribution<int> length(0, 28);
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    int parsed = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string text = i % 2 == 0 ? "P" : "";
        const int n = length(random);
        for (int k = 0; k < n; ++k) {
            text += alphabet[pick(random)];
        }
        CDateTimeSpan s;
        try {
            s.ParseXSDDuration(text.c_str());
        } catch (const CQmInvalidValueException&) {
            continue;
        }
        ++parsed;
        const CDateTimeSpan again = Span(s.ToString().c_str());
        ASSERT_EQ(s.ToString(), again.ToString()) << text;
        ASSERT_TRUE(s == again) << text;
    }
    EXPECT_GT(parsed, 100);
}

}  // namespace
