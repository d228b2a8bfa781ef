// What the tests of the real window's input share: pointer and keyboard of an X server, moved by XTest, and the window
// inside a host's.
#pragma once
#include <gtest/gtest.h>
#include <poll.h>

#include <utility>
#include <vector>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/InputText.h"
#include "platform/X11Window.h"
#include "support/XvfbServer.h"

// After the others: their macros take the names of those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

using Mouse = std::vector<MouseInput>;
using Keys = std::vector<KeyInput>;

inline constexpr unsigned kLeft = 1, kMiddle = 2, kRight = 3;
inline constexpr int kPaneX = 20, kPaneY = 30, kPaneWidth = 200, kPaneHeight = 100;

inline bool IsReadable(const PaneWindow& window, int milliseconds) {
    pollfd waiting{window.EventDescriptor(), POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

/// The user's hands. Whatever is still down is let go at the end.
class Hands {
public:
    explicit Hands(Display* display) : m_pDisplay(display) {}
    ~Hands() {
        for (const unsigned button : m_vButtons) XTestFakeButtonEvent(m_pDisplay, button, False, CurrentTime);
        for (const unsigned key : m_vKeys) XTestFakeKeyEvent(m_pDisplay, key, False, CurrentTime);
        XSync(m_pDisplay, False);
    }
    Hands(const Hands&) = delete;
    Hands& operator=(const Hands&) = delete;

    /// In pixels of the pane, which may be outside it.
    void MoveTo(int x, int y) {
        XTestFakeMotionEvent(m_pDisplay, -1, kPaneX + x, kPaneY + y, CurrentTime);
        XSync(m_pDisplay, False);
    }
    void Press(unsigned button) {
        m_vButtons.push_back(button);
        XTestFakeButtonEvent(m_pDisplay, button, True, CurrentTime);
        XSync(m_pDisplay, False);
    }
    void Release(unsigned button) {
        std::erase(m_vButtons, button);
        XTestFakeButtonEvent(m_pDisplay, button, False, CurrentTime);
        XSync(m_pDisplay, False);
    }
    void Click(unsigned button) {
        Press(button);
        Release(button);
    }
    void PressKey(KeySym symbol) {
        m_vKeys.push_back(XKeysymToKeycode(m_pDisplay, symbol));
        XTestFakeKeyEvent(m_pDisplay, m_vKeys.back(), True, CurrentTime);
        XSync(m_pDisplay, False);
    }
    void ReleaseKey(KeySym symbol) {
        const unsigned key = XKeysymToKeycode(m_pDisplay, symbol);
        std::erase(m_vKeys, key);
        XTestFakeKeyEvent(m_pDisplay, key, False, CurrentTime);
        XSync(m_pDisplay, False);
    }
    void Type(KeySym symbol) {
        PressKey(symbol);
        ReleaseKey(symbol);
    }

private:
    Display* m_pDisplay;
    std::vector<unsigned> m_vButtons, m_vKeys;
};

struct X11WindowInputTest : testing::Test {
    void SetUp() override {
        hands.MoveTo(400, 300);  // on the host, beside the pane
        std::string reason;
        ASSERT_TRUE(window.Create(client, &reason)) << reason;
        Pump();
        client.mouse.clear();
    }

    static PaneWindowRequest Request(Window parent) {
        PaneWindowRequest request;
        request.kind = PaneWindowRequest::Kind::Child;
        request.parent = parent;
        request.x = kPaneX;
        request.y = kPaneY;
        request.width = kPaneWidth;
        request.height = kPaneHeight;
        return request;
    }

    /// Runs rounds until nothing comes any more.
    void Pump() {
        for (int i = 0; i < 100; ++i) {
            window.ProcessEvents();
            if (!IsReadable(window, 30)) return;
        }
        ADD_FAILURE() << "the window never comes to rest";
    }
    Mouse TakeMouse() {
        Pump();
        return std::exchange(client.mouse, {});
    }
    Keys TakeKeys() {
        Pump();
        return std::exchange(client.keys, {});
    }
    /// The pointer in the pane, which has the focus by a click.
    void ClickIntoPane() {
        hands.MoveTo(50, 50);
        hands.Click(kMiddle);
        (void)TakeMouse();
    }
    Window FocusedWindow() {
        Window focused = None;
        int revert = 0;
        XGetInputFocus(host.Display(), &focused, &revert);
        return focused;
    }

    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    Hands hands{host.Display()};
    X11Window window{Request(host.Id())};
    DrawingClient client{window};
};
