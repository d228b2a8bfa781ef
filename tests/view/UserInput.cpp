#include "view/UserInput.h"

#include <poll.h>

#include <chrono>
#include <stdexcept>
#include <vector>

#include "support/XvfbServer.h"

// After the others: their macros would replace names in those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using Kind = KV_ScenePane::MouseInput::Kind;
using Clock = std::chrono::steady_clock;

/// The inputs as a window reports them: a button is in the flags of its press and no longer in those of its release.
class CallInput final : public UserInput {
public:
    CallInput() { HoldDispatchTimer(m_viewer); }

    TestControl& Viewer() override { return m_viewer; }
    void MoveTo(int x, int y) override {
        m_nX = x, m_nY = y;
        Send(Kind::Move);
    }
    void Press(Button button) override {
        m_flags |= FlagOf(button);
        Send(button == Button::Left ? Kind::LeftDown : button == Button::Middle ? Kind::MiddleDown : Kind::RightDown);
    }
    void Release(Button button) override {
        m_flags &= ~FlagOf(button);
        Send(button == Button::Left ? Kind::LeftUp : button == Button::Middle ? Kind::MiddleUp : Kind::RightUp);
    }
    void DoubleClick() override {
        Press(Button::Left);
        Release(Button::Left);
        m_flags |= FlagOf(Button::Left);
        Send(Kind::DoubleClick);
        Release(Button::Left);
    }
    void Wheel(int notches) override { Send(Kind::Wheel, notches * KV_ScenePane::kWheelNotch); }
    void HoldShift(bool down) override { Hold(KV_ScenePane::kMouseShift, 16, down); }
    void HoldCtrl(bool down) override { Hold(KV_ScenePane::kMouseCtrl, KV_ScenePane::kKeyCtrl, down); }
    void Type(std::int32_t nChar) override {
        for (const bool down : {true, false}) m_viewer->SendKey({.isDown = down, .nChar = nChar});
    }
    bool OthersCanGrabThePointer() override { return true; }  // it is on no screen

private:
    void Send(Kind kind, int delta = 0) {
        m_viewer->SendMouse({.kind = kind, .flags = m_flags, .x = m_nX, .y = m_nY, .delta = delta});
    }
    void Hold(std::uint32_t flag, std::int32_t key, bool down) {
        m_flags = down ? m_flags | flag : m_flags & ~flag;
        m_viewer->SendKey({.isDown = down, .nChar = key});
    }

    OffscreenControl m_viewer{kWidth, kHeight};
    std::uint32_t m_flags = 0;
    int m_nX = 0, m_nY = 0;
};

/// A second connection to the server, for the devices of the user.
struct DisplayConnection {
    DisplayConnection() : display(XOpenDisplay(nullptr)) {
        if (display == nullptr) throw std::runtime_error("no connection to the X server");
    }
    ~DisplayConnection() { XCloseDisplay(display); }
    DisplayConnection(const DisplayConnection&) = delete;
    DisplayConnection& operator=(const DisplayConnection&) = delete;
    Display* display;
};

class PointerInput final : public UserInput {
public:
    PointerInput() {
        HoldDispatchTimer(m_viewer);
        m_viewer->PerformRefresh();  // the first frame reads the size of the window
        const Window window = m_viewer->NativeWindow();
        Window child = 0;
        XTranslateCoordinates(m_connection.display, window, DefaultRootWindow(m_connection.display), 0, 0, &m_nLeft,
                              &m_nTop, &child);
        PumpUntil(*m_viewer, "the mapped window", [&] {
            XWindowAttributes attributes{};
            XGetWindowAttributes(m_connection.display, window, &attributes);
            return attributes.map_state == IsViewable;
        });
        XSetInputFocus(m_connection.display, window, RevertToParent, CurrentTime);
        MoveTo(kWidth / 2 + 1, kHeight / 2 + 1);
    }
    ~PointerInput() override {
        for (const unsigned button : m_vButtons) XTestFakeButtonEvent(m_connection.display, button, False, CurrentTime);
        for (const unsigned key : m_vKeys) XTestFakeKeyEvent(m_connection.display, key, False, CurrentTime);
        XSync(m_connection.display, False);
    }

    TestControl& Viewer() override { return m_viewer; }
    void MoveTo(int x, int y) override {
        if (x == m_nX && y == m_nY) return;  // the server reports no such move
        m_nX = x, m_nY = y;
        XTestFakeMotionEvent(m_connection.display, -1, m_nLeft + x, m_nTop + y, CurrentTime);
        XSync(m_connection.display, False);
        PumpUntil(*m_viewer, "move", [&] {
            const auto& heard = m_viewer.window->mouseHeard;
            return !heard.empty() && heard.back().kind == Kind::Move && heard.back().x == x && heard.back().y == y;
        });
    }
    void Press(Button button) override {
        Fake(button, true);
        XSync(m_connection.display, False);
        WaitForButtons("press", 1);
    }
    void Release(Button button) override {
        Fake(button, false);
        XSync(m_connection.display, False);
        WaitForButtons("release", 1);
    }
    void DoubleClick() override {
        // In one batch: the server stamps all four with its time as it reads them, and half a second between the
        // presses would make them two clicks.
        for (const bool down : {true, false, true, false}) Fake(Button::Left, down);
        XSync(m_connection.display, False);
        WaitForButtons("double click", 4);
    }
    void Wheel(int notches) override {
        const unsigned button = notches > 0 ? 4 : 5;
        for (int i = 0; i < std::abs(notches); ++i) {
            XTestFakeButtonEvent(m_connection.display, button, True, CurrentTime);
            XTestFakeButtonEvent(m_connection.display, button, False, CurrentTime);
            XSync(m_connection.display, False);
            WaitForButtons("wheel", 1);
        }
    }
    void HoldShift(bool down) override { Hold(XK_Shift_L, down); }
    void HoldCtrl(bool down) override { Hold(XK_Control_L, down); }
    void Type(std::int32_t nChar) override {
        for (const bool down : {true, false}) Hold(SymbolOf(nChar), down);
    }
    bool OthersCanGrabThePointer() override {
        Display* const display = m_connection.display;
        const int answer = XGrabPointer(display, DefaultRootWindow(display), False, ButtonPressMask, GrabModeAsync,
                                        GrabModeAsync, None, None, CurrentTime);
        XUngrabPointer(display, CurrentTime);
        XSync(display, False);
        return answer == GrabSuccess;
    }

private:
    static KeySym SymbolOf(std::int32_t nChar) {
        switch (nChar) {
            case KV_ScenePane::kKeyEscape:
                return XK_Escape;
            case KV_ScenePane::kKeySpace:
                return XK_space;
            case KV_ScenePane::kKeyUp:
                return XK_Up;
            case KV_ScenePane::kKeyDown:
                return XK_Down;
            case KV_ScenePane::kKeyDelete:
                return XK_Delete;
            case 'A':
                return XK_a;
            default:
                throw std::invalid_argument("no symbol for this key code");
        }
    }
    void Fake(Button button, bool down) {
        const auto number = static_cast<unsigned>(button);
        std::erase(m_vButtons, number);
        if (down) m_vButtons.push_back(number);
        XTestFakeButtonEvent(m_connection.display, number, down, CurrentTime);
    }
    /// Waits until the viewer has received @p count more inputs of buttons or wheel than at the last call.
    void WaitForButtons(const char* what, std::size_t count) {
        const std::vector<KV_ScenePane::MouseInput>& heard = m_viewer.window->mouseHeard;
        std::size_t buttons = 0;
        PumpUntil(*m_viewer, what, [&] {
            buttons = 0;
            for (const KV_ScenePane::MouseInput& input : heard) buttons += input.kind != Kind::Move;
            return buttons >= m_nButtonsReceived + count;
        });
        m_nButtonsReceived += count;
    }
    void Hold(KeySym symbol, bool down) {
        const unsigned key = XKeysymToKeycode(m_connection.display, symbol);
        std::erase(m_vKeys, key);
        if (down) m_vKeys.push_back(key);
        const std::size_t before = m_viewer.window->keysHeard.size();
        XTestFakeKeyEvent(m_connection.display, key, down, CurrentTime);
        XSync(m_connection.display, False);
        PumpUntil(*m_viewer, "key", [&] { return m_viewer.window->keysHeard.size() > before; });
    }

    XvfbServer& m_server = XvfbServer::Shared();
    DisplayConnection m_connection;
    TestControl m_viewer{KV_ScenePane::WindowRequest::Kind::TopLevel, kWidth, kHeight};
    int m_nLeft = 0, m_nTop = 0, m_nX = -1, m_nY = -1;
    std::size_t m_nButtonsReceived = 0;
    std::vector<unsigned> m_vButtons, m_vKeys;
};

}  // namespace

void PumpUntil(CKV_ScenePaneCtrl& control, const char* what, const std::function<bool()>& done) {
    const auto deadline = Clock::now() + std::chrono::minutes(1);
    while (!done()) {
        if (Clock::now() > deadline) throw std::runtime_error(std::string("not received within a minute: ") + what);
        pollfd waiting{control.EventDescriptor(), POLLIN, 0};
        poll(&waiting, 1, 50);
        control.ProcessEvents();
    }
}

void HoldDispatchTimer(TestControl& viewer) {
    constexpr std::uint32_t kDay = 24 * 60 * 60 * 1000;
    viewer->m_mouseDispatch.delay = kDay;
}

void EndDispatchDelay(TestControl& viewer) {
    if (!viewer->m_mouseDispatch.pending) return;
    viewer.window->PostPrivateMessage(kTimerMessage);
    PumpUntil(*viewer, "the dispatch of a delayed press", [&] { return !viewer->m_mouseDispatch.pending; });
}

std::unique_ptr<UserInput> MakeCallInput() { return std::make_unique<CallInput>(); }
std::unique_ptr<UserInput> MakePointerInput() { return std::make_unique<PointerInput>(); }
