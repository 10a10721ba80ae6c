// The restricted XPath of identity constraints: selectors and fields.
// Internal to the schema library.
#pragma once

#include <functional>
#include <string>

namespace QmXmlLib10 {
namespace Schema {

// True when text is a selector (field = false) or field (field = true) XPath
// of XML Schema's identity-constraint subset. prefixDeclared tells whether a
// name-test prefix is bound where the expression stands.
bool IsIdentityXPath(const std::string& text, bool field, const std::function<bool(const std::string&)>& prefixDeclared);

}  // namespace Schema
}  // namespace QmXmlLib10
