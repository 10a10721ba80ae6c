#include <gtest/gtest.h>

#include <qmxml/fastinfoset/fast_infoset_context.h>
#include <qmxml/fastinfoset/vocabulary.h>

using namespace QmXmlLib10;

TEST(FIVocabulary, BuiltInEntriesAndAlphabets) {
    CFIVocabulary v;
    std::uint32_t index = 0;
    EXPECT_TRUE(v.FindPrefixNameIndex("xml", index));
    EXPECT_EQ(index, 1u);
    EXPECT_TRUE(v.FindNamespaceNameIndex("http://www.w3.org/XML/1998/namespace", index));
    EXPECT_EQ(index, 1u);
    EXPECT_FALSE(v.FindLocalNameIndex("xml", index));
    EXPECT_EQ(v.GetPrefixNamesTable().GetStrings(), std::vector<std::string>{"xml"});
    EXPECT_EQ(v.GetNamespaceNamesTable().GetCount(), 1u);
    EXPECT_EQ(v.GetLocalNamesTable().GetCount(), 0u);
    EXPECT_EQ(v.GetElementNamesTable().GetCount(), 0u);
    ASSERT_EQ(v.GetRestrictedAlphabets().size(), 2u);
    EXPECT_EQ(v.GetRestrictedAlphabets()[0], "0123456789-+.e ");
    EXPECT_EQ(v.GetRestrictedAlphabets()[1], "0123456789-:TZ ");
    EXPECT_EQ(v.AddPrefixName("p"), 2u);  // the first user prefix follows "xml"
    EXPECT_EQ(*v.GetPrefixNamesTable().GetAt(2), "p");
    EXPECT_EQ(v.GetPrefixNamesTable().GetAt(0), nullptr);
    EXPECT_EQ(v.GetPrefixNamesTable().GetAt(3), nullptr);
    EXPECT_EQ(v.AddAttributeValue(""), 0u);  // empty strings are never added
    EXPECT_EQ(v.GetAttributeValuesTable().GetCount(), 0u);
}

TEST(FIVocabulary, QualifiedNamesShareTheirParts) {
    CFIVocabulary v;
    EXPECT_EQ(v.AddElement("p", "urn:a", "item"), 1u);
    EXPECT_EQ(v.AddElement("", "", "item"), 2u);
    EXPECT_EQ(v.AddAttribute("xml", "http://www.w3.org/XML/1998/namespace", "lang"), 1u);
    EXPECT_EQ(v.AddElement("", "urn:a", "other"), 3u);
    EXPECT_EQ(v.AddElement("p", "urn:a", "item"), 0u);  // present: not added twice
    EXPECT_EQ(*v.GetElementNamesTable().GetAt(1), (CQNameParts{2, 2, 1}));
    EXPECT_EQ(*v.GetElementNamesTable().GetAt(2), (CQNameParts{0, 0, 1}));
    EXPECT_EQ(*v.GetElementNamesTable().GetAt(3), (CQNameParts{0, 2, 3}));
    EXPECT_EQ(*v.GetAttributeNamesTable().GetAt(1), (CQNameParts{1, 1, 2}));
    EXPECT_EQ(v.GetLocalNamesTable().GetStrings(), (std::vector<std::string>{"item", "lang", "other"}));
    std::uint32_t index = 0;
    EXPECT_TRUE(v.GetElementNamesTable().Find("", "", "item", index));
    EXPECT_EQ(index, 2u);
    EXPECT_FALSE(v.GetElementNamesTable().Find("q", "urn:a", "item", index));
    EXPECT_FALSE(v.GetAttributeNamesTable().Find("p", "urn:a", "item", index));
    // A prefix without a namespace is not part of the name.
    EXPECT_EQ(v.AddAttribute("z", "", "bare"), 2u);
    EXPECT_TRUE(v.GetAttributeNamesTable().Find("", "", "bare", index));
    EXPECT_FALSE(v.FindPrefixNameIndex("z", index));
}

TEST(FIVocabulary, TablesStopAtTwoToTheTwenty) {
    CFIVocabulary v;
    for (std::uint32_t i = 0; i < CFIVocabulary::MaxIndex; ++i) {
        ASSERT_EQ(v.AddElementValue(std::to_string(i)), i + 1);
    }
    EXPECT_EQ(v.AddElementValue("full"), 0u);
    EXPECT_EQ(v.GetCharacterChunksTable().GetCount(), CFIVocabulary::MaxIndex);
    std::uint32_t index = 0;
    EXPECT_FALSE(v.FindElementValueIndex("full", index));
    EXPECT_TRUE(v.FindElementValueIndex("1048575", index));
    EXPECT_EQ(index, 1048576u);
}

TEST(FIVocabulary, ContextCopiesAreIndependent) {
    CFastInfosetContext a;
    a.GetVocabulary()->AddLocalName("one");
    CFastInfosetContext b = a;
    b.GetVocabulary()->AddLocalName("two");
    EXPECT_EQ(a.GetVocabulary()->GetLocalNamesTable().GetCount(), 1u);
    EXPECT_EQ(b.GetVocabulary()->GetLocalNamesTable().GetCount(), 2u);
    CFIVocabulary fresh;
    fresh = *b.GetVocabulary();
    std::uint32_t index = 0;
    EXPECT_TRUE(fresh.FindLocalNameIndex("two", index));
    EXPECT_EQ(index, 2u);
}

TEST(FIVocabulary, StringsAddedTwiceKeepTheirFirstIndex) {
    // Callers look strings up first; one added twice anyway takes a second
    // position, is found at its first, and later strings number by position.
    CFIVocabulary v;
    EXPECT_EQ(v.AddLocalName("a"), 1u);
    EXPECT_EQ(v.AddLocalName("a"), 2u);
    EXPECT_EQ(v.AddLocalName("b"), 3u);
    std::uint32_t index = 0;
    EXPECT_TRUE(v.FindLocalNameIndex("a", index));
    EXPECT_EQ(index, 1u);
    EXPECT_TRUE(v.FindLocalNameIndex("b", index));
    EXPECT_EQ(index, 3u);
    EXPECT_EQ(v.GetLocalNamesTable().GetStrings(), (std::vector<std::string>{"a", "a", "b"}));
    // Names and values alike, through every table's growth.
    for (int i = 0; i < 1000; ++i) v.AddAttributeValue(std::to_string(i));
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(v.FindAttributeValueIndex(std::to_string(i), index));
        ASSERT_EQ(index, static_cast<std::uint32_t>(i + 1));
    }
    EXPECT_FALSE(v.FindAttributeValueIndex("1000", index));
}
