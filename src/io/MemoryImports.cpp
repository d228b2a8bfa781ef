// Imports from the host's memory: a grid, a mesh with normals, and bare arrays of a mesh. The host's arrays are copied.
#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "geometry/MeanNormals.h"
#include "io/FileMessage.h"
#include "io/FiniteCoordinates.h"
#include "io/MeasurementData.h"

namespace {

constexpr char kGridOperation[] = "ImportMeasurementFromMemory", kMeshOperation[] = "ImportMeshFromMemory";

std::vector<Vertex> CopyAndCount(const std::vector<Vertex>& from, std::size_t& notFinite) {
    constexpr std::size_t kBlock = NotFiniteCounter::kBlock;
    std::vector<Vertex> to;
    to.reserve(from.size());
    NotFiniteCounter counter(to);
    for (std::size_t first = 0; first < from.size(); first += kBlock) {
        const std::span<const Vertex> block(&from[first], std::min(kBlock, from.size() - first));
        to.insert(to.end(), block.begin(), block.end());
        counter.Add();
    }
    notFinite = counter.Count();
    return to;
}

}  // namespace

void CKV_ScenePaneCtrl::ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                                    const float* confidence, const float* trafo,
                                                    std::int32_t color) try {
    // Points and translation are in scene units, and there are no classes.
    const MeasurementArrays arrays = {
        .m_iWidth = width, .m_iHeight = height, .m_pPoints = points, .m_pConfidence = confidence, .m_pTrafo = trafo};
    SetScanData(MakeMeasurementData(arrays, {.m_fConfidenceLimit = m_fConfidenceFilter}),
                {.m_sName = m_strScanPath,
                 .m_uColor = static_cast<std::uint32_t>(color),
                 .m_pRefusedBy = kGridOperation,
                 .m_uThreads = ImportThreads()});
    InvalidateControl(true);
} catch (...) {
    ReportCaughtError(kGridOperation, m_strScanPath);
    throw;
}

void CKV_ScenePaneCtrl::ImportMeshedMeasurement(const KV_ScenePane::MeshBuffers* mesh, BSTR filename,
                                                std::int32_t color) try {
    if (mesh == nullptr) return ReportFileError("ImportMeshedMeasurement", TextOrEmpty(filename), "there is no mesh");
    // Copies: the buffers are the host's. Normals are used as they are, and nothing is triangulated.
    std::size_t notFinite = 0;
    std::vector<Vertex> vertices = CopyAndCount(mesh->GetVertices(), notFinite);
    std::vector<Triangle> triangles = mesh->GetTriangles();
    auto object = std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(TextOrEmpty(filename)),
                                         mesh->HasColors());
    object->SetColorRef(static_cast<std::uint32_t>(color));
    object->MarkBuffersDirty();
    AddMeshToScene(std::move(object), -1);
    ReportNotFinite(TextOrEmpty(filename), notFinite);
} catch (...) {
    ReportCaughtError("ImportMeshedMeasurement", TextOrEmpty(filename));
    throw;
}

// Not staged during a parallel import: the object is in the scene at once.
void CKV_ScenePaneCtrl::ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles,
                                             const float* vertices, const std::int32_t* triangles) try {
    if (numberOfVertices > 0 && vertices == nullptr)
        return ReportFileError(kMeshOperation, {}, "there is no array of vertices");
    if (numberOfTriangles > 0 && triangles == nullptr)
        return ReportFileError(kMeshOperation, {}, "there is no array of triangles");
    // Counts below zero are counts of zero.
    MeshBuffers buffers(false);
    std::size_t notFinite = 0;
    if (numberOfVertices > 0) {
        buffers.m_vVertices.resize(static_cast<std::size_t>(numberOfVertices));
        for (Vertex& vertex : buffers.m_vVertices) {
            vertex.x = vertices[0];
            vertex.y = vertices[1];
            vertex.z = vertices[2];
            for (int i = 0; i < 3; ++i) notFinite += IsNotFinite(vertices[i]) ? 1 : 0;
            vertices += 3;
        }
    }
    if (numberOfTriangles > 0) {
        buffers.m_vTriangles.resize(static_cast<std::size_t>(numberOfTriangles));
        for (Triangle& triangle : buffers.m_vTriangles) {
            triangle = {{triangles[0], triangles[1], triangles[2]}};
            triangles += 3;
        }
    }
    // Normals are means of the face normals, not normalised; a vertex without triangles has none.
    ComputeMeanNormals(buffers, ImportThreads());
    auto object = std::make_shared<Mesh>(std::move(buffers.m_vVertices), std::move(buffers.m_vTriangles), L"",
                                         buffers.HasColors());
    object->ComputeBoundingBox();
    m_vpMeshes.push_back(std::move(object));
    ReportNotFinite({}, notFinite);
} catch (...) {
    ReportCaughtError(kMeshOperation, {});
    throw;
}
