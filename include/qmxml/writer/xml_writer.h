// The output interface shared by the XML text writer and the Fast Infoset writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/core/instance_monitor.h"

namespace QmXmlLib10 {

class CExpatNameCheck;

namespace writer_detail {
// ASCII name characters without the colon: 1 may start a name, 2 may follow.
struct AsciiNameBits {
    unsigned char bits[256] = {};
    constexpr AsciiNameBits() {
        for (int c = 'A'; c <= 'Z'; ++c) bits[c] = bits[c + ('a' - 'A')] = 3;
        bits[static_cast<unsigned char>('_')] = 3;
        for (int c = '0'; c <= '9'; ++c) bits[c] = 2;
        bits[static_cast<unsigned char>('-')] = bits[static_cast<unsigned char>('.')] = 2;
    }
    constexpr unsigned char operator[](unsigned char c) const { return bits[c]; }
};
inline constexpr AsciiNameBits kAsciiNameBits{};
}  // namespace writer_detail

// Calling order: StartDocument; optionally SetDefaultNamespace and
// AddNamespaceAlias; StartElement; its attributes; its text and children;
// EndElement; ...; EndDocument. The base keeps the namespace settings declared
// on the root and one CXmlWriterContext per open element.
//
// Writers never produce a document that cannot be read back. A text or
// attribute value holding a character XML 1.0 cannot carry (C0 controls other
// than tab, line feed and carriage return; U+FFFE, U+FFFF; malformed UTF-8 or
// encoded surrogates; bytes the local encoding does not define) throws
// CQmInvalidValueException "Invalid character in the value of [%s]" (the
// element's or attribute's local name) before anything of the value, or of
// a text-only element's start tag, is written. Names are refused alike:
// "Invalid name [%s]" for an element or attribute local name or a prefix that
// is not an XML name (colons are allowed only in names in no namespace, as a
// document read without namespace processing has them), and "Invalid
// character in the namespace name [%s]" for a namespace name that holds
// such a character or "|" (which separates the namespace from the local name
// when text is read with namespaces).
class CXmlWriter : public CInstanceMonitor {
public:
    static constexpr const char* XmlNamespaceURI = "http://www.w3.org/XML/1998/namespace";
    static constexpr const char* XsiNamespaceURI = "http://www.w3.org/2001/XMLSchema-instance";

    // One per open element: its name and the namespace declarations in scope.
    // The writer keeps ended contexts for reuse, so writing an element does not
    // allocate once the strings have grown to size.
    class CXmlWriterContext : public CInstanceMonitor {
    public:
        CXmlWriterContext(CXmlWriterContext* parent, const char* localName, const char* namespaceURI);
        // Makes this context a fresh one for a new element, keeping its storage.
        void Reset(CXmlWriterContext* parent, const char* localName, const char* namespaceURI);

        // Child elements written so far (the text writer also counts comments and
        // raw text, which put the end tag on a line of its own).
        std::int32_t m_childCount = 0;
        bool m_startTagOpen = true;
        std::int32_t m_depth = 0;
        std::string m_namespaceURI;
        bool m_hasNamespace = false;
        std::string m_localName;
        CXmlWriterContext* m_parent = nullptr;
        // True while the writer's default namespace applies here: set on the root
        // when there is one, inherited, and cleared below an element written with xmlns="".
        bool m_inDefaultNamespace = false;
        // The prefix the element's name was written with; empty when unprefixed.
        std::string m_prefix;

        // The prefix bound to the URI in scope here; null when none is.
        const std::string* FindPrefix(std::string_view uri) const;
        // True when the prefix is declared here or on an ancestor.
        bool IsPrefixInScope(std::string_view prefix) const;
        // Records a declaration made on this element.
        void AddNamespace(std::string_view uri, std::string_view prefix);
        // This element's own declarations, in the order they were made.
        std::size_t GetOwnNamespaceCount() const { return m_namespaceCount; }
        const std::string& GetOwnNamespaceURI(std::size_t i) const { return m_namespaces[i].uri; }
        const std::string& GetOwnNamespacePrefix(std::size_t i) const { return m_namespaces[i].prefix; }

    private:
        struct Declaration {
            std::string uri;
            std::string prefix;
        };
        // Only this element's own declarations; lookups walk up the parents,
        // which gives the same answers as a full copy per element without the
        // copying. Entries past m_namespaceCount are spare storage.
        std::vector<Declaration> m_namespaces;
        std::size_t m_namespaceCount = 0;
    };

    // The output's characters are checked as what the local strings become:
    // UTF-8 (the local encoding is UTF-8, or ASCIIOnly copies the bytes), or
    // converted from the local encoding. A text writer with ASCIIOnly and
    // UTF-16 output makes each byte one unit (SetBytesAreUnits).
    explicit CXmlWriter(const char* className);
    virtual ~CXmlWriter();
    CXmlWriter(const CXmlWriter&) = delete;
    CXmlWriter& operator=(const CXmlWriter&) = delete;

    virtual void StartDocument() = 0;
    // Throws CQmException "An Element has not been closed." while an element is open.
    virtual void EndDocument();
    // Both are stored only while no element is open and ignored afterwards.
    // The XML namespace is never the default (its elements take "xml:").
    virtual void SetDefaultNamespace(const char* namespaceURI);
    virtual void AddNamespaceAlias(const char* alias, const char* namespaceURI);
    virtual void WriteComment(const char* text) = 0;
    virtual void WriteRawLine(const char* text) = 0;
    virtual void WriteRaw(const char* text) = 0;
    // Pushes a context for the new element. The root's context starts with the
    // alias map (except the XML namespace, whose prefix "xml" is never declared,
    // and empty aliases) and is in the default namespace when one is set.
    virtual void StartElement(const char* localName, const char* namespaceURI);
    virtual void WriteText(const char* value, ItemType itemType = ItemType_string) = 0;
    // An element holding text only: StartElement, WriteText, EndElement, which
    // is what the base does; writers may do it in one step.
    virtual void WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                                    ItemType itemType = ItemType_string);
    // Pops the innermost context; throws "An Element has not been opened." when none is.
    virtual void EndElement();
    virtual void WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                                ItemType itemType = ItemType_string) = 0;
    // xsi:type="typeName" and xsi:nil="true", through WriteAttribute.
    virtual void WriteTypeAttribute(const char* typeName);
    // The text that names {namespaceURI}localName in a value of the element
    // whose start tag is open (xsi:type): the local name alone in no
    // namespace or in the default namespace in scope, else prefixed with the
    // prefix in scope for the namespace, a new one being declared on the
    // element when there is none. A name in no namespace inside a default
    // namespace cannot be written (no prefix stands for no namespace) and
    // stays unprefixed. Throws "Attributes must be added before elements"
    // once the start tag is closed.
    std::string QualifyName(const char* namespaceURI, const char* localName);
    // Declares prefix for namespaceURI on the element whose start tag is open,
    // so that values below it may use the prefix (QName values a document
    // brought along). False, and nothing declared, when the prefix is
    // already in scope, is "xml" or "xmlns", is empty or is not a name, or
    // the URI is empty. Throws "Attributes must be added before elements"
    // once the start tag is closed.
    bool DeclarePrefix(const char* prefix, const char* namespaceURI);
    virtual void WriteNilAttribute();

    const std::string& GetDefaultNamespace() const { return m_defaultNamespaceURI; }
    // URI -> alias pairs declared on the root element.
    const std::map<std::string, std::string>& GetNamespaceAliases() const { return m_namespaceAliases; }

protected:
    CXmlWriterContext* GetCurrentContext() const { return m_current; }
    // The open element; throws "An Element has not been opened." when none is.
    CXmlWriterContext& RequireContext() const {
        if (!m_current) ThrowNotOpened();
        return *m_current;
    }
    // The element an attribute goes on; throws "Attributes must be added
    // before elements" once a child or text has closed its start tag.
    CXmlWriterContext& RequireStartTag() const;
    // The default namespace in scope at the context: the writer's, or empty.
    const std::string& GetDefaultNamespaceInScope(const CXmlWriterContext& context) const;
    // A prefix not in scope at the context: "AA", "AB", ... "ZZ", then "NS0", "NS1", ...
    static void AllocatePrefix(const CXmlWriterContext& context, std::string& prefix);

    // How StartElement named the element just opened (its context's m_prefix
    // is set accordingly): in no namespace (Undeclare: with xmlns="" as it is
    // inside the default namespace's scope), in the default namespace, with
    // the parent's prefix, with a prefix in scope or "xml", or with a new
    // prefix, declared on this element (the last of its own declarations).
    enum class ElementNaming { NoNamespace, Undeclare, DefaultNamespace, ParentPrefix, PrefixInScope, NewPrefix };
    ElementNaming GetElementNaming() const { return m_naming; }
    // The prefix of an attribute of the current element in the namespace
    // (null for none); a new prefix is allocated, recorded on the element and
    // `declared` set. The string lives until the next call.
    const std::string* AttributePrefix(CXmlWriterContext& context, std::string_view namespaceURI, bool& declared);
    // Called by QualifyName when it declared a prefix on the open start tag:
    // writers that write the tag as it goes write the declaration here.
    virtual void WritePrefixDeclaration(const std::string& prefix, std::string_view namespaceURI);

    // Throws "Invalid character in the value of [%s]" (name) when the value
    // holds a character the output cannot carry; cheap for printable ASCII.
    void CheckValue(const char* value, std::size_t length, std::string_view name) const {
        if (!IsWritable(value, length)) ThrowInvalidValue(name);
    }
    bool IsWritable(const char* text, std::size_t length) const;
    [[noreturn]] static void ThrowInvalidValue(std::string_view name);
    [[noreturn]] static void ThrowNotOpened();
    // Throws "Invalid name [%s]" unless the name is an XML name; with colons
    // only when `colons`. Every element and attribute pays for it, so the
    // common names (ASCII letters, digits, "_", "-", ".") take one table pass inline.
    void CheckName(std::string_view name, bool colons) const {
        if (!IsPlainAsciiName(name)) CheckNameSlow(name, colons);
    }
    void CheckNameSlow(std::string_view name, bool colons) const;
    static bool IsPlainAsciiName(std::string_view name) {
        using writer_detail::kAsciiNameBits;
        if (name.empty() || (kAsciiNameBits[static_cast<unsigned char>(name[0])] & 1) == 0) return false;
        for (std::size_t i = 1; i < name.size(); ++i)
            if (kAsciiNameBits[static_cast<unsigned char>(name[i])] == 0) return false;
        return true;
    }
    // An empty name: CQmInvalidValueException "Invalid name []" unless a writer says otherwise.
    [[noreturn]] virtual void ThrowEmptyName() const;
    // A prefix to declare: a name without colons, neither "xmlns" nor "xml".
    void CheckPrefix(std::string_view prefix) const;
    // Throws "Invalid character in the namespace name [%s]".
    void CheckNamespaceName(std::string_view uri) const;
    void SetBytesAreUnits(bool on) { m_bytesAreUnits = on; }

    // How a child of the current element in namespaceURI is named when
    // StartElement would declare nothing for it: without a prefix (in no
    // namespace, or in the default one in scope) or with the parent's prefix.
    // Declaration: StartElement would declare something (or there is no parent).
    enum class ChildName { Declaration, NoNamespace, DefaultNamespace, ParentPrefix };
    ChildName ClassifyChildName(std::string_view namespaceURI) const;

private:
    std::string m_defaultNamespaceURI;
    CXmlWriterContext* m_current = nullptr;
    std::map<std::string, std::string> m_namespaceAliases;
    // Contexts by depth; the first m_openCount are open, the rest are kept for reuse.
    std::vector<std::unique_ptr<CXmlWriterContext>> m_contexts;
    std::size_t m_openCount = 0;
    ElementNaming m_naming = ElementNaming::NoNamespace;
    std::string m_attributePrefix;  // AttributePrefix's allocation
    const bool m_localIsUtf8;
    bool m_bytesAreUnits = false;
    mutable std::string m_utf8;  // a value converted from the local encoding, to check it
    mutable std::unique_ptr<CExpatNameCheck> m_names;  // for names beyond ASCII
};

}  // namespace QmXmlLib10
