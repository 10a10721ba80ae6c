// Binding while parsing against binding a loaded tree: every FromXml... entry
// point must end exactly as loading the whole document and then binding it
// would (same exception class and message chain, same objects), whatever the
// input: valid, invalid, not well formed after an invalid part, truncated,
// deeply nested, compressed, UTF-16 or Fast Infoset.
#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <typeinfo>
#include <vector>

#include "binding/stream_compare.h"
#include "binding_classes.h"

namespace {

using namespace focus;
using streamcompare::Outcome;

using Factory = std::function<CSmartPtr<CXmlObjectBase>()>;

enum Switch {
    kStrict = 0,
    kUnknownElements = 1,
    kMissingMandatory = 2,
    kMissingChoice = 4,
    kCollectionCounts = 8,
    kUnknownAttributes = 16,
    kNamespaces = 32,
    kNoNamespaces = 64,
};

CXmlSerializationContext Context(int switches) {
    CXmlSerializationContext ctx;
    ctx.SetIgnoreUnknownElements((switches & kUnknownElements) != 0);
    ctx.SetIgnoreMissingMandatoryElements((switches & kMissingMandatory) != 0);
    ctx.SetIgnoreMissingChoice((switches & kMissingChoice) != 0);
    ctx.SetIgnoreInvalidCollectionCounts((switches & kCollectionCounts) != 0);
    ctx.SetIgnoreUnknownAttributes((switches & kUnknownAttributes) != 0);
    ctx.SetIgnoreNamespaces((switches & kNamespaces) != 0);
    if ((switches & kNoNamespaces) != 0) ctx.SetSchemaType(SchemaType_NoNamespaces);
    return ctx;
}

template <class T>
Factory Make() {
    return [] { return CSmartPtr<CXmlObjectBase>(new T()); };
}

std::vector<unsigned char> Bytes(const std::string& text) { return std::vector<unsigned char>(text.begin(), text.end()); }

// Both ways, checked equal; returns the outcome for further assertions.
Outcome ExpectSame(const Factory& make, const std::vector<unsigned char>& bytes, const CXmlSerializationContext& ctx) {
    CSmartPtr<CXmlObjectBase> tree = make();
    CSmartPtr<CXmlObjectBase> stream = make();
    const Outcome expected = streamcompare::ThroughTree(*tree, bytes, ctx);
    const Outcome actual = streamcompare::WhileParsing(*stream, bytes, ctx);
    EXPECT_EQ(expected.failure, actual.failure);
    EXPECT_EQ(expected.written, actual.written);
    return actual;
}

struct Case {
    const char* name;
    Factory make;
    int switches;
    std::string document;
    // The innermost message expected of both paths ("" when the read succeeds).
    const char* innermost;
};

// Test names, not byte dumps, in gtest's output.
void PrintTo(const Case& c, std::ostream* os) { *os << c.name; }

const std::string kF = " xmlns=\"urn:f\"";

std::string Deep(int depth, const std::string& open, const std::string& close) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += open;
    for (int i = 0; i < depth; ++i) text += close;
    return text;
}

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"AllGroupValid", Make<Person>(), kStrict,
         "<Person" + kF + " level=\"high\"><Age>41</Age><Name>Kim</Name><Nick>a</Nick></Person>", ""},
        {"UnknownElementThenJunkAfterRoot", Make<Person>(), kStrict,
         "<Person" + kF + "><Bogus/><Name>K</Name><Age>1</Age></Person><junk/>", "junk after document element at line 1"},
        {"BadValueThenMismatchedTag", Make<Person>(), kStrict,
         "<Person" + kF + "><Name>K</Name><Age>x</Age><Email>e</Emial></Person>", "mismatched tag at line 1"},
        {"BadValueThenTruncated", Make<Person>(), kStrict, "<Person" + kF + "><Name>K</Name><Age>x</Age>",
         "no element found at line 1"},
        {"MismatchedTagBeforeBadValue", Make<Person>(), kStrict,
         "<Person" + kF + "><Name>K</Nme><Age>x</Age></Person>", "mismatched tag at line 1"},
        {"WrongRootThenUndefinedEntity", Make<Person>(), kStrict, "<Nobody" + kF + ">&nope;</Nobody>",
         "undefined entity at line 1"},
        {"WrongRoot", Make<Person>(), kStrict, "<Nobody" + kF + "/>",
         "Unexpected root element [Nobody], expected [Person]"},
        {"MissingMandatory", Make<Person>(), kStrict, "<Person" + kF + "><Age>3</Age></Person>", nullptr},
        {"MissingMandatoryIgnored", Make<Person>(), kMissingMandatory, "<Person" + kF + " level=\"low\"><Age>3</Age></Person>",
         "Failed to find the mandatory element [Name]"},
        {"UnknownAttribute", Make<Person>(), kStrict,
         "<Person" + kF + " bogus=\"1\"><Name>K</Name><Age>1</Age></Person>", "Unexpected Attribute [bogus] found."},
        {"UnknownAttributeIgnored", Make<Person>(), kUnknownAttributes,
         "<Person" + kF + " level=\"low\" bogus=\"1\"><Name>K</Name><Age>1</Age></Person>", ""},
        {"OtherNamespace", Make<Person>(), kStrict, "<Person xmlns=\"urn:x\"><Name>K</Name><Age>1</Age></Person>",
         "Unexpected root element [Person], expected [Person]"},
        {"OtherNamespaceIgnored", Make<Person>(), kNamespaces,
         "<Person xmlns=\"urn:x\" level=\"low\"><Name>K</Name><Age>1</Age></Person>", ""},
        {"UnknownElementsEverywhere", Make<Market>(), kUnknownElements,
         "<Market" + kF + "><X/><Basket><Y><Z/></Y><Fruit><Name>a</Name><Q>" + Deep(50, "<d>", "</d>") +
             "</Q></Fruit><R/><Fruit><Name>b</Name><Origin>ES</Origin></Fruit></Basket><S/></Market>",
         ""},
        {"UnknownElementStrict", Make<Market>(), kStrict,
         "<Market" + kF + "><Basket><Fruit><Name>a</Name><Q/></Fruit></Basket></Market>", nullptr},
        {"FacetBrokenDeepInside", Make<Market>(), kStrict,
         "<Market" + kF + "><Basket><Fruit><Name>a</Name><Origin>es</Origin></Fruit></Basket></Market>", nullptr},
        {"TooManyItems", Make<Market>(), kStrict,
         "<Market" + kF + "><Basket><Fruit><Name>a</Name></Fruit><Fruit><Name>b</Name></Fruit><Fruit><Name>c</Name>"
                          "</Fruit></Basket></Market>",
         nullptr},
        {"TooManyItemsIgnored", Make<Market>(), kCollectionCounts,
         "<Market" + kF + "><Basket><Fruit><Name>a</Name></Fruit><Fruit><Name>b</Name></Fruit><Fruit><Name>c</Name>"
                          "</Fruit></Basket></Market>",
         ""},
        {"EmptyChoice", Make<Shipping<false>>(), kStrict, "<Shipping" + kF + "/>", nullptr},
        {"EmptyChoiceIgnored", Make<Shipping<false>>(), kMissingChoice, "<Shipping" + kF + "/>", ""},
        {"ChoiceTwice", Make<Shipping<true>>(), kStrict,
         "<Shipping" + kF + "><Pickup><Store>a</Store></Pickup><Courier><Company>c</Company></Courier></Shipping>",
         nullptr},
        {"NilMembers", Make<Chart>(), kStrict,
         "<Chart" + kF + kXsi + "><Count xsi:nil=\"true\"/><Legend xsi:nil=\"true\"><Text>dropped</Text></Legend>"
                                "<Axis/><Raw xsi:nil=\"true\">r<in/></Raw></Chart>",
         ""},
        {"NilNotNillable", Make<Chart>(), kStrict,
         "<Chart" + kF + kXsi + "><Legend/><Axis xsi:nil=\"true\"/></Chart>", nullptr},
        {"NilBadValue", Make<Chart>(), kStrict,
         "<Chart" + kF + kXsi + "><Legend/><Axis/><Raw xsi:nil=\"maybe\"/></Chart>", nullptr},
        {"WildcardDeepContent", Make<Wild<kAny>>(), kStrict,
         "<Wild" + kF + " xmlns:o=\"urn:o\" o:x=\"1\"><o:E k=\"v\">t" + Deep(20000, "<o:E>", "</o:E>") +
             "</o:E><Tail>t</Tail></Wild>",
         ""},
        {"WildcardDeepAndTruncated", Make<Wild<kAny>>(), kStrict,
         "<Wild" + kF + "><E>" + Deep(5000, "<E>x", "</E>").substr(0, 30000), "no element found at line 1"},
        {"WildcardWrongNamespace", Make<Wild<kOther>>(), kStrict, "<Wild" + kF + "><E/></Wild>", nullptr},
        {"WildcardCollectionTooShort", Make<Bag>(), kStrict, "<Bag" + kF + "><Head/><End>e</End></Bag>", nullptr},
        {"Substitution", Make<Zoo>(), kStrict,
         "<Zoo" + kF + kXsi + "><Cat><Lives>9</Lives></Cat><Pet xsi:type=\"PuppyType\" name=\"p\"/><Dog name=\"d\"/>"
                              "<Animal xsi:type=\"CatType\"/></Zoo>",
         ""},
        {"SubstitutionUnknown", Make<Zoo>(), kStrict, "<Zoo" + kF + "><Horse/></Zoo>", nullptr},
        {"SubstitutionUnknownSkipped", Make<Zoo>(), kUnknownElements, "<Zoo" + kF + "><Horse/><Cat/><Yak/></Zoo>", ""},
        {"InlinedGroups", Make<Window>(), kStrict,
         "<Window" + kF + " id=\"1\" unit=\"px\" opacity=\"5\"><Title>T</Title><Width>3</Width><Height>4</Height>"
                          "<Image>i</Image><Footer>f</Footer></Window>",
         ""},
        {"InlinedSequenceIncomplete", Make<Window>(), kStrict,
         "<Window" + kF + "><Title>T</Title><Width>3</Width><Color>red</Color></Window>", nullptr},
        {"InlinedSequenceIncompleteIgnored", Make<Window>(), kMissingMandatory,
         "<Window" + kF + "><Title>T</Title><Width>3</Width><Color>red</Color><Footer>f</Footer></Window>",
         "Failed to find the required Attribute [unit]"},
        {"InlinedAttributeWithoutContent", Make<Window>(), kStrict,
         "<Window" + kF + " opacity=\"2\"><Title>T</Title><Width>3</Width><Height>4</Height></Window>", nullptr},
        {"SimpleContentWithChild", Make<Reading>(), kStrict, "<Reading" + kF + " unit=\"low\">4<x/>2</Reading>", nullptr},
        {"SimpleContent", Make<Reading>(), kStrict, "<Reading" + kF + " unit=\"low\"> 42 </Reading>", ""},
        {"NoNamespaces", Make<Memo>(), kNoNamespaces, "<Memo x:lang=\"en\"><Body>b</Body><x:Line>1</x:Line></Memo>", ""},
        {"InternalEntity", Make<Person>(), kStrict,
         "<!DOCTYPE Person [<!ENTITY n \"Kim\">]><Person" + kF + " level=\"low\"><Name>&n;</Name><Age>1</Age></Person>", ""},
        {"MixedTextInElementContent", Make<Market>(), kStrict,
         "<Market" + kF + ">text<Basket>more<Fruit><Name>a</Name></Fruit></Basket>tail</Market>", ""},
        {"EmptyInput", Make<Person>(), kStrict, "", nullptr},
        {"TextOnly", Make<Person>(), kStrict, "just text", "syntax error at line 1"},
    };
    return cases;
}

class StreamingCase : public ::testing::TestWithParam<Case> {};

TEST_P(StreamingCase, EndsAsTheTreePathDoes) {
    const Case& c = GetParam();
    const CXmlSerializationContext ctx = Context(c.switches);
    const std::vector<unsigned char> bytes = Bytes(c.document);
    if (bytes.empty()) {
        // Both refuse empty input before any parsing; FromXml takes strings.
        CSmartPtr<CXmlObjectBase> tree = c.make(), stream = c.make();
        const Outcome expected = streamcompare::StringThroughTree(*tree, c.document, ctx);
        EXPECT_EQ(expected, streamcompare::StringWhileParsing(*stream, c.document, ctx));
        EXPECT_NE(expected.failure.find("XML String is empty!"), std::string::npos);
        return;
    }
    const Outcome outcome = ExpectSame(c.make, bytes, ctx);
    if (c.innermost == nullptr) {
        EXPECT_FALSE(outcome.failure.empty());
    } else if (*c.innermost == 0) {
        EXPECT_EQ("", outcome.failure);
    } else {
        const std::string tail = c.innermost;
        ASSERT_GE(outcome.failure.size(), tail.size());
        EXPECT_EQ(tail, outcome.failure.substr(outcome.failure.size() - tail.size())) << outcome.failure;
    }
    // The string entry point agrees too.
    CSmartPtr<CXmlObjectBase> tree = c.make(), stream = c.make();
    EXPECT_EQ(streamcompare::StringThroughTree(*tree, c.document, ctx),
              streamcompare::StringWhileParsing(*stream, c.document, ctx));
}

// Every prefix of the document: the parser's error must win wherever binding
// stops, and what was bound before it must be the same.
TEST_P(StreamingCase, EveryTruncationEndsAlike) {
    const Case& c = GetParam();
    const CXmlSerializationContext ctx = Context(c.switches);
    // Long documents are cut at a hundred places, short ones everywhere.
    const std::size_t step = c.document.size() > 4000 ? c.document.size() / 100 : 1;
    for (std::size_t length = 1; length < c.document.size(); length += step) {
        SCOPED_TRACE(c.document.substr(0, length));
        ExpectSame(c.make, Bytes(c.document.substr(0, length)), ctx);
    }
}

INSTANTIATE_TEST_SUITE_P(Documents, StreamingCase, ::testing::ValuesIn(Cases()),
                         [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

// ------------------------------------------------------------ the cases as Fast Infoset

// The document as Fast Infoset, written by the library's own writer from the
// element tree the text loads into; empty when the text does not load.
std::vector<unsigned char> AsFastInfoset(const std::string& text, const CXmlSerializationContext& ctx) {
    CSmartPtr<CElement> element = new CElement();
    try {
        element->FromXml(text.c_str(), ctx);
    } catch (const CQmException&) {
        return {};
    }
    const CBinaryData fi = element->ToFastInfosetStream(FInfoDecl_None, ctx);
    return std::vector<unsigned char>(fi.GetData(), fi.GetData() + fi.GetLength());
}

// The cases whose text is well formed: only those have a Fast Infoset form.
std::vector<Case> WellFormedCases() {
    std::vector<Case> cases;
    for (const Case& c : Cases()) {
        if (!AsFastInfoset(c.document, Context(c.switches)).empty()) cases.push_back(c);
    }
    return cases;
}

class StreamingFastInfosetCase : public ::testing::TestWithParam<Case> {};

TEST_P(StreamingFastInfosetCase, EndsAsTheTreePathDoes) {
    const Case& c = GetParam();
    const CXmlSerializationContext ctx = Context(c.switches);
    const std::vector<unsigned char> fi = AsFastInfoset(c.document, ctx);
    ASSERT_FALSE(fi.empty());
    const Outcome outcome = ExpectSame(c.make, fi, ctx);
    // Binding sees the same tree as from the text, so it ends the same way.
    CSmartPtr<CXmlObjectBase> fromText = c.make();
    const Outcome text = streamcompare::WhileParsing(*fromText, Bytes(c.document), ctx);
    EXPECT_EQ(text, outcome);
}

// Every prefix of the encoded document, and the document with one octet
// replaced at each place: the decoder's error must win wherever binding
// stopped, and what was bound before it must be the same.
TEST_P(StreamingFastInfosetCase, EveryTruncationAndCorruptionEndsAlike) {
    const Case& c = GetParam();
    const CXmlSerializationContext ctx = Context(c.switches);
    const std::vector<unsigned char> fi = AsFastInfoset(c.document, ctx);
    ASSERT_FALSE(fi.empty());
    const std::size_t step = fi.size() > 2000 ? fi.size() / 100 : 1;
    for (std::size_t length = 1; length < fi.size(); length += step) {
        SCOPED_TRACE("cut at " + std::to_string(length));
        ExpectSame(c.make, std::vector<unsigned char>(fi.begin(), fi.begin() + length), ctx);
    }
    // Past the four identification octets and the version, every octet is
    // structure or content; these values are terminators, an element start
    // of a name that may not exist, and chunk and attribute encodings.
    const std::size_t corruptStep = fi.size() > 2000 ? fi.size() / 25 : 1;
    for (std::size_t at = 5; at < fi.size(); at += corruptStep) {
        for (unsigned char octet : {0x00, 0x1F, 0x3F, 0x7F, 0x80, 0xAF, 0xE0, 0xF0, 0xFF}) {
            if (fi[at] == octet) continue;
            std::vector<unsigned char> corrupt = fi;
            corrupt[at] = octet;
            SCOPED_TRACE("octet " + std::to_string(at) + " set to " + std::to_string(octet));
            ExpectSame(c.make, corrupt, ctx);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Documents, StreamingFastInfosetCase, ::testing::ValuesIn(WellFormedCases()),
                         [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

// A failure as the comparison describes it: exception class, then the full message chain.
template <class Exception>
std::string Failure(const std::string& chain) {
    return std::string(typeid(Exception).name()) + ": " + chain;
}

// A value binding refuses early, then a fault the decoder finds only later.
class FastInfosetFaultAfterInvalidValue : public ::testing::Test {
protected:
    const std::string m_text = "<Person" + kF + " level=\"low\"><Name>K</Name><Age>x</Age><Email>e</Email></Person>";
    const std::vector<unsigned char> m_fi = AsFastInfoset(m_text, CXmlSerializationContext());

    // Both paths, which must agree; their failure.
    std::string Read(const std::vector<unsigned char>& bytes) {
        return ExpectSame(Make<Person>(), bytes, CXmlSerializationContext()).failure;
    }
};

TEST_F(FastInfosetFaultAfterInvalidValue, BindingFailsWhenTheStreamIsSound) {
    ASSERT_FALSE(m_fi.empty());
    EXPECT_EQ(Failure<CQmValidationException>(
                  "Failed to process the element [Person]\n\nThe value [x] can not be converted to a i4"), Read(m_fi));
}

TEST_F(FastInfosetFaultAfterInvalidValue, TruncatedStreamWins) {
    ASSERT_FALSE(m_fi.empty());
    const std::vector<unsigned char> cut(m_fi.begin(), m_fi.end() - 1);
    EXPECT_EQ(Failure<CQmException>("Failed to parse FastInfoset. Unexpected End of File."), Read(cut));
}

TEST_F(FastInfosetFaultAfterInvalidValue, SecondDocumentElementWins) {
    ASSERT_FALSE(m_fi.empty());
    // The document element ended, then a start of a second one (name index 1).
    std::vector<unsigned char> twice = m_fi;
    if (twice.back() == 0xF0) {
        twice.back() = 0x00;
    } else {
        twice.back() = 0xF0;  // an 0xFF ended the element and the document at once
        twice.push_back(0x00);
    }
    EXPECT_EQ(Failure<CQmException>("Failed to parse FastInfoset. Invalid Encoding of Element type."), Read(twice));
}

TEST_F(FastInfosetFaultAfterInvalidValue, ChunkIndexOutOfRangeWins) {
    ASSERT_FALSE(m_fi.empty());
    // The last "e" is the Email value (no name holds one): its chunk octet
    // becomes a reference to the 16th chunk, of three at most.
    std::vector<unsigned char> bad = m_fi;
    const auto e = std::find(bad.rbegin(), bad.rend(), 'e');
    ASSERT_NE(bad.rend(), e);
    *(e + 1) = 0xAF;
    EXPECT_EQ(Failure<CQmException>("Failed to parse FastInfoset. Index out of range."), Read(bad));
}

// ------------------------------------------------------------ other forms of input

const char* const kMarket =
    "<Market xmlns=\"urn:f\"><Basket><Fruit><Name>a</Name><Origin>ES</Origin></Fruit><Fruit><Name>b</Name></Fruit>"
    "<Label>l</Label></Basket></Market>";

std::vector<unsigned char> Deflate(const std::string& text, int windowBits) {
    z_stream zs{};
    EXPECT_EQ(Z_OK, deflateInit2(&zs, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY));
    std::vector<unsigned char> out(deflateBound(&zs, text.size()) + 64);
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    zs.avail_in = static_cast<uInt>(text.size());
    zs.next_out = out.data();
    zs.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(Z_STREAM_END, deflate(&zs, Z_FINISH));
    out.resize(zs.total_out);
    deflateEnd(&zs);
    return out;
}

TEST(StreamingInput, CompressedTextEndsAlike) {
    for (const std::string& text : {std::string(kMarket), std::string(kMarket).substr(0, 60),
                                   std::string(kMarket) + "<more/>"}) {
        for (int windowBits : {15, 31}) {  // zlib and gzip framing
            ExpectSame(Make<Market>(), Deflate(text, windowBits), CXmlSerializationContext());
        }
    }
}

TEST(StreamingInput, Utf16EndsAlike) {
    for (const std::string& text : {std::string(kMarket), std::string(kMarket).substr(0, 80)}) {
        std::vector<unsigned short> units(text.begin(), text.end());
        units.push_back(0);
        CSmartPtr<CXmlObjectBase> tree = new Market(), stream = new Market();
        const CXmlSerializationContext ctx;
        const Outcome expected = streamcompare::Run(*tree, ctx, [&] {
            CXmlDocument document(ctx);
            document.LoadXml(units.data());
            tree->FromXmlElement(document.GetDocumentElement(), ctx);
        });
        EXPECT_EQ(expected, streamcompare::Run(*stream, ctx, [&] { stream->FromXml(units.data(), ctx); }));
    }
}

TEST(StreamingInput, FastInfosetEndsAlike) {
    Market market;
    market.FromXml(kMarket);
    const CBinaryData binary = market.ToFastInfosetStream();
    const std::vector<unsigned char> whole(binary.GetData(), binary.GetData() + binary.GetLength());
    const Outcome outcome = ExpectSame(Make<Market>(), whole, CXmlSerializationContext());
    EXPECT_EQ("", outcome.failure);
    for (std::size_t cut = 5; cut < whole.size(); cut += 7) {
        ExpectSame(Make<Market>(), std::vector<unsigned char>(whole.begin(), whole.begin() + cut),
                   CXmlSerializationContext());
    }
}

class TempFile {
public:
    explicit TempFile(const std::string& contents) {
        char name[] = "/tmp/qmxml_streamXXXXXX";
        const int fd = mkstemp(name);
        if (fd >= 0) close(fd);
        m_path = name;
        std::ofstream(m_path, std::ios::binary) << contents;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    const char* Path() const { return m_path.c_str(); }

private:
    std::string m_path;
};

// Files are read whole or, with AsyncFromXmlFile, in chunks: both while binding.
TEST(StreamingInput, FilesEndAlikeWholeAndInChunks) {
    // Past several chunks of the chunked reader, with the failure at the end.
    const std::string big = "<Wild xmlns=\"urn:f\"><E>" + std::string(300000, 'x') + Deep(2000, "<E>", "</E>") +
                            "</E><Tail>t</Tail><Tail>again</Tail></Wild>";
    for (const std::string& text : {std::string(kMarket), big, big.substr(0, 200000), big + "<junk/>"}) {
        const TempFile file(text);
        for (bool chunks : {false, true}) {
            AsyncFromXmlFile(chunks);
            CSmartPtr<CXmlObjectBase> tree = new Wild<kAny>(), stream = new Wild<kAny>();
            const CXmlSerializationContext ctx;
            const Outcome expected = streamcompare::Run(*tree, ctx, [&] {
                CXmlDocument document(ctx);
                document.Load(file.Path());
                tree->FromXmlElement(document.GetDocumentElement(), ctx);
            });
            EXPECT_EQ(expected, streamcompare::Run(*stream, ctx, [&] { stream->FromXmlFile(file.Path(), ctx); }));
            AsyncFromXmlFile(false);
        }
    }
}

// Compressed Fast Infoset is decoded from the inflated bytes, which the
// document keeps while binding reads on; files likewise from their contents.
TEST(StreamingInput, CompressedFastInfosetAndFilesEndAlike) {
    const CXmlSerializationContext ctx;
    const std::vector<unsigned char> fi = AsFastInfoset(kMarket, ctx);
    ASSERT_FALSE(fi.empty());
    const std::string whole(fi.begin(), fi.end());
    for (const std::string& bytes : {whole, whole.substr(0, whole.size() / 2), whole.substr(0, whole.size() - 1)}) {
        for (int windowBits : {15, 31}) {
            ExpectSame(Make<Market>(), Deflate(bytes, windowBits), ctx);
        }
        const std::vector<unsigned char> gzip = Deflate(bytes, 31);
        const TempFile plain(bytes), compressed(std::string(gzip.begin(), gzip.end()));
        for (const TempFile* file : {&plain, &compressed}) {
            CSmartPtr<CXmlObjectBase> tree = new Market(), stream = new Market();
            const Outcome expected = streamcompare::Run(*tree, ctx, [&] {
                CXmlDocument document(ctx);
                document.Load(file->Path());
                tree->FromXmlElement(document.GetDocumentElement(), ctx);
            });
            const Outcome actual = streamcompare::Run(*stream, ctx, [&] { stream->FromXmlFile(file->Path(), ctx); });
            EXPECT_EQ(expected, actual);
            if (bytes.size() == whole.size()) {
                EXPECT_EQ("", actual.failure);
            }
        }
    }
}

// A tree the application loaded keeps all of its elements after binding.
TEST(StreamingInput, LoadedTreeIsLeftWhole) {
    CXmlDocument document;
    document.LoadXml(kMarket);
    Market market;
    market.FromXmlElement(document.GetDocumentElement());
    const CXmlElement* basket = document.GetDocumentElement()->GetFirstElement();
    ASSERT_NE(nullptr, basket);
    int fruits = 0;
    for (const CXmlElement* e = basket->GetFirstElement(); e; e = e->GetNextSiblingElement()) ++fruits;
    EXPECT_EQ(3, fruits);
    EXPECT_EQ("ES", basket->GetFirstElement()->GetFirstElement()->GetNextSiblingElement()->GetText());
}

// ------------------------------------------------------------ the fuzz seeds

// The binding fuzzer's seeds: the first byte picks the class and the
// switches as bind_fuzzer.cpp does (the order book is tested with its own classes).
TEST(StreamingCorpus, BindSeedsAndTheirTruncationsEndAlike) {
    const std::vector<Factory> classes = {
        nullptr,          Make<Person>(),        Make<Shipping<false>>(), Make<Shipping<true>>(),
        Make<Zoo>(),      Make<Wild<kAny>>(),    Make<Wild<kOther>>(),    Make<Wild<kLocal>>(),
        Make<Wild<kTarget>>(), Make<Wild<kList>>(), Make<Bag>(),          Make<Chart>(),
        Make<Window>(),   Make<Market>(),        Make<Reading>(),         Make<Memo>()};
    const std::string dir = std::string(QMXML_SOURCE_DIR) + "/fuzz/corpus/bind/";
    int seeds = 0;
    for (const char* name : {"bag.xml", "bag_loose.xml", "chart.fi", "chart.xml", "chart_loose.xml", "market.fi",
                             "market.xml", "market_loose.xml", "memo.xml", "memo_loose.xml", "person.xml",
                             "person_cdata.xml", "person_loose.xml", "reading.xml", "reading_loose.xml",
                             "shipping.xml", "shipping_drones.xml", "shipping_drones_loose.xml", "shipping_loose.xml",
                             "wild_any.xml", "wild_any_loose.xml", "wild_list.xml", "wild_local.xml",
                             "wild_other.xml", "wild_target.xml", "window.xml", "window_loose.xml", "zoo.xml",
                             "zoo_loose.xml"}) {
        std::ifstream in(dir + name, std::ios::binary);
        if (!in) continue;
        const std::string seed((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (seed.size() < 2) continue;
        ++seeds;
        const unsigned char mode = static_cast<unsigned char>(seed[0]);
        const int leniency = (mode >> 4) & 3;
        int switches = leniency == 1 ? kUnknownElements
                       : leniency == 2 ? kMissingMandatory
                       : leniency == 3 ? kMissingChoice | kCollectionCounts
                                       : kStrict;
        if ((mode & 64) != 0) switches |= kUnknownAttributes;
        if ((mode & 128) != 0) switches |= (mode & 15) == 15 ? kNoNamespaces : kNamespaces;
        const Factory& make = classes[mode & 15];
        if (!make) continue;
        const CXmlSerializationContext ctx = Context(switches);
        for (std::size_t length = 2; length <= seed.size(); ++length) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(length));
            ExpectSame(make, std::vector<unsigned char>(seed.begin() + 1, seed.begin() + length), ctx);
        }
    }
    if (seeds == 0) GTEST_SKIP() << "the fuzz seeds are not beside the tests";
}

}  // namespace
