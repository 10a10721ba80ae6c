#include "qmxml/writer/xml_writer.h"

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {
const std::string kEmpty;
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(CXmlWriterContext* parent, const char* localName,
                                                 const char* namespaceURI)
    : CInstanceMonitor("CXmlWriterContext") {
    Reset(parent, localName, namespaceURI);
}

void CXmlWriter::CXmlWriterContext::Reset(CXmlWriterContext* parent, const char* localName,
                                          const char* namespaceURI) {
    m_childCount = 0;
    m_startTagOpen = true;
    m_depth = parent ? parent->m_depth + 1 : 0;
    m_namespaceURI.assign(namespaceURI ? namespaceURI : "");
    m_hasNamespace = !m_namespaceURI.empty();
    m_localName.assign(localName ? localName : "");
    m_parent = parent;
    m_inDefaultNamespace = parent ? parent->m_inDefaultNamespace : false;
    m_prefix.clear();
    m_namespaceCount = 0;
}

const std::string* CXmlWriter::CXmlWriterContext::FindPrefix(std::string_view uri) const {
    for (const CXmlWriterContext* c = this; c != nullptr; c = c->m_parent) {
        for (std::size_t i = 0; i < c->m_namespaceCount; ++i) {
            if (c->m_namespaces[i].uri == uri) return &c->m_namespaces[i].prefix;
        }
    }
    return nullptr;
}

bool CXmlWriter::CXmlWriterContext::IsPrefixInScope(std::string_view prefix) const {
    for (const CXmlWriterContext* c = this; c != nullptr; c = c->m_parent) {
        for (std::size_t i = 0; i < c->m_namespaceCount; ++i) {
            if (c->m_namespaces[i].prefix == prefix) return true;
        }
    }
    return false;
}

void CXmlWriter::CXmlWriterContext::AddNamespace(std::string_view uri, std::string_view prefix) {
    for (std::size_t i = 0; i < m_namespaceCount; ++i) {
        if (m_namespaces[i].uri == uri) {
            m_namespaces[i].prefix.assign(prefix);
            return;
        }
    }
    if (m_namespaceCount == m_namespaces.size()) m_namespaces.emplace_back();
    Declaration& d = m_namespaces[m_namespaceCount++];
    d.uri.assign(uri);
    d.prefix.assign(prefix);
}

CXmlWriter::CXmlWriter(const char* className) : CInstanceMonitor(className) {}

CXmlWriter::~CXmlWriter() = default;

void CXmlWriter::EndDocument() {
    if (m_current) throw CQmException("An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(const char* namespaceURI) {
    if (m_current) return;
    // The XML namespace is bound to "xml" for good and may not be declared as
    // the default; elements in it are written with that prefix instead.
    const std::string_view uri = namespaceURI ? namespaceURI : "";
    m_defaultNamespaceURI = uri == XmlNamespaceURI ? std::string_view() : uri;
}

void CXmlWriter::AddNamespaceAlias(const char* alias, const char* namespaceURI) {
    if (!m_current) m_namespaceAliases[namespaceURI ? namespaceURI : ""] = alias ? alias : "";
}

void CXmlWriter::StartElement(const char* localName, const char* namespaceURI) {
    CXmlWriterContext* parent = m_current;
    if (m_openCount == m_contexts.size()) {
        m_contexts.push_back(std::make_unique<CXmlWriterContext>(parent, localName, namespaceURI));
    } else {
        m_contexts[m_openCount]->Reset(parent, localName, namespaceURI);
    }
    CXmlWriterContext* context = m_contexts[m_openCount].get();
    if (parent) {
        ++parent->m_childCount;
    } else {
        context->m_inDefaultNamespace = !m_defaultNamespaceURI.empty();
        for (const auto& [uri, alias] : m_namespaceAliases) {
            if (!alias.empty() && uri != XmlNamespaceURI) context->AddNamespace(uri, alias);
        }
    }
    ++m_openCount;
    m_current = context;
}

void CXmlWriter::WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                                    ItemType itemType) {
    StartElement(localName, namespaceURI);
    WriteText(value, itemType);
    EndElement();
}

void CXmlWriter::AllocatePrefix(const CXmlWriterContext& context, std::string& prefix) {
    for (int n = 0; n < 26 * 26; ++n) {
        const char candidate[2] = {static_cast<char>('A' + n / 26), static_cast<char>('A' + n % 26)};
        if (!context.IsPrefixInScope(std::string_view(candidate, 2))) {
            prefix.assign(candidate, 2);
            return;
        }
    }
    // Only reached with 676 prefixes in scope: go on with numbered ones.
    for (unsigned n = 0;; ++n) {
        prefix = "NS" + std::to_string(n);
        if (!context.IsPrefixInScope(prefix)) return;
    }
}

CXmlWriter::ChildName CXmlWriter::ClassifyChildName(std::string_view namespaceURI) const {
    const CXmlWriterContext* parent = m_current;
    if (parent == nullptr) return ChildName::Declaration;
    if (namespaceURI.empty())  // inside a default namespace it would be undeclared
        return parent->m_inDefaultNamespace ? ChildName::Declaration : ChildName::NoNamespace;
    if (parent->m_inDefaultNamespace && namespaceURI == m_defaultNamespaceURI) return ChildName::DefaultNamespace;
    if (!parent->m_prefix.empty() && parent->m_namespaceURI == namespaceURI) return ChildName::ParentPrefix;
    return ChildName::Declaration;
}

void CXmlWriter::EndElement() {
    if (!m_current) throw CQmException("An Element has not been opened.");
    m_current = m_current->m_parent;
    --m_openCount;
}

const std::string& CXmlWriter::GetDefaultNamespaceInScope(const CXmlWriterContext& context) const {
    return context.m_inDefaultNamespace ? m_defaultNamespaceURI : kEmpty;
}

}  // namespace QmXmlLib10
