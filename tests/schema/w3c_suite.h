// Reading the W3C XML Schema test suite's test-set files, for the suite
// runner and for the sample the unit tests run.
#pragma once

#include <string>
#include <vector>

namespace qmxml_w3c {

// One test of a test set, applicable to XML Schema 1.0 or not.
struct TestCase {
    enum class Kind { Schema, Instance };
    Kind kind = Kind::Schema;
    std::string set;    // the test-set file's area name, e.g. "Element" or "Boeing"
    std::string group;  // the testGroup's name
    std::string name;   // the test's name
    // Absolute paths: the schema documents (the first one is loaded), and the
    // instance document of an instance test.
    std::vector<std::string> schemaDocuments;
    std::string instanceDocument;
    bool expectedValid = true;
    // False when the test's version tokens exclude 1.0 or its status is not
    // accepted; such tests are counted apart, never run.
    bool applicable = true;
};

// Reads one test-set file (XSTS format) with the library's own loader.
// area names the set in summaries. Throws what the loader throws.
std::vector<TestCase> ReadTestSet(const std::string& path, const std::string& area);

// The Microsoft sets (msMeta/*_w3c.xml) and the Boeing set below root, in
// file order; empty when root does not hold the suite.
std::vector<TestCase> ReadSuite(const std::string& root);

// Loads the test's first schema document; returns "" when it loads, else the
// innermost message of the failure.
std::string LoadSchema(const TestCase& test);

// A failure message with its location prefix dropped and every bracketed
// value replaced by "[..]", so that messages of one cause compare equal.
std::string CauseOf(const std::string& message);

}  // namespace qmxml_w3c
