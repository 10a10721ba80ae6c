// The base of the element infos, which move one child-element member of a
// generated class between the document tree (or a writer) and the object, and
// the three group bases (sequence, all, choice) that the concrete infos of
// element_infos.h derive from.
#pragma once

#include <string>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/variant.h"

namespace QmXmlLib10 {
class CXmlAttribute;
class CXmlElement;
class CXmlWriter;
class CXmlObjectBase;
}  // namespace QmXmlLib10

namespace QmXmlLib10Data {

using QmXmlLib10::ItemType;
using QmXmlLib10::XmlElementType;
using QmXmlLib10::CPrimitiveRestrictions;
using QmXmlLib10::CXmlAttribute;
using QmXmlLib10::CXmlElement;
using QmXmlLib10::CXmlGeneratedClass;
using QmXmlLib10::CXmlObjectBase;
using QmXmlLib10::CXmlSerializationContext;
using QmXmlLib10::CXmlWriter;
using QmXmlLib10::QmVariant;

class CElementInfo {
public:
    CElementInfo(const char* name, const char* ns, int propertyIndex);
    CElementInfo(const CElementInfo&) = default;
    CElementInfo& operator=(const CElementInfo&) = default;
    virtual ~CElementInfo();

    // Writes the member; true when something was written.
    virtual bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                              CXmlWriter* writer) const = 0;
    // When *current is this member's element (or elements), reads it into obj,
    // moves *current past what it consumed and returns true; otherwise returns
    // false without consuming.
    virtual bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement* parent,
                                CXmlElement** current, const char* targetNamespace, XmlElementType type) = 0;
    // Checks the member after its group was read: found tells whether
    // ElementFromXml consumed it, ownContent whether the group is the
    // element's own content (not inlined). False stops reading the group.
    virtual bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool found,
                          bool ownContent) const = 0;
    // Writes the attributes of an inlined member class onto the parent element.
    virtual void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                           CXmlWriter* writer) const;
    // The reading side: the attributes of the parent element that the
    // parent's own named infos left are offered to each inlined member class
    // once the parent's content was read; the member takes (and removes from
    // `pending`) those its infos claim. Does nothing by default.
    virtual void PseudoChildAttributesFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj,
                                              std::vector<CXmlAttribute*>& pending) const;
    // True for a class member whose content is inlined in the parent's element.
    virtual bool IsInlinedMember() const { return false; }
    // True when the element would be read by this member, without reading it.
    // The content-model readers use it to tell unknown elements from late ones.
    virtual bool IsMemberElement(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj,
                                 const CXmlElement* element) const;
    // Optional members of sequences and all groups, and every collection.
    virtual bool IsOptionalMember() const { return false; }
    virtual bool IsCollectionMember() const { return false; }

    const std::string& GetElementName() const { return m_elementName; }
    const std::string& GetElementNamespace() const { return m_elementNamespace; }
    int GetPropertyIndex() const { return m_propertyIndex; }

    // The namespace of a new wildcard element of an untyped member, chosen by
    // the wildcard's restriction: "##any" ns; "##other" "" (or
    // "DefaultNamespace" when ns is empty); "##local" ""; "##targetNamespace"
    // targetNamespace (or ns when that is null); a list: its first entry.
    static std::string GetAnyDefaultNamespace(const char* restriction, const char* ns,
                                              const char* targetNamespace);

protected:
    void ReadProperty(const CXmlGeneratedClass* obj, QmVariant& value) const;
    void AccessProperty(CXmlGeneratedClass* obj, bool read, QmVariant& value) const;
    bool IsThisElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const;

    bool ElementToXmlPrim(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, CXmlWriter* writer,
                          ItemType type, const std::string& format, const CPrimitiveRestrictions& facets) const;
    bool ElementToXmlEnum(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, CXmlWriter* writer,
                          const char* (*toString)(int)) const;
    // substitutable: abstract-class members, written under the element name
    // the object was read with. classDiffers: the object is not of the declared
    // class (xsi:type is then written when the context allows it).
    bool ElementToXmlCls(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, CXmlWriter* writer,
                         bool asChoiceMember, bool substitutable = false, bool classDiffers = false) const;
    // The same for a member object already read from the property.
    void WriteClassMember(const CXmlSerializationContext& ctx, const CXmlObjectBase* member, CXmlWriter* writer,
                          bool asChoiceMember, bool substitutable, bool classDiffers) const;
    // Validates the count (a choice member's only when it has items) and writes
    // the collection; true when it holds items.
    bool ElementToXmlCol(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, CXmlWriter* writer,
                         bool asChoiceMember) const;

    static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                    const CXmlSerializationContext& ctx);
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* current,
                                    const CXmlSerializationContext& ctx, bool isRoot);

    // The value of the element's xsi:nil attribute: 1 "true", 0 "false" or
    // absent; any other value throws "Unexpected Value [%s] for 'nil' Attribute found."
    static bool IsNilElement(const CXmlElement* element);
    // Throws "Invalid use of 'nil' attibute in non-nillable element [%s]".
    [[noreturn]] void ThrowNotNillable() const;
    // Throws "Failed to find a required element [%s]".
    [[noreturn]] void ThrowRequired() const;
    // Positions *current on this member's element. A mandatory sequence member
    // skips unknown elements under IgnoreUnknownElements, answers false under
    // IgnoreMissingMandatoryElements and throws ThrowRequired otherwise; every
    // other member answers false when *current is not its element.
    bool FindElement(const CXmlSerializationContext& ctx, CXmlElement** current, bool mandatorySequence) const;
    // Reads a member of simple type: finds its element, takes xsi:nil (when
    // nillable) or lets parse(element, value) fill the value, stores it and
    // moves *current past the element. False when the element is not there.
    template <class Parse>
    bool ReadSimpleElement(const CXmlSerializationContext& ctx, CXmlGeneratedClass* obj, CXmlElement** current,
                           bool mandatorySequence, bool nillable, Parse&& parse) const;

private:
    std::string m_elementName;
    std::string m_elementNamespace;
    int m_propertyIndex;
};

// Group bases. The bool is the member's optional flag (false by default).
// The sequence and choice forms must never be asked to validate.
class CElementInfoSeq : public CElementInfo {
public:
    CElementInfoSeq(const char* name, const char* ns, int propertyIndex);
    CElementInfoSeq(const char* name, const char* ns, int propertyIndex, bool optional);
    bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool found,
                  bool ownContent) const override;
    bool IsOptionalMember() const override { return m_optional; }

protected:
    bool IsOptional() const { return m_optional; }

private:
    bool m_optional = false;
};

// A mandatory member that was not found fails with "Failed to find the
// mandatory element [%s]" in the element's own content; an inlined all group
// missing it is reported absent (false).
class CElementInfoAll : public CElementInfo {
public:
    CElementInfoAll(const char* name, const char* ns, int propertyIndex);
    CElementInfoAll(const char* name, const char* ns, int propertyIndex, bool optional);
    bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool found,
                  bool ownContent) const override;
    bool IsOptionalMember() const override { return m_optional; }

protected:
    bool IsOptional() const { return m_optional; }

private:
    bool m_optional = false;
};

// Choice members are optional by nature but do not count as optional members
// of the class: the choice itself must be present.
class CElementInfoChoice : public CElementInfo {
public:
    CElementInfoChoice(const char* name, const char* ns, int propertyIndex);
    CElementInfoChoice(const char* name, const char* ns, int propertyIndex, bool optional);
    bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* obj, bool found,
                  bool ownContent) const override;

protected:
    bool IsOptional() const { return true; }
};

}  // namespace QmXmlLib10Data
