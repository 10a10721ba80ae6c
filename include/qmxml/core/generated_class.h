// The base of every class a code generator emits for a schema type. The class
// describes its members with static metadata (one parent element info, a
// null-terminated array of element infos, a null-terminated array of attribute
// infos) and CXmlGeneratedClass reads and writes it by walking that metadata.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qmxml/core/object_base.h"
#include "qmxml/types/variant.h"

namespace QmXmlLib10Data {
class CParentElementInfo;
class CElementInfo;
class CAttributeInfo;
}  // namespace QmXmlLib10Data

namespace QmXmlLib10 {

class CXmlAttribute;
class CXmlGeneratedClass;

// An object that may be written as an empty element with xsi:nil="true".
class INillable {
public:
    virtual bool IsNil() const = 0;
    virtual void SetNil(bool nil) = 0;

protected:
    virtual ~INillable() = default;
};

// Lets the metadata and the collections reach the protected operations of the
// objects they bind. Not for application code.
class CXmlObjectAccess {
public:
    static CXmlElement* FromXml(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* current,
                                const CXmlSerializationContext& ctx, bool isRoot) {
        return object->FromXml_Int(parent, current, ctx, isRoot);
    }
    static void ToXml(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot, const char* elementName,
                      const CXmlSerializationContext& ctx, bool asChoiceMember) {
        object->ToXml_Int(writer, isRoot, elementName, ctx, asChoiceMember);
    }
    static void AttributesToXml(const CXmlObjectBase* object, CXmlWriter* writer,
                                const CXmlSerializationContext& ctx) {
        object->AttributesToXml_Int(writer, ctx);
    }
    // Offers attributes of the parent element to an inlined member object
    // (a CXmlGeneratedClass; anything else takes none). Returns how many it took.
    static int ReadPseudoChildAttributes(CXmlObjectBase* object, const CXmlSerializationContext& ctx,
                                         std::vector<CXmlAttribute*>& pending, bool validate);
    static void SetElementName(CXmlObjectBase* object, const char* name) { object->SetElementName(name); }
    // For collections read while the document is parsed: the item elements
    // after `first` and before `upTo`, all read, are freed (none when nothing
    // can come back to them, or the tree is not being parsed), so that memory
    // follows the depth of the document, not the number of items.
    static void ReleaseReadItems(CXmlElement* parent, CXmlElement* first, const CXmlElement* upTo) noexcept;
    static const std::string& GetRecordedElementName(const CXmlObjectBase* object) {
        return object->GetRecordedElementName();
    }
    // Writes a class member: under its recorded element name when
    // `substitutable` and one was recorded, otherwise under `declaredName`;
    // with xsi:type when the context allows it, the object's class is not the
    // declared one and the object names a type (CXmlGeneratedClass::GetTypeName).
    static void WriteMember(const CXmlObjectBase* object, CXmlWriter* writer, const char* declaredName,
                            const CXmlSerializationContext& ctx, bool asChoiceMember, bool substitutable,
                            bool classDiffers);
};

// What a generated class supplies:
//   - AccessProperty: reads (read true) or stores the member with the index the
//     metadata names. Class members travel as objects (QmVariant::SetXmlObject),
//     collections as collections (SetXmlCollection), enumerations as i4; an
//     unset optional member reads as an invalid variant, a nil one as nil.
//     Storing may take the value out of the variant (QmVariant::TakeString and
//     the like): the library drops the variant afterwards.
//   - GetClassInfo, GetClassElementInfo, GetClassAttributeInfo: the static
//     metadata. CleanMetaData frees it: then the infos must come from `new` and
//     the arrays from `new[]`.
//   - Init: back to the initial state: optional members unset, class members
//     of mandatory elements present, collections present and empty.
//   - GetBase, and GetTypeName when the class takes part in xsi:type
//     substitution (see below).
//
// Nil: the base keeps the flag (SetNil/IsNil). Reading clears it after Init and
// sets it for an element with xsi:nil="true"; such an element's attributes are
// still read, its content is not. A nil object writes its start tag,
// attributes, xsi:nil="true" and nothing else. Whether a member may be nil is
// the element info's business.
//
// Attributes of inlined members: an inlined member class (element type not 0)
// writes its attributes onto the parent element, and reads them from there.
// The parent's named attribute infos claim first; what they leave is, once the
// content was read, offered to the inlined members in element-info order
// (each takes with its named infos, then its wildcard, then passes the rest to
// its own inlined members), then to the parent's wildcard; whatever remains
// is an unknown attribute. A member that exists checks its required
// attributes; an absent optional member is created when it takes one.
//
// Substitution: an object read through an abstract-class member records the
// element name it was read from and is written under that name again. An
// object whose run-time class differs from the member's declared class writes
// xsi:type="<GetTypeName()>" when the context's WriteTypeAttribute is on and
// the type name is not empty (the default is empty: no xsi:type). The type name
// is written as given; a prefixed name needs its prefix among the context's
// namespace aliases.
//
// Root: the document element must match GetElementName() and
// GetTargetNamespace() (the parent info's name and namespace unless
// overridden) under the context's matching rules; otherwise
// CQmValidationException "Unexpected root element [%s], expected [%s]".
namespace Generated {
struct CMemberChecks;
}

class CXmlGeneratedClass : public CXmlObjectBase, public INillable {
public:
    CXmlGeneratedClass() = default;
    CXmlGeneratedClass(const CXmlGeneratedClass& other) = default;
    CXmlGeneratedClass& operator=(const CXmlGeneratedClass& other) = default;
    ~CXmlGeneratedClass() override;

    virtual void AccessProperty(int propertyIndex, bool read, QmVariant& value) = 0;
    virtual QmXmlLib10Data::CParentElementInfo* GetClassInfo() const = 0;
    virtual QmXmlLib10Data::CElementInfo** GetClassElementInfo() const = 0;
    virtual QmXmlLib10Data::CAttributeInfo** GetClassAttributeInfo() const = 0;
    virtual void Init() = 0;

    // The schema type name written in xsi:type; empty writes none.
    virtual std::string GetTypeName() const { return std::string(); }
    // The namespace of that type. Empty (the default) writes the type name
    // as it is; otherwise xsi:type carries the name qualified for the
    // writer's scope (CXmlWriter::QualifyName), a prefix being declared on
    // the element when the namespace has none there.
    virtual std::string GetTypeNamespace() const { return std::string(); }
    // Whether the two objects are of one class, as xsi:type tells classes
    // apart: by C++ type, unless a class built at run time says otherwise.
    virtual bool HasSameClassAs(const CXmlGeneratedClass& other) const;
    // The members the document-wide checks and the prefix search walk
    // (Generated::CMemberCheck); null when the class has none.
    virtual const Generated::CMemberChecks* GetMemberChecks() const { return nullptr; }

    // Namespace declarations (prefix, URI) written on the object's element
    // when it is written as a root: the prefixes of the document it was read
    // from that its values use as QNames, so that they mean what they meant.
    void SetValuePrefixes(std::vector<std::pair<std::string, std::string>> prefixes);

    // The recorded element name when there is one, else the parent info's.
    std::string GetElementName() const override;
    // The parent info's namespace.
    std::string GetTargetNamespace() const override;

    bool IsNil() const override { return m_nil; }
    void SetNil(bool nil) override { m_nil = nil; }

    // Property access with read true, for const callers.
    void ReadProperty(int index, QmVariant& value) const;
    int GetClassElementInfoCount() const;
    // True when some element info of the class claims the element.
    bool IsElementInList(const CXmlSerializationContext& ctx, CXmlElement* element) const;
    // True when an optional member of a sequence or all group, or any
    // collection member, exists (choice members do not count).
    bool DoesElementContainOptionalElements() const;

    // Deletes the infos and the arrays (which must come from new / new[]) and
    // nulls the three pointers.
    static void CleanMetaData(QmXmlLib10Data::CParentElementInfo*& parentInfo,
                              QmXmlLib10Data::CElementInfo**& elementInfo,
                              QmXmlLib10Data::CAttributeInfo**& attributeInfo);

protected:
    friend class CXmlObjectAccess;

    const CXmlGeneratedClass* AsGeneratedClass() const override { return this; }
    // asChoiceMember: the object is an optional inlined member, so an empty
    // choice as its content means the member is absent, not an error.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;
    void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;

    // Writes the object's element (or inlined content), with xsi:type="xsiType" when not null.
    void WriteObject(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                     bool asChoiceMember, const char* xsiType) const;

private:
    // Shared between copies: set once after reading, read when writing.
    std::shared_ptr<const std::vector<std::pair<std::string, std::string>>> m_valuePrefixes;

    void ReadSimpleContent(const CXmlElement* element);
    void WriteSimpleContent(CXmlWriter* writer) const;

    // Attributes that the named infos leave go to `deferred` (given when the
    // class has inlined members), for ProcessDeferredAttributes after the content.
    void ProcessAttributesFromXml(const CXmlSerializationContext& ctx, CXmlElement* element, bool isRoot,
                                  std::vector<CXmlAttribute*>* deferred);
    void ProcessDeferredAttributes(const CXmlSerializationContext& ctx, std::vector<CXmlAttribute*>& deferred);
    // Reads and removes the attributes of `pending` that this (inlined) object
    // claims; checks its required attributes when `validate` or when it took any.
    int TakePseudoChildAttributes(const CXmlSerializationContext& ctx, std::vector<CXmlAttribute*>& pending,
                                  bool validate);
    // Offers `attribute` to the named infos (wildcards false) or the wildcard infos.
    // found has one flag per attribute info (or is null when nobody asks).
    bool ClaimAttribute(const CXmlSerializationContext& ctx, CXmlAttribute* attribute, bool wildcards,
                        char* found);
    bool HasInlinedMembers() const;
    [[noreturn]] static void ThrowUnknownAttribute(const CXmlAttribute* attribute);
    void ProcessAttributesToXml(const CXmlSerializationContext& ctx, QmXmlLib10Data::CElementInfo** elementInfo,
                                QmXmlLib10Data::CAttributeInfo** attributeInfo, CXmlWriter* writer) const;
    CXmlElement* ProcessElementSeqFromXml(const CXmlSerializationContext& ctx, CXmlElement* parent,
                                          CXmlElement* current, XmlElementType elementType);
    CXmlElement* ProcessElementAllFromXml(const CXmlSerializationContext& ctx, CXmlElement* parent,
                                          CXmlElement* current, XmlElementType elementType);
    // emptyAllowed: an empty choice is not an error.
    CXmlElement* ProcessElementChoiceFromXml(const CXmlSerializationContext& ctx, CXmlElement* parent,
                                             CXmlElement* current, XmlElementType elementType, bool emptyAllowed);
    void ProcessElementAllToXml(const CXmlSerializationContext& ctx, QmXmlLib10Data::CElementInfo** elementInfo,
                                CXmlWriter* writer) const;
    void ProcessElementChoiceToXml(const CXmlSerializationContext& ctx, QmXmlLib10Data::CElementInfo** elementInfo,
                                   CXmlWriter* writer, bool emptyAllowed) const;
    // An element left over in the object's own content.
    [[noreturn]] static void ThrowLeftover(const CXmlElement* parent, const CXmlElement* current);
    bool IsClaimedFrom(const CXmlSerializationContext& ctx, const CXmlElement* element, int from) const;

    bool m_nil = false;
};

// Base of the generated class factories. The static helpers read the xsi:type
// attribute ("type" in the XML Schema instance namespace) of an element, for
// the abstract-class factories that pick the concrete class from it.
class CClassfactoryBase {
public:
    static constexpr const char* XsiNamespaceURI = "http://www.w3.org/2001/XMLSchema-instance";

    virtual ~CClassfactoryBase();

    static bool HasTypeAttribute(const CXmlElement* element);
    // The attribute's value as written ("p:Name"), "" when absent.
    static std::string GetTypeAttribute(const CXmlElement* element);
    // The value without its prefix ("Name").
    static std::string GetTypeLocalName(const CXmlElement* element);
};

}  // namespace QmXmlLib10
