// Shadows: position, colour, bias, and the switch. The light is 20 degrees from the viewing direction.
#include "render/SceneFixture.h"

using namespace lighting;

namespace {

/// Follows the light ray through @p point to the plane of @p square, for a camera that looks down z.
/// @return distance of the intersection from the edge of the square; positive inside, where the point is in shadow
double InsideSquareBy(const Square& square, const Vec3& point) {
    const Vec3 light = ShadowLightFromTop();
    const Vec3 hit = point + (square.center[2] - point[2]) / light[2] * light;
    return square.half - std::max(std::abs(hit[0] - square.center[0]), std::abs(hit[1] - square.center[1]));
}

class Shadows : public SceneInEveryWindow {
protected:
    Shadows() { pane->SetShadowMode(1); }

    const Vec3 kReceiverColor{0.8, 0.6, 0.4};
    const Vec3 kShadowColor{0.1, 0.0, 0.3};
};

INSTANTIATE_TEST_SUITE_P(Windows, Shadows, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(Shadows, AreOnForOneAndOffForAnythingElse) {
    EXPECT_EQ(pane->GetShadowMode(), 1);
    for (const std::int16_t mode : std::vector<std::int16_t>{2, 0, -1}) {
        pane->SetShadowMode(1);
        pane->SetShadowMode(mode);
        EXPECT_EQ(pane->GetShadowMode(), 0) << mode;
    }
}

TEST_P(Shadows, SwitchAndColourRequestNoFrame) {
    pane.window->Forget();
    pane->SetShadowMode(0);
    pane->SetShadowColor(1, 2, 3);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

TEST_P(Shadows, OfAnEmptySceneShowTheBackground) {
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

class ShadowsOfEveryShape : public Shadows {
protected:
    /// Checks every pixel of the receiver, except within @p margin units of the edges of shadow, receiver and occluder.
    void ExpectShadowOf(const Square& occluder, const Square& receiver, double margin) {
        int inShadow = 0, inLight = 0, wrong = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const Surface surface = receiver.At(camera, x, y, kReceiverColor);
                const Vec3 p = surface.position;
                const double half = receiver.half - margin;
                const Vec3 fromOccluder = camera.PointAt(x, y, occluder.center, {0, 0, 1}) - occluder.center;
                const bool covered =
                    std::max(std::abs(fromOccluder[0]), std::abs(fromOccluder[1])) < occluder.half + margin;
                const double inside = InsideSquareBy(occluder, p);
                if (std::max(std::abs(p[0]), std::abs(p[1])) > half || covered || std::abs(inside) < margin) continue;
                const Vec3 expected = Shadow(camera, surface, {.inShadow = inside > 0, .shadowColor = kShadowColor});
                ++(inside > 0 ? inShadow : inLight);
                if (DistanceAt(x, y, expected) <= kTolerance) continue;
                if (++wrong <= 5) ExpectPixel(x, y, expected);
            }
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_GT(inShadow, 500);
        EXPECT_GT(inLight, 5000);
    }

    void ExpectRightShadows(int width, int height) {
        Resize(width, height);
        Look(width, height);
        const Square occluder{.center = {0.3, 0.5, 3}, .half = 1.2}, receiver{.half = 4.0};
        Add(occluder, {1, 0, 0});
        Add(receiver, kReceiverColor);
        pane->SetShadowColor(0.1f, 0.0f, 0.3f);
        Frame();
        ASSERT_EQ(picture.width, width);
        ASSERT_EQ(picture.height, height);
        // A texel of the map and a pixel of the window on both sides of an edge.
        const double texel = 2 * std::max(camera.HalfWidth(), camera.HalfHeight()) / 2048;
        const double pixel = 2 * camera.HalfWidth() / width;
        ExpectShadowOf(occluder, receiver, 1.5 * (texel + pixel));
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, ShadowsOfEveryShape, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(ShadowsOfEveryShape, AreCorrectInAWideWindow) { ExpectRightShadows(1024, 768); }
TEST_P(ShadowsOfEveryShape, AreCorrectInATallWindowOfOddSize) { ExpectRightShadows(333, 777); }
TEST_P(ShadowsOfEveryShape, AreCorrectInASquareWindow) { ExpectRightShadows(400, 400); }

TEST_P(Shadows, InBlackKeepHalfTheDiffuseLight) {
    const Square occluder{.center = {0, 0, 3}, .half = 1}, receiver{.half = 4};
    Add(occluder);
    Add(receiver, kReceiverColor);
    pane->SetShadowColor(0, 0, 0);
    Frame();
    // The shadow is 3 * tan(20 degrees) = 1.09 units lower: visible below the occluder from y = -1 to -2.09.
    const int x = 160, y = 157;  // y = -1.56
    ExpectPixel(x, y, Shadow(camera, receiver.At(camera, x, y, kReceiverColor), {.inShadow = true}));
}

/// The occluder is so close to the receiver that the bias decides.
class ShadowBias : public Shadows {
protected:
    /// Whether the receiver is in shadow of an occluder that is closer to the light by @p depth, in units of the map
    /// depth.
    bool IsInShadow(double depth) {
        pane->m_vpMeshes.clear();
        Look(320, 240, 0.1);
        // The depth range of the map is 80 units along the light.
        const double distance = depth * 80.0 * ShadowLightFromTop()[2];
        const Square receiver{.half = 0.4};
        Add({.center = {0, 0.1, distance}, .half = 0.1});
        Add(receiver, kReceiverColor);
        pane->SetShadowColor(0, 0, 1);
        Frame();
        // The occluder ends at y = 0; its shadow ends distance * tan(20 degrees) lower, which is 0.11 or more.
        const int x = 160, y = 132;  // y = -0.052
        const Surface surface = receiver.At(camera, x, y, kReceiverColor);
        EXPECT_GT(InsideSquareBy({.center = {0, 0.1, distance}, .half = 0.1}, surface.position), 0.01);
        const Vec3 lit = Shadow(camera, surface, {});
        const Vec3 dark = Shadow(camera, surface, {.inShadow = true, .shadowColor = {0, 0, 1}});
        const bool inShadow = DistanceAt(x, y, dark) < DistanceAt(x, y, lit);
        ExpectPixel(x, y, inShadow ? dark : lit);
        return inShadow;
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, ShadowBias, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(ShadowBias, KeepsAPointLitThatIsFourThousandthsFarther) {
    EXPECT_FALSE(IsInShadow(0.004));
    EXPECT_FALSE(IsInShadow(0.0049));
}

TEST_P(ShadowBias, ShadowsAPointThatIsSixThousandthsFarther) {
    EXPECT_TRUE(IsInShadow(0.0051));
    EXPECT_TRUE(IsInShadow(0.006));
}

TEST_P(Shadows, AreNotCastByObjectsOutsideTheShadowMap) {
    // The occluder is near the border of the window: when the view moves away it is no longer in the shadow map.
    const Square occluder{.center = {0, 3, 3}, .half = 1}, receiver{.half = 4};
    Add(occluder);
    Add(receiver, kReceiverColor);
    pane->SetShadowColor(0, 0, 1);
    Frame();
    const auto inShadow = [&](const Vec3& at) {
        const auto [x, y] = camera.ToWindow(at);
        const int px = static_cast<int>(x), py = static_cast<int>(y);
        const Surface surface = receiver.At(camera, px, py, kReceiverColor);
        const bool dark =
            DistanceAt(px, py, Shadow(camera, surface, {.inShadow = true, .shadowColor = {0, 0, 1}})) <= kTolerance;
        if (!dark) ExpectPixel(px, py, Shadow(camera, surface, {}));
        return dark;
    };
    EXPECT_TRUE(inShadow({0, 1.5, 0}));
    // y from -1 to 1; seen from the light the lower edge of the occluder is at 2 * cos - 3 * sin = 0.85.
    Look(320, 240, 0.2);
    pane->m_fViewCenter = {0, 0.5f, 0};
    camera.center = {0, 0.5, 0};
    pane->SetupViewMatrices();
    Frame();
    EXPECT_TRUE(inShadow({0, 1.4, 0}));
    // Now its lower edge is at 4 * cos - 3 * sin = 2.7.
    pane->m_vpMeshes[0] = Square{.center = {0, 5, 3}, .half = 1}.ToMesh(false);
    Frame();
    EXPECT_FALSE(inShadow({0, 1.4, 0}));
}

TEST_P(Shadows, AreCastByVisibleObjectsOnly) {
    const Square receiver{.half = 4};
    Add({.center = {0, 0, 3}, .half = 1}).m_iVisible = 0;
    Add(receiver, kReceiverColor);
    Frame();
    ExpectPixel(160, 157, Shadow(camera, receiver.At(camera, 160, 157, kReceiverColor), {}));
    ExpectPixel(160, 120, Shadow(camera, receiver.At(camera, 160, 120, kReceiverColor), {}));
}

TEST_P(Shadows, HideAllObjectsInPerPixelAndNothingMode) {
    Add({.half = 4});
    for (const auto mode : {KV_ScenePane::DrawModePerPixel, KV_ScenePane::DrawModeNothing}) {
        pane->m_nDrawMode = mode;
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << mode;
    }
}

TEST_P(Shadows, StopAtTheClipPlaneWithTheObjects) {
    const Square square{.half = 4};
    Add(square, kReceiverColor);
    pane->m_clipPlane.SetCenter({1, 0, 0});
    pane->m_clipPlane.SetNormal({-1, 0, 0});  // keeps x below 1
    pane->m_bClipPlaneActive = 1;
    Frame();
    ExpectPixel(182, 120, Shadow(camera, square.At(camera, 182, 120, kReceiverColor), {}));
    ExpectBackground(186, 120);
    // A drag of the plane shows the objects whole without shadows only: the shadow program discards nevertheless.
    pane->m_nInteractionMode = ModePlaneMove;
    Frame();
    ExpectBackground(186, 120);
    pane->m_nInteractionMode = ModeIdle;
    pane->m_bClipPlaneActive = 0;
    Frame();
    ExpectPixel(186, 120, Shadow(camera, square.At(camera, 186, 120, kReceiverColor), {}));
}

TEST_P(Shadows, AreCastInFullDetailDuringAReducedDrag) {
    Add({.half = 4});
    pane->m_bMoveReduced = 1;
    pane->m_bMoving = 1;
    pane->m_nDrawMode = KV_ScenePane::DrawModeShadowMap;
    Frame();
    EXPECT_LT(ColorAt(160, 120)[0], 0.9);  // reduced to points, the two triangles would write no depth here
}

TEST_P(Shadows, TurnWithTheCamera) {
    // From the front, ViewFromMinusYZUp: x to the right, z up, the viewer at -y. The light is 20 degrees towards z.
    pane->m_fAxisY = {0, 0, 1};
    pane->m_fAxisZ = {0, -1, 0};
    pane->SetupViewMatrices();
    const float sin20 = 0.34202014f, cos20 = 0.93969262f;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(pane->m_fShadowCenter[i], 0.0f);
        EXPECT_EQ(pane->m_fShadowUp[i], pane->m_fAxisY[i]);
    }
    // Azimuth 90 - atan2(1, 0) = 0, tilt 90: (-sin, 0, cos) becomes (-sin, -cos, 0).
    EXPECT_NEAR(pane->m_fShadowEye[0], -sin20, 1e-6f);
    EXPECT_NEAR(pane->m_fShadowEye[1], -cos20, 1e-6f);
    EXPECT_NEAR(pane->m_fShadowEye[2], 0.0f, 1e-6f);
}

TEST_P(Shadows, HaveFramebuffersOfTheRightSizeAndFormat) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    glBindTexture(GL_TEXTURE_2D, pane->m_nShadowTexture);
    const auto level = [](GLenum name) {
        GLint value = -1;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &value);
        return value;
    };
    const auto parameter = [](GLenum name) {
        GLint value = -1;
        glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    };
    EXPECT_EQ(level(GL_TEXTURE_WIDTH), 2048);
    EXPECT_EQ(level(GL_TEXTURE_HEIGHT), 2048);
    EXPECT_GE(level(GL_TEXTURE_DEPTH_SIZE), 16);
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), GL_NEAREST);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    GLfloat border[4] = {};
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, border);
    EXPECT_EQ(std::vector<GLfloat>(border, border + 4), (std::vector<GLfloat>{1, 0, 0, 0}));
    glBindTexture(GL_TEXTURE_2D, 0);

    glBindFramebuffer(GL_FRAMEBUFFER, pane->m_nShadowFbo);
    EXPECT_EQ(Get(GL_DRAW_BUFFER0), GL_NONE);
    pane->m_frameTarget.Bind();
    for (const GLuint renderbuffer : {pane->m_nOffscreenColorRb, pane->m_nOffscreenDepthRb}) {
        glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
        GLint width = 0, height = 0;
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &width);
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_HEIGHT, &height);
        EXPECT_EQ(width, 2048);
        EXPECT_EQ(height, 2048);
    }
    EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE), GL_TRUE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(Shadows, LogTheirSetUp) {
    const std::string log = ReadLog();
    std::size_t at = log.rfind("<INFO>: Build freeFloatingPoints program.\n");
    ASSERT_NE(at, std::string::npos);
    for (const char* line :
         {"<INFO>: Initalize framebuffer. \n", "<INFO>: Init textures.\n", "<INFO>: Initialize renderbuffer.\n"}) {
        at = log.find(line, at);
        ASSERT_NE(at, std::string::npos) << line;
    }
}

TEST(ShadowColour, IsBlackAtTheStart) {
    TestFolder();
    const OffscreenControl pane(16, 16);
    EXPECT_EQ(pane->m_fShadowColor, (Float3{0, 0, 0}));
}

}  // namespace
