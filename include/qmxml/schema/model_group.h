// Model groups (sequence, choice, all) and particles.
#pragma once

#include <cstdint>
#include <vector>

#include "qmxml/schema/component.h"

namespace QmXmlLib10 {
namespace Schema {

class CElementDeclaration;
class CModelGroupDefinition;
class CWildcard;
class CParticle;

class CModelGroup final : public CSchemaComponent {
public:
    enum class Compositor : int { Sequence = 0, Choice = 1, All = 2 };

    CModelGroup() : CSchemaComponent(ComponentKind::ModelGroup) {}
    ~CModelGroup() override;

    Compositor compositor = Compositor::Sequence;
    // {particles}, in document order. A group reference appears as a particle
    // whose term is the referenced definition's model group.
    std::vector<const CParticle*> particles;
};

// {min occurs}, {max occurs} and {term}: an element declaration, a model
// group or a wildcard.
class CParticle final : public CSchemaComponent {
public:
    static constexpr std::uint64_t kUnbounded = UINT64_MAX;
    enum class TermKind : int { Element = 0, ModelGroup = 1, Wildcard = 2 };

    CParticle() : CSchemaComponent(ComponentKind::Particle) {}
    ~CParticle() override;

    std::uint64_t minOccurs = 1;
    // kUnbounded for maxOccurs="unbounded".
    std::uint64_t maxOccurs = 1;
    TermKind termKind = TermKind::Element;
    const CElementDeclaration* element = nullptr;
    const CModelGroup* modelGroup = nullptr;
    const CWildcard* wildcard = nullptr;
    // For a group reference (xs:group ref=...), the definition it names;
    // modelGroup is then that definition's model group.
    const CModelGroupDefinition* groupDefinition = nullptr;
};

}  // namespace Schema
}  // namespace QmXmlLib10
