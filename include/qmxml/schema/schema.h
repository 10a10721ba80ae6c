// The schema layer's umbrella header: the component model, the loader and the
// printer. Link qmxml::schema to use it.
#pragma once

#include "qmxml/schema/annotation.h"
#include "qmxml/schema/schema_printer.h"
#include "qmxml/schema/schema_set.h"
