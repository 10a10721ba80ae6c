// The mapping's output: one class description per complex type (and per
// nested or repeating model group, which the binding reads as an inlined
// class), each carrying the runtime metadata the binding walks. Dynamic
// classes use the metadata as it stands; the C++ emitter writes the same
// descriptions out as source.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/schema/component.h"

namespace QmXmlLib10Data {
class CParentElementInfo;
class CElementInfo;
class CAttributeInfo;
}  // namespace QmXmlLib10Data

namespace QmXmlLib10 {
namespace Schema {

class CComplexType;
class CModelGroup;
class CSimpleType;
class CElementDeclaration;
class CAttributeUse;
class CWildcard;

// One member of a class: what the property holds and where it comes from.
struct CPropertyDescription {
    enum class Kind : int {
        Value = 0,       // a simple value (element, attribute or simple content), held as itemType
        Object = 1,      // one object of the class classIndex (an element, or an inlined group)
        Collection = 2,  // a repeating element or group: the collection object the member holds
        Element = 3,     // an untyped element or element wildcard, held as a CElement
        Attributes = 4,  // the attribute wildcard, held as a CAttributeCol
    };
    enum class Source : int { Element = 0, Attribute = 1, SimpleContent = 2, Group = 3, Wildcard = 4 };

    std::string name;  // unique within the class
    Kind kind = Kind::Value;
    Source source = Source::Element;
    ItemType itemType = ItemType_None;  // values and value collections
    int classIndex = -1;                // objects and class collections: the declared class
    bool optional = false;              // may be unset (invalid variant)
    std::uint64_t minOccurs = 1;        // collections
    std::uint64_t maxOccurs = 1;        // collections (CParticle::kUnbounded: no bound)
    CQName elementName;                 // elements and attributes: the name in documents
    const CSimpleType* simpleType = nullptr;        // values: the schema type
    const CElementDeclaration* element = nullptr;   // element members
    const CAttributeUse* attribute = nullptr;       // attribute members
    const CWildcard* wildcard = nullptr;            // wildcard members
};

class CClassDescription {
public:
    CClassDescription();
    ~CClassDescription();
    CClassDescription(const CClassDescription&) = delete;
    CClassDescription& operator=(const CClassDescription&) = delete;

    std::string name;                          // unique within the set
    int index = -1;                            // position in the set
    const CComplexType* type = nullptr;        // null for an inlined group's class
    const CModelGroup* group = nullptr;        // the inlined group, or null
    CQName typeName;                           // named complex types: for xsi:type
    // The namespace of the elements the class is read from and written as:
    // a type used by elements of several namespaces (unqualified local
    // elements, imported types) has one class per namespace.
    std::string elementNamespace;
    bool abstract = false;
    XmlElementGroupType groupType = XmlElementGroupType_Sequence;
    XmlElementType elementType = XmlElementType_Element;
    std::vector<CPropertyDescription> properties;
    // Classes whose type derives from this one (by extension or restriction),
    // which xsi:type may name in its place; nearest first.
    std::vector<int> derivedClasses;
    // Some wildcard member processes its content (strict or lax).
    bool hasCheckedWildcards = false;

    // The runtime metadata, owned by the description (null-terminated arrays).
    QmXmlLib10Data::CParentElementInfo* classInfo = nullptr;
    QmXmlLib10Data::CElementInfo** elementInfos = nullptr;
    QmXmlLib10Data::CAttributeInfo** attributeInfos = nullptr;
};

}  // namespace Schema
}  // namespace QmXmlLib10
