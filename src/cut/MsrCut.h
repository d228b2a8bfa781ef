// One pcm file and the cuts of its object: removed pixels get another class, everything else stays. No OpenGL.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "geometry/Mesh.h"
#include "io/MeasurementData.h"

/// a, b, c, d of a clip plane: (a, b, c) has length 1, points with a x + b y + c z + d < 0 are removed.
using CutPlane = std::array<float, 4>;

/// The class of a pixel that was cut.
inline constexpr std::uint8_t kCutClass = 250;

/// One vertex per valid pixel in row order: its position in the world frame, as the import computes it, and its
/// gridIndex; everything else is zero.
[[nodiscard]] std::vector<Vertex> BuildMeasurementVertices(const MeasurementData& measurement);

struct MsrCutResult {
    KV_ScenePane::CutSaveOutcome outcome = KV_ScenePane::CutWritten;  ///< written, not read, or not written
    std::string reason;          ///< why it was not read or not written, see CutSaveEntry; else empty
    bool isNothingLeft = false;  ///< written without a valid pixel
};

/// Writes the masks of an object and the plane into its file, which is replaced as a whole or not at all. A valid pixel
/// keeps its class when the confidence limit, the plane and all masks leave it; the others get kCutClass. Any thread.
[[nodiscard]] MsrCutResult WriteCutToMsr(const Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane);
