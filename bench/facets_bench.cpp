// Pattern facet checks with the process-wide cache of compiled patterns against
// translating and compiling the pattern at every check, over the order book's
// patterns and values that all pass (as in a valid document).
#include <benchmark/benchmark.h>

#include <qmxml/types/restrictions.h>

#include <cstdint>
#include <string>
#include <vector>

#include "types/pattern_matcher.h"

using namespace QmXmlLib10;

namespace {

constexpr std::size_t kValues = 256;

struct SPatternCase {
    const char* pattern;
    std::string (*make)(std::uint32_t);
};

const SPatternCase kCases[] = {
    {"[A-Z]{3}-\\d{4}",
     [](std::uint32_t n) {
         return std::string{char('A' + n % 26), char('A' + n / 26 % 26), char('A' + n / 7 % 26)} + "-" +
                std::to_string(1000 + n % 9000);
     }},
    {"\\d{5}", [](std::uint32_t n) { return std::to_string(10000 + n * 37 % 90000); }},
    {"[^@\\s]+@[^@\\s]+",
     [](std::uint32_t n) { return "buyer" + std::to_string(n) + "@example" + std::to_string(n % 13) + ".org"; }},
};

const std::vector<std::string>& Values(std::size_t caseIndex) {
    static const std::vector<std::vector<std::string>> values = [] {
        std::vector<std::vector<std::string>> all;
        for (const SPatternCase& c : kCases) {
            std::vector<std::string> texts;
            for (std::uint32_t i = 0; i < kValues; ++i) texts.push_back(c.make(i * 2654435761u >> 20));
            all.push_back(std::move(texts));
        }
        return all;
    }();
    return values[caseIndex];
}

// One check per iteration over the case's values, labelled with its pattern.
template <typename Check>
void RunCase(benchmark::State& state, Check check) {
    const auto caseIndex = static_cast<std::size_t>(state.range(0));
    const std::vector<std::string>& values = Values(caseIndex);
    std::size_t i = 0;
    for (auto _ : state) {
        check(values[i++ % kValues]);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(kCases[caseIndex].pattern);
}

const char* Pattern(const benchmark::State& state) { return kCases[static_cast<std::size_t>(state.range(0))].pattern; }

// The facet check as the metadata runs it: lengths, then the cached pattern.
void BM_FacetCheckCached(benchmark::State& state) {
    const CPrimitiveRestrictions facets(Pattern(state), 1, 64, "", "", "", "", -1);
    RunCase(state, [&](const std::string& value) { CPrimitiveRestrictions::CheckString("member", value, facets); });
}

void BM_MatchCached(benchmark::State& state) {
    const std::string pattern = Pattern(state);
    RunCase(state, [&](const std::string& value) {
        benchmark::DoNotOptimize(CPrimitiveRestrictions::MatchesPattern(value, pattern));
    });
}

// Baseline: translate, compile, create match data, match and free every time.
void BM_MatchCompileEachTime(benchmark::State& state) {
    const std::string pattern = Pattern(state);
    RunCase(state, [&](const std::string& value) {
        benchmark::DoNotOptimize(patterns::MatchUncached(value, pattern));
    });
}

}  // namespace

BENCHMARK(BM_FacetCheckCached)->DenseRange(0, 2);
BENCHMARK(BM_MatchCached)->DenseRange(0, 2);
BENCHMARK(BM_MatchCompileEachTime)->DenseRange(0, 2);
// Several threads sharing the cache (one mutex-guarded lookup per check).
BENCHMARK(BM_MatchCached)->Arg(0)->Threads(4)->UseRealTime();

BENCHMARK_MAIN();
