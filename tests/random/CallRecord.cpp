// The record of the last calls, which survives the death of the process, and the clock of the turntable.
#include <unistd.h>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/PerformanceCounter.h"
#include "random/RandomRun.h"

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

constexpr std::size_t kCalls = 40, kCallLength = 400;
char g_calls[kCalls][kCallLength];
std::uint64_t g_callCount = 0;
char g_runName[200];
bool g_printsCalls = false;
std::int64_t g_counter = 0;

void WriteToStandardError(const char* text) {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, std::strlen(text));
}

// Only what a signal handler may do.
void WriteRecord() {
    WriteToStandardError("\nlast calls of ");
    WriteToStandardError(g_runName);
    WriteToStandardError(":\n");
    const std::uint64_t first = g_callCount > kCalls ? g_callCount - kCalls : 0;
    for (std::uint64_t i = first; i < g_callCount; ++i) {
        WriteToStandardError(g_calls[i % kCalls]);
        WriteToStandardError("\n");
    }
}

void OnSignal(int signal) {
    WriteRecord();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

void RandomRun::BeginCall(const std::string& text) {
    if (model.TurnsAnyhow()) model.view.axesKnown = false;
    m_lastCall = text;
    std::snprintf(g_calls[g_callCount % kCalls], kCallLength, "%s", text.c_str());
    ++g_callCount;
    if (g_printsCalls) std::fprintf(stderr, "%s\n", text.c_str());
}

std::string LastCalls() {
    std::string text;
    const std::uint64_t first = g_callCount > kCalls ? g_callCount - kCalls : 0;
    for (std::uint64_t i = first; i < g_callCount; ++i) text.append(g_calls[i % kCalls]).append("\n");
    return text;
}

void SetRunName(const std::string& name) { std::snprintf(g_runName, sizeof g_runName, "%s", name.c_str()); }

void PrintEachCall(bool enable) { g_printsCalls = enable; }

void InstallCrashReport() {
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(WriteRecord);
        std::signal(SIGABRT, OnSignal);
        return;
    }
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) std::signal(signal, OnSignal);
}

std::int64_t FakeCounter() { return g_counter; }

void AdvanceFakeCounter(double seconds) {
    g_counter += static_cast<std::int64_t>(seconds * static_cast<double>(PerformanceFrequency()));
}
