// The order of the steps at the end of a session, and hosts that do everything in its events.
#include <algorithm>
#include <stdexcept>

#include "KV_ScenePane/PathText.h"
#include "cut/CutScene.h"
#include "io/ScanSample.h"
#include "render/MeshTexture.h"
#include "support/GlNow.h"
#include "support/ScratchFolder.h"

namespace {

bool Cut(CutControl& c, SegmentationMode way = KV_ScenePane::PolygonInside,
         const LassoCorners& corners = kMiddleBlock) {
    return c->CutWithLasso(way, FractionsOf(corners, 640, 480));
}
const std::vector<std::size_t> kUncut{kFrontCount, kBackCount}, kCut{kFrontCount - 25, kBackCount - 1};

/// Both ways to draw.
constexpr SegmentationMode kPolygonAndFreehand[] = {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside};

// ---- the order of the steps

TEST(CutEvents, ComeBeforeAndAfterTheChangeOfTheList) {
    for (const SegmentationMode way : kAllWays) {
        SCOPED_TRACE(kNamesOfWays[way]);
        CutControl c;
        const auto original = c->m_vpMeshes;
        int refreshesBefore = 0;
        c.window->onEndWaitCursor = [&] { EXPECT_EQ(c->m_pCutSession, nullptr) << "deleted under the wait cursor"; };
        c.host.onMask = [&](const ACAD::CutMask& mask) {
            EXPECT_EQ(c->m_vpMeshes, original);
            EXPECT_EQ(c->GetUndoStepCount(), 0);
            EXPECT_EQ(c->m_pCutSession, nullptr);
            EXPECT_EQ(c->m_bLassoCursor, 0);
            EXPECT_EQ(c.window->waitCursorsBegun, c.window->waitCursorsEnded) << "the wait cursor has ended";
            EXPECT_EQ(mask.m_nViewport[2], 640);
            EXPECT_NE(mask.m_rcBounds, ACAD::CutMask::kNoPixel);
            refreshesBefore = c.window->refreshes;
        };
        c.host.onDone = [&](int numObj) {
            EXPECT_EQ(numObj, 2);
            EXPECT_NE(c->m_vpMeshes, original);
            EXPECT_EQ(c->GetUndoStepCount(), 1);
            EXPECT_EQ(c->m_vUndoStack.back(), original);
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            EXPECT_EQ(c.window->refreshes, refreshesBefore + 1);
        };
        ASSERT_TRUE(Cut(c, way));
        EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(c.window->refreshes, refreshesBefore + 1);
    }
}

TEST(CutEvents, HaveTheAddressOfTheMaskThatTheObjectsHold) {
    CutControl c;
    const ACAD::CutMask* announced = nullptr;
    c.host.onMask = [&](const ACAD::CutMask& mask) { announced = &mask; };
    ASSERT_TRUE(Cut(c));
    for (const auto& mesh : c->m_vpMeshes) EXPECT_EQ(mesh->m_vpCutMasks.at(0).get(), announced);
}

// ---- hosts that call back from CutMaskApplied

struct CallBack {
    const char* name;
    std::function<void(CutControl&)> call;
    std::vector<std::size_t> undoStep;  ///< numbers of vertices in the step that the cut makes
    int steps = 1;
};
const CallBack kCallBacks[] = {
    {"ImportMeshFromMemory",
     [](auto& c) {
         const float vertices[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
         const std::int32_t triangle[] = {0, 1, 2};
         c->ImportMeshFromMemory(3, 1, vertices, triangle);
         EXPECT_EQ(c->GetNumObjects(), 3);
     },
     {kFrontCount, kBackCount, 3}},
    {"PerformUndo", [](auto& c) { EXPECT_EQ(c->PerformUndo(), 0); }, kUncut},
    {"ClearUndoStack", [](auto& c) { c->ClearUndoStack(); }, kUncut},
    {"ClearData",
     [](auto& c) {
         c->ClearData();
         LookDown(*c);
     },
     {}},
    {"DeleteObject", [](auto& c) { c->DeleteObject(0); }, {kBackCount}},
    {"EndSegmentation", [](auto& c) { c->EndSegmentation(); }, kUncut},
    {"Escape", [](auto& c) { PressEscape(*c); }, kUncut},
    {"MoreClicks",
     [](auto& c) {
         DrawLasso(*c, kMiddleBlock);
         c->ProcessEvents();
     },
     kUncut},
    {"StartSegmentationOfAPolygon", [](auto& c) { c->StartSegmentation(KV_ScenePane::PolygonVisible); }, kUncut},
    {"StartSegmentationOfAFreehandLasso", [](auto& c) { c->StartSegmentation(KV_ScenePane::FreehandVisible); }, kUncut},
    {"StartSegmentationWithAClick",
     [](auto& c) {
         c->StartSegmentation(KV_ScenePane::FreehandVisible);
         LeftClick(*c, {100, 100});
         LeftClick(*c, {200, 100});
         EXPECT_NE(c->m_pCutSession, nullptr);
     },
     kUncut},
    {"AlignInteractiveAndItsEnd",
     [](auto& c) {
         c->AlignInteractive();
         c->FinishInteraction();
     },
     kUncut},
    {"AlignPickPointsAndItsEnd",
     [](auto& c) {
         c->AlignPickPoints();
         PressEscape(*c);
     },
     kUncut},
    {"SaveCuttingToPcms", [](auto& c) { EXPECT_EQ(c->SaveCuttingToPcms(), 0); }, kUncut},
    {"GetCutMasks",
     [](auto& c) {
         std::int32_t count = -1;
         c->GetCutMasks(&count, nullptr);
         EXPECT_EQ(count, 0) << "the list is still the old one";
     },
     kUncut},
    {"ImportScan",
     [](auto& c) {
         const ScratchFolder folder;
         const std::string file = folder / "scan.pcm";
         ScanSample(4, 3, 100.0f).WritePcm(file);
         c->ImportScan(KV_ScenePane::WidePath(file).c_str(), 0xFFFFFF);
         EXPECT_EQ(c->GetNumObjects(), 3);
         LookDown(*c);
     },
     {kFrontCount, kBackCount, 12}},
    {"RecreateOpenglContext",
     [](auto& c) {
         c->RecreateOpenglContext(3, 3, 0);
         LookDown(*c);
     },
     {}},
};

TEST(CutMaskApplied, MayCallEveryMethodAndTheResultOfTheCutIsTakenAfterwards) {
    for (const SegmentationMode way : kPolygonAndFreehand)
        for (const CallBack& row : kCallBacks) {
            SCOPED_TRACE(testing::Message() << row.name << " " << kNamesOfWays[way]);
            CutControl c;
            c->AddSelection(0);
            c->AddVariableObject(1);
            c.host.onMask = [&](const ACAD::CutMask&) { row.call(c); };
            EXPECT_TRUE(Cut(c, way));
            EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
            EXPECT_EQ(VertexCounts(*c), kCut);
            ASSERT_EQ(c->GetUndoStepCount(), row.steps);
            std::vector<std::size_t> step;
            for (const auto& mesh : c->m_vUndoStack.back()) step.push_back(mesh->GetVertexCount());
            EXPECT_EQ(step, row.undoStep);
            // A session that it started has ended with this one.
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            EXPECT_EQ(c->m_bLassoCursor, 0);
            EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 1);
            EXPECT_EQ(c->m_pCutSession, nullptr);
            c->EndSegmentation();
            EXPECT_TRUE(c.host.Take().empty());
            // And everything works on.
            c.host.onMask = [](const ACAD::CutMask&) {};
            c->PerformRefresh();
            EXPECT_TRUE(Cut(c, way, RectangleOf(120, 40, 200, 120)));
            EXPECT_EQ(c->PerformUndo(), row.steps);
            EXPECT_EQ(c->PerformUndo(), row.steps - 1);
            EXPECT_EQ(VertexCounts(*c), row.undoStep);
            c->PerformRefresh();
            EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
        }
}

TEST(CutMaskApplied, MayStartAnAlignmentThatGoesOnAfterTheCut) {
    CutControl c;
    c.host.onMask = [&](const ACAD::CutMask&) { c->AlignInteractive(); };
    ASSERT_TRUE(Cut(c));
    EXPECT_EQ(c->m_nInteractionMode, ModeAlignInteractive);
    EXPECT_EQ(c->m_bLassoCursor, 0);
    c->FinishInteraction();
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST(CutMaskApplied, OfAStartWithAnUnknownNumberLeavesItsCursor) {
    CutControl c;
    c.host.onMask = [&](const ACAD::CutMask&) { c->StartSegmentation(6); };
    ASSERT_TRUE(Cut(c));
    EXPECT_EQ(c->m_bLassoCursor, 1);
    EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST(CutMaskApplied, OfAHostWhoseClicksFindWaitingTexturesLeavesNoLasso) {
    CutControl c;
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    LeftClick(*c, kMiddleBlock[0]);
    c->StartSegmentation(KV_ScenePane::FreehandInside);  // the session goes on, further textures wait
    c.host.onMask = [&](const ACAD::CutMask&) { LeftClick(*c, {100, 100}); };
    DrawLasso(*c, kMiddleBlock);
    EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(VertexCounts(*c), kCut);
}

TEST(CutMaskApplied, OfAHostThatStartsAndEndsASessionReportsThatEnd) {
    for (const SegmentationMode way : kPolygonAndFreehand) {
        CutControl c;
        c.host.onMask = [&](const ACAD::CutMask&) {
            c->StartSegmentation(way);
            LeftClick(*c, {100, 100});
            c->EndSegmentation();
        };
        ASSERT_TRUE(Cut(c, way));
        EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done -1", "done 2"}));
        EXPECT_EQ(VertexCounts(*c), kCut);
        EXPECT_EQ(c->m_bLassoCursor, 0);
    }
}

/// An object at the left with a part to cut, one at the right without, and of each another one with a texture below.
struct FourObjects : CutControl {
    FourObjects() {
        control->m_vpMeshes.clear();
        Add(-2.5f, 2, false), Add(2.5f, 2, false), Add(-2.5f, -2, true), Add(2.5f, -2, true);
        LookDown(*control);
        control->PerformRefresh();
    }
    void Add(float x, float y, bool textured) {
        const auto mesh = MakePlate(21, 1.5, 0);
        for (Vertex& v : mesh->m_vVertices) v.x += x, v.y += y;
        mesh->ComputeBoundingBox();
        mesh->m_fColor[0] = 0.2f;
        control->m_vpMeshes.push_back(mesh);
        if (!textured) return;
        for (const Triangle& triangle : mesh->m_vTriangles)
            for (const std::int32_t i : triangle.v) {
                const Vertex& v = mesh->m_vVertices[static_cast<std::size_t>(i)];
                mesh->m_vTexCoords.push_back({v.x - x, v.y - y});
            }
        const std::uint32_t texels[] = {0xFF0000FF, 0xFF00FF00, 0xFFFF0000, 0xFF00FFFF, 0xFFFF00FF, 0xFFFFFF00};
        ASSERT_TRUE(control->MakeContextCurrent());
        CreateTexture(*mesh, 3, 2, reinterpret_cast<const std::uint8_t*>(texels), {});
    }
    bool Cut() {
        return control->CutWithLasso(KV_ScenePane::PolygonInside,
                                     FractionsOf(RectangleOf(180, 120, 220, 360), 640, 480));
    }
    std::vector<std::uint32_t> Pixels() {
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(control->CapturePicture(&picture));
        return picture.pixels;
    }
};

TEST(CutMaskApplied, OfAHostThatMakesTheContextAgainLeavesNoNameOfTheFormerOne) {
    FourObjects plain;
    ASSERT_TRUE(plain.Cut());
    const auto expected = plain.Pixels();
    for (const bool nested : {false, true}) {
        SCOPED_TRACE(nested);
        FourObjects c;
        const auto untouched = c->m_vpMeshes;
        int calls = 0;
        c.host.onMask = [&](const ACAD::CutMask&) {
            if (nested && ++calls == 1) {
                EXPECT_TRUE(c.Cut());
                return;
            }
            c->RecreateOpenglContext(3, 3, 0);
            // Names of the new context that are those of the former one, of objects that are no longer used.
            GLuint buffers[40], textures[10];
            ASSERT_TRUE(c->MakeContextCurrent());
            glGenBuffers(40, buffers), glGenTextures(10, textures);
            for (const GLuint name : buffers) glBindBuffer(GL_ARRAY_BUFFER, name);
            glBindBuffer(GL_ARRAY_BUFFER, 0);
            LookDown(*c);
        };
        ASSERT_TRUE(c.Cut());
        ASSERT_EQ(c->m_vpMeshes.size(), 4u);
        EXPECT_NE(c->m_vpMeshes[0], untouched[0]);
        EXPECT_EQ(c->m_vpMeshes[1], untouched[1]);
        EXPECT_EQ(c->m_vpMeshes[3], untouched[3]);
        EXPECT_TRUE(c.Pixels() == expected);
        EXPECT_EQ(c->m_pPendingCut, nullptr);
        EXPECT_TRUE(c->m_vTexturesWithoutContext.empty());
        ASSERT_TRUE(c->MakeContextCurrent());
        for (const auto& mesh : c->m_vpMeshes) {
            EXPECT_TRUE(glIsBuffer(mesh->m_uVertexBuffer));
            if (mesh->m_pTexture == nullptr) continue;
            EXPECT_TRUE(glIsTexture(mesh->m_pTexture->m_uName));
            EXPECT_EQ(mesh->m_pTexture->m_hContext, c->m_hRC);
        }
        // The end of one object leaves the buffers of the others.
        c->ClearUndoStack();
        c->DeleteObject(1);
        for (const auto& mesh : c->m_vpMeshes) EXPECT_TRUE(glIsBuffer(mesh->m_uVertexBuffer));
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
}

TEST(CutMaskApplied, OfAHostThatClosesTheWindowLeavesNoName) {
    FourObjects c;
    c.host.onMask = [&](const ACAD::CutMask&) { c.window->Destroy(); };
    (void)c.Cut();
    ASSERT_EQ(c->m_vpMeshes.size(), 4u);
    for (const auto& mesh : c->m_vpMeshes) {
        EXPECT_EQ(mesh->m_uVertexBuffer, 0u);
        if (mesh->m_pTexture != nullptr) {
            EXPECT_EQ(mesh->m_pTexture->m_uName, 0u);
        }
    }
}

// ---- hosts that call back from SegmentationDone

TEST(SegmentationDone, MayStartTheNextSession) {
    for (const SegmentationMode way : kPolygonAndFreehand)
        for (const SegmentationMode next : kPolygonAndFreehand) {
            CutControl c;
            c.host.onDone = [&](int) { c->StartSegmentation(next); };
            c->StartSegmentation(way);
            DrawLasso(*c, kMiddleBlock);
            EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
            EXPECT_EQ(c->m_nInteractionMode, IsFreehand(next) ? ModeMaskLasso : ModeLasso);
            EXPECT_EQ(c->m_bLassoCursor, 1);
            EXPECT_EQ(c->m_pCutMask != nullptr, IsFreehand(next));
            DrawLasso(*c, RectangleOf(120, 40, 200, 120));
            EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
            PressEscape(*c);
            EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
            EXPECT_EQ(c->GetUndoStepCount(), 2);
        }
}

TEST(SegmentationDone, MayTakeTheCutBackOrEmptyTheScene) {
    for (const SegmentationMode way : kPolygonAndFreehand) {
        CutControl c;
        c.host.onDone = [&](int) { c->PerformUndo(); };
        EXPECT_TRUE(Cut(c, way));
        EXPECT_EQ(VertexCounts(*c), kUncut);
        c.host.onDone = [&](int) { c->ClearData(); };
        LookDown(*c);
        EXPECT_TRUE(Cut(c, way));
        EXPECT_EQ(c->GetNumObjects(), 0);
        EXPECT_EQ(c->GetUndoStepCount(), 0);
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
}

TEST(SegmentationDone, OfACancelledSessionMayStartTheNextOne) {
    CutControl c;
    int starts = 0;
    c.host.onDone = [&](int) {
        if (++starts < 3) c->StartSegmentation(KV_ScenePane::FreehandInside);
    };
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    for (int i = 0; i < 5; ++i) PressEscape(*c);
    EXPECT_EQ(c.host.Take(), (EventNames{"done -1", "done -1", "done -1"}));
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

// ---- handlers that throw

TEST(CutMaskApplied, ThatThrowsLeavesACompleteCut) {
    for (const SegmentationMode way : kPolygonAndFreehand) {
        CutControl c;
        c.host.onMask = [](const ACAD::CutMask&) { throw std::runtime_error("mask"); };
        EXPECT_THROW(Cut(c, way), std::runtime_error);
        EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(VertexCounts(*c), kCut);
        EXPECT_EQ(c->GetUndoStepCount(), 1);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        c.host.onMask = [](const ACAD::CutMask&) {};
        EXPECT_TRUE(Cut(c, way, RectangleOf(120, 40, 200, 120)));
    }
}

TEST(SegmentationDone, ThatThrowsLeavesACompleteEnd) {
    for (const bool cuts : {true, false}) {
        CutControl c;
        c.host.onDone = [](int) { throw std::runtime_error("done"); };
        EXPECT_THROW(Cut(c, KV_ScenePane::FreehandInside, cuts ? kMiddleBlock : kBetweenVertices), std::runtime_error);
        EXPECT_EQ(c->GetUndoStepCount(), cuts ? 1 : 0);
        EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        EXPECT_EQ(c->m_pCutSession, nullptr);
        EXPECT_TRUE(c.window->IsPaintPending()) << "what is on the screen is not lost";
        c.host.onDone = [](int) {};
        EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandInside, RectangleOf(120, 40, 200, 120)));
    }
}

TEST(CutEvents, ThatBothThrowPassTheFirstExceptionOn) {
    CutControl c;
    c.host.onMask = [](const ACAD::CutMask&) { throw std::runtime_error("mask"); };
    c.host.onDone = [](int) { throw std::logic_error("done"); };
    EXPECT_THROW(Cut(c), std::runtime_error);
    EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
}

TEST(AMessageAboutColours, WhoseReaderThrowsLeavesNoSession) {
    CutControl c;
    c->SetLassoCuttingColors(255, 0.0f, 0, 0.5f);
    KV_ScenePane::SetDebugOutputSink([](std::string_view) { throw std::runtime_error("sink"); });
    EXPECT_THROW(Cut(c, KV_ScenePane::FreehandInside), std::runtime_error);
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(c.host.Take(), EventNames{"done -1"});
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_bLassoCursor, 0);
    c->SetLassoCuttingColors(255, 0.5f, 0, 0.0f);
    EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandInside));
}

}  // namespace
