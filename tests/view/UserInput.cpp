#include "view/UserInput.h"

#include <poll.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <vector>

#include "support/XvfbServer.h"

// After the others: their macros take the names of those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using Kind = KV_ScenePane::MouseInput::Kind;
using Clock = std::chrono::steady_clock;

/// Drives the viewer until @p done, for at most ten seconds.
void PumpUntil(CKV_ScenePaneCtrl& control, const char* what, const std::function<bool()>& done) {
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!done()) {
        if (Clock::now() > deadline) throw std::runtime_error(std::string("the viewer never heard of it: ") + what);
        pollfd waiting{control.EventDescriptor(), POLLIN, 0};
        poll(&waiting, 1, 50);
        control.ProcessEvents();
    }
}

/// What the window would tell, made up by hand: a button is among the flags of its press and no more of its release.
class CallingHands final : public UserInput {
public:
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
    bool OthersCanTakeThePointer() override { return true; }  // it is on no screen

private:
    static std::uint32_t FlagOf(Button button) {
        return button == Button::Left     ? KV_ScenePane::kMouseLeft
               : button == Button::Middle ? KV_ScenePane::kMouseMiddle
                                          : KV_ScenePane::kMouseRight;
    }
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

/// A second connection to the server, as that of a user's devices.
struct DisplayConnection {
    DisplayConnection() : display(XOpenDisplay(nullptr)) {
        if (display == nullptr) throw std::runtime_error("no connection to the X server");
    }
    ~DisplayConnection() { XCloseDisplay(display); }
    DisplayConnection(const DisplayConnection&) = delete;
    DisplayConnection& operator=(const DisplayConnection&) = delete;
    Display* display;
};

class PointerHands final : public UserInput {
public:
    PointerHands() {
        m_viewer->PerformRefresh();  // the first frame takes the size of the window
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
    ~PointerHands() override {
        for (const unsigned button : m_vButtons) XTestFakeButtonEvent(m_connection.display, button, False, CurrentTime);
        for (const unsigned key : m_vKeys) XTestFakeKeyEvent(m_connection.display, key, False, CurrentTime);
        XSync(m_connection.display, False);
    }

    TestControl& Viewer() override { return m_viewer; }
    void MoveTo(int x, int y) override {
        if (x == m_nX && y == m_nY) return;  // the server tells of no such move
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
        Hear("press", 1);
    }
    void Release(Button button) override {
        Fake(button, false);
        Hear("release", 1);
    }
    void DoubleClick() override {
        for (const bool down : {true, false, true, false}) Fake(Button::Left, down);
        Hear("double click", 4);
    }
    void Wheel(int notches) override {
        const unsigned button = notches > 0 ? 4 : 5;
        for (int i = 0; i < std::abs(notches); ++i) {
            XTestFakeButtonEvent(m_connection.display, button, True, CurrentTime);
            XTestFakeButtonEvent(m_connection.display, button, False, CurrentTime);
            XSync(m_connection.display, False);
            Hear("wheel", 1);
        }
    }
    void HoldShift(bool down) override { Hold(XK_Shift_L, down); }
    void HoldCtrl(bool down) override { Hold(XK_Control_L, down); }
    void Type(std::int32_t nChar) override {
        for (const bool down : {true, false}) Hold(SymbolOf(nChar), down);
    }
    bool OthersCanTakeThePointer() override {
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
                throw std::invalid_argument("a key that these hands do not know");
        }
    }
    void Fake(Button button, bool down) {
        const auto number = static_cast<unsigned>(button);
        std::erase(m_vButtons, number);
        if (down) m_vButtons.push_back(number);
        XTestFakeButtonEvent(m_connection.display, number, down, CurrentTime);
        XSync(m_connection.display, False);
    }
    /// Waits for so many inputs of the mouse more than at the last call.
    void Hear(const char* what, std::size_t count) {
        const std::vector<KV_ScenePane::MouseInput>& heard = m_viewer.window->mouseHeard;
        std::size_t buttons = 0;
        PumpUntil(*m_viewer, what, [&] {
            buttons = 0;
            for (const KV_ScenePane::MouseInput& input : heard) buttons += input.kind != Kind::Move;
            return buttons >= m_nButtonsHeard + count;
        });
        m_nButtonsHeard += count;
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
    TestControl m_viewer{PaneWindowRequest::Kind::TopLevel, kWidth, kHeight};
    int m_nLeft = 0, m_nTop = 0, m_nX = -1, m_nY = -1;
    std::size_t m_nButtonsHeard = 0;
    std::vector<unsigned> m_vButtons, m_vKeys;
};

}  // namespace

void UserInput::WaitForDelivery() {
    TestControl& viewer = Viewer();
    PumpUntil(*viewer, "delayed press", [&] { return !viewer->m_mouseDispatch.pending; });
}

std::unique_ptr<UserInput> HandsByCalls() { return std::make_unique<CallingHands>(); }
std::unique_ptr<UserInput> HandsOnTheRealPointer() { return std::make_unique<PointerHands>(); }
