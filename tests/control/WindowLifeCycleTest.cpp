// Viewers in X11 windows of a host: hundreds in turn, several at once, reparented, orphaned, refused, exposed, resized.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"
#include "platform/HostWindow.h"
#include "support/ProcessSize.h"
#include "support/TestFolder.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

// Last: its macros collide with names of the other headers.
#include <X11/Xlib.h>

namespace {

using KV_ScenePane::CreateScenePane;
using KV_ScenePane::Picture;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

[[maybe_unused]] const std::string& g_logFolder = TestFolder();

const Rgba kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255};
constexpr std::int32_t kRedRef = 0x0000FF, kGreenRef = 0x00FF00, kBlueRef = 0xFF0000;

int g_xErrors = 0;
int CountXError(Display*, XErrorEvent*) { return ++g_xErrors; }

class HostedViewers : public testing::Test {
protected:
    void SetUp() override {
        XvfbServer::Shared();
        host.emplace();
        g_xErrors = 0;
        m_formerHandler = XSetErrorHandler(CountXError);
    }
    void TearDown() override {
        EXPECT_EQ(g_xErrors, 0) << "X errors reached the handler of the process";
        XSetErrorHandler(m_formerHandler);
    }

    std::unique_ptr<ScenePane> Open(int x = 0, int y = 0, int width = 100, int height = 80) {
        WindowRequest request;
        request.kind = WindowRequest::Kind::Child;
        request.parent = host->Id();
        request.x = x, request.y = y, request.width = width, request.height = height;
        std::string reason;
        auto pane = CreateScenePane(request, &reason);
        EXPECT_NE(pane, nullptr) << reason;
        return pane;
    }

    [[nodiscard]] bool ShowsNow(int x, int y, const Rgba& color) { return host->ShownAt(x, y) == color; }
    /// Whether the screen comes to show a colour, without any event of a viewer being handled.
    [[nodiscard]] bool Shows(int x, int y, const Rgba& color) {
        return WaitUntil([&] { return ShowsNow(x, y, color); });
    }

    std::optional<HostWindow> host;

private:
    XErrorHandler m_formerHandler = nullptr;
};

/// Changes the background without requesting a repaint, as no method does.
void SetColorSilently(ScenePane& pane, std::int32_t color) {
    for (std::uint32_t& corner : ControlOf(pane).m_nBackgroundColors) corner = static_cast<std::uint32_t>(color);
}

// ---- creation and destruction

TEST_F(HostedViewers, OpenAndCloseManyTimesWithoutALeak) {
    for (int i = 0; i < 20; ++i) Open();  // the driver's one-time allocations
    ASSERT_TRUE(XvfbServer::Shared().WaitForClients(1)) << "the host alone";
    const int descriptors = OpenDescriptors();
    const long megabytes = ResidentMegabytes();
    for (int i = 20; i < kManyViewers; ++i) {
        const auto pane = Open();
        ASSERT_NE(pane, nullptr) << i;
        pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    }
    EXPECT_TRUE(XvfbServer::Shared().WaitForClients(1)) << XvfbServer::Shared().ClientCount();
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(host->ChildCount(), 0);
    EXPECT_LT(ResidentMegabytes() - megabytes, 28 + kQuarantineMegabytes)
        << "more than a tenth of a megabyte a viewer stays";
}

TEST_F(HostedViewers, KeepDrawingWhenAnotherOneCloses) {
    auto left = Open(0, 0);
    const auto right = Open(200, 0);
    left->Methods().SetBackgroundColors(kRedRef, kRedRef);
    right->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    EXPECT_TRUE(Shows(50, 40, kRed));
    EXPECT_TRUE(Shows(250, 40, kGreen));
    left.reset();
    right->Methods().SetBackgroundColors(kBlueRef, kBlueRef);
    EXPECT_TRUE(Shows(250, 40, kBlue));
    EXPECT_EQ(host->ChildCount(), 1);
}

TEST_F(HostedViewers, SurviveTheDestructionOfTheHostsWindow) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    ASSERT_TRUE(pane->HasWindow());
    host->Destroy();
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return !pane->HasWindow(); }));
    EXPECT_EQ(pane->NativeWindow(), 0u);
    KV_ScenePane::_DKV_ScenePane& methods = pane->Methods();
    const float vertices[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::int32_t triangles[] = {0, 1, 2};
    methods.ImportMeshFromMemory(3, 1, vertices, triangles);
    EXPECT_EQ(methods.GetNumObjects(), 1);
    methods.SetBackgroundColors(1, 2);
    methods.SetReflection(0.5f, 0.5f);
    methods.SetSize(40, 30);
    methods.SetViewMode(2);
    methods.DeleteObject(0);
    methods.ClearData();
    methods.PerformRefresh();
    methods.PerformInvalidate();
    pane->ProcessEvents();
    Picture picture;
    EXPECT_FALSE(pane->CapturePicture(&picture));
}

TEST_F(HostedViewers, CanBeClosedAfterTheHostsWindowWithoutProcessingEvents) {
    auto pane = Open();
    host->Destroy();
    pane.reset();
    HostWindow next;
    host.emplace();
    const auto another = Open();
    another->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    EXPECT_TRUE(Shows(50, 40, kGreen));
}

TEST_F(HostedViewers, MoveToAnotherWindowOfTheHostAndBack) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    const auto window = pane->NativeWindow();
    HostWindow second;
    ASSERT_TRUE(pane->Reparent(second.Id(), 30, 20));
    EXPECT_EQ(pane->NativeWindow(), window);
    WindowPlace place = host->PlaceOf(window);
    EXPECT_EQ(place.parent, second.Id());
    EXPECT_EQ(place.x, 30);
    EXPECT_EQ(place.y, 20);
    EXPECT_TRUE(place.isMapped);
    pane->Methods().SetBackgroundColors(kBlueRef, kBlueRef);
    Picture picture;
    ASSERT_TRUE(pane->CapturePicture(&picture));
    EXPECT_EQ(picture.pixels[0] & 0xFFFFFF, 0x0000FFu);
    ASSERT_TRUE(pane->Reparent(host->Id(), 0, 0));
    EXPECT_EQ(host->PlaceOf(window).parent, host->Id());
    host->Destroy();  // destroys the viewer with it, not its former parent
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return !pane->HasWindow(); }));
}

TEST_F(HostedViewers, KeepTheirParentWhenTheNewOneIsNotAWindow) {
    const auto pane = Open();
    const auto window = pane->NativeWindow();
    for (const std::uintptr_t parent : {std::uintptr_t{0}, std::uintptr_t{0x1234567}, std::uintptr_t{0x7F12345678A0}})
        EXPECT_FALSE(pane->Reparent(parent, 5, 5)) << parent;
    EXPECT_EQ(host->PlaceOf(window).parent, host->Id());
    pane->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    EXPECT_TRUE(Shows(50, 40, kGreen));
}

TEST_F(HostedViewers, CanBeDestroyedDuringAParallelImport) {
    auto pane = Open();
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry import = nullptr;
    pane->Methods().BeginParallelImport(&control, &import);
    pane.reset();
    EXPECT_EQ(host->ChildCount(), 0);
}

// ---- refusals

struct Handle {
    const char* name;
    std::uintptr_t parent;
};

TEST_F(HostedViewers, AreRefusedWithAReasonWhenTheHandleIsNotAWindow) {
    const unsigned long pixmap = host->MakePixmap(), inputOnly = host->MakeInputOnly();
    for (const Handle& handle : {Handle{"null", 0}, Handle{"an id that nobody has", 0x1234567},
                                 Handle{"a pointer", 0x7F12345678A0}, Handle{"all bits", ~std::uintptr_t{0}},
                                 Handle{"a pixmap", pixmap}, Handle{"an input-only window", inputOnly}}) {
        WindowRequest request;
        request.kind = WindowRequest::Kind::Child;
        request.parent = handle.parent;
        std::string reason;
        EXPECT_EQ(CreateScenePane(request, &reason), nullptr) << handle.name;
        EXPECT_NE(reason.find("window"), std::string::npos) << handle.name << ": " << reason;
        EXPECT_EQ(CreateScenePane(request, nullptr), nullptr) << handle.name;
    }
    EXPECT_NE(Open(), nullptr);
}

TEST_F(HostedViewers, AreRefusedWithAReasonWithoutADisplay) {
    const std::string display = getenv("DISPLAY");
    unsetenv("DISPLAY");
    for (const auto kind : {WindowRequest::Kind::Child, WindowRequest::Kind::TopLevel})
        for (const char* name : {"", ":54321", "no.such.host.invalid:0", "wayland-0"}) {
            WindowRequest request;
            request.kind = kind;
            request.parent = host->Id();
            request.display = name;
            std::string reason;
            EXPECT_EQ(CreateScenePane(request, &reason), nullptr) << name;
            EXPECT_NE(reason.find("display"), std::string::npos) << reason;
        }
    WindowRequest offScreen;
    EXPECT_NE(CreateScenePane(offScreen, nullptr), nullptr);
    setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(HostedViewers, AreRefusedWithoutAnXErrorWhenTheDriverRefuses) {
    WindowRequest request;
    request.kind = WindowRequest::Kind::Child;
    request.parent = host->Id();
    std::string message;
    request.showMessage = [&](const std::string& text) { message = text; };
    request.glMajor = 9;
    EXPECT_EQ(CreateScenePane(request, nullptr), nullptr);
    EXPECT_NE(message.find("Requested version: 9.3"), std::string::npos);
    EXPECT_EQ(host->ChildCount(), 0);
    request.glMajor = 3;
    const auto pane = CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    pane->Methods().RecreateOpenglContext(3, 3, 999);
    EXPECT_FALSE(pane->HasWindow());
    EXPECT_EQ(host->ChildCount(), 0);
}

// ---- painting in a real window

TEST_F(HostedViewers, DrawBeforeARefreshReturnsAndAfterAnInvalidate) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    ASSERT_TRUE(Shows(50, 40, kRed));
    ASSERT_TRUE(HandleAllEvents(*host, *pane));  // those of the mapping
    SetColorSilently(*pane, kGreenRef);
    pane->Methods().PerformInvalidate();
    (void)pane->Reparent(0, 0, 0);  // refused, after the server has processed all requests of the viewer
    EXPECT_TRUE(ShowsNow(50, 40, kRed)) << "an invalidate has drawn";
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return host->ShownAt(50, 40).g == 255; }));
    SetColorSilently(*pane, kBlueRef);
    pane->Methods().PerformRefresh();
    EXPECT_TRUE(Shows(50, 40, kBlue)) << "a refresh has not drawn";
}

TEST_F(HostedViewers, KeepARequestPendingUntilPaintingIsUnblocked) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    ASSERT_TRUE(Shows(50, 40, kRed));
    pane->Methods().BlockPaintEvents(-1);
    pane->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    for (int i = 0; i < 5; ++i) pane->ProcessEvents();
    (void)pane->Reparent(0, 0, 0);  // refused, after the server has processed all requests of the viewer
    EXPECT_TRUE(ShowsNow(50, 40, kRed)) << "drawn in spite of the block";
    pane->Methods().BlockPaintEvents(0);
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return host->ShownAt(50, 40).g == 255; }));
}

TEST_F(HostedViewers, RepaintAnExposedArea) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    ASSERT_TRUE(Shows(50, 40, kRed));
    Display* const display = host->Display();
    const Window cover = XCreateSimpleWindow(display, host->Id(), 20, 20, 60, 40, 0, 0, 0x00FF00);
    XMapRaised(display, cover);
    XSync(display, False);
    ASSERT_TRUE(Shows(50, 40, kGreen));
    XDestroyWindow(display, cover);
    XSync(display, False);
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return host->ShownAt(50, 40).r == 255; }));
    EXPECT_EQ(host->ShownAt(50, 40).g, 0);
}

TEST_F(HostedViewers, AdoptTheSizeThatTheHostGivesTheWindow) {
    const auto pane = Open();
    pane->Methods().SetBackgroundColors(kRedRef, kRedRef);
    XResizeWindow(host->Display(), pane->NativeWindow(), 300, 120);
    XSync(host->Display(), False);
    EXPECT_TRUE(ProcessEventsUntil(*pane, [&] { return ControlOf(*pane).m_nWidth == 300; }));
    EXPECT_EQ(ControlOf(*pane).m_nHeight, 120);
    EXPECT_FLOAT_EQ(ControlOf(*pane).m_fAspectX, 2.5f);
    EXPECT_TRUE(Shows(290, 110, kRed));
    Picture picture;
    ASSERT_TRUE(pane->CapturePicture(&picture));
    EXPECT_EQ(picture.width, 300);
    EXPECT_EQ(picture.height, 120);
}

TEST_F(HostedViewers, CaptureTheCurrentSceneWhateverEventsAreQueued) {
    const auto pane = Open();
    KV_ScenePane::_DKV_ScenePane& methods = pane->Methods();
    methods.SetBackgroundColors(kRedRef, kRedRef);
    const float vertices[] = {-9, -9, 0, 9, -9, 0, 0, 9, 0};
    const std::int32_t triangles[] = {0, 1, 2};
    methods.ImportMeshFromMemory(3, 1, vertices, triangles);
    methods.CenterView();
    Display* const display = host->Display();
    const Window window = pane->NativeWindow();

    const struct {
        const char* name;
        std::function<void()> request;
        int width, height;
    } rows[] = {
        {"nothing", [] {}, 100, 80},
        {"exposed", [&] { XClearArea(display, window, 0, 0, 0, 0, True); }, 100, 80},
        {"larger", [&] { XResizeWindow(display, window, 300, 120); }, 300, 120},
        {"smaller", [&] { XResizeWindow(display, window, 90, 50); }, 90, 50},
        {"unmapped", [&] { XUnmapWindow(display, window); }, 90, 50},
        {"mapped again", [&] { XMapWindow(display, window); }, 90, 50},
        {"moved and exposed",
         [&] { XMoveWindow(display, window, 5, 5), XClearArea(display, window, 0, 0, 9, 9, True); }, 90, 50},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        row.request();
        host->Sync();
        (void)pane->Reparent(0, 0, 0);  // refused, after the connection has read all events; none is handled
        for (const std::int16_t visible : {std::int16_t{0}, std::int16_t{1}}) {
            methods.SetObjectVisibility(0, visible);
            Picture picture;
            ASSERT_TRUE(pane->CapturePicture(&picture));
            EXPECT_EQ(picture.width, row.width);
            EXPECT_EQ(picture.height, row.height);
            const auto middle = static_cast<std::size_t>(picture.height / 2 * picture.width + picture.width / 2);
            EXPECT_EQ(picture.pixels.at(middle) == 0xFFFF0000, visible == 0);
            EXPECT_EQ(picture.pixels.front(), 0xFFFF0000);
            EXPECT_EQ(picture.pixels.back(), 0xFFFF0000);
        }
    }
    ASSERT_TRUE(HandleAllEvents(*host, *pane));
    EXPECT_EQ(ControlOf(*pane).m_nWidth, 90);
}

TEST_F(HostedViewers, AdoptTheSizeOfSetSize) {
    const auto pane = Open();
    pane->Methods().SetSize(150, 90);
    const WindowPlace place = host->PlaceOf(pane->NativeWindow());
    EXPECT_EQ(place.width, 150);
    EXPECT_EQ(place.height, 90);
    EXPECT_EQ(ControlOf(*pane).m_nWidth, 150);
    EXPECT_EQ(ControlOf(*pane).m_nHeight, 90);
    pane->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    EXPECT_TRUE(Shows(145, 85, kGreen));
}

TEST_F(HostedViewers, ShowThePictureOfTheOffScreenSurface) {
    WindowRequest offScreen;
    offScreen.width = 100, offScreen.height = 80;
    const std::unique_ptr<ScenePane> panes[] = {Open(), CreateScenePane(offScreen, nullptr)};
    Picture pictures[2];
    for (int i = 0; i < 2; ++i) {
        ASSERT_NE(panes[i], nullptr);
        KV_ScenePane::_DKV_ScenePane& methods = panes[i]->Methods();
        const float vertices[] = {0, 0, 0, 10, 0, 0, 0, 10, 4};
        const std::int32_t triangles[] = {0, 1, 2};
        methods.ImportMeshFromMemory(3, 1, vertices, triangles);
        methods.CenterView();
        ASSERT_TRUE(panes[i]->CapturePicture(&pictures[i]));
    }
    EXPECT_EQ(pictures[0].pixels, pictures[1].pixels);
}

TEST_F(HostedViewers, KeepPositionAndParentWhenTheContextIsRecreated) {
    const auto pane = Open(30, 40, 120, 60);
    EXPECT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 4), -1);
    ASSERT_TRUE(pane->HasWindow());
    const WindowPlace place = host->PlaceOf(pane->NativeWindow());
    EXPECT_EQ(place.parent, host->Id());
    EXPECT_EQ(place.x, 30);
    EXPECT_EQ(place.y, 40);
    EXPECT_EQ(place.width, 120);
    EXPECT_EQ(place.height, 60);
    EXPECT_EQ(host->ChildCount(), 1);
    pane->Methods().SetBackgroundColors(kGreenRef, kGreenRef);
    EXPECT_TRUE(Shows(90, 70, kGreen));
}

}  // namespace
