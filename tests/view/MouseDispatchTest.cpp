// The dispatcher on a clock of the test: which handler is called, when, with which flags and point.
#include "view/MouseDispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "KV_ScenePane/Input.h"

namespace {

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseMiddle;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;
using testing::ElementsAre, testing::IsEmpty;

struct Call {
    std::string handler;
    std::uint32_t flags = 0;
    std::int32_t x = 0, y = 0;
    int at = 0;  ///< milliseconds
    bool operator==(const Call&) const = default;
};
void PrintTo(const Call& call, std::ostream* out) {
    *out << call.handler << " flags " << call.flags << " at (" << call.x << ", " << call.y << "), " << call.at << " ms";
}

/// A dispatcher with a clock, its timer, and handlers that record their calls.
class TestDispatcher {
public:
    MouseDispatch dispatch;
    std::vector<Call> calls;
    std::vector<std::uint32_t> timers;                      ///< the delays of those that were started
    std::function<void(const std::string&)> insideHandler;  ///< runs in each handler, with its name

    explicit TestDispatcher(std::int32_t mode = kDelayedDispatch) {
        dispatch.owner = reinterpret_cast<CKV_ScenePaneCtrl*>(this);  // never dereferenced
        dispatch.mode = mode;
        dispatch.onMove = Record<0>;
        dispatch.onLeftDown = Record<1>;
        dispatch.onMiddleDown = Record<2>;
        dispatch.onRightDown = Record<3>;
        dispatch.onLeftUp = Record<4>;
        dispatch.onMiddleUp = Record<5>;
        dispatch.onRightUp = Record<6>;
        dispatch.onDoubleClick = Record<7>;
        dispatch.onRightDoubleClick = Record<8>;
    }

    /// Advances the clock; timers that are due at that time have run.
    TestDispatcher& At(int milliseconds) {
        while (!m_due.empty() && m_due.front() <= milliseconds) {
            m_now = m_due.front();
            m_due.erase(m_due.begin());
            OnDispatchTimer(dispatch);
        }
        m_now = milliseconds;
        return *this;
    }
    TestDispatcher& Press(std::int32_t button, std::uint32_t flags, MousePoint point) {
        DispatchPress(dispatch, button, flags, point, [this](std::uint32_t delay) {
            timers.push_back(delay);
            m_due.push_back(m_now + static_cast<int>(delay));
            return static_cast<std::uint32_t>(70 + timers.size());
        });
        return *this;
    }
    TestDispatcher& Release(std::int32_t button, std::uint32_t flags, MousePoint point) {
        return DispatchRelease(dispatch, button, flags, point), *this;
    }
    TestDispatcher& Move(MousePoint point) { return DispatchMove(dispatch, 0, point), *this; }
    /// The calls since the last NewCalls(), without moves.
    std::vector<Call> NewCalls() {
        std::vector<Call> newCalls = std::exchange(calls, {});
        std::erase_if(newCalls, [](const Call& call) { return call.handler == "Move"; });
        return newCalls;
    }

private:
    template <int Handler>
    static void Record(CKV_ScenePaneCtrl* owner, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        static const char* const kNames[] = {"Move",     "LeftDown", "MiddleDown",  "RightDown",       "LeftUp",
                                             "MiddleUp", "RightUp",  "DoubleClick", "RightDoubleClick"};
        auto* mouse = reinterpret_cast<TestDispatcher*>(owner);
        mouse->calls.push_back({kNames[Handler], flags, x, y, mouse->m_now});
        if (mouse->insideHandler) mouse->insideHandler(kNames[Handler]);
    }

    int m_now = 0;
    std::vector<int> m_due;
};

constexpr MousePoint kHere{30, 40}, kThere{31, 41};

// ---- direct

TEST(DirectDispatch, CallsTheHandlersAtOnceWithTheFlagsAndPointsOfTheInput) {
    TestDispatcher mouse(kDirectDispatch);
    mouse.Press(kLeftButton, kMouseLeft, {1, 2}).Release(kLeftButton, kMouseShift, {3, 4});
    mouse.Press(kMiddleButton, kMouseMiddle, {5, 6}).Release(kMiddleButton, 0, {7, 8});
    mouse.Press(kRightButton, kMouseRight | kMouseCtrl, {9, 10}).Release(kRightButton, kMouseLeft, {-11, -12});
    EXPECT_THAT(mouse.NewCalls(),
                ElementsAre(Call{"LeftDown", 1, 1, 2}, Call{"LeftUp", 4, 3, 4}, Call{"MiddleDown", 16, 5, 6},
                            Call{"MiddleUp", 0, 7, 8}, Call{"RightDown", 10, 9, 10}, Call{"RightUp", 1, -11, -12}));
    EXPECT_THAT(mouse.timers, IsEmpty());
    EXPECT_FALSE(mouse.dispatch.pending);
}

TEST(DirectDispatch, NeverAddsTheMovedBit) {
    TestDispatcher mouse(kDirectDispatch);
    mouse.Move({0, 0}).Press(kLeftButton, kMouseLeft, {100, 100});
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100}));
}

class BothModes : public testing::TestWithParam<std::int32_t> {};

TEST_P(BothModes, MovesAreDispatchedAtOnceAndStoredAfterTheHandler) {
    TestDispatcher mouse(GetParam());
    std::optional<MousePoint> seenInside;
    mouse.insideHandler = [&](const std::string&) { seenInside = mouse.dispatch.lastPoint; };
    mouse.dispatch.lastPoint = {1, 1};
    DispatchMove(mouse.dispatch, kMouseRight, {8, 9});
    EXPECT_THAT(mouse.calls, ElementsAre(Call{"Move", kMouseRight, 8, 9}));
    ASSERT_TRUE(seenInside);
    EXPECT_EQ(seenInside->x, 1) << "the handler still reads the point before";
    EXPECT_EQ(mouse.dispatch.lastPoint.x, 8);
    EXPECT_EQ(mouse.dispatch.lastPoint.y, 9);
    EXPECT_TRUE(mouse.dispatch.movedSinceCheck);
}

TEST_P(BothModes, DoubleClicksAreDispatchedAtOnceAndChangeNoState) {
    TestDispatcher mouse(GetParam());
    DispatchDoubleClick(mouse.dispatch, kMouseLeft | kMouseCtrl, {8, 9});
    EXPECT_THAT(mouse.calls, ElementsAre(Call{"DoubleClick", 9, 8, 9}));
    EXPECT_FALSE(mouse.dispatch.pending);
    EXPECT_EQ(mouse.dispatch.lastPoint.x, 0);
}

TEST_P(BothModes, WithoutAnOwnerNothingIsDispatched) {
    TestDispatcher mouse(GetParam());
    mouse.dispatch.owner = nullptr;
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere).Move(kThere);
    DispatchDoubleClick(mouse.dispatch, 0, kHere);
    mouse.At(1000).Release(kRightButton, 0, kHere);
    EXPECT_THAT(mouse.calls, IsEmpty());
    EXPECT_FALSE(mouse.dispatch.pending);
}

TEST_P(BothModes, MovesWithoutAHandlerAreNotStored) {
    TestDispatcher mouse(GetParam());
    mouse.dispatch.onMove = nullptr;
    mouse.Move(kHere);
    EXPECT_EQ(mouse.dispatch.lastPoint.x, 0);
    EXPECT_FALSE(mouse.dispatch.movedSinceCheck);
}

TEST_P(BothModes, WithoutHandlersNothingIsDispatched) {
    TestDispatcher mouse(GetParam());
    mouse.dispatch = {.owner = mouse.dispatch.owner, .mode = GetParam()};
    for (const std::int32_t button : {kLeftButton, kMiddleButton, kRightButton})
        mouse.Press(button, 0x13, kHere).Release(button, 0x13, kHere).At(1000 * button).Release(button, 0, kHere);
    mouse.Move(kHere);
    DispatchDoubleClick(mouse.dispatch, 0, kHere);
    EXPECT_THAT(mouse.calls, IsEmpty());
    EXPECT_FALSE(mouse.dispatch.pending);
}

INSTANTIATE_TEST_SUITE_P(Dispatch, BothModes, testing::Values(kDirectDispatch, kDelayedDispatch),
                         [](const auto& row) { return row.param == kDirectDispatch ? "Direct" : "Delayed"; });

TEST(DirectDispatch, SkipsOnlyTheMissingHandler) {
    TestDispatcher mouse(kDirectDispatch);
    mouse.dispatch.onLeftDown = nullptr;
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kThere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftUp", 0, 31, 41}));
}

TEST(DirectDispatch, AnUnknownButtonCallsNoHandler) {
    TestDispatcher mouse(kDirectDispatch);
    mouse.Press(0, kMouseLeft, kHere).Press(4, kMouseLeft, kHere).Release(4, 0, kHere);
    EXPECT_THAT(mouse.calls, IsEmpty());
}

// ---- delayed: time

TEST(DelayedDispatch, APressHeldStillIsDispatchedAfterTheDelayWithItsFlagsAndPoint) {
    TestDispatcher mouse;
    mouse.At(0).Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(mouse.timers, ElementsAre(100u));
    EXPECT_EQ(mouse.dispatch.timerId, 71u);
    EXPECT_EQ(mouse.dispatch.pressFlags, kMouseLeft);
    for (const int early : {0, 49, 99}) EXPECT_THAT(mouse.At(early).NewCalls(), IsEmpty()) << early;
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));
    EXPECT_THAT(mouse.At(149).NewCalls(), IsEmpty());
}

TEST(DelayedDispatch, CallsTheHandlerOfTheMiddleAndTheRightButton) {
    TestDispatcher mouse;
    mouse.Press(kMiddleButton, kMouseMiddle, {1, 2}).At(200).Press(kRightButton, kMouseRight | kMouseShift, {3, 4});
    EXPECT_THAT(mouse.At(400).NewCalls(),
                ElementsAre(Call{"MiddleDown", 16, 1, 2, 100}, Call{"RightDown", 6, 3, 4, 300}));
}

TEST(DelayedDispatch, UsesTheDelayOfTheRecord) {
    TestDispatcher mouse;
    mouse.dispatch.delay = 30;
    mouse.Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(mouse.timers, ElementsAre(30u));
    EXPECT_THAT(mouse.At(30).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 30}));
}

TEST(DelayedDispatch, ClearsTheRecordAfterADispatch) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, kHere).Move({90, 90}).Release(kLeftButton, 0, kHere).At(100);
    const MouseDispatch& d = mouse.dispatch;
    EXPECT_EQ(d.timerId, 0u);
    EXPECT_EQ(d.flags, 0u);
    EXPECT_FALSE(d.pending);
    EXPECT_EQ(d.pendingButton, 0);
    EXPECT_EQ(d.pressFlags, 0u);
    EXPECT_TRUE(d.pressPoint.x == 0 && d.pressPoint.y == 0);
    EXPECT_FALSE(d.releasePending);
    EXPECT_TRUE(d.lastPoint.x == 0 && d.lastPoint.y == 0);
    EXPECT_FALSE(d.movedSinceCheck);
    EXPECT_EQ(d.mode, kDelayedDispatch);
    EXPECT_EQ(d.delay, 100u);
}

TEST(DelayedDispatch, ATimerWithNothingPendingChangesNothing) {
    TestDispatcher mouse;
    mouse.Move(kHere);
    mouse.calls.clear();
    OnDispatchTimer(mouse.dispatch);
    EXPECT_THAT(mouse.calls, IsEmpty());
    EXPECT_EQ(mouse.dispatch.lastPoint.x, 30);
    EXPECT_TRUE(mouse.dispatch.movedSinceCheck);
}

// ---- delayed: chords

TEST(DelayedDispatch, ASecondButtonWithinTheDelayAddsItsFlagsToTheFirstPress) {
    for (const int second : {0, 49, 50, 99}) {
        TestDispatcher mouse;
        mouse.At(0).Press(kLeftButton, kMouseLeft, kHere);
        mouse.At(second).Press(kRightButton, kMouseLeft | kMouseRight, kThere);
        EXPECT_THAT(mouse.At(500).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft | kMouseRight, 30, 40, 100}))
            << second;
        EXPECT_EQ(mouse.timers.size(), 1u);
    }
}

TEST(DelayedDispatch, ASecondButtonAfterTheDelayIsASeparatePress) {
    for (const int second : {100, 149, 150}) {
        TestDispatcher mouse;
        mouse.At(0).Press(kLeftButton, kMouseLeft, kHere);
        mouse.At(second).Press(kRightButton, kMouseLeft | kMouseRight, kThere);
        EXPECT_THAT(mouse.At(500).NewCalls(),
                    ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100},
                                Call{"RightDown", kMouseLeft | kMouseRight, 31, 41, second + 100}));
    }
}

TEST(DelayedDispatch, AChordHasTheFlagsOfAllItsPresses) {
    TestDispatcher mouse;
    mouse.Press(kRightButton, kMouseRight | kMouseShift, kHere);
    mouse.At(30).Press(kMiddleButton, kMouseRight | kMouseMiddle, kHere);
    mouse.At(60).Press(kLeftButton, kMouseLeft | kMouseCtrl, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"RightDown", kMouseRight | kMouseShift | kMouseMiddle | kMouseLeft | kMouseCtrl, 30,
                                 40, 100}));
}

// ---- delayed: travel

struct Travel {
    const char* name;
    MousePoint to;
    bool moved;
};
void PrintTo(const Travel& row, std::ostream* out) { *out << row.name; }
const Travel kTravels[] = {
    {"None", {100, 100}, false},        {"FourRight", {104, 100}, false}, {"FiveRight", {105, 100}, true},
    {"FourUp", {100, 96}, false},       {"FiveUp", {100, 95}, true},      {"ThreeAndFour", {97, 104}, true},
    {"ThreeAndThree", {97, 97}, false}, {"FourAndTwo", {104, 98}, false}, {"FarOutside", {-3000, 9000}, true},
};
class TravelBeforeTheDispatch : public testing::TestWithParam<Travel> {};

TEST_P(TravelBeforeTheDispatch, SetsTheMovedBitFromFivePixels) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, {100, 100}).At(40).Move(GetParam().to);
    const std::uint32_t flags = GetParam().moved ? kMouseLeft | 0x100 : kMouseLeft;
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", flags, 100, 100, 100}))
        << "the point of the press";
}
INSTANTIATE_TEST_SUITE_P(Dispatch, TravelBeforeTheDispatch, testing::ValuesIn(kTravels),
                         [](const auto& row) { return row.param.name; });

TEST(DelayedDispatch, AMouseThatCameBackHasNotTravelled) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, {100, 100}).Move({200, 200}).Move({101, 101});
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100, 100}));
}

TEST(DelayedDispatch, AMoveBeforeThePressIsNoTravel) {
    TestDispatcher mouse;
    mouse.Move({500, 500}).Press(kLeftButton, kMouseLeft, {100, 100});
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100, 100}));
}

TEST(DelayedDispatch, TheSecondPressOfAChordCountsAsTravel) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, {100, 100}).Press(kRightButton, kMouseRight, {104, 103});
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", 0x103, 100, 100, 100}));
}

TEST(DelayedDispatch, UsesTheThresholdOfTheRecord) {
    TestDispatcher mouse;
    mouse.dispatch.moveThreshold = 2;
    mouse.Press(kLeftButton, kMouseLeft, {100, 100}).Move({102, 100});
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", 0x101, 100, 100, 100}));
}

// ---- delayed: releases

TEST(DelayedDispatch, AClickShorterThanTheDelayIsDispatchedAsPressAndReleaseAfterIt) {
    struct Row {
        std::int32_t button;
        std::uint32_t flag;
        const char *down, *up;
    };
    const Row rows[] = {{kLeftButton, kMouseLeft, "LeftDown", "LeftUp"},
                        {kMiddleButton, kMouseMiddle, "MiddleDown", "MiddleUp"},
                        {kRightButton, kMouseRight, "RightDown", "RightUp"}};
    for (const auto& row : rows) {
        TestDispatcher mouse;
        mouse.Press(row.button, row.flag | kMouseCtrl, kHere).At(49).Release(row.button, 0, kThere);
        EXPECT_THAT(mouse.At(99).NewCalls(), IsEmpty());
        EXPECT_THAT(mouse.At(500).NewCalls(), ElementsAre(Call{row.down, row.flag | kMouseCtrl, 30, 40, 100},
                                                          Call{row.up, row.flag | kMouseCtrl, 30, 40, 100}));
    }
}

TEST(DelayedDispatch, AShortDragIsReleasedWithTheMovedBit) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, {100, 100}).Move({105, 100}).Release(kLeftButton, 0, {105, 100});
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"LeftDown", 0x101, 100, 100, 100}, Call{"LeftUp", 0x101, 100, 100, 100}));
}

TEST(DelayedDispatch, AnyReleaseWithinTheDelayReleasesEveryButtonOfTheChord) {
    TestDispatcher mouse;
    mouse.Press(kRightButton, kMouseRight, kHere).Press(kMiddleButton, kMouseRight | kMouseMiddle, kHere);
    mouse.Press(kLeftButton, 0x13, kHere).At(60).Release(kMiddleButton, 0x3, kThere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"RightDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100},
                            Call{"MiddleUp", 0x13, 30, 40, 100}, Call{"RightUp", 0x13, 30, 40, 100}));
}

TEST(DelayedDispatch, AReleaseAfterTheDispatchOfItsPressHasNeitherFlagsNorPoint) {
    for (const int late : {100, 149}) {
        TestDispatcher mouse;
        mouse.Press(kRightButton, kMouseRight, kHere).At(late);
        mouse.calls.clear();
        mouse.Release(kRightButton, kMouseCtrl, kThere);
        EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"RightUp", 0, 0, 0, late}));
    }
}

TEST(DelayedDispatch, ALateReleaseCallsTheHandlerOfItsButton) {
    TestDispatcher mouse;
    mouse.Release(kLeftButton, 0, kHere).Release(kMiddleButton, 0, kHere).Release(kRightButton, 0, kHere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftUp"}, Call{"MiddleUp"}, Call{"RightUp"}));
}

TEST(DelayedDispatch, ADoubleClickIsDispatchedBeforeAPendingPress) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, kHere).At(50);
    DispatchDoubleClick(mouse.dispatch, kMouseLeft, kThere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"DoubleClick", kMouseLeft, 31, 41, 50}, Call{"LeftDown", kMouseLeft, 30, 40, 100}));
}

TEST(DelayedDispatch, WithoutAPressHandlerTheReleaseOfAClickIsDispatched) {
    TestDispatcher mouse;
    mouse.dispatch.onLeftDown = nullptr;
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftUp", kMouseLeft, 30, 40, 100}));
}

// ---- switching

TEST(SetDispatchMode, ToDirectDropsThePendingPress) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere).At(50);
    SetDispatchMode(mouse.dispatch, kDirectDispatch);
    EXPECT_EQ(mouse.dispatch.timerId, 0u);
    EXPECT_EQ(mouse.dispatch.flags, 0u);
    EXPECT_FALSE(mouse.dispatch.pending);
    EXPECT_FALSE(mouse.dispatch.releasePending);
    EXPECT_EQ(mouse.dispatch.lastPoint.x, 0);
    EXPECT_THAT(mouse.At(500).NewCalls(), IsEmpty()) << "the timer finds nothing";
    mouse.Press(kRightButton, kMouseRight, kThere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"RightDown", kMouseRight, 31, 41, 500}));
}

TEST(SetDispatchMode, ToDirectAndBackKeepsThePressPointForTheNextRelease) {
    TestDispatcher mouse;
    mouse.Press(kLeftButton, kMouseLeft, kHere);
    SetDispatchMode(mouse.dispatch, kDirectDispatch);
    SetDispatchMode(mouse.dispatch, kDelayedDispatch);
    mouse.Release(kLeftButton, kMouseCtrl, kThere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftUp", 0, 30, 40}));
}

TEST(SetDispatchMode, ToTheCurrentModeChangesNothing) {
    TestDispatcher waiting;
    waiting.Press(kLeftButton, kMouseLeft, kHere);
    SetDispatchMode(waiting.dispatch, kDelayedDispatch);
    EXPECT_THAT(waiting.At(100).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));

    TestDispatcher direct(kDirectDispatch);
    direct.Move(kHere);
    SetDispatchMode(direct.dispatch, kDirectDispatch);
    EXPECT_EQ(direct.dispatch.lastPoint.x, 30);
}

// ---- handlers that call back

TEST(HandlerOfADelayedPress, ThatSwitchesToDirectSuppressesTheReleases) {
    TestDispatcher mouse;
    mouse.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") SetDispatchMode(mouse.dispatch, kDirectDispatch);
    };
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));
}

TEST(HandlerOfADelayedRelease, ThatSwitchesToDirectSuppressesTheRemainingReleases) {
    TestDispatcher mouse;
    mouse.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftUp") SetDispatchMode(mouse.dispatch, kDirectDispatch);
    };
    mouse.Press(kRightButton, kMouseRight, kHere).Press(kLeftButton, 0x13, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"RightDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100}));
    mouse.Press(kLeftButton, kMouseLeft, kThere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 31, 41, 100})) << "now in direct mode";
}

TEST(HandlerOfADelayedRelease, ThatClearsTheOwnerEndsTheDispatch) {
    TestDispatcher mouse;
    mouse.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftUp") mouse.dispatch.owner = nullptr;
    };
    mouse.Press(kLeftButton, 0x13, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"LeftDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100}));
}

TEST(HandlerOfADelayedPress, ThatDispatchesAnotherPressAddsItsFlagsToTheReleases) {
    TestDispatcher mouse;
    mouse.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") mouse.Press(kRightButton, kMouseRight, {900, 900});
    };
    mouse.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(mouse.At(1000).NewCalls(),
                ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}, Call{"LeftUp", 0x3, 30, 40, 100},
                            Call{"RightUp", 0x3, 30, 40, 100}))
        << "the releases use the flags after the handler";
    EXPECT_EQ(mouse.timers.size(), 1u);
    EXPECT_FALSE(mouse.dispatch.pending);
    EXPECT_EQ(mouse.dispatch.flags, 0u);
}

TEST(HandlerOfADelayedPress, ThatDispatchesItsReleaseHasItCalledAfterwards) {
    TestDispatcher mouse;
    mouse.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") mouse.Release(kLeftButton, 0, kThere);
    };
    mouse.Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(mouse.At(100).NewCalls(),
                ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}, Call{"LeftUp", kMouseLeft, 30, 40, 100}));
}

TEST(HandlerOfADirectPress, ThatSwitchesToDelayedMakesTheNextPressPending) {
    TestDispatcher mouse(kDirectDispatch);
    mouse.insideHandler = [&](const std::string&) { SetDispatchMode(mouse.dispatch, kDelayedDispatch); };
    mouse.Press(kLeftButton, kMouseLeft, kHere).Press(kRightButton, kMouseRight, kThere);
    EXPECT_THAT(mouse.NewCalls(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 0}));
    EXPECT_THAT(mouse.At(100).NewCalls(), ElementsAre(Call{"RightDown", kMouseRight, 31, 41, 100}));
}

// ---- handlers that throw

TEST(ThrowingMouseHandler, ClearsThePressAndStillGetsItsReleases) {
    TestDispatcher dispatcher;
    dispatcher.insideHandler = [](const std::string& handler) {
        if (handler == "LeftDown") throw std::runtime_error("press");
        if (handler == "LeftUp") throw std::logic_error("release");
    };
    dispatcher.Press(kLeftButton, kMouseLeft, {10, 20}).Press(kRightButton, kMouseLeft | kMouseRight, {10, 20});
    dispatcher.Release(kLeftButton, kMouseRight, {10, 20});
    EXPECT_THROW(dispatcher.At(100), std::runtime_error) << "the first exception";
    std::vector<std::string> handlers;
    for (const Call& call : dispatcher.NewCalls()) handlers.push_back(call.handler);
    EXPECT_THAT(handlers, ElementsAre("LeftDown", "LeftUp", "RightUp"));
    EXPECT_FALSE(dispatcher.dispatch.pending);
    EXPECT_FALSE(dispatcher.dispatch.releasePending);
    EXPECT_EQ(dispatcher.dispatch.flags, 0u);
    EXPECT_EQ(dispatcher.dispatch.timerId, 0u);

    dispatcher.insideHandler = nullptr;
    dispatcher.Press(kRightButton, kMouseRight, {1, 2}).At(300);
    const std::vector<Call> later = dispatcher.NewCalls();
    ASSERT_EQ(later.size(), 1u) << "presses are only collected";
    EXPECT_EQ(later[0].handler, "RightDown");
}

TEST(ThrowingMouseHandler, OfAMoveLeavesItsPointAsTheLast) {
    TestDispatcher dispatcher;
    dispatcher.insideHandler = [](const std::string&) { throw std::runtime_error("move"); };
    EXPECT_THROW(dispatcher.Move({30, 40}), std::runtime_error);
    EXPECT_EQ(dispatcher.dispatch.lastPoint.x, 30);
    EXPECT_TRUE(dispatcher.dispatch.movedSinceCheck);
}

TEST(ThrowingMouseHandler, OrATimerThatCannotBeStartedLeavesNoPressPending) {
    MouseDispatch dispatch;
    dispatch.mode = kDelayedDispatch;
    const auto noTimer = [](std::uint32_t) -> std::uint32_t { throw std::runtime_error("no timer"); };
    EXPECT_THROW(DispatchPress(dispatch, kLeftButton, kMouseLeft, {}, noTimer), std::runtime_error);
    EXPECT_FALSE(dispatch.pending);
}

}  // namespace
