#include "qmxml/dom/xml_element.h"

#include <utility>

#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_name_table.h"

namespace QmXmlLib10 {

namespace {

const char kXsiNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXmlnsNamespace[] = "http://www.w3.org/2000/xmlns/";

bool IsInstanceOrXmlnsNamespace(const std::string& ns) noexcept {
    return ns == kXsiNamespace || ns == kXmlnsNamespace;
}

}  // namespace

const std::vector<CXmlAttribute*> CXmlElement::s_noAttributes;

// ---------------------------------------------------------------- CXmlAttribute

CXmlAttribute::CXmlAttribute(const std::string* localName, std::string value,
                             const std::string* namespaceURI)
    : CInstanceMonitor("CXmlAttribute"),
      m_localName(localName),
      m_namespaceURI(namespaceURI),
      m_value(std::move(value)) {}

CXmlAttribute::~CXmlAttribute() = default;

bool CXmlAttribute::IsNamespaceAttribute() const noexcept {
    if (!IsInstanceOrXmlnsNamespace(*m_namespaceURI)) return false;
    const std::string& name = *m_localName;
    return name == "xmlns" || name == "type" || name == "schemaLocation" ||
           name == "noNamespaceSchemaLocation";
}

bool CXmlAttribute::IsNilAttribute() const noexcept {
    return *m_localName == "nil" && IsInstanceOrXmlnsNamespace(*m_namespaceURI);
}

// ------------------------------------------------------------------ CXmlElement

CXmlElement::CXmlElement(const CXmlDocument* document)
    : CInstanceMonitor("CXmlElement"),
      m_document(document),
      m_localName(&CXmlNameTable::EmptyString()),
      m_namespaceURI(&CXmlNameTable::EmptyString()) {
    if (document == nullptr) throw CQmInvalidParamException("An element needs an owning document.");
}

CXmlElement::~CXmlElement() {
    // A recursive teardown would overflow the stack on deeply nested input.
    // Instead the descendants form one pending chain through their sibling
    // links: a node's children are spliced in front of its later siblings
    // before the node is deleted, so every node is deleted childless.
    CXmlElement* pending = m_firstChild;
    m_firstChild = nullptr;
    m_lastChild = nullptr;
    m_nextSibling = nullptr;
    while (pending != nullptr) {
        CXmlElement* node = pending;
        if (node->m_firstChild != nullptr) {
            node->m_lastChild->m_nextSibling = node->m_nextSibling;
            pending = node->m_firstChild;
            node->m_firstChild = nullptr;
            node->m_lastChild = nullptr;
        } else {
            pending = node->m_nextSibling;
        }
        node->m_nextSibling = nullptr;
        delete node;
    }

    if (m_attributes != nullptr) {
        for (CXmlAttribute* attribute : *m_attributes) delete attribute;
        delete m_attributes;
        m_attributes = nullptr;
    }
}

const std::string& CXmlElement::GetAttribute(const std::string& localName,
                                             const std::string& ns) const noexcept {
    if (m_attributes != nullptr) {
        for (const CXmlAttribute* attribute : *m_attributes) {
            if (*attribute->m_localName == localName && *attribute->m_namespaceURI == ns)
                return attribute->m_value;
        }
    }
    return CXmlNameTable::EmptyString();
}

void CXmlElement::SetElementName(std::string_view localName) {
    m_localName = m_document->GetNameTable().Intern(localName);
}

void CXmlElement::SetNamespace(std::string_view namespaceURI) {
    m_namespaceURI = m_document->GetNameTable().Intern(namespaceURI);
}

void CXmlElement::AddAttribute(std::string_view localName, std::string_view value,
                               std::string_view namespaceURI) {
    CXmlNameTable& names = m_document->GetNameTable();
    const std::string* internedLocalName = names.Intern(localName);
    const std::string* internedNamespaceURI = names.Intern(namespaceURI);
    AddAttribute(internedLocalName, std::string(value), internedNamespaceURI);
}

void CXmlElement::AddAttribute(const std::string* internedLocalName, std::string value,
                               const std::string* internedNamespaceURI) {
    if (m_attributes == nullptr) m_attributes = new std::vector<CXmlAttribute*>();
    // Make room first, so that a failure cannot leave an attribute unowned.
    m_attributes->push_back(nullptr);
    try {
        m_attributes->back() =
            new CXmlAttribute(internedLocalName, std::move(value), internedNamespaceURI);
    } catch (...) {
        m_attributes->pop_back();
        throw;
    }
}

void CXmlElement::LinkChild(CXmlElement* child) noexcept {
    if (m_lastChild != nullptr)
        m_lastChild->m_nextSibling = child;
    else
        m_firstChild = child;
    m_lastChild = child;
}

CXmlElement* CXmlElement::CreateNewChildElement() {
    CXmlElement* child = new CXmlElement(m_document);
    LinkChild(child);
    return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement() noexcept {
    CXmlElement* last = m_lastChild;
    if (last == nullptr) return nullptr;
    if (m_firstChild == last) {
        m_firstChild = nullptr;
        m_lastChild = nullptr;
    } else {
        CXmlElement* previous = m_firstChild;
        while (previous->m_nextSibling != last) previous = previous->m_nextSibling;
        previous->m_nextSibling = nullptr;
        m_lastChild = previous;
    }
    return last;
}

}  // namespace QmXmlLib10
