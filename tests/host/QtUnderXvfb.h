// A Qt application on an X server of the test program.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

#include "host/ScanFiles.h"
#include "host/WaitUntil.h"
#include "support/XvfbServer.h"

class QtUnderXvfb : public testing::Environment {
public:
    void SetUp() override {
        XvfbServer::Shared();
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        setenv("QT_LOGGING_RULES", "qt.qpa.*=false", 1);
        setenv("XDG_CONFIG_HOME", m_settings.Path().c_str(), 1);  // the settings of the user stay out of the tests
        m_pApplication = std::make_unique<QApplication>(m_nArguments, m_pArguments);
    }
    void TearDown() override { m_pApplication.reset(); }

private:
    const ScratchFolder m_settings;
    char m_program[16] = "host_tests";
    int m_nArguments = 1;
    char* m_pArguments[2] = {m_program, nullptr};
    std::unique_ptr<QApplication> m_pApplication;
};

/// One for all files of the test program.
inline const testing::Environment* const g_qtUnderXvfb = testing::AddGlobalTestEnvironment(new QtUnderXvfb);
