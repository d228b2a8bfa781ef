// Notches of the wheel and repeats of a key that wait while the viewer is busy: each is delivered, and their frames are
// drawn once.
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/X11WindowInput.h"

// After the others, whose names its macros would replace.
#include <X11/keysym.h>

namespace {

/// A client that refreshes for every notch and every key press, as the viewer does, and notes what happens in which
/// order: "+" and "-" are notches, "down" and "up" a key, "paint" a frame.
struct X11WindowRunsTest : X11WindowInputTest {
    void SetUp() override {
        X11WindowInputTest::SetUp();
        ClickIntoPane();
        client.onPaint = [&] { log.emplace_back("paint"); };
        client.onMouse = [&](const MouseInput& input) {
            const bool isNotch = input.kind == Kind::Wheel;
            log.emplace_back(isNotch ? (input.delta > 0 ? "+" : "-") : "mouse");
            if (isNotch) OnNotch();
        };
        client.onKey = [&](const KeyInput& input) {
            log.emplace_back(input.isDown ? "down" : "up");
            if (input.isDown) window.Refresh();
        };
    }
    void OnNotch() {
        ++notches;
        if (inNotch) inNotch(notches);
        window.Refresh();
    }
    /// One call of the host's loop after all of the user's input has arrived.
    std::vector<std::string> ProcessedOnce() {
        (void)window.Reparent(0, 0, 0);  // a round trip on the window's connection
        window.ProcessEvents();
        return std::exchange(log, {});
    }
    /// Presses of a held key, as the server repeats them. Not with XTest: a server ignores a second press.
    void Hold(KeySym symbol, int presses) { host.SendKeyPresses(window.NativeHandle(), symbol, presses); }
    [[nodiscard]] int Painted() const { return static_cast<int>(std::ranges::count(log, std::string("paint"))); }

    std::vector<std::string> log;
    int notches = 0;
    std::function<void(int number)> inNotch;  ///< runs before the refresh of a notch; counted from 1
};

using Log = std::vector<std::string>;

TEST_F(X11WindowRunsTest, FiftyWaitingNotchesAreFiftyInputsAndOneFrameWithTheLast) {
    user.Clicks(4, 50);
    Log expected(50, "+");
    expected.emplace_back("paint");
    EXPECT_EQ(ProcessedOnce(), expected);
    EXPECT_TRUE(std::ranges::all_of(client.mouse, [](const MouseInput& input) {
        return input.kind != Kind::Wheel || input.delta == KV_ScenePane::kWheelNotch;
    })) << "never a sum";
    HandleAll();
    EXPECT_EQ(log, Log{}) << "no further frame";
}

TEST_F(X11WindowRunsTest, TheFrameOfTheLastNotchIsDrawnBeforeItsHandlerReturns) {
    int paintedInHandler = -1;
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind != Kind::Wheel) return;
        window.Refresh();
        paintedInHandler = Painted();
    };
    user.Clicks(4, 1);
    (void)ProcessedOnce();
    EXPECT_EQ(paintedInHandler, 1) << "a single one";
    user.Clicks(5, 9);
    (void)ProcessedOnce();
    EXPECT_EQ(paintedInHandler, 1) << "the last of nine";
}

TEST_F(X11WindowRunsTest, NotchesOfBothDirectionsAreOneRun) {
    user.Clicks(4, 2);
    user.Clicks(5, 2);
    user.Clicks(4, 1);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "-", "-", "+", "paint"}));
}

TEST_F(X11WindowRunsTest, APressBetweenNotchesComesAfterTheirFrame) {
    user.Clicks(4, 3);
    user.Click(kRight);
    user.Clicks(4, 2);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+", "paint", "mouse", "mouse", "+", "+", "paint"}));
}

TEST_F(X11WindowRunsTest, AMoveBetweenNotchesComesAfterTheirFrame) {
    user.Clicks(4, 2);
    user.MoveTo(60, 60);
    user.Clicks(5, 2);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "paint", "mouse", "-", "-", "paint"}));
}

TEST_F(X11WindowRunsTest, WithoutARefreshInTheLastNotchTheFrameIsDrawnAfterItAndBeforeThePress) {
    client.onMouse = [&](const MouseInput& input) {
        log.emplace_back(input.kind == Kind::Wheel ? "+" : "mouse");
        if (input.kind == Kind::Wheel && ++notches == 1) window.Refresh();
    };
    user.Clicks(4, 3);
    user.Click(kRight);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+", "paint", "mouse", "mouse"}));
    notches = 0;
    user.Clicks(4, 3);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+", "paint"})) << "nothing follows";
}

TEST_F(X11WindowRunsTest, RepeatsOfAKeyAreOneFrameAfterThatOfItsPress) {
    Hold(XK_Up, 6);
    host.SendKeyRelease(window.NativeHandle(), XK_Up);
    EXPECT_EQ(ProcessedOnce(), (Log{"down", "paint", "down", "down", "down", "down", "down", "paint", "up"}));
}

TEST_F(X11WindowRunsTest, RepeatsAndNotchesAreOneRun) {
    Hold(XK_Up, 1);
    (void)ProcessedOnce();
    Hold(XK_Up, 2);
    user.Clicks(4, 2);
    Hold(XK_Up, 1);
    EXPECT_EQ(ProcessedOnce(), (Log{"down", "down", "+", "+", "down", "paint"}));
}

TEST_F(X11WindowRunsTest, AnotherKeyIsNoRepeat) {
    Hold(XK_Up, 1);
    (void)ProcessedOnce();
    Hold(XK_Up, 2);
    Hold(XK_Down, 1);
    EXPECT_EQ(ProcessedOnce(), (Log{"down", "down", "paint", "down", "paint"}));
}

TEST_F(X11WindowRunsTest, TheLossOfTheFocusComesAfterTheFrame) {
    Hold(XK_Up, 1);
    (void)ProcessedOnce();
    Hold(XK_Up, 4);
    XSetInputFocus(host.Display(), host.Id(), RevertToParent, CurrentTime);
    host.Sync();
    EXPECT_EQ(ProcessedOnce(), (Log{"down", "down", "down", "down", "paint"}));
}

// A call of the host inside a handler: it relies on the frame.
TEST_F(X11WindowRunsTest, ARefreshThatMayNotBeDeferredIsDrawnAtOnce) {
    inNotch = [&](int number) {
        if (number != 2) return;
        const DeferredFrames atOnce(window, false);
        window.Refresh();
        log.emplace_back("returned");
    };
    user.Clicks(4, 4);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "paint", "returned", "+", "+", "paint"}));
}

TEST_F(X11WindowRunsTest, NotchesThatArriveMeanwhileAreForTheNextCall) {
    inNotch = [&](int number) {
        if (number != 1) return;
        user.Clicks(5, 3);
        (void)window.Reparent(0, 0, 0);
    };
    user.Clicks(4, 2);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "paint"}));
    EXPECT_TRUE(IsReadable(window));
    EXPECT_EQ(ProcessedOnce(), (Log{"-", "-", "-", "paint"}));
}

// ---- handlers that throw, nest, destroy

TEST_F(X11WindowRunsTest, AHandlerThatThrowsLosesNeitherLaterNotchesNorTheFrame) {
    inNotch = [](int number) {
        if (number == 3) throw std::runtime_error("handler");
    };
    user.Clicks(4, 5);
    (void)window.Reparent(0, 0, 0);
    EXPECT_THROW(window.ProcessEvents(), std::runtime_error);
    EXPECT_EQ(log, (Log{"+", "+", "+"}));
    EXPECT_TRUE(window.IsPaintPending());
    EXPECT_TRUE(IsReadable(window));
    log.clear();
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "paint"}));
}

TEST_F(X11WindowRunsTest, TheFrameOfARunWhoseLastHandlerThrowsIsDrawnByTheNextCallBeforeAnyOtherEvent) {
    inNotch = [](int number) {
        if (number == 3) throw std::runtime_error("handler");
    };
    user.Clicks(4, 3);
    user.MoveTo(70, 70);
    (void)window.Reparent(0, 0, 0);
    EXPECT_THROW(window.ProcessEvents(), std::runtime_error);
    log.clear();
    EXPECT_EQ(ProcessedOnce(), (Log{"paint", "mouse"}));
}

TEST_F(X11WindowRunsTest, ProcessEventsInAHandlerKeepsTheOrderAndDrawsTheFrames) {
    inNotch = [&](int number) {
        if (number != 2) return;
        window.ProcessEvents();
        log.emplace_back("returned");
    };
    user.Clicks(4, 4);
    user.MoveTo(60, 60);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+", "+", "paint", "mouse", "returned", "paint"}));
}

TEST_F(X11WindowRunsTest, AHandlerMayDestroyTheWindowAndNothingIsDrawn) {
    inNotch = [&](int number) {
        if (number == 3) window.Destroy();
    };
    user.Clicks(4, 5);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+"}));
    EXPECT_FALSE(window.Exists());
    EXPECT_FALSE(window.IsPaintPending());
}

TEST_F(X11WindowRunsTest, AHandlerMayRecreateTheWindowWhichThenDrawsItsFrame) {
    bool recreated = false;
    inNotch = [&](int number) {
        if (number == 2) recreated = window.Recreate();
    };
    const int before = client.painted;
    user.Clicks(4, 4);
    (void)ProcessedOnce();
    EXPECT_TRUE(recreated);
    HandleAll();
    EXPECT_FALSE(window.IsPaintPending());
    EXPECT_GT(client.painted, before) << "the frame of the first notch ended with the former window";
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(X11WindowRunsTest, AWindowThatIsDestroyedAfterTheNotchesGetsNoFrame) {
    int drawnInto = 0;
    client.onPaint = [&] { drawnInto += window.MakeCurrent() ? 1 : 0; };
    client.onMouse = [&](const MouseInput& input) {
        if (input.kind == Kind::Wheel && ++notches == 1) window.Refresh();  // not in the last one
    };
    user.Clicks(4, 2);
    XDestroyWindow(host.Display(), window.NativeHandle());
    host.Sync();
    (void)ProcessedOnce();
    EXPECT_EQ(notches, 2);
    EXPECT_EQ(drawnInto, 0);
    EXPECT_FALSE(window.Exists());
    EXPECT_EQ(client.destroyed, 1);
}

TEST_F(X11WindowRunsTest, WhilePaintingIsBlockedTheFrameStaysPending) {
    client.blockPaint = true;
    user.Clicks(4, 3);
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "+"}));
    EXPECT_TRUE(window.IsPaintPending());
    client.blockPaint = false;
    window.RetryPaint();
    EXPECT_TRUE(IsReadable(window));
    EXPECT_EQ(ProcessedOnce(), (Log{"paint"}));
}

// The server could not deliver the release: it is reported with the next event, here the notch.
TEST_F(X11WindowRunsTest, ALostReleaseBeforeANotchComesAfterTheFrameOfTheNotchesBefore) {
    user.Press(kRight);
    HandleAll();
    log.clear();
    user.Clicks(4, 2);
    host.SendClick(window.NativeHandle(), 4, 50, 50, 1000);  // without the button in its state
    EXPECT_EQ(ProcessedOnce(), (Log{"+", "+", "paint", "mouse", "+", "paint"}));
}

}  // namespace
