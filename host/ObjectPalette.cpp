// Which objects have no colours of their own: by the type of their file and what the viewer reports.
#include "ObjectPalette.h"

#include <algorithm>
#include <string_view>

#include "FileTypes.h"

namespace {

constexpr std::int32_t kUncolored = 0xFFFFFF;  // what the viewer gives meshes

bool IsOfKind(std::string_view file, FileKind kind) {
    const FileType* const type = FindFileType(file);
    return type != nullptr && type->kind == kind;
}

}  // namespace

std::int32_t PaletteColor(std::size_t position) { return kPalette[position % kPalette.size()]; }

std::size_t CountScans(std::span<const std::string> files) {
    return static_cast<std::size_t>(
        std::ranges::count_if(files, [](const std::string& file) { return IsOfKind(file, FileKind::Scan); }));
}

bool IsPlainMesh(const ObjectReport& object) {
    return IsOfKind(object.file, FileKind::Mesh) && !object.hasVertexColors && object.color == kUncolored;
}

bool IsPlainScan(const ObjectReport& object) {
    return IsOfKind(object.file, FileKind::Scan) && !object.hasVertexColors;
}
