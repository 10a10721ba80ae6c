#include "w3c_instances.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "infoset_compare.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/serialization_context.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/metadata/element_infos.h"  // dynamic_classes.h uses IClassFactory without including it
#include "qmxml/schema/dynamic_classes.h"
#include "qmxml/schema/schema_set.h"

namespace qmxml_w3c {

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;

namespace {

// Whether any document of the set declares a key, keyref or unique. The
// component model keeps local constraints inside element declarations
// scattered over content models; the documents say it in one walk.
bool DeclaresIdentityConstraints(const CSchemaSet& schemas) {
    for (const std::string& location : schemas.GetDocuments()) {
        try {
            CXmlDocument doc;
            doc.Load(location.c_str());
            std::vector<const CXmlElement*> pending{doc.GetDocumentElement()};
            while (!pending.empty()) {
                const CXmlElement* e = pending.back();
                pending.pop_back();
                if (e == nullptr) continue;
                if (e->GetNamespaceURI() == CSchemaSet::kXsdNamespace &&
                    (e->GetLocalName() == "key" || e->GetLocalName() == "keyref" || e->GetLocalName() == "unique"))
                    return true;
                for (const CXmlElement* c = e->GetFirstElement(); c != nullptr; c = c->GetNextSiblingElement())
                    pending.push_back(c);
            }
        } catch (const CQmException&) {
            // The loader read it already; a second read failing says nothing here.
        }
    }
    return false;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> SchemaHints(const std::string& instance) {
    std::vector<std::pair<std::string, std::string>> hints;
    const char* xsi = "http://www.w3.org/2001/XMLSchema-instance";
    const std::filesystem::path dir = std::filesystem::path(instance).parent_path();
    try {
        CXmlDocument doc;
        doc.Load(instance.c_str());
        const CXmlElement* root = doc.GetDocumentElement();
        if (root == nullptr) return hints;
        std::istringstream pairs(root->GetAttribute("schemaLocation", xsi));
        std::string ns, location;
        while (pairs >> ns >> location) hints.emplace_back(ns, (dir / location).lexically_normal().string());
        std::istringstream single(root->GetAttribute("noNamespaceSchemaLocation", xsi));
        if (single >> location) hints.emplace_back("", (dir / location).lexically_normal().string());
    } catch (const CQmException&) {
        // An instance that does not load names no schema.
    }
    return hints;
}

namespace {

std::string ReadWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

std::string InnermostMessage(const CQmException& e) {
    const CQmException* inner = &e;
    while (inner->GetInnerException() != nullptr) inner = inner->GetInnerException();
    return inner->GetMessage();
}

GroupSchema& GroupCache::Schema(const TestCase& test) {
    // A group without schema documents validates its instances by their own
    // schema location hints; with none either, against the built-in types
    // alone, as a processor given no schema does (only an xsi:type naming a
    // built-in type can make such a root valid).
    std::vector<CSchemaSource> sources;
    std::string key = test.set + "\n" + test.group;
    if (!test.schemaDocuments.empty()) {
        sources.push_back(CSchemaSource::File(test.schemaDocuments[0]));
        // Documents for other namespaces the instance names by its hints
        // join the group's first, as a processor that follows hints would
        // load them (the group's other documents are often only reachable
        // that way).
        if (test.kind == TestCase::Kind::Instance) {
            for (const auto& hint : SchemaHints(test.instanceDocument)) {
                const bool known = std::filesystem::path(test.schemaDocuments[0]).lexically_normal() ==
                                   std::filesystem::path(hint.second).lexically_normal();
                if (!known && std::filesystem::exists(hint.second)) sources.push_back(CSchemaSource::File(hint.second));
            }
        }
    } else if (test.kind == TestCase::Kind::Instance) {
        for (const auto& hint : SchemaHints(test.instanceDocument)) sources.push_back(CSchemaSource::File(hint.second));
    }
    for (const CSchemaSource& source : sources) key += "\n" + source.path;
    if (m_current.key == key) return m_current;
    m_current = GroupSchema();
    m_current.key = key;
    try {
        m_current.schemas = CSchemaSet::Load(sources);
        m_current.identityConstraints = DeclaresIdentityConstraints(*m_current.schemas);
    } catch (const CQmException& e) {
        m_current.loadFailure = InnermostMessage(e);
        if (m_current.loadFailure.empty()) m_current.loadFailure = e.GetFullMessage();
    } catch (const std::exception& e) {
        m_current.loadFailure = std::string("Unexpected exception: ") + e.what();
    }
    return m_current;
}

GroupSchema& GroupCache::Classes(const TestCase& test) {
    GroupSchema& group = Schema(test);
    if (group.classesTried || group.schemas == nullptr) return group;
    group.classesTried = true;
    try {
        group.classes = CDynamicClassSet::Create(group.schemas);
    } catch (const CQmException& e) {
        group.classFailure = InnermostMessage(e);
    } catch (const std::exception& e) {
        group.classFailure = std::string("Unexpected exception: ") + e.what();
    }
    return group;
}

InstanceOutcome RunInstance(const TestCase& test, GroupCache& cache) {
    InstanceOutcome out;
    GroupSchema& group = cache.Classes(test);
    out.identityConstraints = group.identityConstraints;
    if (!group.loadFailure.empty()) {
        out.kind = InstanceOutcome::Kind::SchemaNotLoaded;
        out.message = group.loadFailure;
        return out;
    }
    if (group.classes == nullptr) {
        out.kind = InstanceOutcome::Kind::ClassesNotCreated;
        out.message = group.classFailure;
        return out;
    }
    CSmartPtr<CDynamicObject> object;
    try {
        object = group.classes->ReadFile(test.instanceDocument);
    } catch (const CQmException& e) {
        out.kind = InstanceOutcome::Kind::Rejected;
        out.message = InnermostMessage(e);
        return out;
    } catch (const std::exception& e) {
        out.kind = InstanceOutcome::Kind::Rejected;
        out.message = std::string("Unexpected exception: ") + e.what();
        return out;
    }
    out.kind = InstanceOutcome::Kind::Accepted;
    try {
        CXmlSerializationContext ctx;
        ctx.SetWriteTypeAttribute(true);
        // Unformatted, so mixed content is written as it was read.
        out.copy = object->ToXml(true, false, EOLType_LF, ctx);
    } catch (const CQmException& e) {
        out.difference = "Writing failed: " + InnermostMessage(e);
        return out;
    } catch (const std::exception& e) {
        out.difference = std::string("Writing failed: unexpected exception: ") + e.what();
        return out;
    }
    out.difference = CompareInfosets(ReadWhole(test.instanceDocument), out.copy, group.schemas.get());
    return out;
}

std::string NormalisedCause(const std::string& message) { return CauseOf(message.substr(0, message.find('\n'))); }

}  // namespace qmxml_w3c
