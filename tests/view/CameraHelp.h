// What the tests of the camera share.
#pragma once
#include <ostream>
#include <string>

#include "support/ControlFixture.h"
#include "view/VectorHelp.h"

inline constexpr float kS = 0.70710678f;  // half the square root of two
inline constexpr float kSin20 = 0.34202014f, kCos20 = 0.93969262f;

inline void PrintTo(const WindowSize& size, std::ostream* out) { *out << size.width << " x " << size.height; }
inline std::string NameOfSize(const testing::TestParamInfo<WindowSize>& row) {
    return std::to_string(row.param.width) + "x" + std::to_string(row.param.height);
}

inline void ExpectNoRequest(const WindowProbe& window) {
    EXPECT_EQ(window.refreshes + window.invalidates + window.eraseInvalidates, 0);
}
inline void ExpectOnlyRefresh(const WindowProbe& window, int count = 1) {
    EXPECT_EQ(window.refreshes, count);
    EXPECT_EQ(window.invalidates + window.eraseInvalidates, 0);
}

/// One triangle that spans the box from low to high.
inline Mesh& AddBox(CKV_ScenePaneCtrl& control, const Float3& low, const Float3& high) {
    return AddMesh(control,
                   {{.x = low[0], .y = low[1], .z = low[2], .nz = 1},
                    {.x = high[0], .y = high[1], .z = high[2], .nz = 1},
                    {.x = low[0], .y = high[1], .z = low[2], .nz = 1}},
                   {{{0, 1, 2}}});
}

inline bool SetView(CKV_ScenePaneCtrl& control, const Float3& wx, const Float3& wy, const Float3& center, float zoom) {
    return control.SetViewParams(wx[0], wx[1], wx[2], wy[0], wy[1], wy[2], center[0], center[1], center[2], zoom, 0) !=
           0;
}
