// The real window under a real keyboard: who has the focus, and what the keys become.
#include <unistd.h>

#include "platform/X11WindowInput.h"

// After the others: their macros take the names of those.
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

constexpr std::int32_t kExtended = 0x100, kWasDown = 0x4000, kReleased = 0x8000;

TEST_F(X11WindowInputTest, APressTakesTheFocusFromTheHostAndKeysArrive) {
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    hands.MoveTo(50, 50);
    hands.Press(kLeft);
    (void)TakeMouse();
    EXPECT_EQ(FocusedWindow(), window.NativeHandle());
    hands.Release(kLeft);
    hands.MoveTo(400, 300);  // the keys follow the focus, not the pointer
    hands.Type(XK_Down);
    EXPECT_EQ(TakeKeys(),
              (Keys{{true, 40, 1, 0x50 | kExtended}, {false, 40, 1, 0x50 | kExtended | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, KeysOfTheHostStayWithTheHostWhileThePointerRestsOnThePane) {
    XSelectInput(host.Display(), host.Id(), KeyPressMask);
    const auto hostGotKey = [&] {
        XEvent event{};
        for (int i = 0; i < 100; ++i) {
            if (XCheckTypedEvent(host.Display(), KeyPress, &event) == True) return true;
            usleep(5'000);
        }
        return false;
    };
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    hands.MoveTo(50, 50);
    hands.Type(XK_a);
    EXPECT_EQ(TakeKeys(), Keys{});
    EXPECT_TRUE(hostGotKey());
    hands.Click(kLeft);
    Pump();
    hands.Type(XK_a);
    EXPECT_EQ(TakeKeys().size(), 2u);
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    Pump();
    hands.Type(XK_a);
    EXPECT_EQ(TakeKeys(), Keys{}) << "and again when the host takes the focus back";
    EXPECT_TRUE(hostGotKey());
}

TEST_F(X11WindowInputTest, AFocusThatTheHostGivesIsAsGoodAsAClick) {
    XSetInputFocus(host.Display(), window.NativeHandle(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    Pump();
    hands.Type(XK_Escape);
    EXPECT_EQ(TakeKeys(), (Keys{{true, 27, 1, 0x01}, {false, 27, 1, 0x01 | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, RepeatsOfAHeldKeyThatWaitTogetherAreOnePressWithTheirCount) {
    ClickIntoPane();
    unsigned delay = 0, interval = 0;
    XkbGetAutoRepeatRate(host.Display(), XkbUseCoreKbd, &delay, &interval);
    XkbSetAutoRepeatRate(host.Display(), XkbUseCoreKbd, 100, 20);
    hands.PressKey(XK_Up);
    usleep(400'000);
    window.ProcessEvents();
    const Keys first = std::exchange(client.keys, {});
    usleep(300'000);
    hands.ReleaseKey(XK_Up);
    const Keys second = TakeKeys();
    XkbSetAutoRepeatRate(host.Display(), XkbUseCoreKbd, delay, interval);
    ASSERT_EQ(first.size(), 1u) << "the server's own repeat sends no releases in between";
    EXPECT_EQ(first[0].nChar, 38);
    EXPECT_GE(first[0].nRepCnt, 3) << "300 ms with a press every 20";
    EXPECT_EQ(first[0].nFlags, 0x48 | kExtended);
    ASSERT_EQ(second.size(), 2u);
    EXPECT_GE(second[0].nRepCnt, 3);
    EXPECT_EQ(second[0].nFlags, 0x48 | kExtended | kWasDown);
    EXPECT_EQ(second[1], (KeyInput{false, 38, 1, 0x48 | kExtended | kWasDown | kReleased}));
    hands.PressKey(XK_Up);
    EXPECT_EQ(TakeKeys(), (Keys{{true, 38, 1, 0x48 | kExtended}})) << "released in between: not down before";
}

TEST_F(X11WindowInputTest, KeysHaveTheCodesThatTheHandlersExpect) {
    ClickIntoPane();
    struct Row {
        KeySym symbol;
        std::int32_t code;
    };
    const Row rows[] = {{XK_Escape, 27}, {XK_Delete, 46}, {XK_space, 32},     {XK_Up, 38},        {XK_Down, 40},
                        {XK_Left, 37},   {XK_Right, 39},  {XK_Control_L, 17}, {XK_Control_R, 17}, {XK_Shift_R, 16},
                        {XK_Alt_L, 18},  {XK_a, 'A'},     {XK_z, 'Z'},        {XK_0, '0'},        {XK_9, '9'},
                        {XK_F1, 112},    {XK_F12, 123},   {XK_Return, 13},    {XK_Tab, 9},        {XK_BackSpace, 8},
                        {XK_Home, 36},   {XK_Prior, 33},  {XK_KP_Add, 107},   {XK_KP_Divide, 111}};
    for (const Row& row : rows) {
        hands.Type(row.symbol);
        const Keys keys = TakeKeys();
        ASSERT_EQ(keys.size(), 2u) << row.code;
        EXPECT_EQ(keys[0].nChar, row.code);
        EXPECT_TRUE(keys[0].isDown) << row.code;
        EXPECT_EQ(keys[1].nChar, row.code);
        EXPECT_FALSE(keys[1].isDown) << row.code;
    }
}

TEST_F(X11WindowInputTest, TheKeypadFollowsNumLock) {
    ClickIntoPane();
    hands.Type(XK_KP_Home);
    EXPECT_EQ(TakeKeys().front().nChar, 36);
    hands.Type(XK_Num_Lock);
    hands.Type(XK_KP_Home);
    const Keys keys = TakeKeys();
    hands.Type(XK_Num_Lock);
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_EQ(keys[0].nChar, 144);
    EXPECT_EQ(keys[2].nChar, 103);
    EXPECT_EQ(keys[2].nFlags, 0x47);
}

TEST_F(X11WindowInputTest, AKeyThatGetsAnotherSymbolHasAnotherCode) {
    ClickIntoPane();
    const KeyCode keycode = XKeysymToKeycode(host.Display(), XK_y);
    KeySym german[] = {XK_z, XK_Z}, russian[] = {XK_Cyrillic_en, XK_Cyrillic_EN}, us[] = {XK_y, XK_Y};
    const auto typeWith = [&](KeySym* symbols) {
        XChangeKeyboardMapping(host.Display(), keycode, 2, symbols, 1);
        XSync(host.Display(), False);
        Pump();
        XTestFakeKeyEvent(host.Display(), keycode, True, CurrentTime);
        XTestFakeKeyEvent(host.Display(), keycode, False, CurrentTime);
        XSync(host.Display(), False);
        const Keys keys = TakeKeys();
        return keys.empty() ? 0 : keys.front().nChar;
    };
    EXPECT_EQ(typeWith(german), 'Z');
    EXPECT_EQ(typeWith(russian), 'Y') << "by its place";
    EXPECT_EQ(typeWith(us), 'Y');
}

TEST_F(X11WindowInputTest, AKeyHeldWhenTheFocusGoesIsNotRememberedAsDown) {
    ClickIntoPane();
    hands.PressKey(XK_Control_L);
    EXPECT_EQ(TakeKeys(), (Keys{{true, 17, 1, 0x1D}}));
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    Pump();
    hands.ReleaseKey(XK_Control_L);
    EXPECT_EQ(TakeKeys(), Keys{}) << "went to the host";
    ClickIntoPane();
    hands.PressKey(XK_Control_L);
    EXPECT_EQ(TakeKeys(), (Keys{{true, 17, 1, 0x1D}}));
}

TEST_F(X11WindowInputTest, AWindowThatCannotHaveTheFocusTakesThePressAllTheSame) {
    hands.MoveTo(50, 50);
    (void)TakeMouse();
    hands.Click(kLeft);
    XUnmapWindow(host.Display(), window.NativeHandle());  // before the press is handled: X refuses the focus then
    XSync(host.Display(), False);
    EXPECT_EQ(TakeMouse().size(), 2u);
    EXPECT_TRUE(window.Exists());
}

TEST_F(X11WindowInputTest, AWindowMadeAnewKeepsTheFocusThatItHad) {
    ClickIntoPane();
    ASSERT_TRUE(window.Recreate());
    Pump();
    EXPECT_EQ(FocusedWindow(), window.NativeHandle());
    hands.Type(XK_Escape);
    EXPECT_EQ(TakeKeys(), (Keys{{true, 27, 1, 0x01}, {false, 27, 1, 0x01 | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, AWindowMadeAnewTakesNoFocusFromTheHost) {
    ClickIntoPane();
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    ASSERT_TRUE(window.Recreate());
    Pump();
    EXPECT_EQ(FocusedWindow(), host.Id());
    hands.Type(XK_Escape);
    EXPECT_EQ(TakeKeys(), Keys{});
}

TEST_F(X11WindowInputTest, AWindowMadeAfterItsEndTakesNoFocus) {
    ClickIntoPane();
    window.Destroy();
    std::string reason;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    Pump();
    EXPECT_NE(FocusedWindow(), window.NativeHandle());
}

// ---- top-level

TEST_F(X11WindowInputTest, ATopLevelAsksItsManagerForTheFocusAndGetsKeys) {
    PaneWindowRequest request;
    request.kind = PaneWindowRequest::Kind::TopLevel;
    request.x = kPaneX;
    request.y = kPaneY;
    X11Window topLevel(request);
    DrawingClient other(topLevel);
    std::string reason;
    ASSERT_TRUE(topLevel.Create(other, &reason)) << reason;
    XWMHints* const hints = XGetWMHints(host.Display(), topLevel.NativeHandle());
    ASSERT_NE(hints, nullptr);
    EXPECT_NE(hints->flags & InputHint, 0);
    EXPECT_EQ(hints->input, True);
    XFree(hints);
    hands.MoveTo(50, 50);
    hands.Click(kLeft);
    for (int i = 0; i < 100 && FocusedWindow() != topLevel.NativeHandle(); ++i) {
        usleep(5'000);
        topLevel.ProcessEvents();
    }
    hands.Type(XK_space);
    for (int i = 0; i < 100 && other.keys.size() < 2; ++i) {
        usleep(5'000);
        topLevel.ProcessEvents();
    }
    EXPECT_EQ(other.keys, (Keys{{true, 32, 1, 0x39}, {false, 32, 1, 0x39 | kWasDown | kReleased}}));
}

// ---- a handler that does away with the window

TEST_F(X11WindowInputTest, AKeyHandlerMayDestroyTheWindow) {
    ClickIntoPane();
    client.onKey = [&](const KeyInput&) { window.Destroy(); };
    hands.Type(XK_Escape);
    EXPECT_EQ(TakeKeys().size(), 1u);
    EXPECT_FALSE(window.Exists());
}

}  // namespace
