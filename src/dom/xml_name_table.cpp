#include "qmxml/dom/xml_name_table.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace QmXmlLib10 {

namespace {

const std::string g_emptyName;

constexpr std::size_t kInitialSlots = 64;

inline bool SameText(const std::string& stored, std::string_view name) noexcept {
    return stored.size() == name.size() &&
           std::memcmp(stored.data(), name.data(), name.size()) == 0;
}

}  // namespace

const std::string& CXmlNameTable::EmptyString() noexcept { return g_emptyName; }

CXmlNameTable::CXmlNameTable() : m_slots(kInitialSlots, Slot{0, nullptr}) {}

CXmlNameTable::~CXmlNameTable() = default;

std::size_t CXmlNameTable::Probe(std::string_view name, std::size_t hash) const noexcept {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hash & mask;
    while (m_slots[i].name != nullptr) {
        if (m_slots[i].hash == hash && SameText(*m_slots[i].name, name)) return i;
        i = (i + 1) & mask;
    }
    return i;
}

const std::string* CXmlNameTable::Find(std::string_view name) const noexcept {
    if (name.empty()) return &g_emptyName;
    if (m_last != nullptr && SameText(*m_last, name)) return m_last;
    return m_slots[Probe(name, std::hash<std::string_view>{}(name))].name;
}

const std::string* CXmlNameTable::Intern(std::string_view name) {
    if (name.empty()) return &g_emptyName;
    if (m_last != nullptr && SameText(*m_last, name)) return m_last;

    const std::size_t hash = std::hash<std::string_view>{}(name);
    std::size_t i = Probe(name, hash);
    if (m_slots[i].name == nullptr) {
        if ((m_names.size() + 1) * 2 > m_slots.size()) {
            Grow();
            i = Probe(name, hash);
        }
        m_names.emplace_back(name);
        m_slots[i] = Slot{hash, &m_names.back()};
    }
    m_last = m_slots[i].name;
    return m_last;
}

void CXmlNameTable::Grow() {
    std::vector<Slot> bigger(m_slots.size() * 2, Slot{0, nullptr});
    const std::size_t mask = bigger.size() - 1;
    for (const Slot& slot : m_slots) {
        if (slot.name == nullptr) continue;
        std::size_t i = slot.hash & mask;
        while (bigger[i].name != nullptr) i = (i + 1) & mask;
        bigger[i] = slot;
    }
    m_slots.swap(bigger);
}

void CXmlNameTable::Clear() noexcept {
    std::fill(m_slots.begin(), m_slots.end(), Slot{0, nullptr});
    m_names.clear();
    m_last = nullptr;
}

}  // namespace QmXmlLib10
