// The options of one read or write: how strictly documents are checked, how
// names match, what is written around the root, and the Fast Infoset options.
#pragma once

#include <string>
#include <vector>

#include "qmxml/core/enums.h"
#include "qmxml/core/smart_ptr.h"
#include "qmxml/dom/namespace_alias_map.h"
#include "qmxml/fastinfoset/fast_infoset_context.h"

namespace QmXmlLib10 {

class CAttributeCol;
class CXmlObjectBase;
class CXmlGeneratedClass;

class CXmlSerializationContext {
public:
    CXmlSerializationContext();
    CXmlSerializationContext(const CXmlSerializationContext& other);
    CXmlSerializationContext& operator=(const CXmlSerializationContext& other);
    virtual ~CXmlSerializationContext();

    // What generated code passes when the caller names no context.
    static CXmlSerializationContext m_defaultContext;

    bool GetIgnoreUnknownAttributes() const { return m_ignoreUnknownAttributes; }
    void SetIgnoreUnknownAttributes(bool value) { m_ignoreUnknownAttributes = value; }

    // Skipping unknown elements and tolerating missing mandatory ones cannot be
    // combined (a sequence reader could not tell an unexpected element from a
    // late one): turning one on while the other is on throws
    // CQmInvalidStateException and leaves the flag unchanged.
    bool GetIgnoreUnknownElements() const { return m_ignoreUnknownElements; }
    void SetIgnoreUnknownElements(bool value);
    bool GetIgnoreMissingMandatoryElements() const { return m_ignoreMissingMandatoryElements; }
    void SetIgnoreMissingMandatoryElements(bool value);

    bool GetIgnoreMissingChoice() const { return m_ignoreMissingChoice; }
    void SetIgnoreMissingChoice(bool value) { m_ignoreMissingChoice = value; }
    bool GetIgnoreInvalidCollectionCounts() const { return m_ignoreInvalidCollectionCounts; }
    void SetIgnoreInvalidCollectionCounts(bool value) { m_ignoreInvalidCollectionCounts = value; }

    // True when set, and always under SchemaType_NoNamespaces.
    bool GetIgnoreNamespaces() const {
        return m_ignoreNamespaces || m_schemaType == SchemaType_NoNamespaces;
    }
    void SetIgnoreNamespaces(bool value) { m_ignoreNamespaces = value; }

    bool GetNoOptionalAttributeDefaultOutput() const { return m_noOptionalAttributeDefaultOutput; }
    void SetNoOptionalAttributeDefaultOutput(bool value) { m_noOptionalAttributeDefaultOutput = value; }
    bool GetWriteTypeAttribute() const { return m_writeTypeAttribute; }
    void SetWriteTypeAttribute(bool value) { m_writeTypeAttribute = value; }
    SchemaType GetSchemaType() const { return m_schemaType; }
    void SetSchemaType(SchemaType type) { m_schemaType = type; }
    bool GetStripCDATA() const { return m_stripCDATA; }
    void SetStripCDATA(bool value) { m_stripCDATA = value; }

    std::string GetInLineSchema() const { return m_inLineSchema; }
    void SetInLineSchema(const char* schema) { m_inLineSchema = schema ? schema : ""; }

    // Declared on the root element when writing; callers add to them directly.
    CNamespaceAliasMap& GetNamespaceAliases() { return m_namespaceAliases; }
    const CNamespaceAliasMap& GetNamespaceAliases() const { return m_namespaceAliases; }
    // Complete processing instruction texts written before the root element.
    std::vector<std::string>& GetProcessingInstructions() { return m_processingInstructions; }
    const std::vector<std::string>& GetProcessingInstructions() const { return m_processingInstructions; }

    // Extra attributes written on the root element. The first call creates an
    // empty "##any" wildcard attribute collection; later calls, and copies of
    // the context made afterwards, share it. The const form never creates one
    // and returns null until it exists, so that a context shared between
    // threads is never changed by the writers that read it.
    CSmartPtr<CAttributeCol> GetAdditionalRootAttributes();
    CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;

    CFastInfosetContext& GetFIContext() { return m_fiContext; }
    const CFastInfosetContext& GetFIContext() const { return m_fiContext; }

protected:
    friend class CXmlObjectBase;
    friend class CXmlGeneratedClass;
    const std::string& GetDefaultNamespaceURI() const { return m_defaultNamespaceURI; }
    void SetDefaultNamespaceURI(const std::string& uri) { m_defaultNamespaceURI = uri; }

private:
    std::string m_defaultNamespaceURI;
    bool m_writeTypeAttribute = true;
    CNamespaceAliasMap m_namespaceAliases;
    CSmartPtr<CAttributeCol> m_additionalRootAttributes;
    std::vector<std::string> m_processingInstructions;
    std::string m_inLineSchema;
    bool m_ignoreInvalidCollectionCounts = false;
    bool m_ignoreMissingChoice = false;
    bool m_ignoreMissingMandatoryElements = false;
    bool m_ignoreUnknownElements = false;
    bool m_ignoreUnknownAttributes = false;
    bool m_ignoreNamespaces = false;
    SchemaType m_schemaType = SchemaType_XmlSchema;
    bool m_noOptionalAttributeDefaultOutput = false;
    CFastInfosetContext m_fiContext;
    bool m_stripCDATA = true;
};

}  // namespace QmXmlLib10
