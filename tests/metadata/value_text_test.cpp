#include "metadata/value_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <qmxml/core/exception.h>

using namespace QmXmlLib10;
using QmXmlLib10Data::detail::ValueText;

namespace {

// The text written for a value must be what ToString gives.
void ExpectSameText(const QmVariant& value, const std::string& format = "") {
    std::string scratch = "left over";
    const std::string expected = value.ToString(format.empty() ? nullptr : format.c_str());
    const std::string_view text = ValueText(value, format, scratch);
    EXPECT_EQ(expected, std::string(text));
    EXPECT_EQ('\0', text.data()[text.size()]);
}

QmVariant Parsed(const char* text, ItemType type) {
    QmVariant v;
    v.FromString(text, type, CWhitespaceUtils::WhitespaceRule_Collapse);
    return v;
}

}  // namespace

TEST(ValueText, EveryItemTypeGivesItsToStringForm) {
    const struct {
        ItemType type;
        const char* text;
    } cases[] = {
        {ItemType_hexBinary, "0FA1"},          {ItemType_base64Binary, "AQID"},
        {ItemType_i1, "-128"},                 {ItemType_i2, "-32768"},
        {ItemType_i4, "-2147483648"},          {ItemType_i8, "-9223372036854775808"},
        {ItemType_ui1, "255"},                 {ItemType_ui2, "65535"},
        {ItemType_ui4, "4294967295"},          {ItemType_ui8, "18446744073709551615"},
        {ItemType_r4, "3.4028235E38"},         {ItemType_r8, "-1.5E-1"},
        {ItemType_r8, "NaN"},                  {ItemType_r8, "-INF"},
        {ItemType_r4, "INF"},                  {ItemType_duration, "P1Y2M3DT4H5M6.7S"},
        {ItemType_yearMonth, "2024-02"},       {ItemType_monthDay, "--02-29"},
        {ItemType_year, "-0044"},              {ItemType_month, "--07"},
        {ItemType_day, "---09"},               {ItemType_date, "2024-02-29+05:30"},
        {ItemType_datetime, "2024-02-29T23:59:59.125Z"}, {ItemType_time, "13:20:00-01:00"},
        {ItemType_char, "c"},                  {ItemType_string, "a & <b>"},
        {ItemType_boolean, "1"},               {ItemType_boolean, "false"},
        {ItemType_decimal, "-0012.3400"},      {ItemType_decimal, "0.000"},
        {ItemType_integer, "-123456789012345678901234567890"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ExpectSameText(Parsed(c.text, c.type));
    }
    // Formats, nil and empty strings.
    ExpectSameText(Parsed("2.345", ItemType_decimal), "2");
    ExpectSameText(Parsed("0.1", ItemType_r8), "%.3f");
    ExpectSameText(Parsed("0.1", ItemType_r4), "%e");
    QmVariant nil = Parsed("5", ItemType_i4);
    nil.SetNil();
    ExpectSameText(nil);
    ExpectSameText(Parsed("", ItemType_string));
    QmVariant unset;
    std::string scratch;
    EXPECT_THROW(ValueText(unset, "", scratch), CQmException);
}

TEST(ValueText, RealsMatchPrintfDigitForDigit) {
    std::mt19937_64 random(20240229);
    QmVariant v;
    const double specials[] = {0.0, -0.0, 1e-5, 1e-4, 123456789012345678.0, 1e16, 1e15, 0.1, 1.0 / 3,
                               std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::min(), 9.999999999999999e22, 5e-324};
    for (double d : specials) {
        v.SetR8(d);
        ExpectSameText(v);
        v.SetR4(static_cast<float>(d));
        ExpectSameText(v);
    }
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        v.SetR8(d);
        ExpectSameText(v);
        float f;
        const auto low = static_cast<std::uint32_t>(bits);
        std::memcpy(&f, &low, sizeof f);
        v.SetR4(f);
        ExpectSameText(v);
        v.SetR8(static_cast<double>(bits % 100000) / 1000);
        ExpectSameText(v);
    }
}
