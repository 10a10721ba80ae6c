// xsi:nil as the readers see it. Generated classes read it off their own
// element and member infos off a member's element; both must accept and
// refuse the same values.
#pragma once

namespace QmXmlLib10 {
class CXmlElement;
}

namespace QmXmlLib10Data {
namespace detail {

// True for xsi:nil="true"; false for "false" or no xsi:nil at all. Any other
// value throws CQmValidationException "Unexpected Value [%s] for 'nil' Attribute found.".
bool IsNilElement(const QmXmlLib10::CXmlElement* element);

}  // namespace detail
}  // namespace QmXmlLib10Data
