// Exceptions of the client, which come from handlers and hooks of the host: they reach the caller, the window stays
// whole and nothing that waits is lost.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/EveryWindow.h"

namespace {

using Messages = std::vector<std::uint32_t>;

class ThrowingClient : public EveryWindow {
protected:
    void SetUp() override {
        ASSERT_TRUE(Create());
        ASSERT_TRUE(HandleAll());
        paintedBefore = client->painted;
    }
    int Painted() const { return client->painted - paintedBefore; }

    int paintedBefore = 0;
};

INSTANTIATE_TEST_SUITE_P(All, ThrowingClient, testing::ValuesIn(EveryWindow::kKinds), EveryWindow::Name);

TEST_P(ThrowingClient, LosesNeitherTheOtherMessagesNorTheRepaint) {
    client->onMessage = [](std::uint32_t message) {
        if (message == 1) throw std::runtime_error("handler");
    };
    window->PostPrivateMessage(1);
    window->PostPrivateMessage(2);
    window->Invalidate(true);
    EXPECT_THROW(window->ProcessEvents(), std::runtime_error);
    EXPECT_EQ(client->messages, Messages{1});
    EXPECT_EQ(Painted(), 0);
    EXPECT_TRUE(IsReadable(*window)) << "a loop that polls would not call again";
    window->ProcessEvents();
    EXPECT_EQ(client->messages, (Messages{1, 2}));
    EXPECT_EQ(Painted(), 1);
    EXPECT_FALSE(IsReadable(*window));
}

TEST_P(ThrowingClient, OfARefusedWindowLeavesNoneAndTheNextIsMade) {
    client->context = {9, 9};
    EXPECT_FALSE(window->Recreate());
    client->context = {3, 3};
    ASSERT_TRUE(window->Recreate());

    client->onPaint = [] { throw std::runtime_error("in OnCreate()"); };
    client->refreshInOnCreate = true;
    EXPECT_THROW(window->Recreate(), std::runtime_error);
    EXPECT_FALSE(window->Exists());
    EXPECT_EQ(window->NativeHandle(), 0u);
    EXPECT_FALSE(window->MakeCurrent());
    EXPECT_EQ(window->ContextHandle(), nullptr);
    EXPECT_FALSE(window->IsPaintPending());
    window->ProcessEvents();
    window->Destroy();
    const int destroyed = client->destroyed;

    client->onPaint = nullptr;
    ASSERT_TRUE(window->Recreate());
    EXPECT_TRUE(window->Exists());
    EXPECT_EQ(client->destroyed, destroyed) << "the window that failed never was the client's";
    const int before = client->painted;
    window->Refresh();
    EXPECT_EQ(client->painted, before + 1);
}

TEST_P(ThrowingClient, InOnDestroyDoesNotKeepTheWindow) {
    client->onDestroy = [] { throw std::runtime_error("handler"); };
    EXPECT_THROW(window->Destroy(), std::runtime_error);
    EXPECT_FALSE(window->Exists());
    client->onDestroy = nullptr;
    ASSERT_TRUE(window->Create(*client, nullptr));
    EXPECT_THROW(
        {
            client->onDestroy = [] { throw std::runtime_error("handler"); };
            window->Recreate();
        },
        std::runtime_error);
    client->onDestroy = nullptr;
    EXPECT_FALSE(window->Exists());
    EXPECT_TRUE(window->Recreate());
}

// A message box with an event loop of its own, shown while the window is made.
TEST_P(ThrowingClient, ProcessEventsDuringACreationKeepsTheMessagesForTheWindow) {
    client->refreshInOnCreate = true;
    window->PostPrivateMessage(5);
    client->onPaint = [&] {
        window->ProcessEvents();
        EXPECT_EQ(client->messages, Messages{});
        EXPECT_FALSE(IsReadable(*window)) << "the loop of the message box would spin";
    };
    ASSERT_TRUE(window->Recreate());
    client->onPaint = nullptr;
    EXPECT_TRUE(IsReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(client->messages, Messages{5});
}

}  // namespace
