#include "qmxml/metadata/element_infos.h"

#include <typeinfo>

#include "qmxml/collections/class_collection.h"
#include "qmxml/collections/element.h"
#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"
#include "qmxml/types/whitespace.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/metadata/parent_element_info.h"
#include "variant_objects.h"

namespace QmXmlLib10Data {

using namespace QmXmlLib10;

namespace {

// Stores an object member through property access.
void StoreObject(CXmlGeneratedClass* obj, int propertyIndex, CXmlObjectBase* member) {
    QmVariant value;
    value.SetXmlObject(member);
    obj->AccessProperty(propertyIndex, false, value);
}

CSmartPtr<CXmlObjectBase> ReadObject(const CXmlGeneratedClass* obj, int propertyIndex) {
    QmVariant value;
    obj->ReadProperty(propertyIndex, value);
    return detail::ObjectOf(value);
}

// Reads a member object from *current: the element itself, or for inlined
// classes the content from *current on. Moves *current past what was read.
void ReadMemberObject(CXmlObjectBase* member, CXmlElement* parent, CXmlElement** current,
                      const CXmlSerializationContext& ctx, bool inlined) {
    if (inlined) {
        *current = CXmlObjectAccess::FromXml(member, parent, *current, ctx, false);
        return;
    }
    CXmlElement* element = *current;
    CXmlObjectAccess::FromXml(member, element, element->GetFirstElement(), ctx, false);
    *current = element->GetNextSiblingElement();
}

bool ClaimsElement(const CXmlObjectBase* member, const CXmlSerializationContext& ctx, const CXmlElement* element) {
    const auto* generated = dynamic_cast<const CXmlGeneratedClass*>(member);
    return generated && generated->IsElementInList(ctx, const_cast<CXmlElement*>(element));
}

}  // namespace

namespace detail {

CFactoryPrototype::~CFactoryPrototype() {
    if (CXmlObjectBase* object = m_object.load(std::memory_order_acquire)) object->Release();
}

const CXmlObjectBase* CFactoryPrototype::Get(ClassFactory factory, const IClassFactory* contextFactory,
                                             int classIndex, const char* elementName) const {
    if (CXmlObjectBase* object = m_object.load(std::memory_order_acquire)) return object;
    CSmartPtr<CXmlObjectBase> made = contextFactory ? contextFactory->CreateMember(classIndex, elementName)
                                     : factory      ? factory(classIndex, elementName)
                                                    : nullptr;
    if (!made) return nullptr;
    CXmlObjectBase* expected = nullptr;
    made->AddRef();  // the reference the prototype keeps
    if (m_object.compare_exchange_strong(expected, made.Get(), std::memory_order_acq_rel)) return made.Get();
    made->Release();  // another thread was first: use its object
    return expected;
}

}  // namespace detail

template <class Parse>
bool CElementInfo::ReadSimpleElement(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                     CXmlElement** current, bool mandatorySequence, bool nillable,
                                     Parse&& parse) const {
    if (!FindElement(ctx, current, mandatorySequence)) return false;
    CXmlElement* element = *current;
    QmVariant value;
    if (IsNilElement(element)) {
        if (!nillable) ThrowNotNillable();
        value.SetNil();
    } else {
        parse(element, value);
    }
    AccessProperty(obj, false, value);
    *current = element->GetNextSiblingElement();
    return true;
}

// ---------------------------------------------------------------- Prim

template <class Group, bool Mandatory>
CElementInfoPrim<Group, Mandatory>::CElementInfoPrim(const char* name, const char* ns, int propertyIndex,
                                                     bool nillable, ItemType type, const char* format,
                                                     CWhitespaceUtils::WhitespaceRule rule,
                                                     const CPrimitiveRestrictions& facets)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_nillable(nillable),
      m_type(type),
      m_format(format ? format : ""),
      m_rule(rule),
      m_facets(facets) {}

template <class Group, bool Mandatory>
bool CElementInfoPrim<Group, Mandatory>::ElementToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* obj, CXmlWriter* writer) const {
    return this->ElementToXmlPrim(ctx, obj, writer, m_type, m_format, m_facets);
}

template <class Group, bool Mandatory>
void CElementInfoPrim<Group, Mandatory>::CheckRestriction(const QmVariant& value) const {
    CPrimitiveRestrictions::CheckRestriction(this->GetElementName(), value, m_type, m_facets);
}

template <class Group, bool Mandatory>
bool CElementInfoPrim<Group, Mandatory>::ElementFromXml(const CXmlSerializationContext& ctx,
                                                        CXmlGeneratedClass* obj, CXmlElement*, CXmlElement** current,
                                                        const char*, XmlElementType) {
    return this->ReadSimpleElement(ctx, obj, current, Mandatory && detail::IsSequence<Group>, m_nillable,
                                   [this](const CXmlElement* element, QmVariant& value) {
                                       const bool empty = m_hasEmptyValue && element->GetText().empty() &&
                                                          element->GetFirstElement() == nullptr;
                                       const std::string& text = empty ? m_emptyValue : element->GetText();
                                       value.FromString(text, m_type, m_rule);
                                       CPrimitiveRestrictions::CheckRestriction(this->GetElementName(), value, m_type,
                                                                                m_facets, text, m_rule);
                                   });
}

// ---------------------------------------------------------------- Enum

template <class Group, bool Mandatory>
CElementInfoEnum<Group, Mandatory>::CElementInfoEnum(const char* name, const char* ns, int propertyIndex,
                                                     bool nillable, EnumToString toString,
                                                     EnumFromString fromString)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_nillable(nillable),
      m_toString(toString),
      m_fromString(fromString) {}

template <class Group, bool Mandatory>
bool CElementInfoEnum<Group, Mandatory>::ElementToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* obj, CXmlWriter* writer) const {
    return this->ElementToXmlEnum(ctx, obj, writer, m_toString);
}

template <class Group, bool Mandatory>
bool CElementInfoEnum<Group, Mandatory>::ElementFromXml(const CXmlSerializationContext& ctx,
                                                        CXmlGeneratedClass* obj, CXmlElement*, CXmlElement** current,
                                                        const char*, XmlElementType) {
    return this->ReadSimpleElement(ctx, obj, current, Mandatory && detail::IsSequence<Group>, m_nillable,
                                   [this](const CXmlElement* element, QmVariant& value) {
                                       const std::string text = CWhitespaceUtils::Collapse(element->GetText());
                                       value.SetI4(m_fromString ? m_fromString(text.c_str()) : 0);
                                   });
}

// ---------------------------------------------------------------- Cls

template <class Group, bool Mandatory>
CElementInfoCls<Group, Mandatory>::CElementInfoCls(const char* name, const char* ns, int propertyIndex,
                                                   XmlElementType elementType, ClassFactory factory, int classIndex,
                                                   bool nillable)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_elementType(elementType),
      m_factory(factory),
      m_classIndex(classIndex),
      m_nillable(nillable) {}

template <class Group, bool Mandatory>
CElementInfoCls<Group, Mandatory>::CElementInfoCls(const char* name, const char* ns, int propertyIndex,
                                                   XmlElementType elementType, const IClassFactory* factory,
                                                   int classIndex, bool nillable)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_elementType(elementType),
      m_factory(nullptr),
      m_contextFactory(factory),
      m_classIndex(classIndex),
      m_nillable(nillable) {}

template <class Group, bool Mandatory>
CSmartPtr<CXmlObjectBase> CElementInfoCls<Group, Mandatory>::Make() const {
    if (m_contextFactory) return m_contextFactory->CreateMember(m_classIndex, this->GetElementName().c_str());
    return m_factory ? m_factory(m_classIndex, this->GetElementName().c_str()) : nullptr;
}

template <class Group, bool Mandatory>
CSmartPtr<CXmlObjectBase> CElementInfoCls<Group, Mandatory>::CreateObject() const {
    CSmartPtr<CXmlObjectBase> created = Make();
    if (!created) {
        throw CQmException(FormatString("The class factory created no object for the element [%s]",
                                        this->GetElementName().c_str()));
    }
    return created;
}

template <class Group, bool Mandatory>
const CXmlObjectBase* CElementInfoCls<Group, Mandatory>::Prototype() const {
    return m_prototype.Get(m_factory, m_contextFactory, m_classIndex, this->GetElementName().c_str());
}

template <class Group, bool Mandatory>
bool CElementInfoCls<Group, Mandatory>::DiffersFromDeclaredClass(const CXmlSerializationContext& ctx,
                                                                 const CXmlObjectBase* member) const {
    // Only worth a look when an xsi:type could be written at all.
    if (!ctx.GetWriteTypeAttribute()) return false;
    const CXmlObjectBase* declared = Prototype();
    if (declared == nullptr) return false;
    const auto* generated = dynamic_cast<const CXmlGeneratedClass*>(member);
    const auto* declaredClass = dynamic_cast<const CXmlGeneratedClass*>(declared);
    if (generated == nullptr || declaredClass == nullptr) return false;
    return !generated->HasSameClassAs(*declaredClass) && !generated->GetTypeName().empty();
}

template <class Group, bool Mandatory>
bool CElementInfoCls<Group, Mandatory>::ElementToXml(const CXmlSerializationContext& ctx,
                                                     const CXmlGeneratedClass* obj, CXmlWriter* writer) const {
    const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex());
    if (!member) return false;
    const bool inlined = m_elementType != XmlElementType_Element;
    this->WriteClassMember(ctx, member, writer, inlined && !Mandatory, false, DiffersFromDeclaredClass(ctx, member));
    return true;
}

template <class Group, bool Mandatory>
void CElementInfoCls<Group, Mandatory>::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                                  const CXmlGeneratedClass* obj,
                                                                  CXmlWriter* writer) const {
    if (m_elementType == XmlElementType_Element) return;
    const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex());
    if (member) this->AttributesToXml_Int(member, writer, ctx);
}

template <class Group, bool Mandatory>
void CElementInfoCls<Group, Mandatory>::PseudoChildAttributesFromXml(const CXmlSerializationContext& ctx,
                                                                     CXmlGeneratedClass* obj,
                                                                     std::vector<CXmlAttribute*>& pending) const {
    if (m_elementType == XmlElementType_Element) return;
    if (const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex())) {
        CXmlObjectAccess::ReadPseudoChildAttributes(member, ctx, pending, true);
        return;
    }
    if (pending.empty()) return;
    // An absent optional member whose attributes alone were written.
    const CSmartPtr<CXmlObjectBase> created = Make();
    if (created && CXmlObjectAccess::ReadPseudoChildAttributes(created, ctx, pending, false) > 0) {
        StoreObject(obj, this->GetPropertyIndex(), created);
    }
}

template <class Group, bool Mandatory>
bool CElementInfoCls<Group, Mandatory>::IsMemberElement(const CXmlSerializationContext& ctx,
                                                        const CXmlGeneratedClass* obj,
                                                        const CXmlElement* element) const {
    if (element == nullptr) return false;
    if (m_elementType == XmlElementType_Element) return this->IsThisElement(ctx, element);
    // An absent member answers as a fresh object of its class would.
    const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex());
    return ClaimsElement(member ? member.Get() : Prototype(), ctx, element);
}

template <class Group, bool Mandatory>
bool CElementInfoCls<Group, Mandatory>::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                                       CXmlElement* parent, CXmlElement** current, const char*,
                                                       XmlElementType) {
    const bool inlined = m_elementType != XmlElementType_Element;
    CSmartPtr<CXmlObjectBase> member;
    if (inlined) {
        // No element of its own: a mandatory member always reads (its content
        // model reports what is missing); an optional one when it claims *current.
        if (Mandatory) {
            member = ReadObject(obj, this->GetPropertyIndex());
            if (!member) member = CreateObject();
        } else {
            if (*current == nullptr) return false;
            // Ask the class before making an object that may not be needed.
            const CXmlObjectBase* probe = Prototype();
            if (probe == nullptr) CreateObject();  // throws: the factory makes nothing
            if (!ClaimsElement(probe, ctx, *current)) return false;
            member = CreateObject();
        }
    } else {
        if (!this->FindElement(ctx, current, Mandatory && detail::IsSequence<Group>)) return false;
        if (this->IsNilElement(*current) && !m_nillable) this->ThrowNotNillable();
        if (Mandatory) member = ReadObject(obj, this->GetPropertyIndex());
        if (!member) member = CreateObject();
    }
    ReadMemberObject(member, parent, current, ctx, inlined);
    StoreObject(obj, this->GetPropertyIndex(), member);
    return true;
}

// ---------------------------------------------------------------- AbsCls

template <class Group, bool Mandatory>
CElementInfoAbsCls<Group, Mandatory>::CElementInfoAbsCls(const char* name, const char* ns, int propertyIndex,
                                                         XmlElementType elementType, AbstractClassFactory factory,
                                                         int classIndex)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_elementType(elementType),
      m_factory(factory),
      m_classIndex(classIndex) {}

template <class Group, bool Mandatory>
CElementInfoAbsCls<Group, Mandatory>::CElementInfoAbsCls(const char* name, const char* ns, int propertyIndex,
                                                         XmlElementType elementType, const IClassFactory* factory,
                                                         int classIndex)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_elementType(elementType),
      m_factory(nullptr),
      m_contextFactory(factory),
      m_classIndex(classIndex) {}

template <class Group, bool Mandatory>
CSmartPtr<CXmlObjectBase> CElementInfoAbsCls<Group, Mandatory>::MakeFor(CXmlElement* element) const {
    if (element == nullptr) return nullptr;
    if (m_contextFactory) return m_contextFactory->CreateForElement(m_classIndex, element);
    return m_factory ? m_factory(element) : nullptr;
}

template <class Group, bool Mandatory>
bool CElementInfoAbsCls<Group, Mandatory>::ElementToXml(const CXmlSerializationContext& ctx,
                                                        const CXmlGeneratedClass* obj, CXmlWriter* writer) const {
    // The declared class is abstract (or the head of the group): an object not
    // written under a substituted element name is told by its xsi:type.
    const bool inlined = m_elementType != XmlElementType_Element;
    return this->ElementToXmlCls(ctx, obj, writer, inlined && !Mandatory, true, true);
}

template <class Group, bool Mandatory>
void CElementInfoAbsCls<Group, Mandatory>::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                                     const CXmlGeneratedClass* obj,
                                                                     CXmlWriter* writer) const {
    if (m_elementType == XmlElementType_Element) return;
    const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex());
    if (member) this->AttributesToXml_Int(member, writer, ctx);
}

template <class Group, bool Mandatory>
void CElementInfoAbsCls<Group, Mandatory>::PseudoChildAttributesFromXml(const CXmlSerializationContext& ctx,
                                                                        CXmlGeneratedClass* obj,
                                                                        std::vector<CXmlAttribute*>& pending) const {
    if (m_elementType == XmlElementType_Element) return;
    // Without an element the factory cannot pick a class: only a member read
    // from the content takes attributes.
    if (const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex())) {
        CXmlObjectAccess::ReadPseudoChildAttributes(member, ctx, pending, true);
    }
}

template <class Group, bool Mandatory>
bool CElementInfoAbsCls<Group, Mandatory>::IsMemberElement(const CXmlSerializationContext&,
                                                           const CXmlGeneratedClass*,
                                                           const CXmlElement* element) const {
    return MakeFor(const_cast<CXmlElement*>(element)) != nullptr;
}

template <class Group, bool Mandatory>
bool CElementInfoAbsCls<Group, Mandatory>::ElementFromXml(const CXmlSerializationContext& ctx,
                                                          CXmlGeneratedClass* obj, CXmlElement* parent,
                                                          CXmlElement** current, const char*, XmlElementType) {
    const bool required = Mandatory && detail::IsSequence<Group>;
    CSmartPtr<CXmlObjectBase> member;
    for (;;) {
        member = MakeFor(*current);
        if (member) break;
        if (!required || ctx.GetIgnoreMissingMandatoryElements()) return false;
        if (ctx.GetIgnoreUnknownElements() && *current) {
            *current = (*current)->GetNextSiblingElement();
            continue;
        }
        throw CQmValidationException(FormatString("Failed to find a suitable substitution element for [%s]",
                                                  this->GetElementName().c_str()));
    }
    CXmlObjectAccess::SetElementName(member, (*current)->GetLocalName().c_str());
    ReadMemberObject(member, parent, current, ctx, m_elementType != XmlElementType_Element);
    StoreObject(obj, this->GetPropertyIndex(), member);
    return true;
}

bool CElementInfoAllAbsClsMnd::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*,
                                              CXmlElement**, const char*, XmlElementType) {
    throw CQmException("CElementInfoAllAbsClsMnd::ElementFromXml, has not been implemented fully");
}

bool CElementInfoAllAbsClsOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*,
                                              CXmlElement**, const char*, XmlElementType) {
    throw CQmException("CElementInfoAllAbsClsOpt::ElementFromXml, has not been implemented fully");
}

// ---------------------------------------------------------------- Untpd

template <class Group, bool Mandatory>
CElementInfoUntpd<Group, Mandatory>::CElementInfoUntpd(const char* name, const char* ns, int propertyIndex,
                                                       const char* restriction, const char* defaultNamespace)
    : Group(name, ns, propertyIndex, !Mandatory),
      m_restriction(restriction ? restriction : ""),
      m_defaultNamespace(defaultNamespace ? defaultNamespace : "") {}

template <class Group, bool Mandatory>
bool CElementInfoUntpd<Group, Mandatory>::Accepts(const CXmlSerializationContext& ctx, const CXmlObjectBase* obj,
                                                  const CXmlElement* element, const char* targetNamespace) const {
    if (element == nullptr) return false;
    if (this->GetElementName() != "AnyElement") return this->IsThisElement(ctx, element);
    return obj->IsNamespaceValid(element->GetNamespaceURI().c_str(), m_restriction.c_str(), targetNamespace);
}

template <class Group, bool Mandatory>
bool CElementInfoUntpd<Group, Mandatory>::IsMemberElement(const CXmlSerializationContext& ctx,
                                                          const CXmlGeneratedClass* obj,
                                                          const CXmlElement* element) const {
    const std::string target = obj->GetTargetNamespace();
    return Accepts(ctx, obj, element, target.c_str());
}

template <class Group, bool Mandatory>
bool CElementInfoUntpd<Group, Mandatory>::ElementToXml(const CXmlSerializationContext& ctx,
                                                       const CXmlGeneratedClass* obj, CXmlWriter* writer) const {
    const CSmartPtr<CXmlObjectBase> member = ReadObject(obj, this->GetPropertyIndex());
    if (!member) return false;
    CXmlObjectAccess::ToXml(member, writer, false, this->GetElementName().c_str(), ctx, false);
    return true;
}

template <class Group, bool Mandatory>
bool CElementInfoUntpd<Group, Mandatory>::ElementFromXml(const CXmlSerializationContext& ctx,
                                                         CXmlGeneratedClass* obj, CXmlElement*, CXmlElement** current,
                                                         const char* targetNamespace, XmlElementType) {
    const char* target = targetNamespace ? targetNamespace : "";
    CSmartPtr<CXmlObjectBase> member;
    if (Mandatory && detail::IsSequence<Group>) {
        if (this->GetElementName() != "AnyElement") {
            if (!this->FindElement(ctx, current, true)) return false;
        } else {
            if (*current == nullptr) {
                if (ctx.GetIgnoreMissingMandatoryElements()) return false;
                this->ThrowRequired();
            }
            if (!Accepts(ctx, obj, *current, target)) {
                if (ctx.GetIgnoreMissingMandatoryElements()) return false;
                throw CQmValidationException(FormatString("Failed to find the required element from namespace [%s]",
                                                          m_restriction.c_str()));
            }
        }
        member = ReadObject(obj, this->GetPropertyIndex());
    } else if (!Accepts(ctx, obj, *current, target)) {
        return false;
    }
    if (!member) {
        const std::string ns = this->GetAnyDefaultNamespace(m_restriction.c_str(), m_defaultNamespace.c_str(), target);
        member = new CElement(this->GetElementName().c_str(), ns.c_str());
    }
    // The nil marker's value is checked; the element is kept whole, content
    // included: an untyped member (a skip wildcard above all) asserts nothing
    // about it, and dropping it would lose what the document holds.
    this->IsNilElement(*current);
    ReadMemberObject(member, nullptr, current, ctx, false);
    StoreObject(obj, this->GetPropertyIndex(), member);
    return true;
}

// ---------------------------------------------------------------- Col

template <class Group>
CElementInfoCol<Group>::CElementInfoCol(const char* name, const char* ns, int propertyIndex)
    : Group(name, ns, propertyIndex, true) {}

template <class Group>
CElementInfoCol<Group>::CElementInfoCol(const char* name, const char* ns, int propertyIndex,
                                        XmlElementType elementType)
    : Group(name, ns, propertyIndex, true), m_elementType(elementType) {}

namespace {

CSmartPtr<CXmlCollectionBase> ReadCollection(const CXmlGeneratedClass* obj, int propertyIndex) {
    QmVariant value;
    obj->ReadProperty(propertyIndex, value);
    return detail::CollectionOf(value);
}

}  // namespace

template <class Group>
bool CElementInfoCol<Group>::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                          CXmlWriter* writer) const {
    return this->ElementToXmlCol(ctx, obj, writer, detail::IsChoice<Group>);
}

template <class Group>
bool CElementInfoCol<Group>::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                            CXmlElement* parent, CXmlElement** current, const char*,
                                            XmlElementType) {
    const CSmartPtr<CXmlCollectionBase> collection = ReadCollection(obj, this->GetPropertyIndex());
    if (!collection) {
        throw CQmInvalidStateException(
            FormatString("The collection of the element [%s] does not exist", this->GetElementName().c_str()));
    }
    CXmlElement* before = *current;
    if (before == nullptr) return false;
    *current = CXmlObjectAccess::FromXml(collection, parent, before, ctx, false);
    if (*current == before) return false;
    // All groups check the count once every member had its chance.
    if (!detail::IsAll<Group>) collection->ValidateCount(ctx);
    return true;
}

template <class Group>
bool CElementInfoCol<Group>::Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool,
                                      bool) const {
    const CSmartPtr<CXmlCollectionBase> collection = ReadCollection(obj, this->GetPropertyIndex());
    if (collection) collection->ValidateCount(ctx);
    return true;
}

template <class Group>
bool CElementInfoCol<Group>::IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                             const CXmlElement* element) const {
    if (element == nullptr) return false;
    const CSmartPtr<CXmlCollectionBase> collection = ReadCollection(obj, this->GetPropertyIndex());
    if (const auto* classes = dynamic_cast<const CXmlClassCollectionBase*>(collection.Get())) {
        return classes->IsItemElement(ctx, element);
    }
    if (const auto* wildcards = dynamic_cast<const CElementCol*>(collection.Get())) {
        return obj->IsNamespaceValid(element->GetNamespaceURI().c_str(),
                                     wildcards->GetNamespaceRestriction().c_str(),
                                     wildcards->GetWildcardTargetNamespace().c_str());
    }
    if (collection && this->IsThisElement(ctx, element)) return true;
    return collection && collection->DoesElementNameMatch(ctx, element, collection->GetElementName(),
                                                          collection->GetNamespace());
}

template class CElementInfoPrim<CElementInfoSeq, true>;
template class CElementInfoPrim<CElementInfoSeq, false>;
template class CElementInfoPrim<CElementInfoAll, true>;
template class CElementInfoPrim<CElementInfoAll, false>;
template class CElementInfoPrim<CElementInfoChoice, false>;
template class CElementInfoEnum<CElementInfoSeq, true>;
template class CElementInfoEnum<CElementInfoSeq, false>;
template class CElementInfoEnum<CElementInfoAll, true>;
template class CElementInfoEnum<CElementInfoAll, false>;
template class CElementInfoEnum<CElementInfoChoice, false>;
template class CElementInfoCls<CElementInfoSeq, true>;
template class CElementInfoCls<CElementInfoSeq, false>;
template class CElementInfoCls<CElementInfoAll, true>;
template class CElementInfoCls<CElementInfoAll, false>;
template class CElementInfoCls<CElementInfoChoice, false>;
template class CElementInfoAbsCls<CElementInfoSeq, true>;
template class CElementInfoAbsCls<CElementInfoSeq, false>;
template class CElementInfoAbsCls<CElementInfoAll, true>;
template class CElementInfoAbsCls<CElementInfoAll, false>;
template class CElementInfoAbsCls<CElementInfoChoice, false>;
template class CElementInfoUntpd<CElementInfoSeq, true>;
template class CElementInfoUntpd<CElementInfoSeq, false>;
template class CElementInfoUntpd<CElementInfoAll, true>;
template class CElementInfoUntpd<CElementInfoAll, false>;
template class CElementInfoUntpd<CElementInfoChoice, false>;
template class CElementInfoCol<CElementInfoSeq>;
template class CElementInfoCol<CElementInfoAll>;
template class CElementInfoCol<CElementInfoChoice>;

}  // namespace QmXmlLib10Data
