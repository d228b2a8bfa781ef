// Xlib has one error handler for the process. Errors on the host's connections reach the host's handler, ours do not.
#include <gtest/gtest.h>

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

struct HostErrorHandler : testing::Test {
    HostErrorHandler() {
        XvfbServer::Shared();
        g_calls.clear();
        g_below = nullptr;
    }
    ~HostErrorHandler() override { XSetErrorHandler(nullptr); }

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
