// The output interface shared by the XML text writer and the Fast Infoset writer.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/core/instance_monitor.h"

namespace QmXmlLib10 {

// Calling order: StartDocument; optionally SetDefaultNamespace and
// AddNamespaceAlias; StartElement; its attributes; its text and children;
// EndElement; ...; EndDocument. The base keeps the namespace settings declared
// on the root and one CXmlWriterContext per open element.
class CXmlWriter : public CInstanceMonitor {
public:
    // One per open element: its name and the namespace declarations in scope.
    class CXmlWriterContext : public CInstanceMonitor {
    public:
        CXmlWriterContext(CXmlWriterContext* parent, const char* localName, const char* namespaceURI);

        std::int32_t m_childCount = 0;
        bool m_startTagOpen = true;
        std::int32_t m_depth = 0;
        std::string m_namespaceURI;
        bool m_hasNamespace = false;
        std::string m_localName;
        CXmlWriterContext* m_parent = nullptr;

        // The prefix bound to the URI in scope here; null when none is.
        const std::string* FindPrefix(const std::string& uri) const;
        // Records a declaration made on this element.
        void AddNamespace(const std::string& uri, const std::string& prefix);
        const std::map<std::string, std::string>& GetOwnNamespaces() const { return m_namespaces; }

    private:
        // Only this element's own declarations; lookups walk up the parents,
        // which gives the same answers as a full copy per element without the copying.
        std::map<std::string, std::string> m_namespaces;
    };

    explicit CXmlWriter(const char* className);
    virtual ~CXmlWriter();
    CXmlWriter(const CXmlWriter&) = delete;
    CXmlWriter& operator=(const CXmlWriter&) = delete;

    virtual void StartDocument() = 0;
    // Throws CQmException "An Element has not been closed." while an element is open.
    virtual void EndDocument();
    // Both are stored only while no element is open and ignored afterwards.
    virtual void SetDefaultNamespace(const char* namespaceURI);
    virtual void AddNamespaceAlias(const char* alias, const char* namespaceURI);
    virtual void WriteComment(const char* text) = 0;
    virtual void WriteRawLine(const char* text) = 0;
    virtual void WriteRaw(const char* text) = 0;
    // Pushes a context for the new element.
    virtual void StartElement(const char* localName, const char* namespaceURI);
    virtual void WriteText(const char* value, ItemType itemType = ItemType_string) = 0;
    // Pops the innermost context.
    virtual void EndElement();
    virtual void WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                                ItemType itemType = ItemType_string) = 0;
    virtual void WriteTypeAttribute(const char* typeName) = 0;
    virtual void WriteNilAttribute() = 0;

    const std::string& GetDefaultNamespace() const { return m_defaultNamespaceURI; }
    // URI -> alias pairs declared on the root element.
    const std::map<std::string, std::string>& GetNamespaceAliases() const { return m_namespaceAliases; }

protected:
    CXmlWriterContext* GetCurrentContext() const { return m_current.get(); }

private:
    std::string m_defaultNamespaceURI;
    std::unique_ptr<CXmlWriterContext> m_current;
    std::map<std::string, std::string> m_namespaceAliases;
};

}  // namespace QmXmlLib10
