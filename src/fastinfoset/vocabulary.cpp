#include "qmxml/fastinfoset/vocabulary.h"

#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

bool CFIQNameTable::Find(std::string_view prefix, std::string_view namespaceURI, std::string_view localName,
                         std::uint32_t& index) const {
    const auto it = m_map.find(KeyView{prefix, namespaceURI, localName});
    if (it == m_map.end()) return false;
    index = it->second;
    return true;
}

CFIVocabulary::CFIVocabulary() : m_restrictedAlphabets{NumericAlphabet, DateTimeAlphabet} {
    AddPrefixName("xml");
    AddNamespaceName(CXmlWriter::XmlNamespaceURI);
}

CFIVocabulary::~CFIVocabulary() = default;
CFIVocabulary::CFIVocabulary(const CFIVocabulary& other) = default;
CFIVocabulary& CFIVocabulary::operator=(const CFIVocabulary& other) = default;

bool CFIVocabulary::FindIndex(const StringMap& map, std::string_view value, std::uint32_t& index) {
    const auto it = map.find(value);
    if (it == map.end()) return false;
    index = it->second;
    return true;
}

void CFIVocabulary::AddValueToVector(std::string_view value, std::vector<std::string>& strings) {
    strings.emplace_back(value);
}

std::uint32_t CFIVocabulary::AddValueToMap(std::string_view value, StringMap& map) {
    const auto index = static_cast<std::uint32_t>(map.size() + 1);
    map.emplace(std::string(value), index);
    return index;
}

std::uint32_t CFIVocabulary::AddString(std::string_view value, StringMap& map, CFIStringTable& table) {
    if (value.empty() || table.m_strings.size() >= MaxIndex) return 0;
    // The map and the list grow together, so the map's new size is the list's.
    AddValueToVector(value, table.m_strings);
    return AddValueToMap(value, map);
}

std::uint32_t CFIVocabulary::AddAttributeValue(std::string_view value) {
    return AddString(value, m_attributeValueMap, m_attributeValues);
}
std::uint32_t CFIVocabulary::AddElementValue(std::string_view value) {
    return AddString(value, m_characterChunkMap, m_characterChunks);
}
std::uint32_t CFIVocabulary::AddPrefixName(std::string_view name) { return AddString(name, m_prefixMap, m_prefixNames); }
std::uint32_t CFIVocabulary::AddNamespaceName(std::string_view uri) {
    return AddString(uri, m_namespaceMap, m_namespaceNames);
}
std::uint32_t CFIVocabulary::AddLocalName(std::string_view name) {
    return AddString(name, m_localNameMap, m_localNames);
}

std::uint32_t CFIVocabulary::AddAttribute(std::string_view prefix, std::string_view namespaceURI,
                                          std::string_view localName) {
    return AddQName(prefix, namespaceURI, localName, m_attributeNames);
}

std::uint32_t CFIVocabulary::AddElement(std::string_view prefix, std::string_view namespaceURI,
                                        std::string_view localName) {
    return AddQName(prefix, namespaceURI, localName, m_elementNames);
}

std::uint32_t CFIVocabulary::AddQNameToVector(std::uint32_t prefixIndex, std::uint32_t namespaceIndex,
                                              std::uint32_t localIndex, std::vector<CQNameParts>& names) {
    names.push_back(CQNameParts{prefixIndex, namespaceIndex, localIndex});
    return static_cast<std::uint32_t>(names.size());
}

std::uint32_t CFIVocabulary::AddQName(std::string_view prefix, std::string_view namespaceURI,
                                      std::string_view localName, CFIQNameTable& table) {
    if (namespaceURI.empty()) prefix = {};
    if (localName.empty() || table.m_names.size() >= MaxIndex) return 0;
    if (table.m_map.count(CFIQNameTable::KeyView{prefix, namespaceURI, localName}) != 0) return 0;
    auto lookUpOrAdd = [this](std::string_view s, StringMap& map, CFIStringTable& strings) -> std::uint32_t {
        std::uint32_t index = 0;
        if (s.empty() || FindIndex(map, s, index)) return index;
        return AddString(s, map, strings);
    };
    const std::uint32_t p = lookUpOrAdd(prefix, m_prefixMap, m_prefixNames);
    const std::uint32_t n = lookUpOrAdd(namespaceURI, m_namespaceMap, m_namespaceNames);
    const std::uint32_t l = lookUpOrAdd(localName, m_localNameMap, m_localNames);
    // A part that no longer fits its table leaves the name unindexed.
    if (l == 0 || (!namespaceURI.empty() && n == 0) || (!prefix.empty() && p == 0)) return 0;
    const std::uint32_t index = AddQNameToVector(p, n, l, table.m_names);
    table.m_map.emplace(
        CFIQNameTable::Key{std::string(prefix), std::string(namespaceURI), std::string(localName)}, index);
    return index;
}

}  // namespace QmXmlLib10
