// The plane's frame and what follows from it.
#include "clip/Plane.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr std::uint32_t kEnableColorAndLightingBits = GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_LIGHTING_BIT;

double Dot(const Double3& a, const Double3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Double3 Normalized(const Double3& v) {
    const double length = std::sqrt(Dot(v, v));
    return length > 0.0 ? Double3{v[0] / length, v[1] / length, v[2] / length} : v;
}

}  // namespace

Plane::Plane() : RenderObject(kEnableColorAndLightingBits), m_dStartAngle(-std::numbers::pi / 4) {}

Double3 Plane::GetCenter() const { return {m_dMatrix[12], m_dMatrix[13], m_dMatrix[14]}; }

void Plane::SetCenter(const Double3& center) { std::copy(center.begin(), center.end(), m_dMatrix.begin() + 12); }

Double3 Plane::GetNormal() const { return Normalized({m_dMatrix[8], m_dMatrix[9], m_dMatrix[10]}); }

void Plane::SetNormal(const Double3& n) {
    const double squared = Dot(n, n);
    Double3 axis{0, 0, 0};
    double angle = 0.0;
    const bool alongZ = n[0] * n[0] + n[1] * n[1] + (n[2] - 1) * (n[2] - 1) <= std::min(1.0, squared) * 1e-24;
    if (!alongZ) {
        axis = Normalized({-n[1], n[0], 0});
        angle = std::acos(std::clamp(squared > 0.0 ? n[2] / std::sqrt(squared) : n[2], -1.0, 1.0));
    }
    // Rodrigues' formula; a zero axis leaves the cosine on the diagonal
    const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
    const auto [x, y, z] = axis;
    m_dMatrix[0] = c + x * x * t;
    m_dMatrix[1] = y * x * t + z * s;
    m_dMatrix[2] = z * x * t - y * s;
    m_dMatrix[4] = x * y * t - z * s;
    m_dMatrix[5] = c + y * y * t;
    m_dMatrix[6] = z * y * t + x * s;
    m_dMatrix[8] = x * z * t + y * s;
    m_dMatrix[9] = y * z * t - x * s;
    m_dMatrix[10] = c + z * z * t;
}

std::array<double, 4> Plane::GetEquation() const {
    const Double3 n = GetNormal();
    return {n[0], n[1], n[2], -Dot(n, GetCenter())};
}

Double3 Plane::ProjectOntoPlane(const Double3& point) const {
    const Double3 n = GetNormal(), c = GetCenter();
    const double distance = Dot({point[0] - c[0], point[1] - c[1], point[2] - c[2]}, n);
    return {point[0] - distance * n[0], point[1] - distance * n[1], point[2] - distance * n[2]};
}

void Plane::SetRadiusFromExtent(double extent) { m_dRadius = extent / std::cos(std::numbers::pi / m_nCorners); }

void Plane::EnableClipping() const {
    glClipPlane(GL_CLIP_PLANE0, GetEquation().data());
    glEnable(GL_CLIP_PLANE0);
}

void Plane::DisableClipping() { glDisable(GL_CLIP_PLANE0); }
