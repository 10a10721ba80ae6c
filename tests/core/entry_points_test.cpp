#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <fstream>
#include <string>

#include "expect_throw.h"
#include "temp_files.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;
using qmxml_test::ReadFile;

namespace {

const char* kDocument =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Orders xmlns=\"urn:example:orders\" source=\"gen\">\n"
    "\t<Order id=\"1\">\n"
    "\t\t<Status>shipped</Status>\n"
    "\t\t<Note>a &amp; b</Note>\n"
    "\t</Order>\n"
    "\t<Empty/>\n"
    "</Orders>\n";

std::string AsString(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

}  // namespace

TEST(EntryPoints, TextRoundTripThroughWildcardElement) {
    CSmartPtr<CElement> e = new CElement();
    e->FromXml(kDocument);
    EXPECT_EQ(e->GetLocalName(), "Orders");
    EXPECT_EQ(e->ToXml(true, true, EOLType_LF), kDocument);
    const std::string bare = e->ToXml(false, false, EOLType_LF);
    EXPECT_EQ(bare.rfind("<Orders xmlns=\"urn:example:orders\" source=\"gen\"><Order id=\"1\">", 0), 0u) << bare;
    EXPECT_EQ(bare.find('\n'), std::string::npos);
    const std::string crlf = e->ToXml(true, true, EOLType_CRLF);
    EXPECT_EQ(crlf.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Orders", 0), 0u);

    CSmartPtr<CElement> again = new CElement();
    again->FromXmlElement(e.Get());
    EXPECT_EQ(again->ToXml(true, true, EOLType_LF), kDocument);
}

TEST(EntryPoints, StreamsCompressionAndFiles) {
    CSmartPtr<CElement> e = new CElement();
    e->FromXml(kDocument);
    const CBinaryData plain = e->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF);
    EXPECT_EQ(AsString(plain), kDocument);

    const CBinaryData zlib = e->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                            CXmlSerializationContext::m_defaultContext, CompressionType_ZLib);
    ASSERT_GT(zlib.GetLength(), 2u);
    EXPECT_EQ(zlib[0], 0x78);
    CSmartPtr<CElement> fromZlib = new CElement();
    fromZlib->FromXmlStream(zlib);
    EXPECT_EQ(fromZlib->ToXml(true, true, EOLType_LF), kDocument);

    const CBinaryData utf16 = e->ToXmlStream(true, false, XmlEncoding_UTF16, EOLType_LF);
    ASSERT_GT(utf16.GetLength(), 4u);
    EXPECT_EQ(utf16[0], 0xFF);
    EXPECT_EQ(utf16[1], 0xFE);
    CSmartPtr<CElement> fromUtf16 = new CElement();
    fromUtf16->FromXmlStream(utf16);
    EXPECT_EQ(fromUtf16->ToXml(true, true, EOLType_LF), kDocument);

    const qmxml_test::TempDir dir;
    const std::string zlibFile = dir.File("zlib.xml");
    EXPECT_EQ(MessageOf<CQmException>([&] {
                  e->ToXmlFile(zlibFile.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF,
                               CXmlSerializationContext::m_defaultContext, CompressionType_ZLib);
              }),
              "ZLIB Compression only available for To Stream methods.");
    EXPECT_FALSE(std::ifstream(zlibFile).good());

    const std::string gzFile = dir.File("doc.xml.gz");
    e->ToXmlFile(gzFile.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF, CXmlSerializationContext::m_defaultContext,
                 CompressionType_GZip);
    const std::string gz = ReadFile(gzFile);
    ASSERT_GT(gz.size(), 2u);
    EXPECT_EQ(static_cast<unsigned char>(gz[0]), 0x1F);
    CSmartPtr<CElement> fromGz = new CElement();
    fromGz->FromXmlFile(gzFile.c_str());
    EXPECT_EQ(fromGz->ToXml(true, true, EOLType_LF), kDocument);

    const std::string syncFile = dir.File("sync.xml");
    const std::string asyncFile = dir.File("async.xml");
    e->ToXmlFile(syncFile.c_str(), true, true, XmlEncoding_UTF16, EOLType_CRLF);
    AsyncToXmlFile(true);
    e->ToXmlFile(asyncFile.c_str(), true, true, XmlEncoding_UTF16, EOLType_CRLF);
    AsyncToXmlFile(false);
    const std::string expected = AsString(e->ToXmlStream(true, true, XmlEncoding_UTF16, EOLType_CRLF));
    EXPECT_EQ(ReadFile(syncFile), expected);
    EXPECT_EQ(ReadFile(asyncFile), expected);

    const std::string missingDir = dir.File("no/such/dir.xml");
    EXPECT_EQ(MessageOf<CQmException>([&] { e->ToXmlFile(missingDir.c_str()); }),
              "Failed to write data to the file [" + missingDir + "] error [0x00000002]");
}

TEST(EntryPoints, ReadingErrorsAndFastInfosetErrors) {
    CSmartPtr<CElement> e = new CElement();
    EXPECT_EQ(MessageOf<CQmException>([&] { e->FromXml(""); }), "XML String is empty!");
    unsigned char byte = 0;
    EXPECT_EQ(MessageOf<CQmException>([&] { e->FromXmlStream(&byte, 0); }), "XML Stream is empty!");
    EXPECT_NE(MessageOf<CQmException>([&] { e->FromXml("<a><b></a>"); }).find(" at line 1"), std::string::npos);
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { e->ToFastInfosetStream(); }),
              "Failed to write FastInfoset. A name may not be empty.");
    EXPECT_EQ(MessageOf<CQmException>([&] {
                  e->ToFastInfosetFile("x.fi", FInfoDecl_None, CXmlSerializationContext::m_defaultContext,
                                       CompressionType_ZLib);
              }),
              "ZLIB Compression only available for To Stream methods.");
}
