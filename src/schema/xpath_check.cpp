#include "schema/xpath_check.h"

#include <vector>

#include "qmxml/types/whitespace.h"
#include "schema/lexical_check.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

bool IsSpace(char c) { return CWhitespaceUtils::IsWhiteSpace(c); }

bool IsNameChar(char c) {
    const unsigned char u = static_cast<unsigned char>(c);
    return u >= 0x80 || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.';
}

// Tokens: "/", "//", ".", "@", "|", "*", "::" and names (NCNames, possibly
// followed by ':' and an NCName or '*', kept as one token).
bool Tokenize(const std::string& s, std::vector<std::string>& tokens) {
    std::size_t i = 0;
    while (i < s.size()) {
        const char c = s[i];
        if (IsSpace(c)) {
            ++i;
            continue;
        }
        if (c == '/') {
            if (i + 1 < s.size() && s[i + 1] == '/') {
                tokens.emplace_back("//");
                i += 2;
            } else {
                tokens.emplace_back("/");
                ++i;
            }
            continue;
        }
        if (c == ':' && i + 1 < s.size() && s[i + 1] == ':') {
            tokens.emplace_back("::");
            i += 2;
            continue;
        }
        if (c == '.' && (i + 1 >= s.size() || !IsNameChar(s[i + 1]) || s[i + 1] == '.')) {
            if (i + 1 < s.size() && s[i + 1] == '.') return false;  // ".." is not in the subset
            tokens.emplace_back(".");
            ++i;
            continue;
        }
        if (c == '@' || c == '|' || c == '*') {
            tokens.emplace_back(1, c);
            ++i;
            continue;
        }
        if (IsNameChar(c)) {
            std::size_t j = i;
            while (j < s.size() && IsNameChar(s[j])) ++j;
            if (j < s.size() && s[j] == ':' && !(j + 1 < s.size() && s[j + 1] == ':')) {
                ++j;
                if (j < s.size() && s[j] == '*') {
                    ++j;
                } else {
                    const std::size_t k = j;
                    while (j < s.size() && IsNameChar(s[j])) ++j;
                    if (j == k) return false;
                }
            }
            tokens.push_back(s.substr(i, j - i));
            i = j;
            continue;
        }
        return false;
    }
    return true;
}

class Parser {
public:
    Parser(const std::vector<std::string>& tokens, const std::function<bool(const std::string&)>& declared)
        : m_tokens(tokens), m_declared(declared) {}

    bool Expression(bool field) {
        if (!Path(field)) return false;
        while (Peek("|")) {
            ++m_pos;
            if (!Path(field)) return false;
        }
        return m_pos == m_tokens.size();
    }

private:
    bool Peek(const char* t) const { return m_pos < m_tokens.size() && m_tokens[m_pos] == t; }

    bool NameTest() {
        if (m_pos >= m_tokens.size()) return false;
        const std::string& t = m_tokens[m_pos];
        if (t == "*") {
            ++m_pos;
            return true;
        }
        const std::size_t colon = t.find(':');
        const std::string local = colon == std::string::npos ? t : t.substr(colon + 1);
        if (colon != std::string::npos) {
            const std::string prefix = t.substr(0, colon);
            if (!IsNCNameLiteral(prefix) || !m_declared(prefix)) return false;
            if (local != "*" && !IsNCNameLiteral(local)) return false;
        } else if (!IsNCNameLiteral(local)) {
            return false;
        }
        ++m_pos;
        return true;
    }

    // Step: "." | ("child" "::")? NameTest; in a field the last step may be
    // ("@" | "attribute" "::") NameTest.
    bool Step(bool field, bool& attribute) {
        attribute = false;
        if (Peek(".")) {
            ++m_pos;
            return true;
        }
        if (Peek("@")) {
            if (!field) return false;
            ++m_pos;
            attribute = true;
            return NameTest();
        }
        if (m_pos + 1 < m_tokens.size() && m_tokens[m_pos + 1] == "::") {
            const std::string axis = m_tokens[m_pos];
            if (axis == "attribute") {
                if (!field) return false;
                attribute = true;
            } else if (axis != "child") {
                return false;
            }
            m_pos += 2;
            return NameTest();
        }
        return NameTest();
    }

    bool Path(bool field) {
        if (Peek(".") && m_pos + 1 < m_tokens.size() && m_tokens[m_pos + 1] == "//") m_pos += 2;
        bool attribute = false;
        if (!Step(field, attribute)) return false;
        while (Peek("/")) {
            if (attribute) return false;  // nothing follows an attribute step
            ++m_pos;
            if (!Step(field, attribute)) return false;
        }
        return true;
    }

    const std::vector<std::string>& m_tokens;
    const std::function<bool(const std::string&)>& m_declared;
    std::size_t m_pos = 0;
};

}  // namespace

bool IsIdentityXPath(const std::string& text, bool field, const std::function<bool(const std::string&)>& prefixDeclared) {
    std::vector<std::string> tokens;
    if (!Tokenize(text, tokens) || tokens.empty()) return false;
    return Parser(tokens, prefixDeclared).Expression(field);
}

}  // namespace Schema
}  // namespace QmXmlLib10
