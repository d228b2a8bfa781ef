// The cuts of objects written into the pcm files that these came from. No OpenGL.
#pragma once
#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "geometry/Mesh.h"

/// a, b, c, d of a clip plane: (a, b, c) has length 1, points with a x + b y + c z + d < 0 are removed.
using CutPlane = std::array<float, 4>;

/// What SaveMeshCutting() would do with the object. Reads no file.
[[nodiscard]] KV_ScenePane::CutSaveEntry PlanMeshCutting(const Mesh& mesh, const std::optional<CutPlane>& plane);

/// Writes the masks of an object and the plane into its file, drops the masks and stores the plane. Any thread; the
/// object and its file belong to the call until it returns.
/// @param entry  receives what was done
/// @return whether the file counts as written: also one that could not be read or written
bool SaveMeshCutting(Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane,
                     KV_ScenePane::CutSaveEntry& entry);
