// The helpers generated classes share: what the bound-class suites do not
// reach already (every numeric and date kind, the failure messages, resets in
// place, the factories' look-ups).
#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <cstdint>
#include <optional>
#include <string>

#include "expect_throw.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10Data;
using namespace QmXmlLib10::Generated;
using qmxml_test::ExpectThrow;

namespace {

// A generated class reduced to what the helpers touch: Init counts its calls.
class Probe : public CXmlGeneratedClass {
public:
    Probe() { Init(); }
    void Init() override { ++inits; }
    void AccessProperty(int index, bool, QmVariant&) override { ThrowUnknownProperty("Probe", index); }
    CParentElementInfo* GetClassInfo() const override { return s_classInfo; }
    CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }
    bool Equals(const Probe& other) const { return tag == other.tag; }

    int inits = 0;
    int tag = 0;

    static CParentElementInfo* s_classInfo;
    static CElementInfo** s_elementInfo;
    static CAttributeInfo** s_attributeInfo;
};
CParentElementInfo* Probe::s_classInfo = nullptr;
CElementInfo** Probe::s_elementInfo = nullptr;
CAttributeInfo** Probe::s_attributeInfo = nullptr;

class OtherProbe : public Probe {};

using ProbeCol = CXmlClassCollection<Probe>;

enum Shade { Shade_Light = 0, Shade_Dark = 1 };

// ------------------------------------------------------------------ failures

TEST(GeneratedFailures, UnknownPropertyAndUnsetMemberMessages) {
    Probe probe;
    QmVariant v;
    ExpectThrow<CQmInvalidParamException>([&] { probe.AccessProperty(7, true, v); },
                                          "Unknown property index [7] for the class [Probe]");
    const std::optional<std::string> unset;
    ExpectThrow<CQmInvalidStateException>([&] { GetOptional(unset, "Email"); },
                                          "The optional member [Email] is not set");
    const std::optional<double> set = 2.5;
    EXPECT_EQ(GetOptional(set, "Discount"), 2.5);
}

// ------------------------------------------------------------------ property access

TEST(GeneratedAccess, OptionalMemberReadsInvalidWhenUnsetAndIsUnsetByNilOrInvalid) {
    std::optional<std::string> field;
    QmVariant v;
    v.SetString("x");
    AccessString(true, v, field);
    EXPECT_FALSE(v.IsValid());

    v.SetString("kept");
    AccessString(false, v, field);
    ASSERT_TRUE(field.has_value());
    EXPECT_EQ(*field, "kept");
    AccessString(true, v, field);
    EXPECT_EQ(v.GetString(), "kept");

    v.SetNil();
    AccessString(false, v, field);
    EXPECT_FALSE(field.has_value());
    field = "again";
    v.SetInvalid();
    AccessString(false, v, field);
    EXPECT_FALSE(field.has_value());
}

TEST(GeneratedAccess, NillableMemberKeepsNilApartFromUnset) {
    std::optional<std::int32_t> field = 4;
    bool nil = false;
    QmVariant v;
    v.SetNil();
    AccessNumber(false, v, field, nil);
    EXPECT_TRUE(nil);
    EXPECT_FALSE(field.has_value());
    AccessNumber(true, v, field, nil);
    EXPECT_TRUE(v.IsNil());

    v.SetI4(9);
    AccessNumber(false, v, field, nil);
    EXPECT_FALSE(nil);
    EXPECT_EQ(field, 9);

    v.SetInvalid();
    AccessNumber(false, v, field, nil);
    EXPECT_FALSE(nil);
    EXPECT_FALSE(field.has_value());
    v.SetI4(1);
    AccessNumber(true, v, field, nil);
    EXPECT_FALSE(v.IsValid());
}

// Each numeric member type travels as its own item type, both ways.
template <class T>
class GeneratedNumbers : public ::testing::Test {};
using NumberTypes = ::testing::Types<char, short, std::int32_t, std::int64_t, unsigned char, unsigned short,
                                     std::uint32_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(GeneratedNumbers, NumberTypes);

TYPED_TEST(GeneratedNumbers, TravelAsTheirItemType) {
    TypeParam field = static_cast<TypeParam>(42);
    QmVariant v;
    AccessNumber(true, v, field);
    EXPECT_EQ(v.GetTypeAsEnum(), Codec::Number<TypeParam>::kItemType);
    TypeParam back = 0;
    AccessNumber(false, v, back);
    EXPECT_EQ(back, field);

    std::optional<TypeParam> optional;
    AccessNumber(false, v, optional);
    EXPECT_EQ(optional, field);
}

TEST(GeneratedAccess, BooleansDecimalsEnumsAndDurations) {
    QmVariant v;
    std::optional<bool> flag = true;
    AccessBoolean(true, v, flag);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_boolean);
    EXPECT_TRUE(v.GetBoolean());

    CDecimal price = CDecimal("12.50");
    AccessDecimal(true, v, price);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_decimal);
    std::optional<CDecimal> back;
    AccessDecimal(false, v, back);
    ASSERT_TRUE(back.has_value());
    EXPECT_TRUE(*back == price);

    Shade shade = Shade_Dark;
    AccessEnum(true, v, shade);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_i4);
    EXPECT_EQ(v.GetI4(), 1);
    std::optional<Shade> stored;
    AccessEnum(false, v, stored);
    EXPECT_EQ(stored, Shade_Dark);

    CDateTimeSpan span;
    span.ParseXSDDuration("P1DT2H");
    AccessDuration(true, v, span);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_duration);
    EXPECT_EQ(v.GetDuration().ToString(), "P1DT2H");
}

struct DateCase {
    const char* name;
    ItemType type;
    CDateTime::DTType kind;
    const char* text;
};

const DateCase kDateCases[] = {
    {"Date", ItemType_date, CDateTime::dt_date, "2024-02-29"},
    {"DateTime", ItemType_datetime, CDateTime::dt_dateTime, "2024-02-29T10:30:00Z"},
    {"Time", ItemType_time, CDateTime::dt_time, "10:30:00"},
    {"YearMonth", ItemType_yearMonth, CDateTime::dt_gYearMonth, "2024-02"},
    {"MonthDay", ItemType_monthDay, CDateTime::dt_gMonthDay, "--02-29"},
};

void PrintTo(const DateCase& c, std::ostream* os) { *os << c.name; }

class GeneratedDates : public ::testing::TestWithParam<DateCase> {};

TEST_P(GeneratedDates, TravelAsTheMembersItemType) {
    const DateCase& c = GetParam();
    CDateTime field;
    field.ParseXSD(c.text, c.kind);
    QmVariant v;
    AccessDateTime(true, v, field, c.type);
    EXPECT_EQ(v.GetTypeAsEnum(), c.type);
    std::optional<CDateTime> back;
    AccessDateTime(false, v, back, c.type);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->ToString(), c.text);
}

INSTANTIATE_TEST_SUITE_P(Kinds, GeneratedDates, ::testing::ValuesIn(kDateCases),
                         [](const ::testing::TestParamInfo<DateCase>& info) { return std::string(info.param.name); });

TEST(GeneratedAccess, DatesAndBinaryRefuseOtherItemTypes) {
    QmVariant v;
    CDateTime date;
    ExpectThrow<CQmInvalidParamException>([&] { AccessDateTime(true, v, date, ItemType_string); },
                                          "The item type [23] is not a date or time held in a CDateTime");
    CBinaryData data;
    ExpectThrow<CQmInvalidParamException>([&] { AccessBinary(false, v, data, ItemType_i4); },
                                          "The item type [5] is not binary data");
}

TEST(GeneratedAccess, BinaryTravelsAsHexOrBase64) {
    CBinaryData field("\xca\xfe");
    QmVariant v;
    AccessBinary(true, v, field, ItemType_base64Binary);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_base64Binary);
    std::optional<CBinaryData> back;
    AccessBinary(false, v, back, ItemType_base64Binary);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(*back, field);
    AccessBinary(true, v, field, ItemType_hexBinary);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_hexBinary);
}

TEST(GeneratedAccess, ObjectOfAnotherClassIsNotStored) {
    CSmartPtr<OtherProbe> field;
    QmVariant v;
    v.SetXmlObject(CSmartPtr<Probe>(new Probe()));
    AccessObject(false, v, field);
    EXPECT_FALSE(field);
    v.SetXmlObject(CSmartPtr<OtherProbe>(new OtherProbe()));
    AccessObject(false, v, field);
    EXPECT_TRUE(field);
}

// A member type of the caller's own, reached by AccessMembers through ADL.
struct Counter {
    int accesses = 0;
};
void AccessMember(bool, QmVariant& v, Counter& counter) { v.SetI4(++counter.accesses); }

TEST(GeneratedAccess, AccessMembersPicksTheMemberAtTheIndexByItsType) {
    std::string name = "n";
    std::optional<std::int64_t> id;
    std::optional<std::string> note;
    bool noteNil = false;
    CDateTime when;
    when.ParseXSD("2024-05-01", CDateTime::dt_date);
    CSmartPtr<ProbeCol> items = new ProbeCol("Item", "");
    Counter counter;
    auto access = [&](int index, bool read, QmVariant& v) {
        AccessMembers("Sample", index, read, v, name, id, AsNillable(note, noteNil), AsDateTime(when, ItemType_date),
                      items, counter);
    };
    QmVariant v;
    access(0, true, v);
    EXPECT_EQ(v.GetString(), "n");
    v.SetI8(5);
    access(1, false, v);
    EXPECT_EQ(id, 5);
    v.SetNil();
    access(2, false, v);
    EXPECT_TRUE(noteNil);
    access(3, true, v);
    EXPECT_EQ(v.GetTypeAsEnum(), ItemType_date);
    access(4, true, v);
    EXPECT_EQ(v.GetXmlCollection().Get(), items.Get());
    access(5, true, v);
    EXPECT_EQ(v.GetI4(), 1);  // only the member at the index was touched
    ExpectThrow<CQmInvalidParamException>([&] { access(6, true, v); },
                                          "Unknown property index [6] for the class [Sample]");
    ExpectThrow<CQmInvalidParamException>([&] { access(-1, false, v); },
                                          "Unknown property index [-1] for the class [Sample]");
}

TEST(GeneratedEnumerations, ConvertBothWaysAndNameTheEnumerationInFailures) {
    const char* const texts[] = {"low", "high"};
    EXPECT_STREQ(EnumerationToString(1, texts, "Level"), "high");
    EXPECT_EQ(EnumerationFromString("low", texts, "Level"), 0);
    ExpectThrow<CQmInvalidValueException>([&] { EnumerationToString(2, texts, "Level"); },
                                          "Invalid value [2] for the enumeration Level");
    ExpectThrow<CQmInvalidValueException>([&] { EnumerationFromString("High", texts, "Level"); },
                                          "Invalid value [High] for the enumeration Level");
    ExpectThrow<CQmInvalidValueException>([&] { EnumerationFromString(nullptr, texts, "Level"); },
                                          "Invalid value [] for the enumeration Level");
}

// ------------------------------------------------------------------ Init

TEST(GeneratedReset, MemberNobodyElseHoldsIsResetInPlace) {
    CSmartPtr<Probe> member;
    ResetMember(member);
    ASSERT_TRUE(member);
    Probe* first = member;
    ResetMember(member);
    EXPECT_EQ(member.Get(), first);
    EXPECT_EQ(member->inits, 2);

    const CSmartPtr<Probe> held = member;
    ResetMember(member);
    EXPECT_NE(member.Get(), first);
    EXPECT_EQ(held->inits, 2);  // the holder's object is left alone
}

TEST(GeneratedReset, CollectionNobodyElseHoldsIsEmptiedInPlace) {
    CSmartPtr<ProbeCol> member;
    ResetCollection(member, "Probe", "urn:p", 1, 3);
    ASSERT_TRUE(member);
    member->Add(new Probe());
    ProbeCol* first = member;
    ResetCollection(member, "Probe", "urn:p", 1, 3);
    EXPECT_EQ(member.Get(), first);
    EXPECT_EQ(member->GetCount(), 0);

    member->Add(new Probe());
    const CSmartPtr<ProbeCol> held = member;
    ResetCollection(member, "Probe", "urn:p", 1, 3);
    EXPECT_NE(member.Get(), first);
    EXPECT_EQ(member->GetCount(), 0);
    EXPECT_EQ(held->GetCount(), 1);
}

// ------------------------------------------------------------------ equality

TEST(GeneratedEquality, DatesCompareAsWrittenAndNullsOnlyMatchNulls) {
    const CDateTime utc("2024-01-01T10:00:00Z");
    const CDateTime paris("2024-01-01T11:00:00+01:00");
    EXPECT_FALSE(SameDateTime(utc, paris));
    EXPECT_TRUE(SameDateTime(utc, CDateTime("2024-01-01T10:00:00Z")));
    EXPECT_TRUE(SameDateTime(std::optional<CDateTime>(), std::optional<CDateTime>()));
    EXPECT_FALSE(SameDateTime(std::optional<CDateTime>(utc), std::optional<CDateTime>()));

    CSmartPtr<Probe> a = new Probe(), b = new Probe(), none;
    EXPECT_TRUE(SameObject(a, b));
    b->tag = 1;
    EXPECT_FALSE(SameObject(a, b));
    EXPECT_FALSE(SameObject(a, none));
    EXPECT_TRUE(SameObject(none, none));

    CSmartPtr<ProbeCol> left = new ProbeCol("P", ""), right = new ProbeCol("P", ""), empty;
    left->Add(new Probe());
    EXPECT_FALSE(SameCollection(left, right));
    right->Add(new Probe());
    EXPECT_TRUE(SameCollection(left, right));
    right->GetItem(0)->tag = 3;
    EXPECT_FALSE(SameCollection(left, right));
    EXPECT_FALSE(SameCollection(left, empty));
    EXPECT_TRUE(SameCollection(empty, empty));
}

// ------------------------------------------------------------------ setters

TEST(GeneratedSetters, FacetChecksThrowWhatWritingWould) {
    const CPrimitiveRestrictions zip("\\d{5}", -1, -1, "", "", "", "", -1);
    EXPECT_NO_THROW(CheckString("Zip", "12345", zip));
    ExpectThrow<CQmValidationException>([&] { CheckString("Zip", "1234", zip); }, "Invalid Value for Zip [1234]");

    const CPrimitiveRestrictions quantity("", -1, -1, "1", "10000", "", "", -1);
    EXPECT_NO_THROW(CheckNumber("Quantity", std::int32_t{10000}, quantity));
    ExpectThrow<CQmValidationException>([&] { CheckNumber("Quantity", std::int32_t{0}, quantity); },
                                        "Invalid Value for Quantity [0]");
    const CPrimitiveRestrictions cap("", -1, -1, "", "9.99", "", "", -1);
    EXPECT_NO_THROW(CheckDecimal("Price", CDecimal("9.99"), cap));
    ExpectThrow<CQmValidationException>([&] { CheckDecimal("Price", CDecimal("10"), cap); },
                                        "Invalid Value for Price [10]");
}

TEST(GeneratedSetters, ChoiceMemberReplacesOrClearsTheSelectedOneOnly) {
    CSmartPtr<Probe> card, invoice;
    std::string selected;
    SetChoiceMember(card, new Probe(), "Card", selected);
    EXPECT_EQ(selected, "Card");
    SetChoiceMember(card, new Probe(), "Card", selected);  // replacing is allowed
    EXPECT_EQ(selected, "Card");
    ExpectThrow<CQmInvalidStateException>(
        [&] { SetChoiceMember(invoice, new Probe(), "Invoice", selected); },
        "The Property [Card] is already set. Only one element within this class bay be set at a time");
    EXPECT_FALSE(invoice);
    SetChoiceMember(invoice, static_cast<Probe*>(nullptr), "Invoice", selected);  // clearing another is a no-op
    EXPECT_EQ(selected, "Card");
    SetChoiceMember(card, static_cast<Probe*>(nullptr), "Card", selected);
    EXPECT_EQ(selected, "");
    SetChoiceMember(invoice, new Probe(), "Invoice", selected);
    EXPECT_EQ(selected, "Invoice");
}

TEST(GeneratedChoice, EmptyMandatoryChoiceUnlessTheContextIgnoresIt) {
    CXmlDocument document;
    document.LoadXml("<Order/>");
    CXmlSerializationContext ctx;
    ExpectThrow<CQmValidationException>(
        [&] { CheckChoiceSelected("", document.GetDocumentElement(), ctx); },
        "No child elements within the element [Order] were populated. The element represents a choice, so one and "
        "only one element should be populated. The element contained no sutable child elements");
    EXPECT_NO_THROW(CheckChoiceSelected("Card", document.GetDocumentElement(), ctx));
    ctx.SetIgnoreMissingChoice(true);
    EXPECT_NO_THROW(CheckChoiceSelected("", document.GetDocumentElement(), ctx));
}

// ------------------------------------------------------------------ factories

TEST(GeneratedFactories, ByIndexCreatesTheListedClassOrNothing) {
    const auto create = &CreateByIndex<Probe, OtherProbe>;
    EXPECT_TRUE(dynamic_cast<OtherProbe*>(create(1).Get()));
    const CSmartPtr<CXmlObjectBase> first = create(0);
    ASSERT_TRUE(first);
    EXPECT_FALSE(dynamic_cast<OtherProbe*>(first.Get()));
    EXPECT_FALSE(create(2));
    EXPECT_FALSE(create(-1));
}

TEST(GeneratedFactories, TypeAttributeWinsOverTheElementNameOfTheGroup) {
    static const CClassByName kClasses[] = {
        {"Head", nullptr, nullptr},
        {"Base", "BaseType", CreateNew<Probe>},
        {"Other", "OtherType", CreateNew<OtherProbe>},
        {nullptr, "HiddenType", CreateNew<OtherProbe>},
    };
    CXmlDocument document;
    document.LoadXml(
        "<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:t='urn:t'>"
        "<Base/><Other/><Base xsi:type='t:OtherType'/><Head xsi:type='HiddenType'/>"
        "<Other xsi:type='t:Unknown'/><Head/><Stray xsi:type='OtherType'/></r>");
    CXmlElement* e = document.GetDocumentElement()->GetFirstElement();
    auto kind = [&](CXmlElement* element) -> std::string {
        const CSmartPtr<CXmlObjectBase> made = CreateByElementOrType(element, kClasses);
        if (!made) return "none";
        return dynamic_cast<OtherProbe*>(made.Get()) ? "other" : "base";
    };
    EXPECT_EQ(kind(e), "base");
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "other");
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "other");
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "other");
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "other");  // an unknown type falls back to the element name
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "none");  // the abstract head needs an xsi:type
    e = e->GetNextSiblingElement();
    EXPECT_EQ(kind(e), "none");  // a known type does not let a name outside the group in
    EXPECT_EQ(kind(nullptr), "none");
}

TEST(GeneratedFactories, CleanClassMetaDataFreesAndNullsEveryClassesMetadata) {
    Probe::s_classInfo = new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "Probe", "",
                                                true, false, -1, ItemType_None, "", false);
    Probe::s_elementInfo = new CElementInfo*[1]{nullptr};
    Probe::s_attributeInfo = new CAttributeInfo*[1]{nullptr};
    CleanClassMetaData<Probe>();
    EXPECT_EQ(Probe::s_classInfo, nullptr);
    EXPECT_EQ(Probe::s_elementInfo, nullptr);
    EXPECT_EQ(Probe::s_attributeInfo, nullptr);
}

}  // namespace
