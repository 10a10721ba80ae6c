#include "qmxml/writer/xml_writer.h"

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

CXmlWriter::CXmlWriterContext::CXmlWriterContext(CXmlWriterContext* parent, const char* localName,
                                                 const char* namespaceURI)
    : CInstanceMonitor("CXmlWriterContext"),
      m_depth(parent ? parent->m_depth + 1 : 0),
      m_namespaceURI(namespaceURI ? namespaceURI : ""),
      m_hasNamespace(namespaceURI != nullptr && *namespaceURI != '\0'),
      m_localName(localName ? localName : ""),
      m_parent(parent) {}

const std::string* CXmlWriter::CXmlWriterContext::FindPrefix(const std::string& uri) const {
    for (const CXmlWriterContext* c = this; c != nullptr; c = c->m_parent) {
        auto it = c->m_namespaces.find(uri);
        if (it != c->m_namespaces.end()) return &it->second;
    }
    return nullptr;
}

void CXmlWriter::CXmlWriterContext::AddNamespace(const std::string& uri, const std::string& prefix) {
    m_namespaces[uri] = prefix;
}

CXmlWriter::CXmlWriter(const char* className) : CInstanceMonitor(className) {}

CXmlWriter::~CXmlWriter() {
    // Contexts own their parents only through this chain: unwind it iteratively.
    while (m_current) {
        std::unique_ptr<CXmlWriterContext> parent(m_current->m_parent);
        m_current->m_parent = nullptr;
        m_current = std::move(parent);
    }
}

void CXmlWriter::EndDocument() {
    if (m_current) throw CQmException("An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(const char* namespaceURI) {
    if (!m_current) m_defaultNamespaceURI = namespaceURI ? namespaceURI : "";
}

void CXmlWriter::AddNamespaceAlias(const char* alias, const char* namespaceURI) {
    if (!m_current) m_namespaceAliases[namespaceURI ? namespaceURI : ""] = alias ? alias : "";
}

void CXmlWriter::StartElement(const char* localName, const char* namespaceURI) {
    auto context = std::make_unique<CXmlWriterContext>(m_current.get(), localName, namespaceURI);
    if (!m_current) {
        for (const auto& [uri, alias] : m_namespaceAliases) context->AddNamespace(uri, alias);
    } else {
        ++m_current->m_childCount;
    }
    m_current.release();  // now owned through the new context's parent link
    m_current = std::move(context);
}

void CXmlWriter::EndElement() {
    if (!m_current) throw CQmException("An Element has not been opened.");
    std::unique_ptr<CXmlWriterContext> parent(m_current->m_parent);
    m_current->m_parent = nullptr;
    m_current = std::move(parent);
}

}  // namespace QmXmlLib10
