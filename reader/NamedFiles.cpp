// Neither absolute paths nor ".." lead out of the folder: a file from elsewhere does not choose what is read on this
// machine.
#include "NamedFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>

#include "files/RegularFile.h"

namespace {

bool IsRegularFile(const std::string& path) {
    struct stat state {};
    return stat(path.c_str(), &state) == 0 && S_ISREG(state.st_mode);
}

/// Without "." and ".."; nothing when the path is absolute or leads out of the folder that it is relative to.
std::optional<std::string> InsideFolder(std::string_view path) {
    if (path.starts_with('/')) return std::nullopt;
    std::string inside;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(part.size() + 1, path.size()));
        if (part.empty() || part == ".") continue;
        if (part == "..") {
            if (inside.empty()) return std::nullopt;
            inside.erase(inside.find('/') == std::string::npos ? 0 : inside.rfind('/'));
        } else {
            inside.append(inside.empty() ? "" : "/").append(part);
        }
    }
    return inside;
}

/// "my%20mesh.bin" as "my mesh.bin", as URIs are written.
std::string Decoded(std::string_view name) {
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        unsigned char value = 0;
        const std::string_view digits = name.substr(i + 1, 2);
        const bool isCode = name[i] == '%' && digits.size() == 2 &&
                            std::from_chars(digits.data(), digits.data() + 2, value, 16).ptr == digits.data() + 2;
        decoded += isCode ? static_cast<char>(value) : name[i];
        if (isCode) i += 2;
    }
    return decoded;
}

}  // namespace

NamedFiles::NamedFiles(const std::string& mainFile)
    : m_sMainFile(mainFile), m_sFolder(mainFile.substr(0, mainFile.rfind('/') + 1)) {}

std::string NamedFiles::Find(const std::string& name) const {
    if (name.empty() || name == m_sMainFile) return name;
    std::string path = name;
    std::ranges::replace(path, '\\', '/');
    if (!m_sFolder.empty() && path.starts_with(m_sFolder)) path.erase(0, m_sFolder.size());
    std::string found = FindInFolder(path);
    if (found.empty() && path.find('%') != std::string::npos) found = FindInFolder(Decoded(path));
    return found;
}

std::string NamedFiles::FindInFolder(const std::string& path) const {
    if (path.find('\0') != std::string::npos) return {};  // the system would see another name
    const std::optional<std::string> inside = InsideFolder(path);
    if (inside && IsRegularFile(m_sFolder + *inside)) return m_sFolder + *inside;
    std::string last = m_sFolder + path.substr(path.rfind('/') + 1);
    return IsRegularFile(last) ? last : std::string();
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
