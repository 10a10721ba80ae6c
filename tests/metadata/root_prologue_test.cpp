// A generated class and a CElement holding the same document must begin it
// the same way: the context's processing instructions, namespace aliases and
// default namespace are one rule for both kinds of root.
#include <gtest/gtest.h>

#include <string>

#include "bound_classes.h"

using namespace bound;

namespace {

const char* const kAddress = "<Address xmlns=\"urn:t\"><Street>S</Street><City>C</City></Address>";

// The default namespace of the context is set by the library's own callers only.
struct Context : CXmlSerializationContext {
    using CXmlSerializationContext::SetDefaultNamespaceURI;
};

struct PrologueCase {
    const char* name;
    void (*setUp)(Context& ctx);
    const char* expected;  // what both roots write
};

// CTest lists each case by its name, not by its bytes.
void PrintTo(const PrologueCase& c, std::ostream* out) { *out << c.name; }

class RootPrologue : public ::testing::TestWithParam<PrologueCase> {};

TEST_P(RootPrologue, IsTheSameForGeneratedClassesAndElements) {
    Context ctx;
    GetParam().setUp(ctx);
    CSmartPtr<Address> address = new Address();
    address->FromXml(kAddress);
    CSmartPtr<CElement> element = new CElement();
    element->FromXml(kAddress);
    EXPECT_EQ(address->ToXml(false, false, EOLType_LF, ctx), GetParam().expected);
    EXPECT_EQ(element->ToXml(false, false, EOLType_LF, ctx), GetParam().expected);
}

const PrologueCase kCases[] = {
    {"OwnNamespaceAsDefault", [](Context&) {},
     "<Address xmlns=\"urn:t\"><Street>S</Street><City>C</City></Address>"},
    {"AliasOfOwnNamespace", [](Context& ctx) { ctx.GetNamespaceAliases().Add("t", "urn:t"); },
     "<t:Address xmlns:t=\"urn:t\"><t:Street>S</t:Street><t:City>C</t:City></t:Address>"},
    {"ContextDefaultNamespace",
     [](Context& ctx) {
         ctx.GetNamespaceAliases().Add("t", "urn:t");
         ctx.SetDefaultNamespaceURI("urn:t");
     },
     "<Address xmlns=\"urn:t\" xmlns:t=\"urn:t\"><Street>S</Street><City>C</City></Address>"},
    {"ProcessingInstructionsAndOtherAliases",
     [](Context& ctx) {
         ctx.GetProcessingInstructions().push_back("<?style href=\"a.css\"?>");
         ctx.GetNamespaceAliases().Add("o", "urn:o");
     },
     "<?style href=\"a.css\"?>\n\n<Address xmlns=\"urn:t\" xmlns:o=\"urn:o\"><Street>S</Street><City>C</City>"
     "</Address>"},
};

INSTANTIATE_TEST_SUITE_P(Contexts, RootPrologue, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<PrologueCase>& info) {
                             return std::string(info.param.name);
                         });

}  // namespace
