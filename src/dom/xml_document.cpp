#include "qmxml/dom/xml_document.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <zlib.h>

#include "dom/expat_reader.h"
#include "dom/xml_document_loading.h"
#include "dom/xml_node_pool.h"
#include "dom/xml_stream_source.h"
#include "platform/file_reader.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/core/settings.h"
#include "qmxml/dom/xml_tree_builder.h"

namespace QmXmlLib10 {

namespace {

constexpr std::size_t kInflatePiece = 0x10000;
constexpr std::size_t kFileChunk = 0x20000;
// 15 window bits plus 32: zlib and gzip headers are both recognised.
constexpr int kInflateWindowBits = 47;
constexpr std::uint64_t kMaxInputLength = UINT32_MAX;

std::uint32_t g_maxInflateRatio = 1000;
std::uint64_t g_minInflateLimit = std::uint64_t{64} << 20;

bool DeclineFastInfoset(CXmlDocument&, const unsigned char*, std::uint32_t, const CXmlSerializationContext&) {
    return false;
}

FastInfosetLoader g_fastInfosetLoader = &DeclineFastInfoset;

enum class Framing { None, Gzip, Zlib };

Framing DetectFraming(const unsigned char* data, std::size_t length) {
    if (length < 2) return Framing::None;
    if (data[0] == 0x1f && data[1] == 0x8b) return Framing::Gzip;
    // RFC 1950: deflate method, window of at most 32 KiB, header check multiple of 31.
    if ((data[0] & 0x0f) == 8 && (data[0] >> 4) <= 7 && ((data[0] << 8) | data[1]) % 31 == 0)
        return Framing::Zlib;
    return Framing::None;
}

struct InflateStream {
    z_stream stream{};
    bool open = false;
    ~InflateStream() {
        if (open) inflateEnd(&stream);
    }
};

// Inflates the whole input into out. False when the input is to be parsed as
// it is (its first bytes only looked like a zlib header).
bool Inflate(const unsigned char* data, std::size_t length, Framing framing, std::vector<unsigned char>& out) {
    std::uint64_t limit = std::max<std::uint64_t>(
        static_cast<std::uint64_t>(g_maxInflateRatio) * length, g_minInflateLimit);
    limit = std::min(limit, kMaxInputLength);

    // A gzip trailer states the inflated size (modulo 4 GiB): a good first guess.
    std::size_t guess = length * 4;
    if (framing == Framing::Gzip && length >= 18) {
        const unsigned char* tail = data + length - 4;
        guess = tail[0] | (tail[1] << 8) | (tail[2] << 16) | (static_cast<std::size_t>(tail[3]) << 24);
    }
    out.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(guess, limit)) + kInflatePiece);

    InflateStream z;
    if (inflateInit2(&z.stream, kInflateWindowBits) != Z_OK) throw std::bad_alloc();
    z.open = true;
    z.stream.next_in = const_cast<Bytef*>(data);
    z.stream.avail_in = static_cast<uInt>(length);

    int rc;
    do {
        const std::size_t used = out.size();
        out.resize(used + kInflatePiece);
        z.stream.next_out = out.data() + used;
        z.stream.avail_out = static_cast<uInt>(kInflatePiece);
        rc = inflate(&z.stream, Z_NO_FLUSH);
        out.resize(used + kInflatePiece - z.stream.avail_out);
        if (out.size() > limit)
            throw CQmException(FormatString("The inflated data exceeds the limit of %llu bytes",
                                            static_cast<unsigned long long>(limit)));
    } while (rc == Z_OK);

    if (rc == Z_STREAM_END) return true;
    // Input used up without an error: a valid compressed prefix, cut short.
    // After a gzip magic number nothing else is plausible either.
    if ((rc == Z_BUF_ERROR && z.stream.avail_in == 0) || framing == Framing::Gzip)
        throw CQmException("The compressed data is truncated or corrupt");
    out.clear();
    out.shrink_to_fit();
    return false;
}

}  // namespace

// -------------------------------------------------------- CXmlDetectedFormat

std::string CXmlDetectedFormat::Describe() const {
    const char* content = format == XmlInputFormat_Text          ? "XML text"
                          : format == XmlInputFormat_FastInfoset ? "Fast Infoset"
                                                                 : "";
    if (*content == 0) return std::string();
    if (compression == CompressionType_GZip) return std::string("gzip-compressed ") + content;
    if (compression == CompressionType_ZLib) return std::string("zlib-compressed ") + content;
    return content;
}

// --------------------------------------------------------- CXmlDocumentLoading

void CXmlDocumentLoading::SetFastInfosetLoader(FastInfosetLoader loader) noexcept {
    g_fastInfosetLoader = loader != nullptr ? loader : &DeclineFastInfoset;
}

FastInfosetLoader CXmlDocumentLoading::GetFastInfosetLoader() noexcept { return g_fastInfosetLoader; }

// ---------------------------------------------------------------- CXmlDocument

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(const CXmlSerializationContext& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter)
    : CXmlDocument(filter, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context)
    : CInstanceMonitor("CXmlDocument"),
      m_pool(std::make_unique<CXmlNodePool>()),
      m_schemaType(context.GetSchemaType()),
      m_filter(filter),
      m_context(&context) {}

// The tree goes before the pool it lives in and the name table it points into.
CXmlDocument::~CXmlDocument() { CXmlTreeBuilder::Clear(*this); }

void CXmlDocument::Cleanup() {
    m_stream.reset();
    CXmlTreeBuilder::Clear(*this);
    m_namespaces.clear();
    m_fastInfosetStatistics.reset();
    m_detectedFormat = CXmlDetectedFormat();
}

void CXmlDocument::SetMaxInflateRatio(std::uint32_t ratio) noexcept { g_maxInflateRatio = ratio; }
std::uint32_t CXmlDocument::GetMaxInflateRatio() noexcept { return g_maxInflateRatio; }
void CXmlDocument::SetMinInflateLimit(std::uint64_t bytes) noexcept { g_minInflateLimit = bytes; }
std::uint64_t CXmlDocument::GetMinInflateLimit() noexcept { return g_minInflateLimit; }

void CXmlDocument::SetNodeCacheLimit(std::size_t bytes) noexcept { CXmlNodePool::SetCacheLimit(bytes); }
std::size_t CXmlDocument::GetNodeCacheLimit() noexcept { return CXmlNodePool::GetCacheLimit(); }
std::size_t CXmlDocument::GetNodeCacheSize() noexcept { return CXmlNodePool::GetCachedBytes(); }

const std::string& CXmlDocument::LookupNamespaceFromAlias(const char* prefix) const {
    const auto found = m_namespaces.find(prefix != nullptr ? prefix : "");
    return found != m_namespaces.end() ? found->second : CXmlNameTable::EmptyString();
}

void CXmlDocument::DetectText(const unsigned char* data, std::size_t length) {
    m_detectedFormat.format = XmlInputFormat_Text;
    // Expat's own order: a byte-order mark, then "<" as UTF-16 (either byte
    // order); anything else is UTF-8 until a declaration says otherwise.
    const bool utf16 = length >= 2 && ((data[0] == 0xfe && data[1] == 0xff) || (data[0] == 0xff && data[1] == 0xfe) ||
                                       (data[0] == 0 && data[1] == '<') || (data[0] == '<' && data[1] == 0));
    m_detectedFormat.encoding = utf16 ? "UTF-16" : "UTF-8";
}

void CXmlDocument::ParseText(const unsigned char* data, std::size_t length) {
    DetectText(data, length);
    if (m_streamRequested) {
        // The same pieces ParseAll feeds, handed over as the parser asks.
        const char* const text = reinterpret_cast<const char*>(data);
        std::size_t offset = 0;
        bool done = false;
        auto next = [text, length, offset, done](const char*& piece, std::size_t& size, bool& last) mutable {
            if (done) return false;
            size = std::min(length - offset, CExpatReader::kPieceSize);
            piece = text + offset;
            offset += size;
            last = done = offset == length;
            return true;
        };
        m_stream = CXmlStreamSource::Create(
            std::make_unique<CExpatReader>(*this, m_schemaType != SchemaType_NoNamespaces, !m_context->GetStripCDATA()),
            std::move(next));
        m_stream->ReadToDocumentElement();
        return;
    }
    CExpatReader reader(*this, m_schemaType != SchemaType_NoNamespaces, !m_context->GetStripCDATA());
    reader.ParseAll(reinterpret_cast<const char*>(data), length);
}

void CXmlDocument::LoadDetected(const unsigned char* data, std::size_t length) {
    std::vector<unsigned char> inflated;
    const Framing framing = DetectFraming(data, length);
    if (framing != Framing::None) {
        // Recorded before inflating, so that corrupt compressed input is still reported as compressed.
        m_detectedFormat.compression = framing == Framing::Gzip ? CompressionType_GZip : CompressionType_ZLib;
        if (Inflate(data, length, framing, inflated)) {
            data = inflated.data();
            length = inflated.size();
        } else {
            m_detectedFormat.compression = CompressionType_None;
        }
    }
    bool fastInfoset;
    try {
        fastInfoset = g_fastInfosetLoader(*this, data, static_cast<std::uint32_t>(length), *m_context);
    } catch (...) {
        // The reader only throws for input it took as Fast Infoset.
        m_detectedFormat.format = XmlInputFormat_FastInfoset;
        throw;
    }
    if (fastInfoset) {
        m_detectedFormat.format = XmlInputFormat_FastInfoset;
    } else {
        ParseText(data, length);
    }
    // Read while binding, the source goes on in the inflated bytes.
    if (m_stream && !inflated.empty()) m_stream->Adopt(std::move(inflated));
}

void CXmlDocument::LoadXml(const char* xml) {
    Cleanup();
    const std::size_t length = xml != nullptr ? std::strlen(xml) : 0;
    if (length == 0) throw CQmException("XML String is empty!");
    if (length > kMaxInputLength) throw CQmInvalidParamException("XML String is too long");
    // Parsed in place: Expat copies what it needs, piece by piece.
    ParseText(reinterpret_cast<const unsigned char*>(xml), length);
}

void CXmlDocument::LoadXml(const unsigned short* xml) {
    Cleanup();
    std::size_t units = 0;
    if (xml != nullptr)
        while (xml[units] != 0) ++units;
    if (units > (kMaxInputLength - 2) / 2) throw CQmInvalidParamException("XML String is too long");
    // A byte-order mark, then the characters as UTF-16 little-endian.
    std::vector<unsigned char> bytes(units * 2 + 2);
    bytes[0] = 0xff;
    bytes[1] = 0xfe;
    for (std::size_t i = 0; i < units; ++i) {
        bytes[2 + 2 * i] = static_cast<unsigned char>(xml[i] & 0xff);
        bytes[3 + 2 * i] = static_cast<unsigned char>(xml[i] >> 8);
    }
    ParseText(bytes.data(), bytes.size());
    if (m_stream) m_stream->Adopt(std::move(bytes));
}

void CXmlDocument::LoadXmlStream(unsigned char* const data, std::uint32_t length) {
    Cleanup();
    if (length == 0 || data == nullptr) throw CQmException("XML Stream is empty!");
    // No copy: uncompressed input is parsed straight from the caller's bytes.
    LoadDetected(data, length);
}

void CXmlDocument::Load(const char* fileName) {
    Cleanup();
    if (GetAsyncFromXmlFile()) {
        LoadFileInChunks(fileName);
        return;
    }
    std::size_t length = 0;
    std::unique_ptr<unsigned char[]> contents;
    {
        platform::CFileReader file(fileName);
        contents = file.ReadAll(length);
    }  // closed before parsing
    if (length == 0) throw CQmException("Invalid or empty XML document");
    LoadDetected(contents.get(), length);
    if (m_stream) m_stream->Adopt(std::move(contents));
}

void CXmlDocument::LoadFileInChunks(const char* fileName) {
    // Shared with the stream source when the document is read while binding.
    struct ChunkedFile {
        explicit ChunkedFile(const char* name) : file(name), chunk(new unsigned char[kFileChunk]) {}
        platform::CFileReader file;
        std::unique_ptr<unsigned char[]> chunk;
        std::size_t total = 0;
        bool done = false;
    };
    auto input = std::make_shared<ChunkedFile>(fileName);
    auto next = [this, input](const char*& piece, std::size_t& size, bool& last) {
        if (input->done) return false;
        const std::size_t got = input->file.ReadChunk(input->chunk.get(), kFileChunk);
        input->total += got;
        // Expat reports an empty input as a parse error; an empty file is refused plainly.
        if (input->total == 0) throw CQmException("Invalid or empty XML document");
        if (input->total == got) DetectText(input->chunk.get(), got);
        // A short chunk is the last; after a full one, the final call may be empty.
        last = input->done = got < kFileChunk;
        piece = reinterpret_cast<const char*>(input->chunk.get());
        size = got;
        return true;
    };
    auto reader =
        std::make_unique<CExpatReader>(*this, m_schemaType != SchemaType_NoNamespaces, !m_context->GetStripCDATA());
    if (m_streamRequested) {
        m_stream = CXmlStreamSource::Create(std::move(reader), std::move(next));
        m_stream->ReadToDocumentElement();
    } else {
        const char* piece = nullptr;
        std::size_t size = 0;
        bool last = false;
        while (next(piece, size, last)) reader->Parse(piece, size, last);
    }
    if (m_documentElement == nullptr) throw CQmException("Invalid or empty XML document");
}

}  // namespace QmXmlLib10
