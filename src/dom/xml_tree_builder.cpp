#include "qmxml/dom/xml_tree_builder.h"

#include <utility>

#include "dom/xml_document_loading.h"
#include "dom/xml_node_pool.h"

namespace QmXmlLib10 {

CXmlElement* CXmlTreeBuilder::CreateDocumentElement(CXmlDocument& document) {
    CXmlElement::Destroy(document.m_documentElement);
    document.m_documentElement = nullptr;
    document.m_documentElement = CXmlElement::Create(&document);
    return document.m_documentElement;
}

void CXmlTreeBuilder::Clear(CXmlDocument& document) noexcept {
    CXmlElement::Destroy(document.m_documentElement);
    document.m_documentElement = nullptr;
    // Gives the chunks back unless a removed subtree is still waiting for DestroyElement.
    document.m_pool->Reset();
    document.m_nameTable.Clear();
    document.m_textTable.Clear();
}

const std::string* CXmlTreeBuilder::Intern(const CXmlDocument& document, std::string_view name) {
    return document.GetNameTable().Intern(name);
}

CXmlElement* CXmlTreeBuilder::CreateChild(CXmlElement* parent) {
    return parent->CreateNewChildElement();
}

void CXmlTreeBuilder::SetName(CXmlElement* element, std::string_view localName,
                              std::string_view namespaceURI) {
    element->SetElementName(localName);
    element->SetNamespace(namespaceURI);
}

void CXmlTreeBuilder::SetName(CXmlElement* element, const std::string* internedLocalName,
                              const std::string* internedNamespaceURI) noexcept {
    element->SetElementName(internedLocalName);
    element->SetNamespace(internedNamespaceURI);
}

void CXmlTreeBuilder::AddAttribute(CXmlElement* element, std::string_view localName,
                                   std::string_view value, std::string_view namespaceURI) {
    element->AddAttribute(localName, value, namespaceURI);
}

void CXmlTreeBuilder::AddAttribute(CXmlElement* element, const std::string* internedLocalName,
                                   std::string value, const std::string* internedNamespaceURI) {
    element->AddAttribute(internedLocalName, std::move(value), internedNamespaceURI);
}

void CXmlTreeBuilder::AppendText(CXmlElement* element, const char* text, std::size_t length) {
    element->AppendText(std::string_view(text, length));
}

void CXmlTreeBuilder::ReserveAttributes(CXmlElement* element, std::size_t count) {
    element->ReserveAttributes(count);
}

CXmlElement* CXmlTreeBuilder::RemoveLastChild(CXmlElement* parent) noexcept {
    return parent->RemoveLastChildElement();
}

void CXmlTreeBuilder::DestroyElement(CXmlElement* element) noexcept {
    if (element == nullptr) return;
    CXmlDocument& document = const_cast<CXmlDocument&>(*element->GetDocument());
    if (document.m_documentElement == element) document.m_documentElement = nullptr;
    CXmlElement::Destroy(element);
}

bool CXmlTreeBuilder::DeleteLastChild(CXmlElement* parent) noexcept {
    CXmlElement* child = parent->RemoveLastChildElement();
    CXmlElement::Destroy(child);
    return child != nullptr;
}

CXmlElement* CXmlTreeBuilder::GetLastChild(const CXmlElement* parent) noexcept { return parent->m_lastChild; }

void CXmlTreeBuilder::UnlinkLastChild(CXmlElement* parent, CXmlElement* previous) noexcept {
    if (previous == nullptr) {
        parent->m_firstChild = nullptr;
    } else {
        previous->m_nextSibling = nullptr;
    }
    parent->m_lastChild = previous;
}

void CXmlTreeBuilder::SetOpen(CXmlElement* element, bool open) noexcept {
    if (open) {
        element->m_text |= CXmlElement::kOpenElement;
    } else {
        element->m_text &= ~CXmlElement::kOpenElement;
    }
}

bool CXmlTreeBuilder::IsOpen(const CXmlElement* element) noexcept {
    return (element->m_text & CXmlElement::kOpenElement) != 0;
}

CXmlElement* CXmlTreeBuilder::PeekFirstChild(const CXmlElement* element) noexcept { return element->m_firstChild; }

CXmlElement* CXmlTreeBuilder::PeekNextSibling(const CXmlElement* element) noexcept {
    return element->m_nextSibling;
}

void CXmlTreeBuilder::DestroyChildren(CXmlElement* element) noexcept {
    CXmlElement* child = element->m_firstChild;
    element->m_firstChild = nullptr;
    element->m_lastChild = nullptr;
    while (child != nullptr) {
        CXmlElement* next = child->m_nextSibling;
        CXmlElement::Destroy(child);  // unlinks it from its siblings first
        child = next;
    }
}

void CXmlTreeBuilder::DestroyNextSibling(CXmlElement* parent, CXmlElement* element) noexcept {
    CXmlElement* victim = element->m_nextSibling;
    element->m_nextSibling = victim->m_nextSibling;
    if (parent->m_lastChild == victim) parent->m_lastChild = element;
    victim->m_nextSibling = nullptr;
    CXmlElement::Destroy(victim);
}

CXmlTreeBuilder::PoolStatistics CXmlTreeBuilder::GetPoolStatistics(const CXmlDocument& document) noexcept {
    const CXmlNodePool& pool = CXmlDocumentLoading::GetNodePool(document);
    return PoolStatistics{pool.GetLiveCount(), pool.GetReservedBytes(), pool.GetChunkCount()};
}

}  // namespace QmXmlLib10
