// qmxml: XML data binding run-time library. This header gives the whole public interface.
#pragma once

#include "qmxml/core/enums.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/instance_monitor.h"
#include "qmxml/core/smart_ptr.h"
