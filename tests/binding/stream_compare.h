// Reads one input both ways a FromXml... entry point could: through a whole
// document tree (CXmlDocument, then FromXmlElement) and through the entry
// point itself, which binds while the parser reads. Both must end alike: the
// same exception class with the same full message chain, and objects that
// write the same text (or fail to write with the same message) whatever the
// outcome, since a failed read leaves bound what was read before the failure.
// Shared by the differential tests and the differential fuzz target.
#pragma once

#include <qmxml/qmxml.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <typeinfo>
#include <vector>

namespace streamcompare {

using namespace QmXmlLib10;

struct Outcome {
    std::string failure;  // exception class and full message; empty when the read succeeded
    std::string written;  // the object written as text, or why it could not be
};

inline bool operator==(const Outcome& a, const Outcome& b) {
    return a.failure == b.failure && a.written == b.written;
}

// Readable in test failures.
inline void PrintTo(const Outcome& outcome, std::ostream* os) {
    *os << "{failure: \"" << outcome.failure << "\", written: \"" << outcome.written << "\"}";
}

inline std::string Describe(const CQmException& e) { return std::string(typeid(e).name()) + ": " + e.GetFullMessage(); }

inline std::string Written(const CXmlObjectBase& object, const CXmlSerializationContext& ctx) {
    try {
        return object.ToXml(true, false, EOLType_LF, ctx);
    } catch (const CQmException& e) {
        return "not writable: " + Describe(e);
    }
}

inline Outcome Run(CXmlObjectBase& object, const CXmlSerializationContext& ctx, const std::function<void()>& read) {
    Outcome outcome;
    try {
        read();
    } catch (const CQmException& e) {
        outcome.failure = Describe(e);
    }
    outcome.written = Written(object, ctx);
    return outcome;
}

// The input as bytes (text in any encoding, compressed or Fast Infoset).
inline Outcome ThroughTree(CXmlObjectBase& object, std::vector<unsigned char> bytes,
                           const CXmlSerializationContext& ctx) {
    return Run(object, ctx, [&] {
        CXmlDocument document(ctx);
        document.LoadXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        object.FromXmlElement(document.GetDocumentElement(), ctx);
    });
}

inline Outcome WhileParsing(CXmlObjectBase& object, std::vector<unsigned char> bytes,
                            const CXmlSerializationContext& ctx) {
    return Run(object, ctx, [&] { object.FromXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size()), ctx); });
}

// A zero-terminated string, through LoadXml and FromXml.
inline Outcome StringThroughTree(CXmlObjectBase& object, const std::string& text, const CXmlSerializationContext& ctx) {
    return Run(object, ctx, [&] {
        CXmlDocument document(ctx);
        document.LoadXml(text.c_str());
        object.FromXmlElement(document.GetDocumentElement(), ctx);
    });
}

inline Outcome StringWhileParsing(CXmlObjectBase& object, const std::string& text, const CXmlSerializationContext& ctx) {
    return Run(object, ctx, [&] { object.FromXml(text.c_str(), ctx); });
}

}  // namespace streamcompare
