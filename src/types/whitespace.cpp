#include "qmxml/types/whitespace.h"

#include <algorithm>
#include <cstring>

#include "qmxml/core/exception.h"
#include "types/whitespace_rule.h"

namespace QmXmlLib10 {

namespace {

// Built results behave like the C strings they replace: they end at the first
// zero byte.
void CutAtZero(std::string& text) {
    const std::size_t zero = text.find('\0');
    if (zero != std::string::npos) {
        text.resize(zero);
    }
}

std::string PreserveImpl(const char* text, std::size_t length) {
    std::string out;
    out.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == '\r') {
            out.push_back('\n');
            if (i + 1 < length && text[i + 1] == '\n') {
                ++i;
            }
        } else {
            out.push_back(c);
        }
    }
    CutAtZero(out);
    return out;
}

}  // namespace

std::string CWhitespaceUtils::Preserve(const char* text, int length) {
    if (text == nullptr || length <= 0) {
        return std::string();
    }
    return PreserveImpl(text, static_cast<std::size_t>(length));
}

std::string CWhitespaceUtils::Preserve(const std::string& text) {
    if (text.find('\r') == std::string::npos) {
        return text;
    }
    return PreserveImpl(text.data(), text.size());
}

std::string CWhitespaceUtils::Replace(const std::string& text) {
    const std::size_t first = text.find_first_of("\t\n\r");
    if (first == std::string::npos) {
        return text;
    }
    std::string out;
    out.reserve(text.size());
    out.append(text, 0, first);
    const std::size_t length = text.size();
    for (std::size_t i = first; i < length; ++i) {
        const char c = text[i];
        if (c == '\r') {
            out.push_back(' ');
            if (i + 1 < length && text[i + 1] == '\n') {
                ++i;  // CR LF is one line end, so one space
            }
        } else if (c == '\t' || c == '\n') {
            out.push_back(' ');
        } else {
            out.push_back(c);
        }
    }
    CutAtZero(out);
    return out;
}

std::string CWhitespaceUtils::Collapse(const std::string& text) {
    if (!whitespace::RuleChanges(WhitespaceRule_Collapse, text)) {
        return text;
    }
    std::string out;
    out.reserve(text.size());
    bool lastWasSpace = true;  // drops leading whitespace
    for (const char c : text) {
        if (IsWhiteSpace(c)) {
            if (!lastWasSpace) {
                out.push_back(' ');
                lastWasSpace = true;
            }
        } else {
            out.push_back(c);
            lastWasSpace = false;
        }
    }
    if (!out.empty() && out.back() == ' ') {
        out.pop_back();
    }
    CutAtZero(out);
    return out;
}

std::string CWhitespaceUtils::ApplyRule(WhitespaceRule rule, const std::string& text) {
    switch (rule) {
    case WhitespaceRule_None:
        return text;
    case WhitespaceRule_Preserve:
        return Preserve(text);
    case WhitespaceRule_Replace:
        return Replace(text);
    case WhitespaceRule_Collapse:
        return Collapse(text);
    }
    throw CQmException("Unknown WhitespaceRule");
}

namespace whitespace {

bool RuleChanges(CWhitespaceUtils::WhitespaceRule rule, std::string_view text) noexcept {
    switch (rule) {
    case CWhitespaceUtils::WhitespaceRule_None:
        return false;
    case CWhitespaceUtils::WhitespaceRule_Preserve:
        return text.find('\r') != std::string_view::npos;
    case CWhitespaceUtils::WhitespaceRule_Replace:
        return std::any_of(text.begin(), text.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
    case CWhitespaceUtils::WhitespaceRule_Collapse: {
        // Values rarely hold a byte at or below space; without one there is
        // nothing to collapse, and this test needs no branch per byte.
        bool low = false;
        for (const char c : text) {
            low |= static_cast<unsigned char>(c) <= ' ';
        }
        if (!low) {
            return false;
        }
        if (text.front() == ' ' || text.back() == ' ') {
            return true;
        }
        bool lastWasSpace = false;
        for (const char c : text) {
            // A rebuilt text also ends at a zero byte, so one means a change.
            if (c == '\t' || c == '\n' || c == '\r' || c == '\0') {
                return true;
            }
            if (c == ' ') {
                if (lastWasSpace) {
                    return true;
                }
                lastWasSpace = true;
            } else {
                lastWasSpace = false;
            }
        }
        return false;
    }
    }
    return true;
}

}  // namespace whitespace
}  // namespace QmXmlLib10
