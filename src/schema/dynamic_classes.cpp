#include "qmxml/schema/dynamic_classes.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <typeinfo>
#include <unordered_set>

#include "dom/xml_document_loading.h"
#include "mapping.h"
#include "qmxml/collections/class_collection.h"
#include "qmxml/collections/element.h"
#include "qmxml/collections/factory_class_collection.h"
#include "qmxml/collections/primitive_collections.h"
#include "qmxml/collections/wildcards.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/generated_support.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/metadata/parent_element_info.h"
#include "qmxml/schema/complex_type.h"
#include "qmxml/schema/element_declaration.h"
#include "qmxml/schema/schema_exception.h"
#include "qmxml/schema/wildcard.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {
namespace Schema {

using QmXmlLib10Data::CAttributeInfo;
using QmXmlLib10Data::CElementInfo;
using QmXmlLib10Data::CParentElementInfo;

// The set's global declarations as the wildcard check asks for them.
struct CDynamicClassSet::Index final : Generated::IGlobalDeclarations {
    CMappedSet mapped;
    const CDynamicClassSet* set = nullptr;
    std::map<std::pair<std::string, std::string>, Generated::CGlobalAttribute> attributes;

    bool DeclaresElement(const std::string& ns, const std::string& localName) const override {
        return set->m_schemas->FindElement(CQName{ns, localName}) != nullptr;
    }
    const Generated::CGlobalAttribute* FindAttribute(const std::string& ns, const std::string& localName) const override {
        const auto found = attributes.find({ns, localName});
        return found == attributes.end() ? nullptr : &found->second;
    }
    void ReadDocument(const std::string& text, const CXmlSerializationContext& ctx) const override {
        set->ReadBuffer(text.data(), text.size(), ctx);
    }
};

namespace {

constexpr const char* kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";

// The items of a repeating class, group or substitutable element member: made
// by the class set, so their metadata is the set's, and typed as dynamic
// objects for the programs that walk them.
using CDynamicClassCol = CXmlFactoryClassCollectionOf<CDynamicObject>;

template <class Col>
CXmlCollectionBase* MakeValueCollection(const char* name, const char* ns, std::int32_t minOccurs,
                                        std::int32_t maxOccurs, const CPropertyRuntime& runtime) {
    const CPrimitiveRestrictions& f = runtime.facets;
    auto* collection = new Col(name, ns, minOccurs, maxOccurs, f.GetPattern().c_str(), f.GetMinLength(),
                               f.GetMaxLength(), f.GetMinInclusive().c_str(), f.GetMaxInclusive().c_str(),
                               f.GetMinExclusive().c_str(), f.GetMaxExclusive().c_str(), f.GetLength(), runtime.rule,
                               "");
    collection->SetValueRule(f.GetValueRule());
    return collection;
}

CXmlCollectionBase* MakeValueCollection(ItemType type, const char* name, const char* ns, std::int32_t minOccurs,
                                        std::int32_t maxOccurs, const CPropertyRuntime& runtime) {
    switch (type) {
        case ItemType_hexBinary: return MakeValueCollection<ChexBinaryCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_base64Binary:
            return MakeValueCollection<Cbase64BinaryCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_i1: return MakeValueCollection<Ci1Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_i2: return MakeValueCollection<Ci2Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_i4: return MakeValueCollection<Ci4Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_i8: return MakeValueCollection<Ci8Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_ui1: return MakeValueCollection<Cui1Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_ui2: return MakeValueCollection<Cui2Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_ui4: return MakeValueCollection<Cui4Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_ui8: return MakeValueCollection<Cui8Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_r4: return MakeValueCollection<Cr4Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_r8: return MakeValueCollection<Cr8Col>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_duration: return MakeValueCollection<CdurationCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_yearMonth: return MakeValueCollection<CyearMonthCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_monthDay: return MakeValueCollection<CmonthDayCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_year: return MakeValueCollection<CyearCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_month: return MakeValueCollection<CmonthCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_day: return MakeValueCollection<CdayCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_date: return MakeValueCollection<CdateCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_datetime: return MakeValueCollection<CdatetimeCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_time: return MakeValueCollection<CtimeCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_decimal: return MakeValueCollection<CdecimalCol>(name, ns, minOccurs, maxOccurs, runtime);
        case ItemType_integer: return MakeValueCollection<CintegerCol>(name, ns, minOccurs, maxOccurs, runtime);
        default:
            // Strings, and the types without a collection of their own
            // (booleans and chars keep their lexical form).
            return MakeValueCollection<CstringCol>(name, ns, minOccurs, maxOccurs, runtime);
    }
}

// The local name of a QName value (prefixes cannot be resolved on the tree,
// which keeps no namespace declarations).
std::string LocalPart(const std::string& qname) {
    const size_t colon = qname.find(':');
    return colon == std::string::npos ? qname : qname.substr(colon + 1);
}

// The derivation methods on the way from `derived` up to `base` (extension,
// restriction; lists and unions count as restriction), or Derivation_None
// when `derived` is `base`.

const CXmlAttribute* FindXsiType(const CXmlElement* element) {
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        if (attribute->GetLocalName() == "type" && attribute->GetNamespaceURI() == kXsiNamespace) return attribute;
    }
    return nullptr;
}

}  // namespace

// ------------------------------------------------------------------ CDynamicObject

CDynamicObject::CDynamicObject(const CDynamicClassSet* set, const CClassDescription* description)
    : m_set(set), m_description(description), m_values(description->properties.size()) {
    Init();
}

CDynamicObject::~CDynamicObject() = default;

int CDynamicObject::FindProperty(const std::string& name) const {
    const auto& properties = m_description->properties;
    for (size_t i = 0; i < properties.size(); ++i) {
        if (properties[i].name == name) return static_cast<int>(i);
    }
    return -1;
}

QmVariant CDynamicObject::GetValue(int index) const {
    if (index < 0 || index >= GetPropertyCount()) {
        throw CQmInvalidParamException(
            FormatString("Invalid property index [%d] for the class [%s]", index, m_description->name.c_str()));
    }
    return m_values[index];
}

QmVariant CDynamicObject::GetValue(const std::string& name) const {
    const int index = FindProperty(name);
    if (index < 0) {
        throw CQmInvalidParamException(
            FormatString("Unknown property [%s] for the class [%s]", name.c_str(), m_description->name.c_str()));
    }
    return m_values[index];
}

void CDynamicObject::SetValue(int index, const QmVariant& value) {
    if (index < 0 || index >= GetPropertyCount()) {
        throw CQmInvalidParamException(
            FormatString("Invalid property index [%d] for the class [%s]", index, m_description->name.c_str()));
    }
    const CPropertyDescription& property = m_description->properties[index];
    if (property.kind == CPropertyDescription::Kind::Value && value.IsValid()) {
        const CPropertyRuntime& runtime = m_set->m_index->mapped.runtime[m_description->index].properties[index];
        CPrimitiveRestrictions::CheckRestriction(property.name, value, property.itemType, runtime.facets);
    }
    m_values[index] = value;
}

void CDynamicObject::SetValue(const std::string& name, const QmVariant& value) {
    const int index = FindProperty(name);
    if (index < 0) {
        throw CQmInvalidParamException(
            FormatString("Unknown property [%s] for the class [%s]", name.c_str(), m_description->name.c_str()));
    }
    SetValue(index, value);
}

void CDynamicObject::AccessProperty(int propertyIndex, bool read, QmVariant& value) {
    if (propertyIndex < 0 || propertyIndex >= GetPropertyCount()) {
        throw CQmInvalidParamException(FormatString("Invalid property index [%d] for the class [%s]", propertyIndex,
                                                    m_description->name.c_str()));
    }
    if (read) {
        value = m_values[propertyIndex];
    } else {
        m_values[propertyIndex] = std::move(value);
    }
}

CParentElementInfo* CDynamicObject::GetClassInfo() const { return m_description->classInfo; }
CElementInfo** CDynamicObject::GetClassElementInfo() const { return m_description->elementInfos; }
CAttributeInfo** CDynamicObject::GetClassAttributeInfo() const { return m_description->attributeInfos; }

void CDynamicObject::Init() {
    const auto& properties = m_description->properties;
    const CClassRuntime& runtime = m_set->m_index->mapped.runtime[m_description->index];
    for (size_t i = 0; i < properties.size(); ++i) {
        const CPropertyDescription& property = properties[i];
        const CPropertyRuntime& extra = runtime.properties[i];
        QmVariant& value = m_values[i];
        value.SetInvalid();
        const std::int32_t minOccurs = property.minOccurs > 0x7fffffff ? 0x7fffffff
                                                                        : static_cast<std::int32_t>(property.minOccurs);
        const std::int32_t maxOccurs = property.maxOccurs == CParticle::kUnbounded || property.maxOccurs > 0x7fffffff
                                           ? -1
                                           : static_cast<std::int32_t>(property.maxOccurs);
        const char* name = property.elementName.local.c_str();
        const char* ns = property.elementName.ns.c_str();
        switch (property.kind) {
            case CPropertyDescription::Kind::Attributes:
                value.SetXmlCollection(new CAttributeCol(property.name.c_str(), extra.restriction.c_str(),
                                                         extra.restrictionNamespace.c_str()));
                break;
            case CPropertyDescription::Kind::Collection:
                if (property.source == CPropertyDescription::Source::Wildcard) {
                    value.SetXmlCollection(new CElementCol("AnyElement", extra.restriction.c_str(),
                                                           extra.restrictionNamespace.c_str(), minOccurs,
                                                           maxOccurs));
                } else if (property.classIndex < 0 && property.simpleType == nullptr) {
                    value.SetXmlCollection(new Generated::CNamedElementCol(name, ns, minOccurs, maxOccurs));
                } else if (property.classIndex >= 0) {
                    const bool inlined = extra.itemElementType != XmlElementType_Element;
                    const char* itemName = inlined ? property.name.c_str() : name;
                    value.SetXmlCollection(new CDynamicClassCol(m_set, property.classIndex, extra.substitution,
                                                                inlined, itemName, ns, minOccurs, maxOccurs));
                } else {
                    value.SetXmlCollection(
                        MakeValueCollection(property.itemType, name, ns, minOccurs, maxOccurs, extra));
                }
                break;
            default: break;
        }
    }
}

std::string CDynamicObject::GetTypeName() const {
    if (!m_retyped || m_description->typeName.IsEmpty()) return std::string();
    return m_description->typeName.local;
}

std::string CDynamicObject::GetTypeNamespace() const {
    if (!m_retyped || m_description->typeName.IsEmpty()) return std::string();
    return m_description->typeName.ns;
}

bool CDynamicObject::HasSameClassAs(const CXmlGeneratedClass& other) const {
    const auto* dynamic = dynamic_cast<const CDynamicObject*>(&other);
    return dynamic != nullptr && dynamic->m_description == m_description;
}

void CDynamicObject::ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName,
                               const CXmlSerializationContext& ctx, bool asChoiceMember) const {
    const std::string typeName = isRoot && ctx.GetWriteTypeAttribute() ? GetTypeName() : std::string();
    WriteObject(writer, isRoot, elementName, ctx, asChoiceMember, typeName.empty() ? nullptr : typeName.c_str());
}

const Generated::CMemberChecks* CDynamicObject::GetMemberChecks() const {
    return &m_set->m_index->mapped.runtime[m_description->index].table;
}

std::string CDynamicObject::GetTargetNamespace() const {
    return m_isRoot ? m_rootNamespace : CXmlGeneratedClass::GetTargetNamespace();
}


CXmlElement* CDynamicObject::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                         const CXmlSerializationContext& ctx, bool isRoot) {
    CXmlElement* rest = CXmlGeneratedClass::FromXml_Int(parent, current, ctx, isRoot);
    // Element-only and empty content take no character data; the binding
    // would drop it unseen. Checked once the content is read: an element's
    // text is only complete at its end, and asking for it earlier would make
    // reading while parsing hold the whole element.
    const CComplexType* type = m_description->type;
    const bool ownElement = m_description->elementType == XmlElementType_Element;
    if (type != nullptr && ownElement &&
        (type->contentType == CComplexType::ContentType::ElementOnly ||
         type->contentType == CComplexType::ContentType::Empty)) {
        Generated::CheckNoTextContent(parent);
    }
    if (m_description->hasCheckedWildcards) {
        Generated::CheckWildcardContent(*this, *m_set->m_index, parent, ownElement, ctx);
    }
    if (m_set->m_index->mapped.runtime[m_description->index].mandatoryInlineChoice) {
        std::string selected;
        const auto& properties = m_description->properties;
        for (size_t i = 0; i < properties.size() && selected.empty(); ++i) {
            const QmVariant& value = m_values[i];
            if (!value.IsValid()) continue;
            if (properties[i].kind == CPropertyDescription::Kind::Collection) {
                const CSmartPtr<CXmlCollectionBase> collection = value.GetXmlCollection();
                if (!collection || collection->GetCount() == 0) continue;
            }
            selected = properties[i].name;
        }
        Generated::CheckChoiceSelected(selected, parent, ctx);
    }
    return rest;
}

// ------------------------------------------------------------------ CDynamicClassSet

std::shared_ptr<const CDynamicClassSet> CDynamicClassSet::Create(std::shared_ptr<const CSchemaSet> schemas) {
    if (!schemas) throw CQmInvalidParamException("The schema set may not be NULL");
    std::shared_ptr<CDynamicClassSet> set(new CDynamicClassSet());
    set->m_schemas = std::move(schemas);
    set->m_index = std::make_unique<Index>();
    MapSchemaSet(*set->m_schemas, set.get(), set->m_index->mapped);
    set->m_index->set = set.get();
    for (const auto& attribute : set->m_index->mapped.globalAttributes) {
        const CPropertyRuntime& runtime = attribute.second;
        set->m_index->attributes[attribute.first] =
            Generated::CGlobalAttribute{runtime.itemType, runtime.rule, &runtime.facets};
    }
    set->m_classes.swap(set->m_index->mapped.classes);
    return set;
}

CDynamicClassSet::~CDynamicClassSet() {
    // Prototypes the infos keep are objects of this set: the infos go first,
    // while the set they point to is whole.
    for (auto& description : m_classes) description.reset();
}

const CClassDescription* CDynamicClassSet::FindRootClass(const std::string& ns, const std::string& localName) const {
    const auto& roots = m_index->mapped.roots;
    const auto found = roots.find({ns, localName});
    return found == roots.end() ? nullptr : m_classes[found->second].get();
}

CSmartPtr<CDynamicObject> CDynamicClassSet::CreateObject(const CClassDescription& description) const {
    return CSmartPtr<CDynamicObject>(new CDynamicObject(this, &description));
}

CSmartPtr<CDynamicObject> CDynamicClassSet::CreateRootObject(const std::string& ns,
                                                             const std::string& localName) const {
    const CClassDescription* description = FindRootClass(ns, localName);
    if (description == nullptr) return CSmartPtr<CDynamicObject>();
    CSmartPtr<CDynamicObject> object = CreateObject(*description);
    CXmlObjectAccess::SetElementName(object, localName.c_str());
    object->m_rootNamespace = ns;
    object->m_isRoot = true;
    return object;
}


CSmartPtr<CDynamicObject> CDynamicClassSet::ReadRoot(CXmlDocument& document,
                                                     const CXmlSerializationContext& ctx) const {
    const CXmlElement* root = document.GetDocumentElement();
    if (root == nullptr) throw CQmException("Invalid or empty XML document");
    const std::string name = root->GetNamespaceURI().empty()
                                 ? root->GetLocalName()
                                 : "{" + root->GetNamespaceURI() + "}" + root->GetLocalName();
    const auto& members = m_index->mapped.rootMembers;
    const auto member = members.find({root->GetNamespaceURI(), root->GetLocalName()});
    CSmartPtr<CXmlObjectBase> made;
    if (member == members.end()) {
        // An undeclared root may still name its type.
        const CXmlAttribute* xsiType = FindXsiType(root);
        const std::string local = xsiType ? LocalPart(xsiType->GetValue()) : std::string();
        const auto& types = m_index->mapped.typeClasses;
        for (auto it = types.begin(); xsiType != nullptr && it != types.end() && !made; ++it) {
            const CTypeDefinition* type = it->first.first;
            if (it->first.second == root->GetNamespaceURI() && !type->IsAnonymous() && type->name.local == local &&
                (type->IsSimple() || !static_cast<const CComplexType*>(type)->abstract)) {
                made = CreateMember(it->second, root->GetLocalName().c_str());
                static_cast<CDynamicObject*>(made.Get())->m_retyped = true;  // written back with its xsi:type
            }
        }
        if (!made) {
            throw CQmValidationException(
                FormatString("No global element declaration for the root element [%s]", name.c_str()));
        }
    } else {
        // The class as a member's factory would pick it: xsi:type, abstract
        // elements and types, blocked derivations.
        made = CreateForElement(member->second, const_cast<CXmlElement*>(root));
    }
    if (!made) {
        throw CQmValidationException(FormatString(
            "The root element [%s] is abstract, or its xsi:type names no type it may take", name.c_str()));
    }
    CSmartPtr<CDynamicObject> object(static_cast<CDynamicObject*>(made.Get()));
    CXmlObjectAccess::SetElementName(object, root->GetLocalName().c_str());
    object->m_rootNamespace = root->GetNamespaceURI();
    object->m_isRoot = true;
    object->FromXmlElement(root, ctx);
    Generated::FinishRoot(*object, document, m_index->mapped.usesIds);
    return object;
}

CSmartPtr<CDynamicObject> CDynamicClassSet::ReadFile(const std::string& path,
                                                     const CXmlSerializationContext& ctx) const {
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.Load(path.c_str());
    CSmartPtr<CDynamicObject> object;
    CXmlDocumentLoading::Bind(document, [&] { object = ReadRoot(document, ctx); });
    return object;
}

CSmartPtr<CDynamicObject> CDynamicClassSet::ReadBuffer(const void* data, std::size_t size,
                                                       const CXmlSerializationContext& ctx) const {
    if (size > 0xffffffffu) throw CQmInvalidParamException("The document is larger than 4 GiB");
    std::string copy(static_cast<const char*>(data), size);
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&copy[0]), static_cast<std::uint32_t>(copy.size()));
    CSmartPtr<CDynamicObject> object;
    CXmlDocumentLoading::Bind(document, [&] { object = ReadRoot(document, ctx); });
    return object;
}

CSmartPtr<CXmlObjectBase> CDynamicClassSet::CreateMember(int classIndex, const char*) const {
    if (classIndex < 0 || classIndex >= static_cast<int>(m_classes.size())) return CSmartPtr<CXmlObjectBase>();
    return CSmartPtr<CXmlObjectBase>(new CDynamicObject(this, m_classes[classIndex].get()));
}

CSmartPtr<CXmlObjectBase> CDynamicClassSet::CreateForElement(int classIndex, CXmlElement* element) const {
    const auto& members = m_index->mapped.substitutable;
    if (element == nullptr || classIndex < 0 || classIndex >= static_cast<int>(members.size())) {
        return CSmartPtr<CXmlObjectBase>();
    }
    const CSubstitutableMember& member = members[classIndex];
    const CElementDeclaration* declared = member.element;
    // The element: the declared one, or a member of its substitution group.
    const CElementDeclaration* actual = nullptr;
    if (element->GetLocalName() == declared->name.local && element->GetNamespaceURI() == declared->name.ns) {
        actual = declared;
    } else {
        const CElementDeclaration* global =
            m_schemas->FindElement(CQName{element->GetNamespaceURI(), element->GetLocalName()});
        // Walk the candidate's heads up to the declared element; the chain is
        // acyclic (the loader refuses circular groups), the guard bounds it.
        const CElementDeclaration* head = global ? global->substitutionGroupHead : nullptr;
        for (int guard = 0; head != nullptr && guard < 10000; ++guard) {
            if (head == declared) {
                actual = global;
                break;
            }
            head = head->substitutionGroupHead;
        }
        if (actual != nullptr) {
            // The head (or its type) may refuse substitution as such, or
            // members whose types were derived in a way it blocks.
            const CTypeDefinition* declaredType = declared->type ? declared->type : m_schemas->GetAnyType();
            const CTypeDefinition* actualType = actual->type ? actual->type : m_schemas->GetAnyType();
            const unsigned blocked = declared->block | ProhibitedBy(declaredType);
            if ((blocked & Derivation_Substitution) != 0 ||
                (blocked & DerivationMethods(actualType, declaredType)) != 0) {
                actual = nullptr;
            }
        }
    }
    if (actual == nullptr || actual->abstract) return CSmartPtr<CXmlObjectBase>();
    const CTypeDefinition* type = actual->type ? actual->type : m_schemas->GetAnyType();
    const CTypeDefinition* elementType = type;
    // xsi:type names a type derived from the element's.
    if (const CXmlAttribute* xsiType = FindXsiType(element)) {
        const std::string local = LocalPart(xsiType->GetValue());
        const CTypeDefinition* named = nullptr;
        const auto found = m_index->mapped.typeClasses.find({type, actual->name.ns});
        if (found != m_index->mapped.typeClasses.end()) {
            const CClassDescription& base = *m_classes[found->second];
            if (base.typeName.local == local) named = type;
            for (int derived : base.derivedClasses) {
                if (named == nullptr && m_classes[derived]->typeName.local == local)
                    named = m_index->mapped.classTypes[derived];
            }
        }
        if (named == nullptr) return CSmartPtr<CXmlObjectBase>();
        // The element and its type may block the ways the named type was derived.
        if (((actual->block | ProhibitedBy(elementType)) & DerivationMethods(named, elementType)) != 0) {
            return CSmartPtr<CXmlObjectBase>();
        }
        type = named;
    }
    if (!type->IsSimple() && static_cast<const CComplexType*>(type)->abstract) return CSmartPtr<CXmlObjectBase>();
    int chosen = member.classIndex;  // the declared element's own class (its value constraint's too)
    if (actual != declared || type != elementType) {
        const auto found = m_index->mapped.typeClasses.find({type, actual->name.ns});
        if (found == m_index->mapped.typeClasses.end()) return CSmartPtr<CXmlObjectBase>();
        chosen = found->second;
    }
    auto* object = new CDynamicObject(this, m_classes[chosen].get());
    CSmartPtr<CXmlObjectBase> made(object);
    object->m_retyped = chosen != member.classIndex;
    return made;
}

}  // namespace Schema
}  // namespace QmXmlLib10
