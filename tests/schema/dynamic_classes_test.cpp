// Dynamic classes: documents bound through classes built from a schema at run
// time, one XML Schema construct at a time, read and written back.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "qmxml/schema/dynamic_classes.h"
#include "schema_test_support.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using schema_test::Xsd;

namespace {

std::shared_ptr<const CDynamicClassSet> Classes(const std::string& body) {
    return CDynamicClassSet::Create(CSchemaSet::LoadBuffer(Xsd(body, " elementFormDefault='qualified'")));
}

// The document read and written back without declaration or indentation, or
// "!" and the full message chain of the failure.
std::string RoundTrip(const CDynamicClassSet& classes, const std::string& document,
                      const CXmlSerializationContext& ctx = CXmlSerializationContext()) {
    try {
        const CSmartPtr<CDynamicObject> object = classes.ReadBuffer(document.data(), document.size(), ctx);
        return object->ToXml(false, false, EOLType_LF, ctx);
    } catch (const CQmException& e) {
        return "!" + e.GetFullMessage();
    }
}

struct Case {
    const char* name;
    const char* schema;
    const char* document;
    const char* expected;  // the written text, or "!" and the message chain
};

void PrintTo(const Case& c, std::ostream* os) { *os << c.name; }

const Case kCases[] = {
    {"SequenceOfSimpleValues",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/>"
     "<xs:element name='b' type='xs:string' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a> 7 </a></r>", "<r xmlns=\"urn:t\"><a>7</a></r>"},
    {"MissingMandatoryElement",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'/>", "!Failed to process the element [r]\n\nFailed to find a required element [a]"},
    {"ChoiceInsideSequence",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/><xs:choice>"
     "<xs:element name='b' type='xs:string'/><xs:element name='c' type='xs:string'/></xs:choice>"
     "<xs:element name='d' type='xs:int'/></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a>1</a><c>x</c><d>2</d></r>", "<r xmlns=\"urn:t\"><a>1</a><c>x</c><d>2</d></r>"},
    {"EmptyMandatoryChoice",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/><xs:choice>"
     "<xs:element name='b' type='xs:string'/><xs:element name='c' type='xs:string'/></xs:choice>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a>1</a></r>",
     "!Failed to process the element [r]\n\nNo child elements within the element [r] were populated. The element "
     "represents a choice, so one and only one element should be populated. The element contained no sutable "
     "child elements"},
    {"RepeatingSequenceGroup",
     "<xs:element name='r'><xs:complexType><xs:sequence maxOccurs='unbounded'>"
     "<xs:element name='a' type='xs:int'/><xs:element name='b' type='xs:string'/></xs:sequence>"
     "</xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a>1</a><b>x</b><a>2</a><b>y</b></r>",
     "<r xmlns=\"urn:t\"><a>1</a><b>x</b><a>2</a><b>y</b></r>"},
    {"RepeatingElementsOfSimpleType",
     "<xs:element name='r'><xs:complexType><xs:sequence>"
     "<xs:element name='d' type='xs:date' minOccurs='2' maxOccurs='3'/></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><d>2026-11-24</d><d>2026-11-25Z</d></r>",
     "<r xmlns=\"urn:t\"><d>2026-11-24</d><d>2026-11-25Z</d></r>"},
    {"AllGroupInAnyOrder",
     "<xs:element name='r'><xs:complexType><xs:all>" "<xs:element name='a' type='xs:int'/>"
     "<xs:element name='b' type='xs:string' minOccurs='0'/></xs:all></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><b>x</b><a>1</a></r>", "<r xmlns=\"urn:t\"><a>1</a><b>x</b></r>"},
    {"ExtensionAddsToItsBase",
     "<xs:complexType name='base'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence>"
     "<xs:attribute name='id' type='xs:ID'/></xs:complexType>"
     "<xs:complexType name='ext'><xs:complexContent><xs:extension base='base'><xs:sequence>"
     "<xs:element name='b' type='xs:string'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:element name='r' type='ext'/>",
     "<r xmlns='urn:t' id='k'><a>1</a><b>x</b></r>", "<r xmlns=\"urn:t\" id=\"k\"><a>1</a><b>x</b></r>"},
    {"SimpleContentWithAnAttribute",
     "<xs:element name='r'><xs:complexType><xs:simpleContent><xs:extension base='xs:decimal'>"
     "<xs:attribute name='unit' type='xs:string' use='required'/></xs:extension></xs:simpleContent>"
     "</xs:complexType></xs:element>",
     "<r xmlns='urn:t' unit='kg'>12.50</r>", "<r xmlns=\"urn:t\" unit=\"kg\">12.5</r>"},
    {"SimpleTypedRoot", "<xs:element name='r' type='xs:int'/>", "<r xmlns='urn:t'>42</r>",
     "<r xmlns=\"urn:t\">42</r>"},
    {"ElementWildcardOfOtherNamespaces",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/>"
     "<xs:any namespace='##other' processContents='skip' maxOccurs='unbounded'/></xs:sequence>"
     "</xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a>1</a><x:w xmlns:x='urn:x'>t</x:w></r>",
     "<r xmlns=\"urn:t\"><a>1</a><AA:w xmlns:AA=\"urn:x\">t</AA:w></r>"},
    {"AttributeWildcard",
     "<xs:element name='r'><xs:complexType><xs:anyAttribute namespace='##any' processContents='lax'/>"
     "</xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:x='urn:x' x:k='v'/>", "<r xmlns=\"urn:t\" xmlns:AA=\"urn:x\" AA:k=\"v\"/>"},
    {"UnknownAttributeWithoutWildcard",
     "<xs:element name='r'><xs:complexType><xs:attribute name='k' type='xs:int'/></xs:complexType></xs:element>",
     "<r xmlns='urn:t' z='1'/>", "!Failed to process the element [r]\n\nUnexpected Attribute [z] found."},
    {"SubstitutionGroupMember",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element ref='head' maxOccurs='unbounded'/>"
     "</xs:sequence></xs:complexType></xs:element>"
     "<xs:complexType name='ht'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='mt'><xs:complexContent><xs:extension base='ht'><xs:sequence>"
     "<xs:element name='b' type='xs:int'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:element name='head' type='ht'/><xs:element name='member' type='mt' substitutionGroup='head'/>",
     "<r xmlns='urn:t'><head><a>1</a></head><member><a>2</a><b>3</b></member></r>",
     "<r xmlns=\"urn:t\"><head><a>1</a></head><member><a>2</a><b>3</b></member></r>"},
    {"AbstractHeadIsNotAllowedItself",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element ref='head'/>"
     "</xs:sequence></xs:complexType></xs:element>"
     "<xs:element name='head' type='xs:anyType' abstract='true'/>"
     "<xs:element name='member' substitutionGroup='head'><xs:complexType/></xs:element>",
     "<r xmlns='urn:t'><head/></r>",
     "!Failed to process the element [r]\n\nFailed to find a suitable substitution element for [head]"},
    {"XsiTypeNamesADerivedType",
     "<xs:complexType name='ht'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='mt'><xs:complexContent><xs:extension base='ht'><xs:sequence>"
     "<xs:element name='b' type='xs:int'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='v' type='ht'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>"
     "<v xsi:type='mt'><a>1</a><b>2</b></v></r>",
     "<r xmlns=\"urn:t\"><v xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:type=\"mt\"><a>1</a><b>2</b>"
     "</v></r>"},
    {"RecursiveType",
     "<xs:complexType name='node'><xs:sequence><xs:element name='n' type='node' minOccurs='0' "
     "maxOccurs='unbounded'/></xs:sequence><xs:attribute name='v' type='xs:int'/></xs:complexType>"
     "<xs:element name='r' type='node'/>",
     "<r xmlns='urn:t' v='1'><n v='2'><n v='3'/></n><n/></r>",
     "<r xmlns=\"urn:t\" v=\"1\"><n v=\"2\"><n v=\"3\"/></n><n/></r>"},
    {"NillableElement",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int' nillable='true'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><a xsi:nil='true'/></r>",
     "<r xmlns=\"urn:t\"><a xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/></r>"},
    {"NilItemsOfARepeatingValue",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='d' type='xs:dateTime' "
     "nillable='true' maxOccurs='3'/></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><d xsi:nil='true'/>"
     "<d>2020-01-01T10:00:00Z</d></r>",
     "<r xmlns=\"urn:t\"><d xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>"
     "<d>2020-01-01T10:00:00Z</d></r>"},
    {"UnqualifiedLocalElements",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int' form='unqualified'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<t:r xmlns:t='urn:t'><a>5</a></t:r>", "<r xmlns=\"urn:t\"><a xmlns=\"\">5</a></r>"},
    {"DefaultOfAnEmptyElement",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int' default='5'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><a/></r>", "<r xmlns=\"urn:t\"><a>5</a></r>"},
    {"TextInElementOnlyContent",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'>oops<a>1</a></r>",
     "!Failed to process the element [r]\n\nUnexpected text [oops] in the element [r]"},
    {"MixedContentKeepsItsText",
     "<xs:element name='r'><xs:complexType mixed='true'><xs:sequence><xs:element name='a' type='xs:int'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'>note <a>1</a></r>", "<r xmlns=\"urn:t\"><a>1</a>note </r>"},
    {"BlockedDerivationInXsiType",
     "<xs:complexType name='ht'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='mt'><xs:complexContent><xs:extension base='ht'><xs:sequence>"
     "<xs:element name='b' type='xs:int'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='v' type='ht' block='extension'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>"
     "<v xsi:type='mt'><a>1</a><b>2</b></v></r>",
     "!Failed to process the element [r]\n\nFailed to find a suitable substitution element for [v]"},
    {"AbstractRoot", "<xs:element name='r' abstract='true' type='xs:int'/>", "<r xmlns='urn:t'>1</r>",
     "!The root element [{urn:t}r] is abstract, or its xsi:type names no type it may take"},
    {"StrictWildcardNeedsADeclaration",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:any namespace='##any'/></xs:sequence>"
     "</xs:complexType></xs:element><xs:element name='k' type='xs:int'/>",
     "<r xmlns='urn:t'><q/></r>",
     "!Failed to process the element [r]\n\nNo global element declaration for the element [q] of a strict wildcard"},
    {"LaxWildcardChecksWhatIsDeclared",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:any namespace='##any' processContents='lax' "
     "maxOccurs='unbounded'/></xs:sequence></xs:complexType></xs:element><xs:element name='k' type='xs:int'/>",
     "<r xmlns='urn:t'><q>x</q><k>x</k></r>",
     "!Failed to process the element [r]\n\nFailed to process the element [k]\n\n"
     "The value [x] can not be converted to a i4"},
    {"StrictAttributeWildcardChecksTheValue",
     "<xs:element name='r'><xs:complexType><xs:anyAttribute namespace='##targetNamespace'/></xs:complexType>"
     "</xs:element><xs:attribute name='n' type='xs:positiveInteger'/>",
     "<r xmlns='urn:t' xmlns:t='urn:t' t:n='0'/>",
     "!Failed to process the element [r]\n\nInvalid Value for n [0]"},
    {"DuplicateId",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='p' maxOccurs='unbounded'>"
     "<xs:complexType><xs:attribute name='id' type='xs:ID'/><xs:attribute name='to' type='xs:IDREFS'/>"
     "</xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><p id='a'/><p id='a'/></r>", "!Duplicate ID value [a]"},
    {"IdrefWithoutId",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='p' maxOccurs='unbounded'>"
     "<xs:complexType><xs:attribute name='id' type='xs:ID'/><xs:attribute name='to' type='xs:IDREFS'/>"
     "</xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><p id='a' to='a b'/><p id='b' to='c'/></r>", "!The IDREF value [c] matches no ID"},
    {"QNameWithAnUndeclaredPrefix",
     "<xs:element name='r'><xs:complexType><xs:attribute name='q' type='xs:QName'/></xs:complexType></xs:element>",
     "<r xmlns='urn:t' q='foo:bar'/>", "!The prefix of the QName [foo:bar] of [q] is not declared"},
    {"QNameOfARestrictedTypeWithAnUndeclaredPrefix",
     "<xs:simpleType name='ref'><xs:restriction base='xs:QName'><xs:pattern value='[a-z]+:.*'/></xs:restriction>"
     "</xs:simpleType><xs:element name='r'><xs:complexType><xs:sequence><xs:element name='e' type='ref'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t'><e>q:x</e></r>",
     "!The prefix of the QName [q:x] of [e] is not declared"},
    {"RepeatingQNameWithAnUndeclaredPrefix",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='e' type='xs:QName' "
     "maxOccurs='unbounded'/></xs:sequence></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:p='urn:p'><e>p:x</e><e>y</e><e>q:z</e></r>",
     "!The prefix of the QName [q:z] of [e] is not declared"},
    // The declaration a value uses is written back on the root.
    {"QNameWithADeclaredPrefix",
     "<xs:element name='r'><xs:complexType><xs:attribute name='q' type='xs:QName'/>"
     "<xs:attribute name='l' type='xs:QName'/></xs:complexType></xs:element>",
     "<r xmlns='urn:t' xmlns:p='urn:p' q='p:bar' l='xml:lang'/>",
     "<r xmlns=\"urn:t\" xmlns:p=\"urn:p\" q=\"p:bar\" l=\"xml:lang\"/>"},
    {"EmptySimpleRootTakesItsFixedValue", "<xs:element name='r' type='xs:int' fixed='5'/>", "<r xmlns='urn:t'/>",
     "<r xmlns=\"urn:t\">5</r>"},
    {"SimpleRootOtherThanItsFixedValue", "<xs:element name='r' type='xs:int' fixed='5'/>",
     "<r xmlns='urn:t'>6</r>", "!Failed to process the element [r]\n\nInvalid Value for r [6], the fixed value is [5]"},
    {"UnknownRoot", "<xs:element name='r' type='xs:int'/>", "<q xmlns='urn:t'>1</q>",
     "!No global element declaration for the root element [{urn:t}q]"},
};

class Construct : public ::testing::TestWithParam<Case> {};

TEST_P(Construct, ReadsAndWritesBack) {
    const Case& c = GetParam();
    const auto classes = Classes(c.schema);
    EXPECT_EQ(RoundTrip(*classes, c.document), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Dynamic, Construct, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

TEST(DynamicXsiType, IsLeftOutWhenTheContextSaysSo) {
    const auto classes = Classes(
        "<xs:complexType name='ht'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence></xs:complexType>"
        "<xs:complexType name='mt'><xs:complexContent><xs:extension base='ht'><xs:sequence>"
        "<xs:element name='b' type='xs:int'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='v' type='ht' maxOccurs='2'/>"
        "</xs:sequence></xs:complexType></xs:element>");
    CXmlSerializationContext ctx;
    ctx.SetWriteTypeAttribute(false);
    EXPECT_EQ(RoundTrip(*classes,
                        "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>"
                        "<v><a>0</a></v><v xsi:type='mt'><a>1</a><b>2</b></v></r>",
                        ctx),
              "<r xmlns=\"urn:t\"><v><a>0</a></v><v><a>1</a><b>2</b></v></r>");
}

TEST(DynamicXsiType, NamesTheTypeInItsNamespace) {
    // v is unqualified, so its element is in no namespace while its types are
    // in urn:t: the written xsi:type needs a prefix of its own.
    const auto classes = CDynamicClassSet::Create(CSchemaSet::LoadBuffer(Xsd(
        "<xs:complexType name='ht'><xs:sequence><xs:element name='a' type='xs:int'/></xs:sequence></xs:complexType>"
        "<xs:complexType name='mt'><xs:complexContent><xs:extension base='ht'><xs:sequence>"
        "<xs:element name='b' type='xs:int'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>"
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='v' type='ht'/>"
        "</xs:sequence></xs:complexType></xs:element>")));
    const std::string written = RoundTrip(*classes,
                                          "<t:r xmlns:t='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>"
                                          "<v xsi:type='t:mt'><a>1</a><b>2</b></v></t:r>");
    // The writer declares a prefix of its own for the type's namespace.
    EXPECT_EQ(written,
              "<r xmlns=\"urn:t\"><v xmlns=\"\" xmlns:AA=\"urn:t\" "
              "xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:type=\"AA:mt\"><a>1</a><b>2</b></v></r>");
    // What was written reads back as the same type.
    EXPECT_EQ(RoundTrip(*classes, written), written);
}

TEST(DynamicQNames, KeepThePrefixesTheirValuesUse) {
    const auto classes = Classes(
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='q' type='xs:QName'/>"
        "<xs:element name='t' type='xs:time'/></xs:sequence></xs:complexType></xs:element>");
    // p is used by a value and kept; u is declared but unused.
    EXPECT_EQ(RoundTrip(*classes,
                        "<r xmlns='urn:t' xmlns:p='urn:p' xmlns:u='urn:u'><q> p:x </q>"
                        "<t>12:30:00</t></r>"),
              "<r xmlns=\"urn:t\" xmlns:p=\"urn:p\"><q>p:x</q><t>12:30:00</t></r>");
}

TEST(DynamicQNames, KeepThePrefixesOfUntypedContent) {
    const auto classes = Classes(
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='u' type='xs:anyType'/>"
        "</xs:sequence></xs:complexType></xs:element>");
    EXPECT_EQ(RoundTrip(*classes,
                        "<r xmlns='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                        "xmlns:xsd='http://www.w3.org/2001/XMLSchema'><u xsi:type='xsd:boolean'>1</u></r>"),
              "<r xmlns=\"urn:t\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"><u "
              "xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:type=\"xsd:boolean\">1</u></r>");
}

TEST(DynamicClassSet, DescribesEachClass) {
    const auto classes = Classes(
        "<xs:complexType name='pt'><xs:sequence><xs:element name='x' type='xs:decimal'/>"
        "<xs:element name='tag' type='xs:string' minOccurs='0' maxOccurs='unbounded'/></xs:sequence>"
        "<xs:attribute name='id' type='xs:int' use='required'/></xs:complexType>"
        "<xs:element name='pt'><xs:complexType><xs:sequence><xs:element name='p' type='pt'/>"
        "</xs:sequence></xs:complexType></xs:element>");
    ASSERT_EQ(classes->GetClasses().size(), 2u);
    const CClassDescription& named = *classes->GetClasses()[0];
    EXPECT_EQ(named.name, "pt");
    ASSERT_EQ(named.properties.size(), 3u);
    EXPECT_EQ(named.properties[0].name, "x");
    EXPECT_EQ(named.properties[0].kind, CPropertyDescription::Kind::Value);
    EXPECT_EQ(named.properties[0].itemType, ItemType_decimal);
    EXPECT_EQ(named.properties[1].kind, CPropertyDescription::Kind::Collection);
    EXPECT_EQ(named.properties[2].source, CPropertyDescription::Source::Attribute);
    EXPECT_FALSE(named.properties[2].optional);
    // The anonymous type of element pt gives way to the named type pt.
    EXPECT_EQ(classes->GetClasses()[1]->name, "pt2");
    EXPECT_EQ(classes->FindRootClass("urn:t", "pt"), classes->GetClasses()[1].get());
}

TEST(DynamicObject, ValuesAreSetThroughTheMembersChecks) {
    const auto classes = Classes(
        "<xs:simpleType name='small'><xs:restriction base='xs:int'><xs:maxInclusive value='9'/>"
        "</xs:restriction></xs:simpleType>"
        "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='small'/></xs:sequence>"
        "</xs:complexType></xs:element>");
    const CSmartPtr<CDynamicObject> r = classes->CreateRootObject("urn:t", "r");
    ASSERT_TRUE(r);
    QmVariant value;
    value.SetI4(10);
    try {
        r->SetValue("a", value);
        FAIL() << "accepted";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Invalid Value for a [10]");
    }
    EXPECT_FALSE(r->GetValue("a").IsValid());
    value.SetI4(9);
    r->SetValue("a", value);
    EXPECT_EQ(r->ToXml(false, false), "<r xmlns=\"urn:t\"><a>9</a></r>");
    try {
        r->GetValue(5);
        FAIL() << "accepted";
    } catch (const CQmInvalidParamException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Invalid property index [5] for the class [r]");
    }
}

TEST(DynamicClassSet, ReadsFromManyThreadsAtOnce) {
    const auto classes = Classes(
        "<xs:complexType name='node'><xs:sequence><xs:element name='n' type='node' minOccurs='0' "
        "maxOccurs='unbounded'/></xs:sequence><xs:attribute name='v' type='xs:int'/></xs:complexType>"
        "<xs:element name='r' type='node'/>");
    std::string document = "<r xmlns='urn:t' v='0'>";
    for (int i = 0; i < 200; ++i) document += "<n v='" + std::to_string(i) + "'><n/></n>";
    document += "</r>";
    const std::string expected = RoundTrip(*classes, document);
    ASSERT_EQ(expected.find('!'), std::string::npos) << expected;
    std::atomic<int> same{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                if (RoundTrip(*classes, document) == expected) ++same;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(same.load(), 80);
}

}  // namespace
