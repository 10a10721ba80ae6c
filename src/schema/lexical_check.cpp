#include "schema/lexical_check.h"

namespace QmXmlLib10 {
namespace Schema {

Primitive PrimitiveOf(const CSimpleType* type) {
    if (type == nullptr || type->variety != CSimpleType::Variety::Atomic || type->primitiveType == nullptr)
        return Primitive::AnySimple;
    static const struct {
        const char* name;
        Primitive primitive;
    } kNames[] = {
        {"string", Primitive::String},         {"boolean", Primitive::Boolean},
        {"decimal", Primitive::Decimal},       {"float", Primitive::Float},
        {"double", Primitive::Double},         {"duration", Primitive::Duration},
        {"dateTime", Primitive::DateTime},     {"time", Primitive::Time},
        {"date", Primitive::Date},             {"gYearMonth", Primitive::GYearMonth},
        {"gYear", Primitive::GYear},           {"gMonthDay", Primitive::GMonthDay},
        {"gDay", Primitive::GDay},             {"gMonth", Primitive::GMonth},
        {"hexBinary", Primitive::HexBinary},   {"base64Binary", Primitive::Base64Binary},
        {"anyURI", Primitive::AnyURI},         {"QName", Primitive::QName},
        {"NOTATION", Primitive::Notation},
    };
    const std::string& name = type->primitiveType->name.local;
    for (const auto& entry : kNames)
        if (name == entry.name) return entry.primitive;
    return Primitive::AnySimple;
}

}  // namespace Schema
}  // namespace QmXmlLib10
