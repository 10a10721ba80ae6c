// Running the W3C suite's tests through the schema loader and the dynamic
// classes, for the suite runner and for the sample the unit tests run: a
// group's schema is loaded once and its classes made once, then every
// instance of the group is read, and an accepted valid instance is written
// back and compared with the original.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "w3c_suite.h"

namespace QmXmlLib10 {
class CQmException;
namespace Schema {
class CSchemaSet;
class CDynamicClassSet;
}  // namespace Schema
}  // namespace QmXmlLib10

namespace qmxml_w3c {

// The innermost message of a failure's chain: the cause itself.
std::string InnermostMessage(const QmXmlLib10::CQmException& e);

// The schema location hints of an instance's root element (xsi:schemaLocation
// pairs, then xsi:noNamespaceSchemaLocation): namespace and absolute path.
std::vector<std::pair<std::string, std::string>> SchemaHints(const std::string& instance);

// The schema and classes of one test group, made when first asked for.
struct GroupSchema {
    std::string key;  // area, group and first schema document
    std::shared_ptr<const QmXmlLib10::Schema::CSchemaSet> schemas;
    std::string loadFailure;  // "" when the schema loaded
    std::shared_ptr<const QmXmlLib10::Schema::CDynamicClassSet> classes;
    std::string classFailure;  // "" when the classes were made (or not tried)
    bool classesTried = false;
    // Whether a document of the schema declares a key, keyref or unique.
    bool identityConstraints = false;
};

// Keeps the current group's schema and classes; a test of another group
// drops them and loads that group's.
class GroupCache {
public:
    // Loads the test's group schema (once per group).
    GroupSchema& Schema(const TestCase& test);
    // Also makes the group's classes (once per group).
    GroupSchema& Classes(const TestCase& test);

private:
    GroupSchema m_current;
};

struct InstanceOutcome {
    enum class Kind { SchemaNotLoaded, ClassesNotCreated, Accepted, Rejected };
    Kind kind = Kind::Rejected;
    // Why the schema, the classes or the read failed: the innermost message.
    std::string message;
    // For an accepted instance: the object written back as text (with
    // xsi:type), and the infoset comparison's verdict ("" when equal), or
    // the write's failure.
    std::string copy;
    std::string difference;
    // The group's schema declares identity constraints.
    bool identityConstraints = false;
};

// Reads the instance of an instance test through its group's classes; when
// it is accepted, writes it back and compares (always, whatever the
// expected verdict: the caller decides what counts).
InstanceOutcome RunInstance(const TestCase& test, GroupCache& cache);

// The cause of a disagreement for grouping: the first line of a message with
// every bracketed value replaced by "[..]".
std::string NormalisedCause(const std::string& message);

}  // namespace qmxml_w3c
