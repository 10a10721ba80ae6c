// Fast Infoset decoded an element at a time, as the FromXml... entry points
// read it while binding: the tree grows only as far as its accessors reach,
// a terminator that ends two elements can stop between them, ended elements
// are freed, and a fault further on is reported only when reached.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <qmxml/collections/element.h>
#include <qmxml/core/exception.h>
#include <qmxml/core/serialization_context.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_element.h>
#include <qmxml/dom/xml_tree_builder.h>
#include <qmxml/types/binary_data.h>

#include "dom/xml_document_loading.h"
#include "dom/xml_stream_source.h"

using namespace QmXmlLib10;

namespace {

using B = CXmlTreeBuilder;
using Octets = std::vector<unsigned char>;

Octets Encode(const std::string& text) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(text.c_str());
    const CBinaryData fi = element->ToFastInfosetStream();
    return Octets(fi.GetData(), fi.GetData() + fi.GetLength());
}

// A document loaded the way the FromXml... entry points load it: up to the
// start of the document element.
class StreamedDocument {
public:
    explicit StreamedDocument(Octets octets) : m_octets(std::move(octets)) {
        CXmlDocumentLoading::RequestStreaming(m_document);
        m_document.LoadXmlStream(m_octets.data(), static_cast<std::uint32_t>(m_octets.size()));
    }
    CXmlDocument& Document() { return m_document; }
    CXmlElement* Root() { return m_document.GetDocumentElement(); }
    CXmlStreamSource& Stream() { return *CXmlDocumentLoading::GetStream(m_document); }
    std::size_t LiveNodes() const { return B::GetPoolStatistics(m_document).liveBlocks; }

private:
    Octets m_octets;  // the source decodes from these
    CXmlDocument m_document;
};

TEST(FastInfosetStream, DecodesOnlyAsFarAsTheTreeIsRead) {
    StreamedDocument doc(Encode("<r a=\"1\"><x>1</x><y><z>2</z></y><w/></r>"));
    ASSERT_NE(nullptr, CXmlDocumentLoading::GetStream(doc.Document()));
    EXPECT_EQ(XmlInputFormat_FastInfoset, doc.Document().GetDetectedFormat().format);
    CXmlElement* root = doc.Root();
    ASSERT_NE(nullptr, root);
    // Stopped right after the document element's start tag.
    EXPECT_EQ("r", root->GetLocalName());
    EXPECT_EQ("1", root->GetAttribute("a", ""));
    EXPECT_TRUE(B::IsOpen(root));
    EXPECT_EQ(nullptr, B::PeekFirstChild(root));

    // The first child, decoded up to its end and no further.
    CXmlElement* x = root->GetFirstElement();
    ASSERT_NE(nullptr, x);
    EXPECT_EQ("x", x->GetLocalName());
    EXPECT_FALSE(B::IsOpen(x));
    EXPECT_EQ("1", x->GetText());
    EXPECT_EQ(nullptr, B::PeekNextSibling(x));

    CXmlElement* y = x->GetNextSiblingElement();
    ASSERT_NE(nullptr, y);
    EXPECT_FALSE(B::IsOpen(y));
    ASSERT_NE(nullptr, B::PeekFirstChild(y));
    EXPECT_EQ("2", B::PeekFirstChild(y)->GetText());
    EXPECT_EQ(nullptr, B::PeekNextSibling(y));

    CXmlElement* w = y->GetNextSiblingElement();
    ASSERT_NE(nullptr, w);
    EXPECT_EQ("w", w->GetLocalName());
    EXPECT_TRUE(B::IsOpen(root));
    EXPECT_EQ(nullptr, w->GetNextSiblingElement());
    EXPECT_FALSE(B::IsOpen(root));
    doc.Stream().Drain();
}

// The writer ends <a> and <r> with one 0xFF (and <c> and <b> with another):
// waiting for the root's first child stops after a's end, between the two
// ends of that octet, and the root's end comes with the next step.
TEST(FastInfosetStream, StopsBetweenTheEndsOfADoubleTerminator) {
    StreamedDocument doc(Encode("<r><a><b><c/></b></a></r>"));
    CXmlElement* root = doc.Root();
    const CXmlElement* a = root->GetFirstElement();
    ASSERT_NE(nullptr, a);
    EXPECT_EQ("a", a->GetLocalName());
    EXPECT_FALSE(B::IsOpen(a));
    EXPECT_TRUE(B::IsOpen(root));
    const CXmlElement* b = B::PeekFirstChild(a);
    ASSERT_NE(nullptr, b);
    ASSERT_NE(nullptr, B::PeekFirstChild(b));
    EXPECT_EQ("c", B::PeekFirstChild(b)->GetLocalName());
    EXPECT_EQ(nullptr, a->GetNextSiblingElement());
    EXPECT_FALSE(B::IsOpen(root));
    doc.Stream().Drain();
}

std::string Book(int orders) {
    std::string text = "<book>";
    for (int i = 0; i < orders; ++i) text += "<o><l>1</l><l>2</l><l>3</l></o>";
    return text + "</book>";
}

// Each order's lines are freed once it is read, as binding does: the tree
// holds the orders, not their lines.
TEST(FastInfosetStream, ReleasedContentIsFreed) {
    constexpr int kOrders = 5000;
    StreamedDocument doc(Encode(Book(kOrders)));
    int orders = 0;
    std::size_t most = 0;
    for (CXmlElement* o = doc.Root()->GetFirstElement(); o != nullptr; o = o->GetNextSiblingElement()) {
        int lines = 0;
        for (const CXmlElement* l = o->GetFirstElement(); l != nullptr; l = l->GetNextSiblingElement()) ++lines;
        EXPECT_EQ(3, lines);
        CXmlStreamSource::ReleaseContent(o);
        most = std::max(most, doc.LiveNodes());
        ++orders;
    }
    EXPECT_EQ(kOrders, orders);
    // The root and the orders, plus at most the lines of the next order.
    EXPECT_LE(most, static_cast<std::size_t>(kOrders) + 8);
    doc.Stream().Drain();
}

// Once binding is done, what is left is only checked: ended elements go at once.
TEST(FastInfosetStream, DrainingKeepsNothing) {
    constexpr int kOrders = 5000;
    StreamedDocument doc(Encode(Book(kOrders)));
    ASSERT_NE(nullptr, doc.Root()->GetFirstElement());
    const std::size_t before = doc.LiveNodes();
    doc.Stream().Drain();
    EXPECT_LE(doc.LiveNodes(), before + 1);
    EXPECT_FALSE(B::IsOpen(doc.Root()));
}

TEST(FastInfosetStream, FaultAheadIsReportedWhenReached) {
    Octets fi = Encode(Book(3));
    fi.resize(fi.size() - 3);
    StreamedDocument doc(fi);
    CXmlElement* o = doc.Root()->GetFirstElement();
    ASSERT_NE(nullptr, o);
    EXPECT_EQ("o", o->GetLocalName());
    // Reading past the end fails in the accessor, with a marker the entry
    // point turns back into the decoder's error.
    EXPECT_THROW(
        {
            for (const CXmlElement* e = o; e != nullptr; e = e->GetNextSiblingElement()) {
            }
        },
        CXmlStreamAbort);
    try {
        doc.Stream().RethrowFailure();
        FAIL() << "no failure recorded";
    } catch (const CQmException& e) {
        EXPECT_EQ("Failed to parse FastInfoset. Unexpected End of File.", e.GetFullMessage());
    }
    // Every later step reports the same.
    try {
        doc.Stream().Drain();
        FAIL() << "draining after a failure succeeded";
    } catch (const CQmException& e) {
        EXPECT_EQ("Failed to parse FastInfoset. Unexpected End of File.", e.GetFullMessage());
    }
}

// A fault before the document element's start is the load's own failure.
TEST(FastInfosetStream, FaultBeforeTheDocumentElementFailsTheLoad) {
    const Octets fi = Encode("<r/>");
    const Octets cut(fi.begin(), fi.begin() + 6);
    CXmlDocument document;
    CXmlDocumentLoading::RequestStreaming(document);
    Octets bytes = cut;
    try {
        document.LoadXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        FAIL() << "a cut header loaded";
    } catch (const CQmException& e) {
        EXPECT_EQ("Failed to parse FastInfoset. Unexpected End of File.", e.GetFullMessage());
    }
    EXPECT_EQ(XmlInputFormat_FastInfoset, document.GetDetectedFormat().format);
}

// Reading the rest into the tree (a wildcard root takes the whole document)
// leaves what loading would have built, statistics included.
TEST(FastInfosetStream, ReadRestBuildsTheWholeTree) {
    const std::string text = "<r><a>1</a><b><c>2</c></b></r>";
    StreamedDocument doc(Encode(text));
    doc.Stream().ReadRest();
    CXmlDocument whole;
    Octets fi = Encode(text);
    whole.LoadXmlStream(fi.data(), static_cast<std::uint32_t>(fi.size()));
    CSmartPtr<CElement> a = new CElement(), b = new CElement();
    a->FromXmlElement(doc.Root());
    b->FromXmlElement(whole.GetDocumentElement());
    EXPECT_EQ(b->ToXml(), a->ToXml());
    ASSERT_NE(nullptr, doc.Document().GetFastInfosetStatistics());
    EXPECT_EQ(4u, doc.Document().GetFastInfosetStatistics()->elementNames);
    EXPECT_EQ(whole.GetFastInfosetStatistics()->characterChunks,
              doc.Document().GetFastInfosetStatistics()->characterChunks);
}

}  // namespace
