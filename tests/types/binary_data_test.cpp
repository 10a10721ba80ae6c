#include <qmxml/types/binary_data.h>

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <qmxml/core/exception.h>

#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectMessage;

namespace {

// Exposes the protected static helpers.
class HexAccess : public CBinaryData {
public:
    using CBinaryData::ConvertToHexData;
    using CBinaryData::GetAsHexString;
};

std::vector<unsigned char> Bytes(const CBinaryData& data) {
    return std::vector<unsigned char>(data.GetData(), data.GetData() + data.GetLength());
}

CBinaryData Make(const std::vector<unsigned char>& bytes) {
    return CBinaryData(const_cast<unsigned char*>(bytes.data()),
                       static_cast<std::uint32_t>(bytes.size()), false);
}

std::vector<unsigned char> Inflate(const CBinaryData& packed, int windowBits) {
    z_stream stream{};
    EXPECT_EQ(Z_OK, inflateInit2(&stream, windowBits));
    std::vector<unsigned char> out(1 << 20);
    stream.next_in = const_cast<unsigned char*>(packed.GetData());
    stream.avail_in = packed.GetLength();
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(Z_STREAM_END, inflate(&stream, Z_FINISH));
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return out;
}

}  // namespace

TEST(CBase64Test, EncodesPaddingAndKnownVectors) {
    const unsigned char zero[] = {0x00, 0x00};
    EXPECT_EQ("AA==", CBase64::Encode(zero, 1));
    EXPECT_EQ("AAA=", CBase64::Encode(zero, 2));
    EXPECT_EQ("", CBase64::Encode(zero, 0));
    EXPECT_EQ("", CBinaryData().GetAsBase64());

    const char* plain[] = {"f", "fo", "foo", "foob", "fooba", "foobar"};
    const char* encoded[] = {"Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(encoded[i], CBinaryData(plain[i]).GetAsBase64());
    }
    const unsigned char high[] = {0xFB, 0xFF, 0xBF};
    EXPECT_EQ("+/+/", CBase64::Encode(high, 3));
}

TEST(CBase64Test, DecodeSkipsIgnoredCharactersAndRejectsInvalidOnes) {
    CBinaryData value;
    value.SetAsBase64("QQ==\n");
    EXPECT_EQ(std::vector<unsigned char>{0x41}, Bytes(value));

    value.Clear();
    value.SetAsBase64(" Q Q = = \r\n\t");
    EXPECT_EQ(std::vector<unsigned char>{0x41}, Bytes(value));

    // '=' may stand anywhere.
    value.SetAsBase64("Q=Q");
    EXPECT_EQ(std::vector<unsigned char>{0x41}, Bytes(value));

    value.SetAsBase64("QQ!=");
    EXPECT_EQ(0u, value.GetLength());
    EXPECT_EQ(nullptr, value.GetData());

    // The first invalid character empties the whole result, wherever it is.
    value.SetAsBase64("Zm9vYmFy-");
    EXPECT_EQ(0u, value.GetLength());

    // Lookup by the low seven bits: 'Q' | 0x80 is 'Q', '=' | 0x80 is ignored.
    const char high[] = {static_cast<char>('Q' | 0x80), 'Q', static_cast<char>('=' | 0x80), 0};
    value.SetAsBase64(high);
    EXPECT_EQ(std::vector<unsigned char>{0x41}, Bytes(value));

    // A lone character carries too few bits for an octet.
    value.SetAsBase64("Q");
    EXPECT_EQ(0u, value.GetLength());
    value.SetAsBase64(nullptr);
    EXPECT_EQ(0u, value.GetLength());

    unsigned char out[8];
    EXPECT_EQ(3u, CBase64::Decode("Zm9v!", 4, out));  // stops at the given length
    EXPECT_EQ(0, std::memcmp(out, "foo", 3));
}

TEST(CBase64Test, RoundTripsAllOctetsAndShortLengths) {
    std::vector<unsigned char> all(256);
    for (int i = 0; i < 256; ++i) {
        all[i] = static_cast<unsigned char>(i);
    }
    CBinaryData value = Make(all);
    CBinaryData back;
    back.SetAsBase64(value.GetAsBase64().c_str());
    EXPECT_EQ(all, Bytes(back));

    for (std::uint32_t n = 0; n <= 10; ++n) {
        std::vector<unsigned char> bytes(all.begin() + 250 - n, all.begin() + 250);
        const std::string text = CBase64::Encode(bytes.data(), n);
        EXPECT_EQ((n + 2) / 3 * 4, text.size()) << n;
        CBinaryData decoded;
        decoded.SetAsBase64(text.c_str());
        EXPECT_EQ(bytes, Bytes(decoded)) << n;
    }
}

TEST(CBinaryDataHexTest, ConvertsBothWaysAndReportsBadText) {
    CBinaryData value;
    value.SetAsHexString("0a1B");
    EXPECT_EQ((std::vector<unsigned char>{0x0A, 0x1B}), Bytes(value));
    EXPECT_EQ("0A1B", value.GetAsHexString());

    const unsigned char bytes[] = {0x00, 0x9F, 0xF0, 0xFF};
    EXPECT_EQ("009FF0FF", HexAccess::GetAsHexString(bytes, 4));
    EXPECT_EQ("", CBinaryData().GetAsHexString());

    ExpectMessage<CQmException>([&] { value.SetAsHexString("abc"); },
                                "Invalid length in hex string");
    ExpectMessage<CQmException>([&] { value.SetAsHexString("0G"); },
                                "Invalid char in hex string [G]");
    ExpectMessage<CQmException>([&] { value.SetAsHexString("g0"); },
                                "Invalid char in hex string [g]");
    // A failed conversion leaves the value alone.
    EXPECT_EQ("0A1B", value.GetAsHexString());

    unsigned char* out = nullptr;
    EXPECT_EQ(3u, HexAccess::ConvertToHexData("ffEE01", out));
    ASSERT_NE(nullptr, out);
    EXPECT_EQ(0xFF, out[0]);
    EXPECT_EQ(0xEE, out[1]);
    EXPECT_EQ(0x01, out[2]);
    std::free(out);

    value.SetAsHexString("");
    EXPECT_EQ(0u, value.GetLength());
}

TEST(CBinaryDataTest, ConstructionOwnershipAndEquality) {
    CBinaryData empty;
    EXPECT_EQ(nullptr, empty.GetData());
    EXPECT_EQ(0u, empty.GetLength());

    auto* raw = static_cast<unsigned char*>(std::malloc(3));
    std::memcpy(raw, "xyz", 3);
    CBinaryData adopted(raw, 3, true);
    EXPECT_EQ(raw, adopted.GetData());

    unsigned char local[] = {'x', 'y', 'z'};
    CBinaryData copied(local, 3, false);
    EXPECT_NE(local, copied.GetData());
    local[0] = 'q';
    EXPECT_EQ('x', copied[0]);
    EXPECT_TRUE(adopted == copied);
    EXPECT_TRUE(CBinaryData("xyz") == copied);
    EXPECT_TRUE(CBinaryData("xy") != copied);
    EXPECT_TRUE(CBinaryData("xyw") != copied);

    CBinaryData zeroLength;
    zeroLength.Append("");
    EXPECT_NE(nullptr, zeroLength.GetData());
    EXPECT_TRUE(zeroLength == empty);
    EXPECT_EQ(0u, CBinaryData(static_cast<const char*>(nullptr)).GetLength());

    ExpectMessage<CQmInvalidParamException>([] { CBinaryData(nullptr, 4, false); },
                                            "Null data with a non-zero length");
    ExpectMessage<CQmInvalidParamException>([&] { (void)std::as_const(copied)[3]; },
                                            "Index [3] out of range [3]");
    ExpectMessage<CQmInvalidParamException>([&] { copied[3] = 0; },
                                            "Index [3] out of range [3]");
}

TEST(CBinaryDataTest, CopiesShareUntilOneSideChanges) {
    CBinaryData original("abc");
    CBinaryData copy(original);
    EXPECT_EQ(original.GetData(), copy.GetData());

    copy.Append('d');
    EXPECT_NE(original.GetData(), copy.GetData());
    EXPECT_TRUE(original == CBinaryData("abc"));
    EXPECT_TRUE(copy == CBinaryData("abcd"));

    // The other direction: the original changes, the copy stays.
    CBinaryData second;
    second = original;
    EXPECT_EQ(original.GetData(), second.GetData());
    original.Append(std::string("XY"));
    EXPECT_TRUE(second == CBinaryData("abc"));
    EXPECT_TRUE(original == CBinaryData("abcXY"));

    // Reading by index shares; writing by index copies first.
    CBinaryData third(second);
    EXPECT_EQ('a', std::as_const(third)[0]);
    EXPECT_EQ(second.GetData(), third.GetData());
    third[0] = 'Z';
    EXPECT_TRUE(second == CBinaryData("abc"));
    EXPECT_TRUE(third == CBinaryData("Zbc"));

    // Self-assignment keeps the value.
    CBinaryData& alias = third;
    third = alias;
    EXPECT_TRUE(third == CBinaryData("Zbc"));

    CBinaryData moved(std::move(third));
    EXPECT_TRUE(moved == CBinaryData("Zbc"));

    moved.Clear();
    EXPECT_EQ(nullptr, moved.GetData());
    EXPECT_TRUE(second == CBinaryData("abc"));
}

TEST(CBinaryDataTest, AppendGrowsAndHandlesItsOwnOctets) {
    CBinaryData value;
    value.Append('a');
    value.Append("bc");
    value.Append(std::string("d\0e", 3));
    value.Append(CBinaryData("f"));
    value.Append(static_cast<const char*>(nullptr));
    EXPECT_EQ(std::string("abcd\0ef", 7),
              std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength()));

    // Appending a value to itself and octets from its own buffer.
    CBinaryData twice("xy");
    twice.Append(twice);
    EXPECT_TRUE(twice == CBinaryData("xyxy"));
    twice.Append(twice.GetData() + 1, 2);
    EXPECT_TRUE(twice == CBinaryData("xyxyyx"));

    // Grow well past the initial capacity, through reallocations, including
    // appends from its own octets at the moment the buffer is full.
    std::vector<unsigned char> expected;
    CBinaryData big;
    for (int i = 0; i < 40000; ++i) {
        const auto byte = static_cast<unsigned char>(i * 7);
        big.Append(static_cast<char>(byte));
        expected.push_back(byte);
        if (i % 5000 == 4999) {
            const std::uint32_t n = big.GetLength();
            big.Append(big.GetData(), n);
            expected.insert(expected.end(), expected.begin(), expected.begin() + n);
        }
    }
    EXPECT_EQ(expected, Bytes(big));

    // Appending to a shared value from the shared octets.
    CBinaryData shared("pq");
    CBinaryData holder(shared);
    shared.Append(holder.GetData(), 2);
    EXPECT_TRUE(shared == CBinaryData("pqpq"));
    EXPECT_TRUE(holder == CBinaryData("pq"));
}

TEST(CBinaryDataTest, SetBufferReleaseDataAndClear) {
    CBinaryData value("hello");
    CBinaryData keep(value);
    value.SetBuffer("bye");
    EXPECT_TRUE(value == CBinaryData("bye"));
    EXPECT_TRUE(keep == CBinaryData("hello"));

    // From a part of its own octets.
    value.SetBuffer(value.GetData() + 1, 2);
    EXPECT_TRUE(value == CBinaryData("ye"));

    // Releasing a shared value hands out a private copy.
    CBinaryData shared(keep);
    const std::uint32_t length = shared.GetLength();
    unsigned char* data = shared.ReleaseData();
    ASSERT_NE(nullptr, data);
    EXPECT_NE(keep.GetData(), data);
    EXPECT_EQ(0, std::memcmp(data, "hello", length));
    EXPECT_EQ(nullptr, shared.GetData());
    EXPECT_EQ(0u, shared.GetLength());
    EXPECT_TRUE(keep == CBinaryData("hello"));
    std::free(data);

    // A sole holder hands out its own octets.
    const unsigned char* own = keep.GetData();
    unsigned char* released = keep.ReleaseData();
    EXPECT_EQ(own, released);
    std::free(released);
    EXPECT_EQ(nullptr, CBinaryData().ReleaseData());

    value.Clear();
    EXPECT_EQ(0u, value.GetLength());
    value.Append("again");
    EXPECT_TRUE(value == CBinaryData("again"));
}

TEST(CBinaryDataCompressTest, ProducesGzipAndZlibStreams) {
    std::string text;
    for (int i = 0; i < 200; ++i) {
        text += "<item id=\"" + std::to_string(i) + "\">repeated content</item>\n";
    }
    const auto* input = reinterpret_cast<const unsigned char*>(text.data());
    const auto size = static_cast<std::uint32_t>(text.size());
    const std::vector<unsigned char> original(input, input + size);

    const CBinaryData gzip = CBinaryData::Compress(input, size, CompressionType_GZip);
    ASSERT_GT(gzip.GetLength(), 10u);
    EXPECT_LT(gzip.GetLength(), size);
    EXPECT_EQ(0x1F, gzip[0]);
    EXPECT_EQ(0x8B, gzip[1]);
    EXPECT_EQ(8, gzip[2]);   // deflate
    EXPECT_EQ(4, gzip[8]);   // fastest level
    EXPECT_EQ(original, Inflate(gzip, 31));

    const CBinaryData zlib = CBinaryData::Compress(input, size, CompressionType_ZLib);
    ASSERT_GT(zlib.GetLength(), 2u);
    EXPECT_EQ(0x78, zlib[0]);
    EXPECT_EQ(0x01, zlib[1]);  // level 1
    EXPECT_EQ(original, Inflate(zlib, 15));
}

TEST(CBinaryDataCompressTest, RejectsDataThatDoesNotShrinkAndUnknownTypes) {
    const auto* tiny = reinterpret_cast<const unsigned char*>("<a/>");
    // The finishing deflate runs out of room and reports zlib's own result:
    // the 10-byte gzip header alone overflows 4 octets (no progress,
    // Z_BUF_ERROR); the zlib stream gets further (Z_OK, not Z_STREAM_END).
    ExpectMessage<CQmException>(
        [&] { CBinaryData::Compress(tiny, 4, CompressionType_GZip); },
        "Failed to compress data. [Error Code: -5]");
    ExpectMessage<CQmException>(
        [&] { CBinaryData::Compress(tiny, 4, CompressionType_ZLib); },
        "Failed to compress data. [Error Code: 0]");
    // Nothing to compress leaves no room at all.
    ExpectMessage<CQmException>(
        [&] { CBinaryData::Compress(tiny, 0, CompressionType_ZLib); },
        "Failed to compress data. [Error Code: -5]");

    ExpectMessage<CQmInvalidParamException>(
        [&] { CBinaryData::Compress(tiny, 4, CompressionType_None); },
        "Invalid compression type [0]");
    ExpectMessage<CQmInvalidParamException>(
        [&] { CBinaryData::Compress(tiny, 4, static_cast<CompressionType>(3)); },
        "Invalid compression type [3]");
}

TEST(CBinaryDataConcurrencyTest, ThreadsCopyAppendAndDropSharedValue) {
    std::vector<unsigned char> bytes(1000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(i * 13);
    }
    const CBinaryData original = Make(bytes);
    const unsigned char* originalData = original.GetData();

    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    std::vector<int> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            CBinaryData mine(original);
            for (int round = 0; round < kRounds; ++round) {
                CBinaryData copy(original);
                CBinaryData another = copy;
                if (copy.GetLength() != bytes.size() || copy[round % 1000] != bytes[round % 1000]) {
                    ++failures[t];
                }
                copy.Append(static_cast<char>(t));
                if (copy.GetLength() != bytes.size() + 1 || another != original) {
                    ++failures[t];
                }
                if (round % 3 == 0) {
                    another[0] = 0xEE;
                    mine = another;
                } else if (round % 3 == 1) {
                    mine.Append(another);
                    mine = original;
                } else {
                    std::free(copy.ReleaseData());
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(0, failures[t]) << "thread " << t;
    }
    EXPECT_EQ(originalData, original.GetData());
    EXPECT_EQ(bytes, Bytes(original));
}
