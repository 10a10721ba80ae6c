// The order book bound by the classes `qmxml generate` wrote from
// bench/orders.xsd at build time, against the hand-written classes of
// tests/support/handwritten_orders and the dynamic classes of the same schema, in the same
// run: reading (from text already in memory) and writing it back, by turns,
// best of RUNS. The three must write the same text.
//
// usage: generated_orders_bench [RUNS]   (default 3; QMXML_BENCH_MB sets the book size, default 50)
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <qmxml/schema/dynamic_classes.h>

#include "bench_support.h"
// Both are named orders.h: the build gives their paths.
#include QMXML_HAND_ORDERS
#include QMXML_GENERATED_ORDERS

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using bench::TimeBest;

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    std::string text;
    if (!bench::GenerateOrderBookOfEnvironmentSize(text)) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    const auto classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(std::string(QMXML_BENCH_DIR) + "/orders.xsd"));
    bench::ReadWriteTimes hand, generated, dynamic;
    for (int run = 0; run < runs; ++run) {
        bench::TimeReadAndWrite(hand, [&] {
            CSmartPtr<orders::COrders> book = new orders::COrders();
            book->FromXml(text.c_str());
            return book;
        });
        bench::TimeReadAndWrite(generated, [&] { return generated_orders::ReadBuffer(text.data(), text.size()); });
        bench::TimeReadAndWrite(dynamic, [&] { return classes->ReadBuffer(text.data(), text.size()); });
    }
    const double mb = static_cast<double>(text.size()) / 1e6;
    std::printf("order book: %.1f MB, best of %d runs by turns\n", mb, runs);
    std::printf("read   hand-written %.3f s  generated %.3f s  dynamic %.3f s  generated/hand-written %.2fx  "
                "dynamic/generated %.2fx\n",
                hand.read, generated.read, dynamic.read, generated.read / hand.read, dynamic.read / generated.read);
    std::printf("write  hand-written %.3f s  generated %.3f s  dynamic %.3f s  generated/hand-written %.2fx  "
                "dynamic/generated %.2fx\n",
                hand.write, generated.write, dynamic.write, generated.write / hand.write,
                dynamic.write / generated.write);
    const bool same = hand.text == generated.text && generated.text == dynamic.text;
    std::printf("written text identical: %s\n", same ? "yes" : "NO");
    return same ? 0 : 1;
}
