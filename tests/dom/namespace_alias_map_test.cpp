#include <gtest/gtest.h>

#include <string>

#include "qmxml/core/exception.h"
#include "qmxml/dom/namespace_alias_map.h"
#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectMessage;

TEST(NamespaceAliasMapTest, AddReplacesTheAliasOfAUri) {
    CNamespaceAliasMap map;
    EXPECT_EQ(map.GetNamespaceCount(), 0);
    map.Add("a", "urn:x");
    map.Add("b", "urn:x");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    EXPECT_EQ(map.GetAliasFromNamespace("urn:x"), "b");
    EXPECT_EQ(map.GetNamespaceFromAlias("b"), "urn:x");
    EXPECT_FALSE(map.DoesAliasExist("a"));
    EXPECT_TRUE(map.DoesAliasExist(std::string("b")));
    EXPECT_TRUE(map.DoesNamespaceExist("urn:x"));
    EXPECT_FALSE(map.DoesNamespaceExist("urn:X"));

    // An empty alias is a default-namespace entry.
    EXPECT_FALSE(map.DoesAliasExist(""));
    map.Add("", "urn:default");
    EXPECT_TRUE(map.DoesAliasExist(""));
    EXPECT_EQ(map.GetNamespaceFromAlias(""), "urn:default");
    map.RemoveNamespace("urn:default");

    map.RemoveNamespace("urn:nope");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    map.RemoveNamespace(std::string("urn:x"));
    EXPECT_EQ(map.GetNamespaceCount(), 0);
    EXPECT_FALSE(map.DoesAliasExist("b"));
}

TEST(NamespaceAliasMapTest, UnknownAliasThrowsWithTheAlias) {
    CNamespaceAliasMap map;
    map.Add("p", "urn:p");
    ExpectMessage<CQmException>([&] { map.GetNamespaceFromAlias("q"); }, "Namespace alias [q] not found");
}

TEST(NamespaceAliasMapTest, AliasLookupOfUnknownUriInsertsIt) {
    CNamespaceAliasMap map;
    map.Add("p", "urn:p");
    const CNamespaceAliasMap& constMap = map;
    EXPECT_EQ(constMap.GetAliasFromNamespace("urn:new"), "");
    EXPECT_EQ(map.GetNamespaceCount(), 2);
    EXPECT_TRUE(map.DoesNamespaceExist("urn:new"));
    EXPECT_TRUE(map.DoesAliasExist(""));
}

TEST(NamespaceAliasMapTest, EnumeratesInUriOrder) {
    CNamespaceAliasMap map;
    map.Add("b", "urn:b");
    map.Add("a", "urn:a");
    map.Add("z", "Urn:upper");  // byte order: upper case sorts first
    ASSERT_EQ(map.GetNamespaceCount(), 3);
    EXPECT_EQ(map.GetNamespaceAt(0), "Urn:upper");
    EXPECT_EQ(map.GetNamespaceAt(1), "urn:a");
    EXPECT_EQ(map.GetNamespaceAt(2), "urn:b");

    // A shared alias resolves to the first URI in that order.
    map.Add("s", "urn:y");
    map.Add("s", "urn:c");
    EXPECT_EQ(map.GetNamespaceFromAlias("s"), "urn:c");
}

TEST(NamespaceAliasMapTest, CopiesAreIndependent) {
    CNamespaceAliasMap map;
    map.Add("a", "urn:a");
    CNamespaceAliasMap copy(map);
    copy.Add("b", "urn:b");
    map.Add("x", "urn:a");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    EXPECT_EQ(copy.GetNamespaceCount(), 2);
    EXPECT_EQ(copy.GetAliasFromNamespace("urn:a"), "a");

    map = copy;
    EXPECT_EQ(map.GetNamespaceCount(), 2);
    EXPECT_EQ(map.GetAliasFromNamespace("urn:a"), "a");
    CNamespaceAliasMap& same = map;
    map = same;  // self-assignment keeps the content
    EXPECT_EQ(map.GetNamespaceCount(), 2);
}
