// A child of a host's window, 200 x 100 pixels at (20, 30), that is not created yet.
#pragma once
#include <gtest/gtest.h>

#include <string>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/X11Window.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

// After the others, whose names its macros would replace.
#include <X11/Xlib.h>

inline KV_ScenePane::WindowRequest ChildOf(Window parent, int width = 200, int height = 100) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = parent;
    request.x = 20;
    request.y = 30;
    request.width = width;
    request.height = height;
    return request;
}

struct X11WindowTest : testing::Test {
    XvfbServer& server = XvfbServer::Shared();
    HostWindow host;
    X11Window window{ChildOf(host.Id())};
    DrawingClient client{window};
    std::string reason;
};
