// The document around the objects: the root element, what is written at the
// root, documents without namespaces, and failures deep in a document.
#include <gtest/gtest.h>

#include "binding_classes.h"
#include "expect_throw.h"

using namespace focus;
using qmxml_test::FailureOf;

TEST(Document, RootItemsWrittenInOrder) {
    CSmartPtr<Wild<kAny>> wild = new Wild<kAny>();
    wild->FromXml("<Wild xmlns=\"urn:f\"><o:E xmlns:o=\"urn:o\"/></Wild>");
    CXmlSerializationContext ctx;
    ctx.GetProcessingInstructions().push_back("<?xml-stylesheet href=\"w.xsl\"?>");
    ctx.GetProcessingInstructions().push_back("<?app mode=\"x\"?>");
    ctx.GetNamespaceAliases().Add("o", "urn:o");
    ctx.GetAdditionalRootAttributes()->Add("stamp", "", "1");
    ctx.GetAdditionalRootAttributes()->Add("where", "urn:o", "here");
    ctx.SetInLineSchema("<schema/>");
    EXPECT_EQ(wild->ToXml(true, false, EOLType_LF, ctx),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?xml-stylesheet href=\"w.xsl\"?>\n\n<?app mode=\"x\"?>\n\n"
              "<Wild xmlns=\"urn:f\" xmlns:o=\"urn:o\" stamp=\"1\" o:where=\"here\"> \n<schema/>\n<o:E/></Wild>");
    // Instructions and the schema go through the raw writers, which add their
    // line ends. Only the root gets these items, not the classes inside.
    CSmartPtr<Market> market = new Market();
    market->basket->fruits->Add(new Fruit());
    market->basket->fruits->GetItem(0)->name = {"n", false};
    EXPECT_EQ(market->ToXml(false, false, EOLType_LF, ctx),
              "<?xml-stylesheet href=\"w.xsl\"?>\n\n<?app mode=\"x\"?>\n\n<Market xmlns=\"urn:f\" xmlns:o=\"urn:o\" "
              "stamp=\"1\" o:where=\"here\"> \n<schema/>\n<Basket><Fruit><Name>n</Name></Fruit></Basket></Market>");
}

TEST(Document, RootElementCheck) {
    CSmartPtr<Market> market = new Market();
    EXPECT_EQ(FailureOf([&] { market->FromXml("<Basket xmlns=\"urn:f\"/>"); }),
              "Unexpected root element [Basket], expected [Market]");
    EXPECT_EQ(FailureOf([&] { market->FromXml("<Market xmlns=\"urn:other\"/>"); }),
              "Unexpected root element [Market], expected [Market]");
    EXPECT_EQ(FailureOf([&] { market->FromXml("<Market/>"); }), "Unexpected root element [Market], expected [Market]");
    CXmlSerializationContext loose;
    loose.SetIgnoreNamespaces(true);
    market->FromXml("<Market xmlns=\"urn:other\"><Basket><Fruit><Name>n</Name></Fruit></Basket></Market>", loose);
    EXPECT_EQ(market->basket->fruits->GetItem(0)->name.value, "n");
    // A member class read as a document of its own.
    CSmartPtr<Basket> basket = new Basket();
    basket->FromXml("<Basket xmlns=\"urn:f\"><Fruit><Name>m</Name></Fruit></Basket>");
    EXPECT_EQ(basket->fruits->GetCount(), 1);
}

TEST(Document, FailureThreeLevelsDeep) {
    CSmartPtr<Market> market = new Market();
    const std::string lines = "Failed to process the element [Market]\n\nFailed to process the element [Basket]\n\n"
                              "Failed to process the element [Fruit]\n\n";
    EXPECT_EQ(FailureOf([&] {
                  market->FromXml("<Market xmlns=\"urn:f\"><Basket><Fruit><Name>a</Name></Fruit><Fruit><Name>b"
                                  "</Name><Origin>spain</Origin></Fruit></Basket></Market>");
              }),
              lines + "Invalid Value for Origin [spain]");
    // Each level keeps the one below as its inner exception.
    try {
        market->FromXml("<Market xmlns=\"urn:f\"><Basket><Fruit><Origin>ES</Origin></Fruit></Basket></Market>");
        FAIL() << "no exception";
    } catch (const CQmException& e) {
        int depth = 0;
        const CQmException* cause = &e;
        for (; cause->GetInnerException(); cause = cause->GetInnerException()) ++depth;
        EXPECT_EQ(depth, 3);
        EXPECT_EQ(std::string(cause->GetMessage()), "Failed to find a required element [Name]");
    }
    // Writing names every level too.
    market->FromXml("<Market xmlns=\"urn:f\"><Basket><Fruit><Name>a</Name></Fruit></Basket></Market>");
    market->basket->fruits->GetItem(0)->origin = {"x", false};
    EXPECT_EQ(FailureOf([&] { market->ToXml(); }),
              "Failed to convert the element [Market] to XML\n\nFailed to convert the element [Basket] to XML\n\n"
              "Failed to convert the element [Fruit] to XML\n\nInvalid Value for Origin [x]");
}

TEST(Document, NoNamespaceSchema) {
    CXmlSerializationContext plain;
    plain.SetSchemaType(SchemaType_NoNamespaces);
    CSmartPtr<Memo> memo = new Memo();
    // Without namespace processing a prefixed name is one whole name.
    memo->FromXml("<Memo x:lang=\"en\"><Body>b</Body><x:Line>1</x:Line><x:Line>2</x:Line></Memo>", plain);
    EXPECT_EQ(memo->body.value, "b");
    EXPECT_EQ(memo->lang.value, "en");
    ASSERT_EQ(memo->lines->GetCount(), 2);
    EXPECT_EQ(memo->lines->GetItem(1), "2");
    const std::string xml = memo->ToXml(false, false, EOLType_LF, plain);
    EXPECT_EQ(xml, "<Memo x:lang=\"en\"><Body>b</Body><x:Line>1</x:Line><x:Line>2</x:Line></Memo>");
    CSmartPtr<Memo> again = new Memo();
    again->FromXml(xml.c_str(), plain);
    EXPECT_EQ(again->ToXml(false, false, EOLType_LF, plain), xml);

    // Names match by their whole text.
    EXPECT_EQ(FailureOf([&] { memo->FromXml("<Memo><Body>b</Body><y:Line>1</y:Line></Memo>", plain); }),
              "Failed to process the element [Memo]\n\nFailed read all the elements held within the element [Memo]. "
              "The unexpected element [y:Line] remains un processed");
    EXPECT_EQ(FailureOf([&] { memo->FromXml("<Memo y:lang=\"en\"><Body>b</Body></Memo>", plain); }),
              "Failed to process the element [Memo]\n\nUnexpected Attribute [y:lang] found.");
}
