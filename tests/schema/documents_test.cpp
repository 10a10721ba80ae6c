// Schemas spread over several documents: include, import, redefine.
#include "schema_test_support.h"

namespace schema_test {
namespace {

TEST(SchemaDocuments, ChameleonIncludeTakesTheIncludersNamespace) {
    TempDir dir;
    dir.Write("parts/common.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                  "<xs:simpleType name='Id'><xs:restriction base='xs:int'/></xs:simpleType>"
                                  "<xs:element name='ref' type='Id'/></xs:schema>");
    const std::string main = dir.Write("main.xsd", Xsd("<xs:include schemaLocation='parts/common.xsd'/>"
                                                       "<xs:element name='main' type='Id'/>"));
    auto set = CSchemaSet::LoadFile(main);
    const CTypeDefinition* id = set->FindType({"urn:t", "Id"});
    ASSERT_NE(id, nullptr);
    EXPECT_EQ(set->FindType({"", "Id"}), nullptr);
    // The chameleon's own unqualified reference follows it into urn:t.
    EXPECT_EQ(set->FindElement({"urn:t", "ref"})->type, id);
    EXPECT_EQ(set->FindElement({"urn:t", "main"})->type, id);
    EXPECT_EQ(set->GetDocuments(), (std::vector<std::string>{main, dir.Path("parts/common.xsd")}));
}

TEST(SchemaDocuments, ImportResolvesAgainstTheReferringDocument) {
    TempDir dir;
    dir.Write("b/other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:o'>"
                             "<xs:complexType name='O'/></xs:schema>");
    dir.Write("b/mid.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:m' xmlns:o='urn:o'>"
                           "<xs:import namespace='urn:o' schemaLocation='other.xsd'/>"
                           "<xs:element name='m' type='o:O'/></xs:schema>");
    const std::string main = dir.Write("main.xsd", Xsd("<xs:import namespace='urn:m' schemaLocation='b/mid.xsd'/>"
                                                       "<xs:import namespace='urn:o'/>"
                                                       "<xs:element name='x' type='o:O'/>", " xmlns:o='urn:o'"));
    auto set = CSchemaSet::LoadFile(main);
    EXPECT_EQ(set->FindElement({"urn:t", "x"})->type, set->FindType({"urn:o", "O"}));
    EXPECT_EQ(set->FindElement({"urn:m", "m"})->type, set->FindType({"urn:o", "O"}));
    EXPECT_EQ(set->GetDocuments().size(), 3u);
}

TEST(SchemaDocuments, IncludeAndImportCyclesReadEachDocumentOnce) {
    TempDir dir;
    const std::string a = dir.Write("a.xsd", Xsd("<xs:include schemaLocation='b.xsd'/><xs:import namespace='urn:c' schemaLocation='c.xsd'/>"
                                                 "<xs:element name='a'/>"));
    dir.Write("b.xsd", Xsd("<xs:include schemaLocation='a.xsd'/><xs:include schemaLocation='./b.xsd'/><xs:element name='b'/>"));
    dir.Write("c.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:c'>"
                       "<xs:import namespace='urn:t' schemaLocation='a.xsd'/><xs:element name='c'/></xs:schema>");
    auto set = CSchemaSet::LoadFile(a);
    EXPECT_EQ(set->GetDocuments().size(), 3u);
    EXPECT_EQ(set->GetElements().size(), 3u);
}

TEST(SchemaDocuments, RedefineDerivesTypesAndGroupsFromThemselves) {
    TempDir dir;
    dir.Write("v1.xsd", Xsd("<xs:simpleType name='Size'><xs:restriction base='xs:int'/></xs:simpleType>"
                            "<xs:complexType name='Item'><xs:sequence><xs:element name='a'/></xs:sequence></xs:complexType>"
                            "<xs:group name='G'><xs:sequence><xs:element name='g1'/></xs:sequence></xs:group>"
                            "<xs:attributeGroup name='AG'><xs:attribute name='x'/></xs:attributeGroup>"));
    const std::string v2 = dir.Write("v2.xsd", Xsd(R"(<xs:redefine schemaLocation='v1.xsd'>
        <xs:simpleType name='Size'><xs:restriction base='Size'><xs:maxInclusive value='9'/></xs:restriction></xs:simpleType>
        <xs:complexType name='Item'><xs:complexContent><xs:extension base='Item'><xs:sequence><xs:element name='b'/></xs:sequence></xs:extension></xs:complexContent></xs:complexType>
        <xs:group name='G'><xs:sequence><xs:group ref='G'/><xs:element name='g2'/></xs:sequence></xs:group>
        <xs:attributeGroup name='AG'><xs:attributeGroup ref='AG'/><xs:attribute name='y'/></xs:attributeGroup>
      </xs:redefine>)"));
    auto set = CSchemaSet::LoadFile(v2);
    const CSimpleType* size = set->FindSimpleType({"urn:t", "Size"});
    EXPECT_EQ(size->facets.maxInclusive->value, "9");
    ASSERT_TRUE(size->baseType->IsSimple());
    EXPECT_EQ(size->baseType->name.local, "Size");
    EXPECT_EQ(size->baseType->baseType, set->GetBuiltInType("int"));
    const CComplexType* item = set->FindComplexType({"urn:t", "Item"});
    EXPECT_EQ(item->derivationMethod, Derivation_Extension);
    EXPECT_EQ(item->contentModel->modelGroup->particles.size(), 2u);
    const CModelGroupDefinition* g = set->FindModelGroup({"urn:t", "G"});
    EXPECT_EQ(g->modelGroup->particles.size(), 2u);
    EXPECT_NE(g->modelGroup->particles[0]->groupDefinition, g);
    EXPECT_EQ(set->FindAttributeGroup({"urn:t", "AG"})->attributeUses.size(), 2u);
    // The lists hold the redefinitions only.
    EXPECT_EQ(set->GetTypes().size(), 2u);
    EXPECT_EQ(set->GetModelGroups().size(), 1u);
}

TEST(SchemaDocuments, MissingIncludedFileNamesBothDocuments) {
    TempDir dir;
    const std::string main = dir.Write("main.xsd", Xsd("<xs:include schemaLocation='gone.xsd'/>"));
    try {
        CSchemaSet::LoadFile(main);
        FAIL() << "loaded";
    } catch (const CQmSchemaException& e) {
        EXPECT_EQ(e.GetMessage(), "Failed to load the schema [" + main + "]");
        ASSERT_NE(e.GetInnerException(), nullptr);
        EXPECT_EQ(e.GetInnerException()->GetMessage(), "In [" + main + "] at [/schema/include[gone.xsd]]: The schema document [" +
                                                           dir.Path("gone.xsd") + "] cannot be loaded");
        // The reader's own reason comes last.
        ASSERT_NE(e.GetInnerException()->GetInnerException(), nullptr);
    }
}

TEST(SchemaDocuments, MalformedIncludedDocument) {
    TempDir dir;
    dir.Write("bad.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:element>\n</xs:schema>");
    const std::string main = dir.Write("main.xsd", Xsd("<xs:include schemaLocation='bad.xsd'/>"));
    EXPECT_EQ(LoadError(Xsd("<xs:include schemaLocation='bad.xsd'/>"), main),
              "Failed to load the schema [" + main + "]\n\nIn [" + main + "] at [/schema/include[bad.xsd]]: The schema document [" +
                  dir.Path("bad.xsd") + "] cannot be loaded\n\nmismatched tag at line 3");
}

TEST(SchemaDocuments, ImportedNamespaceMustMatch) {
    TempDir dir;
    dir.Write("o.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:x'/>");
    const std::string main = dir.Write("main.xsd", Xsd("<xs:import namespace='urn:o' schemaLocation='o.xsd'/>"));
    EXPECT_EQ(LoadError(Xsd("<xs:import namespace='urn:o' schemaLocation='o.xsd'/>"), main),
              "Failed to load the schema [" + main + "]\n\nIn [" + main + "] at [/schema/import[o.xsd]]: The schema document [" +
                  dir.Path("o.xsd") + "] has the target namespace [urn:x], not [urn:o]");
}

TEST(SchemaDocuments, SeveralSourcesLoadIntoOneSet) {
    TempDir dir;
    const std::string a = dir.Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:a'>"
                                             "<xs:complexType name='A'/></xs:schema>");
    auto set = CSchemaSet::Load({CSchemaSource::File(a),
                                 CSchemaSource::Buffer("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:a='urn:a'>"
                                                       "<xs:import namespace='urn:a'/><xs:element name='e' type='a:A'/></xs:schema>")});
    EXPECT_EQ(set->FindElement({"", "e"})->type, set->FindType({"urn:a", "A"}));
}

}  // namespace
}  // namespace schema_test
