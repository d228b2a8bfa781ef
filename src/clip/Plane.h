// The clip plane: a frame in space whose normal side is kept, with the handles by which the mouse moves it: a double
// arrow at a corner and two spheres on the outline. Stored as one matrix, so that the host, the mouse and the drawing
// agree.
#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "clip/RenderObject.h"
#include "geometry/Vector3.h"

class GLUquadric;

using Double2 = std::array<double, 2>;

/// A part of the plane that the mouse can hold.
struct PlaneHandle {
    static constexpr std::uint32_t kArrow = 0, kSphere = 1;
    std::uint32_t index = 0;  ///< of the sphere: 0 or 1
    std::uint32_t kind = kArrow;
    bool operator==(const PlaneHandle&) const = default;
};

/// Window pixels of a point in the world frame, y downward.
using ScreenProjector = std::function<Double2(const Double3& point)>;

class Plane final : public RenderObject {
public:
    /// At the origin with its normal along Z, without extent. No OpenGL call.
    Plane();
    /// World frame.
    [[nodiscard]] Double3 GetCenter() const;
    /// Moves the plane without rotating it; world frame.
    void SetCenter(const Double3& center);
    /// Unit length, world frame.
    [[nodiscard]] Double3 GetNormal() const;
    /// Rotates the plane from the Z axis by the shortest way (Rodrigues' formula); a twist about the normal is lost.
    /// The length of @p n does not matter. n = (0, 0, -1) has no shortest way and gives the reflection with -1 on the
    /// diagonal. n = 0 gives a quarter turn about no axis: a block of the cosine, about 6e-17, on the diagonal, so that
    /// the normal stays along Z.
    void SetNormal(const Double3& n);
    /// (n, d) with n dot p + d at least 0 on the side that is kept, world frame.
    [[nodiscard]] std::array<double, 4> GetEquation() const;
    /// Foot of @p point on the plane, world frame.
    [[nodiscard]] Double3 ProjectOntoPlane(const Double3& point) const;
    /// Makes the polygon's inscribed circle as large as @p extent, in world units.
    void SetRadiusFromExtent(double extent);
    /// Clips with GL_CLIP_PLANE0 in the current context. The view matrix must be in force, without an object's
    /// transform: OpenGL takes the plane to eye coordinates at this call. Programs must write gl_ClipVertex.
    void EnableClipping() const;
    /// For a program that discards what the plane cuts off. It must be in use.
    /// @param clips  whether the plane cuts off anything
    void SetClipUniforms(std::uint32_t program, bool clips) const;
    static void DisableClipping();

    // ---- clip/PlaneDraw.cpp
    void Draw() override;
    std::uint32_t DrawPickIds(std::uint32_t base) override;
    [[nodiscard]] bool IsPicked() const override { return m_pick.has_value(); }
    void ClearPick() override { m_pick.reset(); }
    void OnPicked(std::uint32_t k) override;
    [[nodiscard]] std::optional<PlaneHandle> GetPick() const { return m_pick; }
    /// A point of the polygon in the plane's own frame, z = 0. Between two corners it goes along the edge by the share
    /// of the angle.
    /// @param theta  radians, counted from the start angle, which also turns the corners
    [[nodiscard]] Double3 OutlinePoint(double theta) const;

    // ---- clip/PlaneDrag.cpp: window pixels, y downward
    /// Moves the plane by @p distance world units along its normal, which the plane's own rotation turns once more:
    /// along the normal only for a plane that is not tilted.
    void MoveAlongNormal(double distance);
    /// Starts a drag of the handle that was picked.
    /// @param normalOnScreen  direction of the normal there, of any length; zero when the plane is seen face-on, and
    ///                        the arrow does not react then
    void BeginHandleDrag(std::int32_t x, std::int32_t y, const Double2& centerOnScreen, const Double2& normalOnScreen,
                         const PlaneHandle& pick);
    /// Starts a drag of the plane as a whole.
    void BeginPlaneDrag(std::int32_t x, std::int32_t y, const Double2& normalOnScreen);
    /// One mouse move of a handle's drag: the arrow moves the plane along its normal, a sphere tilts it towards the
    /// mouse. The tilt is searched in steps of 5 to 0.3125 degrees, about 30 projections for each move.
    void DragHandle(std::int32_t x, std::int32_t y, const ScreenProjector& project);
    /// Moves the plane from where it was at the press: ten pixels of mouse travel along the normal's direction on the
    /// screen are one world unit.
    void DragAlongNormal(std::int32_t x, std::int32_t y);
    /// With true puts the plane back to where it was at the press.
    void RestoreDragStart(bool restore);

    bool m_bFaceVisible = true;
    bool m_bOutlineVisible = true;
    bool m_bCullBack = true;                      ///< draw the face from its front side only
    bool m_bHighlighted = false;                  ///< shows the hot colours and opacity
    bool m_bCenterVisible = false;                ///< draw a sphere at the centre
    bool m_bMoveHandleVisible = true;             ///< the double arrow
    bool m_bRotateHandlesVisible = true;          ///< the two spheres
    double m_dRadius = 0.0;                       ///< distance of the corners from the centre, world units
    std::uint32_t m_nColor = 0, m_nHotColor = 0;  ///< 0x00BBGGRR, as all here
    std::uint32_t m_nHandleColor = 0;
    std::uint32_t m_nOutlineColor = 0, m_nHotOutlineColor = 0;
    float m_fOpacity = 0.5f, m_fHotOpacity = 0.8f;
    /// Column-major; column 2 is the normal direction, column 3 the centre, world frame.
    std::array<double, 16> m_dMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::uint32_t m_nCorners = 4;
    double m_dStartAngle;                      ///< of the first corner, radians
    float m_fHandleAngle[2] = {0.0f, -90.0f};  ///< the two spheres, degrees on the outline
    /// What the press of a drag found; every later move is computed from it.
    struct DragRecord {
        PlaneHandle pick;
        std::int32_t pressX = 0, pressY = 0;
        Double2 centerOnScreen{}, normalOnScreen{};  ///< at the press; the normal's direction of unit length
        Double3 center{};                            ///< at the press, world frame
        std::array<double, 16> matrix{};             ///< m_dMatrix at the press
    };
    DragRecord m_drag;
    std::optional<PlaneHandle> m_pick;  ///< the handle under the mouse, by the last hover

private:
    // ---- clip/PlaneDraw.cpp, in the plane's own frame
    [[nodiscard]] Double3 Corner(std::uint32_t i) const;
    [[nodiscard]] Double3 SpherePoint(std::uint32_t index) const;
    void DrawOutline(std::uint32_t color) const;
    void DrawFace(std::uint32_t color, float opacity) const;
    void DrawTiltGuides(const Double3& sphere) const;
    void DrawDoubleArrow(GLUquadric* quadric) const;
};
