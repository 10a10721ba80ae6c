#include <gtest/gtest.h>

#include "bound_classes.h"
#include "expect_throw.h"

using namespace bound;
using qmxml_test::FailureOf;

namespace {

const std::string kHead =
    "<Order xmlns=\"urn:t\"><Customer><Name>Ann</Name><Address><Street>S</Street><City>C</City></Address>"
    "</Customer><Item id=\"1\"><Name>pen</Name></Item>";
const std::string kWrap = "Failed to process the element [Order]\n\n";

// A choice of its own element: <Pick><A/>|<B/>|<C/>*</Pick>; the collection
// member makes the class one with optional members when `withCol` is set.
template <bool WithCol>
class Pick : public CXmlGeneratedClass {
public:
    std::optional<std::string> a;
    std::optional<std::int32_t> b;
    CSmartPtr<CstringCol> c;
    Pick() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        a.reset();
        b.reset();
        c = new CstringCol("C", NS, 1, 2);
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        if (index == 0) {
            AccessString(read, v, a);
        } else if (index == 1) {
            AccessNumber(read, v, b);
        } else {
            AccessCollection(read, v, c);
        }
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Choice, XmlElementType_Element, "Pick", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[4]{
        new CElementInfoChoicePrimOpt("A", NS, 0, false, ItemType_string, "",
                                      CWhitespaceUtils::WhitespaceRule_Preserve, kNoFacets),
        new CElementInfoChoicePrimOpt("B", NS, 1, false, ItemType_i4, "", CWhitespaceUtils::WhitespaceRule_Collapse,
                                      kNoFacets),
        WithCol ? static_cast<CElementInfo*>(new CElementInfoChoicePrimCol("C", NS, 2)) : nullptr, nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
};

// A class whose parent info carries a group type that does not exist.
class Broken : public CXmlGeneratedClass {
public:
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {}
    void AccessProperty(int, bool, QmVariant&) override {}
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_elements2; }
    inline static CParentElementInfo* s_parent =
        new CParentElementInfo(static_cast<XmlElementGroupType>(7), XmlElementType_Element, "Broken", "", true, false,
                               -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[1]{nullptr};
    inline static CAttributeInfo** s_elements2 = new CAttributeInfo*[1]{nullptr};
};

}  // namespace

TEST(ContentModel, AllGroupInAnyOrderWithMandatoryCheck) {
    CSmartPtr<Address> address = new Address();
    address->FromXml("<Address xmlns=\"urn:t\"><Zip>12345</Zip><City>C</City><Street>S</Street></Address>");
    EXPECT_EQ(address->zip, "12345");
    EXPECT_EQ(address->street, "S");
    EXPECT_EQ(address->GetClassElementInfoCount(), 3);
    EXPECT_TRUE(address->DoesElementContainOptionalElements());

    EXPECT_EQ(FailureOf([&] { address->FromXml("<Address xmlns=\"urn:t\"><City>C</City></Address>"); }),
              "Failed to process the element [Address]\n\nFailed to find the mandatory element [Street]");
    EXPECT_EQ(FailureOf([&] {
                  address->FromXml("<Address xmlns=\"urn:t\"><City>C</City><Street>S</Street><City>D</City></Address>");
              }),
              "Failed to process the element [Address]\n\nFailed read all the elements held within the element "
              "[Address]. The unexpected element [City] remains un processed");
    // Facets are checked on reading as well as writing.
    const std::string zip = FailureOf([&] {
        address->FromXml("<Address xmlns=\"urn:t\"><Zip>1</Zip><City>C</City><Street>S</Street></Address>");
    });
    EXPECT_EQ(zip.rfind("Failed to process the element [Address]\n\n", 0), 0u) << zip;
    EXPECT_NE(zip.find("Zip"), std::string::npos) << zip;

    // Unknown elements are skipped anywhere under IgnoreUnknownElements.
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    address->FromXml("<Address xmlns=\"urn:t\"><X/><City>C</City><Y/><Street>S</Street><Z/></Address>", ignore);
    EXPECT_EQ(address->street, "S");
    EXPECT_EQ(address->ToXml(false, false),
              "<Address xmlns=\"urn:t\"><Street>S</Street><City>C</City></Address>");
}

TEST(ContentModel, ChoiceReadAndWrite) {
    CSmartPtr<Pick<false>> pick = new Pick<false>();
    pick->FromXml("<Pick xmlns=\"urn:t\"><B>4</B></Pick>");
    EXPECT_EQ(pick->b, 4);
    EXPECT_FALSE(pick->a.has_value());
    EXPECT_EQ(pick->ToXml(false, false), "<Pick xmlns=\"urn:t\"><B>4</B></Pick>");
    EXPECT_FALSE(pick->DoesElementContainOptionalElements());

    const std::string emptyRead =
        "Failed to process the element [Pick]\n\nNo child elements within the element [Pick] were populated. The "
        "element represents a choice, so one and only one element should be populated. The element contained no "
        "sutable child elements";
    EXPECT_EQ(FailureOf([&] { pick->FromXml("<Pick xmlns=\"urn:t\"/>"); }), emptyRead);
    EXPECT_EQ(FailureOf([&] { pick->FromXml("<Pick xmlns=\"urn:t\"><X/></Pick>"); }), emptyRead);
    EXPECT_EQ(FailureOf([&] { pick->FromXml("<Pick xmlns=\"urn:t\"><A>x</A><B>1</B></Pick>"); }),
              "Failed to process the element [Pick]\n\nFailed read all the elements held within the element [Pick]. "
              "The unexpected element [B] remains un processed");
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    pick->FromXml("<Pick xmlns=\"urn:t\"><X/><A>x</A><B>1</B></Pick>", ignore);
    EXPECT_EQ(pick->a, "x");
    EXPECT_FALSE(pick->b.has_value());

    pick->Init();
    EXPECT_EQ(FailureOf([&] { pick->ToXml(false, false); }),
              "Failed to convert the element [Pick] to XML\n\nThis element is a choice, and as such must have at one "
              "(and only one) valid item, currently there are none set");
    CXmlSerializationContext missing;
    missing.SetIgnoreMissingChoice(true);
    EXPECT_EQ(pick->ToXml(false, false, EOLType_LF, missing), "<Pick xmlns=\"urn:t\"/>");
    pick->FromXml("<Pick xmlns=\"urn:t\"/>", missing);

    // A collection member makes the empty choice acceptable; its bounds still hold.
    CSmartPtr<Pick<true>> withCol = new Pick<true>();
    EXPECT_TRUE(withCol->DoesElementContainOptionalElements());
    withCol->FromXml("<Pick xmlns=\"urn:t\"/>");
    EXPECT_EQ(withCol->ToXml(false, false), "<Pick xmlns=\"urn:t\"/>");
    withCol->FromXml("<Pick xmlns=\"urn:t\"><C>1</C><C>2</C></Pick>");
    EXPECT_EQ(withCol->c->GetCount(), 2);
    EXPECT_EQ(FailureOf([&] { withCol->FromXml("<Pick xmlns=\"urn:t\"><C>1</C><C>2</C><C>3</C></Pick>"); }),
              "Failed to process the element [Pick]\n\nThe Maximum number of [C] elements allowed in this "
              "collection is 2");
}

TEST(ContentModel, InlinedSequenceAndChoice) {
    CSmartPtr<Order> order = new Order();
    order->FromXml((kHead + "<Low>1</Low><High>9</High><Cash>5</Cash></Order>").c_str());
    ASSERT_TRUE(order->range);
    EXPECT_EQ(order->range->low, 1);
    EXPECT_EQ(order->range->high, 9);
    ASSERT_TRUE(order->payment);
    EXPECT_EQ(order->payment->cash, 5);
    EXPECT_EQ(order->payment->selected, "Cash");
    const std::string xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("</Item><Low>1</Low><High>9</High><Cash>5</Cash></Order>"), std::string::npos) << xml;

    // Absent inlined members stay null; a partial one reports its missing
    // member with the enclosing element as context.
    order->FromXml((kHead + "</Order>").c_str());
    EXPECT_FALSE(order->range);
    EXPECT_FALSE(order->payment);
    EXPECT_EQ(FailureOf([&] { order->FromXml((kHead + "<Low>1</Low><Cash>5</Cash></Order>").c_str()); }),
              kWrap + kWrap + "Failed to find a required element [High]");

    // An inlined choice with nothing set is an absent optional member when written.
    order->payment = new Payment();
    EXPECT_EQ(order->ToXml(false, false).find("Cash"), std::string::npos);
}

TEST(ContentModel, SubstitutionAndXsiType) {
    CSmartPtr<Order> order = new Order();
    const std::string xsi = "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
    order->FromXml((kHead + "<Square side=\"2\"/><Circle r=\"3\"/><Shape " + xsi +
                    " xsi:type=\"p:CircleType\" r=\"4\"/></Order>")
                       .c_str());
    auto* square = dynamic_cast<Square*>(order->shape.Get());
    ASSERT_NE(square, nullptr);
    EXPECT_EQ(square->side, 2);
    ASSERT_EQ(order->shapes->GetCount(), 2);
    EXPECT_NE(dynamic_cast<Circle*>(order->shapes->GetItem(1).Get()), nullptr);
    EXPECT_EQ(dynamic_cast<Circle*>(order->shapes->GetItem(1).Get())->r, 4);

    const std::string xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("<Square side=\"2\"/><Circle r=\"3\"/><Shape xmlns:AA=\"http://www.w3.org/2001/"
                       "XMLSchema-instance\" AA:type=\"CircleType\" r=\"4\"/></Order>"),
              std::string::npos)
        << xml;
    CXmlSerializationContext noType;
    noType.SetWriteTypeAttribute(false);
    EXPECT_EQ(order->ToXml(false, false, EOLType_LF, noType).find("type="), std::string::npos);

    // A new object set on the abstract member is told by its type.
    order->shape = new Circle();
    dynamic_cast<Circle*>(order->shape.Get())->r = 1;
    order->shapes->Clear();
    EXPECT_NE(order->ToXml(false, false).find("<Shape xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" "
                                              "AA:type=\"CircleType\" r=\"1\"/></Order>"),
              std::string::npos);
}

TEST(ContentModel, SimpleContentUntypedAndWildcards) {
    CSmartPtr<Order> order = new Order();
    order->FromXml((kHead + "<Price currency=\"USD\"> 12.5 </Price><o:Extra xmlns:o=\"urn:o\" a=\"1\">t<o:In/>"
                            "</o:Extra></Order>")
                       .c_str());
    ASSERT_TRUE(order->price);
    EXPECT_EQ(order->price->currency, "USD");
    EXPECT_EQ(order->price->value->ToString(), "12.5");
    ASSERT_TRUE(order->any);
    EXPECT_EQ(order->any->GetLocalName(), "Extra");
    EXPECT_EQ(order->any->GetNamespaceURI(), "urn:o");
    const std::string xml = order->ToXml(false, false);
    EXPECT_NE(xml.find("<Price currency=\"USD\">12.50</Price><AA:Extra xmlns:AA=\"urn:o\" a=\"1\">t<AA:In/>"
                       "</AA:Extra></Order>"),
              std::string::npos)
        << xml;

    // An element in the target namespace is not the wildcard's.
    EXPECT_EQ(FailureOf([&] { order->FromXml((kHead + "<Extra/></Order>").c_str()); }),
              kWrap + "Failed read all the elements held within the element [Order]. The unexpected element [Extra] "
                      "remains un processed");
    EXPECT_NE(FailureOf([&] { order->FromXml((kHead + "<Price>abc</Price></Order>").c_str()); }).find(
                  "Failed to process the element [Price]"),
              std::string::npos);
}

TEST(ContentModel, RootItemsAndNamespaces) {
    CSmartPtr<Order> order = new Order();
    order->FromXml((kHead + "</Order>").c_str());
    CXmlSerializationContext ctx;
    ctx.GetProcessingInstructions().push_back("<?xml-stylesheet href=\"a.xsl\"?>");
    ctx.SetInLineSchema("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"/>");
    ctx.GetAdditionalRootAttributes()->Add("loc", "urn:x", "here");
    ctx.GetNamespaceAliases().Add("x", "urn:x");
    const std::string xml = order->ToXml(false, false, EOLType_LF, ctx);
    const size_t instruction = xml.find("<?xml-stylesheet href=\"a.xsl\"?>");
    const size_t root = xml.find("<Order xmlns=\"urn:t\" xmlns:x=\"urn:x\" x:loc=\"here\">");
    const size_t schema = xml.find("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"/>");
    const size_t customer = xml.find("<Customer>");
    EXPECT_EQ(instruction, 0u) << xml;
    EXPECT_LT(instruction, root);
    EXPECT_LT(root, schema);
    EXPECT_LT(schema, customer);
    EXPECT_NE(customer, std::string::npos);

    // A root namespace with an alias keeps it.
    CXmlSerializationContext aliased;
    aliased.GetNamespaceAliases().Add("t", "urn:t");
    EXPECT_EQ(order->ToXml(false, false, EOLType_LF, aliased).rfind("<t:Order xmlns:t=\"urn:t\"><t:Customer>", 0),
              0u);

    CSmartPtr<Broken> broken = new Broken();
    EXPECT_EQ(FailureOf([&] { broken->ToXml(false, false); }),
              "Failed to convert the element [Broken] to XML\n\nUnknown XML Group Type");
    EXPECT_EQ(FailureOf([&] { broken->FromXml("<Broken/>"); }),
              "Failed to process the element [Broken]\n\nUnknow Group Type");
    EXPECT_EQ(broken->GetClassElementInfoCount(), 0);
    EXPECT_FALSE(broken->IsElementInList(CXmlSerializationContext::m_defaultContext, nullptr));
}
