#include <qmxml/types/variant.h>

#include <type_traits>
#include <utility>

#include <qmxml/core/exception.h>
#include <qmxml/types/conversions.h>

namespace QmXmlLib10 {

namespace {

// Indexed by the item type number.
const char* const kTypeNames[] = {
    nullptr,     "hexBinary", "base64Binary", "i1",   "i2",       "i4",    "i8",   "ui1",       "ui2",
    "ui4",       "ui8",       "r4",           "r8",   "duration", "yearMonth", "monthDay", "year", "month",
    "day",       "date",      "datetime",     "time", "char",     "string", "boolean", "decimal", "integer",
};

bool IsItemType(int type) { return type >= ItemType_hexBinary && type <= ItemType_integer; }

bool IsKnownType(int type) {
    return type == ItemType_None || IsItemType(type) || type == QmVariant::kXmlObjectType ||
           type == QmVariant::kXmlCollectionType;
}

// Names for the wrong-type message, which must not throw itself.
const char* DescribeType(int type) {
    if (IsItemType(type)) return kTypeNames[type];
    if (type == QmVariant::kXmlObjectType) return "object";
    if (type == QmVariant::kXmlCollectionType) return "collection";
    return "none";
}

[[noreturn]] void ThrowWrongType(int held, int asked) {
    throw CQmInvalidStateException(
        FormatString("Cannot read a variant of type [%s] as [%s]", DescribeType(held), DescribeType(asked)));
}

}  // namespace

QmVariant::QmVariant(const QmVariant& other) : m_nil(other.m_nil), m_type(other.m_type) {
    if (!IsKnownType(other.m_type)) throw CQmException("Unknown Type");
    m_value = other.m_value;
}

QmVariant& QmVariant::operator=(const QmVariant& other) {
    if (this == &other) return *this;
    if (!IsKnownType(other.m_type)) throw CQmException("Unknown Type");
    m_value = other.m_value;  // may throw; the type and flag follow only on success
    m_type = other.m_type;
    m_nil = other.m_nil;
    return *this;
}

QmVariant::QmVariant(QmVariant&& other) noexcept
    : m_nil(std::exchange(other.m_nil, false)),
      m_type(std::exchange(other.m_type, ItemType_None)),
      m_value(std::exchange(other.m_value, Slot{})) {}

QmVariant& QmVariant::operator=(QmVariant&& other) noexcept {
    if (this == &other) return *this;
    m_value = std::exchange(other.m_value, Slot{});
    m_type = std::exchange(other.m_type, ItemType_None);
    m_nil = std::exchange(other.m_nil, false);
    return *this;
}

void QmVariant::Clear() { m_value = std::monostate{}; }

void QmVariant::SetInvalid() {
    Clear();
    m_type = ItemType_None;
    m_nil = false;
}

void QmVariant::SetNil() {
    Clear();
    m_nil = true;
}

std::string QmVariant::GetType() const {
    if (!IsItemType(m_type)) throw CQmException(FormatString("Invalid Type %d", static_cast<int>(m_type)));
    return kTypeNames[m_type];
}

template <class T>
void QmVariant::Store(int type, T&& value) {
    using Value = std::decay_t<T>;
    if constexpr (std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>) {
        // Copying first leaves the variant as it was if the copy throws; the
        // rest cannot throw. A variant usually holds nothing or the same type
        // already, which needs no generic slot-to-slot move.
        Value copy(std::forward<T>(value));
        if (Value* held = std::get_if<Value>(&m_value))
            *held = std::move(copy);
        else
            m_value.template emplace<Value>(std::move(copy));
    } else {
        // Building the slot first leaves the variant as it was if a copy throws.
        Slot slot(std::in_place_type<Value>, std::forward<T>(value));
        m_value = std::move(slot);
    }
    m_type = static_cast<ItemType>(type);
    m_nil = false;
}

template <class T>
const T& QmVariant::Fetch(int type) const {
    if (m_type != type) ThrowWrongType(m_type, type);
    if (const T* held = std::get_if<T>(&m_value)) return *held;
    static const T empty{};  // the value of a cleared or nil variant
    return empty;
}

template <class T>
T QmVariant::Take(int type) {
    if (m_type != type) ThrowWrongType(m_type, type);
    T* held = std::get_if<T>(&m_value);
    if (held == nullptr) return T{};
    T value(std::move(*held));
    *held = T{};  // what a moved-from value holds is not specified
    return value;
}

void QmVariant::SetHexBinary(const CBinaryData& value) { Store(ItemType_hexBinary, value); }
void QmVariant::SetBase64Binary(const CBinaryData& value) { Store(ItemType_base64Binary, value); }
void QmVariant::SetI1(char value) { Store(ItemType_i1, value); }
void QmVariant::SetI2(short value) { Store(ItemType_i2, value); }
void QmVariant::SetI4(std::int32_t value) { Store(ItemType_i4, value); }
void QmVariant::SetI8(std::int64_t value) { Store(ItemType_i8, value); }
void QmVariant::SetUI1(unsigned char value) { Store(ItemType_ui1, value); }
void QmVariant::SetUI2(unsigned short value) { Store(ItemType_ui2, value); }
void QmVariant::SetUI4(std::uint32_t value) { Store(ItemType_ui4, value); }
void QmVariant::SetUI8(std::uint64_t value) { Store(ItemType_ui8, value); }
void QmVariant::SetR4(float value) { Store(ItemType_r4, value); }
void QmVariant::SetR8(double value) { Store(ItemType_r8, value); }
void QmVariant::SetDuration(const CDateTimeSpan& value) { Store(ItemType_duration, value); }
void QmVariant::SetYearMonth(const CDateTime& value) { Store(ItemType_yearMonth, value); }
void QmVariant::SetMonthDay(const CDateTime& value) { Store(ItemType_monthDay, value); }
void QmVariant::SetYear(unsigned short value) { Store(ItemType_year, value); }
void QmVariant::SetMonth(unsigned char value) { Store(ItemType_month, value); }
void QmVariant::SetDay(unsigned char value) { Store(ItemType_day, value); }
void QmVariant::SetDate(const CDateTime& value) { Store(ItemType_date, value); }
void QmVariant::SetDateTime(const CDateTime& value) { Store(ItemType_datetime, value); }
void QmVariant::SetTime(const CDateTime& value) { Store(ItemType_time, value); }
void QmVariant::SetChar(char value) { Store(ItemType_char, value); }
void QmVariant::SetString(std::string value) { Store(ItemType_string, std::move(value)); }
void QmVariant::SetBoolean(bool value) { Store(ItemType_boolean, value); }
void QmVariant::SetDecimal(const CDecimal& value) { Store(ItemType_decimal, value); }
void QmVariant::SetInteger(const CBigInteger& value) { Store(ItemType_integer, value); }
void QmVariant::SetHexBinary(CBinaryData&& value) { Store(ItemType_hexBinary, std::move(value)); }
void QmVariant::SetBase64Binary(CBinaryData&& value) { Store(ItemType_base64Binary, std::move(value)); }
void QmVariant::SetDecimal(CDecimal&& value) { Store(ItemType_decimal, std::move(value)); }
void QmVariant::SetInteger(CBigInteger&& value) { Store(ItemType_integer, std::move(value)); }
void QmVariant::SetXmlObject(CXmlObjectBase* value) { Store(kXmlObjectType, ObjectPtr(value)); }
void QmVariant::SetXmlCollection(CXmlCollectionBase* value) { Store(kXmlCollectionType, CollectionPtr(value)); }

const CBinaryData& QmVariant::GetHexBinary() const { return Fetch<CBinaryData>(ItemType_hexBinary); }
const CBinaryData& QmVariant::GetBase64Binary() const { return Fetch<CBinaryData>(ItemType_base64Binary); }
char QmVariant::GetI1() const { return Fetch<char>(ItemType_i1); }
short QmVariant::GetI2() const { return Fetch<short>(ItemType_i2); }
std::int32_t QmVariant::GetI4() const { return Fetch<std::int32_t>(ItemType_i4); }
std::int64_t QmVariant::GetI8() const { return Fetch<std::int64_t>(ItemType_i8); }
unsigned char QmVariant::GetUI1() const { return Fetch<unsigned char>(ItemType_ui1); }
unsigned short QmVariant::GetUI2() const { return Fetch<unsigned short>(ItemType_ui2); }
std::uint32_t QmVariant::GetUI4() const { return Fetch<std::uint32_t>(ItemType_ui4); }
std::uint64_t QmVariant::GetUI8() const { return Fetch<std::uint64_t>(ItemType_ui8); }
float QmVariant::GetR4() const { return Fetch<float>(ItemType_r4); }
double QmVariant::GetR8() const { return Fetch<double>(ItemType_r8); }
const CDateTimeSpan& QmVariant::GetDuration() const { return Fetch<CDateTimeSpan>(ItemType_duration); }
const CDateTime& QmVariant::GetYearMonth() const { return Fetch<CDateTime>(ItemType_yearMonth); }
const CDateTime& QmVariant::GetMonthDay() const { return Fetch<CDateTime>(ItemType_monthDay); }
unsigned short QmVariant::GetYear() const { return Fetch<unsigned short>(ItemType_year); }
unsigned char QmVariant::GetMonth() const { return Fetch<unsigned char>(ItemType_month); }
unsigned char QmVariant::GetDay() const { return Fetch<unsigned char>(ItemType_day); }
const CDateTime& QmVariant::GetDate() const { return Fetch<CDateTime>(ItemType_date); }
const CDateTime& QmVariant::GetDateTime() const { return Fetch<CDateTime>(ItemType_datetime); }
const CDateTime& QmVariant::GetTime() const { return Fetch<CDateTime>(ItemType_time); }
char QmVariant::GetChar() const { return Fetch<char>(ItemType_char); }
const std::string& QmVariant::GetString() const { return Fetch<std::string>(ItemType_string); }
bool QmVariant::GetBoolean() const { return Fetch<bool>(ItemType_boolean); }
const CDecimal& QmVariant::GetDecimal() const { return Fetch<CDecimal>(ItemType_decimal); }
const CBigInteger& QmVariant::GetInteger() const { return Fetch<CBigInteger>(ItemType_integer); }
CSmartPtr<CXmlObjectBase> QmVariant::GetXmlObject() const { return Fetch<ObjectPtr>(kXmlObjectType); }
CSmartPtr<CXmlCollectionBase> QmVariant::GetXmlCollection() const {
    return Fetch<CollectionPtr>(kXmlCollectionType);
}

std::string QmVariant::TakeString() { return Take<std::string>(ItemType_string); }
CBinaryData QmVariant::TakeHexBinary() { return Take<CBinaryData>(ItemType_hexBinary); }
CBinaryData QmVariant::TakeBase64Binary() { return Take<CBinaryData>(ItemType_base64Binary); }
CDecimal QmVariant::TakeDecimal() { return Take<CDecimal>(ItemType_decimal); }
CBigInteger QmVariant::TakeInteger() { return Take<CBigInteger>(ItemType_integer); }

std::string QmVariant::ToString(const char* format) const {
    if (m_nil) return std::string();
    const std::string fmt = format ? format : "";
    using C = CConversions;
    switch (m_type) {
        case ItemType_hexBinary: return C::hexBinaryToString(GetHexBinary());
        case ItemType_base64Binary: return C::base64BinaryToString(GetBase64Binary());
        case ItemType_i1: return C::i1ToString(GetI1());
        case ItemType_i2: return C::i2ToString(GetI2());
        case ItemType_i4: return C::i4ToString(GetI4());
        case ItemType_i8: return C::i8ToString(GetI8());
        case ItemType_ui1: return C::ui1ToString(GetUI1());
        case ItemType_ui2: return C::ui2ToString(GetUI2());
        case ItemType_ui4: return C::ui4ToString(GetUI4());
        case ItemType_ui8: return C::ui8ToString(GetUI8());
        case ItemType_r4: return C::r4ToString(GetR4(), fmt);
        case ItemType_r8: return C::r8ToString(GetR8(), fmt);
        case ItemType_duration: return C::durationToString(GetDuration());
        case ItemType_yearMonth: return GetYearMonth().ToString();
        case ItemType_monthDay: return GetMonthDay().ToString();
        case ItemType_year: return C::yearToString(GetYear());
        case ItemType_month: return C::monthToString(GetMonth());
        case ItemType_day: return C::dayToString(GetDay());
        case ItemType_date: return C::dateToString(GetDate());
        case ItemType_datetime: return GetDateTime().ToString();
        case ItemType_time: return GetTime().ToString();
        case ItemType_char: return C::charToString(GetChar());
        case ItemType_string: return C::stringToString(GetString());
        case ItemType_boolean: return C::booleanToString(GetBoolean());
        case ItemType_decimal: return C::decimalToString(GetDecimal(), fmt);
        case ItemType_integer: return C::integerToString(GetInteger());
        default:
            throw CQmException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
    }
}

void QmVariant::FromString(const std::string& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
    using C = CConversions;
    switch (type) {
        case ItemType_hexBinary: SetHexBinary(C::hexBinaryFromString(text, rule)); break;
        case ItemType_base64Binary: SetBase64Binary(C::base64BinaryFromString(text, rule)); break;
        case ItemType_i1: SetI1(C::i1FromString(text, rule)); break;
        case ItemType_i2: SetI2(C::i2FromString(text, rule)); break;
        case ItemType_i4: SetI4(C::i4FromString(text, rule)); break;
        case ItemType_i8: SetI8(C::i8FromString(text, rule)); break;
        case ItemType_ui1: SetUI1(C::ui1FromString(text, rule)); break;
        case ItemType_ui2: SetUI2(C::ui2FromString(text, rule)); break;
        case ItemType_ui4: SetUI4(C::ui4FromString(text, rule)); break;
        case ItemType_ui8: SetUI8(C::ui8FromString(text, rule)); break;
        case ItemType_r4: SetR4(C::r4FromString(text, rule)); break;
        case ItemType_r8: SetR8(C::r8FromString(text, rule)); break;
        case ItemType_duration: SetDuration(C::durationFromString(text, rule)); break;
        case ItemType_yearMonth: SetYearMonth(C::yearMonthFromString(text, rule)); break;
        case ItemType_monthDay: SetMonthDay(C::monthDayFromString(text, rule)); break;
        case ItemType_year: SetYear(C::yearFromString(text, rule)); break;
        case ItemType_month: SetMonth(C::monthFromString(text, rule)); break;
        case ItemType_day: SetDay(C::dayFromString(text, rule)); break;
        case ItemType_date: SetDate(C::dateFromString(text, rule)); break;
        case ItemType_datetime: SetDateTime(C::datetimeFromString(text, rule)); break;
        case ItemType_time: SetTime(C::timeFromString(text, rule)); break;
        case ItemType_char: SetChar(C::charFromString(text, rule)); break;
        case ItemType_string: SetString(C::stringFromString(text, rule)); break;
        case ItemType_boolean: SetBoolean(C::booleanFromString(text, rule)); break;
        case ItemType_decimal: SetDecimal(C::decimalFromString(text, rule)); break;
        case ItemType_integer: SetInteger(C::integerFromString(text, rule)); break;
        default:
            throw CQmException(FormatString("Invalid Type %d to convert to string", static_cast<int>(type)));
    }
}

}  // namespace QmXmlLib10
