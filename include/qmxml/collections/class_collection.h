// Collections of generated-class objects, for the repeating class members
// (CElementInfo...ClsCol and ...AbsClsCol).
#pragma once

#include <atomic>
#include <cstdint>
#include <typeinfo>

#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/metadata/parent_element_info.h"

namespace QmXmlLib10 {

// What the content-model readers need to know of a class collection.
class CXmlClassCollectionBase : public CXmlCollection {
public:
    using CXmlCollection::CXmlCollection;
    // True when reading would take the element as the next item.
    virtual bool IsItemElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const = 0;
};

// Typed access shared by the two class collections. Items are written in
// order, each under the element name the member info passes (or its recorded
// substitution name), with xsi:type when its class is not T.
template <class T>
class CXmlTypedClassCollection : public CXmlClassCollectionBase {
public:
    CXmlTypedClassCollection(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                             std::int32_t maxOccurs)
        : CXmlClassCollectionBase(elementName, namespaceURI, minOccurs, maxOccurs) {}

    // Null items are refused with CQmInvalidParamException.
    void Add(T* item) { AppendItem(item); }
    void InsertAt(int index, T* item) { AddItemAt(index, item); }
    // Constant time when walking the indexes in order, either way.
    CSmartPtr<T> GetItem(int index) const { return static_cast<T*>(GetNodeAtIndex(index)->GetItem()); }

    // Range-for over the items as T* (const T* through a const collection):
    //   for (COrderType* order : *book.GetOrder()) ...
    // A CSmartPtr<T> loop variable works too, and keeps its item alive.
    CXmlItemIterator<T> begin() { return CXmlItemIterator<T>(this->GetFirstNode()); }
    CXmlItemIterator<T> end() { return CXmlItemIterator<T>(); }
    CXmlItemIterator<const T> begin() const { return CXmlItemIterator<const T>(this->GetFirstNode()); }
    CXmlItemIterator<const T> end() const { return CXmlItemIterator<const T>(); }

protected:
    virtual bool IsSubstitutable() const { return false; }

    // A hint only: no effect on results, and none where the compiler has no such hint.
    static void Prefetch(const void* address) {
#if defined(__GNUC__)
        if (address) __builtin_prefetch(address);
#else
        (void)address;
#endif
    }

    void ToXml_Int(CXmlWriter* writer, bool, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override {
        const std::string ownName = GetElementName();
        const char* name = elementName && *elementName ? elementName : ownName.c_str();
        for (CNode* node = GetFirstNode(); node; node = node->GetNext()) {
            // Nodes and items lie far apart: fetch the next ones while this
            // item is written, rather than wait for them afterwards.
            CNode* next = node->GetNext();
            Prefetch(next);
            const CXmlObjectBase* item = node->GetItem();
            CXmlObjectAccess::WriteMember(item, writer, name, ctx, asChoiceMember, IsSubstitutable(),
                                          typeid(*item) != typeid(T));
            if (next) Prefetch(next->GetItem());
        }
    }

    // Reads one item: the element itself, or for inlined item classes the
    // content from `current` on; returns the element after the item.
    static CXmlElement* ReadItem(CXmlObjectBase* item, CXmlElement* parent, CXmlElement* current,
                                 const CXmlSerializationContext& ctx, bool inlined) {
        if (inlined) return CXmlObjectAccess::FromXml(item, parent, current, ctx, false);
        CXmlObjectAccess::FromXml(item, current, current->GetFirstElement(), ctx, false);
        return current->GetNextSiblingElement();
    }
};

// Items of one concrete class T, created by CreateItem (default construction
// unless overridden) for every consecutive element of the collection's name.
// When T is inlined content (its parent info's element type is not 0), items
// are read while T claims the current element.
template <class T>
class CXmlClassCollection : public CXmlTypedClassCollection<T> {
    using Base = CXmlTypedClassCollection<T>;

public:
    CXmlClassCollection(const char* elementName, const char* namespaceURI, std::int32_t minOccurs = 0,
                        std::int32_t maxOccurs = -1)
        : Base(elementName, namespaceURI, minOccurs, maxOccurs) {}

    bool IsItemElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const override {
        if (element == nullptr) return false;
        if (!HasInlinedItems()) {
            return this->DoesElementNameMatch(ctx, element, this->GetElementName(), this->GetNamespace());
        }
        CSmartPtr<T> probe = CreateItem();
        return probe->IsElementInList(ctx, const_cast<CXmlElement*>(element));
    }

protected:
    virtual CSmartPtr<T> CreateItem() const { return CSmartPtr<T>(new T()); }

    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool) override {
        const bool inlined = HasInlinedItems();
        const std::string name = this->GetElementName();
        CXmlElement* const first = current;
        while (current) {
            // Items with an element of their own are told by its name, before
            // an object is made: an element that ends the collection costs none.
            if (!inlined && !this->DoesElementNameMatch(ctx, current, name, this->GetNamespace())) break;
            CSmartPtr<T> item = CreateItem();
            if (inlined && !item->IsElementInList(ctx, current)) break;
            CXmlElement* next = Base::ReadItem(item, parent, current, ctx, inlined);
            this->AppendItem(item);
            if (next == current) break;  // an inlined item that took nothing
            current = next;
            if (!inlined) CXmlObjectAccess::ReleaseReadItems(parent, first, current);
        }
        return current;
    }

private:
    // Whether the items are inlined content is a fact of the item class, so it
    // is learnt from one item and kept. Atomic: the collection of an object
    // that only answers questions may be asked from several threads at once.
    bool HasInlinedItems() const {
        signed char known = m_inlinedItems.load(std::memory_order_relaxed);
        if (known < 0) {
            const CSmartPtr<T> item = CreateItem();
            known = item->GetClassInfo()->GetElementType() != XmlElementType_Element ? 1 : 0;
            m_inlinedItems.store(known, std::memory_order_relaxed);
        }
        return known == 1;
    }

    mutable std::atomic<signed char> m_inlinedItems{-1};
};

// Items of an abstract class or substitution group T: the factory picks the
// concrete class for each element (null ends the collection). Items record the
// element name they were read with and are written under it again.
template <class T>
class CXmlAbstractClassCollection : public CXmlTypedClassCollection<T> {
    using Base = CXmlTypedClassCollection<T>;

public:
    using Factory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);

    CXmlAbstractClassCollection(const char* elementName, const char* namespaceURI, Factory factory,
                                std::int32_t minOccurs = 0, std::int32_t maxOccurs = -1)
        : Base(elementName, namespaceURI, minOccurs, maxOccurs), m_factory(factory) {}

    bool IsItemElement(const CXmlSerializationContext&, const CXmlElement* element) const override {
        return element && m_factory && m_factory(const_cast<CXmlElement*>(element)) != nullptr;
    }

protected:
    bool IsSubstitutable() const override { return true; }

    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool) override {
        CXmlElement* const first = current;
        while (current && m_factory) {
            CSmartPtr<CXmlObjectBase> created = m_factory(current);
            if (!created) break;
            T* item = dynamic_cast<T*>(created.Get());
            if (item == nullptr) {
                throw CQmException(FormatString("The class factory created an object of the wrong class for [%s]",
                                                current->GetLocalName().c_str()));
            }
            CXmlObjectAccess::SetElementName(item, current->GetLocalName().c_str());
            const bool inlined = item->GetClassInfo()->GetElementType() != XmlElementType_Element;
            CXmlElement* next = Base::ReadItem(item, parent, current, ctx, inlined);
            this->AppendItem(item);
            if (next == current) break;
            current = next;
            if (!inlined) CXmlObjectAccess::ReleaseReadItems(parent, first, current);
        }
        return current;
    }

private:
    Factory m_factory;
};

}  // namespace QmXmlLib10
