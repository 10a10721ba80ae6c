// Reading under IgnoreUnknownElements must cost time linear in the number of
// child elements, however many of them are unknown and wherever they stand.
// Each case reads an order book (the hand-written classes, tests/support/handwritten_orders) with N unknown elements put
// in one place, for N = 10,000, 100,000 and 1,000,000, and prints the read's
// time per unknown element and its ratio to the time at 10,000: flat ratios
// (about 1) mean linear time; quadratic time would multiply the ratio by 10
// at each step. The document tree is loaded once per case, untimed: what is
// timed is binding the loaded tree (FromXmlElement), the walk this is about,
// and as the floor in the same run a bare walk over the tree's elements: the
// last columns are binding time over walk time, which stays flat too when
// binding is linear (the time per element of both grows a little with the
// tree, as it outgrows the caches).
//
// usage: unknown_elements_bench [RUNS]   (default 5; best run counts)
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <qmxml/dom/xml_element.h>

#include "bench_support.h"
#include "orders.h"

using namespace QmXmlLib10;

namespace {

struct Case {
    const char* name;
    const char* before;  // the unknown elements go before the first occurrence of this text
};

// Where the unknown elements stand: among the members of the book (between
// two orders), before an order's first (mandatory) member, and at the end of
// an order's content. (Between two lines of an order they would end the
// lines: the order's inlined choice follows them and then only the note.)
const Case kCases[] = {
    {"between two orders", "<Order id=\"2\""},
    {"before an order's first member", "<Customer"},
    {"after an order's last member", "</Order>"},
};

std::string WithUnknownElements(const std::string& book, const char* before, long count) {
    const std::size_t at = book.find(before);
    if (at == std::string::npos) return std::string();
    std::string unknown;
    unknown.reserve(static_cast<std::size_t>(count) * 24);
    for (long i = 0; i < count; ++i) unknown += "<Unknown n=\"1\">x</Unknown>";
    std::string out = book;
    out.insert(at, unknown);
    return out;
}

// The floor: a walk over the whole tree that looks at every element's name.
// Memory, not the algorithm, makes its time per element grow with the tree.
long CountUnknown(const CXmlElement* root) {
    long count = 0;
    std::vector<const CXmlElement*> stack{root};
    while (!stack.empty()) {
        const CXmlElement* element = stack.back();
        stack.pop_back();
        for (const CXmlElement* child = element->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (child->GetLocalName() == "Unknown") ++count; else stack.push_back(child);
        }
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    std::string book;
    if (!bench::GenerateOrderBook(3, book)) {
        std::fprintf(stderr, "could not generate the order book\n");
        return 1;
    }
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    const long counts[] = {10000, 100000, 1000000};
    std::printf("binding time per unknown element under IgnoreUnknownElements, best of %d runs\n", runs);
    std::printf("%-34s %12s %12s %12s   %s    %s\n", "unknown elements stand", "10k ns/elem", "100k ns/elem",
                "1M ns/elem", "ratio to 10k (100k, 1M)", "binding / tree walk (10k, 100k, 1M)");
    try {
        for (const Case& c : kCases) {
            double perElement[3] = {};
            double toWalk[3] = {};
            for (int k = 0; k < 3; ++k) {
                std::string input = WithUnknownElements(book, c.before, counts[k]);
                if (input.empty()) throw CQmException(FormatString("no place [%s] in the order book", c.before));
                // The tree is loaded once: only the binding walk is timed, so
                // that the loader's page faults do not drown it.
                CXmlDocument document;
                document.LoadXmlStream(reinterpret_cast<unsigned char*>(&input[0]),
                                       static_cast<std::uint32_t>(input.size()));
                double best = 1e9;
                double walk = 1e9;
                int orders = 0;
                for (int run = 0; run < runs; ++run) {
                    long seen = 0;
                    bench::TimeBest(walk, [&] { seen = CountUnknown(document.GetDocumentElement()); });
                    if (seen != counts[k]) throw CQmException(FormatString("walked %ld unknown elements", seen));
                    CSmartPtr<orders::COrders> read = new orders::COrders();
                    bench::TimeBest(best, [&] { read->FromXmlElement(document.GetDocumentElement(), ignore); });
                    orders = read->GetOrder()->GetCount();
                }
                if (orders != 3) throw CQmException(FormatString("read %d orders instead of 3", orders));
                perElement[k] = best * 1e9 / static_cast<double>(counts[k]);
                toWalk[k] = best / walk;
            }
            std::printf("%-34s %12.1f %12.1f %12.1f   %.2f, %.2f    %.1f, %.1f, %.1f\n", c.name, perElement[0],
                        perElement[1], perElement[2], perElement[1] / perElement[0], perElement[2] / perElement[0],
                        toWalk[0], toWalk[1], toWalk[2]);
        }
    } catch (const CQmException& e) {
        std::fprintf(stderr, "unknown_elements_bench: %s\n", e.GetFullMessage().c_str());
        return 1;
    }
    return 0;
}
