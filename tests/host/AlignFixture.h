// A host window with two sheets, of which the front one may move, and alignments by the pointer and the keys.
#pragma once
#include <gtest/gtest.h>

#include <QLabel>
#include <QTreeWidget>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "AlignCommands.h"
#include "AlignHint.h"
#include "TransformFile.h"
#include "host/CutFixture.h"

/// The sheets of CutFixture are parallel and 10 apart along z: the same pixel on both is a pair of points whose
/// transform is a translation by 10 along z.
class AlignFixture : public CutFixture {
protected:
    using Phase = KV_ScenePane::AlignmentPhase;
    static inline const Corners kThree{{0.45, 0.45}, {0.55, 0.45}, {0.5, 0.55}};

    void SetUp() override {
        CutFixture::SetUp();
        m_window->Objects().SetMayMove({true, false});
        m_colors = ColorsOfViewer();
    }

    [[nodiscard]] bool IsAligning() const { return m_window->Alignments().IsRunning(); }
    [[nodiscard]] const AlignProgress& Progress() const { return m_window->Alignments().Progress(); }
    [[nodiscard]] std::string Task() const {
        const auto& label = Find<QLabel>("alignTask");
        return label.isVisible() ? label.text().toStdString() : "";
    }
    [[nodiscard]] Matrix4 Transform(int row) const {
        return TransformOf(Methods(), static_cast<std::int16_t>(row)).value();
    }
    [[nodiscard]] std::vector<std::int32_t> ColorsOfViewer() const {
        std::vector<std::int32_t> colors;
        for (std::int16_t i = 0; i < ObjectsInViewer(); ++i)
            colors.push_back(ReportObject(*m_window->Pane(), i, "").color);
        return colors;
    }
    [[nodiscard]] int EndsReported() const {
        return static_cast<int>(m_window->Events().Text().count("AlignmentDone()"));
    }

    /// Starts an alignment with its tool, and waits until the viewer has the size and the keyboard that it keeps.
    void StartAlign(const char* tool) const {
        Tool(tool).trigger();
        ASSERT_TRUE(IsAligning()) << Messages();
        const auto& hint = Find<AlignHint>("alignHint");
        ASSERT_TRUE(WaitUntil([&] {
            KV_ScenePane::Picture frame;
            const int below = hint.mapToGlobal(QPoint(0, hint.height())).y();
            return m_viewer->mapToGlobal(QPoint(0, 0)).y() >= below && m_window->Pane()->CapturePicture(&frame) &&
                   frame.height == m_viewer->height();
        }));
        WaitForKeys();
    }
    /// Waits until the viewer gets the keys. It has the focus before: the X server passes keys on to it only when it
    /// has seen that.
    void WaitForKeys() const {
        WaitForViewerFocus();
        const auto count = [&] { return m_window->Events().Text().count("CustomKeyDown(nChar = 122,"); };
        const auto before = count();
        ASSERT_TRUE(WaitUntil([&] {
            Xdotool("key F11");  // does nothing
            return count() > before;
        }));
    }
    void Press(const char* key) const {
        Xdotool(std::string("key ") + key);
        WaitForInput();
    }
    /// Picks these points on both sides; the last one moves the front sheet.
    void AlignByPoints(const Corners& moving, const Corners& fixed) const {
        StartAlign("alignByPoints");
        Click(moving);
        Press("space");
        Click(fixed);
        ASSERT_FALSE(IsAligning()) << Task();
    }
    /// Drags from the middle of the viewer in two steps, of which the first one only begins the drag.
    void DragWith(const std::string& button, const QPoint& by) const {
        Xdotool("mousemove " + At(Middle()) + " mousedown " + button);
        WaitForDelayedPress();
        for (const QPoint& step : {QPoint(1, 0), by}) {
            Xdotool("mousemove " + At(Middle() + step));
            WaitForInput();
        }
        Xdotool("mouseup " + button);
        WaitForInput();
    }
    void ExpectNothingLeftOfTheAlignment() const {
        EXPECT_FALSE(IsAligning());
        EXPECT_EQ(Task(), "");
        EXPECT_EQ(ColorsOfViewer(), m_colors);
        EXPECT_EQ(m_window->Pane()->GetAlignmentPicks().phase, Phase::Idle);
        EXPECT_TRUE(m_window->Objects().isEnabled());
    }

    std::vector<std::int32_t> m_colors;  // of the objects, before any alignment
};
