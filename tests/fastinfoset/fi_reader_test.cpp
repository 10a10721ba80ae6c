#include <gtest/gtest.h>

#include <zlib.h>

#include <cstdio>
#include <string>
#include <vector>

#include <qmxml/collections/element.h>
#include <qmxml/core/exception.h>
#include <qmxml/core/serialization_context.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_element.h>
#include <qmxml/fastinfoset/fi_writer.h>

#include "dom/xml_document_loading.h"
#include "fastinfoset/fi_reader.h"
#include "same_tree.h"

using namespace QmXmlLib10;

namespace {

using Octets = std::vector<unsigned char>;

Octets Of(const CBinaryData& data) { return Octets(data.GetData(), data.GetData() + data.GetLength()); }

Octets Cat(std::initializer_list<Octets> parts) {
    Octets out;
    for (const Octets& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

Octets Text(const std::string& s) { return Octets(s.begin(), s.end()); }

const Octets kHeader = {0xE0, 0x00, 0x00, 0x01, 0x00};

void Load(CXmlDocument& doc, Octets octets) {
    doc.LoadXmlStream(octets.data(), static_cast<std::uint32_t>(octets.size()));
}

std::string LoadError(Octets octets, const CXmlSerializationContext& context = CXmlSerializationContext()) {
    CXmlDocument doc(context);
    try {
        Load(doc, std::move(octets));
    } catch (const CQmException& e) {
        return e.what();
    }
    return "no exception";
}

Octets Encode(const std::string& xml, FInfoDecl declaration = FInfoDecl_None) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(xml.c_str());
    return Of(element->ToFastInfosetStream(declaration));
}

void ExpectRoundTrip(const std::string& xml, FInfoDecl declaration = FInfoDecl_None) {
    CXmlDocument text;
    text.LoadXml(xml.c_str());
    CXmlDocument binary;
    Load(binary, Encode(xml, declaration));
    EXPECT_TRUE(qmxml_test::SameTree(text.GetDocumentElement(), binary.GetDocumentElement()));
}

}  // namespace

TEST(FastInfosetReader, SmallestDocument) {
    CXmlDocument doc;
    Load(doc, {0xE0, 0x00, 0x00, 0x01, 0x00, 0x3C, 0x00, 0x61, 0xFF});
    ASSERT_NE(doc.GetDocumentElement(), nullptr);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "a");
    EXPECT_EQ(doc.GetDocumentElement()->GetNamespaceURI(), "");
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement(), nullptr);
}

TEST(FastInfosetReader, RoundTripsNamespacesAndAttributes) {
    ExpectRoundTrip(
        "<r:root xmlns:r='urn:r' xmlns='urn:d' xmlns:x='urn:x' x:a='1' b=''>"
        "<item x:a='2' xml:lang='en'><x:child>t</x:child><plain xmlns=''>p<deep xmlns='urn:e'/></plain>"
        "<r:back r:z='3'/></item><item/><item x:a='2'>t</item></r:root>");
}

TEST(FastInfosetReader, RoundTripsLongAndNonBmpValues) {
    const std::string l1(70, 'a'), l2(300, 'b'), l3(70000, 'c');
    const std::string n65(65, 'n'), n321(321, 'm');
    ExpectRoundTrip("<long v1='" + l1 + "' v2='" + l2 + "' v3='" + l3 + "'><" + n65 + ">" + l1 + "</" + n65 + "><" +
                    n321 + ">" + l2 + "</" + n321 + "><t>" + l3 + "</t><t>a &amp; b &lt; c\n\td</t></long>");
    ExpectRoundTrip("<u k='\xF0\x9D\x84\x9E'>\xF0\x9F\x98\x80 caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"
                    "<v>\xF0\x9F\x98\x80</v><v>\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80</v></u>");
}

TEST(FastInfosetReader, RoundTripsEveryIndexRange) {
    std::string x = "<doc>";
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 9000; ++i) {
            const std::string n = std::to_string(i);
            x += "<e" + std::to_string(i % 2200) + " a" + std::to_string(i % 8300) + "='" + n + "'>" +
                 std::to_string(i % 2200 + 50000) + "</e" + std::to_string(i % 2200) + ">";
        }
    }
    ExpectRoundTrip(x + "</doc>");
}

TEST(FastInfosetReader, RoundTripsDeclarationsAndDepth) {
    std::string x;
    for (int i = 0; i < 300; ++i) x += "<n" + std::to_string(i % 7) + " d='" + std::to_string(i) + "'>";
    x += "bottom";
    for (int i = 299; i >= 0; --i) x += "</n" + std::to_string(i % 7) + ">";
    ExpectRoundTrip(x, FInfoDecl_4);
    ExpectRoundTrip(x, FInfoDecl_9);
}

TEST(FastInfosetReader, TypedValuesReadAsText) {
    CFastInfosetContext context;
    context.SetSuggestedValues();
    CBinaryData out;
    {
        CFastInfosetWriter w(out, context, FInfoDecl_None);
        w.StartDocument();
        w.StartElement("v", "");
        w.WriteAttribute("i", "", "-7", ItemType_i4);
        w.WriteAttribute("d", "", "2024-08-08", ItemType_date);
        w.WriteAttribute("n", "", "-12.5e3", ItemType_decimal);
        w.WriteAttribute("b", "", "true", ItemType_boolean);
        w.WriteAttribute("h", "", "0AFF", ItemType_hexBinary);
        w.StartElement("c", "");
        w.WriteText("-5000000000", ItemType_i8);
        w.EndElement();
        w.StartElement("c", "");
        w.WriteText("2024-08-08T10:11:12Z", ItemType_datetime);
        w.EndElement();
        w.StartElement("c", "");
        w.WriteText("1.5", ItemType_r8);
        w.EndElement();
        w.EndElement();
        w.EndDocument();
    }
    CXmlDocument doc;
    Load(doc, Of(out));
    const CXmlElement* v = doc.GetDocumentElement();
    ASSERT_NE(v, nullptr);
    ASSERT_EQ(v->GetAttributes().size(), 5u);
    EXPECT_EQ(v->GetAttributes()[0]->GetValue(), "-7");
    EXPECT_EQ(v->GetAttributes()[1]->GetValue(), "2024-08-08");
    EXPECT_EQ(v->GetAttributes()[2]->GetValue(), "-12.5e3");
    EXPECT_EQ(v->GetAttributes()[3]->GetValue(), "true");
    EXPECT_EQ(v->GetAttributes()[4]->GetValue(), "0AFF");
    const CXmlElement* c = v->GetFirstElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetText(), "-5000000000");
    c = c->GetNextSiblingElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetText(), "2024-08-08T10:11:12Z");
    c = c->GetNextSiblingElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetText(), "1.5");
}

TEST(FastInfosetReader, HeaderRecognition) {
    CXmlDocument doc;
    // The bare four octets are not Fast Infoset: they go to the XML parser.
    EXPECT_NE(LoadError({0xE0, 0x00, 0x00, 0x01}).find("at line"), std::string::npos);
    Load(doc, Cat({Text("<?xml version='1.0' encoding='finf'?>"), {0xE0, 0x00, 0x00, 0x01, 0x00, 0x3C, 0x00, 0x62,
                                                                  0xFF}}));
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "b");
}

TEST(FastInfosetReader, CompressedInputAndEntryPoints) {
    const Octets plain = Encode("<r a='1'><c>x</c></r>");
    uLongf size = compressBound(plain.size());
    Octets packed(size);
    ASSERT_EQ(compress(packed.data(), &size, plain.data(), plain.size()), Z_OK);
    packed.resize(size);
    CXmlDocument doc;
    Load(doc, packed);
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetText(), "x");

    CSmartPtr<CElement> element = new CElement();
    element->FromXmlStream(CBinaryData(packed.data(), static_cast<std::uint32_t>(packed.size()), false));
    CSmartPtr<CElement> fromText = new CElement();
    fromText->FromXml("<r a='1'><c>x</c></r>");
    EXPECT_EQ(element->ToXml(false), fromText->ToXml(false));

    const std::string path = ::testing::TempDir() + "qmxml_fi_reader.finf";
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(plain.data(), 1, plain.size(), f);
    std::fclose(f);
    CXmlDocument fromFile;
    fromFile.Load(path.c_str());
    std::remove(path.c_str());
    EXPECT_EQ(fromFile.GetDocumentElement()->GetAttributes()[0]->GetValue(), "1");
}

TEST(FastInfosetReader, CarriageReturnsAreDropped) {
    // Literal chunk "a\r\nb" (4 octets on the seventh bit: 0x82, length-3).
    CXmlDocument doc;
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x61, 0x82, 0x01}, Text("a\r\nb"), {0xFF}}));
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "a\nb");
}

TEST(FastInfosetReader, ThirdBitIndexReadOneHigher) {
    const std::string prefix = "Failed to parse FastInfoset. ";
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x30, 0x00, 0x00, 0x01, 0xFF}})), prefix + "Index out of range.");
}

TEST(FastInfosetReader, MalformedInputMessages) {
    const std::string prefix = "Failed to parse FastInfoset. ";
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C}})), prefix + "Unexpected End of File.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x05, 0x61}})), prefix + "Unexpected End of File.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0xC8}})), prefix + "Invalid Encoding of Element type.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3E, 0x00, 0x70, 0x00, 0x61, 0xFF}})),
              prefix + "Invalid QName type Prefix without Namespace.");
    // Element index 2 with one name in the table.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x01, 0xFF}})), prefix + "Index out of range.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x70, 0xFF}})),
              prefix + "Invalid NonEmptyOctetString type  on the second bit of an octet.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x34, 0xFF}})),
              prefix + "Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0xBC, 0xFF}})),
              prefix + "Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.");
    // Attribute value as index '1110...' on the second bit.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0xF0, 0xFF}})),
              prefix + "Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x70, 0xFF}})),
              prefix + "Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x0E, 0xFF}})),
              prefix + "Invalid NonEmptyOctetString type  on the fifth bit of an octet.");
    // UTF-16 of odd length in an attribute value and in a chunk.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x10, 0x41, 0xFF}})),
              prefix + "Invalid EncodedCharacterString type  on the third bit of an octet.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x84, 0x41, 0xFF}})),
              prefix + "Invalid EncodedCharacterString type  on the fifth bit of an octet.");
    // Restricted alphabet 3 does not exist; encoding algorithm 11 is unknown.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x88, 0x08, 0x12, 0xFF}})), prefix + "Index out of range.");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x8C, 0x28, 0x01, 0xFF}})), "Unknown byte encoding.");
    // Encoding algorithm 3 (short) with three octets.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x8C, 0x0A, 0x00, 0x01, 0x02, 0x03, 0xFF}})),
              "Invalid value for SHORT byte encoding.");
    // A second document element.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0xF0, 0x00, 0xF0}})), prefix + "Invalid Encoding of Element type.");
}

// What XML text could not carry is refused, so that everything read can be
// written out again as well-formed XML.
TEST(FastInfosetReader, CharactersXmlCannotCarryAreRefused) {
    const std::string refused =
        "Failed to parse FastInfoset. Invalid character string: malformed UTF-8 or UTF-16, or a character that XML "
        "does not allow.";
    // Chunks of one and two octets on the seventh bit.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x81, 0xC3, 0x28, 0xFF}})), refused);  // bad continuation
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x81, 0xC0, 0x80, 0xFF}})), refused);  // overlong NUL
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x80, 0x01, 0xFF}})), refused);        // U+0001
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x80, 0x00, 0xFF}})), refused);        // U+0000
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x82, 0x00, 0xEF, 0xBF, 0xBE, 0xFF}})), refused);  // U+FFFE
    // UTF-16: a lone high surrogate, and U+0008.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x85, 0xD8, 0x3D, 0xFF}})), refused);
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x85, 0x00, 0x08, 0xFF}})), refused);
    // Encoding algorithm 10 (cdata) carries text too: U+0001, then "x".
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0x61, 0x8C, 0x24, 0x01, 0xFF}})), refused);
    CXmlDocument cdata;
    Load(cdata, Cat({kHeader, {0x3C, 0x00, 0x61, 0x8C, 0x24, 0x78, 0xFF}}));
    EXPECT_EQ(cdata.GetDocumentElement()->GetText(), "x");
    // A literal element name that is not UTF-8.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3C, 0x00, 0xC0, 0xFF}})), refused);

    // Tab, line feed and characters beyond the BMP are fine.
    CXmlDocument doc;
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x61, 0x82, 0x03}, Text("\t\n\xF0\x9F\x98\x80"), {0xFF}}));
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "\t\n\xF0\x9F\x98\x80");
}

// Local names are held to the rules of names in XML text, as Expat applies them.
TEST(FastInfosetReader, LocalNamesMustBeXmlNames) {
    const auto element = [](const std::string& name) {
        return Cat({kHeader, {0x3C, static_cast<unsigned char>(name.size() - 1)}, Text(name), {0xFF}});
    };
    const std::string refused = "Failed to parse FastInfoset. Invalid local name: not a name that XML text allows.";
    for (const char* bad : {"I'", "a b", "1a", "-a", "a:b", "a>", "\xC2\xB7" "a", "a\xE2\x80\x8B"}) {
        EXPECT_EQ(LoadError(element(bad)), refused) << bad;
    }
    // An attribute's local name too: literal "b c" on element "a".
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x02}, Text("b c"), {0x40, 0x31, 0xFF}})), refused);
    for (const char* good : {"a", "_a-1.b", "\xC3\xA9t\xC3\xA9", "a\xC2\xB7", "\xE6\x97\xA5\xE6\x9C\xAC"}) {
        CXmlDocument doc;
        Load(doc, element(good));
        EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), good);
    }
    // Without namespace processing a colon is part of the name, as in text.
    CXmlSerializationContext plain;
    plain.SetSchemaType(SchemaType_NoNamespaces);
    CXmlDocument doc(plain);
    Load(doc, element("x:lang"));
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "x:lang");
}

TEST(FastInfosetReader, DuplicateAttributesAndDeclarationsAsAttributesAreRefused) {
    const std::string prefix = "Failed to parse FastInfoset. ";
    // <a b="1" b="2"/>, the second b literal again, then by index.
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x40, 0x31, 0x78, 0x00, 0x62, 0x40, 0x32,
                                       0xFF, 0xF0}})),
              prefix + "Duplicate attribute [b].");
    EXPECT_EQ(LoadError(Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x40, 0x31, 0x00, 0x40, 0x32, 0xFF, 0xF0}})),
              prefix + "Duplicate attribute [b].");
    // The same local name in two namespaces is fine.
    CXmlDocument two;
    Load(two, Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x40, 0x31, 0x79, 0x04}, Text("urn:x"),
                   {0x81, 0x40, 0x32, 0xFF, 0xF0}}));
    EXPECT_EQ(two.GetDocumentElement()->GetAttributes().size(), 2u);

    // An attribute named xmlns would become a declaration in text.
    const Octets xmlns = Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x04}, Text("xmlns"), {0x40, 0x31, 0xFF, 0xF0}});
    EXPECT_EQ(LoadError(xmlns), prefix + "Invalid attribute: a namespace declaration given as an attribute.");
    // Nor may a name be in the namespace of declarations.
    const Octets reserved =
        Cat({kHeader, {0x3D, 0x1C}, Text("http://www.w3.org/2000/xmlns/"), {0x00, 0x61, 0xFF}});
    EXPECT_EQ(LoadError(reserved), prefix + "Invalid name: in the namespace reserved for declarations.");
    // Namespace names holding the text reader's separator, in a name or a declaration.
    const std::string separator =
        prefix + "Invalid namespace name: holds the character |, which XML text read with namespaces does not allow.";
    EXPECT_EQ(LoadError(Cat({kHeader, {0x3D, 0x06}, Text("urn:a|b"), {0x00, 0x61, 0xFF}})), separator);
    const Octets declared = Cat({kHeader, {0x38, 0xCD, 0x06}, Text("urn:a|b"), {0xF0, 0x3C, 0x00, 0x61, 0xFF}});
    EXPECT_EQ(LoadError(declared), separator);
    // Without namespace processing it is an attribute like the others, as in text.
    CXmlSerializationContext plain;
    plain.SetSchemaType(SchemaType_NoNamespaces);
    CXmlDocument doc(plain);
    Load(doc, xmlns);
    ASSERT_EQ(doc.GetDocumentElement()->GetAttributes().size(), 1u);
    EXPECT_EQ(doc.GetDocumentElement()->GetAttributes()[0]->GetLocalName(), "xmlns");
    Load(doc, declared);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "a");
}

// Without namespace processing text gives qualified names whole and
// declarations as attributes; Fast Infoset gives the same tree.
TEST(FastInfosetReader, WithoutNamespacesNamesAndDeclarationsAreAsInText) {
    // <p:a xmlns:p="urn:p" xmlns="urn:d" p:b="1"><c/></p:a>
    const Octets octets =
        Cat({kHeader, {0x78, 0xCF, 0x00}, Text("p"), {0x04}, Text("urn:p"), {0xCD, 0x04}, Text("urn:d"),
             {0xF0, 0x3F, 0x81, 0x81, 0x00}, Text("a"), {0x7B, 0x81, 0x81, 0x00}, Text("b"),
             {0x40, 0x31, 0xF0, 0x3D, 0x82, 0x00}, Text("c"), {0xFF, 0xF0}});
    CXmlSerializationContext plain;
    plain.SetSchemaType(SchemaType_NoNamespaces);
    CXmlDocument fromBinary(plain), fromText(plain);
    Load(fromBinary, octets);
    fromText.LoadXml("<p:a xmlns:p=\"urn:p\" xmlns=\"urn:d\" p:b=\"1\"><c/></p:a>");
    for (const CXmlDocument* doc : {&fromBinary, &fromText}) {
        const CXmlElement* root = doc->GetDocumentElement();
        EXPECT_EQ(root->GetLocalName(), "p:a");
        EXPECT_EQ(root->GetNamespaceURI(), "");
        ASSERT_EQ(root->GetAttributes().size(), 3u);
        EXPECT_EQ(root->GetAttributes()[0]->GetLocalName(), "xmlns:p");
        EXPECT_EQ(root->GetAttributes()[0]->GetValue(), "urn:p");
        EXPECT_EQ(root->GetAttributes()[1]->GetLocalName(), "xmlns");
        EXPECT_EQ(root->GetAttributes()[1]->GetValue(), "urn:d");
        EXPECT_EQ(root->GetAttributes()[2]->GetLocalName(), "p:b");
        EXPECT_EQ(root->GetAttributes()[2]->GetNamespaceURI(), "");
        EXPECT_EQ(root->GetFirstElement()->GetLocalName(), "c");
        EXPECT_EQ(root->GetFirstElement()->GetNamespaceURI(), "");
    }
    // With namespaces the same octets give the names their namespaces.
    CXmlDocument spaced;
    Load(spaced, octets);
    EXPECT_EQ(spaced.GetDocumentElement()->GetLocalName(), "a");
    EXPECT_EQ(spaced.GetDocumentElement()->GetNamespaceURI(), "urn:p");
    EXPECT_EQ(spaced.GetDocumentElement()->GetAttributes().size(), 1u);
    EXPECT_EQ(spaced.GetDocumentElement()->GetFirstElement()->GetNamespaceURI(), "urn:d");

    // A declaration and an attribute of the same name are one attribute twice.
    const Octets twice = Cat({kHeader, {0x78, 0xCD, 0x04}, Text("urn:d"), {0xF0, 0x7C, 0x00}, Text("a"),
                              {0x78, 0x04}, Text("xmlns"), {0x40, 0x31, 0xFF, 0xF0}});
    EXPECT_EQ(LoadError(twice, plain), "Failed to parse FastInfoset. Duplicate attribute [xmlns].");
}

TEST(FastInfosetReader, RestrictedAlphabetsDecode) {
    // Numeric alphabet: "12" is 0x12, then the terminator in a padding nibble.
    CXmlDocument doc;
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x61, 0x88, 0x00, 0x12, 0xFF}}));
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "12");
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x61, 0x88, 0x04, 0x1F, 0xFF}}));  // alphabet 2, "1" and the terminator
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "1");
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x61, 0x88, 0x05, 0x1D, 0xBF, 0xFF}}));  // "1Z:" then the terminator
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "1Z:");
}

TEST(FastInfosetReader, EveryTruncationThrows) {
    const Octets whole = Encode(
        "<r:root xmlns:r='urn:r' xmlns='urn:d' a='1' b=''><item r:a='2'>text<x/>text</item><item/></r:root>");
    for (std::size_t n = 5; n < whole.size(); ++n) {
        SCOPED_TRACE(n);
        EXPECT_EQ(LoadError(Octets(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n))),
                  "Failed to parse FastInfoset. Unexpected End of File.");
    }
    CXmlDocument doc;
    Load(doc, whole);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "root");
}

TEST(FastInfosetReader, MillionDeepNestingNeedsNoRecursion) {
    // <a> literal, then index 1 a million times, then terminators.
    const std::size_t depth = 1000000;
    Octets octets = Cat({kHeader, {0x3C, 0x00, 0x61}});
    octets.insert(octets.end(), depth - 1, 0x00);
    octets.insert(octets.end(), depth / 2, 0xFF);
    octets.push_back(0xF0);  // the document's own terminator
    CXmlDocument doc;
    Load(doc, octets);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "a");
    // Truncated the same way: an exception, not a crash.
    octets.pop_back();
    EXPECT_EQ(LoadError(octets), "Failed to parse FastInfoset. Unexpected End of File.");
}

TEST(FastInfosetReader, SkipsOptionalComponentsAndDropsComments) {
    // Standalone and an initial vocabulary listing prefix "p"; a comment and
    // a processing instruction before and inside the element.
    const Octets doc1 = Cat({{0xE0, 0x00, 0x00, 0x01, 0x22, 0x02, 0x00, 0x00, 0x00}, Text("p"), {0x01},
                             {0xE2, 0x01}, Text("hi"),
                             {0x38, 0xCF, 0x00}, Text("q"), {0x04}, Text("urn:q"), {0xF0, 0x3F, 0x81, 0x81, 0x00},
                             Text("a"), {0xE1, 0x00}, Text("t"), {0x01}, Text("dd"), {0xFF}});
    CXmlDocument doc;
    Load(doc, doc1);
    const CXmlElement* root = doc.GetDocumentElement();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetLocalName(), "a");
    EXPECT_EQ(root->GetNamespaceURI(), "urn:q");
    EXPECT_EQ(root->GetFirstElement(), nullptr);
}

TEST(FastInfosetReader, StartsFromTheContextVocabularyWithoutChangingIt) {
    CXmlSerializationContext context;
    CFastInfosetContext& fi = context.GetFIContext();
    fi.GetVocabulary()->AddElement("v", "urn:v", "pre");
    fi.SetUseGeneratedVocabulary(true);
    CBinaryData out;
    {
        CFastInfosetWriter w(out, fi, FInfoDecl_None);
        w.StartDocument();
        w.StartElement("pre", "urn:v");
        w.StartElement("fresh", "");
        w.EndElement();
        w.EndElement();
        w.EndDocument();
    }
    CXmlDocument doc(context);
    Load(doc, Of(out));
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "pre");
    EXPECT_EQ(doc.GetDocumentElement()->GetNamespaceURI(), "urn:v");
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetLocalName(), "fresh");
    EXPECT_EQ(fi.GetVocabulary()->GetElementNamesTable().GetCount(), 1u);
    EXPECT_EQ(fi.GetVocabulary()->GetLocalNamesTable().GetCount(), 1u);
    // Without the option the declared vocabulary is not resolved: index 1 is unknown.
    EXPECT_EQ(LoadError(Of(out)), "Failed to parse FastInfoset. Index out of range.");
}

TEST(FastInfosetReader, FilterRemovesCompletedChildren) {
    CXmlDocument doc([](CXmlElement* e) { return e->GetLocalName() == "drop"; });
    Load(doc, Encode("<r><keep/><drop><x/></drop><keep>k</keep></r>"));
    const CXmlElement* c = doc.GetDocumentElement()->GetFirstElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetLocalName(), "keep");
    c = c->GetNextSiblingElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetText(), "k");
    EXPECT_EQ(c->GetNextSiblingElement(), nullptr);
}

TEST(FastInfosetReader, Utf16LiteralsAndEmptyAttributeValue) {
    // Chunk in UTF-16 (discriminant 01): "h" and U+1F600 as a surrogate pair.
    CXmlDocument doc;
    Load(doc, Cat({kHeader, {0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0xFF, 0xF0, 0x86, 0x03, 0x00, 0x68, 0xD8, 0x3D,
                             0xDE, 0x00, 0xFF}}));
    const CXmlElement* root = doc.GetDocumentElement();
    ASSERT_EQ(root->GetAttributes().size(), 1u);
    EXPECT_EQ(root->GetAttributes()[0]->GetLocalName(), "b");
    EXPECT_EQ(root->GetAttributes()[0]->GetValue(), "");
    EXPECT_EQ(root->GetText(), "h\xF0\x9F\x98\x80");
}

TEST(FastInfosetReader, AttributesEndedWithTwoTerminators) {
    // 0xFF after the last attribute closes the attributes and the element.
    CXmlDocument doc;
    Load(doc, Cat({kHeader, {0x3C, 0x00, 0x72, 0x7C, 0x00, 0x61, 0x78, 0x00, 0x62, 0x40, 0x31, 0xFF, 0x01, 0xFF, 0xF0}}));
    const CXmlElement* a = doc.GetDocumentElement()->GetFirstElement();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->GetAttributes()[0]->GetValue(), "1");
    ASSERT_NE(a->GetNextSiblingElement(), nullptr);
    EXPECT_EQ(a->GetNextSiblingElement()->GetLocalName(), "a");
}

TEST(FastInfosetReader, CorruptedOctetsLoadOrThrowTheLibrarysException) {
    const Octets whole = Encode("<r:root xmlns:r='urn:r' a='1' b='2'><item r:a='2'>text<x/>te\xC3\xA9</item><item/>"
                                "<item r:a='2'>text</item></r:root>");
    int loaded = 0;
    int refused = 0;
    for (std::size_t i = 5; i < whole.size(); ++i) {
        for (unsigned char value : {0x00, 0x3C, 0x7F, 0x80, 0xC0, 0xF0, 0xFF}) {
            Octets octets = whole;
            octets[i] = value;
            CXmlDocument doc;
            try {
                Load(doc, octets);
                ++loaded;
            } catch (const CQmException&) {
                ++refused;
            } catch (...) {
                ADD_FAILURE() << "octet " << i << " = " << int(value) << " threw something else";
            }
        }
    }
    EXPECT_EQ(loaded + refused, static_cast<int>((whole.size() - 5) * 7));
    EXPECT_GT(refused, 0);
}
