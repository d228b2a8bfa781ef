#include "align/RigidMotion.h"

CACADQTrafo RotationAbout(const Double3& /*axis*/, double /*angle*/, const Double3& /*pivot*/) { return {}; }
CACADQTrafo TranslationBy(const Double3& /*offset*/) { return {}; }
CACADQTrafo Compose(const CACADQTrafo& second, const CACADQTrafo& /*first*/) { return second; }
bool IsFinite(const CACADQTrafo& /*trafo*/) { return true; }
void MoveObject(Mesh& mesh, const CACADQTrafo& trafo) { mesh.ApplyTrafo(trafo); }
CACADQTrafo AlignSinglePair(const Vertex& /*source*/, const Vertex& /*target*/) { return {}; }
std::optional<CACADQTrafo> MatchPoints(std::span<const Vertex> /*source*/, std::span<const Vertex> /*target*/) {
    return {};
}
KV_ScenePane::AlignmentResult DescribeAlignment(std::span<const Vertex> /*source*/, std::span<const Vertex> /*target*/,
                                                const std::optional<CACADQTrafo>& /*trafo*/) {
    return {};
}
