// A sample of the W3C XML Schema test suite's schema tests, read from the
// suite beside the project (../shared/w3c-xsdtests); skipped when it is not
// there. scripts/w3c_schema_tests.sh runs the whole suite.
#include <cstdio>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include "w3c_instances.h"
#include "w3c_suite.h"

namespace {

struct Sample {
    const char* area;
    const char* group;
};

void PrintTo(const Sample& s, std::ostream* os) { *os << s.area << "/" << s.group; }

const std::vector<qmxml_w3c::TestCase>* Suite() {
    static const std::vector<qmxml_w3c::TestCase>* tests = [] {
        return new std::vector<qmxml_w3c::TestCase>(qmxml_w3c::ReadSuite(QMXML_W3C_SUITE_DIR));
    }();
    return tests;
}

// The instance sample's size and its floors (see W3CInstanceSample).
constexpr int kSampleValid = 704;
constexpr int kSampleInvalid = 461;
constexpr int kSampleAccepted = 698;
constexpr int kSampleRoundTripped = 690;
constexpr int kSampleRejected = 434;

class W3CSchemaSample : public ::testing::TestWithParam<Sample> {};

TEST_P(W3CSchemaSample, VerdictAgrees) {
    if (!std::filesystem::is_directory(QMXML_W3C_SUITE_DIR))
        GTEST_SKIP() << "the W3C suite is not at " << QMXML_W3C_SUITE_DIR;
    const Sample& s = GetParam();
    const qmxml_w3c::TestCase* test = nullptr;
    for (const qmxml_w3c::TestCase& t : *Suite())
        if (t.set == s.area && t.group == s.group && t.kind == qmxml_w3c::TestCase::Kind::Schema) test = &t;
    ASSERT_NE(test, nullptr) << "no schema test " << s.area << "/" << s.group;
    ASSERT_TRUE(test->applicable);
    const std::string failure = qmxml_w3c::LoadSchema(*test);
    if (test->expectedValid) {
        EXPECT_EQ(failure, "");
    } else {
        EXPECT_NE(failure, "") << "an invalid schema loaded";
    }
}

// Every fourth applicable instance test of the suite, read through the
// dynamic classes of its group's schema; accepted valid ones are written back
// and compared with the original. The floors are the agreement counts when
// the runner was last brought up to date: they may rise, never fall.
TEST(W3CInstanceSample, AgreementDoesNotFallBelowTheRatchet) {
    if (!std::filesystem::is_directory(QMXML_W3C_SUITE_DIR))
        GTEST_SKIP() << "the W3C suite is not at " << QMXML_W3C_SUITE_DIR;
    int seen = 0, valid = 0, accepted = 0, roundTripped = 0, invalid = 0, rejected = 0;
    qmxml_w3c::GroupCache cache;
    for (const qmxml_w3c::TestCase& t : *Suite()) {
        if (!t.applicable || t.kind != qmxml_w3c::TestCase::Kind::Instance) continue;
        if (seen++ % 4 != 0) continue;
        const qmxml_w3c::InstanceOutcome out = qmxml_w3c::RunInstance(t, cache);
        const bool read = out.kind == qmxml_w3c::InstanceOutcome::Kind::Accepted;
        if (t.expectedValid) {
            ++valid;
            if (read) ++accepted;
            if (read && out.difference.empty()) ++roundTripped;
        } else {
            ++invalid;
            if (out.kind == qmxml_w3c::InstanceOutcome::Kind::Rejected) ++rejected;
        }
    }
    std::printf("sample: %d/%d valid accepted, %d round-tripped, %d/%d invalid rejected\n", accepted, valid, roundTripped,
                rejected, invalid);
    EXPECT_EQ(valid, kSampleValid);
    EXPECT_EQ(invalid, kSampleInvalid);
    EXPECT_GE(accepted, kSampleAccepted);
    EXPECT_GE(roundTripped, kSampleRoundTripped);
    EXPECT_GE(rejected, kSampleRejected);
}

TEST(W3CSuiteReader, AppliesVersionAndStatus) {
    if (!std::filesystem::is_directory(QMXML_W3C_SUITE_DIR))
        GTEST_SKIP() << "the W3C suite is not at " << QMXML_W3C_SUITE_DIR;
    std::map<std::string, int> applicable;
    int excluded = 0;
    const qmxml_w3c::TestCase* twoVerdicts = nullptr;  // invalid in 1.0, valid in 1.1
    for (const qmxml_w3c::TestCase& t : *Suite()) {
        if (!t.applicable) ++excluded;
        else if (t.kind == qmxml_w3c::TestCase::Kind::Schema) ++applicable[t.set];
        if (t.name == "reF20" && t.kind == qmxml_w3c::TestCase::Kind::Schema) twoVerdicts = &t;
    }
    EXPECT_EQ(applicable["Boeing"], 6);
    EXPECT_EQ(applicable["Element"], 340);
    // Tests whose only verdict is for another version count here too.
    EXPECT_EQ(excluded, 844);
    ASSERT_NE(twoVerdicts, nullptr);
    EXPECT_TRUE(twoVerdicts->applicable);
    EXPECT_FALSE(twoVerdicts->expectedValid);
}

TEST(W3CSuiteReader, CauseDropsValuesAndLocation) {
    EXPECT_EQ(qmxml_w3c::CauseOf("In [a.xsd] at [/schema/element[e]]: The type [{urn:x}T] referenced by the element [e] is not defined"),
              "The type [..] referenced by the element [..] is not defined");
    EXPECT_EQ(qmxml_w3c::CauseOf("mismatched tag at line 4"), "mismatched tag");
    // Disagreements group by the first line of the cause.
    EXPECT_EQ(qmxml_w3c::NormalisedCause("The value [1.5] of [{urn:x}a] is not an [int]\nsecond line [x]"),
              "The value [..] of [..] is not an [..]");
}

std::string Name(const ::testing::TestParamInfo<Sample>& info) {
    std::string name = std::string(info.param.area) + "_" + info.param.group;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

const Sample kSamples[] = {
    {"Additional", "addA003"},
    {"Additional", "addB033"},
    {"Additional", "addA001"},
    {"Additional", "addB102"},
    {"Annotations", "annotB004"},
    {"Annotations", "annotB015"},
    {"Annotations", "annotA001"},
    {"Annotations", "annotA018"},
    {"Attribute", "attA001"},
    {"Attribute", "attH001"},
    {"Attribute", "attA007"},
    {"Attribute", "attLa003"},
    {"AttributeGroup", "attgA002"},
    {"AttributeGroup", "attgB015"},
    {"AttributeGroup", "attgA001"},
    {"AttributeGroup", "attgC022"},
    {"Boeing", "ipo1"},
    {"Boeing", "ipo3"},
    {"ComplexType", "ctA004"},
    {"ComplexType", "ctB105"},
    {"ComplexType", "ctA001"},
    {"ComplexType", "ctD023"},
    {"DataTypes", "string_length001_0"},
    {"DataTypes", "token_maxLength005_363"},
    {"DataTypes", "string_length003_2"},
    {"DataTypes", "gYear_maxExclusive002_1220"},
    {"Element", "elemA001"},
    {"Element", "elemE009"},
    {"Element", "elemA002"},
    {"Element", "elemQ011"},
    {"Errata10", "errC005"},
    {"Errata10", "errC006"},
    {"Errata10", "errA001"},
    {"Errata10", "errC002"},
    {"Group", "groupA008"},
    {"Group", "groupD004"},
    {"Group", "groupA001"},
    {"Group", "groupH005v"},
    {"IdentityConstraint", "idA006"},
    {"IdentityConstraint", "idB052"},
    {"IdentityConstraint", "idA001"},
    {"IdentityConstraint", "idI051"},
    {"ModelGroups", "mgA002"},
    {"ModelGroups", "mgEa003"},
    {"ModelGroups", "mgA001"},
    {"ModelGroups", "mgG023"},
    {"Notations", "notatA002"},
    {"Notations", "notatF018"},
    {"Notations", "notatA001"},
    {"Notations", "notatC001"},
    {"Particles", "particlesDa006"},
    {"Particles", "particlesIk010"},
    {"Particles", "particlesA001"},
    {"Particles", "particlesEc020"},
    {"Regex", "reB62"},
    {"Regex", "reK82"},
    {"Regex", "reA1"},
    {"Regex", "reM56"},
    {"Schema", "schB3"},
    {"Schema", "schH3"},
    {"Schema", "schA1"},
    {"Schema", "schE3"},
    {"SimpleType", "stA004"},
    {"SimpleType", "stD005"},
    {"SimpleType", "stA001"},
    {"SimpleType", "stE058"},
    {"Wildcards", "wildA003"},
    {"Wildcards", "wildD077"},
    {"Wildcards", "wildA001"},
    {"Wildcards", "wildG019"},
};

INSTANTIATE_TEST_SUITE_P(Suite, W3CSchemaSample, ::testing::ValuesIn(kSamples), Name);

}  // namespace
