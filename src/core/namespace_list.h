// Wildcard namespace constraints ("##any", "##other", "##local",
// "##targetNamespace" and URIs, separated by spaces). Both the namespace test
// of wildcards and the choice of a new wildcard element's namespace read
// these lists, so they must agree on what an entry is.
#pragma once

#include <string_view>

namespace QmXmlLib10 {
namespace detail {

// Takes the next entry off the front of `rest` into `entry`; false when only
// blanks are left. Runs of blanks separate like one: there are no empty entries.
inline bool NextNamespaceEntry(std::string_view& rest, std::string_view& entry) noexcept {
    const std::size_t start = rest.find_first_not_of(' ');
    if (start == std::string_view::npos) {
        rest = std::string_view();
        return false;
    }
    rest.remove_prefix(start);
    entry = rest.substr(0, rest.find(' '));
    rest.remove_prefix(entry.size());
    return true;
}

}  // namespace detail
}  // namespace QmXmlLib10
