// The subcommands that work through a schema: validate, schema, and convert
// with --schema. Schemas are loaded and mapped to classes once per run, then
// every document is bound against the same class set.
#include <qmxml/qmxml.h>
#include <qmxml/schema/dynamic_classes.h>
#include <qmxml/schema/schema.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "tool_io.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace qmxml_tool {
namespace {

std::shared_ptr<const CSchemaSet> LoadSchemas(const std::vector<std::string>& paths) {
    std::vector<CSchemaSource> sources;
    sources.reserve(paths.size());
    for (const std::string& path : paths) sources.push_back(CSchemaSource::File(path));
    return CSchemaSet::Load(sources);
}

// Binds one document (a file, or standard input for "-"); the set must
// outlive the object.
CSmartPtr<CDynamicObject> Bind(const CDynamicClassSet& classes, const std::string& name) {
    if (name != "-") return classes.ReadFile(name);
    const std::string input = ReadInput(name);
    return classes.ReadBuffer(input.data(), input.size());
}

// Each message of the chain on its own line(s), every line indented, so that
// a report of many documents stays readable and each line is one fact.
void PrintChain(std::ostream& out, const CQmException& e) {
    for (const CQmException* cause = &e; cause != nullptr; cause = cause->GetInnerException()) {
        const std::string message = cause->GetMessage();
        std::size_t start = 0;
        do {
            const std::size_t end = message.find('\n', start);
            out << "  " << message.substr(start, end == std::string::npos ? std::string::npos : end - start)
                << "\n";
            start = end == std::string::npos ? end : end + 1;
        } while (start != std::string::npos);
    }
}

}  // namespace

int RunValidate(const std::vector<std::string>& schemas, const std::vector<std::string>& documents) {
    const std::shared_ptr<const CDynamicClassSet> classes = CDynamicClassSet::Create(LoadSchemas(schemas));
    bool allValid = true;
    for (const std::string& document : documents) {
        try {
            Bind(*classes, document);
            std::cout << document << ": valid\n";
        } catch (const CQmException& e) {
            allValid = false;
            std::cout << document << ": invalid\n";
            PrintChain(std::cout, e);
        } catch (const std::exception& e) {
            // Running out of memory on one document need not end the report.
            allValid = false;
            std::cout << document << ": invalid\n  " << e.what() << "\n";
        }
    }
    std::cout.flush();
    return allValid ? kExitOk : kExitFailed;
}

int RunConvertWithSchema(const ConvertOptions& options) {
    const std::shared_ptr<const CDynamicClassSet> classes = CDynamicClassSet::Create(LoadSchemas(options.schemas));
    const CSmartPtr<CDynamicObject> object = Bind(*classes, options.input);
    // A member holding a derived type must say so, or it reads back as its declared type.
    CXmlSerializationContext ctx;
    ctx.SetWriteTypeAttribute(true);
    // Declared once on the root under its usual prefix, rather than with a
    // generated one on every element that carries xsi:type or xsi:nil.
    ctx.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
    WriteOutput(options.output, WriteObject(*object, options.out, ctx));
    return kExitOk;
}

int RunSchema(const std::vector<std::string>& schemas) {
    std::cout << PrintSchemaSet(*LoadSchemas(schemas));
    return kExitOk;
}

}  // namespace qmxml_tool
