// The indexed tables of a Fast Infoset document: strings and qualified names
// that a document may refer to by index instead of writing them again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace QmXmlLib10 {

class CFastInfosetContext;

// A qualified name as three indexes into the prefix, namespace-name and
// local-name tables; 0 means no prefix or no namespace.
struct CQNameParts {
    std::uint32_t prefixIndex = 0;
    std::uint32_t namespaceIndex = 0;
    std::uint32_t localNameIndex = 0;

    friend bool operator==(const CQNameParts& a, const CQNameParts& b) {
        return a.prefixIndex == b.prefixIndex && a.namespaceIndex == b.namespaceIndex &&
               a.localNameIndex == b.localNameIndex;
    }
};

namespace fi_detail {

// A hash of the bytes, word by word and inline: names and short values are
// hashed once per element written, where a library call's set-up dominates.
inline std::size_t HashBytes(std::string_view bytes) {
    const char* p = bytes.data();
    std::size_t n = bytes.size();
    std::uint64_t h = 0x9E3779B97F4A7C15ull ^ n;
    for (; n >= 8; p += 8, n -= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        h = (h ^ word) * 0xFF51AFD7ED558CCDull;
        h ^= h >> 32;
    }
    if (n > 0) {
        // The last one to seven bytes, read as two overlapping halves or three
        // single bytes; with the length already mixed in, no two tails agree.
        std::uint64_t word;
        if (n >= 4) {
            std::uint32_t first, last;
            std::memcpy(&first, p, 4);
            std::memcpy(&last, p + n - 4, 4);
            word = (std::uint64_t{first} << 32) | last;
        } else {
            word = (std::uint64_t{static_cast<unsigned char>(p[0])} << 16) |
                   (std::uint64_t{static_cast<unsigned char>(p[n / 2])} << 8) | static_cast<unsigned char>(p[n - 1]);
        }
        h = (h ^ word) * 0xC4CEB9FE1A85EC53ull;
    }
    h ^= h >> 29;
    return static_cast<std::size_t>(h);
}

// Equality of two byte strings, inline for the short ones that names and
// indexed values are.
inline bool EqualBytes(std::string_view a, std::string_view b) {
    const std::size_t n = a.size();
    if (n != b.size()) return false;
    if (n > 16) return std::memcmp(a.data(), b.data(), n) == 0;
    if (n >= 8) {
        std::uint64_t a1, a2, b1, b2;
        std::memcpy(&a1, a.data(), 8);
        std::memcpy(&b1, b.data(), 8);
        std::memcpy(&a2, a.data() + n - 8, 8);
        std::memcpy(&b2, b.data() + n - 8, 8);
        return ((a1 ^ b1) | (a2 ^ b2)) == 0;
    }
    if (n >= 4) {
        std::uint32_t a1, a2, b1, b2;
        std::memcpy(&a1, a.data(), 4);
        std::memcpy(&b1, b.data(), 4);
        std::memcpy(&a2, a.data() + n - 4, 4);
        std::memcpy(&b2, b.data() + n - 4, 4);
        return ((a1 ^ b1) | (a2 ^ b2)) == 0;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

// Finds the index of an entry held elsewhere (a string or a qualified name)
// from a hash of its content: open addressing over indexes, never over
// copies, so that a copied table keeps a valid index and a look-up by
// std::string_view allocates nothing (C++17's unordered containers cannot
// look a std::string key up by view). The caller's equality test confirms
// a candidate; an index is inserted only while no equal entry is present.
class CHashIndex {
public:
    // The index whose entry equals the looked-up one, or 0.
    template <class Equals>
    std::uint32_t Find(std::size_t hash, const Equals& equals) const {
        if (m_slots.empty()) return 0;
        const std::size_t mask = m_slots.size() - 1;
        const auto h = static_cast<std::uint32_t>(hash);
        for (std::size_t i = h & mask;; i = (i + 1) & mask) {
            const Slot& slot = m_slots[i];
            if (slot.index == 0) return 0;
            if (slot.hash == h && equals(slot.index)) return slot.index;
        }
    }
    void Insert(std::size_t hash, std::uint32_t index);

private:
    struct Slot {
        std::uint32_t index;  // 0: empty
        std::uint32_t hash;
    };
    void Place(Slot slot);
    // Slots are a power of two and at most half full, so a probe always ends.
    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
};

}  // namespace fi_detail

// An ordered list of strings; entry i (from 1) is the string with index i.
class CFIStringTable {
public:
    std::uint32_t GetCount() const { return static_cast<std::uint32_t>(m_strings.size()); }
    // The string of index 1 .. GetCount(); null outside.
    const std::string* GetAt(std::uint32_t index) const {
        return index >= 1 && index <= m_strings.size() ? &m_strings[index - 1] : nullptr;
    }
    const std::vector<std::string>& GetStrings() const { return m_strings; }
    // True and the index when the string is in the table (its first index,
    // should it have been added twice).
    bool Find(std::string_view value, std::uint32_t& index) const { return Find(value, Hash(value), index); }
    // The same with the string's Hash, for a caller that may add the string next.
    bool Find(std::string_view value, std::size_t hash, std::uint32_t& index) const {
        const std::uint32_t found =
            m_index.Find(hash, [&](std::uint32_t i) { return fi_detail::EqualBytes(m_strings[i - 1], value); });
        if (found == 0) return false;
        index = found;
        return true;
    }
    static std::size_t Hash(std::string_view value) { return fi_detail::HashBytes(value); }

private:
    friend class CFIVocabulary;
    std::vector<std::string> m_strings;
    fi_detail::CHashIndex m_index;
};

// Element or attribute names: each name's parts in index order, and an index
// from the name (prefix, namespace, local name) to its number.
class CFIQNameTable {
public:
    std::uint32_t GetCount() const { return static_cast<std::uint32_t>(m_names.size()); }
    // The parts of index 1 .. GetCount(); null outside.
    const CQNameParts* GetAt(std::uint32_t index) const {
        return index >= 1 && index <= m_names.size() ? &m_names[index - 1] : nullptr;
    }
    const std::vector<CQNameParts>& GetNames() const { return m_names; }
    // True and the index when the name (prefix, namespace, local name) is in the table.
    bool Find(std::string_view prefix, std::string_view namespaceURI, std::string_view localName,
              std::uint32_t& index) const {
        const std::uint32_t found = m_index.Find(Hash(prefix, namespaceURI, localName), [&](std::uint32_t i) {
            const Key& key = m_keys[i - 1];
            return fi_detail::EqualBytes(key.localName, localName) &&
                   fi_detail::EqualBytes(key.namespaceURI, namespaceURI) && fi_detail::EqualBytes(key.prefix, prefix);
        });
        if (found == 0) return false;
        index = found;
        return true;
    }

private:
    friend class CFIVocabulary;
    struct Key {
        std::string prefix;
        std::string namespaceURI;
        std::string localName;
    };
    static std::size_t Hash(std::string_view prefix, std::string_view namespaceURI, std::string_view localName) {
        std::size_t h = fi_detail::HashBytes(localName);
        if (!namespaceURI.empty()) h = h * 31 + fi_detail::HashBytes(namespaceURI);
        return prefix.empty() ? h : h * 31 + fi_detail::HashBytes(prefix);
    }
    std::vector<CQNameParts> m_names;
    std::vector<Key> m_keys;  // the name of each index, for confirming a hash match
    fi_detail::CHashIndex m_index;
};

// The vocabulary of one document. Starts with the built-in entries: prefix
// "xml" and namespace "http://www.w3.org/XML/1998/namespace" at index 1, and
// the restricted alphabets 1 "0123456789-+.e " and 2 "0123456789-:TZ ".
//
// Strings get the next index, counting from 1. Callers look a string up
// before adding it, so a string never has two indexes (one added twice is
// found at its first). An empty string is
// never added, and no table grows past MaxIndex entries: the Add operations
// return the new index, or 0 when nothing was added.
class CFIVocabulary {
public:
    static constexpr std::uint32_t MaxIndex = 1u << 20;
    static constexpr const char* NumericAlphabet = "0123456789-+.e ";
    static constexpr const char* DateTimeAlphabet = "0123456789-:TZ ";

    CFIVocabulary();
    virtual ~CFIVocabulary();
    CFIVocabulary& operator=(const CFIVocabulary& other);

    // Alphabet n (from 1) is entry n - 1.
    const std::vector<std::string>& GetRestrictedAlphabets() const { return m_restrictedAlphabets; }

    const CFIQNameTable& GetAttributeNamesTable() const { return m_attributeNames; }
    const CFIQNameTable& GetElementNamesTable() const { return m_elementNames; }
    const CFIStringTable& GetAttributeValuesTable() const { return m_attributeValues; }
    const CFIStringTable& GetCharacterChunksTable() const { return m_characterChunks; }
    const CFIStringTable& GetLocalNamesTable() const { return m_localNames; }
    const CFIStringTable& GetNamespaceNamesTable() const { return m_namespaceNames; }
    const CFIStringTable& GetPrefixNamesTable() const { return m_prefixNames; }

    // Adds the name, adding its parts to their tables where missing. A
    // prefix is recorded only with a namespace.
    std::uint32_t AddAttribute(std::string_view prefix, std::string_view namespaceURI, std::string_view localName);
    std::uint32_t AddElement(std::string_view prefix, std::string_view namespaceURI, std::string_view localName);
    std::uint32_t AddAttributeValue(std::string_view value);
    std::uint32_t AddElementValue(std::string_view value);
    std::uint32_t AddPrefixName(std::string_view name);
    std::uint32_t AddNamespaceName(std::string_view uri);
    std::uint32_t AddLocalName(std::string_view name);

    // Look-ups: true and the index when present.
    bool FindAttributeValueIndex(std::string_view value, std::uint32_t& index) const {
        return m_attributeValues.Find(value, index);
    }
    bool FindElementValueIndex(std::string_view value, std::uint32_t& index) const {
        return m_characterChunks.Find(value, index);
    }
    bool FindPrefixNameIndex(std::string_view name, std::uint32_t& index) const {
        return m_prefixNames.Find(name, index);
    }
    bool FindNamespaceNameIndex(std::string_view uri, std::uint32_t& index) const {
        return m_namespaceNames.Find(uri, index);
    }
    bool FindLocalNameIndex(std::string_view name, std::uint32_t& index) const {
        return m_localNames.Find(name, index);
    }

private:
    // The context holds a vocabulary by value and copies it with itself.
    friend class CFastInfosetContext;
    // The writer adds values it has just looked up in vain through AddNewString.
    friend class CFastInfosetWriter;
    CFIVocabulary(const CFIVocabulary& other);

    std::uint32_t AddQName(std::string_view prefix, std::string_view namespaceURI, std::string_view localName,
                           CFIQNameTable& table);
    static std::uint32_t AddString(std::string_view value, CFIStringTable& table);
    // Adds a non-empty string known to be absent, given its CFIStringTable::Hash;
    // 0 when the table is full.
    static std::uint32_t AddNewString(std::string_view value, std::size_t hash, CFIStringTable& table);
    // The string's index, adding it when absent; 0 for an empty string or a full table.
    static std::uint32_t FindOrAddString(std::string_view value, CFIStringTable& table);

    std::vector<std::string> m_restrictedAlphabets;
    CFIQNameTable m_elementNames;
    CFIQNameTable m_attributeNames;
    CFIStringTable m_prefixNames;
    CFIStringTable m_namespaceNames;
    CFIStringTable m_localNames;
    CFIStringTable m_attributeValues;
    CFIStringTable m_characterChunks;
};

}  // namespace QmXmlLib10
