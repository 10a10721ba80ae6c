// The public serialization entry points shared by every bound object.
#include <memory>

#include "dom/xml_document_loading.h"
#include "platform/charset.h"
#include "platform/file_writer.h"
#include "qmxml/collections/element.h"
#include "qmxml/core/exception.h"
#include "qmxml/core/generated_class.h"
#include "qmxml/core/object_base.h"
#include "qmxml/core/settings.h"
#include "qmxml/dom/xml_document.h"
#include "qmxml/dom/xml_element.h"
#include "qmxml/fastinfoset/fi_writer.h"
#include "qmxml/types/binary_data.h"
#include "qmxml/writer/text_stream.h"
#include "qmxml/writer/text_writer.h"

namespace QmXmlLib10 {

namespace {

const char* const kZlibOnlyForStreams = "ZLIB Compression only available for To Stream methods.";

CBinaryData Compressed(const std::string& bytes, CompressionType compression) {
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (compression == CompressionType_None) return CBinaryData(const_cast<unsigned char*>(data), length, false);
    return CBinaryData::Compress(data, length, compression);
}

}  // namespace

// Start, formatting, end of line, then the declaration, so that the
// declaration ends with the chosen end of line.
void CXmlObjectBase::WriteTextDocument(CTextStream& stream, bool includeDocHeader, bool formatted, EOLType eol,
                                       const CXmlSerializationContext& ctx) const {
    CXmlTextWriter writer(stream);
    writer.StartDocument();
    writer.SetFormatted(formatted);
    writer.SetEOLType(eol);
    if (includeDocHeader) writer.WriteXmlDeclaration();
    const std::string name = GetElementName();
    ToXml_Int(&writer, true, name.c_str(), ctx, false);
    writer.EndDocument();
}

std::string CXmlObjectBase::ToXml(bool includeDocHeader, bool formatted, EOLType eol,
                                  const CXmlSerializationContext& ctx) const {
    // Local strings that are not UTF-8 get a declaration without an encoding.
    CTextStream stream(platform::LocalIsUtf8() ? XmlEncoding_UTF8 : static_cast<XmlEncoding>(0));
    WriteTextDocument(stream, includeDocHeader, formatted, eol, ctx);
    return stream.GetText();
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeDocHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                                        const CXmlSerializationContext& ctx, CompressionType compression) const {
    CTextStream stream(encoding);
    WriteTextDocument(stream, includeDocHeader, formatted, eol, ctx);
    return Compressed(stream.GetEncodedText(), compression);
}

void CXmlObjectBase::ToXmlFile(const char* fileName, bool includeDocHeader, bool formatted, XmlEncoding encoding,
                               EOLType eol, const CXmlSerializationContext& ctx, CompressionType compression) const {
    if (compression == CompressionType_ZLib) throw CQmException(kZlibOnlyForStreams);
    if (GetAsyncToXmlFile() && compression == CompressionType_None) {
        CFileTextStream stream(fileName, encoding);
        WriteTextDocument(stream, includeDocHeader, formatted, eol, ctx);
        return;
    }
    const CBinaryData bytes = ToXmlStream(includeDocHeader, formatted, encoding, eol, ctx, compression);
    platform::CFileWriter file(fileName ? fileName : "");
    file.Write(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
    file.Close();
}

void CXmlObjectBase::ToFastInfosetFile(const char* fileName, FInfoDecl declaration,
                                       const CXmlSerializationContext& ctx, CompressionType compression) const {
    if (compression == CompressionType_ZLib) throw CQmException(kZlibOnlyForStreams);
    const CBinaryData bytes = ToFastInfosetStream(declaration, ctx, compression);
    platform::CFileWriter file(fileName ? fileName : "");
    file.Write(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
    file.Close();
}

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl declaration, const CXmlSerializationContext& ctx,
                                                CompressionType compression) const {
    CBinaryData bytes;
    {
        CFastInfosetWriter writer(bytes, ctx.GetFIContext(), declaration);
        writer.StartDocument();
        const std::string name = GetElementName();
        ToXml_Int(&writer, true, name.c_str(), ctx, false);
        writer.EndDocument();
    }
    if (compression == CompressionType_None) return bytes;
    return CBinaryData::Compress(bytes.GetData(), bytes.GetLength(), compression);
}

// Binds while the parser (Expat or the Fast Infoset decoder) reads on: the
// content model walks the tree as it grows, and each element's content is
// freed once its object is read.
// A document that turns out not to be well formed leaves the object as
// reading begins: initialised (a tree that fails to load would not have been
// bound at all, which for a new object is the same state).
// A wildcard element takes the whole document anyway: it is read whole first.
void CXmlObjectBase::BindDocument(CXmlDocument& document, const CXmlSerializationContext& ctx) {
    if (dynamic_cast<CElement*>(this) != nullptr) CXmlDocumentLoading::ReadWhole(document);
    CXmlDocumentLoading::Bind(
        document, [&] { FromXmlElement(document.GetDocumentElement(), ctx); },
        [this] {
            if (auto* generated = dynamic_cast<CXmlGeneratedClass*>(this)) {
                generated->Init();
                generated->SetNil(false);
            }
        });
}

void CXmlObjectBase::FromXmlFile(const char* fileName, const CXmlSerializationContext& ctx) {
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.Load(fileName);
    BindDocument(document, ctx);
}

void CXmlObjectBase::FromXml(const unsigned short* utf16Text, const CXmlSerializationContext& ctx) {
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.LoadXml(utf16Text);
    BindDocument(document, ctx);
}

void CXmlObjectBase::FromXml(const char* xmlText, const CXmlSerializationContext& ctx) {
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.LoadXml(xmlText);
    BindDocument(document, ctx);
}

void CXmlObjectBase::FromXmlStream(const CBinaryData& data, const CXmlSerializationContext& ctx) {
    FromXmlStream(const_cast<unsigned char*>(data.GetData()), data.GetLength(), ctx);
}

void CXmlObjectBase::FromXmlStream(unsigned char* const bytes, std::uint32_t length,
                                   const CXmlSerializationContext& ctx) {
    CXmlDocument document(ctx);
    CXmlDocumentLoading::RequestStreaming(document);
    document.LoadXmlStream(bytes, length);
    BindDocument(document, ctx);
}

void CXmlObjectBase::FromXmlElement(const CElement* element, const CXmlSerializationContext& ctx) {
    if (element == nullptr) throw CQmInvalidParamException("The element to read from may not be NULL");
    const std::string text = element->ToXml(true, false, EOLType_LF, ctx);
    FromXml(text.c_str(), ctx);
}

void CXmlObjectBase::FromXmlElement(const CXmlElement* element, const CXmlSerializationContext& ctx) {
    if (element == nullptr) throw CQmException("Invalid or empty XML document");
    auto* root = const_cast<CXmlElement*>(element);
    FromXml_Int(root, root->GetFirstElement(), ctx, false);
}

}  // namespace QmXmlLib10
