// Generated classes on a fixed sample of the W3C XML Schema suite's test
// groups (sample_groups.txt): the build runs `qmxml generate` on each group's
// schema and compiles the classes with generated_driver.cpp into a program of
// their own (each group's classes keep their own C++ namespaces that way, even
// where two groups' schemas share a namespace name). Every instance must get
// from it what the dynamic classes of the same schema give
// (dynamic_driver.cpp): the same verdict, the same message chain, the same
// text byte for byte. scripts/generated_w3c.sh runs the same drivers over the
// whole suite, and with SAMPLE_OUT writes the lines of the sample.
#include <stdio.h>
#include <sys/wait.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct SampleGroup {
    std::string name;
    std::string schema;                  // relative to the suite
    std::vector<std::string> instances;  // relative to the suite
};

void PrintTo(const SampleGroup& group, std::ostream* os) { *os << group.name; }

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    std::string part;
    while (std::getline(in, part, separator)) parts.push_back(part);
    return parts;
}

// The committed list: name, schema, set header, set namespace, generated
// files, instances; tab-separated, lists space-separated, # starts a comment.
std::vector<SampleGroup> ReadSample() {
    std::vector<SampleGroup> groups;
    std::ifstream in(QMXML_W3C_SAMPLE_LIST);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> fields = Split(line, '\t');
        if (fields.size() != 6) {
            ADD_FAILURE() << "a sample line without six fields: " << line;
            continue;
        }
        groups.push_back({fields[0], fields[1], Split(fields[5], ' ')});
    }
    return groups;
}

// The groups the build compiled: none when the suite was not beside the
// project at configure time.
std::vector<SampleGroup> BuiltGroups() { return QMXML_W3C_SAMPLE_BUILT ? ReadSample() : std::vector<SampleGroup>(); }

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

struct ProgramRun {
    int status = -1;
    std::string out;
};

ProgramRun RunProgram(const std::string& command) {
    ProgramRun run;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return run;
    std::array<char, 4096> buffer;
    std::size_t got;
    while ((got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) run.out.append(buffer.data(), got);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// What a driver printed, by instance: the text after "== PATH" up to the next such line.
std::map<std::string, std::string> Sections(const std::string& out) {
    std::map<std::string, std::string> sections;
    std::string* current = nullptr;
    for (const std::string& line : Split(out, '\n')) {
        if (line.compare(0, 3, "== ") == 0) {
            current = &sections[line.substr(3)];
            continue;
        }
        if (current != nullptr) *current += line + "\n";
    }
    return sections;
}

TEST(W3CGeneratedSample, IsBuiltWhenTheSuiteIsThere) {
    if (!QMXML_W3C_SAMPLE_BUILT)
        GTEST_SKIP() << "the W3C suite was not at " << QMXML_W3C_SUITE_DIR
                     << " when the project was configured: the generated sample is not built";
    const std::vector<SampleGroup> groups = ReadSample();
    EXPECT_GE(groups.size(), 30u);
    EXPECT_LE(groups.size(), 60u);
    std::size_t instances = 0;
    for (const SampleGroup& group : groups) {
        EXPECT_TRUE(std::filesystem::exists(std::string(QMXML_W3C_SAMPLE_BIN) + "/" + group.name)) << group.name;
        instances += group.instances.size();
    }
    std::printf("generated sample: %zu groups, %zu instances\n", groups.size(), instances);
}

class W3CGeneratedGroup : public ::testing::TestWithParam<SampleGroup> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(W3CGeneratedGroup);

TEST_P(W3CGeneratedGroup, ReadsAndWritesAsTheDynamicClasses) {
    const SampleGroup& group = GetParam();
    const std::string suite = QMXML_W3C_SUITE_DIR "/";
    std::string instances;
    for (const std::string& instance : group.instances) instances += " " + Quoted(suite + instance);

    const ProgramRun dynamic = RunProgram(Quoted(QMXML_W3C_DYNAMIC_DRIVER) + " " + Quoted(suite + group.schema) + instances);
    ASSERT_EQ(dynamic.status, 0) << "the dynamic classes of " << group.schema << " were not made:\n" << dynamic.out;
    const ProgramRun generated = RunProgram(Quoted(std::string(QMXML_W3C_SAMPLE_BIN) + "/" + group.name) + instances);
    ASSERT_EQ(generated.status, 0) << generated.out;

    const std::map<std::string, std::string> expected = Sections(dynamic.out);
    const std::map<std::string, std::string> actual = Sections(generated.out);
    for (const std::string& instance : group.instances) {
        SCOPED_TRACE(instance);
        const auto want = expected.find(suite + instance);
        const auto got = actual.find(suite + instance);
        ASSERT_NE(want, expected.end()) << "the dynamic classes printed nothing for it";
        ASSERT_NE(got, actual.end()) << "the generated classes printed nothing for it";
        // A verdict first, so that two drivers failing alike do not agree on nothing.
        EXPECT_TRUE(want->second.rfind("valid\n", 0) == 0 || want->second.rfind("invalid\n", 0) == 0) << want->second;
        EXPECT_EQ(got->second, want->second);
    }
}

INSTANTIATE_TEST_SUITE_P(Sample, W3CGeneratedGroup, ::testing::ValuesIn(BuiltGroups()),
                         [](const ::testing::TestParamInfo<SampleGroup>& info) {
                             std::string name = info.param.name;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });

}  // namespace
