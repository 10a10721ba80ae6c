// The pattern cases of the W3C XML Schema test suite (Microsoft and Boeing
// sets) that scripts/w3c_patterns.py extracts into tests/data: every case must
// agree with the suite, except those listed with a reason in
// w3c_patterns_known.txt, and a listed case that comes to agree must leave the
// list.
#include <qmxml/types/restrictions.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <qmxml/core/exception.h>

using namespace QmXmlLib10;

namespace {

struct W3cCase {
    bool instance = false;  // an instance test, else a schema test
    std::string name;
    std::string pattern;
    bool valid = false;
    std::vector<std::string> values;
};

std::string Unescape(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\' || i + 1 == field.size()) {
            out += field[i];
            continue;
        }
        const char next = field[++i];
        out += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return out;
}

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
        const std::size_t tab = line.find('\t', start);
        fields.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos) return fields;
        start = tab + 1;
    }
}

std::vector<W3cCase> LoadCases(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<W3cCase> cases;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> fields = SplitTabs(line);
        if (fields.size() < 4) continue;
        W3cCase c;
        c.instance = fields[0] == "I";
        c.name = fields[1];
        c.pattern = Unescape(fields[2]);
        c.valid = fields[3] == "valid";
        for (std::size_t i = 4; i < fields.size(); ++i) c.values.push_back(Unescape(fields[i]));
        cases.push_back(std::move(c));
    }
    return cases;
}

// name -> why the runtime disagrees.
std::map<std::string, std::string> LoadKnown(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::map<std::string, std::string> known;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t tab = line.find('\t');
        known[line.substr(0, tab)] = tab == std::string::npos ? "" : line.substr(tab + 1);
    }
    return known;
}

// Whether the runtime's answer is the suite's.
bool Agrees(const W3cCase& c) {
    try {
        if (!c.instance) {
            CPrimitiveRestrictions::MatchesPattern("", c.pattern);
            return c.valid;  // the pattern compiled
        }
        bool allMatch = true;
        for (const std::string& value : c.values) {
            allMatch = CPrimitiveRestrictions::MatchesPattern(value, c.pattern) && allMatch;
        }
        return allMatch == c.valid;
    } catch (const CQmException&) {
        return !c.instance && !c.valid;
    }
}

std::string Describe(const W3cCase& c) {
    std::ostringstream out;
    out << c.name << " pattern [" << c.pattern << "] expected " << (c.valid ? "valid" : "invalid");
    for (const std::string& value : c.values) out << " [" << value << "]";
    return out.str();
}

TEST(W3cPatternSuiteTest, EveryCaseAgreesOrIsAKnownDifference) {
    const std::vector<W3cCase> cases = LoadCases(QMXML_TEST_DATA_DIR "/w3c_patterns.txt");
    const std::map<std::string, std::string> known = LoadKnown(QMXML_TEST_DATA_DIR "/w3c_patterns_known.txt");
    ASSERT_GT(cases.size(), 3000u) << "tests/data/w3c_patterns.txt is missing or cut short";

    int agreeing[2] = {0, 0};
    int total[2] = {0, 0};
    for (const W3cCase& c : cases) {
        const bool agrees = Agrees(c);
        ++total[c.instance];
        agreeing[c.instance] += agrees;
        const bool listed = known.count(c.name) != 0;
        if (!agrees && !listed) ADD_FAILURE() << "disagrees with the suite: " << Describe(c);
        if (agrees && listed) ADD_FAILURE() << "agrees now, drop it from w3c_patterns_known.txt: " << c.name;
    }
    char summary[200];
    std::snprintf(summary, sizeof summary,
                  "W3C pattern cases: %d of %d agree (instances %d of %d, schemas %d of %d)\n",
                  agreeing[0] + agreeing[1], total[0] + total[1], agreeing[1], total[1], agreeing[0], total[0]);
    std::cout << summary;
}

}  // namespace
