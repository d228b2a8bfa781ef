// What the reference renderer draws: plain data in double precision. It includes nothing of the viewer, so that a
// mistake of the viewer cannot be repeated here.
#pragma once
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace reference {

struct Vec {
    double x = 0.0, y = 0.0, z = 0.0;
};
inline Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec operator-(const Vec& a) { return {-a.x, -a.y, -a.z}; }
inline Vec operator*(double f, const Vec& a) { return {f * a.x, f * a.y, f * a.z}; }
/// Per component.
inline Vec operator*(const Vec& a, const Vec& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec Cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vec Unit(const Vec& a) { return (1.0 / std::sqrt(Dot(a, a))) * a; }
/// The largest absolute component.
inline double Largest(const Vec& a) { return std::fmax(std::fabs(a.x), std::fmax(std::fabs(a.y), std::fabs(a.z))); }

/// An image that is repeated, with linear filtering between texels.
struct Texture {
    int width = 0, height = 0;
    std::vector<Vec> texels;  ///< row by row from v = 0

    [[nodiscard]] Vec At(double u, double v) const;
};

/// A mesh in the world frame. Colours are 0 to 1.
struct Object {
    std::vector<Vec> positions, normals;
    std::vector<Vec> colors;  ///< as the graphics card receives them; white for a mesh without vertex colours
    std::vector<std::array<int, 3>> triangles;
    Vec tint{1.0, 1.0, 1.0};  ///< diffuse colour of the light
    bool visible = true;
    Vec boxMin, boxMax;
    Texture texture;             ///< without texels: none
    std::vector<Vec> texCoords;  ///< u and v of the three corners of each triangle
};

/// The state of the orthographic camera.
struct Camera {
    Vec right{1.0, 0.0, 0.0}, up{0.0, 1.0, 0.0};  ///< unit vectors of the screen, world frame
    Vec center;
    double sceneSize = 1.0;
    double zoom = 1.0;  ///< larger shows more
    int width = 0, height = 0;

    [[nodiscard]] Vec ToViewer() const { return Cross(right, up); }
    [[nodiscard]] double HalfWidth() const;
    [[nodiscard]] double HalfHeight() const;
    /// Distance of the near and of the far plane from the eye, in front of it and in its back.
    [[nodiscard]] double DepthRange() const;
};

/// Host colours of the corners, 0 to 1.
struct Background {
    Vec topLeft, topRight, bottomLeft, bottomRight;
};

/// The numbers of the lighting. A test that proves that the comparison can fail sets one of them wrong.
struct Lighting {
    // ---- fixed function
    Vec direction{0.0, -50000.0, 1000000.0};  ///< to the light, eye frame
    Vec modelAmbient{0.3, 0.3, 0.3};
    Vec frontAmbient{0.3, 0.3, 0.3}, backAmbient{0.1, 0.2, 0.1};
    Vec backDiffuse{0.3, 0.3, 0.3};
    double reflection = 0.0;  ///< specular colour of the front
    double shininess = 64.0;
    int provoking = 2;  ///< corner whose colour a flat triangle has

    // ---- programs
    Vec lamp{0.0, 5.0, 0.0};   ///< eye frame
    double highlight = 100.0;  ///< exponent
    double perPixelDiffuse = 0.7, shadowDiffuse = 1.0;
    Vec shadowColor;
    double shadowBias = 0.005;
    double shadowTilt = 20.0;  ///< degrees between the viewing direction and the light of the shadows
};

/// What a clip plane keeps of the objects.
struct HalfSpace {
    Vec point, normal;  ///< world frame; the normal of any length points to what is kept
    [[nodiscard]] double DistanceOf(const Vec& p) const { return Dot(p - point, Unit(normal)); }
};

struct Scene {
    std::vector<Object> objects;
    Camera camera;
    Background background;
    Lighting lighting;
    std::optional<HalfSpace> clip;  ///< cuts the picture, not the shadow map
};

/// What is drawn at a place: the colour of every sample, 0 to 255 and not rounded, and whether a driver has a choice.
struct Picture {
    int width = 0, height = 0;
    std::vector<Vec> colors;   ///< row by row, top row first
    std::vector<int> objects;  ///< index of the object that is seen, -1 for the background
    std::vector<char> masked;  ///< 1: rasterisation, depth or the border of a shadow is too close to call
};

}  // namespace reference
