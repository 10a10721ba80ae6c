// The runtime's simple type rule built from a hand-written description, as
// generated code builds it: no schema model involved.
#include <gtest/gtest.h>

#include "qmxml/core/exception.h"
#include "qmxml/types/simple_type_rule.h"
#include "qmxml/types/variant.h"

namespace {

using namespace QmXmlLib10;

CSimpleTypeCheck Atomic(XsdPrimitive primitive, ItemType runtimeType) {
    CSimpleTypeCheck c;
    c.variety = XsdVariety::Atomic;
    c.whiteSpace = primitive == XsdPrimitive::String ? XsdWhiteSpace::Preserve : XsdWhiteSpace::Collapse;
    c.primitive = primitive;
    c.runtimeType = runtimeType;
    return c;
}

// The message the rule gives for a document text, or "" when it passes.
std::string Verdict(const CSimpleTypeRule& rule, const std::string& text, ItemType type = ItemType_string) {
    QmVariant value;
    value.FromString(text, type);
    try {
        rule.Check("m", value, type, &text);
    } catch (const CQmValidationException& e) {
        return e.GetMessage();
    }
    return "";
}

TEST(SimpleTypeRule, AtomicFacetsFromLiterals) {
    CSimpleTypeDescription d;
    CSimpleTypeCheck c = Atomic(XsdPrimitive::Decimal, ItemType_i4);
    c.integerForm = true;
    c.minInclusive = " 1 ";  // literals as written: the rule collapses them
    c.maxExclusive = "100";
    c.patterns = {{"\\d+"}, {"[1-5]\\d*", "9"}};
    d.types.push_back(c);
    const CSimpleTypeRule rule(d);
    EXPECT_EQ(Verdict(rule, "42", ItemType_i4), "");
    EXPECT_EQ(Verdict(rule, "9", ItemType_i4), "");
    EXPECT_EQ(Verdict(rule, "7", ItemType_i4), "Invalid Value for m [7]");      // second step's patterns
    EXPECT_EQ(Verdict(rule, "100", ItemType_i4), "Invalid Value for m [100]");  // exclusive bound
    EXPECT_FALSE(rule.Accepts("0"));
    EXPECT_TRUE(rule.Accepts(" 3 "));
}

TEST(SimpleTypeRule, ListOfEnumeratedUnionSharesItsTypes) {
    // list of union(token enumeration "a b"-free words, int), the int used twice.
    CSimpleTypeDescription d;
    CSimpleTypeCheck list;
    list.variety = XsdVariety::List;
    list.whiteSpace = XsdWhiteSpace::Collapse;
    list.item = 1;
    list.maxLength = 2;
    CSimpleTypeCheck u;
    u.variety = XsdVariety::Union;
    u.whiteSpace = XsdWhiteSpace::Collapse;
    u.members = {2, 3, 3};
    CSimpleTypeCheck word = Atomic(XsdPrimitive::String, ItemType_string);
    word.whiteSpace = XsdWhiteSpace::Collapse;
    word.enumeration = {"red", "green"};
    CSimpleTypeCheck number = Atomic(XsdPrimitive::Decimal, ItemType_i4);
    number.integerForm = true;
    d.types = {list, u, word, number};
    const CSimpleTypeRule rule(d);
    EXPECT_EQ(Verdict(rule, "red 12"), "");
    EXPECT_EQ(Verdict(rule, "blue"), "Invalid Value for m [blue]");
    EXPECT_EQ(Verdict(rule, "red green 1"), "Invalid Value for m [red green 1]");  // three items
    EXPECT_FALSE(rule.IsTrivial());
}

TEST(SimpleTypeRule, FixedValueComparedInTheValueSpace) {
    CSimpleTypeDescription d;
    d.types.push_back(Atomic(XsdPrimitive::Decimal, ItemType_decimal));
    d.fixed = "1.50";
    const CSimpleTypeRule rule(d);
    EXPECT_EQ(Verdict(rule, "01.5", ItemType_decimal), "");
    EXPECT_EQ(Verdict(rule, "1.6", ItemType_decimal), "Invalid Value for m [1.6], the fixed value is [1.50]");
}

TEST(SimpleTypeRule, TrivialDescriptionsMakeNoRule) {
    CSimpleTypeDescription any;
    EXPECT_EQ(CSimpleTypeRule::Make(any), nullptr);
    CSimpleTypeDescription text;
    text.types.push_back(Atomic(XsdPrimitive::String, ItemType_string));
    EXPECT_EQ(CSimpleTypeRule::Make(text), nullptr);
    text.fixed = "x";
    ASSERT_NE(CSimpleTypeRule::Make(text), nullptr);
}

TEST(SimpleTypeRule, RefusesDescriptionsOutsideThemselves) {
    CSimpleTypeDescription d;
    CSimpleTypeCheck u;
    u.variety = XsdVariety::Union;
    u.members = {5};
    d.types.push_back(u);
    try {
        CSimpleTypeRule rule(d);
        FAIL() << "no exception";
    } catch (const CQmInvalidParamException& e) {
        EXPECT_EQ(e.GetMessage(), "Invalid simple type description");
    }
    CSimpleTypeCheck list;
    list.variety = XsdVariety::List;
    d.types = {list};
    EXPECT_THROW(CSimpleTypeRule rule(d), CQmInvalidParamException);
}

TEST(SimpleTypeRule, CyclicDescriptionStopsAtTheNestingLimit) {
    // Only hand-written descriptions can cycle; the rule must still end.
    CSimpleTypeDescription d;
    CSimpleTypeCheck u;
    u.variety = XsdVariety::Union;
    u.members = {0};
    d.types.push_back(u);
    const CSimpleTypeRule rule(d);
    EXPECT_FALSE(rule.Accepts("x"));
}

}  // namespace
