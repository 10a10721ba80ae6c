#include "qmxml/fastinfoset/fi_writer.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "fastinfoset/fi_layouts.h"
#include "platform/charset.h"
#include "qmxml/core/exception.h"
#include "qmxml/fastinfoset/binary_algorithms.h"

namespace QmXmlLib10 {

namespace {

inline const char* OrEmpty(const char* s) { return s ? s : ""; }

using fi_layout::MaxIntegerOctets;
using fi_layout::MaxLengthOctets;

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
    for (std::uint32_t i = 1; i <= m_vocabulary.GetElementNamesTable().GetCount(); ++i) IndexElementName(i);
}

CFastInfosetWriter::~CFastInfosetWriter() { Flush(); }

void CFastInfosetWriter::COctetBuffer::Grow(std::size_t n) {
    // Doubling keeps appending amortised constant; realloc may grow in place.
    const std::size_t capacity = std::max({m_capacity * 2, m_size + n, std::size_t{4096}});
    void* data = std::realloc(m_data, capacity);
    if (data == nullptr) throw std::bad_alloc();
    m_data = static_cast<unsigned char*>(data);
    m_capacity = capacity;
}

unsigned char* CFastInfosetWriter::COctetBuffer::Release() noexcept {
    unsigned char* data = m_data;
    if (data != nullptr && m_size > 0 && m_size < m_capacity) {
        if (void* shrunk = std::realloc(data, m_size)) data = static_cast<unsigned char*>(shrunk);
    }
    m_data = nullptr;
    m_size = m_capacity = 0;
    return data;
}

void CFastInfosetWriter::Flush() noexcept {
    if (m_out.Size() == 0) return;
    try {
        const std::size_t size = m_out.Size();
        if (m_output.GetLength() == 0 && size <= std::numeric_limits<std::uint32_t>::max()) {
            // Nothing to keep in the output: it takes the octets without a copy.
            m_output = CBinaryData(m_out.Release(), static_cast<std::uint32_t>(size), true);
        } else {
            m_output.Append(m_out.Data(), static_cast<std::uint32_t>(size));
        }
    } catch (...) {
        // Only reached from the destructor after another failure: the octets are lost.
    }
    m_out.Clear();
}

// --- Document ------------------------------------------------------------------

void CFastInfosetWriter::StartDocument() {
    if (m_declaration < FInfoDecl_None || m_declaration > FInfoDecl_9) {
        throw CQmInvalidParamException(FormatString("Invalid Fast Infoset declaration [%d]", m_declaration));
    }
    if (m_declaration != FInfoDecl_None) {
        const char* declaration = fi_layout::kDeclarations[m_declaration - 1];
        m_out.Append(declaration, std::strlen(declaration));
    }
    m_out.Append(reinterpret_cast<const char*>(fi_layout::kIdentification), 4);
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
    const auto length = static_cast<std::uint32_t>(m_octets.size());
    m_out.Commit(fi_layout::LengthBit2(m_out.Reserve(MaxLengthOctets), 0x00, length));
    m_out.Append(m_octets.data(), m_octets.size());
}

void CFastInfosetWriter::EndDocument() {
    CXmlWriter::EndDocument();
    Out(m_terminatorPending ? 0xFF : 0xF0);
    m_terminatorPending = false;
    Flush();
}

inline void CFastInfosetWriter::WritePendingTerminator() {
    if (!m_terminatorPending) return;
    Out(0xF0);
    m_terminatorPending = false;
}

// --- Elements and attributes ---------------------------------------------------

void CFastInfosetWriter::StartElement(const char* localName, const char* namespaceURI) {
    CompleteStart();
    WritePendingTerminator();
    CXmlWriter::StartElement(localName, namespaceURI);
    CXmlWriterContext& context = *GetCurrentContext();
    const CXmlWriterContext* parent = context.m_parent;
    m_attributeCount = 0;
    m_attributeText.Clear();
    // The default namespace may differ from the previous document's.
    if (!parent) m_defaultNamespaceIndex = 0;
    m_defaultDeclaration = DefaultDeclaration::None;
    switch (GetElementNaming()) {
        case ElementNaming::Undeclare:
            m_defaultDeclaration = DefaultDeclaration::Undeclare;
            [[fallthrough]];
        case ElementNaming::NoNamespace:
            m_startParts = NameParts{0, 0};
            break;
        case ElementNaming::DefaultNamespace:
            m_startParts = NameParts{0, DefaultNamespaceIndex()};
            break;
        case ElementNaming::ParentPrefix:
            // The parent's start is complete, so its name's parts are known.
            m_startParts = m_openElements[static_cast<std::size_t>(parent->m_depth)].parts;
            break;
        case ElementNaming::PrefixInScope:
        case ElementNaming::NewPrefix:
            m_startParts = NameParts{Unresolved, Unresolved};
            break;
    }
    if (!parent && context.m_inDefaultNamespace) m_defaultDeclaration = DefaultDeclaration::Declare;
}

void CFastInfosetWriter::WriteStart(CXmlWriterContext& start) {
    CXmlWriterContext* context = &start;
    context->m_startTagOpen = false;
    const bool hasAttributes = m_attributeCount > 0;
    unsigned char high = hasAttributes ? 0x40 : 0x00;
    if (context->GetOwnNamespaceCount() > 0 || m_defaultDeclaration != DefaultDeclaration::None) {
        WriteDeclarations(high, *context);
        high = 0x00;
    }
    WriteElementName(high, context->m_prefix, context->m_namespaceURI, context->m_localName,
                     static_cast<std::size_t>(context->m_depth), m_startParts);
    const char* text = reinterpret_cast<const char*>(m_attributeText.Data());
    for (std::size_t i = 0; i < m_attributeCount; ++i) text = WriteAttribute(m_attributes[i], text);
    if (hasAttributes) Out(0xF0);
    m_attributeCount = 0;
    m_attributeText.Clear();
    m_defaultDeclaration = DefaultDeclaration::None;
}

void CFastInfosetWriter::WriteDeclarations(unsigned char high, const CXmlWriterContext& context) {
    Out(high | 0x38);
    if (m_defaultDeclaration == DefaultDeclaration::Declare) {
        Out(0xCD);
        WriteIdentifyingString(GetDefaultNamespace(), NameTable::Namespace);
    } else if (m_defaultDeclaration == DefaultDeclaration::Undeclare) {
        Out(0xCC);
    }
    for (std::size_t i = 0; i < context.GetOwnNamespaceCount(); ++i) {
        Out(0xCF);
        WriteIdentifyingString(context.GetOwnNamespacePrefix(i), NameTable::Prefix);
        WriteIdentifyingString(context.GetOwnNamespaceURI(i), NameTable::Namespace);
    }
    Out(0xF0);
}

void CFastInfosetWriter::ThrowEmptyName() const {
    throw CQmInvalidParamException("Failed to write FastInfoset. A name may not be empty.");
}

void CFastInfosetWriter::WriteIdentifyingString(std::string_view value, NameTable table) {
    if (value.empty()) ThrowEmptyName();
    std::uint32_t index = 0;
    const bool found = table == NameTable::Prefix      ? m_vocabulary.FindPrefixNameIndex(value, index)
                       : table == NameTable::Namespace ? m_vocabulary.FindNamespaceNameIndex(value, index)
                                                       : m_vocabulary.FindLocalNameIndex(value, index);
    if (found) {
        m_out.Commit(fi_layout::IntegerBit2(m_out.Reserve(MaxIntegerOctets), 0x80, index));
        return;
    }
    const char* octets = value.data();
    std::size_t length = value.size();
    if (!m_localIsUtf8) {
        m_octets.clear();
        platform::LocalToUtf8(value.data(), value.size(), m_octets);
        octets = m_octets.data();
        length = m_octets.size();
    }
    unsigned char* out = fi_layout::LengthBit2(m_out.Reserve(MaxLengthOctets + length), 0x00,
                                               static_cast<std::uint32_t>(length));
    std::memcpy(out, octets, length);
    m_out.Commit(out + length);
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

inline std::size_t CFastInfosetWriter::HashElementKey(NameParts parts, std::string_view localName) {
    return fi_detail::HashBytes(localName) ^ ((std::size_t{parts.ns} << 20) + parts.prefix) * 0x9E3779B97F4A7C15ull;
}

// Mirrors element name `index` of the vocabulary in the writer's own index.
void CFastInfosetWriter::IndexElementName(std::uint32_t index) {
    const CQNameParts& parts = *m_vocabulary.GetElementNamesTable().GetAt(index);
    const std::string& localName = *m_vocabulary.GetLocalNamesTable().GetAt(parts.localNameIndex);
    const NameParts key{parts.prefixIndex, parts.namespaceIndex};
    m_elementKeys.push_back(ElementKey{key, localName});
    m_elementIndex.Insert(HashElementKey(key, localName), index);
}

inline bool CFastInfosetWriter::IsElementName(std::uint32_t index, NameParts parts, std::string_view localName) const {
    const ElementKey& key = m_elementKeys[index - 1];
    return key.parts.ns == parts.ns && key.parts.prefix == parts.prefix && fi_detail::EqualBytes(key.localName, localName);
}

inline std::uint32_t CFastInfosetWriter::FindElementName(NameParts parts, std::string_view localName) const {
    return m_elementIndex.Find(HashElementKey(parts, localName),
                               [&](std::uint32_t i) { return IsElementName(i, parts, localName); });
}

inline std::uint32_t CFastInfosetWriter::ResolvePrefix(std::string_view prefix) const {
    std::uint32_t index = 0;
    if (prefix.empty()) return 0;
    return m_vocabulary.FindPrefixNameIndex(prefix, index) ? index : Unresolved;
}

inline std::uint32_t CFastInfosetWriter::ResolveNamespace(std::string_view uri) const {
    std::uint32_t index = 0;
    if (uri.empty()) return 0;
    return m_vocabulary.FindNamespaceNameIndex(uri, index) ? index : Unresolved;
}

inline std::uint32_t CFastInfosetWriter::DefaultNamespaceIndex() {
    if (m_defaultNamespaceIndex == 0) {
        const std::uint32_t index = ResolveNamespace(GetDefaultNamespace());
        if (index == Unresolved) return Unresolved;
        m_defaultNamespaceIndex = index;
    }
    return m_defaultNamespaceIndex;
}

std::uint32_t CFastInfosetWriter::WriteLiteralElementName(unsigned char high, std::string_view prefix,
                                                          std::string_view uri, std::string_view localName,
                                                          NameParts& parts) {
    Out(high | 0x3C | (prefix.empty() ? 0 : 0x02) | (uri.empty() ? 0 : 0x01));
    if (!prefix.empty()) WriteIdentifyingString(prefix, NameTable::Prefix);
    if (!uri.empty()) WriteIdentifyingString(uri, NameTable::Namespace);
    WriteIdentifyingString(localName, NameTable::Local);
    const std::uint32_t index = m_vocabulary.AddElement(prefix, uri, localName);
    if (index != 0) IndexElementName(index);
    // The parts are in their tables now, unless a table was full.
    parts = NameParts{ResolvePrefix(prefix), ResolveNamespace(uri)};
    return index;
}

inline void CFastInfosetWriter::WriteElementName(unsigned char high, std::string_view prefix, std::string_view uri,
                                                 std::string_view localName, std::size_t depth, NameParts parts) {
    OpenElement* parent = depth > 0 ? &m_openElements[depth - 1] : nullptr;
    if (parts.ns == Unresolved) parts.ns = ResolveNamespace(uri);
    if (parts.prefix == Unresolved) parts.prefix = ResolvePrefix(prefix);
    std::uint32_t index = 0;
    if (parts.ns != Unresolved && parts.prefix != Unresolved) {
        std::uint32_t guess = 0;
        if (parent != nullptr) {
            if (parent->lastChild != 0) {
                guess = m_elementKeys[parent->lastChild - 1].nextSibling;
            } else if (parent->index != 0) {
                guess = m_elementKeys[parent->index - 1].firstChild;
            }
        }
        index = guess != 0 && IsElementName(guess, parts, localName) ? guess : FindElementName(parts, localName);
    }
    if (index != 0) {
        m_out.Commit(fi_layout::IntegerBit3(m_out.Reserve(MaxIntegerOctets), high, index));
    } else {
        index = WriteLiteralElementName(high, prefix, uri, localName, parts);
    }
    if (parent != nullptr) {
        if (parent->lastChild != 0) {
            m_elementKeys[parent->lastChild - 1].nextSibling = index;
        } else if (parent->index != 0) {
            m_elementKeys[parent->index - 1].firstChild = index;
        }
        parent->lastChild = index;
    }
    if (m_openElements.size() <= depth) m_openElements.resize(depth + 1);
    m_openElements[depth] = OpenElement{parts, index, 0};
}

inline const char* CFastInfosetWriter::WriteAttribute(const PendingAttribute& a, const char* text) {
    const std::string_view prefix(text, a.prefixLength);
    const std::string_view namespaceURI(prefix.data() + prefix.size(), a.namespaceLength);
    const std::string_view localName(namespaceURI.data() + namespaceURI.size(), a.localNameLength);
    // The value is followed by a zero, so its data is zero-terminated.
    const std::string_view value(localName.data() + localName.size(), a.valueLength);
    std::uint32_t index = 0;
    if (m_vocabulary.GetAttributeNamesTable().Find(prefix, namespaceURI, localName, index)) {
        m_out.Commit(fi_layout::IntegerBit2(m_out.Reserve(MaxIntegerOctets), 0x00, index));
    } else {
        Out(0x78 | (prefix.empty() ? 0 : 0x02) | (namespaceURI.empty() ? 0 : 0x01));
        if (!prefix.empty()) WriteIdentifyingString(prefix, NameTable::Prefix);
        if (!namespaceURI.empty()) WriteIdentifyingString(namespaceURI, NameTable::Namespace);
        WriteIdentifyingString(localName, NameTable::Local);
        m_vocabulary.AddAttribute(prefix, namespaceURI, localName);
    }
    WriteAttributeValue(value, a.itemType);
    return value.data() + value.size() + 1;
}

void CFastInfosetWriter::WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                                        ItemType itemType) {
    CXmlWriterContext& context = RequireStartTag();
    const std::string_view uri = OrEmpty(namespaceURI);
    const std::string_view local = OrEmpty(localName);
    const std::string_view text = OrEmpty(value);
    CheckName(local, uri.empty());
    CheckValue(text.data(), text.size(), local);
    bool declared = false;
    const std::string* prefix = AttributePrefix(context, uri, declared);
    if (m_attributeCount == m_attributes.size()) m_attributes.emplace_back();
    PendingAttribute& a = m_attributes[m_attributeCount];
    a.prefixLength = prefix != nullptr ? prefix->size() : 0;
    a.namespaceLength = uri.size();
    a.localNameLength = local.size();
    a.valueLength = text.size();
    a.itemType = itemType;
    if (prefix != nullptr) m_attributeText.Append(prefix->data(), prefix->size());
    m_attributeText.Append(uri.data(), uri.size());
    m_attributeText.Append(local.data(), local.size());
    m_attributeText.Append(text.data(), text.size());
    m_attributeText.Put(0);
    ++m_attributeCount;
}

void CFastInfosetWriter::WriteText(const char* value, ItemType itemType) {
    if (!value || *value == '\0') return;
    const std::string_view text = value;
    CheckValue(text.data(), text.size(), RequireContext().m_localName);
    CompleteStart();
    WritePendingTerminator();
    WriteCharacterChunk(text, itemType);
}

void CFastInfosetWriter::WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                                            ItemType itemType) {
    // Checked before the element is begun: a refused value leaves no element behind.
    const std::string_view name = OrEmpty(localName);
    const std::string_view text = OrEmpty(value);
    CheckValue(text.data(), text.size(), name);
    CXmlWriterContext* parent = GetCurrentContext();
    const std::string_view uri = OrEmpty(namespaceURI);
    const ChildName naming = ClassifyChildName(uri);
    if (naming == ChildName::Declaration) {
        CXmlWriter::WriteSimpleElement(localName, namespaceURI, value, itemType);
        return;
    }
    CheckName(name, naming == ChildName::NoNamespace);
    const std::string* prefix = naming == ChildName::ParentPrefix ? &parent->m_prefix : nullptr;
    NameParts parts{0, 0};
    if (naming == ChildName::DefaultNamespace) parts.ns = Unresolved;
    // What StartElement, WriteText and EndElement write for it, in their order.
    CompleteStart();
    WritePendingTerminator();
    ++parent->m_childCount;
    const auto depth = static_cast<std::size_t>(parent->m_depth);
    if (parts.ns == Unresolved) parts.ns = DefaultNamespaceIndex();
    // The parent's start is complete, so its name's parts are known.
    if (prefix != nullptr) parts = m_openElements[depth].parts;
    WriteElementName(0x00, prefix != nullptr ? std::string_view(*prefix) : std::string_view(), uri, name, depth + 1,
                     parts);
    if (!text.empty()) WriteCharacterChunk(text, itemType);
    m_terminatorPending = true;
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

void CFastInfosetWriter::AppendRestrictedAlphabetString(std::uint32_t alphabetIndex, std::string_view value) {
    const std::string& alphabet = m_vocabulary.GetRestrictedAlphabets()[alphabetIndex - 1];
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
    // Each octet's first position in the alphabet, found once per alphabet.
    if (m_alphabetPositions.size() < alphabetIndex) m_alphabetPositions.resize(alphabetIndex);
    std::vector<std::int16_t>& positions = m_alphabetPositions[alphabetIndex - 1];
    if (positions.empty()) {
        positions.assign(256, -1);
        for (std::size_t i = alphabet.size(); i-- > 0;) {
            positions[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int16_t>(i);
        }
    }
    bool highHalf = true;
    for (char c : value) {
        const int position = positions[static_cast<unsigned char>(c)];
        if (position < 0) {
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

void CFastInfosetWriter::EncodeValue(std::string_view value, const EncodedCharacterString& encoding,
                                     bool bit5Placement, unsigned& discriminant, std::uint32_t& tableIndex) {
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
            AppendRestrictedAlphabetString(encoding.index, value);
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
            data.SetAsEncodedString(encoding.index, value.data());
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

namespace {

// The two placements of a value. An attribute value starts on the first bit
// of its octet: index form '1' and the index from the second bit; literal
// form '0', the add-to-table bit 0x40, the encoded string from the third bit
// (its length on the fifth). A character chunk starts on the third bit after
// '10': index form 0x20 and the index from the fourth bit; literal form with
// the add bit 0x10, the encoded string from the fifth bit (length on the seventh).
// A restricted alphabet or algorithm index (8 bits, less one) follows the
// discriminant and is split across the octet boundary.
}  // namespace

struct CFastInfosetWriter::Placement {
    bool isCharacterChunk;
    unsigned char literalHigh;
    unsigned char addBit;
    unsigned char indexHigh;
    int discriminantShift;  // of the discriminant; the index's top bits follow it in the octet
    unsigned char* (*index)(unsigned char* out, unsigned char high, std::uint32_t value);
    unsigned char* (*length)(unsigned char* out, unsigned char high, std::uint32_t length);
};

namespace {
constexpr CFastInfosetWriter::Placement kAttributeValue{false, 0x00, 0x40, 0x80, 4, fi_layout::IntegerBit2,
                                                        fi_layout::LengthBit5};
constexpr CFastInfosetWriter::Placement kCharacterChunk{true, 0x80, 0x10, 0xA0, 2, fi_layout::IntegerBit4,
                                                        fi_layout::LengthBit7};
}  // namespace

template <const CFastInfosetWriter::Placement& Layout>
inline void CFastInfosetWriter::WriteValue(std::string_view value, ItemType itemType, CFIStringTable& table,
                                           std::uint32_t maxAddLength) {
    const bool indexable = value.size() < maxAddLength;
    const std::size_t hash = indexable ? CFIStringTable::Hash(value) : 0;
    std::uint32_t index = 0;
    if (indexable && table.Find(value, hash, index)) {
        m_out.Commit(Layout.index(m_out.Reserve(MaxIntegerOctets), Layout.indexHigh, index));
        return;
    }
    const bool add = indexable && table.GetCount() < CFIVocabulary::MaxIndex;
    const unsigned char high = Layout.literalHigh | (add ? Layout.addBit : 0x00);
    const EncodedCharacterString encoding = EncodingOf(itemType);
    if (IsVerbatim(encoding)) {
        const std::size_t length = value.size();
        unsigned char* out =
            Layout.length(m_out.Reserve(MaxLengthOctets + length), high, static_cast<std::uint32_t>(length));
        std::memcpy(out, value.data(), length);
        m_out.Commit(out + length);
    } else {
        unsigned discriminant = 0;
        std::uint32_t tableIndex = 0;
        EncodeValue(value, encoding, Layout.isCharacterChunk, discriminant, tableIndex);
        const auto length = static_cast<std::uint32_t>(m_octets.size());
        unsigned char* out = m_out.Reserve(1 + MaxLengthOctets + m_octets.size());
        if (discriminant == 0) {
            out = Layout.length(out, high, length);
        } else {
            constexpr int lowBits = 8 - Layout.discriminantShift;  // of the index, in the next octet
            const std::uint32_t i = tableIndex - 1;
            *out++ = static_cast<unsigned char>(high | (discriminant << Layout.discriminantShift) | (i >> lowBits));
            out = Layout.length(out, static_cast<unsigned char>((i << Layout.discriminantShift) & 0xFF), length);
        }
        std::memcpy(out, m_octets.data(), m_octets.size());
        m_out.Commit(out + m_octets.size());
    }
    // Looked up in vain above: added without a second look-up.
    if (add) CFIVocabulary::AddNewString(value, hash, table);
}

inline void CFastInfosetWriter::WriteAttributeValue(std::string_view value, ItemType itemType) {
    if (value.empty()) {
        Out(0xFF);  // the standard's index zero, on the second bit: the empty string
        return;
    }
    WriteValue<kAttributeValue>(value, itemType, m_vocabulary.m_attributeValues, m_attributeMaxAddLength);
}

inline void CFastInfosetWriter::WriteCharacterChunk(std::string_view value, ItemType itemType) {
    WriteValue<kCharacterChunk>(value, itemType, m_vocabulary.m_characterChunks, m_elementMaxAddLength);
}

}  // namespace QmXmlLib10
