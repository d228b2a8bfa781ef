// Draws the plane, and its handles in colours that are numbers for the pick. Everything is in the plane's own frame.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

#include "clip/Plane.h"

namespace {

constexpr double kTurn = 2 * std::numbers::pi;  // radians
constexpr std::uint32_t kSphereCount = 2;

struct DeleteQuadric {
    void operator()(GLUquadric* quadric) const { gluDeleteQuadric(quadric); }
};
using Quadric = std::unique_ptr<GLUquadric, DeleteQuadric>;  // filled and smooth, as a new one is

// Colours are 0x00BBGGRR, or the number of a part for a pick.
float Channel(std::uint32_t color, unsigned shift) { return static_cast<float>((color >> shift & 0xFF) / 255.0); }
void SetColor(std::uint32_t color) { glColor3f(Channel(color, 0), Channel(color, 8), Channel(color, 16)); }
void SetColor(std::uint32_t color, float opacity) {
    glColor4f(Channel(color, 0), Channel(color, 8), Channel(color, 16), opacity);
}

void BlendWhenTranslucent(float opacity) {
    if (!(opacity < 1.0f)) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

void Vertex(const Double3& p) { glVertex3dv(p.data()); }

/// @param radius  of the plane's corners: all handles scale with the plane
void DrawSphere(GLUquadric* quadric, const Double3& center, double radius) {
    glPushMatrix();
    glTranslated(center[0], center[1], center[2]);
    gluSphere(quadric, radius / 60, 10, 10);
    glPopMatrix();
}

/// A shaft and a head along z, from the origin of the current matrix.
void DrawArrow(GLUquadric* quadric, double radius) {
    const double shaftRadius = radius / 90, length = radius / 30, headRadius = radius / 60;
    gluCylinder(quadric, shaftRadius, shaftRadius, length, 9, 5);
    glPushMatrix();
    glTranslated(0, 0, length);
    gluCylinder(quadric, headRadius, 0, length, 9, 5);
    glPopMatrix();
}

}  // namespace

Double3 Plane::Corner(std::uint32_t i) const {
    const double angle = m_dStartAngle + kTurn * i / m_nCorners;
    return {m_dRadius * std::cos(angle), m_dRadius * std::sin(angle), 0};
}

// The start angle counts twice, in the corners and in theta: with the default of -45 degrees an angle of 0 is the
// middle of the edge at -y.
Double3 Plane::OutlinePoint(double theta) const {
    double a = std::fmod(m_dStartAngle + theta, kTurn);
    if (a < 0.0) a += kTurn;
    // The edge that the angle falls on, and its share of that edge.
    const auto i = static_cast<std::uint32_t>(m_nCorners * a / kTurn);
    const double from = kTurn * i / m_nCorners, to = kTurn * (i + 1) / m_nCorners;
    const double t = (a - from) / (to - from);
    const Double3 first = Corner(i % m_nCorners), second = Corner((i + 1) % m_nCorners);
    return {(1 - t) * first[0] + t * second[0], (1 - t) * first[1] + t * second[1], 0};
}

Double3 Plane::SpherePoint(std::uint32_t index) const {
    return OutlinePoint(static_cast<double>(m_fHandleAngle[index]) * (std::numbers::pi / 180));
}

void Plane::Draw() {
    // The caller restores the attributes: m_uAttribMask.
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_DEPTH_TEST);
    glPushMatrix();
    glMultMatrixd(m_dMatrix.data());
    glNormal3d(0, 0, 1);  // for the outline and the face
    const bool hot = IsPicked() || m_bHighlighted;
    if (m_bOutlineVisible) DrawOutline(hot ? m_nHotOutlineColor : m_nOutlineColor);
    if (m_bFaceVisible) DrawFace(hot ? m_nHotColor : m_nColor, hot ? m_fHotOpacity : m_fOpacity);

    const Quadric quadric(gluNewQuadric());
    if (m_bRotateHandlesVisible) {
        SetColor(m_nHandleColor);
        for (std::uint32_t i = 0; i < kSphereCount; ++i) DrawSphere(quadric.get(), SpherePoint(i), m_dRadius);
        if (m_pick && m_pick->kind == PlaneHandle::kSphere) DrawTiltGuides(SpherePoint(m_pick->index));
    }
    SetColor(m_nHandleColor);
    if (m_bMoveHandleVisible) DrawDoubleArrow(quadric.get());
    if (m_bCenterVisible) {
        SetColor(m_nColor);
        DrawSphere(quadric.get(), {0, 0, 0}, m_dRadius);
    }
    glPopMatrix();
}

void Plane::DrawOutline(std::uint32_t color) const {
    SetColor(color);
    glBegin(GL_LINE_STRIP);
    for (std::uint32_t i = 0; i <= m_nCorners; ++i) Vertex(Corner(i % m_nCorners));
    glEnd();
}

void Plane::DrawFace(std::uint32_t color, float opacity) const {
    // Before the push: Mesa 22.3 loses a blend function that is set between an inner push without the colour buffer's
    // bit and its pop, and the caller's pop does not restore the former one. PlaneDrawTest compares the state before
    // and after: without this order it fails on a driver with that defect.
    BlendWhenTranslucent(opacity);
    if (m_bCullBack) {
        glPushAttrib(GL_ENABLE_BIT | GL_POLYGON_BIT);
        glEnable(GL_CULL_FACE);
        glFrontFace(GL_CCW);
        glCullFace(GL_BACK);
    }
    SetColor(color, opacity);
    glBegin(GL_TRIANGLE_FAN);
    Vertex({0, 0, 0});
    for (std::uint32_t i = 0; i <= m_nCorners; ++i) Vertex(Corner(i % m_nCorners));
    glEnd();
    if (m_bCullBack) glPopAttrib();
    glDisable(GL_BLEND);
}

// The axis about which the sphere tilts the plane, and the circle on which the sphere would move.
void Plane::DrawTiltGuides(const Double3& sphere) const {
    const double reach = std::hypot(sphere[0], sphere[1]);
    if (!(reach > 0.0)) return;  // a plane without extent
    glNormal3d(0, 0, 1);         // gluSphere() leaves another one
    SetColor(m_nOutlineColor);
    // The ends of the axis as angles on the outline: across the direction of the sphere.
    const double size = std::acos(std::clamp(sphere[1] / reach, -1.0, 1.0));
    const double end = (-sphere[0] > 0.0 ? size : -size) + std::numbers::pi / 2;
    glBegin(GL_LINES);
    Vertex(OutlinePoint(end));
    Vertex(OutlinePoint(end + std::numbers::pi));
    glEnd();

    // Across its axis, the sphere moves from its present place towards the normal: cos along its own direction, sin
    // along z.
    BlendWhenTranslucent(m_fHotOpacity);
    SetColor(m_nOutlineColor, m_fHotOpacity);
    constexpr int kSteps = 72;
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i <= kSteps; ++i) {
        const double angle = i % kSteps * (kTurn / kSteps);
        Vertex({sphere[0] * std::cos(angle), sphere[1] * std::cos(angle), reach * std::sin(angle)});
    }
    glEnd();
    glDisable(GL_BLEND);
}

// Along the normal, on both sides of the first corner.
void Plane::DrawDoubleArrow(GLUquadric* quadric) const {
    const Double3 corner = Corner(0);
    const double gap = m_dRadius / 60;
    glPushMatrix();
    glTranslated(corner[0], corner[1], corner[2]);
    glTranslated(0, 0, gap);
    DrawArrow(quadric, m_dRadius);
    glRotated(180, 1, 0, 0);
    glTranslated(0, 0, 2 * gap);
    DrawArrow(quadric, m_dRadius);
    glPopMatrix();
}

std::uint32_t Plane::DrawPickIds(std::uint32_t base) {
    const Quadric quadric(gluNewQuadric());
    std::uint32_t count = 0;
    glPushMatrix();
    glMultMatrixd(m_dMatrix.data());
    if (m_bMoveHandleVisible) {
        SetColor(base + count++);
        DrawDoubleArrow(quadric.get());
    }
    if (m_bRotateHandlesVisible) {
        for (std::uint32_t i = 0; i < kSphereCount; ++i) {
            SetColor(base + count++);
            DrawSphere(quadric.get(), SpherePoint(i), m_dRadius);
        }
    }
    glPopMatrix();
    return count;
}

// The order of DrawPickIds(): the arrow when it is shown, then the spheres.
void Plane::OnPicked(std::uint32_t k) {
    const std::uint32_t firstSphere = m_bMoveHandleVisible ? 1 : 0;
    if (m_bMoveHandleVisible && k == 0) m_pick = PlaneHandle{0, PlaneHandle::kArrow};
    if (m_bRotateHandlesVisible && k >= firstSphere && k < firstSphere + kSphereCount)
        m_pick = PlaneHandle{k - firstSphere, PlaneHandle::kSphere};
}
