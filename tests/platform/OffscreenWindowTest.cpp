// Surfaces without a display. What they share with other windows is tested in ContextTest.cpp and QueuedWindowTest.cpp.
#include "platform/OffscreenWindow.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/DrawingClient.h"

namespace {

KV_ScenePane::WindowRequest Request(int width, int height) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = width;
    request.height = height;
    return request;
}

struct OffscreenWindowTest : testing::Test {
    OffscreenWindowTest() { unsetenv("DISPLAY"); }

    OffscreenWindow window{Request(333, 77)};
    DrawingClient client{window};
    std::string reason;
};

TEST_F(OffscreenWindowTest, DrawsWithoutADisplay) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_TRUE(window.Exists());
    EXPECT_EQ(window.NativeHandle(), 0u);
    window.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
    EXPECT_EQ(client.pixelInSquare, (Rgba{255, 255, 255}));
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OffscreenWindowTest, ResizeReplacesTheSurfaceAndKeepsTheContext) {
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    window.Refresh();
    void* const context = window.ContextHandle();
    const GLuint list = glGenLists(1);
    window.Resize(700, 500);
    EXPECT_EQ(window.ClientSize().width, 700);
    EXPECT_EQ(window.ClientSize().height, 500);
    EXPECT_EQ(window.ContextHandle(), context);
    EXPECT_TRUE(window.IsPaintPending()) << "the former surface had the frame";
    client.Draw();  // without a MakeCurrent()
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200})) << "at (699, 499)";
    EXPECT_EQ(client.error, static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(glGenLists(1), list + 1) << "the context is another one";
}

TEST_F(OffscreenWindowTest, ZeroAndNegativeSizesHaveASurface) {
    window.Resize(0, -5);
    ASSERT_TRUE(window.Create(client, &reason)) << reason;
    EXPECT_EQ(window.ClientSize().width, 0);
    EXPECT_EQ(window.ClientSize().height, -5);
    EXPECT_TRUE(window.MakeCurrent());
}

TEST(OffscreenWindowSize, LargestSideIsMadeAndLargerSizesAreRefusedWithAReason) {
    OffscreenWindow longest(Request(16384, 8)), tooLong(Request(16385, 8)), tooLarge(Request(16384, 8193));
    DrawingClient client(longest), other(tooLong), another(tooLarge);
    std::string reason;
    ASSERT_TRUE(longest.Create(client, &reason)) << reason;
    longest.Refresh();
    EXPECT_EQ(client.pixelInside, (Rgba{40, 120, 200}));
    longest.Resize(16385, 8);
    EXPECT_EQ(longest.ClientSize().width, 16384) << "an impossible size changes nothing";
    EXPECT_FALSE(tooLong.Create(other, &reason));
    EXPECT_EQ(reason, "An off-screen surface of 16385 x 8 pixels is too large");
    EXPECT_FALSE(tooLarge.Create(another, &reason));
    EXPECT_EQ(reason, "An off-screen surface of 16384 x 8193 pixels is too large");
    EXPECT_EQ(another.created, 0);
}

}  // namespace
