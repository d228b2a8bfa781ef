// Makes a mesh of the elements of a ply file: positions, triangles, colours, texture. Binary data is read through
// views, text in one pass per element. The order of these steps is fixed: it decides which reason is reported for a
// file with several faults.
#include "io/PlyMesh.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <span>
#include <utility>

#include "KV_ScenePane/PathText.h"
#include "base/HugePages.h"
#include "geometry/TriangleIndices.h"
#include "io/CPLYFile.h"
#include "io/FiniteCoordinates.h"
#include "io/PlyTextLines.h"

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

/// Not opened unless the path leads to a regular file: opening a pipe that has no writer would wait.
std::ifstream OpenFile(const std::wstring& path) {
    const std::string bytes = KV_ScenePane::PathBytes(path);
    struct stat info {};
    if (::stat(bytes.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
    return std::ifstream(bytes, std::ios::binary);
}

/// A value at any alignment.
template <typename T>
T ValueAt(const char* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

/// For faces that are not triangles.
[[noreturn]] void RefuseOtherFaces() { throw CPLYFileError("Non-triangle faces not supported."); }

/// Last, over the triangles of all ways.
void RequireValidIndices(const PlyMeshData& mesh) {
    const std::size_t vertices = mesh.GetVertexCount();
    const std::optional<BadIndex> bad = FindBadIndex(*mesh.m_pTriangles, vertices);
    if (!bad) return;
    throw CPLYFileError("Triangle " + std::to_string(bad->triangle) + " refers to vertex " +
                        std::to_string(bad->index) + " of " + std::to_string(vertices) + ".");
}

/// One read of one file; what it has read so far is in m_mesh.
class Reader {
public:
    explicit Reader(CPLYFile& file)
        : m_file(file), m_data(*file.m_pDataSection), m_isText(file.GetFormat() == CPLYFile::kAscii) {}

    PlyMeshData Read() {
        ReadPositions();
        if (!m_file.HasElement("face")) return std::move(m_mesh);
        ReadTriangles();
        ReadColors();
        if (!m_isText && m_file.HasElement("texture")) ReadTexture();
        RequireValidIndices(m_mesh);
        m_mesh.m_uBytesAfterEnd = static_cast<std::uint64_t>(m_data.BytesAfterEnd());
        return std::move(m_mesh);
    }

private:
    [[nodiscard]] std::vector<Vertex>& Vertices() { return *m_mesh.m_pVertices; }
    [[nodiscard]] std::vector<Triangle>& Triangles() { return *m_mesh.m_pTriangles; }

    void ReadPositions();
    void ReadPositionsFromText();
    void ReadPositionsFromViews();
    void ReadTriangles();
    [[nodiscard]] bool TryFaceBlock();
    [[nodiscard]] std::vector<PlyColumn> ColorColumns();
    [[nodiscard]] bool TryPositionsAndColors(std::span<const PlyColumn> positions);
    void ReadColors();
    void ReadColorsFromViews(bool hasAlpha);
    void ReadTexture();

    CPLYFile& m_file;
    DataSection& m_data;
    bool m_isText;
    bool m_hasReadColors = false;  // in the same pass as the positions
    PlyMeshData m_mesh;
};

// The three properties must be there in a file without vertices, too.
void Reader::ReadPositions() {
    const Element& vertex = m_file.GetElement("vertex");
    for (const char* name : {"x", "y", "z"}) (void)vertex.GetProperty(name);
    if (!m_isText) return ReadPositionsFromViews();
    if (vertex.m_iCount == 0) return;
    ReserveInHugePages(Vertices(), static_cast<std::size_t>(vertex.m_iCount));
    Vertices().resize(static_cast<std::size_t>(vertex.m_iCount), {.color = kWhite});
    ReadPositionsFromText();
}

// Straight into the vertices: the targets of the columns are members of the first vertex.
void Reader::ReadPositionsFromText() {
    Vertex& first = Vertices().front();
    const PlyColumn columns[] = {{"x", PlyColumn::kFloat, &first.x, sizeof(Vertex)},
                                 {"y", PlyColumn::kFloat, &first.y, sizeof(Vertex)},
                                 {"z", PlyColumn::kFloat, &first.z, sizeof(Vertex)}};
    if (!TryPositionsAndColors(columns)) m_data.ReadColumns("vertex", columns);
}

/// Positions and colours of text in one pass.
/// @return false when there are no colours, or when something is wrong: the reads in their fixed order then find the
///         reason to report
bool Reader::TryPositionsAndColors(std::span<const PlyColumn> positions) {
    const Element& vertex = m_file.GetElement("vertex");
    for (const char* name : {"red", "green", "blue"})
        if (!vertex.HasProperty(name)) return false;
    if (!m_file.HasElement("face")) return false;  // colours are read for meshes only
    std::vector<PlyColumn> columns = ColorColumns();
    columns.insert(columns.begin(), positions.begin(), positions.end());
    m_hasReadColors = m_data.ReadColumnsInOnePass("vertex", columns);
    return m_hasReadColors;
}

// Four bytes per coordinate, whatever type the header declares.
void Reader::ReadPositionsFromViews() {
    PlyArrayView x = m_data.GetArrayView("vertex", "x");
    PlyArrayView y = m_data.GetArrayView("vertex", "y");
    PlyArrayView z = m_data.GetArrayView("vertex", "z");
    for (const PlyArrayView* view : {&x, &y, &z}) view->RequireWidth(sizeof(float));
    ReserveInHugePages(Vertices(), static_cast<std::size_t>(x.m_iCount));
    NotFiniteCounter notFinite(Vertices());
    std::int64_t at = 0;
    for (std::int64_t left = x.m_iCount; left > 0;) {
        const std::int64_t block = std::min(left, std::int64_t{NotFiniteCounter::kBlock});
        for (std::int64_t i = 0; i < block; ++i, at += x.m_iStride) {
            Vertices().push_back({.x = ValueAt<float>(x.m_pFirst + at),
                                  .y = ValueAt<float>(y.m_pFirst + at),
                                  .z = ValueAt<float>(z.m_pFirst + at),
                                  .color = kWhite});
        }
        notFinite.Add();
        left -= block;
    }
    m_mesh.m_uNotFinite = notFinite.Count();
}

// The fast ways first; each gives up without a reason, which the last one finds.
void Reader::ReadTriangles() {
    const Element& face = m_file.GetElement("face");
    if (!m_isText && TryFaceBlock()) return;
    // the list under either of its usual names
    const char* name = "vertex_indices";
    if (!face.HasProperty(name) && face.HasProperty("vertex_index")) name = "vertex_index";
    (void)face.GetProperty(name);
    m_data.RequireRecords("face");
    Triangles().resize(static_cast<std::size_t>(face.m_iCount));
    if (Triangles().empty() || m_data.ReadLists("face", name, 3, Triangles().data()->v)) return;
    const auto keep = [](std::int64_t index, const std::vector<int>& list, void* user) {
        if (list.size() != 3) RefuseOtherFaces();
        auto& triangles = *static_cast<std::vector<Triangle>*>(user);
        if (static_cast<std::size_t>(index) >= triangles.size()) return false;
        triangles[static_cast<std::size_t>(index)] = {{list[0], list[1], list[2]}};
        return true;
    };
    // The fast pass has failed: list by list, which finds the reason. The lists can be fewer than the records.
    Triangles().assign(Triangles().size(), {});
    m_data.ForEachIntList("face", name, keep, &Triangles());
}

/// The usual binary face: 13 bytes, a count and three indices. The name of the list is not checked.
bool Reader::TryFaceBlock() {
    constexpr std::ptrdiff_t kRecord = 1 + sizeof(Triangle);
    const char* record = nullptr;
    int count = 0;
    if (!m_data.GetFaceBlock("face", record, count)) return false;
    if ((m_data.GetDataEnd() - record) / kRecord < count) RefuseOtherFaces();  // some records are smaller than 13 bytes
    ReserveInHugePages(Triangles(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i, record += kRecord) {
        if (*record != 3) RefuseOtherFaces();
        Triangles().push_back(ValueAt<Triangle>(record + 1));
    }
    return true;
}

// A "red" decides that there are colours; the other channels are then required.
void Reader::ReadColors() {
    const Element& vertex = m_file.GetElement("vertex");
    if (!vertex.HasProperty("red")) return;
    m_mesh.m_bHasColors = true;
    (void)vertex.GetProperty("green");
    (void)vertex.GetProperty("blue");
    const bool hasAlpha = vertex.HasProperty("alpha");
    if (Vertices().empty() || m_hasReadColors) return;
    if (!m_isText) return ReadColorsFromViews(hasAlpha);
    for (Vertex& v : Vertices()) v.color = hasAlpha ? 0 : kOpaque;
    m_data.ReadColumns("vertex", ColorColumns());
}

/// Targets of the colours in text. Without an alpha in the file the top byte of Vertex::color keeps its value.
std::vector<PlyColumn> Reader::ColorColumns() {
    auto* const first = reinterpret_cast<std::byte*>(&Vertices().front().color);
    std::vector<PlyColumn> columns = {{"blue", PlyColumn::kLowByte, first, sizeof(Vertex)},
                                      {"green", PlyColumn::kLowByte, first + 1, sizeof(Vertex)},
                                      {"red", PlyColumn::kLowByte, first + 2, sizeof(Vertex)}};
    if (m_file.GetElement("vertex").HasProperty("alpha"))
        columns.push_back({"alpha", PlyColumn::kLowByte, first + 3, sizeof(Vertex)});
    return columns;
}

// One byte per channel, whatever type the header declares.
void Reader::ReadColorsFromViews(bool hasAlpha) {
    const PlyArrayView red = m_data.GetArrayView("vertex", "red");
    const PlyArrayView green = m_data.GetArrayView("vertex", "green");
    const PlyArrayView blue = m_data.GetArrayView("vertex", "blue");
    const PlyArrayView alpha = hasAlpha ? m_data.GetArrayView("vertex", "alpha") : PlyArrayView();
    std::int64_t at = 0;
    const auto byteOf = [&at](const PlyArrayView& view) -> std::uint32_t {
        return ValueAt<std::uint8_t>(view.m_pFirst + at);
    };
    for (Vertex& vertex : Vertices()) {
        const std::uint32_t opacity = hasAlpha ? byteOf(alpha) << 24 : kOpaque;
        vertex.color = opacity | byteOf(red) << 16 | byteOf(green) << 8 | byteOf(blue);
        at += red.m_iStride;
    }
}

// Texture coordinates per corner of a face, and the bytes of the encoded image as records of the element "texture".
void Reader::ReadTexture() {
    if (!Triangles().empty()) (void)m_file.GetElement("face").GetProperty("texcoord");
    std::vector<float>& texCoords = m_mesh.m_vTexCoords;
    texCoords.resize(6 * Triangles().size());
    if (!texCoords.empty() && !m_data.ReadLists("face", "texcoord", 6, texCoords.data())) {
        const auto keep = [](std::int64_t index, const std::vector<float>& list, void* user) {
            if (list.size() != 6) throw CPLYFileError("Expected 6 UV coordinates per face.");
            auto& all = *static_cast<std::vector<float>*>(user);
            if (static_cast<std::size_t>(index) >= all.size() / 6) return false;
            std::ranges::copy(list, all.begin() + 6 * index);
            return true;
        };
        texCoords.assign(texCoords.size(), 0.0f);
        m_data.ForEachFloatList("face", "texcoord", keep, &texCoords);
    }
    const PlyArrayView image = m_data.GetArrayView("texture", "bytes");
    assert(image.m_iBytes >= image.m_iCount);
    m_mesh.m_vImageBytes.assign(image.m_pFirst, image.m_pFirst + image.m_iCount);
    m_mesh.m_bHasTexture = !texCoords.empty() && !m_mesh.m_vImageBytes.empty();
}

}  // namespace

PlyMeshData ReadPlyMesh(const std::wstring& path, unsigned threads) {
    std::ifstream stream = OpenFile(path);
    CPLYFile file;
    file.Read(stream, true);
    std::string data = CPLYFile::ReadRest(stream);
    if (PlyMeshData mesh; ReadPlyTextLines(file, data, threads, mesh)) {
        RequireValidIndices(mesh);
        return mesh;
    }
    file.SetData(std::move(data));
    return Reader(file).Read();
}
