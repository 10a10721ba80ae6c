// Binding an order book to the hand-written order classes (tests/support/handwritten_orders), against
// the floors it is built on:
//  - read: Expat alone (namespace processing, no-op callbacks, whole buffer)
//    against FromXmlStream into COrders (goal: at least 0.5x Expat's MB/s),
//    which binds while the parser reads; the old way, a whole CXmlDocument
//    loaded and then bound (FromXmlElement), is timed in the same run;
//    The heap is trimmed before each read, so the bound objects' memory is
//    faulted in afresh; a second figure, for information, reads book after
//    book without trimming, as a program binding one book after another would;
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
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench_support.h"
#include "orders.h"

using namespace QmXmlLib10;
using bench::TimeBest;

namespace {

std::string g_input;

bool MakeInput() { return bench::GenerateOrderBookOfEnvironmentSize(g_input); }
bool ExpatAlone() { return bench::ParseWithExpatAlone(g_input); }

unsigned char* InputBytes() { return reinterpret_cast<unsigned char*>(&g_input[0]); }
std::uint32_t InputLength() { return static_cast<std::uint32_t>(g_input.size()); }

struct Memory {
    long long peak = -1;      // resident high-water of the read above the start
    long long retained = -1;  // resident after the read, document freed
    long long heap = -1;      // malloc'd bytes the bound objects hold
};

// Reads the book into a new COrders, the tree way or while parsing.
void ReadBook(orders::COrders& book, bool throughTree) {
    if (!throughTree) {
        book.FromXmlStream(InputBytes(), InputLength());
        return;
    }
    CXmlDocument document;
    document.LoadXmlStream(InputBytes(), InputLength());
    book.FromXmlElement(document.GetDocumentElement());
}

Memory MeasureMemory(bool throughTree) {
    return bench::MeasureInChild(
        [throughTree] {
            Memory m;
            bench::ReleaseNodeCache();
            if (!bench::ResetPeakResident()) return m;
            bench::TouchPages(g_input.data(), g_input.size());  // the input is resident in the child too
            malloc_trim(0);
            const long before = bench::StatusKiB("VmRSS:");
            const std::size_t heapBefore = mallinfo2().uordblks;
            orders::COrders book;
            ReadBook(book, throughTree);
            m.peak = (bench::StatusKiB("VmHWM:") - before) * 1024LL;
            // The freed tree's node blocks wait in the reuse cache; they are
            // not the objects' (and go back to the system on request).
            bench::ReleaseNodeCache();
            m.retained = (bench::StatusKiB("VmRSS:") - before) * 1024LL;
            m.heap = static_cast<long long>(mallinfo2().uordblks - heapBefore);
            return m;
        },
        Memory{});
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
        double expat = 1e9, treeAlone = 1e9, bind = 1e9, treeBind = 1e9, toXml = 1e9, elementToXml = 1e9;
        std::size_t boundBytes = 0, elementBytes = 0;
        int orderCount = 0;
        CSmartPtr<orders::COrders> book;
        // Interleaved, so that both sides of each pair see the same machine state.
        for (int run = 0; run < runs; ++run) {
            TimeBest(expat, [] {
                if (!ExpatAlone()) throw CQmException("Expat failed on the order book");
            });
            TimeBest(treeAlone, [] {
                CXmlDocument document;
                document.LoadXmlStream(InputBytes(), InputLength());
            });

            book = nullptr;  // the previous run's objects are freed untimed
            malloc_trim(0);
            CSmartPtr<orders::COrders> fresh = new orders::COrders();
            TimeBest(bind, [&] { fresh->FromXmlStream(InputBytes(), InputLength()); });
            book = nullptr;
            fresh = nullptr;
            malloc_trim(0);
            fresh = new orders::COrders();
            TimeBest(treeBind, [&] { ReadBook(*fresh, true); });
            book = fresh;
        }
        double untrimmed = 1e9;
        for (int run = 0; run < runs; ++run) {
            book = nullptr;
            CSmartPtr<orders::COrders> fresh = new orders::COrders();
            TimeBest(untrimmed, [&] { fresh->FromXmlStream(InputBytes(), InputLength()); });
            book = fresh;
        }
        orderCount = book->GetOrder()->GetCount();
        CSmartPtr<CElement> tree = new CElement();
        tree->FromXmlStream(InputBytes(), InputLength());
        for (int run = 0; run < runs; ++run) {
            TimeBest(toXml, [&] { boundBytes = book->ToXml(true, true, EOLType_LF).size(); });
            TimeBest(elementToXml, [&] { elementBytes = tree->ToXml(true, true, EOLType_LF).size(); });
        }
        tree = nullptr;
        book = nullptr;
        malloc_trim(0);
        const Memory memory = MeasureMemory(false);
        const Memory treeMemory = MeasureMemory(true);

        std::printf("order book:                 %.1f MB, %d orders, best of %d runs\n", mb, orderCount, runs);
        std::printf("Expat alone:                %8.1f MB/s\n", mb / expat);
        std::printf("FromXmlStream -> COrders:   %8.1f MB/s\n", mb / bind);
        std::printf("read ratio bind/Expat:      %8.2f (goal >= 0.50)\n", expat / bind);
        std::printf("tree, then FromXmlElement:  %8.1f MB/s = %.2f x Expat; while parsing / tree: %.2f x\n",
                    mb / treeBind, expat / treeBind, treeBind / bind);
        // What the read spends beyond Expat, split at the finished tree, in
        // nanoseconds per input byte.
        std::printf("  document tree alone:      %8.1f MB/s = %.2f x Expat (load and free, no binding)\n", mb / treeAlone,
                    expat / treeAlone);
        std::printf("  ns per byte: Expat %.2f; through a tree: tree %.2f more, binding %.2f more; while parsing: %.2f "
                    "more (goal leaves %.2f)\n",
                    expat * 1e3 / mb, (treeAlone - expat) * 1e3 / mb, (treeBind - treeAlone) * 1e3 / mb,
                    (bind - expat) * 1e3 / mb, expat * 1e3 / mb);
        std::printf("  heap not trimmed between: %8.1f MB/s = %.2f x Expat\n", mb / untrimmed, expat / untrimmed);
        std::printf("COrders::ToXml:             %8.1f MB/s (%zu bytes)\n", mb / toXml, boundBytes);
        std::printf("CElement + CXmlTextWriter:  %8.1f MB/s (%zu bytes)\n", mb / elementToXml, elementBytes);
        std::printf("write ratio bound/CElement: %8.2f (goal >= 1.00)\n", elementToXml / toXml);
        if (memory.peak >= 0) {
            std::printf("peak while reading:         %8.1f MB = %.2f x document\n", memory.peak / 1e6,
                        static_cast<double>(memory.peak) / g_input.size());
            std::printf("peak reading through a tree:%8.1f MB = %.2f x document\n", treeMemory.peak / 1e6,
                        static_cast<double>(treeMemory.peak) / g_input.size());
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
