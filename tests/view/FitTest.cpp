// The fit of the view to the scene, and the clearing of the scene, which ends in one.
#include <GL/glew.h>

#include <cmath>
#include <memory>
#include <string>

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
    c->m_pCutSession = std::make_unique<CutSession>();
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
