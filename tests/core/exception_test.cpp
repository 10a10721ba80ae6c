#include <gtest/gtest.h>

#include <qmxml/qmxml.h>

using namespace QmXmlLib10;

TEST(FormatString, FormatsShortAndLongTexts) {
    EXPECT_EQ(FormatString("Index %d is out of range, use 0 - %d", 3, 2), "Index 3 is out of range, use 0 - 2");
    EXPECT_EQ(FormatString("error [0x%08X]", 0x2au), "error [0x0000002A]");
    const std::string big(1000, 'x');
    EXPECT_EQ(FormatString("[%s]", big.c_str()), "[" + big + "]");
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(Exception, ConstructorsAndMessages) {
    CQmException empty;
    EXPECT_EQ(empty.GetMessage(), "");
    EXPECT_EQ(empty.GetInnerException(), nullptr);

    CQmException plain("alone");
    EXPECT_EQ(plain.GetFullMessage(), plain.GetMessage());
    EXPECT_STREQ(plain.what(), "alone");

    CQmValidationException c("C");
    CQmInvalidValueException b("B", c);
    CQmException a("A", b);
    EXPECT_EQ(a.GetMessage(), "A");
    EXPECT_EQ(a.GetFullMessage(), "A\n\nB\n\nC");
    ASSERT_NE(a.GetInnerException(), nullptr);
    EXPECT_EQ(a.GetInnerException()->GetFullMessage(), "B\n\nC");
}

TEST(Exception, CopiesAreDeepAndKeepDynamicClasses) {
    CQmException* copy = nullptr;
    {
        CQmValidationException cause("cause");
        const CQmException& asBase = cause;
        auto* source = new CQmInvalidStateException("outer", asBase);
        copy = new CQmException(*source);
        EXPECT_NE(copy->GetInnerException(), source->GetInnerException());
        delete source;
    }
    EXPECT_EQ(copy->GetFullMessage(), "outer\n\ncause");
    EXPECT_NE(dynamic_cast<const CQmValidationException*>(copy->GetInnerException()), nullptr);
    delete copy;

    CQmOverFlowException inner("inner");
    CQmInvalidParamException e("e", inner);
    try {
        throw e;
    } catch (const CQmException& caught) {
        CQmException wrapped("wrap", caught);
        const CQmException* first = wrapped.GetInnerException();
        ASSERT_NE(first, nullptr);
        EXPECT_NE(dynamic_cast<const CQmInvalidParamException*>(first), nullptr);
        EXPECT_NE(dynamic_cast<const CQmOverFlowException*>(first->GetInnerException()), nullptr);
    }
}

TEST(Exception, AssignmentIsDeepAndSelfSafe) {
    CQmInvalidNamespaceException x("x");
    CQmException a("a", x);
    CQmException b("b");
    b = a;
    EXPECT_EQ(b.GetFullMessage(), "a\n\nx");
    EXPECT_NE(b.GetInnerException(), a.GetInnerException());
    const CQmException& alsoB = b;  // through a reference, as self-assignment happens in real code
    b = alsoB;
    EXPECT_EQ(b.GetFullMessage(), "a\n\nx");
    // Assigning an exception its own cause must not read freed memory.
    b = *b.GetInnerException();
    EXPECT_EQ(b.GetFullMessage(), "x");
}

TEST(Exception, LongChainsAreDestroyedWithoutDeepRecursion) {
    CQmException chain("0");
    for (int i = 1; i < 2000; ++i) chain = CQmException(std::to_string(i), chain);
    EXPECT_EQ(chain.GetMessage(), "1999");
    const std::string full = chain.GetFullMessage();
    EXPECT_EQ(full.substr(full.size() - 3), "\n\n0");
}
