#include "qmxml/core/serialization_context.h"

#include "qmxml/collections/wildcards.h"
#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

CXmlSerializationContext CXmlSerializationContext::m_defaultContext;

CXmlSerializationContext::CXmlSerializationContext() = default;
CXmlSerializationContext::CXmlSerializationContext(const CXmlSerializationContext& other) = default;
CXmlSerializationContext& CXmlSerializationContext::operator=(const CXmlSerializationContext& other) = default;
CXmlSerializationContext::~CXmlSerializationContext() = default;

void CXmlSerializationContext::SetIgnoreUnknownElements(bool value) {
    if (value && m_ignoreMissingMandatoryElements) {
        throw CQmInvalidStateException(
            "The parser can only ignore additional elements, or ignore the fact that some required ones are "
            "missing, you can not ignore both\nSet IgnoreMissingMandatoryElements to false before setting "
            "IgnoreUnknownElements to true");
    }
    m_ignoreUnknownElements = value;
}

void CXmlSerializationContext::SetIgnoreMissingMandatoryElements(bool value) {
    if (value && m_ignoreUnknownElements) {
        throw CQmInvalidStateException(
            "The parser can only ignore additional elements, or ignore the fact that some required ones are "
            "missing, you can not ignore both\nSet IgnoreUnknownElements to false before setting "
            "IgnoreMissingMandatoryElements to true");
    }
    m_ignoreMissingMandatoryElements = value;
}

CSmartPtr<CAttributeCol> CXmlSerializationContext::GetAdditionalRootAttributes() {
    if (!m_additionalRootAttributes) m_additionalRootAttributes = new CAttributeCol("", "##any", "");
    return m_additionalRootAttributes;
}

CSmartPtr<CAttributeCol> CXmlSerializationContext::GetAdditionalRootAttributes() const {
    return m_additionalRootAttributes;
}

}  // namespace QmXmlLib10
