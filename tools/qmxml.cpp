// qmxml: converts, inspects and validates XML documents through the library,
// prints the model of a schema, and with no arguments runs the main job on the
// bundled order book. This file is the command line; the commands live in
// document_commands.cpp and schema_commands.cpp.
#include <qmxml/qmxml.h>
#include <qmxml/schema/schema_exception.h>

#include <CLI/CLI.hpp>

#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"

using namespace QmXmlLib10;
using namespace qmxml_tool;

namespace {

const char* kInputNote =
    "IN, OUT and DOC may be - for standard input or output. Input may be XML text or Fast Infoset,\n"
    "plain or gzip- or zlib-compressed; it is detected.";

void AddOutputOptions(CLI::App& command, OutputOptions& out) {
    command.add_option("--to", out.to, "output format")->check(CLI::IsMember({"xml", "fi"}))->capture_default_str();
    command.add_option("--encoding", out.encoding, "text encoding")
        ->check(CLI::IsMember({"utf-8", "utf-16"}))
        ->capture_default_str();
    command.add_option("--eol", out.eol, "line ends of text")->check(CLI::IsMember({"lf", "crlf"}))->capture_default_str();
    command.add_flag("--indent,!--no-indent", out.indent, "indent the text (the default) or not");
    command.add_flag("!--no-declaration", out.declaration, "write no XML declaration");
    command.add_option("--compress", out.compress, "compression of the output")
        ->check(CLI::IsMember({"none", "gzip", "zlib"}))
        ->capture_default_str();
    command.add_option("--fi-declaration", out.fiDeclaration, "Fast Infoset XML declaration, 0 for none")
        ->check(CLI::Range(0, 9))
        ->capture_default_str();
    command.add_flag("--fi-typed", out.fiTyped, "write typed values with the Fast Infoset encoding algorithms");
    command.add_option("--fi-vocabulary", out.fiVocabulary, "the URI of an external Fast Infoset vocabulary");
}

// Runs a command, turning its failure into a message and an exit status.
int Guarded(const std::function<int()>& command) {
    try {
        return command();
    } catch (const Schema::CQmSchemaException& e) {
        // A schema that cannot be loaded is the caller's mistake, like a usage error.
        std::cerr << e.GetFullMessage() << "\n";
        return kExitUsage;
    } catch (const CQmException& e) {
        std::cerr << e.GetFullMessage() << "\n";
        return kExitFailed;
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n";
        return kExitFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= 1) return Guarded(RunMainJob);

    CLI::App app("Converts, inspects and validates XML documents. With no arguments, loads the bundled\n"
                 "order book, writes it formatted, gzips it, reads it back, checks nothing changed\n"
                 "and prints sizes and speeds.",
                 "qmxml");
    app.require_subcommand(1);
    app.footer(kInputNote);

    ConvertOptions convert;
    CLI::App* convertCommand = app.add_subcommand("convert", "write a document again, as XML text or Fast Infoset");
    convertCommand->add_option("IN", convert.input, "the document to read")->required();
    convertCommand->add_option("OUT", convert.output, "the document to write")->required();
    // One value per --schema (CLI11 lets a list option take every following
    // word otherwise), so that files may follow it.
    convertCommand->add_option("--schema", convert.schemas,
                               "bind IN to the classes of this schema (repeatable) and write the bound object")
        ->allow_extra_args(false);
    AddOutputOptions(*convertCommand, convert.out);
    convertCommand->footer(kInputNote);

    std::string infoInput;
    CLI::App* infoCommand = app.add_subcommand(
        "info", "print the format, counts, depth and namespaces of a document (and its vocabulary tables)");
    infoCommand->add_option("IN", infoInput, "the document to inspect")->required();
    infoCommand->footer(kInputNote);

    std::vector<std::string> validateSchemas, validateDocuments;
    CLI::App* validateCommand = app.add_subcommand(
        "validate", "bind each document to the classes of the schemas and say whether it is valid");
    validateCommand->add_option("--schema", validateSchemas, "a schema document (repeatable)")
        ->required()
        ->allow_extra_args(false);
    validateCommand->add_option("DOC", validateDocuments, "the documents to validate")->required();
    validateCommand->footer(
        "Prints DOC: valid, or DOC: invalid and why, for each document. Exit status 0 when all\n"
        "are valid, 1 when any is not, 2 when a schema cannot be loaded.\n" +
        std::string(kInputNote));

    std::vector<std::string> schemaFiles;
    CLI::App* schemaCommand =
        app.add_subcommand("schema", "print the model of schemas: types, members with kind and cardinality, facets");
    schemaCommand->add_option("SCHEMA", schemaFiles, "the schema documents, loaded together")->required();

    GenerateOptions generate;
    CLI::App* generateCommand =
        app.add_subcommand("generate", "write C++ classes for a schema set (the schema compiler)");
    generateCommand->add_option("SCHEMA", generate.schemas, "the schema documents, loaded together")->required();
    generateCommand->add_option("-o,--output", generate.outputDir, "the directory to write the files into")
        ->capture_default_str();
    generateCommand->add_option("--namespace-map", generate.namespaceMap,
                                "URI=cpp::ns: the C++ namespace of an XML namespace (repeatable)")
        ->allow_extra_args(false);
    generateCommand->add_flag("--list-outputs", generate.listOutputs,
                              "print the paths of the files generate would write, one per line, and write nothing");
    generateCommand->footer(
        "Writes one header and one source per C++ namespace, and SCHEMA.h / SCHEMA.cpp (after the\n"
        "first schema's file name) with the set's factory and root-object functions. Exit status\n"
        "0 on success, 2 when a schema cannot be loaded, 1 when the set uses something the\n"
        "generator cannot emit.");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // --help ends here too, with status 0; every real usage error is 2.
        return app.exit(e) == 0 ? kExitOk : kExitUsage;
    }

    if (convertCommand->parsed()) return Guarded([&] { return RunConvert(convert); });
    if (infoCommand->parsed()) return Guarded([&] { return RunInfo(infoInput); });
    if (validateCommand->parsed()) return Guarded([&] { return RunValidate(validateSchemas, validateDocuments); });
    if (generateCommand->parsed()) return Guarded([&] { return RunGenerate(generate); });
    return Guarded([&] { return RunSchema(schemaFiles); });
}
