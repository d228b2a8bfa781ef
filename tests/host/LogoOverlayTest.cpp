#include "LogoOverlay.h"

#include <gtest/gtest.h>

#include <QImage>
#include <ostream>

#include "KV_ScenePane/ScenePane.h"
#include "host/QtUnderXvfb.h"

namespace {

// ---- places in an area of 101 x 67 pixels for an image of 6 x 4, margin 5: where its top left corner must be

struct Corner {
    const char* name;
    LogoAnchor anchor;
    double x, y;
};
void PrintTo(const Corner& row, std::ostream* out) { *out << row.name; }

const Corner kCorners[] = {
    {"TopLeft", LogoAnchor::TopLeft, 5, 5},           {"Top", LogoAnchor::Top, 47.5, 5},
    {"TopRight", LogoAnchor::TopRight, 90, 5},        {"Left", LogoAnchor::Left, 5, 31.5},
    {"Centre", LogoAnchor::Centre, 47.5, 31.5},       {"Right", LogoAnchor::Right, 90, 31.5},
    {"BottomLeft", LogoAnchor::BottomLeft, 5, 58},    {"Bottom", LogoAnchor::Bottom, 47.5, 58},
    {"BottomRight", LogoAnchor::BottomRight, 90, 58},
};
class LogoPlace : public testing::TestWithParam<Corner> {};

TEST_P(LogoPlace, KeepsTheMarginFromItsEdges) {
    const OverlayPlace place = PlaceOf(GetParam().anchor, 5);
    EXPECT_EQ(101 * place.relPosX + 6 * place.relOffsetX + place.absOffsetX, GetParam().x);
    EXPECT_EQ(67 * place.relPosY + 4 * place.relOffsetY + place.absOffsetY, GetParam().y);
}
INSTANTIATE_TEST_SUITE_P(Logo, LogoPlace, testing::ValuesIn(kCorners), [](const auto& row) { return row.param.name; });

// ---- on an off-screen viewer of 100 x 60 with a black background; the logo is 6 x 4, its top row red, the rest green

class LogoOverlayTest : public testing::Test {
protected:
    void SetUp() override {
        KV_ScenePane::WindowRequest request;
        request.width = 100;
        request.height = 60;
        std::string reason;
        m_pane = CreateScenePane(request, &reason);
        ASSERT_TRUE(m_pane) << reason;
        m_pane->Methods().SetBackgroundColors(0, 0);
        QImage image(6, 4, QImage::Format_ARGB32);
        image.fill(qRgb(0, 255, 0));
        for (int x = 0; x < 6; ++x) image.setPixel(x, 0, qRgb(255, 0, 0));
        m_image = LogoOfImage(image);
    }
    /// Left, top, right and bottom of all that is not black; right and bottom are the first pixels outside.
    [[nodiscard]] std::array<int, 4> Drawn() {
        EXPECT_TRUE(m_pane->CapturePicture(&m_picture));
        std::array<int, 4> box{100, 60, 0, 0};
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 100; ++x) {
                if (At(x, y) == 0) continue;
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1), std::max(box[3], y + 1)};
            }
        }
        return box;
    }
    /// 0xRRGGBB of the picture that Drawn() captured.
    [[nodiscard]] std::uint32_t At(int x, int y) const {
        return m_picture.pixels.at(static_cast<std::size_t>(y * 100 + x)) & 0xFFFFFF;
    }
    /// The number of overlays in the viewer: the index of another one, of one transparent pixel.
    [[nodiscard]] int CountOverlays() {
        const std::uint8_t pixel[4] = {0, 0, 0, 0};
        return m_pane->Methods().AddOverlayData(pixel, 1, 1, 0, 0, 0, 0, 0, 0);
    }

    static constexpr std::array<int, 4> kNothing{100, 60, 0, 0};
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    LogoImage m_image;
    KV_ScenePane::Picture m_picture;
};

TEST_F(LogoOverlayTest, IsDrawnUprightAtItsPlace) {
    LogoOverlay logo;
    logo.SetPlace(LogoAnchor::BottomRight, 10);
    logo.SetImage(m_image);
    logo.SetViewer(&m_pane->Methods());
    EXPECT_EQ(Drawn(), (std::array<int, 4>{84, 46, 90, 50}));
    EXPECT_EQ(At(84, 46), 0xFF0000u) << "the top row";
    EXPECT_EQ(At(89, 49), 0x00FF00u);
}

TEST_F(LogoOverlayTest, MovesWithoutACopyAtTheFormerPlace) {
    LogoOverlay logo;
    logo.SetViewer(&m_pane->Methods());
    logo.SetImage(m_image);
    logo.SetPlace(LogoAnchor::TopLeft, 0);
    EXPECT_EQ(Drawn(), (std::array<int, 4>{0, 0, 6, 4}));
    logo.SetPlace(LogoAnchor::TopLeft, 20);
    EXPECT_EQ(Drawn(), (std::array<int, 4>{20, 20, 26, 24}));
    logo.SetPlace(LogoAnchor::Centre, 20);
    EXPECT_EQ(Drawn(), (std::array<int, 4>{47, 28, 53, 32}));
}

TEST_F(LogoOverlayTest, UsesTheOverlayOfAnEarlierPlaceAgain) {
    LogoOverlay logo;
    logo.SetViewer(&m_pane->Methods());
    logo.SetImage(m_image);  // the first overlay
    for (int repeat = 0; repeat < 3; ++repeat) {
        logo.SetPlace(LogoAnchor::TopLeft, 1);
        logo.SetPlace(LogoAnchor::TopRight, 1);
        for (int margin = 0; margin < 5; ++margin) logo.SetPlace(LogoAnchor::Centre, margin);
    }
    EXPECT_EQ(Drawn(), (std::array<int, 4>{47, 28, 53, 32}));
    EXPECT_EQ(CountOverlays(), 4);
}

TEST_F(LogoOverlayTest, HidesAndShowsWithoutAnotherOverlay) {
    LogoOverlay logo;
    logo.SetViewer(&m_pane->Methods());
    logo.SetPlace(LogoAnchor::Left, 2);
    logo.SetImage(m_image);
    logo.SetVisible(false);
    EXPECT_EQ(Drawn(), kNothing);
    logo.SetVisible(true);
    EXPECT_EQ(Drawn(), (std::array<int, 4>{2, 28, 8, 32}));
    EXPECT_EQ(CountOverlays(), 1);
}

TEST_F(LogoOverlayTest, IsAtTheNewPlaceWhenItWasMovedWhileHidden) {
    LogoOverlay logo;
    logo.SetViewer(&m_pane->Methods());
    logo.SetImage(m_image);
    logo.SetVisible(false);
    logo.SetPlace(LogoAnchor::Top, 3);
    EXPECT_EQ(Drawn(), kNothing);
    logo.SetVisible(true);
    EXPECT_EQ(Drawn(), (std::array<int, 4>{47, 3, 53, 7}));
}

TEST_F(LogoOverlayTest, ReplacesTheImageByAnother) {
    LogoOverlay logo;
    logo.SetViewer(&m_pane->Methods());
    logo.SetPlace(LogoAnchor::TopLeft, 0);
    logo.SetImage(m_image);
    QImage blue(2, 2, QImage::Format_RGB32);
    blue.fill(qRgb(0, 0, 255));
    logo.SetImage(LogoOfImage(blue));
    EXPECT_EQ(Drawn(), (std::array<int, 4>{0, 0, 2, 2}));
    EXPECT_EQ(At(0, 0), 0x0000FFu);
}

TEST_F(LogoOverlayTest, WithoutAnImageOrAViewerDrawsNothing) {
    LogoOverlay logo;
    logo.SetPlace(LogoAnchor::Top, 1);
    logo.SetVisible(true);
    logo.SetViewer(&m_pane->Methods());
    EXPECT_EQ(Drawn(), kNothing);
    EXPECT_EQ(CountOverlays(), 0);
}

}  // namespace
