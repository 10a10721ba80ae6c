// Dynamic classes: bound classes whose metadata and member storage come from a
// schema loaded at run time. A CDynamicClassSet maps every type of a schema
// set once (see class_description.h for the mapping) and is immutable
// afterwards: any number of threads may create, read and write objects of one
// set at once. Its objects are CXmlGeneratedClass objects like generated
// ones: they read and write text and Fast Infoset through the same runtime,
// with the same messages, plus the checks XML Schema makes beyond the
// runtime's facets.
//
//   auto schemas = CSchemaSet::LoadFile("orders.xsd");
//   auto classes = CDynamicClassSet::Create(std::move(schemas));
//   CSmartPtr<CDynamicObject> book = classes->ReadFile("book.xml");
//   book->ToXmlFile("copy.xml");
//
// The set must outlive every object made from it (objects point into it).
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qmxml/core/generated_class.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/core/smart_ptr.h"
#include "qmxml/metadata/element_infos.h"
#include "qmxml/schema/class_description.h"
#include "qmxml/schema/schema_set.h"

namespace QmXmlLib10 {
class CXmlDocument;

namespace Schema {

class CDynamicClassSet;

// One object of a class described at run time. Members are reached by index
// (the description's property order) or by name, as variants: simple values
// as their item type, class members as objects (CDynamicObject), repeating
// members as the collection object the member holds.
class CDynamicObject final : public CXmlGeneratedClass {
public:
    // Objects come from the class set (CreateObject, CreateRootObject, the
    // readers); this constructor is for the set.
    CDynamicObject(const CDynamicClassSet* set, const CClassDescription* description);
    ~CDynamicObject() override;

    const CClassDescription& GetDescription() const noexcept { return *m_description; }
    const CDynamicClassSet& GetClassSet() const noexcept { return *m_set; }

    int GetPropertyCount() const noexcept { return static_cast<int>(m_values.size()); }
    // The index of the member of that name, or -1.
    int FindProperty(const std::string& name) const;
    // A copy of the member's value: invalid when an optional member is unset.
    // An index out of range throws CQmInvalidParamException
    // "Invalid property index [%d] for the class [%s]".
    QmVariant GetValue(int index) const;
    QmVariant GetValue(const std::string& name) const;
    // Stores a value as reading would, after the member's checks (facets and
    // schema rules): a value that breaks them throws and changes nothing. An
    // invalid variant unsets an optional member. An unknown name throws
    // CQmInvalidParamException "Unknown property [%s] for the class [%s]".
    void SetValue(int index, const QmVariant& value);
    void SetValue(const std::string& name, const QmVariant& value);

    // CXmlGeneratedClass
    void AccessProperty(int propertyIndex, bool read, QmVariant& value) override;
    QmXmlLib10Data::CParentElementInfo* GetClassInfo() const override;
    QmXmlLib10Data::CElementInfo** GetClassElementInfo() const override;
    QmXmlLib10Data::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;
    std::string GetTypeName() const override;
    std::string GetTypeNamespace() const override;
    bool HasSameClassAs(const CXmlGeneratedClass& other) const override;
    std::string GetTargetNamespace() const override;
    const Generated::CMemberChecks* GetMemberChecks() const override;

protected:
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CXmlSerializationContext& ctx,
                             bool isRoot) override;
    // A root read through xsi:type writes it back (members' xsi:type is their info's business).
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementName, const CXmlSerializationContext& ctx,
                   bool asChoiceMember) const override;

private:
    friend class CDynamicClassSet;

    const CDynamicClassSet* m_set;
    const CClassDescription* m_description;
    std::vector<QmVariant> m_values;
    // A root object's namespace (its class may be shared by elements of
    // several namespaces); unset for members, whose infos name theirs.
    std::string m_rootNamespace;
    bool m_isRoot = false;
    // The object's class is not its member's declared one (xsi:type or a
    // substitution picked it): xsi:type is written for it.
    bool m_retyped = false;
};

class CDynamicClassSet final : public QmXmlLib10Data::IClassFactory {
public:
    // Maps every type of the schema set. Throws CQmSchemaException when the
    // set uses something the binding cannot represent.
    static std::shared_ptr<const CDynamicClassSet> Create(std::shared_ptr<const CSchemaSet> schemas);
    ~CDynamicClassSet();
    CDynamicClassSet(const CDynamicClassSet&) = delete;
    CDynamicClassSet& operator=(const CDynamicClassSet&) = delete;

    const CSchemaSet& GetSchemaSet() const noexcept { return *m_schemas; }
    // Every class, in a stable order (the mapping's).
    const std::vector<std::unique_ptr<CClassDescription>>& GetClasses() const noexcept { return m_classes; }
    // The class of a global element declaration, or null.
    const CClassDescription* FindRootClass(const std::string& ns, const std::string& localName) const;

    // A new object of the class, in its initial state.
    CSmartPtr<CDynamicObject> CreateObject(const CClassDescription& description) const;
    // The object for a document whose root element has this name; null when
    // no global element declaration of the set has it.
    CSmartPtr<CDynamicObject> CreateRootObject(const std::string& ns, const std::string& localName) const;

    // Reads a document (text or Fast Infoset, plain, gzip or zlib) into the
    // object of the global element declaration its root element names. A
    // root no declaration has throws CQmValidationException
    // "No global element declaration for the root element [%s]" ({ns}local,
    // or the local name alone in no namespace); every other failure is the
    // runtime's.
    CSmartPtr<CDynamicObject> ReadFile(const std::string& path,
                                       const CXmlSerializationContext& ctx = CXmlSerializationContext()) const;
    CSmartPtr<CDynamicObject> ReadBuffer(const void* data, std::size_t size,
                                         const CXmlSerializationContext& ctx = CXmlSerializationContext()) const;

    // IClassFactory: classIndex is the position in GetClasses().
    CSmartPtr<CXmlObjectBase> CreateMember(int classIndex, const char* elementName) const override;
    CSmartPtr<CXmlObjectBase> CreateForElement(int classIndex, CXmlElement* element) const override;

private:
    friend class CDynamicObject;
    CDynamicClassSet() = default;
    CSmartPtr<CDynamicObject> ReadRoot(CXmlDocument& document, const CXmlSerializationContext& ctx) const;

    std::shared_ptr<const CSchemaSet> m_schemas;
    std::vector<std::unique_ptr<CClassDescription>> m_classes;
    struct Index;
    std::unique_ptr<Index> m_index;
};

}  // namespace Schema
}  // namespace QmXmlLib10
