// Collections of primitive values: one element per item, each converted with
// its type's conversion, under the collection's whitespace rule and checked
// against its facets.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/variant.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {

class CXmlTypeCollection : public CXmlCollectionBase {
public:
    ItemType GetItemType() const { return m_itemType; }
    const CPrimitiveRestrictions& GetRestrictions() const { return m_restrictions; }
    // A schema rule checked after the facets on every item (see CValueRule).
    void SetValueRule(std::shared_ptr<const CValueRule> rule) { m_restrictions.SetValueRule(std::move(rule)); }
    CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const { return m_whitespaceRule; }
    const std::string& GetFormat() const { return m_format; }

    // Converts the text under the whitespace rule, checks the facets and
    // appends the value. Conversion errors are CQmInvalidValueException,
    // facet violations CQmValidationException; the collection is unchanged then.
    virtual void AddFromString(const std::string& text) = 0;
    // The lexical form of one item, with the collection's format.
    virtual std::string GetItemAsString(int index) const = 0;
    virtual void Remove(int index) = 0;
    // Removes every item, last first (so each removal moves nothing); each
    // removal raises its own events.
    void Clear();

protected:
    CXmlTypeCollection(ItemType itemType, const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                       std::int32_t maxOccurs, const char* pattern, int minLength, int maxLength,
                       const char* minInclusive, const char* maxInclusive, const char* minExclusive,
                       const char* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule,
                       const char* format);

    // Throws when the value breaks a facet; the member name in messages is the element name.
    void Check(const QmVariant& value) const;
    // The same for an item read from text, whose lexical form the facets of
    // some types look at.
    void Check(const QmVariant& value, const std::string& text) const;
    // Every item in an "index out of range" message is named the same way as in CXmlCollection.
    void CheckIndex(int index, std::int32_t count) const;

    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
    // One element per item, under the collection's element name and namespace.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    // Reads consecutive elements of the collection's name; returns the first other one.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;

private:
    ItemType m_itemType;
    CPrimitiveRestrictions m_restrictions;
    CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
    std::string m_format;
};

// Typed storage shared by every primitive collection: a vector of values with
// the collection events (the add events pass a pointer to the value).
template <class T>
class CXmlValueCollection : public CXmlTypeCollection {
public:
    // std::vector<bool> packs its items into bits and has no bool to point or
    // refer to, which GetItem and the add events need: booleans live in a deque.
    using Items = std::conditional_t<std::is_same_v<T, bool>, std::deque<bool>, std::vector<T>>;

    std::int32_t GetCount() const override { return static_cast<std::int32_t>(m_items.size()); }
    const T& GetItem(int index) const {
        CheckIndex(index, GetCount());
        return m_items[static_cast<std::size_t>(index)];
    }
    // Facets are checked before anything changes.
    void Add(const T& value) { InsertChecked(GetCount(), value); }
    void InsertAt(int index, const T& value) {
        if (index < 0 || index > GetCount()) throw CQmInvalidParamException("Index out of range");
        InsertChecked(index, value);
    }
    void SetItem(int index, const T& value) {
        CheckIndex(index, GetCount());
        Validate(value);
        m_items[static_cast<std::size_t>(index)] = value;
        FireOnCollectionChange();
    }
    void Remove(int index) override {
        CheckIndex(index, GetCount());
        FireOnCollectionRemove(-1);
        m_items.erase(m_items.begin() + index);
        FireOnCollectionRemoveComplete(-1);
        FireOnCollectionChange();
    }
    std::string GetItemAsString(int index) const override { return ToVariant(GetItem(index)).ToString(Format()); }
    const Items& GetItems() const { return m_items; }

    // Range-for over the values: for (const std::string& s : names) ...
    // Read-only even through a non-const collection, since every change goes
    // through SetItem and its facet checks.
    using const_iterator = typename Items::const_iterator;
    const_iterator begin() const { return m_items.begin(); }
    const_iterator end() const { return m_items.end(); }

protected:
    using CXmlTypeCollection::CXmlTypeCollection;

    // The value as a variant of the collection's item type, for facets and text.
    virtual QmVariant ToVariant(const T& value) const = 0;
    // Type checks beyond the facets (the date collections' own type).
    virtual void ValidateValue(const T&) const {}

    void Validate(const T& value) const {
        ValidateValue(value);
        Check(ToVariant(value));
    }
    // Appends a value already converted and checked.
    void AppendUnchecked(T value) {
        FireOnCollectionAdd(&value);
        m_items.push_back(std::move(value));
        FireOnCollectionAddComplete(&m_items.back());
        FireOnCollectionChange();
    }

private:
    const char* Format() const { return GetFormat().empty() ? nullptr : GetFormat().c_str(); }
    void InsertChecked(int index, const T& value) {
        Validate(value);
        T copy = value;
        FireOnCollectionAdd(&copy);
        auto it = m_items.insert(m_items.begin() + index, std::move(copy));
        FireOnCollectionAddComplete(&*it);
        FireOnCollectionChange();
    }

    Items m_items;
};

}  // namespace QmXmlLib10
