#include <gtest/gtest.h>

#include "bound_classes.h"
#include "expect_throw.h"

using namespace bound;
using qmxml_test::FailureOf;

namespace {

std::string Doc(const std::string& body, const std::string& attributes = "") {
    return "<Order xmlns=\"urn:t\"" + attributes + "><Customer><Name>Ann</Name><Address><Street>S</Street>"
           "<City>C</City></Address></Customer><Item id=\"1\"><Name>pen</Name></Item>" + body + "</Order>";
}

const std::string kWrap = "Failed to process the element [Order]\n\n";

}  // namespace

TEST(GeneratedClass, ReadsSequenceMembersAndWritesThemBack) {
    CSmartPtr<Order> order = new Order();
    order->FromXml(Doc("<Item id=\"2\" kind=\"green\"><Name> two </Name><Qty>5</Qty><Note xsi:nil=\"true\" "
                       "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"/><Color>green</Color></Item>"
                       "<Tag>a</Tag><Tag>b</Tag>",
                       " ref=\"r1\"")
                       .c_str());
    EXPECT_EQ(order->ref, "r1");
    EXPECT_EQ(order->customer->name, "Ann");
    EXPECT_EQ(order->customer->address->city, "C");
    ASSERT_EQ(order->items->GetCount(), 2);
    CSmartPtr<Item> second = order->items->GetItem(1);
    EXPECT_EQ(second->name, " two ");
    EXPECT_EQ(second->qty, 5);
    EXPECT_TRUE(second->noteNil);
    EXPECT_EQ(second->color, Color_Green);
    EXPECT_EQ(second->kind, Color_Green);
    EXPECT_EQ(second->id, 2);
    EXPECT_EQ(order->tags->GetCount(), 2);

    const std::string xml = order->ToXml(false, false);
    EXPECT_EQ(xml,
              "<Order xmlns=\"urn:t\" ref=\"r1\"><Customer><Name>Ann</Name><Address><Street>S</Street><City>C</City>"
              "</Address></Customer><Item id=\"1\"><Name>pen</Name></Item><Item id=\"2\" kind=\"green\"><Name> two "
              "</Name><Qty>5</Qty><Note xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>"
              "<Color>green</Color></Item><Tag>a</Tag><Tag>b</Tag></Order>");

    CSmartPtr<Order> again = new Order();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);
}

TEST(GeneratedClass, SequenceErrorsAndIgnoreSwitches) {
    CSmartPtr<Order> order = new Order();
    EXPECT_EQ(FailureOf([&] { order->FromXml(Doc("<Bogus/>").c_str()); }),
              kWrap + "Failed read all the elements held within the element [Order]. The unexpected element [Bogus] remains "
              "un processed");
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml("<Order xmlns=\"urn:t\"><Item id=\"1\"><Name>x</Name></Item></Order>");
              }),
              kWrap + "Failed to find a required element [Customer]");

    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    // Unknown elements before, between and after known members are skipped.
    order->FromXml(Doc("<Bogus/><Tag>a</Tag><Other><Tag>z</Tag></Other><Tag>b</Tag><Bogus/>").c_str(), ignore);
    EXPECT_EQ(order->tags->GetCount(), 2);
    EXPECT_EQ(order->tags->GetItem(1), "b");
    order->FromXml(("<Order xmlns=\"urn:t\"><X/>" + Doc("").substr(20)).c_str(), ignore);
    EXPECT_EQ(order->customer->name, "Ann");

    CXmlSerializationContext missing;
    missing.SetIgnoreMissingMandatoryElements(true);
    order->FromXml("<Order xmlns=\"urn:t\"><Item id=\"1\"><Name>x</Name></Item></Order>", missing);
    EXPECT_EQ(order->items->GetCount(), 1);
    EXPECT_EQ(order->customer->name, "");

    // Collection bounds are checked on reading and writing.
    const std::string four = "<Item id=\"2\"><Name>b</Name></Item><Item id=\"3\"><Name>c</Name></Item>"
                             "<Item id=\"4\"><Name>d</Name></Item>";
    EXPECT_EQ(FailureOf([&] { order->FromXml(Doc(four).c_str()); }),
              kWrap + "The Maximum number of [Item] elements allowed in this collection is 3");
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml("<Order xmlns=\"urn:t\"><Customer><Name>A</Name><Address><Street>S</Street><City>C"
                                 "</City></Address></Customer></Order>");
              }),
              kWrap + "The Minimum number of [Item] elements allowed in this collection is 1");
    CXmlSerializationContext counts;
    counts.SetIgnoreInvalidCollectionCounts(true);
    order->FromXml(Doc(four).c_str(), counts);
    EXPECT_EQ(order->items->GetCount(), 4);
    EXPECT_EQ(FailureOf([&] { order->ToXml(false, false); }),
              "Failed to convert the element [Order] to XML\n\n"
              "The Maximum number of [Item] elements allowed in this collection is 3");
    EXPECT_NE(order->ToXml(false, false, EOLType_LF, counts).find("<Item id=\"4\">"), std::string::npos);
}

TEST(GeneratedClass, AttributesRequiredUnknownWildcardAndDefaults) {
    CSmartPtr<Order> order = new Order();
    EXPECT_EQ(FailureOf([&] { order->FromXml(Doc("<Item><Name>n</Name></Item>").c_str()); }),
              kWrap + "Failed to process the element [Item]\n\nFailed to find the required Attribute [id]");
    const std::string bogus = "<Item id=\"2\" bogus=\"1\"><Name>n</Name></Item>";
    EXPECT_EQ(FailureOf([&] { order->FromXml(Doc(bogus).c_str()); }),
              kWrap + "Failed to process the element [Item]\n\nUnexpected Attribute [bogus] found.");
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownAttributes(true);
    order->FromXml(Doc(bogus).c_str(), ignore);
    EXPECT_EQ(order->items->GetItem(1)->id, 2);

    // Attributes from another namespace go to the wildcard and are written back.
    order->FromXml(Doc("", " xmlns:o=\"urn:o\" o:x=\"1\" ref=\"none\"").c_str());
    ASSERT_EQ(order->anyAttributes->GetCount(), 1);
    EXPECT_EQ(order->anyAttributes->GetItem(0)->GetLocalName(), "x");
    std::string xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("ref=\"none\""), std::string::npos);
    EXPECT_NE(xml.find(":x=\"1\""), std::string::npos);

    // An optional attribute equal to its default is left out on request.
    CXmlSerializationContext noDefaults;
    noDefaults.SetNoOptionalAttributeDefaultOutput(true);
    xml = order->ToXml(false, false, EOLType_LF, noDefaults);
    EXPECT_EQ(xml.find("ref="), std::string::npos);
    order->items->GetItem(0)->kind = Color_Red;
    xml = order->ToXml(false, false, EOLType_LF, noDefaults);
    EXPECT_EQ(xml.find("kind="), std::string::npos);
    xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("kind=\"red\""), std::string::npos);

    // A primitive attribute needs its exact namespace even when namespaces are
    // ignored; an enumerated one does not.
    CXmlSerializationContext loose;
    loose.SetIgnoreNamespaces(true);
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml(Doc("<Item xmlns:o=\"urn:o\" o:id=\"2\" o:kind=\"green\"><Name>n</Name></Item>")
                                     .c_str(),
                                 loose);
              }),
              kWrap + "Failed to process the element [Item]\n\nUnexpected Attribute [id] found.");
    order->FromXml(Doc("<Item xmlns:o=\"urn:o\" id=\"2\" o:kind=\"green\"><Name>n</Name></Item>").c_str(), loose);
    EXPECT_EQ(order->items->GetItem(1)->kind, Color_Green);
}

TEST(GeneratedClass, FacetsNilAndValueErrors) {
    CSmartPtr<Order> order = new Order();
    const std::string item = "Failed to process the element [Item]\n\n";
    const std::string facet = FailureOf([&] { order->FromXml(Doc("<Item id=\"2\"><Name>n</Name><Qty>0</Qty></Item>").c_str()); });
    EXPECT_EQ(facet.rfind(kWrap + item, 0), 0u) << facet;
    EXPECT_NE(facet.find("Qty"), std::string::npos);

    order->FromXml(Doc("").c_str());
    order->items->GetItem(0)->qty = 0;
    const std::string written = FailureOf([&] { order->ToXml(false, false); });
    EXPECT_EQ(written.rfind("Failed to convert the element [Order] to XML\n\nFailed to convert the element [Item] "
                            "to XML\n\n",
                            0),
              0u)
        << written;

    const std::string xsi = " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml(Doc("<Item id=\"2\"" + xsi + "><Name xsi:nil=\"true\"/></Item>").c_str());
              }),
              kWrap + item + "Invalid use of 'nil' attibute in non-nillable element [Name]");
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml(Doc("<Item id=\"2\"" + xsi + "><Name>n</Name><Note xsi:nil=\"yes\"/></Item>").c_str());
              }),
              kWrap + item + "Unexpected Value [yes] for 'nil' Attribute found.");
    order->FromXml(Doc("<Item id=\"2\"" + xsi + "><Name>n</Name><Note xsi:nil=\"false\">text</Note></Item>").c_str());
    EXPECT_EQ(order->items->GetItem(1)->note, "text");
    EXPECT_FALSE(order->items->GetItem(1)->noteNil);

    EXPECT_EQ(FailureOf([&] {
                  order->FromXml(Doc("<Item id=\"2\"><Name>n</Name><Color>blue</Color></Item>").c_str());
              }),
              kWrap + item + "Invalid value [blue] for the enumeration Color");
}

TEST(GeneratedClass, ClassMembersNilAndThreeLevelFailure) {
    CSmartPtr<Order> order = new Order();
    const std::string xsi = " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
    // The customer is not nillable; its address is.
    EXPECT_EQ(FailureOf([&] {
                  order->FromXml(("<Order xmlns=\"urn:t\"" + xsi + "><Customer xsi:nil=\"true\"/></Order>").c_str());
              }),
              kWrap + "Invalid use of 'nil' attibute in non-nillable element [Customer]");
    order->FromXml(("<Order xmlns=\"urn:t\"" + xsi + "><Customer><Name>A</Name><Address xsi:nil=\"true\"/>"
                    "</Customer><Item id=\"1\"><Name>p</Name></Item></Order>")
                       .c_str());
    EXPECT_TRUE(order->customer->address->IsNil());
    EXPECT_FALSE(order->customer->address->street.has_value());
    const std::string xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("<Address xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>"),
              std::string::npos)
        << xml;
    CSmartPtr<Order> again = new Order();
    again->FromXml(xml.c_str());
    EXPECT_TRUE(again->customer->address->IsNil());

    // Three levels: Order, Customer, Address; then the cause.
    const std::string deep = FailureOf([&] {
        order->FromXml("<Order xmlns=\"urn:t\"><Customer><Name>A</Name><Address><Street>S</Street></Address>"
                       "</Customer></Order>");
    });
    EXPECT_EQ(deep,
              "Failed to process the element [Order]\n\nFailed to process the element [Customer]\n\n"
              "Failed to process the element [Address]\n\nFailed to find the mandatory element [City]");
    // A failed read keeps what was bound before the failure.
    EXPECT_EQ(order->customer->name, "A");

    // A null optional member writes nothing; the mandatory one always writes.
    CSmartPtr<Order> fresh = new Order();
    CSmartPtr<Item> pen = new Item();
    fresh->items->Add(pen);
    // A required attribute that was never set cannot be written.
    EXPECT_EQ(FailureOf([&] { fresh->ToXml(false, false); }),
              "Failed to convert the element [Order] to XML\n\nFailed to convert the element [Item] to XML\n\n"
              "Invalid Type 0 to convert to string");
    pen->id = 7;
    EXPECT_EQ(fresh->ToXml(false, false),
              "<Order xmlns=\"urn:t\"><Customer><Name/><Address/></Customer><Item id=\"7\"><Name/></Item></Order>");
}

TEST(GeneratedClass, RootElementCheck) {
    CSmartPtr<Order> order = new Order();
    EXPECT_EQ(FailureOf([&] { order->FromXml("<Other xmlns=\"urn:t\"/>"); }),
              "Unexpected root element [Other], expected [Order]");
    EXPECT_EQ(FailureOf([&] { order->FromXml("<Order xmlns=\"urn:x\"/>"); }),
              "Unexpected root element [Order], expected [Order]");
    CXmlSerializationContext noNamespaces;
    noNamespaces.SetSchemaType(SchemaType_NoNamespaces);
    order->FromXml(Doc("").c_str(), noNamespaces);
    EXPECT_EQ(order->customer->name, "Ann");
}
