#include <gtest/gtest.h>

#include <qmxml/core/exception.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/dom/xml_element.h>
#include <qmxml/writer/text_stream.h>
#include <qmxml/writer/text_writer.h>

#include <string>
#include <vector>

#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;

namespace {

const char* const kXsi = "http://www.w3.org/2001/XMLSchema-instance";
const char* const kXml = "http://www.w3.org/XML/1998/namespace";

// A writer over an in-memory stream.
struct Doc {
    explicit Doc(XmlEncoding encoding = XmlEncoding_UTF8) : stream(encoding), w(stream) { w.StartDocument(); }
    std::string Text() const { return stream.GetText(); }
    CTextStream stream;
    CXmlTextWriter w;
};

void WriteSample(CXmlTextWriter& w) {
    w.WriteXmlDeclaration();
    w.StartElement("root", "");
    w.WriteAttribute("id", "", "1");
    w.StartElement("a", "");
    w.WriteText("x");
    w.EndElement();
    w.StartElement("empty", "");
    w.EndElement();
    w.StartElement("b", "");
    w.StartElement("c", "");
    w.WriteText("y");
    w.EndElement();
    w.EndElement();
    w.EndElement();
    w.EndDocument();
}

std::string Replace(std::string s, const std::string& from, const std::string& to) {
    for (size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size())) {
        s.replace(at, from.size(), to);
    }
    return s;
}

}  // namespace

TEST(XmlTextWriter, Declaration) {
    struct Case {
        int encoding;
        const char* text;
    };
    for (const Case& c : {Case{1, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"},
                          Case{2, "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"},
                          Case{0, "<?xml version=\"1.0\"?>\n"}, Case{3, "<?xml version=\"1.0\"?>\n"}}) {
        Doc d(static_cast<XmlEncoding>(c.encoding));
        d.w.SetFormatted(false);  // the declaration always ends its line
        d.w.WriteXmlDeclaration();
        EXPECT_EQ(d.Text(), c.text) << c.encoding;
    }
    Doc crlf;
    crlf.w.SetEOLType(EOLType_CRLF);
    crlf.w.WriteXmlDeclaration();
    EXPECT_EQ(crlf.Text(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n");
}

TEST(XmlTextWriter, FormattedUnformattedAndLineEnds) {
    const std::string formatted =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<root id=\"1\">\n"
        "\t<a>x</a>\n"
        "\t<empty/>\n"
        "\t<b>\n"
        "\t\t<c>y</c>\n"
        "\t</b>\n"
        "</root>\n";
    Doc d;
    EXPECT_TRUE(d.w.GetFormatted());
    EXPECT_EQ(d.w.GetEOLType(), EOLType_LF);
    WriteSample(d.w);
    EXPECT_EQ(d.Text(), formatted);

    Doc crlf;
    crlf.w.SetEOLType(EOLType_CRLF);
    EXPECT_EQ(crlf.w.GetEOLType(), EOLType_CRLF);
    WriteSample(crlf.w);
    EXPECT_EQ(crlf.Text(), Replace(formatted, "\n", "\r\n"));

    Doc flat;
    flat.w.SetFormatted(false);
    EXPECT_FALSE(flat.w.GetFormatted());
    WriteSample(flat.w);
    EXPECT_EQ(flat.Text(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<root id=\"1\"><a>x</a><empty/><b><c>y</c></b></root>");

    Doc bad;
    EXPECT_EQ(MessageOf([&] { bad.w.SetEOLType(static_cast<EOLType>(2)); }), "Invalid EOL type.");
    EXPECT_EQ(MessageOf([&] { bad.w.SetEOLType(static_cast<EOLType>(-1)); }), "Invalid EOL type.");
    EXPECT_EQ(bad.w.GetEOLType(), EOLType_LF);
}

TEST(XmlTextWriter, Escaping) {
    for (bool formatted : {true, false}) {
        Doc d;
        d.w.SetFormatted(formatted);
        d.w.SetEOLType(EOLType_CRLF);
        d.w.StartElement("e", "");
        d.w.WriteAttribute("v", "", "q\"l\nt<g>a&p'\tc\r.");
        d.w.WriteText("q\"l\r\nt<g>a&p'\tc\r.\n");
        d.w.EndElement();
        EXPECT_EQ(d.Text(), std::string("<e v=\"q&quot;l&#xA;t&lt;g&gt;a&amp;p'\tc.\">"
                                        "q\"l\r\nt&lt;g&gt;a&amp;p'\tc.\r\n</e>") +
                                (formatted ? "\r\n" : ""));
    }
    Doc lf;
    lf.w.StartElement("e", "");
    lf.w.WriteText("a\r\nb\n");
    lf.w.EndElement();
    EXPECT_EQ(lf.Text(), "<e>a\nb\n</e>\n");
}

TEST(XmlTextWriter, TextAndCData) {
    Doc d;
    d.w.StartElement("r", "");
    d.w.StartElement("c", "");
    d.w.WriteText("<![CDATA[a<b&c]]>");
    d.w.EndElement();
    d.w.StartElement("t", "");
    d.w.WriteText(" <![CDATA[");  // not at the start: escaped
    d.w.EndElement();
    // Only complete sections at the start go out raw: an open one, or text
    // after the last closed one, would not be XML unescaped.
    d.w.StartElement("o", "");
    d.w.WriteText("<![CDATA[a<b");
    d.w.EndElement();
    d.w.StartElement("m", "");
    d.w.WriteText("<![CDATA[x]]><![CDATA[]]]]><![CDATA[>]]>y&<![CDATA[z]]>");
    d.w.EndElement();
    d.w.StartElement("n", "");
    d.w.WriteText("");  // empty text leaves the start tag open
    d.w.WriteText(nullptr);
    d.w.WriteAttribute("a", "", "1");
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<r>\n"
              "\t<c><![CDATA[a<b&c]]></c>\n"
              "\t<t> &lt;![CDATA[</t>\n"
              "\t<o>&lt;![CDATA[a&lt;b</o>\n"
              "\t<m><![CDATA[x]]><![CDATA[]]]]><![CDATA[>]]>y&amp;&lt;![CDATA[z]]&gt;</m>\n"
              "\t<n a=\"1\"/>\n"
              "</r>\n");
}

TEST(XmlTextWriter, GeneratedPrefixesFollowScope) {
    Doc d;
    d.w.StartElement("r", "urn:r");
    d.w.WriteAttribute("at", "urn:a", "v");
    d.w.WriteAttribute("lang", kXml, "en");
    d.w.WriteAttribute("again", "urn:a", "w");
    d.w.StartElement("c", "urn:c");
    d.w.EndElement();
    d.w.StartElement("c", "urn:c");  // the sibling declares its prefix again
    d.w.StartElement("d", "urn:r");
    d.w.EndElement();
    d.w.StartElement("e", "urn:x");
    d.w.EndElement();
    d.w.EndElement();
    d.w.StartElement("f", "urn:x");  // AC went out of scope with the second c
    d.w.StartElement("g", "urn:x");
    d.w.WriteAttribute("h", "urn:x", "1");
    d.w.EndElement();
    d.w.EndElement();
    d.w.StartElement("x", kXml);
    d.w.EndElement();
    d.w.EndElement();
    d.w.EndDocument();
    EXPECT_EQ(d.Text(),
              "<AA:r xmlns:AA=\"urn:r\" xmlns:AB=\"urn:a\" AB:at=\"v\" xml:lang=\"en\" AB:again=\"w\">\n"
              "\t<AC:c xmlns:AC=\"urn:c\"/>\n"
              "\t<AC:c xmlns:AC=\"urn:c\">\n"
              "\t\t<AA:d/>\n"
              "\t\t<AD:e xmlns:AD=\"urn:x\"/>\n"
              "\t</AC:c>\n"
              "\t<AC:f xmlns:AC=\"urn:x\">\n"
              "\t\t<AC:g AC:h=\"1\"/>\n"
              "\t</AC:f>\n"
              "\t<xml:x/>\n"
              "</AA:r>\n");
}

TEST(XmlTextWriter, TwoSiblingsInAnUnaliasedNamespace) {
    Doc d;
    d.w.SetFormatted(false);
    d.w.StartElement("r", "");
    d.w.StartElement("s", "urn:s");
    d.w.EndElement();
    d.w.StartElement("s", "urn:s");
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(), "<r><AA:s xmlns:AA=\"urn:s\"/><AA:s xmlns:AA=\"urn:s\"/></r>");
}

TEST(XmlTextWriter, RootDeclaresDefaultNamespaceAndAliases) {
    Doc d;
    d.w.SetDefaultNamespace("urn:d");
    d.w.AddNamespaceAlias("q", "urn:q");
    d.w.AddNamespaceAlias("p", "urn:p");
    d.w.AddNamespaceAlias("x", kXml);  // "xml" is never declared nor replaced
    d.w.AddNamespaceAlias("AA", "urn:aa");
    d.w.StartElement("r", "urn:p");
    d.w.AddNamespaceAlias("z", "urn:z");  // too late: ignored
    d.w.WriteAttribute("lang", kXml, "en");
    d.w.StartElement("c", "urn:d");
    d.w.StartElement("k", "urn:q");
    d.w.EndElement();
    d.w.StartElement("z", "urn:z");
    d.w.EndElement();
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<p:r xmlns=\"urn:d\" xmlns:AA=\"urn:aa\" xmlns:p=\"urn:p\" xmlns:q=\"urn:q\" xml:lang=\"en\">\n"
              "\t<c>\n"
              "\t\t<q:k/>\n"
              "\t\t<AB:z xmlns:AB=\"urn:z\"/>\n"
              "\t</c>\n"
              "</p:r>\n");

    Doc empty;
    empty.w.SetDefaultNamespace("urn:d");
    empty.w.StartElement("r", "urn:d");
    empty.w.EndElement();
    EXPECT_EQ(empty.Text(), "<r xmlns=\"urn:d\"/>\n");

    // The XML namespace cannot be declared as the default: a root in it keeps its prefix.
    Doc xml;
    xml.w.SetDefaultNamespace(kXml);
    xml.w.StartElement("r", kXml);
    xml.w.StartElement("c", kXml);
    xml.w.EndElement();
    xml.w.EndElement();
    EXPECT_EQ(xml.Text(), "<xml:r>\n\t<xml:c/>\n</xml:r>\n");
}

TEST(XmlTextWriter, NoNamespaceInsideTheDefaultNamespace) {
    Doc d;
    d.w.SetDefaultNamespace("urn:d");
    d.w.StartElement("r", "urn:d");
    d.w.StartElement("plain", "");
    d.w.StartElement("inner", "");
    d.w.EndElement();
    d.w.StartElement("back", "urn:d");
    d.w.EndElement();
    d.w.EndElement();
    d.w.StartElement("next", "urn:d");
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<r xmlns=\"urn:d\">\n"
              "\t<plain xmlns=\"\">\n"
              "\t\t<inner/>\n"
              "\t\t<AA:back xmlns:AA=\"urn:d\"/>\n"
              "\t</plain>\n"
              "\t<next/>\n"
              "</r>\n");

    // A root in no namespace keeps out of the default namespace.
    Doc root;
    root.w.SetDefaultNamespace("urn:d");
    root.w.StartElement("r", "");
    root.w.StartElement("c", "urn:d");
    root.w.EndElement();
    root.w.EndElement();
    EXPECT_EQ(root.Text(), "<r>\n\t<AA:c xmlns:AA=\"urn:d\"/>\n</r>\n");
}

// Tabs and carriage returns in namespace names are written as references:
// a reader would normalise them and the names would change namespace.
TEST(XmlTextWriter, NamespaceNamesReadBackExactly) {
    Doc d;
    d.w.SetDefaultNamespace("urn:d\tx");
    d.w.StartElement("r", "urn:d\tx");
    d.w.WriteAttribute("at", "urn:t\t", "a\tb");  // a value keeps its tab
    d.w.StartElement("c", "urn:a\r&b");
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<r xmlns=\"urn:d&#x9;x\" xmlns:AA=\"urn:t&#x9;\" AA:at=\"a\tb\">\n"
              "\t<AB:c xmlns:AB=\"urn:a&#xD;&amp;b\"/>\n"
              "</r>\n");
    CXmlDocument back;
    back.LoadXml(d.Text().c_str());
    const CXmlElement* root = back.GetDocumentElement();
    EXPECT_EQ(root->GetNamespaceURI(), "urn:d\tx");
    ASSERT_EQ(root->GetAttributes().size(), 1u);
    EXPECT_EQ(root->GetAttributes()[0]->GetNamespaceURI(), "urn:t\t");
    EXPECT_EQ(root->GetAttributes()[0]->GetValue(), "a b");  // values are normalised
    EXPECT_EQ(root->GetFirstElement()->GetNamespaceURI(), "urn:a\r&b");
}

// Without namespace processing, declarations are read as attributes in no
// namespace; written back they must not repeat the writer's own.
TEST(XmlTextWriter, DeclarationsHeldAsAttributes) {
    Doc d;
    d.w.SetDefaultNamespace("urn:d");
    d.w.AddNamespaceAlias("p", "urn:p");
    d.w.StartElement("r", "urn:d");
    d.w.WriteAttribute("xmlns", "", "urn:d");
    d.w.WriteAttribute("xmlns:p", "", "urn:p");
    d.w.WriteAttribute("xmlns:o", "", "urn:o");  // not declared by the writer
    d.w.WriteAttribute("xmlnsx", "", "1");       // not a declaration
    d.w.StartElement("c", "");
    d.w.WriteAttribute("xmlns", "", "");
    d.w.EndElement();
    d.w.StartElement("k", "urn:d");
    d.w.WriteAttribute("xmlns", "", "urn:d");  // in scope, but not declared here
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<r xmlns=\"urn:d\" xmlns:p=\"urn:p\" xmlns:o=\"urn:o\" xmlnsx=\"1\">\n"
              "\t<c xmlns=\"\"/>\n"
              "\t<k xmlns=\"urn:d\"/>\n"
              "</r>\n");

    Doc conflict;
    conflict.w.SetDefaultNamespace("urn:d");
    conflict.w.StartElement("r", "urn:d");
    EXPECT_EQ(MessageOf([&] { conflict.w.WriteAttribute("xmlns", "", "urn:e"); }),
              "The attribute [xmlns] contradicts the namespace declaration of the element [r]");
}

TEST(XmlTextWriter, XsiTypeAndNil) {
    Doc d;
    d.w.StartElement("r", "");
    d.w.WriteTypeAttribute("T");
    d.w.WriteNilAttribute();
    d.w.EndElement();
    EXPECT_EQ(d.Text(), std::string("<r xmlns:AA=\"") + kXsi + "\" AA:type=\"T\" AA:nil=\"true\"/>\n");

    Doc aliased;
    aliased.w.AddNamespaceAlias("xsi", kXsi);
    aliased.w.StartElement("r", "");
    aliased.w.WriteNilAttribute();
    aliased.w.EndElement();
    EXPECT_EQ(aliased.Text(), std::string("<r xmlns:xsi=\"") + kXsi + "\" xsi:nil=\"true\"/>\n");
}

TEST(XmlTextWriter, CommentsAndRawText) {
    Doc d;
    d.w.WriteXmlDeclaration();
    d.w.WriteRawLine("<?xml-stylesheet href=\"s.xsl\"?>");
    d.w.WriteComment("top & <raw>");
    d.w.StartElement("r", "");
    d.w.WriteRaw("<xs:schema/>");
    d.w.StartElement("a", "");
    d.w.WriteComment("in a");
    d.w.EndElement();
    d.w.EndElement();
    EXPECT_EQ(d.Text(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<?xml-stylesheet href=\"s.xsl\"?>\n\n"
              "<!--top & <raw>-->\n"
              "<r>\n"
              " \n<xs:schema/>\n"
              "\t<a>\n"
              "<!--in a-->\n"
              "\t</a>\n"
              "</r>\n");

    Doc flat;
    flat.w.SetFormatted(false);
    flat.w.StartElement("r", "");
    flat.w.WriteComment("c");
    flat.w.EndElement();
    EXPECT_EQ(flat.Text(), "<r><!--c-->\n</r>");
}

TEST(XmlTextWriter, MisuseThrows) {
    Doc afterText;
    afterText.w.StartElement("r", "");
    afterText.w.WriteText("t");
    EXPECT_EQ(MessageOf([&] { afterText.w.WriteAttribute("a", "", "1"); }),
              "Attributes must be added before elements");

    Doc afterChild;
    afterChild.w.StartElement("r", "");
    afterChild.w.StartElement("c", "");
    afterChild.w.EndElement();
    EXPECT_EQ(MessageOf([&] { afterChild.w.WriteAttribute("a", "", "1"); }),
              "Attributes must be added before elements");
    EXPECT_EQ(MessageOf([&] { afterChild.w.EndDocument(); }), "An Element has not been closed.");
    afterChild.w.EndElement();
    EXPECT_EQ(MessageOf([&] { afterChild.w.EndElement(); }), "An Element has not been opened.");
    EXPECT_EQ(MessageOf([&] { afterChild.w.WriteAttribute("a", "", "1"); }), "An Element has not been opened.");
    EXPECT_EQ(afterChild.Text(), "<r>\n\t<c/>\n</r>\n");
}

namespace {
// Records the length it is asked to flush at, then empties the buffer.
class CountingStream : public CTextStream {
public:
    void Flush() override {
        flushedAt.push_back(GetLength());
        flushed += GetText();
        GetBuffer().Reset();
    }
    std::vector<size_t> flushedAt;
    std::string flushed;
};
}  // namespace

TEST(XmlTextWriter, AsksForAFlushAt4096Characters) {
    const std::string value(100, 'v');
    auto write = [&](CXmlTextWriter& w) {
        w.StartDocument();
        w.StartElement("r", "");
        for (int i = 0; i < 200; ++i) {
            w.StartElement("e", "");
            w.WriteAttribute("a", "", value.c_str());
            w.WriteText(value.c_str());
            w.EndElement();
        }
        w.EndElement();
        w.EndDocument();
    };
    CTextStream memory;
    CXmlTextWriter mw(memory);
    write(mw);

    CountingStream counting;
    CXmlTextWriter cw(counting);
    write(cw);
    ASSERT_GE(counting.flushedAt.size(), 4u);
    for (size_t at : counting.flushedAt) {
        EXPECT_GE(at, 4096u);
        EXPECT_LT(at, 4096u + value.size() + 10);  // asked right after crossing, not later
    }
    EXPECT_EQ(counting.flushed + counting.GetText(), memory.GetText());
}

namespace {

// Writes an element with text only, in one call or in three.
void Simple(CXmlTextWriter& w, bool oneCall, const char* name, const char* ns, const char* text) {
    if (oneCall) {
        w.WriteSimpleElement(name, ns, text);
        return;
    }
    w.StartElement(name, ns);
    w.WriteText(text);
    w.EndElement();
}

std::string SimpleElements(bool oneCall, bool formatted, EOLType eol) {
    Doc d;
    d.w.SetFormatted(formatted);
    d.w.SetEOLType(eol);
    d.w.SetDefaultNamespace("urn:d");
    d.w.AddNamespaceAlias("q", "urn:q");
    d.w.StartElement("r", "urn:d");
    d.w.WriteAttribute("id", "", "1");
    Simple(d.w, oneCall, "a", "urn:d", "x & y\nz");       // unprefixed, closes the open start tag
    Simple(d.w, oneCall, "b", "urn:d", "");               // empty
    Simple(d.w, oneCall, "c", "urn:d", nullptr);
    Simple(d.w, oneCall, "d", "urn:d", "<![CDATA[a<b]]>&");
    Simple(d.w, oneCall, "e", "", "no namespace");        // undeclares the default
    Simple(d.w, oneCall, "f", "urn:q", "alias");          // the root's alias
    Simple(d.w, oneCall, "g", "urn:new", "declared");     // a new prefix
    Simple(d.w, oneCall, "h", kXml, "xml");
    d.w.StartElement("p", "urn:q");
    Simple(d.w, oneCall, "i", "urn:q", "parent's prefix");
    d.w.StartElement("j", "urn:new2");
    Simple(d.w, oneCall, "k", "urn:new2", "generated prefix");
    Simple(d.w, oneCall, "l", "urn:q", "found in scope");
    d.w.EndElement();
    d.w.EndElement();
    d.w.StartElement("m", "");
    Simple(d.w, oneCall, "n", "", "plain");               // no default in scope here
    Simple(d.w, oneCall, "o", "urn:d", "in default");
    d.w.EndElement();
    d.w.EndElement();
    d.w.EndDocument();
    return d.Text();
}

}  // namespace

TEST(XmlTextWriter, SimpleElementsInOneCallWriteWhatThreeCallsWrite) {
    const std::string expected =
        "<r xmlns=\"urn:d\" xmlns:q=\"urn:q\" id=\"1\">\n"
        "\t<a>x &amp; y\nz</a>\n"
        "\t<b/>\n"
        "\t<c/>\n"
        "\t<d><![CDATA[a<b]]>&amp;</d>\n"
        "\t<e xmlns=\"\">no namespace</e>\n"
        "\t<q:f>alias</q:f>\n"
        "\t<AA:g xmlns:AA=\"urn:new\">declared</AA:g>\n"
        "\t<xml:h>xml</xml:h>\n"
        "\t<q:p>\n"
        "\t\t<q:i>parent's prefix</q:i>\n"
        "\t\t<AA:j xmlns:AA=\"urn:new2\">\n"
        "\t\t\t<AA:k>generated prefix</AA:k>\n"
        "\t\t\t<q:l>found in scope</q:l>\n"
        "\t\t</AA:j>\n"
        "\t</q:p>\n"
        "\t<m xmlns=\"\">\n"
        "\t\t<n>plain</n>\n"
        "\t\t<AA:o xmlns:AA=\"urn:d\">in default</AA:o>\n"
        "\t</m>\n"
        "</r>\n";
    EXPECT_EQ(expected, SimpleElements(false, true, EOLType_LF));
    EXPECT_EQ(expected, SimpleElements(true, true, EOLType_LF));
    for (bool formatted : {true, false}) {
        EXPECT_EQ(SimpleElements(false, formatted, EOLType_CRLF), SimpleElements(true, formatted, EOLType_CRLF));
    }

    // A root written this way, and the parent's start tag is closed afterwards.
    Doc root;
    root.w.WriteSimpleElement("r", "urn:r", "t");
    root.w.EndDocument();
    EXPECT_EQ("<AA:r xmlns:AA=\"urn:r\">t</AA:r>\n", root.Text());
    Doc closed;
    closed.w.StartElement("r", "");
    closed.w.WriteSimpleElement("c", "", "t");
    EXPECT_EQ("Attributes must be added before elements", MessageOf([&] { closed.w.WriteAttribute("a", "", "1"); }));
}

TEST(XmlTextWriter, QualifiedNamesInValuesDeclareTheirPrefixOnce) {
    Doc d;
    d.w.SetFormatted(false);
    d.w.SetDefaultNamespace("urn:d");
    d.w.StartElement("r", "urn:d");
    EXPECT_EQ(d.w.QualifyName("urn:d", "t"), "t");  // the default namespace needs no prefix
    EXPECT_EQ(d.w.QualifyName("", "u"), "u");       // cannot be told apart: stays as it is
    d.w.StartElement("c", "urn:c");
    const std::string first = d.w.QualifyName("urn:x", "t");
    EXPECT_EQ(first, "AB:t");
    EXPECT_EQ(d.w.QualifyName("urn:x", "u"), "AB:u");  // declared once
    EXPECT_EQ(d.w.QualifyName("urn:c", "v"), "AA:v");  // the element's own prefix
    d.w.WriteTypeAttribute(first.c_str());
    d.w.WriteText("x");
    qmxml_test::ExpectThrow<CQmException>([&d] { d.w.QualifyName("urn:y", "t"); },
                                           "Attributes must be added before elements");
    d.w.EndElement();
    d.w.StartElement("c", "urn:d");  // the prefix went out of scope with its element
    EXPECT_EQ(d.w.QualifyName("urn:x", "t"), "AA:t");
    d.w.EndElement();
    d.w.EndElement();
    d.w.EndDocument();
    EXPECT_EQ(d.Text(),
              "<r xmlns=\"urn:d\"><AA:c xmlns:AA=\"urn:c\" xmlns:AB=\"urn:x\" "
              "xmlns:AC=\"http://www.w3.org/2001/XMLSchema-instance\" AC:type=\"AB:t\">x</AA:c>"
              "<c xmlns:AA=\"urn:x\"/></r>");
}

TEST(XmlTextWriter, PrefixesDeclaredForValuesAreUsedBelow) {
    Doc d;
    d.w.SetFormatted(false);
    d.w.StartElement("r", "urn:r");
    EXPECT_TRUE(d.w.DeclarePrefix("p", "urn:p"));
    EXPECT_FALSE(d.w.DeclarePrefix("p", "urn:other"));  // in scope already
    EXPECT_FALSE(d.w.DeclarePrefix("q", "urn:r"));      // urn:r has its prefix on r
    EXPECT_FALSE(d.w.DeclarePrefix("xml", "urn:x"));
    EXPECT_FALSE(d.w.DeclarePrefix("", "urn:x"));
    EXPECT_FALSE(d.w.DeclarePrefix("a:b", "urn:x"));
    d.w.StartElement("c", "urn:p");  // takes the declared prefix
    EXPECT_EQ(d.w.QualifyName("urn:p", "t"), "p:t");
    d.w.EndElement();
    d.w.WriteText("x");
    qmxml_test::ExpectThrow<CQmException>([&d] { d.w.DeclarePrefix("z", "urn:z"); },
                                           "Attributes must be added before elements");
    d.w.EndElement();
    d.w.EndDocument();
    EXPECT_EQ(d.Text(), "<AA:r xmlns:AA=\"urn:r\" xmlns:p=\"urn:p\"><p:c/>x</AA:r>");
}
