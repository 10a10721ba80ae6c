// Hostile shapes (deep nesting, long chains) and the printed model.
#include "schema_test_support.h"

namespace schema_test {
namespace {

TEST(SchemaRobustness, DeepNestingIsRefusedNotRecursed) {
    std::string body;
    for (int i = 0; i < 2000; ++i) body += "<xs:element name='e'><xs:complexType><xs:sequence>";
    for (int i = 0; i < 2000; ++i) body += "</xs:sequence></xs:complexType></xs:element>";
    const std::string error = LoadError(Xsd(body));
    EXPECT_EQ(error.substr(error.rfind(": ") + 2), "Schema elements nest more than 256 levels deep");
}

TEST(SchemaRobustness, LongDerivationChainsAndSubstitutionGroupsLoad) {
    // Defined from the most derived end, so that nothing is found ready.
    const int n = 2000;
    std::string body;
    for (int i = n; i > 0; --i) {
        body += "<xs:complexType name='T" + std::to_string(i) + "'><xs:complexContent><xs:extension base='T" +
                std::to_string(i - 1) + "'><xs:sequence><xs:element name='e" + std::to_string(i) +
                "'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>";
        body += "<xs:simpleType name='S" + std::to_string(i) + "'><xs:restriction base='S" + std::to_string(i - 1) +
                "'/></xs:simpleType>";
        body += "<xs:element name='m" + std::to_string(i) + "' substitutionGroup='m" + std::to_string(i - 1) + "'/>";
    }
    body += "<xs:complexType name='T0'/><xs:simpleType name='S0'><xs:restriction base='xs:int'/></xs:simpleType>"
            "<xs:element name='m0' type='T0'/>";
    auto set = CSchemaSet::LoadBuffer(Xsd(body));
    const CComplexType* last = set->FindComplexType({"urn:t", "T" + std::to_string(n)});
    EXPECT_TRUE(last->DerivesFrom(set->FindType({"urn:t", "T0"})));
    EXPECT_EQ(last->contentType, CComplexType::ContentType::ElementOnly);
    EXPECT_EQ(set->FindSimpleType({"urn:t", "S" + std::to_string(n)})->primitiveType, set->GetBuiltInType("decimal"));
    EXPECT_EQ(set->FindElement({"urn:t", "m" + std::to_string(n)})->type, set->FindType({"urn:t", "T0"}));
    EXPECT_EQ(set->FindElement({"urn:t", "m0"})->substitutionGroupMembers.size(), static_cast<std::size_t>(n));
    // The printer names each base's content model instead of repeating it.
    const std::string text = PrintSchemaSet(*set);
    EXPECT_NE(text.find("complexType {urn:t}T2\n"
                        "  base {urn:t}T1 by extension\n"
                        "  content element-only\n"
                        "  sequence [1..1]\n"
                        "    content model of {urn:t}T1\n"
                        "    sequence [1..1]\n"
                        "      element e2 : {http://www.w3.org/2001/XMLSchema}anyType [1..1]\n"),
              std::string::npos);
}

TEST(SchemaPrinter, PrintsTypesMembersCardinalityAndFacets) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:simpleType name='Code'><xs:restriction base='xs:string'><xs:maxLength value='4'/><xs:pattern value='[A-Z]+'/>
        <xs:enumeration value='AB'/></xs:restriction></xs:simpleType>
      <xs:simpleType name='Codes'><xs:list itemType='Code'/></xs:simpleType>
      <xs:complexType name='Order'>
        <xs:sequence>
          <xs:element name='code' type='Code' maxOccurs='unbounded'/>
          <xs:element name='note' minOccurs='0'><xs:simpleType><xs:restriction base='xs:string'><xs:minLength value='1'/></xs:restriction></xs:simpleType></xs:element>
          <xs:any namespace='##other' minOccurs='0'/>
        </xs:sequence>
        <xs:attribute name='id' type='xs:ID' use='required'/>
      </xs:complexType>
      <xs:element name='order' type='Order'/>
      <xs:group name='G'><xs:choice><xs:element ref='order'/></xs:choice></xs:group>)"));
    EXPECT_EQ(PrintSchemaSet(*set),
              "simpleType {urn:t}Code (atomic)\n"
              "  base {http://www.w3.org/2001/XMLSchema}string by restriction\n"
              "  facet maxLength 4\n"
              "  facet pattern [A-Z]+\n"
              "  facet enumeration AB\n"
              "simpleType {urn:t}Codes (list)\n"
              "  item {urn:t}Code\n"
              "complexType {urn:t}Order\n"
              "  base {http://www.w3.org/2001/XMLSchema}anyType by restriction\n"
              "  content element-only\n"
              "  sequence [1..1]\n"
              "    element code : {urn:t}Code [1..unbounded]\n"
              "    element note : anonymous simpleType [0..1]\n"
              "      simpleType (atomic)\n"
              "        base {http://www.w3.org/2001/XMLSchema}string by restriction\n"
              "        facet minLength 1\n"
              "    any not(urn:t) strict [0..1]\n"
              "  attribute id : {http://www.w3.org/2001/XMLSchema}ID required\n"
              "element {urn:t}order : {urn:t}Order\n"
              "group {urn:t}G\n"
              "  choice\n"
              "    element {urn:t}order : {urn:t}Order [1..1]\n");
}

}  // namespace
}  // namespace schema_test
