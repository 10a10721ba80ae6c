// Members holding objects or collections may put either kind of pointer in
// their variant; the metadata takes both.
#pragma once

#include "qmxml/collections/xml_collection.h"
#include "qmxml/types/variant.h"

namespace QmXmlLib10Data::detail {

inline QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase> ObjectOf(const QmXmlLib10::QmVariant& value) {
    if (value.IsNil()) return nullptr;
    const int type = value.GetTypeAsEnum();
    if (type == QmXmlLib10::QmVariant::kXmlObjectType) return value.GetXmlObject();
    if (type == QmXmlLib10::QmVariant::kXmlCollectionType) {
        return QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlObjectBase>(value.GetXmlCollection().Get());
    }
    return nullptr;
}

inline QmXmlLib10::CSmartPtr<QmXmlLib10::CXmlCollectionBase> CollectionOf(const QmXmlLib10::QmVariant& value) {
    const int type = value.GetTypeAsEnum();
    if (type == QmXmlLib10::QmVariant::kXmlCollectionType) return value.GetXmlCollection();
    if (type == QmXmlLib10::QmVariant::kXmlObjectType) {
        return dynamic_cast<QmXmlLib10::CXmlCollectionBase*>(value.GetXmlObject().Get());
    }
    return nullptr;
}

}  // namespace QmXmlLib10Data::detail
