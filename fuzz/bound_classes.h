// What the binding fuzz targets bind into, and how the first byte of an
// input picks the class and the reading switches, so that an input found by
// one target means the same to the other.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "binding_classes.h"
#include "orders.h"
#include "qmxml/core/serialization_context.h"

namespace fuzz {

using Factory = std::function<QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase>()>;

template <class T>
Factory Make() {
    return [] { return QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase>(new T()); };
}

// The order book and the binding tests' classes: sixteen, so that the low
// four bits of the mode byte pick one.
inline const std::vector<Factory>& Classes() {
    static const std::vector<Factory> classes = {
        Make<orders::COrders>(),              Make<focus::Person>(),
        Make<focus::Shipping<false>>(),       Make<focus::Shipping<true>>(),
        Make<focus::Zoo>(),                   Make<focus::Wild<focus::kAny>>(),
        Make<focus::Wild<focus::kOther>>(),   Make<focus::Wild<focus::kLocal>>(),
        Make<focus::Wild<focus::kTarget>>(),  Make<focus::Wild<focus::kList>>(),
        Make<focus::Bag>(),                   Make<focus::Chart>(),
        Make<focus::Window>(),                Make<focus::Market>(),
        Make<focus::Reading>(),               Make<focus::Memo>(),
    };
    return classes;
}

// The class the mode byte picks.
inline const Factory& ClassOf(std::uint8_t mode) { return Classes()[(mode & 15) % Classes().size()]; }

// Only Memo's classes are generated for a schema without namespaces.
inline bool IsNoNamespaceClass(std::uint8_t mode) { return (mode & 15) == 15; }

// The reading switches the mode byte sets: bits 4-5 one leniency, bit 6
// unknown attributes ignored, bit 7 namespaces ignored (or, for the class
// without namespaces, that schema type).
inline QmXmlLib10::CXmlSerializationContext ContextOf(std::uint8_t mode) {
    QmXmlLib10::CXmlSerializationContext ctx;
    const int leniency = (mode >> 4) & 3;
    if (leniency == 1) ctx.SetIgnoreUnknownElements(true);
    if (leniency == 2) ctx.SetIgnoreMissingMandatoryElements(true);
    if (leniency == 3) {
        ctx.SetIgnoreMissingChoice(true);
        ctx.SetIgnoreInvalidCollectionCounts(true);
    }
    if ((mode & 64) != 0) ctx.SetIgnoreUnknownAttributes(true);
    if ((mode & 128) != 0) {
        if (IsNoNamespaceClass(mode))
            ctx.SetSchemaType(QmXmlLib10::SchemaType_NoNamespaces);
        else
            ctx.SetIgnoreNamespaces(true);
    }
    return ctx;
}

}  // namespace fuzz
