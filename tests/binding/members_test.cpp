// Nil, inlined content and its attributes, collection bounds and simple content.
#include <gtest/gtest.h>

#include "binding_classes.h"
#include "expect_throw.h"

using namespace focus;
using qmxml_test::FailureOf;

namespace {

const std::string kChart = "Failed to process the element [Chart]\n\n";
const std::string kNil = "xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"";

std::string ChartDoc(const std::string& before, const std::string& legend = "<Legend/>",
                     const std::string& after = "") {
    return "<Chart xmlns=\"urn:f\"" + kXsi + ">" + before + legend + "<Axis/>" + after + "</Chart>";
}

}  // namespace

TEST(Nil, PrimitiveAndEnumeratedMembers) {
    CSmartPtr<Chart> chart = new Chart();
    chart->FromXml(ChartDoc("<Count xsi:nil=\"true\">5</Count><Mode xsi:nil=\"true\"/>").c_str());
    EXPECT_TRUE(chart->count.nil);
    EXPECT_FALSE(chart->count.value.has_value());
    EXPECT_TRUE(chart->mode.nil);
    const std::string xml = chart->ToXml(false, false);
    EXPECT_EQ(xml, "<Chart xmlns=\"urn:f\"><Count " + kNil + "/><Mode " + kNil + "/><Legend/><Axis/></Chart>");
    CSmartPtr<Chart> again = new Chart();
    again->FromXml(xml.c_str());
    EXPECT_TRUE(again->count.nil);
    EXPECT_TRUE(again->mode.nil);

    chart->FromXml(ChartDoc("<Count xsi:nil=\"false\"> 5 </Count><Label xsi:nil=\"false\">L</Label>").c_str());
    EXPECT_EQ(chart->count.value, 5);
    EXPECT_FALSE(chart->count.nil);
    EXPECT_EQ(chart->label.value, "L");

    EXPECT_EQ(FailureOf([&] { chart->FromXml(ChartDoc("<Label xsi:nil=\"true\"/>").c_str()); }),
              kChart + "Invalid use of 'nil' attibute in non-nillable element [Label]");
    EXPECT_EQ(FailureOf([&] { chart->FromXml(ChartDoc("<Count xsi:nil=\"1\"/>").c_str()); }),
              kChart + "Unexpected Value [1] for 'nil' Attribute found.");
    EXPECT_EQ(FailureOf([&] { chart->FromXml(ChartDoc("<Mode xsi:nil=\"TRUE\"/>").c_str()); }),
              kChart + "Unexpected Value [TRUE] for 'nil' Attribute found.");
}

TEST(Nil, ClassMembers) {
    CSmartPtr<Chart> chart = new Chart();
    chart->FromXml(ChartDoc("", "<Legend pos=\"top\" xsi:nil=\"true\"><Text>skipped</Text></Legend>",
                            "<Note xsi:nil=\"true\"/>")
                       .c_str());
    // A nil object keeps its attributes and leaves its content unread.
    EXPECT_TRUE(chart->legend->IsNil());
    EXPECT_EQ(chart->legend->pos.value, "top");
    EXPECT_FALSE(chart->legend->text.value.has_value());
    ASSERT_TRUE(chart->note);
    EXPECT_TRUE(chart->note->IsNil());
    const std::string xml = chart->ToXml(false, false);
    EXPECT_EQ(xml, "<Chart xmlns=\"urn:f\"><Legend pos=\"top\" " + kNil + "/><Axis/><Note " + kNil + "/></Chart>");
    CSmartPtr<Chart> again = new Chart();
    again->FromXml(xml.c_str());
    EXPECT_TRUE(again->legend->IsNil());
    EXPECT_EQ(again->ToXml(false, false), xml);

    // A second read clears the flag.
    again->FromXml(ChartDoc("", "<Legend><Text>t</Text></Legend>").c_str());
    EXPECT_FALSE(again->legend->IsNil());
    EXPECT_EQ(again->legend->text.value, "t");

    EXPECT_EQ(FailureOf([&] {
                  chart->FromXml(("<Chart xmlns=\"urn:f\"" + kXsi + "><Legend/><Axis xsi:nil=\"true\"/></Chart>").c_str());
              }),
              kChart + "Invalid use of 'nil' attibute in non-nillable element [Axis]");
    EXPECT_EQ(FailureOf([&] { chart->FromXml(ChartDoc("", "<Legend xsi:nil=\"no\"/>").c_str()); }),
              kChart + "Unexpected Value [no] for 'nil' Attribute found.");
    chart->FromXml(ChartDoc("", "<Legend xsi:nil=\"false\"><Text>t</Text></Legend>").c_str());
    EXPECT_FALSE(chart->legend->IsNil());
    EXPECT_EQ(chart->legend->text.value, "t");
}

TEST(Nil, UntypedMembers) {
    CSmartPtr<Chart> chart = new Chart();
    // Kept whole with its nil marker, content included: nothing read is lost.
    chart->FromXml(ChartDoc("", "<Legend/>", "<Raw k=\"v\" xsi:nil=\"true\">text<Child/></Raw>").c_str());
    ASSERT_TRUE(chart->raw);
    EXPECT_EQ(chart->raw->GetText(), "text");
    EXPECT_EQ(chart->raw->GetElementCount(), 1);
    EXPECT_EQ(chart->raw->GetAttributeCount(), 2);
    const std::string xml = chart->ToXml(false, false);
    EXPECT_EQ(xml, "<Chart xmlns=\"urn:f\"><Legend/><Axis/><Raw k=\"v\" " + kNil + ">text<Child/></Raw></Chart>");
    CSmartPtr<Chart> again = new Chart();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);

    chart->FromXml(ChartDoc("", "<Legend/>", "<Raw xsi:nil=\"false\">text</Raw>").c_str());
    EXPECT_EQ(chart->raw->GetText(), "text");
    EXPECT_EQ(FailureOf([&] { chart->FromXml(ChartDoc("", "<Legend/>", "<Raw xsi:nil=\"maybe\"/>").c_str()); }),
              kChart + "Unexpected Value [maybe] for 'nil' Attribute found.");
}

TEST(Inlined, SequenceAndChoiceReturnLeftoversToTheParent) {
    CSmartPtr<Window> window = new Window();
    window->FromXml("<Window xmlns=\"urn:f\" unit=\"px\"><Title>T</Title><Width>3</Width><Height>4</Height>"
                    "<Image>i.png</Image><Footer>F</Footer></Window>");
    EXPECT_EQ(window->size->width.value, 3);
    EXPECT_EQ(window->size->height.value, 4);
    ASSERT_TRUE(window->fill);
    EXPECT_EQ(window->fill->image.value, "i.png");
    EXPECT_EQ(window->footer.value, "F");
    const std::string xml = window->ToXml(false, false);
    EXPECT_EQ(xml, "<Window xmlns=\"urn:f\" unit=\"px\"><Title>T</Title><Width>3</Width><Height>4</Height>"
                   "<Image>i.png</Image><Footer>F</Footer></Window>");

    // The inlined sequence leaves Footer to the window; the absent choice stays null.
    window->FromXml("<Window xmlns=\"urn:f\" unit=\"px\"><Title>T</Title><Width>3</Width><Height>4</Height>"
                    "<Footer>F</Footer></Window>");
    EXPECT_FALSE(window->fill);
    EXPECT_EQ(window->footer.value, "F");
    // One member of the inlined choice only: the second is left to the window.
    EXPECT_EQ(FailureOf([&] {
                  window->FromXml("<Window xmlns=\"urn:f\" unit=\"px\"><Title>T</Title><Width>3</Width><Height>4"
                                  "</Height><Color>red</Color><Image>i</Image></Window>");
              }),
              "Failed to process the element [Window]\n\nFailed read all the elements held within the element "
              "[Window]. The unexpected element [Image] remains un processed");
    // What the inlined sequence misses is reported with the window as context.
    EXPECT_EQ(FailureOf([&] {
                  window->FromXml("<Window xmlns=\"urn:f\" unit=\"px\"><Title>T</Title><Width>3</Width></Window>");
              }),
              "Failed to process the element [Window]\n\nFailed to process the element [Window]\n\nFailed to find a "
              "required element [Height]");
}

TEST(Inlined, AttributesAreReadBackFromTheParent) {
    CSmartPtr<Window> window = new Window();
    const std::string body = "<Title>T</Title><Width>1</Width><Height>2</Height><Color>c</Color>";
    window->FromXml(("<Window xmlns=\"urn:f\" opacity=\"50\" id=\"9\" unit=\"em\">" + body + "</Window>").c_str());
    EXPECT_EQ(window->id.value, 9);
    EXPECT_EQ(window->size->unit.value, "em");
    ASSERT_TRUE(window->fill);
    EXPECT_EQ(window->fill->opacity.value, 50);
    const std::string xml = window->ToXml(false, false);
    EXPECT_EQ(xml, "<Window xmlns=\"urn:f\" id=\"9\" unit=\"em\" opacity=\"50\">" + body + "</Window>");
    CSmartPtr<Window> again = new Window();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);

    // The inlined member checks its required attribute; unknown ones still fail.
    const std::string wrap = "Failed to process the element [Window]\n\n";
    EXPECT_EQ(FailureOf([&] { window->FromXml(("<Window xmlns=\"urn:f\">" + body + "</Window>").c_str()); }),
              wrap + "Failed to find the required Attribute [unit]");
    EXPECT_EQ(FailureOf([&] {
                  window->FromXml(("<Window xmlns=\"urn:f\" unit=\"em\" tint=\"1\">" + body + "</Window>").c_str());
              }),
              wrap + "Unexpected Attribute [tint] found.");
    EXPECT_EQ(FailureOf([&] {
                  window->FromXml(("<Window xmlns=\"urn:f\" unit=\"em\" opacity=\"x\">" + body + "</Window>").c_str());
              }).rfind(wrap, 0),
              0u);

    // An optional inlined member with attributes but no content is created by them.
    window->FromXml("<Window xmlns=\"urn:f\" unit=\"em\" opacity=\"5\"><Title>T</Title><Width>1</Width><Height>2"
                    "</Height></Window>");
    ASSERT_TRUE(window->fill);
    EXPECT_EQ(window->fill->opacity.value, 5);
    EXPECT_FALSE(window->fill->color.value.has_value());
    EXPECT_EQ(window->ToXml(false, false), "<Window xmlns=\"urn:f\" unit=\"em\" opacity=\"5\"><Title>T</Title>"
                                           "<Width>1</Width><Height>2</Height></Window>");
}

TEST(Collections, BoundsOnReadAndWrite) {
    CSmartPtr<Basket> basket = new Basket();
    basket->FromXml("<Basket xmlns=\"urn:f\"><Fruit><Name>a</Name><Origin>ES</Origin></Fruit><Fruit><Name>b</Name>"
                    "</Fruit><Label>l</Label></Basket>");
    ASSERT_EQ(basket->fruits->GetCount(), 2);
    EXPECT_EQ(basket->fruits->GetItem(0)->origin.value, "ES");
    EXPECT_EQ(basket->labels->GetCount(), 1);
    const std::string xml = basket->ToXml(false, false);
    EXPECT_EQ(xml, "<Basket xmlns=\"urn:f\"><Fruit><Name>a</Name><Origin>ES</Origin></Fruit><Fruit><Name>b</Name>"
                   "</Fruit><Label>l</Label></Basket>");

    const std::string wrap = "Failed to process the element [Basket]\n\n";
    const std::string fruit = "<Fruit><Name>x</Name></Fruit>";
    EXPECT_EQ(FailureOf([&] { basket->FromXml("<Basket xmlns=\"urn:f\"><Label>l</Label></Basket>"); }),
              wrap + "The Minimum number of [Fruit] elements allowed in this collection is 1");
    EXPECT_EQ(FailureOf([&] { basket->FromXml(("<Basket xmlns=\"urn:f\">" + fruit + fruit + fruit + "</Basket>").c_str()); }),
              wrap + "The Maximum number of [Fruit] elements allowed in this collection is 2");
    EXPECT_EQ(FailureOf([&] {
                  basket->FromXml(("<Basket xmlns=\"urn:f\">" + fruit + "<Label>1</Label><Label>2</Label></Basket>").c_str());
              }),
              wrap + "The Maximum number of [Label] elements allowed in this collection is 1");

    CXmlSerializationContext counts;
    counts.SetIgnoreInvalidCollectionCounts(true);
    basket->FromXml("<Basket xmlns=\"urn:f\"><Label>1</Label><Label>2</Label></Basket>", counts);
    EXPECT_EQ(basket->fruits->GetCount(), 0);
    EXPECT_EQ(basket->labels->GetCount(), 2);
    // Writing checks the maximum first, member by member.
    EXPECT_EQ(FailureOf([&] { basket->ToXml(false, false); }),
              "Failed to convert the element [Basket] to XML\n\nThe Minimum number of [Fruit] elements allowed in "
              "this collection is 1");
    basket->fruits->Add(new Fruit());
    basket->fruits->GetItem(0)->name = {"n", false};
    EXPECT_EQ(FailureOf([&] { basket->ToXml(false, false); }),
              "Failed to convert the element [Basket] to XML\n\nThe Maximum number of [Label] elements allowed in "
              "this collection is 1");
    EXPECT_EQ(basket->ToXml(false, false, EOLType_LF, counts),
              "<Basket xmlns=\"urn:f\"><Fruit><Name>n</Name></Fruit><Label>1</Label><Label>2</Label></Basket>");
}

TEST(SimpleContent, ValueWithAttributes) {
    CSmartPtr<Reading> reading = new Reading();
    reading->FromXml("<Reading xmlns=\"urn:f\" unit=\"high\" by=\"  me \">\n  42\n</Reading>");
    EXPECT_EQ(reading->value.value, 42);
    EXPECT_EQ(reading->unit.value, Level_High);
    EXPECT_EQ(reading->by.value, "me");
    EXPECT_EQ(reading->ToXml(false, false), "<Reading xmlns=\"urn:f\" unit=\"high\" by=\"me\">42</Reading>");
    CSmartPtr<Reading> again = new Reading();
    again->FromXml(reading->ToXml().c_str());
    EXPECT_EQ(again->value.value, 42);

    // No value: nothing written as text.
    reading->value.Reset();
    EXPECT_EQ(reading->ToXml(false, false), "<Reading xmlns=\"urn:f\" unit=\"high\" by=\"me\"/>");

    const std::string wrap = "Failed to process the element [Reading]\n\n";
    EXPECT_EQ(FailureOf([&] { reading->FromXml("<Reading xmlns=\"urn:f\">1</Reading>"); }),
              wrap + "Failed to find the required Attribute [unit]");
    EXPECT_EQ(FailureOf([&] { reading->FromXml("<Reading xmlns=\"urn:f\" unit=\"low\">4x</Reading>"); }).rfind(wrap, 0),
              0u);
    EXPECT_EQ(FailureOf([&] { reading->FromXml("<Reading xmlns=\"urn:f\" unit=\"low\"><V/></Reading>"); }),
              wrap + "Failed read all the elements held within the element [Reading]. The unexpected element [V] "
                     "remains un processed");
}
