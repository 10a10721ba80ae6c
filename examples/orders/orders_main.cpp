// qmxml_orders: binds an order book to the classes `qmxml generate` writes
// from bench/orders.xsd at build time (examples/CMakeLists.txt).
//   qmxml_orders         the bundled book: summary, a change, written back as
//                        formatted XML and as gzip, read back and compared
//   qmxml_orders FILE    binds FILE and prints its summary, or the first
//                        violation with its full message chain (exit 1)
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

#include "orders.h"  // generated: every class of the schema and the set's functions

using namespace QmXmlLib10;

namespace {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

long long FileSize(const char* path) {
    struct stat st {};
    return stat(path, &st) == 0 ? static_cast<long long>(st.st_size) : -1;
}

struct Summary {
    int orders = 0;
    int lines = 0;
    int pending = 0;
    CDecimal total;
};

Summary Summarise(const example_orders::COrders& book) {
    Summary s;
    const auto* all = book.GetOrder();
    s.orders = all->GetCount();
    for (const example_orders::COrderType* order : *all) {
        if (order->GetStatus() == "pending") ++s.pending;
        const auto* lines = order->GetLine();
        s.lines += lines->GetCount();
        for (const example_orders::CLineType* line : *lines)
            s.total += CDecimal(line->GetQuantity()) * line->GetUnitPrice();
    }
    return s;
}

void PrintSummary(const char* path, const example_orders::COrders& book, double readMs) {
    const Summary s = Summarise(book);
    std::printf("order book:  %s (%lld bytes)\n", path, FileSize(path));
    std::printf("generated:   %s\n", book.GetGenerated().ToString().c_str());
    std::printf("orders:      %d (%d pending)\n", s.orders, s.pending);
    std::printf("lines:       %d\n", s.lines);
    std::printf("total:       %s (sum of Quantity x UnitPrice)\n", s.total.ToString().c_str());
    std::printf("read:        %.2f ms\n", readMs);
}

// A document the schema allows elsewhere (another root element) is no order
// book: the set's ReadFile picks the class, the cast says whether it is one.
int BindFile(const char* path) {
    const Clock::time_point start = Clock::now();
    CSmartPtr<CXmlGeneratedClass> root;
    try {
        root = example_orders::ReadFile(path);
    } catch (const CQmException& e) {
        std::fprintf(stderr, "qmxml_orders: %s does not bind:\n%s\n", path, e.GetFullMessage().c_str());
        return 1;
    }
    const auto* book = dynamic_cast<const example_orders::COrders*>(root.Get());
    if (book == nullptr) {
        std::fprintf(stderr, "qmxml_orders: %s is not an order book\n", path);
        return 1;
    }
    PrintSummary(path, *book, MillisecondsSince(start));
    return 0;
}

int MainJob() {
    const char* path = QMXML_ORDERS_EXAMPLE;
    example_orders::COrders book;
    Clock::time_point start = Clock::now();
    book.FromXmlFile(path);
    PrintSummary(path, book, MillisecondsSince(start));

    // The change: every pending order ships, and the book says who touched it.
    int shipped = 0;
    for (example_orders::COrderType* order : *book.GetOrder()) {
        if (order->GetStatus() != "pending") continue;
        order->SetStatus("shipped");  // an enumeration: any other text throws
        ++shipped;
    }
    book.SetSource("qmxml_orders");
    std::printf("changed:     %d pending orders shipped, source set\n", shipped);

    start = Clock::now();
    const std::string xml = book.ToXml(true, true, EOLType_LF);
    const double xmlMs = MillisecondsSince(start);
    start = Clock::now();
    const CBinaryData gzip = book.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                              CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
    const double gzipMs = MillisecondsSince(start);
    std::printf("xml:         %zu bytes, written in %.2f ms\n", xml.size(), xmlMs);
    std::printf("gzip:        %u bytes, written in %.2f ms\n", gzip.GetLength(), gzipMs);

    example_orders::COrders fromXml;
    example_orders::COrders fromGzip;
    start = Clock::now();
    fromXml.FromXml(xml.c_str());
    const double readXmlMs = MillisecondsSince(start);
    start = Clock::now();
    fromGzip.FromXmlStream(gzip);
    const double readGzipMs = MillisecondsSince(start);
    std::printf("read back:   xml %.2f ms, gzip %.2f ms\n", readXmlMs, readGzipMs);
    // Equal objects write equal text (members in schema order, values in
    // their canonical form), so the texts compare the whole books.
    const std::string expected = book.ToXml();
    if (fromXml.ToXml() != expected || fromGzip.ToXml() != expected) {
        std::printf("round trip:  DIFFERENT\n");
        return 1;
    }
    std::printf("round trip:  equal (xml and gzip)\n");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "usage: qmxml_orders [FILE]\n");
        return 2;
    }
    int rc = 1;
    try {
        rc = argc == 2 ? BindFile(argv[1]) : MainJob();
    } catch (const CQmException& e) {
        std::fprintf(stderr, "qmxml_orders: %s\n", e.GetFullMessage().c_str());
        rc = 1;
    }
    example_orders::CleanMetaData();
    return rc;
}
