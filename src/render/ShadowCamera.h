// Where the light of the shadows stands: 20 degrees to the side of the viewing direction, so that it turns with the
// camera.
#pragma once

struct ShadowLookAt {
    float eye[3];
    float center[3];
    float up[3];
};

/// @param axisY   unit, points up on the screen
/// @param axisZ   unit, points from the scene to the viewer
/// @param center  what the camera looks at; the light stands one unit away from it
[[nodiscard]] ShadowLookAt ComputeShadowLookAt(const float axisY[3], const float axisZ[3], const float center[3]);
