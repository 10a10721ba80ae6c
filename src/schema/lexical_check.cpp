#include "schema/lexical_check.h"

#include <algorithm>
#include <cstring>

#include "qmxml/core/exception.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Lexical forms of the date, time and duration primitives, in XML Schema's own
// regular-expression language (matched by the runtime's pattern engine).
const char* const kTimeZone = "(Z|[+\\-]((0[0-9]|1[0-3]):[0-5][0-9]|14:00))?";

std::string DatePattern(const char* name) {
    const std::string year = "-?([1-9][0-9]{3,}|0[0-9]{3})";
    const std::string month = "(0[1-9]|1[0-2])";
    const std::string day = "(0[1-9]|[12][0-9]|3[01])";
    const std::string time = "(([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9](\\.[0-9]+)?|24:00:00(\\.0+)?)";
    const std::string n = name;
    std::string body;
    if (n == "dateTime") body = year + "-" + month + "-" + day + "T" + time;
    else if (n == "date") body = year + "-" + month + "-" + day;
    else if (n == "time") body = time;
    else if (n == "gYearMonth") body = year + "-" + month;
    else if (n == "gYear") body = year;
    else if (n == "gMonthDay") body = "--" + month + "-" + day;
    else if (n == "gDay") body = "---" + day;
    else if (n == "gMonth") body = "--" + month;
    else return std::string();
    return body + kTimeZone;
}

bool Matches(const std::string& value, const std::string& pattern) {
    try {
        return CPrimitiveRestrictions::MatchesPattern(value, pattern);
    } catch (const CQmException&) {
        // A pattern the engine cannot run is reported where it is declared.
        return true;
    }
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

bool IsDurationLiteral(const std::string& s) {
    if (!Matches(s, "-?P([0-9]+Y)?([0-9]+M)?([0-9]+D)?(T([0-9]+H)?([0-9]+M)?([0-9]+(\\.[0-9]+)?S)?)?")) return false;
    // At least one component, and no T without a time component.
    const std::size_t p = s.find('P');
    if (p == std::string::npos || p + 1 >= s.size()) return false;
    return s.back() != 'T';
}

bool IsHexBinary(const std::string& s) {
    if (s.size() % 2 != 0) return false;
    return std::all_of(s.begin(), s.end(), [](char c) { return std::strchr("0123456789abcdefABCDEF", c) != nullptr && c != 0; });
}

bool IsBase64(const std::string& s) {
    std::size_t count = 0;
    std::size_t padding = 0;
    for (const char c : s) {
        if (c == ' ') continue;
        const bool alpha = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || IsDigit(c) || c == '+' || c == '/';
        if (c == '=') {
            ++padding;
        } else if (!alpha || padding > 0) {
            return false;
        }
        ++count;
    }
    return count % 4 == 0 && padding <= 2;
}

bool IsQNameLiteral(const std::string& s) {
    const std::size_t colon = s.find(':');
    if (colon == std::string::npos) return IsNCNameLiteral(s);
    return IsNCNameLiteral(s.substr(0, colon)) && IsNCNameLiteral(s.substr(colon + 1));
}

std::string StripDecimal(const std::string& s, bool& negative) {
    std::size_t i = 0;
    negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
    std::string digits = s.substr(i);
    if (digits.find('.') != std::string::npos) {
        while (!digits.empty() && digits.back() == '0') digits.pop_back();
        if (!digits.empty() && digits.back() == '.') digits.pop_back();
    }
    std::size_t lead = 0;
    while (lead + 1 < digits.size() && digits[lead] == '0' && digits[lead + 1] != '.') ++lead;
    digits.erase(0, lead);
    if (digits.empty() || digits == "0" || digits == ".") {
        negative = false;
        return "0";
    }
    return digits;
}

int CompareMagnitudes(const std::string& a, const std::string& b) {
    const std::size_t ap = std::min(a.find('.'), a.size());
    const std::size_t bp = std::min(b.find('.'), b.size());
    if (ap != bp) return ap < bp ? -1 : 1;
    const std::size_t n = std::max(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const char ca = i < a.size() ? a[i] : '0';
        const char cb = i < b.size() ? b[i] : '0';
        const char da = ca == '.' ? '0' : ca;
        const char db = cb == '.' ? '0' : cb;
        if (da != db) return da < db ? -1 : 1;
    }
    return 0;
}

bool IsPrimitiveLiteral(const std::string& primitive, const std::string& s) {
    if (primitive == "string" || primitive == "anyURI") return true;
    if (primitive == "boolean") return s == "true" || s == "false" || s == "1" || s == "0";
    if (primitive == "decimal") return IsDecimalLiteral(s, true);
    if (primitive == "float" || primitive == "double") return IsFloatLiteral(s);
    if (primitive == "duration") return IsDurationLiteral(s);
    if (primitive == "hexBinary") return IsHexBinary(s);
    if (primitive == "base64Binary") return IsBase64(s);
    if (primitive == "QName" || primitive == "NOTATION") return IsQNameLiteral(s);
    const std::string pattern = DatePattern(primitive.c_str());
    if (!pattern.empty()) return Matches(s, pattern);
    return true;
}

}  // namespace

bool IsNCNameLiteral(const std::string& s) {
    // ASCII by the XML name rules; characters beyond ASCII are let through
    // (the XML parser already checked the names it read).
    if (s.empty()) return false;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        if (c >= 0x80) continue;
        const bool start = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool other = IsDigit(static_cast<char>(c)) || c == '-' || c == '.';
        if (!(start || (i > 0 && other))) return false;
    }
    return true;
}

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

int CompareDecimals(const std::string& a, const std::string& b) {
    bool an = false;
    bool bn = false;
    const std::string am = StripDecimal(a, an);
    const std::string bm = StripDecimal(b, bn);
    if (an != bn) return an ? -1 : 1;
    const int c = CompareMagnitudes(am, bm);
    return an ? -c : c;
}

bool IsValidLiteral(const CSimpleType* type, const std::string& text, int depth) {
    if (type == nullptr || depth > 16) return true;
    const std::string value = NormalizeWhiteSpace(text, type->whiteSpace);
    for (const auto& step : type->facets.patterns) {
        bool any = false;
        for (const std::string& p : step) any = any || Matches(value, p);
        if (!any) return false;
    }
    switch (type->variety) {
        case CSimpleType::Variety::None:
            return true;
        case CSimpleType::Variety::Union:
            for (const CSimpleType* member : type->memberTypes)
                if (IsValidLiteral(member, value, depth + 1)) return true;
            return type->memberTypes.empty();
        case CSimpleType::Variety::List: {
            std::size_t start = 0;
            std::size_t items = 0;
            const std::string collapsed = NormalizeWhiteSpace(value, WhiteSpace::Collapse);
            while (start < collapsed.size()) {
                std::size_t end = collapsed.find(' ', start);
                if (end == std::string::npos) end = collapsed.size();
                if (!IsValidLiteral(type->itemType, collapsed.substr(start, end - start), depth + 1)) return false;
                ++items;
                start = end + 1;
            }
            if (type->facets.length && items != type->facets.length->value) return false;
            if (type->facets.minLength && items < type->facets.minLength->value) return false;
            if (type->facets.maxLength && items > type->facets.maxLength->value) return false;
            return true;
        }
        case CSimpleType::Variety::Atomic:
            break;
    }
    if (type->primitiveType == nullptr) return true;
    const std::string& primitive = type->primitiveType->name.local;
    if (!IsPrimitiveLiteral(primitive, value)) return false;
    if (primitive == "decimal") {
        // Bounds and digits of the built-in integer types.
        const CFacets& f = type->facets;
        if (f.fractionDigits && f.fractionDigits->value == 0 && f.fractionDigits->fixed &&
            !IsDecimalLiteral(value, false))
            return false;
        const bool integral = IsDecimalLiteral(value, false);
        if (integral) {
            if (f.minInclusive && IsDecimalLiteral(f.minInclusive->value, true) &&
                CompareDecimals(value, f.minInclusive->value) < 0)
                return false;
            if (f.maxInclusive && IsDecimalLiteral(f.maxInclusive->value, true) &&
                CompareDecimals(value, f.maxInclusive->value) > 0)
                return false;
        }
    }
    if ((primitive == "string" || primitive == "anyURI") && !type->facets.enumeration.empty()) {
        bool found = false;
        for (const std::string& e : type->facets.enumeration)
            found = found || NormalizeWhiteSpace(e, type->whiteSpace) == value;
        if (!found) return false;
    }
    return true;
}

}  // namespace Schema
}  // namespace QmXmlLib10
