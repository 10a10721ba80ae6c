// The one interface through which element trees are built.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"

namespace QmXmlLib10 {

// Builds and trims the tree of a CXmlDocument. This is the interface of the
// document loaders (the XML text reader and the Fast Infoset reader) and of
// tests; everything else only reads trees. Nodes cannot be created any other way.
//
// Typical loader use: CreateDocumentElement on the first start tag, CreateChild
// for each nested start tag, SetName and AddAttribute right after creation,
// AppendText for every run of character data, RemoveLastChild or
// DeleteLastChild to drop a completed child that a filter rejects.
//
// Names given as string views are interned in the document's name table. The
// overloads taking `const std::string*` expect names already interned in the
// same document's table (Intern below) and skip the lookup; loaders that keep
// their own name vocabulary use them. Element pointers must not be null.
class CXmlTreeBuilder {
public:
    CXmlTreeBuilder() = delete;

    // A new, empty, unnamed document element; any existing tree is destroyed
    // first. The name table is kept.
    static CXmlElement* CreateDocumentElement(CXmlDocument& document);
    // Destroys the tree and empties the name table.
    static void Clear(CXmlDocument& document) noexcept;

    // The stored copy of name in the document's name table.
    static const std::string* Intern(const CXmlDocument& document, std::string_view name);

    // A new, empty, unnamed element linked as the last child of parent.
    static CXmlElement* CreateChild(CXmlElement* parent);

    static void SetName(CXmlElement* element, std::string_view localName, std::string_view namespaceURI);
    static void SetName(CXmlElement* element, const std::string* internedLocalName,
                        const std::string* internedNamespaceURI) noexcept;

    // Appends an attribute in document order; duplicates are not checked.
    static void AddAttribute(CXmlElement* element, std::string_view localName,
                             std::string_view value, std::string_view namespaceURI);
    static void AddAttribute(CXmlElement* element, const std::string* internedLocalName,
                             std::string value, const std::string* internedNamespaceURI);

    // Appends character data to the element's text, byte for byte.
    static void AppendText(CXmlElement* element, const char* text, std::size_t length);

    // Unlinks the last child of parent and returns it; the caller deletes it.
    // Null when parent has no child. Costs the number of parent's children.
    static CXmlElement* RemoveLastChild(CXmlElement* parent) noexcept;
    // Unlinks and destroys the last child of parent; false when there was none.
    static bool DeleteLastChild(CXmlElement* parent) noexcept;
};

}  // namespace QmXmlLib10
