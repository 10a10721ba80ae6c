// Equality of short byte runs, inline. Names and namespace URIs are compared
// for every element read; a call to memcmp costs more than the comparison.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace QmXmlLib10 {
namespace bytes {

inline std::uint64_t Load64(const char* p) noexcept {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// From eight bytes on, the last word overlaps the one before instead of a byte loop.
inline bool SameBytes(const char* a, const char* b, std::size_t length) noexcept {
    if (length < 8) {
        for (; length > 0; ++a, ++b, --length)
            if (*a != *b) return false;
        return true;
    }
    for (std::size_t i = 0; i + 8 < length; i += 8)
        if (Load64(a + i) != Load64(b + i)) return false;
    return Load64(a + length - 8) == Load64(b + length - 8);
}

inline bool SameString(const std::string& a, const std::string& b) noexcept {
    return a.size() == b.size() && SameBytes(a.data(), b.data(), a.size());
}

}  // namespace bytes
}  // namespace QmXmlLib10
