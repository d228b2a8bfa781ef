// A lasso of the host in place of an operator's.
#include <limits>

#include "cut/CutScene.h"
#include "support/GlNow.h"

namespace {

bool Cut(CutControl& c, SegmentationMode way, const LassoCorners& corners) {
    return c->CutWithLasso(way, FractionsOf(corners, c->m_nWidth, c->m_nHeight));
}

/// A concave one over both plates, of all directions of lines.
const LassoCorners kStar = {{320, 60},  {350, 200}, {500, 210}, {380, 270},
                            {430, 420}, {322, 330}, {201, 415}, {250, 260}};

TEST(CutWithLasso, HasTheMaskOfAnOperatorBitForBit) {
    for (const SegmentationMode way : kAllWays) {
        SCOPED_TRACE(kNamesOfWays[way]);
        CutControl byHost, byOperator;
        ASSERT_TRUE(Cut(byHost, way, kStar));
        CutByOperator(*byOperator, way, kStar);
        EXPECT_EQ(byHost.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(byOperator.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(VertexCounts(*byHost), VertexCounts(*byOperator));
        ASSERT_EQ(byHost->m_vpMeshes[0]->m_vpCutMasks.size(), 1u);
        ASSERT_EQ(byOperator->m_vpMeshes[0]->m_vpCutMasks.size(), 1u);
        ExpectSameMask(*byHost->m_vpMeshes[0]->m_vpCutMasks[0], *byOperator->m_vpMeshes[0]->m_vpCutMasks[0]);
        EXPECT_EQ(byHost->GetUndoStepCount(), 1);
    }
}

TEST(CutWithLasso, EndsLikeASessionOfAnOperator) {
    for (const SegmentationMode way : kAllWays) {
        CutControl c;
        c->ToggleAnimationOnSpacebar(0);
        c.window->Forget();
        ASSERT_TRUE(Cut(c, way, kMiddleBlock));
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(c->m_bLassoCursor, 0);
        EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 1);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        EXPECT_EQ(c->m_pCutMask, nullptr);
        EXPECT_EQ(c.window->refreshes, 2) << "of the start and of the end";
        EXPECT_EQ(c.window->waitCursorsBegun, c.window->waitCursorsEnded);
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
}

TEST(CutWithLasso, OfAnUnknownWayChangesNothing) {
    CutControl c;
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    LeftClick(*c, {100, 100});
    c->ProcessEvents();
    c.window->Forget();
    for (const std::int16_t way : std::initializer_list<std::int16_t>{-1, 6, 32767}) {
        EXPECT_FALSE(Cut(c, static_cast<SegmentationMode>(way), kMiddleBlock));
        EXPECT_EQ(c->m_nInteractionMode, ModeLasso);
        EXPECT_EQ(c->m_vLassoPoints.size(), 1u);
        EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
    }
    EXPECT_TRUE(c.host.Take().empty());
}

TEST(CutWithLasso, WithTooFewPointsReportsAnEndWithoutChange) {
    for (const SegmentationMode way : kAllWays) {
        SCOPED_TRACE(kNamesOfWays[way]);
        CutControl c;
        EXPECT_FALSE(Cut(c, way, {}));
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        if (!IsFreehand(way)) {
            EXPECT_FALSE(Cut(c, way, {{320, 240}}));
            EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        }
        EXPECT_EQ(c->GetUndoStepCount(), 0);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    }
}

TEST(CutWithLasso, OfOneFreehandPointTakesThatPixel) {
    CutControl c;
    EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandOutside, {{325, 235}})) << "no vertex is there: all are outside";
    EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{0, 0}));
    EXPECT_EQ(c->m_vpMeshes[0]->m_vpCutMasks[0]->m_rcBounds, (ACAD::CutMask::Rectangle{325, 235, 325, 235}));
}

TEST(CutWithLasso, CancelsARunningSessionFirst) {
    for (const SegmentationMode running : {KV_ScenePane::PolygonOutside, KV_ScenePane::FreehandOutside}) {
        CutControl c;
        c->StartSegmentation(running);
        LeftClick(*c, {20, 20});
        LeftClick(*c, {20, 420});
        ASSERT_TRUE(Cut(c, KV_ScenePane::FreehandInside, kMiddleBlock));
        EXPECT_EQ(c.host.Take(), (EventNames{"done -1", "mask", "done 2"}));
        EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount - 25, kBackCount - 1}));
    }
}

TEST(CutWithLasso, IgnoresCornersThatAreNotFinite) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinite = std::numeric_limits<double>::infinity();
    for (const SegmentationMode way : kAllWays)
        for (const double bad : {nan, infinite, -infinite, 1e300, -1e300}) {
            SCOPED_TRACE(testing::Message() << kNamesOfWays[way] << " " << bad);
            CutControl c;
            std::vector<LassoPoint> points = FractionsOf(kMiddleBlock, 640, 480);
            points.insert(points.begin() + 2, LassoPoint{bad, bad});
            (void)c->CutWithLasso(way, points);
            points.insert(points.begin(), LassoPoint{bad, 0.5});
            (void)c->CutWithLasso(way, points);
            (void)c->CutWithLasso(way, std::vector<LassoPoint>(3, LassoPoint{bad, bad}));
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            std::size_t ends = 0;
            for (const std::string& event : c.host.Take()) ends += event.starts_with("done");
            EXPECT_EQ(ends, 3u);
        }
}

TEST(CutWithLasso, OfAFreehandLassoWithAPointThatIsNotFiniteHasTheOtherPoints) {
    CutControl c, without;
    std::vector<LassoPoint> points = FractionsOf(kStar, 640, 480);
    ASSERT_TRUE(without->CutWithLasso(KV_ScenePane::FreehandInside, points));
    points.insert(points.begin() + 3, LassoPoint{std::numeric_limits<double>::quiet_NaN(), 0.5});
    ASSERT_TRUE(c->CutWithLasso(KV_ScenePane::FreehandInside, points));
    ExpectSameMask(*c->m_vpMeshes[0]->m_vpCutMasks[0], *without->m_vpMeshes[0]->m_vpCutMasks[0]);
}

TEST(CutWithLasso, AdoptsANewSizeOfTheWindow) {
    for (const bool blocked : {false, true})
        for (const SegmentationMode way : kAllWays) {
            SCOPED_TRACE(testing::Message() << kNamesOfWays[way] << (blocked ? ", painting is blocked" : ""));
            CutControl c, small(320, 240);
            c->BlockPaintEvents(blocked ? 1 : 0);
            c.window->Resize(320, 240);
            const std::vector<LassoPoint> points = FractionsOf(kStar, 640, 480);
            ASSERT_TRUE(c->CutWithLasso(way, points));
            ASSERT_TRUE(small->CutWithLasso(way, points));
            ExpectSameMask(*c->m_vpMeshes[0]->m_vpCutMasks[0], *small->m_vpMeshes[0]->m_vpCutMasks[0]);
            EXPECT_EQ(VertexCounts(*c), VertexCounts(*small));
        }
}

TEST(CutWithLasso, WithoutAPictureOrAWindowIsRefusedWithoutAnEvent) {
    NoPictureControl none;
    AddMesh(*none, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
    CutControl closed;
    closed.window->Destroy();
    for (const SegmentationMode way : kAllWays) {
        EXPECT_FALSE(none->CutWithLasso(way, FractionsOf(kMiddleBlock, 640, 480)));
        EXPECT_FALSE(closed->CutWithLasso(way, FractionsOf(kMiddleBlock, 640, 480)));
    }
    EXPECT_TRUE(none.events.events.empty());
    EXPECT_TRUE(closed.host.Take().empty());
    EXPECT_EQ(none->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(none->m_bLassoCursor, 0);
}

TEST(CutWithLasso, InAWindowTooSmallForAFreehandLassoReportsAnEndWithoutChange) {
    for (const auto& [width, height] : {std::pair{2, 200}, {200, 2}, {1, 1}}) {
        CutControl c(width, height);
        EXPECT_FALSE(c->CutWithLasso(KV_ScenePane::FreehandInside, FractionsOf(kMiddleBlock, 640, 480)));
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    }
}

TEST(CutWithLasso, WithColoursThatASessionRefusesShowsTheMessageAndEndsWithoutChange) {
    CutControl c;
    c->SetLassoCuttingColors(255, 0.0f, 0, 0.5f);  // packed, the marker of the fill
    c.window->Forget();
    EXPECT_FALSE(Cut(c, KV_ScenePane::FreehandInside, kMiddleBlock));
    EXPECT_EQ(c.window->modalMessages, std::vector<std::string>{"Cannot use internal marker color"});
    EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->SetLassoCuttingColors(255, 0.5f, 0, 0.0f);
    EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandInside, kMiddleBlock));
}

TEST(CutWithLasso, MayBeCalledInTheEventsOfAnotherCut) {
    CutControl c;
    int nested = 0;
    c.host.onMask = [&](const ACAD::CutMask&) {
        if (++nested == 1) {
            EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandOutside, kMiddleBlock));
        }
    };
    ASSERT_TRUE(Cut(c, KV_ScenePane::PolygonInside, kMiddleBlock));
    EXPECT_EQ(c.host.Take(), (EventNames{"mask", "mask", "done 2", "done 2"}));
    EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount - 25, kBackCount - 1})) << "the outer one";
    EXPECT_EQ(c->PerformUndo(), 1);
    EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{25, 0}))
        << "one vertex of the other plate has no triangle left";
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount, kBackCount}));
}

}  // namespace
