// Conversion between the application's 8-bit strings (the local encoding set
// with SetLocalCharEncoding) and UTF-8 / UTF-16. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/same_bytes.h"

namespace QmXmlLib10 {
namespace platform {

// Throws CQmInvalidParamException when the code page has no converter here.
void CheckCodePage(unsigned int codePage);

// True when no conversion is needed between local strings and UTF-8
// (ASCIIOnly is on, or the local encoding is UTF-8).
bool LocalIsUtf8();

// Appends the UTF-8 text converted to the local encoding. Pure 7-bit text and
// text under LocalIsUtf8() is appended unchanged, without allocating.
// Characters the local encoding cannot represent throw CQmInvalidValueException.
void Utf8ToLocal(const char* text, std::size_t length, std::string& out);

// Appends the local text converted to UTF-8 (unchanged under LocalIsUtf8()).
// Bytes invalid in the local encoding throw CQmInvalidValueException.
void LocalToUtf8(const char* text, std::size_t length, std::string& out);

// Appends the local text as UTF-16 little-endian bytes (no byte-order mark).
// Under ASCIIOnly each byte becomes one 16-bit unit.
void LocalToUtf16LE(const char* text, std::size_t length, std::string& out);

// True when every byte is printable ASCII (space to DEL), read a word at a time.
inline bool IsPrintableAscii(const char* text, std::size_t length) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighs = 0x8080808080808080ull;
    // A byte below a space borrows when a space is taken from it.
    const auto printable = [](std::uint64_t word) { return ((word | ((word - kOnes * 0x20) & ~word)) & kHighs) == 0; };
    if (length < 8) {
        // Byte by byte: a word read back right after a short copy would stall.
        unsigned char any = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const unsigned char c = static_cast<unsigned char>(text[i]);
            any |= static_cast<unsigned char>(c | ((c - 0x20) & 0x80 & ~c));
        }
        return (any & 0x80) == 0;
    }
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        if (!printable(bytes::Load64(text + i))) return false;
    }
    return i == length || printable(bytes::Load64(text + length - 8));  // the last eight, overlapping
}

bool IsXmlUtf8Slow(const char* text, std::size_t length);

// True when the bytes are well-formed UTF-8 of characters that XML 1.0
// allows in a document (tab, line feed, carriage return, U+0020 and above but
// for surrogates, U+FFFE and U+FFFF).
inline bool IsXmlUtf8(const char* text, std::size_t length) {
    return IsPrintableAscii(text, length) || IsXmlUtf8Slow(text, length);
}

// Appends UTF-16 (host order, zero-terminated or with an explicit unit count)
// converted to UTF-8. Unpaired surrogates throw CQmInvalidValueException.
void Utf16ToUtf8(const unsigned short* text, std::size_t units, std::string& out);

}  // namespace platform
}  // namespace QmXmlLib10
