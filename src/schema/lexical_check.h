// Whether a text is a valid literal of a simple type, as far as the loader
// needs it for facet values and value constraints. Internal.
#pragma once

#include <string>

#include "qmxml/schema/simple_type.h"

namespace QmXmlLib10 {
namespace Schema {

// The text after the type's whitespace handling.
std::string NormalizeWhiteSpace(const std::string& text, WhiteSpace whiteSpace);

// Checks the lexical form against the primitive type, the built-in integer
// bounds, every pattern along the derivation chain and, for string-like
// types, the enumeration. Lists check each item, unions accept a literal any
// member accepts. Bounds of user types are not compared (that needs value
// comparisons the runtime's conversions provide later). depth guards
// unions of lists of unions.
bool IsValidLiteral(const CSimpleType* type, const std::string& text, int depth = 0);

// Compares two optionally signed decimal literals by value: <0, 0 or >0.
// Both must be valid decimal literals.
int CompareDecimals(const std::string& a, const std::string& b);
bool IsDecimalLiteral(const std::string& text, bool allowPoint);
bool IsNCNameLiteral(const std::string& text);

}  // namespace Schema
}  // namespace QmXmlLib10
