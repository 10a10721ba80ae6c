// The document: loads XML text (or compressed text) into an element tree and
// owns that tree and the names it uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/core/instance_monitor.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/dom/xml_name_table.h"

namespace QmXmlLib10 {

class CXmlNodePool;
class CXmlSerializationContext;
class CXmlStreamSource;
struct CFastInfosetStatistics;

// What the loader took its input for.
enum XmlInputFormat : int {
    XmlInputFormat_None = 0,  // nothing loaded yet, or the input was refused before detection
    XmlInputFormat_Text = 1,
    XmlInputFormat_FastInfoset = 2,
};

// The format a load detected, for callers that report or keep it (a tool that
// describes a file, a converter that writes back what it read).
struct CXmlDetectedFormat {
    XmlInputFormat format = XmlInputFormat_None;
    // How the input was framed: gzip, zlib or none. Input whose first bytes
    // only look like a zlib header is parsed as it is, and counts as none.
    CompressionType compression = CompressionType_None;
    // XML text: the encoding named by the declaration, else the one the
    // byte-order mark or the first characters show ("UTF-16"), else "UTF-8",
    // as Expat reads it. Empty for Fast Infoset, whose strings each say how
    // they are encoded.
    std::string encoding;

    // "XML text", "Fast Infoset", "gzip-compressed XML text",
    // "zlib-compressed Fast Infoset" and so on; "" when nothing was detected.
    std::string Describe() const;
};

// Holds the document element and the name table its nodes point into.
// Destroying the document destroys the tree; pointers to nodes and interned
// names become invalid then, and when the document is reloaded.
//
// Loading. Every Load* call first discards the previous tree (Cleanup), then:
//  - LoadXml(const char*) parses the zero-terminated text as XML; Expat finds
//    the encoding from the declaration or a byte-order mark (UTF-8 otherwise).
//  - LoadXml(const unsigned short*) parses the zero-terminated UTF-16 text.
//  - LoadXmlStream and Load (file) first inflate zlib- or gzip-framed input,
//    then offer the bytes to the Fast Infoset reader, then parse them as XML.
//    With AsyncFromXmlFile(true), Load instead reads the file in 0x20000-byte
//    chunks handed to the parser as they arrive (plain XML text only).
// Neither the caller's bytes nor the file's are kept after the load. Plain
// (uncompressed) stream input is parsed straight from the caller's buffer,
// which must stay unchanged for the duration of the call.
//
// Names are split into namespace URI and local name unless the context's
// schema type (read once, at construction) is SchemaType_NoNamespaces; then
// qualified names such as "p:a" and "xmlns:p" are kept whole. CDATA sections
// keep their "<![CDATA[" and "]]>" markers in the text unless the context
// strips CDATA. Carriage returns are never stored. Text, names and values are
// converted from UTF-8 to the local encoding (see SetLocalCharEncoding).
//
// Failures throw CQmException: "XML String is empty!", "XML Stream is empty!",
// file errors with the name and errno, parse errors as "<Expat's message> at
// line <n>", "Invalid or empty XML document" for an empty file, and the
// inflate errors described at SetMaxInflateRatio. After a failed load the
// partial tree stays until the next load or destruction.
class CXmlDocument : public CInstanceMonitor {
public:
    // Called for each completed element; a true result removes and destroys the
    // element (and its subtree) at once, which lets a caller process a large
    // document element by element. Ignored for the document element.
    using ElementFilter = bool (*)(CXmlElement* element);

    CXmlDocument();
    // The context is kept by pointer and must outlive the document.
    explicit CXmlDocument(const CXmlSerializationContext& context);
    explicit CXmlDocument(ElementFilter filter);
    CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context);
    virtual ~CXmlDocument();
    CXmlDocument(const CXmlDocument&) = delete;
    CXmlDocument& operator=(const CXmlDocument&) = delete;

    void Load(const char* fileName);
    void LoadXml(const char* xml);
    // An empty string is not refused up front: it fails in the parser.
    void LoadXml(const unsigned short* xml);
    void LoadXmlStream(unsigned char* const data, std::uint32_t length);

    // The root element, or null until a tree has been built.
    CXmlElement* GetDocumentElement() const noexcept { return m_documentElement; }
    // The URI declared for prefix (null or "" for the default namespace)
    // anywhere in the document; a later declaration of the same prefix wins.
    // Empty when the prefix was never declared. Valid until the next load.
    const std::string& LookupNamespaceFromAlias(const char* prefix) const;
    // Every prefix declared in the document ("" for the default namespace)
    // with the URI LookupNamespaceFromAlias gives it. Valid until the next load.
    const std::map<std::string, std::string>& GetDeclaredNamespaces() const noexcept { return m_namespaces; }

    // Interning changes no node, so it is allowed on a const document.
    CXmlNameTable& GetNameTable() const noexcept { return m_nameTable; }
    // The vocabulary sizes of the Fast Infoset document last loaded
    // (qmxml/fastinfoset/fi_statistics.h); null when the last load was not
    // Fast Infoset or failed. Valid until the next load.
    const CFastInfosetStatistics* GetFastInfosetStatistics() const noexcept { return m_fastInfosetStatistics.get(); }
    const CXmlSerializationContext& GetContext() const noexcept { return *m_context; }
    // What the last load took its input for. Reset by every load, and recorded
    // as soon as the format is known, so that after a failed parse it still
    // tells what the input was read as.
    const CXmlDetectedFormat& GetDetectedFormat() const noexcept { return m_detectedFormat; }

    // Guard against decompression bombs. Compressed input may inflate to at
    // most max(ratio * compressed size, GetMinInflateLimit()) bytes, and never
    // beyond 4 GiB - 1; past that the load throws
    // "The inflated data exceeds the limit of %llu bytes". Compressed input that
    // is truncated or corrupt after a valid gzip header, or truncated after a
    // zlib header, throws "The compressed data is truncated or corrupt" rather
    // than being parsed as text; input whose first bytes merely look like a
    // zlib header is parsed as it is. Defaults: ratio 1000, floor 64 MiB.
    // Library-wide; set before loading starts.
    static void SetMaxInflateRatio(std::uint32_t ratio) noexcept;
    static std::uint32_t GetMaxInflateRatio() noexcept;
    static void SetMinInflateLimit(std::uint64_t bytes) noexcept;
    static std::uint64_t GetMinInflateLimit() noexcept;

    // Memory reuse across documents. The nodes of large trees live in 2 MiB
    // blocks; when a document is destroyed or reloaded, up to this many bytes
    // of them are kept for the next load in the process instead of going back
    // to the system (default 128 MiB; 0 keeps none). Lowering the limit frees
    // the surplus at once, so SetNodeCacheLimit(0) followed by the old value
    // returns everything held. Thread-safe.
    static void SetNodeCacheLimit(std::size_t bytes) noexcept;
    static std::size_t GetNodeCacheLimit() noexcept;
    // Bytes currently kept for reuse.
    static std::size_t GetNodeCacheSize() noexcept;

protected:
    // Destroys the tree and forgets the namespace declarations.
    virtual void Cleanup();

private:
    friend class CXmlTreeBuilder;
    friend class CXmlDocumentLoading;

    // Parses whole, uncompressed input (inflate and Fast Infoset already ruled
    // out); when streaming was asked for, only up to the document element.
    void ParseText(const unsigned char* data, std::size_t length);
    // Records XML text as the detected format, with the encoding its first
    // bytes show until the declaration (if any) names one.
    void DetectText(const unsigned char* data, std::size_t length);
    // Inflate, Fast Infoset, then text.
    void LoadDetected(const unsigned char* data, std::size_t length);
    void LoadFileInChunks(const char* fileName);

    // Declared first so that they outlive the nodes pointing into them.
    mutable CXmlNameTable m_nameTable;
    // Whitespace-only texts, shared by the elements that hold the same run.
    mutable CXmlNameTable m_textTable;
    // Where the nodes live; nodes allocate from it through their const document.
    std::unique_ptr<CXmlNodePool> m_pool;
    CXmlElement* m_documentElement = nullptr;  // owned, in m_pool
    std::map<std::string, std::string> m_namespaces;
    int m_schemaType;
    ElementFilter m_filter = nullptr;
    const CXmlSerializationContext* m_context;
    std::unique_ptr<CFastInfosetStatistics> m_fastInfosetStatistics;
    CXmlDetectedFormat m_detectedFormat;
    // The parse still under way while the document is bound (see
    // CXmlDocumentLoading::RequestStreaming); null for a loaded tree.
    std::unique_ptr<CXmlStreamSource> m_stream;
    bool m_streamRequested = false;
};

}  // namespace QmXmlLib10
