// The decimal and integer conversions, kept apart from the fixed-size ones so
// that those do not depend on the big-number classes.
#include <climits>
#include <cstdlib>

#include "qmxml/types/big_integer.h"
#include "qmxml/types/conversions.h"
#include "qmxml/types/decimal.h"
#include "types/whitespace_rule.h"

namespace QmXmlLib10 {

std::string CConversions::decimalToString(const CDecimal& value) { return value.ToString(); }

std::string CConversions::decimalToString(const CDecimal& value, const std::string& format) {
    if (format.empty()) {
        return value.ToString();
    }
    // atoi semantics (leading number, 0 when there is none) without its
    // undefined behaviour on overflow.
    const long places = std::strtol(format.c_str(), nullptr, 10);
    return value.ToString(static_cast<int>(places < 0 ? 0 : (places > INT_MAX ? INT_MAX : places)));
}

CDecimal CConversions::decimalFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return CDecimal(whitespace::Ruled(text, rule, storage));
}

std::string CConversions::integerToString(const CBigInteger& value) { return value.ToString(); }

CBigInteger CConversions::integerFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return CBigInteger(whitespace::Ruled(text, rule, storage));
}

}  // namespace QmXmlLib10
