// Which objects have no colours: by the type of their file and what the viewer reports.
#include "ObjectPalette.h"

#include <algorithm>
#include <string_view>

#include "FileImport.h"
#include "FileTypes.h"

namespace {

bool IsOfKind(std::string_view file, FileKind kind) {
    const FileType* const type = FindFileType(file);
    return type != nullptr && type->kind == kind;
}

}  // namespace

std::int32_t PaletteColor(std::size_t position) { return kPalette[position % kPalette.size()]; }

bool TellsScansApart(std::span<const std::string> files, std::int32_t scanColor, bool isColorGiven) {
    const auto isScan = [](const std::string& file) { return IsOfKind(file, FileKind::Scan); };
    return !isColorGiven && scanColor == ImportSettings{}.color && std::ranges::count_if(files, isScan) > 1;
}

bool IsPlainMesh(const ObjectReport& object) {
    return IsOfKind(object.file, FileKind::Mesh) && !object.hasVertexColors && object.color == kUncolored;
}

bool IsPlainScan(const ObjectReport& object) {
    return IsOfKind(object.file, FileKind::Scan) && !object.hasVertexColors;
}

std::vector<std::int32_t> ShownColors(std::span<const ObjectReport> objects, bool tellsApart) {
    std::vector<std::int32_t> colors;
    std::size_t scans = 0;
    for (const ObjectReport& object : objects) {
        std::int32_t color = object.color;
        if (IsPlainMesh(object)) color = kMeshColor;
        if (tellsApart && IsPlainScan(object)) color = PaletteColor(scans++);
        colors.push_back(color);
    }
    return colors;
}
