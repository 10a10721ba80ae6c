#include <gtest/gtest.h>

#include <qmxml/core/enums.h>
#include <qmxml/core/exception.h>
#include <qmxml/fastinfoset/fast_infoset_context.h>

using namespace QmXmlLib10;

TEST(FastInfosetContext, DefaultsAndSuggestedEncodings) {
    CFastInfosetContext fi;
    EXPECT_EQ(fi.GetDefaultStringEncoding(), 0);
    EXPECT_EQ(fi.GetAttributeMaxAddLength(), 6u);
    EXPECT_EQ(fi.GetElementMaxAddLength(), 6u);
    EXPECT_FALSE(fi.GetUseGeneratedVocabulary());
    EXPECT_EQ(fi.GetExternalVocabularyURI(), "");
    for (std::uint32_t i = 0; i < CFastInfosetContext::EncodingTableSize; ++i) {
        EXPECT_EQ(fi.GetEncoding(i), (EncodedCharacterString{0, 0})) << i;
    }

    fi.SetEncoding(ItemType_string, {1, 1});
    fi.SetSuggestedValues();
    struct Row { int type; std::uint32_t kind, index; };
    const Row expected[] = {
        {ItemType_hexBinary, 2, 1}, {ItemType_base64Binary, 2, 2}, {ItemType_i1, 2, 3}, {ItemType_i2, 2, 3},
        {ItemType_i4, 2, 4}, {ItemType_i8, 2, 5}, {ItemType_ui1, 2, 3}, {ItemType_ui2, 2, 4},
        {ItemType_ui4, 2, 5}, {ItemType_ui8, 2, 5}, {ItemType_r4, 2, 7}, {ItemType_r8, 2, 8},
        {ItemType_duration, 0, 0}, {ItemType_yearMonth, 1, 2}, {ItemType_date, 1, 2}, {ItemType_time, 1, 2},
        {ItemType_boolean, 2, 6}, {ItemType_decimal, 1, 1}, {ItemType_integer, 1, 1},
        {ItemType_char, 0, 0}, {ItemType_string, 1, 1},  // untouched entries keep their value
    };
    for (const Row& r : expected) {
        EXPECT_EQ(fi.GetEncoding(r.type), (EncodedCharacterString{r.kind, r.index})) << r.type;
    }
    EXPECT_THROW(fi.GetEncoding(29), CQmInvalidParamException);
    EXPECT_THROW(fi.SetEncoding(1000, {}), CQmInvalidParamException);
}
