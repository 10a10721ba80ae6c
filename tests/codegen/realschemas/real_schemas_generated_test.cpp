// The real schema sets through classes the schema compiler generated at build
// time (tests/CMakeLists.txt), held against the dynamic classes of the same
// main schema on every document of tests/schema's manifest: a valid document
// binds through both and writes the same text and the same Fast Infoset
// bytes; an invalid one fails through both with the same exception class and
// message chain. The GPX set and the unbundled ISO 20022 variant are
// generated only when ../shared/schemas was beside the checkout at configure
// time; their documents skip otherwise.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <typeinfo>

#include "qmxml/core/exception.h"
#include "real_schemas_manifest.h"
#include "realschemas/bpmn/BPMN20.h"
#include "realschemas/camt05302/camt_053_001_02.h"
#include "realschemas/camt05303/camt_053_001_03.h"
#include "realschemas/camt05304/camt_053_001_04.h"
#include "realschemas/camt05308/camt_053_001_08.h"
#include "realschemas/maven/maven_4_0_0.h"
#include "realschemas/pain00103/pain_001_001_03.h"
#include "realschemas/pain00103ch/pain_001_001_03_ch_02.h"
#ifdef QMXML_REALSCHEMAS_SHARED
#include "realschemas/gpx/master.h"
#include "realschemas/pain00109/pain_001_001_09.h"
#endif

using namespace QmXmlLib10;
using namespace qmxml_realschemas;

namespace {

using FileReader = CSmartPtr<CXmlGeneratedClass> (*)(const std::string&, const CXmlSerializationContext&);

// The generated set of each main schema the manifest names.
struct GeneratedSet {
    const char* set;
    const char* schema;
    FileReader read;
};

const GeneratedSet kGenerated[] = {
    {"bpmn20", "xsd/BPMN20.xsd", &www_omg_org_spec_BPMN_20100524_MODEL::ReadFile},
    {"iso20022-camt053", "xsd/camt.053.001.02.xsd", &iso_std_iso_20022_tech_xsd_camt_053_001_02::ReadFile},
    {"iso20022-camt053", "xsd/camt.053.001.03.xsd", &iso_std_iso_20022_tech_xsd_camt_053_001_03::ReadFile},
    {"iso20022-camt053", "xsd/camt.053.001.04.xsd", &iso_std_iso_20022_tech_xsd_camt_053_001_04::ReadFile},
    {"iso20022-camt053", "xsd/camt.053.001.08.xsd", &iso_std_iso_20022_tech_xsd_camt_053_001_08::ReadFile},
    {"maven-pom-4.0.0", "xsd/maven-4.0.0.xsd", &maven_apache_org_POM_4_0_0::ReadFile},
    {"iso20022-pain001", "xsd/pain.001.001.03.xsd", &iso_std_iso_20022_tech_xsd_pain_001_001_03::ReadFile},
    {"iso20022-pain001", "xsd/pain.001.001.03.ch.02.xsd",
     &www_six_interbank_clearing_com_de_pain_001_001_03_ch_02_xsd::ReadFile},
#ifdef QMXML_REALSCHEMAS_SHARED
    {"gpx", "xsd/master.xsd", &www_topografix_com_GPX_1_0::ReadFile},
    {"iso20022-pain001", "xsd/pain.001.001.09.xsd", &iso_std_iso_20022_tech_xsd_pain_001_001_09::ReadFile},
#endif
};

FileReader GeneratedFor(const char* set, const char* schema) {
    for (const GeneratedSet& g : kGenerated) {
        if (std::strcmp(g.set, set) == 0 && std::strcmp(g.schema, schema) == 0) return g.read;
    }
    return nullptr;
}

// The folder of a document, or the reason it cannot run here.
std::string FolderOrSkip(const char* set, const char* schema, bool bundled, std::string& reason) {
    const std::string folder = SetFolder(set, bundled);
    if (folder.empty()) {
        reason = std::string(set) + " is not bundled (license) and " + kSharedDir + " is absent";
    } else if (GeneratedFor(set, schema) == nullptr) {
        reason = std::string(set) + "/" + schema + " was not generated: " + kSharedDir +
                 " was absent when the build was configured";
    }
    return folder;
}

// How reading a document ended: the text and Fast Infoset the object writes,
// or the exception's class and message chain.
struct Outcome {
    bool bound = false;
    std::string text;
    std::string fastInfoset;
    std::string exceptionClass;
    std::string chain;
};

template <class Read>
Outcome Bind(const Read& read) {
    Outcome out;
    const CXmlSerializationContext ctx = WriteContext();
    try {
        const auto object = read();
        out.text = object->ToXml(true, false, EOLType_LF, ctx);
        const CBinaryData fi = object->ToFastInfosetStream(FInfoDecl_None, ctx);
        out.fastInfoset.assign(reinterpret_cast<const char*>(fi.GetData()), fi.GetLength());
        out.bound = true;
    } catch (const CQmException& e) {
        out.exceptionClass = typeid(e).name();
        out.chain = e.GetFullMessage();
    }
    return out;
}

Outcome BindDynamic(const std::string& schema, const std::string& document) {
    const auto classes = ClassesFor(schema);
    return Bind([&] { return classes->ReadFile(document); });
}

Outcome BindGenerated(FileReader read, const std::string& document) {
    return Bind([&] { return read(document, CXmlSerializationContext()); });
}

class GeneratedRealValid : public ::testing::TestWithParam<ValidDocument> {};

TEST_P(GeneratedRealValid, BindsAndWritesAsTheDynamicClasses) {
    const ValidDocument& d = GetParam();
    std::string reason;
    const std::string folder = FolderOrSkip(d.set, d.schema, d.bundled, reason);
    if (!reason.empty()) GTEST_SKIP() << reason;
    const std::string document = folder + "/" + d.document;
    const Outcome generated = BindGenerated(GeneratedFor(d.set, d.schema), document);
    ASSERT_TRUE(generated.bound) << generated.chain;
    const Outcome dynamic = BindDynamic(folder + "/" + d.schema, document);
    ASSERT_TRUE(dynamic.bound) << dynamic.chain;
    EXPECT_EQ(dynamic.text, generated.text);
    EXPECT_TRUE(dynamic.fastInfoset == generated.fastInfoset) << "the Fast Infoset bytes differ";
}

INSTANTIATE_TEST_SUITE_P(Documents, GeneratedRealValid,
                         ::testing::ValuesIn(kValidDocuments, kValidDocuments + kValidDocumentCount),
                         [](const ::testing::TestParamInfo<ValidDocument>& info) {
                             return std::string(info.param.name);
                         });

class GeneratedRealInvalid : public ::testing::TestWithParam<InvalidDocument> {};

TEST_P(GeneratedRealInvalid, IsRejectedAsByTheDynamicClasses) {
    const InvalidDocument& d = GetParam();
    std::string reason;
    const std::string folder = FolderOrSkip(d.set, d.schema, d.bundled, reason);
    if (!reason.empty()) GTEST_SKIP() << reason;
    const std::string document = folder + "/" + d.document;
    const Outcome generated = BindGenerated(GeneratedFor(d.set, d.schema), document);
    ASSERT_FALSE(generated.bound) << "the generated classes accept it";
    EXPECT_EQ(d.chain, generated.chain);
    const Outcome dynamic = BindDynamic(folder + "/" + d.schema, document);
    EXPECT_EQ(dynamic.exceptionClass, generated.exceptionClass);
    EXPECT_EQ(dynamic.chain, generated.chain);
}

INSTANTIATE_TEST_SUITE_P(Documents, GeneratedRealInvalid,
                         ::testing::ValuesIn(kInvalidDocuments, kInvalidDocuments + kInvalidDocumentCount),
                         [](const ::testing::TestParamInfo<InvalidDocument>& info) {
                             return std::string(info.param.name);
                         });

// Every main schema of the manifest has its generated set (those that need
// ../shared only when it was there at configure time).
TEST(GeneratedRealSets, CoverEveryMainSchema) {
    for (const ValidDocument& d : ValidDocuments()) {
#ifndef QMXML_REALSCHEMAS_SHARED
        if (!d.bundled) continue;
#endif
        EXPECT_NE(nullptr, GeneratedFor(d.set, d.schema)) << d.set << "/" << d.schema;
    }
}

}  // namespace
