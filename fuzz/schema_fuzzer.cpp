// Feeds arbitrary bytes to the schema loader and to binding through the
// loaded schema's dynamic classes. The input is a schema document, then a zero
// byte and an instance document (fuzz/schema_seeds.py writes the seeds that
// way); without a zero byte it is a schema alone. The schema is loaded from
// memory with no base location, so it can name no other file.
//
// A schema that loads must print, and must map to classes or be refused with
// CQmSchemaException. An instance that binds must write as text and as Fast
// Infoset; the text must bind again and write the same text, and so must the
// Fast Infoset. Anything but a CQmException where one is allowed, a crash, a
// hang, a leak or a difference is a bug.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_support.h"
#include "qmxml/schema/dynamic_classes.h"
#include "qmxml/schema/schema.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

using fuzz::AsText;
using fuzz::Fail;

namespace {

// What fn returns; a CQmException from it is a bug.
template <class Fn>
auto Must(const char* what, Fn&& fn) {
    try {
        return fn();
    } catch (const CQmException& e) {
        Fail(what, e.GetFullMessage());
    }
}

std::string WriteText(const CDynamicObject& object, const CXmlSerializationContext& ctx) {
    return AsText(object.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, ctx));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    const void* zero = std::memchr(data, 0, size);
    const std::size_t schemaSize = zero != nullptr ? static_cast<std::size_t>(static_cast<const char*>(zero) - text) : size;

    std::shared_ptr<const CSchemaSet> schemas;
    try {
        schemas = CSchemaSet::LoadBuffer(std::string(text, schemaSize));
    } catch (const CQmSchemaException&) {
        return 0;
    } catch (const CQmException& e) {
        Fail("the loader failed other than with CQmSchemaException", e.GetFullMessage());
    }
    Must("a loaded schema could not be printed", [&] { return PrintSchemaSet(*schemas); });
    if (zero == nullptr) return 0;

    std::shared_ptr<const CDynamicClassSet> classes;
    try {
        classes = CDynamicClassSet::Create(schemas);
    } catch (const CQmSchemaException&) {
        return 0;
    } catch (const CQmException& e) {
        Fail("mapping failed other than with CQmSchemaException", e.GetFullMessage());
    }

    const std::string document(text + schemaSize + 1, size - schemaSize - 1);
    CSmartPtr<CDynamicObject> object;
    try {
        object = classes->ReadBuffer(document.data(), document.size());
    } catch (const CQmException&) {
        return 0;
    }

    CXmlSerializationContext ctx;
    ctx.SetWriteTypeAttribute(true);
    // A value that starts with a CDATA section is written as one, so reading
    // back must keep the markers for such a value to return unchanged.
    CXmlSerializationContext back;
    back.SetStripCDATA(false);

    const std::string written = Must("a bound object could not be written", [&] { return WriteText(*object, ctx); });
    const CSmartPtr<CDynamicObject> again = Must("the written text did not read back", [&] {
        return classes->ReadBuffer(written.data(), written.size(), back);
    });
    const std::string rewritten =
        Must("the object read back could not be written", [&] { return WriteText(*again, ctx); });
    if (rewritten != written) Fail("the text changed on the second round", written + "\n---\n" + rewritten);

    const std::string binary = Must("a bound object could not be written as Fast Infoset",
                                    [&] { return AsText(object->ToFastInfosetStream(FInfoDecl_None, ctx)); });
    const CSmartPtr<CDynamicObject> fromBinary = Must("the Fast Infoset did not read back", [&] {
        return classes->ReadBuffer(binary.data(), binary.size(), back);
    });
    const std::string fromBinaryText =
        Must("the object read from Fast Infoset could not be written", [&] { return WriteText(*fromBinary, ctx); });
    if (fromBinaryText != written) Fail("Fast Infoset changed the object", written + "\n---\n" + fromBinaryText);
    return 0;
}
