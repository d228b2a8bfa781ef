#include "base/DebugOutput.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

struct DebugOutputTest : testing::Test {
    ~DebugOutputTest() override { KV_ScenePane::SetDebugOutputSink({}); }
};

TEST_F(DebugOutputTest, GoesToStandardErrorByDefaultAndAgainAfterAnEmptySink) {
    testing::internal::CaptureStderr();
    DebugOutput("one\n");
    KV_ScenePane::SetDebugOutputSink([](std::string_view) {});
    DebugOutput("two\n");
    KV_ScenePane::SetDebugOutputSink({});
    DebugOutput("three\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\nthree\n");
}

TEST_F(DebugOutputTest, TheSinkGetsTheTextAsItIs) {
    std::vector<std::string> texts;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) { texts.emplace_back(text); });
    DebugOutput("Z\xC3\xA4hne: no points\n");
    DebugOutput("");
    EXPECT_EQ(texts, (std::vector<std::string>{"Z\xC3\xA4hne: no points\n", ""}));
}

TEST_F(DebugOutputTest, ManyThreadsCallTheSinkOneAtATime) {
    std::atomic<int> inside = 0, overlaps = 0;
    int calls = 0;  // unguarded: the calls are in turn
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        if (++inside > 1) ++overlaps;
        std::this_thread::yield();
        ++calls;
        --inside;
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < 500; ++j) DebugOutput("x");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(calls, 2000);
    EXPECT_EQ(overlaps, 0);
}

TEST_F(DebugOutputTest, TheFormerSinkIsNotCalledAfterItWasReplaced) {
    std::atomic<bool> replaced = false, end = false;
    std::atomic<int> late = 0;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        std::this_thread::yield();
        if (replaced) ++late;
    });
    std::thread writer([&] {
        while (!end) DebugOutput("x");
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    KV_ScenePane::SetDebugOutputSink([](std::string_view) {});
    replaced = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    end = true;
    writer.join();
    EXPECT_EQ(late, 0);
}

}  // namespace
