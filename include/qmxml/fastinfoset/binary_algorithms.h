// The built-in encoding algorithms of Fast Infoset: typed values as octets.
#pragma once

#include <cstdint>
#include <string>

#include "qmxml/types/binary_data.h"

namespace QmXmlLib10 {

// The octets of one algorithm's data. Texts are in the local character
// encoding; numbers, booleans and binary values use the library's lexical
// forms (CConversions).
class CFastInfosetBinaryData : public CBinaryData {
public:
    // The standard's numbering.
    enum Algorithm : std::uint32_t {
        Algorithm_Hexadecimal = 1,
        Algorithm_Base64 = 2,
        Algorithm_Short = 3,
        Algorithm_Int = 4,
        Algorithm_Long = 5,
        Algorithm_Boolean = 6,
        Algorithm_Float = 7,
        Algorithm_Double = 8,
        Algorithm_Uuid = 9,
        Algorithm_Cdata = 10,
    };

    CFastInfosetBinaryData() = default;
    explicit CFastInfosetBinaryData(const CBinaryData& data) : CBinaryData(data) {}
    CFastInfosetBinaryData(unsigned char* data, std::uint32_t length, bool adopt) : CBinaryData(data, length, adopt) {}
    explicit CFastInfosetBinaryData(const char* text) : CBinaryData(text) {}
    ~CFastInfosetBinaryData() override;

    // Replaces the value with the octets of one value's text: hexadecimal and
    // uuid take hex digits (a uuid exactly 16 octets of them), integers are
    // big-endian two's complement, floats big-endian IEEE 754, a boolean the
    // one octet 0x30 (false) or 0x38 (true), cdata the text's UTF-8.
    // Throws "Unknown byte encoding." for an algorithm outside 1 to 10 and
    // passes the text conversions' errors through. On failure the value is empty.
    void SetAsEncodedString(std::uint32_t algorithm, const char* text);

    // The text of every value the octets hold, separated by one space.
    // Integers, floats and uuids need a whole number of values ("Invalid value
    // for SHORT byte encoding." and alike); a uuid prints as 32 upper-case hex
    // digits. A boolean needs its four-bit count of unused trailing bits to
    // fit ("Invalid value for BOOLEAN byte encoding.").
    std::string GetAsString(std::uint32_t algorithm) const;
};

}  // namespace QmXmlLib10
