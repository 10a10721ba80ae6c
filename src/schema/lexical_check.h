// The lexical checks of XML Schema's primitive types live in the runtime
// (CSimpleTypeRule runs them for generated classes too); the schema layer
// names them in its own namespace, and adds what needs the model. Internal.
#pragma once

#include <string>

#include "qmxml/schema/simple_type.h"
#include "types/xsd_lexical.h"

namespace QmXmlLib10 {
namespace Schema {

using Primitive = XsdPrimitive;
using Xsd::CanonicalDecimal;
using Xsd::CompareCanonicalDecimals;
using Xsd::CompareDecimals;
using Xsd::IsDecimalLiteral;
using Xsd::IsNCNameLiteral;
using Xsd::IsPrimitiveLiteral;
using Xsd::IsPrimitiveShape;
using Xsd::NormalizeWhiteSpace;
using Xsd::ParseDateLiteral;

// The primitive an atomic type derives from (AnySimple for anySimpleType,
// lists, unions and null).
Primitive PrimitiveOf(const CSimpleType* type);

}  // namespace Schema
}  // namespace QmXmlLib10
