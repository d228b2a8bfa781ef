// A finished cut applied to objects.
#include "cut/ApplyCut.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "base/ParallelTasks.h"

namespace {

/// Equal, or both not a number.
bool IsSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace

bool IsMoved(const Mesh& mesh) {
    constexpr double kMaxRounding = 1e-6;
    // Two to four steps of a float: files and hosts write the same translation in units of their own.
    constexpr double kMaxTranslationRounding = 0x1p-22;
    const CACADQTrafo& now = mesh.m_Trafo;
    const CACADQTrafo before = mesh.m_optImportTrafo.value_or(CACADQTrafo{});
    const bool isSameRotation = std::ranges::equal(now.m_dRotation, before.m_dRotation, [](double a, double b) {
        return IsSame(a, b) || std::abs(a - b) <= kMaxRounding;
    });
    const bool isSameTranslation =
        std::ranges::equal(now.m_dTranslation, before.m_dTranslation, [](double a, double b) {
            return IsSame(a, b) || std::abs(a - b) < kMaxTranslationRounding * std::max(std::abs(a), std::abs(b));
        });
    return !isSameRotation || !isSameTranslation;
}

std::shared_ptr<Mesh> CutMesh(const std::shared_ptr<Mesh>& mesh, const std::shared_ptr<const ACAD::CutMask>& mask) {
    if (mesh->m_iVisible == 0) return mesh;
    std::vector<std::uint32_t> removed((mesh->m_vVertices.size() + 31) / 32);
    if (!mask->MarkVertices(mesh->m_vVertices, removed)) return mesh;
    auto clone = mesh->CloneWithoutVertices(removed);
    clone->m_vpCutMasks.reserve(mesh->m_vpCutMasks.size() + 1);
    clone->m_vpCutMasks = mesh->m_vpCutMasks;
    clone->m_vpCutMasks.push_back(mask);
    clone->m_bCutWhileMoved = mesh->m_bCutWhileMoved || IsMoved(*mesh);
    return clone;
}

std::vector<std::shared_ptr<Mesh>> ApplyCutMask(std::span<const std::shared_ptr<Mesh>> meshes,
                                                const std::shared_ptr<const ACAD::CutMask>& mask) {
    std::vector<std::shared_ptr<Mesh>> result(meshes.size());
    const auto exceptions =
        RunParallelTasks(meshes.size(), [&](std::size_t i) { result[i] = CutMesh(meshes[i], mask); });
    for (const std::exception_ptr& exception : exceptions)
        if (exception) std::rethrow_exception(exception);
    if (std::equal(result.begin(), result.end(), meshes.begin(), meshes.end())) result.clear();
    return result;
}
