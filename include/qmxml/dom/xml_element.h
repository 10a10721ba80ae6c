// The read-only nodes of the library's document tree: elements and their attributes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qmxml/core/instance_monitor.h"

namespace QmXmlLib10 {

class CXmlDocument;
class CXmlElement;
class CXmlTreeBuilder;

// One attribute of an element: local name, value and namespace URI (empty when
// unqualified). Names are interned in the owning document's name table. No
// prefix is kept; prefixes are resolved by the parser.
class CXmlAttribute final : public CInstanceMonitor {
public:
    CXmlAttribute(const CXmlAttribute&) = delete;
    CXmlAttribute& operator=(const CXmlAttribute&) = delete;

    const std::string& GetLocalName() const noexcept { return *m_localName; }
    const std::string& GetValue() const noexcept { return m_value; }
    const std::string& GetNamespaceURI() const noexcept { return *m_namespaceURI; }

    // True for attributes that carry no data: namespace declarations, xsi:type
    // and the schema locations. The XML Schema instance namespace and the xmlns
    // namespace are both accepted with any of the names "xmlns", "type",
    // "schemaLocation" and "noNamespaceSchemaLocation"; this loose pairing is
    // deliberate and must stay.
    bool IsNamespaceAttribute() const noexcept;
    // True for "nil" in either of the two namespaces above. The value is not
    // inspected; the caller decides what it means.
    bool IsNilAttribute() const noexcept;

protected:
    // Both names must be interned in the owning document's name table.
    CXmlAttribute(const std::string* localName, std::string value,
                  const std::string* namespaceURI);

private:
    friend class CXmlElement;
    friend class CXmlTreeBuilder;
    // Attributes live and die with their element, in the document's node pool.
    ~CXmlAttribute();
    static void operator delete(void*) noexcept = delete;

    const std::string* m_localName;
    const std::string* m_namespaceURI;
    std::string m_value;
};

// An element node: name, namespace URI, attributes in document order, the
// concatenation of all its character data (text around child elements is
// joined; interleaving is not kept) and its child elements in order.
//
// Trees are built only through CXmlTreeBuilder and are read-only afterwards.
// The accessors mutate nothing, so a finished tree may be read from several
// threads at once. The layout is kept small on purpose (no virtual functions,
// names and whitespace-only texts interned, text and attribute vector
// allocated only when needed) because a loaded document has millions of these.
//
// Nodes live in their document's node pool, so they cannot be deleted with
// `delete`: the document destroys its tree, and a subtree unlinked with
// CXmlTreeBuilder::RemoveLastChild goes back with CXmlTreeBuilder::DestroyElement.
class CXmlElement final : public CInstanceMonitor {
public:
    CXmlElement(const CXmlElement&) = delete;
    CXmlElement& operator=(const CXmlElement&) = delete;

    const std::string& GetLocalName() const noexcept { return *m_localName; }
    const std::string& GetNamespaceURI() const noexcept { return *m_namespaceURI; }
    // An element still being read (by a FromXml... entry point, which binds
    // while the parser runs) is read on until the answer is known; a loaded
    // tree answers at once. Reading on may throw what the parser finds.
    const std::string& GetText() const {
        if ((m_text & kOpenElement) != 0) WaitUntilClosed();
        return *reinterpret_cast<const std::string*>(m_text & ~kTagBits);
    }
    const std::vector<CXmlAttribute*>& GetAttributes() const noexcept {
        return m_attributes != nullptr ? *m_attributes : s_noAttributes;
    }
    // The value of the first attribute whose local name and namespace URI both
    // equal the arguments (byte-wise), or a shared empty string when none does.
    // To tell an absent attribute from an empty one, walk GetAttributes().
    const std::string& GetAttribute(const std::string& localName,
                                    const std::string& ns) const noexcept;
    CXmlElement* GetFirstElement() const {
        if ((m_text & kOpenElement) != 0) return FirstElementWhileOpen();
        return m_firstChild;
    }
    CXmlElement* GetNextSiblingElement() const {
        if (m_nextSibling == nullptr || (m_nextSibling->m_text & kOpenElement) != 0) return NextSiblingWhileOpen();
        return m_nextSibling;
    }
    const CXmlDocument* GetDocument() const noexcept { return m_document; }

protected:
    friend class CXmlTreeBuilder;

    // An empty, unnamed element owned by document (which must not be null).
    explicit CXmlElement(const CXmlDocument* document);

    void SetElementName(std::string_view localName);
    void SetElementName(const std::string& localName) { SetElementName(std::string_view(localName)); }
    void SetElementName(const char* localName) { SetElementName(std::string_view(localName)); }
    // The name must come from this document's name table.
    void SetElementName(const std::string* internedLocalName) noexcept { m_localName = internedLocalName; }

    void SetNamespace(std::string_view namespaceURI);
    void SetNamespace(const std::string& namespaceURI) { SetNamespace(std::string_view(namespaceURI)); }
    void SetNamespace(const char* namespaceURI) { SetNamespace(std::string_view(namespaceURI)); }
    // The URI must come from this document's name table.
    void SetNamespace(const std::string* internedNamespaceURI) noexcept { m_namespaceURI = internedNamespaceURI; }

    // Appends an attribute; duplicates are not checked.
    void AddAttribute(std::string_view localName, std::string_view value, std::string_view namespaceURI);
    void AddAttribute(const std::string& localName, const std::string& value, const std::string& namespaceURI) {
        AddAttribute(std::string_view(localName), std::string_view(value), std::string_view(namespaceURI));
    }
    void AddAttribute(const char* localName, const char* value, const char* namespaceURI) {
        AddAttribute(std::string_view(localName), std::string_view(value), std::string_view(namespaceURI));
    }
    // Names must come from this document's name table.
    void AddAttribute(const std::string* internedLocalName, std::string value,
                      const std::string* internedNamespaceURI);

    void AppendText(const char* text) { AppendText(std::string_view(text)); }
    // A negative length appends nothing.
    void AppendText(const char* text, int length) {
        if (length > 0) AppendText(std::string_view(text, static_cast<std::size_t>(length)));
    }
    void AppendText(std::string_view text);

    // A new empty element of the same document, linked as the last child.
    CXmlElement* CreateNewChildElement();
    // Unlinks the last child and returns it (the caller destroys it with
    // Destroy); null when there is no child. Walks the child list, so it
    // costs the number of children.
    CXmlElement* RemoveLastChildElement() noexcept;
    // Sizes the attribute vector for count attributes in all, so that adding
    // them allocates once.
    void ReserveAttributes(std::size_t count);

    // A new empty element of document, in its node pool.
    static CXmlElement* Create(const CXmlDocument* document);
    // Destroys element, its whole subtree and their attributes, returning the
    // memory to the document's pool. Works without recursion, so any depth is
    // safe. The element must not be linked to a parent.
    static void Destroy(CXmlElement* element) noexcept;

private:
    static const std::vector<CXmlAttribute*> s_noAttributes;

    // Only through Destroy: the memory belongs to the pool.
    ~CXmlElement();
    static void operator delete(void*) noexcept = delete;

    void LinkChild(CXmlElement* child) noexcept;
    // The slow paths of the accessors above, for elements the parser has not
    // finished (only in documents read while binding).
    void WaitUntilClosed() const;
    CXmlElement* FirstElementWhileOpen() const;
    CXmlElement* NextSiblingWhileOpen() const;
    std::vector<CXmlAttribute*>& Attributes();
    void SetText(const std::string* text, bool owned) noexcept;
    // Frees the text when this element owns it; the element then has none.
    void ReleaseText() noexcept;

    // Low bit of m_text: the string lives in the node pool and belongs to this
    // element. Otherwise it is shared: the empty string, or a whitespace run
    // interned by the document (indentation repeats across a whole document).
    static constexpr std::uintptr_t kOwnedText = 1;
    // Second bit of m_text: the parser has started the element and not yet
    // ended it. Set only by readers that bind while parsing.
    static constexpr std::uintptr_t kOpenElement = 2;
    static constexpr std::uintptr_t kTagBits = kOwnedText | kOpenElement;

    const CXmlDocument* m_document;
    CXmlElement* m_nextSibling = nullptr;
    CXmlElement* m_firstChild = nullptr;
    CXmlElement* m_lastChild = nullptr;
    std::vector<CXmlAttribute*>* m_attributes = nullptr;  // allocated on the first attribute
    std::uintptr_t m_text;  // const std::string*, tagged with kOwnedText and kOpenElement
    const std::string* m_localName;
    const std::string* m_namespaceURI;
};

}  // namespace QmXmlLib10
