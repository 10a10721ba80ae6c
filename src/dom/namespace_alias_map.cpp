#include "qmxml/dom/namespace_alias_map.h"

#include <cassert>
#include <iterator>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {

inline const char* OrEmpty(const char* text) noexcept { return text != nullptr ? text : ""; }

}  // namespace

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::CNamespaceAliasMap(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap::CNamespaceAliasMap(CNamespaceAliasMap&&) noexcept = default;
CNamespaceAliasMap& CNamespaceAliasMap::operator=(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap& CNamespaceAliasMap::operator=(CNamespaceAliasMap&&) noexcept = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(const char* alias, const char* namespaceURI) {
    Add(std::string(OrEmpty(alias)), std::string(OrEmpty(namespaceURI)));
}

void CNamespaceAliasMap::Add(const std::string& alias, const std::string& namespaceURI) {
    m_aliases[namespaceURI] = alias;
}

void CNamespaceAliasMap::RemoveNamespace(const char* namespaceURI) {
    RemoveNamespace(std::string(OrEmpty(namespaceURI)));
}

void CNamespaceAliasMap::RemoveNamespace(const std::string& namespaceURI) {
    m_aliases.erase(namespaceURI);
}

const std::string& CNamespaceAliasMap::GetNamespaceFromAlias(const char* alias) const {
    return GetNamespaceFromAlias(std::string(OrEmpty(alias)));
}

const std::string& CNamespaceAliasMap::GetNamespaceFromAlias(const std::string& alias) const {
    for (const auto& entry : m_aliases) {
        if (entry.second == alias) return entry.first;
    }
    throw CQmException(FormatString("Namespace alias [%s] not found", alias.c_str()));
}

const std::string& CNamespaceAliasMap::GetAliasFromNamespace(const char* namespaceURI) const {
    return GetAliasFromNamespace(std::string(OrEmpty(namespaceURI)));
}

const std::string& CNamespaceAliasMap::GetAliasFromNamespace(const std::string& namespaceURI) const {
    return m_aliases[namespaceURI];
}

bool CNamespaceAliasMap::DoesNamespaceExist(const char* namespaceURI) const {
    return DoesNamespaceExist(std::string(OrEmpty(namespaceURI)));
}

bool CNamespaceAliasMap::DoesNamespaceExist(const std::string& namespaceURI) const {
    return m_aliases.find(namespaceURI) != m_aliases.end();
}

bool CNamespaceAliasMap::DoesAliasExist(const char* alias) const {
    return DoesAliasExist(std::string(OrEmpty(alias)));
}

bool CNamespaceAliasMap::DoesAliasExist(const std::string& alias) const {
    for (const auto& entry : m_aliases) {
        if (entry.second == alias) return true;
    }
    return false;
}

int CNamespaceAliasMap::GetNamespaceCount() const noexcept {
    return static_cast<int>(m_aliases.size());
}

const std::string& CNamespaceAliasMap::GetNamespaceAt(int index) const {
    assert(index >= 0 && index < GetNamespaceCount());
    return std::next(m_aliases.begin(), index)->first;
}

}  // namespace QmXmlLib10
