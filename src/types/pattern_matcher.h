// XSD pattern facets on PCRE2: translation, the process-wide cache of compiled
// patterns and matching with bounded work. Internal to the library;
// CPrimitiveRestrictions::MatchesPattern is the public face.
#pragma once

#include <cstddef>
#include <string>

namespace QmXmlLib10 {
namespace patterns {

// The PCRE2 source for a UTF-8 XSD pattern, anchored as ^(?: ... )$.
std::string Translate(const std::string& utf8Pattern);

// Both take local-encoding text and give the same results; the first compiles
// each pattern once per process, the second every time (it exists for
// measuring the cache).
bool Match(const std::string& value, const std::string& xsdPattern);
bool MatchUncached(const std::string& value, const std::string& xsdPattern);

// Number of patterns (and compile failures) the cache holds.
std::size_t CachedCount();

}  // namespace patterns
}  // namespace QmXmlLib10
