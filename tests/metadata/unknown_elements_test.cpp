// Under IgnoreUnknownElements a document may hold any number of elements no
// member takes. They must be skipped wherever they stand without disturbing
// what the members read, and a hundred thousand of them must read in one go
// (the time it takes is measured by bench/unknown_elements_bench, not here).
#include <gtest/gtest.h>

#include <string>

#include "bound_classes.h"

using namespace bound;

namespace {

constexpr int kUnknownCount = 100000;

std::string Unknown(int count) {
    std::string text;
    text.reserve(static_cast<std::size_t>(count) * 16);
    for (int i = 0; i < count; ++i) text += "<X n=\"1\">x</X>";
    return text;
}

struct Placement {
    const char* name;
    const char* before;  // the unknown elements go in front of the first occurrence
};

// CTest lists each case by its name, not by its bytes.
void PrintTo(const Placement& p, std::ostream* out) { *out << p.name; }

// One order that fills every kind of member: class, class collection, simple
// collection, inlined sequence, inlined choice, abstract member and collection.
const std::string kFullOrder =
    "<Order xmlns=\"urn:t\"><Customer><Name>Ann</Name><Address><Street>S</Street><City>C</City></Address>"
    "</Customer><Item id=\"1\"><Name>pen</Name></Item><Item id=\"2\"><Name>ink</Name></Item><Tag>a</Tag>"
    "<Tag>b</Tag><Low>1</Low><High>9</High><Cash>5</Cash><Price currency=\"USD\">2.5</Price>"
    "<Square side=\"2\"/><Circle r=\"3\"/><Circle r=\"4\"/></Order>";

class UnknownElements : public ::testing::TestWithParam<Placement> {};

TEST_P(UnknownElements, AHundredThousandAreSkippedAndTheMembersReadAsWithoutThem) {
    std::string xml = kFullOrder;
    const std::size_t at = xml.find(GetParam().before);
    ASSERT_NE(at, std::string::npos);
    xml.insert(at, Unknown(kUnknownCount));
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);

    CSmartPtr<Order> order = new Order();
    order->FromXml(xml.c_str(), ignore);
    CSmartPtr<Order> plain = new Order();
    plain->FromXml(kFullOrder.c_str());
    EXPECT_EQ(order->ToXml(false, false), plain->ToXml(false, false));
    EXPECT_EQ(order->customer->name, "Ann");
    ASSERT_EQ(order->items->GetCount(), 2);
    EXPECT_EQ(order->items->GetItem(1)->name, "ink");
    EXPECT_EQ(order->tags->GetCount(), 2);
    ASSERT_TRUE(order->range);
    EXPECT_EQ(order->range->high, 9);
    ASSERT_TRUE(order->payment);
    EXPECT_EQ(order->payment->cash, 5);
    EXPECT_NE(dynamic_cast<Square*>(order->shape.Get()), nullptr);
    EXPECT_EQ(order->shapes->GetCount(), 2);
}

const Placement kPlacements[] = {
    {"BeforeTheFirstMember", "<Customer>"},
    {"InsideAMemberClass", "<Address>"},
    {"BetweenCollectionItems", "<Item id=\"2\">"},
    {"BetweenSimpleCollectionItems", "<Tag>b"},
    {"InsideAnInlinedSequence", "<High>"},
    {"BeforeAnInlinedChoice", "<Cash>"},
    {"BeforeAnAbstractMember", "<Square"},
    {"BetweenAbstractCollectionItems", "<Circle r=\"4\""},
    {"AfterTheLastMember", "</Order>"},
};

INSTANTIATE_TEST_SUITE_P(Placements, UnknownElements, ::testing::ValuesIn(kPlacements),
                         [](const ::testing::TestParamInfo<Placement>& info) { return std::string(info.param.name); });

}  // namespace
