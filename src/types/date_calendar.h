// Calendar arithmetic shared by CDateTime and CDateTimeSpan. Internal.
//
// Years are as written (no year 0, -0001 precedes 0001) and may go far beyond
// CDateTime's range, so that huge durations can be compared without overflow.
#pragma once

#include <cstdint>
#include <string>

namespace QmXmlLib10 {

class CDateTime;
class CDateTimeSpan;

namespace calendar {

bool IsLeapYear(std::int64_t year);
// month 1..12.
int DaysInMonth(std::int64_t year, int month);
// Days from 0001-01-01 to the given day. Months outside 1..12 carry into the
// year and days past the month run on, so no input reads out of bounds.
std::int64_t DaysFromCivil(std::int64_t year, int month, int day);
void CivilFromDays(std::int64_t days, std::int64_t& year, int& month, int& day);

// Floor division and its remainder, for negative carries.
inline std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
    std::int64_t q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) {
        --q;
    }
    return q;
}
inline std::int64_t FloorMod(std::int64_t a, std::int64_t b) {
    return a - FloorDiv(a, b) * b;
}

// A point of the extended calendar: fields in their normal ranges.
struct SInstant {
    std::int64_t year = 1;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    std::int32_t nanos = 0;

    bool operator<(const SInstant& o) const;
    bool operator==(const SInstant& o) const;
};

// The fields of a dateTime (zone ignored).
SInstant InstantOf(const CDateTime& value);
// XML Schema 1.0 appendix E: start plus the duration, in the start's zone.
SInstant AddDuration(const SInstant& start, const CDateTimeSpan& duration);

// Appends "." and the fraction groups up to the last non-zero one, trailing
// zeros removed; nothing when all three are zero.
void AppendFraction(std::string& out, unsigned milli, unsigned micro, unsigned nano);
// Appends value zero-padded to width digits (value >= 0).
void AppendPadded(std::string& out, unsigned value, int width);

}  // namespace calendar
}  // namespace QmXmlLib10
