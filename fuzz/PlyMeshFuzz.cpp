// Any bytes as the ply file of a mesh: refused, or a mesh in proportion to the file whose indices are valid and whose
// export is read as the same mesh. Text is read line by line and by tokens, with the same result.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "Require.h"
#include "io/CPLYFile.h"
#include "io/PlyMesh.h"
#include "io/PlyMeshWriter.h"

namespace {

/// A file in memory: the reader accepts paths only.
class MemoryFile {
public:
    MemoryFile(const void* bytes, std::size_t size) : m_iFd(::memfd_create("ply", MFD_CLOEXEC)) {
        Require(m_iFd >= 0 && ::write(m_iFd, bytes, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { ::close(m_iFd); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    [[nodiscard]] std::wstring Path() const { return L"/proc/self/fd/" + std::to_wstring(m_iFd); }

private:
    int m_iFd;
};

template <class Value>
bool SameBytes(const std::vector<Value>& a, const std::vector<Value>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Value)) == 0);
}

std::vector<TexCoord> Pairs(const std::vector<float>& flat) {
    std::vector<TexCoord> pairs;
    for (std::size_t i = 0; i + 1 < flat.size(); i += 2) pairs.push_back({flat[i], flat[i + 1]});
    return pairs;
}

void RequireSameAfterExport(PlyMeshData mesh) {
    const std::vector<TexCoord> texCoords = mesh.m_bHasTexture ? Pairs(mesh.m_vTexCoords) : std::vector<TexCoord>();
    if (!mesh.m_bHasTexture) mesh.m_vImageBytes.clear();
    const auto file = PlyMeshWriter(*mesh.m_pVertices, *mesh.m_pTriangles, texCoords, mesh.m_vImageBytes).Assemble();
    const PlyMeshData back = ReadPlyMesh(MemoryFile(file.bytes.get(), file.size).Path());
    const bool hasColors = !mesh.m_pVertices->empty() && (mesh.m_pVertices->front().color & 0xFFFFFF) != 0;
    Require(back.m_bHasColors == hasColors);
    for (Vertex& vertex : *mesh.m_pVertices) vertex.color = hasColors ? vertex.color | 0xFF000000 : 0xFFFFFFFF;
    Require(SameBytes(*back.m_pVertices, *mesh.m_pVertices) && SameBytes(*back.m_pTriangles, *mesh.m_pTriangles));
    Require(back.m_bHasTexture == mesh.m_bHasTexture && SameBytes(back.m_vImageBytes, mesh.m_vImageBytes));
    if (mesh.m_bHasTexture) Require(SameBytes(back.m_vTexCoords, mesh.m_vTexCoords));
}

/// The same file with one more element, which has no records: such a text is not read line by line but by tokens.
/// Unchanged where the end of the header is not easy to find.
std::string WithAnotherElement(std::string_view file) {
    constexpr std::string_view kEnd = "\nend_header\n";
    std::string lower(file);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const std::size_t end = lower.find("end_header");
    if (end == std::string::npos || end == 0 || lower.substr(end - 1, kEnd.size()) != kEnd) return std::string(file);
    if (lower.substr(0, end).find("comment") != std::string::npos) return std::string(file);
    return std::string(file.substr(0, end)).append("element nothing 0\n").append(file.substr(end));
}

/// The mesh, or none of a file that is refused.
std::optional<PlyMeshData> TryToRead(std::string_view file) {
    try {
        return ReadPlyMesh(MemoryFile(file.data(), file.size()).Path());
    } catch (const CPLYFileError&) {
        return {};
    }
}

void RequireSameByTokens(std::string_view file) {
    const auto mesh = TryToRead(file), byTokens = TryToRead(WithAnotherElement(file));
    Require(mesh.has_value() == byTokens.has_value());
    if (!mesh) return;
    Require(SameBytes(*mesh->m_pVertices, *byTokens->m_pVertices));
    Require(SameBytes(*mesh->m_pTriangles, *byTokens->m_pTriangles));
    Require(mesh->m_bHasColors == byTokens->m_bHasColors && mesh->m_uBytesAfterEnd == byTokens->m_uBytesAfterEnd);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        PlyMeshData mesh = ReadPlyMesh(MemoryFile(data, size).Path());
        Require(mesh.GetVertexCount() * 3 <= size && mesh.GetTriangleCount() * 4 <= size);
        Require(mesh.m_vImageBytes.size() <= size && mesh.m_vTexCoords.size() <= size * 6);
        RequireValidIndices(*mesh.m_pTriangles, mesh.GetVertexCount());
        if (mesh.GetTriangleCount() > 0) RequireSameAfterExport(std::move(mesh));
    } catch (const CPLYFileError&) {
    }
    RequireSameByTokens({reinterpret_cast<const char*>(data), size});
    return 0;
}
