// Whole drags of the plane over many mouse moves, compared with the search of PlaneReference.h after each of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

#include "clip/Plane.h"
#include "clip/PlaneReference.h"

namespace {

using namespace plane_reference;

constexpr double kTolerance = 1e-9;     // of a matrix in which rotations are of order 1, centres of order 10
constexpr Real kClearDecision = 1e-7L;  // pixels; nearer lengths may compare otherwise in double precision
constexpr int kWidth = 640, kHeight = 480;

/// An orthographic view: window = middle + scale * (axis * (p - target)), y downward.
struct View {
    Point target{}, right{}, up{};
    Real scale = 10;
    Real grid = 0;  ///< pixels are rounded to multiples of this; 0 for no rounding

    /// @param slack  receives how near to a limit of the rounding the result is, when it is nearer than before
    template <class T>
    std::array<T, 2> Project(const std::array<T, 3>& p, Real* slack) const {
        T x = 0, y = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            x += static_cast<T>(right[i]) * (p[i] - static_cast<T>(target[i]));
            y += static_cast<T>(up[i]) * (p[i] - static_cast<T>(target[i]));
        }
        std::array<T, 2> pixel{kWidth / 2 + static_cast<T>(scale) * x, kHeight / 2 - static_cast<T>(scale) * y};
        if (grid == 0) return pixel;
        for (T& value : pixel) {
            const T cells = value / static_cast<T>(grid), rounded = std::round(cells);
            *slack = std::min(*slack, grid * (0.5L - std::abs(static_cast<Real>(cells - rounded))));
            value = rounded * static_cast<T>(grid);
        }
        return pixel;
    }
};

class DragPaths {
public:
    explicit DragPaths(unsigned seed) : m_random(seed) {}

    Real Any(Real from, Real to) {
        return std::uniform_real_distribution<double>(static_cast<double>(from), static_cast<double>(to))(m_random);
    }
    bool OneIn(int n) { return std::uniform_int_distribution<int>(1, n)(m_random) == 1; }
    Quaternion AnyRotation() {
        Quaternion q{Any(-1, 1), Any(-1, 1), Any(-1, 1), Any(-1, 1)};
        const Real length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
        return {q.w / length, q.x / length, q.y / length, q.z / length};
    }
    View AnyView(Real grid) {
        const Quaternion camera = AnyRotation();
        View view{{}, camera.Rotate({1, 0, 0}), camera.Rotate({0, 1, 0}), Any(2, 60), grid};
        for (Real& value : view.target) value = Any(-10, 10);
        return view;
    }
    /// A plane in any pose, with handles anywhere on its outline.
    Plane AnyPlane(Pose* pose) {
        *pose = {AnyRotation(), {Any(-10, 10), Any(-10, 10), Any(-10, 10)}};
        Plane plane;
        plane.SetRadiusFromExtent(static_cast<double>(Any(0.5L, 20)));
        plane.m_dMatrix = pose->Matrix();
        for (float& angle : plane.m_fHandleAngle) angle = static_cast<float>(Any(-400, 400));
        if (OneIn(3)) plane.m_dStartAngle = static_cast<double>(Any(-4, 4));
        return plane;
    }
    /// Steps of a hand and jumps, sometimes to the plane's centre or beside it.
    std::array<std::int32_t, 2> NextMouse(std::array<std::int32_t, 2> last, const Pixel& center) {
        if (OneIn(8)) return {Whole(Any(-300, kWidth + 300)), Whole(Any(-300, kHeight + 300))};
        if (OneIn(8)) return {Whole(center.real()) + Whole(Any(-2, 2)), Whole(center.imag()) + Whole(Any(-2, 2))};
        return {last[0] + Whole(Any(-25, 25)), last[1] + Whole(Any(-25, 25))};
    }

private:
    static std::int32_t Whole(Real value) { return static_cast<std::int32_t>(std::lround(value)); }
    std::mt19937 m_random;
};

/// Of one drag.
struct PathResult {
    int moves = 0, unclear = 0, tilts = 0, ties = 0;
    void operator+=(const PathResult& other) {
        moves += other.moves, unclear += other.unclear, tilts += other.tilts, ties += other.ties;
    }
};

/// Drags a sphere of a random plane along a random path. Moves that two precisions may decide differently are counted,
/// and the reference goes on from the plane's pose.
PathResult DragASphere(DragPaths& paths, Real grid, bool centered) {
    PathResult result;
    Pose pose;
    Plane plane = paths.AnyPlane(&pose);
    View view = paths.AnyView(grid);
    if (centered) view.target = pose.center;  // the plane's centre is at a whole pixel
    Real slack = 1;
    const ScreenProjector project = [&](const Double3& p) { return view.Project<double>(p, &slack); };
    const Projection reference = [&](const Point& p) {
        const auto pixel = view.Project<Real>(p, &slack);
        return Pixel(pixel[0], pixel[1]);
    };
    const std::uint32_t index = paths.OneIn(2) ? 0 : 1;
    const Pixel handle =
        OutlineAt(static_cast<Real>(plane.m_fHandleAngle[index]) * kPi / 180, plane.m_dStartAngle, 4, plane.m_dRadius);
    std::array<std::int32_t, 2> mouse{kWidth / 2, kHeight / 2};
    plane.BeginHandleDrag(mouse[0], mouse[1], project(plane.GetCenter()), {1, 0}, {index, PlaneHandle::kSphere});
    for (int move = 0; move < 40; ++move, ++result.moves) {
        mouse = paths.NextMouse(mouse, reference(pose.center));
        const auto before = plane.m_dMatrix;
        const Pose poseBefore = pose;
        slack = 1;
        plane.DragHandle(mouse[0], mouse[1], project);
        const Decisions decisions =
            pose.TiltTowards({static_cast<Real>(mouse[0]), static_cast<Real>(mouse[1])}, handle, reference);
        for (std::size_t i = 12; i < 16; ++i) EXPECT_EQ(plane.m_dMatrix[i], before[i]) << "the centre is fixed";
        result.tilts += plane.m_dMatrix != before;
        if (decisions.narrowest < kClearDecision || slack < kClearDecision || decisions.unclearTies > 0) {
            ++result.unclear;
            // The reference has no quaternion of the plane's matrix: the path begins again.
            pose = poseBefore;
            plane.m_dMatrix = before;
            continue;
        }
        result.ties += decisions.ties;
        const auto expected = pose.Matrix();
        double worst = 0;
        for (std::size_t i = 0; i < 16; ++i) worst = std::max(worst, std::abs(plane.m_dMatrix[i] - expected[i]));
        EXPECT_LT(worst, kTolerance) << "move " << move << " to " << mouse[0] << ", " << mouse[1];
        if (!(worst < kTolerance)) return result;
    }
    return result;
}

TEST(PlaneDragPath, OfASphereFollowsTheReferenceSearchOverManyMoves) {
    DragPaths paths(711);
    PathResult all;
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "path " << i);
        all += DragASphere(paths, 0, i % 4 == 0);
    }
    EXPECT_EQ(all.moves, 300 * 40);
    EXPECT_GT(all.tilts, all.moves / 2);
    EXPECT_LT(all.unclear, all.moves / 100);
}

// Positions on a grid of half pixels make lengths equal, which decides between the two directions and ends a descent.
TEST(PlaneDragPath, OfASphereDecidesTiesAsTheReferenceSearch) {
    DragPaths paths(712);
    PathResult all;
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "path " << i);
        all += DragASphere(paths, i % 2 == 0 ? 0.5L : 8, true);
    }
    EXPECT_EQ(all.moves, 300 * 40);
    EXPECT_GT(all.tilts, all.moves / 2);
    EXPECT_GT(all.ties, 1000);
    EXPECT_LT(all.unclear, all.moves / 2);
}

TEST(PlaneDragPath, OfTheArrowMovesByTheTravelAlongTheNormalOnTheScreen) {
    DragPaths paths(713);
    for (int i = 0; i < 300; ++i) {
        Pose pose;
        Plane plane = paths.AnyPlane(&pose);
        const View view = paths.AnyView(0);
        const Point normal = pose.rotation.Rotate({0, 0, 1});
        Real slack = 1;
        const auto at = view.Project<Real>(pose.center, &slack);
        Point tip = pose.center;
        for (std::size_t k = 0; k < 3; ++k) tip[k] += normal[k];
        const auto to = view.Project<Real>(tip, &slack);
        const Pixel direction(to[0] - at[0], to[1] - at[1]);
        const std::array<std::int32_t, 2> press{117, 391};
        const Double2 onScreen{static_cast<double>(direction.real()), static_cast<double>(direction.imag())};
        if (i % 2 == 0)
            plane.BeginHandleDrag(press[0], press[1], {}, onScreen, {0, PlaneHandle::kArrow});
        else
            plane.BeginPlaneDrag(press[0], press[1], onScreen);
        std::array<std::int32_t, 2> mouse = press;
        for (int move = 0; move < 40; ++move) {
            mouse = paths.NextMouse(mouse, {at[0], at[1]});
            if (i % 2 == 0)
                plane.DragHandle(mouse[0], mouse[1], {});
            else
                plane.DragAlongNormal(mouse[0], mouse[1]);
            const Pixel travel(mouse[0] - press[0], mouse[1] - press[1]);
            const Real units = (travel * std::conj(direction)).real() / std::abs(direction) / 10;
            for (std::size_t k = 0; k < 3; ++k)
                ASSERT_NEAR(plane.GetCenter()[k], static_cast<double>(pose.center[k] + units * normal[k]), kTolerance);
        }
        Pose unmoved = pose;
        unmoved.center = {plane.m_dMatrix[12], plane.m_dMatrix[13], plane.m_dMatrix[14]};
        EXPECT_EQ(plane.m_dMatrix, unmoved.Matrix()) << "only the centre moves";
    }
}

TEST(PlaneDragPath, OfManyMovesKeepsTheRotationRigid) {
    DragPaths paths(714);
    Pose pose;
    Plane plane = paths.AnyPlane(&pose);
    const View view = paths.AnyView(0);
    Real slack = 1;
    const ScreenProjector project = [&](const Double3& p) { return view.Project<double>(p, &slack); };
    std::array<std::int32_t, 2> mouse{0, 0};
    for (int move = 0; move < 5000; ++move) {
        if (move % 50 == 0)
            plane.BeginHandleDrag(mouse[0], mouse[1], {}, {1, 0},
                                  {static_cast<std::uint32_t>(move / 50 % 2), PlaneHandle::kSphere});
        mouse = paths.NextMouse(mouse, {kWidth / 2, kHeight / 2});
        plane.DragHandle(mouse[0], mouse[1], project);
    }
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t b = 0; b < 3; ++b) {
            double product = 0;
            for (std::size_t k = 0; k < 3; ++k) product += plane.m_dMatrix[4 * a + k] * plane.m_dMatrix[4 * b + k];
            EXPECT_NEAR(product, a == b ? 1 : 0, 1e-11) << a << ", " << b;
        }
}

}  // namespace
