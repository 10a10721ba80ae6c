#include "qmxml/writer/text_stream.h"

#include "platform/charset.h"
#include "platform/file_writer.h"
#include "qmxml/core/exception.h"

namespace QmXmlLib10 {

CTextStream::CTextStream(XmlEncoding encoding) : CTextStream("CTextStream", encoding) {}

CTextStream::CTextStream(const char* className, XmlEncoding encoding)
    : CInstanceMonitor(className), m_encoding(encoding) {}

CTextStream::~CTextStream() = default;

void CTextStream::Close() {}

void CTextStream::Flush() {}

void CTextStream::Open() {}

std::string CTextStream::GetEncodedText() const {
    std::string out;
    std::string scratch;
    AppendEncoded(out, true, scratch);
    return out;
}

void CTextStream::AppendEncoded(std::string& out, bool byteOrderMark, std::string& scratch) const {
    switch (static_cast<int>(m_encoding)) {
        case XmlEncoding_UTF8:
            if (platform::LocalIsUtf8()) {
                m_buffer.AppendTo(out);  // no conversion: copy the blocks straight out
            } else {
                scratch.clear();
                m_buffer.AppendTo(scratch);
                platform::LocalToUtf8(scratch.data(), scratch.size(), out);
            }
            return;
        case XmlEncoding_UTF16:
            if (byteOrderMark) out.append("\xFF\xFE", 2);
            // Blocks may split a multi-byte character, so convert the text whole.
            scratch.clear();
            m_buffer.AppendTo(scratch);
            platform::LocalToUtf16LE(scratch.data(), scratch.size(), out);
            return;
        case XmlEncoding_Local:
            m_buffer.AppendTo(out);
            return;
    }
    throw CQmException("Unknown Encoding, select UTF-8");
}

CFileTextStream::CFileTextStream(const char* fileName, XmlEncoding encoding)
    : CTextStream("CFileTextStream", encoding), m_fileName(fileName ? fileName : "") {}

CFileTextStream::~CFileTextStream() = default;

void CFileTextStream::Open() {
    m_file.reset();
    m_file = std::make_unique<platform::CFileWriter>(m_fileName);
    m_bytesWritten = 0;
    m_closed = false;
}

void CFileTextStream::Flush() {
    if (!m_file) {
        if (m_closed) return;  // finished: later text stays in the buffer
        Open();
    }
    if (GetLength() == 0) return;
    m_encoded.clear();
    AppendEncoded(m_encoded, m_bytesWritten == 0, m_scratch);
    m_file->Write(m_encoded.data(), m_encoded.size());
    m_bytesWritten += m_encoded.size();
    GetBuffer().Reset();
}

void CFileTextStream::Close() {
    if (m_closed) return;
    try {
        Flush();
        if (m_file) m_file->Close();
    } catch (...) {
        m_file.reset();
        m_closed = true;
        throw;
    }
    m_file.reset();
    m_closed = true;
}

}  // namespace QmXmlLib10
