#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include <string>

#include "expect_throw.h"
#include "test_objects.h"

using namespace QmXmlLib10;
using qmxml_test::MessageOf;
using qmxml_test::RecordingSink;
using qmxml_test::SilentWriter;
using Rule = CWhitespaceUtils::WhitespaceRule;

namespace {

// Exposes the protected reading and writing of a collection.
template <class Col>
class Exposed : public Col {
public:
    using Col::Col;
    using Col::FromXml_Int;
    using Col::ToXml_Int;
};

class TextWriter : public SilentWriter {
public:
    TextWriter() : SilentWriter("TextWriter") {}
    void StartElement(const char* name, const char* ns) override {
        CXmlWriter::StartElement(name, ns);
        out += std::string("<") + name + "{" + ns + "}>";
    }
    void WriteText(const char* value, ItemType type) override {
        out += value;
        types += std::to_string(type) + ";";
    }
    void EndElement() override {
        CXmlWriter::EndElement();
        out += "</>";
    }
    std::string out, types;
};

}  // namespace

TEST(PrimitiveCollections, TypedAddGetRemoveAndEvents) {
    CSmartPtr<Ci4Col> numbers = new Ci4Col("Quantity", "urn:o", 0, 3);
    RecordingSink sink;
    numbers->AddEventListener(&sink);
    numbers->Add(5);
    numbers->InsertAt(0, 4);
    numbers->AddFromString(" 6\n");
    EXPECT_EQ(numbers->GetCount(), 3);
    EXPECT_EQ(numbers->GetItem(0), 4);
    EXPECT_EQ(numbers->GetItem(2), 6);
    EXPECT_EQ(numbers->GetItemAsString(1), "5");
    EXPECT_EQ(sink.events.size(), 9u);
    numbers->Remove(0);
    EXPECT_EQ(sink.Types().back(), IEventSink::MsgType_CollectionChange);
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { numbers->GetItem(2); }), "Index 2 is out of range, use 0 - 1");
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { numbers->InsertAt(3, 1); }), "Index out of range");
    numbers->SetItem(0, 50);
    EXPECT_EQ(numbers->GetItem(0), 50);
    numbers->Clear();
    EXPECT_EQ(numbers->GetCount(), 0);

    CSmartPtr<CstringCol> strings = new CstringCol("Note", "");
    strings->AddFromString("  keep\r\n  spaces ");
    EXPECT_EQ(strings->GetItem(0), "  keep\n  spaces ");  // strings preserve, only line ends normalise
    CSmartPtr<CdecimalCol> decimals = new CdecimalCol("Price", "");
    decimals->AddFromString(" 1.50 ");
    EXPECT_EQ(decimals->GetItemAsString(0), decimals->GetItem(0).ToString());
    CSmartPtr<ChexBinaryCol> hex = new ChexBinaryCol("Ref", "");
    hex->AddFromString("0a1B");
    EXPECT_EQ(hex->GetItemAsString(0), "0A1B");
}

// Booleans are the one item type a vector cannot hand out by reference; the
// collection must still give references, pointers in its events and range-for.
TEST(PrimitiveCollections, BooleansAddReadWalkAndWriteLikeEveryOtherType) {
    CSmartPtr<CbooleanCol> flags = new CbooleanCol("Flag", "urn:o");
    RecordingSink sink;
    flags->AddEventListener(&sink);
    flags->Add(true);
    flags->AddFromString(" 0 ");
    flags->InsertAt(1, true);
    ASSERT_EQ(flags->GetCount(), 3);
    const bool& first = flags->GetItem(0);
    flags->Add(false);  // a reference to an item outlives appending after it
    EXPECT_TRUE(first);
    EXPECT_FALSE(flags->GetItem(2));
    EXPECT_EQ(flags->GetItemAsString(2), "false");
    std::string walked;
    for (bool b : *flags) walked += b ? '1' : '0';
    EXPECT_EQ(walked, "1100");
    EXPECT_EQ(sink.events.size(), 12u);
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { flags->AddFromString("yes"); }),
              "A Boolean Value read from an XML document was invalid [yes]. Valid values are 'true', 'false', '1', "
              "or '0'");
    flags->SetItem(3, true);
    flags->Remove(0);

    CSmartPtr<Exposed<CbooleanCol>> exposed = new Exposed<CbooleanCol>("Flag", "urn:o");
    exposed->Add(false);
    exposed->Add(true);
    TextWriter w;
    w.StartElement("Card", "urn:o");
    exposed->ToXml_Int(&w, false, "Flag", CXmlSerializationContext::m_defaultContext, false);
    EXPECT_EQ(w.out, "<Card{urn:o}><Flag{urn:o}>false</><Flag{urn:o}>true</>");
}

TEST(PrimitiveCollections, ConversionAndFacetErrorsLeaveTheCollectionUnchanged) {
    CSmartPtr<Ci4Col> bounded = new Ci4Col("Quantity", "", 0, -1, "", -1, -1, "1", "10000", "", "", -1,
                                           CWhitespaceUtils::WhitespaceRule_Collapse, "");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] { bounded->AddFromString("12x"); }),
              "The value [12x] can not be converted to a i4");
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { bounded->AddFromString("0"); }),
              "Invalid Value for Quantity [0]");
    EXPECT_THROW(bounded->Add(10001), CQmValidationException);
    EXPECT_EQ(bounded->GetCount(), 0);
    bounded->Add(10000);
    EXPECT_THROW(bounded->SetItem(0, 0), CQmValidationException);
    EXPECT_EQ(bounded->GetItem(0), 10000);

    CSmartPtr<CstringCol> skus = new CstringCol("Sku", "", 0, -1, "[A-Z]{3}-\\d{4}", -1, -1, "", "", "", "", -1,
                                                CWhitespaceUtils::WhitespaceRule_Preserve, "");
    skus->AddFromString("ABC-1234");
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { skus->AddFromString("abc-1234"); }),
              "Invalid Value for Sku [abc-1234]");
    EXPECT_EQ(skus->GetCount(), 1);
}

TEST(PrimitiveCollections, DateCollectionsRefuseOtherDateTypes) {
    CSmartPtr<CdateCol> dates = new CdateCol("OrderDate", "");
    dates->AddFromString(" 2023-11-13 ");
    dates->Add(CDateTime(2024, 2, 29));
    EXPECT_EQ(dates->GetItemAsString(0), "2023-11-13");
    EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { dates->Add(CDateTime("2023-11-13T10:00:00")); }),
              "Dates added to this collection must be of type dt_date");
    EXPECT_THROW(dates->AddFromString("2023-11"), CQmInvalidValueException);
    EXPECT_EQ(dates->GetCount(), 2);

    struct Case {
        CSmartPtr<CdatetimeBaseCol> col;
        const char* good;
        const char* printed;
        const char* otherShape;
        const char* message;
    };
    Case cases[] = {
        {new CdatetimeCol("a", ""), "2001-10-26T21:32:52+02:00", "2001-10-26T21:32:52+02:00", "",
         "Dates added to this collection must be of type dt_dateTime"},
        {new CtimeCol("a", ""), "12:30:00.5", "12:30:00.5", "", "Dates added to this collection must be of type dt_time"},
        {new CyearMonthCol("a", ""), "2034-03", "2034-03", "", "Dates added to this collection must be of type dt_gYearMonth"},
        {new CmonthDayCol("a", ""), "--02-29", "--02-29", "", "Dates added to this collection must be of type dt_gMonthDay"},
        {new CyearCol("a", ""), "2031", "2031", "--05", "Dates added to this collection must be of type dt_gYear"},
        {new CmonthCol("a", ""), "--05", "--05", "---05", "Dates added to this collection must be of type dt_gMonth"},
        {new CdayCol("a", ""), "---05", "---05", "--05", "Dates added to this collection must be of type dt_gDay"},
    };
    for (Case& c : cases) {
        c.col->AddFromString(c.good);
        EXPECT_EQ(c.col->GetItemAsString(0), c.printed) << c.good;
        EXPECT_THROW(c.col->AddFromString("not a date"), CQmInvalidValueException) << c.good;
        if (*c.otherShape) {
            EXPECT_EQ(MessageOf<CQmInvalidParamException>([&] { c.col->AddFromString(c.otherShape); }), c.message);
        }
        EXPECT_EQ(c.col->GetCount(), 1);
    }

    // Facets on dates compare values.
    CSmartPtr<CdateCol> bounded = new CdateCol("Due", "", 0, -1, "", -1, -1, "2030-01-01", "", "", "", -1,
                                               CWhitespaceUtils::WhitespaceRule_Collapse, "");
    EXPECT_EQ(MessageOf<CQmValidationException>([&] { bounded->AddFromString("2029-12-31"); }),
              "Invalid Value for Due [2029-12-31]");
    bounded->AddFromString("2031-05-01");
    EXPECT_EQ(bounded->GetCount(), 1);
}

TEST(PrimitiveCollections, ReadConsecutiveElementsAndWriteOnePerItem) {
    CXmlDocument doc;
    CXmlElement* root = CXmlTreeBuilder::CreateDocumentElement(doc);
    CXmlTreeBuilder::SetName(root, "Card", "urn:o");
    for (const char* text : {"1", " 2 ", "3"}) {
        CXmlElement* e = CXmlTreeBuilder::CreateChild(root);
        CXmlTreeBuilder::SetName(e, "n", "urn:o");
        CXmlTreeBuilder::AppendText(e, text, std::char_traits<char>::length(text));
    }
    CXmlElement* other = CXmlTreeBuilder::CreateChild(root);
    CXmlTreeBuilder::SetName(other, "m", "urn:o");

    CSmartPtr<Exposed<Cui8Col>> col = new Exposed<Cui8Col>("n", "urn:o");
    CXmlElement* rest = col->FromXml_Int(root, root->GetFirstElement(), CXmlSerializationContext::m_defaultContext, false);
    EXPECT_EQ(rest, other);
    ASSERT_EQ(col->GetCount(), 3);
    EXPECT_EQ(col->GetItem(1), 2u);

    TextWriter w;
    w.StartElement("Card", "urn:o");
    col->ToXml_Int(&w, false, "n", CXmlSerializationContext::m_defaultContext, false);
    EXPECT_EQ(w.out, "<Card{urn:o}><n{urn:o}>1</><n{urn:o}>2</><n{urn:o}>3</>");
    EXPECT_EQ(w.types, "10;10;10;");

    // A bad item stops the read with the conversion's message.
    CXmlTreeBuilder::AppendText(other, "x", 1);
    CSmartPtr<Exposed<Ci2Col>> shorts = new Exposed<Ci2Col>("m", "urn:o");
    EXPECT_EQ(MessageOf<CQmInvalidValueException>([&] {
                  shorts->FromXml_Int(root, other, CXmlSerializationContext::m_defaultContext, false);
              }),
              "The value [x] can not be converted to a i4");
}
