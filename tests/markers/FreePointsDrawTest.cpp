// Frames with free points: places, colours, opacity, order. One unit of the scene is 24 pixels; a point of size s has a
// side of 48 s pixels.
#include <algorithm>
#include <limits>
#include <random>

#include "render/SceneFixture.h"

using namespace lighting;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

const Vec3 kRed{1, 0, 0}, kGreen{0, 1, 0}, kBlue{0, 0, 1}, kWhite{1, 1, 1};

class FreePointFrames : public SceneTest {
protected:
    FreePointFrames() { pane->SetPointCloudRenderPointSize(0.25f); }  // 12 pixels

    /// A set of one point.
    std::int32_t Import(const Vec3& at, const Vec3& color, float alpha = 1.0f) {
        return ImportAll({at}, {color}, alpha);
    }
    std::int32_t ImportAll(const std::vector<Vec3>& points, const std::vector<Vec3>& colors, float alpha = 1.0f) {
        const auto floats = [](const std::vector<Vec3>& from) {
            std::vector<float> to;
            for (const Vec3& v : from)
                for (const double value : v) to.push_back(static_cast<float>(value));
            return to;
        };
        return pane->ImportPoints(static_cast<std::int32_t>(points.size()), floats(points).data(),
                                  floats(colors).data(), alpha);
    }
    /// Of a point with that alpha over a colour.
    static Vec3 Over(const Vec3& color, double alpha, const Vec3& below) {
        return alpha * color + (1.0 - alpha) * below;
    }
    void ExpectCenter(const Vec3& color) { ExpectPixel(160, 120, color, 1.5); }
};

// ---- places

// At most one pixel each, at the centres of random pixels and at random depths: the nearest of a pixel is seen.
TEST_F(FreePointFrames, ShowTheNearestPointOfEachPixel) {
    pane->SetPointCloudRenderPointSize(1.0f / 48);
    std::mt19937 random(3);
    std::vector<Vec3> points, colors;
    std::vector<Vec3> expected(320 * 240, kBackground);
    std::vector<double> nearest(320 * 240, -100);
    std::vector<int> depths(20000);
    for (std::size_t i = 0; i < depths.size(); ++i) depths[i] = static_cast<int>(i);
    std::ranges::shuffle(depths, random);
    for (const int depth : depths) {
        const int x = static_cast<int>(random() % 320), y = static_cast<int>(random() % 60) + 90;
        const double z = depth * 0.001 - 10;
        points.push_back(camera.PointAt(x, y, {0, 0, z}, {0, 0, 1}));
        const auto channel = [&] { return static_cast<int>(random() % 256) / 255.0; };
        colors.push_back({channel(), channel(), channel()});
        const auto pixel = static_cast<std::size_t>(320 * y + x);
        if (z > nearest[pixel]) nearest[pixel] = z, expected[pixel] = colors.back();
    }
    ImportAll(points, colors);
    Frame();
    int wrong = 0;
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x)
            wrong += DistanceAt(x, y, expected[static_cast<std::size_t>(320 * y + x)]) > 1.0 ? 1 : 0;
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(PixelsThatAreNotBackground(), 10000);
}

TEST_F(FreePointFrames, AreSquaresOfTwiceTheSizeInTheScene) {
    Import({2, -1, 0}, kRed);  // at (208, 144), 12 pixels wide
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
    EXPECT_EQ(DrawnPixelsIn(202, 138, 214, 150), 144);
    Look(320, 240, 2.0);  // a unit has 12 pixels
    Frame();
    EXPECT_EQ(DrawnPixelsIn(181, 129, 187, 135), 36);
    EXPECT_EQ(PixelsThatAreNotBackground(), 36);
}

TEST_F(FreePointFrames, KeepTheirSizeInTheSceneOnScreensWithMorePixels) {
    Import({0, 0, 0}, kRed);
    pane->SetScale(2.0);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
}

TEST_F(FreePointFrames, AreTestedAgainstTheObjects) {
    const Square square{.center = {0, 0, 0}, .half = 2};
    Add(square);
    Import({-1, 0, -0.5}, kRed);
    Import({1, 0, 0.5}, kGreen);
    Frame();
    ExpectPixel(136, 120, FixedFunction(camera, square.At(camera, 136, 120, {1, 1, 1})));
    ExpectPixel(184, 120, kGreen);
}

TEST_F(FreePointFrames, AreNotLitAndNotShadowed) {
    Add({.center = {0, 0, 0}, .half = 4});
    Import({0, 0, 1}, {0.2, 0.6, 0.4});
    pane->SetReflection(1.0f, 0.5f);
    pane->SetShadowMode(1);
    Frame();
    ExpectCenter({0.2, 0.6, 0.4});
}

// The plane clips objects only.
TEST_F(FreePointFrames, AreNotClipped) {
    Add({.center = {0, 0, 0}, .half = 4});
    Import({2, 0, 1}, kGreen);
    Import({-2, 0, 1}, kRed);
    pane->m_bClipPlaneActive = 1;
    pane->m_clipPlane.SetCenter({0, 0, 0});
    pane->m_clipPlane.SetNormal({1, 0, 0});
    for (const std::int16_t shadows : std::initializer_list<std::int16_t>{0, 1}) {
        pane->SetShadowMode(shadows);
        Frame();
        ExpectBackground(136, 60);  // the object is clipped here
        EXPECT_GT(DistanceAt(184, 60, kBackground), 20);
        ExpectPixel(112, 120, kRed);
        ExpectPixel(208, 120, kGreen);
    }
}

TEST_F(FreePointFrames, AreDrawnWithTheSamplesOfTheFrame) {
    pane->RecreateOpenglContext(3, 3, 4);
    if (!pane.window->Exists()) GTEST_SKIP() << "the driver has no samples";
    Look(320, 240);
    Import({0, 0, 0}, kRed);
    Import({3, 0, 0}, kGreen, 0.5f);
    Frame();
    ExpectCenter(kRed);
    ExpectPixel(232, 120, Over(kGreen, 0.5, kBackground), 1.5);
    // A disc or a square: by the driver. Both have a side of 12 pixels.
    EXPECT_GE(DrawnPixelsIn(150, 110, 170, 130), 100);
    EXPECT_LE(DrawnPixelsIn(150, 110, 170, 130), 169);
}

TEST_F(FreePointFrames, AreMissingInScreenshots) {
    Add({.center = {0, 0, 0}, .half = 2});
    Import({0, 0, 1}, kGreen);
    std::vector<std::uint32_t> shot(2048 * 2048);
    pane->CaptureScreenShot(shot.data());
    EXPECT_EQ(std::ranges::count(shot, 0xFF00FF00u), 0);
    Frame();
    ExpectCenter(kGreen);
}

// ---- opacity

struct Opacity {
    const char* name;
    float alpha;
    double expected;
};
void PrintTo(const Opacity& row, std::ostream* out) { *out << row.name; }

class FreePointOpacity : public FreePointFrames, public testing::WithParamInterface<Opacity> {};

INSTANTIATE_TEST_SUITE_P(Table, FreePointOpacity,
                         testing::Values(Opacity{"One", 1.0f, 1}, Opacity{"Limit", 0.99f, 1},
                                         Opacity{"BelowTheLimit", 0.98f, 0.98}, Opacity{"Half", 0.5f, 0.5},
                                         Opacity{"Zero", 0.0f, 0}, Opacity{"Negative", -3.0f, 0},
                                         Opacity{"AboveOne", 1.5f, 1}, Opacity{"Infinite", kInf, 1},
                                         Opacity{"NotANumber", kNan, 1}),
                         [](const auto& row) { return row.param.name; });

TEST_P(FreePointOpacity, BlendsTheSetAndLeavesTheOthers) {
    Import({-3, 0, 0}, kRed, 0.5f);
    Import({0, 0, 0}, kWhite, GetParam().alpha);
    Import({3, 0, 0}, kGreen);
    Import({3, 2, 0}, kBlue, 0.25f);
    Frame();
    ExpectCenter(Over(kWhite, GetParam().expected, kBackground));
    ExpectPixel(88, 120, Over(kRed, 0.5, kBackground), 1.5);
    ExpectPixel(232, 120, kGreen, 1.5);
    ExpectPixel(232, 72, Over(kBlue, 0.25, kBackground), 1.5);
}

// Two opaque sets and a translucent one in front of them, in all orders of import.
TEST_F(FreePointFrames, BlendTranslucentSetsOverOpaqueOnesInAnyOrderOfImport) {
    std::vector<int> order{0, 1, 2};
    do {
        for (const int which : order) {
            if (which == 0) Import({0, 0, -1}, kBlue);
            if (which == 1) Import({0, 0, 0}, kRed, 0.99f);
            if (which == 2) Import({0, 0, 1}, kGreen, 0.5f);
        }
        Frame();
        ExpectCenter(Over(kGreen, 0.5, kRed));
        for (int id = 0; id < 3; ++id) pane->DeletePoints(id);
    } while (std::ranges::next_permutation(order).found);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

TEST_F(FreePointFrames, HideATranslucentSetBehindAnOpaqueOne) {
    Import({0, 0, 0}, kGreen, 0.5f);
    Import({0, 0, 1}, kRed);
    Frame();
    ExpectCenter(kRed);
}

// A translucent point writes its depth: one that is drawn later behind it is hidden, so that the order is seen.
TEST_F(FreePointFrames, DrawTranslucentSetsFromTheOldestToTheNewest) {
    const std::int32_t back = Import({0, 0, 0}, kRed, 0.5f);
    Import({0, 0, 1}, kGreen, 0.5f);
    Frame();
    ExpectCenter(Over(kGreen, 0.5, Over(kRed, 0.5, kBackground)));
    pane->DeletePoints(back);
    EXPECT_EQ(Import({0, 0, 0}, kRed, 0.5f), back) << "the same id, but now the newest";
    Frame();
    ExpectCenter(Over(kGreen, 0.5, kBackground));
}

TEST_F(FreePointFrames, OfManySetsFollowTheOrderOfTheirImports) {
    Vec3 expected = kBackground;
    for (int i = 0; i < 300; ++i) {  // more than the buckets of the map
        const Vec3 color{i % 2 == 0 ? 1.0 : 0.0, i % 3 == 0 ? 1.0 : 0.0, i % 5 == 0 ? 1.0 : 0.0};
        Import({0, 0, 0.01 * i}, color, 0.5f);
        expected = Over(color, 0.5, expected);
    }
    Frame();
    ExpectPixel(160, 120, expected, 2.0);
}

// ---- what is left out

TEST_F(FreePointFrames, LeaveOutHiddenAndEmptySets) {
    pane->ImportPoints(0, nullptr, nullptr, 1.0f);
    const std::int32_t hidden = Import({0, 0, 2}, kBlue);
    pane->ImportPoints(0, nullptr, nullptr, 0.5f);
    Import({0, 0, 0}, kRed);
    const std::int32_t translucent = Import({0, 0, 1}, kGreen, 0.5f);
    pane->SetPointsVisibility(hidden, 0);
    Frame();
    ExpectCenter(Over(kGreen, 0.5, kRed));
    pane->SetPointsVisibility(translucent, 0);
    Frame();
    ExpectCenter(kRed);
    pane->SetPointsVisibility(hidden, -1);
    Frame();
    ExpectCenter(kBlue);
}

TEST_F(FreePointFrames, DrawTheFinitePointsOfASetAsWithoutTheOthers) {
    const std::vector<Vec3> finite{{-2, 0, 0}, {0, 0, 0}, {2, 1, 0}};
    const std::vector<Vec3> colors{kRed, kGreen, kBlue};
    const std::int32_t id = ImportAll(finite, colors);
    Frame();
    const auto expected = picture.pixels;
    pane->DeletePoints(id);
    for (const float odd : {kNan, kInf, -kInf})
        ImportAll({finite[0], {odd, 0, 0}, finite[1], {0, odd, 0}, finite[2], {0, 0, odd}, {odd, odd, odd}},
                  {colors[0], kWhite, colors[1], kWhite, colors[2], kWhite, kWhite});
    Frame();
    EXPECT_EQ(picture.pixels, expected);
}

TEST_F(FreePointFrames, WithAnOddPointSizeDisturbNothing) {
    const Square square{.center = {-4, -3, 0}, .half = 1};
    Add(square);
    Import({0, 0, 0}, kRed);
    Import({1, 0, 0}, kGreen, 0.5f);
    Frame();
    const auto expected = picture.pixels;
    for (const float size : {0.0f, -1.0f, kNan, kInf, -kInf, 1e6f, 1e30f}) {
        pane->SetPointCloudRenderPointSize(size);
        Frame();  // no OpenGL error
        pane->SetPointCloudRenderPointSize(0.25f);
        Frame();
        EXPECT_EQ(picture.pixels, expected) << size;
    }
}

}  // namespace
