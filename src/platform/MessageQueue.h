// What wakes a window beside its window system: posted messages and one-shot timers, behind one descriptor for the
// host's loop.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

class MessageQueue {
public:
    MessageQueue();
    ~MessageQueue();
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    /// False when the process had no descriptor left at construction; nothing wakes then.
    [[nodiscard]] bool IsReady() const;
    /// Readable when a message waits, a timer is due, a wake was asked for or a watched descriptor is readable.
    [[nodiscard]] int Descriptor() const { return m_nEpoll; }

    /// Adds a descriptor to those that make Descriptor() readable.
    void Watch(int descriptor) const;
    void Unwatch(int descriptor) const;

    /// Queues a message. Any thread.
    void Post(std::uint32_t message);
    /// Makes Descriptor() readable until the next Collect() or Settle().
    void Wake();

    /// Starts a timer that posts @p message once. Returns its id, never 0.
    std::uint32_t StartTimer(std::uint32_t milliseconds, std::uint32_t message);
    /// Unknown ids are ignored.
    void StopTimer(std::uint32_t id);

    /// Begins a round: forgets the wake, posts the timers that are due.
    /// @return how many messages wait now; later ones belong to the next round
    std::size_t Collect();
    /// Takes the oldest message; false when there is none.
    bool Take(std::uint32_t* message);
    /// Forgets a wake that this round has already served; messages that still wait keep the descriptor readable.
    void Settle();
    /// Drops all messages and timers.
    void Clear();

private:
    using Clock = std::chrono::steady_clock;
    struct Timer {
        std::uint32_t id = 0;
        std::uint32_t message = 0;
        Clock::time_point due;
    };

    void Signal();
    void ForgetSignal();
    void ArmTimer() const;

    int m_nEpoll = -1;
    int m_nWakeEvent = -1;
    int m_nTimerEvent = -1;
    std::vector<Timer> m_vTimers;  ///< of the window's thread alone
    std::uint32_t m_nLastTimerId = 0;

    std::mutex m_lock;  ///< guards what follows
    std::deque<std::uint32_t> m_vMessages;
    bool m_bSignalled = false;
};
