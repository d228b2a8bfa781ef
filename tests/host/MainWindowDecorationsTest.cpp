// What the panes draw around the scene, in the pixels of the viewer on the screen.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QSpinBox>

#include "BackgroundDialog.h"
#include "ColorButton.h"
#include "LogoPanel.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"

namespace {

class MainWindowDecorations : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        Find<QWidget>("viewNote").setMaximumSize(1, 1);  // it would cover the middle of the empty view
    }
    [[nodiscard]] ViewerWidget& Viewer() const { return *m_window->findChild<ViewerWidget*>(); }
    /// What the screen shows of the viewer. It causes no frame, so that a part that requests no repaint is not on it.
    [[nodiscard]] QImage OnScreen() const {
        const QPoint at = Viewer().mapToGlobal(QPoint(0, 0));
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, at.x(), at.y(), Viewer().width(), Viewer().height())
            .toImage();
    }
    /// Waits until a pixel of the viewer on the screen has this colour, 0xRRGGBB. Negative coordinates count from the
    /// right and from the bottom, -1 is the last pixel.
    [[nodiscard]] bool BecomesAt(std::uint32_t color, QPoint at) const {
        const QPoint place(at.x() < 0 ? Viewer().width() + at.x() : at.x(),
                           at.y() < 0 ? Viewer().height() + at.y() : at.y());
        std::uint32_t seen = 0;
        (void)WaitUntil([&] {
            seen = OnScreen().pixel(place) & 0xFFFFFF;
            return seen == color;
        });
        EXPECT_EQ(seen, color) << at.x() << ", " << at.y();
        return seen == color;
    }
    /// The same at a position in units from the middle of the viewer, y upward; the shorter side spans 20 units.
    [[nodiscard]] bool Becomes(std::uint32_t color, double x, double y) const {
        const double unit = std::min(Viewer().width(), Viewer().height()) / 20.0;
        return BecomesAt(color, QPoint(static_cast<int>(Viewer().width() / 2.0 + x * unit),
                                       static_cast<int>(Viewer().height() / 2.0 - y * unit)));
    }
    /// Opens an image of 20 x 10 pixels of kLogo.
    void OpenLogo() const {
        QImage image(20, 10, QImage::Format_RGB32);
        image.fill(QColor::fromRgb(kLogo));
        const QString path = QString::fromStdString(m_folder / "logo.png");
        ASSERT_TRUE(image.save(path));
        ASSERT_TRUE(m_window->Logo().OpenImage(path));
    }
    static constexpr std::uint32_t kLogo = 0xFF8000;
};

/// Number of pixels of pure red in the upper left ninth.
int CountRedInCorner(const QImage& picture) {
    int count = 0;
    for (int y = 0; y < picture.height() / 3; ++y) {
        for (int x = 0; x < picture.width() / 3; ++x) count += (picture.pixel(x, y) & 0xFFFFFF) == 0xFF0000;
    }
    return count;
}

TEST_F(MainWindowDecorations, ShowsAndHidesTheAxes) {
    EXPECT_EQ(CountRedInCorner(OnScreen()), 0);
    Find<QCheckBox>("axes").click();
    EXPECT_TRUE(WaitUntil([&] { return CountRedInCorner(OnScreen()) > 5; })) << "the shaft of the x axis";
    Find<QCheckBox>("axes").click();
    EXPECT_TRUE(WaitUntil([&] { return CountRedInCorner(OnScreen()) == 0; }));
}

TEST_F(MainWindowDecorations, RotatesAndColoursTheLightingArrowAtOnce) {
    Find<QCheckBox>("arrow").click();
    ASSERT_TRUE(Becomes(0xEAEAFF, 0.1, 8.7));
    ASSERT_TRUE(Becomes(kBackground, -8.7, 0.1));
    Find<QSpinBox>("arrowAngleNumber").setValue(90);
    EXPECT_EQ(Find<QSlider>("arrowAngle").value(), 90);
    ASSERT_TRUE(Becomes(0xEAEAFF, -8.7, 0.1));
    ASSERT_TRUE(Becomes(kBackground, 0.1, 8.7));
    emit Find<ColorButton>("arrowColor").ColorChosen(0x0000FF);
    ASSERT_TRUE(Becomes(0xFF0000, -8.7, 0.1));
    Find<QCheckBox>("arrow").click();
    ASSERT_TRUE(Becomes(kBackground, -8.7, 0.1));
}

TEST_F(MainWindowDecorations, ShowsTheCrossInItsPickModeOnly) {
    ASSERT_TRUE(Becomes(kBackground, 0, 0));
    Trigger("Centre cross");
    ASSERT_TRUE(Becomes(0xFFFFFF, 0, 0));
    emit Find<ColorButton>("crossColor").ColorChosen(0x00FF00);
    EXPECT_EQ(Methods().GetCrossColor(), 0x00FF00);
    ASSERT_TRUE(Becomes(0x00FF00, 0, 0));
    Trigger("Off");
    ASSERT_TRUE(Becomes(kBackground, 0, 0));
}

TEST_F(MainWindowDecorations, ShowsTheCrossByItsCheckBox) {
    ASSERT_TRUE(Becomes(kBackground, 0, 0));
    Find<QCheckBox>("cross").click();
    ASSERT_TRUE(Becomes(0xFFFFFF, 0, 0));
    Find<QCheckBox>("cross").click();
    ASSERT_TRUE(Becomes(kBackground, 0, 0));
}

TEST_F(MainWindowDecorations, ShowsALogoFromAFileInItsCorner) {
    OpenLogo();
    EXPECT_TRUE(BecomesAt(kLogo, {-11, -11})) << "10 pixels from both edges";
    EXPECT_TRUE(BecomesAt(kLogo, {-30, -20}));
    EXPECT_TRUE(BecomesAt(kBackground, {-31, -20}));
    EXPECT_TRUE(BecomesAt(kBackground, {-30, -21}));
    EXPECT_TRUE(BecomesAt(kBackground, {-10, -10}));
    Find<QSpinBox>("logoMargin").setValue(0);
    EXPECT_TRUE(BecomesAt(kLogo, {-1, -1}));
    EXPECT_TRUE(BecomesAt(kBackground, {-21, -10}));
    Find<QCheckBox>("logoVisible").click();
    EXPECT_TRUE(BecomesAt(kBackground, {-1, -1}));
}

TEST_F(MainWindowDecorations, MovesTheLogoToThePlaceOfItsButton) {
    OpenLogo();
    ASSERT_TRUE(BecomesAt(kLogo, {-11, -11}));
    const int middle = Viewer().width() / 2, half = Viewer().height() / 2;
    struct Place {
        const char* name;
        QPoint inside;
    };
    QPoint before(-11, -11);
    for (const Place& place :
         {Place{"Top left", {10, 10}}, Place{"Top", {middle, 10}}, Place{"Top right", {-11, 10}},
          Place{"Left", {10, half}}, Place{"Centre", {middle, half}}, Place{"Right", {-11, half}},
          Place{"Bottom left", {10, -11}}, Place{"Bottom", {middle, -11}}, Place{"Bottom right", {-11, -11}}}) {
        QAbstractButton* button = nullptr;
        for (auto* const other : m_window->Logo().findChildren<QAbstractButton*>()) {
            if (other->accessibleName() == place.name) button = other;
        }
        ASSERT_NE(button, nullptr) << place.name;
        button->click();
        EXPECT_TRUE(button->isChecked());
        EXPECT_TRUE(BecomesAt(kLogo, place.inside)) << place.name;
        EXPECT_TRUE(BecomesAt(kBackground, before)) << place.name;
        before = place.inside;
    }
}

TEST_F(MainWindowDecorations, ShowsTheBackgroundColoursOfItsDialog) {
    const DialogAnswer<BackgroundDialog> answer([](BackgroundDialog& dialog) {
        EXPECT_EQ(dialog.Colors(), (std::array<std::int32_t, 4>{0x321919, 0x321919, 0x321919, 0x321919}));
        for (auto* const corner : dialog.findChildren<ColorButton*>()) corner->SetPacked(0x00FF00);
        dialog.accept();
    });
    Find<QPushButton>("background").click();
    EXPECT_TRUE(answer.WasShown());
    EXPECT_TRUE(BecomesAt(0x00FF00, {3, 3}));
    EXPECT_TRUE(BecomesAt(0x00FF00, {-4, -4}));
}

TEST_F(MainWindowDecorations, KeepsTheBackgroundOfACancelledDialog) {
    const DialogAnswer<BackgroundDialog> answer([](BackgroundDialog& dialog) {
        for (auto* const corner : dialog.findChildren<ColorButton*>()) corner->SetPacked(0x00FF00);
        dialog.reject();
    });
    Find<QPushButton>("background").click();
    EXPECT_TRUE(answer.WasShown());
    EXPECT_EQ(MiddlePixel(), kBackground);
}

}  // namespace
