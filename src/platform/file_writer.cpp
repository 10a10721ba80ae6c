#include "platform/file_writer.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "qmxml/core/exception.h"

namespace QmXmlLib10 {
namespace platform {

namespace {
[[noreturn]] void ThrowWriteError(int error) {
    throw CQmException(FormatString("Failed to write data to the file. Error [0x%08X]", static_cast<unsigned>(error)));
}
}  // namespace

CFileWriter::CFileWriter(const std::string& fileName) {
    do {
        m_fd = ::open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    } while (m_fd < 0 && errno == EINTR);
    if (m_fd < 0) {
        throw CQmException(FormatString("Failed to write data to the file [%s] error [0x%08X]", fileName.c_str(),
                                        static_cast<unsigned>(errno)));
    }
}

CFileWriter::~CFileWriter() {
    if (m_fd >= 0) ::close(m_fd);
}

void CFileWriter::Write(const char* data, std::size_t length) {
    if (m_fd < 0) ThrowWriteError(EBADF);
    while (length > 0) {
        const ssize_t written = ::write(m_fd, data, length);
        if (written < 0) {
            if (errno == EINTR) continue;
            ThrowWriteError(errno);
        }
        data += written;
        length -= static_cast<std::size_t>(written);
    }
}

void CFileWriter::Close() {
    if (m_fd < 0) return;
    const int fd = m_fd;
    m_fd = -1;
    // POSIX leaves the descriptor state unspecified after EINTR; Linux has closed it.
    if (::close(fd) != 0 && errno != EINTR) ThrowWriteError(errno);
}

}  // namespace platform
}  // namespace QmXmlLib10
