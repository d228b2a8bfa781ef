// A window of an X server under a keyboard: which window has the focus, and what the keys become.
#include <algorithm>
#include <thread>

#include "platform/X11WindowInput.h"

// After the others, whose names their macros would replace.
#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

constexpr std::int32_t kExtended = 0x100, kWasDown = 0x4000, kReleased = 0x8000;

TEST_F(X11WindowInputTest, PressRequestsTheFocusAndKeysArrive) {
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    user.MoveTo(50, 50);
    user.Press(kLeft);
    (void)MouseInputs();
    EXPECT_EQ(FocusedWindow(), window.NativeHandle());
    user.Release(kLeft);
    user.MoveTo(400, 300);  // the keys follow the focus, not the pointer
    user.Type(XK_Down);
    EXPECT_EQ(KeyInputs(),
              (Keys{{true, 40, 1, 0x50 | kExtended}, {false, 40, 1, 0x50 | kExtended | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, KeysGoToTheFocusedHostWhileThePointerIsOverThePane) {
    XSelectInput(host.Display(), host.Id(), KeyPressMask);
    const auto hostGotKey = [&] {
        XEvent event{};
        return WaitUntil([&] { return XCheckTypedEvent(host.Display(), KeyPress, &event) == True; });
    };
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    user.MoveTo(50, 50);
    user.Type(XK_a);
    EXPECT_EQ(KeyInputs(), Keys{});
    EXPECT_TRUE(hostGotKey());
    user.Click(kLeft);
    HandleAll();
    user.Type(XK_a);
    EXPECT_EQ(KeyInputs().size(), 2u);
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    HandleAll();
    user.Type(XK_a);
    EXPECT_EQ(KeyInputs(), Keys{}) << "also once the host has set the focus back";
    EXPECT_TRUE(hostGotKey());
}

TEST_F(X11WindowInputTest, NoKeyIsLostWhileAPressRequestsTheFocus) {
    XSelectInput(host.Display(), host.Id(), KeyPressMask);
    user.MoveTo(50, 50);
    (void)MouseInputs();
    int typed = 0;
    std::jthread typist([&](const std::stop_token& stop) {
        Display* const display = XOpenDisplay(server.Name().c_str());
        for (XTestUser other(display); !stop.stop_requested(); ++typed) other.Type(XK_a);
        XCloseDisplay(display);
    });
    for (int i = 0; i < 200; ++i) {
        XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
        user.Click(kMiddle);
        ASSERT_TRUE(ProcessEventsUntil(window, [&] { return FocusedWindow() == window.NativeHandle(); }));
    }
    typist.request_stop();
    typist.join();
    const auto toPane = std::ranges::count_if(KeyInputs(), &KeyInput::isDown);
    int toHost = 0;
    for (XEvent event{}; XCheckTypedEvent(host.Display(), KeyPress, &event) == True;) ++toHost;
    EXPECT_EQ(toPane + toHost, typed);
    EXPECT_GT(toPane, 0);
    EXPECT_GT(toHost, 0);
}

TEST_F(X11WindowInputTest, FocusSetByTheHostBringsKeysAsAClickDoes) {
    XSetInputFocus(host.Display(), window.NativeHandle(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    HandleAll();
    user.Type(XK_Escape);
    EXPECT_EQ(KeyInputs(), (Keys{{true, 27, 1, 0x01}, {false, 27, 1, 0x01 | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, EachQueuedRepeatOfAHeldKeyIsAPress) {
    ClickIntoPane();
    unsigned delay = 0, interval = 0;
    XkbGetAutoRepeatRate(host.Display(), XkbUseCoreKbd, &delay, &interval);
    XkbSetAutoRepeatRate(host.Display(), XkbUseCoreKbd, 100, 20);
    XSelectInput(host.Display(), window.NativeHandle(), KeyPressMask);  // of the host's own: counts the repeats
    int presses = 0;
    const auto waitForPresses = [&](int count) {
        XEvent event{};
        return WaitUntil([&] {
            while (XCheckTypedEvent(host.Display(), KeyPress, &event) == True) ++presses;
            return presses >= count;
        });
    };
    user.PressKey(XK_Up);
    EXPECT_TRUE(waitForPresses(4));
    (void)window.Reparent(0, 0, 0);  // a round trip: the window's connection has read them as well
    window.ProcessEvents();
    const Keys first = std::exchange(client.keys, {});
    ASSERT_GE(first.size(), 4u);
    EXPECT_EQ(first[0], (KeyInput{true, 38, 1, 0x48 | kExtended}));
    for (std::size_t i = 1; i < first.size(); ++i)
        EXPECT_EQ(first[i], (KeyInput{true, 38, 1, 0x48 | kExtended | kWasDown})) << "no release in between";
    EXPECT_TRUE(waitForPresses(static_cast<int>(first.size()) + 3));
    user.ReleaseKey(XK_Up);
    const Keys second = KeyInputs();
    XkbSetAutoRepeatRate(host.Display(), XkbUseCoreKbd, delay, interval);
    ASSERT_GE(second.size(), 4u);
    for (std::size_t i = 0; i + 1 < second.size(); ++i)
        EXPECT_EQ(second[i], (KeyInput{true, 38, 1, 0x48 | kExtended | kWasDown}));
    EXPECT_EQ(second.back(), (KeyInput{false, 38, 1, 0x48 | kExtended | kWasDown | kReleased}));
    user.Type(XK_Up);
    EXPECT_EQ(KeyInputs(),
              (Keys{{true, 38, 1, 0x48 | kExtended}, {false, 38, 1, 0x48 | kExtended | kWasDown | kReleased}}))
        << "released in between: not down before";
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
        user.Type(row.symbol);
        const Keys keys = KeyInputs();
        ASSERT_EQ(keys.size(), 2u) << row.code;
        EXPECT_EQ(keys[0].nChar, row.code);
        EXPECT_TRUE(keys[0].isDown) << row.code;
        EXPECT_EQ(keys[1].nChar, row.code);
        EXPECT_FALSE(keys[1].isDown) << row.code;
    }
}

TEST_F(X11WindowInputTest, KeypadKeysDependOnNumLock) {
    ClickIntoPane();
    user.Type(XK_KP_Home);
    EXPECT_EQ(KeyInputs().front().nChar, 36);
    user.Type(XK_Num_Lock);
    user.Type(XK_KP_Home);
    const Keys keys = KeyInputs();
    user.Type(XK_Num_Lock);
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_EQ(keys[0].nChar, 144);
    EXPECT_EQ(keys[2].nChar, 103);
    EXPECT_EQ(keys[2].nFlags, 0x47);
}

TEST_F(X11WindowInputTest, KeyCodesFollowAChangeOfTheKeyboardMapping) {
    ClickIntoPane();
    const KeyCode keycode = XKeysymToKeycode(host.Display(), XK_y);
    KeySym german[] = {XK_z, XK_Z}, russian[] = {XK_Cyrillic_en, XK_Cyrillic_EN}, us[] = {XK_y, XK_Y};
    const auto typeWith = [&](KeySym* symbols) {
        XChangeKeyboardMapping(host.Display(), keycode, 2, symbols, 1);
        XSync(host.Display(), False);
        HandleAll();
        XTestFakeKeyEvent(host.Display(), keycode, True, CurrentTime);
        XTestFakeKeyEvent(host.Display(), keycode, False, CurrentTime);
        XSync(host.Display(), False);
        const Keys keys = KeyInputs();
        return keys.empty() ? 0 : keys.front().nChar;
    };
    EXPECT_EQ(typeWith(german), 'Z');
    EXPECT_EQ(typeWith(russian), 'Y') << "by its position";
    EXPECT_EQ(typeWith(us), 'Y');
}

TEST_F(X11WindowInputTest, KeyHeldWhenTheFocusIsLostIsUpAfterwards) {
    ClickIntoPane();
    user.PressKey(XK_Control_L);
    EXPECT_EQ(KeyInputs(), (Keys{{true, 17, 1, 0x1D}}));
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    HandleAll();
    user.ReleaseKey(XK_Control_L);
    EXPECT_EQ(KeyInputs(), Keys{}) << "sent to the host";
    ClickIntoPane();
    user.PressKey(XK_Control_L);
    EXPECT_EQ(KeyInputs(), (Keys{{true, 17, 1, 0x1D}}));
}

TEST_F(X11WindowInputTest, PressIsReportedWhenTheServerRefusesTheFocus) {
    user.MoveTo(50, 50);
    (void)MouseInputs();
    user.Click(kLeft);
    XUnmapWindow(host.Display(), window.NativeHandle());  // before the press is handled: X refuses the focus then
    XSync(host.Display(), False);
    EXPECT_EQ(MouseInputs().size(), 2u);
    EXPECT_TRUE(window.Exists());
    XMapWindow(host.Display(), window.NativeHandle());
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    user.Type(XK_a);
    EXPECT_EQ(KeyInputs(), Keys{}) << "keys for the host, which has the focus, while the pointer is over the pane";
}

TEST_F(X11WindowInputTest, RecreatedWindowKeepsTheFocusThatItHad) {
    ClickIntoPane();
    ASSERT_TRUE(window.Recreate());
    HandleAll();
    EXPECT_EQ(FocusedWindow(), window.NativeHandle());
    user.Type(XK_Escape);
    EXPECT_EQ(KeyInputs(), (Keys{{true, 27, 1, 0x01}, {false, 27, 1, 0x01 | kWasDown | kReleased}}));
}

TEST_F(X11WindowInputTest, RecreatedWindowLeavesTheFocusWithTheHost) {
    ClickIntoPane();
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    XSync(host.Display(), False);
    ASSERT_TRUE(window.Recreate());
    HandleAll();
    EXPECT_EQ(FocusedWindow(), host.Id());
    user.Type(XK_Escape);
    EXPECT_EQ(KeyInputs(), Keys{});
}

TEST_F(X11WindowInputTest, WindowCreatedAfterADestructionRequestsNoFocus) {
    ClickIntoPane();
    window.Destroy();
    std::string reason;
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    HandleAll();
    EXPECT_NE(FocusedWindow(), window.NativeHandle());
}

// ---- top-level

TEST_F(X11WindowInputTest, TopLevelAsksTheWindowManagerForTheFocusAndGetsKeys) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::TopLevel;
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
    user.MoveTo(50, 50);
    user.Click(kLeft);
    EXPECT_TRUE(ProcessEventsUntil(topLevel, [&] { return FocusedWindow() == topLevel.NativeHandle(); }));
    user.Type(XK_space);
    EXPECT_TRUE(ProcessEventsUntil(topLevel, [&] { return other.keys.size() >= 2; }));
    EXPECT_EQ(other.keys, (Keys{{true, 32, 1, 0x39}, {false, 32, 1, 0x39 | kWasDown | kReleased}}));
}

// ---- a handler that destroys the window

TEST_F(X11WindowInputTest, KeyHandlerMayDestroyTheWindow) {
    ClickIntoPane();
    client.onKey = [&](const KeyInput&) { window.Destroy(); };
    user.Type(XK_Escape);
    EXPECT_EQ(KeyInputs().size(), 1u);
    EXPECT_FALSE(window.Exists());
}

}  // namespace
