// The exception a schema that cannot be loaded ends in.
#pragma once

#include <string>
#include <utility>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {
namespace Schema {

// Thrown by the schema loader: the outer message is "Failed to load the schema
// [<location>]"; its inner exception says what is wrong and where, as
// "In [<document>] at [<component path>]: <what>", or is the XML reader's
// exception for a malformed document. A subclass of its own so that a tool can
// tell a bad schema (exit status 2) from a bad instance.
class CQmSchemaException : public CQmException {
public:
    CQmSchemaException() = default;
    explicit CQmSchemaException(std::string message) : CQmException(std::move(message)) {}
    CQmSchemaException(std::string message, const CQmException& cause) : CQmException(std::move(message), cause) {}
    CQmSchemaException(const CQmSchemaException& other) = default;
    CQmSchemaException& operator=(const CQmSchemaException& other) = default;
    ~CQmSchemaException() override;

protected:
    CQmException* Clone() const override;
};

}  // namespace Schema
}  // namespace QmXmlLib10
