// Arguments that OpenGL rejects: no call and no frame leaves an OpenGL error, but the GL_STACK_UNDERFLOW of each shadow
// pass.
#include <cmath>
#include <functional>
#include <limits>

#include "render/SceneFixture.h"
#include "support/GlNow.h"
#include "view/ViewFrame.h"

using namespace lighting;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

struct UnkindCall {
    const char* name;
    std::function<void(TestControl&)> call;
};
void PrintTo(const UnkindCall& row, std::ostream* out) { *out << row.name; }

/// A mesh of one triangle beside the objects of the scene.
void AddTriangle(TestControl& pane, const std::array<Float3, 3>& p) {
    std::vector<Vertex> vertices;
    for (const Float3& v : p) vertices.push_back({v[0], v[1], v[2], 0, 0, 1, 0, 0});
    AddMesh(*pane, vertices, {Triangle{{0, 1, 2}}}).ComputeBoundingBox();
}

void AddImage(TestControl& pane, int width, int height, float x) {
    const std::vector<std::uint8_t> pixels(64, 200);
    pane->AddOverlayData(pixels.data(), width, height, x, x, x, x, x, x);
}

UnkindCall PointSize(const char* name, float size) {
    return {name, [size](TestControl& pane) { pane->SetPointCloudRenderPointSize(size); }};
}
UnkindCall Reflection(const char* name, float brightness, float shining) {
    return {name, [=](TestControl& pane) { pane->SetReflection(brightness, shining); }};
}
UnkindCall Zoom(const char* name, float zoom) {
    return {name, [zoom](TestControl& pane) {
                pane->SetDefaultZoomFactor(zoom);
                pane->CenterView();
            }};
}
UnkindCall Size(const char* name, std::int16_t width, std::int16_t height) {
    return {name, [=](TestControl& pane) { pane->SetSize(width, height); }};
}
UnkindCall Scale(const char* name, double scale) {
    return {name, [scale](TestControl& pane) { pane->SetScale(scale); }};
}
UnkindCall ClipPlane(const char* name, float center, float normal) {
    return {name, [=](TestControl& pane) { pane->SetClipPlane(center, 0, center, normal, 0, normal); }};
}
UnkindCall Center(const char* name, float at) {
    return {name, [at](TestControl& pane) { pane->SetViewParams(1, 0, 0, 0, 1, 0, at, at, at, 1, 0); }};
}

const UnkindCall kUnkindCalls[] = {
    {"NoCall", [](TestControl&) {}},
    {"SceneOfSizeZero",
     [](TestControl& pane) {
         pane->m_vpMeshes.clear();
         AddTriangle(pane, {{{1e6f, 1e6f, 1e6f}, {1e6f + 1e-3f, 1e6f, 1e6f}, {1e6f, 1e6f + 1e-3f, 1e6f}}});
         pane->CenterView();
         EXPECT_EQ(pane->m_fSceneSize, 0.0f);
     }},
    {"SceneOfNoFiniteSize",
     [](TestControl& pane) {
         AddTriangle(pane, {{{-3e38f, -3e38f, -3e38f}, {3e38f, 3e38f, 3e38f}, {0, 0, 0}}});
         pane->CenterView();
     }},
    {"CoordinatesThatAreNotFinite",
     [](TestControl& pane) {
         AddTriangle(pane, {{{kNan, kInfinity, -kInfinity}, {kNan, kNan, kNan}, {0, 0, 0}}});
         pane->CenterView();
     }},
    PointSize("PointSizeZero", 0),
    PointSize("PointSizeNegativeZero", -0.0f),
    PointSize("PointSizeNegative", -3),
    PointSize("PointSizeNan", kNan),
    PointSize("PointSizeInfinite", kInfinity),
    PointSize("PointSizeMinusInfinite", -kInfinity),
    Zoom("ZoomZero", 0),
    Zoom("ZoomTiny", 1e-42f),
    Zoom("ZoomNegative", -1),
    Zoom("ZoomHuge", 3e38f),
    Zoom("ZoomInfinite", kInfinity),
    Zoom("ZoomNan", kNan),
    Reflection("ShiningAboveOne", 1, 2),
    Reflection("ShiningJustAboveOne", 1, 1.02f),
    Reflection("ShiningJustBelowZero", 1, -0.01f),
    Reflection("ShiningNegative", 1, -1),
    Reflection("ShiningHuge", 1, 1e30f),
    Reflection("ShiningHugeNegative", 1, -1e30f),
    Reflection("ReflectionNan", kNan, kNan),
    Reflection("ReflectionInfinite", kInfinity, kInfinity),
    Reflection("ReflectionMinusInfinite", -kInfinity, -kInfinity),
    Size("SizeZero", 0, 0),
    Size("WidthZero", 0, 50),
    Size("HeightZero", 50, 0),
    Size("SizeNegative", -5, -7),
    Size("WidthNegative", -5, 50),
    Size("HeightNegative", 50, -5),
    Size("SizeOne", 1, 1),
    {"WindowOfSizeZero", [](TestControl& pane) { pane.window->Resize(0, 0); }},
    Center("CentreHuge", 3e38f),
    Center("CentreInfinite", kInfinity),
    Center("CentreNan", kNan),
    ClipPlane("ClipPlaneWithoutNormal", 1, 0),
    ClipPlane("ClipPlaneFarAway", 3e38f, 1),
    ClipPlane("ClipPlaneOfTinyNormal", 0, 1e-42f),
    ClipPlane("ClipPlaneOfHugeNormal", 0, 3e38f),
    ClipPlane("ClipPlaneOfInfiniteNormal", 0, kInfinity),
    ClipPlane("ClipPlaneOfNoNormal", 0, kNan),
    ClipPlane("ClipPlaneInfinitelyFar", -kInfinity, 1),
    ClipPlane("ClipPlaneNowhere", kNan, 1),
    {"ZoomOfViewZero", [](TestControl& pane) { pane->SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0); }},
    {"ZoomOfViewNan", [](TestControl& pane) { pane->SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, kNan, 0); }},
    {"ArrowAngle", [](TestControl& pane) { pane->SetArrowAngle(-32768); }},
    {"DrawModeOfAStore",
     [](TestControl& pane) {
         EXPECT_TRUE(pane->LoadProperties("KV_ScenePane properties 1.0\nDrawMode=-32768\n", nullptr));
     }},
    {"Colours", [](TestControl& pane) { pane->SetBackgroundColorsFourCorners(-1, 0x7FFFFFFF, 0, -2); }},
    {"ShadowColour", [](TestControl& pane) { pane->SetShadowColor(kNan, kInfinity, -kInfinity); }},
    {"OverlayOfSizeZero", [](TestControl& pane) { AddImage(pane, 0, 0, 0); }},
    {"OverlayOfNegativeSize", [](TestControl& pane) { AddImage(pane, -2, -2, 0); }},
    {"OverlayFarAway", [](TestControl& pane) { AddImage(pane, 2, 2, 3e38f); }},
    {"OverlayNowhere", [](TestControl& pane) { AddImage(pane, 2, 2, kNan); }},
    Scale("ScaleZero", 0),
    Scale("ScaleNegative", -2),
    Scale("ScaleTiny", 1e-300),
    Scale("ScaleNan", std::numeric_limits<double>::quiet_NaN()),
    Scale("ScaleInfinite", std::numeric_limits<double>::infinity()),
    Scale("ScaleHuge", 1e300),
};

/// Everything that a frame can draw is switched on.
class GlErrors : public testing::TestWithParam<UnkindCall> {
protected:
    GlErrors() {
        AddMesh(*pane, Square{}.Vertices(), Square{}.Triangles()).ComputeBoundingBox();
        AddMesh(*pane, {}, {});
        AddImage(pane, 4, 4, 0.5f);
        pane->SetDrawMode(KV_ScenePane::DrawModeFlat);
        pane->AddSelection(0);
        pane->CenterView();
        pane->ShowAxes(1);
        pane->ShowLightingArrow(1);
        pane->SetPickMode(KV_ScenePane::PickModeCross);
        pane->m_bClipPlaneVisible = pane->m_bClipPlaneActive = 1;
        pane->m_bLine3DDrawingMode = pane->m_bNeedleDrawingMode = 1;
        pane->CreateNeedle(1, 0, 0, 0, 1, 1, 1);
        pane->CreateNeedle(2, kNan, 0, 0, kInfinity, 0, kNan);
        pane->SelectNeedle(1);
        pane->PerformRefresh();
        (void)TakeErrors();
    }
    [[nodiscard]] std::vector<GLenum> TakeErrors() {
        std::vector<GLenum> errors;
        EXPECT_TRUE(pane->MakeContextCurrent());
        for (GLenum error = glGetError(); error != GL_NO_ERROR && errors.size() < 10; error = glGetError())
            errors.push_back(error);
        return errors;
    }
    /// Draws a frame, and moves and picks in it as a host would.
    void ExpectCleanFrame() {
        const bool shadowPass = pane->m_bShadowEnabled != 0 || pane->m_nDrawMode == KV_ScenePane::DrawModeShadowMap;
        pane->PerformRefresh();
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>(shadowPass ? 1 : 0, GL_STACK_UNDERFLOW));
        Float3 hit{};
        (void)pane->PickObjectAt(3, 4, &hit);
        pane->SelectNeedleAt(32, 24);
        pane->m_vNeedles.at(0).selected = true;  // a method would draw a frame
        EXPECT_TRUE(pane->DragSelectedNeedle(30, 20));
        float f = 0;
        (void)pane->GetViewDirection(&f, &f, &f, &f, &f, &f);
        std::array<float, 16> matrix{};
        pane->ComputeFrameMatrix(pane->LiveFrame(), matrix.data());
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    }

    OffscreenControl pane{64, 48};
};

INSTANTIATE_TEST_SUITE_P(Unkind, GlErrors, testing::ValuesIn(kUnkindCalls),
                         [](const auto& row) { return row.param.name; });

TEST_P(GlErrors, AreNotLeftByACallOrByTheFramesAfterIt) {
    GetParam().call(pane);
    EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    for (const bool shadows : {false, true}) {
        pane->SetShadowMode(shadows ? 1 : 0);
        for (std::int16_t mode = -1; mode <= 8; ++mode) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", shadows " << shadows);
            pane->SetDrawMode(mode);
            ExpectCleanFrame();
        }
    }
}

TEST_P(GlErrors, AreNotLeftByAScreenshot) {
    GetParam().call(pane);
    std::vector<std::uint32_t> pixels(std::size_t{kOffscreenSize} * kOffscreenSize);
    pane->CaptureScreenShot(pixels.data());
    EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    ExpectCleanFrame();
}

TEST_P(GlErrors, AreNotLeftByLassosAndTheirCuts) {
    GetParam().call(pane);
    (void)TakeErrors();
    const KV_ScenePane::LassoPoint points[] = {{0.1, 0.1}, {0.1, 0.9}, {0.9, 0.9}, {0.9, 0.1}};
    using Kind = KV_ScenePane::MouseInput::Kind;
    for (std::int16_t way = 0; way < 6; ++way) {
        SCOPED_TRACE(way);
        pane->StartSegmentation(way);
        pane->SendMouse({.kind = Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = 10, .y = 10});
        pane->SendMouse({.kind = Kind::Move, .flags = KV_ScenePane::kMouseLeft, .x = 40, .y = 12});
        pane->SendMouse({.kind = Kind::Move, .x = 30, .y = 40});
        ExpectCleanFrame();
        pane->EndSegmentation();
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
        (void)pane->CutWithLasso(static_cast<KV_ScenePane::SegmentationMode>(way), points);
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
        ExpectCleanFrame();
        pane->PerformUndo();
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    }
}

TEST_P(GlErrors, AreNotLeftByAlignments) {
    GetParam().call(pane);
    (void)TakeErrors();
    using Kind = KV_ScenePane::MouseInput::Kind;
    pane->AddVariableObject(0);
    pane->AlignInteractive();
    for (const bool isLeft : {true, false}) {
        const std::uint32_t button = isLeft ? KV_ScenePane::kMouseLeft : KV_ScenePane::kMouseRight;
        pane->SendMouse({.kind = isLeft ? Kind::LeftDown : Kind::RightDown, .flags = button, .x = 32, .y = 24});
        for (const int x : {32, 40}) pane->SendMouse({.kind = Kind::Move, .flags = button, .x = x, .y = 20});
        pane->SendMouse({.kind = isLeft ? Kind::LeftUp : Kind::RightUp, .x = 41, .y = 20});
    }
    EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    ExpectCleanFrame();
    pane->AlignPickPoints();  // over the open one
    for (const int key : {0, KV_ScenePane::kKeySpace}) {
        if (key != 0) pane->SendKey({.nChar = key});
        pane->SendMouse({.kind = Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = 32, .y = 24});
        pane->SendMouse({.kind = Kind::LeftUp, .x = 32, .y = 24});
        EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
        ExpectCleanFrame();
    }
    pane->FinishInteraction();
    EXPECT_EQ(pane->m_pInteractionDlg, nullptr);
    EXPECT_EQ(TakeErrors(), std::vector<GLenum>());
    ExpectCleanFrame();
}

TEST(GlErrorsOfAWindow, OfNegativeSizeAreNotLeftByItsFirstFrameNorByOneAfterARecreation) {
    for (const auto& [width, height] : {std::pair{-5, 100}, {100, -5}, {-5, -5}}) {
        OffscreenControl pane(width, height);
        for (const bool recreated : {false, true}) {
            if (recreated) pane->RecreateOpenglContext(3, 3, 0);
            pane->PerformRefresh();
            ASSERT_TRUE(pane->MakeContextCurrent());
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << width << " " << height << " " << recreated;
        }
    }
}

// ---- what OpenGL would ignore is left out; the rest is as it was

TEST(Reflection, WithAShininessThatOpenGlRejectsKeepsTheFormerOne) {
    OffscreenControl pane(64, 48);
    pane->SetReflection(0.25f, 0.5f);  // 1 + 63
    ASSERT_TRUE(pane->MakeContextCurrent());
    GLfloat shininess = 0;
    for (const float shining : {2.0f, -1.0f, kNan, kInfinity, -kInfinity}) {
        pane->SetReflection(0.75f, shining);
        glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
        EXPECT_EQ(shininess, 64.0f) << shining;
        EXPECT_EQ(GlMaterial(GL_FRONT, GL_SPECULAR), (std::array<float, 4>{0.75f, 0.75f, 0.75f, 0.75f}));
    }
    // The first and the last that OpenGL accepts: shining 1 + 1.9 / 127 and 0.
    pane->SetReflection(0.75f, 1.0149f);
    glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
    EXPECT_EQ(shininess, 0.0f);
    pane->SetReflection(0.75f, 0.0f);
    glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
    EXPECT_EQ(shininess, 128.0f);
}

TEST(PointsOfObjects, AreOnePixelWhenTheirSizeIsNotAboveZero) {
    OffscreenControl pane(64, 48);
    AddTriangle(pane, {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}});
    pane->CenterView();
    pane->SetDrawMode(KV_ScenePane::DrawModePoints);
    for (const float size : {0.0f, -3.0f, kNan, -kInfinity}) {
        pane->SetPointCloudRenderPointSize(size);
        KV_ScenePane::Picture picture;
        ASSERT_TRUE(pane->CapturePicture(&picture));
        const std::uint32_t background = picture.pixels.front();
        EXPECT_EQ(std::ranges::count_if(picture.pixels, [&](std::uint32_t p) { return p != background; }), 1) << size;
        EXPECT_TRUE(pane->m_fPointCloudSize == size || std::isnan(size));
    }
}

TEST(WindowPositions, OfPointsThatHaveNoneAreTheSmallestNumber) {
    OffscreenControl pane(64, 48);
    for (const float zoom : {1e-36f, kNan}) {
        pane->m_fZoom = zoom;
        pane->SetupViewMatrices();
        std::int32_t x = 0, y = 0;
        pane->ProjectPoint(3e30f, 3e30f, 0, &x, &y);
        EXPECT_EQ(x, std::numeric_limits<std::int32_t>::min()) << zoom;
        EXPECT_EQ(y, std::numeric_limits<std::int32_t>::min()) << zoom;
    }
}

}  // namespace
