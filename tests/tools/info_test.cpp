// `qmxml info` reports the format the loader detected, for every kind of input.
#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <string>

#include "temp_files.h"
#include "tools/tool_run.h"

using namespace QmXmlLib10;
using qmxml_test::RunTool;
using qmxml_test::TempDir;
using qmxml_test::ToolRun;

namespace {

// Repetitive enough for the one-shot compression, which refuses data that does not shrink.
std::string Document() {
    std::string xml = "<o:a xmlns:o='urn:o'>";
    for (int i = 0; i < 20; ++i) xml += "<b k='v'>text</b>";
    return xml + "<b/></o:a>";
}

std::string AsString(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

std::string Text(CompressionType compression, XmlEncoding encoding = XmlEncoding_UTF8) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(Document().c_str());
    return AsString(element->ToXmlStream(true, false, encoding, EOLType_LF,
                                         CXmlSerializationContext::m_defaultContext, compression));
}

std::string FastInfoset(CompressionType compression) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(Document().c_str());
    return AsString(element->ToFastInfosetStream(FInfoDecl_None, CXmlSerializationContext::m_defaultContext,
                                                 compression));
}

struct InfoCase {
    const char* name;
    std::string (*input)();
    const char* header;  // the lines before "bytes:"
};

void PrintTo(const InfoCase& c, std::ostream* os) { *os << c.name; }

const InfoCase kInfoCases[] = {
    {"Text", [] { return Text(CompressionType_None); }, "format:     XML text\nencoding:   UTF-8\n"},
    {"Utf16Text", [] { return Text(CompressionType_None, XmlEncoding_UTF16); },
     "format:     XML text\nencoding:   UTF-16\n"},
    {"GzipText", [] { return Text(CompressionType_GZip); },
     "format:     gzip-compressed XML text\nencoding:   UTF-8\n"},
    {"ZlibText", [] { return Text(CompressionType_ZLib); },
     "format:     zlib-compressed XML text\nencoding:   UTF-8\n"},
    {"FastInfoset", [] { return FastInfoset(CompressionType_None); }, "format:     Fast Infoset\n"},
    {"GzipFastInfoset", [] { return FastInfoset(CompressionType_GZip); }, "format:     gzip-compressed Fast Infoset\n"},
    {"ZlibFastInfoset", [] { return FastInfoset(CompressionType_ZLib); }, "format:     zlib-compressed Fast Infoset\n"},
};

class ToolInfo : public ::testing::TestWithParam<InfoCase> {};

TEST_P(ToolInfo, ReportsTheDetectedFormatAndTheSameCounts) {
    const InfoCase& c = GetParam();
    TempDir dir;
    const std::string input = c.input();
    const ToolRun run = RunTool("info '" + dir.Write("input", input) + "'");
    EXPECT_EQ(run.status, 0) << run.out;
    const std::string expected = std::string(c.header) + "bytes:      " + std::to_string(input.size()) +
                                 "\nroot:       {urn:o}a\nelements:   22\nattributes: 20\nmax depth:  2\n"
                                 "namespaces: 1\n  urn:o\n";
    EXPECT_EQ(run.out.substr(0, expected.size()), expected);
    // Only Fast Infoset input has vocabulary tables to list.
    const bool fastInfoset = std::string(c.name).find("FastInfoset") != std::string::npos;
    EXPECT_EQ(run.out.find("vocabulary:") != std::string::npos, fastInfoset) << run.out;
}

INSTANTIATE_TEST_SUITE_P(Inputs, ToolInfo, ::testing::ValuesIn(kInfoCases),
                         [](const ::testing::TestParamInfo<InfoCase>& info) { return std::string(info.param.name); });

TEST(ToolInfoInput, DeclaredEncodingIsShownAsDeclared) {
    TempDir dir;
    const std::string latin = dir.Write("latin.xml", "<?xml version='1.0' encoding='ISO-8859-1'?><a>caf\xe9</a>");
    const ToolRun run = RunTool("info '" + latin + "'");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_EQ(run.out.substr(0, 51), "format:     XML text\nencoding:   ISO-8859-1\nbytes: ");
}

TEST(ToolInfoInput, TextThatOnlyLooksCompressedIsReadAsText) {
    TempDir dir;
    // 'x' '^' is a valid zlib header; 'F' starts no deflate block, and the whole is no XML either.
    const ToolRun run = RunTool("info '" + dir.Write("x.xml", "x^F<a/>") + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "not well-formed (invalid token) at line 1\n");
}

}  // namespace
