#include <qmxml/types/date_time_span.h>

#include <array>
#include <cstdint>
#include <limits>

#include <qmxml/core/exception.h>

#include "types/date_calendar.h"

namespace QmXmlLib10 {

namespace {

const char* const kDurationExpected =
    "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";

constexpr std::uint64_t kMaxUnsigned32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMaxUnsigned64 = std::numeric_limits<std::uint64_t>::max();

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads one or more digits. A count beyond 64 bits sets overflow and keeps
// reading, so that the shape is still checked to the end.
bool ReadCount(const char*& p, std::uint64_t& value, bool& overflow) {
    if (!IsDigit(*p)) {
        return false;
    }
    value = 0;
    for (; IsDigit(*p); ++p) {
        const unsigned digit = static_cast<unsigned>(*p - '0');
        if (value > (kMaxUnsigned64 - digit) / 10) {
            overflow = true;
            value = kMaxUnsigned64;
        } else {
            value = value * 10 + digit;
        }
    }
    return true;
}

unsigned short CheckFraction(unsigned short value, const char* format) {
    if (value > 999) {
        throw CQmInvalidValueException(FormatString(format, static_cast<int>(value)));
    }
    return value;
}

// The reference instants of the duration order, 00:00:00Z each.
const std::array<calendar::SInstant, 4>& ReferenceInstants() {
    static const std::array<calendar::SInstant, 4> instants = [] {
        const short dates[4][3] = {{1696, 9, 1}, {1697, 2, 1}, {1903, 3, 1}, {1903, 7, 1}};
        std::array<calendar::SInstant, 4> result;
        for (int i = 0; i < 4; ++i) {
            CDateTime start(CDateTime::dt_dateTime);
            start.SetDate(dates[i][0], static_cast<unsigned char>(dates[i][1]), static_cast<unsigned char>(dates[i][2]));
            start.SetUTC();
            result[i] = calendar::InstantOf(start);
        }
        return result;
    }();
    return instants;
}

}  // namespace

CDateTimeSpan::CDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds) {
    SetDateTimeSpan(hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                             std::uint64_t minutes, std::uint64_t seconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                             std::uint64_t minutes, std::uint64_t seconds, unsigned short milliSeconds,
                             unsigned short microSeconds, unsigned short nanoSeconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, milliSeconds, microSeconds, nanoSeconds);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds) {
    SetDateTimeSpan(0, 0, 0, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days,
                                    std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, std::uint32_t months, std::uint32_t days,
                                    std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds,
                                    unsigned short milliSeconds, unsigned short microSeconds,
                                    unsigned short nanoSeconds) {
    // Checked first, so a bad fraction leaves the value as it was.
    CheckFraction(milliSeconds, "Invalid Milli-Second [%d] (0 <= milli <= 999)");
    CheckFraction(microSeconds, "Invalid Micro-Second [%d] (0 <= micro <= 999)");
    CheckFraction(nanoSeconds, "Invalid Nano-Second [%d] (0 <= nano <= 999)");
    Clear();
    m_years = years;
    m_months = months;
    m_days = days;
    m_hours = hours;
    m_minutes = minutes;
    m_seconds = seconds;
    m_milliSeconds = milliSeconds;
    m_microSeconds = microSeconds;
    m_nanoSeconds = nanoSeconds;
}

void CDateTimeSpan::SetMilliSeconds(unsigned short milliSeconds) {
    m_milliSeconds = CheckFraction(milliSeconds, "Invalid Milli-Second [%d] (0 <= milli <= 999)");
}

void CDateTimeSpan::SetMicroSeconds(unsigned short microSeconds) {
    m_microSeconds = CheckFraction(microSeconds, "Invalid Micro-Second [%d] (0 <= micro <= 999)");
}

void CDateTimeSpan::SetNanoSeconds(unsigned short nanoSeconds) {
    m_nanoSeconds = CheckFraction(nanoSeconds, "Invalid Nano-Second [%d] (0 <= nano <= 999)");
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const {
    CDateTimeSpan result(*this);
    result.m_negative = true;
    return result;
}

void CDateTimeSpan::Clear() {
    *this = CDateTimeSpan();
}

void CDateTimeSpan::ParseXSDDuration(const char* text) {
    Clear();
    if (text == nullptr) {
        throw CQmInvalidValueException("Invalid XSD Duration (Null String)");
    }
    if (*text == '\0') {
        throw CQmInvalidValueException("Invalid XSD Duration (Empty String)");
    }
    auto fail = [text](const char* format) {
        throw CQmInvalidValueException(FormatString(format, text));
    };

    CDateTimeSpan value;
    bool tooLarge = false;
    bool tooLong = false;
    bool any = false;
    const char* p = text;
    if (*p == '-') {
        value.m_negative = true;
        ++p;
    }
    if (*p != 'P') {
        fail(kDurationExpected);
    }
    ++p;

    // Date counts, each designator after the one before it.
    int next = 0;
    while (*p != '\0' && *p != 'T') {
        std::uint64_t count = 0;
        bool overflow = false;
        if (!ReadCount(p, count, overflow)) {
            fail(kDurationExpected);
        }
        const int index = *p == 'Y' ? 0 : *p == 'M' ? 1 : *p == 'D' ? 2 : -1;
        if (index < next) {
            fail(kDurationExpected);
        }
        if (index == 0) {
            tooLarge |= overflow || count > std::numeric_limits<unsigned short>::max();
            value.m_years = static_cast<unsigned short>(count);
        } else if (index == 1) {
            tooLarge |= overflow || count > kMaxUnsigned32;
            value.m_months = static_cast<std::uint32_t>(count);
        } else {
            tooLarge |= overflow || count > kMaxUnsigned32;
            value.m_days = static_cast<std::uint32_t>(count);
        }
        next = index + 1;
        any = true;
        ++p;
    }

    if (*p == 'T') {
        ++p;
        next = 0;
        bool anyTime = false;
        while (*p != '\0') {
            std::uint64_t count = 0;
            bool overflow = false;
            if (!ReadCount(p, count, overflow)) {
                fail(kDurationExpected);
            }
            int index = -1;
            if (*p == '.') {
                // Only the seconds carry a fraction: three digits each to
                // milli-, micro- and nanoseconds, from the left.
                ++p;
                const char* digits = p;
                while (IsDigit(*p)) {
                    ++p;
                }
                const long length = p - digits;
                if (length == 0 || *p != 'S') {
                    fail(kDurationExpected);
                }
                tooLong |= length > 9;
                unsigned groups[3] = {0, 0, 0};
                for (long i = 0; i < 9; ++i) {
                    groups[i / 3] = groups[i / 3] * 10 + (i < length ? static_cast<unsigned>(digits[i] - '0') : 0);
                }
                value.m_milliSeconds = static_cast<unsigned short>(groups[0]);
                value.m_microSeconds = static_cast<unsigned short>(groups[1]);
                value.m_nanoSeconds = static_cast<unsigned short>(groups[2]);
                index = 2;
            } else {
                index = *p == 'H' ? 0 : *p == 'M' ? 1 : *p == 'S' ? 2 : -1;
            }
            if (index < next) {
                fail(kDurationExpected);
            }
            if (index == 0) {
                tooLarge |= overflow || count > kMaxUnsigned32;
                value.m_hours = static_cast<std::uint32_t>(count);
            } else if (index == 1) {
                tooLarge |= overflow;
                value.m_minutes = count;
            } else {
                tooLarge |= overflow;
                value.m_seconds = count;
            }
            next = index + 1;
            anyTime = true;
            ++p;
        }
        if (!anyTime) {
            fail(kDurationExpected);
        }
        any = true;
    }
    if (!any) {
        fail(kDurationExpected);
    }
    if (tooLong) {
        fail("Invalid XSD Duration [%s] Fraction part too long");
    }
    if (tooLarge) {
        fail("Invalid XSD Duration [%s] Value too large");
    }
    *this = value;
}

std::string CDateTimeSpan::ToString() const {
    const bool fraction = m_milliSeconds != 0 || m_microSeconds != 0 || m_nanoSeconds != 0;
    const bool time = m_hours != 0 || m_minutes != 0 || m_seconds != 0 || fraction;
    if (!time && m_years == 0 && m_months == 0 && m_days == 0) {
        return "PT0S";
    }
    std::string out = m_negative ? "-P" : "P";
    auto count = [&out](std::uint64_t value, char designator) {
        if (value != 0) {
            out += std::to_string(value);
            out += designator;
        }
    };
    count(m_years, 'Y');
    count(m_months, 'M');
    count(m_days, 'D');
    if (time) {
        out += 'T';
        count(m_hours, 'H');
        count(m_minutes, 'M');
        if (m_seconds != 0 || fraction) {
            out += std::to_string(m_seconds);
            calendar::AppendFraction(out, m_milliSeconds, m_microSeconds, m_nanoSeconds);
            out += 'S';
        }
    }
    return out;
}

CDateTime::DTCompareResult CDateTimeSpan::CompareTo(const CDateTimeSpan& other) const {
    CDateTime::DTCompareResult result = CDateTime::cmp_indeterminate;
    bool first = true;
    for (const calendar::SInstant& start : ReferenceInstants()) {
        // Both sums are in UTC, so their order is always determinate.
        const calendar::SInstant mine = calendar::AddDuration(start, *this);
        const calendar::SInstant theirs = calendar::AddDuration(start, other);
        const CDateTime::DTCompareResult here =
            mine == theirs ? CDateTime::cmp_equal : (mine < theirs ? CDateTime::cmp_less : CDateTime::cmp_greater);
        if (first) {
            result = here;
            first = false;
        } else if (here != result) {
            return CDateTime::cmp_indeterminate;
        }
    }
    return result;
}

}  // namespace QmXmlLib10
