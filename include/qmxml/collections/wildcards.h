// Wildcard classes: attributes (and, with the XML text support, elements)
// whose names are not known to the metadata.
#pragma once

#include <cstdint>
#include <string>

#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

// One attribute of any name: local name, namespace and value.
class CAttribute : public CXmlObjectBase {
public:
    CAttribute() = default;
    CAttribute(const char* localName, const char* namespaceURI, const char* value);

    const std::string& GetLocalName() const { return m_localName; }
    const std::string& GetNamespaceURI() const { return m_namespaceURI; }
    const std::string& GetValue() const { return m_value; }
    void SetLocalName(const char* name) { m_localName = name ? name : ""; }
    void SetNamespaceURI(const char* uri) { m_namespaceURI = uri ? uri : ""; }
    void SetValue(const char* value) { m_value = value ? value : ""; }

    std::string GetElementName() const override { return m_localName; }
    std::string GetTargetNamespace() const override { return m_namespaceURI; }

protected:
    // An attribute writes itself as an attribute of the open element; the
    // element name argument is not used.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
    // Attributes are read through their collection; this consumes nothing.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;

private:
    std::string m_localName;
    std::string m_namespaceURI;
    std::string m_value;
};

// A collection of wildcard items (attributes or elements) whose namespaces
// must pass a restriction: "##any", "##other", "##local", "##targetNamespace"
// or URIs, space separated.
template <class Item>
class CWildcardCol : public CXmlCollection {
public:
    CWildcardCol(const char* name, const char* namespaceRestriction, const char* targetNamespace,
                 std::int32_t minOccurs, std::int32_t maxOccurs)
        : CXmlCollection(name, "", minOccurs, maxOccurs),
          m_namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
          m_targetNamespace(targetNamespace ? targetNamespace : "") {}

    const std::string& GetNamespaceRestriction() const { return m_namespaceRestriction; }
    const std::string& GetWildcardTargetNamespace() const { return m_targetNamespace; }

    // Adding checks the item's namespace against the restriction and throws
    // CQmInvalidNamespaceException when it does not pass.
    void Add(Item* item) {
        CheckItem(item);
        AppendItem(item);
    }
    void InsertAt(int index, Item* item) {
        CheckItem(item);
        AddItemAt(index, item);
    }
    // Constant time when walking the indexes in order, either way.
    CSmartPtr<Item> GetItem(int index) const { return static_cast<Item*>(GetNodeAtIndex(index)->GetItem()); }

    // Range-for over the items as Item* (const Item* through a const collection).
    CXmlItemIterator<Item> begin() { return CXmlItemIterator<Item>(GetFirstNode()); }
    CXmlItemIterator<Item> end() { return CXmlItemIterator<Item>(); }
    CXmlItemIterator<const Item> begin() const { return CXmlItemIterator<const Item>(GetFirstNode()); }
    CXmlItemIterator<const Item> end() const { return CXmlItemIterator<const Item>(); }

protected:
    bool Accepts(const std::string& namespaceURI) const {
        return IsNamespaceValid(namespaceURI.c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str());
    }

private:
    void CheckItem(const Item* item) const {
        if (item == nullptr) throw CQmInvalidParamException("A NULL item can not be added to a collection");
        TestNamespace(item->GetNamespaceURI().c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str());
    }

    std::string m_namespaceRestriction;
    std::string m_targetNamespace;
};

// Attributes of any name whose namespaces pass a wildcard restriction.
class CAttributeCol : public CWildcardCol<CAttribute> {
public:
    CAttributeCol(const char* name, const char* namespaceRestriction, const char* targetNamespace);

    using CWildcardCol<CAttribute>::Add;
    CSmartPtr<CAttribute> Add(const char* localName, const char* namespaceURI, const char* value);
    // The first attribute with this local name and namespace, or null.
    CSmartPtr<CAttribute> Find(const char* localName, const char* namespaceURI) const;

    // Adds every attribute of the element that is data (not a namespace
    // declaration, xsi:type or schema location, nor xsi:nil) and whose
    // namespace passes the restriction.
    void ReadAttributes(const CXmlElement* element, const CXmlSerializationContext& ctx);

protected:
    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
    // Writes every attribute onto the open element.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    // Reads the attributes of `parent`; returns `current` unconsumed.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;
};

}  // namespace QmXmlLib10
