// Per-document string interning for element and attribute names and namespace URIs.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace QmXmlLib10 {

// Stores each distinct name once, so that a node keeps only a pointer to its
// local name and namespace URI. A real document repeats a few dozen names
// across millions of nodes; interning keeps the tree near the size of the text.
//
// Intern() returns a pointer that stays valid until Clear() or the table's
// destruction. The empty string always maps to EmptyString(), shared by every
// table, so an unnamed node or an unqualified name costs no lookup.
class CXmlNameTable {
public:
    CXmlNameTable();
    ~CXmlNameTable();
    CXmlNameTable(const CXmlNameTable&) = delete;
    CXmlNameTable& operator=(const CXmlNameTable&) = delete;

    // The stored copy of name, added on first use.
    const std::string* Intern(std::string_view name);
    // The stored copy of name, or null when it was never interned.
    const std::string* Find(std::string_view name) const noexcept;
    // Number of distinct non-empty names stored.
    std::size_t GetCount() const noexcept { return m_names.size(); }
    // Forgets every name; all pointers handed out before become invalid.
    void Clear() noexcept;

    // The one shared empty string (a namespace-scope static, built at library load).
    static const std::string& EmptyString() noexcept;

private:
    struct Slot {
        std::size_t hash;
        const std::string* name;  // null: free slot
    };

    std::size_t Probe(std::string_view name, std::size_t hash) const noexcept;
    void Grow();

    // Open addressing with linear probing over a power-of-two table kept at
    // most half full; the hash is stored so that probing and growing rarely
    // touch the strings themselves.
    std::vector<Slot> m_slots;
    // A deque never moves its elements, so interned pointers stay valid as it grows.
    std::deque<std::string> m_names;
    // Parsers ask for the same name many times in a row (repeated elements,
    // the same attribute on each of them): a one-entry cache answers those.
    const std::string* m_last = nullptr;
};

}  // namespace QmXmlLib10
