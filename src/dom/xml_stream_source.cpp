#include "dom/xml_stream_source.h"

#include <utility>

#include "dom/expat_reader.h"
#include "dom/xml_document_loading.h"
#include "platform/file_reader.h"
#include "qmxml/core/exception.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/dom/xml_tree_builder.h"

namespace QmXmlLib10 {

namespace {

// Expat as a pull parser: pieces of input are fed as it asks, and a parse
// suspended at an element end is resumed inside the same piece.
class __attribute__((visibility("hidden"))) CExpatPullParser final : public CXmlPullParser {
public:
    CExpatPullParser(std::unique_ptr<CExpatReader> reader, CXmlStreamSource::NextPiece next)
        : m_reader(std::move(reader)), m_next(std::move(next)) {
        m_reader->MarkOpenElements();
    }

    void SetStopBelow(std::size_t count) noexcept override { m_reader->SetStopBelow(count); }
    void StopAtDocumentElement() noexcept override { m_reader->StopAtDocumentElement(); }
    void DiscardEndedElements() noexcept override { m_reader->DiscardEndedElements(); }
    std::size_t GetOpenCount() const noexcept override { return m_reader->GetOpenCount(); }
    CXmlElement* GetOpenElement(std::size_t index) const noexcept override {
        return m_reader->GetOpenElement(index);
    }
    bool Continue() override;

private:
    std::unique_ptr<CExpatReader> m_reader;
    CXmlStreamSource::NextPiece m_next;
    bool m_suspended = false;  // the parser stopped inside the current piece
    bool m_lastPiece = false;  // the current piece is the final one
};

bool CExpatPullParser::Continue() {
    for (;;) {
        bool suspended;
        if (m_suspended) {
            suspended = m_reader->Resume();
        } else {
            const char* data = nullptr;
            std::size_t length = 0;
            bool last = false;
            if (!m_next(data, length, last)) return false;
            m_lastPiece = last;
            suspended = m_reader->ParseCopy(data, length, last);
        }
        m_suspended = suspended;
        if (suspended) return true;
        if (m_lastPiece) return false;
    }
}

// The lazy tree over any pull parser; hidden like the parsers it drives.
class __attribute__((visibility("hidden"))) CPullStreamSource final : public CXmlStreamSource {
public:
    explicit CPullStreamSource(std::unique_ptr<CXmlPullParser> parser) : m_parser(std::move(parser)) {}

    void ReadToDocumentElement() override;
    void Drain() override;
    void ReadRest() override;
    [[noreturn]] void RethrowFailure() const override;
    void WaitUntilClosed(const CXmlElement* element) override;
    CXmlElement* FirstElement(const CXmlElement* element) override;
    CXmlElement* NextSibling(const CXmlElement* element) override;

private:
    // Runs the parser until an element ends leaving fewer than stopBelow open
    // elements (true), or until the input is used up (false).
    bool Step(std::size_t stopBelow);
    // Step for the accessors: failures become CXmlStreamAbort.
    bool Pull(std::size_t stopBelow);

    std::unique_ptr<CXmlPullParser> m_parser;
    bool m_finished = false;
    std::exception_ptr m_failure;
};

}  // namespace

CXmlPullParser::~CXmlPullParser() = default;

std::unique_ptr<CXmlStreamSource> CXmlStreamSource::Create(std::unique_ptr<CExpatReader> reader, NextPiece next) {
    return Create(std::make_unique<CExpatPullParser>(std::move(reader), std::move(next)));
}

std::unique_ptr<CXmlStreamSource> CXmlStreamSource::Create(std::unique_ptr<CXmlPullParser> parser) {
    return std::make_unique<CPullStreamSource>(std::move(parser));
}

CXmlStreamSource::~CXmlStreamSource() = default;

bool CPullStreamSource::Step(std::size_t stopBelow) {
    if (m_failure) std::rethrow_exception(m_failure);
    if (m_finished) return false;
    m_parser->SetStopBelow(stopBelow);
    try {
        if (m_parser->Continue()) return true;
    } catch (...) {
        // The parser cannot go on after an error: every later step reports it.
        m_failure = std::current_exception();
        m_finished = true;
        throw;
    }
    m_finished = true;
    return false;
}

bool CPullStreamSource::Pull(std::size_t stopBelow) {
    try {
        return Step(stopBelow);
    } catch (...) {
        throw CXmlStreamAbort{};
    }
}

void CPullStreamSource::ReadToDocumentElement() {
    m_parser->StopAtDocumentElement();
    Step(0);
}

void CPullStreamSource::Drain() {
    m_parser->DiscardEndedElements();
    while (Step(0)) {
    }
}

void CPullStreamSource::ReadRest() {
    while (Step(0)) {
    }
}

CXmlStreamSource& CXmlDocumentLoading::SetStream(CXmlDocument& document,
                                                 std::unique_ptr<CXmlStreamSource> stream) noexcept {
    document.m_stream = std::move(stream);
    return *document.m_stream;
}

void CXmlDocumentLoading::ReadWhole(CXmlDocument& document) {
    if (document.m_stream) document.m_stream->ReadRest();
}

void CPullStreamSource::RethrowFailure() const {
    if (m_failure) std::rethrow_exception(m_failure);
    // The input ended inside an element without the parser saying so.
    throw CQmException("Invalid or empty XML document");
}

void CXmlDocumentLoading::Bind(CXmlDocument& document, const std::function<void()>& bind,
                               const std::function<void()>& undo) {
    CXmlStreamSource* stream = document.m_stream.get();
    if (stream == nullptr) {
        bind();
        return;
    }
    std::exception_ptr failure;
    try {
        bind();
    } catch (const CXmlStreamAbort&) {
        if (undo) undo();
        stream->RethrowFailure();
    } catch (...) {
        // A whole tree would have been loaded first: a parse error further on wins.
        failure = std::current_exception();
    }
    try {
        stream->Drain();
    } catch (...) {
        if (undo) undo();
        throw;
    }
    if (failure) std::rethrow_exception(failure);
}

namespace {

// Where element stands among the open elements; count when it is not open.
std::size_t OpenIndex(const CXmlPullParser& reader, const CXmlElement* element) {
    const std::size_t count = reader.GetOpenCount();
    for (std::size_t i = count; i > 0; --i) {
        if (reader.GetOpenElement(i - 1) == element) return i - 1;
    }
    return count;
}

}  // namespace

void CPullStreamSource::WaitUntilClosed(const CXmlElement* element) {
    while (CXmlTreeBuilder::IsOpen(element)) {
        const std::size_t index = OpenIndex(*m_parser, element);
        // Stop once element ends (index elements are then left open).
        if (!Pull(index + 1) && CXmlTreeBuilder::IsOpen(element)) throw CXmlStreamAbort{};
    }
}

CXmlElement* CPullStreamSource::FirstElement(const CXmlElement* element) {
    for (;;) {
        CXmlElement* first = CXmlTreeBuilder::PeekFirstChild(element);
        if (first != nullptr && !CXmlTreeBuilder::IsOpen(first)) return first;
        if (!CXmlTreeBuilder::IsOpen(element)) return first;
        // Stop when a child of element ends, or element itself.
        const std::size_t index = OpenIndex(*m_parser, element);
        if (!Pull(index + 2) && CXmlTreeBuilder::IsOpen(element)) throw CXmlStreamAbort{};
    }
}

CXmlElement* CPullStreamSource::NextSibling(const CXmlElement* element) {
    for (;;) {
        CXmlElement* next = CXmlTreeBuilder::PeekNextSibling(element);
        if (next != nullptr) {
            WaitUntilClosed(next);
            return next;
        }
        // Without a next sibling so far, element is either the last child of
        // the innermost open element (more may come) or its parent has ended.
        const std::size_t count = m_parser->GetOpenCount();
        if (count == 0) return nullptr;
        CXmlElement* parent = m_parser->GetOpenElement(count - 1);
        if (CXmlTreeBuilder::GetLastChild(parent) != element) return nullptr;
        if (!Pull(count + 1)) return CXmlTreeBuilder::PeekNextSibling(element);
    }
}

void CXmlStreamSource::ReleaseContent(CXmlElement* element) noexcept {
    if (CXmlDocumentLoading::GetStream(*element->GetDocument()) == nullptr) return;
    if (CXmlTreeBuilder::IsOpen(element)) return;
    CXmlTreeBuilder::DestroyChildren(element);
}

void CXmlStreamSource::ReleaseBetween(CXmlElement* parent, CXmlElement* first, const CXmlElement* upTo) noexcept {
    if (CXmlDocumentLoading::GetStream(*parent->GetDocument()) == nullptr) return;
    for (;;) {
        CXmlElement* victim = CXmlTreeBuilder::PeekNextSibling(first);
        if (victim == nullptr || victim == upTo || CXmlTreeBuilder::IsOpen(victim)) return;
        // The parser keeps each open element's previous sibling, to unlink
        // the element in constant time when it ends: that one stays.
        const CXmlElement* after = CXmlTreeBuilder::PeekNextSibling(victim);
        if (after != nullptr && CXmlTreeBuilder::IsOpen(after)) return;
        CXmlTreeBuilder::DestroyNextSibling(parent, first);
    }
}

// ------------------------------------------------- CXmlElement's slow paths

void CXmlElement::WaitUntilClosed() const {
    if (CXmlStreamSource* stream = CXmlDocumentLoading::GetStream(*m_document)) stream->WaitUntilClosed(this);
}

CXmlElement* CXmlElement::FirstElementWhileOpen() const {
    if (CXmlStreamSource* stream = CXmlDocumentLoading::GetStream(*m_document)) return stream->FirstElement(this);
    return m_firstChild;
}

CXmlElement* CXmlElement::NextSiblingWhileOpen() const {
    if (CXmlStreamSource* stream = CXmlDocumentLoading::GetStream(*m_document)) return stream->NextSibling(this);
    return m_nextSibling;
}

}  // namespace QmXmlLib10
