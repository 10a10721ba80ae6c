// Differential target: arbitrary bytes read into a bound class both through a
// loaded document tree (CXmlDocument, then FromXmlElement) and through
// FromXmlStream, which binds while the parser reads. The two must end alike:
// the same exception class and full message chain, and objects that write the
// same text. The first byte picks the class and the context as in
// bind_fuzzer.cpp; the rest is the input (text, compressed or Fast Infoset).
// Input that loads is then written as Fast Infoset and compared again, whole,
// cut short and with one octet changed (where and to what the input's own
// bytes decide), so that the decoder's element-at-a-time path meets every
// shape of document the text fuzzing finds.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "bound_classes.h"
#include "fuzz_support.h"
#include "stream_compare.h"

using namespace QmXmlLib10;

namespace {

using fuzz::Factory;

void Compare(const Factory& create, const std::vector<unsigned char>& input, const CXmlSerializationContext& ctx) {
    CSmartPtr<CXmlObjectBase> tree = create();
    CSmartPtr<CXmlObjectBase> stream = create();
    const streamcompare::Outcome expected = streamcompare::ThroughTree(*tree, input, ctx);
    const streamcompare::Outcome actual = streamcompare::WhileParsing(*stream, input, ctx);
    if (expected.failure != actual.failure)
        fuzz::Fail("the two paths failed differently", expected.failure + "\n---\n" + actual.failure);
    if (expected.written != actual.written)
        fuzz::Fail("the two paths bound different objects", expected.written + "\n---\n" + actual.written);
}

// The input's document as Fast Infoset; empty when it does not load.
std::vector<unsigned char> AsFastInfoset(std::vector<unsigned char> input, const CXmlSerializationContext& ctx) {
    CSmartPtr<CElement> element = new CElement();
    try {
        element->FromXmlStream(input.data(), static_cast<std::uint32_t>(input.size()), ctx);
        const CBinaryData fi = element->ToFastInfosetStream(FInfoDecl_None, ctx);
        return std::vector<unsigned char>(fi.GetData(), fi.GetData() + fi.GetLength());
    } catch (const CQmException&) {
        return {};
    }
}


}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::uint8_t mode = data[0];
    const Factory& create = fuzz::ClassOf(mode);
    const CXmlSerializationContext ctx = fuzz::ContextOf(mode);
    const std::vector<unsigned char> input(data + 1, data + size);
    Compare(create, input, ctx);

    const std::vector<unsigned char> fi = AsFastInfoset(input, ctx);
    if (fi.empty()) return 0;
    Compare(create, fi, ctx);
    std::size_t sum = 0;
    for (unsigned char byte : input) sum = sum * 31 + byte;
    const std::size_t at = sum % fi.size();
    Compare(create, std::vector<unsigned char>(fi.begin(), fi.begin() + at), ctx);
    std::vector<unsigned char> changed = fi;
    changed[at] = static_cast<unsigned char>(changed[at] ^ (input.back() | 1));
    Compare(create, changed, ctx);
    return 0;
}
