// A Qt application on an X server of the test's own, and waiting for what its event loop brings.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <functional>
#include <memory>

#include "support/XvfbServer.h"

class QtUnderXvfb : public testing::Environment {
public:
    void SetUp() override {
        XvfbServer::Shared();
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        setenv("QT_LOGGING_RULES", "qt.qpa.*=false", 1);
        m_pApplication = std::make_unique<QApplication>(m_nArguments, m_pArguments);
    }
    void TearDown() override { m_pApplication.reset(); }

private:
    char m_program[16] = "host_tests";
    int m_nArguments = 1;
    char* m_pArguments[2] = {m_program, nullptr};
    std::unique_ptr<QApplication> m_pApplication;
};

/// One for all files of the test program.
inline const testing::Environment* const g_qtUnderXvfb = testing::AddGlobalTestEnvironment(new QtUnderXvfb);

/// Runs the event loop until @p condition holds; false when it does not within half a minute.
inline bool WaitUntil(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 30000) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}
