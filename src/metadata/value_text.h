// The text a member value is written as: what QmVariant::ToString gives,
// without building a string when the variant holds the text already or a
// small buffer serves.
#pragma once

#include <string>
#include <string_view>

#include "qmxml/types/variant.h"

namespace QmXmlLib10Data::detail {

// Points into the variant (strings) or into scratch, or at a literal, and is
// zero-terminated; valid while both stay unchanged. Throws what ToString throws.
std::string_view ValueText(const QmXmlLib10::QmVariant& value, const std::string& format, std::string& scratch);

}  // namespace QmXmlLib10Data::detail
