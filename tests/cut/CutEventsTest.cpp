// The order of the steps at the end of a session, and hosts that do everything in its events.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "cut/CutScene.h"
#include "support/GlNow.h"

// ---- the memory of this program

namespace {
std::atomic<int> g_refusedBlock{0};  // counts down to 1, which is refused; 0: none is
constexpr std::size_t kLargeBlock = 1000;
}  // namespace

// Not inlined: gcc would take their malloc() and free() for a mismatch with new and delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (size >= kLargeBlock && g_refusedBlock > 0 && g_refusedBlock-- == 1) throw std::bad_alloc();
    void* const memory = std::malloc(std::max<std::size_t>(1, size));
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// The n-th allocation of a large block, counted from 1, is refused while this exists.
class RefusedBlock {
public:
    explicit RefusedBlock(int n) { g_refusedBlock = n; }
    ~RefusedBlock() { g_refusedBlock = 0; }
    RefusedBlock(const RefusedBlock&) = delete;
    RefusedBlock& operator=(const RefusedBlock&) = delete;
};

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
    {"SaveCuttingToPcms", [](auto& c) { EXPECT_EQ(c->SaveCuttingToPcms(), 0); }, kUncut},
    {"GetCutMasks",
     [](auto& c) {
         std::int32_t count = -1;
         c->GetCutMasks(&count, nullptr);
         EXPECT_EQ(count, 0) << "the list is still the old one";
     },
     kUncut},
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

// ---- failures of the cut itself

/// 3,000 further objects, so that each copy of the list is a large block.
void AddManyHiddenObjects(CutControl& c) {
    const auto hidden = MakePlate(2, 1, 0);
    hidden->m_iVisible = 0;
    c->m_vpMeshes.insert(c->m_vpMeshes.end(), 3000, hidden);
}

TEST(ACutWithoutMemory, EndsLikeOneThatHitNothingAndShowsWhy) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandVisible}) {
        SCOPED_TRACE(kNamesOfWays[way]);
        int failures = 0, failuresAfterTheEvent = 0;
        CutControl c;
        AddManyHiddenObjects(c);
        const auto original = c->m_vpMeshes;
        bool changed = false;
        for (int n = 1; !changed && n < 100; ++n) {
            SCOPED_TRACE(n);
            c->StartSegmentation(way);
            for (std::size_t i = 0; i < 4; ++i) LeftClick(*c, kMiddleBlock[i]);
            c->ProcessEvents();
            c.window->Forget();
            {
                c->BlockPaintEvents(1);  // the frame at the end needs memory, too
                const RefusedBlock refused(n);
                EXPECT_NO_THROW(changed = c->FinishSegmentation(false));
            }
            c->BlockPaintEvents(0);
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
            EXPECT_EQ(c->m_pCutSession, nullptr);
            EXPECT_EQ(c->m_bLassoCursor, 0);
            EXPECT_EQ(c.window->waitCursorsBegun, 1);
            EXPECT_EQ(c.window->waitCursorsEnded, 1);
            const EventNames events = c.host.Take();
            if (changed) continue;
            ++failures;
            failuresAfterTheEvent += events.size() == 2;
            EXPECT_EQ(events.back(), "done -1");
            EXPECT_TRUE(c->m_vpMeshes == original);
            EXPECT_EQ(c->GetUndoStepCount(), 0);
            EXPECT_EQ(c.window->modalMessages, std::vector<std::string>{"The cut has failed: std::bad_alloc"});
            EXPECT_EQ(c.window->eraseInvalidates, 1);
            EXPECT_EQ(c.window->refreshes, 0);
        }
        EXPECT_TRUE(changed) << "with enough memory";
        EXPECT_GE(failures, 4);
        EXPECT_GE(failuresAfterTheEvent, 1) << "for the undo step";
    }
}

TEST(ACutWithoutMemory, ReportsItsEndBeforeItsMessageAndLeavesNoInput) {
    CutControl c;
    bool doneFirst = false;
    c.host.onDone = [&](int) { doneFirst = c.window->modalMessages.empty(); };
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    for (std::size_t i = 0; i < 4; ++i) LeftClick(*c, kMiddleBlock[i]);
    {
        const RefusedBlock refused(1);
        EXPECT_NO_THROW(RightClick(*c, kMiddleBlock[0]));
    }
    EXPECT_TRUE(doneFirst);
    EXPECT_EQ(c.window->modalMessages.size(), 1u);
}

TEST(ACutWithoutMemory, ShowsItsMessageAlsoWhenTheHandlerThrows) {
    CutControl c;
    c.host.onDone = [](int) { throw std::runtime_error("done"); };
    c->StartSegmentation(KV_ScenePane::PolygonInside);
    for (std::size_t i = 0; i < 4; ++i) LeftClick(*c, kMiddleBlock[i]);
    {
        const RefusedBlock refused(1);
        EXPECT_THROW(c->FinishSegmentation(false), std::runtime_error);
    }
    EXPECT_EQ(c.window->modalMessages.size(), 1u);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST(AnUndoWithoutMemory, NeedsNone) {
    CutControl c;
    AddManyHiddenObjects(c);
    ASSERT_TRUE(Cut(c));
    c->BlockPaintEvents(1);  // the frame needs some
    const RefusedBlock refused(1);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), kFrontCount);
}

}  // namespace
