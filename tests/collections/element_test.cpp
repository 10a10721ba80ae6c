#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <string>

#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;

namespace {

// Writes a compact bracketed form of what it is given: {ns}name[attrs](text)...
class TraceWriter : public qmxml_test::SilentWriter {
public:
    TraceWriter() : SilentWriter("TraceWriter") {}
    void WriteRawLine(const char* t) override { out += std::string("<?") + t + "?>"; }
    void WriteRaw(const char* t) override { out += std::string("!") + t + "!"; }
    void StartElement(const char* name, const char* ns) override {
        CXmlWriter::StartElement(name, ns);
        ++depth;
        maxDepth = std::max(maxDepth, depth);
        if (!quiet) out += std::string("<{") + ns + "}" + name;
    }
    void WriteText(const char* value, ItemType) override {
        if (!quiet) out += std::string("(") + value + ")";
    }
    void EndElement() override {
        CXmlWriter::EndElement();
        --depth;
        if (!quiet) out += ">";
    }
    void WriteAttribute(const char* name, const char* ns, const char* value, ItemType) override {
        out += std::string(" {") + ns + "}" + name + "=" + value;
    }
    std::string out;
    bool quiet = false;
    int depth = 0, maxDepth = 0;
};

class ExposedElement : public CElement {
public:
    using CElement::CElement;
    using CElement::ToXml_Int;
};

}  // namespace

TEST(Element, ReadsNamesAttributesTextAndChildOrder) {
    CXmlDocument doc;
    CXmlElement* root = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(root, "Order", "urn:o");
    CXmlTreeBuilder::AddAttribute(root, "id", "7", "");
    CXmlTreeBuilder::AddAttribute(root, "lang", "pt", "http://www.w3.org/XML/1998/namespace");
    CXmlTreeBuilder::AppendText(root, "\n  ", 3);  // indentation around children is dropped
    const char* names[] = {"Sku", "Note", "Sku"};
    for (const char* n : names) {
        CXmlElement* c = CXmlTreeBuilder::CreateChild(root);
        CXmlTreeBuilder::SetName(c, n, std::string(n) == "Note" ? "" : "urn:o");
        CXmlTreeBuilder::AppendText(c, " x ", 3);  // leaf text is kept as is
    }
    CSmartPtr<CElement> e = new CElement();
    e->ReadFrom(root);
    EXPECT_EQ(e->GetLocalName(), "Order");
    EXPECT_EQ(e->GetNamespaceURI(), "urn:o");
    EXPECT_EQ(e->GetText(), "");
    ASSERT_EQ(e->GetAttributeCount(), 2);
    EXPECT_EQ(e->GetAttributes().GetItem(1)->GetNamespaceURI(), "http://www.w3.org/XML/1998/namespace");
    ASSERT_EQ(e->GetElementCount(), 3);
    EXPECT_EQ(e->GetElements().GetItem(1)->GetLocalName(), "Note");
    EXPECT_EQ(e->GetElements().GetItem(1)->GetNamespaceURI(), "");
    EXPECT_EQ(e->GetElements().GetItem(2)->GetText(), " x ");

    TraceWriter w;
    e->WriteTo(&w);
    EXPECT_EQ(w.out,
              "<{urn:o}Order {}id=7 {http://www.w3.org/XML/1998/namespace}lang=pt<{urn:o}Sku( x )><{}Note( x )>"
              "<{urn:o}Sku( x )>>");

    // Mixed content with real text keeps it.
    CXmlTreeBuilder::AppendText(root, "data", 4);
    e->ReadFrom(root);
    EXPECT_EQ(e->GetText(), "\n  data");
}

TEST(Element, RootWritesContextItems) {
    CXmlSerializationContext ctx;
    ctx.GetProcessingInstructions().push_back("pi");
    ctx.GetAdditionalRootAttributes()->Add("extra", "urn:x", "1");
    ctx.SetInLineSchema("S");
    CSmartPtr<ExposedElement> e = new ExposedElement("r", "urn:r");
    e->SetText("t");
    e->GetAttributes().Add("a", "", "v");
    TraceWriter w;
    e->ToXml_Int(&w, true, "r", ctx, false);
    EXPECT_EQ(w.out, "<?pi?><{urn:r}r {}a=v {urn:x}extra=1!S!(t)>");
    EXPECT_EQ(w.GetDefaultNamespace(), "urn:r");  // no alias given: its own namespace is the default

    CXmlSerializationContext aliased;
    aliased.GetNamespaceAliases().Add("p", "urn:r");
    TraceWriter w2;
    e->ToXml_Int(&w2, true, "r", aliased, false);
    EXPECT_EQ(w2.GetDefaultNamespace(), "");
    EXPECT_EQ(w2.GetNamespaceAliases().at("urn:r"), "p");
}

TEST(Element, WildcardCollectionsCheckNamespaces) {
    CSmartPtr<CElementCol> local = new CElementCol("any", "##local", "urn:t");
    local->Add("a", "");
    qmxml_test::ExpectMessage<CQmInvalidNamespaceException>(
        [&] { local->Add("b", "urn:t"); },
        "Invalid namespace [urn:t]. The namespace must be one of [##local] where the target namespace is [urn:t]");
    EXPECT_EQ(local->GetCount(), 1);
}

TEST(Element, DeepTreesNeverRecurse) {
    constexpr int kDepth = 1000000;
    CXmlDocument doc;
    CXmlElement* e = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(e, "d", "");
    for (int i = 1; i < kDepth; ++i) {
        e = CXmlTreeBuilder::CreateChild(e);
        CXmlTreeBuilder::SetName(e, "d", "");
    }
    CXmlTreeBuilder::AppendText(e, "leaf", 4);
    CSmartPtr<CElement> bound = new CElement();
    bound->ReadFrom(doc.GetDocumentElement());
    TraceWriter w;
    w.quiet = true;
    bound->WriteTo(&w);
    EXPECT_EQ(w.maxDepth, kDepth);
    EXPECT_EQ(w.depth, 0);

    // A subtree held elsewhere outlives its parent.
    CSmartPtr<CElement> kept = bound->GetElements().GetItem(0)->GetElements().GetItem(0);
    bound = nullptr;
    EXPECT_EQ(kept->GetElementCount(), 1);
    EXPECT_EQ(kept->GetLocalName(), "d");
}
