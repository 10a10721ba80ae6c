// The order-book bound classes against documents from bench/gen_orders.py:
// round trips at three sizes, and each rule of the schema broken once.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <regex>
#include <string>

#include "orders.h"
#include "temp_files.h"

using namespace QmXmlLib10;
using namespace orders;
using qmxml_test::ReadFile;

namespace {

// Generated documents live in one temporary folder per test program.
class GeneratedBooks : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        char pattern[] = "/tmp/qmxml_orders_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        s_dir = pattern;
    }
    static void TearDownTestSuite() {
        const std::string command = "rm -rf '" + s_dir + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    // The document of `count` orders, generated once.
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
};
std::string GeneratedBooks::s_dir;

// ---------------------------------------------------------------- round trips

class RoundTrip : public GeneratedBooks, public ::testing::WithParamInterface<int> {};

TEST_P(RoundTrip, ReadsWritesAndReadsBackTheSameBook) {
    const int count = GetParam();
    const std::string path = Book(count);
    COrders first;
    first.FromXmlFile(path.c_str());
    ASSERT_EQ(first.GetOrder()->GetCount(), count);
    EXPECT_EQ(first.GetOrder()->GetItem(count - 1)->GetId(), static_cast<std::uint32_t>(count));
    EXPECT_EQ(first.GetSource(), "gen_orders");

    const std::string written = first.ToXml();
    COrders second;
    second.FromXml(written.c_str());
    EXPECT_TRUE(second == first);
    // The second round changes nothing: the written form is a fixed point.
    EXPECT_EQ(second.ToXml(), written);
}

INSTANTIATE_TEST_SUITE_P(Orders, RoundTrip, ::testing::Values(1, 100, 10000),
                         [](const ::testing::TestParamInfo<int>& info) { return "Of" + std::to_string(info.param); });

TEST_F(GeneratedBooks, GzipStreamRoundTripKeepsEveryValue) {
    COrders book;
    book.FromXmlFile(Book(100).c_str());
    const CBinaryData gzip = book.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF,
                                              CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
    ASSERT_GT(gzip.GetLength(), 2u);
    EXPECT_EQ(gzip.GetData()[0], 0x1f);
    EXPECT_EQ(gzip.GetData()[1], 0x8b);
    COrders back;
    back.FromXmlStream(gzip);
    EXPECT_TRUE(back == book);
}

TEST_F(GeneratedBooks, TypedMembersHoldTheDocumentsValues) {
    COrders book;
    book.FromXmlFile(Book(1).c_str());
    EXPECT_EQ(book.GetGenerated().ToString(), "2026-11-21T09:30:00Z");
    const CSmartPtr<COrderType> order = book.GetOrder()->GetItem(0);
    const std::string text = ReadFile(Book(1));
    // Compare with the text the generator wrote for the first order.
    std::smatch m;
    ASSERT_TRUE(std::regex_search(text, m, std::regex("customerId=\"(\\d+)\"")));
    EXPECT_EQ(std::to_string(order->GetCustomer()->GetCustomerId()), m[1].str());
    ASSERT_TRUE(std::regex_search(text, m, std::regex("<OrderDate>([^<]+)<")));
    EXPECT_EQ(order->GetOrderDate().ToString(), m[1].str());
    ASSERT_TRUE(std::regex_search(text, m, std::regex("<Status>([^<]+)<")));
    EXPECT_STREQ(StatusTypeToString(order->GetStatus()), m[1].str().c_str());
    ASSERT_TRUE(std::regex_search(text, m, std::regex("<UnitPrice>([^<]+)<")));
    EXPECT_TRUE(order->GetLine()->GetItem(0)->GetUnitPrice() == CDecimal(m[1].str()));
    EXPECT_EQ(order->GetPriority(), text.find("priority=\"true\"") != std::string::npos);
    const COrderTypeChoice* choice = order->GetChoice();
    if (std::regex_search(text, m, std::regex("<Reference>([^<]+)<"))) {
        EXPECT_EQ(choice->GetChoiceSelectedElement(), "Invoice");
        EXPECT_EQ(choice->GetCard(), nullptr);
        EXPECT_EQ(choice->GetInvoice()->GetReference().GetAsHexString(), m[1].str());
    } else {
        ASSERT_TRUE(std::regex_search(text, m, std::regex("<Expires>([^<]+)<")));
        EXPECT_EQ(choice->GetChoiceSelectedElement(), "Card");
        EXPECT_EQ(choice->GetCard()->GetExpires().ToString(), m[1].str());
    }
}

// ---------------------------------------------------------------- rejections

struct Rule {
    const char* name;
    const char* pattern;      // applied once to the one-order document
    const char* replacement;
    const char* chain;        // GetFullMessage() of the rejection
    void (CXmlSerializationContext::*ignore)(bool);  // the switch that lets it pass, if any
};

// Test listings name the rule instead of dumping its bytes.
void PrintTo(const Rule& rule, std::ostream* os) { *os << rule.name; }

const char* const kOrder = "Failed to process the element [Orders]\n\nFailed to process the element [Order]\n\n";

const Rule kRules[] = {
    {"MissingMandatoryElement", "<OrderDate>[^<]*</OrderDate>", "",
     "Failed to find a required element [OrderDate]", &CXmlSerializationContext::SetIgnoreMissingMandatoryElements},
    {"UnknownElementBeforeAMandatoryOne", "<Status>", "<Gift>yes</Gift><Status>",
     "Failed to find a required element [Status]", &CXmlSerializationContext::SetIgnoreUnknownElements},
    {"UnknownElementAtTheEnd", "</Order>", "<Gift>yes</Gift></Order>",
     "Failed read all the elements held within the element [Order]. The unexpected element [Gift] remains un "
     "processed",
     &CXmlSerializationContext::SetIgnoreUnknownElements},
    {"BadEnumeration", "<Status>[^<]*<", "<Status>lost<", "Invalid value [lost] for the enumeration StatusType",
     nullptr},
    {"PatternViolation", "<Zip>[^<]*<", "<Zip>1234<",
     "Failed to process the element [Customer]\n\nFailed to process the element [Address]\n\n"
     "Invalid Value for Zip [1234]",
     nullptr},
    {"QuantityAboveRange", "<Quantity>[^<]*<", "<Quantity>10001<",
     "Failed to process the element [Line]\n\nInvalid Value for Quantity [10001]", nullptr},
    {"QuantityBelowRange", "<Quantity>[^<]*<", "<Quantity>0<",
     "Failed to process the element [Line]\n\nInvalid Value for Quantity [0]", nullptr},
    {"BadDate", "<OrderDate>[^<]*<", "<OrderDate>2024-13-05<", "Invalid Month [13] (1 <= month <= 12)", nullptr},
    {"TwoChoiceMembers", "(</Invoice>|</Card>)",
     "$1<Card><Holder>x</Holder><Number>1111-2222-3333-4444</Number><Expires>2030-01</Expires></Card>",
     "Failed read all the elements held within the element [Order]. The unexpected element [Card] remains un "
     "processed",
     &CXmlSerializationContext::SetIgnoreUnknownElements},
    {"NoChoiceMember", "<(Card|Invoice)>[\\s\\S]*</(Card|Invoice)>", "",
     "No child elements within the element [Order] were populated. The element represents a choice, so one and only "
     "one element should be populated. The element contained no sutable child elements",
     &CXmlSerializationContext::SetIgnoreMissingChoice},
};

class Rejection : public GeneratedBooks, public ::testing::WithParamInterface<Rule> {
protected:
    static std::string Variant(const Rule& rule) {
        const std::string text = ReadFile(Book(1));
        const std::string changed =
            std::regex_replace(text, std::regex(rule.pattern), rule.replacement, std::regex_constants::format_first_only);
        EXPECT_NE(changed, text) << rule.name;
        return changed;
    }
};

TEST_P(Rejection, FailsWithTheExactChain) {
    const Rule& rule = GetParam();
    const std::string text = Variant(rule);
    COrders book;
    try {
        book.FromXml(text.c_str());
        FAIL() << "accepted";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), std::string(kOrder) + rule.chain);
    }
}

TEST_P(Rejection, PassesUnderItsIgnoreSwitchOnly) {
    const Rule& rule = GetParam();
    const std::string text = Variant(rule);
    CXmlSerializationContext ctx;
    if (rule.ignore == nullptr) {
        // A value that breaks its type is never relaxed, whatever is ignored
        // (IgnoreMissingMandatoryElements excludes IgnoreUnknownElements).
        ctx.SetIgnoreUnknownElements(true);
        ctx.SetIgnoreInvalidCollectionCounts(true);
        ctx.SetIgnoreMissingChoice(true);
        ctx.SetIgnoreUnknownAttributes(true);
        COrders book;
        EXPECT_THROW(book.FromXml(text.c_str(), ctx), CQmValidationException);
        return;
    }
    (ctx.*rule.ignore)(true);
    COrders book;
    ASSERT_NO_THROW(book.FromXml(text.c_str(), ctx));
    ASSERT_EQ(book.GetOrder()->GetCount(), 1);
    COrders original;
    original.FromXmlFile(Book(1).c_str());
    // A skipped unknown element leaves the order as it was.
    const bool unknown = rule.ignore == &CXmlSerializationContext::SetIgnoreUnknownElements;
    EXPECT_EQ(book == original, unknown);
}

INSTANTIATE_TEST_SUITE_P(Orders, Rejection, ::testing::ValuesIn(kRules),
                         [](const ::testing::TestParamInfo<Rule>& info) { return std::string(info.param.name); });

TEST_F(GeneratedBooks, ZeroLinesBreakTheMinimumUnlessCountsAreIgnored) {
    const std::string text =
        std::regex_replace(ReadFile(Book(1)), std::regex("<Line number=\"\\d+\">[\\s\\S]*?</Line>\\s*"), "");
    ASSERT_EQ(text.find("<Line"), std::string::npos);
    COrders book;
    try {
        book.FromXml(text.c_str());
        FAIL() << "accepted";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), std::string(kOrder) + "The Minimum number of [Line] elements allowed in this collection is 1");
    }
    CXmlSerializationContext ctx;
    ctx.SetIgnoreInvalidCollectionCounts(true);
    ASSERT_NO_THROW(book.FromXml(text.c_str(), ctx));
    EXPECT_EQ(book.GetOrder()->GetItem(0)->GetLine()->GetCount(), 0);
}

TEST_F(GeneratedBooks, NotAnOrderBookIsRefusedAtTheRoot) {
    COrders book;
    try {
        book.FromXml("<Order xmlns=\"urn:example:orders\" id=\"1\"/>");
        FAIL() << "accepted";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(), "Unexpected root element [Order], expected [Orders]");
    }
}

// ---------------------------------------------------------------- writing and setters

TEST(OrdersWriting, AnOrderWithoutPaymentIsWrittenOnlyUnderIgnoreMissingChoice) {
    COrders book;
    book.SetGenerated(CDateTime("2026-01-02T03:04:05Z"));
    CSmartPtr<COrderType> order = new COrderType();
    order->SetId(7);
    order->GetCustomer()->SetName("n");
    CAddressType* address = order->GetCustomer()->GetAddress();
    address->SetStreet("s");
    address->SetCity("c");
    address->SetZip("01234");
    address->SetCountry("PT");
    CDateTime date;
    date.ParseXSDDate("2026-01-02");
    order->SetOrderDate(date);
    CSmartPtr<CLineType> line = new CLineType();
    line->SetSku("ABC-0001");
    line->SetUnitPrice(CDecimal("2.50"));
    order->GetLine()->Add(line);
    book.GetOrder()->Add(order);
    try {
        book.ToXml();
        FAIL() << "written";
    } catch (const CQmValidationException& e) {
        EXPECT_EQ(e.GetFullMessage(),
                  "Failed to convert the element [Orders] to XML\n\nFailed to convert the element [Order] to XML\n\n"
                  "Failed to convert the element [Choice] to XML\n\nThis element is a choice, and as such must have "
                  "at one (and only one) valid item, currently there are none set");
    }
    CXmlSerializationContext ctx;
    ctx.SetIgnoreMissingChoice(true);
    const std::string xml = book.ToXml(false, false, EOLType_LF, ctx);
    EXPECT_EQ(xml,
              "<Orders xmlns=\"urn:example:orders\" generated=\"2026-01-02T03:04:05Z\"><Order id=\"7\">"
              "<Customer customerId=\"0\"><Name>n</Name><Address><Street>s</Street><City>c</City><Zip>01234</Zip>"
              "<Country>PT</Country></Address></Customer><OrderDate>2026-01-02</OrderDate><Status>pending</Status>"
              "<Line number=\"0\"><Sku>ABC-0001</Sku><Description/><Quantity>1</Quantity>"
              "<UnitPrice>2.5</UnitPrice></Line></Order></Orders>");
}

TEST(OrdersWriting, PriorityIsWrittenOnlyWhenSetAndDefaultsToFalse) {
    COrderType order;
    EXPECT_FALSE(order.GetPriority());
    EXPECT_FALSE(order.IsValidPriority());
    order.SetPriority(false);
    EXPECT_TRUE(order.IsValidPriority());
    order.ClearPriority();
    EXPECT_FALSE(order.IsValidPriority());
}

TEST(OrdersSetters, ChoiceTakesOneMemberAtATime) {
    COrderTypeChoice choice;
    CSmartPtr<CCardType> card = new CCardType();
    choice.SetCard(card);
    choice.SetCard(card);  // the selected member may be replaced
    EXPECT_EQ(choice.GetChoiceSelectedElement(), "Card");
    try {
        choice.SetInvoice(new CInvoiceType());
        FAIL() << "two members";
    } catch (const CQmInvalidStateException& e) {
        EXPECT_EQ(e.GetFullMessage(),
                  "The Property [Card] is already set. Only one element within this class bay be set at a time");
    }
    choice.SetInvoice(nullptr);  // clearing the other member leaves the selection
    EXPECT_EQ(choice.GetChoiceSelectedElement(), "Card");
    choice.SetCard(nullptr);
    EXPECT_EQ(choice.GetChoiceSelectedElement(), "");
    choice.SetInvoice(new CInvoiceType());
    EXPECT_EQ(choice.GetChoiceSelectedElement(), "Invoice");
}

TEST(OrdersSetters, FacetsAreCheckedWhenSetting) {
    CLineType line;
    EXPECT_NO_THROW(line.SetQuantity(10000));
    EXPECT_THROW(line.SetQuantity(10001), CQmValidationException);
    EXPECT_EQ(line.GetQuantity(), 10000);
    EXPECT_THROW(line.SetSku("abc-1234"), CQmValidationException);
    CAddressType address;
    EXPECT_THROW(address.SetCountry("DEU"), CQmValidationException);
    EXPECT_THROW(address.SetZip("1234a"), CQmValidationException);
    CCustomerType customer;
    EXPECT_THROW(customer.SetEmail("no at sign"), CQmValidationException);
    EXPECT_THROW(customer.GetEmail(), CQmInvalidStateException);
    CCardType card;
    EXPECT_THROW(card.SetNumber("1111-2222-3333-444"), CQmValidationException);
    EXPECT_THROW(COrderType().SetCustomer(nullptr), CQmException);
}

TEST(OrdersEnumeration, ConvertsBothWaysAndRefusesUnknownValues) {
    for (int v = StatusType_pending; v <= StatusType_cancelled; ++v) {
        EXPECT_EQ(StatusTypeFromString(StatusTypeToString(v)), v);
    }
    EXPECT_STREQ(StatusTypeToString(StatusType_delivered), "delivered");
    try {
        StatusTypeFromString("Shipped");
        FAIL() << "case must match";
    } catch (const CQmInvalidValueException& e) {
        EXPECT_EQ(e.GetMessage(), "Invalid value [Shipped] for the enumeration StatusType");
    }
    EXPECT_THROW(StatusTypeToString(4), CQmInvalidValueException);
    EXPECT_THROW(COrderType().SetStatus(static_cast<StatusType>(-1)), CQmInvalidValueException);
}

TEST(OrdersFactory, CreatesEveryClassByIndex) {
    EXPECT_NE(dynamic_cast<COrders*>(CreateObject(ClassIndex_Orders, "Orders").Get()), nullptr);
    EXPECT_NE(dynamic_cast<COrderTypeChoice*>(CreateObject(ClassIndex_OrderTypeChoice, "Choice").Get()), nullptr);
    EXPECT_NE(dynamic_cast<CInvoiceType*>(CreateObject(ClassIndex_InvoiceType, "Invoice").Get()), nullptr);
    EXPECT_EQ(CreateObject(99, "x"), nullptr);
}

}  // namespace
