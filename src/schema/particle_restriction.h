// Whether one content model restricts another (XML Schema's "particle valid
// (restriction)"), as the loader checks complex content restrictions.
// Internal to the schema library.
#pragma once

#include "qmxml/schema/model_group.h"

namespace QmXmlLib10 {
namespace Schema {

// derived may be null (empty content). Cases too deep or too costly to
// decide are taken as valid: the check refuses only what it proves wrong.
bool IsValidParticleRestriction(const CParticle* derived, const CParticle* base);

// The particle's smallest number of elements; 0 when it is emptiable.
bool IsEmptiable(const CParticle* particle);

}  // namespace Schema
}  // namespace QmXmlLib10
