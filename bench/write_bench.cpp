// Writing an order book through CElement and CXmlTextWriter to memory, against
// libxml2's xmlTextWriter writing the same elements, attributes and text to
// memory. Both write tab-indented output with a declaration.
//
// usage: write_bench [MB]   (default 50; the order book is generated first)
// Prints MB/s of each and the ratio qmxml / libxml2, best of five interleaved runs.
#include <libxml/xmlwriter.h>

#include <qmxml/qmxml.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_support.h"

using namespace QmXmlLib10;

namespace {

// The same walk as the library's, with libxml2 as the writer.
void WriteWithLibxml2(const CElement* root, std::size_t& size) {
    xmlBufferPtr buffer = xmlBufferCreate();
    xmlTextWriterPtr w = xmlNewTextWriterMemory(buffer, 0);
    xmlTextWriterSetIndent(w, 1);
    xmlTextWriterSetIndentString(w, BAD_CAST "\t");
    xmlTextWriterStartDocument(w, "1.0", "UTF-8", nullptr);
    struct Frame {
        const CElement* element;
        CXmlCollection::CNode* next;
    };
    std::vector<Frame> stack;
    auto open = [&](const CElement* e, bool isRoot) {
        xmlTextWriterStartElement(w, BAD_CAST e->GetLocalName().c_str());
        if (isRoot) xmlTextWriterWriteAttribute(w, BAD_CAST "xmlns", BAD_CAST e->GetNamespaceURI().c_str());
        if (const CAttributeCol* attributes = e->FindAttributes()) {
            for (auto* n = attributes->GetFirstNode(); n; n = n->GetNext()) {
                const auto* a = static_cast<const CAttribute*>(n->GetItem());
                xmlTextWriterWriteAttribute(w, BAD_CAST a->GetLocalName().c_str(), BAD_CAST a->GetValue().c_str());
            }
        }
        if (!e->GetText().empty()) xmlTextWriterWriteString(w, BAD_CAST e->GetText().c_str());
        stack.push_back({e, e->FindElements() ? e->FindElements()->GetFirstNode() : nullptr});
    };
    open(root, true);
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next) {
            const auto* child = static_cast<const CElement*>(top.next->GetItem());
            top.next = top.next->GetNext();
            open(child, false);
        } else {
            xmlTextWriterEndElement(w);
            stack.pop_back();
        }
    }
    xmlTextWriterEndDocument(w);
    xmlFreeTextWriter(w);
    size = static_cast<std::size_t>(xmlBufferLength(buffer));
    xmlBufferFree(buffer);
}

}  // namespace

int main(int argc, char** argv) {
    const double megabytes = argc > 1 ? std::atof(argv[1]) : 50.0;
    std::string input;
    std::string command;
    if (!bench::GenerateOrderBook(std::max(1L, static_cast<long>(megabytes * 1e6 / 1120)), input, &command)) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        return 1;
    }
    CSmartPtr<CElement> document = new CElement();
    document->FromXmlStream(reinterpret_cast<unsigned char*>(&input[0]), static_cast<std::uint32_t>(input.size()));

    double bestQm = 1e9, bestXml = 1e9;
    std::size_t qmSize = 0, xmlSize = 0;
    for (int run = 0; run < 5; ++run) {
        bench::TimeBest(bestQm, [&] { qmSize = document->ToXml(true, true, EOLType_LF).size(); });
        bench::TimeBest(bestXml, [&] { WriteWithLibxml2(document, xmlSize); });
    }
    const double mb = static_cast<double>(input.size()) / 1e6;
    std::printf("document:            %.1f MB\n", mb);
    std::printf("qmxml CElement+CXmlTextWriter: %.1f MB/s (%zu bytes out)\n", mb / bestQm, qmSize);
    std::printf("libxml2 xmlTextWriter:         %.1f MB/s (%zu bytes out)\n", mb / bestXml, xmlSize);
    std::printf("ratio qmxml/libxml2:           %.2f\n", bestXml / bestQm);
    return 0;
}
