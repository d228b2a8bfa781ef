#include "platform/NoPictureWindow.h"

#include <gtest/gtest.h>

#include <string>

#include "KV_ScenePane/DebugOutput.h"
#include "platform/DrawingClient.h"
#include "platform/WindowFactory.h"
#include "support/Wait.h"

namespace {

struct NoPicture : testing::Test {
    NoPicture() {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
        request.width = 320;
        request.height = 200;
        window = MakePaneWindow(request);
    }
    std::unique_ptr<PaneWindow> window;
};

TEST_F(NoPicture, HasASizeButNoContextAndNoHandle) {
    DrawingClient client(*window);
    EXPECT_FALSE(window->Exists());
    ASSERT_TRUE(window->Create(client, nullptr));
    EXPECT_TRUE(window->Exists());
    EXPECT_EQ(client.created, 0) << "no client makes a context here";
    EXPECT_EQ(window->NativeHandle(), 0u);
    EXPECT_EQ(window->ContextHandle(), nullptr);
    EXPECT_FALSE(window->MakeCurrent());
    EXPECT_EQ(window->ClientSize().width, 320);
    window->Resize(10, 20);
    EXPECT_EQ(window->ClientSize().width, 10);
    EXPECT_EQ(window->ClientSize().height, 20);
}

TEST_F(NoPicture, RefusesEveryStepOfAContextAndANewParent) {
    DrawingClient client(*window);
    ASSERT_TRUE(window->Create(client, nullptr));
    const BootstrapReport report = window->BeginBootstrap({});
    EXPECT_FALSE(report.contextMade);
    EXPECT_FALSE(report.pixelFormatExtension);
    std::int32_t format = -7;
    EXPECT_FALSE(window->ChoosePixelFormat({}, &format));
    EXPECT_EQ(format, -7) << "no format was found";
    window->EndBootstrap();
    EXPECT_FALSE(window->SetPixelFormat(1));
    EXPECT_FALSE(window->CreateContext({}));
    EXPECT_FALSE(window->Reparent(1, 0, 0));
    EXPECT_TRUE(window->Exists()) << "a refusal ends nothing";
}

TEST_F(NoPicture, HoldsNoCapture) {
    DrawingClient client(*window);
    ASSERT_TRUE(window->Create(client, nullptr));
    window->SetCapture();
    EXPECT_FALSE(window->HasCapture());
}

TEST_F(NoPicture, NeverPaints) {
    DrawingClient client(*window);
    ASSERT_TRUE(window->Create(client, nullptr));
    window->Refresh();
    window->Invalidate(true);
    EXPECT_FALSE(window->IsPaintPending());
    window->ProcessEvents();
    EXPECT_EQ(client.paintCalls, 0);
}

TEST_F(NoPicture, DeliversMessagesAndTimers) {
    DrawingClient client(*window);
    ASSERT_TRUE(window->Create(client, nullptr));
    window->PostPrivateMessage(3);
    window->ProcessEvents();
    window->StartTimer(1);
    ASSERT_TRUE(BecomesReadable(*window));
    window->ProcessEvents();
    EXPECT_EQ(client.messages, (std::vector<std::uint32_t>{3, 1147}));
}

TEST_F(NoPicture, RecreateAndDestroyRunOnDestroy) {
    DrawingClient client(*window);
    ASSERT_TRUE(window->Create(client, nullptr));
    ASSERT_TRUE(window->Recreate());
    EXPECT_EQ(client.destroyed, 1) << "a recreation discards the scene here, too";
    EXPECT_TRUE(window->Exists());
    window->Destroy();
    EXPECT_EQ(client.destroyed, 2);
    EXPECT_FALSE(window->Exists());
}

TEST(NoPictureWindow, WritesModalMessagesToTheDebuggerOutputWhenTheHostHasNoHook) {
    std::string texts;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) { texts += text; });
    NoPictureWindow noHook(KV_ScenePane::WindowRequest{});
    noHook.ShowModalMessage("first");
    noHook.ShowModalMessage("second");
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(texts, "first\nsecond\n");
}

}  // namespace
