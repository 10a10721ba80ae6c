// Decodes a Fast Infoset document into a CXmlDocument, whole or an element
// at a time (as a pull parser for binding while decoding). Internal to the
// library: documents reach it through the document loader.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "dom/expat_reader.h"
#include "dom/xml_stream_source.h"
#include "qmxml/fastinfoset/fi_statistics.h"

namespace QmXmlLib10 {

class CXmlDocument;
class CXmlElement;
class CXmlSerializationContext;
class CFastInfosetContext;
class CFIVocabulary;

class __attribute__((visibility("hidden"))) CFastInfosetReader final : public CXmlPullParser {
public:
    explicit CFastInfosetReader(const CFastInfosetContext& fiContext);
    ~CFastInfosetReader() override;
    CFastInfosetReader(const CFastInfosetReader&) = delete;
    CFastInfosetReader& operator=(const CFastInfosetReader&) = delete;

    // False, with nothing built, when data is not Fast Infoset; throws
    // CQmException when it is but is malformed.
    bool Parse(CXmlDocument& document, const unsigned char* data, std::size_t length);
    // The first half of Parse: false, with nothing read, when data is not
    // Fast Infoset; otherwise reads the header, after which Continue decodes
    // the rest. data must outlive the reader.
    bool Begin(CXmlDocument& document, const unsigned char* data, std::size_t length);

    // CXmlPullParser: Continue decodes until a stop or the document's end.
    void SetStopBelow(std::size_t count) noexcept override { m_stopBelow = count; }
    void StopAtDocumentElement() noexcept override { m_stopAtStart = true; }
    void DiscardEndedElements() noexcept override { m_discard = true; }
    std::size_t GetOpenCount() const noexcept override { return m_open.size(); }
    CXmlElement* GetOpenElement(std::size_t index) const noexcept override { return m_open[index].element; }
    bool Continue() override;
    // Tags elements open from start to end (see CXmlPullParser); for
    // binding while decoding only.
    void MarkOpenElements() noexcept { m_markOpen = true; }

    // The sizes of the working vocabulary's tables, as far as read.
    CFastInfosetStatistics GetStatistics() const;

    // The document loader's hook.
    static bool Load(CXmlDocument& document, const unsigned char* data, std::uint32_t length,
                     const CXmlSerializationContext& context);

private:
    struct QName {
        const std::string* localName;
        const std::string* namespaceURI;
    };
    struct Open {
        CXmlElement* element;
        std::size_t textStart;  // where its text begins in m_text
        CXmlElement* previous;  // its previous sibling, to unlink it when discarding
    };
    // Where decoding stands between two calls of Continue.
    enum class Where {
        Document,   // among the document's children, before or after its element
        Content,    // inside an element
        SecondEnd,  // an 0xFF ended one element and ends the next one too
        Done,
    };
    enum class Table { Prefix, Namespace, Local, OtherNCName, OtherURI };

    unsigned char Byte();
    std::uint32_t Octets(int count);
    const unsigned char* Take(std::uint64_t length);

    std::uint32_t IntegerBit2(unsigned char octet);
    std::uint32_t IntegerZeroBit2(unsigned char octet);
    std::uint32_t IntegerBit3(unsigned char octet);
    std::uint32_t IntegerBit4(unsigned char octet);
    std::uint64_t LengthBit2(unsigned char octet);
    std::uint64_t LengthBit5(unsigned char octet);
    std::uint64_t LengthBit7(unsigned char octet);
    std::uint32_t SequenceLength();

    void ToLocal(const unsigned char* octets, std::size_t length, std::string& out);
    void Utf16ToLocal(const unsigned char* octets, std::size_t length, std::string& out, bool fifthBit);
    void RestrictedAlphabet(std::uint32_t index, const unsigned char* octets, std::size_t length, std::string& out);
    void Algorithm(std::uint32_t index, const unsigned char* octets, std::size_t length, std::string& out);

    const std::string& IdentifyingString(Table table);
    void SkipOctetStringBit2();
    void NonIdentifyingStringBit1(std::vector<std::string>* table, std::uint32_t* count, std::string& out);
    void CharacterChunk(unsigned char octet, std::string& out);
    void EncodedStringBit3(unsigned char octet, std::string& out);
    QName ElementName(unsigned char octet);
    QName AttributeName(unsigned char octet);
    QName LiteralName(unsigned char octet, std::vector<QName>& table);
    void CheckNamespaceName(const std::string& uri) const;
    // "prefix:local" (or local alone) interned, for names read without namespaces.
    const std::string* PlainName(const std::string* prefix, const std::string& local);
    unsigned char NamespaceDeclarations();
    void DeclarationAttributes(CXmlElement* element);

    void OptionalComponents();
    void InitialVocabulary();
    void ProcessingInstruction();
    void Comment();
    bool DocumentTypeDeclaration(unsigned char octet);
    bool StartElement(unsigned char octet);
    // Throws when the open start tag holds one attribute name twice.
    void CheckAttributeNames();
    // Element content up to a stop (true) or until decoding leaves it (false).
    bool Content();
    // StartElement and what follows: true for a stop.
    bool Start(unsigned char octet);
    // Ends the innermost element (and, for an 0xFF, notes that the next one
    // ends as well): true for a stop.
    bool End(bool doubled);
    void CloseElement();
    void Finish();

    void LoadVocabulary();

    std::unique_ptr<CFIVocabulary> m_vocabulary;
    const unsigned char* m_data = nullptr;
    std::size_t m_length = 0;
    std::size_t m_position = 0;
    CXmlDocument* m_document = nullptr;

    // The working vocabulary's tables as the reader indexes them.
    std::vector<std::string> m_alphabets;
    std::vector<std::string> m_prefixes;
    std::vector<std::string> m_namespaces;
    std::vector<std::string> m_localNames;
    std::vector<std::string> m_attributeValues;
    std::vector<std::string> m_chunks;
    std::vector<QName> m_elementNames;
    std::vector<QName> m_attributeNames;
    std::uint32_t m_otherNCNames = 0;
    std::uint32_t m_otherURIs = 0;
    std::uint32_t m_otherStrings = 0;

    std::vector<Open> m_open;
    Where m_where = Where::Done;
    bool m_haveRoot = false;
    std::size_t m_stopBelow = 0;
    bool m_stopAtStart = false;
    bool m_markOpen = false;
    bool m_discard = false;
    std::string m_text;  // the text of the open elements, back to back
    std::string m_scratch;
    std::string m_value;
    CExpatNameCheck m_names;  // literal local names must be names in XML text too
    bool m_colonsInNames = false;
    std::vector<QName> m_elementAttributes;  // the open start tag's, for the duplicate check
    // Without namespace processing: the values of the declarations that become
    // the start tag's first attributes (their names lead m_elementAttributes).
    std::vector<std::string> m_declarationValues;
    std::string m_scratchName;
};

}  // namespace QmXmlLib10
