#include <qmxml/types/variant.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <string>
#include <typeinfo>
#include <utility>

#include <qmxml/core/exception.h>
#include <qmxml/types/conversions.h>

#include "conversion_cases.h"
#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectThrow;
using qmxml_test::kCollapse;
using qmxml_test::kNone;

namespace {

// A CDateTime of the given date type.
CDateTime Dt(const char* text, CDateTime::DTType type) {
    CDateTime value;
    value.ParseXSD(text, type);
    return value;
}

TEST(QmVariantTest, ValidityAndNilFlag) {
    QmVariant v;
    EXPECT_FALSE(v.IsValid());
    EXPECT_FALSE(v.IsNil());
    EXPECT_EQ(ItemType_None, v.GetTypeAsEnum());

    v.SetNil();
    EXPECT_TRUE(v.IsValid());
    EXPECT_TRUE(v.IsNil());
    EXPECT_EQ(ItemType_None, v.GetTypeAsEnum());
    EXPECT_EQ("", v.ToString());

    v.SetI4(7);
    EXPECT_FALSE(v.IsNil());  // every setter clears the flag
    v.SetNil();
    EXPECT_TRUE(v.IsNil());
    EXPECT_EQ(ItemType_i4, v.GetTypeAsEnum());
    EXPECT_EQ("i4", v.GetType());
    EXPECT_EQ(0, v.GetI4());  // the value is gone, the type stays
    EXPECT_EQ("", v.ToString());

    v.FromString("8", ItemType_i4, kNone);
    EXPECT_FALSE(v.IsNil());
    EXPECT_EQ(8, v.GetI4());

    v.SetNil();
    v.Clear();  // keeps type and flag
    EXPECT_TRUE(v.IsNil());
    EXPECT_EQ(ItemType_i4, v.GetTypeAsEnum());

    v.SetInvalid();
    EXPECT_FALSE(v.IsValid());
    EXPECT_FALSE(v.IsNil());
    EXPECT_EQ(ItemType_None, v.GetTypeAsEnum());

    v.SetString("abc");
    v.Clear();
    EXPECT_TRUE(v.IsValid());
    EXPECT_EQ("", v.GetString());
}

// One case per item type: setter, type number and name, and the lexical form
// (printed through the getter) parsed back under the same type.
struct TypeCase {
    ItemType type;
    const char* name;
    void (*set)(QmVariant&);
    const char* text;
};

const TypeCase kTypeCases[] = {
    {ItemType_hexBinary, "hexBinary", [](QmVariant& v) { v.SetHexBinary(CBinaryData("\x0a\xff")); }, "0AFF"},
    {ItemType_base64Binary, "base64Binary", [](QmVariant& v) { v.SetBase64Binary(CBinaryData("abc")); }, "YWJj"},
    {ItemType_i1, "i1", [](QmVariant& v) { v.SetI1(-128); }, "-128"},
    {ItemType_i2, "i2", [](QmVariant& v) { v.SetI2(-32768); }, "-32768"},
    {ItemType_i4, "i4", [](QmVariant& v) { v.SetI4(-2147483647 - 1); }, "-2147483648"},
    {ItemType_i8, "i8", [](QmVariant& v) { v.SetI8(-9223372036854775807LL - 1); }, "-9223372036854775808"},
    {ItemType_ui1, "ui1", [](QmVariant& v) { v.SetUI1(255); }, "255"},
    {ItemType_ui2, "ui2", [](QmVariant& v) { v.SetUI2(65535); }, "65535"},
    {ItemType_ui4, "ui4", [](QmVariant& v) { v.SetUI4(4294967295u); }, "4294967295"},
    {ItemType_ui8, "ui8", [](QmVariant& v) { v.SetUI8(18446744073709551615ull); }, "18446744073709551615"},
    {ItemType_r4, "r4", [](QmVariant& v) { v.SetR4(1.5f); }, "1.5"},
    {ItemType_r8, "r8", [](QmVariant& v) { v.SetR8(0.1); }, "0.1"},
    {ItemType_duration, "duration", [](QmVariant& v) { v.SetDuration(CDateTimeSpan(1, 30, 0)); }, "PT1H30M"},
    {ItemType_yearMonth, "yearMonth", [](QmVariant& v) { v.SetYearMonth(Dt("2024-02", CDateTime::dt_gYearMonth)); },
     "2024-02"},
    {ItemType_monthDay, "monthDay", [](QmVariant& v) { v.SetMonthDay(Dt("--02-29", CDateTime::dt_gMonthDay)); },
     "--02-29"},
    {ItemType_year, "year", [](QmVariant& v) { v.SetYear(2024); }, "2024"},
    {ItemType_month, "month", [](QmVariant& v) { v.SetMonth(7); }, "--07"},
    {ItemType_day, "day", [](QmVariant& v) { v.SetDay(9); }, "---09"},
    {ItemType_date, "date", [](QmVariant& v) { v.SetDate(Dt("2024-01-15-05:00", CDateTime::dt_date)); },
     "2024-01-15-05:00"},
    {ItemType_datetime, "datetime", [](QmVariant& v) { v.SetDateTime(CDateTime("2024-01-15T10:20:30.5Z")); },
     "2024-01-15T10:20:30.5Z"},
    {ItemType_time, "time", [](QmVariant& v) { v.SetTime(Dt("10:20:30", CDateTime::dt_time)); }, "10:20:30"},
    {ItemType_char, "char", [](QmVariant& v) { v.SetChar('x'); }, "x"},
    {ItemType_string, "string", [](QmVariant& v) { v.SetString("a b"); }, "a b"},
    {ItemType_boolean, "boolean", [](QmVariant& v) { v.SetBoolean(true); }, "true"},
    {ItemType_decimal, "decimal", [](QmVariant& v) { v.SetDecimal(CDecimal("-12.050")); }, "-12.05"},
    {ItemType_integer, "integer", [](QmVariant& v) { v.SetInteger(CBigInteger("-123456789012345678901234567890")); },
     "-123456789012345678901234567890"},
};

TEST(QmVariantTest, EveryItemTypeSetsGetsPrintsAndParses) {
    ASSERT_EQ(26u, sizeof kTypeCases / sizeof kTypeCases[0]);
    int expectedNumber = 1;
    for (const TypeCase& c : kTypeCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(expectedNumber++, static_cast<int>(c.type));
        QmVariant v;
        c.set(v);
        EXPECT_EQ(c.type, v.GetTypeAsEnum());
        EXPECT_EQ(c.name, v.GetType());
        EXPECT_EQ(c.text, v.ToString());

        QmVariant parsed;
        parsed.SetNil();
        parsed.FromString(c.text, c.type, kNone);
        EXPECT_FALSE(parsed.IsNil());
        EXPECT_EQ(c.type, parsed.GetTypeAsEnum());
        EXPECT_EQ(c.text, parsed.ToString());
    }
    QmVariant v;
    v.SetDate(Dt("2024-01-15-05:00", CDateTime::dt_date));
    EXPECT_EQ(-5, v.GetDate().GetZoneHour());
    v.SetUI8(18446744073709551615ull);
    EXPECT_EQ(18446744073709551615ull, v.GetUI8());
}

TEST(QmVariantTest, GettersRefuseOtherTypes) {
    QmVariant v;
    ExpectThrow<CQmInvalidStateException>([&] { v.GetString(); }, "Cannot read a variant of type [none] as [string]");
    v.SetI4(1);
    ExpectThrow<CQmInvalidStateException>([&] { v.GetUI4(); }, "Cannot read a variant of type [i4] as [ui4]");
    ExpectThrow<CQmInvalidStateException>([&] { v.GetI8(); }, "Cannot read a variant of type [i4] as [i8]");
    ExpectThrow<CQmInvalidStateException>([&] { v.GetXmlObject(); }, "Cannot read a variant of type [i4] as [object]");
    // Types that share a native representation are still distinct.
    v.SetChar('a');
    ExpectThrow<CQmInvalidStateException>([&] { v.GetI1(); }, "Cannot read a variant of type [char] as [i1]");
    v.SetMonth(3);
    ExpectThrow<CQmInvalidStateException>([&] { v.GetUI1(); }, "Cannot read a variant of type [month] as [ui1]");
    v.SetDate(Dt("2024-01-01", CDateTime::dt_date));
    ExpectThrow<CQmInvalidStateException>([&] { v.GetDateTime(); },
                                          "Cannot read a variant of type [date] as [datetime]");
    CSmartPtr<qmxml_test::TestCol> col(new qmxml_test::TestCol());
    v.SetXmlCollection(col.Get());
    ExpectThrow<CQmInvalidStateException>([&] { v.GetXmlObject(); },
                                          "Cannot read a variant of type [collection] as [object]");
    EXPECT_EQ(col.Get(), v.GetXmlCollection().Get());
}

TEST(QmVariantTest, TypesWithoutLexicalFormAreRefused) {
    QmVariant v;
    ExpectThrow<CQmException>([&] { v.GetType(); }, "Invalid Type 0");
    ExpectThrow<CQmException>([&] { v.ToString(); }, "Invalid Type 0 to convert to string");

    CSmartPtr<qmxml_test::TestObject> object(new qmxml_test::TestObject());
    v.SetXmlObject(object.Get());
    EXPECT_TRUE(v.IsValid());
    EXPECT_EQ(QmVariant::kXmlObjectType, v.GetTypeAsEnum());
    ExpectThrow<CQmException>([&] { v.GetType(); }, "Invalid Type 27");
    ExpectThrow<CQmException>([&] { v.ToString(); }, "Invalid Type 27 to convert to string");

    v.SetI4(5);
    ExpectThrow<CQmException>([&] { v.FromString("1", ItemType_None, kNone); }, "Invalid Type 0 to convert to string");
    ExpectThrow<CQmException>([&] { v.FromString("1", static_cast<ItemType>(QmVariant::kXmlCollectionType), kNone); },
                              "Invalid Type 28 to convert to string");
    ExpectThrow<CQmException>([&] { v.FromString("1", static_cast<ItemType>(-1), kNone); },
                              "Invalid Type -1 to convert to string");
    EXPECT_EQ(5, v.GetI4());  // unchanged by the refused calls
}

TEST(QmVariantTest, FromStringAppliesTheRuleAndKeepsTheValueOnFailure) {
    QmVariant v;
    v.FromString(" 12\t", ItemType_i4, kCollapse);
    EXPECT_EQ(12, v.GetI4());
    v.FromString("a\r\nb", ItemType_string, CWhitespaceUtils::WhitespaceRule_Replace);
    EXPECT_EQ("a b", v.GetString());
    v.FromString(" a ", ItemType_string, kNone);
    EXPECT_EQ(" a ", v.GetString());

    v.SetNil();
    qmxml_test::ExpectMessage<CQmInvalidValueException>([&] { v.FromString("12 ", ItemType_i4, kNone); },
                                                        "The value [12 ] can not be converted to a i4");
    EXPECT_TRUE(v.IsNil());
    EXPECT_EQ(ItemType_string, v.GetTypeAsEnum());

    ExpectThrow<CQmInvalidValueException>([&] { v.FromString("2024-13-01", ItemType_date, kNone); },
                                          "Invalid Month [13] (1 <= month <= 12)");
}

TEST(QmVariantTest, FormatAppliesToRealsAndDecimals) {
    QmVariant v;
    v.SetR8(3.14159);
    EXPECT_EQ("3.14", v.ToString("%.2f"));
    EXPECT_EQ("3.14159", v.ToString(""));
    EXPECT_EQ("3.14159", v.ToString());
    v.SetR4(0.1f);
    EXPECT_EQ("0.1", v.ToString());
    EXPECT_EQ("0.100", v.ToString("%.3f"));
    v.SetR8(std::nan(""));
    EXPECT_EQ("NaN", v.ToString("%.2f"));
    v.SetDecimal(CDecimal("2.345"));
    EXPECT_EQ("2.35", v.ToString("2"));
    EXPECT_EQ("2.345", v.ToString());
    v.SetI4(42);
    EXPECT_EQ("42", v.ToString("%.2f"));  // integers ignore it
    v.SetDateTime(CDateTime("2024-01-15T10:00:00-00:30"));
    EXPECT_EQ("2024-01-15T10:00:00-00:30", v.ToString("%Y"));
    v.SetYear(65535);  // the year -0001 as yearFromString returns it
    EXPECT_EQ("65535", v.ToString());
}

TEST(QmVariantTest, CopiesValuesDeeplyAndSharesObjects) {
    QmVariant source;
    source.SetDecimal(CDecimal("1.5"));
    QmVariant copy;
    copy = source;
    source.SetDecimal(CDecimal("2.5"));
    EXPECT_EQ("1.5", copy.ToString());

    source.SetHexBinary(CBinaryData("\x01\x02"));
    QmVariant binaryCopy(source);
    // Writing through the source's own buffer must not show in the copy.
    const_cast<CBinaryData&>(source.GetHexBinary())[0] = 0x7f;
    EXPECT_EQ("0102", binaryCopy.ToString());
    EXPECT_EQ("7F02", source.ToString());

    source.SetI4(3);
    source.SetNil();
    QmVariant nilCopy(source);
    EXPECT_TRUE(nilCopy.IsNil());
    EXPECT_EQ(ItemType_i4, nilCopy.GetTypeAsEnum());

    std::atomic<int> destroyed{0};
    {
        QmVariant a;
        a.SetXmlObject(new qmxml_test::TestObject("order", &destroyed));
        CXmlObjectBase* object = a.GetXmlObject().Get();
        EXPECT_EQ(1, object->GetRefCount());
        {
            QmVariant b(a);
            QmVariant c;
            c = b;
            EXPECT_EQ(3, object->GetRefCount());
            EXPECT_EQ(object, c.GetXmlObject().Get());
        }
        EXPECT_EQ(1, object->GetRefCount());
        const QmVariant& alsoA = a;  // self-assignment, as it happens through a reference
        a = alsoA;  // keeps the reference
        EXPECT_EQ(1, object->GetRefCount());
        EXPECT_EQ(0, destroyed.load());
        a.SetI4(1);  // replacing the value lets go of the object
        EXPECT_EQ(1, destroyed.load());
    }

    QmVariant nullObject;
    nullObject.SetXmlObject(nullptr);
    EXPECT_TRUE(nullObject.IsValid());
    EXPECT_EQ(nullptr, nullObject.GetXmlObject().Get());
}

TEST(QmVariantTest, MoveLeavesTheSourceInvalid) {
    QmVariant a;
    a.SetString(std::string(100, 'x'));
    QmVariant b(std::move(a));
    EXPECT_FALSE(a.IsValid());  // NOLINT(bugprone-use-after-move): documented state
    EXPECT_EQ(std::string(100, 'x'), b.GetString());
    a.SetNil();
    b = std::move(a);
    EXPECT_TRUE(b.IsNil());
    EXPECT_EQ(ItemType_None, b.GetTypeAsEnum());
    EXPECT_FALSE(a.IsValid());  // NOLINT(bugprone-use-after-move)
}

TEST(QmVariantTest, TakeMovesTheValueOutAndKeepsTheType) {
    QmVariant v;
    const std::string long_text(100, 'x');
    v.SetString(long_text);
    const char* buffer = v.GetString().data();
    std::string taken = v.TakeString();
    EXPECT_EQ(long_text, taken);
    EXPECT_EQ(buffer, taken.data());  // moved, not copied
    EXPECT_EQ(ItemType_string, v.GetTypeAsEnum());
    EXPECT_EQ("", v.GetString());

    v.SetDecimal(CDecimal("-12.50"));
    EXPECT_EQ("-12.5", v.TakeDecimal().ToString());
    EXPECT_EQ("0", v.GetDecimal().ToString());
    v.SetInteger(CBigInteger("123456789012345678901234567890"));
    EXPECT_EQ("123456789012345678901234567890", v.TakeInteger().ToString());
    EXPECT_TRUE(v.GetInteger().IsZero());
    v.SetHexBinary(CBinaryData("ab"));
    EXPECT_EQ(2u, v.TakeHexBinary().GetLength());
    EXPECT_EQ(0u, v.GetHexBinary().GetLength());
    v.SetBase64Binary(CBinaryData("ab"));
    EXPECT_EQ(2u, v.TakeBase64Binary().GetLength());

    // A nil or cleared variant gives the empty value; other types are refused
    // with the getters' message.
    v.SetString("a");
    v.SetNil();
    EXPECT_EQ("", v.TakeString());
    ExpectThrow<CQmInvalidStateException>([&] { v.TakeDecimal(); },
                                          "Cannot read a variant of type [string] as [decimal]");
    v.SetI4(1);
    ExpectThrow<CQmInvalidStateException>([&] { v.TakeString(); }, "Cannot read a variant of type [i4] as [string]");
    EXPECT_EQ(1, v.GetI4());
}

}  // namespace
