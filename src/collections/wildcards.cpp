#include "qmxml/collections/wildcards.h"

#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

CAttribute::CAttribute(const char* localName, const char* namespaceURI, const char* value)
    : m_localName(localName ? localName : ""),
      m_namespaceURI(namespaceURI ? namespaceURI : ""),
      m_value(value ? value : "") {}

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext&, bool) const {
    writer->WriteAttribute(m_localName.c_str(), m_namespaceURI.c_str(), m_value.c_str());
}

void CAttribute::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const {
    ToXml_Int(writer, false, nullptr, ctx, false);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext&, bool) {
    return current;
}

CAttributeCol::CAttributeCol(const char* name, const char* namespaceRestriction, const char* targetNamespace)
    : CWildcardCol<CAttribute>(name, namespaceRestriction, targetNamespace, 0, -1) {}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* localName, const char* namespaceURI, const char* value) {
    CSmartPtr<CAttribute> attribute = new CAttribute(localName, namespaceURI, value);
    Add(attribute);
    return attribute;
}

CSmartPtr<CAttribute> CAttributeCol::Find(const char* localName, const char* namespaceURI) const {
    const std::string name = localName ? localName : "";
    const std::string ns = namespaceURI ? namespaceURI : "";
    for (CNode* node = GetFirstNode(); node; node = node->GetNext()) {
        auto* attribute = static_cast<CAttribute*>(node->GetItem());
        if (attribute->GetLocalName() == name && attribute->GetNamespaceURI() == ns) return attribute;
    }
    return nullptr;
}

void CAttributeCol::ReadAttributes(const CXmlElement* element, const CXmlSerializationContext&) {
    for (const CXmlAttribute* a : element->GetAttributes()) {
        if (a->IsNamespaceAttribute() || a->IsNilAttribute()) continue;
        if (!Accepts(a->GetNamespaceURI())) continue;
        AppendItem(CSmartPtr<CAttribute>(
            new CAttribute(a->GetLocalName().c_str(), a->GetNamespaceURI().c_str(), a->GetValue().c_str())));
    }
}

void CAttributeCol::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const {
    for (CNode* node = GetFirstNode(); node; node = node->GetNext()) {
        CXmlObjectBase::AttributesToXml_Int(node->GetItem(), writer, ctx);
    }
}

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext& ctx,
                              bool) const {
    AttributesToXml_Int(writer, ctx);
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                        const CXmlSerializationContext& ctx, bool) {
    if (parent) ReadAttributes(parent, ctx);
    return current;
}

}  // namespace QmXmlLib10
