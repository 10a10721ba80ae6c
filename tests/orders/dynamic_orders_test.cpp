// The order book bound through classes built at run time from bench/orders.xsd
// against the hand-written classes of tests/support/handwritten_orders: same documents read,
// same text written, same failures.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <regex>
#include <string>

#include "orders.h"
#include "qmxml/schema/dynamic_classes.h"
#include "temp_files.h"

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
using qmxml_test::ReadFile;

namespace {

class DynamicOrders : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        char pattern[] = "/tmp/qmxml_dynamic_orders_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        s_dir = pattern;
        s_classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(QMXML_SOURCE_DIR "/bench/orders.xsd"));
    }
    static void TearDownTestSuite() {
        s_classes.reset();
        const std::string command = "rm -rf '" + s_dir + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    static std::string Book(int count) {
        const std::string path = s_dir + "/orders_" + std::to_string(count) + ".xml";
        if (access(path.c_str(), R_OK) != 0) {
            const std::string command = "python3 '" QMXML_SOURCE_DIR "/bench/gen_orders.py' " +
                                        std::to_string(count) + " '" + path + "'";
            EXPECT_EQ(std::system(command.c_str()), 0) << command;
        }
        return path;
    }

    static std::string s_dir;
    static std::shared_ptr<const CDynamicClassSet> s_classes;
};
std::string DynamicOrders::s_dir;
std::shared_ptr<const CDynamicClassSet> DynamicOrders::s_classes;

class DynamicRoundTrip : public DynamicOrders, public ::testing::WithParamInterface<int> {};

TEST_P(DynamicRoundTrip, WritesWhatTheHandWrittenClassesWrite) {
    const std::string path = Book(GetParam());
    orders::COrders typed;
    typed.FromXmlFile(path.c_str());
    const CSmartPtr<CDynamicObject> dynamic = s_classes->ReadFile(path);
    ASSERT_TRUE(dynamic);
    EXPECT_EQ(dynamic->GetDescription().name, "Orders");
    EXPECT_EQ(dynamic->ToXml(), typed.ToXml());
    // And through Fast Infoset.
    const CBinaryData fi = dynamic->ToFastInfosetStream();
    const CSmartPtr<CDynamicObject> back = s_classes->ReadBuffer(fi.GetData(), fi.GetLength());
    EXPECT_EQ(back->ToXml(), typed.ToXml());
}

INSTANTIATE_TEST_SUITE_P(Orders, DynamicRoundTrip, ::testing::Values(1, 100, 2000),
                         [](const ::testing::TestParamInfo<int>& info) { return "Of" + std::to_string(info.param); });

TEST_F(DynamicOrders, MembersAreReachedByName) {
    const CSmartPtr<CDynamicObject> book = s_classes->ReadFile(Book(3));
    EXPECT_EQ(book->GetValue("source").GetString(), "gen_orders");
    const CSmartPtr<CXmlCollectionBase> orders = book->GetValue("Order").GetXmlCollection();
    ASSERT_EQ(orders->GetCount(), 3);
    EXPECT_THROW(book->GetValue("Nothing"), CQmInvalidParamException);
    try {
        book->GetValue("Nothing");
    } catch (const CQmException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Unknown property [Nothing] for the class [Orders]");
    }
}

TEST_F(DynamicOrders, AnUnknownRootIsNamed) {
    const std::string text = "<Other xmlns='urn:x'/>";
    try {
        s_classes->ReadBuffer(text.data(), text.size());
        FAIL() << "accepted";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), "No global element declaration for the root element [{urn:x}Other]");
    }
}

struct Breakage {
    const char* name;
    const char* pattern;
    const char* replacement;
};

void PrintTo(const Breakage& breakage, std::ostream* os) { *os << breakage.name; }

const Breakage kBreakages[] = {
    {"MissingMandatoryElement", "<OrderDate>[^<]*</OrderDate>", ""},
    {"UnknownElementBeforeAMandatoryOne", "<Status>", "<Gift>yes</Gift><Status>"},
    {"UnknownElementAtTheEnd", "</Order>", "<Gift>yes</Gift></Order>"},
    {"PatternViolation", "<Zip>[^<]*<", "<Zip>1234<"},
    {"QuantityAboveRange", "<Quantity>[^<]*<", "<Quantity>10001<"},
    {"BadDate", "<OrderDate>[^<]*<", "<OrderDate>2024-13-05<"},
    {"TwoChoiceMembers", "(</Invoice>|</Card>)",
     "$1<Card><Holder>x</Holder><Number>1111-2222-3333-4444</Number><Expires>2030-01</Expires></Card>"},
    {"NoChoiceMember", "<(Card|Invoice)>[\\s\\S]*</(Card|Invoice)>", ""},
    {"UnknownAttribute", "<Order ", "<Order gift='yes' "},
    {"MissingRequiredAttribute", "customerId=\"[0-9]+\"", ""},
};

class DynamicRejection : public DynamicOrders, public ::testing::WithParamInterface<Breakage> {};

TEST_P(DynamicRejection, FailsAsTheHandWrittenClassesFail) {
    const Breakage& breakage = GetParam();
    const std::string text = ReadFile(Book(1));
    const std::string changed = std::regex_replace(text, std::regex(breakage.pattern), breakage.replacement,
                                                   std::regex_constants::format_first_only);
    ASSERT_NE(changed, text);
    std::string expected;
    try {
        orders::COrders typed;
        typed.FromXml(changed.c_str());
    } catch (const CQmException& e) {
        expected = std::string(typeid(e).name()) + ": " + e.GetFullMessage();
    }
    ASSERT_FALSE(expected.empty()) << "the hand-written classes accept it";
    try {
        s_classes->ReadBuffer(changed.data(), changed.size());
        FAIL() << "accepted";
    } catch (const CQmException& e) {
        EXPECT_EQ(std::string(typeid(e).name()) + ": " + e.GetFullMessage(), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, DynamicRejection, ::testing::ValuesIn(kBreakages),
                         [](const ::testing::TestParamInfo<Breakage>& info) { return std::string(info.param.name); });

}  // namespace
