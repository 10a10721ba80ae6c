// The standard's bit layouts of integers and lengths, as the Fast Infoset
// writer produces them. Internal to the library (the tests call them).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace QmXmlLib10 {
namespace fi_layout {

// The nine XML declarations a document may start with, by declaration number
// less one, and the four octets that identify the binary form.
inline const char* const kDeclarations[] = {
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
inline const unsigned char kIdentification[] = {0xE0, 0x00, 0x00, 0x01};

// Each writes at `out` and returns the position after what it wrote; `high`
// holds the bits already set in the current octet (those before the starting
// bit), the layout fills the rest. Integers 1 to 2^20 (0 to 2^20 for the zero
// form) and lengths from 1. An integer takes at most 4 octets, a length 5.
constexpr std::size_t MaxIntegerOctets = 4;
constexpr std::size_t MaxLengthOctets = 5;

inline unsigned char* Octet(unsigned char* out, unsigned int octet) {
    *out = static_cast<unsigned char>(octet);
    return out + 1;
}

inline unsigned char* BigEndian(unsigned char* out, std::uint32_t value, int octets) {
    for (int i = octets - 1; i >= 0; --i) *out++ = static_cast<unsigned char>(value >> (8 * i));
    return out;
}

inline unsigned char* IntegerBit2(unsigned char* out, unsigned char high, std::uint32_t value) {
    if (value <= 64) return Octet(out, high | (value - 1));
    if (value <= 8256) {
        const std::uint32_t v = value - 65;
        out = Octet(out, high | 0x40 | (v >> 8));
        return Octet(out, v & 0xFF);
    }
    const std::uint32_t v = value - 8257;
    out = Octet(out, high | 0x60 | ((v >> 16) & 0xFF));
    return BigEndian(out, v, 2);
}

inline unsigned char* IntegerZeroBit2(unsigned char* out, unsigned char high, std::uint32_t value) {
    return value == 0 ? Octet(out, high | 0x7F) : IntegerBit2(out, high, value);
}

// From 526369 the value is written less 526368, one less than the standard.
inline unsigned char* IntegerBit3(unsigned char* out, unsigned char high, std::uint32_t value) {
    if (value <= 32) return Octet(out, high | (value - 1));
    if (value <= 2080) {
        const std::uint32_t v = value - 33;
        out = Octet(out, high | 0x20 | (v >> 8));
        return Octet(out, v & 0xFF);
    }
    if (value <= 526368) {
        const std::uint32_t v = value - 2081;
        out = Octet(out, high | 0x28 | ((v >> 16) & 0xFF));
        return BigEndian(out, v, 2);
    }
    // One less than the standard's offset: kept on purpose, the reader adds 526369.
    out = Octet(out, high | 0x30);
    return BigEndian(out, value - 526368, 3);
}

inline unsigned char* IntegerBit4(unsigned char* out, unsigned char high, std::uint32_t value) {
    if (value <= 16) return Octet(out, high | (value - 1));
    if (value <= 1040) {
        const std::uint32_t v = value - 17;
        out = Octet(out, high | 0x10 | (v >> 8));
        return Octet(out, v & 0xFF);
    }
    if (value <= 263184) {
        const std::uint32_t v = value - 1041;
        out = Octet(out, high | 0x14 | ((v >> 16) & 0xFF));
        return BigEndian(out, v, 2);
    }
    out = Octet(out, high | 0x18);
    return BigEndian(out, value - 263185, 3);
}

// The three length layouts differ only in where their one-octet and
// two-octet forms end and in the marker bits of the longer forms.
inline unsigned char* Length(unsigned char* out, unsigned char high, std::uint32_t length, std::uint32_t oneOctetMax,
                             unsigned char twoOctetMarker, std::uint32_t twoOctetMax, unsigned char longMarker) {
    if (length <= oneOctetMax) return Octet(out, high | (length - 1));
    if (length <= twoOctetMax) {
        out = Octet(out, high | twoOctetMarker);
        return Octet(out, length - oneOctetMax - 1);
    }
    out = Octet(out, high | longMarker);
    return BigEndian(out, length - twoOctetMax - 1, 4);
}

inline unsigned char* LengthBit2(unsigned char* out, unsigned char high, std::uint32_t length) {
    return Length(out, high, length, 64, 0x40, 320, 0x60);
}

inline unsigned char* LengthBit5(unsigned char* out, unsigned char high, std::uint32_t length) {
    return Length(out, high, length, 8, 0x08, 264, 0x0C);
}

inline unsigned char* LengthBit7(unsigned char* out, unsigned char high, std::uint32_t length) {
    return Length(out, high, length, 2, 0x02, 258, 0x03);
}

// The same layouts appended to a string.
void IntegerBit2(std::string& out, unsigned char high, std::uint32_t value);
void IntegerZeroBit2(std::string& out, unsigned char high, std::uint32_t value);
void IntegerBit3(std::string& out, unsigned char high, std::uint32_t value);
void IntegerBit4(std::string& out, unsigned char high, std::uint32_t value);
void LengthBit2(std::string& out, unsigned char high, std::uint32_t length);
void LengthBit5(std::string& out, unsigned char high, std::uint32_t length);
void LengthBit7(std::string& out, unsigned char high, std::uint32_t length);

}  // namespace fi_layout
}  // namespace QmXmlLib10
