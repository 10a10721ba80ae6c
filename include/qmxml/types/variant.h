// A value of any primitive item type, or a bound object or collection, with a
// nil flag. Generic code (untyped members, enumerations, default and fixed
// values) carries its values in it.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include <qmxml/collections/xml_collection.h>
#include <qmxml/core/enums.h>
#include <qmxml/core/object_base.h>
#include <qmxml/core/smart_ptr.h>
#include <qmxml/types/big_integer.h>
#include <qmxml/types/binary_data.h>
#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>
#include <qmxml/types/decimal.h>
#include <qmxml/types/whitespace.h>

namespace QmXmlLib10 {

// The type is an ItemType (1..26), kXmlObjectType or kXmlCollectionType, or 0
// when the variant holds nothing.
//
// Nil: SetNil drops the value, keeps the type and sets the flag; every setter,
// FromString and SetInvalid clear the flag. Clear drops the value and keeps
// both the type and the flag.
//
// Getters: each returns the value when the variant's type is the getter's
// own (GetI4 needs "i4", GetChar "char", GetYear "year"; types are never
// converted into each other). After Clear or SetNil a getter of the held type
// returns the type's empty value (0, "", an empty CBinaryData, a CDateTime of
// type dt_none, a null pointer). Any other type throws
// CQmInvalidStateException "Cannot read a variant of type [%s] as [%s]", naming
// the held and the asked type ("none", "object" and "collection" for 0 and the
// two object types).
//
// Copies are deep for values and share bound objects and collections through
// their reference count.
class QmVariant {
public:
    // Type numbers of a bound object and a bound collection, outside the item types.
    static constexpr int kXmlObjectType = 27;
    static constexpr int kXmlCollectionType = 28;

    QmVariant() = default;
    // Throw CQmException "Unknown Type" for a source whose type is none of the above.
    QmVariant(const QmVariant& other);
    QmVariant& operator=(const QmVariant& other);
    // The source is left invalid.
    QmVariant(QmVariant&& other) noexcept;
    QmVariant& operator=(QmVariant&& other) noexcept;
    ~QmVariant() = default;

    void Clear();
    // Clear, type 0, nil flag off.
    void SetInvalid();
    // True when the type is not 0 or the nil flag is set.
    bool IsValid() const { return m_type != ItemType_None || m_nil; }
    void SetNil();
    bool IsNil() const { return m_nil; }

    // The name of the item type ("hexBinary" ... "integer"); any other type
    // (0, objects, collections) throws CQmException "Invalid Type %d".
    std::string GetType() const;
    ItemType GetTypeAsEnum() const { return m_type; }

    void SetHexBinary(const CBinaryData& value);
    void SetBase64Binary(const CBinaryData& value);
    void SetI1(char value);
    void SetI2(short value);
    void SetI4(std::int32_t value);
    void SetI8(std::int64_t value);
    void SetUI1(unsigned char value);
    void SetUI2(unsigned short value);
    void SetUI4(std::uint32_t value);
    void SetUI8(std::uint64_t value);
    void SetR4(float value);
    void SetR8(double value);
    void SetDuration(const CDateTimeSpan& value);
    void SetYearMonth(const CDateTime& value);
    void SetMonthDay(const CDateTime& value);
    // The year as yearFromString gives it: the signed year's 16-bit pattern.
    void SetYear(unsigned short value);
    void SetMonth(unsigned char value);
    void SetDay(unsigned char value);
    void SetDate(const CDateTime& value);
    void SetDateTime(const CDateTime& value);
    void SetTime(const CDateTime& value);
    void SetChar(char value);
    void SetString(std::string value);
    void SetBoolean(bool value);
    void SetDecimal(const CDecimal& value);
    void SetInteger(const CBigInteger& value);
    // The same, taking the value over instead of copying it.
    void SetHexBinary(CBinaryData&& value);
    void SetBase64Binary(CBinaryData&& value);
    void SetDecimal(CDecimal&& value);
    void SetInteger(CBigInteger&& value);
    // Takes a reference on the object (null is kept as null).
    void SetXmlObject(CXmlObjectBase* value);
    void SetXmlCollection(CXmlCollectionBase* value);

    const CBinaryData& GetHexBinary() const;
    const CBinaryData& GetBase64Binary() const;
    char GetI1() const;
    short GetI2() const;
    std::int32_t GetI4() const;
    std::int64_t GetI8() const;
    unsigned char GetUI1() const;
    unsigned short GetUI2() const;
    std::uint32_t GetUI4() const;
    std::uint64_t GetUI8() const;
    float GetR4() const;
    double GetR8() const;
    const CDateTimeSpan& GetDuration() const;
    const CDateTime& GetYearMonth() const;
    const CDateTime& GetMonthDay() const;
    unsigned short GetYear() const;
    unsigned char GetMonth() const;
    unsigned char GetDay() const;
    const CDateTime& GetDate() const;
    const CDateTime& GetDateTime() const;
    const CDateTime& GetTime() const;
    char GetChar() const;
    const std::string& GetString() const;
    bool GetBoolean() const;
    const CDecimal& GetDecimal() const;
    const CBigInteger& GetInteger() const;
    CSmartPtr<CXmlObjectBase> GetXmlObject() const;
    CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;

    // Like the getters, but move the value out: a property setter that stores
    // a variant's value and drops the variant copies no heap memory. The type
    // rules and messages are the getters'; the variant keeps its type and then
    // holds the type's empty value.
    std::string TakeString();
    CBinaryData TakeHexBinary();
    CBinaryData TakeBase64Binary();
    CDecimal TakeDecimal();
    CBigInteger TakeInteger();

    // The lexical form through CConversions. The format applies to r4 and r8
    // (a printf format, see r8ToString) and to decimal (the number of fraction
    // digits, see decimalToString); other types ignore it. Null or "" is the
    // default form. A nil variant gives "". Types 0, objects and collections
    // throw CQmException "Invalid Type %d to convert to string". Conversion
    // errors pass through.
    std::string ToString(const char* format = nullptr) const;

    // Parses text with the type's ...FromString under the rule and stores the
    // result under that type. Types outside 1..26 throw CQmException
    // "Invalid Type %d to convert to string"; conversion errors pass through.
    // On failure the variant is unchanged.
    void FromString(const std::string& text, ItemType type,
                    CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_None);

private:
    using ObjectPtr = CSmartPtr<CXmlObjectBase>;
    using CollectionPtr = CSmartPtr<CXmlCollectionBase>;
    // One alternative per native type; the type number tells which item type
    // it stands for (i1 and char share char, ui1/month/day unsigned char, ...).
    using Slot = std::variant<std::monostate, bool, char, short, unsigned char, unsigned short, std::int32_t,
                              std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string, CBinaryData,
                              CDateTime, CDateTimeSpan, CDecimal, CBigInteger, ObjectPtr, CollectionPtr>;

    template <class T>
    void Store(int type, T&& value);
    template <class T>
    const T& Fetch(int type) const;
    template <class T>
    T Take(int type);

    bool m_nil = false;
    ItemType m_type = ItemType_None;
    Slot m_value;
};

}  // namespace QmXmlLib10
