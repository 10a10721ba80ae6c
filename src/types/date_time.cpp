#include <qmxml/types/date_time.h>

#include <cstdlib>
#include <cstring>

#include <qmxml/core/exception.h>
#include <qmxml/types/date_time_span.h>

#include "platform/clock.h"
#include "types/date_calendar.h"

namespace QmXmlLib10 {

namespace {

using calendar::FloorDiv;
using calendar::FloorMod;

constexpr int kMinYear = -9999;
constexpr int kMaxYear = 9999;
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kFourteenHours = 14 * 3600;
constexpr int kMaxZoneMinutes = 23 * 60 + 59;
// Seconds from 1601-01-01 to 1970-01-01, the FILETIME epoch to the time_t one.
constexpr std::int64_t kFileTimeEpochOffset = 11644473600;

const char* const kDateExpected = "Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]";
const char* const kTimeExpected = "Invalid XSD Time [%s] expected hh:mm:ss[.ff]";
const char* const kDateTimeExpected = "Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]";

// Fields a type carries.
enum : int { kYear = 1, kMonth = 2, kDay = 4, kTime = 8 };

int FieldsOf(CDateTime::DTType type) {
    switch (type) {
    case CDateTime::dt_dateTime:
        return kYear | kMonth | kDay | kTime;
    case CDateTime::dt_date:
        return kYear | kMonth | kDay;
    case CDateTime::dt_gYearMonth:
        return kYear | kMonth;
    case CDateTime::dt_gYear:
        return kYear;
    case CDateTime::dt_time:
        return kTime;
    case CDateTime::dt_gDay:
        return kDay;
    case CDateTime::dt_gMonth:
        return kMonth;
    case CDateTime::dt_gMonthDay:
        return kMonth | kDay;
    default:
        return 0;
    }
}

bool IsKnownType(CDateTime::DTType type) {
    return type >= CDateTime::dt_none && type <= CDateTime::dt_gMonthDay;
}

[[noreturn]] void ThrowInvalid(const char* format, const char* text) {
    throw CQmInvalidValueException(FormatString(format, text));
}

[[noreturn]] void ThrowInvalid(const char* message) {
    throw CQmInvalidValueException(message);
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads exactly count digits; the caller has checked that they are there.
bool ReadNumber(const char* p, int count, int& value) {
    value = 0;
    for (int i = 0; i < count; ++i) {
        if (!IsDigit(p[i])) {
            return false;
        }
        value = value * 10 + (p[i] - '0');
    }
    return true;
}

// The shape of a date text, split from its zone.
struct SDateScan {
    enum Status { ok, badShape, badZone } status = badShape;
    CDateTime::DTType type = CDateTime::dt_none;
    int year = 0;
    int month = 0;
    int day = 0;
    const char* zone = nullptr;  // null: no zone
    const char* zoneEnd = nullptr;
};

SDateScan ScanDate(const char* begin, const char* end) {
    SDateScan r;
    const std::size_t length = static_cast<std::size_t>(end - begin);
    const char* bodyEnd = end;
    // A zone is "Z" or the last six characters "+hh:mm" / "-hh:mm"; a ':' or
    // '+' that cannot be part of such a tail leaves the zone unseparable.
    if (length > 0 && end[-1] == 'Z') {
        r.zone = end - 1;
    } else if (std::memchr(begin, ':', length) != nullptr) {
        if (length < 6 || (end[-6] != '+' && end[-6] != '-') || end[-3] != ':') {
            r.status = SDateScan::badZone;
            return r;
        }
        r.zone = end - 6;
    } else if (std::memchr(begin, '+', length) != nullptr) {
        r.status = SDateScan::badZone;
        return r;
    }
    if (r.zone != nullptr) {
        bodyEnd = r.zone;
        r.zoneEnd = end;
    }

    const char* p = begin;
    const std::size_t n = static_cast<std::size_t>(bodyEnd - begin);
    if (n == 5 && p[0] == '-' && p[1] == '-' && p[2] == '-') {
        if (ReadNumber(p + 3, 2, r.day)) {
            r.type = CDateTime::dt_gDay;
        }
    } else if (n >= 2 && p[0] == '-' && p[1] == '-') {
        if (n == 4 && ReadNumber(p + 2, 2, r.month)) {
            r.type = CDateTime::dt_gMonth;
        } else if (n == 7 && p[4] == '-' && ReadNumber(p + 2, 2, r.month) && ReadNumber(p + 5, 2, r.day)) {
            r.type = CDateTime::dt_gMonthDay;
        }
    } else {
        const bool negative = n > 0 && p[0] == '-';
        const char* q = p + (negative ? 1 : 0);
        const std::size_t rest = n - (negative ? 1 : 0);
        if ((rest == 4 || rest == 7 || rest == 10) && ReadNumber(q, 4, r.year)) {
            if (rest == 4) {
                r.type = CDateTime::dt_gYear;
            } else if (q[4] == '-' && ReadNumber(q + 5, 2, r.month)) {
                if (rest == 7) {
                    r.type = CDateTime::dt_gYearMonth;
                } else if (q[7] == '-' && ReadNumber(q + 8, 2, r.day)) {
                    r.type = CDateTime::dt_date;
                }
            }
            if (negative) {
                r.year = -r.year;
            }
        }
    }
    if (r.type != CDateTime::dt_none) {
        r.status = SDateScan::ok;
    }
    return r;
}

// The shape of a time text, split from its zone.
struct STimeScan {
    enum Status { ok, badShape, tooLong } status = badShape;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int fraction[3] = {0, 0, 0};
    const char* zone = nullptr;
};

STimeScan ScanTime(const char* begin, const char* end) {
    STimeScan r;
    if (end - begin < 8 || begin[2] != ':' || begin[5] != ':' || !ReadNumber(begin, 2, r.hour) ||
        !ReadNumber(begin + 3, 2, r.minute) || !ReadNumber(begin + 6, 2, r.second) || r.hour > 23 ||
        r.minute > 59 || r.second > 59) {
        return r;
    }
    const char* p = begin + 8;
    if (p < end && *p == '.') {
        ++p;
        const char* digits = p;
        while (p < end && IsDigit(*p)) {
            ++p;
        }
        const long count = p - digits;
        if (count == 0) {
            return r;
        }
        if (count > 9) {
            r.status = STimeScan::tooLong;
            return r;
        }
        for (long i = 0; i < 9; ++i) {
            const int digit = i < count ? digits[i] - '0' : 0;
            r.fraction[i / 3] = r.fraction[i / 3] * 10 + digit;
        }
    }
    if (p < end) {
        if (*p != 'Z' && *p != '+' && *p != '-') {
            return r;
        }
        r.zone = p;
    }
    r.status = STimeScan::ok;
    return r;
}

const char* ExpectedFor(CDateTime::DTType type) {
    switch (type) {
    case CDateTime::dt_gYearMonth:
        return "Invalid XSD Date [%s] expected CCYY-MM[Z|[+|-]hh:mm]";
    case CDateTime::dt_gYear:
        return "Invalid XSD Date [%s] expected CCYY[Z|[+|-]hh:mm]";
    case CDateTime::dt_gMonthDay:
        return "Invalid XSD Date [%s] expected --MM-DD[Z|[+|-]hh:mm]";
    case CDateTime::dt_gMonth:
        return "Invalid XSD Date [%s] expected --MM[Z|[+|-]hh:mm]";
    case CDateTime::dt_gDay:
        return "Invalid XSD Date [%s] expected ---DD[Z|[+|-]hh:mm]";
    default:
        return kDateExpected;
    }
}

void CheckDateText(const char* text) {
    if (text == nullptr) {
        ThrowInvalid("Invalid Date (Null String)");
    }
    if (*text == '\0') {
        ThrowInvalid("Invalid Date (Empty String)");
    }
    if (std::strchr(text, 'T') != nullptr) {
        ThrowInvalid("Invalid Date ('T' not allowed)");
    }
}

[[noreturn]] void ThrowRange(const char* format, int value) {
    throw CQmInvalidValueException(FormatString(format, value));
}

[[noreturn]] void ThrowYear(int year) {
    throw CQmInvalidValueException(
        FormatString("Invalid Year [%d] (%d <= year <= %d && year != 0)", year, kMinYear, kMaxYear));
}

}  // namespace

// --- Construction ------------------------------------------------------------

CDateTime::CDateTime() = default;

CDateTime::CDateTime(DTType type) : m_type(type) {}

CDateTime::CDateTime(const char* text) {
    ParseXSDDateTime(text);
}

CDateTime::CDateTime(std::int64_t time) {
    *this = time;
}

CDateTime::CDateTime(const SYSTEMTIME& systemTime) {
    *this = systemTime;
}

CDateTime::CDateTime(const FILETIME& fileTime) {
    *this = fileTime;
}

CDateTime::CDateTime(short year, unsigned char month, unsigned char day) {
    SetDate(year, month, day);
}

CDateTime::~CDateTime() = default;

CDateTime& CDateTime::operator=(DTType type) {
    Clear();
    m_type = type;
    return *this;
}

CDateTime& CDateTime::operator=(const char* text) {
    ParseXSDDateTime(text);
    return *this;
}

CDateTime& CDateTime::operator=(std::int64_t time) {
    if (!SetFromUnixTime(time, 0)) {
        throw CQmInvalidValueException(
            FormatString("The time_t value [%lld] is outside the date range", static_cast<long long>(time)));
    }
    return *this;
}

CDateTime& CDateTime::operator=(const SYSTEMTIME& st) {
    // Checked before narrowing to the fields, in Validate's order, so the
    // message shows the value given.
    if (st.wMonth < 1 || st.wMonth > 12) {
        ThrowRange("Invalid Month [%d] (1 <= month <= 12)", st.wMonth);
    }
    if (st.wYear < 1 || st.wYear > kMaxYear) {
        ThrowYear(st.wYear);
    }
    if (st.wDay > 31) {
        ThrowRange("Invalid Day [%d] (1 <= day <= days in month", st.wDay);
    }
    if (st.wHour > 23) {
        ThrowRange("Invalid Hour [%d] (0 <= hour <= 23)", st.wHour);
    }
    if (st.wMinute > 59) {
        ThrowRange("Invalid Minute [%d] (0 <= minute <= 59)", st.wMinute);
    }
    if (st.wSecond > 59) {
        ThrowRange("Invalid Second [%d] (0 <= second <= 59)", st.wSecond);
    }
    if (st.wMilliseconds > 999) {
        ThrowRange("Invalid Milli-Second [%d] (0 <= milli <= 999)", st.wMilliseconds);
    }
    CDateTime value(dt_dateTime);
    value.m_year = static_cast<short>(st.wYear);
    value.m_month = static_cast<unsigned char>(st.wMonth);
    value.m_day = static_cast<unsigned char>(st.wDay);
    value.m_hour = static_cast<unsigned char>(st.wHour);
    value.m_minute = static_cast<unsigned char>(st.wMinute);
    value.m_second = static_cast<unsigned char>(st.wSecond);
    value.m_milliSecond = st.wMilliseconds;
    value.Validate();
    *this = value;
    return *this;
}

CDateTime& CDateTime::operator=(const FILETIME& fileTime) {
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime;
    // Ticks with the top bit set are not a time, as on the platform.
    if ((ticks >> 63) != 0 ||
        !SetFromUnixTime(static_cast<std::int64_t>(ticks / 10000000) - kFileTimeEpochOffset,
                         static_cast<std::int32_t>(ticks % 10000000) * 100)) {
        throw CQmInvalidValueException("Failed to convert FILETIME to SYSTEMTIME");
    }
    return *this;
}

void CDateTime::Clear() {
    *this = CDateTime();
}

bool CDateTime::SetFromUnixTime(std::int64_t seconds, std::int32_t nanos) {
    Clear();
    const std::int64_t days = FloorDiv(seconds, kSecondsPerDay) + calendar::DaysFromCivil(1970, 1, 1);
    std::int64_t secondOfDay = FloorMod(seconds, kSecondsPerDay);
    std::int64_t year = 0;
    int month = 0;
    int day = 0;
    calendar::CivilFromDays(days, year, month, day);
    if (year < kMinYear || year > kMaxYear) {
        return false;
    }
    m_type = dt_dateTime;
    m_year = static_cast<short>(year);
    m_month = static_cast<unsigned char>(month);
    m_day = static_cast<unsigned char>(day);
    m_hour = static_cast<unsigned char>(secondOfDay / 3600);
    m_minute = static_cast<unsigned char>(secondOfDay / 60 % 60);
    m_second = static_cast<unsigned char>(secondOfDay % 60);
    m_milliSecond = static_cast<unsigned short>(nanos / 1000000);
    m_microSecond = static_cast<unsigned short>(nanos / 1000 % 1000);
    m_nanoSecond = static_cast<unsigned short>(nanos % 1000);
    SetUTC();
    return true;
}

// --- Parsing -----------------------------------------------------------------

void CDateTime::SetZone(const char* begin, const char* end, const char* whole) {
    int hours = 0;
    int minutes = 0;
    if (end - begin == 1 && *begin == 'Z') {
        SetUTC();
        return;
    }
    if (end - begin == 6 && (begin[0] == '+' || begin[0] == '-') && begin[3] == ':' &&
        ReadNumber(begin + 1, 2, hours) && ReadNumber(begin + 4, 2, minutes) && hours < 24 && minutes < 60) {
        const int offset = hours * 60 + minutes;
        SetTimeZoneOffset(begin[0] == '-' ? -offset : offset);
        return;
    }
    ThrowInvalid("Invalid XSD Time Zone [%s]", whole);
}

void CDateTime::SetXSDDate(const char* begin, const char* end, const char* whole) {
    const SDateScan scan = ScanDate(begin, end);
    if (scan.status == SDateScan::badZone) {
        ThrowInvalid("Invalid Date (Bad Zone value)");
    }
    if (scan.status != SDateScan::ok) {
        ThrowInvalid(kDateExpected, whole);
    }
    m_type = scan.type;
    m_year = static_cast<short>(scan.year);
    m_month = static_cast<unsigned char>(scan.month);
    m_day = static_cast<unsigned char>(scan.day);
    if (scan.zone != nullptr) {
        SetZone(scan.zone, scan.zoneEnd, whole);
    }
}

void CDateTime::SetXSDTime(const char* begin, const char* end, const char* whole) {
    const STimeScan scan = ScanTime(begin, end);
    if (scan.status == STimeScan::tooLong) {
        ThrowInvalid("Invalid XSD Time [%s] Fraction part too long", whole);
    }
    if (scan.status != STimeScan::ok) {
        ThrowInvalid(kTimeExpected, whole);
    }
    m_hour = static_cast<unsigned char>(scan.hour);
    m_minute = static_cast<unsigned char>(scan.minute);
    m_second = static_cast<unsigned char>(scan.second);
    m_milliSecond = static_cast<unsigned short>(scan.fraction[0]);
    m_microSecond = static_cast<unsigned short>(scan.fraction[1]);
    m_nanoSecond = static_cast<unsigned short>(scan.fraction[2]);
    if (scan.zone != nullptr) {
        SetZone(scan.zone, end, whole);
    }
}

void CDateTime::ParseXSDDateTime(const char* text) {
    if (text == nullptr) {
        ThrowInvalid("Invalid DateTime (Null String)");
    }
    Clear();
    const char* t = std::strchr(text, 'T');
    if (t == nullptr) {
        ThrowInvalid(kDateTimeExpected, text);
    }
    const SDateScan date = ScanDate(text, t);
    if (date.status != SDateScan::ok || date.type != dt_date || date.zone != nullptr) {
        ThrowInvalid("Invalid XSD DateTime [%s]", text);
    }
    m_year = static_cast<short>(date.year);
    m_month = static_cast<unsigned char>(date.month);
    m_day = static_cast<unsigned char>(date.day);
    SetXSDTime(t + 1, t + std::strlen(t), text);
    m_type = dt_dateTime;
    Validate();
}

void CDateTime::ParseXSDDate(const char* text) {
    CheckDateText(text);
    Clear();
    SetXSDDate(text, text + std::strlen(text), text);
    Validate();
}

void CDateTime::ParseXSDTime(const char* text) {
    if (text == nullptr) {
        ThrowInvalid("Invalid Time (Null String)");
    }
    if (*text == '\0') {
        ThrowInvalid("Invalid XSD Time (Empty String)");
    }
    Clear();
    SetXSDTime(text, text + std::strlen(text), text);
    m_type = dt_time;
    Validate();
}

void CDateTime::ParseXSD(const char* text, DTType type) {
    switch (type) {
    case dt_dateTime:
        ParseXSDDateTime(text);
        return;
    case dt_time:
        ParseXSDTime(text);
        return;
    case dt_date:
    case dt_gYearMonth:
    case dt_gYear:
    case dt_gMonthDay:
    case dt_gMonth:
    case dt_gDay:
        break;
    default:
        throw CQmInvalidParamException(FormatString("Invalid Date Type: %d", static_cast<int>(type)));
    }
    CheckDateText(text);
    Clear();
    const char* end = text + std::strlen(text);
    const SDateScan scan = ScanDate(text, end);
    if (scan.status == SDateScan::badZone) {
        ThrowInvalid("Invalid Date (Bad Zone value)");
    }
    if (scan.status != SDateScan::ok || scan.type != type) {
        ThrowInvalid(ExpectedFor(type), text);
    }
    m_type = scan.type;
    m_year = static_cast<short>(scan.year);
    m_month = static_cast<unsigned char>(scan.month);
    m_day = static_cast<unsigned char>(scan.day);
    if (scan.zone != nullptr) {
        SetZone(scan.zone, scan.zoneEnd, text);
    }
    Validate();
}

void CDateTime::Validate() const {
    if (m_type == dt_none) {
        ThrowInvalid("Invalid Year Zero");
    }
    const int fields = FieldsOf(m_type);
    const char* typeText = GetTypeAsString(m_type);
    auto mustBeZero = [typeText](int value, const char* format) {
        if (value != 0) {
            throw CQmInvalidValueException(FormatString(format, value, typeText));
        }
    };

    if (fields & kMonth) {
        if (m_month < 1 || m_month > 12) {
            ThrowRange("Invalid Month [%d] (1 <= month <= 12)", m_month);
        }
    } else {
        mustBeZero(m_month, "Invalid Month [%d] for type %s");
    }

    if (fields & kYear) {
        if (m_year == 0 || m_year < kMinYear || m_year > kMaxYear) {
            ThrowYear(m_year);
        }
    } else {
        mustBeZero(m_year, "Invalid Year [%d] for type %s");
    }

    if (m_type == dt_dateTime || m_type == dt_date) {
        if (m_day < 1 || m_day > calendar::DaysInMonth(m_year, m_month)) {
            ThrowRange("Invalid Day [%d] (1 <= day <= days in month", m_day);
        }
    } else if (m_type == dt_gMonthDay) {
        // No year: 29 February may recur.
        const int days = m_month == 2 ? 29 : calendar::DaysInMonth(1, m_month);
        if (m_day < 1 || m_day > days) {
            ThrowRange("Invalid Day [%d] (1 <= day <= days in month)", m_day);
        }
    } else if (m_type == dt_gDay) {
        if (m_day < 1 || m_day > 31) {
            ThrowRange("Invalid Day [%d] (1 <= day <= 31)", m_day);
        }
    } else {
        mustBeZero(m_day, "Invalid Day [%d] for type %s");
    }

    if (fields & kTime) {
        if (m_hour > 23) ThrowRange("Invalid Hour [%d] (0 <= hour <= 23)", m_hour);
        if (m_minute > 59) ThrowRange("Invalid Minute [%d] (0 <= minute <= 59)", m_minute);
        if (m_second > 59) ThrowRange("Invalid Second [%d] (0 <= second <= 59)", m_second);
        if (m_milliSecond > 999) ThrowRange("Invalid Milli-Second [%d] (0 <= milli <= 999)", m_milliSecond);
        if (m_microSecond > 999) ThrowRange("Invalid Micro-Second [%d] (0 <= micro <= 999)", m_microSecond);
        if (m_nanoSecond > 999) ThrowRange("Invalid Nano-Second [%d] (0 <= nano <= 999)", m_nanoSecond);
    } else {
        mustBeZero(m_hour, "Invalid Hour [%d] for type %s");
        mustBeZero(m_minute, "Invalid Minute [%d] for type %s");
        mustBeZero(m_second, "Invalid Second [%d] for type %s");
        mustBeZero(m_milliSecond, "Invalid Milli-Second [%d] for type %s");
        mustBeZero(m_microSecond, "Invalid Micro-Second [%d] for type %s");
        mustBeZero(m_nanoSecond, "Invalid Nano-Second [%d] for type %s");
    }
}

// --- Access ------------------------------------------------------------------

const char* CDateTime::GetTypeAsString(DTType type) {
    switch (type) {
    case dt_none: return "yearZero";
    case dt_dateTime: return "dateTime";
    case dt_date: return "date";
    case dt_gYearMonth: return "gYearMonth";
    case dt_gYear: return "gYear";
    case dt_time: return "time";
    case dt_gDay: return "gDay";
    case dt_gMonth: return "gMonth";
    case dt_gMonthDay: return "gMonthDay";
    }
    return "";
}

void CDateTime::CheckField(int field, const char* getter) const {
    if ((FieldsOf(m_type) & field) != field) {
        throw CQmInvalidStateException(
            FormatString("Failed to %s. Invalid Date Type: %s.", getter, GetTypeAsString(m_type)));
    }
}

short CDateTime::GetYear() const {
    CheckField(kYear, "GetYear");
    return m_year;
}

void CDateTime::SetYear(short year) {
    CheckField(kYear, "GetYear");
    if (year == 0 || year < kMinYear || year > kMaxYear) {
        ThrowYear(year);
    }
    m_year = year;
}

unsigned char CDateTime::GetMonth() const {
    CheckField(kMonth, "GetMonth");
    return m_month;
}

void CDateTime::SetMonth(unsigned char month) {
    CheckField(kMonth, "GetMonth");
    if (month < 1 || month > 12) {
        ThrowRange("Invalid Month [%d] (1 <= month <= 12)", month);
    }
    m_month = month;
}

unsigned char CDateTime::GetDay() const {
    CheckField(kDay, "GetDay");
    return m_day;
}

void CDateTime::SetDay(unsigned char day) {
    CheckField(kDay, "GetDay");
    if (day < 1 || day > 31) {
        ThrowRange("Invalid Day [%d] (1 <= day <= 31)", day);
    }
    m_day = day;
}

unsigned char CDateTime::GetHour() const {
    CheckField(kTime, "GetHour");
    return m_hour;
}

void CDateTime::SetHour(unsigned char hour) {
    CheckField(kTime, "GetHour");
    if (hour > 23) {
        ThrowRange("Invalid Hour [%d] (0 <= hour <= 23)", hour);
    }
    m_hour = hour;
}

unsigned char CDateTime::GetMinute() const {
    CheckField(kTime, "GetMinute");
    return m_minute;
}

void CDateTime::SetMinute(unsigned char minute) {
    CheckField(kTime, "GetMinute");
    if (minute > 59) {
        ThrowRange("Invalid Minute [%d] (0 <= minute <= 59)", minute);
    }
    m_minute = minute;
}

unsigned char CDateTime::GetSecond() const {
    CheckField(kTime, "GetSecond");
    return m_second;
}

void CDateTime::SetSecond(unsigned char second) {
    CheckField(kTime, "GetSecond");
    if (second > 59) {
        ThrowRange("Invalid Second [%d] (0 <= second <= 59)", second);
    }
    m_second = second;
}

unsigned short CDateTime::GetMilliSecond() const {
    CheckField(kTime, "GetMilliSecond");
    return m_milliSecond;
}

void CDateTime::SetMilliSecond(unsigned short milliSecond) {
    CheckField(kTime, "GetMilliSecond");
    if (milliSecond > 999) {
        ThrowRange("Invalid Milli-Second [%d] (0 <= milli <= 999)", milliSecond);
    }
    m_milliSecond = milliSecond;
}

unsigned short CDateTime::GetMicroSecond() const {
    CheckField(kTime, "GetMicroSecond");
    return m_microSecond;
}

void CDateTime::SetMicroSecond(unsigned short microSecond) {
    CheckField(kTime, "GetMicroSecond");
    if (microSecond > 999) {
        ThrowRange("Invalid Micro-Second [%d] (0 <= micro <= 999)", microSecond);
    }
    m_microSecond = microSecond;
}

unsigned short CDateTime::GetNanoSecond() const {
    CheckField(kTime, "GetNanoSecond");
    return m_nanoSecond;
}

void CDateTime::SetNanoSecond(unsigned short nanoSecond) {
    CheckField(kTime, "GetNanoSecond");
    if (nanoSecond > 999) {
        ThrowRange("Invalid Nano-Second [%d] (0 <= nano <= 999)", nanoSecond);
    }
    m_nanoSecond = nanoSecond;
}

double CDateTime::GetRealSecond() const {
    CheckField(kTime, "GetRealSecond");
    return m_second + m_milliSecond * 0.001 + m_microSecond * 0.000001 + m_nanoSecond * 0.000000001;
}

int CDateTime::GetDayOfWeek() const {
    CheckField(kYear | kMonth | kDay, "GetDayOfWeek");
    // 0001-01-01 was a Monday.
    return static_cast<int>(FloorMod(calendar::DaysFromCivil(m_year, m_month, m_day) + 1, 7));
}

int CDateTime::GetDayOfYear() const {
    CheckField(kYear | kMonth | kDay, "GetDayOfYear");
    return static_cast<int>(calendar::DaysFromCivil(m_year, m_month, m_day) -
                            calendar::DaysFromCivil(m_year, 1, 1)) + 1;
}

short CDateTime::GetZoneHour() const {
    if (!m_zoneUsed) {
        throw CQmInvalidStateException("TimeZone is not been used");
    }
    return m_zoneHour;
}

unsigned char CDateTime::GetZoneMinute() const {
    if (!m_zoneUsed) {
        throw CQmInvalidStateException("TimeZone is not been used");
    }
    return m_zoneMinute;
}

int CDateTime::GetTimeZoneOffset() const {
    if (!m_zoneUsed) {
        throw CQmInvalidStateException("TimeZone is not been used");
    }
    const int magnitude = std::abs(static_cast<int>(m_zoneHour)) * 60 + m_zoneMinute;
    return m_zoneNegative ? -magnitude : magnitude;
}

void CDateTime::SetTimeZone(short hours, unsigned char minutes) {
    if (hours < -23 || hours > 23 || minutes > 59) {
        throw CQmInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", hours, minutes));
    }
    m_zoneUsed = true;
    m_zoneNegative = hours < 0;
    m_zoneHour = hours;
    m_zoneMinute = minutes;
}

void CDateTime::SetTimeZoneOffset(int minutes) {
    if (minutes < -kMaxZoneMinutes || minutes > kMaxZoneMinutes) {
        throw CQmInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", minutes / 60, std::abs(minutes % 60)));
    }
    const int magnitude = std::abs(minutes);
    m_zoneUsed = true;
    m_zoneNegative = minutes < 0;
    m_zoneHour = static_cast<short>(m_zoneNegative ? -(magnitude / 60) : magnitude / 60);
    m_zoneMinute = static_cast<unsigned char>(magnitude % 60);
}

void CDateTime::SetUTC() {
    SetTimeZoneOffset(0);
}

void CDateTime::ClearTimeZone() {
    m_zoneUsed = false;
    m_zoneNegative = false;
    m_zoneHour = 0;
    m_zoneMinute = 0;
}

bool CDateTime::IsUTC() const {
    return m_zoneUsed && m_zoneHour == 0 && m_zoneMinute == 0;
}

void CDateTime::TimeLineKey(bool applyZone, std::int64_t& seconds, std::int32_t& nanos) const {
    const int fields = FieldsOf(m_type);
    // Missing parts are placed at 1972-12-31, a leap year, so that --02-29
    // and ---31 have a place.
    std::int64_t year = (fields & kYear) ? m_year : 1972;
    int month = (fields & kMonth) ? m_month : ((fields & kYear) ? 1 : 12);
    int day = (fields & kDay) ? m_day : ((fields & (kYear | kMonth)) ? 1 : 31);
    seconds = calendar::DaysFromCivil(year, month, day) * kSecondsPerDay + m_hour * 3600 + m_minute * 60 + m_second;
    nanos = static_cast<std::int32_t>(m_milliSecond) * 1000000 + static_cast<std::int32_t>(m_microSecond) * 1000 +
            m_nanoSecond;
    if (applyZone && m_zoneUsed) {
        seconds -= static_cast<std::int64_t>(GetTimeZoneOffset()) * 60;
    }
}

CDateTime CDateTime::GetNormalized() const {
    CDateTime result(*this);
    if (!m_zoneUsed || (m_type != dt_dateTime && m_type != dt_time)) {
        return result;
    }
    std::int64_t seconds = 0;
    std::int32_t nanos = 0;
    TimeLineKey(true, seconds, nanos);
    const std::int64_t secondOfDay = FloorMod(seconds, kSecondsPerDay);
    if (m_type == dt_dateTime) {
        std::int64_t year = 0;
        int month = 0;
        int day = 0;
        calendar::CivilFromDays(FloorDiv(seconds, kSecondsPerDay), year, month, day);
        result.m_year = static_cast<short>(year);  // within -10000..10000
        result.m_month = static_cast<unsigned char>(month);
        result.m_day = static_cast<unsigned char>(day);
    }
    result.m_hour = static_cast<unsigned char>(secondOfDay / 3600);
    result.m_minute = static_cast<unsigned char>(secondOfDay / 60 % 60);
    result.m_second = static_cast<unsigned char>(secondOfDay % 60);
    result.SetUTC();
    return result;
}

std::int64_t CDateTime::GetTime() const {
    if (m_type != dt_dateTime && m_type != dt_date) {
        throw CQmInvalidStateException(FormatString(
            "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: %s.", GetTypeAsString(m_type)));
    }
    std::int64_t seconds = 0;
    std::int32_t nanos = 0;
    TimeLineKey(true, seconds, nanos);
    return seconds - calendar::DaysFromCivil(1970, 1, 1) * kSecondsPerDay;
}

SYSTEMTIME CDateTime::GetAsSystemTime() const {
    if (m_type != dt_dateTime) {
        throw CQmInvalidStateException(FormatString(
            "Failed to GetAsSystemTime, Date Status must be dateTime. Invalid Date Type: %s.", GetTypeAsString(m_type)));
    }
    const CDateTime utc = GetNormalized();
    if (utc.m_year < 1) {
        throw CQmInvalidValueException(FormatString("Failed to convert [%s] to SYSTEMTIME", ToString().c_str()));
    }
    SYSTEMTIME st{};
    st.wYear = static_cast<unsigned short>(utc.m_year);
    st.wMonth = utc.m_month;
    st.wDayOfWeek = static_cast<unsigned short>(utc.GetDayOfWeek());
    st.wDay = utc.m_day;
    st.wHour = utc.m_hour;
    st.wMinute = utc.m_minute;
    st.wSecond = utc.m_second;
    st.wMilliseconds = utc.m_milliSecond;
    return st;
}

FILETIME CDateTime::GetAsFileTime() const {
    if (m_type != dt_dateTime && m_type != dt_date) {
        throw CQmInvalidStateException(FormatString(
            "Failed to GetAsFileTime, Date Status must be dateTime or date. Invalid Date Type: %s.",
            GetTypeAsString(m_type)));
    }
    std::int64_t seconds = 0;
    std::int32_t nanos = 0;
    TimeLineKey(true, seconds, nanos);
    seconds -= calendar::DaysFromCivil(1601, 1, 1) * kSecondsPerDay;
    if (seconds < 0) {
        throw CQmInvalidValueException(FormatString("Failed to convert [%s] to FILETIME", ToString().c_str()));
    }
    const std::uint64_t ticks = static_cast<std::uint64_t>(seconds) * 10000000 + static_cast<std::uint64_t>(nanos / 100);
    FILETIME ft{};
    ft.dwLowDateTime = static_cast<std::uint32_t>(ticks & 0xFFFFFFFFu);
    ft.dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
    return ft;
}

void CDateTime::SetDateTime(const CDateTime& source, DTType type) {
    if (type == dt_none) {
        Clear();
        return;
    }
    const int needed = FieldsOf(type);
    if (needed == 0 || (needed & ~FieldsOf(source.m_type)) != 0) {
        throw CQmInvalidParamException(FormatString(
            "Attempting to set a CDateTime of type %s using an XmlDateTime of type %s. The source CDateTime does "
            "not contian enough data to allow the conversion.",
            GetTypeAsString(type), GetTypeAsString(source.m_type)));
    }
    CDateTime result(source);  // source may be *this
    result.m_type = type;
    if (!(needed & kYear)) result.m_year = 0;
    if (!(needed & kMonth)) result.m_month = 0;
    if (!(needed & kDay)) result.m_day = 0;
    if (!(needed & kTime)) {
        result.m_hour = result.m_minute = result.m_second = 0;
        result.m_milliSecond = result.m_microSecond = result.m_nanoSecond = 0;
    }
    *this = result;
}

void CDateTime::SetDate(short year, unsigned char month, unsigned char day) {
    CDateTime result(*this);
    if (result.m_type != dt_dateTime) {
        const bool zone = result.m_zoneUsed;
        const int offset = zone ? result.GetTimeZoneOffset() : 0;
        result = CDateTime(dt_date);
        if (zone) {
            result.SetTimeZoneOffset(offset);
        }
    }
    result.m_year = year;
    result.m_month = month;
    result.m_day = day;
    result.Validate();
    *this = result;
}

CDateTime::DTCompareResult CDateTime::CompareTo(const CDateTime& other) const {
    if (m_type != other.m_type) {
        return cmp_indeterminate;
    }
    std::int64_t a = 0;
    std::int64_t b = 0;
    std::int32_t aNanos = 0;
    std::int32_t bNanos = 0;
    TimeLineKey(true, a, aNanos);
    other.TimeLineKey(true, b, bNanos);
    auto order = [](std::int64_t x, std::int32_t xn, std::int64_t y, std::int32_t yn) {
        if (x != y) return x < y ? cmp_less : cmp_greater;
        if (xn != yn) return xn < yn ? cmp_less : cmp_greater;
        return cmp_equal;
    };
    if (m_zoneUsed == other.m_zoneUsed) {
        return order(a, aNanos, b, bNanos);
    }
    // One side without zone may lie anywhere from -14:00 to +14:00: only a
    // result that holds at both ends counts.
    const std::int64_t shift = kFourteenHours;
    DTCompareResult early = cmp_indeterminate;
    DTCompareResult late = cmp_indeterminate;
    if (m_zoneUsed) {
        early = order(a, aNanos, b - shift, bNanos);
        late = order(a, aNanos, b + shift, bNanos);
    } else {
        early = order(a - shift, aNanos, b, bNanos);
        late = order(a + shift, aNanos, b, bNanos);
    }
    return (early == late && early != cmp_equal) ? early : cmp_indeterminate;
}

std::string CDateTime::ToString() const {
    std::string out;
    out.reserve(40);
    AppendText(out);
    return out;
}

void CDateTime::AppendText(std::string& out) const {
    if (m_type == dt_none) {
        out += "Date Not Set";
        return;
    }
    if (!IsKnownType(m_type)) {
        out += FormatString("Unknown Format: %d", static_cast<int>(m_type));
        return;
    }
    using calendar::AppendPadded;
    const int fields = FieldsOf(m_type);
    if (fields & kYear) {
        if (m_year < 0) {
            out += '-';
        }
        AppendPadded(out, static_cast<unsigned>(std::abs(static_cast<int>(m_year))), 4);
        if (fields & kMonth) {
            out += '-';
            AppendPadded(out, m_month, 2);
            if (fields & kDay) {
                out += '-';
                AppendPadded(out, m_day, 2);
            }
        }
    } else if (fields & kMonth) {
        out += "--";
        AppendPadded(out, m_month, 2);
        if (fields & kDay) {
            out += '-';
            AppendPadded(out, m_day, 2);
        }
    } else if (fields & kDay) {
        out += "---";
        AppendPadded(out, m_day, 2);
    }
    if (fields & kTime) {
        if (m_type == dt_dateTime) {
            out += 'T';
        }
        AppendPadded(out, m_hour, 2);
        out += ':';
        AppendPadded(out, m_minute, 2);
        out += ':';
        AppendPadded(out, m_second, 2);
        calendar::AppendFraction(out, m_milliSecond, m_microSecond, m_nanoSecond);
    }
    if (m_zoneUsed) {
        if (IsUTC()) {
            out += 'Z';
        } else {
            out += m_zoneNegative ? '-' : '+';
            AppendPadded(out, static_cast<unsigned>(std::abs(static_cast<int>(m_zoneHour))), 2);
            out += ':';
            AppendPadded(out, m_zoneMinute, 2);
        }
    }
}

void CDateTime::AddDuration(const CDateTimeSpan& duration) {
    calendar::SInstant start;
    switch (m_type) {
    case dt_dateTime:
    case dt_date:
    case dt_gYearMonth:
    case dt_gYear:
        start.year = m_year;
        start.month = (m_type == dt_gYear) ? 1 : m_month;
        start.day = (m_type == dt_dateTime || m_type == dt_date) ? m_day : 1;
        break;
    case dt_time:
        start.year = 1972;
        start.month = 12;
        start.day = 31;
        break;
    default:
        throw CQmInvalidStateException(
            FormatString("Failed to add a duration. Invalid Date Type: %s.", GetTypeAsString(m_type)));
    }
    start.hour = m_hour;
    start.minute = m_minute;
    start.second = m_second;
    start.nanos = static_cast<std::int32_t>(m_milliSecond) * 1000000 +
                  static_cast<std::int32_t>(m_microSecond) * 1000 + m_nanoSecond;

    const calendar::SInstant end = calendar::AddDuration(start, duration);
    if (m_type != dt_time && (end.year < kMinYear || end.year > kMaxYear)) {
        throw CQmOverFlowException(FormatString("Adding [%s] to [%s] leaves the year range",
                                                duration.ToString().c_str(), ToString().c_str()));
    }
    const int fields = FieldsOf(m_type);
    if (fields & kYear) m_year = static_cast<short>(end.year);
    if (fields & kMonth) m_month = static_cast<unsigned char>(end.month);
    if (fields & kDay) m_day = static_cast<unsigned char>(end.day);
    if (fields & kTime) {
        m_hour = static_cast<unsigned char>(end.hour);
        m_minute = static_cast<unsigned char>(end.minute);
        m_second = static_cast<unsigned char>(end.second);
        m_milliSecond = static_cast<unsigned short>(end.nanos / 1000000);
        m_microSecond = static_cast<unsigned short>(end.nanos / 1000 % 1000);
        m_nanoSecond = static_cast<unsigned short>(end.nanos % 1000);
    }
}

CDateTime& CDateTime::operator+=(const CDateTimeSpan& duration) {
    AddDuration(duration);
    return *this;
}

CDateTime& CDateTime::operator-=(const CDateTimeSpan& duration) {
    CDateTimeSpan negated(duration);
    negated.Negate();
    AddDuration(negated);
    return *this;
}

CDateTime operator+(const CDateTime& dateTime, const CDateTimeSpan& duration) {
    CDateTime result(dateTime);
    result += duration;
    return result;
}

CDateTime operator-(const CDateTime& dateTime, const CDateTimeSpan& duration) {
    CDateTime result(dateTime);
    result -= duration;
    return result;
}

CDateTime CDateTime::GetTickCount() {
    const platform::SWallClock now = platform::CurrentTime();
    int offset = now.utcOffset / 60;
    if (offset > kMaxZoneMinutes) offset = kMaxZoneMinutes;
    if (offset < -kMaxZoneMinutes) offset = -kMaxZoneMinutes;
    CDateTime result;
    result.SetFromUnixTime(now.seconds + static_cast<std::int64_t>(offset) * 60, now.nanoseconds);
    result.SetTimeZoneOffset(offset);
    return result;
}

}  // namespace QmXmlLib10
