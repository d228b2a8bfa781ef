// A screen with two device pixels to each of Qt's: the viewer counts device pixels everywhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numbers>
#include <utility>

#include "EventPane.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"

namespace {

// Before Qt starts, which reads it once.
const int g_scaled = setenv("QT_SCALE_FACTOR", "2", 1);

class DenseScreen : public MainWindowFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(g_scaled, 0);
        HostOptions options;
        options.width = 600, options.height = 400;
        Show(options);
        m_viewer = m_window->findChild<ViewerWidget*>();
        // The window is placed and its panes narrowed after it was shown.
        QSize last;
        int same = 0;
        ASSERT_TRUE(WaitUntil([&] {
            same = std::exchange(last, m_viewer->size()) == m_viewer->size() ? same + 1 : 0;
            return same >= 20;
        }));
        ASSERT_EQ(m_viewer->devicePixelRatioF(), 2.0);
    }
    ViewerWidget* m_viewer = nullptr;
};

TEST_F(DenseScreen, TheDrawingAreaHasTheDevicePixelsOfTheWidget) {
    ASSERT_TRUE(WaitUntil([&] { return DrawFrame().width == 2 * m_viewer->width(); }));
    EXPECT_EQ(DrawFrame().height, 2 * m_viewer->height());
    EXPECT_EQ(m_viewer->sizeHint(), QSize(300, 200)) << "--size counts device pixels";
}

TEST_F(DenseScreen, ADoubleClickIsReportedInDevicePixelsAndPicksWhatIsShownThere) {
    const float plane[] = {-500, -500, 0, 500, -500, 0, 500, 500, 0, -500, 500, 0};
    const std::int32_t triangles[] = {0, 1, 2, 0, 2, 3};
    Methods().ImportMeshFromMemory(4, 2, plane, triangles);
    Methods().CenterView();
    Methods().SetPickMode(KV_ScenePane::PickModeObjects);
    ASSERT_TRUE(WaitUntil([&] { return DrawFrame().width == 2 * m_viewer->width(); }));
    // On the plane whichever side is the shorter one.
    const int offset = std::min(m_viewer->width(), m_viewer->height()) / 8;
    const QPoint right = QPoint(m_viewer->width() / 2 + offset, m_viewer->height() / 2 - offset);
    const QPoint onScreen = m_viewer->mapToGlobal(right) * 2;
    const std::string click = "xdotool mousemove " + std::to_string(onScreen.x()) + " " + std::to_string(onScreen.y()) +
                              " click --repeat 2 --delay 50 1";
    ASSERT_EQ(std::system(click.c_str()), 0);
    const auto events = [&] { return m_window->Events().Text(); };
    ASSERT_TRUE(WaitUntil([&] { return events().count("SelectObjCoords(") > 0; })) << events().toStdString();
    const QString mouse = QString("mouseX = %1, mouseY = %2)").arg(2 * right.x()).arg(2 * right.y());
    EXPECT_TRUE(events().contains(mouse)) << events().toStdString();
    // The shorter side spans the diagonal of the plane.
    const double unit = 1000 * std::numbers::sqrt2 / (2 * std::min(m_viewer->width(), m_viewer->height()));
    const auto number = [&](const char* name) {
        const QString text = events();
        return text.mid(text.indexOf(name) + QString(name).size()).section(',', 0, 0).toDouble();
    };
    EXPECT_NEAR(number("px = "), (2 * right.x() - m_viewer->width()) * unit, unit);
    EXPECT_NEAR(number("py = "), (m_viewer->height() - 2 * right.y()) * unit, unit);
}

TEST_F(DenseScreen, TextAndLinesGrowAsTheScreenDoes) {
    ASSERT_TRUE(WaitUntil([&] { return DrawFrame().width == 2 * m_viewer->width(); }));
    Methods().SetPickMode(KV_ScenePane::PickModeCross);
    Methods().ShowAxes(1);
    const auto grown = DrawFrame().pixels;
    m_window->Pane()->SetScale(1);
    EXPECT_NE(DrawFrame().pixels, grown);
    m_window->Pane()->SetScale(2);
    EXPECT_EQ(DrawFrame().pixels, grown) << "the viewer was made with another scale";
    // As when the window moves to another screen, of which a test has no second.
    m_window->Pane()->SetScale(1);
    emit m_viewer->windowHandle()->screenChanged(m_viewer->screen());
    EXPECT_EQ(DrawFrame().pixels, grown);
}

}  // namespace
