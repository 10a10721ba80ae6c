#include "qmxml/collections/xml_collection.h"

#include <algorithm>
#include <cstdlib>

#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"

namespace QmXmlLib10 {

CXmlCollectionBase::CXmlCollectionBase() = default;

CXmlCollectionBase::CXmlCollectionBase(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                                       std::int32_t maxOccurs)
    : m_elementName(elementName ? elementName : ""),
      m_namespace(namespaceURI ? namespaceURI : ""),
      m_minOccurs(minOccurs),
      m_maxOccurs(maxOccurs) {}

CXmlCollectionBase::~CXmlCollectionBase() = default;

void CXmlCollectionBase::ValidateCount(const CXmlSerializationContext& ctx) const {
    if (ctx.GetIgnoreInvalidCollectionCounts()) return;
    const std::int32_t count = GetCount();
    if (m_maxOccurs != -1 && count > m_maxOccurs) {
        throw CQmValidationException(FormatString("The Maximum number of [%s] elements allowed in this collection is %d",
                                                  m_elementName.c_str(), m_maxOccurs));
    }
    if (count < m_minOccurs) {
        throw CQmValidationException(FormatString("The Minimum number of [%s] elements allowed in this collection is %d",
                                                  m_elementName.c_str(), m_minOccurs));
    }
}

bool CXmlCollectionBase::IsValidCount(const CXmlSerializationContext& ctx) const {
    if (ctx.GetIgnoreInvalidCollectionCounts()) return true;
    const std::int32_t count = GetCount();
    if (m_maxOccurs != -1 && count > m_maxOccurs) return false;
    return count >= m_minOccurs;
}

void CXmlCollectionBase::AddEventListener(IEventSink* listener) {
    if (listener) m_listeners.push_back(listener);
}

void CXmlCollectionBase::RemoveEventListener(IEventSink* listener) {
    auto it = std::find(m_listeners.begin(), m_listeners.end(), listener);
    if (it != m_listeners.end()) m_listeners.erase(it);
}

std::string CXmlCollectionBase::GetTargetNamespace() const {
    throw CQmException(
        "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

template <class Fire>
void CXmlCollectionBase::Notify(Fire fire) {
    if (m_listeners.empty()) return;
    // A listener may register or remove listeners while it is told: walk a snapshot.
    const std::vector<IEventSink*> listeners = m_listeners;
    for (IEventSink* listener : listeners) fire(listener);
}

void CXmlCollectionBase::FireOnCollectionChange() {
    Notify([this](IEventSink* l) { FireOnCollectionChangeEvent(l, this); });
}

void CXmlCollectionBase::FireOnCollectionAdd(void* item) {
    Notify([this, item](IEventSink* l) { FireOnCollectionAddEvent(l, this, item); });
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item) {
    Notify([this, item](IEventSink* l) { FireOnCollectionAddCompleteEvent(l, this, item); });
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) {
    Notify([this, index](IEventSink* l) { FireOnCollectionRemoveEvent(l, this, index); });
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index) {
    Notify([this, index](IEventSink* l) { FireOnCollectionRemoveCompleteEvent(l, this, index); });
}

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                               std::int32_t maxOccurs)
    : CXmlCollectionBase(elementName, namespaceURI, minOccurs, maxOccurs) {}

CXmlCollection::~CXmlCollection() {
    CNode* node = m_first;
    while (node) {
        CNode* next = node->m_next;
        node->m_item->Release();
        delete node;
        node = next;
    }
}

void CXmlCollection::Clear() {
    while (GetCount() > 0) Remove(0);
}

void CXmlCollection::Remove(int index) { Unlink(GetNodeAtIndex(index), index); }

void CXmlCollection::CheckItem(const CXmlObjectBase* item) const {
    if (item == nullptr) throw CQmInvalidParamException("A NULL item can not be added to a collection");
}

void CXmlCollection::Insert(CNode* anchor, Where where, CXmlObjectBase* item, int index) {
    CNode* node = new CNode;
    node->m_item = item;
    item->AddRef();
    if (anchor == nullptr) {
        m_first = m_last = node;
    } else if (where == Where::After) {
        node->m_prev = anchor;
        node->m_next = anchor->m_next;
        if (anchor->m_next) anchor->m_next->m_prev = node; else m_last = node;
        anchor->m_next = node;
    } else {
        node->m_next = anchor;
        node->m_prev = anchor->m_prev;
        if (anchor->m_prev) anchor->m_prev->m_next = node; else m_first = node;
        anchor->m_prev = node;
    }
    ++m_count;
    ++m_changes;
    // Before the listeners hear of it: they may walk the collection by index.
    m_markNode = node;
    m_markIndex = index;
    FireOnCollectionAddComplete(item);
    FireOnCollectionChange();
}

void CXmlCollection::AppendItem(CXmlObjectBase* item) {
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(m_last, Where::After, item, m_count);
}

void CXmlCollection::PrependItem(CXmlObjectBase* item) {
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(m_first, Where::Before, item, 0);
}

void CXmlCollection::AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    if (existing == nullptr) return PrependItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    int index = 0;
    CNode* anchor = FindItem(existing, index);
    Insert(anchor, Where::After, item, index + 1);
}

void CXmlCollection::AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    if (existing == nullptr) return AppendItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    int index = 0;
    CNode* anchor = FindItem(existing, index);
    Insert(anchor, Where::Before, item, index);
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
    if (index < 0 || index > m_count) throw CQmInvalidParamException("Index out of range");
    if (index == m_count) return AppendItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(GetNodeAtIndex(index), Where::Before, item, index);
}

void CXmlCollection::RemoveNode(CNode* node) { Unlink(node, -1); }

void CXmlCollection::Unlink(CNode* node, int index) {
    const std::uint64_t changes = m_changes;
    FireOnCollectionRemove(-1);
    if (m_changes != changes) index = -1;  // a listener changed the list: the index may have moved
    if (m_markNode != nullptr) {
        // Keep the remembered position where the node's place is known, else forget it.
        if (node == m_markNode) {
            if (node->m_prev) {
                m_markNode = node->m_prev;
                --m_markIndex;
            } else {
                m_markNode = node->m_next;  // takes over the index; null empties the mark
                if (m_markNode == nullptr) m_markIndex = -1;
            }
        } else if (node == m_markNode->m_prev || (index >= 0 && index < m_markIndex)) {
            --m_markIndex;
        } else if (node != m_markNode->m_next && index < 0) {
            m_markNode = nullptr;
            m_markIndex = -1;
        }
    }
    if (node->m_prev) node->m_prev->m_next = node->m_next; else m_first = node->m_next;
    if (node->m_next) node->m_next->m_prev = node->m_prev; else m_last = node->m_prev;
    --m_count;
    ++m_changes;
    CXmlObjectBase* item = node->m_item;
    delete node;
    item->Release();
    FireOnCollectionRemoveComplete(-1);
    FireOnCollectionChange();
}

CXmlCollection::CNode* CXmlCollection::GetNodeAtIndex(int index) const {
    if (index < 0 || index >= m_count) {
        throw CQmInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, m_count - 1));
    }
    // Walk from whichever known position is nearest: first, last or remembered.
    CNode* node = m_first;
    int at = 0;
    int distance = index;
    if (m_count - 1 - index < distance) {
        node = m_last;
        at = m_count - 1;
        distance = m_count - 1 - index;
    }
    if (m_markNode != nullptr && std::abs(index - m_markIndex) < distance) {
        node = m_markNode;
        at = m_markIndex;
    }
    for (; at < index; ++at) node = node->m_next;
    for (; at > index; --at) node = node->m_prev;
    m_markNode = node;
    m_markIndex = index;
    return node;
}

CXmlCollection::CNode* CXmlCollection::GetNodeForItem(const CXmlObjectBase* item) const {
    int index = 0;
    return FindItem(item, index);
}

CXmlCollection::CNode* CXmlCollection::FindItem(const CXmlObjectBase* item, int& index) const {
    index = 0;
    for (CNode* node = m_first; node; node = node->m_next, ++index) {
        if (node->m_item == item) return node;
    }
    throw CQmInvalidParamException("The object was not found in the collection");
}

void CXmlCollection::AttributesToXml_Int(CXmlWriter*, const CXmlSerializationContext&) const {}

void CXmlCollection::ToXml_Int(CXmlWriter* writer, bool, const char* elementName, const CXmlSerializationContext& ctx,
                               bool asChoiceMember) const {
    for (CNode* node = m_first; node; node = node->m_next) {
        CXmlObjectBase::ToXml_Int(node->m_item, writer, false, elementName, ctx, asChoiceMember);
    }
}

}  // namespace QmXmlLib10
