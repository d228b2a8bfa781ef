// Every key in every interaction mode: what the host and the dialog receive and in which order, and what the viewer
// does.
#include "view/InputHelp.h"

namespace {

using KV_ScenePane::kKeyCtrl;
using KV_ScenePane::kKeyDelete;
using KV_ScenePane::kKeyDown;
using KV_ScenePane::kKeyEscape;
using KV_ScenePane::kKeySpace;
using KV_ScenePane::kKeyUp;
constexpr std::int32_t kKeyA = 65, kKeyShift = 16, kKeyLeftArrow = 37, kKeyF1 = 112;

EventsRecorder::Event KeyEvent(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    return {"CustomKeyDown", {static_cast<double>(nChar), static_cast<double>(nRepCnt), static_cast<double>(nFlags)}};
}

void HideHandles(InputControl& c) {
    c->m_clipPlane.m_bMoveHandleVisible = c->m_clipPlane.m_bRotateHandlesVisible = false;
}

// ---- all keys

TEST(KeyPress, IsReportedToTheHostAndTheDialogInEveryMode) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        for (const std::int32_t key :
             {kKeyEscape, kKeyDelete, kKeySpace, kKeyUp, kKeyDown, kKeyCtrl, kKeyA, kKeyShift, kKeyLeftArrow, kKeyF1}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", key " << key);
            c.Set({.mode = mode, .plane = true, .dialog = true});
            c->OnKeyPressed(key, 3, 0x4001);
            const bool cancels = key == kKeyEscape && (mode == ModeLasso || mode == ModeMaskLasso);
            ASSERT_EQ(c.events.events.size(), cancels ? 2u : 1u);
            EXPECT_EQ(c.events.events[0], KeyEvent(key, 3, 0x4001));
            if (cancels) {
                EXPECT_EQ(c.events.events[1], (EventsRecorder::Event{"SegmentationDone", {-1}}));
            }
            EXPECT_EQ(c.dialog.calls, (Calls{"OnInteractionKey " + std::to_string(key) + " 3 16385"}));
            EXPECT_EQ(c->m_bAnimationRunning, 0) << "every key stops it";
            EXPECT_TRUE(c.LastPointUnchanged());
            EXPECT_FALSE(c.window->HasCapture());
        }
    }
}

TEST(KeyPress, WorksWithoutADialogAndAHost) {
    InputControl c({.mode = ModeAlignInteractive});
    c->Connect(nullptr);
    c->OnKeyPressed(kKeyA, 1, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeAlignInteractive);
    EXPECT_EQ(c->m_bAnimationRunning, 0);
}

/// Records what the viewer had already done when the host, or the dialog, received the key.
struct KeyOrderRecorder final : KV_ScenePane::_DKV_ScenePaneEvents, CInteractionDlg {
    explicit KeyOrderRecorder(CKV_ScenePaneCtrl& viewer) : control(viewer) {}
    void CustomKeyDown(std::int32_t, std::int32_t, std::int32_t) override { Record("host"); }
    void OnInteractionKey(std::int32_t, std::int32_t, std::int32_t) override { Record("dialog"); }
    void Finish() override {}
    void Record(const char* who) {
        calls.push_back(std::string(who) + (control.m_bAnimationRunning != 0 ? " running" : " stopped") +
                        (control.m_clipPlane.m_bHighlighted ? " bright" : " dull"));
    }
    CKV_ScenePaneCtrl& control;
    Calls calls;
};

TEST(KeyPress, IsReportedToTheHostBeforeAndToTheDialogAfterTheViewerActs) {
    InputControl c({.plane = true});
    KeyOrderRecorder recorder(*c);
    c->Connect(&recorder);
    c->m_pInteractionDlg = &recorder;
    c->OnKeyPressed(kKeyCtrl, 1, 0);
    EXPECT_EQ(recorder.calls, (Calls{"host running dull", "dialog stopped bright"}));
    c->Connect(&c.events);
}

TEST(KeyPress, OfAnyOtherKeyChangesNothing) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        for (const std::int32_t key : {kKeyA, kKeyShift, kKeyLeftArrow, 39, kKeyF1, 0}) {
            c.Set({.mode = mode, .plane = true});
            HideHandles(c);
            c->m_bToggleAnimationOnSpacebar = 1;
            const auto matrix = c->m_clipPlane.m_dMatrix;
            c->OnKeyPressed(key, 1, 0);
            EXPECT_EQ(c->m_nInteractionMode, mode);
            EXPECT_EQ(c->m_clipPlane.m_dMatrix, matrix);
            EXPECT_FALSE(c->m_clipPlane.m_bMoveHandleVisible);
            EXPECT_FALSE(c->m_clipPlane.m_bHighlighted);
            EXPECT_EQ(c.RepaintRequests(), 0);
        }
    }
}

// ---- Escape, Delete

TEST(EscapeKey, ChangesNothingInModesWithoutLassoOrHandle) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        if (mode == ModePlaneHandle || mode == ModeLasso || mode == ModeMaskLasso) continue;
        c.Set({.mode = mode, .plane = true});
        HideHandles(c);
        c->OnKeyPressed(kKeyEscape, 1, 8);
        EXPECT_EQ(c->m_nInteractionMode, mode);
        EXPECT_FALSE(c->m_clipPlane.m_bHighlighted);
        EXPECT_FALSE(c->m_clipPlane.m_bMoveHandleVisible);
        EXPECT_EQ(c.RepaintRequests(), 0) << mode;
    }
}

TEST(EscapeKey, InAHandleDragReturnsToTheSavedModeAndHighlightsByTheCtrlBit) {
    InputControl c;
    for (const std::int32_t flags : {0, 8, 9, 7}) {
        c.Set({.mode = ModePlaneHandle, .plane = true});
        HideHandles(c);
        c->m_clipPlane.m_bHighlighted = (flags & 8) == 0;
        c->OnKeyPressed(kKeyEscape, 1, flags);
        EXPECT_EQ(c->m_nInteractionMode, kNoMode) << "the saved one";
        EXPECT_EQ(c->m_clipPlane.m_bHighlighted, (flags & 8) != 0) << flags;
        EXPECT_TRUE(c->m_clipPlane.m_bMoveHandleVisible);
        EXPECT_TRUE(c->m_clipPlane.m_bRotateHandlesVisible);
        EXPECT_EQ(c.window->refreshes, 1);
        EXPECT_EQ(c.RepaintRequests(), 1);
    }
}

TEST(EscapeAndDelete, RepaintInNeedlePickingMode) {
    InputControl c;
    for (const std::int32_t key : {kKeyEscape, kKeyDelete}) {
        for (const bool picking : {false, true}) {
            c.Set({});
            c->m_bNeedlePickingMode = picking;
            c->OnKeyPressed(key, 1, 0);
            EXPECT_EQ(c.window->refreshes, picking ? 1 : 0) << key;
            EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
        }
    }
}

// ---- space

TEST(SpaceKey, TogglesTheAnimationOnlyWhenTheHostAllowsIt) {
    InputControl c;
    struct Row {
        bool allowed, running, after;
    };
    for (const Row& row :
         {Row{false, false, false}, Row{false, true, false}, Row{true, false, true}, Row{true, true, false}}) {
        for (const std::int32_t mode : kAllModes) {
            SCOPED_TRACE(testing::Message() << row.allowed << row.running << " in mode " << mode);
            c.Set({.mode = mode});
            c->ToggleAnimationOnSpacebar(row.allowed ? 1 : 0);
            c->m_fAnimationSpeed = 0.25f;
            c->m_bAnimationRunning = row.running;
            c->m_nAnimationStart = c->m_nAnimationLast = -7;
            c->OnKeyPressed(kKeySpace, 1, 0);
            EXPECT_EQ(c->IsAnimationRunning() != 0, row.after);
            EXPECT_EQ(c->m_fAnimationSpeed, 0.25f);
            EXPECT_EQ(c->m_nAnimationStart != -7, row.after) << "a new start reads the clock";
            EXPECT_EQ(c.window->eraseInvalidates, row.after ? 1 : 0);
        }
    }
}

// ---- up, down

TEST(ArrowKeys, MoveThePlaneByOneUnitAlongZ) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        for (const std::int32_t key : {kKeyUp, kKeyDown}) {
            for (const bool shown : {true, false}) {
                SCOPED_TRACE(testing::Message() << "mode " << mode << ", key " << key << ", shown " << shown);
                c.Set({.mode = mode, .plane = shown});
                c->m_clipPlane.SetCenter({3, 4, 5});  // not tilted: the normal is the Z axis
                c->OnKeyPressed(key, 5, 0);
                const double step = shown ? (key == kKeyUp ? 1.0 : -1.0) : 0.0;
                const Double3 center = c->m_clipPlane.GetCenter();
                EXPECT_NEAR(center[0], 3, 1e-12);
                EXPECT_NEAR(center[1], 4, 1e-12);
                EXPECT_NEAR(center[2], 5 + step, 1e-12) << "once, however often the key repeats";
                EXPECT_EQ(c.window->refreshes, shown ? 1 : 0);
                EXPECT_EQ(c->m_nInteractionMode, mode);
            }
        }
    }
}

// ---- Ctrl

TEST(CtrlKey, ShowsTheHandlesOfTheDragUnderWay) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        SCOPED_TRACE(mode);
        c.Set({.mode = mode, .plane = true});
        const Plane& plane = c->m_clipPlane;
        // Every handle begins the other way, so that a handle that is shown or hidden shows.
        const bool move = mode == ModeIdle || mode == ModePan, rotate = mode == ModeIdle || mode == ModeRotate;
        c->m_clipPlane.m_bMoveHandleVisible = !move;
        c->m_clipPlane.m_bRotateHandlesVisible = !rotate;
        c->OnKeyPressed(kKeyCtrl, 1, 0);
        const bool acts = mode == ModeIdle || mode == ModeRotate || mode == ModePan;
        EXPECT_EQ(plane.m_bHighlighted, acts);
        EXPECT_EQ(plane.m_bMoveHandleVisible, acts ? move : !move);
        EXPECT_EQ(plane.m_bRotateHandlesVisible, acts ? rotate : !rotate);
        EXPECT_EQ(c.window->eraseInvalidates, 1) << "in any mode";
        EXPECT_EQ(c.RepaintRequests(), 1);
        EXPECT_EQ(c->m_nInteractionMode, mode) << "the mode waits for the next move";
    }
}

TEST(CtrlKey, DoesNothingWhileThePlaneIsHidden) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        c.Set({.mode = mode});
        HideHandles(c);
        c->OnKeyPressed(kKeyCtrl, 1, 0);
        c->OnKeyReleased(kKeyCtrl, 1, 0xC000);
        EXPECT_FALSE(c->m_clipPlane.m_bHighlighted);
        EXPECT_FALSE(c->m_clipPlane.m_bMoveHandleVisible);
        EXPECT_FALSE(c->m_clipPlane.m_bRotateHandlesVisible);
        EXPECT_EQ(c.RepaintRequests(), 0);
        EXPECT_EQ(c->m_nInteractionMode, mode);
    }
}

TEST(CtrlRelease, ContinuesAPlaneDragAsADragOfTheView) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        SCOPED_TRACE(mode);
        c.Set({.mode = mode, .plane = true, .dialog = true});
        HideHandles(c);
        c->m_clipPlane.m_bHighlighted = true;
        c->OnKeyReleased(kKeyCtrl, 1, 0xC000);
        const bool rotates = mode == ModeRotate || mode == ModePlaneRotate,
                   pans = mode == ModePan || mode == ModePlaneMove;
        EXPECT_EQ(c->m_nInteractionMode, rotates ? ModeRotate : pans ? ModePan : mode);
        const bool shows = rotates || pans || mode == ModeIdle;
        EXPECT_EQ(c->m_clipPlane.m_bMoveHandleVisible, shows);
        EXPECT_EQ(c->m_clipPlane.m_bRotateHandlesVisible, shows);
        EXPECT_FALSE(c->m_clipPlane.m_bHighlighted) << "in any mode";
        EXPECT_EQ(c.window->eraseInvalidates, 1);
        EXPECT_EQ(c.RepaintRequests(), 1);
        EXPECT_TRUE(c.events.events.empty()) << "releases are not reported";
        EXPECT_TRUE(c.dialog.calls.empty());
        EXPECT_EQ(c->m_bAnimationRunning, 1);
    }
}

TEST(KeyRelease, OfAnyOtherKeyDoesNothing) {
    InputControl c;
    for (const std::int32_t mode : kAllModes) {
        for (const std::int32_t key : {kKeyEscape, kKeyDelete, kKeySpace, kKeyUp, kKeyDown, kKeyA}) {
            c.Set({.mode = mode, .plane = true, .dialog = true});
            HideHandles(c);
            const auto matrix = c->m_clipPlane.m_dMatrix;
            c->OnKeyReleased(key, 1, 0xC000);
            EXPECT_EQ(c->m_nInteractionMode, mode);
            EXPECT_EQ(c->m_clipPlane.m_dMatrix, matrix);
            EXPECT_FALSE(c->m_clipPlane.m_bMoveHandleVisible);
            EXPECT_EQ(c.RepaintRequests(), 0);
            EXPECT_TRUE(c.events.events.empty());
            EXPECT_EQ(c->m_bAnimationRunning, 1);
        }
    }
}

// ---- from the window

TEST(KeyInputOfTheWindow, IsHandledAsPressOrRelease) {
    InputControl c({.mode = ModePlaneRotate, .plane = true});
    c->SendKey({.isDown = true, .nChar = kKeyA, .nRepCnt = 2, .nFlags = 0x1E});
    EXPECT_EQ(c.events.events, (std::vector{KeyEvent(kKeyA, 2, 0x1E)}));
    c->SendKey({.isDown = false, .nChar = kKeyCtrl, .nRepCnt = 1, .nFlags = 0xC01D});
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_EQ(c.events.events.size(), 1u);
}

TEST(FinishInteraction, FinishesTheDialogAndReturnsToIdle) {
    InputControl c({.mode = ModeAlignPickPoints, .dialog = true});
    c->FinishInteraction();
    EXPECT_EQ(c.dialog.calls, (Calls{"Finish"}));
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
}

TEST(FinishInteraction, WithoutADialogKeepsTheMode) {
    InputControl c({.mode = ModeRotate});
    c->FinishInteraction();
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
}

}  // namespace
