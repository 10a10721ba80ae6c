#include "qmxml/collections/xml_collection.h"

#include <algorithm>

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

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index)); }

void CXmlCollection::CheckItem(const CXmlObjectBase* item) const {
    if (item == nullptr) throw CQmInvalidParamException("A NULL item can not be added to a collection");
}

void CXmlCollection::Insert(CNode* anchor, Where where, CXmlObjectBase* item) {
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
    FireOnCollectionAddComplete(item);
    FireOnCollectionChange();
}

void CXmlCollection::AppendItem(CXmlObjectBase* item) {
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(m_last, Where::After, item);
}

void CXmlCollection::PrependItem(CXmlObjectBase* item) {
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(m_first, Where::Before, item);
}

void CXmlCollection::AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    if (existing == nullptr) return PrependItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(GetNodeForItem(existing), Where::After, item);
}

void CXmlCollection::AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    if (existing == nullptr) return AppendItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(GetNodeForItem(existing), Where::Before, item);
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
    if (index < 0 || index > m_count) throw CQmInvalidParamException("Index out of range");
    if (index == m_count) return AppendItem(item);
    CheckItem(item);
    FireOnCollectionAdd(item);
    Insert(GetNodeAtIndex(index), Where::Before, item);
}

void CXmlCollection::RemoveNode(CNode* node) {
    FireOnCollectionRemove(-1);
    if (node->m_prev) node->m_prev->m_next = node->m_next; else m_first = node->m_next;
    if (node->m_next) node->m_next->m_prev = node->m_prev; else m_last = node->m_prev;
    --m_count;
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
    // Walk from whichever end is nearer.
    if (index <= m_count / 2) {
        CNode* node = m_first;
        for (int i = 0; i < index; ++i) node = node->m_next;
        return node;
    }
    CNode* node = m_last;
    for (int i = m_count - 1; i > index; --i) node = node->m_prev;
    return node;
}

CXmlCollection::CNode* CXmlCollection::GetNodeForItem(const CXmlObjectBase* item) const {
    for (CNode* node = m_first; node; node = node->m_next) {
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
