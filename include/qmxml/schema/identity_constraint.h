// Identity constraints: key, keyref and unique. Modelled with their XPaths as
// text; nothing evaluates them yet.
#pragma once

#include <string>
#include <vector>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CIdentityConstraint final : public CSchemaComponent {
public:
    enum class Category : int { Key = 0, KeyRef = 1, Unique = 2 };

    CIdentityConstraint() : CSchemaComponent(ComponentKind::IdentityConstraint) {}
    ~CIdentityConstraint() override;

    CQName name;
    Category category = Category::Key;
    // The selector's xpath attribute, as written.
    std::string selector;
    // The fields' xpath attributes, in order.
    std::vector<std::string> fields;
    // A keyref's {referenced key} (a key or unique), else null.
    const CIdentityConstraint* referencedKey = nullptr;
};

}  // namespace Schema
}  // namespace QmXmlLib10
