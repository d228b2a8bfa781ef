// The normals of hps meshes, compared bit by bit with a plain loop over the triangles.
#include "KV_Components/HpsNormals.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

struct Vector {
    float x = 0, y = 0, z = 0;
};

/// Unchanged when its length is 0 or not a number.
Vector Direction(const Vector& v) {
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    return length > 0 ? Vector{v.x / length, v.y / length, v.z / length} : v;
}

/// One triangle after the other.
std::vector<float> PlainNormals(const std::vector<float>& positions, const std::vector<std::int32_t>& indices) {
    std::vector<Vector> sums(positions.size() / 3);
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const auto at = [&](std::size_t corner) {
            const float* const p = &positions[3 * static_cast<std::size_t>(indices[i + corner])];
            return Vector{p[0], p[1], p[2]};
        };
        const Vector p0 = at(0), p1 = at(1), p2 = at(2);
        const Vector a{p1.x - p0.x, p1.y - p0.y, p1.z - p0.z}, b{p2.x - p0.x, p2.y - p0.y, p2.z - p0.z};
        const Vector n = Direction({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
        for (std::size_t corner = 0; corner < 3; ++corner) {
            Vector& sum = sums[static_cast<std::size_t>(indices[i + corner])];
            sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z};
        }
    }
    std::vector<float> normals;
    for (const Vector& sum : sums) {
        const Vector n = Direction(sum);
        normals.insert(normals.end(), {n.x, n.y, n.z});
    }
    return normals;
}

/// The same bits, or both not a number, whose bits differ between processors.
bool IsSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) || (std::isnan(a) && std::isnan(b));
}

TEST(HpsNormals, AreThoseOfAPlainLoopForAnyNumberOfTrianglesAndVertices) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> coordinate(-100, 100);
    for (std::size_t vertices = 1; vertices <= 9; ++vertices)
        for (std::size_t triangles = 0; triangles <= 13; ++triangles) {
            std::vector<float> positions(3 * vertices), normals(3 * vertices, 7.0f);
            for (float& value : positions) value = coordinate(random);
            std::vector<std::int32_t> indices(3 * triangles);
            for (std::int32_t& index : indices) index = static_cast<std::int32_t>(random() % vertices);
            KvComponents::Hps::ComputeNormals(positions, indices, normals);
            const std::vector<float> expected = PlainNormals(positions, indices);
            EXPECT_TRUE(std::equal(normals.begin(), normals.end(), expected.begin(), IsSame))
                << vertices << " vertices, " << triangles << " triangles";
        }
}

TEST(HpsNormals, AreThoseOfAPlainLoopForOddCoordinates) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const float odd[] = {0.0f, -0.0f, 1e-42f, 1e38f, -1e38f, kInfinity, -kInfinity, NAN, 1.0f, 3.0f};
    std::mt19937 random(6);
    std::vector<float> positions(3 * 40), normals(3 * 40);
    for (float& value : positions) value = odd[random() % std::size(odd)];
    std::vector<std::int32_t> indices(3 * 200);
    for (std::int32_t& index : indices) index = static_cast<std::int32_t>(random() % 40);
    KvComponents::Hps::ComputeNormals(positions, indices, normals);
    const std::vector<float> expected = PlainNormals(positions, indices);
    EXPECT_TRUE(std::equal(normals.begin(), normals.end(), expected.begin(), IsSame));
}

TEST(HpsNormals, DoNotDependOnTheNumberOfThreads) {
    constexpr std::size_t kVertices = 10'007, kTriangles = 400'001;  // enough triangles for seven threads
    std::mt19937 random(7);
    std::uniform_real_distribution<float> coordinate(-100, 100);
    std::vector<float> positions(3 * kVertices);
    for (float& value : positions) value = coordinate(random);
    std::vector<std::int32_t> indices(3 * kTriangles);
    for (std::int32_t& index : indices) index = static_cast<std::int32_t>(random() % kVertices);
    const std::vector<float> expected = PlainNormals(positions, indices);
    for (const unsigned threads : {1u, 2u, 3u, 7u}) {
        std::vector<float> normals(3 * kVertices, 7.0f);
        KvComponents::Hps::ComputeNormals(positions, indices, normals, threads);
        EXPECT_TRUE(std::equal(normals.begin(), normals.end(), expected.begin(), IsSame)) << threads << " threads";
    }
}

TEST(HpsNormals, NoVertexNoNormal) { KvComponents::Hps::ComputeNormals({}, {}, {}); }

}  // namespace
