// XML Schema's multi-character escapes (\s \w \i \c and their negations) and
// character classes (negation, subtraction, where a hyphen may stand) as the
// pattern facet matches them: the characters at the edges of each set, inside
// and outside brackets.
#include <qmxml/types/restrictions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <qmxml/core/exception.h>

#include "expect_throw.h"
#include "types/pattern_matcher.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectThrow;

namespace {

using R = CPrimitiveRestrictions;

struct ClassCase {
    const char* name;
    const char* pattern;
    const char* value;  // UTF-8
    bool matches;
};

void PrintTo(const ClassCase& c, std::ostream* out) { *out << c.name; }

std::string CaseName(const testing::TestParamInfo<ClassCase>& info) { return info.param.name; }

class PatternClassTest : public testing::TestWithParam<ClassCase> {};

TEST_P(PatternClassTest, MatchesAsXmlSchemaDefines) {
    const ClassCase& c = GetParam();
    EXPECT_EQ(c.matches, R::MatchesPattern(c.value, c.pattern)) << c.pattern << " ~ " << c.value;
}

// Characters named by code point: U+00A0 NO-BREAK SPACE (Zs), U+2003 EM
// SPACE (Zs), U+0085 NEXT LINE (Cc), U+00AD SOFT HYPHEN (Cf), U+E000 (Co),
// U+0378 (unassigned), U+0301 COMBINING ACUTE ACCENT (Mn), U+0663
// ARABIC-INDIC DIGIT THREE (Nd), U+20AC EURO SIGN (Sc), U+00D7 MULTIPLICATION
// SIGN (Sm), U+00B7 MIDDLE DOT (Po, a name character), U+00C0 (Lu).
#define NBSP "\xC2\xA0"
#define EMSP "\xE2\x80\x83"
#define NEL "\xC2\x85"
#define SHY "\xC2\xAD"
#define PUA "\xEE\x80\x80"
#define UNASSIGNED "\xCD\xB8"
#define ACUTE "\xCC\x81"
#define ARABIC3 "\xD9\xA3"
#define EURO "\xE2\x82\xAC"
#define TIMES "\xC3\x97"
#define MIDDOT "\xC2\xB7"
#define AGRAVE "\xC3\x80"

INSTANTIATE_TEST_SUITE_P(
    Spaces, PatternClassTest,
    testing::Values(ClassCase{"s_space", "\\s", " ", true}, ClassCase{"s_tab", "\\s", "\t", true},
                    ClassCase{"s_lf", "\\s", "\n", true}, ClassCase{"s_cr", "\\s", "\r", true},
                    ClassCase{"s_nbsp", "\\s", NBSP, false}, ClassCase{"s_emsp", "\\s", EMSP, false},
                    ClassCase{"s_nel", "\\s", NEL, false}, ClassCase{"S_nbsp", "\\S", NBSP, true},
                    ClassCase{"S_tab", "\\S", "\t", false}, ClassCase{"S_letter", "\\S", "a", true},
                    ClassCase{"inClass_s_tab", "[\\s]", "\t", true},
                    ClassCase{"inClass_s_nbsp", "[\\s]", NBSP, false},
                    ClassCase{"inClass_S_nbsp", "[\\S]", NBSP, true},
                    ClassCase{"inClass_S_cr", "[\\S]", "\r", false},
                    ClassCase{"negated_s_nbsp", "[^\\s]", NBSP, true},
                    ClassCase{"negated_s_tab", "[^\\s]", "\t", false},
                    ClassCase{"negated_S_tab", "[^\\S]", "\t", true},
                    ClassCase{"negated_S_nbsp", "[^\\S]", NBSP, false}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Words, PatternClassTest,
    testing::Values(ClassCase{"w_underscore", "\\w", "_", false}, ClassCase{"w_plus", "\\w", "+", true},
                    ClassCase{"w_dollar", "\\w", "$", true}, ClassCase{"w_euro", "\\w", EURO, true},
                    ClassCase{"w_caret", "\\w", "^", true}, ClassCase{"w_letter", "\\w", "a", true},
                    ClassCase{"w_combining", "\\w", ACUTE, true}, ClassCase{"w_arabicDigit", "\\w", ARABIC3, true},
                    ClassCase{"w_hyphen", "\\w", "-", false}, ClassCase{"w_colon", "\\w", ":", false},
                    ClassCase{"w_space", "\\w", " ", false}, ClassCase{"w_nbsp", "\\w", NBSP, false},
                    ClassCase{"w_tab", "\\w", "\t", false}, ClassCase{"w_softHyphen", "\\w", SHY, false},
                    ClassCase{"w_privateUse", "\\w", PUA, false},
                    ClassCase{"w_unassigned", "\\w", UNASSIGNED, false},
                    ClassCase{"W_underscore", "\\W", "_", true}, ClassCase{"W_plus", "\\W", "+", false},
                    ClassCase{"W_nbsp", "\\W", NBSP, true}, ClassCase{"W_combining", "\\W", ACUTE, false},
                    ClassCase{"inClass_w_underscore", "[\\w]", "_", false},
                    ClassCase{"inClass_w_dollar", "[\\w]", "$", true},
                    ClassCase{"inClass_w_combining", "[\\w]", ACUTE, true},
                    ClassCase{"withHyphen_hyphen", "[\\w-]", "-", true},
                    ClassCase{"withHyphen_underscore", "[\\w-]", "_", false},
                    ClassCase{"withHyphen_plus", "[\\w-]", "+", true},
                    ClassCase{"inClass_W_underscore", "[\\W]", "_", true},
                    ClassCase{"inClass_W_plus", "[\\W]", "+", false},
                    ClassCase{"negated_w_underscore", "[^\\w]", "_", true},
                    ClassCase{"negated_w_dollar", "[^\\w]", "$", false},
                    ClassCase{"negated_W_plus", "[^\\W]", "+", true},
                    ClassCase{"negated_W_underscore", "[^\\W]", "_", false}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    NameCharacters, PatternClassTest,
    testing::Values(ClassCase{"i_letter", "\\i", "a", true}, ClassCase{"i_underscore", "\\i", "_", true},
                    ClassCase{"i_colon", "\\i", ":", true}, ClassCase{"i_accented", "\\i", AGRAVE, true},
                    ClassCase{"i_digit", "\\i", "1", false}, ClassCase{"i_hyphen", "\\i", "-", false},
                    ClassCase{"i_dot", "\\i", ".", false}, ClassCase{"i_middleDot", "\\i", MIDDOT, false},
                    ClassCase{"i_combining", "\\i", ACUTE, false}, ClassCase{"i_times", "\\i", TIMES, false},
                    ClassCase{"i_dollar", "\\i", "$", false},
                    // Fifth edition names: a wide range from U+037F holds
                    // digits of other scripts too; U+037E GREEK QUESTION MARK
                    // is left out, U+2070 SUPERSCRIPT ZERO and U+0346 are in.
                    ClassCase{"i_arabicDigit", "\\i", ARABIC3, true},
                    ClassCase{"i_greekQuestionMark", "\\i", "\xCD\xBE", false},
                    ClassCase{"i_superscriptZero", "\\i", "\xE2\x81\xB0", true},
                    ClassCase{"c_combiningBridgeAbove", "\\c", "\xCD\x86", true},
                    ClassCase{"I_colon", "\\I", ":", false},
                    ClassCase{"I_underscore", "\\I", "_", false}, ClassCase{"I_digit", "\\I", "1", true},
                    ClassCase{"I_combining", "\\I", ACUTE, true}, ClassCase{"c_hyphen", "\\c", "-", true},
                    ClassCase{"c_dot", "\\c", ".", true}, ClassCase{"c_digit", "\\c", "7", true},
                    ClassCase{"c_arabicDigit", "\\c", ARABIC3, true}, ClassCase{"c_combining", "\\c", ACUTE, true},
                    ClassCase{"c_middleDot", "\\c", MIDDOT, true}, ClassCase{"c_colon", "\\c", ":", true},
                    ClassCase{"c_space", "\\c", " ", false}, ClassCase{"c_plus", "\\c", "+", false},
                    ClassCase{"c_times", "\\c", TIMES, false}, ClassCase{"c_nbsp", "\\c", NBSP, false},
                    ClassCase{"C_dollar", "\\C", "$", true}, ClassCase{"C_hyphen", "\\C", "-", false},
                    ClassCase{"C_colon", "\\C", ":", false}, ClassCase{"name_ok", "\\i\\c*", "a1", true},
                    ClassCase{"name_digitFirst", "\\i\\c*", "1a", false},
                    ClassCase{"inClass_i_colon", "[\\i]", ":", true},
                    ClassCase{"inClass_i_digit", "[\\i]", "1", false},
                    ClassCase{"inClass_I_digit", "[\\I]", "1", true},
                    ClassCase{"inClass_I_colon", "[\\I]", ":", false},
                    ClassCase{"inClass_c_combining", "[\\c]", ACUTE, true},
                    ClassCase{"inClass_C_plus", "[\\C]", "+", true},
                    ClassCase{"inClass_C_dot", "[\\C]", ".", false},
                    ClassCase{"negated_i_digit", "[^\\i]", "1", true},
                    ClassCase{"negated_i_underscore", "[^\\i]", "_", false},
                    ClassCase{"negated_I_colon", "[^\\I]", ":", true},
                    ClassCase{"negated_c_times", "[^\\c]", TIMES, true},
                    ClassCase{"negated_C_hyphen", "[^\\C]", "-", true},
                    ClassCase{"spaceOrName_space", "[\\s\\i]", " ", true},
                    ClassCase{"spaceOrName_digit", "[\\s\\i]", "1", false}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Subtraction, PatternClassTest,
    testing::Values(ClassCase{"consonant", "[a-z-[aeiou]]", "b", true},
                    ClassCase{"vowel", "[a-z-[aeiou]]", "a", false},
                    ClassCase{"outsideBase", "[a-z-[aeiou]]", "B", false},
                    ClassCase{"repeated", "[a-c-[b]]+", "acca", true},
                    ClassCase{"repeatedWithSubtracted", "[a-c-[b]]+", "abc", false},
                    ClassCase{"wordNoDigit_letter", "[\\w-[\\d]]", "a", true},
                    ClassCase{"wordNoDigit_digit", "[\\w-[\\d]]", "5", false},
                    ClassCase{"wordNoDigit_underscore", "[\\w-[\\d]]", "_", false},
                    ClassCase{"nameNotStart_digit", "[\\c-[\\i]]", "1", true},
                    ClassCase{"nameNotStart_letter", "[\\c-[\\i]]", "a", false},
                    ClassCase{"nested_inner", "[a-z-[b-y-[c]]]", "c", true},
                    ClassCase{"nested_middle", "[a-z-[b-y-[c]]]", "b", false},
                    ClassCase{"nested_outer", "[a-z-[b-y-[c]]]", "z", true},
                    ClassCase{"negatedBase_in", "[^a-c-[x]]", "y", true},
                    ClassCase{"negatedBase_subtracted", "[^a-c-[x]]", "x", false},
                    ClassCase{"negatedBase_excluded", "[^a-c-[x]]", "b", false},
                    ClassCase{"negatedSubtracted", "[a-z-[^aeiou]]", "e", true},
                    ClassCase{"negatedSubtracted_consonant", "[a-z-[^aeiou]]", "d", false},
                    ClassCase{"hyphenBeforeSubtraction", "[a-c--[b]]", "-", true},
                    ClassCase{"negatedBlockInClass", "[^\\P{IsBasicLatin}]", "a", true},
                    ClassCase{"negatedBlockInClass_latin1", "[^\\P{IsBasicLatin}]", AGRAVE, false},
                    ClassCase{"hyphenFirst", "[-a]", "-", true}, ClassCase{"hyphenAfterCaret", "[^-a]", "-", false},
                    ClassCase{"caretLater", "[a^]", "^", true}),
    CaseName);

struct BadPatternCase {
    const char* name;
    const char* pattern;
    const char* error;
};

void PrintTo(const BadPatternCase& c, std::ostream* out) { *out << c.name; }

class BadPatternTest : public testing::TestWithParam<BadPatternCase> {};

TEST_P(BadPatternTest, IsRefusedWithTheReason) {
    const BadPatternCase& c = GetParam();
    ExpectThrow<CQmException>([&] { R::MatchesPattern("a", c.pattern); },
                              std::string("Invalid Regular Expression: ") + c.pattern + " Error: '" + c.error + "'");
}

INSTANTIATE_TEST_SUITE_P(
    XmlSchemaGrammar, BadPatternTest,
    testing::Values(
        BadPatternCase{"hyphenAfterRange", "[a-d-b-c]",
                       "a hyphen inside a character class must come first or last, or join the ends of a range"},
        BadPatternCase{"hyphenAfterEscape", "[\\w-z]",
                       "a hyphen inside a character class must come first or last, or join the ends of a range"},
        BadPatternCase{"rangeToEscape", "[a-\\d]", "a range in a character class must end with one character"},
        BadPatternCase{"emptyClass", "[]", "empty character class"},
        BadPatternCase{"textAfterSubtraction", "[a-c-[b]d]", "a class subtraction must end its character class"},
        BadPatternCase{"bracketInClass", "[a[b]", "an opening bracket inside a character class must start a class subtraction"},
        BadPatternCase{"subtractionFromNothing", "[-[a]]", "a class subtraction needs characters to subtract from"},
        BadPatternCase{"unclosedClass", "[ab", "missing terminating ] for character class"},
        BadPatternCase{"unclosedSubtraction", "[a-[b]", "missing terminating ] for character class"},
        BadPatternCase{"quantifierWithoutMinimum", "[0-9]{,5}",
                       "an opening brace must start a quantifier {n}, {n,} or {n,m}, or be escaped"},
        BadPatternCase{"braceAlone", "a{", "an opening brace must start a quantifier {n}, {n,} or {n,m}, or be escaped"}),
    [](const testing::TestParamInfo<BadPatternCase>& info) { return std::string(info.param.name); });

TEST(PatternClassTranslationTest, SetsBecomePcreClassesWithTheSameMembers) {
    EXPECT_EQ("^(?:[\\x{20}\\t\\n\\r][^\\x{20}\\t\\n\\r])$", patterns::Translate("\\s\\S"));
    EXPECT_EQ("^(?:[^\\p{P}\\p{Z}\\p{C}][\\p{P}\\p{Z}\\p{C}])$", patterns::Translate("\\w\\W"));
    // Inside brackets a set is items; \w is the four categories besides P, Z and C.
    EXPECT_EQ("^(?:[\\p{L}\\p{M}\\p{N}\\p{S}\\-])$", patterns::Translate("[\\w-]"));
    EXPECT_EQ("^(?:[^\\x{20}\\t\\n\\r])$", patterns::Translate("[^\\s]"));
    // Subtraction: a base character the subtracted class does not match.
    EXPECT_EQ("^(?:(?:(?![aeiou])[a-z]))$", patterns::Translate("[a-z-[aeiou]]"));
    EXPECT_EQ("^(?:(?:(?!(?:(?![c])[b-y]))[a-z]))$", patterns::Translate("[a-z-[b-y-[c]]]"));
    // Escaped brackets, braces and categories pass as they are.
    EXPECT_EQ("^(?:\\[\\{\\p{Lu}{2,3}[\\]\\^])$", patterns::Translate("\\[\\{\\p{Lu}{2,3}[\\]^]"));
}

TEST(PatternClassTranslationTest, DeepSubtractionCostsNoStack) {
    // Nesting is kept on the heap: a pattern nested far deeper than any
    // schema would be still translates and matches.
    std::string pattern;
    const int depth = 20000;
    for (int i = 0; i < depth; ++i) pattern += "[a-z-";
    pattern += "[a]";
    for (int i = 0; i < depth; ++i) pattern += ']';
    const std::string translated = patterns::Translate(pattern);
    EXPECT_EQ(0u, translated.find("^(?:(?:(?!(?:(?!"));
    EXPECT_EQ(depth, std::count(translated.begin(), translated.end(), '!'));
    // PCRE2 refuses such nesting instead of recursing into it.
    ExpectThrow<CQmException>([&] { R::MatchesPattern("b", pattern); },
                              "Invalid Regular Expression: " + pattern +
                                  " Error: 'parentheses are too deeply nested'");
}

}  // namespace
