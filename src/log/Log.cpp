// The log file and the header of its records.
#include "log/Log.h"

#include <time.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <locale>
#include <string>

#include "base/TempFolder.h"

namespace {

/// A clock that is never set back, milliseconds.
std::int64_t TickCount() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

std::string NowTime() {
    const std::int64_t tick = TickCount();
    static const std::int64_t firstTick = tick;
    return LogTime(std::time(nullptr), tick - firstTick);
}

/// Opened by the first record and closed with the process, in append mode: several processes may write to one file.
std::ostream& Stream() {
    static std::ofstream stream = [] {
        std::ofstream file;
        file.imbue(std::locale::classic());  // independent of the locale that the host sets
        file.open(TempFolder() + "/viewer.log", std::ios::out | std::ios::app);
        return file;
    }();
    return stream;
}

}  // namespace

std::ostream& Log(LogLevel level) {
    static constexpr std::array kLevelWords{"ERROR", "WARNING", "INFO", "DEBUG"};
    return Stream() << "[" << NowTime() << "] <" << kLevelWords[static_cast<std::size_t>(level)] << ">: ";
}

std::string LogTime(std::time_t now, std::int64_t milliseconds) {
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr) return "Error in NowTime()";
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(milliseconds % 1000));
    return text.data();
}
