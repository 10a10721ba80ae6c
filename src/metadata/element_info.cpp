#include "qmxml/metadata/element_info.h"

#include "core/namespace_list.h"
#include "core/same_bytes.h"
#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/metadata/parent_element_info.h"
#include "qmxml/writer/xml_writer.h"
#include "nil_attribute.h"
#include "value_text.h"
#include "variant_objects.h"

namespace QmXmlLib10Data {

using namespace QmXmlLib10;

CParentElementInfo::CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType,
                                       const char* elementName, const char* elementNamespace,
                                       bool fromXmlFailIfAttributeUnknown, bool hasBaseClasses,
                                       int primitiveValuePropertyIndex, ItemType primitiveDataType,
                                       const char* primitiveFormatOverride, bool outputPrimitiveClassAsTextProperty)
    : m_groupType(groupType),
      m_elementType(elementType),
      m_elementName(elementName ? elementName : ""),
      m_elementNamespace(elementNamespace ? elementNamespace : ""),
      m_failIfAttributeUnknown(fromXmlFailIfAttributeUnknown),
      m_hasBaseClasses(hasBaseClasses),
      m_primitiveValuePropertyIndex(primitiveValuePropertyIndex),
      m_primitiveDataType(primitiveDataType),
      m_primitiveFormatOverride(primitiveFormatOverride ? primitiveFormatOverride : ""),
      m_outputPrimitiveClassAsTextProperty(outputPrimitiveClassAsTextProperty) {}

void CParentElementInfo::SetSimpleContentRestrictions(const QmXmlLib10::CPrimitiveRestrictions& facets,
                                                      QmXmlLib10::CWhitespaceUtils::WhitespaceRule rule) {
    m_simpleContentFacets = std::make_shared<const QmXmlLib10::CPrimitiveRestrictions>(facets);
    m_simpleContentRule = rule;
}

CParentElementInfo::~CParentElementInfo() = default;

CElementInfo::CElementInfo(const char* name, const char* ns, int propertyIndex)
    : m_elementName(name ? name : ""), m_elementNamespace(ns ? ns : ""), m_propertyIndex(propertyIndex) {}

CElementInfo::~CElementInfo() = default;

void CElementInfo::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
                                             CXmlWriter*) const {}

void CElementInfo::PseudoChildAttributesFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*,
                                                std::vector<CXmlAttribute*>&) const {}

bool CElementInfo::IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass*,
                                   const CXmlElement* element) const {
    return IsThisElement(ctx, element);
}

void CElementInfo::ReadProperty(const CXmlGeneratedClass* obj, QmVariant& value) const {
    obj->ReadProperty(m_propertyIndex, value);
}

void CElementInfo::AccessProperty(CXmlGeneratedClass* obj, bool read, QmVariant& value) const {
    obj->AccessProperty(m_propertyIndex, read, value);
}

bool CElementInfo::IsThisElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const {
    if (element == nullptr || !bytes::SameString(element->GetLocalName(), m_elementName)) return false;
    return ctx.GetIgnoreNamespaces() || bytes::SameString(element->GetNamespaceURI(), m_elementNamespace);
}

bool CElementInfo::FindElement(const CXmlSerializationContext& ctx, CXmlElement** current,
                               bool mandatorySequence) const {
    if (!mandatorySequence) return *current != nullptr && IsThisElement(ctx, *current);
    while (!IsThisElement(ctx, *current)) {
        if (ctx.GetIgnoreMissingMandatoryElements()) return false;
        if (ctx.GetIgnoreUnknownElements() && *current != nullptr) {
            *current = (*current)->GetNextSiblingElement();
            continue;
        }
        ThrowRequired();
    }
    return true;
}

void CElementInfo::ThrowRequired() const {
    throw CQmValidationException(FormatString("Failed to find a required element [%s]", m_elementName.c_str()));
}

void CElementInfo::ThrowNotNillable() const {
    throw CQmValidationException(
        FormatString("Invalid use of 'nil' attibute in non-nillable element [%s]", m_elementName.c_str()));
}

namespace detail {

bool IsNilElement(const CXmlElement* element) {
    for (const CXmlAttribute* a : element->GetAttributes()) {
        if (!a->IsNilAttribute()) continue;
        if (a->GetValue() == "true") return true;
        if (a->GetValue() == "false") return false;
        throw CQmValidationException(
            FormatString("Unexpected Value [%s] for 'nil' Attribute found.", a->GetValue().c_str()));
    }
    return false;
}

}  // namespace detail

bool CElementInfo::IsNilElement(const CXmlElement* element) { return detail::IsNilElement(element); }

bool CElementInfo::ElementToXmlPrim(const CXmlSerializationContext&, const CXmlGeneratedClass* obj,
                                    CXmlWriter* writer, ItemType type, const std::string& format,
                                    const CPrimitiveRestrictions& facets) const {
    QmVariant value;
    ReadProperty(obj, value);
    if (!value.IsValid()) return false;
    if (value.IsNil()) {
        writer->StartElement(m_elementName.c_str(), m_elementNamespace.c_str());
        writer->WriteNilAttribute();
        writer->EndElement();
        return true;
    }
    CPrimitiveRestrictions::CheckRestriction(m_elementName, value, type, facets);
    std::string scratch;
    const std::string_view text = detail::ValueText(value, format, scratch);
    writer->WriteSimpleElement(m_elementName.c_str(), m_elementNamespace.c_str(), text.data(), type);
    return true;
}

bool CElementInfo::ElementToXmlEnum(const CXmlSerializationContext&, const CXmlGeneratedClass* obj,
                                    CXmlWriter* writer, const char* (*toString)(int)) const {
    QmVariant value;
    ReadProperty(obj, value);
    if (!value.IsValid()) return false;
    writer->StartElement(m_elementName.c_str(), m_elementNamespace.c_str());
    if (value.IsNil()) {
        writer->WriteNilAttribute();
    } else {
        const char* text = toString ? toString(value.GetI4()) : nullptr;
        writer->WriteText(text ? text : "");
    }
    writer->EndElement();
    return true;
}

bool CElementInfo::ElementToXmlCls(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                   CXmlWriter* writer, bool asChoiceMember, bool substitutable,
                                   bool classDiffers) const {
    QmVariant value;
    ReadProperty(obj, value);
    const CSmartPtr<CXmlObjectBase> member = detail::ObjectOf(value);
    if (!member) return false;
    WriteClassMember(ctx, member, writer, asChoiceMember, substitutable, classDiffers);
    return true;
}

void CElementInfo::WriteClassMember(const CXmlSerializationContext& ctx, const CXmlObjectBase* member,
                                    CXmlWriter* writer, bool asChoiceMember, bool substitutable,
                                    bool classDiffers) const {
    CXmlObjectAccess::WriteMember(member, writer, m_elementName.c_str(), ctx, asChoiceMember, substitutable,
                                  classDiffers);
}

bool CElementInfo::ElementToXmlCol(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                   CXmlWriter* writer, bool asChoiceMember) const {
    QmVariant value;
    ReadProperty(obj, value);
    const CSmartPtr<CXmlCollectionBase> collection = detail::CollectionOf(value);
    if (!collection) return false;
    const bool hasItems = collection->GetCount() > 0;
    // A choice member without items is simply not the chosen one.
    if (hasItems || !asChoiceMember) collection->ValidateCount(ctx);
    CXmlObjectAccess::ToXml(collection, writer, false, m_elementName.c_str(), ctx, false);
    return hasItems;
}

void CElementInfo::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                       const CXmlSerializationContext& ctx) {
    CXmlObjectAccess::AttributesToXml(object, writer, ctx);
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* current,
                                       const CXmlSerializationContext& ctx, bool isRoot) {
    return CXmlObjectAccess::FromXml(object, parent, current, ctx, isRoot);
}

std::string CElementInfo::GetAnyDefaultNamespace(const char* restriction, const char* ns,
                                                 const char* targetNamespace) {
    const std::string_view rule = restriction ? restriction : "";
    const std::string space = ns ? ns : "";
    if (rule == "##any") return space;
    if (rule == "##other") return space.empty() ? "DefaultNamespace" : "";
    if (rule == "##local") return "";
    if (rule == "##targetNamespace") return targetNamespace ? targetNamespace : space;
    if (rule.find(' ') == std::string_view::npos) return std::string(rule);
    // A list: its first entry decides (a list of blanks alone names no namespace).
    std::string_view rest = rule;
    std::string_view first;
    if (!QmXmlLib10::detail::NextNamespaceEntry(rest, first)) return "";
    const std::string entry(first);
    if (first.compare(0, 2, "##") == 0) return GetAnyDefaultNamespace(entry.c_str(), ns, targetNamespace);
    return entry;
}

// ---------------------------------------------------------------- groups

CElementInfoSeq::CElementInfoSeq(const char* name, const char* ns, int propertyIndex)
    : CElementInfo(name, ns, propertyIndex) {}
CElementInfoSeq::CElementInfoSeq(const char* name, const char* ns, int propertyIndex, bool optional)
    : CElementInfo(name, ns, propertyIndex), m_optional(optional) {}

bool CElementInfoSeq::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
    throw CQmException("Not implemented, should never be called");
}

CElementInfoAll::CElementInfoAll(const char* name, const char* ns, int propertyIndex)
    : CElementInfo(name, ns, propertyIndex) {}
CElementInfoAll::CElementInfoAll(const char* name, const char* ns, int propertyIndex, bool optional)
    : CElementInfo(name, ns, propertyIndex), m_optional(optional) {}

bool CElementInfoAll::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                               bool ownContent) const {
    if (found || m_optional) return true;
    if (!ownContent) return false;
    throw CQmValidationException(
        FormatString("Failed to find the mandatory element [%s]", GetElementName().c_str()));
}

CElementInfoChoice::CElementInfoChoice(const char* name, const char* ns, int propertyIndex)
    : CElementInfo(name, ns, propertyIndex) {}
CElementInfoChoice::CElementInfoChoice(const char* name, const char* ns, int propertyIndex, bool)
    : CElementInfo(name, ns, propertyIndex) {}

bool CElementInfoChoice::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
    throw CQmException("Not implemented, should never be called");
}

}  // namespace QmXmlLib10Data
