#include "value_rule.h"

namespace QmXmlLib10 {
namespace Schema {

ItemType BindingItemType(const CSimpleType* type) {
    if (type == nullptr || type->variety != CSimpleType::Variety::Atomic) return ItemType_string;
    return type->runtimeType == ItemType_None ? ItemType_string : type->runtimeType;
}

CWhitespaceUtils::WhitespaceRule BindingWhitespaceRule(const CSimpleType* type) {
    if (type == nullptr) return CWhitespaceUtils::WhitespaceRule_Preserve;
    switch (type->whiteSpace) {
        case WhiteSpace::Preserve: return CWhitespaceUtils::WhitespaceRule_Preserve;
        case WhiteSpace::Replace: return CWhitespaceUtils::WhitespaceRule_Replace;
        default: return CWhitespaceUtils::WhitespaceRule_Collapse;
    }
}

CPrimitiveRestrictions BindingFacets(const CSimpleType* type) {
    CPrimitiveRestrictions facets;
    if (type == nullptr || type->variety != CSimpleType::Variety::Atomic) return facets;
    const CFacets& f = type->facets;
    if (f.patterns.size() == 1 && f.patterns[0].size() == 1) facets.SetPattern(f.patterns[0][0]);
    if (f.minInclusive) facets.SetMinInclusive(f.minInclusive->value);
    if (f.maxInclusive) facets.SetMaxInclusive(f.maxInclusive->value);
    if (f.minExclusive) facets.SetMinExclusive(f.minExclusive->value);
    if (f.maxExclusive) facets.SetMaxExclusive(f.maxExclusive->value);
    return facets;
}

std::shared_ptr<const CValueRule> MakeValueRule(const CSimpleType*, const CValueConstraint*) { return nullptr; }

}  // namespace Schema
}  // namespace QmXmlLib10
