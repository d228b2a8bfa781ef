// The reduced grid of a measurement: one vertex per valid pixel, or one per cell of skip x skip pixels that has enough
// valid pixels.
#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "base/ParallelTasks.h"
#include "geometry/GridTriangulation.h"

namespace {

struct Grid {
    std::int32_t width, height;
    const float* points;
    const std::uint16_t* mask;
    const std::uint32_t* colors;

    [[nodiscard]] std::size_t IndexOf(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    [[nodiscard]] std::uint32_t ColorAt(std::size_t pixel) const { return colors != nullptr ? colors[pixel] : 0; }
};

std::uint32_t GridIndex(std::int32_t row, std::int32_t column) {
    return (static_cast<std::uint32_t>(row) << 16) | static_cast<std::uint32_t>(column);
}

GridVertexList ListOfPixels(const Grid& grid) {
    GridVertexList list{grid.height, grid.width, {}};
    // Counted first, so that the list gets its exact size.
    const std::size_t pixelCount = grid.IndexOf(0, grid.height);
    std::size_t validCount = 0;
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel) validCount += grid.mask[pixel] == 0;
    list.m_vVertices.reserve(validCount);
    for (std::int32_t y = 0; y < grid.height; ++y)
        for (std::int32_t x = 0; x < grid.width; ++x) {
            const std::size_t pixel = grid.IndexOf(x, y);
            if (grid.mask[pixel] != 0) continue;
            const float* p = grid.points + 3 * pixel;
            list.m_vVertices.push_back({p[0], p[1], p[2], 0, 0, 0, grid.ColorAt(pixel), GridIndex(y, x)});
        }
    return list;
}

/// First the sum of the valid points of a cell, then their average.
struct Cell {
    float x = 0, y = 0, z = 0;
    std::int32_t count = 0;

    void Add(const float* p) {
        x += p[0];
        y += p[1];
        z += p[2];
        ++count;
    }
    void Average() {
        if (count == 0) return;  // an empty cell stays at zero, which IsStep() tests
        const auto divisor = static_cast<float>(count);
        x /= divisor;
        y /= divisor;
        z /= divisor;
    }
    [[nodiscard]] bool IsZero() const { return x == 0 && y == 0 && z == 0; }
};

// Millimetres, the unit of the points: a step between neighbouring cells that is larger than this breaks the surface.
// It grows with the cell, since larger cells are farther apart.
float DistanceLimit(std::int32_t skip) {
    if (skip >= 8) return 8.0f;
    if (skip == 7) return 6.5f;
    if (skip == 6) return 5.75f;
    if (skip >= 4) return 5.25f;
    return 5.0f;
}

// Any neighbour with a valid point can break the surface, also one with too few of them to become a vertex itself.
bool IsStep(const Cell& neighbour, const Cell& cell, float squaredLimit) {
    if (neighbour.count == 0 || neighbour.IsZero()) return false;
    const float dx = neighbour.x - cell.x, dy = neighbour.y - cell.y, dz = neighbour.z - cell.z;
    return dx * dx + dy * dy + dz * dz > squaredLimit;
}

// Adds one row of pixels to the cells that it crosses, in single precision and in row order, which fixes the bits of
// the sums.
void AddPixelRow(const Grid& grid, std::int32_t y, std::int32_t skip, std::vector<Cell>& cells) {
    std::size_t pixel = grid.IndexOf(0, y);
    std::int32_t left = grid.width;
    for (Cell& cell : cells) {
        Cell sum = cell;
        for (std::int32_t i = std::min(skip, left); i > 0; --i, ++pixel)
            if (grid.mask[pixel] == 0) sum.Add(grid.points + 3 * pixel);
        cell = sum;
        left -= skip;
    }
}

/// The averages of the cells of one row; the last row and column of cells may be incomplete.
void AverageRow(const Grid& grid, std::int32_t row, std::int32_t skip, std::vector<Cell>& cells) {
    std::ranges::fill(cells, Cell{});
    const std::int32_t firstY = row * skip;
    const std::int32_t endY = firstY + std::min(skip, grid.height - firstY);
    for (std::int32_t y = firstY; y < endY; ++y) AddPixelRow(grid, y, skip, cells);
    for (Cell& cell : cells) cell.Average();
}

/// Appends the vertices of the rows of cells from @p first to before @p last.
/// @param width  of the list, cells
void AppendCells(const Grid& grid, std::int32_t skip, std::int32_t width, std::int32_t first, std::int32_t last,
                 std::vector<Vertex>& vertices) {
    // A cell becomes a vertex when at least half of its pixels, rounded down, are valid.
    const std::int64_t minCount = std::int64_t{skip} * skip / 2;
    const float limit = DistanceLimit(skip);
    const float squaredLimit = limit * limit;
    std::vector<Cell> above(static_cast<std::size_t>(width)), cells(static_cast<std::size_t>(width));
    if (first > 0) AverageRow(grid, first - 1, skip, above);
    for (std::int32_t row = first; row < last; ++row) {
        AverageRow(grid, row, skip, cells);
        // The cells with enough pixels and without a step to the left or upward. The colour is that of the first pixel.
        for (std::int32_t column = 0; column < width; ++column) {
            const auto i = static_cast<std::size_t>(column);
            const Cell& cell = cells[i];
            if (cell.count < minCount) continue;
            if (column > 0 && IsStep(cells[i - 1], cell, squaredLimit)) continue;
            if (row > 0 && IsStep(above[i], cell, squaredLimit)) continue;
            const std::uint32_t color = grid.ColorAt(grid.IndexOf(column * skip, row * skip));
            vertices.push_back({cell.x, cell.y, cell.z, 0, 0, 0, color, GridIndex(row, column)});
        }
        std::swap(above, cells);
    }
}

GridVertexList ListOfCells(const Grid& grid, std::int32_t skip, unsigned threads) {
    const auto cellsAlong = [skip](std::int32_t pixels) { return pixels / skip + (pixels % skip != 0); };
    GridVertexList list{cellsAlong(grid.height), cellsAlong(grid.width), {}};
    // Bands of rows, whose lists are joined.
    const auto bands = static_cast<std::size_t>(std::clamp<std::int64_t>(list.m_iHeight, 1, std::max(threads, 1u)));
    std::vector<std::vector<Vertex>> parts(bands);
    const auto firstOf = [&](std::size_t band) {
        return static_cast<std::int32_t>(static_cast<std::size_t>(list.m_iHeight) * band / bands);
    };
    RunTasks(bands, threads, [&](std::size_t band) {
        AppendCells(grid, skip, list.m_iWidth, firstOf(band), firstOf(band + 1), parts[band]);
    });
    list.m_vVertices = std::move(parts[0]);
    for (const auto& part : std::span(parts).subspan(1))
        list.m_vVertices.insert(list.m_vVertices.end(), part.begin(), part.end());
    return list;
}

}  // namespace

GridVertexList BuildGridVertexList(std::int16_t width, std::int16_t height, const float* points,
                                   const std::uint16_t* mask, const std::uint32_t* colors, std::int32_t skip,
                                   unsigned threads) {
    assert(width >= 0 && height >= 0 && skip >= 1);
    const Grid grid{width, height, points, mask, colors};
    return skip == 1 ? ListOfPixels(grid) : ListOfCells(grid, skip, threads);
}
