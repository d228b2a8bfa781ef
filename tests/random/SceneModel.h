// The objects of a scene as the public documents describe them: the list, the undo steps, transforms, cuts by a lasso.
// It shares no code with the viewer. What cannot be known exactly is marked as such, and then read from the viewer.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using Point = std::array<double, 3>;

inline Point operator+(const Point& a, const Point& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Point operator-(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Point operator*(double s, const Point& a) { return {s * a[0], s * a[1], s * a[2]}; }
inline double Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Point Cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// Rotation by rows, and translation.
struct ModelTransform {
    std::array<Point, 3> rows{Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1}};
    Point translation{};
    bool known = true;

    /// The rotation of the quaternion of a 4 x 4 matrix by rows, whatever scale or shear the matrix has.
    static ModelTransform FromMatrix(const std::array<float, 16>& m);
    [[nodiscard]] Point Apply(const Point& p) const {
        return Point{Dot(rows[0], p), Dot(rows[1], p), Dot(rows[2], p)} + translation;
    }
    [[nodiscard]] Point Revert(const Point& p) const;
};

struct ModelBox {
    std::array<float, 3> min{}, max{};
};

struct ModelObject {
    std::int32_t vertexCount = 0, triangleCount = 0;
    /// Positions and triangles; empty while they are not known.
    std::vector<Point> points;
    std::vector<std::array<std::int32_t, 3>> triangles;
    bool pointsKnown = false;
    bool pointsExact = false;  ///< to the bit, as floats
    bool boxKnown = false;
    ModelBox box;                    ///< of the points, with the thickness of flat ones; exact when the points are
    std::uint32_t color = 0xFFFFFF;  ///< as it reads back
    std::int16_t visible = 1;
    std::wstring name;
    std::vector<std::uint64_t> masks;  ///< of the cuts since the last save, each cut with a number of its own
    ModelTransform transform;
    /// Number of the clip plane that the file was written with.
    std::optional<std::uint64_t> savedPlane;

    /// Counts, box and flags from points and triangles.
    void TakePoints(std::vector<Point> newPoints, std::vector<std::array<std::int32_t, 3>> newTriangles);
    void ComputeBox();
    [[nodiscard]] bool IsPcm() const;
};
using ObjectPtr = std::shared_ptr<ModelObject>;

/// What a packed colour reads back as: channels are kept as floats and rounded down.
std::uint32_t ColorAfterStore(std::uint32_t color);

/// The camera, where it is known.
struct ModelView {
    Point right{1, 0, 0}, up{0, 1, 0}, toViewer{0, 0, 1}, center{};
    double zoom = 1, defaultZoom = 1, sceneSize = 1000;
    int width = -1, height = -1;
    bool axesKnown = true, centerKnown = true, zoomKnown = true, sceneSizeKnown = true, sizeKnown = false;

    [[nodiscard]] bool IsKnown() const { return axesKnown && centerKnown && zoomKnown && sceneSizeKnown && sizeKnown; }
    /// Half of the extent of the window in the world.
    [[nodiscard]] double HalfWidth() const;
    [[nodiscard]] double HalfHeight() const;
    /// Pixels of a point, x to the right and y upward, from the lower left corner.
    [[nodiscard]] std::array<double, 2> Project(const Point& p) const;
    /// The top and bottom views are exact: directions near to them become them.
    void Snap();
};

/// What a cut does to a vertex or to an object.
enum class Fate { Stays, Goes, Open };

/// A lasso in pixels of the window, y downward, not closed.
struct ModelLasso {
    std::uint32_t kind = 0;  ///< 0 removes inside, 1 outside, 2 what is visible inside
    bool freehand = false;
    bool plain =
        true;  ///< drawn by one session with the colours of the start; else only bounds of its effect are known
    std::vector<std::array<double, 2>> corners;
};

Fate FateOf(const Point& point, const ModelLasso& lasso, const ModelView& view);
/// @param marks  receives one entry per vertex, when the points are known
Fate FateOf(const ModelObject& object, const ModelLasso& lasso, const ModelView& view, std::vector<Fate>* marks);
/// The object without the triangles that have a marked vertex.
/// @param mask  number of the cut
ObjectPtr CutObject(const ModelObject& object, const std::vector<Fate>& marks, std::uint64_t mask);
