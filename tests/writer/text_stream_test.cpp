#include <gtest/gtest.h>

#include <qmxml/core/exception.h>
#include <qmxml/writer/text_stream.h>
#include <qmxml/writer/text_writer.h>

#include <fstream>
#include <string>

#include "expect_throw.h"
#include "temp_files.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;
using qmxml_test::ReadFile;
using qmxml_test::TempFile;

namespace {

// A document big enough to pass through many flushes, with non-ASCII text.
void WriteLargeDocument(CXmlTextWriter& w, int items) {
    w.StartDocument();
    w.WriteXmlDeclaration();
    w.StartElement("list", "urn:l");
    for (int i = 0; i < items; ++i) {
        w.StartElement("item", "urn:l");
        w.WriteAttribute("n", "", std::to_string(i).c_str());
        w.WriteText("caf\xC3\xA9 & cr\xC3\xA8me <br>");
        w.EndElement();
    }
    w.EndElement();
    w.EndDocument();
}

}  // namespace

TEST(TextStream, EncodedTextByEncoding) {
    const std::string text = "a\xC3\xA9<";  // "aé<" in UTF-8, the default local encoding
    CTextStream utf8(XmlEncoding_UTF8);
    utf8.GetBuffer().Append(text);
    EXPECT_EQ(utf8.GetEncoding(), XmlEncoding_UTF8);
    EXPECT_EQ(utf8.GetText(), text);
    EXPECT_EQ(utf8.GetEncodedText(), text);  // no byte-order mark

    CTextStream utf16(XmlEncoding_UTF16);
    utf16.GetBuffer().Append(text);
    EXPECT_EQ(utf16.GetEncodedText(), std::string("\xFF\xFE" "a\0\xE9\0<\0", 8));

    CTextStream local(XmlEncoding_Local);
    local.GetBuffer().Append(text);
    EXPECT_EQ(local.GetEncodedText(), text);

    CTextStream unknown(static_cast<XmlEncoding>(0));
    EXPECT_EQ(MessageOf([&] { unknown.GetEncodedText(); }), "Unknown Encoding, select UTF-8");
    CTextStream four(static_cast<XmlEncoding>(4));
    EXPECT_EQ(MessageOf([&] { four.GetEncodedText(); }), "Unknown Encoding, select UTF-8");

    // Flush and Close of the in-memory stream keep everything for the end.
    utf8.Flush();
    utf8.Close();
    EXPECT_EQ(utf8.GetText(), text);
}

TEST(TextStream, Utf16ConvertsCharactersSplitAcrossBlocks) {
    CTextStream s(XmlEncoding_UTF16);
    std::string text = "x";  // shifts the two-byte characters so that one straddles each block end
    for (int i = 0; i < 5000; ++i) text += "\xC3\xA9";
    s.GetBuffer().Append(text);
    ASSERT_GT(s.GetBuffer().GetBlockCount(), 2u);
    std::string expected("\xFF\xFE" "x\0", 4);
    for (int i = 0; i < 5000; ++i) expected.append("\xE9\0", 2);
    EXPECT_EQ(s.GetEncodedText(), expected);
}

TEST(FileTextStream, ReplacesAnExistingFileAndFlushesAsItGoes) {
    TempFile file;
    {
        std::ofstream old(file.Path(), std::ios::binary);
        old << std::string(100000, 'o');
    }
    CFileTextStream s(file.Path().c_str());
    EXPECT_EQ(s.GetFileName(), file.Path());
    s.Open();
    EXPECT_EQ(ReadFile(file.Path()), "");  // truncated when opened
    s.GetBuffer().Append("<a/>");
    s.Flush();
    EXPECT_EQ(s.GetLength(), 0u);
    EXPECT_EQ(ReadFile(file.Path()), "<a/>");
    s.GetBuffer().Append("\n");
    s.Close();
    EXPECT_EQ(ReadFile(file.Path()), "<a/>\n");
    EXPECT_EQ(s.GetBytesWritten(), 5u);
}

TEST(FileTextStream, LargeDocumentMatchesTheInMemoryText) {
    CTextStream memory;
    CXmlTextWriter mw(memory);
    WriteLargeDocument(mw, 30000);
    const std::string expected = memory.GetEncodedText();
    ASSERT_GT(expected.size(), 1u << 20);

    TempFile file;
    CFileTextStream s(file.Path().c_str());
    CXmlTextWriter fw(s);
    WriteLargeDocument(fw, 30000);
    EXPECT_LT(s.GetLength(), CXmlTextWriter::FlushThreshold);
    EXPECT_EQ(s.GetBytesWritten(), expected.size());
    EXPECT_TRUE(ReadFile(file.Path()) == expected);
}

TEST(FileTextStream, Utf16FileHasOneByteOrderMark) {
    CTextStream memory(XmlEncoding_UTF16);
    CXmlTextWriter mw(memory);
    WriteLargeDocument(mw, 500);
    const std::string expected = memory.GetEncodedText();
    ASSERT_EQ(expected.compare(0, 2, "\xFF\xFE"), 0);
    ASSERT_EQ(expected.find("\xFF\xFE", 2), std::string::npos);

    TempFile file;
    CFileTextStream s(file.Path().c_str(), XmlEncoding_UTF16);
    CXmlTextWriter fw(s);
    WriteLargeDocument(fw, 500);
    EXPECT_TRUE(ReadFile(file.Path()) == expected);
}

TEST(FileTextStream, FileErrors) {
    CFileTextStream missingDir("/nonexistent-qmxml-dir/out.xml");
    EXPECT_EQ(MessageOf([&] { missingDir.Open(); }),
              "Failed to write data to the file [/nonexistent-qmxml-dir/out.xml] error [0x00000002]");

    CFileTextStream full("/dev/full");
    full.Open();
    full.GetBuffer().Append("<a/>");
    EXPECT_EQ(MessageOf([&] { full.Flush(); }), "Failed to write data to the file. Error [0x0000001C]");

    TempFile file;
    CFileTextStream unknown(file.Path().c_str(), static_cast<XmlEncoding>(0));
    CXmlTextWriter w(unknown);
    w.StartDocument();
    w.StartElement("a", "");
    w.EndElement();
    EXPECT_EQ(MessageOf([&] { w.EndDocument(); }), "Unknown Encoding, select UTF-8");
}
