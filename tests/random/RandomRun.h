// A run of random calls: a viewer and its model side by side. Every call goes to both; result and events are compared
// at once, everything that getters return after each hundred calls.
#pragma once
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "random/Model.h"
#include "random/Random.h"
#include "random/Viewer.h"

/// The viewer does not do what the model expects. The text says where.
struct Mismatch : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What the model expects of a call. Without a result any is right.
struct Expected {
    std::optional<AutomationValue> result = {};
    enum Failure { Never, Always, Maybe } failure = Never;
    /// Events are not compared: the caller does it.
    bool anyEvents = false;
};

class RandomRun {
public:
    /// @param seed   of this run alone
    /// @param folder  for files, with those that the imports read
    RandomRun(std::uint64_t seed, const std::filesystem::path& folder);
    ~RandomRun();
    RandomRun(const RandomRun&) = delete;
    RandomRun& operator=(const RandomRun&) = delete;

    /// One call, or some input, chosen at random.
    void Step();
    /// Compares everything that getters return.
    void CompareAll();
    /// False when there is nothing left to call: a context was refused.
    [[nodiscard]] bool IsAlive() { return viewer->HasWindow(); }

    // ---- for the rows
    /// Calls the viewer, and compares with the events that the model has collected.
    AutomationValue Call(const char* method, std::vector<AutomationValue> arguments, const Expected& expected = {});
    /// Calls a method that writes numbers; @p values receives them. Outputs come after @p arguments.
    template <typename Value, std::size_t Count>
    AutomationValue CallWithOutputs(const char* method, std::vector<AutomationValue> arguments,
                                    std::array<Value, Count>& values, const Expected& expected = {}) {
        for (Value& value : values) arguments.emplace_back(static_cast<void*>(&value));
        return Call(method, std::move(arguments), expected);
    }
    /// Input, and what has no id. @p text  for the record of calls
    template <typename Action>
    void Act(const std::string& text, Action action) {
        BeginCall(text);
        action();
        CompareEvents();
    }
    void BeginCall(const std::string& text);
    void CompareEvents();
    [[noreturn]] void Fail(const std::string& what) const;
    void Require(bool condition, const std::string& what) const {
        if (!condition) Fail(what);
    }
    void RequireNear(double expected, double actual, double tolerance, const std::string& what) const;
    /// An index of an object that exists; nothing without objects.
    std::optional<std::int16_t> SomeObject();
    /// Mostly an index of an object, else any number.
    std::int16_t AnyObjectIndex();
    /// Reads counts and box of an object from the viewer, after a comparison with what is known of them.
    void AdoptObject(std::size_t index);
    /// Calls a method that has been proven elsewhere, outside the record of calls.
    AutomationValue Ask(const char* method, std::vector<AutomationValue> arguments);
    /// A coordinate in or near the scene, seldom a wild one.
    float Coordinate();
    [[nodiscard]] bool HasFakeClock() const { return viewer->Control() != nullptr; }

    Random random;
    Model model;
    std::unique_ptr<Viewer> viewer;
    std::filesystem::path folder;
    std::map<std::string, std::int64_t> callCounts;  ///< by method
    std::map<std::string, std::int64_t> choices;     ///< the same, with choices that led to no call
    /// Counts of what an export has written, by path; nothing known for a file that is not in it.
    std::map<std::wstring, std::pair<std::int32_t, std::int32_t>> exports;
    std::int32_t registryStarts = 0;
    std::vector<std::uint32_t> screenShot;

private:
    std::string m_lastCall;
};

/// A method and how often it is called.
struct CallRow {
    const char* method;
    double weight;
    void (*make)(RandomRun& run);
};

[[nodiscard]] std::span<const CallRow> SceneCalls();
[[nodiscard]] std::span<const CallRow> ImportCalls();
[[nodiscard]] std::span<const CallRow> MarkerCalls();
[[nodiscard]] std::span<const CallRow> ViewCalls();
[[nodiscard]] std::span<const CallRow> SettingCalls();
[[nodiscard]] std::span<const CallRow> InteractionCalls();
/// Mouse and keyboard input, properties and window events: no methods.
[[nodiscard]] std::span<const CallRow> OtherSteps();

/// Files that imports read, made once per folder.
void PrepareFiles(const std::filesystem::path& folder);

// ---- the clock of the turntable of viewers without a C interface
std::int64_t FakeCounter();
void AdvanceFakeCounter(double seconds);

/// The last calls of the process as text, oldest first. The same memory is written to standard error when the process
/// dies.
std::string LastCalls();
/// Names seed and run in what is written when the process dies.
void SetRunName(const std::string& name);
void PrintEachCall(bool enable);
void InstallCrashReport();
