// The process-wide sink: default, replacement, and calls from several threads.
#include "base/DebugOutput.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
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

// ---- a sink that does more than to take the text

using Texts = std::vector<std::string>;

TEST_F(DebugOutputTest, TextsThatTheSinkWritesFollowInTheirOrder) {
    Texts texts;
    bool inside = false;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        EXPECT_FALSE(inside) << "one call at a time";
        inside = true;
        texts.emplace_back(text);
        if (text == "1") DebugOutput("1.1"), DebugOutput("1.2");
        if (text == "1.1") DebugOutput("1.1.1");
        inside = false;
    });
    DebugOutput("1");
    EXPECT_EQ(texts, (Texts{"1", "1.1", "1.2", "1.1.1"})) << "all have arrived when the call returns";
    DebugOutput("2");
    EXPECT_EQ(texts.back(), "2");
}

// The host's threads find their own texts by it.
TEST_F(DebugOutputTest, TheSinkRunsOnTheThreadThatWrites) {
    std::atomic<int> onOtherThreads = 0, calls = 0;
    static thread_local int written;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        ++calls;
        if (written == 0) ++onOtherThreads;
        if (text == "x") DebugOutput("y");
        std::this_thread::yield();
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (written = 1; written <= 250; ++written) DebugOutput("x");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(calls, 2000);
    EXPECT_EQ(onOtherThreads, 0);
}

TEST_F(DebugOutputTest, EachThreadsTextsArriveOnceAndInTheirOrder) {
    std::vector<Texts> byThread(3);
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        byThread[static_cast<std::size_t>(text[0] - '0')].emplace_back(text.substr(2));
        if (text.size() < 6) DebugOutput(std::string(text).append("+sink"));  // only the threads' own texts are short
    });
    const auto write = [](int thread) {
        for (int i = 0; i < 100; ++i) DebugOutput(std::to_string(thread).append(" ").append(std::to_string(i)));
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back(write, i);
    for (std::thread& thread : threads) thread.join();
    Texts expected;
    for (int i = 0; i < 100; ++i) {
        expected.push_back(std::to_string(i));
        expected.push_back(std::to_string(i).append("+sink"));
    }
    for (const Texts& texts : byThread) EXPECT_EQ(texts, expected);
}

TEST_F(DebugOutputTest, AThrowingSinkLosesNoLaterText) {
    Texts texts;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        texts.emplace_back(text);
        if (text != "1") return;
        DebugOutput("1.1");
        throw std::runtime_error("sink");
    });
    EXPECT_THROW(DebugOutput("1"), std::runtime_error);
    DebugOutput("2");
    std::thread([] { DebugOutput("3"); }).join();
    EXPECT_EQ(texts, (Texts{"1", "1.1", "2", "3"}));
}

TEST_F(DebugOutputTest, ASinkMayReplaceItself) {
    Texts first, second;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        KV_ScenePane::SetDebugOutputSink([&](std::string_view later) { second.emplace_back(later); });
        first.emplace_back(text);  // what it refers to still exists
        DebugOutput("1.1");
    });
    DebugOutput("1");
    DebugOutput("2");
    EXPECT_EQ(first, Texts{"1"});
    EXPECT_EQ(second, (Texts{"1.1", "2"}));
}

TEST_F(DebugOutputTest, IsHeldBackWhileItIsDelayed) {
    Texts texts;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) {
        texts.emplace_back(text);
        DelayedDebugOutput inside;  // the sink itself delays already
        if (text == "1") DebugOutput("1.1");
        throw std::runtime_error("nobody could catch it");
    });
    {
        DelayedDebugOutput delayed;
        DebugOutput("1");
        {
            DelayedDebugOutput nested;
            DebugOutput("2");
        }
        EXPECT_EQ(texts, Texts{});
        std::thread([] { EXPECT_THROW(DebugOutput("other thread"), std::runtime_error); }).join();
        EXPECT_EQ(texts, Texts{"other thread"});
    }
    EXPECT_EQ(texts, (Texts{"other thread", "1", "2", "1.1"}));
}

}  // namespace
