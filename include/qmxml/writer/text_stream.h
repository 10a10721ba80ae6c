// Character streams the text writer writes into, and their byte encodings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "qmxml/core/enums.h"
#include "qmxml/core/instance_monitor.h"
#include "qmxml/writer/string_buffer.h"

namespace QmXmlLib10 {

namespace platform {
class CFileWriter;
}

// Encoding value 3: the text's own 8-bit bytes, unconverted (the local
// encoding). The XML declaration names no encoding for it.
constexpr XmlEncoding XmlEncoding_Local = static_cast<XmlEncoding>(3);

// Collects the writer's characters in a CStringBuffer and turns them into
// bytes. The plain stream keeps everything in memory: Open, Flush and Close do
// nothing, and the whole text (or its bytes) is taken at the end.
//
// Byte forms: 1 UTF-8 without byte-order mark; 2 UTF-16 little-endian
// preceded by the mark FF FE; 3 the stored bytes unchanged. Any other value is
// accepted here but makes encoding throw "Unknown Encoding, select UTF-8".
class CTextStream : public CInstanceMonitor {
public:
    explicit CTextStream(XmlEncoding encoding = XmlEncoding_UTF8);
    virtual ~CTextStream();
    CTextStream(const CTextStream&) = delete;
    CTextStream& operator=(const CTextStream&) = delete;

    // End of output.
    virtual void Close();
    // Hands the buffered text on; the writer calls it once 4096 or more
    // characters are buffered.
    virtual void Flush();
    // Start of output (document start).
    virtual void Open();

    XmlEncoding GetEncoding() const { return m_encoding; }
    // Characters buffered and not yet flushed.
    std::size_t GetLength() const { return m_buffer.GetLength(); }
    CStringBuffer& GetBuffer() { return m_buffer; }
    const CStringBuffer& GetBuffer() const { return m_buffer; }

    // The buffered characters as they were written.
    std::string GetText() const { return m_buffer.GetText(); }
    // The buffered characters in the stream's encoding, byte-order mark included.
    std::string GetEncodedText() const;

protected:
    CTextStream(const char* className, XmlEncoding encoding);
    // Appends the buffered text encoded to out; scratch is working storage that
    // callers may keep to avoid allocating on every call.
    void AppendEncoded(std::string& out, bool byteOrderMark, std::string& scratch) const;

private:
    CStringBuffer m_buffer;
    XmlEncoding m_encoding;
};

// Sends the encoded text to a file, one flushed block at a time, so memory
// stays bounded for large documents. Open creates the file (replacing an
// existing one); Flush and Close open it first when Open was not called. The
// UTF-16 byte-order mark is written once, at the start of the file. Destroying
// an open stream closes the file without flushing (call Close to finish it).
class CFileTextStream : public CTextStream {
public:
    CFileTextStream(const char* fileName, XmlEncoding encoding = XmlEncoding_UTF8);
    ~CFileTextStream() override;

    void Close() override;
    void Flush() override;
    void Open() override;

    const std::string& GetFileName() const { return m_fileName; }
    // Bytes written to the file so far.
    std::uint64_t GetBytesWritten() const { return m_bytesWritten; }

private:
    std::string m_fileName;
    std::unique_ptr<platform::CFileWriter> m_file;
    std::uint64_t m_bytesWritten = 0;
    bool m_closed = false;
    std::string m_encoded;
    std::string m_scratch;
};

}  // namespace QmXmlLib10
