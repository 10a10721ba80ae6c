// Bases of every collection: occurrence bounds, listeners and an ordered list
// of reference-counted items.
#pragma once

#include <cstdint>
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

// An ordered list of bound objects; each node holds one reference on its item.
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
    CNode* GetNodeAtIndex(int index) const;
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
    void Insert(CNode* anchor, Where where, CXmlObjectBase* item);

    CNode* m_first = nullptr;
    CNode* m_last = nullptr;
    std::int32_t m_count = 0;
};

}  // namespace QmXmlLib10
