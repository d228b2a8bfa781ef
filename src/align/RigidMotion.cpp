// Rigid transforms of alignments. The fit of several pairs is LANDLL_PickPointMatching() in libs/KV_UtilsLantern.
#include "align/RigidMotion.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "KV_UtilsLantern/KV_UtilsLantern.h"

namespace {

Double3 TranslationOf(const CACADQTrafo& trafo) {
    return {trafo.m_dTranslation[0], trafo.m_dTranslation[1], trafo.m_dTranslation[2]};
}

Double3 Rotated(const CACADQTrafo& trafo, const Double3& p) {
    const auto& r = trafo.m_dRotation;
    return {r[0] * p[0] + r[3] * p[1] + r[6] * p[2], r[1] * p[0] + r[4] * p[1] + r[7] * p[2],
            r[2] * p[0] + r[5] * p[1] + r[8] * p[2]};
}

void SetTranslation(CACADQTrafo& trafo, const Double3& offset) {
    std::copy(offset.begin(), offset.end(), trafo.m_dTranslation);
}

// Of length 1 or zero. Scaled by a power of two first, which is exact: the squares of a very long or very short normal
// do not fit into a float.
Float3 UnitNormalOf(const Vertex& vertex) {
    const Float3 normal = {vertex.nx, vertex.ny, vertex.nz};
    const float largest = std::max({std::abs(normal[0]), std::abs(normal[1]), std::abs(normal[2])});
    if (!(largest > 0.0f) || !std::isfinite(largest)) return Normalized(normal);
    const int exponent = std::ilogb(largest);
    return Normalized(Float3{std::scalbn(normal[0], -exponent), std::scalbn(normal[1], -exponent),
                             std::scalbn(normal[2], -exponent)});
}

std::vector<float> CoordinatesOf(std::span<const Vertex> points) {
    std::vector<float> coordinates;
    coordinates.reserve(3 * points.size());
    for (const Vertex& point : points) coordinates.insert(coordinates.end(), {point.x, point.y, point.z});
    return coordinates;
}

std::optional<CACADQTrafo> MatchSeveralPoints(std::span<const Vertex> source, std::span<const Vertex> target) {
    const std::vector<float> sourceXYZ = CoordinatesOf(source), targetXYZ = CoordinatesOf(target);
    float m[12] = {};
    if (LANDLL_PickPointMatching(static_cast<int>(source.size()), sourceXYZ.data(), targetXYZ.data(), m) < 0) return {};
    CACADQTrafo trafo;
    trafo.Set(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11]);
    return trafo;
}

// Of the transformed source point from the target point.
double DistanceAfter(const CACADQTrafo& trafo, const Vertex& source, const Vertex& target) {
    const Double3 moved = Rotated(trafo, ToDouble3(PointOf(source))) + TranslationOf(trafo);
    return Length(moved - ToDouble3(PointOf(target)));
}

}  // namespace

KV_ScenePane::AlignmentPoint AlignmentPointOf(const Vertex& pick) {
    return {{pick.x, pick.y, pick.z}, {pick.nx, pick.ny, pick.nz}};
}

CACADQTrafo RotationAbout(const Double3& axis, double angle, const Double3& pivot) {
    const double c = std::cos(angle), s = std::sin(angle);
    const auto& [x, y, z] = axis;
    // Rodrigues' rotation formula, column after column.
    CACADQTrafo trafo;
    trafo.Set((1 - c) * x * x + c, (1 - c) * x * y + s * z, (1 - c) * x * z - s * y,  //
              (1 - c) * x * y - s * z, (1 - c) * y * y + c, (1 - c) * y * z + s * x,  //
              (1 - c) * x * z + s * y, (1 - c) * y * z - s * x, (1 - c) * z * z + c, 0, 0, 0);
    SetTranslation(trafo, pivot - Rotated(trafo, pivot));
    return trafo;
}

CACADQTrafo TranslationBy(const Double3& offset) {
    CACADQTrafo trafo;
    SetTranslation(trafo, offset);
    return trafo;
}

CACADQTrafo Compose(const CACADQTrafo& second, const CACADQTrafo& first) {
    const auto& [w1, x1, y1, z1] = first.m_dQuat;
    const auto& [w2, x2, y2, z2] = second.m_dQuat;
    // The quaternion of a product of unit quaternions stays one up to rounding, so it is not normalised again.
    CACADQTrafo trafo;
    trafo.m_dQuat[0] = w1 * w2 - x1 * x2 - y1 * y2 - z1 * z2;
    trafo.m_dQuat[1] = w1 * x2 + x1 * w2 - y1 * z2 + z1 * y2;
    trafo.m_dQuat[2] = x1 * z2 + w1 * y2 + y1 * w2 - z1 * x2;
    trafo.m_dQuat[3] = w1 * z2 - x1 * y2 + y1 * x2 + z1 * w2;
    trafo.UpdateMatrix();
    SetTranslation(trafo, Rotated(second, TranslationOf(first)) + TranslationOf(second));
    return trafo;
}

bool IsFinite(const CACADQTrafo& trafo) {
    // Vertices are floats: a translation that no float can hold would make them infinite.
    const auto fitsFloat = [](double value) { return std::abs(value) <= std::numeric_limits<float>::max(); };
    return std::ranges::all_of(trafo.m_dQuat, fitsFloat) && std::ranges::all_of(trafo.m_dTranslation, fitsFloat) &&
           std::ranges::all_of(trafo.m_dRotation, fitsFloat);
}

void MoveObject(Mesh& mesh, const CACADQTrafo& trafo) {
    mesh.ApplyTrafo(trafo);
    mesh.m_Trafo = Compose(trafo, mesh.m_Trafo);
}

// In single precision up to axis and angle: the cross product of equal normals is then 0 to the bit, and they give a
// translation without any rotation.
CACADQTrafo AlignSinglePair(const Vertex& source, const Vertex& target) {
    const Float3 a = UnitNormalOf(source), b = UnitNormalOf(target);
    const Float3 axis = Normalized(Cross(a, b));
    // Rounding can take the cosine of equal normals above 1. Without an axis the matrix is a multiple of the identity,
    // which CACADQTrafo::Set() makes the identity, or half a turn about x where the cosine is not positive.
    const float angle = std::acos(std::clamp(Dot(a, b), -1.0f, 1.0f));
    const Double3 from = ToDouble3(PointOf(source)), to = ToDouble3(PointOf(target));
    return Compose(TranslationBy(to - from), RotationAbout(ToDouble3(axis), angle, from));
}

std::optional<CACADQTrafo> MatchPoints(std::span<const Vertex> source, std::span<const Vertex> target) {
    assert(source.size() == target.size());
    if (source.empty()) return {};
    std::optional<CACADQTrafo> trafo =
        source.size() == 1 ? AlignSinglePair(source[0], target[0]) : MatchSeveralPoints(source, target);
    if (trafo && !IsFinite(*trafo)) trafo.reset();
    return trafo;
}

KV_ScenePane::AlignmentResult DescribeAlignment(std::span<const Vertex> source, std::span<const Vertex> target,
                                                const std::optional<CACADQTrafo>& trafo) {
    KV_ScenePane::AlignmentResult result;
    result.pairs.reserve(source.size());
    for (std::size_t i = 0; i < source.size(); ++i)
        result.pairs.push_back({AlignmentPointOf(source[i]), AlignmentPointOf(target[i])});
    if (!trafo) return result;
    result.isFound = true;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            result.transform[4 * row + column] = trafo->m_dRotation[3 * column + row];
        result.transform[4 * row + 3] = trafo->m_dTranslation[row];
    }
    double sum = 0;
    result.residuals.reserve(source.size());
    for (std::size_t i = 0; i < source.size(); ++i) {
        const double distance = DistanceAfter(*trafo, source[i], target[i]);
        result.residuals.push_back(distance);
        sum += distance * distance;
    }
    result.rms = std::sqrt(sum / static_cast<double>(source.size()));
    return result;
}
