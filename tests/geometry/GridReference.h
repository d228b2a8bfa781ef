// A slow, literal triangulator of measurement grids: a grid of pointers, one quad after the other, normals over the
// finished mesh. The vectorised triangulation must agree with it to the last bit.
#pragma once
#include <cmath>
#include <cstdint>
#include <deque>
#include <vector>

#include "geometry/Vertex.h"

namespace grid_reference {

struct Grid {
    int width = 0, height = 0;
    std::vector<float> points;
    std::vector<std::uint16_t> mask;
    std::vector<std::uint32_t> colors;  // empty: no colours
};

struct Result {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
};

struct CellGrid {
    int width = 0, height = 0;
    std::deque<Vertex> list;
    std::vector<const Vertex*> at;
};

inline void Put(CellGrid& cells, int x, int y, float px, float py, float pz, std::uint32_t color) {
    cells.list.push_back({px, py, pz, 0, 0, 0, color, static_cast<std::uint32_t>(y * 65536 + x)});
    cells.at[static_cast<std::size_t>(y * cells.width + x)] = &cells.list.back();
}

inline CellGrid PixelCells(const Grid& grid) {
    CellGrid cells{grid.width, grid.height, {}, {}};
    cells.at.assign(grid.mask.size(), nullptr);
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) {
            const auto i = static_cast<std::size_t>(y * grid.width + x);
            if (grid.mask[i] == 0)
                Put(cells, x, y, grid.points[3 * i], grid.points[3 * i + 1], grid.points[3 * i + 2],
                    grid.colors.empty() ? 0 : grid.colors[i]);
        }
    return cells;
}

inline CellGrid AveragedCells(const Grid& grid, int skip) {
    CellGrid cells;
    cells.width = grid.width / skip;
    if (grid.width % skip != 0) cells.width += 1;
    cells.height = grid.height / skip;
    if (grid.height % skip != 0) cells.height += 1;
    const auto cellCount = static_cast<std::size_t>(cells.width * cells.height);
    cells.at.assign(cellCount, nullptr);
    std::vector<float> sum(3 * cellCount, 0.0f);
    std::vector<int> count(cellCount, 0);
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) {
            const auto i = static_cast<std::size_t>(y * grid.width + x);
            if (grid.mask[i] != 0) continue;
            const auto cell = static_cast<std::size_t>((y / skip) * cells.width + x / skip);
            for (std::size_t k = 0; k < 3; ++k) sum[3 * cell + k] += grid.points[3 * i + k];
            ++count[cell];
        }
    const float limits[] = {0, 0, 5.0f, 5.0f, 5.25f, 5.25f, 5.75f, 6.5f, 8.0f};
    const float limit = limits[skip < 8 ? skip : 8];
    const auto breaks = [&](std::size_t neighbour, const float* average) {
        if (count[neighbour] <= 0) return false;
        float other[3];
        for (std::size_t k = 0; k < 3; ++k) other[k] = sum[3 * neighbour + k] / static_cast<float>(count[neighbour]);
        if (other[0] == 0 && other[1] == 0 && other[2] == 0) return false;
        const float dx = other[0] - average[0], dy = other[1] - average[1], dz = other[2] - average[2];
        return dx * dx + dy * dy + dz * dz > limit * limit;
    };
    for (int cy = 0; cy < cells.height; ++cy)
        for (int cx = 0; cx < cells.width; ++cx) {
            const auto cell = static_cast<std::size_t>(cy * cells.width + cx);
            if (count[cell] < skip * skip / 2) continue;
            float average[3];
            for (std::size_t k = 0; k < 3; ++k) average[k] = sum[3 * cell + k] / static_cast<float>(count[cell]);
            bool fails = false;
            if (cx > 0) fails = breaks(cell - 1, average);
            if (cy > 0) fails = fails || breaks(cell - static_cast<std::size_t>(cells.width), average);
            if (fails) continue;
            const auto pixel = static_cast<std::size_t>(cy * skip * grid.width + cx * skip);
            Put(cells, cx, cy, average[0], average[1], average[2], grid.colors.empty() ? 0 : grid.colors[pixel]);
        }
    return cells;
}

inline float Dot(const float* a, const float* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

inline bool IsRejected(const Vertex& p0, const Vertex& p1, const Vertex& p2, float limit) {
    if (limit < 0) return false;
    const float e[3][3] = {{p0.x - p1.x, p0.y - p1.y, p0.z - p1.z},
                           {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z},
                           {p2.x - p0.x, p2.y - p0.y, p2.z - p0.z}};
    const int pairs[3][2] = {{1, 0}, {2, 1}, {2, 0}};
    for (const auto& pair : pairs) {
        const float* a = e[pair[0]];
        const float* b = e[pair[1]];
        const float dot = Dot(a, b);
        if (dot * dot / (Dot(a, a) * Dot(b, b)) > limit * limit) return true;
    }
    return false;
}

inline Result TriangulateCells(const CellGrid& cells, float limit) {
    Result result;
    std::vector<int> prev(static_cast<std::size_t>(cells.width), -1), next = prev;
    for (int y = 0; y + 1 < cells.height; ++y) {
        for (int x = 0; x + 1 < cells.width; ++x) {
            const auto column = static_cast<std::size_t>(x);
            const Vertex* const* upper = &cells.at[static_cast<std::size_t>(y * cells.width + x)];
            const Vertex* const* lower = upper + cells.width;
            const Vertex* const corners[4] = {upper[0], upper[1], lower[0], lower[1]};
            int* const indices[4] = {&prev[column], &prev[column + 1], &next[column], &next[column + 1]};
            enum { A, B, C, D };
            const auto triangle = [&](int i, int j, int k) {
                const bool isRejected = IsRejected(*corners[i], *corners[j], *corners[k], limit);
                for (const int corner : {i, j, k})
                    if (*indices[corner] == -1) {
                        *indices[corner] = static_cast<int>(result.vertices.size());
                        result.vertices.push_back(*corners[corner]);
                    }
                if (!isRejected) result.triangles.push_back({{*indices[i], *indices[j], *indices[k]}});
            };
            const int present =
                (corners[A] ? 8 : 0) + (corners[B] ? 4 : 0) + (corners[C] ? 2 : 0) + (corners[D] ? 1 : 0);
            switch (present) {
                case 0b1111:
                    triangle(A, C, B), triangle(C, D, B);
                    break;
                case 0b1110:
                    triangle(A, C, B);
                    break;
                case 0b1101:
                    triangle(A, D, B);
                    break;
                case 0b1011:
                    triangle(A, C, D);
                    break;
                case 0b0111:
                    triangle(C, D, B);
                    break;
                default:
                    break;
            }
        }
        prev.swap(next);
        next.assign(next.size(), -1);
    }
    return result;
}

inline Result Triangulate(const Grid& grid, int skip, float limit) {
    return TriangulateCells(skip == 1 ? PixelCells(grid) : AveragedCells(grid, skip), limit);
}

inline void Transform(std::vector<Vertex>& vertices, const float* m) {
    for (Vertex& v : vertices) {
        const float x = v.x * m[0] + v.y * m[1] + v.z * m[2] + m[3];
        const float y = v.x * m[4] + v.y * m[5] + v.z * m[6] + m[7];
        const float z = v.x * m[8] + v.y * m[9] + v.z * m[10] + m[11];
        v.x = x;
        v.y = y;
        v.z = z;
    }
}

inline void AddFaceNormals(Result& mesh, std::vector<int>& faceCount) {
    faceCount.assign(mesh.vertices.size(), 0);
    for (const Triangle& t : mesh.triangles) {
        const Vertex p0 = mesh.vertices[static_cast<std::size_t>(t.v[0])];
        const Vertex p1 = mesh.vertices[static_cast<std::size_t>(t.v[1])];
        const Vertex p2 = mesh.vertices[static_cast<std::size_t>(t.v[2])];
        const float a[3] = {p1.x - p0.x, p1.y - p0.y, p1.z - p0.z};
        const float b[3] = {p2.x - p0.x, p2.y - p0.y, p2.z - p0.z};
        float c[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        const float length = std::sqrt(Dot(c, c));
        if (length > 0)
            for (float& element : c) element /= length;
        for (const auto corner : t.v) {
            const auto i = static_cast<std::size_t>(corner);
            mesh.vertices[i].nx += c[0];
            mesh.vertices[i].ny += c[1];
            mesh.vertices[i].nz += c[2];
            ++faceCount[i];
        }
    }
}

inline void ComputeUnitNormals(Result& mesh) {
    std::vector<int> faceCount;
    AddFaceNormals(mesh, faceCount);
    for (Vertex& v : mesh.vertices) {
        const float length = std::sqrt(Dot(&v.nx, &v.nx));
        if (length > 0) v.nx /= length, v.ny /= length, v.nz /= length;
    }
}

inline void ComputeMeanNormals(Result& mesh) {
    std::vector<int> faceCount;
    AddFaceNormals(mesh, faceCount);
    for (std::size_t i = 0; i < faceCount.size(); ++i) {
        Vertex& v = mesh.vertices[i];
        const auto count = static_cast<float>(faceCount[i]);
        if (faceCount[i] > 0) v.nx /= count, v.ny /= count, v.nz /= count;
    }
}

}  // namespace grid_reference
