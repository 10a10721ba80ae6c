// Classes the schema compiler generated at build time (tests/CMakeLists.txt
// runs the just-built `qmxml generate`) against the dynamic classes of the
// same schema: for every instance the same verdict, the same message chain
// and byte-identical output, in text and through Fast Infoset.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <memory>
#include <string>

#include "checks/checks.h"
#include "constructs/constructs.h"
#include "names/names.h"
#include "orders/orders.h"
#include "substitution/substitution.h"
#include "qmxml/schema/dynamic_classes.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace {

using Reader = std::function<CSmartPtr<CXmlGeneratedClass>(const std::string&)>;

using BufferReader = CSmartPtr<CXmlGeneratedClass> (*)(const void*, std::size_t, const CXmlSerializationContext&);

struct Case {
    const char* name;     // the test's name
    const char* schema;   // relative to the source tree
    const char* instance;
    Reader read;          // the generated set's ReadFile
    BufferReader readBuffer;
};

// ctest lists parameters by their name, not their bytes.
void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

const std::string kData = QMXML_SOURCE_DIR "/tests/codegen/data/";

Reader Orders() {
    return [](const std::string& path) { return example_orders::ReadFile(path); };
}
Reader Constructs() {
    return [](const std::string& path) { return example_com_codegen_constructs::ReadFile(path); };
}
Reader Shapes() {
    return [](const std::string& path) { return codegen_shapes::ReadFile(path); };
}
Reader Checks() {
    return [](const std::string& path) { return example_checks::ReadFile(path); };
}
Reader Names() {
    return [](const std::string& path) { return class_ns::ReadFile(path); };
}

// What reading gives: the written text (and the text of its Fast Infoset
// round trip through the same classes), or the failure's message chain.
struct Outcome {
    bool valid = false;
    std::string text;
    std::string fastInfosetText;
    std::string message;
};

template <class Read, class ReadBuffer>
Outcome Bind(const Read& read, const ReadBuffer& readBuffer) {
    Outcome out;
    try {
        auto object = read();
        out.valid = true;
        out.text = object->ToXml();
        const CBinaryData fi = object->ToFastInfosetStream();
        out.fastInfosetText = readBuffer(fi)->ToXml();
    } catch (const CQmException& e) {
        out.message = e.GetFullMessage();
    }
    return out;
}

class GeneratedVsDynamic : public ::testing::TestWithParam<Case> {
protected:
    static std::shared_ptr<const CDynamicClassSet> Classes(const std::string& schema) {
        static std::map<std::string, std::shared_ptr<const CDynamicClassSet>> sets;
        auto& set = sets[schema];
        if (!set) set = CDynamicClassSet::Create(CSchemaSet::LoadFile(QMXML_SOURCE_DIR "/" + schema));
        return set;
    }
};

TEST_P(GeneratedVsDynamic, SameVerdictMessagesAndOutput) {
    const Case& c = GetParam();
    const std::string path = std::string(QMXML_SOURCE_DIR "/") + c.instance;
    const auto classes = Classes(c.schema);
    const Outcome dynamic = Bind([&] { return classes->ReadFile(path); },
                                 [&](const CBinaryData& fi) { return classes->ReadBuffer(fi.GetData(), fi.GetLength()); });
    const Outcome generated = Bind([&] { return c.read(path); },
                                   [&](const CBinaryData& fi) {
                                       return c.readBuffer(fi.GetData(), fi.GetLength(), CXmlSerializationContext());
                                   });
    EXPECT_EQ(generated.valid, dynamic.valid);
    EXPECT_EQ(generated.message, dynamic.message);
    EXPECT_EQ(generated.text, dynamic.text);
    EXPECT_EQ(generated.fastInfosetText, dynamic.fastInfosetText);
    // The instances' names say what they are.
    EXPECT_EQ(generated.valid, std::string(c.name).rfind("Bad", 0) != 0) << generated.message;
}

const Case kCases[] = {
    {"OrdersBook", "bench/orders.xsd", "examples/data/orders.xml", Orders(), example_orders::ReadBuffer},
    {"OrdersSmall", "bench/orders.xsd", "tests/codegen/data/orders/small.xml", Orders(), example_orders::ReadBuffer},
    {"BadOrdersZip", "bench/orders.xsd", "tests/codegen/data/orders/bad_zip.xml", Orders(), example_orders::ReadBuffer},
    {"BadOrdersQuantity", "bench/orders.xsd", "tests/codegen/data/orders/bad_quantity.xml", Orders(), example_orders::ReadBuffer},
    {"BadOrdersMissingChoice", "bench/orders.xsd", "tests/codegen/data/orders/bad_choice.xml", Orders(), example_orders::ReadBuffer},
    {"ConstructsFull", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/valid_full.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"ConstructsLabelDefault", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/label_default.xml",
     Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadLabel", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/label_bad.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadPattern", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_pattern.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadEnumeration", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_enumeration.xml",
     Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadListLength", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_list_length.xml",
     Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadUnion", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_union.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadFixed", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_fixed.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadEmptyChoice", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_empty_choice.xml",
     Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadText", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_text.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadPositive", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_positive.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadRoot", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_root.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"BadXsiType", "tests/codegen/data/constructs.xsd", "tests/codegen/data/constructs/bad_xsi_type.xml", Constructs(), example_com_codegen_constructs::ReadBuffer},
    {"NamesTwoNamespaces", "tests/codegen/data/names.xsd", "tests/codegen/data/names/valid.xml", Names(),
     class_ns::ReadBuffer},
    {"NamesOtherRoot", "tests/codegen/data/names.xsd", "tests/codegen/data/names/other_root.xml", Names(),
     class_ns::ReadBuffer},
    {"BadNamesInt", "tests/codegen/data/names.xsd", "tests/codegen/data/names/bad_int.xml", Names(), class_ns::ReadBuffer},
    {"Substitution", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/valid.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"BadAbstractElement", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/bad_abstract_element.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"BadBlocked", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/bad_blocked.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"BadAbstractType", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/bad_abstract_type.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"RootRetyped", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/root_retyped.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"BadRootType", "tests/codegen/data/substitution.xsd", "tests/codegen/data/substitution/bad_root_type.xml", Shapes(),
     codegen_shapes::ReadBuffer},
    {"Checks", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/valid.xml", Checks(), example_checks::ReadBuffer},
    {"BadDuplicateId", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_duplicate_id.xml", Checks(), example_checks::ReadBuffer},
    {"BadIdref", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_idref.xml", Checks(), example_checks::ReadBuffer},
    {"BadQNamePrefix", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_qname_prefix.xml", Checks(), example_checks::ReadBuffer},
    {"BadLaxValue", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_lax_value.xml", Checks(), example_checks::ReadBuffer},
    {"BadStrictElement", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_strict_element.xml", Checks(), example_checks::ReadBuffer},
    {"BadLaxAttribute", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_lax_attribute.xml", Checks(), example_checks::ReadBuffer},
    {"BadStrictAttribute", "tests/codegen/data/checks.xsd", "tests/codegen/data/checks/bad_strict_attribute.xml", Checks(), example_checks::ReadBuffer},
};

INSTANTIATE_TEST_SUITE_P(Instances, GeneratedVsDynamic, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------- the generated API

TEST(GeneratedClasses, TypedMembersAndSetterChecks) {
    auto book = example_orders::ReadFile(QMXML_SOURCE_DIR "/tests/codegen/data/orders/small.xml");
    auto* orders = dynamic_cast<example_orders::COrders*>(book.Get());
    ASSERT_NE(orders, nullptr);
    ASSERT_EQ(orders->GetOrder()->GetCount(), 1);
    example_orders::COrderType* order = orders->GetOrder()->GetItem(0);
    EXPECT_EQ(order->GetId(), 1u);
    EXPECT_TRUE(order->GetPriority());
    example_orders::CAddressType* address = order->GetCustomer()->GetAddress();
    EXPECT_EQ(address->GetZip(), "12345");
    try {
        address->SetZip("1234");
        FAIL() << "no exception";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Invalid Value for Zip [1234]");
    }
    EXPECT_EQ(address->GetZip(), "12345");
    EXPECT_FALSE(order->IsValidNote());
    EXPECT_THROW(order->GetNote(), CQmInvalidStateException);
    order->SetNote("fragile");
    EXPECT_NE(orders->ToXml().find("<Note>fragile</Note>"), std::string::npos);
    order->ClearNote();
    EXPECT_EQ(orders->ToXml().find("<Note>"), std::string::npos);
}

TEST(GeneratedClasses, RootObjectsByName) {
    auto label = example_com_codegen_constructs::CreateRootObject("http://example.com/codegen/constructs#", "label");
    ASSERT_TRUE(label);
    EXPECT_EQ(label->GetElementName(), "label");
    EXPECT_FALSE(example_com_codegen_constructs::CreateRootObject("", "label"));
    auto catalogue =
        example_com_codegen_constructs::CreateRootObject("http://example.com/codegen/constructs#", "catalogue");
    ASSERT_TRUE(catalogue);
    // Filled through the property interface and written as the schema says.
    auto* typed = dynamic_cast<example_com_codegen_constructs::Ccatalogue*>(catalogue.Get());
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->GetItem()->GetCount(), 0);
}

TEST(GeneratedClasses, ValuesWithoutACppTypeAndNilAreVariants) {
    auto read = example_com_codegen_constructs::ReadFile(kData + "constructs/valid_full.xml");
    auto* catalogue = dynamic_cast<example_com_codegen_constructs::Ccatalogue*>(read.Get());
    ASSERT_NE(catalogue, nullptr);
    example_com_codegen_constructs::CItem* item = catalogue->GetItem()->GetItem(0);
    EXPECT_TRUE(item->GetComment().IsNil());
    EXPECT_EQ(item->GetYear().ToString(), "2024");
    EXPECT_EQ(item->GetColour(), "green");
    EXPECT_EQ(item->GetEither()->GetCount(), 2);
    try {
        item->SetCode("A1");
        FAIL() << "no exception";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Invalid Value for code [A1]");
    }
}

TEST(GeneratedClasses, SubstitutedMembersHoldTheClassTheElementPicks) {
    auto read = codegen_shapes::ReadFile(kData + "substitution/valid.xml");
    auto* drawing = dynamic_cast<codegen_shapes::Cdrawing*>(read.Get());
    ASSERT_NE(drawing, nullptr);
    ASSERT_EQ(drawing->GetShape()->GetCount(), 3);
    auto* square = dynamic_cast<codegen_shapes::CSquare*>(drawing->GetShape()->GetItem(1).Get());
    ASSERT_NE(square, nullptr);
    EXPECT_EQ(square->GetSide(), 2);
    // A square where the element's own type is Shape: written back with its xsi:type.
    auto* first = dynamic_cast<codegen_shapes::CSquare*>(drawing->GetFirst());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetTypeName(), "Square");
    const std::string text = drawing->ToXml(false, false);
    EXPECT_NE(text.find(":type=\"Square\"><name>f</name>"), std::string::npos) << text;
}

}  // namespace
