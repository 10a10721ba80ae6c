#include "codegen/cpp_emitter.h"

#include <qmxml/core/exception.h>
#include <qmxml/metadata/parent_element_info.h>
#include <qmxml/schema/attribute_declaration.h>
#include <qmxml/schema/attribute_use.h>
#include <qmxml/schema/complex_type.h>
#include <qmxml/schema/element_declaration.h>
#include <qmxml/schema/simple_type.h>
#include <qmxml/schema/wildcard.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

#include "schema/mapping.h"
#include "schema/value_rule.h"

namespace qmxml_tool {
namespace codegen {

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace {

const char* const kKeywords[] = {
    "alignas",   "alignof",  "and",      "and_eq",    "asm",          "auto",      "bitand",     "bitor",
    "bool",      "break",    "case",     "catch",     "char",         "char16_t",  "char32_t",   "class",
    "compl",     "const",    "constexpr", "const_cast", "continue",   "decltype",  "default",    "delete",
    "do",        "double",   "dynamic_cast", "else",  "enum",         "explicit",  "export",     "extern",
    "false",     "float",    "for",      "friend",    "goto",         "if",        "inline",     "int",
    "long",      "mutable",  "namespace", "new",      "noexcept",     "not",       "not_eq",     "nullptr",
    "operator",  "or",       "or_eq",    "private",   "protected",    "public",    "register",   "reinterpret_cast",
    "return",    "short",    "signed",   "sizeof",    "static",       "static_assert", "static_cast", "struct",
    "switch",    "template", "this",     "thread_local", "throw",     "true",      "try",        "typedef",
    "typeid",    "typename", "union",    "unsigned",  "using",        "virtual",   "void",       "volatile",
    "wchar_t",   "while",    "xor",      "xor_eq",    "char8_t",      "concept",   "consteval",  "constinit",
    "co_await",  "co_return", "co_yield", "requires", "final",        "override",  "import",     "module",
    // Names the generated code or the library reserve at namespace scope.
    "std",       "QmXmlLib10", "QmXmlLib10Data", "NULL"};

bool IsKeyword(const std::string& s) {
    for (const char* k : kKeywords)
        if (s == k) return true;
    return false;
}

// Letters, digits and single underscores; never empty, never a leading digit
// or underscore (a leading underscore before a capital, and double
// underscores anywhere, are reserved in C++).
std::string Identifier(const std::string& text) {
    std::string out;
    for (const char c : text) {
        const bool word = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (word) {
            out += c;
        } else if (!out.empty() && out.back() != '_') {
            out += '_';
        }
    }
    while (!out.empty() && out.back() == '_') out.pop_back();
    if (out.empty()) out = "x";
    if (out[0] >= '0' && out[0] <= '9') out = "n" + out;
    return out;
}

// A C++ string literal of any bytes (octal escapes keep multi-byte UTF-8 exact).
std::string Literal(const std::string& text) {
    std::string out = "\"";
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\\' || c == '"') {
            out += '\\';
            out += ch;
        } else if (c >= 0x20 && c < 0x7f && c != '?') {
            out += ch;
        } else {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\%03o", c);
            out += buffer;
        }
    }
    return out + "\"";
}

// Comment text on one line each: no "*/" or line continuations to worry about
// in line comments, but a trailing backslash would join the next line.
std::string CommentLines(const std::string& text, const std::string& indent) {
    std::string out;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && (line.back() == '\\' || line.back() == ' ' || line.back() == '\r')) line.pop_back();
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos) continue;
        out += indent + "// " + line.substr(start) + "\n";
    }
    return out;
}

const char* ItemTypeName(ItemType t) {
    static const char* const kNames[] = {
        "ItemType_None",     "ItemType_hexBinary", "ItemType_base64Binary", "ItemType_i1",      "ItemType_i2",
        "ItemType_i4",       "ItemType_i8",        "ItemType_ui1",          "ItemType_ui2",     "ItemType_ui4",
        "ItemType_ui8",      "ItemType_r4",        "ItemType_r8",           "ItemType_duration", "ItemType_yearMonth",
        "ItemType_monthDay", "ItemType_year",      "ItemType_month",        "ItemType_day",     "ItemType_date",
        "ItemType_datetime", "ItemType_time",      "ItemType_char",         "ItemType_string",  "ItemType_boolean",
        "ItemType_decimal",  "ItemType_integer"};
    const int i = static_cast<int>(t);
    return i >= 0 && i < static_cast<int>(sizeof kNames / sizeof kNames[0]) ? kNames[i] : "ItemType_None";
}

const char* WhitespaceName(CWhitespaceUtils::WhitespaceRule rule) {
    switch (rule) {
        case CWhitespaceUtils::WhitespaceRule_Replace: return "QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Replace";
        case CWhitespaceUtils::WhitespaceRule_Collapse: return "QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Collapse";
        case CWhitespaceUtils::WhitespaceRule_Preserve: return "QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve";
        default: return "QmXmlLib10::CWhitespaceUtils::WhitespaceRule_None";
    }
}

const char* GroupName(XmlElementGroupType g) {
    switch (g) {
        case XmlElementGroupType_Choice: return "QmXmlLib10::XmlElementGroupType_Choice";
        case XmlElementGroupType_All: return "QmXmlLib10::XmlElementGroupType_All";
        default: return "QmXmlLib10::XmlElementGroupType_Sequence";
    }
}

const char* GroupInfoClass(XmlElementGroupType g) {
    switch (g) {
        case XmlElementGroupType_Choice: return "QmXmlLib10Data::CElementInfoChoice";
        case XmlElementGroupType_All: return "QmXmlLib10Data::CElementInfoAll";
        default: return "QmXmlLib10Data::CElementInfoSeq";
    }
}

const char* ElementTypeName(XmlElementType t) {
    switch (t) {
        case XmlElementType_InlineSequence: return "QmXmlLib10::XmlElementType_InlineSequence";
        case XmlElementType_InlineChoice: return "QmXmlLib10::XmlElementType_InlineChoice";
        default: return "QmXmlLib10::XmlElementType_Element";
    }
}

// The value collection class of an item type, as the dynamic classes pick it.
const char* ValueCollectionClass(ItemType t) {
    switch (t) {
        case ItemType_hexBinary: return "QmXmlLib10::ChexBinaryCol";
        case ItemType_base64Binary: return "QmXmlLib10::Cbase64BinaryCol";
        case ItemType_i1: return "QmXmlLib10::Ci1Col";
        case ItemType_i2: return "QmXmlLib10::Ci2Col";
        case ItemType_i4: return "QmXmlLib10::Ci4Col";
        case ItemType_i8: return "QmXmlLib10::Ci8Col";
        case ItemType_ui1: return "QmXmlLib10::Cui1Col";
        case ItemType_ui2: return "QmXmlLib10::Cui2Col";
        case ItemType_ui4: return "QmXmlLib10::Cui4Col";
        case ItemType_ui8: return "QmXmlLib10::Cui8Col";
        case ItemType_r4: return "QmXmlLib10::Cr4Col";
        case ItemType_r8: return "QmXmlLib10::Cr8Col";
        case ItemType_duration: return "QmXmlLib10::CdurationCol";
        case ItemType_yearMonth: return "QmXmlLib10::CyearMonthCol";
        case ItemType_monthDay: return "QmXmlLib10::CmonthDayCol";
        case ItemType_year: return "QmXmlLib10::CyearCol";
        case ItemType_month: return "QmXmlLib10::CmonthCol";
        case ItemType_day: return "QmXmlLib10::CdayCol";
        case ItemType_date: return "QmXmlLib10::CdateCol";
        case ItemType_datetime: return "QmXmlLib10::CdatetimeCol";
        case ItemType_time: return "QmXmlLib10::CtimeCol";
        case ItemType_decimal: return "QmXmlLib10::CdecimalCol";
        case ItemType_integer: return "QmXmlLib10::CintegerCol";
        default: return "QmXmlLib10::CstringCol";
    }
}

// How a simple value member is held: its C++ type and, for the types whose
// C++ type does not tell the item type, the proxy AccessMembers needs.
struct ValueType {
    std::string cpp;
    std::string proxy;  // "" or "AsDateTime" / "AsBinary"
    bool variant = false;
};

ValueType ValueTypeOf(ItemType t) {
    switch (t) {
        case ItemType_string: return {"std::string", "", false};
        case ItemType_boolean: return {"bool", "", false};
        case ItemType_i1: return {"char", "", false};
        case ItemType_i2: return {"short", "", false};
        case ItemType_i4: return {"std::int32_t", "", false};
        case ItemType_i8: return {"std::int64_t", "", false};
        case ItemType_ui1: return {"unsigned char", "", false};
        case ItemType_ui2: return {"unsigned short", "", false};
        case ItemType_ui4: return {"std::uint32_t", "", false};
        case ItemType_ui8: return {"std::uint64_t", "", false};
        case ItemType_r4: return {"float", "", false};
        case ItemType_r8: return {"double", "", false};
        case ItemType_decimal: return {"QmXmlLib10::CDecimal", "", false};
        case ItemType_integer: return {"QmXmlLib10::CBigInteger", "", false};
        case ItemType_duration: return {"QmXmlLib10::CDateTimeSpan", "", false};
        case ItemType_date:
        case ItemType_datetime:
        case ItemType_time:
        case ItemType_yearMonth:
        case ItemType_monthDay: return {"QmXmlLib10::CDateTime", "AsDateTime", false};
        case ItemType_hexBinary:
        case ItemType_base64Binary: return {"QmXmlLib10::CBinaryData", "AsBinary", false};
        default:
            // gYear, gMonth, gDay and chars have no C++ type of their own.
            return {"QmXmlLib10::QmVariant", "", true};
    }
}

std::int32_t Occurs(std::uint64_t n, bool upper) {
    if (upper && n == CParticle::kUnbounded) return -1;
    if (n > 0x7fffffff) return upper ? -1 : 0x7fffffff;
    return static_cast<std::int32_t>(n);
}

// Accessor names the base classes use already.
bool ClashesWithBase(const std::string& name) {
    static const char* const kTaken[] = {"ClassInfo", "ClassElementInfo", "ClassAttributeInfo", "TypeName",
                                         "TargetNamespace", "ElementName", "Base", "RefCount", "ChoiceSelectedElement"};
    for (const char* t : kTaken)
        if (name == t) return true;
    return false;
}

const char* WhiteSpaceEnum(WhiteSpace w) {
    switch (w) {
        case WhiteSpace::Replace: return "QmXmlLib10::XsdWhiteSpace::Replace";
        case WhiteSpace::Collapse: return "QmXmlLib10::XsdWhiteSpace::Collapse";
        default: return "QmXmlLib10::XsdWhiteSpace::Preserve";
    }
}

const char* VarietyEnum(XsdVariety v) {
    switch (v) {
        case XsdVariety::Atomic: return "QmXmlLib10::XsdVariety::Atomic";
        case XsdVariety::List: return "QmXmlLib10::XsdVariety::List";
        case XsdVariety::Union: return "QmXmlLib10::XsdVariety::Union";
        default: return "QmXmlLib10::XsdVariety::None";
    }
}

const char* PrimitiveEnum(XsdPrimitive p) {
    static const char* const kNames[] = {"AnySimple", "String",     "Boolean",    "Decimal",   "Float",
                                         "Double",    "Duration",   "DateTime",   "Time",      "Date",
                                         "GYearMonth", "GYear",     "GMonthDay",  "GDay",      "GMonth",
                                         "HexBinary", "Base64Binary", "AnyURI",   "QName",     "Notation"};
    static std::string names[sizeof kNames / sizeof kNames[0]];
    const int i = static_cast<int>(p);
    if (names[i].empty()) names[i] = std::string("QmXmlLib10::XsdPrimitive::") + kNames[i];
    return names[i].c_str();
}

// The statements that fill a description `d`, in a stable text (equal
// descriptions give equal text, so one rule serves them all).
std::string DescriptionCode(const CSimpleTypeDescription& d) {
    std::ostringstream o;
    if (!d.types.empty()) o << "    d.types.resize(" << d.types.size() << ");\n";
    for (std::size_t i = 0; i < d.types.size(); ++i) {
        const CSimpleTypeCheck& t = d.types[i];
        o << "    {\n        QmXmlLib10::CSimpleTypeCheck& t = d.types[" << i << "];\n";
        if (t.variety != XsdVariety::None) o << "        t.variety = " << VarietyEnum(t.variety) << ";\n";
        if (t.whiteSpace != XsdWhiteSpace::Preserve) o << "        t.whiteSpace = " << WhiteSpaceEnum(t.whiteSpace) << ";\n";
        if (t.refuse) o << "        t.refuse = true;\n";
        if (!t.patterns.empty()) {
            o << "        t.patterns = {";
            for (std::size_t s = 0; s < t.patterns.size(); ++s) {
                o << (s ? ", {" : "{");
                for (std::size_t k = 0; k < t.patterns[s].size(); ++k) o << (k ? ", " : "") << Literal(t.patterns[s][k]);
                o << "}";
            }
            o << "};\n";
        }
        if (!t.enumeration.empty()) {
            o << "        t.enumeration = {";
            for (std::size_t k = 0; k < t.enumeration.size(); ++k) o << (k ? ", " : "") << Literal(t.enumeration[k]);
            o << "};\n";
        }
        if (t.length) o << "        t.length = " << *t.length << "ull;\n";
        if (t.minLength) o << "        t.minLength = " << *t.minLength << "ull;\n";
        if (t.maxLength) o << "        t.maxLength = " << *t.maxLength << "ull;\n";
        if (t.primitive != XsdPrimitive::AnySimple) o << "        t.primitive = " << PrimitiveEnum(t.primitive) << ";\n";
        if (t.runtimeType != ItemType_string) o << "        t.runtimeType = QmXmlLib10::" << ItemTypeName(t.runtimeType) << ";\n";
        if (t.integerForm) o << "        t.integerForm = true;\n";
        if (t.ncname) o << "        t.ncname = true;\n";
        if (t.minInclusive) o << "        t.minInclusive = std::string(" << Literal(*t.minInclusive) << ");\n";
        if (t.maxInclusive) o << "        t.maxInclusive = std::string(" << Literal(*t.maxInclusive) << ");\n";
        if (t.minExclusive) o << "        t.minExclusive = std::string(" << Literal(*t.minExclusive) << ");\n";
        if (t.maxExclusive) o << "        t.maxExclusive = std::string(" << Literal(*t.maxExclusive) << ");\n";
        if (t.totalDigits) o << "        t.totalDigits = " << *t.totalDigits << "ull;\n";
        if (t.fractionDigits) o << "        t.fractionDigits = " << *t.fractionDigits << "ull;\n";
        if (t.item >= 0) o << "        t.item = " << t.item << ";\n";
        if (!t.members.empty()) {
            o << "        t.members = {";
            for (std::size_t k = 0; k < t.members.size(); ++k) o << (k ? ", " : "") << t.members[k];
            o << "};\n";
        }
        o << "    }\n";
    }
    if (d.fixed) o << "    d.fixed = std::string(" << Literal(*d.fixed) << ");\n";
    if (d.valuesAlwaysValid) o << "    d.valuesAlwaysValid = true;\n";
    return o.str();
}

// The derivation methods on the way from `derived` up to `base` (lists and
// unions count as restriction), as the dynamic classes' factory walks them.

bool IsAbstractType(const CTypeDefinition* type) {
    return type != nullptr && !type->IsSimple() && static_cast<const CComplexType*>(type)->abstract;
}

struct Member {
    const CPropertyDescription* p = nullptr;
    const CPropertyRuntime* r = nullptr;
    int index = 0;
    std::string cppName;  // accessor stem and field suffix
    std::string field;    // m_<cppName>
    std::string type;     // the field's C++ type
    std::string access;   // the field as AccessMembers takes it
    std::string facets;   // the facets constant, values only
    ValueType value;
    bool optionalValue = false;
};

struct ClassOut {
    const CClassDescription* d = nullptr;
    const CClassRuntime* r = nullptr;
    std::string ns;        // C++ namespace
    std::string name;      // C<name>
    std::vector<Member> members;
    bool textCheck = false;
};

class Emitter {
public:
    Emitter(const CSchemaSet& set, const EmitOptions& options) : m_set(set), m_options(options) {}

    std::vector<EmittedFile> Run() {
        MapSchemaSet(m_set, nullptr, m_mapped);
        NameNamespaces();
        NameClasses();
        for (auto& c : m_classes) BuildMembers(c);
        std::vector<EmittedFile> files;
        const std::string stem = Identifier(StemOf(m_options.schemas.empty() ? "schema" : m_options.schemas[0]));
        m_stem = stem;
        for (const auto& ns : m_namespaceOrder) {
            files.push_back({FileOf(ns) + ".h", NamespaceHeader(ns)});
            files.push_back({FileOf(ns) + ".cpp", NamespaceSource(ns)});
        }
        files.push_back({stem + ".h", SetHeader()});
        files.push_back({stem + ".cpp", SetSource()});
        return files;
    }

private:
    static std::string StemOf(const std::string& path) {
        std::string base = path.substr(path.find_last_of('/') == std::string::npos ? 0 : path.find_last_of('/') + 1);
        const std::size_t dot = base.rfind('.');
        if (dot != std::string::npos && dot > 0) base = base.substr(0, dot);
        return base;
    }

    // ---------------------------------------------------------------- names

    std::string UriOfClass(const CClassDescription& d) const {
        if (d.type != nullptr && !d.type->IsAnonymous() && !d.type->name.ns.empty()) return d.type->name.ns;
        return d.elementNamespace;
    }

    void NameNamespaces() {
        std::set<std::string> uris;
        for (const auto& d : m_mapped.classes) uris.insert(UriOfClass(*d));
        std::set<std::string> taken;
        // Mapped names first: they are the user's, and defaults step aside.
        for (const auto& entry : m_options.namespaceMap) {
            const std::string& name = entry.second;
            std::string part;
            std::istringstream parts(name);
            bool valid = !name.empty();
            std::string rebuilt;
            for (std::size_t pos = 0; valid && pos <= name.size();) {
                const std::size_t end = std::min(name.find("::", pos), name.size());
                part = name.substr(pos, end - pos);
                valid = !part.empty() && Identifier(part) == part && !IsKeyword(part);
                pos = end + 2;
            }
            if (!valid)
                throw CQmInvalidParamException("Invalid C++ namespace [" + name + "] for the namespace [" + entry.first + "]");
            if (uris.count(entry.first)) {
                m_namespaces[entry.first] = name;
                taken.insert(name);
            }
        }
        for (const std::string& uri : uris) {
            if (m_namespaces.count(uri)) continue;
            const std::string base = DefaultNamespaceName(uri);
            std::string name = base;
            for (int n = 2; taken.count(name); ++n) name = base + "_" + std::to_string(n);
            taken.insert(name);
            m_namespaces[uri] = name;
        }
        std::set<std::string> order;
        for (const auto& entry : m_namespaces) order.insert(entry.second);
        m_namespaceOrder.assign(order.begin(), order.end());
        // The set's functions live in the namespace of the first global
        // element (the first schema document's, as the set loads in order).
        std::string first;
        if (!m_set.GetElements().empty()) {
            first = m_set.GetElements()[0]->name.ns;
        } else if (!m_set.GetTypes().empty()) {
            first = m_set.GetTypes()[0]->name.ns;
        }
        const auto found = m_namespaces.find(first);
        m_setNamespace = found != m_namespaces.end() ? found->second
                                                     : (m_options.namespaceMap.count(first) ? m_options.namespaceMap.at(first)
                                                                                             : DefaultNamespaceName(first));
    }

    static std::string FileOf(const std::string& ns) {
        std::string file;
        for (std::size_t i = 0; i < ns.size(); ++i) {
            if (ns.compare(i, 2, "::") == 0) {
                file += '_';
                ++i;
            } else {
                file += ns[i];
            }
        }
        return file + "_classes";
    }

    void NameClasses() {
        std::map<std::string, std::set<std::string>> used;
        m_classes.resize(m_mapped.classes.size());
        for (std::size_t i = 0; i < m_mapped.classes.size(); ++i) {
            ClassOut& c = m_classes[i];
            c.d = m_mapped.classes[i].get();
            c.r = &m_mapped.runtime[i];
            c.ns = m_namespaces.at(UriOfClass(*c.d));
            const std::string base = "C" + Identifier(c.d->name);
            std::string name = base;
            for (int n = 2; used[c.ns].count(name); ++n) name = base + "_" + std::to_string(n);
            used[c.ns].insert(name);
            c.name = name;
            const CComplexType* type = c.d->type;
            c.textCheck = type != nullptr && c.d->elementType == XmlElementType_Element &&
                          (type->contentType == CComplexType::ContentType::ElementOnly ||
                           type->contentType == CComplexType::ContentType::Empty);
        }
    }

    std::string Qualified(int classIndex) const {
        const ClassOut& c = m_classes[static_cast<std::size_t>(classIndex)];
        return "::" + c.ns + "::" + c.name;
    }

    // ---------------------------------------------------------------- rules

    // The fixed value constraint of a value member, or null.
    const CValueConstraint* FixedOf(const CClassDescription& d, const CPropertyDescription& p) const {
        const CValueConstraint* c = nullptr;
        if (p.source == CPropertyDescription::Source::Attribute && p.attribute != nullptr) {
            c = p.attribute->valueConstraint.kind != CValueConstraint::None ? &p.attribute->valueConstraint
                : p.attribute->declaration ? &p.attribute->declaration->valueConstraint : nullptr;
        } else if (p.source == CPropertyDescription::Source::Element && p.element != nullptr) {
            c = &p.element->valueConstraint;
        } else if (p.source == CPropertyDescription::Source::SimpleContent && p.simpleType != nullptr && d.type == nullptr) {
            c = RootConstraint(d);
        }
        return c != nullptr && c->kind == CValueConstraint::Fixed ? c : nullptr;
    }

    // The value constraint of the global element a simple-typed element's own
    // class stands for.
    const CValueConstraint* RootConstraint(const CClassDescription& d) const {
        for (const auto& root : m_mapped.roots) {
            if (root.second != d.index) continue;
            const CElementDeclaration* e = m_set.FindElement(CQName{root.first.first, root.first.second});
            if (e != nullptr && e->valueConstraint.kind != CValueConstraint::None) return &e->valueConstraint;
        }
        return nullptr;
    }

    // The facets constant (in the class's namespace source) of a value.
    std::string FacetsFor(const std::string& ns, const CSimpleType* type, const CValueConstraint* fixed) {
        const CSimpleTypeDescription description = DescribeSimpleType(type, fixed);
        if (CSimpleTypeRule::Make(description) == nullptr) return "QmXmlLib10::Generated::kNoRestrictions";
        const std::string code = DescriptionCode(description);
        auto& rules = m_rules[ns];
        const auto found = rules.find(code);
        if (found != rules.end()) return found->second;
        const std::string name = "kFacets" + std::to_string(rules.size() + 1);
        rules[code] = name;
        m_ruleOrder[ns].push_back(code);
        return name;
    }

    // ---------------------------------------------------------------- members

    std::string ObjectType(const Member& m) const {
        return m.r->substitution >= 0 ? "QmXmlLib10::CXmlGeneratedClass" : Qualified(m.p->classIndex);
    }

    void BuildMembers(ClassOut& c) {
        std::set<std::string> used;
        for (std::size_t i = 0; i < c.d->properties.size(); ++i) {
            Member m;
            m.p = &c.d->properties[i];
            m.r = &c.r->properties[i];
            m.index = static_cast<int>(i);
            std::string base = Identifier(m.p->name);
            base[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(base[0])));
            if (ClashesWithBase(base)) base += "_";
            std::string name = base;
            for (int n = 2; used.count(name); ++n) name = base + "_" + std::to_string(n);
            used.insert(name);
            m.cppName = name;
            m.field = "m_" + name;
            const CPropertyDescription& p = *m.p;
            switch (p.kind) {
                case CPropertyDescription::Kind::Value: {
                    const bool nillable = p.element != nullptr && p.element->nillable;
                    m.value = nillable ? ValueType{"QmXmlLib10::QmVariant", "", true} : ValueTypeOf(p.itemType);
                    m.optionalValue = p.optional && !m.value.variant;
                    m.type = m.optionalValue ? "std::optional<" + m.value.cpp + ">" : m.value.cpp;
                    m.access = m.value.proxy.empty() ? m.field
                                                     : "QmXmlLib10::Generated::" + m.value.proxy + "(" + m.field +
                                                           ", QmXmlLib10::" + ItemTypeName(p.itemType) + ")";
                    if (p.simpleType != nullptr) {
                        m.facets = FacetsFor(c.ns, p.simpleType, FixedOf(*c.d, p));
                    } else {
                        m.facets = "QmXmlLib10::Generated::kNoRestrictions";
                    }
                    break;
                }
                case CPropertyDescription::Kind::Object:
                    // A substitutable member holds whichever class the element picks.
                    m.type = "QmXmlLib10::CSmartPtr<" + ObjectType(m) + ">";
                    m.access = m.field;
                    break;
                case CPropertyDescription::Kind::Element:
                    m.type = "QmXmlLib10::CSmartPtr<QmXmlLib10::CElement>";
                    m.access = m.field;
                    break;
                case CPropertyDescription::Kind::Attributes:
                    m.type = "QmXmlLib10::CSmartPtr<QmXmlLib10::CAttributeCol>";
                    m.access = m.field;
                    break;
                case CPropertyDescription::Kind::Collection:
                    if (p.source == CPropertyDescription::Source::Wildcard || (p.classIndex < 0 && p.simpleType == nullptr)) {
                        m.type = "QmXmlLib10::CSmartPtr<QmXmlLib10::CElementCol>";
                    } else if (m.r->substitution >= 0) {
                        m.type = "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlFactoryClassCollection>";
                    } else if (p.classIndex >= 0) {
                        m.type = "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlClassCollection<" + Qualified(p.classIndex) + ">>";
                    } else {
                        m.type = std::string("QmXmlLib10::CSmartPtr<") + ValueCollectionClass(p.itemType) + ">";
                        m.facets = FacetsFor(c.ns, p.simpleType, FixedOf(*c.d, p));
                    }
                    m.access = m.field;
                    break;
            }
            c.members.push_back(std::move(m));
        }
    }

    // ---------------------------------------------------------------- headers

    std::string NamespaceOpen(const std::string& ns) const {
        std::string out;
        std::size_t pos = 0;
        while (pos <= ns.size()) {
            const std::size_t end = std::min(ns.find("::", pos), ns.size());
            out += "namespace " + ns.substr(pos, end - pos) + " {\n";
            pos = end + 2;
        }
        return out;
    }

    std::string NamespaceClose(const std::string& ns) const {
        std::string out;
        std::size_t pos = 0;
        while (pos <= ns.size()) {
            const std::size_t end = std::min(ns.find("::", pos), ns.size());
            out += "}  // namespace " + ns.substr(pos, end - pos) + "\n";
            pos = end + 2;
        }
        return out;
    }

    std::string Banner() const {
        std::string out = "// Generated by qmxml generate from";
        for (const auto& s : m_options.schemas) out += " " + StemOf(s);
        return out + ". Do not edit: regenerate.\n";
    }

    std::string ClassComment(const ClassOut& c) const {
        std::string out;
        const CSchemaComponent* component = c.d->type;
        if (component != nullptr) {
            for (const std::string& doc : component->annotation.documentation) out += CommentLines(doc, "");
        }
        if (out.empty()) {
            if (c.d->group != nullptr) {
                out = "// An inlined " + std::string(c.d->elementType == XmlElementType_InlineChoice ? "choice" : "sequence") +
                      " of its parent's content.\n";
            } else if (!c.d->typeName.IsEmpty()) {
                out = "// The complex type " + c.d->typeName.local + ".\n";
            }
        }
        return out;
    }

    std::string ClassDeclaration(const ClassOut& c) const {
        std::ostringstream o;
        o << "// ---------------------------------------------------------------- " << c.d->name << "\n\n";
        o << ClassComment(c);
        const bool retypable = !c.d->typeName.IsEmpty();
        o << "class " << c.name << " : public QmXmlLib10::"
          << (retypable ? "Generated::CRetypableClass" : "CXmlGeneratedClass") << " {\npublic:\n";
        if (!c.members.empty()) {
            o << "    enum Property {";
            for (std::size_t i = 0; i < c.members.size(); ++i) o << (i ? ", " : " ") << "P_" << c.members[i].cppName;
            o << " };\n";
        }
        o << "\n    " << c.name << "();\n    ~" << c.name << "() override;\n";
        o << "    void Init() override;\n"
             "    void AccessProperty(int propertyIndex, bool read, QmXmlLib10::QmVariant& value) override;\n"
             "    QmXmlLib10Data::CParentElementInfo* GetClassInfo() const override { return s_classInfo; }\n"
             "    QmXmlLib10Data::CElementInfo** GetClassElementInfo() const override { return s_elementInfo; }\n"
             "    QmXmlLib10Data::CAttributeInfo** GetClassAttributeInfo() const override { return s_attributeInfo; }\n";
        if (retypable) {
            o << "    // Written as xsi:type when the object stands for a member of another class.\n"
              << "    std::string GetTypeName() const override { return IsRetyped() ? " << Literal(c.d->typeName.local)
              << " : std::string(); }\n";
            o << "    std::string GetTypeNamespace() const override { return IsRetyped() ? "
              << Literal(c.d->typeName.ns) << " : std::string(); }\n";
        }
        for (const Member& m : c.members) {
            o << "\n";
            const CPropertyDescription& p = *m.p;
            const std::string& n = m.cppName;
            switch (p.kind) {
                case CPropertyDescription::Kind::Value:
                    if (m.value.variant) {
                        o << "    // Invalid when unset; nil for a nil element.\n";
                        o << "    const QmXmlLib10::QmVariant& Get" << n << "() const { return " << m.field << "; }\n";
                        o << "    bool IsValid" << n << "() const { return " << m.field << ".IsValid(); }\n";
                        o << "    void Set" << n << "(const QmXmlLib10::QmVariant& value);\n";
                        o << "    void Clear" << n << "() { " << m.field << ".SetInvalid(); }\n";
                    } else if (m.optionalValue) {
                        o << "    bool IsValid" << n << "() const { return " << m.field << ".has_value(); }\n";
                        o << "    // Throws CQmInvalidStateException when the member is not set.\n";
                        o << "    const " << m.value.cpp << "& Get" << n
                          << "() const { return QmXmlLib10::Generated::GetOptional(" << m.field << ", " << Literal(p.name)
                          << "); }\n";
                        o << "    void Set" << n << "(const " << m.value.cpp << "& value);\n";
                        o << "    void Clear" << n << "() { " << m.field << ".reset(); }\n";
                    } else {
                        o << "    const " << m.value.cpp << "& Get" << n << "() const { return " << m.field << "; }\n";
                        o << "    void Set" << n << "(const " << m.value.cpp << "& value);\n";
                    }
                    break;
                case CPropertyDescription::Kind::Object:
                    o << "    " << ObjectType(m) << "* Get" << n << "() const { return " << m.field << "; }\n";
                    o << "    void Set" << n << "(" << ObjectType(m) << "* value);\n";
                    break;
                case CPropertyDescription::Kind::Element:
                    o << "    QmXmlLib10::CElement* Get" << n << "() const { return " << m.field << "; }\n";
                    o << "    void Set" << n << "(QmXmlLib10::CElement* value) { " << m.field << " = value; }\n";
                    break;
                case CPropertyDescription::Kind::Attributes:
                case CPropertyDescription::Kind::Collection: {
                    std::string held = m.type.substr(std::string("QmXmlLib10::CSmartPtr<").size());
                    held.pop_back();
                    o << "    " << held << "* Get" << n << "() const { return " << m.field << "; }\n";
                    break;
                }
            }
        }
        if (!c.r->checks.empty())
            o << "    const QmXmlLib10::Generated::CMemberChecks* GetMemberChecks() const override;\n";
        o << "\n    static QmXmlLib10Data::CParentElementInfo* s_classInfo;\n"
             "    static QmXmlLib10Data::CElementInfo** s_elementInfo;\n"
             "    static QmXmlLib10Data::CAttributeInfo** s_attributeInfo;\n";
        if (c.textCheck || c.r->mandatoryInlineChoice || c.d->hasCheckedWildcards) {
            o << "\nprotected:\n"
                 "    QmXmlLib10::CXmlElement* FromXml_Int(QmXmlLib10::CXmlElement* parent, QmXmlLib10::CXmlElement* current,\n"
                 "                                         const QmXmlLib10::CXmlSerializationContext& ctx, bool isRoot) override;\n";
        }
        if (!c.members.empty()) {
            o << "\nprivate:\n";
            for (const Member& m : c.members) o << "    " << m.type << " " << m.field << ";\n";
        }
        o << "};\n\n";
        return o.str();
    }

    std::string NamespaceHeader(const std::string& ns) const {
        std::ostringstream o;
        o << Banner() << "#pragma once\n\n#include <qmxml/qmxml.h>\n\n#include <cstdint>\n#include <optional>\n#include <string>\n\n";
        // Classes of other namespaces this one's members name.
        std::map<std::string, std::set<std::string>> foreign;
        for (const ClassOut& c : m_classes) {
            if (c.ns != ns) continue;
            for (const Member& m : c.members) {
                if (m.p->classIndex < 0 || m.p->kind == CPropertyDescription::Kind::Value) continue;
                const ClassOut& other = m_classes[static_cast<std::size_t>(m.p->classIndex)];
                if (other.ns != ns) foreign[other.ns].insert(other.name);
            }
        }
        for (const auto& entry : foreign) {
            o << NamespaceOpen(entry.first);
            for (const std::string& name : entry.second) o << "class " << name << ";\n";
            o << NamespaceClose(entry.first) << "\n";
        }
        o << NamespaceOpen(ns) << "\n";
        for (const ClassOut& c : m_classes)
            if (c.ns == ns) o << "class " << c.name << ";\n";
        o << "\n";
        for (const ClassOut& c : m_classes)
            if (c.ns == ns) o << ClassDeclaration(c);
        o << NamespaceClose(ns);
        return o.str();
    }

    // ---------------------------------------------------------------- sources

    std::string ElementInfo(const ClassOut& c, const Member& m) const {
        const CPropertyDescription& p = *m.p;
        const CPropertyRuntime& r = *m.r;
        const XmlElementGroupType g = c.d->groupType;
        const bool choice = g == XmlElementGroupType_Choice;
        const std::string mandatory = (!p.optional && !choice) ? "true" : "false";
        const std::string idx = c.name + "::P_" + m.cppName;
        const std::string name = Literal(p.elementName.local);
        const std::string ns = Literal(p.elementName.ns);
        std::ostringstream o;
        auto kind = [&](const char* k) {
            return std::string("QmXmlLib10Data::") + k + "<" + GroupInfoClass(g) + ", " + mandatory + ">";
        };
        auto collection = [&]() { return std::string("QmXmlLib10Data::CElementInfoCol<") + GroupInfoClass(g) + ">"; };
        switch (p.kind) {
            case CPropertyDescription::Kind::Value: {
                o << "new " << kind("CElementInfoPrim") << "(" << name << ", " << ns << ", " << idx << ", "
                  << (p.element != nullptr && p.element->nillable ? "true" : "false") << ", QmXmlLib10::"
                  << ItemTypeName(p.itemType) << ", \"\", " << WhitespaceName(r.rule) << ", " << m.facets << ")";
                break;
            }
            case CPropertyDescription::Kind::Collection:
                if (p.source == CPropertyDescription::Source::Wildcard) {
                    o << "new " << collection() << "(\"AnyElement\", \"\", " << idx << ")";
                } else if (p.source == CPropertyDescription::Source::Group) {
                    o << "new " << collection() << "("
                      << (r.itemElementType == XmlElementType_InlineChoice ? "\"Choice\"" : "\"Sequence\"") << ", "
                      << Literal(c.d->elementNamespace) << ", " << idx << ", " << ElementTypeName(r.itemElementType) << ")";
                } else if (p.classIndex >= 0) {
                    o << "new " << collection() << "(" << name << ", " << ns << ", " << idx
                      << ", QmXmlLib10::XmlElementType_Element)";
                } else {
                    o << "new " << collection() << "(" << name << ", " << ns << ", " << idx << ")";
                }
                break;
            case CPropertyDescription::Kind::Element:
                if (p.source == CPropertyDescription::Source::Wildcard) {
                    o << "new " << kind("CElementInfoUntpd") << "(\"AnyElement\", \"\", " << idx << ", "
                      << Literal(r.restriction) << ", " << Literal(r.restrictionNamespace) << ")";
                } else {
                    o << "new " << kind("CElementInfoUntpd") << "(" << name << ", " << ns << ", " << idx
                      << ", \"##any\", \"\")";
                }
                break;
            case CPropertyDescription::Kind::Object:
                if (p.source == CPropertyDescription::Source::Group) {
                    o << "new " << kind("CElementInfoCls") << "("
                      << (r.itemElementType == XmlElementType_InlineChoice ? "\"Choice\"" : "\"Sequence\"") << ", "
                      << Literal(c.d->elementNamespace) << ", " << idx << ", " << ElementTypeName(r.itemElementType)
                      << ", &::" << m_setNamespace << "::CreateObject, " << p.classIndex << ", false)";
                } else if (r.substitution >= 0) {
                    o << "new " << kind("CElementInfoAbsCls") << "(" << name << ", " << ns << ", " << idx
                      << ", QmXmlLib10::XmlElementType_Element, ::" << m_setNamespace << "::ClassFactory(), "
                      << r.substitution << ")";
                } else {
                    o << "new " << kind("CElementInfoCls") << "(" << name << ", " << ns << ", " << idx
                      << ", QmXmlLib10::XmlElementType_Element, &::" << m_setNamespace << "::CreateObject, "
                      << p.classIndex << ", " << (p.element != nullptr && p.element->nillable ? "true" : "false") << ")";
                }
                break;
            default: break;
        }
        return o.str();
    }

    static std::string CheckRow(const QmXmlLib10::Generated::CMemberCheck& row) {
        static const char* const kShapes[] = {"Value", "Values", "Object", "Objects", "Element", "Elements", "Attributes"};
        static const char* const kIds[] = {"None", "Id", "IdRef", "IdRefs", "QName"};
        static const char* const kWildcards[] = {"Skip", "Lax", "Strict"};
        return "{" + std::to_string(row.property) + ", Check::" + kShapes[row.shape] + ", Check::" + kIds[row.idKind] +
               ", " + (row.text ? "true" : "false") + ", Check::" + kWildcards[row.wildcard] + ", " + Literal(row.name) +
               "}";
    }

    std::string ClassDefinition(const ClassOut& c) {
        std::ostringstream o;
        const std::string& n = c.name;
        o << "// ---------------------------------------------------------------- " << c.d->name << "\n\n";
        // Metadata.
        const QmXmlLib10Data::CParentElementInfo* info = c.d->classInfo;
        o << "QmXmlLib10Data::CParentElementInfo* " << n << "::s_classInfo = [] {\n";
        o << "    auto* info = new QmXmlLib10Data::CParentElementInfo(" << GroupName(c.d->groupType) << ", "
          << ElementTypeName(c.d->elementType) << ", " << Literal(info->GetElementName()) << ", "
          << Literal(info->GetElementNamespace()) << ", true, false, " << info->GetPrimitiveValuePropertyIndex()
          << ", QmXmlLib10::" << ItemTypeName(info->GetPrimitiveDataType()) << ", \"\", false);\n";
        if (info->GetSimpleContentRestrictions() != nullptr) {
            // The class of simple content: its value property's type and constraint.
            const Member& value = c.members[static_cast<std::size_t>(info->GetPrimitiveValuePropertyIndex())];
            o << "    info->SetSimpleContentRestrictions(" << value.facets << ", "
              << WhitespaceName(info->GetSimpleContentWhitespaceRule()) << ");\n";
        }
        if (const std::string* empty = info->GetSimpleContentEmptyValue())
            o << "    info->SetSimpleContentEmptyValue(" << Literal(*empty) << ");\n";
        o << "    return info;\n}();\n";
        std::vector<const Member*> elements, attributes;
        for (const Member& m : c.members) {
            if (m.p->source == CPropertyDescription::Source::Attribute || m.p->kind == CPropertyDescription::Kind::Attributes)
                attributes.push_back(&m);
            else if (m.p->source != CPropertyDescription::Source::SimpleContent)
                elements.push_back(&m);
        }
        o << "QmXmlLib10Data::CElementInfo** " << n << "::s_elementInfo = [] {\n";
        o << "    auto** infos = new QmXmlLib10Data::CElementInfo*[" << elements.size() + 1 << "];\n";
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const Member& m = *elements[i];
            const CPropertyDescription& p = *m.p;
            if (p.kind == CPropertyDescription::Kind::Value && p.element != nullptr &&
                p.element->valueConstraint.kind != CValueConstraint::None) {
                const bool mandatory = !p.optional && c.d->groupType != XmlElementGroupType_Choice;
                o << "    {\n        auto* info = " << ElementInfo(c, m) << ";\n";
                (void)mandatory;
                o << "        info->SetEmptyElementValue(" << Literal(p.element->valueConstraint.value) << ");\n";
                o << "        infos[" << i << "] = info;\n    }\n";
            } else {
                o << "    infos[" << i << "] = " << ElementInfo(c, m) << ";\n";
            }
        }
        o << "    infos[" << elements.size() << "] = nullptr;\n    return infos;\n}();\n";
        o << "QmXmlLib10Data::CAttributeInfo** " << n << "::s_attributeInfo = [] {\n";
        o << "    auto** infos = new QmXmlLib10Data::CAttributeInfo*[" << attributes.size() + 1 << "];\n";
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            const Member& m = *attributes[i];
            const CPropertyDescription& p = *m.p;
            const std::string idx = n + "::P_" + m.cppName;
            if (p.kind == CPropertyDescription::Kind::Attributes) {
                o << "    infos[" << i << "] = new QmXmlLib10Data::CAttributeInfoAny(\"AnyAttribute\", \"\", " << idx
                  << ", true, " << Literal(m.r->restriction) << ", " << Literal(m.r->restrictionNamespace) << ", \"\");\n";
                continue;
            }
            const CValueConstraint* constraint = nullptr;
            if (p.attribute != nullptr) {
                constraint = p.attribute->valueConstraint.kind != CValueConstraint::None ? &p.attribute->valueConstraint
                             : p.attribute->declaration ? &p.attribute->declaration->valueConstraint : nullptr;
            }
            const std::string defaultValue =
                constraint != nullptr && constraint->kind != CValueConstraint::None ? constraint->value : std::string();
            o << "    infos[" << i << "] = new QmXmlLib10Data::CAttributeInfoPrimitive(" << Literal(p.elementName.local)
              << ", " << Literal(p.elementName.ns) << ", " << idx << ", " << (p.optional ? "true" : "false")
              << ", QmXmlLib10::" << ItemTypeName(p.itemType) << ", \"\", " << WhitespaceName(m.r->rule) << ", "
              << m.facets << ", " << Literal(defaultValue) << ");\n";
        }
        o << "    infos[" << attributes.size() << "] = nullptr;\n    return infos;\n}();\n\n";

        // Construction and Init.
        o << n << "::" << n << "() { Init(); }\n" << n << "::~" << n << "() = default;\n\n";
        o << "void " << n << "::Init() {\n";
        for (const Member& m : c.members) {
            const CPropertyDescription& p = *m.p;
            const std::string minO = std::to_string(Occurs(p.minOccurs, false));
            const std::string maxO = std::to_string(Occurs(p.maxOccurs, true));
            switch (p.kind) {
                case CPropertyDescription::Kind::Value:
                    if (m.value.variant || m.optionalValue) {
                        o << "    QmXmlLib10::Generated::ClearValue(" << m.field << ");\n";
                    } else {
                        o << "    " << m.field << " = decltype(" << m.field << "){};\n";
                    }
                    break;
                case CPropertyDescription::Kind::Object:
                case CPropertyDescription::Kind::Element:
                    o << "    " << m.field << " = nullptr;\n";
                    break;
                case CPropertyDescription::Kind::Attributes:
                    o << "    QmXmlLib10::Generated::ResetCollection(" << m.field << ", " << Literal(p.name) << ", "
                      << Literal(m.r->restriction) << ", " << Literal(m.r->restrictionNamespace) << ");\n";
                    break;
                case CPropertyDescription::Kind::Collection:
                    if (p.source == CPropertyDescription::Source::Wildcard) {
                        o << "    QmXmlLib10::Generated::ResetCollection(" << m.field << ", \"AnyElement\", "
                          << Literal(m.r->restriction) << ", " << Literal(m.r->restrictionNamespace) << ", " << minO
                          << ", " << maxO << ");\n";
                    } else if (p.classIndex < 0 && p.simpleType == nullptr) {
                        // Repeating anyType elements: whole elements, while the name is theirs.
                        o << "    " << m.field << " = new QmXmlLib10::Generated::CNamedElementCol("
                          << Literal(p.elementName.local) << ", " << Literal(p.elementName.ns) << ", " << minO << ", "
                          << maxO << ");\n";
                    } else if (m.r->substitution >= 0) {
                        o << "    QmXmlLib10::Generated::ResetCollection(" << m.field << ", ::" << m_setNamespace
                          << "::ClassFactory(), " << p.classIndex << ", " << m.r->substitution << ", false, "
                          << Literal(p.elementName.local) << ", " << Literal(p.elementName.ns) << ", " << minO << ", "
                          << maxO << ");\n";
                    } else if (p.classIndex >= 0) {
                        const bool inlined = m.r->itemElementType != XmlElementType_Element;
                        o << "    QmXmlLib10::Generated::ResetCollection(" << m.field << ", "
                          << Literal(inlined ? p.name : p.elementName.local) << ", " << Literal(p.elementName.ns) << ", "
                          << minO << ", " << maxO << ");\n";
                    } else {
                        o << "    QmXmlLib10::Generated::ResetValueCollection(" << m.field << ", "
                          << Literal(p.elementName.local) << ", " << Literal(p.elementName.ns) << ", " << minO << ", "
                          << maxO << ", " << WhitespaceName(m.r->rule) << ", " << m.facets << ".GetValueRule());\n";
                    }
                    break;
            }
        }
        o << "}\n\n";
        o << "void " << n << "::AccessProperty(int propertyIndex, bool read, QmXmlLib10::QmVariant& value) {\n";
        o << "    QmXmlLib10::Generated::AccessMembers(" << Literal(n) << ", propertyIndex, read, value";
        for (const Member& m : c.members) o << ",\n        " << m.access;
        o << ");\n}\n";
        // Setters that check.
        for (const Member& m : c.members) {
            const CPropertyDescription& p = *m.p;
            if (p.kind == CPropertyDescription::Kind::Object) {
                o << "\nvoid " << n << "::Set" << m.cppName << "(" << ObjectType(m) << "* value) {\n";
                if (!p.optional) o << "    Throw_IfPropertyIsNull(value, " << Literal(p.name) << ");\n";
                o << "    " << m.field << " = value;\n}\n";
            }
            if (p.kind != CPropertyDescription::Kind::Value) continue;
            if (m.value.variant) {
                o << "\nvoid " << n << "::Set" << m.cppName << "(const QmXmlLib10::QmVariant& value) {\n"
                  << "    if (value.IsValid() && !value.IsNil())\n"
                  << "        QmXmlLib10::CPrimitiveRestrictions::CheckRestriction(" << Literal(p.name)
                  << ", value, QmXmlLib10::" << ItemTypeName(p.itemType) << ", " << m.facets << ");\n"
                  << "    " << m.field << " = value;\n}\n";
                continue;
            }
            std::string copyAccess = m.value.proxy.empty()
                                         ? "copy"
                                         : "QmXmlLib10::Generated::" + m.value.proxy + "(copy, QmXmlLib10::" +
                                               ItemTypeName(p.itemType) + ")";
            o << "\nvoid " << n << "::Set" << m.cppName << "(const " << m.value.cpp << "& value) {\n"
              << "    // Checked as writing would check it.\n"
              << "    " << m.value.cpp << " copy = value;\n"
              << "    QmXmlLib10::QmVariant v;\n"
              << "    QmXmlLib10::Generated::AccessMember(true, v, " << copyAccess << ");\n"
              << "    QmXmlLib10::CPrimitiveRestrictions::CheckRestriction(" << Literal(p.name) << ", v, QmXmlLib10::"
              << ItemTypeName(p.itemType) << ", " << m.facets << ");\n"
              << "    " << m.field << " = value;\n}\n";
        }
        if (!c.r->checks.empty()) {
            o << "\nconst QmXmlLib10::Generated::CMemberChecks* " << n << "::GetMemberChecks() const {\n"
              << "    using Check = QmXmlLib10::Generated::CMemberCheck;\n"
              << "    static const Check kRows[] = {\n";
            for (const auto& row : c.r->checks) o << "        " << CheckRow(row) << ",\n";
            o << "    };\n    static const QmXmlLib10::Generated::CMemberChecks kChecks{kRows, " << c.r->checks.size()
              << "};\n    return &kChecks;\n}\n";
        }
        if (c.textCheck || c.r->mandatoryInlineChoice || c.d->hasCheckedWildcards) {
            o << "\nQmXmlLib10::CXmlElement* " << n
              << "::FromXml_Int(QmXmlLib10::CXmlElement* parent, QmXmlLib10::CXmlElement* current,\n"
                 "                                         const QmXmlLib10::CXmlSerializationContext& ctx, bool isRoot) {\n";
            // After the content, as the dynamic classes check it: the text is
            // complete only at the element's end.
            o << "    QmXmlLib10::CXmlElement* rest = CXmlGeneratedClass::FromXml_Int(parent, current, ctx, isRoot);\n";
            if (c.textCheck) o << "    QmXmlLib10::Generated::CheckNoTextContent(parent);\n";
            if (c.d->hasCheckedWildcards)
                o << "    QmXmlLib10::Generated::CheckWildcardContent(*this, *::" << m_setNamespace
                  << "::GlobalDeclarations(), parent, " << (c.d->elementType == XmlElementType_Element ? "true" : "false")
                  << ", ctx);\n";
            if (c.r->mandatoryInlineChoice)
                o << "    QmXmlLib10::Generated::CheckInlineChoiceRead(*this, " << c.members.size() << ", parent, ctx);\n";
            o << "    return rest;\n}\n";
        }
        o << "\n";
        return o.str();
    }

    std::string NamespaceSource(const std::string& ns) {
        std::string classes;
        for (ClassOut& c : m_classes)
            if (c.ns == ns) classes += ClassDefinition(c);
        std::ostringstream o;
        o << Banner() << "#include \"" << m_stem << ".h\"\n\n" << NamespaceOpen(ns) << "\nnamespace {\n\n";
        o << RuleConstants(ns);
        o << "\n}  // namespace\n\n" << classes << NamespaceClose(ns);
        return o.str();
    }

    // The facet constants FacetsFor made for one source (key: its C++
    // namespace, or kSetRules for the set's own source).
    std::string RuleConstants(const std::string& key) {
        std::ostringstream o;
        for (const std::string& code : m_ruleOrder[key]) {
            const std::string& name = m_rules[key][code];
            o << "const QmXmlLib10::CPrimitiveRestrictions " << name << " = QmXmlLib10::Generated::FacetsWithRule([] {\n"
              << "    QmXmlLib10::CSimpleTypeDescription d;\n" << code << "    return QmXmlLib10::CSimpleTypeRule::Make(d);\n}());\n";
        }
        return o.str();
    }
    // No C++ namespace is empty.
    static constexpr const char* kSetRules = "";

    // The global attributes, for the check of what lax and strict attribute
    // wildcards take.
    std::string GlobalAttributeRows() {
        std::ostringstream o;
        for (const CAttributeDeclaration* attribute : m_set.GetAttributes()) {
            const auto found = m_mapped.globalAttributes.find({attribute->name.ns, attribute->name.local});
            if (found == m_mapped.globalAttributes.end()) continue;
            const CSimpleType* type = attribute->type ? attribute->type : m_set.GetAnySimpleType();
            const bool fixed = attribute->valueConstraint.kind == CValueConstraint::Fixed;
            const std::string facets = FacetsFor(kSetRules, type, fixed ? &attribute->valueConstraint : nullptr);
            o << "    {" << Literal(attribute->name.ns) << ", " << Literal(attribute->name.local) << ", {QmXmlLib10::"
              << ItemTypeName(found->second.itemType) << ", " << WhitespaceName(found->second.rule) << ", &" << facets
              << "}},\n";
        }
        return o.str();
    }

    std::string SetHeader() const {
        std::ostringstream o;
        // The runtime comes first: a set of notations or simple types alone has
        // no class header to bring it.
        o << Banner() << "#pragma once\n\n#include <qmxml/qmxml.h>\n\n#include <cstddef>\n#include <string>\n\n";
        for (const auto& ns : m_namespaceOrder) o << "#include \"" << FileOf(ns) << ".h\"\n";
        o << "\n" << NamespaceOpen(m_setNamespace) << "\n";
        o << "// The class factory the metadata calls: the class of an index, null outside them.\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase> CreateObject(int classIndex, const char* elementName);\n"
             "// The same with the substitutions of the set's substitutable members (the\n"
             "// metadata of those members, their collections and the root elements use it).\n"
             "const QmXmlLib10Data::IClassFactory* ClassFactory();\n\n"
             "// The object for a document whose root element has this name (null when no\n"
             "// global element of the schema set has it), ready to read or fill and write.\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> CreateRootObject(const std::string& ns,\n"
             "                                                                    const std::string& localName);\n\n"
             "// Reads a document into the object of its root element's class; see\n"
             "// QmXmlLib10::Generated::ReadRootFile for the failures.\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> ReadFile(\n"
             "    const std::string& path,\n"
             "    const QmXmlLib10::CXmlSerializationContext& ctx = QmXmlLib10::CXmlSerializationContext());\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> ReadBuffer(\n"
             "    const void* data, std::size_t size,\n"
             "    const QmXmlLib10::CXmlSerializationContext& ctx = QmXmlLib10::CXmlSerializationContext());\n\n"
             "// The set's global declarations, as its lax and strict wildcards check them.\n"
             "const QmXmlLib10::Generated::IGlobalDeclarations* GlobalDeclarations();\n\n"
             "// Frees every class's metadata; no object of the set may be used afterwards.\n"
             "void CleanMetaData();\n\n";
        o << NamespaceClose(m_setNamespace);
        return o.str();
    }

    // The rows of one member's table: every element that may stand for the
    // declared one, without and with each xsi:type it may carry.
    std::vector<std::string> SubstituteRows(const CSubstitutableMember& member) const {
        std::vector<std::string> rows;
        const CElementDeclaration* declared = member.element;
        if (declared == nullptr) return rows;
        const CTypeDefinition* anyType = m_set.GetAnyType();
        const CTypeDefinition* declaredType = declared->type ? declared->type : anyType;
        std::vector<const CElementDeclaration*> candidates{declared};
        for (const CElementDeclaration* global : m_set.GetElements()) {
            if (global == declared) continue;
            const CElementDeclaration* head = global->substitutionGroupHead;
            bool reaches = false;
            for (int guard = 0; head != nullptr && guard < 10000 && !reaches; ++guard) {
                reaches = head == declared;
                head = head->substitutionGroupHead;
            }
            if (!reaches) continue;
            const CTypeDefinition* actualType = global->type ? global->type : anyType;
            const unsigned blocked = declared->block | ProhibitedBy(declaredType);
            if ((blocked & Derivation_Substitution) != 0 || (blocked & DerivationMethods(actualType, declaredType)) != 0)
                continue;
            candidates.push_back(global);
        }
        auto row = [&](const CElementDeclaration* e, const char* typeName, int classIndex) {
            rows.push_back("    {" + Literal(e->name.ns) + ", " + Literal(e->name.local) + ", " +
                           (typeName ? Literal(typeName) : std::string("nullptr")) + ", " + std::to_string(classIndex) +
                           "},\n");
        };
        auto classOf = [&](const CTypeDefinition* type, const std::string& ns) {
            const auto found = m_mapped.typeClasses.find({type, ns});
            return found == m_mapped.typeClasses.end() ? -1 : found->second;
        };
        for (const CElementDeclaration* actual : candidates) {
            if (actual->abstract) continue;  // never an element of a document
            const CTypeDefinition* type = actual->type ? actual->type : anyType;
            int plain = actual == declared ? member.classIndex : classOf(type, actual->name.ns);
            if (IsAbstractType(type)) plain = -1;
            row(actual, nullptr, plain);
            const int base = classOf(type, actual->name.ns);
            if (base < 0) continue;
            // Each name xsi:type may give, first match first, as the factory looks them up.
            std::vector<std::pair<std::string, const CTypeDefinition*>> named;
            auto add = [&](const std::string& local, const CTypeDefinition* t) {
                if (local.empty()) return;
                for (const auto& n : named)
                    if (n.first == local) return;
                named.emplace_back(local, t);
            };
            const CClassDescription& baseClass = *m_mapped.classes[static_cast<std::size_t>(base)];
            add(baseClass.typeName.local, type);
            for (const int derived : baseClass.derivedClasses)
                add(m_mapped.classes[static_cast<std::size_t>(derived)]->typeName.local,
                    m_mapped.classTypes[static_cast<std::size_t>(derived)]);
            for (const auto& n : named) {
                int chosen = -1;
                const bool blocked = ((actual->block | ProhibitedBy(type)) & DerivationMethods(n.second, type)) != 0;
                if (!blocked && !IsAbstractType(n.second)) {
                    chosen = actual == declared && n.second == type ? member.classIndex : classOf(n.second, actual->name.ns);
                }
                row(actual, n.first.c_str(), chosen);
            }
        }
        return rows;
    }

    std::string SetSource() {
        std::ostringstream o;
        o << Banner() << "#include \"" << m_stem << ".h\"\n\n" << NamespaceOpen(m_setNamespace) << "\n";
        o << "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase> CreateObject(int classIndex, const char*) {\n";
        if (m_classes.empty()) {
            o << "    (void)classIndex;\n    return nullptr;\n}\n\n";
        } else {
            o << "    return QmXmlLib10::Generated::CreateByIndex<";
            for (std::size_t i = 0; i < m_classes.size(); ++i) o << (i ? ",\n        " : "") << Qualified(static_cast<int>(i));
            o << ">(classIndex);\n}\n\n";
        }
        o << "namespace {\n\n";
        // What each substitutable member's factory does, settled here from
        // the schema as the dynamic classes settle it per element.
        const auto& members = m_mapped.substitutable;
        for (std::size_t i = 0; i < members.size(); ++i) {
            o << "const QmXmlLib10::Generated::CSubstitute kSubstitutes" << i << "[] = {\n";
            const std::vector<std::string> rows = SubstituteRows(members[i]);
            for (const auto& row : rows) o << row;
            if (rows.empty()) o << "    {\"\", \"\", nullptr, -1},\n";
            o << "};\n";
        }
        o << "\n";
        if (members.empty()) {
            o << "const QmXmlLib10::Generated::CSubstitutionTable* const kSubstitutions = nullptr;\n";
        } else {
            o << "const QmXmlLib10::Generated::CSubstitutionTable kSubstitutions[] = {\n";
            for (std::size_t i = 0; i < members.size(); ++i)
                o << "    {kSubstitutes" << i << ", sizeof kSubstitutes" << i << " / sizeof kSubstitutes" << i << "[0], "
                  << members[i].classIndex << "},\n";
            o << "};\n";
        }
        o << "constexpr int kSubstitutionCount = " << members.size() << ";\n\n";
        o << "class CClassFactory final : public QmXmlLib10Data::IClassFactory {\n"
             "public:\n"
             "    constexpr CClassFactory() noexcept {}\n"
             "    QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase> CreateMember(int classIndex,\n"
             "                                                               const char* elementName) const override {\n"
             "        return CreateObject(classIndex, elementName);\n"
             "    }\n"
             "    QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase> CreateForElement(int index,\n"
             "                                                                   QmXmlLib10::CXmlElement* element) const override {\n"
             "        if (index < 0 || index >= kSubstitutionCount) return nullptr;\n"
             "        return QmXmlLib10::Generated::CreateSubstitute(element, kSubstitutions[index], &CreateObject);\n"
             "    }\n"
             "};\n"
             "constexpr CClassFactory kClassFactory;\n\n";
        std::vector<std::string> rows;
        for (const auto& root : m_mapped.roots) {
            const auto member = m_mapped.rootMembers.find(root.first);
            rows.push_back("    {" + Literal(root.first.first) + ", " + Literal(root.first.second) + ", " +
                           std::to_string(root.second) + ", " +
                           std::to_string(member == m_mapped.rootMembers.end() ? -1 : member->second) + "},\n");
        }
        if (rows.empty()) {
            o << "const QmXmlLib10::Generated::CRootElement* const kRoots = nullptr;\nconstexpr std::size_t kRootCount = 0;\n";
        } else {
            o << "const QmXmlLib10::Generated::CRootElement kRoots[] = {\n";
            for (const auto& row : rows) o << row;
            o << "};\nconstexpr std::size_t kRootCount = sizeof kRoots / sizeof kRoots[0];\n";
        }
        const std::string attributeRows = GlobalAttributeRows();
        o << RuleConstants(kSetRules);
        if (attributeRows.empty()) {
            o << "const QmXmlLib10::Generated::CGlobalAttributeRow* const kGlobalAttributes = nullptr;\n"
                 "constexpr std::size_t kGlobalAttributeCount = 0;\n";
        } else {
            o << "const QmXmlLib10::Generated::CGlobalAttributeRow kGlobalAttributes[] = {\n" << attributeRows
              << "};\nconstexpr std::size_t kGlobalAttributeCount = sizeof kGlobalAttributes / sizeof kGlobalAttributes[0];\n";
        }
        o << "constexpr bool kCheckIdentifiers = " << (m_mapped.usesIds ? "true" : "false") << ";\n";
        o << "const QmXmlLib10::Generated::CGeneratedDeclarations kDeclarations(kRoots, kRootCount, kClassFactory,\n"
             "                                                                  kGlobalAttributes, kGlobalAttributeCount,\n"
             "                                                                  kCheckIdentifiers);\n";
        o << "\n}  // namespace\n\n";
        o << "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> CreateRootObject(const std::string& ns,\n"
             "                                                                    const std::string& localName) {\n"
             "    return QmXmlLib10::Generated::CreateRootElement(kRoots, kRootCount, kClassFactory, ns, localName);\n}\n\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> ReadFile(const std::string& path,\n"
             "                                                            const QmXmlLib10::CXmlSerializationContext& ctx) {\n"
             "    return QmXmlLib10::Generated::ReadRootFile(kRoots, kRootCount, kClassFactory, path, ctx,\n"
             "                                              kCheckIdentifiers);\n}\n\n"
             "QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlGeneratedClass> ReadBuffer(const void* data, std::size_t size,\n"
             "                                                              const QmXmlLib10::CXmlSerializationContext& ctx) {\n"
             "    return QmXmlLib10::Generated::ReadRootBuffer(kRoots, kRootCount, kClassFactory, data, size, ctx,\n"
             "                                                kCheckIdentifiers);\n}\n\n";
        o << "const QmXmlLib10Data::IClassFactory* ClassFactory() { return &kClassFactory; }\n\n";
        o << "const QmXmlLib10::Generated::IGlobalDeclarations* GlobalDeclarations() { return &kDeclarations; }\n\n";
        o << "void CleanMetaData() {\n";
        if (!m_classes.empty()) {
            o << "    QmXmlLib10::Generated::CleanClassMetaData<";
            for (std::size_t i = 0; i < m_classes.size(); ++i) o << (i ? ",\n        " : "") << Qualified(static_cast<int>(i));
            o << ">();\n";
        }
        o << "}\n\n" << NamespaceClose(m_setNamespace);
        return o.str();
    }

    const CSchemaSet& m_set;
    const EmitOptions& m_options;
    CMappedSet m_mapped;
    std::map<std::string, std::string> m_namespaces;  // URI -> C++ namespace
    std::vector<std::string> m_namespaceOrder;
    std::string m_setNamespace;
    std::string m_stem;
    std::vector<ClassOut> m_classes;
    std::map<std::string, std::map<std::string, std::string>> m_rules;  // ns -> code -> constant
    std::map<std::string, std::vector<std::string>> m_ruleOrder;
};

}  // namespace

std::string DefaultNamespaceName(const std::string& uri) {
    if (uri.empty()) return "no_namespace";
    std::string rest = uri;
    const std::size_t scheme = rest.find("://");
    if (scheme != std::string::npos) {
        rest = rest.substr(scheme + 3);
    } else if (rest.compare(0, 4, "urn:") == 0) {
        rest = rest.substr(4);
    }
    std::string name = Identifier(rest);
    if (IsKeyword(name)) name += "_ns";
    return name;
}

std::vector<EmittedFile> EmitCpp(const CSchemaSet& set, const EmitOptions& options) {
    return Emitter(set, options).Run();
}

}  // namespace codegen
}  // namespace qmxml_tool
