// Ways in which alignments end, and what the host does in the handler of AlignmentDone or in the sink of the debugger
// output meanwhile: no dialog is used after its end, each one fires once, and an exception reaches the caller.
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>

#include "align/HandScene.h"
#include "base/DebugOutput.h"
#include "control/ScenePaneHandle.h"
#include "support/XvfbServer.h"
//
#include <X11/Xlib.h>

namespace {

using KV_ScenePane::kMouseLeft;
using KV_ScenePane::kMouseRight;
using KV_ScenePane::MouseInput;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

constexpr std::uint32_t kFixedColor = 0x906030, kMovingColor = 0x00FF00;

/// A window that notes its end and writes a text in each frame.
class NotingWindow final : public WindowProbe {
public:
    NotingWindow(std::unique_ptr<PaneWindow> window, bool& isDead) : WindowProbe(std::move(window)), m_isDead(isDead) {}
    ~NotingWindow() override { m_isDead = true; }
    void SwapBuffers() override {
        DebugOutput("in a frame\n");
        WindowProbe::SwapBuffers();
    }

private:
    bool& m_isDead;
};

/// A host with a viewer of a fixed and a variable scan.
class LifeHost final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    explicit LifeHost(WindowRequest::Kind kind = WindowRequest::Kind::OffScreen) {
        KV_ScenePane::SetDebugOutputSink([this](std::string_view) {
            if (--framesToSink == 0) inSink();
        });
        WindowRequest request;
        request.kind = kind;
        request.width = 160, request.height = 120;
        if (kind == WindowRequest::Kind::TopLevel) XvfbServer::Shared();
        auto owned =
            std::make_shared<CKV_ScenePaneCtrl>(std::make_unique<NotingWindow>(MakePaneWindow(request), isDead));
        std::string reason;
        if (!owned->CreateControlWindow(&reason)) ADD_FAILURE() << reason;
        held = owned;
        control = owned.get();
        for (const std::uint32_t color : {kFixedColor, kMovingColor}) meshes.push_back(MakeScan(color));
        control->m_vpMeshes = meshes;
        control->AddVariableObject(1);
        control->CenterView();
        pane = MakeHandle(std::move(owned));
        pane->Connect(this);
    }
    ~LifeHost() {
        pane.reset();
        KV_ScenePane::SetDebugOutputSink({});
    }
    LifeHost(const LifeHost&) = delete;
    LifeHost& operator=(const LifeHost&) = delete;

    void AlignmentDone() override {
        ++done;
        inHandler();
    }
    KV_ScenePane::_DKV_ScenePane& Methods() { return pane->Methods(); }
    void Drag(std::uint32_t button, const std::vector<std::pair<int, int>>& path) {
        using Kind = MouseInput::Kind;
        const bool isLeft = (button & kMouseLeft) != 0;
        const auto send = [&](Kind kind, std::uint32_t flags, std::pair<int, int> p) {
            if (pane != nullptr) pane->SendMouse({.kind = kind, .flags = flags, .x = p.first, .y = p.second});
        };
        send(isLeft ? Kind::LeftDown : Kind::RightDown, button, path.front());
        for (const auto& p : path) send(Kind::Move, button, p);
        // On another pixel: the release has a step and a frame of its own.
        send(isLeft ? Kind::LeftUp : Kind::RightUp, 0, {path.back().first + 3, path.back().second + 2});
    }
    /// The objects are kept here, also when the viewer has none any more.
    void ExpectOwnColors() const {
        EXPECT_EQ(meshes[0]->GetColorRef(), kFixedColor);
        EXPECT_EQ(meshes[1]->GetColorRef(), kMovingColor);
    }

    bool isDead = false;
    int done = 0;
    std::function<void()> inHandler = [] {}, inSink = [] {};
    int framesToSink = -1;  ///< the text of this frame, counted from now, runs inSink
    std::vector<std::shared_ptr<Mesh>> meshes;
    std::unique_ptr<ScenePane> pane;
    std::weak_ptr<CKV_ScenePaneCtrl> held;
    CKV_ScenePaneCtrl* control = nullptr;
};

/// As another program does.
void DestroyXWindow(std::uintptr_t window) {
    Display* const display = XOpenDisplay(XvfbServer::Shared().Name().c_str());
    XDestroyWindow(display, window);
    XCloseDisplay(display);  // after the server has done it
}

// ---- every end with every action of the host

struct Start {
    const char* name;
    std::int32_t mode;
    void (KV_ScenePane::_DKV_ScenePane::*run)();
};
void PrintTo(const Start& row, std::ostream* out) { *out << row.name; }
const Start kStarts[] = {{"ByHand", ModeAlignInteractive, &KV_ScenePane::_DKV_ScenePane::AlignInteractive},
                         {"ByPoints", ModeAlignPickPoints, &KV_ScenePane::_DKV_ScenePane::AlignPickPoints}};

/// One point on each side, by clicks on the same pixel: the scans are at the same place, so nothing moves.
void AlignByOnePair(LifeHost& host) {
    using Kind = MouseInput::Kind;
    const Mesh& scan = *host.meshes[0];
    Float3 center{};
    for (const std::int32_t corner : scan.m_vTriangles[0].v) {
        const Vertex& v = scan.m_vVertices[static_cast<std::size_t>(corner)];
        center = center + (1.0f / 3) * Float3{v.x, v.y, v.z};
    }
    std::int32_t x = 0, y = 0;
    ASSERT_TRUE(host.control->ProjectPoint(center[0], center[1], center[2], &x, &y));
    host.pane->SendMouse({.kind = Kind::LeftDown, .flags = kMouseLeft, .x = x, .y = y});
    host.pane->SendMouse({.kind = Kind::LeftUp, .flags = 0, .x = x, .y = y});
    host.pane->SendKey({.nChar = KV_ScenePane::kKeySpace});
    host.pane->SendMouse({.kind = Kind::LeftDown, .flags = kMouseLeft, .x = x, .y = y});
    if (host.pane != nullptr) host.pane->SendMouse({.kind = Kind::LeftUp, .flags = 0, .x = x, .y = y});
}

struct End {
    const char* name;
    std::function<void(LifeHost&)> run;
    bool endsWindow = false;
    int lastFrame = 1;  ///< that of the end of the alignment, counted from the first one that the end draws
    bool onlyByPoints = false;
};
void PrintTo(const End& row, std::ostream* out) { *out << row.name; }
const End kEnds[] = {
    {"FinishInteraction", [](LifeHost& h) { h.Methods().FinishInteraction(); }},
    {"Escape", [](LifeHost& h) { h.pane->SendKey({.nChar = KV_ScenePane::kKeyEscape}); }},
    {"Ok",
     [](LifeHost& h) {
         const auto held = h.held.lock();  // as every call of a host holds it
         held->m_pInteractionDlg->OnOK();
     }},
    {"NewContext", [](LifeHost& h) { h.Methods().RecreateOpenglContext(3, 3, 0); }, true},
    {"LastPoint", AlignByOnePair, false, 5, true},
};

enum class Result { Idle, NextRuns, NextEndsToo, ViewerGone, Throws };
struct Action {
    const char* name;
    std::function<void(LifeHost&)> run;
    Result result = Result::Idle;
};
void PrintTo(const Action& row, std::ostream* out) { *out << row.name; }
const Action kActions[] = {
    {"Nothing", [](LifeHost&) {}},
    {"FinishInteraction", [](LifeHost& h) { h.Methods().FinishInteraction(); }},
    {"Escape", [](LifeHost& h) { h.pane->SendKey({.nChar = KV_ScenePane::kKeyEscape}); }},
    {"AlignInteractive", [](LifeHost& h) { h.Methods().AlignInteractive(); }, Result::NextRuns},
    {"AlignPickPoints", [](LifeHost& h) { h.Methods().AlignPickPoints(); }, Result::NextRuns},
    {"ClearData", [](LifeHost& h) { h.Methods().ClearData(); }},
    {"DeleteObjects", [](LifeHost& h) { h.Methods().DeleteObject(0), h.Methods().DeleteObject(0); }},
    {"ProcessEvents", [](LifeHost& h) { h.pane->ProcessEvents(); }},
    {"Drags",
     [](LifeHost& h) {
         for (const std::uint32_t button : {kMouseLeft, kMouseRight}) h.Drag(button, {{80, 60}, {100, 70}, {90, 50}});
     }},
    {"NewContext", [](LifeHost& h) { h.Methods().RecreateOpenglContext(3, 3, 0); }},
    {"EndOfTheWindow", [](LifeHost& h) { h.control->m_pWindow->Destroy(); }},
    {"AlignInteractiveAndNewContext",
     [](LifeHost& h) { h.Methods().AlignInteractive(), h.Methods().RecreateOpenglContext(3, 3, 0); },
     Result::NextEndsToo},
    {"DestroyTheViewer", [](LifeHost& h) { h.pane.reset(); }, Result::ViewerGone},
    {"Throw", [](LifeHost&) { throw std::runtime_error("host"); }, Result::Throws},
    {"StartAndThrow",
     [](LifeHost& h) {
         h.Methods().AlignInteractive();
         throw std::runtime_error("host");
     },
     Result::Throws},
};

using Case = std::tuple<Start, End, Action, bool>;
class EndOfAlignment : public testing::TestWithParam<Case> {};

/// In the handler of the event, and in the sink in the last frame of the alignment.
TEST_P(EndOfAlignment, LeavesNothingBehind) {
    const auto& [start, end, action, inSink] = GetParam();
    LifeHost host;
    (host.Methods().*start.run)();
    EXPECT_EQ(host.meshes[0]->GetColorRef(), 0x302010u);
    EXPECT_EQ(host.control->m_nInteractionMode, start.mode);
    const Mesh before(std::vector<Vertex>(host.meshes[1]->m_vVertices), {}, L"", false);
    int runs = 0;
    const auto once = [&] {
        if (++runs == 1) action.run(host);
    };
    if (inSink) {
        host.inSink = once;
        host.framesToSink = end.lastFrame;
    } else {
        host.inHandler = once;
    }
    if (action.result == Result::Throws && !inSink)  // the sink of a frame passes no exception on
        EXPECT_THROW(end.run(host), std::runtime_error);
    else
        end.run(host);
    // While a window ends it cannot be recreated: what the handler opens then stays open.
    const bool nextEndsToo = action.result == Result::NextEndsToo && !end.endsWindow;
    EXPECT_EQ(runs, nextEndsToo && !inSink ? 2 : 1);
    const int done = nextEndsToo ? 2 : 1;
    EXPECT_EQ(host.done, done);
    for (std::size_t i = 0; i < before.m_vVertices.size(); ++i)
        EXPECT_EQ(host.meshes[1]->m_vVertices[i].x, before.m_vVertices[i].x) << "moved after the end";
    if (action.result == Result::ViewerGone) {
        EXPECT_EQ(host.pane, nullptr);
        EXPECT_TRUE(host.isDead);
        host.ExpectOwnColors();
        return;
    }
    CKV_ScenePaneCtrl& control = *host.control;
    const bool nextRuns = !nextEndsToo && (action.result == Result::NextRuns || action.result == Result::NextEndsToo ||
                                           std::string(action.name) == "StartAndThrow");
    EXPECT_EQ(control.m_vInteractionDlgs.size(), nextRuns ? 1u : 0u);
    EXPECT_EQ(control.m_pInteractionDlg != nullptr, nextRuns);
    const bool nextByPoints = std::string(action.name) == "AlignPickPoints";
    EXPECT_EQ(control.m_nInteractionMode,
              !nextRuns ? ModeIdle : (nextByPoints ? ModeAlignPickPoints : ModeAlignInteractive));
    if (nextRuns) {
        host.Methods().FinishInteraction();
        EXPECT_EQ(host.done, done + 1);
    }
    host.ExpectOwnColors();
    (host.Methods().*start.run)();  // and the next one works
    host.Methods().FinishInteraction();
    EXPECT_EQ(host.done, done + (nextRuns ? 2 : 1));
    host.ExpectOwnColors();
}

std::vector<Case> EveryCase() {
    std::vector<Case> cases;
    for (const Start& start : kStarts)
        for (const End& end : kEnds)
            for (const Action& action : kActions)
                for (const bool inSink : {false, true}) {
                    if (inSink && end.endsWindow) continue;  // no frame is drawn any more then
                    if (end.onlyByPoints && start.mode != ModeAlignPickPoints) continue;
                    cases.emplace_back(start, end, action, inSink);
                }
    return cases;
}
INSTANTIATE_TEST_SUITE_P(All, EndOfAlignment, testing::ValuesIn(EveryCase()), [](const auto& row) {
    return std::string(std::get<0>(row.param).name)
        .append("By")
        .append(std::get<1>(row.param).name)
        .append("And")
        .append(std::get<2>(row.param).name)
        .append(std::get<3>(row.param) ? "InTheSink" : "InTheHandler");
});

// ---- ends inside the frames of the alignment itself

struct FrameEnd {
    const char* name;
    std::function<void(LifeHost&)> run;
};
void PrintTo(const FrameEnd& row, std::ostream* out) { *out << row.name; }
const FrameEnd kFrameEnds[] = {
    {"Finish", [](LifeHost& h) { h.Methods().FinishInteraction(); }},
    {"FinishAndStart", [](LifeHost& h) { h.Methods().FinishInteraction(), h.Methods().AlignInteractive(); }},
    {"StartOverIt", [](LifeHost& h) { h.Methods().AlignInteractive(); }},
    {"ClearData", [](LifeHost& h) { h.Methods().ClearData(); }},
    {"NewContext", [](LifeHost& h) { h.Methods().RecreateOpenglContext(3, 3, 0); }},
    {"DestroyTheViewer", [](LifeHost& h) { h.pane.reset(); }},
};

class FramesOfAnAlignment : public testing::TestWithParam<FrameEnd> {};

/// The frame of the start, of each step and of the release, with each button and in each scheme.
TEST_P(FramesOfAnAlignment, MayEndItInTheSink) {
    for (const bool isDelayed : {false, true})
        for (const std::uint32_t button : {kMouseLeft, kMouseRight, kMouseLeft | kMouseRight})
            for (int frame = 1; frame <= 6; ++frame) {
                SCOPED_TRACE(testing::Message()
                             << "frame " << frame << ", button " << button << (isDelayed ? ", delayed" : ""));
                LifeHost host;
                host.Methods().SetIGDRotation(isDelayed ? 1 : 0);
                host.control->m_mouseDispatch.delay = 1u << 30;
                int runs = 0;
                host.inSink = [&] {
                    ++runs;
                    GetParam().run(host);
                };
                host.framesToSink = frame;
                host.Methods().AlignInteractive();
                host.Drag(button, {{80, 60}, {90, 65}, {85, 70}});
                if (host.pane != nullptr) host.Drag(button, {{80, 60}, {90, 65}, {85, 70}});
                if (runs == 0) continue;  // such a drag has fewer frames
                EXPECT_EQ(runs, 1);
                if (host.pane == nullptr) {
                    EXPECT_TRUE(host.isDead);
                    continue;
                }
                if (host.control->m_pInteractionDlg != nullptr) host.Methods().FinishInteraction();
                host.control->m_pWindow->Destroy();  // ends one that another one was opened over
                EXPECT_TRUE(host.control->m_vInteractionDlgs.empty());
                EXPECT_EQ(host.control->m_nInteractionMode, ModeIdle);
                host.ExpectOwnColors();
            }
}
INSTANTIATE_TEST_SUITE_P(All, FramesOfAnAlignment, testing::ValuesIn(kFrameEnds),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- one alignment opened over another

TEST(OpenedOverAnother, ReceivesTheInputAndLeavesTheFirstOneOpen) {
    LifeHost host;
    host.Methods().AlignInteractive();
    const auto* const first = dynamic_cast<CAlignInteractiveDlg*>(host.control->m_pInteractionDlg);
    host.Methods().AlignInteractive();
    const auto* const second = dynamic_cast<CAlignInteractiveDlg*>(host.control->m_pInteractionDlg);
    ASSERT_NE(second, first);
    EXPECT_EQ(host.control->m_vInteractionDlgs.size(), 2u);
    EXPECT_EQ(host.done, 0);
    EXPECT_EQ(host.meshes[0]->GetColorRef(), 0x100A05u) << "dimmed twice";
    host.Drag(kMouseRight, {{80, 60}, {90, 65}});
    EXPECT_EQ(first->m_nLastX, 0);
    EXPECT_EQ(second->m_nLastX, 93);
    host.Methods().FinishInteraction();
    EXPECT_EQ(host.done, 1);
    EXPECT_EQ(host.control->m_pInteractionDlg, nullptr);
    EXPECT_EQ(host.control->m_nInteractionMode, ModeIdle);
    EXPECT_TRUE(first->HasWindow());
    EXPECT_EQ(host.meshes[0]->GetColorRef(), 0x302010u);
    host.Methods().FinishInteraction();
    EXPECT_EQ(host.done, 1) << "it receives no input";
    host.control->m_pWindow->Destroy();
    EXPECT_EQ(host.done, 2);
    host.ExpectOwnColors();
}

TEST(OpenedOverAnother, EndWithTheWindowEachOnceNewestFirst) {
    for (const auto kind : {WindowRequest::Kind::OffScreen, WindowRequest::Kind::TopLevel}) {
        LifeHost host(kind);
        std::vector<std::uint32_t> colors;
        host.inHandler = [&] { colors.push_back(host.meshes[0]->GetColorRef()); };
        for (int i = 0; i < 2; ++i) host.Methods().AlignInteractive();
        host.Methods().AlignPickPoints();
        host.Methods().RecreateOpenglContext(3, 3, 0);
        EXPECT_EQ(colors, (std::vector<std::uint32_t>{0x100A05, 0x302010, kFixedColor}));
        EXPECT_TRUE(host.control->m_vInteractionDlgs.empty());
        EXPECT_EQ(host.control->m_pInteractionDlg, nullptr);
        EXPECT_EQ(host.control->m_nInteractionMode, ModeIdle);
        EXPECT_TRUE(host.control->HasWindow());
        host.pane.reset();
        EXPECT_EQ(host.done, 3);
    }
}

/// Another program, or the parent, destroys the window: the event loop of a message box notices it.
TEST(WindowThatIsLost, InTheHandlerEndsTheOtherAlignmentOnce) {
    for (const Start& start : kStarts)
        for (const bool byEscape : {false, true}) {
            SCOPED_TRACE(testing::Message() << start.name << (byEscape ? ", by Escape" : ""));
            LifeHost host(WindowRequest::Kind::TopLevel);
            for (int i = 0; i < 2; ++i) (host.Methods().*start.run)();
            std::vector<int> order;
            host.inHandler = [&] {
                const int number = host.done;
                if (number == 1) {
                    DestroyXWindow(host.pane->NativeWindow());
                    host.pane->ProcessEvents();
                    EXPECT_FALSE(host.pane->HasWindow());
                    EXPECT_EQ(host.done, 2);
                }
                order.push_back(number);
            };
            if (byEscape)
                host.pane->SendKey({.nChar = KV_ScenePane::kKeyEscape});
            else
                host.Methods().FinishInteraction();
            EXPECT_EQ(order, (std::vector{2, 1}));
            EXPECT_TRUE(host.control->m_vInteractionDlgs.empty());
            EXPECT_EQ(host.control->m_nInteractionMode, ModeIdle);
            host.ExpectOwnColors();
        }
}

TEST(OpenedOverAnother, EndWithTheWindowOnceWhenAHandlerThrowsInARecreationInAHandler) {
    LifeHost host;
    for (int i = 0; i < 3; ++i) host.Methods().AlignInteractive();
    host.inHandler = [&] {
        const int number = host.done;
        if (number == 1) host.Methods().RecreateOpenglContext(3, 3, 0);
        throw std::runtime_error(std::to_string(number));
    };
    try {
        host.Methods().FinishInteraction();
        ADD_FAILURE() << "the exception was lost";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "2") << "the first of the recreation, which passes through the handler";
    }
    EXPECT_EQ(host.done, 3);
    EXPECT_TRUE(host.control->m_vInteractionDlgs.empty());
    EXPECT_EQ(host.control->m_pInteractionDlg, nullptr);
    host.ExpectOwnColors();
}

TEST(OpenedOverAnother, EndWithTheWindowAlsoWhenEveryHandlerOpensOneMore) {
    LifeHost host;
    host.inHandler = [&] { host.Methods().AlignInteractive(); };
    for (int i = 0; i < 3; ++i) host.Methods().AlignInteractive();
    host.Methods().RecreateOpenglContext(3, 3, 0);
    EXPECT_EQ(host.done, 3);
    EXPECT_EQ(host.control->m_vInteractionDlgs.size(), 3u);
    EXPECT_EQ(host.control->m_pInteractionDlg, host.control->m_vInteractionDlgs.back().get());
    EXPECT_EQ(host.control->m_nInteractionMode, ModeAlignInteractive);
    host.control->m_pWindow->Destroy();
    EXPECT_EQ(host.done, 6);
    const int before = host.done;
    host.pane.reset();
    EXPECT_EQ(host.done, before) << "the end of the control fires nothing";
}

TEST(OpenedInEveryHandler, IsLeftOpenOnceWhenTheHandlerMakesANewContextEachTimeToo) {
    LifeHost host;
    host.Methods().AlignInteractive();
    host.inHandler = [&] { host.Methods().AlignInteractive(), host.Methods().RecreateOpenglContext(3, 3, 0); };
    host.Methods().FinishInteraction();
    EXPECT_EQ(host.done, 2) << "inside the end of a window there is no other one";
    ASSERT_EQ(host.control->m_vInteractionDlgs.size(), 1u);
    EXPECT_EQ(host.control->m_pInteractionDlg, host.control->m_vInteractionDlgs[0].get());
    EXPECT_EQ(host.control->m_nInteractionMode, ModeAlignInteractive);
    host.inHandler = [] {};
    host.Methods().FinishInteraction();
    EXPECT_EQ(host.done, 3);
    host.ExpectOwnColors();
}

TEST(OpenedOverAnother, EndAllWhenAHandlerThrowsAndTheFirstExceptionPasses) {
    LifeHost host;
    for (int i = 0; i < 3; ++i) host.Methods().AlignInteractive();
    host.inHandler = [&] { throw std::runtime_error(std::to_string(host.done)); };
    try {
        host.Methods().RecreateOpenglContext(3, 3, 0);
        ADD_FAILURE() << "the exception was lost";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "1");
    }
    EXPECT_EQ(host.done, 3);
    EXPECT_TRUE(host.control->m_vInteractionDlgs.empty());
    host.ExpectOwnColors();
    EXPECT_TRUE(host.control->m_vpMeshes.empty()) << "the rest of the end of the window was done";
}

TEST(OpenedOverAnother, MayDestroyTheViewerInAnyOfTheEvents) {
    for (int event = 1; event <= 3; ++event) {
        LifeHost host;
        for (int i = 0; i < 3; ++i) host.Methods().AlignInteractive();
        host.inHandler = [&] {
            if (host.done == event) host.pane.reset();
        };
        host.Methods().RecreateOpenglContext(3, 3, 0);
        EXPECT_EQ(host.done, event) << "a destroyed viewer fires nothing";
        EXPECT_TRUE(host.isDead);
        host.ExpectOwnColors();
    }
}

TEST(DestroyedViewer, EndsItsAlignmentWithoutAnEvent) {
    LifeHost host;
    host.Methods().AlignInteractive();
    host.pane.reset();
    EXPECT_TRUE(host.isDead);
    EXPECT_EQ(host.done, 0) << "the host has let go of it";
    host.ExpectOwnColors();
}

TEST(DestroyedWindow, EndsTheAlignmentWithOneEvent) {
    LifeHost host;
    host.Methods().AlignInteractive();
    std::size_t objects = 0;
    host.inHandler = [&] { objects = host.control->m_vpMeshes.size(); };
    host.control->m_pWindow->Destroy();
    EXPECT_EQ(host.done, 1);
    EXPECT_EQ(objects, 2u) << "the host can still read the transforms";
    host.ExpectOwnColors();
}

}  // namespace
