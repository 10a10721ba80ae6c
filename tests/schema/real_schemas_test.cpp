// Five real public schema sets (GPX 1.1, Maven POM 4.0.0, ISO 20022 pain.001
// and camt.053, BPMN 2.0) with documents taken from public repositories, each
// bound through the dynamic classes of its schema. Valid documents must bind,
// and what they write back must carry the same infoset, pass xmllint as the
// original does and survive Fast Infoset unchanged; invalid ones must fail
// with the message chain naming their real fault (checked against xmllint's
// report for each).
//
// The sets live beside the project in ../shared/schemas; the files under
// permissive licenses are bundled in tests/data/realschemas (see its NOTICE),
// so a clone alone runs those and skips the rest.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "infoset_compare.h"
#include "real_schemas_manifest.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/metadata/element_infos.h"  // dynamic_classes.h uses IClassFactory without including it
#include "qmxml/schema/dynamic_classes.h"
#include "qmxml/schema/schema_set.h"
#include "temp_files.h"

namespace {

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using namespace qmxml_realschemas;
namespace fs = std::filesystem;

std::string ReadWhole(const std::string& path) { return qmxml_test::ReadFile(path); }

bool HaveXmllint() {
    static const bool present = std::system("xmllint --version >/dev/null 2>&1") == 0;
    return present;
}

// xmllint's verdict on a file, its messages going to `report`.
bool XmllintAccepts(const std::string& schema, const std::string& file, std::string& report) {
    const std::string command = "xmllint --noout --schema '" + schema + "' '" + file + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        report = "could not run xmllint";
        return false;
    }
    char buffer[4096];
    std::size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) report.append(buffer, got);
    const int status = pclose(pipe);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class RealSchemaValid : public ::testing::TestWithParam<ValidDocument> {};

TEST_P(RealSchemaValid, BindsWritesBackAndRoundTrips) {
    const ValidDocument& d = GetParam();
    const std::string folder = SetFolder(d.set, d.bundled);
    if (folder.empty()) GTEST_SKIP() << d.set << " is not bundled (license) and " << kSharedDir << " is absent";
    const std::string schema = folder + "/" + d.schema;
    const std::string document = folder + "/" + d.document;
    ASSERT_TRUE(fs::is_regular_file(document)) << document << " is missing";

    std::shared_ptr<const CDynamicClassSet> classes;
    CSmartPtr<CDynamicObject> object;
    try {
        classes = ClassesFor(schema);
        object = classes->ReadFile(document);
    } catch (const CQmException& e) {
        FAIL() << e.GetFullMessage();
    }
    ASSERT_TRUE(object);

    // Unformatted, so that mixed content comes out as it was read.
    const std::string original = ReadWhole(document);
    const CXmlSerializationContext ctx = WriteContext();
    const std::string copy = object->ToXml(true, false, EOLType_LF, ctx);
    EXPECT_EQ(d.knownDifference, qmxml_w3c::CompareInfosets(original, copy, &classes->GetSchemaSet()));

    const CBinaryData fi = object->ToFastInfosetStream(FInfoDecl_None, ctx);
    try {
        CSmartPtr<CDynamicObject> again = classes->ReadBuffer(fi.GetData(), fi.GetLength());
        EXPECT_EQ(copy, again->ToXml(true, false, EOLType_LF, ctx)) << "the Fast Infoset round trip changed it";
    } catch (const CQmException& e) {
        ADD_FAILURE() << "reading the Fast Infoset copy back: " << e.GetFullMessage();
    }

    if (!HaveXmllint()) {
        std::cout << "[  NOTE    ] xmllint is not installed: the copy's check against it is left out\n";
        return;
    }
    qmxml_test::TempDir dir;
    const std::string copyPath = dir.Write("copy.xml", copy);
    std::string report;
    EXPECT_EQ(d.xmllintValid, XmllintAccepts(schema, copyPath, report)) << report;
}

INSTANTIATE_TEST_SUITE_P(Documents, RealSchemaValid, ::testing::ValuesIn(kValidDocuments, kValidDocuments + kValidDocumentCount),
                         [](const ::testing::TestParamInfo<ValidDocument>& info) {
                             return std::string(info.param.name);
                         });

class RealSchemaInvalid : public ::testing::TestWithParam<InvalidDocument> {};

TEST_P(RealSchemaInvalid, IsRejectedForItsRealFault) {
    const InvalidDocument& d = GetParam();
    const std::string folder = SetFolder(d.set, d.bundled);
    if (folder.empty()) GTEST_SKIP() << d.set << " is not bundled (license) and " << kSharedDir << " is absent";
    const std::string schema = folder + "/" + d.schema;
    const std::string document = folder + "/" + d.document;
    ASSERT_TRUE(fs::is_regular_file(document)) << document << " is missing";

    std::shared_ptr<const CDynamicClassSet> classes;
    try {
        classes = ClassesFor(schema);
    } catch (const CQmException& e) {
        FAIL() << e.GetFullMessage();
    }
    std::string chain;
    try {
        classes->ReadFile(document);
    } catch (const CQmException& e) {
        chain = e.GetFullMessage();
    }
    EXPECT_EQ(d.chain, chain);
}

INSTANTIATE_TEST_SUITE_P(Documents, RealSchemaInvalid, ::testing::ValuesIn(kInvalidDocuments, kInvalidDocuments + kInvalidDocumentCount),
                         [](const ::testing::TestParamInfo<InvalidDocument>& info) {
                             return std::string(info.param.name);
                         });

// The tables above against the shared manifest's folders: every instance
// listed, and every bundled one present in the clone.
TEST(RealSchemaManifest, ListsEveryInstance) {
    std::set<std::string> listed;
    for (const ValidDocument& d : ValidDocuments()) listed.insert(std::string(d.set) + "/" + d.document);
    for (const InvalidDocument& d : InvalidDocuments()) listed.insert(std::string(d.set) + "/" + d.document);
    EXPECT_EQ(kValidDocumentCount + kInvalidDocumentCount, listed.size()) << "a document is listed twice";

    std::set<std::string> bundled;
    for (const ValidDocument& d : ValidDocuments())
        if (d.bundled) bundled.insert(std::string(d.set) + "/" + d.document);
    for (const InvalidDocument& d : InvalidDocuments())
        if (d.bundled) bundled.insert(std::string(d.set) + "/" + d.document);
    for (const std::string& path : bundled) EXPECT_TRUE(fs::is_regular_file(kBundledDir + "/" + path)) << path;

    if (!fs::is_directory(kSharedDir)) GTEST_SKIP() << kSharedDir << " is absent: only the bundled files were checked";
    std::set<std::string> present;
    for (const auto& set : fs::directory_iterator(kSharedDir)) {
        if (!set.is_directory()) continue;
        for (const char* folder : {"valid", "invalid", "xmllint_false_negative"}) {
            const fs::path dir = set.path() / folder;
            if (!fs::is_directory(dir)) continue;
            for (const auto& file : fs::directory_iterator(dir))
                present.insert(set.path().filename().string() + "/" + folder + "/" + file.path().filename().string());
        }
    }
    EXPECT_EQ(present, listed);
}

}  // namespace
