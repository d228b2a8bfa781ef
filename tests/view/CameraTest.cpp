// View parameters, events, window size, pan and zoom, the surface in the centre, and what each asks of the window.
#include <GL/glew.h>

#include <string>

#include "view/CameraHelp.h"

namespace {

// ---- view parameters

TEST(SetViewParams, StoresTheFrameAndComputesTheThirdAxis) {
    OffscreenControl c;
    ASSERT_TRUE(SetView(*c, {0.6f, 0.8f, 0}, {0, 0, 1}, {1, 2, 3}, 2));
    EXPECT_EQ(c->m_fAxisX, (Float3{0.6f, 0.8f, 0}));
    EXPECT_EQ(c->m_fAxisY, (Float3{0, 0, 1}));
    EXPECT_EQ(c->m_fAxisZ, (Float3{0.8f, -0.6f, 0}));
    EXPECT_EQ(c->m_fViewCenter, (Float3{1, 2, 3}));
    EXPECT_EQ(c->m_fZoom, 0.5f);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
    EXPECT_TRUE(c.window->IsPaintPending());
    EXPECT_EQ(c->m_savedView.wz, c->m_fAxisZ) << "the matrices follow";
}

TEST(SetViewParams, ReturnsVariantTrueOrFalse) {
    OffscreenControl c;
    EXPECT_EQ(c->SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(c->SetViewParams(2, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0), KV_ScenePane::kVariantFalse);
}

TEST(SetViewParams, RejectsAxesThatAreNotOrthonormalAndChangesNothing) {
    OffscreenControl c;
    c->TracingMode(1);
    SetView(*c, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, 2);
    c.events.events.clear();
    c.window->Forget();
    const Float3 wx = c->m_fAxisX, wy = c->m_fAxisY, wz = c->m_fAxisZ, center = c->m_fViewCenter;
    EXPECT_FALSE(SetView(*c, {0.99494f, 0, 0}, {0, 1, 0}, {9, 9, 9}, 5)) << "wx too short";
    EXPECT_FALSE(SetView(*c, {1, 0, 0}, {0, 1.00504f, 0}, {9, 9, 9}, 5)) << "wy too long";
    EXPECT_FALSE(SetView(*c, {1, 0, 0}, {0.0871557f, 0.9961947f, 0}, {9, 9, 9}, 5)) << "5 degrees off";
    EXPECT_EQ(c->m_fAxisX, wx);
    EXPECT_EQ(c->m_fAxisY, wy);
    EXPECT_EQ(c->m_fAxisZ, wz);
    EXPECT_EQ(c->m_fViewCenter, center);
    EXPECT_EQ(c->m_fZoom, 0.5f);
    EXPECT_TRUE(c.events.events.empty());
    ExpectNoRequest(*c.window);
}

TEST(SetViewParams, AcceptsAxesJustInsideTheLimits) {
    OffscreenControl c;
    EXPECT_TRUE(SetView(*c, {0.99504f, 0, 0}, {0, 1.00494f, 0}, {}, 1));
    EXPECT_TRUE(SetView(*c, {1, 0, 0}, {-0.0099f, 0.99995f, 0}, {}, 1));
    EXPECT_EQ(c->m_fAxisY, (Float3{-0.0099f, 0.99995f, 0})) << "nothing is renormalised";
}

TEST(SetViewParams, LimitsTheZoomFromATenthToTen) {
    OffscreenControl c;
    struct {
        float zoom, stored;
    } const rows[] = {{100, 0.3f},        {10.01f, 0.3f}, {10, 0.3f},  {9.5f, 3 / 9.5f}, {1, 3},
                      {0.11f, 3 / 0.11f}, {0.1f, 30},     {0.09f, 30}, {0, 30},          {-7, 30}};
    c->SetDefaultZoomFactor(3);
    for (const auto& row : rows) {
        ASSERT_TRUE(SetView(*c, {1, 0, 0}, {0, 1, 0}, {}, row.zoom));
        EXPECT_FLOAT_EQ(c->m_fZoom, row.stored) << "zoom " << row.zoom;
    }
}

TEST(SetViewParams, IgnoresTheLastArgument) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {2, 3, 6});
    for (const std::int16_t freeze : {std::int16_t{0}, std::int16_t{1}, std::int16_t{-1}}) {
        ASSERT_TRUE(c->SetViewParams(0, 1, 0, 0, 0, 1, 4, 5, 6, 2, freeze));
        EXPECT_EQ(c->m_fSceneSize, 1000);
        EXPECT_EQ(c->m_fZoom, 0.5f);
        EXPECT_EQ(c->m_fViewCenter, (Float3{4, 5, 6}));
    }
}

TEST(SetViewParams, ComputesTheShadowCameraForSlightlyLongAxes) {
    OffscreenControl c;
    ASSERT_TRUE(SetView(*c, {1.0049f, 0, 0}, {0, 1.0049f, 0}, {1, 2, 3}, 1));
    ASSERT_GT(c->m_fAxisZ[2], 1.0f);  // outside the domain of an arc cosine
    ExpectNear(c->m_fShadowEye, {1, 2 + kSin20, 3 + kCos20}, 1e-5, "shadow eye");
}

TEST(GetViewParams, ReturnsTheReciprocalZoomWithoutTheDefaultZoom) {
    OffscreenControl c;
    c->SetDefaultZoomFactor(2);
    ASSERT_TRUE(SetView(*c, {0, 0.6f, 0.8f}, {1, 0, 0}, {7, 8, 9}, 4));
    c.window->Forget();
    float v[10] = {};
    c->GetViewParams(v, v + 1, v + 2, v + 3, v + 4, v + 5, v + 6, v + 7, v + 8, v + 9);
    const float expected[10] = {0, 0.6f, 0.8f, 1, 0, 0, 7, 8, 9, 2};  // 2 / 4 shows as 2, not as 4
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(v[i], expected[i]) << "output " << i;
    ExpectNoRequest(*c.window);
    ASSERT_TRUE(c->SetViewParams(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], 0));
    EXPECT_EQ(c->m_fZoom, 1.0f) << "what was read is not what was there";
}

// ---- events

TEST(ViewDirectionChanged, FiresForNewParametersAndPansInTracingMode) {
    OffscreenControl c;
    c->TracingMode(1);
    SetView(*c, {0, 1, 0}, {0, 0, 1}, {}, 1);
    ASSERT_EQ(c.events.events.size(), 1u);
    EXPECT_EQ(c.events.events[0], (EventsRecorder::Event{"ViewDirectionChanged", {1, 0, 0}}));
    c->PanView(3, 4);
    ASSERT_EQ(c.events.events.size(), 2u);
    EXPECT_EQ(c.events.events[1], c.events.events[0]);
}

TEST(ViewDirectionChanged, DoesNotFireForViewModesZoomFitAndSize) {
    OffscreenControl c;
    c->TracingMode(1);
    c->SetViewMode(KV_ScenePane::ViewFromMinusXZUp);
    c->ZoomView(0, -120);
    c->CenterView();
    c->SetSize(300, 200);
    c->ClearData();
    EXPECT_TRUE(c.events.events.empty());
}

TEST(TracingMode, IsOnForExactlyOne) {
    OffscreenControl c;
    for (const std::int16_t on : {std::int16_t{-1}, std::int16_t{2}, std::int16_t{0}, std::int16_t{257}}) {
        c->TracingMode(1);
        EXPECT_EQ(c->m_bTracingMode, 1);
        c->TracingMode(on);
        EXPECT_EQ(c->m_bTracingMode, 0) << on;
        SetView(*c, {1, 0, 0}, {0, 1, 0}, {}, 1);
    }
    EXPECT_TRUE(c.events.events.empty());
}

TEST(ViewDirectionChanged, WorksWithoutAConnectedHost) {
    OffscreenControl c;
    c->Connect(nullptr);
    c->TracingMode(1);
    EXPECT_TRUE(SetView(*c, {0, 1, 0}, {0, 0, 1}, {}, 1));
    EXPECT_TRUE(c.events.events.empty());
}

// ---- size

TEST(SetSize, StoresTheSizeAndItsAspect) {
    OffscreenControl c;
    c->SetSize(600, 400);
    EXPECT_EQ(c->m_nWidth, 600);
    EXPECT_EQ(c->m_nHeight, 400);
    EXPECT_EQ(c.window->ClientSize().width, 600);
    EXPECT_EQ(c.window->ClientSize().height, 400);
    EXPECT_EQ(c->m_fAspectX, 1.5f);
    EXPECT_EQ(c->m_fAspectY, 1.0f);
    ExpectNoRequest(*c.window);
    c->SetSize(333, 777);
    EXPECT_EQ(c->m_fAspectX, 1.0f);
    EXPECT_FLOAT_EQ(c->m_fAspectY, 777.0f / 333);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 333);
    EXPECT_EQ(viewport[3], 777);
}

TEST(UpdateViewport, KeepsViewportAndAspectForAWindowWithoutHeight) {
    OffscreenControl c(600, 400);
    c->m_nWidth = 200;
    for (const std::int32_t height : {0, -1}) {
        c->m_nHeight = height;
        c->m_savedView.center = {8, 8, 8};
        c->UpdateViewport();
        EXPECT_EQ(c->m_fAspectX, 1.5f);
        EXPECT_EQ(c->m_fAspectY, 1.0f);
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ(viewport[2], 600);
        EXPECT_EQ(viewport[3], 400);
        EXPECT_EQ(c->m_savedView.center, (Float3{8, 8, 8})) << "the matrices were rebuilt";
    }
    c->m_nHeight = 1;
    c->UpdateViewport();
    EXPECT_EQ(c->m_fAspectX, 200.0f);
    EXPECT_EQ(c->m_savedView.center, (Float3{0, 0, 0}));
}

// ---- pan and zoom

class PanInAWindow : public testing::TestWithParam<WindowSize> {};

TEST_P(PanInAWindow, MovesThePictureByTheTravelInPixels) {
    OffscreenControl c(GetParam().width, GetParam().height);
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    c->m_fSceneSize = 80;
    c->m_fZoom = 1.7f;
    c->SetupViewMatrices();
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    c->ProjectPointDouble(3, -4, 5, &x0, &y0);
    c.window->Forget();
    c->PanView(7, -13);
    ExpectOnlyRefresh(*c.window);
    c->ProjectPointDouble(3, -4, 5, &x1, &y1);
    EXPECT_NEAR(x1 - x0, 7, 2e-3);
    EXPECT_NEAR(y1 - y0, -13, 2e-3);
    EXPECT_EQ(c->m_fRotationCenter, (Float3{0, 0, 0})) << "only the fit moves it";
}
INSTANTIATE_TEST_SUITE_P(Shapes, PanInAWindow,
                         testing::Values(WindowSize{640, 480}, WindowSize{333, 777}, WindowSize{400, 400}), NameOfSize);

TEST(ZoomView, ChangesTheZoomAndTheMatricesAndRefreshes) {
    OffscreenControl c;
    c->ZoomView(0, -500);
    EXPECT_FLOAT_EQ(c->m_fZoom, 0.5f);
    double projection[16] = {};
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    EXPECT_NEAR(projection[5], 1 / 250.0, 1e-9);
    c->ZoomView(300, 400);
    EXPECT_FLOAT_EQ(c->m_fZoom, 1.0f);
    ExpectOnlyRefresh(*c.window, 2);
}

TEST(ZoomView, RefreshesAtALimitAsWell) {
    OffscreenControl c;
    c->m_fZoom = 0.1f;
    c->ZoomView(0, -500);
    EXPECT_EQ(c->m_fZoom, 0.1f);
    c->m_fZoom = 10;
    c->ZoomView(0, 500);
    EXPECT_EQ(c->m_fZoom, 10.0f);
    ExpectOnlyRefresh(*c.window, 2);
}

// ---- the surface under the window's centre

TEST(GetViewDirection, ReturnsTheSurfacePointInTheCentreAndTheDirection) {
    OffscreenControl c(420, 350);
    AddMesh(*c, {{.x = 1, .y = 2, .z = 7, .nx = 1}, {.x = 1, .y = 80, .z = 90, .nx = 1}}, {});
    SetView(*c, {0, 1, 0}, {0, 0, 1}, {5, 2, 7}, 1);
    float v[6] = {};
    EXPECT_EQ(c->GetViewDirection(v, v + 1, v + 2, v + 3, v + 4, v + 5), KV_ScenePane::kVariantTrue);
    EXPECT_NEAR(v[0], 1, 0.01);
    EXPECT_NEAR(v[1], 2, 0.01);
    EXPECT_NEAR(v[2], 7, 0.01);
    EXPECT_EQ(v[3], 1);
    EXPECT_EQ(v[4], 0);
    EXPECT_EQ(v[5], 0);
}

TEST(GetViewDirection, WritesNothingWithoutAVertexThatFacesTheViewer) {
    OffscreenControl c;
    float v[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(c->GetViewDirection(v, v + 1, v + 2, v + 3, v + 4, v + 5), KV_ScenePane::kVariantFalse);
    AddMesh(*c, {{.nz = -1}}, {});
    EXPECT_EQ(c->GetViewDirection(v, v + 1, v + 2, v + 3, v + 4, v + 5), KV_ScenePane::kVariantFalse);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(v[i], static_cast<float>(i + 1));
}

TEST(FindViewAxisHit, SearchesThroughTheCentrePixelOfAnOddWindow) {
    OffscreenControl c(333, 777);
    c->m_fSceneSize = 333;  // one unit per pixel
    c->SetupViewMatrices();
    // the centre pixel is (166, 388): half a pixel left of the window's centre and half a pixel above it
    AddMesh(*c, {{.x = -0.5f, .y = 0.5f, .z = 9, .nz = 1}}, {});
    const auto hit = c->FindViewAxisHit({0, 0, 1});
    ASSERT_TRUE(hit.has_value());
    ExpectNear(*hit, {-0.5f, 0.5f, 9}, 1e-3, "hit");
}

TEST(FindViewAxisHit, FindsTheVertexNearestToTheViewer) {
    OffscreenControl c(420, 350);
    c->m_fSceneSize = 70;
    c->SetupViewMatrices();
    AddMesh(*c, {{.x = 0.01f, .z = -20, .nz = 1}, {.x = 0.2f, .z = 20, .nz = 1}, {.x = 3, .z = 30, .nz = 1}}, {});
    const auto hit = c->FindViewAxisHit({0, 0, 1});
    ASSERT_TRUE(hit.has_value());
    ExpectNear(*hit, {0, 0, 20}, 1e-3, "hit");
}

}  // namespace
