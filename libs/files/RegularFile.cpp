// open(), fstat() and a loop around pread(), which may return early.
#include "files/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "files/SystemMessage.h"

namespace FileStorage {

FileAccessError::FileAccessError(const char* reason, int error)
    : std::runtime_error(error == 0 ? reason : reason + (": " + SystemMessage(error))), m_iError(error) {}

RegularFile::RegularFile(const std::string& path) {
    // O_NONBLOCK: opening a pipe that has no writer must not wait.
    m_iFd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_iFd < 0) throw FileAccessError("cannot be opened", errno);
    struct stat info {};
    if (::fstat(m_iFd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(m_iFd);
        throw FileAccessError("is not a regular file", 0);
    }
    m_uSize = static_cast<std::uint64_t>(info.st_size);
}

RegularFile::~RegularFile() { ::close(m_iFd); }

std::size_t RegularFile::ReadAt(std::uint64_t offset, void* to, std::size_t size) const {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got =
            ::pread(m_iFd, static_cast<std::byte*>(to) + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw FileAccessError("cannot be read", errno);
        if (got == 0) break;  // end of the file
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::vector<std::byte> RegularFile::ReadWhole() const {
    std::vector<std::byte> bytes(m_uSize);
    bytes.resize(ReadAt(0, bytes.data(), bytes.size()));
    return bytes;
}

}  // namespace FileStorage
