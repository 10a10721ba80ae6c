// `qmxml validate` and `qmxml convert --schema`: documents bound to the
// classes of schemas loaded once, verdicts with the whole message chain, and
// exit statuses that scripts can rely on.
#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <fstream>
#include <string>

#include "temp_files.h"
#include "tools/tool_run.h"

using namespace QmXmlLib10;
using qmxml_test::Quoted;
using qmxml_test::ReadFile;
using qmxml_test::RunTool;
using qmxml_test::TempDir;
using qmxml_test::ToolRun;

namespace {

std::string Data(const std::string& name) { return std::string(QMXML_TEST_DATA_DIR) + "/tools/" + name; }
std::string ShelfSchema() { return "--schema " + Quoted(Data("shelf.xsd")); }

const char* kBadCodeChain =
    "  Failed to process the element [shelf]\n"
    "  Failed to process the element [item]\n"
    "  Invalid Value for code [ab-123]\n";

TEST(ToolValidate, ValidDocumentExitsZero) {
    const std::string shelf = Data("shelf.xml");
    const ToolRun run = RunTool("validate " + ShelfSchema() + " " + Quoted(shelf));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, shelf + ": valid\n");
}

TEST(ToolValidate, InvalidDocumentPrintsEveryMessageOfTheChainIndented) {
    const std::string bad = Data("shelf_bad_code.xml");
    const ToolRun run = RunTool("validate " + ShelfSchema() + " " + Quoted(bad));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, bad + ": invalid\n" + kBadCodeChain);
}

TEST(ToolValidate, MixedDocumentsAreReportedInOrderAndExitOne) {
    const std::string shelf = Data("shelf.xml"), bad = Data("shelf_bad_code.xml"), many = Data("shelf_too_many.xml");
    const ToolRun run =
        RunTool("validate " + ShelfSchema() + " " + Quoted(shelf) + " " + Quoted(bad) + " " + Quoted(many) + " " +
                Quoted(shelf), false);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, shelf + ": valid\n" + bad + ": invalid\n" + kBadCodeChain + many +
                           ": invalid\n"
                           "  Failed to process the element [shelf]\n"
                           "  Failed to process the element [item]\n"
                           "  Invalid Value for copies [100]\n" +
                           shelf + ": valid\n");
}

TEST(ToolValidate, EverySchemaOptionJoinsTheSet) {
    const std::string shelf = Data("shelf.xml"), note = Data("note.xml");
    const ToolRun run = RunTool("validate " + ShelfSchema() + " --schema " + Quoted(Data("note.xsd")) + " " +
                                Quoted(note) + " " + Quoted(shelf));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, note + ": valid\n" + shelf + ": valid\n");
}

TEST(ToolValidate, RootOfAnotherSchemaIsInvalid) {
    const std::string note = Data("note.xml");
    const ToolRun run = RunTool("validate " + ShelfSchema() + " " + Quoted(note));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, note + ": invalid\n  No global element declaration for the root element [{urn:qmxml:note}note]\n");
}

TEST(ToolValidate, UnreadableDocumentsAreInvalidWithTheirMessage) {
    TempDir dir;
    const std::string missing = dir.File("none.xml"), text = dir.Write("text.xml", "no markup here");
    const ToolRun run = RunTool("validate " + ShelfSchema() + " " + Quoted(missing) + " " + Quoted(text));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, missing + ": invalid\n  Failed to open the file [" + missing + "] Error [0x00000002]\n" + text +
                           ": invalid\n  syntax error at line 1\n");
}

TEST(ToolValidate, UnloadableSchemaExitsTwoBeforeAnyDocument) {
    const std::string broken = Data("broken.xsd");
    const std::string arguments = "validate --schema " + Quoted(broken) + " " + Quoted(Data("shelf.xml"));
    const ToolRun errors = RunTool(arguments);
    EXPECT_EQ(errors.status, 2);
    EXPECT_EQ(errors.out, "Failed to load the schema [" + broken + "]\n\nIn [" + broken +
                              "] at [/schema/element[thing]]: The type [Missing] referenced by the element [thing] "
                              "is not defined\n");
    // The message goes to standard error: standard output holds verdicts only.
    const ToolRun out = RunTool(arguments, false);
    EXPECT_EQ(out.status, 2);
    EXPECT_EQ(out.out, "");
}

struct ValidateUsageCase {
    const char* name;
    const char* arguments;
    const char* message;
};

void PrintTo(const ValidateUsageCase& c, std::ostream* os) { *os << c.name; }

const ValidateUsageCase kValidateUsageCases[] = {
    {"Nothing", "validate", "--schema is required"},
    {"NoSchema", "validate doc.xml", "--schema is required"},
    {"NoDocument", "validate --schema s.xsd", "DOC is required"},
    {"SchemaWithoutValue", "validate doc.xml --schema", "--schema: 1 required TEXT missing"},
    {"UnknownOption", "validate --schema s.xsd --to fi doc.xml", "The following argument was not expected: --to"},
};

class ToolValidateUsage : public ::testing::TestWithParam<ValidateUsageCase> {};

TEST_P(ToolValidateUsage, ExitsTwoWithTheParsersMessage) {
    const ValidateUsageCase& c = GetParam();
    const ToolRun run = RunTool(c.arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, std::string(c.message) + "\nRun with --help for more information.\n");
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ToolValidateUsage, ::testing::ValuesIn(kValidateUsageCases),
    [](const ::testing::TestParamInfo<ValidateUsageCase>& info) { return std::string(info.param.name); });

TEST(ToolValidateHelp, ExplainsTheVerdictsAndStatuses) {
    const ToolRun run = RunTool("validate --help", false);
    EXPECT_EQ(run.status, 0);
    const std::string head =
        "bind each document to the classes of the schemas and say whether it is valid\n"
        "Usage: qmxml validate [OPTIONS] DOC...\n";
    EXPECT_EQ(run.out.substr(0, head.size()), head);
    EXPECT_NE(run.out.find("  --schema TEXT ... REQUIRED  a schema document (repeatable)\n"), std::string::npos);
    EXPECT_NE(run.out.find("Prints DOC: valid, or DOC: invalid and why, for each document. Exit status 0 when all\n"
                           "are valid, 1 when any is not, 2 when a schema cannot be loaded.\n"),
              std::string::npos);
}

// A shelf long enough for the one-shot compression, which refuses data that does not shrink.
std::string LongShelf(const std::string& code) {
    std::string xml = "<shelf xmlns='urn:qmxml:shelf' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>";
    for (int i = 0; i < 30; ++i) {
        xml += "<item code='AB-" + std::to_string(100 + i) + "'><title>Tide tables</title></item>"
               "<item xsi:type='Book' code='CD-" + std::to_string(200 + i) + "'><title>Knots</title>"
               "<author>Ashley</author></item>";
    }
    return xml + "<item code='" + code + "'><title>Last</title></item></shelf>";
}

std::string AsString(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// The document in another form, written by the library rather than the tool.
std::string Form(const std::string& text, bool fastInfoset, CompressionType compression) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(text.c_str());
    const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
    return AsString(fastInfoset ? element->ToFastInfosetStream(FInfoDecl_None, ctx, compression)
                                : element->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx, compression));
}

struct FormCase {
    const char* name;
    bool fastInfoset;
    CompressionType compression;
};

void PrintTo(const FormCase& c, std::ostream* os) { *os << c.name; }

const FormCase kFormCases[] = {
    {"Text", false, CompressionType_None},
    {"GzipText", false, CompressionType_GZip},
    {"FastInfoset", true, CompressionType_None},
    {"GzipFastInfoset", true, CompressionType_GZip},
    {"ZlibFastInfoset", true, CompressionType_ZLib},
};

class ToolValidateForms : public ::testing::TestWithParam<FormCase> {};

TEST_P(ToolValidateForms, ValidInEveryFormFromFileAndStandardInput) {
    const FormCase& c = GetParam();
    TempDir dir;
    const std::string file = dir.Write("shelf", Form(LongShelf("EF-999"), c.fastInfoset, c.compression));
    const ToolRun run = RunTool("validate " + ShelfSchema() + " " + Quoted(file) + " - < " + Quoted(file));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, file + ": valid\n-: valid\n");
}

TEST_P(ToolValidateForms, InvalidInEveryFormWithTheSameChain) {
    const FormCase& c = GetParam();
    TempDir dir;
    const std::string file = dir.Write("bad", Form(LongShelf("ab-123"), c.fastInfoset, c.compression));
    const ToolRun run = RunTool("validate " + ShelfSchema() + " - < " + Quoted(file));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, std::string("-: invalid\n") + kBadCodeChain);
}

INSTANTIATE_TEST_SUITE_P(Inputs, ToolValidateForms, ::testing::ValuesIn(kFormCases),
                         [](const ::testing::TestParamInfo<FormCase>& info) { return std::string(info.param.name); });

// convert --schema writes the bound object: the derived item keeps its
// xsi:type, and the formatted shelf comes back byte for byte.
TEST(ToolConvertWithSchema, TextRoundTripIsIdentical) {
    TempDir dir;
    const std::string out = dir.File("out.xml");
    const ToolRun run = RunTool("convert " + ShelfSchema() + " " + Quoted(Data("shelf.xml")) + " " + Quoted(out));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(ReadFile(out), ReadFile(Data("shelf.xml")));
}

TEST(ToolConvertWithSchema, FastInfosetOutAndBackIsIdentical) {
    TempDir dir;
    const std::string fi = dir.File("shelf.fi"), back = dir.File("back.xml");
    const ToolRun out = RunTool("convert " + ShelfSchema() + " " + Quoted(Data("shelf.xml")) + " " + Quoted(fi) +
                                " --to fi --fi-typed");
    EXPECT_EQ(out.status, 0) << out.out;
    EXPECT_EQ(ReadFile(fi).substr(0, 4), std::string("\xe0\0\0\1", 4));  // the Fast Infoset header
    const ToolRun in = RunTool("convert " + ShelfSchema() + " " + Quoted(fi) + " " + Quoted(back));
    EXPECT_EQ(in.status, 0) << in.out;
    EXPECT_EQ(ReadFile(back), ReadFile(Data("shelf.xml")));
}

TEST(ToolConvertWithSchema, CompressedFastInfosetOutAndBackKeepsTheDerivedItems) {
    TempDir dir;
    const std::string in = dir.Write("long.xml", LongShelf("EF-999")), fi = dir.File("long.fi.gz");
    const std::string text = dir.File("text.xml"), back = dir.File("back.xml");
    ASSERT_EQ(RunTool("convert " + ShelfSchema() + " " + Quoted(in) + " " + Quoted(text)).status, 0);
    const ToolRun out = RunTool("convert " + ShelfSchema() + " " + Quoted(in) + " " + Quoted(fi) +
                                " --to fi --fi-typed --compress gzip --fi-declaration 1");
    EXPECT_EQ(out.status, 0) << out.out;
    EXPECT_EQ(ReadFile(fi).substr(0, 2), "\x1f\x8b");
    const ToolRun again = RunTool("convert " + ShelfSchema() + " " + Quoted(fi) + " " + Quoted(back));
    EXPECT_EQ(again.status, 0) << again.out;
    EXPECT_EQ(ReadFile(back), ReadFile(text));
    EXPECT_NE(ReadFile(back).find("<item xsi:type=\"Book\" code=\"CD-229\">"), std::string::npos);
}

TEST(ToolConvertWithSchema, OutputOptionsApply) {
    const ToolRun run = RunTool("convert " + ShelfSchema() + " " + Quoted(Data("shelf.xml")) +
                                    " - --no-indent --no-declaration --eol crlf",
                                false);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "<shelf xmlns=\"urn:qmxml:shelf\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" room=\"B2\">"
              "<item code=\"AB-123\" condition=\"used\"><title>Tide tables</title><copies>3</copies></item>"
              "<item xsi:type=\"Book\" code=\"CD-456\"><title>Knots</title><author>Ashley</author>"
              "<author>Budworth</author></item></shelf>");
}

TEST(ToolConvertWithSchema, ValuesAreWrittenInTheirCanonicalForm) {
    TempDir dir;
    const std::string in = dir.Write("note.xml",
                                     "<note xmlns='urn:qmxml:note' day=' 2026-11-24 '><text>a</text></note>");
    const ToolRun run = RunTool("convert --schema " + Quoted(Data("note.xsd")) + " " + Quoted(in) + " - --no-indent",
                                false);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<note xmlns=\"urn:qmxml:note\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
              "day=\"2026-11-24\"><text>a</text></note>");
}

TEST(ToolConvertWithSchema, InvalidInputExitsOneAndWritesNothing) {
    TempDir dir;
    const std::string out = dir.File("out.xml");
    const ToolRun run =
        RunTool("convert " + ShelfSchema() + " " + Quoted(Data("shelf_bad_code.xml")) + " " + Quoted(out));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "Failed to process the element [shelf]\n\nFailed to process the element [item]\n\n"
              "Invalid Value for code [ab-123]\n");
    EXPECT_FALSE(std::ifstream(out).good());
}

TEST(ToolConvertWithSchema, UnloadableSchemaExitsTwo) {
    const std::string broken = Data("broken.xsd");
    const ToolRun run = RunTool("convert --schema " + Quoted(broken) + " " + Quoted(Data("shelf.xml")) + " -");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')), "Failed to load the schema [" + broken + "]");
}

}  // namespace
