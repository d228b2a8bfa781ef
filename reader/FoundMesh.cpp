// The last steps, whatever the format was: checks, normals, and the ply file of a mesh with an image.
#include "FoundMesh.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include "KV_Components/ImageDecode.h"
#include "geometry/MeanNormals.h"
#include "geometry/Mesh.h"
#include "geometry/Vector3.h"
#include "io/PlyMeshWriter.h"
#include "io/VertexWeld.h"

namespace {

bool IsFinite(const Vertex& vertex) {
    return std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z);
}

/// A length of zero, or one that is no number, is no direction.
bool HasDirection(const Vertex& vertex) {
    const float length = vertex.nx * vertex.nx + vertex.ny * vertex.ny + vertex.nz * vertex.nz;
    return length > 0.0f && std::isfinite(length);
}

void RequireIndices(const MeshBuffers& mesh) {
    if (mesh.m_vVertices.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw UnreadableFile("more vertices than an index can count");
    for (std::size_t i = 0; i < mesh.m_vTriangles.size(); ++i)
        RequireCorners(mesh.m_vTriangles[i].v, mesh.m_vVertices.size(), i);
}

void ComputeNormals(FoundMesh& found) {
    if (found.normalRule == NormalRule::Mean) {
        ComputeMeanNormals(found.mesh);
        return;
    }
    Mesh mesh({}, false);
    mesh.m_vVertices.swap(found.mesh.m_vVertices);
    mesh.m_vTriangles.swap(found.mesh.m_vTriangles);
    mesh.ComputeVertexNormals();
    mesh.m_vVertices.swap(found.mesh.m_vVertices);
    mesh.m_vTriangles.swap(found.mesh.m_vTriangles);
}

/// Vertices that differ in their texture coordinates alone become one: the triangles have these for themselves, and the
/// viewer smooths the normals across such seams only where the vertex is shared.
void WeldPositions(MeshBuffers& mesh) {
    const std::vector<Vertex> split = std::move(mesh.m_vVertices);
    mesh.m_vVertices = {};
    std::vector<Float3> positions;
    positions.reserve(split.size());
    for (const Vertex& vertex : split) positions.push_back({vertex.x, vertex.y, vertex.z});
    std::vector<std::int32_t> indices(split.size());
    VertexWeld(mesh.m_vVertices, split.size()).Weld(positions, indices.data());
    for (Triangle& triangle : mesh.m_vTriangles)
        for (std::int32_t& index : triangle.v) index = indices[static_cast<std::size_t>(index)];
}

std::vector<std::uint8_t> PlyFileOf(const FoundMesh& found) {
    const PlyMeshWriter writer(found.mesh.m_vVertices, found.mesh.m_vTriangles, found.texCoords, found.image);
    const PlyMeshWriter::FileBytes file = writer.Assemble();
    std::vector<std::uint8_t> bytes(file.size);
    std::memcpy(bytes.data(), file.bytes.get(), file.size);
    return bytes;
}

std::string Sentences(const std::vector<std::string>& leftOut) {
    std::string text;
    for (const std::string& sentence : leftOut) text.append(text.empty() ? "" : "\n").append(sentence);
    return text;
}

/// How many coordinates are not finite, in the words of the viewer's own readers.
void NoteNotFinite(FoundMesh& found) {
    std::size_t count = 0;
    for (const Vertex& vertex : found.mesh.m_vVertices)
        for (const float coordinate : {vertex.x, vertex.y, vertex.z}) count += std::isfinite(coordinate) ? 0 : 1;
    if (count > 0) found.leftOut.push_back(std::to_string(count) + " coordinates are not finite");
}

ReaderResult PointsOf(FoundMesh found) {
    const std::size_t all = found.mesh.m_vVertices.size();
    std::erase_if(found.mesh.m_vVertices, [](const Vertex& vertex) { return !IsFinite(vertex); });
    if (found.mesh.m_vVertices.empty()) throw UnreadableFile("holds no triangle");
    if (const std::size_t lost = all - found.mesh.m_vVertices.size(); lost > 0)
        found.leftOut.push_back(std::to_string(lost) + " points without finite coordinates are left out");
    ReaderResult result;
    result.kind = ReaderResult::Kind::Points;
    result.text = Sentences(found.leftOut);
    result.mesh = std::move(found.mesh);
    return result;
}

}  // namespace

void RequireCorners(std::span<const std::int32_t> corners, std::size_t vertices, std::size_t triangle) {
    for (const std::int32_t corner : corners) {
        if (corner >= 0 && static_cast<std::size_t>(corner) < vertices) continue;
        throw UnreadableFile("triangle " + std::to_string(triangle) + " refers to vertex " + std::to_string(corner) +
                             " of " + std::to_string(vertices));
    }
}

ReaderResult ResultOf(FoundMesh found) {
    RequireIndices(found.mesh);
    if (found.mesh.m_vTriangles.empty()) return PointsOf(std::move(found));
    NoteNotFinite(found);
    const bool isTextured = !found.image.empty() && found.texCoords.size() == 3 * found.mesh.m_vTriangles.size();
    ReaderResult result;
    if (isTextured && KvComponents::DecodeImage(found.image)) {
        WeldPositions(found.mesh);
        result.kind = ReaderResult::Kind::TexturedMesh;
        result.plyFile = PlyFileOf(found);
    } else {
        if (isTextured) found.leftOut.emplace_back("its image is not shown: it is no png or jpeg file, or damaged");
        if (!found.hasNormals || !std::ranges::all_of(found.mesh.m_vVertices, HasDirection)) ComputeNormals(found);
        result.kind = ReaderResult::Kind::Mesh;
        result.mesh = std::move(found.mesh);
    }
    result.text = Sentences(found.leftOut);
    return result;
}

std::uint32_t ChannelOf(double value) {
    if (!(value > 0.0)) return 0;
    return value >= 1.0 ? 255 : static_cast<std::uint32_t>(std::lround(value * 255.0));
}
