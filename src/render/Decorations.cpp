// The parts of a frame that are neither objects nor markers: background, centre cross, lighting arrow. The axes are in
// Axes.cpp, the images of the host in Overlays.cpp.
#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "control/ScenePaneCtrl.h"
#include "render/FlatView.h"
#include "render/HostColor.h"

namespace {

// ---- background

constexpr unsigned kRed = 0, kGreen = 8, kBlue = 16;  // shifts of the channels of a host colour

/// The colours of the corners: tl, tr, bl, br, each 0x00BBGGRR.
using CornerColors = std::uint32_t[4];

std::int32_t ChannelOf(std::uint32_t color, unsigned shift) { return static_cast<std::int32_t>(color >> shift & 0xFF); }

/// Quads per side that show the bilinear gradient of the corners within a quarter of a colour step, however the driver
/// splits a quad into triangles. With the twist tl - tr - bl + br of a channel, a triangle is off by twist / (4 n * n)
/// in the middle of one of n x n quads. One quad when the gradient is a plane, as with equal or two colours.
std::int32_t QuadsPerSide(const CornerColors& colors) {
    std::int32_t twist = 0;
    for (const unsigned shift : {kRed, kGreen, kBlue})
        twist = std::max(twist, std::abs(ChannelOf(colors[0], shift) - ChannelOf(colors[1], shift) -
                                         ChannelOf(colors[2], shift) + ChannelOf(colors[3], shift)));
    return std::max(1, static_cast<std::int32_t>(std::ceil(std::sqrt(twist))));
}

/// A vertex of the background with its colour.
/// @param right, down  fraction of the drawing area, 0 to 1
void BackgroundVertex(const CornerColors& colors, double right, double down) {
    const auto channel = [&](unsigned shift) {
        const auto corner = [&](std::size_t i) { return ChannelOf(colors[i], shift) / 255.0; };
        const double top = (1 - right) * corner(0) + right * corner(1);
        const double bottom = (1 - right) * corner(2) + right * corner(3);
        return static_cast<GLfloat>((1 - down) * top + down * bottom);
    };
    glColor3f(channel(kRed), channel(kGreen), channel(kBlue));
    glVertex3f(static_cast<GLfloat>(2 * right - 1), static_cast<GLfloat>(1 - 2 * down), 0);
}

// ---- cross and arrow

/// Calls @p draw without depth test and lighting, in a flat view whose shorter side spans 20 units: its drawing covers
/// the scene and keeps its proportions in every window. The state is restored.
template <typename Draw>
void DrawFlat(float aspectX, float aspectY, Draw draw) {
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    {
        const FlatView view(10.0 * aspectX, 10.0 * aspectY);
        draw();
    }
    glPopAttrib();
}

}  // namespace

// Replaces all pixels, so that a frame needs no clear of the colour buffer.
void CKV_ScenePaneCtrl::DrawBackground() {
    {
        const FlatView view(1, 1);
        const std::int32_t side = QuadsPerSide(m_nBackgroundColors);
        const auto vertex = [&](std::int32_t column, std::int32_t row) {
            BackgroundVertex(m_nBackgroundColors, static_cast<double>(column) / side, static_cast<double>(row) / side);
        };
        glBegin(GL_QUADS);
        for (std::int32_t row = 0; row < side; ++row) {
            for (std::int32_t column = 0; column < side; ++column) {
                vertex(column, row);
                vertex(column + 1, row);
                vertex(column + 1, row + 1);
                vertex(column, row + 1);
            }
        }
        glEnd();
    }
    glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);  // the quads have written their own depth
}

// Two lines of 2 units through the centre of the window.
void CKV_ScenePaneCtrl::DrawCross() {
    DrawFlat(m_fAspectX, m_fAspectY, [this] {
        SetHostColor(m_nCrossColor);
        glLineWidth(3 * m_fScale);
        glBegin(GL_LINES);
        glVertex3f(-1, 0, 0);
        glVertex3f(1, 0, 0);
        glVertex3f(0, -1, 0);
        glVertex3f(0, 1, 0);
        glEnd();
        glLineWidth(m_fScale);  // which the lines of axes, boxes and wires rely on
    });
}

// Two triangles that form a dart. Its tip points to the centre of the window; at angle 0 it is at the top, larger
// angles are counterclockwise.
void CKV_ScenePaneCtrl::DrawLightingArrow() {
    DrawFlat(m_fAspectX, m_fAspectY, [this] {
        glRotatef(static_cast<float>(m_nArrowAngle), 0, 0, 1);
        SetHostColor(m_nArrowColor);
        glBegin(GL_TRIANGLES);
        glNormal3f(0, 0, 1);
        glVertex3f(0, 9, 0);
        glVertex3f(0, 8, 0);
        glVertex3f(0.5f, 9.5f, 0);
        glNormal3f(0, 0, 1);
        glVertex3f(0, 8, 0);
        glVertex3f(0, 9, 0);
        glVertex3f(-0.5f, 9.5f, 0);
        glEnd();
    });
}
