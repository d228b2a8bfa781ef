// The content is a memory file; the name is a link to it, which needs no space in its folder.
#include "TemporaryPly.h"

#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

#include "MessageTable.h"

std::vector<std::string> TemporaryFolders() {
    std::vector<std::string> folders;
    const auto addVariable = [&](const char* name) {
        const char* const folder = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets variables
        if (folder != nullptr && *folder != '\0') folders.emplace_back(folder);
    };
    addVariable("TMPDIR");
    folders.emplace_back("/tmp");
    addVariable("XDG_RUNTIME_DIR");
    folders.insert(folders.end(), {"/dev/shm", "/var/tmp"});
    return folders;
}

TemporaryPly::TemporaryPly(std::span<const std::uint8_t> bytes, const std::vector<std::string>& folders)
    : m_iFd(memfd_create("mesh.ply", MFD_CLOEXEC)) {
    if (m_iFd < 0 || !WriteAll(bytes)) {
        Remove();
        throw std::bad_alloc();
    }
    for (const std::string& folder : folders)
        if (NameIn(folder)) return;
    Remove();
    throw std::runtime_error(kNoTemporaryFile);
}

TemporaryPly::~TemporaryPly() { Remove(); }

bool TemporaryPly::NameIn(const std::string& folder) {
    std::string made = folder + "/scenepane-XXXXXX";
    if (mkdtemp(made.data()) == nullptr) return false;
    m_sFolder = std::move(made);
    const std::string content = "/proc/self/fd/" + std::to_string(m_iFd);
    if (symlink(content.c_str(), Path().c_str()) == 0) return true;
    rmdir(m_sFolder.c_str());
    m_sFolder.clear();
    return false;
}

bool TemporaryPly::WriteAll(std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = write(m_iFd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

void TemporaryPly::Remove() const {
    if (m_iFd >= 0) close(m_iFd);
    if (m_sFolder.empty()) return;
    unlink(Path().c_str());
    rmdir(m_sFolder.c_str());
}
