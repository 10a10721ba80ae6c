#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "bound_classes.h"
#include "expect_throw.h"

using namespace bound;
using qmxml_test::FailureOf;

namespace {

// <Holder> with one member given by the test: an object slot and a collection slot.
class Holder : public CXmlGeneratedClass {
public:
    CSmartPtr<CXmlObjectBase> member;
    Holder(CElementInfo* info) {
        m_elements[0] = info;
        Init();
    }
    CXmlObjectBase* GetBase() override { return this; }
    void Init() override { member = nullptr; }
    void AccessProperty(int, bool read, QmVariant& v) override {
        if (read) v.SetXmlObject(member); else member = v.GetXmlObject();
    }
    CParentElementInfo* GetClassInfo() const override { return s_parent; }
    CElementInfo** GetClassElementInfo() const override { return const_cast<CElementInfo**>(m_elements); }
    CAttributeInfo** GetClassAttributeInfo() const override { return s_attributes; }

    inline static CParentElementInfo* s_parent = new CParentElementInfo(
        XmlElementGroupType_Sequence, XmlElementType_Element, "Holder", NS, true, false, -1, ItemType_None, "", false);
    inline static CAttributeInfo** s_attributes = new CAttributeInfo*[1]{nullptr};

private:
    CElementInfo* m_elements[2] = {nullptr, nullptr};
};

}  // namespace

TEST(ElementInfo, AnyDefaultNamespace) {
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##any", "urn:a", "urn:t"), "urn:a");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "", "urn:t"), "DefaultNamespace");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "urn:a", "urn:t"), "");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##local", "urn:a", "urn:t"), "");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##targetNamespace", "urn:a", "urn:t"), "urn:t");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("urn:x urn:y", "urn:a", "urn:t"), "urn:x");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other urn:y", "", "urn:t"), "DefaultNamespace");
    // Lists are split as the namespace test splits them: runs of blanks are
    // one separator, and a list of blanks alone names no namespace.
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("  urn:x   urn:y ", "urn:a", "urn:t"), "urn:x");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(" ##targetNamespace urn:y", "urn:a", "urn:t"), "urn:t");
    EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("   ", "urn:a", "urn:t"), "");
    CSmartPtr<Item> item = new Item();
    EXPECT_TRUE(item->IsNamespaceValid("urn:x", "  urn:x   urn:y ", "urn:t"));
    EXPECT_TRUE(item->IsNamespaceValid("urn:t", " ##targetNamespace urn:y", "urn:t"));
    EXPECT_FALSE(item->IsNamespaceValid("", "   ", "urn:t"));
}

TEST(ElementInfo, GroupBaseValidateAndAbstractAllMembers) {
    CElementInfoSeqPrimMnd seq("A", NS, 0, false, ItemType_string, "", CWhitespaceUtils::WhitespaceRule_None,
                               kNoFacets);
    CElementInfoChoicePrimOpt choice("A", NS, 0, false, ItemType_string, "", CWhitespaceUtils::WhitespaceRule_None,
                                     kNoFacets);
    CSmartPtr<Item> item = new Item();
    const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
    EXPECT_EQ(FailureOf([&] { seq.Validate(ctx, item, false, true); }), "Not implemented, should never be called");
    EXPECT_EQ(FailureOf([&] { choice.Validate(ctx, item, false, true); }), "Not implemented, should never be called");
    CElementInfoAllPrimMnd all("A", NS, 0, false, ItemType_string, "", CWhitespaceUtils::WhitespaceRule_None,
                               kNoFacets);
    EXPECT_TRUE(all.Validate(ctx, item, true, true));
    EXPECT_FALSE(all.Validate(ctx, item, false, false));
    EXPECT_EQ(FailureOf([&] { all.Validate(ctx, item, false, true); }), "Failed to find the mandatory element [A]");

    CSmartPtr<Holder> mnd = new Holder(new CElementInfoAllAbsClsMnd("Shape", NS, 0, XmlElementType_Element,
                                                                    CreateShape, 0));
    EXPECT_EQ(FailureOf([&] { mnd->FromXml("<Holder xmlns=\"urn:t\"><Circle r=\"1\"/></Holder>"); }),
              "Failed to process the element [Holder]\n\nCElementInfoAllAbsClsMnd::ElementFromXml, has not been "
              "implemented fully");
    CSmartPtr<Holder> opt = new Holder(new CElementInfoAllAbsClsOpt("Shape", NS, 0, XmlElementType_Element,
                                                                    CreateShape));
    EXPECT_EQ(FailureOf([&] { opt->FromXml("<Holder xmlns=\"urn:t\"><Circle r=\"1\"/></Holder>"); }),
              "Failed to process the element [Holder]\n\nCElementInfoAllAbsClsOpt::ElementFromXml, has not been "
              "implemented fully");
    delete mnd->GetClassElementInfo()[0];
    delete opt->GetClassElementInfo()[0];
}

TEST(ElementInfo, MandatoryAbstractAndUntypedMembers) {
    auto* abstractInfo = new CElementInfoSeqAbsClsMnd("Shape", NS, 0, XmlElementType_Element, CreateShape);
    CSmartPtr<Holder> shape = new Holder(abstractInfo);
    EXPECT_EQ(FailureOf([&] { shape->FromXml("<Holder xmlns=\"urn:t\"/>"); }),
              "Failed to process the element [Holder]\n\nFailed to find a suitable substitution element for [Shape]");
    EXPECT_EQ(FailureOf([&] { shape->FromXml("<Holder xmlns=\"urn:t\"><Oval/></Holder>"); }),
              "Failed to process the element [Holder]\n\nFailed to find a suitable substitution element for [Shape]");
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    shape->FromXml("<Holder xmlns=\"urn:t\"><Oval/><Square side=\"5\"/></Holder>", ignore);
    ASSERT_NE(dynamic_cast<Square*>(shape->member.Get()), nullptr);
    EXPECT_EQ(shape->ToXml(false, false), "<Holder xmlns=\"urn:t\"><Square side=\"5\"/></Holder>");
    delete abstractInfo;

    auto* untypedInfo = new CElementInfoSeqUntpdMnd("AnyElement", NS, 0, "urn:a urn:b", "");
    CSmartPtr<Holder> any = new Holder(untypedInfo);
    EXPECT_EQ(FailureOf([&] { any->FromXml("<Holder xmlns=\"urn:t\"/>"); }),
              "Failed to process the element [Holder]\n\nFailed to find a required element [AnyElement]");
    EXPECT_EQ(FailureOf([&] { any->FromXml("<Holder xmlns=\"urn:t\"><x:E xmlns:x=\"urn:c\"/></Holder>"); }),
              "Failed to process the element [Holder]\n\nFailed to find the required element from namespace "
              "[urn:a urn:b]");
    any->FromXml("<Holder xmlns=\"urn:t\"><x:E xmlns:x=\"urn:b\">v</x:E></Holder>");
    auto* element = dynamic_cast<CElement*>(any->member.Get());
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->GetNamespaceURI(), "urn:b");
    EXPECT_EQ(element->GetText(), "v");
    delete untypedInfo;
}

TEST(ElementInfo, CleanMetaDataFreesEverything) {
    CParentElementInfo* parent = new CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, "P", "",
                                                        false, false, -1, ItemType_None, "", false);
    CElementInfo** elements = new CElementInfo*[2]{
        new CElementInfoAllUntpdOpt("AnyElement", "", 0, "##any", ""), nullptr};
    CAttributeInfo** attributes = new CAttributeInfo*[2]{
        new CAttributeInfoEnum("e", "", 1, true, ColorToString, ColorFromString, ""), nullptr};
    EXPECT_EQ(parent->GetElementName(), "P");
    EXPECT_FALSE(parent->HasSimpleContent());
    CXmlGeneratedClass::CleanMetaData(parent, elements, attributes);
    EXPECT_EQ(parent, nullptr);
    EXPECT_EQ(elements, nullptr);
    EXPECT_EQ(attributes, nullptr);
}

namespace {

// Counts the objects the class member infos ask the factory for.
std::atomic<int> g_factoryCalls{0};

CSmartPtr<CXmlObjectBase> CountingFactory(int classIndex, const char* elementName) {
    g_factoryCalls.fetch_add(1);
    return CreateObject(classIndex, elementName);
}

}  // namespace

TEST(ElementInfo, ClassMembersAreWrittenAndProbedWithoutAnObjectPerQuestion) {
    // A class member written many times: the declared class is made once,
    // not once per write, and a derived object still gets its xsi:type.
    auto* partyInfo = new CElementInfoSeqClsMnd("Customer", NS, 0, XmlElementType_Element, CountingFactory,
                                                Class_Party, false);
    CSmartPtr<Holder> party = new Holder(partyInfo);
    const std::string xml = "<Holder xmlns=\"urn:t\"><Customer><Name>Ann</Name><Address><Street>S</Street>"
                            "<City>C</City></Address></Customer></Holder>";
    party->FromXml(xml.c_str());
    g_factoryCalls = 0;
    for (int i = 0; i < 50; ++i) EXPECT_EQ(party->ToXml(false, false), xml);
    EXPECT_LE(g_factoryCalls.load(), 1);
    delete partyInfo;

    // An absent optional inlined member asked about elements it does not
    // take makes no object; one it takes is read into a new object each time.
    auto* rangeInfo = new CElementInfoSeqClsOpt("Range", NS, 0, XmlElementType_InlineSequence, CountingFactory,
                                                Class_Range);
    CSmartPtr<Holder> range = new Holder(rangeInfo);
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    g_factoryCalls = 0;
    for (int i = 0; i < 50; ++i) {
        range->FromXml("<Holder xmlns=\"urn:t\"><X/><Y/></Holder>", ignore);
        EXPECT_FALSE(range->member);
    }
    EXPECT_LE(g_factoryCalls.load(), 1);
    g_factoryCalls = 0;
    range->FromXml("<Holder xmlns=\"urn:t\"><Low>1</Low><High>9</High></Holder>");
    ASSERT_NE(dynamic_cast<Range*>(range->member.Get()), nullptr);
    EXPECT_EQ(dynamic_cast<Range*>(range->member.Get())->high, 9);
    EXPECT_EQ(g_factoryCalls.load(), 1);
    delete rangeInfo;
}

TEST(ElementInfo, OneInfoServesSeveralThreadsAtOnce) {
    // The declared-class object of a fresh info is made by whichever thread
    // asks first; all of them must read and write as one thread would.
    auto* rangeInfo = new CElementInfoSeqClsOpt("Range", NS, 0, XmlElementType_InlineSequence, CreateObject,
                                                Class_Range);
    CXmlSerializationContext ignore;
    ignore.SetIgnoreUnknownElements(true);
    const std::string with = "<Holder xmlns=\"urn:t\"><X/><Low>1</Low><High>9</High></Holder>";
    const std::string without = "<Holder xmlns=\"urn:t\"><X/></Holder>";
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            CSmartPtr<Holder> holder = new Holder(rangeInfo);
            for (int i = 0; i < 200; ++i) {
                const bool present = (i + t) % 2 == 0;
                holder->FromXml((present ? with : without).c_str(), ignore);
                const std::string expected = present ? "<Holder xmlns=\"urn:t\"><Low>1</Low><High>9</High></Holder>"
                                                     : "<Holder xmlns=\"urn:t\"/>";
                if (holder->ToXml(false, false) != expected) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);
    delete rangeInfo;
}
