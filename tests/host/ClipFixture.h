// A host window with a scene whose place of the clip plane is known, and access to the pane of the plane.
#pragma once
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <array>
#include <cmath>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "ClipPanel.h"
#include "ColorButton.h"
#include "NumberBox.h"
#include "host/ClipScene.h"
#include "host/PointerFixture.h"

using Point = std::array<float, 3>;

/// Two squares at the heights 0 and 20, seen from +Z with x to the right unless a test looks from elsewhere.
class ClipFixture : public PointerFixture {
protected:
    void SetUp() override {
        ForgetStoredClip();
        WriteTwoLevels(m_folder / "levels.ply");
        WriteOneLevel(m_folder / "level.ply");
        StartWindow();
        Import({m_folder / "levels.ply"});
        ASSERT_EQ(ObjectsInViewer(), 1) << Messages();
        m_window->ShowView(KV_ScenePane::ViewFromPlusZYUp);
    }
    void TearDown() override {
        m_window.reset();
        ForgetStoredClip();
    }
    void StartWindow() {
        PointerFixture::SetUp();
        Find<QDockWidget>("clip").raise();
    }
    /// Ends the window and starts another one with an empty scene.
    void Restart() {
        m_window.reset();
        StartWindow();
    }

    [[nodiscard]] QCheckBox& On() const { return Find<QCheckBox>("clipOn"); }
    [[nodiscard]] QCheckBox& Shown() const { return Find<QCheckBox>("clipShown"); }
    [[nodiscard]] NumberBox& Number(const char* name) const { return Find<NumberBox>(name); }
    void Press(const char* name) const { Find<QPushButton>(name).click(); }
    [[nodiscard]] std::string Text() const { return Find<QLabel>("clipText").text().toStdString(); }
    [[nodiscard]] std::string StatusText() const { return m_window->statusBar()->currentMessage().toStdString(); }
    [[nodiscard]] const ClipSettings& Settings() const { return m_window->Clip().Settings(); }

    /// Centre and normal of the viewer.
    [[nodiscard]] std::array<float, 6> InViewer() const {
        std::array<float, 6> p{};
        Methods().GetClipPlane(&p[0], &p[1], &p[2], &p[3], &p[4], &p[5]);
        return p;
    }
    [[nodiscard]] Point Center() const { return {InViewer()[0], InViewer()[1], InViewer()[2]}; }
    /// Without the rounding of the viewer's rotation.
    [[nodiscard]] Point Normal() const {
        Point normal{InViewer()[3], InViewer()[4], InViewer()[5]};
        for (float& part : normal) part = std::round(part * 1e6f) / 1e6f + 0.0f;
        return normal;
    }
    /// The numbers of the fields: centre, normal.
    [[nodiscard]] std::array<double, 6> Fields() const {
        return {Number("clipCenterX").value(), Number("clipCenterY").value(), Number("clipCenterZ").value(),
                Number("clipNormalX").value(), Number("clipNormalY").value(), Number("clipNormalZ").value()};
    }
    /// The fields have the numbers of the viewer, to their digits.
    void ExpectFieldsOfTheViewer() const {
        const auto fields = Fields();
        const auto viewer = InViewer();
        for (std::size_t i = 0; i < fields.size(); ++i)
            EXPECT_NEAR(fields[i], static_cast<double>(viewer[i]), 1e-4) << "number " << i;
    }

    /// Pixels of objects in the left and the right half of a frame; not while the plane is drawn.
    struct Halves {
        int left = 0, right = 0;
    };
    [[nodiscard]] Halves ObjectPixels() const {
        const KV_ScenePane::Picture frame = DrawFrame();
        Halves count;
        for (std::size_t i = 0; i < frame.pixels.size(); ++i) {
            if ((frame.pixels[i] & 0xFFFFFF) == kBackground) continue;
            const bool isLeft = static_cast<int>(i) % frame.width < frame.width / 2;
            ++(isLeft ? count.left : count.right);
        }
        return count;
    }
    /// The pixels that change with the colour of the handles.
    [[nodiscard]] std::vector<QPoint> HandlePixels() const {
        const auto draw = [&](std::int32_t color) {
            emit Find<ColorButton>("clipHandleColor").ColorChosen(color);
            return DrawFrame();
        };
        const KV_ScenePane::Picture red = draw(0x0000FF), green = draw(0x00FF00);
        std::vector<QPoint> pixels;
        for (std::size_t i = 0; i < red.pixels.size(); ++i) {
            const int index = static_cast<int>(i);
            if (red.pixels[i] != green.pixels[i]) pixels.emplace_back(index % red.width, index / red.width);
        }
        return pixels;
    }
    /// A pixel on the upper arrow, of the desktop. Seen from -Y the arrow is the handle at the right.
    [[nodiscard]] QPoint OnArrow() const {
        const std::vector<QPoint> pixels = HandlePixels();
        if (pixels.empty()) throw std::runtime_error("no handle is drawn");
        int right = 0;
        for (const QPoint& pixel : pixels) right = std::max(right, pixel.x());
        std::vector<QPoint> arrow;
        for (const QPoint& pixel : pixels) {
            if (pixel.x() > right - 30) arrow.push_back(pixel);
        }
        const auto mean = [](const std::vector<QPoint>& of) {
            QPoint sum;
            for (const QPoint& pixel : of) sum += pixel;
            return sum / static_cast<int>(of.size());
        };
        const int middle = mean(arrow).y();
        std::erase_if(arrow, [&](const QPoint& pixel) { return pixel.y() >= middle; });
        return m_viewer->mapToGlobal(mean(arrow));
    }
    /// The plane, shown and 15 above the lower square, seen from the side; moved by the user.
    void LookFromTheSideAtHeight15() const {
        On().click();
        Number("clipCenterZ").setValue(15);
        m_window->ShowView(KV_ScenePane::ViewFromMinusYZUp);
    }
    /// A key that the viewer gets: it must have been pressed before.
    void TypeInViewer(const std::string& key) const {
        WaitForViewerFocus();
        Xdotool("key " + key);
        WaitForInput();
    }
    void CtrlDoubleClick() const {
        Xdotool("mousemove " + At(Middle()) + " keydown ctrl click --repeat 2 --delay 20 1 keyup ctrl");
        WaitForInput();
    }
    /// What the viewer throws when it cannot place the plane.
    [[nodiscard]] std::string PlacementError() const {
        try {
            Methods().SetClipPlaneEnabled(1);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "it threw nothing";
    }
};
