// The plane's frame and what follows from it: equation, foot of a point, clipping. Its drags are in PlaneDrag.cpp.
#include "clip/Plane.h"

#include <GL/glew.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr std::uint32_t kEnableColorAndLightingBits = GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_LIGHTING_BIT;

/// A normal this near to the Z axis (distance over length) counts as the axis itself: a smaller tilt has no direction.
constexpr double kAlongZ = 1e-12;

}  // namespace

Plane::Plane() : RenderObject(kEnableColorAndLightingBits), m_dStartAngle(-std::numbers::pi / 4) {}

Double3 Plane::GetCenter() const { return {m_dMatrix[12], m_dMatrix[13], m_dMatrix[14]}; }

void Plane::SetCenter(const Double3& center) { std::copy(center.begin(), center.end(), m_dMatrix.begin() + 12); }

Double3 Plane::GetNormal() const { return Normalized(Double3{m_dMatrix[8], m_dMatrix[9], m_dMatrix[10]}); }

void Plane::SetNormal(const Double3& n) {
    const double squared = Dot(n, n);
    const Double3 fromZ = n - Double3{0, 0, 1};
    Double3 axis{0, 0, 0};
    double angle = 0.0;
    if (!(Dot(fromZ, fromZ) <= std::min(1.0, squared) * kAlongZ * kAlongZ)) {
        axis = Normalized(Double3{-n[1], n[0], 0});
        angle = std::acos(std::clamp(squared > 0.0 ? n[2] / std::sqrt(squared) : n[2], -1.0, 1.0));
    }
    // A normal along -Z has a zero axis: Rodrigues' formula then leaves the cosine, -1, on the diagonal.
    const Eigen::AngleAxisd rotation(angle, Eigen::Vector3d(axis[0], axis[1], axis[2]));
    Eigen::Map<Eigen::Matrix4d>(m_dMatrix.data()).topLeftCorner<3, 3>() = rotation.toRotationMatrix();
}

std::array<double, 4> Plane::GetEquation() const {
    const Double3 n = GetNormal();
    return {n[0], n[1], n[2], -Dot(n, GetCenter())};
}

Double3 Plane::ProjectOntoPlane(const Double3& point) const {
    const Double3 n = GetNormal();
    return point - Dot(point - GetCenter(), n) * n;
}

// The inscribed circle of a regular polygon has the corner radius times the cosine of half a corner's angle.
void Plane::SetRadiusFromExtent(double extent) { m_dRadius = extent / std::cos(std::numbers::pi / m_nCorners); }

void Plane::SetClipUniforms(std::uint32_t program, bool clips) const {
    glUniform1i(glGetUniformLocation(program, "clipPlane0Enabled"), clips ? 1 : 0);
    const auto [a, b, c, d] = GetEquation();
    glUniform4f(glGetUniformLocation(program, "clipPlaneEquation0"), static_cast<float>(a), static_cast<float>(b),
                static_cast<float>(c), static_cast<float>(d));
}

void Plane::EnableClipping() const {
    glClipPlane(GL_CLIP_PLANE0, GetEquation().data());
    glEnable(GL_CLIP_PLANE0);
}

void Plane::DisableClipping() { glDisable(GL_CLIP_PLANE0); }
