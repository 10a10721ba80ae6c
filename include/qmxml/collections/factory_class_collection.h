// The items of a repeating class member whose objects a context factory
// makes (QmXmlLib10Data::IClassFactory): the classes of schema-derived
// members, dynamic or generated. With a substitution index, the factory's
// CreateForElement picks each item's class from its element (a substitution
// group member's name, xsi:type); otherwise items are the class classIndex,
// read as elements of the collection's name or, for inlined items, while the
// class claims the current element. Items whose class differs from the
// declared one (GetTypeName not empty) are written with xsi:type.
//
// Item is the class every item derives from: CXmlGeneratedClass for generated
// classes, CDynamicObject for dynamic ones, whose programs walk the items as
// dynamic objects.
#pragma once

#include <cstdint>
#include <string>

#include "qmxml/collections/class_collection.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/metadata/element_infos.h"

namespace QmXmlLib10 {

template <class Item>
class CXmlFactoryClassCollectionOf final : public CXmlTypedClassCollection<Item> {
    using Base = CXmlTypedClassCollection<Item>;

public:
    // factory must outlive the collection.
    CXmlFactoryClassCollectionOf(const QmXmlLib10Data::IClassFactory* factory, int classIndex, int substitution,
                               bool inlined, const char* elementName, const char* ns, std::int32_t minOccurs,
                               std::int32_t maxOccurs)
        : Base(elementName, ns, minOccurs, maxOccurs),
          m_factory(factory),
          m_classIndex(classIndex),
          m_substitution(substitution),
          m_inlined(inlined) {}

    bool IsItemElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const override {
        if (element == nullptr) return false;
        auto* mutableElement = const_cast<CXmlElement*>(element);
        if (m_substitution >= 0) return m_factory->CreateForElement(m_substitution, mutableElement) != nullptr;
        if (!m_inlined) return this->DoesElementNameMatch(ctx, element, this->GetElementName(), this->GetNamespace());
        const CSmartPtr<CXmlObjectBase> probe = m_factory->CreateMember(m_classIndex, "");
        return static_cast<Item*>(probe.Get())->IsElementInList(ctx, mutableElement);
    }

protected:
    bool IsSubstitutable() const override { return m_substitution >= 0; }

    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool) override {
        const std::string name = this->GetElementName();
        CXmlElement* const first = current;
        while (current) {
            CSmartPtr<CXmlObjectBase> made;
            if (m_substitution >= 0) {
                made = m_factory->CreateForElement(m_substitution, current);
                if (!made) break;
                CXmlObjectAccess::SetElementName(made, current->GetLocalName().c_str());
            } else {
                if (!m_inlined && !this->DoesElementNameMatch(ctx, current, name, this->GetNamespace())) break;
                made = m_factory->CreateMember(m_classIndex, name.c_str());
                if (m_inlined && !static_cast<Item*>(made.Get())->IsElementInList(ctx, current)) break;
            }
            auto* item = static_cast<Item*>(made.Get());
            CXmlElement* next = Base::ReadItem(item, parent, current, ctx, m_inlined);
            this->AppendItem(item);
            if (next == current) break;  // an inlined item that took nothing
            current = next;
            if (!m_inlined) CXmlObjectAccess::ReleaseReadItems(parent, first, current);
        }
        return current;
    }

    void ToXml_Int(CXmlWriter* writer, bool, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override {
        const std::string ownName = this->GetElementName();
        const char* name = elementName && *elementName ? elementName : ownName.c_str();
        for (typename Base::CNode* node = this->GetFirstNode(); node; node = node->GetNext()) {
            const auto* item = static_cast<const Item*>(node->GetItem());
            CXmlObjectAccess::WriteMember(item, writer, name, ctx, asChoiceMember, this->IsSubstitutable(),
                                          !item->GetTypeName().empty());
        }
    }

private:
    const QmXmlLib10Data::IClassFactory* m_factory;
    int m_classIndex;
    int m_substitution;
    bool m_inlined;
};

using CXmlFactoryClassCollection = CXmlFactoryClassCollectionOf<CXmlGeneratedClass>;

}  // namespace QmXmlLib10
