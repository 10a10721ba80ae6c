// Bases of every collection: occurrence bounds, listeners and an ordered list
// of reference-counted items.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "qmxml/core/object_base.h"

namespace QmXmlLib10 {

class CXmlCollectionBase : public CXmlObjectBase {
public:
    // maxOccurs -1 means unbounded.
    CXmlCollectionBase(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                       std::int32_t maxOccurs);
    ~CXmlCollectionBase() override;

    std::int32_t GetMinOccurs() const { return m_minOccurs; }
    std::int32_t GetMaxOccurs() const { return m_maxOccurs; }

    // Throws CQmValidationException when the count breaks a bound (the maximum
    // is tested first), unless the context ignores collection counts.
    void ValidateCount(const CXmlSerializationContext& ctx) const;
    bool IsValidCount(const CXmlSerializationContext& ctx) const;

    // Listeners are not owned and are told of changes in registration order.
    void AddEventListener(IEventSink* listener);
    void RemoveEventListener(IEventSink* listener);

    const std::string& GetNamespace() const { return m_namespace; }
    std::string GetElementName() const override { return m_elementName; }
    // A collection has no element of its own: always throws.
    std::string GetTargetNamespace() const override;

    virtual std::int32_t GetCount() const = 0;

protected:
    CXmlCollectionBase();
    CXmlCollectionBase(const CXmlCollectionBase&) = delete;
    CXmlCollectionBase& operator=(const CXmlCollectionBase&) = delete;

    void FireOnCollectionChange();
    void FireOnCollectionAdd(void* item);
    void FireOnCollectionAddComplete(void* item);
    void FireOnCollectionRemove(int index);
    void FireOnCollectionRemoveComplete(int index);

    const std::string& GetItemElementName() const { return m_elementName; }

private:
    template <class Fire>
    void Notify(Fire fire);

    std::string m_elementName;
    std::string m_namespace;
    std::vector<IEventSink*> m_listeners;
    std::int32_t m_minOccurs = 0;
    std::int32_t m_maxOccurs = -1;
};

template <class Item>
class CXmlItemIterator;

// An ordered list of bound objects; each node holds one reference on its item.
//
// Walking by index (GetItem(i) for i = 0 .. GetCount()-1, forwards or
// backwards) costs constant time per step: the collection remembers the last
// node an index reached and starts the next walk from whichever of the first
// node, the last node and that remembered one is nearest. Every change to the
// list keeps the remembered position right or forgets it. The position is a
// cache that const accessors update (hence mutable): like the rest of an
// object tree, a collection is used by one thread at a time, even for reading
// by index. Range-for over begin()/end() walks the nodes and touches no cache.
class CXmlCollection : public CXmlCollectionBase {
public:
    class CNode {
    public:
        CXmlObjectBase* GetItem() const { return m_item; }
        CNode* GetNext() const { return m_next; }
        CNode* GetPrevious() const { return m_prev; }

    private:
        friend class CXmlCollection;
        CXmlObjectBase* m_item = nullptr;
        CNode* m_next = nullptr;
        CNode* m_prev = nullptr;
    };

    CXmlCollection(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                   std::int32_t maxOccurs);
    // Releases the items without raising events.
    ~CXmlCollection() override;

    std::int32_t GetCount() const override { return m_count; }
    // Removes every item; each removal raises its own events.
    void Clear();
    // Throws CQmInvalidParamException for an index outside 0..count-1.
    virtual void Remove(int index);

    // Read-only traversal in order: GetFirstNode(), then CNode::GetNext().
    CNode* GetFirstNode() const { return m_first; }
    CNode* GetLastNode() const { return m_last; }

    // The items in order, for range-for and the standard algorithms. Typed
    // collections hide these with iterators over their own item class.
    // Adding or removing items leaves iterators to other items valid.
    CXmlItemIterator<CXmlObjectBase> begin();
    CXmlItemIterator<CXmlObjectBase> end();
    CXmlItemIterator<const CXmlObjectBase> begin() const;
    CXmlItemIterator<const CXmlObjectBase> end() const;

protected:
    CXmlCollection();

    // Null items are refused with CQmInvalidParamException.
    void AppendItem(CXmlObjectBase* item);
    void PrependItem(CXmlObjectBase* item);
    // A null `existing` prepends (AddAfterItem) or appends (AddBeforeItem).
    void AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
    void AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
    void AddItemAt(int index, CXmlObjectBase* item);
    void RemoveNode(CNode* node);
    // Constant time for an index next to the last one reached (or to either end).
    CNode* GetNodeAtIndex(int index) const;
    // The first node holding the item; linear in its position.
    CNode* GetNodeForItem(const CXmlObjectBase* item) const;

    // A collection writes no attributes of its own.
    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
    // Writes every item, in order, under the given element name.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;

private:
    enum class Where { Before, After };
    void CheckItem(const CXmlObjectBase* item) const;
    // After the add event: links a node holding a reference on item next to
    // `anchor` (null only for an empty list), then raises add-complete and change.
    // `index` is where the new node lands; it becomes the remembered position.
    void Insert(CNode* anchor, Where where, CXmlObjectBase* item, int index);
    // Raises the remove events around unlinking the node; `index` is its
    // position when known (-1 otherwise), so the remembered one can be kept.
    void Unlink(CNode* node, int index);
    // GetNodeForItem that also tells the node's index.
    CNode* FindItem(const CXmlObjectBase* item, int& index) const;

    CNode* m_first = nullptr;
    CNode* m_last = nullptr;
    std::int32_t m_count = 0;
    // Bumped by every link and unlink, so an index learnt before a listener
    // ran is known to be stale afterwards.
    std::uint64_t m_changes = 0;
    // The last node an index walk reached and its index; null when forgotten.
    mutable CNode* m_markNode = nullptr;
    mutable std::int32_t m_markIndex = -1;
};

// Iterates the items of a CXmlCollection as `Item*` (Item may be const). The
// iterator is read from, never written through, so it is an input iterator by
// the standard's letter, yet any number of passes may be made.
template <class Item>
class CXmlItemIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Item*;
    using difference_type = std::ptrdiff_t;
    using pointer = Item* const*;
    using reference = Item*;

    CXmlItemIterator() = default;
    explicit CXmlItemIterator(const CXmlCollection::CNode* node) : m_node(node) {}

    // The collection holds a reference on every item, so a plain pointer is
    // enough while the item stays in it; keep a CSmartPtr to outlive that.
    Item* operator*() const { return static_cast<Item*>(m_node->GetItem()); }
    CXmlItemIterator& operator++() {
        m_node = m_node->GetNext();
        return *this;
    }
    CXmlItemIterator operator++(int) {
        CXmlItemIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const CXmlItemIterator& a, const CXmlItemIterator& b) { return a.m_node == b.m_node; }
    friend bool operator!=(const CXmlItemIterator& a, const CXmlItemIterator& b) { return a.m_node != b.m_node; }

private:
    const CXmlCollection::CNode* m_node = nullptr;
};

inline CXmlItemIterator<CXmlObjectBase> CXmlCollection::begin() { return CXmlItemIterator<CXmlObjectBase>(m_first); }
inline CXmlItemIterator<CXmlObjectBase> CXmlCollection::end() { return CXmlItemIterator<CXmlObjectBase>(); }
inline CXmlItemIterator<const CXmlObjectBase> CXmlCollection::begin() const {
    return CXmlItemIterator<const CXmlObjectBase>(m_first);
}
inline CXmlItemIterator<const CXmlObjectBase> CXmlCollection::end() const {
    return CXmlItemIterator<const CXmlObjectBase>();
}

}  // namespace QmXmlLib10
