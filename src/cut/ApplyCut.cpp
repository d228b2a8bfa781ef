// A finished cut applied to objects.
#include "cut/ApplyCut.h"

std::shared_ptr<Mesh> CutMesh(const std::shared_ptr<Mesh>& mesh, const std::shared_ptr<const ACAD::CutMask>& /*mask*/) {
    return mesh;
}

std::vector<std::shared_ptr<Mesh>> ApplyCutMask(std::span<const std::shared_ptr<Mesh>> /*meshes*/,
                                                const std::shared_ptr<const ACAD::CutMask>& /*mask*/) {
    return {};
}
