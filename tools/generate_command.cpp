// qmxml generate: the schema compiler's command. Loads the schema set, has
// the C++ back end emit the classes, and writes (or lists) the files.
#include <qmxml/schema/schema.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "codegen/cpp_emitter.h"
#include "commands.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace qmxml_tool {

int RunGenerate(const GenerateOptions& options) {
    codegen::EmitOptions emit;
    emit.schemas = options.schemas;
    for (const std::string& entry : options.namespaceMap) {
        const std::size_t eq = entry.rfind('=');
        if (eq == std::string::npos || eq == 0 || eq + 1 == entry.size()) {
            std::cerr << "qmxml generate: --namespace-map takes URI=cpp::namespace, not [" << entry << "]\n";
            return kExitUsage;
        }
        emit.namespaceMap[entry.substr(0, eq)] = entry.substr(eq + 1);
    }
    std::vector<CSchemaSource> sources;
    for (const std::string& path : options.schemas) sources.push_back(CSchemaSource::File(path));
    const std::unique_ptr<CSchemaSet> set = CSchemaSet::Load(sources);
    const std::vector<codegen::EmittedFile> files = codegen::EmitCpp(*set, emit);
    const std::filesystem::path dir(options.outputDir);
    if (options.listOutputs) {
        for (const auto& file : files) std::cout << (dir / file.name).string() << "\n";
        return kExitOk;
    }
    std::filesystem::create_directories(dir);
    for (const auto& file : files) {
        const std::filesystem::path path = dir / file.name;
        // An unchanged file keeps its time stamp: a build recompiles only what changed.
        std::ifstream in(path, std::ios::binary);
        if (in) {
            std::ostringstream old;
            old << in.rdbuf();
            if (old.str() == file.text) continue;
        }
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << file.text;
        out.close();
        if (!out) throw CQmException("Cannot write the file [" + path.string() + "]");
    }
    return kExitOk;
}

}  // namespace qmxml_tool
