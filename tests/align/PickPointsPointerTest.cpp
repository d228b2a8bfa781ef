// Alignment by picked points with the real pointer and keyboard in a window, from the start to AlignmentDone, against
// the same by calls on an off-screen viewer.
#include <array>
#include <string>

#include "align/PickScene.h"
#include "support/XvfbServer.h"
#include "view/UserInput.h"

// After the others: their macros would replace names in those.
#include "support/ShownCursor.h"

using KV_ScenePane::kKeyDelete;
using KV_ScenePane::kKeyEscape;
using KV_ScenePane::kKeySpace;

namespace {

constexpr auto L = Button::Left, R = Button::Right;

/// A user with the plates of a PickControl.
struct Operator {
    explicit Operator(std::unique_ptr<UserInput> input) : user(std::move(input)), viewer(user->Viewer()) {
        viewer->PerformRefresh();
        SetPickScene(*viewer);
        viewer->Connect(&host);
        viewer->PerformRefresh();
    }
    ~Operator() { viewer->Connect(nullptr); }
    Operator(const Operator&) = delete;
    Operator& operator=(const Operator&) = delete;

    void Click(int x, int y) {
        user->MoveTo(x, y);
        user->Press(L);
        EndDispatchDelay(viewer);
        user->Release(L);
    }
    void Drag(Button button, int fromX, int fromY, int toX, int toY) {
        user->MoveTo(fromX, fromY);
        user->Press(button);
        EndDispatchDelay(viewer);
        user->MoveTo((fromX + toX) / 2, (fromY + toY) / 2);
        user->MoveTo(toX, toY);
        user->Release(button);
    }
    void PickMoving() {
        for (const PixelPair& pair : kQuarterTurn) Click(pair.movingX, pair.movingY);
    }
    void PickFixed() {
        for (const PixelPair& pair : kQuarterTurn) Click(pair.fixedX, pair.fixedY);
    }
    [[nodiscard]] std::array<float, 16> Trafo() const {
        std::array<float, 16> v{};
        EXPECT_EQ(viewer->GetTrafoOfScan(kMovingPlate, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8],
                                         &v[9], &v[10], &v[11], &v[12], &v[13], &v[14], &v[15]),
                  0);
        return v;
    }

    const std::unique_ptr<UserInput> user;
    TestControl& viewer;
    AlignHost host;
};

bool SamePoint(const KV_ScenePane::AlignmentPoint& a, const KV_ScenePane::AlignmentPoint& b) {
    return std::ranges::equal(a.point, b.point) && std::ranges::equal(a.normal, b.normal);
}

class PickPointsUnderThePointer : public testing::Test {
protected:
    /// Both users do the same.
    void Both(const std::function<void(Operator&)>& script) {
        for (Operator* const each : {&pointer, &calls}) script(*each);
    }
    /// Both have aligned, by the same points to the last bit.
    void ExpectTheSameAlignment(std::size_t pairs) {
        for (const Operator* const each : {&pointer, &calls}) {
            EXPECT_EQ(each->host.done, 1);
            EXPECT_EQ(each->viewer->m_nInteractionMode, ModeIdle);
            EXPECT_TRUE(each->viewer->m_vInteractionDlgs.empty());
            EXPECT_FALSE(each->viewer.window->HasCapture());
            EXPECT_TRUE(each->viewer->m_lastAlignment.isFound);
        }
        const auto &a = pointer.viewer->m_lastAlignment, &b = calls.viewer->m_lastAlignment;
        ASSERT_EQ(a.pairs.size(), pairs);
        ASSERT_EQ(b.pairs.size(), pairs);
        for (std::size_t i = 0; i < pairs; ++i) {
            EXPECT_TRUE(SamePoint(a.pairs[i].moving, b.pairs[i].moving)) << i;
            EXPECT_TRUE(SamePoint(a.pairs[i].fixed, b.pairs[i].fixed)) << i;
        }
        EXPECT_EQ(a.residuals, b.residuals);
        EXPECT_TRUE(std::ranges::equal(a.transform, b.transform));
        EXPECT_EQ(pointer.Trafo(), calls.Trafo());
    }
    void ExpectQuarterTurn() const {
        const auto trafo = pointer.Trafo();
        for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(trafo[i], kQuarterTurnTrafo[i], 1e-5) << i;
    }

    Operator pointer{MakePointerInput()}, calls{MakeCallInput()};
};

TEST_F(PickPointsUnderThePointer, AlignAsByCalls) {
    Both([](Operator& who) {
        who.viewer->AlignPickPoints();
        who.PickMoving();
        who.user->Type(kKeySpace);
        EXPECT_EQ(who.host.done, 0);
        who.PickFixed();
    });
    ExpectTheSameAlignment(3);
    ExpectQuarterTurn();
}

TEST_F(PickPointsUnderThePointer, AreDroppedByDeleteAndPickedAgain) {
    Both([](Operator& who) {
        who.viewer->AlignPickPoints();
        who.user->Type(kKeySpace);  // there is no point yet
        who.Click(150, 200);
        who.user->Type(kKeyDelete);
        who.PickMoving();
        who.Click(210, 180);
        who.user->Type(kKeyDelete);
        who.user->Type(kKeySpace);
        who.Click(450, 200);
        who.user->Type(kKeyDelete);
        who.user->Type(kKeyDelete);
        who.PickFixed();
    });
    ExpectTheSameAlignment(3);
    ExpectQuarterTurn();
}

TEST_F(PickPointsUnderThePointer, ArePickedInViewsThatCtrlDragsHaveChanged) {
    Both([](Operator& who) {
        who.viewer->AlignPickPoints();
        who.PickMoving();
        who.user->HoldCtrl(true);
        who.Drag(L, 300, 200, 330, 225);
        who.Drag(R, 300, 200, 280, 240);
        who.user->HoldCtrl(false);
        EXPECT_NE(who.viewer->m_fAxisZ, (Float3{0, 0, 1}));
        EXPECT_EQ(who.viewer->m_nInteractionMode, ModeAlignPickPoints);
        who.user->Type(kKeySpace);
        for (const auto& [x, y] : {std::pair{430, 240}, {490, 260}, {450, 300}}) who.Click(x, y);
    });
    ExpectTheSameAlignment(3);
    EXPECT_LT(pointer.viewer->m_lastAlignment.pairs[0].fixed.point[2], 0);
}

TEST_F(PickPointsUnderThePointer, AlignInTheDelayedScheme) {
    Both([](Operator& who) {
        who.viewer->SetIGDRotation(1);
        who.viewer->AlignPickPoints();
        who.PickMoving();
        who.user->Type(kKeySpace);
        who.PickFixed();
    });
    ExpectTheSameAlignment(3);
    ExpectQuarterTurn();
}

TEST_F(PickPointsUnderThePointer, EndByEscapeWithoutAMotion) {
    Both([](Operator& who) {
        who.viewer->AlignPickPoints();
        who.PickMoving();
        who.user->Type(kKeySpace);
        who.Click(kQuarterTurn[0].fixedX, kQuarterTurn[0].fixedY);
        who.user->Type(kKeyEscape);
        EXPECT_EQ(who.host.done, 1);
        EXPECT_EQ(who.viewer->m_nInteractionMode, ModeIdle);
        EXPECT_FALSE(who.viewer->m_lastAlignment.isFound);
        EXPECT_EQ(who.Trafo()[3], 0);
        // The pointer drags the view again.
        const Float3 axis = who.viewer->m_fAxisX;
        who.Drag(L, 300, 200, 340, 200);
        EXPECT_NE(who.viewer->m_fAxisX, axis);
    });
}

// A double click: the first press picks, the second one fits the view.
TEST_F(PickPointsUnderThePointer, AreOneByADoubleClick) {
    Both([](Operator& who) {
        who.viewer->AlignPickPoints();
        who.user->MoveTo(176, 240);
        who.user->DoubleClick();
        EXPECT_EQ(who.viewer->GetAlignmentPicks().moving.size(), 1u);
        EXPECT_NE(who.viewer->m_fSceneSize, 10) << "the view was fitted";
        EXPECT_EQ(who.viewer->m_nInteractionMode, ModeAlignPickPoints);
        who.viewer->FinishInteraction();
    });
    EXPECT_EQ(pointer.viewer->m_fSceneSize, calls.viewer->m_fSceneSize);
}

TEST(PickPointsCursor, IsOnTheScreenUntilTheEnd) {
    Operator who(MakePointerInput());
    Display* const display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    who.user->MoveTo(300, 200);
    const unsigned long usual = ShownCursor(display);
    who.viewer->AlignPickPoints();
    const unsigned long picking = ShownCursor(display);
    EXPECT_NE(picking, usual);
    who.PickMoving();
    who.user->Type(kKeySpace);
    EXPECT_EQ(ShownCursor(display), picking);
    who.PickFixed();
    EXPECT_EQ(who.host.done, 1);
    EXPECT_EQ(ShownCursor(display), usual);
    XCloseDisplay(display);
}

}  // namespace
