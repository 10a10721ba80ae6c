// Parses a document a piece at a time while it is being bound, so that no
// whole tree is built: the tree's accessors ask for more input (through the
// slow paths of CXmlElement) when they reach an element the parser has not
// finished. XML text (Expat) and Fast Infoset feed the same source through
// CXmlPullParser. Internal to the library.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

namespace QmXmlLib10 {

class CExpatReader;
class CXmlElement;


// Thrown out of a tree accessor when the parser failed while binding was
// waiting for more input. Deliberately not a CQmException: the binding code
// wraps those in its own messages, and a document that is not well formed
// must report the parser's error as it stands. The entry point that started
// the read turns it back into that error (CXmlStreamSource::RethrowFailure).
struct CXmlStreamAbort {};

// A parser that builds a document's elements through CXmlTreeBuilder and
// hands control back at element ends, so that the lazy tree can grow as far
// as binding has read. Every element it builds is tagged open
// (CXmlTreeBuilder::SetOpen) from its start to its end.
class CXmlPullParser {
public:
    virtual ~CXmlPullParser();
    // Stop when an element ends leaving fewer than count open elements (0: never).
    virtual void SetStopBelow(std::size_t count) noexcept = 0;
    // Stop once the document element has started.
    virtual void StopAtDocumentElement() noexcept = 0;
    // From now on destroy every element but the document element as it ends.
    virtual void DiscardEndedElements() noexcept = 0;
    // The open elements, the document element first.
    virtual std::size_t GetOpenCount() const noexcept = 0;
    virtual CXmlElement* GetOpenElement(std::size_t index) const noexcept = 0;
    // Parses on: true when a stop ended the call, false when the document is
    // complete. Throws the parse error as loading would; after a throw or a
    // false it is not called again.
    virtual bool Continue() = 0;

protected:
    CXmlPullParser() = default;
};

class CXmlStreamSource {
public:
    // Fills data/length with the next piece of input; false when none is left.
    using NextPiece = std::function<bool(const char*& data, std::size_t& length, bool& last)>;

    // The parse of one document, fed by next.
    static std::unique_ptr<CXmlStreamSource> Create(std::unique_ptr<CExpatReader> reader, NextPiece next);
    // The parse of one document by a parser that holds its input.
    static std::unique_ptr<CXmlStreamSource> Create(std::unique_ptr<CXmlPullParser> parser);
    virtual ~CXmlStreamSource();
    CXmlStreamSource(const CXmlStreamSource&) = delete;
    CXmlStreamSource& operator=(const CXmlStreamSource&) = delete;

    // Input the source must keep alive (converted or inflated bytes).
    void Adopt(std::vector<unsigned char>&& bytes) { m_keptBytes = std::move(bytes); }
    void Adopt(std::unique_ptr<unsigned char[]>&& bytes) { m_keptArray = std::move(bytes); }

    // Parses until the document element has started (or the input ends).
    // Throws the parser's error as loading would.
    virtual void ReadToDocumentElement() = 0;
    // Parses the rest, keeping nothing of it, and throws the parser's error
    // (or the one a tree accessor already met) if there is one.
    virtual void Drain() = 0;
    // Parses the rest into the tree.
    virtual void ReadRest() = 0;
    // The error a tree accessor met, as loading would have thrown it.
    [[noreturn]] virtual void RethrowFailure() const = 0;

    // The slow paths of CXmlElement's accessors. Each throws CXmlStreamAbort
    // when the parser fails.
    virtual void WaitUntilClosed(const CXmlElement* element) = 0;
    virtual CXmlElement* FirstElement(const CXmlElement* element) = 0;
    virtual CXmlElement* NextSibling(const CXmlElement* element) = 0;

    // Frees the children of an element whose object has been read, when
    // nothing can come back to them. Elements not yet ended are left alone.
    static void ReleaseContent(CXmlElement* element) noexcept;
    // Frees the children of parent that lie between first and upTo (both
    // excluded; up to the last one when upTo is null): items of a collection
    // whose objects are read. first stays, because the readers up the stack
    // compare against the element they started from, and a freed block could
    // come back from the pool as a new element at the same address.
    static void ReleaseBetween(CXmlElement* parent, CXmlElement* first, const CXmlElement* upTo) noexcept;

protected:
    CXmlStreamSource() = default;

private:
    std::vector<unsigned char> m_keptBytes;
    std::unique_ptr<unsigned char[]> m_keptArray;
};

}  // namespace QmXmlLib10
