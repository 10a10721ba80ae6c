// qmxml: converts and inspects XML documents through the library, and with no
// arguments runs the main job on the bundled order book.
#include <qmxml/qmxml.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <utility>
#include <string>
#include <vector>

using namespace QmXmlLib10;

namespace {

const char* kUsage =
    "usage: qmxml                      run the main job on the bundled order book\n"
    "       qmxml convert IN OUT [--to xml|fi] [--encoding utf-8|utf-16] [--eol lf|crlf]\n"
    "                            [--indent|--no-indent] [--no-declaration] [--compress none|gzip|zlib]\n"
    "                            [--fi-declaration 0..9] [--fi-typed] [--fi-vocabulary URI]\n"
    "       qmxml info IN              format, counts, depth, namespaces; for Fast Infoset also\n"
    "                                  the size of each table of the document's vocabulary\n"
    "IN and OUT may be - for standard input and output. Input may be XML text or Fast Infoset,\n"
    "plain or gzip- or zlib-compressed; it is detected.\n";

struct UsageError {
    std::string text;
};

std::string ReadInput(const std::string& name) {
    if (name == "-") {
        return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
    }
    std::ifstream in(name, std::ios::binary);
    if (!in) throw CQmException(FormatString("Failed to open the file [%s]", name.c_str()));
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteOutput(const std::string& name, const CBinaryData& data) {
    const auto* bytes = reinterpret_cast<const char*>(data.GetData());
    if (name == "-") {
        std::cout.write(bytes, data.GetLength());
        std::cout.flush();
        return;
    }
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.write(bytes, data.GetLength());
    if (!out) throw CQmException(FormatString("Failed to write data to the file [%s]", name.c_str()));
}

CBinaryData AsData(std::string& text) {
    return CBinaryData(reinterpret_cast<unsigned char*>(&text[0]), static_cast<std::uint32_t>(text.size()), false);
}

int Convert(const std::vector<std::string>& args) {
    if (args.size() < 2) throw UsageError{"convert needs IN and OUT"};
    XmlEncoding encoding = XmlEncoding_UTF8;
    EOLType eol = EOLType_LF;
    bool indent = true, declaration = true, toFastInfoset = false;
    CompressionType compression = CompressionType_None;
    FInfoDecl fiDeclaration = FInfoDecl_None;
    CXmlSerializationContext ctx;
    for (size_t i = 2; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto value = [&]() -> const std::string& {
            if (i + 1 >= args.size()) throw UsageError{a + " needs a value"};
            return args[++i];
        };
        if (a == "--encoding") {
            const std::string& v = value();
            if (v == "utf-8") encoding = XmlEncoding_UTF8;
            else if (v == "utf-16") encoding = XmlEncoding_UTF16;
            else throw UsageError{"unknown encoding " + v};
        } else if (a == "--eol") {
            const std::string& v = value();
            if (v == "lf") eol = EOLType_LF;
            else if (v == "crlf") eol = EOLType_CRLF;
            else throw UsageError{"unknown end of line " + v};
        } else if (a == "--indent") {
            indent = true;
        } else if (a == "--no-indent") {
            indent = false;
        } else if (a == "--no-declaration") {
            declaration = false;
        } else if (a == "--to") {
            const std::string& v = value();
            if (v == "xml") toFastInfoset = false;
            else if (v == "fi") toFastInfoset = true;
            else throw UsageError{"unknown output format " + v};
        } else if (a == "--fi-declaration") {
            const std::string& v = value();
            if (v.size() != 1 || v[0] < '0' || v[0] > '9') throw UsageError{"the declaration is a number from 0 to 9"};
            fiDeclaration = static_cast<FInfoDecl>(v[0] - '0');
        } else if (a == "--fi-typed") {
            ctx.GetFIContext().SetSuggestedValues();
        } else if (a == "--fi-vocabulary") {
            ctx.GetFIContext().SetExternalVocabularyURI(value());
            ctx.GetFIContext().SetUseGeneratedVocabulary(true);
        } else if (a == "--compress") {
            const std::string& v = value();
            if (v == "none") compression = CompressionType_None;
            else if (v == "gzip") compression = CompressionType_GZip;
            else if (v == "zlib") compression = CompressionType_ZLib;
            else throw UsageError{"unknown compression " + v};
        } else {
            throw UsageError{"unknown option " + a};
        }
    }
    std::string input = ReadInput(args[0]);
    CSmartPtr<CElement> document = new CElement();
    document->FromXmlStream(AsData(input));
    WriteOutput(args[1], toFastInfoset ? document->ToFastInfosetStream(fiDeclaration, ctx, compression)
                                       : document->ToXmlStream(declaration, indent, encoding, eol, ctx, compression));
    return 0;
}

int Info(const std::vector<std::string>& args) {
    if (args.size() != 1) throw UsageError{"info needs IN"};
    std::string input = ReadInput(args[0]);
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(&input[0]), static_cast<std::uint32_t>(input.size()));
    long elements = 0, attributes = 0, maxDepth = 0;
    std::set<std::string> namespaces;
    struct Item {
        const CXmlElement* element;
        long depth;
    };
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
        for (const auto& [name, count] : tables) {
            std::cout << "  " << name << ":" << std::string(22 - std::strlen(name), ' ') << count << "\n";
        }
    }
    return 0;
}

std::string FindExample() {
    for (const char* path : {QMXML_EXAMPLE_SOURCE, QMXML_EXAMPLE_INSTALLED}) {
        if (std::ifstream(path).good()) return path;
    }
    throw CQmException("The bundled order book was not found");
}

int MainJob() {
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
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    try {
        if (args.empty()) return MainJob();
        const std::string command = args[0];
        args.erase(args.begin());
        for (const std::string& a : args) {
            if (a == "--help" || a == "-h") {
                std::cout << kUsage;
                return 0;
            }
        }
        if (command == "--help" || command == "-h") {
            std::cout << kUsage;
            return 0;
        }
        if (command == "convert") return Convert(args);
        if (command == "info") return Info(args);
        throw UsageError{"unknown command " + command};
    } catch (const UsageError& e) {
        std::cerr << "qmxml: " << e.text << "\n" << kUsage;
        return 2;
    } catch (const CQmException& e) {
        std::cerr << e.GetFullMessage() << "\n";
        return 1;
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
