#include <qmxml/types/conversions.h>

#include <gtest/gtest.h>

#include <string>

#include <qmxml/core/exception.h>
#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>

#include "conversion_cases.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using namespace std::string_literals;
using namespace qmxml_test;

namespace {

using C = CConversions;
using DT = CDateTime;
std::string DateExpected(const std::string& text, const char* shape) {
    return "Invalid XSD Date [" + text + "] expected " + shape + "[Z|[+|-]hh:mm]";
}

TEST(ConversionsDatesTest, EachConversionParsesItsOwnType) {
    const DT dateTime = C::datetimeFromString("2001-10-26T21:32:52.5+02:00", kNone);
    EXPECT_EQ(DT::dt_dateTime, dateTime.GetType());
    EXPECT_EQ("2001-10-26T21:32:52.5+02:00", dateTime.ToString());

    const DT date = C::dateFromString("2001-10-26Z", kNone);
    EXPECT_EQ(DT::dt_date, date.GetType());
    EXPECT_EQ("2001-10-26Z", C::dateToString(date));

    EXPECT_EQ("21:32:52", C::timeFromString("21:32:52", kNone).ToString());
    EXPECT_EQ(DT::dt_time, C::timeFromString("21:32:52", kNone).GetType());
    EXPECT_EQ("2001-10", C::yearMonthFromString("2001-10", kNone).ToString());
    EXPECT_EQ(DT::dt_gYearMonth, C::yearMonthFromString("2001-10", kNone).GetType());
    EXPECT_EQ("--02-29", C::monthDayFromString("--02-29", kNone).ToString());
    EXPECT_EQ(DT::dt_gMonthDay, C::monthDayFromString("--02-29", kNone).GetType());

    EXPECT_EQ(2001, C::yearFromString("2001", kNone));
    EXPECT_EQ(2001, C::yearFromString("2001+05:00", kNone));
    EXPECT_EQ(65535, C::yearFromString("-0001", kNone));  // the signed year as 16 unsigned bits
    EXPECT_EQ(55537, C::yearFromString("-9999", kNone));
    EXPECT_EQ(12, C::monthFromString("--12", kNone));
    EXPECT_EQ(31, C::dayFromString("---31Z", kNone));
    // The printed forms of the parts read back.
    EXPECT_EQ(12, C::monthFromString(C::monthToString(12), kNone));
    EXPECT_EQ(7, C::dayFromString(C::dayToString(7), kNone));
    EXPECT_EQ(2001, C::yearFromString(C::yearToString(2001), kNone));

    const CDateTimeSpan span = C::durationFromString("-P1Y2M3DT4H5M6.7S", kNone);
    EXPECT_TRUE(span.IsNegative());
    EXPECT_EQ("-P1Y2M3DT4H5M6.7S", C::durationToString(span));
    EXPECT_EQ("PT0S", C::durationToString(CDateTimeSpan()));
}

TEST(ConversionsDatesTest, AnotherShapeThrowsTheConversionsMessage) {
    ExpectInvalid([] { C::dateFromString("2001-10", kNone); }, DateExpected("2001-10", "CCYY-MM-DD"));
    ExpectInvalid([] { C::dateFromString("2001-13", kNone); }, DateExpected("2001-13", "CCYY-MM-DD"));
    ExpectInvalid([] { C::yearMonthFromString("2001-10-26", kNone); }, DateExpected("2001-10-26", "CCYY-MM"));
    ExpectInvalid([] { C::monthDayFromString("--10", kNone); }, DateExpected("--10", "--MM-DD"));
    ExpectInvalid([] { C::yearFromString("2001-10", kNone); }, DateExpected("2001-10", "CCYY"));
    ExpectInvalid([] { C::yearFromString("65535", kNone); }, DateExpected("65535", "CCYY"));
    ExpectInvalid([] { C::monthFromString("---12", kNone); }, DateExpected("---12", "--MM"));
    ExpectInvalid([] { C::dayFromString("--12", kNone); }, DateExpected("--12", "---DD"));
    ExpectInvalid([] { C::datetimeFromString("2001-10-26", kNone); },
                  "Invalid XSD DateTime [2001-10-26] expected CCYY-MM-DDThh:mm:ss[.ff]");
    ExpectInvalid([] { C::timeFromString("2001-10-26", kNone); },
                  "Invalid XSD Time [2001-10-26] expected hh:mm:ss[.ff]");

    // A valid shape with a bad field gives the field's message.
    ExpectInvalid([] { C::yearMonthFromString("2001-13", kNone); }, "Invalid Month [13] (1 <= month <= 12)");
    ExpectInvalid([] { C::dayFromString("---32", kNone); }, "Invalid Day [32] (1 <= day <= 31)");
    ExpectInvalid([] { C::monthFromString("--00", kNone); }, "Invalid Month [0] (1 <= month <= 12)");
    ExpectInvalid([] { C::yearFromString("0000", kNone); }, "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)");
    ExpectInvalid([] { C::dateFromString("2001-02-29", kNone); }, "Invalid Day [29] (1 <= day <= days in month");
    // And the messages of empty text and zones are the date parser's.
    ExpectInvalid([] { C::dateFromString("", kNone); }, "Invalid Date (Empty String)");
    ExpectInvalid([] { C::yearFromString("2001T", kNone); }, "Invalid Date ('T' not allowed)");
    ExpectInvalid([] { C::dateFromString("2001-10-26+5:00", kNone); }, "Invalid Date (Bad Zone value)");
    ExpectInvalid([] { C::monthFromString("--10+24:00", kNone); }, "Invalid XSD Time Zone [--10+24:00]");
    ExpectInvalid([] { C::timeFromString("", kNone); }, "Invalid XSD Time (Empty String)");
    ExpectInvalid([] { C::durationFromString("", kNone); }, "Invalid XSD Duration (Empty String)");
    ExpectInvalid([] { C::durationFromString("P1Q", kNone); },
                  "Invalid XSD Duration [P1Q] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
}

TEST(ConversionsDatesTest, WhitespaceRuleComesFirst) {
    EXPECT_EQ("2001-10-26", C::dateFromString(" \t2001-10-26\r\n", kCollapse).ToString());
    EXPECT_EQ("12:00:00Z", C::timeFromString("\n12:00:00Z ", kCollapse).ToString());
    EXPECT_EQ("P1D", C::durationToString(C::durationFromString("  P1D  ", kCollapse)));
    EXPECT_EQ(2001, C::yearFromString(" 2001 ", kCollapse));
    // The message quotes the text after the rule.
    ExpectInvalid([] { C::dateFromString("\t2001-10-26", kReplace); },
                  DateExpected(" 2001-10-26", "CCYY-MM-DD"));
    ExpectInvalid([] { C::dateFromString(" 2001-10-26", kNone); }, DateExpected(" 2001-10-26", "CCYY-MM-DD"));
    ExpectInvalid([] { C::durationFromString("P1D T1H", kCollapse); },
                  "Invalid XSD Duration [P1D T1H] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
    try {
        C::dateFromString("2001-10-26", static_cast<CWhitespaceUtils::WhitespaceRule>(7));
        ADD_FAILURE() << "unknown rule accepted";
    } catch (const CQmInvalidValueException&) {
        ADD_FAILURE() << "wrong exception class";
    } catch (const CQmException& e) {
        EXPECT_EQ("Unknown WhitespaceRule", e.GetMessage());
    }
}

TEST(ConversionsDatesTest, CleanAndRebuiltTextsUnderEveryRule) {
    for (const auto rule : {kNone, kPreserve, kReplace, kCollapse}) {
        EXPECT_EQ("2001-10-26", C::dateFromString("2001-10-26", rule).ToString()) << rule;
        EXPECT_EQ("2001-10-26T01:02:03Z", C::datetimeFromString("2001-10-26T01:02:03Z", rule).ToString()) << rule;
        EXPECT_EQ("P1D", C::durationToString(C::durationFromString("P1D", rule))) << rule;
        EXPECT_EQ("2001-10", C::yearMonthFromString("2001-10", rule).ToString()) << rule;
    }
    ExpectInvalid([] { C::dateFromString("2001-10-26\r\n", kPreserve); },
                  DateExpected("2001-10-26\n", "CCYY-MM-DD"));
    ExpectInvalid([] { C::dateFromString("2001-10-26\t", kReplace); }, DateExpected("2001-10-26 ", "CCYY-MM-DD"));
    ExpectInvalid([] { C::yearMonthFromString("2001-10 ", kReplace); }, DateExpected("2001-10 ", "CCYY-MM"));
    EXPECT_EQ("2001-10", C::yearMonthFromString("2001-10 ", kCollapse).ToString());
    // Collapse rebuilds a text holding a zero byte, which ends it there.
    EXPECT_EQ("2001-10-26", C::dateFromString("2001-10-26\0junk"s, kCollapse).ToString());
    EXPECT_EQ("P1D", C::durationToString(C::durationFromString("P1D\0X"s, kCollapse)));
    ExpectInvalid([] { C::dateFromString("2001-10-26\0junk"s, kPreserve); },
                  DateExpected("2001-10-26", "CCYY-MM-DD"));
    ExpectInvalid([] { C::durationFromString("P1D\0X"s, kReplace); },
                  "Invalid XSD Duration [P1D] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
}

TEST(ConversionsDatesTest, ZeroByteInsideTheTextIsRefused) {
    const std::string date = "2001-10-26\0junk"s;
    ExpectInvalid([&] { C::dateFromString(date, kNone); }, DateExpected("2001-10-26", "CCYY-MM-DD"));
    ExpectInvalid([&] { C::durationFromString("P1D\0X"s, kNone); },
                  "Invalid XSD Duration [P1D] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
    ExpectInvalid([&] { C::datetimeFromString("2001-10-26T00:00:00\0"s, kNone); },
                  "Invalid XSD DateTime [2001-10-26T00:00:00] expected CCYY-MM-DDThh:mm:ss[.ff]");
}

}  // namespace
