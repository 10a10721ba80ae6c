#include <gtest/gtest.h>

#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_tree_builder.h>

#include <thread>

#include "test_objects.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectMessage;
using qmxml_test::TestCol;
using qmxml_test::TestObject;

TEST(ObjectBase, ReferenceCountingDeletesOnLastRelease) {
    std::atomic<int> destroyed{0};
    auto* object = new TestObject("x", &destroyed);
    EXPECT_EQ(object->AddRef(), 1);
    EXPECT_EQ(object->AddRef(), 2);
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(destroyed, 1);

    {
        CSmartPtr<TestObject> a = new TestObject("y", &destroyed);
        CSmartPtr<TestObject> b = a;
        EXPECT_TRUE(a == b);
        CSmartPtr<CXmlObjectBase> base = a;
        EXPECT_EQ(static_cast<CXmlObjectBase*>(base), static_cast<CXmlObjectBase*>(a.Get()));
        const auto& alsoA = a;  // self-assignment, as it happens through a reference
        a = alsoA;  // keeps the object alive
        a = a.Get();
        EXPECT_EQ(a->GetElementName(), "y");
        b = nullptr;
        EXPECT_TRUE(b == nullptr);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(ObjectBase, CopiesStartUnreferenced) {
    std::atomic<int> destroyed{0};
    CSmartPtr<TestObject> original = new TestObject("z", &destroyed);
    original->SetElementName("Recorded");
    TestObject copy(*original);
    EXPECT_EQ(copy.GetRecordedElementName(), "Recorded");
    // The copy's count is its own: taking and dropping one reference deletes
    // nothing because the copy lives on the stack only if never referenced.
    EXPECT_EQ(copy.AddRef(), 1);
    TestObject assigned("w");
    EXPECT_EQ(assigned.AddRef(), 1);
    assigned = *original;
    EXPECT_EQ(assigned.AddRef(), 2);  // assignment left the count alone
    EXPECT_EQ(assigned.GetRecordedElementName(), "Recorded");

    // Each holds its own name: changing or clearing one leaves the others.
    original->SetElementName("Other");
    EXPECT_EQ(copy.GetRecordedElementName(), "Recorded");
    EXPECT_EQ(assigned.GetRecordedElementName(), "Recorded");
    copy.SetElementName(nullptr);
    EXPECT_EQ(copy.GetRecordedElementName(), "");
    assigned = copy;
    EXPECT_EQ(assigned.GetRecordedElementName(), "");
    copy = *original;
    EXPECT_EQ(copy.GetRecordedElementName(), "Other");
    original->SetElementName("");
    EXPECT_EQ(original->GetRecordedElementName(), "");
    EXPECT_EQ(copy.GetRecordedElementName(), "Other");
}

TEST(ObjectBase, ConcurrentReferencesDeleteExactlyOnce) {
    std::atomic<int> destroyed{0};
    {
        CSmartPtr<TestObject> shared = new TestObject("shared", &destroyed);
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([&shared] {
                for (int i = 0; i < 20000; ++i) {
                    CSmartPtr<TestObject> local = shared;
                    CSmartPtr<CXmlObjectBase> base = local;
                    local = nullptr;
                }
            });
        }
        for (auto& t : threads) t.join();
        EXPECT_EQ(destroyed, 0);
        EXPECT_EQ(shared->AddRef(), 2);
        shared->Release();
    }
    EXPECT_EQ(destroyed, 1);

    // Many threads dropping the last references of many objects at once.
    std::vector<TestObject*> objects;
    for (int i = 0; i < 1000; ++i) {
        objects.push_back(new TestObject("o", &destroyed));
        objects.back()->AddRef();
        objects.back()->AddRef();
    }
    std::thread a([&] { for (auto* o : objects) o->Release(); });
    std::thread b([&] { for (auto* o : objects) o->Release(); });
    a.join();
    b.join();
    EXPECT_EQ(destroyed, 1001);
}

TEST(ObjectBase, NamespaceWildcards) {
    TestObject o;
    EXPECT_TRUE(o.IsNamespaceValid("", "##local", "urn:a"));
    EXPECT_FALSE(o.IsNamespaceValid("urn:a", "##local", "urn:a"));
    EXPECT_TRUE(o.IsNamespaceValid("urn:b", "urn:a urn:b", "urn:a"));
    EXPECT_TRUE(o.IsNamespaceValid("urn:b", "urn:a  urn:b", "urn:a"));  // double space
    EXPECT_TRUE(o.IsNamespaceValid("anything", "##any", ""));
    EXPECT_TRUE(o.IsNamespaceValid("", "##other", "urn:a"));
    EXPECT_FALSE(o.IsNamespaceValid("urn:a", "##other", "urn:a"));
    EXPECT_FALSE(o.IsNamespaceValid("", "##other", ""));
    EXPECT_TRUE(o.IsNamespaceValid("urn:a", "##targetNamespace", "urn:a"));
    EXPECT_FALSE(o.IsNamespaceValid("urn:ab", "urn:a", "urn:x"));
    EXPECT_FALSE(o.IsNamespaceValid("", "", ""));
    EXPECT_FALSE(o.IsNamespaceValid("urn:a", "", "urn:a"));

    EXPECT_NO_THROW(o.TestNamespace("", "##local", "urn:a"));
    ExpectMessage<CQmInvalidNamespaceException>(
        [&] { o.TestNamespace("urn:a", "##other", "urn:a"); },
        "Invalid namespace [urn:a]. The namespace must be one of [##other] where the target namespace is [urn:a]");
}

TEST(ObjectBase, ElementNameMatching) {
    CXmlDocument doc;
    CXmlElement* e = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(e, "Order", "urn:o");
    TestObject o;
    CXmlSerializationContext ctx;
    EXPECT_TRUE(o.DoesElementNameMatch(ctx, e, "Order", "urn:o"));
    EXPECT_FALSE(o.DoesElementNameMatch(ctx, e, "Order", "urn:x"));
    EXPECT_FALSE(o.DoesElementNameMatch(ctx, e, "order", "urn:o"));
    EXPECT_FALSE(o.DoesElementNameMatch(ctx, nullptr, "Order", "urn:o"));
    ctx.SetIgnoreNamespaces(true);
    EXPECT_TRUE(o.DoesElementNameMatch(ctx, e, "Order", "urn:x"));
    ctx.SetIgnoreNamespaces(false);
    ctx.SetSchemaType(SchemaType_NoNamespaces);
    EXPECT_TRUE(o.DoesElementNameMatch(ctx, e, "Order", ""));
    EXPECT_FALSE(o.DoesElementNameMatch(ctx, e, "Other", "urn:o"));
}

TEST(ObjectBase, PropertyChecks) {
    ExpectMessage<CQmInvalidParamException>([&] { TestObject::Throw_IfPropertyIsNull(nullptr, "Customer"); },
                                            "The Property [Customer] is mandatory, it may node be NULL");
    TestObject named("Card");
    EXPECT_NO_THROW(TestObject::Throw_IfPropertyIsNull(&named, "Card"));
    EXPECT_NO_THROW(TestObject::Throw_IfElementNameDiffers(&named, "Card"));
    EXPECT_NO_THROW(TestObject::Throw_IfElementNameDiffers(nullptr, "Card"));
    ExpectMessage<CQmInvalidParamException>(
        [&] { TestObject::Throw_IfElementNameDiffers(&named, "Invoice"); },
        "This property requrires an element with the name Invoice the element being set has the element name Card");
}

TEST(ObjectBase, ChoiceBookkeeping) {
    std::string selected;
    TestObject::Choice_SetElementValid(true, "Card", selected);
    EXPECT_EQ(selected, "Card");
    ExpectMessage<CQmInvalidStateException>(
        [&] { TestObject::Choice_SetElementValid(true, "Invoice", selected); },
        "The Property Card is already set. Only one element within this class bay be set at a time");
    EXPECT_EQ(selected, "Card");
    // Setting the selected member again counts as a second member too.
    EXPECT_THROW(TestObject::Choice_SetElementValid(true, "Card", selected), CQmInvalidStateException);
    // Marking any member not valid empties the selection.
    TestObject::Choice_SetElementValid(false, "Invoice", selected);
    EXPECT_EQ(selected, "");
    TestObject::Choice_SetElementValid(true, "Invoice", selected);
    EXPECT_EQ(selected, "Invoice");

    TestObject value;
    selected.clear();
    TestObject::Choice_SelectElement("Card", &value, selected);
    EXPECT_EQ(selected, "Card");
    ExpectMessage<CQmInvalidStateException>(
        [&] { TestObject::Choice_SelectElement("Invoice", &value, selected); },
        "The Property [Card] is already set. Only one element within this class bay be set at a time");
    TestObject::Choice_SelectElement("Card", nullptr, selected);
    EXPECT_EQ(selected, "");

    TestObject::Choice_CollectionChanged("Lines", 2, selected);
    EXPECT_EQ(selected, "Lines");
    EXPECT_THROW(TestObject::Choice_CollectionChanged("Notes", 1, selected), CQmInvalidStateException);
    TestObject::Choice_CollectionChanged("Lines", 0, selected);
    EXPECT_EQ(selected, "");
}

TEST(ObjectBase, ChoiceReadCollectionConsumesMatchingSiblings) {
    CXmlDocument doc;
    CXmlElement* root = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(root, "root", "urn:test");
    for (const char* name : {"item", "item", "other", "item"}) {
        CXmlElement* child = CXmlTreeBuilder::CreateChild(root);
        CXmlTreeBuilder::SetName(child, name, "urn:test");
        CXmlTreeBuilder::AppendText(child, name, 2);
    }
    CSmartPtr<TestCol> coll = new TestCol();
    CXmlElement* current = root->GetFirstElement();
    std::int32_t count = -1;
    TestObject::Choice_Read_Collection(coll, root, current, count, CXmlSerializationContext::m_defaultContext);
    EXPECT_EQ(count, 2);
    ASSERT_NE(current, nullptr);
    EXPECT_EQ(current->GetLocalName(), "other");
}
