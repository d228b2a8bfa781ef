// What is a click of a button, and what is a drag.
#include "ClickWatch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

constexpr double kSlack = 3.0;

struct InputsRow {
    const char* name;
    std::vector<MouseInput> inputs;
    int clicks;  ///< that they complete
};
void PrintTo(const InputsRow& row, std::ostream* out) { *out << row.name; }

MouseInput At(Kind kind, int x, int y, std::uint32_t flags = 0) {
    return {.kind = kind, .flags = flags, .x = x, .y = y};
}
MouseInput Press(int x = 10, int y = 20, std::uint32_t others = 0) {
    return At(Kind::RightDown, x, y, KV_ScenePane::kMouseRight | others);
}
MouseInput Move(int x, int y) { return At(Kind::Move, x, y, KV_ScenePane::kMouseRight); }
MouseInput Release(int x = 10, int y = 20) { return At(Kind::RightUp, x, y); }

// Of the right button; those of the left one are the same with the buttons exchanged.
const InputsRow kRows[] = {
    {"PressAndReleaseAtOnePlace", {Press(), Release()}, 1},
    {"AMoveByTheSlack", {Press(), Move(10, 23), Release(10, 23)}, 1},
    {"AReleaseWithoutAMoveByTheSlack", {Press(), Release(7, 20)}, 1},
    {"AMoveBeyondTheSlack", {Press(), Move(14, 20), Release(14, 20)}, 0},
    {"ADiagonalMoveBeyondTheSlack", {Press(), Move(12, 23), Release(12, 23)}, 0},
    {"AReleaseBeyondTheSlackWithoutAMove", {Press(), Release(10, 24)}, 0},
    {"ADragThatReturnsToItsStart", {Press(), Move(40, 20), Move(10, 20), Release()}, 0},
    {"ManySmallMovesThatAddUpToADrag", {Press(), Move(12, 20), Move(14, 20), Move(12, 20), Release()}, 0},
    {"TwoClicks", {Press(), Release(), Press(50, 60), Release(50, 60)}, 2},
    {"AClickAfterADrag", {Press(), Move(40, 20), Release(40, 20), Press(), Release()}, 1},
    {"AReleaseWithoutAPress", {Release()}, 0},
    {"TwoReleases", {Press(), Release(), Release()}, 1},
    {"TheLeftButtonHeldAlready", {Press(10, 20, KV_ScenePane::kMouseLeft), Release()}, 0},
    {"TheMiddleButtonHeldAlready", {Press(10, 20, KV_ScenePane::kMouseMiddle), Release()}, 0},
    {"TheLeftButtonPressedMeanwhile", {Press(), At(Kind::LeftDown, 10, 20), At(Kind::LeftUp, 10, 20), Release()}, 0},
    {"TheMiddleButtonPressedMeanwhile", {Press(), At(Kind::MiddleDown, 10, 20), Release()}, 0},
    {"AModifierHeld", {Press(10, 20, KV_ScenePane::kMouseCtrl | KV_ScenePane::kMouseShift), Release()}, 1},
    {"TheWheelMeanwhile", {Press(), At(Kind::Wheel, 10, 20), Release()}, 1},
    {"ALeftClick", {At(Kind::LeftDown, 10, 20), At(Kind::LeftUp, 10, 20)}, 0},
    {"ADoubleClick", {At(Kind::LeftDown, 10, 20), At(Kind::LeftUp, 10, 20), At(Kind::DoubleClick, 10, 20)}, 0},
};

MouseInput WithButtonsExchanged(MouseInput input) {
    constexpr std::uint32_t kBoth = KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseRight;
    if ((input.flags & kBoth) != 0 && (input.flags & kBoth) != kBoth) input.flags ^= kBoth;
    switch (input.kind) {
        case Kind::LeftDown:
            input.kind = Kind::RightDown;
            break;
        case Kind::RightDown:
            input.kind = Kind::LeftDown;
            break;
        case Kind::LeftUp:
            input.kind = Kind::RightUp;
            break;
        case Kind::RightUp:
            input.kind = Kind::LeftUp;
            break;
        default:
            break;
    }
    return input;
}

class Clicks : public testing::TestWithParam<InputsRow> {};

TEST_P(Clicks, OfTheRightButtonAreRecognised) {
    ClickWatch watch(ClickWatch::Button::Right);
    int clicks = 0;
    for (const MouseInput& input : GetParam().inputs) {
        if (!watch.See(input, kSlack)) continue;
        ++clicks;
        EXPECT_EQ(input.kind, Kind::RightUp);
    }
    EXPECT_EQ(clicks, GetParam().clicks);
}

TEST_P(Clicks, OfTheLeftButtonAreRecognised) {
    ClickWatch watch(ClickWatch::Button::Left);
    int clicks = 0;
    for (const MouseInput& input : GetParam().inputs) clicks += watch.See(WithButtonsExchanged(input), kSlack) ? 1 : 0;
    EXPECT_EQ(clicks, GetParam().clicks);
}

INSTANTIATE_TEST_SUITE_P(Inputs, Clicks, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ClickWatch, CountsADoubleClickOfTheLeftButtonAsOneClick) {
    ClickWatch watch(ClickWatch::Button::Left);
    (void)watch.See(At(Kind::LeftDown, 10, 20, KV_ScenePane::kMouseLeft), kSlack);
    EXPECT_NE(watch.See(At(Kind::LeftUp, 10, 20), kSlack), std::nullopt);
    (void)watch.See(At(Kind::DoubleClick, 10, 20, KV_ScenePane::kMouseLeft), kSlack);
    EXPECT_EQ(watch.See(At(Kind::LeftUp, 10, 20), kSlack), std::nullopt);
}

TEST(ClickWatch, ForgetsAPressWhenItIsReset) {
    ClickWatch watch(ClickWatch::Button::Right);
    (void)watch.See(Press(), kSlack);
    watch.Reset();
    EXPECT_EQ(watch.See(Release(), kSlack), std::nullopt);
}

TEST(ClickWatch, LiesWhereTheButtonWasPressed) {
    ClickWatch watch(ClickWatch::Button::Right);
    EXPECT_EQ(watch.See(Press(10, 20), kSlack), std::nullopt);
    EXPECT_EQ(watch.See(Release(12, 19), kSlack), QPoint(10, 20));
}

TEST(ClickWatch, MayMoveFurtherOnADenseScreen) {
    ClickWatch watch(ClickWatch::Button::Right);
    (void)watch.See(Press(), 2 * kSlack);
    EXPECT_EQ(watch.See(Release(16, 20), 2 * kSlack), QPoint(10, 20));
}

}  // namespace
