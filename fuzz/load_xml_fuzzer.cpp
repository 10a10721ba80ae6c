// Feeds arbitrary bytes to CXmlDocument::LoadXmlStream. The first byte picks
// the options (bit 0: no namespace processing, bit 1: keep CDATA markers,
// bit 2: an element filter dropping elements with odd-length names, bit 3:
// also parse the input in pieces of 1 + 4 x (bits 4 to 7) bytes and require
// the same tree); the rest is the input. A loaded document is also taken into
// a wildcard element (CElement), written as text, and must read back into one
// that writes the same text. Anything but a CQmException escaping, a crash, a
// leak or a difference is a bug.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "dom/expat_reader.h"
#include "fuzz_support.h"
#include "qmxml/collections/element.h"
#include "qmxml/core/enums.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"

using namespace QmXmlLib10;

using fuzz::AsText;
using fuzz::Fail;

namespace {

// Deterministic, so that a crash reproduces from its input alone.
bool DropOddNames(CXmlElement* element) { return element->GetLocalName().size() % 2 == 1; }

// Names, namespaces, text, attributes and child order; an explicit stack, as
// the input may nest deeply.
bool SameTree(const CXmlElement* a, const CXmlElement* b) {
    std::vector<std::pair<const CXmlElement*, const CXmlElement*>> stack{{a, b}};
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        if (x == nullptr || y == nullptr) return x == y;
        if (x->GetLocalName() != y->GetLocalName() || x->GetNamespaceURI() != y->GetNamespaceURI() ||
            x->GetText() != y->GetText())
            return false;
        const auto& ax = x->GetAttributes();
        const auto& ay = y->GetAttributes();
        if (ax.size() != ay.size()) return false;
        for (std::size_t i = 0; i < ax.size(); ++i) {
            if (ax[i]->GetLocalName() != ay[i]->GetLocalName() ||
                ax[i]->GetNamespaceURI() != ay[i]->GetNamespaceURI() || ax[i]->GetValue() != ay[i]->GetValue())
                return false;
        }
        const CXmlElement* cx = x->GetFirstElement();
        const CXmlElement* cy = y->GetFirstElement();
        for (; cx && cy; cx = cx->GetNextSiblingElement(), cy = cy->GetNextSiblingElement()) stack.push_back({cx, cy});
        if (cx || cy) return false;
    }
    return true;
}

// Reads text into a wildcard element and writes it again; failing to read
// what the writer wrote is a bug.
std::string ReadAndWrite(const std::string& text, const CXmlSerializationContext& context) {
    try {
        CSmartPtr<CElement> element = new CElement();
        std::vector<unsigned char> bytes(text.begin(), text.end());
        element->FromXmlStream(bytes.data(), static_cast<std::uint32_t>(bytes.size()), context);
        return AsText(element->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, context));
    } catch (const CQmException& e) {
        Fail("the written text did not read back", text + "\n---\n" + e.GetFullMessage());
    }
}

// The tree as a wildcard element, written and read back. The element may be
// unwritable (a name the writer cannot declare), but what it writes must read
// back and write the same again.
void WriteAndReadBack(const CXmlDocument& doc, const CXmlSerializationContext& context) {
    if (doc.GetDocumentElement() == nullptr) return;
    CSmartPtr<CElement> element = new CElement();
    std::string written;
    try {
        element->FromXmlElement(doc.GetDocumentElement(), context);
        written = AsText(element->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, context));
    } catch (const CQmException&) {
        return;
    }
    // Text that starts with a CDATA section is written as one, so the markers
    // must be kept for it to come back unchanged.
    CXmlSerializationContext back = context;
    back.SetStripCDATA(false);
    const std::string rewritten = ReadAndWrite(written, back);
    if (rewritten == written) return;
    // A tab in an attribute value is written as it is and reads back as a
    // space (attribute values are normalised): one round may change it, the
    // next must not. Unformatted output holds tabs from values only.
    if (written.find('\t') == std::string::npos)
        Fail("the text changed on the second round", written + "\n---\n" + rewritten);
    const std::string third = ReadAndWrite(rewritten, back);
    if (third != rewritten)
        Fail("the text changed on the third round", written + "\n---\n" + rewritten + "\n---\n" + third);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::uint8_t mode = data[0];
    const std::size_t piece = 1 + 4 * static_cast<std::size_t>(mode >> 4);
    CXmlSerializationContext context;
    context.SetSchemaType((mode & 1) != 0 ? SchemaType_NoNamespaces : SchemaType_XmlSchema);
    context.SetStripCDATA((mode & 2) == 0);
    const CXmlDocument::ElementFilter filter = (mode & 4) != 0 ? &DropOddNames : nullptr;
    CXmlDocument doc(filter, context);
    // The stream overload takes a mutable pointer.
    std::vector<unsigned char> input(data + 1, data + size);
    bool loaded = false;
    try {
        doc.LoadXmlStream(input.data(), static_cast<std::uint32_t>(input.size()));
        loaded = true;
    } catch (const CQmException&) {
    }
    if (loaded) WriteAndReadBack(doc, context);
    if ((mode & 8) == 0) return 0;

    // Text can straddle pieces, which the loader must copy before the parser
    // moves its buffer.
    CXmlDocument pieces(filter, context);
    bool piecesLoaded = false;
    try {
        CExpatReader reader(pieces, (mode & 1) == 0, (mode & 2) != 0);
        const char* bytes = reinterpret_cast<const char*>(input.data());
        std::size_t left = input.size();
        do {
            const std::size_t n = left < piece ? left : piece;
            reader.Parse(bytes, n, n == left);
            bytes += n;
            left -= n;
        } while (left > 0);
        piecesLoaded = true;
    } catch (const CQmException&) {
    }
    // Inflation and Fast Infoset detection come before parsing only in the
    // whole load; compare plain text documents alone.
    if (loaded && piecesLoaded && !SameTree(doc.GetDocumentElement(), pieces.GetDocumentElement())) std::abort();
    return 0;
}
