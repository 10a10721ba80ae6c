// XSD pattern facets on PCRE2: translation, the process-wide cache of compiled
// patterns and matching with bounded work. Internal to the library;
// CPrimitiveRestrictions::MatchesPattern is the public face.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace QmXmlLib10 {
namespace patterns {

// The PCRE2 source for a UTF-8 XSD pattern, anchored as ^(?: ... )$. What XML
// Schema's grammar rules out and PCRE2 would read another way (a stray '-'
// or '[' in brackets, an empty class, '{' that starts no quantifier) throws
// CQmException with the reason, which compiling reports like PCRE2's errors.
std::string Translate(const std::string& utf8Pattern);

// Both take local-encoding text and give the same results; the first compiles
// each pattern once per process, the second every time (it exists for
// measuring the cache).
bool Match(const std::string& value, const std::string& xsdPattern);
bool MatchUncached(const std::string& value, const std::string& xsdPattern);

// A cache entry: a pattern compiled from UTF-8 text, or why it did not compile.
struct Compiled;

// The entry for a pattern taken as UTF-8 text. Holding it lets a caller that
// matches the same pattern often skip the cache lookup.
std::shared_ptr<const Compiled> LookupUtf8(const std::string& utf8Pattern);
// Match with the entry LookupUtf8 gave for xsdPattern's own text: the same
// result and errors as Match(value, xsdPattern) while the local encoding is
// UTF-8 (otherwise it is Match).
bool MatchPrepared(const Compiled& compiled, const std::string& value, const std::string& xsdPattern);

// Number of patterns (and compile failures) the cache holds.
std::size_t CachedCount();

}  // namespace patterns
}  // namespace QmXmlLib10
