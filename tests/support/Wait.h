// Waiting for conditions. A test never waits for a time to pass: it would fail on a busy machine, or be slow on a fast
// one.
#pragma once
#include <poll.h>

#include <chrono>
#include <functional>
#include <thread>

/// Only a test that fails waits this long, so it is far above any delay of a busy machine.
inline constexpr std::chrono::seconds kWaitLimit{60};

/// Whether a condition becomes true within the limit.
/// @param step  called before every further check; without one the thread sleeps for a moment
inline bool WaitUntil(const std::function<bool()>& condition, const std::function<void()>& step = {}) {
    const auto end = std::chrono::steady_clock::now() + kWaitLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        if (step)
            step();
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Whether a descriptor is readable, or becomes so within the given time.
inline bool IsReadable(int descriptor, std::chrono::milliseconds within = {}) {
    pollfd polled{descriptor, POLLIN, 0};
    return poll(&polled, 1, static_cast<int>(within.count())) == 1;
}
inline bool BecomesReadable(int descriptor) { return IsReadable(descriptor, kWaitLimit); }

/// Something with a descriptor for the host's loop: PaneWindow, ScenePane.
template <class Window>
concept HasEvents = requires(Window& window) {
    window.EventDescriptor();
    window.ProcessEvents();
};

template <HasEvents Window>
bool IsReadable(const Window& window) {
    return IsReadable(window.EventDescriptor());
}
template <HasEvents Window>
bool BecomesReadable(const Window& window) {
    return BecomesReadable(window.EventDescriptor());
}

/// Runs the loop of a host until a condition is true; false when that does not happen within the limit.
template <HasEvents Window>
bool ProcessEventsUntil(Window& window, const std::function<bool()>& condition) {
    return WaitUntil(condition, [&] {
        if (IsReadable(window.EventDescriptor(), std::chrono::milliseconds(10))) window.ProcessEvents();
    });
}
