#include "mapping.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <set>

#include "qmxml/metadata/attribute_info.h"
#include "qmxml/metadata/parent_element_info.h"
#include "qmxml/schema/attribute_declaration.h"
#include "qmxml/schema/schema_set.h"
#include "qmxml/schema/attribute_use.h"
#include "qmxml/schema/complex_type.h"
#include "qmxml/schema/element_declaration.h"
#include "qmxml/schema/model_group.h"
#include "qmxml/schema/simple_type.h"
#include "qmxml/schema/wildcard.h"
#include "value_rule.h"

namespace QmXmlLib10 {
namespace Schema {

using namespace QmXmlLib10Data;

CClassDescription::CClassDescription() = default;

CClassDescription::~CClassDescription() { CXmlGeneratedClass::CleanMetaData(classInfo, elementInfos, attributeInfos); }

std::pair<std::string, std::string> WildcardRestriction(const CNamespaceConstraint& constraint) {
    switch (constraint.kind) {
        case CNamespaceConstraint::Kind::Any: return {"##any", ""};
        case CNamespaceConstraint::Kind::Not:
            return {"##other", constraint.namespaces.empty() ? std::string() : constraint.namespaces[0]};
        case CNamespaceConstraint::Kind::Set: break;
    }
    std::string list;
    for (const std::string& ns : constraint.namespaces) {
        if (!list.empty()) list += ' ';
        list += ns.empty() ? std::string("##local") : ns;
    }
    // An empty set allows nothing: a namespace no document can use.
    if (list.empty()) list = "##none";
    return {list, ""};
}

namespace {


// An element info of kind Kind for the group and cardinality; choice members
// are optional by nature.
template <template <class, bool> class Kind, class... Args>
CElementInfo* MakeInfo(XmlElementGroupType group, bool mandatory, Args&&... args) {
    switch (group) {
        case XmlElementGroupType_All:
            if (mandatory) return new Kind<CElementInfoAll, true>(std::forward<Args>(args)...);
            return new Kind<CElementInfoAll, false>(std::forward<Args>(args)...);
        case XmlElementGroupType_Choice: return new Kind<CElementInfoChoice, false>(std::forward<Args>(args)...);
        case XmlElementGroupType_Sequence: break;
    }
    if (mandatory) return new Kind<CElementInfoSeq, true>(std::forward<Args>(args)...);
    return new Kind<CElementInfoSeq, false>(std::forward<Args>(args)...);
}

template <class... Args>
CElementInfo* MakeCollectionInfo(XmlElementGroupType group, Args&&... args) {
    switch (group) {
        case XmlElementGroupType_All: return new CElementInfoCol<CElementInfoAll>(std::forward<Args>(args)...);
        case XmlElementGroupType_Choice: return new CElementInfoCol<CElementInfoChoice>(std::forward<Args>(args)...);
        case XmlElementGroupType_Sequence: break;
    }
    return new CElementInfoCol<CElementInfoSeq>(std::forward<Args>(args)...);
}

// An empty element of a member with a default or fixed value stands for it.
void SetEmptyElementValue(CElementInfo* info, const std::string& text) {
    if (auto* i = dynamic_cast<CElementInfoPrim<CElementInfoSeq, true>*>(info)) return i->SetEmptyElementValue(text);
    if (auto* i = dynamic_cast<CElementInfoPrim<CElementInfoSeq, false>*>(info)) return i->SetEmptyElementValue(text);
    if (auto* i = dynamic_cast<CElementInfoPrim<CElementInfoAll, true>*>(info)) return i->SetEmptyElementValue(text);
    if (auto* i = dynamic_cast<CElementInfoPrim<CElementInfoAll, false>*>(info)) return i->SetEmptyElementValue(text);
    if (auto* i = dynamic_cast<CElementInfoPrim<CElementInfoChoice, false>*>(info)) i->SetEmptyElementValue(text);
}

XmlElementGroupType GroupOf(CModelGroup::Compositor compositor) {
    switch (compositor) {
        case CModelGroup::Compositor::Choice: return XmlElementGroupType_Choice;
        case CModelGroup::Compositor::All: return XmlElementGroupType_All;
        case CModelGroup::Compositor::Sequence: break;
    }
    return XmlElementGroupType_Sequence;
}

// Every built-in simple type an xsi:type may name.
const char* const kBuiltInSimpleTypes[] = {
    "anySimpleType", "string", "normalizedString", "token", "language", "Name", "NCName", "ID", "IDREF", "IDREFS",
    "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS", "boolean", "decimal", "integer", "nonPositiveInteger",
    "negativeInteger", "long", "int", "short", "byte", "nonNegativeInteger", "unsignedLong", "unsignedInt",
    "unsignedShort", "unsignedByte", "positiveInteger", "float", "double", "duration", "dateTime", "time", "date",
    "gYearMonth", "gYear", "gMonthDay", "gDay", "gMonth", "hexBinary", "base64Binary", "anyURI", "QName",
    "NOTATION"};

// Whether the particle can match nothing at all.
bool IsEmptiable(const CParticle* particle) {
    // Nesting is bounded by the schema document's own depth, and groups
    // cannot contain themselves: the loader refuses circular groups.
    if (particle == nullptr || particle->minOccurs == 0) return true;
    if (particle->termKind != CParticle::TermKind::ModelGroup || particle->modelGroup == nullptr) return false;
    const CModelGroup* group = particle->modelGroup;
    if (group->compositor == CModelGroup::Compositor::Choice) {
        for (const CParticle* p : group->particles)
            if (IsEmptiable(p)) return true;
        return group->particles.empty();
    }
    for (const CParticle* p : group->particles)
        if (!IsEmptiable(p)) return false;
    return true;
}

class CMapper {
public:
    CMapper(const CSchemaSet& set, const IClassFactory* factory, CMappedSet& out)
        : m_set(set), m_factory(factory), m_out(out) {}

    void Run() {
        for (const CTypeDefinition* type : m_set.GetTypes()) {
            if (type->IsSimple()) continue;
            const CTypeDefinition* base = type->baseType;
            for (int guard = 0; base != nullptr && base != type && guard < 10000; ++guard) {
                if (!m_hasDerived.insert(base).second) break;  // its own bases are in already
                if (base->baseType == base) break;
                base = base->baseType;
            }
        }
        // Named types first, so that they keep their names and anonymous
        // types named after their elements give way on a clash.
        for (const CTypeDefinition* type : m_set.GetTypes()) {
            if (!type->IsSimple() && !type->builtIn) ClassForType(type, type->name.local, type->name.ns);
        }
        for (const CElementDeclaration* element : m_set.GetElements()) {
            const CTypeDefinition* type = TypeOf(element);
            // A simple-typed element with a default or fixed value gets a
            // class of its own: the value belongs to the element, not the type.
            const bool ownClass = type->IsSimple() && element->valueConstraint.kind != CValueConstraint::None;
            const int index = ownClass ? ClassForConstrainedElement(element)
                                       : ClassForType(type, element->name.local, element->name.ns);
            m_out.roots[{element->name.ns, element->name.local}] = index;
            m_out.rootMembers[{element->name.ns, element->name.local}] = static_cast<int>(m_out.substitutable.size());
            m_out.substitutable.push_back(CSubstitutableMember{element, index});
        }
        for (const CAttributeDeclaration* attribute : m_set.GetAttributes()) {
            const CSimpleType* type = attribute->type ? attribute->type : m_set.GetAnySimpleType();
            CPropertyRuntime runtime;
            runtime.itemType = BindingItemType(type);
            runtime.rule = BindingWhitespaceRule(type);
            runtime.facets = BindingFacets(type);
            const bool fixed = attribute->valueConstraint.kind == CValueConstraint::Fixed;
            runtime.facets.SetValueRule(MakeValueRule(type, fixed ? &attribute->valueConstraint : nullptr));
            m_out.globalAttributes[{attribute->name.ns, attribute->name.local}] = std::move(runtime);
        }
        while (!m_pending.empty()) {
            const int index = m_pending.front();
            m_pending.pop_front();
            Fill(index);
        }
        LinkDerivedClasses();
    }

private:
    struct CBuild {
        std::vector<CElementInfo*> elements;
        std::vector<CAttributeInfo*> attributes;
        std::set<std::string> names;
    };

    const CTypeDefinition* TypeOf(const CElementDeclaration* element) const {
        return element->type ? element->type : m_set.GetAnyType();
    }

    std::string UniqueClassName(std::string base) {
        if (base.empty()) base = "Class";
        std::string name = base;
        for (int n = 2; !m_classNames.insert(name).second; ++n) name = base + std::to_string(n);
        return name;
    }

    static std::string UniqueMemberName(CBuild& build, std::string base) {
        if (base.empty()) base = "Member";
        std::string name = base;
        for (int n = 2; !build.names.insert(name).second; ++n) name = base + std::to_string(n);
        return name;
    }

    int NewClass(std::string name) {
        auto description = std::make_unique<CClassDescription>();
        description->index = static_cast<int>(m_out.classes.size());
        description->name = UniqueClassName(std::move(name));
        m_out.classes.push_back(std::move(description));
        m_out.runtime.emplace_back();
        m_out.classTypes.push_back(nullptr);
        m_pending.push_back(static_cast<int>(m_out.classes.size()) - 1);
        return static_cast<int>(m_out.classes.size()) - 1;
    }

    int ClassForType(const CTypeDefinition* type, const std::string& hint, const std::string& ns) {
        const auto found = m_out.typeClasses.find({type, ns});
        if (found != m_out.typeClasses.end()) return found->second;
        const int index = NewClass(type->IsAnonymous() ? hint : type->name.local);
        CClassDescription& description = *m_out.classes[index];
        description.elementNamespace = ns;
        if (!type->IsSimple()) {
            description.type = static_cast<const CComplexType*>(type);
            description.abstract = description.type->abstract;
        }
        if (!type->IsAnonymous()) description.typeName = type->name;
        if (type->IsSimple()) m_simpleClasses[index] = static_cast<const CSimpleType*>(type);
        m_out.typeClasses[{type, ns}] = index;
        m_out.classTypes[index] = type;
        // xsi:type may name any type derived from this one: each gets its
        // class for elements of this namespace too.
        if (m_hasDerived.count(type) != 0) {
            for (const CTypeDefinition* other : m_set.GetTypes()) {
                if (other != type && !other->IsSimple() && other->DerivesFrom(type))
                    ClassForType(other, other->name.local, ns);
            }
        }
        if (type->IsSimple()) {
            // Simple types get classes only as substitutable elements' types;
            // xsi:type may then name a user or built-in type derived from it.
            for (const CTypeDefinition* other : m_set.GetTypes()) {
                if (other != type && other->IsSimple() && !other->IsAnonymous() && other->DerivesFrom(type))
                    ClassForType(other, other->name.local, ns);
            }
            for (const char* builtIn : kBuiltInSimpleTypes) {
                const CSimpleType* other = m_set.GetBuiltInType(builtIn);
                if (other != nullptr && other != type && other->DerivesFrom(type)) ClassForType(other, builtIn, ns);
            }
        }
        return index;
    }

    int ClassForConstrainedElement(const CElementDeclaration* element) {
        const int index = NewClass(element->name.local);
        m_out.classes[index]->elementNamespace = element->name.ns;
        m_simpleClasses[index] = static_cast<const CSimpleType*>(element->type);
        m_out.classTypes[index] = element->type;
        m_constraints[index] = &element->valueConstraint;
        return index;
    }

    int ClassForGroup(const CModelGroup* group, const std::string& owner, const std::string& ns) {
        const bool choice = group->compositor == CModelGroup::Compositor::Choice;
        const int index = NewClass(owner + (choice ? "Choice" : "Sequence"));
        CClassDescription& description = *m_out.classes[index];
        description.elementNamespace = ns;
        description.group = group;
        description.elementType = choice ? XmlElementType_InlineChoice : XmlElementType_InlineSequence;
        return index;
    }

    void Fill(int index) {
        CClassDescription& description = *m_out.classes[index];
        CBuild build;
        int valueIndex = -1;
        ItemType valueType = ItemType_None;
        const CSimpleType* valueSimpleType = nullptr;
        bool mixed = false;
        std::string elementName = description.name;
        const std::string elementNamespace = description.elementNamespace;
        if (description.group != nullptr) {
            description.groupType = GroupOf(description.group->compositor);
            for (const CParticle* particle : description.group->particles)
                AddParticle(index, build, description.groupType, particle);
            elementName = description.group->compositor == CModelGroup::Compositor::Choice ? "Choice" : "Sequence";
        } else if (description.type != nullptr) {
            const CComplexType* type = description.type;
            if (!type->IsAnonymous()) elementName = type->name.local;
            if (type->contentType == CComplexType::ContentType::Simple && type->simpleContentType != nullptr) {
                valueSimpleType = type->simpleContentType;
            } else if (type->contentType == CComplexType::ContentType::ElementOnly ||
                       type->contentType == CComplexType::ContentType::Mixed) {
                AddContent(index, build, type->contentModel);
            }
            mixed = type->contentType == CComplexType::ContentType::Mixed;
            for (const CAttributeUse* use : type->attributeUses) AddAttribute(index, build, use);
            if (type->attributeWildcard != nullptr) AddAttributeWildcard(index, build, type->attributeWildcard);
        } else {
            // The class of a global element of simple type: its value alone.
            const auto found = m_simpleClasses.find(index);
            if (found != m_simpleClasses.end()) valueSimpleType = found->second;
        }
        if (valueSimpleType != nullptr) {
            valueType = BindingItemType(valueSimpleType);
            CPropertyDescription property;
            property.name = UniqueMemberName(build, "Value");
            property.kind = CPropertyDescription::Kind::Value;
            property.source = CPropertyDescription::Source::SimpleContent;
            property.itemType = valueType;
            property.optional = true;
            property.simpleType = valueSimpleType;
            valueIndex = AddProperty(index, std::move(property));
        }
        if (mixed) {
            // The character data of mixed content, kept as one string and
            // written after the elements.
            valueType = ItemType_string;
            CPropertyDescription property;
            property.name = UniqueMemberName(build, "Text");
            property.kind = CPropertyDescription::Kind::Value;
            property.source = CPropertyDescription::Source::SimpleContent;
            property.itemType = valueType;
            property.optional = true;
            valueIndex = AddProperty(index, std::move(property));
        }
        CClassDescription& d = *m_out.classes[index];  // AddParticle may have grown the vector
        d.classInfo = new CParentElementInfo(d.groupType, d.elementType, elementName.c_str(),
                                             elementNamespace.c_str(), true, false, valueIndex, valueType, "", false);
        if (valueSimpleType != nullptr) {
            CPrimitiveRestrictions facets = BindingFacets(valueSimpleType);
            const auto constraint = m_constraints.find(index);
            const CValueConstraint* fixed =
                constraint != m_constraints.end() && constraint->second->kind == CValueConstraint::Fixed
                    ? constraint->second
                    : nullptr;
            facets.SetValueRule(MakeValueRule(valueSimpleType, fixed));
            d.classInfo->SetSimpleContentRestrictions(facets, BindingWhitespaceRule(valueSimpleType));
            if (constraint != m_constraints.end()) d.classInfo->SetSimpleContentEmptyValue(constraint->second->value);
        }
        d.elementInfos = new CElementInfo*[build.elements.size() + 1];
        for (size_t i = 0; i < build.elements.size(); ++i) d.elementInfos[i] = build.elements[i];
        d.elementInfos[build.elements.size()] = nullptr;
        d.attributeInfos = new CAttributeInfo*[build.attributes.size() + 1];
        for (size_t i = 0; i < build.attributes.size(); ++i) d.attributeInfos[i] = build.attributes[i];
        d.attributeInfos[build.attributes.size()] = nullptr;
    }

    int AddProperty(int index, CPropertyDescription property, CPropertyRuntime runtime = CPropertyRuntime()) {
        m_out.classes[index]->properties.push_back(std::move(property));
        m_out.runtime[index].properties.push_back(std::move(runtime));
        return static_cast<int>(m_out.classes[index]->properties.size()) - 1;
    }

    void AddContent(int index, CBuild& build, const CParticle* top) {
        CClassDescription& description = *m_out.classes[index];
        if (top == nullptr) return;
        if (top->termKind == CParticle::TermKind::ModelGroup && top->modelGroup != nullptr && top->minOccurs == 1 &&
            top->maxOccurs == 1) {
            const CModelGroup* group = top->modelGroup;
            const bool emptiableChoice = group->compositor == CModelGroup::Compositor::Choice && IsEmptiable(top);
            if (!emptiableChoice) {
                description.groupType = GroupOf(group->compositor);
                const XmlElementGroupType groupType = description.groupType;
                for (const CParticle* particle : group->particles) AddParticle(index, build, groupType, particle);
                return;
            }
        }
        description.groupType = XmlElementGroupType_Sequence;
        AddParticle(index, build, XmlElementGroupType_Sequence, top);
    }

    void AddParticle(int index, CBuild& build, XmlElementGroupType groupType, const CParticle* top) {
        // Sequences of one inside a sequence are the same content flattened
        // (an extension's base and own parts, most often); walked with a
        // stack of their own.
        std::vector<const CParticle*> stack{top};
        while (!stack.empty()) {
            const CParticle* particle = stack.back();
            stack.pop_back();
            if (particle->maxOccurs == 0) continue;
            switch (particle->termKind) {
                case CParticle::TermKind::Element: AddElement(index, build, groupType, particle); break;
                case CParticle::TermKind::Wildcard: AddWildcard(index, build, groupType, particle); break;
                case CParticle::TermKind::ModelGroup: {
                    const CModelGroup* group = particle->modelGroup;
                    if (group == nullptr) break;
                    if (groupType == XmlElementGroupType_Sequence &&
                        group->compositor == CModelGroup::Compositor::Sequence && particle->minOccurs == 1 &&
                        particle->maxOccurs == 1) {
                        for (auto it = group->particles.rbegin(); it != group->particles.rend(); ++it)
                            stack.push_back(*it);
                        break;
                    }
                    AddGroup(index, build, groupType, particle);
                    break;
                }
            }
        }
    }

    void AddElement(int index, CBuild& build, XmlElementGroupType groupType, const CParticle* particle) {
        const CElementDeclaration* element = particle->element;
        if (element == nullptr) return;
        const CTypeDefinition* type = TypeOf(element);
        const bool collection = particle->maxOccurs > 1;
        const bool mandatory = particle->minOccurs > 0 && groupType != XmlElementGroupType_Choice;
        const std::string& name = element->name.local;
        const std::string& ns = element->name.ns;

        CPropertyDescription property;
        property.name = UniqueMemberName(build, name);
        property.source = CPropertyDescription::Source::Element;
        property.optional = !mandatory || collection;
        property.minOccurs = particle->minOccurs;
        property.maxOccurs = particle->maxOccurs;
        property.elementName = element->name;
        property.element = element;
        CPropertyRuntime runtime;
        const int propertyIndex = static_cast<int>(m_out.classes[index]->properties.size());

        if (type == m_set.GetAnyType() && element->substitutionGroupMembers.empty()) {
            property.kind = collection ? CPropertyDescription::Kind::Collection : CPropertyDescription::Kind::Element;
            runtime.restriction = "##any";
            if (collection) {
                build.elements.push_back(MakeCollectionInfo(groupType, name.c_str(), ns.c_str(), propertyIndex));
            } else {
                build.elements.push_back(
                    MakeInfo<CElementInfoUntpd>(groupType, mandatory, name.c_str(), ns.c_str(), propertyIndex, "##any", ""));
            }
        } else if (type->IsSimple() && element->substitutionGroupMembers.empty() &&
                   !(collection && element->nillable)) {
            // (Repeating nillable values are objects of the type's class
            // below: value collections have no nil items.)
            const auto* simple = static_cast<const CSimpleType*>(type);
            property.kind = collection ? CPropertyDescription::Kind::Collection : CPropertyDescription::Kind::Value;
            property.itemType = BindingItemType(simple);
            property.simpleType = simple;
            runtime.facets = BindingFacets(simple);
            const bool fixed = element->valueConstraint.kind == CValueConstraint::Fixed;
            runtime.facets.SetValueRule(MakeValueRule(simple, fixed ? &element->valueConstraint : nullptr));
            runtime.rule = BindingWhitespaceRule(simple);
            // Repeating QNames are checked item by item; repeating IDs and
            // IDREFs are not collected.
            const int idKind = IdKind(simple);
            if (!collection || idKind == 4) runtime.idKind = idKind;
            if (collection) {
                build.elements.push_back(MakeCollectionInfo(groupType, name.c_str(), ns.c_str(), propertyIndex));
            } else {
                CElementInfo* info = MakeInfo<CElementInfoPrim>(groupType, mandatory, name.c_str(), ns.c_str(),
                                                                propertyIndex, element->nillable, property.itemType,
                                                                "", runtime.rule, runtime.facets);
                if (element->valueConstraint.kind != CValueConstraint::None)
                    SetEmptyElementValue(info, element->valueConstraint.value);
                build.elements.push_back(info);
            }
        } else {
            const int classIndex = ClassForType(type, name, ns);
            property.classIndex = classIndex;
            const bool substitutable = IsSubstitutable(element, type);
            int substitution = -1;
            if (substitutable) {
                substitution = static_cast<int>(m_out.substitutable.size());
                m_out.substitutable.push_back(CSubstitutableMember{element, classIndex});
            }
            runtime.substitution = substitution;
            if (collection) {
                property.kind = CPropertyDescription::Kind::Collection;
                build.elements.push_back(MakeCollectionInfo(groupType, name.c_str(), ns.c_str(), propertyIndex,
                                                            XmlElementType_Element));
            } else {
                property.kind = CPropertyDescription::Kind::Object;
                if (substitutable) {
                    build.elements.push_back(MakeInfo<CElementInfoAbsCls>(groupType, mandatory, name.c_str(),
                                                                          ns.c_str(), propertyIndex,
                                                                          XmlElementType_Element, m_factory,
                                                                          substitution));
                } else {
                    build.elements.push_back(MakeInfo<CElementInfoCls>(groupType, mandatory, name.c_str(),
                                                                       ns.c_str(), propertyIndex,
                                                                       XmlElementType_Element, m_factory, classIndex,
                                                                       element->nillable));
                }
            }
        }
        AddProperty(index, std::move(property), std::move(runtime));
    }

    int IdKind(const CSimpleType* type) {
        const CSimpleType* id = m_set.GetBuiltInType("ID");
        const CSimpleType* idref = m_set.GetBuiltInType("IDREF");
        const CSimpleType* qname = m_set.GetBuiltInType("QName");
        int kind = 0;
        if (id != nullptr && type->DerivesFrom(id)) {
            kind = 1;
        } else if (idref != nullptr && type->DerivesFrom(idref)) {
            kind = 2;
        } else if (type->variety == CSimpleType::Variety::List && type->itemType != nullptr && idref != nullptr &&
                   type->itemType->DerivesFrom(idref)) {
            kind = 3;
        } else if (qname != nullptr && type->DerivesFrom(qname)) {
            kind = 4;
        }
        if (kind != 0) m_out.usesIds = true;
        return kind;
    }

    // Whether an element of this member may carry another class than its
    // declared type's: a substitution group, an abstract declaration or
    // type, or a type other types derive from (xsi:type).
    bool IsSubstitutable(const CElementDeclaration* element, const CTypeDefinition* type) {
        if (!element->substitutionGroupMembers.empty() || element->abstract) return true;
        if (type->IsSimple()) return false;
        const auto* complex = static_cast<const CComplexType*>(type);
        return complex->abstract || m_hasDerived.count(type) != 0;
    }

    void AddWildcard(int index, CBuild& build, XmlElementGroupType groupType, const CParticle* particle) {
        const CWildcard* wildcard = particle->wildcard;
        if (wildcard == nullptr) return;
        const bool collection = particle->maxOccurs > 1;
        const bool mandatory = particle->minOccurs > 0 && groupType != XmlElementGroupType_Choice;
        const auto restriction = WildcardRestriction(wildcard->namespaceConstraint);
        CPropertyDescription property;
        property.name = UniqueMemberName(build, "AnyElement");
        property.kind = collection ? CPropertyDescription::Kind::Collection : CPropertyDescription::Kind::Element;
        property.source = CPropertyDescription::Source::Wildcard;
        property.optional = !mandatory || collection;
        property.minOccurs = particle->minOccurs;
        property.maxOccurs = particle->maxOccurs;
        property.wildcard = wildcard;
        CPropertyRuntime runtime;
        runtime.restriction = restriction.first;
        runtime.restrictionNamespace = restriction.second;
        if (wildcard->processContents != CWildcard::ProcessContents::Skip)
            m_out.classes[index]->hasCheckedWildcards = true;
        const int propertyIndex = static_cast<int>(m_out.classes[index]->properties.size());
        if (collection) {
            build.elements.push_back(MakeCollectionInfo(groupType, "AnyElement", "", propertyIndex));
        } else {
            build.elements.push_back(MakeInfo<CElementInfoUntpd>(groupType, mandatory, "AnyElement", "",
                                                                 propertyIndex, restriction.first.c_str(),
                                                                 restriction.second.c_str()));
        }
        AddProperty(index, std::move(property), std::move(runtime));
    }

    void AddGroup(int index, CBuild& build, XmlElementGroupType groupType, const CParticle* particle) {
        const CModelGroup* group = particle->modelGroup;
        const int classIndex = ClassForGroup(group, m_out.classes[index]->name, m_out.classes[index]->elementNamespace);
        const bool choice = group->compositor == CModelGroup::Compositor::Choice;
        const XmlElementType elementType = choice ? XmlElementType_InlineChoice : XmlElementType_InlineSequence;
        const bool collection = particle->maxOccurs > 1;
        const bool emptiable = IsEmptiable(particle);
        const bool mandatory = !emptiable && groupType != XmlElementGroupType_Choice;
        m_out.runtime[classIndex].mandatoryInlineChoice = choice && !emptiable && !collection;
        const std::string name = choice ? "Choice" : "Sequence";
        const std::string ns = m_out.classes[index]->elementNamespace;
        CPropertyDescription property;
        property.name = UniqueMemberName(build, name);
        property.kind = collection ? CPropertyDescription::Kind::Collection : CPropertyDescription::Kind::Object;
        property.source = CPropertyDescription::Source::Group;
        property.classIndex = classIndex;
        property.optional = !mandatory || collection;
        property.minOccurs = particle->minOccurs;
        property.maxOccurs = particle->maxOccurs;
        CPropertyRuntime runtime;
        runtime.itemElementType = elementType;
        const int propertyIndex = static_cast<int>(m_out.classes[index]->properties.size());
        if (collection) {
            build.elements.push_back(MakeCollectionInfo(groupType, name.c_str(), ns.c_str(), propertyIndex, elementType));
        } else {
            build.elements.push_back(MakeInfo<CElementInfoCls>(groupType, mandatory, name.c_str(), ns.c_str(),
                                                               propertyIndex, elementType, m_factory, classIndex,
                                                               false));
        }
        AddProperty(index, std::move(property), std::move(runtime));
    }

    void AddAttribute(int index, CBuild& build, const CAttributeUse* use) {
        if (use == nullptr || use->use == CAttributeUse::Use::Prohibited || use->declaration == nullptr) return;
        const CAttributeDeclaration* declaration = use->declaration;
        const CSimpleType* type = declaration->type ? declaration->type : m_set.GetAnySimpleType();
        const CValueConstraint& constraint =
            use->valueConstraint.kind != CValueConstraint::None ? use->valueConstraint : declaration->valueConstraint;
        CPropertyDescription property;
        property.name = UniqueMemberName(build, declaration->name.local);
        property.kind = CPropertyDescription::Kind::Value;
        property.source = CPropertyDescription::Source::Attribute;
        property.itemType = BindingItemType(type);
        property.optional = use->use != CAttributeUse::Use::Required;
        property.elementName = declaration->name;
        property.simpleType = type;
        property.attribute = use;
        CPropertyRuntime runtime;
        runtime.facets = BindingFacets(type);
        runtime.facets.SetValueRule(
            MakeValueRule(type, constraint.kind == CValueConstraint::Fixed ? &constraint : nullptr));
        runtime.rule = BindingWhitespaceRule(type);
        runtime.idKind = IdKind(type);
        const int propertyIndex = static_cast<int>(m_out.classes[index]->properties.size());
        const std::string defaultValue = constraint.kind != CValueConstraint::None ? constraint.value : std::string();
        build.attributes.push_back(new CAttributeInfoPrimitive(
            declaration->name.local.c_str(), declaration->name.ns.c_str(), propertyIndex, property.optional,
            property.itemType, "", runtime.rule, runtime.facets, defaultValue.c_str()));
        AddProperty(index, std::move(property), std::move(runtime));
    }

    void AddAttributeWildcard(int index, CBuild& build, const CWildcard* wildcard) {
        const auto restriction = WildcardRestriction(wildcard->namespaceConstraint);
        CPropertyDescription property;
        property.name = UniqueMemberName(build, "AnyAttribute");
        property.kind = CPropertyDescription::Kind::Attributes;
        property.source = CPropertyDescription::Source::Wildcard;
        property.optional = true;
        property.wildcard = wildcard;
        CPropertyRuntime runtime;
        runtime.restriction = restriction.first;
        runtime.restrictionNamespace = restriction.second;
        if (wildcard->processContents != CWildcard::ProcessContents::Skip)
            m_out.classes[index]->hasCheckedWildcards = true;
        const int propertyIndex = static_cast<int>(m_out.classes[index]->properties.size());
        build.attributes.push_back(new CAttributeInfoAny("AnyAttribute", "", propertyIndex, true,
                                                         restriction.first.c_str(), restriction.second.c_str(), ""));
        AddProperty(index, std::move(property), std::move(runtime));
    }

    void LinkDerivedClasses() {
        for (const auto& description : m_out.classes) {
            const CTypeDefinition* type = m_out.classTypes[description->index];
            if (type == nullptr) continue;
            // Nearest base first: walk up the chain once.
            const CTypeDefinition* base = type->baseType;
            for (int guard = 0; base != nullptr && base != type && guard < 10000; ++guard) {
                const auto found = m_out.typeClasses.find({base, description->elementNamespace});
                if (found != m_out.typeClasses.end()) {
                    m_out.classes[found->second]->derivedClasses.push_back(description->index);
                }
                if (base->baseType == base) break;
                base = base->baseType;
            }
        }
    }

    const CSchemaSet& m_set;
    const IClassFactory* m_factory;
    CMappedSet& m_out;
    std::deque<int> m_pending;
    std::set<std::string> m_classNames;
    std::set<const CTypeDefinition*> m_hasDerived;
    std::map<int, const CSimpleType*> m_simpleClasses;
    std::map<int, const CValueConstraint*> m_constraints;
};

}  // namespace

void MapSchemaSet(const CSchemaSet& set, const IClassFactory* factory, CMappedSet& out) {
    CMapper(set, factory, out).Run();
    for (std::size_t i = 0; i < out.classes.size(); ++i) {
        CClassRuntime& runtime = out.runtime[i];
        runtime.checks = MemberChecks(*out.classes[i], runtime);
        runtime.table = Generated::CMemberChecks{runtime.checks.data(), runtime.checks.size()};
    }
}

std::vector<Generated::CMemberCheck> MemberChecks(const CClassDescription& description, const CClassRuntime& runtime) {
    using Check = Generated::CMemberCheck;
    std::vector<Check> rows;
    const auto& properties = description.properties;
    for (std::size_t i = 0; i < properties.size(); ++i) {
        const CPropertyDescription& p = properties[i];
        const CPropertyRuntime& r = runtime.properties[i];
        Check row{static_cast<int>(i), Check::Value, static_cast<Check::IdKind>(r.idKind), false, Check::Skip,
                  p.name.c_str()};
        if (p.wildcard != nullptr && p.wildcard->processContents != CWildcard::ProcessContents::Skip) {
            row.wildcard = p.wildcard->processContents == CWildcard::ProcessContents::Strict ? Check::Strict : Check::Lax;
        }
        switch (p.kind) {
            case CPropertyDescription::Kind::Value:
                row.text = p.itemType == ItemType_string;
                if (!row.text && row.idKind == Check::None) continue;
                break;
            case CPropertyDescription::Kind::Object: row.shape = Check::Object; break;
            case CPropertyDescription::Kind::Element: row.shape = Check::Element; break;
            case CPropertyDescription::Kind::Attributes: row.shape = Check::Attributes; break;
            case CPropertyDescription::Kind::Collection:
                if (p.source == CPropertyDescription::Source::Wildcard || (p.classIndex < 0 && p.simpleType == nullptr)) {
                    row.shape = Check::Elements;
                } else if (p.classIndex >= 0) {
                    row.shape = Check::Objects;
                } else {
                    row.shape = Check::Values;
                    row.text = p.itemType == ItemType_string;
                    if (!row.text && row.idKind == Check::None) continue;
                }
                break;
        }
        rows.push_back(row);
    }
    return rows;
}

}  // namespace Schema
}  // namespace QmXmlLib10
