// The element-info family: CElementInfo + group (Seq, All, Choice) + kind
// (Prim, Enum, Cls, AbsCls, Untpd, Non or none) + cardinality (Mnd, Opt, Col).
// Behaviour depends on the kind and on two traits of the group: whether a
// missing mandatory member is looked for in place (sequences) or reported by
// Validate (all groups). Each named class is a thin alias of a kind template.
#pragma once

#include <atomic>
#include <string>
#include <type_traits>

#include "qmxml/core/smart_ptr.h"
#include "qmxml/metadata/element_info.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10Data {

using QmXmlLib10::CSmartPtr;
using QmXmlLib10::CWhitespaceUtils;

// Creates the object of a class member: (class index, element name).
using ClassFactory = CSmartPtr<CXmlObjectBase> (*)(int classIndex, const char* elementName);
// Creates the concrete object for an element of an abstract-class member, or
// null when no class fits the element.
using AbstractClassFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);
using EnumToString = const char* (*)(int value);

// A class factory that carries context, beside the plain function pointers:
// classes whose metadata is built at run time (from a schema the program
// loads) need to know which set of classes they belong to, and several such
// sets may live in one process. Must be usable from several threads at once
// and outlive the infos that use it.
class IClassFactory {
public:
    // As ClassFactory: the object of a class member.
    virtual CSmartPtr<CXmlObjectBase> CreateMember(int classIndex, const char* elementName) const = 0;
    // As AbstractClassFactory: the concrete object for an element of an
    // abstract or substitutable member declared with classIndex, or null.
    virtual CSmartPtr<CXmlObjectBase> CreateForElement(int classIndex, CXmlElement* element) const = 0;

protected:
    ~IClassFactory() = default;
};
using EnumFromString = int (*)(const char* text);

namespace detail {
// The object a class factory makes for one member info, made once on first use
// and then shared by every thread that reads or writes with the info (the
// metadata is static). It is only ever asked questions (its class, which
// elements it would claim), never read into, so sharing it needs no lock.
// A copy starts empty and makes its own.
class CFactoryPrototype {
public:
    CFactoryPrototype() = default;
    CFactoryPrototype(const CFactoryPrototype&) noexcept {}
    CFactoryPrototype& operator=(const CFactoryPrototype&) noexcept { return *this; }
    ~CFactoryPrototype();

    // Null when the factory made nothing (it is then asked again next time).
    const CXmlObjectBase* Get(ClassFactory factory, const IClassFactory* contextFactory, int classIndex,
                              const char* elementName) const;

private:
    mutable std::atomic<CXmlObjectBase*> m_object{nullptr};
};

template <class Group>
constexpr bool IsSequence = std::is_base_of<CElementInfoSeq, Group>::value;
template <class Group>
constexpr bool IsChoice = std::is_base_of<CElementInfoChoice, Group>::value;
template <class Group>
constexpr bool IsAll = std::is_base_of<CElementInfoAll, Group>::value;
}  // namespace detail

// A simple-typed value. The bool is the nillable flag. Values read are checked
// against the facets, as values written are.
template <class Group, bool Mandatory>
class CElementInfoPrim : public Group {
public:
    CElementInfoPrim(const char* name, const char* ns, int propertyIndex, bool nillable, ItemType type,
                     const char* format, CWhitespaceUtils::WhitespaceRule rule, const CPrimitiveRestrictions& facets);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;

    bool IsNillable() const { return m_nillable; }
    ItemType GetItemType() const { return m_type; }
    const std::string& GetFormat() const { return m_format; }
    // The text an empty element stands for: a schema's default or fixed
    // value. Without one (the default) an empty element is read as "".
    void SetEmptyElementValue(const std::string& text) {
        m_emptyValue = text;
        m_hasEmptyValue = true;
    }
    CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const { return m_rule; }
    const CPrimitiveRestrictions& GetRestrictions() const { return m_facets; }

protected:
    // Throws when the value breaks a facet of the member's type.
    void CheckRestriction(const QmVariant& value) const;

private:
    bool m_nillable;
    ItemType m_type;
    std::string m_format;
    CWhitespaceUtils::WhitespaceRule m_rule;
    CPrimitiveRestrictions m_facets;
    std::string m_emptyValue;
    bool m_hasEmptyValue = false;
};

// An enumerated value held as an int (i4) and converted by the two generated
// functions. The bool is the nillable flag. The text is collapsed before the
// text-to-enum function sees it: the infos do not know the enumeration's base
// type, and the token-like bases enumerations are built on compare collapsed
// (a string base would preserve, but " red " meaning something other than
// "red" is not a distinction schemas make in practice).
template <class Group, bool Mandatory>
class CElementInfoEnum : public Group {
public:
    CElementInfoEnum(const char* name, const char* ns, int propertyIndex, bool nillable, EnumToString toString,
                     EnumFromString fromString);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;

    bool IsNillable() const { return m_nillable; }

private:
    bool m_nillable;
    EnumToString m_toString;
    EnumFromString m_fromString;
};

// A member object of one generated class. A mandatory member's object is read
// in place (created with the factory when it is null); an optional one is
// created with the factory for each element read. The trailing bool of the
// mandatory forms is the nillable flag; optional forms accept xsi:nil.
// Inlined members (element type not 0) are read from the parent's current
// child: always for mandatory ones, and for optional ones when the member
// class claims that child. Their attributes sit on the parent element: an
// existing member takes those its infos claim and checks its required ones;
// an absent optional member is created when its class claims one of them.
template <class Group, bool Mandatory>
class CElementInfoCls : public Group {
public:
    CElementInfoCls(const char* name, const char* ns, int propertyIndex, XmlElementType elementType,
                    ClassFactory factory, int classIndex, bool nillable = true);
    CElementInfoCls(const char* name, const char* ns, int propertyIndex, XmlElementType elementType,
                    const IClassFactory* factory, int classIndex, bool nillable = true);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
    void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                   CXmlWriter* writer) const override;
    void PseudoChildAttributesFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                      std::vector<CXmlAttribute*>& pending) const override;
    bool IsInlinedMember() const override { return m_elementType != QmXmlLib10::XmlElementType_Element; }
    bool IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                         const CXmlElement* element) const override;

    XmlElementType GetElementType() const { return m_elementType; }
    int GetClassIndex() const { return m_classIndex; }
    bool IsNillable() const { return m_nillable; }

private:
    CSmartPtr<CXmlObjectBase> CreateObject() const;
    // The factory's object, or null.
    CSmartPtr<CXmlObjectBase> Make() const;
    // The declared class's object as the factory makes it: what "the declared
    // class" is when writing, and what answers "would an absent optional
    // inlined member claim this element?" without making an object per question.
    const CXmlObjectBase* Prototype() const;
    bool DiffersFromDeclaredClass(const CXmlSerializationContext& ctx, const CXmlObjectBase* member) const;

    XmlElementType m_elementType;
    ClassFactory m_factory;
    const IClassFactory* m_contextFactory = nullptr;
    int m_classIndex;
    bool m_nillable;
    detail::CFactoryPrototype m_prototype;
};

// A member of an abstract class or substitution group: the factory picks the
// concrete class from the element; the object records the element name it was
// read with and is written under it again. A mandatory sequence member whose
// element is missing or fits no class fails with "Failed to find a suitable
// substitution element for [%s]" (after skipping unknown elements under
// IgnoreUnknownElements; absent under IgnoreMissingMandatoryElements).
template <class Group, bool Mandatory>
class CElementInfoAbsCls : public Group {
public:
    CElementInfoAbsCls(const char* name, const char* ns, int propertyIndex, XmlElementType elementType,
                       AbstractClassFactory factory, int classIndex = 0);
    CElementInfoAbsCls(const char* name, const char* ns, int propertyIndex, XmlElementType elementType,
                       const IClassFactory* factory, int classIndex);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
    void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                   CXmlWriter* writer) const override;
    void PseudoChildAttributesFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                      std::vector<CXmlAttribute*>& pending) const override;
    bool IsInlinedMember() const override { return m_elementType != QmXmlLib10::XmlElementType_Element; }
    bool IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                         const CXmlElement* element) const override;

    XmlElementType GetElementType() const { return m_elementType; }

private:
    // The concrete object for the element, or null.
    CSmartPtr<CXmlObjectBase> MakeFor(CXmlElement* element) const;

    XmlElementType m_elementType;
    AbstractClassFactory m_factory;
    const IClassFactory* m_contextFactory = nullptr;
    int m_classIndex;
};

// An element wildcard or an element without a type, held as a CElement. Named
// "AnyElement", it takes any element whose namespace passes the restriction;
// under any other name, the element of that name.
// Nil: the element is kept whole, so xsi:nil="true" stays among its attributes
// and is written back; such an element's text and children are dropped (a nil
// element has no content). "false" reads normally; any other value throws
// "Unexpected Value [%s] for 'nil' Attribute found.".
template <class Group, bool Mandatory>
class CElementInfoUntpd : public Group {
public:
    CElementInfoUntpd(const char* name, const char* ns, int propertyIndex, const char* restriction,
                      const char* defaultNamespace);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
    bool IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                         const CXmlElement* element) const override;

    const std::string& GetNamespaceRestriction() const { return m_restriction; }
    const std::string& GetDefaultNamespace() const { return m_defaultNamespace; }

private:
    bool Accepts(const CXmlSerializationContext& ctx, const CXmlObjectBase* obj, const CXmlElement* element,
                 const char* targetNamespace) const;

    std::string m_restriction;
    std::string m_defaultNamespace;
};

// A repeating member held in a collection object (a CXmlCollectionBase in the
// property), which reads consecutive elements itself. The count is validated
// after reading (sequence members also at the end of the sequence, all-group
// members in Validate, choice members when they hold items) and before
// writing (choice members only when they hold items).
template <class Group>
class CElementInfoCol : public Group {
public:
    CElementInfoCol(const char* name, const char* ns, int propertyIndex);
    // The class-collection forms carry the items' element type.
    CElementInfoCol(const char* name, const char* ns, int propertyIndex, XmlElementType elementType);

    bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
    bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool found,
                  bool ownContent) const override;
    bool IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                         const CXmlElement* element) const override;
    bool IsOptionalMember() const override { return true; }
    bool IsCollectionMember() const override { return true; }

    XmlElementType GetElementType() const { return m_elementType; }

private:
    XmlElementType m_elementType = QmXmlLib10::XmlElementType_Element;
};

extern template class CElementInfoPrim<CElementInfoSeq, true>;
extern template class CElementInfoPrim<CElementInfoSeq, false>;
extern template class CElementInfoPrim<CElementInfoAll, true>;
extern template class CElementInfoPrim<CElementInfoAll, false>;
extern template class CElementInfoPrim<CElementInfoChoice, false>;
extern template class CElementInfoEnum<CElementInfoSeq, true>;
extern template class CElementInfoEnum<CElementInfoSeq, false>;
extern template class CElementInfoEnum<CElementInfoAll, true>;
extern template class CElementInfoEnum<CElementInfoAll, false>;
extern template class CElementInfoEnum<CElementInfoChoice, false>;
extern template class CElementInfoCls<CElementInfoSeq, true>;
extern template class CElementInfoCls<CElementInfoSeq, false>;
extern template class CElementInfoCls<CElementInfoAll, true>;
extern template class CElementInfoCls<CElementInfoAll, false>;
extern template class CElementInfoCls<CElementInfoChoice, false>;
extern template class CElementInfoAbsCls<CElementInfoSeq, true>;
extern template class CElementInfoAbsCls<CElementInfoSeq, false>;
extern template class CElementInfoAbsCls<CElementInfoAll, true>;
extern template class CElementInfoAbsCls<CElementInfoAll, false>;
extern template class CElementInfoAbsCls<CElementInfoChoice, false>;
extern template class CElementInfoUntpd<CElementInfoSeq, true>;
extern template class CElementInfoUntpd<CElementInfoSeq, false>;
extern template class CElementInfoUntpd<CElementInfoAll, true>;
extern template class CElementInfoUntpd<CElementInfoAll, false>;
extern template class CElementInfoUntpd<CElementInfoChoice, false>;
extern template class CElementInfoCol<CElementInfoSeq>;
extern template class CElementInfoCol<CElementInfoAll>;
extern template class CElementInfoCol<CElementInfoChoice>;

#define QMXML_ELEMENT_INFO(NAME, ...)      \
    class NAME : public __VA_ARGS__ {      \
        using Base = __VA_ARGS__;          \
                                           \
    public:                                \
        using Base::Base;                  \
    };

// (name, ns, propertyIndex, bool nillable, ItemType, const char* format,
//  CWhitespaceUtils::WhitespaceRule, const CPrimitiveRestrictions&)
QMXML_ELEMENT_INFO(CElementInfoSeqPrimMnd, CElementInfoPrim<CElementInfoSeq, true>)
QMXML_ELEMENT_INFO(CElementInfoSeqPrimOpt, CElementInfoPrim<CElementInfoSeq, false>)
QMXML_ELEMENT_INFO(CElementInfoAllPrimMnd, CElementInfoPrim<CElementInfoAll, true>)
QMXML_ELEMENT_INFO(CElementInfoAllPrimOpt, CElementInfoPrim<CElementInfoAll, false>)
QMXML_ELEMENT_INFO(CElementInfoChoicePrimOpt, CElementInfoPrim<CElementInfoChoice, false>)

// (name, ns, propertyIndex, bool nillable, EnumToString, EnumFromString)
QMXML_ELEMENT_INFO(CElementInfoSeqEnumMnd, CElementInfoEnum<CElementInfoSeq, true>)
QMXML_ELEMENT_INFO(CElementInfoSeqEnumOpt, CElementInfoEnum<CElementInfoSeq, false>)
QMXML_ELEMENT_INFO(CElementInfoAllEnumMnd, CElementInfoEnum<CElementInfoAll, true>)
QMXML_ELEMENT_INFO(CElementInfoAllEnumOpt, CElementInfoEnum<CElementInfoAll, false>)
QMXML_ELEMENT_INFO(CElementInfoChoiceEnumOpt, CElementInfoEnum<CElementInfoChoice, false>)

// Mnd: (name, ns, propertyIndex, XmlElementType, ClassFactory, int classIndex, bool nillable)
// Opt: (name, ns, propertyIndex, XmlElementType, ClassFactory, int classIndex)
QMXML_ELEMENT_INFO(CElementInfoSeqClsMnd, CElementInfoCls<CElementInfoSeq, true>)
QMXML_ELEMENT_INFO(CElementInfoSeqClsOpt, CElementInfoCls<CElementInfoSeq, false>)
QMXML_ELEMENT_INFO(CElementInfoAllClsMnd, CElementInfoCls<CElementInfoAll, true>)
QMXML_ELEMENT_INFO(CElementInfoAllClsOpt, CElementInfoCls<CElementInfoAll, false>)
QMXML_ELEMENT_INFO(CElementInfoChoiceClsOpt, CElementInfoCls<CElementInfoChoice, false>)

// (name, ns, propertyIndex, XmlElementType, AbstractClassFactory[, int])
QMXML_ELEMENT_INFO(CElementInfoSeqAbsClsMnd, CElementInfoAbsCls<CElementInfoSeq, true>)
QMXML_ELEMENT_INFO(CElementInfoSeqAbsClsOpt, CElementInfoAbsCls<CElementInfoSeq, false>)
QMXML_ELEMENT_INFO(CElementInfoChoiceAbsClsOpt, CElementInfoAbsCls<CElementInfoChoice, false>)

// Abstract members of all groups cannot be read: ElementFromXml throws
// CQmException "<class name>::ElementFromXml, has not been implemented fully".
class CElementInfoAllAbsClsMnd : public CElementInfoAbsCls<CElementInfoAll, true> {
    using Base = CElementInfoAbsCls<CElementInfoAll, true>;

public:
    using Base::Base;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
};
class CElementInfoAllAbsClsOpt : public CElementInfoAbsCls<CElementInfoAll, false> {
    using Base = CElementInfoAbsCls<CElementInfoAll, false>;

public:
    using Base::Base;
    bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                        CXmlElement** current, const char* targetNamespace, XmlElementType type) override;
};

// (name, ns, propertyIndex, const char* restriction, const char* defaultNamespace)
QMXML_ELEMENT_INFO(CElementInfoSeqUntpdMnd, CElementInfoUntpd<CElementInfoSeq, true>)
QMXML_ELEMENT_INFO(CElementInfoSeqUntpdOpt, CElementInfoUntpd<CElementInfoSeq, false>)
QMXML_ELEMENT_INFO(CElementInfoAllUntpdMnd, CElementInfoUntpd<CElementInfoAll, true>)
QMXML_ELEMENT_INFO(CElementInfoAllUntpdOpt, CElementInfoUntpd<CElementInfoAll, false>)
QMXML_ELEMENT_INFO(CElementInfoChoiceUntpdOpt, CElementInfoUntpd<CElementInfoChoice, false>)

// (name, ns, propertyIndex); the class forms add XmlElementType. The Non forms
// behave as the plain ones: the collection object decides everything.
QMXML_ELEMENT_INFO(CElementInfoSeqCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoiceCol, CElementInfoCol<CElementInfoChoice>)
QMXML_ELEMENT_INFO(CElementInfoSeqPrimCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllPrimCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoicePrimCol, CElementInfoCol<CElementInfoChoice>)
QMXML_ELEMENT_INFO(CElementInfoSeqEnumCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllEnumCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoiceEnumCol, CElementInfoCol<CElementInfoChoice>)
QMXML_ELEMENT_INFO(CElementInfoSeqUntpdCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllUntpdCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoiceUntpdCol, CElementInfoCol<CElementInfoChoice>)
QMXML_ELEMENT_INFO(CElementInfoSeqNonCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllNonCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoSeqClsCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllClsCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoiceClsCol, CElementInfoCol<CElementInfoChoice>)
QMXML_ELEMENT_INFO(CElementInfoSeqAbsClsCol, CElementInfoCol<CElementInfoSeq>)
QMXML_ELEMENT_INFO(CElementInfoAllAbsClsCol, CElementInfoCol<CElementInfoAll>)
QMXML_ELEMENT_INFO(CElementInfoChoiceAbsClsCol, CElementInfoCol<CElementInfoChoice>)

#undef QMXML_ELEMENT_INFO

}  // namespace QmXmlLib10Data
