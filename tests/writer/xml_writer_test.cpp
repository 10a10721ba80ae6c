#include <gtest/gtest.h>

#include <qmxml/core/exception.h>
#include <qmxml/writer/xml_writer.h>

#include <string>
#include <vector>

#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;

namespace {

// Records calls and exposes the base's element contexts.
class RecordingWriter : public qmxml_test::SilentWriter {
public:
    RecordingWriter() : SilentWriter("RecordingWriter") {}
    void WriteAttribute(const char* name, const char*, const char* value, ItemType) override {
        attributes.push_back(std::string(name) + "=" + value);
    }
    using CXmlWriter::GetCurrentContext;
    std::vector<std::string> attributes;
};

}  // namespace

TEST(XmlWriterBase, RootSettingsFreezeOnceTheRootStarts) {
    RecordingWriter w;
    w.StartDocument();
    w.SetDefaultNamespace("urn:d");
    w.AddNamespaceAlias("a", "urn:a");
    w.AddNamespaceAlias("b", "urn:a");  // replaces the alias of urn:a
    w.StartElement("root", "urn:d");
    w.AddNamespaceAlias("c", "urn:c");
    w.SetDefaultNamespace("urn:other");
    EXPECT_EQ(w.GetDefaultNamespace(), "urn:d");
    ASSERT_EQ(w.GetNamespaceAliases().size(), 1u);
    EXPECT_EQ(w.GetNamespaceAliases().at("urn:a"), "b");

    auto* root = w.GetCurrentContext();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->m_depth, 0);
    ASSERT_NE(root->FindPrefix("urn:a"), nullptr);
    EXPECT_EQ(*root->FindPrefix("urn:a"), "b");
    EXPECT_EQ(root->FindPrefix("urn:c"), nullptr);

    w.StartElement("child", "urn:x");
    auto* child = w.GetCurrentContext();
    EXPECT_EQ(child->m_depth, 1);
    EXPECT_EQ(root->m_childCount, 1);
    ASSERT_EQ(child->GetOwnNamespaceCount(), 1u);  // the base names it: a new prefix, declared here
    EXPECT_EQ(child->GetOwnNamespacePrefix(0), "AA");
    EXPECT_EQ(*child->FindPrefix("urn:a"), "b");  // inherited
    w.EndElement();
    w.StartElement("sibling", "urn:x");
    EXPECT_EQ(w.GetCurrentContext()->GetOwnNamespaceCount(), 1u);  // a sibling declares again
    EXPECT_EQ(root->m_childCount, 2);
    w.EndElement();
    w.EndElement();
    EXPECT_NO_THROW(w.EndDocument());
}

TEST(XmlWriterBase, EndingTheDocumentWithAnOpenElementThrows) {
    RecordingWriter w;
    w.StartDocument();
    w.StartElement("root", "");
    w.StartElement("open", "");
    qmxml_test::ExpectMessage<CQmException>([&] { w.EndDocument(); }, "An Element has not been closed.");
    // Destroying a writer with open elements frees their contexts.
}
