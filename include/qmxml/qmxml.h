// qmxml: XML data binding run-time library. This header gives the whole public interface.
#pragma once

#include "qmxml/core/enums.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/core/instance_monitor.h"
#include "qmxml/core/object_base.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/core/settings.h"
#include "qmxml/core/smart_ptr.h"

#include "qmxml/dom/namespace_alias_map.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/dom/xml_name_table.h"
#include "qmxml/dom/xml_tree_builder.h"

#include "qmxml/metadata/attribute_info.h"
#include "qmxml/metadata/element_info.h"
#include "qmxml/metadata/element_infos.h"
#include "qmxml/metadata/parent_element_info.h"

#include "qmxml/writer/string_buffer.h"
#include "qmxml/writer/text_stream.h"
#include "qmxml/writer/text_writer.h"
#include "qmxml/writer/xml_writer.h"

#include "qmxml/collections/class_collection.h"
#include "qmxml/collections/element.h"
#include "qmxml/collections/primitive_collections.h"
#include "qmxml/collections/type_collection.h"
#include "qmxml/collections/wildcards.h"
#include "qmxml/collections/xml_collection.h"

#include "qmxml/types/binary_data.h"
#include "qmxml/types/variant.h"
#include "qmxml/types/restrictions.h"
#include "qmxml/types/decimal.h"
#include "qmxml/types/date_time_span.h"
#include "qmxml/types/date_time.h"
#include "qmxml/types/big_integer.h"
#include "qmxml/types/conversions.h"
#include "qmxml/types/whitespace.h"

#include "qmxml/fastinfoset/fast_infoset_context.h"
#include "qmxml/fastinfoset/binary_algorithms.h"
#include "qmxml/fastinfoset/fi_writer.h"
#include "qmxml/fastinfoset/vocabulary.h"
