#include <qmxml/types/whitespace.h>

#include <gtest/gtest.h>

#include <string>

#include <qmxml/core/exception.h>

using namespace QmXmlLib10;
using namespace std::string_literals;

namespace {

using WS = CWhitespaceUtils;

TEST(WhitespaceTest, IsWhiteSpaceKnowsExactlyFourCharacters) {
    for (int c = -128; c < 128; ++c) {
        const bool expected = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        EXPECT_EQ(expected, WS::IsWhiteSpace(static_cast<char>(c))) << c;
    }
}

TEST(WhitespaceTest, PreserveNormalisesLineEndsOnly) {
    EXPECT_EQ("a\nb\nc", WS::Preserve("a\rb\r\nc"));
    EXPECT_EQ("\n\n", WS::Preserve("\r\r\n"));
    EXPECT_EQ("\n\n", WS::Preserve("\r\n\r"));
    EXPECT_EQ(" \t a \n", WS::Preserve(" \t a \n"));
    EXPECT_EQ("x\n", WS::Preserve("x\r"));

    const char text[] = "a\r\nbXX";
    EXPECT_EQ("a\nb", WS::Preserve(text, 4));
    EXPECT_EQ("", WS::Preserve(text, 0));
    EXPECT_EQ("", WS::Preserve(text, -3));
    EXPECT_EQ("", WS::Preserve(nullptr, 5));

    // Without a CR the text is returned untouched, zero bytes included.
    EXPECT_EQ("a\0b"s, WS::Preserve("a\0b"s));
    // A rebuilt text ends at its first zero byte.
    EXPECT_EQ("a\n", WS::Preserve("a\r\0b"s));
}

TEST(WhitespaceTest, ReplaceTurnsEachLineEndAndTabIntoOneSpace) {
    EXPECT_EQ("a b", WS::Replace("a\r\nb"));
    EXPECT_EQ("a  b", WS::Replace("a\n\rb"));
    EXPECT_EQ("a  b", WS::Replace("a\r\rb"));
    EXPECT_EQ("  a  b ", WS::Replace("\t\na \tb\r"));
    EXPECT_EQ("  keep  runs  ", WS::Replace("  keep  runs  "));
    EXPECT_EQ("", WS::Replace(""));
    EXPECT_EQ("a\0b"s, WS::Replace("a\0b"s));
    EXPECT_EQ("a ", WS::Replace("a\t\0b"s));
}

TEST(WhitespaceTest, CollapseTrimsAndJoinsRuns) {
    EXPECT_EQ("a b", WS::Collapse("  a \t\r\n b  "));
    EXPECT_EQ("a b c", WS::Collapse("a\r\nb\tc"));
    EXPECT_EQ("", WS::Collapse(" \t\r\n "));
    EXPECT_EQ("", WS::Collapse(""));
    EXPECT_EQ("x", WS::Collapse("x"));
    EXPECT_EQ("one two", WS::Collapse("one two"));
    EXPECT_EQ("a", WS::Collapse("a\0 b"s));
}

// A text that is already collapsed is returned as it is; one offending
// character anywhere makes Collapse rebuild it.
TEST(WhitespaceTest, CollapseKeepsCleanTextAndRebuildsOnAnyBlemish) {
    EXPECT_EQ("a b c", WS::Collapse("a b c"));
    EXPECT_EQ("-12.5", WS::Collapse("-12.5"));
    EXPECT_EQ("a b", WS::Collapse("a  b"));
    EXPECT_EQ("a", WS::Collapse(" a"));
    EXPECT_EQ("a", WS::Collapse("a "));
    EXPECT_EQ("", WS::Collapse(" "));
    EXPECT_EQ("a b", WS::Collapse("a\tb"));
    EXPECT_EQ("a b", WS::Collapse("a\nb"));
    EXPECT_EQ("a b", WS::Collapse("a\rb"));
    EXPECT_EQ("a", WS::Collapse("a\tb"s.substr(0, 2)));
    EXPECT_EQ("ab", WS::Collapse("ab\0c"s));
    EXPECT_EQ("\xC3\xA9 \xC3\xA9", WS::Collapse("\xC3\xA9 \xC3\xA9"));
    EXPECT_EQ("x y", WS::ApplyRule(WS::WhitespaceRule_Collapse, "x y"));
    EXPECT_EQ("x y", WS::ApplyRule(WS::WhitespaceRule_Collapse, "x \n y"));
    // Other control characters are not whitespace and stay.
    EXPECT_EQ("a\x01 \x1F", WS::Collapse("a\x01 \x1F"));
    EXPECT_EQ("\x01", WS::Collapse("\x01"));
    EXPECT_EQ("a\x01", WS::Collapse("a\x01\t"));
    EXPECT_EQ("\x7F\x80 \xFF", WS::Collapse("\x7F\x80 \xFF"));
    EXPECT_EQ("\x01\x0B\x0C", WS::Replace("\x01\x0B\x0C"));
    EXPECT_EQ("\x01 \x0B", WS::Replace("\x01\r\n\x0B"));
}

TEST(WhitespaceTest, ApplyRuleDispatchesAndRejectsUnknownRules) {
    const std::string text = " a\r\n\tb ";
    EXPECT_EQ(text, WS::ApplyRule(WS::WhitespaceRule_None, text));
    EXPECT_EQ(" a\n\tb ", WS::ApplyRule(WS::WhitespaceRule_Preserve, text));
    EXPECT_EQ(" a  b ", WS::ApplyRule(WS::WhitespaceRule_Replace, text));
    EXPECT_EQ("a b", WS::ApplyRule(WS::WhitespaceRule_Collapse, text));

    for (const int bad : {-1, 4, 100}) {
        try {
            WS::ApplyRule(static_cast<WS::WhitespaceRule>(bad), text);
            ADD_FAILURE() << "rule " << bad << " accepted";
        } catch (const CQmInvalidValueException&) {
            ADD_FAILURE() << "unknown rule must be a plain CQmException";
        } catch (const CQmException& e) {
            EXPECT_EQ("Unknown WhitespaceRule", e.GetMessage());
        }
    }
}

}  // namespace
