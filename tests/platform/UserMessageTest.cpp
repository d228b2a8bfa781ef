#include "platform/UserMessage.h"

#include <gtest/gtest.h>

#include "KV_ScenePane/DebugOutput.h"

namespace {

struct ShowUserMessageTest : testing::Test {
    ShowUserMessageTest() {
        KV_ScenePane::SetDebugOutputSink([this](std::string_view text) { output += text; });
    }
    ~ShowUserMessageTest() override { KV_ScenePane::SetDebugOutputSink({}); }
    std::string output;
};

TEST_F(ShowUserMessageTest, PassesTheTextToTheHookAlone) {
    std::string shown;
    ShowUserMessage([&](const std::string& text) { shown += text; }, "first");
    EXPECT_EQ(shown, "first");
    EXPECT_EQ(output, "");
}

TEST_F(ShowUserMessageTest, WritesALineToTheDebuggerOutputWithoutAHook) {
    ShowUserMessage({}, "first");
    ShowUserMessage({}, "second");
    EXPECT_EQ(output, "first\nsecond\n");
}

TEST_F(ShowUserMessageTest, PassesTheAboutTextToItsHookAlone) {
    std::string shown;
    const auto hook = [&](const KV_ScenePane::AboutText& text) { shown += text.title + "/" + text.line; };
    ShowAboutText(hook, {"title", "line"});
    EXPECT_EQ(shown, "title/line");
    EXPECT_EQ(output, "");
}

TEST_F(ShowUserMessageTest, WritesTheLineOfTheAboutTextToTheDebuggerOutputWithoutAHook) {
    ShowAboutText({}, {"title", "line"});
    EXPECT_EQ(output, "line\n");
}

}  // namespace
