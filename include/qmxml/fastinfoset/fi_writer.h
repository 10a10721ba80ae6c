// The writer that produces Fast Infoset (ITU-T X.891) documents.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/fastinfoset/fast_infoset_context.h"
#include "qmxml/fastinfoset/vocabulary.h"
#include "qmxml/types/binary_data.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

// Appends one Fast Infoset document to a CBinaryData (not owned; it must
// outlive the writer). Octets are collected internally and appended at
// EndDocument, or when the writer is destroyed after a failure, so whatever
// was produced before a failure is in the buffer then.
//
// The writer numbers strings and names in its own vocabulary: a copy of the
// context's when the context uses the generated vocabulary, else one with
// only the built-in entries. The context is copied; it never changes.
//
// An element's start stays pending until its first child, text or end, so
// that every namespace declaration it needs goes into its header; attributes
// are collected until then and written in their order. Namespaces are
// declared as the text writer declares them: the default namespace and the
// aliases on the root, a generated prefix "AA", "AB", ... on the element that
// first needs one, xmlns="" for an element in no namespace inside the
// default namespace's scope, and never a declaration for the prefix "xml".
//
// Names and values found in the vocabulary are written by index, in the
// standard's layouts (an element name's index on the third bit, an attribute
// name's on the second). Values shorter than the context's maximum add length
// are added when first written; an empty attribute value is index zero.
// Comments and raw text are not written.
class CFastInfosetWriter : public CXmlWriter {
public:
    // Default external vocabulary URI, written when the context's is empty.
    static constexpr const char* DefaultVocabularyURI = "urn:qmxml:fastinfoset:generated-vocabulary";

    CFastInfosetWriter(CBinaryData& output, const CFastInfosetContext& context,
                       FInfoDecl declaration = FInfoDecl_None);
    ~CFastInfosetWriter() override;

    // The declaration text (when one is chosen), the header and the
    // optional components.
    void StartDocument() override;
    // Throws "An Element has not been closed." while an element is open;
    // otherwise writes the document's terminator and appends the octets.
    void EndDocument() override;
    void WriteComment(const char*) override {}
    void WriteRawLine(const char*) override {}
    void WriteRaw(const char*) override {}
    // Opens the element; its start is written with its first attribute,
    // child, text or its end (see above).
    void StartElement(const char* localName, const char* namespaceURI) override;
    // Kept with the pending start, in order. Throws "Attributes must be added
    // before elements" once the element has a child or text.
    void WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                        ItemType itemType = ItemType_string) override;
    // Completes the start, then one character chunk; empty text writes nothing.
    void WriteText(const char* value, ItemType itemType = ItemType_string) override;
    // Completes the start, then the element's terminator, merged with a pending one.
    void EndElement() override;
    // Where the element needs no namespace declaration (no namespace outside
    // a default namespace's scope, the default namespace, or the parent's
    // prefixed namespace), it is written without opening a context;
    // otherwise as StartElement, WriteText, EndElement.
    void WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                            ItemType itemType = ItemType_string) override;

    // The writer's vocabulary, as filled so far.
    const CFIVocabulary& GetVocabulary() const { return m_vocabulary; }

public:
    // Where a value's bits go: an attribute value or a character chunk (fi_writer.cpp).
    struct Placement;

protected:
    // CQmInvalidParamException "Failed to write FastInfoset. A name may not be empty."
    [[noreturn]] void ThrowEmptyName() const override;

private:
    // An element name's prefix and namespace as indexes into the vocabulary's
    // tables (0: none), or Unresolved when not known. Names are looked up by
    // these and the local name, so a namespace name is neither hashed nor
    // compared again for every element in it.
    static constexpr std::uint32_t Unresolved = 0xFFFFFFFF;
    struct NameParts {
        std::uint32_t prefix;
        std::uint32_t ns;
    };

    // An attribute kept until its element's start is written: its strings
    // lie in m_attributeText, one after the other.
    struct PendingAttribute {
        std::size_t prefixLength;
        std::size_t namespaceLength;
        std::size_t localNameLength;
        std::size_t valueLength;
        ItemType itemType;
    };
    // What the pending start of the current element declares besides its
    // context's own namespaces.
    enum class DefaultDeclaration { None, Declare, Undeclare };

    // Octets written through raw positions: Reserve room, write at most that
    // many octets, Commit the end. std::malloc'd, so the output buffer can
    // adopt the document's whole.
    class COctetBuffer {
    public:
        COctetBuffer() = default;
        ~COctetBuffer() { std::free(m_data); }
        COctetBuffer(const COctetBuffer&) = delete;
        COctetBuffer& operator=(const COctetBuffer&) = delete;

        std::size_t Size() const { return m_size; }
        const unsigned char* Data() const { return m_data; }
        unsigned char* Reserve(std::size_t n) {
            if (m_capacity - m_size < n) Grow(n);
            return m_data + m_size;
        }
        void Commit(unsigned char* end) { m_size = static_cast<std::size_t>(end - m_data); }
        void Put(unsigned char octet) {
            *Reserve(1) = octet;
            ++m_size;
        }
        void Append(const void* octets, std::size_t n) {
            if (n == 0) return;
            std::memcpy(Reserve(n), octets, n);
            m_size += n;
        }
        // The storage, shrunk to the octets, for the caller to std::free.
        unsigned char* Release() noexcept;
        void Clear() noexcept { m_size = 0; }

    private:
        void Grow(std::size_t n);
        unsigned char* m_data = nullptr;
        std::size_t m_size = 0;
        std::size_t m_capacity = 0;
    };

    void Out(unsigned char octet) { m_out.Put(octet); }
    void Flush() noexcept;
    inline void WritePendingTerminator();
    // Writes the current element's pending start, if any.
    void CompleteStart() {
        if (CXmlWriterContext* context = GetCurrentContext(); context && context->m_startTagOpen) WriteStart(*context);
    }
    void WriteStart(CXmlWriterContext& context);

    // Helpers declared inline are defined in the writer's source file and used
    // only there, where the compiler may inline them into the writing paths.

    // Prefix, namespace name or local name: index or literal (then added).
    enum class NameTable { Prefix, Namespace, Local };
    void WriteIdentifyingString(std::string_view value, NameTable table);
    // The namespace declarations of an element's start.
    void WriteDeclarations(unsigned char high, const CXmlWriterContext& context);
    // A name not in the table: its parts, then added; returns its index (0 when
    // the table is full) and sets `parts` to its parts' indexes.
    std::uint32_t WriteLiteralElementName(unsigned char high, std::string_view prefix, std::string_view uri,
                                          std::string_view localName, NameParts& parts);
    // The name of the element at `depth`, whose prefix and namespace are
    // `parts` as far as known.
    inline void WriteElementName(unsigned char high, std::string_view prefix, std::string_view uri,
                                 std::string_view localName, std::size_t depth, NameParts parts);
    // Writes the attribute whose strings start at `text`; returns where the next one's start.
    inline const char* WriteAttribute(const PendingAttribute& attribute, const char* text);
    // The encoding of the item type's values; an unknown item type is literal.
    EncodedCharacterString EncodingOf(ItemType itemType) const {
        const auto type = static_cast<std::uint32_t>(itemType);
        return type < CFastInfosetContext::EncodingTableSize ? m_encodings[type] : EncodedCharacterString{};
    }
    // True when the value's octets are its own bytes: a literal in UTF-8 from UTF-8 local text.
    bool IsVerbatim(const EncodedCharacterString& encoding) const {
        return encoding.kind == EncodedCharacterString::Kind_Literal && m_defaultStringEncoding == 0 && m_localIsUtf8;
    }
    // The value's octets under its item type's encoding: the discriminant
    // (0 UTF-8, 2 restricted alphabet, 3 algorithm), the table index or 0,
    // and the octets in m_octets. value.data() is zero-terminated.
    void EncodeValue(std::string_view value, const EncodedCharacterString& encoding, bool bit5Placement,
                     unsigned& discriminant, std::uint32_t& tableIndex);
    // The value in restricted alphabet `alphabetIndex` (from 1, in the vocabulary).
    void AppendRestrictedAlphabetString(std::uint32_t alphabetIndex, std::string_view value);
    // An attribute value or a character chunk: an index when the table has
    // the value, else the encoded string, added when short enough. Layout
    // is one of the two placements (fi_writer.cpp).
    template <const Placement& Layout>
    inline void WriteValue(std::string_view value, ItemType itemType, CFIStringTable& table, std::uint32_t maxAddLength);
    inline void WriteAttributeValue(std::string_view value, ItemType itemType);
    inline void WriteCharacterChunk(std::string_view value, ItemType itemType);

    CBinaryData& m_output;
    // The context's options, copied.
    EncodedCharacterString m_encodings[CFastInfosetContext::EncodingTableSize];
    std::uint32_t m_attributeMaxAddLength;
    std::uint32_t m_elementMaxAddLength;
    unsigned char m_defaultStringEncoding;
    bool m_useGeneratedVocabulary;
    std::string m_vocabularyURI;
    FInfoDecl m_declaration;
    COctetBuffer m_out;
    bool m_terminatorPending = false;
    CFIVocabulary m_vocabulary;
    const bool m_localIsUtf8;
    DefaultDeclaration m_defaultDeclaration = DefaultDeclaration::None;

    struct ElementKey {
        NameParts parts;
        std::string localName;
        // The name that followed this one as the next sibling, and as the
        // first child, when last written: the guess tried before the hash
        // look-up, since documents repeat their sequences.
        std::uint32_t nextSibling = 0;
        std::uint32_t firstChild = 0;
    };
    // An open element whose name is written.
    struct OpenElement {
        NameParts parts;
        std::uint32_t index;      // in the element-name table; 0 when not indexed
        std::uint32_t lastChild;  // the name index of its last child so far; 0 before the first
    };
    static inline std::size_t HashElementKey(NameParts parts, std::string_view localName);
    void IndexElementName(std::uint32_t index);
    inline bool IsElementName(std::uint32_t index, NameParts parts, std::string_view localName) const;
    inline std::uint32_t FindElementName(NameParts parts, std::string_view localName) const;
    inline std::uint32_t ResolvePrefix(std::string_view prefix) const;
    inline std::uint32_t ResolveNamespace(std::string_view uri) const;
    inline std::uint32_t DefaultNamespaceIndex();
    NameParts m_startParts{0, 0};            // of the element whose start is pending
    std::vector<OpenElement> m_openElements;  // by depth
    std::vector<ElementKey> m_elementKeys;    // each element name of the vocabulary, by index - 1
    fi_detail::CHashIndex m_elementIndex;
    std::uint32_t m_defaultNamespaceIndex = 0;  // 0 until found in the table

    std::vector<PendingAttribute> m_attributes;  // entries past m_attributeCount are spare storage
    std::size_t m_attributeCount = 0;
    COctetBuffer m_attributeText;  // the pending attributes' strings
    std::string m_octets;         // scratch: a value's encoded octets
    std::string m_newPrefix;      // scratch: prefix allocation
    // For each restricted alphabet used so far, each octet's position in it or -1.
    std::vector<std::vector<std::int16_t>> m_alphabetPositions;
};

}  // namespace QmXmlLib10
