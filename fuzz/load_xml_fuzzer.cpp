// Feeds arbitrary bytes to CXmlDocument::LoadXmlStream. The first byte picks
// the options (bit 0: no namespace processing, bit 1: keep CDATA markers,
// bit 2: an element filter dropping elements with odd-length names); the rest is the
// input. Anything but a CQmException escaping, a crash or a leak is a bug.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_document.h"

using namespace QmXmlLib10;

namespace {

// Deterministic, so that a crash reproduces from its input alone.
bool DropOddNames(CXmlElement* element) { return element->GetLocalName().size() % 2 == 1; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::uint8_t mode = data[0];
    CXmlSerializationContext context;
    context.SetSchemaType((mode & 1) != 0 ? SchemaType_NoNamespaces : SchemaType_XmlSchema);
    context.SetStripCDATA((mode & 2) == 0);
    CXmlDocument doc((mode & 4) != 0 ? &DropOddNames : nullptr, context);
    // The stream overload takes a mutable pointer.
    std::vector<unsigned char> input(data + 1, data + size);
    try {
        doc.LoadXmlStream(input.data(), static_cast<std::uint32_t>(input.size()));
    } catch (const CQmException&) {
    }
    return 0;
}
