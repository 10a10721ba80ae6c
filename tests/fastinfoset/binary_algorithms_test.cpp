#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <qmxml/core/exception.h>
#include <qmxml/fastinfoset/binary_algorithms.h>

#include "expect_throw.h"

using namespace QmXmlLib10;

namespace {

using Octets = std::vector<unsigned char>;

Octets Encode(std::uint32_t algorithm, const char* text) {
    CFastInfosetBinaryData data;
    data.SetAsEncodedString(algorithm, text);
    return Octets(data.GetData(), data.GetData() + data.GetLength());
}

std::string Decode(std::uint32_t algorithm, Octets octets) {
    CFastInfosetBinaryData data(octets.data(), static_cast<std::uint32_t>(octets.size()), false);
    return data.GetAsString(algorithm);
}

using qmxml_test::MessageOf;

}  // namespace

TEST(FastInfosetAlgorithms, EncodeEachAlgorithm) {
    EXPECT_EQ(Encode(1, "0aFF"), (Octets{0x0A, 0xFF}));
    EXPECT_EQ(Encode(2, "AQID"), (Octets{1, 2, 3}));
    EXPECT_EQ(Encode(3, "-2"), (Octets{0xFF, 0xFE}));
    EXPECT_EQ(Encode(3, "32767"), (Octets{0x7F, 0xFF}));
    EXPECT_EQ(Encode(4, "1"), (Octets{0, 0, 0, 1}));
    EXPECT_EQ(Encode(4, "-2147483648"), (Octets{0x80, 0, 0, 0}));
    EXPECT_EQ(Encode(5, "-1"), (Octets{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Encode(5, "4294967295"), (Octets{0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Encode(6, "true"), (Octets{0x38}));
    EXPECT_EQ(Encode(6, "false"), (Octets{0x30}));
    EXPECT_EQ(Encode(6, "1"), (Octets{0x38}));
    EXPECT_EQ(Encode(7, "1.5"), (Octets{0x3F, 0xC0, 0, 0}));
    EXPECT_EQ(Encode(7, "-INF"), (Octets{0xFF, 0x80, 0, 0}));
    EXPECT_EQ(Encode(8, "-2"), (Octets{0xC0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Encode(9, "00112233445566778899aabbccddeeff"),
              (Octets{0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
    EXPECT_EQ(Encode(10, "a\xC3\xA9"), (Octets{'a', 0xC3, 0xA9}));
    EXPECT_EQ(Encode(10, ""), Octets{});
}

TEST(FastInfosetAlgorithms, DecodeEachAlgorithm) {
    EXPECT_EQ(Decode(1, {0x0A, 0xFF}), "0AFF");
    EXPECT_EQ(Decode(2, {1, 2, 3}), "AQID");
    EXPECT_EQ(Decode(3, {0xFF, 0xFE, 0x00, 0x07}), "-2 7");
    EXPECT_EQ(Decode(3, {}), "");
    EXPECT_EQ(Decode(4, {0, 0, 0, 1, 0x80, 0, 0, 0}), "1 -2147483648");
    EXPECT_EQ(Decode(5, {0x80, 0, 0, 0, 0, 0, 0, 0}), "-9223372036854775808");
    EXPECT_EQ(Decode(6, {0x38}), "true");
    EXPECT_EQ(Decode(6, {0x30}), "false");
    // Count 0: the four bits after the count and a whole second octet.
    EXPECT_EQ(Decode(6, {0x05, 0x80}), "false true false true true false false false false false false false");
    EXPECT_EQ(Decode(6, {0x40}), "");
    EXPECT_EQ(Decode(7, {0x3F, 0xC0, 0, 0, 0x7F, 0xC0, 0, 0}), "1.5 NaN");
    EXPECT_EQ(Decode(8, {0xC0, 0, 0, 0, 0, 0, 0, 0}), "-2");
    const std::string uuid = "ABABABABABABABABABABABABABABABAB";
    EXPECT_EQ(Decode(9, Octets(32, 0xAB)), uuid + " " + uuid);
    EXPECT_EQ(Decode(10, {'a', 0xC3, 0xA9}), "a\xC3\xA9");
    // Round trips through the lexical forms.
    for (const char* text : {"-32768", "0", "12345"}) EXPECT_EQ(Decode(3, Encode(3, text)), text);
    for (const char* text : {"3.25", "-1e+20", "INF"}) EXPECT_EQ(Decode(8, Encode(8, text)), text);
}

TEST(FastInfosetAlgorithms, Messages) {
    EXPECT_EQ(MessageOf([] { Decode(3, {1, 2, 3}); }), "Invalid value for SHORT byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(4, {1, 2}); }), "Invalid value for INT byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(5, {1, 2, 3, 4}); }), "Invalid value for LONG byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(7, {1}); }), "Invalid value for FLOAT byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(8, {1, 2, 3, 4}); }), "Invalid value for DOUBLE byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(9, Octets(15, 0)); }), "Invalid value for UUID byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(9, {}); }), "Invalid value for UUID byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(6, {}); }), "Invalid value for BOOLEAN byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(6, {0x80, 0}); }), "Invalid value for BOOLEAN byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(6, {0x50}); }), "Invalid value for BOOLEAN byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(0, {1}); }), "Unknown byte encoding.");
    EXPECT_EQ(MessageOf([] { Decode(11, {1}); }), "Unknown byte encoding.");
    EXPECT_EQ(MessageOf([] { Encode(11, "1"); }), "Unknown byte encoding.");
    EXPECT_EQ(MessageOf([] { Encode(9, "0011"); }), "Invalid value for UUID byte encoding.");
    // The text conversions' and the hex text's own errors pass through.
    EXPECT_EQ(MessageOf([] { Encode(3, "40000"); }), "The value [40000] is to large to fit in a i2");
    EXPECT_EQ(MessageOf([] { Encode(4, "1x"); }), "The value [1x] can not be converted to a i4");
    EXPECT_EQ(MessageOf([] { Encode(5, "18446744073709551615"); }),
              "The value [18446744073709551615] is to large to fit in a i8");
    EXPECT_EQ(MessageOf([] { Encode(1, "ABC"); }), "Invalid length in hex string");
    EXPECT_EQ(MessageOf([] { Encode(7, "inf"); }), "The value [inf] can not be converted to a r4");
    // A failed encoding leaves the value empty.
    CFastInfosetBinaryData data("abc");
    EXPECT_THROW(data.SetAsEncodedString(4, "x"), CQmException);
    EXPECT_EQ(data.GetLength(), 0u);
}
