// The lexical spaces of XML Schema's primitive types (CSimpleTypeRule checks
// everything else a simple type asks of a literal). Internal to the runtime
// and the schema layer.
#pragma once

#include <string>

#include "qmxml/types/simple_type_rule.h"

namespace QmXmlLib10 {

class CDateTime;

namespace Xsd {

using Primitive = XsdPrimitive;
using WhiteSpace = XsdWhiteSpace;

// The text after the type's whitespace handling.
std::string NormalizeWhiteSpace(const std::string& text, WhiteSpace whiteSpace);

// True when text (already normalized) is in the lexical space of the
// primitive as XML Schema 1.0 defines it, stricter than the runtime's
// conversions where those are lenient (signs, exponents, letter case, zones
// beyond 14:00, base64 padding). Dates with years beyond the runtime's four
// digits are valid here; see ParseDateLiteral.
bool IsPrimitiveLiteral(Primitive primitive, const std::string& text);

// The same for a text the runtime's conversion of the primitive's item type
// has already taken: what that conversion checked (the fields of a date, a
// duration, hex digits) is not checked again.
bool IsPrimitiveShape(Primitive primitive, const std::string& text);

// The date value of a valid literal of one of the nine date and time
// primitives, "24:00:00" read as the next day's midnight. False when the
// runtime cannot hold it (a year of more than four digits) or the literal is
// not valid.
bool ParseDateLiteral(Primitive primitive, const std::string& text, CDateTime& value);

// The canonical form of a valid decimal literal: no '+', no leading zeros
// but one before the point, no trailing fraction zeros, no point without a
// fraction, "0" for every zero ("-00.50" is "-0.5").
std::string CanonicalDecimal(const std::string& text);
// Compares two optionally signed decimal literals by value: <0, 0 or >0.
// Both must be valid decimal literals.
int CompareDecimals(const std::string& a, const std::string& b);
// The same for two canonical forms.
int CompareCanonicalDecimals(const std::string& a, const std::string& b);
// An optional sign and digits, with one optional point when allowPoint (at
// least one digit on either side).
bool IsDecimalLiteral(const std::string& text, bool allowPoint);
// An XML 1.0 name without a colon.
bool IsNCNameLiteral(const std::string& text);

}  // namespace Xsd
}  // namespace QmXmlLib10
