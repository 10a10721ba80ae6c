// Byte strings: the value of xs:base64Binary and xs:hexBinary members and the
// octet buffer of the Fast Infoset writer and reader.
#pragma once

#include <cstdint>
#include <string>

#include <qmxml/core/enums.h>

namespace QmXmlLib10 {

// Base64 codec (alphabet A-Z a-z 0-9 + /, '=' padding, no line breaks).
class CBase64 {
public:
    // Encodes length octets. The result has 4 * ceil(length / 3) characters;
    // an empty input gives an empty string.
    static std::string Encode(const unsigned char* data, std::uint32_t length);

    // Decodes textLength characters of text into out and returns the number of
    // octets written. out must hold at least textLength octets. Characters are
    // looked up by their low seven bits; '=', space, tab, CR and LF are skipped
    // wherever they stand. The first character outside the alphabet stops
    // decoding and the result is then 0 octets. Bits of a trailing partial
    // octet are dropped.
    static std::uint32_t Decode(const char* text, std::uint32_t textLength, unsigned char* out);
};

// A byte string over a shared, reference-counted, copy-on-write buffer.
//
// Copies share one buffer; a holder that changes its value (append, indexed
// write, release) first takes a private copy, so the other holders never see
// the change. Each buffer carries its own lock, so handles on different
// threads may share a buffer. One handle must not be changed from two threads
// at once; const operations on one handle (copying it, reading it) may run on
// several threads together.
//
// Memory: octet buffers are allocated with std::malloc and freed with
// std::free. A pointer adopted by the constructor must come from std::malloc
// (or realloc/calloc), and the pointer returned by ReleaseData must be freed
// with std::free.
class CBinaryData {
public:
    // An empty value: no buffer, GetData() null, GetLength() 0.
    CBinaryData() noexcept = default;
    // Shares other's buffer.
    CBinaryData(const CBinaryData& other);
    CBinaryData(CBinaryData&& other) noexcept;
    // adopt true: takes ownership of data (std::malloc'd), capacity = length.
    // adopt false: copies into a new allocation of max(2 * length, 8192) octets.
    // A null data with length 0 gives an empty value; a null data with a
    // positive length throws CQmInvalidParamException.
    CBinaryData(unsigned char* data, std::uint32_t length, bool adopt);
    // The characters of text without the terminator; null gives an empty value.
    explicit CBinaryData(const char* text);
    virtual ~CBinaryData();

    // Shares other's buffer. Self-assignment is a no-op.
    CBinaryData& operator=(const CBinaryData& other);
    CBinaryData& operator=(CBinaryData&& other) noexcept;

    // The octets and their count; null and 0 when empty. The pointer stays
    // valid until this handle changes, is cleared or is destroyed.
    const unsigned char* GetData() const;
    std::uint32_t GetLength() const;

    // Add octets at the end. An empty value first gets a buffer of its own.
    // Appending a value to itself, or octets taken from its own buffer, is safe.
    void Append(const unsigned char* data, std::uint32_t length);
    void Append(char octet);
    void Append(const char* text);  // without the terminator; null adds nothing
    void Append(const std::string& text);
    void Append(const CBinaryData& other);

    // Replace the value with a copy of the given octets (or characters).
    void SetBuffer(const unsigned char* data, std::uint32_t length);
    void SetBuffer(const char* text);

    // Hands the octets to the caller, who frees them with std::free; the value
    // becomes empty. Returns null for an empty value. Read GetLength() first.
    unsigned char* ReleaseData();

    // Drops this holder's reference; the value becomes empty.
    void Clear();

    // Equal lengths and equal octets (an empty value equals a zero-length one).
    bool operator==(const CBinaryData& other) const;
    bool operator!=(const CBinaryData& other) const { return !(*this == other); }

    // The octet at index; an index not below GetLength() throws
    // CQmInvalidParamException. The non-const form makes the buffer private
    // first; its reference is valid until the next change or copy of this
    // handle (writing through it after copying the handle changes both).
    unsigned char operator[](std::uint32_t index) const;
    unsigned char& operator[](std::uint32_t index);

    // Base64 text of the octets (no line breaks); "" when empty.
    std::string GetAsBase64() const;
    // Replaces the value with the decoded text. Invalid text (or null) gives
    // an empty value and no error.
    void SetAsBase64(const char* text);

    // Two upper-case hex digits per octet, high half first.
    std::string GetAsHexString() const;
    // Replaces the value with the octets of a hex text (digits and A-F in
    // either case). Throws CQmException "Invalid length in hex string" or
    // "Invalid char in hex string [%c]"; the value is unchanged then. Null or
    // "" gives an empty value.
    void SetAsHexString(const char* text);

    // One-shot deflate at level 1 of the whole input into an output buffer of
    // the input's size: type 1 gzip framing, type 2 zlib framing. Data that
    // does not shrink enough (including empty input) throws CQmException
    // "Failed to compress data. [Error Code: %d]" with zlib's result; any other
    // type throws CQmInvalidParamException.
    static CBinaryData Compress(const unsigned char* data, std::uint32_t length,
                                CompressionType type);

protected:
    static std::string GetAsHexString(const unsigned char* data, std::uint32_t length);
    // Parses a hex text into a new std::malloc'd buffer stored in out (null for
    // an empty text) and returns the octet count. Throws as SetAsHexString.
    static std::uint32_t ConvertToHexData(const char* text, unsigned char*& out);

private:
    struct SharedBuffer;

    // Gives this handle a buffer that no other handle shares.
    void MakePrivate();
    static void Release(SharedBuffer* buffer);

    SharedBuffer* m_buffer = nullptr;
};

}  // namespace QmXmlLib10
