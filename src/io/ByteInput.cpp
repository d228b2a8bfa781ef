// The two kinds of input.
#include "io/ByteInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "KV_ScenePane/PathText.h"

std::size_t MemoryInput::Read(void* to, std::size_t size) {
    const std::size_t part = std::min(size, m_bytes.size());
    if (part > 0) std::memcpy(to, m_bytes.data(), part);
    m_bytes = m_bytes.subspan(part);
    return part;
}

FileInput::FileInput(const std::wstring& path) {
    // O_NONBLOCK: the open of a pipe that nobody writes to must not wait.
    m_iFd = ::open(KV_ScenePane::PathBytes(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_iFd < 0) throw FileReadError("cannot be opened: " + std::generic_category().message(errno));
    struct stat info {};
    if (::fstat(m_iFd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(m_iFd);
        throw FileReadError("is not a regular file");
    }
    m_uSize = static_cast<std::uint64_t>(info.st_size);
}

FileInput::~FileInput() { ::close(m_iFd); }

std::size_t FileInput::Read(void* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::read(m_iFd, static_cast<char*>(to) + done, size - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw FileReadError("cannot be read: " + std::generic_category().message(errno));
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}
