#include "fastinfoset/fi_layouts.h"

namespace QmXmlLib10 {
namespace fi_layout {

namespace {

template <unsigned char* (*Layout)(unsigned char*, unsigned char, std::uint32_t)>
void AppendTo(std::string& out, unsigned char high, std::uint32_t value) {
    unsigned char octets[MaxLengthOctets];
    const unsigned char* end = Layout(octets, high, value);
    out.append(reinterpret_cast<const char*>(octets), static_cast<std::size_t>(end - octets));
}

}  // namespace

void IntegerBit2(std::string& out, unsigned char high, std::uint32_t value) { AppendTo<IntegerBit2>(out, high, value); }
void IntegerZeroBit2(std::string& out, unsigned char high, std::uint32_t value) {
    AppendTo<IntegerZeroBit2>(out, high, value);
}
void IntegerBit3(std::string& out, unsigned char high, std::uint32_t value) { AppendTo<IntegerBit3>(out, high, value); }
void IntegerBit4(std::string& out, unsigned char high, std::uint32_t value) { AppendTo<IntegerBit4>(out, high, value); }
void LengthBit2(std::string& out, unsigned char high, std::uint32_t length) { AppendTo<LengthBit2>(out, high, length); }
void LengthBit5(std::string& out, unsigned char high, std::uint32_t length) { AppendTo<LengthBit5>(out, high, length); }
void LengthBit7(std::string& out, unsigned char high, std::uint32_t length) { AppendTo<LengthBit7>(out, high, length); }

}  // namespace fi_layout
}  // namespace QmXmlLib10
