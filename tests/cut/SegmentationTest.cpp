// Sessions of a cut by lasso: their start, their cancellation, and what is left of them.
#include "cut/CutScene.h"
#include "support/GlNow.h"
#include "support/TestCutSession.h"

namespace {

using Done = std::vector<EventsRecorder::Event>;
Done DoneWith(double numObj) { return {{"SegmentationDone", {numObj}}}; }

struct StartRow {
    std::int16_t mode;
    std::int32_t interaction, kind;
};
constexpr StartRow kStarts[] = {{0, ModeLasso, 1},     {1, ModeLasso, 0},     {2, ModeLasso, 2},
                                {3, ModeMaskLasso, 1}, {4, ModeMaskLasso, 0}, {5, ModeMaskLasso, 2}};

TEST(StartSegmentation, SetsModeAndKindByItsArgument) {
    OffscreenControl c;
    for (const StartRow& row : kStarts) {
        SCOPED_TRACE(row.mode);
        c->m_nInteractionMode = ModeIdle;
        c->m_nSegmentationKind = 77;
        c->StartSegmentation(row.mode);
        EXPECT_EQ(c->m_nInteractionMode, row.interaction);
        EXPECT_EQ(c->m_nSegmentationKind, row.kind);
    }
    EXPECT_TRUE(c.events.events.empty());
}

TEST(StartSegmentation, WithAnotherNumberStartsNoSessionAndHasTheOtherEffects) {
    OffscreenControl c;
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{6, -1, 32767, -32768}) {
        SCOPED_TRACE(mode);
        c->m_nInteractionMode = ModeRotate;
        c->m_nSegmentationKind = 77;
        c->m_bToggleAnimationOnSpacebar = 1;
        c->m_vLassoPoints = {{0.5, 0.5}};
        c->ShowLassoCursor(false);
        c.window->Forget();
        c->StartSegmentation(mode);
        EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
        EXPECT_EQ(c->m_nSegmentationKind, 77);
        EXPECT_EQ(c->m_pCutMask, nullptr);
        EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 0);
        EXPECT_EQ(c->m_bLassoCursor, 1);
        EXPECT_TRUE(c->m_vLassoPoints.empty());
        EXPECT_EQ(c.window->refreshes, 1);
    }
}

TEST(StartSegmentation, RefreshesOnceAtItsEnd) {
    OffscreenControl c;
    for (const StartRow& row : kStarts) {
        SCOPED_TRACE(row.mode);
        c.window->Forget();
        c->StartSegmentation(row.mode);
        EXPECT_EQ(c.window->refreshes, 1);
        EXPECT_EQ(c.window->swaps, 1);
        EXPECT_EQ(c.window->waitCursorsBegun, c.window->waitCursorsEnded);
        EXPECT_EQ(c.window->waitCursorsBegun, row.interaction == ModeMaskLasso ? 1 : 0);
    }
}

TEST(StartSegmentation, MakesTexturesOfTheDrawingAreaForAFreehandLassoAlone) {
    OffscreenControl c(200, 100);
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_EQ(c->m_pCutMask, nullptr);
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    ASSERT_NE(c->m_pCutMask, nullptr);
    EXPECT_EQ(c->m_pCutMask->m_nWidth, 200);
    EXPECT_EQ(c->m_pCutMask->m_nHeight, 100);
}

TEST(StartSegmentation, DeletesTexturesThatStillWait) {
    OffscreenControl c;
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    const CutMaskTextures* const former = c->m_pCutMask.get();
    const GLuint names[] = {former->m_uLineTexture, former->m_uFillTexture, former->m_uSilhouetteTexture};
    ASSERT_TRUE(c->MakeContextCurrent());
    for (const GLuint name : names) ASSERT_TRUE(glIsTexture(name));
    // From another context's textures of the same names nothing is deleted.
    OffscreenControl other;
    c->StartSegmentation(KV_ScenePane::FreehandVisible);
    ASSERT_NE(c->m_pCutMask, nullptr);
    ASSERT_TRUE(c->MakeContextCurrent());
    int existing = 0;
    for (GLuint name = 1; name < 200; ++name) existing += glIsTexture(name) != 0;
    c->StartSegmentation(KV_ScenePane::FreehandVisible);
    int after = 0;
    for (GLuint name = 1; name < 200; ++name) after += glIsTexture(name) != 0;
    EXPECT_EQ(after, existing) << "no texture is left over";
    EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
}

TEST(StartSegmentation, OfAPolygonLeavesWaitingTexturesAndARunningFreehandSession) {
    OffscreenControl c;
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    const CutMaskTextures* const waiting = c->m_pCutMask.get();
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_EQ(c->m_pCutMask.get(), waiting);
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    LeftClick(*c, {100, 100});
    const CutSession* const session = c->m_pCutSession.get();
    ASSERT_NE(session, nullptr);
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_EQ(c->m_pCutSession.get(), session);
    c->StartSegmentation(KV_ScenePane::FreehandVisible);
    EXPECT_EQ(c->m_pCutSession.get(), session);
    EXPECT_NE(c->m_pCutMask, nullptr);
    EXPECT_TRUE(c.events.events.empty()) << "a session that is replaced ends without an event";
    c->EndSegmentation();
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c.events.events, DoneWith(-1));
}

TEST(StartSegmentation, KeepsAnAnimationRunningUntilThePressThatDrawsTheLasso) {
    OffscreenControl c;
    c->StartAnimation(0.001f);
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_NE(c->IsAnimationRunning(), 0);
    LeftClick(*c, {10, 10});
    EXPECT_EQ(c->IsAnimationRunning(), 0);
}

// ---- the cursor and the space bar

TEST(Segmentation, SwitchesTheSpaceBarOffUntilItsEnd) {
    OffscreenControl c;
    for (const StartRow& row : kStarts) {
        SCOPED_TRACE(row.mode);
        c->ToggleAnimationOnSpacebar(1);
        c->StartSegmentation(row.mode);
        c->SendKey({.nChar = KV_ScenePane::kKeySpace});
        EXPECT_EQ(c->IsAnimationRunning(), 0);
        c->EndSegmentation();
        c->SendKey({.nChar = KV_ScenePane::kKeySpace});
        EXPECT_NE(c->IsAnimationRunning(), 0);
        c->StopAnimation();
    }
}

TEST(Segmentation, LeavesTheSpaceBarOnAlsoWhenItWasOff) {
    OffscreenControl c;
    c->ToggleAnimationOnSpacebar(0);
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    c->EndSegmentation();
    EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 1);
}

TEST(Segmentation, OfAnUnknownNumberKeepsCursorAndSpaceBarUntilASessionHasRun) {
    OffscreenControl c;
    c->ToggleAnimationOnSpacebar(1);
    c->StartSegmentation(6);
    c->EndSegmentation();
    EXPECT_EQ(c->m_bLassoCursor, 1);
    EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 0);
    EXPECT_TRUE(c.events.events.empty());
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    c->EndSegmentation();
    EXPECT_EQ(c->m_bLassoCursor, 0);
    EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 1);
}

// ---- the end without a cut

TEST(EndSegmentation, DoesNothingOutsideASession) {
    OffscreenControl c;
    for (const std::int32_t mode : {0, 1, 2, 3, 5, 6, 7, 8, 9, 11, 12}) {
        c->m_nInteractionMode = mode;
        c->EndSegmentation();
        EXPECT_EQ(c->m_nInteractionMode, mode);
    }
    c->m_nInteractionMode = ModeIdle;
    EXPECT_TRUE(c.events.events.empty());
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

using Ending = std::function<void(CutControl&)>;
struct AbandonRow {
    const char* name;
    std::int16_t mode;
    LassoCorners clicks;
    Ending end;
};
const AbandonRow kAbandons[] = {
    {"PolygonByMethod", 1, kMiddleBlock, [](auto& c) { c->EndSegmentation(); }},
    {"PolygonByEscape", 1, kMiddleBlock, [](auto& c) { PressEscape(*c); }},
    {"PolygonByEscapeWithModifiers", 1, kMiddleBlock,
     [](auto& c) { c->SendKey({.nChar = KV_ScenePane::kKeyEscape, .nRepCnt = 3, .nFlags = 0xFFFF}); }},
    {"PolygonWithoutPoints", 1, {}, [](auto& c) { c->EndSegmentation(); }},
    {"PolygonByARightClickAlone",
     1,
     {},
     [](auto& c) {
         RightClick(*c, {320, 240});
     }},
    {"FreehandByMethod", 4, kMiddleBlock, [](auto& c) { c->EndSegmentation(); }},
    {"FreehandByEscape", 4, kMiddleBlock, [](auto& c) { PressEscape(*c); }},
    {"FreehandWithoutPoints", 4, {}, [](auto& c) { PressEscape(*c); }},
    {"FreehandByARightClickAlone",
     4,
     {},
     [](auto& c) {
         RightClick(*c, {320, 240});
     }},
    {"FreehandAfterClearData", 4, kMiddleBlock,
     [](auto& c) {
         const auto meshes = c->m_vpMeshes;
         c->ClearData();
         EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso) << "the host ends it";
         c->m_vpMeshes = meshes;
         c.window->Forget();
         RightClick(*c, {320, 240});
     }},
};

TEST(Segmentation, ThatIsAbandonedChangesNothingAndReportsItsEndOnce) {
    for (const AbandonRow& row : kAbandons) {
        SCOPED_TRACE(row.name);
        CutControl c;
        c->StartSegmentation(row.mode);
        for (const LassoCorner& at : row.clicks) LeftClick(*c, at);
        const auto meshes = c->m_vpMeshes;
        c.window->Forget();
        row.end(c);
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        EXPECT_EQ(c->m_vpMeshes, meshes);
        EXPECT_EQ(c->GetUndoStepCount(), 0);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(c->m_bLassoCursor, 0);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        EXPECT_EQ(c.window->refreshes, 1);
        EXPECT_EQ(c.window->waitCursorsBegun, 0);
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
}

TEST(Segmentation, ThatIsAbandonedLeavesItsPointsAndTexturesForTheNextStart) {
    CutControl c;
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    LeftClick(*c, {100, 100});
    c->EndSegmentation();
    EXPECT_EQ(c->m_vLassoPoints.size(), 1u);
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    EXPECT_TRUE(c->m_vLassoPoints.empty());
    c->EndSegmentation();
    EXPECT_NE(c->m_pCutMask, nullptr);
    c->ClearData();
    EXPECT_EQ(c->m_pCutMask, nullptr);
}

TEST(Segmentation, FreesTheFrozenImageAtItsEnd) {
    for (const bool cancels : {true, false}) {
        CutControl c;
        c->StartSegmentation(KV_ScenePane::PolygonInside);
        c->FreezeFrame();
        ASSERT_NE(c->m_pFrozenImage, nullptr);
        if (cancels)
            c->EndSegmentation();
        else
            DrawLasso(*c, kMiddleBlock);
        EXPECT_EQ(c->m_pFrozenImage, nullptr);
    }
}

TEST(Segmentation, ThatHitsNothingInvalidatesWithEraseAndReportsMinusOne) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandVisible}) {
        SCOPED_TRACE(way);
        CutControl c;
        const auto meshes = c->m_vpMeshes;
        c->StartSegmentation(way);
        for (std::size_t i = 0; i < 3; ++i) LeftClick(*c, kBetweenVertices[i]);
        c.window->Forget();
        Click(*c, KV_ScenePane::MouseInput::Kind::RightDown, kBetweenVertices[3]);
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"}) << "no mask";
        EXPECT_EQ(c->m_vpMeshes, meshes);
        EXPECT_EQ(c->GetUndoStepCount(), 0);
        EXPECT_EQ(c.window->refreshes, 0);
        EXPECT_EQ(c.window->eraseInvalidates, IsFreehand(way) ? 1 : 2) << "a polygon's point asks for one, too";
        EXPECT_EQ(c.window->waitCursorsBegun, 1);
        EXPECT_EQ(c.window->waitCursorsEnded, 1);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        EXPECT_EQ(c->m_bLassoCursor, 0);
    }
}

TEST(Segmentation, WithoutObjectsHitsNothing) {
    CutControl c;
    c->ClearData();
    for (const SegmentationMode way : kAllWays) {
        CutByOperator(*c, way, kMiddleBlock);
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"}) << way;
    }
}

// ---- input that has no meaning in a session

TEST(Segmentation, IgnoresWheelMiddleButtonAndReleases) {
    using Kind = KV_ScenePane::MouseInput::Kind;
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        CutControl c;
        c->StartSegmentation(way);
        LeftClick(*c, {100, 100});
        const Float3 axis = c->m_fAxisX;
        const float zoom = c->m_fZoom;
        const std::int32_t mode = c->m_nInteractionMode;
        c->ProcessEvents();
        c.window->Forget();
        for (const Kind kind : {Kind::LeftUp, Kind::MiddleDown, Kind::MiddleUp, Kind::RightUp, Kind::Wheel})
            c->SendMouse({.kind = kind, .x = 150, .y = 90, .delta = kind == Kind::Wheel ? 120 : 0});
        EXPECT_EQ(c->m_fAxisX, axis);
        EXPECT_EQ(c->m_fZoom, zoom);
        EXPECT_EQ(c->m_nInteractionMode, mode);
        EXPECT_EQ(c->m_vLassoPoints.size(), IsFreehand(way) ? 0u : 1u);
        EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
    }
}

TEST(Segmentation, LeavesADoubleClickItsMeaningBesideThatOfItsPresses) {
    using Kind = KV_ScenePane::MouseInput::Kind;
    const auto doubleClick = [](CutControl& c) {
        c->m_fViewCenter = {1, 2, 0};
        c->m_fSceneSize = 33;
        c->SetupViewMatrices();
        LeftClick(*c, {20, 20});
        Click(*c, Kind::DoubleClick, {20, 20});
        Click(*c, Kind::LeftUp, {20, 20});
    };
    CutControl idle;
    doubleClick(idle);
    ASSERT_NEAR(idle->m_fViewCenter[0], 0, 1e-4) << "the view is centred";
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        SCOPED_TRACE(kNamesOfWays[way]);
        CutControl c;
        c->StartSegmentation(way);
        doubleClick(c);
        EXPECT_EQ(c->m_fViewCenter, idle->m_fViewCenter);
        EXPECT_EQ(c->m_fSceneSize, idle->m_fSceneSize);
        EXPECT_EQ(c->m_fAxisX, idle->m_fAxisX);
        EXPECT_EQ(c->m_nInteractionMode, IsFreehand(way) ? ModeMaskLasso : ModeLasso);
        EXPECT_EQ(c->m_vLassoPoints.size(), IsFreehand(way) ? 0u : 1u);
        EXPECT_EQ(c->m_pCutSession != nullptr, IsFreehand(way));
        EXPECT_TRUE(c.host.Take().empty());
    }
}

// ---- windows whose size no frame has stored, and too large ones

TEST(Segmentation, KnowsTheSizeOfTheWindowAlsoBeforeTheFirstFrame) {
    for (const bool startedBefore : {false, true})
        for (const SegmentationMode way : kAllWays) {
            if (startedBefore && IsFreehand(way)) continue;  // its textures are gone with the context
            SCOPED_TRACE(testing::Message() << kNamesOfWays[way] << " " << startedBefore);
            CutControl c, expected;
            const auto meshes = c->m_vpMeshes;
            c->BlockPaintEvents(1);
            if (startedBefore) c->StartSegmentation(way);
            ASSERT_TRUE(c->MakeContextCurrent());
            for (const auto& mesh : meshes) mesh->ReleaseBuffers(), mesh->MarkBuffersDirty();
            c->RecreateOpenglContext(3, 3, 0);
            ASSERT_EQ(c->m_nWidth, -1);
            c->m_vpMeshes = meshes;
            LookDown(*c);
            if (!startedBefore) c->StartSegmentation(way);
            DrawLasso(*c, kMiddleBlock);
            CutByOperator(*expected, way, kMiddleBlock);
            EXPECT_EQ(VertexCounts(*c), VertexCounts(*expected));
            ASSERT_EQ(c->m_vpMeshes[0]->m_vpCutMasks.size(), 1u);
            ExpectSameMask(*c->m_vpMeshes[0]->m_vpCutMasks[0], *expected->m_vpMeshes[0]->m_vpCutMasks[0]);
        }
}

TEST(StartSegmentation, OfAFreehandLassoInAWindowLargerThanATextureShowsWhyNothingCanBeDrawn) {
    CutControl c;
    c->BlockPaintEvents(1);
    c.window->claimedSize = {1 << 20, 4};
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    EXPECT_EQ(c.window->modalMessages, std::vector<std::string>{"The window is too large for a freehand lasso"});
    EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
    EXPECT_EQ(c->m_bLassoCursor, 1);
    EXPECT_EQ(c->m_pCutMask, nullptr);
    c->EndSegmentation();
    c.window->claimedSize = {0, 0};
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    EXPECT_EQ(c.window->modalMessages.size(), 1u) << "a minimised window";
    c->EndSegmentation();
    c.window->claimedSize = {1 << 20, 4};
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    EXPECT_EQ(c.window->modalMessages.size(), 1u) << "a polygon needs no texture";
}

// ---- contexts that are gone

TEST(Segmentation, WhoseContextIsMadeAgainIsAbandonedByTheNextRightClick) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        CutControl c;
        c->StartSegmentation(way);
        LeftClick(*c, {100, 100});
        LeftClick(*c, {100, 300});
        c->RecreateOpenglContext(3, 3, 0);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        EXPECT_EQ(c->m_pCutMask, nullptr);
        EXPECT_NE(c->m_nInteractionMode, ModeIdle);
        EXPECT_TRUE(c.host.Take().empty());
        LeftClick(*c, {120, 100});
        c->PerformRefresh();
        RightClick(*c, {200, 200});
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
}

TEST(Segmentation, WhoseWindowIsGoneEndsWithoutACut) {
    for (const SegmentationMode way : kAllWays) {
        CutControl c;
        c->StartSegmentation(way);
        for (std::size_t i = 0; i < 3; ++i) LeftClick(*c, kMiddleBlock[i]);
        const auto objects = c->m_vpMeshes;
        c.window->Destroy();
        c->m_vpMeshes = objects;
        EXPECT_FALSE(c->FinishSegmentation(false));
        EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
        EXPECT_EQ(c->m_vpMeshes, objects);
        EXPECT_EQ(c->GetUndoStepCount(), 0);
    }
}

// ---- without OpenGL

TEST(Segmentation, WithoutAPictureRunsAndHitsNothing) {
    for (const SegmentationMode way : kAllWays) {
        NoPictureControl c;
        AddMesh(*c, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
        const auto meshes = c->m_vpMeshes;
        CutByOperator(*c, way, kMiddleBlock);
        EXPECT_EQ(c.events.events, DoneWith(-1)) << way;
        EXPECT_EQ(c->m_vpMeshes, meshes);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    }
}

// ---- the number in the event

TEST(SegmentationDone, HasTheNumberOfAllObjectsCutToSixteenBits) {
    CutControl c;
    const auto hidden = MakePlate(2, 1, 0);
    hidden->m_iVisible = 0;
    c->m_vpMeshes.insert(c->m_vpMeshes.end(), 39999, hidden);
    CutByOperator(*c, KV_ScenePane::PolygonInside, kMiddleBlock);
    EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done " + std::to_string(40001 - 65536)}));
    EXPECT_EQ(c->m_vpMeshes.size(), 40001u);
    ASSERT_TRUE(c->MakeContextCurrent());
}

TEST(SetLassoCuttingColors, IsForTheNextSession) {
    OffscreenControl c;
    EXPECT_EQ(c->m_lassoInside.color, 0xFFu);
    EXPECT_EQ(c->m_lassoInside.opacity, 0.5f);
    EXPECT_EQ(c->m_lassoOutside.color, 0u);
    EXPECT_EQ(c->m_lassoOutside.opacity, 0.0f);
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    LeftClick(*c, {100, 100});
    c->SetLassoCuttingColors(0x00FF00, 1.0f, 0xFF0000, 0.25f);
    ASSERT_NE(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutSession->m_uFillColor, 0x7F0000FFu);
    c->EndSegmentation();
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    LeftClick(*c, {100, 100});
    ASSERT_NE(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutSession->m_uFillColor, 0xFF00FF00u);
    EXPECT_EQ(c->m_pCutSession->m_uOutsideColor, 0x3FFF0000u);
}

}  // namespace
