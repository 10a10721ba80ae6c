// What the schema value rule adds to reading a simple value: the runtime's
// conversion of the text (the baseline) against the conversion followed by the
// rule's check, per kind of type, over values that all pass (as in a valid
// document). Prints the ratio of the two times for each case at the end.
#include <benchmark/benchmark.h>

#include <qmxml/qmxml.h>
#include <qmxml/schema/schema.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "schema/value_rule.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace {

constexpr std::size_t kValues = 64;

struct SRuleCase {
    const char* label;
    const char* type;  // a type of the schema below, or a built-in one with "xs:"
    std::string (*make)(unsigned);
};

const char* const kSchema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:b' xmlns='urn:b'>"
    "<xs:simpleType name='Price'><xs:restriction base='xs:decimal'><xs:minInclusive value='0'/>"
    "<xs:maxExclusive value='100000'/><xs:totalDigits value='9'/><xs:fractionDigits value='2'/></xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Sku'><xs:restriction base='xs:token'><xs:pattern value='[A-Z]{3}-\\d{4}'/>"
    "<xs:maxLength value='8'/></xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Currency'><xs:restriction base='xs:token'>"
    "<xs:enumeration value='C00'/><xs:enumeration value='C01'/><xs:enumeration value='C02'/><xs:enumeration value='C03'/>"
    "<xs:enumeration value='C04'/><xs:enumeration value='C05'/><xs:enumeration value='C06'/><xs:enumeration value='C07'/>"
    "<xs:enumeration value='C08'/><xs:enumeration value='C09'/><xs:enumeration value='C10'/><xs:enumeration value='C11'/>"
    "</xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Stamp'><xs:restriction base='xs:dateTime'><xs:minInclusive value='2000-01-01T00:00:00Z'/>"
    "</xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Small'><xs:restriction base='xs:int'><xs:maxInclusive value='1000'/></xs:restriction></xs:simpleType>"
    "<xs:simpleType name='Smalls'><xs:list itemType='Small'/></xs:simpleType>"
    "<xs:simpleType name='Dates'><xs:list itemType='xs:date'/></xs:simpleType>"
    "<xs:simpleType name='Mixed'><xs:union memberTypes='xs:int Dates Currency'/></xs:simpleType>"
    "</xs:schema>";

const SRuleCase kCases[] = {
    {"xs:int (lexical form only)", "xs:int", [](unsigned n) { return std::to_string(static_cast<int>(n) - 5000); }},
    {"decimal, bounds and digits", "Price",
     [](unsigned n) { return std::to_string(n % 99999) + "." + std::to_string(10 + n % 90); }},
    {"token, pattern and length", "Sku",
     [](unsigned n) {
         return std::string{char('A' + n % 26), char('A' + n / 26 % 26), char('A' + n / 7 % 26)} + "-" +
                std::to_string(1000 + n % 9000);
     }},
    {"token enumeration of 12", "Currency", [](unsigned n) {
         char buffer[8];
         std::snprintf(buffer, sizeof buffer, "C%02u", n % 12);
         return std::string(buffer);
     }},
    {"dateTime with a bound", "Stamp",
     [](unsigned n) { return "20" + std::to_string(10 + n % 80) + "-0" + std::to_string(1 + n % 9) + "-1" + std::to_string(n % 10) + "T12:30:00Z"; }},
    {"list of 8 ints with a bound", "Smalls",
     [](unsigned n) {
         std::string s;
         for (unsigned i = 0; i < 8; ++i) s += (i ? " " : "") + std::to_string((n + i * 37) % 1000);
         return s;
     }},
    {"union int | list of date | enumeration", "Mixed",
     [](unsigned n) {
         return n % 3 == 0 ? std::to_string(n) : n % 3 == 1 ? std::string("2020-01-02 2021-03-04") : std::string("C07");
     }},
};

struct SPrepared {
    const CSimpleType* type = nullptr;
    ItemType item = ItemType_string;
    CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_None;
    std::shared_ptr<const CValueRule> valueRule;
    std::vector<std::string> values;
};

const CSchemaSet& Set() {
    static const std::unique_ptr<CSchemaSet> set = CSchemaSet::LoadBuffer(kSchema);
    return *set;
}

const SPrepared& Prepared(std::size_t index) {
    static const std::vector<SPrepared> all = [] {
        std::vector<SPrepared> out;
        for (const SRuleCase& c : kCases) {
            SPrepared p;
            const std::string name = c.type;
            p.type = name.rfind("xs:", 0) == 0 ? Set().GetBuiltInType(name.substr(3))
                                               : Set().FindSimpleType({"urn:b", name});
            p.item = BindingItemType(p.type);
            p.rule = BindingWhitespaceRule(p.type);
            p.valueRule = MakeValueRule(p.type, nullptr);
            for (unsigned i = 0; i < kValues; ++i) p.values.push_back(c.make(i * 2654435761u >> 18));
            out.push_back(std::move(p));
        }
        return out;
    }();
    return all[index];
}

// The baseline: what the binding does for a value without a rule.
void BM_Convert(benchmark::State& state) {
    const SPrepared& p = Prepared(static_cast<std::size_t>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        QmVariant v;
        v.FromString(p.values[i++ % kValues], p.item, p.rule);
        benchmark::DoNotOptimize(v);
    }
    state.SetLabel(kCases[state.range(0)].label);
}

void BM_ConvertAndCheck(benchmark::State& state) {
    const SPrepared& p = Prepared(static_cast<std::size_t>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        const std::string& text = p.values[i++ % kValues];
        QmVariant v;
        v.FromString(text, p.item, p.rule);
        if (p.valueRule) p.valueRule->Check("member", v, p.item, &text);
        benchmark::DoNotOptimize(v);
    }
    state.SetLabel(kCases[state.range(0)].label);
}

constexpr int kCaseCount = static_cast<int>(sizeof kCases / sizeof kCases[0]);

// Keeps each run's CPU time per value (steadier than wall-clock time on a
// shared machine) to print the ratios after the table.
class CRatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) times[run.benchmark_name()] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> times;
};

}  // namespace

BENCHMARK(BM_Convert)->DenseRange(0, kCaseCount - 1);
BENCHMARK(BM_ConvertAndCheck)->DenseRange(0, kCaseCount - 1);

int main(int argc, char** argv) {
    // Every value must pass, or the figures measure the failure path.
    for (int c = 0; c < kCaseCount; ++c) {
        const SPrepared& p = Prepared(static_cast<std::size_t>(c));
        for (const std::string& text : p.values) {
            QmVariant v;
            v.FromString(text, p.item, p.rule);
            if (p.valueRule) p.valueRule->Check("member", v, p.item, &text);
        }
    }
    benchmark::Initialize(&argc, argv);
    CRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nconversion + rule over conversion alone (same run):\n");
    for (int c = 0; c < kCaseCount; ++c) {
        const std::string suffix = "/" + std::to_string(c);
        const auto base = reporter.times.find("BM_Convert" + suffix);
        const auto with = reporter.times.find("BM_ConvertAndCheck" + suffix);
        if (base == reporter.times.end() || with == reporter.times.end() || base->second <= 0) continue;
        std::printf("  %-40s %6.2fx  (%.0f ns against %.0f ns)\n", kCases[c].label, with->second / base->second,
                    with->second, base->second);
    }
    return 0;
}
