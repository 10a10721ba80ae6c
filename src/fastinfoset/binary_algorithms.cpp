#include "qmxml/fastinfoset/binary_algorithms.h"

#include <cstring>

#include "platform/charset.h"
#include "qmxml/core/exception.h"
#include "qmxml/types/conversions.h"

namespace QmXmlLib10 {

namespace {

constexpr auto kRule = CWhitespaceUtils::WhitespaceRule_Preserve;

void AppendBigEndian(std::string& out, std::uint64_t value, int octets) {
    for (int i = octets - 1; i >= 0; --i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

std::uint64_t ReadBigEndian(const unsigned char* p, int octets) {
    std::uint64_t value = 0;
    for (int i = 0; i < octets; ++i) value = (value << 8) | p[i];
    return value;
}

void AppendSeparated(std::string& out, const std::string& value) {
    if (!out.empty()) out.push_back(' ');
    out += value;
}

// Each value of `size` octets in turn, after checking that they divide the data.
template <class F>
std::string EachValue(const unsigned char* data, std::uint32_t length, std::uint32_t size, const char* message,
                      F&& toText) {
    if (length % size != 0) throw CQmException(message);
    std::string out;
    for (std::uint32_t i = 0; i < length; i += size) AppendSeparated(out, toText(data + i));
    return out;
}

}  // namespace

CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

void CFastInfosetBinaryData::SetAsEncodedString(std::uint32_t algorithm, const char* text) {
    Clear();
    const std::string value = text ? text : "";
    std::string octets;
    switch (algorithm) {
        case Algorithm_Hexadecimal:
            SetAsHexString(value.c_str());
            return;
        case Algorithm_Uuid:
            SetAsHexString(value.c_str());
            if (GetLength() != 16) {
                Clear();
                throw CQmException("Invalid value for UUID byte encoding.");
            }
            return;
        case Algorithm_Base64:
            SetAsBase64(value.c_str());
            return;
        case Algorithm_Short:
            AppendBigEndian(octets, static_cast<std::uint16_t>(CConversions::i2FromString(value, kRule)), 2);
            break;
        case Algorithm_Int:
            AppendBigEndian(octets, static_cast<std::uint32_t>(CConversions::i4FromString(value, kRule)), 4);
            break;
        case Algorithm_Long:
            AppendBigEndian(octets, static_cast<std::uint64_t>(CConversions::i8FromString(value, kRule)), 8);
            break;
        case Algorithm_Boolean:
            // Four bits counting the three unused bits, the value bit, three unused bits.
            octets.push_back(CConversions::booleanFromString(value, kRule) ? 0x38 : 0x30);
            break;
        case Algorithm_Float: {
            const float f = CConversions::r4FromString(value, kRule);
            std::uint32_t bits = 0;
            std::memcpy(&bits, &f, sizeof bits);
            AppendBigEndian(octets, bits, 4);
            break;
        }
        case Algorithm_Double: {
            const double d = CConversions::r8FromString(value, kRule);
            std::uint64_t bits = 0;
            std::memcpy(&bits, &d, sizeof bits);
            AppendBigEndian(octets, bits, 8);
            break;
        }
        case Algorithm_Cdata:
            platform::LocalToUtf8(value.data(), value.size(), octets);
            break;
        default:
            throw CQmException("Unknown byte encoding.");
    }
    SetBuffer(reinterpret_cast<const unsigned char*>(octets.data()), static_cast<std::uint32_t>(octets.size()));
}

std::string CFastInfosetBinaryData::GetAsString(std::uint32_t algorithm) const {
    const unsigned char* data = GetData();
    const std::uint32_t length = GetLength();
    switch (algorithm) {
        case Algorithm_Hexadecimal:
            return GetAsHexString();
        case Algorithm_Base64:
            return GetAsBase64();
        case Algorithm_Short:
            return EachValue(data, length, 2, "Invalid value for SHORT byte encoding.", [](const unsigned char* p) {
                return CConversions::i2ToString(static_cast<short>(static_cast<std::uint16_t>(ReadBigEndian(p, 2))));
            });
        case Algorithm_Int:
            return EachValue(data, length, 4, "Invalid value for INT byte encoding.", [](const unsigned char* p) {
                return CConversions::i4ToString(static_cast<std::int32_t>(static_cast<std::uint32_t>(ReadBigEndian(p, 4))));
            });
        case Algorithm_Long:
            return EachValue(data, length, 8, "Invalid value for LONG byte encoding.", [](const unsigned char* p) {
                return CConversions::i8ToString(static_cast<std::int64_t>(ReadBigEndian(p, 8)));
            });
        case Algorithm_Boolean: {
            // The first four bits count the unused bits at the end of the last octet.
            const std::uint32_t unused = length == 0 ? 0 : data[0] >> 4;
            if (length == 0 || unused > 7 || length * 8 < 4 + unused) {
                throw CQmException("Invalid value for BOOLEAN byte encoding.");
            }
            std::string out;
            const std::uint32_t end = length * 8 - unused;
            for (std::uint32_t bit = 4; bit < end; ++bit) {
                const bool value = (data[bit / 8] >> (7 - bit % 8)) & 1;
                AppendSeparated(out, CConversions::booleanToString(value));
            }
            return out;
        }
        case Algorithm_Float:
            return EachValue(data, length, 4, "Invalid value for FLOAT byte encoding.", [](const unsigned char* p) {
                const auto bits = static_cast<std::uint32_t>(ReadBigEndian(p, 4));
                float f = 0;
                std::memcpy(&f, &bits, sizeof f);
                return CConversions::r4ToString(f);
            });
        case Algorithm_Double:
            return EachValue(data, length, 8, "Invalid value for DOUBLE byte encoding.", [](const unsigned char* p) {
                const std::uint64_t bits = ReadBigEndian(p, 8);
                double d = 0;
                std::memcpy(&d, &bits, sizeof d);
                return CConversions::r8ToString(d);
            });
        case Algorithm_Uuid:
            if (length == 0) throw CQmException("Invalid value for UUID byte encoding.");
            return EachValue(data, length, 16, "Invalid value for UUID byte encoding.",
                             [](const unsigned char* p) { return CBinaryData::GetAsHexString(p, 16); });
        case Algorithm_Cdata: {
            std::string out;
            if (length != 0) platform::Utf8ToLocal(reinterpret_cast<const char*>(data), length, out);
            return out;
        }
        default:
            throw CQmException("Unknown byte encoding.");
    }
}

}  // namespace QmXmlLib10
