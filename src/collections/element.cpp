#include "qmxml/collections/element.h"

#include <vector>

#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

namespace {

bool IsWhitespaceOnly(const std::string& text) {
    for (char c : text) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r') return false;
    }
    return true;
}

// Releases a subtree without recursing: the children of every element that
// nobody else holds are taken over before that element goes.
void ReleaseSubtree(CSmartPtr<CElementCol>& elements, std::vector<CSmartPtr<CElement>>& pending);

}  // namespace

CElementCol::CElementCol(const char* name, const char* namespaceRestriction, const char* targetNamespace,
                         std::int32_t minOccurs, std::int32_t maxOccurs)
    : CWildcardCol<CElement>(name, namespaceRestriction, targetNamespace, minOccurs, maxOccurs) {}

CSmartPtr<CElement> CElementCol::Add(const char* localName, const char* namespaceURI) {
    CSmartPtr<CElement> element = new CElement(localName, namespaceURI);
    Add(element);
    return element;
}

void CElementCol::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext& ctx, bool) const {
    for (CNode* node = GetFirstNode(); node; node = node->GetNext()) {
        CXmlObjectBase::ToXml_Int(node->GetItem(), writer, false, nullptr, ctx, false);
    }
}

CXmlElement* CElementCol::FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext&, bool) {
    while (current && Accepts(current->GetNamespaceURI())) {
        CSmartPtr<CElement> element = new CElement();
        element->ReadFrom(current);
        AppendItem(element);
        current = current->GetNextSiblingElement();
    }
    return current;
}

CElement::CElement(const char* localName, const char* namespaceURI)
    : m_localName(localName ? localName : ""), m_namespaceURI(namespaceURI ? namespaceURI : "") {}

namespace {

void ReleaseSubtree(CSmartPtr<CElementCol>& elements, std::vector<CSmartPtr<CElement>>& pending) {
    if (!elements) return;
    // A collection someone else holds keeps its subtree alive: leave it be.
    if (elements->GetRefCount() == 1) {
        for (auto* node = elements->GetFirstNode(); node; node = node->GetNext()) {
            pending.emplace_back(static_cast<CElement*>(node->GetItem()));
        }
    }
    elements = nullptr;
}

}  // namespace

void CElement::ReleaseTree(CSmartPtr<CElementCol>& elements) {
    std::vector<CSmartPtr<CElement>> pending;
    ReleaseSubtree(elements, pending);
    while (!pending.empty()) {
        CSmartPtr<CElement> element = std::move(pending.back());
        pending.pop_back();
        if (element->GetRefCount() == 1) ReleaseSubtree(element->m_elements, pending);
    }
}

CElement::~CElement() { ReleaseTree(m_elements); }

void CElement::Reset() {
    m_localName.clear();
    m_namespaceURI.clear();
    m_text.clear();
    m_attributes = nullptr;
    ReleaseTree(m_elements);
}

CAttributeCol& CElement::GetAttributes() {
    if (!m_attributes) m_attributes = new CAttributeCol("", "##any", "");
    return *m_attributes;
}

CElementCol& CElement::GetElements() {
    if (!m_elements) m_elements = new CElementCol();
    return *m_elements;
}

void CElement::ReadFrom(const CXmlElement* source) {
    Reset();
    struct Item {
        const CXmlElement* from;
        CElement* to;
    };
    std::vector<Item> stack{{source, this}};
    while (!stack.empty()) {
        const Item item = stack.back();
        stack.pop_back();
        CElement* to = item.to;
        to->m_localName = item.from->GetLocalName();
        to->m_namespaceURI = item.from->GetNamespaceURI();
        for (const CXmlAttribute* a : item.from->GetAttributes()) {
            to->GetAttributes().Add(a->GetLocalName().c_str(), a->GetNamespaceURI().c_str(), a->GetValue().c_str());
        }
        CXmlElement* child = item.from->GetFirstElement();
        if (child == nullptr || !IsWhitespaceOnly(item.from->GetText())) to->m_text = item.from->GetText();
        for (; child; child = child->GetNextSiblingElement()) {
            CSmartPtr<CElement> element = new CElement();
            to->GetElements().AppendItem(element);
            stack.push_back({child, element});
        }
    }
}

void CElement::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext&) const {
    if (!m_attributes) return;
    for (CXmlCollection::CNode* node = m_attributes->GetFirstNode(); node; node = node->GetNext()) {
        const auto* a = static_cast<const CAttribute*>(node->GetItem());
        writer->WriteAttribute(a->GetLocalName().c_str(), a->GetNamespaceURI().c_str(), a->GetValue().c_str());
    }
}

void CElement::StartTag(CXmlWriter* writer) const {
    writer->StartElement(m_localName.c_str(), m_namespaceURI.c_str());
    AttributesToXml_Int(writer, CXmlSerializationContext::m_defaultContext);
}

void CElement::WriteBody(CXmlWriter* writer) const {
    struct Frame {
        const CElement* element;
        CXmlCollection::CNode* next;
    };
    std::vector<Frame> stack;
    const CElement* opened = this;
    for (;;) {
        if (opened) {
            if (!opened->m_text.empty()) writer->WriteText(opened->m_text.c_str());
            stack.push_back({opened, opened->m_elements ? opened->m_elements->GetFirstNode() : nullptr});
            opened = nullptr;
        }
        if (stack.empty()) break;
        Frame& top = stack.back();
        if (top.next) {
            opened = static_cast<const CElement*>(top.next->GetItem());
            top.next = top.next->GetNext();
            opened->StartTag(writer);
        } else {
            writer->EndElement();
            stack.pop_back();
        }
    }
}

void CElement::WriteTo(CXmlWriter* writer) const {
    StartTag(writer);
    WriteBody(writer);
}

void CElement::ToXml_Int(CXmlWriter* writer, bool isRoot, const char*, const CXmlSerializationContext& ctx,
                         bool) const {
    if (!isRoot) return WriteTo(writer);
    WriteRootPrologue(writer, ctx, m_namespaceURI);
    StartTag(writer);
    if (const CSmartPtr<CAttributeCol> extra = ctx.GetAdditionalRootAttributes()) {
        CXmlObjectBase::AttributesToXml_Int(extra, writer, ctx);
    }
    const std::string schema = ctx.GetInLineSchema();
    if (!schema.empty()) writer->WriteRaw(schema.c_str());
    WriteBody(writer);
}

CXmlElement* CElement::FromXml_Int(CXmlElement* parent, CXmlElement*, const CXmlSerializationContext&, bool) {
    ReadFrom(parent);
    return nullptr;
}

}  // namespace QmXmlLib10
