// A tour of the run-time core: an exception chain with context, binary data
// through base64, hex and gzip, and a small element tree.
#include <qmxml/qmxml.h>

#include <zlib.h>

#include <iostream>
#include <string>

using namespace QmXmlLib10;

namespace {

std::string Inflate(const CBinaryData& compressed, std::size_t expected) {
    std::string out(expected, '\0');
    z_stream z{};
    inflateInit2(&z, 15 + 32);  // gzip or zlib header
    z.next_in = const_cast<Bytef*>(compressed.GetData());
    z.avail_in = compressed.GetLength();
    z.next_out = reinterpret_cast<Bytef*>(&out[0]);
    z.avail_out = static_cast<uInt>(out.size());
    const int rc = inflate(&z, Z_FINISH);
    out.resize(z.total_out);
    inflateEnd(&z);
    if (rc != Z_STREAM_END) throw CQmException(FormatString("inflate failed [%d]", rc));
    return out;
}

}  // namespace

int main() {
    try {
        // 1. A failure deep down, rethrown with one line of context per level.
        try {
            try {
                CBinaryData value;
                value.SetAsHexString("0G");
            } catch (const CQmException& e) {
                throw CQmValidationException("Failed to process the element [Reference]", e);
            }
        } catch (const CQmException& e) {
            CQmException outer("Failed to process the element [Invoice]", e);
            std::cout << "exception chain:\n" << outer.GetFullMessage() << "\n\n";
        }

        // 2. Bytes through base64 and hex and back.
        const std::string text = "qmxml \x01\x02\xff binary";
        CBinaryData bytes(text.c_str());
        const std::string base64 = bytes.GetAsBase64();
        CBinaryData fromBase64;
        fromBase64.SetAsBase64(base64.c_str());
        CBinaryData fromHex;
        fromHex.SetAsHexString(bytes.GetAsHexString().c_str());
        std::cout << "base64: " << base64 << "\nhex:    " << bytes.GetAsHexString() << "\n";
        if (fromBase64 != bytes || fromHex != bytes) throw CQmException("binary round trip changed the bytes");

        // 3. A repetitive document compressed with gzip and inflated again.
        std::string document = "<Orders xmlns=\"urn:example:orders\">\n";
        for (int i = 1; i <= 1000; ++i) document += "  <Order id=\"" + std::to_string(i) + "\"><Status>shipped</Status></Order>\n";
        document += "</Orders>\n";
        const auto* raw = reinterpret_cast<const unsigned char*>(document.data());
        const CBinaryData gz = CBinaryData::Compress(raw, static_cast<std::uint32_t>(document.size()), CompressionType_GZip);
        if (Inflate(gz, document.size()) != document) throw CQmException("gzip round trip changed the document");
        std::cout << "gzip:   " << document.size() << " bytes -> " << gz.GetLength() << " bytes, round trip ok\n";

        // 4. A tiny tree, built the way the loaders build one.
        CXmlDocument doc;
        CXmlElement* root = CXmlTreeBuilder::CreateDocumentElement(doc);
        CXmlTreeBuilder::SetName(root, "Orders", "urn:example:orders");
        for (int i = 0; i < 3; ++i) {
            CXmlElement* order = CXmlTreeBuilder::CreateChild(root);
            CXmlTreeBuilder::SetName(order, "Order", "urn:example:orders");
            CXmlTreeBuilder::AddAttribute(order, "id", std::to_string(i + 1), "");
        }
        int orders = 0;
        for (CXmlElement* e = root->GetFirstElement(); e; e = e->GetNextSiblingElement()) ++orders;
        std::cout << "tree:   {" << root->GetNamespaceURI() << "}" << root->GetLocalName() << " with " << orders
                  << " orders, last id " << root->GetFirstElement()->GetNextSiblingElement()->GetNextSiblingElement()->GetAttribute("id", "")
                  << "\n";
        return 0;
    } catch (const CQmException& e) {
        std::cerr << e.GetFullMessage() << "\n";
        return 1;
    }
}
