// A transform of a mesh gives the bits of three plain loops, for odd coordinates too: positions, normals, box.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "geometry/Mesh.h"

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();

// ---- the plain loops

constexpr float Vertex::*kPosition[] = {&Vertex::x, &Vertex::y, &Vertex::z};
constexpr float Vertex::*kNormal[] = {&Vertex::nx, &Vertex::ny, &Vertex::nz};

void PlainApply(std::vector<Vertex>& vertices, const CACADQTrafo& trafo) {
    const auto& r = trafo.m_dRotation;
    for (Vertex& v : vertices) {
        const double p[3] = {v.x, v.y, v.z}, n[3] = {v.nx, v.ny, v.nz};
        for (int row = 0; row < 3; ++row) {
            v.*kPosition[row] = static_cast<float>(p[0] * r[row] + p[1] * r[3 + row] + p[2] * r[6 + row]) +
                                static_cast<float>(trafo.m_dTranslation[row]);
            v.*kNormal[row] = static_cast<float>(n[0] * r[row] + n[1] * r[3 + row] + n[2] * r[6 + row]);
        }
    }
}

void PlainRevert(std::vector<Vertex>& vertices, const CACADQTrafo& trafo) {
    const auto& r = trafo.m_dRotation;
    for (Vertex& v : vertices) {
        double p[3];
        const double n[3] = {v.nx, v.ny, v.nz};
        for (int i = 0; i < 3; ++i) p[i] = v.*kPosition[i] - static_cast<float>(trafo.m_dTranslation[i]);
        for (int row = 0; row < 3; ++row) {
            const double* const column = &r[3 * row];
            v.*kPosition[row] = static_cast<float>(p[0] * column[0] + p[1] * column[1] + p[2] * column[2]);
            v.*kNormal[row] = static_cast<float>(n[0] * column[0] + n[1] * column[1] + n[2] * column[2]);
        }
    }
}

/// Of the finite coordinates; of equal ones, such as both zeros, the first.
std::array<float, 6> PlainBox(const std::vector<Vertex>& vertices) {
    Mesh object(L"", false);
    float low[3] = {1, 1, 1}, high[3] = {-1, -1, -1};
    for (int axis = 0; axis < 3; ++axis) {
        bool isFirst = true;
        for (const Vertex& v : vertices) {
            const float value = v.*kPosition[axis];
            if (!std::isfinite(value)) continue;
            if (isFirst || value < low[axis]) low[axis] = value;
            if (isFirst || value > high[axis]) high[axis] = value;
            isFirst = false;
        }
    }
    object.SetBoundingBox(low[0], high[0], low[1], high[1], low[2], high[2]);
    return std::to_array(object.m_fBoundingBox);
}

// ---- the comparison

/// What kind of NaN an operation returns is left to the compiler.
bool IsSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) || (std::isnan(a) && std::isnan(b));
}

bool IsSame(const Vertex& a, const Vertex& b) {
    return IsSame(a.x, b.x) && IsSame(a.y, b.y) && IsSame(a.z, b.z) && IsSame(a.nx, b.nx) && IsSame(a.ny, b.ny) &&
           IsSame(a.nz, b.nz) && a.color == b.color && a.gridIndex == b.gridIndex;
}

void ExpectSame(const Mesh& mesh, const std::vector<Vertex>& vertices) {
    ASSERT_EQ(mesh.m_vVertices.size(), vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i)
        ASSERT_TRUE(IsSame(mesh.m_vVertices[i], vertices[i])) << "vertex " << i;
    const std::array<float, 6> box = PlainBox(vertices);
    for (std::size_t i = 0; i < box.size(); ++i)
        EXPECT_TRUE(IsSame(mesh.m_fBoundingBox[i], box[i])) << i << ": " << mesh.m_fBoundingBox[i] << ", " << box[i];
}

// ---- the meshes and the transforms

struct Coordinates {
    const char* name;
    std::size_t vertexCount;
    float scale;
    std::vector<float> odd;  ///< of every fifth coordinate, in turn
};
void PrintTo(const Coordinates& row, std::ostream* out) { *out << row.name; }

const Coordinates kCoordinates[] = {
    {"NoVertex", 0, 1, {}},
    {"OneVertex", 1, 1, {}},
    {"TwoVertices", 2, 1, {}},
    {"ThreeVertices", 3, 1, {}},
    {"Ordinary", 1000, 100, {}},
    {"Denormal", 100, 1e-40f, {}},
    {"Huge", 100, 3e38f, {}},
    {"Zeros", 100, 0, {0.0f, -0.0f}},
    {"ZerosBetweenOthers", 100, 1, {0.0f, -0.0f}},
    {"Nan", 100, 1, {NAN}},
    {"Infinite", 100, 1, {kInf, -kInf}},
    {"NanAndInfinite", 100, 1, {NAN, kInf, -kInf, 3e38f, 1e-44f, -0.0f}},
    {"OneInfiniteVertex", 1, 1, {kInf}},
    {"OneNanVertex", 1, 1, {NAN}},
};

std::vector<Vertex> MakeVertices(const Coordinates& row, std::size_t firstOdd) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    std::vector<Vertex> vertices(row.vertexCount);
    std::size_t next = 0, odd = 0;
    for (Vertex& v : vertices) {
        for (float* const value : {&v.x, &v.y, &v.z, &v.nx, &v.ny, &v.nz}) {
            *value = row.scale * coordinate(random);
            if (!row.odd.empty() && next++ % 5 == firstOdd) *value = row.odd[odd++ % row.odd.size()];
        }
        v.color = static_cast<std::uint32_t>(random());
        v.gridIndex = static_cast<std::uint32_t>(random());
    }
    return vertices;
}

std::vector<CACADQTrafo> MakeTrafos() {
    CACADQTrafo shift, turn, halfTurn, far, notFinite;
    for (int i = 0; i < 3; ++i) shift.m_dTranslation[i] = 0.1 * (i + 1);
    turn.Set(0.8, 0.6, 0, -0.6, 0.8, 0, 0, 0, 1, 1e-3, 77.7, -1e5);
    halfTurn.Set(-1, 0, 0, 0, -1, 0, 0, 0, 1, 0, 0, 0);
    far.Set(0, 0, 1, 1, 0, 0, 0, 1, 0, 1e300, -3e38, 3e38);
    notFinite.m_dRotation[4] = std::nan("");
    notFinite.m_dTranslation[0] = std::numeric_limits<double>::infinity();
    return {CACADQTrafo(), shift, turn, halfTurn, far, notFinite};
}

class MovedMesh : public testing::TestWithParam<Coordinates> {};

TEST_P(MovedMesh, HasTheVerticesAndTheBoxOfPlainLoops) {
    for (const CACADQTrafo& trafo : MakeTrafos())
        for (std::size_t firstOdd = 0; firstOdd < 5; ++firstOdd) {
            std::vector<Vertex> plain = MakeVertices(GetParam(), firstOdd);
            Mesh mesh(std::vector<Vertex>(plain), {}, L"", false);
            ExpectSame(mesh, plain);
            for (int step = 0; step < 3; ++step) {
                mesh.ApplyTrafo(trafo);
                PlainApply(plain, trafo);
                ASSERT_NO_FATAL_FAILURE(ExpectSame(mesh, plain)) << "applied, step " << step;
            }
            mesh.RevertTrafo(trafo);
            PlainRevert(plain, trafo);
            ASSERT_NO_FATAL_FAILURE(ExpectSame(mesh, plain)) << "reverted";
            mesh.ComputeBoundingBox();
            ASSERT_NO_FATAL_FAILURE(ExpectSame(mesh, plain)) << "box alone";
        }
}
INSTANTIATE_TEST_SUITE_P(Mesh, MovedMesh, testing::ValuesIn(kCoordinates),
                         [](const auto& row) { return row.param.name; });

}  // namespace
