// The subcommands that load schemas: `schema` prints the model, and a schema
// that cannot be loaded ends any of them with its message chain and status 2.
#include <gtest/gtest.h>

#include <string>

#include "temp_files.h"
#include "tools/tool_run.h"

using qmxml_test::Quoted;
using qmxml_test::ReadFile;
using qmxml_test::RunTool;
using qmxml_test::TempDir;
using qmxml_test::ToolRun;

namespace {

std::string Data(const std::string& name) { return std::string(QMXML_TEST_DATA_DIR) + "/tools/" + name; }

TEST(ToolSchema, PrintsTheModelOfEverySchemaGiven) {
    const ToolRun run = RunTool("schema " + Quoted(Data("note.xsd")) + " " + Quoted(Data("shelf.xsd")), false);
    EXPECT_EQ(run.status, 0);
    // Types of both documents, then both global elements in loading order.
    EXPECT_EQ(run.out, ReadFile(Data("note_and_shelf.model")));
}

TEST(ToolSchema, PrintsExactlyTheModelOfASmallSchema) {
    const ToolRun run = RunTool("schema " + Quoted(Data("note.xsd")));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "element {urn:qmxml:note}note : anonymous complexType\n"
              "  complexType\n"
              "    base {http://www.w3.org/2001/XMLSchema}anyType by restriction\n"
              "    content element-only\n"
              "    sequence [1..1]\n"
              "      element {urn:qmxml:note}text : {http://www.w3.org/2001/XMLSchema}string [1..1]\n"
              "    attribute day : {http://www.w3.org/2001/XMLSchema}date required\n");
}

TEST(ToolSchema, UnresolvedReferenceExitsTwoNamingDocumentAndComponent) {
    const std::string note = Data("note.xsd"), broken = Data("broken.xsd");
    const ToolRun run = RunTool("schema " + Quoted(note) + " " + Quoted(broken));
    EXPECT_EQ(run.status, 2);
    // The outer message names every document loaded together; the inner one the culprit.
    EXPECT_EQ(run.out, "Failed to load the schema [" + note + ", " + broken + "]\n\nIn [" + broken +
                           "] at [/schema/element[thing]]: The type [Missing] referenced by the element [thing] is "
                           "not defined\n");
}

TEST(ToolSchema, MalformedSchemaExitsTwoWithTheLine) {
    TempDir dir;
    const std::string bad = dir.Write("bad.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:element>\n");
    const ToolRun run = RunTool("schema " + Quoted(bad));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "Failed to load the schema [" + bad + "]\n\nno element found at line 3\n");
}

TEST(ToolSchema, MissingSchemaExitsTwo) {
    TempDir dir;
    const std::string missing = dir.File("none.xsd");
    const ToolRun run = RunTool("schema " + Quoted(missing));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "Failed to load the schema [" + missing + "]\n\nFailed to open the file [" + missing +
                           "] Error [0x00000002]\n");
}

}  // namespace
