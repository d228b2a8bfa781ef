// The icons of all tool bars in both themes.
#include "ViewIcons.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "AlignIcons.h"
#include "Appearance.h"
#include "CutIcons.h"
#include "ToolAction.h"
#include "host/ColorContrast.h"
#include "host/QtUnderXvfb.h"

namespace {

std::vector<std::pair<std::string, QIcon>> AllIcons() {
    std::vector<std::pair<std::string, QIcon>> icons{{"open", OpenIcon()},
                                                     {"picture", PictureIcon()},
                                                     {"fit", FitIcon()},
                                                     {"shadows", ShadowsIcon()},
                                                     {"cut cancel", CutCancelIcon()},
                                                     {"cut undo", CutUndoIcon()},
                                                     {"cut save", CutSaveIcon()},
                                                     {"align by hand", AlignWayIcon(AlignWay::ByHand)},
                                                     {"align by points", AlignWayIcon(AlignWay::ByPoints)},
                                                     {"align continue", AlignContinueIcon()},
                                                     {"align drop", AlignDropIcon()},
                                                     {"align finish", AlignFinishIcon()},
                                                     {"align end", AlignEndIcon()}};
    for (int i = 0; i < 8; ++i) {
        icons.emplace_back("view " + std::to_string(i), ViewIcon(static_cast<KV_ScenePane::ViewMode>(i)));
        icons.emplace_back("mode " + std::to_string(i), DrawModeIcon(static_cast<KV_ScenePane::DrawMode>(i)));
    }
    for (int i = 0; i < 6; ++i)
        icons.emplace_back("cut " + std::to_string(i), CutWayIcon(static_cast<KV_ScenePane::SegmentationMode>(i)));
    return icons;
}

class ViewIcons : public testing::TestWithParam<Appearance> {
protected:
    ViewIcons() { ShowAppearance(GetParam()); }
    ~ViewIcons() override { ShowAppearance(Appearance::Desktop); }
};

TEST_P(ViewIcons, DifferFromTheWindowThatTheyAreDrawnOn) {
    const QColor window = QApplication::palette().color(QPalette::Window);
    for (const auto& [name, icon] : AllIcons()) {
        const QImage picture = icon.pixmap(QSize(24, 24), 1.0).toImage();
        int visible = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.alpha() > 200 && Contrast(pixel, window) >= 3.0) ++visible;
            }
        }
        EXPECT_GE(visible, 25) << name;  // a line of 12 pixels of 2 pixels' width
    }
}

TEST_P(ViewIcons, AreAllDifferent) {
    const auto icons = AllIcons();
    const auto picture = [](const QIcon& icon) { return icon.pixmap(QSize(24, 24), 1.0).toImage(); };
    for (std::size_t i = 0; i < icons.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            // Both end what runs, by a cross.
            if (icons[i].first == "align end" && icons[j].first == "cut cancel") continue;
            EXPECT_NE(picture(icons[i].second), picture(icons[j].second)) << icons[i].first << ", " << icons[j].first;
        }
    }
}

TEST_P(ViewIcons, AreDrawnAnewForADenseScreen) {
    for (const auto& [name, icon] : AllIcons()) {
        const QPixmap dense = icon.pixmap(QSize(24, 24), 2.0);
        EXPECT_EQ(dense.size(), QSize(48, 48)) << name;
        EXPECT_EQ(dense.devicePixelRatio(), 2.0) << name;
        const QImage scaled = icon.pixmap(QSize(24, 24), 1.0).toImage().scaled(48, 48);
        EXPECT_NE(dense.toImage(), scaled) << name << " is an enlarged picture";
    }
}

TEST_P(ViewIcons, ArePalerWhenTheyAreDisabled) {
    const QIcon icon = OpenIcon();
    EXPECT_NE(icon.pixmap(QSize(24, 24), 1.0, QIcon::Disabled).toImage(), icon.pixmap(QSize(24, 24), 1.0).toImage());
}

INSTANTIATE_TEST_SUITE_P(Themes, ViewIcons, testing::Values(Appearance::Light, Appearance::Dark),
                         [](const auto& row) { return row.param == Appearance::Light ? "Light" : "Dark"; });

TEST(ToolInk, HasAContrastOfThreeToTheWindowInBothThemes) {
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
        ShowAppearance(appearance);
        const QColor window = QApplication::palette().color(QPalette::Window);
        const ToolInk ink = Ink();
        for (const QColor& color : {ink.line, ink.red, ink.green, ink.blue})
            EXPECT_GE(Contrast(color, window), 3.0) << color.name().toStdString();
    }
    ShowAppearance(Appearance::Desktop);
}

}  // namespace
