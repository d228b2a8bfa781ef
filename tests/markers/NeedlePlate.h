// A scene for needles under the mouse: half a unit per pixel, the world's origin in the window's centre, the viewer at
// +z, so that the pixel (x, y) shows ((x - 320) / 2, (240 - y) / 2). A plate at z = 5 reaches from (-80, -60) to (80,
// 60).
#pragma once
#include <gtest/gtest.h>

#include "markers/NeedleHelp.h"

inline constexpr float kLength = 20, kHeadRadius = 5;

struct Pixel {
    int x, y;
};
constexpr Pixel PixelOf(float worldX, float worldY) {
    return {320 + static_cast<int>(2 * worldX), 240 - static_cast<int>(2 * worldY)};
}
inline constexpr Pixel kBackgroundAt = PixelOf(100, 80);

inline Mesh& AddPlate(CKV_ScenePaneCtrl& control, float normalZ = 1) {
    return AddMesh(control,
                   {{.x = -80, .y = -60, .z = 5, .nz = normalZ},
                    {.x = 80, .y = -60, .z = 5, .nz = normalZ},
                    {.x = 80, .y = 60, .z = 5, .nz = normalZ},
                    {.x = -80, .y = 60, .z = 5, .nz = normalZ}},
                   {{{0, 1, 2}}, {{0, 2, 3}}});
}

inline void SetScene(CKV_ScenePaneCtrl& control) {
    AddPlate(control);
    control.m_fViewCenter = control.m_fRotationCenter = {};
    control.m_fZoom = 1;
    control.m_fSceneSize = 240;  // over 480 pixels
    control.SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    control.SetNeedlePickingMode(-1);
    control.SetNeedleDrawingMode(-1);
    control.SetNeedleRenderParameters(kLength, kHeadRadius, 0xFF, 1, 0x505050, 1, 0xFF0000, 0xFF00);
    control.PerformRefresh();
}

/// A needle that stands on the plate; its head is at (x, y, 25).
inline void AddNeedle(CKV_ScenePaneCtrl& control, std::int32_t id, float x, float y, float headZ = 25) {
    ASSERT_NE(control.CreateNeedle(id, x, y, 5, x, y, headZ), 0);
}

inline void ExpectNear(const Float3& found, const Float3& expected, const char* what) {
    // The depth buffer has 24 bits over 1920 units.
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(found[i], expected[i], 5e-4) << what << ", component " << i;
}
