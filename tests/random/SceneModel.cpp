#include "random/SceneModel.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <limits>

namespace {

constexpr double kPixelMargin = 0.05;  // nearer to a limit the rounding of the viewer decides
constexpr double kLineMargin = 2.0;    // a freehand line is some pixels wide

bool IsFinite(const Point& p) {
    return std::ranges::all_of(p, [](double v) { return std::isfinite(v); });
}

double DistanceToSegment(double x, double y, const std::array<double, 2>& a, const std::array<double, 2>& b) {
    const double dx = b[0] - a[0], dy = b[1] - a[1], length = dx * dx + dy * dy;
    const double t = length > 0 ? std::clamp(((x - a[0]) * dx + (y - a[1]) * dy) / length, 0.0, 1.0) : 0.0;
    return std::hypot(x - a[0] - t * dx, y - a[1] - t * dy);
}

/// Whether a ray to the right crosses the closed outline an odd number of times.
bool IsInOutline(double x, double y, const std::vector<std::array<double, 2>>& corners) {
    bool inside = false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto &a = corners[i], &b = corners[(i + 1) % corners.size()];
        if ((a[1] > y) == (b[1] > y)) continue;
        if (x < (b[0] - a[0]) * (y - a[1]) / (b[1] - a[1]) + a[0]) inside = !inside;
    }
    return inside;
}

double DistanceToOutline(double x, double y, const std::vector<std::array<double, 2>>& corners) {
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < corners.size(); ++i)
        nearest = std::min(nearest, DistanceToSegment(x, y, corners[i], corners[(i + 1) % corners.size()]));
    return nearest;
}

bool IsNearInteger(double value) { return std::abs(value - std::round(value)) < kPixelMargin; }

/// Whether a pixel is in the region of the lasso: Goes for inside, Stays for outside.
Fate InsideOf(double px, double py, const ModelLasso& lasso, const ModelView& view) {
    double minX = 1e9, minY = 1e9, maxX = -1e9, maxY = -1e9;
    for (const auto& corner : lasso.corners) {
        const double x = std::trunc(corner[0]), y = std::trunc(corner[1]);
        if (x < 0 || y < 0 || x >= view.width || y >= view.height) continue;
        minX = std::min(minX, x), maxX = std::max(maxX, x), minY = std::min(minY, y), maxY = std::max(maxY, y);
    }
    const double margin = lasso.freehand ? kLineMargin : 0;
    if (px < minX - margin || px > maxX + margin || py < minY - margin || py > maxY + margin) return Fate::Stays;
    const double x = px + 0.5, y = py + 0.5;
    if (DistanceToOutline(x, y, lasso.corners) <= (lasso.freehand ? kLineMargin : kPixelMargin)) return Fate::Open;
    return IsInOutline(x, y, lasso.corners) ? Fate::Goes : Fate::Stays;
}

}  // namespace

ModelTransform ModelTransform::FromMatrix(const std::array<float, 16>& m) {
    const auto at = [&](int row, int column) {
        return static_cast<double>(m[static_cast<std::size_t>(4 * row + column)]);
    };
    const double squares[4] = {1 + at(0, 0) + at(1, 1) + at(2, 2), 1 + at(0, 0) - at(1, 1) - at(2, 2),
                               1 - at(0, 0) + at(1, 1) - at(2, 2), 1 - at(0, 0) - at(1, 1) + at(2, 2)};
    const double differences[3] = {at(2, 1) - at(1, 2), at(0, 2) - at(2, 0), at(1, 0) - at(0, 1)};
    const double xy = at(1, 0) + at(0, 1), xz = at(0, 2) + at(2, 0), yz = at(2, 1) + at(1, 2);
    const auto largest = std::ranges::max_element(squares) - std::begin(squares);
    const double four = 2 * std::sqrt(squares[largest]);
    std::array<double, 4> q{};
    if (largest == 0) q = {four * four / 4, differences[0], differences[1], differences[2]};
    if (largest == 1) q = {differences[0], four * four / 4, xy, xz};
    if (largest == 2) q = {differences[1], xy, four * four / 4, yz};
    if (largest == 3) q = {differences[2], xz, yz, four * four / 4};
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& part : q) part /= length;
    const auto [w, x, y, z] = q;
    ModelTransform transform;
    transform.rows = {Point{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
                      Point{2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
                      Point{2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z}};
    transform.translation = {at(0, 3), at(1, 3), at(2, 3)};
    const auto isModest = [](double value) { return std::isfinite(value) && std::abs(value) < 1e6; };
    transform.known = std::ranges::all_of(m.begin(), m.begin() + 12, isModest) && length > 0.1;
    return transform;
}

Point ModelTransform::Revert(const Point& p) const {
    const Point d = p - translation;
    return d[0] * rows[0] + (d[1] * rows[1] + d[2] * rows[2]);
}

void ModelObject::TakePoints(std::vector<Point> newPoints, std::vector<std::array<std::int32_t, 3>> newTriangles) {
    points = std::move(newPoints);
    triangles = std::move(newTriangles);
    vertexCount = static_cast<std::int32_t>(points.size());
    triangleCount = static_cast<std::int32_t>(triangles.size());
    pointsKnown = std::ranges::all_of(points, IsFinite);
    ComputeBox();
}

// Flat boxes get a thickness; an empty mesh has an inverted box.
void ModelObject::ComputeBox() {
    boxKnown = pointsKnown;
    if (!pointsKnown) return;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        float min = 1, max = -1;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto value = static_cast<float>(points[i][axis]);
            min = i == 0 ? value : std::min(min, value);
            max = i == 0 ? value : std::max(max, value);
        }
        if (static_cast<double>(max - min) < 0.0001) max += 0.01f, min -= 0.01f;
        box.min[axis] = min, box.max[axis] = max;
    }
}

bool ModelObject::IsPcm() const {
    const auto dot = name.rfind(L'.');
    if (dot == std::wstring::npos) return false;
    std::wstring extension = name.substr(dot);
    for (wchar_t& letter : extension) letter = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(letter)));
    return extension == L".pcm";
}

std::uint32_t ColorAfterStore(std::uint32_t color) {
    std::uint32_t result = 0;
    for (const int shift : {0, 8, 16}) {
        const auto channel = static_cast<float>((color >> shift & 0xFF) / 255.0);
        result |= (static_cast<std::uint32_t>(channel * 255.0) & 0xFF) << shift;
    }
    return result;
}

double ModelView::HalfWidth() const {
    const double aspect = width > height ? static_cast<double>(width) / height : 1.0;
    return aspect * zoom * sceneSize / 2;
}

double ModelView::HalfHeight() const {
    const double aspect = width > height ? 1.0 : static_cast<double>(height) / width;
    return aspect * zoom * sceneSize / 2;
}

std::array<double, 2> ModelView::Project(const Point& p) const {
    const Point d = p - center;
    return {width * (0.5 + 0.5 * Dot(d, right) / HalfWidth()), height * (0.5 + 0.5 * Dot(d, up) / HalfHeight())};
}

void ModelView::Snap() {
    const auto sign = [](double value) { return value > 0 ? 1.0 : -1.0; };
    const Point rest{-toViewer[0] * toViewer[1], 1 - toViewer[1] * toViewer[1], -toViewer[2] * toViewer[1]};
    if (!(std::sqrt(Dot(rest, rest)) <= 1e-5)) return;
    toViewer = {0, sign(toViewer[1]), 0};
    if (!(1 - std::abs(right[0]) <= 1e-5)) return;
    right = {sign(right[0]), 0, 0};
    up = {0, 0, sign(up[2])};
}

Fate FateOf(const Point& point, const ModelLasso& lasso, const ModelView& view) {
    const auto [x, upward] = view.Project(point);
    const double y = view.height - upward - 1;
    if (!std::isfinite(x) || !std::isfinite(y)) return Fate::Open;
    Fate inside = Fate::Stays;
    const bool isFar = x < -2 || y < -2 || x > view.width + 2 || y > view.height + 2;
    if (!isFar) {
        if (IsNearInteger(x) || IsNearInteger(y)) return Fate::Open;
        inside = InsideOf(std::trunc(x), std::trunc(y), lasso, view);
    } else if (std::abs(x) > 1e5 || std::abs(y) > 1e5) {
        return Fate::Open;  // floats have no pixels there
    }
    if (inside == Fate::Open) return Fate::Open;
    if (lasso.kind == 1) return inside == Fate::Goes ? Fate::Stays : Fate::Goes;
    if (lasso.kind == 2 && inside == Fate::Goes) return Fate::Open;  // depends on what hides it
    return inside;
}

Fate FateOf(const ModelObject& object, const ModelLasso& lasso, const ModelView& view, std::vector<Fate>* marks) {
    if (object.visible == 0 || object.vertexCount == 0) return Fate::Stays;
    if (!object.pointsKnown || !view.IsKnown() || !lasso.plain) return Fate::Open;
    Fate fate = Fate::Stays;
    for (const Point& point : object.points) {
        const Fate one = FateOf(point, lasso, view);
        marks->push_back(one);
        if (one == Fate::Goes || fate == Fate::Stays) fate = one;
    }
    return fate;
}

// Vertices are in the order of their first use by a triangle that is left.
ObjectPtr CutObject(const ModelObject& object, const std::vector<Fate>& marks, std::uint64_t mask) {
    auto result = std::make_shared<ModelObject>(object);
    result->masks.push_back(mask);
    result->savedPlane.reset();
    result->visible = 1;
    result->color = ColorAfterStore(object.color);
    const bool isOpen = marks.empty() || std::ranges::find(marks, Fate::Open) != marks.end();
    if (isOpen) {
        result->points.clear(), result->triangles.clear();
        result->vertexCount = result->triangleCount = -1;
        result->pointsKnown = result->pointsExact = result->boxKnown = false;
        return result;
    }
    std::vector<std::int32_t> places(object.points.size(), -1);
    std::vector<Point> points;
    std::vector<std::array<std::int32_t, 3>> triangles;
    for (const auto& triangle : object.triangles) {
        const auto isMarked = [&](std::int32_t v) { return marks[static_cast<std::size_t>(v)] == Fate::Goes; };
        if (std::ranges::any_of(triangle, isMarked)) continue;
        auto& kept = triangles.emplace_back();
        for (std::size_t corner = 0; corner < 3; ++corner) {
            std::int32_t& place = places[static_cast<std::size_t>(triangle[corner])];
            if (place < 0) {
                place = static_cast<std::int32_t>(points.size());
                points.push_back(object.points[static_cast<std::size_t>(triangle[corner])]);
            }
            kept[corner] = place;
        }
    }
    result->TakePoints(std::move(points), std::move(triangles));
    result->pointsExact = object.pointsExact;
    if (result->triangleCount == 0) result->box = {{-1, -1, -1}, {1, 1, 1}};  // never computed
    return result;
}
