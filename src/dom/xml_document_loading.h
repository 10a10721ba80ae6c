// What the document loaders (the Expat reader and the Fast Infoset reader)
// need from CXmlDocument beyond the tree builder. Internal to the library.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "qmxml/dom/xml_document.h"
#include "qmxml/fastinfoset/fi_statistics.h"

namespace QmXmlLib10 {

class CXmlNodePool;
class CXmlSerializationContext;
class CXmlStreamSource;

// Loads a Fast Infoset document into document through CXmlTreeBuilder and
// CXmlDocumentLoading (after RequestStreaming, only up to the start of the
// document element, leaving a stream source that decodes from data, which
// the caller keeps alive with the document). Returns false, having built
// nothing, when the bytes are not Fast Infoset (they are then parsed as XML
// text); throws CQmException when they are Fast Infoset but malformed.
using FastInfosetLoader = bool (*)(CXmlDocument& document, const unsigned char* data,
                                   std::uint32_t length, const CXmlSerializationContext& context);

class CXmlDocumentLoading {
public:
    CXmlDocumentLoading() = delete;

    // The loader offered every file and stream input after inflation. The
    // default declines everything. Set once at library start-up.
    static void SetFastInfosetLoader(FastInfosetLoader loader) noexcept;
    static FastInfosetLoader GetFastInfosetLoader() noexcept;

    // Records a namespace declaration document-wide; a later one for the same
    // prefix replaces the earlier. An empty prefix is the default namespace.
    static void DeclareNamespace(CXmlDocument& document, std::string prefix, std::string uri) {
        document.m_namespaces[std::move(prefix)] = std::move(uri);
    }
    static CXmlDocument::ElementFilter GetElementFilter(const CXmlDocument& document) noexcept {
        return document.m_filter;
    }
    // Where whitespace-only element texts are interned.
    static CXmlNameTable& GetTextTable(const CXmlDocument& document) noexcept { return document.m_textTable; }
    // Where the document's nodes live.
    static CXmlNodePool& GetNodePool(const CXmlDocument& document) noexcept { return *document.m_pool; }
    // Records what the Fast Infoset reader found, once it read the whole document.
    static void SetFastInfosetStatistics(CXmlDocument& document, const CFastInfosetStatistics& statistics) {
        document.m_fastInfosetStatistics = std::make_unique<CFastInfosetStatistics>(statistics);
    }
    // The encoding an XML declaration names (Expat's XmlDecl handler).
    static void SetDeclaredEncoding(CXmlDocument& document, const char* encoding) {
        if (encoding != nullptr && *encoding != 0) document.m_detectedFormat.encoding = encoding;
    }
    // The schema type read from the context when the document was constructed.
    static int GetSchemaType(const CXmlDocument& document) noexcept { return document.m_schemaType; }

    // Reading while binding. After RequestStreaming, the next load parses
    // only up to the start of the document element (XML text or Fast
    // Infoset alike); the tree then grows as its accessors reach what has
    // not been parsed yet. Bind runs the binding, reads the
    // rest of the input (keeping none of it) and reports as loading and
    // binding a whole tree would: the parser's error when the document is
    // not well formed, even where binding failed first, otherwise what
    // binding threw. A whole tree that fails to load binds nothing, so
    // before the parser's error is thrown, undo (when given) takes back what
    // binding did.
    static void RequestStreaming(CXmlDocument& document) noexcept { document.m_streamRequested = true; }
    static CXmlStreamSource* GetStream(const CXmlDocument& document) noexcept { return document.m_stream.get(); }
    // For the Fast Infoset loader, which sets up its own source.
    static bool IsStreamingRequested(const CXmlDocument& document) noexcept { return document.m_streamRequested; }
    static CXmlStreamSource& SetStream(CXmlDocument& document, std::unique_ptr<CXmlStreamSource> stream) noexcept;
    static void Bind(CXmlDocument& document, const std::function<void()>& bind,
                     const std::function<void()>& undo = nullptr);
    // Parses the rest into the tree, as loading would have.
    static void ReadWhole(CXmlDocument& document);
};

}  // namespace QmXmlLib10
