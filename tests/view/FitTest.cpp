// The fit of the view to the scene, and the clearing of the scene, which ends in one.
#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "support/TestCutSession.h"
#include "view/CameraHelp.h"

namespace {

// ---- fit

TEST(CenterView, FitsAnEmptySceneToAFixedBox) {
    OffscreenControl c;
    c->m_fViewCenter = {4, 5, 6};
    c->CenterView();
    EXPECT_NEAR(c->m_fSceneSize, 173.205081, 1e-4);
    EXPECT_EQ(c->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(c->m_fRotationCenter, (Float3{0, 0, 0}));
    EXPECT_EQ(c.window->invalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->eraseInvalidates, 0);
    EXPECT_TRUE(c.window->IsPaintPending());
}

TEST(CenterView, FitsTheSceneWithTheDefaultZoomAndKeepsTheDirection) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {20, 30, 60});
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    c->m_fZoom = 4;
    c->SetDefaultZoomFactor(0.75f);
    EXPECT_EQ(c->m_fZoom, 4.0f) << "not before the next fit";
    c->CenterView();
    EXPECT_EQ(c->m_fZoom, 0.75f);
    EXPECT_FLOAT_EQ(c->m_fSceneSize, 70.0f);
    EXPECT_EQ(c->m_fViewCenter, (Float3{10, 15, 30}));
    EXPECT_EQ(c->m_fRotationCenter, (Float3{10, 15, 30}));
    ExpectNear(c->m_fAxisZ, {0.5f, 0.5f, kS}, 1e-6, "wz");
    EXPECT_EQ(c->m_savedView.center, (Float3{10, 15, 30})) << "the matrices follow";
}

TEST(CenterView, MovesTheClipPlaneWithinItselfToTheScene) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {20, 30, 60});
    c->m_clipPlane.SetNormal({1, 0, 0});
    c->m_clipPlane.SetCenter({100, 200, 300});
    c->m_clipPlane.m_bHighlighted = true;
    c->m_clipPlane.m_bMoveHandleVisible = c->m_clipPlane.m_bRotateHandlesVisible = false;
    c->CenterView();
    const Double3 center = c->m_clipPlane.GetCenter();
    EXPECT_NEAR(center[0], 100, 1e-9) << "it moves only within itself";
    EXPECT_NEAR(center[1], 15, 1e-9);
    EXPECT_NEAR(center[2], 30, 1e-9);
    EXPECT_NEAR(c->m_clipPlane.m_dRadius, 30 / std::cos(std::acos(-1.0) / 4), 1e-6);
    EXPECT_FALSE(c->m_clipPlane.m_bHighlighted);
    EXPECT_TRUE(c->m_clipPlane.m_bMoveHandleVisible);
    EXPECT_TRUE(c->m_clipPlane.m_bRotateHandlesVisible);
}

void ExpectBox(const Box& box, const Float3& low, const Float3& high) {
    ExpectNear(box.min, low, 1e-4, "min");
    ExpectNear(box.max, high, 1e-4, "max");
}

TEST(GetSceneBoundingBox, UnitesTheVisibleObjects) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {1, 2, 3});
    AddBox(*c, {-5, 1, 1}, {0, 9, 2}).m_iVisible = -1;
    AddBox(*c, {-90, -90, -90}, {90, 90, 90}).m_iVisible = 0;
    ExpectBox(c->GetSceneBoundingBox(), {-5, 0, 0}, {1, 9, 3});
}

TEST(GetSceneBoundingBox, SkipsObjectsWithoutTriangles) {
    OffscreenControl c;
    AddMesh(*c, {{.x = -400}, {.x = 400}}, {});
    ExpectBox(c->GetSceneBoundingBox(), {-50, -50, -50}, {50, 50, 50});
    AddBox(*c, {0, 0, 0}, {1, 2, 3});
    ExpectBox(c->GetSceneBoundingBox(), {0, 0, 0}, {1, 2, 3});
}

TEST(GetSceneBoundingBox, IsTheFixedBoxWhenEverythingIsHidden) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {1, 2, 3}).m_iVisible = 0;
    ExpectBox(c->GetSceneBoundingBox(), {-50, -50, -50}, {50, 50, 50});
}

TEST(GetSceneBoundingBox, IsTheFixedBoxWhenOneAxisIsInverted) {
    OffscreenControl c;
    Mesh& mesh = AddBox(*c, {0, 0, 0}, {1, 2, 3});
    mesh.m_fBoundingBox[2] = 7;
    mesh.m_fBoundingBox[3] = 6;
    ExpectBox(c->GetSceneBoundingBox(), {-50, -50, -50}, {50, 50, 50});
}

FreePointSet PointSet(const Float3& low, const Float3& high, bool visible) {
    FreePointSet set;
    set.numPoints = 2;
    set.visible = visible ? 1 : 0;
    set.boxMin = low;
    set.boxMax = high;
    return set;
}

TEST(GetSceneBoundingBox, IncludesVisibleFreePoints) {
    OffscreenControl c;
    c->m_mapFreePoints[3] = PointSet({1, 2, 3}, {4, 5, 6}, true);
    c->m_mapFreePoints[4] = PointSet({-800, 0, 0}, {800, 1, 1}, false);
    ExpectBox(c->GetSceneBoundingBox(), {1, 2, 3}, {4, 5, 6});
    AddBox(*c, {0, 3, 0}, {2, 9, 1});
    ExpectBox(c->GetSceneBoundingBox(), {0, 2, 0}, {4, 9, 6});
    c->m_mapFreePoints[3].visible = 0;
    ExpectBox(c->GetSceneBoundingBox(), {0, 3, 0}, {2, 9, 1});
    c->m_mapFreePoints.clear();  // the records name no buffers that a frame could draw
}

TEST(Import, DoesNotFitTheView) {
    OffscreenControl c;
    const float vertices[] = {0, 0, 0, 9, 0, 0, 0, 9, 0};
    const std::int32_t triangles[] = {0, 1, 2};
    c->ImportMeshFromMemory(3, 1, vertices, triangles);
    EXPECT_EQ(c->m_fSceneSize, 1000.0f);
    EXPECT_EQ(c->m_fViewCenter, (Float3{0, 0, 0}));
}

// ---- coordinates that are not finite

constexpr float kInf = std::numeric_limits<float>::infinity();

/// A triangle that is nowhere.
Mesh& AddUnplaced(CKV_ScenePaneCtrl& control) {
    return AddMesh(control, {{.x = NAN, .y = 1}, {.x = kInf, .y = 2}, {.x = -kInf, .y = 3}}, {{{0, 1, 2}}});
}

void ExpectFiniteView(const CKV_ScenePaneCtrl& control, const std::string& after) {
    const auto areFinite = [](const auto& numbers) {
        return std::ranges::all_of(numbers, [](auto number) { return std::isfinite(number); });
    };
    for (const Float3& vector : {control.m_fViewCenter, control.m_fRotationCenter, control.m_fAxisX, control.m_fAxisY,
                                 control.m_fAxisZ, control.m_fShadowEye, control.m_fShadowCenter, control.m_fShadowUp})
        EXPECT_TRUE(areFinite(vector)) << after;
    EXPECT_TRUE(std::isfinite(control.m_fSceneSize)) << after;
    EXPECT_TRUE(std::isfinite(control.m_fZoom)) << after;
    EXPECT_TRUE(areFinite(control.m_clipPlane.GetCenter())) << after;
    EXPECT_TRUE(std::isfinite(control.m_clipPlane.m_dRadius)) << after;
}

TEST(CenterView, LeavesOutCoordinatesThatAreNotFinite) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {20, 30, 60});
    AddUnplaced(*c);
    AddMesh(*c, {{.x = 1}, {.x = 2, .y = kInf}, {.y = 2, .z = NAN}, {.z = 60}}, {{{0, 1, 2}}});
    c->CenterView();
    EXPECT_FLOAT_EQ(c->m_fSceneSize, 70.0f);
    EXPECT_EQ(c->m_fViewCenter, (Float3{10, 15, 30}));
    ExpectFiniteView(*c, "CenterView");
}

TEST(CenterView, LeavesThePlaneWhereItIsWhenNothingIsFinite) {
    OffscreenControl c;
    AddUnplaced(*c);
    c->m_clipPlane.SetNormal({1, 1, 0});
    c->m_clipPlane.SetCenter({100, 200, 300});
    c->CenterView();
    EXPECT_EQ(c->m_clipPlane.GetCenter(), (Double3{100, 200, 300}));
    EXPECT_NEAR(c->m_fSceneSize, 173.205081, 1e-4);
    EXPECT_EQ(c->m_fViewCenter, (Float3{0, 0, 0}));
    // An object with a position brings it along again, and so does a scene without objects.
    AddBox(*c, {0, 0, 0}, {20, 30, 60});
    c->CenterView();
    EXPECT_NEAR(c->m_clipPlane.GetCenter()[2], 30, 1e-9);
    c->ClearData();
    EXPECT_NEAR(c->m_clipPlane.GetCenter()[2], 0, 1e-9);
}

TEST(CenterView, IsFiniteForTheLargestCoordinates) {
    OffscreenControl c;
    constexpr float kMax = std::numeric_limits<float>::max();
    AddBox(*c, {kMax / 2, 0, -kMax}, {kMax, 1, kMax});
    c->CenterView();
    ExpectFiniteView(*c, "CenterView");
    EXPECT_EQ(c->m_fViewCenter, (Float3{0.75f * kMax, 0.5f, 0}));
    EXPECT_EQ(c->m_fSceneSize, kMax);
    c->ClearData();
    AddBox(*c, {0, 0, 0}, {3e30f, 4e30f, 0});
    c->CenterView();
    EXPECT_FLOAT_EQ(c->m_fSceneSize, 5e30f) << "the squares of the extents overflow, their root does not";
}

TEST(AnObjectWithoutPosition, LeavesTheViewFiniteAfterEveryCall) {
    OffscreenControl c;
    AddUnplaced(*c);
    AddMesh(*c, {{.x = kInf, .nz = 1}, {.x = 2, .nz = NAN}, {.y = 2, .nz = 1}}, {{{0, 1, 2}}});
    float p[6] = {};
    const std::pair<const char*, std::function<void()>> calls[] = {
        {"CenterView", [&] { c->CenterView(); }},
        {"PerformRefresh", [&] { c->PerformRefresh(); }},
        {"GetViewDirection", [&] { c->GetViewDirection(&p[0], &p[1], &p[2], &p[3], &p[4], &p[5]); }},
        {"SetViewMode", [&] { c->SetViewMode(KV_ScenePane::ViewObliqueZUp); }},
        {"SetSize", [&] { c->SetSize(333, 77); }},
        {"SetTrafoOfScan", [&] { c->SetTrafoOfScan(0, 1, 0, 0, 5, 0, 1, 0, 5, 0, 0, 1, 5, 0, 0, 0, 1); }},
        {"SetDrawMode", [&] { c->SetDrawMode(4); }},
        {"ShowAxes", [&] { c->ShowAxes(1); }},
        {"AddSelection", [&] { c->AddSelection(0); }},
        {"CenterView again", [&] { c->CenterView(); }},
        {"DeleteObject", [&] { c->DeleteObject(1); }},
        {"ClearData", [&] { c->ResetSelection(), c->ClearData(); }},
    };
    for (const auto& [name, call] : calls) {
        call();
        c->PerformRefresh();
        ExpectFiniteView(*c, name);
    }
    for (const float coordinate : p) EXPECT_TRUE(std::isfinite(coordinate));
}

TEST(AnObjectWithoutPosition, IsNeverPicked) {
    OffscreenControl c;
    AddUnplaced(*c);
    c->CenterView();
    Float3 hit{};
    EXPECT_EQ(c->PickObjectAt(320, 240, &hit), -1);
    AddMesh(*c, {{.x = -9, .y = -9, .nz = 1}, {.x = 9, .y = -9, .nz = 1}, {.y = 9, .nz = 1}, {.x = kInf, .nz = 1}},
            {{{0, 1, 2}}, {{1, 3, 2}}});
    EXPECT_EQ(c->PickObjectAt(320, 240, &hit), 1);
    EXPECT_EQ(hit, (Float3{0, 0, 0}));
    float p[6] = {};
    ASSERT_NE(c->GetViewDirection(&p[0], &p[1], &p[2], &p[3], &p[4], &p[5]), 0);
    for (const float coordinate : p) EXPECT_TRUE(std::isfinite(coordinate));
}

// ---- ClearData

TEST(ClearData, ResetsTheFrameAndFitsTheEmptyScene) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {20, 30, 60});
    c->SetDefaultZoomFactor(1.25f);
    c->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    c->CenterView();
    c->m_fZoom = 5;
    c.window->Forget();
    c->ClearData();
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0}));
    EXPECT_EQ(c->m_fAxisY, (Float3{0, 1, 0}));
    EXPECT_EQ(c->m_fAxisZ, (Float3{0, 0, 1}));
    EXPECT_EQ(c->m_fZoom, 1.25f);
    EXPECT_EQ(c->m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_NEAR(c->m_fSceneSize, 173.205081, 1e-4);
    EXPECT_EQ(c->m_nViewMode, KV_ScenePane::ViewObliqueZUp) << "the last view mode is kept";
    EXPECT_EQ(c.window->invalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->eraseInvalidates, 0);
}

TEST(ClearData, RemovesObjectsUndoStepsLinesAndTheCut) {
    OffscreenControl c;
    AddBox(*c, {0, 0, 0}, {1, 1, 1});
    c->m_vUndoStack.push_back({c->m_vpMeshes[0]});
    c->m_vLines3D.push_back({.id = 1, .points = {{0, 0, 0}, {1, 1, 1}}});
    c->m_pCutSession = MakeTestCutSession();
    c->m_pCutMask = std::make_unique<CutMaskTextures>();
    c->ClearData();
    EXPECT_TRUE(c->m_vpMeshes.empty());
    EXPECT_TRUE(c->m_vUndoStack.empty());
    EXPECT_TRUE(c->m_vLines3D.empty());
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutMask, nullptr);
}

TEST(ClearData, KeepsMarkersOverlaysAndSelections) {
    OffscreenControl c;
    Mesh& mesh = AddBox(*c, {0, 0, 0}, {1, 1, 1});
    c->m_vpSelection.push_back(&mesh);
    c->m_vpVariableObjects.push_back(&mesh);
    c->m_vNeedles.push_back({.id = 4});
    c->m_vPickPointSpheres.push_back({1, 2, 3, 4});
    c->m_mapFreePoints[7] = PointSet({0, 0, 0}, {2, 3, 6}, true);
    c->m_vOverlays.emplace_back();
    c->ClearData();
    EXPECT_EQ(c->m_vpSelection.size(), 1u);
    EXPECT_EQ(c->m_vpVariableObjects.size(), 1u);
    EXPECT_EQ(c->m_vNeedles.size(), 1u);
    EXPECT_EQ(c->m_vPickPointSpheres.size(), 1u);
    EXPECT_EQ(c->m_mapFreePoints.size(), 1u);
    EXPECT_EQ(c->m_vOverlays.size(), 1u);
    EXPECT_FLOAT_EQ(c->m_fSceneSize, 7.0f) << "the fit sees the free points that stay";
    c->ResetSelection();
    c->m_mapFreePoints.clear();  // the record names no buffers that a frame could draw
    c->m_vOverlays.clear();
}

TEST(ClearData, DestroysObjectsFirstAndWithTheContextCurrent) {
    OffscreenControl c, other;  // the other one's context is current now
    std::string order;
    const auto watched = [&](char name) {
        return std::shared_ptr<Mesh>(new Mesh(L"", false), [&order, &c, name](Mesh* mesh) {
            order += name;
            order += c->m_vpMeshes.empty() || name == 'o' ? '.' : '!';
            order += c->m_vLines3D.empty() ? '!' : '.';
            order += c->m_fAxisZ == Float3{0, 0, 1} ? '!' : '.';
            GLint viewport[4] = {};
            glGetIntegerv(GL_VIEWPORT, viewport);
            order += viewport[2] == 640 && glGetString(GL_VERSION) != nullptr ? '.' : '!';
            delete mesh;
        });
    };
    c->SetViewMode(KV_ScenePane::ViewFromPlusXZUp);
    c->m_vpMeshes.push_back(watched('o'));
    c->m_vUndoStack.push_back({watched('u')});
    c->m_vLines3D.push_back({.id = 1, .points = {{0, 0, 0}}});
    other->SetSize(100, 100);
    c->ClearData();
    EXPECT_EQ(order, "o....u....") << "o objects, u snapshots; ! where a later step came too early";
}

}  // namespace
