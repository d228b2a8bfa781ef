// Xlib has one error handler for the process. Errors on the host's connections reach the host's handler, ours do not.
#include <gtest/gtest.h>

#include <csetjmp>
#include <string>
#include <vector>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/X11Connection.h"
#include "platform/X11Window.h"
#include "support/XvfbServer.h"

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>

namespace {

std::vector<std::string> g_calls;  // which handler was called, in order
XErrorHandler g_below = nullptr;   // what SecondHandler() found installed

int FirstHandler(Display*, XErrorEvent*) {
    g_calls.emplace_back("first");
    return 0;
}

int SecondHandler(Display* display, XErrorEvent* event) {
    g_calls.emplace_back("second");
    return g_below == nullptr ? 0 : g_below(display, event);
}

int TrapHandler(Display*, XErrorEvent*) {
    g_calls.emplace_back("trap");
    return 0;
}

int FirstIoHandler(Display*) {
    g_calls.emplace_back("first");
    return 0;
}

int TrapIoHandler(Display*) {
    g_calls.emplace_back("trap");
    return 0;
}

std::jmp_buf g_jump;

int JumpingHandler(Display*, XErrorEvent*) {
    g_calls.emplace_back("jumps");
    std::longjmp(g_jump, 1);
}

/// As Xlib calls it for an error, but without the locks of Xlib, which a jump would leave held.
void CallInstalledHandler(Display* display, unsigned long serial) {
    const XErrorHandler installed = XSetErrorHandler(FirstHandler);
    XSetErrorHandler(installed);
    XErrorEvent event{};
    event.display = display;
    event.serial = serial;
    installed(display, &event);
}

struct HostErrorHandler : testing::Test {
    HostErrorHandler() {
        XvfbServer::Shared();
        g_calls.clear();
        g_below = nullptr;
    }
    ~HostErrorHandler() override {
        XSetErrorHandler(nullptr);
        XSetIOErrorHandler(nullptr);
    }

    static void MakeAnError(Display* display) {
        XMapWindow(display, 0x1234);
        XSync(display, False);
    }

    std::unique_ptr<X11Connection> Connect() {
        std::string reason;
        auto connection = X11Connection::Open("", &reason);
        EXPECT_NE(connection, nullptr) << reason;
        return connection;
    }
};

TEST_F(HostErrorHandler, GetsErrorsOfTheHostsConnectionsOnly) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    const auto connection = Connect();
    const X11Connection::ErrorTrap trap(*connection);
    MakeAnError(connection->Get());
    EXPECT_FALSE(trap.Succeeded());
    EXPECT_TRUE(g_calls.empty());
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"first"}));
    const X11Connection::ErrorTrap later(*connection);
    EXPECT_TRUE(later.Succeeded()) << "an error is counted once";
}

TEST_F(HostErrorHandler, InstalledLaterGetsTheHostsErrorsAndOursIsInstalledAgain) {
    const HostWindow host;
    const auto connection = Connect();
    XSetErrorHandler(FirstHandler);
    const X11Connection::ErrorTrap trap(*connection);
    MakeAnError(connection->Get());
    EXPECT_FALSE(trap.Succeeded());
    EXPECT_TRUE(g_calls.empty());
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"first"}));
}

TEST_F(HostErrorHandler, ThatCallsOursIsNotCalledAgain) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    const auto connection = Connect();
    for (int i = 0; i < 3; ++i) {
        g_below = XSetErrorHandler(SecondHandler);  // returns ours
        X11Connection::InstallErrorHandlers();      // and installs ours over it
    }
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"second", "first"}));
}

TEST_F(HostErrorHandler, IsInstalledAgainWhenOurLastConnectionCloses) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    auto connection = Connect(), second = Connect();
    connection.reset();
    EXPECT_NE(XSetErrorHandler(FirstHandler), &FirstHandler) << "the second still needs ours";
    X11Connection::InstallErrorHandlers();
    second.reset();
    EXPECT_EQ(XSetErrorHandler(nullptr), &FirstHandler);
}

// As toolkits trap the errors of a few requests: another handler, the requests, the former handler again.
TEST_F(HostErrorHandler, IsTheFormerOneAgainAfterATrapDuringWhichOursWasInstalled) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    const auto connection = Connect();
    for (int i = 0; i < 3; ++i) {
        const XErrorHandler former = XSetErrorHandler(TrapHandler);
        const X11Connection::ErrorTrap trap(*connection);  // a call of the viewer
        MakeAnError(connection->Get());
        EXPECT_FALSE(trap.Succeeded());
        MakeAnError(host.Display());
        XSetErrorHandler(former);
        MakeAnError(host.Display());
        X11Connection::InstallErrorHandlers();
        MakeAnError(host.Display());
        EXPECT_EQ(g_calls, (std::vector<std::string>{"trap", "first", "first"})) << i;
        g_calls.clear();
    }
}

TEST_F(HostErrorHandler, PutBackAfterTheEndOfOurLastConnectionIsStillCalled) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    auto connection = Connect();
    const XErrorHandler former = XSetErrorHandler(TrapHandler);
    connection.reset();
    MakeAnError(host.Display());
    XSetErrorHandler(former);  // one of ours
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"trap", "first"}));
    connection = Connect();
    MakeAnError(host.Display());
    connection.reset();
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"trap", "first", "first", "first"}));
}

TEST_F(HostErrorHandler, ThatPassesOnToAnOlderOneReachesItWhateverTheOrderOfTheirInstallation) {
    const HostWindow host;
    XSetErrorHandler(SecondHandler);
    const auto connection = Connect();  // over the second
    XSetErrorHandler(FirstHandler);
    X11Connection::InstallErrorHandlers();      // over the first
    g_below = XSetErrorHandler(SecondHandler);  // now the second is over the first
    X11Connection::InstallErrorHandlers();
    MakeAnError(host.Display());
    EXPECT_EQ(g_calls, (std::vector<std::string>{"second", "first"}));
}

/// Not inlined: a variable of the caller that changes between the jumps would have no defined value.
[[gnu::noinline]] void CallHandlerThatJumps(Display* display, unsigned long serial) {
    if (setjmp(g_jump) == 0) CallInstalledHandler(display, serial);
}

TEST_F(HostErrorHandler, ThatLeavesByAJumpIsCalledForTheNextError) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    const auto connection = Connect();
    XSetErrorHandler(JumpingHandler);
    X11Connection::InstallErrorHandlers();
    for (unsigned long serial = 0; serial < 3; ++serial) CallHandlerThatJumps(host.Display(), serial);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"jumps", "jumps", "jumps"}));
}

TEST_F(HostErrorHandler, ForBrokenConnectionsIsTheFormerOneAgainAfterATrap) {
    XSetIOErrorHandler(FirstIoHandler);
    auto connection = Connect();
    const XIOErrorHandler former = XSetIOErrorHandler(TrapIoHandler);
    X11Connection::InstallErrorHandlers();
    const XIOErrorHandler overTrap = XSetIOErrorHandler(former);
    Display* const other = XOpenDisplay(nullptr);  // not ours
    ASSERT_NE(other, nullptr);
    overTrap(other);
    former(other);
    X11Connection::InstallErrorHandlers();
    XSetIOErrorHandler(former)(other);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"trap", "first", "first"}));
    connection.reset();
    EXPECT_EQ(XSetIOErrorHandler(nullptr), &FirstIoHandler);
    XCloseDisplay(other);
}

TEST_F(HostErrorHandler, IsNotCalledForARefusedContext) {
    XSetErrorHandler(FirstHandler);
    const HostWindow host;
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = host.Id();
    X11Window window(request);
    DrawingClient client(window);
    client.context = {9, 9};
    EXPECT_FALSE(window.Create(client, nullptr));
    EXPECT_TRUE(client.formatFound);
    EXPECT_TRUE(g_calls.empty());
    EXPECT_EQ(XSetErrorHandler(nullptr), &FirstHandler);
}

}  // namespace
