// Screenshots as arrays with a guard, and the complete state of a view to compare.
#pragma once
#include <algorithm>
#include <array>
#include <bit>

#include "render/SceneFixture.h"

inline constexpr int kSide = 2048;
inline constexpr std::uint32_t kFiller = 0xDEADBEEF;
inline constexpr std::uint32_t kBackgroundPixel = 0xFF191932;
/// A single square of four units: its box with the margin is 8 x 8 x 4.02 with a diagonal of 12.0067, so that its edges
/// are at 682.86 and 1365.14 and it covers the pixels 683 to 1364.
inline constexpr std::ptrdiff_t kPixelsOfOneSquare = 682 * 682;
using Shot = std::vector<std::uint32_t>;

/// One screenshot; a guard after the last pixel detects writes past the end.
inline Shot Capture(CKV_ScenePaneCtrl& control) {
    Shot shot(std::size_t{kSide} * kSide + 1, kFiller);
    control.CaptureScreenShot(shot.data());
    EXPECT_EQ(shot.back(), kFiller);
    shot.pop_back();
    return shot;
}
inline std::uint32_t PixelOf(const Shot& shot, int x, int y) {
    return shot.at(static_cast<std::size_t>(y * kSide + x));
}
inline std::ptrdiff_t CountOf(const Shot& shot, std::uint32_t pixel) { return std::ranges::count(shot, pixel); }
inline std::ptrdiff_t CountOfOthers(const Shot& shot, std::uint32_t pixel) {
    return std::ssize(shot) - CountOf(shot, pixel);
}
/// Compares two screenshots and reports the first difference, not four million numbers.
inline void ExpectSame(const Shot& a, const Shot& b, const std::string& what) {
    const auto [first, second] = std::ranges::mismatch(a, b);
    EXPECT_TRUE(first == a.end() && second == b.end()) << what << ": pixel " << first - a.begin();
}

/// The view of a control and the OpenGL state that follows from it.
struct ViewState {
    std::array<float, 10> viewParams{};
    Float3 rotationCenter{};
    std::array<float, 5> scalars{};  ///< scene size, zoom, default zoom, aspect
    std::int32_t width = 0, height = 0;
    ViewFrame savedView;
    Float3 shadowEye{}, shadowCenter{}, shadowUp{};
    std::array<GLint, 4> viewport{};
    std::array<std::uint32_t, 16> projection{}, modelView{};  ///< bits: a window without width has a projection of NaN
};
inline ViewState StateOf(CKV_ScenePaneCtrl& c) {
    ViewState s;
    auto& v = s.viewParams;
    c.GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
    s.rotationCenter = c.m_fRotationCenter;
    s.scalars = {c.m_fSceneSize, c.m_fZoom, c.m_fDefaultZoom, c.m_fAspectX, c.m_fAspectY};
    s.width = c.m_nWidth;
    s.height = c.m_nHeight;
    s.savedView = c.m_savedView;
    s.shadowEye = c.m_fShadowEye;
    s.shadowCenter = c.m_fShadowCenter;
    s.shadowUp = c.m_fShadowUp;
    EXPECT_TRUE(c.MakeContextCurrent());
    glGetIntegerv(GL_VIEWPORT, s.viewport.data());
    std::array<GLfloat, 16> matrix{};
    glGetFloatv(GL_PROJECTION_MATRIX, matrix.data());
    s.projection = std::bit_cast<std::array<std::uint32_t, 16>>(matrix);
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data());
    s.modelView = std::bit_cast<std::array<std::uint32_t, 16>>(matrix);
    return s;
}
inline void ExpectSame(const ViewState& a, const ViewState& b) {
    EXPECT_EQ(a.viewParams, b.viewParams);
    EXPECT_EQ(a.rotationCenter, b.rotationCenter);
    EXPECT_EQ(a.scalars, b.scalars);
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.savedView.wx, b.savedView.wx);
    EXPECT_EQ(a.savedView.wy, b.savedView.wy);
    EXPECT_EQ(a.savedView.wz, b.savedView.wz);
    EXPECT_EQ(a.savedView.center, b.savedView.center);
    EXPECT_EQ(a.shadowEye, b.shadowEye);
    EXPECT_EQ(a.shadowCenter, b.shadowCenter);
    EXPECT_EQ(a.shadowUp, b.shadowUp);
    EXPECT_EQ(a.viewport, b.viewport);
    EXPECT_EQ(a.projection, b.projection);
    EXPECT_EQ(a.modelView, b.modelView);
}
