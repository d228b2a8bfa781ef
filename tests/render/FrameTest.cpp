// What a frame draws in each case, and what keeps a frame from being drawn.
#include "render/FrameWitness.h"
#include "render/MeshTexture.h"
#include "render/SceneFixture.h"
#include "support/DriverTraits.h"

using namespace KV_ScenePane;
using namespace lighting;

namespace {

class Frames : public SceneInEveryWindow {
protected:
    [[nodiscard]] Vec3 Lit(const Square& square, int x, int y, const Vec3& tint = {1, 1, 1}) const {
        return FixedFunction(camera, square.At(camera, x, y, tint));
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, Frames, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

// ---- background

TEST_P(Frames, OfAnEmptySceneShowTheBackground) {
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

TEST_P(Frames, ShowTheFourColoursInTheirCorners) {
    pane->SetBackgroundColorsFourCorners(HostColor(255, 0, 0), HostColor(0, 255, 0), HostColor(0, 0, 255),
                                         HostColor(255, 255, 255));
    Frame();
    ExpectPixel(0, 0, {1, 0, 0});
    ExpectPixel(319, 0, {0, 1, 0});
    ExpectPixel(0, 239, {0, 0, 1});
    ExpectPixel(319, 239, {1, 1, 1});
    ExpectPixel(160, 0, {0.5, 0.5, 0});
    ExpectPixel(0, 120, {0.5, 0, 0.5});
}

TEST_P(Frames, FadeFromTheTopColourToTheBottomColour) {
    pane->SetBackgroundColors(HostColor(200, 100, 0), HostColor(0, 100, 200));
    Frame();
    for (const int y : {0, 60, 120, 200, 239}) {
        const double down = (y + 0.5) / 240;
        ExpectPixel(77, y, {(1 - down) * 200 / 255, 100 / 255.0, down * 200 / 255});
    }
}

TEST_P(Frames, KeepTheBackgroundBehindObjectsAtAnyDepth) {
    const Square square{.center = {0, 0, -19}};  // the far plane is at -20
    Add(square);
    Frame();
    ExpectPixel(160, 120, Lit(square, 160, 120));
}

// ---- which objects

TEST_P(Frames, DoNotShowHiddenObjects) {
    Add({}).m_iVisible = 0;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    pane->SetObjectVisibility(0, -7);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 96 * 96);
}

TEST_P(Frames, ShowTheBoxOfTheSelectionInEveryDrawMode) {
    const Square square{.half = 48.5 / 24};
    Add(square);
    pane->AddSelection(0);
    for (std::int16_t mode = 0; mode < 8; ++mode) {
        pane->m_nDrawMode = mode;
        Frame();
        ExpectPixel(208, 130, {0.0, 0.4, 0.9});
        ExpectPixel(150, 168, {0.0, 0.4, 0.9});
    }
}

TEST_P(Frames, ShowTheSelectionThroughNearerObjectsBeforeAndAfterAShadow) {
    Add({.half = 48.5 / 24});
    Add({.center = {0, 0, 5}, .half = 4});
    pane->AddSelection(0);
    for (const std::int16_t shadows : std::vector<std::int16_t>{0, 1, 0}) {
        pane->SetShadowMode(shadows);
        Frame();
        ExpectPixel(208, 130, {0.0, 0.4, 0.9});
    }
}

TEST_P(Frames, ShowOnlyTheBoxOfAHiddenSelectedObject) {
    Add({.half = 48.5 / 24}).m_iVisible = 0;
    pane->AddSelection(0);
    pane->AddSelection(0);
    Frame();
    ExpectPixel(208, 130, {0.0, 0.4, 0.9});
    ExpectBackground(160, 120);
}

TEST_P(Frames, ShowNothingOfAMeshWithoutTrianglesInAnyMode) {
    auto mesh = std::make_shared<Mesh>(Square{}.Vertices(), std::vector<Triangle>{}, std::wstring(), false);
    pane->m_vpMeshes.push_back(mesh);
    pane->AddSelection(0);
    for (std::int16_t mode = 0; mode < 7; ++mode) {
        mesh->MarkBuffersDirty();
        pane->m_nDrawMode = mode;
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << mode;
        EXPECT_FALSE(mesh->m_bBuffersDirty) << mode;
    }
}

// ---- reduced drawing

/// Small triangles in a row at y = 0. Their first corners are half a unit apart, from x = -6 on.
std::shared_ptr<Mesh> Row(int count) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int i = 0; i < count; ++i) {
        const double x = -6.0 + 0.5 * i;
        for (const Vec3& p : {Vec3{x, 0, 0}, Vec3{x + 0.2, 0, 0}, Vec3{x, 0.2, 0}})
            vertices.push_back(MakeVertex(p, {0, 0, 1}));
        triangles.push_back({{3 * i, 3 * i + 1, 3 * i + 2}});
    }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
}

class ReducedFrames : public Frames {
protected:
    ReducedFrames() {
        pane->m_bMoveReduced = 1;
        pane->m_bMoving = 1;
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, ReducedFrames, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(ReducedFrames, ShowTwoPointsOfTwentyFiveTriangles) {
    pane->m_vpMeshes.push_back(Row(25));
    for (std::int16_t mode = 0; mode < 4; ++mode) {
        pane->m_nDrawMode = mode;
        Frame();
        // Triangles 0 and 10 at x = -6 and -1: columns 16 and 136. 25 / 10 is rounded down: triangle 20 at x = 4,
        // column 256, is not drawn.
        EXPECT_EQ(PixelsThatAreNotBackground(), 8) << mode;
        ExpectPixel(16, 120, Lit({}, 16, 120));
        ExpectPixel(136, 120, Lit({}, 136, 120));
        ExpectBackground(256, 120);
    }
}

TEST_P(ReducedFrames, ShowNothingOfNineTriangles) {
    pane->m_vpMeshes.push_back(Row(9));
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

// A textured mesh has no index buffers: a tenth of its triangle count is drawn as points from the first corners on.
TEST_P(ReducedFrames, ShowTheFirstTwoCornersOfTwentyTexturedTriangles) {
    const auto mesh = Row(20);
    pane->m_vpMeshes.push_back(mesh);
    AddPlainTexture(*mesh);
    Frame();
    // x = -6 and -5.8: columns 16 and 20.8.
    EXPECT_EQ(PixelsThatAreNotBackground(), 8);
    ExpectPixel(16, 120, Lit({}, 16, 120));
    ExpectPixel(20, 120, Lit({}, 20, 120));
}

TEST_P(ReducedFrames, AreLitPointsInPerPixelMode) {
    pane->m_vpMeshes.push_back(Row(25));
    pane->m_nDrawMode = DrawModePerPixel;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 8);
    Surface point;
    point.position = {-6, 0, 0};
    point.corners = {Vec3{-6, 0, 0}, Vec3{-5, 0, 0}, Vec3{-6, 1, 0}};
    if (!FacesOfPointsAreDefined()) point.front = DistanceAt(16, 120, PerPixel(camera, point)) <= kTolerance;
    ExpectPixel(16, 120, PerPixel(camera, point));
}

TEST_P(ReducedFrames, AreNotReducedWithoutADragOrWithoutTheProperty) {
    pane->m_vpMeshes.push_back(Row(25));
    pane->m_bMoving = 0;
    Frame();
    EXPECT_GT(PixelsThatAreNotBackground(), 25 * 8);
    pane->m_bMoving = 1;
    pane->m_bMoveReduced = 0;
    Frame();
    EXPECT_GT(PixelsThatAreNotBackground(), 25 * 8);
}

// ---- clip plane

TEST_P(Frames, ClipObjectsAtTheActivePlane) {
    const Square square;
    Add(square);
    pane->m_clipPlane.SetCenter({1, 0, 0});
    pane->m_clipPlane.SetNormal({-1, 0, 0});  // keeps x below 1, column 184
    pane->m_bClipPlaneActive = 1;
    Frame();
    ExpectPixel(182, 120, Lit(square, 182, 120));
    ExpectBackground(186, 120);
    EXPECT_EQ(glIsEnabled(GL_CLIP_PLANE0), GL_FALSE);
    for (const InteractionMode mode : {ModePlaneHandle, ModePlaneRotate, ModePlaneMove}) {
        pane->m_nInteractionMode = mode;
        Frame();
        ExpectPixel(186, 120, Lit(square, 186, 120));
    }
    pane->m_nInteractionMode = ModePan;
    Frame();
    ExpectBackground(186, 120);
}

// ---- when a frame is drawn

TEST_P(Frames, AreDrawnBeforeARefreshReturns) {
    FrameWitness witness(*pane);
    pane->PerformRefresh();
    EXPECT_EQ(witness.frames, 1);
}

TEST_P(Frames, WaitWhilePaintingIsBlocked) {
    FrameWitness witness(*pane);
    pane->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    pane->PerformRefresh();
    pane->ProcessEvents();
    EXPECT_EQ(witness.frames, 0);
    EXPECT_TRUE(pane.window->IsPaintPending());
    pane->BlockPaintEvents(KV_ScenePane::kVariantFalse);
    pane->ProcessEvents();
    EXPECT_GE(witness.frames, 1);
    EXPECT_FALSE(pane.window->IsPaintPending());
}

TEST_P(Frames, AreNotNested) {
    FrameWitness witness(*pane);
    witness.inside = [&] {
        EXPECT_EQ(pane->m_bInDraw, 1);
        pane->PerformRefresh();
    };
    pane->PerformRefresh();
    EXPECT_EQ(witness.frames, 1);
    EXPECT_EQ(pane->m_bInDraw, 0);
}

TEST_P(Frames, HoldTheDrawLockOfTheProcess) {
    FrameWitness witness(*pane);
    bool lockedInside = false;
    witness.inside = [&] { lockedInside = DrawLockIsHeld(); };
    pane->PerformRefresh();
    EXPECT_TRUE(lockedInside);
    EXPECT_FALSE(DrawLockIsHeld());
}

TEST_P(Frames, ReleaseTheDrawLockWhenDropped) {
    FrameWitness witness(*pane);
    pane->m_bInDraw = 1;
    pane->PerformRefresh();
    EXPECT_EQ(witness.frames, 0);
    EXPECT_FALSE(DrawLockIsHeld());
    pane->m_bInDraw = 0;
}

// ---- size

TEST_P(Frames, FollowTheSizeOfTheWindow) {
    const Square square;
    Add(square);
    Frame();
    for (const auto& [width, height] : {std::pair{200, 300}, {300, 300}, {401, 201}}) {
        Resize(width, height);
        Frame();
        ASSERT_EQ(picture.width, width);
        ASSERT_EQ(picture.height, height);
        EXPECT_EQ(pane->m_nWidth, width);
        EXPECT_EQ(pane->m_nHeight, height);
        camera.width = width;
        camera.height = height;
        const auto [left, top] = camera.ToWindow({-2, 2, 0});
        const auto [right, bottom] = camera.ToWindow({2, -2, 0});
        const int middle = height / 2;
        ExpectBackground(static_cast<int>(left) - 2, middle);
        ExpectPixel(static_cast<int>(left) + 2, middle, Lit(square, width / 2, middle));
        ExpectPixel(static_cast<int>(right) - 2, middle, Lit(square, width / 2, middle));
        ExpectBackground(static_cast<int>(right) + 2, middle);
        ExpectBackground(width / 2, static_cast<int>(top) - 2);
        ExpectPixel(width / 2, static_cast<int>(top) + 2, Lit(square, width / 2, middle));
        ExpectBackground(width / 2, static_cast<int>(bottom) + 2);
    }
}

TEST_P(Frames, FollowANewWindowSizeDuringADrag) {
    Add({});
    Frame();
    pane->m_bMoving = 1;
    Resize(200, 400);
    Frame();
    // One scene size over the 200 columns: 20 pixels a unit.
    EXPECT_EQ(PixelsThatAreNotBackground(), 80 * 80);
}

// ---- the frozen image

TEST_P(Frames, ShowTheFrozenImageUntilItIsFreed) {
    const Square square;
    Add(square);
    pane->SetBackgroundColorsFourCorners(HostColor(255, 0, 0), HostColor(0, 255, 0), HostColor(0, 0, 255),
                                         HostColor(255, 255, 0));
    FrameWitness witness(*pane);
    witness.inside = [&] { pane->FreezeFrame(); };
    Frame();
    witness.inside = {};
    const KV_ScenePane::Picture live = picture;
    EXPECT_EQ(pane->m_nFrozenWidth, 320);
    EXPECT_EQ(pane->m_nFrozenHeight, 240);
    pane->m_vpMeshes.clear();
    pane->SetBackgroundColors(0, 0);
    Frame();
    EXPECT_EQ(picture.pixels, live.pixels);

    pane->m_pFrozenImage.reset();
    Frame();
    ExpectPixel(160, 120, {0, 0, 0});
}

TEST_P(Frames, RenewTheFrozenImageWhenTheSizeChanges) {
    FrameWitness witness(*pane);
    witness.inside = [&] { pane->FreezeFrame(); };
    Frame();
    witness.inside = {};
    Add({});
    // An odd width: the rows of the image are padded.
    Resize(201, 143);
    Frame();
    EXPECT_EQ(pane->m_nFrozenWidth, 201);
    EXPECT_EQ(pane->m_nFrozenHeight, 143);
    EXPECT_GT(PixelsThatAreNotBackground(), 0);
    const KV_ScenePane::Picture resized = picture;
    pane->m_vpMeshes.clear();
    Frame();
    EXPECT_EQ(picture.pixels, resized.pixels);
}

// ---- free points

class FreePoints : public Frames {
protected:
    /// Adds a point set of one point.
    void AddPoint(int id, const Vec3& at, const Vec3& color, float alpha) {
        ASSERT_TRUE(pane->MakeContextCurrent());
        FreePointSet points = MakePoint(id, at, color);
        points.alpha = alpha;
        pane->m_mapFreePoints[id] = points;
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, FreePoints, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(FreePoints, GrowWithTheWindowAndTheZoom) {
    AddPoint(1, {0, 0, 0}, {1, 0.5, 0}, 1.0f);
    pane->SetPointCloudRenderPointSize(0.25f);
    // Height times projection scale times size: 240 / 5 * 0.25 = 12 pixels.
    Frame();
    ExpectPixel(160, 120, {1, 0.5, 0});
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
    Look(320, 240, 0.5);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 576);
    Resize(160, 120);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
}

TEST_P(FreePoints, BelowTheLimitOfOpacityAreBlended) {
    AddPoint(1, {0, 0, 0}, {1, 0.5, 0}, 0.98f);
    Frame();
    ExpectPixel(160, 120, 0.98 * Vec3{1, 0.5, 0} + 0.02 * kBackground, 1.0);
    pane->m_mapFreePoints[1].alpha = 0.25f;
    Frame();
    ExpectPixel(160, 120, 0.25 * Vec3{1, 0.5, 0} + 0.75 * kBackground, 1.0);
}

TEST_P(FreePoints, AtTheLimitOfOpacityAreOpaque) {
    AddPoint(1, {0, 0, 0}, {1, 0.5, 0}, 0.99f);
    Frame();
    const auto atLimit = picture.pixels;
    ExpectPixel(160, 120, {1, 0.5, 0}, 1.0);
    pane->m_mapFreePoints[1].alpha = 1.0f;
    Frame();
    EXPECT_EQ(picture.pixels, atLimit);
}

TEST_P(FreePoints, AreDrawnTransparentOnesLast) {
    AddPoint(1, {0, 0, 1}, {1, 0, 0}, 0.5f);
    AddPoint(2, {0, 0, 0}, {0, 0, 1}, 1.0f);
    Frame();
    ExpectPixel(160, 120, {0.5, 0, 0.5}, 1.5);
}

TEST_P(FreePoints, AreHiddenByObjectsAndWhenInvisible) {
    AddPoint(1, {0, 0, -1}, {1, 0, 0}, 1.0f);
    pane->SetPointCloudRenderPointSize(0.25f);
    const Square square;
    Add(square);
    Frame();
    ExpectPixel(160, 120, Lit(square, 160, 120));
    pane->m_vpMeshes.clear();
    pane->m_mapFreePoints[1].visible = 0;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

}  // namespace
