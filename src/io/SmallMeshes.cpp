// Both formats are counts and two arrays of records; they differ in what a record has besides.
#include "io/SmallMeshes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "io/MeshRecords.h"
#include "base/HugePages.h"

static_assert(std::endian::native == std::endian::little, "values are taken from the file as they stand");

namespace {

struct Layout {
    std::size_t vertexSize;    ///< the start of a Vertex: position, and where there is room for it the normal
    std::size_t triangleSize;  ///< the last twelve bytes are the indices
};
constexpr Layout kOis{12, 12};
constexpr Layout kMsh{24, 24};
constexpr std::size_t kLargestRecord = 24;

/// Hands every announced record to @p take. Whole values that the file does not have stay as they were, zero at first.
template <typename Take>
void ForEachRecord(ByteInput& input, std::size_t size, std::uint64_t count, const Take& take) {
    std::array<std::byte, kLargestRecord> record{};
    RecordBlocks blocks(input, size, count);
    for (auto records = blocks.Next(); !records.empty(); records = blocks.Next()) {
        for (std::size_t at = 0; at < records.size(); at += size) take(&records[at]);
        std::memcpy(record.data(), &records[records.size() - size], size);
    }
    if (blocks.Missing() == 0) return;
    const auto tail = blocks.Tail();
    if (const std::size_t whole = tail.size() / 4 * 4; whole > 0) std::memcpy(record.data(), tail.data(), whole);
    for (std::uint64_t i = 0; i < blocks.Missing(); ++i) take(record.data());
}

template <typename T>
void Reserve(std::vector<T>& records, std::size_t count) {
    records.reserve(count);
    AdviseHugePages(records.data(), count * sizeof(T));
}

void RequireVertices(const MeshBuffers& mesh) {
    const auto vertices = static_cast<std::uint32_t>(mesh.m_vVertices.size());
    for (std::size_t i = 0; i < mesh.m_vTriangles.size(); ++i)
        for (const std::int32_t index : mesh.m_vTriangles[i].v)
            if (static_cast<std::uint32_t>(index) >= vertices)  // a negative index is a huge one
                throw FileReadError("triangle " + std::to_string(i) + " refers to vertex " + std::to_string(index) +
                                    ", but there are " + std::to_string(vertices));
}

MeshBuffers ReadFrom(ByteInput&& input, const Layout& layout) {
    std::int32_t counts[2] = {};
    if (input.Read(counts, sizeof counts) < sizeof counts) throw FileReadError("ends before its counts");
    if (counts[0] < 0 || counts[1] < 0) throw FileReadError("announces a negative count");
    const auto vertices = static_cast<std::uint32_t>(counts[0]), triangles = static_cast<std::uint32_t>(counts[1]);
    RequireHalf(input, sizeof counts,
                vertices * std::uint64_t{layout.vertexSize} + triangles * std::uint64_t{layout.triangleSize});

    MeshBuffers mesh(false);
    Reserve(mesh.m_vVertices, vertices);
    Reserve(mesh.m_vTriangles, triangles);
    ForEachRecord(input, layout.vertexSize, vertices, [&](const std::byte* record) {
        std::memcpy(static_cast<void*>(&mesh.m_vVertices.emplace_back()), record, layout.vertexSize);
    });
    ForEachRecord(input, layout.triangleSize, triangles, [&](const std::byte* record) {
        constexpr std::size_t kIndices = sizeof(Triangle);
        std::memcpy(&mesh.m_vTriangles.emplace_back(), record + layout.triangleSize - kIndices, kIndices);
    });
    RequireVertices(mesh);
    return mesh;
}

}  // namespace

MeshBuffers ReadOisFile(const std::wstring& path) { return ReadFrom(FileInput(path), kOis); }
MeshBuffers ReadOis(std::span<const std::byte> bytes) { return ReadFrom(MemoryInput(bytes), kOis); }
MeshBuffers ReadMshFile(const std::wstring& path) { return ReadFrom(FileInput(path), kMsh); }
MeshBuffers ReadMsh(std::span<const std::byte> bytes) { return ReadFrom(MemoryInput(bytes), kMsh); }
