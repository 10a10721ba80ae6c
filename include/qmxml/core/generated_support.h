// What every generated class would otherwise repeat: the property-access
// helpers of AccessProperty, the failures of unknown indices and unset optional
// members, member resets for Init, the equality helpers, factory plumbing,
// the facet checks of setters and the check of a mandatory inlined choice.
// Generated code, the bundled examples and the tests all use these, so that
// a fix here reaches every bound class at once.
//
// Conventions the helpers share (those of CXmlGeneratedClass::AccessProperty):
// `read` true copies the member into the variant, false stores the variant
// into the member. An unset optional member reads as an invalid variant; a nil
// one as a nil variant. Storing an invalid or nil variant unsets an optional
// member. Storing may take the value out of the variant (the library drops
// the variant afterwards), which saves a copy of strings, decimals and binary
// data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "qmxml/collections/class_collection.h"
#include "qmxml/collections/element.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/core/smart_ptr.h"
#include "qmxml/metadata/element_infos.h"
#include "qmxml/types/binary_data.h"
#include "qmxml/types/big_integer.h"
#include "qmxml/types/date_time.h"
#include "qmxml/types/date_time_span.h"
#include "qmxml/types/decimal.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/variant.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Generated {

// ------------------------------------------------------------------ failures

// The default branch of AccessProperty's switch. Throws CQmInvalidParamException
// "Unknown property index [<index>] for the class [<className>]".
[[noreturn]] void ThrowUnknownProperty(const char* className, int propertyIndex);

// The getter of an optional member that is not set. Throws
// CQmInvalidStateException "The optional member [<member>] is not set".
[[noreturn]] void ThrowNotSet(const char* member);

// The value of an optional member for its getter; ThrowNotSet when unset.
template <class T>
const T& GetOptional(const std::optional<T>& field, const char* member) {
    if (!field) ThrowNotSet(member);
    return *field;
}

// ------------------------------------------------------------------ value codecs

// How one kind of value travels in a QmVariant. The Access helpers below are
// written once over these; a codec is a small object because some kinds
// (dates, binary data) need the member's item type to pick the variant's type.
namespace Codec {

struct String {
    void Put(QmVariant& v, const std::string& value) const { v.SetString(value); }
    std::string Take(QmVariant& v) const { return v.TakeString(); }
};

struct Boolean {
    void Put(QmVariant& v, bool value) const { v.SetBoolean(value); }
    bool Take(QmVariant& v) const { return v.GetBoolean(); }
};

struct Decimal {
    void Put(QmVariant& v, const CDecimal& value) const { v.SetDecimal(value); }
    CDecimal Take(QmVariant& v) const { return v.TakeDecimal(); }
};

struct Integer {
    void Put(QmVariant& v, const CBigInteger& value) const { v.SetInteger(value); }
    CBigInteger Take(QmVariant& v) const { return v.TakeInteger(); }
};

struct Duration {
    void Put(QmVariant& v, const CDateTimeSpan& value) const { v.SetDuration(value); }
    CDateTimeSpan Take(QmVariant& v) const { return v.GetDuration(); }
};

// date, dateTime, time, gYearMonth and gMonthDay members are CDateTime; the
// item type of the metadata tells which one the variant carries.
struct DateTime {
    ItemType type;
    void Put(QmVariant& v, const CDateTime& value) const;
    CDateTime Take(QmVariant& v) const;
};

// hexBinary and base64Binary members are CBinaryData.
struct Binary {
    ItemType type;
    void Put(QmVariant& v, const CBinaryData& value) const;
    CBinaryData Take(QmVariant& v) const;
};

// The numeric member types, each with the variant type of its item type:
// char i1, short i2, std::int32_t i4, std::int64_t i8, unsigned char ui1,
// unsigned short ui2, std::uint32_t ui4, std::uint64_t ui8, float r4, double r8.
template <class T>
struct Number;

#define QMXML_GENERATED_NUMBER(T, SET, GET, ITEM)                   \
    template <>                                                     \
    struct Number<T> {                                              \
        static constexpr ItemType kItemType = ITEM;                 \
        void Put(QmVariant& v, T value) const { v.SET(value); }     \
        T Take(QmVariant& v) const { return v.GET(); }              \
    };
QMXML_GENERATED_NUMBER(char, SetI1, GetI1, ItemType_i1)
QMXML_GENERATED_NUMBER(short, SetI2, GetI2, ItemType_i2)
QMXML_GENERATED_NUMBER(std::int32_t, SetI4, GetI4, ItemType_i4)
QMXML_GENERATED_NUMBER(std::int64_t, SetI8, GetI8, ItemType_i8)
QMXML_GENERATED_NUMBER(unsigned char, SetUI1, GetUI1, ItemType_ui1)
QMXML_GENERATED_NUMBER(unsigned short, SetUI2, GetUI2, ItemType_ui2)
QMXML_GENERATED_NUMBER(std::uint32_t, SetUI4, GetUI4, ItemType_ui4)
QMXML_GENERATED_NUMBER(std::uint64_t, SetUI8, GetUI8, ItemType_ui8)
QMXML_GENERATED_NUMBER(float, SetR4, GetR4, ItemType_r4)
QMXML_GENERATED_NUMBER(double, SetR8, GetR8, ItemType_r8)
#undef QMXML_GENERATED_NUMBER

// Enumerations travel as i4 (the value the enumeration's converters take).
template <class E>
struct Enum {
    void Put(QmVariant& v, E value) const { v.SetI4(static_cast<std::int32_t>(value)); }
    E Take(QmVariant& v) const { return static_cast<E>(v.GetI4()); }
};

// A member that must be present: always read, always stored.
template <class C, class T>
void Access(bool read, QmVariant& v, T& field, const C& codec) {
    if (read) codec.Put(v, field); else field = codec.Take(v);
}

// An optional member: unset reads as invalid; invalid or nil stored unsets it.
template <class C, class T>
void Access(bool read, QmVariant& v, std::optional<T>& field, const C& codec) {
    if (read) {
        if (field) codec.Put(v, *field); else v.SetInvalid();
    } else if (v.IsValid() && !v.IsNil()) {
        field = codec.Take(v);
    } else {
        field.reset();
    }
}

// An optional member of a nillable element: nil is a third state beside set
// and unset, kept in its own flag so that the value's type stays plain.
template <class C, class T>
void Access(bool read, QmVariant& v, std::optional<T>& field, bool& nil, const C& codec) {
    if (read) {
        if (nil) v.SetNil(); else Access(read, v, field, codec);
        return;
    }
    nil = v.IsNil();
    Access(read, v, field, codec);
}

}  // namespace Codec

// ------------------------------------------------------------------ property access

// Each kind of value has one name, with three forms: a mandatory member
// (plain T), an optional member (std::optional<T>) and an optional member of
// a nillable element (std::optional<T> plus its nil flag).

inline void AccessString(bool read, QmVariant& v, std::string& field) {
    Codec::Access(read, v, field, Codec::String{});
}
inline void AccessString(bool read, QmVariant& v, std::optional<std::string>& field) {
    Codec::Access(read, v, field, Codec::String{});
}
inline void AccessString(bool read, QmVariant& v, std::optional<std::string>& field, bool& nil) {
    Codec::Access(read, v, field, nil, Codec::String{});
}

inline void AccessBoolean(bool read, QmVariant& v, bool& field) { Codec::Access(read, v, field, Codec::Boolean{}); }
inline void AccessBoolean(bool read, QmVariant& v, std::optional<bool>& field) {
    Codec::Access(read, v, field, Codec::Boolean{});
}
inline void AccessBoolean(bool read, QmVariant& v, std::optional<bool>& field, bool& nil) {
    Codec::Access(read, v, field, nil, Codec::Boolean{});
}

// Any of the numeric types Codec::Number lists.
template <class T>
void AccessNumber(bool read, QmVariant& v, T& field) {
    Codec::Access(read, v, field, Codec::Number<T>{});
}
template <class T>
void AccessNumber(bool read, QmVariant& v, std::optional<T>& field) {
    Codec::Access(read, v, field, Codec::Number<T>{});
}
template <class T>
void AccessNumber(bool read, QmVariant& v, std::optional<T>& field, bool& nil) {
    Codec::Access(read, v, field, nil, Codec::Number<T>{});
}

inline void AccessDecimal(bool read, QmVariant& v, CDecimal& field) { Codec::Access(read, v, field, Codec::Decimal{}); }
inline void AccessDecimal(bool read, QmVariant& v, std::optional<CDecimal>& field) {
    Codec::Access(read, v, field, Codec::Decimal{});
}
inline void AccessDecimal(bool read, QmVariant& v, std::optional<CDecimal>& field, bool& nil) {
    Codec::Access(read, v, field, nil, Codec::Decimal{});
}

inline void AccessInteger(bool read, QmVariant& v, CBigInteger& field) {
    Codec::Access(read, v, field, Codec::Integer{});
}
inline void AccessInteger(bool read, QmVariant& v, std::optional<CBigInteger>& field) {
    Codec::Access(read, v, field, Codec::Integer{});
}

inline void AccessDuration(bool read, QmVariant& v, CDateTimeSpan& field) {
    Codec::Access(read, v, field, Codec::Duration{});
}
inline void AccessDuration(bool read, QmVariant& v, std::optional<CDateTimeSpan>& field) {
    Codec::Access(read, v, field, Codec::Duration{});
}

// type: ItemType_date, _datetime, _time, _yearMonth or _monthDay, as in the
// member's metadata. Any other type throws CQmInvalidParamException
// "The item type [<type>] is not a date or time held in a CDateTime".
inline void AccessDateTime(bool read, QmVariant& v, CDateTime& field, ItemType type) {
    Codec::Access(read, v, field, Codec::DateTime{type});
}
inline void AccessDateTime(bool read, QmVariant& v, std::optional<CDateTime>& field, ItemType type) {
    Codec::Access(read, v, field, Codec::DateTime{type});
}
inline void AccessDateTime(bool read, QmVariant& v, std::optional<CDateTime>& field, bool& nil, ItemType type) {
    Codec::Access(read, v, field, nil, Codec::DateTime{type});
}

// type: ItemType_hexBinary or ItemType_base64Binary, as in the member's
// metadata. Any other type throws CQmInvalidParamException
// "The item type [<type>] is not binary data".
inline void AccessBinary(bool read, QmVariant& v, CBinaryData& field, ItemType type) {
    Codec::Access(read, v, field, Codec::Binary{type});
}
inline void AccessBinary(bool read, QmVariant& v, std::optional<CBinaryData>& field, ItemType type) {
    Codec::Access(read, v, field, Codec::Binary{type});
}

// An enumeration member of enum type E (values as its converters number them).
template <class E>
void AccessEnum(bool read, QmVariant& v, E& field) {
    Codec::Access(read, v, field, Codec::Enum<E>{});
}
template <class E>
void AccessEnum(bool read, QmVariant& v, std::optional<E>& field) {
    Codec::Access(read, v, field, Codec::Enum<E>{});
}
template <class E>
void AccessEnum(bool read, QmVariant& v, std::optional<E>& field, bool& nil) {
    Codec::Access(read, v, field, nil, Codec::Enum<E>{});
}

// A class member (a generated class or CElement). Storing an object of another
// class than T leaves the member null: the metadata's factories only create T.
template <class T>
void AccessObject(bool read, QmVariant& v, CSmartPtr<T>& field) {
    if (read) v.SetXmlObject(field); else field = dynamic_cast<T*>(v.GetXmlObject().Get());
}

// A collection member (primitive, class or wildcard collection).
template <class T>
void AccessCollection(bool read, QmVariant& v, CSmartPtr<T>& field) {
    if (read) v.SetXmlCollection(field); else field = dynamic_cast<T*>(v.GetXmlCollection().Get());
}

// ------------------------------------------------------------------ the whole switch

// AccessProperty's switch in one call: the member at `propertyIndex` of the
// list (which follows the class's property enumeration) is read or stored by
// the helper its C++ type calls for; an index outside the list is
// ThrowUnknownProperty(className, propertyIndex). Members whose type does not
// tell everything go through a proxy: AsDateTime and AsBinary name the item
// type, AsNillable adds a nil flag. A list may hold types of the caller's own:
// AccessMember is looked up by argument-dependent lookup as well.
//
//   void CLineType::AccessProperty(int index, bool read, QmVariant& value) {
//       AccessMembers("CLineType", index, read, value, m_Sku, m_Quantity, m_UnitPrice, m_Discount);
//   }

// The codec a plain member type travels with; no `type` for the others.
template <class T, class = void>
struct CodecFor {};
template <>
struct CodecFor<std::string> {
    using type = Codec::String;
};
template <>
struct CodecFor<bool> {
    using type = Codec::Boolean;
};
template <>
struct CodecFor<CDecimal> {
    using type = Codec::Decimal;
};
template <>
struct CodecFor<CBigInteger> {
    using type = Codec::Integer;
};
template <>
struct CodecFor<CDateTimeSpan> {
    using type = Codec::Duration;
};
template <class T>
struct CodecFor<T, std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool>>> {
    using type = Codec::Number<T>;
};
template <class T>
struct CodecFor<T, std::enable_if_t<std::is_enum_v<T>>> {
    using type = Codec::Enum<T>;
};

// A member (plain or optional) with the codec its type alone does not pick:
// AsDateTime and AsBinary name the item type it travels as.
template <class C, class F>
struct CodedMember {
    F& field;
    C codec;
};
template <class F>
CodedMember<Codec::DateTime, F> AsDateTime(F& field, ItemType type) {
    return {field, Codec::DateTime{type}};
}
template <class F>
CodedMember<Codec::Binary, F> AsBinary(F& field, ItemType type) {
    return {field, Codec::Binary{type}};
}

// An optional member of a nillable element with its nil flag.
template <class T>
struct NillableMember {
    std::optional<T>& field;
    bool& nil;
};
template <class T>
NillableMember<T> AsNillable(std::optional<T>& field, bool& nil) {
    return {field, nil};
}

template <class T>
auto AccessMember(bool read, QmVariant& v, T& field) -> std::void_t<typename CodecFor<T>::type> {
    Codec::Access(read, v, field, typename CodecFor<T>::type{});
}
template <class T>
auto AccessMember(bool read, QmVariant& v, std::optional<T>& field) -> std::void_t<typename CodecFor<T>::type> {
    Codec::Access(read, v, field, typename CodecFor<T>::type{});
}
template <class T>
void AccessMember(bool read, QmVariant& v, NillableMember<T> member) {
    Codec::Access(read, v, member.field, member.nil, typename CodecFor<T>::type{});
}
template <class C, class F>
void AccessMember(bool read, QmVariant& v, CodedMember<C, F> member) {
    Codec::Access(read, v, member.field, member.codec);
}
// A member held as the variant itself (item types without a C++ type of
// their own, values of nillable elements): an invalid variant is unset.
inline void AccessMember(bool read, QmVariant& v, QmVariant& field) {
    if (read) v = field; else field = std::move(v);
}
// Collections travel as collections, every other object as an object.
template <class T>
void AccessMember(bool read, QmVariant& v, CSmartPtr<T>& field) {
    if constexpr (std::is_base_of_v<CXmlCollectionBase, T>) {
        AccessCollection(read, v, field);
    } else {
        AccessObject(read, v, field);
    }
}

template <class... Members>
void AccessMembers(const char* className, int propertyIndex, [[maybe_unused]] bool read,
                   [[maybe_unused]] QmVariant& v, Members&&... members) {
    // A class without members uses neither read nor v (the fold is empty).
    [[maybe_unused]] int index = 0;
    // Short-circuits at the member found: no more than one access per call.
    const bool found = ((index++ == propertyIndex ? (AccessMember(read, v, members), true) : false) || ...);
    if (!found) ThrowUnknownProperty(className, propertyIndex);
}

// ------------------------------------------------------------------ Init

// Init's resets of simple members in one call: optional members unset,
// strings emptied, flags (a nil flag, a choice's selection) cleared. Other
// member types join through a ClearValue of their own, found by
// argument-dependent lookup.
inline void ClearValue(std::string& text) { text.clear(); }
inline void ClearValue(bool& flag) { flag = false; }
inline void ClearValue(QmVariant& value) { value.SetInvalid(); }
template <class T>
void ClearValue(std::optional<T>& field) {
    field.reset();
}
template <class... Members>
void ClearValues(Members&... members) {
    (ClearValue(members), ...);
}

// Init runs at the start of every read. A member object nobody else holds is
// reset in place (its own Init) rather than freed and allocated again; one
// that is shared, or absent, is replaced by a new T.
template <class T>
void ResetMember(CSmartPtr<T>& field) {
    if (field && field->GetRefCount() == 1) field->Init(); else field = new T();
}

// The same for a collection member: emptied in place when nobody else holds
// it, otherwise replaced by `new C(constructorArguments...)` (the arguments
// the member's collection is always built with: element name, namespace,
// bounds, and for abstract classes the factory).
template <class C, class... Args>
void ResetCollection(CSmartPtr<C>& field, Args&&... constructorArguments) {
    if (field && field->GetRefCount() == 1) {
        field->Clear();
    } else {
        field = new C(std::forward<Args>(constructorArguments)...);
    }
}

// A collection of simple values: emptied in place when nobody else holds it,
// otherwise a new Col for the element name, namespace, bounds and whitespace
// rule; either way it checks its items with valueRule (may be null).
template <class Col>
void ResetValueCollection(CSmartPtr<Col>& field, const char* name, const char* ns, std::int32_t minOccurs,
                          std::int32_t maxOccurs, CWhitespaceUtils::WhitespaceRule rule,
                          const std::shared_ptr<const CValueRule>& valueRule) {
    if (field && field->GetRefCount() == 1) {
        field->Clear();
        return;
    }
    field = new Col(name, ns, minOccurs, maxOccurs, "", -1, -1, "", "", "", "", -1, rule, "");
    field->SetValueRule(valueRule);
}

// The facets of a member without any.
extern const CPrimitiveRestrictions kNoRestrictions;

// Facets that hold a schema rule alone (schema-derived members check every
// facet through it).
CPrimitiveRestrictions FacetsWithRule(std::shared_ptr<const CValueRule> rule);

// ------------------------------------------------------------------ schema-derived classes

// Element-only and empty content take no character data, which the binding
// would otherwise drop unseen. Throws CQmValidationException "Failed to
// process the element [<name>]" caused by "Unexpected text [<text>] in the
// element [<name>]" (the text cut after 40 characters) when the element's
// own text is not whitespace. A null parent (nothing read) passes.
void CheckNoTextContent(const CXmlElement* parent);

// The repeating elements of one name whose type is xs:anyType: kept whole,
// like wildcard elements, but only while the name is theirs.
class CNamedElementCol final : public CElementCol {
public:
    CNamedElementCol(const char* name, const char* ns, std::int32_t minOccurs, std::int32_t maxOccurs);

protected:
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;

private:
    std::string m_namespace;
};

// What the document-wide checks and the prefix search look at in one member
// of a bound class (CXmlGeneratedClass::GetMemberChecks). The schema mapping
// makes the rows once (MemberChecks in the schema layer), for the dynamic
// classes at run time and for the generator, which emits them as static data;
// the walks below are the only code that reads them.
struct CMemberCheck {
    enum Shape : unsigned char {
        Value,       // a simple value
        Values,      // a collection of simple values
        Object,      // a bound object (class member or inlined group)
        Objects,     // a collection of bound objects
        Element,     // an untyped element (CElement)
        Elements,    // a collection of untyped elements
        Attributes,  // the attribute wildcard's CAttributeCol
    };
    enum IdKind : unsigned char { None, Id, IdRef, IdRefs, QName };
    enum Wildcard : unsigned char { Skip, Lax, Strict };
    int property;    // the AccessProperty index
    Shape shape;
    IdKind idKind;   // Value: any; Values: None or QName (items are checked one by one)
    bool text;       // a string value whose tokens may use the document's prefixes as QNames
    Wildcard wildcard;
    const char* name;  // the member's name in messages
};
struct CMemberChecks {
    const CMemberCheck* rows;
    std::size_t count;
};

// A global attribute declaration, for the check of what an attribute
// wildcard took.
struct CGlobalAttribute {
    ItemType itemType;
    CWhitespaceUtils::WhitespaceRule rule;
    const CPrimitiveRestrictions* facets;
};

// The global declarations of a schema set, as the wildcards of its classes
// need them: lax and strict wildcards check each element they take against
// its declaration by reading it as a document of the set.
class IGlobalDeclarations {
public:
    virtual bool DeclaresElement(const std::string& ns, const std::string& localName) const = 0;
    // Null when no global attribute has the name.
    virtual const CGlobalAttribute* FindAttribute(const std::string& ns, const std::string& localName) const = 0;
    // Reads the text as a document of the set (its root element picks the class).
    virtual void ReadDocument(const std::string& text, const CXmlSerializationContext& ctx) const = 0;

protected:
    ~IGlobalDeclarations() = default;
};

// What the strict and lax wildcards of a just-read object took, checked as
// their processContents asks (strict: declared and valid; lax: valid when
// declared). Throws CQmValidationException "No global element declaration
// for the element [%s] of a strict wildcard" (or "... attribute
// declaration for the attribute [%s] ..."), or what reading the element as
// a document throws; for an object with an element of its own (ownElement),
// wrapped in "Failed to process the element [<parent's local name>]". A null
// parent (nothing read) passes.
void CheckWildcardContent(const CXmlGeneratedClass& object, const IGlobalDeclarations& declarations,
                          const CXmlElement* parent, bool ownElement, const CXmlSerializationContext& ctx);

// After a root is read from `document`: remembers the document's prefixes
// that its string values use as QNames (written again on the root element,
// CXmlGeneratedClass::SetValuePrefixes) and, when checkIdentifiers, checks
// the document-wide rules: IDs unique ("Duplicate ID value [%s]"), every
// IDREF naming one ("The IDREF value [%s] matches no ID"), every QName's
// prefix declared ("The prefix of the QName [%s] of [%s] is not declared"),
// all CQmValidationException.
void FinishRoot(CXmlGeneratedClass& root, const CXmlDocument& document, bool checkIdentifiers);

// CheckChoiceSelected for an inlined choice read through AccessProperty: the
// choice is selected when one of its first propertyCount members holds a
// value, an object or a non-empty collection.
void CheckInlineChoiceRead(CXmlGeneratedClass& choice, int propertyCount, const CXmlElement* parent,
                           const CXmlSerializationContext& ctx);

// A generated class that may stand for a member declared with another class
// (a substitution group member's class, or a type xsi:type names): such an
// object is written with its type name as xsi:type, as the dynamic classes
// write theirs. The set's factory marks it when it picks the class.
class CRetypableClass : public CXmlGeneratedClass {
public:
    void SetRetyped(bool retyped) { m_retyped = retyped; }
    bool IsRetyped() const { return m_retyped; }

protected:
    // A root read through xsi:type writes it back (members' xsi:type is their info's business).
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;

private:
    bool m_retyped = false;
};

// One element a substitutable member may meet, with or without an xsi:type
// naming typeName (null: no xsi:type), and the class it then gets: -1 when
// the schema refuses it (abstract, blocked). Elements or types not listed
// are refused too.
struct CSubstitute {
    const char* ns;
    const char* localName;
    const char* typeName;
    int classIndex;
};
// The substitutes of one member, and the class it is declared with.
struct CSubstitutionTable {
    const CSubstitute* rows;
    std::size_t count;
    int declaredClass;
};

// The object for an element of a substitutable member (see CSubstitute),
// made by create and marked retyped when its class is not the declared one;
// null when the table refuses the element. xsi:type values are matched by
// local name (the document tree keeps no prefixes to resolve).
CSmartPtr<CXmlObjectBase> CreateSubstitute(const CXmlElement* element, const CSubstitutionTable& table,
                                           CSmartPtr<CXmlObjectBase> (*create)(int classIndex, const char* name));

// A global element of a schema set as a document's root: its name, its class
// and its member in the set's factory (whose CreateForElement settles
// xsi:type and abstractness for it as for any substitutable member).
struct CRootElement {
    const char* ns;
    const char* localName;
    int classIndex;
    int substitution;
};

// The object for a root element of this name from the table, its element
// name set; null when the table has no such element.
CSmartPtr<CXmlGeneratedClass> CreateRootElement(const CRootElement* roots, std::size_t count,
                                                const QmXmlLib10Data::IClassFactory& factory, const std::string& ns,
                                                const std::string& localName);

// Reads a document into the object of the root element the table names for
// its document element, as the schema layer's dynamic classes read it. A root
// the table lacks throws CQmValidationException "No global element
// declaration for the root element [%s]" ({ns}local, or the local name alone
// in no namespace); one the factory refuses (abstract, or an xsi:type naming
// no type it may take) "The root element [%s] is abstract, or its xsi:type
// names no type it may take"; every other failure is the runtime's.
// checkIdentifiers: the set has ID, IDREF or QName members (FinishRoot).
CSmartPtr<CXmlGeneratedClass> ReadRootFile(const CRootElement* roots, std::size_t count,
                                           const QmXmlLib10Data::IClassFactory& factory, const std::string& path,
                                           const CXmlSerializationContext& ctx, bool checkIdentifiers = false);
CSmartPtr<CXmlGeneratedClass> ReadRootBuffer(const CRootElement* roots, std::size_t count,
                                             const QmXmlLib10Data::IClassFactory& factory, const void* data,
                                             std::size_t size, const CXmlSerializationContext& ctx,
                                             bool checkIdentifiers = false);

// The global declarations of a generated set: its root table (every global
// element) and a table of its global attributes, as the set's source emits them.
struct CGlobalAttributeRow {
    const char* ns;
    const char* localName;
    CGlobalAttribute attribute;
};
class CGeneratedDeclarations final : public IGlobalDeclarations {
public:
    CGeneratedDeclarations(const CRootElement* roots, std::size_t rootCount,
                           const QmXmlLib10Data::IClassFactory& factory, const CGlobalAttributeRow* attributes,
                           std::size_t attributeCount, bool checkIdentifiers)
        : m_roots(roots),
          m_rootCount(rootCount),
          m_factory(factory),
          m_attributes(attributes),
          m_attributeCount(attributeCount),
          m_checkIdentifiers(checkIdentifiers) {}

    bool DeclaresElement(const std::string& ns, const std::string& localName) const override;
    const CGlobalAttribute* FindAttribute(const std::string& ns, const std::string& localName) const override;
    void ReadDocument(const std::string& text, const CXmlSerializationContext& ctx) const override;

private:
    const CRootElement* m_roots;
    std::size_t m_rootCount;
    const QmXmlLib10Data::IClassFactory& m_factory;
    const CGlobalAttributeRow* m_attributes;
    std::size_t m_attributeCount;
    bool m_checkIdentifiers;
};

// ------------------------------------------------------------------ equality

// Dates and times are equal when they print the same: CDateTime's own
// comparison normalises time zones, so two values that read back differently
// could compare equal.
bool SameDateTime(const CDateTime& a, const CDateTime& b);
bool SameDateTime(const std::optional<CDateTime>& a, const std::optional<CDateTime>& b);

// Both null, or both present and equal by T::Equals(const T&).
template <class T>
bool SameObject(const CSmartPtr<T>& a, const CSmartPtr<T>& b) {
    if (!a || !b) return !a && !b;
    return a->Equals(*b);
}

// Both null, or the same number of items, pairwise equal by T::Equals.
template <class T>
bool SameCollection(const CSmartPtr<CXmlClassCollection<T>>& a, const CSmartPtr<CXmlClassCollection<T>>& b) {
    if (!a || !b) return !a && !b;
    if (a->GetCount() != b->GetCount()) return false;
    for (int i = 0; i < a->GetCount(); ++i) {
        if (!a->GetItem(i)->Equals(*b->GetItem(i))) return false;
    }
    return true;
}

// ------------------------------------------------------------------ setters

// Setters check a value against its member's facets as writing would, so that
// a bad value fails where it is set rather than when the document is written.
// They throw what CPrimitiveRestrictions::CheckRestriction throws.
void CheckString(const char* member, const std::string& text, const CPrimitiveRestrictions& facets,
                 ItemType type = ItemType_string);
void CheckDecimal(const char* member, const CDecimal& value, const CPrimitiveRestrictions& facets);
template <class T>
void CheckNumber(const char* member, T value, const CPrimitiveRestrictions& facets) {
    QmVariant v;
    Codec::Number<T>{}.Put(v, value);
    CPrimitiveRestrictions::CheckRestriction(member, v, Codec::Number<T>::kItemType, facets);
}

// Sets one class member of a choice, keeping `selected` (the name of the
// member currently set) up to date: replacing or clearing the selected member
// is always allowed; setting another member while one is selected throws
// CQmInvalidStateException (CXmlObjectBase::Choice_SelectElement). A refused
// new object is freed. SelectChoiceMember is the bookkeeping alone, for
// members that are not objects.
void SelectChoiceMember(const char* member, CXmlObjectBase* value, std::string& selected);
template <class T>
void SetChoiceMember(CSmartPtr<T>& field, T* value, const char* member, std::string& selected) {
    const CSmartPtr<T> hold(value);
    SelectChoiceMember(member, value, selected);
    field = value;
}

// ------------------------------------------------------------------ choices

// Reading does not report an inlined choice that matched none of its members
// (its member may be optional). Where the parent requires the choice, this is
// the check writing makes: when nothing is selected and the context does not
// ignore missing choices, throws CQmValidationException "No child elements
// within the element [<parent's local name>] were populated. The element
// represents a choice, so one and only one element should be populated. The
// element contained no sutable child elements".
void CheckChoiceSelected(const std::string& selected, const CXmlElement* parent, const CXmlSerializationContext& ctx);

// Base of a generated inlined-choice class that its parent requires: after
// the usual read, applies CheckChoiceSelected to GetChoiceSelectedElement().
class CMandatoryInlineChoice : public CXmlGeneratedClass {
public:
    // The name of the member currently set, "" when none is.
    virtual const std::string& GetChoiceSelectedElement() const = 0;

protected:
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;
};

// ------------------------------------------------------------------ enumerations

// The two conversion functions of a generated enumeration, over its schema
// texts (value i is texts[i]). EnumerationToString throws CQmInvalidValueException
// "Invalid value [<value>] for the enumeration <enumName>" for a value outside
// the list, EnumerationFromString "Invalid value [<text>] for the enumeration
// <enumName>" for any other text (a null text counts as "").
const char* EnumerationToString(int value, const char* const* texts, int count, const char* enumName);
int EnumerationFromString(const char* text, const char* const* texts, int count, const char* enumName);
template <int N>
const char* EnumerationToString(int value, const char* const (&texts)[N], const char* enumName) {
    return EnumerationToString(value, texts, N, enumName);
}
template <int N>
int EnumerationFromString(const char* text, const char* const (&texts)[N], const char* enumName) {
    return EnumerationFromString(text, texts, N, enumName);
}

// ------------------------------------------------------------------ factories

// The class factory the element infos call (CreateObject(classIndex, name)):
// CreateByIndex<A, B, C>(i) creates the i-th class of the list, null for an
// index outside it. List the classes in the order of the class-index enum.
template <class T>
CSmartPtr<CXmlObjectBase> CreateNew() {
    return new T();
}
template <class... Classes>
CSmartPtr<CXmlObjectBase> CreateByIndex(int classIndex) {
    using Create = CSmartPtr<CXmlObjectBase> (*)();
    static constexpr Create kCreate[] = {&CreateNew<Classes>...};
    if (classIndex < 0 || static_cast<std::size_t>(classIndex) >= sizeof...(Classes)) return nullptr;
    return kCreate[classIndex]();
}

// One row of an abstract-class factory's table: an element name of the
// substitution group (null for a row that only names a type), the schema type
// name xsi:type gives (null when none) and the class (null for an abstract
// head, which only an xsi:type naming another row's type can stand for).
struct CClassByName {
    const char* elementName;
    const char* typeName;
    CSmartPtr<CXmlObjectBase> (*create)();
};

// The abstract-class factory (CXmlAbstractClassCollection's Factory). The
// element's local name must be one of the table's: xsi:type picks the class
// of an element of the group, it does not let any element in (one that did
// could not be written back, since its name would not tell a reader its
// class). An xsi:type that names a type of the table then picks that class,
// as XML Schema lets xsi:type override the element's own type; otherwise the
// element's own row does. Null when the name is not in the table, or when
// its row has no class and no xsi:type picks one.
CSmartPtr<CXmlObjectBase> CreateByElementOrType(const CXmlElement* element, const CClassByName* classes,
                                                std::size_t count);
template <std::size_t N>
CSmartPtr<CXmlObjectBase> CreateByElementOrType(const CXmlElement* element, const CClassByName (&classes)[N]) {
    return CreateByElementOrType(element, classes, N);
}

// Frees the metadata of every listed class (its static s_classInfo,
// s_elementInfo and s_attributeInfo, as the generated classes name them);
// no object of those classes may be used afterwards.
template <class... Classes>
void CleanClassMetaData() {
    (CXmlGeneratedClass::CleanMetaData(Classes::s_classInfo, Classes::s_elementInfo, Classes::s_attributeInfo), ...);
}

}  // namespace Generated
}  // namespace QmXmlLib10
