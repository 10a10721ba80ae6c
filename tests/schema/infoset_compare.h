// Comparing two XML documents as infosets, for the round-trip check of the
// W3C suite runner: did writing a bound object back keep what the original
// document said?
//
// Both documents are parsed here with Expat directly, not with the library's
// loader, so that a fault of the loader cannot hide itself in both trees, and
// so that text between child elements keeps its place (the library's tree
// joins it).
#pragma once

#include <string>

namespace QmXmlLib10 {
namespace Schema {
class CSchemaSet;
}
}  // namespace QmXmlLib10

namespace qmxml_w3c {

// Returns "" when the two documents carry the same infoset, else the first
// difference found walking down from the root (an element's name, type,
// attributes and the sequence of its content before anything inside its
// children), one of:
//   "The original does not parse: <Expat's message> at line N" (or "The copy ...")
//   "Element names differ at [path]: [{ns}a] against [{ns}b]"
//   "Missing element [{ns}a] at [path]"        (in the original only)
//   "Extra element [{ns}a] at [path]"          (in the copy only)
//   "Types differ at [path]: [{ns}T] against [{ns}U]"   (xsi:type, or the declared type)
//   "Missing attribute [{ns}a] at [path]"
//   "Extra attribute [{ns}a] at [path]"
//   "Attribute [{ns}a] differs at [path]: [value] against [value]"
//   "Text differs at [path]: [text] against [text]"
// Paths name elements by local name from the root, with [n] for the n-th of
// several siblings of one name ("/order/line[2]"); values are the original's
// first, the copy's second, with tabs, line feeds and carriage returns shown
// as "&#9;", "&#10;" and "&#13;".
//
// What does not count as a difference: attribute order, namespace prefixes
// and declarations, xsi:schemaLocation and xsi:noNamespaceSchemaLocation,
// whitespace-only text between elements, and, with a schema set:
//  - values of simple-content elements and attributes that differ only
//    lexically in the value space of their type ("1.0" and "1" as decimals,
//    "true" and "1" as booleans, QNames under other prefixes, whitespace as
//    the type's whiteSpace facet treats it, list items one by one, a union's
//    value under any member type);
//  - an attribute present on one side only whose value is the default or
//    fixed value of its declaration, and an empty element on one side whose
//    declaration gives the other side's text as its default;
//  - an xsi:type on one side only that names the declared type;
//  - the order of the element children of an element whose content model is
//    an all group (the copy's are matched to the original's name by name).
// Without a schema set values compare exactly.
std::string CompareInfosets(const std::string& original, const std::string& copy,
                            const QmXmlLib10::Schema::CSchemaSet* schemas);

}  // namespace qmxml_w3c
