#include "qmxml/fastinfoset/fi_writer.h"

#include "fastinfoset/fi_layouts.h"
#include "platform/charset.h"
#include "qmxml/core/exception.h"
#include "qmxml/fastinfoset/binary_algorithms.h"

namespace QmXmlLib10 {

namespace {

const char* const kDeclarations[] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};

inline const char* OrEmpty(const char* s) { return s ? s : ""; }

}  // namespace

CFastInfosetWriter::CFastInfosetWriter(CBinaryData& output, const CFastInfosetContext& context,
                                       FInfoDecl declaration)
    : CXmlWriter("CFastInfosetWriter"),
      m_output(output),
      m_attributeMaxAddLength(context.GetAttributeMaxAddLength()),
      m_elementMaxAddLength(context.GetElementMaxAddLength()),
      m_defaultStringEncoding(context.GetDefaultStringEncoding()),
      m_useGeneratedVocabulary(context.GetUseGeneratedVocabulary()),
      m_vocabularyURI(context.GetExternalVocabularyURI()),
      m_declaration(declaration),
      m_localIsUtf8(platform::LocalIsUtf8()) {
    for (std::uint32_t i = 0; i < CFastInfosetContext::EncodingTableSize; ++i) m_encodings[i] = context.GetEncoding(i);
    if (m_useGeneratedVocabulary) m_vocabulary = *context.GetVocabulary();
}

CFastInfosetWriter::~CFastInfosetWriter() { Flush(); }

void CFastInfosetWriter::Flush() noexcept {
    if (m_out.empty()) return;
    try {
        m_output.Append(reinterpret_cast<const unsigned char*>(m_out.data()), static_cast<std::uint32_t>(m_out.size()));
    } catch (...) {
        // Only reached from the destructor after another failure: the octets are lost.
    }
    m_out.clear();
}

// --- Document ------------------------------------------------------------------

void CFastInfosetWriter::StartDocument() {
    if (m_declaration < FInfoDecl_None || m_declaration > FInfoDecl_9) {
        throw CQmInvalidParamException(FormatString("Invalid Fast Infoset declaration [%d]", m_declaration));
    }
    if (m_declaration != FInfoDecl_None) m_out += kDeclarations[m_declaration - 1];
    m_out.append("\xE0\x00\x00\x01", 4);
    if (!m_useGeneratedVocabulary) {
        Out(0x00);
        return;
    }
    // Initial vocabulary holding only the external vocabulary's URI.
    Out(0x20);
    Out(0x10);
    Out(0x00);
    m_octets.clear();
    const std::string& uri = m_vocabularyURI.empty() ? std::string(DefaultVocabularyURI) : m_vocabularyURI;
    platform::LocalToUtf8(uri.data(), uri.size(), m_octets);
    fi_layout::LengthBit2(m_out, 0x00, static_cast<std::uint32_t>(m_octets.size()));
    m_out += m_octets;
}

void CFastInfosetWriter::EndDocument() {
    CXmlWriter::EndDocument();
    Out(m_terminatorPending ? 0xFF : 0xF0);
    m_terminatorPending = false;
    Flush();
}

void CFastInfosetWriter::WritePendingTerminator() {
    if (!m_terminatorPending) return;
    Out(0xF0);
    m_terminatorPending = false;
}

CXmlWriter::CXmlWriterContext& CFastInfosetWriter::RequireContext() const {
    CXmlWriterContext* context = GetCurrentContext();
    if (!context) throw CQmException("An Element has not been opened.");
    return *context;
}

void CFastInfosetWriter::AllocatePrefix(const CXmlWriterContext& context, std::string& prefix) const {
    for (int n = 0; n < 26 * 26; ++n) {
        const char candidate[2] = {static_cast<char>('A' + n / 26), static_cast<char>('A' + n % 26)};
        if (!context.IsPrefixInScope(std::string_view(candidate, 2))) {
            prefix.assign(candidate, 2);
            return;
        }
    }
    for (unsigned n = 0;; ++n) {
        prefix = "NS" + std::to_string(n);
        if (!context.IsPrefixInScope(prefix)) return;
    }
}

// --- Elements and attributes ---------------------------------------------------

void CFastInfosetWriter::StartElement(const char* localName, const char* namespaceURI) {
    CompleteStart();
    WritePendingTerminator();
    CXmlWriter::StartElement(localName, namespaceURI);
    CXmlWriterContext& context = *GetCurrentContext();
    const CXmlWriterContext* parent = context.m_parent;
    const std::string& uri = context.m_namespaceURI;
    m_defaultDeclaration = DefaultDeclaration::None;
    m_attributeCount = 0;
    if (uri.empty()) {
        // A root in no namespace leaves the default namespace undeclared.
        if (parent && context.m_inDefaultNamespace) m_defaultDeclaration = DefaultDeclaration::Undeclare;
        context.m_inDefaultNamespace = false;
    } else if (context.m_inDefaultNamespace && uri == GetDefaultNamespace()) {
        // unprefixed
    } else if (parent && !parent->m_prefix.empty() && parent->m_namespaceURI == uri) {
        context.m_prefix = parent->m_prefix;
    } else if (uri == XmlNamespaceURI) {
        context.m_prefix = "xml";
    } else if (const std::string* prefix = context.FindPrefix(uri); prefix) {
        context.m_prefix = *prefix;
    } else {
        AllocatePrefix(context, context.m_prefix);
        context.AddNamespace(uri, context.m_prefix);
    }
    if (!parent && context.m_inDefaultNamespace) m_defaultDeclaration = DefaultDeclaration::Declare;
}

void CFastInfosetWriter::CompleteStart() {
    CXmlWriterContext* context = GetCurrentContext();
    if (!context || !context->m_startTagOpen) return;
    context->m_startTagOpen = false;
    const bool hasAttributes = m_attributeCount > 0;
    const std::size_t declarations = context->GetOwnNamespaceCount();
    unsigned char high = hasAttributes ? 0x40 : 0x00;
    if (declarations > 0 || m_defaultDeclaration != DefaultDeclaration::None) {
        Out(high | 0x38);
        if (m_defaultDeclaration == DefaultDeclaration::Declare) {
            Out(0xCD);
            WriteIdentifyingString(GetDefaultNamespace(), NameTable::Namespace);
        } else if (m_defaultDeclaration == DefaultDeclaration::Undeclare) {
            Out(0xCC);
        }
        for (std::size_t i = 0; i < declarations; ++i) {
            Out(0xCF);
            WriteIdentifyingString(context->GetOwnNamespacePrefix(i), NameTable::Prefix);
            WriteIdentifyingString(context->GetOwnNamespaceURI(i), NameTable::Namespace);
        }
        Out(0xF0);
        high = 0x00;
    }
    WriteElementName(high, context->m_prefix, context->m_namespaceURI, context->m_localName);
    for (std::size_t i = 0; i < m_attributeCount; ++i) WriteAttribute(m_attributes[i]);
    if (hasAttributes) Out(0xF0);
    m_attributeCount = 0;
    m_defaultDeclaration = DefaultDeclaration::None;
}

void CFastInfosetWriter::WriteIdentifyingString(const std::string& value, NameTable table) {
    if (value.empty()) throw CQmInvalidParamException("Failed to write FastInfoset. A name may not be empty.");
    std::uint32_t index = 0;
    const bool found = table == NameTable::Prefix      ? m_vocabulary.FindPrefixNameIndex(value, index)
                       : table == NameTable::Namespace ? m_vocabulary.FindNamespaceNameIndex(value, index)
                                                       : m_vocabulary.FindLocalNameIndex(value, index);
    if (found) {
        fi_layout::IntegerBit2(m_out, 0x80, index);
        return;
    }
    if (m_localIsUtf8) {
        fi_layout::LengthBit2(m_out, 0x00, static_cast<std::uint32_t>(value.size()));
        m_out += value;
    } else {
        m_octets.clear();
        platform::LocalToUtf8(value.data(), value.size(), m_octets);
        fi_layout::LengthBit2(m_out, 0x00, static_cast<std::uint32_t>(m_octets.size()));
        m_out += m_octets;
    }
    switch (table) {
        case NameTable::Prefix:
            m_vocabulary.AddPrefixName(value);
            break;
        case NameTable::Namespace:
            m_vocabulary.AddNamespaceName(value);
            break;
        case NameTable::Local:
            m_vocabulary.AddLocalName(value);
            break;
    }
}

void CFastInfosetWriter::WriteElementName(unsigned char high, const std::string& prefix, const std::string& uri,
                                          const std::string& localName) {
    std::uint32_t index = 0;
    if (m_vocabulary.GetElementNamesTable().Find(prefix, uri, localName, index)) {
        fi_layout::IntegerBit3(m_out, high, index);
        return;
    }
    Out(high | 0x3C | (prefix.empty() ? 0 : 0x02) | (uri.empty() ? 0 : 0x01));
    if (!prefix.empty()) WriteIdentifyingString(prefix, NameTable::Prefix);
    if (!uri.empty()) WriteIdentifyingString(uri, NameTable::Namespace);
    WriteIdentifyingString(localName, NameTable::Local);
    m_vocabulary.AddElement(prefix, uri, localName);
}

void CFastInfosetWriter::WriteAttribute(const PendingAttribute& a) {
    std::uint32_t index = 0;
    if (m_vocabulary.GetAttributeNamesTable().Find(a.prefix, a.namespaceURI, a.localName, index)) {
        fi_layout::IntegerBit2(m_out, 0x00, index);
    } else {
        Out(0x78 | (a.prefix.empty() ? 0 : 0x02) | (a.namespaceURI.empty() ? 0 : 0x01));
        if (!a.prefix.empty()) WriteIdentifyingString(a.prefix, NameTable::Prefix);
        if (!a.namespaceURI.empty()) WriteIdentifyingString(a.namespaceURI, NameTable::Namespace);
        WriteIdentifyingString(a.localName, NameTable::Local);
        m_vocabulary.AddAttribute(a.prefix, a.namespaceURI, a.localName);
    }
    WriteAttributeValue(a.value, a.itemType);
}

void CFastInfosetWriter::WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                                        ItemType itemType) {
    CXmlWriterContext& context = RequireContext();
    if (!context.m_startTagOpen) throw CQmException("Attributes must be added before elements");
    if (m_attributeCount == m_attributes.size()) m_attributes.emplace_back();
    PendingAttribute& a = m_attributes[m_attributeCount];
    a.localName.assign(OrEmpty(localName));
    a.namespaceURI.assign(OrEmpty(namespaceURI));
    a.value.assign(OrEmpty(value));
    a.itemType = itemType;
    a.prefix.clear();
    if (!a.namespaceURI.empty()) {
        if (a.namespaceURI == XmlNamespaceURI) {
            a.prefix = "xml";
        } else if (const std::string* prefix = context.FindPrefix(a.namespaceURI); prefix) {
            a.prefix = *prefix;
        } else {
            AllocatePrefix(context, a.prefix);
            context.AddNamespace(a.namespaceURI, a.prefix);
        }
    }
    ++m_attributeCount;
}

void CFastInfosetWriter::WriteTypeAttribute(const char* typeName) { WriteAttribute("type", XsiNamespaceURI, typeName); }

void CFastInfosetWriter::WriteNilAttribute() { WriteAttribute("nil", XsiNamespaceURI, "true"); }

void CFastInfosetWriter::WriteText(const char* value, ItemType itemType) {
    if (!value || *value == '\0') return;
    RequireContext();
    CompleteStart();
    WritePendingTerminator();
    m_octets.clear();
    WriteCharacterChunk(value, itemType);
}

void CFastInfosetWriter::EndElement() {
    RequireContext();
    CompleteStart();
    if (m_terminatorPending) {
        Out(0xFF);
        m_terminatorPending = false;
    } else {
        m_terminatorPending = true;
    }
    CXmlWriter::EndElement();
}

// --- Values --------------------------------------------------------------------

void CFastInfosetWriter::AppendRestrictedAlphabetString(const std::string& alphabet, const std::string& value) {
    const std::size_t size = alphabet.size();
    if (size < 2 || size > CFIVocabulary::MaxIndex) {
        throw CQmException(
            "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between 2 and 2^20 "
            "characters.");
    }
    int width = 1;
    while ((std::size_t{1} << width) <= size) ++width;
    if (width != 4 && width != 8) {
        throw CQmException("Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");
    }
    bool highHalf = true;
    for (char c : value) {
        const std::size_t position = alphabet.find(c);
        if (position == std::string::npos) {
            throw CQmException("Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
        }
        if (width == 8) {
            m_octets.push_back(static_cast<char>(position));
        } else if (highHalf) {
            m_octets.push_back(static_cast<char>(position << 4));
            highHalf = false;
        } else {
            m_octets.back() = static_cast<char>(m_octets.back() | static_cast<char>(position));
            highHalf = true;
        }
    }
    // An odd count of 4-bit characters ends with the all-ones terminator.
    if (!highHalf) m_octets.back() = static_cast<char>(m_octets.back() | 0x0F);
}

void CFastInfosetWriter::EncodeValue(const std::string& value, ItemType itemType, bool bit5Placement,
                                     unsigned& discriminant, std::uint32_t& tableIndex) {
    const auto type = static_cast<std::uint32_t>(itemType);
    const EncodedCharacterString encoding =
        type < CFastInfosetContext::EncodingTableSize ? m_encodings[type] : EncodedCharacterString{};
    m_octets.clear();
    tableIndex = 0;
    switch (encoding.kind) {
        case EncodedCharacterString::Kind_Literal:
            break;
        case EncodedCharacterString::Kind_RestrictedAlphabet: {
            const auto& alphabets = m_vocabulary.GetRestrictedAlphabets();
            if (encoding.index < 1 || encoding.index > alphabets.size() || encoding.index > 256) {
                throw CQmException(FormatString("Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]",
                                                static_cast<int>(encoding.index)));
            }
            AppendRestrictedAlphabetString(alphabets[encoding.index - 1], value);
            discriminant = 2;
            tableIndex = encoding.index;
            return;
        }
        case EncodedCharacterString::Kind_EncodingAlgorithm: {
            if (encoding.index < CFastInfosetBinaryData::Algorithm_Hexadecimal ||
                encoding.index > CFastInfosetBinaryData::Algorithm_Cdata) {
                throw CQmException(FormatString("Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]",
                                                static_cast<int>(encoding.index)));
            }
            CFastInfosetBinaryData data;
            data.SetAsEncodedString(encoding.index, value.c_str());
            // No octets (base64 text that does not decode) cannot be written as
            // algorithm data: the text goes out literally instead.
            if (data.GetLength() == 0) break;
            m_octets.assign(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
            discriminant = 3;
            tableIndex = encoding.index;
            return;
        }
        default:
            throw CQmException(bit5Placement ? "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7."
                                             : "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.");
    }
    if (m_defaultStringEncoding != 0) {
        throw CQmException("Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    }
    discriminant = 0;
    platform::LocalToUtf8(value.data(), value.size(), m_octets);
}

void CFastInfosetWriter::WriteAttributeValue(const std::string& value, ItemType itemType) {
    if (value.empty()) {
        fi_layout::IntegerZeroBit2(m_out, 0x80, 0);  // the standard's index zero: the empty string
        return;
    }
    const bool indexable = value.size() < m_attributeMaxAddLength;
    std::uint32_t index = 0;
    if (indexable && m_vocabulary.FindAttributeValueIndex(value, index)) {
        fi_layout::IntegerBit2(m_out, 0x80, index);
        return;
    }
    const bool add = indexable && m_vocabulary.GetAttributeValuesTable().GetCount() < CFIVocabulary::MaxIndex;
    unsigned discriminant = 0;
    std::uint32_t tableIndex = 0;
    EncodeValue(value, itemType, false, discriminant, tableIndex);
    const unsigned char high = add ? 0x40 : 0x00;
    const auto length = static_cast<std::uint32_t>(m_octets.size());
    if (discriminant == 0) {
        fi_layout::LengthBit5(m_out, high, length);
    } else {
        const std::uint32_t i = tableIndex - 1;
        Out(high | static_cast<unsigned char>(discriminant << 4) | static_cast<unsigned char>(i >> 4));
        fi_layout::LengthBit5(m_out, static_cast<unsigned char>((i & 0x0F) << 4), length);
    }
    m_out += m_octets;
    if (add) m_vocabulary.AddAttributeValue(value);
}

void CFastInfosetWriter::WriteCharacterChunk(const std::string& value, ItemType itemType) {
    const bool indexable = value.size() < m_elementMaxAddLength;
    std::uint32_t index = 0;
    if (indexable && m_vocabulary.FindElementValueIndex(value, index)) {
        fi_layout::IntegerBit4(m_out, 0xA0, index);
        return;
    }
    const bool add = indexable && m_vocabulary.GetCharacterChunksTable().GetCount() < CFIVocabulary::MaxIndex;
    unsigned discriminant = 0;
    std::uint32_t tableIndex = 0;
    EncodeValue(value, itemType, true, discriminant, tableIndex);
    const unsigned char high = 0x80 | (add ? 0x10 : 0x00);
    const auto length = static_cast<std::uint32_t>(m_octets.size());
    if (discriminant == 0) {
        fi_layout::LengthBit7(m_out, high, length);
    } else {
        const std::uint32_t i = tableIndex - 1;
        Out(high | static_cast<unsigned char>(discriminant << 2) | static_cast<unsigned char>(i >> 6));
        fi_layout::LengthBit7(m_out, static_cast<unsigned char>((i & 0x3F) << 2), length);
    }
    m_out += m_octets;
    if (add) m_vocabulary.AddElementValue(value);
}

}  // namespace QmXmlLib10
