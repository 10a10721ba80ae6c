// Applying a whitespace rule without copying a text that already obeys it.
// Internal to the value conversions.
#pragma once

#include <string>
#include <string_view>

#include <qmxml/types/whitespace.h>

namespace QmXmlLib10 {
namespace whitespace {

// Whether CWhitespaceUtils::ApplyRule(rule, text) would give a text other
// than the input; true for an unknown rule, so that ApplyRule reports it.
bool RuleChanges(CWhitespaceUtils::WhitespaceRule rule, std::string_view text) noexcept;

// The text after the rule: the input itself when the rule leaves it as it is
// (almost always), otherwise the rebuilt text held in storage.
inline const std::string& Ruled(const std::string& text, CWhitespaceUtils::WhitespaceRule rule,
                                std::string& storage) {
    if (!RuleChanges(rule, text)) return text;
    storage = CWhitespaceUtils::ApplyRule(rule, text);
    return storage;
}

}  // namespace whitespace
}  // namespace QmXmlLib10
