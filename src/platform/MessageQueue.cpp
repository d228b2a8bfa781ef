// Posted messages wake by an eventfd, timers by one timerfd set to the earliest; an epoll descriptor joins both with
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
    Signal();
}

void MessageQueue::Wake() {
    const std::lock_guard lock(m_lock);
    Signal();
}

std::uint32_t MessageQueue::StartTimer(std::uint32_t milliseconds, std::uint32_t message) {
    if (++m_nLastTimerId == 0) ++m_nLastTimerId;
    m_vTimers.push_back({m_nLastTimerId, message, Clock::now() + std::chrono::milliseconds(milliseconds)});
    ArmTimer();
    return m_nLastTimerId;
}

void MessageQueue::StopTimer(std::uint32_t id) {
    if (std::erase_if(m_vTimers, [id](const Timer& timer) { return timer.id == id; }) > 0) ArmTimer();
}

std::size_t MessageQueue::Collect() {
    std::uint64_t expirations = 0;
    const bool timersWereDue = read(m_nTimerEvent, &expirations, sizeof expirations) > 0;
    const std::lock_guard lock(m_lock);
    ForgetSignal();
    if (timersWereDue) {
        const auto now = Clock::now();
        std::stable_sort(m_vTimers.begin(), m_vTimers.end(),
                         [](const Timer& a, const Timer& b) { return a.due < b.due; });
        auto waiting = m_vTimers.begin();
        for (; waiting != m_vTimers.end() && waiting->due <= now; ++waiting) m_vMessages.push_back(waiting->message);
        m_vTimers.erase(m_vTimers.begin(), waiting);
        ArmTimer();
    }
    return m_vMessages.size();
}

bool MessageQueue::Take(std::uint32_t* message) {
    const std::lock_guard lock(m_lock);
    if (m_vMessages.empty()) return false;
    *message = m_vMessages.front();
    m_vMessages.pop_front();
    return true;
}

void MessageQueue::Settle() {
    const std::lock_guard lock(m_lock);
    if (m_vMessages.empty()) ForgetSignal();
}

void MessageQueue::Clear() {
    m_vTimers.clear();
    ArmTimer();
    const std::lock_guard lock(m_lock);
    m_vMessages.clear();
    ForgetSignal();
}

void MessageQueue::Signal() {
    if (m_bSignalled) return;
    const std::uint64_t one = 1;
    m_bSignalled = write(m_nWakeEvent, &one, sizeof one) == sizeof one;
}

void MessageQueue::ForgetSignal() {
    if (!m_bSignalled) return;
    std::uint64_t count = 0;
    m_bSignalled = read(m_nWakeEvent, &count, sizeof count) != sizeof count;
}

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
