// The digit array of big integers and decimals: digits kept inline up to
// kInline, on the heap beyond, and the arithmetic alike on both sides of
// that line.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include <qmxml/types/big_integer.h>
#include <qmxml/types/decimal.h>
#include <qmxml/types/digit_vector.h>

namespace {

using QmXmlLib10::CBigInteger;
using QmXmlLib10::CDecimal;
using QmXmlLib10::CDigitVector;

constexpr std::size_t kInline = CDigitVector::kInline;

std::string Text(const CDigitVector& v) {
    std::string s;
    for (signed char d : v) s.push_back(static_cast<char>('0' + d));
    return s;
}

CDigitVector Counting(std::size_t n) {
    CDigitVector v;
    for (std::size_t i = 0; i < n; ++i) v.push_back(static_cast<signed char>(i % 10));
    return v;
}

TEST(DigitVectorTest, KeepsItsDigitsAcrossTheMoveToTheHeap) {
    CDigitVector v = Counting(kInline);
    EXPECT_EQ(v.capacity(), kInline);
    v.push_back(7);
    EXPECT_GT(v.capacity(), kInline);
    EXPECT_EQ(Text(v), "01234567890123457");
    v.pop_back();
    EXPECT_EQ(Text(v), "0123456789012345");
    EXPECT_EQ(v.front(), 0);
    EXPECT_EQ(v.back(), 5);
}

TEST(DigitVectorTest, CopiesAndMovesLeaveBothSidesWhole) {
    for (const std::size_t n : {std::size_t{3}, kInline, kInline + 9}) {
        const CDigitVector original = Counting(n);
        CDigitVector copy(original);
        EXPECT_EQ(copy, original) << n;
        CDigitVector moved(std::move(copy));
        EXPECT_EQ(moved, original) << n;
        EXPECT_TRUE(copy.empty()) << n;  // NOLINT: the moved-from state is defined here
        copy.push_back(4);                 // and usable
        EXPECT_EQ(Text(copy), "4");
        CDigitVector assigned = Counting(kInline + 20);
        assigned = original;
        EXPECT_EQ(assigned, original) << n;
        assigned = std::move(moved);
        EXPECT_EQ(assigned, original) << n;
    }
}

TEST(DigitVectorTest, InsertEraseResizeAndAssignAsAVectorDoes) {
    CDigitVector v{1, 2, 3};
    EXPECT_EQ(Text(v), "123");
    v.insert(v.begin(), kInline, 0);  // crosses to the heap while shifting
    EXPECT_EQ(Text(v), std::string(kInline, '0') + "123");
    v.erase(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(kInline - 1));
    EXPECT_EQ(Text(v), "0123");
    v.resize(6);
    EXPECT_EQ(Text(v), "012300");
    v.resize(2);
    EXPECT_EQ(Text(v), "01");
    v.assign(4, 9);
    EXPECT_EQ(Text(v), "9999");
    const CDigitVector source = Counting(kInline + 3);
    v.assign(source.begin() + 2, source.end());
    EXPECT_EQ(Text(v), "23456789012345678");
    EXPECT_NE(v, source);
    v.clear();
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(CDigitVector(5, 1), (CDigitVector{1, 1, 1, 1, 1}));
}

TEST(DigitVectorTest, ArithmeticCrossesTheInlineLimit) {
    // 16 nines plus one carries into a 17th digit, and back down again.
    const CBigInteger nines(std::string(kInline, '9'));
    const CBigInteger up = nines + CBigInteger(1);
    EXPECT_EQ(up.ToString(), "1" + std::string(kInline, '0'));
    EXPECT_EQ((up - CBigInteger(1)).ToString(), std::string(kInline, '9'));
    EXPECT_EQ((nines * nines).ToString(), std::string(kInline - 1, '9') + "8" + std::string(kInline - 1, '0') + "1");
    const CDecimal price("444189.67");
    const CDecimal wide("12345678901234.5678901");
    EXPECT_EQ((price + wide).ToString(), "12345679345424.2378901");
    EXPECT_EQ((wide - wide).ToString(), "0");
    EXPECT_EQ(CDecimal("0.125").ToString(2), "0.13");
}

}  // namespace
