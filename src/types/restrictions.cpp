#include <qmxml/types/restrictions.h>

#include <array>
#include <atomic>
#include <mutex>
#include <optional>
#include <type_traits>

#include <qmxml/core/exception.h>
#include <qmxml/types/big_integer.h>
#include <qmxml/types/binary_data.h>
#include <qmxml/types/conversions.h>
#include <qmxml/types/date_time.h>
#include <qmxml/types/date_time_span.h>
#include <qmxml/types/decimal.h>
#include <qmxml/types/variant.h>

#include "platform/charset.h"
#include "types/pattern_matcher.h"
#include "types/whitespace_rule.h"

namespace QmXmlLib10 {

namespace {

using C = CConversions;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// The outcome of comparing a value with a bound; Unordered fails every bound.
enum class Order { Less, Equal, Greater, Unordered };

template <class T>
Order CompareNative(const T& value, const T& bound) {
    if (value < bound) return Order::Less;
    if (value > bound) return Order::Greater;
    if (value == bound) return Order::Equal;
    return Order::Unordered;  // NaN
}

Order FromCompareResult(CDateTime::DTCompareResult result) {
    switch (result) {
        case CDateTime::cmp_less: return Order::Less;
        case CDateTime::cmp_equal: return Order::Equal;
        case CDateTime::cmp_greater: return Order::Greater;
        default: return Order::Unordered;
    }
}

// Each set bound is parsed when its turn comes, so a bad bound text is
// reported only once the bounds before it have passed.
// The bounds in checking order; BoundsHold's parse gets the index too.
enum BoundIndex { kMinInclusive, kMaxInclusive, kMinExclusive, kMaxExclusive, kBoundCount };

template <class Parse, class Compare>
bool BoundsHold(const CPrimitiveRestrictions& facets, Parse parse, Compare compare) {
    if (!facets.GetMinInclusive().empty()) {
        const Order o = compare(parse(kMinInclusive, facets.GetMinInclusive()));
        if (o != Order::Greater && o != Order::Equal) return false;
    }
    if (!facets.GetMaxInclusive().empty()) {
        const Order o = compare(parse(kMaxInclusive, facets.GetMaxInclusive()));
        if (o != Order::Less && o != Order::Equal) return false;
    }
    if (!facets.GetMinExclusive().empty()) {
        if (compare(parse(kMinExclusive, facets.GetMinExclusive())) != Order::Greater) return false;
    }
    if (!facets.GetMaxExclusive().empty()) {
        if (compare(parse(kMaxExclusive, facets.GetMaxExclusive())) != Order::Less) return false;
    }
    return true;
}

// Bounds of a type compared with its native operators. Bounds parsed before
// (`parsed`, indexed by BoundIndex) are taken from there; the others are
// parsed here, so a bad text throws exactly when its turn comes.
template <class T, class Parse, class Stored = T>
bool NativeBoundsHold(const CPrimitiveRestrictions& facets, const T& value, Parse parse,
                      const std::optional<Stored>* parsed = nullptr) {
    return BoundsHold(
        facets,
        [&](int index, const std::string& text) {
            if (parsed && parsed[index]) return static_cast<T>(*parsed[index]);
            return static_cast<T>(parse(text, kCollapse));
        },
        [&](const T& bound) { return CompareNative(value, bound); });
}

template <class Parse>
bool DateBoundsHold(const CPrimitiveRestrictions& facets, const CDateTime& value, Parse parse) {
    return BoundsHold(
        facets, [&](int, const std::string& text) { return parse(text, kCollapse); },
        [&](const CDateTime& bound) { return FromCompareResult(value.CompareTo(bound)); });
}

bool LengthsHold(const CPrimitiveRestrictions& facets, std::size_t count) {
    // Facets are ints; a negative one is unset.
    const long long n = static_cast<long long>(count);
    if (facets.GetMinLength() > -1 && n < facets.GetMinLength()) return false;
    if (facets.GetMaxLength() > -1 && n > facets.GetMaxLength()) return false;
    if (facets.GetLength() > -1 && n != facets.GetLength()) return false;
    return true;
}

[[noreturn]] void Fail(const std::string& message) { throw CQmValidationException(message); }

[[noreturn]] void FailText(const std::string& memberName, const std::string& value) {
    Fail(FormatString("Invalid Value for %s [%s]", memberName.c_str(), value.c_str()));
}

[[noreturn]] void FailSigned(const std::string& memberName, long long value) {
    Fail(FormatString("Invalid Value for %s [%lld]", memberName.c_str(), value));
}

[[noreturn]] void FailUnsigned(const std::string& memberName, unsigned long long value) {
    Fail(FormatString("Invalid Value for %s [%llu]", memberName.c_str(), value));
}

[[noreturn]] void FailReal(const std::string& memberName, double value) {
    Fail(FormatString("Invalid Value for %s [%f]", memberName.c_str(), value));
}

void CheckDateValue(const std::string& memberName, const CDateTime& value, const CPrimitiveRestrictions& facets,
                    CDateTime (*parse)(const std::string&, CWhitespaceUtils::WhitespaceRule)) {
    if (!DateBoundsHold(facets, value, parse)) FailText(memberName, value.ToString());
}

}  // namespace

// Lengths, then the pattern, on a lexical form.
void CPrimitiveRestrictions::CheckLexical(const std::string& memberName, const std::string& value,
                                          const CPrimitiveRestrictions& facets) {
    if (!LengthsHold(facets, value.size())) FailText(memberName, value);
    if (facets.GetPattern().empty() || value.empty()) return;
    bool matched = false;
    try {
        matched = facets.MatchesOwnPattern(value);
    } catch (const CQmException& e) {
        Fail(FormatString("%s\nInvalid Value for %s [%s]", e.GetMessage().c_str(), memberName.c_str(),
                          value.c_str()));
    }
    if (!matched) FailText(memberName, value);
}

namespace {

void CheckBinary(const std::string& memberName, const CBinaryData& value, const CPrimitiveRestrictions& facets) {
    if (!LengthsHold(facets, value.GetLength())) FailText(memberName, C::hexBinaryToString(value));
}

std::string OrEmpty(const char* text) { return text ? text : ""; }

bool IsUnrestricted(const CPrimitiveRestrictions& facets) {
    return facets.GetPattern().empty() && facets.GetMinLength() < 0 && facets.GetMaxLength() < 0 &&
           facets.GetLength() < 0 && facets.GetMinInclusive().empty() && facets.GetMaxInclusive().empty() &&
           facets.GetMinExclusive().empty() && facets.GetMaxExclusive().empty();
}

}  // namespace

CPrimitiveRestrictions::CPrimitiveRestrictions(const char* pattern, int minLength, int maxLength,
                                               const char* minInclusive, const char* maxInclusive,
                                               const char* minExclusive, const char* maxExclusive, int length)
    : m_pattern(OrEmpty(pattern)),
      m_minLength(minLength),
      m_maxLength(maxLength),
      m_minInclusive(OrEmpty(minInclusive)),
      m_maxInclusive(OrEmpty(maxInclusive)),
      m_minExclusive(OrEmpty(minExclusive)),
      m_maxExclusive(OrEmpty(maxExclusive)),
      m_length(length),
      m_prepared(std::make_shared<CPrepared>()) {}

CPrimitiveRestrictions::~CPrimitiveRestrictions() = default;

CValueRule::~CValueRule() = default;

// Filled at most once each, by the first check that needs it. std::call_once
// costs a good part of a short match even when done, so a flag set after
// filling lets later checks skip it.
struct CPrimitiveRestrictions::CPrepared {
    std::once_flag patternOnce;
    std::atomic<bool> patternReady{false};
    std::shared_ptr<const patterns::Compiled> pattern;
    // The bounds as the first integer check parsed them, for its item type
    // only; a bound that did not parse stays empty.
    std::once_flag boundsOnce;
    std::atomic<bool> boundsReady{false};
    ItemType boundsType = ItemType_None;
    std::array<std::optional<std::int64_t>, kBoundCount> signedBounds;
    std::array<std::optional<std::uint64_t>, kBoundCount> unsignedBounds;
};

void CPrimitiveRestrictions::Changed() { m_prepared = std::make_shared<CPrepared>(); }

bool CPrimitiveRestrictions::MatchesOwnPattern(const std::string& value) const {
    // The compiled pattern is kept for UTF-8 local text only.
    if (!m_prepared || !platform::LocalIsUtf8()) return MatchesPattern(value, m_pattern);
    CPrepared& prepared = *m_prepared;
    if (!prepared.patternReady.load(std::memory_order_acquire)) {
        std::call_once(prepared.patternOnce, [&] {
            prepared.pattern = patterns::LookupUtf8(m_pattern);
            prepared.patternReady.store(true, std::memory_order_release);
        });
    }
    return patterns::MatchPrepared(*prepared.pattern, value, m_pattern);
}

template <class T, class Parse>
const std::optional<T>* CPrimitiveRestrictions::PreparedBounds(ItemType type, Parse parse) const {
    if (!m_prepared) return nullptr;
    CPrepared& prepared = *m_prepared;
    if (!prepared.boundsReady.load(std::memory_order_acquire)) {
        std::call_once(prepared.boundsOnce, [&] {
            const std::string* texts[kBoundCount] = {&m_minInclusive, &m_maxInclusive, &m_minExclusive,
                                                     &m_maxExclusive};
            for (int i = 0; i < kBoundCount; ++i) {
                if (texts[i]->empty()) continue;
                try {
                    const auto bound = parse(*texts[i], kCollapse);
                    if constexpr (std::is_signed_v<T>) {
                        prepared.signedBounds[i] = bound;
                    } else {
                        prepared.unsignedBounds[i] = bound;
                    }
                } catch (const CQmException&) {
                    // Parsed again, and reported, when the check reaches it.
                }
            }
            prepared.boundsType = type;
            prepared.boundsReady.store(true, std::memory_order_release);
        });
    }
    if (prepared.boundsType != type) return nullptr;
    if constexpr (std::is_signed_v<T>) {
        return prepared.signedBounds.data();
    } else {
        return prepared.unsignedBounds.data();
    }
}

bool CPrimitiveRestrictions::MatchesPattern(const std::string& value, const std::string& xsdPattern) {
    return patterns::Match(value, xsdPattern);
}

void CPrimitiveRestrictions::CheckHexBinary(const std::string& memberName, const CBinaryData& value,
                                            const CPrimitiveRestrictions& facets) {
    CheckBinary(memberName, value, facets);
}

void CPrimitiveRestrictions::CheckBase64Binary(const std::string& memberName, const CBinaryData& value,
                                               const CPrimitiveRestrictions& facets) {
    CheckBinary(memberName, value, facets);
}

void CPrimitiveRestrictions::CheckI1(const std::string& memberName, char value, const CPrimitiveRestrictions& facets) {
    // i1 is signed whatever the platform's char is.
    const auto v = static_cast<signed char>(value);
    const auto* parsed = facets.PreparedBounds<std::int64_t>(ItemType_i1, C::i1FromString);
    if (!NativeBoundsHold(facets, v, C::i1FromString, parsed)) FailSigned(memberName, v);
}

void CPrimitiveRestrictions::CheckI2(const std::string& memberName, short value,
                                     const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::int64_t>(ItemType_i2, C::i2FromString);
    if (!NativeBoundsHold(facets, value, C::i2FromString, parsed)) FailSigned(memberName, value);
}

void CPrimitiveRestrictions::CheckI4(const std::string& memberName, std::int32_t value,
                                     const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::int64_t>(ItemType_i4, C::i4FromString);
    if (!NativeBoundsHold(facets, value, C::i4FromString, parsed)) FailSigned(memberName, value);
}

void CPrimitiveRestrictions::CheckI8(const std::string& memberName, std::int64_t value,
                                     const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::int64_t>(ItemType_i8, C::i8FromString);
    if (!NativeBoundsHold(facets, value, C::i8FromString, parsed)) FailText(memberName, C::i8ToString(value));
}

void CPrimitiveRestrictions::CheckUI1(const std::string& memberName, unsigned char value,
                                      const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::uint64_t>(ItemType_ui1, C::ui1FromString);
    if (!NativeBoundsHold(facets, value, C::ui1FromString, parsed)) FailUnsigned(memberName, value);
}

void CPrimitiveRestrictions::CheckUI2(const std::string& memberName, unsigned short value,
                                      const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::uint64_t>(ItemType_ui2, C::ui2FromString);
    if (!NativeBoundsHold(facets, value, C::ui2FromString, parsed)) FailUnsigned(memberName, value);
}

void CPrimitiveRestrictions::CheckUI4(const std::string& memberName, std::uint32_t value,
                                      const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::uint64_t>(ItemType_ui4, C::ui4FromString);
    if (!NativeBoundsHold(facets, value, C::ui4FromString, parsed)) FailUnsigned(memberName, value);
}

void CPrimitiveRestrictions::CheckUI8(const std::string& memberName, std::uint64_t value,
                                      const CPrimitiveRestrictions& facets) {
    const auto* parsed = facets.PreparedBounds<std::uint64_t>(ItemType_ui8, C::ui8FromString);
    if (!NativeBoundsHold(facets, value, C::ui8FromString, parsed)) FailText(memberName, C::ui8ToString(value));
}

void CPrimitiveRestrictions::CheckR4(const std::string& memberName, float value,
                                     const CPrimitiveRestrictions& facets) {
    if (!NativeBoundsHold(facets, value, C::r4FromString)) FailReal(memberName, value);
}

void CPrimitiveRestrictions::CheckR8(const std::string& memberName, double value,
                                     const CPrimitiveRestrictions& facets) {
    if (!NativeBoundsHold(facets, value, C::r8FromString)) FailReal(memberName, value);
}

void CPrimitiveRestrictions::CheckDuration(const std::string& memberName, const CDateTimeSpan& value,
                                           const CPrimitiveRestrictions& facets) {
    const bool hold = BoundsHold(
        facets, [](int, const std::string& text) { return C::durationFromString(text, kCollapse); },
        [&](const CDateTimeSpan& bound) { return FromCompareResult(value.CompareTo(bound)); });
    if (!hold) FailText(memberName, value.ToString());
}

void CPrimitiveRestrictions::CheckYearMonth(const std::string& memberName, const CDateTime& value,
                                            const CPrimitiveRestrictions& facets) {
    CheckDateValue(memberName, value, facets, C::yearMonthFromString);
}

void CPrimitiveRestrictions::CheckMonthDay(const std::string& memberName, const CDateTime& value,
                                           const CPrimitiveRestrictions& facets) {
    CheckDateValue(memberName, value, facets, C::monthDayFromString);
}

void CPrimitiveRestrictions::CheckYear(const std::string& memberName, unsigned short value,
                                       const CPrimitiveRestrictions& facets) {
    // The 16-bit pattern stands for a signed year: -0001 must stay below 1900.
    const auto year = static_cast<short>(value);
    const bool hold = BoundsHold(
        facets, [](int, const std::string& text) { return static_cast<short>(C::yearFromString(text, kCollapse)); },
        [&](short bound) { return CompareNative(year, bound); });
    if (!hold) Fail(FormatString("Invalid Value for %s [%d]", memberName.c_str(), static_cast<int>(value)));
}

void CPrimitiveRestrictions::CheckMonth(const std::string& memberName, unsigned char value,
                                        const CPrimitiveRestrictions& facets) {
    if (!NativeBoundsHold(facets, value, C::monthFromString)) FailSigned(memberName, value);
}

void CPrimitiveRestrictions::CheckDay(const std::string& memberName, unsigned char value,
                                      const CPrimitiveRestrictions& facets) {
    if (!NativeBoundsHold(facets, value, C::dayFromString)) FailSigned(memberName, value);
}

void CPrimitiveRestrictions::CheckDate(const std::string& memberName, const CDateTime& value,
                                       const CPrimitiveRestrictions& facets) {
    CheckDateValue(memberName, value, facets, C::dateFromString);
}

void CPrimitiveRestrictions::CheckDateTime(const std::string& memberName, const CDateTime& value,
                                           const CPrimitiveRestrictions& facets) {
    CheckDateValue(memberName, value, facets, C::datetimeFromString);
}

void CPrimitiveRestrictions::CheckTime(const std::string& memberName, const CDateTime& value,
                                       const CPrimitiveRestrictions& facets) {
    CheckDateValue(memberName, value, facets, C::timeFromString);
}

void CPrimitiveRestrictions::CheckChar(const std::string& memberName, char value,
                                       const CPrimitiveRestrictions& facets) {
    CheckLexical(memberName, C::charToString(value), facets);
}

void CPrimitiveRestrictions::CheckString(const std::string& memberName, const std::string& value,
                                         const CPrimitiveRestrictions& facets) {
    CheckLexical(memberName, value, facets);
}

void CPrimitiveRestrictions::CheckBoolean(const std::string& memberName, bool value,
                                          const CPrimitiveRestrictions& facets) {
    CheckLexical(memberName, C::booleanToString(value), facets);
}

void CPrimitiveRestrictions::CheckDecimal(const std::string& memberName, const CDecimal& value,
                                          const CPrimitiveRestrictions& facets) {
    const bool hold = BoundsHold(
        facets, [](int, const std::string& text) { return C::decimalFromString(text, kCollapse); },
        [&](const CDecimal& bound) { return CompareNative(value, bound); });
    if (!hold) FailText(memberName, value.ToString());
}

void CPrimitiveRestrictions::CheckInteger(const std::string& memberName, const CBigInteger& value,
                                          const CPrimitiveRestrictions& facets) {
    const bool hold = BoundsHold(
        facets, [](int, const std::string& text) { return C::integerFromString(text, kCollapse); },
        [&](const CBigInteger& bound) { return CompareNative(value, bound); });
    if (!hold) FailText(memberName, value.ToString());
}

void CPrimitiveRestrictions::CheckRestriction(const std::string& memberName, const QmVariant& value, ItemType type,
                                              const CPrimitiveRestrictions& facets, const std::string& text,
                                              CWhitespaceUtils::WhitespaceRule rule) {
    if (value.IsNil()) return;
    const bool lengthsOrPattern = !facets.GetPattern().empty() || facets.GetMinLength() >= 0 ||
                                  facets.GetMaxLength() >= 0 || facets.GetLength() >= 0;
    if (!ChecksDocumentText(type) || value.GetTypeAsEnum() != type) {
        // A variant of another type takes the usual path and its errors.
        CheckFacets(memberName, value, type, facets);
    } else if (lengthsOrPattern) {
        // The text as read usually obeys its rule already: checked in place, not copied.
        std::string storage;
        CheckLexical(memberName, whitespace::Ruled(text, rule, storage), facets);
    }
    if (facets.m_rule) {
        std::string storage;
        facets.m_rule->Check(memberName, value, type, &whitespace::Ruled(text, rule, storage));
    }
}

void CPrimitiveRestrictions::CheckRestriction(const std::string& memberName, const QmVariant& value, ItemType type,
                                              const CPrimitiveRestrictions& facets) {
    if (value.IsNil()) return;  // nil content has no value to restrict
    CheckFacets(memberName, value, type, facets);
    if (facets.m_rule) facets.m_rule->Check(memberName, value, type, nullptr);
}

void CPrimitiveRestrictions::CheckFacets(const std::string& memberName, const QmVariant& value, ItemType type,
                                         const CPrimitiveRestrictions& facets) {
    // Without facets every check passes; only the getter's type test remains.
    if (value.GetTypeAsEnum() == type && type >= ItemType_hexBinary && type <= ItemType_integer &&
        IsUnrestricted(facets)) {
        return;
    }
    const std::string& n = memberName;
    switch (type) {
        case ItemType_hexBinary: return CheckHexBinary(n, value.GetHexBinary(), facets);
        case ItemType_base64Binary: return CheckBase64Binary(n, value.GetBase64Binary(), facets);
        case ItemType_i1: return CheckI1(n, value.GetI1(), facets);
        case ItemType_i2: return CheckI2(n, value.GetI2(), facets);
        case ItemType_i4: return CheckI4(n, value.GetI4(), facets);
        case ItemType_i8: return CheckI8(n, value.GetI8(), facets);
        case ItemType_ui1: return CheckUI1(n, value.GetUI1(), facets);
        case ItemType_ui2: return CheckUI2(n, value.GetUI2(), facets);
        case ItemType_ui4: return CheckUI4(n, value.GetUI4(), facets);
        case ItemType_ui8: return CheckUI8(n, value.GetUI8(), facets);
        case ItemType_r4: return CheckR4(n, value.GetR4(), facets);
        case ItemType_r8: return CheckR8(n, value.GetR8(), facets);
        case ItemType_duration: return CheckDuration(n, value.GetDuration(), facets);
        case ItemType_yearMonth: return CheckYearMonth(n, value.GetYearMonth(), facets);
        case ItemType_monthDay: return CheckMonthDay(n, value.GetMonthDay(), facets);
        case ItemType_year: return CheckYear(n, value.GetYear(), facets);
        case ItemType_month: return CheckMonth(n, value.GetMonth(), facets);
        case ItemType_day: return CheckDay(n, value.GetDay(), facets);
        case ItemType_date: return CheckDate(n, value.GetDate(), facets);
        case ItemType_datetime: return CheckDateTime(n, value.GetDateTime(), facets);
        case ItemType_time: return CheckTime(n, value.GetTime(), facets);
        case ItemType_char: return CheckChar(n, value.GetChar(), facets);
        case ItemType_string: return CheckString(n, value.GetString(), facets);
        case ItemType_boolean: return CheckBoolean(n, value.GetBoolean(), facets);
        case ItemType_decimal: return CheckDecimal(n, value.GetDecimal(), facets);
        case ItemType_integer: return CheckInteger(n, value.GetInteger(), facets);
        default: throw CQmException(FormatString("unknown type [%d]", static_cast<int>(type)));
    }
}

}  // namespace QmXmlLib10
