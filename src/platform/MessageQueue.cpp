// Posted messages wake by an eventfd, timers by one timerfd set to the earliest; an epoll descriptor combines both with
// what the window watches.
#include "platform/MessageQueue.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>

MessageQueue::MessageQueue()
    : m_nEpoll(epoll_create1(EPOLL_CLOEXEC)),
      m_nWakeEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_nTimerEvent(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (!IsReady()) return;
    Watch(m_nWakeEvent);
    Watch(m_nTimerEvent);
}

MessageQueue::~MessageQueue() {
    for (const int descriptor : {m_nTimerEvent, m_nWakeEvent, m_nEpoll})
        if (descriptor >= 0) close(descriptor);
}

bool MessageQueue::IsReady() const { return m_nEpoll >= 0 && m_nWakeEvent >= 0 && m_nTimerEvent >= 0; }

// Level-triggered: a loop that does not handle everything is woken again.
void MessageQueue::Watch(int descriptor) const {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    epoll_ctl(m_nEpoll, EPOLL_CTL_ADD, descriptor, &event);
}

void MessageQueue::Unwatch(int descriptor) const { epoll_ctl(m_nEpoll, EPOLL_CTL_DEL, descriptor, nullptr); }

void MessageQueue::Post(std::uint32_t message) {
    const std::lock_guard lock(m_lock);
    m_vMessages.push_back(message);
    RaiseSignal();
}

void MessageQueue::Wake() {
    const std::lock_guard lock(m_lock);
    RaiseSignal();
}

// There are few timers at any time: an unordered vector, searched for the earliest, needs no heap.
std::uint32_t MessageQueue::StartTimer(std::uint32_t milliseconds, std::uint32_t message) {
    if (++m_nLastTimerId == 0) ++m_nLastTimerId;  // 0 is no id, also when the count wraps
    m_vTimers.push_back({m_nLastTimerId, message, Clock::now() + std::chrono::milliseconds(milliseconds)});
    ArmTimer();
    return m_nLastTimerId;
}

void MessageQueue::StopTimer(std::uint32_t id) {
    if (std::erase_if(m_vTimers, [id](const Timer& timer) { return timer.id == id; }) > 0) ArmTimer();
}

std::size_t MessageQueue::Collect() {
    // Reading resets the timerfd. No expiration means that no timer is due, so the clock need not be asked.
    std::uint64_t expirations = 0;
    const bool timersWereDue = read(m_nTimerEvent, &expirations, sizeof expirations) > 0;
    const std::lock_guard lock(m_lock);
    ClearSignal();
    if (timersWereDue) {
        const auto now = Clock::now();
        std::stable_sort(m_vTimers.begin(), m_vTimers.end(),
                         [](const Timer& a, const Timer& b) { return a.due < b.due; });
        auto waiting = m_vTimers.begin();
        // Up to the first that is not due yet.
        for (; waiting != m_vTimers.end() && waiting->due <= now; ++waiting) m_vMessages.push_back(waiting->message);
        m_vTimers.erase(m_vTimers.begin(), waiting);
        ArmTimer();
    }
    return m_vMessages.size();
}

bool MessageQueue::Pop(std::uint32_t* message) {
    const std::lock_guard lock(m_lock);
    if (m_vMessages.empty()) return false;
    *message = m_vMessages.front();
    m_vMessages.pop_front();
    return true;
}

void MessageQueue::ClearWake() {
    const std::lock_guard lock(m_lock);
    if (m_vMessages.empty()) ClearSignal();
}

void MessageQueue::WakeForQueued() {
    const std::lock_guard lock(m_lock);
    if (!m_vMessages.empty()) RaiseSignal();
}

// Of the members only the messages are shared with other threads; the timers belong to the window's.
void MessageQueue::Clear() {
    m_vTimers.clear();
    ArmTimer();
    const std::lock_guard lock(m_lock);
    m_vMessages.clear();
    ClearSignal();
}

// A failed write (the count of the eventfd is at its limit) leaves m_bSignalled false, so that the next one tries
// again.
void MessageQueue::RaiseSignal() {
    if (m_bSignalled) return;
    const std::uint64_t one = 1;
    m_bSignalled = write(m_nWakeEvent, &one, sizeof one) == sizeof one;
}

void MessageQueue::ClearSignal() {
    if (!m_bSignalled) return;
    std::uint64_t count = 0;
    m_bSignalled = read(m_nWakeEvent, &count, sizeof count) != sizeof count;
}

// An absolute time of the steady clock, CLOCK_MONOTONIC: setting the system's time does not move it. A time in the past
// expires at once.
void MessageQueue::ArmTimer() const {
    itimerspec alarm{};  // all zero disarms
    if (!m_vTimers.empty()) {
        const auto byDue = [](const Timer& a, const Timer& b) { return a.due < b.due; };
        const auto due = std::min_element(m_vTimers.begin(), m_vTimers.end(), byDue)->due.time_since_epoch();
        const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(due).count();
        alarm.it_value.tv_sec = static_cast<time_t>(nanoseconds / 1'000'000'000);
        alarm.it_value.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    }
    timerfd_settime(m_nTimerEvent, TFD_TIMER_ABSTIME, &alarm, nullptr);
}
