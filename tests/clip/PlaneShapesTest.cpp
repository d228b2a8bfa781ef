// Of how many pieces the plane's handles and guides are made: the corners that OpenGL receives, by its feedback.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <set>
#include <vector>

#include "clip/Plane.h"
#include "support/ControlFixture.h"

namespace {

constexpr double kDegree = std::numbers::pi / 180;
constexpr double kHalfView = 200;  // world units, also pixels, from the middle of the view to each side

struct Primitive {
    GLenum token = 0;
    std::vector<Double3> corners{};  ///< world frame
};

/// The view is down z with one pixel per unit, so that window coordinates are world coordinates but for an offset.
class PlaneShapes : public testing::Test {
protected:
    PlaneShapes() { plane.SetRadiusFromExtent(120); }

    /// What a drawing sends to the rasteriser.
    template <class Drawing>
    std::vector<Primitive> PrimitivesOf(const Drawing& draw) {
        EXPECT_TRUE(control->MakeContextCurrent());
        std::vector<float> feedback(1 << 18);
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glViewport(0, 0, static_cast<GLsizei>(2 * kHalfView), static_cast<GLsizei>(2 * kHalfView));
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW}) {
            glMatrixMode(matrix);
            glPushMatrix();
            glLoadIdentity();
            if (matrix == GL_PROJECTION) glOrtho(-kHalfView, kHalfView, -kHalfView, kHalfView, -kHalfView, kHalfView);
        }
        glFeedbackBuffer(static_cast<GLsizei>(feedback.size()), GL_3D, feedback.data());
        glRenderMode(GL_FEEDBACK);
        draw();
        const GLint count = glRenderMode(GL_RENDER);
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW}) {
            glMatrixMode(matrix);
            glPopMatrix();
        }
        glPopAttrib();
        EXPECT_GT(count, 0) << "negative: the buffer is too small";
        feedback.resize(static_cast<std::size_t>(std::max(count, 0)));
        return Parse(feedback);
    }
    /// The corners of all primitives, each once, relative to a point.
    static std::vector<Double3> CornersAround(const std::vector<Primitive>& primitives, const Double3& middle,
                                              double reach) {
        std::vector<Double3> corners;
        for (const Primitive& primitive : primitives)
            for (const Double3& corner : primitive.corners)
                if (const Double3 p = corner - middle; std::sqrt(Dot(p, p)) < reach) corners.push_back(p);
        return corners;
    }

    OffscreenControl control{400, 400};
    Plane plane;

private:
    static std::vector<Primitive> Parse(const std::vector<float>& feedback) {
        std::vector<Primitive> primitives;
        for (std::size_t i = 0; i < feedback.size();) {
            Primitive primitive{static_cast<GLenum>(feedback[i++])};
            std::size_t corners = 2;  // of a line
            if (primitive.token == GL_POLYGON_TOKEN) corners = static_cast<std::size_t>(feedback.at(i++));
            for (std::size_t k = 0; k < corners; ++k, i += 3)
                primitive.corners.push_back({feedback.at(i) - kHalfView, feedback.at(i + 1) - kHalfView,
                                             (0.5 - feedback.at(i + 2)) * 2 * kHalfView});
            primitives.push_back(primitive);
        }
        return primitives;
    }
};

void ExpectNear(const Double3& actual, const Double3& expected, int k) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-3) << "corner " << k << ", " << i;
}

TEST_F(PlaneShapes, CircleOfAPickedSphereHas72Steps) {
    plane.m_bFaceVisible = plane.m_bOutlineVisible = plane.m_bMoveHandleVisible = false;
    plane.OnPicked(0);
    std::vector<Primitive> lines = PrimitivesOf([&] { plane.Draw(); });
    std::erase_if(lines, [](const Primitive& p) { return p.token == GL_POLYGON_TOKEN; });
    ASSERT_EQ(lines.size(), 1u + 72u) << "the axis, then the circle";
    for (int k = 0; k < 72; ++k) {
        const std::vector<Double3>& ends = lines[static_cast<std::size_t>(k) + 1].corners;
        // From the sphere at -y towards the normal.
        const auto corner = [](int step) {
            return Double3{0, -120 * std::cos(5 * step * kDegree), 120 * std::sin(5 * step * kDegree)};
        };
        ExpectNear(ends.at(0), corner(k), k);
        ExpectNear(ends.at(1), corner(k + 1), k);
    }
}

/// Which stack from the pole (0 to 10) and which slice a corner of a sphere of ten stacks and slices is; fails when it
/// is none. A pole has slice 0.
std::pair<int, int> StackAndSlice(const Double3& p, double radius) {
    const double stack = std::acos(std::clamp(p[2] / radius, -1.0, 1.0)) / (18 * kDegree);
    const double slice = std::atan2(p[0], p[1]) / (36 * kDegree);  // GLU counts from +y
    const auto nearest = static_cast<int>(std::lround(stack));
    const bool isPole = nearest == 0 || nearest == 10;
    EXPECT_NEAR(std::sqrt(Dot(p, p)), radius, 1e-3);
    EXPECT_NEAR(stack, nearest, isPole ? 0.1 : 0.01);
    if (isPole) return {nearest, 0};
    EXPECT_NEAR(slice, std::round(slice), 0.01);
    return {nearest, (static_cast<int>(std::lround(slice)) + 10) % 10};
}

TEST_F(PlaneShapes, SpheresHaveTenStacksAndTenSlices) {
    plane.m_bFaceVisible = plane.m_bOutlineVisible = plane.m_bMoveHandleVisible = false;
    plane.m_bCenterVisible = true;
    const auto drawn = PrimitivesOf([&] { plane.Draw(); }), offered = PrimitivesOf([&] { plane.DrawPickIds(0); });
    const double radius = plane.m_dRadius / 60;
    const auto expectSphere = [radius](const std::vector<Primitive>& primitives, const Double3& middle) {
        std::set<std::pair<int, int>> corners;
        for (const Double3& p : CornersAround(primitives, middle, 2 * radius)) corners.insert(StackAndSlice(p, radius));
        EXPECT_EQ(corners.size(), 9u * 10u + 2u);
    };
    for (const Double3& middle : {Double3{0, -120, 0}, {-120, 0, 0}}) {
        expectSphere(drawn, middle);
        expectSphere(offered, middle);
    }
    expectSphere(drawn, {0, 0, 0});
}

TEST_F(PlaneShapes, ArrowsHaveNineSidesAndFiveStacksInShaftAndHead) {
    plane.m_bRotateHandlesVisible = false;
    const auto primitives = PrimitivesOf([&] { plane.DrawPickIds(0); });
    const double radius = plane.m_dRadius, gap = radius / 60, stack = radius / 30 / 5;
    std::set<int> stacks, sides;
    for (const Double3& p : CornersAround(primitives, {120, -120, 0}, radius)) {
        // The lower arrow is turned about x.
        const double k = (std::abs(p[2]) - gap) / stack;
        const double side = std::atan2(p[0], p[2] < 0 ? -p[1] : p[1]) / (40 * kDegree);
        EXPECT_NEAR(k, std::round(k), 0.01);
        stacks.insert(static_cast<int>(std::lround(k)) * (p[2] < 0 ? -1 : 1) + (p[2] < 0 ? -1 : 0));
        if (std::hypot(p[0], p[1]) < 0.01) continue;  // the tip
        EXPECT_NEAR(side, std::round(side), 0.01);
        sides.insert((static_cast<int>(std::lround(side)) + 9) % 9);
    }
    EXPECT_EQ(stacks.size(), 2u * 11u);
    EXPECT_EQ(*stacks.begin(), -11);
    EXPECT_EQ(*stacks.rbegin(), 10);
    EXPECT_EQ(sides.size(), 9u);
}

}  // namespace
