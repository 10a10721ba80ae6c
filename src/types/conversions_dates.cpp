// The date, time and duration members of CConversions.
#include <qmxml/types/conversions.h>

#include <cstring>

#include <qmxml/core/exception.h>
#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>

#include "types/whitespace_rule.h"

namespace QmXmlLib10 {

namespace {

// The parsers read C strings: a zero byte inside the text would cut it short
// and let a malformed value through, so it is refused here with the type's
// own message.
void RefuseEmbeddedZero(const std::string& text, const char* format) {
    if (text.find('\0') != std::string::npos) {
        throw CQmInvalidValueException(FormatString(format, text.c_str()));
    }
}

CDateTime ParseAs(const std::string& text, CWhitespaceUtils::WhitespaceRule rule, CDateTime::DTType type,
                  const char* zeroFormat) {
    std::string storage;
    const std::string& ruled = whitespace::Ruled(text, rule, storage);
    RefuseEmbeddedZero(ruled, zeroFormat);
    CDateTime value;
    value.ParseXSD(ruled.c_str(), type);
    return value;
}

}  // namespace

std::string CConversions::durationToString(const CDateTimeSpan& value) {
    return value.ToString();
}

CDateTimeSpan CConversions::durationFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& ruled = whitespace::Ruled(text, rule, storage);
    RefuseEmbeddedZero(ruled, "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]");
    CDateTimeSpan value;
    value.ParseXSDDuration(ruled.c_str());
    return value;
}

CDateTime CConversions::datetimeFromString(const std::string& text, WhitespaceRule rule) {
    return ParseAs(text, rule, CDateTime::dt_dateTime, "Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]");
}

std::string CConversions::dateToString(const CDateTime& value) {
    return value.ToString();
}

CDateTime CConversions::dateFromString(const std::string& text, WhitespaceRule rule) {
    return ParseAs(text, rule, CDateTime::dt_date, "Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]");
}

CDateTime CConversions::timeFromString(const std::string& text, WhitespaceRule rule) {
    return ParseAs(text, rule, CDateTime::dt_time, "Invalid XSD Time [%s] expected hh:mm:ss[.ff]");
}

CDateTime CConversions::yearMonthFromString(const std::string& text, WhitespaceRule rule) {
    return ParseAs(text, rule, CDateTime::dt_gYearMonth, "Invalid XSD Date [%s] expected CCYY-MM[Z|[+|-]hh:mm]");
}

CDateTime CConversions::monthDayFromString(const std::string& text, WhitespaceRule rule) {
    return ParseAs(text, rule, CDateTime::dt_gMonthDay, "Invalid XSD Date [%s] expected --MM-DD[Z|[+|-]hh:mm]");
}

unsigned short CConversions::yearFromString(const std::string& text, WhitespaceRule rule) {
    const CDateTime value =
        ParseAs(text, rule, CDateTime::dt_gYear, "Invalid XSD Date [%s] expected CCYY[Z|[+|-]hh:mm]");
    return static_cast<unsigned short>(value.GetYear());
}

unsigned char CConversions::monthFromString(const std::string& text, WhitespaceRule rule) {
    const CDateTime value =
        ParseAs(text, rule, CDateTime::dt_gMonth, "Invalid XSD Date [%s] expected --MM[Z|[+|-]hh:mm]");
    return value.GetMonth();
}

unsigned char CConversions::dayFromString(const std::string& text, WhitespaceRule rule) {
    const CDateTime value =
        ParseAs(text, rule, CDateTime::dt_gDay, "Invalid XSD Date [%s] expected ---DD[Z|[+|-]hh:mm]");
    return value.GetDay();
}

}  // namespace QmXmlLib10
