// The schema loader: XML Schema documents to components.
//
// Loading runs in stages, each over everything the earlier one produced, so
// that no stage recurses along references:
//  1. read documents (a work list follows include, import and redefine) and
//     register an empty shell for every global component;
//  2. fill every shell from its schema element, creating local components
//     and resolving references to the shells by name;
//  3. settle what depends on other components: type derivation (simple
//     types, then complex ones, each after its base), attribute groups and
//     model group definitions (cycles refused), substitution groups.
// The only recursion follows the nesting of schema elements in one document,
// which the reading stage bounds.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/types/restrictions.h"
#include "schema/lexical_check.h"
#include "schema/schema_set_impl.h"
#include "schema/particle_restriction.h"
#include "schema/value_rule.h"
#include "schema/xpath_check.h"

namespace QmXmlLib10 {
namespace Schema {

const char* const CSchemaSet::kXsdNamespace = "http://www.w3.org/2001/XMLSchema";
const char* const CSchemaSet::kXmlNamespace = "http://www.w3.org/XML/1998/namespace";

namespace {

const std::string kXs = "http://www.w3.org/2001/XMLSchema";
const std::string kXml = "http://www.w3.org/XML/1998/namespace";
const std::string kXsi = "http://www.w3.org/2001/XMLSchema-instance";
const std::string kXmlns = "http://www.w3.org/2000/xmlns/";

// Schema elements nest this deep at most (anonymous types in local elements in
// anonymous types ...); deeper documents are refused rather than walked.
constexpr int kMaxNesting = 256;

// A prefix scope: the declarations one element makes, chained to its parent's.
struct Scope {
    const Scope* parent = nullptr;
    std::vector<std::pair<std::string, std::string>> declarations;
};

struct Doc;

// A schema element with its name expanded and its namespace scope: the
// document tree is read without namespace processing (so that the prefix
// declarations stay visible as attributes), and expanded here.
struct Node {
    const CXmlElement* element = nullptr;
    const Node* parent = nullptr;
    Doc* doc = nullptr;
    std::string ns;
    std::string local;
    const Scope* scope = nullptr;
    std::vector<const Node*> children;
    // Unqualified attributes, by name.
    std::vector<std::pair<std::string, std::string>> attributes;
    // Attributes in the XML Schema namespace (never allowed).
    std::string badAttribute;
    int depth = 0;

    const std::string* Attr(const char* name) const {
        for (const auto& a : attributes)
            if (a.first == name) return &a.second;
        return nullptr;
    }
    bool Is(const char* name) const { return ns == kXs && local == name; }
};

struct Doc {
    std::string location;  // path as resolved, the buffer's base location, or "(buffer)"
    bool hasBase = true;   // false for a buffer without a base location
    std::string key;
    std::string targetNamespace;
    bool chameleon = false;
    bool elementsQualified = false;
    bool attributesQualified = false;
    unsigned blockDefault = 0;
    unsigned finalDefault = 0;
    std::unique_ptr<CXmlDocument> dom;
    std::deque<Node> nodes;
    std::deque<Scope> scopes;
    const Node* root = nullptr;
};

enum class Space { Type, Element, Attribute, Group, AttributeGroup, Notation, IdentityConstraint };

const char* SpaceName(Space space) {
    switch (space) {
        case Space::Type: return "type";
        case Space::Element: return "element";
        case Space::Attribute: return "attribute";
        case Space::Group: return "group";
        case Space::AttributeGroup: return "attribute group";
        case Space::Notation: return "notation";
        case Space::IdentityConstraint: return "identity constraint";
    }
    return "";
}

std::string Trim(const std::string& s) {
    std::size_t b = 0;
    std::size_t e = s.size();
    while (b < e && (s[b] == ' ' || s[b] == '\t' || s[b] == '\n' || s[b] == '\r')) ++b;
    while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t' || s[e - 1] == '\n' || s[e - 1] == '\r')) --e;
    return s.substr(b, e - b);
}

std::vector<std::string> SplitList(const std::string& s) {
    std::vector<std::string> out;
    const std::string c = NormalizeWhiteSpace(s, WhiteSpace::Collapse);
    std::size_t start = 0;
    while (start < c.size()) {
        std::size_t end = c.find(' ', start);
        if (end == std::string::npos) end = c.size();
        out.push_back(c.substr(start, end - start));
        start = end + 1;
    }
    return out;
}

bool IsNCName(const std::string& s) { return IsNCNameLiteral(s); }

// What each schema element may carry besides id and qualified attributes.
const std::map<std::string, std::set<std::string>>& AllowedAttributes() {
    static const std::map<std::string, std::set<std::string>> table = {
        {"schema", {"targetNamespace", "version", "finalDefault", "blockDefault", "attributeFormDefault",
                    "elementFormDefault"}},
        {"include", {"schemaLocation"}},
        {"import", {"namespace", "schemaLocation"}},
        {"redefine", {"schemaLocation"}},
        {"annotation", {}},
        {"appinfo", {"source"}},
        {"documentation", {"source"}},
        {"simpleType", {"name", "final"}},
        {"restriction", {"base"}},
        {"list", {"itemType"}},
        {"union", {"memberTypes"}},
        {"complexType", {"name", "mixed", "abstract", "block", "final"}},
        {"simpleContent", {}},
        {"complexContent", {"mixed"}},
        {"extension", {"base"}},
        {"element", {"name", "ref", "type", "substitutionGroup", "minOccurs", "maxOccurs", "default", "fixed",
                     "nillable", "abstract", "block", "final", "form"}},
        {"attribute", {"name", "ref", "type", "use", "default", "fixed", "form"}},
        {"group", {"name", "ref", "minOccurs", "maxOccurs"}},
        {"attributeGroup", {"name", "ref"}},
        {"sequence", {"minOccurs", "maxOccurs"}},
        {"choice", {"minOccurs", "maxOccurs"}},
        {"all", {"minOccurs", "maxOccurs"}},
        {"any", {"namespace", "processContents", "minOccurs", "maxOccurs"}},
        {"anyAttribute", {"namespace", "processContents"}},
        {"key", {"name"}},
        {"keyref", {"name", "refer"}},
        {"unique", {"name"}},
        {"selector", {"xpath"}},
        {"field", {"xpath"}},
        {"notation", {"name", "public", "system"}},
        {"length", {"value", "fixed"}},
        {"minLength", {"value", "fixed"}},
        {"maxLength", {"value", "fixed"}},
        {"pattern", {"value"}},
        {"enumeration", {"value"}},
        {"whiteSpace", {"value", "fixed"}},
        {"maxInclusive", {"value", "fixed"}},
        {"maxExclusive", {"value", "fixed"}},
        {"minInclusive", {"value", "fixed"}},
        {"minExclusive", {"value", "fixed"}},
        {"totalDigits", {"value", "fixed"}},
        {"fractionDigits", {"value", "fixed"}},
    };
    return table;
}

bool IsFacetName(const std::string& n) {
    static const std::set<std::string> facets = {"length", "minLength", "maxLength", "pattern", "enumeration",
                                                 "whiteSpace", "maxInclusive", "maxExclusive", "minInclusive",
                                                 "minExclusive", "totalDigits", "fractionDigits"};
    return facets.count(n) != 0;
}

// Per complex type, what stage 2 read and stage 3 needs to derive it.
struct AttributeItems {
    std::vector<const CAttributeUse*> uses;
    std::vector<const CAttributeGroup*> groups;
    const CWildcard* wildcard = nullptr;
    const Node* node = nullptr;
};

struct ComplexInfo {
    const Node* node = nullptr;
    bool simpleContent = false;
    bool mixed = false;
    const CParticle* ownParticle = nullptr;
    AttributeItems attributes;
    // simple content restriction: facets and an optional nested type
    const CSimpleType* restrictionType = nullptr;
    const Node* restrictionNode = nullptr;
    bool done = false;
    bool visiting = false;
};

struct SimpleInfo {
    const Node* node = nullptr;  // the restriction / list / union element
    bool done = false;
    bool visiting = false;
};

}  // namespace

class CSchemaLoader {
public:
    explicit CSchemaLoader(CSchemaSet::Impl& set) : m_set(set) {}

    void LoadSource(const CSchemaSource& source);
    void Finish();

private:
    // ---- errors
    [[noreturn]] void Fail(const Node* node, const std::string& what) const;
    static std::string PathOf(const Node* node);

    // ---- stage 1
    Doc* ReadDocument(const std::string& location, const std::string* text, const std::string& chameleonNs,
                      const Node* referrer, const std::string& expectedNs, bool checkNs);
    void BuildNodes(Doc& doc);
    void ProcessDocument(Doc* doc);
    void RegisterGlobal(const Node* node, bool redefining);
    std::string Resolve(const Node* referrer, const std::string& schemaLocation) const;

    // ---- names
    CQName ResolveQName(const Node* node, const std::string& value) const;
    std::string NamespaceFor(const Node* node, bool global, const char* formDefault) const;

    // ---- lookups by reference
    template <typename T>
    T* Lookup(CQNameMap<T>& map, const Node* node, const CQName& name, Space space, const char* what);
    const CTypeDefinition* LookupType(const Node* node, const CQName& name, const char* what);

    // ---- literals
    // Whether text is a valid value of the type. Each type's rule is built
    // once (its enumeration read once), however many literals are checked
    // against it; only settled types are asked.
    bool IsValidLiteral(const CSimpleType* type, const std::string& text);

    // ---- stage 2
    void CheckAttributes(const Node* node) const;
    void ReadAnnotations(const Node* node, CSchemaComponent* component) const;
    void Stamp(const Node* node, CSchemaComponent* component) const;
    void FillSimpleType(const Node* node, CSimpleType* type);
    void FillComplexType(const Node* node, CComplexType* type);
    void FillElement(const Node* node, CElementDeclaration* element, const CComplexType* enclosing);
    void FillAttribute(const Node* node, CAttributeDeclaration* attribute, bool global);
    void FillAttributeGroup(const Node* node, CAttributeGroup* group);
    void FillModelGroupDefinition(const Node* node, CModelGroupDefinition* group);
    void ReadAttributeItems(const Node* parent, std::size_t first, AttributeItems& items,
                            const CComplexType* enclosing);
    const CAttributeUse* ReadAttributeUse(const Node* node, const CComplexType* enclosing);
    const CWildcard* ReadWildcard(const Node* node);
    const CParticle* ReadParticle(const Node* node, const CComplexType* enclosing, bool topLevel);
    const CModelGroup* ReadModelGroup(const Node* node, const CComplexType* enclosing);
    void ReadOccurs(const Node* node, CParticle* particle) const;
    void ReadFacets(const Node* owner, std::size_t first, CSimpleType* type);
    void ReadIdentityConstraint(const Node* node, CElementDeclaration* element);
    CSimpleType* ReadLocalSimpleType(const Node* node);
    CComplexType* ReadLocalComplexType(const Node* node, const CElementDeclaration* owner);
    unsigned ReadDerivationSet(const Node* node, const char* attribute, unsigned allowed, unsigned defaultValue) const;
    bool ReadBoolean(const Node* node, const char* attribute, bool defaultValue) const;

    // ---- stage 3
    void DeriveSimpleType(CSimpleType* type);
    void DeriveSimpleTypeStep(CSimpleType* type);
    void CheckFacets(CSimpleType* type, const Node* node);
    void DeriveComplexType(CComplexType* type);
    void DeriveComplexTypeStep(CComplexType* type);
    void SettleAttributeGroups();
    void SettleModelGroups();
    void SettleSubstitutionGroups();
    void CheckValueConstraints();
    void MergeAttributes(const AttributeItems& items, std::vector<const CAttributeUse*>& uses,
                         const CWildcard*& wildcard, const Node* node);

    CSchemaSet::Impl& m_set;
    std::vector<std::unique_ptr<Doc>> m_docs;
    std::unordered_map<std::string, Doc*> m_docsByKey;
    std::deque<Doc*> m_work;
    // Redefinitions wait until the redefined document is registered.
    std::vector<std::pair<const Node*, Doc*>> m_redefines;
    // Shells and the schema elements they come from, in document order.
    struct Global {
        const Node* node;
        CSchemaComponent* component;
    };
    std::vector<Global> m_globals;
    std::unordered_map<const CSchemaComponent*, const Node*> m_nodeOf;
    // A redefining component's own name resolves to the redefined one.
    struct Redefinition {
        CSchemaComponent* original;
        CQName name;
        Space space;
    };
    std::unordered_map<const CSchemaComponent*, Redefinition> m_redefined;
    // The model group definition being filled, outside nested complex types:
    // its references are the ones a cycle can run through.
    const CModelGroupDefinition* m_groupContext = nullptr;
    const CSchemaComponent* m_current = nullptr;  // the global being filled
    std::unordered_map<const CSimpleType*, SimpleInfo> m_simple;
    std::unordered_map<const CComplexType*, ComplexInfo> m_complex;
    std::unordered_map<const CAttributeGroup*, AttributeItems> m_attributeGroupItems;
    // Model group definitions each definition refers to, for the cycle check.
    std::unordered_map<const CModelGroupDefinition*, std::vector<const CModelGroupDefinition*>> m_groupRefs;
    // Group references whose target must not be an 'all' group unless alone.
    std::vector<std::pair<const Node*, const CModelGroupDefinition*>> m_nestedGroupRefs;
    std::vector<std::pair<const Node*, CElementDeclaration*>> m_elements;
    std::vector<std::pair<const Node*, CAttributeDeclaration*>> m_attributeDecls;
    std::vector<std::pair<const Node*, const CAttributeUse*>> m_uses;
    std::vector<std::pair<const Node*, CIdentityConstraint*>> m_keyrefs;
    std::vector<std::pair<CParticle*, const CModelGroupDefinition*>> m_groupParticles;
    std::unordered_set<const CElementDeclaration*> m_explicitType;
    std::unordered_map<const CSimpleType*, std::unique_ptr<const CSchemaValueRule>> m_literalRules;
    int m_bufferCount = 0;
};

// ------------------------------------------------------------------ errors

std::string CSchemaLoader::PathOf(const Node* node) {
    std::vector<const Node*> chain;
    for (const Node* n = node; n != nullptr; n = n->parent) chain.push_back(n);
    std::string path;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        const Node* n = *it;
        path += "/" + n->local;
        const std::string* label = n->Attr("name");
        if (label == nullptr) label = n->Attr("ref");
        if (label == nullptr && (n->local == "include" || n->local == "import" || n->local == "redefine"))
            label = n->Attr("schemaLocation");
        if (label != nullptr) path += "[" + *label + "]";
    }
    return path;
}

void CSchemaLoader::Fail(const Node* node, const std::string& what) const {
    if (node == nullptr) throw CQmSchemaException(what);
    throw CQmSchemaException("In [" + node->doc->location + "] at [" + PathOf(node) + "]: " + what);
}

void CSchemaLoader::Stamp(const Node* node, CSchemaComponent* component) const {
    component->source.document = node->doc->location;
    component->source.path = PathOf(node);
    ReadAnnotations(node, component);
}

// ------------------------------------------------------------------ stage 1

std::string CSchemaLoader::Resolve(const Node* referrer, const std::string& schemaLocation) const {
    const std::string location = Trim(schemaLocation);
    if (location.find("://") != std::string::npos && location.rfind("file://", 0) != 0)
        Fail(referrer, "The schema location [" + location + "] is not a local file; schemas are never fetched from the network");
    std::string path = location.rfind("file://", 0) == 0 ? location.substr(7) : location;
    namespace fs = std::filesystem;
    fs::path p(path);
    if (p.is_relative()) {
        if (!referrer->doc->hasBase)
            Fail(referrer, "The schema location [" + location + "] is relative, and the document has no base location");
        p = fs::path(referrer->doc->location).parent_path() / p;
    }
    return p.lexically_normal().string();
}

Doc* CSchemaLoader::ReadDocument(const std::string& location, const std::string* text, const std::string& chameleonNs,
                                 const Node* referrer, const std::string& expectedNs, bool checkNs) {
    // A document is read once per namespace it is read for: its own target
    // namespace when it has one, else the includer's (chameleon) or none.
    std::string key;
    std::string path;
    if (text != nullptr) {
        key = "buffer:" + std::to_string(++m_bufferCount);
    } else {
        std::error_code ec;
        const std::filesystem::path canonical = std::filesystem::weakly_canonical(location, ec);
        path = ec ? location : canonical.string();
        const auto own = m_docsByKey.find(path + "\n#own");
        if (own != m_docsByKey.end()) return own->second;
        key = path + "\n" + chameleonNs;
    }
    const auto known = m_docsByKey.find(key);
    if (known != m_docsByKey.end()) return known->second;

    auto doc = std::make_unique<Doc>();
    doc->location = location.empty() ? std::string("(buffer)") : location;
    doc->hasBase = !location.empty();
    doc->key = key;
    CXmlSerializationContext context;
    // Without namespace processing the prefix declarations stay on the
    // elements as attributes; Node expands the names itself.
    context.SetSchemaType(SchemaType_NoNamespaces);
    context.SetStripCDATA(true);
    doc->dom = std::make_unique<CXmlDocument>(context);
    try {
        if (text != nullptr) {
            doc->dom->LoadXml(text->c_str());
        } else {
            doc->dom->Load(location.c_str());
        }
    } catch (const CQmException& e) {
        if (referrer == nullptr) throw;
        throw CQmSchemaException("In [" + referrer->doc->location + "] at [" + PathOf(referrer) +
                                     "]: The schema document [" + location + "] cannot be loaded",
                                 e);
    }
    Doc* raw = doc.get();
    m_docs.push_back(std::move(doc));
    m_docsByKey[key] = raw;
    m_set.documents.push_back(raw->location);
    BuildNodes(*raw);
    const Node* root = raw->root;
    if (!root->Is("schema"))
        Fail(root, "The document is not an XML schema: its root element is [" + CQName{root->ns, root->local}.ToString() + "]");
    const std::string* tns = root->Attr("targetNamespace");
    if (tns != nullptr && tns->empty()) Fail(root, "The target namespace must not be empty");
    raw->targetNamespace = tns != nullptr ? *tns : std::string();
    if (tns != nullptr && text == nullptr) {
        m_docsByKey.erase(key);
        raw->key = path + "\n#own";
        m_docsByKey[raw->key] = raw;
    }
    if (checkNs) {
        if (tns == nullptr && !chameleonNs.empty()) {
            raw->targetNamespace = chameleonNs;
            raw->chameleon = true;
        } else if (raw->targetNamespace != expectedNs) {
            Fail(referrer, "The schema document [" + location + "] has the target namespace [" + raw->targetNamespace +
                               "], not [" + expectedNs + "]");
        }
    }
    CheckAttributes(root);
    auto form = [&](const char* attribute) {
        const std::string* v = root->Attr(attribute);
        if (v == nullptr) return false;
        const std::string t = Trim(*v);
        if (t == "qualified") return true;
        if (t == "unqualified") return false;
        Fail(root, "The value [" + *v + "] of the attribute [" + attribute + "] is not qualified or unqualified");
    };
    raw->elementsQualified = form("elementFormDefault");
    raw->attributesQualified = form("attributeFormDefault");
    raw->blockDefault = ReadDerivationSet(root, "blockDefault",
                                          Derivation_Extension | Derivation_Restriction | Derivation_Substitution, 0);
    raw->finalDefault = ReadDerivationSet(
        root, "finalDefault", Derivation_Extension | Derivation_Restriction | Derivation_List | Derivation_Union, 0);
    m_work.push_back(raw);
    return raw;
}

void CSchemaLoader::BuildNodes(Doc& doc) {
    // Iterative walk: the document's depth is not ours to trust.
    struct Pending {
        const CXmlElement* element;
        Node* parent;
    };
    std::vector<Pending> stack{{doc.dom->GetDocumentElement(), nullptr}};
    while (!stack.empty()) {
        const Pending item = stack.back();
        stack.pop_back();
        doc.nodes.emplace_back();
        Node& node = doc.nodes.back();
        node.element = item.element;
        node.parent = item.parent;
        node.doc = &doc;
        node.depth = item.parent != nullptr ? item.parent->depth + 1 : 0;
        const Scope* scope = item.parent != nullptr ? item.parent->scope : nullptr;
        std::vector<std::pair<std::string, std::string>> qualified;
        for (const CXmlAttribute* a : item.element->GetAttributes()) {
            const std::string& name = a->GetLocalName();
            if (name == "xmlns" || name.rfind("xmlns:", 0) == 0) {
                if (node.scope == nullptr) {
                    doc.scopes.emplace_back();
                    doc.scopes.back().parent = scope;
                    node.scope = &doc.scopes.back();
                }
                const_cast<Scope*>(node.scope)
                    ->declarations.emplace_back(name == "xmlns" ? std::string() : name.substr(6), a->GetValue());
                continue;
            }
            if (name.find(':') != std::string::npos) {
                qualified.emplace_back(name, a->GetValue());
            } else {
                node.attributes.emplace_back(name, a->GetValue());
            }
        }
        if (node.scope == nullptr) node.scope = scope;
        if (item.parent != nullptr) item.parent->children.push_back(&node);
        if (node.depth > kMaxNesting)
            Fail(&node, FormatString("Schema elements nest more than %d levels deep", kMaxNesting));
        const std::string& raw = item.element->GetLocalName();
        const std::size_t colon = raw.find(':');
        auto lookup = [&](const std::string& prefix, bool element, std::string& uri) {
            if (prefix == "xml") {
                uri = kXml;
                return true;
            }
            for (const Scope* s = node.scope; s != nullptr; s = s->parent)
                for (auto it = s->declarations.rbegin(); it != s->declarations.rend(); ++it)
                    if (it->first == prefix) {
                        uri = it->second;
                        return !uri.empty() || (prefix.empty() && element);
                    }
            uri.clear();
            return prefix.empty();
        };
        std::string prefix = colon == std::string::npos ? std::string() : raw.substr(0, colon);
        node.local = colon == std::string::npos ? raw : raw.substr(colon + 1);
        if (!lookup(prefix, true, node.ns))
            Fail(&node, "The prefix [" + prefix + "] of the element [" + raw + "] is not declared");
        for (const auto& q : qualified) {
            const std::size_t c = q.first.find(':');
            std::string uri;
            if (!lookup(q.first.substr(0, c), false, uri))
                Fail(&node, "The prefix [" + q.first.substr(0, c) + "] of the attribute [" + q.first + "] is not declared");
            if (uri == kXs && node.badAttribute.empty()) node.badAttribute = q.first;
        }
        // Text of elements outside the schema vocabulary is never read, so
        // only schema elements get their children expanded.
        if (node.ns == kXs && (node.local == "appinfo" || node.local == "documentation")) continue;
        std::vector<Pending> children;
        for (const CXmlElement* child = item.element->GetFirstElement(); child != nullptr;
             child = child->GetNextSiblingElement())
            children.push_back({child, &node});
        for (auto it = children.rbegin(); it != children.rend(); ++it) stack.push_back(*it);
        if (item.parent == nullptr) doc.root = &node;
    }
}

void CSchemaLoader::ProcessDocument(Doc* doc) {
    const Node* root = doc->root;
    bool seenDefinition = false;
    for (const Node* child : root->children) {
        if (child->ns != kXs) Fail(child, "The element [" + CQName{child->ns, child->local}.ToString() + "] is not allowed in a schema");
        const std::string& k = child->local;
        if (k == "annotation") {
            CheckAttributes(child);
            continue;
        }
        if (k == "include" || k == "import" || k == "redefine") {
            if (seenDefinition) Fail(child, "The element [" + k + "] must come before the schema's definitions");
            CheckAttributes(child);
            const std::string* location = child->Attr("schemaLocation");
            if (k == "import") {
                const std::string* ns = child->Attr("namespace");
                const std::string importedNs = ns != nullptr ? *ns : std::string();
                if (ns != nullptr && ns->empty()) Fail(child, "The namespace of an import must not be empty");
                if (importedNs == doc->targetNamespace)
                    Fail(child, "A schema must not import its own target namespace [" + importedNs + "]");
                for (const Node* c : child->children)
                    if (!c->Is("annotation")) Fail(c, "The element [" + c->local + "] is not allowed in an import");
                // Without a location the namespace must come from elsewhere
                // (the XML namespace is built in).
                if (location == nullptr) continue;
                ReadDocument(Resolve(child, *location), nullptr, std::string(), child, importedNs, true);
                continue;
            }
            if (location == nullptr) Fail(child, "The element [" + k + "] has no schemaLocation");
            for (const Node* c : child->children) {
                if (k == "include" && !c->Is("annotation"))
                    Fail(c, "The element [" + c->local + "] is not allowed in an include");
            }
            Doc* target = ReadDocument(Resolve(child, *location), nullptr, doc->targetNamespace, child,
                                       doc->targetNamespace, true);
            if (k == "redefine") m_redefines.emplace_back(child, target);
            continue;
        }
        seenDefinition = true;
        if (k == "simpleType" || k == "complexType" || k == "element" || k == "attribute" || k == "group" ||
            k == "attributeGroup" || k == "notation") {
            RegisterGlobal(child, false);
        } else {
            Fail(child, "The element [" + k + "] is not allowed in a schema");
        }
    }
}

void CSchemaLoader::RegisterGlobal(const Node* node, bool redefining) {
    CheckAttributes(node);
    const std::string* name = node->Attr("name");
    if (name == nullptr) Fail(node, "A global " + node->local + " must have a name");
    if (!IsNCName(Trim(*name))) Fail(node, "The name [" + *name + "] is not a valid NCName");
    if (node->Attr("ref") != nullptr) Fail(node, "A global " + node->local + " must not have a ref");
    const CQName qname{node->doc->targetNamespace, Trim(*name)};
    const std::string& k = node->local;
    CSchemaComponent* component = nullptr;
    auto add = [&](auto& map, auto* shell, Space space, auto& list) {
        auto it = map.find(qname);
        if (redefining) {
            if (it == map.end())
                Fail(node, std::string("The redefined ") + SpaceName(space) + " [" + qname.ToString() +
                               "] is not defined in the redefined document");
            m_redefined[shell] = Redefinition{it->second, qname, space};
            auto pos = std::find(list.begin(), list.end(), it->second);
            if (pos != list.end()) *pos = shell;
            it->second = shell;
        } else if (it != map.end() && qname.ns == kXml && it->second->source.path.empty()) {
            // A schema document for the XML namespace replaces the built-in
            // declarations it repeats.
            it->second = shell;
            list.push_back(shell);
        } else {
            if (it != map.end())
                Fail(node, std::string("The ") + SpaceName(space) + " [" + qname.ToString() + "] is defined twice");
            map[qname] = shell;
            list.push_back(shell);
        }
        component = shell;
    };
    if (k == "simpleType") {
        CSimpleType* t = m_set.Make<CSimpleType>();
        t->name = qname;
        add(m_set.types, static_cast<CTypeDefinition*>(t), Space::Type, m_set.typeList);
    } else if (k == "complexType") {
        CComplexType* t = m_set.Make<CComplexType>();
        t->name = qname;
        add(m_set.types, static_cast<CTypeDefinition*>(t), Space::Type, m_set.typeList);
    } else if (k == "element") {
        CElementDeclaration* e = m_set.Make<CElementDeclaration>();
        e->name = qname;
        add(m_set.elements, e, Space::Element, m_set.elementList);
    } else if (k == "attribute") {
        CAttributeDeclaration* a = m_set.Make<CAttributeDeclaration>();
        a->name = qname;
        add(m_set.attributes, a, Space::Attribute, m_set.attributeList);
    } else if (k == "group") {
        CModelGroupDefinition* g = m_set.Make<CModelGroupDefinition>();
        g->name = qname;
        add(m_set.groups, g, Space::Group, m_set.groupList);
    } else if (k == "attributeGroup") {
        CAttributeGroup* g = m_set.Make<CAttributeGroup>();
        g->name = qname;
        add(m_set.attributeGroups, g, Space::AttributeGroup, m_set.attributeGroupList);
    } else {
        CNotation* n = m_set.Make<CNotation>();
        n->name = qname;
        add(m_set.notations, n, Space::Notation, m_set.notationList);
    }
    m_globals.push_back({node, component});
    m_nodeOf[component] = node;
}

void CSchemaLoader::LoadSource(const CSchemaSource& source) {
    if (source.isFile) {
        ReadDocument(source.path, nullptr, std::string(), nullptr, std::string(), false);
    } else {
        Doc* doc = ReadDocument(source.path, &source.text, std::string(), nullptr, std::string(), false);
        (void)doc;
    }
    while (!m_work.empty()) {
        Doc* doc = m_work.front();
        m_work.pop_front();
        ProcessDocument(doc);
    }
}

// ------------------------------------------------------------------ names

CQName CSchemaLoader::ResolveQName(const Node* node, const std::string& value) const {
    const std::string v = Trim(value);
    const std::size_t colon = v.find(':');
    const std::string prefix = colon == std::string::npos ? std::string() : v.substr(0, colon);
    const std::string local = colon == std::string::npos ? v : v.substr(colon + 1);
    if (!IsNCName(local) || (!prefix.empty() && !IsNCName(prefix)))
        Fail(node, "The value [" + value + "] is not a valid QName");
    CQName name{std::string(), local};
    if (prefix == "xml") {
        name.ns = kXml;
        return name;
    }
    bool found = false;
    for (const Scope* s = node->scope; s != nullptr && !found; s = s->parent)
        for (auto it = s->declarations.rbegin(); it != s->declarations.rend(); ++it)
            if (it->first == prefix) {
                name.ns = it->second;
                found = true;
                break;
            }
    if (!found && !prefix.empty()) Fail(node, "The prefix [" + prefix + "] of the name [" + v + "] is not declared");
    // An included document without a target namespace takes the includer's,
    // its unqualified references included.
    if (name.ns.empty() && node->doc->chameleon) name.ns = node->doc->targetNamespace;
    return name;
}

template <typename T>
T* CSchemaLoader::Lookup(CQNameMap<T>& map, const Node* node, const CQName& name, Space space, const char* what) {
    const auto it = map.find(name);
    if (it == map.end()) {
        std::string referrer = node->local;
        const std::string* label = node->Attr("name");
        if (label != nullptr) referrer += " [" + *label + "]";
        Fail(node, std::string("The ") + SpaceName(space) + " [" + name.ToString() + "] referenced by the " + referrer +
                       " is not defined" + (what != nullptr ? what : ""));
    }
    // Inside a redefinition, the component's own name means the redefined
    // one (which a later redefinition may have replaced in the map already).
    if (m_current != nullptr) {
        const auto original = m_redefined.find(m_current);
        if (original != m_redefined.end() && original->second.space == space && original->second.name == name)
            return static_cast<T*>(original->second.original);
    }
    return it->second;
}

const CTypeDefinition* CSchemaLoader::LookupType(const Node* node, const CQName& name, const char* what) {
    return Lookup(m_set.types, node, name, Space::Type, what);
}

std::string CSchemaLoader::NamespaceFor(const Node* node, bool global, const char* formDefault) const {
    if (global) return node->doc->targetNamespace;
    const std::string* form = node->Attr("form");
    bool qualified = std::string(formDefault) == "element" ? node->doc->elementsQualified : node->doc->attributesQualified;
    if (form != nullptr) {
        const std::string f = Trim(*form);
        if (f == "qualified") qualified = true;
        else if (f == "unqualified") qualified = false;
        else Fail(node, "The value [" + *form + "] of the attribute [form] is not qualified or unqualified");
    }
    return qualified ? node->doc->targetNamespace : std::string();
}

// ------------------------------------------------------------------ stage 2

void CSchemaLoader::CheckAttributes(const Node* node) const {
    const auto& table = AllowedAttributes();
    const auto it = table.find(node->local);
    if (it == table.end()) Fail(node, "The element [" + node->local + "] is not part of XML Schema");
    if (!node->badAttribute.empty())
        Fail(node, "The attribute [" + node->badAttribute + "] is not allowed on [" + node->local + "]");
    for (const auto& a : node->attributes) {
        if (a.first == "id") {
            if (!IsNCName(Trim(a.second))) Fail(node, "The id [" + a.second + "] is not a valid NCName");
            continue;
        }
        if (it->second.count(a.first) == 0)
            Fail(node, "The attribute [" + a.first + "] is not allowed on [" + node->local + "]");
    }
}

void CSchemaLoader::ReadAnnotations(const Node* node, CSchemaComponent* component) const {
    bool first = true;
    for (const Node* child : node->children) {
        if (child->Is("annotation")) {
            if (!first) Fail(child, "An annotation must be the first child of [" + node->local + "]");
            CheckAttributes(child);
            for (const Node* part : child->children) {
                if (part->Is("documentation")) {
                    CheckAttributes(part);
                    component->annotation.documentation.push_back(part->element->GetText());
                } else if (part->Is("appinfo")) {
                    CheckAttributes(part);
                } else {
                    Fail(part, "The element [" + part->local + "] is not allowed in an annotation");
                }
            }
        }
        first = false;
    }
}

unsigned CSchemaLoader::ReadDerivationSet(const Node* node, const char* attribute, unsigned allowed,
                                          unsigned defaultValue) const {
    const std::string* v = node->Attr(attribute);
    if (v == nullptr) return defaultValue & allowed;
    const std::vector<std::string> tokens = SplitList(*v);
    if (tokens.size() == 1 && tokens[0] == "#all") return allowed;
    unsigned flags = 0;
    for (const std::string& t : tokens) {
        unsigned f = 0;
        if (t == "extension") f = Derivation_Extension;
        else if (t == "restriction") f = Derivation_Restriction;
        else if (t == "substitution") f = Derivation_Substitution;
        else if (t == "list") f = Derivation_List;
        else if (t == "union") f = Derivation_Union;
        if ((f & allowed) == 0)
            Fail(node, "The value [" + *v + "] of the attribute [" + attribute + "] is not allowed");
        flags |= f;
    }
    return flags;
}

bool CSchemaLoader::ReadBoolean(const Node* node, const char* attribute, bool defaultValue) const {
    const std::string* v = node->Attr(attribute);
    if (v == nullptr) return defaultValue;
    const std::string t = Trim(*v);
    if (t == "true" || t == "1") return true;
    if (t == "false" || t == "0") return false;
    Fail(node, "The value [" + *v + "] of the attribute [" + attribute + "] is not a boolean");
}

// Content children: the node's children after an optional leading annotation.
static std::size_t FirstContent(const Node* node) {
    return !node->children.empty() && node->children[0]->Is("annotation") ? 1 : 0;
}

CSimpleType* CSchemaLoader::ReadLocalSimpleType(const Node* node) {
    CheckAttributes(node);
    if (node->Attr("name") != nullptr) Fail(node, "A local simpleType must not have a name");
    if (node->Attr("final") != nullptr) Fail(node, "A local simpleType must not have the attribute [final]");
    CSimpleType* t = m_set.Make<CSimpleType>();
    t->name.ns = node->doc->targetNamespace;
    FillSimpleType(node, t);
    return t;
}

void CSchemaLoader::FillSimpleType(const Node* node, CSimpleType* type) {
    Stamp(node, type);
    type->final = ReadDerivationSet(node, "final", Derivation_Restriction | Derivation_List | Derivation_Union,
                                    node->doc->finalDefault);
    const std::size_t first = FirstContent(node);
    if (node->children.size() != first + 1)
        Fail(node, "A simpleType must hold exactly one of restriction, list or union");
    const Node* d = node->children[first];
    if (d->ns != kXs || (d->local != "restriction" && d->local != "list" && d->local != "union"))
        Fail(d, "The element [" + d->local + "] is not allowed in a simpleType");
    CheckAttributes(d);
    m_simple[type].node = d;
    ReadAnnotations(d, type);
    const std::size_t inner = FirstContent(d);
    if (d->local == "restriction") {
        const std::string* base = d->Attr("base");
        const bool nested = d->children.size() > inner && d->children[inner]->Is("simpleType");
        if ((base != nullptr) == nested)
            Fail(d, "A restriction must have either a base attribute or a simpleType child");
        if (base != nullptr) {
            const CTypeDefinition* b = LookupType(d, ResolveQName(d, *base), nullptr);
            if (!b->IsSimple()) Fail(d, "The base type [" + b->name.ToString() + "] of a simple type is not a simple type");
            type->baseType = b;
        } else {
            type->baseType = ReadLocalSimpleType(d->children[inner]);
        }
        if (type->baseType == m_set.anySimpleType)
            Fail(d, "A simple type must not restrict [" + type->baseType->name.ToString() + "]");
        ReadFacets(d, inner + (nested ? 1 : 0), type);
    } else if (d->local == "list") {
        type->variety = CSimpleType::Variety::List;
        type->baseType = m_set.anySimpleType;
        const std::string* item = d->Attr("itemType");
        const bool nested = d->children.size() > inner && d->children[inner]->Is("simpleType");
        if ((item != nullptr) == nested) Fail(d, "A list must have either an itemType attribute or a simpleType child");
        if (d->children.size() > inner + (nested ? 1 : 0)) Fail(d, "A list holds at most one simpleType");
        if (item != nullptr) {
            const CTypeDefinition* t = LookupType(d, ResolveQName(d, *item), nullptr);
            if (!t->IsSimple()) Fail(d, "The item type [" + t->name.ToString() + "] of a list is not a simple type");
            type->itemType = static_cast<const CSimpleType*>(t);
        } else {
            type->itemType = ReadLocalSimpleType(d->children[inner]);
        }
    } else {
        type->variety = CSimpleType::Variety::Union;
        type->baseType = m_set.anySimpleType;
        const std::string* members = d->Attr("memberTypes");
        if (members != nullptr) {
            for (const std::string& m : SplitList(*members)) {
                const CTypeDefinition* t = LookupType(d, ResolveQName(d, m), nullptr);
                if (!t->IsSimple()) Fail(d, "The member type [" + t->name.ToString() + "] of a union is not a simple type");
                type->memberTypes.push_back(static_cast<const CSimpleType*>(t));
            }
        }
        for (std::size_t i = inner; i < d->children.size(); ++i) {
            if (!d->children[i]->Is("simpleType"))
                Fail(d->children[i], "The element [" + d->children[i]->local + "] is not allowed in a union");
            type->memberTypes.push_back(ReadLocalSimpleType(d->children[i]));
        }
        if (type->memberTypes.empty()) Fail(d, "A union must have at least one member type");
    }
}

void CSchemaLoader::ReadFacets(const Node* owner, std::size_t first, CSimpleType* type) {
    CFacets& f = type->ownFacets;
    std::vector<std::string> patterns;
    std::set<std::string> seen;
    bool anyAttributeLike = false;
    for (std::size_t i = first; i < owner->children.size(); ++i) {
        const Node* n = owner->children[i];
        if (n->ns == kXs && (n->local == "attribute" || n->local == "attributeGroup" || n->local == "anyAttribute") &&
            owner->parent != nullptr && owner->parent->Is("simpleContent")) {
            anyAttributeLike = true;
            continue;
        }
        if (anyAttributeLike) Fail(n, "The facet [" + n->local + "] must come before the attributes");
        if (n->ns != kXs || !IsFacetName(n->local))
            Fail(n, "The element [" + n->local + "] is not allowed in a restriction");
        CheckAttributes(n);
        ReadAnnotations(n, type);
        for (const Node* c : n->children)
            if (!c->Is("annotation")) Fail(c, "The element [" + c->local + "] is not allowed in a facet");
        const std::string* value = n->Attr("value");
        if (value == nullptr) Fail(n, "The facet [" + n->local + "] has no value");
        const std::string& k = n->local;
        if (k != "pattern" && k != "enumeration" && !seen.insert(k).second)
            Fail(n, "The facet [" + k + "] is given twice");
        const bool fixed = ReadBoolean(n, "fixed", false);
        auto number = [&](bool positive) {
            const std::string v = Trim(*value);
            if (!IsDecimalLiteral(v, false) || v[0] == '-' || (positive && CompareDecimals(v, "0") == 0))
                Fail(n, "The value [" + *value + "] of the facet [" + k + "] is not a " +
                            (positive ? "positive" : "non-negative") + " integer");
            if (v[0] == '-' && CompareDecimals(v, "0") != 0) Fail(n, "The value [" + *value + "] is negative");
            unsigned long long result = 0;
            for (const char c : v) {
                if (c < '0' || c > '9') continue;
                if (result > (~0ull - 9) / 10) return CFacetValue<unsigned long long>{~0ull, fixed};
                result = result * 10 + static_cast<unsigned>(c - '0');
            }
            return CFacetValue<unsigned long long>{result, fixed};
        };
        if (k == "length") f.length = number(false);
        else if (k == "minLength") f.minLength = number(false);
        else if (k == "maxLength") f.maxLength = number(false);
        else if (k == "totalDigits") f.totalDigits = number(true);
        else if (k == "fractionDigits") f.fractionDigits = number(false);
        else if (k == "pattern") patterns.push_back(*value);
        else if (k == "enumeration") f.enumeration.push_back(*value);
        else if (k == "whiteSpace") {
            const std::string v = Trim(*value);
            WhiteSpace w = WhiteSpace::Collapse;
            if (v == "preserve") w = WhiteSpace::Preserve;
            else if (v == "replace") w = WhiteSpace::Replace;
            else if (v != "collapse") Fail(n, "The value [" + *value + "] of the facet [whiteSpace] is not preserve, replace or collapse");
            f.whiteSpace = CFacetValue<WhiteSpace>{w, fixed};
        } else if (k == "maxInclusive") f.maxInclusive = CFacetValue<std::string>{*value, fixed};
        else if (k == "maxExclusive") f.maxExclusive = CFacetValue<std::string>{*value, fixed};
        else if (k == "minInclusive") f.minInclusive = CFacetValue<std::string>{*value, fixed};
        else if (k == "minExclusive") f.minExclusive = CFacetValue<std::string>{*value, fixed};
    }
    if (!patterns.empty()) f.patterns.push_back(patterns);
}

CComplexType* CSchemaLoader::ReadLocalComplexType(const Node* node, const CElementDeclaration* owner) {
    (void)owner;
    CheckAttributes(node);
    if (node->Attr("name") != nullptr) Fail(node, "A local complexType must not have a name");
    for (const char* a : {"abstract", "block", "final"})
        if (node->Attr(a) != nullptr) Fail(node, std::string("A local complexType must not have the attribute [") + a + "]");
    CComplexType* t = m_set.Make<CComplexType>();
    t->name.ns = node->doc->targetNamespace;
    const CModelGroupDefinition* context = m_groupContext;
    m_groupContext = nullptr;
    FillComplexType(node, t);
    m_groupContext = context;
    return t;
}

void CSchemaLoader::FillComplexType(const Node* node, CComplexType* type) {
    Stamp(node, type);
    ComplexInfo& info = m_complex[type];
    info.node = node;
    type->abstract = ReadBoolean(node, "abstract", false);
    type->block = ReadDerivationSet(node, "block", Derivation_Extension | Derivation_Restriction, node->doc->blockDefault);
    type->final = ReadDerivationSet(node, "final", Derivation_Extension | Derivation_Restriction, node->doc->finalDefault);
    info.mixed = ReadBoolean(node, "mixed", false);
    const std::size_t first = FirstContent(node);
    const Node* content = node->children.size() > first ? node->children[first] : nullptr;
    if (content != nullptr && (content->Is("simpleContent") || content->Is("complexContent"))) {
        if (node->children.size() != first + 1)
            Fail(node->children[first + 1], "The element [" + node->children[first + 1]->local + "] is not allowed after [" + content->local + "]");
        CheckAttributes(content);
        ReadAnnotations(content, type);
        const std::size_t cf = FirstContent(content);
        if (content->children.size() != cf + 1)
            Fail(content, "A " + content->local + " must hold exactly one of restriction or extension");
        const Node* d = content->children[cf];
        if (!d->Is("restriction") && !d->Is("extension"))
            Fail(d, "The element [" + d->local + "] is not allowed in a " + content->local);
        CheckAttributes(d);
        ReadAnnotations(d, type);
        const std::string* base = d->Attr("base");
        if (base == nullptr) Fail(d, "A " + d->local + " in a " + content->local + " must have a base");
        type->baseType = LookupType(d, ResolveQName(d, *base), nullptr);
        type->derivationMethod = d->Is("extension") ? Derivation_Extension : Derivation_Restriction;
        if (content->Is("complexContent")) {
            const std::string* m = content->Attr("mixed");
            if (m != nullptr) info.mixed = ReadBoolean(content, "mixed", false);
        }
        std::size_t i = FirstContent(d);
        if (content->Is("simpleContent")) {
            info.simpleContent = true;
            if (d->Is("restriction")) {
                if (d->children.size() > i && d->children[i]->Is("simpleType")) {
                    info.restrictionType = ReadLocalSimpleType(d->children[i]);
                    ++i;
                }
                // Facets land on a fresh anonymous type derived in stage 3.
                CSimpleType* contentType = m_set.Make<CSimpleType>();
                contentType->name.ns = node->doc->targetNamespace;
                contentType->source = type->source;
                ReadFacets(d, i, contentType);
                info.restrictionNode = d;
                type->simpleContentType = contentType;
                while (i < d->children.size() && !d->children[i]->Is("attribute") &&
                       !d->children[i]->Is("attributeGroup") && !d->children[i]->Is("anyAttribute"))
                    ++i;
            }
            ReadAttributeItems(d, i, info.attributes, type);
        } else {
            if (d->children.size() > i) {
                const Node* c = d->children[i];
                if (c->Is("group") || c->Is("all") || c->Is("choice") || c->Is("sequence")) {
                    info.ownParticle = ReadParticle(c, type, true);
                    ++i;
                }
            }
            ReadAttributeItems(d, i, info.attributes, type);
        }
        return;
    }
    // Shorthand for a restriction of anyType.
    type->baseType = m_set.anyType;
    type->derivationMethod = Derivation_Restriction;
    std::size_t i = first;
    if (content != nullptr &&
        (content->Is("group") || content->Is("all") || content->Is("choice") || content->Is("sequence"))) {
        info.ownParticle = ReadParticle(content, type, true);
        ++i;
    }
    ReadAttributeItems(node, i, info.attributes, type);
}

void CSchemaLoader::ReadAttributeItems(const Node* parent, std::size_t first, AttributeItems& items,
                                       const CComplexType* enclosing) {
    items.node = parent;
    for (std::size_t i = first; i < parent->children.size(); ++i) {
        const Node* n = parent->children[i];
        if (items.wildcard != nullptr)
            Fail(n, "The element [" + n->local + "] is not allowed after the anyAttribute");
        if (n->Is("attribute")) {
            items.uses.push_back(ReadAttributeUse(n, enclosing));
        } else if (n->Is("attributeGroup")) {
            CheckAttributes(n);
            if (n->Attr("name") != nullptr) Fail(n, "An attributeGroup reference must not have a name");
            const std::string* ref = n->Attr("ref");
            if (ref == nullptr) Fail(n, "An attributeGroup reference must have a ref");
            for (const Node* c : n->children)
                if (!c->Is("annotation")) Fail(c, "The element [" + c->local + "] is not allowed in an attributeGroup reference");
            items.groups.push_back(
                Lookup(m_set.attributeGroups, n, ResolveQName(n, *ref), Space::AttributeGroup, nullptr));
        } else if (n->Is("anyAttribute")) {
            items.wildcard = ReadWildcard(n);
        } else {
            Fail(n, "The element [" + n->local + "] is not allowed in [" + parent->local + "]");
        }
    }
}

const CAttributeUse* CSchemaLoader::ReadAttributeUse(const Node* node, const CComplexType* enclosing) {
    CheckAttributes(node);
    CAttributeUse* use = m_set.Make<CAttributeUse>();
    Stamp(node, use);
    const std::string* u = node->Attr("use");
    if (u != nullptr) {
        const std::string v = Trim(*u);
        if (v == "required") use->use = CAttributeUse::Use::Required;
        else if (v == "prohibited") use->use = CAttributeUse::Use::Prohibited;
        else if (v != "optional") Fail(node, "The value [" + *u + "] of the attribute [use] is not optional, required or prohibited");
    }
    const std::string* def = node->Attr("default");
    const std::string* fix = node->Attr("fixed");
    if (def != nullptr && fix != nullptr) Fail(node, "An attribute must not have both default and fixed");
    if (def != nullptr && use->use != CAttributeUse::Use::Optional)
        Fail(node, "An attribute with a default must be optional");
    if (def != nullptr) use->valueConstraint = {CValueConstraint::Default, *def};
    if (fix != nullptr) use->valueConstraint = {CValueConstraint::Fixed, *fix};
    const std::string* ref = node->Attr("ref");
    if (ref != nullptr) {
        if (node->Attr("name") != nullptr) Fail(node, "An attribute must not have both name and ref");
        for (const char* a : {"type", "form"})
            if (node->Attr(a) != nullptr) Fail(node, std::string("An attribute reference must not have the attribute [") + a + "]");
        for (const Node* c : node->children)
            if (!c->Is("annotation")) Fail(c, "An attribute reference must not hold [" + c->local + "]");
        const CAttributeDeclaration* decl =
            Lookup(m_set.attributes, node, ResolveQName(node, *ref), Space::Attribute, nullptr);
        use->declaration = decl;
    } else {
        CAttributeDeclaration* decl = m_set.Make<CAttributeDeclaration>();
        decl->scope = CAttributeDeclaration::Scope::Local;
        decl->enclosingType = enclosing;
        FillAttribute(node, decl, false);
        decl->valueConstraint = {};
        use->declaration = decl;
    }
    m_uses.emplace_back(node, use);
    return use;
}

void CSchemaLoader::FillAttribute(const Node* node, CAttributeDeclaration* attribute, bool global) {
    Stamp(node, attribute);
    const std::string* name = node->Attr("name");
    if (name == nullptr) Fail(node, "An attribute must have a name or a ref");
    const std::string local = Trim(*name);
    if (!IsNCName(local)) Fail(node, "The name [" + *name + "] is not a valid NCName");
    if (local == "xmlns") Fail(node, "An attribute must not be named [xmlns]");
    if (global) {
        for (const char* a : {"use", "form"})
            if (node->Attr(a) != nullptr) Fail(node, std::string("A global attribute must not have the attribute [") + a + "]");
        attribute->name = {node->doc->targetNamespace, local};
        const std::string* def = node->Attr("default");
        const std::string* fix = node->Attr("fixed");
        if (def != nullptr && fix != nullptr) Fail(node, "An attribute must not have both default and fixed");
        if (def != nullptr) attribute->valueConstraint = {CValueConstraint::Default, *def};
        if (fix != nullptr) attribute->valueConstraint = {CValueConstraint::Fixed, *fix};
    } else {
        attribute->name = {NamespaceFor(node, false, "attribute"), local};
        attribute->qualified = !attribute->name.ns.empty();
    }
    if (attribute->name.ns == kXsi) Fail(node, "An attribute must not be declared in the namespace [" + kXsi + "]");
    const std::string* typeName = node->Attr("type");
    const std::size_t first = FirstContent(node);
    const bool nested = node->children.size() > first && node->children[first]->Is("simpleType");
    if (node->children.size() > first + (nested ? 1 : 0))
        Fail(node->children[first + (nested ? 1 : 0)], "The element [" + node->children[first + (nested ? 1 : 0)]->local + "] is not allowed in an attribute");
    if (typeName != nullptr && nested) Fail(node, "An attribute must not have both a type and an anonymous simpleType");
    if (typeName != nullptr) {
        const CTypeDefinition* t = LookupType(node, ResolveQName(node, *typeName), nullptr);
        if (!t->IsSimple()) Fail(node, "The type [" + t->name.ToString() + "] of an attribute is not a simple type");
        attribute->type = static_cast<const CSimpleType*>(t);
    } else if (nested) {
        attribute->type = ReadLocalSimpleType(node->children[first]);
    } else {
        attribute->type = m_set.anySimpleType;
    }
    m_attributeDecls.emplace_back(node, attribute);
}

const CWildcard* CSchemaLoader::ReadWildcard(const Node* node) {
    CheckAttributes(node);
    for (std::size_t i = FirstContent(node); i < node->children.size(); ++i)
        Fail(node->children[i], "The element [" + node->children[i]->local + "] is not allowed in [" + node->local + "]");
    CWildcard* w = m_set.Make<CWildcard>();
    Stamp(node, w);
    const std::string* pc = node->Attr("processContents");
    if (pc != nullptr) {
        const std::string v = Trim(*pc);
        if (v == "lax") w->processContents = CWildcard::ProcessContents::Lax;
        else if (v == "skip") w->processContents = CWildcard::ProcessContents::Skip;
        else if (v != "strict") Fail(node, "The value [" + *pc + "] of the attribute [processContents] is not strict, lax or skip");
    }
    const std::string* ns = node->Attr("namespace");
    const std::vector<std::string> tokens = ns != nullptr ? SplitList(*ns) : std::vector<std::string>{"##any"};
    CNamespaceConstraint& c = w->namespaceConstraint;
    if (tokens.size() == 1 && tokens[0] == "##any") {
        c.kind = CNamespaceConstraint::Kind::Any;
    } else if (tokens.size() == 1 && tokens[0] == "##other") {
        c.kind = CNamespaceConstraint::Kind::Not;
        c.namespaces = {node->doc->targetNamespace};
    } else {
        c.kind = CNamespaceConstraint::Kind::Set;
        for (const std::string& t : tokens) {
            if (t == "##targetNamespace") c.namespaces.push_back(node->doc->targetNamespace);
            else if (t == "##local") c.namespaces.emplace_back();
            else if (t.rfind("##", 0) == 0) Fail(node, "The value [" + *ns + "] of the attribute [namespace] is not allowed");
            else c.namespaces.push_back(t);
        }
        std::sort(c.namespaces.begin(), c.namespaces.end());
        c.namespaces.erase(std::unique(c.namespaces.begin(), c.namespaces.end()), c.namespaces.end());
    }
    return w;
}

void CSchemaLoader::ReadOccurs(const Node* node, CParticle* particle) const {
    auto parse = [&](const char* attribute, bool unbounded) -> std::uint64_t {
        const std::string* v = node->Attr(attribute);
        if (v == nullptr) return 1;
        const std::string t = Trim(*v);
        if (unbounded && t == "unbounded") return CParticle::kUnbounded;
        if (!IsDecimalLiteral(t, false) || t[0] == '-' || t[0] == '+')
            Fail(node, "The value [" + *v + "] of the attribute [" + attribute + "] is not a non-negative integer");
        std::uint64_t result = 0;
        for (const char c : t) {
            if (result > (CParticle::kUnbounded - 10) / 10) return CParticle::kUnbounded - 1;
            result = result * 10 + static_cast<unsigned>(c - '0');
        }
        return result;
    };
    particle->minOccurs = parse("minOccurs", false);
    particle->maxOccurs = parse("maxOccurs", true);
    if (particle->minOccurs > particle->maxOccurs)
        Fail(node, FormatString("minOccurs (%llu) is greater than maxOccurs (%llu)",
                                static_cast<unsigned long long>(particle->minOccurs),
                                static_cast<unsigned long long>(particle->maxOccurs)));
}

const CParticle* CSchemaLoader::ReadParticle(const Node* node, const CComplexType* enclosing, bool topLevel) {
    CheckAttributes(node);
    CParticle* p = m_set.Make<CParticle>();
    Stamp(node, p);
    ReadOccurs(node, p);
    if (node->Is("element")) {
        p->termKind = CParticle::TermKind::Element;
        const std::string* ref = node->Attr("ref");
        if (ref != nullptr) {
            if (node->Attr("name") != nullptr) Fail(node, "An element must not have both name and ref");
            for (const char* a : {"type", "nillable", "default", "fixed", "form", "block", "substitutionGroup", "abstract", "final"})
                if (node->Attr(a) != nullptr) Fail(node, std::string("An element reference must not have the attribute [") + a + "]");
            for (const Node* c : node->children)
                if (!c->Is("annotation")) Fail(c, "An element reference must not hold [" + c->local + "]");
            p->element = Lookup(m_set.elements, node, ResolveQName(node, *ref), Space::Element, nullptr);
        } else {
            for (const char* a : {"substitutionGroup", "abstract", "final"})
                if (node->Attr(a) != nullptr) Fail(node, std::string("A local element must not have the attribute [") + a + "]");
            CElementDeclaration* e = m_set.Make<CElementDeclaration>();
            e->scope = CElementDeclaration::Scope::Local;
            e->enclosingType = enclosing;
            FillElement(node, e, enclosing);
            p->element = e;
        }
    } else if (node->Is("any")) {
        p->termKind = CParticle::TermKind::Wildcard;
        p->wildcard = ReadWildcard(node);
    } else if (node->Is("group")) {
        p->termKind = CParticle::TermKind::ModelGroup;
        if (node->Attr("name") != nullptr) Fail(node, "A group reference must not have a name");
        const std::string* ref = node->Attr("ref");
        if (ref == nullptr) Fail(node, "A group reference must have a ref");
        for (const Node* c : node->children)
            if (!c->Is("annotation")) Fail(c, "A group reference must not hold [" + c->local + "]");
        const CModelGroupDefinition* def = Lookup(m_set.groups, node, ResolveQName(node, *ref), Space::Group, nullptr);
        if (m_groupContext != nullptr) m_groupRefs[m_groupContext].push_back(def);
        if (!topLevel || p->maxOccurs != 1) m_nestedGroupRefs.emplace_back(node, def);
        // The definition may not be filled yet: its model group is linked in
        // stage 3 (SettleModelGroups), recorded here by the particle.
        p->groupDefinition = def;
        m_groupParticles.emplace_back(p, def);
    } else if (node->Is("sequence") || node->Is("choice") || node->Is("all")) {
        if (node->Is("all")) {
            if (!topLevel) Fail(node, "An all group must be the whole content model");
            if (p->maxOccurs > 1) Fail(node, "An all group must have maxOccurs 0 or 1");
        }
        p->termKind = CParticle::TermKind::ModelGroup;
        p->modelGroup = ReadModelGroup(node, enclosing);
    } else {
        Fail(node, "The element [" + node->local + "] is not allowed in a content model");
    }
    return p;
}

const CModelGroup* CSchemaLoader::ReadModelGroup(const Node* node, const CComplexType* enclosing) {
    CModelGroup* g = m_set.Make<CModelGroup>();
    Stamp(node, g);
    g->compositor = node->Is("sequence") ? CModelGroup::Compositor::Sequence
                    : node->Is("choice") ? CModelGroup::Compositor::Choice
                                         : CModelGroup::Compositor::All;
    for (std::size_t i = FirstContent(node); i < node->children.size(); ++i) {
        const Node* c = node->children[i];
        if (g->compositor == CModelGroup::Compositor::All) {
            if (!c->Is("element")) Fail(c, "An all group may only hold elements");
            const CParticle* p = ReadParticle(c, enclosing, false);
            if (p->maxOccurs > 1) Fail(c, "An element in an all group must have maxOccurs 0 or 1");
            g->particles.push_back(p);
            continue;
        }
        if (!(c->Is("element") || c->Is("group") || c->Is("choice") || c->Is("sequence") || c->Is("any")))
            Fail(c, "The element [" + c->local + "] is not allowed in a " + node->local);
        g->particles.push_back(ReadParticle(c, enclosing, false));
    }
    return g;
}

void CSchemaLoader::FillElement(const Node* node, CElementDeclaration* element, const CComplexType* enclosing) {
    (void)enclosing;
    Stamp(node, element);
    const bool global = element->scope == CElementDeclaration::Scope::Global;
    const std::string* name = node->Attr("name");
    if (name == nullptr) Fail(node, "An element must have a name or a ref");
    const std::string local = Trim(*name);
    if (!IsNCName(local)) Fail(node, "The name [" + *name + "] is not a valid NCName");
    if (global) {
        for (const char* a : {"minOccurs", "maxOccurs", "form"})
            if (node->Attr(a) != nullptr) Fail(node, std::string("A global element must not have the attribute [") + a + "]");
        element->name = {node->doc->targetNamespace, local};
    } else {
        element->name = {NamespaceFor(node, false, "element"), local};
        element->qualified = !element->name.ns.empty();
    }
    element->nillable = ReadBoolean(node, "nillable", false);
    element->abstract = ReadBoolean(node, "abstract", false);
    element->block = ReadDerivationSet(node, "block", Derivation_Extension | Derivation_Restriction | Derivation_Substitution,
                                       node->doc->blockDefault);
    element->final = ReadDerivationSet(node, "final", Derivation_Extension | Derivation_Restriction, node->doc->finalDefault);
    const std::string* def = node->Attr("default");
    const std::string* fix = node->Attr("fixed");
    if (def != nullptr && fix != nullptr) Fail(node, "An element must not have both default and fixed");
    if (def != nullptr) element->valueConstraint = {CValueConstraint::Default, *def};
    if (fix != nullptr) element->valueConstraint = {CValueConstraint::Fixed, *fix};
    const std::string* head = node->Attr("substitutionGroup");
    if (head != nullptr)
        element->substitutionGroupHead =
            Lookup(m_set.elements, node, ResolveQName(node, *head), Space::Element, nullptr);
    const std::string* typeName = node->Attr("type");
    std::size_t i = FirstContent(node);
    bool anonymous = false;
    if (i < node->children.size() && (node->children[i]->Is("simpleType") || node->children[i]->Is("complexType"))) {
        if (typeName != nullptr) Fail(node, "An element must not have both a type and an anonymous type");
        const Node* t = node->children[i];
        if (t->Is("simpleType")) {
            element->type = ReadLocalSimpleType(t);
        } else {
            element->type = ReadLocalComplexType(t, element);
        }
        anonymous = true;
        ++i;
    }
    if (typeName != nullptr) element->type = LookupType(node, ResolveQName(node, *typeName), nullptr);
    if (typeName != nullptr || anonymous) m_explicitType.insert(element);
    for (; i < node->children.size(); ++i) {
        const Node* c = node->children[i];
        if (c->Is("key") || c->Is("keyref") || c->Is("unique")) {
            ReadIdentityConstraint(c, element);
        } else {
            Fail(c, "The element [" + c->local + "] is not allowed in an element");
        }
    }
    m_elements.emplace_back(node, element);
}

void CSchemaLoader::ReadIdentityConstraint(const Node* node, CElementDeclaration* element) {
    CheckAttributes(node);
    CIdentityConstraint* ic = m_set.Make<CIdentityConstraint>();
    Stamp(node, ic);
    ic->category = node->Is("key") ? CIdentityConstraint::Category::Key
                   : node->Is("keyref") ? CIdentityConstraint::Category::KeyRef
                                        : CIdentityConstraint::Category::Unique;
    const std::string* name = node->Attr("name");
    if (name == nullptr || !IsNCName(Trim(*name))) Fail(node, "An identity constraint must have a valid name");
    ic->name = {node->doc->targetNamespace, Trim(*name)};
    if (!m_set.identityConstraints.emplace(ic->name, ic).second)
        Fail(node, "The identity constraint [" + ic->name.ToString() + "] is defined twice");
    std::size_t i = FirstContent(node);
    if (i >= node->children.size() || !node->children[i]->Is("selector"))
        Fail(node, "An identity constraint must start with a selector");
    auto xpath = [&](const Node* n) {
        CheckAttributes(n);
        for (const Node* c : n->children)
            if (!c->Is("annotation")) Fail(c, "The element [" + c->local + "] is not allowed in [" + n->local + "]");
        const std::string* x = n->Attr("xpath");
        if (x == nullptr || Trim(*x).empty()) Fail(n, "A " + n->local + " must have an xpath");
        const auto declared = [n](const std::string& prefix) {
            for (const Scope* s = n->scope; s != nullptr; s = s->parent)
                for (const auto& d : s->declarations)
                    if (d.first == prefix) return !d.second.empty();
            return prefix == "xml";
        };
        if (!IsIdentityXPath(*x, n->local == "field", declared))
            Fail(n, "The xpath [" + *x + "] is not a valid " + n->local + " expression");
        return *x;
    };
    ic->selector = xpath(node->children[i++]);
    for (; i < node->children.size(); ++i) {
        if (!node->children[i]->Is("field"))
            Fail(node->children[i], "The element [" + node->children[i]->local + "] is not allowed in an identity constraint");
        ic->fields.push_back(xpath(node->children[i]));
    }
    if (ic->fields.empty()) Fail(node, "An identity constraint must have at least one field");
    if (ic->category == CIdentityConstraint::Category::KeyRef) {
        if (node->Attr("refer") == nullptr) Fail(node, "A keyref must have a refer attribute");
        m_keyrefs.emplace_back(node, ic);
    } else if (node->Attr("refer") != nullptr) {
        Fail(node, "Only a keyref may have a refer attribute");
    }
    element->identityConstraints.push_back(ic);
}

void CSchemaLoader::FillAttributeGroup(const Node* node, CAttributeGroup* group) {
    Stamp(node, group);
    ReadAttributeItems(node, FirstContent(node), m_attributeGroupItems[group], nullptr);
}

void CSchemaLoader::FillModelGroupDefinition(const Node* node, CModelGroupDefinition* group) {
    Stamp(node, group);
    const std::size_t first = FirstContent(node);
    if (node->children.size() != first + 1)
        Fail(node, "A group definition must hold exactly one of all, choice or sequence");
    const Node* c = node->children[first];
    if (!c->Is("all") && !c->Is("choice") && !c->Is("sequence"))
        Fail(c, "The element [" + c->local + "] is not allowed in a group definition");
    CheckAttributes(c);
    if (c->Attr("minOccurs") != nullptr || c->Attr("maxOccurs") != nullptr)
        Fail(c, "The model group of a group definition must not have minOccurs or maxOccurs");
    m_groupContext = group;
    group->modelGroup = ReadModelGroup(c, nullptr);
    m_groupContext = nullptr;
}

// ------------------------------------------------------------------ stage 3

namespace {

std::string TypeLabel(const CTypeDefinition* t) {
    return t->IsAnonymous() ? std::string("an anonymous type") : "[" + t->name.ToString() + "]";
}

bool IsOrdered(const std::string& p) {
    static const std::set<std::string> ordered = {"decimal", "float", "double", "duration", "dateTime", "time",
                                                  "date", "gYearMonth", "gYear", "gMonthDay", "gDay", "gMonth"};
    return ordered.count(p) != 0;
}

bool HasLength(const std::string& p) {
    static const std::set<std::string> lengthy = {"string", "anyURI", "hexBinary", "base64Binary", "QName", "NOTATION"};
    return lengthy.count(p) != 0;
}

bool IsEmptyParticle(const CParticle* p) {
    if (p == nullptr || p->maxOccurs == 0) return true;
    if (p->termKind != CParticle::TermKind::ModelGroup || p->modelGroup == nullptr) return false;
    if (!p->modelGroup->particles.empty()) return false;
    return p->modelGroup->compositor != CModelGroup::Compositor::Choice || p->minOccurs == 0;
}

}  // namespace

void CSchemaLoader::DeriveSimpleTypeStep(CSimpleType* type) {
    const Node* node = m_simple[type].node;
    if (type->variety == CSimpleType::Variety::List) {
        if (type->itemType->variety == CSimpleType::Variety::List)
            Fail(node, "The item type " + TypeLabel(type->itemType) + " of a list must not be a list");
        if (type->itemType->variety == CSimpleType::Variety::Union)
            for (const CSimpleType* m : type->itemType->memberTypes)
                if (m->variety == CSimpleType::Variety::List)
                    Fail(node, "The item type " + TypeLabel(type->itemType) + " of a list must not have list members");
        if (type->itemType->final & Derivation_List)
            Fail(node, "The type " + TypeLabel(type->itemType) + " does not allow derivation by list");
        type->whiteSpace = WhiteSpace::Collapse;
        type->facets.whiteSpace = CFacetValue<WhiteSpace>{WhiteSpace::Collapse, true};
        type->runtimeType = ItemType_string;
        return;
    }
    if (type->variety == CSimpleType::Variety::Union) {
        for (const CSimpleType* m : type->memberTypes)
            if (m->final & Derivation_Union)
                Fail(node, "The type " + TypeLabel(m) + " does not allow derivation by union");
        type->runtimeType = ItemType_string;
        return;
    }
    const CSimpleType* base = static_cast<const CSimpleType*>(type->baseType);
    if (base->final & Derivation_Restriction)
        Fail(node, "The type " + TypeLabel(base) + " does not allow derivation by restriction");
    type->variety = base->variety;
    type->primitiveType = base->primitiveType;
    type->itemType = base->itemType;
    type->memberTypes = base->memberTypes;
    type->runtimeType = base->runtimeType;
    CheckFacets(type, node);
    CFacets merged = base->facets;
    const CFacets& own = type->ownFacets;
    if (own.length) merged.length = own.length;
    if (own.minLength) merged.minLength = own.minLength;
    if (own.maxLength) merged.maxLength = own.maxLength;
    for (const auto& step : own.patterns) merged.patterns.push_back(step);
    if (!own.enumeration.empty()) merged.enumeration = own.enumeration;
    if (own.whiteSpace) merged.whiteSpace = own.whiteSpace;
    if (own.maxInclusive) merged.maxInclusive = own.maxInclusive, merged.maxExclusive.reset();
    if (own.maxExclusive) merged.maxExclusive = own.maxExclusive, merged.maxInclusive.reset();
    if (own.minInclusive) merged.minInclusive = own.minInclusive, merged.minExclusive.reset();
    if (own.minExclusive) merged.minExclusive = own.minExclusive, merged.minInclusive.reset();
    if (own.totalDigits) merged.totalDigits = own.totalDigits;
    if (own.fractionDigits) merged.fractionDigits = own.fractionDigits;
    type->facets = merged;
    type->whiteSpace = merged.whiteSpace ? merged.whiteSpace->value : base->whiteSpace;
    // Bounds are checked against the merged facets, lengths too.
    const CFacets& f = type->facets;
    if (f.minLength && f.maxLength && f.minLength->value > f.maxLength->value)
        Fail(node, "The minLength is greater than the maxLength");
    if (f.length && ((f.minLength && own.minLength && f.minLength->value > f.length->value) ||
                     (f.maxLength && own.maxLength && f.maxLength->value < f.length->value)))
        Fail(node, "The length contradicts the minLength or maxLength");
    if (f.totalDigits && f.fractionDigits && f.fractionDigits->value > f.totalDigits->value)
        Fail(node, "The fractionDigits is greater than the totalDigits");
    if (type->primitiveType != nullptr && type->variety == CSimpleType::Variety::Atomic &&
        type->primitiveType->name.local == "decimal") {
        auto cmp = [](const std::optional<CFacetValue<std::string>>& a, const std::optional<CFacetValue<std::string>>& b,
                      int& result) {
            if (!a || !b) return false;
            const std::string av = Trim(a->value);
            const std::string bv = Trim(b->value);
            if (!IsDecimalLiteral(av, true) || !IsDecimalLiteral(bv, true)) return false;
            result = CompareDecimals(av, bv);
            return true;
        };
        int c = 0;
        if ((cmp(f.minInclusive, f.maxInclusive, c) && c > 0) || (cmp(f.minInclusive, f.maxExclusive, c) && c >= 0) ||
            (cmp(f.minExclusive, f.maxInclusive, c) && c >= 0) || (cmp(f.minExclusive, f.maxExclusive, c) && c > 0))
            Fail(node, "The lower bound is greater than the upper bound");
        if ((cmp(own.maxInclusive, base->facets.maxExclusive, c) && c >= 0) ||
            (cmp(own.minInclusive, base->facets.minExclusive, c) && c <= 0) ||
            (cmp(own.maxExclusive, base->facets.maxExclusive, c) && c > 0) ||
            (cmp(own.minExclusive, base->facets.minExclusive, c) && c < 0) ||
            (cmp(own.maxExclusive, base->facets.maxInclusive, c) && c > 0) ||
            (cmp(own.minExclusive, base->facets.minInclusive, c) && c < 0))
            Fail(node, "A bound lies outside the bounds of the base type " + TypeLabel(base));
    }
}

bool CSchemaLoader::IsValidLiteral(const CSimpleType* type, const std::string& text) {
    if (type == nullptr) return true;
    std::unique_ptr<const CSchemaValueRule>& rule = m_literalRules[type];
    if (!rule) rule = std::make_unique<const CSchemaValueRule>(type, nullptr);
    return rule->Accepts(text);
}

void CSchemaLoader::CheckFacets(CSimpleType* type, const Node* node) {
    const CFacets& own = type->ownFacets;
    const CSimpleType* base = static_cast<const CSimpleType*>(type->baseType);
    const CFacets& inherited = base->facets;
    const std::string primitive = type->primitiveType != nullptr ? type->primitiveType->name.local : std::string();
    const bool list = type->variety == CSimpleType::Variety::List;
    const bool unionType = type->variety == CSimpleType::Variety::Union;
    auto refuse = [&](const char* facet) {
        Fail(node, std::string("The facet [") + facet + "] does not apply to the base type " + TypeLabel(base));
    };
    const bool lengthOk = list || (!unionType && HasLength(primitive));
    const bool orderOk = !list && !unionType && IsOrdered(primitive);
    const bool digitsOk = !list && !unionType && primitive == "decimal";
    if ((own.length || own.minLength || own.maxLength) && !lengthOk)
        refuse(own.length ? "length" : own.minLength ? "minLength" : "maxLength");
    if ((own.minInclusive || own.maxInclusive || own.minExclusive || own.maxExclusive) && !orderOk)
        refuse(own.minInclusive ? "minInclusive" : own.maxInclusive ? "maxInclusive" : own.minExclusive ? "minExclusive" : "maxExclusive");
    if (own.totalDigits && !digitsOk) refuse("totalDigits");
    if (own.fractionDigits && !digitsOk) refuse("fractionDigits");
    if (own.whiteSpace && unionType) refuse("whiteSpace");
    if (own.length && (own.minLength || own.maxLength))
        Fail(node, "The facets [length] and [minLength] or [maxLength] must not be given together");
    if (own.minInclusive && own.minExclusive) Fail(node, "The facets [minInclusive] and [minExclusive] must not be given together");
    if (own.maxInclusive && own.maxExclusive) Fail(node, "The facets [maxInclusive] and [maxExclusive] must not be given together");
    // A fixed facet of the base cannot change; lengths and digits only narrow.
    auto numeric = [&](const char* facet, const std::optional<CFacetValue<unsigned long long>>& mine,
                       const std::optional<CFacetValue<unsigned long long>>& theirs, int direction) {
        if (!mine || !theirs) return;
        const unsigned long long a = mine->value;
        const unsigned long long b = theirs->value;
        if (theirs->fixed && a != b)
            Fail(node, std::string("The facet [") + facet + "] is fixed in the base type " + TypeLabel(base));
        if ((direction == 0 && a != b) || (direction < 0 && a > b) || (direction > 0 && a < b))
            Fail(node, std::string("The facet [") + facet + "] does not narrow the base type " + TypeLabel(base));
    };
    numeric("length", own.length, inherited.length, 0);
    numeric("minLength", own.minLength, inherited.minLength, 1);
    numeric("maxLength", own.maxLength, inherited.maxLength, -1);
    numeric("totalDigits", own.totalDigits, inherited.totalDigits, -1);
    numeric("fractionDigits", own.fractionDigits, inherited.fractionDigits, -1);
    if (own.length && inherited.minLength && own.length->value < inherited.minLength->value)
        Fail(node, "The facet [length] does not narrow the base type " + TypeLabel(base));
    if (own.length && inherited.maxLength && own.length->value > inherited.maxLength->value)
        Fail(node, "The facet [length] does not narrow the base type " + TypeLabel(base));
    if ((own.minLength || own.maxLength) && inherited.length) {
        if ((own.minLength && own.minLength->value > inherited.length->value) ||
            (own.maxLength && own.maxLength->value < inherited.length->value))
            Fail(node, "The facets [minLength] or [maxLength] contradict the length of the base type " + TypeLabel(base));
    }
    if (own.whiteSpace && inherited.whiteSpace) {
        const WhiteSpace mine = own.whiteSpace->value;
        const WhiteSpace theirs = inherited.whiteSpace->value;
        if ((theirs == WhiteSpace::Collapse && mine != WhiteSpace::Collapse) ||
            (theirs == WhiteSpace::Replace && mine == WhiteSpace::Preserve) || (inherited.whiteSpace->fixed && mine != theirs))
            Fail(node, "The facet [whiteSpace] does not narrow the base type " + TypeLabel(base));
    }
    auto bound = [&](const char* facet, const std::optional<CFacetValue<std::string>>& mine,
                     const std::optional<CFacetValue<std::string>>& theirs) {
        if (!mine) return;
        if (theirs && theirs->fixed && Trim(mine->value) != Trim(theirs->value))
            Fail(node, std::string("The facet [") + facet + "] is fixed in the base type " + TypeLabel(base));
        if (!IsValidLiteral(base, mine->value))
            Fail(node, "The value [" + mine->value + "] of the facet [" + facet + "] is not valid for the base type " +
                           TypeLabel(base));
    };
    bound("maxInclusive", own.maxInclusive, inherited.maxInclusive);
    bound("maxExclusive", own.maxExclusive, inherited.maxExclusive);
    bound("minInclusive", own.minInclusive, inherited.minInclusive);
    bound("minExclusive", own.minExclusive, inherited.minExclusive);
    for (const auto& step : own.patterns)
        for (const std::string& p : step) {
            try {
                CPrimitiveRestrictions::MatchesPattern(std::string(), p);
            } catch (const CQmException& e) {
                throw CQmSchemaException("In [" + node->doc->location + "] at [" + PathOf(node) + "]: The pattern [" + p +
                                             "] is not a valid regular expression",
                                         e);
            }
        }
    for (const std::string& e : own.enumeration)
        if (!IsValidLiteral(base, e))
            Fail(node, "The enumeration value [" + e + "] is not valid for the base type " + TypeLabel(base));
}

void CSchemaLoader::DeriveSimpleType(CSimpleType* start) {
    // Depth-first over restriction bases, list items and union members, with
    // an explicit stack: a type is settled after everything it is built from.
    struct Frame {
        CSimpleType* type;
        std::size_t next;
    };
    auto deps = [](const CSimpleType* t) {
        std::vector<const CSimpleType*> d;
        if (t->variety == CSimpleType::Variety::List && t->itemType != nullptr) d.push_back(t->itemType);
        else if (t->variety == CSimpleType::Variety::Union) d = t->memberTypes;
        else if (t->baseType != nullptr && t->baseType->IsSimple()) d.push_back(static_cast<const CSimpleType*>(t->baseType));
        return d;
    };
    std::vector<Frame> stack;
    auto enter = [&](const CSimpleType* t) {
        auto it = m_simple.find(t);
        if (it == m_simple.end() || it->second.done) return;
        if (it->second.visiting)
            Fail(it->second.node, "The simple type " + TypeLabel(t) + " is defined in terms of itself");
        it->second.visiting = true;
        stack.push_back({const_cast<CSimpleType*>(t), 0});
    };
    enter(start);
    while (!stack.empty()) {
        Frame& f = stack.back();
        const std::vector<const CSimpleType*> d = deps(f.type);
        if (f.next < d.size()) {
            const CSimpleType* dep = d[f.next++];
            enter(dep);
            continue;
        }
        CSimpleType* t = f.type;
        stack.pop_back();
        DeriveSimpleTypeStep(t);
        SimpleInfo& info = m_simple[t];
        info.visiting = false;
        info.done = true;
    }
}

void CSchemaLoader::MergeAttributes(const AttributeItems& items, std::vector<const CAttributeUse*>& uses,
                                    const CWildcard*& wildcard, const Node* node) {
    std::vector<const CAttributeUse*> own = items.uses;
    const CWildcard* complete = items.wildcard;
    CNamespaceConstraint constraint;
    if (complete != nullptr) constraint = complete->namespaceConstraint;
    for (const CAttributeGroup* g : items.groups) {
        for (const CAttributeUse* u : g->attributeUses)
            if (std::find(own.begin(), own.end(), u) == own.end()) own.push_back(u);
        if (g->attributeWildcard != nullptr) {
            if (complete == nullptr) {
                complete = g->attributeWildcard;
                constraint = complete->namespaceConstraint;
            } else {
                CNamespaceConstraint result;
                if (!IntersectionOf(constraint, g->attributeWildcard->namespaceConstraint, result))
                    Fail(node, "The intersection of the attribute wildcards is not expressible");
                constraint = result;
            }
        }
    }
    if (complete != nullptr && !(constraint == complete->namespaceConstraint)) {
        CWildcard* w = m_set.Make<CWildcard>();
        w->source = complete->source;
        w->processContents = complete->processContents;
        w->namespaceConstraint = constraint;
        complete = w;
    }
    std::set<std::pair<std::string, std::string>> names;
    for (const CAttributeUse* u : own) {
        const CQName& n = u->declaration->name;
        if (!names.insert({n.ns, n.local}).second)
            Fail(node, "The attribute [" + n.ToString() + "] is declared twice");
    }
    uses = std::move(own);
    wildcard = complete;
}

void CSchemaLoader::DeriveComplexTypeStep(CComplexType* type) {
    ComplexInfo& info = m_complex[type];
    const Node* node = info.node;
    const CTypeDefinition* base = type->baseType;
    const bool extension = type->derivationMethod == Derivation_Extension;
    if (base->final & type->derivationMethod)
        Fail(node, "The type " + TypeLabel(base) + std::string(" does not allow derivation by ") +
                       (extension ? "extension" : "restriction"));
    std::vector<const CAttributeUse*> own;
    const CWildcard* ownWildcard = nullptr;
    MergeAttributes(info.attributes, own, ownWildcard, node);
    const CComplexType* cb = base->IsSimple() ? nullptr : static_cast<const CComplexType*>(base);

    if (info.simpleContent) {
        type->contentType = CComplexType::ContentType::Simple;
        if (cb == nullptr) {
            if (!extension) Fail(node, "A simpleContent restriction must have a complex base type, not " + TypeLabel(base));
            type->simpleContentType = static_cast<const CSimpleType*>(base);
        } else if (cb->contentType == CComplexType::ContentType::Simple && extension) {
            type->simpleContentType = cb->simpleContentType;
        } else if (!extension && (cb->contentType == CComplexType::ContentType::Simple ||
                                  (cb->contentType == CComplexType::ContentType::Mixed && info.restrictionType != nullptr))) {
            CSimpleType* content = const_cast<CSimpleType*>(type->simpleContentType);
            content->baseType = info.restrictionType != nullptr ? info.restrictionType : cb->simpleContentType;
            if (content->baseType == nullptr) content->baseType = m_set.anySimpleType;
            if (content->baseType == m_set.anySimpleType) {
                content->variety = CSimpleType::Variety::Atomic;
                content->whiteSpace = WhiteSpace::Preserve;
            } else {
                m_simple[content].node = info.restrictionNode;
                DeriveSimpleTypeStep(content);
                m_simple[content].done = true;
            }
        } else {
            Fail(node, "The base type " + TypeLabel(base) + " of a simpleContent does not have simple content");
        }
    } else {
        if (cb == nullptr) Fail(node, "The base type " + TypeLabel(base) + " of a complexContent is a simple type");
        const bool ownEmpty = IsEmptyParticle(info.ownParticle);
        const CComplexType::ContentType ownKind =
            info.mixed ? CComplexType::ContentType::Mixed
                       : (ownEmpty ? CComplexType::ContentType::Empty : CComplexType::ContentType::ElementOnly);
        if (!extension) {
            if (info.mixed && cb->contentType != CComplexType::ContentType::Mixed)
                Fail(node, "A restriction of " + TypeLabel(base) + " must not be mixed: its base is not");
            if (cb->contentType == CComplexType::ContentType::Simple && !ownEmpty)
                Fail(node, "A restriction of " + TypeLabel(base) + " must not have element content: its base has simple content");
            if (cb->contentType == CComplexType::ContentType::Empty && !ownEmpty)
                Fail(node, "A restriction of " + TypeLabel(base) + " must not have content: its base is empty");
            type->contentType = ownKind;
            type->contentModel = ownEmpty ? nullptr : info.ownParticle;
            if (cb != m_set.anyType && (cb->contentType == CComplexType::ContentType::ElementOnly ||
                                        cb->contentType == CComplexType::ContentType::Mixed) &&
                !IsValidParticleRestriction(type->contentModel, cb->contentModel))
                Fail(node, "The content model is not a valid restriction of the content model of the base type " +
                               TypeLabel(base));
        } else if (cb->contentType == CComplexType::ContentType::Simple) {
            if (!ownEmpty) Fail(node, "An extension of " + TypeLabel(base) + " must not add elements to its simple content");
            type->contentType = CComplexType::ContentType::Simple;
            type->simpleContentType = cb->simpleContentType;
        } else if (ownEmpty) {
            type->contentType = cb->contentType;
            if (info.mixed && cb->contentType == CComplexType::ContentType::ElementOnly)
                Fail(node, "An extension of " + TypeLabel(base) + " must not be mixed: its base is not");
            if (info.mixed && cb->contentType == CComplexType::ContentType::Empty)
                type->contentType = CComplexType::ContentType::Mixed;
            type->contentModel = cb->contentModel;
        } else if (cb->contentType == CComplexType::ContentType::Empty) {
            type->contentType = ownKind;
            type->contentModel = info.ownParticle;
        } else {
            if (info.mixed != (cb->contentType == CComplexType::ContentType::Mixed))
                Fail(node, "An extension of " + TypeLabel(base) + " must be mixed exactly when its base is");
            CModelGroup* sequence = m_set.Make<CModelGroup>();
            sequence->source = type->source;
            sequence->particles = {cb->contentModel, info.ownParticle};
            CParticle* combined = m_set.Make<CParticle>();
            combined->source = type->source;
            combined->termKind = CParticle::TermKind::ModelGroup;
            combined->modelGroup = sequence;
            type->contentType = ownKind;
            type->contentModel = combined;
        }
    }

    // Attribute uses and wildcard, as inherited.
    const std::vector<const CAttributeUse*> none;
    const std::vector<const CAttributeUse*>& baseUses = cb != nullptr ? cb->attributeUses : none;
    const CWildcard* baseWildcard = cb != nullptr ? cb->attributeWildcard : nullptr;
    auto sameName = [](const CAttributeUse* a, const CAttributeUse* b) { return a->declaration->name == b->declaration->name; };
    std::vector<const CAttributeUse*> result;
    if (extension) {
        result = baseUses;
        for (const CAttributeUse* u : own) {
            for (const CAttributeUse* b : baseUses)
                if (sameName(u, b))
                    Fail(node, "The attribute [" + u->declaration->name.ToString() + "] is already declared by the base type " +
                                   TypeLabel(base));
            if (u->use != CAttributeUse::Use::Prohibited) result.push_back(u);
        }
        if (baseWildcard != nullptr && ownWildcard != nullptr) {
            CNamespaceConstraint u;
            if (!UnionOf(ownWildcard->namespaceConstraint, baseWildcard->namespaceConstraint, u))
                Fail(node, "The union of the attribute wildcards is not expressible");
            CWildcard* w = m_set.Make<CWildcard>();
            w->source = ownWildcard->source;
            w->processContents = ownWildcard->processContents;
            w->namespaceConstraint = u;
            type->attributeWildcard = w;
        } else {
            type->attributeWildcard = ownWildcard != nullptr ? ownWildcard : baseWildcard;
        }
    } else {
        for (const CAttributeUse* b : baseUses) {
            const CAttributeUse* replacement = nullptr;
            for (const CAttributeUse* u : own)
                if (sameName(u, b)) replacement = u;
            if (replacement == nullptr) {
                result.push_back(b);
                continue;
            }
            if (b->use == CAttributeUse::Use::Required && replacement->use != CAttributeUse::Use::Required)
                Fail(node, "The attribute [" + b->declaration->name.ToString() + "] is required in the base type " +
                               TypeLabel(base));
            if (replacement->use != CAttributeUse::Use::Prohibited) result.push_back(replacement);
        }
        for (const CAttributeUse* u : own) {
            bool inBase = false;
            for (const CAttributeUse* b : baseUses) inBase = inBase || sameName(u, b);
            if (inBase || u->use == CAttributeUse::Use::Prohibited) continue;
            if (baseWildcard == nullptr || !baseWildcard->namespaceConstraint.Allows(u->declaration->name.ns))
                Fail(node, "The attribute [" + u->declaration->name.ToString() + "] is not allowed by the base type " +
                               TypeLabel(base));
            result.push_back(u);
        }
        if (ownWildcard != nullptr && baseWildcard == nullptr)
            Fail(node, "The attribute wildcard is not allowed: the base type " + TypeLabel(base) + " has none");
        type->attributeWildcard = ownWildcard;
    }
    type->attributeUses = std::move(result);
}

void CSchemaLoader::DeriveComplexType(CComplexType* start) {
    std::vector<CComplexType*> chain;
    for (CComplexType* t = start;;) {
        ComplexInfo* info = m_complex.count(t) ? &m_complex[t] : nullptr;
        if (info == nullptr || info->done) break;
        if (info->visiting) Fail(info->node, "The complex type " + TypeLabel(t) + " derives from itself");
        info->visiting = true;
        chain.push_back(t);
        const CTypeDefinition* b = t->baseType;
        if (b == nullptr || b->IsSimple()) break;
        t = const_cast<CComplexType*>(static_cast<const CComplexType*>(b));
    }
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        DeriveComplexTypeStep(*it);
        ComplexInfo& info = m_complex[*it];
        info.visiting = false;
        info.done = true;
    }
}

void CSchemaLoader::SettleAttributeGroups() {
    // Post-order over references, explicit stack; a group on the stack seen
    // again is a cycle.
    std::unordered_map<const CAttributeGroup*, int> state;  // 1 visiting, 2 done
    // Document order, so that the same schema always reports the same group.
    std::vector<const CAttributeGroup*> order;
    for (const Global& g : m_globals)
        if (g.component->GetKind() == ComponentKind::AttributeGroup)
            order.push_back(static_cast<const CAttributeGroup*>(g.component));
    for (const CAttributeGroup* start : order) {
        struct Frame {
            CAttributeGroup* group;
            std::size_t next;
        };
        std::vector<Frame> stack;
        auto enter = [&](const CAttributeGroup* g) {
            if (m_attributeGroupItems.count(g) == 0 || state[g] == 2) return;
            // A group that refers back to itself adds nothing new: tolerated,
            // as the test suite's schemas expect.
            if (state[g] == 1) return;
            state[g] = 1;
            stack.push_back({const_cast<CAttributeGroup*>(g), 0});
        };
        enter(start);
        while (!stack.empty()) {
            Frame& f = stack.back();
            const AttributeItems& items = m_attributeGroupItems[f.group];
            if (f.next < items.groups.size()) {
                enter(items.groups[f.next++]);
                continue;
            }
            CAttributeGroup* g = f.group;
            stack.pop_back();
            MergeAttributes(items, g->attributeUses, g->attributeWildcard, items.node);
            state[g] = 2;
        }
    }
}

void CSchemaLoader::SettleModelGroups() {
    for (auto& gp : m_groupParticles) {
        gp.first->modelGroup = gp.second->modelGroup;
    }
    std::unordered_map<const CModelGroupDefinition*, int> state;
    // Document order, so that the same schema always reports the same group.
    std::vector<const CModelGroupDefinition*> order;
    for (const Global& g : m_globals)
        if (g.component->GetKind() == ComponentKind::ModelGroupDefinition)
            order.push_back(static_cast<const CModelGroupDefinition*>(g.component));
    for (const CModelGroupDefinition* start : order) {
        struct Frame {
            const CModelGroupDefinition* group;
            std::size_t next;
        };
        std::vector<Frame> stack;
        auto enter = [&](const CModelGroupDefinition* g) {
            if (state[g] == 2) return;
            if (state[g] == 1) {
                const auto node = m_nodeOf.find(g);
                Fail(node != m_nodeOf.end() ? node->second : nullptr,
                     "The group [" + g->name.ToString() + "] contains itself");
            }
            state[g] = 1;
            stack.push_back({g, 0});
        };
        enter(start);
        while (!stack.empty()) {
            Frame& f = stack.back();
            const auto refs = m_groupRefs.find(f.group);
            if (refs != m_groupRefs.end() && f.next < refs->second.size()) {
                enter(refs->second[f.next++]);
                continue;
            }
            state[f.group] = 2;
            stack.pop_back();
        }
    }
    for (const auto& ref : m_nestedGroupRefs)
        if (ref.second->modelGroup != nullptr && ref.second->modelGroup->compositor == CModelGroup::Compositor::All)
            Fail(ref.first, "The group [" + ref.second->name.ToString() +
                                "] holds an all group and must be the whole content model, with maxOccurs 1");
}

namespace {

// XML Schema's "validly derived" for substitution: by the base chain, or
// into a union one of whose members (transitively, bounded) it derives from.
bool ValidlyDerived(const CTypeDefinition* derived, const CTypeDefinition* base) {
    if (derived->DerivesFrom(base)) return true;
    std::vector<const CSimpleType*> pending;
    if (base->IsSimple()) pending.push_back(static_cast<const CSimpleType*>(base));
    for (std::size_t steps = 0; !pending.empty() && steps < 4096; ++steps) {
        const CSimpleType* u = pending.back();
        pending.pop_back();
        if (u->variety != CSimpleType::Variety::Union) continue;
        for (const CSimpleType* m : u->memberTypes) {
            if (derived->DerivesFrom(m)) return true;
            pending.push_back(m);
        }
    }
    return false;
}

}  // namespace

void CSchemaLoader::SettleSubstitutionGroups() {
    // Cycles first: following heads from any element must end.
    std::unordered_map<const CElementDeclaration*, int> state;
    for (const auto& entry : m_elements) {
        const CElementDeclaration* e = entry.second;
        std::vector<const CElementDeclaration*> path;
        while (e != nullptr && state[e] == 0) {
            state[e] = 1;
            path.push_back(e);
            e = e->substitutionGroupHead;
        }
        if (e != nullptr && state[e] == 1)
            Fail(m_nodeOf.count(e) ? m_nodeOf[e] : entry.first,
                 "The substitution group of the element [" + e->name.ToString() + "] contains the element itself");
        for (const CElementDeclaration* p : path) state[p] = 2;
    }
    // Types: an element without one takes its head's (settled head first).
    for (const auto& entry : m_elements) {
        CElementDeclaration* e = entry.second;
        if (e->type != nullptr) continue;
        std::vector<CElementDeclaration*> pending;
        CElementDeclaration* x = e;
        while (x != nullptr && x->type == nullptr) {
            pending.push_back(x);
            x = const_cast<CElementDeclaration*>(x->substitutionGroupHead);
        }
        const CTypeDefinition* t = x != nullptr ? x->type : m_set.anyType;
        for (CElementDeclaration* p : pending) p->type = t;
    }
    for (const auto& entry : m_elements) {
        CElementDeclaration* e = entry.second;
        const CElementDeclaration* head = e->substitutionGroupHead;
        if (head == nullptr) continue;
        if (m_explicitType.count(e) != 0 && !ValidlyDerived(e->type, head->type))
            Fail(entry.first, "The type of the element [" + e->name.ToString() +
                                  "] does not derive from the type of its substitution group head [" +
                                  head->name.ToString() + "]");
        for (const CElementDeclaration* h = head; h != nullptr; h = h->substitutionGroupHead)
            const_cast<CElementDeclaration*>(h)->substitutionGroupMembers.push_back(e);
    }
}

void CSchemaLoader::CheckValueConstraints() {
    auto check = [&](const Node* node, const CValueConstraint& vc, const CTypeDefinition* type) {
        if (vc.kind == CValueConstraint::None || type == nullptr) return;
        const char* what = vc.kind == CValueConstraint::Default ? "default" : "fixed";
        const CSimpleType* simple = nullptr;
        if (type->IsSimple()) {
            simple = static_cast<const CSimpleType*>(type);
        } else {
            const CComplexType* c = static_cast<const CComplexType*>(type);
            if (c->contentType == CComplexType::ContentType::Simple) simple = c->simpleContentType;
            else if (c->contentType != CComplexType::ContentType::Mixed)
                Fail(node, std::string("An element with a ") + what + " value must have simple or mixed content");
        }
        if (simple == nullptr) return;
        if (!IsValidLiteral(simple, vc.value))
            Fail(node, std::string("The ") + what + " value [" + vc.value + "] is not valid for the type " + TypeLabel(simple));
    };
    for (const auto& entry : m_elements) check(entry.first, entry.second->valueConstraint, entry.second->type);
    for (const auto& entry : m_attributeDecls) check(entry.first, entry.second->valueConstraint, entry.second->type);
    for (const auto& entry : m_uses) {
        const CAttributeUse* use = entry.second;
        check(entry.first, use->valueConstraint, use->declaration->type);
        const CValueConstraint& declared = use->declaration->valueConstraint;
        if (declared.kind == CValueConstraint::Fixed &&
            (use->valueConstraint.kind == CValueConstraint::Default ||
             (use->valueConstraint.kind == CValueConstraint::Fixed && use->valueConstraint.value != declared.value)))
            Fail(entry.first, "The attribute [" + use->declaration->name.ToString() + "] has the fixed value [" +
                                  declared.value + "] in its declaration");
    }
}

void CSchemaLoader::Finish() {
    for (auto it = m_redefines.rbegin(); it != m_redefines.rend(); ++it) {
        const Node* redefine = it->first;
        for (const Node* c : redefine->children) {
            if (c->Is("annotation")) continue;
            if (!c->Is("simpleType") && !c->Is("complexType") && !c->Is("group") && !c->Is("attributeGroup"))
                Fail(c, "The element [" + c->local + "] is not allowed in a redefine");
            RegisterGlobal(c, true);
        }
    }
    for (const Global& g : m_globals) {
        m_current = g.component;
        const std::string& k = g.node->local;
        if (k == "simpleType") FillSimpleType(g.node, static_cast<CSimpleType*>(g.component));
        else if (k == "complexType") FillComplexType(g.node, static_cast<CComplexType*>(g.component));
        else if (k == "element") FillElement(g.node, static_cast<CElementDeclaration*>(g.component), nullptr);
        else if (k == "attribute") FillAttribute(g.node, static_cast<CAttributeDeclaration*>(g.component), true);
        else if (k == "group") FillModelGroupDefinition(g.node, static_cast<CModelGroupDefinition*>(g.component));
        else if (k == "attributeGroup") FillAttributeGroup(g.node, static_cast<CAttributeGroup*>(g.component));
        else {
            CNotation* n = static_cast<CNotation*>(g.component);
            Stamp(g.node, n);
            const std::string* pub = g.node->Attr("public");
            const std::string* sys = g.node->Attr("system");
            if (pub == nullptr && sys == nullptr) Fail(g.node, "A notation must have a public or a system identifier");
            if (pub != nullptr) n->publicId = *pub;
            if (sys != nullptr) n->systemId = *sys;
            for (std::size_t i = FirstContent(g.node); i < g.node->children.size(); ++i)
                Fail(g.node->children[i], "The element [" + g.node->children[i]->local + "] is not allowed in a notation");
        }
        // A redefinition must derive from, or refer to, what it redefines.
        const auto original = m_redefined.find(g.component);
        if (original != m_redefined.end() && (k == "simpleType" || k == "complexType")) {
            const CTypeDefinition* t = static_cast<const CTypeDefinition*>(g.component);
            if (t->baseType != original->second.original)
                Fail(g.node, "The redefined type [" + t->name.ToString() + "] must derive from its own earlier definition");
        }
    }
    m_current = nullptr;
    SettleModelGroups();
    SettleAttributeGroups();
    // Stable order for the same schema: by creation in the arena.
    // Deriving creates components (combined content models, wildcards), so
    // the arena is walked by index over what existed before.
    const std::size_t existing = m_set.components.size();
    for (std::size_t i = 0; i < existing; ++i) {
        CSchemaComponent* c = m_set.components[i].get();
        if (c->GetKind() == ComponentKind::SimpleType && m_simple.count(static_cast<CSimpleType*>(c)))
            DeriveSimpleType(static_cast<CSimpleType*>(c));
    }
    // Substitution groups before complex types: restrictions may use members.
    SettleSubstitutionGroups();
    for (std::size_t i = 0; i < existing; ++i) {
        CSchemaComponent* c = m_set.components[i].get();
        if (c->GetKind() == ComponentKind::ComplexType && m_complex.count(static_cast<CComplexType*>(c)))
            DeriveComplexType(static_cast<CComplexType*>(c));
    }
    for (const auto& entry : m_keyrefs) {
        CIdentityConstraint* keyref = entry.second;
        const CIdentityConstraint* key = Lookup(m_set.identityConstraints, entry.first,
                                                ResolveQName(entry.first, *entry.first->Attr("refer")), Space::IdentityConstraint,
                                                nullptr);
        if (key->category == CIdentityConstraint::Category::KeyRef)
            Fail(entry.first, "The keyref refers to [" + key->name.ToString() + "], which is not a key or unique");
        if (key->fields.size() != keyref->fields.size())
            Fail(entry.first, "The keyref has a different number of fields than [" + key->name.ToString() + "]");
        keyref->referencedKey = key;
    }
    CheckValueConstraints();
}

// ------------------------------------------------------------------ the set

CSchemaSource CSchemaSource::File(std::string path) {
    CSchemaSource s;
    s.isFile = true;
    s.path = std::move(path);
    return s;
}

CSchemaSource CSchemaSource::Buffer(std::string text, std::string baseLocation) {
    CSchemaSource s;
    s.isFile = false;
    s.text = std::move(text);
    s.path = std::move(baseLocation);
    return s;
}

CSchemaSet::CSchemaSet() : m_impl(std::make_unique<Impl>()) { m_impl->AddBuiltIns(); }
CSchemaSet::~CSchemaSet() = default;

std::unique_ptr<CSchemaSet> CSchemaSet::Load(const std::vector<CSchemaSource>& sources) {
    std::unique_ptr<CSchemaSet> set(new CSchemaSet());
    std::string label;
    for (const CSchemaSource& s : sources) {
        if (!label.empty()) label += ", ";
        label += s.path.empty() ? std::string("(buffer)") : s.path;
    }
    try {
        CSchemaLoader loader(*set->m_impl);
        for (const CSchemaSource& s : sources) loader.LoadSource(s);
        loader.Finish();
    } catch (const CQmException& e) {
        throw CQmSchemaException("Failed to load the schema [" + label + "]", e);
    }
    return set;
}

std::unique_ptr<CSchemaSet> CSchemaSet::LoadFile(const std::string& path) { return Load({CSchemaSource::File(path)}); }

std::unique_ptr<CSchemaSet> CSchemaSet::LoadBuffer(const std::string& text, const std::string& baseLocation) {
    return Load({CSchemaSource::Buffer(text, baseLocation)});
}

namespace {
template <typename T>
const T* Find(const CQNameMap<T>& map, const CQName& name) {
    const auto it = map.find(name);
    return it != map.end() ? it->second : nullptr;
}
}  // namespace

const CTypeDefinition* CSchemaSet::FindType(const CQName& name) const { return Find(m_impl->types, name); }
const CSimpleType* CSchemaSet::FindSimpleType(const CQName& name) const {
    const CTypeDefinition* t = FindType(name);
    return t != nullptr && t->IsSimple() ? static_cast<const CSimpleType*>(t) : nullptr;
}
const CComplexType* CSchemaSet::FindComplexType(const CQName& name) const {
    const CTypeDefinition* t = FindType(name);
    return t != nullptr && !t->IsSimple() ? static_cast<const CComplexType*>(t) : nullptr;
}
const CElementDeclaration* CSchemaSet::FindElement(const CQName& name) const { return Find(m_impl->elements, name); }
const CAttributeDeclaration* CSchemaSet::FindAttribute(const CQName& name) const { return Find(m_impl->attributes, name); }
const CModelGroupDefinition* CSchemaSet::FindModelGroup(const CQName& name) const { return Find(m_impl->groups, name); }
const CAttributeGroup* CSchemaSet::FindAttributeGroup(const CQName& name) const {
    return Find(m_impl->attributeGroups, name);
}
const CNotation* CSchemaSet::FindNotation(const CQName& name) const { return Find(m_impl->notations, name); }
const CIdentityConstraint* CSchemaSet::FindIdentityConstraint(const CQName& name) const {
    return Find(m_impl->identityConstraints, name);
}
const std::vector<const CTypeDefinition*>& CSchemaSet::GetTypes() const noexcept { return m_impl->typeList; }
const std::vector<const CElementDeclaration*>& CSchemaSet::GetElements() const noexcept { return m_impl->elementList; }
const std::vector<const CAttributeDeclaration*>& CSchemaSet::GetAttributes() const noexcept { return m_impl->attributeList; }
const std::vector<const CModelGroupDefinition*>& CSchemaSet::GetModelGroups() const noexcept { return m_impl->groupList; }
const std::vector<const CAttributeGroup*>& CSchemaSet::GetAttributeGroups() const noexcept {
    return m_impl->attributeGroupList;
}
const std::vector<const CNotation*>& CSchemaSet::GetNotations() const noexcept { return m_impl->notationList; }
const std::vector<std::string>& CSchemaSet::GetDocuments() const noexcept { return m_impl->documents; }
const CComplexType* CSchemaSet::GetAnyType() const noexcept { return m_impl->anyType; }
const CSimpleType* CSchemaSet::GetAnySimpleType() const noexcept { return m_impl->anySimpleType; }
const CSimpleType* CSchemaSet::GetBuiltInType(const std::string& local) const {
    const CSimpleType* t = FindSimpleType(CQName{kXs, local});
    return t != nullptr && t->builtIn ? t : nullptr;
}

}  // namespace Schema
}  // namespace QmXmlLib10
