#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <qmxml/collections/element.h>
#include <qmxml/core/exception.h>
#include <qmxml/core/serialization_context.h>
#include <qmxml/fastinfoset/fi_writer.h>

#include "fastinfoset/fi_layouts.h"
#include "expect_throw.h"

using namespace QmXmlLib10;

namespace {

using Octets = std::vector<unsigned char>;
const Octets kHeader = {0xE0, 0x00, 0x00, 0x01, 0x00};

Octets Write(const std::function<void(CFastInfosetWriter&)>& body, const CFastInfosetContext& context = {},
             FInfoDecl declaration = FInfoDecl_None) {
    CBinaryData out;
    {
        CFastInfosetWriter writer(out, context, declaration);
        writer.StartDocument();
        body(writer);
        writer.EndDocument();
    }
    return Octets(out.GetData(), out.GetData() + out.GetLength());
}

// The octets after the plain header.
Octets Body(const std::function<void(CFastInfosetWriter&)>& body, const CFastInfosetContext& context = {}) {
    const Octets all = Write(body, context);
    EXPECT_TRUE(std::equal(kHeader.begin(), kHeader.end(), all.begin()));
    return Octets(all.begin() + kHeader.size(), all.end());
}

Octets Cat(std::initializer_list<Octets> parts) {
    Octets out;
    for (const Octets& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

Octets Text(const std::string& s) { return Octets(s.begin(), s.end()); }

using qmxml_test::MessageOf;

Octets Layout(void (*layout)(std::string&, unsigned char, std::uint32_t), unsigned char high, std::uint32_t v) {
    std::string out;
    layout(out, high, v);
    return Octets(out.begin(), out.end());
}

void Element(CFastInfosetWriter& w, const char* name, const char* text = nullptr) {
    w.StartElement(name, "");
    if (text) w.WriteText(text);
    w.EndElement();
}

}  // namespace

TEST(FastInfosetLayouts, IntegersAtEveryRangeBoundary) {
    using namespace fi_layout;
    EXPECT_EQ(Layout(IntegerBit2, 0x80, 1), (Octets{0x80}));
    EXPECT_EQ(Layout(IntegerBit2, 0x80, 64), (Octets{0xBF}));
    EXPECT_EQ(Layout(IntegerBit2, 0x80, 65), (Octets{0xC0, 0x00}));
    EXPECT_EQ(Layout(IntegerBit2, 0x00, 8256), (Octets{0x5F, 0xFF}));
    EXPECT_EQ(Layout(IntegerBit2, 0x00, 8257), (Octets{0x60, 0x00, 0x00}));
    EXPECT_EQ(Layout(IntegerBit2, 0x80, 1048576), (Octets{0xEF, 0xDF, 0xBF}));
    EXPECT_EQ(Layout(IntegerZeroBit2, 0x80, 0), (Octets{0xFF}));
    EXPECT_EQ(Layout(IntegerZeroBit2, 0x80, 1), (Octets{0x80}));

    EXPECT_EQ(Layout(IntegerBit3, 0x40, 1), (Octets{0x40}));
    EXPECT_EQ(Layout(IntegerBit3, 0x40, 32), (Octets{0x5F}));
    EXPECT_EQ(Layout(IntegerBit3, 0x40, 33), (Octets{0x60, 0x00}));
    EXPECT_EQ(Layout(IntegerBit3, 0x00, 2080), (Octets{0x27, 0xFF}));
    EXPECT_EQ(Layout(IntegerBit3, 0x00, 2081), (Octets{0x28, 0x00, 0x00}));
    EXPECT_EQ(Layout(IntegerBit3, 0x00, 526368), (Octets{0x2F, 0xFF, 0xFF}));
    // From here one less than the standard's offset, as required.
    EXPECT_EQ(Layout(IntegerBit3, 0x00, 526369), (Octets{0x30, 0x00, 0x00, 0x01}));
    EXPECT_EQ(Layout(IntegerBit3, 0x40, 1048576), (Octets{0x70, 0x07, 0xF7, 0xE0}));

    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 1), (Octets{0xA0}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 16), (Octets{0xAF}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 17), (Octets{0xB0, 0x00}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 1040), (Octets{0xB3, 0xFF}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 1041), (Octets{0xB4, 0x00, 0x00}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 263184), (Octets{0xB7, 0xFF, 0xFF}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 263185), (Octets{0xB8, 0x00, 0x00, 0x00}));
    EXPECT_EQ(Layout(IntegerBit4, 0xA0, 1048576), (Octets{0xB8, 0x0B, 0xFB, 0xEF}));
}

TEST(FastInfosetLayouts, LengthsAtEveryRangeBoundary) {
    using namespace fi_layout;
    EXPECT_EQ(Layout(LengthBit2, 0x00, 1), (Octets{0x00}));
    EXPECT_EQ(Layout(LengthBit2, 0x00, 64), (Octets{0x3F}));
    EXPECT_EQ(Layout(LengthBit2, 0x00, 65), (Octets{0x40, 0x00}));
    EXPECT_EQ(Layout(LengthBit2, 0x00, 320), (Octets{0x40, 0xFF}));
    EXPECT_EQ(Layout(LengthBit2, 0x00, 321), (Octets{0x60, 0, 0, 0, 0}));
    EXPECT_EQ(Layout(LengthBit2, 0x00, 0x01000140), (Octets{0x60, 0x00, 0xFF, 0xFF, 0xFF}));

    EXPECT_EQ(Layout(LengthBit5, 0x40, 1), (Octets{0x40}));
    EXPECT_EQ(Layout(LengthBit5, 0x40, 8), (Octets{0x47}));
    EXPECT_EQ(Layout(LengthBit5, 0x40, 9), (Octets{0x48, 0x00}));
    EXPECT_EQ(Layout(LengthBit5, 0x00, 264), (Octets{0x08, 0xFF}));
    EXPECT_EQ(Layout(LengthBit5, 0x30, 265), (Octets{0x3C, 0, 0, 0, 0}));
    EXPECT_EQ(Layout(LengthBit5, 0x00, 70000), (Octets{0x0C, 0x00, 0x01, 0x10, 0x67}));

    EXPECT_EQ(Layout(LengthBit7, 0x90, 1), (Octets{0x90}));
    EXPECT_EQ(Layout(LengthBit7, 0x90, 2), (Octets{0x91}));
    EXPECT_EQ(Layout(LengthBit7, 0x80, 3), (Octets{0x82, 0x00}));
    EXPECT_EQ(Layout(LengthBit7, 0x80, 258), (Octets{0x82, 0xFF}));
    EXPECT_EQ(Layout(LengthBit7, 0x80, 259), (Octets{0x83, 0, 0, 0, 0}));
}

TEST(FastInfosetWriter, HeaderDeclarationsAndVocabulary) {
    const auto empty = [](CFastInfosetWriter& w) { Element(w, "a"); };
    EXPECT_EQ(Write(empty), (Octets{0xE0, 0x00, 0x00, 0x01, 0x00, 0x3C, 0x00, 0x61, 0xFF}));
    const char* texts[] = {
        "<?xml encoding='finf'?>",
        "<?xml encoding='finf' standalone='yes'?>",
        "<?xml encoding='finf' standalone='no'?>",
        "<?xml version='1.0' encoding='finf'?>",
        "<?xml version='1.0' encoding='finf' standalone='yes'?>",
        "<?xml version='1.0' encoding='finf' standalone='no'?>",
        "<?xml version='1.1' encoding='finf'?>",
        "<?xml version='1.1' encoding='finf' standalone='yes'?>",
        "<?xml version='1.1' encoding='finf' standalone='no'?>",
    };
    for (int d = 1; d <= 9; ++d) {
        EXPECT_EQ(Write(empty, {}, static_cast<FInfoDecl>(d)),
                  Cat({Text(texts[d - 1]), {0xE0, 0x00, 0x00, 0x01, 0x00, 0x3C, 0x00, 0x61, 0xFF}}))
            << d;
    }
    EXPECT_EQ(MessageOf([&] { Write(empty, {}, static_cast<FInfoDecl>(10)); }),
              "Invalid Fast Infoset declaration [10]");

    // The generated vocabulary: its URI in the header, its names by index.
    CFastInfosetContext context;
    context.SetUseGeneratedVocabulary(true);
    const std::string uri = CFastInfosetWriter::DefaultVocabularyURI;
    EXPECT_EQ(Write(empty, context), Cat({{0xE0, 0x00, 0x00, 0x01, 0x20, 0x10, 0x00,
                                           static_cast<unsigned char>(uri.size() - 1)},
                                          Text(uri),
                                          {0x3C, 0x00, 0x61, 0xFF}}));
    context.SetExternalVocabularyURI("urn:v");
    for (int i = 0; i < 32; ++i) context.GetVocabulary()->AddElement("", "", "e" + std::to_string(i));
    context.GetVocabulary()->AddElement("", "", "a");
    context.GetVocabulary()->AddAttributeValue("v");
    EXPECT_EQ(Write(
                  [](CFastInfosetWriter& w) {
                      w.StartElement("e31", "");
                      w.WriteAttribute("x", "", "v");
                      Element(w, "a");
                      w.EndElement();
                  },
                  context),
              (Octets{0xE0, 0x00, 0x00, 0x01, 0x20, 0x10, 0x00, 0x04, 'u', 'r', 'n', ':', 'v',
                      0x5F,                  // e31: index 32 on the third bit, with attributes
                      0x78, 0x00, 'x', 0x80,  // literal attribute name, value "v" by index 1
                      0xF0,
                      0x20, 0x00,  // a: index 33, second range of the third bit
                      0xFF, 0xF0}));
    EXPECT_EQ(context.GetVocabulary()->GetLocalNamesTable().GetCount(), 33u);  // the writer's copy grew
}

TEST(FastInfosetWriter, TerminatorsMerge) {
    EXPECT_EQ(Body([](CFastInfosetWriter& w) {
                  w.StartElement("a", "");
                  Element(w, "b");
                  w.EndElement();
              }),
              (Octets{0x3C, 0x00, 'a', 0x3C, 0x00, 'b', 0xFF, 0xF0}));
    EXPECT_EQ(Body([](CFastInfosetWriter& w) {
                  w.StartElement("a", "");
                  Element(w, "b");
                  Element(w, "b", "x");
                  w.StartElement("c", "");
                  Element(w, "d");
                  w.EndElement();
                  w.WriteText("y");
                  w.EndElement();
              }),
              (Octets{0x3C, 0x00, 'a', 0x3C, 0x00, 'b', 0xF0, 0x01, 0x90, 'x', 0xF0,  // b again by index 1
                      0x3C, 0x00, 'c', 0x3C, 0x00, 'd', 0xFF, 0x90, 'y', 0xFF}));
    // No element at all: the document's terminator alone.
    EXPECT_EQ(Body([](CFastInfosetWriter&) {}), (Octets{0xF0}));
    EXPECT_EQ(MessageOf([] { Write([](CFastInfosetWriter& w) { w.StartElement("a", ""); }); }),
              "An Element has not been closed.");
    EXPECT_EQ(MessageOf([] { Write([](CFastInfosetWriter& w) { w.EndElement(); }); }),
              "An Element has not been opened.");
}

TEST(FastInfosetWriter, AttributesAndTheirValues) {
    EXPECT_EQ(Body([](CFastInfosetWriter& w) {
                  w.StartElement("a", "");
                  w.WriteAttribute("k", "", "abcde");
                  w.WriteAttribute("e", "", "");
                  w.WriteAttribute("l", CXmlWriter::XmlNamespaceURI, "abcdef");
                  w.StartElement("a", "");
                  w.WriteAttribute("k", "", "abcde");
                  w.WriteAttribute("l", CXmlWriter::XmlNamespaceURI, "abcdef");
                  w.EndElement();
                  w.EndElement();
              }),
              Cat({{0x7C, 0x00, 'a'},
                   {0x78, 0x00, 'k', 0x44}, Text("abcde"),  // added: fewer than 6 bytes
                   {0x78, 0x00, 'e', 0xFF},                 // empty: index zero
                   {0x7B, 0x80, 0x80, 0x00, 'l', 0x05}, Text("abcdef"),  // xml:l, not added
                   {0xF0},
                   {0x40, 0x00, 0x80, 0x02, 0x05}, Text("abcdef"),  // names and "abcde" by index
                   {0xF0, 0xFF, 0xF0}}));
    // Value lengths on the fifth bit.
    for (std::uint32_t n : {8u, 9u, 264u, 265u}) {
        const std::string value(n, 'v');
        std::string layout;
        fi_layout::LengthBit5(layout, 0x00, n);
        EXPECT_EQ(Body([&](CFastInfosetWriter& w) {
                      w.StartElement("a", "");
                      w.WriteAttribute("k", "", value.c_str());
                      w.EndElement();
                  }),
                  Cat({{0x7C, 0x00, 'a', 0x78, 0x00, 'k'}, Text(layout), Text(value), {0xF0, 0xFF}}))
            << n;
    }
    EXPECT_EQ(MessageOf([] {
                  Write([](CFastInfosetWriter& w) {
                      w.StartElement("a", "");
                      w.WriteText("t");
                      w.WriteAttribute("k", "", "v");
                  });
              }),
              "Attributes must be added before elements");
    EXPECT_EQ(MessageOf([] { Write([](CFastInfosetWriter& w) { w.WriteAttribute("k", "", "v"); }); }),
              "An Element has not been opened.");
}

TEST(FastInfosetWriter, AddLengthLimits) {
    const auto twice = [](const char* text) {
        return [text](CFastInfosetWriter& w) {
            w.StartElement("a", "");
            Element(w, "b", text);
            Element(w, "b", text);
            w.EndElement();
        };
    };
    const Octets open = {0x3C, 0x00, 'a', 0x3C, 0x00, 'b'};
    EXPECT_EQ(Body(twice("abcde")),
              Cat({open, {0x92, 0x02}, Text("abcde"), {0xF0, 0x01, 0xA0, 0xFF, 0xF0}}));
    EXPECT_EQ(Body(twice("abcdef")), Cat({open, {0x82, 0x03}, Text("abcdef"), {0xF0, 0x01, 0x82, 0x03},
                                          Text("abcdef"), {0xFF, 0xF0}}));
    CFastInfosetContext context;
    context.SetElementMaxAddLength(7);
    context.SetAttributeMaxAddLength(0);
    EXPECT_EQ(Body(twice("abcdef"), context),
              Cat({open, {0x92, 0x03}, Text("abcdef"), {0xF0, 0x01, 0xA0, 0xFF, 0xF0}}));
    EXPECT_EQ(Body(
                  [](CFastInfosetWriter& w) {
                      w.StartElement("a", "");
                      w.WriteAttribute("k", "", "v");
                      w.EndElement();
                  },
                  context),
              (Octets{0x7C, 0x00, 'a', 0x78, 0x00, 'k', 0x00, 'v', 0xF0, 0xFF}));
    // Bytes, not characters, count: two characters of UTF-8 in five bytes.
    CFastInfosetContext three;
    three.SetElementMaxAddLength(5);
    EXPECT_EQ(Body(twice("\xC3\xA9\xE2\x82\xAC")),
              Cat({open, {0x92, 0x02}, Text("\xC3\xA9\xE2\x82\xAC"), {0xF0, 0x01, 0xA0, 0xFF, 0xF0}}));
    EXPECT_EQ(Body(twice("\xC3\xA9\xE2\x82\xAC"), three)[6], 0x82);  // five bytes: not fewer than 5
    // Chunk lengths on the seventh bit.
    for (std::uint32_t n : {2u, 3u, 258u, 259u}) {
        const std::string value(n, 't');
        std::string layout;
        fi_layout::LengthBit7(layout, n < 6 ? 0x90 : 0x80, n);
        EXPECT_EQ(Body([&](CFastInfosetWriter& w) { Element(w, "a", value.c_str()); }),
                  Cat({{0x3C, 0x00, 'a'}, Text(layout), Text(value), {0xFF}}))
            << n;
    }
}

TEST(FastInfosetWriter, TypedValuesThroughTheEncodingTable) {
    CFastInfosetContext context;
    context.SetSuggestedValues();
    struct Row {
        ItemType type;
        const char* text;
        Octets chunk;  // after the element's name
    };
    const Row rows[] = {
        {ItemType_hexBinary, "0AFF", {0x9C, 0x01, 0x0A, 0xFF}},
        {ItemType_base64Binary, "AQID", {0x9C, 0x06, 0x00, 0x01, 0x02, 0x03}},
        {ItemType_i1, "-2", {0x9C, 0x09, 0xFF, 0xFE}},
        {ItemType_ui2, "65535", {0x9C, 0x0E, 0x01, 0x00, 0x00, 0xFF, 0xFF}},
        {ItemType_i8, "-1", {0x9C, 0x12, 0x05, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {ItemType_boolean, "true", {0x9C, 0x14, 0x38}},
        {ItemType_r4, "1.5", {0x9C, 0x1A, 0x01, 0x3F, 0xC0, 0x00, 0x00}},
        {ItemType_r8, "-2", {0x9C, 0x1E, 0x05, 0xC0, 0, 0, 0, 0, 0, 0, 0}},
        {ItemType_string, "12", {0x91, '1', '2'}},
        {ItemType_duration, "P1D", {0x92, 0x00, 'P', '1', 'D'}},
        // Restricted alphabets: 4-bit positions, an odd count padded with 0xF.
        {ItemType_date, "2024-08-08", {0x88, 0x06, 0x02, 0x20, 0x24, 0xA0, 0x8A, 0x08}},
        {ItemType_integer, "-1", {0x98, 0x00, 0xA1}},
        {ItemType_decimal, "1.5e3", {0x98, 0x02, 0x00, 0x1C, 0x5D, 0x3F}},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(Body(
                      [&](CFastInfosetWriter& w) {
                          w.StartElement("a", "");
                          w.WriteText(r.text, r.type);
                          w.EndElement();
                      },
                      context),
                  Cat({{0x3C, 0x00, 'a'}, r.chunk, {0xFF}}))
            << r.type;
    }
    // Attribute values: the table index crosses into the next octet at bit 5.
    EXPECT_EQ(Body(
                  [](CFastInfosetWriter& w) {
                      w.StartElement("a", "");
                      w.WriteAttribute("n", "", "12", ItemType_i4);
                      w.WriteAttribute("t", "", "12:30", ItemType_time);
                      w.WriteAttribute("u", "", "12", ItemType_i4);
                      w.EndElement();
                  },
                  context),
              (Octets{0x7C, 0x00, 'a', 0x78, 0x00, 'n', 0x70, 0x33, 0x00, 0x00, 0x00, 0x0C,
                      0x78, 0x00, 't', 0x60, 0x12, 0x12, 0xB3, 0x0F,  // alphabet 2, three octets
                      0x78, 0x00, 'u', 0x80,                           // "12" again by index
                      0xF0, 0xFF}));

    const auto chunkError = [&](ItemType type, const char* text, const CFastInfosetContext& c) {
        return MessageOf([&] {
            Write(
                [&](CFastInfosetWriter& w) {
                    w.StartElement("a", "");
                    w.WriteText(text, type);
                },
                c);
        });
    };
    const auto attributeError = [&](ItemType type, const char* text, const CFastInfosetContext& c) {
        return MessageOf([&] {
            Write(
                [&](CFastInfosetWriter& w) {
                    w.StartElement("a", "");
                    w.WriteAttribute("k", "", text, type);
                    w.EndElement();
                },
                c);
        });
    };
    EXPECT_EQ(chunkError(ItemType_decimal, "1.5E3", context),
              "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
    EXPECT_EQ(chunkError(ItemType_i4, "x", context), "The value [x] can not be converted to a i4");
    EXPECT_EQ(chunkError(ItemType_ui8, "18446744073709551615", context),
              "The value [18446744073709551615] is to large to fit in a i8");
    CFastInfosetContext bad;
    bad.SetEncoding(ItemType_string, {1, 3});
    bad.SetEncoding(ItemType_char, {2, 11});
    bad.SetEncoding(ItemType_i4, {3, 0});
    EXPECT_EQ(chunkError(ItemType_string, "1", bad), "Failed to write FastInfoset. Invalid Restricted Alphabet value [3]");
    EXPECT_EQ(chunkError(ItemType_char, "1", bad), "Failed to write FastInfoset. Invalid Encoding Algorithm value [11]");
    EXPECT_EQ(chunkError(ItemType_i4, "1", bad), "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.");
    EXPECT_EQ(attributeError(ItemType_i4, "1", bad),
              "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.");
    // Base64 text that does not decode has no octets: it goes out as text.
    EXPECT_EQ(Body(
                  [](CFastInfosetWriter& w) {
                      w.StartElement("a", "");
                      w.WriteText("**", ItemType_base64Binary);
                      w.EndElement();
                  },
                  context),
              (Octets{0x3C, 0x00, 'a', 0x91, '*', '*', 0xFF}));
}

TEST(FastInfosetWriter, NamespacesAndPrefixes) {
    // Default namespace and an alias on the root; a generated prefix where needed.
    EXPECT_EQ(Body([](CFastInfosetWriter& w) {
                  w.SetDefaultNamespace("urn:d");
                  w.AddNamespaceAlias("p", "urn:p");
                  w.StartElement("r", "urn:d");
                  w.AddNamespaceAlias("q", "urn:q");  // too late: ignored
                  w.WriteAttribute("x", "urn:x", "1");
                  w.StartElement("c", "urn:p");
                  w.WriteTypeAttribute("t");
                  w.EndElement();
                  Element(w, "n");  // no namespace: undeclares the default
                  w.StartElement("c", "urn:q");
                  w.WriteNilAttribute();
                  w.EndElement();
                  w.EndElement();
              }),
              Cat({{0x78, 0xCD, 0x04}, Text("urn:d"),
                   {0xCF, 0x00, 'p', 0x04}, Text("urn:p"),
                   {0xCF, 0x01, 'A', 'A', 0x04}, Text("urn:x"),
                   {0xF0, 0x3D, 0x81, 0x00, 'r'},            // r in the default namespace: no prefix
                   {0x7B, 0x82, 0x83, 0x00, 'x', 0x40, '1'},  // AA:x
                   {0xF0},
                   // AA is in scope from the root, so xsi gets AB here
                   {0x78, 0xCF, 0x01, 'A', 'B', 0x28}, Text("http://www.w3.org/2001/XMLSchema-instance"),
                   {0xF0, 0x3F, 0x81, 0x82, 0x00, 'c'},  // p:c by the prefix and namespace indexes
                   {0x7B, 0x83, 0x84, 0x03}, Text("type"), {0x40, 't'},
                   {0xF0, 0xF0},
                   {0x38, 0xCC, 0xF0, 0x3C, 0x00, 'n'},
                   {0xF0},
                   // AB went out of scope with p:c: now urn:q's, and xsi gets AC
                   {0x78, 0xCF, 0x83, 0x04}, Text("urn:q"),
                   {0xCF, 0x01, 'A', 'C', 0x84, 0xF0},
                   {0x3F, 0x83, 0x85, 0x82},  // AB:c, all by index
                   {0x7B, 0x84, 0x84, 0x02}, Text("nil"), {0x43}, Text("true"),
                   {0xF0, 0xFF, 0xF0}}));
    // A root in no namespace never declares the default namespace; xml needs no declaration.
    EXPECT_EQ(Body([](CFastInfosetWriter& w) {
                  w.SetDefaultNamespace("urn:d");
                  w.StartElement("r", "");
                  w.StartElement("s", CXmlWriter::XmlNamespaceURI);
                  w.EndElement();
                  w.EndElement();
              }),
              (Octets{0x3C, 0x00, 'r', 0x3F, 0x80, 0x80, 0x00, 's', 0xFF, 0xF0}));
}

TEST(FastInfosetWriter, SimpleElementsAsStartTextAndEnd) {
    // Every case of the one-call form, against the three calls it stands for:
    // no namespace, the default namespace, the parent's prefix, and the ones
    // that declare something (no namespace under a default, a new namespace).
    struct Simple {
        const char* localName;
        const char* namespaceURI;
        const char* value;
        ItemType itemType;
    };
    const Simple children[] = {
        {"a", "", "text", ItemType_string},     {"a", "", "text", ItemType_string},  // the name by index
        {"b", "urn:d", "12", ItemType_string},  {"c", "urn:p", "", ItemType_string},
        {"c", "urn:p", nullptr, ItemType_string}, {"d", "urn:new", "x", ItemType_string},
        {"e", "urn:p", "2024-01-02", ItemType_date}, {"f", "urn:p", "17", ItemType_i4},
    };
    CFastInfosetContext typed;
    typed.SetSuggestedValues();
    for (const bool inDefault : {false, true}) {
        for (const bool attributePending : {false, true}) {
            auto document = [&](bool oneCall) {
                return Write(
                    [&](CFastInfosetWriter& w) {
                        if (inDefault) w.SetDefaultNamespace("urn:d");
                        w.AddNamespaceAlias("p", "urn:p");
                        w.StartElement("r", inDefault ? "urn:d" : "");
                        w.StartElement("s", "urn:p");
                        if (attributePending) w.WriteAttribute("k", "", "v");
                        for (const Simple& c : children) {
                            if (oneCall) {
                                w.WriteSimpleElement(c.localName, c.namespaceURI, c.value, c.itemType);
                            } else {
                                w.StartElement(c.localName, c.namespaceURI);
                                w.WriteText(c.value, c.itemType);
                                w.EndElement();
                            }
                        }
                        w.EndElement();
                        w.WriteSimpleElement("t", "urn:p", "end");
                        w.EndElement();
                    },
                    typed);
            };
            EXPECT_EQ(document(true), document(false)) << inDefault << attributePending;
        }
    }
    // As the document element: the three calls' octets, the smallest document.
    EXPECT_EQ(Body([](CFastInfosetWriter& w) { w.WriteSimpleElement("a", "", ""); }), (Octets{0x3C, 0x00, 'a', 0xFF}));
}

TEST(FastInfosetWriter, EntryPointsOnAnElement) {
    CSmartPtr<CElement> element = new CElement("a", "urn:a");
    element->GetElements().Add("b", "urn:a")->SetText("x");
    const Octets expected = Cat({{0xE0, 0x00, 0x00, 0x01, 0x00, 0x38, 0xCD, 0x04}, Text("urn:a"),
                                 {0xF0, 0x3D, 0x81, 0x00, 'a', 0x3D, 0x81, 0x00, 'b', 0x90, 'x', 0xFF, 0xF0}});
    const CBinaryData stream = element->ToFastInfosetStream();
    EXPECT_EQ(Octets(stream.GetData(), stream.GetData() + stream.GetLength()), expected);
    const CBinaryData declared = element->ToFastInfosetStream(FInfoDecl_2);
    EXPECT_EQ(Octets(declared.GetData(), declared.GetData() + declared.GetLength()),
              Cat({Text("<?xml encoding='finf' standalone='yes'?>"), expected}));

    const std::string path = ::testing::TempDir() + "qmxml_fi_entry.finf";
    element->ToFastInfosetFile(path.c_str());
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(Octets(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()), expected);
    std::remove(path.c_str());
    EXPECT_EQ(MessageOf([&] {
                  element->ToFastInfosetFile(path.c_str(), FInfoDecl_None, CXmlSerializationContext::m_defaultContext,
                                             CompressionType_ZLib);
              }),
              "ZLIB Compression only available for To Stream methods.");

    // Writing with the generated vocabulary leaves the context's vocabulary as it was.
    CXmlSerializationContext ctx;
    ctx.GetFIContext().SetUseGeneratedVocabulary(true);
    ctx.GetFIContext().GetVocabulary()->AddLocalName("b");
    element->ToFastInfosetStream(FInfoDecl_None, ctx);
    EXPECT_EQ(ctx.GetFIContext().GetVocabulary()->GetLocalNamesTable().GetCount(), 1u);
    EXPECT_EQ(ctx.GetFIContext().GetVocabulary()->GetNamespaceNamesTable().GetCount(), 1u);
}

TEST(FastInfosetWriter, QualifiedNamesInValuesDeclareTheirPrefix) {
    std::string name;
    const Octets body = Body([&name](CFastInfosetWriter& w) {
        w.StartElement("r", "");
        name = w.QualifyName("urn:t", "t");
        w.EndElement();
    });
    EXPECT_EQ(name, "AA:t");
    // r in no namespace, with one declaration: AA for urn:t.
    EXPECT_EQ(body, Cat({{0x38, 0xCF, 0x01, 'A', 'A', 0x04}, Text("urn:t"), {0xF0, 0x3C, 0x00, 'r', 0xFF}}));
}
