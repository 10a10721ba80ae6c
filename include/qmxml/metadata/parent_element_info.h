// The metadata of a generated class as a whole: its content model, its
// element, and its simple content if it has any.
#pragma once

#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10Data {

using QmXmlLib10::ItemType;
using QmXmlLib10::XmlElementGroupType;
using QmXmlLib10::XmlElementType;

class CParentElementInfo {
public:
    // primitiveValuePropertyIndex -1 and primitiveDataType 0 when the class has
    // no simple content.
    CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, const char* elementName,
                       const char* elementNamespace, bool fromXmlFailIfAttributeUnknown, bool hasBaseClasses,
                       int primitiveValuePropertyIndex, ItemType primitiveDataType,
                       const char* primitiveFormatOverride, bool outputPrimitiveClassAsTextProperty);
    CParentElementInfo(const CParentElementInfo&) = default;
    CParentElementInfo& operator=(const CParentElementInfo&) = default;
    virtual ~CParentElementInfo();

    XmlElementGroupType GetElementGroupType() const { return m_groupType; }
    XmlElementType GetElementType() const { return m_elementType; }
    const std::string& GetElementName() const { return m_elementName; }
    const std::string& GetElementNamespace() const { return m_elementNamespace; }
    bool GetFromXmlFailIfAttributeUnknown() const { return m_failIfAttributeUnknown; }
    bool GetHasBaseClasses() const { return m_hasBaseClasses; }
    int GetPrimitiveValuePropertyIndex() const { return m_primitiveValuePropertyIndex; }
    ItemType GetPrimitiveDataType() const { return m_primitiveDataType; }
    const std::string& GetPrimitiveFormatOverride() const { return m_primitiveFormatOverride; }
    bool GetOutputPrimitiveClassAsTextProperty() const { return m_outputPrimitiveClassAsTextProperty; }

    // Facets and whitespace rule of the simple content. Classes that set none
    // read it under the type's built-in rule and check nothing beyond the
    // conversion; schema-derived classes set their type's.
    void SetSimpleContentRestrictions(const QmXmlLib10::CPrimitiveRestrictions& facets,
                                      QmXmlLib10::CWhitespaceUtils::WhitespaceRule rule);
    // Null when none were set.
    const QmXmlLib10::CPrimitiveRestrictions* GetSimpleContentRestrictions() const {
        return m_simpleContentFacets.get();
    }
    QmXmlLib10::CWhitespaceUtils::WhitespaceRule GetSimpleContentWhitespaceRule() const {
        return m_simpleContentRule;
    }
    // The text an empty element stands for (a schema's default or fixed
    // value of the element); none by default.
    void SetSimpleContentEmptyValue(const std::string& text) {
        m_simpleContentEmptyValue = text;
        m_hasSimpleContentEmptyValue = true;
    }
    const std::string* GetSimpleContentEmptyValue() const {
        return m_hasSimpleContentEmptyValue ? &m_simpleContentEmptyValue : nullptr;
    }

    // True when the class has simple content (index not -1 and a data type).
    bool HasSimpleContent() const {
        return m_primitiveValuePropertyIndex != -1 && m_primitiveDataType != QmXmlLib10::ItemType_None;
    }

private:
    XmlElementGroupType m_groupType;
    XmlElementType m_elementType;
    std::string m_elementName;
    std::string m_elementNamespace;
    bool m_failIfAttributeUnknown;
    bool m_hasBaseClasses;
    int m_primitiveValuePropertyIndex;
    ItemType m_primitiveDataType;
    std::string m_primitiveFormatOverride;
    bool m_outputPrimitiveClassAsTextProperty;
    std::shared_ptr<const QmXmlLib10::CPrimitiveRestrictions> m_simpleContentFacets;
    QmXmlLib10::CWhitespaceUtils::WhitespaceRule m_simpleContentRule =
        QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve;
    std::string m_simpleContentEmptyValue;
    bool m_hasSimpleContentEmptyValue = false;
};

}  // namespace QmXmlLib10Data
