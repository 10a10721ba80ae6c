#include "qmxml/fastinfoset/fast_infoset_context.h"

#include "qmxml/core/enums.h"
#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

namespace {

void CheckIndex(std::uint32_t itemType) {
    // The table is a fixed array: an unchecked index would read past it.
    if (itemType >= CFastInfosetContext::EncodingTableSize) {
        throw CQmInvalidParamException(FormatString("Invalid item type [%u] for the encoding table", itemType));
    }
}

}  // namespace

void CFastInfosetContext::SetSuggestedValues() {
    using E = EncodedCharacterString;
    auto algorithm = [](std::uint32_t index) { return E{E::Kind_EncodingAlgorithm, index}; };
    enum : std::uint32_t { Hex = 1, Base64 = 2, Short = 3, Int = 4, Long = 5, Boolean = 6, Float = 7, Double = 8 };
    m_encodings[ItemType_hexBinary] = algorithm(Hex);
    m_encodings[ItemType_base64Binary] = algorithm(Base64);
    m_encodings[ItemType_i1] = algorithm(Short);
    m_encodings[ItemType_i2] = algorithm(Short);
    m_encodings[ItemType_i4] = algorithm(Int);
    m_encodings[ItemType_i8] = algorithm(Long);
    // Each unsigned type takes the next wider signed algorithm; ui8 shares long.
    m_encodings[ItemType_ui1] = algorithm(Short);
    m_encodings[ItemType_ui2] = algorithm(Int);
    m_encodings[ItemType_ui4] = algorithm(Long);
    m_encodings[ItemType_ui8] = algorithm(Long);
    m_encodings[ItemType_r4] = algorithm(Float);
    m_encodings[ItemType_r8] = algorithm(Double);
    m_encodings[ItemType_duration] = E{E::Kind_Literal, 0};
    for (int t = ItemType_yearMonth; t <= ItemType_time; ++t) m_encodings[t] = E{E::Kind_RestrictedAlphabet, 2};
    m_encodings[ItemType_boolean] = algorithm(Boolean);
    m_encodings[ItemType_decimal] = E{E::Kind_RestrictedAlphabet, 1};
    m_encodings[ItemType_integer] = E{E::Kind_RestrictedAlphabet, 1};
}

EncodedCharacterString CFastInfosetContext::GetEncoding(std::uint32_t itemType) const {
    CheckIndex(itemType);
    return m_encodings[itemType];
}

void CFastInfosetContext::SetEncoding(std::uint32_t itemType, EncodedCharacterString encoding) {
    CheckIndex(itemType);
    m_encodings[itemType] = encoding;
}

}  // namespace QmXmlLib10
