// Runs the W3C XML Schema test suite's schema tests (Microsoft and Boeing
// sets) against the schema loader and prints the agreement per area.
//
//   w3c_schema_runner SUITE_DIR [--list N] [--results FILE]
//
// --list N shows N examples per cause (10); --results FILE writes one line per
// schema test run: area, group, expected (valid/invalid), agrees (yes/no).
// SUITE_DIR holds msMeta/, msData/, boeingMeta/, boeingData/. Expected-valid
// schemas must load, expected-invalid ones must be refused. Instance tests
// are counted and listed as not run yet: they need the mapping and dynamic
// classes, and will slot in where RunInstance says.
// Exit status: 0 when it ran, 2 on a usage error or an unreadable suite.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "qmxml/core/exception.h"
#include "w3c_suite.h"

namespace {

struct Tally {
    int valid = 0, loaded = 0, invalid = 0, refused = 0, instances = 0, notApplicable = 0;
};

double Percent(int part, int whole) { return whole == 0 ? 100.0 : 100.0 * part / whole; }

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s SUITE_DIR [--list N]\n", argv[0]);
        return 2;
    }
    int list = 10;
    std::FILE* results = nullptr;
    for (int i = 2; i + 1 < argc; ++i) {
        if (std::string(argv[i]) == "--list") list = std::atoi(argv[i + 1]);
        if (std::string(argv[i]) == "--results") results = std::fopen(argv[i + 1], "w");
    }
    std::vector<qmxml_w3c::TestCase> tests;
    try {
        tests = qmxml_w3c::ReadSuite(argv[1]);
    } catch (const QmXmlLib10::CQmException& e) {
        std::fprintf(stderr, "cannot read the suite: %s\n", e.GetFullMessage().c_str());
        return 2;
    }
    if (tests.empty()) {
        std::fprintf(stderr, "no test sets under %s\n", argv[1]);
        return 2;
    }
    std::vector<std::string> areas;
    std::map<std::string, Tally> tally;
    // Disagreements by cause: the message shape for refused valid schemas.
    std::map<std::string, std::vector<std::string>> refusedValid;
    std::map<std::string, std::vector<std::string>> loadedInvalid;
    for (const qmxml_w3c::TestCase& t : tests) {
        if (tally.find(t.set) == tally.end()) areas.push_back(t.set);
        Tally& a = tally[t.set];
        if (!t.applicable) {
            ++a.notApplicable;
            continue;
        }
        if (t.kind == qmxml_w3c::TestCase::Kind::Instance) {
            ++a.instances;  // RunInstance: with the mapping and dynamic classes
            continue;
        }
        const std::string failure = qmxml_w3c::LoadSchema(t);
        const std::string id = t.set + "/" + t.group;
        if (results != nullptr)
            std::fprintf(results, "%s %s %s %s\n", t.set.c_str(), t.group.c_str(), t.expectedValid ? "valid" : "invalid",
                         failure.empty() == t.expectedValid ? "yes" : "no");
        if (t.expectedValid) {
            ++a.valid;
            if (failure.empty()) ++a.loaded;
            else refusedValid[qmxml_w3c::CauseOf(failure)].push_back(id + ": " + failure);
        } else {
            ++a.invalid;
            if (!failure.empty()) ++a.refused;
            else {
                // Group by the area's data folder, the closest thing to a cause.
                const std::string& doc = t.schemaDocuments[0];
                const std::size_t slash = doc.rfind('/');
                const std::size_t before = doc.rfind('/', slash - 1);
                loadedInvalid[t.set + " " + doc.substr(before + 1, slash - before - 1)].push_back(id);
            }
        }
    }
    std::printf("%-20s %18s %18s %9s %9s\n", "area", "valid loaded", "invalid refused", "instances", "excluded");
    Tally ms;
    auto row = [](const char* name, const Tally& a) {
        std::printf("%-20s %6d/%-5d %5.1f%% %6d/%-5d %5.1f%% %9d %9d\n", name, a.loaded, a.valid, Percent(a.loaded, a.valid),
                    a.refused, a.invalid, Percent(a.refused, a.invalid), a.instances, a.notApplicable);
    };
    for (const std::string& area : areas) {
        const Tally& a = tally[area];
        row(area.c_str(), a);
        if (area != "Boeing") {
            ms.valid += a.valid, ms.loaded += a.loaded, ms.invalid += a.invalid, ms.refused += a.refused;
            ms.instances += a.instances, ms.notApplicable += a.notApplicable;
        }
    }
    row("Microsoft total", ms);
    std::printf("\nValid schemas refused, by cause:\n");
    for (const auto& c : refusedValid) {
        std::printf("  %4zu  %s\n", c.second.size(), c.first.c_str());
        for (std::size_t i = 0; i < c.second.size() && static_cast<int>(i) < list; ++i) std::printf("          %s\n", c.second[i].c_str());
    }
    std::printf("\nInvalid schemas loaded, by area and folder:\n");
    for (const auto& c : loadedInvalid) {
        std::printf("  %4zu  %s\n", c.second.size(), c.first.c_str());
        std::string line;
        for (std::size_t i = 0; i < c.second.size() && static_cast<int>(i) < list; ++i) line += " " + c.second[i];
        if (!line.empty()) std::printf("         %s\n", line.c_str());
    }
    std::printf("\nInstance tests are not run yet.\n");
    if (results != nullptr) std::fclose(results);
    return 0;
}
