// The cuts of objects written into the pcm files that these came from. No OpenGL.
#pragma once
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "cut/MsrCut.h"
#include "geometry/Mesh.h"

/// What SaveMeshCutting() would do with the object. Reads no file.
[[nodiscard]] KV_ScenePane::CutSaveEntry PlanMeshCutting(const Mesh& mesh, const std::optional<CutPlane>& plane);

/// Writes the masks of an object and the plane into its file, drops the masks and stores the plane. Any thread; the
/// object and its file belong to the call until it returns.
/// @param entry  receives what was done; its object stays
/// @return whether the file counts as written: also one that could not be read or written
/// @throws when memory is short between the read and the write of the file, for example: the object and its file are
///         then as before, and @p entry says why. In the read or the write it is a failure of the file
bool SaveMeshCutting(Mesh& mesh, float confidenceLimit, const std::optional<CutPlane>& plane,
                     KV_ScenePane::CutSaveEntry& entry);

/// PlanMeshCutting() for all objects, in their order.
[[nodiscard]] std::vector<KV_ScenePane::CutSaveEntry> PlanMeshCuttings(std::span<const std::shared_ptr<Mesh>> meshes,
                                                                       const std::optional<CutPlane>& plane);

struct CutSaveRun {
    std::vector<KV_ScenePane::CutSaveEntry> entries;  ///< what was done, one per object in their order
    bool isWritten = false;                           ///< at least one file counts as written
    std::exception_ptr exception;  ///< what the save of an object threw, unless an object before it was saved
};

/// SaveMeshCutting() for all objects, on all cores, with at most one measurement in memory per core. Objects from one
/// file are saved one after the other in their order, so that the file gets the cuts of all.
[[nodiscard]] CutSaveRun SaveMeshCuttings(std::span<const std::shared_ptr<Mesh>> meshes, float confidenceLimit,
                                          const std::optional<CutPlane>& plane);
