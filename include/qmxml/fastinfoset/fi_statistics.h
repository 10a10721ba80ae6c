// What loading a Fast Infoset document found about its vocabulary.
#pragma once

#include <cstdint>

namespace QmXmlLib10 {

// The number of entries each table of the document's vocabulary ended up
// with once the whole document was read: the entries the reader started
// from (the built-in prefix "xml", its namespace and the two restricted
// alphabets, plus the context's vocabulary when the generated vocabulary is
// in use) and every entry the document added. Tables whose strings the
// reader counts but does not keep (other NCNames, other URIs, other strings)
// count their additions only.
struct CFastInfosetStatistics {
    std::uint32_t elementNames = 0;
    std::uint32_t attributeNames = 0;
    std::uint32_t prefixes = 0;
    std::uint32_t namespaceNames = 0;
    std::uint32_t localNames = 0;
    std::uint32_t otherNCNames = 0;
    std::uint32_t otherURIs = 0;
    std::uint32_t attributeValues = 0;
    std::uint32_t characterChunks = 0;
    std::uint32_t otherStrings = 0;
    std::uint32_t restrictedAlphabets = 0;
};

}  // namespace QmXmlLib10
