// The document: owner of an element tree and of the names it uses.
#pragma once

#include <memory>

#include "qmxml/core/instance_monitor.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/dom/xml_name_table.h"

namespace QmXmlLib10 {

// Holds the document element and the name table its nodes point into.
// Destroying the document destroys the tree; pointers to nodes and interned
// names become invalid then, and when the tree is rebuilt.
class CXmlDocument : public CInstanceMonitor {
public:
    CXmlDocument();
    ~CXmlDocument();
    CXmlDocument(const CXmlDocument&) = delete;
    CXmlDocument& operator=(const CXmlDocument&) = delete;

    // The root element, or null until a tree has been built.
    CXmlElement* GetDocumentElement() const noexcept { return m_documentElement.get(); }
    // Interning changes no node, so it is allowed on a const document.
    CXmlNameTable& GetNameTable() const noexcept { return m_nameTable; }

private:
    friend class CXmlTreeBuilder;

    // Declared first so that it outlives the nodes pointing into it.
    mutable CXmlNameTable m_nameTable;
    std::unique_ptr<CXmlElement> m_documentElement;
};

}  // namespace QmXmlLib10
