// The mapping from schema components to class descriptions and runtime
// metadata, shared by the dynamic classes and the C++ emitter. Internal.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qmxml/core/generated_support.h"
#include "qmxml/metadata/element_infos.h"
#include "qmxml/schema/class_description.h"
#include "qmxml/schema/schema_set.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/whitespace.h"

namespace QmXmlLib10 {
namespace Schema {

// What making a member's initial value needs beyond its description.
struct CPropertyRuntime {
    CPrimitiveRestrictions facets;  // values and value collections, schema rule included
    CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_Preserve;
    int substitution = -1;          // class collections of substitutable members
    std::string restriction;        // wildcards: the namespace restriction
    std::string restrictionNamespace;
    XmlElementType itemElementType = XmlElementType_Element;  // class collections
    ItemType itemType = ItemType_None;                         // global attributes
    // Values of ID types must be unique in a document and IDREFs must name
    // one: 1 ID, 2 IDREF, 3 a list of IDREFs. 4: a QName, whose prefix the
    // document must declare.
    int idKind = 0;
};

struct CClassRuntime {
    std::vector<CPropertyRuntime> properties;
    // An inlined choice its parent requires: reading it must select a member.
    bool mandatoryInlineChoice = false;
    // What the document-wide checks, the wildcard check and the prefix search
    // walk (MemberChecks); `table` points into `checks`.
    std::vector<Generated::CMemberCheck> checks;
    Generated::CMemberChecks table{nullptr, 0};
};

// An element member whose element may be substituted (substitution group) or
// retyped (xsi:type naming a derived type): the factory picks the class from
// the element it meets.
struct CSubstitutableMember {
    const CElementDeclaration* element = nullptr;
    int classIndex = -1;
};

struct CMappedSet {
    std::vector<std::unique_ptr<CClassDescription>> classes;
    std::vector<CClassRuntime> runtime;  // one per class
    std::vector<CSubstitutableMember> substitutable;
    std::map<std::pair<std::string, std::string>, int> roots;  // (namespace, local name) -> class
    // (namespace, local name) -> the global element as a substitutable member,
    // so that a root element's xsi:type and abstractness are settled as a member's.
    std::map<std::pair<std::string, std::string>, int> rootMembers;
    // (type, element namespace) -> class
    std::map<std::pair<const CTypeDefinition*, std::string>, int> typeClasses;
    // Global attribute declarations: how a value an attribute wildcard takes
    // is checked when the wildcard's processContents asks for it.
    std::map<std::pair<std::string, std::string>, CPropertyRuntime> globalAttributes;
    std::vector<const CTypeDefinition*> classTypes;  // per class: its type, null for groups
    bool usesIds = false;  // some member holds ID, IDREF or QName values
};

// Maps every global element and named complex type of the set, and
// everything they reach. The infos use `factory` to make member objects.
void MapSchemaSet(const CSchemaSet& set, const QmXmlLib10Data::IClassFactory* factory, CMappedSet& out);

// The rows of a class's member checks, in property order (the order the
// walks visit them, so that the first fault they report is the same for
// dynamic and generated classes). Names point into the description.
std::vector<Generated::CMemberCheck> MemberChecks(const CClassDescription& description, const CClassRuntime& runtime);

// The namespace restriction string of the runtime's wildcard infos for the
// constraint, and the target namespace it is relative to.
std::pair<std::string, std::string> WildcardRestriction(const CNamespaceConstraint& constraint);

}  // namespace Schema
}  // namespace QmXmlLib10
