// Rigid motions in double precision for tests: random ones, and the least-squares fit of pairs by another method than
// the one of the product.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <span>
#include <vector>

namespace reference {

struct Point {
    double v[3];
    double& operator[](std::size_t i) { return v[i]; }
    double operator[](std::size_t i) const { return v[i]; }
};

inline Point operator+(const Point& a, const Point& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Point operator-(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Point operator*(double s, const Point& a) { return {s * a[0], s * a[1], s * a[2]}; }
inline double Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Point Cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double Length(const Point& a) { return std::hypot(a[0], a[1], a[2]); }
inline Point Unit(const Point& a) { return (1 / Length(a)) * a; }

/// p' = R p + t; the rows of R.
struct Motion {
    std::array<Point, 3> rows{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    Point t{};

    [[nodiscard]] Point Turn(const Point& p) const { return {Dot(rows[0], p), Dot(rows[1], p), Dot(rows[2], p)}; }
    [[nodiscard]] Point operator()(const Point& p) const { return Turn(p) + t; }
    /// The inverse rotation: the transpose.
    [[nodiscard]] Point TurnBack(const Point& p) const { return p[0] * rows[0] + (p[1] * rows[1] + p[2] * rows[2]); }
    [[nodiscard]] double Determinant() const { return Dot(rows[0], Cross(rows[1], rows[2])); }
};

/// @param q  w, x, y, z of any length
inline Motion MotionOfQuaternion(std::array<double, 4> q, const Point& t = {}) {
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& part : q) part /= length;
    const auto [w, x, y, z] = q;
    return {{{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
              {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
              {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}},
            t};
}

/// Right-handed, radians, about an axis of any length through the origin.
inline Motion MotionAbout(const Point& axis, double angle, const Point& t = {}) {
    const Point a = std::sin(angle / 2) * Unit(axis);
    return MotionOfQuaternion({std::cos(angle / 2), a[0], a[1], a[2]}, t);
}

inline Motion Compose(const Motion& second, const Motion& first) {
    Motion both;
    for (std::size_t i = 0; i < 3; ++i) both.rows[i] = first.TurnBack(second.rows[i]);
    both.t = second(first.t);
    return both;
}

/// Angle of the rotation between two motions, radians. Also exact for small ones.
inline double AngleBetween(const Motion& a, const Motion& b) {
    double squares = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Point difference = a.rows[i] - b.rows[i];
        squares += Dot(difference, difference);
    }
    return 2 * std::asin(std::min(1.0, std::sqrt(squares / 8)));
}

/// Uniform over all rotations.
template <typename Random>
Motion RandomMotion(Random& random, double largestTranslation) {
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> t(-largestTranslation, largestTranslation);
    const std::array<double, 4> q = {normal(random), normal(random), normal(random), normal(random)};
    return MotionOfQuaternion(q, {t(random), t(random), t(random)});
}

inline Point Mean(std::span<const Point> points) {
    Point sum{};
    for (const Point& p : points) sum = sum + p;
    return (1.0 / static_cast<double>(points.size())) * sum;
}

/// Eigenvectors of a symmetric matrix as columns, by Jacobi's rotations; the matrix becomes diagonal.
template <std::size_t N>
std::array<std::array<double, N>, N> Diagonalize(std::array<std::array<double, N>, N>& m) {
    std::array<std::array<double, N>, N> vectors{};
    for (std::size_t i = 0; i < N; ++i) vectors[i][i] = 1;
    for (int sweep = 0; sweep < 60; ++sweep)
        for (std::size_t p = 0; p < N; ++p)
            for (std::size_t q = p + 1; q < N; ++q) {
                if (m[p][q] == 0) continue;
                const double angle = std::atan2(2 * m[p][q], m[q][q] - m[p][p]) / 2;
                const double c = std::cos(angle), s = std::sin(angle);
                for (std::size_t k = 0; k < N; ++k) {  // columns of m and of the vectors
                    const double a = m[k][p], b = m[k][q], va = vectors[k][p], vb = vectors[k][q];
                    m[k][p] = c * a - s * b, m[k][q] = s * a + c * b;
                    vectors[k][p] = c * va - s * vb, vectors[k][q] = s * va + c * vb;
                }
                for (std::size_t k = 0; k < N; ++k) {  // rows of m
                    const double a = m[p][k], b = m[q][k];
                    m[p][k] = c * a - s * b, m[q][k] = s * a + c * b;
                }
            }
    return vectors;
}

/// The least-squares rigid motion of source to target by the eigenvector of Horn's 4 x 4 matrix (B. K. P. Horn,
/// J. Opt. Soc. Am. A 4(4), 1987): a quaternion, so it is never a reflection.
inline Motion FitByQuaternion(std::span<const Point> source, std::span<const Point> target) {
    const Point from = Mean(source), to = Mean(target);
    double s[3][3] = {};
    for (std::size_t i = 0; i < source.size(); ++i)
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t b = 0; b < 3; ++b) s[a][b] += (source[i][a] - from[a]) * (target[i][b] - to[b]);
    std::array<std::array<double, 4>, 4> n = {{
        {s[0][0] + s[1][1] + s[2][2], s[1][2] - s[2][1], s[2][0] - s[0][2], s[0][1] - s[1][0]},
        {s[1][2] - s[2][1], s[0][0] - s[1][1] - s[2][2], s[0][1] + s[1][0], s[2][0] + s[0][2]},
        {s[2][0] - s[0][2], s[0][1] + s[1][0], -s[0][0] + s[1][1] - s[2][2], s[1][2] + s[2][1]},
        {s[0][1] - s[1][0], s[2][0] + s[0][2], s[1][2] + s[2][1], -s[0][0] - s[1][1] + s[2][2]},
    }};
    const auto vectors = Diagonalize(n);
    std::size_t best = 0;
    for (std::size_t i = 1; i < 4; ++i)
        if (n[i][i] > n[best][best]) best = i;
    Motion fit = MotionOfQuaternion({vectors[0][best], vectors[1][best], vectors[2][best], vectors[3][best]});
    fit.t = to - fit.Turn(from);
    return fit;
}

/// Sum of the squared distances of the moved source points from the target points.
inline double SumOfSquares(const Motion& motion, std::span<const Point> source, std::span<const Point> target) {
    double sum = 0;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const Point rest = motion(source[i]) - target[i];
        sum += Dot(rest, rest);
    }
    return sum;
}

/// Squared extents of points about their mean along the principal directions, ascending.
inline std::array<double, 3> PrincipalScatter(std::span<const Point> points) {
    const Point mean = Mean(points);
    std::array<std::array<double, 3>, 3> scatter{};
    for (const Point& p : points)
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t b = 0; b < 3; ++b) scatter[a][b] += (p[a] - mean[a]) * (p[b] - mean[b]);
    Diagonalize(scatter);
    std::array<double, 3> values = {scatter[0][0], scatter[1][1], scatter[2][2]};
    std::ranges::sort(values);
    return values;
}

}  // namespace reference
