// What wakes a window besides its window system: posted messages and one-shot timers, combined in one descriptor for
// the host's loop.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

/// Belongs to the thread of one window; only Post() and Wake() may be called from other threads.
class MessageQueue {
public:
    MessageQueue();
    ~MessageQueue();
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    /// False when the process had no file descriptor left at construction; Descriptor() is never readable then.
    [[nodiscard]] bool IsReady() const;
    /// An epoll descriptor, readable when a message is queued, a timer is due, Wake() was called or a watched
    /// descriptor is readable.
    [[nodiscard]] int Descriptor() const { return m_nEpoll; }

    /// Adds a descriptor to those that make Descriptor() readable. It stays the caller's, to be removed before it is
    /// closed.
    void Watch(int descriptor) const;
    void Unwatch(int descriptor) const;

    /// Queues a message. Any thread.
    void Post(std::uint32_t message);
    /// Makes Descriptor() readable until the next Collect() or ClearWake(). Any thread.
    void Wake();

    /// Starts a timer that posts @p message once. Returns its id, never 0.
    std::uint32_t StartTimer(std::uint32_t milliseconds, std::uint32_t message);
    /// Unknown ids are ignored.
    void StopTimer(std::uint32_t id);

    /// Begins the delivery of one ProcessEvents() call: clears the wake, queues the messages of the timers that are
    /// due, in the order of their times.
    /// @return how many messages are queued now; later ones belong to the next call
    std::size_t Collect();
    /// Removes the oldest message; false when there is none.
    bool Pop(std::uint32_t* message);
    /// Clears a wake that the current call has already served; queued messages keep the descriptor readable.
    void ClearWake();
    /// Makes Descriptor() readable when messages are queued that a Collect() has found and nobody has popped.
    void WakeForQueued();
    /// Drops all messages and timers.
    void Clear();

private:
    using Clock = std::chrono::steady_clock;
    struct Timer {
        std::uint32_t id = 0;
        std::uint32_t message = 0;
        Clock::time_point due;
    };

    // Both need m_lock held. m_bSignalled mirrors the eventfd, so that a burst of posts costs one system call.
    void RaiseSignal();
    void ClearSignal();
    void ArmTimer() const;

    int m_nEpoll = -1;
    int m_nWakeEvent = -1;   ///< eventfd; readable while m_bSignalled
    int m_nTimerEvent = -1;  ///< timerfd, set to the earliest of m_vTimers
    std::vector<Timer> m_vTimers;
    std::uint32_t m_nLastTimerId = 0;

    std::mutex m_lock;  ///< guards the members below
    std::deque<std::uint32_t> m_vMessages;
    bool m_bSignalled = false;
};
