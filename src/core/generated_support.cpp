#include "qmxml/core/generated_support.h"

#include <cstring>

#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/collections/xml_collection.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"

namespace QmXmlLib10 {
namespace Generated {

void ThrowUnknownProperty(const char* className, int propertyIndex) {
    throw CQmInvalidParamException(
        FormatString("Unknown property index [%d] for the class [%s]", propertyIndex, className ? className : ""));
}

void ThrowNotSet(const char* member) {
    throw CQmInvalidStateException(FormatString("The optional member [%s] is not set", member ? member : ""));
}

// ------------------------------------------------------------------ codecs

namespace {

[[noreturn]] void ThrowNotDateTime(ItemType type) {
    throw CQmInvalidParamException(
        FormatString("The item type [%d] is not a date or time held in a CDateTime", static_cast<int>(type)));
}

[[noreturn]] void ThrowNotBinary(ItemType type) {
    throw CQmInvalidParamException(FormatString("The item type [%d] is not binary data", static_cast<int>(type)));
}

}  // namespace

void Codec::DateTime::Put(QmVariant& v, const CDateTime& value) const {
    switch (type) {
        case ItemType_date: v.SetDate(value); break;
        case ItemType_datetime: v.SetDateTime(value); break;
        case ItemType_time: v.SetTime(value); break;
        case ItemType_yearMonth: v.SetYearMonth(value); break;
        case ItemType_monthDay: v.SetMonthDay(value); break;
        default: ThrowNotDateTime(type);
    }
}

CDateTime Codec::DateTime::Take(QmVariant& v) const {
    switch (type) {
        case ItemType_date: return v.GetDate();
        case ItemType_datetime: return v.GetDateTime();
        case ItemType_time: return v.GetTime();
        case ItemType_yearMonth: return v.GetYearMonth();
        case ItemType_monthDay: return v.GetMonthDay();
        default: ThrowNotDateTime(type);
    }
}

void Codec::Binary::Put(QmVariant& v, const CBinaryData& value) const {
    if (type == ItemType_hexBinary) v.SetHexBinary(value);
    else if (type == ItemType_base64Binary) v.SetBase64Binary(value);
    else ThrowNotBinary(type);
}

CBinaryData Codec::Binary::Take(QmVariant& v) const {
    if (type == ItemType_hexBinary) return v.TakeHexBinary();
    if (type == ItemType_base64Binary) return v.TakeBase64Binary();
    ThrowNotBinary(type);
}

// ------------------------------------------------------------------ equality

bool SameDateTime(const CDateTime& a, const CDateTime& b) { return a.ToString() == b.ToString(); }

bool SameDateTime(const std::optional<CDateTime>& a, const std::optional<CDateTime>& b) {
    if (!a || !b) return !a && !b;
    return SameDateTime(*a, *b);
}

// ------------------------------------------------------------------ setters

void CheckString(const char* member, const std::string& text, const CPrimitiveRestrictions& facets, ItemType type) {
    QmVariant value;
    value.SetString(text);
    CPrimitiveRestrictions::CheckRestriction(member, value, type, facets);
}

void CheckDecimal(const char* member, const CDecimal& value, const CPrimitiveRestrictions& facets) {
    QmVariant v;
    v.SetDecimal(value);
    CPrimitiveRestrictions::CheckRestriction(member, v, ItemType_decimal, facets);
}

// ------------------------------------------------------------------ choices

namespace {

// Choice_SelectElement is protected: generated classes reach it as subclasses
// of CXmlObjectBase, the free helpers through this one.
struct ChoiceBookkeeping : CXmlObjectBase {
    using CXmlObjectBase::Choice_SelectElement;
};

}  // namespace

void SelectChoiceMember(const char* member, CXmlObjectBase* value, std::string& selected) {
    // Replacing the selected member, or clearing it, is always allowed;
    // clearing another one changes nothing.
    if (selected == member && value != nullptr) return;
    if (value != nullptr || selected == member) ChoiceBookkeeping::Choice_SelectElement(member, value, selected);
}

void CheckChoiceSelected(const std::string& selected, const CXmlElement* parent, const CXmlSerializationContext& ctx) {
    if (!selected.empty() || ctx.GetIgnoreMissingChoice()) return;
    throw CQmValidationException(FormatString(
        "No child elements within the element [%s] were populated. The element represents a choice, so one and "
        "only one element should be populated. The element contained no sutable child elements",
        parent != nullptr ? parent->GetLocalName().c_str() : ""));
}

CXmlElement* CMandatoryInlineChoice::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                                 const CXmlSerializationContext& ctx, bool isRoot) {
    CXmlElement* rest = CXmlGeneratedClass::FromXml_Int(parent, current, ctx, isRoot);
    CheckChoiceSelected(GetChoiceSelectedElement(), parent, ctx);
    return rest;
}

// ------------------------------------------------------------------ schema-derived classes

const CPrimitiveRestrictions kNoRestrictions;

CPrimitiveRestrictions FacetsWithRule(std::shared_ptr<const CValueRule> rule) {
    CPrimitiveRestrictions facets;
    facets.SetValueRule(std::move(rule));
    return facets;
}

void CheckNoTextContent(const CXmlElement* parent) {
    if (parent == nullptr) return;
    const std::string& own = parent->GetText();
    if (own.find_first_not_of(" \t\n\r") == std::string::npos) return;
    std::string text = own;
    if (text.size() > 40) text = text.substr(0, 40) + "...";
    const CQmValidationException cause(
        FormatString("Unexpected text [%s] in the element [%s]", text.c_str(), parent->GetLocalName().c_str()));
    throw CQmValidationException(FormatString("Failed to process the element [%s]", parent->GetLocalName().c_str()),
                                 cause);
}

void CheckInlineChoiceRead(CXmlGeneratedClass& choice, int propertyCount, const CXmlElement* parent,
                           const CXmlSerializationContext& ctx) {
    bool selected = false;
    for (int i = 0; i < propertyCount && !selected; ++i) {
        QmVariant value;
        choice.AccessProperty(i, true, value);
        if (!value.IsValid()) continue;
        if (value.IsNil()) {
            selected = true;
        } else if (static_cast<int>(value.GetTypeAsEnum()) == QmVariant::kXmlCollectionType) {
            const CSmartPtr<CXmlCollectionBase> collection = value.GetXmlCollection();
            selected = collection && collection->GetCount() > 0;
        } else if (static_cast<int>(value.GetTypeAsEnum()) == QmVariant::kXmlObjectType) {
            selected = static_cast<bool>(value.GetXmlObject());
        } else {
            selected = true;
        }
    }
    CheckChoiceSelected(selected ? "selected" : "", parent, ctx);
}

namespace {

constexpr const char* kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";

// The local part of the element's xsi:type, or null without one.
const CXmlAttribute* FindXsiType(const CXmlElement* element) {
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        if (attribute->GetLocalName() == "type" && attribute->GetNamespaceURI() == kXsiNamespace) return attribute;
    }
    return nullptr;
}

CSmartPtr<CXmlGeneratedClass> BindRoot(const CRootElement* roots, std::size_t count,
                                       const QmXmlLib10Data::IClassFactory& factory, CXmlDocument& document,
                                       const CXmlSerializationContext& ctx) {
    const CXmlElement* root = document.GetDocumentElement();
    if (root == nullptr) throw CQmException("Invalid or empty XML document");
    const std::string name = root->GetNamespaceURI().empty()
                                 ? root->GetLocalName()
                                 : "{" + root->GetNamespaceURI() + "}" + root->GetLocalName();
    const CRootElement* entry = nullptr;
    for (std::size_t i = 0; i < count && entry == nullptr; ++i) {
        if (root->GetLocalName() == roots[i].localName && root->GetNamespaceURI() == roots[i].ns) entry = &roots[i];
    }
    if (entry == nullptr) {
        throw CQmValidationException(
            FormatString("No global element declaration for the root element [%s]", name.c_str()));
    }
    CSmartPtr<CXmlObjectBase> made = factory.CreateForElement(entry->substitution, const_cast<CXmlElement*>(root));
    if (!made) {
        throw CQmValidationException(FormatString(
            "The root element [%s] is abstract, or its xsi:type names no type it may take", name.c_str()));
    }
    CSmartPtr<CXmlGeneratedClass> object(static_cast<CXmlGeneratedClass*>(made.Get()));
    CXmlObjectAccess::SetElementName(object, root->GetLocalName().c_str());
    object->FromXmlElement(root, ctx);
    return object;
}

}  // namespace

void CRetypableClass::ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName,
                                const CXmlSerializationContext& ctx, bool asChoiceMember) const {
    const std::string typeName = isRoot && ctx.GetWriteTypeAttribute() ? GetTypeName() : std::string();
    WriteObject(writer, isRoot, elementName, ctx, asChoiceMember, typeName.empty() ? nullptr : typeName.c_str());
}

CSmartPtr<CXmlObjectBase> CreateSubstitute(const CXmlElement* element, const CSubstitutionTable& table,
                                           CSmartPtr<CXmlObjectBase> (*create)(int classIndex, const char* name)) {
    if (element == nullptr) return nullptr;
    const CXmlAttribute* xsiType = FindXsiType(element);
    std::string local;
    if (xsiType != nullptr) {
        const std::string& value = xsiType->GetValue();
        const std::size_t colon = value.find(':');
        local = colon == std::string::npos ? value : value.substr(colon + 1);
    }
    int chosen = -1;
    for (std::size_t i = 0; i < table.count; ++i) {
        const CSubstitute& row = table.rows[i];
        if (element->GetLocalName() != row.localName || element->GetNamespaceURI() != row.ns) continue;
        const bool matches = xsiType == nullptr ? row.typeName == nullptr : (row.typeName != nullptr && local == row.typeName);
        if (matches) {
            chosen = row.classIndex;
            break;
        }
    }
    if (chosen < 0) return nullptr;
    CSmartPtr<CXmlObjectBase> made = create(chosen, element->GetLocalName().c_str());
    if (auto* retypable = dynamic_cast<CRetypableClass*>(made.Get())) retypable->SetRetyped(chosen != table.declaredClass);
    return made;
}

CSmartPtr<CXmlGeneratedClass> CreateRootElement(const CRootElement* roots, std::size_t count,
                                                const QmXmlLib10Data::IClassFactory& factory, const std::string& ns,
                                                const std::string& localName) {
    for (std::size_t i = 0; i < count; ++i) {
        if (localName != roots[i].localName || ns != roots[i].ns) continue;
        CSmartPtr<CXmlObjectBase> made = factory.CreateMember(roots[i].classIndex, localName.c_str());
        CSmartPtr<CXmlGeneratedClass> object(static_cast<CXmlGeneratedClass*>(made.Get()));
        CXmlObjectAccess::SetElementName(object, localName.c_str());
        return object;
    }
    return CSmartPtr<CXmlGeneratedClass>();
}

CSmartPtr<CXmlGeneratedClass> ReadRootFile(const CRootElement* roots, std::size_t count,
                                           const QmXmlLib10Data::IClassFactory& factory, const std::string& path,
                                           const CXmlSerializationContext& ctx) {
    CXmlDocument document(ctx);
    document.Load(path.c_str());
    return BindRoot(roots, count, factory, document, ctx);
}

CSmartPtr<CXmlGeneratedClass> ReadRootBuffer(const CRootElement* roots, std::size_t count,
                                             const QmXmlLib10Data::IClassFactory& factory, const void* data,
                                             std::size_t size, const CXmlSerializationContext& ctx) {
    if (size > 0xffffffffu) throw CQmInvalidParamException("The document is larger than 4 GiB");
    std::string copy(static_cast<const char*>(data), size);
    CXmlDocument document(ctx);
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&copy[0]), static_cast<std::uint32_t>(copy.size()));
    return BindRoot(roots, count, factory, document, ctx);
}

// ------------------------------------------------------------------ enumerations

const char* EnumerationToString(int value, const char* const* texts, int count, const char* enumName) {
    if (value < 0 || value >= count) {
        throw CQmInvalidValueException(
            FormatString("Invalid value [%d] for the enumeration %s", value, enumName ? enumName : ""));
    }
    return texts[value];
}

int EnumerationFromString(const char* text, const char* const* texts, int count, const char* enumName) {
    const char* t = text != nullptr ? text : "";
    for (int i = 0; i < count; ++i) {
        if (std::strcmp(t, texts[i]) == 0) return i;
    }
    throw CQmInvalidValueException(
        FormatString("Invalid value [%s] for the enumeration %s", t, enumName ? enumName : ""));
}

// ------------------------------------------------------------------ factories

CSmartPtr<CXmlObjectBase> CreateByElementOrType(const CXmlElement* element, const CClassByName* classes,
                                                std::size_t count) {
    if (element == nullptr) return nullptr;
    if (CClassfactoryBase::HasTypeAttribute(element)) {
        const std::string type = CClassfactoryBase::GetTypeLocalName(element);
        for (std::size_t i = 0; i < count; ++i) {
            if (classes[i].typeName != nullptr && type == classes[i].typeName) return classes[i].create();
        }
    }
    const std::string& name = element->GetLocalName();
    for (std::size_t i = 0; i < count; ++i) {
        if (classes[i].elementName != nullptr && name == classes[i].elementName) return classes[i].create();
    }
    return nullptr;
}

}  // namespace Generated
}  // namespace QmXmlLib10
