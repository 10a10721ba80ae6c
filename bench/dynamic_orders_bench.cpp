// Classes built at run time from bench/orders.xsd against the hand-written
// classes of tests/support/handwritten_orders, on the same order book in the same run: reading
// (from text already in memory) and writing it back, by turns, best of RUNS.
// Then what building the classes costs: orders.xsd, and a generated schema of
// 2000 complex and 1000 simple types.
//
// usage: dynamic_orders_bench [RUNS]   (default 3; QMXML_BENCH_MB sets the book size, default 50)
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <qmxml/schema/dynamic_classes.h>

#include "bench_support.h"
#include "orders.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using bench::TimeBest;

namespace {

// A schema of `types` complex types, each a sequence of five members
// (strings, a restricted decimal, a date, a repeating reference to an earlier
// type) with two attributes, and half as many restricted simple types.
std::string SyntheticSchema(int types) {
    std::string s =
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:big' xmlns='urn:big' "
        "elementFormDefault='qualified'>";
    for (int i = 0; i < types / 2; ++i) {
        const std::string n = std::to_string(i);
        s += "<xs:simpleType name='S" + n + "'><xs:restriction base='xs:decimal'><xs:totalDigits value='" +
             std::to_string(5 + i % 10) + "'/><xs:minInclusive value='-" + n + "'/></xs:restriction></xs:simpleType>";
    }
    for (int i = 0; i < types; ++i) {
        const std::string n = std::to_string(i);
        s += "<xs:complexType name='T" + n + "'><xs:sequence><xs:element name='a' type='xs:string'/>"
             "<xs:element name='b' type='S" + std::to_string(i / 2) + "' minOccurs='0'/>"
             "<xs:element name='c' type='xs:date'/><xs:element name='d' type='xs:token' maxOccurs='3'/>";
        if (i > 0) s += "<xs:element name='e' type='T" + std::to_string(i / 3) + "' minOccurs='0' maxOccurs='unbounded'/>";
        s += "</xs:sequence><xs:attribute name='id' type='xs:ID'/><xs:attribute name='k' type='xs:int'/>"
             "</xs:complexType><xs:element name='E" + n + "' type='T" + n + "'/>";
    }
    return s + "</xs:schema>";
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    std::string text;
    if (!bench::GenerateOrderBookOfEnvironmentSize(text)) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    const std::string schemaPath = std::string(QMXML_BENCH_DIR) + "/orders.xsd";
    std::shared_ptr<const CDynamicClassSet> classes;
    double loadSeconds = 1e9;
    for (int i = 0; i < 20; ++i) {
        TimeBest(loadSeconds, [&] { classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(schemaPath)); });
    }

    bench::ReadWriteTimes hand, dynamic;
    for (int run = 0; run < runs; ++run) {
        bench::TimeReadAndWrite(hand, [&] {
            CSmartPtr<orders::COrders> book = new orders::COrders();
            book->FromXml(text.c_str());
            return book;
        });
        bench::TimeReadAndWrite(dynamic, [&] { return classes->ReadBuffer(text.data(), text.size()); });
    }
    const double mb = static_cast<double>(text.size()) / 1e6;
    std::printf("order book: %.1f MB, best of %d runs by turns\n", mb, runs);
    std::printf("read   hand-written %.3f s (%.1f MB/s)  dynamic %.3f s (%.1f MB/s)  dynamic/hand-written %.2fx\n",
                hand.read, mb / hand.read, dynamic.read, mb / dynamic.read, dynamic.read / hand.read);
    std::printf("write  hand-written %.3f s (%.1f MB/s)  dynamic %.3f s (%.1f MB/s)  dynamic/hand-written %.2fx\n",
                hand.write, mb / hand.write, dynamic.write, mb / dynamic.write, dynamic.write / hand.write);
    std::printf("written text identical: %s\n", hand.text == dynamic.text ? "yes" : "NO");
    std::printf("orders.xsd: schema loaded and %zu classes built in %.2f ms\n", classes->GetClasses().size(),
                loadSeconds * 1e3);

    const std::string big = SyntheticSchema(2000);
    double bigLoad = 1e9, bigMap = 1e9;
    size_t bigClasses = 0;
    for (int i = 0; i < 3; ++i) {
        std::shared_ptr<const CSchemaSet> schemas;
        TimeBest(bigLoad, [&] { schemas = CSchemaSet::LoadBuffer(big); });
        TimeBest(bigMap, [&] {
            const auto set = CDynamicClassSet::Create(schemas);
            bigClasses = set->GetClasses().size();
        });
    }
    std::printf("synthetic schema (%.1f MB, 2000 complex + 1000 simple types): loaded in %.1f ms, %zu classes "
                "built in %.1f ms\n",
                static_cast<double>(big.size()) / 1e6, bigLoad * 1e3, bigClasses, bigMap * 1e3);
    return hand.text == dynamic.text ? 0 : 1;
}
