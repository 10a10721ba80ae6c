// The real schema sets' documents (../shared/schemas, bundled in part in
// tests/data/realschemas) with what binding each must give, shared by the
// dynamic classes' tests (tests/schema) and the generated classes' (tests/codegen).
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

#include "qmxml/core/serialization_context.h"
#include "qmxml/metadata/element_infos.h"  // dynamic_classes.h uses IClassFactory without including it
#include "qmxml/schema/dynamic_classes.h"

namespace qmxml_realschemas {

extern const std::string kSharedDir;
extern const std::string kBundledDir;

// A document valid against its schema. xmllintValid is Debian's xmllint's
// verdict on it (false for the one whose 32-digit decimals libxml2 cannot
// hold): the written copy must get the same verdict.
struct ValidDocument {
    const char* set;
    const char* document;  // relative to the set's folder
    const char* schema;    // the main schema, relative to the set's folder
    bool xmllintValid;
    bool bundled;  // copied into tests/data/realschemas
    const char* name;
    // The first infoset difference of the written copy where one is known
    // (README, "Real schemas"); "" for none.
    const char* knownDifference = "";
};

// A document invalid against its schema, with the full message chain binding
// it throws.
struct InvalidDocument {
    const char* set;
    const char* document;
    const char* schema;
    bool bundled;
    const char* name;
    const char* chain;
};

void PrintTo(const ValidDocument& d, std::ostream* os);
void PrintTo(const InvalidDocument& d, std::ostream* os);

extern const ValidDocument kValidDocuments[];
extern const std::size_t kValidDocumentCount;
extern const InvalidDocument kInvalidDocuments[];
extern const std::size_t kInvalidDocumentCount;

// The tables as ranges, for range-for.
template <class T>
struct CTable {
    const T* first;
    std::size_t count;
    const T* begin() const { return first; }
    const T* end() const { return first + count; }
};
inline CTable<ValidDocument> ValidDocuments() { return {kValidDocuments, kValidDocumentCount}; }
inline CTable<InvalidDocument> InvalidDocuments() { return {kInvalidDocuments, kInvalidDocumentCount}; }

// Where a document of a set is read from: the bundled copy when there is one,
// so that a clone exercises exactly what it ships; else the shared folder;
// "" when neither has it.
std::string SetFolder(const std::string& set, bool bundled);

// The dynamic classes of a main schema, loaded once per process.
std::shared_ptr<const QmXmlLib10::Schema::CDynamicClassSet> ClassesFor(const std::string& schemaPath);

// Written as `qmxml convert --schema` writes: xsi:type on members holding a
// derived type, the root's namespace as the default one.
QmXmlLib10::CXmlSerializationContext WriteContext();

}  // namespace qmxml_realschemas
