#include "qmxml/writer/xml_writer.h"

#include "dom/expat_reader.h"
#include "platform/charset.h"
#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {
const std::string kEmpty;
const std::string kXmlPrefix("xml");

// True when no byte is a C0 control other than tab, line feed and carriage return.
bool HasNoBadControls(const char* text, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 && c != 0x09 && c != 0x0A && c != 0x0D) return false;
    }
    return true;
}
}  // namespace

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

CXmlWriter::CXmlWriter(const char* className)
    : CInstanceMonitor(className), m_localIsUtf8(platform::LocalIsUtf8()) {}

CXmlWriter::~CXmlWriter() = default;

void CXmlWriter::EndDocument() {
    if (m_current) throw CQmException("An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(const char* namespaceURI) {
    if (m_current) return;
    // The XML namespace is bound to "xml" for good and may not be declared as
    // the default; elements in it are written with that prefix instead.
    const std::string_view uri = namespaceURI ? namespaceURI : "";
    CheckNamespaceName(uri);
    m_defaultNamespaceURI = uri == XmlNamespaceURI ? std::string_view() : uri;
}

void CXmlWriter::AddNamespaceAlias(const char* alias, const char* namespaceURI) {
    if (m_current) return;
    const std::string_view uri = namespaceURI ? namespaceURI : "";
    const std::string_view prefix = alias ? alias : "";
    // Aliases that are never declared (empty, or for the XML namespace) are kept unchecked.
    if (!prefix.empty() && !uri.empty() && uri != XmlNamespaceURI) {
        CheckPrefix(prefix);
        CheckNamespaceName(uri);
    }
    m_namespaceAliases[std::string(uri)] = prefix;
}

void CXmlWriter::StartElement(const char* localName, const char* namespaceURI) {
    CXmlWriterContext* parent = m_current;
    if (m_openCount == m_contexts.size()) {
        m_contexts.push_back(std::make_unique<CXmlWriterContext>(parent, localName, namespaceURI));
    } else {
        m_contexts[m_openCount]->Reset(parent, localName, namespaceURI);
    }
    CXmlWriterContext* context = m_contexts[m_openCount].get();
    // Until the count below takes it, the context is spare storage: a refused name opens nothing.
    CheckName(context->m_localName, !context->m_hasNamespace);
    if (parent) {
        ++parent->m_childCount;
    } else {
        context->m_inDefaultNamespace = !m_defaultNamespaceURI.empty();
        for (const auto& [uri, alias] : m_namespaceAliases) {
            // xmlns:p="" is no declaration XML allows, so an alias of no namespace is left out.
            if (!alias.empty() && !uri.empty() && uri != XmlNamespaceURI) context->AddNamespace(uri, alias);
        }
    }
    ++m_openCount;
    m_current = context;

    // The name's prefix: the one rule both writers follow.
    const std::string& uri = context->m_namespaceURI;
    if (uri.empty()) {
        m_naming = parent && context->m_inDefaultNamespace ? ElementNaming::Undeclare : ElementNaming::NoNamespace;
        context->m_inDefaultNamespace = false;
    } else if (context->m_inDefaultNamespace && uri == m_defaultNamespaceURI) {
        m_naming = ElementNaming::DefaultNamespace;
    } else if (parent && !parent->m_prefix.empty() && parent->m_namespaceURI == uri) {
        context->m_prefix = parent->m_prefix;  // the common case: the parent's namespace
        m_naming = ElementNaming::ParentPrefix;
    } else if (uri == XmlNamespaceURI) {
        context->m_prefix = kXmlPrefix;
        m_naming = ElementNaming::PrefixInScope;
    } else if (const std::string* prefix = context->FindPrefix(uri); prefix) {
        context->m_prefix = *prefix;
        m_naming = ElementNaming::PrefixInScope;
    } else {
        CheckNamespaceName(uri);
        AllocatePrefix(*context, context->m_prefix);
        context->AddNamespace(uri, context->m_prefix);
        m_naming = ElementNaming::NewPrefix;
    }
}

const std::string* CXmlWriter::AttributePrefix(CXmlWriterContext& context, std::string_view namespaceURI,
                                               bool& declared) {
    declared = false;
    if (namespaceURI.empty()) return nullptr;
    if (namespaceURI == XmlNamespaceURI) return &kXmlPrefix;
    if (const std::string* prefix = context.FindPrefix(namespaceURI)) return prefix;
    CheckNamespaceName(namespaceURI);
    AllocatePrefix(context, m_attributePrefix);
    context.AddNamespace(namespaceURI, m_attributePrefix);
    declared = true;
    return &m_attributePrefix;
}

std::string CXmlWriter::QualifyName(const char* namespaceURI, const char* localName) {
    CXmlWriterContext& context = RequireStartTag();
    const std::string_view uri = namespaceURI ? namespaceURI : "";
    const std::string local = localName ? localName : "";
    if (uri.empty() || uri == GetDefaultNamespaceInScope(context)) return local;
    bool declared = false;
    const std::string* prefix = AttributePrefix(context, uri, declared);
    const std::string name = *prefix + ":" + local;
    if (declared) WritePrefixDeclaration(*prefix, uri);
    return name;
}

void CXmlWriter::WritePrefixDeclaration(const std::string&, std::string_view) {}

bool CXmlWriter::DeclarePrefix(const char* prefix, const char* namespaceURI) {
    CXmlWriterContext& context = RequireStartTag();
    const std::string_view name = prefix ? prefix : "";
    const std::string_view uri = namespaceURI ? namespaceURI : "";
    if (name.empty() || uri.empty() || name == "xml" || name == "xmlns" || context.IsPrefixInScope(name)) return false;
    if (!IsPlainAsciiName(name) || name.find(':') != std::string_view::npos) return false;
    // One prefix per URI on an element: the one it has stays (its name may use it).
    for (std::size_t i = 0; i < context.GetOwnNamespaceCount(); ++i) {
        if (context.GetOwnNamespaceURI(i) == uri) return false;
    }
    CheckNamespaceName(uri);
    context.AddNamespace(uri, name);
    WritePrefixDeclaration(std::string(name), uri);
    return true;
}

void CXmlWriter::WriteTypeAttribute(const char* typeName) { WriteAttribute("type", XsiNamespaceURI, typeName); }

void CXmlWriter::WriteNilAttribute() { WriteAttribute("nil", XsiNamespaceURI, "true"); }

bool CXmlWriter::IsWritable(const char* text, std::size_t length) const {
    if (platform::IsPrintableAscii(text, length)) return true;
    if (m_localIsUtf8 && !m_bytesAreUnits) return platform::IsXmlUtf8Slow(text, length);
    // Each byte one character (ASCIIOnly into UTF-16), or an 8-bit encoding
    // whose bytes below 0x80 are ASCII: a control byte is a control either way.
    if (!HasNoBadControls(text, length)) return false;
    if (m_bytesAreUnits) return true;
    m_utf8.clear();
    try {
        platform::LocalToUtf8(text, length, m_utf8);
    } catch (const CQmInvalidValueException&) {
        return false;  // a byte the local encoding does not define
    }
    return platform::IsXmlUtf8(m_utf8.data(), m_utf8.size());
}

void CXmlWriter::ThrowInvalidValue(std::string_view name) {
    throw CQmInvalidValueException(FormatString("Invalid character in the value of [%.*s]",
                                                static_cast<int>(name.size()), name.data()));
}

void CXmlWriter::ThrowEmptyName() const { throw CQmInvalidValueException("Invalid name []"); }

void CXmlWriter::CheckNameSlow(std::string_view name, bool colons) const {
    if (name.empty()) ThrowEmptyName();
    // Printable ASCII takes the name check's own fast path; anything else
    // is checked as the UTF-8 it is written as.
    std::string_view utf8 = name;
    bool convertible = true;
    if (!m_localIsUtf8 && !platform::IsPrintableAscii(name.data(), name.size())) {
        m_utf8.clear();
        try {
            platform::LocalToUtf8(name.data(), name.size(), m_utf8);
        } catch (const CQmInvalidValueException&) {
            convertible = false;  // a byte the local encoding does not define
        }
        utf8 = m_utf8;
    }
    if (!m_names) m_names = std::make_unique<CExpatNameCheck>();
    if (!convertible || !m_names->IsName(utf8.data(), utf8.size(), colons)) {
        throw CQmInvalidValueException(
            FormatString("Invalid name [%.*s]", static_cast<int>(name.size()), name.data()));
    }
}

void CXmlWriter::CheckPrefix(std::string_view prefix) const {
    CheckName(prefix, false);
    if (prefix == "xmlns" || prefix == "xml") {
        throw CQmInvalidValueException(
            FormatString("Invalid name [%.*s]", static_cast<int>(prefix.size()), prefix.data()));
    }
}

void CXmlWriter::CheckNamespaceName(std::string_view uri) const {
    // "|" separates a name's namespace from its local name when text is read
    // with namespaces, so the readers refuse it in namespace names.
    if (!IsWritable(uri.data(), uri.size()) || uri.find('|') != std::string_view::npos) {
        throw CQmInvalidValueException(FormatString("Invalid character in the namespace name [%.*s]",
                                                    static_cast<int>(uri.size()), uri.data()));
    }
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

void CXmlWriter::ThrowNotOpened() { throw CQmException("An Element has not been opened."); }

CXmlWriter::CXmlWriterContext& CXmlWriter::RequireStartTag() const {
    CXmlWriterContext& context = RequireContext();
    if (!context.m_startTagOpen) throw CQmException("Attributes must be added before elements");
    return context;
}

void CXmlWriter::EndElement() {
    if (!m_current) ThrowNotOpened();
    m_current = m_current->m_parent;
    --m_openCount;
}

const std::string& CXmlWriter::GetDefaultNamespaceInScope(const CXmlWriterContext& context) const {
    return context.m_inDefaultNamespace ? m_defaultNamespaceURI : kEmpty;
}

}  // namespace QmXmlLib10
