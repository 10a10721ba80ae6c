#include "qmxml/dom/xml_tree_builder.h"

#include <utility>

namespace QmXmlLib10 {

CXmlElement* CXmlTreeBuilder::CreateDocumentElement(CXmlDocument& document) {
    document.m_documentElement.reset();
    document.m_documentElement.reset(new CXmlElement(&document));
    return document.m_documentElement.get();
}

void CXmlTreeBuilder::Clear(CXmlDocument& document) noexcept {
    document.m_documentElement.reset();
    document.m_nameTable.Clear();
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

CXmlElement* CXmlTreeBuilder::RemoveLastChild(CXmlElement* parent) noexcept {
    return parent->RemoveLastChildElement();
}

bool CXmlTreeBuilder::DeleteLastChild(CXmlElement* parent) noexcept {
    CXmlElement* child = parent->RemoveLastChildElement();
    delete child;
    return child != nullptr;
}

}  // namespace QmXmlLib10
