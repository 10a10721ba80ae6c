#include "qmxml/dom/xml_document.h"

namespace QmXmlLib10 {

CXmlDocument::CXmlDocument() : CInstanceMonitor("CXmlDocument") {}

// The tree goes before the name table its nodes point into (member order).
CXmlDocument::~CXmlDocument() = default;

}  // namespace QmXmlLib10
