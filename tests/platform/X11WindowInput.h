// What the tests of a window's input share: pointer and keyboard of an X server, driven by XTest, and the window inside
// a host's.
#pragma once
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/InputText.h"
#include "platform/X11Window.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

// After the others, whose names their macros would replace.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;

using Mouse = std::vector<MouseInput>;
using Keys = std::vector<KeyInput>;

inline constexpr unsigned kLeft = 1, kMiddle = 2, kRight = 3;
inline constexpr int kPaneX = 20, kPaneY = 30, kPaneWidth = 200, kPaneHeight = 100;

/// Pointer and keyboard of the user. What is still pressed at the end is released.
class XTestUser {
public:
    explicit XTestUser(Display* display) : m_pDisplay(display) {}
    ~XTestUser() {
        for (const unsigned button : m_vButtons) XTestFakeButtonEvent(m_pDisplay, button, False, CurrentTime);
        for (const unsigned key : m_vKeys) XTestFakeKeyEvent(m_pDisplay, key, False, CurrentTime);
        XSync(m_pDisplay, False);
    }
    XTestUser(const XTestUser&) = delete;
    XTestUser& operator=(const XTestUser&) = delete;

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
    void Click(unsigned button) { Clicks(button, 1); }
    /// In one buffer to the server, so that no load of the machine makes them slow clicks.
    void Clicks(unsigned button, int count) {
        for (int i = 0; i < count; ++i) {
            XTestFakeButtonEvent(m_pDisplay, button, True, CurrentTime);
            XTestFakeButtonEvent(m_pDisplay, button, False, CurrentTime);
        }
        XSync(m_pDisplay, False);
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
    /// In one buffer to the server, so that no load of the machine makes the key repeat.
    void Type(KeySym symbol) {
        const unsigned key = XKeysymToKeycode(m_pDisplay, symbol);
        XTestFakeKeyEvent(m_pDisplay, key, True, CurrentTime);
        XTestFakeKeyEvent(m_pDisplay, key, False, CurrentTime);
        XSync(m_pDisplay, False);
    }

private:
    Display* m_pDisplay;
    std::vector<unsigned> m_vButtons, m_vKeys;
};

struct X11WindowInputTest : testing::Test {
    void SetUp() override {
        user.MoveTo(400, 300);  // on the host, beside the pane
        std::string reason;
        ASSERT_TRUE(window.Create(client, &reason)) << reason;
        HandleAll();
        client.mouse.clear();
    }

    static KV_ScenePane::WindowRequest Request(Window parent) {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::Child;
        request.parent = parent;
        request.x = kPaneX;
        request.y = kPaneY;
        request.width = kPaneWidth;
        request.height = kPaneHeight;
        return request;
    }

    void HandleAll() { EXPECT_TRUE(HandleAllEvents(host, window)) << "the events do not end"; }
    /// Those since the last call.
    Mouse MouseInputs() {
        HandleAll();
        return std::exchange(client.mouse, {});
    }
    Keys KeyInputs() {
        HandleAll();
        return std::exchange(client.keys, {});
    }
    /// Moves the pointer into the pane and gives it the focus by a click.
    void ClickIntoPane() {
        user.MoveTo(50, 50);
        user.Click(kMiddle);
        (void)MouseInputs();
    }
    Window FocusedWindow() {
        Window focused = None;
        int revert = 0;
        XGetInputFocus(host.Display(), &focused, &revert);
        return focused;
    }

    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    XTestUser user{host.Display()};
    X11Window window{Request(host.Id())};
    DrawingClient client{window};
};
