// The position of the shadow light, worked out by hand for views along the axes.
#include "render/ShadowCamera.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// Sine and cosine of 20 degrees, from a table.
constexpr float kSin20 = 0.34202014f, kCos20 = 0.93969262f;
constexpr float kTolerance = 2e-7f;

void ExpectLight(const ShadowLookAt& lookAt, float x, float y, float z) {
    EXPECT_NEAR(lookAt.eye[0] - lookAt.center[0], x, kTolerance);
    EXPECT_NEAR(lookAt.eye[1] - lookAt.center[1], y, kTolerance);
    EXPECT_NEAR(lookAt.eye[2] - lookAt.center[2], z, kTolerance);
}

constexpr float kOrigin[3] = {0, 0, 0};
constexpr float kUpY[3] = {0, 1, 0};
constexpr float kUpZ[3] = {0, 0, 1};

// Along z the azimuth is 90 degrees. About y by -20: (-sin, 0, cos). About z by -90: (x, y) becomes (y, -x).
TEST(ShadowCamera, LookingDownTheZAxisHasTheLightTwentyDegreesTowardsY) {
    const float axisZ[3] = {0, 0, 1};
    ExpectLight(ComputeShadowLookAt(kUpY, axisZ, kOrigin), 0.0f, kSin20, kCos20);
}

// The tilt of 180 degrees about x turns (-sin, 0, cos) to (-sin, 0, -cos).
TEST(ShadowCamera, LookingUpTheZAxisHasTheSameAzimuth) {
    const float axisZ[3] = {0, 0, -1};
    ExpectLight(ComputeShadowLookAt(kUpY, axisZ, kOrigin), 0.0f, kSin20, -kCos20);
}

// x: azimuth 90 - atan2(-0, -1) = 90 + 180 (the zero is negative). Tilt 90: (-sin, 0, cos) becomes (-sin, -cos, 0).
// About z by -270, that is by 90: (x, y) becomes (-y, x).
TEST(ShadowCamera, LookingAlongXHasTheLightAtTheSide) {
    const float axisZ[3] = {1, 0, 0};
    ExpectLight(ComputeShadowLookAt(kUpZ, axisZ, kOrigin), kCos20, -kSin20, 0.0f);
}

// y: azimuth 90 - atan2(-1, -0) = 90 + 90. About z by -180: (-sin, -cos, 0) becomes (sin, cos, 0).
TEST(ShadowCamera, LookingAlongYHasTheLightAtTheSide) {
    const float axisZ[3] = {0, 1, 0};
    ExpectLight(ComputeShadowLookAt(kUpZ, axisZ, kOrigin), kSin20, kCos20, 0.0f);
}

TEST(ShadowCamera, HasAFixedAzimuthBelowTheLimitNearTheZAxisOnly) {
    const float below[3] = {0.00009f, 0, 1};
    ExpectLight(ComputeShadowLookAt(kUpY, below, kOrigin), 0.0f, kSin20, kCos20);
    // At the limit the azimuth of x applies: about z by 90, (-sin, 0) becomes (0, -sin).
    const float at[3] = {0.0001f, 0, 1};
    ExpectLight(ComputeShadowLookAt(kUpY, at, kOrigin), 0.0f, -kSin20, kCos20);
    const float atY[3] = {0, -0.0001f, 1};  // azimuth 90 - atan2(0.0001, -0) = 0
    ExpectLight(ComputeShadowLookAt(kUpY, atY, kOrigin), -kSin20, 0.0f, kCos20);
}

TEST(ShadowCamera, IsOneUnitFromTheCentreAndKeepsCentreAndUp) {
    const float center[3] = {100, -200, 300}, up[3] = {0.6f, 0.8f, 0};
    const float axisZ[3] = {0, 0, 1};
    const ShadowLookAt lookAt = ComputeShadowLookAt(up, axisZ, center);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(lookAt.center[i], center[i]);
        EXPECT_EQ(lookAt.up[i], up[i]);
    }
    EXPECT_NEAR(lookAt.eye[0], 100.0f, 1e-4f);
    EXPECT_NEAR(lookAt.eye[1], -200.0f + kSin20, 1e-4f);
    EXPECT_NEAR(lookAt.eye[2], 300.0f + kCos20, 1e-4f);
}

TEST(ShadowCamera, AcceptsAnAxisThatRoundingMadeLongerThanOne) {
    const float axisZ[3] = {0, 0, 1.0000001f};
    ExpectLight(ComputeShadowLookAt(kUpY, axisZ, kOrigin), 0.0f, kSin20, kCos20);
}

}  // namespace
