// An absolute path is never opened as such: a file from elsewhere does not choose what is read on this machine.
#include "NamedFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "files/RegularFile.h"

namespace {

bool IsRegularFile(const std::string& path) {
    struct stat state {};
    return stat(path.c_str(), &state) == 0 && S_ISREG(state.st_mode);
}

}  // namespace

NamedFiles::NamedFiles(const std::string& mainFile)
    : m_sMainFile(mainFile), m_sFolder(mainFile.substr(0, mainFile.rfind('/') + 1)) {}

std::string NamedFiles::Find(const std::string& name) const {
    if (name.empty() || name == m_sMainFile) return name;
    std::string path = name;
    std::ranges::replace(path, '\\', '/');
    if (!m_sFolder.empty() && path.starts_with(m_sFolder)) path.erase(0, m_sFolder.size());
    if (!path.starts_with('/') && IsRegularFile(m_sFolder + path)) return m_sFolder + path;
    const std::string last = m_sFolder + path.substr(path.rfind('/') + 1);
    return IsRegularFile(last) ? last : "";
}

std::vector<std::uint8_t> NamedFiles::Load(const std::string& name) const {
    const std::string path = Find(name);
    if (path.empty()) return {};
    try {
        const std::vector<std::byte> bytes = FileStorage::RegularFile(path).ReadWhole();
        std::vector<std::uint8_t> copy(bytes.size());
        if (!bytes.empty()) std::memcpy(copy.data(), bytes.data(), bytes.size());
        return copy;
    } catch (const FileStorage::FileAccessError&) {
        return {};
    }
}
