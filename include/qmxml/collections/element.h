// Wildcard elements: any element, with its name, namespace, attributes, text
// and child elements, read from a document tree and written back through any
// CXmlWriter. Reading, writing and destroying never recurse, so documents of
// any depth are safe.
#pragma once

#include <cstdint>
#include <string>

#include "qmxml/collections/wildcards.h"
#include "qmxml/collections/xml_collection.h"

namespace QmXmlLib10 {

class CElement;

// Elements of any name whose namespaces pass a wildcard restriction.
class CElementCol : public CWildcardCol<CElement> {
public:
    CElementCol(const char* name = "", const char* namespaceRestriction = "##any", const char* targetNamespace = "",
                std::int32_t minOccurs = 0, std::int32_t maxOccurs = -1);

    using CWildcardCol<CElement>::Add;
    CSmartPtr<CElement> Add(const char* localName, const char* namespaceURI);

protected:
    friend class CElement;
    // Writes every element under its own name.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    // Reads consecutive elements from `current` on while their namespaces pass
    // the restriction; returns the first one it did not take.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;
};

class CElement : public CXmlObjectBase {
public:
    CElement() = default;
    CElement(const char* localName, const char* namespaceURI);
    ~CElement() override;
    CElement(const CElement&) = delete;
    CElement& operator=(const CElement&) = delete;

    const std::string& GetLocalName() const { return m_localName; }
    const std::string& GetNamespaceURI() const { return m_namespaceURI; }
    const std::string& GetText() const { return m_text; }
    void SetLocalName(const char* name) { m_localName = name ? name : ""; }
    void SetNamespaceURI(const char* uri) { m_namespaceURI = uri ? uri : ""; }
    void SetText(const char* text) { m_text = text ? text : ""; }
    void SetText(std::string text) { m_text = std::move(text); }

    // Created empty on first use.
    CAttributeCol& GetAttributes();
    CElementCol& GetElements();
    // Without creating anything: null when there are none.
    const CAttributeCol* FindAttributes() const { return m_attributes; }
    const CElementCol* FindElements() const { return m_elements; }
    std::int32_t GetAttributeCount() const { return m_attributes ? m_attributes->GetCount() : 0; }
    std::int32_t GetElementCount() const { return m_elements ? m_elements->GetCount() : 0; }

    std::string GetElementName() const override { return m_localName; }
    std::string GetTargetNamespace() const override { return m_namespaceURI; }

    // Replaces the content with the element's: name, namespace, attributes,
    // text and child elements in order. Whitespace-only text of an element
    // that has child elements is indentation and is dropped.
    void ReadFrom(const CXmlElement* element);
    // Writes the element and its subtree through the writer.
    void WriteTo(CXmlWriter* writer) const;

protected:
    // At the root, also writes the context's processing instructions, aliases
    // and additional root attributes, and declares the element's own namespace
    // as the default when the context names no default and gives it no alias.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
    // `parent` is the element to read; `current` (its first child) is ignored
    // since the element takes all of its children; returns null.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;

private:
    void Reset();
    // Drops a child list without recursing through the subtree.
    static void ReleaseTree(CSmartPtr<CElementCol>& elements);
    void StartTag(CXmlWriter* writer) const;
    // Text, child elements and the end tag, walking the subtree without recursion.
    void WriteBody(CXmlWriter* writer) const;

    std::string m_localName;
    std::string m_namespaceURI;
    std::string m_text;
    CSmartPtr<CAttributeCol> m_attributes;
    CSmartPtr<CElementCol> m_elements;
};

}  // namespace QmXmlLib10
