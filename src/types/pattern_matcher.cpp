#define PCRE2_CODE_UNIT_WIDTH 8
#include "types/pattern_matcher.h"

#include <pcre2.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

#include <qmxml/core/exception.h>

#include "platform/charset.h"

namespace QmXmlLib10 {
namespace patterns {

namespace {

struct CodeDeleter {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
using CodePtr = std::unique_ptr<pcre2_code, CodeDeleter>;

}  // namespace

// A compiled pattern, or the reason it did not compile.
struct Compiled {
    CodePtr code;
    std::string error;
    bool jit = false;  // machine code was made
};

namespace {

// Bounds on one match, so that catastrophic backtracking ends in an exception
// instead of hanging the caller or exhausting memory.
constexpr std::uint32_t kMatchLimit = 10000000;  // backtracking steps
constexpr std::uint32_t kHeapLimitKiB = 64 * 1024;  // backtracking frames
// Patterns come from static metadata, so the cache stays small; a caller
// inventing patterns without end only makes it start over.
constexpr std::size_t kMaxCachedPatterns = 4096;
// Match data keeps its backtracking frames between calls; after long values
// they are given back rather than kept for the thread's lifetime.
constexpr std::size_t kKeepFramesUpTo = 4096;

const std::uint32_t kCompileOptions = PCRE2_UTF | PCRE2_UCP | PCRE2_DOLLAR_ENDONLY;

// XML Schema's block escapes: the class body of each block's code points.
// The first four keep their historical octal spelling. An empty body is a
// block no UTF-8 text can hold (surrogates).
struct Block {
    const char* name;
    const char* ranges;
};

const Block kBlocks[] = {
    {"BasicLatin", "\\000-\\177"},
    {"Latin-1Supplement", "\\200-\\377"},
    {"LatinExtended-A", "\\400-\\577"},
    {"LatinExtended-B", "\\600-\\x{24F}"},
    {"IPAExtensions", "\\x{250}-\\x{2AF}"},
    {"SpacingModifierLetters", "\\x{2B0}-\\x{2FF}"},
    {"CombiningDiacriticalMarks", "\\x{300}-\\x{36F}"},
    {"Greek", "\\x{370}-\\x{3FF}"},
    {"Cyrillic", "\\x{400}-\\x{4FF}"},
    {"Armenian", "\\x{530}-\\x{58F}"},
    {"Hebrew", "\\x{590}-\\x{5FF}"},
    {"Arabic", "\\x{600}-\\x{6FF}"},
    {"Syriac", "\\x{700}-\\x{74F}"},
    {"Thaana", "\\x{780}-\\x{7BF}"},
    {"Devanagari", "\\x{900}-\\x{97F}"},
    {"Bengali", "\\x{980}-\\x{9FF}"},
    {"Gurmukhi", "\\x{A00}-\\x{A7F}"},
    {"Gujarati", "\\x{A80}-\\x{AFF}"},
    {"Oriya", "\\x{B00}-\\x{B7F}"},
    {"Tamil", "\\x{B80}-\\x{BFF}"},
    {"Telugu", "\\x{C00}-\\x{C7F}"},
    {"Kannada", "\\x{C80}-\\x{CFF}"},
    {"Malayalam", "\\x{D00}-\\x{D7F}"},
    {"Sinhala", "\\x{D80}-\\x{DFF}"},
    {"Thai", "\\x{E00}-\\x{E7F}"},
    {"Lao", "\\x{E80}-\\x{EFF}"},
    {"Tibetan", "\\x{F00}-\\x{FFF}"},
    {"Myanmar", "\\x{1000}-\\x{109F}"},
    {"Georgian", "\\x{10A0}-\\x{10FF}"},
    {"HangulJamo", "\\x{1100}-\\x{11FF}"},
    {"Ethiopic", "\\x{1200}-\\x{137F}"},
    {"Cherokee", "\\x{13A0}-\\x{13FF}"},
    {"UnifiedCanadianAboriginalSyllabics", "\\x{1400}-\\x{167F}"},
    {"Ogham", "\\x{1680}-\\x{169F}"},
    {"Runic", "\\x{16A0}-\\x{16FF}"},
    {"Khmer", "\\x{1780}-\\x{17FF}"},
    {"Mongolian", "\\x{1800}-\\x{18AF}"},
    {"LatinExtendedAdditional", "\\x{1E00}-\\x{1EFF}"},
    {"GreekExtended", "\\x{1F00}-\\x{1FFF}"},
    {"GeneralPunctuation", "\\x{2000}-\\x{206F}"},
    {"SuperscriptsandSubscripts", "\\x{2070}-\\x{209F}"},
    {"CurrencySymbols", "\\x{20A0}-\\x{20CF}"},
    {"CombiningMarksforSymbols", "\\x{20D0}-\\x{20FF}"},
    {"LetterlikeSymbols", "\\x{2100}-\\x{214F}"},
    {"NumberForms", "\\x{2150}-\\x{218F}"},
    {"Arrows", "\\x{2190}-\\x{21FF}"},
    {"MathematicalOperators", "\\x{2200}-\\x{22FF}"},
    {"MiscellaneousTechnical", "\\x{2300}-\\x{23FF}"},
    {"ControlPictures", "\\x{2400}-\\x{243F}"},
    {"OpticalCharacterRecognition", "\\x{2440}-\\x{245F}"},
    {"EnclosedAlphanumerics", "\\x{2460}-\\x{24FF}"},
    {"BoxDrawing", "\\x{2500}-\\x{257F}"},
    {"BlockElements", "\\x{2580}-\\x{259F}"},
    {"GeometricShapes", "\\x{25A0}-\\x{25FF}"},
    {"MiscellaneousSymbols", "\\x{2600}-\\x{26FF}"},
    {"Dingbats", "\\x{2700}-\\x{27BF}"},
    {"BraillePatterns", "\\x{2800}-\\x{28FF}"},
    {"CJKRadicalsSupplement", "\\x{2E80}-\\x{2EFF}"},
    {"KangxiRadicals", "\\x{2F00}-\\x{2FDF}"},
    {"IdeographicDescriptionCharacters", "\\x{2FF0}-\\x{2FFF}"},
    {"CJKSymbolsandPunctuation", "\\x{3000}-\\x{303F}"},
    {"Hiragana", "\\x{3040}-\\x{309F}"},
    {"Katakana", "\\x{30A0}-\\x{30FF}"},
    {"Bopomofo", "\\x{3100}-\\x{312F}"},
    {"HangulCompatibilityJamo", "\\x{3130}-\\x{318F}"},
    {"Kanbun", "\\x{3190}-\\x{319F}"},
    {"BopomofoExtended", "\\x{31A0}-\\x{31BF}"},
    {"EnclosedCJKLettersandMonths", "\\x{3200}-\\x{32FF}"},
    {"CJKCompatibility", "\\x{3300}-\\x{33FF}"},
    {"CJKUnifiedIdeographsExtensionA", "\\x{3400}-\\x{4DB5}"},
    {"CJKUnifiedIdeographs", "\\x{4E00}-\\x{9FFF}"},
    {"YiSyllables", "\\x{A000}-\\x{A48F}"},
    {"YiRadicals", "\\x{A490}-\\x{A4CF}"},
    {"HangulSyllables", "\\x{AC00}-\\x{D7A3}"},
    {"HighSurrogates", ""},
    {"HighPrivateUseSurrogates", ""},
    {"LowSurrogates", ""},
    {"PrivateUse", "\\x{E000}-\\x{F8FF}\\x{F0000}-\\x{FFFFD}\\x{100000}-\\x{10FFFD}"},
    {"CJKCompatibilityIdeographs", "\\x{F900}-\\x{FAFF}"},
    {"AlphabeticPresentationForms", "\\x{FB00}-\\x{FB4F}"},
    {"ArabicPresentationForms-A", "\\x{FB50}-\\x{FDFF}"},
    {"CombiningHalfMarks", "\\x{FE20}-\\x{FE2F}"},
    {"CJKCompatibilityForms", "\\x{FE30}-\\x{FE4F}"},
    {"SmallFormVariants", "\\x{FE50}-\\x{FE6F}"},
    {"ArabicPresentationForms-B", "\\x{FE70}-\\x{FEFE}"},
    {"Specials", "\\x{FEFF}\\x{FFF0}-\\x{FFFD}"},
    {"HalfwidthandFullwidthForms", "\\x{FF00}-\\x{FFEF}"},
    {"OldItalic", "\\x{10300}-\\x{1032F}"},
    {"Gothic", "\\x{10330}-\\x{1034F}"},
    {"Deseret", "\\x{10400}-\\x{1044F}"},
    {"ByzantineMusicalSymbols", "\\x{1D000}-\\x{1D0FF}"},
    {"MusicalSymbols", "\\x{1D100}-\\x{1D1FF}"},
    {"MathematicalAlphanumericSymbols", "\\x{1D400}-\\x{1D7FF}"},
    {"CJKUnifiedIdeographsExtensionB", "\\x{20000}-\\x{2A6D6}"},
    {"CJKCompatibilityIdeographsSupplement", "\\x{2F800}-\\x{2FA1F}"},
    {"Tags", "\\x{E0000}-\\x{E007F}"},
};

const Block* FindBlock(const char* name, std::size_t length) {
    for (const Block& block : kBlocks) {
        if (std::strlen(block.name) == length && std::memcmp(block.name, name, length) == 0) return &block;
    }
    return nullptr;
}

// At text[pos] a backslash followed by 'p' or 'P': appends the block's class
// and returns the length consumed, or 0 when this is no block escape.
std::size_t TranslateBlock(const std::string& text, std::size_t pos, std::string& out) {
    const bool negated = text[pos + 1] == 'P';
    if (text.compare(pos + 2, 3, "{Is") != 0) return 0;
    const std::size_t nameStart = pos + 5;
    const std::size_t close = text.find('}', nameStart);
    if (close == std::string::npos) return 0;
    const Block* block = FindBlock(text.data() + nameStart, close - nameStart);
    if (!block) return 0;
    if (*block->ranges == '\0') {
        out += negated ? "[\\x{0}-\\x{10FFFF}]" : "[^\\x{0}-\\x{10FFFF}]";
    } else {
        out += negated ? "[^" : "[";
        out += block->ranges;
        out += ']';
    }
    return close + 1 - pos;
}

// ---- XML Schema's character class escapes, as PCRE2 class items

constexpr char32_t kMaxCodePoint = 0x10FFFF;

struct CodeRange {
    char32_t first;
    char32_t last;
};

// \i and \c are the characters of XML names: NameStartChar and NameChar of
// XML 1.0 fifth edition rather than the Unicode 2.0 letter tables of the
// second edition. The W3C test suite counts names valid under the fifth
// edition valid for XML Schema 1.0 too, and these ranges do not age with
// Unicode. Sorted, disjoint, not touching.
const CodeRange kNameStartChars[] = {
    {':', ':'},       {'A', 'Z'},         {'_', '_'},         {'a', 'z'},         {0xC0, 0xD6},
    {0xD8, 0xF6},     {0xF8, 0x2FF},      {0x370, 0x37D},     {0x37F, 0x1FFF},    {0x200C, 0x200D},
    {0x2070, 0x218F}, {0x2C00, 0x2FEF},   {0x3001, 0xD7FF},   {0xF900, 0xFDCF},   {0xFDF0, 0xFFFD},
    {0x10000, 0xEFFFF},
};
const CodeRange kNameChars[] = {
    {'-', '.'},       {'0', ':'},         {'A', 'Z'},         {'_', '_'},         {'a', 'z'},
    {0xB7, 0xB7},     {0xC0, 0xD6},       {0xD8, 0xF6},       {0xF8, 0x37D},      {0x37F, 0x1FFF},
    {0x200C, 0x200D}, {0x203F, 0x2040},   {0x2070, 0x218F},   {0x2C00, 0x2FEF},   {0x3001, 0xD7FF},
    {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD},   {0x10000, 0xEFFFF},
};

// A mistake in the pattern that XML Schema's grammar rules out; compiling
// reports it as PCRE2's own errors are reported.
[[noreturn]] void SyntaxError(const char* what) { throw CQmException(what); }

void AppendCodePoint(std::string& out, char32_t c) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "\\x{%X}", static_cast<unsigned>(c));
    out += buffer;
}

template <std::size_t N>
std::vector<CodeRange> Ranges(const CodeRange (&ranges)[N]) {
    return std::vector<CodeRange>(ranges, ranges + N);
}

// The ranges as class items. UTF-8 text holds no surrogates and PCRE2 refuses
// them as range ends, so ends inside them move out.
std::string ClassItems(const std::vector<CodeRange>& ranges) {
    std::string items;
    for (CodeRange r : ranges) {
        if (r.first >= 0xD800 && r.first <= 0xDFFF) r.first = 0xE000;
        if (r.last >= 0xD800 && r.last <= 0xDFFF) r.last = 0xD7FF;
        if (r.first > r.last) continue;
        AppendCodePoint(items, r.first);
        if (r.last != r.first) {
            items += '-';
            AppendCodePoint(items, r.last);
        }
    }
    return items;
}

// Every code point outside the sorted, disjoint ranges.
std::vector<CodeRange> Complement(const std::vector<CodeRange>& ranges) {
    std::vector<CodeRange> rest;
    char32_t next = 0;
    for (const CodeRange& r : ranges) {
        if (r.first > next) rest.push_back({next, r.first - 1});
        next = r.last + 1;
    }
    if (next <= kMaxCodePoint) rest.push_back({next, kMaxCodePoint});
    return rest;
}

// A block's class body ("\000-\177", "\x{370}-\x{3FF}\x{F0000}-...") as ranges.
std::vector<CodeRange> ParseBlockRanges(const char* body) {
    std::vector<CodeRange> ranges;
    auto codePoint = [&body]() {
        ++body;  // the backslash
        if (*body == 'x') {
            char* end = nullptr;
            const auto value = static_cast<char32_t>(std::strtoul(body + 2, &end, 16));
            body = end + 1;  // past '}'
            return value;
        }
        const auto value = static_cast<char32_t>((body[0] - '0') * 64 + (body[1] - '0') * 8 + (body[2] - '0'));
        body += 3;
        return value;
    };
    while (*body == '\\') {
        const char32_t first = codePoint();
        char32_t last = first;
        if (*body == '-') {
            ++body;
            last = codePoint();
        }
        ranges.push_back({first, last});
    }
    return ranges;
}

// How an escape that stands for a set of characters is written in PCRE2: as
// items inside brackets, and as an atom of its own.
struct EscapeClass {
    std::string items;
    std::string atom;
    const std::string& Standalone() const { return atom; }
};

struct EscapeClasses {
    EscapeClass s, S, w, W, i, I, c, C;
    EscapeClasses() {
        // \s is space, tab, LF and CR only (no other Unicode spaces).
        const std::vector<CodeRange> spaces = {{0x09, 0x0A}, {0x0D, 0x0D}, {0x20, 0x20}};
        s.items = "\\x{20}\\t\\n\\r";
        s.atom = "[" + s.items + "]";
        S.items = ClassItems(Complement(spaces));
        S.atom = "[^" + s.items + "]";
        // \w is every character outside the categories P, Z and C; as items
        // that is the other four major categories, which with those three
        // cover every code point.
        W.items = "\\p{P}\\p{Z}\\p{C}";
        W.atom = "[" + W.items + "]";
        w.items = "\\p{L}\\p{M}\\p{N}\\p{S}";
        w.atom = "[^" + W.items + "]";
        i.items = ClassItems(Ranges(kNameStartChars));
        i.atom = "[" + i.items + "]";
        I.items = ClassItems(Complement(Ranges(kNameStartChars)));
        I.atom = "[^" + i.items + "]";
        c.items = ClassItems(Ranges(kNameChars));
        c.atom = "[" + c.items + "]";
        C.items = ClassItems(Complement(Ranges(kNameChars)));
        C.atom = "[^" + c.items + "]";
    }
};

const EscapeClass* FindEscapeClass(char letter) {
    static const EscapeClasses classes;
    switch (letter) {
        case 's': return &classes.s;
        case 'S': return &classes.S;
        case 'w': return &classes.w;
        case 'W': return &classes.W;
        case 'i': return &classes.i;
        case 'I': return &classes.I;
        case 'c': return &classes.c;
        case 'C': return &classes.C;
        default: return nullptr;
    }
}

// At text[pos] inside a character class, one character: a literal (all the
// bytes of its UTF-8 sequence) or a single-character escape. Appends it as a
// class item, moves past it and returns true; returns false, moving nowhere,
// at an escape that stands for a set.
bool ClassCharacter(const std::string& text, std::size_t& pos, std::string& items) {
    const char c = text[pos];
    if (c == '\\') {
        if (pos + 1 == text.size()) SyntaxError("\\ at end of pattern");
        const char next = text[pos + 1];
        if (FindEscapeClass(next) || next == 'd' || next == 'D' || next == 'p' || next == 'P') return false;
        items += c;
        items += next;
        pos += 2;
        return true;
    }
    // Characters PCRE2 reads specially inside brackets are escaped.
    if (c == '^' || c == '-' || c == '[' || c == ']') items += '\\';
    std::size_t length = 1;
    const auto lead = static_cast<unsigned char>(c);
    if (lead >= 0xF0) {
        length = 4;
    } else if (lead >= 0xE0) {
        length = 3;
    } else if (lead >= 0xC0) {
        length = 2;
    }
    length = std::min(length, text.size() - pos);
    items.append(text, pos, length);
    pos += length;
    return true;
}

// At text[pos] inside a character class, an escape that stands for a set
// (\s \w \i \c and their negations, \d \D, \p{...} \P{...}): appends its
// items and moves past it.
void ClassSetEscape(const std::string& text, std::size_t& pos, std::string& items) {
    const char next = text[pos + 1];
    if (const EscapeClass* escape = FindEscapeClass(next)) {
        items += escape->items;
        pos += 2;
        return;
    }
    if (next == 'p' || next == 'P') {
        const std::size_t close = text.find('}', pos);
        if (text.compare(pos + 2, 3, "{Is") == 0 && close != std::string::npos) {
            if (const Block* block = FindBlock(text.data() + pos + 5, close - pos - 5)) {
                // A block is items of its ranges; its negation, items of the
                // rest, since brackets cannot hold a negated class.
                if (next == 'p') {
                    items += block->ranges;
                } else {
                    items += ClassItems(Complement(ParseBlockRanges(block->ranges)));
                }
                pos = close + 1;
                return;
            }
        }
        // A category, or a name PCRE2 is left to refuse.
        const std::size_t end = close == std::string::npos ? pos + 2 : close + 1;
        items.append(text, pos, end - pos);
        pos = end;
        return;
    }
    items.append(text, pos, 2);  // \d, \D
    pos += 2;
}

// At text[pos] an unescaped '{', which XML Schema allows only as a quantifier
// {n}, {n,} or {n,m}; PCRE2 would take "{,5}" as plain text.
void CheckQuantifier(const std::string& text, std::size_t pos) {
    auto digits = [&text](std::size_t from) {
        std::size_t to = from;
        while (to < text.size() && text[to] >= '0' && text[to] <= '9') ++to;
        return to;
    };
    std::size_t at = digits(pos + 1);
    bool valid = at > pos + 1;
    if (valid && at < text.size() && text[at] == ',') at = digits(at + 1);
    valid = valid && at < text.size() && text[at] == '}';
    if (!valid) SyntaxError("an opening brace must start a quantifier {n}, {n,} or {n,m}, or be escaped");
}

// One bracket level of a character class being translated.
struct ClassLevel {
    bool negated = false;
    bool any = false;         // an item was seen, even one of no characters
    bool rangeStart = false;  // the last item is one character, which may start a range
    bool subtracts = false;   // "-[" was met: only the closing ']' may follow
    std::string items;
};

void AppendBaseClass(const ClassLevel& level, std::string& out) {
    if (level.items.empty()) {
        // Only empty sets (the surrogate blocks) were named.
        out += level.negated ? "[\\x{0}-\\x{10FFFF}]" : "(?:(?!))";
        return;
    }
    out += level.negated ? "[^" : "[";
    out += level.items;
    out += ']';
}

// At text[pos] the '[' of a character class: appends its translation and
// returns the position after its ']'. PCRE2 has no class subtraction, so
// [base-[sub]] becomes (?:(?!sub)[base]), a base character the subtracted
// class does not match. Nested levels are kept on an explicit stack and each
// part is appended once, so deep nesting costs neither call depth nor
// repeated copying.
std::size_t TranslateClass(const std::string& text, std::size_t pos, std::string& out) {
    std::vector<ClassLevel> levels;
    auto open = [&] {
        ++pos;
        levels.emplace_back();
        if (pos < text.size() && text[pos] == '^') {
            levels.back().negated = true;
            ++pos;
        }
    };
    open();
    for (;;) {
        if (pos >= text.size()) SyntaxError("missing terminating ] for character class");
        ClassLevel& level = levels.back();
        const char c = text[pos];
        if (level.subtracts && c != ']') SyntaxError("a class subtraction must end its character class");
        if (c == ']') {
            if (!level.any) SyntaxError("empty character class");
            ++pos;
            if (level.subtracts) out += ')';  // the end of the subtracted class's lookahead
            AppendBaseClass(level, out);
            if (level.subtracts) out += ')';
            levels.pop_back();
            if (levels.empty()) return pos;
            continue;
        }
        if (c == '[') SyntaxError("an opening bracket inside a character class must start a class subtraction");
        if (c == '-') {
            const char after = pos + 1 < text.size() ? text[pos + 1] : '\0';
            if (after == '[') {
                if (!level.any) SyntaxError("a class subtraction needs characters to subtract from");
                level.subtracts = true;
                out += "(?:(?!";
                ++pos;
                open();
                continue;
            }
            const bool beforeSubtraction = after == '-' && pos + 2 < text.size() && text[pos + 2] == '[';
            if (!level.any || after == ']' || beforeSubtraction) {
                // A plain '-' first or last in the class (or in the set a
                // subtraction starts from).
                level.items += "\\-";
                level.any = level.rangeStart = true;
                ++pos;
                continue;
            }
            if (!level.rangeStart) {
                SyntaxError("a hyphen inside a character class must come first or last, or join the ends of a range");
            }
            ++pos;
            if (pos >= text.size()) SyntaxError("missing terminating ] for character class");
            level.items += '-';
            if (!ClassCharacter(text, pos, level.items)) {
                SyntaxError("a range in a character class must end with one character");
            }
            level.rangeStart = false;
            continue;
        }
        level.any = true;
        if (ClassCharacter(text, pos, level.items)) {
            level.rangeStart = true;
        } else {
            ClassSetEscape(text, pos, level.items);
            level.rangeStart = false;
        }
    }
}

// PCRE2 objects owned by RAII holders (CodePtr above).
struct MatchDataDeleter {
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};
using MatchDataPtr = std::unique_ptr<pcre2_match_data, MatchDataDeleter>;

// Shared read-only by every thread once built.
const pcre2_compile_context* CompileContext() {
    struct Holder {
        pcre2_compile_context* context = pcre2_compile_context_create(nullptr);
        Holder() {
            if (!context) throw std::bad_alloc();
            // "." excludes CR and LF, as in XML Schema.
            pcre2_set_newline(context, PCRE2_NEWLINE_ANYCRLF);
        }
        ~Holder() { pcre2_compile_context_free(context); }
    };
    static const Holder holder;
    return holder.context;
}

pcre2_match_context* MatchContext() {
    struct Holder {
        pcre2_match_context* context = pcre2_match_context_create(nullptr);
        Holder() {
            if (!context) throw std::bad_alloc();
            pcre2_set_match_limit(context, kMatchLimit);
            pcre2_set_depth_limit(context, kMatchLimit);
            pcre2_set_heap_limit(context, kHeapLimitKiB);
        }
        ~Holder() { pcre2_match_context_free(context); }
    };
    static const Holder holder;
    return holder.context;
}

MatchDataPtr NewMatchData() {
    // Only whether there is a match matters: one offset pair is enough.
    MatchDataPtr data(pcre2_match_data_create(1, nullptr));
    if (!data) throw std::bad_alloc();
    return data;
}

std::string ErrorText(int code) {
    PCRE2_UCHAR buffer[256];
    if (pcre2_get_error_message(code, buffer, sizeof buffer) < 0) return FormatString("PCRE2 error %d", code);
    return reinterpret_cast<const char*>(buffer);
}

// jit: also translate the pattern to machine code, worth it for a pattern
// that is kept and used again.
Compiled Compile(const std::string& utf8Pattern, bool jit) {
    Compiled result;
    std::string source;
    try {
        source = Translate(utf8Pattern);
    } catch (const CQmException& e) {
        result.error = e.GetMessage();
        return result;
    }
    int errorCode = 0;
    PCRE2_SIZE errorOffset = 0;
    result.code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(source.data()), source.size(), kCompileOptions,
                                    &errorCode, &errorOffset, const_cast<pcre2_compile_context*>(CompileContext())));
    if (!result.code) {
        result.error = ErrorText(errorCode);
        return result;
    }
    // Machine code for the pattern: matching gets several times faster. Where
    // JIT is unavailable the interpreter serves, so a failure here is ignored.
    if (jit) result.jit = pcre2_jit_compile(result.code.get(), PCRE2_JIT_COMPLETE) == 0;
    return result;
}

[[noreturn]] void ThrowInvalidPattern(const std::string& xsdPattern, const std::string& error) {
    throw CQmException(
        FormatString("Invalid Regular Expression: %s Error: '%s'", xsdPattern.c_str(), error.c_str()));
}

// PCRE2 checks that a UTF subject is valid UTF-8 at every call, a good part
// of matching a short value. Pure ASCII is valid by construction, so the
// check is skipped for it only; anything else keeps it and its errors.
bool IsAscii(const std::string& value) {
    return std::all_of(value.begin(), value.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; });
}

bool Run(const Compiled& compiled, pcre2_match_data* data, const std::string& value, const std::string& xsdPattern) {
    const pcre2_code* code = compiled.code.get();
    const auto subject = reinterpret_cast<PCRE2_SPTR>(value.data());
    const bool ascii = IsAscii(value);
    int rc = PCRE2_ERROR_JIT_BADOPTION;
    // The machine code's own entry skips pcre2_match's argument checks, and
    // it never checks UTF: taken for ASCII subjects only.
    if (compiled.jit && ascii) rc = pcre2_jit_match(code, subject, value.size(), 0, 0, data, MatchContext());
    if (rc == PCRE2_ERROR_JIT_BADOPTION)
        rc = pcre2_match(code, subject, value.size(), 0, ascii ? PCRE2_NO_UTF_CHECK : 0, data, MatchContext());
    // The machine code runs on a small fixed stack; the interpreter's limits
    // decide what a deeper match may use.
    if (rc == PCRE2_ERROR_JIT_STACKLIMIT)
        rc = pcre2_match(code, subject, value.size(), 0, (ascii ? PCRE2_NO_UTF_CHECK : 0) | PCRE2_NO_JIT, data,
                         MatchContext());
    if (rc >= 0) return true;
    if (rc == PCRE2_ERROR_NOMATCH) return false;
    throw CQmException(FormatString("Failed to match the Regular Expression: %s Error: '%s'", xsdPattern.c_str(),
                                    ErrorText(rc).c_str()));
}

// Process-wide cache; entries are shared so that a thread still matching with
// one survives the cache starting over.
struct Cache {
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<const Compiled>> entries;
};

Cache& TheCache() {
    static Cache cache;
    return cache;
}

std::shared_ptr<const Compiled> Lookup(const std::string& utf8Pattern) {
    Cache& cache = TheCache();
    std::lock_guard<std::mutex> lock(cache.mutex);
    auto found = cache.entries.find(utf8Pattern);
    if (found != cache.entries.end()) return found->second;
    // Compiling under the lock makes it happen once per pattern; it takes
    // microseconds for patterns of schema size.
    auto compiled = std::make_shared<const Compiled>(Compile(utf8Pattern, true));
    if (cache.entries.size() >= kMaxCachedPatterns) cache.entries.clear();
    cache.entries.emplace(utf8Pattern, compiled);
    return compiled;
}

// The local-encoding text as UTF-8: the text itself when no conversion is
// needed, else converted into scratch.
const std::string& AsUtf8(const std::string& text, std::string& scratch) {
    if (platform::LocalIsUtf8()) return text;
    scratch.clear();
    platform::LocalToUtf8(text.data(), text.size(), scratch);
    return scratch;
}

}  // namespace

std::string Translate(const std::string& pattern) {
    std::string out = "^(?:";
    out.reserve(pattern.size() + 16);
    std::size_t pos = 0;
    while (pos < pattern.size()) {
        const char c = pattern[pos];
        if (c == '[') {
            pos = TranslateClass(pattern, pos, out);
            continue;
        }
        if (c == '{') CheckQuantifier(pattern, pos);
        if (c != '\\' || pos + 1 == pattern.size()) {
            out += c;
            ++pos;
            continue;
        }
        // An escaped backslash is taken whole, so the letter after it is no
        // escape of its own.
        const char next = pattern[pos + 1];
        if (const EscapeClass* escape = FindEscapeClass(next)) {
            out += escape->Standalone();
            pos += 2;
            continue;
        }
        if (next == 'p' || next == 'P') {
            if (const std::size_t used = TranslateBlock(pattern, pos, out)) {
                pos += used;
                continue;
            }
            // A category: its braces are no quantifier.
            const std::size_t close = pattern.find('}', pos);
            if (pattern.compare(pos + 2, 1, "{") == 0 && close != std::string::npos) {
                out.append(pattern, pos, close + 1 - pos);
                pos = close + 1;
                continue;
            }
        }
        out += c;
        out += next;
        pos += 2;
    }
    out += ")$";
    return out;
}

namespace {

bool MatchCompiled(const Compiled& compiled, const std::string& value, const std::string& xsdPattern) {
    if (!compiled.code) ThrowInvalidPattern(xsdPattern, compiled.error);
    std::string valueScratch;
    const std::string& utf8Value = AsUtf8(value, valueScratch);

    thread_local MatchDataPtr data = NewMatchData();
    struct ReleaseLargeFrames {
        MatchDataPtr& data;
        bool release;
        ~ReleaseLargeFrames() {
            if (release) data.reset();
        }
    };
    if (!data) data = NewMatchData();
    ReleaseLargeFrames guard{data, utf8Value.size() > kKeepFramesUpTo};
    return Run(compiled, data.get(), utf8Value, xsdPattern);
}

}  // namespace

bool Match(const std::string& value, const std::string& xsdPattern) {
    std::string patternScratch;
    const std::shared_ptr<const Compiled> compiled = Lookup(AsUtf8(xsdPattern, patternScratch));
    return MatchCompiled(*compiled, value, xsdPattern);
}

std::shared_ptr<const Compiled> LookupUtf8(const std::string& utf8Pattern) { return Lookup(utf8Pattern); }

bool MatchPrepared(const Compiled& compiled, const std::string& value, const std::string& xsdPattern) {
    if (!platform::LocalIsUtf8()) return Match(value, xsdPattern);
    return MatchCompiled(compiled, value, xsdPattern);
}

bool MatchUncached(const std::string& value, const std::string& xsdPattern) {
    std::string patternScratch;
    std::string valueScratch;
    const Compiled compiled = Compile(AsUtf8(xsdPattern, patternScratch), false);
    if (!compiled.code) ThrowInvalidPattern(xsdPattern, compiled.error);
    MatchDataPtr data(pcre2_match_data_create_from_pattern(compiled.code.get(), nullptr));
    if (!data) throw std::bad_alloc();
    return Run(compiled, data.get(), AsUtf8(value, valueScratch), xsdPattern);
}

std::size_t CachedCount() {
    Cache& cache = TheCache();
    std::lock_guard<std::mutex> lock(cache.mutex);
    return cache.entries.size();
}

}  // namespace patterns
}  // namespace QmXmlLib10
