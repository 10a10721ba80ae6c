#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using namespace QmXmlLib10;

namespace {

bool IsIndentation(const CXmlElement* e) {
    if (e->GetFirstElement() == nullptr) return false;
    for (char c : e->GetText()) {
        if (c != ' ' && c != '\t' && c != '\n') return false;
    }
    return true;
}

// Compares names, namespaces, attributes, text and child order; indentation
// around child elements is not data.
::testing::AssertionResult SameTree(const CXmlElement* a, const CXmlElement* b) {
    std::vector<std::pair<const CXmlElement*, const CXmlElement*>> stack{{a, b}};
    while (!stack.empty()) {
        auto [x, y] = stack.back();
        stack.pop_back();
        if (x->GetLocalName() != y->GetLocalName() || x->GetNamespaceURI() != y->GetNamespaceURI()) {
            return ::testing::AssertionFailure() << "name " << x->GetLocalName() << " vs " << y->GetLocalName();
        }
        if (!(IsIndentation(x) && IsIndentation(y)) && x->GetText() != y->GetText()) {
            return ::testing::AssertionFailure() << "text of " << x->GetLocalName() << ": [" << x->GetText()
                                                 << "] vs [" << y->GetText() << "]";
        }
        const auto& ax = x->GetAttributes();
        const auto& ay = y->GetAttributes();
        if (ax.size() != ay.size()) return ::testing::AssertionFailure() << "attribute count of " << x->GetLocalName();
        for (size_t i = 0; i < ax.size(); ++i) {
            if (ax[i]->GetLocalName() != ay[i]->GetLocalName() || ax[i]->GetNamespaceURI() != ay[i]->GetNamespaceURI() ||
                ax[i]->GetValue() != ay[i]->GetValue()) {
                return ::testing::AssertionFailure() << "attribute " << ax[i]->GetLocalName();
            }
        }
        const CXmlElement* cx = x->GetFirstElement();
        const CXmlElement* cy = y->GetFirstElement();
        for (; cx && cy; cx = cx->GetNextSiblingElement(), cy = cy->GetNextSiblingElement()) stack.push_back({cx, cy});
        if (cx || cy) return ::testing::AssertionFailure() << "child count of " << x->GetLocalName();
    }
    return ::testing::AssertionSuccess();
}

std::string ReadOrderBook() {
    std::ifstream in(std::string(QMXML_SOURCE_DIR) + "/examples/data/orders.xml", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(OrderBookRoundTrip, WildcardElementKeepsTheTree) {
    std::string text = ReadOrderBook();
    ASSERT_GT(text.size(), 100000u);
    CXmlDocument original;
    original.LoadXmlStream(reinterpret_cast<unsigned char*>(&text[0]), static_cast<std::uint32_t>(text.size()));

    CSmartPtr<CElement> bound = new CElement();
    bound->FromXmlElement(original.GetDocumentElement());
    for (bool formatted : {true, false}) {
        for (EOLType eol : {EOLType_LF, EOLType_CRLF}) {
            const std::string written = bound->ToXml(true, formatted, eol);
            CXmlDocument again;
            again.LoadXml(written.c_str());
            EXPECT_TRUE(SameTree(original.GetDocumentElement(), again.GetDocumentElement()))
                << "formatted " << formatted << " eol " << eol;
        }
    }
    // Through compressed bytes and UTF-16 as well.
    const CBinaryData gz = bound->ToXmlStream(true, true, XmlEncoding_UTF16, EOLType_CRLF,
                                              CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
    CXmlDocument fromGz;
    fromGz.LoadXmlStream(const_cast<unsigned char*>(gz.GetData()), gz.GetLength());
    EXPECT_TRUE(SameTree(original.GetDocumentElement(), fromGz.GetDocumentElement()));
}
