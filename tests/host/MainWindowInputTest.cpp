// Pointer and keys of the X server on the viewer inside the host's window.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QElapsedTimer>
#include <QSlider>
#include <QSpinBox>
#include <cmath>
#include <numbers>
#include <utility>

#include "AlignCommands.h"
#include "host/PointerFixture.h"

namespace {

/// The scene is empty: the centre is the origin, 1000 units span the shorter side, X points right and Y up.
class MainWindowInput : public PointerFixture {
protected:
    /// Waits until the view has these axes to the right and up, and this centre.
    void ExpectView(const std::array<double, 9>& expected) const {
        const auto matches = [&] {
            const std::array<float, 10> view = View();
            for (std::size_t i = 0; i < expected.size(); ++i) {
                if (std::abs(static_cast<double>(view[i]) - expected[i]) > (i < 6 ? 1e-5 : 1e-2)) return false;
            }
            return true;
        };
        if (WaitUntil(matches)) return;
        for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(View()[i], expected[i], 1e-5) << i;
        FAIL() << "the view is another one";
    }
    static constexpr std::array<double, 9> kStart{1, 0, 0, 0, 1, 0, 0, 0, 0};
};

TEST_F(MainWindowInput, TurnsTheViewWhereTheLeftButtonDrags) {
    const int way = ShorterSide() / 3;
    const double angle = std::numbers::pi * way / ShorterSide();
    Drag("1", {way, 0});
    ExpectView({std::cos(angle), 0, std::sin(angle), 0, 1, 0, 0, 0, 0});
}

TEST_F(MainWindowInput, TurnsAboutTheAxisOfTheChosenRotation) {
    const int way = m_viewer->height() / 4;
    const double angle = std::numbers::pi * way / m_viewer->height();
    Trigger("About the horizontal axis");
    Drag("1", {50, way});  // downward; the way across does not count
    ExpectView({1, 0, 0, 0, std::cos(angle), -std::sin(angle), 0, 0, 0});
}

TEST_F(MainWindowInput, TurnsAboutTheVerticalAxisByTheWidth) {
    const int way = m_viewer->width() / 4;
    const double angle = std::numbers::pi * way / m_viewer->width();
    Trigger("About the vertical axis");
    Drag("1", {way, 50});
    ExpectView({std::cos(angle), 0, std::sin(angle), 0, 1, 0, 0, 0, 0});
}

TEST_F(MainWindowInput, MovesTheSceneWithThePointerWhenTheButtonsAreFlipped) {
    Trigger("Flipped: left moves, right turns");
    Drag("1", {60, 30});
    const double unit = 1000.0 / ShorterSide();  // to a pixel
    ExpectView({1, 0, 0, 0, 1, 0, -60 * unit, 30 * unit, 0});
}

TEST_F(MainWindowInput, TurnsWithTheRightButtonInTheDelayedScheme) {
    Trigger("Delayed: right turns, both move, left picks");
    Drag("1", {90, 0});
    WaitForInput();
    ExpectView(kStart);
    const int way = ShorterSide() / 3;
    const double angle = std::numbers::pi * way / ShorterSide();
    Drag("3", {way, 0});
    ExpectView({std::cos(angle), 0, std::sin(angle), 0, 1, 0, 0, 0, 0});
    Trigger("Normal: left turns, right moves");
    Drag("1", {-way, 0});
    ExpectView(kStart);
}

TEST_F(MainWindowInput, LeavesTheViewAloneWhileTheMouseMovesNothing) {
    Trigger("Mouse moves the scene");
    Drag("1", {90, 20});
    Xdotool("click 4");
    WaitForInput();
    ExpectView(kStart);
    EXPECT_EQ(View()[9], 1.0f);
    Trigger("Mouse moves the scene");
    Xdotool("mousemove " + At(Middle()) + " click 4");
    EXPECT_TRUE(WaitUntil([&] { return View()[9] != 1.0f; }));
}

TEST_F(MainWindowInput, ZoomsByTheWheel) {
    Xdotool("mousemove " + At(Middle()) + " click 4");  // one notch away from the user
    EXPECT_TRUE(WaitUntil([&] { return std::abs(View()[9] - 1 / 1.12f) < 1e-5f; })) << View()[9];
}

TEST_F(MainWindowInput, RunsShortcutsWhileTheViewerHasTheKeyboard) {
    // The click gives the viewer's window the keyboard; then the pointer leaves it, so that keys come by focus alone.
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Xdotool("mousemove " + At(m_window->mapToGlobal(QPoint(200, 5))) + " key 3");
    ExpectView({0, -1, 0, 0, 0, 1, 0, 0, 0});
    Xdotool("key ctrl+4");
    EXPECT_TRUE(WaitUntil([&] { return m_window->Pane()->Methods().GetDrawMode() == 4; }));
}

TEST_F(MainWindowInput, GivesTheKeyboardBackToAFieldThatIsClicked) {
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Find<QDockWidget>("decorations").raise();
    auto* const field = m_window->findChild<QSpinBox*>("arrowAngleNumber");
    ASSERT_TRUE(WaitUntil([&] { return !field->visibleRegion().isEmpty(); }));
    field->selectAll();
    Xdotool("mousemove " + At(field->mapToGlobal(QPoint(12, field->height() / 2))) + " click 1");
    EXPECT_TRUE(WaitUntil([&] { return field->hasFocus() && m_window->isActiveWindow(); }));
    Xdotool("key ctrl+a key 4 key 5");
    EXPECT_TRUE(WaitUntil([&] { return field->value() == 45; })) << field->value();
    ExpectView(kStart);  // the digits are shortcuts of views
}

/// Plain keys are for the input that has the keyboard; the viewer's own window has it no more.
class MainWindowTyping : public MainWindowInput {
protected:
    /// Types the shortcuts of a view, of shadows and of a render mode. @param pointer  where the pointer is
    void TypeInto(QWidget& input, const QPoint& pointer) {
        input.setFocus();
        ASSERT_TRUE(WaitUntil([&] { return input.hasFocus(); }));
        Xdotool("mousemove " + At(pointer) + " key 3 key s key ctrl+4");
        EXPECT_TRUE(WaitUntil([&] { return Methods().GetDrawMode() == 4; })) << "Ctrl is for the menus";
        ExpectView(kStart);
        EXPECT_EQ(Methods().GetShadowMode(), 0);
    }
    [[nodiscard]] QPoint OverNothing() const { return m_window->mapToGlobal(QPoint(200, 5)); }
};

TEST_F(MainWindowTyping, ChangesNoViewWhileASliderHasTheKeyboard) {
    TypeInto(Find<QSlider>("arrowAngle"), OverNothing());
}

TEST_F(MainWindowTyping, ChangesNoViewWhileAFieldHasTheKeyboard) {
    auto& field = Find<QSpinBox>("arrowAngleNumber");
    TypeInto(field, OverNothing());
    EXPECT_NE(field.value(), 0) << "the digit came into the field";
}

TEST_F(MainWindowTyping, RunsShortcutsWhileTheListHasTheKeyboard) {
    WriteXdt(m_folder / "a.xdt", 2, 2);
    WriteXdt(m_folder / "s.xdt", 2, 2);
    Import({m_folder / "a.xdt", m_folder / "s.xdt"});
    ObjectList& list = m_window->Objects();
    list.setCurrentItem(list.topLevelItem(0), ObjectList::kMayMove);
    list.setFocus();
    ASSERT_TRUE(WaitUntil([&] { return list.hasFocus(); }));
    Xdotool("mousemove " + At(OverNothing()) + " key s key u key space");
    EXPECT_TRUE(WaitUntil([&] { return list.MovingRows() == std::vector<int>{0}; })) << "a letter changed the row";
    EXPECT_EQ(Methods().GetShadowMode(), 1);
    Xdotool("key h");
    EXPECT_TRUE(WaitUntil([&] { return m_window->Alignments().IsRunning(); })) << Messages();
    m_window->Alignments().Finish();
}

TEST_F(MainWindowTyping, ChangesNoViewWhileThePointerIsOverTheViewer) {
    TypeInto(Find<QSlider>("arrowAngle"), Middle());
}

TEST_F(MainWindowTyping, ChangesTheViewWhileACheckBoxHasTheKeyboard) {
    Find<QCheckBox>("axes").setFocus();
    Xdotool("mousemove " + At(OverNothing()) + " key 3");
    ExpectView({0, -1, 0, 0, 0, 1, 0, 0, 0});
}

TEST_F(MainWindowTyping, ChangesTheViewOnceTheViewerWasClickedInstead) {
    auto& slider = Find<QSlider>("arrowAngle");
    slider.setFocus();
    ASSERT_TRUE(WaitUntil([&] { return slider.hasFocus(); }));
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Xdotool("mousemove " + At(OverNothing()) + " key 3");
    ExpectView({0, -1, 0, 0, 0, 1, 0, 0, 0});
}

TEST_F(MainWindowTyping, ChangesTheViewRightAfterTheStart) {
    Xdotool("mousemove " + At(OverNothing()) + " key 3");
    ExpectView({0, -1, 0, 0, 0, 1, 0, 0, 0});
}

// ---- held keys

TEST_F(MainWindowInput, RunsAShortcutOnceWhileItsKeyIsHeld) {
    constexpr std::int32_t kWasDown = 1 << 14;
    int toggled = 0;
    const QAction* shadow = nullptr;
    for (const QAction* const action : m_window->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence("S")) shadow = action;
    }
    ASSERT_NE(shadow, nullptr);
    QObject::connect(shadow, &QAction::triggered, m_window.get(), [&] { ++toggled; });
    for (int press = 0; press < 20; ++press)
        m_window->Pane()->SendKey({.nChar = 'S', .nFlags = press == 0 ? 0 : kWasDown});
    m_window->Pane()->SendKey({.isDown = false, .nChar = 'S', .nFlags = kWasDown});
    QCoreApplication::processEvents();
    EXPECT_EQ(toggled, 1);
    m_window->Pane()->SendKey({.nChar = 'S'});
    QCoreApplication::processEvents();
    EXPECT_EQ(toggled, 2) << "pressed again";
    EXPECT_FALSE(shadow->autoRepeat()) << "nor by Qt, while another widget has the keyboard";
}

// ---- nothing to do

/// Counts the timers that fire.
class TimerCount : public QObject {
public:
    TimerCount() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Timer) fired << watched->metaObject()->className();
        return false;
    }
    QStringList fired, last;  // classes of their objects
};

TEST_F(MainWindowInput, IsIdleWhenNothingHappens) {
    Import(ManyPcms(1));
    constexpr qint64 kQuietMs = 500;
    constexpr int kPasses = 50;  // of the event loop: a machine under load may make few in that time
    TimerCount timers;
    std::uint64_t frames = 0;
    QElapsedTimer quiet;
    int passes = 0;
    const bool isQuiet = WaitUntil([&] {
        const std::uint64_t now = m_window->Pane()->GetFrameStatistics().count;
        if (passes++ == 0 || std::exchange(frames, now) != now || !timers.fired.isEmpty()) {
            quiet.start();
            passes = 1;
            timers.last = timers.fired;
            timers.fired.clear();
        }
        return passes > kPasses && quiet.elapsed() > kQuietMs;
    });
    EXPECT_TRUE(isQuiet) << "frames: " << frames << ", timers of: " << timers.last.join(' ').toStdString();
}

}  // namespace
