// The clip plane: a frame in space whose normal side is kept, with the handles by which the mouse moves it.
#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "clip/RenderObject.h"

class GLUquadric;

using Double2 = std::array<double, 2>;
using Double3 = std::array<double, 3>;

/// A part of the plane that the mouse can hold.
struct PlaneHandle {
    static constexpr std::uint32_t kArrow = 0, kBall = 1;
    std::uint32_t index = 0;  ///< of the ball
    std::uint32_t kind = kArrow;
    bool operator==(const PlaneHandle&) const = default;
};

/// Window pixels of a point of the world, y downward.
using ScreenProjector = std::function<Double2(const Double3& point)>;

class Plane final : public RenderObject {
public:
    Plane();
    [[nodiscard]] Double3 GetCenter() const;
    void SetCenter(const Double3& center);
    /// Unit length, world frame.
    [[nodiscard]] Double3 GetNormal() const;
    /// Turns the plane from the Z axis by the shortest way; a twist about the normal is lost. The length of @p n does
    /// not matter, n = (0, 0, -1) gives the reflection -1 on the diagonal.
    void SetNormal(const Double3& n);
    /// (n, d) with n dot p + d at least 0 on the side that is kept.
    [[nodiscard]] std::array<double, 4> GetEquation() const;
    /// Foot of @p point on the plane.
    [[nodiscard]] Double3 ProjectOntoPlane(const Double3& point) const;
    /// The square's inscribed circle gets this radius.
    void SetRadiusFromExtent(double extent);
    /// Clips with GL_CLIP_PLANE0; the view matrix must be in force, without an object's transform.
    void EnableClipping() const;
    static void DisableClipping();

    // ---- clip/PlaneDraw.cpp
    void Draw() override;
    std::uint32_t DrawPickIds(std::uint32_t base) override;
    [[nodiscard]] bool IsPicked() const override { return m_pick.has_value(); }
    void ClearPick() override { m_pick.reset(); }
    void OnPicked(std::uint32_t k) override;
    [[nodiscard]] std::optional<PlaneHandle> GetPick() const { return m_pick; }
    /// A point of the polygon in the plane's own frame; @p theta in radians.
    [[nodiscard]] Double3 OutlinePoint(double theta) const;

    // ---- clip/PlaneDrag.cpp: window pixels, y downward
    /// By @p distance along the normal turned once more by the plane's own rotation: the normal of an untilted plane.
    void MoveAlongNormal(double distance);
    /// @param normalOnScreen  direction of the normal there, of any length
    void BeginHandleDrag(std::int32_t x, std::int32_t y, const Double2& centerOnScreen, const Double2& normalOnScreen,
                         const PlaneHandle& pick);
    void BeginPlaneDrag(std::int32_t x, std::int32_t y, const Double2& normalOnScreen);
    /// The arrow pushes the plane along its normal, a ball tilts it towards the mouse.
    void DragHandle(std::int32_t x, std::int32_t y, const ScreenProjector& project);
    /// Ten pixels along the normal's direction on the screen are one unit.
    void DragAlongNormal(std::int32_t x, std::int32_t y);
    /// With true the plane is where the drag began.
    void RestoreDragStart(bool restore);

    bool m_bFaceVisible = true;
    bool m_bOutlineVisible = true;
    bool m_bCullBack = true;                      ///< draw the face from its front side only
    bool m_bHighlighted = false;                  ///< shows the hot colours and opacity
    bool m_bCenterVisible = false;                ///< draw a ball at the centre
    bool m_bMoveHandleVisible = true;             ///< the double arrow
    bool m_bRotateHandlesVisible = true;          ///< the two balls
    double m_dRadius = 0.0;                       ///< distance of the corners from the centre
    std::uint32_t m_nColor = 0, m_nHotColor = 0;  ///< 0x00BBGGRR, as all here
    std::uint32_t m_nHandleColor = 0;
    std::uint32_t m_nOutlineColor = 0, m_nHotOutlineColor = 0;
    float m_fOpacity = 0.5f, m_fHotOpacity = 0.8f;
    /// Column-major; column 2 is the normal direction, column 3 the centre, world frame.
    std::array<double, 16> m_dMatrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::uint32_t m_nCorners = 4;
    double m_dStartAngle;                      ///< of the first corner, radians
    float m_fHandleAngle[2] = {0.0f, -90.0f};  ///< the two balls, degrees on the outline
    struct DragRecord {
        PlaneHandle pick;
        std::int32_t pressX = 0, pressY = 0;
        Double2 centerOnScreen{}, normalOnScreen{};  ///< at the press; the normal's direction of unit length
        Double3 center{};                            ///< at the press
        std::array<double, 16> matrix{};             ///< m_dMatrix at the press
    };
    DragRecord m_drag;
    std::optional<PlaneHandle> m_pick;

private:
    // ---- clip/PlaneDraw.cpp, in the plane's own frame
    [[nodiscard]] Double3 Corner(std::uint32_t i) const;
    [[nodiscard]] Double3 BallPoint(std::uint32_t index) const;
    void DrawOutline(std::uint32_t color) const;
    void DrawFace(std::uint32_t color, float opacity) const;
    void DrawTiltGuides(const Double3& ball) const;
    void DrawDoubleArrow(GLUquadric* quadric) const;
};
