// The model as text, for people: what `qmxml schema S.xsd` prints.
#pragma once

#include <string>

#include "qmxml/schema/schema_set.h"

namespace QmXmlLib10 {
namespace Schema {

// Prints the user's global components of the set: each type with its base,
// derivation and content, its members (elements, wildcards and groups with
// their kind and cardinality, attributes with use and type), facets and
// value constraints; then global elements, attributes, groups, attribute
// groups and notations. One item per line, nesting shown by two spaces per
// level. Output for the same set is always the same.
std::string PrintSchemaSet(const CSchemaSet& set);

}  // namespace Schema
}  // namespace QmXmlLib10
