// Walking a bound order book: every order and every line of it, by index
// (GetItem(i) for i < GetCount(), forwards and backwards) and by range-for,
// against following the nodes by hand (GetFirstNode/GetNext), the floor any
// walk stands on. Time per item flat across book sizes means linear walks;
// on the largest book the walk is also given as a fraction of binding it.
//
// usage: collection_walk_bench [RUNS] [ORDERS...]   (default 5 runs, best counts;
//                                                    books of 1000 10000 50000 orders)
// The books are made by bench/gen_orders.py (50000 orders are about 54 MB).
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_support.h"
#include "orders.h"

using namespace QmXmlLib10;
using bench::TimeBest;

namespace {

// What every walk adds up, so that none of them can be left out and all can
// be checked against each other.
struct Tally {
    long long items = 0;
    long long quantity = 0;
    bool operator==(const Tally& o) const { return items == o.items && quantity == o.quantity; }
};

Tally ByNodes(const orders::COrders& book) {
    Tally t;
    for (auto* o = book.GetOrder()->GetFirstNode(); o; o = o->GetNext()) {
        const auto* order = static_cast<const orders::COrderType*>(o->GetItem());
        ++t.items;
        for (auto* l = order->GetLine()->GetFirstNode(); l; l = l->GetNext()) {
            ++t.items;
            t.quantity += static_cast<const orders::CLineType*>(l->GetItem())->GetQuantity();
        }
    }
    return t;
}

Tally ByIndexForwards(const orders::COrders& book) {
    Tally t;
    const orders::COrderTypeCol* all = book.GetOrder();
    for (int i = 0; i < all->GetCount(); ++i) {
        const CSmartPtr<orders::COrderType> order = all->GetItem(i);
        ++t.items;
        const orders::CLineTypeCol* lines = order->GetLine();
        for (int j = 0; j < lines->GetCount(); ++j) {
            ++t.items;
            t.quantity += lines->GetItem(j)->GetQuantity();
        }
    }
    return t;
}

Tally ByIndexBackwards(const orders::COrders& book) {
    Tally t;
    const orders::COrderTypeCol* all = book.GetOrder();
    for (int i = all->GetCount() - 1; i >= 0; --i) {
        const CSmartPtr<orders::COrderType> order = all->GetItem(i);
        ++t.items;
        const orders::CLineTypeCol* lines = order->GetLine();
        for (int j = lines->GetCount() - 1; j >= 0; --j) {
            ++t.items;
            t.quantity += lines->GetItem(j)->GetQuantity();
        }
    }
    return t;
}

Tally ByRangeFor(const orders::COrders& book) {
    Tally t;
    for (const orders::COrderType* order : *book.GetOrder()) {
        ++t.items;
        for (const orders::CLineType* line : *order->GetLine()) {
            ++t.items;
            t.quantity += line->GetQuantity();
        }
    }
    return t;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    std::vector<long> sizes;
    for (int i = 2; i < argc; ++i) sizes.push_back(std::atol(argv[i]));
    if (sizes.empty()) sizes = {1000, 10000, 50000};

    std::printf("%8s %10s %9s | ns per item: %7s %7s %7s %7s | index/nodes  walk/bind\n", "orders", "items",
                "bind ms", "nodes", "index>", "index<", "for");
    for (long n : sizes) {
        std::string input;
        std::string command;
        if (!bench::GenerateOrderBook(n, input, &command)) {
            std::fprintf(stderr, "collection_walk_bench: could not make the book: %s\n", command.c_str());
            return 1;
        }
        orders::COrders book;
        double bind = 1e30;
        for (int r = 0; r < runs; ++r) {
            orders::COrders fresh;
            TimeBest(bind, [&] {
                fresh.FromXmlStream(reinterpret_cast<unsigned char*>(&input[0]),
                                    static_cast<std::uint32_t>(input.size()));
            });
        }
        book.FromXmlStream(reinterpret_cast<unsigned char*>(&input[0]),
                           static_cast<std::uint32_t>(input.size()));

        const Tally expected = ByNodes(book);
        double nodes = 1e30, forwards = 1e30, backwards = 1e30, rangeFor = 1e30;
        bool agree = true;
        for (int r = 0; r < runs; ++r) {
            Tally t;
            TimeBest(nodes, [&] { t = ByNodes(book); });
            TimeBest(forwards, [&] { agree = agree && ByIndexForwards(book) == expected; });
            TimeBest(backwards, [&] { agree = agree && ByIndexBackwards(book) == expected; });
            TimeBest(rangeFor, [&] { agree = agree && ByRangeFor(book) == expected; });
            agree = agree && t == expected;
        }
        if (!agree) {
            std::fprintf(stderr, "collection_walk_bench: the walks disagree on %ld orders\n", n);
            return 1;
        }
        const double perItem = 1e9 / static_cast<double>(expected.items);
        std::printf("%8ld %10lld %9.1f | %25.1f %7.1f %7.1f %7.1f | %10.2fx %9.3f%%\n", n, expected.items,
                    bind * 1e3, nodes * perItem, forwards * perItem, backwards * perItem, rangeFor * perItem,
                    forwards / nodes, 100.0 * forwards / bind);
    }
    std::printf("index> forwards and index< backwards by GetItem; for: range-for; walk/bind: index> walk over binding\n");
    return 0;
}
