// A viewer in a window whose host is busy while the user turns the wheel or holds a key: what has waited is handled
// with one frame, and calls of the host inside a handler still find theirs drawn.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

#include "KV_ScenePane/ScenePane.h"
#include "platform/X11WindowInput.h"

// After the others, whose names its macros would replace.
#include <X11/keysym.h>

namespace {

using namespace KV_ScenePane;

constexpr std::int16_t kPlaneOn = 1;

/// Runs a function for every key press.
class KeyHandler final : public _DKV_ScenePaneEvents {
public:
    std::function<void(std::int32_t repeats)> onKey = [](std::int32_t) {};
    void CustomKeyDown(std::int32_t /*nChar*/, std::int32_t nRepCnt, std::int32_t /*nFlags*/) override {
        onKey(nRepCnt);
    }
};

float ZoomOf(ScenePane& viewer) {
    std::array<float, 10> v{};
    viewer.Methods().GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
    return v[9];
}

class WaitingInput : public testing::Test {
protected:
    void SetUp() override {
        user.MoveTo(400, 300);
        std::string reason;
        pane = CreateScenePane(X11WindowInputTest::Request(host.Id()), &reason);
        ASSERT_NE(pane, nullptr) << reason;
        const float corners[] = {0, 0, 0, 10, 0, 0, 0, 10, 5};
        const std::int32_t triangle[] = {0, 1, 2};
        pane->Methods().ImportMeshFromMemory(3, 1, corners, triangle);
        pane->Methods().CenterView();
        pane->Methods().InitializeKVReg();  // the plane is placed by a component
        pane->Connect(&keys);
        user.MoveTo(50, 50);
        user.Click(2);  // gives it the keyboard
        ASSERT_TRUE(HandleAllEvents(host, *pane));
    }

    void TearDown() override {
        if (pane != nullptr) pane->Methods().FinalizeKVReg();
    }

    /// One turn of the host's loop after all of the user's input has arrived.
    void ProcessOnce() {
        (void)pane->Reparent(0, 0, 0);  // a round trip on the connection of the viewer
        pane->ProcessEvents();
    }
    /// Presses of a held key, as the server repeats them.
    void Hold(KeySym symbol, int presses) { host.SendKeyPresses(pane->NativeWindow(), symbol, presses); }
    [[nodiscard]] std::uint64_t Frames() const { return pane->GetFrameStatistics().count; }
    /// Calls a function inside the mouse filter of one of the notches that wait, counted from 1.
    void InNotch(int number, const std::function<void()>& function) {
        pane->SetMouseFilter([this, number, function](const MouseInput& input) {
            if (input.kind == Kind::Wheel && ++notches == number) function();
            return false;
        });
    }

    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    XTestUser user{host.Display()};
    KeyHandler keys;
    std::unique_ptr<ScenePane> pane;
    int notches = 0;
};

TEST_F(WaitingInput, OfFiftyNotchesIsOneFrameWithTheZoomOfFiftySingleOnes) {
    WindowRequest request;
    const auto reference = CreateScenePane(request, nullptr);  // off-screen: each call is handled at once
    ASSERT_NE(reference, nullptr);
    const auto notchBoth = [&](unsigned button, int count) {
        user.Clicks(button, count);
        const std::int32_t delta = button == 4 ? kWheelNotch : -kWheelNotch;
        for (int i = 0; i < count; ++i) reference->SendMouse({.kind = Kind::Wheel, .x = 50, .y = 50, .delta = delta});
    };
    const float before = ZoomOf(*pane);
    ASSERT_EQ(ZoomOf(*reference), before);
    notchBoth(4, 11);
    notchBoth(5, 23);
    notchBoth(4, 16);
    const std::uint64_t frames = Frames();
    ProcessOnce();
    EXPECT_EQ(Frames(), frames + 1);
    EXPECT_NE(ZoomOf(*pane), before);
    EXPECT_EQ(ZoomOf(*pane), ZoomOf(*reference)) << "to the last bit";
}

TEST_F(WaitingInput, OfFiftyNotchesInOneDirectionEndsAtTheLimitOfTheZoom) {
    const std::uint64_t frames = Frames();
    user.Clicks(4, 50);
    ProcessOnce();
    EXPECT_EQ(Frames(), frames + 1);
    EXPECT_LE(ZoomOf(*pane), 0.1f);
    EXPECT_GT(ZoomOf(*pane), 0.1f / 1.12f) << "beyond the limit by less than one notch";
}

TEST_F(WaitingInput, OfAHeldArrowKeyMovesThePlaneByOneUnitForEachRepeat) {
    _DKV_ScenePane& methods = pane->Methods();
    methods.SetClipPlaneEnabled(kPlaneOn);
    methods.SetClipPlane(0, 0, 5, 0, 0, 1);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    std::vector<std::int32_t> counts;
    keys.onKey = [&](std::int32_t repeats) { counts.push_back(repeats); };
    Hold(XK_Up, 1);
    ProcessOnce();
    const std::uint64_t frames = Frames();
    Hold(XK_Up, 7);
    ProcessOnce();
    EXPECT_EQ(Frames(), frames + 1);
    EXPECT_EQ(counts, std::vector<std::int32_t>(8, 1));
    std::array<float, 6> plane{};
    methods.GetClipPlane(&plane[0], &plane[1], &plane[2], &plane[3], &plane[4], &plane[5]);
    EXPECT_EQ(plane[2], 13.0f) << "8 presses";
}

// ---- calls of the host inside a handler

TEST_F(WaitingInput, HasARefreshOfTheHostDrawnBeforeItReturns) {
    const std::uint64_t frames = Frames();
    std::uint64_t inside = 0;
    InNotch(2, [&] {
        EXPECT_EQ(Frames(), frames) << "the frame of the first notch is deferred";
        pane->Methods().PerformRefresh();
        inside = Frames();
    });
    user.Clicks(4, 5);
    ProcessOnce();
    EXPECT_EQ(inside, frames + 1);
    EXPECT_EQ(Frames(), frames + 2);
}

TEST_F(WaitingInput, HasThePictureOfTheHostDrawn) {
    Picture before, inside, after, reference;
    ASSERT_TRUE(pane->CapturePicture(&before));
    InNotch(2, [&] { EXPECT_TRUE(pane->CapturePicture(&inside)); });
    user.Clicks(4, 5);
    ProcessOnce();
    ASSERT_TRUE(pane->CapturePicture(&after));
    // The filter runs before its notch is handled: the picture has the zoom of the notch before.
    pane->Methods().CenterView();
    pane->SendMouse({.kind = Kind::Wheel, .x = 50, .y = 50, .delta = kWheelNotch});
    ASSERT_TRUE(pane->CapturePicture(&reference));
    EXPECT_EQ(inside.pixels, reference.pixels);
    EXPECT_NE(inside.pixels, before.pixels);
    EXPECT_NE(inside.pixels, after.pixels);
}

TEST_F(WaitingInput, HasARefreshOfAKeyHandlerDrawnBeforeItReturns) {
    pane->Methods().SetClipPlaneEnabled(kPlaneOn);
    Hold(XK_Up, 1);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    const std::uint64_t frames = Frames();
    std::vector<std::uint64_t> inside;
    keys.onKey = [&](std::int32_t) {
        pane->Methods().SetBackgroundColors(0x102030, 0x405060);
        inside.push_back(Frames() - frames);
    };
    Hold(XK_Up, 3);
    ProcessOnce();
    EXPECT_EQ(inside, (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(Frames(), frames + 4) << "the last repeat draws its own";
}

TEST_F(WaitingInput, IsDrawnBeforeInputThatTheHostSends) {
    const std::uint64_t frames = Frames();
    std::uint64_t inside = 0;
    InNotch(3, [&] {
        pane->SendMouse({.kind = Kind::Move, .x = 60, .y = 60});
        inside = Frames();
    });
    user.Clicks(4, 5);
    ProcessOnce();
    EXPECT_EQ(inside, frames + 1) << "that of the first two notches";
    EXPECT_EQ(Frames(), frames + 2);
}

TEST_F(WaitingInput, IsDrawnOnceAfterPaintingWasBlocked) {
    InNotch(2, [&] { pane->Methods().BlockPaintEvents(kVariantTrue); });
    const std::uint64_t frames = Frames();
    user.Clicks(4, 5);
    ProcessOnce();
    EXPECT_EQ(Frames(), frames);
    pane->Methods().BlockPaintEvents(kVariantFalse);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    EXPECT_EQ(Frames(), frames + 1);
}

TEST_F(WaitingInput, EndsWithAViewerThatAHandlerDestroys) {
    InNotch(3, [&] { pane.reset(); });
    user.Clicks(4, 5);
    ProcessOnce();
    EXPECT_EQ(pane, nullptr);
    EXPECT_EQ(notches, 3);
    EXPECT_EQ(host.ChildCount(), 0);
}

TEST_F(WaitingInput, GoesOnInAWindowWhoseContextAHandlerMadeAgain) {
    VARIANT_BOOL made = kVariantFalse;
    InNotch(2, [&] { made = pane->Methods().RecreateOpenglContext(3, 3, 0); });
    user.Clicks(4, 5);
    ProcessOnce();
    EXPECT_EQ(made, kVariantTrue);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    const std::uint64_t frames = Frames();
    user.Clicks(5, 3);
    ASSERT_TRUE(HandleAllEvents(host, *pane));
    EXPECT_GT(Frames(), frames);
}

}  // namespace
