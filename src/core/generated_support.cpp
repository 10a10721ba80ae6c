#include "qmxml/core/generated_support.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <sstream>
#include <unordered_set>
#include <vector>

#include "dom/xml_document_loading.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/collections/primitive_collections.h"
#include "qmxml/collections/wildcards.h"
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
                                       const CXmlSerializationContext& ctx, bool checkIdentifiers) {
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
    FinishRoot(*object, document, checkIdentifiers);
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
                                           const CXmlSerializationContext& ctx, bool checkIdentifiers) {
    // Bound while the parser reads, as the dynamic classes' ReadFile is.
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.Load(path.c_str());
    CSmartPtr<CXmlGeneratedClass> object;
    CXmlDocumentLoading::Bind(document,
                              [&] { object = BindRoot(roots, count, factory, document, ctx, checkIdentifiers); });
    return object;
}

CSmartPtr<CXmlGeneratedClass> ReadRootBuffer(const CRootElement* roots, std::size_t count,
                                             const QmXmlLib10Data::IClassFactory& factory, const void* data,
                                             std::size_t size, const CXmlSerializationContext& ctx,
                                             bool checkIdentifiers) {
    if (size > 0xffffffffu) throw CQmInvalidParamException("The document is larger than 4 GiB");
    std::string copy(static_cast<const char*>(data), size);
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&copy[0]), static_cast<std::uint32_t>(copy.size()));
    CSmartPtr<CXmlGeneratedClass> object;
    CXmlDocumentLoading::Bind(document,
                              [&] { object = BindRoot(roots, count, factory, document, ctx, checkIdentifiers); });
    return object;
}

// ------------------------------------------------------------------ document-wide checks

CNamedElementCol::CNamedElementCol(const char* name, const char* ns, std::int32_t minOccurs, std::int32_t maxOccurs)
    : CElementCol(name, "##any", "", minOccurs, maxOccurs), m_namespace(ns ? ns : "") {}

CXmlElement* CNamedElementCol::FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext& ctx,
                                           bool) {
    const std::string name = GetElementName();
    while (current && DoesElementNameMatch(ctx, current, name, m_namespace)) {
        CSmartPtr<CElement> element = new CElement();
        element->ReadFrom(current);
        AppendItem(element);
        current = current->GetNextSiblingElement();
    }
    return current;
}

namespace {

using Check = CMemberCheck;

const CMemberChecks* ChecksOf(const CXmlGeneratedClass& object) {
    const CMemberChecks* checks = object.GetMemberChecks();
    return checks != nullptr && checks->count > 0 ? checks : nullptr;
}

// The untyped elements a member holds (one, or a collection's).
void CollectElements(const QmVariant& value, Check::Shape shape, std::vector<CElement*>& out) {
    if (shape == Check::Element) {
        const CSmartPtr<CXmlObjectBase> held = value.GetXmlObject();
        if (auto* element = dynamic_cast<CElement*>(held.Get())) out.push_back(element);
        return;
    }
    const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
    if (const auto* collection = dynamic_cast<const CXmlCollection*>(held.Get())) {
        for (auto* node = collection->GetFirstNode(); node; node = node->GetNext()) {
            if (auto* element = dynamic_cast<CElement*>(node->GetItem())) out.push_back(element);
        }
    }
}

// The bound objects a member holds, pushed for a walk.
void CollectObjects(const QmVariant& value, Check::Shape shape, std::vector<const CXmlGeneratedClass*>& out) {
    if (shape == Check::Object) {
        const CSmartPtr<CXmlObjectBase> held = value.GetXmlObject();
        if (const auto* object = dynamic_cast<const CXmlGeneratedClass*>(held.Get())) out.push_back(object);
        return;
    }
    const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
    if (const auto* collection = dynamic_cast<const CXmlCollection*>(held.Get())) {
        for (auto* node = collection->GetFirstNode(); node; node = node->GetNext()) {
            if (const auto* object = dynamic_cast<const CXmlGeneratedClass*>(node->GetItem())) out.push_back(object);
        }
    }
}

// A bound QName keeps its text, so its prefix is resolved here or never. The
// tree keeps the declarations document-wide, not per element: a prefix
// declared elsewhere in the document passes.
void CheckQNamePrefix(const std::string& text, const char* member, const CXmlDocument& document) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || text.compare(0, colon, "xml") == 0) return;
    if (!document.LookupNamespaceFromAlias(text.substr(0, colon).c_str()).empty()) return;
    throw CQmValidationException(
        FormatString("The prefix of the QName [%s] of [%s] is not declared", text.c_str(), member ? member : ""));
}

void CheckIdentifiers(const CXmlGeneratedClass& root, const CXmlDocument& document) {
    std::unordered_set<std::string> ids;
    std::vector<std::string> references;
    // Walked with a stack of its own: documents nest deeper than a thread's
    // stack would allow recursion to.
    std::vector<const CXmlGeneratedClass*> pending{&root};
    while (!pending.empty()) {
        const CXmlGeneratedClass* object = pending.back();
        pending.pop_back();
        const CMemberChecks* checks = ChecksOf(*object);
        if (checks == nullptr) continue;
        for (std::size_t i = 0; i < checks->count; ++i) {
            const Check& check = checks->rows[i];
            const bool walked = check.shape == Check::Object || check.shape == Check::Objects;
            if (!walked && check.idKind == Check::None) continue;
            QmVariant value;
            object->ReadProperty(check.property, value);
            if (!value.IsValid() || value.IsNil()) continue;
            if (walked) {
                CollectObjects(value, check.shape, pending);
                continue;
            }
            if (check.shape == Check::Values) {
                const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
                if (const auto* values = dynamic_cast<const CXmlTypeCollection*>(held.Get())) {
                    for (int k = 0; k < values->GetCount(); ++k)
                        CheckQNamePrefix(values->GetItemAsString(k), check.name, document);
                }
                continue;
            }
            if (check.shape != Check::Value) continue;
            const std::string text = value.ToString();
            switch (check.idKind) {
                case Check::Id:
                    if (!ids.insert(text).second)
                        throw CQmValidationException(FormatString("Duplicate ID value [%s]", text.c_str()));
                    break;
                case Check::IdRef: references.push_back(text); break;
                case Check::IdRefs: {
                    std::istringstream items(text);
                    for (std::string item; items >> item;) references.push_back(item);
                    break;
                }
                case Check::QName: CheckQNamePrefix(text, check.name, document); break;
                default: break;
            }
        }
    }
    for (const std::string& reference : references) {
        if (ids.count(reference) == 0)
            throw CQmValidationException(FormatString("The IDREF value [%s] matches no ID", reference.c_str()));
    }
}

bool IsQNameSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Marks the declared prefixes that begin a whitespace-separated token of text
// ("p:local"); returns how many are marked so far.
std::size_t MarkPrefixes(const std::string& text, const std::map<std::string, std::string>& declared,
                         std::vector<bool>& used, std::size_t count) {
    for (std::size_t colon = text.find(':'); colon != std::string::npos; colon = text.find(':', colon + 1)) {
        std::size_t begin = colon;
        while (begin > 0 && !IsQNameSpace(text[begin - 1])) --begin;
        if (begin == colon) continue;
        const auto found = declared.find(text.substr(begin, colon - begin));
        if (found == declared.end()) continue;
        const auto index = static_cast<std::size_t>(std::distance(declared.begin(), found));
        if (!used[index]) {
            used[index] = true;
            ++count;
        }
    }
    return count;
}

// The declared prefixes (prefix -> URI) that begin a token of a string value
// bound under root, untyped content and wildcard attributes included.
std::vector<std::pair<std::string, std::string>> ValuePrefixes(const std::map<std::string, std::string>& declared,
                                                               const CXmlGeneratedClass& root) {
    std::vector<std::pair<std::string, std::string>> kept;
    const bool any = std::any_of(declared.begin(), declared.end(),
                                 [](const auto& d) { return !d.first.empty() && !d.second.empty(); });
    if (!any) return kept;
    std::vector<bool> used(declared.size(), false);
    std::size_t count = 0;
    // Bound objects and untyped elements, each walked with a stack of its own
    // (documents nest deeper than recursion would allow); done once every
    // declared prefix is found.
    std::vector<const CXmlGeneratedClass*> objects{&root};
    std::vector<CElement*> elements;
    const auto markAttributes = [&](const CAttributeCol& attributes) {
        for (const CAttribute* attribute : attributes) count = MarkPrefixes(attribute->GetValue(), declared, used, count);
    };
    while ((!objects.empty() || !elements.empty()) && count < declared.size()) {
        if (!elements.empty()) {
            CElement* element = elements.back();
            elements.pop_back();
            if (element->GetAttributeCount() > 0) markAttributes(element->GetAttributes());
            count = MarkPrefixes(element->GetText(), declared, used, count);
            if (element->GetElementCount() > 0) {
                for (CElement* child : element->GetElements()) elements.push_back(child);
            }
            continue;
        }
        const CXmlGeneratedClass* object = objects.back();
        objects.pop_back();
        const CMemberChecks* checks = ChecksOf(*object);
        if (checks == nullptr) continue;
        for (std::size_t i = 0; i < checks->count; ++i) {
            const Check& check = checks->rows[i];
            if ((check.shape == Check::Value || check.shape == Check::Values) && !check.text) continue;
            QmVariant value;
            object->ReadProperty(check.property, value);
            if (!value.IsValid() || value.IsNil()) continue;
            switch (check.shape) {
                case Check::Value: count = MarkPrefixes(value.GetString(), declared, used, count); break;
                case Check::Values: {
                    const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
                    if (const auto* strings = dynamic_cast<const CXmlTypeCollection*>(held.Get())) {
                        for (std::int32_t k = 0; k < strings->GetCount(); ++k)
                            count = MarkPrefixes(strings->GetItemAsString(k), declared, used, count);
                    }
                    break;
                }
                case Check::Object:
                case Check::Objects: CollectObjects(value, check.shape, objects); break;
                case Check::Element:
                case Check::Elements: CollectElements(value, check.shape, elements); break;
                case Check::Attributes: {
                    const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
                    if (const auto* attributes = dynamic_cast<const CAttributeCol*>(held.Get())) markAttributes(*attributes);
                    break;
                }
            }
        }
    }
    std::size_t index = 0;
    for (const auto& d : declared) {
        if (used[index++] && !d.first.empty() && !d.second.empty()) kept.emplace_back(d.first, d.second);
    }
    return kept;
}

bool HasXsiType(const CElement& element) {
    const CAttributeCol* attributes = element.FindAttributes();
    if (attributes == nullptr) return false;
    for (const CAttribute* attribute : *attributes) {
        if (attribute->GetLocalName() == "type" &&
            attribute->GetNamespaceURI() == "http://www.w3.org/2001/XMLSchema-instance")
            return true;
    }
    return false;
}

void CheckWildcardMembers(const CXmlGeneratedClass& object, const IGlobalDeclarations& declarations,
                          const CXmlSerializationContext& ctx) {
    const CMemberChecks* checks = ChecksOf(object);
    if (checks == nullptr) return;
    for (std::size_t i = 0; i < checks->count; ++i) {
        const Check& check = checks->rows[i];
        if (check.wildcard == Check::Skip) continue;
        const bool strict = check.wildcard == Check::Strict;
        QmVariant value;
        object.ReadProperty(check.property, value);
        if (!value.IsValid() || value.IsNil()) continue;
        if (check.shape == Check::Attributes) {
            const CSmartPtr<CXmlCollectionBase> held = value.GetXmlCollection();
            const auto* attributes = dynamic_cast<const CAttributeCol*>(held.Get());
            if (attributes == nullptr) continue;
            for (const CAttribute* attribute : *attributes) {
                const CGlobalAttribute* declared =
                    declarations.FindAttribute(attribute->GetNamespaceURI(), attribute->GetLocalName());
                if (declared == nullptr) {
                    if (!strict) continue;
                    throw CQmValidationException(
                        FormatString("No global attribute declaration for the attribute [%s] of a strict wildcard",
                                     attribute->GetLocalName().c_str()));
                }
                QmVariant converted;
                converted.FromString(attribute->GetValue(), declared->itemType, declared->rule);
                CPrimitiveRestrictions::CheckRestriction(attribute->GetLocalName(), converted, declared->itemType,
                                                         *declared->facets, attribute->GetValue(), declared->rule);
            }
            continue;
        }
        std::vector<CElement*> elements;
        CollectElements(value, check.shape, elements);
        for (const CElement* element : elements) {
            if (!declarations.DeclaresElement(element->GetNamespaceURI(), element->GetLocalName())) {
                // An element with xsi:type is assessed by its type, declared or not.
                if (!strict || HasXsiType(*element)) continue;
                throw CQmValidationException(
                    FormatString("No global element declaration for the element [%s] of a strict wildcard",
                                 element->GetLocalName().c_str()));
            }
            // Read as a document of its own, so that its declaration (and
            // xsi:type) decide its class.
            const std::string text = element->ToXml(false, false, EOLType_LF, ctx);
            declarations.ReadDocument(text, ctx);
        }
    }
}

}  // namespace

void CheckWildcardContent(const CXmlGeneratedClass& object, const IGlobalDeclarations& declarations,
                          const CXmlElement* parent, bool ownElement, const CXmlSerializationContext& ctx) {
    if (parent == nullptr) return;
    try {
        CheckWildcardMembers(object, declarations, ctx);
    } catch (const CQmException& e) {
        // Inlined classes report through their parent element's context.
        if (!ownElement) throw;
        throw CQmValidationException(FormatString("Failed to process the element [%s]", parent->GetLocalName().c_str()),
                                     e);
    }
}

void FinishRoot(CXmlGeneratedClass& root, const CXmlDocument& document, bool checkIdentifiers) {
    root.SetValuePrefixes(ValuePrefixes(document.GetDeclaredNamespaces(), root));
    if (checkIdentifiers) CheckIdentifiers(root, document);
}

bool CGeneratedDeclarations::DeclaresElement(const std::string& ns, const std::string& localName) const {
    for (std::size_t i = 0; i < m_rootCount; ++i) {
        if (localName == m_roots[i].localName && ns == m_roots[i].ns) return true;
    }
    return false;
}

const CGlobalAttribute* CGeneratedDeclarations::FindAttribute(const std::string& ns,
                                                              const std::string& localName) const {
    for (std::size_t i = 0; i < m_attributeCount; ++i) {
        if (localName == m_attributes[i].localName && ns == m_attributes[i].ns) return &m_attributes[i].attribute;
    }
    return nullptr;
}

void CGeneratedDeclarations::ReadDocument(const std::string& text, const CXmlSerializationContext& ctx) const {
    ReadRootBuffer(m_roots, m_rootCount, m_factory, text.data(), text.size(), ctx, m_checkIdentifiers);
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
    const std::string& name = element->GetLocalName();
    const CClassByName* own = nullptr;
    for (std::size_t i = 0; i < count && own == nullptr; ++i) {
        if (classes[i].elementName != nullptr && name == classes[i].elementName) own = &classes[i];
    }
    if (own == nullptr) return nullptr;
    if (CClassfactoryBase::HasTypeAttribute(element)) {
        const std::string type = CClassfactoryBase::GetTypeLocalName(element);
        for (std::size_t i = 0; i < count; ++i) {
            if (classes[i].typeName != nullptr && type == classes[i].typeName && classes[i].create != nullptr)
                return classes[i].create();
        }
    }
    return own->create != nullptr ? own->create() : nullptr;
}

}  // namespace Generated
}  // namespace QmXmlLib10
