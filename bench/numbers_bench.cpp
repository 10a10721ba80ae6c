// Speed of CDecimal and CBigInteger against native conversions and GMP.
//
//  - text to value and back for decimal, integer and double values, 1024
//    values per iteration (items/s), each beside std::from_chars / strtod /
//    std::to_chars on the same texts or values;
//  - multiplication of two 1,000-digit integers and division of a 2,000-digit
//    integer by a 1,000-digit one, beside GMP's mpz on the same operands.
// After the table, each pair is printed as a time ratio qmxml / baseline.
//
// usage: numbers_bench [Google Benchmark flags]
#include <benchmark/benchmark.h>

#include <qmxml/types/conversions.h>
#include <qmxml/types/whitespace.h>
#include <gmp.h>

#include <qmxml/types/big_integer.h>
#include <qmxml/types/decimal.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"

using namespace QmXmlLib10;
using bench::RunBatches;

namespace {

constexpr int kBatch = 1024;

struct Inputs {
    std::vector<std::string> decimalTexts;  // "-12345.678901", up to 15 significant digits
    std::vector<std::string> integerTexts;  // fit in int64
    std::vector<double> doubles;
    std::vector<std::int64_t> integers;
    std::vector<CDecimal> decimals;
    std::vector<CBigInteger> bigIntegers;
    std::string bigA;  // 1,000 digits
    std::string bigB;  // 1,000 digits
    std::string bigC;  // 2,000 digits
};

const Inputs& GetInputs() {
    static const Inputs inputs = [] {
        Inputs in;
        std::mt19937_64 random(42);
        const auto digits = [&random](int n) {
            std::string s;
            for (int i = 0; i < n; ++i) {
                s.push_back(static_cast<char>((i == 0 ? '1' : '0') + random() % (i == 0 ? 9 : 10)));
            }
            return s;
        };
        for (int i = 0; i < kBatch; ++i) {
            const std::string sign = random() % 2 ? "-" : "";
            const int intDigits = 1 + static_cast<int>(random() % 8);
            const int fracDigits = static_cast<int>(random() % 7);
            std::string text = sign + digits(intDigits);
            if (fracDigits > 0) {
                text += "." + digits(fracDigits);
            }
            in.decimalTexts.push_back(text);
            in.decimals.emplace_back(text);
            double d = 0;
            std::from_chars(text.data(), text.data() + text.size(), d);
            in.doubles.push_back(d);
            const std::string integer = sign + digits(1 + static_cast<int>(random() % 18));
            in.integerTexts.push_back(integer);
            in.bigIntegers.emplace_back(integer);
            std::int64_t v = 0;
            std::from_chars(integer.data(), integer.data() + integer.size(), v);
            in.integers.push_back(v);
        }
        in.bigA = digits(1000);
        in.bigB = digits(1000);
        in.bigC = digits(2000);
        return in;
    }();
    return inputs;
}

// --- Decimal text -------------------------------------------------------------------------

void BM_DecimalParse(benchmark::State& state) {
    RunBatches(state, GetInputs().decimalTexts, [](const auto& text) {
        CDecimal value(text);
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DecimalParse);

// As bound values are read: the conversion with the collapse rule applied.
void BM_DecimalFromString(benchmark::State& state) {
    RunBatches(state, GetInputs().decimalTexts, [](const auto& text) {
        benchmark::DoNotOptimize(CConversions::decimalFromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    });
}
BENCHMARK(BM_DecimalFromString);

void BM_DecimalParse_Strtod(benchmark::State& state) {
    RunBatches(state, GetInputs().decimalTexts, [](const auto& text) {
        benchmark::DoNotOptimize(std::strtod(text.c_str(), nullptr));
    });
}
BENCHMARK(BM_DecimalParse_Strtod);

// std::from_chars into a double: the baseline of decimal parsing and of decimal to double.
void DoublesFromChars(benchmark::State& state) {
    RunBatches(state, GetInputs().decimalTexts, [](const std::string& text) {
        double d = 0;
        std::from_chars(text.data(), text.data() + text.size(), d);
        benchmark::DoNotOptimize(d);
    });
}

void BM_DecimalParse_FromChars(benchmark::State& state) { DoublesFromChars(state); }
BENCHMARK(BM_DecimalParse_FromChars);

// The double type's own conversions (r8), against strtod and snprintf.
void BM_DoubleParse(benchmark::State& state) {
    RunBatches(state, GetInputs().decimalTexts, [](const auto& text) {
        benchmark::DoNotOptimize(CConversions::r8FromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    });
}
BENCHMARK(BM_DoubleParse);

void BM_DoublePrint(benchmark::State& state) {
    RunBatches(state, GetInputs().doubles, [](const auto& d) {
        benchmark::DoNotOptimize(CConversions::r8ToString(d));
    });
}
BENCHMARK(BM_DoublePrint);

void BM_DoublePrint_Snprintf(benchmark::State& state) {
    char buffer[48];
    RunBatches(state, GetInputs().doubles, [&](const auto& d) {
        benchmark::DoNotOptimize(std::snprintf(buffer, sizeof buffer, "%.17g", d));
    });
}
BENCHMARK(BM_DoublePrint_Snprintf);

void BM_DecimalPrint(benchmark::State& state) {
    RunBatches(state, GetInputs().decimals, [](const auto& value) {
        benchmark::DoNotOptimize(value.ToString());
    });
}
BENCHMARK(BM_DecimalPrint);

void BM_DecimalPrint_ToChars(benchmark::State& state) {
    RunBatches(state, GetInputs().doubles, [](const auto& d) {
        char buffer[64];
        const auto r = std::to_chars(buffer, buffer + sizeof buffer, d);
        benchmark::DoNotOptimize(std::string(buffer, r.ptr));
    });
}
BENCHMARK(BM_DecimalPrint_ToChars);

// --- Integer text ---------------------------------------------------------------------------

void BM_IntegerParse(benchmark::State& state) {
    RunBatches(state, GetInputs().integerTexts, [](const auto& text) {
        CBigInteger value(text);
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_IntegerParse);

void BM_IntegerParse_FromChars(benchmark::State& state) {
    RunBatches(state, GetInputs().integerTexts, [](const auto& text) {
        std::int64_t v = 0;
        std::from_chars(text.data(), text.data() + text.size(), v);
        benchmark::DoNotOptimize(v);
    });
}
BENCHMARK(BM_IntegerParse_FromChars);

void BM_I8FromString(benchmark::State& state) {
    RunBatches(state, GetInputs().integerTexts, [](const auto& text) {
        benchmark::DoNotOptimize(CConversions::i8FromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    });
}
BENCHMARK(BM_I8FromString);

void BM_IntegerPrint(benchmark::State& state) {
    RunBatches(state, GetInputs().bigIntegers, [](const auto& value) {
        benchmark::DoNotOptimize(value.ToString());
    });
}
BENCHMARK(BM_IntegerPrint);

void BM_IntegerPrint_ToChars(benchmark::State& state) {
    RunBatches(state, GetInputs().integers, [](const std::int64_t v) {
        char buffer[32];
        const auto r = std::to_chars(buffer, buffer + sizeof buffer, v);
        benchmark::DoNotOptimize(std::string(buffer, r.ptr));
    });
}
BENCHMARK(BM_IntegerPrint_ToChars);

// --- Double values ----------------------------------------------------------------------------

// CDecimal(double) prints 13 fixed fraction digits and parses them.
void BM_DoubleToDecimal(benchmark::State& state) {
    RunBatches(state, GetInputs().doubles, [](const auto& d) {
        CDecimal value(d);
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(BM_DoubleToDecimal);

void BM_DoubleToDecimal_ToCharsFixed13(benchmark::State& state) {
    RunBatches(state, GetInputs().doubles, [](const auto& d) {
        char buffer[400];
        const auto r = std::to_chars(buffer, buffer + sizeof buffer, d, std::chars_format::fixed, 13);
        benchmark::DoNotOptimize(std::string(buffer, r.ptr));
    });
}
BENCHMARK(BM_DoubleToDecimal_ToCharsFixed13);

void BM_DecimalToDouble(benchmark::State& state) {
    RunBatches(state, GetInputs().decimals, [](const auto& value) {
        benchmark::DoNotOptimize(value.ToDouble());
    });
}
BENCHMARK(BM_DecimalToDouble);

void BM_DecimalToDouble_FromChars(benchmark::State& state) { DoublesFromChars(state); }
BENCHMARK(BM_DecimalToDouble_FromChars);

// --- 1,000-digit arithmetic ---------------------------------------------------------------------

class Mpz {
public:
    explicit Mpz(const std::string& text) { mpz_init_set_str(m_value, text.c_str(), 10); }
    Mpz() { mpz_init(m_value); }
    Mpz(const Mpz&) = delete;
    Mpz& operator=(const Mpz&) = delete;
    ~Mpz() { mpz_clear(m_value); }
    operator mpz_ptr() { return m_value; }

private:
    mpz_t m_value;
};

void BM_BigMultiply1000(benchmark::State& state) {
    const auto& in = GetInputs();
    const CBigInteger a(in.bigA);
    const CBigInteger b(in.bigB);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a * b);
    }
}
BENCHMARK(BM_BigMultiply1000);

void BM_BigMultiply1000_Gmp(benchmark::State& state) {
    const auto& in = GetInputs();
    Mpz a(in.bigA);
    Mpz b(in.bigB);
    for (auto _ : state) {
        Mpz r;  // a fresh result, as the library's operator returns one
        mpz_mul(r, a, b);
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_BigMultiply1000_Gmp);

void BM_BigDivide2000By1000(benchmark::State& state) {
    const auto& in = GetInputs();
    const CBigInteger c(in.bigC);
    const CBigInteger b(in.bigB);
    for (auto _ : state) {
        benchmark::DoNotOptimize(c / b);
    }
}
BENCHMARK(BM_BigDivide2000By1000);

void BM_BigDivide2000By1000_Gmp(benchmark::State& state) {
    const auto& in = GetInputs();
    Mpz c(in.bigC);
    Mpz b(in.bigB);
    for (auto _ : state) {
        Mpz q;
        mpz_tdiv_q(q, c, b);
        benchmark::DoNotOptimize(q);
    }
}
BENCHMARK(BM_BigDivide2000By1000_Gmp);

// Hostile sizes: linear in the digits.
void BM_Integer100kDigitsParsePrint(benchmark::State& state) {
    const std::string text(100000, '7');
    for (auto _ : state) {
        benchmark::DoNotOptimize(CBigInteger(text).ToString());
    }
}
BENCHMARK(BM_Integer100kDigitsParsePrint)->Unit(benchmark::kMicrosecond);

// Keeps each run's time so the ratios can be printed after the table.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void PrintRatio(const std::string& ours, const std::string& baseline) const {
        const auto a = m_times.find(ours);
        const auto b = m_times.find(baseline);
        if (a != m_times.end() && b != m_times.end() && b->second > 0) {
            std::printf("%-36s / %-36s %8.2fx\n", ours.c_str(), baseline.c_str(), a->second / b->second);
        }
    }

private:
    std::map<std::string, double> m_times;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\ntime ratio qmxml / baseline (same run):\n");
    reporter.PrintRatio("BM_DecimalParse", "BM_DecimalParse_Strtod");
    reporter.PrintRatio("BM_DecimalParse", "BM_DecimalParse_FromChars");
    reporter.PrintRatio("BM_DecimalFromString", "BM_DecimalParse_FromChars");
    reporter.PrintRatio("BM_DecimalPrint", "BM_DecimalPrint_ToChars");
    reporter.PrintRatio("BM_IntegerParse", "BM_IntegerParse_FromChars");
    reporter.PrintRatio("BM_I8FromString", "BM_IntegerParse_FromChars");
    reporter.PrintRatio("BM_IntegerPrint", "BM_IntegerPrint_ToChars");
    reporter.PrintRatio("BM_DoubleParse", "BM_DecimalParse_Strtod");
    reporter.PrintRatio("BM_DoublePrint", "BM_DoublePrint_Snprintf");
    reporter.PrintRatio("BM_DoubleToDecimal", "BM_DoubleToDecimal_ToCharsFixed13");
    reporter.PrintRatio("BM_DecimalToDouble", "BM_DecimalToDouble_FromChars");
    reporter.PrintRatio("BM_BigMultiply1000", "BM_BigMultiply1000_Gmp");
    reporter.PrintRatio("BM_BigDivide2000By1000", "BM_BigDivide2000By1000_Gmp");
    benchmark::Shutdown();
    return 0;
}
