// Constraining facets of a simple type.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qmxml/types/simple_type_rule.h"

namespace QmXmlLib10 {
namespace Schema {

// XML Schema's whiteSpace facet values (the runtime's, which checks values).
using WhiteSpace = XsdWhiteSpace;

// A facet value with its {fixed} property.
template <typename T>
struct CFacetValue {
    T value{};
    bool fixed = false;
};

// The facets of a simple type. On CSimpleType::facets they are merged along
// the derivation chain (a restriction's facet replaces its base's, patterns
// accumulate one group per derivation step, enumerations are replaced as a
// whole); CSimpleType::ownFacets holds the ones written on the type itself.
// Bounds are kept as their lexical text: comparing them needs the value space
// of the primitive type, which the runtime's conversions provide.
struct CFacets {
    std::optional<CFacetValue<unsigned long long>> length;
    std::optional<CFacetValue<unsigned long long>> minLength;
    std::optional<CFacetValue<unsigned long long>> maxLength;
    // One entry per derivation step with patterns: a value must match one
    // pattern of every step.
    std::vector<std::vector<std::string>> patterns;
    // Empty when the type has no enumeration facet.
    std::vector<std::string> enumeration;
    std::optional<CFacetValue<WhiteSpace>> whiteSpace;
    std::optional<CFacetValue<std::string>> maxInclusive;
    std::optional<CFacetValue<std::string>> maxExclusive;
    std::optional<CFacetValue<std::string>> minInclusive;
    std::optional<CFacetValue<std::string>> minExclusive;
    std::optional<CFacetValue<unsigned long long>> totalDigits;
    std::optional<CFacetValue<unsigned long long>> fractionDigits;

    bool IsEmpty() const noexcept;
};

}  // namespace Schema
}  // namespace QmXmlLib10
