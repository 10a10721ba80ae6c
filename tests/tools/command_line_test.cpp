// The tool's command line: help for each subcommand, usage errors with exit
// status 2 and the parser's message, and convert's options each reaching the
// writer as the library's own calls would pass them.
#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <string>
#include <vector>

#include "temp_files.h"
#include "tools/tool_run.h"

using namespace QmXmlLib10;
using qmxml_test::Quoted;
using qmxml_test::ReadFile;
using qmxml_test::RunTool;
using qmxml_test::TempDir;
using qmxml_test::ToolRun;

namespace {

struct HelpCase {
    const char* name;
    const char* arguments;
    const char* head;              // the description and usage lines, exactly
    std::vector<const char*> lists;  // what the rest must mention
};

void PrintTo(const HelpCase& c, std::ostream* os) { *os << c.name; }

const HelpCase kHelpCases[] = {
    {"Tool", "--help",
     "Converts, inspects and validates XML documents. With no arguments, loads the bundled\n"
     "order book, writes it formatted, gzips it, reads it back, checks nothing changed\n"
     "and prints sizes and speeds.\n"
     "Usage: qmxml [OPTIONS] SUBCOMMAND\n",
     {"  convert ", "  info ", "  validate ", "  schema ", "IN, OUT and DOC may be - for standard input or output."}},
    {"Convert", "convert --help",
     "write a document again, as XML text or Fast Infoset\nUsage: qmxml convert [OPTIONS] IN OUT\n",
     {"--to TEXT:{xml,fi}=xml", "--encoding TEXT:{utf-8,utf-16}=utf-8", "--eol TEXT:{lf,crlf}=lf",
      "--indent,--no-indent", "--no-declaration", "--compress TEXT:{none,gzip,zlib}=none",
      "--fi-declaration INT:INT in [0 - 9]=0", "--fi-typed", "--fi-vocabulary TEXT", "--schema TEXT ..."}},
    {"ConvertShortFlag", "convert -h",
     "write a document again, as XML text or Fast Infoset\nUsage: qmxml convert [OPTIONS] IN OUT\n", {}},
    {"Info", "info --help",
     "print the format, counts, depth and namespaces of a document (and its vocabulary tables)\n"
     "Usage: qmxml info [OPTIONS] IN\n",
     {"IN TEXT REQUIRED"}},
    {"Schema", "schema --help",
     "print the model of schemas: types, members with kind and cardinality, facets\n"
     "Usage: qmxml schema [OPTIONS] SCHEMA...\n",
     {"SCHEMA TEXT ... REQUIRED"}},
};

class ToolHelp : public ::testing::TestWithParam<HelpCase> {};

TEST_P(ToolHelp, PrintsUsageAndExitsZero) {
    const HelpCase& c = GetParam();
    const ToolRun run = RunTool(c.arguments, false);
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_EQ(run.out.substr(0, std::string(c.head).size()), c.head);
    for (const char* item : c.lists) EXPECT_NE(run.out.find(item), std::string::npos) << item << "\n" << run.out;
}

INSTANTIATE_TEST_SUITE_P(Subcommands, ToolHelp, ::testing::ValuesIn(kHelpCases),
                         [](const ::testing::TestParamInfo<HelpCase>& info) { return std::string(info.param.name); });

struct UsageCase {
    const char* name;
    const char* arguments;
    const char* message;  // the first line; the parser adds a hint to --help
};

void PrintTo(const UsageCase& c, std::ostream* os) { *os << c.name; }

const UsageCase kUsageCases[] = {
    {"ConvertWithoutFiles", "convert", "IN is required"},
    {"ConvertWithoutOutput", "convert in.xml", "OUT is required"},
    {"ConvertWithThirdFile", "convert a b c", "The following argument was not expected: c"},
    {"UnknownOption", "convert a b --unknown", "The following argument was not expected: --unknown"},
    {"OptionOfAnotherCommand", "info --fi-typed x", "The following argument was not expected: --fi-typed"},
    {"OptionWithoutValue", "convert a b --to", "--to: 1 required TEXT:{xml,fi} missing"},
    {"UnknownFormat", "convert a b --to xx", "--to: xx not in {xml,fi}"},
    {"UnknownEncoding", "convert a b --encoding latin1", "--encoding: latin1 not in {utf-8,utf-16}"},
    {"UnknownLineEnd", "convert a b --eol cr", "--eol: cr not in {lf,crlf}"},
    {"UnknownCompression", "convert a b --compress bz2", "--compress: bz2 not in {none,gzip,zlib}"},
    {"DeclarationTooLarge", "convert a b --fi-declaration 10", "--fi-declaration: Value 10 not in range 0 to 9"},
    {"DeclarationNotANumber", "convert a b --fi-declaration x", "--fi-declaration: Value x not in range 0 to 9"},
    {"InfoWithoutFile", "info", "IN is required"},
    {"SchemaWithoutFile", "schema", "SCHEMA is required"},
    {"UnknownCommand", "bogus", "A subcommand is required"},
};

class ToolUsageError : public ::testing::TestWithParam<UsageCase> {};

TEST_P(ToolUsageError, PrintsTheParsersMessageAndExitsTwo) {
    const UsageCase& c = GetParam();
    const ToolRun run = RunTool(c.arguments);
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_EQ(run.out, std::string(c.message) + "\nRun with --help for more information.\n");
}

INSTANTIATE_TEST_SUITE_P(Arguments, ToolUsageError, ::testing::ValuesIn(kUsageCases),
                         [](const ::testing::TestParamInfo<UsageCase>& info) { return std::string(info.param.name); });

// Repetitive enough for the one-shot compression.
std::string Document() {
    std::string xml = "<o:list xmlns:o='urn:o'>";
    for (int i = 0; i < 20; ++i) xml += "<o:item n='" + std::to_string(i) + "'>caf\xc3\xa9 " + std::to_string(i * 7) + "</o:item>";
    return xml + "</o:list>";
}

std::string AsString(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

CSmartPtr<CElement> Parsed() {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(Document().c_str());
    return element;
}

std::string AsText(bool declaration, bool indent, XmlEncoding encoding, EOLType eol,
                   CompressionType compression = CompressionType_None) {
    return AsString(Parsed()->ToXmlStream(declaration, indent, encoding, eol, CXmlSerializationContext(), compression));
}

std::string AsFastInfoset(FInfoDecl declaration, const CXmlSerializationContext& ctx,
                          CompressionType compression = CompressionType_None) {
    return AsString(Parsed()->ToFastInfosetStream(declaration, ctx, compression));
}

struct ConvertCase {
    const char* name;
    const char* options;
    std::string (*expected)();  // the same document written by the library
};

void PrintTo(const ConvertCase& c, std::ostream* os) { *os << c.name; }

const ConvertCase kConvertCases[] = {
    {"Defaults", "", [] { return AsText(true, true, XmlEncoding_UTF8, EOLType_LF); }},
    {"ExplicitDefaults", "--to xml --encoding utf-8 --eol lf --indent --compress none",
     [] { return AsText(true, true, XmlEncoding_UTF8, EOLType_LF); }},
    {"NoIndent", "--no-indent", [] { return AsText(true, false, XmlEncoding_UTF8, EOLType_LF); }},
    {"LastIndentFlagWins", "--no-indent --indent", [] { return AsText(true, true, XmlEncoding_UTF8, EOLType_LF); }},
    {"NoDeclaration", "--no-declaration", [] { return AsText(false, true, XmlEncoding_UTF8, EOLType_LF); }},
    {"CrLf", "--eol crlf", [] { return AsText(true, true, XmlEncoding_UTF8, EOLType_CRLF); }},
    {"Utf16", "--encoding utf-16", [] { return AsText(true, true, XmlEncoding_UTF16, EOLType_LF); }},
    {"Gzip", "--compress gzip", [] { return AsText(true, true, XmlEncoding_UTF8, EOLType_LF, CompressionType_GZip); }},
    {"ZlibUnindented", "--compress zlib --no-indent",
     [] { return AsText(true, false, XmlEncoding_UTF8, EOLType_LF, CompressionType_ZLib); }},
    {"FastInfoset", "--to fi", [] { return AsFastInfoset(FInfoDecl_None, CXmlSerializationContext()); }},
    {"FastInfosetWithDeclaration", "--to fi --fi-declaration 3",
     [] { return AsFastInfoset(static_cast<FInfoDecl>(3), CXmlSerializationContext()); }},
    {"FastInfosetTypedGzip", "--to fi --fi-typed --compress gzip",
     [] {
         CXmlSerializationContext ctx;
         ctx.GetFIContext().SetSuggestedValues();
         return AsFastInfoset(FInfoDecl_None, ctx, CompressionType_GZip);
     }},
    {"FastInfosetVocabulary", "--to fi --fi-vocabulary urn:v",
     [] {
         CXmlSerializationContext ctx;
         ctx.GetFIContext().SetExternalVocabularyURI("urn:v");
         ctx.GetFIContext().SetUseGeneratedVocabulary(true);
         return AsFastInfoset(FInfoDecl_None, ctx);
     }},
};

class ToolConvert : public ::testing::TestWithParam<ConvertCase> {};

TEST_P(ToolConvert, WritesWhatTheLibraryWritesForTheOptions) {
    const ConvertCase& c = GetParam();
    TempDir dir;
    const std::string in = dir.Write("in.xml", Document()), out = dir.File("out");
    const ToolRun run = RunTool("convert " + Quoted(in) + " " + Quoted(out) + " " + c.options);
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(ReadFile(out), c.expected());
}

TEST_P(ToolConvert, OptionsMayComeBeforeTheFilesAndStandardStreamsWork) {
    const ConvertCase& c = GetParam();
    TempDir dir;
    const std::string in = dir.Write("in.xml", Document());
    const ToolRun run = RunTool(std::string("convert ") + c.options + " - - < " + Quoted(in), false);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, c.expected());
}

INSTANTIATE_TEST_SUITE_P(Options, ToolConvert, ::testing::ValuesIn(kConvertCases),
                         [](const ::testing::TestParamInfo<ConvertCase>& info) { return std::string(info.param.name); });

TEST(ToolConvertErrors, MalformedInputExitsOneWithTheReadersMessage) {
    TempDir dir;
    const ToolRun run = RunTool("convert " + Quoted(dir.Write("in.xml", "<a><b></a>")) + " " + Quoted(dir.File("out")));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "mismatched tag at line 1\n");
}

TEST(ToolConvertErrors, MissingInputExitsOneNamingTheFile) {
    TempDir dir;
    const ToolRun run = RunTool("convert " + Quoted(dir.File("none.xml")) + " -");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "Failed to open the file [" + dir.File("none.xml") + "]\n");
}

}  // namespace
