#include <gtest/gtest.h>

#include <qmxml/writer/string_buffer.h>

#include <string>

using namespace QmXmlLib10;

TEST(StringBuffer, BlockBoundaryAt4095Characters) {
    CStringBuffer b;
    EXPECT_EQ(b.GetText(), "");
    EXPECT_EQ(b.GetLength(), 0u);

    const std::string full(4095, 'x');
    b.Append(full);
    EXPECT_EQ(b.GetBlockCount(), 1u);
    EXPECT_EQ(b.GetBlockLength(0), 4095u);
    const char* first = b.GetBlockData(0);

    b.Append('y');  // the 4096th character starts a second block
    ASSERT_EQ(b.GetBlockCount(), 2u);
    EXPECT_EQ(b.GetBlockLength(0), 4095u);
    EXPECT_EQ(b.GetBlockLength(1), 1u);
    EXPECT_EQ(b.GetBlockData(0), first);  // stored text never moves
    EXPECT_EQ(b.GetLength(), 4096u);
    EXPECT_EQ(b.GetText(), full + "y");
}

TEST(StringBuffer, AppendFormsSpanBlocksInOrder) {
    CStringBuffer b;
    std::string expected;
    b.Append("abc");
    expected += "abc";
    b.Append(static_cast<const char*>(nullptr));
    b.Append(std::string("de"));
    expected += "de";
    b.Append("fgh", 2);
    expected += "fg";
    b.Append('\0');  // a character like any other
    expected += '\0';
    std::string big;
    for (int i = 0; i < 10000; ++i) big += static_cast<char>('a' + i % 26);
    b.Append(big);  // one call across three blocks
    expected += big;
    EXPECT_EQ(b.GetLength(), expected.size());
    EXPECT_EQ(b.GetBlockCount(), 3u);
    EXPECT_EQ(b.GetText(), expected);
    std::string out = "pre";
    b.AppendTo(out);
    EXPECT_EQ(out, "pre" + expected);
}

TEST(StringBuffer, ResetKeepsOneZeroedBlock) {
    CStringBuffer b;
    b.Append(std::string(9000, 'q'));
    const char* first = b.GetBlockData(0);
    b.Reset();
    EXPECT_EQ(b.GetLength(), 0u);
    EXPECT_EQ(b.GetText(), "");
    ASSERT_EQ(b.GetBlockCount(), 1u);
    EXPECT_EQ(b.GetBlockData(0), first);
    EXPECT_EQ(b.GetBlockData(0)[0], '\0');
    EXPECT_EQ(b.GetBlockData(0)[4094], '\0');

    b.Append("new");
    EXPECT_EQ(b.GetText(), "new");
    EXPECT_EQ(std::string(b.GetBlockData(0)), "new");  // blocks stay zero-terminated
}
