// Feeds arbitrary bytes to the schema loader. The input is a schema document,
// then a zero byte and an instance document (fuzz/schema_seeds.py writes the
// seeds that way); without a zero byte it is a schema alone. The schema is
// loaded from memory with no base location, so it can name no other file.
// A schema that loads must print; anything but a CQmSchemaException from
// loading, a crash, a hang or a leak is a bug.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_support.h"
#include "qmxml/schema/schema.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

using fuzz::Fail;

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
    try {
        PrintSchemaSet(*schemas);
    } catch (const CQmException& e) {
        Fail("a loaded schema could not be printed", e.GetFullMessage());
    }
    return 0;
}
