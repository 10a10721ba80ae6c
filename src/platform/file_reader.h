// Reading files for the document loader. Internal to the library.
#pragma once

#include <cstddef>
#include <memory>

namespace QmXmlLib10 {
namespace platform {

// An open file, read either whole or in chunks, closed on destruction.
// Every failure throws CQmException with the file error code (errno).
class CFileReader {
public:
    // Opens for reading; throws "Failed to open the file [%s] Error [0x%08x]".
    explicit CFileReader(const char* fileName);
    ~CFileReader();
    CFileReader(const CFileReader&) = delete;
    CFileReader& operator=(const CFileReader&) = delete;

    // The whole file in a new buffer of exactly its size (null for an empty
    // file). Throws "Failed to get the size of the file [%s] Error [0x%08x]"
    // (also for files of 4 GiB or more) and "Failed to read the contents of
    // the file [%s] Error [0x%08x]" when the read fails or comes up short.
    std::unique_ptr<unsigned char[]> ReadAll(std::size_t& length);

    // Fills buffer with up to size bytes; fewer only at end of file, so a
    // short chunk is the last one. A failure on the first chunk throws
    // "Failed to read the contents of the file [%s] Error [0x%08x]", on a
    // later one "Failed to read the contents of the file. Error [0x%08x]".
    std::size_t ReadChunk(unsigned char* buffer, std::size_t size);

private:
    // Reads until size bytes or end of file; false with errno set on failure.
    bool ReadFully(unsigned char* buffer, std::size_t size, std::size_t& got) noexcept;

    const char* m_fileName;
    int m_fd;
    bool m_firstChunk = true;
};

}  // namespace platform
}  // namespace QmXmlLib10
