// The standard's bit layouts of integers and lengths, as the Fast Infoset
// writer produces them. Internal to the library (the tests call them).
#pragma once

#include <cstdint>
#include <string>

namespace QmXmlLib10 {
namespace fi_layout {

// Each appends to out; `high` holds the bits already set in the current
// octet (those before the starting bit), the layout fills the rest.
// Integers 1 to 2^20 (0 to 2^20 for the zero form) and lengths from 1.
void IntegerBit2(std::string& out, unsigned char high, std::uint32_t value);
void IntegerZeroBit2(std::string& out, unsigned char high, std::uint32_t value);
// From 526369 the value is written less 526368, one less than the standard.
void IntegerBit3(std::string& out, unsigned char high, std::uint32_t value);
void IntegerBit4(std::string& out, unsigned char high, std::uint32_t value);
void LengthBit2(std::string& out, unsigned char high, std::uint32_t length);
void LengthBit5(std::string& out, unsigned char high, std::uint32_t length);
void LengthBit7(std::string& out, unsigned char high, std::uint32_t length);

}  // namespace fi_layout
}  // namespace QmXmlLib10
