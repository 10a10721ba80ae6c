#include "value_text.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <limits>

namespace QmXmlLib10Data::detail {

using namespace QmXmlLib10;

namespace {

template <class T>
std::string_view IntegerText(T value, std::string& scratch) {
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    scratch.assign(buffer, result.ptr);
    return scratch;
}

// FloatText's default forms ("%.7g", "%.16g" through snprintf): to_chars
// gives the same digits and layout as printf in the C locale; under a locale
// with another decimal point snprintf's form is kept.
bool RealText(double value, int precision, std::string& scratch) {
    if (std::isnan(value)) {
        scratch = "NaN";
    } else if (value <= -std::numeric_limits<double>::infinity()) {
        scratch = "-INF";
    } else if (value >= std::numeric_limits<double>::infinity()) {
        scratch = "INF";
    } else {
        const char* point = std::localeconv()->decimal_point;
        if (point == nullptr || point[0] != '.' || point[1] != '\0') return false;
        char buffer[48];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision);
        if (result.ec != std::errc()) return false;
        scratch.assign(buffer, result.ptr);
    }
    return true;
}

std::string_view DateText(const CDateTime& value, std::string& scratch) {
    scratch.clear();
    value.AppendText(scratch);
    return scratch;
}

}  // namespace

std::string_view ValueText(const QmVariant& value, const std::string& format, std::string& scratch) {
    if (!value.IsNil()) {
        // The same forms as CConversions gives for these types.
        switch (value.GetTypeAsEnum()) {
            case ItemType_string: return value.GetString();
            case ItemType_boolean: return value.GetBoolean() ? "true" : "false";
            case ItemType_i1: return IntegerText(static_cast<int>(static_cast<signed char>(value.GetI1())), scratch);
            case ItemType_i2: return IntegerText(static_cast<int>(value.GetI2()), scratch);
            case ItemType_i4: return IntegerText(value.GetI4(), scratch);
            case ItemType_i8: return IntegerText(value.GetI8(), scratch);
            case ItemType_ui1: return IntegerText(static_cast<unsigned>(value.GetUI1()), scratch);
            case ItemType_ui2: return IntegerText(static_cast<unsigned>(value.GetUI2()), scratch);
            case ItemType_ui4: return IntegerText(value.GetUI4(), scratch);
            case ItemType_ui8: return IntegerText(value.GetUI8(), scratch);
            case ItemType_date: return DateText(value.GetDate(), scratch);
            case ItemType_datetime: return DateText(value.GetDateTime(), scratch);
            case ItemType_time: return DateText(value.GetTime(), scratch);
            case ItemType_yearMonth: return DateText(value.GetYearMonth(), scratch);
            case ItemType_monthDay: return DateText(value.GetMonthDay(), scratch);
            case ItemType_r4:
                if (format.empty() && RealText(static_cast<double>(value.GetR4()), 7, scratch)) return scratch;
                break;
            case ItemType_r8:
                if (format.empty() && RealText(value.GetR8(), 16, scratch)) return scratch;
                break;
            case ItemType_decimal:
                if (!format.empty()) break;  // rounded to the format's places
                scratch.clear();
                value.GetDecimal().AppendText(scratch);
                return scratch;
            default: break;
        }
    }
    scratch = value.ToString(format.empty() ? nullptr : format.c_str());
    return scratch;
}

}  // namespace QmXmlLib10Data::detail
