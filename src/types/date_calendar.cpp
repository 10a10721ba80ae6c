#include "types/date_calendar.h"

#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>

namespace QmXmlLib10 {
namespace calendar {

namespace {

constexpr int kDaysBeforeMonth[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
constexpr int kDaysInMonth[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr std::int64_t kDaysPer400Years = 146097;
constexpr std::int64_t kDaysPer100Years = 36524;
constexpr std::int64_t kDaysPer4Years = 1461;

// Leap years among 1..k (k >= 0).
std::int64_t LeapsUpTo(std::int64_t k) {
    return k / 4 - k / 100 + k / 400;
}

// Days from 0001-01-01 to the first day of the year. Year -n mirrors year n,
// so the negative years before 0001 hold the same leap days as 1..n.
std::int64_t DaysBeforeYear(std::int64_t year) {
    if (year > 0) {
        return 365 * (year - 1) + LeapsUpTo(year - 1);
    }
    const std::int64_t n = -year;  // year 0 (invalid) falls back to 0001
    return -(365 * n + LeapsUpTo(n));
}

// Year arithmetic skips 0: count on a line where -0001 is 0.
std::int64_t ToContinuous(std::int64_t year) {
    return year < 0 ? year + 1 : year;
}
std::int64_t FromContinuous(std::int64_t c) {
    return c <= 0 ? c - 1 : c;
}

// Positive calendar: day d >= 0 after 0001-01-01 gives year and 0-based day of year.
void PositiveYear(std::int64_t d, std::int64_t& year, int& dayOfYear) {
    const std::int64_t n400 = d / kDaysPer400Years;
    d %= kDaysPer400Years;
    std::int64_t n100 = d / kDaysPer100Years;
    if (n100 > 3) {
        n100 = 3;  // the last day of a leap 400th year
    }
    d -= n100 * kDaysPer100Years;
    const std::int64_t n4 = d / kDaysPer4Years;
    d %= kDaysPer4Years;
    std::int64_t n1 = d / 365;
    if (n1 > 3) {
        n1 = 3;
    }
    d -= n1 * 365;
    year = 400 * n400 + 100 * n100 + 4 * n4 + n1 + 1;
    dayOfYear = static_cast<int>(d);
}

void MonthDayOf(std::int64_t year, int dayOfYear, int& month, int& day) {
    const bool leap = IsLeapYear(year);
    month = 12;
    while (month > 1) {
        const int before = kDaysBeforeMonth[month - 1] + ((leap && month > 2) ? 1 : 0);
        if (dayOfYear >= before) {
            day = dayOfYear - before + 1;
            return;
        }
        --month;
    }
    day = dayOfYear + 1;
}

}  // namespace

bool IsLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int DaysInMonth(std::int64_t year, int month) {
    if (month == 2) {
        return IsLeapYear(year) ? 29 : 28;
    }
    return kDaysInMonth[month - 1];
}

std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
    const std::int64_t m0 = static_cast<std::int64_t>(month) - 1;
    if (m0 < 0 || m0 > 11) {
        year = FromContinuous(ToContinuous(year) + FloorDiv(m0, 12));
        month = static_cast<int>(FloorMod(m0, 12)) + 1;
    }
    const int before = kDaysBeforeMonth[month - 1] + ((month > 2 && IsLeapYear(year)) ? 1 : 0);
    return DaysBeforeYear(year) + before + day - 1;
}

void CivilFromDays(std::int64_t days, std::int64_t& year, int& month, int& day) {
    int dayOfYear = 0;
    if (days >= 0) {
        PositiveYear(days, year, dayOfYear);
    } else {
        // Day -1 is the last day of -0001, mirrored onto day 0 of 0001.
        std::int64_t positive = 0;
        int mirrored = 0;
        PositiveYear(-(days + 1), positive, mirrored);
        year = -positive;
        dayOfYear = (IsLeapYear(positive) ? 365 : 364) - mirrored;
    }
    MonthDayOf(year, dayOfYear, month, day);
}

bool SInstant::operator<(const SInstant& o) const {
    if (year != o.year) return year < o.year;
    if (month != o.month) return month < o.month;
    if (day != o.day) return day < o.day;
    if (hour != o.hour) return hour < o.hour;
    if (minute != o.minute) return minute < o.minute;
    if (second != o.second) return second < o.second;
    return nanos < o.nanos;
}

bool SInstant::operator==(const SInstant& o) const {
    return year == o.year && month == o.month && day == o.day && hour == o.hour && minute == o.minute &&
           second == o.second && nanos == o.nanos;
}

SInstant InstantOf(const CDateTime& value) {
    SInstant r;
    r.year = value.GetYear();
    r.month = value.GetMonth();
    r.day = value.GetDay();
    r.hour = value.GetHour();
    r.minute = value.GetMinute();
    r.second = value.GetSecond();
    r.nanos = static_cast<std::int32_t>(value.GetMilliSecond()) * 1000000 +
              static_cast<std::int32_t>(value.GetMicroSecond()) * 1000 + value.GetNanoSecond();
    return r;
}

SInstant AddDuration(const SInstant& s, const CDateTimeSpan& d) {
    const std::int64_t sign = d.IsNegative() ? -1 : 1;
    SInstant e;

    // Months first; their carry goes into the year.
    const std::int64_t months = static_cast<std::int64_t>(s.month) + sign * static_cast<std::int64_t>(d.GetMonths());
    e.month = static_cast<int>(FloorMod(months - 1, 12)) + 1;
    const std::int64_t yearCarry = FloorDiv(months - 1, 12);
    e.year = FromContinuous(ToContinuous(s.year) + sign * static_cast<std::int64_t>(d.GetYears()) + yearCarry);

    // The time counts are up to 2^64 each: split off whole days before any
    // sum, so nothing overflows. The mixed-radix carries of the algorithm give
    // the same result as this day/second split.
    const std::uint64_t hours = d.GetHours();
    const std::uint64_t minutes = d.GetMinutes();
    const std::uint64_t seconds = d.GetSeconds();
    const std::int64_t timeDays = static_cast<std::int64_t>(hours / 24 + minutes / 1440 + seconds / 86400);
    const std::int64_t timeSeconds =
        static_cast<std::int64_t>((hours % 24) * 3600 + (minutes % 1440) * 60 + seconds % 86400);
    const std::int64_t fraction = static_cast<std::int64_t>(d.GetMilliSeconds()) * 1000000 +
                                  static_cast<std::int64_t>(d.GetMicroSeconds()) * 1000 + d.GetNanoSeconds();

    std::int64_t nanos = s.nanos + sign * fraction;
    std::int64_t secondOfDay = static_cast<std::int64_t>(s.hour) * 3600 + s.minute * 60 + s.second +
                               sign * timeSeconds + FloorDiv(nanos, 1000000000);
    nanos = FloorMod(nanos, 1000000000);
    const std::int64_t dayCarry = FloorDiv(secondOfDay, 86400) + sign * timeDays;
    secondOfDay = FloorMod(secondOfDay, 86400);
    e.nanos = static_cast<std::int32_t>(nanos);
    e.hour = static_cast<int>(secondOfDay / 3600);
    e.minute = static_cast<int>(secondOfDay / 60 % 60);
    e.second = static_cast<int>(secondOfDay % 60);

    // The start day is pinned into the new month, then days run on from there.
    const int maxDay = DaysInMonth(e.year, e.month);
    const int startDay = s.day > maxDay ? maxDay : (s.day < 1 ? 1 : s.day);
    const std::int64_t total = DaysFromCivil(e.year, e.month, 1) + (startDay - 1) +
                               sign * static_cast<std::int64_t>(d.GetDays()) + dayCarry;
    CivilFromDays(total, e.year, e.month, e.day);
    return e;
}

void AppendPadded(std::string& out, unsigned value, int width) {
    char digits[16];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0 && n < 16);
    for (int i = n; i < width; ++i) {
        out += '0';
    }
    while (n > 0) {
        out += digits[--n];
    }
}

void AppendFraction(std::string& out, unsigned milli, unsigned micro, unsigned nano) {
    const unsigned groups[3] = {milli, micro, nano};
    int last = 2;
    while (last >= 0 && groups[last] == 0) {
        --last;
    }
    if (last < 0) {
        return;
    }
    out += '.';
    for (int i = 0; i < last; ++i) {
        AppendPadded(out, groups[i], 3);
    }
    unsigned g = groups[last];
    int width = 3;
    while (g % 10 == 0) {
        g /= 10;
        --width;
    }
    AppendPadded(out, g, width);
}

}  // namespace calendar
}  // namespace QmXmlLib10
