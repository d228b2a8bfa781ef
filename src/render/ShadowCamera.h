// Position of the light that casts the shadows: 20 degrees to the side of the viewing direction, so that it turns with
// the camera. Shadows.cpp draws the depth pass from it.
#pragma once

/// Arguments of gluLookAt(), world frame.
struct ShadowLookAt {
    float eye[3];
    float center[3];
    float up[3];
};

/// @param axisY   unit vector that points up on the screen, world frame
/// @param axisZ   unit vector from the scene to the viewer, world frame
/// @param center  point that the camera looks at; the light is one unit away from it
[[nodiscard]] ShadowLookAt ComputeShadowLookAt(const float axisY[3], const float axisZ[3], const float center[3]);
