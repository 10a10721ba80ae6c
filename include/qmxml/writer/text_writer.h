// The writer that produces XML text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qmxml/core/enums.h"
#include "qmxml/writer/text_stream.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

// Writes XML text into a CTextStream (not owned; it must outlive the writer).
//
// Output shape: when formatted (the default), each element on a line of its
// own indented by one tab per level; an element with text only as start tag,
// text and end tag on one line; an empty element as one tag ending in "/>".
// Line ends are LF by default, CR LF with SetEOLType(EOLType_CRLF).
//
// Namespaces: the writer's default namespace and aliases are declared on the
// root and are in scope for the root's own name. Other namespaces get the
// first free prefix of "AA", "AB", ... declared on the element that needs it.
// The prefix "xml" is always bound to the XML namespace and never declared.
// An element in no namespace inside the default namespace's scope is written
// with xmlns="" (a root in no namespace does not declare the default at all).
//
// Text, comments and raw text close a pending start tag. Comments and raw text
// count as children (the end tag goes on its own line); text does not.
class CXmlTextWriter : public CXmlWriter {
public:
    explicit CXmlTextWriter(CTextStream& stream);
    ~CXmlTextWriter() override;

    // Opens the stream (a file stream creates its file).
    void StartDocument() override;
    // Closes the stream, then throws "An Element has not been closed." if one is open.
    void EndDocument() override;
    // "<?xml version="1.0" encoding="UTF-8"?>" (or "UTF-16"; no encoding for
    // other stream encodings), then the end-of-line sequence, formatted or not.
    // Call it after StartDocument once the EOL type is set.
    void WriteXmlDeclaration();
    // "<!--" text "-->" and a line end; the text is not escaped. A text that
    // holds "--", ends in "-" or holds a character XML cannot carry throws
    // CQmInvalidValueException "Invalid comment [%s]".
    void WriteComment(const char* text) override;
    // The text unchanged, then two line ends.
    void WriteRawLine(const char* text) override;
    // " ", a line end, the text unchanged, a line end.
    void WriteRaw(const char* text) override;
    void StartElement(const char* localName, const char* namespaceURI) override;
    // Empty text writes nothing; CDATA sections at the start of the text (as the
    // loader keeps them) are written as they are, the rest escaped.
    void WriteText(const char* value, ItemType itemType = ItemType_string) override;
    void EndElement() override;
    // The same text as the three calls, without a context of its own for the
    // element when its name needs no namespace declaration.
    void WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                            ItemType itemType = ItemType_string) override;
    // Throws "Attributes must be added before elements" once the start tag is
    // closed. Tabs in the value are written as they are (a reader makes them
    // spaces), line feeds as references, carriage returns are dropped.
    void WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                        ItemType itemType = ItemType_string) override;

    // 0 CR LF, 1 LF; anything else throws "Invalid EOL type.".
    void SetEOLType(EOLType type);
    EOLType GetEOLType() const { return m_eolType; }
    void SetFormatted(bool formatted) { m_formatted = formatted; }
    bool GetFormatted() const { return m_formatted; }

    // The stream asks for a flush once this many characters are buffered.
    static constexpr std::size_t FlushThreshold = 4096;

protected:
    void WritePrefixDeclaration(const std::string& prefix, std::string_view namespaceURI) override;

private:
    void Write(const char* text, std::size_t length) { m_buffer.Append(text, length); }
    void Write(const std::string& text) { m_buffer.Append(text.data(), text.size()); }
    void WriteEol() { m_buffer.Append(m_eol.data(), m_eol.size()); }
    void WriteTabs(std::int32_t count);
    void WriteEscaped(const char* value, bool attribute);
    // Element text: leading complete CDATA sections as they are, the rest escaped.
    void WriteTextValue(const char* value);
    void WriteNamespaceDeclaration(const std::string& prefix, const std::string& uri);
    // Escaped as an attribute value, with tabs and carriage returns as references.
    void WriteNamespaceName(const char* uri);
    // Closes the current element's start tag, if open: ">" and, when asChild and
    // formatted, a line end; asChild also counts a child.
    void CloseStartTag(bool asChild);
    // For an attribute in no namespace named xmlns or xmlns:p (a declaration
    // read as data, as without namespace processing): true when the open start
    // tag already makes the same declaration, so that writing it again would
    // repeat an attribute. A different one throws.
    bool DeclaredInStartTag(const CXmlWriterContext& context, std::string_view name, std::string_view value) const;
    void FlushIfFull() {
        if (m_buffer.GetLength() >= FlushThreshold) m_stream.Flush();
    }

    std::string m_eol = "\n";
    EOLType m_eolType = EOLType_LF;
    bool m_formatted = true;
    CTextStream& m_stream;
    CStringBuffer& m_buffer;
    std::string m_newPrefix;  // reused for prefix allocation
    // The default namespace the open start tag declares (xmlns="..."), or null.
    const std::string* m_startTagDefault = nullptr;
};

}  // namespace QmXmlLib10
