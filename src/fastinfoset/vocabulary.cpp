#include "qmxml/fastinfoset/vocabulary.h"

#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

namespace fi_detail {

void CHashIndex::Insert(std::size_t hash, std::uint32_t index) {
    if ((m_count + 1) * 2 > m_slots.size()) {
        std::vector<Slot> old(m_slots.empty() ? 16 : m_slots.size() * 2, Slot{0, 0});
        old.swap(m_slots);
        for (const Slot& slot : old) {
            if (slot.index != 0) Place(slot);
        }
    }
    Place(Slot{index, static_cast<std::uint32_t>(hash)});
    ++m_count;
}

void CHashIndex::Place(Slot slot) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = slot.hash & mask;
    while (m_slots[i].index != 0) i = (i + 1) & mask;
    m_slots[i] = slot;
}

}  // namespace fi_detail

CFIVocabulary::CFIVocabulary() : m_restrictedAlphabets{NumericAlphabet, DateTimeAlphabet} {
    AddPrefixName("xml");
    AddNamespaceName(CXmlWriter::XmlNamespaceURI);
}

CFIVocabulary::~CFIVocabulary() = default;
CFIVocabulary::CFIVocabulary(const CFIVocabulary& other) = default;
CFIVocabulary& CFIVocabulary::operator=(const CFIVocabulary& other) = default;

std::uint32_t CFIVocabulary::AddString(std::string_view value, CFIStringTable& table) {
    if (value.empty() || table.m_strings.size() >= MaxIndex) return 0;
    const std::size_t hash = CFIStringTable::Hash(value);
    std::uint32_t existing = 0;
    if (!table.Find(value, hash, existing)) return AddNewString(value, hash, table);
    // A string added twice keeps answering with its first index.
    table.m_strings.emplace_back(value);
    return static_cast<std::uint32_t>(table.m_strings.size());
}

std::uint32_t CFIVocabulary::AddNewString(std::string_view value, std::size_t hash, CFIStringTable& table) {
    if (table.m_strings.size() >= MaxIndex) return 0;
    table.m_strings.emplace_back(value);
    const auto index = static_cast<std::uint32_t>(table.m_strings.size());
    table.m_index.Insert(hash, index);
    return index;
}

std::uint32_t CFIVocabulary::FindOrAddString(std::string_view value, CFIStringTable& table) {
    std::uint32_t index = 0;
    if (value.empty() || table.Find(value, index)) return index;
    return AddString(value, table);
}

std::uint32_t CFIVocabulary::AddAttributeValue(std::string_view value) { return AddString(value, m_attributeValues); }
std::uint32_t CFIVocabulary::AddElementValue(std::string_view value) { return AddString(value, m_characterChunks); }
std::uint32_t CFIVocabulary::AddPrefixName(std::string_view name) { return AddString(name, m_prefixNames); }
std::uint32_t CFIVocabulary::AddNamespaceName(std::string_view uri) { return AddString(uri, m_namespaceNames); }
std::uint32_t CFIVocabulary::AddLocalName(std::string_view name) { return AddString(name, m_localNames); }

std::uint32_t CFIVocabulary::AddAttribute(std::string_view prefix, std::string_view namespaceURI,
                                          std::string_view localName) {
    return AddQName(prefix, namespaceURI, localName, m_attributeNames);
}

std::uint32_t CFIVocabulary::AddElement(std::string_view prefix, std::string_view namespaceURI,
                                        std::string_view localName) {
    return AddQName(prefix, namespaceURI, localName, m_elementNames);
}

std::uint32_t CFIVocabulary::AddQName(std::string_view prefix, std::string_view namespaceURI,
                                      std::string_view localName, CFIQNameTable& table) {
    if (namespaceURI.empty()) prefix = {};
    if (localName.empty() || table.m_names.size() >= MaxIndex) return 0;
    std::uint32_t existing = 0;
    if (table.Find(prefix, namespaceURI, localName, existing)) return 0;
    const std::uint32_t p = FindOrAddString(prefix, m_prefixNames);
    const std::uint32_t n = FindOrAddString(namespaceURI, m_namespaceNames);
    const std::uint32_t l = FindOrAddString(localName, m_localNames);
    // A part that no longer fits its table leaves the name unindexed.
    if (l == 0 || (!namespaceURI.empty() && n == 0) || (!prefix.empty() && p == 0)) return 0;
    table.m_names.push_back(CQNameParts{p, n, l});
    table.m_keys.push_back(CFIQNameTable::Key{std::string(prefix), std::string(namespaceURI), std::string(localName)});
    const auto index = static_cast<std::uint32_t>(table.m_names.size());
    table.m_index.Insert(CFIQNameTable::Hash(prefix, namespaceURI, localName), index);
    return index;
}

}  // namespace QmXmlLib10
