// The built-in types and the namespace-constraint algebra.
#include "schema_test_support.h"

namespace schema_test {
namespace {

struct BuiltIn {
    const char* name;
    const char* base;
    const char* primitive;  // "" for lists
    WhiteSpace whiteSpace;
    QmXmlLib10::ItemType item;
};

void PrintTo(const BuiltIn& b, std::ostream* os) { *os << b.name; }

class BuiltInTypes : public ::testing::TestWithParam<BuiltIn> {
protected:
    static void SetUpTestSuite() { s_set = CSchemaSet::LoadBuffer(Xsd("")).release(); }
    static void TearDownTestSuite() {
        delete s_set;
        s_set = nullptr;
    }
    static CSchemaSet* s_set;
};
CSchemaSet* BuiltInTypes::s_set = nullptr;

TEST_P(BuiltInTypes, DerivationWhitespaceAndRuntimeType) {
    const BuiltIn& b = GetParam();
    const CSimpleType* t = s_set->GetBuiltInType(b.name);
    ASSERT_NE(t, nullptr);
    EXPECT_TRUE(t->builtIn);
    EXPECT_EQ(t->name.ns, kXs);
    EXPECT_EQ(t->baseType->name.local, b.base);
    if (*b.primitive != '\0') {
        EXPECT_EQ(t->variety, CSimpleType::Variety::Atomic);
        EXPECT_EQ(t->primitiveType->name.local, b.primitive);
    } else {
        EXPECT_EQ(t->variety, CSimpleType::Variety::List);
        EXPECT_NE(t->itemType, nullptr);
    }
    EXPECT_EQ(t->whiteSpace, b.whiteSpace);
    EXPECT_EQ(t->runtimeType, b.item);
}

using QmXmlLib10::ItemType;
constexpr WhiteSpace P = WhiteSpace::Preserve;
constexpr WhiteSpace R = WhiteSpace::Replace;
constexpr WhiteSpace C = WhiteSpace::Collapse;

const BuiltIn kBuiltIns[] = {
    {"string", "anySimpleType", "string", P, QmXmlLib10::ItemType_string},
    {"boolean", "anySimpleType", "boolean", C, QmXmlLib10::ItemType_boolean},
    {"decimal", "anySimpleType", "decimal", C, QmXmlLib10::ItemType_decimal},
    {"float", "anySimpleType", "float", C, QmXmlLib10::ItemType_r4},
    {"double", "anySimpleType", "double", C, QmXmlLib10::ItemType_r8},
    {"duration", "anySimpleType", "duration", C, QmXmlLib10::ItemType_duration},
    {"dateTime", "anySimpleType", "dateTime", C, QmXmlLib10::ItemType_datetime},
    {"time", "anySimpleType", "time", C, QmXmlLib10::ItemType_time},
    {"date", "anySimpleType", "date", C, QmXmlLib10::ItemType_date},
    {"gYearMonth", "anySimpleType", "gYearMonth", C, QmXmlLib10::ItemType_yearMonth},
    {"gYear", "anySimpleType", "gYear", C, QmXmlLib10::ItemType_year},
    {"gMonthDay", "anySimpleType", "gMonthDay", C, QmXmlLib10::ItemType_monthDay},
    {"gDay", "anySimpleType", "gDay", C, QmXmlLib10::ItemType_day},
    {"gMonth", "anySimpleType", "gMonth", C, QmXmlLib10::ItemType_month},
    {"hexBinary", "anySimpleType", "hexBinary", C, QmXmlLib10::ItemType_hexBinary},
    {"base64Binary", "anySimpleType", "base64Binary", C, QmXmlLib10::ItemType_base64Binary},
    {"anyURI", "anySimpleType", "anyURI", C, QmXmlLib10::ItemType_string},
    {"QName", "anySimpleType", "QName", C, QmXmlLib10::ItemType_string},
    {"NOTATION", "anySimpleType", "NOTATION", C, QmXmlLib10::ItemType_string},
    {"normalizedString", "string", "string", R, QmXmlLib10::ItemType_string},
    {"token", "normalizedString", "string", C, QmXmlLib10::ItemType_string},
    {"language", "token", "string", C, QmXmlLib10::ItemType_string},
    {"NMTOKEN", "token", "string", C, QmXmlLib10::ItemType_string},
    {"NMTOKENS", "anySimpleType", "", C, QmXmlLib10::ItemType_string},
    {"Name", "token", "string", C, QmXmlLib10::ItemType_string},
    {"NCName", "Name", "string", C, QmXmlLib10::ItemType_string},
    {"ID", "NCName", "string", C, QmXmlLib10::ItemType_string},
    {"IDREF", "NCName", "string", C, QmXmlLib10::ItemType_string},
    {"IDREFS", "anySimpleType", "", C, QmXmlLib10::ItemType_string},
    {"ENTITY", "NCName", "string", C, QmXmlLib10::ItemType_string},
    {"ENTITIES", "anySimpleType", "", C, QmXmlLib10::ItemType_string},
    {"integer", "decimal", "decimal", C, QmXmlLib10::ItemType_integer},
    {"nonPositiveInteger", "integer", "decimal", C, QmXmlLib10::ItemType_integer},
    {"negativeInteger", "nonPositiveInteger", "decimal", C, QmXmlLib10::ItemType_integer},
    {"long", "integer", "decimal", C, QmXmlLib10::ItemType_i8},
    {"int", "long", "decimal", C, QmXmlLib10::ItemType_i4},
    {"short", "int", "decimal", C, QmXmlLib10::ItemType_i2},
    {"byte", "short", "decimal", C, QmXmlLib10::ItemType_i1},
    {"nonNegativeInteger", "integer", "decimal", C, QmXmlLib10::ItemType_integer},
    {"unsignedLong", "nonNegativeInteger", "decimal", C, QmXmlLib10::ItemType_ui8},
    {"unsignedInt", "unsignedLong", "decimal", C, QmXmlLib10::ItemType_ui4},
    {"unsignedShort", "unsignedInt", "decimal", C, QmXmlLib10::ItemType_ui2},
    {"unsignedByte", "unsignedShort", "decimal", C, QmXmlLib10::ItemType_ui1},
    {"positiveInteger", "nonNegativeInteger", "decimal", C, QmXmlLib10::ItemType_integer},
};

std::string BuiltInName(const ::testing::TestParamInfo<BuiltIn>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(AllFortyFour, BuiltInTypes, ::testing::ValuesIn(kBuiltIns), BuiltInName);

TEST(BuiltInTypesTop, AnyTypeAndAnySimpleType) {
    auto set = CSchemaSet::LoadBuffer(Xsd(""));
    const CComplexType* anyType = set->GetAnyType();
    EXPECT_EQ(anyType->baseType, anyType);
    EXPECT_EQ(anyType->contentType, CComplexType::ContentType::Mixed);
    EXPECT_EQ(anyType->attributeWildcard->namespaceConstraint.kind, CNamespaceConstraint::Kind::Any);
    EXPECT_EQ(set->GetAnySimpleType()->baseType, anyType);
    EXPECT_EQ(set->GetAnySimpleType()->variety, CSimpleType::Variety::None);
    EXPECT_EQ(set->FindType({kXs, "anyType"}), anyType);
    EXPECT_EQ(set->GetBuiltInType("nonsense"), nullptr);
    EXPECT_TRUE(set->GetTypes().empty());
    EXPECT_EQ(set->GetBuiltInType("byte")->facets.maxInclusive->value, "127");
}

// ------------------------------------------------------------ constraints

CNamespaceConstraint Any() { return {}; }
CNamespaceConstraint Not(const std::string& ns) { return {CNamespaceConstraint::Kind::Not, {ns}}; }
CNamespaceConstraint Set(std::vector<std::string> names) { return {CNamespaceConstraint::Kind::Set, std::move(names)}; }

struct Algebra {
    const char* name;
    CNamespaceConstraint a, b;
    bool unionExpressible;
    CNamespaceConstraint unionResult;
    bool intersectionExpressible;
    CNamespaceConstraint intersectionResult;
};

void PrintTo(const Algebra& c, std::ostream* os) { *os << c.name; }

class NamespaceConstraints : public ::testing::TestWithParam<Algebra> {};

TEST_P(NamespaceConstraints, UnionAndIntersection) {
    const Algebra& c = GetParam();
    CNamespaceConstraint u;
    ASSERT_EQ(UnionOf(c.a, c.b, u), c.unionExpressible);
    if (c.unionExpressible) {
        EXPECT_TRUE(u == c.unionResult);
    }
    CNamespaceConstraint i;
    ASSERT_EQ(IntersectionOf(c.a, c.b, i), c.intersectionExpressible);
    if (c.intersectionExpressible) {
        EXPECT_TRUE(i == c.intersectionResult);
    }
}

const Algebra kAlgebra[] = {
    {"AnyWithSet", Any(), Set({"a"}), true, Any(), true, Set({"a"})},
    {"TwoSets", Set({"", "a"}), Set({"a", "b"}), true, Set({"", "a", "b"}), true, Set({"a"})},
    {"NotWithSetHoldingIt", Not("a"), Set({"a"}), true, Not(""), true, Set({})},
    {"NotWithSetHoldingItAndAbsent", Not("a"), Set({"", "a"}), true, Any(), true, Set({})},
    {"NotWithSetHoldingAbsentOnly", Not("a"), Set({"", "b"}), false, {}, true, Set({"b"})},
    {"NotWithOtherSet", Not("a"), Set({"b"}), true, Not("a"), true, Set({"b"})},
    {"TwoDifferentNots", Not("a"), Not("b"), true, Not(""), false, {}},
    {"NotAbsentWithNot", Not(""), Not("b"), true, Not(""), true, Not("b")},
    {"Equal", Not("a"), Not("a"), true, Not("a"), true, Not("a")},
};

std::string AlgebraName(const ::testing::TestParamInfo<Algebra>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Wildcards, NamespaceConstraints, ::testing::ValuesIn(kAlgebra), AlgebraName);

TEST(NamespaceConstraintAllows, AbsentAndNegation) {
    EXPECT_TRUE(Any().Allows(""));
    EXPECT_FALSE(Not("a").Allows(""));
    EXPECT_FALSE(Not("a").Allows("a"));
    EXPECT_TRUE(Not("a").Allows("b"));
    EXPECT_TRUE(Set({"", "b"}).Allows(""));
    EXPECT_FALSE(Set({"b"}).Allows("c"));
}

}  // namespace
}  // namespace schema_test
