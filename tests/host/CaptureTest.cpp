// The screenshot of fixed size, without a display.
#include <gtest/gtest.h>

#include <cmath>

#include "Headless.h"
#include "ScreenShot.h"
#include "host/HeadlessRuns.h"
#include "host/ScanFiles.h"

namespace {

constexpr unsigned kBackground = 0x191932;  // 0xRRGGBB
constexpr int kSide = 2048;

class Capture : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        WriteXdt(m_folder / "a.xdt", 11, 11);
        m_options.picturePath = m_folder / "a.png";
        m_options.files = {m_folder / "a.xdt"};
    }
    [[nodiscard]] Png Taken() const {
        const Printed err;
        EXPECT_EQ(RunCapture(m_options, err), kExitGood) << err.Text();
        return ReadPng(m_options.picturePath);
    }
    /// Pixels from the picture's middle to an edge of the flat 11 x 11 grid, seen from above. It is 10 wide and 0.02
    /// thick; its box is widened by 2 to each side, and the diagonal of that fills the picture.
    [[nodiscard]] static double HalfWidthPx() {
        const double diagonal = std::sqrt(14.0 * 14.0 + 14.0 * 14.0 + 4.02 * 4.02);
        return 5.0 / diagonal * kSide;
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};

TEST_F(Capture, HasTheFixedSizeAndShowsTheSceneInItsWidenedBox) {
    m_options.width = 300;  // of the window: must not matter
    m_options.height = 111;
    const Png png = Taken();
    ASSERT_EQ(png.width, kSide);
    ASSERT_EQ(png.height, kSide);
    const int middle = kSide / 2, inside = static_cast<int>(HalfWidthPx()) - 3, outside = inside + 6;
    EXPECT_NE(png.At(middle, middle), kBackground);
    for (const int sign : {-1, 1}) {
        EXPECT_NE(png.At(middle + sign * inside, middle), kBackground) << sign;
        EXPECT_NE(png.At(middle, middle + sign * inside), kBackground) << sign;
        EXPECT_EQ(png.At(middle + sign * outside, middle), kBackground) << sign;
        EXPECT_EQ(png.At(middle, middle + sign * outside), kBackground) << sign;
    }
    for (const auto& [x, y] : {std::pair{0, 0}, {kSide - 1, 0}, {0, kSide - 1}, {kSide - 1, kSide - 1}})
        EXPECT_EQ(png.At(x, y), kBackground) << x << ", " << y;
}

TEST_F(Capture, MagnifiesByTheZoom) {
    m_options.zoom = 0.5f;
    const Png png = Taken();
    const int middle = kSide / 2, inside = static_cast<int>(HalfWidthPx() / 2) - 3;
    EXPECT_NE(png.At(middle + inside, middle), kBackground);
    EXPECT_EQ(png.At(middle + inside + 6, middle), kBackground);
}

TEST_F(Capture, ShowsTheSceneInTheChosenView) {
    m_options.view = KV_ScenePane::ViewFromMinusYZUp;  // along the grid, which is in z = 0
    EXPECT_EQ(Taken().At(kSide / 2, kSide / 4), kBackground);
}

TEST_F(Capture, ShowsTheGoodFilesAndFailsWhenOneIsBad) {
    m_options.files.push_back(m_folder / "none.pax");
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + (m_folder / "none.pax") + ": there is no such file: check its name and its folder\n");
    EXPECT_NE(ReadPng(m_options.picturePath).At(kSide / 2, kSide / 2), kBackground);
}

TEST_F(Capture, KeepsAnOlderPictureWhenThereIsNoObject) {
    WriteBytes(m_options.picturePath, {std::byte{7}});
    m_options.files = {m_folder / "none.pax"};
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_NE(err.Text().find("a.png: not written, there is nothing to show\n"), std::string::npos) << err.Text();
    EXPECT_EQ(ReadBytes(m_options.picturePath), std::vector{std::byte{7}});
}

TEST_F(Capture, ReportsAPictureThatCannotBeWritten) {
    m_options.picturePath = m_folder / "no/a.png";
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_EQ(
        err.Text(),
        "scenepane: " + (m_folder / "no/a.png") +
            ": the file could not be replaced: No such file or directory: check the folder and its permissions\n");
}

TEST(TakeScreenShot, HasTheBackgroundColoursInTheCornersOfTheWindow) {
    KV_ScenePane::WindowRequest request;
    request.width = 90;
    request.height = 40;
    std::string reason;
    const auto pane = CreateScenePane(request, &reason);
    ASSERT_TRUE(pane) << reason;
    pane->Methods().SetBackgroundColorsFourCorners(0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF);
    const KV_ScenePane::Picture picture = TakeScreenShot(pane->Methods());
    ASSERT_EQ(picture.width, kSide);
    ASSERT_EQ(picture.height, kSide);
    ASSERT_EQ(picture.pixels.size(), static_cast<std::size_t>(kSide) * kSide);
    const auto red = [&](std::size_t i) { return picture.pixels[i] >> 16 & 0xFF; };
    const auto green = [&](std::size_t i) { return picture.pixels[i] >> 8 & 0xFF; };
    const auto blue = [&](std::size_t i) { return picture.pixels[i] & 0xFF; };
    const std::size_t topRight = kSide - 1, bottomRight = picture.pixels.size() - 1,
                      bottomLeft = bottomRight - topRight;
    EXPECT_GT(red(0), 250u);
    EXPECT_LT(green(0) + blue(0), 5u);
    EXPECT_GT(green(topRight), 250u);
    EXPECT_LT(red(topRight) + blue(topRight), 5u);
    EXPECT_GT(blue(bottomLeft), 250u);
    EXPECT_LT(red(bottomLeft) + green(bottomLeft), 5u);
    EXPECT_GT(std::min({red(bottomRight), green(bottomRight), blue(bottomRight)}), 250u);
}

TEST(TakeScreenShot, DoesNotChangeTheView) {
    KV_ScenePane::WindowRequest request;
    std::string reason;
    const auto pane = CreateScenePane(request, &reason);
    ASSERT_TRUE(pane) << reason;
    KV_ScenePane::_DKV_ScenePane& methods = pane->Methods();
    ASSERT_TRUE(methods.SetViewParams(0, 1, 0, -1, 0, 0, 3, 4, 5, 2, 0));
    (void)TakeScreenShot(methods);
    float v[10];
    methods.GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
    const float expected[10] = {0, 1, 0, -1, 0, 0, 3, 4, 5, 2};
    for (int i = 0; i < 10; ++i) EXPECT_EQ(v[i], expected[i]) << i;
}

}  // namespace
