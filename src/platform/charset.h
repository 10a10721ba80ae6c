// Conversion between the application's 8-bit strings (the local encoding set
// with SetLocalCharEncoding) and UTF-8 / UTF-16. Internal to the library.
#pragma once

#include <cstddef>
#include <string>

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

// Appends UTF-16 (host order, zero-terminated or with an explicit unit count)
// converted to UTF-8. Unpaired surrogates throw CQmInvalidValueException.
void Utf16ToUtf8(const unsigned short* text, std::size_t units, std::string& out);

}  // namespace platform
}  // namespace QmXmlLib10
