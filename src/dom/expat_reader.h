// Builds a document's tree from XML text through Expat. Internal to the library.
#pragma once

#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <expat.h>

#include "qmxml/core/instance_monitor.h"

namespace QmXmlLib10 {

class CXmlDocument;
class CXmlElement;

// Tells whether UTF-8 text is a name (with colons allowed or not) as Expat reads names,
// so that names taken from elsewhere (Fast Infoset) are only accepted when
// they can be written as XML text that reads back. ASCII names are checked
// here; others are handed to Expat as an empty element, on one parser reset
// for each name.
class CExpatNameCheck {
public:
    CExpatNameCheck() = default;
    ~CExpatNameCheck();
    CExpatNameCheck(const CExpatNameCheck&) = delete;
    CExpatNameCheck& operator=(const CExpatNameCheck&) = delete;

    bool IsName(const char* name, std::size_t length, bool colons);

private:
    static void XMLCALL OnStart(void* self, const XML_Char* name, const XML_Char** attributes);

    XML_Parser m_parser = nullptr;
    std::string m_document;
    std::string_view m_expected;
    bool m_matched = false;
};

// Owns one Expat parser for one parse and turns its callbacks into tree
// builder calls. Input may come whole (ParseAll) or piece by piece (Parse,
// the last piece marked final). Not exported: calls between its members run
// per callback, and a hidden class binds them directly instead of via the PLT.
class __attribute__((visibility("hidden"))) CExpatReader : public CInstanceMonitor {
public:
    // namespaces: split names at Expat's '|' separator; keepCDATA: write the
    // CDATA markers into the text.
    CExpatReader(CXmlDocument& document, bool namespaces, bool keepCDATA);
    virtual ~CExpatReader();
    CExpatReader(const CExpatReader&) = delete;
    CExpatReader& operator=(const CExpatReader&) = delete;

    // Throws "<Expat's message> at line <n>", or what a callback threw.
    // True when a stop (below) suspended the parser inside the piece: Resume
    // goes on with it.
    bool Parse(const char* data, std::size_t length, bool isFinal);
    // As Parse, through a copy in Expat's own buffer. A parse suspended inside
    // a caller's piece makes Expat copy the rest of the piece at every stop;
    // from its own buffer it just goes on.
    bool ParseCopy(const char* data, std::size_t length, bool isFinal);
    bool Resume();

    // For binding while parsing. Suspends the parser when an element ends
    // leaving fewer than count open elements (0: never).
    void SetStopBelow(std::size_t count) noexcept { m_stopBelow = count; }
    // Suspends the parser once the document element has started.
    void StopAtDocumentElement() noexcept { m_stopAtStart = true; }
    // Tags elements as open from their start to their end, so that the
    // tree's accessors know what is still to come.
    void MarkOpenElements() noexcept { m_markOpen = true; }
    // From now on every element is destroyed as it ends: what is left of a
    // document once its object is read only needs checking.
    void DiscardEndedElements() noexcept { m_discard = true; }
    // The open elements, the document element first.
    std::size_t GetOpenCount() const noexcept { return m_open.size(); }
    CXmlElement* GetOpenElement(std::size_t index) const noexcept { return m_open[index].element; }

    // The whole input, fed in pieces so that Expat's own copy stays small.
    void ParseAll(const char* data, std::size_t length);

    static constexpr std::size_t kPieceSize = 0x20000;

private:
    struct Names {
        const std::string* localName;
        const std::string* namespaceURI;
    };
    // The text of the open elements, back to back. Appending is the one thing
    // done per character-data callback, so it is a bare copy into spare room.
    class TextStack {
    public:
        std::size_t Size() const noexcept { return m_size; }
        const char* Data() const noexcept { return m_data.get(); }
        void Append(const char* text, std::size_t length) {
            Reserve(length);
            std::memcpy(m_data.get() + m_size, text, length);
            m_size += length;
        }
        // Appends text without its carriage returns. The copy is scanned a
        // word at a time, which beats a search call on the short runs Expat
        // hands over (a value, a line break, an indentation).
        void AppendWithoutCR(const char* text, std::size_t length);
        // Drops what follows size (never grows).
        void Truncate(std::size_t size) noexcept { m_size = size; }

    private:
        // Room for length more bytes plus a word of slack for the scan.
        void Reserve(std::size_t length) {
            if (length + kSlack > m_capacity - m_size) Grow(length + kSlack);
        }
        void Grow(std::size_t length);
        static constexpr std::size_t kSlack = 8;
        std::unique_ptr<char[]> m_data;
        std::size_t m_size = 0;
        std::size_t m_capacity = 0;
    };
    struct OpenElement {
        CXmlElement* element;
        std::size_t textStart;  // where its text begins in m_pendingText
        CXmlElement* previous;  // its previous sibling, to unlink it when discarding
    };
    struct CacheSlot {
        std::size_t hash = 0;
        std::string key;  // Expat's name as given; empty: free slot
        Names names{nullptr, nullptr};
    };

    static void XMLCALL OnStartElement(void* self, const XML_Char* name, const XML_Char** attributes);
    static void XMLCALL OnEndElement(void* self, const XML_Char* name);
    static void XMLCALL OnCharacterData(void* self, const XML_Char* text, int length);
    static void XMLCALL OnStartCData(void* self);
    static void XMLCALL OnEndCData(void* self);
    static void XMLCALL OnStartNamespace(void* self, const XML_Char* prefix, const XML_Char* uri);
    static void XMLCALL OnXmlDeclaration(void* self, const XML_Char* version, const XML_Char* encoding,
                                         int standalone);

    bool Finish(int status);
    void StartElement(const char* name, const char** attributes);
    void EndElement();
    void AppendText(const char* text, std::size_t length);
    // True while Parse runs when text lies in Expat's input buffer, which only
    // moves between Parse calls.
    bool InInputBuffer(const char* text);
    // Copies text kept by reference into m_pendingText.
    void KeepDirectText() {
        if (m_directText == nullptr) return;
        m_pendingText.Append(m_directText, m_directLength);
        m_directText = nullptr;
    }
    void StartNamespace(const char* prefix, const char* uri);
    // Splits, converts and interns a name, answering repeats from the cache.
    Names Lookup(const char* name);
    Names Resolve(const char* name, std::size_t length);
    void GrowCache();
    // Converted text, unchanged when the local encoding is UTF-8.
    void ToLocal(const char* text, std::size_t length, std::string& out) const;
    void AppendLocal(const char* text, std::size_t length);  // without carriage returns
    // Exceptions must not cross Expat's C frames: keep the first and stop.
    void Fail() noexcept;

    CXmlDocument& m_document;
    XML_Parser m_parser;
    bool m_namespaces;
    bool m_convert;
    bool (*m_filter)(CXmlElement*);
    // Open elements, innermost last. Text is collected in m_pendingText and
    // stored once per element when it ends, so that each element's string is
    // allocated once at its size.
    std::vector<OpenElement> m_open;
    TextStack m_pendingText;
    // The innermost element's first text, while it is its only text and lies in
    // Expat's input buffer: a value usually comes in one piece, and storing it
    // straight from the buffer saves the copy into m_pendingText.
    const char* m_directText = nullptr;
    std::size_t m_directLength = 0;
    const char* m_bufferBegin = nullptr;  // Expat's input buffer during Parse, once asked
    const char* m_bufferEnd = nullptr;
    bool m_bufferKnown = false;
    std::vector<CacheSlot> m_cache;
    std::size_t m_cacheCount = 0;
    std::string m_scratch;
    std::exception_ptr m_error;
    std::size_t m_stopBelow = 0;
    bool m_stopAtStart = false;
    bool m_markOpen = false;
    bool m_discard = false;
};

}  // namespace QmXmlLib10
