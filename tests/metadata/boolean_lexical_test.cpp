// Booleans read from a document meet their pattern facets in the form the
// document wrote them ("1", "0", "true", "false"), in elements and
// attributes; values the application sets have only the canonical form.
#include <gtest/gtest.h>

#include "bound_classes.h"
#include "expect_throw.h"

using namespace bound;
using qmxml_test::FailureOf;

namespace {

// <Flags bit="1" word="true"><Bit>0</Bit><Word>false</Word></Flags>, every
// member optional: Bit and bit allow only "0" and "1", Word and word only
// "true" and "false".
class Flags : public CXmlGeneratedClass {
public:
    enum { P_Bit, P_Word, P_BitAttr, P_WordAttr };
    std::optional<bool> fields[4];

    Flags() { Init(); }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override {
        for (auto& f : fields) f.reset();
    }
    void AccessProperty(int index, bool read, QmVariant& v) override {
        AccessBoolean(read, v, fields[index]);
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return s_elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static const CPrimitiveRestrictions kBits{"[01]", -1, -1, "", "", "", "", -1};
    inline static const CPrimitiveRestrictions kWords{"true|false", -1, -1, "", "", "", "", -1};
    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Flags", NS, true, false, -1, ItemType_None, "", false);
    inline static CElementInfo** s_elements = new CElementInfo*[3]{
        new CElementInfoSeqPrimOpt("Bit", NS, P_Bit, false, ItemType_boolean, "",
                                   CWhitespaceUtils::WhitespaceRule_Collapse, kBits),
        new CElementInfoSeqPrimOpt("Word", NS, P_Word, false, ItemType_boolean, "",
                                   CWhitespaceUtils::WhitespaceRule_Collapse, kWords),
        nullptr};
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[3]{
        new CAttributeInfoPrimitive("bit", "", P_BitAttr, true, ItemType_boolean, "",
                                    CWhitespaceUtils::WhitespaceRule_Collapse, kBits, ""),
        new CAttributeInfoPrimitive("word", "", P_WordAttr, true, ItemType_boolean, "",
                                    CWhitespaceUtils::WhitespaceRule_Collapse, kWords, ""),
        nullptr};
};

std::string Doc(const std::string& attributes, const std::string& content) {
    return "<Flags xmlns=\"urn:t\"" + attributes + ">" + content + "</Flags>";
}

struct ReadCase {
    const char* name;
    const char* attributes;
    const char* content;
    const char* failure;  // the full message chain, or "<no exception>" when the document reads
};

void PrintTo(const ReadCase& c, std::ostream* out) { *out << c.name; }

class BooleanLexicalReadTest : public testing::TestWithParam<ReadCase> {};

TEST_P(BooleanLexicalReadTest, PatternSeesTheDocumentText) {
    const ReadCase& c = GetParam();
    CSmartPtr<Flags> flags = new Flags();
    EXPECT_EQ(c.failure, FailureOf([&] { flags->FromXml(Doc(c.attributes, c.content).c_str()); }));
}

INSTANTIATE_TEST_SUITE_P(
    ElementsAndAttributes, BooleanLexicalReadTest,
    testing::Values(
        ReadCase{"elementOne", "", "<Bit>1</Bit>", "<no exception>"}, ReadCase{"elementZero", "", "<Bit> 0 </Bit>", "<no exception>"},
        ReadCase{"elementTrueAgainstBits", "", "<Bit>true</Bit>",
                 "Failed to process the element [Flags]\n\nInvalid Value for Bit [true]"},
        ReadCase{"elementFalse", "", "<Word>false</Word>", "<no exception>"},
        ReadCase{"elementOneAgainstWords", "", "<Word>1</Word>",
                 "Failed to process the element [Flags]\n\nInvalid Value for Word [1]"},
        ReadCase{"elementUpperCase", "", "<Word>TRUE</Word>",
                 "Failed to process the element [Flags]\n\nInvalid Value for Word [TRUE]"},
        ReadCase{"attributeOne", " bit=\"1\"", "", "<no exception>"}, ReadCase{"attributeZero", " bit=\"0\"", "", "<no exception>"},
        ReadCase{"attributeFalseAgainstBits", " bit=\"false\"", "",
                 "Failed to process the element [Flags]\n\nInvalid Value for bit [false]"},
        ReadCase{"attributeTrue", " word=\" true\"", "", "<no exception>"},
        ReadCase{"attributeZeroAgainstWords", " word=\"0\"", "",
                 "Failed to process the element [Flags]\n\nInvalid Value for word [0]"}),
    [](const testing::TestParamInfo<ReadCase>& info) { return std::string(info.param.name); });

TEST(BooleanLexicalTest, ReadValuesAreBooleans) {
    CSmartPtr<Flags> flags = new Flags();
    flags->FromXml(Doc(" bit=\"1\" word=\"false\"", "<Bit>0</Bit><Word>true</Word>").c_str());
    EXPECT_EQ(std::optional<bool>(false), flags->fields[Flags::P_Bit]);
    EXPECT_EQ(std::optional<bool>(true), flags->fields[Flags::P_Word]);
    EXPECT_EQ(std::optional<bool>(true), flags->fields[Flags::P_BitAttr]);
    EXPECT_EQ(std::optional<bool>(false), flags->fields[Flags::P_WordAttr]);
}

TEST(BooleanLexicalTest, ApplicationValuesHaveOnlyTheCanonicalForm) {
    // Writing checks the canonical text: "true" meets "true|false" and breaks "[01]".
    CSmartPtr<Flags> flags = new Flags();
    flags->fields[Flags::P_Word] = true;
    flags->fields[Flags::P_WordAttr] = false;
    EXPECT_EQ("<Flags xmlns=\"urn:t\" word=\"false\"><Word>true</Word></Flags>", flags->ToXml(false, false));
    flags->fields[Flags::P_Bit] = true;
    EXPECT_EQ("Failed to convert the element [Flags] to XML\n\nInvalid Value for Bit [true]",
              FailureOf([&] { flags->ToXml(false, false); }));
}

}  // namespace
