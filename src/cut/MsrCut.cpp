// The pixels of a pcm file that cuts remove. Positions come from the file and not from the object, which may have lost
// vertices or may be thinned.
#include "cut/MsrCut.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "KV_ScenePane/CutMask.h"
#include "MSRDLL/Msr.h"
#include "io/GridLimits.h"
#include "io/MeasurementFile.h"
#include "io/MeasurementReason.h"

namespace {

constexpr std::uint32_t kRemoved = 0xFFFFFFFF;  // gridIndex -1

bool IsRemoved(const Vertex& vertex) { return static_cast<std::int32_t>(vertex.gridIndex) < 0; }

/// The sum in single precision from left to right. A position that is not a number is kept.
void RemoveBelowPlane(std::vector<Vertex>& vertices, const CutPlane& plane) {
    const auto [a, b, c, d] = plane;
    for (Vertex& vertex : vertices)
        if (!IsRemoved(vertex) && a * vertex.x + b * vertex.y + c * vertex.z + d < 0) vertex.gridIndex = kRemoved;
}

/// Gives kCutClass to every valid pixel without a vertex.
void ReclassifyPixels(std::uint8_t* classes, const MeasurementData& data, const std::vector<Vertex>& vertices) {
    const std::size_t pixels = data.m_vMask.size();
    const std::vector<std::uint8_t> before(classes, classes + pixels);
    for (std::size_t i = 0; i < pixels; ++i)
        if (classes[i] < kFirstInvalidClass) classes[i] = kCutClass;
    for (const Vertex& vertex : vertices) {
        if (IsRemoved(vertex)) continue;
        const std::size_t x = vertex.gridIndex & 0xFFFF, y = vertex.gridIndex >> 16;
        const std::size_t pixel = y * static_cast<std::size_t>(data.m_iWidth) + x;
        classes[pixel] = before[pixel];
    }
}

/// The reason of the failed save that this thread has just made.
std::string SaveReason() {
    std::string reason = LastMeasurementReason();
    return reason == kNoMeasurementReason ? "cannot be written" : reason;
}

}  // namespace

std::vector<Vertex> BuildMeasurementVertices(const MeasurementData& measurement) {
    const std::array<float, 16>& m = measurement.m_fTrafo;
    const float* p = measurement.Points();
    std::vector<Vertex> vertices;
    vertices.reserve(measurement.m_vMask.size() - static_cast<std::size_t>(measurement.m_iMasked));
    std::size_t pixel = 0;
    for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(measurement.m_iHeight); ++y) {
        for (std::uint32_t x = 0; x < static_cast<std::uint32_t>(measurement.m_iWidth); ++x, ++pixel, p += 3) {
            if (measurement.m_vMask[pixel] != 0) continue;
            // The order of the sums is that of the import (TransformRow()).
            vertices.push_back({.x = p[0] * m[0] + p[1] * m[1] + p[2] * m[2] + m[3],
                                .y = p[0] * m[4] + p[1] * m[5] + p[2] * m[6] + m[7],
                                .z = p[0] * m[8] + p[1] * m[9] + p[2] * m[10] + m[11],
                                .gridIndex = (y << 16) | x});
        }
    }
    return vertices;
}

MsrCutResult WriteCutToMsr(const Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane) {
    MsrStorage::MSR measurement;
    const MeasurementData data = LoadMeasurementFile(mesh.m_sName.c_str(), confidenceLimit, &measurement);
    if (!data.m_sRefusal.empty() || data.m_vMask.empty()) {
        const std::string refusal =
            data.m_sRefusal.empty() ? GridRefusal(data.m_iWidth, data.m_iHeight, 1) : data.m_sRefusal;
        return {KV_ScenePane::CutFileNotRead, refusal.empty() ? "its grid has no pixel" : refusal};
    }
    std::vector<Vertex> vertices = BuildMeasurementVertices(data);
    if (plane) RemoveBelowPlane(vertices, *plane);
    for (const auto& mask : mesh.m_vpCutMasks) mask->InvalidateVertices(vertices);
    ReclassifyPixels(measurement.GetPixelClassification(), data, vertices);
    // The flags choose what libraries of other sites write; ours ignores them.
    if (!measurement.Save(mesh.m_sName.c_str(), true, true)) return {KV_ScenePane::CutFileNotWritten, SaveReason()};
    return {};
}
