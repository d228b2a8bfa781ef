// A desktop for each test: three kinds, as users have them.
#pragma once
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/Operator.h"
#include "host/ScanFiles.h"

/// Texts are drawn in memory, for comparison: Qt needs no display for it, and none may be left open by one test to the
/// next.
class QtForTexts : public testing::Environment {
public:
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        m_pApplication = std::make_unique<QGuiApplication>(m_nArguments, m_pArguments);
    }
    void TearDown() override { m_pApplication.reset(); }

private:
    char m_program[16] = "workflow_tests";
    int m_nArguments = 1;
    char* m_pArguments[2] = {m_program, nullptr};
    std::unique_ptr<QGuiApplication> m_pApplication;
};

inline const DesktopKind kDesktops[] = {
    {"Of1366x768", "1366x768", 1},
#ifndef KV_ONE_DESKTOP
    {"Of1600x1000", "1600x1000", 1},
    {"OfScale2", "1600x1000", 2},
#endif
};

inline void PrintTo(const DesktopKind& kind, std::ostream* out) { *out << kind.name; }

class OnDesktops : public testing::TestWithParam<DesktopKind> {
protected:
    void SetUp() override { m_operator = std::make_unique<Operator>(GetParam()); }
    void TearDown() override {
        if (m_operator == nullptr) return;
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(test->test_suite_name()) + "." + test->name();
        std::ranges::replace(name, '/', '-');
        m_operator->SavePicture(name);
    }
    [[nodiscard]] const Desktop& Screen() const { return m_operator->Screen(); }
    [[nodiscard]] std::string File(const std::string& name) const { return m_operator->Folder() / name; }
    /// A flat scan that fills the square in the middle of the viewer.
    [[nodiscard]] std::string Scan(const std::string& name, float height = 0) const {
        WritePcm(File(name), 60, 60, height);
        return File(name);
    }

    std::unique_ptr<Operator> m_operator;
};

inline std::string NameOfDesktop(const testing::TestParamInfo<DesktopKind>& info) { return info.param.name; }
