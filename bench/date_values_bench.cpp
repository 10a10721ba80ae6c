// Parsing and printing of dateTime, date and duration values. Each case runs
// next to a baseline over the same texts (sscanf/snprintf of the same fields,
// std::from_chars of one integer), so the figures read as ratios.
#include <benchmark/benchmark.h>

#include <qmxml/types/conversions.h>
#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench_support.h"

using namespace QmXmlLib10;
using bench::RunCycling;

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

std::vector<CDateTimeSpan> Durations() {
    std::vector<CDateTimeSpan> values;
    for (const std::string& text : DurationTexts()) {
        values.emplace_back();
        values.back().ParseXSDDuration(text.c_str());
    }
    return values;
}

// Printing a value, as each type's own ToString does it.
template <typename Value>
void RunPrint(benchmark::State& state, const std::vector<Value>& values) {
    RunCycling(state, values, [](const Value& value) {
        std::string text = value.ToString();
        benchmark::DoNotOptimize(text.data());
    });
}

// The baseline of printing: snprintf of the same fields into a string.
template <typename Print>
void RunPrintFields(benchmark::State& state, Print print) {
    RunCycling(state, Fields(), [&](const SFields& f) {
        char buffer[64];
        const int n = print(buffer, sizeof buffer, f);
        std::string text(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(text.data());
    });
}

// --- dateTime ------------------------------------------------------------------

void BM_DateTimeParse(benchmark::State& state) {
    CDateTime value;
    RunCycling(state, DateTimeTexts(), [&](const std::string& text) {
        value.ParseXSDDateTime(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateTimeParse);

void BM_DateTimeParseBaselineSscanf(benchmark::State& state) {
    RunCycling(state, DateTimeTexts(), [](const std::string& text) {
        int y, mo, d, h, mi, s, ms;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d.%dZ", &y, &mo, &d, &h, &mi, &s, &ms));
        benchmark::DoNotOptimize(y + mo + d + h + mi + s + ms);
    });
}
BENCHMARK(BM_DateTimeParseBaselineSscanf);

void BM_DateTimeParseBaselineFromChars(benchmark::State& state) {
    RunCycling(state, IntegerTexts(), [](const std::string& text) {
        std::uint64_t value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateTimeParseBaselineFromChars);

// As bound values are read: the conversion with the collapse rule applied.
void BM_DateTimeFromString(benchmark::State& state) {
    RunCycling(state, DateTimeTexts(), [](const std::string& text) {
        benchmark::DoNotOptimize(CConversions::datetimeFromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    });
}
BENCHMARK(BM_DateTimeFromString);

void BM_DateTimePrint(benchmark::State& state) {
    std::vector<CDateTime> values;
    for (const std::string& text : DateTimeTexts()) {
        values.emplace_back(text.c_str());
    }
    RunPrint(state, values);
}
BENCHMARK(BM_DateTimePrint);

void BM_DateTimePrintBaselineSnprintf(benchmark::State& state) {
    RunPrintFields(state, [](char* buffer, std::size_t size, const SFields& f) {
        return std::snprintf(buffer, size, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", f.year, f.month, f.day, f.hour,
                             f.minute, f.second, f.millis);
    });
}
BENCHMARK(BM_DateTimePrintBaselineSnprintf);

// --- date ------------------------------------------------------------------------

void BM_DateParse(benchmark::State& state) {
    CDateTime value;
    RunCycling(state, DateTexts(), [&](const std::string& text) {
        value.ParseXSDDate(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DateParse);

void BM_DateParseBaselineSscanf(benchmark::State& state) {
    RunCycling(state, DateTexts(), [](const std::string& text) {
        int y, m, d;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "%d-%d-%d", &y, &m, &d));
        benchmark::DoNotOptimize(y + m + d);
    });
}
BENCHMARK(BM_DateParseBaselineSscanf);

void BM_DateFromString(benchmark::State& state) {
    RunCycling(state, DateTexts(), [](const std::string& text) {
        benchmark::DoNotOptimize(CConversions::dateFromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    });
}
BENCHMARK(BM_DateFromString);

void BM_DatePrint(benchmark::State& state) {
    std::vector<CDateTime> values;
    for (const std::string& text : DateTexts()) {
        values.emplace_back();
        values.back().ParseXSDDate(text.c_str());
    }
    RunPrint(state, values);
}
BENCHMARK(BM_DatePrint);

void BM_DatePrintBaselineSnprintf(benchmark::State& state) {
    RunPrintFields(state, [](char* buffer, std::size_t size, const SFields& f) {
        return std::snprintf(buffer, size, "%04d-%02d-%02d", f.year, f.month, f.day);
    });
}
BENCHMARK(BM_DatePrintBaselineSnprintf);

// --- duration --------------------------------------------------------------------

void BM_DurationParse(benchmark::State& state) {
    CDateTimeSpan value;
    RunCycling(state, DurationTexts(), [&](const std::string& text) {
        value.ParseXSDDuration(text.c_str());
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DurationParse);

void BM_DurationParseBaselineSscanf(benchmark::State& state) {
    RunCycling(state, DurationTexts(), [](const std::string& text) {
        int y, mo, d, h, mi, s;
        benchmark::DoNotOptimize(std::sscanf(text.c_str(), "P%dY%dM%dDT%dH%dM%dS", &y, &mo, &d, &h, &mi, &s));
        benchmark::DoNotOptimize(y + mo + d + h + mi + s);
    });
}
BENCHMARK(BM_DurationParseBaselineSscanf);

void BM_DurationPrint(benchmark::State& state) { RunPrint(state, Durations()); }
BENCHMARK(BM_DurationPrint);

void BM_DurationPrintBaselineSnprintf(benchmark::State& state) {
    RunPrintFields(state, [](char* buffer, std::size_t size, const SFields& f) {
        return std::snprintf(buffer, size, "P%dY%dM%dDT%dH%dM%dS", f.year, f.month, f.day, f.hour, f.minute, f.second);
    });
}
BENCHMARK(BM_DurationPrintBaselineSnprintf);

// The order relation adds both durations to four reference instants.
void BM_DurationCompare(benchmark::State& state) {
    const std::vector<CDateTimeSpan> values = Durations();
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
