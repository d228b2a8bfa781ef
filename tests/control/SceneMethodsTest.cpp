// The host methods on scene objects, at valid and at bad indices.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/ControlFixture.h"
#include "support/GlNow.h"
#include "support/TestCutSession.h"

namespace {

constexpr std::int16_t kTrue = -1, kFalse = 0;

/// Three corners with the box 1..11, 2..22, 3..33 and the mean (5, 10, 15) of single precision sums.
Mesh& AddTriangle(CKV_ScenePaneCtrl& control) {
    return AddMesh(control, {{1, 2, 3}, {11, 6, 9}, {3, 22, 33}}, {Triangle{{0, 1, 2}}});
}

/// Indices outside a list of @p size.
std::vector<std::int16_t> BadIndices(std::size_t size) {
    return {-1, static_cast<std::int16_t>(size), INT16_MIN, INT16_MAX};
}

class SceneMethods : public testing::Test {
protected:
    void SetUp() override {
        AddTriangle(*control);
        AddTriangle(*control);
        for (const auto& mesh : control->m_vpMeshes) mesh->m_bBuffersDirty = false;
    }
    Mesh& At(std::size_t i) { return *control->m_vpMeshes[i]; }

    NoPictureControl control;
};

struct BoxOut {
    float xMin = 7, xMax = 7, yMin = 7, yMax = 7, zMin = 7, zMax = 7;
    bool operator==(const BoxOut&) const = default;
};
void PrintTo(const BoxOut& b, std::ostream* out) {
    *out << b.xMin << ".." << b.xMax << ' ' << b.yMin << ".." << b.yMax << ' ' << b.zMin << ".." << b.zMax;
}
BoxOut BoxOf(CKV_ScenePaneCtrl& control, std::int16_t idx) {
    BoxOut b;
    control.GetObjectBoundingBox(idx, &b.xMin, &b.xMax, &b.yMin, &b.yMax, &b.zMin, &b.zMax);
    return b;
}

// ---- counts

TEST(EmptyScene, HasNoObjectsNoColourNoCentreAndTheInvertedBox) {
    NoPictureControl control;
    EXPECT_EQ(control->GetNumObjects(), 0);
    EXPECT_EQ(control->GetObjectColor(0), -1);
    float x = 0, y = 0, z = 0;
    EXPECT_EQ(control->GetObjectCenter(0, &x, &y, &z), kFalse);
    EXPECT_EQ(BoxOf(*control, 0), (BoxOut{1, -1, 1, -1, 1, -1}));
    EXPECT_EQ(control.debugOutput.Text(),
              "CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!\n"
              "- objectIdx = 0\n"
              "- m_vpMeshes.size() = 0\n");
}

TEST_F(SceneMethods, CountsTheObjects) { EXPECT_EQ(control->GetNumObjects(), 2); }

TEST_F(SceneMethods, TruncatesTheCountTo16Bits) {
    control->m_vpMeshes.resize(32767, control->m_vpMeshes[0]);
    EXPECT_EQ(control->GetNumObjects(), 32767);
    control->m_vpMeshes.resize(40000, control->m_vpMeshes[0]);
    EXPECT_EQ(control->GetNumObjects(), 40000 - 65536);
    control->m_vpMeshes.resize(70000, control->m_vpMeshes[0]);
    EXPECT_EQ(control->GetNumObjects(), 70000 - 65536);
}

TEST_F(SceneMethods, ReturnsVertexAndTriangleCounts) {
    AddMesh(*control, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {Triangle{{0, 1, 2}}, Triangle{{1, 3, 2}}});
    std::int32_t vertices = -5, triangles = -5;
    control->GetMeshDataSize(2, &vertices, &triangles);
    EXPECT_EQ(vertices, 4);
    EXPECT_EQ(triangles, 2);
}

// ---- colours

TEST_F(SceneMethods, ReadsAColourByTruncation) {
    At(0).m_fColor[0] = 0.5f;                // 127.5
    At(0).m_fColor[1] = 0.999f;              // 254.745
    At(0).m_fColor[2] = 1.0f / 255 - 1e-6f;  // 0.9997
    EXPECT_EQ(control->GetObjectColor(0), 127 | 254 << 8 | 0 << 16);
}

TEST_F(SceneMethods, StoresAColourAndMarksTheObjectForUpload) {
    control->SetObjectColor(1, 0x00336699);
    EXPECT_FLOAT_EQ(At(1).m_fColor[0], 0x99 / 255.0f);
    EXPECT_FLOAT_EQ(At(1).m_fColor[1], 0x66 / 255.0f);
    EXPECT_FLOAT_EQ(At(1).m_fColor[2], 0x33 / 255.0f);
    EXPECT_TRUE(At(1).m_bBuffersDirty);
    EXPECT_FALSE(At(0).m_bBuffersDirty);
    EXPECT_EQ(control->GetObjectColor(0), 0xFFFFFF);
}

TEST_F(SceneMethods, ReadsBackEveryColourByteWithinFloatRounding) {
    for (int value = 0; value < 256; ++value) {
        const auto channel = static_cast<float>(value / 255.0);
        const auto back = static_cast<std::int32_t>(static_cast<double>(channel) * 255.0);
        control->SetObjectColor(0, value << 16);
        EXPECT_EQ(control->GetObjectColor(0), back << 16);
    }
}

TEST_F(SceneMethods, IgnoresTheHighByteOfAColour) {
    control->SetObjectColor(0, static_cast<std::int32_t>(0xAB000000u));
    EXPECT_EQ(control->GetObjectColor(0), 0);
}

TEST_F(SceneMethods, SettingThePresentColourDoesNotMarkTheObjectDirty) {
    At(0).m_fColor[1] = 0.5f;
    control->SetObjectColor(0, control->GetObjectColor(0));
    EXPECT_FALSE(At(0).m_bBuffersDirty);
    EXPECT_EQ(At(0).m_fColor[1], 0.5f);  // not rounded to a byte either
    EXPECT_EQ(control.window->invalidates + control.window->eraseInvalidates + control.window->refreshes, 0);
}

TEST_F(SceneMethods, HasNoColourAtABadIndex) {
    for (const std::int16_t idx : BadIndices(2)) {
        EXPECT_EQ(control->GetObjectColor(idx), -1) << idx;
        control->SetObjectColor(idx, 0x123456);
        EXPECT_EQ(control.window->invalidates, 0) << idx;
    }
    EXPECT_EQ(control->GetObjectColor(0), 0xFFFFFF);
    EXPECT_EQ(control->GetObjectColor(1), 0xFFFFFF);
}

TEST_F(SceneMethods, SetsTheBlendFlagAndUploadsOnlyAChange) {
    control->SetBlendObjectColors(1, 2);
    EXPECT_TRUE(At(1).m_bBlendObjectColor);
    EXPECT_TRUE(At(1).m_bBuffersDirty);
    At(1).m_bBuffersDirty = false;
    control->SetBlendObjectColors(1, -7);
    EXPECT_TRUE(At(1).m_bBlendObjectColor);
    EXPECT_FALSE(At(1).m_bBuffersDirty);
    control->SetBlendObjectColors(1, 0);
    EXPECT_FALSE(At(1).m_bBlendObjectColor);
    EXPECT_TRUE(At(1).m_bBuffersDirty);
    for (const std::int16_t idx : BadIndices(2)) control->SetBlendObjectColors(idx, 1);
    EXPECT_FALSE(At(0).m_bBlendObjectColor);
    EXPECT_FALSE(At(0).m_bBuffersDirty);
}

// ---- visibility, centre, box

TEST_F(SceneMethods, StoresTheVisibilityUnchanged) {
    for (const std::int16_t visible : std::initializer_list<std::int16_t>{0, 1, -3, INT16_MAX}) {
        control->SetObjectVisibility(1, visible);
        EXPECT_EQ(At(1).m_iVisible, visible);
    }
    EXPECT_EQ(control.window->invalidates, 4);
    EXPECT_EQ(At(0).m_iVisible, 1);
}

TEST_F(SceneMethods, HidesNothingAtABadIndex) {
    for (const std::int16_t idx : BadIndices(2)) control->SetObjectVisibility(idx, 0);
    EXPECT_EQ(At(0).m_iVisible, 1);
    EXPECT_EQ(At(1).m_iVisible, 1);
    EXPECT_EQ(control.window->invalidates, 0);
}

TEST_F(SceneMethods, ComputesTheCentreOnceOnTheFirstRequest) {
    float x = 0, y = 0, z = 0;
    EXPECT_EQ(control->GetObjectCenter(1, &x, &y, &z), kTrue);
    EXPECT_EQ((std::vector{x, y, z}), (std::vector<float>{5, 10, 15}));
    At(1).m_vVertices[0].x += 300;  // without the object noticing
    EXPECT_EQ(control->GetObjectCenter(1, &x, &y, &z), kTrue);
    EXPECT_EQ(x, 5);
    for (const std::int16_t idx : BadIndices(2)) EXPECT_EQ(control->GetObjectCenter(idx, &x, &y, &z), kFalse) << idx;
}

TEST_F(SceneMethods, ReturnsTheBoxAxisByAxis) { EXPECT_EQ(BoxOf(*control, 1), (BoxOut{1, 11, 2, 22, 3, 33})); }

TEST_F(SceneMethods, ABadIndexGivesTheInvertedBoxAndALineWithTheIndex) {
    for (const std::int16_t idx : BadIndices(2)) {
        EXPECT_EQ(BoxOf(*control, idx), (BoxOut{1, -1, 1, -1, 1, -1})) << idx;
        EXPECT_EQ(control.debugOutput.Take(),
                  "CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!\n- objectIdx = " +
                      std::to_string(idx) + "\n- m_vpMeshes.size() = 2\n");
    }
}

TEST_F(SceneMethods, AnEmptyObjectHasTheInvertedBoxAndNoLine) {
    AddMesh(*control, {}, {});
    EXPECT_EQ(BoxOf(*control, 2), (BoxOut{0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f}));
    EXPECT_EQ(control.debugOutput.Text(), "");
}

TEST_F(SceneMethods, AFlatObjectHasABoxWithThickness) {
    AddMesh(*control, {{0, 0, 5}, {1, 0, 5}, {0, 1, 5}}, {Triangle{{0, 1, 2}}});
    EXPECT_EQ(BoxOf(*control, 2), (BoxOut{0, 1, 0, 1, 5.0f - 0.01f, 5.0f + 0.01f}));
}

// ---- deleting and selecting

TEST_F(SceneMethods, DeletingAnObjectMovesLaterIndicesDown) {
    AddTriangle(*control);
    const std::weak_ptr<Mesh> deleted = control->m_vpMeshes[0];
    Mesh* const second = control->m_vpMeshes[1].get();
    Mesh* const third = control->m_vpMeshes[2].get();
    control->DeleteObject(0);
    ASSERT_EQ(control->GetNumObjects(), 2);
    EXPECT_EQ(control->m_vpMeshes[0].get(), second);
    EXPECT_EQ(control->m_vpMeshes[1].get(), third);
    EXPECT_TRUE(deleted.expired());
    control->DeleteObject(1);
    control->DeleteObject(0);
    EXPECT_EQ(control->GetNumObjects(), 0);
}

TEST_F(SceneMethods, DeletesNothingAtABadIndex) {
    for (const std::int16_t idx : BadIndices(2)) control->DeleteObject(idx);
    EXPECT_EQ(control->GetNumObjects(), 2);
}

TEST_F(SceneMethods, DeletingAnObjectKeepsSelectionAndUndoSteps) {
    control->AddSelection(0);
    control->AddVariableObject(0);
    control->m_vUndoStack.push_back(control->m_vpMeshes);
    const std::weak_ptr<Mesh> deleted = control->m_vpMeshes[0];
    control->DeleteObject(0);
    EXPECT_EQ(control->m_vpSelection.size(), 1u);
    EXPECT_EQ(control->m_vpVariableObjects.size(), 1u);
    ASSERT_EQ(control->m_vUndoStack.size(), 1u);
    EXPECT_EQ(control->m_vUndoStack[0].size(), 2u);
    EXPECT_FALSE(deleted.expired());  // the undo step holds it
}

TEST_F(SceneMethods, AnObjectCanBeSelectedTwice) {
    AddTriangle(*control), AddTriangle(*control);
    control->AddSelection(3);
    control->AddSelection(3);
    control->AddSelection(1);
    EXPECT_EQ(control->m_vpSelection, (std::vector<Mesh*>{&At(3), &At(3), &At(1)}));
    control->ResetSelection();
    EXPECT_TRUE(control->m_vpSelection.empty());
}

TEST_F(SceneMethods, AnObjectCanBeVariableTwice) {
    control->AddVariableObject(1);
    control->AddVariableObject(0);
    control->AddVariableObject(1);
    EXPECT_EQ(control->m_vpVariableObjects, (std::vector<Mesh*>{&At(1), &At(0), &At(1)}));
    control->ResetVariableObjects();
    EXPECT_TRUE(control->m_vpVariableObjects.empty());
    EXPECT_TRUE(control->m_vpSelection.empty());
}

TEST_F(SceneMethods, SelectsNothingAtABadIndex) {
    for (const std::int16_t idx : BadIndices(2)) {
        control->AddSelection(idx);
        control->AddVariableObject(idx);
    }
    EXPECT_TRUE(control->m_vpSelection.empty());
    EXPECT_TRUE(control->m_vpVariableObjects.empty());
}

TEST_F(SceneMethods, ReturnsObjectInfoAndNothingAtABadIndex) {
    At(1).m_sName = L"scan one";
    At(1).m_bHasVertexColors = true;
    KV_ScenePane::ObjectInfo info{L"before", false};
    for (const std::int16_t idx : BadIndices(2)) {
        EXPECT_FALSE(control->GetObjectInfo(idx, &info)) << idx;
        EXPECT_EQ(info.name, L"before");
    }
    EXPECT_TRUE(control->GetObjectInfo(1, &info));
    EXPECT_EQ(info.name, L"scan one");
    EXPECT_TRUE(info.hasVertexColors);
}

// ---- the transform

using Matrix = std::array<float, 16>;
constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

std::int16_t SetTrafo(CKV_ScenePaneCtrl& control, std::int16_t idx, const Matrix& m) {
    return control.SetTrafoOfScan(idx, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], m[12],
                                  m[13], m[14], m[15]);
}
std::int16_t GetTrafo(CKV_ScenePaneCtrl& control, std::int16_t idx, Matrix& m) {
    return control.GetTrafoOfScan(idx, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8], &m[9], &m[10],
                                  &m[11], &m[12], &m[13], &m[14], &m[15]);
}
void ExpectNear(const Matrix& actual, const Matrix& expected) {
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-6) << "element " << i;
}
void ExpectAt(const Vertex& v, float x, float y, float z) {
    EXPECT_NEAR(v.x, x, 1e-4);
    EXPECT_NEAR(v.y, y, 1e-4);
    EXPECT_NEAR(v.z, z, 1e-4);
}

/// A quarter turn about Z, then (10, 20, 30).
constexpr Matrix kQuarterTurn{0, -1, 0, 10, 1, 0, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1};

TEST_F(SceneMethods, HasTheIdentityAsTransformAtFirst) {
    Matrix m{};
    EXPECT_EQ(GetTrafo(*control, 0, m), 0);
    EXPECT_EQ(m, kIdentity);
}

TEST_F(SceneMethods, BakesATransformIntoTheVerticesAndReadsItRowByRow) {
    At(1).m_vVertices[0].nx = 1;
    EXPECT_EQ(SetTrafo(*control, 1, kQuarterTurn), 0);
    ExpectAt(At(1).m_vVertices[0], -2 + 10, 1 + 20, 3 + 30);
    EXPECT_NEAR(At(1).m_vVertices[0].nx, 0, 1e-6);
    EXPECT_NEAR(At(1).m_vVertices[0].ny, 1, 1e-6);
    EXPECT_TRUE(At(1).m_bBuffersDirty);
    Matrix m{};
    EXPECT_EQ(GetTrafo(*control, 1, m), 0);
    ExpectNear(m, kQuarterTurn);
    ExpectAt(At(0).m_vVertices[0], 1, 2, 3);
}

TEST_F(SceneMethods, RevertsTheOldTransformBeforeItBakesTheNewOne) {
    SetTrafo(*control, 0, kQuarterTurn);
    Matrix shift = kIdentity;
    shift[3] = 100;
    EXPECT_EQ(SetTrafo(*control, 0, shift), 0);
    ExpectAt(At(0).m_vVertices[0], 101, 2, 3);
    ExpectAt(At(0).m_vVertices[2], 103, 22, 33);
}

TEST_F(SceneMethods, MovesBoxAndCentreWithTheTransform) {
    float x = 0, y = 0, z = 0;
    control->GetObjectCenter(0, &x, &y, &z);
    SetTrafo(*control, 0, kQuarterTurn);
    const BoxOut box = BoxOf(*control, 0);  // -22..-2 in x, 1..11 in y, then the shift
    EXPECT_NEAR(box.xMin, -12, 1e-4);
    EXPECT_NEAR(box.xMax, 8, 1e-4);
    EXPECT_NEAR(box.yMin, 21, 1e-4);
    EXPECT_NEAR(box.yMax, 31, 1e-4);
    EXPECT_NEAR(box.zMin, 33, 1e-4);
    EXPECT_NEAR(box.zMax, 63, 1e-4);
    control->GetObjectCenter(0, &x, &y, &z);
    EXPECT_NEAR(x, 0, 1e-4);
    EXPECT_NEAR(y, 25, 1e-4);
    EXPECT_NEAR(z, 45, 1e-4);
}

TEST_F(SceneMethods, APureScalingMatrixHasNoEffect) {
    Matrix scaled = kIdentity;
    for (const std::size_t i : {0u, 5u, 10u}) scaled[i] = 2;
    EXPECT_EQ(SetTrafo(*control, 0, scaled), 0);
    Matrix m{};
    GetTrafo(*control, 0, m);
    ExpectNear(m, kIdentity);
    ExpectAt(At(0).m_vVertices[0], 1, 2, 3);
}

TEST_F(SceneMethods, OfAScaledMatrixTheQuaternionRotationRemains) {
    Matrix scaled = kQuarterTurn;
    for (const std::size_t i : {1u, 4u, 10u}) scaled[i] *= 2;
    EXPECT_EQ(SetTrafo(*control, 0, scaled), 0);
    // 4 w w = 1 + 0 + 0 + 2 and 4 w z = 2 + 2, so z / w is 4 / 3: half the angle of a 3-4-5 triangle, cosine of the
    // angle (9 - 16) / 25, sine 24 / 25
    Matrix turned = kQuarterTurn;
    turned[0] = turned[5] = -0.28f;
    turned[1] = -0.96f, turned[4] = 0.96f;
    Matrix m{};
    GetTrafo(*control, 0, m);
    ExpectNear(m, turned);
    ExpectAt(At(0).m_vVertices[0], -0.28f - 1.92f + 10, 0.96f - 0.56f + 20, 33);
}

TEST_F(SceneMethods, IgnoresTheLastRowOfTheMatrix) {
    Matrix m = kQuarterTurn;
    for (const std::size_t i : {12u, 13u, 14u, 15u}) m[i] = 77;
    EXPECT_EQ(SetTrafo(*control, 0, m), 0);
    GetTrafo(*control, 0, m);
    ExpectNear(m, kQuarterTurn);
}

TEST_F(SceneMethods, ChangesNoTransformAtABadIndex) {
    for (const std::int16_t idx : BadIndices(2)) {
        EXPECT_EQ(SetTrafo(*control, idx, kQuarterTurn), -1) << idx;
        Matrix m{};
        EXPECT_EQ(GetTrafo(*control, idx, m), -1) << idx;
    }
    ExpectAt(At(0).m_vVertices[0], 1, 2, 3);
    ExpectAt(At(1).m_vVertices[0], 1, 2, 3);
    EXPECT_EQ(control.window->refreshes, 0);
}

// ---- clearing

/// Records its destruction.
struct DestructionRecorder : Mesh {
    explicit DestructionRecorder(std::function<void()> onDestruction)
        : Mesh(L"", false), m_onDestruction(std::move(onDestruction)) {}
    ~DestructionRecorder() override { m_onDestruction(); }
    std::function<void()> m_onDestruction;
};

TEST(ClearData, EmptiesMeshesThenUndoStepsThenLinesThenResetsTheView) {
    NoPictureControl control;
    CKV_ScenePaneCtrl& c = *control;
    std::vector<std::string> order;
    c.m_vpMeshes.push_back(std::make_shared<DestructionRecorder>([&] {
        order.emplace_back("mesh");
        EXPECT_EQ(c.m_vUndoStack.size(), 1u);
        EXPECT_EQ(c.m_vLines3D.size(), 1u);
        EXPECT_EQ(c.m_fAxisX, (Float3{0, 0, 1}));
    }));
    c.m_vUndoStack.push_back({std::make_shared<DestructionRecorder>([&] {
        order.emplace_back("snapshot");
        EXPECT_TRUE(c.m_vpMeshes.empty());
        EXPECT_EQ(c.m_vLines3D.size(), 1u);
    })});
    c.m_vLines3D.push_back({7, {{0, 0, 0}, {1, 1, 1}}});
    c.m_pCutMask = std::make_unique<CutMaskTextures>();
    c.m_pCutSession = MakeTestCutSession();
    c.m_fAxisX = {0, 0, 1}, c.m_fAxisY = {1, 0, 0}, c.m_fAxisZ = {0, 1, 0};
    c.m_fZoom = 3, c.m_fDefaultZoom = 1.5f;
    c.ClearData();
    EXPECT_EQ(order, (std::vector<std::string>{"mesh", "snapshot"}));
    EXPECT_TRUE(c.m_vpMeshes.empty());
    EXPECT_TRUE(c.m_vUndoStack.empty());
    EXPECT_TRUE(c.m_vLines3D.empty());
    EXPECT_EQ(c.m_pCutMask, nullptr);
    EXPECT_EQ(c.m_pCutSession, nullptr);
    EXPECT_EQ(c.m_fAxisX, (Float3{1, 0, 0}));
    EXPECT_EQ(c.m_fAxisY, (Float3{0, 1, 0}));
    EXPECT_EQ(c.m_fAxisZ, (Float3{0, 0, 1}));
    EXPECT_EQ(c.m_fZoom, 1.5f);
    EXPECT_EQ(c.m_fViewCenter, (Float3{0, 0, 0}));
    EXPECT_NEAR(c.m_fSceneSize, 173.205f, 1e-3);  // the box -50..50 of an empty scene
    EXPECT_EQ(control.window->invalidates, 1);
    EXPECT_EQ(control.window->refreshes + control.window->eraseInvalidates, 0);
}

TEST(ClearData, KeepsSelectionMarkersPointsAndOverlays) {
    NoPictureControl control;
    AddTriangle(*control);
    control->AddSelection(0);
    control->AddVariableObject(0);
    control->m_vNeedles.resize(2);
    control->m_vPickPointSpheres.resize(3);
    control->m_mapFreePoints[4] = {};
    control->m_vOverlays.resize(1);
    control->ClearData();
    EXPECT_EQ(control->m_vpSelection.size(), 1u);
    EXPECT_EQ(control->m_vpVariableObjects.size(), 1u);
    EXPECT_EQ(control->m_vNeedles.size(), 2u);
    EXPECT_EQ(control->m_vPickPointSpheres.size(), 3u);
    EXPECT_EQ(control->m_mapFreePoints.size(), 1u);
    EXPECT_EQ(control->m_vOverlays.size(), 1u);
    control->m_mapFreePoints.clear(), control->m_vOverlays.clear();  // their names are not real OpenGL objects
}

TEST(ClearData, DeletesTheBuffersInItsOwnContext) {
    OffscreenControl mine, other;
    AddTriangle(*mine), AddTriangle(*other);
    mine->PerformRefresh(), other->PerformRefresh();
    const GLuint myBuffer = mine->m_vpMeshes[0]->m_uVertexBuffer, othersBuffer = other->m_vpMeshes[0]->m_uVertexBuffer;
    ASSERT_TRUE(mine->MakeContextCurrent());
    ASSERT_TRUE(glIsBuffer(myBuffer));
    ASSERT_TRUE(other->MakeContextCurrent());
    mine->ClearData();
    ASSERT_TRUE(mine->MakeContextCurrent());
    EXPECT_FALSE(glIsBuffer(myBuffer));
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_TRUE(glIsBuffer(othersBuffer));
}

TEST(DeleteObject, DeletesTheBuffersInItsOwnContext) {
    OffscreenControl mine, other;
    AddTriangle(*mine), AddTriangle(*other);
    mine->PerformRefresh(), other->PerformRefresh();
    const GLuint myBuffer = mine->m_vpMeshes[0]->m_uVertexBuffer, othersBuffer = other->m_vpMeshes[0]->m_uVertexBuffer;
    ASSERT_TRUE(other->MakeContextCurrent());
    mine->DeleteObject(0);
    ASSERT_TRUE(mine->MakeContextCurrent());
    EXPECT_FALSE(glIsBuffer(myBuffer));
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_TRUE(glIsBuffer(othersBuffer));
}

TEST(AddSelection, AnObjectSelectedTwiceHasItsBoxDrawnTwice) {
    OffscreenControl control;
    for (int i = 0; i < 4; ++i) AddTriangle(*control);
    const auto primitivesOfAFrame = [&] {
        EXPECT_TRUE(control->MakeContextCurrent());
        GLuint query = 0, count = 0;
        glGenQueries(1, &query);
        glBeginQuery(GL_PRIMITIVES_GENERATED, query);
        control->PerformRefresh();
        glEndQuery(GL_PRIMITIVES_GENERATED);
        glGetQueryObjectuiv(query, GL_QUERY_RESULT, &count);
        glDeleteQueries(1, &query);
        return count;
    };
    const GLuint without = primitivesOfAFrame();
    control->AddSelection(3);
    const GLuint once = primitivesOfAFrame();
    control->AddSelection(3);
    const GLuint twice = primitivesOfAFrame();
    EXPECT_GE(once, without + 12);  // the edges of a box
    EXPECT_EQ(twice - once, once - without);
    EXPECT_EQ(GlErrorOf(*control), GLenum{GL_NO_ERROR});
}

}  // namespace
