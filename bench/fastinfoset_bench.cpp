// Fast Infoset against XML text on the same order book, in the same run:
// sizes, loading, writing, binding the order classes and writing them back.
// Binding from Fast Infoset is timed both ways: FromXmlStream, which binds
// while the decoder reads, and a loaded CXmlDocument bound with
// FromXmlElement (the tree path). The peak resident memory of each way of
// binding, above what the process held, is measured once in a forked child
// (as binding_bench does), as a multiple of the text's size.
//
// usage: fastinfoset_bench [MB [stream|tree]]   (default 50 MB; the order book
// is generated first). Times are the best of five interleaved runs. With a
// second argument the program only reads the Fast Infoset book twice that
// way, for an instruction count of the reads alone:
//   valgrind --tool=callgrind --toggle-collect='*BindWhileDecoding*' build/bench/fastinfoset_bench 5 stream
//   valgrind --tool=callgrind --toggle-collect='*BindThroughTree*' build/bench/fastinfoset_bench 5 tree
#include <malloc.h>
#include <qmxml/qmxml.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench_support.h"
#include "orders.h"

using namespace QmXmlLib10;
using bench::TimeBest;

namespace {

std::string MakeOrderBook(double megabytes) {
    const long orders = std::max(1L, static_cast<long>(megabytes * 1e6 / 1120));
    std::string text;
    std::string command;
    if (!bench::GenerateOrderBook(orders, text, &command)) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(1);
    }
    return text;
}

CBinaryData Gzip(const CBinaryData& data) {
    return CBinaryData::Compress(data.GetData(), data.GetLength(), CompressionType_GZip);
}

void Load(const CBinaryData& data) {
    CXmlDocument document;
    document.LoadXmlStream(const_cast<unsigned char*>(data.GetData()), data.GetLength());
}

__attribute__((noinline)) void BindWhileDecoding(orders::COrders& book, const CBinaryData& data) {
    book.FromXmlStream(data);
}

__attribute__((noinline)) void BindThroughTree(orders::COrders& book, const CBinaryData& data) {
    CXmlDocument document;
    document.LoadXmlStream(const_cast<unsigned char*>(data.GetData()), data.GetLength());
    book.FromXmlElement(document.GetDocumentElement());
}

// The resident high-water of one read above what the process held, in bytes;
// -1 when the kernel cannot reset the mark.
long long PeakWhileBinding(const CBinaryData& data, bool throughTree) {
    return bench::MeasureInChild(
        [&] {
            bench::ReleaseNodeCache();
            if (!bench::ResetPeakResident()) return -1LL;
            bench::TouchPages(data.GetData(), data.GetLength());
            malloc_trim(0);
            const long before = bench::StatusKiB("VmRSS:");
            orders::COrders book;
            if (throughTree) {
                BindThroughTree(book, data);
            } else {
                BindWhileDecoding(book, data);
            }
            return (bench::StatusKiB("VmHWM:") - before) * 1024LL;
        },
        -1LL);
}

}  // namespace

int main(int argc, char** argv) {
    const double megabytes = argc > 1 ? std::atof(argv[1]) : 50.0;
    std::string input = MakeOrderBook(megabytes);
    CSmartPtr<CElement> tree = new CElement();
    tree->FromXmlStream(reinterpret_cast<unsigned char*>(&input[0]), static_cast<std::uint32_t>(input.size()));

    const CBinaryData text = tree->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF);
    const CBinaryData fi = tree->ToFastInfosetStream(FInfoDecl_None);
    if (argc > 2) {
        const bool throughTree = std::string(argv[2]) == "tree";
        for (int run = 0; run < 2; ++run) {
            orders::COrders book;
            if (throughTree) {
                BindThroughTree(book, fi);
            } else {
                BindWhileDecoding(book, fi);
            }
        }
        return 0;
    }
    // Typed encodings need the item types that only bound classes know.
    orders::COrders bound;
    bound.FromXmlStream(text);
    CXmlSerializationContext typedContext;
    typedContext.GetFIContext().SetSuggestedValues();
    const CBinaryData fiTyped = bound.ToFastInfosetStream(FInfoDecl_None, typedContext);
    const double textSize = text.GetLength();
    std::printf("document (unindented XML text): %.1f MB\n", textSize / 1e6);
    std::printf("Fast Infoset:                   %.3f of the text\n", fi.GetLength() / textSize);
    std::printf("Fast Infoset, typed values:     %.3f of the text (written from the bound classes)\n",
                fiTyped.GetLength() / textSize);
    std::printf("gzip: text %.3f, Fast Infoset %.3f, typed %.3f of the text\n", Gzip(text).GetLength() / textSize,
                Gzip(fi).GetLength() / textSize, Gzip(fiTyped).GetLength() / textSize);

    double loadText = 1e9, loadFi = 1e9, writeText = 1e9, writeFi = 1e9, bindText = 1e9, bindFi = 1e9;
    double boundText = 1e9, boundFi = 1e9, bindFiTree = 1e9;
    for (int run = 0; run < 5; ++run) {
        TimeBest(loadText, [&] { Load(text); });
        TimeBest(loadFi, [&] { Load(fi); });
        TimeBest(writeText, [&] { tree->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF); });
        TimeBest(writeFi, [&] { tree->ToFastInfosetStream(FInfoDecl_None); });
        TimeBest(bindText, [&] { orders::COrders book; book.FromXmlStream(text); });
        TimeBest(bindFi, [&] { orders::COrders book; BindWhileDecoding(book, fi); });
        TimeBest(bindFiTree, [&] { orders::COrders book; BindThroughTree(book, fi); });
        TimeBest(boundText, [&] { bound.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF); });
        TimeBest(boundFi, [&] { bound.ToFastInfosetStream(FInfoDecl_None); });
    }
    const double mb = textSize / 1e6;
    std::printf("load:  text %.1f MB/s, Fast Infoset %.1f MB/s (of text), FI/text speed %.2f\n", mb / loadText,
                mb / loadFi, loadText / loadFi);
    std::printf("write: text %.1f MB/s, Fast Infoset %.1f MB/s (of text), FI/text speed %.2f\n", mb / writeText,
                mb / writeFi, writeText / writeFi);
    std::printf("bind order classes: from text %.1f MB/s, from Fast Infoset %.1f MB/s, FI/text speed %.2f\n",
                mb / bindText, mb / bindFi, bindText / bindFi);
    std::printf("bind from Fast Infoset: while decoding %.1f MB/s, through a tree %.1f MB/s, speed %.2f\n",
                mb / bindFi, mb / bindFiTree, bindFiTree / bindFi);
    std::printf("write order classes: text %.1f MB/s, Fast Infoset %.1f MB/s (of text), FI/text speed %.2f\n",
                mb / boundText, mb / boundFi, boundText / boundFi);
    const long long peakText = PeakWhileBinding(text, false);
    const long long peakFi = PeakWhileBinding(fi, false);
    const long long peakFiTree = PeakWhileBinding(fi, true);
    if (peakText >= 0 && peakFi >= 0 && peakFiTree >= 0) {
        std::printf("peak while binding (x text size): text while parsing %.2f, Fast Infoset while decoding %.2f, "
                    "Fast Infoset through a tree %.2f\n",
                    peakText / textSize, peakFi / textSize, peakFiTree / textSize);
    }
    return 0;
}
