// The real public schema sets through the dynamic classes: per set, what
// loading the main schema and building its classes costs, and binding and
// writing back the set's largest valid document, each against Expat alone
// parsing the same document in the same run (the floor of any reader). Best
// of RUNS, each run repeating a step until it has taken at least 0.2 s.
//
// usage: real_schemas_bench [RUNS] [DIR]   (RUNS default 5; DIR the folder of
// the sets, default ../shared/schemas beside the project, else the bundled
// tests/data/realschemas)
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <qmxml/core/exception.h>
#include <qmxml/metadata/element_infos.h>
#include <qmxml/schema/dynamic_classes.h>
#include <qmxml/schema/schema_set.h>

#include "bench_support.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
namespace fs = std::filesystem;

namespace {

struct Set {
    const char* folder;
    const char* label;
    // The main schema; null when it follows from the document's name (the
    // ISO 20022 sets: xsd/<name up to its first '_'>.xsd).
    const char* schema;
};

const Set kSets[] = {
    {"gpx", "GPX 1.1 (+ Garmin, Groundspeak)", "xsd/master.xsd"},
    {"maven-pom-4.0.0", "Maven POM 4.0.0", "xsd/maven-4.0.0.xsd"},
    {"iso20022-pain001", "ISO 20022 pain.001", nullptr},
    {"iso20022-camt053", "ISO 20022 camt.053", nullptr},
    {"bpmn20", "BPMN 2.0", "xsd/BPMN20.xsd"},
};

// Seconds per call of fn: calls repeated until 0.2 s have passed, best of runs.
template <class Fn>
double PerCall(int runs, Fn&& fn) {
    double best = std::numeric_limits<double>::max();
    for (int r = 0; r < runs; ++r) {
        long calls = 0;
        const bench::Clock::time_point start = bench::Clock::now();
        double elapsed = 0;
        do {
            fn();
            ++calls;
            elapsed = bench::Seconds(start);
        } while (elapsed < 0.2);
        best = std::min(best, elapsed / static_cast<double>(calls));
    }
    return best;
}

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The largest file of the set's valid/ folder, or "" when there is none.
fs::path LargestDocument(const fs::path& setDir) {
    fs::path largest;
    std::uintmax_t size = 0;
    const fs::path valid = setDir / "valid";
    if (!fs::is_directory(valid)) return largest;
    for (const auto& entry : fs::directory_iterator(valid)) {
        if (!entry.is_regular_file()) continue;
        if (entry.file_size() > size) {
            largest = entry.path();
            size = entry.file_size();
        }
    }
    return largest;
}

fs::path SchemaOf(const fs::path& setDir, const Set& set, const fs::path& document) {
    if (set.schema != nullptr) return setDir / set.schema;
    const std::string name = document.filename().string();
    return setDir / "xsd" / (name.substr(0, name.find('_')) + ".xsd");
}

fs::path DefaultRoot() {
    const fs::path shared = fs::path(QMXML_BENCH_DIR) / ".." / ".." / "shared" / "schemas";
    if (fs::is_directory(shared)) return shared;
    return fs::path(QMXML_BENCH_DIR) / ".." / "tests" / "data" / "realschemas";
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const fs::path root = argc > 2 ? fs::path(argv[2]) : DefaultRoot();
    // Relative to the project, so that the report reads the same on every machine.
    const fs::path project = fs::weakly_canonical(fs::path(QMXML_BENCH_DIR) / "..");
    const fs::path shown = fs::weakly_canonical(root).lexically_relative(project);
    std::printf("sets: %s, best of %d\n\n", shown.string().c_str(), runs);
    std::printf("%-32s %9s %9s %9s %9s %9s %8s %8s\n", "set", "doc KB", "schema", "expat", "bind", "write", "bind/x",
                "write/x");
    std::printf("%-32s %9s %9s %9s %9s %9s %8s %8s\n", "", "", "ms", "ms", "ms", "ms", "", "");
    int status = 0;
    for (const Set& set : kSets) {
        const fs::path setDir = root / set.folder;
        const fs::path document = LargestDocument(setDir);
        if (document.empty()) {
            std::printf("%-32s (absent)\n", set.label);
            continue;
        }
        const fs::path schema = SchemaOf(setDir, set, document);
        try {
            const std::string text = ReadAll(document);
            std::shared_ptr<const CDynamicClassSet> classes;
            const double load = PerCall(runs, [&] { classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(schema.string())); });
            const double expat = PerCall(runs, [&] {
                if (!bench::ParseWithExpatAlone(text)) throw CQmException("Expat rejects " + document.string());
            });
            CSmartPtr<CDynamicObject> object;
            const double bind = PerCall(runs, [&] { object = classes->ReadBuffer(text.data(), text.size()); });
            CXmlSerializationContext ctx;
            ctx.SetWriteTypeAttribute(true);
            std::size_t written = 0;
            const double write = PerCall(runs, [&] { written = object->ToXml(true, false, EOLType_LF, ctx).size(); });
            std::printf("%-32s %9.1f %9.2f %9.3f %9.3f %9.3f %8.1f %8.1f   %s (%zu bytes written)\n", set.label,
                        static_cast<double>(text.size()) / 1024.0, load * 1e3, expat * 1e3, bind * 1e3, write * 1e3,
                        bind / expat, write / expat, document.filename().string().c_str(), written);
        } catch (const CQmException& e) {
            std::printf("%-32s failed: %s\n", set.label, e.GetFullMessage().c_str());
            status = 1;
        }
    }
    std::printf("\nschema: loading the main schema with what it includes and imports, and building every class\n"
                "bind/x, write/x: the time against Expat alone parsing the document\n");
    return status;
}
