// The search for the nearest triangle has the bits of a plain loop over all triangles, whatever they look like.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "geometry/MeshIntersect.h"

namespace {

struct Line {
    Double3 origin, direction;
};

/// The reference: one triangle after the other, every quotient divided, each index checked where it is used.
std::optional<LineHit> PlainLoop(const std::vector<Vertex>& vertices, const std::vector<Triangle>& triangles,
                                 const Line& line) {
    const auto at = [&](std::int32_t index) {
        const Vertex& vertex = vertices.at(static_cast<std::size_t>(index));
        return Double3{vertex.x, vertex.y, vertex.z};
    };
    std::optional<LineHit> nearest;
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        const Double3 p0 = at(triangles[i].v[0]), p1 = at(triangles[i].v[1]), p2 = at(triangles[i].v[2]);
        const Double3 e1 = p1 - p0, e2 = p2 - p0, r = line.origin - p0, normal = Cross(e1, e2);
        const double determinant = -Dot(line.direction, normal);
        if (!(std::abs(determinant) > 1e-5)) continue;
        const Double3 rd = Cross(r, line.direction);
        const double u = Dot(e2, rd) / determinant, v = -Dot(e1, rd) / determinant;
        if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1 && u + v <= 1)) continue;
        const double t = Dot(r, normal) / determinant;
        const double squared = t * t * Dot(line.direction, line.direction);
        if (nearest && !(squared < nearest->squaredDistance)) continue;
        nearest = {t, squared, i};
    }
    return nearest;
}

/// Numbers that are the same on every machine.
class Numbers {
public:
    double Uniform(double from, double to) {
        return from + (to - from) * static_cast<double>(m_engine() >> 11) * 0x1p-53;
    }
    int Int(int from, int to) { return from + static_cast<int>(m_engine() % static_cast<unsigned>(to - from + 1)); }
    /// Any magnitude between the powers of two, either sign.
    double Scaled(int lowest, int highest) { return std::ldexp(Uniform(-1, 1), Int(lowest, highest)); }

private:
    std::mt19937_64 m_engine{20261122};
};

struct Soup {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    Line line;

    void Add(const std::array<Double3, 3>& corners) {
        const auto first = static_cast<std::int32_t>(vertices.size());
        for (const Double3& p : corners)
            vertices.push_back({.x = static_cast<float>(p[0]),
                                .y = static_cast<float>(p[1]),
                                .z = static_cast<float>(p[2]),
                                .nx = std::numeric_limits<float>::quiet_NaN()});
        triangles.push_back({{first, first + 1, first + 2}});
    }
};

/// What floats can hold: lines come from float coordinates.
Double3 AsFloats(const Double3& a) {
    return {static_cast<float>(a[0]), static_cast<float>(a[1]), static_cast<float>(a[2])};
}

Double3 Random(Numbers& numbers, double size) {
    return {numbers.Uniform(-size, size), numbers.Uniform(-size, size), numbers.Uniform(-size, size)};
}

Line RandomLine(Numbers& numbers, const Double3& through, double length) {
    const Double3 direction = AsFloats(length * Normalized(Random(numbers, 1)));
    return {AsFloats(through + numbers.Uniform(-20, 20) * direction), direction};
}

std::array<Double3, 3> RandomCorners(Numbers& numbers, const Double3& center, double size) {
    return {center + Random(numbers, size), center + Random(numbers, size), center + Random(numbers, size)};
}

// ---- kinds of soups

Soup Ordinary(Numbers& numbers, int count) {
    Soup soup;
    for (int i = 0; i < count; ++i) soup.Add(RandomCorners(numbers, Random(numbers, 1), 3));
    soup.line = RandomLine(numbers, Random(numbers, 1), 1);
    return soup;
}

/// Corners on a coarse lattice and lines through its points: edges and corners are hit exactly, distances are equal.
Soup OnALattice(Numbers& numbers, int count) {
    const auto point = [&] {
        return Double3{numbers.Int(-2, 2) / 2.0, numbers.Int(-2, 2) / 2.0, numbers.Int(-2, 2) / 2.0};
    };
    Soup soup;
    for (int i = 0; i < count; ++i) soup.Add({point(), point(), point()});
    soup.line.direction = numbers.Int(0, 1) != 0 ? Double3{0, 0, numbers.Int(0, 1) != 0 ? 1.0 : -1.0} : point();
    soup.line.origin = point() + numbers.Int(-4, 4) * soup.line.direction;
    return soup;
}

/// The line passes where u, v or u + v is 0 or 1 up to rounding.
Soup AtTheEdges(Numbers& numbers, int count) {
    Soup soup;
    for (int i = 0; i < count; ++i) soup.Add(RandomCorners(numbers, {}, 3));
    const auto at = [&](std::size_t i) { return Double3{soup.vertices[i].x, soup.vertices[i].y, soup.vertices[i].z}; };
    const auto first = 3 * static_cast<std::size_t>(numbers.Int(0, count - 1));
    const double share = numbers.Int(0, 3) == 0 ? 0 : numbers.Uniform(0, 1);
    const Double3 from = at(first + static_cast<std::size_t>(numbers.Int(0, 2)));
    const Double3 to = at(first + static_cast<std::size_t>(numbers.Int(0, 2)));
    soup.line = RandomLine(numbers, from + share * (to - from), 1);
    soup.line.origin = AsFloats(from + share * (to - from));
    return soup;
}

/// Long triangles without width: the determinant is near its limit and mostly rounding.
Soup Slivers(Numbers& numbers, int count) {
    Soup soup;
    const Double3 from = Random(numbers, 2), to = Random(numbers, 2);
    for (int i = 0; i < count; ++i)
        soup.Add(
            {from, to, from + numbers.Uniform(-1, 2) * (to - from) + numbers.Scaled(-24, -12) * Random(numbers, 1)});
    soup.line = RandomLine(numbers, from + numbers.Uniform(0, 1) * (to - from), 1);
    return soup;
}

/// Legs of which the determinant is the limit times 1, up to some roundings.
Soup AtTheLimitOfTheDeterminant(Numbers& numbers, int count) {
    Soup soup;
    const double leg = std::sqrt(1e-5);
    for (int i = 0; i < count; ++i) {
        const double x = leg * (1 + numbers.Int(-4, 4) * 0x1p-24), y = leg * (1 + numbers.Int(-4, 4) * 0x1p-24);
        soup.Add({Double3{0, 0, 1.0 * i}, Double3{x, 0, 1.0 * i}, Double3{0, y, 1.0 * i}});
    }
    soup.line = {AsFloats({leg / 3, leg / 3, 0.25}), {0, 0, numbers.Int(0, 1) != 0 ? 1.0 : -1.0}};
    return soup;
}

Soup FarFromTheOrigin(Numbers& numbers, int count) {
    const Double3 center = 1e6 * Normalized(Random(numbers, 1));
    Soup soup;
    for (int i = 0; i < count; ++i) soup.Add(RandomCorners(numbers, center, 2));
    soup.line = RandomLine(numbers, center, 1);
    return soup;
}

/// Coordinates of every magnitude that a float has, also of the direction.
Soup OfAnyMagnitude(Numbers& numbers, int count) {
    const int size = numbers.Int(-60, 110);
    Soup soup;
    for (int i = 0; i < count; ++i) {
        std::array<Double3, 3> corners = RandomCorners(numbers, {}, std::ldexp(1.0, size));
        if (numbers.Int(0, 2) == 0) corners[0] = {numbers.Scaled(-149, 120), numbers.Scaled(-149, 120), 0};
        soup.Add(corners);
    }
    soup.line = {AsFloats(Random(numbers, std::ldexp(1.0, size - 2))),
                 AsFloats(std::ldexp(1.0, numbers.Int(-40, 40)) * Random(numbers, 1))};
    return soup;
}

/// Ordinary triangles of which some coordinates are not finite, as large as a float can be, or zeros.
Soup NotFinite(Numbers& numbers, int count) {
    using Limits = std::numeric_limits<float>;
    const float odd[] = {Limits::quiet_NaN(),
                         Limits::infinity(),
                         -Limits::infinity(),
                         Limits::max(),
                         Limits::lowest(),
                         Limits::denorm_min(),
                         0.0f,
                         -0.0f};
    Soup soup = Ordinary(numbers, count);
    if (numbers.Int(0, 1) != 0) soup.line.direction = {0, -0.0, 1};
    for (Vertex& vertex : soup.vertices) {
        if (numbers.Int(0, 3) != 0) continue;
        float* const coordinates[] = {&vertex.x, &vertex.y, &vertex.z};
        *coordinates[numbers.Int(0, 2)] = odd[numbers.Int(0, 7)];
        if (numbers.Int(0, 3) == 0) *coordinates[numbers.Int(0, 2)] = odd[numbers.Int(0, 7)];
    }
    return soup;
}

struct Kind {
    const char* name;
    Soup (*make)(Numbers&, int);
    int leastHits;  ///< of kSoups; at least as many must be missed, so that both outcomes are tested
};
void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

constexpr int kSoups = 100000, kMostTriangles = 9;

class NearestHitOf : public testing::TestWithParam<Kind> {};

TEST_P(NearestHitOf, HasTheBitsOfThePlainLoop) {
    Numbers numbers;
    int hits = 0;
    for (int i = 0; i < kSoups; ++i) {
        const Soup soup = GetParam().make(numbers, 1 + i % kMostTriangles);
        const auto expected = PlainLoop(soup.vertices, soup.triangles, soup.line);
        hits += expected ? 1 : 0;
        for (const LaneCount lanes : {LaneCount::kFour, BestLaneCount()}) {
            const auto found =
                FindNearestHit(soup.vertices, soup.triangles, soup.line.origin, soup.line.direction, lanes);
            ASSERT_EQ(found.has_value(), expected.has_value()) << "soup " << i;
            if (!expected) continue;
            ASSERT_EQ(found->triangle, expected->triangle) << "soup " << i;
            ASSERT_EQ(std::bit_cast<std::uint64_t>(found->t), std::bit_cast<std::uint64_t>(expected->t)) << i;
            ASSERT_EQ(std::bit_cast<std::uint64_t>(found->squaredDistance),
                      std::bit_cast<std::uint64_t>(expected->squaredDistance))
                << "soup " << i;
        }
    }
    EXPECT_GE(hits, GetParam().leastHits);
    EXPECT_GE(kSoups - hits, 1000);
}

INSTANTIATE_TEST_SUITE_P(Soups, NearestHitOf,
                         testing::Values(Kind{"Ordinary", Ordinary, 20000}, Kind{"OnALattice", OnALattice, 10000},
                                         Kind{"AtTheEdges", AtTheEdges, 10000}, Kind{"Slivers", Slivers, 1000},
                                         Kind{"AtTheLimitOfTheDeterminant", AtTheLimitOfTheDeterminant, 20000},
                                         Kind{"FarFromTheOrigin", FarFromTheOrigin, 10000},
                                         Kind{"OfAnyMagnitude", OfAnyMagnitude, 5000},
                                         Kind{"NotFinite", NotFinite, 5000}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(NearestHit, IsNeverATriangleWithACoordinateThatIsNotFinite) {
    Numbers numbers;
    for (int i = 0; i < 20000; ++i) {
        const Soup soup = NotFinite(numbers, 4);
        const auto hit =
            FindNearestHit(soup.vertices, soup.triangles, soup.line.origin, soup.line.direction, BestLaneCount());
        if (!hit) continue;
        for (const std::int32_t corner : soup.triangles[hit->triangle].v) {
            const Vertex& vertex = soup.vertices[static_cast<std::size_t>(corner)];
            EXPECT_TRUE(std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z)) << i;
        }
    }
}

TEST(NearestHit, ChecksTheIndicesOfEveryTriangleHitOrNot) {
    for (const std::size_t count : {1u, 2u, 3u, 4u, 5u, 8u, 31u, 37u, 101u}) {
        for (const bool hits : {false, true}) {
            Soup soup;
            soup.Add({Double3{0, 0, 5}, Double3{2, 0, 5}, Double3{0, 2, 5}});
            soup.triangles.assign(count, soup.triangles[0]);
            soup.line = {hits ? Double3{0.5, 0.5, 0} : Double3{50, 50, 0}, {0, 0, 1}};
            for (std::size_t bad = 0; bad < 3 * count; ++bad) {
                for (const std::int32_t index :
                     {3, -1, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
                    Soup broken = soup;
                    broken.triangles[bad / 3].v[bad % 3] = index;
                    for (const LaneCount lanes : {LaneCount::kFour, BestLaneCount()}) {
                        try {
                            (void)FindNearestHit(broken.vertices, broken.triangles, broken.line.origin,
                                                 broken.line.direction, lanes);
                            ADD_FAILURE() << "index " << index << " as corner " << bad << " of " << count;
                        } catch (const std::out_of_range& error) {
                            EXPECT_STREQ(error.what(), "invalid vector subscript");
                        }
                    }
                }
            }
            EXPECT_EQ(
                FindNearestHit(soup.vertices, soup.triangles, soup.line.origin, soup.line.direction, BestLaneCount())
                    .has_value(),
                hits);
        }
    }
}

TEST(NearestHit, OfNoTrianglesIsNothing) {
    for (const LaneCount lanes : {LaneCount::kFour, BestLaneCount()})
        EXPECT_FALSE(FindNearestHit({}, {}, {0, 0, 0}, {0, 0, 1}, lanes).has_value());
}

}  // namespace
