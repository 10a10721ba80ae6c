#include "w3c_suite.h"

#include <algorithm>
#include <filesystem>

#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/schema/schema_set.h"

namespace qmxml_w3c {

using namespace QmXmlLib10;

namespace {

const std::string kTs = "http://www.w3.org/XML/2004/xml-schema-test-suite/";
const std::string kXlink = "http://www.w3.org/1999/xlink";

// -1: no version tokens here; 0: tokens exclude 1.0; 1: they include it.
int VersionVerdict(const CXmlElement* e) {
    const std::string& v = e->GetAttribute("version", "");
    if (v.empty()) return -1;
    std::size_t start = 0;
    while (start < v.size()) {
        std::size_t end = v.find(' ', start);
        if (end == std::string::npos) end = v.size();
        const std::string token = v.substr(start, end - start);
        if (token == "1.0" || token.rfind("1.0-", 0) == 0) return 1;
        start = end + 1;
    }
    return 0;
}

std::string Status(const CXmlElement* test) {
    for (const CXmlElement* c = test->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement())
        if (c->GetLocalName() == "current") return c->GetAttribute("status", "");
    return std::string();
}

}  // namespace

std::vector<TestCase> ReadTestSet(const std::string& path, const std::string& area) {
    CXmlDocument doc;
    doc.Load(path.c_str());
    const std::filesystem::path dir = std::filesystem::path(path).parent_path();
    auto href = [&](const CXmlElement* e) { return (dir / e->GetAttribute("href", kXlink)).lexically_normal().string(); };
    std::vector<TestCase> out;
    const CXmlElement* set = doc.GetDocumentElement();
    const int setVersion = VersionVerdict(set);
    for (const CXmlElement* g = set->GetFirstElement(); g != nullptr; g = g->GetNextSiblingElement()) {
        if (g->GetLocalName() != "testGroup") continue;
        const int groupVersion = VersionVerdict(g);
        std::vector<std::string> schemas;
        for (const CXmlElement* t = g->GetFirstElement(); t != nullptr; t = t->GetNextSiblingElement()) {
            const bool schemaTest = t->GetLocalName() == "schemaTest";
            if (!schemaTest && t->GetLocalName() != "instanceTest") continue;
            TestCase test;
            test.kind = schemaTest ? TestCase::Kind::Schema : TestCase::Kind::Instance;
            test.set = area;
            test.group = g->GetAttribute("name", "");
            test.name = t->GetAttribute("name", "");
            bool expectedFor10 = false;
            bool verdict = false;
            for (const CXmlElement* c = t->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement()) {
                if (c->GetLocalName() == "schemaDocument") schemas.push_back(href(c));
                if (c->GetLocalName() == "instanceDocument") test.instanceDocument = href(c);
                // A test may give one verdict per version of XML Schema: the
                // one naming 1.0 wins over one that names no version, and a
                // verdict for other versions only is no verdict here.
                if (c->GetLocalName() == "expected") {
                    const int forVersion = VersionVerdict(c);
                    if (forVersion == 0 || (forVersion < 0 && expectedFor10)) continue;
                    test.expectedValid = c->GetAttribute("validity", "") == "valid";
                    expectedFor10 = forVersion > 0;
                    verdict = true;
                }
            }
            test.schemaDocuments = schemas;
            int version = VersionVerdict(t);
            if (version < 0) version = groupVersion;
            if (version < 0) version = setVersion;
            const std::string status = Status(t);
            test.applicable = verdict && version != 0 && (status.empty() || status == "accepted");
            out.push_back(std::move(test));
        }
    }
    return out;
}

std::vector<TestCase> ReadSuite(const std::string& root) {
    namespace fs = std::filesystem;
    std::vector<TestCase> all;
    std::error_code ec;
    if (!fs::is_directory(fs::path(root) / "msMeta", ec)) return all;
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(fs::path(root) / "msMeta")) {
        const std::string name = entry.path().filename().string();
        if (name.size() > 8 && name.compare(name.size() - 8, 8, "_w3c.xml") == 0) files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    for (const std::string& f : files) {
        const std::string name = fs::path(f).filename().string();
        std::vector<TestCase> tests = ReadTestSet(f, name.substr(0, name.size() - 8));
        all.insert(all.end(), tests.begin(), tests.end());
    }
    const fs::path boeing = fs::path(root) / "boeingMeta" / "BoeingXSDTestSet.testSet";
    if (fs::exists(boeing)) {
        std::vector<TestCase> tests = ReadTestSet(boeing.string(), "Boeing");
        all.insert(all.end(), tests.begin(), tests.end());
    }
    return all;
}

std::string LoadSchema(const TestCase& test) {
    try {
        Schema::CSchemaSet::LoadFile(test.schemaDocuments.at(0));
        return std::string();
    } catch (const CQmException& e) {
        const CQmException* inner = &e;
        while (inner->GetInnerException() != nullptr) inner = inner->GetInnerException();
        return inner->GetMessage();
    }
}

std::string CauseOf(const std::string& message) {
    std::string out;
    std::size_t i = 0;
    // Drop the location prefix "In [...] at [...]: ".
    if (message.rfind("In [", 0) == 0) {
        const std::size_t colon = message.find("]: ");
        if (colon != std::string::npos) i = colon + 3;
    }
    int depth = 0;
    for (; i < message.size(); ++i) {
        const char c = message[i];
        if (c == '[') {
            if (depth++ == 0) out += "[..]";
            continue;
        }
        if (c == ']' && depth > 0) {
            --depth;
            continue;
        }
        if (depth == 0) out += c;
    }
    // Parser messages end with their line.
    const std::size_t line = out.find(" at line ");
    if (line != std::string::npos) out.erase(line);
    return out;
}

}  // namespace qmxml_w3c
