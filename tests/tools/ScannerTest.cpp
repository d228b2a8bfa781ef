// The measurements of the scanner, compared with the formula of the sphere and with single triangles.
#include "simulate-scans/Scanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "simulate-scans/Shapes.h"

namespace simulate {
namespace {

const RayCaster& Sphere() {
    static const RayCaster caster(MakeShape("sphere"));
    return caster;
}

ScannerSettings SphereSettings() {
    ScannerSettings settings;
    settings.width = 160;
    settings.height = 120;
    settings.noise = 0;
    settings.dropout = 0;
    settings.objectRadius = kSphereRadius;
    return settings;
}

Vec3 PointOf(const ScanGrid& grid, std::size_t pixel) {
    return {grid.points[3 * pixel], grid.points[3 * pixel + 1], grid.points[3 * pixel + 2]};
}

TEST(PosesAround, AreRigidAndLookAtTheOrigin) {
    for (const int count : {1, 2, 5, 16}) {
        const auto poses = PosesAround(count, 400);
        ASSERT_EQ(poses.size(), static_cast<std::size_t>(count));
        for (const Transform& pose : poses) {
            const Vec3 x = TransformDirection(pose, {1, 0, 0}), y = TransformDirection(pose, {0, 1, 0});
            const Vec3 z = TransformDirection(pose, {0, 0, 1});
            for (const Vec3& axis : {x, y, z}) EXPECT_NEAR(Length(axis), 1, 1e-6);
            EXPECT_NEAR(Length(Cross(x, y) - z), 0, 1e-6);
            EXPECT_NEAR(Length(TransformPoint(pose, {0, 0, -400})), 0, 1e-3);
            EXPECT_GT(y.y, 0) << "the picture is upright";
            EXPECT_EQ(pose[12] + pose[13] + pose[14], 0);
            EXPECT_EQ(pose[15], 1);
        }
    }
}

TEST(PosesAround, BeginAtTheFrontFromTwentyDegreesAbove) {
    const Transform pose = PosesAround(6, 100).front();
    EXPECT_NEAR(pose[3], 0, 1e-4);
    EXPECT_NEAR(pose[7], 100 * std::sin(20 * std::numbers::pi / 180), 1e-3);
    EXPECT_NEAR(pose[11], 100 * std::cos(20 * std::numbers::pi / 180), 1e-3);
}

TEST(PosesAround, GoOnceAround) {
    const auto poses = PosesAround(4, 100);
    EXPECT_GT(poses[1][3], 80);    // from +x
    EXPECT_LT(poses[2][11], -50);  // from the back
    EXPECT_LT(poses[3][3], -80);   // from -x
}

TEST(PixelRay, RowsGoDownAndColumnsRight) {
    for (const bool parallel : {false, true}) {
        ScannerSettings settings = SphereSettings();
        settings.parallel = parallel;
        const auto end = [&](int column, int row) {
            const Ray ray = PixelRay(settings, column, row);
            return ray.origin + ray.direction * 400;
        };
        EXPECT_LT(end(0, 0).x, end(159, 0).x);
        EXPECT_GT(end(0, 0).y, end(0, 119).y);
        EXPECT_LT(end(0, 0).z, -300);
        EXPECT_NEAR(end(79, 59).x, -end(80, 60).x, 1e-3);
        EXPECT_NEAR(end(79, 59).y, -end(80, 60).y, 1e-3);
    }
}

TEST(MeasureFrom, PointsAreOnTheSphereInTheWorldFrame) {
    for (const bool parallel : {false, true}) {
        ScannerSettings settings = SphereSettings();
        settings.parallel = parallel;
        for (const Transform& pose : PosesAround(5, settings.distance)) {
            const ScanGrid grid = MeasureFrom(Sphere(), pose, settings, 1, 1);
            ASSERT_GT(grid.MeasuredCount(), 5'000u);
            for (std::size_t i = 0; i < grid.PixelCount(); ++i) {
                if (!grid.IsMeasured(i)) continue;
                ASSERT_NEAR(Length(TransformPoint(pose, PointOf(grid, i))), kSphereRadius, 0.006f);  // facets
            }
        }
    }
}

TEST(MeasureFrom, TheObjectFillsThePicture) {
    const ScanGrid grid = MeasureFrom(Sphere(), PosesAround(1, 400)[0], SphereSettings(), 1, 1);
    // The field of view is 5 % larger than the sphere. The surface that is seen at less than 75 degrees is a disc of a
    // little less than (1 / 1.05)^2 pi / 4 of a square of 120 pixels.
    EXPECT_NEAR(static_cast<double>(grid.MeasuredCount()), 0.66 * 120 * 120, 0.03 * 120 * 120);
}

TEST(MeasureFrom, APixelThatWasNotMeasuredIsZeroWithConfidenceMinusOneAndClass250) {
    ScannerSettings settings = SphereSettings();
    settings.colors = true;
    settings.dropout = 0.2f;
    const ScanGrid grid = MeasureFrom(Sphere(), PosesAround(1, 400)[0], settings, 1, 1);
    std::size_t measured = 0;
    for (std::size_t i = 0; i < grid.PixelCount(); ++i) {
        if (grid.confidence[i] >= 0) {
            ++measured;
            EXPECT_LT(grid.classes[i], 240);
            EXPECT_EQ(grid.colors[i] >> 24, 0xFFu);
            EXPECT_LT(PointOf(grid, i).z, -300);
        } else {
            EXPECT_EQ(PointOf(grid, i), (Vec3{0, 0, 0}));
            EXPECT_EQ(grid.confidence[i], -1.0f);
            EXPECT_EQ(grid.classes[i], 250);
            EXPECT_EQ(grid.colors[i], 0u);
        }
    }
    EXPECT_EQ(measured, grid.MeasuredCount());
    EXPECT_GT(measured, 1000u);
    EXPECT_FALSE(grid.classes[0] < 240) << "the corner of the picture is background";
}

TEST(MeasureFrom, NoiseHasTheRequestedDeviationAlongTheRayOnly) {
    ScannerSettings settings = SphereSettings();
    const Transform pose = PosesAround(1, 400)[0];
    const ScanGrid clean = MeasureFrom(Sphere(), pose, settings, 1, 1);
    settings.noise = 0.25f;
    const ScanGrid noisy = MeasureFrom(Sphere(), pose, settings, 1, 1);
    double sum = 0, squares = 0, count = 0;
    for (std::size_t i = 0; i < clean.PixelCount(); ++i) {
        ASSERT_EQ(clean.IsMeasured(i), noisy.IsMeasured(i));
        if (!clean.IsMeasured(i)) continue;
        const Vec3 direction = Unit(PointOf(clean, i)), away = PointOf(noisy, i) - PointOf(clean, i);
        const float along = Dot(away, direction);
        ASSERT_NEAR(Length(away - direction * along), 0, 1e-3);
        sum += double{along};
        squares += double{along} * double{along};
        ++count;
    }
    EXPECT_NEAR(sum / count, 0, 5 * 0.25 / std::sqrt(count));
    EXPECT_NEAR(std::sqrt(squares / count), 0.25, 5 * 0.25 / std::sqrt(2 * count));
}

TEST(MeasureFrom, DropoutsRemoveTheRequestedFraction) {
    ScannerSettings settings = SphereSettings();
    const Transform pose = PosesAround(1, 400)[0];
    const auto all = static_cast<double>(MeasureFrom(Sphere(), pose, settings, 1, 1).MeasuredCount());
    for (const float dropout : {0.0f, 0.05f, 0.5f, 1.0f}) {
        settings.dropout = dropout;
        const auto left = static_cast<double>(MeasureFrom(Sphere(), pose, settings, 1, 1).MeasuredCount());
        EXPECT_NEAR(left, all * (1 - double{dropout}),
                    5 * std::sqrt(all * double{dropout} * (1 - double{dropout})) + 0.1);
    }
}

/// Cosine of the angle between the ray and the normal of the exact sphere.
float CosineAt(Vec3 pointInSensor, Vec3 centreInSensor) {
    return -Dot(Unit(pointInSensor), Unit(pointInSensor - centreInSensor));
}

TEST(MeasureFrom, ConfidenceFallsWithTheAngleOfIncidence) {
    const ScanGrid grid = MeasureFrom(Sphere(), PosesAround(1, 400)[0], SphereSettings(), 1, 1);
    struct Seen {
        float cosine, confidence;
    };
    std::vector<Seen> seen;
    for (std::size_t i = 0; i < grid.PixelCount(); ++i)
        if (grid.IsMeasured(i)) seen.push_back({CosineAt(PointOf(grid, i), {0, 0, -400}), grid.confidence[i]});
    std::sort(seen.begin(), seen.end(), [](const Seen& a, const Seen& b) { return a.cosine < b.cosine; });
    // The normals of the facets differ by up to 1 degree from the sphere; larger differences must be visible.
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const auto next = std::find_if(seen.begin() + static_cast<std::ptrdiff_t>(i), seen.end(),
                                       [&](const Seen& s) { return s.cosine > seen[i].cosine + 0.04f; });
        if (next == seen.end()) break;
        ASSERT_GT(next->confidence, seen[i].confidence);
    }
    EXPECT_LT(seen.front().confidence, 0.05f);
    EXPECT_GT(seen.back().confidence, 0.98f);
}

TEST(MeasureFrom, ConfidenceIsOneAtNormalIncidenceAndZeroAtTheLargestAngle) {
    // One large triangle, inclined by the given angle, under parallel rays.
    const auto confidenceAt = [](double angleDeg) {
        const double angle = angleDeg * std::numbers::pi / 180;
        const auto c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
        TriangleMesh mesh;
        mesh.AddTriangle(Vec3{-c, -1, s} * 200, Vec3{c, -1, -s} * 200, {0, 400, 0});
        ScannerSettings settings = SphereSettings();
        settings.parallel = true;
        settings.maxIncidenceDeg = 60;
        const Transform pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 400, 0, 0, 0, 1};
        return MeasureFrom(RayCaster(mesh), pose, settings, 1, 1).confidence[60 * 160 + 80];
    };
    EXPECT_NEAR(confidenceAt(0), 1, 1e-5);
    EXPECT_NEAR(confidenceAt(45), (std::sqrt(0.5) - 0.5) / 0.5, 1e-4);
    EXPECT_NEAR(confidenceAt(59.9), 0, 0.01);
    EXPECT_GE(confidenceAt(59.9), 0);
    EXPECT_EQ(confidenceAt(60.1), -1);
    EXPECT_EQ(confidenceAt(80), -1);
}

TEST(MeasureFrom, ASurfaceSeenFromBehindIsNotMeasured) {
    TriangleMesh mesh;
    mesh.AddTriangle({-200, -200, 0}, {0, 400, 0}, {200, -200, 0});  // its normal is along -z
    const Transform pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 400, 0, 0, 0, 1};
    EXPECT_EQ(MeasureFrom(RayCaster(mesh), pose, SphereSettings(), 1, 1).MeasuredCount(), 0u);
}

TEST(MeasureFrom, ClassesAreTheSidesOfTheObject) {
    const Transform pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 400, 0, 0, 0, 1};
    const ScanGrid grid = MeasureFrom(Sphere(), pose, SphereSettings(), 1, 1);
    const auto classAt = [&](int column, int row) {
        return grid.classes[static_cast<std::size_t>(row * 160 + column)];
    };
    EXPECT_EQ(classAt(80, 60), 50);   // +z
    EXPECT_EQ(classAt(130, 60), 10);  // +x
    EXPECT_EQ(classAt(30, 60), 0);    // -x
    EXPECT_EQ(classAt(80, 10), 30);   // +y
    EXPECT_EQ(classAt(80, 110), 20);  // -y
}

TEST(MeasureFrom, SeedAndScanNumberChangeTheNoise) {
    ScannerSettings settings = SphereSettings();
    settings.noise = 0.1f;
    const Transform pose = PosesAround(1, 400)[0];
    const auto base = MeasureFrom(Sphere(), pose, settings, 1, 1).points;
    EXPECT_NE(base, MeasureFrom(Sphere(), pose, settings, 2, 1).points);
    settings.seed = 2;
    EXPECT_NE(base, MeasureFrom(Sphere(), pose, settings, 1, 1).points);
}

}  // namespace
}  // namespace simulate
