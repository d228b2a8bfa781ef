// Paints, messages and timers are the same on every window: the rules run on both kinds.
#include "platform/MessageQueue.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <memory>
#include <thread>

#include "platform/DrawingClient.h"
#include "platform/HostWindow.h"
#include "platform/WindowFactory.h"
#include "support/XvfbServer.h"

namespace {

using Clock = std::chrono::steady_clock;
using Kind = PaneWindowRequest::Kind;
using Messages = std::vector<std::uint32_t>;

bool IsReadable(const PaneWindow& window, int milliseconds = 0) {
    pollfd waiting{window.EventDescriptor(), POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

class EveryWindow : public testing::TestWithParam<Kind> {
protected:
    void SetUp() override {
        PaneWindowRequest request;
        request.kind = GetParam();
        request.width = 64;
        request.height = 32;
        if (GetParam() == Kind::Child) {
            XvfbServer::Shared();
            host = std::make_unique<HostWindow>();
            request.parent = host->Id();
        }
        request.showMessage = [this](const std::string& text) { shown = text; };
        window = MakePaneWindow(request);
        client = std::make_unique<DrawingClient>(*window);
        std::string reason;
        ASSERT_TRUE(window->Create(*client, &reason)) << reason;
        for (int i = 0; i < 100 && IsReadable(*window, 20); ++i) window->ProcessEvents();
        ASSERT_FALSE(IsReadable(*window)) << "never comes to rest";
        paintedBefore = client->painted;
    }

    int Painted() const { return client->painted - paintedBefore; }

    /// Runs the loop of a host for that time.
    void Loop(int milliseconds) {
        const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
        while (Clock::now() < end) {
            if (IsReadable(*window, 5)) window->ProcessEvents();
        }
    }

    std::unique_ptr<HostWindow> host;
    std::unique_ptr<PaneWindow> window;
    std::unique_ptr<DrawingClient> client;
    std::string shown;
    int paintedBefore = 0;
};

INSTANTIATE_TEST_SUITE_P(All, EveryWindow, testing::Values(Kind::Child, Kind::OffScreen),
                         [](const auto& row) { return row.param == Kind::Child ? "X11" : "OffScreen"; });

TEST_P(EveryWindow, ARefreshHasPaintedWhenItReturns) {
    window->Refresh();
    EXPECT_EQ(Painted(), 1);
    EXPECT_EQ(client->pixelInside, (Rgba{40, 120, 200}));
    EXPECT_FALSE(window->IsPaintPending());
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(EveryWindow, InvalidatesAreOnePaintInTheNextRoundThatErasesWhenOneAskedTo) {
    window->Invalidate(false);
    window->Invalidate(true);
    window->Invalidate(false);
    EXPECT_EQ(Painted(), 0);
    EXPECT_TRUE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
    EXPECT_TRUE(client->lastErase);
    EXPECT_FALSE(IsReadable(*window));
    window->Invalidate(false);
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 2);
    EXPECT_FALSE(client->lastErase);
}

TEST_P(EveryWindow, ARefreshServesTheInvalidatesBeforeIt) {
    window->Invalidate(true);
    window->Refresh();
    EXPECT_TRUE(client->lastErase);
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
}

TEST_P(EveryWindow, ABlockedPaintIsTriedInEveryRoundWithoutMakingTheLoopSpin) {
    client->blockPaint = true;
    const int callsBefore = client->paintCalls;
    window->Refresh();
    EXPECT_EQ(client->paintCalls, callsBefore + 1);
    window->Invalidate(true);
    window->ProcessEvents();
    EXPECT_EQ(client->paintCalls, callsBefore + 2);
    EXPECT_FALSE(IsReadable(*window));
    EXPECT_TRUE(window->IsPaintPending());
    window->ProcessEvents();
    EXPECT_EQ(client->paintCalls, callsBefore + 3);
    EXPECT_EQ(Painted(), 0);
    client->blockPaint = false;
    window->RetryPaint();
    EXPECT_TRUE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
    EXPECT_TRUE(client->lastErase);
    window->RetryPaint();
    EXPECT_FALSE(IsReadable(*window)) << "nothing is pending";
}

TEST_P(EveryWindow, AnInvalidateDuringAPaintWaitsForTheNextRound) {
    client->onPaint = [&] {
        if (Painted() == 1) window->Invalidate(false);
    };
    window->Invalidate(false);
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
    EXPECT_TRUE(window->IsPaintPending());
    EXPECT_TRUE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 2);
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(EveryWindow, ARoundInsideAPaintStartsNoQueuedPaint) {
    client->onPaint = [&] {
        if (Painted() > 1) return;
        window->Invalidate(false);
        window->ProcessEvents();
        EXPECT_EQ(Painted(), 1);
    };
    window->Refresh();
    EXPECT_TRUE(window->IsPaintPending());
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 2);
}

TEST_P(EveryWindow, ThePaintIsTheLastOfARound) {
    int paintedAtMessage = -1;
    client->onMessage = [&](std::uint32_t) {
        paintedAtMessage = Painted();
        window->Invalidate(false);
    };
    window->Invalidate(false);
    window->PostPrivateMessage(7);
    window->ProcessEvents();
    EXPECT_EQ(paintedAtMessage, 0);
    EXPECT_EQ(Painted(), 1) << "the request of the message is in it";
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(EveryWindow, MessagesArriveInOrderAndThoseOfAHandlerInTheNextRound) {
    client->onMessage = [&](std::uint32_t message) {
        if (message == 1) window->PostPrivateMessage(3);
    };
    window->PostPrivateMessage(1);
    window->PostPrivateMessage(2);
    EXPECT_TRUE(client->messages.empty());
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1, 2}));
    EXPECT_TRUE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1, 2, 3}));
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(EveryWindow, AMessageOfAnotherThreadWakesAWaitingLoop) {
    std::thread poster([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        for (std::uint32_t i = 0; i < 1000; ++i) window->PostPrivateMessage(i);
    });
    EXPECT_TRUE(IsReadable(*window, 10'000));
    poster.join();
    Loop(50);
    ASSERT_EQ(client->messages.size(), 1000u);
    for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(client->messages[i], i);
}

TEST_P(EveryWindow, ATimerPostsItsMessageOnceAndNotBeforeItsTime) {
    const auto start = Clock::now();
    EXPECT_NE(window->StartTimer(60), 0u);
    window->ProcessEvents();
    EXPECT_TRUE(client->messages.empty());
    EXPECT_TRUE(IsReadable(*window, 10'000)) << "the descriptor tells of the timer";
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(60));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1147}));
    Loop(150);
    EXPECT_EQ(client->messages.size(), 1u);
}

TEST_P(EveryWindow, TimersAreApartAndAStoppedOneIsSilent) {
    const std::uint32_t stopped = window->StartTimer(20);
    const std::uint32_t kept = window->StartTimer(40);
    EXPECT_NE(stopped, kept);
    window->StopTimer(stopped);
    window->StopTimer(4711);
    Loop(150);
    EXPECT_EQ(client->messages, (Messages{1147}));
    window->StopTimer(kept);
}

TEST_P(EveryWindow, ATimerThatIsDueButNotHandledCanStillBeStopped) {
    const std::uint32_t timer = window->StartTimer(1);
    ASSERT_TRUE(IsReadable(*window, 10'000));
    window->StopTimer(timer);
    EXPECT_FALSE(IsReadable(*window));
    Loop(30);
    EXPECT_TRUE(client->messages.empty());
}

TEST_P(EveryWindow, ATimerOfNoTimeIsDueAtOnce) {
    window->StartTimer(0);
    EXPECT_TRUE(IsReadable(*window, 10'000));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1147}));
}

TEST_P(EveryWindow, TimersAndMessagesOutliveARecreationAndEndWithTheWindow) {
    window->StartTimer(30);
    window->PostPrivateMessage(5);
    ASSERT_TRUE(window->Recreate());
    Loop(150);
    EXPECT_EQ(client->messages, (Messages{5, 1147}));
    window->StartTimer(10);
    window->PostPrivateMessage(6);
    window->Destroy();
    EXPECT_FALSE(IsReadable(*window, 50));
    window->ProcessEvents();
    EXPECT_EQ(client->messages.size(), 2u);
}

TEST_P(EveryWindow, AMessageToTheUserGoesToTheHost) {
    window->ShowModalMessage("Requested version: 9.9");
    EXPECT_EQ(shown, "Requested version: 9.9");
}

TEST_P(EveryWindow, CaptureIsHeldUntilReleasedOrTheWindowGoes) {
    EXPECT_FALSE(window->HasCapture());
    window->SetCapture();
    EXPECT_TRUE(window->HasCapture());
    window->ReleaseCapture();
    EXPECT_FALSE(window->HasCapture());
    window->SetCapture();
    window->Destroy();
    EXPECT_FALSE(window->HasCapture());
}

TEST_P(EveryWindow, ARefreshWhileTheWindowIsMadeAlreadyPaints) {
    window->Destroy();
    client->refreshInOnCreate = true;
    client->color = {9, 8, 7};
    const int before = client->painted;
    ASSERT_TRUE(window->Create(*client, nullptr));
    EXPECT_EQ(client->painted, before + 1);
    EXPECT_EQ(client->pixelInside, (Rgba{9, 8, 7}));
    EXPECT_FALSE(window->Create(*client, nullptr)) << "it is there already";
}

TEST_P(EveryWindow, TheEndPaintsNoMore) {
    client->onDestroy = [&] {
        window->Refresh();
        window->Invalidate(true);
    };
    window->Destroy();
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 0);
    EXPECT_FALSE(window->IsPaintPending());
}

}  // namespace
