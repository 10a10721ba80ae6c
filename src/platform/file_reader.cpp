#include "platform/file_reader.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {
namespace platform {

namespace {

unsigned int ErrorCode(int error) { return static_cast<unsigned int>(error); }

}  // namespace

CFileReader::CFileReader(const char* fileName) : m_fileName(fileName != nullptr ? fileName : "") {
    do {
        m_fd = ::open(m_fileName, O_RDONLY | O_CLOEXEC);
    } while (m_fd < 0 && errno == EINTR);
    if (m_fd < 0)
        throw CQmException(FormatString("Failed to open the file [%s] Error [0x%08x]", m_fileName,
                                        ErrorCode(errno)));
    // Only a hint; a refusal changes nothing.
    (void)::posix_fadvise(m_fd, 0, 0, POSIX_FADV_SEQUENTIAL);
}

CFileReader::~CFileReader() { ::close(m_fd); }

bool CFileReader::ReadFully(unsigned char* buffer, std::size_t size, std::size_t& got) noexcept {
    got = 0;
    while (got < size) {
        const ssize_t n = ::read(m_fd, buffer + got, size - got);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (n == 0) break;
        got += static_cast<std::size_t>(n);
    }
    return true;
}

std::unique_ptr<unsigned char[]> CFileReader::ReadAll(std::size_t& length) {
    length = 0;
    struct stat info;
    if (::fstat(m_fd, &info) != 0)
        throw CQmException(FormatString("Failed to get the size of the file [%s] Error [0x%08x]",
                                        m_fileName, ErrorCode(errno)));
    // Input lengths are 32-bit throughout the loader.
    if (info.st_size < 0 || static_cast<std::uint64_t>(info.st_size) > UINT32_MAX)
        throw CQmException(FormatString("Failed to get the size of the file [%s] Error [0x%08x]",
                                        m_fileName, ErrorCode(EFBIG)));
    const std::size_t size = static_cast<std::size_t>(info.st_size);
    if (size == 0) return nullptr;

    std::unique_ptr<unsigned char[]> buffer(new unsigned char[size]);
    std::size_t got = 0;
    errno = 0;
    if (!ReadFully(buffer.get(), size, got) || got != size)
        throw CQmException(FormatString("Failed to read the contents of the file [%s] Error [0x%08x]",
                                        m_fileName, ErrorCode(errno)));
    length = size;
    return buffer;
}

std::size_t CFileReader::ReadChunk(unsigned char* buffer, std::size_t size) {
    std::size_t got = 0;
    const bool first = m_firstChunk;
    m_firstChunk = false;
    if (!ReadFully(buffer, size, got)) {
        if (first)
            throw CQmException(FormatString("Failed to read the contents of the file [%s] Error [0x%08x]",
                                            m_fileName, ErrorCode(errno)));
        throw CQmException(FormatString("Failed to read the contents of the file. Error [0x%08x]",
                                        ErrorCode(errno)));
    }
    return got;
}

}  // namespace platform
}  // namespace QmXmlLib10
