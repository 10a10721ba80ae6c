#include "dom/expat_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <string_view>

#include "core/same_bytes.h"
#include "dom/xml_document_loading.h"
#include "platform/charset.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_tree_builder.h"

namespace QmXmlLib10 {

namespace {

constexpr char kSeparator = '|';
constexpr std::size_t kInitialCacheSlots = 64;
// Longer texts are not taken for names (Expat would accept them, slowly).
constexpr std::size_t kMaxNameLength = 1u << 20;

using bytes::Load64;
using bytes::SameBytes;

// A document uses a few dozen names, so a cheap hash of the length and the
// first and last eight bytes tells them apart; the cache compares the whole
// name anyway. Expanded names share the namespace prefix, hence the tail.
std::size_t QuickHash(const char* name, std::size_t length) noexcept {
    std::uint64_t h = length * 0x9e3779b97f4a7c15ull;
    if (length >= 8) {
        h ^= Load64(name);
        h *= 0xff51afd7ed558ccdull;
        h ^= Load64(name + length - 8);
    } else {
        for (std::size_t i = 0; i < length; ++i) h = (h ^ static_cast<unsigned char>(name[i])) * 0x100000001b3ull;
    }
    h *= 0xc4ceb9fe1a85ec53ull;
    return static_cast<std::size_t>(h ^ (h >> 29));
}

bool IsAsciiNameStart(unsigned char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool IsAsciiNameChar(unsigned char c) noexcept {
    return IsAsciiNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace

// ------------------------------------------------------------- name check

CExpatNameCheck::~CExpatNameCheck() {
    if (m_parser != nullptr) XML_ParserFree(m_parser);
}

bool CExpatNameCheck::IsName(const char* name, std::size_t length, bool colons) {
    if (length == 0 || length > kMaxNameLength) return false;
    bool ascii = true;
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(name[i]);
        if (c == ':' && !colons) return false;  // never part of a longer UTF-8 sequence
        if (c >= 0x80) ascii = false;
    }
    if (ascii) {
        const auto start = [](unsigned char c) { return IsAsciiNameStart(c) || c == ':'; };
        if (!start(static_cast<unsigned char>(name[0]))) return false;
        for (std::size_t i = 1; i < length; ++i)
            if (!IsAsciiNameChar(static_cast<unsigned char>(name[i])) && name[i] != ':') return false;
        return true;
    }
    // Without namespace processing, colons are name characters like others.
    if (m_parser == nullptr) {
        m_parser = XML_ParserCreate("UTF-8");
        if (m_parser == nullptr) throw std::bad_alloc();
    } else if (XML_ParserReset(m_parser, "UTF-8") != XML_TRUE) {
        throw std::bad_alloc();
    }
    XML_SetUserData(m_parser, this);
    XML_SetStartElementHandler(m_parser, &OnStart);
    m_document.assign("<").append(name, length).append("/>");
    m_expected = std::string_view(name, length);
    m_matched = false;
    // The element must parse, and be named by the whole text, with no
    // attribute made of the rest.
    const XML_Status status = XML_Parse(m_parser, m_document.data(), static_cast<int>(m_document.size()), 1);
    return status == XML_STATUS_OK && m_matched;
}

void XMLCALL CExpatNameCheck::OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    CExpatNameCheck* check = static_cast<CExpatNameCheck*>(self);
    check->m_matched = attributes[0] == nullptr && std::string_view(name) == check->m_expected;
}

CExpatReader::CExpatReader(CXmlDocument& document, bool namespaces, bool keepCDATA)
    : CInstanceMonitor("CExpatReader"),
      m_document(document),
      m_parser(namespaces ? XML_ParserCreateNS(nullptr, kSeparator) : XML_ParserCreate(nullptr)),
      m_namespaces(namespaces),
      m_convert(!platform::LocalIsUtf8()),
      m_filter(CXmlDocumentLoading::GetElementFilter(document)),
      m_cache(kInitialCacheSlots) {
    if (m_parser == nullptr) throw std::bad_alloc();
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, &OnStartElement, &OnEndElement);
    XML_SetCharacterDataHandler(m_parser, &OnCharacterData);
    if (namespaces) XML_SetStartNamespaceDeclHandler(m_parser, &OnStartNamespace);
    if (keepCDATA) XML_SetCdataSectionHandler(m_parser, &OnStartCData, &OnEndCData);
    XML_SetXmlDeclHandler(m_parser, &OnXmlDeclaration);
}

// Called once, before the first element: costs nothing per node.
void XMLCALL CExpatReader::OnXmlDeclaration(void* self, const XML_Char*, const XML_Char* encoding, int) {
    auto* reader = static_cast<CExpatReader*>(self);
    try {
        CXmlDocumentLoading::SetDeclaredEncoding(reader->m_document, encoding);
    } catch (...) {
        reader->Fail();
    }
}

CExpatReader::~CExpatReader() { XML_ParserFree(m_parser); }

bool CExpatReader::Parse(const char* data, std::size_t length, bool isFinal) {
    if (length > static_cast<std::size_t>(INT32_MAX)) throw CQmInvalidParamException("Input piece too large");
    m_bufferKnown = false;
    return Finish(XML_Parse(m_parser, data, static_cast<int>(length), isFinal ? 1 : 0));
}

bool CExpatReader::ParseCopy(const char* data, std::size_t length, bool isFinal) {
    if (length > static_cast<std::size_t>(INT32_MAX)) throw CQmInvalidParamException("Input piece too large");
    void* buffer = XML_GetBuffer(m_parser, static_cast<int>(length));
    if (buffer == nullptr) {
        // Expat refuses a buffer only for want of memory or after an error,
        // which the plain call reports as it should.
        return Parse(data, length, isFinal);
    }
    if (length > 0) std::memcpy(buffer, data, length);
    m_bufferKnown = false;
    return Finish(XML_ParseBuffer(m_parser, static_cast<int>(length), isFinal ? 1 : 0));
}

bool CExpatReader::Resume() {
    m_bufferKnown = false;
    return Finish(XML_ResumeParser(m_parser));
}

bool CExpatReader::Finish(int result) {
    const auto status = static_cast<XML_Status>(result);
    // The buffer may move in the next call: what is kept by reference is
    // copied. A suspended parse goes on in the same buffer, but it is left to
    // the caller for a while, so it is treated alike.
    m_bufferKnown = false;
    m_bufferBegin = m_bufferEnd = nullptr;
    if (!m_error && status != XML_STATUS_ERROR) {
        try {
            KeepDirectText();
        } catch (...) {
            m_error = std::current_exception();
        }
    }
    m_directText = nullptr;
    if (m_error) std::rethrow_exception(m_error);
    if (status == XML_STATUS_SUSPENDED) return true;
    if (status != XML_STATUS_OK) {
        const XML_Error code = XML_GetErrorCode(m_parser);
        const char* text = XML_ErrorString(code);
        throw CQmException(FormatString("%s at line %d", text != nullptr ? text : "unknown error",
                                        static_cast<int>(XML_GetCurrentLineNumber(m_parser))));
    }
    return false;
}

void CExpatReader::ParseAll(const char* data, std::size_t length) {
    // Expat copies every piece into its own buffer before parsing it; whole
    // input in one call would double the memory a large document needs.
    do {
        const std::size_t piece = length < kPieceSize ? length : kPieceSize;
        Parse(data, piece, piece == length);
        data += piece;
        length -= piece;
    } while (length > 0);
}

void CExpatReader::Fail() noexcept {
    if (!m_error) m_error = std::current_exception();
    XML_StopParser(m_parser, XML_FALSE);
}

void CExpatReader::ToLocal(const char* text, std::size_t length, std::string& out) const {
    if (m_convert)
        platform::Utf8ToLocal(text, length, out);
    else
        out.append(text, length);
}

void CExpatReader::TextStack::Grow(std::size_t length) {
    std::size_t capacity = m_capacity < 4096 ? 4096 : m_capacity;
    while (capacity - m_size < length) {
        if (capacity > SIZE_MAX / 2) throw std::bad_alloc();
        capacity *= 2;
    }
    std::unique_ptr<char[]> bigger(new char[capacity]());  // the scan may read the slack
    if (m_size > 0) std::memcpy(bigger.get(), m_data.get(), m_size);
    m_data = std::move(bigger);
    m_capacity = capacity;
}

void CExpatReader::TextStack::AppendWithoutCR(const char* text, std::size_t length) {
    Reserve(length);
    char* const copy = m_data.get() + m_size;
    if (length < 8) {
        // A line end or a reference: reading back a word just stored byte by
        // byte would stall on store forwarding.
        std::size_t kept = 0;
        for (std::size_t i = 0; i < length; ++i)
            if (text[i] != '\r') copy[kept++] = text[i];
        m_size += kept;
        return;
    }
    std::memcpy(copy, text, length);
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighs = 0x8080808080808080ull;
    constexpr std::uint64_t kCRs = kOnes * '\r';
    std::uint64_t found = 0;
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        const std::uint64_t word = Load64(copy + i) ^ kCRs;  // a CR byte becomes zero
        found |= (word - kOnes) & ~word & kHighs;
    }
    if (i < length) {
        // The slack makes the whole word readable; bytes past the end are
        // forced away from zero so that they cannot match.
        const std::uint64_t beyond = ~std::uint64_t{0} << (8 * (length - i));
        const std::uint64_t word = (Load64(copy + i) ^ kCRs) | beyond;
        found |= (word - kOnes) & ~word & kHighs;
    }
    if (found != 0) length = static_cast<std::size_t>(std::remove(copy, copy + length, '\r') - copy);
    m_size += length;
}

void CExpatReader::AppendLocal(const char* text, std::size_t length) {
    if (!m_convert) {
        m_pendingText.AppendWithoutCR(text, length);
        return;
    }
    m_scratch.clear();
    platform::Utf8ToLocal(text, length, m_scratch);
    m_pendingText.AppendWithoutCR(m_scratch.data(), m_scratch.size());
}

// ------------------------------------------------------------------ names

void CExpatReader::GrowCache() {
    std::vector<CacheSlot> bigger(m_cache.size() * 2);
    const std::size_t mask = bigger.size() - 1;
    for (CacheSlot& slot : m_cache) {
        if (slot.key.empty()) continue;
        std::size_t i = slot.hash & mask;
        while (!bigger[i].key.empty()) i = (i + 1) & mask;
        bigger[i] = std::move(slot);
    }
    m_cache.swap(bigger);
}

CExpatReader::Names CExpatReader::Resolve(const char* name, std::size_t length) {
    std::string_view uri;
    std::string_view local(name, length);
    if (m_namespaces) {
        // Local names cannot hold the separator but URIs may, so split at the last one.
        const std::size_t at = local.rfind(kSeparator);
        if (at != std::string_view::npos) {
            uri = local.substr(0, at);
            local.remove_prefix(at + 1);
        }
    }
    if (!m_convert) {
        return Names{CXmlTreeBuilder::Intern(m_document, local), CXmlTreeBuilder::Intern(m_document, uri)};
    }
    m_scratch.clear();
    platform::Utf8ToLocal(local.data(), local.size(), m_scratch);
    const std::string* localName = CXmlTreeBuilder::Intern(m_document, m_scratch);
    m_scratch.clear();
    platform::Utf8ToLocal(uri.data(), uri.size(), m_scratch);
    return Names{localName, CXmlTreeBuilder::Intern(m_document, m_scratch)};
}

CExpatReader::Names CExpatReader::Lookup(const char* name) {
    const std::string_view key(name);
    if (key.empty()) return Resolve(name, 0);
    const std::size_t hash = QuickHash(key.data(), key.size());
    std::size_t mask = m_cache.size() - 1;
    std::size_t i = hash & mask;
    while (!m_cache[i].key.empty()) {
        const CacheSlot& slot = m_cache[i];
        if (slot.hash == hash && slot.key.size() == key.size() && SameBytes(slot.key.data(), key.data(), key.size()))
            return slot.names;
        i = (i + 1) & mask;
    }
    const Names names = Resolve(name, key.size());
    if ((m_cacheCount + 1) * 2 > m_cache.size()) {
        GrowCache();
        mask = m_cache.size() - 1;
        i = hash & mask;
        while (!m_cache[i].key.empty()) i = (i + 1) & mask;
    }
    m_cache[i].hash = hash;
    m_cache[i].key.assign(key.data(), key.size());
    m_cache[i].names = names;
    ++m_cacheCount;
    return names;
}

// -------------------------------------------------------------- callbacks

void CExpatReader::StartElement(const char* name, const char** attributes) {
    KeepDirectText();  // the parent's text, before the child's begins
    const Names names = Lookup(name);
    CXmlElement* previous = m_open.empty() ? nullptr : CXmlTreeBuilder::GetLastChild(m_open.back().element);
    CXmlElement* element = m_open.empty() ? CXmlTreeBuilder::CreateDocumentElement(m_document)
                                          : CXmlTreeBuilder::CreateChild(m_open.back().element);
    CXmlTreeBuilder::SetName(element, names.localName, names.namespaceURI);
    m_open.push_back(OpenElement{element, m_pendingText.Size(), previous});
    if (m_markOpen) CXmlTreeBuilder::SetOpen(element, true);
    if (m_stopAtStart) {
        m_stopAtStart = false;
        XML_StopParser(m_parser, XML_TRUE);
    }

    if (attributes[0] == nullptr) return;
    std::size_t count = 0;
    while (attributes[2 * count] != nullptr) ++count;
    CXmlTreeBuilder::ReserveAttributes(element, count);
    for (const char** attribute = attributes; attribute[0] != nullptr; attribute += 2) {
        const Names attributeNames = Lookup(attribute[0]);
        const std::size_t length = std::strlen(attribute[1]);
        // Constructed at its size: filling an empty string would over-allocate.
        std::string value = m_convert ? std::string() : std::string(attribute[1], length);
        if (m_convert) ToLocal(attribute[1], length, value);
        CXmlTreeBuilder::AddAttribute(element, attributeNames.localName, std::move(value),
                                      attributeNames.namespaceURI);
    }
}

void CExpatReader::EndElement() {
    if (m_open.empty()) return;
    CXmlElement* element = m_open.back().element;
    const std::size_t start = m_open.back().textStart;
    if (m_directText != nullptr) {
        const char* text = m_directText;
        m_directText = nullptr;
        CXmlTreeBuilder::AppendText(element, text, m_directLength);
    } else if (m_pendingText.Size() > start) {
        CXmlTreeBuilder::AppendText(element, m_pendingText.Data() + start, m_pendingText.Size() - start);
        m_pendingText.Truncate(start);
    }
    if (m_markOpen) CXmlTreeBuilder::SetOpen(element, false);
    CXmlElement* const previous = m_open.back().previous;
    m_open.pop_back();
    if (m_open.size() < m_stopBelow) XML_StopParser(m_parser, XML_TRUE);
    if (m_discard && !m_open.empty()) {
        CXmlTreeBuilder::UnlinkLastChild(m_open.back().element, previous);
        CXmlTreeBuilder::DestroyElement(element);
        return;
    }
    // The document element has no parent to be removed from.
    if (m_filter != nullptr && !m_open.empty() && m_filter(element))
        CXmlTreeBuilder::DeleteLastChild(m_open.back().element);
}

bool CExpatReader::InInputBuffer(const char* text) {
    if (!m_bufferKnown) {
        m_bufferKnown = true;
        int offset = 0;
        int size = 0;
        // Null when Expat keeps no context, or parses from the caller's bytes.
        const char* buffer = XML_GetInputContext(m_parser, &offset, &size);
        m_bufferBegin = buffer;
        m_bufferEnd = buffer != nullptr && size > 0 ? buffer + size : buffer;
    }
    return m_bufferBegin != nullptr && std::less_equal<const char*>()(m_bufferBegin, text) &&
           std::less<const char*>()(text, m_bufferEnd);
}

void CExpatReader::AppendText(const char* text, std::size_t length) {
    if (m_open.empty()) return;
    // Line ends reach us as a separate "\n", references and converted text
    // from scratch buffers: text inside the input buffer never holds a
    // carriage return and needs no scan.
    if (!m_convert && InInputBuffer(text)) {
        if (m_directText == nullptr && m_pendingText.Size() == m_open.back().textStart) {
            m_directText = text;
            m_directLength = length;
            return;
        }
        KeepDirectText();
        m_pendingText.Append(text, length);
        return;
    }
    KeepDirectText();
    // Carriage returns are never stored, including those written as &#13;.
    AppendLocal(text, length);
}

void CExpatReader::StartNamespace(const char* prefix, const char* uri) {
    std::string localPrefix;
    std::string localUri;
    if (prefix != nullptr) ToLocal(prefix, std::strlen(prefix), localPrefix);
    if (uri != nullptr) ToLocal(uri, std::strlen(uri), localUri);
    CXmlDocumentLoading::DeclareNamespace(m_document, std::move(localPrefix), std::move(localUri));
}

void XMLCALL CExpatReader::OnStartElement(void* self, const XML_Char* name, const XML_Char** attributes) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    try {
        reader->StartElement(name, attributes);
    } catch (...) {
        reader->Fail();
    }
}

void XMLCALL CExpatReader::OnEndElement(void* self, const XML_Char*) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    try {
        reader->EndElement();
    } catch (...) {
        reader->Fail();
    }
}

void XMLCALL CExpatReader::OnCharacterData(void* self, const XML_Char* text, int length) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    if (length <= 0) return;
    try {
        reader->AppendText(text, static_cast<std::size_t>(length));
    } catch (...) {
        reader->Fail();
    }
}

void XMLCALL CExpatReader::OnStartCData(void* self) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    try {
        reader->KeepDirectText();
        if (!reader->m_open.empty()) reader->m_pendingText.Append("<![CDATA[", 9);
    } catch (...) {
        reader->Fail();
    }
}

void XMLCALL CExpatReader::OnEndCData(void* self) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    try {
        reader->KeepDirectText();
        if (!reader->m_open.empty()) reader->m_pendingText.Append("]]>", 3);
    } catch (...) {
        reader->Fail();
    }
}

void XMLCALL CExpatReader::OnStartNamespace(void* self, const XML_Char* prefix, const XML_Char* uri) {
    CExpatReader* reader = static_cast<CExpatReader*>(self);
    if (reader->m_error) return;
    try {
        reader->StartNamespace(prefix, uri);
    } catch (...) {
        reader->Fail();
    }
}

}  // namespace QmXmlLib10
