#include "fastinfoset/fi_reader.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>

#include "dom/xml_document_loading.h"
#include "fastinfoset/fi_layouts.h"
#include "platform/charset.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_tree_builder.h"
#include "qmxml/fastinfoset/binary_algorithms.h"
#include "qmxml/fastinfoset/fast_infoset_context.h"
#include "qmxml/fastinfoset/vocabulary.h"

namespace QmXmlLib10 {

namespace {


[[noreturn]] void Fail(const char* what) { throw CQmException(std::string("Failed to parse FastInfoset. ") + what); }

[[noreturn]] void BadIndex() { Fail("Index out of range."); }

constexpr std::string_view kXmlnsNamespace = "http://www.w3.org/2000/xmlns/";

[[noreturn]] void BadCharacters() {
    Fail("Invalid character string: malformed UTF-8 or UTF-16, or a character that XML does not allow.");
}

template <class T>
const T& At(const std::vector<T>& table, std::uint32_t index) {
    if (index < 1 || index > table.size()) BadIndex();
    return table[index - 1];
}

// Registered when the library is loaded, so every file and stream entry point
// accepts Fast Infoset.
struct Registration {
    Registration() { CXmlDocumentLoading::SetFastInfosetLoader(&CFastInfosetReader::Load); }
} g_registration;

}  // namespace

CFastInfosetReader::CFastInfosetReader(const CFastInfosetContext& fiContext)
    : m_vocabulary(std::make_unique<CFIVocabulary>()) {
    if (fiContext.GetUseGeneratedVocabulary()) *m_vocabulary = *fiContext.GetVocabulary();
}

CFastInfosetReader::~CFastInfosetReader() = default;

bool CFastInfosetReader::Load(CXmlDocument& document, const unsigned char* data, std::uint32_t length,
                              const CXmlSerializationContext& context) {
    if (!CXmlDocumentLoading::IsStreamingRequested(document)) {
        CFastInfosetReader reader(context.GetFIContext());
        return reader.Parse(document, data, length);
    }
    // Binding while decoding: the document keeps the reader, which decodes
    // on as the tree's accessors ask.
    auto reader = std::make_unique<CFastInfosetReader>(context.GetFIContext());
    if (!reader->Begin(document, data, length)) return false;
    reader->MarkOpenElements();
    CXmlStreamSource& stream = CXmlDocumentLoading::SetStream(document, CXmlStreamSource::Create(std::move(reader)));
    stream.ReadToDocumentElement();
    return true;
}

void CFastInfosetReader::LoadVocabulary() {
    const CFIVocabulary& v = *m_vocabulary;
    m_alphabets = v.GetRestrictedAlphabets();
    m_prefixes = v.GetPrefixNamesTable().GetStrings();
    m_namespaces = v.GetNamespaceNamesTable().GetStrings();
    m_localNames = v.GetLocalNamesTable().GetStrings();
    m_attributeValues = v.GetAttributeValuesTable().GetStrings();
    m_chunks = v.GetCharacterChunksTable().GetStrings();
    auto names = [&](const CFIQNameTable& from, std::vector<QName>& to) {
        to.clear();
        for (const CQNameParts& parts : from.GetNames()) {
            const std::string* local = &At(m_localNames, parts.localNameIndex);
            const std::string* ns = parts.namespaceIndex == 0 ? nullptr : &At(m_namespaces, parts.namespaceIndex);
            to.push_back({CXmlTreeBuilder::Intern(*m_document, *local),
                          CXmlTreeBuilder::Intern(*m_document, ns ? std::string_view(*ns) : std::string_view())});
        }
    };
    names(v.GetElementNamesTable(), m_elementNames);
    names(v.GetAttributeNamesTable(), m_attributeNames);
    m_otherNCNames = m_otherURIs = m_otherStrings = 0;
}

bool CFastInfosetReader::Parse(CXmlDocument& document, const unsigned char* data, std::size_t length) {
    if (!Begin(document, data, length)) return false;
    while (Continue()) {
    }
    return true;
}

bool CFastInfosetReader::Begin(CXmlDocument& document, const unsigned char* data, std::size_t length) {
    // Without namespace processing a name may hold colons, as in XML text.
    m_colonsInNames = CXmlDocumentLoading::GetSchemaType(document) == SchemaType_NoNamespaces;
    std::size_t start = 0;
    auto identified = [&](std::size_t at) {
        return length > at + 4 && std::memcmp(data + at, fi_layout::kIdentification, 4) == 0;
    };
    if (!identified(0)) {
        bool declared = false;
        for (const char* declaration : fi_layout::kDeclarations) {
            const std::size_t n = std::strlen(declaration);
            if (length >= n && std::memcmp(data, declaration, n) == 0) {
                start = n;
                declared = true;
                break;
            }
        }
        if (!declared || !identified(start)) return false;
    }
    m_document = &document;
    m_data = data;
    m_length = length;
    m_position = start + 4;
    m_open.clear();
    m_text.clear();
    m_scratch.clear();
    m_scratch.reserve(1024);
    m_where = Where::Document;
    m_haveRoot = false;
    LoadVocabulary();
    OptionalComponents();
    return true;
}

// Decodes on from where the last call stopped: the document's children (its
// element, processing instructions, comments, a document type declaration)
// up to the terminator, the element's content through Content. The tree
// path calls it once, with no stop set.
bool CFastInfosetReader::Continue() {
    for (;;) {
        switch (m_where) {
            case Where::Done:
                return false;
            case Where::Content:
                if (Content()) return true;
                break;
            case Where::SecondEnd:
                if (End(false)) return true;
                break;
            case Where::Document: {
                const unsigned char octet = Byte();
                if (octet == 0xF0 || octet == 0xFF) {
                    Finish();
                } else if (octet < 0x80) {
                    if (m_haveRoot) Fail("Invalid Encoding of Element type.");
                    m_haveRoot = true;
                    m_where = Where::Content;
                    if (Start(octet)) return true;
                } else if (octet == 0xE1) {
                    ProcessingInstruction();
                } else if (octet == 0xE2) {
                    Comment();
                } else if ((octet & 0xFC) == 0xC4) {
                    if (DocumentTypeDeclaration(octet)) Finish();
                } else {
                    Fail("Invalid Encoding of Element type.");
                }
                break;
            }
        }
    }
}

void CFastInfosetReader::Finish() {
    m_where = Where::Done;
    std::string().swap(m_scratch);
    CXmlDocumentLoading::SetFastInfosetStatistics(*m_document, GetStatistics());
}

CFastInfosetStatistics CFastInfosetReader::GetStatistics() const {
    CFastInfosetStatistics statistics;
    auto count = [](const auto& table) { return static_cast<std::uint32_t>(table.size()); };
    statistics.elementNames = count(m_elementNames);
    statistics.attributeNames = count(m_attributeNames);
    statistics.prefixes = count(m_prefixes);
    statistics.namespaceNames = count(m_namespaces);
    statistics.localNames = count(m_localNames);
    statistics.otherNCNames = m_otherNCNames;
    statistics.otherURIs = m_otherURIs;
    statistics.attributeValues = count(m_attributeValues);
    statistics.characterChunks = count(m_chunks);
    statistics.otherStrings = m_otherStrings;
    statistics.restrictedAlphabets = count(m_alphabets);
    return statistics;
}

// --- Octets --------------------------------------------------------------------

unsigned char CFastInfosetReader::Byte() {
    if (m_position >= m_length) Fail("Unexpected End of File.");
    return m_data[m_position++];
}

std::uint32_t CFastInfosetReader::Octets(int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = (value << 8) | Byte();
    return value;
}

const unsigned char* CFastInfosetReader::Take(std::uint64_t length) {
    if (length > m_length - m_position) Fail("Unexpected End of File.");
    const unsigned char* p = m_data + m_position;
    m_position += static_cast<std::size_t>(length);
    return p;
}

// --- Integers and lengths --------------------------------------------------------

std::uint32_t CFastInfosetReader::IntegerBit2(unsigned char octet) {
    if ((octet & 0x40) == 0) return (octet & 0x3Fu) + 1;
    if ((octet & 0x60) == 0x40) return (((octet & 0x1Fu) << 8) | Byte()) + 65;
    if ((octet & 0x70) == 0x60) return (((octet & 0x0Fu) << 16) | Octets(2)) + 8257;
    Fail("Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
}

std::uint32_t CFastInfosetReader::IntegerZeroBit2(unsigned char octet) {
    if ((octet & 0x7F) == 0x7F) return 0;
    if ((octet & 0x70) == 0x70) Fail("Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.");
    return IntegerBit2(octet);
}

std::uint32_t CFastInfosetReader::IntegerBit3(unsigned char octet) {
    if ((octet & 0x20) == 0) return (octet & 0x1Fu) + 1;
    if ((octet & 0x38) == 0x20) return (((octet & 0x07u) << 8) | Byte()) + 33;
    if ((octet & 0x38) == 0x28) return (((octet & 0x07u) << 16) | Octets(2)) + 2081;
    if ((octet & 0x3F) == 0x30) return (Octets(3) & 0xFFFFFu) + 526369;
    Fail("Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.");
}

std::uint32_t CFastInfosetReader::IntegerBit4(unsigned char octet) {
    if ((octet & 0x10) == 0) return (octet & 0x0Fu) + 1;
    if ((octet & 0x1C) == 0x10) return (((octet & 0x03u) << 8) | Byte()) + 17;
    if ((octet & 0x1C) == 0x14) return (((octet & 0x03u) << 16) | Octets(2)) + 1041;
    if ((octet & 0x1F) == 0x18) return (Octets(3) & 0xFFFFFu) + 263185;
    Fail("Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.");
}

std::uint64_t CFastInfosetReader::LengthBit2(unsigned char octet) {
    if ((octet & 0x40) == 0) return (octet & 0x3Fu) + 1;
    if ((octet & 0x7F) == 0x40) return std::uint64_t{Byte()} + 65;
    if ((octet & 0x7F) == 0x60) return std::uint64_t{Octets(4)} + 321;
    Fail("Invalid NonEmptyOctetString type  on the second bit of an octet.");
}

std::uint64_t CFastInfosetReader::LengthBit5(unsigned char octet) {
    if ((octet & 0x08) == 0) return (octet & 0x07u) + 1;
    if ((octet & 0x0F) == 0x08) return std::uint64_t{Byte()} + 9;
    if ((octet & 0x0F) == 0x0C) return std::uint64_t{Octets(4)} + 265;
    Fail("Invalid NonEmptyOctetString type  on the fifth bit of an octet.");
}

std::uint64_t CFastInfosetReader::LengthBit7(unsigned char octet) {
    switch (octet & 0x03) {
        case 0:
        case 1:
            return (octet & 0x03u) + 1;
        case 2:
            return std::uint64_t{Byte()} + 3;
        default:
            return std::uint64_t{Octets(4)} + 259;
    }
}

// The standard's length of a sequence-of: 1 to 128 in one octet, then 20 bits.
std::uint32_t CFastInfosetReader::SequenceLength() {
    const unsigned char octet = Byte();
    if ((octet & 0x80) == 0) return octet + 1u;
    return (((octet & 0x0Fu) << 16) | Octets(2)) + 129;
}

// --- Strings ---------------------------------------------------------------------

void CFastInfosetReader::ToLocal(const unsigned char* octets, std::size_t length, std::string& out) {
    // What could not be written as XML text is not taken in either.
    if (!platform::IsXmlUtf8(reinterpret_cast<const char*>(octets), length)) BadCharacters();
    platform::Utf8ToLocal(reinterpret_cast<const char*>(octets), length, out);
}

void CFastInfosetReader::Utf16ToLocal(const unsigned char* octets, std::size_t length, std::string& out,
                                      bool fifthBit) {
    if (length % 2 != 0) {
        Fail(fifthBit ? "Invalid EncodedCharacterString type  on the fifth bit of an octet."
                      : "Invalid EncodedCharacterString type  on the third bit of an octet.");
    }
    std::vector<unsigned short> units(length / 2);
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<unsigned short>((octets[2 * i] << 8) | octets[2 * i + 1]);
    m_scratch.clear();
    try {
        platform::Utf16ToUtf8(units.data(), units.size(), m_scratch);
    } catch (const CQmInvalidValueException&) {
        BadCharacters();
    }
    if (!platform::IsXmlUtf8(m_scratch.data(), m_scratch.size())) BadCharacters();
    platform::Utf8ToLocal(m_scratch.data(), m_scratch.size(), out);
}

void CFastInfosetReader::RestrictedAlphabet(std::uint32_t index, const unsigned char* octets, std::size_t length,
                                            std::string& out) {
    const std::string& alphabet = At(m_alphabets, index);
    const std::size_t size = alphabet.size();
    if (size < 2 || size > CFIVocabulary::MaxIndex) {
        Fail("Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and 2^20 characters.");
    }
    // All-ones is the terminator, so the width leaves room for it.
    unsigned width = 1;
    while ((std::size_t{1} << width) <= size) ++width;
    const std::uint32_t ones = (1u << width) - 1;
    std::uint32_t buffer = 0;
    unsigned bits = 0;
    for (std::size_t i = 0; i < length; ++i) {
        buffer = (buffer << 8) | octets[i];
        bits += 8;
        while (bits >= width) {
            const std::uint32_t c = (buffer >> (bits - width)) & ones;
            bits -= width;
            buffer &= (1u << bits) - 1;
            if (c == ones) return;
            if (c >= size) Fail("Invalid Encoding of Restricted Alphabet. Character outside the alphabet.");
            out += alphabet[c];
        }
    }
}

void CFastInfosetReader::Algorithm(std::uint32_t index, const unsigned char* octets, std::size_t length,
                                   std::string& out) {
    // The other algorithms give digits and letters; cdata carries text as it is.
    if (index == CFastInfosetBinaryData::Algorithm_Cdata &&
        !platform::IsXmlUtf8(reinterpret_cast<const char*>(octets), length))
        BadCharacters();
    CFastInfosetBinaryData data(const_cast<unsigned char*>(octets), static_cast<std::uint32_t>(length), false);
    out += data.GetAsString(index);
}

const std::string& CFastInfosetReader::IdentifyingString(Table table) {
    const unsigned char octet = Byte();
    std::vector<std::string>* strings = table == Table::Prefix      ? &m_prefixes
                                        : table == Table::Namespace ? &m_namespaces
                                        : table == Table::Local     ? &m_localNames
                                                                    : nullptr;
    if (octet & 0x80) {
        const std::uint32_t index = IntegerBit2(octet);
        if (strings) return At(*strings, index);
        const std::uint32_t count = table == Table::OtherNCName ? m_otherNCNames : m_otherURIs;
        if (index > count) BadIndex();
        m_value.clear();
        return m_value;
    }
    const std::uint64_t length = LengthBit2(octet);
    const unsigned char* p = Take(length);
    if (!strings) {
        ++(table == Table::OtherNCName ? m_otherNCNames : m_otherURIs);
        m_value.clear();
        return m_value;
    }
    std::string value;
    ToLocal(p, static_cast<std::size_t>(length), value);
    if (table == Table::Local &&
        !m_names.IsName(reinterpret_cast<const char*>(p), static_cast<std::size_t>(length), m_colonsInNames))
        Fail("Invalid local name: not a name that XML text allows.");
    if (strings->size() >= CFIVocabulary::MaxIndex) BadIndex();
    strings->push_back(std::move(value));
    return strings->back();
}

void CFastInfosetReader::SkipOctetStringBit2() { Take(LengthBit2(Byte())); }

void CFastInfosetReader::EncodedStringBit3(unsigned char octet, std::string& out) {
    const unsigned discriminant = (octet >> 4) & 0x03;
    if (discriminant <= 1) {
        const std::uint64_t length = LengthBit5(octet);
        const unsigned char* p = Take(length);
        if (discriminant == 0) {
            ToLocal(p, static_cast<std::size_t>(length), out);
        } else {
            Utf16ToLocal(p, static_cast<std::size_t>(length), out, false);
        }
        return;
    }
    const unsigned char next = Byte();
    const std::uint32_t index = (((octet & 0x0Fu) << 4) | (next >> 4)) + 1;
    const std::uint64_t length = LengthBit5(next);
    const unsigned char* p = Take(length);
    if (discriminant == 2) {
        RestrictedAlphabet(index, p, static_cast<std::size_t>(length), out);
    } else {
        Algorithm(index, p, static_cast<std::size_t>(length), out);
    }
}

void CFastInfosetReader::NonIdentifyingStringBit1(std::vector<std::string>* table, std::uint32_t* count,
                                                  std::string& out) {
    out.clear();
    const unsigned char octet = Byte();
    if (octet & 0x80) {
        const std::uint32_t index = IntegerZeroBit2(octet);
        if (index == 0) return;
        if (table) {
            out = At(*table, index);
        } else if (index > *count) {
            BadIndex();
        }
        return;
    }
    EncodedStringBit3(octet, out);
    if (octet & 0x40) {
        if (table) {
            if (table->size() < CFIVocabulary::MaxIndex) table->push_back(out);
        } else {
            ++*count;
        }
    }
}

void CFastInfosetReader::CharacterChunk(unsigned char octet, std::string& out) {
    if (octet & 0x20) {
        out += At(m_chunks, IntegerBit4(octet));
        return;
    }
    const std::size_t start = out.size();
    const unsigned discriminant = (octet >> 2) & 0x03;
    if (discriminant <= 1) {
        const std::uint64_t length = LengthBit7(octet);
        const unsigned char* p = Take(length);
        if (discriminant == 0) {
            ToLocal(p, static_cast<std::size_t>(length), out);
        } else {
            Utf16ToLocal(p, static_cast<std::size_t>(length), out, true);
        }
    } else {
        const unsigned char next = Byte();
        const std::uint32_t index = (((octet & 0x03u) << 6) | (next >> 2)) + 1;
        const std::uint64_t length = LengthBit7(next);
        const unsigned char* p = Take(length);
        if (discriminant == 2) {
            RestrictedAlphabet(index, p, static_cast<std::size_t>(length), out);
        } else {
            Algorithm(index, p, static_cast<std::size_t>(length), out);
        }
    }
    if ((octet & 0x10) && m_chunks.size() < CFIVocabulary::MaxIndex) m_chunks.push_back(out.substr(start));
}

// --- Names -----------------------------------------------------------------------

// The text reader hands names to Expat with "|" between namespace and local
// name, and Expat then refuses namespace names that hold it; refusing them
// here too keeps documents read from Fast Infoset writable as text that reads back.
void CFastInfosetReader::CheckNamespaceName(const std::string& uri) const {
    if (!m_colonsInNames && uri.find('|') != std::string::npos)
        Fail("Invalid namespace name: holds the character |, which XML text read with namespaces does not allow.");
}

CFastInfosetReader::QName CFastInfosetReader::LiteralName(unsigned char octet, std::vector<QName>& table) {
    if ((octet & 0x03) == 0x02) Fail("Invalid QName type Prefix without Namespace.");
    // The prefix table is not touched by the reads below, so the reference holds.
    const std::string* prefix = (octet & 0x02) ? &IdentifyingString(Table::Prefix) : nullptr;
    const std::string* ns = nullptr;
    if (octet & 0x01) ns = &IdentifyingString(Table::Namespace);
    if (m_colonsInNames) {
        // Without namespace processing text gives names whole, prefix included,
        // and no namespace; the same tree comes from here.
        const std::string& local = IdentifyingString(Table::Local);
        const QName result{PlainName(prefix, local), CXmlTreeBuilder::Intern(*m_document, std::string_view())};
        if (table.size() < CFIVocabulary::MaxIndex) table.push_back(result);
        return result;
    }
    // Expat refuses to bind anything to the declarations' own namespace.
    if (ns != nullptr && *ns == kXmlnsNamespace) Fail("Invalid name: in the namespace reserved for declarations.");
    if (ns != nullptr) CheckNamespaceName(*ns);
    const QName name{nullptr, CXmlTreeBuilder::Intern(*m_document, ns ? std::string_view(*ns) : std::string_view())};
    const std::string& local = IdentifyingString(Table::Local);
    const QName result{CXmlTreeBuilder::Intern(*m_document, local), name.namespaceURI};
    if (table.size() < CFIVocabulary::MaxIndex) table.push_back(result);
    return result;
}

const std::string* CFastInfosetReader::PlainName(const std::string* prefix, const std::string& local) {
    if (prefix == nullptr) return CXmlTreeBuilder::Intern(*m_document, local);
    m_scratchName.assign(*prefix).append(1, ':').append(local);
    if (!m_names.IsName(m_scratchName.data(), m_scratchName.size(), true))
        Fail("Invalid local name: not a name that XML text allows.");
    return CXmlTreeBuilder::Intern(*m_document, m_scratchName);
}

CFastInfosetReader::QName CFastInfosetReader::ElementName(unsigned char octet) {
    if ((octet & 0x3C) == 0x3C) return LiteralName(octet, m_elementNames);
    return At(m_elementNames, IntegerBit3(octet));
}

CFastInfosetReader::QName CFastInfosetReader::AttributeName(unsigned char octet) {
    if ((octet & 0x7C) == 0x78) return LiteralName(octet, m_attributeNames);
    return At(m_attributeNames, IntegerBit2(octet));
}

// --- Document structure ------------------------------------------------------------

void CFastInfosetReader::OptionalComponents() {
    const unsigned char present = Byte();
    if (present & 0x40) {
        for (std::uint32_t n = SequenceLength(); n > 0; --n) {
            SkipOctetStringBit2();
            SkipOctetStringBit2();
        }
    }
    if (present & 0x20) InitialVocabulary();
    if (present & 0x10) {
        for (;;) {
            const unsigned char octet = Byte();
            if (octet == 0xF0) break;
            if ((octet & 0xFC) != 0xC0) Fail("Invalid Encoding of Element type.");
            IdentifyingString(Table::OtherNCName);
            if (octet & 0x02) IdentifyingString(Table::OtherURI);
            if (octet & 0x01) IdentifyingString(Table::OtherURI);
        }
    }
    if (present & 0x08) {
        for (;;) {
            const unsigned char octet = Byte();
            if (octet == 0xF0) break;
            if ((octet & 0xFE) != 0xD0) Fail("Invalid Encoding of Element type.");
            IdentifyingString(Table::OtherNCName);
            IdentifyingString(Table::OtherURI);
            if (octet & 0x01) IdentifyingString(Table::OtherURI);
            IdentifyingString(Table::OtherNCName);
        }
    }
    if (present & 0x04) SkipOctetStringBit2();
    if (present & 0x02) Byte();
    if (present & 0x01) NonIdentifyingStringBit1(nullptr, &m_otherStrings, m_value);
}

// Read and discarded: a declared vocabulary is never resolved or merged.
void CFastInfosetReader::InitialVocabulary() {
    const unsigned char first = Byte();
    const unsigned char second = Byte();
    if (first & 0x10) SkipOctetStringBit2();
    auto octetStrings = [&](bool present) {
        if (!present) return;
        for (std::uint32_t n = SequenceLength(); n > 0; --n) SkipOctetStringBit2();
    };
    octetStrings(first & 0x08);
    octetStrings(first & 0x04);
    octetStrings(first & 0x02);
    octetStrings(first & 0x01);
    octetStrings(second & 0x80);
    octetStrings(second & 0x40);
    octetStrings(second & 0x20);
    std::string discarded;
    for (unsigned char bit : {0x10, 0x08, 0x04}) {
        if (!(second & bit)) continue;
        for (std::uint32_t n = SequenceLength(); n > 0; --n) {
            discarded.clear();
            EncodedStringBit3(Byte(), discarded);
        }
    }
    for (unsigned char bit : {0x02, 0x01}) {
        if (!(second & bit)) continue;
        for (std::uint32_t n = SequenceLength(); n > 0; --n) {
            const unsigned char parts = Byte();
            if (parts & 0x02) IntegerBit2(Byte());
            if (parts & 0x01) IntegerBit2(Byte());
            IntegerBit2(Byte());
        }
    }
}

void CFastInfosetReader::ProcessingInstruction() {
    IdentifyingString(Table::OtherNCName);
    NonIdentifyingStringBit1(nullptr, &m_otherStrings, m_value);
}

void CFastInfosetReader::Comment() { NonIdentifyingStringBit1(nullptr, &m_otherStrings, m_value); }

bool CFastInfosetReader::DocumentTypeDeclaration(unsigned char octet) {
    if (octet & 0x02) IdentifyingString(Table::OtherURI);
    if (octet & 0x01) IdentifyingString(Table::OtherURI);
    for (;;) {
        const unsigned char next = Byte();
        if (next == 0xF0) return false;
        if (next == 0xFF) return true;
        if (next != 0xE1) Fail("Invalid Encoding of Element type.");
        ProcessingInstruction();
    }
}

// True when a 0xFF after the attributes ended the element as well.
bool CFastInfosetReader::StartElement(unsigned char octet) {
    const bool hasAttributes = (octet & 0x40) != 0;
    m_elementAttributes.clear();
    if ((octet & 0x3C) == 0x38) octet = NamespaceDeclarations();
    const QName name = ElementName(octet);
    CXmlElement* previous = m_open.empty() ? nullptr : CXmlTreeBuilder::GetLastChild(m_open.back().element);
    CXmlElement* element = m_open.empty() ? CXmlTreeBuilder::CreateDocumentElement(*m_document)
                                          : CXmlTreeBuilder::CreateChild(m_open.back().element);
    CXmlTreeBuilder::SetName(element, name.localName, name.namespaceURI);
    m_open.push_back({element, m_text.size(), previous});
    if (m_markOpen) CXmlTreeBuilder::SetOpen(element, true);
    if (!m_elementAttributes.empty()) DeclarationAttributes(element);
    if (!hasAttributes) return false;
    for (;;) {
        const unsigned char next = Byte();
        if (next == 0xF0 || next == 0xFF) {
            CheckAttributeNames();
            return next == 0xFF;
        }
        if (next & 0x80) Fail("Invalid Encoding of Element type.");
        const QName attribute = AttributeName(next);
        // Declarations have their own items; as attributes they would turn
        // into declarations when the document is written as text.
        if (!m_colonsInNames && attribute.namespaceURI->empty() && *attribute.localName == "xmlns")
            Fail("Invalid attribute: a namespace declaration given as an attribute.");
        m_elementAttributes.push_back(attribute);
        NonIdentifyingStringBit1(&m_attributeValues, nullptr, m_value);
        CXmlTreeBuilder::AddAttribute(element, attribute.localName, m_value, attribute.namespaceURI);
    }
}

// Reads an element's namespace declarations; returns the octet that starts its name.
unsigned char CFastInfosetReader::NamespaceDeclarations() {
    m_declarationValues.clear();
    unsigned char next;
    while (((next = Byte()) & 0xFC) == 0xCC) {
        std::string prefix;
        std::string uri;
        if (next & 0x02) prefix = IdentifyingString(Table::Prefix);
        if (next & 0x01) uri = IdentifyingString(Table::Namespace);
        if (m_colonsInNames) {
            // Text read without namespace processing has these as attributes.
            static const std::string xmlns = "xmlns";
            const QName attribute{PlainName(prefix.empty() ? nullptr : &xmlns, prefix.empty() ? xmlns : prefix),
                                  CXmlTreeBuilder::Intern(*m_document, std::string_view())};
            m_elementAttributes.push_back(attribute);
            m_declarationValues.push_back(std::move(uri));
            continue;
        }
        CheckNamespaceName(uri);
        CXmlDocumentLoading::DeclareNamespace(*m_document, std::move(prefix), std::move(uri));
    }
    return Byte();
}

// Adds the declarations read as attributes (without namespace processing) to
// the element they came with.
void CFastInfosetReader::DeclarationAttributes(CXmlElement* element) {
    for (std::size_t i = 0; i < m_declarationValues.size(); ++i)
        CXmlTreeBuilder::AddAttribute(element, m_elementAttributes[i].localName, std::move(m_declarationValues[i]),
                                      m_elementAttributes[i].namespaceURI);
    CheckAttributeNames();
}

void CFastInfosetReader::CheckAttributeNames() {
    if (m_elementAttributes.size() < 2) return;
    // Names are interned, so equal names are the same strings.
    const std::less<const std::string*> before;
    std::sort(m_elementAttributes.begin(), m_elementAttributes.end(), [&](const QName& a, const QName& b) {
        return before(a.localName, b.localName) ||
               (a.localName == b.localName && before(a.namespaceURI, b.namespaceURI));
    });
    const auto twice =
        std::adjacent_find(m_elementAttributes.begin(), m_elementAttributes.end(), [](const QName& a, const QName& b) {
            return a.localName == b.localName && a.namespaceURI == b.namespaceURI;
        });
    if (twice != m_elementAttributes.end()) Fail(("Duplicate attribute [" + *twice->localName + "].").c_str());
}

void CFastInfosetReader::CloseElement() {
    const Open top = m_open.back();
    if (m_text.size() > top.textStart) {
        CXmlTreeBuilder::AppendText(top.element, m_text.data() + top.textStart, m_text.size() - top.textStart);
        m_text.resize(top.textStart);
    }
    if (m_markOpen) CXmlTreeBuilder::SetOpen(top.element, false);
    m_open.pop_back();
    // The document element has no parent to be removed from.
    if (m_open.empty()) return;
    if (m_discard) {
        CXmlTreeBuilder::UnlinkLastChild(m_open.back().element, top.previous);
        CXmlTreeBuilder::DestroyElement(top.element);
        return;
    }
    const CXmlDocument::ElementFilter filter = CXmlDocumentLoading::GetElementFilter(*m_document);
    if (filter != nullptr && filter(top.element)) CXmlTreeBuilder::DeleteLastChild(m_open.back().element);
}

bool CFastInfosetReader::End(bool doubled) {
    CloseElement();
    if (m_open.empty()) {
        // After the document element, an 0xFF ends the document as well.
        if (doubled) {
            Finish();
        } else {
            m_where = Where::Document;
        }
    } else {
        m_where = doubled ? Where::SecondEnd : Where::Content;
    }
    return m_open.size() < m_stopBelow;
}

bool CFastInfosetReader::Start(unsigned char octet) {
    // A 0xFF after the attributes ends the element too.
    const bool ended = StartElement(octet);
    bool stop = false;
    if (m_stopAtStart) {
        m_stopAtStart = false;
        stop = true;
    }
    if (ended && End(false)) stop = true;
    return stop;
}

// The loop over the octets of element content, the decoder's inner loop. It
// goes back to Continue at a stop and when the document element ends.
bool CFastInfosetReader::Content() {
    for (;;) {
        const unsigned char octet = Byte();
        if (octet < 0x80) {
            if (Start(octet)) return true;
        } else if ((octet & 0xC0) == 0x80) {
            // Carriage returns are never stored, as with XML text; the chunk
            // table keeps the chunk as it came.
            const std::size_t start = m_text.size();
            CharacterChunk(octet, m_text);
            const std::size_t cr = m_text.find('\r', start);
            if (cr != std::string::npos) m_text.erase(std::remove(m_text.begin() + cr, m_text.end(), '\r'), m_text.end());
            continue;
        } else if (octet == 0xF0) {
            if (End(false)) return true;
        } else if (octet == 0xFF) {
            if (End(true)) return true;
        } else if (octet == 0xE1) {
            ProcessingInstruction();
            continue;
        } else if (octet == 0xE2) {
            Comment();
            continue;
        } else {
            Fail("Invalid Encoding of Element type.");
        }
        if (m_where != Where::Content) return false;
    }
}

}  // namespace QmXmlLib10
