// Throughput of the text writer into memory and into a file.
#include <benchmark/benchmark.h>

#include <qmxml/writer/text_stream.h>
#include <qmxml/writer/text_writer.h>

#include <cstdio>
#include <string>

using namespace QmXmlLib10;

namespace {

void WriteOrders(CXmlTextWriter& w, int orders) {
    w.StartDocument();
    w.WriteXmlDeclaration();
    w.SetDefaultNamespace("urn:example:orders");
    w.StartElement("Orders", "urn:example:orders");
    for (int i = 0; i < orders; ++i) {
        w.StartElement("Order", "urn:example:orders");
        w.WriteAttribute("id", "", "12345");
        w.StartElement("Name", "urn:example:orders");
        w.WriteText("some text value with & ampersand and more text");
        w.EndElement();
        w.StartElement("Qty", "urn:example:orders");
        w.WriteText("42");
        w.EndElement();
        w.EndElement();
    }
    w.EndElement();
    w.EndDocument();
}

void BM_TextWriterToMemory(benchmark::State& state) {
    std::size_t bytes = 0;
    for (auto _ : state) {
        CTextStream stream;
        CXmlTextWriter writer(stream);
        WriteOrders(writer, static_cast<int>(state.range(0)));
        const std::string out = stream.GetEncodedText();
        bytes += out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(BM_TextWriterToMemory)->Arg(1000)->Arg(100000);

void BM_TextWriterToFile(benchmark::State& state) {
    const std::string path = "/tmp/qmxml_text_writer_bench.xml";
    for (auto _ : state) {
        CFileTextStream stream(path.c_str());
        CXmlTextWriter writer(stream);
        WriteOrders(writer, static_cast<int>(state.range(0)));
        state.SetBytesProcessed(state.bytes_processed() + static_cast<std::int64_t>(stream.GetBytesWritten()));
    }
    std::remove(path.c_str());
}
BENCHMARK(BM_TextWriterToFile)->Arg(100000);

}  // namespace

BENCHMARK_MAIN();
