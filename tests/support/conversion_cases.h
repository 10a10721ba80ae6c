// Short names and expected messages shared by the value conversion tests.
#pragma once

#include <qmxml/types/whitespace.h>

#include <string>

namespace qmxml_test {

constexpr auto kNone = QmXmlLib10::CWhitespaceUtils::WhitespaceRule_None;
constexpr auto kPreserve = QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kReplace = QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Replace;
constexpr auto kCollapse = QmXmlLib10::CWhitespaceUtils::WhitespaceRule_Collapse;

// What the decimal parser says about the first character it cannot take.
inline std::string InvalidChar(int position, const std::string& text) {
    return "The string representing a Decimal, contained an invalid char at position " + std::to_string(position) +
           " [" + text + "]";
}

}  // namespace qmxml_test
