// Every draw mode at pixels whose colour follows from the lighting formulas.
#include "render/MeshTexture.h"
#include "render/SceneFixture.h"

using namespace KV_ScenePane;
using namespace lighting;

namespace {

class DrawModes : public SceneInEveryWindow {
protected:
    void SetMode(int mode) { pane->m_nDrawMode = static_cast<std::int16_t>(mode); }

    [[nodiscard]] Surface At(int x, int y, const Square& square, const Vec3& tint) const {
        return square.At(camera, x, y, tint);
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, DrawModes, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

const Vec3 kObjectColor{0.5, 0.25, 0.75};

// 24 pixels per unit: the square of half width 2 covers columns 112 to 207 and rows 72 to 167.
TEST_P(DrawModes, GouraudShadesASquareAtItsPosition) {
    const Square square{.normal = {0.6, 0.0, 0.8}};
    Add(square, kObjectColor);
    SetMode(DrawModeGouraud);
    Frame();
    for (const auto& [x, y] : {std::pair{112, 72}, {207, 72}, {112, 167}, {207, 167}, {160, 120}})
        ExpectPixel(x, y, FixedFunction(camera, At(x, y, square, kObjectColor)));
    for (const auto& [x, y] : {std::pair{111, 72}, {208, 72}, {112, 71}, {112, 168}, {0, 0}, {319, 239}})
        ExpectBackground(x, y);
    EXPECT_EQ(PixelsThatAreNotBackground(), 96 * 96);
}

/// One triangle with different normals at its corners.
struct BentTriangle {
    Vec3 corners[3] = {{-4, -4, 0}, {4, -4, 0}, {-4, 4, 0}};
    Vec3 normals[3] = {{0, 0, 1}, {0.8, 0, 0.6}, {0, 0.6, 0.8}};

    [[nodiscard]] std::shared_ptr<Mesh> ToMesh() const {
        std::vector<Vertex> vertices;
        for (int i = 0; i < 3; ++i) vertices.push_back(MakeVertex(corners[i], normals[i]));
        return std::make_shared<Mesh>(std::move(vertices), std::vector<Triangle>{{{0, 1, 2}}}, std::wstring(), false);
    }
    [[nodiscard]] Vec3 CornerColor(const Camera& camera, int i) const {
        return FixedFunction(camera, {.position = corners[i], .normal = normals[i]});
    }
};

TEST_P(DrawModes, GouraudInterpolatesTheCornersAndFlatUsesTheLastOne) {
    const BentTriangle triangle;
    pane->m_vpMeshes.push_back(triangle.ToMesh());
    const int x = 120, y = 130;
    const Vec3 p = camera.PointAt(x, y, {0, 0, 0}, {0, 0, 1});
    const double w1 = (p[0] + 4) / 8, w2 = (p[1] + 4) / 8;
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(x, y,
                (1 - w1 - w2) * triangle.CornerColor(camera, 0) + w1 * triangle.CornerColor(camera, 1) +
                    w2 * triangle.CornerColor(camera, 2));
    SetMode(DrawModeFlat);
    Frame();
    ExpectPixel(x, y, triangle.CornerColor(camera, 2));
    ExpectPixel(100, 200, triangle.CornerColor(camera, 2));
}

TEST_P(DrawModes, WireframeDrawsTheEdgesOnly) {
    // Edges through the centres of pixel columns and rows: 2.0208 units are 48.5 pixels.
    const Square square{.half = 48.5 / 24, .normal = {0.0, 0.6, 0.8}};
    Add(square, kObjectColor);
    SetMode(DrawModeWireframe);
    Frame();
    const Vec3 lit = FixedFunction(camera, At(160, 120, square, kObjectColor));
    // Right edge at column 208, top at row 71; the diagonal runs from lower left to upper right.
    ExpectPixel(208, 150, lit);
    ExpectPixel(111, 90, lit);
    ExpectPixel(150, 71, lit);
    ExpectPixel(150, 168, lit);
    ExpectBackground(130, 100);
    ExpectBackground(190, 150);
    ExpectBackground(215, 150);
}

TEST_P(DrawModes, PointsAreTheFirstCornersOfTheTriangles) {
    const Square square{.normal = {0.0, 0.6, 0.8}};
    auto mesh = square.ToMesh(false);
    mesh->m_vTriangles = {{{0, 1, 2}}, {{2, 3, 0}}};  // first corners: lower left, upper right
    pane->m_vpMeshes.push_back(mesh);
    SetMode(DrawModePoints);
    Frame();
    const Vec3 lit = FixedFunction(camera, At(112, 167, square, {1, 1, 1}));
    for (const auto& [x, y] : {std::pair{111, 167}, {112, 167}, {111, 168}, {112, 168}, {207, 71}, {208, 72}})
        ExpectPixel(x, y, lit);
    EXPECT_EQ(PixelsThatAreNotBackground(), 8);  // two points of 2 x 2 pixels
}

TEST_P(DrawModes, PointsHaveThePointSizeOfTheControl) {
    const Square square;
    Add(square);
    pane->SetPointCloudRenderPointSize(6.0f);
    SetMode(DrawModePoints);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 36);  // both triangles begin at the same corner
    ExpectBackground(160, 120);
}

TEST_P(DrawModes, BoundingBoxesAreDrawnAsLines) {
    const Square square{.center = {0, 0, 0}, .half = 48.5 / 24};
    Add(square, kObjectColor);
    SetMode(DrawModeBoundingBoxes);
    Frame();
    const Vec3 boxColor{0.0, 0.4, 0.9};
    ExpectPixel(208, 120, boxColor);
    ExpectPixel(111, 120, boxColor);
    ExpectPixel(160, 71, boxColor);
    ExpectPixel(160, 168, boxColor);
    ExpectBackground(160, 120);
    ExpectBackground(130, 150);  // no diagonal
}

TEST_P(DrawModes, BoundingBoxesHaveEdgesBetweenBothEnds) {
    const float half = 48.5f / 24;
    Add({}).SetBoundingBox(-half, half, -half, half, -half, half);
    // Seen from the front with z up: the rectangles at both ends of z appear as the lines above and below.
    pane->m_fAxisY = {0, 0, 1};
    pane->m_fAxisZ = {0, -1, 0};
    pane->SetupViewMatrices();
    SetMode(DrawModeBoundingBoxes);
    Frame();
    const Vec3 boxColor{0.0, 0.4, 0.9};
    for (const auto& [x, y] : {std::pair{208, 120}, {111, 120}, {160, 71}, {160, 168}}) ExpectPixel(x, y, boxColor);
    ExpectBackground(160, 120);
}

TEST_P(DrawModes, PerPixelLightsEveryPixel) {
    const Square square{.half = 4.5, .normal = {0.0, -0.6, 0.8}};
    Add(square, kObjectColor);
    SetMode(DrawModePerPixel);
    Frame();
    for (const auto& [x, y] : {std::pair{60, 20}, {160, 120}, {250, 30}, {70, 220}, {250, 220}})
        ExpectPixel(x, y, PerPixel(camera, At(x, y, square, kObjectColor)));
    ExpectBackground(10, 120);
}

TEST_P(DrawModes, PerPixelShowsAHighlightWhereTheLightIsReflectedToTheEye) {
    // In eye coordinates the light is at (0, 5, 0) and the plane at z = -20: it reflects the light to the eye at y
    // = 2.5.
    const Square square{.half = 4.5};
    Add(square, {0.2, 0.2, 0.2});
    SetMode(DrawModePerPixel);
    Frame();
    const int row = 59;  // y = 2.52
    const Vec3 expected = PerPixel(camera, At(160, row, square, {0.2, 0.2, 0.2}));
    EXPECT_GT(expected[0], 0.6) << "the model itself has no highlight here";
    ExpectPixel(160, row, expected);
    ExpectPixel(160, 200, PerPixel(camera, At(160, 200, square, {0.2, 0.2, 0.2})));
}

TEST_P(DrawModes, NothingAndUnknownModesShowTheBackgroundOnly) {
    Add({});
    for (const int mode : {int{DrawModeNothing}, 8, -1, 32767}) {
        SetMode(mode);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << "mode " << mode;
    }
}

TEST_P(DrawModes, ShadowMapShowsTheDepthSeenFromTheLight) {
    const Square square{.center = {0, 0, 6}};
    Add(square, kObjectColor);
    SetMode(DrawModeShadowMap);
    Frame();
    // The view from the light has its own axes; its eye is one unit from the centre, and the depth range is 80 units.
    Camera light = camera;
    light.axisZ = ShadowLightFromTop();
    light.axisY = {0.0, light.axisZ[2], -light.axisZ[1]};
    for (const auto& at : {Vec3{0, 0, 6}, Vec3{1.8, 1.8, 6}, Vec3{-1.8, -1.8, 6}, Vec3{1.8, -1.8, 6}}) {
        const auto [px, py] = light.ToWindow(at);
        const int x = static_cast<int>(px), y = static_cast<int>(py);
        const Vec3 p = light.PointAt(x, y, square.center, {0, 0, 1});
        const double depth = 0.5 - (Dot(p, light.axisZ) - 1.0) / 80.0;
        ExpectPixel(x, y, {depth, depth, depth});
    }
    ExpectPixel(2, 2, {1, 1, 1});
    ExpectPixel(317, 2, {1, 1, 1});
}

TEST_P(DrawModes, ShadedModesAreDepthTested) {
    for (const DrawMode mode : {DrawModeFlat, DrawModeGouraud, DrawModePerPixel}) {
        pane->m_vpMeshes.clear();
        const Square near{.center = {1, 0, 2}, .half = 1}, far{.center = {0, 0, 0}, .half = 2};
        Add(near, {1, 0, 0});
        Add(far, {0, 0, 1});
        SetMode(mode);
        Frame();
        EXPECT_GT(ColorAt(184, 120)[0], ColorAt(184, 120)[2]) << "mode " << mode;
        EXPECT_LT(ColorAt(130, 120)[0], ColorAt(130, 120)[2]) << "mode " << mode;
    }
}

// ---- back faces

TEST_P(DrawModes, BackFacesHaveTheBackMaterialInFixedFunctionLighting) {
    const Square square{.normal = {0, 0.6, -0.8}, .color = 0xFFFFFFFF, .turned = true};
    Add(square, {1, 1, 1}, true);
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, At(160, 120, square, {1, 1, 1})));
}

TEST_P(DrawModes, BackFacesAreGreyInTheShaderPrograms) {
    const Square square{.normal = {0, 0, -1}, .color = 0xFFFF8000, .turned = true};
    Add(square, {1, 1, 1}, true);
    SetMode(DrawModePerPixel);
    Frame();
    ExpectPixel(160, 120, PerPixel(camera, At(160, 120, square, {1, 1, 1})));
    SetMode(DrawModeGouraud);
    pane->SetShadowMode(1);
    Frame();
    ExpectPixel(160, 120, Shadow(camera, At(160, 120, square, {1, 1, 1}), {}));
}

TEST_P(DrawModes, BackFacesOfATexturedMeshAreGreyPerPixel) {
    const Square square{.normal = {0, 0, -1}, .turned = true};
    AddPlainTexture(Add(square), {255, 128, 0, 255});
    SetMode(DrawModePerPixel);
    Frame();
    ExpectPixel(160, 120, PerPixel(camera, At(160, 120, square, {1, 1, 1})));
}

TEST_P(DrawModes, AMeshWithoutNormalsShowsTheAmbientTermInTheShaderPrograms) {
    Add({.half = 4.5, .normal = {0, 0, 0}}, kObjectColor);
    SetMode(DrawModePerPixel);
    Frame();
    for (const int y : {20, 59, 120, 220}) ExpectPixel(160, y, 0.1 * kObjectColor);
    pane->SetShadowMode(1);
    SetMode(DrawModeFlat);
    Frame();
    for (const int y : {20, 59, 120, 220}) ExpectPixel(160, y, 0.1 * kObjectColor);
}

// ---- reflection

TEST_P(DrawModes, ReflectionAddsAHighlightInFixedFunctionLighting) {
    const Square square{.normal = {0, 0, 1}};
    Add(square, {0.2, 0.2, 0.2});
    SetMode(DrawModeGouraud);
    pane->SetReflection(0.5f, 0.0f);  // shininess 128
    Frame();
    const Vec3 expected =
        FixedFunction(camera, At(160, 120, square, {0.2, 0.2, 0.2}), {.brightness = 0.5, .shininess = 128});
    EXPECT_GT(expected[0], 0.6);
    ExpectPixel(160, 120, expected);
    pane->SetReflection(0.0f, 0.0f);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, At(160, 120, square, {0.2, 0.2, 0.2})));
}

TEST_P(DrawModes, ReflectionAffectsTheHighlightWithShadowsButNotPerPixel) {
    const Square square{.half = 4.5};
    Add(square, {0.2, 0.2, 0.2});
    const Surface surface = At(160, 59, square, {0.2, 0.2, 0.2});
    for (const float brightness : {0.0f, 0.8f}) {
        pane->SetShadowMode(0);  // before the reflection, which draws a frame
        pane->SetReflection(brightness, 0.5f);
        SetMode(DrawModePerPixel);
        Frame();
        ExpectPixel(160, 59, PerPixel(camera, surface));
        pane->SetShadowMode(1);
        SetMode(DrawModeFlat);
        Frame();
        ExpectPixel(160, 59, Shadow(camera, surface, {.brightness = brightness}));
    }
}

// ---- tint and blend

TEST_P(DrawModes, AGreyScanIsTintedByTheObjectColour) {
    const Square square{.color = 0xFF808080};
    Add(square, {1.0, 0.5, 0.0}, true);
    Surface surface = At(160, 120, square, {1.0, 0.5, 0.0});
    surface.color = {128 / 255.0, 128 / 255.0, 128 / 255.0};
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, surface));
    SetMode(DrawModePerPixel);
    Frame();
    ExpectPixel(160, 120, PerPixel(camera, surface));
}

TEST_P(DrawModes, ABlendedGreyScanShowsTheMixedColourUntinted) {
    const Square square{.color = 0xFF808080};
    Add(square, {1.0, 0.5, 0.0}, true).SetBlendColors(true);
    // 0.15 * 128 = 19.2 and 0.85 * 255 = 216.75: 235.95; 19.2 + 108.375; 19.2. Rounded down.
    Surface surface = At(160, 120, square, {1, 1, 1});
    surface.color = {235 / 255.0, 127 / 255.0, 19 / 255.0};
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, surface));
    SetMode(DrawModePerPixel);
    Frame();
    ExpectPixel(160, 120, PerPixel(camera, surface));
}

TEST_P(DrawModes, AColouredScanShowsItsOwnColours) {
    const Square square{.color = 0xFF80C040};
    Add(square, {1.0, 0.0, 0.0}, true);
    Surface surface = At(160, 120, square, {1, 1, 1});
    surface.color = {128 / 255.0, 192 / 255.0, 64 / 255.0};
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, surface));
    SetMode(DrawModePerPixel);
    Frame();
    ExpectPixel(160, 120, PerPixel(camera, surface));
}

TEST_P(DrawModes, AMeshWithoutColoursShowsTheObjectColourAlsoWhenBlended) {
    const Square square{.color = 0xFF00FF00};  // ignored: the mesh has no vertex colours
    Add(square, kObjectColor).SetBlendColors(true);
    SetMode(DrawModeGouraud);
    Frame();
    ExpectPixel(160, 120, FixedFunction(camera, At(160, 120, square, kObjectColor)));
}

// ---- textures

TEST_P(DrawModes, ATexturedMeshShowsItsTextureUntinted) {
    const Square square;
    Mesh& mesh = Add(square, {1.0, 0.0, 0.0});
    mesh.m_vTexCoords = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};
    ASSERT_TRUE(pane->MakeContextCurrent());
    // Left half and right half of one colour each.
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 64 * 64; ++i) {
        const bool left = i % 64 < 32;
        for (const int value : {left ? 200 : 40, left ? 80 : 160, 120, 255})
            pixels.push_back(static_cast<std::uint8_t>(value));
    }
    CreateTexture(mesh, 64, 64, pixels.data(), {});
    const Vec3 left{200 / 255.0, 80 / 255.0, 120 / 255.0}, right{40 / 255.0, 160 / 255.0, 120 / 255.0};
    SetMode(DrawModePerPixel);
    Frame();
    for (const auto& [x, color] : {std::pair{130, left}, {190, right}}) {
        Surface surface = At(x, 120, square, {1, 1, 1});
        surface.color = color;
        ExpectPixel(x, 120, PerPixel(camera, surface));
    }
    // Fixed-function texturing multiplies the lit white surface by the texture.
    SetMode(DrawModeGouraud);
    Frame();
    const Vec3 white = FixedFunction(camera, At(130, 120, square, {1, 1, 1}));
    ExpectPixel(130, 120, Times(white, left));
    ExpectPixel(190, 120, Times(white, right));
    EXPECT_EQ(mesh.m_uTriangleBuffer, 0u);
    EXPECT_EQ(mesh.m_uPointBuffer, 0u);
    EXPECT_EQ(mesh.m_uReducedBuffer, 0u);
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D), GL_FALSE);
}

TEST_P(DrawModes, ATexturedMeshShowsAllItsCornersAsPoints) {
    AddPlainTexture(Add({}));
    SetMode(DrawModePoints);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 16);  // four corners of 2 x 2 pixels
}

}  // namespace
