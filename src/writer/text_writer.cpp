#include "qmxml/writer/text_writer.h"

#include <array>
#include <cstring>
#include <string_view>

#include "qmxml/core/exception.h"
#include "qmxml/core/settings.h"

namespace QmXmlLib10 {

namespace {

// Characters the escaping loop must stop at; the terminating zero is one.
struct SpecialTable {
    std::array<bool, 256> text{};
    std::array<bool, 256> attribute{};
    constexpr SpecialTable() {
        for (unsigned char c : {'\0', '&', '<', '>', '\n', '\r'}) {
            text[c] = true;
            attribute[c] = true;
        }
        attribute[static_cast<unsigned char>('"')] = true;
    }
};
constexpr SpecialTable kSpecial;

constexpr char kTabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";

inline const char* OrEmpty(const char* s) { return s ? s : ""; }

}  // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : CXmlWriter("CXmlTextWriter"), m_stream(stream), m_buffer(stream.GetBuffer()) {
    // ASCIIOnly copies each byte into a UTF-16 unit of its own: any byte but a control is a character then.
    SetBytesAreUnits(GetASCIIOnly() && stream.GetEncoding() == XmlEncoding_UTF16);
}

CXmlTextWriter::~CXmlTextWriter() = default;

void CXmlTextWriter::StartDocument() { m_stream.Open(); }

void CXmlTextWriter::EndDocument() {
    m_stream.Close();
    CXmlWriter::EndDocument();
}

void CXmlTextWriter::SetEOLType(EOLType type) {
    switch (type) {
        case EOLType_CRLF:
            m_eol = "\r\n";
            break;
        case EOLType_LF:
            m_eol = "\n";
            break;
        default:
            throw CQmException("Invalid EOL type.");
    }
    m_eolType = type;
}

void CXmlTextWriter::WriteXmlDeclaration() {
    static constexpr std::string_view start = "<?xml version=\"1.0\"";
    Write(start.data(), start.size());
    switch (m_stream.GetEncoding()) {
        case XmlEncoding_UTF8:
            m_buffer.Append(" encoding=\"UTF-8\"");
            break;
        case XmlEncoding_UTF16:
            m_buffer.Append(" encoding=\"UTF-16\"");
            break;
        default:
            break;
    }
    Write("?>", 2);
    WriteEol();
    FlushIfFull();
}

void CXmlTextWriter::WriteTabs(std::int32_t count) {
    while (count > 0) {
        const std::int32_t n = count < 16 ? count : 16;
        Write(kTabs, static_cast<std::size_t>(n));
        count -= n;
    }
}

void CXmlTextWriter::WriteEscaped(const char* value, bool attribute) {
    const bool* special = attribute ? kSpecial.attribute.data() : kSpecial.text.data();
    const char* run = value;
    const char* p = value;
    for (;;) {
        while (!special[static_cast<unsigned char>(*p)]) ++p;
        if (p != run) Write(run, static_cast<std::size_t>(p - run));
        switch (*p) {
            case '\0':
                return;
            case '&':
                Write("&amp;", 5);
                break;
            case '<':
                Write("&lt;", 4);
                break;
            case '>':
                Write("&gt;", 4);
                break;
            case '"':
                Write("&quot;", 6);
                break;
            case '\n':
                if (attribute) {
                    Write("&#xA;", 5);
                } else {
                    WriteEol();
                }
                break;
            default:  // '\r': line ends follow the writer's EOL type
                break;
        }
        run = ++p;
    }
}

bool CXmlTextWriter::DeclaredInStartTag(const CXmlWriterContext& context, std::string_view name,
                                        std::string_view value) const {
    constexpr std::string_view xmlns = "xmlns";
    if (name.compare(0, xmlns.size(), xmlns) != 0) return false;
    if (name.size() > xmlns.size() && name[xmlns.size()] != ':') return false;
    const std::string_view prefix = name.size() > xmlns.size() ? name.substr(xmlns.size() + 1) : std::string_view();
    const std::string* declared = nullptr;
    if (prefix.empty()) {
        declared = m_startTagDefault;
    } else {
        for (std::size_t i = 0; i < context.GetOwnNamespaceCount() && !declared; ++i)
            if (context.GetOwnNamespacePrefix(i) == prefix) declared = &context.GetOwnNamespaceURI(i);
    }
    if (declared == nullptr) return false;
    if (*declared == value) return true;
    throw CQmException(FormatString("The attribute [%.*s] contradicts the namespace declaration of the element [%s]",
                                    static_cast<int>(name.size()), name.data(), context.m_localName.c_str()));
}

void CXmlTextWriter::WriteNamespaceDeclaration(const std::string& prefix, const std::string& uri) {
    Write(" xmlns:", 7);
    Write(prefix);
    Write("=\"", 2);
    WriteNamespaceName(uri.c_str());
    m_buffer.Append('"');
}

void CXmlTextWriter::WritePrefixDeclaration(const std::string& prefix, std::string_view namespaceURI) {
    WriteNamespaceDeclaration(prefix, std::string(namespaceURI));
}

void CXmlTextWriter::WriteNamespaceName(const char* uri) {
    // A namespace name must read back exactly, or the names in it change:
    // unlike in attribute values, tabs and carriage returns are written as
    // references (as such, a reader would turn them into a space or drop them).
    for (const char* stop; (stop = std::strpbrk(uri, "\t\r")) != nullptr; uri = stop + 1) {
        const std::string piece(uri, stop);
        WriteEscaped(piece.c_str(), true);
        Write(*stop == '\t' ? "&#x9;" : "&#xD;", 5);
    }
    WriteEscaped(uri, true);
}

void CXmlTextWriter::CloseStartTag(bool asChild) {
    CXmlWriterContext* context = GetCurrentContext();
    if (!context) return;
    if (asChild) ++context->m_childCount;
    if (!context->m_startTagOpen) return;
    m_buffer.Append('>');
    if (asChild && m_formatted) WriteEol();
    context->m_startTagOpen = false;
}

void CXmlTextWriter::StartElement(const char* localName, const char* namespaceURI) {
    // The parent's start tag closes first; the base then counts the child.
    if (CXmlWriterContext* parent = GetCurrentContext(); parent && parent->m_startTagOpen) {
        m_buffer.Append('>');
        if (m_formatted) WriteEol();
        parent->m_startTagOpen = false;
    }
    CXmlWriter::StartElement(localName, namespaceURI);
    CXmlWriterContext& context = *GetCurrentContext();
    const CXmlWriterContext* parent = context.m_parent;
    if (m_formatted) WriteTabs(context.m_depth);
    m_buffer.Append('<');
    m_startTagDefault = nullptr;

    const ElementNaming naming = GetElementNaming();
    const bool declare = naming == ElementNaming::NewPrefix;
    if (!context.m_prefix.empty()) {
        Write(context.m_prefix);
        m_buffer.Append(':');
    }
    Write(context.m_localName);
    if (declare) WriteNamespaceDeclaration(context.m_prefix, context.m_namespaceURI);

    if (!parent) {
        // A root in no namespace cannot carry the default declaration without
        // falling into that namespace itself, so it is left out then.
        if (context.m_inDefaultNamespace) {
            Write(" xmlns=\"", 8);
            WriteNamespaceName(GetDefaultNamespace().c_str());
            m_buffer.Append('"');
            m_startTagDefault = &GetDefaultNamespace();
        }
        // The alias declarations the base seeded, in alias-map order; the
        // root's own allocated prefix (if any) came after them and is written.
        const std::size_t aliases = context.GetOwnNamespaceCount() - (declare ? 1 : 0);
        for (std::size_t i = 0; i < aliases; ++i) {
            WriteNamespaceDeclaration(context.GetOwnNamespacePrefix(i), context.GetOwnNamespaceURI(i));
        }
    } else if (naming == ElementNaming::Undeclare) {
        Write(" xmlns=\"\"", 9);
        static const std::string noNamespace;
        m_startTagDefault = &noNamespace;
    }
    FlushIfFull();
}

void CXmlTextWriter::WriteAttribute(const char* localName, const char* namespaceURI, const char* value,
                                    ItemType) {
    CXmlWriterContext& context = RequireStartTag();
    const std::string_view uri = OrEmpty(namespaceURI);
    const std::string_view name = OrEmpty(localName);
    const std::string_view text = OrEmpty(value);
    CheckName(name, uri.empty());
    CheckValue(text.data(), text.size(), name);
    if (uri.empty() && DeclaredInStartTag(context, name, text)) return;
    m_buffer.Append(' ');
    bool declared = false;
    if (const std::string* prefix = AttributePrefix(context, uri, declared)) {
        if (declared) {
            Write("xmlns:", 6);
            Write(*prefix);
            Write("=\"", 2);
            WriteNamespaceName(namespaceURI);
            Write("\" ", 2);
        }
        Write(*prefix);
        m_buffer.Append(':');
    }
    Write(name.data(), name.size());
    Write("=\"", 2);
    WriteEscaped(text.data(), true);
    m_buffer.Append('"');
    FlushIfFull();
}

void CXmlTextWriter::WriteText(const char* value, ItemType) {
    if (!value || *value == '\0') return;
    CXmlWriterContext& context = RequireContext();
    CheckValue(value, std::strlen(value), context.m_localName);
    if (context.m_startTagOpen) {
        m_buffer.Append('>');
        context.m_startTagOpen = false;
    }
    WriteTextValue(value);
    FlushIfFull();
}

void CXmlTextWriter::WriteTextValue(const char* value) {
    // CDATA sections kept by the loader lead the text and go out as they came.
    // A section left open, and whatever follows the last closed one, is
    // escaped: written raw it would make the output malformed.
    while (std::strncmp(value, "<![CDATA[", 9) == 0) {
        const char* end = std::strstr(value + 9, "]]>");
        if (end == nullptr) break;
        end += 3;
        Write(value, static_cast<std::size_t>(end - value));
        value = end;
    }
    WriteEscaped(value, false);
}

void CXmlTextWriter::WriteSimpleElement(const char* localName, const char* namespaceURI, const char* value,
                                        ItemType itemType) {
    // The cases of StartElement where the name is written unprefixed or with
    // the parent's prefix and nothing is declared; the others take the long way.
    // The value is checked before the element is begun, so that a refused
    // value leaves no element behind.
    const char* name = OrEmpty(localName);
    const std::size_t nameLength = std::strlen(name);
    if (value) CheckValue(value, std::strlen(value), std::string_view(name, nameLength));
    CXmlWriterContext* parent = GetCurrentContext();
    const ChildName naming = ClassifyChildName(OrEmpty(namespaceURI));
    if (naming == ChildName::Declaration) {
        CXmlWriter::WriteSimpleElement(localName, namespaceURI, value, itemType);
        return;
    }
    CheckName(std::string_view(name, nameLength), naming == ChildName::NoNamespace);
    const std::string* prefix = naming == ChildName::ParentPrefix ? &parent->m_prefix : nullptr;
    if (parent->m_startTagOpen) {
        m_buffer.Append('>');
        if (m_formatted) WriteEol();
        parent->m_startTagOpen = false;
    }
    ++parent->m_childCount;
    if (m_formatted) WriteTabs(parent->m_depth + 1);
    m_buffer.Append('<');
    if (prefix) {
        Write(*prefix);
        m_buffer.Append(':');
    }
    Write(name, nameLength);
    if (value && *value != '\0') {
        m_buffer.Append('>');
        WriteTextValue(value);
        Write("</", 2);
        if (prefix) {
            Write(*prefix);
            m_buffer.Append(':');
        }
        Write(name, nameLength);
        m_buffer.Append('>');
    } else {
        Write("/>", 2);
    }
    if (m_formatted) WriteEol();
    FlushIfFull();
}

void CXmlTextWriter::EndElement() {
    CXmlWriterContext& context = RequireContext();
    if (context.m_startTagOpen) {
        Write("/>", 2);
    } else {
        if (m_formatted && context.m_childCount > 0) WriteTabs(context.m_depth);
        Write("</", 2);
        if (!context.m_prefix.empty()) {
            Write(context.m_prefix);
            m_buffer.Append(':');
        }
        Write(context.m_localName);
        m_buffer.Append('>');
    }
    if (m_formatted) WriteEol();
    CXmlWriter::EndElement();
    FlushIfFull();
}

void CXmlTextWriter::WriteComment(const char* text) {
    // "--" inside, or "-" at the end, would end the comment early.
    const std::string_view comment = OrEmpty(text);
    if (!IsWritable(comment.data(), comment.size()) || comment.find("--") != std::string_view::npos ||
        (!comment.empty() && comment.back() == '-')) {
        throw CQmInvalidValueException(
            FormatString("Invalid comment [%.*s]", static_cast<int>(comment.size()), comment.data()));
    }
    CloseStartTag(true);
    Write("<!--", 4);
    m_buffer.Append(OrEmpty(text));
    Write("-->", 3);
    WriteEol();
    FlushIfFull();
}

void CXmlTextWriter::WriteRawLine(const char* text) {
    CloseStartTag(true);
    m_buffer.Append(OrEmpty(text));
    WriteEol();
    WriteEol();
    FlushIfFull();
}

void CXmlTextWriter::WriteRaw(const char* text) {
    CloseStartTag(true);
    m_buffer.Append(' ');
    WriteEol();
    m_buffer.Append(OrEmpty(text));
    WriteEol();
    FlushIfFull();
}

}  // namespace QmXmlLib10
