// The order book read and written by gSOAP's generated bindings and by ours,
// in the same run, each against Expat alone as the floor:
//  - read: gSOAP's soap_read of the root element from the in-memory book
//    (through a receive callback, so neither side pays for a stream) against
//    FromXmlStream into COrders and against Expat with no-op callbacks;
//  - write: gSOAP's soap_write into a std::string (through a send callback)
//    against COrders::ToXml, both indented;
//  - memory: the resident high-water of one read above what the process held
//    before it, for each side in its own forked child (so pages freed by
//    earlier runs hide nothing, and both are measured the same way whatever
//    allocator sits underneath: gSOAP keeps its objects in its own lists on
//    top of malloc), and the malloc'd bytes each side's objects still hold
//    after the read.
// Both sides free their objects untimed and the heap is trimmed before each
// read, so both fault in their objects' memory afresh.
//
// gSOAP reads with SOAP_XML_STRICT (its validating mode: the facets its
// generated code knows, such as the quantity range, are checked),
// SOAP_XML_TREE (no id/href graph) and SOAP_C_UTFSTRING (strings stay UTF-8,
// as ours); it writes with SOAP_XML_INDENT in addition. Its pattern facets
// go through its validation hook, which here runs the same PCRE2 matches ours
// does (JIT, compiled once per pattern), so both check the same facets.
//
// The program checks that both read the whole book alike (orders, lines, sum
// of quantities, bytes of descriptions) and that gSOAP refuses a book with a
// quantity out of range or a SKU off its pattern; it exits 1 when either
// check fails.
//
// usage: gsoap_bench [RUNS]   (default 5; best run counts)
// The book is made by bench/gen_orders.py at start-up: QMXML_BENCH_MB
// megabytes (default 50).
#define PCRE2_CODE_UNIT_WIDTH 8
#include <malloc.h>
#include <pcre2.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "bench_support.h"
#include "orders.h"
#include "soapH.h"
#include "ns1.nsmap"

using namespace QmXmlLib10;
using bench::TimeBest;

namespace {

std::string g_input;

bool MakeInput() { return bench::GenerateOrderBookOfEnvironmentSize(g_input); }
bool ExpatAlone() { return bench::ParseWithExpatAlone(g_input); }

unsigned char* InputBytes() { return reinterpret_cast<unsigned char*>(&g_input[0]); }
std::uint32_t InputLength() { return static_cast<std::uint32_t>(g_input.size()); }

// What a read produced, compared between the two sides.
struct Summary {
    long orders = 0;
    long lines = 0;
    long long quantities = 0;
    long long descriptionBytes = 0;

    bool operator==(const Summary& o) const {
        return orders == o.orders && lines == o.lines && quantities == o.quantities &&
               descriptionBytes == o.descriptionBytes;
    }
};

Summary Summarize(const orders::COrders& book) {
    Summary s;
    for (auto* o = book.GetOrder()->GetFirstNode(); o; o = o->GetNext()) {
        ++s.orders;
        const auto* order = static_cast<const orders::COrderType*>(o->GetItem());
        for (auto* l = order->GetLine()->GetFirstNode(); l; l = l->GetNext()) {
            const auto* line = static_cast<const orders::CLineType*>(l->GetItem());
            ++s.lines;
            s.quantities += line->GetQuantity();
            s.descriptionBytes += static_cast<long long>(line->GetDescription().size());
        }
    }
    return s;
}

Summary Summarize(const _ns1__Orders& book) {
    Summary s;
    for (const ns1__OrderType* order : book.Order) {
        ++s.orders;
        for (const ns1__LineType* line : order->Line) {
            ++s.lines;
            s.quantities += line->Quantity;
            s.descriptionBytes += static_cast<long long>(line->Description.size());
        }
    }
    return s;
}

void Print(const char* who, const Summary& s) {
    std::printf("  %-6s read %ld orders, %ld lines, quantities %lld, description bytes %lld\n", who, s.orders,
                s.lines, s.quantities, s.descriptionBytes);
}

// ---- gSOAP plumbing: input from and output to memory, pattern facets by PCRE2

struct MemoryInput {
    const char* data = nullptr;
    std::size_t size = 0;
    std::size_t position = 0;
};

std::size_t ReceiveFromMemory(struct soap* soap, char* buffer, std::size_t length) {
    auto* in = static_cast<MemoryInput*>(soap->user);
    const std::size_t n = std::min(length, in->size - in->position);
    std::memcpy(buffer, in->data + in->position, n);
    in->position += n;
    return n;
}

std::string* g_output = nullptr;

int SendToString(struct soap*, const char* data, std::size_t length) {
    g_output->append(data, length);
    return SOAP_OK;
}

// The generated code passes each pattern as a string literal, so its address
// names it: compile once, match from then on.
class PatternCache {
public:
    ~PatternCache() {
        for (auto& entry : m_patterns) {
            pcre2_match_data_free(entry.second.match);
            pcre2_code_free(entry.second.code);
        }
    }

    bool Matches(const char* pattern, const char* value) {
        auto it = m_patterns.find(pattern);
        if (it == m_patterns.end()) {
            // Anchored at both ends, as a schema pattern is.
            const std::string whole = std::string("^(?:") + pattern + ")$";
            int error = 0;
            PCRE2_SIZE offset = 0;
            pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(whole.c_str()), whole.size(),
                                             PCRE2_UTF | PCRE2_NO_UTF_CHECK, &error, &offset, nullptr);
            if (code == nullptr) return false;
            pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
            it = m_patterns.emplace(pattern, Compiled{code, pcre2_match_data_create_from_pattern(code, nullptr)})
                     .first;
        }
        return pcre2_match(it->second.code, reinterpret_cast<PCRE2_SPTR>(value), std::strlen(value), 0, 0,
                           it->second.match, nullptr) >= 0;
    }

private:
    struct Compiled {
        pcre2_code* code;
        pcre2_match_data* match;
    };
    std::map<const char*, Compiled> m_patterns;
};

PatternCache* g_patterns = nullptr;

int ValidatePattern(struct soap*, const char* pattern, const char* value) {
    return g_patterns->Matches(pattern, value) ? SOAP_OK : SOAP_TYPE;
}

const int kReadMode = SOAP_XML_STRICT | SOAP_XML_TREE | SOAP_C_UTFSTRING;

// One gSOAP context set up for memory input and output.
class GsoapContext {
public:
    GsoapContext() : m_soap(soap_new1(kReadMode)) {
        soap_set_omode(m_soap, SOAP_XML_INDENT);
        m_soap->frecv = &ReceiveFromMemory;
        m_soap->fsend = &SendToString;
        m_soap->fsvalidate = &ValidatePattern;
        m_soap->user = &m_input;
    }
    ~GsoapContext() {
        FreeObjects();
        soap_free(m_soap);
    }
    GsoapContext(const GsoapContext&) = delete;
    GsoapContext& operator=(const GsoapContext&) = delete;

    // The book read, owned by the context; null (and the error printed) on failure.
    _ns1__Orders* Read(const char* data, std::size_t size) {
        m_input = MemoryInput{data, size, 0};
        _ns1__Orders* book = soap_new__ns1__Orders(m_soap);
        if (soap_read__ns1__Orders(m_soap, book) != SOAP_OK) return nullptr;
        return book;
    }
    std::string Write(const _ns1__Orders& book) {
        std::string out;
        g_output = &out;
        const bool written = soap_write__ns1__Orders(m_soap, &book) == SOAP_OK;
        g_output = nullptr;
        if (!written) throw CQmException("gSOAP could not write the book");
        return out;
    }
    void PrintError() { soap_print_fault(m_soap, stderr); }
    void FreeObjects() {
        soap_destroy(m_soap);
        soap_end(m_soap);
    }

private:
    struct soap* m_soap;
    MemoryInput m_input;
};

// ---- memory

struct Memory {
    long long peak = -1;  // resident high-water of the read above the start
    long long heap = -1;  // malloc'd bytes the read objects hold afterwards
};

// read(measure) reads the book and calls measure() while its objects live.
template <class Read>
Memory MeasureRead(Read read) {
    return bench::MeasureInChild(
        [&read] {
            Memory m;
            bench::ReleaseNodeCache();
            if (!bench::ResetPeakResident()) return m;
            bench::TouchPages(g_input.data(), g_input.size());  // the input is resident in the child too
            malloc_trim(0);
            const long before = bench::StatusKiB("VmRSS:");
            const std::size_t heapBefore = mallinfo2().uordblks;
            read([&] {
                m.peak = (bench::StatusKiB("VmHWM:") - before) * 1024LL;
                // Our freed tree's node blocks wait in the reuse cache; they
                // are not the objects' (and go back to the system on request).
                bench::ReleaseNodeCache();
                m.heap = static_cast<long long>(mallinfo2().uordblks - heapBefore);
            });
            return m;
        },
        Memory{});
}

// Whether gSOAP refuses the book with the first `element`'s value replaced:
// a value the schema forbids proves that the check behind it is on.
bool Refuses(GsoapContext& context, const std::string& element, const char* value) {
    std::string bad = g_input;
    const std::string open = "<" + element + ">";
    const std::size_t at = bad.find(open);
    if (at == std::string::npos) return false;
    const std::size_t start = at + open.size();
    bad.replace(start, bad.find("</" + element + ">", start) - start, value);
    const bool refused = context.Read(bad.data(), bad.size()) == nullptr;
    context.FreeObjects();
    return refused;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    if (!MakeInput()) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    const double mb = static_cast<double>(g_input.size()) / 1e6;
    PatternCache patterns;
    g_patterns = &patterns;
    try {
        GsoapContext gsoap;
        double expat = 1e9, gsoapRead = 1e9, ourRead = 1e9, gsoapWrite = 1e9, ourWrite = 1e9;
        std::size_t gsoapBytes = 0, ourBytes = 0;
        CSmartPtr<orders::COrders> book;
        _ns1__Orders* gsoapBook = nullptr;
        // Interleaved, so that all three see the same machine state.
        for (int run = 0; run < runs; ++run) {
            TimeBest(expat, [] {
                if (!ExpatAlone()) throw CQmException("Expat failed on the order book");
            });

            gsoapBook = nullptr;
            gsoap.FreeObjects();  // the previous run's objects are freed untimed
            malloc_trim(0);
            TimeBest(gsoapRead, [&] { gsoapBook = gsoap.Read(g_input.data(), g_input.size()); });
            if (gsoapBook == nullptr) {
                std::fprintf(stderr, "gsoap_bench: gSOAP refused the order book:\n");
                gsoap.PrintError();
                return 1;
            }

            book = nullptr;
            malloc_trim(0);
            CSmartPtr<orders::COrders> fresh = new orders::COrders();
            TimeBest(ourRead, [&] { fresh->FromXmlStream(InputBytes(), InputLength()); });
            book = fresh;
        }
        const Summary ours = Summarize(*book);
        const Summary theirs = Summarize(*gsoapBook);
        for (int run = 0; run < runs; ++run) {
            TimeBest(gsoapWrite, [&] { gsoapBytes = gsoap.Write(*gsoapBook).size(); });
            TimeBest(ourWrite, [&] { ourBytes = book->ToXml(true, true, EOLType_LF).size(); });
        }
        book = nullptr;
        gsoapBook = nullptr;
        gsoap.FreeObjects();
        malloc_trim(0);
        // A range facet (strict mode) and a pattern (the PCRE2 hook).
        const bool strict = Refuses(gsoap, "Quantity", "10001") && Refuses(gsoap, "Sku", "AB-1234");

        const Memory gsoapMemory = MeasureRead([](auto measure) {
            GsoapContext context;
            if (context.Read(g_input.data(), g_input.size()) != nullptr) measure();
        });
        const Memory ourMemory = MeasureRead([](auto measure) {
            orders::COrders read;
            read.FromXmlStream(InputBytes(), InputLength());
            measure();
        });

        std::printf("order book:                 %.1f MB, %ld orders, %ld lines, best of %d runs\n", mb, ours.orders,
                    ours.lines, runs);
        std::printf("gSOAP %d.%d.%d, in: SOAP_XML_STRICT | SOAP_XML_TREE | SOAP_C_UTFSTRING, patterns by PCRE2; out: + "
                    "SOAP_XML_INDENT\n",
                    GSOAP_VERSION / 100000, GSOAP_VERSION / 1000 % 100, GSOAP_VERSION % 1000);
        std::printf("Expat alone:                %8.1f MB/s\n", mb / expat);
        std::printf("gSOAP soap_read:            %8.1f MB/s\n", mb / gsoapRead);
        std::printf("FromXmlStream -> COrders:   %8.1f MB/s\n", mb / ourRead);
        std::printf("read ratio ours/gSOAP:      %8.2f\n", gsoapRead / ourRead);
        std::printf("read ratio gSOAP/Expat:     %8.2f\n", expat / gsoapRead);
        std::printf("read ratio ours/Expat:      %8.2f\n", expat / ourRead);
        std::printf("gSOAP soap_write:           %8.1f MB/s (%zu bytes)\n", mb / gsoapWrite, gsoapBytes);
        std::printf("COrders::ToXml:             %8.1f MB/s (%zu bytes)\n", mb / ourWrite, ourBytes);
        std::printf("write ratio ours/gSOAP:     %8.2f\n", gsoapWrite / ourWrite);
        const auto printMemory = [&](const char* who, const Memory& m) {
            if (m.peak < 0) return;
            std::printf("%-27s %8.1f MB = %.2f x document; objects hold %.1f MB = %.2f x document\n", who,
                        m.peak / 1e6, static_cast<double>(m.peak) / g_input.size(), m.heap / 1e6,
                        static_cast<double>(m.heap) / g_input.size());
        };
        printMemory("peak while reading, gSOAP:", gsoapMemory);
        printMemory("peak while reading, ours:", ourMemory);
        if (gsoapMemory.peak >= 0 && ourMemory.peak >= 0)
            std::printf("peak ratio ours/gSOAP:      %8.2f\n", static_cast<double>(ourMemory.peak) / gsoapMemory.peak);

        bool ok = true;
        if (!(ours == theirs)) {
            std::fprintf(stderr, "gsoap_bench: the two sides read different books:\n");
            Print("ours", ours);
            Print("gSOAP", theirs);
            ok = false;
        }
        if (!strict) {
            std::fprintf(stderr, "gsoap_bench: gSOAP accepted a quantity out of range or a SKU off its pattern\n");
            ok = false;
        }
        if (ok) std::printf("checked: both read the same orders, lines, quantities and descriptions\n");
        return ok ? 0 : 1;
    } catch (const CQmException& e) {
        std::fprintf(stderr, "gsoap_bench: %s\n", e.GetFullMessage().c_str());
        return 1;
    }
}
