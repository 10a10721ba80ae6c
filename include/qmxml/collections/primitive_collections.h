// The primitive collections, named after their XSD types: CstringCol, Ci4Col,
// CdecimalCol, CdateCol and the rest. Each holds values of its type and reads
// and writes one element per item.
//
// Constructors: (element name, namespace, minimum, maximum) with no facets and
// the type's built-in whitespace rule (preserve for strings, collapse for the
// rest), or the full form (element name, namespace, minimum, maximum, pattern,
// minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive,
// length, whitespace rule, format) as generated code passes it.
#pragma once

#include <cstdint>
#include <string>

#include "qmxml/collections/type_collection.h"
#include "qmxml/types/big_integer.h"
#include "qmxml/types/binary_data.h"
#include "qmxml/types/date_time.h"
#include "qmxml/types/date_time_span.h"
#include "qmxml/types/decimal.h"

namespace QmXmlLib10 {

namespace detail {

// How each item type's values travel through a variant.
template <ItemType Type>
struct ItemTraits;

#define QMXML_ITEM_TRAITS(TYPE, VALUE, SETTER, GETTER)                        \
    template <>                                                             \
    struct ItemTraits<TYPE> {                                               \
        using Value = VALUE;                                                \
        static void Set(QmVariant& v, const Value& x) { v.SETTER(x); }      \
        static Value Get(const QmVariant& v) { return v.GETTER(); }         \
    };

QMXML_ITEM_TRAITS(ItemType_string, std::string, SetString, GetString)
QMXML_ITEM_TRAITS(ItemType_i1, char, SetI1, GetI1)
QMXML_ITEM_TRAITS(ItemType_i2, short, SetI2, GetI2)
QMXML_ITEM_TRAITS(ItemType_i4, std::int32_t, SetI4, GetI4)
QMXML_ITEM_TRAITS(ItemType_i8, std::int64_t, SetI8, GetI8)
QMXML_ITEM_TRAITS(ItemType_ui1, unsigned char, SetUI1, GetUI1)
QMXML_ITEM_TRAITS(ItemType_ui2, unsigned short, SetUI2, GetUI2)
QMXML_ITEM_TRAITS(ItemType_ui4, std::uint32_t, SetUI4, GetUI4)
QMXML_ITEM_TRAITS(ItemType_ui8, std::uint64_t, SetUI8, GetUI8)
QMXML_ITEM_TRAITS(ItemType_r4, float, SetR4, GetR4)
QMXML_ITEM_TRAITS(ItemType_r8, double, SetR8, GetR8)
QMXML_ITEM_TRAITS(ItemType_boolean, bool, SetBoolean, GetBoolean)
QMXML_ITEM_TRAITS(ItemType_integer, CBigInteger, SetInteger, GetInteger)
QMXML_ITEM_TRAITS(ItemType_decimal, CDecimal, SetDecimal, GetDecimal)
QMXML_ITEM_TRAITS(ItemType_duration, CDateTimeSpan, SetDuration, GetDuration)
QMXML_ITEM_TRAITS(ItemType_base64Binary, CBinaryData, SetBase64Binary, GetBase64Binary)
QMXML_ITEM_TRAITS(ItemType_hexBinary, CBinaryData, SetHexBinary, GetHexBinary)

#undef QMXML_ITEM_TRAITS

constexpr CWhitespaceUtils::WhitespaceRule BuiltInRule(ItemType type) {
    return type == ItemType_string ? CWhitespaceUtils::WhitespaceRule_Preserve
                                   : CWhitespaceUtils::WhitespaceRule_Collapse;
}

}  // namespace detail

// A collection of one fixed-size, string, number, duration or binary type.
template <ItemType Type>
class CXmlPrimitiveCol : public CXmlValueCollection<typename detail::ItemTraits<Type>::Value> {
    using Traits = detail::ItemTraits<Type>;
    using Base = CXmlValueCollection<typename Traits::Value>;

public:
    using Value = typename Traits::Value;

    CXmlPrimitiveCol(const char* elementName, const char* namespaceURI, std::int32_t minOccurs = 0,
                     std::int32_t maxOccurs = -1)
        : Base(Type, elementName, namespaceURI, minOccurs, maxOccurs, "", -1, -1, "", "", "", "", -1,
               detail::BuiltInRule(Type), "") {}
    CXmlPrimitiveCol(const char* elementName, const char* namespaceURI, std::int32_t minOccurs,
                     std::int32_t maxOccurs, const char* pattern, int minLength, int maxLength,
                     const char* minInclusive, const char* maxInclusive, const char* minExclusive,
                     const char* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule,
                     const char* format)
        : Base(Type, elementName, namespaceURI, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
               maxInclusive, minExclusive, maxExclusive, length, rule, format) {}

    void AddFromString(const std::string& text) override {
        QmVariant value;
        value.FromString(text, Type, this->GetWhitespaceRule());
        this->Check(value, text);
        this->AppendUnchecked(Traits::Get(value));
    }

protected:
    QmVariant ToVariant(const Value& value) const override {
        QmVariant v;
        Traits::Set(v, value);
        return v;
    }
};

#define QMXML_PRIMITIVE_COLLECTION(NAME, TYPE)                              \
    class NAME : public CXmlPrimitiveCol<TYPE> {                            \
    public:                                                                 \
        using CXmlPrimitiveCol<TYPE>::CXmlPrimitiveCol;                     \
    };

QMXML_PRIMITIVE_COLLECTION(CstringCol, ItemType_string)
QMXML_PRIMITIVE_COLLECTION(Ci1Col, ItemType_i1)
QMXML_PRIMITIVE_COLLECTION(Ci2Col, ItemType_i2)
QMXML_PRIMITIVE_COLLECTION(Ci4Col, ItemType_i4)
QMXML_PRIMITIVE_COLLECTION(Ci8Col, ItemType_i8)
QMXML_PRIMITIVE_COLLECTION(Cui1Col, ItemType_ui1)
QMXML_PRIMITIVE_COLLECTION(Cui2Col, ItemType_ui2)
QMXML_PRIMITIVE_COLLECTION(Cui4Col, ItemType_ui4)
QMXML_PRIMITIVE_COLLECTION(Cui8Col, ItemType_ui8)
QMXML_PRIMITIVE_COLLECTION(Cr4Col, ItemType_r4)
QMXML_PRIMITIVE_COLLECTION(Cr8Col, ItemType_r8)
QMXML_PRIMITIVE_COLLECTION(CbooleanCol, ItemType_boolean)
QMXML_PRIMITIVE_COLLECTION(CintegerCol, ItemType_integer)
QMXML_PRIMITIVE_COLLECTION(CdecimalCol, ItemType_decimal)
QMXML_PRIMITIVE_COLLECTION(CdurationCol, ItemType_duration)
QMXML_PRIMITIVE_COLLECTION(Cbase64BinaryCol, ItemType_base64Binary)
QMXML_PRIMITIVE_COLLECTION(ChexBinaryCol, ItemType_hexBinary)

#undef QMXML_PRIMITIVE_COLLECTION

// Dates of one CDateTime type. Adding a value of another date type throws
// CQmInvalidParamException "Dates added to this collection must be of type dt_date"
// (dt_dateTime, dt_time, dt_gYearMonth, dt_gMonthDay, dt_gYear, dt_gMonth, dt_gDay alike).
class CdatetimeBaseCol : public CXmlValueCollection<CDateTime> {
public:
    CDateTime::DTType GetDateType() const { return m_dateType; }
    void AddFromString(const std::string& text) override;

protected:
    CdatetimeBaseCol(CDateTime::DTType dateType, const char* elementName, const char* namespaceURI,
                     std::int32_t minOccurs, std::int32_t maxOccurs, const char* pattern, int minLength,
                     int maxLength, const char* minInclusive, const char* maxInclusive, const char* minExclusive,
                     const char* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, const char* format);

    QmVariant ToVariant(const CDateTime& value) const override;
    void ValidateValue(const CDateTime& value) const override;

private:
    CDateTime::DTType m_dateType;
};

#define QMXML_DATE_COLLECTION(NAME, DTTYPE)                                                                     \
    class NAME : public CdatetimeBaseCol {                                                                      \
    public:                                                                                                     \
        NAME(const char* elementName, const char* namespaceURI, std::int32_t minOccurs = 0,                     \
             std::int32_t maxOccurs = -1)                                                                       \
            : CdatetimeBaseCol(CDateTime::DTTYPE, elementName, namespaceURI, minOccurs, maxOccurs, "", -1, -1, \
                               "", "", "", "", -1, CWhitespaceUtils::WhitespaceRule_Collapse, "") {}           \
        NAME(const char* elementName, const char* namespaceURI, std::int32_t minOccurs, std::int32_t maxOccurs, \
             const char* pattern, int minLength, int maxLength, const char* minInclusive,                       \
             const char* maxInclusive, const char* minExclusive, const char* maxExclusive, int length,          \
             CWhitespaceUtils::WhitespaceRule rule, const char* format)                                         \
            : CdatetimeBaseCol(CDateTime::DTTYPE, elementName, namespaceURI, minOccurs, maxOccurs, pattern,    \
                               minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive,    \
                               length, rule, format) {}                                                         \
    };

QMXML_DATE_COLLECTION(CdateCol, dt_date)
QMXML_DATE_COLLECTION(CdatetimeCol, dt_dateTime)
QMXML_DATE_COLLECTION(CtimeCol, dt_time)
QMXML_DATE_COLLECTION(CdayCol, dt_gDay)
QMXML_DATE_COLLECTION(CmonthCol, dt_gMonth)
QMXML_DATE_COLLECTION(CyearCol, dt_gYear)
QMXML_DATE_COLLECTION(CmonthDayCol, dt_gMonthDay)
QMXML_DATE_COLLECTION(CyearMonthCol, dt_gYearMonth)

#undef QMXML_DATE_COLLECTION

}  // namespace QmXmlLib10
