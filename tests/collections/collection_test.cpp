#include <gtest/gtest.h>

#include <qmxml/collections/wildcards.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_tree_builder.h>
#include <qmxml/writer/xml_writer.h>

#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;
using qmxml_test::RecordingSink;
using qmxml_test::SilentWriter;
using qmxml_test::TestCol;
using qmxml_test::TestObject;
using Msg = IEventSink::MsgType;

namespace {

CSmartPtr<TestObject> Obj(const char* name) { return new TestObject(name); }

std::string Names(const TestCol& c) {
    std::string s;
    for (int i = 0; i < c.GetCount(); ++i) s += c.NameAt(i);
    return s;
}

}  // namespace

TEST(CollectionCounts, BoundsAndMessages) {
    CXmlSerializationContext ctx;
    CSmartPtr<TestCol> unbounded = new TestCol("Line", "", 0, -1);
    for (int i = 0; i < 50; ++i) unbounded->AppendItem(Obj("x"));
    EXPECT_NO_THROW(unbounded->ValidateCount(ctx));
    EXPECT_TRUE(unbounded->IsValidCount(ctx));

    CSmartPtr<TestCol> atLeastOne = new TestCol("Line", "", 1, 3);
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { atLeastOne->ValidateCount(ctx); }),
              "The Minimum number of [Line] elements allowed in this collection is 1");
    EXPECT_FALSE(atLeastOne->IsValidCount(ctx));
    CXmlSerializationContext lenient;
    lenient.SetIgnoreInvalidCollectionCounts(true);
    EXPECT_NO_THROW(atLeastOne->ValidateCount(lenient));
    EXPECT_TRUE(atLeastOne->IsValidCount(lenient));

    for (int i = 0; i < 4; ++i) atLeastOne->AppendItem(Obj("x"));
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { atLeastOne->ValidateCount(ctx); }),
              "The Maximum number of [Line] elements allowed in this collection is 3");
    // Both bounds broken: the maximum is reported.
    CSmartPtr<TestCol> contradictory = new TestCol("Odd", "", 5, 1);
    contradictory->AppendItem(Obj("a"));
    contradictory->AppendItem(Obj("b"));
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { contradictory->ValidateCount(ctx); }),
              "The Maximum number of [Odd] elements allowed in this collection is 1");
    EXPECT_EQ(contradictory->GetCount(), 2);  // a failed validation changes nothing
}

TEST(Collection, InsertionOrderAndIndexErrors) {
    CSmartPtr<TestCol> c = new TestCol();
    c->AppendItem(Obj("b"));
    c->PrependItem(Obj("a"));
    c->AppendItem(Obj("d"));
    c->AddItemAt(2, Obj("c"));
    EXPECT_EQ(Names(*c), "abcd");
    c->AddItemAt(4, Obj("e"));  // index == count appends
    EXPECT_EQ(Names(*c), "abcde");
    CXmlObjectBase* c2 = c->GetNodeAtIndex(2)->GetItem();
    c->AddAfterItem(c2, Obj("X"));
    c->AddBeforeItem(c2, Obj("Y"));
    EXPECT_EQ(Names(*c), "abYcXde");
    c->AddAfterItem(nullptr, Obj("0"));
    c->AddBeforeItem(nullptr, Obj("9"));
    EXPECT_EQ(Names(*c), "0abYcXde9");
    EXPECT_EQ(c->GetNodeForItem(c2)->GetItem(), c2);

    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { c->AddItemAt(c->GetCount() + 1, Obj("z")); }),
              "Index out of range");
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { c->AddItemAt(-1, Obj("z")); }), "Index out of range");
    EXPECT_THROW(c->AppendItem(nullptr), CQmInvalidParamException);

    CSmartPtr<TestCol> three = new TestCol();
    for (const char* n : {"a", "b", "c"}) three->AppendItem(Obj(n));
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { three->Remove(3); }), "Index 3 is out of range, use 0 - 2");
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { three->Remove(-1); }), "Index -1 is out of range, use 0 - 2");
    CSmartPtr<TestCol> empty = new TestCol();
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { empty->GetNodeAtIndex(0); }),
              "Index 0 is out of range, use 0 - -1");
    three->Remove(1);
    EXPECT_EQ(Names(*three), "ac");
    three->Remove(1);
    three->Remove(0);
    EXPECT_EQ(three->GetCount(), 0);
    three->AppendItem(Obj("n"));
    EXPECT_EQ(Names(*three), "n");
}

TEST(Collection, EventsInOrder) {
    CSmartPtr<TestCol> c = new TestCol();
    RecordingSink first, second;
    c->AddEventListener(&first);
    c->AddEventListener(&second);
    CSmartPtr<TestObject> item = Obj("a");
    c->AppendItem(item);
    const std::vector<Msg> addSequence = {Msg::MsgType_CollectionAdd, Msg::MsgType_CollectionAddComplete,
                                          Msg::MsgType_CollectionChange};
    EXPECT_EQ(first.Types(), addSequence);
    EXPECT_EQ(second.Types(), addSequence);
    EXPECT_EQ(std::get<0>(first.events[0]), static_cast<CXmlObjectBase*>(c.Get()));
    EXPECT_EQ(std::get<2>(first.events[0]), static_cast<void*>(static_cast<CXmlObjectBase*>(item.Get())));
    EXPECT_EQ(std::get<2>(first.events[2]), nullptr);

    c->RemoveEventListener(&second);
    first.events.clear();
    c->Remove(0);
    EXPECT_EQ(first.Types(), (std::vector<Msg>{Msg::MsgType_CollectionRemove, Msg::MsgType_CollectionRemoveComplete,
                                               Msg::MsgType_CollectionChange}));
    EXPECT_EQ(std::get<2>(first.events[0]), nullptr);  // -1 index: no data
    EXPECT_EQ(std::get<2>(first.events[1]), nullptr);
    EXPECT_EQ(second.events.size(), 3u);

    for (const char* n : {"a", "b", "c"}) c->AppendItem(Obj(n));
    first.events.clear();
    c->Clear();
    EXPECT_EQ(first.events.size(), 9u);
    EXPECT_EQ(c->GetCount(), 0);

    // An item that is not in the collection: the add event has been raised, nothing added.
    c->AppendItem(Obj("x"));
    first.events.clear();
    TestObject stranger;
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { c->AddAfterItem(&stranger, Obj("y")); }),
              "The object was not found in the collection");
    EXPECT_EQ(first.Types(), (std::vector<Msg>{Msg::MsgType_CollectionAdd}));
    EXPECT_EQ(c->GetCount(), 1);
}

TEST(Collection, ItemsLiveAsLongAsTheirNodes) {
    std::atomic<int> destroyed{0};
    {
        CSmartPtr<TestCol> c = new TestCol();
        c->AppendItem(CSmartPtr<TestObject>(new TestObject("a", &destroyed)));
        c->AppendItem(CSmartPtr<TestObject>(new TestObject("b", &destroyed)));
        EXPECT_EQ(destroyed, 0);
        c->Remove(0);
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(Collection, TargetNamespaceIsALogicError) {
    CSmartPtr<TestCol> c = new TestCol("Line", "urn:o");
    EXPECT_EQ(c->GetElementName(), "Line");
    EXPECT_EQ(c->GetNamespace(), "urn:o");
    EXPECT_EQ(MessageOf<CQmException>([&] { c->GetTargetNamespace(); }),
              "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

namespace {
class AttributeWriter : public SilentWriter {
public:
    AttributeWriter() : SilentWriter("AttributeWriter") {}
    void WriteAttribute(const char* name, const char* ns, const char* value, ItemType) override {
        written += std::string("{") + ns + "}" + name + "=" + value + ";";
    }
    std::string written;
};

class ExposedAttributeCol : public CAttributeCol {
public:
    using CAttributeCol::CAttributeCol;
    using CAttributeCol::AttributesToXml_Int;
};
}  // namespace

TEST(WildcardAttributes, NamespaceRestrictionReadingAndWriting) {
    CSmartPtr<ExposedAttributeCol> other = new ExposedAttributeCol("", "##other", "urn:t");
    other->Add("a", "urn:x", "1");
    other->Add("b", "", "2");
    EXPECT_EQ(MessageOf<CQmInvalidNamespaceException>([&] { other->Add("c", "urn:t", "3"); }),
              "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target namespace is [urn:t]");
    EXPECT_EQ(other->GetCount(), 2);
    ASSERT_NE(other->Find("b", ""), nullptr);
    EXPECT_EQ(other->Find("b", "")->GetValue(), "2");
    EXPECT_EQ(other->Find("b", "urn:x"), nullptr);
    EXPECT_EQ(other->GetItem(0)->GetLocalName(), "a");

    AttributeWriter w;
    w.StartElement("e", "");
    other->AttributesToXml_Int(&w, CXmlSerializationContext::m_defaultContext);
    EXPECT_EQ(w.written, "{urn:x}a=1;{}b=2;");

    CXmlDocument doc;
    CXmlElement* e = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(e, "e", "urn:t");
    CXmlTreeBuilder::AddAttribute(e, "keep", "k", "urn:x");
    CXmlTreeBuilder::AddAttribute(e, "own", "o", "urn:t");
    CXmlTreeBuilder::AddAttribute(e, "type", "T", "http://www.w3.org/2001/XMLSchema-instance");
    CXmlTreeBuilder::AddAttribute(e, "nil", "true", "http://www.w3.org/2001/XMLSchema-instance");
    CXmlTreeBuilder::AddAttribute(e, "plain", "p", "");
    CSmartPtr<CAttributeCol> read = new CAttributeCol("", "##other", "urn:t");
    read->ReadAttributes(e, CXmlSerializationContext::m_defaultContext);
    ASSERT_EQ(read->GetCount(), 2);
    EXPECT_EQ(read->GetItem(0)->GetLocalName(), "keep");
    EXPECT_EQ(read->GetItem(1)->GetLocalName(), "plain");
}
