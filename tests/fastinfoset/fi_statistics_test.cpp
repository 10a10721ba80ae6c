#include <gtest/gtest.h>

#include <zlib.h>

#include <string>
#include <vector>

#include <qmxml/core/exception.h>
#include <qmxml/core/serialization_context.h>
#include <qmxml/dom/xml_document.h>
#include <qmxml/fastinfoset/fi_statistics.h>
#include <qmxml/fastinfoset/fi_writer.h>

using namespace QmXmlLib10;

namespace {

using Octets = std::vector<unsigned char>;

Octets Of(const CBinaryData& data) { return Octets(data.GetData(), data.GetData() + data.GetLength()); }

void Load(CXmlDocument& doc, Octets octets) {
    doc.LoadXmlStream(octets.data(), static_cast<std::uint32_t>(octets.size()));
}

// <order xmlns="urn:shop" xmlns:AA="urn:extra" id="7" AA:flag="yes">
//   <item sku="A1">ab</item> <item sku="A1">ab</item>
//   <note xml:lang="en">a text too long to index</note> <AA:tag>ab</AA:tag>
// </order>
void WriteOrder(CFastInfosetWriter& w) {
    w.StartDocument();
    w.SetDefaultNamespace("urn:shop");
    w.StartElement("order", "urn:shop");
    w.WriteAttribute("id", "", "7");
    w.WriteAttribute("flag", "urn:extra", "yes");
    for (int i = 0; i < 2; ++i) {
        w.StartElement("item", "urn:shop");
        w.WriteAttribute("sku", "", "A1");
        w.WriteText("ab");
        w.EndElement();
    }
    w.StartElement("note", "urn:shop");
    w.WriteAttribute("lang", CXmlWriter::XmlNamespaceURI, "en");
    w.WriteText("a text too long to index");
    w.EndElement();
    w.StartElement("tag", "urn:extra");
    w.WriteText("ab");
    w.EndElement();
    w.EndElement();
    w.EndDocument();
}

void ExpectCounts(const CFastInfosetStatistics& s, const CFIVocabulary& v) {
    EXPECT_EQ(s.elementNames, v.GetElementNamesTable().GetCount());
    EXPECT_EQ(s.attributeNames, v.GetAttributeNamesTable().GetCount());
    EXPECT_EQ(s.prefixes, v.GetPrefixNamesTable().GetCount());
    EXPECT_EQ(s.namespaceNames, v.GetNamespaceNamesTable().GetCount());
    EXPECT_EQ(s.localNames, v.GetLocalNamesTable().GetCount());
    EXPECT_EQ(s.attributeValues, v.GetAttributeValuesTable().GetCount());
    EXPECT_EQ(s.characterChunks, v.GetCharacterChunksTable().GetCount());
    EXPECT_EQ(s.restrictedAlphabets, v.GetRestrictedAlphabets().size());
}

}  // namespace

TEST(FastInfosetStatistics, CountsEveryTableOfAHandCountedDocument) {
    CBinaryData out;
    CFastInfosetWriter writer(out, CFastInfosetContext{});
    WriteOrder(writer);
    CXmlDocument doc;
    Load(doc, Of(out));
    const CFastInfosetStatistics* s = doc.GetFastInfosetStatistics();
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->elementNames, 4u);    // order, item, note, AA:tag
    EXPECT_EQ(s->attributeNames, 4u);  // id, AA:flag, sku, xml:lang
    EXPECT_EQ(s->prefixes, 2u);        // xml (built in), AA
    EXPECT_EQ(s->namespaceNames, 3u);  // the XML namespace (built in), urn:shop, urn:extra
    EXPECT_EQ(s->localNames, 8u);      // order id flag item sku note lang tag
    EXPECT_EQ(s->otherNCNames, 0u);
    EXPECT_EQ(s->otherURIs, 0u);
    EXPECT_EQ(s->attributeValues, 4u);   // 7, yes, A1 (once), en
    EXPECT_EQ(s->characterChunks, 1u);   // ab (once); the long text is never indexed
    EXPECT_EQ(s->otherStrings, 0u);
    EXPECT_EQ(s->restrictedAlphabets, 2u);  // the two built-in alphabets
    // The reader numbered exactly what the writer numbered.
    ExpectCounts(*s, writer.GetVocabulary());
}

TEST(FastInfosetStatistics, CountsStringsTheReaderDoesNotKeep) {
    const Octets octets = {
        0xE0, 0x00, 0x00, 0x01, 0x00,
        0xE1, 0x00, 't', 0x41, 'd', 'd',  // processing instruction: new target, content added
        0xE2, 0x41, 'h', 'i',              // comment, added
        0x3C, 0x00, 'a',                   // element a
        0xE1, 0x80, 0x80,                  // processing instruction: both by index 1
        0xE2, 0x01, 'n', 'o',              // comment, not added
        0xFF};
    CXmlDocument doc;
    Load(doc, octets);
    const CFastInfosetStatistics* s = doc.GetFastInfosetStatistics();
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->otherNCNames, 1u);
    EXPECT_EQ(s->otherStrings, 2u);
    EXPECT_EQ(s->otherURIs, 0u);
    EXPECT_EQ(s->elementNames, 1u);
    EXPECT_EQ(s->localNames, 1u);
    EXPECT_EQ(s->prefixes, 1u);
    EXPECT_EQ(s->namespaceNames, 1u);
    EXPECT_EQ(s->attributeNames, 0u);
    EXPECT_EQ(s->attributeValues, 0u);
    EXPECT_EQ(s->characterChunks, 0u);
}

TEST(FastInfosetStatistics, CountsStartFromTheContextVocabulary) {
    CXmlSerializationContext context;
    CFastInfosetContext& fi = context.GetFIContext();
    fi.SetUseGeneratedVocabulary(true);
    fi.GetVocabulary()->AddElement("", "urn:v", "known");
    fi.GetVocabulary()->AddAttributeValue("x");
    CBinaryData out;
    CFastInfosetWriter writer(out, fi);
    WriteOrder(writer);
    CXmlDocument doc(context);
    Load(doc, Of(out));
    const CFastInfosetStatistics* s = doc.GetFastInfosetStatistics();
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->elementNames, 5u);
    EXPECT_EQ(s->namespaceNames, 4u);  // urn:v too
    EXPECT_EQ(s->localNames, 9u);
    EXPECT_EQ(s->attributeValues, 5u);
    ExpectCounts(*s, writer.GetVocabulary());
}

TEST(FastInfosetStatistics, OnlyWhileTheLastLoadWasFastInfoset) {
    CBinaryData out;
    {
        CFastInfosetWriter writer(out, CFastInfosetContext{});
        WriteOrder(writer);
    }
    CXmlDocument doc;
    EXPECT_EQ(doc.GetFastInfosetStatistics(), nullptr);
    doc.LoadXml("<order/>");
    EXPECT_EQ(doc.GetFastInfosetStatistics(), nullptr);

    Load(doc, Of(out));
    ASSERT_NE(doc.GetFastInfosetStatistics(), nullptr);
    doc.LoadXml("<order/>");
    EXPECT_EQ(doc.GetFastInfosetStatistics(), nullptr);  // not left from the earlier load

    // Compressed Fast Infoset is counted once inflated.
    uLongf size = compressBound(out.GetLength());
    Octets packed(size);
    ASSERT_EQ(compress(packed.data(), &size, out.GetData(), out.GetLength()), Z_OK);
    packed.resize(size);
    Load(doc, packed);
    ASSERT_NE(doc.GetFastInfosetStatistics(), nullptr);
    EXPECT_EQ(doc.GetFastInfosetStatistics()->localNames, 8u);

    // A document that fails part-way leaves none.
    Octets truncated = Of(out);
    truncated.pop_back();
    try {
        Load(doc, truncated);
        ADD_FAILURE() << "the truncated document loaded";
    } catch (const CQmException& e) {
        EXPECT_STREQ(e.what(), "Failed to parse FastInfoset. Unexpected End of File.");
    }
    EXPECT_EQ(doc.GetFastInfosetStatistics(), nullptr);
}
