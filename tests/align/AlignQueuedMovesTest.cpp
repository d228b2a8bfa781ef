// Moves of a real pointer that queue while the viewer is busy, in an alignment by hand: which of them the viewer
// receives, how many frames they cost, and where the objects are afterwards. Whatever is queued, an off-screen viewer
// that receives only the expected inputs has its objects at the same place, bit for bit.
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/HostWindow.h"
#include "platform/InputText.h"
#include "support/ControlFixture.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

// After the others: their macros would replace names in those.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using KV_ScenePane::kMouseCtrl;
using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::kMouseShift;
using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;
using Inputs = std::vector<MouseInput>;

constexpr std::int32_t kWidth = 640, kHeight = 480;
constexpr unsigned kLeft = 1, kRight = 3, kWheelUp = 4;

/// A moving triangle and a fixed one, seen obliquely, in an alignment by hand.
void BeginAlignment(CKV_ScenePaneCtrl& control) {
    control.PerformRefresh();  // the first frame reads the size of the window
    AddMesh(control, {{.x = 1, .y = 2, .z = 3, .nz = 1}, {.x = 12, .y = 0, .z = 5, .nz = 1}, {.y = 9, .nx = 1}},
            {{{0, 1, 2}}});
    AddMesh(control, {{.x = 5}, {.x = 7, .y = 1}, {.x = 5, .y = 3}}, {{{0, 1, 2}}});
    control.m_fSceneSize = 60;
    control.SetViewParams(0.8f, 0.6f, 0, -0.36f, 0.48f, 0.8f, 3, 2, 1, 1, 1);
    control.m_mouseDispatch.delay = 24 * 60 * 60 * 1000;  // ends when the test says so
    control.PerformRefresh();
    control.AddVariableObject(0);
    control.AlignInteractive();
}

void EndDelay(CKV_ScenePaneCtrl& control) { OnDispatchTimer(control.m_mouseDispatch); }

/// Where the viewer's window is, by X: a window of its own, or inside a window of the host.
enum class Place { TopLevel, InHost };
void PrintTo(Place place, std::ostream* out) { *out << (place == Place::TopLevel ? "TopLevel" : "InHost"); }

class QueuedMoves : public testing::TestWithParam<Place> {
protected:
    QueuedMoves() {
        KV_ScenePane::WindowRequest request;
        const bool isInHost = GetParam() == Place::InHost;
        request.kind =
            isInHost ? KV_ScenePane::WindowRequest::Kind::Child : KV_ScenePane::WindowRequest::Kind::TopLevel;
        request.parent = isInHost ? m_host.Id() : 0;
        request.width = kWidth;
        request.height = kHeight;
        auto probe = std::make_unique<WindowProbe>(MakePaneWindow(request));
        window = probe.get();
        viewer = std::make_unique<CKV_ScenePaneCtrl>(std::move(probe));
        std::string reason;
        if (!viewer->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
        BeginAlignment(*viewer);
        BeginAlignment(*reference);
        Window child = None;
        XTranslateCoordinates(m_pDisplay, viewer->NativeWindow(), DefaultRootWindow(m_pDisplay), 0, 0, &m_nLeft,
                              &m_nTop, &child);
        QueueMove(300, 200);
        Handle();
    }
    ~QueuedMoves() override {
        for (const unsigned button : {kLeft, kRight}) XTestFakeButtonEvent(m_pDisplay, button, False, CurrentTime);
        for (const KeySym symbol : {XK_Control_L, XK_Shift_L}) QueueKey(symbol, false);
        XSync(m_pDisplay, False);
    }

    // ---- the user, while the viewer is busy
    void QueueMove(int x, int y) { XTestFakeMotionEvent(m_pDisplay, -1, m_nLeft + x, m_nTop + y, CurrentTime); }
    /// Pixel by pixel, along a bow: the way differs from a straight line. Both ends included.
    void QueueMoves(int fromX, int toX, int y) {
        const int step = fromX < toX ? 1 : -1;
        for (int x = fromX; x != toX + step; x += step) QueueMove(x, x == fromX || x == toX ? y : y + 30 + x % 7);
    }
    void QueueButton(unsigned button, bool down) { XTestFakeButtonEvent(m_pDisplay, button, down, CurrentTime); }
    void QueueKey(KeySym symbol, bool down) {
        XTestFakeKeyEvent(m_pDisplay, XKeysymToKeycode(m_pDisplay, symbol), down, CurrentTime);
    }

    /// Lets the viewer work off its queue.
    /// @return what it received of the mouse
    Inputs Handle() {
        window->mouseHeard.clear();
        window->Forget();
        // Twice: the server may answer before it sends the events, but it has sent them when it reads the next request.
        m_host.Sync();
        m_host.Sync();
        viewer->ProcessEvents();  // zink may have read them from the connection already, which is not readable then
        EXPECT_TRUE(HandleAllEvents(m_host, *viewer)) << "the events do not end";
        return window->mouseHeard;
    }
    void ExpectHandled(const Inputs& inputs) {
        EXPECT_EQ(Handle(), inputs);
        for (const MouseInput& input : inputs) reference->SendMouse(input);
        ExpectObjectsOfTheReference();
    }
    void ExpectObjectsOfTheReference() {
        for (std::size_t i = 0; i < 2; ++i) {
            const auto &found = viewer->m_vpMeshes[i]->m_vVertices, &expected = reference->m_vpMeshes[i]->m_vVertices;
            ASSERT_EQ(found.size(), expected.size());
            EXPECT_EQ(std::memcmp(found.data(), expected.data(), found.size() * sizeof(Vertex)), 0) << "object " << i;
        }
        EXPECT_EQ(viewer->m_fAxisX, reference->m_fAxisX);
        EXPECT_EQ(viewer->m_fViewCenter, reference->m_fViewCenter);
        EXPECT_EQ(viewer->m_fZoom, reference->m_fZoom);
    }
    [[nodiscard]] float MovedX() const { return viewer->m_vpMeshes[0]->m_vVertices[0].x - 1; }

    XvfbServer& m_server = XvfbServer::Shared();
    HostWindow m_host;
    Display* const m_pDisplay = m_host.Display();
    int m_nLeft = 0, m_nTop = 0;
    WindowProbe* window = nullptr;
    std::unique_ptr<CKV_ScenePaneCtrl> viewer;
    OffscreenControl reference{kWidth, kHeight};
};
INSTANTIATE_TEST_SUITE_P(Windows, QueuedMoves, testing::Values(Place::TopLevel, Place::InHost),
                         testing::PrintToStringParamName());

TEST_P(QueuedMoves, AreOneStepAndOneFrameInARunningDrag) {
    for (const unsigned button : {kRight, kLeft}) {
        const std::uint32_t flag = button == kRight ? kMouseRight : kMouseLeft;
        const bool isRight = button == kRight;
        QueueMove(300, 200);
        (void)Handle();
        QueueButton(button, true);
        ExpectHandled({{isRight ? Kind::RightDown : Kind::LeftDown, flag, 300, 200, 0}});
        QueueMove(301, 200);
        ExpectHandled({{Kind::Move, flag, 301, 200, 0}});
        EXPECT_EQ(window->refreshes, 0) << "the first move of a drag moves nothing";
        const float before = MovedX();
        QueueMoves(302, 380, 170);
        ExpectHandled({{Kind::Move, flag, 380, 170, 0}});
        EXPECT_EQ(window->refreshes, 1);
        EXPECT_NE(MovedX(), before);
        QueueMoves(379, 290, 230);
        ExpectHandled({{Kind::Move, flag, 290, 230, 0}});
        EXPECT_EQ(window->refreshes, 1);
        QueueButton(button, false);
        ExpectHandled({{isRight ? Kind::RightUp : Kind::LeftUp, 0, 290, 230, 0}});
    }
}

TEST_P(QueuedMoves, AreSplitByAButtonChange) {
    QueueButton(kRight, true);
    QueueMove(301, 200);
    (void)Handle();
    for (const MouseInput& input :
         Inputs{{Kind::RightDown, kMouseRight, 300, 200, 0}, {Kind::Move, kMouseRight, 301, 200, 0}})
        reference->SendMouse(input);
    QueueMoves(302, 350, 180);
    QueueButton(kLeft, true);
    QueueMoves(351, 400, 260);
    QueueButton(kLeft, false);
    QueueMoves(399, 320, 220);
    QueueButton(kRight, false);
    QueueMoves(319, 310, 210);
    const std::uint32_t both = kMouseLeft | kMouseRight;
    const Inputs handled = Handle();
    const Inputs expected{{Kind::Move, kMouseRight, 350, 180, 0}, {Kind::LeftDown, both, 350, 180, 0},
                          {Kind::Move, both, 400, 260, 0},        {Kind::LeftUp, kMouseRight, 400, 260, 0},
                          {Kind::Move, kMouseRight, 399, 220, 0},  // begins the next drag
                          {Kind::Move, kMouseRight, 320, 220, 0}, {Kind::RightUp, 0, 320, 220, 0}};
    ASSERT_GE(handled.size(), expected.size());
    EXPECT_EQ(Inputs(handled.begin(), handled.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
    for (const MouseInput& input : handled) reference->SendMouse(input);
    ExpectObjectsOfTheReference();
    EXPECT_NE(MovedX(), 0);
}

TEST_P(QueuedMoves, AreSplitByTheWheel) {
    QueueButton(kRight, true);
    QueueMove(301, 200);
    ExpectHandled({{Kind::RightDown, kMouseRight, 300, 200, 0}, {Kind::Move, kMouseRight, 301, 200, 0}});
    QueueMoves(302, 350, 180);
    QueueButton(kWheelUp, true);
    QueueButton(kWheelUp, false);
    QueueMoves(351, 400, 260);
    ExpectHandled({{Kind::Move, kMouseRight, 350, 180, 0},
                   {Kind::Wheel, kMouseRight, 350, 180, KV_ScenePane::kWheelNotch},
                   {Kind::Move, kMouseRight, 400, 260, 0}});
    EXPECT_NE(viewer->m_fZoom, 1.0f);
}

// A press while a slow frame is drawn: the drag begins at its first move, not at the last one that was queued.
TEST_P(QueuedMoves, OfAWholeDragMoveTheObjectFromItsFirstPixelToItsLast) {
    QueueButton(kRight, true);
    QueueMoves(301, 380, 170);
    QueueButton(kRight, false);
    ExpectHandled({{Kind::RightDown, kMouseRight, 300, 200, 0},
                   {Kind::Move, kMouseRight, 301, 170, 0},
                   {Kind::Move, kMouseRight, 380, 170, 0},
                   {Kind::RightUp, 0, 380, 170, 0}});
    EXPECT_GT(MovedX(), 79 * 0.125f * 0.7f) << "79 pixels of 0.125 units to the right, 0.8 of it along x";
}

TEST_P(QueuedMoves, AreOneStepInTheDelayedScheme) {
    viewer->SetIGDRotation(1);
    reference->SetIGDRotation(1);
    QueueKey(XK_Shift_L, true);
    QueueButton(kRight, true);
    const std::uint32_t flags = kMouseRight | kMouseShift;
    ExpectHandled({{Kind::RightDown, flags, 300, 200, 0}});
    EndDelay(*viewer);
    EndDelay(*reference);
    QueueMoves(301, 380, 170);
    ExpectHandled({{Kind::Move, flags, 301, 170, 0}, {Kind::Move, flags, 380, 170, 0}});
    EXPECT_EQ(window->refreshes, 1);
    QueueMoves(379, 290, 230);
    ExpectHandled({{Kind::Move, flags, 290, 230, 0}});
    EXPECT_EQ(window->refreshes, 1);
    EXPECT_NE(MovedX(), 0);
    QueueButton(kRight, false);
    ExpectHandled({{Kind::RightUp, kMouseShift, 290, 230, 0}});
}

TEST_P(QueuedMoves, BehindAPressThatWaitsInTheDelayedSchemeMoveTheObjectToo) {
    viewer->SetIGDRotation(1);
    reference->SetIGDRotation(1);
    QueueKey(XK_Shift_L, true);
    QueueButton(kRight, true);
    QueueMoves(301, 380, 170);
    QueueButton(kRight, false);
    const std::uint32_t flags = kMouseRight | kMouseShift;
    ExpectHandled({{Kind::RightDown, flags, 300, 200, 0},
                   {Kind::Move, flags, 301, 170, 0},
                   {Kind::Move, flags, 380, 170, 0},
                   {Kind::RightUp, kMouseShift, 380, 170, 0}});
    EXPECT_GT(MovedX(), 79 * 0.125f * 0.7f);
    EndDelay(*viewer);
    EndDelay(*reference);
    ExpectObjectsOfTheReference();
}

// Ctrl moves the view in place of the objects: all of its travel counts from the press.
TEST_P(QueuedMoves, OfTheViewAreOneStep) {
    for (const std::int16_t delayed : {std::int16_t{0}, std::int16_t{1}}) {
        SCOPED_TRACE(delayed);
        viewer->SetIGDRotation(delayed);
        reference->SetIGDRotation(delayed);
        QueueMove(300, 200);
        QueueKey(XK_Control_L, true);
        QueueButton(kRight, true);
        (void)Handle();
        const std::uint32_t flags = kMouseRight | kMouseCtrl;
        reference->SendMouse({Kind::RightDown, flags, 300, 200, 0});
        EndDelay(*viewer);
        EndDelay(*reference);
        QueueMove(301, 200);
        ExpectHandled({{Kind::Move, flags, 301, 200, 0}});
        QueueMoves(302, 380, 170);
        ExpectHandled({{Kind::Move, flags, 380, 170, 0}});
        QueueButton(kRight, false);
        QueueKey(XK_Control_L, false);
        ExpectHandled({{Kind::RightUp, kMouseCtrl, 380, 170, 0}});
        EXPECT_EQ(MovedX(), 0);
    }
}

}  // namespace
