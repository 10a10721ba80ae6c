// The table of namespace prefixes ("aliases") the writer declares.
#pragma once

#include <map>
#include <string>

namespace QmXmlLib10 {

// Maps namespace URI to alias. Entries are ordered by URI (byte-wise), so
// enumeration runs in ascending URI order, not in insertion order. An alias may
// be empty (a default-namespace entry), and two URIs may share an alias. All
// comparisons are exact and case-sensitive. A null `const char*` reads as "".
//
// Not thread-safe, even for const calls: GetAliasFromNamespace inserts.
class CNamespaceAliasMap {
public:
    CNamespaceAliasMap();
    CNamespaceAliasMap(const CNamespaceAliasMap&);
    CNamespaceAliasMap(CNamespaceAliasMap&&) noexcept;
    CNamespaceAliasMap& operator=(const CNamespaceAliasMap&);
    CNamespaceAliasMap& operator=(CNamespaceAliasMap&&) noexcept;
    virtual ~CNamespaceAliasMap();

    // Sets the alias of the URI, adding the URI when absent.
    void Add(const char* alias, const char* namespaceURI);
    void Add(const std::string& alias, const std::string& namespaceURI);

    // Removes the URI's entry; nothing happens when it is absent.
    void RemoveNamespace(const char* namespaceURI);
    void RemoveNamespace(const std::string& namespaceURI);

    // The URI of the first entry, in URI order, whose alias is alias. Throws
    // CQmException "Namespace alias [alias] not found" when there is none.
    const std::string& GetNamespaceFromAlias(const char* alias) const;
    const std::string& GetNamespaceFromAlias(const std::string& alias) const;

    // The alias of the URI. An unknown URI is added with an empty alias (the
    // count grows) and "" is returned; callers rely on this insert-if-absent.
    // The reference stays valid until the entry is removed or the map is
    // assigned or destroyed.
    const std::string& GetAliasFromNamespace(const char* namespaceURI) const;
    const std::string& GetAliasFromNamespace(const std::string& namespaceURI) const;

    bool DoesNamespaceExist(const char* namespaceURI) const;
    bool DoesNamespaceExist(const std::string& namespaceURI) const;
    bool DoesAliasExist(const char* alias) const;
    bool DoesAliasExist(const std::string& alias) const;

    int GetNamespaceCount() const noexcept;
    // The URI of the index-th entry in URI order; index must be in
    // [0, GetNamespaceCount()). Steps from the first entry each time; the maps
    // hold a handful of entries.
    const std::string& GetNamespaceAt(int index) const;

private:
    // Mutable because the const GetAliasFromNamespace inserts.
    mutable std::map<std::string, std::string> m_aliases;
};

}  // namespace QmXmlLib10
