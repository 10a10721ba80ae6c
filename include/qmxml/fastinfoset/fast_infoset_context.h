// Options of one Fast Infoset encoding or decoding run.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "qmxml/fastinfoset/vocabulary.h"

namespace QmXmlLib10 {

// How values of one item type are written as character content.
struct EncodedCharacterString {
    enum Kind : std::uint32_t {
        Kind_Literal = 0,             // literal string in the default encoding
        Kind_RestrictedAlphabet = 1,  // index is the alphabet's number
        Kind_EncodingAlgorithm = 2,   // index is the algorithm's number
    };
    std::uint32_t kind = 0;
    std::uint32_t index = 0;

    friend bool operator==(const EncodedCharacterString& a, const EncodedCharacterString& b) {
        return a.kind == b.kind && a.index == b.index;
    }
    friend bool operator!=(const EncodedCharacterString& a, const EncodedCharacterString& b) { return !(a == b); }
};

class CFastInfosetContext {
public:
    static constexpr std::uint32_t EncodingTableSize = 29;

    CFastInfosetContext() = default;

    // Values of fewer bytes than this are added to the value tables when
    // first written (so with 6, up to five); longer ones are written
    // literally and never indexed.
    std::uint32_t GetAttributeMaxAddLength() const { return m_attributeMaxAddLength; }
    void SetAttributeMaxAddLength(std::uint32_t length) { m_attributeMaxAddLength = length; }
    std::uint32_t GetElementMaxAddLength() const { return m_elementMaxAddLength; }
    void SetElementMaxAddLength(std::uint32_t length) { m_elementMaxAddLength = length; }

    // Fills the encoding table with typed encodings: algorithms for binary,
    // integer, float and boolean values, restricted alphabets for dates and numbers.
    void SetSuggestedValues();

    unsigned char GetDefaultStringEncoding() const { return m_defaultStringEncoding; }

    // Indexed by ItemType; an index at or beyond EncodingTableSize throws
    // CQmInvalidParamException.
    EncodedCharacterString GetEncoding(std::uint32_t itemType) const;
    void SetEncoding(std::uint32_t itemType, EncodedCharacterString encoding);

    bool GetUseGeneratedVocabulary() const { return m_useGeneratedVocabulary; }
    void SetUseGeneratedVocabulary(bool use) { m_useGeneratedVocabulary = use; }

    std::string GetExternalVocabularyURI() const { return m_externalVocabularyURI; }
    void SetExternalVocabularyURI(std::string uri) { m_externalVocabularyURI = std::move(uri); }

    // The vocabulary that writers and readers start from when the generated
    // vocabulary is in use. Writing and reading never change it: they work on
    // a copy of their own.
    CFIVocabulary* GetVocabulary() { return &m_vocabulary; }
    const CFIVocabulary* GetVocabulary() const { return &m_vocabulary; }

private:
    unsigned char m_defaultStringEncoding = 0;
    EncodedCharacterString m_encodings[EncodingTableSize] = {};
    std::uint32_t m_attributeMaxAddLength = 6;
    std::uint32_t m_elementMaxAddLength = 6;
    bool m_useGeneratedVocabulary = false;
    CFIVocabulary m_vocabulary;
    std::string m_externalVocabularyURI;
};

}  // namespace QmXmlLib10
