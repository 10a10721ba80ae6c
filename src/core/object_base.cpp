#include "qmxml/core/object_base.h"

#include <cstring>

#include "core/namespace_list.h"
#include "core/same_bytes.h"
#include "qmxml/collections/xml_collection.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

CXmlObjectBase::CXmlObjectBase(const CXmlObjectBase& other) : IEventSink(), m_monitor("CXmlObjectBase") {
    if (other.m_recordedElementName)
        m_recordedElementName = std::make_unique<std::string>(*other.m_recordedElementName);
}

CXmlObjectBase& CXmlObjectBase::operator=(const CXmlObjectBase& other) {
    if (this == &other) return *this;
    if (!other.m_recordedElementName)
        m_recordedElementName.reset();
    else if (m_recordedElementName)
        *m_recordedElementName = *other.m_recordedElementName;
    else
        m_recordedElementName = std::make_unique<std::string>(*other.m_recordedElementName);
    return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

int CXmlObjectBase::AddRef() noexcept { return m_refCount.fetch_add(1, std::memory_order_relaxed) + 1; }

int CXmlObjectBase::Release() noexcept {
    const int count = m_refCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (count == 0) delete this;
    return count;
}

namespace {

// text == (c ? c : "") without measuring c first: called for every item of a
// collection, and a mismatch usually shows in the first bytes.
bool SameText(const std::string& text, const char* c) noexcept {
    if (c == nullptr) return text.empty();
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n; ++i)
        if (c[i] == '\0' || c[i] != text[i]) return false;
    return c[n] == '\0';
}

}  // namespace

bool CXmlObjectBase::DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                          const char* localName, const char* namespaceUri) const {
    if (element == nullptr) return false;
    if (!SameText(element->GetLocalName(), localName)) return false;
    return ctx.GetIgnoreNamespaces() || SameText(element->GetNamespaceURI(), namespaceUri);
}

bool CXmlObjectBase::DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                          const std::string& localName, const std::string& namespaceUri) const {
    if (element == nullptr || !bytes::SameString(element->GetLocalName(), localName)) return false;
    return ctx.GetIgnoreNamespaces() || bytes::SameString(element->GetNamespaceURI(), namespaceUri);
}

bool CXmlObjectBase::IsNamespaceValid(const char* ns, const char* restriction, const char* targetNamespace) const {
    const std::string_view value = ns ? ns : "";
    const std::string_view target = targetNamespace ? targetNamespace : "";
    std::string_view rest = restriction ? restriction : "";
    std::string_view entry;
    while (detail::NextNamespaceEntry(rest, entry)) {
        if (entry == "##any") return true;
        if (entry == "##other") {
            if (value != target) return true;
        } else if (entry == "##local") {
            if (value.empty()) return true;
        } else if (entry == "##targetNamespace") {
            if (value == target) return true;
        } else if (entry == value) {
            return true;
        }
    }
    return false;
}

void CXmlObjectBase::TestNamespace(const char* ns, const char* restriction, const char* targetNamespace) const {
    if (!IsNamespaceValid(ns, restriction, targetNamespace)) {
        throw CQmInvalidNamespaceException(FormatString(
            "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]",
            ns ? ns : "", restriction ? restriction : "", targetNamespace ? targetNamespace : ""));
    }
}

void CXmlObjectBase::OnEvent(CXmlObjectBase*, MsgType, void*) {}

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter*, const CXmlSerializationContext&) const {}

void CXmlObjectBase::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                         const CXmlSerializationContext& ctx) {
    object->AttributesToXml_Int(writer, ctx);
}

void CXmlObjectBase::ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                               const char* elementName, const CXmlSerializationContext& ctx,
                               bool asChoiceMember) {
    object->ToXml_Int(writer, isRoot, elementName, ctx, asChoiceMember);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* current,
                                         const CXmlSerializationContext& ctx, bool isRoot) {
    return object->FromXml_Int(parent, current, ctx, isRoot);
}

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* coll) {
    sink->OnEvent(coll->GetBase(), MsgType_CollectionChange, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* coll, void* item) {
    sink->OnEvent(coll->GetBase(), MsgType_CollectionAdd, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* coll, void* item) {
    sink->OnEvent(coll->GetBase(), MsgType_CollectionAddComplete, item);
}

// The collections always pass -1; any other index carries no data either.
void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* coll, int) {
    sink->OnEvent(coll->GetBase(), MsgType_CollectionRemove, nullptr);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* coll, int) {
    sink->OnEvent(coll->GetBase(), MsgType_CollectionRemoveComplete, nullptr);
}

const std::string& CXmlObjectBase::GetContextDefaultNamespace(const CXmlSerializationContext& ctx) {
    return ctx.GetDefaultNamespaceURI();
}

void CXmlObjectBase::WriteRootPrologue(CXmlWriter* writer, const CXmlSerializationContext& ctx,
                                       const std::string& rootNamespace) {
    for (const std::string& instruction : ctx.GetProcessingInstructions()) writer->WriteRawLine(instruction.c_str());
    const CNamespaceAliasMap& aliases = ctx.GetNamespaceAliases();
    for (int i = 0, n = aliases.GetNamespaceCount(); i < n; ++i) {
        const std::string& uri = aliases.GetNamespaceAt(i);
        writer->AddNamespaceAlias(aliases.GetAliasFromNamespace(uri).c_str(), uri.c_str());
    }
    const std::string& defaultNamespace = GetContextDefaultNamespace(ctx);
    if (!defaultNamespace.empty()) {
        writer->SetDefaultNamespace(defaultNamespace.c_str());
    } else if (!rootNamespace.empty() && !aliases.DoesNamespaceExist(rootNamespace)) {
        // A fresh object writes <Root xmlns="urn:..."> rather than an invented prefix.
        writer->SetDefaultNamespace(rootNamespace.c_str());
    }
}

void CXmlObjectBase::SetElementName(const char* name) {
    if (name == nullptr || *name == '\0')
        m_recordedElementName.reset();
    else if (m_recordedElementName)
        *m_recordedElementName = name;
    else
        m_recordedElementName = std::make_unique<std::string>(name);
}

const std::string& CXmlObjectBase::GetRecordedElementName() const {
    static const std::string none;
    return m_recordedElementName ? *m_recordedElementName : none;
}

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase* value, const char* propertyName) {
    if (value == nullptr) {
        throw CQmInvalidParamException(
            FormatString("The Property [%s] is mandatory, it may node be NULL", propertyName ? propertyName : ""));
    }
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase* value, const char* requiredName) {
    if (value == nullptr) return;
    const std::string actual = value->GetElementName();
    const char* required = requiredName ? requiredName : "";
    if (actual != required) {
        throw CQmInvalidParamException(FormatString(
            "This property requrires an element with the name %s the element being set has the element name %s",
            required, actual.c_str()));
    }
}

namespace {

void SelectChoiceMember(bool set, const char* propertyName, std::string& selected, const char* message) {
    if (!set) {
        selected.clear();
        return;
    }
    if (!selected.empty()) throw CQmInvalidStateException(FormatString(message, selected.c_str()));
    selected = propertyName ? propertyName : "";
}

}  // namespace

void CXmlObjectBase::Choice_SetElementValid(bool valid, const char* propertyName, std::string& selected) {
    SelectChoiceMember(valid, propertyName, selected,
                       "The Property %s is already set. Only one element within this class bay be set at a time");
}

void CXmlObjectBase::Choice_SelectElement(const char* propertyName, CXmlObjectBase* value, std::string& selected) {
    SelectChoiceMember(value != nullptr, propertyName, selected,
                       "The Property [%s] is already set. Only one element within this class bay be set at a time");
}

void CXmlObjectBase::Choice_CollectionChanged(const char* propertyName, std::int32_t count, std::string& selected) {
    SelectChoiceMember(count > 0, propertyName, selected,
                       "The Property [%s] is already set. Only one element within this class bay be set at a time");
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase* coll, CXmlElement* parent, CXmlElement*& current,
                                            std::int32_t& count, const CXmlSerializationContext& ctx) {
    current = FromXml_Int(coll, parent, current, ctx, false);
    count = coll->GetCount();
}

}  // namespace QmXmlLib10
