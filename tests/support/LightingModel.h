// The colour of a lit point, computed in double precision from the published lighting formulas: the reference of the
// picture tests. Shares no code with the renderer.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>

namespace lighting {

using Vec3 = std::array<double, 3>;

inline Vec3 operator+(const Vec3& a, const Vec3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vec3 operator-(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vec3 operator*(double s, const Vec3& a) { return {s * a[0], s * a[1], s * a[2]}; }
inline Vec3 Times(const Vec3& a, const Vec3& b) { return {a[0] * b[0], a[1] * b[1], a[2] * b[2]}; }
inline double Dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Vec3 Unit(const Vec3& a) { return (1.0 / std::sqrt(Dot(a, a))) * a; }

/// A colour as three numbers, clamped to 0..1 as in a framebuffer.
inline Vec3 Clamped(Vec3 color) {
    for (double& channel : color) channel = std::clamp(channel, 0.0, 1.0);
    return color;
}

/// The orthographic camera.
struct Camera {
    Vec3 axisX{1, 0, 0}, axisY{0, 1, 0}, axisZ{0, 0, 1};  ///< world frame; axisZ points to the viewer
    Vec3 center{0, 0, 0};
    double sceneSize = 10.0;
    double zoom = 1.0;
    int width = 0, height = 0;

    [[nodiscard]] double HalfHeight() const {
        return 0.5 * zoom * sceneSize * (width > height ? 1.0 : static_cast<double>(height) / width);
    }
    [[nodiscard]] double HalfWidth() const {
        return 0.5 * zoom * sceneSize * (width > height ? static_cast<double>(width) / height : 1.0);
    }
    /// Eye coordinates: the eye is two scene sizes in front of the centre.
    [[nodiscard]] Vec3 ToEye(const Vec3& world) const {
        const Vec3 d = world - center;
        return {Dot(d, axisX), Dot(d, axisY), Dot(d, axisZ) - 2.0 * sceneSize};
    }
    [[nodiscard]] Vec3 TurnToEye(const Vec3& direction) const {
        return {Dot(direction, axisX), Dot(direction, axisY), Dot(direction, axisZ)};
    }
    /// Window coordinates of a point; y downward, pixel centres at halves.
    [[nodiscard]] std::array<double, 2> ToWindow(const Vec3& world) const {
        const Vec3 eye = ToEye(world);
        return {(eye[0] / HalfWidth() + 1.0) * 0.5 * width, (1.0 - eye[1] / HalfHeight()) * 0.5 * height};
    }
    /// The point seen at the centre of a pixel, in the plane through @p planePoint with the normal @p planeNormal.
    [[nodiscard]] Vec3 PointAt(int x, int y, const Vec3& planePoint, const Vec3& planeNormal) const {
        const double right = ((x + 0.5) / width * 2.0 - 1.0) * HalfWidth();
        const double up = (1.0 - (y + 0.5) / height * 2.0) * HalfHeight();
        const Vec3 near = center + right * axisX + up * axisY;
        const double t = Dot(planePoint - near, planeNormal) / Dot(axisZ, planeNormal);
        return near + t * axisZ;
    }
};

/// A point of a surface.
struct Surface {
    Vec3 position{0, 0, 0};  ///< world frame
    Vec3 normal{0, 0, 1};    ///< world frame
    Vec3 color{1, 1, 1};     ///< of the vertex; white without vertex colours
    Vec3 tint{1, 1, 1};      ///< colour of the light
    bool front = true;       ///< whether its front face is seen
    /// The triangle that the point is on: the lit programs compute the light's direction at its corners only.
    std::array<Vec3, 3> corners{};
};

/// What SetReflection() sets on the front material.
struct Reflection {
    double brightness = 0.0;
    double shininess = 64.0;
};

/// Fixed-function two-sided lighting with a directional light from almost the viewer's direction.
inline Vec3 FixedFunction(const Camera& camera, const Surface& s, const Reflection& reflection = {}) {
    const Vec3 light = Unit({0.0, -50000.0, 1000000.0});
    const Vec3 n = camera.TurnToEye(s.normal);
    constexpr double kGlobalAmbient = 0.3;
    if (!s.front) {
        const double nDotL = std::max(Dot(-1.0 * n, light), 0.0);
        return Clamped(kGlobalAmbient * Vec3{0.1, 0.2, 0.1} + (nDotL * 0.3) * s.tint);
    }
    const double nDotL = std::max(Dot(n, light), 0.0);
    const Vec3 halfway = Unit(light + Vec3{0, 0, 1});
    const double spec = nDotL > 0.0 ? std::pow(std::max(Dot(n, halfway), 0.0), reflection.shininess) : 0.0;
    const double glow = kGlobalAmbient * 0.3 + reflection.brightness * spec;
    return Clamped(Vec3{glow, glow, glow} + nDotL * Times(s.color, s.tint));
}

/// The two numbers that the lit programs compute from a light five units above the eye.
struct ProgramLight {
    double diffuse = 0.0;  ///< of the side that is seen
    double specular = 0.0;
};

/// Barycentric coordinates of a point in the plane of three corners.
inline Vec3 CornerShares(const std::array<Vec3, 3>& corners, const Vec3& p) {
    const Vec3 a = corners[1] - corners[0], b = corners[2] - corners[0], d = p - corners[0];
    const double aa = Dot(a, a), ab = Dot(a, b), bb = Dot(b, b), da = Dot(d, a), db = Dot(d, b);
    const double determinant = aa * bb - ab * ab;
    const double v = (bb * da - ab * db) / determinant, w = (aa * db - ab * da) / determinant;
    return {1.0 - v - w, v, w};
}

inline ProgramLight LightOfPrograms(const Camera& camera, const Surface& s) {
    const Vec3 shares = CornerShares(s.corners, s.position);
    Vec3 light{0, 0, 0};  // shorter than 1 between the corners
    for (std::size_t i = 0; i < 3; ++i)
        light = light + shares[i] * Unit(Vec3{0.0, 5.0, 0.0} - camera.ToEye(s.corners[i]));
    const Vec3 n = Unit(camera.TurnToEye(s.normal));
    const Vec3 mirrored = Unit(2.0 * Dot(n, light) * n - light);
    const double nDotR = std::max(Dot(Unit(-1.0 * camera.ToEye(s.position)), mirrored), 0.0);
    return {std::max(s.front ? Dot(light, n) : -Dot(light, n), 0.0), std::pow(nDotR, 100.0)};
}

inline Vec3 GreyBack(double diffuse, double weight) {
    const double grey = 0.3 * 0.1 + 0.3 * diffuse * weight;
    return {grey, grey, grey};
}

/// The program of render mode 5.
inline Vec3 PerPixel(const Camera& camera, const Surface& s) {
    const ProgramLight light = LightOfPrograms(camera, s);
    if (!s.front) return GreyBack(light.diffuse, 0.7);
    const double glow = 0.5 * light.specular;
    return Clamped((0.1 + 0.7 * light.diffuse) * Times(s.color, s.tint) + Vec3{glow, glow, glow});
}

/// The shadow program.
struct ShadowState {
    bool inShadow = false;
    Vec3 shadowColor{0, 0, 0};
    double brightness = 0.0;  ///< of SetReflection()
};

inline Vec3 Shadow(const Camera& camera, const Surface& s, const ShadowState& state) {
    const ProgramLight light = LightOfPrograms(camera, s);
    if (!s.front) return GreyBack(light.diffuse, 1.0);
    const double glow = 0.5 * state.brightness * light.specular;
    const Vec3 color = Times(s.color, s.tint);
    const Vec3 base = state.inShadow ? state.shadowColor : 0.1 * color;
    const double share = state.inShadow ? 0.5 : 1.0;
    return Clamped(base + (share * light.diffuse) * color + Vec3{glow, glow, glow});
}

/// Unit direction from the scene to the light of the shadows, when the camera looks down the z axis (axisZ = z,
/// axisY = y): 20 degrees from z towards y.
inline Vec3 ShadowLightFromTop() { return {0.0, 0.34202014332566871, 0.93969262078590838}; }

}  // namespace lighting
