// One value of the XSD date and time family, with an optional time zone and a
// fraction of a second to the nanosecond.
#pragma once

#include <cstdint>
#include <string>

namespace QmXmlLib10 {

class CDateTimeSpan;

// The Windows calendar structure: fields as written, no time zone.
struct SYSTEMTIME {
    unsigned short wYear;
    unsigned short wMonth;      // 1..12
    unsigned short wDayOfWeek;  // 0 Sunday .. 6 Saturday; ignored on input
    unsigned short wDay;
    unsigned short wHour;
    unsigned short wMinute;
    unsigned short wSecond;
    unsigned short wMilliseconds;
};

// The Windows file time: 100-nanosecond ticks since 1601-01-01T00:00:00 UTC,
// split into two 32-bit halves.
struct FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

// A dateTime, date, time, gYear, gYearMonth, gMonth, gMonthDay or gDay.
//
// Years run from -9999 to 9999 without year 0; the leap-year rule (divisible
// by 4, and not by 100 unless by 400) applies to the year as written, negative
// years included, and day counts across year 0 go straight from -0001-12-31
// to 0001-01-01.
//
// Failures: malformed text and invalid fields throw CQmInvalidValueException;
// reading or writing a field that the value's type does not have, or asking
// for a zone that is not set, throws CQmInvalidStateException.
class CDateTime {
public:
    enum DTType : int {
        dt_none = 0,  // no value set
        dt_dateTime = 1,
        dt_date = 2,
        dt_gYearMonth = 3,
        dt_gYear = 4,
        dt_time = 5,
        dt_gDay = 6,
        dt_gMonth = 7,
        dt_gMonthDay = 8,
    };

    enum DTCompareResult : int {
        cmp_equal = 0,
        cmp_less = 1,
        cmp_greater = 2,
        cmp_indeterminate = 3,
    };

    CDateTime();
    // Only the type is set, every field is 0: fill it with the setters (or
    // SetDate) and Validate before use.
    explicit CDateTime(DTType type);
    // Parses as ParseXSDDateTime.
    CDateTime(const char* text);  // NOLINT: implicit on purpose, as a literal value
    // A dateTime in UTC ("Z") from seconds since 1970-01-01T00:00:00Z (a
    // literal 0 is also a null text: write std::int64_t{0}).
    // Outside the year range throws "The time_t value [%lld] is outside the date range".
    explicit CDateTime(std::int64_t time);
    // A dateTime without zone, fields as given (wDayOfWeek ignored); validated.
    explicit CDateTime(const SYSTEMTIME& systemTime);
    // A dateTime in UTC, to the 100 ns tick. A value with the top bit set, or
    // one beyond 9999-12-31, throws "Failed to convert FILETIME to SYSTEMTIME".
    explicit CDateTime(const FILETIME& fileTime);
    // A date; validated.
    CDateTime(short year, unsigned char month, unsigned char day);
    CDateTime(const CDateTime& other) = default;
    virtual ~CDateTime();

    CDateTime& operator=(const CDateTime& other) = default;
    CDateTime& operator=(DTType type);
    CDateTime& operator=(const char* text);
    CDateTime& operator=(std::int64_t time);
    CDateTime& operator=(const SYSTEMTIME& systemTime);
    CDateTime& operator=(const FILETIME& fileTime);

    // --- Parsing: each clears the value, reads the text and validates -------
    // "CCYY-MM-DDThh:mm:ss[.f...][zone]".
    void ParseXSDDateTime(const char* text);
    // Any of the date shapes; the type follows the shape:
    // CCYY-MM-DD date, CCYY-MM gYearMonth, CCYY gYear, --MM-DD gMonthDay,
    // --MM gMonth, ---DD gDay; years exactly four digits after an optional
    // "-". Zone: "Z" or "+hh:mm"/"-hh:mm" (hh < 24, mm < 60).
    void ParseXSDDate(const char* text);
    // "hh:mm:ss[.f...][zone]" with hh < 24, mm and ss < 60, at most nine
    // fraction digits.
    void ParseXSDTime(const char* text);
    // Parses text as the given type: dateTime and time as above; for the date
    // shapes a text of another shape throws that type's message,
    // "Invalid XSD Date [%s] expected " followed by
    //   date        "CCYY-MM-DD[Z|[+|-]hh:mm]"
    //   gYearMonth  "CCYY-MM[Z|[+|-]hh:mm]"
    //   gYear       "CCYY[Z|[+|-]hh:mm]"
    //   gMonthDay   "--MM-DD[Z|[+|-]hh:mm]"
    //   gMonth      "--MM[Z|[+|-]hh:mm]"
    //   gDay        "---DD[Z|[+|-]hh:mm]"
    // before any field is validated. dt_none (or a type outside the
    // enumeration) throws CQmInvalidParamException "Invalid Date Type: %d".
    void ParseXSD(const char* text, DTType type);

    // Checks every field against the type; the first failure throws
    // CQmInvalidValueException (year zero, month, year, day, time fields).
    void Validate() const;

    // --- Access ---------------------------------------------------------------
    DTType GetType() const { return m_type; }
    // "yearZero", "dateTime", ... ; "" for values outside the enumeration.
    static const char* GetTypeAsString(DTType type);

    // Getters and setters throw "Failed to Get<Field>. Invalid Date Type: %s."
    // when the type lacks the field (setters use the getter's name). Setters
    // check the field's own range with Validate's message (a day only against
    // 1..31, "Invalid Day [%d] (1 <= day <= 31)"); whether the day fits the
    // month is Validate's business, as fields are set one at a time.
    short GetYear() const;
    void SetYear(short year);
    unsigned char GetMonth() const;
    void SetMonth(unsigned char month);
    unsigned char GetDay() const;
    void SetDay(unsigned char day);
    unsigned char GetHour() const;
    void SetHour(unsigned char hour);
    unsigned char GetMinute() const;
    void SetMinute(unsigned char minute);
    unsigned char GetSecond() const;
    void SetSecond(unsigned char second);
    unsigned short GetMilliSecond() const;
    void SetMilliSecond(unsigned short milliSecond);
    unsigned short GetMicroSecond() const;
    void SetMicroSecond(unsigned short microSecond);
    unsigned short GetNanoSecond() const;
    void SetNanoSecond(unsigned short nanoSecond);
    // The second with its fraction.
    double GetRealSecond() const;
    // dateTime and date only: 0 Sunday .. 6 Saturday, and 1..366.
    int GetDayOfWeek() const;
    int GetDayOfYear() const;

    // The zone as written: "-05:30" gives hour -5 and minute 30. A zone under
    // one hour keeps its sign in GetTimeZoneOffset only ("-00:30" is -30).
    // Without a zone each throws "TimeZone is not been used".
    short GetZoneHour() const;
    unsigned char GetZoneMinute() const;
    int GetTimeZoneOffset() const;  // minutes east of UTC
    // -23 <= hours <= 23, minutes <= 59, the sign taken from hours; otherwise
    // "Invalid TimeZone [%d:%d]".
    void SetTimeZone(short hours, unsigned char minutes);
    // Minutes east of UTC, |offset| <= 23:59; "-00:30" is -30.
    void SetTimeZoneOffset(int minutes);
    // Zone "Z".
    void SetUTC();
    void ClearTimeZone();
    bool HasTimeZone() const { return m_zoneUsed; }
    // A zone with a zero offset.
    bool IsUTC() const;

    // A copy moved to UTC: a dateTime or time with a zone gets zone "Z" and the
    // fields shifted by the offset (a time wraps around midnight; a dateTime
    // near the ends of the range may leave it). Other types, and values
    // without a zone, are returned as they are: their comparison still honours
    // the zone.
    CDateTime GetNormalized() const;

    // Seconds since 1970-01-01T00:00:00Z of a dateTime or date (a date at its
    // midnight); a value without zone is read as UTC, the fraction dropped.
    // Other types throw "Failed to GetTime, Date Status must be dateTime or
    // date. Invalid Date Type: %s.".
    std::int64_t GetTime() const;
    // A dateTime only ("Failed to GetAsSystemTime, Date Status must be
    // dateTime. Invalid Date Type: %s."); a value with a zone is moved to UTC
    // first. Years before 1 throw "Failed to convert [%s] to SYSTEMTIME".
    SYSTEMTIME GetAsSystemTime() const;
    // A dateTime or date ("Failed to GetAsFileTime, Date Status must be
    // dateTime or date. Invalid Date Type: %s."), read as GetTime does,
    // truncated to the 100 ns tick; before 1601 throws
    // "Failed to convert [%s] to FILETIME".
    FILETIME GetAsFileTime() const;

    // Makes this a value of the given type from the fields of source that the
    // type needs (the zone comes along). When source lacks one of them throws
    // CQmInvalidParamException "Attempting to set a CDateTime of type %s using
    // an XmlDateTime of type %s. The source CDateTime does not contian enough
    // data to allow the conversion.". dt_none clears the value.
    void SetDateTime(const CDateTime& source, DTType type);
    // Sets year, month and day (validated; on failure nothing changes). A
    // dateTime keeps its time and zone; any other value becomes a date
    // without time, keeping its zone.
    void SetDate(short year, unsigned char month, unsigned char day);

    // Order of XML Schema values. Both sides with a zone, or both without, are
    // compared on the time line after normalising to UTC. When only one side
    // has a zone, the other is tried at +14:00 and at -14:00: the result is
    // less or greater when both agree, else indeterminate. Values of different
    // types are indeterminate. Types without year, month or day are placed at
    // 1972-12-31 (gDay in December, gYear and gYearMonth on the first day).
    DTCompareResult CompareTo(const CDateTime& other) const;

    // The lexical form of the type; the fraction prints its three-digit groups
    // up to the last non-zero one, trailing zeros removed; a zero offset
    // prints "Z". dt_none gives "Date Not Set", an unknown type
    // "Unknown Format: %d".
    std::string ToString() const;
    // Appends what ToString() gives.
    void AppendText(std::string& out) const;

    // Adds a duration by the XML Schema 1.0 algorithm (datatypes, appendix E):
    // months carry into years, the day is pinned to the end of a shorter
    // month, then days, hours, minutes and seconds are added with carries.
    // The zone is kept. A date or gYearMonth/gYear is taken at its first
    // instant and the result cut back to the type; a time is taken on
    // 1972-12-31 and the day dropped. gMonth, gMonthDay and gDay throw
    // CQmInvalidStateException "Failed to add a duration. Invalid Date Type: %s.";
    // a year outside -9999..9999 throws CQmOverFlowException
    // "Adding [%s] to [%s] leaves the year range".
    void AddDuration(const CDateTimeSpan& duration);
    CDateTime& operator+=(const CDateTimeSpan& duration);
    CDateTime& operator-=(const CDateTimeSpan& duration);

    // The current local time as a dateTime, with the local UTC offset as zone.
    static CDateTime GetTickCount();

private:
    void Clear();
    // Field parsers; the text in messages is whole, the one that was parsed.
    void SetXSDDate(const char* begin, const char* end, const char* whole);
    void SetXSDTime(const char* begin, const char* end, const char* whole);
    void SetZone(const char* begin, const char* end, const char* whole);
    void CheckField(int field, const char* getter) const;
    // A dateTime in UTC; false (value cleared) outside the year range.
    bool SetFromUnixTime(std::int64_t seconds, std::int32_t nanos);
    // Seconds and nanoseconds on the time line (zone applied when asked), with
    // the missing fields of the type filled in as CompareTo describes.
    void TimeLineKey(bool applyZone, std::int64_t& seconds, std::int32_t& nanos) const;

    DTType m_type = dt_none;
    short m_year = 0;
    unsigned char m_month = 0;
    unsigned char m_day = 0;
    unsigned char m_hour = 0;
    unsigned char m_minute = 0;
    unsigned char m_second = 0;
    unsigned short m_milliSecond = 0;
    unsigned short m_microSecond = 0;
    unsigned short m_nanoSecond = 0;
    bool m_zoneUsed = false;
    bool m_zoneNegative = false;  // set with the zone; keeps the sign of "-00:mm"
    short m_zoneHour = 0;
    unsigned char m_zoneMinute = 0;
};

CDateTime operator+(const CDateTime& dateTime, const CDateTimeSpan& duration);
CDateTime operator-(const CDateTime& dateTime, const CDateTimeSpan& duration);

}  // namespace QmXmlLib10
