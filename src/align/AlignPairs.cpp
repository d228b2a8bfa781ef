// Alignment by pairs of points, from the host or from picks. The transform is MatchPoints() in align/RigidMotion.h.
#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "align/RigidMotion.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WaitCursor.h"

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPoint;

namespace {

Vertex VertexOf(const AlignmentPoint& point) {
    Vertex vertex{};
    vertex.x = point.point[0];
    vertex.y = point.point[1];
    vertex.z = point.point[2];
    vertex.nx = point.normal[0];
    vertex.ny = point.normal[1];
    vertex.nz = point.normal[2];
    return vertex;
}

std::vector<Vertex> SideOf(std::span<const AlignmentPair> pairs, AlignmentPoint AlignmentPair::*side) {
    std::vector<Vertex> points;
    points.reserve(pairs.size());
    for (const AlignmentPair& pair : pairs) points.push_back(VertexOf(pair.*side));
    return points;
}

}  // namespace

bool CKV_ScenePaneCtrl::AlignByPairs(std::span<const AlignmentPair> pairs) {
    const WaitCursor wait(*m_pWindow);
    const std::vector<Vertex> source = SideOf(pairs, &AlignmentPair::moving);
    const std::vector<Vertex> target = SideOf(pairs, &AlignmentPair::fixed);
    if (!MoveByPoints(source, target)) return false;
    InvalidateControl(false);
    return true;
}

bool CKV_ScenePaneCtrl::MoveByPoints(std::span<const Vertex> source, std::span<const Vertex> target) {
    const std::optional<CACADQTrafo> trafo = MatchPoints(source, target);
    m_lastAlignment = DescribeAlignment(source, target, trafo);
    if (!trafo) return false;
    for (const auto& mesh : MovingObjects()) MoveObject(*mesh, *trafo);
    return true;
}

std::vector<std::shared_ptr<Mesh>> CKV_ScenePaneCtrl::MovingObjects() const {
    auto objects = LiveVariableObjects();
    std::erase_if(objects, [&](const auto& mesh) { return std::ranges::find(m_vpMeshes, mesh) == m_vpMeshes.end(); });
    return objects;
}
