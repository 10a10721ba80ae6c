// The storage behind CSchemaSet, shared by the loader and the set's lookups.
// Internal to the schema library.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "qmxml/schema/schema_set.h"

namespace QmXmlLib10 {
namespace Schema {

struct CQNameHash {
    std::size_t operator()(const CQName& name) const noexcept {
        const std::size_t h = std::hash<std::string>()(name.local);
        return h ^ (std::hash<std::string>()(name.ns) * 0x9e3779b97f4a7c15ull);
    }
};

template <typename T>
using CQNameMap = std::unordered_map<CQName, T*, CQNameHash>;

struct CSchemaSet::Impl {
    // Every component of the set, built-ins included; the set owns them here.
    std::vector<std::unique_ptr<CSchemaComponent>> components;

    CQNameMap<CTypeDefinition> types;
    CQNameMap<CElementDeclaration> elements;
    CQNameMap<CAttributeDeclaration> attributes;
    CQNameMap<CModelGroupDefinition> groups;
    CQNameMap<CAttributeGroup> attributeGroups;
    CQNameMap<CNotation> notations;
    CQNameMap<CIdentityConstraint> identityConstraints;

    std::vector<const CTypeDefinition*> typeList;
    std::vector<const CElementDeclaration*> elementList;
    std::vector<const CAttributeDeclaration*> attributeList;
    std::vector<const CModelGroupDefinition*> groupList;
    std::vector<const CAttributeGroup*> attributeGroupList;
    std::vector<const CNotation*> notationList;
    std::vector<std::string> documents;

    CComplexType* anyType = nullptr;
    CSimpleType* anySimpleType = nullptr;

    template <typename T>
    T* Make() {
        auto owned = std::make_unique<T>();
        T* raw = owned.get();
        components.push_back(std::move(owned));
        return raw;
    }

    // Adds anyType, anySimpleType, the primitive and derived built-in simple
    // types and the XML namespace's attributes.
    void AddBuiltIns();
};

}  // namespace Schema
}  // namespace QmXmlLib10
