// The pixels of a pcm file that cuts remove. Positions come from the file and not from the object, which may have lost
// vertices or may be thinned.
#include "cut/MsrCut.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
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

/// The vertices of some rows of a measurement, of which the first is row @p firstRow of the whole one.
void AppendVertices(const MeasurementData& rows, std::uint32_t firstRow, std::vector<Vertex>& vertices) {
    const std::array<float, 16>& m = rows.m_fTrafo;
    const float* p = rows.Points();
    const std::uint16_t* mask = rows.m_vMask.data();
    const auto width = static_cast<std::uint32_t>(rows.m_iWidth), height = static_cast<std::uint32_t>(rows.m_iHeight);
    vertices.reserve(vertices.size() + rows.m_vMask.size() - static_cast<std::size_t>(rows.m_iMasked));
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x, ++mask, p += 3) {
            if (*mask != 0) continue;
            // The order of the sums is that of the import (TransformRow()).
            vertices.push_back({.x = p[0] * m[0] + p[1] * m[1] + p[2] * m[2] + m[3],
                                .y = p[0] * m[4] + p[1] * m[5] + p[2] * m[6] + m[7],
                                .z = p[0] * m[8] + p[1] * m[9] + p[2] * m[10] + m[11],
                                .gridIndex = ((firstRow + y) << 16) | x});
        }
    }
}

using MaskList = std::vector<std::shared_ptr<const ACAD::CutMask>>;

/// What removes pixels of a measurement.
struct PixelRemoval {
    float confidenceLimit;
    const std::optional<CutPlane>& plane;
    const MaskList& masks;
};

/// Rows of a measurement from first to before last.
struct RowRange {
    std::size_t first, last;
};

/// Whether every point has a projection. Otherwise the result for a point depends on the one before it.
bool ProjectsEveryPoint(const ACAD::CutMask& mask) {
    const auto isConstant = [](const std::array<double, 16>& m) { return m[3] == 0 && m[7] == 0 && m[11] == 0; };
    const auto viewW = static_cast<float>(mask.m_dModelView[15]);
    return isConstant(mask.m_dModelView) && isConstant(mask.m_dProjection) &&
           static_cast<float>(mask.m_dProjection[15] * static_cast<double>(viewW)) != 0.0f;
}

/// A box around points, along x, y and z.
struct PointBox {
    double min[3] = {INFINITY, INFINITY, INFINITY}, max[3] = {-INFINITY, -INFINITY, -INFINITY};

    void Add(const Vertex& vertex) {
        const float point[3] = {vertex.x, vertex.y, vertex.z};
        for (int i = 0; i < 3; ++i) {
            min[i] = std::min<double>(min[i], point[i]);  // what is not a number is in no region
            max[i] = std::max<double>(max[i], point[i]);
        }
    }
};

/// Whether all points of a box are beside the rectangle of the set pixels, by interval arithmetic in double with a
/// margin for the single precision of the test itself. Only for a camera without perspective.
bool IsBesideRectangle(const ACAD::CutMask& mask, const PointBox& box) {
    const auto& view = mask.m_dModelView;
    const auto& projection = mask.m_dProjection;
    const double w = projection[15] * view[15];
    for (std::size_t axis = 0; axis < 2; ++axis) {
        double middle = projection[12 + axis] * view[15], radius = 0, size = std::abs(middle);
        for (std::size_t k = 0; k < 3; ++k) {
            const double p = projection[4 * k + axis];
            middle += p * view[12 + k];
            size += std::abs(p * view[12 + k]);
            for (std::size_t i = 0; i < 3; ++i) {
                const double q = p * view[4 * i + k];
                middle += q * (box.min[i] + box.max[i]) / 2;
                radius += std::abs(q) * (box.max[i] - box.min[i]) / 2;
                size += std::abs(q) * std::max(std::abs(box.min[i]), std::abs(box.max[i]));
            }
        }
        const double pixels = mask.m_nViewport[2 + axis], origin = mask.m_nViewport[axis];
        const double center = (middle / w + 1) / 2 * pixels + origin;
        const double reach =
            radius / std::abs(w) / 2 * pixels + 2 + 1e-5 * ((size / std::abs(w) + 1) * pixels + std::abs(origin));
        const double at = axis == 0 ? center : pixels - center - 1;
        if (at + reach < mask.m_rcBounds[axis] || at - reach > mask.m_rcBounds[2 + axis]) return true;
    }
    return false;
}

/// Gives kCutClass to the valid pixels of some rows that are removed.
/// @param vertices  memory that is used again for the next rows
void ReclassifyRows(const MeasurementArrays& grid, const RowRange& rows, const PixelRemoval& removal,
                    std::uint8_t* classes, std::vector<Vertex>& vertices) {
    const auto width = static_cast<std::size_t>(grid.m_iWidth);
    const std::size_t first = rows.first * width, pixels = (rows.last - rows.first) * width;
    const MeasurementData data =
        MakeMeasurementData({.m_iWidth = grid.m_iWidth,
                             .m_iHeight = static_cast<std::int32_t>(rows.last - rows.first),
                             .m_pPoints = grid.m_pPoints + 3 * first,
                             .m_pConfidence = grid.m_pConfidence + first,
                             .m_pClassification = grid.m_pClassification + first,
                             .m_pTrafo = grid.m_pTrafo},
                            {.m_eScale = GridScale::Thousandths, .m_fConfidenceLimit = removal.confidenceLimit});
    vertices.clear();
    AppendVertices(data, static_cast<std::uint32_t>(rows.first), vertices);
    if (removal.plane) RemoveBelowPlane(vertices, *removal.plane);
    PointBox box;
    for (const Vertex& vertex : vertices) box.Add(vertex);
    for (const auto& mask : removal.masks) {
        // Most rows of a scan are beside a lasso.
        const bool isBeside =
            mask->m_nKind != ACAD::CutKindOutside && ProjectsEveryPoint(*mask) && IsBesideRectangle(*mask, box);
        if (!isBeside) mask->InvalidateVertices(vertices);
    }

    // A pixel keeps its class only when it has a vertex that is left.
    const std::vector<std::uint8_t> before(classes + first, classes + first + pixels);
    for (std::size_t i = first; i < first + pixels; ++i)
        if (classes[i] < kFirstInvalidClass) classes[i] = kCutClass;
    for (const Vertex& vertex : vertices) {
        if (IsRemoved(vertex)) continue;
        const std::size_t pixel = (vertex.gridIndex >> 16) * width + (vertex.gridIndex & 0xFFFF);
        classes[pixel] = before[pixel - first];
    }
}

/// In blocks of rows, so that the vertices of a block stay in the second-level cache; with the masks of other cameras
/// than those of the viewer all rows at once.
void ReclassifyPixels(MsrStorage::MSR& measurement, const PixelRemoval& removal) {
    constexpr std::size_t kBlockPixels = 1 << 13;
    const MeasurementArrays grid = ArraysOf(measurement);
    const auto width = static_cast<std::size_t>(grid.m_iWidth), height = static_cast<std::size_t>(grid.m_iHeight);
    const bool hasBlocks =
        std::ranges::all_of(removal.masks, [](const auto& mask) { return ProjectsEveryPoint(*mask); });
    const std::size_t step = hasBlocks ? std::max<std::size_t>(1, kBlockPixels / width) : height;
    std::vector<Vertex> vertices;
    for (std::size_t first = 0; first < height; first += step) {
        const RowRange rows = {first, std::min(height, first + step)};
        ReclassifyRows(grid, rows, removal, measurement.GetPixelClassification(), vertices);
    }
}

/// Loads the file of an object. @return why it cannot be cut; empty when it can
std::string LoadFile(const std::wstring& file, MsrStorage::MSR& measurement) {
    if (std::string refusal = LoadMeasurement(file.c_str(), measurement); !refusal.empty()) return refusal;
    const int width = measurement.GetWidth(), height = measurement.GetHeight();
    if (width == 0 || height == 0) return "its grid has no pixel";
    return GridRefusal(width, height, 1);
}

bool HasValidPixel(MsrStorage::MSR& measurement) {
    const auto pixels = static_cast<std::ptrdiff_t>(measurement.GetWidth()) * measurement.GetHeight();
    const std::uint8_t* const classes = measurement.GetPixelClassification();
    return std::any_of(classes, classes + pixels, [](std::uint8_t c) { return c < kFirstInvalidClass; });
}

/// The reason of the failed save that this thread has just made.
std::string SaveReason() {
    std::string reason = LastMeasurementReason();
    return reason == kNoMeasurementReason ? "cannot be written" : reason;
}

}  // namespace

std::vector<Vertex> BuildMeasurementVertices(const MeasurementData& measurement) {
    std::vector<Vertex> vertices;
    AppendVertices(measurement, 0, vertices);
    return vertices;
}

MsrCutResult WriteCutToMsr(const Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane) {
    MsrStorage::MSR measurement;
    if (std::string refusal = LoadFile(mesh.m_sName, measurement); !refusal.empty())
        return {.outcome = KV_ScenePane::CutFileNotRead, .reason = std::move(refusal)};
    ReclassifyPixels(measurement, {confidenceLimit, plane, mesh.m_vpCutMasks});
    // The flags choose what libraries of other sites write; ours ignores them.
    if (!measurement.Save(mesh.m_sName.c_str(), true, true))
        return {.outcome = KV_ScenePane::CutFileNotWritten, .reason = SaveReason()};
    return {.reason = {}, .isNothingLeft = !HasValidPixel(measurement)};
}
