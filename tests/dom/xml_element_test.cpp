#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/dom/xml_tree_builder.h"

using namespace QmXmlLib10;
using B = CXmlTreeBuilder;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXmlns[] = "http://www.w3.org/2000/xmlns/";

void Append(CXmlElement* e, const std::string& text) { B::AppendText(e, text.data(), text.size()); }

std::vector<std::string> ChildNames(const CXmlElement* e) {
    std::vector<std::string> names;
    for (CXmlElement* c = e->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement())
        names.push_back(c->GetLocalName());
    return names;
}

}  // namespace

TEST(XmlElementTest, NewTreeIsEmptyAndOwnedByItsDocument) {
    CXmlDocument doc;
    EXPECT_EQ(doc.GetDocumentElement(), nullptr);
    CXmlElement* root = B::CreateDocumentElement(doc);
    ASSERT_EQ(doc.GetDocumentElement(), root);
    EXPECT_EQ(root->GetLocalName(), "");
    EXPECT_EQ(root->GetNamespaceURI(), "");
    EXPECT_EQ(root->GetText(), "");
    EXPECT_TRUE(root->GetAttributes().empty());
    EXPECT_EQ(root->GetFirstElement(), nullptr);
    EXPECT_EQ(root->GetNextSiblingElement(), nullptr);
    EXPECT_EQ(root->GetDocument(), &doc);
    EXPECT_EQ(B::CreateChild(B::CreateChild(root))->GetDocument(), &doc);
    // Nodes are lean: a loaded document must stay within a few times its text size.
    EXPECT_LE(sizeof(CXmlElement), 88u);
}

TEST(XmlElementTest, TextAroundAChildIsJoined) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    Append(root, "a");
    CXmlElement* child = B::CreateChild(root);
    Append(child, "inner");
    Append(root, "b");
    Append(root, " \n\t");  // whitespace is data at this level
    B::AppendText(root, "cdef", 1);
    EXPECT_EQ(root->GetText(), "ab \n\tc");
    EXPECT_EQ(child->GetText(), "inner");
    EXPECT_EQ(ChildNames(root).size(), 1u);

    std::string withZero("x\0y", 3);
    Append(child, withZero);
    EXPECT_EQ(child->GetText(), std::string("innerx\0y", 8));
}

TEST(XmlElementTest, AttributesKeepOrderAndLookUpByNameAndNamespace) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    B::SetName(root, "order", "urn:o");
    B::AddAttribute(root, "id", "1", "");
    B::AddAttribute(root, "id", "2", "urn:x");
    B::AddAttribute(root, "id", "3", "");  // duplicates are not rejected
    B::AddAttribute(root, "empty", "", "");

    const auto& attributes = root->GetAttributes();
    ASSERT_EQ(attributes.size(), 4u);
    EXPECT_EQ(attributes[0]->GetLocalName(), "id");
    EXPECT_EQ(attributes[0]->GetValue(), "1");
    EXPECT_EQ(attributes[0]->GetNamespaceURI(), "");
    EXPECT_EQ(attributes[1]->GetLocalName(), "id");
    EXPECT_EQ(attributes[1]->GetValue(), "2");
    EXPECT_EQ(attributes[1]->GetNamespaceURI(), "urn:x");
    EXPECT_EQ(attributes[2]->GetValue(), "3");

    EXPECT_EQ(root->GetAttribute("id", ""), "1");  // first match wins
    EXPECT_EQ(root->GetAttribute("id", "urn:x"), "2");
    EXPECT_EQ(root->GetAttribute("id", "urn:y"), "");
    EXPECT_EQ(root->GetAttribute("ID", ""), "");
    EXPECT_EQ(root->GetAttribute("empty", ""), "");

    // Absent attributes all answer with the one shared empty string, which is
    // never the storage of an attribute whose value happens to be empty.
    CXmlElement* child = B::CreateChild(root);
    const std::string& absent = root->GetAttribute("id", "urn:y");
    EXPECT_EQ(&absent, &child->GetAttribute("id", ""));
    EXPECT_NE(&absent, &root->GetAttribute("empty", ""));
    EXPECT_EQ(&child->GetAttributes(), &B::CreateChild(root)->GetAttributes());
    EXPECT_NE(&child->GetAttributes(), &root->GetAttributes());
}

TEST(XmlElementTest, NamesAreInternedOncePerDocument) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    B::SetName(root, "list", "urn:a");
    CXmlElement* first = B::CreateChild(root);
    CXmlElement* second = B::CreateChild(root);
    B::SetName(first, "item", "urn:a");
    B::SetName(second, std::string("item"), std::string("urn:a"));
    B::AddAttribute(second, "list", "v", "urn:a");

    EXPECT_EQ(&first->GetLocalName(), &second->GetLocalName());
    EXPECT_EQ(&root->GetNamespaceURI(), &second->GetNamespaceURI());
    EXPECT_EQ(&root->GetLocalName(), &second->GetAttributes()[0]->GetLocalName());
    EXPECT_EQ(&root->GetNamespaceURI(), &second->GetAttributes()[0]->GetNamespaceURI());
    EXPECT_EQ(doc.GetNameTable().GetCount(), 3u);

    // Another document has its own copies.
    CXmlDocument other;
    CXmlElement* otherRoot = B::CreateDocumentElement(other);
    B::SetName(otherRoot, "item", "");
    EXPECT_EQ(otherRoot->GetLocalName(), "item");
    EXPECT_NE(&otherRoot->GetLocalName(), &first->GetLocalName());
    // The empty namespace is shared by everyone and not stored.
    EXPECT_EQ(&otherRoot->GetNamespaceURI(), &B::CreateChild(root)->GetNamespaceURI());
    EXPECT_EQ(other.GetNameTable().GetCount(), 1u);

    // Loaders may hand over names interned beforehand.
    const std::string* value = B::Intern(doc, "value");
    B::SetName(first, value, &root->GetNamespaceURI());
    B::AddAttribute(first, value, std::string("v"), &CXmlNameTable::EmptyString());
    EXPECT_EQ(&first->GetLocalName(), value);
    EXPECT_EQ(first->GetAttribute("value", ""), "v");
}

TEST(XmlElementTest, RemoveLastChild) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    EXPECT_EQ(B::RemoveLastChild(root), nullptr);
    EXPECT_FALSE(B::DeleteLastChild(root));

    // One child: the list becomes empty, and appending afterwards still works.
    CXmlElement* only = B::CreateChild(root);
    EXPECT_EQ(B::RemoveLastChild(root), only);
    EXPECT_EQ(root->GetFirstElement(), nullptr);
    EXPECT_EQ(B::RemoveLastChild(root), nullptr);
    B::DestroyElement(only);
    B::SetName(B::CreateChild(root), "again", "");
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"again"});
    EXPECT_TRUE(B::DeleteLastChild(root));

    // Several children: the new last child is the one before, with no dangling
    // sibling link, and the next append goes after it.
    for (const char* name : {"a", "b", "c"}) B::SetName(B::CreateChild(root), name, "");
    CXmlElement* c = B::RemoveLastChild(root);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetLocalName(), "c");
    EXPECT_EQ(c->GetNextSiblingElement(), nullptr);
    B::DestroyElement(c);
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b"}));
    B::SetName(B::CreateChild(root), "d", "");
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b", "d"}));

    // A removed child takes its subtree and attributes with it.
    CXmlElement* d = root->GetFirstElement()->GetNextSiblingElement()->GetNextSiblingElement();
    B::AddAttribute(d, "x", "1", "");
    Append(B::CreateChild(B::CreateChild(d)), "deep");
    EXPECT_TRUE(B::DeleteLastChild(root));
    EXPECT_TRUE(B::DeleteLastChild(root));
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"a"});
}

TEST(XmlElementTest, NilAndNamespaceAttributes) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    struct Case {
        const char* name;
        const char* ns;
        bool isNamespace;
        bool isNil;
    };
    const Case cases[] = {
        {"nil", kXsi, false, true},
        {"nil", kXmlns, false, true},  // either namespace counts
        {"nil", "", false, false},
        {"Nil", kXsi, false, false},
        {"type", kXsi, true, false},
        {"schemaLocation", kXsi, true, false},
        {"noNamespaceSchemaLocation", kXsi, true, false},
        {"xmlns", kXsi, true, false},  // loose pairing, kept on purpose
        {"type", kXmlns, true, false},
        {"p", kXmlns, false, false},  // an ordinary prefix declaration name
        {"type", "", false, false},
        {"type", "http://www.w3.org/2001/XMLSchema", false, false},
    };
    for (const Case& c : cases) B::AddAttribute(root, c.name, "true", c.ns);
    const auto& attributes = root->GetAttributes();
    ASSERT_EQ(attributes.size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(std::string(cases[i].ns) + " " + cases[i].name);
        EXPECT_EQ(attributes[i]->IsNamespaceAttribute(), cases[i].isNamespace);
        EXPECT_EQ(attributes[i]->IsNilAttribute(), cases[i].isNil);
    }
}

TEST(XmlElementTest, RebuildingAndClearingReplaceTheTree) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    B::SetName(root, "old", "");
    B::AddAttribute(B::CreateChild(root), "a", "1", "");
    const std::string* kept = B::Intern(doc, "kept");

    // The old tree is destroyed (LeakSanitizer checks); interned names survive.
    CXmlElement* fresh = B::CreateDocumentElement(doc);
    EXPECT_EQ(doc.GetDocumentElement(), fresh);
    EXPECT_EQ(fresh->GetLocalName(), "");
    EXPECT_EQ(fresh->GetFirstElement(), nullptr);
    EXPECT_EQ(B::Intern(doc, "kept"), kept);

    B::Clear(doc);
    EXPECT_EQ(doc.GetDocumentElement(), nullptr);
    EXPECT_EQ(doc.GetNameTable().GetCount(), 0u);
    EXPECT_EQ(doc.GetNameTable().Find("kept"), nullptr);
}

TEST(XmlElementTest, MillionDeepChainIsBuiltAndDestroyedWithoutRecursion) {
    constexpr int kDepth = 1000000;
    auto doc = std::make_unique<CXmlDocument>();
    CXmlElement* e = B::CreateDocumentElement(*doc);
    for (int i = 0; i < kDepth; ++i) {
        B::SetName(e, "n", "urn:deep");
        e = B::CreateChild(e);
    }
    int depth = 0;
    for (CXmlElement* p = doc->GetDocumentElement(); p != nullptr; p = p->GetFirstElement()) ++depth;
    EXPECT_EQ(depth, kDepth + 1);
    EXPECT_EQ(doc->GetNameTable().GetCount(), 2u);

    // A deep subtree cut off with RemoveLastChild goes the same way.
    CXmlElement* top = doc->GetDocumentElement();
    CXmlElement* cut = B::RemoveLastChild(top);
    ASSERT_NE(cut, nullptr);
    EXPECT_EQ(top->GetFirstElement(), nullptr);
    B::DestroyElement(cut);

    // And again through the document itself.
    e = doc->GetDocumentElement();
    for (int i = 0; i < kDepth; ++i) e = B::CreateChild(e);
    doc.reset();
    SUCCEED();
}

TEST(XmlElementTest, WideAndBushyTrees) {
    constexpr int kWidth = 200000;
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    for (int i = 0; i < kWidth; ++i) {
        CXmlElement* child = B::CreateChild(root);
        B::SetName(child, "item", "");
        B::AddAttribute(child, "index", std::to_string(i), "");
        if (i % 1000 == 0) {  // some with subtrees of their own
            for (int j = 0; j < 3; ++j) B::CreateChild(B::CreateChild(child));
        }
    }
    int count = 0;
    bool ordered = true;
    for (CXmlElement* c = root->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement()) {
        ordered = ordered && c->GetAttribute("index", "") == std::to_string(count);
        ++count;
    }
    EXPECT_EQ(count, kWidth);
    EXPECT_TRUE(ordered);
    EXPECT_EQ(doc.GetNameTable().GetCount(), 2u);
}

namespace {
template <typename T, typename = void>
struct IsDeletable : std::false_type {};
template <typename T>
struct IsDeletable<T, std::void_t<decltype(delete std::declval<T*>())>> : std::true_type {};
}  // namespace

// Nodes live in the document's pool: plain delete must not compile.
static_assert(!IsDeletable<CXmlElement>::value, "elements must not be deletable");
static_assert(!IsDeletable<CXmlAttribute>::value, "attributes must not be deletable");

TEST(XmlElementTest, DestroyedNodesGoBackToTheDocumentsPool) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 1u);
    CXmlElement* child = B::CreateChild(root);
    B::AddAttribute(child, "a", "a value long enough for the heap", "");
    B::AddAttribute(child, "b", "2", "urn:b");
    Append(B::CreateChild(child), "some text that does not fit inline");
    // Root, child, grandchild, the attribute vector and two attributes.
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 6u);

    CXmlElement* removed = B::RemoveLastChild(root);
    ASSERT_EQ(removed, child);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 6u);  // unlinked, not yet destroyed
    B::DestroyElement(removed);
    B::DestroyElement(nullptr);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 1u);

    // Rebuilding reuses the freed blocks instead of taking more memory.
    const std::size_t reserved = B::GetPoolStatistics(doc).reservedBytes;
    for (int i = 0; i < 3; ++i) B::AddAttribute(B::CreateChild(root), "x", "1", "");
    EXPECT_EQ(B::GetPoolStatistics(doc).reservedBytes, reserved);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 10u);

    // The document element itself can be destroyed; the document then has none.
    B::DestroyElement(doc.GetDocumentElement());
    EXPECT_EQ(doc.GetDocumentElement(), nullptr);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 0u);

    // Clearing gives the memory back.
    B::CreateChild(B::CreateDocumentElement(doc));
    B::Clear(doc);
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 0u);
    EXPECT_EQ(B::GetPoolStatistics(doc).reservedBytes, 0u);
}

TEST(XmlElementTest, AttributesAndTextAreStoredAtTheirSize) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    B::ReserveAttributes(root, 3);
    const std::vector<CXmlAttribute*>& attributes = root->GetAttributes();
    for (const char* name : {"a", "b", "c"}) B::AddAttribute(root, name, "v", "");
    EXPECT_EQ(attributes.capacity(), 3u);
    B::AddAttribute(root, "d", "v", "");  // more than reserved still works
    EXPECT_EQ(attributes.size(), 4u);
    EXPECT_EQ(root->GetAttribute("d", ""), "v");
    B::ReserveAttributes(root, 0);
    EXPECT_EQ(attributes.size(), 4u);

    const std::string text(17, 't');  // just past the inline capacity
    Append(root, text);
    EXPECT_EQ(root->GetText(), text);
    EXPECT_EQ(root->GetText().capacity(), text.size());
    Append(root, "+");
    EXPECT_EQ(root->GetText(), text + "+");
}

TEST(XmlElementTest, AppendingToASharedTextLeavesTheOtherHoldersAlone) {
    CXmlDocument doc;
    CXmlElement* root = B::CreateDocumentElement(doc);
    CXmlElement* a = B::CreateChild(root);
    CXmlElement* b = B::CreateChild(root);
    Append(a, "\n  ");
    Append(b, "\n  ");
    EXPECT_EQ(&a->GetText(), &b->GetText());
    Append(a, "x");
    EXPECT_EQ(a->GetText(), "\n  x");
    EXPECT_EQ(b->GetText(), "\n  ");
    Append(b, " ");  // still whitespace: shared again under the longer run
    EXPECT_EQ(b->GetText(), "\n   ");
    Append(root, "\n   ");
    EXPECT_EQ(&root->GetText(), &b->GetText());
    // Texts do not count as pool blocks; destroying the tree frees them.
    EXPECT_EQ(B::GetPoolStatistics(doc).liveBlocks, 3u);
    B::Clear(doc);
    EXPECT_EQ(B::GetPoolStatistics(doc).reservedBytes, 0u);
}
