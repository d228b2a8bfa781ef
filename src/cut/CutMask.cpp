// The test of points against a mask.
#include "KV_ScenePane/CutMask.h"

namespace ACAD {

bool CutMask::MarkVertices(std::span<const KV_ScenePane::Vertex> /*vertices*/,
                           std::span<std::uint32_t> /*bits*/) const {
    return false;
}

bool CutMask::InvalidateVertices(std::span<KV_ScenePane::Vertex> /*vertices*/) const { return false; }

}  // namespace ACAD
