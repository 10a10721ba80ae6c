// The writer that produces Fast Infoset (ITU-T X.891) documents.
#pragma once

#include <cstdint>
#include <string>
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
    void StartElement(const char* localName, const char* namespaceURI) override;
    // One character chunk; empty text writes nothing.
    void WriteText(const char* value, ItemType itemType = ItemType_string) override;
    void EndElement() override;
    // Throws "Attributes must be added before elements" once the element has
    // a child or text.
    void WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                        ItemType itemType = ItemType_string) override;
    void WriteTypeAttribute(const char* typeName) override;
    void WriteNilAttribute() override;

    // The writer's vocabulary, as filled so far.
    const CFIVocabulary& GetVocabulary() const { return m_vocabulary; }

private:
    struct PendingAttribute {
        std::string prefix;
        std::string namespaceURI;
        std::string localName;
        std::string value;
        ItemType itemType = ItemType_string;
    };
    // What the pending start of the current element declares besides its
    // context's own namespaces.
    enum class DefaultDeclaration { None, Declare, Undeclare };

    void Out(unsigned char octet) { m_out.push_back(static_cast<char>(octet)); }
    void Flush() noexcept;
    CXmlWriterContext& RequireContext() const;
    void AllocatePrefix(const CXmlWriterContext& context, std::string& prefix) const;
    void WritePendingTerminator();
    void CompleteStart();

    // Prefix, namespace name or local name: index or literal (then added).
    enum class NameTable { Prefix, Namespace, Local };
    void WriteIdentifyingString(const std::string& value, NameTable table);
    void WriteElementName(unsigned char high, const std::string& prefix, const std::string& uri,
                          const std::string& localName);
    void WriteAttribute(const PendingAttribute& attribute);
    // The value's octets under its item type's encoding: the discriminant
    // (0 UTF-8, 2 restricted alphabet, 3 algorithm), the table index or 0,
    // and the octets in m_octets.
    void EncodeValue(const std::string& value, ItemType itemType, bool bit5Placement, unsigned& discriminant,
                     std::uint32_t& tableIndex);
    void AppendRestrictedAlphabetString(const std::string& alphabet, const std::string& value);
    void WriteAttributeValue(const std::string& value, ItemType itemType);
    void WriteCharacterChunk(const std::string& value, ItemType itemType);

    CBinaryData& m_output;
    // The context's options, copied.
    EncodedCharacterString m_encodings[CFastInfosetContext::EncodingTableSize];
    std::uint32_t m_attributeMaxAddLength;
    std::uint32_t m_elementMaxAddLength;
    unsigned char m_defaultStringEncoding;
    bool m_useGeneratedVocabulary;
    std::string m_vocabularyURI;
    FInfoDecl m_declaration;
    std::string m_out;
    bool m_terminatorPending = false;
    CFIVocabulary m_vocabulary;
    const bool m_localIsUtf8;
    DefaultDeclaration m_defaultDeclaration = DefaultDeclaration::None;
    std::vector<PendingAttribute> m_attributes;  // entries past m_attributeCount are spare storage
    std::size_t m_attributeCount = 0;
    std::string m_octets;     // scratch: a value's encoded octets
    std::string m_newPrefix;  // scratch: prefix allocation
};

}  // namespace QmXmlLib10
