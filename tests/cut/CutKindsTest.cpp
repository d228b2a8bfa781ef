// What each of the six ways removes: by vertices, and by the pixels of the frame afterwards. The camera looks down the
// z axis, 24 pixels per unit, with (0, 0) at pixel (160, 120); 0.08 units are a thousandth of the window depth.
#include <algorithm>

#include "cut/CutScene.h"
#include "render/SceneFixture.h"
#include "support/DriverStandIn.h"

namespace {

constexpr int kWidth = 320, kHeight = 240;

class CutKinds : public SceneInEveryWindow {
protected:
    /// 41 x 41 vertices over 8 x 8 units: 4.8 pixels between them.
    std::shared_ptr<Mesh> AddPlate(double z, const Vec3& color = {1, 0, 0}, int n = 41, double half = 4) {
        auto mesh = MakePlate(n, half, z);
        for (std::size_t i = 0; i < 3; ++i) mesh->m_fColor[i] = static_cast<float>(color[i]);
        pane->m_vpMeshes.push_back(mesh);
        return mesh;
    }
    bool Cut(SegmentationMode way, const LassoCorners& corners) {
        return pane->CutWithLasso(way, FractionsOf(corners, pane->m_nWidth, pane->m_nHeight));
    }
    /// Pixels of the frame in which one channel dominates.
    int CountPixels(std::size_t channel) {
        Frame();
        int count = 0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const Vec3 c = ColorAt(x, y);
                count += c[channel] > c[(channel + 1) % 3] + 0.3 && c[channel] > c[(channel + 2) % 3] + 0.3;
            }
        return count;
    }
    const Mesh& Object(std::size_t i) const { return *pane->m_vpMeshes.at(i); }
};

/// Around 11 x 11 vertices, from -1 to 1 in both directions.
const LassoCorners kBlock = RectangleOf(134, 94, 186, 146);
constexpr std::size_t kBlockCount = 11 * 11, kPlateCount = 41 * 41;

bool IsInBlock(const Vertex& v) { return std::abs(v.x) < 1.05f && std::abs(v.y) < 1.05f; }

TEST_P(CutKinds, InsideRemovesTheVerticesThatTheLassoEncloses) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        pane->m_vpMeshes.clear();
        AddPlate(0);
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_EQ(std::ranges::count_if(Object(0).m_vVertices, IsInBlock), 0);
        // A quad has two triangles; those that touch the block are in 12 x 12 quads, without the two at the corners
        // that the diagonal cuts off.
        EXPECT_EQ(Object(0).GetTriangleCount(), 40u * 40 * 2 - 12 * 12 * 2 + 2);
    }
}

TEST_P(CutKinds, OutsideRemovesAllOtherVertices) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonOutside, KV_ScenePane::FreehandOutside}) {
        pane->m_vpMeshes.clear();
        AddPlate(0);
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kBlockCount);
        EXPECT_EQ(std::ranges::count_if(Object(0).m_vVertices, IsInBlock), kBlockCount);
        EXPECT_EQ(Object(0).GetTriangleCount(), 10u * 10 * 2);
    }
}

TEST_P(CutKinds, VisibleRemovesTheSurfaceThatIsSeenAndKeepsTheOneBehind) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandVisible}) {
        pane->m_vpMeshes.clear();
        AddPlate(2);
        const auto behind = AddPlate(-2);
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
        EXPECT_TRUE(behind->m_vpCutMasks.empty());
        // The same lasso again reaches through the hole, except where the ring of cut triangles beyond it shows more.
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_EQ(Object(1).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
    }
}

TEST_P(CutKinds, InsideRemovesBothSidesOfABallAndVisibleTheNearOne) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside,
                                       KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandVisible}) {
        SCOPED_TRACE(way);
        pane->m_vpMeshes = {MakeBall({0, 0, 0}, 3)};
        const std::size_t all = Object(0).GetVertexCount();
        ASSERT_TRUE(Cut(way, RectangleOf(70, 30, 250, 210)));
        if (way == KV_ScenePane::PolygonInside || way == KV_ScenePane::FreehandInside) {
            EXPECT_EQ(Object(0).GetVertexCount(), 0u);
            continue;
        }
        const auto& left = Object(0).m_vVertices;
        // Towards the rim the depth of a pixel differs from that of a vertex in it by more than the tolerance: a pixel
        // is half of it wide, so where the slope is above 1.9.
        EXPECT_EQ(std::ranges::count_if(left, [](const Vertex& v) { return v.z > 1.5f; }), 0);
        const auto fresh = MakeBall({0, 0, 0}, 3);
        const auto isFar = [](const Vertex& v) { return v.z < -0.5f; };
        EXPECT_EQ(std::ranges::count_if(left, isFar), std::ranges::count_if(fresh->m_vVertices, isFar));
        EXPECT_LT(left.size(), all);
    }
}

TEST_P(CutKinds, OfTwoBallsOneBehindTheOtherVisibleTakesTheNearOne) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandVisible}) {
        const auto far = MakeBall({0, 0, -5}, 2);
        pane->m_vpMeshes = {far, MakeBall({0, 0, 5}, 3)};
        ASSERT_TRUE(Cut(way, RectangleOf(70, 30, 250, 210)));
        EXPECT_EQ(pane->m_vpMeshes.at(0), far);
        ASSERT_TRUE(Cut(KV_ScenePane::PolygonInside, RectangleOf(70, 30, 250, 210)));
        EXPECT_EQ(Object(0).GetVertexCount(), 0u);
        EXPECT_EQ(Object(1).GetVertexCount(), 0u);
    }
}

TEST_P(CutKinds, ByThePixelsOfTheFrameAfterwards) {
    // The hole of a cut inside ends with the triangles that touch the block: from -1.2 to 1.2, 57.6 pixels.
    const int hole = 58 * 58, plate = 192 * 192, block = 48 * 48;
    for (const SegmentationMode way : kAllWays) {
        SCOPED_TRACE(kNamesOfWays[way]);
        pane->m_vpMeshes.clear();
        AddPlate(2, {1, 0, 0});
        AddPlate(-2, {0, 1, 0});
        ASSERT_NEAR(CountPixels(0), plate, 400);
        ASSERT_EQ(CountPixels(1), 0);
        ASSERT_TRUE(Cut(way, kBlock));
        const int red = CountPixels(0), green = CountPixels(1);
        switch (way) {
            case KV_ScenePane::PolygonOutside:
            case KV_ScenePane::FreehandOutside:
                EXPECT_NEAR(red, block, 100);
                EXPECT_EQ(green, 0);
                break;
            case KV_ScenePane::PolygonInside:
            case KV_ScenePane::FreehandInside:
                EXPECT_NEAR(red, plate - hole, 500);
                EXPECT_EQ(green, 0);
                ExpectBackground(160, 120);
                break;
            default:
                EXPECT_NEAR(red, plate - hole, 500);
                EXPECT_NEAR(green, hole, 200);
        }
    }
}

TEST_P(CutKinds, KeepHiddenObjectsAndThoseThatLoseNothing) {
    for (const SegmentationMode way : kAllWays) {
        SCOPED_TRACE(kNamesOfWays[way]);
        pane->m_vpMeshes.clear();
        const auto hidden = AddPlate(3);
        hidden->m_iVisible = 0;
        const auto cut = AddPlate(0);
        const bool outside = way == KV_ScenePane::PolygonOutside || way == KV_ScenePane::FreehandOutside;
        // Within the lasso, or far from it.
        const auto spared = AddPlate(1, {0, 1, 0}, 3, 0.5);
        if (!outside)
            for (Vertex& v : spared->m_vVertices) v.x += 4.5f;
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_EQ(pane->m_vpMeshes.at(0), hidden);
        EXPECT_NE(pane->m_vpMeshes.at(1), cut);
        EXPECT_EQ(pane->m_vpMeshes.at(2), spared);
        EXPECT_TRUE(hidden->m_vpCutMasks.empty() && spared->m_vpCutMasks.empty() && cut->m_vpCutMasks.empty());
        EXPECT_EQ(Object(1).m_vpCutMasks.size(), 1u);
    }
}

TEST_P(CutKinds, RemoveVerticesThatAreOnNoTriangleAtTheFirstCut) {
    const auto plate = AddPlate(0);
    plate->m_vVertices.push_back({.x = 4.5f, .y = 4.5f});
    ASSERT_TRUE(Cut(KV_ScenePane::PolygonInside, kBlock));
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
}

TEST_P(CutKinds, OutsideOfATwoPointPolygonRemovesAll) {
    AddPlate(0);
    AddPlate(1);
    ASSERT_TRUE(Cut(KV_ScenePane::PolygonOutside, {{100, 100}, {200, 180}}));
    EXPECT_EQ(Object(0).GetVertexCount(), 0u);
    EXPECT_EQ(Object(1).GetVertexCount(), 0u);
    EXPECT_EQ(pane->GetNumObjects(), 2);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    const auto emptied = pane->m_vpMeshes;
    EXPECT_FALSE(Cut(KV_ScenePane::PolygonInside, {{100, 100}, {200, 180}})) << "a line encloses nothing";
    EXPECT_FALSE(Cut(KV_ScenePane::PolygonOutside, kBlock)) << "nothing is left";
    EXPECT_EQ(pane->m_vpMeshes, emptied);
}

// ---- depth

TEST_P(CutKinds, VisibleRecordsTheDepthsOfTheFrameBottomRowFirst) {
    const auto plate = AddPlate(0, {1, 0, 0}, 11, 1);
    for (Vertex& v : plate->m_vVertices) v.y += 2;  // rows 48 to 96 from the top
    ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, RectangleOf(120, 30, 200, 110)));
    const ACAD::CutMask& mask = *Object(0).m_vpCutMasks.at(0);
    EXPECT_EQ(mask.m_nKind, ACAD::CutKindVisibleInside);
    ASSERT_EQ(mask.m_vDepth.size(), std::size_t{kWidth * kHeight});
    const auto depthAt = [&](int x, int yFromTop) {
        return mask.m_vDepth[static_cast<std::size_t>((kHeight - 1 - yFromTop) * kWidth + x)];
    };
    EXPECT_NEAR(depthAt(160, 72), 0.75, 1e-5);
    EXPECT_EQ(depthAt(160, 168), 1.0f) << "background";
    EXPECT_EQ(depthAt(10, 72), 1.0f);
    EXPECT_EQ(mask.m_nViewport, (std::array<std::int32_t, 4>{0, 0, kWidth, kHeight}));
    EXPECT_EQ(mask.m_vBits.m_uCount, std::uint64_t{kWidth * kHeight});
}

TEST_P(CutKinds, OthersRecordNoDepths) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandOutside}) {
        pane->m_vpMeshes.clear();
        AddPlate(0);
        ASSERT_TRUE(Cut(way, kBlock));
        EXPECT_TRUE(Object(0).m_vpCutMasks.at(0)->m_vDepth.empty());
    }
}

/// Something in front of the whole block that is not an object of the scene.
struct CoverRow {
    const char* name;
    std::function<void(CKV_ScenePaneCtrl&)> show;
};
const CoverRow kCovers[] = {
    {"FreePoints",
     [](auto& c) {
         std::vector<float> xyz, colors;
         for (int i = -10; i <= 10; ++i)
             for (int j = -10; j <= 10; ++j) {
                 xyz.insert(xyz.end(), {static_cast<float>(i) * 0.12f, static_cast<float>(j) * 0.12f, 5});
                 colors.insert(colors.end(), {0, 0, 1});
             }
         c.SetPointCloudRenderPointSize(0.2f);
         c.ImportPoints(21 * 21, xyz.data(), colors.data(), 1.0f);
     }},
    {"Needles",
     [](auto& c) {
         c.SetNeedleDrawingMode(-1);
         c.SetNeedleRenderParameters(10, 3, 0xFF0000, 1, 0xFF0000, 1, 0xFF0000, 0);
         c.CreateNeedle(1, 0, 0, 0, 0, 0, 6);
     }},
    {"PickPointSpheres",
     [](auto& c) {
         c.SetPickMode(KV_ScenePane::PickModePoints);
         c.m_bPickPointValid = 1;
         c.SetPickRadius(1);
         c.AddPickPointSphere(0, 0, 6, 0xFF0000);
     }},
    {"Lines",
     [](auto& c) {
         c.SetLine3DDrawingMode(-1);
         for (int i = 0; i < 41; ++i) {
             const float y = (static_cast<float>(i) - 20) * 0.05f;
             const float points[] = {-2, y, 6, 2, y, 6};
             c.CreateLine3D(i, 2, points);
         }
     }},
    {"ClipPlane",
     [](auto& c) {
         c.m_bClipPlaneVisible = 1;
         c.m_clipPlane.SetRadiusFromExtent(10);
         c.SetClipPlane(0, 0, 6, 0, 0, 1);
     }},
    {"Axes", [](auto& c) { c.ShowAxes(1); }},
};

TEST_P(CutKinds, VisibleIgnoresWhatIsDrawnOverTheObjects) {
    for (const CoverRow& row : kCovers) {
        SCOPED_TRACE(row.name);
        pane->ClearData();
        pane->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
        AddPlate(0);
        Look(kWidth, kHeight);
        row.show(*pane);
        Look(kWidth, kHeight);
        pane->PerformRefresh();
        EXPECT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        for (const auto& mask : Object(0).m_vpCutMasks)
            EXPECT_TRUE(std::ranges::all_of(mask->m_vDepth, [](float d) { return d > 0.74f; }));
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        pane->SetPickMode(KV_ScenePane::PickModeOff);
        pane->m_bPickPointValid = 0;
        pane->m_bClipPlaneVisible = 0;
        pane->m_vNeedles.clear();
        pane->ShowAxes(0);
        pane->DeletePoints(1);
        pane->DeletePoints(0);
    }
}

TEST_P(CutKinds, VisibleHasTheDepthsOfAViewThatNoFrameHasShownYet) {
    AddPlate(0);
    AddPlate(-4, {0, 1, 0}, 81, 8);
    pane->StartSegmentation(KV_ScenePane::PolygonVisible);
    // The front plate leaves the block to the right: what is visible there now is the other one.
    pane->SetViewParams(1, 0, 0, 0, 1, 0, -6, 0, 0, 1, 0);
    ASSERT_TRUE(pane.window->IsPaintPending());
    DrawLasso(*pane, kBlock);
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount);
    EXPECT_EQ(Object(1).m_vpCutMasks.size(), 1u);
    EXPECT_LT(Object(1).GetVertexCount(), 81u * 81);
}

TEST_P(CutKinds, VisibleDrawsWhatAResizedWindowShows) {
    AddPlate(2);
    const auto behind = AddPlate(-2);
    pane->StartSegmentation(KV_ScenePane::PolygonVisible);
    for (std::size_t i = 0; i < 4; ++i) LeftClick(*pane, kBlock[i]);
    pane.window->Resize(640, 480);
    RightClick(*pane, kBlock[0]);  // no frame has the new size yet
    EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
    ASSERT_EQ(Object(0).m_vpCutMasks.size(), 1u);
    const ACAD::CutMask& mask = *Object(0).m_vpCutMasks[0];
    EXPECT_EQ(mask.m_nViewport, (std::array<std::int32_t, 4>{0, 0, 640, 480}));
    EXPECT_EQ(mask.m_vDepth.size(), std::size_t{640 * 480});
    EXPECT_EQ(mask.m_vBits.m_uCount, std::uint64_t{640 * 480});
    EXPECT_NEAR(mask.m_vDepth[640 * 240 + 320], (60 - 2) / 80.0, 1e-5);
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
}

TEST_P(CutKinds, VisibleDrawsWhatSetSizeHasResized) {
    AddPlate(2);
    const auto behind = AddPlate(-2);
    pane->PerformRefresh();
    pane->BlockPaintEvents(1);
    pane->SetSize(640, 480);
    ASSERT_TRUE(Cut(KV_ScenePane::FreehandVisible, RectangleOf(268, 188, 372, 292)));
    EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
    EXPECT_EQ(Object(0).m_vpCutMasks.at(0)->m_vDepth.size(), std::size_t{640 * 480});
}

TEST_P(CutKinds, VisibleSeesObjectsThatWereImportedWhilePaintingIsBlocked) {
    pane->PerformRefresh();
    pane->BlockPaintEvents(1);
    AddPlate(2);
    const auto behind = AddPlate(-2);
    ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
    EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
}

TEST_P(CutKinds, VisibleRemovesWhatIsSeenInTheDrawModesOfSurfaces) {
    for (const bool shadows : {false, true})
        for (const std::int16_t mode :
             {KV_ScenePane::DrawModeFlat, KV_ScenePane::DrawModeGouraud, KV_ScenePane::DrawModePerPixel}) {
            if (shadows && mode == KV_ScenePane::DrawModePerPixel) continue;  // which shows no objects
            SCOPED_TRACE(testing::Message() << mode << " " << shadows);
            pane->m_vpMeshes.clear();
            pane->SetDrawMode(mode);
            pane->SetShadowMode(shadows ? 1 : 0);
            pane->ShowAxes(shadows ? 1 : 0);  // drawn again for the depths
            Look(kWidth, kHeight);
            AddPlate(2);
            const auto behind = AddPlate(-2);
            ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
            EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
            EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
            glGetError();  // of the shadow pass
        }
}

TEST_P(CutKinds, VisibleReachesWhatIsSeenBetweenPointsAndLines) {
    for (const std::int16_t mode : {KV_ScenePane::DrawModePoints, KV_ScenePane::DrawModeWireframe}) {
        SCOPED_TRACE(mode);
        pane->m_vpMeshes.clear();
        pane->SetDrawMode(mode);
        AddPlate(2);
        const auto behind = AddPlate(-2);
        for (Vertex& v : behind->m_vVertices) v.x += 0.05f, v.y += 0.1f;  // 1 and 2 pixels of the 5 between vertices
        ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_LT(Object(1).GetVertexCount(), kPlateCount);
    }
}

TEST_P(CutKinds, VisibleIsLikeInsideInDrawModesThatLeaveNoDepth) {
    const std::pair<std::int16_t, bool> rows[] = {{KV_ScenePane::DrawModeBoundingBoxes, false},
                                                  {KV_ScenePane::DrawModeNothing, false},
                                                  {KV_ScenePane::DrawModeShadowMap, false},
                                                  {KV_ScenePane::DrawModePerPixel, true}};
    for (const auto& [mode, shadows] : rows) {
        SCOPED_TRACE(testing::Message() << mode << " " << shadows);
        pane->m_vpMeshes.clear();
        pane->SetDrawMode(mode);
        pane->SetShadowMode(shadows ? 1 : 0);
        AddPlate(2);
        AddPlate(-2);
        ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_EQ(Object(1).GetVertexCount(), kPlateCount - kBlockCount);
        glGetError();  // of the shadow pass
    }
}

TEST_P(CutKinds, VisibleHasTheDepthsOfTheLiveSceneUnderAFrozenImage) {
    AddPlate(2);
    const auto behind = AddPlate(-2);
    pane->StartSegmentation(KV_ScenePane::PolygonVisible);
    for (std::size_t i = 0; i < 3; ++i) LeftClick(*pane, kBlock[i]);
    pane->PerformRefresh();
    pane->FreezeFrame();
    pane->PerformRefresh();
    ASSERT_NE(pane->m_pFrozenImage, nullptr);
    RightClick(*pane, kBlock[3]);
    EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
    EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
}

// A plain click in the delayed scheme leaves the mark of a drag: frames then show a part of the points.
TEST_P(CutKinds, VisibleHasTheDepthsOfWholeObjectsAlsoWhileFramesShowAPartOfThem) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandVisible})
        for (const bool axes : {false, true}) {  // which make it draw the objects again
            pane->m_vpMeshes.clear();
            AddPlate(2);
            const auto behind = AddPlate(-2);
            pane->SetMoveReduced(-1);
            pane->SetIGDRotation(1);
            pane->OnLeftDown(KV_ScenePane::kMouseLeft, 5, 5);
            pane->OnLeftUp(0, 5, 5);
            pane->ShowAxes(axes ? 1 : 0);
            ASSERT_NE(pane->m_bMoving, 0);
            ASSERT_TRUE(Cut(way, kBlock));
            EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
            EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        }
}

TEST_P(CutKinds, VisibleWorksWithSeveralSamples) {
    if (pane->RecreateOpenglContext(3, 3, 4) == 0 || !pane->HasWindow()) GTEST_SKIP() << "no samples";
    Look(kWidth, kHeight);
    for (const bool drawnAgain : {false, true}) {
        pane->ShowAxes(drawnAgain ? 1 : 0);
        pane->m_vpMeshes.clear();
        AddPlate(2);
        const auto behind = AddPlate(-2);
        Look(kWidth, kHeight);
        ASSERT_TRUE(Cut(KV_ScenePane::PolygonVisible, kBlock));
        ASSERT_NE(pane->m_frameTarget.Name(), pane->m_frameTarget.ReadName());
        EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
        EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
}

TEST_P(CutKinds, VisibleWorksWhereTheDriverDropsTheDepthAtTheSwap) {
    const ScopedDriverFaults faults({.dropDepth = true, .garbageBackBuffer = true});
    for (const int samples : {0, 4}) {
        SCOPED_TRACE(samples);
        if (samples > 0 && (pane->RecreateOpenglContext(3, 3, samples) == 0 || !pane->HasWindow())) continue;
        for (const SegmentationMode way : {KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandVisible}) {
            pane->m_vpMeshes.clear();
            AddPlate(2);
            const auto behind = AddPlate(-2);
            Look(kWidth, kHeight);
            ASSERT_TRUE(Cut(way, kBlock));
            EXPECT_EQ(pane->m_vpMeshes.at(1), behind);
            EXPECT_EQ(Object(0).GetVertexCount(), kPlateCount - kBlockCount);
            EXPECT_EQ(Object(0).m_vpCutMasks.at(0)->m_vDepth[0], 1.0f);
        }
    }
    EXPECT_GT(ReadDriverCounters().swaps, 0);
}

TEST_P(CutKinds, LeaveTheFrameAsItWas) {
    AddPlate(2);
    pane->ShowAxes(1);
    Frame();
    const auto before = picture.pixels;
    pane->StartSegmentation(KV_ScenePane::PolygonVisible);
    for (const LassoCorner& at : RectangleOf(5, 100, 25, 120)) LeftClick(*pane, at);
    RightClick(*pane, {5, 100});  // hits nothing
    Frame();
    EXPECT_TRUE(picture.pixels == before);
}

INSTANTIATE_TEST_SUITE_P(Windows, CutKinds, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
