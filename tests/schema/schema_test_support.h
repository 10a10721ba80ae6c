// Helpers shared by the schema layer's tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "qmxml/schema/schema.h"

namespace schema_test {

using namespace QmXmlLib10::Schema;

const std::string kXs = "http://www.w3.org/2001/XMLSchema";

// Wraps body in a schema element declaring xs and the target namespace urn:t
// as the default one.
inline std::string Xsd(const std::string& body, const std::string& extra = std::string()) {
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:t' xmlns='urn:t'" + extra +
           ">" + body + "</xs:schema>";
}

// The full message chain of what loading text throws, or "" when it loads.
inline std::string LoadError(const std::string& text, const std::string& base = std::string()) {
    try {
        CSchemaSet::LoadBuffer(text, base);
    } catch (const QmXmlLib10::CQmException& e) {
        return e.GetFullMessage();
    }
    return std::string();
}

// A scratch directory for schema files, removed at the end of the test.
class TempDir {
public:
    TempDir() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string("qmxml_schema_") + info->test_suite_name() + "_" + info->name();
        for (char& c : name)
            if (c == '/') c = '_';
        m_path = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempDir() { std::filesystem::remove_all(m_path); }
    std::string Write(const std::string& name, const std::string& text) const {
        const std::filesystem::path p = m_path / name;
        std::filesystem::create_directories(p.parent_path());
        std::ofstream(p) << text;
        return p.string();
    }
    std::string Path(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}  // namespace schema_test
