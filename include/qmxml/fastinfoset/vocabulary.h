// The indexed tables of a Fast Infoset document: strings and qualified names
// that a document may refer to by index instead of writing them again.
#pragma once

#include <cstdint>
#include <map>
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

// An ordered list of strings; entry i (from 1) is the string with index i.
class CFIStringTable {
public:
    std::uint32_t GetCount() const { return static_cast<std::uint32_t>(m_strings.size()); }
    // The string of index 1 .. GetCount(); null outside.
    const std::string* GetAt(std::uint32_t index) const {
        return index >= 1 && index <= m_strings.size() ? &m_strings[index - 1] : nullptr;
    }
    const std::vector<std::string>& GetStrings() const { return m_strings; }

private:
    friend class CFIVocabulary;
    std::vector<std::string> m_strings;
};

// Element or attribute names: the name's key to its index, and the parts of
// each name in index order.
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
              std::uint32_t& index) const;

private:
    friend class CFIVocabulary;
    struct Key {
        std::string prefix;
        std::string namespaceURI;
        std::string localName;
    };
    struct KeyView {
        std::string_view prefix;
        std::string_view namespaceURI;
        std::string_view localName;
    };
    // Transparent, so that look-ups do not copy the three strings.
    struct KeyLess {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return Compare(a.namespaceURI, a.localName, a.prefix, b.namespaceURI, b.localName, b.prefix);
        }
        static bool Compare(std::string_view n1, std::string_view l1, std::string_view p1, std::string_view n2,
                            std::string_view l2, std::string_view p2) {
            if (int c = n1.compare(n2)) return c < 0;
            if (int c = l1.compare(l2)) return c < 0;
            return p1 < p2;
        }
    };
    std::map<Key, std::uint32_t, KeyLess> m_map;
    std::vector<CQNameParts> m_names;
};

// The vocabulary of one document. Starts with the built-in entries: prefix
// "xml" and namespace "http://www.w3.org/XML/1998/namespace" at index 1, and
// the restricted alphabets 1 "0123456789-+.e " and 2 "0123456789-:TZ ".
//
// Strings get the next index, counting from 1. Callers look a string up
// before adding it, so a string never has two indexes. An empty string is
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
        return FindIndex(m_attributeValueMap, value, index);
    }
    bool FindElementValueIndex(std::string_view value, std::uint32_t& index) const {
        return FindIndex(m_characterChunkMap, value, index);
    }
    bool FindPrefixNameIndex(std::string_view name, std::uint32_t& index) const {
        return FindIndex(m_prefixMap, name, index);
    }
    bool FindNamespaceNameIndex(std::string_view uri, std::uint32_t& index) const {
        return FindIndex(m_namespaceMap, uri, index);
    }
    bool FindLocalNameIndex(std::string_view name, std::uint32_t& index) const {
        return FindIndex(m_localNameMap, name, index);
    }

private:
    // The context holds a vocabulary by value and copies it with itself.
    friend class CFastInfosetContext;
    CFIVocabulary(const CFIVocabulary& other);

    using StringMap = std::map<std::string, std::uint32_t, std::less<>>;

    static bool FindIndex(const StringMap& map, std::string_view value, std::uint32_t& index);
    std::uint32_t AddQName(std::string_view prefix, std::string_view namespaceURI, std::string_view localName,
                           CFIQNameTable& table);
    static std::uint32_t AddQNameToVector(std::uint32_t prefixIndex, std::uint32_t namespaceIndex,
                                          std::uint32_t localIndex, std::vector<CQNameParts>& names);
    static std::uint32_t AddString(std::string_view value, StringMap& map, CFIStringTable& table);
    static void AddValueToVector(std::string_view value, std::vector<std::string>& strings);
    static std::uint32_t AddValueToMap(std::string_view value, StringMap& map);

    std::vector<std::string> m_restrictedAlphabets;
    StringMap m_attributeValueMap;
    StringMap m_characterChunkMap;
    StringMap m_otherStringMap;
    StringMap m_localNameMap;
    StringMap m_namespaceMap;
    StringMap m_prefixMap;
    StringMap m_otherNCNameMap;  // kept for the standard's other-NCName table; unused
    CFIQNameTable m_elementNames;
    CFIQNameTable m_attributeNames;
    CFIStringTable m_prefixNames;
    CFIStringTable m_namespaceNames;
    CFIStringTable m_localNames;
    CFIStringTable m_attributeValues;
    CFIStringTable m_characterChunks;
};

}  // namespace QmXmlLib10
