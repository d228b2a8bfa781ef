// Where points and lines are, and the comparison of a picture with them.
#include "support/ReferenceMarks.h"

#include <algorithm>
#include <sstream>

#include "support/ReferenceCompare.h"

namespace reference {
namespace {

constexpr double kSlack = 1.0;      // pixels
constexpr double kThinArea = 0.01;  // square pixels: the rounding may turn such a triangle over
constexpr double kDepthRounding = 2e-6;
constexpr Vec kBoxColor{0.0, 0.4 * 255.0, 0.9 * 255.0};

Window WindowOf(const Camera& camera) { return WindowOf(camera, camera.width, camera.height); }

std::size_t Corner(const std::array<int, 3>& corners, int i) {
    return static_cast<std::size_t>(corners[static_cast<std::size_t>(i)]);
}

/// Calls visit(object, triangle's corners) for each triangle of the visible objects.
template <class Visit>
void ForEachTriangle(const Scene& scene, Visit visit) {
    for (const Object& object : scene.objects)
        if (object.visible)
            for (const auto& corners : object.triangles) visit(object, corners);
}

/// The pixels of a picture and what may be drawn at each.
class Raster {
public:
    Raster(const std::vector<Mark>& marks, const Picture& background, std::span<const std::uint32_t> drawn)
        : m_marks(marks), m_background(background), m_drawn(drawn), m_near(drawn.size()) {
        for (std::size_t i = 0; i < marks.size(); ++i) {
            if (marks[i].side > 0.0)
                AddPoint(i);
            else
                AddLine(i);
        }
    }
    MarkComparison Compare();

private:
    [[nodiscard]] bool IsInside(int column, int row) const {
        return column >= 0 && row >= 0 && column < m_background.width && row < m_background.height;
    }
    [[nodiscard]] std::size_t PixelAt(int column, int row) const {
        return static_cast<std::size_t>((m_background.height - 1 - row) * m_background.width + column);
    }
    [[nodiscard]] bool IsDrawn(std::size_t pixel) const {
        return Largest(ColorOf(m_drawn[pixel]) - m_background.colors[pixel]) > 1.5;
    }
    [[nodiscard]] bool IsDrawnAround(int column, int row) const {
        for (int y = row - 1; y <= row + 1; ++y)
            for (int x = column - 1; x <= column + 1; ++x)
                if (IsInside(x, y) && IsDrawn(PixelAt(x, y))) return true;
        return false;
    }
    [[nodiscard]] bool Matches(const Mark& mark, std::size_t pixel) const {
        const Vec found = ColorOf(m_drawn[pixel]);
        return mark.colors.empty() ||
               std::ranges::any_of(mark.colors, [&](const Vec& c) { return Largest(found - c) <= 1.5; });
    }
    void AddPoint(std::size_t i);
    void AddLine(std::size_t i);
    void Note(int column, int row, std::size_t i) {
        if (IsInside(column, row)) m_near[PixelAt(column, row)].push_back(static_cast<int>(i));
    }
    void CheckPixel(std::size_t pixel, MarkComparison* result) const;
    void CheckPresence(const Mark& mark, MarkComparison* result) const;
    void Report(const char* what, double column, double row, MarkComparison* result) const;

    const std::vector<Mark>& m_marks;
    const Picture& m_background;
    std::span<const std::uint32_t> m_drawn;
    std::vector<std::vector<int>> m_near;  ///< marks within one pixel
};

int Cell(double place) { return static_cast<int>(std::floor(place)); }

void Raster::AddPoint(std::size_t i) {
    const Mark& mark = m_marks[i];
    const double half = 0.5 * mark.side;
    const bool cut = mark.from.x < half || mark.from.y < half || mark.from.x > m_background.width - half ||
                     mark.from.y > m_background.height - half;
    // Softpipe moves a point that the border of the window cuts to the inside, as a whole.
    const double reach = half + kSlack + (cut ? half : 0.0);
    for (int row = Cell(mark.from.y - reach); row <= Cell(mark.from.y + reach); ++row)
        for (int column = Cell(mark.from.x - reach); column <= Cell(mark.from.x + reach); ++column)
            if (std::abs(column + 0.5 - mark.from.x) <= reach && std::abs(row + 0.5 - mark.from.y) <= reach)
                Note(column, row, i);
}

void Raster::AddLine(std::size_t i) {
    const Mark& mark = m_marks[i];
    const Vec way = mark.to - mark.from;
    const bool flat = std::abs(way.x) >= std::abs(way.y);
    const double reach = 0.5 + kSlack;
    const double from = flat ? mark.from.x : mark.from.y, to = flat ? mark.to.x : mark.to.y;
    for (int major = Cell(std::min(from, to) - reach); major <= Cell(std::max(from, to) + reach); ++major) {
        const double part = to == from ? 0.0 : std::clamp((major + 0.5 - from) / (to - from), 0.0, 1.0);
        const Vec at = mark.from + part * way;
        const double minor = flat ? at.y : at.x;
        for (int other = Cell(minor - reach); other <= Cell(minor + reach); ++other)
            if (std::abs(other + 0.5 - minor) <= reach) Note(flat ? major : other, flat ? other : major, i);
    }
}

void Raster::Report(const char* what, double column, double row, MarkComparison* result) const {
    if (!result->first.empty()) return;
    std::ostringstream text;
    text << what << " at (" << column << ", " << m_background.height - row << ")";
    result->first = text.str();
}

void Raster::CheckPixel(std::size_t pixel, MarkComparison* result) const {
    const auto width = static_cast<std::size_t>(m_background.width);
    const int column = static_cast<int>(pixel % width), row = m_background.height - 1 - static_cast<int>(pixel / width);
    double covered = 2.0;  // depth of the nearest point that covers the pixel on every driver
    for (const int i : m_near[pixel]) {
        const Mark& mark = m_marks[static_cast<std::size_t>(i)];
        if (!IsInside(Cell(mark.from.x), Cell(mark.from.y))) continue;  // the whole point is clipped by its centre
        const double inner = 0.5 * mark.side - kSlack;
        if (std::abs(column + 0.5 - mark.from.x) <= inner && std::abs(row + 0.5 - mark.from.y) <= inner)
            covered = std::min(covered, mark.from.z);
    }
    if (!IsDrawn(pixel)) {
        if (covered > 1.0) return;
        ++result->uncovered;
        Report("background inside a point", column, row + 1, result);
        return;
    }
    ++result->drawn;
    const bool known = std::ranges::any_of(m_near[pixel], [&](int i) {
        const Mark& mark = m_marks[static_cast<std::size_t>(i)];
        return std::min(mark.from.z, mark.to.z) <= covered + kDepthRounding && Matches(mark, pixel);
    });
    if (known) return;
    ++result->foreign;
    Report("a colour that no mark has", column, row + 1, result);
}

void Raster::CheckPresence(const Mark& mark, MarkComparison* result) const {
    const Vec way = mark.to - mark.from;
    const double length = std::max(std::abs(way.x), std::abs(way.y));
    if (mark.side == 0.0 && length < 2.0) return;  // a driver may leave out the ends
    const int steps = static_cast<int>(length);
    bool looked = false, found = true;
    for (int step = mark.side == 0.0 ? 1 : 0; step <= std::max(0, steps - 1); ++step) {
        const Vec at = mark.from + (steps == 0 ? 0.0 : static_cast<double>(step) / length) * way;
        if (!IsInside(Cell(at.x - kSlack), Cell(at.y - kSlack)) || !IsInside(Cell(at.x + kSlack), Cell(at.y + kSlack)))
            continue;
        looked = true;
        if (IsDrawnAround(Cell(at.x), Cell(at.y))) continue;
        found = false;
        Report("nothing where a mark is", at.x, at.y, result);
    }
    result->marks += looked ? 1 : 0;
    result->missing += looked && !found ? 1 : 0;
}

MarkComparison Raster::Compare() {
    MarkComparison result;
    for (std::size_t pixel = 0; pixel < m_drawn.size(); ++pixel) CheckPixel(pixel, &result);
    for (const Mark& mark : m_marks) CheckPresence(mark, &result);
    return result;
}

}  // namespace

std::vector<Mark> PointMarks(const Scene& scene, double side) {
    const View view = CameraView(scene.camera);
    const Window window = WindowOf(scene.camera);
    std::vector<Mark> marks;
    ForEachTriangle(scene, [&](const Object& object, const std::array<int, 3>& corners) {
        const std::size_t i = Corner(corners, 0);
        const Vec place = window.At(view.At(object.positions[i]));
        const Vec normal = view.Turned(object.normals[i]);
        const Vec color = FixedFunctionFront(scene.lighting, normal, object.colors[i], object.tint);
        marks.push_back({place, place, side, {255.0 * color}});
    });
    return marks;
}

std::vector<Mark> ShadowedPointMarks(const Scene& scene, double side) {
    const Lighting& lighting = scene.lighting;
    const View view = CameraView(scene.camera), light = ShadowView(scene.camera, lighting);
    const Window window = WindowOf(scene.camera), square = WindowOf(scene.camera, 1, 1);
    const ShadowMap map(scene);
    std::vector<Mark> marks;
    ForEachTriangle(scene, [&](const Object& object, const std::array<int, 3>& corners) {
        const std::size_t i = Corner(corners, 0);
        const Vec position = view.At(object.positions[i]), place = window.At(position);
        const Varyings at{position, Unit(view.Turned(object.normals[i])), Unit(lighting.lamp - position),
                          object.colors[i], square.At(light.At(object.positions[i]))};
        const auto answer = map.Ask(at.shadow, lighting.shadowBias);
        Mark mark{place, place, side, {}};
        for (const bool dark : {false, true})
            if (answer != (dark ? ShadowMap::Answer::Lit : ShadowMap::Answer::InShadow))
                mark.colors.push_back(255.0 * Shadowed(lighting, at, object.tint, true, dark));
        marks.push_back(mark);
    });
    return marks;
}

std::vector<Mark> EdgeMarks(const Scene& scene) {
    const View view = CameraView(scene.camera);
    const Window window = WindowOf(scene.camera);
    std::vector<Mark> marks;
    ForEachTriangle(scene, [&](const Object& object, const std::array<int, 3>& corners) {
        std::array<Vec, 3> places;
        for (int i = 0; i < 3; ++i)
            places[static_cast<std::size_t>(i)] = window.At(view.At(object.positions[Corner(corners, i)]));
        const Vec a = places[1] - places[0], b = places[2] - places[0];
        const double area = a.x * b.y - b.x * a.y;
        const std::size_t provoking = Corner(corners, scene.lighting.provoking);
        const Vec normal = view.Turned(object.normals[provoking]);
        std::vector<Vec> colors;
        if (area > -kThinArea)
            colors.push_back(255.0 * FixedFunctionFront(scene.lighting, normal, object.colors[provoking], object.tint));
        if (area < kThinArea) colors.push_back(255.0 * FixedFunctionBack(scene.lighting, normal, object.tint));
        for (std::size_t i = 0; i < 3; ++i) marks.push_back({places[i], places[(i + 1) % 3], 0.0, colors});
    });
    return marks;
}

std::vector<Mark> BoxMarks(const Scene& scene) {
    const View view = CameraView(scene.camera);
    const Window window = WindowOf(scene.camera);
    std::vector<Mark> marks;
    for (const Object& object : scene.objects) {
        if (!object.visible) continue;
        const auto corner = [&](int i) {
            return window.At(view.At({(i & 1) != 0 ? object.boxMax.x : object.boxMin.x,
                                      (i & 2) != 0 ? object.boxMax.y : object.boxMin.y,
                                      (i & 4) != 0 ? object.boxMax.z : object.boxMin.z}));
        };
        for (int i = 0; i < 8; ++i)
            for (const int bit : {1, 2, 4})
                if ((i & bit) == 0) marks.push_back({corner(i), corner(i | bit), 0.0, {kBoxColor}});
    }
    return marks;
}

std::vector<Mark> WithoutColors(std::vector<Mark> marks) {
    for (Mark& mark : marks) mark.colors.clear();
    return marks;
}

MarkComparison CompareMarks(const std::vector<Mark>& marks, const Picture& background,
                            std::span<const std::uint32_t> drawn) {
    return Raster(marks, background, drawn).Compare();
}

}  // namespace reference
