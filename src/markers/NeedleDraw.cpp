// Needles in a frame and in a screenshot: the ball at the surface, the pin, the head, and the number beside it.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <string_view>

#include "control/ScenePaneCtrl.h"
#include "render/HostColor.h"

namespace {

constexpr GLint kSlices = 20, kStacks = 20;  // of balls and pins
constexpr double kTaper = 0.2;               // radius of the pin at the surface, in parts of its radius at the head

void DrawBall(GLUquadric* quadric, const Float3& center, float radius, std::uint32_t color) {
    SetHostColor(color);
    glPushMatrix();
    glTranslatef(center[0], center[1], center[2]);
    gluSphere(quadric, radius, kSlices, kStacks);
    glPopMatrix();
}

/// Rotates the modelview matrix from the z axis to a direction, about the axis perpendicular to both.
/// @param length  of the direction, above 0 and finite
void RotateFromZ(const Double3& direction, double length) {
    const double degrees = std::acos(std::clamp(direction[2] / length, -1.0, 1.0)) * 180.0 / std::numbers::pi;
    const double across = std::hypot(direction[0], direction[1]);
    if (across > 0.0)
        glRotated(degrees, -direction[1] / across, direction[0] / across, 0.0);
    else
        glRotated(degrees, 1.0, 0.0, 0.0);  // along +z or -z every axis across does
}

/// From the head to the surface.
void DrawPin(GLUquadric* quadric, const Needle& needle) {
    const Double3 direction = ToDouble3(needle.pin) - ToDouble3(needle.head);
    const double length = std::hypot(direction[0], direction[1], direction[2]);
    if (!(length > 0.0) || !std::isfinite(length)) return;  // it has no direction
    SetHostColor(needle.pinColor);
    glPushMatrix();
    glTranslatef(needle.head[0], needle.head[1], needle.head[2]);
    RotateFromZ(direction, length);
    gluCylinder(quadric, needle.pinSize, kTaper * needle.pinSize, length, kSlices, kStacks);
    glPopMatrix();
}

// ---- the number

/// A number in the characters of both text operations.
struct NumberText {
    explicit NumberText(std::int32_t number)
        : count(static_cast<std::size_t>(std::to_chars(bytes.begin(), bytes.end(), number).ptr - bytes.begin())) {
        std::ranges::copy(Narrow(), wide.begin());
    }
    [[nodiscard]] std::string_view Narrow() const { return {bytes.data(), count}; }
    [[nodiscard]] std::u16string_view Wide() const { return {wide.data(), count}; }

    std::array<char, 11> bytes{};  // -2147483648
    std::array<char16_t, 11> wide{};
    std::size_t count;
};

/// Window coordinates, y upward; nothing where one of them is not finite or has no pixel.
std::optional<Double3> ToWindow(ViewMatrices& m, const Double3& world) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    Double3 window{};
    if (gluProject(world[0], world[1], world[2], m.ModelView().data(), m.Projection().data(), m.Viewport().data(),
                   &window[0], &window[1], &window[2]) != GLU_TRUE)
        return std::nullopt;
    const bool hasPixel = std::abs(window[0]) <= kMost && std::abs(window[1]) <= kMost && std::isfinite(window[2]);
    return hasPixel ? std::optional(window) : std::nullopt;
}

std::optional<Double3> ToWorld(ViewMatrices& m, const Double3& window) {
    Double3 world{};
    if (gluUnProject(window[0], window[1], window[2], m.ModelView().data(), m.Projection().data(), m.Viewport().data(),
                     &world[0], &world[1], &world[2]) != GLU_TRUE)
        return std::nullopt;
    return world;
}

/// Where the number begins: to the right of the head on the screen, half its width beside it and half a line below its
/// middle, in the depth of its centre.
std::optional<Double3> NumberPosition(ViewMatrices& m, const Needle& needle, std::int32_t width, std::int32_t height) {
    const Double3 head = ToDouble3(needle.head);
    const auto window = ToWindow(m, head);
    if (!window) return std::nullopt;
    const auto beside = ToWorld(m, *window + Double3{1, 0, 0});
    if (!beside) return std::nullopt;
    const auto rim = ToWindow(m, head + needle.headRadius * Normalized(*beside - head));
    if (!rim) return std::nullopt;
    return ToWorld(m, *rim + Double3{width / 2.0, -height / 2.0, 0});
}

/// In black, behind what is nearer. Outside the view volume OpenGL has no raster position and draws none of it.
void DrawNumber(CKV_ScenePaneCtrl& control, const Needle& needle, int fontIndex) {
    const COpenGLTextDraw& text = control.m_textDraw;
    const NumberText number(needle.id);
    const auto position =
        NumberPosition(control.m_viewMatrices, needle, text.GetTextWidth(number.Narrow(), fontIndex + 1),
                       text.GetFontHeight(fontIndex + 1));
    if (!position) return;
    glDisable(GL_LIGHTING);
    SetHostColor(0);
    glRasterPos3dv(position->data());
    text.PrintText(number.Wide(), fontIndex);
    glEnable(GL_LIGHTING);
}

}  // namespace

void CKV_ScenePaneCtrl::DrawNeedles(int fontIndex) {
    if (m_vNeedles.empty()) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (const GLenum name : {GL_DEPTH_TEST, GL_LIGHTING, GL_COLOR_MATERIAL, GL_LIGHT0}) glEnable(name);
    for (const Needle& needle : m_vNeedles) {
        if (needle.hitPointRadius > 0.0f) DrawBall(m_pQuadric, needle.pin, needle.hitPointRadius, needle.hitPointColor);
        DrawPin(m_pQuadric2, needle);
        DrawBall(m_pQuadric, needle.head, needle.headRadius,
                 needle.selected ? needle.headSelectionColor : needle.headColor);
        DrawNumber(*this, needle, fontIndex);
    }
    glPopAttrib();
}
