// A window of each kind that draws, for tests of what does not depend on the kind.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/WindowFactory.h"
#include "support/Wait.h"
#include "support/WindowKindText.h"
#include "support/XvfbServer.h"

/// The window is not created yet. A child has a host on the shared X server; an off-screen window gets by without
/// $DISPLAY.
class EveryWindow : public testing::TestWithParam<KV_ScenePane::WindowRequest::Kind> {
public:
    using Kind = KV_ScenePane::WindowRequest::Kind;
    static constexpr Kind kKinds[] = {Kind::Child, Kind::OffScreen};
    static std::string Name(const testing::TestParamInfo<Kind>& row) { return TextOf(row.param); }

protected:
    EveryWindow() {
        if (GetParam() == Kind::Child) {
            XvfbServer::Shared();
            host = std::make_unique<HostWindow>();
        } else {
            unsetenv("DISPLAY");
        }
        window = MakePaneWindow(Request());
        client = std::make_unique<DrawingClient>(*window);
    }

    KV_ScenePane::WindowRequest Request() {
        KV_ScenePane::WindowRequest request;
        request.kind = GetParam();
        request.parent = host ? host->Id() : 0;
        request.width = 64;
        request.height = 32;
        request.showMessage = [this](const std::string& text) { shown = text; };
        return request;
    }

    [[nodiscard]] bool Create() {
        reason.clear();
        const bool created = window->Create(*client, &reason);
        if (!created && !reason.empty()) ADD_FAILURE() << reason;
        return created;
    }

    /// Handles all events that there are now; false when they do not end.
    [[nodiscard]] bool HandleAll() {
        if (host) return HandleAllEvents(*host, *window);
        return WaitUntil([&] { return !IsReadable(*window); }, [&] { window->ProcessEvents(); });
    }

    std::unique_ptr<HostWindow> host;  ///< of a child
    std::unique_ptr<PaneWindow> window;
    std::unique_ptr<DrawingClient> client;
    std::string reason, shown;
};
