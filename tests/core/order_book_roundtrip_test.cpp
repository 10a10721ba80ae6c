#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <string>

#include "same_tree.h"
#include "temp_files.h"

using namespace QmXmlLib10;

namespace {

// Indentation around child elements is not data.
::testing::AssertionResult SameTree(const CXmlElement* a, const CXmlElement* b) {
    return qmxml_test::SameTree(a, b, qmxml_test::TreeText::IgnoreIndentation);
}

std::string ReadOrderBook() { return qmxml_test::ReadFile(QMXML_SOURCE_DIR "/examples/data/orders.xml"); }

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
