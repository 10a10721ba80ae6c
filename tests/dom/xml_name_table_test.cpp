#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "qmxml/dom/xml_name_table.h"

using namespace QmXmlLib10;

TEST(XmlNameTableTest, InternsEachNameOnce) {
    CXmlNameTable table;
    const std::string* a = table.Intern("alpha");
    EXPECT_EQ(*a, "alpha");
    EXPECT_EQ(table.Intern(std::string("alpha")), a);
    // The repeat cache must not answer for a prefix or an extension of the last name.
    const std::string* al = table.Intern("al");
    EXPECT_NE(al, a);
    EXPECT_EQ(*al, "al");
    EXPECT_EQ(*table.Intern("alphabet"), "alphabet");
    EXPECT_EQ(table.Intern("alpha"), a);
    EXPECT_EQ(table.GetCount(), 3u);

    // A slice of a longer buffer, as parsers hand names over.
    const char buffer[] = "xalphay";
    EXPECT_EQ(table.Intern(std::string_view(buffer + 1, 5)), a);
    EXPECT_EQ(table.Find(std::string_view(buffer + 1, 5)), a);
    EXPECT_EQ(table.Find("beta"), nullptr);

    // The empty name is shared by all tables and never counted.
    CXmlNameTable other;
    EXPECT_EQ(table.Intern(""), &CXmlNameTable::EmptyString());
    EXPECT_EQ(other.Intern(std::string_view()), &CXmlNameTable::EmptyString());
    EXPECT_EQ(table.Find(""), &CXmlNameTable::EmptyString());
    EXPECT_EQ(table.GetCount(), 3u);
    EXPECT_NE(other.Intern("alpha"), a);

    // Names differing only in case or after an embedded zero are distinct.
    EXPECT_NE(table.Intern("Alpha"), a);
    EXPECT_NE(table.Intern(std::string_view("alpha\0x", 7)), a);
}

TEST(XmlNameTableTest, PointersStayValidWhileTheTableGrows) {
    CXmlNameTable table;
    std::vector<const std::string*> first;
    for (int i = 0; i < 20000; ++i) first.push_back(table.Intern("name" + std::to_string(i)));
    EXPECT_EQ(table.GetCount(), 20000u);
    EXPECT_EQ(std::set<const std::string*>(first.begin(), first.end()).size(), 20000u);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(*first[i], "name" + std::to_string(i));
        ASSERT_EQ(table.Intern("name" + std::to_string(i)), first[i]);
    }

    table.Clear();
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_EQ(table.Find("name1"), nullptr);
    EXPECT_EQ(*table.Intern("name1"), "name1");
    EXPECT_EQ(table.GetCount(), 1u);
}
