// The component model as the loader builds it from correct schemas.
#include "schema_test_support.h"

namespace schema_test {
namespace {

const CParticle* Child(const CParticle* p, std::size_t i) { return p->modelGroup->particles.at(i); }

TEST(SchemaModel, ComplexTypeMembersAndCardinality) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='Order'>
        <xs:sequence>
          <xs:element name='id' type='xs:int'/>
          <xs:element name='line' type='xs:string' minOccurs='0' maxOccurs='unbounded'/>
          <xs:choice minOccurs='0'><xs:element name='a' type='xs:date'/><xs:any namespace='##other' processContents='lax'/></xs:choice>
        </xs:sequence>
        <xs:attribute name='code' type='xs:token' use='required'/>
        <xs:attribute name='kind' type='xs:string' default='x'/>
        <xs:anyAttribute namespace='##local urn:b' processContents='skip'/>
      </xs:complexType>)"));
    const CComplexType* order = set->FindComplexType({"urn:t", "Order"});
    ASSERT_NE(order, nullptr);
    EXPECT_EQ(order->baseType, set->GetAnyType());
    EXPECT_EQ(order->derivationMethod, Derivation_Restriction);
    EXPECT_EQ(order->contentType, CComplexType::ContentType::ElementOnly);
    const CParticle* top = order->contentModel;
    ASSERT_EQ(top->modelGroup->compositor, CModelGroup::Compositor::Sequence);
    ASSERT_EQ(top->modelGroup->particles.size(), 3u);
    EXPECT_EQ(Child(top, 0)->element->name.ToString(), "id");  // unqualified local element
    EXPECT_FALSE(Child(top, 0)->element->qualified);
    EXPECT_EQ(Child(top, 0)->element->type, set->GetBuiltInType("int"));
    EXPECT_EQ(Child(top, 1)->minOccurs, 0u);
    EXPECT_EQ(Child(top, 1)->maxOccurs, CParticle::kUnbounded);
    const CParticle* choice = Child(top, 2);
    EXPECT_EQ(choice->modelGroup->compositor, CModelGroup::Compositor::Choice);
    const CWildcard* any = Child(choice, 1)->wildcard;
    EXPECT_EQ(any->namespaceConstraint.kind, CNamespaceConstraint::Kind::Not);
    EXPECT_EQ(any->namespaceConstraint.namespaces, std::vector<std::string>{"urn:t"});
    EXPECT_EQ(any->processContents, CWildcard::ProcessContents::Lax);
    ASSERT_EQ(order->attributeUses.size(), 2u);
    EXPECT_EQ(order->attributeUses[0]->use, CAttributeUse::Use::Required);
    EXPECT_EQ(order->attributeUses[1]->valueConstraint.kind, CValueConstraint::Default);
    EXPECT_EQ(order->attributeUses[1]->valueConstraint.value, "x");
    EXPECT_EQ(order->attributeWildcard->namespaceConstraint.namespaces, (std::vector<std::string>{"", "urn:b"}));
    EXPECT_EQ(order->attributeWildcard->processContents, CWildcard::ProcessContents::Skip);
}

TEST(SchemaModel, ExtensionAppendsOwnParticleAfterBaseAndInheritsAttributes) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='B'><xs:sequence><xs:element name='a' type='xs:string'/></xs:sequence>
        <xs:attribute name='x' type='xs:int'/><xs:anyAttribute namespace='urn:a'/></xs:complexType>
      <xs:complexType name='D'><xs:complexContent><xs:extension base='B'>
        <xs:sequence><xs:element name='b' type='xs:string'/></xs:sequence>
        <xs:attribute name='y' type='xs:int'/><xs:anyAttribute namespace='urn:b'/></xs:extension></xs:complexContent></xs:complexType>
      <xs:complexType name='E'><xs:complexContent><xs:extension base='D'/></xs:complexContent></xs:complexType>)"));
    const CComplexType* b = set->FindComplexType({"urn:t", "B"});
    const CComplexType* d = set->FindComplexType({"urn:t", "D"});
    EXPECT_EQ(d->derivationMethod, Derivation_Extension);
    const CParticle* content = d->contentModel;
    ASSERT_EQ(content->modelGroup->particles.size(), 2u);
    EXPECT_EQ(Child(content, 0), b->contentModel);
    EXPECT_EQ(Child(Child(content, 1), 0)->element->name.local, "b");
    ASSERT_EQ(d->attributeUses.size(), 2u);
    EXPECT_EQ(d->attributeUses[0]->declaration->name.local, "x");
    EXPECT_EQ(d->attributeUses[1]->declaration->name.local, "y");
    EXPECT_EQ(d->attributeWildcard->namespaceConstraint.namespaces, (std::vector<std::string>{"urn:a", "urn:b"}));
    // An extension adding nothing keeps the base's content model as it is.
    const CComplexType* e = set->FindComplexType({"urn:t", "E"});
    EXPECT_EQ(e->contentModel, d->contentModel);
    EXPECT_TRUE(e->DerivesFrom(b));
    EXPECT_FALSE(b->DerivesFrom(e));
}

TEST(SchemaModel, RestrictionReplacesAndProhibitsAttributes) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='B'><xs:attribute name='x' type='xs:int'/><xs:attribute name='y' type='xs:string'/></xs:complexType>
      <xs:complexType name='R'><xs:complexContent><xs:restriction base='B'>
        <xs:attribute name='x' type='xs:byte' use='required'/><xs:attribute name='y' use='prohibited'/>
      </xs:restriction></xs:complexContent></xs:complexType>)"));
    const CComplexType* r = set->FindComplexType({"urn:t", "R"});
    ASSERT_EQ(r->attributeUses.size(), 1u);
    EXPECT_EQ(r->attributeUses[0]->declaration->type, set->GetBuiltInType("byte"));
    EXPECT_EQ(r->attributeUses[0]->use, CAttributeUse::Use::Required);
    EXPECT_EQ(r->contentType, CComplexType::ContentType::Empty);
}

TEST(SchemaModel, ContentRestrictionsThatNarrowLoad) {
    // Optional elements dropped, occurrences narrowed, choices reordered,
    // substitution group members in place of their head, wildcards narrowed.
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:element name='head'/><xs:element name='m1' substitutionGroup='head'/>
      <xs:complexType name='B'><xs:sequence>
        <xs:element name='a' minOccurs='0' maxOccurs='5'/><xs:element name='b' minOccurs='0'/>
        <xs:choice><xs:element name='c'/><xs:element name='d'/></xs:choice>
        <xs:element ref='head'/><xs:any namespace='##any' minOccurs='0' maxOccurs='unbounded'/></xs:sequence></xs:complexType>
      <xs:complexType name='R'><xs:complexContent><xs:restriction base='B'><xs:sequence>
        <xs:element name='a' minOccurs='1' maxOccurs='2'/>
        <xs:choice><xs:element name='d'/><xs:element name='c'/></xs:choice>
        <xs:element ref='m1'/><xs:any namespace='##other' processContents='strict'/></xs:sequence>
      </xs:restriction></xs:complexContent></xs:complexType>)"));
    EXPECT_EQ(set->FindComplexType({"urn:t", "R"})->contentModel->modelGroup->particles.size(), 4u);
}

TEST(SchemaModel, SimpleContentByExtensionAndRestriction) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='Price'><xs:simpleContent><xs:extension base='xs:decimal'>
        <xs:attribute name='currency' type='xs:string'/></xs:extension></xs:simpleContent></xs:complexType>
      <xs:complexType name='Small'><xs:simpleContent><xs:restriction base='Price'>
        <xs:maxInclusive value='100'/></xs:restriction></xs:simpleContent></xs:complexType>)"));
    const CComplexType* price = set->FindComplexType({"urn:t", "Price"});
    EXPECT_EQ(price->contentType, CComplexType::ContentType::Simple);
    EXPECT_EQ(price->simpleContentType, set->GetBuiltInType("decimal"));
    const CComplexType* small = set->FindComplexType({"urn:t", "Small"});
    const CSimpleType* content = small->simpleContentType;
    ASSERT_NE(content, nullptr);
    EXPECT_TRUE(content->IsAnonymous());
    EXPECT_EQ(content->baseType, set->GetBuiltInType("decimal"));
    EXPECT_EQ(content->facets.maxInclusive->value, "100");
    EXPECT_EQ(small->attributeUses.size(), 1u);
}

TEST(SchemaModel, SimpleTypeVarietiesFacetsAndWhitespace) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:simpleType name='Code'><xs:restriction base='xs:token'><xs:pattern value='[A-Z]+'/><xs:maxLength value='8' fixed='true'/></xs:restriction></xs:simpleType>
      <xs:simpleType name='Short'><xs:restriction base='Code'><xs:pattern value='A.*'/><xs:pattern value='B.*'/><xs:enumeration value='AB'/><xs:enumeration value='BA'/></xs:restriction></xs:simpleType>
      <xs:simpleType name='Codes'><xs:list itemType='Code'/></xs:simpleType>
      <xs:simpleType name='Either'><xs:union memberTypes='xs:int Code'><xs:simpleType><xs:restriction base='xs:date'/></xs:simpleType></xs:union></xs:simpleType>
      <xs:simpleType name='Few'><xs:restriction base='Codes'><xs:maxLength value='3'/></xs:restriction></xs:simpleType>)"));
    const CSimpleType* code = set->FindSimpleType({"urn:t", "Code"});
    EXPECT_EQ(code->variety, CSimpleType::Variety::Atomic);
    EXPECT_EQ(code->primitiveType, set->GetBuiltInType("string"));
    EXPECT_EQ(code->whiteSpace, WhiteSpace::Collapse);
    EXPECT_EQ(code->runtimeType, QmXmlLib10::ItemType_string);
    EXPECT_TRUE(code->facets.maxLength->fixed);
    const CSimpleType* shortType = set->FindSimpleType({"urn:t", "Short"});
    // One pattern group per derivation step, the own step's patterns together.
    EXPECT_EQ(shortType->facets.patterns, (std::vector<std::vector<std::string>>{{"[A-Z]+"}, {"A.*", "B.*"}}));
    EXPECT_EQ(shortType->facets.enumeration, (std::vector<std::string>{"AB", "BA"}));
    EXPECT_EQ(shortType->facets.maxLength->value, 8u);
    EXPECT_TRUE(shortType->ownFacets.patterns.size() == 1 && !shortType->ownFacets.maxLength);
    const CSimpleType* codes = set->FindSimpleType({"urn:t", "Codes"});
    EXPECT_EQ(codes->variety, CSimpleType::Variety::List);
    EXPECT_EQ(codes->itemType, code);
    EXPECT_EQ(codes->baseType, set->GetAnySimpleType());
    const CSimpleType* few = set->FindSimpleType({"urn:t", "Few"});
    EXPECT_EQ(few->variety, CSimpleType::Variety::List);
    EXPECT_EQ(few->itemType, code);
    const CSimpleType* either = set->FindSimpleType({"urn:t", "Either"});
    ASSERT_EQ(either->memberTypes.size(), 3u);
    EXPECT_EQ(either->memberTypes[0], set->GetBuiltInType("int"));
    EXPECT_EQ(either->memberTypes[1], code);
    EXPECT_EQ(either->memberTypes[2]->baseType, set->GetBuiltInType("date"));
}

TEST(SchemaModel, ElementDeclarationProperties) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:element name='head' type='xs:anyType' abstract='true' block='substitution'/>
      <xs:element name='m1' substitutionGroup='head' type='xs:string'/>
      <xs:element name='m2' substitutionGroup='m1'/>
      <xs:element name='plain' nillable='true' fixed='5' type='xs:int' final='#all'/>
      <xs:element name='untyped'/>
      <xs:complexType name='T'><xs:sequence>
        <xs:element name='q' type='xs:int' form='qualified'/><xs:element ref='plain'/></xs:sequence></xs:complexType>)",
                                          " blockDefault='extension'"));
    const CElementDeclaration* head = set->FindElement({"urn:t", "head"});
    const CElementDeclaration* m1 = set->FindElement({"urn:t", "m1"});
    const CElementDeclaration* m2 = set->FindElement({"urn:t", "m2"});
    EXPECT_TRUE(head->abstract);
    EXPECT_EQ(head->block, unsigned(Derivation_Substitution));
    EXPECT_EQ(m1->block, unsigned(Derivation_Extension));  // from blockDefault
    EXPECT_EQ(head->substitutionGroupMembers, (std::vector<const CElementDeclaration*>{m1, m2}));
    EXPECT_EQ(m1->substitutionGroupMembers, (std::vector<const CElementDeclaration*>{m2}));
    EXPECT_EQ(m2->substitutionGroupHead, m1);
    EXPECT_EQ(m2->type, set->GetBuiltInType("string"));  // the head's type
    const CElementDeclaration* plain = set->FindElement({"urn:t", "plain"});
    EXPECT_TRUE(plain->nillable);
    EXPECT_EQ(plain->valueConstraint.kind, CValueConstraint::Fixed);
    EXPECT_EQ(plain->final, unsigned(Derivation_Extension | Derivation_Restriction));
    EXPECT_EQ(set->FindElement({"urn:t", "untyped"})->type, set->GetAnyType());
    const CParticle* content = set->FindComplexType({"urn:t", "T"})->contentModel;
    const CElementDeclaration* q = Child(content, 0)->element;
    EXPECT_EQ(q->scope, CElementDeclaration::Scope::Local);
    EXPECT_TRUE(q->qualified);
    EXPECT_EQ(q->name.ns, "urn:t");
    EXPECT_EQ(q->enclosingType, set->FindComplexType({"urn:t", "T"}));
    EXPECT_EQ(Child(content, 1)->element, plain);
}

TEST(SchemaModel, FormDefaultsQualifyLocalDeclarations) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='T'><xs:sequence><xs:element name='e' form='unqualified'/><xs:element name='f'/></xs:sequence>
        <xs:attribute name='a'/><xs:attribute name='b' form='unqualified'/></xs:complexType>)",
                                          " elementFormDefault='qualified' attributeFormDefault='qualified'"));
    const CComplexType* t = set->FindComplexType({"urn:t", "T"});
    EXPECT_EQ(Child(t->contentModel, 0)->element->name.ns, "");
    EXPECT_EQ(Child(t->contentModel, 1)->element->name.ns, "urn:t");
    EXPECT_EQ(t->attributeUses[0]->declaration->name.ns, "urn:t");
    EXPECT_TRUE(t->attributeUses[0]->declaration->qualified);
    EXPECT_EQ(t->attributeUses[1]->declaration->name.ns, "");
}

TEST(SchemaModel, GroupsAttributeGroupsNotationsIdentityConstraints) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:group name='G'><xs:choice><xs:element name='a'/><xs:element name='b'/></xs:choice></xs:group>
      <xs:attributeGroup name='AG'><xs:attribute name='x'/><xs:attributeGroup ref='AG2'/><xs:anyAttribute namespace='##any'/></xs:attributeGroup>
      <xs:attributeGroup name='AG2'><xs:attribute name='y'/><xs:anyAttribute namespace='urn:z'/></xs:attributeGroup>
      <xs:complexType name='T'><xs:group ref='G' maxOccurs='2'/><xs:attributeGroup ref='AG'/></xs:complexType>
      <xs:notation name='png' public='image/png'/>
      <xs:element name='root'><xs:complexType><xs:sequence><xs:element name='i' maxOccurs='unbounded'/></xs:sequence></xs:complexType>
        <xs:key name='k'><xs:selector xpath='i'/><xs:field xpath='@id'/></xs:key>
        <xs:keyref name='r' refer='k'><xs:selector xpath='i'/><xs:field xpath='@ref'/></xs:keyref></xs:element>)"));
    const CModelGroupDefinition* g = set->FindModelGroup({"urn:t", "G"});
    const CComplexType* t = set->FindComplexType({"urn:t", "T"});
    EXPECT_EQ(t->contentModel->groupDefinition, g);
    EXPECT_EQ(t->contentModel->modelGroup, g->modelGroup);
    EXPECT_EQ(t->contentModel->maxOccurs, 2u);
    const CAttributeGroup* ag = set->FindAttributeGroup({"urn:t", "AG"});
    ASSERT_EQ(ag->attributeUses.size(), 2u);
    EXPECT_EQ(ag->attributeWildcard->namespaceConstraint.namespaces, std::vector<std::string>{"urn:z"});
    EXPECT_EQ(t->attributeUses.size(), 2u);
    EXPECT_EQ(set->FindNotation({"urn:t", "png"})->publicId, "image/png");
    const CIdentityConstraint* k = set->FindIdentityConstraint({"urn:t", "k"});
    const CIdentityConstraint* r = set->FindIdentityConstraint({"urn:t", "r"});
    EXPECT_EQ(k->selector, "i");
    EXPECT_EQ(k->fields, std::vector<std::string>{"@id"});
    EXPECT_EQ(r->category, CIdentityConstraint::Category::KeyRef);
    EXPECT_EQ(r->referencedKey, k);
    EXPECT_EQ(set->FindElement({"urn:t", "root"})->identityConstraints.size(), 2u);
}

TEST(SchemaModel, SourceLocationsAndAnnotations) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(
      <xs:complexType name='T'><xs:annotation><xs:documentation>An order.</xs:documentation>
        <xs:appinfo>x</xs:appinfo><xs:documentation>Second.</xs:documentation></xs:annotation>
        <xs:sequence><xs:element name='e'/></xs:sequence></xs:complexType>)"),
                                      "/virtual/base.xsd");
    const CComplexType* t = set->FindComplexType({"urn:t", "T"});
    EXPECT_EQ(t->annotation.documentation, (std::vector<std::string>{"An order.", "Second."}));
    EXPECT_EQ(t->source.document, "/virtual/base.xsd");
    EXPECT_EQ(t->source.line, 0);
    EXPECT_EQ(t->source.path, "/schema/complexType[T]");
    EXPECT_EQ(Child(t->contentModel, 0)->element->source.path, "/schema/complexType[T]/sequence/element[e]");
    EXPECT_EQ(set->GetDocuments(), std::vector<std::string>{"/virtual/base.xsd"});
}

TEST(SchemaModel, XmlNamespaceAttributesAreBuiltIn) {
    auto set = CSchemaSet::LoadBuffer(Xsd(R"(<xs:import namespace='http://www.w3.org/XML/1998/namespace'/>
      <xs:complexType name='T'><xs:attribute ref='xml:lang'/></xs:complexType>
      <xs:complexType name='U'><xs:attributeGroup ref='xml:specialAttrs'/></xs:complexType>)"));
    const CComplexType* t = set->FindComplexType({"urn:t", "T"});
    ASSERT_EQ(t->attributeUses.size(), 1u);
    EXPECT_EQ(t->attributeUses[0]->declaration->name.ToString(), "{http://www.w3.org/XML/1998/namespace}lang");
    EXPECT_EQ(set->FindComplexType({"urn:t", "U"})->attributeUses.size(), 4u);
    for (const char* name : {"lang", "space", "base", "id"})
        EXPECT_NE(set->FindAttribute({CSchemaSet::kXmlNamespace, name}), nullptr) << name;
    EXPECT_EQ(set->FindAttribute({CSchemaSet::kXmlNamespace, "space"})->type->facets.enumeration,
              (std::vector<std::string>{"default", "preserve"}));
}

TEST(SchemaModel, NamespacePrefixesFollowTheirScope) {
    // The same prefix bound to two namespaces in two places of one document.
    auto set = CSchemaSet::LoadBuffer(R"(<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' xmlns:p='urn:t' targetNamespace='urn:t'>
      <s:simpleType name='A'><s:restriction base='s:string'/></s:simpleType>
      <s:element name='e1' type='p:A'/>
      <s:element name='e2' xmlns:p='http://www.w3.org/2001/XMLSchema' type='p:int'/>
      <s:element name='e3' xmlns='http://www.w3.org/2001/XMLSchema' type='date'/>
    </s:schema>)");
    EXPECT_EQ(set->FindElement({"urn:t", "e1"})->type, set->FindType({"urn:t", "A"}));
    EXPECT_EQ(set->FindElement({"urn:t", "e2"})->type, set->GetBuiltInType("int"));
    EXPECT_EQ(set->FindElement({"urn:t", "e3"})->type, set->GetBuiltInType("date"));
}

TEST(SchemaModel, GlobalListsKeepDocumentOrderWithoutBuiltIns) {
    auto set = CSchemaSet::LoadBuffer(Xsd(
        "<xs:element name='b'/><xs:simpleType name='S'><xs:restriction base='xs:int'/></xs:simpleType>"
        "<xs:element name='a'/><xs:complexType name='C'/>"));
    ASSERT_EQ(set->GetElements().size(), 2u);
    EXPECT_EQ(set->GetElements()[0]->name.local, "b");
    EXPECT_EQ(set->GetElements()[1]->name.local, "a");
    ASSERT_EQ(set->GetTypes().size(), 2u);
    EXPECT_EQ(set->GetTypes()[0]->name.local, "S");
    EXPECT_TRUE(set->GetAttributes().empty());
}

}  // namespace
}  // namespace schema_test
