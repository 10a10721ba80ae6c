// Element and attribute wildcards under each namespace restriction, untyped
// members and their collections.
#include <gtest/gtest.h>

#include "binding_classes.h"
#include "expect_throw.h"

using namespace focus;
using qmxml_test::FailureOf;

namespace {

// Reads <Wild> with one child and one attribute; tells what the wildcard took.
template <const char* R>
std::string Bind(const std::string& child, const std::string& attribute = "") {
    CSmartPtr<Wild<R>> wild = new Wild<R>();
    const std::string xml = "<Wild xmlns=\"urn:f\" xmlns:a=\"urn:a\" xmlns:o=\"urn:o\"" + attribute + ">" + child +
                            "</Wild>";
    const std::string failure = FailureOf([&] { wild->FromXml(xml.c_str()); });
    if (failure != "<no exception>") return failure;
    std::string taken;
    if (wild->any) taken += "element {" + wild->any->GetNamespaceURI() + "}" + wild->any->GetLocalName();
    for (int i = 0; i < wild->attributes->GetCount(); ++i) {
        taken += " attribute {" + wild->attributes->GetItem(i)->GetNamespaceURI() + "}" +
                 wild->attributes->GetItem(i)->GetLocalName();
    }
    if (wild->tail.value) taken += " tail";
    return taken;
}

std::string Left(const char* element) {
    return FormatString("Failed to process the element [Wild]\n\nFailed read all the elements held within the element "
                        "[Wild]. The unexpected element [%s] remains un processed",
                        element);
}
std::string Unknown(const char* attribute) {
    return FormatString("Failed to process the element [Wild]\n\nUnexpected Attribute [%s] found.", attribute);
}

const std::string kOtherNs = "<o:E/>";
const std::string kLocalNs = "<E xmlns=\"\"/>";
const std::string kTargetNs = "<E/>";
const std::string kListed = "<a:E/>";

}  // namespace

TEST(Wildcards, ElementNamespaceRestrictions) {
    EXPECT_EQ(Bind<kAny>(kOtherNs), "element {urn:o}E");
    EXPECT_EQ(Bind<kAny>(kLocalNs), "element {}E");
    // A wildcard before a named member takes that member's element too.
    EXPECT_EQ(Bind<kAny>("<Tail/>"), "element {urn:f}Tail");

    EXPECT_EQ(Bind<kOther>(kOtherNs + "<Tail/>"), "element {urn:o}E tail");
    EXPECT_EQ(Bind<kOther>(kTargetNs), Left("E"));
    // Not the target namespace: no namespace is "other" as well.
    EXPECT_EQ(Bind<kOther>(kLocalNs), "element {}E");

    EXPECT_EQ(Bind<kLocal>(kLocalNs), "element {}E");
    EXPECT_EQ(Bind<kLocal>(kOtherNs), Left("E"));
    EXPECT_EQ(Bind<kLocal>(kTargetNs), Left("E"));

    EXPECT_EQ(Bind<kTarget>("<E/><Tail/>"), "element {urn:f}E tail");
    EXPECT_EQ(Bind<kTarget>(kLocalNs), Left("E"));

    EXPECT_EQ(Bind<kList>(kListed + "<Tail/>"), "element {urn:a}E tail");
    EXPECT_EQ(Bind<kList>(kOtherNs), Left("E"));
    EXPECT_EQ(Bind<kList>(kTargetNs), Left("E"));
}

TEST(Wildcards, AttributeNamespaceRestrictions) {
    const std::string other = " o:x=\"1\"";
    const std::string local = " y=\"2\"";
    const std::string target = " xmlns:t=\"urn:f\" t:z=\"3\"";
    EXPECT_EQ(Bind<kAny>("", other + local + " id=\"4\""), " attribute {urn:o}x attribute {}y");
    EXPECT_EQ(Bind<kOther>("", other), " attribute {urn:o}x");
    EXPECT_EQ(Bind<kOther>("", local), " attribute {}y");
    EXPECT_EQ(Bind<kOther>("", target), Unknown("z"));
    EXPECT_EQ(Bind<kLocal>("", local), " attribute {}y");
    EXPECT_EQ(Bind<kLocal>("", other), Unknown("x"));
    EXPECT_EQ(Bind<kTarget>("", target), " attribute {urn:f}z");
    EXPECT_EQ(Bind<kTarget>("", local), Unknown("y"));
    EXPECT_EQ(Bind<kList>("", " a:w=\"5\""), " attribute {urn:a}w");
    EXPECT_EQ(Bind<kList>("", other), Unknown("x"));

    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownAttributes(true);
    CSmartPtr<Wild<kLocal>> wild = new Wild<kLocal>();
    wild->FromXml("<Wild xmlns=\"urn:f\" xmlns:o=\"urn:o\" o:x=\"1\"/>", ignore);
    EXPECT_EQ(wild->attributes->GetCount(), 0);
}

TEST(Wildcards, RoundTripOfElementAndAttributes) {
    CSmartPtr<Wild<kAny>> wild = new Wild<kAny>();
    wild->FromXml("<Wild xmlns=\"urn:f\" xmlns:o=\"urn:o\" o:x=\"1\" id=\"7\"><o:E k=\"v\">text<o:In/><Deep/></o:E>"
                  "</Wild>");
    EXPECT_EQ(wild->id.value, 7);
    ASSERT_TRUE(wild->any);
    EXPECT_EQ(wild->any->GetElementCount(), 2);
    const std::string xml = wild->ToXml(false, false);
    EXPECT_EQ(xml, "<Wild xmlns=\"urn:f\" id=\"7\" xmlns:AA=\"urn:o\" AA:x=\"1\"><AA:E k=\"v\">text<AA:In/><Deep/>"
                   "</AA:E></Wild>");
    CSmartPtr<Wild<kAny>> again = new Wild<kAny>();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);
}

// Without namespace processing the declarations are attributes like any other,
// and the attribute wildcard keeps them; written back, the one the writer makes
// itself must not appear twice.
TEST(Wildcards, DeclarationsKeptAsAttributesWithoutNamespaces) {
    CXmlSerializationContext plain;
    plain.SetSchemaType(SchemaType_NoNamespaces);
    CSmartPtr<Wild<kAny>> wild = new Wild<kAny>();
    wild->FromXml("<Wild xmlns=\"urn:f\" xmlns:o=\"urn:o\" o:x=\"1\"><o:E/></Wild>", plain);
    ASSERT_EQ(wild->attributes->GetCount(), 3);
    const std::string xml = wild->ToXml(false, false, EOLType_LF, plain);
    EXPECT_EQ(xml, "<Wild xmlns=\"urn:f\" xmlns:o=\"urn:o\" o:x=\"1\"><o:E xmlns=\"\"/></Wild>");
    CSmartPtr<Wild<kAny>> again = new Wild<kAny>();
    again->FromXml(xml.c_str(), plain);
    EXPECT_EQ(again->ToXml(false, false, EOLType_LF, plain), xml);

    wild->FromXml("<Wild xmlns=\"urn:g\"/>", plain);
    EXPECT_EQ(FailureOf([&] { wild->ToXml(false, false, EOLType_LF, plain); }),
              "Failed to convert the element [Wild] to XML\n\n"
              "The attribute [xmlns] contradicts the namespace declaration of the element [Wild]");
}

TEST(Wildcards, AnyDefaultNamespace) {
    // The cases the generated code passes beyond the plain keywords.
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "", "urn:f"), "DefaultNamespace");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "urn:x", "urn:f"), "");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##targetNamespace", "urn:x", nullptr), "urn:x");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##local urn:a", "urn:x", "urn:f"), "");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##targetNamespace urn:a", "urn:x", "urn:f"), "urn:f");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("  urn:a  urn:b", "urn:x", "urn:f"), "urn:a");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("urn:only", "urn:x", "urn:f"), "urn:only");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(nullptr, "urn:x", "urn:f"), "");
}

TEST(Untyped, MandatoryNamedMemberAndCollection) {
    CSmartPtr<Bag> bag = new Bag();
    bag->FromXml("<Bag xmlns=\"urn:f\" xmlns:o=\"urn:o\"><Head h=\"1\">top</Head><o:A/><o:B>b</o:B><End>e</End></Bag>");
    EXPECT_EQ(bag->head->GetText(), "top");
    ASSERT_EQ(bag->items->GetCount(), 2);
    EXPECT_EQ(bag->items->GetItem(1)->GetLocalName(), "B");
    EXPECT_EQ(bag->end.value, "e");
    const std::string xml = bag->ToXml(false, false);
    EXPECT_EQ(xml, "<Bag xmlns=\"urn:f\"><Head h=\"1\">top</Head><AA:A xmlns:AA=\"urn:o\"/><AA:B xmlns:AA=\"urn:o\">b"
                   "</AA:B><End>e</End></Bag>");
    CSmartPtr<Bag> again = new Bag();
    again->FromXml(xml.c_str());
    EXPECT_EQ(again->ToXml(false, false), xml);

    const std::string bagWrap = "Failed to process the element [Bag]\n\n";
    EXPECT_EQ(FailureOf([&] { bag->FromXml("<Bag xmlns=\"urn:f\"><o:A xmlns:o=\"urn:o\"/></Bag>"); }),
              bagWrap + "Failed to find a required element [Head]");
    // The collection stops at the first element outside its restriction.
    EXPECT_EQ(FailureOf([&] { bag->FromXml("<Bag xmlns=\"urn:f\"><Head/><End/></Bag>"); }),
              bagWrap + "The Minimum number of [] elements allowed in this collection is 1");
    EXPECT_EQ(FailureOf([&] {
                  bag->FromXml("<Bag xmlns=\"urn:f\" xmlns:o=\"urn:o\"><Head/><o:A/><o:B/><o:C/></Bag>");
              }),
              bagWrap + "The Maximum number of [] elements allowed in this collection is 2");
    EXPECT_EQ(FailureOf([&] { bag->FromXml("<Bag xmlns=\"urn:f\" xmlns:o=\"urn:o\"><Head/><o:A/><X/></Bag>"); }),
              bagWrap + "Failed read all the elements held within the element [Bag]. The unexpected element [X] "
                        "remains un processed");
    CXmlSerializationContext counts;
    counts.SetIgnoreInvalidCollectionCounts(true);
    bag->FromXml("<Bag xmlns=\"urn:f\"><Head/></Bag>", counts);
    EXPECT_EQ(bag->items->GetCount(), 0);
    EXPECT_EQ(FailureOf([&] { bag->ToXml(false, false); }),
              "Failed to convert the element [Bag] to XML\n\nThe Minimum number of [] elements allowed in this "
              "collection is 1");
    EXPECT_EQ(bag->ToXml(false, false, EOLType_LF, counts), "<Bag xmlns=\"urn:f\"><Head/></Bag>");
}

TEST(Untyped, MandatoryWildcardOutsideItsNamespace) {
    // A wildcard member of its own: <Holder> any element of no namespace </Holder>.
    class Holder : public CXmlGeneratedClass {
    public:
        CSmartPtr<CElement> any;
        Holder() { Init(); }
        CXmlObjectBase* GetBase() override { return this; }
        void Init() override { any = new CElement(); }
        void AccessProperty(int, bool read, QmVariant& v) override { AccessObject(read, v, any); }
        CParentElementInfo* GetClassInfo() const override { return s_parent; }
        CElementInfo** GetClassElementInfo() const override { return s_elements; }
        CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }
        CParentElementInfo* s_parent = Parent(XmlElementGroupType_Sequence, "Holder");
        CElementInfo** s_elements = new CElementInfo*[2]{
            new CElementInfoSeqUntpdMnd("AnyElement", NS, 0, "##local", ""), nullptr};
        CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};
        ~Holder() override { CleanMetaData(s_parent, s_elements, s_attributes); }
    };
    CSmartPtr<Holder> holder = new Holder();
    EXPECT_EQ(FailureOf([&] { holder->FromXml("<Holder xmlns=\"urn:f\"><E/></Holder>"); }),
              "Failed to process the element [Holder]\n\nFailed to find the required element from namespace "
              "[##local]");
    holder->FromXml("<Holder xmlns=\"urn:f\"><E xmlns=\"\">v</E></Holder>");
    EXPECT_EQ(holder->any->GetText(), "v");
    EXPECT_EQ(holder->ToXml(false, false), "<Holder xmlns=\"urn:f\"><E xmlns=\"\">v</E></Holder>");
    CXmlSerializationContext missing;
    missing.SetIgnoreMissingMandatoryElements(true);
    holder->FromXml("<Holder xmlns=\"urn:f\"/>", missing);
    EXPECT_EQ(holder->any->GetLocalName(), "");
}
