// The C++ back end of the schema compiler: writes the class descriptions the
// schema layer maps a schema set to (the ones the dynamic classes run on) as
// C++ source, following the contract the hand-written order classes (tests/support/handwritten_orders) show. The schema model
// knows nothing of C++; everything about names, files and code lives here.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <qmxml/schema/schema_set.h>

namespace qmxml_tool {
namespace codegen {

struct EmitOptions {
    // The schema documents as given; the first one names the output files.
    std::vector<std::string> schemas;
    // XML namespace URI -> C++ namespace ("a::b"), overriding the default name.
    std::map<std::string, std::string> namespaceMap;
};

struct EmittedFile {
    std::string name;  // relative to the output directory
    std::string text;
};

// The files of the set's classes: one header and one source per C++
// namespace, a header that includes them all with the set's functions
// (root objects, the class factory), and its source. Throws
// CQmInvalidParamException for a construct the generated classes cannot
// reproduce yet (the message names it) or a bad namespace map.
std::vector<EmittedFile> EmitCpp(const QmXmlLib10::Schema::CSchemaSet& set, const EmitOptions& options);

// The C++ namespace a namespace URI gets without a map entry: the URI's
// letters and digits, runs of anything else one underscore, a scheme such as
// "http://" or "urn:" left out, never empty, never a keyword ("no_namespace"
// for the empty URI).
std::string DefaultNamespaceName(const std::string& uri);

}  // namespace codegen
}  // namespace qmxml_tool
