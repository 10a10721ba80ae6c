// Notation declarations.
#pragma once

#include <string>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CNotation final : public CSchemaComponent {
public:
    CNotation() : CSchemaComponent(ComponentKind::Notation) {}
    ~CNotation() override;

    CQName name;
    // {public identifier} and {system identifier}; at least one is given.
    std::string publicId;
    std::string systemId;
};

}  // namespace Schema
}  // namespace QmXmlLib10
