// Tasks on several threads: each runs once, on no more threads than the machine has cores.
#include "base/ParallelTasks.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();
// Allocations of this thread that succeed before one fails.
thread_local int t_allocationsLeft = kNoLimit;

}  // namespace

// Not inlined: the compiler would report a pair of new and free().
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (t_allocationsLeft != kNoLimit && t_allocationsLeft-- == 0) {
        t_allocationsLeft = kNoLimit;
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// The threads that tasks ran on.
class ThreadList {
public:
    void Add() {
        const std::lock_guard lock(m_mutex);
        m_ids.insert(std::this_thread::get_id());
    }
    [[nodiscard]] std::size_t Count() const { return m_ids.size(); }
    [[nodiscard]] bool HasThis() const { return m_ids.contains(std::this_thread::get_id()); }

private:
    std::mutex m_mutex;
    std::set<std::thread::id> m_ids;
};

/// While it exists this thread, and those that it starts, run on one core.
class OneCore {
public:
    OneCore() {
        sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int core = 0; core < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++core)
            if (CPU_ISSET(core, &m_before)) CPU_SET(core, &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    ~OneCore() { sched_setaffinity(0, sizeof m_before, &m_before); }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;

private:
    cpu_set_t m_before{};
};

/// Cores that are allowed, counted in another way than by AllowedCores().
std::size_t Cores() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    return static_cast<std::size_t>(CPU_COUNT(&allowed));
}

/// Threads of this process.
std::ptrdiff_t ThreadsNow() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

/// While it exists the system cannot make a thread: no address space is large enough for its stack.
class NoFurtherThreads {
public:
    NoFurtherThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge;
        pthread_getattr_default_np(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    ~NoFurtherThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoFurtherThreads(const NoFurtherThreads&) = delete;
    NoFurtherThreads& operator=(const NoFurtherThreads&) = delete;

private:
    pthread_attr_t m_before{};
};

TEST(RunParallelTasks, RunsEachTaskOnce) {
    for (const std::size_t count : {0, 1, 2, 3, 100, 300000}) {
        std::vector<std::atomic<int>> runs(count);
        const auto exceptions = RunParallelTasks(count, [&](std::size_t i) { ++runs[i]; });
        EXPECT_EQ(exceptions.size(), count);
        EXPECT_TRUE(std::all_of(exceptions.begin(), exceptions.end(), [](const auto& one) { return one == nullptr; }));
        EXPECT_TRUE(std::all_of(runs.begin(), runs.end(), [](const auto& run) { return run == 1; })) << count;
    }
}

TEST(RunParallelTasks, HasEndedAllTasksAndThreadsWhenItReturns) {
    const auto before = ThreadsNow();
    std::atomic<int> ended = 0;
    (void)RunParallelTasks(50, [&](std::size_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ++ended;
    });
    EXPECT_EQ(ended, 50);
    EXPECT_EQ(ThreadsNow(), before);
}

TEST(RunParallelTasks, WorksOnAsManyThreadsAsTheMachineHasCores) {
    // Each task waits until all threads are at work: with a thread less this would not end.
    std::atomic<std::size_t> atWork = 0;
    ThreadList threads;
    (void)RunParallelTasks(1000, [&](std::size_t i) {
        threads.Add();
        if (i >= Cores()) return;
        ++atWork;
        while (atWork < Cores()) std::this_thread::yield();
    });
    EXPECT_EQ(threads.Count(), Cores());
    EXPECT_TRUE(threads.HasThis()) << "the thread that waits works, too";
}

TEST(RunParallelTasks, MakesNoThreadWhereTheProcessHasOneCore) {
    const OneCore core;
    ThreadList threads;
    (void)RunParallelTasks(100, [&](std::size_t) { threads.Add(); });
    EXPECT_EQ(threads.Count(), 1u);
    EXPECT_EQ(AllowedCores(), 1u);
}

TEST(RunParallelTasks, RunsOneTaskAtATimePerThread) {
    std::mutex mutex;
    std::map<std::thread::id, int> running;
    int most = 0;
    (void)RunParallelTasks(500, [&](std::size_t) {
        {
            const std::lock_guard lock(mutex);
            most = std::max(most, ++running[std::this_thread::get_id()]);
        }
        std::this_thread::yield();
        const std::lock_guard lock(mutex);
        --running[std::this_thread::get_id()];
    });
    EXPECT_EQ(most, 1);
}

TEST(RunParallelTasks, MakesNoThreadForOneTask) {
    const auto before = ThreadsNow();
    ThreadList threads;
    std::ptrdiff_t during = 0;
    (void)RunParallelTasks(1, [&](std::size_t) {
        threads.Add();
        during = ThreadsNow();
    });
    EXPECT_EQ(threads.Count(), 1u);
    EXPECT_TRUE(threads.HasThis());
    EXPECT_EQ(during, before);
}

TEST(RunParallelTasks, StartsTasksInTheirOrder) {
    std::mutex mutex;
    std::map<std::thread::id, std::vector<std::size_t>> tasks;
    (void)RunParallelTasks(1000, [&](std::size_t i) {
        const std::lock_guard lock(mutex);
        tasks[std::this_thread::get_id()].push_back(i);
    });
    for (const auto& [thread, indices] : tasks) EXPECT_TRUE(std::is_sorted(indices.begin(), indices.end()));
}

TEST(RunParallelTasks, ReturnsTheExceptionOfEachTaskAndRunsTheOthers) {
    std::atomic<int> ended = 0;
    const auto exceptions = RunParallelTasks(100, [&](std::size_t i) {
        if (i % 10 == 3) throw std::runtime_error(std::to_string(i));
        if (i == 50) throw 50;  // NOLINT(hicpp-exception-baseclass): anything may be thrown
        ++ended;
    });
    EXPECT_EQ(ended, 89);
    for (std::size_t i = 0; i < exceptions.size(); ++i) {
        if (i % 10 == 3) {
            ASSERT_NE(exceptions[i], nullptr);
            try {
                std::rethrow_exception(exceptions[i]);
            } catch (const std::runtime_error& error) {
                EXPECT_EQ(error.what(), std::to_string(i));
            }
        } else {
            EXPECT_EQ(exceptions[i] != nullptr, i == 50) << i;
        }
    }
}

// The list of exceptions is the first allocation; the others are of threads.
TEST(RunParallelTasks, DoesAllWorkWhenThereIsNoMemoryForAnotherThread) {
    std::array<std::atomic<int>, 100> runs{};
    const std::function<void(std::size_t)> task = [&](std::size_t i) { ++runs[i]; };
    t_allocationsLeft = 0;
    EXPECT_THROW((void)RunParallelTasks(runs.size(), task), std::bad_alloc);
    for (int allocations = 1; allocations < 10; ++allocations) {
        t_allocationsLeft = allocations;
        EXPECT_NO_THROW((void)RunParallelTasks(runs.size(), task)) << allocations;
        t_allocationsLeft = kNoLimit;
        EXPECT_TRUE(std::ranges::all_of(runs, [&](const auto& run) { return run == allocations; })) << allocations;
    }
}

TEST(RunParallelTasks, DoesAllWorkOnTheCallingThreadWhenTheSystemRefusesAnother) {
    ThreadList threads;
    std::atomic<int> ended = 0;
    {
        const NoFurtherThreads refuse;
        EXPECT_THROW(std::thread([] {}).join(), std::system_error);
        (void)RunParallelTasks(100, [&](std::size_t) {
            threads.Add();
            ++ended;
        });
    }
    EXPECT_EQ(ended, 100);
    EXPECT_EQ(threads.Count(), 1u);
    EXPECT_TRUE(threads.HasThis());
}

// ---- with a given number of threads

TEST(RunTasks, RunsEachTaskOnceOnTheGivenNumberOfThreads) {
    for (const unsigned threads : {1u, 2u, 3u, 7u}) {
        std::array<std::atomic<int>, 100> runs{};
        ThreadList list;
        std::atomic<unsigned> atWork = 0;
        RunTasks(runs.size(), threads, [&](std::size_t i) {
            list.Add();
            ++runs[i];
            if (i >= threads) return;
            ++atWork;
            while (atWork < threads) std::this_thread::yield();  // with a thread less this would not end
        });
        EXPECT_TRUE(std::ranges::all_of(runs, [](const auto& run) { return run == 1; })) << threads;
        EXPECT_EQ(list.Count(), threads);
        EXPECT_TRUE(list.HasThis()) << threads;
    }
}

TEST(RunTasks, ThrowsTheExceptionOfTheLowestIndexAfterAllTasksHaveEnded) {
    for (const unsigned threads : {2u, 7u}) {
        std::atomic<int> ended = 0;
        try {
            RunTasks(50, threads, [&](std::size_t i) {
                if (i == 20 || i == 40) throw std::runtime_error(std::to_string(i));
                std::this_thread::yield();
                ++ended;
            });
            FAIL() << "nothing was thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "20");
        }
        EXPECT_EQ(ended, 48) << threads;
    }
}

TEST(RunTasks, EndsAtTheFirstExceptionOnOneThread) {
    int ended = 0;
    EXPECT_THROW(RunTasks(50, 1,
                          [&](std::size_t i) {
                              if (i == 20) throw std::runtime_error("");
                              ++ended;
                          }),
                 std::runtime_error);
    EXPECT_EQ(ended, 20);
}

TEST(RunTasks, DoesAllWorkOnTheCallingThreadWhenTheSystemRefusesAnother) {
    ThreadList threads;
    {
        const NoFurtherThreads refuse;
        RunTasks(100, 4, [&](std::size_t) { threads.Add(); });
    }
    EXPECT_EQ(threads.Count(), 1u);
    EXPECT_TRUE(threads.HasThis());
}

TEST(ThreadsFor, GivesEachThreadEnoughItems) {
    EXPECT_EQ(ThreadsFor(0, 10, 4), 1u);
    EXPECT_EQ(ThreadsFor(19, 10, 4), 1u);
    EXPECT_EQ(ThreadsFor(20, 10, 4), 2u);
    EXPECT_EQ(ThreadsFor(1000, 10, 4), 4u);
    EXPECT_EQ(ThreadsFor(1000, 10, 0), 1u);
}

}  // namespace
