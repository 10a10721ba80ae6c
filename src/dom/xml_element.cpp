#include "qmxml/dom/xml_element.h"

#include <new>
#include <string_view>
#include <utility>

#include "dom/xml_document_loading.h"
#include "dom/xml_node_pool.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_name_table.h"

namespace QmXmlLib10 {

namespace {

// Views compare their lengths first; these checks run for every attribute read.
constexpr std::string_view kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";
constexpr std::string_view kXmlnsNamespace = "http://www.w3.org/2000/xmlns/";

bool IsInstanceOrXmlnsNamespace(std::string_view ns) noexcept { return ns == kXsiNamespace || ns == kXmlnsNamespace; }

using AttributeVector = std::vector<CXmlAttribute*>;

CXmlNodePool& PoolOf(const CXmlDocument* document) noexcept {
    return CXmlDocumentLoading::GetNodePool(*document);
}

// Whitespace runs are shared up to this length and this many distinct runs, so
// that a load trimmed by an element filter still uses bounded memory.
constexpr std::size_t kMaxSharedTextLength = 256;
constexpr std::size_t kMaxSharedTexts = 4096;

bool IsWhitespaceOnly(std::string_view text) noexcept {
    for (const char c : text)
        if (c != ' ' && c != '\n' && c != '\t' && c != '\r') return false;
    return true;
}

// The document's shared copy of text when it qualifies, else null.
const std::string* SharedText(const CXmlDocument* document, std::string_view text) {
    if (text.size() > kMaxSharedTextLength || !IsWhitespaceOnly(text)) return nullptr;
    CXmlNameTable& texts = CXmlDocumentLoading::GetTextTable(*document);
    return texts.GetCount() < kMaxSharedTexts ? texts.Intern(text) : texts.Find(text);
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
    const std::string_view name = *m_localName;
    return name == "xmlns" || name == "type" || name == "schemaLocation" || name == "noNamespaceSchemaLocation";
}

bool CXmlAttribute::IsNilAttribute() const noexcept {
    return std::string_view(*m_localName) == "nil" && IsInstanceOrXmlnsNamespace(*m_namespaceURI);
}

// ------------------------------------------------------------------ CXmlElement

CXmlElement::CXmlElement(const CXmlDocument* document)
    : CInstanceMonitor("CXmlElement"),
      m_document(document),
      m_text(reinterpret_cast<std::uintptr_t>(&CXmlNameTable::EmptyString())),
      m_localName(&CXmlNameTable::EmptyString()),
      m_namespaceURI(&CXmlNameTable::EmptyString()) {
    if (document == nullptr) throw CQmInvalidParamException("An element needs an owning document.");
}

// Only the text is left to free here; Destroy has taken care of the rest.
CXmlElement::~CXmlElement() { ReleaseText(); }

CXmlElement* CXmlElement::Create(const CXmlDocument* document) {
    if (document == nullptr) throw CQmInvalidParamException("An element needs an owning document.");
    CXmlNodePool& pool = PoolOf(document);
    void* block = pool.Allocate(sizeof(CXmlElement));
    return new (block) CXmlElement(document);  // cannot throw with a document
}

void CXmlElement::Destroy(CXmlElement* element) noexcept {
    if (element == nullptr) return;
    CXmlNodePool& pool = PoolOf(element->m_document);
    // A recursive teardown would overflow the stack on deeply nested input.
    // Instead the nodes form one pending chain through their sibling links: a
    // node's children are spliced in front of its later siblings before the
    // node is destroyed, so every node is destroyed childless.
    element->m_nextSibling = nullptr;
    CXmlElement* pending = element;
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
        if (AttributeVector* attributes = node->m_attributes) {
            for (CXmlAttribute* attribute : *attributes) {
                attribute->~CXmlAttribute();
                pool.Release(attribute, sizeof(CXmlAttribute));
            }
            attributes->~AttributeVector();
            pool.Release(attributes, sizeof(AttributeVector));
            node->m_attributes = nullptr;
        }
        node->~CXmlElement();
        pool.Release(node, sizeof(CXmlElement));
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

std::vector<CXmlAttribute*>& CXmlElement::Attributes() {
    if (m_attributes == nullptr) m_attributes = new (PoolOf(m_document).Allocate(sizeof(AttributeVector))) AttributeVector();
    return *m_attributes;
}

void CXmlElement::ReserveAttributes(std::size_t count) {
    if (count == 0) return;
    Attributes().reserve(count);
}

void CXmlElement::AddAttribute(const std::string* internedLocalName, std::string value,
                               const std::string* internedNamespaceURI) {
    AttributeVector& attributes = Attributes();
    // Make room first, so that a failure cannot leave an attribute unowned.
    attributes.push_back(nullptr);
    CXmlNodePool& pool = PoolOf(m_document);
    // Constructing from moved strings and pointers cannot throw.
    attributes.back() = new (pool.Allocate(sizeof(CXmlAttribute)))
        CXmlAttribute(internedLocalName, std::move(value), internedNamespaceURI);
}

void CXmlElement::SetText(const std::string* text, bool owned) noexcept {
    static_assert(alignof(std::string) > kTagBits, "the tags need two free low bits");
    m_text = reinterpret_cast<std::uintptr_t>(text) | (owned ? kOwnedText : 0) | (m_text & kOpenElement);
}

void CXmlElement::ReleaseText() noexcept {
    if ((m_text & kOwnedText) == 0) return;
    std::string* text = reinterpret_cast<std::string*>(m_text & ~kTagBits);
    text->~basic_string();
    PoolOf(m_document).Release(text, sizeof(std::string), CXmlNodePool::Uncounted);
    SetText(&CXmlNameTable::EmptyString(), false);
}

void CXmlElement::AppendText(std::string_view text) {
    if (text.empty()) return;
    // The element may be open (read while binding): its text as stored, without reading on.
    const std::string& current = *reinterpret_cast<const std::string*>(m_text & ~kTagBits);
    if ((m_text & kOwnedText) != 0) {
        reinterpret_cast<std::string*>(m_text & ~kTagBits)->append(text.data(), text.size());
        return;
    }
    std::string joined;
    if (!current.empty()) {
        joined.reserve(current.size() + text.size());
        joined.append(current).append(text.data(), text.size());
        text = joined;
    }
    if (const std::string* shared = SharedText(m_document, text)) {
        SetText(shared, false);
        return;
    }
    CXmlNodePool& pool = PoolOf(m_document);
    void* block = pool.Allocate(sizeof(std::string), CXmlNodePool::Uncounted);
    try {
        // Built at its size, the string gets exactly that capacity; appending
        // to an empty one would round a short text up to twice the inline one.
        std::string* owned = joined.empty() ? new (block) std::string(text) : new (block) std::string(std::move(joined));
        SetText(owned, true);
    } catch (...) {
        pool.Release(block, sizeof(std::string), CXmlNodePool::Uncounted);
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
    CXmlElement* child = Create(m_document);
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
