// The delayed scheme in a whole control. One test reads the real one-shot timer of an off-screen window; in the others
// the test ends the delay by the timer's private message, so that no result depends on the speed of the machine.
#include <poll.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "view/CameraHelp.h"
#include "view/UserInput.h"

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using Kind = KV_ScenePane::MouseInput::Kind;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class DelayedScheme : public testing::Test {
protected:
    DelayedScheme() { c->SetIGDRotation(1); }

    void Mouse(Kind kind, std::uint32_t flags, std::int32_t x = 320, std::int32_t y = 240) {
        c->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    }

    OffscreenControl c;
};

// ---- the real timer

TEST_F(DelayedScheme, TheTimerDispatchesAPressAfterATenthOfASecondAtTheEarliest) {
    const auto pressed = Clock::now();
    Mouse(Kind::RightDown, kMouseRight);
    EXPECT_TRUE(c->m_mouseDispatch.pending);
    EXPECT_NE(c->m_mouseDispatch.timerId, 0u);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->ProcessEvents();
    PumpUntil(*c, "the timer of the press", [this] { return !c->m_mouseDispatch.pending; });
    EXPECT_GE(Clock::now() - pressed, milliseconds(100));
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(c.window->HasCapture());
}

// ---- the delay, ended by the test

class HeldDelay : public DelayedScheme {
protected:
    HeldDelay() { HoldDispatchTimer(c); }
};

TEST_F(HeldDelay, ASecondButtonWithinItArrivesAsOneLeftPressThatPans) {
    Mouse(Kind::LeftDown, kMouseLeft);
    Mouse(Kind::RightDown, kMouseLeft | kMouseRight);
    EndDispatchDelay(c);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_bRightButtonPressed, 0) << "no separate right press";
}

TEST_F(HeldDelay, ASecondButtonAfterItArrivesSeparately) {
    Mouse(Kind::LeftDown, kMouseLeft);
    EndDispatchDelay(c);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle) << "a plain left press moves nothing";
    Mouse(Kind::RightDown, kMouseLeft | kMouseRight);
    EndDispatchDelay(c);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_bRightButtonPressed, 1) << "a separate right press";
}

TEST_F(HeldDelay, ALeftPressDuringARotationByTheRightButtonPansUntilItsRelease) {
    Mouse(Kind::RightDown, kMouseRight);
    EndDispatchDelay(c);
    ASSERT_EQ(c->m_nInteractionMode, ModeRotate);
    Mouse(Kind::LeftDown, kMouseLeft | kMouseRight);
    EndDispatchDelay(c);
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    Mouse(Kind::LeftUp, kMouseRight);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "the right button still holds the drag";
    Mouse(Kind::RightUp, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST_F(HeldDelay, ADragBeginsAtThePointOfThePressNotAtThatOfTheDispatch) {
    Mouse(Kind::RightDown, kMouseRight, 300, 200);
    Mouse(Kind::Move, kMouseRight, 340, 230);
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0})) << "nothing drags before the dispatch";
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->m_nLastMouseX, 300);
    EXPECT_EQ(c->m_nLastMouseY, 200);
    c->SetRotationMode(KV_ScenePane::RotateAboutVertical);
    Mouse(Kind::Move, kMouseRight, 340 + 280, 230);  // 320 of 640 pixels from the press: a quarter turn
    ExpectNear(c->m_fAxisX, {0, 0, 1}, 1e-7, "wx");
}

struct HandlerCall {
    std::uint32_t flags;
    std::int32_t x, y;
    bool operator==(const HandlerCall&) const = default;
};
void PrintTo(const HandlerCall& call, std::ostream* out) {
    *out << "flags " << call.flags << " at (" << call.x << ", " << call.y << ")";
}
std::vector<HandlerCall> g_handlerCalls;
void RecordCall(CKV_ScenePaneCtrl*, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    g_handlerCalls.push_back({flags, x, y});
}

TEST_F(HeldDelay, AddsTheMovedBitToADraggedPressAndNotToAHeldOne) {
    g_handlerCalls.clear();
    c->m_mouseDispatch.onLeftDown = RecordCall;
    c->m_mouseDispatch.onLeftUp = RecordCall;
    Mouse(Kind::LeftDown, kMouseLeft, 10, 20);
    EndDispatchDelay(c);
    Mouse(Kind::LeftUp, 0, 10, 20);
    Mouse(Kind::LeftDown, kMouseLeft, 10, 20);
    Mouse(Kind::Move, kMouseLeft, 13, 24);
    Mouse(Kind::LeftUp, 0, 13, 24);
    EndDispatchDelay(c);
    EXPECT_EQ(g_handlerCalls, (std::vector<HandlerCall>{{0x1, 10, 20}, {0, 0, 0}, {0x101, 10, 20}, {0x101, 10, 20}}));
}

TEST_F(HeldDelay, AnotherPrivateMessageDoesNotEndIt) {
    Mouse(Kind::RightDown, kMouseRight);
    c->OnPrivateMessage(kTimerMessage + 1);
    EXPECT_TRUE(c->m_mouseDispatch.pending);
}

TEST_F(HeldDelay, IsSwitchedOnByAnyNumberButZero) {
    for (const std::int16_t on : {std::int16_t{2}, std::int16_t{-1}}) {
        c->SetIGDRotation(0);
        c->SetIGDRotation(on);
        EXPECT_EQ(c->m_nIgdRotation, on);
        Mouse(Kind::RightDown, kMouseRight);
        EXPECT_TRUE(c->m_mouseDispatch.pending) << on;
    }
}

// ---- handlers of the host that throw

/// Throws in the events that the scheme leads to while it is armed, and counts them.
class ThrowingEvents final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    bool throws = true;
    int picks = 0, views = 0;
    void SelectObjCoords(std::int16_t, float, float, float, std::int32_t, std::int32_t, std::int32_t) override {
        ++picks;
        if (throws) throw std::runtime_error("pick");
    }
    void ViewDirectionChanged(float, float, float) override {
        ++views;
        if (throws) throw std::runtime_error("view");
    }
};

class ThrowingHandler : public HeldDelay {
protected:
    ThrowingHandler() {
        AddBox(*c, {-10, -10, 0}, {30, 30, 0});
        c->Connect(&events);
        c->CenterView();
        c->SetPickMode(KV_ScenePane::PickModeObjects);
        c->PerformRefresh();
    }
    void Click() {
        Mouse(Kind::LeftDown, kMouseLeft, 280, 260);
        Mouse(Kind::LeftUp, 0, 280, 260);
    }
    /// As the window's timer does, but through ProcessEvents(), as in a host.
    void DispatchPress() {
        c->m_pWindow->PostPrivateMessage(kTimerMessage);
        c->ProcessEvents();
    }
    bool IsReadable() const {
        pollfd descriptor{c->EventDescriptor(), POLLIN, 0};
        return poll(&descriptor, 1, 0) == 1;
    }

    ThrowingEvents events;
};

TEST_F(ThrowingHandler, ReachesTheCallerAndTheNextPressIsDispatched) {
    Click();
    EXPECT_THROW(DispatchPress(), std::runtime_error);
    EXPECT_EQ(events.picks, 1);
    EXPECT_FALSE(c->m_mouseDispatch.pending);
    EXPECT_EQ(c->m_mouseDispatch.timerId, 0u);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
    events.throws = false;
    Click();
    DispatchPress();
    EXPECT_EQ(events.picks, 2) << "presses are only collected";
}

TEST_F(ThrowingHandler, LosesNoRepaintThatWaits) {
    Click();
    c->SetBackgroundColorsFourCorners(0, 0, 0, 0);
    c->PerformInvalidate();
    const int swaps = c.window->swaps;
    EXPECT_THROW(DispatchPress(), std::runtime_error);
    EXPECT_TRUE(IsReadable()) << "a loop that polls would not paint";
    c->ProcessEvents();
    EXPECT_GT(c.window->swaps, swaps);
    EXPECT_FALSE(IsReadable());
}

TEST_F(ThrowingHandler, OfADragNeitherMovesTwiceNorLosesTheRepaint) {
    c->TracingMode(1);
    c->SetRotationMode(KV_ScenePane::RotateAboutVertical);
    Mouse(Kind::RightDown, kMouseRight, 300, 240);
    events.throws = false;
    DispatchPress();
    events.throws = true;
    EXPECT_THROW(Mouse(Kind::Move, kMouseRight, 460, 240), std::runtime_error);
    EXPECT_EQ(c->m_nLastMouseX, 460);
    EXPECT_TRUE(IsReadable()) << "the view has moved and the window does not show it";
    events.throws = false;
    Mouse(Kind::Move, kMouseRight, 620, 240);  // 320 of 640 pixels from the press: a quarter turn
    ExpectNear(c->m_fAxisX, {0, 0, 1}, 1e-7, "wx");
}

// A mesh of the host whose triangles name vertices that it has not.
TEST_F(ThrowingHandler, OfAPickIsAsGoodAsAnEvent) {
    events.throws = false;
    c->m_mouseDispatch.onLeftDown = [](CKV_ScenePaneCtrl*, std::uint32_t, std::int32_t, std::int32_t) {
        throw std::out_of_range("triangle");
    };
    Click();
    EXPECT_THROW(DispatchPress(), std::out_of_range);
    EXPECT_FALSE(c->m_mouseDispatch.pending);
}

// Otherwise it would dispatch the first press after a quick off and on too early, and split a chord.
TEST_F(HeldDelay, SwitchedOffWithAPressPendingStopsItsTimer) {
    Mouse(Kind::RightDown, kMouseRight);
    const std::uint32_t timer = c->m_mouseDispatch.timerId;
    ASSERT_NE(timer, 0u);
    c->SetIGDRotation(1);
    EXPECT_EQ(c.window->stoppedTimers, std::vector<std::uint32_t>{}) << "on again changes nothing";
    c->SetIGDRotation(0);
    EXPECT_EQ(c.window->stoppedTimers, std::vector<std::uint32_t>{timer});
    c->SetIGDRotation(1);
    Mouse(Kind::RightDown, kMouseRight);
    EXPECT_NE(c->m_mouseDispatch.timerId, timer);
    EXPECT_EQ(c.window->stoppedTimers.size(), 1u);
}

// ---- timers that must not act any more

/// A timer of one millisecond: a single ProcessEvents() after Expire() processes every timer that still runs.
class ShortDelay : public DelayedScheme {
protected:
    ShortDelay() { c->m_mouseDispatch.delay = 1; }
    void Expire() {
        std::this_thread::sleep_until(Clock::now() + milliseconds(2));  // started before this call, so it is due then
        c->ProcessEvents();
    }
};

TEST_F(ShortDelay, DispatchesByTheFirstProcessEventsAfterIt) {
    Mouse(Kind::RightDown, kMouseRight);
    Expire();
    EXPECT_FALSE(c->m_mouseDispatch.pending);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
}

TEST_F(ShortDelay, SwitchedOffWithAPressPendingDropsThePress) {
    Mouse(Kind::RightDown, kMouseRight);
    c->SetIGDRotation(0);
    EXPECT_FALSE(c->m_mouseDispatch.pending);
    Expire();
    c->OnPrivateMessage(kTimerMessage);  // as if it had been queued before the timer was stopped
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_bRightButtonPressed, 0);
    Mouse(Kind::LeftDown, kMouseLeft);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "direct again, by the normal scheme";
}

TEST_F(ShortDelay, EndsItsTimerWithTheWindow) {
    Mouse(Kind::RightDown, kMouseRight);
    c.window->Destroy();
    std::string reason;
    ASSERT_TRUE(c->CreateControlWindow(&reason)) << reason;  // the next one has the same queue
    Expire();
    EXPECT_TRUE(c->m_mouseDispatch.pending) << "the timer of the former window dispatched it";
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "a message would have dispatched it";
}

TEST(SetIGDRotation, SetsTheModeOfTheDispatcher) {
    OffscreenControl c;
    EXPECT_EQ(c->m_mouseDispatch.mode, kDirectDispatch);
    c->SetIGDRotation(1);
    EXPECT_EQ(c->m_mouseDispatch.mode, kDelayedDispatch);
    c->SetIGDRotation(0);
    EXPECT_EQ(c->m_mouseDispatch.mode, kDirectDispatch);
    EXPECT_EQ(c->m_mouseDispatch.delay, 100u);
    EXPECT_EQ(c->m_mouseDispatch.moveThreshold, 5u);
    EXPECT_EQ(c->m_mouseDispatch.timerPeriod, 50u);
}

}  // namespace
