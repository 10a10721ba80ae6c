// The subcommands that work through a schema.
#include <qmxml/qmxml.h>
#include <qmxml/schema/schema.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"

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

}  // namespace

int RunSchema(const std::vector<std::string>& schemas) {
    std::cout << PrintSchemaSet(*LoadSchemas(schemas));
    return kExitOk;
}

}  // namespace qmxml_tool
