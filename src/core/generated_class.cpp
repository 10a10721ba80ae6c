#include "qmxml/core/generated_class.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "qmxml/collections/wildcards.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/metadata/attribute_info.h"
#include "qmxml/metadata/element_info.h"
#include "qmxml/metadata/parent_element_info.h"
#include "qmxml/writer/xml_writer.h"
#include "dom/xml_stream_source.h"
#include "metadata/nil_attribute.h"
#include "metadata/value_text.h"

namespace QmXmlLib10 {

using QmXmlLib10Data::CAttributeInfo;
using QmXmlLib10Data::CElementInfo;
using QmXmlLib10Data::CParentElementInfo;

namespace {

const char* const kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";

// One zeroed flag per attribute info. Classes have a handful, and this runs
// for every bound element: a heap block each time would cost more than the rest.
class PresenceFlags {
public:
    explicit PresenceFlags(std::size_t count)
        : m_heap(count > sizeof m_inline ? new char[count]() : nullptr),
          m_flags(m_heap ? m_heap.get() : m_inline) {}
    PresenceFlags(const PresenceFlags&) = delete;  // m_flags may point into the object itself
    PresenceFlags& operator=(const PresenceFlags&) = delete;
    char* Data() noexcept { return m_flags; }

private:
    char m_inline[16] = {};
    std::unique_ptr<char[]> m_heap;
    char* m_flags;
};

// Inlined members read from their parent's children and may give back what
// they read (an all group that turns out incomplete), so that others read it
// again. While any such reader is active on this thread, no element's content
// is freed after its object is read.
thread_local int t_inlinedReaders = 0;

class InlinedReader {
public:
    explicit InlinedReader(bool inlined) : m_inlined(inlined) {
        if (m_inlined) ++t_inlinedReaders;
    }
    ~InlinedReader() {
        if (m_inlined) --t_inlinedReaders;
    }
    InlinedReader(const InlinedReader&) = delete;
    InlinedReader& operator=(const InlinedReader&) = delete;

private:
    bool m_inlined;
};

int CountInfos(CElementInfo** infos) {
    int n = 0;
    if (infos) {
        while (infos[n]) ++n;
    }
    return n;
}

}  // namespace

void CXmlObjectAccess::WriteMember(const CXmlObjectBase* object, CXmlWriter* writer, const char* declaredName,
                                   const CXmlSerializationContext& ctx, bool asChoiceMember, bool substitutable,
                                   bool classDiffers) {
    const std::string& recorded = object->GetRecordedElementName();
    const bool substituted = substitutable && !recorded.empty() && recorded != (declaredName ? declaredName : "");
    const char* name = substituted ? recorded.c_str() : declaredName;
    const CXmlGeneratedClass* generated = object->AsGeneratedClass();
    if (generated == nullptr) {
        object->ToXml_Int(writer, false, name, ctx, asChoiceMember);
        return;
    }
    std::string typeName;
    // A substituted element name already tells the reader the class.
    if (classDiffers && !substituted && ctx.GetWriteTypeAttribute()) typeName = generated->GetTypeName();
    generated->WriteObject(writer, false, name, ctx, asChoiceMember, typeName.empty() ? nullptr : typeName.c_str());
}

int CXmlObjectAccess::ReadPseudoChildAttributes(CXmlObjectBase* object, const CXmlSerializationContext& ctx,
                                                std::vector<CXmlAttribute*>& pending, bool validate) {
    auto* generated = dynamic_cast<CXmlGeneratedClass*>(object);
    return generated ? generated->TakePseudoChildAttributes(ctx, pending, validate) : 0;
}

void CXmlObjectAccess::ReleaseReadItems(CXmlElement* parent, CXmlElement* first, const CXmlElement* upTo) noexcept {
    if (parent != nullptr && first != nullptr && t_inlinedReaders == 0)
        CXmlStreamSource::ReleaseBetween(parent, first, upTo);
}

bool CXmlGeneratedClass::HasSameClassAs(const CXmlGeneratedClass& other) const {
    return typeid(*this) == typeid(other);
}

CXmlGeneratedClass::~CXmlGeneratedClass() = default;

std::string CXmlGeneratedClass::GetElementName() const {
    if (!GetRecordedElementName().empty()) return GetRecordedElementName();
    return GetClassInfo()->GetElementName();
}

std::string CXmlGeneratedClass::GetTargetNamespace() const { return GetClassInfo()->GetElementNamespace(); }

void CXmlGeneratedClass::ReadProperty(int index, QmVariant& value) const {
    // Reading through property access does not change the object.
    const_cast<CXmlGeneratedClass*>(this)->AccessProperty(index, true, value);
}

int CXmlGeneratedClass::GetClassElementInfoCount() const { return CountInfos(GetClassElementInfo()); }

bool CXmlGeneratedClass::IsElementInList(const CXmlSerializationContext& ctx, CXmlElement* element) const {
    if (element == nullptr) return false;
    return IsClaimedFrom(ctx, element, 0);
}

bool CXmlGeneratedClass::IsClaimedFrom(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                       int from) const {
    CElementInfo** infos = GetClassElementInfo();
    if (infos == nullptr) return false;
    for (int i = from; infos[i]; ++i) {
        if (infos[i]->IsMemberElement(ctx, this, element)) return true;
    }
    return false;
}

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const {
    CElementInfo** infos = GetClassElementInfo();
    if (infos == nullptr) return false;
    for (int i = 0; infos[i]; ++i) {
        if (infos[i]->IsOptionalMember()) return true;
    }
    return false;
}

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& parentInfo, CElementInfo**& elementInfo,
                                       CAttributeInfo**& attributeInfo) {
    delete parentInfo;
    parentInfo = nullptr;
    if (elementInfo) {
        for (int i = 0; elementInfo[i]; ++i) delete elementInfo[i];
        delete[] elementInfo;
        elementInfo = nullptr;
    }
    if (attributeInfo) {
        for (int i = 0; attributeInfo[i]; ++i) delete attributeInfo[i];
        delete[] attributeInfo;
        attributeInfo = nullptr;
    }
}

// ---------------------------------------------------------------- writing

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName,
                                   const CXmlSerializationContext& ctx, bool asChoiceMember) const {
    WriteObject(writer, isRoot, elementName, ctx, asChoiceMember, nullptr);
}

void CXmlGeneratedClass::WriteObject(CXmlWriter* writer, bool isRoot, const char* elementName,
                                     const CXmlSerializationContext& ctx, bool asChoiceMember,
                                     const char* xsiType) const {
    const std::string fallbackName = elementName ? std::string() : GetElementName();
    const char* name = elementName ? elementName : fallbackName.c_str();
    try {
        const CParentElementInfo* info = GetClassInfo();
        const bool ownElement = info->GetElementType() == XmlElementType_Element;
        if (ownElement) {
            if (isRoot) WriteRootPrologue(writer, ctx, info->GetElementNamespace());
            writer->StartElement(name, info->GetElementNamespace().c_str());
            if (isRoot) {
                if (const CSmartPtr<CAttributeCol> extra = ctx.GetAdditionalRootAttributes()) {
                    CXmlObjectAccess::AttributesToXml(extra, writer, ctx);
                }
            }
            if (xsiType) {
                const std::string typeNamespace = GetTypeNamespace();
                if (typeNamespace.empty()) {
                    writer->WriteTypeAttribute(xsiType);
                } else {
                    writer->WriteTypeAttribute(writer->QualifyName(typeNamespace.c_str(), xsiType).c_str());
                }
            }
            AttributesToXml_Int(writer, ctx);
            if (isRoot) {
                const std::string schema = ctx.GetInLineSchema();
                if (!schema.empty()) writer->WriteRaw(schema.c_str());
            }
        }
        if (IsNil()) {
            if (ownElement) writer->WriteNilAttribute();
        } else {
            switch (info->GetElementGroupType()) {
                case XmlElementGroupType_Sequence:
                case XmlElementGroupType_All:
                    ProcessElementAllToXml(ctx, GetClassElementInfo(), writer);
                    break;
                case XmlElementGroupType_Choice:
                    ProcessElementChoiceToXml(ctx, GetClassElementInfo(), writer, asChoiceMember);
                    break;
                default:
                    throw CQmException("Unknown XML Group Type");
            }
            if (info->HasSimpleContent()) WriteSimpleContent(writer);
        }
        if (ownElement) writer->EndElement();
    } catch (const CQmException& e) {
        throw CQmValidationException(FormatString("Failed to convert the element [%s] to XML", name), e);
    }
}

void CXmlGeneratedClass::WriteSimpleContent(CXmlWriter* writer) const {
    const CParentElementInfo* info = GetClassInfo();
    QmVariant value;
    ReadProperty(info->GetPrimitiveValuePropertyIndex(), value);
    if (!value.IsValid() || value.IsNil()) return;
    if (const CPrimitiveRestrictions* facets = info->GetSimpleContentRestrictions()) {
        CPrimitiveRestrictions::CheckRestriction(GetElementName(), value, info->GetPrimitiveDataType(), *facets);
    }
    std::string scratch;
    const std::string_view text =
        QmXmlLib10Data::detail::ValueText(value, info->GetPrimitiveFormatOverride(), scratch);
    writer->WriteText(text.data(), info->GetPrimitiveDataType());
}

void CXmlGeneratedClass::SetValuePrefixes(std::vector<std::pair<std::string, std::string>> prefixes) {
    if (prefixes.empty()) {
        m_valuePrefixes.reset();
    } else {
        m_valuePrefixes = std::make_shared<const std::vector<std::pair<std::string, std::string>>>(std::move(prefixes));
    }
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const {
    if (m_valuePrefixes) {
        for (const auto& declaration : *m_valuePrefixes)
            writer->DeclarePrefix(declaration.first.c_str(), declaration.second.c_str());
    }
    ProcessAttributesToXml(ctx, GetClassElementInfo(), GetClassAttributeInfo(), writer);
}

void CXmlGeneratedClass::ProcessAttributesToXml(const CXmlSerializationContext& ctx, CElementInfo** elementInfo,
                                                CAttributeInfo** attributeInfo, CXmlWriter* writer) const {
    if (attributeInfo) {
        for (int i = 0; attributeInfo[i]; ++i) attributeInfo[i]->AttributeToXml(ctx, this, writer);
    }
    // Inlined member classes put their attributes on this element.
    if (elementInfo) {
        for (int i = 0; elementInfo[i]; ++i) elementInfo[i]->PseudoChildAttributeToXml(ctx, this, writer);
    }
}

void CXmlGeneratedClass::ProcessElementAllToXml(const CXmlSerializationContext& ctx, CElementInfo** elementInfo,
                                                CXmlWriter* writer) const {
    if (elementInfo == nullptr) return;
    for (int i = 0; elementInfo[i]; ++i) elementInfo[i]->ElementToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(const CXmlSerializationContext& ctx, CElementInfo** elementInfo,
                                                   CXmlWriter* writer, bool emptyAllowed) const {
    if (elementInfo) {
        for (int i = 0; elementInfo[i]; ++i) {
            if (elementInfo[i]->ElementToXml(ctx, this, writer)) return;
        }
    }
    if (emptyAllowed || DoesElementContainOptionalElements() || ctx.GetIgnoreMissingChoice()) return;
    throw CQmValidationException(
        "This element is a choice, and as such must have at one (and only one) valid item, currently there are none "
        "set");
}

// ---------------------------------------------------------------- reading

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                             const CXmlSerializationContext& ctx, bool isRoot) {
    Init();
    m_nil = false;
    const CParentElementInfo* info = GetClassInfo();
    const XmlElementType elementType = info->GetElementType();
    const bool ownElement = elementType == XmlElementType_Element;
    if (parent == nullptr) throw CQmInvalidParamException("The element to read from may not be NULL");

    const bool documentElement = parent->GetDocument() && parent->GetDocument()->GetDocumentElement() == parent;
    if (ownElement && (isRoot || documentElement)) {
        const std::string expectedName = GetElementName();
        const std::string expectedNamespace = GetTargetNamespace();
        if (!DoesElementNameMatch(ctx, parent, expectedName, expectedNamespace)) {
            throw CQmValidationException(FormatString("Unexpected root element [%s], expected [%s]",
                                                      parent->GetLocalName().c_str(), expectedName.c_str()));
        }
    }

    std::vector<CXmlAttribute*> deferred;
    const InlinedReader inlinedReader(!ownElement);
    try {
        const bool inlinedMembers = ownElement && HasInlinedMembers();
        if (ownElement) {
            m_nil = QmXmlLib10Data::detail::IsNilElement(parent);
            ProcessAttributesFromXml(ctx, parent, isRoot, inlinedMembers ? &deferred : nullptr);
        }
        if (m_nil) {
            if (inlinedMembers) ProcessDeferredAttributes(ctx, deferred);
            return nullptr;
        }

        switch (info->GetElementGroupType()) {
            case XmlElementGroupType_Sequence:
                current = ProcessElementSeqFromXml(ctx, parent, current, elementType);
                break;
            case XmlElementGroupType_Choice:
                current = ProcessElementChoiceFromXml(ctx, parent, current, elementType, false);
                break;
            case XmlElementGroupType_All:
                current = ProcessElementAllFromXml(ctx, parent, current, elementType);
                break;
            default:
                throw CQmException("Unknow Group Type");
        }
        // Inlined members exist only now.
        if (inlinedMembers) ProcessDeferredAttributes(ctx, deferred);
        if (ownElement && info->HasSimpleContent()) ReadSimpleContent(parent);
        // Read while parsing, the element's children are not needed again:
        // freeing them keeps the tree to the path being read.
        if (ownElement && t_inlinedReaders == 0) CXmlStreamSource::ReleaseContent(parent);
        return current;
    } catch (const CQmException& e) {
        throw CQmValidationException(
            FormatString("Failed to process the element [%s]", parent->GetLocalName().c_str()), e);
    }
}

void CXmlGeneratedClass::ReadSimpleContent(const CXmlElement* element) {
    const CParentElementInfo* info = GetClassInfo();
    const ItemType type = info->GetPrimitiveDataType();
    // The built-in whitespace facet of the type: strings keep theirs.
    const CPrimitiveRestrictions* facets = info->GetSimpleContentRestrictions();
    const auto rule = facets != nullptr           ? info->GetSimpleContentWhitespaceRule()
                      : type == ItemType_string ? CWhitespaceUtils::WhitespaceRule_Preserve
                                                : CWhitespaceUtils::WhitespaceRule_Collapse;
    const std::string* emptyValue = info->GetSimpleContentEmptyValue();
    const bool empty = emptyValue != nullptr && element->GetText().empty() && element->GetFirstElement() == nullptr;
    const std::string& text = empty ? *emptyValue : element->GetText();
    QmVariant value;
    value.FromString(text, type, rule);
    if (facets != nullptr) {
        CPrimitiveRestrictions::CheckRestriction(element->GetLocalName(), value, type, *facets, text, rule);
    }
    AccessProperty(info->GetPrimitiveValuePropertyIndex(), false, value);
}

bool CXmlGeneratedClass::ClaimAttribute(const CXmlSerializationContext& ctx, CXmlAttribute* attribute,
                                        bool wildcards, char* found) {
    CAttributeInfo** infos = GetClassAttributeInfo();
    if (infos == nullptr) return false;
    for (size_t i = 0; infos[i]; ++i) {
        if (infos[i]->IsWildcard() != wildcards) continue;
        if (infos[i]->AttributeFromXml(ctx, this, attribute)) {
            if (found != nullptr) found[i] = 1;
            return true;
        }
    }
    return false;
}

bool CXmlGeneratedClass::HasInlinedMembers() const {
    CElementInfo** infos = GetClassElementInfo();
    if (infos == nullptr) return false;
    for (int i = 0; infos[i]; ++i) {
        if (infos[i]->IsInlinedMember()) return true;
    }
    return false;
}

void CXmlGeneratedClass::ThrowUnknownAttribute(const CXmlAttribute* attribute) {
    throw CQmValidationException(FormatString("Unexpected Attribute [%s] found.", attribute->GetLocalName().c_str()));
}

void CXmlGeneratedClass::ProcessAttributesFromXml(const CXmlSerializationContext& ctx, CXmlElement* element, bool,
                                                  std::vector<CXmlAttribute*>* deferred) {
    CAttributeInfo** infos = GetClassAttributeInfo();
    const int count = [&] {
        int n = 0;
        if (infos) {
            while (infos[n]) ++n;
        }
        return n;
    }();
    PresenceFlags found(static_cast<size_t>(count));
    for (CXmlAttribute* attribute : element->GetAttributes()) {
        if (attribute->IsNamespaceAttribute() || attribute->IsNilAttribute()) continue;
        // Named members first, so that a wildcard never takes their attributes.
        if (ClaimAttribute(ctx, attribute, false, found.Data())) continue;
        if (deferred) {
            deferred->push_back(attribute);
            continue;
        }
        if (ClaimAttribute(ctx, attribute, true, found.Data())) continue;
        if (GetClassInfo()->GetFromXmlFailIfAttributeUnknown() && !ctx.GetIgnoreUnknownAttributes()) {
            ThrowUnknownAttribute(attribute);
        }
    }
    for (int i = 0; i < count; ++i) infos[i]->Validate(ctx, found.Data()[i] != 0);
}

void CXmlGeneratedClass::ProcessDeferredAttributes(const CXmlSerializationContext& ctx,
                                                   std::vector<CXmlAttribute*>& deferred) {
    // Inlined members check their required attributes even when none is left.
    if (CElementInfo** infos = GetClassElementInfo()) {
        for (int i = 0; infos[i]; ++i) infos[i]->PseudoChildAttributesFromXml(ctx, this, deferred);
    }
    for (CXmlAttribute* attribute : deferred) {
        if (ClaimAttribute(ctx, attribute, true, nullptr)) continue;
        if (GetClassInfo()->GetFromXmlFailIfAttributeUnknown() && !ctx.GetIgnoreUnknownAttributes()) {
            ThrowUnknownAttribute(attribute);
        }
    }
}

int CXmlGeneratedClass::TakePseudoChildAttributes(const CXmlSerializationContext& ctx,
                                                  std::vector<CXmlAttribute*>& pending, bool validate) {
    CAttributeInfo** infos = GetClassAttributeInfo();
    int count = 0;
    if (infos) {
        while (infos[count]) ++count;
    }
    PresenceFlags found(static_cast<size_t>(count));
    const size_t before = pending.size();
    for (size_t i = 0; i < pending.size();) {
        CXmlAttribute* attribute = pending[i];
        if (ClaimAttribute(ctx, attribute, false, found.Data()) || ClaimAttribute(ctx, attribute, true, found.Data())) {
            pending.erase(pending.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            ++i;
        }
    }
    if (CElementInfo** elements = GetClassElementInfo()) {
        for (int i = 0; elements[i]; ++i) {
            elements[i]->PseudoChildAttributesFromXml(ctx, this, pending);
        }
    }
    const int taken = static_cast<int>(before - pending.size());
    if (validate || taken > 0) {
        for (int i = 0; i < count; ++i) infos[i]->Validate(ctx, found.Data()[i] != 0);
    }
    return taken;
}

void CXmlGeneratedClass::ThrowLeftover(const CXmlElement* parent, const CXmlElement* current) {
    throw CQmValidationException(FormatString(
        "Failed read all the elements held within the element [%s]. The unexpected element [%s] remains un "
        "processed",
        parent->GetLocalName().c_str(), current->GetLocalName().c_str()));
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(const CXmlSerializationContext& ctx, CXmlElement* parent,
                                                          CXmlElement* current, XmlElementType elementType) {
    CElementInfo** infos = GetClassElementInfo();
    const int count = CountInfos(infos);
    const char* targetNamespace = GetClassInfo()->GetElementNamespace().c_str();
    const bool skipUnknown = ctx.GetIgnoreUnknownElements();
    int restart = 0;
    CXmlElement* stuck = nullptr;
    for (;;) {
        for (int i = restart; i < count; ++i) {
            for (;;) {
                CXmlElement* before = current;
                const bool consumed = infos[i]->ElementFromXml(ctx, this, parent, &current, targetNamespace,
                                                               elementType);
                if (consumed || current != before) {
                    restart = i;
                    break;
                }
                // An element that no member from here on takes is unknown: skip
                // it and ask the same member again. The collection read last may
                // still take more, so it counts as "from here on".
                const int from = infos[restart]->IsCollectionMember() ? restart : i;
                if (skipUnknown && current && !IsClaimedFrom(ctx, current, from)) {
                    current = current->GetNextSiblingElement();
                    continue;
                }
                break;
            }
        }
        if (elementType != XmlElementType_Element || current == nullptr) break;
        if (!skipUnknown) ThrowLeftover(parent, current);
        // Go again from the last member that read something, skipping up to an
        // element some member would take; an element that a whole pass left
        // where it was is skipped too.
        if (current == stuck || !IsClaimedFrom(ctx, current, restart)) {
            do {
                current = current->GetNextSiblingElement();
            } while (current && !IsClaimedFrom(ctx, current, restart));
            if (current == nullptr) break;
        }
        stuck = current;
    }
    // Collections that never saw an element still have their minimum to meet.
    for (int i = 0; i < count; ++i) {
        if (infos[i]->IsCollectionMember()) infos[i]->Validate(ctx, this, true, elementType == XmlElementType_Element);
    }
    return current;
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(const CXmlSerializationContext& ctx, CXmlElement* parent,
                                                          CXmlElement* current, XmlElementType elementType) {
    CElementInfo** infos = GetClassElementInfo();
    const int count = CountInfos(infos);
    const char* targetNamespace = GetClassInfo()->GetElementNamespace().c_str();
    const bool ownContent = elementType == XmlElementType_Element;
    CXmlElement* const start = current;
    // Which members were read; on the stack for the usual handful.
    char inlineFound[32] = {};
    std::vector<char> moreFound;
    char* found = inlineFound;
    if (count > 32) {
        moreFound.assign(static_cast<size_t>(count), 0);
        found = moreFound.data();
    }
    bool moved = true;
    while (current && moved) {
        moved = false;
        for (int i = 0; i < count && current; ++i) {
            if (found[i]) continue;
            CXmlElement* before = current;
            if (infos[i]->ElementFromXml(ctx, this, parent, &current, targetNamespace, elementType)) {
                found[i] = 1;
            }
            if (current != before) moved = true;
        }
        // In the element's own content an element no missing member takes is
        // skipped under IgnoreUnknownElements, wherever it stands.
        if (!moved && current && ownContent && ctx.GetIgnoreUnknownElements()) {
            bool claimed = false;
            for (int i = 0; i < count && !claimed; ++i) {
                claimed = !found[i] && infos[i]->IsMemberElement(ctx, this, current);
            }
            if (!claimed) {
                current = current->GetNextSiblingElement();
                moved = true;
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        if (!infos[i]->Validate(ctx, this, found[i] != 0, ownContent)) return start;
    }
    if (ownContent && current && !ctx.GetIgnoreUnknownElements()) ThrowLeftover(parent, current);
    return current;
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(const CXmlSerializationContext& ctx,
                                                             CXmlElement* parent, CXmlElement* current,
                                                             XmlElementType elementType, bool emptyAllowed) {
    CElementInfo** infos = GetClassElementInfo();
    const int count = CountInfos(infos);
    const char* targetNamespace = GetClassInfo()->GetElementNamespace().c_str();
    const bool ownContent = elementType == XmlElementType_Element;
    bool populated = false;
    while (current && !populated) {
        for (int i = 0; i < count; ++i) {
            CXmlElement* before = current;
            if (infos[i]->ElementFromXml(ctx, this, parent, &current, targetNamespace, elementType) ||
                current != before) {
                populated = true;
                break;
            }
        }
        if (populated || !ownContent || !ctx.GetIgnoreUnknownElements()) break;
        current = current->GetNextSiblingElement();
    }
    if (!populated && !emptyAllowed && ownContent && !DoesElementContainOptionalElements() &&
        !ctx.GetIgnoreMissingChoice()) {
        throw CQmValidationException(FormatString(
            "No child elements within the element [%s] were populated. The element represents a choice, so one and "
            "only one element should be populated. The element contained no sutable child elements",
            parent->GetLocalName().c_str()));
    }
    if (ownContent && current) {
        if (!ctx.GetIgnoreUnknownElements()) ThrowLeftover(parent, current);
        return nullptr;  // the rest is skipped: one member only
    }
    return current;
}

// ---------------------------------------------------------------- factories

CClassfactoryBase::~CClassfactoryBase() = default;

namespace {

const CXmlAttribute* FindTypeAttribute(const CXmlElement* element) {
    if (element == nullptr) return nullptr;
    for (const CXmlAttribute* a : element->GetAttributes()) {
        if (a->GetLocalName() == "type" && a->GetNamespaceURI() == kXsiNamespace) return a;
    }
    return nullptr;
}

}  // namespace

bool CClassfactoryBase::HasTypeAttribute(const CXmlElement* element) { return FindTypeAttribute(element) != nullptr; }

std::string CClassfactoryBase::GetTypeAttribute(const CXmlElement* element) {
    const CXmlAttribute* a = FindTypeAttribute(element);
    return a ? a->GetValue() : std::string();
}

std::string CClassfactoryBase::GetTypeLocalName(const CXmlElement* element) {
    const std::string value = GetTypeAttribute(element);
    const size_t colon = value.find(':');
    return colon == std::string::npos ? value : value.substr(colon + 1);
}

}  // namespace QmXmlLib10
