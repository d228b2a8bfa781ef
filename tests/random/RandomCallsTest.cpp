// Random calls by id to a viewer and to a model of it. The environment says how many and which:
//   KV_RANDOM_CALLS   number of calls, 10000 without it
//   KV_RANDOM_SEED    seed of all runs, 1 without it
//   KV_RANDOM_RUN     number of the first run: a failure names it, and starts again there
//   KV_RANDOM_TRACE   prints each call
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "random/RandomRun.h"
#include "support/ScratchFolder.h"

namespace {

constexpr std::int64_t kCallsPerRun = 1000, kCallsPerComparison = 100;

std::int64_t Setting(const char* name, std::int64_t otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::atoll(text);
}

/// @return calls that were made
std::int64_t MakeCalls(RandomRun& run, std::int64_t calls) {
    std::int64_t made = 0;
    while (made < calls && run.IsAlive()) {
        run.Step();
        if (++made % kCallsPerComparison == 0) run.CompareAll();
    }
    if (run.IsAlive()) run.CompareAll();
    return made;
}

}  // namespace

TEST(RandomCalls, AgreeWithAModelOfTheViewer) {
    const std::int64_t calls = Setting("KV_RANDOM_CALLS", 10'000), seed = Setting("KV_RANDOM_SEED", 1);
    const std::int64_t firstRun = Setting("KV_RANDOM_RUN", 0);
    PrintEachCall(Setting("KV_RANDOM_TRACE", 0) != 0);
    InstallCrashReport();
    std::map<std::string, std::int64_t> counts;
    std::int64_t made = 0;
    for (std::int64_t number = firstRun; made < calls; ++number) {
        const std::string name = "KV_RANDOM_SEED=" + std::to_string(seed) + " KV_RANDOM_RUN=" + std::to_string(number);
        SetRunName(name);
        const ScratchFolder folder;
        PrepareFiles(folder.Path());
        // Every run has a seed of its own, so that a failure can be repeated without the runs before.
        RandomRun run(static_cast<std::uint64_t>(seed) * 1'000'003 + static_cast<std::uint64_t>(number), folder.Path());
        try {
            made += MakeCalls(run, std::min(kCallsPerRun, calls - made));
        } catch (const Mismatch& mismatch) {
            FAIL() << mismatch.what() << "\nrepeat with " << name << "\nlast calls:\n" << LastCalls();
        }
        for (const auto& [method, count] : run.callCounts) counts[method] += count;
    }
    RecordProperty("calls", static_cast<int>(made));
    if (calls < 10'000) return;
    for (const AutomationMethod& method : AutomationMethods())
        EXPECT_GT(counts[std::string(method.name)], 0) << method.name << " was never called";
}
