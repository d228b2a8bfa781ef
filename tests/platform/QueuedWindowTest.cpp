// Paints, messages and timers are the same on an X server and without a display.
#include "platform/QueuedWindow.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/EveryWindow.h"

namespace {

using Clock = std::chrono::steady_clock;
using Messages = std::vector<std::uint32_t>;
using namespace std::chrono_literals;

/// A window that is created and has nothing left to do.
class WindowQueue : public EveryWindow {
protected:
    void SetUp() override {
        ASSERT_TRUE(Create());
        ASSERT_TRUE(HandleAll());
        paintedBefore = client->painted;
    }

    int Painted() const { return client->painted - paintedBefore; }

    /// Runs the loop of a host until the client has received this number of messages.
    [[nodiscard]] bool WaitForMessages(std::size_t count) {
        return ProcessEventsUntil(*window, [&] { return client->messages.size() >= count; });
    }

    int paintedBefore = 0;
};

INSTANTIATE_TEST_SUITE_P(All, WindowQueue, testing::ValuesIn(EveryWindow::kKinds), EveryWindow::Name);

// ---- paints

TEST_P(WindowQueue, RefreshHasPaintedWhenItReturns) {
    window->Refresh();
    EXPECT_EQ(Painted(), 1);
    EXPECT_EQ(client->pixelInside, (Rgba{40, 120, 200}));
    EXPECT_FALSE(window->IsPaintPending());
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(WindowQueue, InvalidatesAreOnePaintOfTheNextProcessEventsThatErasesWhenOneAskedTo) {
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

TEST_P(WindowQueue, RefreshServesTheInvalidatesBeforeIt) {
    window->Invalidate(true);
    window->Refresh();
    EXPECT_TRUE(client->lastErase);
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
}

TEST_P(WindowQueue, DeferredFrameKeepsTheDescriptorReadableAndIsDrawnOnce) {
    {
        const DeferredFrames deferred(*window, true);
        window->Refresh();
        window->Refresh();
        EXPECT_EQ(Painted(), 0);
        EXPECT_TRUE(IsReadable(*window)) << "for a handler that waits for events";
        window->DrawDeferredFrame();
        EXPECT_EQ(Painted(), 1);
        window->DrawDeferredFrame();
        EXPECT_EQ(Painted(), 1) << "there is none any more";
    }
    window->Refresh();
    EXPECT_EQ(Painted(), 2) << "at once again";
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 2);
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(WindowQueue, DeferredFrameIsDrawnByProcessEventsAtTheLatest) {
    {
        const DeferredFrames deferred(*window, true);
        window->Refresh();
    }
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 1);
    EXPECT_FALSE(window->IsPaintPending());
}

TEST_P(WindowQueue, AnyOtherFrameServesTheDeferredOne) {
    const DeferredFrames deferred(*window, true);
    window->Refresh();
    {
        const DeferredFrames atOnce(*window, false);
        window->Refresh();
        EXPECT_EQ(Painted(), 1);
    }
    window->DrawDeferredFrame();
    EXPECT_EQ(Painted(), 1);
}

TEST_P(WindowQueue, DeferredFrameIsForgottenByADestruction) {
    {
        const DeferredFrames deferred(*window, true);
        window->Refresh();
    }
    window->Destroy();
    window->DrawDeferredFrame();
    EXPECT_EQ(Painted(), 0);
    EXPECT_FALSE(window->IsPaintPending());
}

TEST_P(WindowQueue, BlockedPaintIsTriedInEveryProcessEventsWithoutKeepingTheDescriptorReadable) {
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

TEST_P(WindowQueue, InvalidateDuringAPaintIsPaintedByTheNextProcessEvents) {
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

TEST_P(WindowQueue, ProcessEventsInsideAPaintStartsNoQueuedPaint) {
    client->onPaint = [&] {
        if (Painted() > 1) return;
        window->Invalidate(false);
        window->ProcessEvents();
        EXPECT_EQ(Painted(), 1);
    };
    window->Refresh();
    EXPECT_TRUE(window->IsPaintPending());
    EXPECT_TRUE(IsReadable(*window)) << "the window would show the former frame until something else happens";
    window->ProcessEvents();
    EXPECT_EQ(Painted(), 2);
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(WindowQueue, PaintComesAfterTheMessagesOfOneProcessEvents) {
    int paintedAtMessage = -1;
    client->onMessage = [&](std::uint32_t) {
        paintedAtMessage = Painted();
        window->Invalidate(false);
    };
    window->Invalidate(false);
    window->PostPrivateMessage(7);
    window->ProcessEvents();
    EXPECT_EQ(paintedAtMessage, 0);
    EXPECT_EQ(Painted(), 1) << "the request of the message is included";
    EXPECT_FALSE(IsReadable(*window));
}

// ---- messages

TEST_P(WindowQueue, MessagesArriveInOrderAndThoseOfAHandlerInTheNextProcessEvents) {
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

/// Whether a thread of this process waits in the kernel.
bool Sleeps(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t name = text.rfind(") ");  // the state follows the name, which may hold anything
    return name != std::string::npos && text.at(name + 2) == 'S';
}

TEST_P(WindowQueue, MessagesOfAnotherThreadWakeAWaitingLoop) {
    const pid_t loop = gettid();
    bool loopSlept = false;
    std::thread poster([&] {
        loopSlept = WaitUntil([&] { return Sleeps(loop); });
        for (std::uint32_t i = 0; i < 1000; ++i) window->PostPrivateMessage(i);
    });
    EXPECT_TRUE(BecomesReadable(*window));
    poster.join();
    EXPECT_TRUE(loopSlept);
    EXPECT_TRUE(WaitForMessages(1000));
    ASSERT_EQ(client->messages.size(), 1000u);
    for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(client->messages[i], i);
}

// ---- timers. The message of a later timer shows that the time of an earlier one has passed.

TEST_P(WindowQueue, TimerPostsItsMessageOnceAndNotBeforeItsTime) {
    Clock::duration elapsed{};
    const auto start = Clock::now();
    client->onMessage = [&](std::uint32_t) {
        if (client->messages.size() == 1) elapsed = Clock::now() - start;
    };
    EXPECT_NE(window->StartTimer(60), 0u);
    EXPECT_TRUE(BecomesReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1147}));
    EXPECT_GE(elapsed, 60ms);
    window->StartTimer(200);
    EXPECT_TRUE(WaitForMessages(2));
    EXPECT_EQ(client->messages, (Messages{1147, 1147})) << "the first one repeats";
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(WindowQueue, TimerThatIsNotDuePostsNothing) {
    const std::uint32_t timer = window->StartTimer(3'600'000);
    window->ProcessEvents();
    EXPECT_TRUE(client->messages.empty());
    EXPECT_FALSE(IsReadable(*window));
    window->StopTimer(timer);
}

TEST_P(WindowQueue, StoppedTimerPostsNothingAndTheOthersDo) {
    const std::uint32_t stopped = window->StartTimer(20);
    const std::uint32_t kept = window->StartTimer(40);
    EXPECT_NE(stopped, kept);
    window->StopTimer(stopped);
    window->StopTimer(4711);
    EXPECT_TRUE(WaitForMessages(1));
    EXPECT_EQ(client->messages, (Messages{1147}));
    EXPECT_FALSE(IsReadable(*window));
    window->StopTimer(kept);
}

TEST_P(WindowQueue, TimerThatIsDueButNotHandledCanStillBeStopped) {
    const std::uint32_t timer = window->StartTimer(1);
    ASSERT_TRUE(BecomesReadable(*window));
    window->StopTimer(timer);
    EXPECT_FALSE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_TRUE(client->messages.empty());
    window->StartTimer(20);
    EXPECT_TRUE(WaitForMessages(1));
    EXPECT_EQ(client->messages, (Messages{1147}));
}

TEST_P(WindowQueue, TimerOfZeroMillisecondsIsDueAtOnce) {
    window->StartTimer(0);
    EXPECT_TRUE(BecomesReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1147}));
}

TEST_P(WindowQueue, TimersAndMessagesAreKeptByARecreationAndDroppedByADestruction) {
    window->StartTimer(30);
    window->PostPrivateMessage(5);
    ASSERT_TRUE(window->Recreate());
    EXPECT_TRUE(WaitForMessages(2));
    EXPECT_EQ(client->messages, (Messages{5, 1147}));
    window->StartTimer(10);
    window->PostPrivateMessage(6);
    window->Destroy();
    EXPECT_FALSE(IsReadable(*window));
    const auto start = Clock::now();
    window->StartTimer(60);
    EXPECT_TRUE(BecomesReadable(*window));
    EXPECT_GE(Clock::now() - start, 60ms) << "the timer before the destruction";
    window->ProcessEvents();
    EXPECT_EQ(client->messages.size(), 2u);
}

// ---- the rest of a window's life

TEST_P(WindowQueue, MessageToTheUserGoesToTheHost) {
    window->ShowModalMessage("Requested version: 9.9");
    EXPECT_EQ(shown, "Requested version: 9.9");
}

TEST_P(WindowQueue, CaptureIsHeldUntilItIsReleasedOrTheWindowIsDestroyed) {
    EXPECT_FALSE(window->HasCapture());
    window->SetCapture();
    EXPECT_TRUE(window->HasCapture());
    window->ReleaseCapture();
    EXPECT_FALSE(window->HasCapture());
    window->SetCapture();
    window->Destroy();
    EXPECT_FALSE(window->HasCapture());
}

TEST_P(WindowQueue, RefreshInOnCreatePaints) {
    window->Destroy();
    client->refreshInOnCreate = true;
    client->color = {9, 8, 7};
    const int before = client->painted;
    ASSERT_TRUE(window->Create(*client, nullptr));
    EXPECT_EQ(client->painted, before + 1);
    EXPECT_EQ(client->pixelInside, (Rgba{9, 8, 7}));
    EXPECT_FALSE(window->Create(*client, nullptr)) << "it exists already";
}

TEST_P(WindowQueue, RequestsInOnDestroyAreNotPainted) {
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
