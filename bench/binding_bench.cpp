// Binding an order book to the generated classes (examples/orders), against
// the floors it is built on:
//  - read: Expat alone (namespace processing, no-op callbacks, whole buffer)
//    against FromXmlStream into COrders (goal: at least 0.5x Expat's MB/s);
//  - write: COrders::ToXml to memory against a CElement tree of the same
//    document written by CXmlTextWriter (CElement::ToXml; goal: at least as fast);
//  - memory: the resident high-water of one FromXmlStream above what the
//    process held, and what the bound objects keep once the document tree is
//    freed, both as multiples of the document size (measured in a forked
//    child so that pages freed by earlier runs do not hide anything).
//
// usage: binding_bench [RUNS]   (default 5; best run counts)
// The book is made by bench/gen_orders.py at start-up: QMXML_BENCH_MB
// megabytes (default 50).
#include <expat.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "orders.h"

using namespace QmXmlLib10;
using Clock = std::chrono::steady_clock;

namespace {

std::string g_input;

double Seconds(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

bool MakeInput() {
    const char* sizeText = std::getenv("QMXML_BENCH_MB");
    const double megabytes = sizeText != nullptr ? std::atof(sizeText) : 50.0;
    // gen_orders.py writes about 1086 bytes per order.
    const long orders = std::max(1L, static_cast<long>(megabytes * 1e6 / 1086));
    char path[] = "/tmp/qmxml_binding_XXXXXX";
    const int fd = mkstemp(path);
    if (fd < 0) return false;
    close(fd);
    const std::string command =
        std::string("python3 '") + QMXML_BENCH_DIR + "/gen_orders.py' " + std::to_string(orders) + " '" + path + "'";
    const bool ok = std::system(command.c_str()) == 0;
    if (ok) {
        std::ifstream in(path, std::ios::binary);
        g_input.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::remove(path);
    return ok && !g_input.empty();
}

void XMLCALL NoStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL NoEnd(void*, const XML_Char*) {}
void XMLCALL NoText(void*, const XML_Char*, int) {}

bool ExpatAlone() {
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, &NoStart, &NoEnd);
    XML_SetCharacterDataHandler(parser, &NoText);
    const bool ok = XML_Parse(parser, g_input.data(), static_cast<int>(g_input.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

unsigned char* InputBytes() { return reinterpret_cast<unsigned char*>(&g_input[0]); }
std::uint32_t InputLength() { return static_cast<std::uint32_t>(g_input.size()); }

long StatusKiB(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::size_t n = std::strlen(field);
    while (std::getline(status, line)) {
        if (line.compare(0, n, field) == 0) return std::strtol(line.c_str() + n + 1, nullptr, 10);
    }
    return -1;
}

struct Memory {
    long long peak = -1;      // resident high-water of the read above the start
    long long retained = -1;  // resident after the read, document freed
    long long heap = -1;      // malloc'd bytes the bound objects hold
};

Memory MeasureMemory() {
    int fds[2];
    if (pipe(fds) != 0) return {};
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        Memory m;
        // Node memory that earlier loads left for reuse would make this load
        // look smaller than a first one: give it back first.
        const std::size_t cacheLimit = CXmlDocument::GetNodeCacheLimit();
        CXmlDocument::SetNodeCacheLimit(0);
        CXmlDocument::SetNodeCacheLimit(cacheLimit);
        malloc_trim(0);
        if (std::FILE* clear = std::fopen("/proc/self/clear_refs", "w")) {
            std::fputs("5", clear);  // VmHWM := VmRSS
            std::fclose(clear);
            unsigned sum = 0;  // the input is resident in the child too
            for (std::size_t i = 0; i < g_input.size(); i += 4096) sum += static_cast<unsigned char>(g_input[i]);
            if (sum == 1) std::puts("");
            malloc_trim(0);
            const long before = StatusKiB("VmRSS:");
            const std::size_t heapBefore = mallinfo2().uordblks;
            {
                orders::COrders book;
                book.FromXmlStream(InputBytes(), InputLength());
                m.peak = (StatusKiB("VmHWM:") - before) * 1024LL;
                // The freed tree's node blocks wait in the reuse cache; they are
                // not the objects' (and go back to the system on request).
                CXmlDocument::SetNodeCacheLimit(0);
                CXmlDocument::SetNodeCacheLimit(cacheLimit);
                malloc_trim(0);
                m.retained = (StatusKiB("VmRSS:") - before) * 1024LL;
                m.heap = static_cast<long long>(mallinfo2().uordblks - heapBefore);
            }
        }
        if (write(fds[1], &m, sizeof m) != sizeof m) _exit(1);
        _exit(0);
    }
    close(fds[1]);
    Memory m;
    if (read(fds[0], &m, sizeof m) != sizeof m) m = Memory{};
    close(fds[0]);
    waitpid(child, nullptr, 0);
    return m;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    if (!MakeInput()) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    const double mb = static_cast<double>(g_input.size()) / 1e6;
    try {
        double expat = 1e9, bind = 1e9, toXml = 1e9, elementToXml = 1e9;
        std::size_t boundBytes = 0, elementBytes = 0;
        int orderCount = 0;
        CSmartPtr<orders::COrders> book;
        // Interleaved, so that both sides of each pair see the same machine state.
        for (int run = 0; run < runs; ++run) {
            Clock::time_point start = Clock::now();
            if (!ExpatAlone()) throw CQmException("Expat failed on the order book");
            expat = std::min(expat, Seconds(start));

            book = nullptr;  // the previous run's objects are freed untimed
            malloc_trim(0);
            CSmartPtr<orders::COrders> fresh = new orders::COrders();
            start = Clock::now();
            fresh->FromXmlStream(InputBytes(), InputLength());
            bind = std::min(bind, Seconds(start));
            book = fresh;
        }
        orderCount = book->GetOrder()->GetCount();
        CSmartPtr<CElement> tree = new CElement();
        tree->FromXmlStream(InputBytes(), InputLength());
        for (int run = 0; run < runs; ++run) {
            Clock::time_point start = Clock::now();
            boundBytes = book->ToXml(true, true, EOLType_LF).size();
            toXml = std::min(toXml, Seconds(start));
            start = Clock::now();
            elementBytes = tree->ToXml(true, true, EOLType_LF).size();
            elementToXml = std::min(elementToXml, Seconds(start));
        }
        tree = nullptr;
        book = nullptr;
        malloc_trim(0);
        const Memory memory = MeasureMemory();

        std::printf("order book:                 %.1f MB, %d orders, best of %d runs\n", mb, orderCount, runs);
        std::printf("Expat alone:                %8.1f MB/s\n", mb / expat);
        std::printf("FromXmlStream -> COrders:   %8.1f MB/s\n", mb / bind);
        std::printf("read ratio bind/Expat:      %8.2f (goal >= 0.50)\n", expat / bind);
        std::printf("COrders::ToXml:             %8.1f MB/s (%zu bytes)\n", mb / toXml, boundBytes);
        std::printf("CElement + CXmlTextWriter:  %8.1f MB/s (%zu bytes)\n", mb / elementToXml, elementBytes);
        std::printf("write ratio bound/CElement: %8.2f (goal >= 1.00)\n", elementToXml / toXml);
        if (memory.peak >= 0) {
            std::printf("peak while reading:         %8.1f MB = %.2f x document\n", memory.peak / 1e6,
                        static_cast<double>(memory.peak) / g_input.size());
            std::printf("bound objects (resident):   %8.1f MB = %.2f x document\n", memory.retained / 1e6,
                        static_cast<double>(memory.retained) / g_input.size());
            std::printf("bound objects (heap):       %8.1f MB = %.2f x document\n", memory.heap / 1e6,
                        static_cast<double>(memory.heap) / g_input.size());
        }
    } catch (const CQmException& e) {
        std::fprintf(stderr, "binding_bench: %s\n", e.GetFullMessage().c_str());
        return 1;
    }
    return 0;
}
