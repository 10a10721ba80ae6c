#include "infoset_compare.h"

#include <expat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "qmxml/schema/schema_set.h"

namespace qmxml_w3c {

using namespace QmXmlLib10::Schema;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXml[] = "http://www.w3.org/XML/1998/namespace";
// Expat joins namespace and local name with this; XML names and the URIs of
// the suite never hold it.
const char kSeparator = '\x01';

// ---------------------------------------------------------------- the trees

struct Attr {
    std::string ns, local, value;
};

// A piece of content: text (child < 0) or a child element.
struct Item {
    int child = -1;
    std::string text;
};

struct Node {
    std::string ns, local;
    std::vector<Attr> attrs;
    // Namespace declarations made on this element: prefix ("" for the
    // default) and namespace ("" undeclares).
    std::vector<std::pair<std::string, std::string>> decls;
    int parent = -1;
    std::vector<Item> content;
};

// Nodes live in one vector and point at each other by index, so neither
// building nor freeing a deep document recurses.
struct Tree {
    std::vector<Node> nodes;

    // The namespace a prefix stands for at node, or false when it is not
    // declared there.
    bool Resolve(int node, const std::string& prefix, std::string& ns) const {
        if (prefix == "xml") {
            ns = kXml;
            return true;
        }
        for (int n = node; n >= 0; n = nodes[n].parent)
            for (auto d = nodes[n].decls.rbegin(); d != nodes[n].decls.rend(); ++d)
                if (d->first == prefix) {
                    ns = d->second;
                    return !ns.empty() || prefix.empty();
                }
        ns.clear();
        return prefix.empty();
    }
};

struct Builder {
    Tree tree;
    std::vector<int> open;
    std::vector<std::pair<std::string, std::string>> pending;
};

void SplitName(const char* name, std::string& ns, std::string& local) {
    const char* sep = std::strchr(name, kSeparator);
    if (sep == nullptr) {
        ns.clear();
        local = name;
    } else {
        ns.assign(name, sep);
        local = sep + 1;
    }
}

void XMLCALL OnStart(void* data, const XML_Char* name, const XML_Char** atts) {
    Builder& b = *static_cast<Builder*>(data);
    const int index = static_cast<int>(b.tree.nodes.size());
    b.tree.nodes.emplace_back();
    Node& node = b.tree.nodes.back();
    SplitName(name, node.ns, node.local);
    node.decls.swap(b.pending);
    for (int i = 0; atts[i] != nullptr; i += 2) {
        Attr a;
        SplitName(atts[i], a.ns, a.local);
        a.value = atts[i + 1];
        node.attrs.push_back(std::move(a));
    }
    if (!b.open.empty()) {
        node.parent = b.open.back();
        Item item;
        item.child = index;
        b.tree.nodes[node.parent].content.push_back(std::move(item));
    }
    b.open.push_back(index);
}

void XMLCALL OnEnd(void* data, const XML_Char*) { static_cast<Builder*>(data)->open.pop_back(); }

void XMLCALL OnText(void* data, const XML_Char* s, int len) {
    Builder& b = *static_cast<Builder*>(data);
    if (b.open.empty()) return;
    std::vector<Item>& content = b.tree.nodes[b.open.back()].content;
    if (content.empty() || content.back().child >= 0) content.emplace_back();
    content.back().text.append(s, static_cast<std::size_t>(len));
}

void XMLCALL OnNamespace(void* data, const XML_Char* prefix, const XML_Char* uri) {
    static_cast<Builder*>(data)->pending.emplace_back(prefix ? prefix : "", uri ? uri : "");
}

// Parses text into tree; returns "" or the parser's complaint.
std::string Parse(const std::string& text, Tree& tree) {
    Builder b;
    XML_Parser parser = XML_ParserCreateNS(nullptr, kSeparator);
    XML_SetUserData(parser, &b);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartNamespaceDeclHandler(parser, OnNamespace);
    std::string error;
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_ERROR)
        error = std::string(XML_ErrorString(XML_GetErrorCode(parser))) + " at line " +
                std::to_string(XML_GetCurrentLineNumber(parser));
    else if (b.tree.nodes.empty())
        error = "no element";
    XML_ParserFree(parser);
    tree = std::move(b.tree);
    return error;
}

// ------------------------------------------------------------------- values

bool IsXmlSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool IsWhitespaceOnly(const std::string& s) {
    for (char c : s)
        if (!IsXmlSpace(c)) return false;
    return true;
}

std::string Whitespace(const std::string& s, WhiteSpace rule) {
    if (rule == WhiteSpace::Preserve) return s;
    std::string out;
    out.reserve(s.size());
    for (char c : s) {
        const char d = IsXmlSpace(c) ? ' ' : c;
        if (rule == WhiteSpace::Collapse && d == ' ' && (out.empty() || out.back() == ' ')) continue;
        out += d;
    }
    if (rule == WhiteSpace::Collapse && !out.empty() && out.back() == ' ') out.pop_back();
    return out;
}

std::string Collapse(const std::string& s) { return Whitespace(s, WhiteSpace::Collapse); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A decimal in canonical form: no plus sign, no leading or trailing zeros,
// no point without a fraction, "0" unsigned.
bool CanonicalDecimal(const std::string& s, std::string& out) {
    std::size_t i = 0;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
    std::string whole, fraction;
    bool point = false;
    for (; i < s.size(); ++i) {
        if (s[i] == '.' && !point) point = true;
        else if (IsDigit(s[i])) (point ? fraction : whole) += s[i];
        else return false;
    }
    if (whole.empty() && fraction.empty()) return false;
    whole.erase(0, whole.find_first_not_of('0') == std::string::npos ? whole.size() : whole.find_first_not_of('0'));
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    if (whole.empty()) whole = "0";
    out = whole;
    if (!fraction.empty()) out += "." + fraction;
    if (negative && out != "0") out = "-" + out;
    return true;
}

bool ParseDouble(const std::string& s, double& value) {
    if (s == "INF") value = HUGE_VAL;
    else if (s == "-INF") value = -HUGE_VAL;
    else if (s == "NaN") value = std::nan("");
    else {
        if (s.empty()) return false;
        for (char c : s)
            if (!IsDigit(c) && c != '+' && c != '-' && c != '.' && c != 'e' && c != 'E') return false;
        char* end = nullptr;
        errno = 0;
        value = std::strtod(s.c_str(), &end);
        if (end != s.c_str() + s.size()) return false;
    }
    return true;
}

bool SameFloat(const std::string& a, const std::string& b, bool single) {
    double x = 0, y = 0;
    if (!ParseDouble(a, x) || !ParseDouble(b, y)) return false;
    if (single) {
        x = static_cast<float>(x);
        y = static_cast<float>(y);
    }
    return (std::isnan(x) && std::isnan(y)) || x == y;
}

int BooleanOf(const std::string& s) {
    if (s == "true" || s == "1") return 1;
    if (s == "false" || s == "0") return 0;
    return -1;
}

// Days since 1970-01-01 of a proleptic Gregorian date.
long long DaysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

bool ReadNumber(const std::string& s, std::size_t& i, std::size_t digits, long long& value) {
    value = 0;
    std::size_t n = 0;
    while (i < s.size() && IsDigit(s[i]) && n < 18) value = value * 10 + (s[i++] - '0'), ++n;
    return n >= digits;
}

// The time zone of a date or time value split off its end: "Z", "+hh:mm",
// "-hh:mm" or "" for none; "+00:00" and "-00:00" become "Z".
std::string SplitZone(std::string& s) {
    std::string zone;
    if (!s.empty() && s.back() == 'Z') zone = "Z", s.pop_back();
    else if (s.size() >= 6 && (s[s.size() - 6] == '+' || s[s.size() - 6] == '-') && s[s.size() - 3] == ':') {
        zone = s.substr(s.size() - 6);
        s.erase(s.size() - 6);
    }
    if (zone == "+00:00" || zone == "-00:00") zone = "Z";
    return zone;
}

// Drops trailing zeros of fractional seconds (and the point they leave).
void TrimFraction(std::string& s) {
    const std::size_t point = s.find('.');
    if (point == std::string::npos) return;
    while (s.size() > point + 1 && s.back() == '0') s.pop_back();
    if (s.size() == point + 1) s.pop_back();
}

// A dateTime or time as one comparable string: moved to UTC when it has a
// time zone, 24:00:00 as the next day's start.
std::string CanonicalDateTime(std::string s, bool timeOnly) {
    std::string zone = SplitZone(s);
    TrimFraction(s);
    std::string fraction;
    const std::size_t point = s.find('.');
    if (point != std::string::npos) fraction = s.substr(point), s.erase(point);
    long long year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    std::size_t i = 0;
    bool negativeYear = false;
    if (!timeOnly) {
        if (i < s.size() && s[i] == '-') negativeYear = true, ++i;
        if (!ReadNumber(s, i, 4, year) || i >= s.size() || s[i++] != '-' || !ReadNumber(s, i, 2, month) ||
            i >= s.size() || s[i++] != '-' || !ReadNumber(s, i, 2, day) || i >= s.size() || s[i++] != 'T')
            return s + fraction + zone;
        if (negativeYear) year = -year;
    }
    if (!ReadNumber(s, i, 2, hour) || i >= s.size() || s[i++] != ':' || !ReadNumber(s, i, 2, minute) ||
        i >= s.size() || s[i++] != ':' || !ReadNumber(s, i, 2, second) || i != s.size() || month < 1 || month > 12)
        return s + fraction + zone;
    long long offset = 0;
    if (!zone.empty() && zone != "Z") {
        offset = ((zone[1] - '0') * 10 + (zone[2] - '0')) * 60 + (zone[4] - '0') * 10 + (zone[5] - '0');
        if (zone[0] == '-') offset = -offset;
    }
    long long total = (timeOnly ? 0 : DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day))) * 86400 +
                      hour * 3600 + (minute - offset) * 60 + second;
    if (timeOnly) total = ((total % 86400) + 86400) % 86400;
    return std::to_string(total) + fraction + (zone.empty() ? "" : "Z");
}

// A duration as "sign months seconds": P1Y and P12M are one value, and so
// are PT1H and PT60M.
bool CanonicalDuration(const std::string& s, std::string& out) {
    std::size_t i = 0;
    bool negative = false;
    if (i < s.size() && s[i] == '-') negative = true, ++i;
    if (i >= s.size() || s[i++] != 'P') return false;
    long long months = 0, seconds = 0;
    std::string fraction;
    bool time = false, any = false;
    while (i < s.size()) {
        if (s[i] == 'T') {
            time = true;
            ++i;
            continue;
        }
        long long n = 0;
        if (!ReadNumber(s, i, 1, n) || n > 1000000000LL) return false;
        if (i < s.size() && s[i] == '.') {
            ++i;
            while (i < s.size() && IsDigit(s[i])) fraction += s[i++];
        }
        if (i >= s.size()) return false;
        const char unit = s[i++];
        any = true;
        if (!time && unit == 'Y') months += 12 * n;
        else if (!time && unit == 'M') months += n;
        else if (!time && unit == 'D') seconds += 86400 * n;
        else if (time && unit == 'H') seconds += 3600 * n;
        else if (time && unit == 'M') seconds += 60 * n;
        else if (time && unit == 'S') seconds += n;
        else return false;
    }
    if (!any) return false;
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    if (months == 0 && seconds == 0 && fraction.empty()) negative = false;
    out = (negative ? "-" : "+") + std::to_string(months) + " " + std::to_string(seconds) + "." + fraction;
    return true;
}

// Where a QName value is read: the tree and element whose declarations
// apply.
struct Scope {
    const Tree* tree;
    int node;
};

bool ExpandQName(const std::string& value, const Scope& scope, std::string& expanded) {
    const std::size_t colon = value.find(':');
    const std::string prefix = colon == std::string::npos ? "" : value.substr(0, colon);
    std::string ns;
    if (!scope.tree->Resolve(scope.node, prefix, ns)) return false;
    expanded = "{" + ns + "}" + value.substr(colon == std::string::npos ? 0 : colon + 1);
    return true;
}

// Whether two collapsed lexical forms of a primitive type name one value.
bool SameAtomic(const std::string& primitive, const std::string& a, const std::string& b, const Scope& sa,
                const Scope& sb) {
    std::string x, y;
    // One prefix may stand for two namespaces in the two documents.
    if (primitive == "QName" || primitive == "NOTATION")
        return ExpandQName(a, sa, x) && ExpandQName(b, sb, y) && x == y;
    if (a == b) return true;
    if (primitive == "decimal") return CanonicalDecimal(a, x) && CanonicalDecimal(b, y) && x == y;
    if (primitive == "float" || primitive == "double") return SameFloat(a, b, primitive == "float");
    if (primitive == "boolean") return BooleanOf(a) >= 0 && BooleanOf(a) == BooleanOf(b);
    if (primitive == "hexBinary") {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i]))) return false;
        return true;
    }
    if (primitive == "base64Binary") {
        for (char c : a)
            if (!IsXmlSpace(c)) x += c;
        for (char c : b)
            if (!IsXmlSpace(c)) y += c;
        return x == y;
    }
    if (primitive == "dateTime" || primitive == "time")
        return CanonicalDateTime(a, primitive == "time") == CanonicalDateTime(b, primitive == "time");
    if (primitive == "date" || primitive == "gYearMonth" || primitive == "gYear" || primitive == "gMonthDay" ||
        primitive == "gDay" || primitive == "gMonth") {
        x = a, y = b;
        const std::string za = SplitZone(x), zb = SplitZone(y);
        return x == y && za == zb;
    }
    if (primitive == "duration") return CanonicalDuration(a, x) && CanonicalDuration(b, y) && x == y;
    return false;
}

// Whether two lexical forms name one value of the type (exact comparison
// when the type is not known).
bool SameValue(const CSimpleType* type, const std::string& a, const std::string& b, const Scope& sa, const Scope& sb) {
    if (type == nullptr) return a == b;
    const std::string x = Whitespace(a, type->whiteSpace), y = Whitespace(b, type->whiteSpace);
    switch (type->variety) {
    case CSimpleType::Variety::List: {
        std::vector<std::string> xs, ys;
        for (const std::string* from : {&x, &y}) {
            std::vector<std::string>& items = from == &x ? xs : ys;
            const std::string c = Collapse(*from);
            std::size_t start = 0;
            while (start < c.size()) {
                std::size_t end = c.find(' ', start);
                if (end == std::string::npos) end = c.size();
                items.push_back(c.substr(start, end - start));
                start = end + 1;
            }
        }
        if (xs.size() != ys.size()) return false;
        for (std::size_t i = 0; i < xs.size(); ++i)
            if (!SameValue(type->itemType, xs[i], ys[i], sa, sb)) return false;
        return true;
    }
    case CSimpleType::Variety::Union:
        for (const CSimpleType* member : type->memberTypes)
            if (SameValue(member, a, b, sa, sb)) return true;
        return false;
    case CSimpleType::Variety::Atomic: {
        const CSimpleType* primitive = type->primitiveType != nullptr ? type->primitiveType : type;
        return SameAtomic(primitive->name.local, x, y, sa, sb);
    }
    case CSimpleType::Variety::None:
        break;
    }
    return x == y;
}

// A value as a message shows it: tabs, line feeds and carriage returns as
// character references, so that whitespace differences can be seen.
std::string Shown(const std::string& value) {
    std::string out;
    for (char c : value) {
        if (c == '\t') out += "&#9;";
        else if (c == '\n') out += "&#10;";
        else if (c == '\r') out += "&#13;";
        else out += c;
    }
    return out;
}

std::string NameOf(const std::string& ns, const std::string& local) {
    return ns.empty() ? local : "{" + ns + "}" + local;
}

// ------------------------------------------------------------- the schema

class SchemaView {
public:
    explicit SchemaView(const CSchemaSet* schemas) : m_schemas(schemas) {}

    const CSchemaSet* Schemas() const { return m_schemas; }

    const CElementDeclaration* Global(const std::string& ns, const std::string& local) const {
        return m_schemas == nullptr ? nullptr : m_schemas->FindElement(CQName{ns, local});
    }

    // The declarations a child named {ns}local of an element of type parent
    // may have. One content model may declare one name several times with
    // the same type (the schema rules demand that) but other defaults, and
    // which one applies depends on the position; all are returned.
    std::vector<const CElementDeclaration*> Child(const CTypeDefinition* parent, const std::string& ns,
                                                  const std::string& local) {
        const CElementDeclaration* one = OneChild(parent, ns, local);
        if (one == nullptr || parent == nullptr || parent->IsSimple()) return {one};
        const auto& rules = RulesOf(static_cast<const CComplexType*>(parent));
        const auto found = rules.names.find(CQNameKey(ns, local));
        if (found == rules.names.end()) return {one};
        return found->second;
    }

    // The first declaration of a child name (the one whose type applies).
    const CElementDeclaration* OneChild(const CTypeDefinition* parent, const std::string& ns, const std::string& local) {
        if (m_schemas == nullptr) return nullptr;
        if (parent == nullptr) return Global(ns, local);
        if (parent->IsSimple()) return nullptr;
        const auto& rules = RulesOf(static_cast<const CComplexType*>(parent));
        const auto found = rules.names.find(CQNameKey(ns, local));
        if (found != rules.names.end()) return found->second.front();
        for (const CWildcard* w : rules.wildcards)
            if (w->namespaceConstraint.Allows(ns))
                return w->processContents == CWildcard::ProcessContents::Skip ? nullptr : Global(ns, local);
        return Global(ns, local);
    }

    // The declaration of an attribute {ns}local on an element of type owner,
    // and its use there (null for one the type does not list).
    const CAttributeDeclaration* Attribute(const CTypeDefinition* owner, const std::string& ns, const std::string& local,
                                           const CAttributeUse** use) const {
        *use = nullptr;
        if (m_schemas == nullptr) return nullptr;
        if (owner != nullptr && !owner->IsSimple()) {
            const auto* complex = static_cast<const CComplexType*>(owner);
            for (const CAttributeUse* u : complex->attributeUses)
                if (u->declaration != nullptr && u->declaration->name.ns == ns && u->declaration->name.local == local) {
                    *use = u;
                    return u->declaration;
                }
            if (complex->attributeWildcard != nullptr &&
                complex->attributeWildcard->processContents == CWildcard::ProcessContents::Skip &&
                complex->attributeWildcard->namespaceConstraint.Allows(ns))
                return nullptr;
        }
        return m_schemas->FindAttribute(CQName{ns, local});
    }

private:
    using CQNameKey = std::pair<std::string, std::string>;
    struct Rules {
        std::map<CQNameKey, std::vector<const CElementDeclaration*>> names;
        std::vector<const CWildcard*> wildcards;
    };

    // Every element name a content model admits, gathered once per type.
    const Rules& RulesOf(const CComplexType* type) {
        auto found = m_rules.find(type);
        if (found != m_rules.end()) return found->second;
        Rules& rules = m_rules[type];
        std::vector<const CParticle*> pending;
        if (type->contentModel != nullptr) pending.push_back(type->contentModel);
        std::set<const CModelGroup*> seen;
        while (!pending.empty()) {
            const CParticle* p = pending.back();
            pending.pop_back();
            if (p->termKind == CParticle::TermKind::Element && p->element != nullptr) {
                Add(rules, p->element);
                for (const CElementDeclaration* member : p->element->substitutionGroupMembers) Add(rules, member);
            } else if (p->termKind == CParticle::TermKind::Wildcard && p->wildcard != nullptr) {
                rules.wildcards.push_back(p->wildcard);
            } else if (p->modelGroup != nullptr && seen.insert(p->modelGroup).second) {
                for (auto it = p->modelGroup->particles.rbegin(); it != p->modelGroup->particles.rend(); ++it)
                    pending.push_back(*it);
            }
        }
        return rules;
    }

    static void Add(Rules& rules, const CElementDeclaration* declaration) {
        auto& list = rules.names[CQNameKey(declaration->name.ns, declaration->name.local)];
        if (std::find(list.begin(), list.end(), declaration) == list.end()) list.push_back(declaration);
    }

    const CSchemaSet* m_schemas;
    std::map<const CComplexType*, Rules> m_rules;
};

const CValueConstraint* ConstraintOf(const CAttributeDeclaration* decl, const CAttributeUse* use) {
    if (use != nullptr && use->valueConstraint.kind != CValueConstraint::None) return &use->valueConstraint;
    if (decl != nullptr && decl->valueConstraint.kind != CValueConstraint::None) return &decl->valueConstraint;
    return nullptr;
}

// --------------------------------------------------------------- the walk

class Comparer {
public:
    Comparer(const Tree& a, const Tree& b, const CSchemaSet* schemas) : m_a(a), m_b(b), m_view(schemas) {}

    std::string Run() {
        std::vector<Frame> stack;
        m_paths.push_back(PathStep{-1, m_a.nodes[0].local});
        stack.push_back(Frame{0, 0, 0, nullptr, true});
        while (!stack.empty()) {
            Frame f = std::move(stack.back());
            stack.pop_back();
            std::string difference = Element(f, stack);
            if (!difference.empty()) return difference;
        }
        return std::string();
    }

private:
    struct Frame {
        int a, b;
        int path;  // into m_paths
        const CTypeDefinition* parentType;
        bool root;
    };

    // The xsi:type of node, expanded, or "".
    static std::string XsiType(const Tree& tree, int node) {
        for (const Attr& attr : tree.nodes[node].attrs)
            if (attr.ns == kXsi && attr.local == "type") {
                std::string expanded;
                const std::string value = Collapse(attr.value);
                return ExpandQName(value, Scope{&tree, node}, expanded) ? expanded : value;
            }
        return std::string();
    }

    static bool IsHint(const Attr& attr) {
        return attr.ns == kXsi && (attr.local == "schemaLocation" || attr.local == "noNamespaceSchemaLocation" ||
                                   attr.local == "type");
    }

    const CTypeDefinition* FindType(const std::string& expanded) const {
        if (m_view.Schemas() == nullptr || expanded.empty() || expanded[0] != '{') return nullptr;
        const std::size_t close = expanded.find('}');
        return m_view.Schemas()->FindType(CQName{expanded.substr(1, close - 1), expanded.substr(close + 1)});
    }

    static std::string TypeKey(const CTypeDefinition* type) {
        if (type == nullptr) return std::string();
        if (type->IsAnonymous()) return "(anonymous)";
        return "{" + type->name.ns + "}" + type->name.local;
    }

    static bool IsNil(const Tree& tree, int node) {
        for (const Attr& attr : tree.nodes[node].attrs)
            if (attr.ns == kXsi && attr.local == "nil") return BooleanOf(Collapse(attr.value)) == 1;
        return false;
    }

    std::string Element(const Frame& f, std::vector<Frame>& stack) {
        const Node& na = m_a.nodes[f.a];
        const Node& nb = m_b.nodes[f.b];
        if (na.ns != nb.ns || na.local != nb.local)
            return "Element names differ at [" + PathOf(f.path) + "]: [" + NameOf(na.ns, na.local) + "] against [" +
                   NameOf(nb.ns, nb.local) + "]";
        const std::vector<const CElementDeclaration*> candidates =
            f.root ? std::vector<const CElementDeclaration*>{m_view.Global(na.ns, na.local)}
                   : m_view.Child(f.parentType, na.ns, na.local);
        const CElementDeclaration* decl = candidates.front();
        const CTypeDefinition* declared = decl != nullptr ? decl->type : nullptr;
        const std::string xa = XsiType(m_a, f.a), xb = XsiType(m_b, f.b);
        const std::string ka = xa.empty() ? TypeKey(declared) : xa;
        const std::string kb = xb.empty() ? TypeKey(declared) : xb;
        if (ka != kb) return "Types differ at [" + PathOf(f.path) + "]: [" + ka + "] against [" + kb + "]";
        const CTypeDefinition* type = xa.empty() ? declared : FindType(xa);
        if (type == nullptr && !xa.empty()) type = declared;

        std::string difference = Attributes(f, type);
        if (!difference.empty()) return difference;

        const bool nil = IsNil(m_a, f.a) || IsNil(m_b, f.b);
        const CSimpleType* simple = nullptr;
        if (type != nullptr && type->IsSimple()) simple = static_cast<const CSimpleType*>(type);
        else if (type != nullptr && static_cast<const CComplexType*>(type)->contentType == CComplexType::ContentType::Simple)
            simple = static_cast<const CComplexType*>(type)->simpleContentType;
        const bool simpleContent = type != nullptr && (type->IsSimple() || simple != nullptr);
        if (simpleContent && !nil) {
            // An empty element stands for its declaration's default: any
            // of them when the name is declared more than once.
            std::vector<std::string> defaults;
            for (const CElementDeclaration* c : candidates)
                if (c != nullptr && c->valueConstraint.kind != CValueConstraint::None)
                    defaults.push_back(c->valueConstraint.value);
            auto readings = [&](const Node& n) {
                const std::string text = TextOf(n);
                return text.empty() && !HasChildren(n) && !defaults.empty() ? defaults : std::vector<std::string>{text};
            };
            const std::vector<std::string> ra = readings(na), rb = readings(nb);
            bool same = false;
            for (const std::string& x : ra)
                for (const std::string& y : rb) same = same || SameValue(simple, x, y, Scope{&m_a, f.a}, Scope{&m_b, f.b});
            const std::string& ta = ra.front();
            const std::string& tb = rb.front();
            if (!same)
                return "Text differs at [" + PathOf(f.path) + "]: [" + Shown(ta) + "] against [" + Shown(tb) + "]";
        }
        return Content(f, type, simpleContent && !nil, stack);
    }

    static std::string TextOf(const Node& n) {
        std::string text;
        for (const Item& item : n.content)
            if (item.child < 0) text += item.text;
        return text;
    }

    static bool HasChildren(const Node& n) {
        for (const Item& item : n.content)
            if (item.child >= 0) return true;
        return false;
    }

    std::string Attributes(const Frame& f, const CTypeDefinition* type) {
        const Node& na = m_a.nodes[f.a];
        const Node& nb = m_b.nodes[f.b];
        const Scope sa{&m_a, f.a}, sb{&m_b, f.b};
        std::map<std::pair<std::string, std::string>, std::pair<const std::string*, const std::string*>> all;
        for (const Attr& attr : na.attrs)
            if (!IsHint(attr)) all[{attr.ns, attr.local}].first = &attr.value;
        for (const Attr& attr : nb.attrs)
            if (!IsHint(attr)) all[{attr.ns, attr.local}].second = &attr.value;
        for (const auto& entry : all) {
            const std::string& ns = entry.first.first;
            const std::string& local = entry.first.second;
            const std::string name = NameOf(ns, local);
            const CSimpleType* valueType = nullptr;
            const CValueConstraint* constraint = nullptr;
            std::string primitive;  // xsi:nil is a boolean with the default false
            if (ns == kXsi && local == "nil") {
                primitive = "boolean";
            } else {
                const CAttributeUse* use = nullptr;
                const CAttributeDeclaration* decl = m_view.Attribute(type, ns, local, &use);
                if (decl != nullptr) valueType = decl->type;
                constraint = ConstraintOf(decl, use);
            }
            auto same = [&](const std::string& x, const std::string& y) {
                if (!primitive.empty()) return SameAtomic(primitive, Collapse(x), Collapse(y), sa, sb);
                return SameValue(valueType, x, y, sa, sb);
            };
            const std::string* va = entry.second.first;
            const std::string* vb = entry.second.second;
            if (va != nullptr && vb != nullptr) {
                if (!same(*va, *vb))
                    return "Attribute [" + name + "] differs at [" + PathOf(f.path) + "]: [" + Shown(*va) + "] against [" + Shown(*vb) + "]";
                continue;
            }
            const std::string fallback = !primitive.empty() ? "false" : constraint != nullptr ? constraint->value : "";
            const bool hasDefault = !primitive.empty() || constraint != nullptr;
            if (va != nullptr) {
                if (!hasDefault || !same(*va, fallback)) return "Missing attribute [" + name + "] at [" + PathOf(f.path) + "]";
            } else if (!hasDefault || !same(fallback, *vb)) {
                return "Extra attribute [" + name + "] at [" + PathOf(f.path) + "]";
            }
        }
        return std::string();
    }

    // The path of a child: its local name, and its position among siblings of
    // one expanded name when there are several.
    static std::vector<std::string> ChildLabels(const Tree& tree, int parent) {
        std::map<std::pair<std::string, std::string>, int> total, seen;
        const Node& n = tree.nodes[parent];
        for (const Item& item : n.content)
            if (item.child >= 0) ++total[{tree.nodes[item.child].ns, tree.nodes[item.child].local}];
        std::vector<std::string> paths;
        for (const Item& item : n.content) {
            if (item.child < 0) continue;
            const Node& c = tree.nodes[item.child];
            const int k = ++seen[{c.ns, c.local}];
            paths.push_back(c.local + (total[{c.ns, c.local}] > 1 ? "[" + std::to_string(k) + "]" : ""));
        }
        return paths;
    }

    std::string Content(const Frame& f, const CTypeDefinition* type, bool textCompared, std::vector<Frame>& stack) {
        auto significant = [&](const Node& n) {
            std::vector<const Item*> items;
            for (const Item& item : n.content)
                if (item.child >= 0 || (!textCompared && !IsWhitespaceOnly(item.text))) items.push_back(&item);
            return items;
        };
        std::vector<const Item*> ia = significant(m_a.nodes[f.a]);
        std::vector<const Item*> ib = significant(m_b.nodes[f.b]);
        std::vector<std::string> pa = ChildLabels(m_a, f.a);
        std::vector<std::string> pb = ChildLabels(m_b, f.b);
        if (IsAllGroup(type)) InOneOrder(ia, pa, ib, pb);
        std::vector<Frame> children;
        std::size_t i = 0, j = 0, ca = 0, cb = 0;
        for (; i < ia.size() || j < ib.size(); ++i, ++j) {
            const Item* x = i < ia.size() ? ia[i] : nullptr;
            const Item* y = j < ib.size() ? ib[j] : nullptr;
            if (x != nullptr && y != nullptr && x->child >= 0 && y->child >= 0) {
                m_paths.push_back(PathStep{f.path, pa[ca++]});
                children.push_back(Frame{x->child, y->child, static_cast<int>(m_paths.size()) - 1, type, false});
                ++cb;
                continue;
            }
            if (x != nullptr && x->child < 0 && y != nullptr && y->child < 0) {
                if (x->text != y->text)
                    return "Text differs at [" + PathOf(f.path) + "]: [" + Shown(x->text) + "] against [" + Shown(y->text) + "]";
                continue;
            }
            if (x != nullptr && x->child >= 0) {
                const Node& c = m_a.nodes[x->child];
                return "Missing element [" + NameOf(c.ns, c.local) + "] at [" + PathOf(f.path) + "/" + pa[ca] + "]";
            }
            if (y != nullptr && y->child >= 0 && x == nullptr) {
                const Node& c = m_b.nodes[y->child];
                return "Extra element [" + NameOf(c.ns, c.local) + "] at [" + PathOf(f.path) + "/" + pb[cb] + "]";
            }
            return "Text differs at [" + PathOf(f.path) + "]: [" + Shown(x != nullptr && x->child < 0 ? x->text : std::string()) +
                   "] against [" + Shown(y != nullptr && y->child < 0 ? y->text : std::string()) + "]";
        }
        for (auto it = children.rbegin(); it != children.rend(); ++it) stack.push_back(std::move(*it));
        return std::string();
    }

    static bool IsAllGroup(const CTypeDefinition* type) {
        if (type == nullptr || type->IsSimple()) return false;
        const CParticle* model = static_cast<const CComplexType*>(type)->contentModel;
        return model != nullptr && model->termKind == CParticle::TermKind::ModelGroup && model->modelGroup != nullptr &&
               model->modelGroup->compositor == CModelGroup::Compositor::All;
    }

    // An all group's children may come in any order and mean the same (a
    // bound class writes them in declaration order). The walk pairs children
    // by position, so both sides are put in one order first: the children
    // the two share by name in the original's order, then the original's
    // unmatched ones (reported missing), then the copy's (reported extra).
    // With text among them the comparison stays positional.
    void InOneOrder(std::vector<const Item*>& ia, std::vector<std::string>& pa, std::vector<const Item*>& ib,
                    std::vector<std::string>& pb) const {
        for (const Item* item : ia)
            if (item->child < 0) return;
        for (const Item* item : ib)
            if (item->child < 0) return;
        std::map<std::pair<std::string, std::string>, std::vector<std::size_t>> copyByName;
        for (std::size_t k = ib.size(); k-- > 0;) {
            const Node& c = m_b.nodes[ib[k]->child];
            copyByName[{c.ns, c.local}].push_back(k);
        }
        std::vector<std::size_t> orderA, orderB, unmatchedA;
        std::vector<bool> takenB(ib.size(), false);
        for (std::size_t k = 0; k < ia.size(); ++k) {
            const Node& c = m_a.nodes[ia[k]->child];
            auto found = copyByName.find({c.ns, c.local});
            if (found == copyByName.end() || found->second.empty()) {
                unmatchedA.push_back(k);
                continue;
            }
            orderA.push_back(k);
            orderB.push_back(found->second.back());
            takenB[found->second.back()] = true;
            found->second.pop_back();
        }
        orderA.insert(orderA.end(), unmatchedA.begin(), unmatchedA.end());
        for (std::size_t k = 0; k < ib.size(); ++k)
            if (!takenB[k]) orderB.push_back(k);
        Permute(ia, pa, orderA);
        Permute(ib, pb, orderB);
    }

    static void Permute(std::vector<const Item*>& items, std::vector<std::string>& labels,
                        const std::vector<std::size_t>& order) {
        std::vector<const Item*> newItems;
        std::vector<std::string> newLabels;
        for (std::size_t k : order) {
            newItems.push_back(items[k]);
            newLabels.push_back(labels[k]);
        }
        items.swap(newItems);
        labels.swap(newLabels);
    }

    // One step of an element's path: kept per element and joined only for a
    // message, so deep documents cost linear time.
    struct PathStep {
        int parent;
        std::string label;
    };

    std::string PathOf(int step) const {
        std::vector<const std::string*> labels;
        for (int s = step; s >= 0; s = m_paths[s].parent) labels.push_back(&m_paths[s].label);
        std::string path;
        for (auto it = labels.rbegin(); it != labels.rend(); ++it) path += "/" + **it;
        return path;
    }

    const Tree& m_a;
    const Tree& m_b;
    SchemaView m_view;
    std::vector<PathStep> m_paths;
};

}  // namespace

std::string CompareInfosets(const std::string& original, const std::string& copy, const CSchemaSet* schemas) {
    Tree a, b;
    std::string error = Parse(original, a);
    if (!error.empty()) return "The original does not parse: " + error;
    error = Parse(copy, b);
    if (!error.empty()) return "The copy does not parse: " + error;
    return Comparer(a, b, schemas).Run();
}

}  // namespace qmxml_w3c
