// Matrices of the reference renderer: a rigid view and an orthographic projection to a window with y upward.
#pragma once
#include "support/ReferenceScene.h"

namespace reference {

/// World to eye frame: rows of the rotation, and the eye point.
struct View {
    Vec right, up, back, eye;

    [[nodiscard]] Vec Turned(const Vec& direction) const {
        return {Dot(right, direction), Dot(up, direction), Dot(back, direction)};
    }
    [[nodiscard]] Vec At(const Vec& world) const { return Turned(world - eye); }
};

/// Looks from @p eye at @p target.
[[nodiscard]] View LookAt(const Vec& eye, const Vec& target, const Vec& up);
[[nodiscard]] View CameraView(const Camera& camera);
/// The view of the pass that fills the shadow map.
[[nodiscard]] View ShadowView(const Camera& camera, const Lighting& lighting);

/// Eye frame to a target of width x height pixels: x and y in pixels with y upward, z the depth from 0 to 1.
struct Window {
    double halfWidth, halfHeight, depthRange;
    int width, height;

    [[nodiscard]] Vec At(const Vec& eye) const {
        return {(eye.x / halfWidth + 1.0) * 0.5 * width, (eye.y / halfHeight + 1.0) * 0.5 * height,
                (1.0 - eye.z / depthRange) * 0.5};
    }
};
/// The projection of a camera is the same for the picture and for the shadow map; only the number of pixels differs.
[[nodiscard]] Window WindowOf(const Camera& camera, int width, int height);

}  // namespace reference
