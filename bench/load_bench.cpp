// Loading speed and memory of CXmlDocument::LoadXmlStream against Expat alone.
//
// The input is an order book made by bench/gen_orders.py at start-up, about
// QMXML_BENCH_MB megabytes (default 50; e.g. QMXML_BENCH_MB=2 for a quick run).
// Two figures are printed after the Google Benchmark table:
//  - throughput ratio: LoadXmlStream MB/s over the faster of Expat alone with
//    namespace processing and no-op callbacks, fed in 128 KiB pieces or whole;
//  - peak memory of one load above the input, as a multiple of the input size.
//
// Memory is measured as resident set size in a forked child: it clears the
// peak counter (/proc/self/clear_refs), notes VmRSS with the input already
// resident, loads, and reads VmHWM. This counts what the process really holds
// (malloc headers, rounding and Expat's buffers included), which a malloc
// counter would miss; the fork keeps pages freed by earlier runs out of it.
#include <benchmark/benchmark.h>
#include <expat.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

#include <dlfcn.h>
#include <malloc.h>

#include "bench_support.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_document.h"

using namespace QmXmlLib10;

namespace {

std::vector<unsigned char> g_input;
double g_bestExpat = 0;  // seconds per pass
double g_bestLoad = 0;

void Record(double& best, double seconds) {
    if (best == 0 || seconds < best) best = seconds;
}

// The benchmark build links the library only (Expat is its private
// dependency), so Expat's entry points are looked up at run time; the
// library has already loaded the same shared object.
struct ExpatApi {
    decltype(&XML_ParserCreateNS) parserCreateNS = nullptr;
    decltype(&XML_SetElementHandler) setElementHandler = nullptr;
    decltype(&XML_SetCharacterDataHandler) setCharacterDataHandler = nullptr;
    decltype(&XML_Parse) parse = nullptr;
    decltype(&XML_ParserFree) parserFree = nullptr;
    decltype(&XML_SetUserData) setUserData = nullptr;

    bool Load() {
        void* so = dlopen("libexpat.so.1", RTLD_NOW);
        if (so == nullptr) return false;
        parserCreateNS = reinterpret_cast<decltype(parserCreateNS)>(dlsym(so, "XML_ParserCreateNS"));
        setElementHandler = reinterpret_cast<decltype(setElementHandler)>(dlsym(so, "XML_SetElementHandler"));
        setCharacterDataHandler =
            reinterpret_cast<decltype(setCharacterDataHandler)>(dlsym(so, "XML_SetCharacterDataHandler"));
        parse = reinterpret_cast<decltype(parse)>(dlsym(so, "XML_Parse"));
        parserFree = reinterpret_cast<decltype(parserFree)>(dlsym(so, "XML_ParserFree"));
        setUserData = reinterpret_cast<decltype(setUserData)>(dlsym(so, "XML_SetUserData"));
        return parserCreateNS && setElementHandler && setCharacterDataHandler && parse && parserFree &&
               setUserData;
    }
} g_expat;

void XMLCALL NoStart(void*, const XML_Char*, const XML_Char**) {}
// The floor any tree of individually allocated 88-byte nodes has to pay.
void XMLCALL AllocStart(void* nodes, const XML_Char*, const XML_Char**) {
    static_cast<std::vector<std::unique_ptr<char[]>>*>(nodes)->emplace_back(new char[88]());
}
void XMLCALL NoEnd(void*, const XML_Char*) {}
void XMLCALL NoText(void*, const XML_Char*, int) {}

bool ExpatAlone(const unsigned char* data, std::size_t length, std::size_t piece,
                std::vector<std::unique_ptr<char[]>>* nodes = nullptr) {
    XML_Parser parser = g_expat.parserCreateNS(nullptr, '|');
    g_expat.setUserData(parser, nodes);
    g_expat.setElementHandler(parser, nodes != nullptr ? &AllocStart : &NoStart, &NoEnd);
    g_expat.setCharacterDataHandler(parser, &NoText);
    bool ok = true;
    do {
        const std::size_t n = length < piece ? length : piece;
        ok = g_expat.parse(parser, reinterpret_cast<const char*>(data), static_cast<int>(n), n == length) ==
             XML_STATUS_OK;
        data += n;
        length -= n;
    } while (ok && length > 0);
    g_expat.parserFree(parser);
    return ok;
}

void BM_ExpatAlone(benchmark::State& state) {
    const std::size_t piece = state.range(0) != 0 ? static_cast<std::size_t>(state.range(0)) : g_input.size();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        if (!ExpatAlone(g_input.data(), g_input.size(), piece)) state.SkipWithError("Expat failed");
        const double seconds = bench::Seconds(start);
        state.SetIterationTime(seconds);
        Record(g_bestExpat, seconds);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * g_input.size()));
}
BENCHMARK(BM_ExpatAlone)->Arg(0x20000)->Arg(0)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Not part of the ratio: Expat plus one zeroed 88-byte allocation per element,
// what the node layout alone costs on top of parsing.
void BM_ExpatPlusNodeAllocation(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<std::unique_ptr<char[]>> nodes;
        const auto start = std::chrono::steady_clock::now();
        if (!ExpatAlone(g_input.data(), g_input.size(), 0x20000, &nodes)) state.SkipWithError("Expat failed");
        state.SetIterationTime(bench::Seconds(start));
        nodes.clear();
        malloc_trim(0);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * g_input.size()));
}
BENCHMARK(BM_ExpatPlusNodeAllocation)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_LoadXmlStream(benchmark::State& state) {
    for (auto _ : state) {
        auto doc = std::make_unique<CXmlDocument>();
        const auto start = std::chrono::steady_clock::now();
        try {
            doc->LoadXmlStream(g_input.data(), static_cast<std::uint32_t>(g_input.size()));
        } catch (const CQmException& e) {
            state.SkipWithError(e.what());
        }
        const double seconds = bench::Seconds(start);
        state.SetIterationTime(seconds);
        Record(g_bestLoad, seconds);
        // Not timed: the teardown, and the consolidation of the freed nodes
        // that glibc would otherwise do inside the next load's first malloc.
        doc.reset();
        malloc_trim(0);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * g_input.size()));
}
BENCHMARK(BM_LoadXmlStream)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Peak resident bytes of one load above what the process held before it.
long long PeakLoadBytes() {
    return bench::MeasureInChild(
        [] {
            bench::ReleaseNodeCache();
            if (!bench::ResetPeakResident()) return -1LL;
            bench::TouchPages(g_input.data(), g_input.size());  // the input counts as held already
            const long before = bench::StatusKiB("VmRSS:");
            CXmlDocument doc;
            doc.LoadXmlStream(g_input.data(), static_cast<std::uint32_t>(g_input.size()));
            return (bench::StatusKiB("VmHWM:") - before) * 1024LL;
        },
        -1LL);
}

bool MakeInput() {
    // gen_orders.py writes about 1086 bytes per order.
    const long orders = static_cast<long>(bench::MegabytesFromEnvironment() * 1e6 / 1086) + 1;
    return bench::GenerateOrderBook(orders, g_input);
}

}  // namespace

int main(int argc, char** argv) {
    if (!g_expat.Load()) {
        std::fprintf(stderr, "could not load libexpat.so.1\n");
        return 1;
    }
    if (!MakeInput()) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    const long long peak = PeakLoadBytes();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    const double mb = g_input.size() / 1e6;
    std::printf("\ninput: %.1f MB order book\n", mb);
    if (g_bestExpat > 0 && g_bestLoad > 0) {
        std::printf("Expat alone (best):    %8.1f MB/s\n", mb / g_bestExpat);
        std::printf("LoadXmlStream (best):  %8.1f MB/s\n", mb / g_bestLoad);
        std::printf("throughput ratio:      %8.2f (goal >= 0.70)\n", g_bestExpat / g_bestLoad);
    }
    if (peak >= 0)
        std::printf("peak load memory:      %8.1f MB = %.2f x input (goal < 4)\n", peak / 1e6,
                    static_cast<double>(peak) / g_input.size());
    return 0;
}
