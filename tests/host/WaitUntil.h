// Waiting in the tests of the window: always for a condition, never for a time.
#pragma once
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <functional>

/// Runs the event loop until @p condition is true; false when it is not within a minute. The limit only ends a test
/// that would never end: on a machine under load a step of a few milliseconds can take many seconds.
inline bool WaitUntil(const std::function<bool()>& condition) {
    constexpr qint64 kLimitMs = 60'000;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kLimitMs) return false;
        QCoreApplication::processEvents();
        // Leaves the processor to the X server and to other tests: what is waited for may be computed there.
        QThread::msleep(2);
    }
    return true;
}
