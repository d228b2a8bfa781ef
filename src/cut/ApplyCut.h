// A finished cut applied to objects. No OpenGL; the objects themselves are not changed.
#pragma once
#include <memory>
#include <span>
#include <vector>

#include "KV_ScenePane/CutMask.h"
#include "geometry/Mesh.h"

/// Whether the object has another transform than at its import; the identity for other objects. A transform that a host
/// read and set again has gone through floats, so that its rotation may differ in the last bits.
[[nodiscard]] bool IsMoved(const Mesh& mesh);

/// The object that takes the place of @p mesh: the same one when it is hidden or loses no vertex, else a clone without
/// the triangles that use a removed vertex, whose list of masks has the new one at its end. Any thread.
[[nodiscard]] std::shared_ptr<Mesh> CutMesh(const std::shared_ptr<Mesh>& mesh,
                                            const std::shared_ptr<const ACAD::CutMask>& mask);

/// All objects after the cut, in their order; empty when none has changed. Works on all cores; returns when all work
/// has ended.
/// @throws what the work on an object threw, for the first such object
[[nodiscard]] std::vector<std::shared_ptr<Mesh>> ApplyCutMask(std::span<const std::shared_ptr<Mesh>> meshes,
                                                              const std::shared_ptr<const ACAD::CutMask>& mask);
