// X events made by hand, and the input that they must become.
#include "platform/X11Input.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/InputText.h"

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>
#include <X11/keysym.h>

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

namespace {

constexpr unsigned kLeft = Button1, kMiddle = Button2, kRight = Button3;

XEvent ButtonEvent(int type, unsigned button, unsigned stateBefore, Time time = 1000, int x = 5, int y = 6) {
    XEvent event{};
    event.xbutton.type = type;
    event.xbutton.button = button;
    event.xbutton.state = stateBefore;
    event.xbutton.time = time;
    event.xbutton.x = x;
    event.xbutton.y = y;
    return event;
}

XEvent MoveEvent(unsigned state, int x = 0, int y = 0) {
    XEvent event{};
    event.xmotion.type = MotionNotify;
    event.xmotion.state = state;
    event.xmotion.x = x;
    event.xmotion.y = y;
    return event;
}

XEvent KeyEvent(int type, unsigned keycode, unsigned state = 0) {
    XEvent event{};
    event.xkey.type = type;
    event.xkey.keycode = keycode;
    event.xkey.state = state;
    return event;
}

// ---- buttons and their flags

struct ButtonRow {
    const char* name;
    int type;
    unsigned button, stateBefore;
    Kind kind;
    std::uint32_t flags;
};
void PrintTo(const ButtonRow& row, std::ostream* out) { *out << row.name; }

const ButtonRow kButtonRows[] = {
    {"LeftPress", ButtonPress, kLeft, 0, Kind::LeftDown, 1},
    {"LeftRelease", ButtonRelease, kLeft, Button1Mask, Kind::LeftUp, 0},
    {"RightPress", ButtonPress, kRight, 0, Kind::RightDown, 2},
    {"RightRelease", ButtonRelease, kRight, Button3Mask, Kind::RightUp, 0},
    {"MiddlePress", ButtonPress, kMiddle, 0, Kind::MiddleDown, 16},
    {"MiddleRelease", ButtonRelease, kMiddle, Button2Mask, Kind::MiddleUp, 0},
    {"LeftPressWithShift", ButtonPress, kLeft, ShiftMask, Kind::LeftDown, 1 | 4},
    {"LeftPressWithCtrl", ButtonPress, kLeft, ControlMask, Kind::LeftDown, 1 | 8},
    {"LeftReleaseWithShiftAndCtrl", ButtonRelease, kLeft, Button1Mask | ShiftMask | ControlMask, Kind::LeftUp, 4 | 8},
    {"LeftPressWithRightHeld", ButtonPress, kLeft, Button3Mask, Kind::LeftDown, 1 | 2},
    {"LeftReleaseOfAllThree", ButtonRelease, kLeft, Button1Mask | Button2Mask | Button3Mask, Kind::LeftUp, 2 | 16},
    {"LocksAndAltHaveNoFlag", ButtonPress, kRight, LockMask | Mod1Mask | Mod2Mask | Mod5Mask | 1u << 13,
     Kind::RightDown, 2},
    {"MasksOfTheWheelHaveNoFlag", ButtonPress, kLeft, Button4Mask | Button5Mask, Kind::LeftDown, 1},
};

class X11InputButton : public testing::TestWithParam<ButtonRow> {};

TEST_P(X11InputButton, HasItsKindItsFlagsAndItsPlace) {
    const ButtonRow& row = GetParam();
    X11Input input;
    if (row.type == ButtonRelease) (void)input.TranslateMouse(ButtonEvent(ButtonPress, row.button, 0));
    const auto taken = input.TranslateMouse(ButtonEvent(row.type, row.button, row.stateBefore, 1000, -7, 3000));
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->kind, row.kind);
    EXPECT_EQ(taken->flags, row.flags);
    EXPECT_EQ(taken->x, -7);
    EXPECT_EQ(taken->y, 3000);
    EXPECT_EQ(taken->delta, 0);
}
INSTANTIATE_TEST_SUITE_P(All, X11InputButton, testing::ValuesIn(kButtonRows),
                         [](const auto& r) { return r.param.name; });

TEST(X11Input, MoveHasTheHeldButtonsAndModifiers) {
    X11Input input;
    const auto move = input.TranslateMouse(MoveEvent(Button2Mask | ControlMask, -3, 9));
    ASSERT_TRUE(move);
    EXPECT_EQ(move->kind, Kind::Move);
    EXPECT_EQ(move->flags, 16u | 8u);
    EXPECT_EQ(move->x, -3);
    EXPECT_EQ(move->y, 9);
    EXPECT_EQ(input.TranslateMouse(MoveEvent(ShiftMask))->flags, 4u);
}

TEST(X11Input, WheelNotchIs120AndItsReleaseIsIgnored) {
    X11Input input;
    const auto forward = input.TranslateMouse(ButtonEvent(ButtonPress, Button4, ControlMask | Button3Mask));
    ASSERT_TRUE(forward);
    EXPECT_EQ(forward->kind, Kind::Wheel);
    EXPECT_EQ(forward->delta, 120);
    EXPECT_EQ(forward->flags, 8u | 2u);
    EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonRelease, Button4, Button4Mask)));
    const auto back = input.TranslateMouse(ButtonEvent(ButtonPress, Button5, 0));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->delta, -120);
    EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonRelease, Button5, Button5Mask)));
}

TEST(X11Input, OtherButtonsAreIgnored) {
    X11Input input;
    for (const unsigned button : {6u, 7u, 8u, 9u, 12u}) {
        EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonPress, button, 0))) << button;
        EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonRelease, button, 0))) << button;
    }
}

// ---- double click

struct SecondPress {
    const char* name;
    Time firstTime, secondTime;
    int dx, dy;
    bool isDouble;
};
void PrintTo(const SecondPress& row, std::ostream* out) { *out << row.name; }

const SecondPress kSecondPresses[] = {
    {"AtOnce", 1000, 1000, 0, 0, true},
    {"After500Milliseconds", 1000, 1500, 0, 0, true},
    {"After501Milliseconds", 1000, 1501, 0, 0, false},
    {"TwoPixelsRightAndDown", 1000, 1100, 2, 2, true},
    {"TwoPixelsLeftAndUp", 1000, 1100, -2, -2, true},
    {"ThreePixelsRight", 1000, 1100, 3, 0, false},
    {"ThreePixelsLeft", 1000, 1100, -3, 0, false},
    {"ThreePixelsDown", 1000, 1100, 0, 3, false},
    {"ThreePixelsUp", 1000, 1100, 0, -3, false},
    {"AcrossTheWrapOfTheServersTime", 0xFFFFFF00, 0xF4, 0, 0, true},  // 256 + 244 = 500
    {"TooLateAcrossTheWrapOfTheServersTime", 0xFFFFFF00, 0xF5, 0, 0, false},
    {"AnHourLater", 1000, 3601000, 0, 0, false},
};

class X11InputSecondPress : public testing::TestWithParam<SecondPress> {};

TEST_P(X11InputSecondPress, IsADoubleClickInTimeAndPlace) {
    const SecondPress& row = GetParam();
    X11Input input;
    EXPECT_EQ(input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, 0, row.firstTime, 50, 60))->kind, Kind::LeftDown);
    EXPECT_EQ(input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, Button1Mask, row.firstTime, 50, 60))->kind,
              Kind::LeftUp);
    const auto second =
        input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, ShiftMask, row.secondTime, 50 + row.dx, 60 + row.dy));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->kind, row.isDouble ? Kind::DoubleClick : Kind::LeftDown);
    EXPECT_EQ(second->flags, 1u | 4u);
    EXPECT_EQ(second->x, 50 + row.dx);
    EXPECT_EQ(input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, Button1Mask, row.secondTime))->kind, Kind::LeftUp);
}
INSTANTIATE_TEST_SUITE_P(All, X11InputSecondPress, testing::ValuesIn(kSecondPresses),
                         [](const auto& r) { return r.param.name; });

/// Presses and releases a button at one place; the kind of the press.
Kind Click(X11Input& input, unsigned button, Time time) {
    const auto press = input.TranslateMouse(ButtonEvent(ButtonPress, button, 0, time));
    (void)input.TranslateMouse(ButtonEvent(ButtonRelease, button, Button1Mask << (button - 1), time + 10));
    return press ? press->kind : Kind::Move;
}

TEST(X11InputDoubleClick, ThirdPressIsAPressAndTheFourthADoubleClick) {
    X11Input input;
    EXPECT_EQ(Click(input, kLeft, 0), Kind::LeftDown);
    EXPECT_EQ(Click(input, kLeft, 100), Kind::DoubleClick);
    EXPECT_EQ(Click(input, kLeft, 200), Kind::LeftDown);
    EXPECT_EQ(Click(input, kLeft, 300), Kind::DoubleClick);
}

TEST(X11InputDoubleClick, PressThatIsTooLateIsTheFirstOfTheNextDoubleClick) {
    X11Input input;
    EXPECT_EQ(Click(input, kLeft, 0), Kind::LeftDown);
    EXPECT_EQ(Click(input, kLeft, 600), Kind::LeftDown);
    EXPECT_EQ(Click(input, kLeft, 1000), Kind::DoubleClick);
}

TEST(X11InputDoubleClick, PressOfAnotherButtonInBetweenPreventsIt) {
    for (const unsigned other : {kMiddle, kRight, unsigned{Button4}, unsigned{Button5}}) {
        X11Input input;
        EXPECT_EQ(Click(input, kLeft, 0), Kind::LeftDown);
        (void)Click(input, other, 100);
        EXPECT_EQ(Click(input, kLeft, 200), Kind::LeftDown) << other;
        EXPECT_EQ(Click(input, kLeft, 300), Kind::DoubleClick) << other;
    }
}

TEST(X11InputDoubleClick, MovesInBetweenDoNotPreventIt) {
    X11Input input;
    EXPECT_EQ(Click(input, kLeft, 0), Kind::LeftDown);
    (void)input.TranslateMouse(MoveEvent(0, 300, 300));
    EXPECT_EQ(Click(input, kLeft, 200), Kind::DoubleClick);
}

TEST(X11InputDoubleClick, OnlyTheLeftButtonHasThem) {
    X11Input input;
    EXPECT_EQ(Click(input, kRight, 0), Kind::RightDown);
    EXPECT_EQ(Click(input, kRight, 50), Kind::RightDown);
    EXPECT_EQ(Click(input, kMiddle, 100), Kind::MiddleDown);
    EXPECT_EQ(Click(input, kMiddle, 150), Kind::MiddleDown);
}

TEST(X11InputDoubleClick, PressWhileAnotherButtonIsHeldIsNone) {
    for (const unsigned held : {unsigned{Button2Mask}, unsigned{Button3Mask}}) {
        X11Input input;
        for (const Time time : {1000u, 1100u, 1200u}) {
            EXPECT_EQ(input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, held, time))->kind, Kind::LeftDown) << held;
            (void)input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, held | Button1Mask, time + 10));
        }
        EXPECT_EQ(Click(input, kLeft, 1300), Kind::LeftDown) << "and a press in a chord is no first one";
        EXPECT_EQ(Click(input, kLeft, 1400), Kind::DoubleClick);
    }
}

TEST(X11InputDoubleClick, ModifiersAndLocksDoNotPreventIt) {
    X11Input input;
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, LockMask | Mod2Mask | ShiftMask, 1000));
    (void)input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, Button1Mask, 1010));
    EXPECT_EQ(input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, Mod2Mask | ControlMask, 1100))->kind,
              Kind::DoubleClick);
}

// ---- lost releases

using Releases = std::vector<MouseInput>;

TEST(X11InputLostRelease, IsFoundByTheStateOfTheNextEventAtTheLastPlaceOfTheMouse) {
    const XEvent next[] = {MoveEvent(ShiftMask, 90, 91), ButtonEvent(ButtonPress, kLeft, ShiftMask),
                           ButtonEvent(ButtonPress, kRight, ShiftMask), ButtonEvent(ButtonPress, Button4, ShiftMask),
                           ButtonEvent(ButtonRelease, kRight, ShiftMask | Button3Mask)};
    for (const XEvent& event : next) {
        X11Input input;
        (void)input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, 0));
        (void)input.TranslateMouse(MoveEvent(Button1Mask, 30, 40));
        EXPECT_EQ(input.FindLostReleases(MoveEvent(Button1Mask, 31, 40)), Releases{});
        const std::uint32_t right = event.type == ButtonRelease ? 2 : 0;
        EXPECT_EQ(input.FindLostReleases(event), (Releases{{Kind::LeftUp, 4 | right, 30, 40, 0}})) << event.type;
        EXPECT_EQ(input.FindLostReleases(event), Releases{}) << "once";
    }
}

TEST(X11InputLostRelease, HasTheButtonsThatAreReleasedAfterItInItsFlags) {
    X11Input input;
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kRight, 0, 1000, 7, 8));
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kMiddle, Button3Mask, 1000, 7, 8));
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, Button2Mask | Button3Mask, 1000, 7, 8));
    EXPECT_EQ(input.FindLostReleases(MoveEvent(Button2Mask | ControlMask)),
              (Releases{{Kind::LeftUp, 2 | 16 | 8, 7, 8, 0}, {Kind::RightUp, 16 | 8, 7, 8, 0}}));
    EXPECT_EQ(input.ReleaseButtons(), (Releases{{Kind::MiddleUp, 0, 7, 8, 0}}));
    EXPECT_EQ(input.ReleaseButtons(), Releases{});
}

TEST(X11InputLostRelease, HasTheModifiersOfTheLastInputWhenTheWindowIsHidden) {
    X11Input input;
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, ControlMask, 1000, 7, 8));
    EXPECT_EQ(input.ReleaseButtons(), (Releases{{Kind::LeftUp, 8, 7, 8, 0}}));
}

TEST(X11InputLostRelease, IsNotReportedAgainWhenXSendsItLater) {
    X11Input input;
    (void)input.TranslateMouse(ButtonEvent(ButtonPress, kLeft, 0));
    (void)input.ReleaseButtons();
    EXPECT_EQ(input.TranslateMouse(MoveEvent(Button1Mask))->flags, 1u) << "as X reports it";
    EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, Button1Mask)));
    EXPECT_EQ(input.FindLostReleases(MoveEvent(0)), Releases{});
}

TEST(X11InputLostRelease, DoesNotExistForAButtonThatWasPressedElsewhere) {
    X11Input input;
    (void)input.TranslateMouse(MoveEvent(Button1Mask | Button3Mask));
    EXPECT_EQ(input.FindLostReleases(MoveEvent(0)), Releases{});
    EXPECT_FALSE(input.TranslateMouse(ButtonEvent(ButtonRelease, kLeft, Button1Mask)));
}

// ---- coalescing

TEST(X11InputCanCoalesce, MovesWithTheSameState) {
    EXPECT_TRUE(X11Input::CanCoalesce(MoveEvent(Button1Mask, 1, 1), MoveEvent(Button1Mask, 90, 2)));
    EXPECT_FALSE(X11Input::CanCoalesce(MoveEvent(Button1Mask), MoveEvent(Button1Mask | ControlMask)));
    EXPECT_FALSE(X11Input::CanCoalesce(MoveEvent(0), ButtonEvent(ButtonPress, kLeft, 0)));
    EXPECT_FALSE(X11Input::CanCoalesce(ButtonEvent(ButtonPress, kLeft, 0), ButtonEvent(ButtonPress, kLeft, 0)));
    XEvent elsewhere = MoveEvent(0);
    elsewhere.xmotion.window = 7;
    EXPECT_FALSE(X11Input::CanCoalesce(MoveEvent(0), elsewhere));
}

TEST(X11InputCanCoalesce, NeitherRepeatsOfAKeyNorNotchesOfTheWheel) {
    EXPECT_FALSE(X11Input::CanCoalesce(KeyEvent(KeyPress, 38), KeyEvent(KeyPress, 38)));
    EXPECT_FALSE(X11Input::CanCoalesce(ButtonEvent(ButtonPress, 4, 0), ButtonEvent(ButtonPress, 4, 0)));
}

// ---- runs

TEST(X11InputRuns, AreMadeOfPressesOfTheWheel) {
    const X11Input input;
    EXPECT_TRUE(input.IsNotchOrRepeat(ButtonEvent(ButtonPress, 4, 0)));
    EXPECT_TRUE(input.IsNotchOrRepeat(ButtonEvent(ButtonPress, 5, 0)));
    for (const unsigned button : {1u, 2u, 3u, 6u, 7u, 8u}) {
        EXPECT_FALSE(input.IsNotchOrRepeat(ButtonEvent(ButtonPress, button, 0))) << button;
        EXPECT_FALSE(X11Input::IsNotchRelease(ButtonEvent(ButtonRelease, button, 0))) << button;
    }
    EXPECT_FALSE(input.IsNotchOrRepeat(ButtonEvent(ButtonRelease, 4, 0)));
    EXPECT_TRUE(X11Input::IsNotchRelease(ButtonEvent(ButtonRelease, 4, 0)));
    EXPECT_TRUE(X11Input::IsNotchRelease(ButtonEvent(ButtonRelease, 5, 0)));
    EXPECT_FALSE(X11Input::IsNotchRelease(ButtonEvent(ButtonPress, 5, 0)));
}

// ---- keys

constexpr unsigned kKeycodeA = 38, kKeycodeUp = 111, kKeycodeAlt = 64, kKeycodeKeypad7 = 79;
constexpr std::int32_t kExtended = 0x100, kAltHeld = 0x2000, kWasDown = 0x4000, kReleased = 0x8000;

/// Four keys, two groups of which the second is Cyrillic; Num Lock is Mod2, Alt is Mod1.
X11Keyboard Keyboard() {
    const auto symbol = [](unsigned keycode, int group, int level) -> unsigned long {
        if (keycode == kKeycodeA && group == 0) return level == 0 ? XK_a : XK_A;
        if (keycode == kKeycodeA && group == 1) return level == 0 ? XK_Cyrillic_ef : XK_Cyrillic_EF;
        if (group != 0) return NoSymbol;
        if (keycode == kKeycodeUp) return level == 0 ? XK_Up : NoSymbol;
        if (keycode == kKeycodeAlt) return level == 0 ? XK_Alt_L : XK_Meta_L;
        if (keycode == kKeycodeKeypad7) return level == 0 ? XK_KP_Home : XK_KP_7;
        return NoSymbol;
    };
    return {symbol, Mod2Mask, Mod1Mask};
}

struct KeyTest : testing::Test {
    KeyInput Translate(int type, unsigned keycode, unsigned state = 0) {
        return input.TranslateKey(KeyEvent(type, keycode, state), keyboard);
    }
    X11Keyboard keyboard = Keyboard();
    X11Input input;
};
using X11InputKey = KeyTest;

TEST_F(X11InputKey, RepeatHasTheWasDownBitAndReleaseTheReleaseBit) {
    const KeyInput press = Translate(KeyPress, kKeycodeUp);
    EXPECT_TRUE(press.isDown);
    EXPECT_EQ(press.nChar, 38);
    EXPECT_EQ(press.nRepCnt, 1);
    EXPECT_EQ(press.nFlags, 0x48 | kExtended);
    const KeyInput repeat = Translate(KeyPress, kKeycodeUp);
    EXPECT_TRUE(repeat.isDown);
    EXPECT_EQ(repeat.nRepCnt, 1);
    EXPECT_EQ(repeat.nFlags, 0x48 | kExtended | kWasDown);
    const KeyInput release = Translate(KeyRelease, kKeycodeUp);
    EXPECT_FALSE(release.isDown);
    EXPECT_EQ(release.nChar, 38);
    EXPECT_EQ(release.nRepCnt, 1);
    EXPECT_EQ(release.nFlags, 0x48 | kExtended | kWasDown | kReleased);
    EXPECT_EQ(Translate(KeyPress, kKeycodeUp).nFlags, 0x48 | kExtended) << "pressed again";
}

TEST_F(X11InputKey, IsARepeatFromItsPressToItsReleaseOrTheLossOfTheFocus) {
    const XEvent press = KeyEvent(KeyPress, kKeycodeUp), release = KeyEvent(KeyRelease, kKeycodeUp);
    EXPECT_FALSE(input.IsNotchOrRepeat(press)) << "the first press";
    (void)Translate(KeyPress, kKeycodeUp);
    EXPECT_TRUE(input.IsNotchOrRepeat(press));
    EXPECT_FALSE(input.IsNotchOrRepeat(KeyEvent(KeyPress, kKeycodeA))) << "another key";
    EXPECT_FALSE(input.IsNotchOrRepeat(release));
    (void)Translate(KeyRelease, kKeycodeUp);
    EXPECT_FALSE(input.IsNotchOrRepeat(press));
    (void)Translate(KeyPress, kKeycodeUp);
    input.ForgetKeys();
    EXPECT_FALSE(input.IsNotchOrRepeat(press));
}

TEST_F(X11InputKey, EachKeyHasItsOwnState) {
    (void)Translate(KeyPress, kKeycodeUp);
    EXPECT_EQ(Translate(KeyPress, kKeycodeA).nFlags, 0x1E);
    EXPECT_EQ(Translate(KeyPress, kKeycodeA).nFlags, 0x1E | kWasDown);
    (void)Translate(KeyRelease, kKeycodeUp);
    EXPECT_EQ(Translate(KeyPress, kKeycodeA).nFlags, 0x1E | kWasDown);
}

TEST_F(X11InputKey, NoKeyIsDownAfterTheFocusIsLost) {
    (void)Translate(KeyPress, kKeycodeA);
    input.ForgetKeys();
    EXPECT_EQ(Translate(KeyPress, kKeycodeA).nFlags, 0x1E);
}

TEST_F(X11InputKey, ReleaseWithoutAPressIsReported) {
    const KeyInput release = Translate(KeyRelease, kKeycodeA);
    EXPECT_FALSE(release.isDown);
    EXPECT_EQ(release.nChar, 'A');
    EXPECT_EQ(release.nFlags, 0x1E | kWasDown | kReleased);
}

TEST_F(X11InputKey, AltBitIsSetFromThePressOfAltToItsRelease) {
    EXPECT_EQ(Translate(KeyPress, kKeycodeAlt).nFlags, 0x38 | kAltHeld);
    EXPECT_EQ(Translate(KeyPress, kKeycodeA, Mod1Mask).nFlags, 0x1E | kAltHeld);
    EXPECT_EQ(Translate(KeyRelease, kKeycodeA, Mod1Mask).nFlags, 0x1E | kAltHeld | kWasDown | kReleased);
    EXPECT_EQ(Translate(KeyRelease, kKeycodeAlt, Mod1Mask).nFlags, 0x38 | kWasDown | kReleased);
    EXPECT_EQ(Translate(KeyPress, kKeycodeA, Mod2Mask | ShiftMask).nFlags, 0x1E) << "Num Lock is not Alt";
}

TEST_F(X11InputKey, ReleaseHasTheCodeOfItsPress) {
    EXPECT_EQ(Translate(KeyPress, kKeycodeKeypad7, Mod2Mask).nChar, 103);
    EXPECT_EQ(Translate(KeyRelease, kKeycodeKeypad7, 0).nChar, 103) << "Num Lock was switched off in between";
    EXPECT_EQ(Translate(KeyPress, kKeycodeKeypad7, 0).nChar, 36);
}

}  // namespace
