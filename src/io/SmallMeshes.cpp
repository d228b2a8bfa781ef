// Both formats are two counts and two arrays of records, vertices and triangles. They differ in the normals that the
// records of msh have.
#include "io/SmallMeshes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "base/HugePages.h"
#include "io/FiniteCoordinates.h"
#include "io/MeshRecords.h"

static_assert(std::endian::native == std::endian::little, "values are copied from the file without a conversion");

namespace {

/// Sizes in bytes of the records of a format.
struct Layout {
    std::size_t vertexSize;    ///< copied to the start of a Vertex: position, then normal if there is one
    std::size_t triangleSize;  ///< the last twelve bytes are the indices
};
constexpr Layout kOis{12, 12};
constexpr Layout kMsh{24, 24};
constexpr std::size_t kMaxRecordSize = 24;

/// Calls @p add with every announced record. Values that are missing at the end of the file, or incomplete there, keep
/// those of the record before, at first zero.
/// @param endBlock  called after each block of some thousands of records that are in the file as a whole
/// @return bytes of the records that are in the file
template <typename Add, typename EndBlock>
std::uint64_t ForEachRecord(ByteInput& input, std::size_t size, std::uint64_t count, const Add& add,
                            const EndBlock& endBlock) {
    std::array<std::byte, kMaxRecordSize> record{};
    RecordBlocks blocks(input, size, count);
    for (auto records = blocks.Next(); !records.empty(); records = blocks.Next()) {
        for (std::size_t at = 0; at < records.size(); at += size) add(&records[at]);
        std::memcpy(record.data(), &records[records.size() - size], size);
        endBlock();
    }
    // the record in which the file ends: its whole values replace those of the last record
    if (blocks.Missing() == 0) return count * size;
    const auto tail = blocks.Tail();
    const std::size_t whole = tail.size() / 4 * 4;
    if (whole > 0) std::memcpy(record.data(), tail.data(), whole);
    for (std::uint64_t i = 0; i < blocks.Missing(); ++i) add(record.data());
    return (count - blocks.Missing()) * size + whole;
}

/// Throws with the first triangle that refers to a missing vertex, if there is one.
void RequireVertices(const MeshBuffers& mesh) {
    const auto vertices = static_cast<std::uint32_t>(mesh.m_vVertices.size());
    for (std::size_t i = 0; i < mesh.m_vTriangles.size(); ++i)
        for (const std::int32_t index : mesh.m_vTriangles[i].v)
            if (static_cast<std::uint32_t>(index) >= vertices)  // a negative index is a large one here
                throw FileReadError("triangle " + std::to_string(i) + " refers to vertex " + std::to_string(index) +
                                    ", but there are " + std::to_string(vertices));
}

/// Counts, vertices, triangles; then the indices are checked, those of missing triangles included.
FileMesh ReadFrom(ByteInput&& input, const Layout& layout) {
    // the counts, checked against the size of the file before anything is allocated
    std::int32_t counts[2] = {};
    if (input.Read(counts, sizeof counts) < sizeof counts) throw FileReadError("ends before its counts");
    if (counts[0] < 0 || counts[1] < 0) throw FileReadError("announces a negative count");
    const auto vertices = static_cast<std::uint32_t>(counts[0]), triangles = static_cast<std::uint32_t>(counts[1]);
    RequireHalf(input, sizeof counts,
                vertices * std::uint64_t{layout.vertexSize} + triangles * std::uint64_t{layout.triangleSize});

    // then the records
    FileMesh mesh(false);
    ReserveInHugePages(mesh.m_vVertices, vertices);
    ReserveInHugePages(mesh.m_vTriangles, triangles);
    NotFiniteCounter notFinite(mesh.m_vVertices);
    const auto addVertex = [&](const std::byte* record) {
        std::memcpy(static_cast<void*>(&mesh.m_vVertices.emplace_back()), record, layout.vertexSize);
    };
    const std::uint64_t inFile = ForEachRecord(input, layout.vertexSize, vertices, addVertex, [&] { notFinite.Add(); });
    mesh.m_uNotFinite = notFinite.Count();
    // The vertex in which the file ends; those after it are made up and do not count.
    if (const std::size_t last = inFile / layout.vertexSize; last < vertices) {
        const Vertex& vertex = mesh.m_vVertices[last];
        const float position[] = {vertex.x, vertex.y, vertex.z};
        const std::size_t values = std::min<std::size_t>(3, inFile % layout.vertexSize / sizeof(float));
        mesh.m_uNotFinite += CountNotFinite({position, values});
    }
    const auto addTriangle = [&](const std::byte* record) {
        constexpr std::size_t kIndices = sizeof(Triangle);  // after the face normal, which is skipped
        std::memcpy(&mesh.m_vTriangles.emplace_back(), record + layout.triangleSize - kIndices, kIndices);
    };
    const std::uint64_t bytes = ForEachRecord(input, layout.triangleSize, triangles, addTriangle, [] {});
    mesh.m_vertexShare = {inFile / layout.vertexSize, vertices};
    mesh.m_triangleShare = {bytes / layout.triangleSize, triangles};
    RequireVertices(mesh);
    return mesh;
}

}  // namespace

FileMesh ReadOisFile(const std::wstring& path) { return ReadFrom(FileInput(path), kOis); }
FileMesh ReadOis(std::span<const std::byte> bytes) { return ReadFrom(MemoryInput(bytes), kOis); }
FileMesh ReadMshFile(const std::wstring& path) { return ReadFrom(FileInput(path), kMsh); }
FileMesh ReadMsh(std::span<const std::byte> bytes) { return ReadFrom(MemoryInput(bytes), kMsh); }
