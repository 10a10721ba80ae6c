// Attribute infos: each moves one attribute member of a generated class
// between an attribute of the document tree and the object, and writes it.
#pragma once

#include <string>

#include "qmxml/core/generated_class.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/variant.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
class CXmlAttribute;
class CXmlWriter;
}  // namespace QmXmlLib10

namespace QmXmlLib10Data {

using QmXmlLib10::ItemType;
using QmXmlLib10::XmlElementType;
using QmXmlLib10::CXmlAttribute;

class CAttributeInfo {
public:
    // optional: the attribute may be absent. The default value is only used
    // when writing (NoOptionalAttributeDefaultOutput); reading never fills it in.
    CAttributeInfo(const char* name, const char* ns, int propertyIndex, bool optional, const char* defaultValue);
    CAttributeInfo(const CAttributeInfo&) = default;
    CAttributeInfo& operator=(const CAttributeInfo&) = default;
    virtual ~CAttributeInfo();

    virtual void AttributeToXml(const QmXmlLib10::CXmlSerializationContext& ctx,
                                const QmXmlLib10::CXmlGeneratedClass* obj, QmXmlLib10::CXmlWriter* writer) const = 0;
    // True when the attribute is this member's (it has then been read).
    virtual bool AttributeFromXml(const QmXmlLib10::CXmlSerializationContext& ctx, QmXmlLib10::CXmlGeneratedClass* obj,
                                  CXmlAttribute* attribute) = 0;
    // Called once all attributes of the element were read; found tells whether
    // this member's attribute was among them.
    virtual bool Validate(const QmXmlLib10::CXmlSerializationContext& ctx, bool found) const = 0;
    // Wildcards are offered the attributes that no other info claims.
    virtual bool IsWildcard() const { return false; }

    const std::string& GetAttributeName() const { return m_name; }
    const std::string& GetAttributeNamespace() const { return m_namespace; }
    int GetPropertyIndex() const { return m_propertyIndex; }
    bool IsOptional() const { return m_optional; }
    const std::string& GetDefaultValue() const { return m_defaultValue; }

protected:
    // Local name equal and, unless the context ignores namespaces, namespace equal.
    bool IsThisAttribute(const QmXmlLib10::CXmlSerializationContext& ctx, const CXmlAttribute* attribute) const;
    void ReadProperty(const QmXmlLib10::CXmlGeneratedClass* obj, QmXmlLib10::QmVariant& value) const;
    void AccessProperty(QmXmlLib10::CXmlGeneratedClass* obj, bool read, QmXmlLib10::QmVariant& value) const;
    // Optional, not set, or (under NoOptionalAttributeDefaultOutput) equal to the default.
    bool SkipOnOutput(const QmXmlLib10::CXmlSerializationContext& ctx, const std::string& text) const;
    // Throws "Failed to find the required Attribute [%s]" for a required attribute not found.
    bool ValidatePresence(bool found) const;

    static std::string GetTargetNamespace(const QmXmlLib10::CXmlObjectBase* obj);
    static bool IsNamespaceValid(const std::string& ns, const std::string& restriction,
                                 const std::string& targetNamespace);
    static void TestNamespace(const std::string& ns, const std::string& restriction,
                              const std::string& targetNamespace);
    static void ToXml_Int(const QmXmlLib10::CXmlObjectBase* obj, QmXmlLib10::CXmlWriter* writer, bool isRoot,
                          const char* elementName, const QmXmlLib10::CXmlSerializationContext& ctx);

private:
    std::string m_name;
    std::string m_namespace;
    int m_propertyIndex;
    bool m_optional;
    std::string m_defaultValue;
};

// A simple-typed attribute. It is claimed by exact name and namespace, even
// when the context ignores namespaces. Values are checked against the facets
// when read and when written.
class CAttributeInfoPrimitive : public CAttributeInfo {
public:
    CAttributeInfoPrimitive(const char* name, const char* ns, int propertyIndex, bool optional, ItemType type,
                            const char* format, QmXmlLib10::CWhitespaceUtils::WhitespaceRule rule,
                            const QmXmlLib10::CPrimitiveRestrictions& facets, const char* defaultValue);

    void AttributeToXml(const QmXmlLib10::CXmlSerializationContext& ctx, const QmXmlLib10::CXmlGeneratedClass* obj,
                        QmXmlLib10::CXmlWriter* writer) const override;
    bool AttributeFromXml(const QmXmlLib10::CXmlSerializationContext& ctx, QmXmlLib10::CXmlGeneratedClass* obj,
                          CXmlAttribute* attribute) override;
    bool Validate(const QmXmlLib10::CXmlSerializationContext& ctx, bool found) const override;

    void CheckRestriction(const QmXmlLib10::QmVariant& value) const;

    ItemType GetItemType() const { return m_type; }

private:
    ItemType m_type;
    std::string m_format;
    QmXmlLib10::CWhitespaceUtils::WhitespaceRule m_rule;
    QmXmlLib10::CPrimitiveRestrictions m_facets;
};

// An enumerated attribute held as an int (i4); its value is collapsed before
// the text-to-enum function sees it, as for enumerated elements.
class CAttributeInfoEnum : public CAttributeInfo {
public:
    CAttributeInfoEnum(const char* name, const char* ns, int propertyIndex, bool optional,
                       const char* (*toString)(int), int (*fromString)(const char*), const char* defaultValue);

    void AttributeToXml(const QmXmlLib10::CXmlSerializationContext& ctx, const QmXmlLib10::CXmlGeneratedClass* obj,
                        QmXmlLib10::CXmlWriter* writer) const override;
    bool AttributeFromXml(const QmXmlLib10::CXmlSerializationContext& ctx, QmXmlLib10::CXmlGeneratedClass* obj,
                          CXmlAttribute* attribute) override;
    bool Validate(const QmXmlLib10::CXmlSerializationContext& ctx, bool found) const override;

private:
    const char* (*m_toString)(int);
    int (*m_fromString)(const char*);
};

// The attribute wildcard: the member holds a CAttributeCol. It claims every
// attribute whose namespace passes the restriction (asked after every other
// attribute info of the class). The third string is the default value.
class CAttributeInfoAny : public CAttributeInfo {
public:
    CAttributeInfoAny(const char* name, const char* ns, int propertyIndex, bool optional, const char* restriction,
                      const char* targetNamespace, const char* defaultValue);

    void AttributeToXml(const QmXmlLib10::CXmlSerializationContext& ctx, const QmXmlLib10::CXmlGeneratedClass* obj,
                        QmXmlLib10::CXmlWriter* writer) const override;
    bool AttributeFromXml(const QmXmlLib10::CXmlSerializationContext& ctx, QmXmlLib10::CXmlGeneratedClass* obj,
                          CXmlAttribute* attribute) override;
    bool Validate(const QmXmlLib10::CXmlSerializationContext& ctx, bool found) const override;
    bool IsWildcard() const override { return true; }

    const std::string& GetNamespaceRestriction() const { return m_restriction; }
    const std::string& GetTargetNamespace() const { return m_targetNamespace; }

private:
    std::string m_restriction;
    std::string m_targetNamespace;
};

}  // namespace QmXmlLib10Data
