#include "qmxml/metadata/attribute_info.h"

#include <string_view>

#include "qmxml/collections/wildcards.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/writer/xml_writer.h"
#include "value_text.h"
#include "variant_objects.h"

namespace QmXmlLib10Data {

using namespace QmXmlLib10;

namespace {

const char* const kNotAnAttributeCol =
    "Serialization Data Error : The collection should be a CAttributeCol, it was not!";

// Every wildcard test is the same rule, whichever object asks.
class CNamespaceTester final : public CXmlObjectBase {
public:
    std::string GetElementName() const override { return std::string(); }
    std::string GetTargetNamespace() const override { return std::string(); }

protected:
    void ToXml_Int(CXmlWriter*, bool, const char*, const CXmlSerializationContext&, bool) const override {}
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext&, bool) override {
        return current;
    }
};

const CNamespaceTester& Tester() {
    static const CNamespaceTester tester;
    return tester;
}

// SkipOnOutput without making a string of the text.
bool SkipsDefault(const CAttributeInfo& info, const CXmlSerializationContext& ctx, std::string_view text) {
    return info.IsOptional() && !info.GetDefaultValue().empty() && ctx.GetNoOptionalAttributeDefaultOutput() &&
           info.GetDefaultValue() == text;
}

CSmartPtr<CAttributeCol> AttributeColOf(const QmVariant& value) {
    return dynamic_cast<CAttributeCol*>(detail::ObjectOf(value).Get());
}

}  // namespace

CAttributeInfo::CAttributeInfo(const char* name, const char* ns, int propertyIndex, bool optional,
                               const char* defaultValue)
    : m_name(name ? name : ""),
      m_namespace(ns ? ns : ""),
      m_propertyIndex(propertyIndex),
      m_optional(optional),
      m_defaultValue(defaultValue ? defaultValue : "") {}

CAttributeInfo::~CAttributeInfo() = default;

bool CAttributeInfo::IsThisAttribute(const CXmlSerializationContext& ctx, const CXmlAttribute* attribute) const {
    if (attribute == nullptr || attribute->GetLocalName() != m_name) return false;
    return ctx.GetIgnoreNamespaces() || attribute->GetNamespaceURI() == m_namespace;
}

void CAttributeInfo::ReadProperty(const CXmlGeneratedClass* obj, QmVariant& value) const {
    obj->ReadProperty(m_propertyIndex, value);
}

void CAttributeInfo::AccessProperty(CXmlGeneratedClass* obj, bool read, QmVariant& value) const {
    obj->AccessProperty(m_propertyIndex, read, value);
}

bool CAttributeInfo::SkipOnOutput(const CXmlSerializationContext& ctx, const std::string& text) const {
    return m_optional && !m_defaultValue.empty() && ctx.GetNoOptionalAttributeDefaultOutput() &&
           text == m_defaultValue;
}

bool CAttributeInfo::ValidatePresence(bool found) const {
    if (!found && !m_optional) {
        throw CQmValidationException(FormatString("Failed to find the required Attribute [%s]", m_name.c_str()));
    }
    return true;
}

std::string CAttributeInfo::GetTargetNamespace(const CXmlObjectBase* obj) { return obj->GetTargetNamespace(); }

bool CAttributeInfo::IsNamespaceValid(const std::string& ns, const std::string& restriction,
                                      const std::string& targetNamespace) {
    return Tester().IsNamespaceValid(ns.c_str(), restriction.c_str(), targetNamespace.c_str());
}

void CAttributeInfo::TestNamespace(const std::string& ns, const std::string& restriction,
                                   const std::string& targetNamespace) {
    Tester().TestNamespace(ns.c_str(), restriction.c_str(), targetNamespace.c_str());
}

void CAttributeInfo::ToXml_Int(const CXmlObjectBase* obj, CXmlWriter* writer, bool isRoot, const char* elementName,
                               const CXmlSerializationContext& ctx) {
    CXmlObjectAccess::ToXml(obj, writer, isRoot, elementName, ctx, false);
}

// ---------------------------------------------------------------- primitive

CAttributeInfoPrimitive::CAttributeInfoPrimitive(const char* name, const char* ns, int propertyIndex, bool optional,
                                                 ItemType type, const char* format,
                                                 CWhitespaceUtils::WhitespaceRule rule,
                                                 const CPrimitiveRestrictions& facets, const char* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue),
      m_type(type),
      m_format(format ? format : ""),
      m_rule(rule),
      m_facets(facets) {}

void CAttributeInfoPrimitive::CheckRestriction(const QmVariant& value) const {
    CPrimitiveRestrictions::CheckRestriction(GetAttributeName(), value, m_type, m_facets);
}

void CAttributeInfoPrimitive::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                             CXmlWriter* writer) const {
    QmVariant value;
    ReadProperty(obj, value);
    if (IsOptional() && !value.IsValid()) return;
    std::string scratch;
    const std::string_view text = detail::ValueText(value, m_format, scratch);
    if (SkipsDefault(*this, ctx, text)) return;
    CheckRestriction(value);
    writer->WriteAttribute(GetAttributeName().c_str(), GetAttributeNamespace().c_str(), text.data(), m_type);
}

bool CAttributeInfoPrimitive::AttributeFromXml(const CXmlSerializationContext&, CXmlGeneratedClass* obj,
                                               CXmlAttribute* attribute) {
    // Exact names, whatever the context says about namespaces.
    if (attribute->GetLocalName() != GetAttributeName() || attribute->GetNamespaceURI() != GetAttributeNamespace()) {
        return false;
    }
    QmVariant value;
    value.FromString(attribute->GetValue(), m_type, m_rule);
    CPrimitiveRestrictions::CheckRestriction(GetAttributeName(), value, m_type, m_facets, attribute->GetValue(),
                                             m_rule);
    AccessProperty(obj, false, value);
    return true;
}

bool CAttributeInfoPrimitive::Validate(const CXmlSerializationContext&, bool found) const {
    return ValidatePresence(found);
}

// ---------------------------------------------------------------- enumeration

CAttributeInfoEnum::CAttributeInfoEnum(const char* name, const char* ns, int propertyIndex, bool optional,
                                       const char* (*toString)(int), int (*fromString)(const char*),
                                       const char* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue), m_toString(toString), m_fromString(fromString) {}

void CAttributeInfoEnum::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                        CXmlWriter* writer) const {
    QmVariant value;
    ReadProperty(obj, value);
    if (IsOptional() && !value.IsValid()) return;
    const char* converted = m_toString && value.IsValid() && !value.IsNil() ? m_toString(value.GetI4()) : nullptr;
    const char* text = converted ? converted : "";
    if (SkipsDefault(*this, ctx, text)) return;
    writer->WriteAttribute(GetAttributeName().c_str(), GetAttributeNamespace().c_str(), text);
}

bool CAttributeInfoEnum::AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                          CXmlAttribute* attribute) {
    if (!IsThisAttribute(ctx, attribute)) return false;
    QmVariant value;
    const std::string text = CWhitespaceUtils::Collapse(attribute->GetValue());
    value.SetI4(m_fromString ? m_fromString(text.c_str()) : 0);
    AccessProperty(obj, false, value);
    return true;
}

bool CAttributeInfoEnum::Validate(const CXmlSerializationContext&, bool found) const {
    return ValidatePresence(found);
}

// ---------------------------------------------------------------- wildcard

CAttributeInfoAny::CAttributeInfoAny(const char* name, const char* ns, int propertyIndex, bool optional,
                                     const char* restriction, const char* targetNamespace, const char* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue),
      m_restriction(restriction ? restriction : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "") {}

void CAttributeInfoAny::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                       CXmlWriter* writer) const {
    QmVariant value;
    ReadProperty(obj, value);
    if (!detail::ObjectOf(value)) return;
    const CSmartPtr<CAttributeCol> attributes = AttributeColOf(value);
    if (!attributes) throw CQmException(kNotAnAttributeCol);
    CXmlObjectAccess::AttributesToXml(attributes, writer, ctx);
}

bool CAttributeInfoAny::AttributeFromXml(const CXmlSerializationContext&, CXmlGeneratedClass* obj,
                                         CXmlAttribute* attribute) {
    if (!IsNamespaceValid(attribute->GetNamespaceURI(), m_restriction, m_targetNamespace)) return false;
    QmVariant value;
    ReadProperty(obj, value);
    const CSmartPtr<CAttributeCol> attributes = AttributeColOf(value);
    if (!attributes) throw CQmException(kNotAnAttributeCol);
    attributes->Add(attribute->GetLocalName().c_str(), attribute->GetNamespaceURI().c_str(),
                    attribute->GetValue().c_str());
    return true;
}

bool CAttributeInfoAny::Validate(const CXmlSerializationContext&, bool) const { return true; }

}  // namespace QmXmlLib10Data
