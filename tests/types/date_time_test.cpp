#include <qmxml/types/date_time.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <random>
#include <string>

#include <qmxml/core/exception.h>
#include <qmxml/types/date_time_span.h>

#include "expect_throw.h"
#include "types/date_calendar.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectInvalid;
using qmxml_test::ExpectThrow;

namespace {

using DT = CDateTime;

template <typename Fn>
void ExpectState(Fn fn, const std::string& message) {
    ExpectThrow<CQmInvalidStateException>(fn, message);
}

DT Date(const char* text) {
    DT v;
    v.ParseXSDDate(text);
    return v;
}

DT Time(const char* text) {
    DT v;
    v.ParseXSDTime(text);
    return v;
}

DT Normalized(const char* dateTime) {
    return DT(dateTime).GetNormalized();
}

TEST(DateTimeTest, TypeNamesAndUnsetValue) {
    EXPECT_STREQ("yearZero", DT::GetTypeAsString(DT::dt_none));
    EXPECT_STREQ("dateTime", DT::GetTypeAsString(DT::dt_dateTime));
    EXPECT_STREQ("date", DT::GetTypeAsString(DT::dt_date));
    EXPECT_STREQ("gYearMonth", DT::GetTypeAsString(DT::dt_gYearMonth));
    EXPECT_STREQ("gYear", DT::GetTypeAsString(DT::dt_gYear));
    EXPECT_STREQ("time", DT::GetTypeAsString(DT::dt_time));
    EXPECT_STREQ("gDay", DT::GetTypeAsString(DT::dt_gDay));
    EXPECT_STREQ("gMonth", DT::GetTypeAsString(DT::dt_gMonth));
    EXPECT_STREQ("gMonthDay", DT::GetTypeAsString(DT::dt_gMonthDay));
    EXPECT_STREQ("", DT::GetTypeAsString(static_cast<DT::DTType>(9)));
    EXPECT_STREQ("", DT::GetTypeAsString(static_cast<DT::DTType>(-1)));

    DT none;
    EXPECT_EQ(DT::dt_none, none.GetType());
    EXPECT_EQ("Date Not Set", none.ToString());
    EXPECT_FALSE(none.HasTimeZone());
    EXPECT_EQ("Unknown Format: 42", DT(static_cast<DT::DTType>(42)).ToString());
    ExpectInvalid([&] { none.Validate(); }, "Invalid Year Zero");
    ExpectState([&] { none.GetYear(); }, "Failed to GetYear. Invalid Date Type: yearZero.");
}

TEST(DateTimeTest, AppendTextAppendsWhatToStringGives) {
    std::string out = "<";
    DT().AppendText(out);
    EXPECT_EQ("<Date Not Set", out);
    out = "<";
    DT(static_cast<DT::DTType>(42)).AppendText(out);
    EXPECT_EQ("<Unknown Format: 42", out);
    for (const char* text : {"2024-02-29T23:59:59.125-05:30", "-0044-03-15T12:00:00Z", "2001-12-31T00:00:00Z"}) {
        const DT value(text);
        out = "<";
        value.AppendText(out);
        EXPECT_EQ("<" + value.ToString(), out) << text;
    }
}

TEST(DateTimeTest, ParsesEveryDateShape) {
    DT d = Date("2001-10-26");
    EXPECT_EQ(DT::dt_date, d.GetType());
    EXPECT_EQ(2001, d.GetYear());
    EXPECT_EQ(10, d.GetMonth());
    EXPECT_EQ(26, d.GetDay());
    EXPECT_FALSE(d.HasTimeZone());
    EXPECT_EQ("2001-10-26", d.ToString());

    EXPECT_EQ(DT::dt_gYearMonth, Date("2001-10").GetType());
    EXPECT_EQ(DT::dt_gYear, Date("2001").GetType());
    EXPECT_EQ(DT::dt_gMonthDay, Date("--10-26").GetType());
    EXPECT_EQ(DT::dt_gMonth, Date("--10").GetType());
    EXPECT_EQ(DT::dt_gDay, Date("---26").GetType());
    for (const char* text : {"2001-10", "2001", "--10-26", "--10", "---26", "2001-10-26Z", "2001-10+05:00",
                             "-0045", "--12-31-14:00", "---01+13:59", "-9999-12-31"}) {
        EXPECT_EQ(text, Date(text).ToString());
    }

    // Leap years by the Gregorian rule, also for negative years.
    EXPECT_EQ(29, Date("2000-02-29").GetDay());
    EXPECT_EQ(29, Date("-0004-02-29").GetDay());
    EXPECT_EQ(29, Date("-0400-02-29").GetDay());
    ExpectInvalid([] { Date("1900-02-29"); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([] { Date("-0100-02-29"); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([] { Date("-0001-02-29"); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([] { Date("2001-04-31"); }, "Invalid Day [31] (1 <= day <= days in month");
    EXPECT_EQ(DT::dt_gMonthDay, Date("--02-29").GetType());
    ExpectInvalid([] { Date("--02-30"); }, "Invalid Day [30] (1 <= day <= days in month)");
    ExpectInvalid([] { Date("--04-31"); }, "Invalid Day [31] (1 <= day <= days in month)");
    ExpectInvalid([] { Date("---32"); }, "Invalid Day [32] (1 <= day <= 31)");
    ExpectInvalid([] { Date("---00"); }, "Invalid Day [0] (1 <= day <= 31)");
    ExpectInvalid([] { Date("2001-00-01"); }, "Invalid Month [0] (1 <= month <= 12)");
    ExpectInvalid([] { Date("--13"); }, "Invalid Month [13] (1 <= month <= 12)");
    ExpectInvalid([] { Date("2001-13"); }, "Invalid Month [13] (1 <= month <= 12)");
    // The month is checked before the year.
    ExpectInvalid([] { Date("0000-13-01"); }, "Invalid Month [13] (1 <= month <= 12)");

    // Years: four digits after an optional minus, never zero.
    ExpectInvalid([] { Date("0000-01-01"); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([] { Date("-0000"); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    EXPECT_EQ(-1, Date("-0001-01-01").GetYear());
    ExpectInvalid([] { Date("10000-01-01"); },
                  "Invalid XSD Date [10000-01-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
    ExpectInvalid([] { Date("01-01-01"); }, "Invalid XSD Date [01-01-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
}

TEST(DateTimeTest, DateParserMessages) {
    ExpectInvalid([] { Date(nullptr); }, "Invalid Date (Null String)");
    ExpectInvalid([] { Date(""); }, "Invalid Date (Empty String)");
    ExpectInvalid([] { Date("2001-10-26T00:00:00"); }, "Invalid Date ('T' not allowed)");
    for (const char* text : {"2001-1-26", "2001/10/26", "2001-10-2a", "2001-10-26z", "Z", "--1", "---1", "----01",
                             "-", "--", "2001-10-26-", " 2001-10-26", "2001-10-26 ", "2001--10"}) {
        ExpectInvalid([&] { Date(text); },
                      std::string("Invalid XSD Date [") + text + "] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
    }
    // Zones: a tail that cannot be a zone, and a zone with bad fields.
    for (const char* text : {"2001-10-26+05", "2001-10-26+5:00", "2001:10:26", "2001-10-26+05:00:00", "12:00", "+2001"}) {
        ExpectInvalid([&] { Date(text); }, "Invalid Date (Bad Zone value)");
    }
    for (const char* text : {"2001-10-26+24:00", "2001-10-26+05:60", "2001-10-26+0a:00", "2001-10-26-05:0x"}) {
        ExpectInvalid([&] { Date(text); }, std::string("Invalid XSD Time Zone [") + text + "]");
    }
    // Hour and minute of a zone are read exactly; the shape error comes first.
    ExpectInvalid([] { Date("2001-10-2+05:00"); },
                  "Invalid XSD Date [2001-10-2+05:00] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
}

TEST(DateTimeTest, ParsesTimeWithFractionAndZone) {
    DT t = Time("12:30:00.5");
    EXPECT_EQ(DT::dt_time, t.GetType());
    EXPECT_EQ(12, t.GetHour());
    EXPECT_EQ(30, t.GetMinute());
    EXPECT_EQ(0, t.GetSecond());
    EXPECT_EQ(500, t.GetMilliSecond());
    EXPECT_EQ(0, t.GetMicroSecond());
    EXPECT_EQ(0, t.GetNanoSecond());
    EXPECT_EQ("12:30:00.5", t.ToString());

    t = Time("23:59:59.123456789+05:30");
    EXPECT_EQ(123, t.GetMilliSecond());
    EXPECT_EQ(456, t.GetMicroSecond());
    EXPECT_EQ(789, t.GetNanoSecond());
    EXPECT_DOUBLE_EQ(59.123456789, t.GetRealSecond());
    EXPECT_EQ(5, t.GetZoneHour());
    EXPECT_EQ(30, t.GetZoneMinute());
    EXPECT_EQ("23:59:59.123456789+05:30", t.ToString());
    EXPECT_EQ(5, Time("00:00:00.000005").GetMicroSecond());
    EXPECT_EQ(120, Time("00:00:00.12").GetMilliSecond());
    EXPECT_EQ(100, Time("00:00:00.0000001").GetNanoSecond());

    ExpectInvalid([] { Time(nullptr); }, "Invalid Time (Null String)");
    ExpectInvalid([] { Time(""); }, "Invalid XSD Time (Empty String)");
    ExpectInvalid([] { Time("12:30:00.1234567891"); }, "Invalid XSD Time [12:30:00.1234567891] Fraction part too long");
    for (const char* text : {"24:00:00", "12:60:00", "12:00:60", "1:00:00", "12-00-00", "12:00:00.", "12:00:00X",
                             "12:00", "12:00:0a", "12:00:00.5.5", "12:00:00 ", "T12:00:00"}) {
        ExpectInvalid([&] { Time(text); }, std::string("Invalid XSD Time [") + text + "] expected hh:mm:ss[.ff]");
    }
    for (const char* text : {"12:00:00+1:00", "12:00:00ZZ", "12:00:00+24:00", "12:00:00-"}) {
        ExpectInvalid([&] { Time(text); }, std::string("Invalid XSD Time Zone [") + text + "]");
    }
}

TEST(DateTimeTest, ParsesDateTime) {
    DT v("2001-10-26T21:32:52.12+02:00");
    EXPECT_EQ(DT::dt_dateTime, v.GetType());
    EXPECT_EQ(2001, v.GetYear());
    EXPECT_EQ(21, v.GetHour());
    EXPECT_EQ(120, v.GetMilliSecond());
    EXPECT_EQ(2, v.GetZoneHour());
    EXPECT_EQ("2001-10-26T21:32:52.12+02:00", v.ToString());
    EXPECT_EQ("-0044-03-15T12:00:00Z", DT("-0044-03-15T12:00:00Z").ToString());

    ExpectInvalid([] { DT(static_cast<const char*>(nullptr)); }, "Invalid DateTime (Null String)");
    ExpectInvalid([] { DT(""); }, "Invalid XSD DateTime [] expected CCYY-MM-DDThh:mm:ss[.ff]");
    ExpectInvalid([] { DT("2001-10-26"); }, "Invalid XSD DateTime [2001-10-26] expected CCYY-MM-DDThh:mm:ss[.ff]");
    for (const char* text : {"2001-10T12:00:00", "2001-10-26ZT12:00:00", "--10-26T12:00:00", "T12:00:00",
                             "10000-01-01T00:00:00", "2001-10-26+01:00T12:00:00"}) {
        ExpectInvalid([&] { DT v2(text); }, std::string("Invalid XSD DateTime [") + text + "]");
    }
    ExpectInvalid([] { DT("2001-10-26T25:00:00"); }, "Invalid XSD Time [2001-10-26T25:00:00] expected hh:mm:ss[.ff]");
    ExpectInvalid([] { DT("2001-10-26T12:00:00T"); }, "Invalid XSD Time [2001-10-26T12:00:00T] expected hh:mm:ss[.ff]");
    ExpectInvalid([] { DT("2001-10-26T12:00:00.0000000001"); },
                  "Invalid XSD Time [2001-10-26T12:00:00.0000000001] Fraction part too long");
    ExpectInvalid([] { DT("2001-10-26T12:00:00+25:00"); }, "Invalid XSD Time Zone [2001-10-26T12:00:00+25:00]");
    ExpectInvalid([] { DT("2001-02-29T12:00:00"); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([] { DT("0000-01-01T12:00:00"); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");

    // Assignment parses too, and a failed parse leaves nothing of the old value.
    DT w("2001-10-26T00:00:00Z");
    w = "2002-01-01T00:00:00";
    EXPECT_EQ("2002-01-01T00:00:00", w.ToString());
    EXPECT_FALSE(w.HasTimeZone());
}

TEST(DateTimeTest, ParseAsRequiresTheShapeOfTheType) {
    DT v;
    v.ParseXSD("2001-10", DT::dt_gYearMonth);
    EXPECT_EQ("2001-10", v.ToString());
    v.ParseXSD("12:00:00", DT::dt_time);
    EXPECT_EQ(DT::dt_time, v.GetType());
    v.ParseXSD("2001-10-26T12:00:00", DT::dt_dateTime);
    EXPECT_EQ(DT::dt_dateTime, v.GetType());

    ExpectInvalid([&] { v.ParseXSD("2001-10", DT::dt_date); },
                  "Invalid XSD Date [2001-10] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("2001-10-26", DT::dt_gYearMonth); },
                  "Invalid XSD Date [2001-10-26] expected CCYY-MM[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("--10", DT::dt_gYear); }, "Invalid XSD Date [--10] expected CCYY[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("--10", DT::dt_gMonthDay); },
                  "Invalid XSD Date [--10] expected --MM-DD[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("---10", DT::dt_gMonth); }, "Invalid XSD Date [---10] expected --MM[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("--10", DT::dt_gDay); }, "Invalid XSD Date [--10] expected ---DD[Z|[+|-]hh:mm]");
    // The shape is judged before the fields.
    ExpectInvalid([&] { v.ParseXSD("2001-13", DT::dt_date); },
                  "Invalid XSD Date [2001-13] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
    ExpectInvalid([&] { v.ParseXSD("2001-13", DT::dt_gYearMonth); }, "Invalid Month [13] (1 <= month <= 12)");
    ExpectThrow<CQmInvalidParamException>([&] { v.ParseXSD("2001", DT::dt_none); }, "Invalid Date Type: 0");
}

TEST(DateTimeTest, FractionPrintsGroupsUpToTheLastNonZero) {
    DT t("2001-01-01T00:00:00");
    auto withFraction = [&](unsigned short ms, unsigned short us, unsigned short ns) {
        t.SetMilliSecond(ms);
        t.SetMicroSecond(us);
        t.SetNanoSecond(ns);
        return t.ToString().substr(19);
    };
    EXPECT_EQ("", withFraction(0, 0, 0));
    EXPECT_EQ(".5", withFraction(500, 0, 0));
    EXPECT_EQ(".12", withFraction(120, 0, 0));
    EXPECT_EQ(".000005", withFraction(0, 5, 0));
    EXPECT_EQ(".00005", withFraction(0, 50, 0));
    EXPECT_EQ(".000000001", withFraction(0, 0, 1));
    EXPECT_EQ(".1002", withFraction(100, 200, 0));
    EXPECT_EQ(".123456789", withFraction(123, 456, 789));
    EXPECT_EQ(".999", withFraction(999, 0, 0));
}

TEST(DateTimeTest, GettersAndSettersCheckTheType) {
    // Setters report the getter's name.
    auto wrongType = [](const char* field, const char* type) {
        return std::string("Failed to Get") + field + ". Invalid Date Type: " + type + ".";
    };
    DT time = Time("10:00:00");
    ExpectState([&] { time.GetYear(); }, wrongType("Year", "time"));
    ExpectState([&] { time.SetYear(2000); }, wrongType("Year", "time"));
    ExpectState([&] { time.GetMonth(); }, wrongType("Month", "time"));
    ExpectState([&] { time.SetMonth(1); }, wrongType("Month", "time"));
    ExpectState([&] { time.GetDay(); }, wrongType("Day", "time"));
    ExpectState([&] { time.SetDay(1); }, wrongType("Day", "time"));
    ExpectState([&] { time.GetDayOfWeek(); }, wrongType("DayOfWeek", "time"));
    ExpectState([&] { time.GetDayOfYear(); }, wrongType("DayOfYear", "time"));

    DT date = Date("2001-10-26");
    ExpectState([&] { date.SetHour(1); }, wrongType("Hour", "date"));
    ExpectState([&] { date.SetMinute(1); }, wrongType("Minute", "date"));
    ExpectState([&] { date.SetSecond(1); }, wrongType("Second", "date"));
    ExpectState([&] { date.GetRealSecond(); }, wrongType("RealSecond", "date"));
    ExpectState([&] { date.SetMilliSecond(1); }, wrongType("MilliSecond", "date"));
    ExpectState([&] { date.SetMicroSecond(1); }, wrongType("MicroSecond", "date"));
    ExpectState([&] { date.GetNanoSecond(); }, wrongType("NanoSecond", "date"));
    ExpectState([&] { date.GetZoneHour(); }, "TimeZone is not been used");
    ExpectState([&] { date.GetZoneMinute(); }, "TimeZone is not been used");
    ExpectState([&] { date.GetTimeZoneOffset(); }, "TimeZone is not been used");

    ExpectState([] { Date("---05").GetMonth(); }, "Failed to GetMonth. Invalid Date Type: gDay.");
    ExpectState([] { Date("--05").GetDay(); }, "Failed to GetDay. Invalid Date Type: gMonth.");
    ExpectState([] { Date("2001").GetMonth(); }, "Failed to GetMonth. Invalid Date Type: gYear.");
    ExpectState([] { Date("2001-05").GetDay(); }, "Failed to GetDay. Invalid Date Type: gYearMonth.");
    ExpectState([] { Date("--05-01").GetYear(); }, "Failed to GetYear. Invalid Date Type: gMonthDay.");
    EXPECT_EQ(5, Date("--05-01").GetMonth());

    // Setters check the field's own range and leave the value unchanged.
    ExpectInvalid([&] { date.SetYear(0); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([&] { date.SetYear(10000); }, "Invalid Year [10000] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([&] { date.SetMonth(13); }, "Invalid Month [13] (1 <= month <= 12)");
    ExpectInvalid([&] { date.SetDay(32); }, "Invalid Day [32] (1 <= day <= 31)");
    EXPECT_EQ("2001-10-26", date.ToString());
    DT dt("2001-10-26T00:00:00");
    ExpectInvalid([&] { dt.SetHour(24); }, "Invalid Hour [24] (0 <= hour <= 23)");
    ExpectInvalid([&] { dt.SetMinute(60); }, "Invalid Minute [60] (0 <= minute <= 59)");
    ExpectInvalid([&] { dt.SetSecond(60); }, "Invalid Second [60] (0 <= second <= 59)");
    ExpectInvalid([&] { dt.SetMilliSecond(1000); }, "Invalid Milli-Second [1000] (0 <= milli <= 999)");
    ExpectInvalid([&] { dt.SetMicroSecond(1000); }, "Invalid Micro-Second [1000] (0 <= micro <= 999)");
    ExpectInvalid([&] { dt.SetNanoSecond(1000); }, "Invalid Nano-Second [1000] (0 <= nano <= 999)");

    // Fields set one by one; the day against the month is Validate's check.
    date.SetDay(31);
    date.SetMonth(2);
    ExpectInvalid([&] { date.Validate(); }, "Invalid Day [31] (1 <= day <= days in month");
    date.SetDay(28);
    date.SetYear(-5);
    EXPECT_NO_THROW(date.Validate());
    EXPECT_EQ("-0005-02-28", date.ToString());

    // A value made from a type alone starts with every field 0.
    DT blank(DT::dt_date);
    ExpectInvalid([&] { blank.Validate(); }, "Invalid Month [0] (1 <= month <= 12)");
    DT gYear(DT::dt_gYear);
    ExpectInvalid([&] { gYear.Validate(); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    DT gDay(DT::dt_gDay);
    ExpectInvalid([&] { gDay.Validate(); }, "Invalid Day [0] (1 <= day <= 31)");
    DT time0(DT::dt_time);
    EXPECT_NO_THROW(time0.Validate());
    EXPECT_EQ("00:00:00", time0.ToString());
}

TEST(DateTimeTest, TimeZones) {
    DT v("2001-10-26T00:00:00-00:30");
    EXPECT_EQ("2001-10-26T00:00:00-00:30", v.ToString());
    EXPECT_EQ(0, v.GetZoneHour());
    EXPECT_EQ(30, v.GetZoneMinute());
    EXPECT_EQ(-30, v.GetTimeZoneOffset());
    EXPECT_FALSE(v.IsUTC());
    EXPECT_EQ("2001-10-26T00:30:00Z", v.GetNormalized().ToString());
    EXPECT_EQ(DT::cmp_equal, v.CompareTo(DT("2001-10-26T00:30:00Z")));
    EXPECT_EQ(DT::cmp_greater, v.CompareTo(DT("2001-10-26T00:00:00+00:30")));

    EXPECT_EQ("2001-10-26T00:00:00Z", DT("2001-10-26T00:00:00+00:00").ToString());
    EXPECT_EQ("2001-10-26T00:00:00Z", DT("2001-10-26T00:00:00-00:00").ToString());
    EXPECT_TRUE(DT("2001-10-26T00:00:00-00:00").IsUTC());
    EXPECT_EQ(-5, DT("2001-10-26T00:00:00-05:45").GetZoneHour());
    EXPECT_EQ(-345, DT("2001-10-26T00:00:00-05:45").GetTimeZoneOffset());

    DT t = Time("10:00:00");
    t.SetTimeZone(-5, 30);
    EXPECT_EQ("10:00:00-05:30", t.ToString());
    t.SetTimeZone(23, 59);
    EXPECT_EQ("10:00:00+23:59", t.ToString());
    t.SetTimeZoneOffset(-30);
    EXPECT_EQ("10:00:00-00:30", t.ToString());
    t.SetUTC();
    EXPECT_EQ("10:00:00Z", t.ToString());
    t.ClearTimeZone();
    EXPECT_EQ("10:00:00", t.ToString());
    ExpectInvalid([&] { t.SetTimeZone(24, 0); }, "Invalid TimeZone [24:0]");
    ExpectInvalid([&] { t.SetTimeZone(-24, 0); }, "Invalid TimeZone [-24:0]");
    ExpectInvalid([&] { t.SetTimeZone(5, 60); }, "Invalid TimeZone [5:60]");
    ExpectInvalid([&] { t.SetTimeZoneOffset(24 * 60); }, "Invalid TimeZone [24:0]");
    EXPECT_FALSE(t.HasTimeZone());
}

TEST(DateTimeTest, NormalisationCrossesDayMonthAndYear) {
    EXPECT_EQ("2001-01-01T00:30:00Z", Normalized("2000-12-31T23:30:00-01:00").ToString());
    EXPECT_EQ("2000-02-29T23:30:00Z", Normalized("2000-03-01T00:30:00+01:00").ToString());
    EXPECT_EQ("2001-02-28T23:30:00Z", Normalized("2001-03-01T00:30:00+01:00").ToString());
    EXPECT_EQ("-0001-12-31T23:30:00Z", Normalized("0001-01-01T00:30:00+01:00").ToString());
    EXPECT_EQ("0001-01-01T00:30:00Z", Normalized("-0001-12-31T23:30:00-01:00").ToString());
    EXPECT_EQ("2001-10-26T19:32:52.5Z", Normalized("2001-10-26T21:32:52.5+02:00").ToString());
    EXPECT_EQ("2001-10-27T10:31:00Z", Normalized("2001-10-26T23:59:00-10:32").ToString());
    EXPECT_EQ("2001-10-26T21:32:52", Normalized("2001-10-26T21:32:52").ToString());
    EXPECT_EQ("23:30:00Z", Time("00:30:00+01:00").GetNormalized().ToString());
    EXPECT_EQ("00:15:00Z", Time("23:45:00-00:30").GetNormalized().ToString());
    // Types without a time keep their zone; their order still honours it.
    EXPECT_EQ("2001-10-26+05:00", Date("2001-10-26+05:00").GetNormalized().ToString());
}

TEST(DateTimeTest, CompareToNormalisesZones) {
    EXPECT_EQ(DT::cmp_equal, DT("2001-10-26T21:32:52+02:00").CompareTo(DT("2001-10-26T19:32:52Z")));
    EXPECT_EQ(DT::cmp_less, DT("2001-10-26T21:32:52+02:00").CompareTo(DT("2001-10-26T19:32:53Z")));
    EXPECT_EQ(DT::cmp_greater, DT("2001-10-26T19:32:52.000000001Z").CompareTo(DT("2001-10-26T21:32:52+02:00")));
    EXPECT_EQ(DT::cmp_less, DT("-0001-12-31T23:59:59Z").CompareTo(DT("0001-01-01T00:00:00Z")));
    EXPECT_EQ(DT::cmp_greater, DT("2001-01-01T00:00:00").CompareTo(DT("2000-12-31T23:59:59")));
    EXPECT_EQ(DT::cmp_equal, DT("2001-01-01T00:00:00").CompareTo(DT("2001-01-01T00:00:00")));

    // One side without zone: it may lie anywhere from -14:00 to +14:00.
    EXPECT_EQ(DT::cmp_less, DT("2000-01-15T12:00:00").CompareTo(DT("2000-01-16T12:00:00Z")));
    EXPECT_EQ(DT::cmp_greater, DT("2000-01-16T12:00:00Z").CompareTo(DT("2000-01-15T12:00:00")));
    EXPECT_EQ(DT::cmp_indeterminate, DT("2000-01-01T12:00:00").CompareTo(DT("1999-12-31T23:00:00Z")));
    EXPECT_EQ(DT::cmp_indeterminate, DT("2000-01-01T12:00:00").CompareTo(DT("2000-01-01T12:00:00Z")));
    EXPECT_EQ(DT::cmp_greater, DT("2000-01-16T00:00:00").CompareTo(DT("2000-01-15T09:59:59Z")));
    EXPECT_EQ(DT::cmp_indeterminate, DT("2000-01-16T00:00:00").CompareTo(DT("2000-01-15T10:00:00Z")));
    EXPECT_EQ(DT::cmp_less, DT("2000-01-15T09:59:59Z").CompareTo(DT("2000-01-16T00:00:00")));

    // Other types, on the same reference day.
    EXPECT_EQ(DT::cmp_less, Date("2001-10-26").CompareTo(Date("2001-10-27")));
    EXPECT_EQ(DT::cmp_equal, Date("2001-10-26+01:00").CompareTo(Date("2001-10-26+01:00")));
    EXPECT_EQ(DT::cmp_greater, Date("2001-10-26-01:00").CompareTo(Date("2001-10-26+01:00")));
    EXPECT_EQ(DT::cmp_less, Date("--02-29").CompareTo(Date("--03-01")));
    EXPECT_EQ(DT::cmp_greater, Date("---31").CompareTo(Date("---01")));
    EXPECT_EQ(DT::cmp_less, Date("-0001").CompareTo(Date("0001")));
    EXPECT_EQ(DT::cmp_greater, Date("2001-02").CompareTo(Date("2001-01")));
    // Times sit on 1972-12-31, so a zone can move one past midnight.
    EXPECT_EQ(DT::cmp_greater, Time("23:00:00-02:00").CompareTo(Time("01:00:00Z")));
    EXPECT_EQ(DT::cmp_equal, Time("12:00:00+01:00").CompareTo(Time("11:00:00Z")));
    // Values of different types are not ordered.
    EXPECT_EQ(DT::cmp_indeterminate, Date("2001-10-26").CompareTo(DT("2001-10-26T00:00:00")));
    EXPECT_EQ(DT::cmp_indeterminate, Date("2001").CompareTo(Date("2001-01")));
}

TEST(DateTimeTest, DayOfWeekAndDayOfYear) {
    EXPECT_EQ(5, Date("2001-10-26").GetDayOfWeek());  // Friday
    EXPECT_EQ(4, Date("1970-01-01").GetDayOfWeek());  // Thursday
    EXPECT_EQ(6, Date("2000-01-01").GetDayOfWeek());  // Saturday
    EXPECT_EQ(1, Date("0001-01-01").GetDayOfWeek());  // Monday
    EXPECT_EQ(0, Date("-0001-12-31").GetDayOfWeek());
    EXPECT_EQ(5, DT("2001-10-26T23:59:59-12:00").GetDayOfWeek());  // as written, not normalised

    EXPECT_EQ(1, Date("2001-01-01").GetDayOfYear());
    EXPECT_EQ(60, Date("2001-03-01").GetDayOfYear());
    EXPECT_EQ(61, Date("2000-03-01").GetDayOfYear());
    EXPECT_EQ(366, Date("2000-12-31").GetDayOfYear());
    EXPECT_EQ(365, Date("1900-12-31").GetDayOfYear());
    EXPECT_EQ(366, Date("-0004-12-31").GetDayOfYear());
    EXPECT_EQ(365, Date("-0001-12-31").GetDayOfYear());
}

TEST(DateTimeTest, TimeT) {
    EXPECT_EQ("1970-01-01T00:00:00Z", DT(std::int64_t{0}).ToString());
    EXPECT_EQ("1969-12-31T23:59:59Z", DT(std::int64_t{-1}).ToString());
    EXPECT_EQ("2001-10-26T19:32:52Z", DT(std::int64_t{1004124772}).ToString());
    EXPECT_EQ("9999-12-31T23:59:59Z", DT(std::int64_t{253402300799}).ToString());
    EXPECT_EQ("-9999-01-01T00:00:00Z", DT(std::int64_t{-377673494400}).ToString());
    for (std::int64_t t : {std::int64_t{253402300800}, std::int64_t{-377673494401},
                           std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        ExpectInvalid([t] { DT v(t); },
                      "The time_t value [" + std::to_string(t) + "] is outside the date range");
    }

    EXPECT_EQ(1004124772, DT("2001-10-26T21:32:52+02:00").GetTime());
    EXPECT_EQ(1004124772, DT("2001-10-26T19:32:52.999").GetTime());  // no zone: read as UTC
    EXPECT_EQ(82800, Date("1970-01-02+01:00").GetTime());
    EXPECT_EQ(253402300799, DT("9999-12-31T23:59:59Z").GetTime());
    EXPECT_EQ(-377673494400, DT("-9999-01-01T00:00:00Z").GetTime());
    for (std::int64_t t : {std::int64_t{-62135596800}, std::int64_t{-62135596801}, std::int64_t{951782400},
                           std::int64_t{-11644473600}}) {
        DT v(t);
        EXPECT_EQ(t, v.GetTime());
        EXPECT_EQ(t, DT(v.ToString().c_str()).GetTime());
    }
    EXPECT_EQ("0001-01-01T00:00:00Z", DT(std::int64_t{-62135596800}).ToString());
    EXPECT_EQ("-0001-12-31T23:59:59Z", DT(std::int64_t{-62135596801}).ToString());

    DT assigned;
    assigned = std::int64_t{86400};
    EXPECT_EQ("1970-01-02T00:00:00Z", assigned.ToString());
    ExpectState([] { Time("10:00:00").GetTime(); },
                "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: time.");
    ExpectState([] { Date("2001").GetTime(); },
                "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: gYear.");
}

TEST(DateTimeTest, SystemTime) {
    const SYSTEMTIME st{2001, 10, 0, 26, 21, 32, 52, 123};
    DT v(st);
    EXPECT_EQ("2001-10-26T21:32:52.123", v.ToString());
    const SYSTEMTIME back = v.GetAsSystemTime();
    EXPECT_EQ(2001, back.wYear);
    EXPECT_EQ(10, back.wMonth);
    EXPECT_EQ(5, back.wDayOfWeek);
    EXPECT_EQ(26, back.wDay);
    EXPECT_EQ(21, back.wHour);
    EXPECT_EQ(32, back.wMinute);
    EXPECT_EQ(52, back.wSecond);
    EXPECT_EQ(123, back.wMilliseconds);

    for (const SYSTEMTIME& edge : {SYSTEMTIME{1601, 1, 1, 1, 0, 0, 0, 0}, SYSTEMTIME{1970, 1, 4, 1, 0, 0, 0, 0},
                                   SYSTEMTIME{9999, 12, 5, 31, 23, 59, 59, 999}, SYSTEMTIME{1, 1, 1, 1, 0, 0, 0, 0}}) {
        const SYSTEMTIME r = DT(edge).GetAsSystemTime();
        EXPECT_EQ(edge.wYear, r.wYear);
        EXPECT_EQ(edge.wMonth, r.wMonth);
        EXPECT_EQ(edge.wDayOfWeek, r.wDayOfWeek);
        EXPECT_EQ(edge.wDay, r.wDay);
        EXPECT_EQ(edge.wHour, r.wHour);
        EXPECT_EQ(edge.wSecond, r.wSecond);
        EXPECT_EQ(edge.wMilliseconds, r.wMilliseconds);
    }

    // A zone is applied first; micro- and nanoseconds are dropped.
    const SYSTEMTIME utc = DT("2000-12-31T23:30:00.123456-01:00").GetAsSystemTime();
    EXPECT_EQ(2001, utc.wYear);
    EXPECT_EQ(1, utc.wMonth);
    EXPECT_EQ(1, utc.wDay);
    EXPECT_EQ(0, utc.wHour);
    EXPECT_EQ(123, utc.wMilliseconds);

    ExpectInvalid([] { DT v(SYSTEMTIME{10000, 1, 0, 1, 0, 0, 0, 0}); },
                  "Invalid Year [10000] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([] { DT v(SYSTEMTIME{0, 1, 0, 1, 0, 0, 0, 0}); },
                  "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 13, 0, 1, 0, 0, 0, 0}); }, "Invalid Month [13] (1 <= month <= 12)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 256, 0, 1, 0, 0, 0, 0}); }, "Invalid Month [256] (1 <= month <= 12)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 29, 0, 0, 0, 0}); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 300, 0, 0, 0, 0}); }, "Invalid Day [300] (1 <= day <= days in month");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 1, 24, 0, 0, 0}); }, "Invalid Hour [24] (0 <= hour <= 23)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 1, 0, 60, 0, 0}); }, "Invalid Minute [60] (0 <= minute <= 59)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 1, 0, 0, 60, 0}); }, "Invalid Second [60] (0 <= second <= 59)");
    ExpectInvalid([] { DT v(SYSTEMTIME{2001, 2, 0, 1, 0, 0, 0, 1000}); },
                  "Invalid Milli-Second [1000] (0 <= milli <= 999)");

    ExpectState([] { Date("2001-10-26").GetAsSystemTime(); },
                "Failed to GetAsSystemTime, Date Status must be dateTime. Invalid Date Type: date.");
    ExpectInvalid([] { DT("-0001-10-26T00:00:00").GetAsSystemTime(); },
                  "Failed to convert [-0001-10-26T00:00:00] to SYSTEMTIME");
    ExpectInvalid([] { DT("0001-01-01T00:30:00+01:00").GetAsSystemTime(); },
                  "Failed to convert [0001-01-01T00:30:00+01:00] to SYSTEMTIME");
}

TEST(DateTimeTest, FileTime) {
    auto ticksOf = [](const FILETIME& ft) {
        return (static_cast<std::uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
    };
    auto fileTime = [](std::uint64_t ticks) {
        return FILETIME{static_cast<std::uint32_t>(ticks & 0xFFFFFFFFu), static_cast<std::uint32_t>(ticks >> 32)};
    };
    EXPECT_EQ("1601-01-01T00:00:00Z", DT(fileTime(0)).ToString());
    EXPECT_EQ("1601-01-01T00:00:00.0000001Z", DT(fileTime(1)).ToString());
    EXPECT_EQ("1970-01-01T00:00:00Z", DT(fileTime(116444736000000000ULL)).ToString());
    EXPECT_EQ("9999-12-31T23:59:59.9999999Z", DT(fileTime(2650467743999999999ULL)).ToString());
    for (std::uint64_t ticks : {0ULL, 1ULL, 116444736000000000ULL, 116444736012345678ULL, 2650467743999999999ULL}) {
        EXPECT_EQ(ticks, ticksOf(DT(fileTime(ticks)).GetAsFileTime()));
    }
    EXPECT_EQ(116444736000000000ULL, ticksOf(Date("1970-01-01").GetAsFileTime()));
    EXPECT_EQ(116444736000000000ULL, ticksOf(DT("1970-01-01T01:00:00+01:00").GetAsFileTime()));
    // Below the tick the nanoseconds are dropped.
    EXPECT_EQ(116444736000000001ULL, ticksOf(DT("1970-01-01T00:00:00.000000199Z").GetAsFileTime()));

    ExpectInvalid([&] { DT v(fileTime(2650467744000000000ULL)); }, "Failed to convert FILETIME to SYSTEMTIME");
    ExpectInvalid([&] { DT v(fileTime(0x8000000000000000ULL)); }, "Failed to convert FILETIME to SYSTEMTIME");
    ExpectInvalid([&] { DT v(fileTime(~0ULL)); }, "Failed to convert FILETIME to SYSTEMTIME");
    ExpectInvalid([] { Date("1600-12-31").GetAsFileTime(); }, "Failed to convert [1600-12-31] to FILETIME");
    ExpectInvalid([] { DT("1601-01-01T00:00:00+00:01").GetAsFileTime(); },
                  "Failed to convert [1601-01-01T00:00:00+00:01] to FILETIME");
    ExpectState([] { Date("2001-10").GetAsFileTime(); },
                "Failed to GetAsFileTime, Date Status must be dateTime or date. Invalid Date Type: gYearMonth.");

    // Through SYSTEMTIME and back.
    const DT fromFile(fileTime(116444736000000000ULL + 10000000ULL * 86400 * 365));
    const DT fromSystem(fromFile.GetAsSystemTime());
    EXPECT_EQ("1971-01-01T00:00:00", fromSystem.ToString());
    EXPECT_EQ(ticksOf(fromFile.GetAsFileTime()), ticksOf(fromSystem.GetAsFileTime()));
}

TEST(DateTimeTest, SetDateTimeConvertsWhenTheSourceHasTheFields) {
    const DT source("2001-10-26T21:32:52.5+02:00");
    DT v;
    v.SetDateTime(source, DT::dt_date);
    EXPECT_EQ("2001-10-26+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_time);
    EXPECT_EQ("21:32:52.5+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_gYearMonth);
    EXPECT_EQ("2001-10+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_gYear);
    EXPECT_EQ("2001+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_gMonthDay);
    EXPECT_EQ("--10-26+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_gMonth);
    EXPECT_EQ("--10+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_gDay);
    EXPECT_EQ("---26+02:00", v.ToString());
    EXPECT_NO_THROW(v.Validate());
    v.SetDateTime(v, DT::dt_gDay);  // from itself
    EXPECT_EQ("---26+02:00", v.ToString());
    v.SetDateTime(source, DT::dt_none);
    EXPECT_EQ(DT::dt_none, v.GetType());
    EXPECT_FALSE(v.HasTimeZone());

    auto message = [](const char* target, const char* from) {
        return std::string("Attempting to set a CDateTime of type ") + target + " using an XmlDateTime of type " +
               from + ". The source CDateTime does not contian enough data to allow the conversion.";
    };
    ExpectThrow<CQmInvalidParamException>([&] { v.SetDateTime(Date("2001"), DT::dt_date); }, message("date", "gYear"));
    ExpectThrow<CQmInvalidParamException>([&] { v.SetDateTime(Date("2001-10-26"), DT::dt_dateTime); },
                                          message("dateTime", "date"));
    ExpectThrow<CQmInvalidParamException>([&] { v.SetDateTime(Date("--10-26"), DT::dt_gYearMonth); },
                                          message("gYearMonth", "gMonthDay"));
    ExpectThrow<CQmInvalidParamException>([&] { v.SetDateTime(Time("10:00:00"), DT::dt_gDay); },
                                          message("gDay", "time"));
    ExpectThrow<CQmInvalidParamException>([&] { v.SetDateTime(DT(), DT::dt_time); }, message("time", "yearZero"));
    ExpectThrow<CQmInvalidParamException>(
        [&] { v.SetDateTime(source, static_cast<DT::DTType>(12)); }, message("", "dateTime"));
}

TEST(DateTimeTest, SetDateKeepsTimeOnlyForDateTime) {
    DT v("2001-10-26T21:32:52Z");
    v.SetDate(1999, 12, 31);
    EXPECT_EQ("1999-12-31T21:32:52Z", v.ToString());
    DT t = Time("10:00:00+01:00");
    t.SetDate(2000, 2, 29);
    EXPECT_EQ("2000-02-29+01:00", t.ToString());
    ExpectInvalid([&] { v.SetDate(2001, 2, 29); }, "Invalid Day [29] (1 <= day <= days in month");
    ExpectInvalid([&] { v.SetDate(0, 1, 1); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    EXPECT_EQ("1999-12-31T21:32:52Z", v.ToString());
    EXPECT_EQ("2004-02-29", DT(2004, 2, 29).ToString());
    ExpectInvalid([] { DT v2(2003, 2, 29); }, "Invalid Day [29] (1 <= day <= days in month");
}

TEST(DateTimeTest, AddsDurationsTheXmlSchemaWay) {
    auto span = [](const char* text) {
        CDateTimeSpan s;
        s.ParseXSDDuration(text);
        return s;
    };
    // The worked examples of the algorithm.
    EXPECT_EQ("2001-04-17T19:23:17.3Z", (DT("2000-01-12T12:13:14Z") + span("P1Y3M5DT7H10M3.3S")).ToString());
    EXPECT_EQ("1999-10", (Date("2000-01") + span("-P3M")).ToString());
    EXPECT_EQ("2000-01-13", (Date("2000-01-12") + span("PT33H")).ToString());

    // The day is pinned to the end of a shorter month, so addition does not
    // associate.
    EXPECT_EQ("2000-02-29", (Date("2000-01-31") + span("P1M")).ToString());
    EXPECT_EQ("2001-02-28", (Date("2001-01-31") + span("P1M")).ToString());
    EXPECT_EQ("2001-02-28", (Date("2000-02-29") + span("P1Y")).ToString());
    EXPECT_EQ("2000-04-30", (Date("2000-03-30") + span("P1D") + span("P1M")).ToString());
    EXPECT_EQ("2000-05-01", (Date("2000-03-30") + span("P1M") + span("P1D")).ToString());

    // Carries through every field, both directions, and across year 0.
    EXPECT_EQ("2001-01-01T00:00:00Z", (DT("2000-12-31T23:59:59.999999999Z") + span("PT0.000000001S")).ToString());
    EXPECT_EQ("2000-12-31T23:59:59.999999999Z", (DT("2001-01-01T00:00:00Z") - span("PT0.000000001S")).ToString());
    EXPECT_EQ("2000-03-01T01:30:00-05:00", (DT("2000-02-28T23:30:00-05:00") + span("P1DT2H")).ToString());
    EXPECT_EQ("2000-01-01T00:00:00", (DT("1999-12-31T00:00:00") + span("PT1440M")).ToString());
    EXPECT_EQ("0001-01-01", (Date("-0001-12-31") + span("P1D")).ToString());
    EXPECT_EQ("-0001-12-31", (Date("0001-01-01") - span("P1D")).ToString());
    EXPECT_EQ("0001-06", (Date("-0001-06") + span("P1Y")).ToString());
    EXPECT_EQ("-0001-02-28", (Date("-0001-03-01") - span("P1D")).ToString());
    EXPECT_EQ("-0004-02-29", (Date("-0004-03-01") - span("P1D")).ToString());
    EXPECT_EQ("2001", (Date("2000") + span("P1Y11M")).ToString());
    EXPECT_EQ("01:00:00", (Time("23:00:00") + span("PT2H")).ToString());
    EXPECT_EQ("23:00:00Z", (Time("01:00:00Z") - span("P3DT2H")).ToString());
    EXPECT_EQ("2000-01-01T00:00:00Z", (DT("2000-01-01T00:00:00Z") + span("P0D")).ToString());
    EXPECT_EQ("9999-12-31", (Date("0001-01-01") + span("P3652058D")).ToString());

    DT top = Date("9999-12-31");
    ExpectThrow<CQmOverFlowException>([&] { top += span("P1D"); },
                                      "Adding [P1D] to [9999-12-31] leaves the year range");
    EXPECT_EQ("9999-12-31", top.ToString());
    ExpectThrow<CQmOverFlowException>([&] { Date("-9999-01-01") - span("PT1S"); },
                                      "Adding [-PT1S] to [-9999-01-01] leaves the year range");
    ExpectThrow<CQmOverFlowException>([&] { Date("2001-01-01") + span("PT18446744073709551615S"); },
                                      "Adding [PT18446744073709551615S] to [2001-01-01] leaves the year range");
    ExpectState([&] { Date("--10-26") + span("P1D"); }, "Failed to add a duration. Invalid Date Type: gMonthDay.");
    ExpectState([&] { Date("---26") + span("P1D"); }, "Failed to add a duration. Invalid Date Type: gDay.");
    ExpectState([&] { DT() + span("P1D"); }, "Failed to add a duration. Invalid Date Type: yearZero.");
}

TEST(DateTimeTest, TickCountIsNow) {
    const DT now = DT::GetTickCount();
    EXPECT_EQ(DT::dt_dateTime, now.GetType());
    EXPECT_TRUE(now.HasTimeZone());
    EXPECT_NO_THROW(now.Validate());
    EXPECT_GE(now.GetYear(), 2024);
    // The fields and zone name the same instant as the system clock.
    const std::int64_t seconds = now.GetTime();
    const std::int64_t clock = static_cast<std::int64_t>(std::time(nullptr));
    EXPECT_LE(std::llabs(clock - seconds), 5);
}

TEST(CalendarTest, DayNumbersRunWithoutGapsOverTheWholeRange) {
    using namespace calendar;
    EXPECT_TRUE(IsLeapYear(2000));
    EXPECT_FALSE(IsLeapYear(1900));
    EXPECT_TRUE(IsLeapYear(-4));
    EXPECT_FALSE(IsLeapYear(-1));
    EXPECT_FALSE(IsLeapYear(-100));
    EXPECT_TRUE(IsLeapYear(-400));
    EXPECT_EQ(0, DaysFromCivil(1, 1, 1));
    EXPECT_EQ(-1, DaysFromCivil(-1, 12, 31));
    EXPECT_EQ(719162, DaysFromCivil(1970, 1, 1));
    EXPECT_EQ(DaysFromCivil(2001, 1, 1), DaysFromCivil(2000, 13, 1));
    EXPECT_EQ(DaysFromCivil(-1, 12, 1), DaysFromCivil(1, 0, 1));

    std::int64_t year = 0;
    int month = 0;
    int day = 0;
    const std::int64_t first = DaysFromCivil(-9999, 1, 1);
    const std::int64_t last = DaysFromCivil(9999, 12, 31);
    CivilFromDays(first, year, month, day);
    ASSERT_EQ(-9999, year);
    ASSERT_EQ(1, month);
    ASSERT_EQ(1, day);
    for (std::int64_t d = first + 1; d <= last; ++d) {
        // Each day number is the day after the one before it.
        std::int64_t y = 0;
        int m = 0;
        int dd = 0;
        CivilFromDays(d, y, m, dd);
        if (dd != day + 1 || m != month || y != year) {
            const bool newMonth = dd == 1 && day == DaysInMonth(year, month) &&
                                  ((m == month + 1 && y == year) ||
                                   (month == 12 && m == 1 && y == (year == -1 ? 1 : year + 1)));
            ASSERT_TRUE(newMonth) << y << "-" << m << "-" << dd << " after " << year << "-" << month << "-" << day;
        }
        year = y;
        month = m;
        day = dd;
    }
    EXPECT_EQ(9999, year);
    EXPECT_EQ(12, month);
    EXPECT_EQ(31, day);
    // Far beyond the range, for huge durations.
    CivilFromDays(DaysFromCivil(40000000000LL, 2, 29), year, month, day);
    EXPECT_EQ(40000000000LL, year);
    EXPECT_EQ(2, month);
    EXPECT_EQ(29, day);
    CivilFromDays(DaysFromCivil(-40000000000LL, 12, 31), year, month, day);
    EXPECT_EQ(-40000000000LL, year);
    EXPECT_EQ(12, month);
    EXPECT_EQ(31, day);
}

TEST(DateTimeTest, MalformedTextNeverCrashesAndParsedTextRoundTrips) {
    // Random texts over the characters of the lexical forms: every parse
    // either throws CQmInvalidValueException or gives a valid value whose text
    // reads back to itself.
    std::mt19937 random(20240601);
    const std::string alphabet = "0123456789-:+TZ. 1";
    std::uniform_int_distribution<int> length(0, 32);
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    int parsed = 0;
    for (int i = 0; i < 40000; ++i) {
        std::string text;
        const int n = length(random);
        for (int k = 0; k < n; ++k) {
            text += alphabet[pick(random)];
        }
        for (int kind = 0; kind < 3; ++kind) {
            DT v;
            try {
                if (kind == 0) v.ParseXSDDateTime(text.c_str());
                if (kind == 1) v.ParseXSDDate(text.c_str());
                if (kind == 2) v.ParseXSDTime(text.c_str());
            } catch (const CQmInvalidValueException&) {
                continue;
            }
            ++parsed;
            ASSERT_NO_THROW(v.Validate()) << text;
            DT again;
            if (kind == 0) again.ParseXSDDateTime(v.ToString().c_str());
            if (kind == 1) again.ParseXSDDate(v.ToString().c_str());
            if (kind == 2) again.ParseXSDTime(v.ToString().c_str());
            ASSERT_EQ(v.ToString(), again.ToString()) << text;
            ASSERT_EQ(DT::cmp_equal, v.CompareTo(again)) << text;
        }
    }
    // Texts built from valid pieces, so that the round trip is exercised.
    const char* years[] = {"2001", "-0001", "9999", "0400", "1900"};
    const char* zones[] = {"", "Z", "+00:00", "-00:30", "+13:59", "-23:59"};
    const char* fractions[] = {"", ".5", ".000005", ".123456789", ".0"};
    for (const char* y : years) {
        for (const char* z : zones) {
            for (const char* f : fractions) {
                const std::string text = std::string(y) + "-02-28T23:59:59" + f + z;
                DT v(text.c_str());
                EXPECT_EQ(DT::cmp_equal, v.CompareTo(DT(v.ToString().c_str()))) << text;
                ++parsed;
            }
        }
    }
    EXPECT_GT(parsed, 100);
}

TEST(DateTimeTest, DayDurationsMoveTimeByWholeDays) {
    // Adding n days moves GetTime by n * 86400 and subtracting restores the
    // value, for dates all over the range.
    std::mt19937 random(7);
    std::uniform_int_distribution<std::int64_t> instant(-377673494400LL + 1000LL * 86400,
                                                        253402300799LL - 1000LL * 86400);
    std::uniform_int_distribution<unsigned> days(0, 999);
    for (int i = 0; i < 2000; ++i) {
        const DT start(instant(random));
        const unsigned n = days(random);
        const CDateTimeSpan span(0, 0, n, 0, 0, 0);
        const DT later = start + span;
        ASSERT_EQ(start.GetTime() + static_cast<std::int64_t>(n) * 86400, later.GetTime()) << start.ToString();
        ASSERT_EQ(start.ToString(), (later - span).ToString());
        ASSERT_EQ(n == 0 ? DT::cmp_equal : DT::cmp_greater, later.CompareTo(start));
    }
}

}  // namespace
