// Texts are compared in one form: percent escapes decoded, "/" for "\", lower case. A file in the folder of a mesh, or
// below it, is found by its own name, as scenepane-read finds it; any other by its path from there.
#include "NamedFilesCheck.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "FileTypes.h"
#include "files/RegularFile.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlockBytes = 1 << 20;
constexpr std::uint64_t kWhole = std::numeric_limits<std::uint64_t>::max();

int DigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string Plain(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        const bool isEscape = c == '%' && i + 2 < text.size() && DigitValue(text[i + 1]) >= 0;
        if (isEscape && DigitValue(text[i + 2]) >= 0) {
            c = static_cast<char>(16 * DigitValue(text[i + 1]) + DigitValue(text[i + 2]));
            i += 2;
        }
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        plain += c == '\\' ? '/' : c;
    }
    return plain;
}

/// What a file is named, as Plain() writes it.
using Names = std::set<std::string>;

bool HasAny(std::string_view text, const Names& names) {
    const std::string plain = Plain(text);
    return std::ranges::any_of(names, [&](const std::string& name) { return plain.find(name) != std::string::npos; });
}

/// How much of a mesh file can name other files; nothing for a format without any.
std::uint64_t SearchedBytes(const std::string& mesh) {
    constexpr std::uint64_t kPlyHeader = 64 * 1024;  // as much as host/FileLook.cpp reads
    const FileType* const type = FindFileType(mesh);
    if (type == nullptr) return 0;
    if (type->extension == "ply") return kPlyHeader;
    if (type->extension == "obj") return kBlockBytes;  // materials are named before the first face
    return type->readBy == ReadBy::Process ? kWhole : 0;
}

bool TextHasAny(const std::string& path, std::uint64_t limit, const Names& names) {
    // Blocks overlap by a name with each byte escaped.
    std::size_t overlap = 0;
    for (const std::string& name : names) overlap = std::max(overlap, 3 * name.size());
    const FileStorage::RegularFile file(path);
    const std::uint64_t end = std::min(file.Size(), limit);
    std::string block;
    for (std::uint64_t at = 0; at < end; at += kBlockBytes) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kBlockBytes + overlap, end - at)));
        block.resize(file.ReadAt(at, block.data(), block.size()));
        const bool isPly = ExtensionOf(path) == "ply";
        if (HasAny(std::string_view(block).substr(0, isPly ? block.find("end_header") : block.size()), names))
            return true;
    }
    return false;
}

/// Paths with all links followed; empty for what does not exist.
fs::path RealPath(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? fs::path() : real;
}

/// The folder of a file with all links followed, empty when there is none, and the last name as it is.
std::pair<fs::path, fs::path> RealPlace(const std::string& file) {
    const fs::path path(file), folder = path.parent_path();
    return {RealPath(folder.empty() ? "." : folder), path.filename()};
}

/// Of a file, as meshes in @p folder name it.
Names NamesFrom(const fs::path& folder, const std::string& file) {
    Names names;
    const auto [fileFolder, name] = RealPlace(file);
    // By its name and, where that is a link, by the name of what is replaced.
    for (const fs::path& place : {fileFolder / name, RealPath(file)}) {
        const fs::path relative = place.lexically_relative(folder);
        if (!relative.empty())
            names.insert(Plain(*relative.begin() == ".." ? relative.string() : relative.filename().string()));
    }
    return names;
}

/// The mtl files in the folder of an obj file, and those of other folders that its start names.
std::set<std::string> MaterialsOf(const std::string& obj, const fs::path& folder) {
    std::set<std::string> files;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        if (ExtensionOf(at->path().string()) == "mtl") files.insert(at->path().string());
    constexpr std::string_view kKeyword = "mtllib ";
    const FileStorage::RegularFile file(obj);
    std::string start(static_cast<std::size_t>(std::min<std::uint64_t>(file.Size(), kBlockBytes)), '\0');
    start.resize(file.ReadAt(0, start.data(), start.size()));
    for (std::size_t at = 0; (at = start.find(kKeyword, at)) != std::string::npos;) {
        at += kKeyword.size();
        std::string name = start.substr(at, start.find_first_of("\r\n", at) - at);
        std::ranges::replace(name, '\\', '/');
        const fs::path path = folder / name;
        if (name.find('/') != std::string::npos && fs::is_regular_file(path, error)) files.insert(path.string());
    }
    return files;
}

/// @param searched  mtl files in which the file is not named
/// @throws FileStorage::FileAccessError
bool IsNamedBy(const std::string& mesh, const std::string& file, std::set<std::string>& searched) {
    const std::uint64_t limit = SearchedBytes(mesh);
    const fs::path folder = limit > 0 ? RealPlace(mesh).first : fs::path();
    if (folder.empty()) return false;
    const Names names = NamesFrom(folder, file);
    if (TextHasAny(mesh, limit, names)) return true;
    if (ExtensionOf(mesh) != "obj") return false;
    for (const std::string& material : MaterialsOf(mesh, folder))
        if (searched.insert(material).second && TextHasAny(material, kWhole, names)) return true;
    return false;
}

}  // namespace

bool IsNamedByAny(const std::vector<std::string>& meshes, const std::string& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) return false;
    std::set<std::string> searched;
    return std::ranges::any_of(meshes, [&](const std::string& mesh) {
        try {
            return IsNamedBy(mesh, file, searched);
        } catch (const FileStorage::FileAccessError&) {
            return false;  // what cannot be read names nothing
        }
    });
}
