// The qmxml tool's subcommands, separate from the command-line parsing
// (qmxml.cpp) so that each reads as what it does. Each returns the process's
// exit status; failures are CQmException (a schema that cannot be loaded is
// CQmSchemaException, which main turns into status 2).
#pragma once

#include <qmxml/qmxml.h>

#include <string>
#include <vector>

namespace qmxml_tool {

// Exit statuses: scripts depend on them.
constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;  // a document failed (invalid, unreadable, unwritable)
constexpr int kExitUsage = 2;   // a usage error, or a schema that cannot be loaded

// How convert writes its output; the defaults are the tool's since its start.
struct OutputOptions {
    std::string to = "xml";         // xml | fi
    std::string encoding = "utf-8";  // utf-8 | utf-16
    std::string eol = "lf";         // lf | crlf
    bool indent = true;
    bool declaration = true;
    std::string compress = "none";  // none | gzip | zlib
    int fiDeclaration = 0;          // 0..9, the FInfoDecl values
    bool fiTyped = false;
    std::string fiVocabulary;       // external vocabulary URI, empty for none
};

struct ConvertOptions {
    std::string input;
    std::string output;
    std::vector<std::string> schemas;  // bind through these when given
    OutputOptions out;
};

// The object written as the options say, through the context (which the
// options' Fast Infoset switches are set on).
QmXmlLib10::CBinaryData WriteObject(const QmXmlLib10::CXmlObjectBase& object, const OutputOptions& options,
                                    QmXmlLib10::CXmlSerializationContext ctx);

int RunMainJob();
int RunConvert(const ConvertOptions& options);
int RunInfo(const std::string& input);
// Convert with schemas: binds the input to the schema's classes and writes the bound object.
int RunConvertWithSchema(const ConvertOptions& options);
int RunValidate(const std::vector<std::string>& schemas, const std::vector<std::string>& documents);
int RunSchema(const std::vector<std::string>& schemas);

struct GenerateOptions {
    std::vector<std::string> schemas;
    std::string outputDir = ".";
    std::vector<std::string> namespaceMap;  // URI=cpp::namespace
    bool listOutputs = false;               // print the paths, write nothing
};
// C++ classes of a schema set (see tools/codegen/cpp_emitter.h).
int RunGenerate(const GenerateOptions& options);

}  // namespace qmxml_tool
