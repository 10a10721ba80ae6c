// Index walks start from the remembered node: whatever the order of accesses
// and changes, GetItem(i) must name the same item a plain list would.
#include <gtest/gtest.h>

#include <qmxml/collections/class_collection.h>
#include <qmxml/collections/element.h>
#include <qmxml/collections/primitive_collections.h>
#include <qmxml/collections/wildcards.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectThrow;
using qmxml_test::RecordingSink;
using qmxml_test::TestCol;
using qmxml_test::TestObject;

namespace {

CSmartPtr<TestObject> Obj(const std::string& name) { return new TestObject(name); }

// A collection and the plain list it must agree with.
struct Pair {
    CSmartPtr<TestCol> col = new TestCol();
    std::vector<std::string> model;

    explicit Pair(int n) {
        for (int i = 0; i < n; ++i) Append("i" + std::to_string(i));
    }
    void Append(const std::string& name) {
        col->AppendItem(Obj(name));
        model.push_back(name);
    }
    void InsertAt(int index, const std::string& name) {
        col->AddItemAt(index, Obj(name));
        model.insert(model.begin() + index, name);
    }
    void RemoveAt(int index) {
        col->Remove(index);
        model.erase(model.begin() + index);
    }
    std::string At(int index) const { return col->NameAt(index); }

    // Every index forwards, backwards and in a scattered order.
    void ExpectAgrees(const std::string& when) const {
        ASSERT_EQ(col->GetCount(), static_cast<int>(model.size())) << when;
        const int n = col->GetCount();
        for (int i = 0; i < n; ++i) ASSERT_EQ(At(i), model[i]) << when << ", forwards at " << i;
        for (int i = n - 1; i >= 0; --i) ASSERT_EQ(At(i), model[i]) << when << ", backwards at " << i;
        for (int k = 0; k < n; ++k) {
            const int i = (k * 7 + 3) % n;
            ASSERT_EQ(At(i), model[i]) << when << ", scattered at " << i;
        }
        std::vector<std::string> walked;
        for (const CXmlObjectBase* item : *col) walked.push_back(item->GetElementName());
        EXPECT_EQ(walked, model) << when << ", range-for";
    }
};

// One change made right after index 5 of 10 was reached, so that it falls
// before, on or after the remembered node.
struct ChangeCase {
    const char* name;
    std::function<void(Pair&)> change;
};

void PrintTo(const ChangeCase& c, std::ostream* os) { *os << c.name; }

class ChangeNearRememberedNode : public testing::TestWithParam<ChangeCase> {};

TEST_P(ChangeNearRememberedNode, LaterAccessesStillAgree) {
    Pair p(10);
    ASSERT_EQ(p.At(5), "i5");
    GetParam().change(p);
    // Neighbours of the old position first: they are the ones a stale mark would get wrong.
    for (int i : {5, 4, 6, 3, 7}) {
        if (i < static_cast<int>(p.model.size())) {
            EXPECT_EQ(p.At(i), p.model[i]) << "at " << i;
        }
    }
    p.ExpectAgrees(GetParam().name);
}

Pair& RemoveByNode(Pair& p, int index) {
    const int count = p.col->GetCount();
    // Found by following the links, so the remembered position stays where it was.
    CXmlCollection::CNode* node = p.col->GetFirstNode();
    for (int i = 0; i < index; ++i) node = node->GetNext();
    p.col->RemoveNode(node);
    p.model.erase(p.model.begin() + index);
    EXPECT_EQ(p.col->GetCount(), count - 1);
    return p;
}

const ChangeCase kChanges[] = {
    {"InsertBeforeRemembered", [](Pair& p) { p.InsertAt(5, "new"); }},
    {"InsertAfterRemembered", [](Pair& p) { p.InsertAt(6, "new"); }},
    {"InsertAtFront", [](Pair& p) { p.InsertAt(0, "new"); }},
    {"Prepend",
     [](Pair& p) {
         p.col->PrependItem(Obj("new"));
         p.model.insert(p.model.begin(), "new");
     }},
    {"Append", [](Pair& p) { p.Append("new"); }},
    {"AddAfterRememberedItem",
     [](Pair& p) {
         p.col->AddAfterItem(p.col->GetNodeAtIndex(5)->GetItem(), Obj("new"));
         p.model.insert(p.model.begin() + 6, "new");
     }},
    {"AddBeforeRememberedItem",
     [](Pair& p) {
         p.col->AddBeforeItem(p.col->GetNodeAtIndex(5)->GetItem(), Obj("new"));
         p.model.insert(p.model.begin() + 5, "new");
     }},
    {"AddAfterAnEarlierItem",
     [](Pair& p) {
         CXmlObjectBase* second = p.col->GetNodeAtIndex(1)->GetItem();
         ASSERT_EQ(p.At(5), "i5");
         p.col->AddAfterItem(second, Obj("new"));
         p.model.insert(p.model.begin() + 2, "new");
     }},
    {"RemoveRemembered", [](Pair& p) { p.RemoveAt(5); }},
    {"RemoveBeforeRemembered", [](Pair& p) { p.RemoveAt(4); }},
    {"RemoveAfterRemembered", [](Pair& p) { p.RemoveAt(6); }},
    {"RemoveFirst", [](Pair& p) { p.RemoveAt(0); }},
    {"RemoveLast", [](Pair& p) { p.RemoveAt(9); }},
    {"RemoveRememberedNode", [](Pair& p) { RemoveByNode(p, 5); }},
    {"RemoveNodeBeforeRemembered", [](Pair& p) { RemoveByNode(p, 2); }},
    {"RemoveNodeJustBeforeRemembered", [](Pair& p) { RemoveByNode(p, 4); }},
    {"RemoveNodeAfterRemembered", [](Pair& p) { RemoveByNode(p, 8); }},
    {"RemoveEveryItemFromTheFront",
     [](Pair& p) {
         while (!p.model.empty()) p.RemoveAt(0);
     }},
    {"ClearThenRefill",
     [](Pair& p) {
         p.col->Clear();
         p.model.clear();
         EXPECT_EQ(p.col->GetCount(), 0);
         for (int i = 0; i < 8; ++i) p.Append("r" + std::to_string(i));
     }},
};

INSTANTIATE_TEST_SUITE_P(Collections, ChangeNearRememberedNode, testing::ValuesIn(kChanges),
                         [](const testing::TestParamInfo<ChangeCase>& info) { return std::string(info.param.name); });

TEST(IndexedAccess, RandomAccessesAndChangesAgreeWithAPlainList) {
    std::mt19937 random(20261124);
    Pair p(40);
    for (int step = 0; step < 3000; ++step) {
        const int n = static_cast<int>(p.model.size());
        const int index = n ? std::uniform_int_distribution<int>(0, n - 1)(random) : 0;
        switch (std::uniform_int_distribution<int>(0, 9)(random)) {
            case 0: p.InsertAt(std::uniform_int_distribution<int>(0, n)(random), "s" + std::to_string(step)); break;
            case 1:
                if (n) p.RemoveAt(index);
                break;
            case 2:
                if (n) RemoveByNode(p, index);
                break;
            case 3: p.Append("s" + std::to_string(step)); break;
            default:
                if (n) {
                    ASSERT_EQ(p.At(index), p.model[index]) << "step " << step;
                }
        }
    }
    p.ExpectAgrees("after the random steps");
}

// A listener that changes the collection while it hears of a removal: the
// index the removal was asked for is stale by the time the node is unlinked.
class InsertingSink : public IEventSink {
public:
    explicit InsertingSink(Pair& pair) : m_pair(pair) {}
    void OnEvent(CXmlObjectBase*, MsgType type, void*) override {
        if (type != MsgType_CollectionRemove || m_done) return;
        m_done = true;
        m_pair.col->PrependItem(Obj("front"));
    }

private:
    Pair& m_pair;
    bool m_done = false;
};

TEST(IndexedAccess, ListenerThatInsertsDuringARemovalLeavesIndexesRight) {
    Pair p(10);
    InsertingSink sink(p);
    p.col->AddEventListener(&sink);
    ASSERT_EQ(p.At(6), "i6");
    p.col->Remove(3);
    p.model.erase(p.model.begin() + 3);
    p.model.insert(p.model.begin(), "front");
    p.col->RemoveEventListener(&sink);
    p.ExpectAgrees("after the listener's insert");
}

TEST(IndexedAccess, BadIndexesKeepTheirMessagesAfterWalks) {
    Pair p(5);
    p.ExpectAgrees("five items");
    ExpectThrow<CQmInvalidParamException>([&] { p.col->GetNodeAtIndex(5); }, "Index 5 is out of range, use 0 - 4");
    ExpectThrow<CQmInvalidParamException>([&] { p.col->GetNodeAtIndex(-1); }, "Index -1 is out of range, use 0 - 4");
    ExpectThrow<CQmInvalidParamException>([&] { p.col->Remove(5); }, "Index 5 is out of range, use 0 - 4");
    ExpectThrow<CQmInvalidParamException>([&] { p.col->AddItemAt(6, Obj("x")); }, "Index out of range");
    EXPECT_EQ(p.At(4), "i4");  // a refused index does not disturb the remembered one
    p.col->Clear();
    ExpectThrow<CQmInvalidParamException>([&] { p.col->GetNodeAtIndex(0); }, "Index 0 is out of range, use 0 - -1");
}

// The typed class collections: CXmlClassCollection and the abstract one
// share this base, which holds GetItem and the iterators.
class TestObjectCol : public CXmlTypedClassCollection<TestObject> {
public:
    TestObjectCol() : CXmlTypedClassCollection<TestObject>("item", "urn:test", 0, -1) {}
    bool IsItemElement(const CXmlSerializationContext&, const CXmlElement*) const override { return false; }

protected:
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext&, bool) override {
        return current;
    }
};

static_assert(std::is_same<decltype(*std::declval<TestObjectCol&>().begin()), TestObject*>::value,
              "a class collection yields its item class");
static_assert(std::is_same<decltype(*std::declval<const TestObjectCol&>().begin()), const TestObject*>::value,
              "a const class collection yields const items");
static_assert(std::is_same<decltype(*std::declval<CAttributeCol&>().begin()), CAttribute*>::value,
              "an attribute collection yields attributes");
static_assert(std::is_same<decltype(*std::declval<const CstringCol&>().begin()), const std::string&>::value,
              "a string collection yields its strings");

TEST(RangeFor, ClassCollectionYieldsItsItemsInOrder) {
    CSmartPtr<TestObjectCol> col = new TestObjectCol();
    for (const char* name : {"a", "b", "c"}) col->Add(Obj(name));
    std::string names;
    for (TestObject* item : *col) names += item->GetElementName();
    const TestObjectCol& constCol = *col;
    for (const TestObject* item : constCol) names += item->GetElementName();
    for (CSmartPtr<TestObject> item : *col) names += item->GetElementName();
    EXPECT_EQ(names, "abcabcabc");
    EXPECT_EQ(col->GetItem(2)->GetElementName(), "c");
    EXPECT_EQ(std::count_if(col->begin(), col->end(),
                            [](const TestObject* item) { return item->GetElementName() != "b"; }),
              2);

    CSmartPtr<TestObjectCol> empty = new TestObjectCol();
    EXPECT_TRUE(empty->begin() == empty->end());
    ExpectThrow<CQmInvalidParamException>([&] { col->GetItem(3); }, "Index 3 is out of range, use 0 - 2");
}

TEST(RangeFor, IteratorsToOtherItemsSurviveInsertsAndRemovals) {
    CSmartPtr<TestObjectCol> col = new TestObjectCol();
    for (const char* name : {"a", "b", "c", "d"}) col->Add(Obj(name));
    std::string names;
    for (auto it = col->begin(); it != col->end(); ++it) {
        names += (*it)->GetElementName();
        if ((*it)->GetElementName() == "b") {
            col->InsertAt(0, Obj("front"));  // before the current item
            col->Remove(4);                  // "d", after it
            col->Add(Obj("e"));
        }
    }
    EXPECT_EQ(names, "abce");
    EXPECT_EQ(col->GetCount(), 5);
    EXPECT_EQ(col->GetItem(0)->GetElementName(), "front");
}

TEST(RangeFor, WildcardCollectionsYieldAttributesAndElements) {
    CSmartPtr<CAttributeCol> attributes = new CAttributeCol("any", "##any", "");
    attributes->Add("a", "", "1");
    attributes->Add("b", "urn:x", "2");
    std::string seen;
    for (CAttribute* a : *attributes) seen += a->GetLocalName() + "=" + a->GetValue() + ";";
    const CAttributeCol& constAttributes = *attributes;
    for (const CAttribute* a : constAttributes) seen += a->GetNamespaceURI() + ";";
    EXPECT_EQ(seen, "a=1;b=2;;urn:x;");

    CSmartPtr<CElementCol> elements = new CElementCol();
    elements->Add("x", "urn:x");
    elements->Add("y", "");
    elements->GetItem(1)->SetText("text");
    std::string names;
    for (CElement* e : *elements) names += e->GetLocalName() + "(" + e->GetText() + ")";
    EXPECT_EQ(names, "x()y(text)");
    ExpectThrow<CQmInvalidParamException>([&] { elements->GetItem(2); }, "Index 2 is out of range, use 0 - 1");
}

TEST(RangeFor, PrimitiveCollectionsYieldTheirValues) {
    CstringCol strings("s", "");
    for (const char* s : {"one", "two", "three"}) strings.Add(s);
    std::string joined;
    for (const std::string& s : strings) joined += s + ",";
    EXPECT_EQ(joined, "one,two,three,");

    Ci4Col numbers("n", "");
    for (int i = 1; i <= 4; ++i) numbers.Add(i * 10);
    int sum = 0;
    for (std::int32_t n : numbers) sum += n;
    EXPECT_EQ(sum, 100);

    CdecimalCol decimals("d", "");
    decimals.AddFromString("1.5");
    decimals.AddFromString("2.25");
    CDecimal total;
    for (const CDecimal& d : decimals) total += d;
    EXPECT_EQ(total.ToString(), "3.75");
    ExpectThrow<CQmInvalidParamException>([&] { decimals.GetItem(2); }, "Index 2 is out of range, use 0 - 1");
}

TEST(PrimitiveCollections, ClearRaisesOneRoundOfEventsPerItem) {
    CstringCol strings("s", "");
    for (const char* s : {"a", "b", "c"}) strings.Add(s);
    RecordingSink sink;
    strings.AddEventListener(&sink);
    strings.Clear();
    EXPECT_EQ(strings.GetCount(), 0);
    using M = IEventSink::MsgType;
    const std::vector<M> round = {M::MsgType_CollectionRemove, M::MsgType_CollectionRemoveComplete,
                                  M::MsgType_CollectionChange};
    std::vector<M> expected;
    for (int i = 0; i < 3; ++i) expected.insert(expected.end(), round.begin(), round.end());
    EXPECT_EQ(sink.Types(), expected);
    EXPECT_TRUE(strings.begin() == strings.end());
}

}  // namespace
