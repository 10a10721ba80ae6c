#include "qmxml/dom/xml_document.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cerrno>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dom/xml_document_loading.h"
#include "expect_throw.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/collections/element.h"
#include "qmxml/types/binary_data.h"
#include "qmxml/core/settings.h"
#include "qmxml/dom/xml_tree_builder.h"
#include "same_tree.h"
#include "temp_files.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;
using qmxml_test::SameTree;
using qmxml_test::TempDir;

namespace {

std::vector<unsigned char> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

// zlib framing with windowBits 15, gzip with 31.
std::vector<unsigned char> Compress(const std::string& text, int windowBits) {
    z_stream zs{};
    EXPECT_EQ(deflateInit2(&zs, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::vector<unsigned char> out(deflateBound(&zs, text.size()) + 64);
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    zs.avail_in = static_cast<uInt>(text.size());
    zs.next_out = out.data();
    zs.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&zs, Z_FINISH), Z_STREAM_END);
    out.resize(zs.total_out);
    deflateEnd(&zs);
    return out;
}

std::string StreamError(CXmlDocument& doc, std::vector<unsigned char> bytes) {
    return MessageOf([&] { doc.LoadXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size())); });
}

void LoadStream(CXmlDocument& doc, std::vector<unsigned char> bytes) {
    doc.LoadXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

std::size_t CountChildren(const CXmlElement* e) {
    std::size_t n = 0;
    for (const CXmlElement* c = e->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement()) ++n;
    return n;
}

// Restores the library-wide switches a test changes, the Fast Infoset reader
// included (later tests load Fast Infoset through it).
struct SettingsGuard {
    FastInfosetLoader loader = CXmlDocumentLoading::GetFastInfosetLoader();
    ~SettingsGuard() {
        AsyncFromXmlFile(false);
        ASCIIOnly(false);
        SetLocalCharEncoding(65001);
        CXmlDocument::SetMaxInflateRatio(1000);
        CXmlDocument::SetMinInflateLimit(std::uint64_t{64} << 20);
        CXmlDocumentLoading::SetFastInfosetLoader(loader);
    }
};

// About 300 KiB of varied content: namespaces, attributes, text, entities.
std::string LargeDocument() {
    std::string xml = "<?xml version=\"1.0\"?>\n<r:root xmlns:r=\"urn:r\" xmlns=\"urn:d\" a=\"1\">\n";
    for (int i = 0; i < 3000; ++i) {
        xml += "  <item n=\"" + std::to_string(i) + "\" r:k=\"v&amp;" + std::to_string(i % 7) + "\">";
        xml += "<name>caf\xc3\xa9 &lt;" + std::to_string(i) + "&gt;</name><r:v>" + std::string(i % 40, 'x');
        xml += "</r:v><![CDATA[<raw>]]></item>\r\n";
    }
    return xml + "</r:root>\n";
}

}  // namespace

TEST(XmlDocumentLoad, EmptyInputsAreRefusedOrFailInTheParser) {
    CXmlDocument doc;
    EXPECT_EQ(MessageOf([&] { doc.LoadXml(static_cast<const char*>("")); }), "XML String is empty!");
    unsigned char byte = '<';
    EXPECT_EQ(MessageOf([&] { doc.LoadXmlStream(&byte, 0); }), "XML Stream is empty!");
    // The UTF-16 buffer always holds its byte-order mark, so Expat sees it.
    const unsigned short empty16[] = {0};
    EXPECT_EQ(MessageOf([&] { doc.LoadXml(empty16); }), "no element found at line 1");
    EXPECT_EQ(doc.GetDocumentElement(), nullptr);
}

TEST(XmlDocumentLoad, BuildsNamesAttributesAndText) {
    CXmlDocument doc;
    doc.LoadXml("<?xml version='1.0'?>\n"
                "<a xmlns:p='u1' xmlns='d' x='1' p:x='2'>a<p:b q='&lt;'/>b<c>x\r\ny&#13;z</c></a>");
    const CXmlElement* a = doc.GetDocumentElement();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->GetLocalName(), "a");
    EXPECT_EQ(a->GetNamespaceURI(), "d");
    EXPECT_EQ(a->GetText(), "ab");
    ASSERT_EQ(a->GetAttributes().size(), 2u);  // declarations are not attributes here
    EXPECT_EQ(a->GetAttribute("x", ""), "1");
    EXPECT_EQ(a->GetAttribute("x", "u1"), "2");
    EXPECT_EQ(a->GetAttributes()[1]->GetNamespaceURI(), "u1");

    const CXmlElement* b = a->GetFirstElement();
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->GetLocalName(), "b");
    EXPECT_EQ(b->GetNamespaceURI(), "u1");
    EXPECT_EQ(b->GetAttribute("q", ""), "<");
    const CXmlElement* c = b->GetNextSiblingElement();
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->GetNamespaceURI(), "d");
    EXPECT_EQ(c->GetText(), "x\nyz");
    EXPECT_EQ(c->GetNextSiblingElement(), nullptr);

    EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "u1");
    EXPECT_EQ(doc.LookupNamespaceFromAlias(""), "d");
    EXPECT_EQ(doc.LookupNamespaceFromAlias(nullptr), "d");
    EXPECT_EQ(doc.LookupNamespaceFromAlias("q"), "");
}

TEST(XmlDocumentLoad, NamespaceDeclarationsAreDocumentWideAndResetOnReload) {
    CXmlDocument doc;
    doc.LoadXml("<a><b xmlns:p='u1'/><c xmlns:p='u2'><d xmlns='' /></c><e xmlns='urn:e'/></a>");
    EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "u2");
    EXPECT_EQ(doc.LookupNamespaceFromAlias(""), "urn:e");

    doc.LoadXml("<z/>");
    EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "");
    ASSERT_NE(doc.GetDocumentElement(), nullptr);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "z");
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement(), nullptr);
}

TEST(XmlDocumentLoad, Utf16StringsAreReadAsLittleEndianText) {
    const std::u16string text = u"<a xmlns='urn:\u00e9'>\u65e5\u672c<b/></a>";
    std::vector<unsigned short> units(text.begin(), text.end());
    units.push_back(0);
    CXmlDocument doc;
    doc.LoadXml(units.data());
    const CXmlElement* a = doc.GetDocumentElement();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->GetNamespaceURI(), "urn:\xc3\xa9");
    EXPECT_EQ(a->GetText(), "\xe6\x97\xa5\xe6\x9c\xac");
    EXPECT_EQ(CountChildren(a), 1u);
}

TEST(XmlDocumentLoad, NoNamespaceSchemaTypeKeepsQualifiedNames) {
    CXmlSerializationContext context;
    context.SetSchemaType(SchemaType_NoNamespaces);
    CXmlDocument doc(context);
    context.SetSchemaType(SchemaType_XmlSchema);  // read once, at construction
    doc.LoadXml("<p:a xmlns:p='u'><p:b/></p:a>");
    const CXmlElement* a = doc.GetDocumentElement();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->GetLocalName(), "p:a");
    EXPECT_EQ(a->GetNamespaceURI(), "");
    ASSERT_EQ(a->GetAttributes().size(), 1u);
    EXPECT_EQ(a->GetAttributes()[0]->GetLocalName(), "xmlns:p");
    EXPECT_EQ(a->GetAttributes()[0]->GetValue(), "u");
    EXPECT_EQ(a->GetFirstElement()->GetLocalName(), "p:b");
    EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "");
}

// Values are taken from the parser's buffer while it stays put; one that
// straddles the boundary of two input pieces, or mixes with references, line
// ends and CDATA, must come out whole.
TEST(XmlDocumentLoad, TextsAcrossInputPiecesAndReferencesStayWhole) {
    const std::string tail =
        "<v>value&amp;more</v><w>x<b/>y\r\nz&#13;</w><c>p<![CDATA[q\r]]>r</c><e>plain text</e></r>";
    CXmlSerializationContext keep;
    keep.SetStripCDATA(false);
    const std::size_t piece = 0x20000;
    for (std::size_t back = 0; back <= 40; ++back) {
        const std::string head = "<r><pad>";
        const std::string xml = head + std::string(piece - back - head.size() - 6, 'x') + "</pad>" + tail;
        CXmlDocument doc(keep);
        LoadStream(doc, Bytes(xml));
        const CXmlElement* v = doc.GetDocumentElement()->GetFirstElement()->GetNextSiblingElement();
        ASSERT_NE(v, nullptr);
        EXPECT_EQ(v->GetText(), "value&more") << back;
        const CXmlElement* w = v->GetNextSiblingElement();
        EXPECT_EQ(w->GetText(), "xy\nz") << back;
        const CXmlElement* c = w->GetNextSiblingElement();
        EXPECT_EQ(c->GetText(), "p<![CDATA[q\n]]>r") << back;
        EXPECT_EQ(c->GetNextSiblingElement()->GetText(), "plain text") << back;
    }
}

TEST(XmlDocumentLoad, CDataMarkersFollowTheContext) {
    const char* xml = "<a>x<![CDATA[1<2]]>y</a>";
    CXmlSerializationContext keep;
    keep.SetStripCDATA(false);
    CXmlDocument kept(keep);
    kept.LoadXml(xml);
    EXPECT_EQ(kept.GetDocumentElement()->GetText(), "x<![CDATA[1<2]]>y");

    CXmlDocument stripped;  // the default context strips
    stripped.LoadXml(xml);
    EXPECT_EQ(stripped.GetDocumentElement()->GetText(), "x1<2y");
}

namespace {
bool DropItems(CXmlElement* element) { return element->GetLocalName() == "item"; }
bool DropEverything(CXmlElement*) { return true; }
}  // namespace

TEST(XmlDocumentLoad, ElementFilterDropsCompletedSubtrees) {
    CXmlDocument doc(&DropItems);
    doc.LoadXml("<item><keep><item><x/></item>t</keep><item/><keep2/><item>z</item></item>");
    const CXmlElement* root = doc.GetDocumentElement();
    ASSERT_NE(root, nullptr);  // the document element stays
    EXPECT_EQ(root->GetLocalName(), "item");
    ASSERT_EQ(CountChildren(root), 2u);
    const CXmlElement* keep = root->GetFirstElement();
    EXPECT_EQ(keep->GetLocalName(), "keep");
    EXPECT_EQ(keep->GetText(), "t");
    EXPECT_EQ(keep->GetFirstElement(), nullptr);
    EXPECT_EQ(keep->GetNextSiblingElement()->GetLocalName(), "keep2");

    CXmlDocument none(&DropEverything, CXmlSerializationContext::m_defaultContext);
    none.LoadXml("<a>1<b>2</b>3</a>");
    EXPECT_EQ(none.GetDocumentElement()->GetFirstElement(), nullptr);
    EXPECT_EQ(none.GetDocumentElement()->GetText(), "13");
}

namespace {
bool DropOrders(CXmlElement* element) { return element->GetLocalName() == "Order"; }

// A root with count orders, each a small subtree with attributes and text.
std::string OrderBook(int count) {
    std::string xml = "<Orders xmlns='urn:o' source='test'>\n";
    for (int i = 0; i < count; ++i) {
        xml += "  <Order id='" + std::to_string(i) + "' note='an attribute value longer than inline'>";
        xml += "<Customer no='7'><Name>a customer name that needs the heap</Name></Customer>";
        xml += "<Line n='1'><Sku>ABC-1</Sku><Quantity>3</Quantity></Line>";
        xml += "<Line n='2'><Sku>XYZ-2</Sku><Description>text &amp; more text, on the heap</Description></Line>";
        xml += "</Order>\n";
    }
    return xml + "</Orders>\n";
}
}  // namespace

TEST(XmlDocumentLoad, FilterDroppingEveryOrderKeepsMemoryBounded) {
    const std::string xml = OrderBook(20000);  // about 7 MB

    CXmlDocument whole;
    LoadStream(whole, Bytes(xml));
    const auto full = CXmlTreeBuilder::GetPoolStatistics(whole);
    EXPECT_EQ(full.liveBlocks, 20000u * 18 + 3);
    EXPECT_GT(full.reservedBytes, 20000u * 18 * 48);

    CXmlDocument filtered(&DropOrders);
    LoadStream(filtered, Bytes(xml));
    const CXmlElement* root = filtered.GetDocumentElement();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetFirstElement(), nullptr);
    EXPECT_EQ(root->GetAttribute("source", ""), "test");
    // The line breaks and indentation around the dropped orders stay.
    EXPECT_EQ(root->GetText().size(), 1u + 20000 * 3);
    EXPECT_EQ(root->GetText().find_first_not_of(" \n"), std::string::npos);
    // Only the root is left, and the freed blocks of each order served the
    // next one: the pool never grew past a few small chunks.
    const auto trimmed = CXmlTreeBuilder::GetPoolStatistics(filtered);
    EXPECT_EQ(trimmed.liveBlocks, 3u);  // root, its attribute vector, one attribute
    EXPECT_LE(trimmed.reservedBytes, 16384u);

    // Reloading starts from an empty pool, and so does a document cleared by a failed load.
    LoadStream(filtered, Bytes("<a x='1'/>"));
    EXPECT_EQ(CXmlTreeBuilder::GetPoolStatistics(filtered).liveBlocks, 3u);
    EXPECT_EQ(StreamError(whole, Bytes("<a><b></a>")), "mismatched tag at line 1");
    EXPECT_EQ(CXmlTreeBuilder::GetPoolStatistics(whole).liveBlocks, 2u);  // the partial tree
}

TEST(XmlDocumentLoad, LoadedAttributesAndTextTakeTheirExactSize) {
    CXmlDocument doc;
    doc.LoadXml("<a x='1' y='a value longer than inline' z='3'>first part<b/> and the second part</a>");
    const CXmlElement* root = doc.GetDocumentElement();
    ASSERT_EQ(root->GetAttributes().size(), 3u);
    EXPECT_EQ(root->GetAttributes().capacity(), 3u);
    EXPECT_EQ(root->GetAttribute("y", ""), "a value longer than inline");
    EXPECT_EQ(root->GetAttributes()[1]->GetValue().capacity(), root->GetAttribute("y", "").size());
    EXPECT_EQ(root->GetText(), "first part and the second part");
    EXPECT_EQ(root->GetText().capacity(), root->GetText().size());
}

TEST(XmlDocumentLoad, MalformedInputReportsExpatMessageAndLine) {
    CXmlDocument doc;
    EXPECT_EQ(MessageOf([&] { doc.LoadXml("<a>\n<b>\n</a>"); }), "mismatched tag at line 3");
    // The partial tree stays until the next load.
    ASSERT_NE(doc.GetDocumentElement(), nullptr);
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetLocalName(), "b");

    EXPECT_EQ(MessageOf([&] { doc.LoadXml("<a>\xff\xfe</a>"); }), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(MessageOf([&] { doc.LoadXml("<a>\xc3(</a>"); }), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(StreamError(doc, Bytes("<a/><b/>")), "junk after document element at line 1");
    EXPECT_EQ(StreamError(doc, Bytes("  ")), "no element found at line 1");
}

TEST(XmlDocumentLoad, TextIsConvertedToTheLocalEncoding) {
    SettingsGuard restore;
    const char* xml = "<caf\xc3\xa9 a='\xc3\xa9'>\xc3\xa9t\xc3\xa9</caf\xc3\xa9>";
    CXmlDocument doc;

    SetLocalCharEncoding(28591);
    doc.LoadXml(xml);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "caf\xe9");
    EXPECT_EQ(doc.GetDocumentElement()->GetAttribute("a", ""), "\xe9");
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "\xe9t\xe9");
    EXPECT_EQ(MessageOf([&] { doc.LoadXml("<a>\xe6\x97\xa5</a>"); }),
              "The text can not be converted to the local character encoding [code page 28591]");

    ASCIIOnly(true);
    doc.LoadXml(xml);
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "caf\xc3\xa9");
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "\xc3\xa9t\xc3\xa9");
}

TEST(XmlDocumentLoad, CompressedStreamsLoadLikePlainOnes) {
    const std::string xml = LargeDocument();
    CXmlSerializationContext keep;
    keep.SetStripCDATA(false);
    CXmlDocument plain(keep), gzip(keep), zlib(keep);
    LoadStream(plain, Bytes(xml));
    LoadStream(gzip, Compress(xml, 31));
    LoadStream(zlib, Compress(xml, 15));
    EXPECT_TRUE(SameTree(plain.GetDocumentElement(), gzip.GetDocumentElement()));
    EXPECT_TRUE(SameTree(plain.GetDocumentElement(), zlib.GetDocumentElement()));
    EXPECT_EQ(CountChildren(plain.GetDocumentElement()), 3000u);
    EXPECT_EQ(gzip.LookupNamespaceFromAlias("r"), "urn:r");
}

TEST(XmlDocumentLoad, BrokenCompressedInputThrows) {
    CXmlDocument doc;
    const std::string xml = LargeDocument();
    for (int bits : {31, 15}) {
        std::vector<unsigned char> packed = Compress(xml, bits);
        packed.resize(packed.size() / 2);
        EXPECT_EQ(StreamError(doc, packed), "The compressed data is truncated or corrupt") << bits;
    }
    std::vector<unsigned char> corrupt = Compress(xml, 31);
    corrupt[corrupt.size() - 6] ^= 0xff;  // the CRC no longer matches
    EXPECT_EQ(StreamError(doc, corrupt), "The compressed data is truncated or corrupt");
    EXPECT_EQ(StreamError(doc, {0x1f, 0x8b}), "The compressed data is truncated or corrupt");

    // "x" then 0x01 forms a valid zlib header, but what follows is no deflate data.
    EXPECT_EQ(StreamError(doc, Bytes("x\x01?<a/>")), "not well-formed (invalid token) at line 1");
}

TEST(XmlDocumentLoad, DecompressionBombIsRefused) {
    SettingsGuard restore;
    // 20 MB of zeros deflates to about 20 KB, a ratio near 1000.
    z_stream zs{};
    ASSERT_EQ(deflateInit2(&zs, Z_BEST_COMPRESSION, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::vector<unsigned char> zeros(1 << 20, 0), packed(1 << 20);
    std::size_t used = 0;
    for (int i = 0; i < 20; ++i) {
        zs.next_in = zeros.data();
        zs.avail_in = static_cast<uInt>(zeros.size());
        int rc;
        do {
            zs.next_out = packed.data() + used;
            zs.avail_out = static_cast<uInt>(packed.size() - used);
            rc = deflate(&zs, i == 19 ? Z_FINISH : Z_NO_FLUSH);
            used = packed.size() - zs.avail_out;
        } while (zs.avail_in > 0 || (i == 19 && rc != Z_STREAM_END));
    }
    deflateEnd(&zs);
    packed.resize(used);

    CXmlDocument::SetMaxInflateRatio(10);
    CXmlDocument::SetMinInflateLimit(1 << 20);
    CXmlDocument doc;
    EXPECT_EQ(StreamError(doc, packed), "The inflated data exceeds the limit of 1048576 bytes");

    CXmlDocument::SetMaxInflateRatio(200);
    const unsigned long long limit = 200ull * packed.size();
    EXPECT_EQ(StreamError(doc, packed), "The inflated data exceeds the limit of " + std::to_string(limit) + " bytes");

    // Within the limit the zeros inflate fine, and then fail as text.
    CXmlDocument::SetMaxInflateRatio(1000);
    CXmlDocument::SetMinInflateLimit(32 << 20);
    EXPECT_EQ(StreamError(doc, packed), "not well-formed (invalid token) at line 1");
}

TEST(XmlDocumentLoad, FastInfosetLoaderSeesInflatedStreamInput) {
    SettingsGuard restore;
    static std::string seen;
    CXmlDocumentLoading::SetFastInfosetLoader(
        [](CXmlDocument& doc, const unsigned char* data, std::uint32_t length, const CXmlSerializationContext&) {
            seen.assign(reinterpret_cast<const char*>(data), length);
            if (seen.compare(0, 4, "\xe0\0\0\x01", 4) != 0) return false;
            CXmlTreeBuilder::SetName(CXmlTreeBuilder::CreateDocumentElement(doc), "fi", "urn:fi");
            return true;
        });
    CXmlDocument doc;
    LoadStream(doc, Compress(std::string("\xe0\0\0\x01rest", 8), 31));
    EXPECT_EQ(seen, std::string("\xe0\0\0\x01rest", 8));
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "fi");

    LoadStream(doc, Bytes("<x/>"));  // declined: parsed as text
    EXPECT_EQ(seen, "<x/>");
    EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "x");

    doc.LoadXml("<y/>");  // strings are text only
    EXPECT_EQ(seen, "<x/>");
}

TEST(XmlDocumentFile, SyncAndChunkedReadsBuildTheSameTree) {
    SettingsGuard restore;
    TempDir dir;
    const std::string xml = LargeDocument();
    ASSERT_GT(xml.size(), 0x20000u * 2);
    const std::string file = dir.Write("large.xml", xml);
    CXmlSerializationContext keep;
    keep.SetStripCDATA(false);

    CXmlDocument fromStream(keep), sync(keep), chunked(keep);
    LoadStream(fromStream, Bytes(xml));
    sync.Load(file.c_str());
    AsyncFromXmlFile(true);
    chunked.Load(file.c_str());
    EXPECT_TRUE(SameTree(fromStream.GetDocumentElement(), sync.GetDocumentElement()));
    EXPECT_TRUE(SameTree(sync.GetDocumentElement(), chunked.GetDocumentElement()));
    EXPECT_EQ(chunked.LookupNamespaceFromAlias(""), "urn:d");

    // Exactly one chunk: the end of input still reaches the parser.
    std::string exact = "<a>" + std::string(0x20000 - 7, 'x') + "</a>";
    ASSERT_EQ(exact.size(), 0x20000u);
    const std::string exactFile = dir.Write("exact.xml", exact);
    const std::string openFile = dir.Write("open.xml", "<a>" + std::string(0x20000 - 3, 'x'));
    for (bool async : {false, true}) {
        AsyncFromXmlFile(async);
        CXmlDocument doc;
        doc.Load(exactFile.c_str());
        EXPECT_EQ(doc.GetDocumentElement()->GetText().size(), 0x20000u - 7);
        EXPECT_EQ(MessageOf([&] { doc.Load(openFile.c_str()); }), "no element found at line 1") << async;
    }
}

TEST(XmlDocumentFile, CompressedFilesInflateOnTheSyncPathOnly) {
    SettingsGuard restore;
    TempDir dir;
    const std::string xml = "<a xmlns='u'><b>t</b></a>";
    const std::vector<unsigned char> packed = Compress(xml, 31);
    const std::string file = dir.Write("a.xml.gz", std::string(packed.begin(), packed.end()));
    CXmlDocument doc;
    doc.Load(file.c_str());
    EXPECT_EQ(doc.GetDocumentElement()->GetNamespaceURI(), "u");
    EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetText(), "t");

    AsyncFromXmlFile(true);
    EXPECT_EQ(MessageOf([&] { doc.Load(file.c_str()); }), "not well-formed (invalid token) at line 1");
}

TEST(XmlDocumentFile, FileErrorsCarryNameAndErrno) {
    SettingsGuard restore;
    TempDir dir;
    const std::string empty = dir.Write("empty.xml", "");
    const std::string missing = dir.Path() + "/missing.xml";
    for (bool async : {false, true}) {
        AsyncFromXmlFile(async);
        CXmlDocument doc;
        EXPECT_EQ(MessageOf([&] { doc.Load(empty.c_str()); }), "Invalid or empty XML document");
        EXPECT_EQ(MessageOf([&] { doc.Load(missing.c_str()); }),
                  "Failed to open the file [" + missing + "] Error [0x00000002]");
        // A directory opens but cannot be read (EISDIR).
        EXPECT_EQ(MessageOf([&] { doc.Load(dir.Path().c_str()); }),
                  "Failed to read the contents of the file [" + dir.Path() + "] Error [0x00000015]");
    }
}

TEST(XmlDocumentLoad, DeepNestingBuildsTheWholeChain) {
    constexpr std::size_t kDepth = 1000000;
    std::string xml;
    xml.reserve(kDepth * 7);
    for (std::size_t i = 0; i < kDepth; ++i) xml += "<a>";
    xml += "x";
    for (std::size_t i = 0; i < kDepth; ++i) xml += "</a>";
    auto doc = std::make_unique<CXmlDocument>();
    LoadStream(*doc, Bytes(xml));
    std::size_t depth = 1;
    const CXmlElement* e = doc->GetDocumentElement();
    while (e->GetFirstElement() != nullptr) {
        e = e->GetFirstElement();
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);
    EXPECT_EQ(e->GetText(), "x");
    doc.reset();  // tears down without recursion
}

TEST(XmlDocumentLoad, RepeatedWhitespaceTextsAreStoredOnce) {
    CXmlDocument doc;
    doc.LoadXml("<r>\n  <a>\n    <b>one</b>\n  </a>\n  <a>\n    <b>two</b>\n  </a>\n  <a> <b/> </a>\n</r>");
    const CXmlElement* first = doc.GetDocumentElement()->GetFirstElement();
    const CXmlElement* second = first->GetNextSiblingElement();
    const CXmlElement* third = second->GetNextSiblingElement();
    EXPECT_EQ(doc.GetDocumentElement()->GetText(), "\n  \n  \n  \n");
    EXPECT_EQ(first->GetText(), "\n    \n  ");
    EXPECT_EQ(second->GetText(), "\n    \n  ");
    EXPECT_EQ(&first->GetText(), &second->GetText());  // one shared string
    EXPECT_EQ(third->GetText(), "  ");
    EXPECT_EQ(first->GetFirstElement()->GetText(), "one");
    EXPECT_EQ(second->GetFirstElement()->GetText(), "two");
    EXPECT_EQ(third->GetFirstElement()->GetText(), "");
    // Carriage returns written as references are dropped before sharing.
    doc.LoadXml("<r><a>&#13;\n</a><a>\n</a></r>");
    const CXmlElement* a = doc.GetDocumentElement()->GetFirstElement();
    EXPECT_EQ(a->GetText(), "\n");
    EXPECT_EQ(&a->GetText(), &a->GetNextSiblingElement()->GetText());
}

namespace {
bool DropOdd(CXmlElement* element) { return element->GetLocalName() == "odd"; }
}  // namespace

TEST(XmlDocumentLoad, TextsStayRightWhenAFilterRecyclesNodes) {
    std::string xml = "<r>\n";
    for (int i = 0; i < 200; ++i) {
        xml += "  <odd>\n    <v>dropped value number " + std::to_string(i) + "</v>\n  </odd>\n";
        xml += "  <even n='" + std::to_string(i) + "'>\n    <v>" + std::to_string(i) + "</v>\n    <w>kept, and long enough for the heap " +
               std::to_string(i) + "</w>\n  </even>\n";
    }
    xml += "</r>";
    CXmlDocument doc(&DropOdd);
    LoadStream(doc, Bytes(xml));
    int i = 0;
    for (const CXmlElement* even = doc.GetDocumentElement()->GetFirstElement(); even != nullptr;
         even = even->GetNextSiblingElement(), ++i) {
        ASSERT_EQ(even->GetLocalName(), "even");
        EXPECT_EQ(even->GetAttribute("n", ""), std::to_string(i));
        EXPECT_EQ(even->GetText(), "\n    \n    \n  ");
        const CXmlElement* v = even->GetFirstElement();
        EXPECT_EQ(v->GetText(), std::to_string(i));
        EXPECT_EQ(v->GetNextSiblingElement()->GetText(), "kept, and long enough for the heap " + std::to_string(i));
    }
    EXPECT_EQ(i, 200);
    EXPECT_EQ(doc.GetDocumentElement()->GetText().size(), 1u + 400 * 3);
}

TEST(XmlDocumentLoad, NodeMemoryOfAFreedDocumentServesTheNextLoad) {
    EXPECT_EQ(CXmlDocument::GetNodeCacheLimit(), std::size_t{128} << 20);  // the default
    const std::string xml = OrderBook(20000);  // about 7 MB, several full-size chunks
    CXmlDocument::SetNodeCacheLimit(0);
    CXmlDocument::SetNodeCacheLimit(std::size_t{128} << 20);
    CXmlDocument first;
    LoadStream(first, Bytes(xml));
    {
        CXmlDocument scratch;
        LoadStream(scratch, Bytes(xml));
    }
    const std::size_t kept = CXmlDocument::GetNodeCacheSize();
    EXPECT_GT(kept, 0u);
    EXPECT_EQ(kept % (std::size_t{2} << 20), 0u);

    // Built in recycled memory, the tree is the same; reloading recycles too.
    CXmlDocument second;
    LoadStream(second, Bytes(xml));
    EXPECT_LT(CXmlDocument::GetNodeCacheSize(), kept);
    EXPECT_TRUE(SameTree(first.GetDocumentElement(), second.GetDocumentElement()));
    LoadStream(second, Bytes(xml));
    EXPECT_TRUE(SameTree(first.GetDocumentElement(), second.GetDocumentElement()));

    CXmlDocument::SetNodeCacheLimit(0);  // gives everything back
    EXPECT_EQ(CXmlDocument::GetNodeCacheSize(), 0u);
    EXPECT_EQ(CXmlDocument::GetNodeCacheLimit(), 0u);
    CXmlDocument::SetNodeCacheLimit(std::size_t{128} << 20);
}

// ------------------------------------------------------------ detected format

namespace {

// Repetitive enough for the one-shot compression, which refuses data that does not shrink.
std::string Sample() {
    std::string xml = "<a xmlns='urn:a'>";
    for (int i = 0; i < 20; ++i) xml += "<b k='v'>text</b>";
    return xml + "</a>";
}

std::string AsString(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// The small document as Fast Infoset, written by the library's own writer.
std::string FastInfoset(CompressionType compression) {
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(Sample().c_str());
    return AsString(element->ToFastInfosetStream(FInfoDecl_None, CXmlSerializationContext::m_defaultContext,
                                                 compression));
}

std::string Utf16(const std::string& ascii, bool bigEndian, bool mark) {
    std::string out;
    if (mark) out += bigEndian ? "\xfe\xff" : "\xff\xfe";
    for (char c : ascii) {
        out += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    }
    return out;
}

struct FormatCase {
    const char* name;
    std::string (*input)();
    XmlInputFormat format;
    CompressionType compression;
    const char* encoding;
    const char* description;
};

void PrintTo(const FormatCase& c, std::ostream* os) { *os << c.name; }

const FormatCase kFormatCases[] = {
    {"PlainText", [] { return Sample(); }, XmlInputFormat_Text, CompressionType_None, "UTF-8",
     "XML text"},
    {"DeclaredEncoding",
     [] { return std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a>caf\xe9</a>"); },
     XmlInputFormat_Text, CompressionType_None, "ISO-8859-1", "XML text"},
    {"Utf16WithByteOrderMark", [] { return Utf16(Sample(), false, true); }, XmlInputFormat_Text, CompressionType_None,
     "UTF-16", "XML text"},
    {"Utf16BigEndianWithoutMark", [] { return Utf16(Sample(), true, false); }, XmlInputFormat_Text,
     CompressionType_None, "UTF-16", "XML text"},
    {"GzipText",
     [] {
         const auto bytes = Compress(Sample(), 31);
         return std::string(bytes.begin(), bytes.end());
     },
     XmlInputFormat_Text, CompressionType_GZip, "UTF-8", "gzip-compressed XML text"},
    {"ZlibText",
     [] {
         const auto bytes = Compress("<?xml version='1.0' encoding='UTF-8'?><a/>", 15);
         return std::string(bytes.begin(), bytes.end());
     },
     XmlInputFormat_Text, CompressionType_ZLib, "UTF-8", "zlib-compressed XML text"},
    {"FastInfoset", [] { return FastInfoset(CompressionType_None); }, XmlInputFormat_FastInfoset,
     CompressionType_None, "", "Fast Infoset"},
    {"GzipFastInfoset", [] { return FastInfoset(CompressionType_GZip); }, XmlInputFormat_FastInfoset,
     CompressionType_GZip, "", "gzip-compressed Fast Infoset"},
    {"ZlibFastInfoset", [] { return FastInfoset(CompressionType_ZLib); }, XmlInputFormat_FastInfoset,
     CompressionType_ZLib, "", "zlib-compressed Fast Infoset"},
};

class DetectedFormat : public ::testing::TestWithParam<FormatCase> {};

}  // namespace

TEST_P(DetectedFormat, StreamAndFileLoadsReportWhatTheyRead) {
    const FormatCase& c = GetParam();
    const std::string input = c.input();
    CXmlDocument stream;
    LoadStream(stream, Bytes(input));
    EXPECT_EQ(stream.GetDetectedFormat().format, c.format);
    EXPECT_EQ(stream.GetDetectedFormat().compression, c.compression);
    EXPECT_EQ(stream.GetDetectedFormat().encoding, c.encoding);
    EXPECT_EQ(stream.GetDetectedFormat().Describe(), c.description);

    TempDir dir;
    CXmlDocument file;
    file.Load(dir.Write("input", input).c_str());
    EXPECT_EQ(file.GetDetectedFormat().Describe(), c.description);
    EXPECT_EQ(file.GetDetectedFormat().encoding, c.encoding);
}

INSTANTIATE_TEST_SUITE_P(Inputs, DetectedFormat, ::testing::ValuesIn(kFormatCases),
                         [](const ::testing::TestParamInfo<FormatCase>& info) { return std::string(info.param.name); });

TEST(XmlDocumentDetectedFormat, StringsChunkedFilesAndReloads) {
    SettingsGuard guard;
    CXmlDocument doc;
    EXPECT_EQ(doc.GetDetectedFormat().format, XmlInputFormat_None);
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "");

    doc.LoadXml("<?xml version='1.0' encoding='utf-8'?><a/>");
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "XML text");
    EXPECT_EQ(doc.GetDetectedFormat().encoding, "utf-8");  // as declared

    const std::vector<unsigned short> units = {'<', 'a', '/', '>', 0};
    doc.LoadXml(units.data());
    EXPECT_EQ(doc.GetDetectedFormat().encoding, "UTF-16");

    TempDir dir;
    AsyncFromXmlFile(true);
    doc.Load(dir.Write("chunked.xml", "<?xml version='1.0' encoding='US-ASCII'?><a/>").c_str());
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "XML text");
    EXPECT_EQ(doc.GetDetectedFormat().encoding, "US-ASCII");
    AsyncFromXmlFile(false);

    // A later load forgets what the earlier one found.
    LoadStream(doc, Bytes(FastInfoset(CompressionType_GZip)));
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "gzip-compressed Fast Infoset");
    doc.LoadXml("<a/>");
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "XML text");
    EXPECT_EQ(doc.GetDetectedFormat().compression, CompressionType_None);
}

TEST(XmlDocumentDetectedFormat, FailedLoadsStillTellWhatTheInputWasReadAs) {
    CXmlDocument doc;
    // "x^" looks like a zlib header, but "F" starts a block of a type deflate
    // does not have: parsed, and refused, as text.
    EXPECT_EQ(StreamError(doc, Bytes("x^F<a/>")), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(doc.GetDetectedFormat().Describe(), "XML text");
    EXPECT_EQ(doc.GetDetectedFormat().compression, CompressionType_None);
    // A valid header and a cut deflate stream: compressed, content unknown.
    EXPECT_EQ(StreamError(doc, Bytes("x^<a/>")), "The compressed data is truncated or corrupt");
    EXPECT_EQ(doc.GetDetectedFormat().compression, CompressionType_ZLib);
    EXPECT_EQ(doc.GetDetectedFormat().format, XmlInputFormat_None);

    std::string broken = FastInfoset(CompressionType_None);
    broken.resize(broken.size() / 2);
    EXPECT_NE(StreamError(doc, Bytes(broken)), "<no exception>");
    EXPECT_EQ(doc.GetDetectedFormat().format, XmlInputFormat_FastInfoset);

    EXPECT_EQ(StreamError(doc, std::vector<unsigned char>()), "XML Stream is empty!");
    EXPECT_EQ(doc.GetDetectedFormat().format, XmlInputFormat_None);
}
