#include "qmxml/types/simple_type_rule.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <unordered_set>
#include <vector>

#include "qmxml/core/exception.h"
#include "qmxml/types/conversions.h"
#include "qmxml/types/variant.h"
#include "types/xsd_lexical.h"

namespace QmXmlLib10 {

using namespace Xsd;

namespace {

using C = CConversions;
constexpr auto kAsIs = CWhitespaceUtils::WhitespaceRule_None;
// Unions of lists of unions nest as deep as the schema writes them; the model
// cannot cycle, but a rule never follows more levels than this.
constexpr int kMaxDepth = 32;

bool IsWhite(char c) { return CWhitespaceUtils::IsWhiteSpace(c); }

// One value of an atomic type, in the value space of its primitive.
struct Value {
    Primitive primitive = Primitive::AnySimple;
    // String-like types: the normalized text; decimals: the canonical form;
    // binaries: the octets.
    std::string text;
    double number = 0;
    bool boolean = false;
    CDateTime date;
    CDateTimeSpan duration;
};

enum class Order { Less, Equal, Greater, Unordered };

Order FromCompare(CDateTime::DTCompareResult r) {
    switch (r) {
        case CDateTime::cmp_less: return Order::Less;
        case CDateTime::cmp_equal: return Order::Equal;
        case CDateTime::cmp_greater: return Order::Greater;
        default: return Order::Unordered;
    }
}

// Values of different primitives are never equal, as XML Schema 1.0 has it;
// NaN equals itself (so an enumerated NaN matches) and is ordered with nothing else.
Order Compare(const Value& a, const Value& b) {
    if (a.primitive != b.primitive) return Order::Unordered;
    switch (a.primitive) {
        case Primitive::Decimal: {
            const int c = CompareCanonicalDecimals(a.text, b.text);
            return c < 0 ? Order::Less : (c > 0 ? Order::Greater : Order::Equal);
        }
        case Primitive::Float:
        case Primitive::Double:
            if (std::isnan(a.number) || std::isnan(b.number))
                return std::isnan(a.number) && std::isnan(b.number) ? Order::Equal : Order::Unordered;
            return a.number < b.number ? Order::Less : (b.number < a.number ? Order::Greater : Order::Equal);
        case Primitive::Boolean:
            return a.boolean == b.boolean ? Order::Equal : Order::Unordered;
        case Primitive::Duration:
            return FromCompare(a.duration.CompareTo(b.duration));
        case Primitive::DateTime:
        case Primitive::Time:
        case Primitive::Date:
        case Primitive::GYearMonth:
        case Primitive::GYear:
        case Primitive::GMonthDay:
        case Primitive::GDay:
        case Primitive::GMonth:
            return FromCompare(a.date.CompareTo(b.date));
        default:
            return a.text == b.text ? Order::Equal : Order::Unordered;
    }
}

// The value of a list or of an atomic type (one item).
struct TypedValue {
    bool list = false;
    std::vector<Value> items;
};

bool Equal(const TypedValue& a, const TypedValue& b) {
    if (a.list != b.list || a.items.size() != b.items.size()) return false;
    for (std::size_t i = 0; i < a.items.size(); ++i)
        if (Compare(a.items[i], b.items[i]) != Order::Equal) return false;
    return true;
}

std::string Octets(const CBinaryData& data) {
    const unsigned char* bytes = data.GetData();
    return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(bytes), data.GetLength());
}

// The value of a valid literal (the text after the type's whitespace rule).
bool ParseValue(Primitive p, const std::string& text, Value& v) {
    v.primitive = p;
    try {
        switch (p) {
            case Primitive::Decimal:
                // Compared by canonical text: exact, and no heap digits per value.
                v.text = CanonicalDecimal(text);
                return true;
            case Primitive::Float: v.number = C::r4FromString(text, kAsIs); return true;
            case Primitive::Double: v.number = C::r8FromString(text, kAsIs); return true;
            case Primitive::Boolean: v.boolean = text == "true" || text == "1"; return true;
            case Primitive::Duration: v.duration = C::durationFromString(text, kAsIs); return true;
            case Primitive::HexBinary: v.text = Octets(C::hexBinaryFromString(text, kAsIs)); return true;
            case Primitive::Base64Binary: v.text = Octets(C::base64BinaryFromString(text, kAsIs)); return true;
            case Primitive::DateTime:
            case Primitive::Time:
            case Primitive::Date:
            case Primitive::GYearMonth:
            case Primitive::GYear:
            case Primitive::GMonthDay:
            case Primitive::GDay:
            case Primitive::GMonth:
                return ParseDateLiteral(p, text, v.date);
            default:
                v.text = text;
                return true;
        }
    } catch (const CQmException&) {
        // Beyond what the runtime's types hold (a duration count past 2^64).
        return false;
    }
}

// The value the runtime already converted, when the variant holds one of the
// primitive's value space; false leaves it to ParseValue. gYear, gMonth and
// gDay are held without their zone, so they always come from the text.
bool ValueFromVariant(Primitive p, const QmVariant& var, Value& v) {
    v.primitive = p;
    const ItemType held = var.GetTypeAsEnum();
    if (p == Primitive::Decimal) return false;  // the text is cheaper than the variant's digits
    switch (held) {
        case ItemType_r4: if (p != Primitive::Float) return false; v.number = var.GetR4(); return true;
        case ItemType_r8: if (p != Primitive::Double) return false; v.number = var.GetR8(); return true;
        case ItemType_duration: if (p != Primitive::Duration) return false; v.duration = var.GetDuration(); return true;
        case ItemType_datetime: if (p != Primitive::DateTime) return false; v.date = var.GetDateTime(); return true;
        case ItemType_date: if (p != Primitive::Date) return false; v.date = var.GetDate(); return true;
        case ItemType_time: if (p != Primitive::Time) return false; v.date = var.GetTime(); return true;
        case ItemType_yearMonth: if (p != Primitive::GYearMonth) return false; v.date = var.GetYearMonth(); return true;
        case ItemType_monthDay: if (p != Primitive::GMonthDay) return false; v.date = var.GetMonthDay(); return true;
        case ItemType_hexBinary: if (p != Primitive::HexBinary) return false; v.text = Octets(var.GetHexBinary()); return true;
        case ItemType_base64Binary:
            if (p != Primitive::Base64Binary) return false;
            v.text = Octets(var.GetBase64Binary());
            return true;
        default: return false;
    }
}

// Characters, not bytes: UTF-8 continuation bytes do not count.
std::size_t CodePoints(const std::string& s) {
    std::size_t n = 0;
    for (const char c : s)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
    return n;
}

// totalDigits and fractionDigits of a valid decimal literal, which are those
// of its value: the digits of its canonical form, where leading zeros of the
// integer part and trailing zeros of the fraction are gone ("001.2300" has 3
// and 2; "0.05" has 2 and 2).
void CountDigits(const std::string& literal, unsigned long long& total, unsigned long long& fraction) {
    const std::string s = CanonicalDecimal(literal);
    std::size_t begin = s[0] == '-' ? 1 : 0;
    const std::size_t point = std::min(s.find('.'), s.size());
    if (point - begin == 1 && s[begin] == '0') ++begin;  // "0.05": the zero before the point
    fraction = point < s.size() ? s.size() - point - 1 : 0;
    total = (point - begin) + fraction;
}

// The value of a valid integer literal when it fits in 63 bits.
bool SmallInteger(const std::string& s, std::int64_t& value) {
    std::size_t i = !s.empty() && (s[0] == '-' || s[0] == '+') ? 1 : 0;
    const bool negative = i == 1 && s[0] == '-';
    while (i + 1 < s.size() && s[i] == '0') ++i;
    if (s.size() - i > 18) return false;
    std::int64_t v = 0;
    for (; i < s.size(); ++i) v = v * 10 + (s[i] - '0');
    value = negative ? -v : v;
    return true;
}

bool IsNormalized(const std::string& s, WhiteSpace ws) {
    if (ws == WhiteSpace::Preserve) return true;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (c == '\t' || c == '\n' || c == '\r') return false;
        if (ws == WhiteSpace::Collapse && c == ' ' && (i == 0 || i + 1 == s.size() || s[i + 1] == ' ')) return false;
    }
    return true;
}

// The canonical form the rule checks a value without document text by. The
// runtime prints a gYear as its unsigned 16-bit pattern, which is no gYear.
std::string CanonicalText(const QmVariant& value) {
    if (value.GetTypeAsEnum() == ItemType_year) {
        const int year = static_cast<short>(value.GetYear());
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, year < 0 ? "-%04d" : "%04d", year < 0 ? -year : year);
        return buffer;
    }
    return value.ToString();
}

// The range of a native integer item type, as canonical decimals; false for others.
bool NativeRange(ItemType type, const char*& lo, const char*& hi) {
    switch (type) {
        case ItemType_i1: lo = "-128"; hi = "127"; return true;
        case ItemType_i2: lo = "-32768"; hi = "32767"; return true;
        case ItemType_i4: lo = "-2147483648"; hi = "2147483647"; return true;
        case ItemType_i8: lo = "-9223372036854775808"; hi = "9223372036854775807"; return true;
        case ItemType_ui1: lo = "0"; hi = "255"; return true;
        case ItemType_ui2: lo = "0"; hi = "65535"; return true;
        case ItemType_ui4: lo = "0"; hi = "4294967295"; return true;
        case ItemType_ui8: lo = "0"; hi = "18446744073709551615"; return true;
        default: return false;
    }
}

}  // namespace

struct CSimpleTypeRule::Impl {
    // One simple type of the rule: the type itself is node 0, list item types
    // and union members follow.
    struct Node {
        XsdVariety variety = XsdVariety::None;
        WhiteSpace whiteSpace = WhiteSpace::Preserve;
        bool refuse = false;  // nested beyond kMaxDepth
        std::vector<std::vector<std::string>> patterns;
        std::vector<TypedValue> enumeration;
        // String-like enumerations, for a look-up instead of a walk.
        std::unordered_set<std::string> enumerationTexts;
        bool textEnumeration = false;
        std::optional<unsigned long long> length, minLength, maxLength;
        // Atomic types.
        Primitive primitive = Primitive::AnySimple;
        bool integerForm = false;    // derived from integer: no point
        bool ncname = false;         // derived from NCName
        bool rejectNegative = false;  // held unsigned: the runtime wraps "-1"
        bool characterLengths = false;
        bool octetLengths = false;
        std::optional<Value> minInclusive, maxInclusive, minExclusive, maxExclusive;
        std::optional<unsigned long long> totalDigits, fractionDigits;
        // The runtime item type, and whether each bound (min/max inclusive,
        // min/max exclusive) is its own native range: a value the runtime
        // converted to that type meets those bounds already.
        ItemType runtimeType = ItemType_string;
        bool implied[4] = {false, false, false, false};
        // Integer types whose bounds fit in 63 bits compare as native
        // integers, without a decimal per value: the bounds as inclusive ones.
        bool smallBounds = false;
        std::int64_t smallMin = 0, smallMax = 0;
        bool needsValue = false;        // for a value that comes as text only
        bool needsValueNative = false;  // for a value the runtime converted
        // Lists and unions.
        int item = -1;
        std::vector<int> members;
    };

    std::vector<Node> nodes;
    bool hasFixed = false;
    std::string fixedText;
    std::optional<TypedValue> fixedValue;

    void Compile(const CSimpleTypeDescription& description);
    void CompileNode(const CSimpleTypeCheck& type, Node& n) const;
    void CompileAtomic(const CSimpleTypeCheck& type, Node& n) const;
    void CompileEnumeration(const CSimpleTypeCheck& type, int index, int depth);
    bool Evaluate(int index, const std::string& text, const QmVariant* variant, int depth, TypedValue* out) const;
    bool EvaluateAtomic(const Node& n, const std::string& text, const QmVariant* variant, TypedValue* out) const;
    bool InEnumeration(const Node& n, const std::string& text, const TypedValue& value) const;
};


void CSimpleTypeRule::Impl::Compile(const CSimpleTypeDescription& description) {
    const auto& types = description.types;
    nodes.resize(types.empty() ? 1 : types.size());
    const int count = static_cast<int>(types.size());
    for (int i = 0; i < count; ++i) {
        const CSimpleTypeCheck& t = types[static_cast<std::size_t>(i)];
        // Evaluation stops at the nesting limit, so even a cycle terminates;
        // an index outside the description would not.
        if (t.item >= count || (t.variety == XsdVariety::List && t.item < 0))
            throw CQmInvalidParamException("Invalid simple type description");
        for (const int m : t.members)
            if (m < 0 || m >= count) throw CQmInvalidParamException("Invalid simple type description");
        CompileNode(t, nodes[static_cast<std::size_t>(i)]);
    }
    if (types.empty()) return;  // accepts every value
    // Enumeration literals are values of the type, read by the type itself
    // (its enumeration still empty): a list's items by the item type, a
    // union's by its members, whose own enumerations must be in place first.
    // Nesting is bounded (deeper types refuse), so is this walk's; a type
    // shared by several others is compiled once, at its first depth.
    std::vector<char> visited(nodes.size(), 0);
    struct Frame {
        int index;
        int depth;
        std::size_t next;  // children handed out so far
    };
    std::vector<Frame> stack{{0, 0, 0}};
    visited[0] = 1;
    while (!stack.empty()) {
        Frame& top = stack.back();
        const CSimpleTypeCheck& t = types[static_cast<std::size_t>(top.index)];
        std::vector<int> children;
        if (t.item >= 0) children.push_back(t.item);
        children.insert(children.end(), t.members.begin(), t.members.end());
        if (top.next < children.size()) {
            const int child = children[top.next++];
            if (!visited[static_cast<std::size_t>(child)]) {
                visited[static_cast<std::size_t>(child)] = 1;
                stack.push_back({child, top.depth + 1, 0});
            }
            continue;
        }
        const int index = top.index;
        const int depth = top.depth;
        stack.pop_back();
        CompileEnumeration(t, index, depth);
    }
}

void CSimpleTypeRule::Impl::CompileNode(const CSimpleTypeCheck& t, Node& n) const {
    n.variety = t.variety;
    n.whiteSpace = t.whiteSpace;
    n.refuse = t.refuse;
    if (n.refuse) {
        n.variety = XsdVariety::None;
        return;
    }
    n.patterns = t.patterns;
    switch (t.variety) {
        case XsdVariety::None:
            break;
        case XsdVariety::Atomic:
            CompileAtomic(t, n);
            break;
        case XsdVariety::List:
            n.length = t.length;
            n.minLength = t.minLength;
            n.maxLength = t.maxLength;
            n.item = t.item;
            break;
        case XsdVariety::Union:
            n.members = t.members;
            break;
    }
}

void CSimpleTypeRule::Impl::CompileEnumeration(const CSimpleTypeCheck& t, int index, int depth) {
    if (t.refuse) return;
    std::vector<TypedValue> values;
    std::unordered_set<std::string> texts;
    for (const std::string& literal : t.enumeration) {
        const std::string normalized = NormalizeWhiteSpace(literal, nodes[static_cast<std::size_t>(index)].whiteSpace);
        TypedValue value;
        bool ok = false;
        try {
            ok = Evaluate(index, normalized, nullptr, depth, &value);
        } catch (const CQmException&) {
            // A pattern the engine cannot run: the value can never be valid.
        }
        if (ok) {
            values.push_back(std::move(value));
            texts.insert(normalized);
        }
    }
    Node& self = nodes[static_cast<std::size_t>(index)];
    self.textEnumeration = self.variety == XsdVariety::Atomic &&
                           (self.primitive == Primitive::String || self.primitive == Primitive::AnyURI ||
                            self.primitive == Primitive::QName || self.primitive == Primitive::Notation);
    if (self.textEnumeration) self.enumerationTexts = std::move(texts);
    self.enumeration = std::move(values);
    if (!t.enumeration.empty() && self.enumeration.empty()) self.refuse = true;  // nothing can match
    const bool valueEnumeration = !self.enumeration.empty() && !self.textEnumeration;
    self.needsValue = self.needsValue || valueEnumeration;
    self.needsValueNative = self.needsValueNative || valueEnumeration;
}

void CSimpleTypeRule::Impl::CompileAtomic(const CSimpleTypeCheck& t, Node& n) const {
    n.primitive = t.primitive;
    n.runtimeType = t.runtimeType;
    n.integerForm = n.primitive == Primitive::Decimal && t.integerForm;
    n.ncname = t.ncname;
    n.characterLengths = n.primitive == Primitive::String || n.primitive == Primitive::AnyURI;
    n.octetLengths = n.primitive == Primitive::HexBinary || n.primitive == Primitive::Base64Binary;
    if (n.characterLengths || n.octetLengths) {
        n.length = t.length;
        n.minLength = t.minLength;
        n.maxLength = t.maxLength;
    }
    auto bound = [&](const std::optional<std::string>& facet, std::optional<Value>& out) {
        if (!facet) return;
        Value v;
        const std::string text = NormalizeWhiteSpace(*facet, WhiteSpace::Collapse);
        // A bound the loader let through but no value can be compared with
        // (a year beyond 9999) is left out rather than refusing every value.
        if (IsPrimitiveLiteral(n.primitive, text) && ParseValue(n.primitive, text, v)) out = std::move(v);
    };
    bound(t.minInclusive, n.minInclusive);
    bound(t.maxInclusive, n.maxInclusive);
    bound(t.minExclusive, n.minExclusive);
    bound(t.maxExclusive, n.maxExclusive);
    if (n.primitive == Primitive::Decimal) {
        n.totalDigits = t.totalDigits;
        if (t.fractionDigits && !(n.integerForm && *t.fractionDigits == 0)) n.fractionDigits = t.fractionDigits;
        // Bounds the native type the runtime holds the value in already
        // enforces (int's own range) cost a comparison per value for nothing.
        const char* lo = nullptr;
        const char* hi = nullptr;
        if (NativeRange(t.runtimeType, lo, hi)) {
            auto cmp = [](const std::optional<Value>& b, const char* limit) { return CompareCanonicalDecimals(b->text, limit); };
            n.implied[0] = n.minInclusive && cmp(n.minInclusive, lo) <= 0;
            n.implied[1] = n.maxInclusive && cmp(n.maxInclusive, hi) >= 0;
            n.implied[2] = n.minExclusive && cmp(n.minExclusive, lo) < 0;
            n.implied[3] = n.maxExclusive && cmp(n.maxExclusive, hi) > 0;
            // The runtime reads "-1" into an unsigned type as its bit pattern.
            n.rejectNegative = std::string(lo) == "0";
        }
    }
    const bool bounds[4] = {n.minInclusive.has_value(), n.maxInclusive.has_value(), n.minExclusive.has_value(),
                            n.maxExclusive.has_value()};
    const bool other = n.octetLengths && (n.length || n.minLength || n.maxLength);
    if (n.integerForm) {
        // Integer bounds of up to 18 digits; a wider one (or, against the
        // loader's checks, one with a fraction) keeps the general path.
        std::int64_t values[4] = {INT64_MIN, INT64_MAX, 0, 0};
        const std::optional<Value>* all[4] = {&n.minInclusive, &n.maxInclusive, &n.minExclusive, &n.maxExclusive};
        bool fits = true;
        for (int i = 0; i < 4 && fits; ++i)
            if (*all[i]) fits = (*all[i])->text.find('.') == std::string::npos && SmallInteger((*all[i])->text, values[i]);
        if (fits) {
            n.smallBounds = true;
            n.smallMin = n.minInclusive ? values[0] : INT64_MIN;
            n.smallMax = n.maxInclusive ? values[1] : INT64_MAX;
            if (n.minExclusive) n.smallMin = std::max(n.smallMin, values[2] + 1);
            if (n.maxExclusive) n.smallMax = std::min(n.smallMax, values[3] - 1);
        }
    }
    n.needsValue = other;
    n.needsValueNative = other;
    for (int i = 0; i < 4; ++i) {
        n.needsValue = n.needsValue || bounds[i];
        n.needsValueNative = n.needsValueNative || (bounds[i] && !n.implied[i]);
    }
}

bool CSimpleTypeRule::Impl::InEnumeration(const Node& n, const std::string& text, const TypedValue& value) const {
    if (n.textEnumeration) return n.enumerationTexts.count(text) != 0;
    for (const TypedValue& e : n.enumeration)
        if (Equal(e, value)) return true;
    return false;
}

bool CSimpleTypeRule::Impl::EvaluateAtomic(const Node& n, const std::string& text, const QmVariant* variant,
                                            TypedValue* out) const {
    // A value the runtime converted to the node's own item type meets that
    // type's native range, and its fields were checked by the conversion;
    // one checked from text alone must show both.
    const bool converted = variant != nullptr && variant->GetTypeAsEnum() == n.runtimeType;
    if (!(converted ? IsPrimitiveShape(n.primitive, text) : IsPrimitiveLiteral(n.primitive, text))) return false;
    if (n.integerForm && !IsDecimalLiteral(text, false)) return false;
    if (n.rejectNegative && text[0] == '-' && text.find_first_not_of("0", 1) != std::string::npos) return false;
    if (n.ncname && !IsNCNameLiteral(text)) return false;
    auto lengthHolds = [&](std::size_t length) {
        return (!n.length || length == *n.length) && (!n.minLength || length >= *n.minLength) &&
               (!n.maxLength || length <= *n.maxLength);
    };
    if (n.characterLengths && (n.length || n.minLength || n.maxLength) && !lengthHolds(CodePoints(text)))
        return false;
    if (n.textEnumeration && !n.enumeration.empty() && !n.enumerationTexts.count(text)) return false;
    if (n.totalDigits || n.fractionDigits) {
        unsigned long long total = 0;
        unsigned long long fraction = 0;
        CountDigits(text, total, fraction);
        if ((n.totalDigits && total > *n.totalDigits) || (n.fractionDigits && fraction > *n.fractionDigits))
            return false;
    }
    if (!(converted ? n.needsValueNative : n.needsValue) && out == nullptr) return true;
    std::int64_t small = 0;
    if (n.smallBounds && n.enumeration.empty() && out == nullptr && SmallInteger(text, small))
        return small >= n.smallMin && small <= n.smallMax;
    Value v;
    if (!(variant != nullptr && ValueFromVariant(n.primitive, *variant, v)) && !ParseValue(n.primitive, text, v))
        return false;
    if (n.octetLengths && !lengthHolds(v.text.size())) return false;
    // An indeterminate comparison fails the bound, as in the runtime's facets.
    if (n.minInclusive && !(converted && n.implied[0])) {
        const Order o = Compare(v, *n.minInclusive);
        if (o != Order::Greater && o != Order::Equal) return false;
    }
    if (n.maxInclusive && !(converted && n.implied[1])) {
        const Order o = Compare(v, *n.maxInclusive);
        if (o != Order::Less && o != Order::Equal) return false;
    }
    if (n.minExclusive && !(converted && n.implied[2]) && Compare(v, *n.minExclusive) != Order::Greater) return false;
    if (n.maxExclusive && !(converted && n.implied[3]) && Compare(v, *n.maxExclusive) != Order::Less) return false;
    TypedValue local;
    TypedValue& result = out != nullptr ? *out : local;
    result.list = false;
    result.items.clear();
    result.items.push_back(std::move(v));
    return n.textEnumeration || n.enumeration.empty() || InEnumeration(n, text, result);
}

// text is already normalized by the node's whitespace rule. Recursion follows
// the type's nesting (bounded by kMaxDepth), never the length of the value.
bool CSimpleTypeRule::Impl::Evaluate(int index, const std::string& text, const QmVariant* variant, int depth,
                                      TypedValue* out) const {
    const Node& n = nodes[static_cast<std::size_t>(index)];
    if (n.refuse || depth > kMaxDepth) return false;
    for (const auto& step : n.patterns) {
        bool any = false;
        for (const std::string& p : step)
            if ((any = CPrimitiveRestrictions::MatchesPattern(text, p))) break;
        if (!any) return false;
    }
    switch (n.variety) {
        case XsdVariety::None:
            if (out != nullptr) {
                out->list = false;
                out->items.assign(1, Value{});
                out->items[0].text = text;
            }
            return true;
        case XsdVariety::Atomic:
            return EvaluateAtomic(n, text, variant, out);
        case XsdVariety::List: {
            TypedValue local;
            TypedValue* result = out != nullptr ? out : (n.enumeration.empty() ? nullptr : &local);
            if (result != nullptr) {
                result->list = true;
                result->items.clear();
            }
            unsigned long long count = 0;
            std::size_t i = 0;
            TypedValue item;
            while (true) {
                while (i < text.size() && IsWhite(text[i])) ++i;
                if (i == text.size()) break;
                std::size_t end = i;
                while (end < text.size() && !IsWhite(text[end])) ++end;
                if (!Evaluate(n.item, text.substr(i, end - i), nullptr, depth + 1, result ? &item : nullptr))
                    return false;
                if (result != nullptr)
                    for (Value& v : item.items) result->items.push_back(std::move(v));
                ++count;
                i = end;
            }
            if ((n.length && count != *n.length) || (n.minLength && count < *n.minLength) ||
                (n.maxLength && count > *n.maxLength))
                return false;
            return n.enumeration.empty() || InEnumeration(n, text, *result);
        }
        case XsdVariety::Union: {
            const bool need = out != nullptr || !n.enumeration.empty();
            for (const int m : n.members) {
                const WhiteSpace ws = nodes[static_cast<std::size_t>(m)].whiteSpace;
                TypedValue candidate;
                const bool ok = IsNormalized(text, ws)
                                    ? Evaluate(m, text, nullptr, depth + 1, need ? &candidate : nullptr)
                                    : Evaluate(m, NormalizeWhiteSpace(text, ws), nullptr, depth + 1,
                                               need ? &candidate : nullptr);
                if (!ok) continue;
                // The first member that takes the value decides its value.
                if (!n.enumeration.empty() && !InEnumeration(n, text, candidate)) return false;
                if (out != nullptr) *out = std::move(candidate);
                return true;
            }
            return false;
        }
    }
    return false;
}

CSimpleTypeRule::CSimpleTypeRule(const CSimpleTypeDescription& description) {
    auto impl = std::make_unique<Impl>();
    impl->Compile(description);
    if (description.fixed) {
        impl->hasFixed = true;
        impl->fixedText = NormalizeWhiteSpace(*description.fixed, impl->nodes[0].whiteSpace);
        TypedValue value;
        try {
            if (impl->Evaluate(0, impl->fixedText, nullptr, 0, &value)) impl->fixedValue = std::move(value);
        } catch (const CQmException&) {
            // Compared by its text below.
        }
    }
    m_valuesAlwaysValid = description.valuesAlwaysValid && !impl->hasFixed;
    m_impl = std::move(impl);
}

CSimpleTypeRule::~CSimpleTypeRule() = default;

std::shared_ptr<const CValueRule> CSimpleTypeRule::Make(const CSimpleTypeDescription& description) {
    auto rule = std::make_shared<const CSimpleTypeRule>(description);
    if (rule->IsTrivial()) return nullptr;
    return rule;
}

void CSimpleTypeRule::Check(const std::string& memberName, const QmVariant& value, ItemType,
                             const std::string* text) const {
    if (value.IsNil() || (text == nullptr && m_valuesAlwaysValid)) return;
    const Impl& impl = *m_impl;
    std::string canonical;
    if (text == nullptr) {
        // Checked as the document written from it will read back.
        canonical = CanonicalText(value);
        if (!IsNormalized(canonical, impl.nodes[0].whiteSpace))
            canonical = NormalizeWhiteSpace(canonical, impl.nodes[0].whiteSpace);
        text = &canonical;
    }
    TypedValue actual;
    bool ok = false;
    try {
        ok = impl.Evaluate(0, *text, &value, 0, impl.fixedValue ? &actual : nullptr);
    } catch (const CQmException& e) {
        throw CQmValidationException(FormatString("%s\nInvalid Value for %s [%s]", e.GetMessage().c_str(),
                                                  memberName.c_str(), text->c_str()));
    }
    if (!ok) throw CQmValidationException(FormatString("Invalid Value for %s [%s]", memberName.c_str(), text->c_str()));
    if (impl.hasFixed && (impl.fixedValue ? !Equal(actual, *impl.fixedValue) : *text != impl.fixedText))
        throw CQmValidationException(FormatString("Invalid Value for %s [%s], the fixed value is [%s]",
                                                  memberName.c_str(), text->c_str(), impl.fixedText.c_str()));
}

bool CSimpleTypeRule::Accepts(const std::string& text) const {
    const Impl& impl = *m_impl;
    const std::string normalized = NormalizeWhiteSpace(text, impl.nodes[0].whiteSpace);
    TypedValue actual;
    try {
        if (!impl.Evaluate(0, normalized, nullptr, 0, impl.fixedValue ? &actual : nullptr)) return false;
    } catch (const CQmException&) {
        return false;
    }
    if (!impl.hasFixed) return true;
    return impl.fixedValue ? Equal(actual, *impl.fixedValue) : normalized == impl.fixedText;
}

bool CSimpleTypeRule::IsTrivial() const {
    const Impl::Node& n = m_impl->nodes[0];
    if (m_impl->hasFixed || n.refuse) return false;
    if (n.variety == XsdVariety::None) return true;
    return n.variety == XsdVariety::Atomic &&
           (n.primitive == Primitive::String || n.primitive == Primitive::AnyURI) && n.patterns.empty() &&
           n.enumeration.empty() && !n.length && !n.minLength && !n.maxLength && !n.ncname;
}

}  // namespace QmXmlLib10
