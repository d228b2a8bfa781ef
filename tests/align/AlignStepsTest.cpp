// Steps in windows of odd sizes, to far pixels, and a thousand of them.
#include <limits>
#include <random>
#include <string>

#include "align/HandScene.h"

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;

constexpr std::int16_t kModes[] = {0, 1, 2, 3, 9};  ///< and one that no rotation has

// ---- odd sizes and far pixels

TEST(OddWindows, TurnByTheirOwnSides) {
    for (const auto& [width, height] : {std::pair{64, 480}, {480, 64}, {33, 33}, {1, 1}}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        HandScene scene(width, height);
        scene.Begin();
        scene.Dialog()->OnMoveDrag(0, 0);
        scene.Dialog()->OnMoveDrag(12, -7);
        scene.Dialog()->OnMoveEnd(12, -7);
        scene.ExpectShift(12, -7);
        scene.Dialog()->OnRotateDrag(0, 0);
        scene.Dialog()->OnRotateDrag(3, 1);
        scene.ExpectRotation(3, 3, 1);
        scene.Check(1e-2);  // up to 60 units per pixel: points of the mouse far outside the window
    }
}

TEST(WindowWithoutArea, RotatesNothing) {
    for (const WindowSize size : {WindowSize{0, 0}, WindowSize{640, 0}, WindowSize{0, 480}})
        for (const std::int16_t mode : kModes) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", mode " << mode);
            HandScene scene;
            scene.pane.SetRotationMode(mode);
            scene.Begin();
            scene.control.window->claimedSize = size;
            scene.Dialog()->OnRotateDrag(10, 10);
            scene.Dialog()->OnRotateDrag(size.width == 0 ? 20 : 10, size.width == 0 ? 10 : 20);
            scene.control.window->claimedSize.reset();
            for (const Vertex& v : scene.pane.m_vpMeshes[1]->m_vVertices)
                EXPECT_TRUE(std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z));
            const bool sideIsKnown = (mode == 0 && size.height != 0) || (mode == 1 && size.width != 0);
            if (!sideIsKnown) scene.Check(1e-5);
        }
}

TEST(FarPixels, LeaveFiniteTransforms) {
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min(),
                           kMax = std::numeric_limits<std::int32_t>::max();
    for (const std::int16_t mode : kModes) {
        SCOPED_TRACE(mode);
        HandScene scene;
        scene.pane.SetRotationMode(mode);
        scene.Begin();
        for (const std::uint32_t button : {kMouseLeft, kMouseRight})
            scene.Drag(button, {{kMin, kMax}, {kMax, kMin}, {0, 0}, {kMin, kMin}, {kMax, kMax}, {320, 240}});
        for (const std::int16_t idx : HandScene::kMoving) {
            const Pose pose = PoseOfScan(scene.pane, idx);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(Length(pose.columns[i]), 1, 1e-6);
                EXPECT_TRUE(std::isfinite(pose.offset[i]));
            }
        }
    }
}

// ---- many steps

/// The distance of a float of this size to the next one.
double UlpOf(double size) {
    const auto f = static_cast<float>(size);
    return static_cast<double>(std::nextafter(f, std::numeric_limits<float>::infinity())) - static_cast<double>(f);
}

double LargestCoordinate(const HandScene& scene) {
    double largest = 0;
    for (const auto& mesh : scene.pane.m_vpMeshes)
        for (const Vertex& v : mesh->m_vVertices)
            largest = std::max<double>({largest, std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    return largest;
}

// A step rounds each coordinate three times: R v and t to a float, and their sum. t = p - R p and a move are at most
// twice the size of the coordinates, so each rounding is at most one distance between floats of that size, over all
// three coordinates 3 sqrt(3) < 5.2 of them. Rotations keep the error of the steps before.
TEST(ThousandRandomSteps, KeepTheTransformOrthonormalAndTheVerticesWithIt) {
    std::mt19937 random(20240607);
    const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    HandScene scene;
    scene.Begin();
    CAlignInteractiveDlg& dialog = *scene.Dialog();
    double bound = 0, reference = 0, largest = 0;
    for (int step = 0; step < 1000; ++step) {
        const auto mode = static_cast<std::int16_t>(pick(0, 3));
        const int x = pick(0, 640), y = pick(0, 480), dx = pick(-60, 60), dy = pick(-60, 60);
        scene.pane.SetRotationMode(mode);
        if (pick(0, 2) == 0) {
            // Towards the middle of the window, so that the objects stay in the scene.
            const Float3 pivot = dialog.m_fPivot;
            double pivotX = 0, pivotY = 0;
            scene.pane.ProjectPointDouble(pivot[0], pivot[1], pivot[2], &pivotX, &pivotY);
            const int sx = pivotX > 320 ? -std::abs(dx) : std::abs(dx);
            const int sy = pivotY > 240 ? -std::abs(dy) : std::abs(dy);
            dialog.OnMoveDrag(x, y);
            dialog.OnMoveEnd(x + sx, y + sy);
            if (sx != 0 || sy != 0) scene.ExpectShift(sx, sy);
        } else {
            dialog.OnRotateDrag(x, y);
            dialog.OnRotateEnd(x + dx, y + dy);
            if (dx != 0 || dy != 0) scene.ExpectRotation(mode, dx, dy);
        }
        if (step % 50 == 0) scene.pane.SetViewMode(static_cast<std::int16_t>(step / 50 % 8));
        largest = std::max(largest, LargestCoordinate(scene));
        bound += 5.2 * UlpOf(2 * largest);
        // Of the test's own pose: the angle, the axis and the points of the mouse are floats. The axis is the
        // difference of two points that are rounded, over a travel of at least one pixel.
        reference += 5.2 * UlpOf(2 * largest) * (1 + 2 * largest / HandCamera(scene.pane).unitsPerPixel / 480);
    }
    ASSERT_LT(largest, 256) << "the objects left the scene";
    double worst = 0, worstPose = 0;
    for (const std::int16_t idx : HandScene::kMoving) {
        const auto i = static_cast<std::size_t>(idx);
        const CACADQTrafo& trafo = scene.pane.m_vpMeshes[i]->m_Trafo;
        Pose exact;
        for (std::size_t c = 0; c < 3; ++c)
            for (std::size_t row = 0; row < 3; ++row) exact.columns[c][row] = trafo.m_dRotation[3 * c + row];
        exact.offset = {trafo.m_dTranslation[0], trafo.m_dTranslation[1], trafo.m_dTranslation[2]};
        const Pose asFloats = PoseOfScan(scene.pane, idx);
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t b = 0; b < 3; ++b) {
                // The quaternion is a product of a thousand whose lengths differ from 1 by some units in the last
                // place.
                EXPECT_NEAR(Dot(exact.columns[a], exact.columns[b]), a == b, 1000 * 16 * 2.3e-16);
                // Elements rounded to float: 2 sqrt(3) halves of the distance of floats below 1.
                EXPECT_NEAR(Dot(asFloats.columns[a], asFloats.columns[b]), a == b, 1.1e-7);
            }
        const auto original = MakeScan(0);
        for (std::size_t v = 0; v < original->m_vVertices.size(); ++v) {
            const Vertex& from = original->m_vVertices[v];
            const Vertex& to = scene.pane.m_vpMeshes[i]->m_vVertices[v];
            worst = std::max(worst, Length(exact({from.x, from.y, from.z}) - Double3{to.x, to.y, to.z}));
            EXPECT_LT(Length(exact.Rotated({from.nx, from.ny, from.nz}) - Double3{to.nx, to.ny, to.nz}), 1000 * 1.1e-7);
        }
        worstPose = std::max(worstPose, Difference(exact, scene.expected[i]));
    }
    EXPECT_LT(worst, bound);
    EXPECT_LT(worstPose, reference);
    RecordProperty("vertices off the transform", std::to_string(worst));
    RecordProperty("bound", std::to_string(bound));
    std::cout << "vertices off the transform by " << worst << " at most, bound " << bound
              << "; transform off the test's " << worstPose << ", bound " << reference << "; coordinates up to "
              << largest << '\n';
}

}  // namespace
