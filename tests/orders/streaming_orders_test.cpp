// The order book read while parsing against loaded as a tree and then bound:
// the example book (two of Expat's pieces long) as it is and with a fault
// put in at many places, through the hand-written and the dynamic classes,
// as text and as Fast Infoset.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <typeinfo>
#include <vector>

#include "binding/stream_compare.h"
#include "orders.h"
#include <qmxml/schema/dynamic_classes.h>
#include <qmxml/schema/schema_set.h>

namespace {

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using streamcompare::Outcome;

std::string ExampleBook() {
    std::ifstream in(QMXML_SOURCE_DIR "/examples/data/orders.xml", std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

Outcome Read(const std::vector<unsigned char>& bytes, const CXmlSerializationContext& ctx, bool throughTree) {
    orders::COrders book;
    return throughTree ? streamcompare::ThroughTree(book, bytes, ctx) : streamcompare::WhileParsing(book, bytes, ctx);
}

Outcome Read(const std::string& text, const CXmlSerializationContext& ctx, bool throughTree) {
    return Read(std::vector<unsigned char>(text.begin(), text.end()), ctx, throughTree);
}

// Well-formed text as Fast Infoset, through the element tree and the
// library's writer; empty when the text is not well formed.
std::vector<unsigned char> AsFastInfoset(const std::string& text) {
    CSmartPtr<CElement> element = new CElement();
    try {
        element->FromXml(text.c_str());
    } catch (const CQmException&) {
        return {};
    }
    const CBinaryData fi = element->ToFastInfosetStream();
    return std::vector<unsigned char>(fi.GetData(), fi.GetData() + fi.GetLength());
}

// The book with `what` put in place of the n-th occurrence of `find`.
std::string Replaced(std::string text, const std::string& find, const std::string& what, int n) {
    std::size_t at = 0;
    for (int i = 0; i <= n; ++i) {
        at = text.find(find, i == 0 ? 0 : at + 1);
        if (at == std::string::npos) return std::string();
    }
    return text.replace(at, find.size(), what);
}

struct Fault {
    const char* name;
    const char* find;
    const char* replace;
};

const Fault kFaults[] = {
    {"BadQuantity", "<Quantity>", "<Quantity>x"},
    {"UnknownElement", "<Sku>", "<Bogus><Deep/></Bogus><Sku>"},
    {"UnknownAttribute", "<Sku>", "<Sku bogus=\"1\">"},
    {"MismatchedTag", "</Sku>", "</Skuu>"},
    {"UnknownElementThenMismatchedTag", "</Sku>", "</Sku><Bogus/></Wrong>"},
    {"BadQuantityThenUndefinedEntity", "<Quantity>", "<Quantity>x</Quantity>&nope;<Quantity>"},
};

class StreamingOrders : public ::testing::TestWithParam<Fault> {};

TEST_P(StreamingOrders, FaultsEndAsTheTreePathDoes) {
    const std::string book = ExampleBook();
    ASSERT_GT(book.size(), 200000u);
    const Fault& fault = GetParam();
    CXmlSerializationContext strict, lenient;
    lenient.SetIgnoreUnknownElements(true);
    lenient.SetIgnoreUnknownAttributes(true);
    // Near the start, inside the first and second of Expat's pieces, and at the end.
    for (int n : {0, 1, 100, 300, 450, 632}) {
        const std::string text = Replaced(book, fault.find, fault.replace, n);
        if (text.empty()) continue;
        SCOPED_TRACE(std::to_string(n));
        for (const CXmlSerializationContext* ctx : {&strict, &lenient}) {
            const Outcome tree = Read(text, *ctx, true);
            const Outcome stream = Read(text, *ctx, false);
            EXPECT_EQ(tree.failure, stream.failure);
            EXPECT_EQ(tree.written, stream.written);
        }
    }
}

// The same faults in the Fast Infoset form of the book (those that leave the
// text well formed), whole and cut short after the fault, where the
// decoder's error must win over the binding failure met first.
TEST_P(StreamingOrders, FaultsInFastInfosetEndAsTheTreePathDoes) {
    const std::string book = ExampleBook();
    const Fault& fault = GetParam();
    CXmlSerializationContext strict, lenient;
    lenient.SetIgnoreUnknownElements(true);
    lenient.SetIgnoreUnknownAttributes(true);
    int encoded = 0;
    for (int n : {0, 300, 632}) {
        const std::vector<unsigned char> fi = AsFastInfoset(Replaced(book, fault.find, fault.replace, n));
        if (fi.empty()) continue;
        ++encoded;
        SCOPED_TRACE(std::to_string(n));
        for (const CXmlSerializationContext* ctx : {&strict, &lenient}) {
            EXPECT_EQ(Read(fi, *ctx, true), Read(fi, *ctx, false));
            const std::vector<unsigned char> cut(fi.begin(), fi.end() - 1);
            const Outcome truncated = Read(cut, *ctx, false);
            EXPECT_EQ(Read(cut, *ctx, true), truncated);
            EXPECT_EQ(std::string(typeid(CQmException).name()) + ": Failed to parse FastInfoset. Unexpected End of File.",
                      truncated.failure);
        }
    }
    // Faults that break the text have no Fast Infoset form.
    const bool breaksText = std::string(fault.name).find("Mismatched") != std::string::npos ||
                            std::string(fault.name).find("Entity") != std::string::npos;
    EXPECT_EQ(breaksText ? 0 : 3, encoded);
}

INSTANTIATE_TEST_SUITE_P(Book, StreamingOrders, ::testing::ValuesIn(kFaults),
                         [](const ::testing::TestParamInfo<Fault>& info) { return std::string(info.param.name); });

TEST(StreamingOrdersBook, WholeTruncatedAndJunkEndAlike) {
    const std::string book = ExampleBook();
    const CXmlSerializationContext ctx;
    const Outcome whole = Read(book, ctx, false);
    EXPECT_EQ("", whole.failure);
    EXPECT_EQ(Read(book, ctx, true), whole);
    for (std::size_t cut : {std::size_t{100}, std::size_t{131072}, std::size_t{131073}, book.size() - 3}) {
        EXPECT_EQ(Read(book.substr(0, cut), ctx, true), Read(book.substr(0, cut), ctx, false)) << cut;
    }
    const Outcome junk = Read(book + "<junk/>", ctx, false);
    EXPECT_EQ(Read(book + "<junk/>", ctx, true), junk);
    const std::string tail =
        "junk after document element at line " + std::to_string(std::count(book.begin(), book.end(), '\n') + 1);
    ASSERT_GE(junk.failure.size(), tail.size());
    EXPECT_EQ(tail, junk.failure.substr(junk.failure.size() - tail.size()));
}

TEST(StreamingOrdersBook, FastInfosetWholeTruncatedAndCorruptEndAlike) {
    const std::vector<unsigned char> fi = AsFastInfoset(ExampleBook());
    ASSERT_GT(fi.size(), 50000u);
    const CXmlSerializationContext ctx;
    const Outcome whole = Read(fi, ctx, false);
    EXPECT_EQ("", whole.failure);
    EXPECT_EQ(Read(ExampleBook(), ctx, false), whole);
    EXPECT_EQ(Read(fi, ctx, true), whole);
    for (std::size_t cut = 7; cut < fi.size(); cut += fi.size() / 23) {
        const std::vector<unsigned char> part(fi.begin(), fi.begin() + cut);
        EXPECT_EQ(Read(part, ctx, true), Read(part, ctx, false)) << cut;
        std::vector<unsigned char> corrupt = fi;
        corrupt[cut] = 0xE0;  // no item of the content begins so
        EXPECT_EQ(Read(corrupt, ctx, true), Read(corrupt, ctx, false)) << cut;
    }
}

// Dynamic classes read through the same path: a document that is not well
// formed reports the parser's error even where binding fails first.
TEST(StreamingOrdersBook, DynamicClassesReportTheParserFirst) {
    const std::shared_ptr<const CDynamicClassSet> classes =
        CDynamicClassSet::Create(CSchemaSet::LoadFile(QMXML_SOURCE_DIR "/bench/orders.xsd"));
    const std::string book = ExampleBook();
    const std::string faulty = Replaced(book, "<Quantity>", "<Quantity>x", 3) + "<junk/>";
    auto message = [&](const std::string& text) {
        try {
            classes->ReadBuffer(text.data(), text.size());
        } catch (const CQmException& e) {
            return e.GetFullMessage();
        }
        return std::string();
    };
    EXPECT_EQ("junk after document element at line " + std::to_string(std::count(book.begin(), book.end(), '\n') + 1),
              message(faulty));
    const std::string invalid = message(Replaced(book, "<Quantity>", "<Quantity>x", 3));
    EXPECT_NE(std::string::npos, invalid.find("Failed to process the element [Orders]")) << invalid;
    EXPECT_EQ("", message(book));

    // As Fast Infoset: the bad quantity, then a second document element.
    std::vector<unsigned char> fi = AsFastInfoset(Replaced(book, "<Quantity>", "<Quantity>x", 3));
    ASSERT_FALSE(fi.empty());
    const std::string fiInvalid = message(std::string(fi.begin(), fi.end()));
    EXPECT_EQ(invalid, fiInvalid);
    if (fi.back() == 0xF0) {
        fi.back() = 0x00;
    } else {
        fi.back() = 0xF0;  // an 0xFF ended the element and the document at once
        fi.push_back(0x00);
    }
    EXPECT_EQ("Failed to parse FastInfoset. Invalid Encoding of Element type.",
              message(std::string(fi.begin(), fi.end())));
}

}  // namespace
