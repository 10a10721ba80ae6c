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
// AppendText for every run of character data, DeleteLastChild (or
// RemoveLastChild then DestroyElement) to drop a completed child that a filter
// rejects.
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

    // Sizes element's attribute storage for count attributes in all; a loader
    // that knows the count up front (Expat hands them over together) saves the
    // vector's regrowth. Optional.
    static void ReserveAttributes(CXmlElement* element, std::size_t count);
    // Appends an attribute in document order; duplicates are not checked.
    static void AddAttribute(CXmlElement* element, std::string_view localName,
                             std::string_view value, std::string_view namespaceURI);
    static void AddAttribute(CXmlElement* element, const std::string* internedLocalName,
                             std::string value, const std::string* internedNamespaceURI);

    // Appends character data to the element's text, byte for byte.
    static void AppendText(CXmlElement* element, const char* text, std::size_t length);

    // Unlinks the last child of parent and returns it; the caller must hand it
    // to DestroyElement (nodes live in the document's pool and cannot be
    // deleted). Null when parent has no child. Costs the number of parent's
    // children.
    static CXmlElement* RemoveLastChild(CXmlElement* parent) noexcept;
    // Destroys an element that has no parent (one returned by RemoveLastChild,
    // or the document element, which the document then no longer has), with
    // its subtree and attributes, without recursion. Null does nothing.
    static void DestroyElement(CXmlElement* element) noexcept;
    // Unlinks and destroys the last child of parent; false when there was none.
    static bool DeleteLastChild(CXmlElement* parent) noexcept;

    // For readers that bind while parsing. The last child as linked, without
    // reading on.
    static CXmlElement* GetLastChild(const CXmlElement* parent) noexcept;
    // Unlinks the last child of parent in constant time, given the child
    // before it (null when it is the only one); the caller destroys it.
    static void UnlinkLastChild(CXmlElement* parent, CXmlElement* previous) noexcept;
    // Tags an element as started and not yet ended (see CXmlElement).
    static void SetOpen(CXmlElement* element, bool open) noexcept;
    static bool IsOpen(const CXmlElement* element) noexcept;
    // The links as they stand, without reading on.
    static CXmlElement* PeekFirstChild(const CXmlElement* element) noexcept;
    static CXmlElement* PeekNextSibling(const CXmlElement* element) noexcept;
    // Destroys every child of element (and their subtrees).
    static void DestroyChildren(CXmlElement* element) noexcept;
    // Unlinks and destroys the sibling that follows element, a child of
    // parent (there must be one), with its subtree.
    static void DestroyNextSibling(CXmlElement* parent, CXmlElement* element) noexcept;

    // What the document's node pool holds: blocks in use (elements, attributes
    // and attribute vectors each count one) and the memory reserved for them.
    // Lets tests check that trimming the tree while loading bounds memory.
    struct PoolStatistics {
        std::size_t liveBlocks;
        std::size_t reservedBytes;
        std::size_t chunks;
    };
    static PoolStatistics GetPoolStatistics(const CXmlDocument& document) noexcept;
};

}  // namespace QmXmlLib10
