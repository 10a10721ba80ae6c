#include "qmxml/types/binary_data.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <new>

#include <zlib.h>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {

constexpr std::uint32_t kMinCapacity = 8192;
constexpr std::uint64_t kMaxLength = std::numeric_limits<std::uint32_t>::max();

struct FreeDeleter {
    void operator()(unsigned char* p) const noexcept { std::free(p); }
};
using MallocPtr = std::unique_ptr<unsigned char, FreeDeleter>;

// malloc(0) may return null; always hand out a real pointer.
unsigned char* Allocate(std::uint64_t size) {
    void* p = std::malloc(size == 0 ? 1 : static_cast<std::size_t>(size));
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return static_cast<unsigned char*>(p);
}

std::uint32_t Clamp(std::uint64_t size) {
    return static_cast<std::uint32_t>(std::min(size, kMaxLength));
}

std::uint32_t CheckedLength(std::size_t length) {
    if (length > kMaxLength) {
        throw CQmInvalidParamException("Binary data longer than 4 GB");
    }
    return static_cast<std::uint32_t>(length);
}

constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned char kInvalid = 0xFF;
constexpr unsigned char kIgnored = 0xFE;

struct DecodeTable {
    unsigned char entry[256];
};

// Both halves carry the same entries: characters are looked up by their low
// seven bits.
constexpr DecodeTable MakeDecodeTable() {
    DecodeTable table{};
    for (int i = 0; i < 256; ++i) {
        table.entry[i] = kInvalid;
    }
    for (int i = 0; i < 64; ++i) {
        const auto c = static_cast<unsigned char>(kBase64Alphabet[i]);
        table.entry[c] = static_cast<unsigned char>(i);
        table.entry[c + 128] = static_cast<unsigned char>(i);
    }
    constexpr char ignored[] = "= \t\r\n";
    for (int i = 0; ignored[i] != '\0'; ++i) {
        const auto c = static_cast<unsigned char>(ignored[i]);
        table.entry[c] = kIgnored;
        table.entry[c + 128] = kIgnored;
    }
    return table;
}

constexpr DecodeTable kDecodeTable = MakeDecodeTable();

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

// ---------------------------------------------------------------------------
// CBase64

std::string CBase64::Encode(const unsigned char* data, std::uint32_t length) {
    if (length == 0 || data == nullptr) {
        return std::string();
    }
    const std::uint64_t groups = (8ull * length + 5) / 6;
    std::string out(static_cast<std::size_t>((groups + 3) / 4 * 4), '=');
    std::size_t pos = 0;
    std::uint32_t i = 0;
    for (; length - i >= 3; i += 3) {
        const std::uint32_t v = (std::uint32_t{data[i]} << 16) |
                                (std::uint32_t{data[i + 1]} << 8) | data[i + 2];
        out[pos++] = kBase64Alphabet[(v >> 18) & 63];
        out[pos++] = kBase64Alphabet[(v >> 12) & 63];
        out[pos++] = kBase64Alphabet[(v >> 6) & 63];
        out[pos++] = kBase64Alphabet[v & 63];
    }
    const std::uint32_t rest = length - i;
    if (rest > 0) {
        std::uint32_t v = std::uint32_t{data[i]} << 16;
        if (rest == 2) {
            v |= std::uint32_t{data[i + 1]} << 8;
        }
        out[pos++] = kBase64Alphabet[(v >> 18) & 63];
        out[pos++] = kBase64Alphabet[(v >> 12) & 63];
        if (rest == 2) {
            out[pos++] = kBase64Alphabet[(v >> 6) & 63];
        }
    }
    return out;
}

std::uint32_t CBase64::Decode(const char* text, std::uint32_t textLength, unsigned char* out) {
    if (text == nullptr) {
        return 0;
    }
    std::uint32_t written = 0;
    std::uint32_t bits = 0;
    std::uint32_t accum = 0;
    for (std::uint32_t i = 0; i < textLength; ++i) {
        const unsigned char value = kDecodeTable.entry[static_cast<unsigned char>(text[i])];
        if (value == kIgnored) {
            continue;
        }
        if (value == kInvalid) {
            return 0;
        }
        accum = (accum << 6) | value;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out[written++] = static_cast<unsigned char>(accum >> bits);
            accum &= (1u << bits) - 1;
        }
    }
    return written;
}

// ---------------------------------------------------------------------------
// Shared buffer

struct CBinaryData::SharedBuffer {
    unsigned char* data = nullptr;
    std::uint32_t length = 0;
    std::uint32_t capacity = 0;
    std::atomic<int> refCount{1};
    std::mutex lock;

    ~SharedBuffer() { std::free(data); }

    static SharedBuffer* CreateCopy(const unsigned char* source, std::uint32_t length) {
        // Allocate the octets first so a failure leaves nothing behind.
        const std::uint32_t capacity =
            Clamp(std::max<std::uint64_t>(2ull * length, kMinCapacity));
        MallocPtr data(Allocate(capacity));
        if (length > 0) {
            std::memcpy(data.get(), source, length);
        }
        auto* buffer = new SharedBuffer;
        buffer->data = data.release();
        buffer->length = length;
        buffer->capacity = capacity;
        return buffer;
    }
};

void CBinaryData::Release(SharedBuffer* buffer) {
    if (buffer == nullptr) {
        return;
    }
    bool last;
    {
        std::lock_guard<std::mutex> guard(buffer->lock);
        last = --buffer->refCount == 0;
    }
    // Nobody else can reach the buffer once the count is 0.
    if (last) {
        delete buffer;
    }
}

void CBinaryData::MakePrivate() {
    SharedBuffer* old = m_buffer;
    if (old == nullptr) {
        return;
    }
    std::lock_guard<std::mutex> guard(old->lock);
    if (old->refCount < 2) {
        return;
    }
    m_buffer = SharedBuffer::CreateCopy(old->data, old->length);
    // Another holder remains, so the old buffer stays alive.
    --old->refCount;
}

// ---------------------------------------------------------------------------
// CBinaryData

CBinaryData::CBinaryData(const CBinaryData& other) : m_buffer(other.m_buffer) {
    if (m_buffer != nullptr) {
        std::lock_guard<std::mutex> guard(m_buffer->lock);
        ++m_buffer->refCount;
    }
}

CBinaryData::CBinaryData(CBinaryData&& other) noexcept : m_buffer(other.m_buffer) {
    other.m_buffer = nullptr;
}

CBinaryData::CBinaryData(unsigned char* data, std::uint32_t length, bool adopt) {
    if (data == nullptr) {
        if (length > 0) {
            throw CQmInvalidParamException("Null data with a non-zero length");
        }
        return;
    }
    if (!adopt) {
        m_buffer = SharedBuffer::CreateCopy(data, length);
        return;
    }
    MallocPtr owned(data);
    m_buffer = new SharedBuffer;
    m_buffer->data = owned.release();
    m_buffer->length = length;
    m_buffer->capacity = length;
}

CBinaryData::CBinaryData(const char* text) {
    if (text != nullptr) {
        m_buffer = SharedBuffer::CreateCopy(reinterpret_cast<const unsigned char*>(text),
                                            CheckedLength(std::strlen(text)));
    }
}

CBinaryData::~CBinaryData() { Release(m_buffer); }

CBinaryData& CBinaryData::operator=(const CBinaryData& other) {
    if (other.m_buffer != m_buffer) {
        CBinaryData copy(other);
        std::swap(m_buffer, copy.m_buffer);
    }
    return *this;
}

CBinaryData& CBinaryData::operator=(CBinaryData&& other) noexcept {
    if (this != &other) {
        Release(m_buffer);
        m_buffer = other.m_buffer;
        other.m_buffer = nullptr;
    }
    return *this;
}

const unsigned char* CBinaryData::GetData() const {
    return m_buffer != nullptr ? m_buffer->data : nullptr;
}

std::uint32_t CBinaryData::GetLength() const {
    return m_buffer != nullptr ? m_buffer->length : 0;
}

void CBinaryData::Append(const unsigned char* data, std::uint32_t length) {
    if (data == nullptr && length > 0) {
        throw CQmInvalidParamException("Null data with a non-zero length");
    }
    if (m_buffer == nullptr) {
        m_buffer = SharedBuffer::CreateCopy(data, length);
        return;
    }
    // Octets taken from our own buffer must outlive the copy on write, even
    // if another thread drops the last other reference meanwhile.
    CBinaryData pin;
    const std::less<const unsigned char*> before;
    if (data != nullptr && !before(data, m_buffer->data) &&
        before(data, m_buffer->data + m_buffer->length)) {
        pin = *this;
    }
    MakePrivate();
    SharedBuffer* buffer = m_buffer;
    std::lock_guard<std::mutex> guard(buffer->lock);
    if (buffer->refCount > 1) {
        throw CQmException(FormatString("Failed to append. [RefCount=%d]", buffer->refCount.load()));
    }
    const std::uint64_t newLength = std::uint64_t{buffer->length} + length;
    if (newLength > kMaxLength) {
        throw CQmInvalidParamException("Binary data longer than 4 GB");
    }
    if (newLength > buffer->capacity) {
        const std::uint32_t capacity = Clamp(2 * newLength);
        unsigned char* grown = Allocate(capacity);
        if (buffer->length > 0) {
            std::memcpy(grown, buffer->data, buffer->length);
        }
        // Copy before freeing: data may lie in our own octets.
        if (length > 0) {
            std::memcpy(grown + buffer->length, data, length);
        }
        std::free(buffer->data);
        buffer->data = grown;
        buffer->capacity = capacity;
    } else if (length > 0) {
        std::memmove(buffer->data + buffer->length, data, length);
    }
    buffer->length = static_cast<std::uint32_t>(newLength);
}

void CBinaryData::Append(char octet) {
    const auto byte = static_cast<unsigned char>(octet);
    Append(&byte, 1);
}

void CBinaryData::Append(const char* text) {
    if (text != nullptr) {
        Append(reinterpret_cast<const unsigned char*>(text), CheckedLength(std::strlen(text)));
    }
}

void CBinaryData::Append(const std::string& text) {
    Append(reinterpret_cast<const unsigned char*>(text.data()), CheckedLength(text.size()));
}

void CBinaryData::Append(const CBinaryData& other) {
    if (other.m_buffer != nullptr) {
        Append(other.GetData(), other.GetLength());
    }
}

void CBinaryData::SetBuffer(const unsigned char* data, std::uint32_t length) {
    // Build first: data may lie in the buffer being replaced.
    CBinaryData fresh(const_cast<unsigned char*>(data), length, false);
    *this = std::move(fresh);
}

void CBinaryData::SetBuffer(const char* text) {
    CBinaryData fresh(text);
    *this = std::move(fresh);
}

unsigned char* CBinaryData::ReleaseData() {
    if (m_buffer == nullptr) {
        return nullptr;
    }
    MakePrivate();
    SharedBuffer* buffer = m_buffer;
    unsigned char* data;
    {
        std::lock_guard<std::mutex> guard(buffer->lock);
        const int remaining = --buffer->refCount;
        if (remaining > 0) {
            ++buffer->refCount;
            throw CQmException(FormatString("Failed to release data. [RefCount=%d]", remaining));
        }
        data = buffer->data;
        buffer->data = nullptr;
    }
    delete buffer;
    m_buffer = nullptr;
    return data;
}

void CBinaryData::Clear() {
    Release(m_buffer);
    m_buffer = nullptr;
}

bool CBinaryData::operator==(const CBinaryData& other) const {
    if (m_buffer == other.m_buffer) {
        return true;
    }
    const std::uint32_t length = GetLength();
    if (length != other.GetLength()) {
        return false;
    }
    return length == 0 || std::memcmp(GetData(), other.GetData(), length) == 0;
}

unsigned char CBinaryData::operator[](std::uint32_t index) const {
    if (index >= GetLength()) {
        throw CQmInvalidParamException(
            FormatString("Index [%u] out of range [%u]", index, GetLength()));
    }
    return m_buffer->data[index];
}

unsigned char& CBinaryData::operator[](std::uint32_t index) {
    if (index >= GetLength()) {
        throw CQmInvalidParamException(
            FormatString("Index [%u] out of range [%u]", index, GetLength()));
    }
    MakePrivate();
    return m_buffer->data[index];
}

std::string CBinaryData::GetAsBase64() const {
    return CBase64::Encode(GetData(), GetLength());
}

void CBinaryData::SetAsBase64(const char* text) {
    const std::uint32_t textLength = text != nullptr ? CheckedLength(std::strlen(text)) : 0;
    if (textLength == 0) {
        Clear();
        return;
    }
    MallocPtr decoded(Allocate(std::uint64_t{textLength} + 1));
    const std::uint32_t length = CBase64::Decode(text, textLength, decoded.get());
    if (length == 0) {
        Clear();
        return;
    }
    CBinaryData fresh(decoded.release(), length, true);
    *this = std::move(fresh);
}

std::string CBinaryData::GetAsHexString() const {
    return GetAsHexString(GetData(), GetLength());
}

std::string CBinaryData::GetAsHexString(const unsigned char* data, std::uint32_t length) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string out;
    if (data == nullptr) {
        return out;
    }
    out.resize(2 * static_cast<std::size_t>(length));
    for (std::uint32_t i = 0; i < length; ++i) {
        out[2 * i] = digits[data[i] >> 4];
        out[2 * i + 1] = digits[data[i] & 0x0F];
    }
    return out;
}

std::uint32_t CBinaryData::ConvertToHexData(const char* text, unsigned char*& out) {
    out = nullptr;
    const std::size_t textLength = text != nullptr ? std::strlen(text) : 0;
    if (textLength % 2 != 0) {
        throw CQmException("Invalid length in hex string");
    }
    const std::uint32_t length = CheckedLength(textLength / 2);
    if (length == 0) {
        return 0;
    }
    MallocPtr data(Allocate(length));
    for (std::uint32_t i = 0; i < length; ++i) {
        const int high = HexValue(text[2 * i]);
        if (high < 0) {
            throw CQmException(FormatString("Invalid char in hex string [%c]", text[2 * i]));
        }
        const int low = HexValue(text[2 * i + 1]);
        if (low < 0) {
            throw CQmException(FormatString("Invalid char in hex string [%c]", text[2 * i + 1]));
        }
        data.get()[i] = static_cast<unsigned char>((high << 4) | low);
    }
    out = data.release();
    return length;
}

void CBinaryData::SetAsHexString(const char* text) {
    unsigned char* data = nullptr;
    const std::uint32_t length = ConvertToHexData(text, data);
    CBinaryData fresh(data, length, true);
    *this = std::move(fresh);
}

CBinaryData CBinaryData::Compress(const unsigned char* data, std::uint32_t length,
                                  CompressionType type) {
    if (type != CompressionType_GZip && type != CompressionType_ZLib) {
        throw CQmInvalidParamException(
            FormatString("Invalid compression type [%d]", static_cast<int>(type)));
    }
    if (data == nullptr && length > 0) {
        throw CQmInvalidParamException("Null data with a non-zero length");
    }
    // The output gets only the input's size: data that does not shrink fails.
    MallocPtr out(Allocate(length));

    z_stream stream{};
    int rc = type == CompressionType_GZip
                 ? deflateInit2(&stream, 1, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY)
                 : deflateInit(&stream, 1);
    if (rc != Z_OK) {
        throw CQmException(FormatString("Failed to compress data. [Error Code: %d]", rc));
    }
    stream.next_in = const_cast<Bytef*>(data);
    stream.avail_in = length;
    stream.next_out = out.get();
    stream.avail_out = length;
    deflate(&stream, Z_NO_FLUSH);
    rc = deflate(&stream, Z_FINISH);
    const auto produced = static_cast<std::uint32_t>(stream.total_out);
    deflateEnd(&stream);
    if (rc != Z_STREAM_END) {
        throw CQmException(FormatString("Failed to compress data. [Error Code: %d]", rc));
    }
    return CBinaryData(out.release(), produced, true);
}

}  // namespace QmXmlLib10
