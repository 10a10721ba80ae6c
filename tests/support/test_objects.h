// Small concrete objects and collections for exercising the library's bases.
#pragma once

#include <qmxml/qmxml.h>
#include <qmxml/core/serialization_context.h>
#include <qmxml/dom/xml_element.h>

#include <atomic>
#include <string>
#include <tuple>
#include <vector>

namespace qmxml_test {

using namespace QmXmlLib10;

// A bound object that counts its destructions and exposes the protected checks.
class TestObject : public CXmlObjectBase {
public:
    explicit TestObject(std::string name = "item", std::atomic<int>* destroyed = nullptr)
        : m_name(std::move(name)), m_destroyed(destroyed) {}
    ~TestObject() override {
        if (m_destroyed) ++*m_destroyed;
    }
    std::string GetElementName() const override { return m_name; }
    std::string GetTargetNamespace() const override { return "urn:test"; }

    using CXmlObjectBase::Choice_CollectionChanged;
    using CXmlObjectBase::Choice_Read_Collection;
    using CXmlObjectBase::Choice_SelectElement;
    using CXmlObjectBase::Choice_SetElementValid;
    using CXmlObjectBase::GetRecordedElementName;
    using CXmlObjectBase::SetElementName;
    using CXmlObjectBase::Throw_IfElementNameDiffers;
    using CXmlObjectBase::Throw_IfPropertyIsNull;

protected:
    void ToXml_Int(CXmlWriter*, bool, const char*, const CXmlSerializationContext&, bool) const override {}
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext&, bool) override {
        return current;
    }

private:
    std::string m_name;
    std::atomic<int>* m_destroyed;
};

// A collection of TestObject that reads one item per matching sibling element.
class TestCol : public CXmlCollection {
public:
    TestCol(const char* name = "item", const char* ns = "urn:test", std::int32_t min = 0, std::int32_t max = -1)
        : CXmlCollection(name, ns, min, max) {}
    using CXmlCollection::AddAfterItem;
    using CXmlCollection::AddBeforeItem;
    using CXmlCollection::AddItemAt;
    using CXmlCollection::AppendItem;
    using CXmlCollection::GetNodeAtIndex;
    using CXmlCollection::GetNodeForItem;
    using CXmlCollection::PrependItem;
    using CXmlCollection::RemoveNode;

    std::string NameAt(int i) const { return GetNodeAtIndex(i)->GetItem()->GetElementName(); }

protected:
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool) override {
        while (current && DoesElementNameMatch(ctx, current, GetElementName().c_str(), GetNamespace().c_str())) {
            AppendItem(CSmartPtr<TestObject>(new TestObject(current->GetText())));
            current = current->GetNextSiblingElement();
        }
        return current;
    }
};

// Records every event it is told.
class RecordingSink : public IEventSink {
public:
    using Event = std::tuple<CXmlObjectBase*, IEventSink::MsgType, void*>;
    void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override { events.emplace_back(source, type, data); }
    std::vector<IEventSink::MsgType> Types() const {
        std::vector<IEventSink::MsgType> types;
        for (const auto& e : events) types.push_back(std::get<1>(e));
        return types;
    }
    std::vector<Event> events;
};

// A writer that drops everything; tests override what they want to see.
class SilentWriter : public CXmlWriter {
public:
    explicit SilentWriter(const char* name) : CXmlWriter(name) {}
    void StartDocument() override {}
    void WriteComment(const char*) override {}
    void WriteRawLine(const char*) override {}
    void WriteRaw(const char*) override {}
    void WriteText(const char*, ItemType) override {}
    void WriteAttribute(const char*, const char*, const char*, ItemType) override {}
    void WriteTypeAttribute(const char*) override {}
    void WriteNilAttribute() override {}
};

}  // namespace qmxml_test
