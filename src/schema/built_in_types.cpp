// The built-in types of XML Schema 1.0 and the XML namespace's attributes.
#include "schema/schema_set_impl.h"

namespace QmXmlLib10 {
namespace Schema {

namespace {

struct BuiltIn {
    const char* name;
    const char* base;  // null for primitives (base anySimpleType)
    WhiteSpace whiteSpace;
    ItemType item;
    const char* listItem;  // for NMTOKENS, IDREFS, ENTITIES
    const char* minInclusive;
    const char* maxInclusive;
    const char* pattern;
};

constexpr WhiteSpace P = WhiteSpace::Preserve;
constexpr WhiteSpace R = WhiteSpace::Replace;
constexpr WhiteSpace C = WhiteSpace::Collapse;

// Each row's base comes before it.
const BuiltIn kBuiltIns[] = {
    {"string", nullptr, P, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"boolean", nullptr, C, ItemType_boolean, nullptr, nullptr, nullptr, nullptr},
    {"decimal", nullptr, C, ItemType_decimal, nullptr, nullptr, nullptr, nullptr},
    {"float", nullptr, C, ItemType_r4, nullptr, nullptr, nullptr, nullptr},
    {"double", nullptr, C, ItemType_r8, nullptr, nullptr, nullptr, nullptr},
    {"duration", nullptr, C, ItemType_duration, nullptr, nullptr, nullptr, nullptr},
    {"dateTime", nullptr, C, ItemType_datetime, nullptr, nullptr, nullptr, nullptr},
    {"time", nullptr, C, ItemType_time, nullptr, nullptr, nullptr, nullptr},
    {"date", nullptr, C, ItemType_date, nullptr, nullptr, nullptr, nullptr},
    {"gYearMonth", nullptr, C, ItemType_yearMonth, nullptr, nullptr, nullptr, nullptr},
    {"gYear", nullptr, C, ItemType_year, nullptr, nullptr, nullptr, nullptr},
    {"gMonthDay", nullptr, C, ItemType_monthDay, nullptr, nullptr, nullptr, nullptr},
    {"gDay", nullptr, C, ItemType_day, nullptr, nullptr, nullptr, nullptr},
    {"gMonth", nullptr, C, ItemType_month, nullptr, nullptr, nullptr, nullptr},
    {"hexBinary", nullptr, C, ItemType_hexBinary, nullptr, nullptr, nullptr, nullptr},
    {"base64Binary", nullptr, C, ItemType_base64Binary, nullptr, nullptr, nullptr, nullptr},
    {"anyURI", nullptr, C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"QName", nullptr, C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"NOTATION", nullptr, C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"normalizedString", "string", R, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"token", "normalizedString", C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"language", "token", C, ItemType_string, nullptr, nullptr, nullptr, "[a-zA-Z]{1,8}(-[a-zA-Z0-9]{1,8})*"},
    {"NMTOKEN", "token", C, ItemType_string, nullptr, nullptr, nullptr, "\\c+"},
    {"NMTOKENS", nullptr, C, ItemType_string, "NMTOKEN", nullptr, nullptr, nullptr},
    {"Name", "token", C, ItemType_string, nullptr, nullptr, nullptr, "\\i\\c*"},
    {"NCName", "Name", C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"ID", "NCName", C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"IDREF", "NCName", C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"IDREFS", nullptr, C, ItemType_string, "IDREF", nullptr, nullptr, nullptr},
    {"ENTITY", "NCName", C, ItemType_string, nullptr, nullptr, nullptr, nullptr},
    {"ENTITIES", nullptr, C, ItemType_string, "ENTITY", nullptr, nullptr, nullptr},
    {"integer", "decimal", C, ItemType_integer, nullptr, nullptr, nullptr, nullptr},
    {"nonPositiveInteger", "integer", C, ItemType_integer, nullptr, nullptr, "0", nullptr},
    {"negativeInteger", "nonPositiveInteger", C, ItemType_integer, nullptr, nullptr, "-1", nullptr},
    {"long", "integer", C, ItemType_i8, nullptr, "-9223372036854775808", "9223372036854775807", nullptr},
    {"int", "long", C, ItemType_i4, nullptr, "-2147483648", "2147483647", nullptr},
    {"short", "int", C, ItemType_i2, nullptr, "-32768", "32767", nullptr},
    {"byte", "short", C, ItemType_i1, nullptr, "-128", "127", nullptr},
    {"nonNegativeInteger", "integer", C, ItemType_integer, nullptr, "0", nullptr, nullptr},
    {"unsignedLong", "nonNegativeInteger", C, ItemType_ui8, nullptr, nullptr, "18446744073709551615", nullptr},
    {"unsignedInt", "unsignedLong", C, ItemType_ui4, nullptr, nullptr, "4294967295", nullptr},
    {"unsignedShort", "unsignedInt", C, ItemType_ui2, nullptr, nullptr, "65535", nullptr},
    {"unsignedByte", "unsignedShort", C, ItemType_ui1, nullptr, nullptr, "255", nullptr},
    {"positiveInteger", "nonNegativeInteger", C, ItemType_integer, nullptr, "1", nullptr, nullptr},
};

}  // namespace

void CSchemaSet::Impl::AddBuiltIns() {
    const std::string xs = kXsdNamespace;
    anyType = Make<CComplexType>();
    anyType->name = {xs, "anyType"};
    anyType->baseType = anyType;
    anyType->builtIn = true;
    anyType->contentType = CComplexType::ContentType::Mixed;
    {
        // anyType's content: any number of any elements, lax; any attributes, lax.
        CWildcard* any = Make<CWildcard>();
        any->processContents = CWildcard::ProcessContents::Lax;
        CParticle* anyParticle = Make<CParticle>();
        anyParticle->minOccurs = 0;
        anyParticle->maxOccurs = CParticle::kUnbounded;
        anyParticle->termKind = CParticle::TermKind::Wildcard;
        anyParticle->wildcard = any;
        CModelGroup* sequence = Make<CModelGroup>();
        sequence->particles.push_back(anyParticle);
        CParticle* content = Make<CParticle>();
        content->termKind = CParticle::TermKind::ModelGroup;
        content->modelGroup = sequence;
        anyType->contentModel = content;
        CWildcard* anyAttribute = Make<CWildcard>();
        anyAttribute->processContents = CWildcard::ProcessContents::Lax;
        anyType->attributeWildcard = anyAttribute;
    }
    types[anyType->name] = anyType;

    anySimpleType = Make<CSimpleType>();
    anySimpleType->name = {xs, "anySimpleType"};
    anySimpleType->baseType = anyType;
    anySimpleType->builtIn = true;
    anySimpleType->variety = CSimpleType::Variety::None;
    anySimpleType->whiteSpace = WhiteSpace::Preserve;
    types[anySimpleType->name] = anySimpleType;

    for (const BuiltIn& row : kBuiltIns) {
        CSimpleType* t = Make<CSimpleType>();
        t->name = {xs, row.name};
        t->builtIn = true;
        t->whiteSpace = row.whiteSpace;
        t->runtimeType = row.item;
        t->facets.whiteSpace = CFacetValue<WhiteSpace>{row.whiteSpace, row.whiteSpace == WhiteSpace::Collapse};
        if (row.listItem != nullptr) {
            t->variety = CSimpleType::Variety::List;
            t->baseType = anySimpleType;
            t->itemType = static_cast<const CSimpleType*>(types.at(CQName{xs, row.listItem}));
            t->facets.minLength = CFacetValue<unsigned long long>{1, false};
            t->ownFacets = t->facets;
        } else if (row.base == nullptr) {
            t->baseType = anySimpleType;
            t->primitiveType = t;
        } else {
            const CSimpleType* base = static_cast<const CSimpleType*>(types.at(CQName{xs, row.base}));
            t->baseType = base;
            t->primitiveType = base->primitiveType;
            t->facets = base->facets;
            t->facets.whiteSpace = CFacetValue<WhiteSpace>{row.whiteSpace, row.whiteSpace == WhiteSpace::Collapse};
            if (std::string(row.name) == "integer")
                t->ownFacets.fractionDigits = CFacetValue<unsigned long long>{0, true};
            if (row.minInclusive != nullptr)
                t->ownFacets.minInclusive = CFacetValue<std::string>{row.minInclusive, false};
            if (row.maxInclusive != nullptr)
                t->ownFacets.maxInclusive = CFacetValue<std::string>{row.maxInclusive, false};
            if (row.pattern != nullptr) t->ownFacets.patterns.push_back({row.pattern});
            if (t->ownFacets.fractionDigits) t->facets.fractionDigits = t->ownFacets.fractionDigits;
            if (t->ownFacets.minInclusive) t->facets.minInclusive = t->ownFacets.minInclusive;
            if (t->ownFacets.maxInclusive) t->facets.maxInclusive = t->ownFacets.maxInclusive;
            if (row.pattern != nullptr) t->facets.patterns.push_back({row.pattern});
        }
        types[t->name] = t;
    }

    // The XML namespace's attributes, as its own schema document declares them.
    const std::string xml = kXmlNamespace;
    auto builtIn = [&](const char* local) { return static_cast<const CSimpleType*>(types.at(CQName{xs, local})); };
    auto addAttribute = [&](const char* local, const CSimpleType* type) {
        CAttributeDeclaration* a = Make<CAttributeDeclaration>();
        a->name = {xml, local};
        a->type = type;
        a->source.document = xml;
        attributes[a->name] = a;
        return a;
    };
    {
        // xml:lang: a language code or the empty string.
        CSimpleType* empty = Make<CSimpleType>();
        empty->name = {xml, ""};
        empty->baseType = builtIn("string");
        empty->primitiveType = builtIn("string");
        empty->whiteSpace = WhiteSpace::Preserve;
        empty->ownFacets.enumeration = {""};
        empty->facets = empty->ownFacets;
        CSimpleType* lang = Make<CSimpleType>();
        lang->name = {xml, ""};
        lang->baseType = anySimpleType;
        lang->variety = CSimpleType::Variety::Union;
        lang->memberTypes = {builtIn("language"), empty};
        addAttribute("lang", lang);
    }
    {
        CSimpleType* space = Make<CSimpleType>();
        space->name = {xml, ""};
        space->baseType = builtIn("NCName");
        space->primitiveType = builtIn("string");
        space->ownFacets.enumeration = {"default", "preserve"};
        space->facets = builtIn("NCName")->facets;
        space->facets.enumeration = space->ownFacets.enumeration;
        addAttribute("space", space);
    }
    addAttribute("base", builtIn("anyURI"));
    addAttribute("id", builtIn("ID"));
    CAttributeGroup* special = Make<CAttributeGroup>();
    special->name = {xml, "specialAttrs"};
    for (const char* local : {"base", "lang", "space", "id"}) {
        CAttributeUse* use = Make<CAttributeUse>();
        use->declaration = attributes.at(CQName{xml, local});
        special->attributeUses.push_back(use);
    }
    attributeGroups[special->name] = special;
}

}  // namespace Schema
}  // namespace QmXmlLib10
