// Schemas the loader must refuse, each with its exact message.
#include "schema_test_support.h"

namespace schema_test {
namespace {

struct BadSchema {
    const char* name;
    const char* body;  // inside Xsd()
    const char* message;  // the inner message
};

// Failures print the case's name instead of its bytes.
void PrintTo(const BadSchema& c, std::ostream* os) { *os << c.name; }

class SchemaErrors : public ::testing::TestWithParam<BadSchema> {};

TEST_P(SchemaErrors, RefusedWithExactMessage) {
    const BadSchema& c = GetParam();
    EXPECT_EQ(LoadError(Xsd(c.body)), std::string("Failed to load the schema [(buffer)]\n\n") + c.message);
}

const BadSchema kBadSchemas[] = {
    {"UndefinedType", "<xs:element name='bar' type='Foo'/>",
     "In [(buffer)] at [/schema/element[bar]]: The type [{urn:t}Foo] referenced by the element [bar] is not defined"},
    {"UndefinedElementRef", "<xs:complexType name='C'><xs:sequence><xs:element ref='x'/></xs:sequence></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/sequence/element[x]]: The element [{urn:t}x] referenced by the element is not defined"},
    {"UndefinedPrefix", "<xs:element name='e' type='q:T'/>",
     "In [(buffer)] at [/schema/element[e]]: The prefix [q] of the name [q:T] is not declared"},
    {"DuplicateType", "<xs:simpleType name='A'><xs:restriction base='xs:int'/></xs:simpleType><xs:complexType name='A'/>",
     "In [(buffer)] at [/schema/complexType[A]]: The type [{urn:t}A] is defined twice"},
    {"DuplicateElement", "<xs:element name='e'/><xs:element name='e'/>",
     "In [(buffer)] at [/schema/element[e]]: The element [{urn:t}e] is defined twice"},
    {"CircularSimpleDerivation",
     "<xs:simpleType name='A'><xs:restriction base='B'/></xs:simpleType><xs:simpleType name='B'><xs:restriction base='A'/></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[A]/restriction]: The simple type [{urn:t}A] is defined in terms of itself"},
    {"CircularComplexDerivation",
     "<xs:complexType name='A'><xs:complexContent><xs:extension base='B'/></xs:complexContent></xs:complexType>"
     "<xs:complexType name='B'><xs:complexContent><xs:extension base='A'/></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[A]]: The complex type [{urn:t}A] derives from itself"},
    {"CircularGroups",
     "<xs:group name='G'><xs:sequence><xs:group ref='H'/></xs:sequence></xs:group>"
     "<xs:group name='H'><xs:choice><xs:group ref='G'/></xs:choice></xs:group>",
     "In [(buffer)] at [/schema/group[G]]: The group [{urn:t}G] contains itself"},
    {"CircularSubstitutionGroup", "<xs:element name='a' substitutionGroup='b'/><xs:element name='b' substitutionGroup='a'/>",
     "In [(buffer)] at [/schema/element[a]]: The substitution group of the element [{urn:t}a] contains the element itself"},
    {"TypeAndAnonymousType", "<xs:element name='e' type='xs:int'><xs:simpleType><xs:restriction base='xs:int'/></xs:simpleType></xs:element>",
     "In [(buffer)] at [/schema/element[e]]: An element must not have both a type and an anonymous type"},
    {"RefAndName", "<xs:element name='a'/><xs:complexType name='C'><xs:sequence><xs:element name='b' ref='a'/></xs:sequence></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/sequence/element[b]]: An element must not have both name and ref"},
    {"MinOccursAboveMaxOccurs", "<xs:complexType name='C'><xs:sequence minOccurs='3' maxOccurs='2'/></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/sequence]: minOccurs (3) is greater than maxOccurs (2)"},
    {"NegativeOccurs", "<xs:complexType name='C'><xs:sequence><xs:element name='x' minOccurs='-1'/></xs:sequence></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/sequence/element[x]]: The value [-1] of the attribute [minOccurs] is not a non-negative integer"},
    {"FacetNotApplicable", "<xs:simpleType name='S'><xs:restriction base='xs:int'><xs:maxLength value='3'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The facet [maxLength] does not apply to the base type [{http://www.w3.org/2001/XMLSchema}int]"},
    {"FacetValueNotOfBaseType", "<xs:simpleType name='S'><xs:restriction base='xs:int'><xs:maxInclusive value='ten'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The value [ten] of the facet [maxInclusive] is not valid for the base type [{http://www.w3.org/2001/XMLSchema}int]"},
    {"FacetOutsideBuiltInRange", "<xs:simpleType name='S'><xs:restriction base='xs:byte'><xs:maxInclusive value='200'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The value [200] of the facet [maxInclusive] is not valid for the base type [{http://www.w3.org/2001/XMLSchema}byte]"},
    {"EnumerationNotOfBaseType", "<xs:simpleType name='S'><xs:restriction base='xs:date'><xs:enumeration value='2020-13-01'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The enumeration value [2020-13-01] is not valid for the base type [{http://www.w3.org/2001/XMLSchema}date]"},
    {"LengthWidened", "<xs:simpleType name='A'><xs:restriction base='xs:string'><xs:maxLength value='3'/></xs:restriction></xs:simpleType>"
     "<xs:simpleType name='B'><xs:restriction base='A'><xs:maxLength value='5'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[B]/restriction]: The facet [maxLength] does not narrow the base type [{urn:t}A]"},
    {"MinAboveMax", "<xs:simpleType name='S'><xs:restriction base='xs:decimal'><xs:minInclusive value='5'/><xs:maxInclusive value='4.5'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The lower bound is greater than the upper bound"},
    {"FacetTwice", "<xs:simpleType name='S'><xs:restriction base='xs:string'><xs:length value='1'/><xs:length value='2'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction/length]: The facet [length] is given twice"},
    {"ListOfList", "<xs:simpleType name='L'><xs:list itemType='xs:NMTOKENS'/></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[L]/list]: The item type [{http://www.w3.org/2001/XMLSchema}NMTOKENS] of a list must not be a list"},
    {"ComplexBaseOfSimpleType", "<xs:complexType name='C'/><xs:simpleType name='S'><xs:restriction base='C'/></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The base type [{urn:t}C] of a simple type is not a simple type"},
    {"UnknownSchemaElement", "<xs:elephant name='e'/>",
     "In [(buffer)] at [/schema/elephant[e]]: The element [elephant] is not allowed in a schema"},
    {"UnknownAttribute", "<xs:element name='e' colour='red'/>",
     "In [(buffer)] at [/schema/element[e]]: The attribute [colour] is not allowed on [element]"},
    {"GlobalWithoutName", "<xs:complexType/>", "In [(buffer)] at [/schema/complexType]: A global complexType must have a name"},
    {"InvalidName", "<xs:element name='1e'/>", "In [(buffer)] at [/schema/element[1e]]: The name [1e] is not a valid NCName"},
    {"InvalidDefault", "<xs:element name='e' type='xs:int' default='x'/>",
     "In [(buffer)] at [/schema/element[e]]: The default value [x] is not valid for the type [{http://www.w3.org/2001/XMLSchema}int]"},
    {"DefaultAndFixed", "<xs:attribute name='a' default='1' fixed='1'/>",
     "In [(buffer)] at [/schema/attribute[a]]: An attribute must not have both default and fixed"},
    {"RequiredWithDefault", "<xs:complexType name='C'><xs:attribute name='a' use='required' default='1'/></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/attribute[a]]: An attribute with a default must be optional"},
    {"AttributeAddedByRestriction", "<xs:complexType name='B'/><xs:complexType name='R'><xs:complexContent><xs:restriction base='B'>"
     "<xs:attribute name='a'/></xs:restriction></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[R]]: The attribute [a] is not allowed by the base type [{urn:t}B]"},
    {"AttributeTwice", "<xs:complexType name='C'><xs:attribute name='a'/><xs:attribute name='a'/></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]]: The attribute [a] is declared twice"},
    {"FinalForbidsExtension", "<xs:complexType name='B' final='extension'/><xs:complexType name='D'><xs:complexContent>"
     "<xs:extension base='B'/></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[D]]: The type [{urn:t}B] does not allow derivation by extension"},
    {"MixedExtensionOfElementOnly", "<xs:complexType name='B'><xs:sequence><xs:element name='a'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='D' mixed='true'><xs:complexContent><xs:extension base='B'><xs:sequence><xs:element name='b'/></xs:sequence>"
     "</xs:extension></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[D]]: An extension of [{urn:t}B] must be mixed exactly when its base is"},
    {"NestedAllGroup", "<xs:complexType name='C'><xs:sequence><xs:all/></xs:sequence></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[C]/sequence/all]: The element [all] is not allowed in a sequence"},
    {"SubstituteOfUnrelatedType", "<xs:element name='h' type='xs:int'/><xs:element name='m' type='xs:date' substitutionGroup='h'/>",
     "In [(buffer)] at [/schema/element[m]]: The type of the element [{urn:t}m] does not derive from the type of its substitution group head [{urn:t}h]"},
    {"KeyrefToKeyref", "<xs:element name='r'><xs:keyref name='a' refer='b'><xs:selector xpath='.'/><xs:field xpath='@x'/></xs:keyref>"
     "<xs:keyref name='b' refer='a'><xs:selector xpath='.'/><xs:field xpath='@x'/></xs:keyref></xs:element>",
     "In [(buffer)] at [/schema/element[r]/keyref[a]]: The keyref refers to [{urn:t}b], which is not a key or unique"},
    {"InvalidPattern", "<xs:simpleType name='S'><xs:restriction base='xs:string'><xs:pattern value='(a'/></xs:restriction></xs:simpleType>",
     "In [(buffer)] at [/schema/simpleType[S]/restriction]: The pattern [(a] is not a valid regular expression\n\n"
     "Invalid Regular Expression: (a Error: 'missing closing parenthesis'"},
    {"InvalidSelectorXPath", "<xs:element name='r'><xs:key name='k'><xs:selector xpath='@a'/><xs:field xpath='@x'/></xs:key></xs:element>",
     "In [(buffer)] at [/schema/element[r]/key[k]/selector]: The xpath [@a] is not a valid selector expression"},
    {"FieldXPathWithUndeclaredPrefix", "<xs:element name='r'><xs:unique name='u'><xs:selector xpath='.//a'/><xs:field xpath='q:b/@c'/></xs:unique></xs:element>",
     "In [(buffer)] at [/schema/element[r]/unique[u]/field]: The xpath [q:b/@c] is not a valid field expression"},
    {"RestrictionAddsAnElement", "<xs:complexType name='B'><xs:sequence><xs:element name='a'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='R'><xs:complexContent><xs:restriction base='B'><xs:sequence><xs:element name='a'/><xs:element name='b'/>"
     "</xs:sequence></xs:restriction></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[R]]: The content model is not a valid restriction of the content model of the base type [{urn:t}B]"},
    {"RestrictionWidensOccurrence", "<xs:complexType name='B'><xs:sequence><xs:element name='a' maxOccurs='2'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='R'><xs:complexContent><xs:restriction base='B'><xs:sequence><xs:element name='a' maxOccurs='3'/>"
     "</xs:sequence></xs:restriction></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[R]]: The content model is not a valid restriction of the content model of the base type [{urn:t}B]"},
    {"RestrictionDropsARequiredElement", "<xs:complexType name='B'><xs:sequence><xs:element name='a'/><xs:element name='b'/></xs:sequence></xs:complexType>"
     "<xs:complexType name='R'><xs:complexContent><xs:restriction base='B'><xs:sequence><xs:element name='b'/>"
     "</xs:sequence></xs:restriction></xs:complexContent></xs:complexType>",
     "In [(buffer)] at [/schema/complexType[R]]: The content model is not a valid restriction of the content model of the base type [{urn:t}B]"},
    {"AnnotationNotFirst", "<xs:element name='e'><xs:complexType/><xs:annotation/></xs:element>",
     "In [(buffer)] at [/schema/element[e]/annotation]: An annotation must be the first child of [element]"},
};

std::string Name(const ::testing::TestParamInfo<BadSchema>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Loader, SchemaErrors, ::testing::ValuesIn(kBadSchemas), Name);

TEST(SchemaDocumentErrors, MalformedXmlCarriesTheParserMessage) {
    EXPECT_EQ(LoadError("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element></xs:schema>"),
              "Failed to load the schema [(buffer)]\n\nmismatched tag at line 1");
}

TEST(SchemaDocumentErrors, RootMustBeASchema) {
    EXPECT_EQ(LoadError("<schema/>"),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema]: The document is not an XML schema: its root element is [schema]");
}

TEST(SchemaDocumentErrors, UndeclaredElementPrefix) {
    EXPECT_EQ(LoadError("<xs:schema/>"),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema]: The prefix [xs] of the element [xs:schema] is not declared");
}

TEST(SchemaDocumentErrors, RelativeLocationNeedsABase) {
    EXPECT_EQ(LoadError(Xsd("<xs:include schemaLocation='other.xsd'/>")),
              "Failed to load the schema [(buffer)]\n\nIn [(buffer)] at [/schema/include[other.xsd]]: "
              "The schema location [other.xsd] is relative, and the document has no base location");
}

TEST(SchemaDocumentErrors, NetworkLocationsAreNeverFetched) {
    EXPECT_EQ(LoadError(Xsd("<xs:import namespace='urn:o' schemaLocation='http://example.com/o.xsd'/>"), "/tmp/a.xsd"),
              "Failed to load the schema [/tmp/a.xsd]\n\nIn [/tmp/a.xsd] at [/schema/import[http://example.com/o.xsd]]: "
              "The schema location [http://example.com/o.xsd] is not a local file; schemas are never fetched from the network");
}

TEST(SchemaDocumentErrors, ExceptionIsASchemaException) {
    try {
        CSchemaSet::LoadBuffer(Xsd("<xs:element name='e' type='Nope'/>"));
        FAIL() << "loaded";
    } catch (const CQmSchemaException& e) {
        ASSERT_NE(e.GetInnerException(), nullptr);
        EXPECT_NE(dynamic_cast<const CQmSchemaException*>(e.GetInnerException()), nullptr);
    }
}

}  // namespace
}  // namespace schema_test
