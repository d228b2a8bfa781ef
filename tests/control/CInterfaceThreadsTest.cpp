// The functions of the C interface that any thread may call, from several at once.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "KV_ScenePane/kv_scenepane.h"

namespace {

constexpr int kThreads = 8;

/// Runs a function on several threads that start at the same moment.
void OnThreads(const std::function<void(int thread)>& function) {
    std::atomic<bool> isStarted = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            while (!isStarted) std::this_thread::yield();
            function(i);
        });
    isStarted = true;
    for (std::thread& thread : threads) thread.join();
}

// First in the process: the table is made by whichever thread asks first.
TEST(KvThreads, FindTheSameMembersWhenAllAskFirst) {
    std::array<const kv_member_info*, kThreads> found{};
    OnThreads([&](int i) {
        const auto place = static_cast<std::size_t>(i);
        found[place] = i % 2 == 0 ? kv_member_by_name(KV_METHOD, "SetSize") : kv_member_by_id(KV_METHOD, KV_SetSize);
        EXPECT_EQ(kv_member_count(KV_EVENT), 13u);
    });
    ASSERT_NE(found[0], nullptr);
    for (const kv_member_info* member : found) EXPECT_EQ(member, found[0]);
    EXPECT_EQ(found[0], kv_member_at(KV_METHOD, 0));
}

TEST(KvThreads, HaveTheirOwnLastError) {
    const kv_vertex vertex{};
    OnThreads([&](int i) {
        for (int round = 0; round < 100; ++round) {
            const std::int32_t triangle[] = {0, 0, 100 + i};
            EXPECT_EQ(kv_mesh_create(&vertex, 1, triangle, 1, 0), nullptr);
            EXPECT_EQ(kv_last_error(),
                      "kv_mesh_create: triangle 0 has the vertex " + std::to_string(100 + i) + ", there are 1");
        }
    });
}

TEST(KvThreads, HaveTheirOwnViewers) {
    OnThreads([](int i) {
        kv_window_request request;
        kv_window_request_init(&request);
        request.kind = KV_NO_PICTURE;
        kv_pane* pane = kv_create(&request);
        ASSERT_NE(pane, nullptr) << kv_last_error();
        for (std::int16_t round = 0; round < 50; ++round) {
            const kv_value value{.type = KV_SHORT, .as = {.i16 = static_cast<std::int16_t>(100 * i + round)}};
            kv_value read{};
            EXPECT_EQ(kv_invoke(pane, KV_SetScanSkipVal, &value, 1, nullptr), KV_DONE);
            EXPECT_EQ(kv_invoke(pane, KV_GetScanSkipVal, nullptr, 0, &read), KV_DONE);
            EXPECT_EQ(read.as.i16, value.as.i16);
        }
        kv_destroy(pane);
    });
}

TEST(KvThreads, MayReplaceTheDebugOutputWhileOthersWrite) {
    std::array<std::atomic<int>, 2> pieces{};
    const auto count = [](void* user, const char*, std::size_t) { ++*static_cast<std::atomic<int>*>(user); };
    kv_set_debug_output(count, pieces.data());
    OnThreads([&](int i) {
        if (i < 2) {
            for (int round = 0; round < 100; ++round) kv_set_debug_output(count, &pieces[static_cast<std::size_t>(i)]);
            return;
        }
        kv_window_request request;
        kv_window_request_init(&request);
        request.kind = KV_NO_PICTURE;
        kv_pane* pane = kv_create(&request);
        ASSERT_NE(pane, nullptr) << kv_last_error();
        const kv_value path{.type = KV_UTF8, .as = {.utf8 = "/nowhere.stl"}};
        for (int round = 0; round < 10; ++round)
            EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_DONE) << kv_last_error();
        kv_destroy(pane);
    });
    kv_set_debug_output(nullptr, nullptr);
    EXPECT_GE(pieces[0] + pieces[1], 10 * (kThreads - 2)) << "a line per refused file";
}

}  // namespace
