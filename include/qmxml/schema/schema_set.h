// A set of schema components loaded from XML Schema 1.0 documents: the entry
// point of the schema layer.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qmxml/schema/attribute_declaration.h"
#include "qmxml/schema/attribute_group.h"
#include "qmxml/schema/attribute_use.h"
#include "qmxml/schema/complex_type.h"
#include "qmxml/schema/element_declaration.h"
#include "qmxml/schema/identity_constraint.h"
#include "qmxml/schema/model_group.h"
#include "qmxml/schema/model_group_definition.h"
#include "qmxml/schema/notation.h"
#include "qmxml/schema/schema_exception.h"
#include "qmxml/schema/simple_type.h"
#include "qmxml/schema/wildcard.h"

namespace QmXmlLib10 {
namespace Schema {

// One document to load: a file, or XML text with an optional base location
// that relative schemaLocations resolve against (without one, they cannot be
// followed and are an error).
struct CSchemaSource {
    static CSchemaSource File(std::string path);
    static CSchemaSource Buffer(std::string text, std::string baseLocation = std::string());

    bool isFile = true;
    std::string path;  // the file, or the buffer's base location
    std::string text;  // the buffer's text
};

// The components of every schema document loaded together, with their
// references resolved. Immutable once loaded, so one set may be read by
// several threads; several sets may coexist. Components live as long as
// their set.
//
// Loading follows xs:include (an included document without a target namespace
// takes the includer's), xs:import (schemaLocation resolved against the
// referring document; without one, the namespace must be loaded anyway or be
// the XML namespace, whose attributes xml:lang, xml:space, xml:base and xml:id
// are built in) and xs:redefine. Each document is read once per target
// namespace it is loaded for, so include and import cycles are fine. Nothing
// is ever fetched from the network.
//
// Global components are looked up by expanded name per symbol space in
// constant time. The built-in types are always in the set (FindType of
// {http://www.w3.org/2001/XMLSchema}string, ...) but not in GetTypes().
class CSchemaSet {
public:
    // Throws CQmSchemaException "Failed to load the schema [<location>]"
    // wrapping the cause (see schema_exception.h).
    static std::unique_ptr<CSchemaSet> Load(const std::vector<CSchemaSource>& sources);
    static std::unique_ptr<CSchemaSet> LoadFile(const std::string& path);
    static std::unique_ptr<CSchemaSet> LoadBuffer(const std::string& text,
                                                  const std::string& baseLocation = std::string());

    ~CSchemaSet();
    CSchemaSet(const CSchemaSet&) = delete;
    CSchemaSet& operator=(const CSchemaSet&) = delete;

    static const char* const kXsdNamespace;  // http://www.w3.org/2001/XMLSchema
    static const char* const kXmlNamespace;  // http://www.w3.org/XML/1998/namespace

    // Global components by expanded name; null when there is none.
    const CTypeDefinition* FindType(const CQName& name) const;
    const CTypeDefinition* FindType(const std::string& ns, const std::string& local) const {
        return FindType(CQName{ns, local});
    }
    const CSimpleType* FindSimpleType(const CQName& name) const;
    const CComplexType* FindComplexType(const CQName& name) const;
    const CElementDeclaration* FindElement(const CQName& name) const;
    const CAttributeDeclaration* FindAttribute(const CQName& name) const;
    const CModelGroupDefinition* FindModelGroup(const CQName& name) const;
    const CAttributeGroup* FindAttributeGroup(const CQName& name) const;
    const CNotation* FindNotation(const CQName& name) const;
    // Identity constraints have one symbol space for the whole set, local
    // declarations' included.
    const CIdentityConstraint* FindIdentityConstraint(const CQName& name) const;

    // The user's global components in load order (documents in the order they
    // were read, components in document order). Built-ins are not listed, nor
    // the built-in xml: attributes (a schema document read for the XML
    // namespace replaces those it repeats, and its components are listed).
    const std::vector<const CTypeDefinition*>& GetTypes() const noexcept;
    const std::vector<const CElementDeclaration*>& GetElements() const noexcept;
    const std::vector<const CAttributeDeclaration*>& GetAttributes() const noexcept;
    const std::vector<const CModelGroupDefinition*>& GetModelGroups() const noexcept;
    const std::vector<const CAttributeGroup*>& GetAttributeGroups() const noexcept;
    const std::vector<const CNotation*>& GetNotations() const noexcept;
    // The locations of the documents read, in reading order.
    const std::vector<std::string>& GetDocuments() const noexcept;

    const CComplexType* GetAnyType() const noexcept;
    const CSimpleType* GetAnySimpleType() const noexcept;
    // A built-in simple type by local name ("string", "int", ...), or null.
    const CSimpleType* GetBuiltInType(const std::string& local) const;

private:
    CSchemaSet();
    friend class CSchemaLoader;
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Schema
}  // namespace QmXmlLib10
