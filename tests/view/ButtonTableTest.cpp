// The buttons and the wheel in the three schemes: whole presses, drags and releases of a user, once by calls and once
// by the real pointer. After every step the view is compared with one that the test computes by itself.
#include <set>
#include <string>
#include <vector>

#include "view/ExpectedView.h"
#include "view/UserInput.h"

namespace {

enum class Scheme { Normal, Flipped, Delayed };
enum class Act { Move, Press, Release, PressWithinDelay, MoveWithinDelay, EndDelay, DoubleClick, Wheel, Shift, Ctrl };
enum class View { Stays, Rotates, Pans, Rolls, Centers, ZoomsOut, ZoomsIn };
/// Moving flag and capture: none, both, or the flag alone, which a left click in the delayed scheme does not clear.
enum class Hold { Free, Held, Moving };

struct Step {
    Act act;
    int a = 0, b = 0;  ///< travel, button, notches, or 1 for a key that goes down
    std::int32_t mode = ModeIdle;
    Hold hold = Hold::Free;
    View view = View::Stays;
};

constexpr auto kHeld = Hold::Held, kFree = Hold::Free;
constexpr auto L = Button::Left, M = Button::Middle, R = Button::Right;

constexpr Step Press(Button button, std::int32_t mode, Hold hold, View view = View::Stays) {
    return {Act::Press, static_cast<int>(button), 0, mode, hold, view};
}
constexpr Step Release(Button button, std::int32_t mode, Hold hold) {
    return {Act::Release, static_cast<int>(button), 0, mode, hold};
}
/// The next step comes before the delay is over.
constexpr Step Tap(Button button) { return {Act::PressWithinDelay, static_cast<int>(button)}; }
constexpr Step MoveWithinDelay(int dx, int dy) { return {Act::MoveWithinDelay, dx, dy}; }
constexpr Step EndDelay(std::int32_t mode, Hold hold) { return {Act::EndDelay, 0, 0, mode, hold}; }
constexpr Step Rotate(int dx, int dy, std::int32_t mode = ModeRotate) {
    return {Act::Move, dx, dy, mode, kHeld, View::Rotates};
}
constexpr Step Pan(int dx, int dy) { return {Act::Move, dx, dy, ModePan, kHeld, View::Pans}; }
constexpr Step Roll(int dx, int dy) { return {Act::Move, dx, dy, ModeRotate, kHeld, View::Rolls}; }
/// A move that neither rotates nor pans.
constexpr Step Hover(int dx, int dy, Hold hold, std::int32_t mode = ModeIdle) {
    return {Act::Move, dx, dy, mode, hold};
}
constexpr Step DoubleClick(View view, Hold hold) { return {Act::DoubleClick, 0, 0, ModeIdle, hold, view}; }
constexpr Step Wheel(int notches, View view) { return {Act::Wheel, notches, 0, ModeIdle, kFree, view}; }
constexpr Step Shift(bool down, std::int32_t mode = ModeIdle, Hold hold = kFree) {
    return {Act::Shift, down, 0, mode, hold};
}
constexpr Step Ctrl(bool down, std::int32_t mode = ModeIdle, Hold hold = kFree) {
    return {Act::Ctrl, down, 0, mode, hold};
}

struct Row {
    const char* name;
    Scheme scheme;
    std::vector<Step> steps;
    int startX = 300, startY = 200;  ///< within the inscribed circle
    bool plane = false;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

constexpr auto kNormal = Scheme::Normal, kFlipped = Scheme::Flipped, kDelayed = Scheme::Delayed;

const Row kRows[] = {
    // ---- left drag
    {"LeftDragRotates",
     kNormal,
     {Press(L, ModeRotate, kHeld), Rotate(12, -9), Rotate(-50, 44), Rotate(1, 0), Release(L, ModeIdle, kFree)}},
    {"LeftDragFlippedPans",
     kFlipped,
     {Press(L, ModePan, kHeld), Pan(12, -9), Pan(-50, 44), Release(L, ModeIdle, kFree)}},
    {"LeftDragDelayedMovesNothing",
     kDelayed,
     {Press(L, ModeIdle, kHeld), Hover(12, -9, kHeld), Hover(-50, 44, kHeld), Release(L, ModeIdle, Hold::Moving)}},
    {"LeftDragBeyondTheWindow",
     kNormal,
     {Press(L, ModeRotate, kHeld), Rotate(450, 350), Rotate(30, -300), Release(L, ModeIdle, kFree),
      Hover(-400, 0, kFree)}},
    // ---- right drag
    {"RightDragPans",
     kNormal,
     {Press(R, ModePan, kHeld), Pan(12, -9), Pan(-50, 44), Pan(-500, 1), Release(R, ModeIdle, kFree)},
     600,
     450},
    {"RightDragFlippedRotates",
     kFlipped,
     {Press(R, ModeRotate, kHeld), Rotate(12, -9), Rotate(-50, 44), Release(R, ModeIdle, kFree)}},
    {"RightDragDelayedRotates",
     kDelayed,
     {Press(R, ModeRotate, kHeld), Rotate(12, -9), Rotate(-50, 44), Release(R, ModeIdle, kFree)}},
    {"RightDragDelayedCountsTheTravelBeforeTheDispatch",
     kDelayed,
     {Tap(R), MoveWithinDelay(10, -5), EndDelay(ModeRotate, kHeld), Rotate(5, 1), Release(R, ModeIdle, kFree)}},
    // ---- right with shift
    {"RightWithShiftPans",
     kNormal,
     {Shift(true), Press(R, ModePan, kHeld), Pan(7, 21), Release(R, ModeIdle, kFree), Shift(false)}},
    {"RightWithShiftFlippedPans",
     kFlipped,
     {Shift(true), Press(R, ModePan, kHeld), Pan(7, 21), Release(R, ModeIdle, kFree), Shift(false)}},
    {"RightWithShiftDelayedPans",
     kDelayed,
     {Shift(true), Press(R, ModePan, kHeld), Pan(7, 21), Release(R, ModeIdle, kFree), Shift(false)}},
    {"ShiftAfterThePressChangesNothing",
     kFlipped,
     {Press(R, ModeRotate, kHeld), Shift(true, ModeRotate, kHeld), Rotate(7, 21), Release(R, ModeIdle, kFree)}},
    // ---- right with left held, in idle: the first release of the right button ended the drag of the left one
    {"RightWithLeftDownPans",
     kNormal,
     {Press(L, ModeRotate, kHeld), Press(R, ModeRotate, kHeld), Release(R, ModeIdle, kFree), Press(R, ModePan, kHeld),
      Pan(-8, 30), Release(R, ModeIdle, kFree), Hover(5, 5, kFree), Release(L, ModeIdle, kFree)}},
    {"RightWithLeftDownFlippedPans",
     kFlipped,
     {Press(L, ModePan, kHeld), Press(R, ModePan, kHeld), Release(R, ModeIdle, kFree), Press(R, ModePan, kHeld),
      Pan(-8, 30), Release(R, ModeIdle, kFree), Hover(5, 5, kFree), Release(L, ModeIdle, kFree)}},
    {"RightWithLeftDownDelayedPans",
     kDelayed,
     {Press(L, ModeIdle, kHeld), Press(R, ModePan, kHeld), Pan(-8, 30), Release(R, ModeIdle, kFree), Hover(5, 5, kFree),
      Release(L, ModeIdle, kFree)}},
    // ---- left added during a right drag, and released
    {"LeftAddedToARightDragChangesNothing",
     kNormal,
     {Press(R, ModePan, kHeld), Pan(4, 9), Press(L, ModePan, kHeld), Pan(9, 4), Release(L, ModeIdle, kFree),
      Hover(5, 5, kFree), Release(R, ModeIdle, kFree)}},
    {"LeftAddedToARightDragFlippedChangesNothing",
     kFlipped,
     {Press(R, ModeRotate, kHeld), Rotate(4, 9), Press(L, ModeRotate, kHeld), Rotate(9, 4), Release(L, ModeIdle, kFree),
      Hover(5, 5, kFree), Release(R, ModeIdle, kFree)}},
    {"LeftAddedToARightDragDelayedPansUntilItIsReleased",
     kDelayed,
     {Press(R, ModeRotate, kHeld), Rotate(4, 9), Press(L, ModePan, kHeld), Pan(9, 4), Release(L, ModeRotate, kHeld),
      Rotate(-11, 3), Press(L, ModePan, kHeld), Pan(1, 1), Release(L, ModeRotate, kHeld), Release(R, ModeIdle, kFree)}},
    {"LeftClickedTwiceInARightDragDelayedIsNoDoubleClick",
     kDelayed,
     {Press(R, ModeRotate, kHeld), Press(L, ModePan, kHeld), Release(L, ModeRotate, kHeld), Press(L, ModePan, kHeld),
      Release(L, ModeRotate, kHeld), Rotate(5, 5), Release(R, ModeIdle, kFree)}},
    // ---- chords of the delayed scheme
    {"LeftThenRightWithinTheDelayPans",
     kDelayed,
     {Tap(L), Press(R, ModePan, kHeld), Pan(6, -7), Release(L, ModeRotate, kHeld), Rotate(10, 10),
      Release(R, ModeIdle, kFree)}},
    {"RightThenLeftWithinTheDelayPans",
     kDelayed,
     {Tap(R), Press(L, ModePan, kHeld), Pan(6, -7), Release(R, ModeIdle, kFree), Release(L, ModeIdle, kFree)}},
    {"ShiftAndLeftDelayedPansAndEndsRotating",
     kDelayed,
     {Shift(true), Press(L, ModePan, kHeld), Pan(6, -7), Release(L, ModeRotate, kHeld), Rotate(10, 10),
      Press(R, ModeRotate, kHeld), Release(R, ModeIdle, kFree), Shift(false)}},
    // ---- middle
    {"MiddleDragRotates",
     kNormal,
     {Press(M, ModeRotate, kHeld), Rotate(12, -9), Rotate(-50, 44), Release(M, ModeIdle, kFree)}},
    {"MiddleDragFlippedRotates",
     kFlipped,
     {Press(M, ModeRotate, kHeld), Rotate(12, -9), Rotate(-50, 44), Release(M, ModeIdle, kFree)}},
    {"MiddleDragDelayedCentersByItsPressAlone",
     kDelayed,
     {Press(M, ModeIdle, kFree, View::Centers), Hover(12, -9, kFree), Release(M, ModeIdle, kFree)}},
    {"MiddleClickChangesNoView", kNormal, {Press(M, ModeRotate, kHeld), Release(M, ModeIdle, kFree)}},
    {"MiddleClickFlippedChangesNoView", kFlipped, {Press(M, ModeRotate, kHeld), Release(M, ModeIdle, kFree)}},
    {"MiddleClickDelayedCenters",
     kDelayed,
     {Tap(M), {Act::Release, static_cast<int>(M), 0, ModeIdle, kFree, View::Centers}}},
    // ---- clicks and double clicks
    {"LeftClickChangesNoView", kNormal, {Press(L, ModeRotate, kHeld), Release(L, ModeIdle, kFree)}},
    {"LeftClickWithinTheDelayIsPressAndRelease", kDelayed, {Tap(L), Release(L, ModeIdle, Hold::Moving)}},
    {"RightClickWithinTheDelayIsPressAndRelease", kDelayed, {Tap(R), Release(R, ModeIdle, kFree)}},
    {"DoubleClickCenters", kNormal, {DoubleClick(View::Centers, kFree)}},
    {"DoubleClickFlippedDoesNothing", kFlipped, {DoubleClick(View::Stays, kFree)}},
    {"DoubleClickDelayedCenters", kDelayed, {DoubleClick(View::Centers, Hold::Moving)}},
    // ---- wheel
    {"WheelForwardZoomsOut", kNormal, {Wheel(1, View::ZoomsOut), Wheel(1, View::ZoomsOut)}},
    {"WheelBackZoomsIn", kNormal, {Wheel(-1, View::ZoomsIn)}},
    {"WheelForwardFlippedZoomsOut", kFlipped, {Wheel(1, View::ZoomsOut)}},
    {"WheelBackFlippedZoomsIn", kFlipped, {Wheel(-1, View::ZoomsIn)}},
    {"WheelForwardDelayedZoomsIn", kDelayed, {Wheel(1, View::ZoomsIn), Wheel(1, View::ZoomsIn)}},
    {"WheelBackDelayedZoomsOut", kDelayed, {Wheel(-1, View::ZoomsOut)}},
    // ---- rolls: a press outside the circle of radius 240 about (320, 240)
    {"RollFromTopLeft",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(14, -3), Roll(2, -9), Release(L, ModeIdle, kFree)},
     20,
     20},
    {"RollFromTopRight",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(14, -3), Roll(2, 19), Release(L, ModeIdle, kFree)},
     600,
     20},
    {"RollFromBottomRight",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(14, -3), Roll(2, -9), Release(L, ModeIdle, kFree)},
     600,
     460},
    {"RollFromBottomLeft",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(14, -3), Roll(2, -9), Release(L, ModeIdle, kFree)},
     20,
     460},
    {"RollFollowsTheMouseAroundTheCentre",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(60, -2), Roll(20, 60), Roll(200, 200), Roll(-300, 140), Roll(-100, -190),
      Roll(0, -30), Release(L, ModeIdle, kFree)},
     250,
     5},
    {"RollFlippedByTheRightButton",
     kFlipped,
     {Press(R, ModeRotate, kHeld), Roll(14, -3), Release(R, ModeIdle, kFree)},
     20,
     460},
    {"RollDelayedByTheRightButton",
     kDelayed,
     {Press(R, ModeRotate, kHeld), Roll(14, -3), Release(R, ModeIdle, kFree)},
     600,
     20},
    {"RollBeginsByLeftAndEndsByRight",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(14, -3), Press(R, ModeRotate, kHeld), Roll(1, 8), Release(R, ModeIdle, kFree),
      Release(L, ModeIdle, kFree), Press(L, ModeRotate, kHeld), Roll(3, 3), Release(L, ModeIdle, kFree)},
     20,
     20},
    {"NoRollByTheMiddleButton",
     kNormal,
     {Press(M, ModeRotate, kHeld), Rotate(14, -3), Rotate(2, -9), Release(M, ModeIdle, kFree)},
     20,
     20},
    {"NoRollInTheNextDragWithinTheCircle",
     kNormal,
     {Press(L, ModeRotate, kHeld), Roll(60, 90), Release(L, ModeIdle, kFree), Hover(60, 60, kFree),
      Press(L, ModeRotate, kHeld), Rotate(9, 8), Release(L, ModeIdle, kFree)},
     120,
     60},
    // ---- Ctrl during a drag
    {"CtrlWithoutAPlaneRotates",
     kNormal,
     {Ctrl(true), Press(L, ModeRotate, kHeld), Rotate(12, -9), Release(L, ModeIdle, kFree), Ctrl(false)}},
    {"CtrlAndRightWithoutAPlanePansFromTheSecondMoveOn",
     kNormal,
     {Ctrl(true), Press(R, ModePlaneMove, kHeld), Hover(3, 4, kHeld, ModePan), Pan(12, -9),
      Release(R, ModeIdle, kFree)}},
    {"CtrlDragsThePlane",
     kNormal,
     {Ctrl(true), Press(L, ModePlaneRotate, kHeld), Hover(12, -9, kHeld, ModePlaneRotate), Release(L, ModeIdle, kFree),
      Ctrl(false)},
     300,
     200,
     true},
    {"CtrlDragsThePlaneFlipped",
     kFlipped,
     {Ctrl(true), Press(L, ModePlaneMove, kHeld), Hover(12, -9, kHeld, ModePlaneMove), Release(L, ModeIdle, kFree)},
     300,
     200,
     true},
    {"CtrlDragsThePlaneDelayed",
     kDelayed,
     {Ctrl(true), Press(R, ModePlaneRotate, kHeld), Hover(12, -9, kHeld, ModePlaneRotate),
      Press(L, ModePlaneMove, kHeld), Hover(3, 3, kHeld, ModePlaneMove), Release(L, ModePlaneRotate, kHeld),
      Release(R, ModeIdle, kFree)},
     300,
     200,
     true},
    {"CtrlDuringADragRotatesThePlaneAndItsReleaseTheViewAgain",
     kNormal,
     {Press(L, ModeRotate, kHeld), Rotate(12, -9), Ctrl(true, ModeRotate, kHeld), Hover(5, 5, kHeld, ModePlaneRotate),
      Ctrl(false, ModeRotate, kHeld), Rotate(8, 8), Release(L, ModeIdle, kFree)},
     300,
     200,
     true},
};

/// The user, the viewer, and the view as it must be.
class Scenario {
public:
    Scenario(std::unique_ptr<UserInput> user, const Row& row)
        : m_pUser(std::move(user)), m_viewer(m_pUser->Viewer()), m_nX(row.startX), m_nY(row.startY) {
        CKV_ScenePaneCtrl& c = *m_viewer;
        AddMesh(c,
                {{.x = kLow[0], .y = kLow[1], .z = kLow[2]},
                 {.x = kHigh[0], .y = kLow[1], .z = kLow[2]},
                 {.x = kLow[0], .y = kHigh[1], .z = kHigh[2]}},
                {{{0, 1, 2}}});
        c.CenterView();
        c.SetViewMode(KV_ScenePane::ViewObliqueZUp);  // what a centring click applies again
        EXPECT_TRUE(c.SetViewParams(0.6f, 0.8f, 0, -0.48f, 0.36f, 0.8f, 21, -9, 14, 0.8f, 0));
        c.FlipMouseButtons(row.scheme == Scheme::Flipped ? 1 : 0);
        c.SetIGDRotation(row.scheme == Scheme::Delayed ? 1 : 0);
        c.m_bClipPlaneVisible = row.plane;
        c.m_clipPlane.SetCenter({9000, 9000, 9000});  // its handles are nowhere near the mouse
        m_pUser->MoveTo(m_nX, m_nY);
        m_expected = ExpectedView::Of(c);
    }

    void Perform(const Step& step) {
        switch (step.act) {
            case Act::Move:
            case Act::MoveWithinDelay:
                m_nX += step.a, m_nY += step.b;
                m_pUser->MoveTo(m_nX, m_nY);
                break;
            case Act::Press:
            case Act::PressWithinDelay:
                m_pUser->Press(static_cast<Button>(step.a));
                m_held.insert(step.a);
                m_nLastX = m_nX, m_nLastY = m_nY;
                break;
            case Act::Release:
                m_pUser->Release(static_cast<Button>(step.a));
                m_held.erase(step.a);
                break;
            case Act::EndDelay:
                break;
            case Act::DoubleClick:
                m_pUser->DoubleClick();
                break;
            case Act::Wheel:
                m_pUser->Wheel(step.a);
                break;
            case Act::Shift:
                m_pUser->HoldShift(step.a != 0);
                break;
            case Act::Ctrl:
                m_pUser->HoldCtrl(step.a != 0);
                break;
        }
        if (step.act != Act::PressWithinDelay && step.act != Act::MoveWithinDelay) EndDispatchDelay(m_viewer);
    }

    void Check(const Step& step) {
        Expect(step.view);
        ExpectView(*m_viewer, m_expected);
        EXPECT_EQ(m_viewer->m_nInteractionMode, step.mode);
        EXPECT_EQ(m_viewer->m_nSavedInteractionMode, ModeIdle);
        EXPECT_EQ(m_viewer->m_bMoving, step.hold == Hold::Free ? 0 : 1);
        EXPECT_EQ(m_viewer.window->HasCapture(), step.hold == Hold::Held);
        EXPECT_TRUE(!m_held.empty() || m_pUser->OthersCanGrabThePointer());
    }

private:
    void Expect(View view) {
        const int dx = m_nX - m_nLastX, dy = m_nY - m_nLastY;
        switch (view) {
            case View::Stays:
                return;
            case View::Rotates:
                m_expected.Rotate(dx, dy);
                break;
            case View::Pans:
                m_expected.Pan(dx, dy);
                break;
            case View::Rolls:
                m_expected.Roll(m_nLastX, m_nLastY, dx, dy);
                break;
            case View::Centers:
                m_expected.Fit(ToDouble3(kLow), ToDouble3(kHigh), 1);
                m_expected.right = {-std::sqrt(0.5), std::sqrt(0.5), 0};
                m_expected.up = {-0.5, -0.5, std::sqrt(0.5)};
                m_expected.viewer = {0.5, 0.5, std::sqrt(0.5)};
                break;
            case View::ZoomsOut:
                m_expected.zoom *= 1.12;
                break;
            case View::ZoomsIn:
                m_expected.zoom /= 1.12;
                break;
        }
        m_nLastX = m_nX, m_nLastY = m_nY;
    }

    static constexpr Float3 kLow{-10, -20, -30}, kHigh{30, 40, 10};

    std::unique_ptr<UserInput> m_pUser;
    TestControl& m_viewer;
    ExpectedView m_expected;
    int m_nX, m_nY;
    int m_nLastX = 0, m_nLastY = 0;  ///< of the drag
    std::set<int> m_held;            ///< buttons
};

void PerformAll(std::unique_ptr<UserInput> user, const Row& row) {
    Scenario scenario(std::move(user), row);
    for (std::size_t i = 0; i < row.steps.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "step " << i + 1 << " of " << row.steps.size());
        scenario.Perform(row.steps[i]);
        scenario.Check(row.steps[i]);
    }
}

class ButtonTable : public testing::TestWithParam<Row> {};

TEST_P(ButtonTable, MovesTheViewByCalls) { PerformAll(MakeCallInput(), GetParam()); }
TEST_P(ButtonTable, MovesTheViewByTheRealPointer) { PerformAll(MakePointerInput(), GetParam()); }
INSTANTIATE_TEST_SUITE_P(Input, ButtonTable, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
