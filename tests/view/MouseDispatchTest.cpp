// The dispatcher by an injected clock: what arrives, when, with which flags and point.
#include "view/MouseDispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
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
using testing::ElementsAre;
using testing::IsEmpty;

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

/// A dispatcher with a clock, its timer, and handlers that note their calls.
class Desk {
public:
    MouseDispatch dispatch;
    std::vector<Call> calls;
    std::vector<std::uint32_t> timers;                      ///< their delays, as asked for
    std::function<void(const std::string&)> insideHandler;  ///< runs in each handler, with its name

    explicit Desk(std::int32_t mode = kDelayedDispatch) {
        dispatch.owner = reinterpret_cast<CKV_ScenePaneCtrl*>(this);  // never looked into
        dispatch.mode = mode;
        dispatch.onMove = Note<0>;
        dispatch.onLeftDown = Note<1>;
        dispatch.onMiddleDown = Note<2>;
        dispatch.onRightDown = Note<3>;
        dispatch.onLeftUp = Note<4>;
        dispatch.onMiddleUp = Note<5>;
        dispatch.onRightUp = Note<6>;
        dispatch.onDoubleClick = Note<7>;
        dispatch.onRightDoubleClick = Note<8>;
    }

    /// Lets the clock run; timers that are due at that very time have run.
    Desk& At(int milliseconds) {
        while (!m_due.empty() && m_due.front() <= milliseconds) {
            m_now = m_due.front();
            m_due.erase(m_due.begin());
            OnDispatchTimer(dispatch);
        }
        m_now = milliseconds;
        return *this;
    }
    Desk& Press(std::int32_t button, std::uint32_t flags, MousePoint point) {
        DispatchPress(dispatch, button, flags, point, [this](std::uint32_t delay) {
            timers.push_back(delay);
            m_due.push_back(m_now + static_cast<int>(delay));
            return static_cast<std::uint32_t>(70 + timers.size());
        });
        return *this;
    }
    Desk& Release(std::int32_t button, std::uint32_t flags, MousePoint point) {
        DispatchRelease(dispatch, button, flags, point);
        return *this;
    }
    Desk& Move(MousePoint point) {
        DispatchMove(dispatch, 0, point);
        return *this;
    }
    /// What was delivered since the last call, moves aside.
    std::vector<Call> Take() {
        std::vector<Call> taken = std::exchange(calls, {});
        std::erase_if(taken, [](const Call& call) { return call.handler == "Move"; });
        return taken;
    }

private:
    template <int Handler>
    static void Note(CKV_ScenePaneCtrl* owner, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        static const char* const kNames[] = {"Move",     "LeftDown", "MiddleDown",  "RightDown",       "LeftUp",
                                             "MiddleUp", "RightUp",  "DoubleClick", "RightDoubleClick"};
        auto* desk = reinterpret_cast<Desk*>(owner);
        desk->calls.push_back({kNames[Handler], flags, x, y, desk->m_now});
        if (desk->insideHandler) desk->insideHandler(kNames[Handler]);
    }

    int m_now = 0;
    std::vector<int> m_due;
};

constexpr MousePoint kHere{30, 40}, kThere{31, 41};

// ---- direct

TEST(DirectDispatch, DeliversPressesAndReleasesAtOnceWithTheirOwnFlagsAndPoints) {
    Desk desk(kDirectDispatch);
    desk.Press(kLeftButton, kMouseLeft, {1, 2}).Release(kLeftButton, kMouseShift, {3, 4});
    desk.Press(kMiddleButton, kMouseMiddle, {5, 6}).Release(kMiddleButton, 0, {7, 8});
    desk.Press(kRightButton, kMouseRight | kMouseCtrl, {9, 10}).Release(kRightButton, kMouseLeft, {-11, -12});
    EXPECT_THAT(desk.Take(),
                ElementsAre(Call{"LeftDown", 1, 1, 2}, Call{"LeftUp", 4, 3, 4}, Call{"MiddleDown", 16, 5, 6},
                            Call{"MiddleUp", 0, 7, 8}, Call{"RightDown", 10, 9, 10}, Call{"RightUp", 1, -11, -12}));
    EXPECT_THAT(desk.timers, IsEmpty());
    EXPECT_FALSE(desk.dispatch.pending);
}

TEST(DirectDispatch, NeverAddsTheMovedBit) {
    Desk desk(kDirectDispatch);
    desk.Move({0, 0}).Press(kLeftButton, kMouseLeft, {100, 100});
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100}));
}

class BothModes : public testing::TestWithParam<std::int32_t> {};

TEST_P(BothModes, MovesGoStraightToTheirHandlerAndAreKeptAfterwards) {
    Desk desk(GetParam());
    std::optional<MousePoint> seenInside;
    desk.insideHandler = [&](const std::string&) { seenInside = desk.dispatch.lastPoint; };
    desk.dispatch.lastPoint = {1, 1};
    DispatchMove(desk.dispatch, kMouseRight, {8, 9});
    EXPECT_THAT(desk.calls, ElementsAre(Call{"Move", kMouseRight, 8, 9}));
    ASSERT_TRUE(seenInside);
    EXPECT_EQ(seenInside->x, 1) << "the handler still finds the point before";
    EXPECT_EQ(desk.dispatch.lastPoint.x, 8);
    EXPECT_EQ(desk.dispatch.lastPoint.y, 9);
    EXPECT_TRUE(desk.dispatch.movedSinceCheck);
}

TEST_P(BothModes, DoubleClicksGoStraightToTheirHandlerAndTouchNothing) {
    Desk desk(GetParam());
    DispatchDoubleClick(desk.dispatch, kMouseLeft | kMouseCtrl, {8, 9});
    EXPECT_THAT(desk.calls, ElementsAre(Call{"DoubleClick", 9, 8, 9}));
    EXPECT_FALSE(desk.dispatch.pending);
    EXPECT_EQ(desk.dispatch.lastPoint.x, 0);
}

TEST_P(BothModes, WithoutAnOwnerNothingIsDelivered) {
    Desk desk(GetParam());
    desk.dispatch.owner = nullptr;
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere).Move(kThere);
    DispatchDoubleClick(desk.dispatch, 0, kHere);
    desk.At(1000).Release(kRightButton, 0, kHere);
    EXPECT_THAT(desk.calls, IsEmpty());
    EXPECT_FALSE(desk.dispatch.pending);
}

TEST_P(BothModes, MovesThatNobodyGetsAreNotKept) {
    Desk desk(GetParam());
    desk.dispatch.onMove = nullptr;
    desk.Move(kHere);
    EXPECT_EQ(desk.dispatch.lastPoint.x, 0);
    EXPECT_FALSE(desk.dispatch.movedSinceCheck);
}

TEST_P(BothModes, WithoutHandlersNothingIsDelivered) {
    Desk desk(GetParam());
    CKV_ScenePaneCtrl* const owner = desk.dispatch.owner;
    desk.dispatch = {};
    desk.dispatch.owner = owner;
    desk.dispatch.mode = GetParam();
    for (const std::int32_t button : {kLeftButton, kMiddleButton, kRightButton})
        desk.Press(button, 0x13, kHere).Release(button, 0x13, kHere).At(1000 * button).Release(button, 0, kHere);
    desk.Move(kHere);
    DispatchDoubleClick(desk.dispatch, 0, kHere);
    EXPECT_THAT(desk.calls, IsEmpty());
    EXPECT_FALSE(desk.dispatch.pending);
}

INSTANTIATE_TEST_SUITE_P(Dispatch, BothModes, testing::Values(kDirectDispatch, kDelayedDispatch),
                         [](const auto& row) { return row.param == kDirectDispatch ? "Direct" : "Delayed"; });

TEST(DirectDispatch, LeavesOutOnlyTheHandlerThatIsMissing) {
    Desk desk(kDirectDispatch);
    desk.dispatch.onLeftDown = nullptr;
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kThere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftUp", 0, 31, 41}));
}

TEST(DirectDispatch, AnUnknownButtonReachesNobody) {
    Desk desk(kDirectDispatch);
    desk.Press(0, kMouseLeft, kHere).Press(4, kMouseLeft, kHere).Release(4, 0, kHere);
    EXPECT_THAT(desk.calls, IsEmpty());
}

// ---- delayed: when

TEST(DelayedDispatch, DeliversAPressThatIsHeldStillAfterTheDelayWithItsOwnFlagsAndPoint) {
    Desk desk;
    desk.At(0).Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(desk.timers, ElementsAre(100u));
    EXPECT_EQ(desk.dispatch.timerId, 71u);
    EXPECT_EQ(desk.dispatch.pressFlags, kMouseLeft);
    for (const int early : {0, 49, 99}) EXPECT_THAT(desk.At(early).Take(), IsEmpty()) << early;
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));
    EXPECT_THAT(desk.At(149).Take(), IsEmpty());
}

TEST(DelayedDispatch, KnowsAllThreeButtons) {
    Desk desk;
    desk.Press(kMiddleButton, kMouseMiddle, {1, 2}).At(200).Press(kRightButton, kMouseRight | kMouseShift, {3, 4});
    EXPECT_THAT(desk.At(400).Take(), ElementsAre(Call{"MiddleDown", 16, 1, 2, 100}, Call{"RightDown", 6, 3, 4, 300}));
}

TEST(DelayedDispatch, TakesTheDelayFromItsRecord) {
    Desk desk;
    desk.dispatch.delay = 30;
    desk.Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(desk.timers, ElementsAre(30u));
    EXPECT_THAT(desk.At(30).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 30}));
}

TEST(DelayedDispatch, ClearsItsRecordBehindADelivery) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, kHere).Move({90, 90}).Release(kLeftButton, 0, kHere).At(100);
    const MouseDispatch& d = desk.dispatch;
    EXPECT_EQ(d.timerId, 0u);
    EXPECT_EQ(d.flags, 0u);
    EXPECT_FALSE(d.pending);
    EXPECT_EQ(d.pendingButton, 0);
    EXPECT_EQ(d.pressFlags, 0u);
    EXPECT_EQ(d.pressPoint.x, 0);
    EXPECT_EQ(d.pressPoint.y, 0);
    EXPECT_FALSE(d.releasePending);
    EXPECT_EQ(d.lastPoint.x, 0);
    EXPECT_EQ(d.lastPoint.y, 0);
    EXPECT_FALSE(d.movedSinceCheck);
    EXPECT_EQ(d.mode, kDelayedDispatch);
    EXPECT_EQ(d.delay, 100u);
}

TEST(DelayedDispatch, ATimerThatFindsNothingWaitingTouchesNothing) {
    Desk desk;
    desk.Move(kHere);
    desk.calls.clear();
    OnDispatchTimer(desk.dispatch);
    EXPECT_THAT(desk.calls, IsEmpty());
    EXPECT_EQ(desk.dispatch.lastPoint.x, 30);
    EXPECT_TRUE(desk.dispatch.movedSinceCheck);
}

// ---- delayed: chords

TEST(DelayedDispatch, ASecondButtonWithinTheDelayJoinsTheFirstWhichKeepsItsTimeAndPoint) {
    for (const int second : {0, 49, 50, 99}) {
        Desk desk;
        desk.At(0).Press(kLeftButton, kMouseLeft, kHere);
        desk.At(second).Press(kRightButton, kMouseLeft | kMouseRight, kThere);
        EXPECT_THAT(desk.At(500).Take(), ElementsAre(Call{"LeftDown", kMouseLeft | kMouseRight, 30, 40, 100}))
            << second;
        EXPECT_EQ(desk.timers.size(), 1u);
    }
}

TEST(DelayedDispatch, ASecondButtonAfterTheDelayComesOnItsOwn) {
    for (const int second : {100, 149, 150}) {
        Desk desk;
        desk.At(0).Press(kLeftButton, kMouseLeft, kHere);
        desk.At(second).Press(kRightButton, kMouseLeft | kMouseRight, kThere);
        EXPECT_THAT(desk.At(500).Take(),
                    ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100},
                                Call{"RightDown", kMouseLeft | kMouseRight, 31, 41, second + 100}));
    }
}

TEST(DelayedDispatch, AChordCarriesTheFlagsOfAllItsPressesAlsoThoseThatWereLetGo) {
    Desk desk;
    desk.Press(kRightButton, kMouseRight | kMouseShift, kHere);
    desk.At(30).Press(kMiddleButton, kMouseRight | kMouseMiddle, kHere);
    desk.At(60).Press(kLeftButton, kMouseLeft | kMouseCtrl, kHere);
    EXPECT_THAT(desk.At(100).Take(),
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
class TravelBeforeTheDelivery : public testing::TestWithParam<Travel> {};

TEST_P(TravelBeforeTheDelivery, SetsTheMovedBitFromFivePixels) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, {100, 100}).At(40).Move(GetParam().to);
    const std::uint32_t flags = GetParam().moved ? kMouseLeft | 0x100 : kMouseLeft;
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", flags, 100, 100, 100})) << "the press's own point";
}
INSTANTIATE_TEST_SUITE_P(Dispatch, TravelBeforeTheDelivery, testing::ValuesIn(kTravels),
                         [](const auto& row) { return row.param.name; });

TEST(DelayedDispatch, AMouseThatCameBackHasNotTravelled) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, {100, 100}).Move({200, 200}).Move({101, 101});
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100, 100}));
}

TEST(DelayedDispatch, AMoveSeenBeforeThePressIsNoTravel) {
    Desk desk;
    desk.Move({500, 500}).Press(kLeftButton, kMouseLeft, {100, 100});
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 100, 100, 100}));
}

TEST(DelayedDispatch, TheSecondPressOfAChordCountsAsTravel) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, {100, 100}).Press(kRightButton, kMouseRight, {104, 103});
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", 0x103, 100, 100, 100}));
}

TEST(DelayedDispatch, TakesTheThresholdFromItsRecord) {
    Desk desk;
    desk.dispatch.moveThreshold = 2;
    desk.Press(kLeftButton, kMouseLeft, {100, 100}).Move({102, 100});
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", 0x101, 100, 100, 100}));
}

// ---- delayed: releases

TEST(DelayedDispatch, AClickShorterThanTheDelayArrivesAsPressAndReleaseAfterIt) {
    struct {
        std::int32_t button;
        std::uint32_t flag;
        const char *down, *up;
    } const rows[] = {{kLeftButton, kMouseLeft, "LeftDown", "LeftUp"},
                      {kMiddleButton, kMouseMiddle, "MiddleDown", "MiddleUp"},
                      {kRightButton, kMouseRight, "RightDown", "RightUp"}};
    for (const auto& row : rows) {
        Desk desk;
        desk.Press(row.button, row.flag | kMouseCtrl, kHere).At(49).Release(row.button, 0, kThere);
        EXPECT_THAT(desk.At(99).Take(), IsEmpty());
        EXPECT_THAT(desk.At(500).Take(), ElementsAre(Call{row.down, row.flag | kMouseCtrl, 30, 40, 100},
                                                     Call{row.up, row.flag | kMouseCtrl, 30, 40, 100}));
    }
}

TEST(DelayedDispatch, AShortDragIsReleasedWithTheMovedBit) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, {100, 100}).Move({105, 100}).Release(kLeftButton, 0, {105, 100});
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"LeftDown", 0x101, 100, 100, 100}, Call{"LeftUp", 0x101, 100, 100, 100}));
}

TEST(DelayedDispatch, AnyReleaseWithinTheDelayReleasesEveryButtonOfTheChord) {
    Desk desk;
    desk.Press(kRightButton, kMouseRight, kHere).Press(kMiddleButton, kMouseRight | kMouseMiddle, kHere);
    desk.Press(kLeftButton, 0x13, kHere).At(60).Release(kMiddleButton, 0x3, kThere);
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"RightDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100},
                            Call{"MiddleUp", 0x13, 30, 40, 100}, Call{"RightUp", 0x13, 30, 40, 100}));
}

TEST(DelayedDispatch, AReleaseAfterTheDeliveryArrivesAtOnceWithoutFlagsAndPoint) {
    for (const int late : {100, 149}) {
        Desk desk;
        desk.Press(kRightButton, kMouseRight, kHere).At(late);
        desk.calls.clear();
        desk.Release(kRightButton, kMouseCtrl, kThere);
        EXPECT_THAT(desk.Take(), ElementsAre(Call{"RightUp", 0, 0, 0, late}));
    }
}

TEST(DelayedDispatch, EachButtonThatIsReleasedLateReachesItsOwnHandler) {
    Desk desk;
    desk.Release(kLeftButton, 0, kHere).Release(kMiddleButton, 0, kHere).Release(kRightButton, 0, kHere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftUp"}, Call{"MiddleUp"}, Call{"RightUp"}));
}

TEST(DelayedDispatch, ADoubleClickGoesPastThePressThatWaits) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, kHere).At(50);
    DispatchDoubleClick(desk.dispatch, kMouseLeft, kThere);
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"DoubleClick", kMouseLeft, 31, 41, 50}, Call{"LeftDown", kMouseLeft, 30, 40, 100}));
}

TEST(DelayedDispatch, WithoutThePressHandlerTheReleaseOfAClickStillArrives) {
    Desk desk;
    desk.dispatch.onLeftDown = nullptr;
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftUp", kMouseLeft, 30, 40, 100}));
}

// ---- switching

TEST(SetDispatchMode, OffDropsThePressThatWaits) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere).At(50);
    SetDispatchMode(desk.dispatch, kDirectDispatch);
    EXPECT_EQ(desk.dispatch.timerId, 0u);
    EXPECT_EQ(desk.dispatch.flags, 0u);
    EXPECT_FALSE(desk.dispatch.pending);
    EXPECT_FALSE(desk.dispatch.releasePending);
    EXPECT_EQ(desk.dispatch.lastPoint.x, 0);
    EXPECT_THAT(desk.At(500).Take(), IsEmpty()) << "the timer finds nothing";
    desk.Press(kRightButton, kMouseRight, kThere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"RightDown", kMouseRight, 31, 41, 500}));
}

TEST(SetDispatchMode, OffAndOnAgainLetsALaterReleaseReportTheOldPressPoint) {
    Desk desk;
    desk.Press(kLeftButton, kMouseLeft, kHere);
    SetDispatchMode(desk.dispatch, kDirectDispatch);
    SetDispatchMode(desk.dispatch, kDelayedDispatch);
    desk.Release(kLeftButton, kMouseCtrl, kThere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftUp", 0, 30, 40}));
}

TEST(SetDispatchMode, ToTheModeThatRunsChangesNothing) {
    Desk waiting;
    waiting.Press(kLeftButton, kMouseLeft, kHere);
    SetDispatchMode(waiting.dispatch, kDelayedDispatch);
    EXPECT_THAT(waiting.At(100).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));

    Desk direct(kDirectDispatch);
    direct.Move(kHere);
    SetDispatchMode(direct.dispatch, kDirectDispatch);
    EXPECT_EQ(direct.dispatch.lastPoint.x, 30);
}

// ---- handlers that call back

TEST(HandlerOfADelayedPress, ThatSwitchesTheDelayOffKeepsTheReleasesBack) {
    Desk desk;
    desk.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") SetDispatchMode(desk.dispatch, kDirectDispatch);
    };
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}));
}

TEST(HandlerOfADelayedRelease, ThatSwitchesTheDelayOffKeepsTheReleasesBehindItBack) {
    Desk desk;
    desk.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftUp") SetDispatchMode(desk.dispatch, kDirectDispatch);
    };
    desk.Press(kRightButton, kMouseRight, kHere).Press(kLeftButton, 0x13, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"RightDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100}));
    desk.Press(kLeftButton, kMouseLeft, kThere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 31, 41, 100})) << "direct from here on";
}

TEST(HandlerOfADelayedRelease, ThatClearsItsOwnerEndsTheDelivery) {
    Desk desk;
    desk.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftUp") desk.dispatch.owner = nullptr;
    };
    desk.Press(kLeftButton, 0x13, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"LeftDown", 0x13, 30, 40, 100}, Call{"LeftUp", 0x13, 30, 40, 100}));
}

TEST(HandlerOfADelayedPress, ThatSeesAnotherPressJoinsItToItsOwnAndIsNotCalledTwice) {
    Desk desk;
    desk.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") desk.Press(kRightButton, kMouseRight, {900, 900});
    };
    desk.Press(kLeftButton, kMouseLeft, kHere).Release(kLeftButton, 0, kHere);
    EXPECT_THAT(desk.At(1000).Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100},
                                                  Call{"LeftUp", 0x3, 30, 40, 100}, Call{"RightUp", 0x3, 30, 40, 100}))
        << "the releases read the flags anew";
    EXPECT_EQ(desk.timers.size(), 1u);
    EXPECT_FALSE(desk.dispatch.pending);
    EXPECT_EQ(desk.dispatch.flags, 0u);
}

TEST(HandlerOfADelayedPress, ThatSeesTheReleaseHasItDeliveredBehindItself) {
    Desk desk;
    desk.insideHandler = [&](const std::string& handler) {
        if (handler == "LeftDown") desk.Release(kLeftButton, 0, kThere);
    };
    desk.Press(kLeftButton, kMouseLeft, kHere);
    EXPECT_THAT(desk.At(100).Take(),
                ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 100}, Call{"LeftUp", kMouseLeft, 30, 40, 100}));
}

TEST(HandlerOfADirectPress, ThatSwitchesTheDelayOnHasTheNextPressWait) {
    Desk desk(kDirectDispatch);
    desk.insideHandler = [&](const std::string&) { SetDispatchMode(desk.dispatch, kDelayedDispatch); };
    desk.Press(kLeftButton, kMouseLeft, kHere).Press(kRightButton, kMouseRight, kThere);
    EXPECT_THAT(desk.Take(), ElementsAre(Call{"LeftDown", kMouseLeft, 30, 40, 0}));
    EXPECT_THAT(desk.At(100).Take(), ElementsAre(Call{"RightDown", kMouseRight, 31, 41, 100}));
}

}  // namespace
