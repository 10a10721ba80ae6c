// The infoset comparison behind the W3C runner's round-trip check.
#include "infoset_compare.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qmxml/schema/schema_set.h"

namespace {

using QmXmlLib10::Schema::CSchemaSet;
using qmxml_w3c::CompareInfosets;

const char kSchema[] = R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="urn:t"
    xmlns:t="urn:t" elementFormDefault="qualified">
  <xs:simpleType name="IntList"><xs:list itemType="xs:int"/></xs:simpleType>
  <xs:complexType name="Base"><xs:sequence><xs:element name="a" type="xs:string" minOccurs="0"/></xs:sequence></xs:complexType>
  <xs:complexType name="Derived"><xs:complexContent><xs:extension base="t:Base">
    <xs:sequence><xs:element name="b" type="xs:int" minOccurs="0"/></xs:sequence>
  </xs:extension></xs:complexContent></xs:complexType>
  <xs:element name="root">
    <xs:complexType>
      <xs:choice minOccurs="0" maxOccurs="unbounded">
        <xs:element name="decimal" type="xs:decimal"/>
        <xs:element name="integer" type="xs:integer"/>
        <xs:element name="boolean" type="xs:boolean"/>
        <xs:element name="float" type="xs:float"/>
        <xs:element name="double" type="xs:double"/>
        <xs:element name="string" type="xs:string"/>
        <xs:element name="token" type="xs:token"/>
        <xs:element name="normalized" type="xs:normalizedString"/>
        <xs:element name="dateTime" type="xs:dateTime"/>
        <xs:element name="time" type="xs:time"/>
        <xs:element name="date" type="xs:date"/>
        <xs:element name="duration" type="xs:duration"/>
        <xs:element name="hex" type="xs:hexBinary"/>
        <xs:element name="base64" type="xs:base64Binary"/>
        <xs:element name="qname" type="xs:QName"/>
        <xs:element name="list" type="t:IntList"/>
        <xs:element name="withDefault" type="xs:int" default="7"/>
        <xs:element name="item" type="t:Base"/>
        <xs:element name="priced">
          <xs:complexType><xs:simpleContent><xs:extension base="xs:decimal">
            <xs:attribute name="currency" type="xs:token" default="EUR"/>
          </xs:extension></xs:simpleContent></xs:complexType>
        </xs:element>
      </xs:choice>
      <xs:attribute name="flag" type="xs:boolean" default="false"/>
      <xs:attribute name="count" type="xs:int"/>
      <xs:attribute name="note" type="xs:string"/>
    </xs:complexType>
  </xs:element>
</xs:schema>)";

class InfosetCompare : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_schemas = CSchemaSet::LoadBuffer(kSchema).release(); }
    static void TearDownTestSuite() {
        delete s_schemas;
        s_schemas = nullptr;
    }

    // A document of the test schema: root attributes and content.
    static std::string Doc(const std::string& attributes, const std::string& content) {
        return "<t:root xmlns:t=\"urn:t\" xmlns:p=\"urn:p\" xmlns:q=\"urn:p\" xmlns:r=\"urn:r\""
               " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"" +
               attributes + ">" + content + "</t:root>";
    }
    static std::string Compare(const std::string& a, const std::string& b) { return CompareInfosets(a, b, s_schemas); }

    static CSchemaSet* s_schemas;
};

CSchemaSet* InfosetCompare::s_schemas = nullptr;

TEST_F(InfosetCompare, EqualTreesWithOtherLayoutAndPrefixes) {
    const std::string a = Doc("", "\n  <t:decimal>1.5</t:decimal>\n  <t:item><t:a>x y</t:a></t:item>\n");
    const std::string b =
        "<root xmlns=\"urn:t\"><decimal>1.5</decimal><item><a>x y</a></item></root>";
    EXPECT_EQ(Compare(a, a), "");
    EXPECT_EQ(Compare(a, b), "");
}

TEST_F(InfosetCompare, AttributeOrderAndLocationHintsDoNotCount) {
    const std::string a = Doc(" count=\"3\" note=\"n\" xsi:schemaLocation=\"urn:t t.xsd\"", "");
    const std::string b = Doc(" note=\"n\" count=\"3\"", "");
    EXPECT_EQ(Compare(a, b), "");
    EXPECT_EQ(Compare(b, a), "");
}

TEST_F(InfosetCompare, AttributeValuesCompareInTheirValueSpace) {
    EXPECT_EQ(Compare(Doc(" count=\" +03 \"", ""), Doc(" count=\"3\"", "")), "");
    EXPECT_EQ(Compare(Doc(" count=\"3\"", ""), Doc(" count=\"4\"", "")), "Attribute [count] differs at [/root]: [3] against [4]");
    // A string keeps its whitespace.
    EXPECT_EQ(Compare(Doc(" note=\" x\"", ""), Doc(" note=\"x\"", "")), "Attribute [note] differs at [/root]: [ x] against [x]");
    // Whitespace characters other than the space are shown as references.
    EXPECT_EQ(Compare(Doc(" note=\"a&#9;b&#13;\"", ""), Doc(" note=\"a b&#10;\"", "")),
              "Attribute [note] differs at [/root]: [a&#9;b&#13;] against [a b&#10;]");
}

TEST_F(InfosetCompare, MissingAndExtraAttributes) {
    EXPECT_EQ(Compare(Doc(" count=\"3\"", ""), Doc("", "")), "Missing attribute [count] at [/root]");
    EXPECT_EQ(Compare(Doc("", ""), Doc(" note=\"\"", "")), "Extra attribute [note] at [/root]");
}

TEST_F(InfosetCompare, AttributesTheDefaultsFilledInDoNotCount) {
    EXPECT_EQ(Compare(Doc("", ""), Doc(" flag=\"false\"", "")), "");
    EXPECT_EQ(Compare(Doc("", ""), Doc(" flag=\"0\"", "")), "");
    EXPECT_EQ(Compare(Doc(" flag=\"false\"", ""), Doc("", "")), "");
    // Only the default value itself may appear from nowhere.
    EXPECT_EQ(Compare(Doc("", ""), Doc(" flag=\"true\"", "")), "Extra attribute [flag] at [/root]");
    // The default of an attribute of simple content, inside the tree.
    EXPECT_EQ(Compare(Doc("", "<t:priced>1.50</t:priced>"), Doc("", "<t:priced currency=\"EUR\">1.5</t:priced>")), "");
    EXPECT_EQ(Compare(Doc("", "<t:priced>1.50</t:priced>"), Doc("", "<t:priced currency=\"USD\">1.5</t:priced>")),
              "Extra attribute [currency] at [/root/priced]");
}

TEST_F(InfosetCompare, ElementDefaultsFillEmptyElements) {
    EXPECT_EQ(Compare(Doc("", "<t:withDefault/>"), Doc("", "<t:withDefault>7</t:withDefault>")), "");
    EXPECT_EQ(Compare(Doc("", "<t:withDefault/>"), Doc("", "<t:withDefault>8</t:withDefault>")),
              "Text differs at [/root/withDefault]: [7] against [8]");
}

TEST(InfosetCompareDefaults, OneNameDeclaredTwiceWithOtherDefaults) {
    const auto schemas = CSchemaSet::LoadBuffer(R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
      <xs:element name="root"><xs:complexType><xs:sequence>
        <xs:element name="e" type="xs:int" default="1"/>
        <xs:element name="e" type="xs:int" default="2"/>
      </xs:sequence></xs:complexType></xs:element></xs:schema>)");
    EXPECT_EQ(CompareInfosets("<root><e/><e/></root>", "<root><e>1</e><e>2</e></root>", schemas.get()), "");
    EXPECT_EQ(CompareInfosets("<root><e/><e/></root>", "<root><e>1</e><e>3</e></root>", schemas.get()),
              "Text differs at [/root/e[2]]: [1] against [3]");
}

TEST(InfosetCompareAllGroup, ChildrenOfAnAllGroupMatchInAnyOrder) {
    const auto schemas = CSchemaSet::LoadBuffer(R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
      <xs:element name="root"><xs:complexType><xs:all>
        <xs:element name="a" type="xs:int" minOccurs="0"/>
        <xs:element name="b" type="xs:string" minOccurs="0"/>
        <xs:element name="c" type="xs:decimal" minOccurs="0"/>
      </xs:all></xs:complexType></xs:element>
      <xs:element name="seq"><xs:complexType><xs:sequence>
        <xs:element name="a" type="xs:int" minOccurs="0"/>
        <xs:element name="b" type="xs:string" minOccurs="0"/>
      </xs:sequence></xs:complexType></xs:element></xs:schema>)");
    // Matched by name, then compared value by value in the original's order.
    EXPECT_EQ(CompareInfosets("<root><c>1.0</c><b>x</b><a>01</a></root>", "<root><a>1</a><b>x</b><c>1</c></root>",
                              schemas.get()),
              "");
    EXPECT_EQ(CompareInfosets("<root><c>1</c><a>1</a></root>", "<root><a>2</a><c>1</c></root>", schemas.get()),
              "Text differs at [/root/a]: [1] against [2]");
    EXPECT_EQ(CompareInfosets("<root><c>1</c><a>1</a></root>", "<root><a>1</a></root>", schemas.get()),
              "Missing element [c] at [/root/c]");
    EXPECT_EQ(CompareInfosets("<root><b>x</b></root>", "<root><a>1</a><b>x</b></root>", schemas.get()),
              "Extra element [a] at [/root/a]");
    // A sequence keeps its order.
    EXPECT_EQ(CompareInfosets("<seq><b>x</b><a>1</a></seq>", "<seq><a>1</a><b>x</b></seq>", schemas.get()),
              "Element names differ at [/seq/b]: [b] against [a]");
}

TEST_F(InfosetCompare, MissingExtraAndRenamedElements) {
    const std::string two = Doc("", "<t:decimal>1</t:decimal><t:decimal>2</t:decimal>");
    const std::string one = Doc("", "<t:decimal>1</t:decimal>");
    EXPECT_EQ(Compare(two, one), "Missing element [{urn:t}decimal] at [/root/decimal[2]]");
    EXPECT_EQ(Compare(one, two), "Extra element [{urn:t}decimal] at [/root/decimal[2]]");
    EXPECT_EQ(Compare(one, Doc("", "<t:integer>1</t:integer>")),
              "Element names differ at [/root/decimal]: [{urn:t}decimal] against [{urn:t}integer]");
    EXPECT_EQ(Compare("<a xmlns=\"urn:x\"/>", "<a/>"), "Element names differ at [/a]: [{urn:x}a] against [a]");
}

TEST_F(InfosetCompare, XsiTypeSelectsTheTypeOfTheContent) {
    const std::string derived = Doc("", "<t:item xsi:type=\"t:Derived\"><t:a>x</t:a><t:b>01</t:b></t:item>");
    // The b of the derived type is an int: "01" and "1" are one value.
    EXPECT_EQ(Compare(derived, Doc("", "<t:item xmlns:u=\"urn:t\" xsi:type=\"u:Derived\"><t:a>x</t:a><t:b>1</t:b></t:item>")), "");
    EXPECT_EQ(Compare(derived, Doc("", "<t:item><t:a>x</t:a><t:b>01</t:b></t:item>")),
              "Types differ at [/root/item]: [{urn:t}Derived] against [{urn:t}Base]");
    // Naming the declared type is the same as naming none.
    EXPECT_EQ(Compare(Doc("", "<t:item/>"), Doc("", "<t:item xsi:type=\"t:Base\"/>")), "");
}

TEST_F(InfosetCompare, QNamesCompareByTheirNamespaceNotTheirPrefix) {
    const std::string a = "<t:root xmlns:t=\"urn:t\" xmlns:p=\"urn:p\"><t:qname>p:x</t:qname></t:root>";
    EXPECT_EQ(Compare(a, "<t:root xmlns:t=\"urn:t\" xmlns:p=\"urn:other\"><t:qname>p:x</t:qname></t:root>"),
              "Text differs at [/root/qname]: [p:x] against [p:x]");
    // A prefix the copy no longer declares.
    EXPECT_EQ(Compare(a, "<t:root xmlns:t=\"urn:t\"><t:qname>p:x</t:qname></t:root>"),
              "Text differs at [/root/qname]: [p:x] against [p:x]");
    EXPECT_EQ(Compare(Doc("", "<t:item xsi:type=\"t:Base\"/>"),
                      "<t:root xmlns:t=\"urn:t\"><t:item xmlns:i=\"http://www.w3.org/2001/XMLSchema-instance\" "
                      "i:type=\"xs:Base\"/></t:root>"),
              "Types differ at [/root/item]: [{urn:t}Base] against [xs:Base]");
}

TEST_F(InfosetCompare, WithoutSchemaValuesCompareExactly) {
    EXPECT_EQ(CompareInfosets(Doc("", "<t:decimal>1.0</t:decimal>"), Doc("", "<t:decimal>1</t:decimal>"), nullptr),
              "Text differs at [/root/decimal]: [1.0] against [1]");
    EXPECT_EQ(CompareInfosets("<a>\n  <b>x</b>\n</a>", "<a><b>x</b></a>", nullptr), "");
}

TEST_F(InfosetCompare, TextBetweenElementsKeepsItsPlace) {
    EXPECT_EQ(CompareInfosets("<p>Hello <b>x</b> world</p>", "<p>Hello  world<b>x</b></p>", nullptr),
              "Text differs at [/p]: [Hello ] against [Hello  world]");
    EXPECT_EQ(CompareInfosets("<p><b>x</b>tail</p>", "<p><b>x</b></p>", nullptr), "Text differs at [/p]: [tail] against []");
}

TEST_F(InfosetCompare, UnparsableDocumentsAreNamed) {
    EXPECT_EQ(Compare("<a>", "<a/>"), "The original does not parse: no element found at line 1");
    EXPECT_EQ(Compare("<a/>", "<a></b>"), "The copy does not parse: mismatched tag at line 1");
}

TEST_F(InfosetCompare, DeepDocumentsCompareWithoutRecursion) {
    const int depth = 200000;
    std::string deep;
    for (int i = 0; i < depth; ++i) deep += "<e>";
    for (int i = 0; i < depth; ++i) deep += "</e>";
    EXPECT_EQ(CompareInfosets(deep, deep, nullptr), "");
}

// One simple value written two ways: same value or not, by type.
struct ValueCase {
    const char* name;
    const char* element;
    const char* original;
    const char* copy;
    bool same;
};

class InfosetValues : public InfosetCompare, public ::testing::WithParamInterface<ValueCase> {};

TEST_P(InfosetValues, ComparedInTheValueSpaceOfTheType) {
    const ValueCase& c = GetParam();
    const std::string tag = std::string("t:") + c.element;
    const std::string a = Doc("", "<" + tag + ">" + c.original + "</" + tag + ">");
    const std::string b = Doc("", "<" + tag + ">" + c.copy + "</" + tag + ">");
    const std::string expected =
        c.same ? "" : "Text differs at [/root/" + std::string(c.element) + "]: [" + c.original + "] against [" + c.copy + "]";
    EXPECT_EQ(Compare(a, b), expected);
}

const ValueCase kValueCases[] = {
    {"DecimalTrailingZero", "decimal", "1.0", "1", true},
    {"DecimalSignsAndZeros", "decimal", "+01.50", "1.5", true},
    {"DecimalNegativeZero", "decimal", "-0.0", "0", true},
    {"DecimalOtherValue", "decimal", "1.5", "1.05", false},
    {"IntegerPlusSign", "integer", " +005 ", "5", true},
    {"IntegerOtherValue", "integer", "5", "6", false},
    {"BooleanTrueAndOne", "boolean", "true", "1", true},
    {"BooleanFalseAndZero", "boolean", "false", "0", true},
    {"BooleanTrueAndZero", "boolean", "true", "0", false},
    {"FloatExponent", "float", "1e0", "1.0", true},
    {"FloatBelowItsPrecision", "float", "0.1", "0.100000001", true},
    {"DoubleAboveItsPrecision", "double", "0.1", "0.100000001", false},
    {"DoubleNaN", "double", "NaN", " NaN", true},
    {"StringKeepsWhitespace", "string", " a b", "a b", false},
    {"TokenCollapses", "token", "  a \n  b ", "a b", true},
    {"NormalizedStringReplacesTabs", "normalized", "a\tb", "a b", true},
    {"NormalizedStringKeepsRuns", "normalized", "a  b", "a b", false},
    {"DateTimeZeroOffsetIsZ", "dateTime", "2001-10-26T21:32:52+00:00", "2001-10-26T21:32:52Z", true},
    {"DateTimeOtherOffset", "dateTime", "2001-10-26T23:32:52+02:00", "2001-10-26T21:32:52Z", true},
    {"DateTimeFractionZeros", "dateTime", "2001-10-26T21:32:52.500", "2001-10-26T21:32:52.5", true},
    {"DateTimeZoneAgainstNone", "dateTime", "2001-10-26T21:32:52", "2001-10-26T21:32:52Z", false},
    {"TimeOffsetAcrossMidnight", "time", "20:00:00-05:00", "01:00:00Z", true},
    {"DateOtherDay", "date", "2001-10-26", "2001-10-27", false},
    {"DurationYearsInMonths", "duration", "P1Y", "P12M", true},
    {"DurationHourInMinutes", "duration", "PT1H", "PT60M", true},
    {"DurationMonthIsNotDays", "duration", "P1M", "P30D", false},
    {"HexBinaryCase", "hex", "0fb7", "0FB7", true},
    {"HexBinaryOtherBytes", "hex", "0fb7", "0fb8", false},
    {"Base64Whitespace", "base64", "AQID\nBA==", "AQIDBA==", true},
    {"QNameOtherPrefixSameNamespace", "qname", "p:x", "q:x", true},
    {"QNameOtherNamespace", "qname", "p:x", "r:x", false},
    {"ListItemsByItemType", "list", "01  2\n3", "1 2 3", true},
    {"ListOtherLength", "list", "1 2", "1 2 3", false},
};

std::string ValueCaseName(const ::testing::TestParamInfo<ValueCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Types, InfosetValues, ::testing::ValuesIn(kValueCases), ValueCaseName);

}  // namespace
