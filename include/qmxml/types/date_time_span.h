// One xs:duration value.
#pragma once

#include <cstdint>
#include <string>

#include <qmxml/types/date_time.h>

namespace QmXmlLib10 {

// Counts of years, months, days, hours, minutes and seconds kept as written
// ("PT90M" stays 90 minutes), a fraction of a second to the nanosecond, and
// one sign for the whole duration.
//
// Milli-, micro- and nanoseconds are 0..999 each; a larger one given to a
// constructor or setter throws CQmInvalidValueException with CDateTime's
// message ("Invalid Milli-Second [%d] (0 <= milli <= 999)" and so on).
class CDateTimeSpan {
public:
    CDateTimeSpan() = default;
    CDateTimeSpan(const CDateTimeSpan& other) = default;
    CDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds);
    CDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                  std::uint64_t minutes, std::uint64_t seconds);
    CDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                  std::uint64_t minutes, std::uint64_t seconds, unsigned short milliSeconds,
                  unsigned short microSeconds, unsigned short nanoSeconds);
    CDateTimeSpan& operator=(const CDateTimeSpan& other) = default;

    // Each clears the value (sign positive) and sets the fields given.
    void SetDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds);
    void SetDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                         std::uint64_t minutes, std::uint64_t seconds);
    void SetDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                         std::uint64_t minutes, std::uint64_t seconds, unsigned short milliSeconds,
                         unsigned short microSeconds, unsigned short nanoSeconds);

    unsigned short GetYears() const { return m_years; }
    void SetYears(unsigned short years) { m_years = years; }
    std::uint32_t GetMonths() const { return m_months; }
    void SetMonths(std::uint32_t months) { m_months = months; }
    std::uint32_t GetDays() const { return m_days; }
    void SetDays(std::uint32_t days) { m_days = days; }
    std::uint32_t GetHours() const { return m_hours; }
    void SetHours(std::uint32_t hours) { m_hours = hours; }
    std::uint64_t GetMinutes() const { return m_minutes; }
    void SetMinutes(std::uint64_t minutes) { m_minutes = minutes; }
    std::uint64_t GetSeconds() const { return m_seconds; }
    void SetSeconds(std::uint64_t seconds) { m_seconds = seconds; }
    unsigned short GetMilliSeconds() const { return m_milliSeconds; }
    void SetMilliSeconds(unsigned short milliSeconds);
    unsigned short GetMicroSeconds() const { return m_microSeconds; }
    void SetMicroSeconds(unsigned short microSeconds);
    unsigned short GetNanoSeconds() const { return m_nanoSeconds; }
    void SetNanoSeconds(unsigned short nanoSeconds);

    bool IsNegative() const { return m_negative; }
    // Flips the sign.
    void Negate() { m_negative = !m_negative; }
    // A copy with the sign set (negative whatever this one's sign).
    CDateTimeSpan GetAsNegative() const;

    // "[-]P[nY][nM][nD][T[nH][nM][n[.f]S]]": at least one count, "T" only
    // before at least one time count, no "+" sign, the fraction with digits
    // on both sides of the point and at most nine after it. Failures throw
    // CQmInvalidValueException and leave the value cleared:
    // "Invalid XSD Duration (Null String)", "Invalid XSD Duration (Empty String)",
    // "Invalid XSD Duration [%s] Fraction part too long",
    // "Invalid XSD Duration [%s] Value too large" for a count beyond its
    // field (years 65535; months, days, hours 4294967295; minutes, seconds
    // 18446744073709551615), and otherwise
    // "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]".
    void ParseXSDDuration(const char* text);

    // Non-zero counts only; a duration that is all zero prints "PT0S"
    // whatever its sign.
    std::string ToString() const;

    // The XML Schema order: both durations are added to 1696-09-01, 1697-02-01,
    // 1903-03-01 and 1903-07-01 (00:00:00Z); the results must agree on all four,
    // else the result is indeterminate ("P1M" against "P30D"). Counts of any
    // size compare without overflow.
    CDateTime::DTCompareResult CompareTo(const CDateTimeSpan& other) const;

    bool operator==(const CDateTimeSpan& other) const { return CompareTo(other) == CDateTime::cmp_equal; }
    bool operator!=(const CDateTimeSpan& other) const { return !(*this == other); }
    bool operator<(const CDateTimeSpan& other) const { return CompareTo(other) == CDateTime::cmp_less; }
    bool operator>(const CDateTimeSpan& other) const { return CompareTo(other) == CDateTime::cmp_greater; }

private:
    void Clear();

    unsigned short m_years = 0;
    std::uint32_t m_months = 0;
    std::uint32_t m_days = 0;
    std::uint32_t m_hours = 0;
    std::uint64_t m_minutes = 0;
    std::uint64_t m_seconds = 0;
    unsigned short m_milliSeconds = 0;
    unsigned short m_microSeconds = 0;
    unsigned short m_nanoSeconds = 0;
    bool m_negative = false;
};

}  // namespace QmXmlLib10
