#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

#include "platform/charset.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectMessage;

namespace {
// Restores the library-wide switches whatever a test did.
struct SwitchGuard {
    ~SwitchGuard() {
        ASCIIOnly(false);
        SetLocalCharEncoding(65001);
    }
};
std::string ToLocal(const std::string& utf8) {
    std::string out;
    platform::Utf8ToLocal(utf8.data(), utf8.size(), out);
    return out;
}
std::string ToUtf8(const std::string& local) {
    std::string out;
    platform::LocalToUtf8(local.data(), local.size(), out);
    return out;
}
std::string ToUtf16(const std::string& local) {
    std::string out;
    platform::LocalToUtf16LE(local.data(), local.size(), out);
    return out;
}
}  // namespace

TEST(Settings, DefaultsAndCodePages) {
    SwitchGuard guard;
    EXPECT_FALSE(GetAsyncToXmlFile());
    EXPECT_FALSE(GetAsyncFromXmlFile());
    EXPECT_FALSE(GetASCIIOnly());
    EXPECT_EQ(GetLocalCharEncoding(), 65001u);
    for (unsigned cp : {1250u, 1252u, 1258u, 28591u, 28599u, 20127u, 0u, 3u, 65001u}) {
        EXPECT_NO_THROW(SetLocalCharEncoding(cp)) << cp;
    }
    ExpectMessage<CQmInvalidParamException>([&] { SetLocalCharEncoding(12345); }, "Unsupported code page [12345]");
    EXPECT_EQ(GetLocalCharEncoding(), 65001u);
}

TEST(Charset, Latin1AndAsciiOnly) {
    SwitchGuard guard;
    const std::string utf8 = "caf\xC3\xA9 stra\xC3\x9F" "e";
    EXPECT_EQ(ToLocal(utf8), utf8);  // UTF-8 is the default local encoding
    SetLocalCharEncoding(28591);
    const std::string latin1 = "caf\xE9 stra\xDF" "e";
    EXPECT_EQ(ToLocal(utf8), latin1);
    EXPECT_EQ(ToUtf8(latin1), utf8);
    EXPECT_EQ(ToUtf16(latin1), std::string("c\0a\0f\0\xE9\0", 8) + std::string(" \0s\0t\0r\0a\0\xDF\0e\0", 14));
    EXPECT_THROW(ToLocal("\xE6\x97\xA5"), CQmInvalidValueException);  // not in Latin-1
    ASCIIOnly(true);
    EXPECT_EQ(ToLocal(utf8), utf8);
    EXPECT_EQ(ToUtf8(latin1), latin1);
    EXPECT_EQ(ToUtf16("\xE9"), std::string("\xE9\0", 2));
}

TEST(Charset, Utf16BothWays) {
    SwitchGuard guard;
    const std::string utf8 = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80";  // a é 日 U+1F600
    EXPECT_EQ(ToUtf16(utf8), std::string("a\0\xE9\0\xE5\x65\x3D\xD8\x00\xDE", 10));
    const unsigned short units[] = {'a', 0xE9, 0x65E5, 0xD83D, 0xDE00};
    std::string back;
    platform::Utf16ToUtf8(units, 5, back);
    EXPECT_EQ(back, utf8);
    const unsigned short lone[] = {'x', 0xD800};
    EXPECT_THROW(platform::Utf16ToUtf8(lone, 2, back), CQmInvalidValueException);
    EXPECT_THROW(ToUtf16("\xC3"), CQmInvalidValueException);       // truncated sequence
    EXPECT_THROW(ToUtf16("\xC0\xAF"), CQmInvalidValueException);   // overlong
    EXPECT_THROW(ToUtf16("\xED\xA0\x80"), CQmInvalidValueException);  // encoded surrogate
}
