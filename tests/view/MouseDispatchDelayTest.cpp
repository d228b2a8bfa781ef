// The delayed scheme in a whole control: on the real one-shot timer of an off-screen pane, read through its event
// descriptor, and by its private message.
#include <poll.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "view/CameraHelp.h"

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
    /// As a host does: sleeps on the descriptor, then lets the pane work, until nothing waits any more.
    void RunUntilDelivered() {
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        while (c->m_mouseDispatch.pending && Clock::now() < deadline) {
            pollfd readable{c->EventDescriptor(), POLLIN, 0};
            poll(&readable, 1, 1000);
            c->ProcessEvents();
        }
        ASSERT_FALSE(c->m_mouseDispatch.pending) << "the timer never came";
    }

    OffscreenControl c;
};

TEST_F(DelayedScheme, TheTimerDeliversAPressNotBeforeATenthOfASecond) {
    const auto pressed = Clock::now();
    Mouse(Kind::RightDown, kMouseRight);
    c->ProcessEvents();
    EXPECT_TRUE(c->m_mouseDispatch.pending);
    EXPECT_NE(c->m_mouseDispatch.timerId, 0u);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    RunUntilDelivered();
    EXPECT_GE(Clock::now() - pressed, milliseconds(100));
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate);
    EXPECT_TRUE(c.window->HasCapture());
}

TEST_F(DelayedScheme, LeftAndRightFiftyMillisecondsApartArriveAsOneLeftPressThatPans) {
    Mouse(Kind::LeftDown, kMouseLeft);
    std::this_thread::sleep_for(milliseconds(50));
    Mouse(Kind::RightDown, kMouseLeft | kMouseRight);
    RunUntilDelivered();
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_bRightButtonPressed, 0) << "no right press of its own";
}

TEST_F(DelayedScheme, LeftAndRightAHundredAndFiftyMillisecondsApartArriveOneByOne) {
    Mouse(Kind::LeftDown, kMouseLeft);
    RunUntilDelivered();
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle) << "a plain left press moves nothing";
    std::this_thread::sleep_for(milliseconds(50));
    Mouse(Kind::RightDown, kMouseLeft | kMouseRight);
    RunUntilDelivered();
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    EXPECT_EQ(c->m_bRightButtonPressed, 1) << "a right press of its own";
}

TEST_F(DelayedScheme, ALeftPressLongAfterTheRightOneFindsItTurningAndPans) {
    Mouse(Kind::RightDown, kMouseRight);
    RunUntilDelivered();
    ASSERT_EQ(c->m_nInteractionMode, ModeRotate);
    Mouse(Kind::LeftDown, kMouseLeft | kMouseRight);
    RunUntilDelivered();
    EXPECT_EQ(c->m_nInteractionMode, ModePan);
    Mouse(Kind::LeftUp, kMouseRight);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "the right button still holds the drag";
    Mouse(Kind::RightUp, 0);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(c.window->HasCapture());
}

TEST_F(DelayedScheme, ADragBeginsWhereTheButtonWentDownNotWhereTheMouseIsByThen) {
    Mouse(Kind::RightDown, kMouseRight, 300, 200);
    Mouse(Kind::Move, kMouseRight, 340, 230);
    EXPECT_EQ(c->m_fAxisX, (Float3{1, 0, 0})) << "nothing drags before the delivery";
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->m_nLastMouseX, 300);
    EXPECT_EQ(c->m_nLastMouseY, 200);
    c->SetRotationMode(1);
    Mouse(Kind::Move, kMouseRight, 340 + 280, 230);  // 320 of 640 pixels from the press: a quarter turn
    ExpectNear(c->m_fAxisX, {0, 0, 1}, 1e-7, "wx");
}

struct Delivered {
    std::uint32_t flags;
    std::int32_t x, y;
    bool operator==(const Delivered&) const = default;
};
std::vector<Delivered> g_delivered;
void Keep(CKV_ScenePaneCtrl*, std::uint32_t flags, std::int32_t x, std::int32_t y) {
    g_delivered.push_back({flags, x, y});
}

TEST_F(DelayedScheme, OnTheRealTimerAHeldPressHasNoMovedBitAndADraggedOneHas) {
    g_delivered.clear();
    c->m_mouseDispatch.onLeftDown = Keep;
    c->m_mouseDispatch.onLeftUp = Keep;
    Mouse(Kind::LeftDown, kMouseLeft, 10, 20);
    RunUntilDelivered();
    Mouse(Kind::LeftUp, 0, 10, 20);
    Mouse(Kind::LeftDown, kMouseLeft, 10, 20);
    Mouse(Kind::Move, kMouseLeft, 13, 24);
    Mouse(Kind::LeftUp, 0, 13, 24);
    RunUntilDelivered();
    EXPECT_EQ(g_delivered, (std::vector<Delivered>{{0x1, 10, 20}, {0, 0, 0}, {0x101, 10, 20}, {0x101, 10, 20}}));
}

TEST_F(DelayedScheme, SwitchedOffWhileAPressWaitsTheTimersMessageFindsNothing) {
    Mouse(Kind::RightDown, kMouseRight);
    c->SetIGDRotation(0);
    EXPECT_FALSE(c->m_mouseDispatch.pending);
    const auto end = Clock::now() + milliseconds(150);
    while (Clock::now() < end) {
        pollfd readable{c->EventDescriptor(), POLLIN, 0};
        poll(&readable, 1, 20);
        c->ProcessEvents();
    }
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    EXPECT_EQ(c->m_bRightButtonPressed, 0);
    Mouse(Kind::LeftDown, kMouseLeft);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "direct again, by the normal scheme";
}

// Else it would deliver the first press after a quick off and on too early, and tear a chord apart.
TEST_F(DelayedScheme, SwitchedOffWhileAPressWaitsStopsItsTimer) {
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

TEST_F(DelayedScheme, AnotherPrivateMessageDeliversNothing) {
    Mouse(Kind::RightDown, kMouseRight);
    c->OnPrivateMessage(kTimerMessage + 1);
    EXPECT_TRUE(c->m_mouseDispatch.pending);
}

TEST_F(DelayedScheme, ANumberOtherThanOneDelaysAsWell) {
    for (const std::int16_t on : {std::int16_t{2}, std::int16_t{-1}}) {
        c->SetIGDRotation(0);
        c->SetIGDRotation(on);
        EXPECT_EQ(c->m_nIgdRotation, on);
        Mouse(Kind::RightDown, kMouseRight);
        EXPECT_TRUE(c->m_mouseDispatch.pending) << on;
    }
}

TEST_F(DelayedScheme, APaneThatGoesWhileAPressWaitsTakesItsTimerAlong) {
    Mouse(Kind::RightDown, kMouseRight);
    c.window->Destroy();
    std::string reason;
    ASSERT_TRUE(c->CreateControlWindow(&reason)) << reason;  // the next one has the same queue
    const auto end = Clock::now() + milliseconds(200);
    while (Clock::now() < end) {
        pollfd readable{c->EventDescriptor(), POLLIN, 0};
        poll(&readable, 1, 20);
        c->ProcessEvents();
    }
    EXPECT_TRUE(c->m_mouseDispatch.pending) << "the former window's timer delivered it";
    EXPECT_EQ(c->m_nInteractionMode, ModeIdle);
    c->OnPrivateMessage(kTimerMessage);
    EXPECT_EQ(c->m_nInteractionMode, ModeRotate) << "it would have";
}

TEST(SetIGDRotation, SetsTheDispatchersMode) {
    OffscreenControl c;
    EXPECT_EQ(c->m_mouseDispatch.mode, 1);
    c->SetIGDRotation(1);
    EXPECT_EQ(c->m_mouseDispatch.mode, 2);
    c->SetIGDRotation(0);
    EXPECT_EQ(c->m_mouseDispatch.mode, 1);
    EXPECT_EQ(c->m_mouseDispatch.delay, 100u);
    EXPECT_EQ(c->m_mouseDispatch.moveThreshold, 5u);
    EXPECT_EQ(c->m_mouseDispatch.timerPeriod, 50u);
}

}  // namespace
