// Which frames wait for the vertical retrace, on a driver that waits at each swap unless its interval is 0.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

#include "platform/DrawingClient.h"
#include "platform/WindowFactory.h"
#include "support/DriverStandIn.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

namespace {

struct Extensions {
    const char* name;
    bool ext, mesa, sgi;
};
void PrintTo(const Extensions& row, std::ostream* out) { *out << row.name; }

DriverFaults Waiting(const Extensions& extensions) {
    DriverFaults faults;
    faults.blankMs = 0.1;
    faults.swapControlExt = extensions.ext;
    faults.swapControlMesa = extensions.mesa;
    faults.swapControlSgi = extensions.sgi;
    return faults;
}

/// A window on the screen whose first frame has been shown.
class FramesOnAWaitingDriver : public testing::TestWithParam<Extensions> {
protected:
    explicit FramesOnAWaitingDriver(const Extensions& extensions = GetParam()) : m_faults(Waiting(extensions)) {
        XvfbServer::Shared();
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::TopLevel;
        request.width = request.height = 32;
        window = MakePaneWindow(request);
        client = std::make_unique<DrawingClient>(*window);
        std::string reason;
        if (!window->Create(*client, &reason)) ADD_FAILURE() << reason;
        EXPECT_TRUE(WaitUntil([&] { return client->painted > 0; }, [&] { window->ProcessEvents(); }));
        EXPECT_TRUE(
            WaitUntil([&] { return !IsReadable(window->EventDescriptor()); }, [&] { window->ProcessEvents(); }));
    }
    /// Swaps that waited, and all, while @p action runs.
    std::pair<std::int64_t, std::int64_t> WaitsAndSwapsOf(const std::function<void()>& action) {
        const DriverCounters before = ReadDriverCounters();
        action();
        const DriverCounters after = ReadDriverCounters();
        return {after.waits - before.waits, after.swaps - before.swaps};
    }
    using Counts = std::pair<std::int64_t, std::int64_t>;

    void RefreshFourTimes() {
        for (int i = 0; i < 4; ++i) window->Refresh();
    }
    void PaintInTheEventLoop() {
        window->Invalidate(false);
        window->ProcessEvents();
    }

    ScopedDriverFaults m_faults;  ///< before the window: a driver's extensions do not change
    std::unique_ptr<PaneWindow> window;
    std::unique_ptr<DrawingClient> client;
};

TEST_P(FramesOnAWaitingDriver, HostCallsThatRepaintDoNotWait) {
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{0, 4}));
}

TEST_P(FramesOnAWaitingDriver, FramesOfTheEventLoopKeepTheDriversSetting) {
    EXPECT_EQ(WaitsAndSwapsOf([&] { PaintInTheEventLoop(); }), (Counts{1, 1}));
    RefreshFourTimes();
    EXPECT_EQ(WaitsAndSwapsOf([&] { PaintInTheEventLoop(); }), (Counts{1, 1}));
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{0, 4}));
}

TEST_P(FramesOnAWaitingDriver, OneCallOfTheEventLoopWaitsOnce) {
    client->onMessage = [&](std::uint32_t) {
        RefreshFourTimes();
        window->Invalidate(false);
    };
    window->PostPrivateMessage(1);
    EXPECT_EQ(WaitsAndSwapsOf([&] { window->ProcessEvents(); }), (Counts{1, 5}));
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{0, 4}));
}

TEST_P(FramesOnAWaitingDriver, AnEventLoopCallThatThrowsLeavesHostCallsWithoutWait) {
    client->onMessage = [&](std::uint32_t) { throw std::runtime_error("of the host"); };
    window->PostPrivateMessage(1);
    EXPECT_THROW(window->ProcessEvents(), std::runtime_error);
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{0, 4}));
}

TEST_P(FramesOnAWaitingDriver, AWindowThatIsMadeAgainBehavesTheSame) {
    RefreshFourTimes();
    ASSERT_TRUE(window->Recreate());
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{0, 4}));
}

INSTANTIATE_TEST_SUITE_P(Extension, FramesOnAWaitingDriver,
                         testing::Values(Extensions{"All", true, true, true}, Extensions{"Ext", true, false, false},
                                         Extensions{"Mesa", false, true, false}),
                         [](const auto& row) { return row.param.name; });

/// Drivers whose interval cannot be read, or not be set to 0.
class FramesWithoutSwapControl : public FramesOnAWaitingDriver {};

TEST_P(FramesWithoutSwapControl, KeepsTheDriversSettingAndRaisesNoError) {
    EXPECT_EQ(WaitsAndSwapsOf([&] { RefreshFourTimes(); }), (Counts{4, 4}));
    EXPECT_EQ(WaitsAndSwapsOf([&] { PaintInTheEventLoop(); }), (Counts{1, 1}));
    EXPECT_TRUE(window->Exists());
}

INSTANTIATE_TEST_SUITE_P(Extension, FramesWithoutSwapControl,
                         testing::Values(Extensions{"None", false, false, false},
                                         Extensions{"Sgi", false, false, true}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
