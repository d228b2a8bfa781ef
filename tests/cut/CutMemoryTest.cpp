// Sessions for which the memory does not suffice.
#include <algorithm>
#include <array>
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

extern "C" const char __executable_start, etext;  // of the linker

namespace {

// Drivers have memory: their code is in libraries.
bool IsCodeOfThisProgram(const void* address) {
    return address >= static_cast<const void*>(&__executable_start) && address < static_cast<const void*>(&etext);
}

void* Allocate(std::size_t size, const void* caller) {
    if (size >= kLargeBlock && g_refusedBlock > 0 && IsCodeOfThisProgram(caller) && g_refusedBlock-- == 1)
        throw std::bad_alloc();
    void* const memory = std::malloc(std::max<std::size_t>(1, size));
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

// Not inlined: gcc would take their malloc() and free() for a mismatch with new and delete.
[[gnu::noinline]] void* operator new(std::size_t size) { return Allocate(size, __builtin_return_address(0)); }
[[gnu::noinline]] void* operator new[](std::size_t size) { return Allocate(size, __builtin_return_address(0)); }
// Those of a sanitizer do not call the ones above, and the driver pairs them with these operators delete.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(std::max<std::size_t>(1, size));
}
[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(std::max<std::size_t>(1, size));
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

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

// ---- what is drawn for a session

using Pixels = std::vector<std::uint32_t>;

Pixels PictureOf(CutControl& c) {
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(c->CapturePicture(&picture));
    return picture.pixels;
}

/// What a frame relies on and does not set itself. An error may be pending: a shadow pass raises one.
void ExpectStateOfNoDrawing(CutControl& c) {
    ASSERT_TRUE(c->MakeContextCurrent());
    std::array<GLboolean, 4> mask{};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask.data());
    EXPECT_EQ(mask, (std::array<GLboolean, 4>{1, 1, 1, 1}));
    EXPECT_EQ(GlInteger(GL_ATTRIB_STACK_DEPTH), 0);
    EXPECT_EQ(GlInteger(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_EQ(GlInteger(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(GlInteger(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(GlInteger(GL_CURRENT_PROGRAM), 0);
    EXPECT_EQ(GlInteger(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(c->m_frameTarget.Name()));
    EXPECT_EQ(GlInteger(GL_TEXTURE_BINDING_2D), 0);
    EXPECT_EQ(GlInteger(GL_ACTIVE_TEXTURE), GL_TEXTURE0);
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
    EXPECT_FALSE(glIsEnabled(GL_CLIP_PLANE0));
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
}

struct DrawRow {
    std::int16_t mode;
    bool shadows;
};
constexpr DrawRow kDrawRows[] = {{KV_ScenePane::DrawModeGouraud, false},
                                 {KV_ScenePane::DrawModePerPixel, false},
                                 {KV_ScenePane::DrawModeGouraud, true},
                                 {KV_ScenePane::DrawModeShadowMap, false}};

TEST(ACutWithoutMemory, ForTheDepthsOfTheObjectsLeavesFramesAsTheyWere) {
    for (const DrawRow& row : kDrawRows) {
        CutControl c;
        c->SetDrawMode(row.mode);
        c->SetShadowMode(row.shadows ? 1 : 0);
        c->m_clipPlane.SetCenter({0, 0, -9});
        c->m_clipPlane.SetNormal({0, 0, 1});
        c->m_bClipPlaneActive = 1;
        c->ShowAxes(1);  // so that the depths are not those of the frame
        const Pixels before = PictureOf(c);
        ExpectStateOfNoDrawing(c);
        int failures = 0;
        bool changed = false;
        for (int n = 1; !changed && n < 100; ++n) {
            SCOPED_TRACE(testing::Message() << "mode " << row.mode << " shadows " << row.shadows << " block " << n);
            c->StartSegmentation(KV_ScenePane::PolygonVisible);
            for (std::size_t i = 0; i < 4; ++i) LeftClick(*c, kMiddleBlock[i]);
            c->PerformRefresh();
            for (const auto& mesh : c->m_vpMeshes) mesh->MarkBuffersDirty();
            c->BlockPaintEvents(1);  // the frame at the end needs memory, too
            {
                const RefusedBlock refused(n);
                EXPECT_NO_THROW(changed = c->FinishSegmentation(false));
            }
            ExpectStateOfNoDrawing(c);
            c->BlockPaintEvents(0);
            if (changed) break;
            ++failures;
            ASSERT_TRUE(PictureOf(c) == before);
        }
        EXPECT_TRUE(changed);
        EXPECT_GE(failures, 6) << "the four uploads in large blocks, and those of the cut";
    }
}

void ExpectNoSession(CutControl& c) {
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_bLassoCursor, 0);
    EXPECT_EQ(c->m_bToggleAnimationOnSpacebar, 1);
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c.window->waitCursorsBegun, c.window->waitCursorsEnded);
}

TEST(AStartWithoutMemory, IsNoSession) {
    CutControl c;
    const Pixels before = PictureOf(c);
    int failures = 0;
    bool failed = true;
    for (int n = 1; failed && n < 100; ++n) {
        SCOPED_TRACE(n);
        // Also as the replacement of a session with a lasso.
        c->StartSegmentation(KV_ScenePane::FreehandOutside);
        LeftClick(*c, {100, 100});
        c->PerformRefresh();
        for (const auto& mesh : c->m_vpMeshes) mesh->MarkBuffersDirty();
        c->BlockPaintEvents(1);
        {
            const RefusedBlock refused(n);
            try {
                c->StartSegmentation(KV_ScenePane::FreehandInside);
                failed = false;
            } catch (const std::bad_alloc&) {
            }
        }
        ExpectStateOfNoDrawing(c);
        c->BlockPaintEvents(0);
        if (!failed) break;
        ++failures;
        ExpectNoSession(c);
        EXPECT_EQ(c->m_pCutMask, nullptr);
        EXPECT_TRUE(c.host.Take().empty()) << "the host has the exception";
        ASSERT_TRUE(PictureOf(c) == before);
        EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
    }
    EXPECT_GE(failures, 7) << "three images, and the four uploads in large blocks";
    c->EndSegmentation();
    EXPECT_TRUE(Cut(c, KV_ScenePane::FreehandInside));
}

TEST(ACutWithLassoWithoutMemory, LeavesNoSession) {
    int thrown = 0;
    bool changed = false;
    for (int n = 1; !changed && n < 100; ++n) {
        SCOPED_TRACE(n);
        CutControl c;
        c->BlockPaintEvents(1);
        {
            const RefusedBlock refused(n);
            try {
                changed = Cut(c, KV_ScenePane::FreehandVisible);
            } catch (const std::bad_alloc&) {
                ++thrown;
            }
        }
        ExpectNoSession(c);
        ExpectStateOfNoDrawing(c);
    }
    EXPECT_TRUE(changed);
    EXPECT_GE(thrown, 3) << "for the images of the textures";
}

TEST(APointWithoutMemory, IsLeftOutWithAMessageAndTheSessionGoesOn) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        SCOPED_TRACE(kNamesOfWays[way]);
        CutControl c;
        c->StartSegmentation(way);
        for (const LassoCorner& at : kMiddleBlock) LeftClick(*c, at);
        c->PerformRefresh();
        c->BlockPaintEvents(1);  // a frame draws the points
        const auto count = [&] {
            return IsFreehand(way) ? c->m_pCutSession->m_vPending.size() : c->m_vLassoPoints.size();
        };
        std::size_t points = 0;
        LassoCorner at = kMiddleBlock[3];
        {
            const RefusedBlock refused(1);
            for (int i = 0; i < 1000 && c.window->modalMessages.empty(); ++i) {
                points = count();
                at.y = 215 - i % 2;
                if (IsFreehand(way) && i % 3 != 0)
                    c->SendMouse({.kind = KV_ScenePane::MouseInput::Kind::Move,
                                  .flags = KV_ScenePane::kMouseLeft,
                                  .x = at.x,
                                  .y = at.y});
                else
                    ASSERT_NO_THROW(LeftClick(*c, at));
            }
        }
        EXPECT_EQ(c.window->modalMessages,
                  std::vector<std::string>{"Not enough memory for a further point of the lasso"});
        EXPECT_GE(points, 32u);
        EXPECT_EQ(count(), points);
        EXPECT_TRUE(c.host.Take().empty());
        // A last point that is missing does not cut: that is not the region that was drawn.
        at.y = 213;
        {
            const RefusedBlock refused(1);
            EXPECT_NO_THROW(RightClick(*c, at));
        }
        EXPECT_TRUE(c.host.Take().empty());
        EXPECT_EQ(c.window->modalMessages.size(), 2u);
        EXPECT_NE(c->m_nInteractionMode, ModeIdle);
        c->BlockPaintEvents(0);
        RightClick(*c, at);
        EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount - 25, kBackCount - 1}));
    }
}

}  // namespace
