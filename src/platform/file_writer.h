// Sequential file output for the file text stream. Internal to the library.
#pragma once

#include <cstddef>
#include <string>

namespace QmXmlLib10 {
namespace platform {

// Owns one file opened for writing; the descriptor is closed by Close or, in
// every error path, by the destructor.
class CFileWriter {
public:
    // Creates the file, replacing an existing one. Failure throws CQmException
    // "Failed to write data to the file [%s] error [0x%08X]" with errno.
    explicit CFileWriter(const std::string& fileName);
    ~CFileWriter();
    CFileWriter(const CFileWriter&) = delete;
    CFileWriter& operator=(const CFileWriter&) = delete;

    // Writes all bytes; failure throws "Failed to write data to the file. Error [0x%08X]".
    void Write(const char* data, std::size_t length);
    // Closes the file, with the write message on failure. Idempotent.
    void Close();
    bool IsOpen() const { return m_fd >= 0; }

private:
    int m_fd = -1;
};

}  // namespace platform
}  // namespace QmXmlLib10
