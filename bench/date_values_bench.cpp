// Parsing and printing of dateTime, date and duration values. Each case runs
// next to a baseline over the same texts (sscanf/snprintf of the same fields,
// std::from_chars of one integer), so the figures read as ratios.
#include <benchmark/benchmark.h>

#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using namespace QmXmlLib10;

namespace {

constexpr std::size_t kValues = 1024;

struct SFields {
    int year, month, day, hour, minute, second, millis;
};

const std::vector<SFields>& Fields() {
    static const std::vector<SFields> fields = [] {
        std::vector<SFields> result;
        std::uint32_t seed = 12345;
        auto next = [&seed](int modulo) {
            seed = seed * 1103515245u + 12345u;
            return static_cast<int>((seed >> 8) % static_cast<std::uint32_t>(modulo));
        };
        for (std::size_t i = 0; i < kValues; ++i) {
            result.push_back({1900 + next(200), 1 + next(12), 1 + next(28), next(24), next(60), next(60), next(1000)});
        }
        return result;
    }();
    return fields;
}

std::vector<std::string> Texts(const char* format, bool withMillis) {
    std::vector<std::string> texts;
    char buffer[64];
    for (const SFields& f : Fields()) {
        if (withMillis) {
            std::snprintf(buffer, sizeof buffer, format, f.year, f.month, f.day, f.hour, f.minute, f.second, f.millis);
        } else {
            std::snprintf(buffer, sizeof buffer, format, f.year, f.month, f.day, f.hour, f.minute, f.second);
        }
        texts.emplace_back(buffer);
    }
    return texts;
}

const std::vector<std::string>& DateTimeTexts() {
    static const auto texts = Texts("%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", true);
    return texts;
}

const std::vector<std::string>& DateTexts() {
    static const auto texts = Texts("%04d-%02d-%02d", false);
    return texts;
}

const std::vector<std::string>& DurationTexts() {
    static const auto texts = Texts("P%dY%dM%dDT%dH%dM%dS", false);
    return texts;
}

// Integers as long as a dateTime text has digits.
const std::vector<std::string>& IntegerTexts() {
    static const auto texts = Texts("%04d%02d%02d%02d%02d%02d%03d", true);
    return texts;
}

template <typename Fn>
void RunOverTexts(benchmark::State& state, const std::vector<std::string>& texts, Fn fn) {
    std::size_t i = 0;
    for (auto _ : state) {
        fn(texts[i]);
        i = (i + 1) % texts.size();
    }
    state.SetItemsProcessed(state.iterations());
}

// --- dateTime ------------------------------------------------------------------

void BM_DateTimeParse(benchmark::State& state) {
    CDateTime value;
    RunOverTexts(state, DateTimeTexts(), [&](const std::string& text) {
        value.ParseXSDDateTime(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateTimeParse);

void BM_DateTimeParseBaselineSscanf(benchmark::State& state) {
    RunOverTexts(state, DateTimeTexts(), [](const std::string& text) {
        int y, mo, d, h, mi, s, ms;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d.%dZ", &y, &mo, &d, &h, &mi, &s, &ms));
        benchmark::DoNotOptimize(y + mo + d + h + mi + s + ms);
    });
}
BENCHMARK(BM_DateTimeParseBaselineSscanf);

void BM_DateTimeParseBaselineFromChars(benchmark::State& state) {
    RunOverTexts(state, IntegerTexts(), [](const std::string& text) {
        std::uint64_t value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateTimeParseBaselineFromChars);

void BM_DateTimePrint(benchmark::State& state) {
    std::vector<CDateTime> values;
    for (const std::string& text : DateTimeTexts()) {
        values.emplace_back(text.c_str());
    }
    std::size_t i = 0;
    for (auto _ : state) {
        std::string text = values[i].ToString();
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % values.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateTimePrint);

void BM_DateTimePrintBaselineSnprintf(benchmark::State& state) {
    const std::vector<SFields>& fields = Fields();
    std::size_t i = 0;
    for (auto _ : state) {
        const SFields& f = fields[i];
        char buffer[64];
        const int n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", f.year, f.month,
                                    f.day, f.hour, f.minute, f.second, f.millis);
        std::string text(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % fields.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateTimePrintBaselineSnprintf);

// --- date ------------------------------------------------------------------------

void BM_DateParse(benchmark::State& state) {
    CDateTime value;
    RunOverTexts(state, DateTexts(), [&](const std::string& text) {
        value.ParseXSDDate(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateParse);

void BM_DateParseBaselineSscanf(benchmark::State& state) {
    RunOverTexts(state, DateTexts(), [](const std::string& text) {
        int y, m, d;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "%d-%d-%d", &y, &m, &d));
        benchmark::DoNotOptimize(y + m + d);
    });
}
BENCHMARK(BM_DateParseBaselineSscanf);

void BM_DatePrint(benchmark::State& state) {
    std::vector<CDateTime> values;
    for (const std::string& text : DateTexts()) {
        values.emplace_back();
        values.back().ParseXSDDate(text.c_str());
    }
    std::size_t i = 0;
    for (auto _ : state) {
        std::string text = values[i].ToString();
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % values.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DatePrint);

void BM_DatePrintBaselineSnprintf(benchmark::State& state) {
    const std::vector<SFields>& fields = Fields();
    std::size_t i = 0;
    for (auto _ : state) {
        const SFields& f = fields[i];
        char buffer[32];
        const int n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", f.year, f.month, f.day);
        std::string text(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % fields.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DatePrintBaselineSnprintf);

// --- duration --------------------------------------------------------------------

void BM_DurationParse(benchmark::State& state) {
    CDateTimeSpan value;
    RunOverTexts(state, DurationTexts(), [&](const std::string& text) {
        value.ParseXSDDuration(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DurationParse);

void BM_DurationParseBaselineSscanf(benchmark::State& state) {
    RunOverTexts(state, DurationTexts(), [](const std::string& text) {
        int y, mo, d, h, mi, s;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "P%dY%dM%dDT%dH%dM%dS", &y, &mo, &d, &h, &mi, &s));
        benchmark::DoNotOptimize(y + mo + d + h + mi + s);
    });
}
BENCHMARK(BM_DurationParseBaselineSscanf);

void BM_DurationPrint(benchmark::State& state) {
    std::vector<CDateTimeSpan> values;
    for (const std::string& text : DurationTexts()) {
        values.emplace_back();
        values.back().ParseXSDDuration(text.c_str());
    }
    std::size_t i = 0;
    for (auto _ : state) {
        std::string text = values[i].ToString();
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % values.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DurationPrint);

void BM_DurationPrintBaselineSnprintf(benchmark::State& state) {
    const std::vector<SFields>& fields = Fields();
    std::size_t i = 0;
    for (auto _ : state) {
        const SFields& f = fields[i];
        char buffer[64];
        const int n = std::snprintf(buffer, sizeof buffer, "P%dY%dM%dDT%dH%dM%dS", f.year, f.month, f.day, f.hour,
                                    f.minute, f.second);
        std::string text(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(text.data());
        i = (i + 1) % fields.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DurationPrintBaselineSnprintf);

// The order relation adds both durations to four reference instants.
void BM_DurationCompare(benchmark::State& state) {
    std::vector<CDateTimeSpan> values;
    for (const std::string& text : DurationTexts()) {
        values.emplace_back();
        values.back().ParseXSDDuration(text.c_str());
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(values[i].CompareTo(values[(i + 1) % values.size()]));
        i = (i + 1) % values.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DurationCompare);

}  // namespace

BENCHMARK_MAIN();
