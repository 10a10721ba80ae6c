// Writing the bound order classes (tests/support/handwritten_orders): COrders::ToXml of a book
// read once, timed, with the heap blocks each written order costs, counted by
// the replaced global operator new below (everything the write allocates,
// divided by the number of orders).
//
// usage: write_orders_bench [RUNS] [BOOK [OUT]]
//   RUNS  timed writes, best counts (default 5)
//   BOOK  the order book to read (default: one of QMXML_BENCH_MB megabytes,
//         50 by default, made by bench/gen_orders.py)
//   OUT   where the written text goes, so that another build's output can be
//         compared byte for byte (bench/compare_previous.sh does)
// The last line is machine-readable: "result <MB/s> <allocations per order> <bytes>".
// The program uses only API that has not changed, so that
// bench/compare_previous.sh can build it against earlier versions too.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <string>

#include "bench_support.h"
#include "orders.h"

namespace {

std::atomic<long long> g_allocations{0};

void* Allocate(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}

}  // namespace

// Every form of new ends in Allocate: the count is complete, whichever form the
// library or the standard library uses.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

using namespace QmXmlLib10;

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    std::string input;
    if (argc > 2) {
        std::ifstream in(argv[2], std::ios::binary);
        input.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (input.empty()) {
            std::fprintf(stderr, "could not read the order book %s\n", argv[2]);
            return 1;
        }
    } else {
        // gen_orders.py writes about 1086 bytes per order.
        const long orders = std::max(1L, static_cast<long>(bench::MegabytesFromEnvironment() * 1e6 / 1086));
        if (!bench::GenerateOrderBook(orders, input)) {
            std::fprintf(stderr, "could not generate the order book\n");
            return 1;
        }
    }
    try {
        CSmartPtr<orders::COrders> book = new orders::COrders();
        book->FromXmlStream(reinterpret_cast<unsigned char*>(&input[0]), static_cast<std::uint32_t>(input.size()));
        const int orderCount = book->GetOrder()->GetCount();

        std::string written;
        const long long before = g_allocations.load();
        written = book->ToXml(true, true, EOLType_LF);
        const long long allocations = g_allocations.load() - before;
        double best = 1e9;
        for (int run = 0; run < runs; ++run) {
            written.clear();
            written.shrink_to_fit();  // each run grows its text afresh, as the first did
            bench::TimeBest(best, [&] { written = book->ToXml(true, true, EOLType_LF); });
        }
        if (argc > 3) {
            std::ofstream out(argv[3], std::ios::binary);
            out.write(written.data(), static_cast<std::streamsize>(written.size()));
            if (!out) {
                std::fprintf(stderr, "could not write %s\n", argv[3]);
                return 1;
            }
        }
        const double mb = static_cast<double>(written.size()) / 1e6;
        const double perOrder = orderCount > 0 ? static_cast<double>(allocations) / orderCount : 0.0;
        std::printf("order book:             %.1f MB read, %d orders, best of %d writes\n",
                    static_cast<double>(input.size()) / 1e6, orderCount, runs);
        std::printf("COrders::ToXml:         %8.1f MB/s (%zu bytes written)\n", mb / best, written.size());
        std::printf("heap blocks per order:  %8.2f (%lld in one ToXml)\n", perOrder, allocations);
        std::printf("result %.3f %.3f %zu\n", mb / best, perOrder, written.size());
    } catch (const CQmException& e) {
        std::fprintf(stderr, "write_orders_bench: %s\n", e.GetFullMessage().c_str());
        return 1;
    }
    return 0;
}
