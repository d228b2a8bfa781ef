// What the settings of the control store, and which strength of repaint each method requests.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "support/ControlFixture.h"
#include "support/GlNow.h"

namespace {

Mesh& AddTriangle(CKV_ScenePaneCtrl& control) {
    return AddMesh(control, {{0, 0, 0, 0, 0, 1}, {10, 0, 0, 0, 0, 1}, {0, 10, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
}

// ---- repaint strengths

enum class Repaint { None, Refresh, Invalidate, InvalidateWithErase };

struct RepaintRow {
    const char* name;
    Repaint strength;
    std::function<void(CKV_ScenePaneCtrl&)> call;
};
void PrintTo(const RepaintRow& row, std::ostream* out) { *out << row.name; }

const RepaintRow kRepaints[] = {
    {"SetSize", Repaint::None, [](auto& c) { c.SetSize(320, 200); }},
    {"ClearData", Repaint::Invalidate, [](auto& c) { c.ClearData(); }},
    {"GetReadyState", Repaint::None, [](auto& c) { (void)c.GetReadyState(); }},
    {"SaveProperties", Repaint::None, [](auto& c) { (void)c.SaveProperties(KV_ScenePane::PropertyFormat::Text); }},
    {"LoadProperties", Repaint::InvalidateWithErase,
     [](auto& c) { EXPECT_TRUE(c.LoadProperties("KV_ScenePane properties 1.0\nMoveReduced=1\n", nullptr)); }},
    {"LoadPropertiesUnchanged", Repaint::None,
     [](auto& c) { EXPECT_TRUE(c.LoadProperties("KV_ScenePane properties 1.0\n", nullptr)); }},
    {"AboutBox", Repaint::None, [](auto& c) { c.AboutBox(); }},
    {"GetNumObjects", Repaint::None, [](auto& c) { (void)c.GetNumObjects(); }},
    {"GetObjectColor", Repaint::None, [](auto& c) { (void)c.GetObjectColor(0); }},
    {"SetObjectColor", Repaint::Invalidate, [](auto& c) { c.SetObjectColor(0, 0x123456); }},
    {"SetObjectColorUnchanged", Repaint::None, [](auto& c) { c.SetObjectColor(0, c.GetObjectColor(0)); }},
    {"SetObjectColorBadIndex", Repaint::None, [](auto& c) { c.SetObjectColor(1, 0x123456); }},
    {"SetObjectVisibility", Repaint::Invalidate, [](auto& c) { c.SetObjectVisibility(0, 1); }},
    {"SetObjectVisibilityBadIndex", Repaint::None, [](auto& c) { c.SetObjectVisibility(-1, 1); }},
    {"GetMeshDataSize", Repaint::None,
     [](auto& c) {
         std::int32_t n = 0;
         c.GetMeshDataSize(0, &n, &n);
     }},
    {"GetObjectCenter", Repaint::None,
     [](auto& c) {
         float f = 0;
         c.GetObjectCenter(0, &f, &f, &f);
     }},
    {"GetObjectBoundingBox", Repaint::None,
     [](auto& c) {
         float f = 0;
         c.GetObjectBoundingBox(0, &f, &f, &f, &f, &f, &f);
         c.GetObjectBoundingBox(9, &f, &f, &f, &f, &f, &f);
     }},
    {"DeleteObject", Repaint::None, [](auto& c) { c.DeleteObject(0); }},
    {"SetBlendObjectColors", Repaint::None, [](auto& c) { c.SetBlendObjectColors(0, 1); }},
    {"SetAllowEmptyObjects", Repaint::None, [](auto& c) { c.SetAllowEmptyObjects(-1); }},
    {"BlockPaintEvents", Repaint::None, [](auto& c) { c.BlockPaintEvents(0); }},
    {"ResetSelection", Repaint::None, [](auto& c) { c.ResetSelection(); }},
    {"AddSelection", Repaint::None, [](auto& c) { c.AddSelection(0); }},
    {"ResetVariableObjects", Repaint::None, [](auto& c) { c.ResetVariableObjects(); }},
    {"AddVariableObject", Repaint::None, [](auto& c) { c.AddVariableObject(0); }},
    {"AlignInteractive", Repaint::Refresh, [](auto& c) { c.AlignInteractive(); }},
    {"AlignPickPoints", Repaint::Refresh, [](auto& c) { c.AlignPickPoints(); }},
    {"FinishInteraction", Repaint::Refresh,
     [](auto& c) {
         c.AlignInteractive();
         dynamic_cast<WindowProbe&>(*c.m_pWindow).Forget();
         c.FinishInteraction();
     }},
    {"FinishInteractionOfNone", Repaint::None, [](auto& c) { c.FinishInteraction(); }},
    {"SetReflection", Repaint::Refresh, [](auto& c) { c.SetReflection(0.5f, 0.5f); }},
    {"SetBackgroundColors", Repaint::Refresh, [](auto& c) { c.SetBackgroundColors(1, 2); }},
    {"SetBackgroundColorsFourCorners", Repaint::Refresh, [](auto& c) { c.SetBackgroundColorsFourCorners(1, 2, 3, 4); }},
    {"SetCrossColor", Repaint::None, [](auto& c) { c.SetCrossColor(5); }},
    {"GetCrossColor", Repaint::None, [](auto& c) { (void)c.GetCrossColor(); }},
    {"SetArrowColor", Repaint::Refresh, [](auto& c) { c.SetArrowColor(5); }},
    {"ShowLightingArrow", Repaint::Refresh, [](auto& c) { c.ShowLightingArrow(0); }},
    {"ShowAxes", Repaint::Refresh, [](auto& c) { c.ShowAxes(0); }},
    {"SetArrowAngle", Repaint::None, [](auto& c) { c.SetArrowAngle(30); }},
    {"SetScanSkipVal", Repaint::None, [](auto& c) { c.SetScanSkipVal(2); }},
    {"GetScanSkipVal", Repaint::None, [](auto& c) { (void)c.GetScanSkipVal(); }},
    {"SetConfidenceFilter", Repaint::None, [](auto& c) { c.SetConfidenceFilter(0.5f); }},
    {"SetPickRadius", Repaint::None, [](auto& c) { c.SetPickRadius(3); }},
    {"SetPointCloudRenderPointSize", Repaint::None, [](auto& c) { c.SetPointCloudRenderPointSize(3); }},
    {"AddPickPointSphere", Repaint::Refresh, [](auto& c) { c.AddPickPointSphere(1, 2, 3, 4); }},
    {"MovePickPointSphere", Repaint::Refresh,
     [](auto& c) {
         c.m_vPickPointSpheres.resize(1);
         c.MovePickPointSphere(0, 1, 2, 3);
     }},
    {"RemovePickPointSphere", Repaint::Refresh,
     [](auto& c) {
         c.m_vPickPointSpheres.resize(1);
         c.RemovePickPointSphere(0);
     }},
    {"ClearPickPointSpheres", Repaint::Refresh, [](auto& c) { c.ClearPickPointSpheres(); }},
    {"GetNumberOfPickPointSpheres", Repaint::None, [](auto& c) { (void)c.GetNumberOfPickPointSpheres(); }},
    {"GetPickPointSphereCoords", Repaint::None,
     [](auto& c) {
         float f = 0;
         c.m_vPickPointSpheres.resize(1);
         c.GetPickPointSphereCoords(0, &f, &f, &f);
     }},
    {"FindNearestPickPointSphere", Repaint::None, [](auto& c) { (void)c.FindNearestPickPointSphere(1, 2); }},
    {"SetLine3DDrawingMode", Repaint::None, [](auto& c) { c.SetLine3DDrawingMode(-1); }},
    {"GetLine3DDrawingMode", Repaint::None, [](auto& c) { (void)c.GetLine3DDrawingMode(); }},
    {"CreateLine3D", Repaint::Refresh,
     [](auto& c) {
         const float points[6] = {};
         c.CreateLine3D(1, 2, points);
     }},
    {"CreateLine3DOfAnIdInUse", Repaint::None,
     [](auto& c) {
         c.m_setLine3DIds.insert(1);
         c.CreateLine3D(1, 0, nullptr);
     }},
    {"ImportPoints", Repaint::None,
     [](auto& c) {
         const float point[3] = {};
         c.ImportPoints(1, point, point, 1.0f);
     }},
    {"SetPointsVisibility", Repaint::None,
     [](auto& c) {
         c.m_mapFreePoints[1];
         c.SetPointsVisibility(1, 0);
     }},
    {"DeletePoints", Repaint::InvalidateWithErase,
     [](auto& c) {
         c.m_mapFreePoints[1];
         c.DeletePoints(1);
     }},
    {"DeletePointsUnknownId", Repaint::None, [](auto& c) { c.DeletePoints(1); }},
    {"PerformRefresh", Repaint::Refresh, [](auto& c) { c.PerformRefresh(); }},
    {"PerformInvalidate", Repaint::Invalidate, [](auto& c) { c.PerformInvalidate(); }},
    {"SetDrawMosaic", Repaint::InvalidateWithErase, [](auto& c) { c.SetDrawMosaic(-1); }},
    {"SetDrawMode", Repaint::InvalidateWithErase, [](auto& c) { c.SetDrawMode(1); }},
    {"SetMoveReduced", Repaint::InvalidateWithErase, [](auto& c) { c.SetMoveReduced(-1); }},
    {"SetTrafoOfScan", Repaint::Refresh,
     [](auto& c) { c.SetTrafoOfScan(0, 1, 0, 0, 5, 0, 1, 0, 5, 0, 0, 1, 5, 0, 0, 0, 1); }},
    {"SetTrafoOfScanBadIndex", Repaint::None,
     [](auto& c) { c.SetTrafoOfScan(1, 1, 0, 0, 5, 0, 1, 0, 5, 0, 0, 1, 5, 0, 0, 0, 1); }},
    {"SetMeshFilename_Removed", Repaint::None, [](auto& c) { c.SetMeshFilename_Removed(); }},
    {"SetShadowMode", Repaint::None, [](auto& c) { c.SetShadowMode(1); }},
    {"SetShadowColor", Repaint::None, [](auto& c) { c.SetShadowColor(1, 0, 0); }},
    {"SetDefaultZoomFactor", Repaint::None, [](auto& c) { c.SetDefaultZoomFactor(2); }},
    {"TracingMode", Repaint::None, [](auto& c) { c.TracingMode(1); }},
    {"SetViewMode", Repaint::Refresh, [](auto& c) { c.SetViewMode(2); }},
    {"CenterView", Repaint::Invalidate, [](auto& c) { c.CenterView(); }},
    {"SetViewParams", Repaint::InvalidateWithErase, [](auto& c) { c.SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0); }},
    {"SetClipPlaneEnabledShown", Repaint::InvalidateWithErase,
     [](auto& c) {
         c.InitializeKVReg();  // for the placement at the data, which must have two heights
         c.m_vpMeshes.at(0)->m_vVertices.at(2).z = 5;
         c.SetClipPlaneEnabled(1);
         c.FinalizeKVReg();
     }},
    {"SetClipPlaneEnabledHidden", Repaint::InvalidateWithErase, [](auto& c) { c.SetClipPlaneEnabled(0); }},
    {"SetClipPlaneEnabledWithoutRegistry", Repaint::None,
     [](auto& c) { EXPECT_THROW(c.SetClipPlaneEnabled(1), std::runtime_error); }},
    {"SetClipPlaneDisabled", Repaint::InvalidateWithErase, [](auto& c) { c.SetClipPlaneDisabled(); }},
    {"SetClipPlane", Repaint::Refresh, [](auto& c) { c.SetClipPlane(1, 2, 3, 0, 1, 0); }},
    {"SetClipPlaneColor", Repaint::Refresh, [](auto& c) { c.SetClipPlaneColor(1, 2, 3); }},
    {"GetClipPlane", Repaint::None,
     [](auto& c) {
         float f = 0;
         c.GetClipPlane(&f, &f, &f, &f, &f, &f);
     }},
    {"DisplayClipPlanePartCloseToData", Repaint::InvalidateWithErase,
     [](auto& c) { c.DisplayClipPlanePartCloseToData(); }},
    {"StartSegmentation", Repaint::Refresh, [](auto& c) { c.StartSegmentation(KV_ScenePane::PolygonInside); }},
    {"StartSegmentationOfAnUnknownNumber", Repaint::Refresh, [](auto& c) { c.StartSegmentation(6); }},
    {"EndSegmentation", Repaint::Refresh,
     [](auto& c) {
         c.m_nInteractionMode = ModeLasso;
         c.EndSegmentation();
     }},
    {"EndSegmentationWithoutASession", Repaint::None, [](auto& c) { c.EndSegmentation(); }},
    {"SetLassoCuttingColors", Repaint::None, [](auto& c) { c.SetLassoCuttingColors(1, 0.5f, 2, 0.5f); }},
    {"PerformUndo", Repaint::Refresh,
     [](auto& c) {
         c.m_vUndoStack.push_back(c.m_vpMeshes);
         c.PerformUndo();
     }},
    {"PerformUndoWithoutAStep", Repaint::None, [](auto& c) { c.PerformUndo(); }},
    {"ClearUndoStack", Repaint::None,
     [](auto& c) {
         c.m_vUndoStack.push_back(c.m_vpMeshes);
         c.ClearUndoStack();
     }},
    {"GetCutMasks", Repaint::None,
     [](auto& c) {
         std::int32_t count = 0;
         (void)c.GetCutMasks(&count, nullptr);
     }},
    {"ClearCutMasks", Repaint::None, [](auto& c) { c.ClearCutMasks(); }},
    {"SaveCuttingToPcms", Repaint::None, [](auto& c) { (void)c.SaveCuttingToPcms(); }},
    {"SetNeedlePickingModeOn", Repaint::None, [](auto& c) { c.SetNeedlePickingMode(-1); }},
    {"SetNeedlePickingModeOff", Repaint::InvalidateWithErase, [](auto& c) { c.SetNeedlePickingMode(0); }},
    {"SetNeedleDrawingMode", Repaint::None, [](auto& c) { c.SetNeedleDrawingMode(-1); }},
    {"GetNeedleModes", Repaint::None,
     [](auto& c) {
         (void)c.GetNeedlePickingMode();
         (void)c.GetNeedleDrawingMode();
     }},
    {"SetNeedleRenderParameters", Repaint::None, [](auto& c) { c.SetNeedleRenderParameters(1, 2, 3, 4, 5, 6, 7, 8); }},
    {"SetMaxNumberOfNeedlesOfAnEmptyList", Repaint::None, [](auto& c) { c.SetMaxNumberOfNeedles(0); }},
    {"SetMaxNumberOfNeedles", Repaint::InvalidateWithErase,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1}, Needle{.id = 2}};
         c.SetMaxNumberOfNeedles(0);
     }},
    {"CreateNeedle", Repaint::Refresh, [](auto& c) { c.CreateNeedle(1, 0, 0, 0, 1, 1, 1); }},
    {"CreateNeedleOfAnIdInUse", Repaint::None,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1}};
         c.CreateNeedle(1, 0, 0, 0, 1, 1, 1);
     }},
    {"CreateNeedles", Repaint::Refresh,
     [](auto& c) {
         const std::int32_t id = 1;
         const float at[3] = {};
         c.CreateNeedles(1, &id, at, at);
     }},
    {"DeleteNeedle", Repaint::Refresh,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1}};
         c.DeleteNeedle(1);
     }},
    {"DeleteNeedleBadId", Repaint::None, [](auto& c) { c.DeleteNeedle(1); }},
    {"DeleteNeedlesOfAnEmptyList", Repaint::None, [](auto& c) { c.DeleteNeedles(); }},
    {"SelectNeedle", Repaint::Refresh,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1}};
         c.SelectNeedle(1);
     }},
    {"SelectNeedleBadId", Repaint::None, [](auto& c) { c.SelectNeedle(1); }},
    {"DeselectNeedle", Repaint::InvalidateWithErase,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1, .selected = true}};
         c.DeselectNeedle(1);
     }},
    {"DeselectNeedleThatIsNotSelected", Repaint::None,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1}};
         c.DeselectNeedle(1);
     }},
    {"DeselectAllNeedles", Repaint::InvalidateWithErase,
     [](auto& c) {
         c.m_vNeedles = {Needle{.id = 1, .selected = true}};
         c.DeselectAllNeedles();
     }},
    {"GetNeedle", Repaint::None,
     [](auto& c) {
         float f = 0;
         c.GetNeedle(1, &f, &f, &f, &f, &f, &f);
         std::vector<std::int32_t> ids(c.m_vNeedles.size());
         std::vector<float> pins(3 * c.m_vNeedles.size()), heads(pins);
         c.GetNeedles(ids.data(), pins.data(), heads.data());
         (void)c.GetNumberOfNeedles();
     }},
};

class RepaintOf : public testing::TestWithParam<RepaintRow> {};

TEST_P(RepaintOf, RequestsItsStrengthAndOnlyARefreshPaintsBeforeReturn) {
    OffscreenControl control(200, 100);
    const std::shared_ptr<Mesh> keepAlive(
        new Mesh({{0, 0, 0}, {9, 0, 0}, {0, 9, 0}}, {Triangle{{0, 1, 2}}}, L"", false));
    control->m_vpMeshes.push_back(keepAlive);
    control->PerformRefresh();
    control.window->Forget();
    keepAlive->m_fPointSize = -77;  // every frame passes the control's size to every mesh
    GetParam().call(*control);
    const bool drawn = keepAlive->m_fPointSize != -77;

    const Repaint strength = GetParam().strength;
    EXPECT_EQ(control.window->refreshes, strength == Repaint::Refresh ? 1 : 0);
    EXPECT_EQ(control.window->invalidates, strength == Repaint::Invalidate ? 1 : 0);
    EXPECT_EQ(control.window->eraseInvalidates, strength == Repaint::InvalidateWithErase ? 1 : 0);
    EXPECT_EQ(drawn, strength == Repaint::Refresh);
    const bool queued = strength == Repaint::Invalidate || strength == Repaint::InvalidateWithErase;
    // a resized window requests its own repaint
    if (std::string_view(GetParam().name) != "SetSize") {
        EXPECT_EQ(control.window->IsPaintPending(), queued);
    }
    if (queued && !control->m_vpMeshes.empty()) {
        control->ProcessEvents();
        EXPECT_NE(keepAlive->m_fPointSize, -77);
        EXPECT_FALSE(control.window->IsPaintPending());
    }
    ASSERT_TRUE(control->MakeContextCurrent());
    control->m_vpMeshes.clear();
    keepAlive->ReleaseBuffers();
}
INSTANTIATE_TEST_SUITE_P(Methods, RepaintOf, testing::ValuesIn(kRepaints),
                         [](const auto& row) { return row.param.name; });

// ---- what is stored

TEST(Settings, StoreTheirArguments) {
    NoPictureControl c;
    c->SetCrossColor(0x010203);
    c->SetArrowColor(0x040506);
    c->ShowLightingArrow(7);
    c->ShowAxes(-2);
    c->SetArrowAngle(-30);
    c->SetScanSkipVal(-5);
    c->SetConfidenceFilter(0.25f);
    c->SetPickRadius(12.5f);
    c->SetPointCloudRenderPointSize(3.5f);
    EXPECT_EQ(c->m_nCrossColor, 0x010203u);
    EXPECT_EQ(c->GetCrossColor(), 0x010203);
    EXPECT_EQ(c->m_nArrowColor, 0x040506u);
    EXPECT_EQ(c->m_nShowArrow, 7);
    EXPECT_EQ(c->m_nShowAxes, -2);
    EXPECT_EQ(c->m_nArrowAngle, -30);
    EXPECT_EQ(c->m_nScanSkipVal, -5);
    EXPECT_EQ(c->GetScanSkipVal(), -5);
    EXPECT_EQ(c->m_fConfidenceFilter, 0.25f);
    EXPECT_EQ(c->m_fPickRadius, 12.5f);
    EXPECT_EQ(c->m_fPointCloudSize, 3.5f);
    c->SetCrossColor(-1);
    EXPECT_EQ(c->GetCrossColor(), -1);
}

TEST(Settings, ReadTheLow16BitsOfTheSkipValue) {
    NoPictureControl c;
    c->m_nScanSkipVal = 0x12345;
    EXPECT_EQ(c->GetScanSkipVal(), 0x2345);
    c->m_nScanSkipVal = 0x18000;
    EXPECT_EQ(c->GetScanSkipVal(), INT16_MIN);
}

TEST(Settings, AcceptMinusOneAndOneAsTrue) {
    NoPictureControl c;
    for (const std::int16_t value : std::initializer_list<std::int16_t>{-1, 1, 2}) {
        c->SetAllowEmptyObjects(value);
        c->BlockPaintEvents(value);
        EXPECT_TRUE(c->m_bAllowEmptyObjects) << value;
        EXPECT_TRUE(c->m_bBlockPaint) << value;
        c->SetAllowEmptyObjects(0);
        c->BlockPaintEvents(0);
        EXPECT_FALSE(c->m_bAllowEmptyObjects);
        EXPECT_FALSE(c->m_bBlockPaint);
    }
    c->SetAllowEmptyObjects(256);  // its low byte is zero
    EXPECT_TRUE(c->m_bAllowEmptyObjects);
}

TEST(Settings, PutTwoBackgroundColoursAtTopAndBottom) {
    NoPictureControl c;
    c->SetBackgroundColors(0x111111, 0x222222);
    EXPECT_EQ(c->m_nBackgroundColors[0], 0x111111u);  // top left
    EXPECT_EQ(c->m_nBackgroundColors[1], 0x111111u);  // top right
    EXPECT_EQ(c->m_nBackgroundColors[2], 0x222222u);
    EXPECT_EQ(c->m_nBackgroundColors[3], 0x222222u);
}

TEST(Settings, PutFourBackgroundColoursInTheCorners) {
    OffscreenControl c(200, 100);
    c->SetBackgroundColorsFourCorners(0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(c->m_nBackgroundColors[i], (std::vector<std::uint32_t>{0xFF, 0xFF00, 0xFF0000, 0xFFFF}[i]));
    KV_ScenePane::Picture picture;
    ASSERT_TRUE(c->CapturePicture(&picture));
    ASSERT_EQ(picture.width, 200);
    ASSERT_EQ(picture.height, 100);
    const auto channel = [&](int x, int y, int shift) {
        return static_cast<int>(picture.pixels[static_cast<std::size_t>(y * 200 + x)] >> shift & 0xFF);
    };
    const int corners[4][2] = {{0, 0}, {199, 0}, {0, 99}, {199, 99}};
    const int expected[4][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}};
    for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 3; ++k)  // the corner pixel's centre is half a pixel from the corner: below 2 of 255 off
            EXPECT_NEAR(channel(corners[i][0], corners[i][1], 16 - 8 * k), expected[i][k], 3) << i << ' ' << k;
}

// ---- properties

TEST(Properties, AreReadAsZeroOrMinusOne) {
    NoPictureControl c;
    EXPECT_EQ(c->GetDrawMosaic(), 0);
    EXPECT_EQ(c->GetMoveReduced(), 0);
    EXPECT_EQ(c->GetDrawMode(), 3);
    for (const std::int16_t value : std::initializer_list<std::int16_t>{-1, 1, 256}) {
        c->SetDrawMosaic(value);
        c->SetMoveReduced(value);
        EXPECT_EQ(c->GetDrawMosaic(), -1) << value;
        EXPECT_EQ(c->GetMoveReduced(), -1) << value;
        EXPECT_EQ(c->m_bDrawMosaic, 1) << value;
        EXPECT_EQ(c->m_bMoveReduced, 1) << value;
    }
    c->SetDrawMosaic(0);
    c->SetMoveReduced(0);
    EXPECT_EQ(c->GetDrawMosaic(), 0);
    EXPECT_EQ(c->GetMoveReduced(), 0);
}

TEST(Properties, KeepAnyDrawMode) {
    NoPictureControl c;
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{0, 7, 8, INT16_MIN, INT16_MAX}) {
        c->SetDrawMode(mode);
        EXPECT_EQ(c->GetDrawMode(), mode);
    }
}

TEST(Properties, MarkTheControlModified) {
    const std::function<void(CKV_ScenePaneCtrl&)> writes[] = {
        [](auto& c) { c.SetDrawMosaic(-1); }, [](auto& c) { c.SetDrawMode(2); }, [](auto& c) { c.SetMoveReduced(-1); }};
    for (const auto& write : writes) {
        NoPictureControl c;
        EXPECT_FALSE(c->m_bModified);
        write(*c);
        EXPECT_TRUE(c->m_bModified);
    }
}

TEST(Properties, AreTheOnlyOnesThatMarkTheControlModified) {
    NoPictureControl c;
    AddTriangle(*c);
    for (const RepaintRow& row : kRepaints)
        if (row.strength != Repaint::InvalidateWithErase && std::string_view(row.name) != "DeleteObject" &&
            std::string_view(row.name) != "ClearData" && c->GetNumObjects() > 0)
            row.call(*c);
    EXPECT_FALSE(c->m_bModified);
}

TEST(Properties, ReportTheReadyStateComplete) { EXPECT_EQ(NoPictureControl()->GetReadyState(), 4); }

TEST(Properties, ShowTheSamePictureWithAndWithoutMosaic) {
    OffscreenControl c(200, 100);
    AddTriangle(*c);
    c->CenterView();
    KV_ScenePane::Picture without, with;
    ASSERT_TRUE(c->CapturePicture(&without));
    c->SetDrawMosaic(-1);
    ASSERT_TRUE(c->CapturePicture(&with));
    EXPECT_EQ(with.pixels, without.pixels);
    EXPECT_GT(std::ranges::count_if(without.pixels, [&](auto p) { return p != without.pixels[0]; }), 0);
}

// ---- the reflection

TEST(SetReflection, SetsTheFrontMaterial) {
    struct Row {
        float brightness, shining, shininess;
    };
    // 1 - trunc((1 - shining) * -127): 0.5 gives 1 + 63, 0.3 gives 1 + 88
    for (const Row& row : {Row{0.25f, 1.0f, 1.0f}, Row{1.0f, 0.0f, 128.0f}, Row{0.0f, 0.5f, 64.0f},
                           Row{0.5f, 0.3f, 89.0f}, Row{0.5f, 0.999f, 1.0f}}) {
        OffscreenControl c;
        c->SetReflection(row.brightness, row.shining);
        ASSERT_TRUE(c->MakeContextCurrent());
        const float b = row.brightness;
        EXPECT_EQ(GlMaterial(GL_FRONT, GL_SPECULAR), (std::array{b, b, b, b}));
        EXPECT_EQ(GlMaterial(GL_FRONT, GL_SHININESS)[0], row.shininess) << row.shining;
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
}

TEST(SetReflection, ChangesOnlyItsOwnContext) {
    OffscreenControl mine, other;
    ASSERT_TRUE(other->MakeContextCurrent());
    mine->SetReflection(0.75f, 1.0f);
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SHININESS)[0], 64.0f);  // the initial value of a context
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SPECULAR)[0], 0.0f);
    ASSERT_TRUE(mine->MakeContextCurrent());
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SHININESS)[0], 1.0f);
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SPECULAR)[0], 0.75f);
}

// ---- blocked painting

TEST(BlockPaintEvents, KeepsARefreshPendingUntilItIsUnblocked) {
    OffscreenControl c(64, 64);
    Mesh& mesh = AddTriangle(*c);
    mesh.m_fPointSize = -77;
    c->BlockPaintEvents(-1);
    c->PerformRefresh();
    EXPECT_EQ(mesh.m_fPointSize, -77) << "drawn in spite of the block";
    EXPECT_TRUE(c.window->IsPaintPending());
    c->ProcessEvents();
    EXPECT_EQ(mesh.m_fPointSize, -77);
    KV_ScenePane::Picture picture;
    EXPECT_FALSE(c->CapturePicture(&picture));
    c->BlockPaintEvents(0);
    EXPECT_EQ(mesh.m_fPointSize, -77) << "drawn before the loop came round";
    c->ProcessEvents();
    EXPECT_EQ(mesh.m_fPointSize, 2.0f);
    EXPECT_FALSE(c.window->IsPaintPending());
}

TEST(PerformInvalidate, CoalescesRequestsIntoOnePaint) {
    OffscreenControl c(64, 64);
    Mesh& mesh = AddTriangle(*c);
    for (int i = 0; i < 5; ++i) c->PerformInvalidate();
    c->ProcessEvents();
    EXPECT_EQ(mesh.m_fPointSize, 2.0f);
    EXPECT_FALSE(c.window->IsPaintPending());
    mesh.m_fPointSize = -77;
    c->ProcessEvents();
    EXPECT_EQ(mesh.m_fPointSize, -77) << "painted twice for one batch of requests";
}

}  // namespace
