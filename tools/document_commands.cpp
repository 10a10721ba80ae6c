// The subcommands that work on documents as element trees, without a schema:
// convert, info, and the main job on the bundled order book.
#include <qmxml/qmxml.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "tool_io.h"

using namespace QmXmlLib10;

namespace qmxml_tool {

CBinaryData WriteObject(const CXmlObjectBase& object, const OutputOptions& options, CXmlSerializationContext ctx) {
    const CompressionType compression = options.compress == "gzip"   ? CompressionType_GZip
                                        : options.compress == "zlib" ? CompressionType_ZLib
                                                                     : CompressionType_None;
    if (options.to == "fi") {
        if (options.fiTyped) ctx.GetFIContext().SetSuggestedValues();
        if (!options.fiVocabulary.empty()) {
            ctx.GetFIContext().SetExternalVocabularyURI(options.fiVocabulary);
            ctx.GetFIContext().SetUseGeneratedVocabulary(true);
        }
        return object.ToFastInfosetStream(static_cast<FInfoDecl>(options.fiDeclaration), ctx, compression);
    }
    const XmlEncoding encoding = options.encoding == "utf-16" ? XmlEncoding_UTF16 : XmlEncoding_UTF8;
    const EOLType eol = options.eol == "crlf" ? EOLType_CRLF : EOLType_LF;
    return object.ToXmlStream(options.declaration, options.indent, encoding, eol, ctx, compression);
}

int RunConvert(const ConvertOptions& options) {
    if (!options.schemas.empty()) return RunConvertWithSchema(options);
    std::string input = ReadInput(options.input);
    CSmartPtr<CElement> document = new CElement();
    document->FromXmlStream(AsData(input));
    WriteOutput(options.output, WriteObject(*document, options.out, CXmlSerializationContext()));
    return kExitOk;
}

int RunInfo(const std::string& name) {
    std::string input = ReadInput(name);
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&input[0]), static_cast<std::uint32_t>(input.size()));
    long elements = 0, attributes = 0, maxDepth = 0;
    std::set<std::string> namespaces;
    struct Item {
        const CXmlElement* element;
        long depth;
    };
    // An explicit stack: documents may be deeper than the call stack.
    std::vector<Item> stack{{document.GetDocumentElement(), 1}};
    while (!stack.empty()) {
        const Item item = stack.back();
        stack.pop_back();
        ++elements;
        maxDepth = std::max(maxDepth, item.depth);
        if (!item.element->GetNamespaceURI().empty()) namespaces.insert(item.element->GetNamespaceURI());
        for (const CXmlAttribute* a : item.element->GetAttributes()) {
            ++attributes;
            if (!a->GetNamespaceURI().empty()) namespaces.insert(a->GetNamespaceURI());
        }
        for (CXmlElement* c = item.element->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
            stack.push_back({c, item.depth + 1});
        }
    }
    // What the loader detected, rather than a second guess with other rules.
    const CXmlDetectedFormat& format = document.GetDetectedFormat();
    std::cout << "format:     " << format.Describe() << "\n";
    if (!format.encoding.empty()) std::cout << "encoding:   " << format.encoding << "\n";
    std::cout << "bytes:      " << input.size() << "\n"
              << "root:       {" << document.GetDocumentElement()->GetNamespaceURI() << "}"
              << document.GetDocumentElement()->GetLocalName() << "\n"
              << "elements:   " << elements << "\n"
              << "attributes: " << attributes << "\n"
              << "max depth:  " << maxDepth << "\n"
              << "namespaces: " << namespaces.size() << "\n";
    for (const std::string& ns : namespaces) std::cout << "  " << ns << "\n";
    if (const CFastInfosetStatistics* fi = document.GetFastInfosetStatistics()) {
        // The sizes of the document's vocabulary tables, built-in entries included.
        const std::pair<const char*, std::uint32_t> tables[] = {
            {"element names", fi->elementNames},     {"attribute names", fi->attributeNames},
            {"prefixes", fi->prefixes},               {"namespace names", fi->namespaceNames},
            {"local names", fi->localNames},          {"other NCNames", fi->otherNCNames},
            {"other URIs", fi->otherURIs},            {"attribute values", fi->attributeValues},
            {"character chunks", fi->characterChunks}, {"other strings", fi->otherStrings},
            {"restricted alphabets", fi->restrictedAlphabets},
        };
        std::cout << "vocabulary:\n";
        for (const auto& [table, count] : tables) {
            std::cout << "  " << table << ":" << std::string(22 - std::strlen(table), ' ') << count << "\n";
        }
    }
    return kExitOk;
}

namespace {

std::string FindExample() {
    for (const char* path : {QMXML_EXAMPLE_SOURCE, QMXML_EXAMPLE_INSTALLED}) {
        if (std::ifstream(path).good()) return path;
    }
    throw CQmException("The bundled order book was not found");
}

}  // namespace

int RunMainJob() {
    using Clock = std::chrono::steady_clock;
    const std::string path = FindExample();
    std::string input = ReadInput(path);
    const auto t0 = Clock::now();
    CSmartPtr<CElement> document = new CElement();
    document->FromXmlStream(AsData(input));
    const auto t1 = Clock::now();
    const std::string formatted = document->ToXml(true, true, EOLType_LF);
    const auto t2 = Clock::now();
    const CBinaryData gz = document->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                                 CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
    const auto t3 = Clock::now();
    CSmartPtr<CElement> again = new CElement();
    again->FromXmlStream(gz);
    const auto t4 = Clock::now();
    if (again->ToXml(true, true, EOLType_LF) != formatted) throw CQmException("The document changed on its round trip");

    auto mbps = [](double bytes, Clock::duration d) {
        const double s = std::chrono::duration<double>(d).count();
        return s > 0 ? bytes / 1e6 / s : 0.0;
    };
    std::printf("order book:  %s\n", path.c_str());
    std::printf("input:       %zu bytes, %d orders\n", input.size(), document->GetElementCount());
    std::printf("formatted:   %zu bytes\n", formatted.size());
    std::printf("gzip:        %u bytes (%.1f%% of the formatted text)\n", gz.GetLength(),
                100.0 * gz.GetLength() / static_cast<double>(formatted.size()));
    std::printf("load:        %.1f MB/s\n", mbps(static_cast<double>(input.size()), t1 - t0));
    std::printf("write:       %.1f MB/s\n", mbps(static_cast<double>(formatted.size()), t2 - t1));
    std::printf("gzip write:  %.1f MB/s\n", mbps(static_cast<double>(formatted.size()), t3 - t2));
    std::printf("gzip load:   %.1f MB/s\n", mbps(static_cast<double>(formatted.size()), t4 - t3));
    std::printf("round trip:  identical\n");
    return kExitOk;
}

}  // namespace qmxml_tool
