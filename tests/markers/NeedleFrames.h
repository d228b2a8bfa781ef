// Frames with needles. The camera looks down the z axis, 24 pixels per unit, so that (x, y) is shown at (160 + 24 x,
// 120 - 24 y).
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/Fonts.h"
#include "render/SceneFixture.h"
#include "support/TextPicture.h"

inline constexpr double kPixelsPerUnit = 24;
inline constexpr std::uint32_t kWhite = 0xFFFFFF, kBlackPixel = 0xFF000000;

/// What a test says about a needle; the rest is unimportant to it.
struct Style {
    float headRadius = 1.0f;
    std::uint32_t headColor = kWhite;
    float pinSize = 0.0f;
    std::uint32_t pinColor = kWhite;
    float hitPointRadius = 0.0f;
    std::uint32_t hitPointColor = kWhite;
    std::uint32_t headSelectionColor = kWhite;
};

class NeedleFrames : public SceneTest {
protected:
    NeedleFrames() { pane->SetNeedleDrawingMode(-1); }

    void AddNeedle(std::int32_t id, const Vec3& pin, const Vec3& head, const Style& style = {}) {
        const auto f = [](double value) { return static_cast<float>(value); };
        pane->SetMaxNumberOfNeedles(100);
        pane->SetNeedleRenderParameters(10, style.headRadius, static_cast<std::int32_t>(style.headColor), style.pinSize,
                                        static_cast<std::int32_t>(style.pinColor), style.hitPointRadius,
                                        static_cast<std::int32_t>(style.hitPointColor),
                                        static_cast<std::int32_t>(style.headSelectionColor));
        ASSERT_NE(pane->CreateNeedle(id, f(pin[0]), f(pin[1]), f(pin[2]), f(head[0]), f(head[1]), f(head[2])), 0);
    }
    /// Turns the camera so that a direction points down the screen.
    void LookAcross(const Vec3& down) {
        using namespace lighting;
        const Vec3 axisY = Unit(-1.0 * down);
        const Vec3 other = std::abs(axisY[0]) < 0.6 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
        const Vec3 axisX = Unit(other - Dot(other, axisY) * axisY);
        const Vec3 axisZ{axisX[1] * axisY[2] - axisX[2] * axisY[1], axisX[2] * axisY[0] - axisX[0] * axisY[2],
                         axisX[0] * axisY[1] - axisX[1] * axisY[0]};
        camera.axisX = axisX, camera.axisY = axisY, camera.axisZ = axisZ;
        const auto store = [](Float3& to, const Vec3& from) {
            for (std::size_t i = 0; i < 3; ++i) to[i] = static_cast<float>(from[i]);
        };
        store(pane->m_fAxisX, axisX);
        store(pane->m_fAxisY, axisY);
        store(pane->m_fAxisZ, axisZ);
        pane->SetupViewMatrices();
    }
    /// A ball or a pin where its surface has this normal, in eye coordinates of the first camera.
    [[nodiscard]] Vec3 Lit(const Vec3& normal, std::uint32_t color) const {
        lighting::Surface surface;
        surface.normal = normal;
        surface.color = {(color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0};
        return lighting::FixedFunction(camera, surface);
    }
    /// A ball of the camera that looks down the z axis: its colour at nine points, and where it ends.
    void ExpectBall(double x, double y, double radius, std::uint32_t color) {
        const int centerX = static_cast<int>(160 + kPixelsPerUnit * x),
                  centerY = static_cast<int>(120 - kPixelsPerUnit * y);
        const double radiusPx = kPixelsPerUnit * radius;
        const int half = static_cast<int>(radiusPx / 2);
        for (const int dx : {-half, 0, half})
            for (const int dy : {-half, 0, half}) {
                const double nx = (dx + 0.5) / radiusPx, ny = -(dy + 0.5) / radiusPx;
                ExpectPixel(centerX + dx, centerY + dy, Lit({nx, ny, std::sqrt(1 - nx * nx - ny * ny)}, color), 4.0);
            }
        const int inside = static_cast<int>(radiusPx) - 2, outside = static_cast<int>(radiusPx) + 1;
        for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
            EXPECT_GT(DistanceAt(centerX + inside * dx, centerY + inside * dy, kBackground), 10) << dx << dy;
            ExpectBackground(centerX + outside * dx, centerY + outside * dy);
        }
    }

    // ---- the number

    [[nodiscard]] TextPicture BlackPixels() const {
        TextPicture black(picture.width, picture.height);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.pixels[static_cast<std::size_t>(y * picture.width + x)] == kBlackPixel)
                    black.Set(x, picture.height - 1 - y);
        return black;
    }
    /// Where the number of a needle must be; rows of pixels run from the bottom.
    [[nodiscard]] TextPicture ExpectedNumber(const std::string& text, const Vec3& head, double radius,
                                             const FontRequest& font = kFonts[1]) const {
        const GlyphSet glyphs = RasterizeFont(font);
        const auto [x, y] = camera.ToWindow(head);
        int width = 0;
        for (const char c : text) width += glyphs.glyphs.at(static_cast<unsigned char>(c)).advance;
        const double pixelsPerUnit = camera.height / (2 * camera.HalfHeight());
        const double left = x + radius * pixelsPerUnit + width / 2.0;
        const double bottom = camera.height - y - glyphs.lineHeight / 2.0;
        TextPicture expected(camera.width, camera.height);
        expected.Write(glyphs, text, static_cast<int>(std::floor(left)), static_cast<int>(std::floor(bottom)));
        return expected;
    }
};
