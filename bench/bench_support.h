// Scaffolding the benchmark programs share: the generated order book, wall-clock
// timing, Google Benchmark loops over prepared inputs, and resident-memory probes.
#pragma once

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>

#include <qmxml/dom/xml_document.h>

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double Seconds(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// Runs fn once and keeps the shorter of its time and `best`.
template <class Fn>
void TimeBest(double& best, Fn&& fn) {
    const Clock::time_point start = Clock::now();
    fn();
    best = std::min(best, Seconds(start));
}

// Megabytes of order book asked for with QMXML_BENCH_MB (default 50).
inline double MegabytesFromEnvironment() {
    const char* sizeText = std::getenv("QMXML_BENCH_MB");
    return sizeText != nullptr ? std::atof(sizeText) : 50.0;
}

// Fills `out` (a std::string or a byte vector) with an order book of `orders`
// orders written by gen_orders.py into a temporary file that is removed again.
// On failure `command`, when given, is the command that was run.
template <class Bytes>
bool GenerateOrderBook(long orders, Bytes& out, std::string* command = nullptr) {
    char path[] = "/tmp/qmxml_bench_XXXXXX";
    const int fd = mkstemp(path);
    if (fd < 0) return false;
    close(fd);
    const std::string run =
        std::string("python3 '") + QMXML_BENCH_DIR + "/gen_orders.py' " + std::to_string(orders) + " '" + path + "'";
    if (command != nullptr) *command = run;
    const bool generated = std::system(run.c_str()) == 0;
    if (generated) {
        std::ifstream in(path, std::ios::binary);
        out.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::remove(path);
    return generated && !out.empty();
}

// Fills `out` with an order book of about QMXML_BENCH_MB megabytes
// (gen_orders.py writes about 1086 bytes per order).
inline bool GenerateOrderBookOfEnvironmentSize(std::string& out) {
    const long orders = std::max(1L, static_cast<long>(MegabytesFromEnvironment() * 1e6 / 1086));
    return GenerateOrderBook(orders, out);
}

// Expat alone on the whole input, namespaces on, callbacks that do nothing:
// the floor every binder's read is compared with.
inline bool ParseWithExpatAlone(const std::string& input) {
    struct NoOp {
        static void XMLCALL Start(void*, const XML_Char*, const XML_Char**) {}
        static void XMLCALL End(void*, const XML_Char*) {}
        static void XMLCALL Text(void*, const XML_Char*, int) {}
    };
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, &NoOp::Start, &NoOp::End);
    XML_SetCharacterDataHandler(parser, &NoOp::Text);
    const bool ok = XML_Parse(parser, input.data(), static_cast<int>(input.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

// Calls fn with one item per benchmark iteration, going round the items.
template <class Items, class Fn>
void RunCycling(benchmark::State& state, const Items& items, Fn fn) {
    std::size_t i = 0;
    for (auto _ : state) {
        fn(items[i]);
        i = (i + 1) % items.size();
    }
    state.SetItemsProcessed(state.iterations());
}

// Calls fn with every item in each benchmark iteration; counts items, not iterations.
template <class Items, class Fn>
void RunBatches(benchmark::State& state, const Items& items, Fn fn) {
    for (auto _ : state) {
        for (const auto& item : items) fn(item);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * items.size()));
}

// A field of /proc/self/status such as "VmRSS:", in KiB; -1 when missing.
inline long StatusKiB(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::size_t n = std::strlen(field);
    while (std::getline(status, line)) {
        if (line.compare(0, n, field) == 0) return std::strtol(line.c_str() + n + 1, nullptr, 10);
    }
    return -1;
}

// Node memory that earlier loads keep for reuse would make the next load look
// smaller than a first one: hand it back to the system.
inline void ReleaseNodeCache() {
    const std::size_t limit = QmXmlLib10::CXmlDocument::GetNodeCacheLimit();
    QmXmlLib10::CXmlDocument::SetNodeCacheLimit(0);
    QmXmlLib10::CXmlDocument::SetNodeCacheLimit(limit);
    malloc_trim(0);
}

// The best read and write times of one way of binding a document, and the
// text it wrote last.
struct ReadWriteTimes {
    double read = 1e9;
    double write = 1e9;
    std::string text;
};

// One round of a way of binding: `read` returns the bound book (a smart
// pointer), which is then written as text; the node memory the round kept is
// handed back before the next way runs.
template <class Read>
void TimeReadAndWrite(ReadWriteTimes& times, Read&& read) {
    {
        decltype(read()) book;
        TimeBest(times.read, [&] { book = read(); });
        TimeBest(times.write, [&] { times.text = book->ToXml(); });
    }
    ReleaseNodeCache();
}

// Sets the resident high-water mark (VmHWM) back to the current VmRSS.
inline bool ResetPeakResident() {
    std::FILE* clear = std::fopen("/proc/self/clear_refs", "w");
    if (clear == nullptr) return false;
    std::fputs("5", clear);
    std::fclose(clear);
    return true;
}

// Reads one byte a page so that `data` is resident in this process.
inline void TouchPages(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    unsigned sum = 0;
    for (std::size_t i = 0; i < size; i += 4096) sum += bytes[i];
    benchmark::DoNotOptimize(sum);
}

// Runs measure() in a forked child, so that pages freed by earlier runs do not
// hide what it takes, and returns its plain-data result; `failed` when the
// child could not report one.
template <class Result, class Measure>
Result MeasureInChild(Measure measure, Result failed) {
    int fds[2];
    if (pipe(fds) != 0) return failed;
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        const Result result = measure();
        if (write(fds[1], &result, sizeof result) != sizeof result) _exit(1);
        _exit(0);
    }
    close(fds[1]);
    Result result = failed;
    if (child < 0 || read(fds[0], &result, sizeof result) != sizeof result) result = failed;
    close(fds[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return result;
}

}  // namespace bench
