// The schema checks of simple values that the runtime's conversions and facets
// leave out: lexical spaces, patterns, value-space enumerations and bounds,
// digits, lengths in characters, lists, unions and fixed values.
#include <thread>

#include "qmxml/types/variant.h"
#include "schema/value_rule.h"
#include "schema_test_support.h"

namespace schema_test {
namespace {

using QmXmlLib10::CDecimal;
using QmXmlLib10::CQmException;
using QmXmlLib10::CQmValidationException;
using QmXmlLib10::CValueRule;
using QmXmlLib10::CWhitespaceUtils;
using QmXmlLib10::ItemType;
using QmXmlLib10::QmVariant;

// The simple type T declared by body in namespace urn:t, kept with its set.
struct Loaded {
    std::unique_ptr<CSchemaSet> set;
    const CSimpleType* type = nullptr;
};

Loaded LoadType(const std::string& body, const std::string& name = "T") {
    Loaded l;
    l.set = CSchemaSet::LoadBuffer(Xsd(body));
    l.type = l.set->FindSimpleType({"urn:t", name});
    return l;
}

// What the binding does with a document text: the type's whitespace rule,
// the runtime's conversion to the bound item type, then the rule. Returns ""
// when the value passes, the rule's message when it fails, and "conversion:"
// with the runtime's message when the runtime refuses the text first.
std::string ReadVerdict(const CSimpleType* type, const std::string& text, const CValueConstraint* fixed = nullptr) {
    const std::string normalized = CWhitespaceUtils::ApplyRule(BindingWhitespaceRule(type), text);
    QmVariant value;
    try {
        value.FromString(normalized, BindingItemType(type));
    } catch (const CQmException& e) {
        return "conversion: " + e.GetMessage();
    }
    const auto rule = MakeValueRule(type, fixed);
    if (!rule) return std::string();
    try {
        rule->Check("m", value, BindingItemType(type), &normalized);
    } catch (const CQmValidationException& e) {
        return e.GetMessage();
    }
    return std::string();
}

// The same for a value the application set: no text, the canonical form.
std::string SetVerdict(const CSimpleType* type, const QmVariant& value) {
    const auto rule = MakeValueRule(type, nullptr);
    if (!rule) return std::string();
    try {
        rule->Check("m", value, BindingItemType(type), nullptr);
    } catch (const CQmValidationException& e) {
        return e.GetMessage();
    }
    return std::string();
}

std::string Refused(const std::string& value) { return "Invalid Value for m [" + value + "]"; }

std::string Restriction(const std::string& base, const std::string& facets) {
    return "<xs:simpleType name='T'><xs:restriction base='" + base + "'>" + facets + "</xs:restriction></xs:simpleType>";
}

// ---------------------------------------------------------------------------
// Each facet at its boundary and just beyond it.

struct FacetCase {
    const char* name;
    const char* base;
    const char* facets;
    const char* inside;
    const char* beyond;
};

const FacetCase kFacetCases[] = {
    {"DecimalMinInclusive", "xs:decimal", "<xs:minInclusive value='1.5'/>", "1.50", "1.49"},
    {"DecimalMaxExclusive", "xs:decimal", "<xs:maxExclusive value='10'/>", "9.999", "10.0"},
    {"DecimalNegativeMinInclusive", "xs:decimal", "<xs:minInclusive value='-1.5'/>", "-01.50", "-1.51"},
    {"DecimalFractionBelowOne", "xs:decimal", "<xs:maxInclusive value='0.05'/>", "0.0500", "0.051"},
    {"IntegerBoundBeyond18Digits", "xs:integer", "<xs:maxExclusive value='100000000000000000000'/>",
     "99999999999999999999", "100000000000000000000"},
    {"IntegerBoundOf18Digits", "xs:integer", "<xs:minInclusive value='-999999999999999999'/>",
     "-999999999999999999", "-1000000000000000000"},
    {"IntMaxInclusive", "xs:int", "<xs:maxInclusive value='100'/>", "100", "101"},
    {"IntMinExclusive", "xs:int", "<xs:minExclusive value='-5'/>", "-4", "-5"},
    {"FloatMinExclusive", "xs:float", "<xs:minExclusive value='0'/>", "1E-3", "-0"},
    {"DoubleMaxInclusive", "xs:double", "<xs:maxInclusive value='1e3'/>", "1000.0", "1000.0000001"},
    {"DateTimeMaxInclusiveAcrossZones", "xs:dateTime", "<xs:maxInclusive value='2020-01-01T00:00:00Z'/>",
     "2020-01-01T01:00:00+01:00", "2020-01-01T00:00:01Z"},
    {"DateMinInclusive", "xs:date", "<xs:minInclusive value='2000-02-29'/>", "2000-02-29", "2000-02-28"},
    {"TimeMaxExclusive", "xs:time", "<xs:maxExclusive value='12:00:00'/>", "11:59:59.999", "12:00:00"},
    {"GYearMinInclusiveNegative", "xs:gYear", "<xs:minInclusive value='-0005'/>", "-0005", "-0006"},
    {"GMonthDayMaxInclusive", "xs:gMonthDay", "<xs:maxInclusive value='--06-30'/>", "--06-30", "--07-01"},
    {"DurationMaxInclusive", "xs:duration", "<xs:maxInclusive value='P1D'/>", "PT24H", "PT24H0.001S"},
    {"StringLengthInCharacters", "xs:string", "<xs:length value='3'/>", "\xC3\xA4\xC3\xB6\xC3\xBC", "abcd"},
    {"StringMaxLengthInCharacters", "xs:string", "<xs:maxLength value='2'/>", "\xE6\x97\xA5\xE6\x9C\xAC",
     "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"},
    {"StringMinLength", "xs:token", "<xs:minLength value='2'/>", "\xF0\x9F\x98\x80x", "\xF0\x9F\x98\x80"},
    {"HexBinaryLengthInOctets", "xs:hexBinary", "<xs:length value='2'/>", "0aFF", "0AFF00"},
    {"Base64MinLengthInOctets", "xs:base64Binary", "<xs:minLength value='2'/>", "AAA=", "AA=="},
    {"TotalDigits", "xs:decimal", "<xs:totalDigits value='3'/>", "001.2300", "0.0123"},
    {"FractionDigits", "xs:decimal", "<xs:fractionDigits value='2'/>", "1.230", "1.235"},
    {"NonNegativeIntegerLowerBound", "xs:nonNegativeInteger", "", "0", "-1"},
    {"PositiveIntegerLowerBound", "xs:positiveInteger", "", "1", "-0"},
    {"UnsignedIntRefusesTheWrappedMinusOne", "xs:unsignedInt", "", "-0", "-1"},
    {"UnsignedLongRefusesNegatives", "xs:unsignedLong", "", "18446744073709551615", "-2"},
};

// Failures print the case by its name.
void PrintTo(const FacetCase& c, std::ostream* os) { *os << c.name; }

class FacetBoundary : public ::testing::TestWithParam<FacetCase> {};

TEST_P(FacetBoundary, AcceptsTheBoundaryAndRefusesJustBeyond) {
    const FacetCase& c = GetParam();
    const Loaded l = LoadType(Restriction(c.base, c.facets));
    ASSERT_NE(l.type, nullptr);
    EXPECT_EQ(ReadVerdict(l.type, c.inside), "");
    const std::string beyond =
        CWhitespaceUtils::ApplyRule(BindingWhitespaceRule(l.type), c.beyond);
    EXPECT_EQ(ReadVerdict(l.type, c.beyond), Refused(beyond));
}

std::string FacetName(const ::testing::TestParamInfo<FacetCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(ValueRule, FacetBoundary, ::testing::ValuesIn(kFacetCases), FacetName);

// ---------------------------------------------------------------------------
// Lexical spaces: where the runtime's conversion takes a text XML Schema does
// not, the rule refuses it; the forms XML Schema allows pass.

struct LexicalCase {
    const char* name;
    const char* type;  // a built-in type
    const char* text;
    bool valid;
};

const LexicalCase kLexicalCases[] = {
    {"IntEmpty", "int", "", false},
    {"IntPlusSign", "int", "+5", true},
    {"IntMinusZero", "int", "-0", true},
    {"LongTrailingLetters", "long", "12abc", false},
    {"LongSignAlone", "long", "+", false},
    {"IntegerWithPoint", "integer", "1.0", false},
    {"IntegerExponent", "integer", "1e2", false},
    {"ShortLeadingZeros", "short", "0007", true},
    {"DecimalExponent", "decimal", "1.5E-1", false},
    {"DecimalLeadingPoint", "decimal", ".5", true},
    {"DecimalTrailingPoint", "decimal", "5.", true},
    {"FloatEmpty", "float", "", false},
    {"FloatWindowsNaN", "float", "1.#QNAN", false},
    {"DoubleMinusNaN", "double", "-NAN", false},
    {"DoubleNaN", "double", "NaN", true},
    {"FloatNegativeInfinity", "float", "-INF", true},
    {"DoubleExponentSigned", "double", "+1.5E+3", true},
    {"BooleanUpperCase", "boolean", "TRUE", false},
    {"BooleanOne", "boolean", "1", true},
    {"DateTimeZoneBeyond14", "dateTime", "2000-01-01T00:00:00+14:30", false},
    {"DateTimeZone14", "dateTime", "2000-01-01T00:00:00-14:00", true},
    {"TimeZoneBeyond14", "time", "12:00:00+15:00", false},
    {"DateZoneMinutes", "date", "2000-01-01+13:59", true},
    {"GYearWithZone", "gYear", "2000Z", true},
    {"Base64PaddingAlone", "base64Binary", "A===", false},
    {"Base64UnusedBitsSet", "base64Binary", "AR==", false},
    {"Base64NotAlphabet", "base64Binary", "!!!!", false},
    {"Base64FiveCharacters", "base64Binary", "AAAAA", false},
    {"Base64Spaced", "base64Binary", "AQ I=", true},
    {"Base64Padded", "base64Binary", "AQ==", true},
    {"NameDigitFirst", "Name", "1a", false},
    {"NameWithColon", "Name", "a:b", true},
    {"NCNameWithColon", "NCName", "a:b", false},
    {"NCNameNonAscii", "NCName", "\xC3\xA9t\xC3\xA9", true},
    {"IDWithColon", "ID", "x:y", false},
    {"NMTOKENWithSpace", "NMTOKEN", "a b", false},
    {"NMTOKENDigits", "NMTOKEN", "123", true},
    {"LanguageTrailingHyphen", "language", "en-", false},
    {"LanguageSubtags", "language", "en-GB-oxendict", true},
    {"QNameTwoColons", "QName", "a:b:c", false},
    {"QNamePrefixed", "QName", "p:local", true},
    {"NMTOKENSEmpty", "NMTOKENS", "", false},
    {"IDREFSItems", "IDREFS", " a  b ", true},
};

void PrintTo(const LexicalCase& c, std::ostream* os) { *os << c.name; }

class LexicalSpace : public ::testing::TestWithParam<LexicalCase> {};

TEST_P(LexicalSpace, FollowsXmlSchemaNotTheConversion) {
    const LexicalCase& c = GetParam();
    auto set = CSchemaSet::LoadBuffer(Xsd(""));
    const CSimpleType* type = set->GetBuiltInType(c.type);
    ASSERT_NE(type, nullptr);
    const std::string normalized = CWhitespaceUtils::ApplyRule(BindingWhitespaceRule(type), c.text);
    EXPECT_EQ(ReadVerdict(type, c.text), c.valid ? std::string() : Refused(normalized));
}

std::string LexicalName(const ::testing::TestParamInfo<LexicalCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(ValueRule, LexicalSpace, ::testing::ValuesIn(kLexicalCases), LexicalName);

// ---------------------------------------------------------------------------
// Enumerations compare in the value space of the type.

struct EnumerationCase {
    const char* name;
    const char* base;
    std::vector<const char*> values;
    std::vector<const char*> accepted;
    std::vector<const char*> refused;
};

const EnumerationCase kEnumerationCases[] = {
    {"Decimal", "xs:decimal", {"1", "2.50"}, {"1.0", "+1", "01.000", "2.5"}, {"2.51", "-1"}},
    {"DecimalZero", "xs:decimal", {"0"}, {"-0.00", "+0", ".0", "000"}, {"0.001", "-0.001"}},
    {"Float", "xs:float", {"1", "NaN"}, {"1e0", "1.0E0", "NaN", "100E-2"}, {"2", "INF"}},
    {"DateTimeWithZones", "xs:dateTime", {"2020-01-01T12:00:00Z"}, {"2020-01-01T13:00:00+01:00", "2020-01-01T07:00:00-05:00"},
     {"2020-01-01T12:00:00", "2020-01-01T12:00:00+01:00"}},
    {"Boolean", "xs:boolean", {"true"}, {"1", "true"}, {"0", "false"}},
    {"IntegerSubtype", "xs:unsignedByte", {"7"}, {"007", "+7"}, {"8"}},
    {"DurationByValue", "xs:duration", {"PT1H"}, {"PT60M", "PT3600S"}, {"PT61M"}},
    {"QNameByText", "xs:QName", {"p:a"}, {"p:a"}, {"q:a", "a"}},
    {"TokenAfterCollapse", "xs:token", {"a b"}, {"  a \t b "}, {"ab"}},
    {"HexBinaryByOctets", "xs:hexBinary", {"0aff"}, {"0AFF", "0aFf"}, {"0AFE"}},
};

void PrintTo(const EnumerationCase& c, std::ostream* os) { *os << c.name; }

class Enumeration : public ::testing::TestWithParam<EnumerationCase> {};

TEST_P(Enumeration, MatchesEqualValuesWhateverTheirLexicalForm) {
    const EnumerationCase& c = GetParam();
    std::string facets;
    for (const char* v : c.values) facets += std::string("<xs:enumeration value='") + v + "'/>";
    const Loaded l = LoadType(Restriction(c.base, facets));
    ASSERT_NE(l.type, nullptr);
    for (const char* text : c.accepted) EXPECT_EQ(ReadVerdict(l.type, text), "") << text;
    for (const char* text : c.refused)
        EXPECT_EQ(ReadVerdict(l.type, text),
                  Refused(CWhitespaceUtils::ApplyRule(BindingWhitespaceRule(l.type), text)))
            << text;
}

std::string EnumerationName(const ::testing::TestParamInfo<EnumerationCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(ValueRule, Enumeration, ::testing::ValuesIn(kEnumerationCases), EnumerationName);

// ---------------------------------------------------------------------------
// Patterns.

TEST(ValueRulePatterns, ApplyToTheLexicalFormOfNonStringTypes) {
    const Loaded l = LoadType(Restriction("xs:decimal", "<xs:pattern value='\\d+\\.\\d{2}'/>"));
    EXPECT_EQ(ReadVerdict(l.type, "1.50"), "");
    EXPECT_EQ(ReadVerdict(l.type, "1.5"), Refused("1.5"));
    const Loaded date = LoadType(Restriction("xs:date", "<xs:pattern value='.*Z'/>"));
    EXPECT_EQ(ReadVerdict(date.type, "2020-05-01Z"), "");
    EXPECT_EQ(ReadVerdict(date.type, "2020-05-01+00:00"), Refused("2020-05-01+00:00"));
    const Loaded flag = LoadType(Restriction("xs:boolean", "<xs:pattern value='[01]'/>"));
    EXPECT_EQ(ReadVerdict(flag.type, "1"), "");
    EXPECT_EQ(ReadVerdict(flag.type, "true"), Refused("true"));
}

TEST(ValueRulePatterns, ACarriageReturnFromACharacterReferenceReachesThePattern) {
    const Loaded l = LoadType(Restriction("xs:string", "<xs:pattern value='a\\r\\nb'/>"));
    EXPECT_EQ(ReadVerdict(l.type, "a\r\nb"), "");
    EXPECT_EQ(ReadVerdict(l.type, "a\nb"), Refused("a\nb"));
}

TEST(ValueRulePatterns, PatternsOfOneStepAreAlternativesAndStepsMustAllMatch) {
    const Loaded l = LoadType(
        "<xs:simpleType name='B'><xs:restriction base='xs:string'><xs:pattern value='[a-z]+'/></xs:restriction></xs:simpleType>"
        "<xs:simpleType name='T'><xs:restriction base='B'><xs:pattern value='a.*'/><xs:pattern value='b.*'/>"
        "</xs:restriction></xs:simpleType>");
    ASSERT_EQ(l.type->facets.patterns.size(), 2u);
    EXPECT_EQ(ReadVerdict(l.type, "abc"), "");
    EXPECT_EQ(ReadVerdict(l.type, "bcd"), "");
    EXPECT_EQ(ReadVerdict(l.type, "cde"), Refused("cde"));  // fails the second step
    EXPECT_EQ(ReadVerdict(l.type, "a1"), Refused("a1"));    // fails the first step
}

// ---------------------------------------------------------------------------
// Lists and unions.

const char* const kListSchema =
    "<xs:simpleType name='Small'><xs:restriction base='xs:int'><xs:maxInclusive value='10'/></xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Smalls'><xs:list itemType='Small'/></xs:simpleType>"
    "<xs:simpleType name='T'><xs:restriction base='Smalls'><xs:length value='3'/></xs:restriction></xs:simpleType>";

TEST(ValueRuleLists, EachItemMeetsTheItemTypeAndTheListItsLength) {
    const Loaded l = LoadType(kListSchema);
    EXPECT_EQ(BindingItemType(l.type), QmXmlLib10::ItemType_string);
    EXPECT_EQ(ReadVerdict(l.type, "1 2 3"), "");
    EXPECT_EQ(ReadVerdict(l.type, " 1\t 2\n3 "), "");
    EXPECT_EQ(ReadVerdict(l.type, "1 2 11"), Refused("1 2 11"));
    EXPECT_EQ(ReadVerdict(l.type, "1 +2 x"), Refused("1 +2 x"));
    EXPECT_EQ(ReadVerdict(l.type, "1 2"), Refused("1 2"));
    EXPECT_EQ(ReadVerdict(l.type, "1 2 3 4"), Refused("1 2 3 4"));
}

TEST(ValueRuleLists, EnumerationComparesItemByItemInTheValueSpace) {
    const Loaded l = LoadType(
        "<xs:simpleType name='L'><xs:list itemType='xs:decimal'/></xs:simpleType>"
        "<xs:simpleType name='T'><xs:restriction base='L'><xs:enumeration value='1 2.5'/></xs:restriction></xs:simpleType>");
    EXPECT_EQ(ReadVerdict(l.type, "1.0 2.50"), "");
    EXPECT_EQ(ReadVerdict(l.type, "1 2.5 3"), Refused("1 2.5 3"));
    EXPECT_EQ(ReadVerdict(l.type, "2.5 1"), Refused("2.5 1"));
}

const char* const kUnionSchema =
    "<xs:simpleType name='Dates'><xs:list itemType='xs:date'/></xs:simpleType>"
    "<xs:simpleType name='Colour'><xs:restriction base='xs:token'><xs:enumeration value='red'/>"
    "<xs:enumeration value='green'/></xs:restriction></xs:simpleType>"
    "<xs:simpleType name='T'><xs:union memberTypes='xs:int Dates Colour'/></xs:simpleType>";

TEST(ValueRuleUnions, AValueIsValidWhenAMemberTypeTakesIt) {
    const Loaded l = LoadType(kUnionSchema);
    EXPECT_EQ(BindingItemType(l.type), QmXmlLib10::ItemType_string);
    EXPECT_EQ(ReadVerdict(l.type, "-42"), "");
    EXPECT_EQ(ReadVerdict(l.type, "2020-01-01 2020-02-29"), "");
    EXPECT_EQ(ReadVerdict(l.type, "green"), "");
    EXPECT_EQ(ReadVerdict(l.type, "blue"), Refused("blue"));
    EXPECT_EQ(ReadVerdict(l.type, "2021-02-29"), Refused("2021-02-29"));
    EXPECT_EQ(ReadVerdict(l.type, "99999999999"), Refused("99999999999"));  // beyond int, no date, no colour
}

TEST(ValueRuleUnions, TheFirstMemberThatTakesTheValueDecidesItsValue) {
    const Loaded l = LoadType(
        "<xs:simpleType name='U'><xs:union memberTypes='xs:int xs:token'/></xs:simpleType>"
        "<xs:simpleType name='T'><xs:restriction base='U'><xs:enumeration value='1'/><xs:enumeration value='x'/>"
        "</xs:restriction></xs:simpleType>");
    EXPECT_EQ(ReadVerdict(l.type, "01"), "");  // the int 1
    EXPECT_EQ(ReadVerdict(l.type, "x"), "");
    EXPECT_EQ(ReadVerdict(l.type, "2"), Refused("2"));
    EXPECT_EQ(ReadVerdict(l.type, "1.0"), Refused("1.0"));  // a token, and not the token "1"
}

TEST(ValueRuleUnions, EachMemberNormalizesTheTextItsOwnWay) {
    const Loaded l = LoadType(
        "<xs:simpleType name='T'><xs:union memberTypes='xs:int xs:normalizedString'/></xs:simpleType>"
        "<xs:simpleType name='C'><xs:union memberTypes='xs:int xs:date'/></xs:simpleType>");
    // The union has no whitespace rule of its own: the text keeps what its
    // weakest member would keep, and the int member still collapses it.
    EXPECT_EQ(BindingWhitespaceRule(l.type), CWhitespaceUtils::WhitespaceRule_Replace);
    EXPECT_EQ(BindingWhitespaceRule(l.set->FindSimpleType({"urn:t", "C"})), CWhitespaceUtils::WhitespaceRule_Collapse);
    EXPECT_EQ(ReadVerdict(l.type, " 12\n"), "");
    CValueConstraint fixed;
    fixed.kind = CValueConstraint::Fixed;
    fixed.value = "ab\n";
    EXPECT_EQ(ReadVerdict(l.type, "ab\t", &fixed), "");
    EXPECT_EQ(ReadVerdict(l.type, "ab", &fixed), "Invalid Value for m [ab], the fixed value is [ab ]");
    fixed.value = "7";
    EXPECT_EQ(ReadVerdict(l.type, " 007 ", &fixed), "");  // the int 7
}

// Unions of unions, n levels around xs:int; the last one is T.
std::string NestedUnions(int levels) {
    std::string body = "<xs:simpleType name='U0'><xs:union memberTypes='xs:int'/></xs:simpleType>";
    for (int i = 1; i < levels; ++i)
        body += "<xs:simpleType name='" + (i + 1 == levels ? std::string("T") : "U" + std::to_string(i)) +
                "'><xs:union memberTypes='U" + std::to_string(i - 1) + "'/></xs:simpleType>";
    return body;
}

TEST(ValueRuleUnions, NestingIsFollowedToThirtyTwoLevelsAndNoFurther) {
    const Loaded shallow = LoadType(NestedUnions(32));
    EXPECT_EQ(ReadVerdict(shallow.type, "5"), "");
    EXPECT_EQ(ReadVerdict(shallow.type, "x"), Refused("x"));
    const Loaded deep = LoadType(NestedUnions(200));
    EXPECT_EQ(ReadVerdict(deep.type, "5"), Refused("5"));
}

// ---------------------------------------------------------------------------
// Fixed values.

TEST(ValueRuleFixed, EqualInTheValueSpaceIsEnough) {
    auto set = CSchemaSet::LoadBuffer(Xsd(""));
    CValueConstraint fixed;
    fixed.kind = CValueConstraint::Fixed;
    fixed.value = "1.0";
    const CSimpleType* decimal = set->GetBuiltInType("decimal");
    EXPECT_EQ(ReadVerdict(decimal, "1", &fixed), "");
    EXPECT_EQ(ReadVerdict(decimal, "+01.00", &fixed), "");
    EXPECT_EQ(ReadVerdict(decimal, "1.01", &fixed), "Invalid Value for m [1.01], the fixed value is [1.0]");
    fixed.value = "2020-01-01T12:00:00Z";
    const CSimpleType* dateTime = set->GetBuiltInType("dateTime");
    EXPECT_EQ(ReadVerdict(dateTime, "2020-01-01T14:00:00+02:00", &fixed), "");
    EXPECT_EQ(ReadVerdict(dateTime, "2020-01-01T12:00:00", &fixed),
              "Invalid Value for m [2020-01-01T12:00:00], the fixed value is [2020-01-01T12:00:00Z]");
}

TEST(ValueRuleFixed, StringsCompareAfterTheirWhitespaceRule) {
    auto set = CSchemaSet::LoadBuffer(Xsd(""));
    CValueConstraint fixed;
    fixed.kind = CValueConstraint::Fixed;
    fixed.value = " a  b ";
    EXPECT_EQ(ReadVerdict(set->GetBuiltInType("token"), "a \t b", &fixed), "");
    EXPECT_EQ(ReadVerdict(set->GetBuiltInType("string"), " a  b ", &fixed), "");
    EXPECT_EQ(ReadVerdict(set->GetBuiltInType("string"), "a b", &fixed),
              "Invalid Value for m [a b], the fixed value is [ a  b ]");
    // An invalid value is reported as invalid, not as different.
    fixed.value = "5";
    EXPECT_EQ(ReadVerdict(set->GetBuiltInType("int"), "x5", &fixed), "conversion: The value [x5] can not be converted to a i4");
    EXPECT_EQ(ReadVerdict(set->GetBuiltInType("long"), "5x", &fixed), Refused("5x"));
    // A default value is no constraint.
    fixed.kind = CValueConstraint::Default;
    EXPECT_EQ(MakeValueRule(set->GetBuiltInType("string"), &fixed), nullptr);
}

// ---------------------------------------------------------------------------
// Values the application set: checked by their canonical form.

TEST(ValueRuleSetValues, CheckTheCanonicalFormAndPrintIt) {
    const Loaded dec = LoadType(Restriction("xs:decimal", "<xs:maxInclusive value='1'/>"));
    QmVariant v;
    v.SetDecimal(CDecimal("1.50"));
    EXPECT_EQ(SetVerdict(dec.type, v), Refused("1.5"));
    v.SetDecimal(CDecimal("0.999"));
    EXPECT_EQ(SetVerdict(dec.type, v), "");

    // A negative gYear prints as the year, not as its 16-bit pattern.
    const Loaded year = LoadType(Restriction("xs:gYear", "<xs:minInclusive value='-0005'/>"));
    v.SetYear(static_cast<unsigned short>(-1));
    EXPECT_EQ(SetVerdict(year.type, v), "");
    v.SetYear(static_cast<unsigned short>(-6));
    EXPECT_EQ(SetVerdict(year.type, v), Refused("-0006"));

    // The float itself is compared, not its seven-digit print.
    const Loaded f = LoadType(Restriction("xs:float", "<xs:enumeration value='0.1'/><xs:enumeration value='16777217'/>"));
    v.SetR4(0.1f);
    EXPECT_EQ(SetVerdict(f.type, v), "");
    v.SetR4(16777216.0f);  // 16777217 rounds to this float
    EXPECT_EQ(SetVerdict(f.type, v), "");
    v.SetR4(0.2f);
    EXPECT_EQ(SetVerdict(f.type, v), Refused("0.2"));

    const Loaded chars = LoadType(Restriction("xs:string", "<xs:maxLength value='2'/>"));
    v.SetString("\xC3\xA4\xC3\xB6");
    EXPECT_EQ(SetVerdict(chars.type, v), "");
    v.SetString("\xC3\xA4\xC3\xB6x");
    EXPECT_EQ(SetVerdict(chars.type, v), Refused("\xC3\xA4\xC3\xB6x"));

    // Whitespace as the document written from the value will read back.
    const Loaded token = LoadType(Restriction("xs:token", "<xs:enumeration value='a b'/>"));
    v.SetString(" a \t b ");
    EXPECT_EQ(SetVerdict(token.type, v), "");
    v.SetString("a\tc");
    EXPECT_EQ(SetVerdict(token.type, v), Refused("a c"));

    // A zone the runtime holds but XML Schema does not allow.
    auto set = CSchemaSet::LoadBuffer(Xsd(""));
    v.SetDateTime(QmXmlLib10::CDateTime("2020-01-01T00:00:00+15:00"));
    EXPECT_EQ(SetVerdict(set->GetBuiltInType("dateTime"), v), Refused("2020-01-01T00:00:00+15:00"));
}

TEST(ValueRuleSetValues, NilValuesAreNotChecked) {
    const Loaded l = LoadType(Restriction("xs:int", "<xs:maxInclusive value='1'/>"));
    QmVariant v;
    v.SetI4(5);
    v.SetNil();
    EXPECT_EQ(SetVerdict(l.type, v), "");
}

// ---------------------------------------------------------------------------
// The binding: item types, whitespace rules, facets, and when no rule is needed.

TEST(ValueRuleBinding, ItemTypesWhitespaceAndFacets) {
    const Loaded l = LoadType(Restriction("xs:short", "<xs:maxInclusive value='9'/>") +
                              "<xs:simpleType name='L'><xs:list itemType='xs:int'/></xs:simpleType>");
    EXPECT_EQ(BindingItemType(l.type), QmXmlLib10::ItemType_i2);
    EXPECT_EQ(BindingItemType(l.set->FindSimpleType({"urn:t", "L"})), QmXmlLib10::ItemType_string);
    EXPECT_EQ(BindingItemType(l.set->GetBuiltInType("gYear")), QmXmlLib10::ItemType_year);
    EXPECT_EQ(BindingItemType(l.set->GetBuiltInType("anySimpleType")), QmXmlLib10::ItemType_string);
    EXPECT_EQ(BindingWhitespaceRule(l.set->GetBuiltInType("string")), CWhitespaceUtils::WhitespaceRule_None);
    EXPECT_EQ(BindingWhitespaceRule(l.set->GetBuiltInType("normalizedString")), CWhitespaceUtils::WhitespaceRule_Replace);
    EXPECT_EQ(BindingWhitespaceRule(l.type), CWhitespaceUtils::WhitespaceRule_Collapse);
    const QmXmlLib10::CPrimitiveRestrictions facets = BindingFacets(l.type);
    EXPECT_EQ(facets.GetMaxInclusive(), "");  // the rule checks it, once
    EXPECT_EQ(facets.GetPattern(), "");
    EXPECT_EQ(facets.GetLength(), -1);
}

TEST(ValueRuleBinding, NoRuleWhereTheConversionChecksEverything) {
    auto set = CSchemaSet::LoadBuffer(Xsd(Restriction("xs:string", "<xs:pattern value='a*'/>")));
    for (const char* name : {"string", "normalizedString", "token", "anyURI", "anySimpleType"})
        EXPECT_EQ(MakeValueRule(set->GetBuiltInType(name), nullptr), nullptr) << name;
    // The runtime reads an empty int as 0 and an empty float as NaN.
    for (const char* name : {"int", "float", "boolean", "NCName", "QName", "date"})
        EXPECT_NE(MakeValueRule(set->GetBuiltInType(name), nullptr), nullptr) << name;
    EXPECT_NE(MakeValueRule(set->FindSimpleType({"urn:t", "T"}), nullptr), nullptr);
}

TEST(ValueRuleBinding, OneRuleServesManyThreads) {
    const Loaded l = LoadType(kUnionSchema);
    const auto rule = MakeValueRule(l.type, nullptr);
    ASSERT_NE(rule, nullptr);
    const std::vector<std::pair<std::string, bool>> values = {
        {"12", true}, {"2020-01-01", true}, {"red", true}, {"blue", false}, {"2020-13-01", false}};
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i) {
                const auto& entry = values[static_cast<std::size_t>(i) % values.size()];
                QmVariant v;
                v.SetString(entry.first);
                bool passed = true;
                try {
                    rule->Check("m", v, QmXmlLib10::ItemType_string, &entry.first);
                } catch (const CQmValidationException&) {
                    passed = false;
                }
                if (passed != entry.second) ++wrong[static_cast<std::size_t>(t)];
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

// ---------------------------------------------------------------------------
// The loader reads value constraints and facet values through the same rule.

TEST(ValueRuleLoader, ValueConstraintsMeetTheUserTypesFacets) {
    EXPECT_EQ(LoadError(Xsd(Restriction("xs:int", "<xs:maxInclusive value='10'/>") +
                            "<xs:element name='e' type='T' fixed='11'/>")),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema/element[e]]: The fixed value [11] is not "
              "valid for the type [{urn:t}T]");
    EXPECT_EQ(LoadError(Xsd(Restriction("xs:decimal", "<xs:totalDigits value='2'/>") +
                            "<xs:attribute name='a' type='T' default='1.23'/>")),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema/attribute[a]]: The default value [1.23] "
              "is not valid for the type [{urn:t}T]");
    EXPECT_EQ(LoadError(Xsd("<xs:element name='e' type='xs:dateTime' fixed='2020-01-01T24:00:00'/>"
                            "<xs:element name='f' type='xs:gYear' fixed='12021'/>")),
              "");
    EXPECT_EQ(LoadError(Xsd("<xs:element name='e' type='xs:date' fixed='2021-02-29'/>")),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema/element[e]]: The fixed value "
              "[2021-02-29] is not valid for the type [{http://www.w3.org/2001/XMLSchema}date]");
}

}  // namespace
}  // namespace schema_test
