// The XSD whitespace facet, applied to a text before it is parsed.
#pragma once

#include <string>

namespace QmXmlLib10 {

// Stateless helpers; every operation is static. Whitespace means exactly
// space, tab, carriage return and line feed.
//
// Results that are built anew (Preserve, Replace when it changed something,
// Collapse) end at the first zero byte of the built text, as a C string would;
// XML text never carries one.
class CWhitespaceUtils {
public:
    enum WhitespaceRule : int {
        WhitespaceRule_None = 0,      // the text as given
        WhitespaceRule_Preserve = 1,  // line ends normalised to LF
        WhitespaceRule_Replace = 2,   // tab, LF, CR (and CR LF) become one space each
        WhitespaceRule_Collapse = 3,  // Replace, then runs to one space, trimmed
    };

    CWhitespaceUtils() = delete;

    // True for space, tab, CR and LF only.
    static bool IsWhiteSpace(char c) noexcept {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n';
    }

    // CR LF becomes LF, a lone CR becomes LF. A null text or a length below 1
    // gives "". The string form returns the text unchanged when it holds no CR.
    static std::string Preserve(const char* text, int length);
    static std::string Preserve(const std::string& text);

    // CR LF becomes one space, as does each tab, LF and lone CR. A text without
    // any of them is returned as it was.
    static std::string Replace(const std::string& text);

    // Replace, then every run of whitespace becomes one space and leading and
    // trailing whitespace is removed.
    static std::string Collapse(const std::string& text);

    // 0 copies, 1 Preserve, 2 Replace, 3 Collapse; any other value throws
    // CQmException "Unknown WhitespaceRule".
    static std::string ApplyRule(WhitespaceRule rule, const std::string& text);
};

}  // namespace QmXmlLib10
