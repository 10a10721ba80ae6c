// Annotations: XML Schema's annotation component is kept as the documentation
// texts of each component (CAnnotation, declared with the component base).
#pragma once

#include "qmxml/schema/component.h"
