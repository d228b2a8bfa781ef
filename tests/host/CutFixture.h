// A host window with two sheets, one in front of the other, and lassos drawn on them by the pointer.
#pragma once
#include <gtest/gtest.h>

#include <QDockWidget>
#include <QLabel>
#include <QSettings>
#include <QStatusBar>
#include <functional>
#include <string>
#include <vector>

#include "CutCommands.h"
#include "FileListDialog.h"
#include "host/ModalDialogs.h"
#include "host/PointerFixture.h"

/// Scans front.pcm and back.pcm of 60 x 60 points, which cover the middle of the window.
class CutFixture : public PointerFixture {
protected:
    using Button = QDialogButtonBox::StandardButton;
    /// Fractions of the viewer, y downward.
    using Corners = std::vector<QPointF>;
    static inline const Corners kMiddle{{0.45, 0.45}, {0.55, 0.45}, {0.55, 0.55}, {0.45, 0.55}};

    void SetUp() override {
        QSettings("scenepane", "scenepane").remove("lasso");
        PointerFixture::SetUp();
        WritePcm(m_folder / "front.pcm", 60, 60, 0.0f);
        WritePcm(m_folder / "back.pcm", 60, 60, 10.0f);
        Import({m_folder / "front.pcm", m_folder / "back.pcm"});
        m_window->ShowView(KV_ScenePane::ViewFromMinusZYUp);
    }
    void TearDown() override {
        DiscardCuts();
        m_window.reset();
    }
    /// A window that is destroyed asks nothing; one that a test closes must not wait for an answer.
    void DiscardCuts() const {
        if (m_window != nullptr && m_window->Pane() != nullptr) m_window->ClearScene();
    }

    [[nodiscard]] QAction& Tool(const char* name) const { return Find<QAction>(name); }
    [[nodiscard]] bool IsRunning() const { return m_window->Cuts().RunningWay().has_value(); }
    [[nodiscard]] bool HintIsShown() const { return Find<QLabel>("lassoHint").isVisible(); }
    [[nodiscard]] std::string StatusText() const { return m_window->statusBar()->currentMessage().toStdString(); }
    [[nodiscard]] std::string UndoText() const { return Tool("cutUndo").text().remove('&').toStdString(); }
    [[nodiscard]] int Steps() const { return m_window->Pane()->GetUndoStepCount(); }
    [[nodiscard]] int Vertices(int object) const { return m_window->Objects().VerticesOf(object); }
    /// The list has the numbers of the viewer.
    void ExpectListOfTheViewer() const {
        ASSERT_EQ(m_window->Objects().topLevelItemCount(), ObjectsInViewer());
        for (std::int16_t i = 0; i < ObjectsInViewer(); ++i) {
            const ObjectReport report = ReportObject(*m_window->Pane(), i, "");
            EXPECT_EQ(Vertices(i), report.vertices) << i;
            EXPECT_EQ(m_window->Objects().TrianglesOf(i), report.triangles) << i;
        }
    }

    [[nodiscard]] std::string Pixel(const QPointF& corner) const {
        return At(
            m_viewer->mapToGlobal(QPointF(corner.x() * m_viewer->width(), corner.y() * m_viewer->height()).toPoint()));
    }
    /// Gives the keyboard to a widget of the window by a click near its left edge. Its pane is opened before.
    void ClickOn(QWidget& widget) const {
        for (QWidget* above = &widget; above != nullptr; above = above->parentWidget()) {
            auto* const pane = qobject_cast<QDockWidget*>(above);
            if (pane != nullptr && pane->isHidden()) pane->toggleViewAction()->trigger();
        }
        ASSERT_TRUE(WaitUntil([&] { return !widget.visibleRegion().isEmpty(); }));
        Xdotool("mousemove " + At(widget.mapToGlobal(QPoint(15, widget.height() / 2))) + " click 1");
        ASSERT_TRUE(WaitUntil([&] { return FocusedWindow() != m_window->Pane()->NativeWindow(); }));
    }
    /// Starts a way with its tool.
    void Start(const char* tool) const {
        Tool(tool).trigger();
        ASSERT_TRUE(IsRunning()) << Messages();
    }
    /// Clicks corners of the lasso that runs.
    void Click(const Corners& corners) const {
        for (const QPointF& corner : corners) Xdotool("mousemove " + Pixel(corner) + " click 1");
        WaitForInput();
    }
    /// Drags through the corners.
    void Stroke(const Corners& corners) const {
        std::string commands = "mousemove " + Pixel(corners.front()) + " mousedown 1";
        for (const QPointF& corner : corners) commands += " mousemove " + Pixel(corner);
        Xdotool(commands + " mouseup 1");
        WaitForInput();
    }
    void RightClick(const QPointF& corner) const {
        Xdotool("mousemove " + Pixel(corner) + " click 3");
        WaitForInput();
    }
    /// A whole lasso by clicks; the last corner is the one that cuts.
    void Cut(const char* tool, Corners corners = kMiddle) const {
        Start(tool);
        const QPointF last = corners.back();
        corners.pop_back();
        Click(corners);
        RightClick(last);
        ASSERT_FALSE(IsRunning());
    }
    /// The same by a call, where a test is not about the pointer.
    [[nodiscard]] bool CutByCall(KV_ScenePane::SegmentationMode mode = KV_ScenePane::PolygonInside,
                                 const Corners& corners = kMiddle) const {
        std::vector<KV_ScenePane::LassoPoint> points;
        for (const QPointF& corner : corners) points.push_back({corner.x(), corner.y()});
        return m_window->Pane()->CutWithLasso(mode, points);
    }
    /// @param at  fraction of the frame
    [[nodiscard]] std::uint32_t PixelAt(const QPointF& at) const {
        const KV_ScenePane::Picture frame = DrawFrame();
        const auto x = static_cast<std::size_t>(at.x() * frame.width);
        const auto y = static_cast<std::size_t>(at.y() * frame.height);
        return frame.pixels.at(y * static_cast<std::size_t>(frame.width) + x) & 0xFFFFFF;
    }
    [[nodiscard]] bool IsObjectAt(const QPointF& at) const { return PixelAt(at) != kBackground; }

    /// Answers the next question about files. @param text  receives what it said
    [[nodiscard]] static DialogAnswer<FileListDialog> Answer(Button button, std::string* text = nullptr) {
        return DialogAnswer<FileListDialog>([=](FileListDialog& dialog) {
            if (text != nullptr) *text = dialog.Text().toStdString();
            dialog.Press(button);
        });
    }
};
