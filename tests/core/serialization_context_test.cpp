#include <gtest/gtest.h>

#include <qmxml/collections/wildcards.h>
#include <qmxml/core/exception.h>
#include <qmxml/core/serialization_context.h>
#include "expect_throw.h"

using namespace QmXmlLib10;
using qmxml_test::ExpectMessage;

namespace {
const char* kUnknownThenMissing =
    "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
    "can not ignore both\nSet IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true";
const char* kMissingThenUnknown =
    "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
    "can not ignore both\nSet IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true";
}  // namespace

TEST(SerializationContext, Defaults) {
    CXmlSerializationContext ctx;
    EXPECT_TRUE(ctx.GetWriteTypeAttribute());
    EXPECT_TRUE(ctx.GetStripCDATA());
    EXPECT_FALSE(ctx.GetIgnoreUnknownAttributes());
    EXPECT_FALSE(ctx.GetIgnoreUnknownElements());
    EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
    EXPECT_FALSE(ctx.GetIgnoreMissingChoice());
    EXPECT_FALSE(ctx.GetIgnoreInvalidCollectionCounts());
    EXPECT_FALSE(ctx.GetIgnoreNamespaces());
    EXPECT_FALSE(ctx.GetNoOptionalAttributeDefaultOutput());
    EXPECT_EQ(ctx.GetSchemaType(), SchemaType_XmlSchema);
    EXPECT_EQ(ctx.GetInLineSchema(), "");
    EXPECT_EQ(ctx.GetNamespaceAliases().GetNamespaceCount(), 0);
    EXPECT_TRUE(ctx.GetProcessingInstructions().empty());
    const CXmlSerializationContext& constCtx = ctx;
    EXPECT_EQ(constCtx.GetAdditionalRootAttributes(), nullptr);
    EXPECT_EQ(ctx.GetFIContext().GetAttributeMaxAddLength(), 6u);
    EXPECT_FALSE(CXmlSerializationContext::m_defaultContext.GetIgnoreUnknownElements());
}

TEST(SerializationContext, UnknownAndMissingCannotBothBeIgnored) {
    CXmlSerializationContext ctx;
    ctx.SetIgnoreMissingMandatoryElements(true);
    ExpectMessage<CQmInvalidStateException>([&] { ctx.SetIgnoreUnknownElements(true); }, kUnknownThenMissing);
    EXPECT_FALSE(ctx.GetIgnoreUnknownElements());
    EXPECT_NO_THROW(ctx.SetIgnoreUnknownElements(false));
    ctx.SetIgnoreMissingMandatoryElements(false);
    ctx.SetIgnoreUnknownElements(true);
    EXPECT_TRUE(ctx.GetIgnoreUnknownElements());
    ExpectMessage<CQmInvalidStateException>([&] { ctx.SetIgnoreMissingMandatoryElements(true); }, kMissingThenUnknown);
    EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
    EXPECT_NO_THROW(ctx.SetIgnoreMissingMandatoryElements(false));
}

TEST(SerializationContext, SchemaTypeTwoIgnoresNamespaces) {
    CXmlSerializationContext ctx;
    ctx.SetSchemaType(SchemaType_NoNamespaces);
    EXPECT_TRUE(ctx.GetIgnoreNamespaces());
    ctx.SetSchemaType(static_cast<SchemaType>(1));
    EXPECT_FALSE(ctx.GetIgnoreNamespaces());
    ctx.SetIgnoreNamespaces(true);
    EXPECT_TRUE(ctx.GetIgnoreNamespaces());
}

TEST(SerializationContext, AdditionalRootAttributesAreCreatedOnceAndShared) {
    CXmlSerializationContext ctx;
    CSmartPtr<CAttributeCol> first = ctx.GetAdditionalRootAttributes();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetNamespaceRestriction(), "##any");
    EXPECT_EQ(first->GetCount(), 0);
    EXPECT_EQ(ctx.GetAdditionalRootAttributes(), first);
    CXmlSerializationContext copy(ctx);
    EXPECT_EQ(copy.GetAdditionalRootAttributes(), first);
    CXmlSerializationContext assigned;
    assigned = ctx;
    const CXmlSerializationContext& constAssigned = assigned;
    EXPECT_EQ(constAssigned.GetAdditionalRootAttributes(), first);
    first->Add("lang", "", "en");
    EXPECT_EQ(copy.GetAdditionalRootAttributes()->GetCount(), 1);
}

TEST(SerializationContext, CopiesCarryEverySetting) {
    CXmlSerializationContext ctx;
    ctx.SetIgnoreUnknownAttributes(true);
    ctx.SetIgnoreMissingChoice(true);
    ctx.SetIgnoreInvalidCollectionCounts(true);
    ctx.SetNoOptionalAttributeDefaultOutput(true);
    ctx.SetWriteTypeAttribute(false);
    ctx.SetStripCDATA(false);
    ctx.SetInLineSchema("<xs:schema/>");
    ctx.GetNamespaceAliases().Add("o", "urn:o");
    ctx.GetProcessingInstructions().push_back("<?xml-stylesheet href=\"a.xsl\"?>");
    ctx.GetFIContext().SetElementMaxAddLength(12);
    CXmlSerializationContext copy;
    copy = ctx;
    EXPECT_TRUE(copy.GetIgnoreUnknownAttributes());
    EXPECT_TRUE(copy.GetIgnoreMissingChoice());
    EXPECT_TRUE(copy.GetIgnoreInvalidCollectionCounts());
    EXPECT_TRUE(copy.GetNoOptionalAttributeDefaultOutput());
    EXPECT_FALSE(copy.GetWriteTypeAttribute());
    EXPECT_FALSE(copy.GetStripCDATA());
    EXPECT_EQ(copy.GetInLineSchema(), "<xs:schema/>");
    EXPECT_EQ(copy.GetNamespaceAliases().GetAliasFromNamespace("urn:o"), "o");
    ASSERT_EQ(copy.GetProcessingInstructions().size(), 1u);
    EXPECT_EQ(copy.GetFIContext().GetElementMaxAddLength(), 12u);
    // The copy's alias map is its own.
    copy.GetNamespaceAliases().Add("p", "urn:p");
    EXPECT_FALSE(ctx.GetNamespaceAliases().DoesNamespaceExist("urn:p"));
}
