// The rules of the viewer's readers, as docs/formats/ply.md and docs/formats/stl.md describe them.
#include "FileLook.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "FileTypes.h"
#include "PlyHeader.h"
#include "SceneFile.h"
#include "files/RegularFile.h"

namespace {

constexpr std::size_t kLookBytes = 64 * 1024;

bool IsByte(PlyNumber type) { return type == PlyNumber::Int8 || type == PlyNumber::UInt8; }

/// In binary data the viewer takes coordinates for floats and colours for bytes, whatever the header says; in text it
/// takes the digits before the point of a colour.
bool AreVerticesRead(const PlyElementHead& vertex, bool isText) {
    const auto hasLists = [](const PlyItem& item) { return item.countType.has_value(); };
    if (std::ranges::any_of(vertex.items, hasLists)) return false;
    for (const char* const name : {"x", "y", "z"}) {
        const PlyItem* const item = vertex.Find(name);
        if (item != nullptr && !isText && item->type != PlyNumber::Float32) return false;
    }
    for (const char* const name : {"red", "green", "blue", "alpha"}) {
        const PlyItem* const item = vertex.Find(name);
        if (item != nullptr && !IsByte(item->type)) return false;
    }
    return vertex.Find("diffuse_red") == nullptr && vertex.Find("r") == nullptr;
}

/// An image of which the viewer's reader knows nothing: it is a file beside this one.
bool HasImageBeside(const PlyHeader& header, const PlyElementHead& vertex, const PlyElementHead& face,
                    const std::string& file) {
    const bool hasTexCoords = face.Find("texcoord") != nullptr || vertex.Find("s") != nullptr ||
                              vertex.Find("u") != nullptr || vertex.Find("texture_u") != nullptr;
    if (header.textureFiles.size() != 1 || !hasTexCoords) return false;
    const std::string& image = header.textureFiles.front();
    return !image.starts_with('/') && ReadRefusal(file.substr(0, file.rfind('/') + 1) + image).empty();
}

FileLook LookAtPly(std::string_view start, const std::string& file) {
    PlyHeader header;
    try {
        header = ParsePlyHeader(start);
    } catch (const std::runtime_error&) {
        return FileLook::Viewer;
    }
    const PlyElementHead* const vertex = header.Find("vertex");
    const PlyElementHead* const face = header.Find("face");
    const bool hasFaces = (face != nullptr && face->count > 0) || header.Find("tristrips") != nullptr;
    if (vertex != nullptr && vertex->count > 0 && !hasFaces) return FileLook::Points;
    if (vertex == nullptr || face == nullptr || !header.isPlain) return FileLook::Process;
    const bool isText = header.format == PlyHeader::Format::Text;
    if (!AreVerticesRead(*vertex, isText) || HasImageBeside(header, *vertex, *face, file)) return FileLook::Process;
    return FileLook::Viewer;
}

/// A binary file may begin with the same word. The size that it announces is that of the file, or of a file that was
/// cut short; the bytes of a text announce gigabytes.
bool IsTextStl(std::string_view start, std::uint64_t fileSize) {
    constexpr std::size_t kCountAt = 80, kHeaderBytes = 84, kTriangleBytes = 50;
    constexpr std::string_view kSolid = "solid";
    if (start.size() >= kHeaderBytes) {
        std::uint32_t count = 0;
        std::memcpy(&count, start.data() + kCountAt, sizeof count);
        if (count > 0 && kHeaderBytes + std::uint64_t{count} * kTriangleBytes / 2 <= fileSize) return false;
    }
    // Comments may come before it; what is neither is no stl file at all, and the viewer says so.
    std::string lower(start);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower.find(kSolid) != std::string::npos && start.find('\0') == std::string_view::npos;
}

}  // namespace

FileLook LookAt(const std::string& file) {
    const FileType* const type = FindFileType(file);
    if (type == nullptr) return FileLook::Viewer;
    if (type->kind == FileKind::Points) return FileLook::Points;
    if (type->readBy == ReadBy::Host) return FileLook::Grid;
    if (type->readBy == ReadBy::Process) return FileLook::Process;
    if (type->extension != "ply" && type->extension != "stl") return FileLook::Viewer;
    try {
        const FileStorage::RegularFile input(file);
        std::string start(std::min<std::uint64_t>(kLookBytes, input.Size()), '\0');
        start.resize(input.ReadAt(0, start.data(), start.size()));
        if (type->extension == "ply") return LookAtPly(start, file);
        return IsTextStl(start, input.Size()) ? FileLook::Process : FileLook::Viewer;
    } catch (const FileStorage::FileAccessError&) {
        return FileLook::Viewer;
    }
}

bool HasSecondReader(const std::string& file) {
    const FileType* const type = FindFileType(file);
    return type != nullptr && type->extension == "ply";
}
