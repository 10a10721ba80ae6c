#include "schema/value_rule.h"

#include <unordered_map>

#include "schema/lexical_check.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

// Unions of lists of unions nest as deep as the schema writes them; the model
// cannot cycle, but the description never follows more levels than this
// (the rule refuses what lies deeper).
constexpr int kMaxDepth = 32;

bool DerivesFromBuiltIn(const CSimpleType* type, const char* local) {
    // Restriction steps only: a list's or union's base is anySimpleType.
    const CTypeDefinition* t = type;
    for (int steps = 0; t != nullptr && steps < 1000; ++steps) {
        if (t->builtIn && t->name.local == local) return true;
        if (t->baseType == t || !t->baseType || !t->baseType->IsSimple()) break;
        t = t->baseType;
    }
    return false;
}

// The whitespace handling a value gets before its type sees it. A union has
// none of its own: each member normalizes the text its own way, so the text
// is only normalized as far as the weakest member would ("a\n" stays apart
// from "a" for a normalizedString member even when an int member comes first).
WhiteSpace ValueWhiteSpace(const CSimpleType* type, int depth = 0) {
    if (type == nullptr) return WhiteSpace::Preserve;
    if (type->variety != CSimpleType::Variety::Union) return type->whiteSpace;
    if (depth > kMaxDepth) return WhiteSpace::Preserve;
    WhiteSpace weakest = WhiteSpace::Collapse;
    for (const CSimpleType* member : type->memberTypes) {
        const WhiteSpace ws = ValueWhiteSpace(member, depth + 1);
        if (static_cast<int>(ws) < static_cast<int>(weakest)) weakest = ws;
    }
    return weakest;
}

template <class T>
std::optional<T> FacetOf(const std::optional<CFacetValue<T>>& facet) {
    return facet ? std::optional<T>(facet->value) : std::nullopt;
}

// Fills the description's entries in the order the rule reads them: the type
// first, then its item or members, each type once.
int Describe(const CSimpleType* type, int depth, std::unordered_map<const CSimpleType*, int>& memo,
             std::vector<CSimpleTypeCheck>& out) {
    const auto found = memo.find(type);
    if (found != memo.end()) return found->second;
    const int index = static_cast<int>(out.size());
    out.emplace_back();
    memo[type] = index;
    CSimpleTypeCheck c;
    if (depth > kMaxDepth) {
        c.refuse = true;
        out[static_cast<std::size_t>(index)] = std::move(c);
        return index;
    }
    if (type == nullptr) return index;
    const CFacets& f = type->facets;
    c.variety = static_cast<XsdVariety>(static_cast<int>(type->variety));
    c.whiteSpace = ValueWhiteSpace(type);
    c.patterns = f.patterns;
    c.enumeration = f.enumeration;
    c.length = FacetOf(f.length);
    c.minLength = FacetOf(f.minLength);
    c.maxLength = FacetOf(f.maxLength);
    switch (type->variety) {
        case CSimpleType::Variety::Atomic:
            c.primitive = PrimitiveOf(type);
            c.runtimeType = type->runtimeType;
            c.integerForm = DerivesFromBuiltIn(type, "integer");
            c.ncname = DerivesFromBuiltIn(type, "NCName");
            c.minInclusive = FacetOf(f.minInclusive);
            c.maxInclusive = FacetOf(f.maxInclusive);
            c.minExclusive = FacetOf(f.minExclusive);
            c.maxExclusive = FacetOf(f.maxExclusive);
            c.totalDigits = FacetOf(f.totalDigits);
            c.fractionDigits = FacetOf(f.fractionDigits);
            break;
        case CSimpleType::Variety::List:
            c.item = Describe(type->itemType, depth + 1, memo, out);
            break;
        case CSimpleType::Variety::Union:
            for (const CSimpleType* member : type->memberTypes) c.members.push_back(Describe(member, depth + 1, memo, out));
            break;
        default: break;
    }
    out[static_cast<std::size_t>(index)] = std::move(c);
    return index;
}

}  // namespace

CSimpleTypeDescription DescribeSimpleType(const CSimpleType* type, const CValueConstraint* fixed) {
    CSimpleTypeDescription d;
    if (type != nullptr) {
        std::unordered_map<const CSimpleType*, int> memo;
        Describe(type, 0, memo, d.types);
    }
    if (fixed != nullptr && fixed->kind == CValueConstraint::Fixed) d.fixed = fixed->value;
    // Values written or set are checked by their canonical form, which for
    // these built-in types every value of the runtime's type has: the
    // conversion on reading was the only lenient step. (Dates and durations
    // are left out: the runtime holds zones and fields beyond XML Schema's
    // ranges.)
    static const char* const kExactTypes[] = {"string",  "boolean",      "decimal",     "integer",       "long",
                                              "int",     "short",        "byte",        "unsignedLong",  "unsignedInt",
                                              "unsignedShort", "unsignedByte", "double", "float",        "hexBinary",
                                              "base64Binary"};
    if (type != nullptr && type->builtIn && type->name.ns == "http://www.w3.org/2001/XMLSchema") {
        for (const char* name : kExactTypes) {
            if (type->name.local == name) d.valuesAlwaysValid = true;
        }
    }
    return d;
}

ItemType BindingItemType(const CSimpleType* type) {
    if (type == nullptr || type->variety != CSimpleType::Variety::Atomic) return ItemType_string;
    return type->runtimeType;
}

CWhitespaceUtils::WhitespaceRule BindingWhitespaceRule(const CSimpleType* type) {
    switch (ValueWhiteSpace(type)) {
        // The parser has normalized line ends already; a carriage return still
        // in the text came from a character reference and stays, as in XML Schema.
        case WhiteSpace::Preserve: return CWhitespaceUtils::WhitespaceRule_None;
        case WhiteSpace::Replace: return CWhitespaceUtils::WhitespaceRule_Replace;
        default: return CWhitespaceUtils::WhitespaceRule_Collapse;
    }
}

CPrimitiveRestrictions BindingFacets(const CSimpleType*) { return CPrimitiveRestrictions(); }

std::shared_ptr<const CValueRule> MakeValueRule(const CSimpleType* type, const CValueConstraint* fixed) {
    return CSimpleTypeRule::Make(DescribeSimpleType(type, fixed));
}

}  // namespace Schema
}  // namespace QmXmlLib10
