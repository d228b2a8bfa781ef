// The process-wide sink: default, replacement, and calls from several threads.
#include "base/DebugOutput.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/Wait.h"

namespace {

struct DebugOutputTest : testing::Test {
    ~DebugOutputTest() override { KV_ScenePane::SetDebugOutputSink({}); }
};

TEST_F(DebugOutputTest, GoesToStandardErrorWithoutASink) {
    testing::internal::CaptureStderr();
    DebugOutput("one\n");
    KV_ScenePane::SetDebugOutputSink([](std::string_view) {});
    DebugOutput("two\n");
    KV_ScenePane::SetDebugOutputSink({});
    DebugOutput("three\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\nthree\n");
}

TEST_F(DebugOutputTest, PassesTheTextToTheSinkUnchanged) {
    std::vector<std::string> texts;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) { texts.emplace_back(text); });
    DebugOutput("Z\xC3\xA4hne: no points\n");
    DebugOutput("");
    EXPECT_EQ(texts, (std::vector<std::string>{"Z\xC3\xA4hne: no points\n", ""}));
}

TEST_F(DebugOutputTest, SerialisesTheCallsOfSeveralThreads) {
    std::atomic<int> inside = 0, overlaps = 0;
    int calls = 0;  // not atomic: the calls must be serialised
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

TEST_F(DebugOutputTest, NeverCallsASinkAfterItWasReplaced) {
    std::atomic<bool> replaced = false, end = false;
    std::atomic<int> early = 0, late = 0, received = 0;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        ++early;
        std::this_thread::yield();
        if (replaced) ++late;
    });
    std::thread writer([&] {
        while (!end) DebugOutput("x");
    });
    EXPECT_TRUE(WaitUntil([&] { return early > 100; }));
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) { ++received; });
    replaced = true;
    EXPECT_TRUE(WaitUntil([&] { return received > 100; }));
    end = true;
    writer.join();
    EXPECT_EQ(late, 0);
}

}  // namespace
