#include "qmxml/collections/type_collection.h"

#include "qmxml/collections/primitive_collections.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/types/conversions.h"
#include "qmxml/writer/xml_writer.h"

namespace QmXmlLib10 {

CXmlTypeCollection::CXmlTypeCollection(ItemType itemType, const char* elementName, const char* namespaceURI,
                                       std::int32_t minOccurs, std::int32_t maxOccurs, const char* pattern,
                                       int minLength, int maxLength, const char* minInclusive,
                                       const char* maxInclusive, const char* minExclusive, const char* maxExclusive,
                                       int length, CWhitespaceUtils::WhitespaceRule rule, const char* format)
    : CXmlCollectionBase(elementName, namespaceURI, minOccurs, maxOccurs),
      m_itemType(itemType),
      m_restrictions(pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length),
      m_whitespaceRule(rule),
      m_format(format ? format : "") {}

void CXmlTypeCollection::Clear() {
    // From the back: removing the first value of a vector moves all the rest.
    while (GetCount() > 0) Remove(GetCount() - 1);
}

void CXmlTypeCollection::Check(const QmVariant& value) const {
    CPrimitiveRestrictions::CheckRestriction(GetItemElementName(), value, m_itemType, m_restrictions);
}

void CXmlTypeCollection::Check(const QmVariant& value, const std::string& text) const {
    CPrimitiveRestrictions::CheckRestriction(GetItemElementName(), value, m_itemType, m_restrictions, text,
                                             m_whitespaceRule);
}

void CXmlTypeCollection::CheckIndex(int index, std::int32_t count) const {
    if (index < 0 || index >= count) {
        throw CQmInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, count - 1));
    }
}

void CXmlTypeCollection::AttributesToXml_Int(CXmlWriter*, const CXmlSerializationContext&) const {}

void CXmlTypeCollection::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext&,
                                   bool) const {
    const char* name = GetItemElementName().c_str();
    const char* ns = GetNamespace().c_str();
    for (int i = 0, n = GetCount(); i < n; ++i) {
        writer->StartElement(name, ns);
        writer->WriteText(GetItemAsString(i).c_str(), m_itemType);
        writer->EndElement();
    }
}

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                             const CXmlSerializationContext& ctx, bool) {
    CXmlElement* const first = current;
    while (current && DoesElementNameMatch(ctx, current, GetItemElementName(), GetNamespace())) {
        AddFromString(current->GetText());
        current = current->GetNextSiblingElement();
        CXmlObjectAccess::ReleaseReadItems(parent, first, current);
    }
    return current;
}

namespace {

const char* DateTypeName(CDateTime::DTType type) {
    switch (type) {
        case CDateTime::dt_dateTime: return "dt_dateTime";
        case CDateTime::dt_date: return "dt_date";
        case CDateTime::dt_gYearMonth: return "dt_gYearMonth";
        case CDateTime::dt_gYear: return "dt_gYear";
        case CDateTime::dt_time: return "dt_time";
        case CDateTime::dt_gDay: return "dt_gDay";
        case CDateTime::dt_gMonth: return "dt_gMonth";
        case CDateTime::dt_gMonthDay: return "dt_gMonthDay";
        default: return "dt_none";
    }
}

ItemType DateItemType(CDateTime::DTType type) {
    switch (type) {
        case CDateTime::dt_dateTime: return ItemType_datetime;
        case CDateTime::dt_date: return ItemType_date;
        case CDateTime::dt_gYearMonth: return ItemType_yearMonth;
        case CDateTime::dt_gYear: return ItemType_year;
        case CDateTime::dt_time: return ItemType_time;
        case CDateTime::dt_gDay: return ItemType_day;
        case CDateTime::dt_gMonth: return ItemType_month;
        case CDateTime::dt_gMonthDay: return ItemType_monthDay;
        default: return ItemType_None;
    }
}

}  // namespace

CdatetimeBaseCol::CdatetimeBaseCol(CDateTime::DTType dateType, const char* elementName, const char* namespaceURI,
                                   std::int32_t minOccurs, std::int32_t maxOccurs, const char* pattern,
                                   int minLength, int maxLength, const char* minInclusive, const char* maxInclusive,
                                   const char* minExclusive, const char* maxExclusive, int length,
                                   CWhitespaceUtils::WhitespaceRule rule, const char* format)
    : CXmlValueCollection<CDateTime>(DateItemType(dateType), elementName, namespaceURI, minOccurs, maxOccurs,
                                     pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive,
                                     maxExclusive, length, rule, format),
      m_dateType(dateType) {}

void CdatetimeBaseCol::ValidateValue(const CDateTime& value) const {
    if (value.GetType() != m_dateType) {
        throw CQmInvalidParamException(
            FormatString("Dates added to this collection must be of type %s", DateTypeName(m_dateType)));
    }
}

QmVariant CdatetimeBaseCol::ToVariant(const CDateTime& value) const {
    QmVariant v;
    switch (m_dateType) {
        case CDateTime::dt_dateTime: v.SetDateTime(value); break;
        case CDateTime::dt_date: v.SetDate(value); break;
        case CDateTime::dt_time: v.SetTime(value); break;
        case CDateTime::dt_gYearMonth: v.SetYearMonth(value); break;
        case CDateTime::dt_gMonthDay: v.SetMonthDay(value); break;
        case CDateTime::dt_gYear: v.SetYear(static_cast<unsigned short>(value.GetYear())); break;
        case CDateTime::dt_gMonth: v.SetMonth(value.GetMonth()); break;
        case CDateTime::dt_gDay: v.SetDay(value.GetDay()); break;
        default: break;
    }
    return v;
}

void CdatetimeBaseCol::AddFromString(const std::string& text) {
    const CWhitespaceUtils::WhitespaceRule rule = GetWhitespaceRule();
    CDateTime value;
    switch (m_dateType) {
        case CDateTime::dt_dateTime: value = CConversions::datetimeFromString(text, rule); break;
        case CDateTime::dt_date: value = CConversions::dateFromString(text, rule); break;
        case CDateTime::dt_time: value = CConversions::timeFromString(text, rule); break;
        case CDateTime::dt_gYearMonth: value = CConversions::yearMonthFromString(text, rule); break;
        case CDateTime::dt_gMonthDay: value = CConversions::monthDayFromString(text, rule); break;
        default: value.ParseXSDDate(CWhitespaceUtils::ApplyRule(rule, text).c_str()); break;
    }
    Validate(value);
    AppendUnchecked(std::move(value));
}

}  // namespace QmXmlLib10
