// What every schema component shares: its kind, where it was declared and its
// annotation; and the expanded names components are known by.
#pragma once

#include <string>
#include <vector>

namespace QmXmlLib10 {
namespace Schema {

// An expanded name. The namespace is "" when absent: XML forbids the empty
// string as a namespace name, so the two can never be confused.
struct CQName {
    std::string ns;
    std::string local;

    // "{ns}local", or "local" for a name without namespace.
    std::string ToString() const;
    bool IsEmpty() const noexcept { return local.empty(); }
    bool operator==(const CQName& other) const noexcept { return ns == other.ns && local == other.local; }
    bool operator!=(const CQName& other) const noexcept { return !(*this == other); }
};

// Where a component was declared. The document is the path the loader used
// (the base location given for a buffer, "" for a buffer without one). The
// document tree keeps no line numbers, so line is 0 and path names the schema
// element instead: its ancestors from the schema element down, each as its
// local name with the name or ref it carries, e.g.
// "/schema/complexType[Order]/sequence/element[item]".
struct CSourceLocation {
    std::string document;
    int line = 0;
    std::string path;
};

// The documentation texts of an xs:annotation, in document order (appinfo is
// not kept). Several annotations on one component add to the same list.
struct CAnnotation {
    std::vector<std::string> documentation;
};

enum class ComponentKind : int {
    SimpleType,
    ComplexType,
    ElementDeclaration,
    AttributeDeclaration,
    AttributeUse,
    AttributeGroup,
    ModelGroup,
    ModelGroupDefinition,
    Particle,
    Wildcard,
    IdentityConstraint,
    Notation,
};

// The base of all components. Components are owned by their CSchemaSet and
// point at each other with plain pointers that stay valid as long as the set.
class CSchemaComponent {
public:
    explicit CSchemaComponent(ComponentKind kind) noexcept : m_kind(kind) {}
    virtual ~CSchemaComponent();
    CSchemaComponent(const CSchemaComponent&) = delete;
    CSchemaComponent& operator=(const CSchemaComponent&) = delete;

    ComponentKind GetKind() const noexcept { return m_kind; }

    CSourceLocation source;
    CAnnotation annotation;

private:
    ComponentKind m_kind;
};

// The derivation methods and block/final sets: XML Schema's {final},
// {prohibited substitutions} and {disallowed substitutions} are subsets of
// these flags.
enum DerivationFlags : unsigned {
    Derivation_None = 0,
    Derivation_Extension = 1,
    Derivation_Restriction = 2,
    Derivation_Substitution = 4,
    Derivation_List = 8,
    Derivation_Union = 16,
};

// A default or fixed value of an element, attribute or attribute use.
struct CValueConstraint {
    enum Kind : int { None = 0, Default = 1, Fixed = 2 };
    Kind kind = None;
    std::string value;
};

}  // namespace Schema
}  // namespace QmXmlLib10
