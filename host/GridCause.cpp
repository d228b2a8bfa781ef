// A thinned grid has one point per cell of skip x skip points, their mean. The cells are judged three times: those that
// the import keeps, those that it would keep at any distance, and those with at least one point.
#include "GridCause.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <new>
#include <vector>

#include "MessageTable.h"
#include "SceneReport.h"

namespace {

constexpr int kFirstInvalidClass = 240;
// A triangle with a smaller angle, or with one that is as near to 180 degrees, is left out. The limit is a cosine.
constexpr float kMaxEdgeCosine = 0.965826F;
constexpr float kFileToScene = 0.001F;

using Point = std::array<float, 3>;

Point Difference(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
float Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// The thinned grid.
struct Cells {
    int width = 0, height = 0;
    std::vector<Point> mean;
    std::vector<int> count;  ///< valid points of the cell

    [[nodiscard]] std::size_t At(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
};

Cells Thinned(const ScanGrid& grid, int skip, float confidenceLimit) {
    Cells cells{(grid.width + skip - 1) / skip, (grid.height + skip - 1) / skip, {}, {}};
    const auto size = static_cast<std::size_t>(cells.width) * static_cast<std::size_t>(cells.height);
    cells.mean.resize(size);
    cells.count.resize(size);
    std::size_t pixel = 0;
    for (int y = 0; y < grid.height; ++y) {
        for (int x = 0; x < grid.width; ++x, ++pixel) {
            const bool isClassValid = grid.classification[pixel] < kFirstInvalidClass;
            if (!isClassValid || confidenceLimit > grid.confidence[pixel]) continue;
            const std::size_t cell = cells.At(x / skip, y / skip);
            for (std::size_t axis = 0; axis < 3; ++axis)
                cells.mean[cell][axis] += grid.points[3 * pixel + axis] * kFileToScene;
            ++cells.count[cell];
        }
    }
    for (std::size_t cell = 0; cell < size; ++cell) {
        if (cells.count[cell] == 0) continue;
        for (float& sum : cells.mean[cell]) sum /= static_cast<float>(cells.count[cell]);
    }
    return cells;
}

/// Whether the cell before, if it has a point, is so far away that the import leaves this one out.
bool IsFarFrom(const Cells& cells, std::size_t cell, std::size_t before, float limit) {
    if (cells.count[before] == 0 || cells.mean[before] == Point{}) return false;
    const Point step = Difference(cells.mean[cell], cells.mean[before]);
    return Dot(step, step) > limit * limit;
}

/// The cells with at least @p points points.
std::vector<bool> Filled(const Cells& cells, int points) {
    std::vector<bool> filled(cells.count.size());
    for (std::size_t cell = 0; cell < filled.size(); ++cell) filled[cell] = cells.count[cell] >= points;
    return filled;
}

/// @p filled without the cells that are further than @p limit from their left or upper neighbour.
std::vector<bool> Connected(const Cells& cells, std::vector<bool> filled, float limit) {
    for (int y = 0; y < cells.height; ++y) {
        for (int x = 0; x < cells.width; ++x) {
            const std::size_t cell = cells.At(x, y);
            const bool isFar = (x > 0 && IsFarFrom(cells, cell, cells.At(x - 1, y), limit)) ||
                               (y > 0 && IsFarFrom(cells, cell, cells.At(x, y - 1), limit));
            if (isFar) filled[cell] = false;
        }
    }
    return filled;
}

bool IsSliver(const Point& a, const Point& b, const Point& c) {
    const Point edges[] = {Difference(a, b), Difference(b, c), Difference(c, a)};
    for (const auto& [first, second] : {std::pair{1, 0}, {2, 1}, {2, 0}}) {
        const float cosine = Dot(edges[first], edges[second]);
        const float lengths = Dot(edges[first], edges[first]) * Dot(edges[second], edges[second]);
        if (cosine * cosine / lengths > kMaxEdgeCosine * kMaxEdgeCosine) return true;
    }
    return false;
}

/// What the cells that are present give.
struct Judgement {
    bool hasThree = false;     ///< three neighbours: a triangle, if its angles permit
    bool hasTriangle = false;  ///< one with good angles
};

Judgement Judge(const Cells& cells, const std::vector<bool>& isPresent) {
    Judgement judgement;
    for (int y = 0; y + 1 < cells.height; ++y) {
        for (int x = 0; x + 1 < cells.width; ++x) {
            const std::size_t a = cells.At(x, y), b = cells.At(x + 1, y), c = cells.At(x, y + 1);
            const std::size_t d = cells.At(x + 1, y + 1);
            const bool hasAll = isPresent[a] && isPresent[b] && isPresent[c] && isPresent[d];
            const auto judge = [&](std::size_t first, std::size_t second, std::size_t third) {
                if (!isPresent[first] || !isPresent[second] || !isPresent[third]) return;
                judgement.hasThree = true;
                if (!IsSliver(cells.mean[first], cells.mean[second], cells.mean[third])) judgement.hasTriangle = true;
            };
            judge(a, c, b);
            judge(c, d, b);
            if (!hasAll) {  // the other diagonal is for three corners only
                judge(a, d, b);
                judge(a, c, d);
            }
            if (judgement.hasTriangle) return judgement;
        }
    }
    return judgement;
}

std::string Sentence(const char* sentence, std::initializer_list<std::string> parts) {
    return FilledSentence(sentence, std::vector(parts));
}

std::string CauseOf(const ScanGrid& grid, int skip, float confidenceLimit) {
    const Cells cells = Thinned(grid, skip, confidenceLimit);
    if (std::ranges::all_of(cells.count, [](int count) { return count == 0; })) return {};
    if (cells.width < 2 || cells.height < 2)
        return Sentence(kOneRow, {std::to_string(cells.width), std::to_string(cells.height)});
    const int needed = skip == 1 ? 1 : skip * skip / 2;
    const std::vector<bool> filled = Filled(cells, needed);
    const Judgement anyDistance = Judge(cells, filled);
    if (skip > 1) {
        const float limit = LargestGap(skip);
        if (Judge(cells, Connected(cells, filled, limit)).hasTriangle) return {};
        // Skip 1 is recommended only where it leaves a triangle.
        const bool helpsToSkipNothing = [&] {
            const Cells all = Thinned(grid, 1, confidenceLimit);
            return Judge(all, Filled(all, 1)).hasTriangle;
        }();
        if (anyDistance.hasTriangle)
            return Sentence(helpsToSkipNothing ? kTooFarApart : kTooFarApartAtAnySkip,
                            {std::to_string(skip), NumberText(limit)});
        if (!anyDistance.hasThree && helpsToSkipNothing)
            return Sentence(kTooFewPerCell, {std::to_string(skip), std::to_string(needed)});
    } else if (anyDistance.hasTriangle) {
        return {};
    }
    return anyDistance.hasThree ? Sentence(kAllSlivers, {kLeastAngle, kLargestAngle}) : kNoNeighbours;
}

}  // namespace

float LargestGap(int skip) {
    if (skip >= 8) return 8.0F;
    if (skip == 7) return 6.5F;
    if (skip == 6) return 5.75F;
    return skip >= 4 ? 5.25F : 5.0F;
}

std::string CauseOfNoTriangle(const ScanGrid& grid, int skip, float confidenceLimit) {
    try {
        return CauseOf(grid, skip, confidenceLimit);
    } catch (const std::bad_alloc&) {
        return {};  // the viewer's own reason is shown then
    }
}
