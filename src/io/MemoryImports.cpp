// The imports from the host's memory.
#include <string>
#include <utility>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "geometry/MeanNormals.h"
#include "io/GridLimits.h"
#include "base/DebugOutput.h"

void CKV_ScenePaneCtrl::ImportMeasurementFromMemory(std::int32_t width, std::int32_t height, const float* points,
                                                    const float* confidence, const float* trafo, std::int32_t color) {
    if (const std::string refusal = GridRefusal(width, height, m_nScanSkipVal); !refusal.empty()) {
        DebugOutput("ImportMeasurementFromMemory(): " + refusal + "\n");
    } else {
        std::vector<std::uint16_t> mask(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < mask.size(); ++i) mask[i] = m_fConfidenceFilter > confidence[i] ? 1 : 0;
        SetScanData(width, height, points, mask.data(), trafo, static_cast<std::uint32_t>(color), nullptr);
    }
    InvalidateControl(true);
}

void CKV_ScenePaneCtrl::ImportMeshedMeasurement(const KV_ScenePane::MeshBuffers* mesh, BSTR filename,
                                                std::int32_t color) {
    std::vector<Vertex> vertices = mesh->GetVertices();
    std::vector<Triangle> triangles = mesh->GetTriangles();
    auto object = std::make_shared<Mesh>(std::move(vertices), std::move(triangles),
                                         filename == nullptr ? L"" : filename, mesh->HasColors());
    object->SetColorRef(static_cast<std::uint32_t>(color));
    object->MarkBuffersDirty();
    AddMeshToScene(std::move(object), -1);
}

// Takes no part in a parallel import: the object joins the scene at once.
void CKV_ScenePaneCtrl::ImportMeshFromMemory(std::int32_t numberOfVertices, std::int32_t numberOfTriangles,
                                             const float* vertices, const std::int32_t* triangles) {
    MeshBuffers buffers(false);
    if (numberOfVertices > 0) {
        buffers.m_vVertices.resize(static_cast<std::size_t>(numberOfVertices));
        for (Vertex& vertex : buffers.m_vVertices) {
            vertex.x = vertices[0];
            vertex.y = vertices[1];
            vertex.z = vertices[2];
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
    ComputeMeanNormals(buffers);
    auto object = std::make_shared<Mesh>(std::move(buffers.m_vVertices), std::move(buffers.m_vTriangles), L"",
                                         buffers.HasColors());
    object->ComputeBoundingBox();
    m_vpMeshes.push_back(std::move(object));
}
