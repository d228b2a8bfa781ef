// What is a click of the right button, and what is a drag.
#include "RightClick.h"

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

class RightClicks : public testing::TestWithParam<InputsRow> {};

TEST_P(RightClicks, AreRecognised) {
    RightClickWatch watch;
    int clicks = 0;
    for (const MouseInput& input : GetParam().inputs) {
        if (!watch.See(input, kSlack)) continue;
        ++clicks;
        EXPECT_EQ(input.kind, Kind::RightUp);
    }
    EXPECT_EQ(clicks, GetParam().clicks);
}

INSTANTIATE_TEST_SUITE_P(Inputs, RightClicks, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RightClick, LiesWhereTheButtonWasPressed) {
    RightClickWatch watch;
    EXPECT_EQ(watch.See(Press(10, 20), kSlack), std::nullopt);
    EXPECT_EQ(watch.See(Release(12, 19), kSlack), QPoint(10, 20));
}

TEST(RightClick, MayMoveFurtherOnADenseScreen) {
    RightClickWatch watch;
    (void)watch.See(Press(), 2 * kSlack);
    EXPECT_EQ(watch.See(Release(16, 20), 2 * kSlack), QPoint(10, 20));
}

}  // namespace
