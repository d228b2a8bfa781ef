// Checks of a file's name and of the file from outside.
#include "SceneFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {
struct Kind {
    std::string_view extension;
    FileKind kind;
    bool isWritten;
};
constexpr Kind kKinds[] = {
    {"pcm", FileKind::Pcm, false},  {"pax", FileKind::Pax, false},  {"xdt", FileKind::Xdt, false},
    {"ply", FileKind::Mesh, true},  {"stl", FileKind::Mesh, true},  {"hps", FileKind::Mesh, true},
    {"ois", FileKind::Mesh, false}, {"msh", FileKind::Mesh, false},
};

const Kind* FindKind(std::string_view path) {
    const auto* const found = std::ranges::find(kKinds, ExtensionOf(path), &Kind::extension);
    return found == std::end(kKinds) ? nullptr : found;
}
}  // namespace

std::string ExtensionOf(std::string_view path) {
    const std::size_t point = path.rfind('.');
    std::string extension(point == std::string_view::npos ? path : path.substr(point + 1));
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return extension;
}

FileKind KindOfFile(std::string_view path) {
    const Kind* const kind = FindKind(path);
    return kind == nullptr ? FileKind::Unknown : kind->kind;
}

std::string WhyNoSceneFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return strerrordesc_np(errno);
    if (S_ISDIR(status.st_mode)) return strerrordesc_np(EISDIR);
    if (access(path.c_str(), R_OK) != 0) return strerrordesc_np(errno);
    if (KindOfFile(path) == FileKind::Unknown) return "unknown file type";
    return {};
}

std::string WhyNoExportName(std::string_view path) {
    const Kind* const kind = FindKind(path);
    return kind != nullptr && kind->isWritten ? "" : "only ply, stl and hps files can be written";
}
