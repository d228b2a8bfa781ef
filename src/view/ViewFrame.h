// The orthographic camera as plain numbers: an orthonormal frame, a centre, a zoom and a scene size.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "geometry/Mesh.h"
#include "geometry/Vector3.h"

/// World frame: wx to the right of the screen, wy to its top, wz from the scene towards the viewer.
struct ViewFrame {
    Float3 wx{1, 0, 0}, wy{0, 1, 0}, wz{0, 0, 1};
    Float3 center{0, 0, 0};  ///< world point at the centre of the window
};

/// The axes of a fixed view.
/// @param mode  a KV_ScenePane::ViewMode
/// @return the frame with its centre at the origin, which callers replace; nothing for any other mode
[[nodiscard]] std::optional<ViewFrame> CannedView(std::int32_t mode);

/// Makes the views along the world's Y axis exact: wz within 1e-5 of that axis becomes it, and then wx within 1e-5 of X
/// makes wx and wy exact, too. So the rounding of drags does not add up there.
void SnapFrame(ViewFrame& frame);

/// Extents of the orthographic projection in world units, symmetric about the eye. The near plane is at -depth, so that
/// nothing in front of the eye is clipped.
struct OrthoExtents {
    double halfWidth = 0.0, halfHeight = 0.0, depth = 0.0;
};
/// @param sceneSize  diagonal of the scene's box; at zoom 1 the shorter side of the window shows exactly that
[[nodiscard]] OrthoExtents ComputeOrthoExtents(float zoom, float sceneSize, float aspectX, float aspectY);

/// Factors of the window's shape: the ratio of the longer side to the shorter one for the longer side, 1 for the other.
struct AspectFactors {
    float x = 1.0f, y = 1.0f;
};
[[nodiscard]] AspectFactors ComputeAspect(std::int32_t width, std::int32_t height);

/// Position of the camera, world frame: on wz, two scene sizes from the centre.
[[nodiscard]] Float3 EyePoint(const ViewFrame& frame, float sceneSize);

/// Direction towards the head light, tilted to the bottom of the screen; world frame, not of unit length.
[[nodiscard]] Float3 HeadLightDirection(const ViewFrame& frame);

/// Whether the two axes are accepted as a view: squared lengths within 0.99 to 1.01, dot product within 0.01 of 0.
[[nodiscard]] bool IsViewFrame(const Float3& wx, const Float3& wy);

/// Size of the window and of the world that it shows.
struct PanScale {
    float sceneSize, zoom, aspectX, aspectY;
    std::int32_t width, height;  ///< pixels
};
/// The centre after a mouse travel in pixels, window y downward: the point under the mouse stays under it.
/// A window without area leaves the centre unchanged.
[[nodiscard]] Float3 PannedCenter(const ViewFrame& frame, const PanScale& scale, std::int32_t dx, std::int32_t dy);

/// The zoom after a drag of (dx, dy) pixels. The limits 0.1 and 10 are tested before the step, so that a step can
/// overshoot them by one factor.
[[nodiscard]] float ZoomedBy(float zoom, std::int32_t dx, std::int32_t dy);

/// The surface on an axis, searched by vertices: the frontmost vertex within about 0.3 units of the axis, else the
/// one nearest to it. Vertices that face away are skipped, hidden meshes are not. Linear in the number of vertices.
/// @param origin     start of the axis, world frame
/// @param direction  unit direction towards the viewer
/// @return the foot of that vertex on the axis; nothing when no vertex faces the viewer
[[nodiscard]] std::optional<Float3> FindAxisHit(std::span<const std::shared_ptr<Mesh>> meshes, const Float3& origin,
                                                const Float3& direction);
