// The reference-counted root of every bound object, collection and wildcard.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/core/instance_monitor.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/core/smart_ptr.h"

namespace QmXmlLib10 {

class CXmlObjectBase;
class CXmlCollectionBase;
class CXmlElement;
class CXmlDocument;
class CXmlWriter;
class CBinaryData;
class CElement;
class CTextStream;
class CXmlObjectAccess;
class CXmlGeneratedClass;

// Receives the events a collection raises when its content changes.
class IEventSink {
public:
    enum MsgType : int {
        MsgType_CollectionChange = 0,          // cleared or replaced; data is null
        MsgType_CollectionAdd = 1,             // about to be added; data is the item
        MsgType_CollectionAddComplete = 2,     // has been added; data is the item
        MsgType_CollectionRemove = 3,          // about to be removed; data is null
        MsgType_CollectionRemoveComplete = 4,  // has been removed; data is null
    };
    virtual void OnEvent(CXmlObjectBase* source, MsgType type, void* data) = 0;

protected:
    virtual ~IEventSink() = default;
};

// Objects start with a count of 0, so the first CSmartPtr that takes one makes
// it 1; the last Release deletes it. Copying copies content, never the count.
class CXmlObjectBase : public IEventSink {
public:
    CXmlObjectBase() : m_monitor("CXmlObjectBase") {}
    CXmlObjectBase(const CXmlObjectBase& other);
    CXmlObjectBase& operator=(const CXmlObjectBase& other);
    ~CXmlObjectBase() override;

    // Thread-safe; both return the new count.
    int AddRef() noexcept;
    int Release() noexcept;
    // The current reference count; exact only while no other thread changes it
    // (a count of 1 seen by the holder of that reference is exact).
    int GetRefCount() const noexcept { return m_refCount.load(std::memory_order_acquire); }

    // Writing. Each call creates its own writer and stream and hands over to
    // ToXml_Int with the object as the root element.
    virtual void ToXmlFile(const char* fileName, bool includeDocHeader = true, bool formatted = true,
                           XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                           const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext,
                           CompressionType compression = CompressionType_None) const;
    virtual void ToFastInfosetFile(const char* fileName, FInfoDecl declaration = FInfoDecl_None,
                                   const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext,
                                   CompressionType compression = CompressionType_None) const;
    // The text in the local encoding of 8-bit strings.
    virtual std::string ToXml(bool includeDocHeader = true, bool formatted = true, EOLType eol = EOLType_LF,
                              const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext) const;
    // The encoded (and optionally compressed) document.
    virtual CBinaryData ToXmlStream(bool includeDocHeader = true, bool formatted = true,
                                    XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                                    const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext,
                                    CompressionType compression = CompressionType_None) const;
    virtual CBinaryData ToFastInfosetStream(
        FInfoDecl declaration = FInfoDecl_None,
        const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;

    // Reading: each replaces the object's content. After a failed read the
    // object holds whatever had been bound before the failure.
    virtual void FromXmlFile(const char* fileName,
                             const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    virtual void FromXml(const unsigned short* utf16Text,
                         const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    virtual void FromXml(const char* xmlText,
                         const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    virtual void FromXmlStream(const CBinaryData& data,
                               const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    // Text in any encoding the loader detects, plain or compressed.
    virtual void FromXmlStream(unsigned char* const bytes, std::uint32_t length,
                               const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    // Binds from a wildcard element by writing it out and reading the text back.
    virtual void FromXmlElement(const CElement* element,
                                const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);
    // Binds from an element of an already loaded tree.
    virtual void FromXmlElement(const CXmlElement* element,
                                const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext);

    virtual CXmlObjectBase* GetBase() { return this; }
    const CXmlObjectBase* GetBase() const { return this; }

    // The name of the element the object is written as, and its namespace.
    virtual std::string GetElementName() const = 0;
    virtual std::string GetTargetNamespace() const = 0;

    // True when the element's local name equals localName and, unless the
    // context ignores namespaces, its namespace equals namespaceUri.
    bool DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                              const char* localName, const char* namespaceUri) const;
    bool DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                              const std::string& localName, const std::string& namespaceUri) const;

    // Wildcard namespace test: the restriction is a space-separated list of
    // "##any", "##other", "##local", "##targetNamespace" or URIs.
    bool IsNamespaceValid(const char* ns, const char* restriction, const char* targetNamespace) const;
    // As IsNamespaceValid, throwing CQmInvalidNamespaceException when it is false.
    void TestNamespace(const char* ns, const char* restriction, const char* targetNamespace) const;

protected:
    // The binding metadata and the collections reach members' protected operations through it.
    friend class CXmlObjectAccess;

    void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override;

    // The object as a generated class, or null: what a dynamic_cast gives,
    // for writers that ask once per member.
    virtual const CXmlGeneratedClass* AsGeneratedClass() const { return nullptr; }
    virtual void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const;
    virtual void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName,
                           const CXmlSerializationContext& ctx, bool asChoiceMember) const = 0;
    // Reads the object from current and returns the first child of parent it did not consume.
    virtual CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                     const CXmlSerializationContext& ctx, bool isRoot) = 0;

    // Let classes unrelated by inheritance call each other's protected operations.
    static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                    const CXmlSerializationContext& ctx);
    static void ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                          const char* elementName, const CXmlSerializationContext& ctx,
                          bool asChoiceMember);
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* current,
                                    const CXmlSerializationContext& ctx, bool isRoot);

    // Collection events; the sink must not be null. The remove events pass
    // null data when the index is -1.
    static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* coll);
    static void FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* coll, void* item);
    static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* coll, void* item);
    static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* coll, int index);
    static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* coll, int index);

    // The namespace the context asks the root element to be written in.
    static const std::string& GetContextDefaultNamespace(const CXmlSerializationContext& ctx);
    // What every root element is preceded by, whatever kind of object it is:
    // the context's processing instructions, its namespace aliases, and the
    // default namespace (the context's, else the root's own namespace unless
    // an alias names it).
    static void WriteRootPrologue(CXmlWriter* writer, const CXmlSerializationContext& ctx,
                                  const std::string& rootNamespace);

    // Records the element name a substituted or differently named member is
    // written under; empty until set.
    void SetElementName(const char* name);
    const std::string& GetRecordedElementName() const;

    static void Throw_IfPropertyIsNull(CXmlObjectBase* value, const char* propertyName);
    static void Throw_IfElementNameDiffers(CXmlObjectBase* value, const char* requiredName);

    // Choice bookkeeping: `selected` holds the name of the member currently set.
    static void Choice_SetElementValid(bool valid, const char* propertyName, std::string& selected);
    static void Choice_SelectElement(const char* propertyName, CXmlObjectBase* value, std::string& selected);
    static void Choice_CollectionChanged(const char* propertyName, std::int32_t count, std::string& selected);
    static void Choice_Read_Collection(CXmlCollectionBase* coll, CXmlElement* parent, CXmlElement*& current,
                                       std::int32_t& count, const CXmlSerializationContext& ctx);

private:
    // Binds a document loaded for reading while binding (the FromXml... entry points).
    void BindDocument(CXmlDocument& document, const CXmlSerializationContext& ctx);
    // Writes the whole document, this object as its root, through a text writer.
    void WriteTextDocument(CTextStream& stream, bool includeDocHeader, bool formatted, EOLType eol,
                           const CXmlSerializationContext& ctx) const;

    std::atomic<int> m_refCount{0};
    CInstanceMonitor m_monitor;
    // Null while no name is recorded, which is almost always: every bound
    // object carries this, so it stays one pointer wide.
    std::unique_ptr<std::string> m_recordedElementName;
};

}  // namespace QmXmlLib10
