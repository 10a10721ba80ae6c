#include "types/xsd_lexical.h"

#include <algorithm>
#include <cstring>

#include "qmxml/core/exception.h"
#include "qmxml/types/conversions.h"
#include "qmxml/types/date_time.h"
#include "qmxml/types/date_time_span.h"
#include "qmxml/types/decimal.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Xsd {

namespace {

using C = CConversions;
constexpr auto kAsIs = CWhitespaceUtils::WhitespaceRule_None;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool Matches(const std::string& value, const std::string& pattern) {
    try {
        return CPrimitiveRestrictions::MatchesPattern(value, pattern);
    } catch (const CQmException&) {
        // Only a value that is not UTF-8 gets here: the patterns below compile.
        return false;
    }
}

// The shapes of the date and time primitives, in XML Schema's own
// regular-expression language. The runtime's parser checks the fields (day
// within its month, year 0) but takes zones up to 23:59 and four-digit years
// only, so the shape is checked here and the fields there.
const std::string& DatePattern(Primitive p) {
    static const std::string zone = "(Z|[+\\-]((0[0-9]|1[0-3]):[0-5][0-9]|14:00))?";
    static const std::string year = "-?([1-9][0-9]{3,}|0[0-9]{3})";
    static const std::string month = "(0[1-9]|1[0-2])";
    static const std::string day = "(0[1-9]|[12][0-9]|3[01])";
    static const std::string time = "(([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9](\\.[0-9]+)?|24:00:00(\\.0+)?)";
    static const std::string patterns[] = {
        year + "-" + month + "-" + day + "T" + time + zone,  // dateTime
        time + zone,                                       // time
        year + "-" + month + "-" + day + zone,             // date
        year + "-" + month + zone,                         // gYearMonth
        year + zone,                                       // gYear
        "--" + month + "-" + day + zone,                   // gMonthDay
        "---" + day + zone,                                // gDay
        "--" + month + zone,                               // gMonth
    };
    return patterns[static_cast<int>(p) - static_cast<int>(Primitive::DateTime)];
}

bool IsDateKind(Primitive p) { return p >= Primitive::DateTime && p <= Primitive::GMonth; }

CDateTime::DTType DateTypeOf(Primitive p) {
    switch (p) {
        case Primitive::DateTime: return CDateTime::dt_dateTime;
        case Primitive::Time: return CDateTime::dt_time;
        case Primitive::Date: return CDateTime::dt_date;
        case Primitive::GYearMonth: return CDateTime::dt_gYearMonth;
        case Primitive::GYear: return CDateTime::dt_gYear;
        case Primitive::GMonthDay: return CDateTime::dt_gMonthDay;
        case Primitive::GDay: return CDateTime::dt_gDay;
        default: return CDateTime::dt_gMonth;
    }
}

// Checks the fields of a literal of the right shape with the runtime's
// parser. A year of more than four digits is checked as the four-digit year
// with the same place in the 400-year leap cycle; representable is false then.
bool CheckDateFields(Primitive p, const std::string& text, CDateTime& value, bool& representable) {
    std::string s = text;
    representable = true;
    const bool hasYear = p == Primitive::DateTime || p == Primitive::Date || p == Primitive::GYearMonth ||
                         p == Primitive::GYear;
    if (hasYear) {
        const std::size_t start = s[0] == '-' ? 1 : 0;
        std::size_t end = start;
        while (end < s.size() && IsDigit(s[end])) ++end;
        if (end - start > 4) {
            representable = false;
            int cycle = 0;
            for (std::size_t i = start; i < end; ++i) cycle = (cycle * 10 + (s[i] - '0')) % 400;
            s.replace(start, end - start, std::to_string(2000 + cycle));
        }
    }
    // XML Schema 1.0 allows 24:00:00, the first instant of the next day; the
    // runtime does not, so it reads midnight and the day is added below.
    bool endOfDay = false;
    if (p == Primitive::DateTime || p == Primitive::Time) {
        const std::size_t at = p == Primitive::Time ? 0 : s.find('T') + 1;
        if (s.compare(at, 2, "24") == 0) {
            endOfDay = true;
            s.replace(at, 2, "00");
        }
    }
    try {
        value.ParseXSD(s.c_str(), DateTypeOf(p));
    } catch (const CQmException&) {
        return false;  // a field out of range, such as a day past its month's end
    }
    if (endOfDay && p == Primitive::DateTime) {
        try {
            value.AddDuration(CDateTimeSpan(0, 0, 1, 0, 0, 0));
        } catch (const CQmException&) {
            representable = false;  // the day after 9999-12-31
        }
    }
    return true;
}

bool IsFloatLiteral(const std::string& s) {
    if (s == "INF" || s == "-INF" || s == "NaN") return true;
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < s.size() && IsDigit(s[i])) ++i, ++digits;
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && IsDigit(s[i])) ++i, ++digits;
    }
    if (digits == 0) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
        std::size_t exponent = 0;
        while (i < s.size() && IsDigit(s[i])) ++i, ++exponent;
        if (exponent == 0) return false;
    }
    return i == s.size();
}

// XML Schema 1.0's base64 grammar: groups of four, a space allowed after any
// character but the last, and padding only where the last group leaves bits
// unused ("AQ==" but not "AR==").
bool IsBase64(const std::string& s) {
    std::string chars;
    chars.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == ' ') {
            if (i == 0 || i + 1 == s.size() || s[i - 1] == ' ') return false;
            continue;
        }
        chars += s[i];
    }
    if (chars.size() % 4 != 0) return false;
    auto isB64 = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || IsDigit(c) || c == '+' || c == '/';
    };
    std::size_t padding = 0;
    while (padding < chars.size() && padding < 2 && chars[chars.size() - 1 - padding] == '=') ++padding;
    for (std::size_t i = 0; i + padding < chars.size(); ++i)
        if (!isB64(chars[i])) return false;
    if (padding == 0) return true;
    const char last = chars[chars.size() - 1 - padding];
    return std::strchr(padding == 2 ? "AQgw" : "AEIMQUYcgkosw048", last) != nullptr;
}

bool IsQNameLiteral(const std::string& s) {
    const std::size_t colon = s.find(':');
    if (colon == std::string::npos) return IsNCNameLiteral(s);
    return IsNCNameLiteral(s.substr(0, colon)) && IsNCNameLiteral(s.substr(colon + 1));
}

}  // namespace

std::string NormalizeWhiteSpace(const std::string& text, WhiteSpace whiteSpace) {
    // The runtime's rules; texts from a parsed document hold no CR LF pairs,
    // the one place where its Replace departs from XML Schema's.
    switch (whiteSpace) {
        case WhiteSpace::Preserve:
            return text;
        case WhiteSpace::Replace:
            return CWhitespaceUtils::Replace(text);
        default:
            return CWhitespaceUtils::Collapse(text);
    }
}

bool IsPrimitiveLiteral(Primitive primitive, const std::string& s) {
    switch (primitive) {
        case Primitive::AnySimple:
        case Primitive::String:
        case Primitive::AnyURI:
            return true;
        case Primitive::Boolean:
            return s == "true" || s == "false" || s == "1" || s == "0";
        case Primitive::Decimal:
            return IsDecimalLiteral(s, true);
        case Primitive::Float:
        case Primitive::Double:
            return IsFloatLiteral(s);
        case Primitive::Duration:
            // The runtime's parser is as strict as XML Schema here, up to the
            // size of each count and nine fraction digits.
            try {
                C::durationFromString(s, kAsIs);
                return true;
            } catch (const CQmException&) {
                return false;
            }
        case Primitive::HexBinary:
            try {
                C::hexBinaryFromString(s, kAsIs);
                return true;
            } catch (const CQmException&) {
                return false;
            }
        case Primitive::Base64Binary:
            return IsBase64(s);
        case Primitive::QName:
        case Primitive::Notation:
            return IsQNameLiteral(s);
        default: {
            if (!Matches(s, DatePattern(primitive))) return false;
            CDateTime value;
            bool representable = true;
            return CheckDateFields(primitive, s, value, representable);
        }
    }
}

bool IsPrimitiveShape(Primitive primitive, const std::string& text) {
    if (IsDateKind(primitive)) {
        // The runtime's date parsers take every shape XML Schema does and no
        // other (within four-digit years), but zones up to 23:59: only the
        // zone is left, "+hh:mm" or "-hh:mm" at the end.
        const std::size_t n = text.size();
        if (n < 6 || (text[n - 6] != '+' && text[n - 6] != '-') || text[n - 3] != ':') return true;
        const int hours = (text[n - 5] - '0') * 10 + (text[n - 4] - '0');
        return hours < 14 || (hours == 14 && text[n - 2] == '0' && text[n - 1] == '0');
    }
    if (primitive == Primitive::Duration || primitive == Primitive::HexBinary) return true;
    return IsPrimitiveLiteral(primitive, text);
}

bool ParseDateLiteral(Primitive primitive, const std::string& text, CDateTime& value) {
    if (!IsDateKind(primitive) || !Matches(text, DatePattern(primitive))) return false;
    bool representable = true;
    return CheckDateFields(primitive, text, value, representable) && representable;
}

bool IsNCNameLiteral(const std::string& s) { return Matches(s, "[\\i-[:]][\\c-[:]]*"); }

bool IsDecimalLiteral(const std::string& s, bool allowPoint) {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < s.size() && IsDigit(s[i])) ++i, ++digits;
    if (allowPoint && i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && IsDigit(s[i])) ++i, ++digits;
    }
    return digits > 0 && i == s.size();
}

std::string CanonicalDecimal(const std::string& s) {
    std::size_t begin = !s.empty() && (s[0] == '-' || s[0] == '+') ? 1 : 0;
    const bool negative = begin == 1 && s[0] == '-';
    const std::size_t point = std::min(s.find('.', begin), s.size());
    std::size_t end = s.size();
    if (point < end) {
        while (end > point + 1 && s[end - 1] == '0') --end;
        if (end == point + 1) end = point;
    }
    while (begin < point && s[begin] == '0') ++begin;
    std::string out;
    if (begin == end) return "0";
    if (negative) out += '-';
    if (begin == point) out += '0';
    out.append(s, begin, end - begin);
    return out;
}

int CompareDecimals(const std::string& a, const std::string& b) {
    return CompareCanonicalDecimals(CanonicalDecimal(a), CanonicalDecimal(b));
}

int CompareCanonicalDecimals(const std::string& x, const std::string& y) {
    // By sign, then by the length of the integer part, then digit by digit
    // (a missing fraction digit counts as zero, and the points line up).
    const bool xn = x[0] == '-';
    const bool yn = y[0] == '-';
    if (xn != yn) return xn ? -1 : 1;
    const std::size_t xs = xn ? 1 : 0;
    const std::size_t xp = std::min(x.find('.'), x.size()) - xs;
    const std::size_t yp = std::min(y.find('.'), y.size()) - xs;
    int c = 0;
    if (xp != yp) {
        c = xp < yp ? -1 : 1;
    } else {
        const int r = x.compare(xs, std::string::npos, y, xs, std::string::npos);
        c = r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    return xn ? -c : c;
}

}  // namespace Xsd
}  // namespace QmXmlLib10
