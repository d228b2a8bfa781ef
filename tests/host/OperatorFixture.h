// A desktop for each test: three kinds, as users have them.
#pragma once
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <algorithm>
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
    /// A flat scan that fills the middle of the viewer, opened by an argument.
    void StartWithScan(const std::string& name = "flat.pcm") {
        m_operator->Start({Scan(name)});
        (void)m_operator->WaitForText(QString::fromStdString(name));
        m_operator->WaitFor("the scan in the viewer", [&] { return Middle() != kBackground; });
        m_first = m_operator->WaitForStillPicture();
    }
    [[nodiscard]] std::uint32_t ColorAt(ScreenPoint point) const {
        return Screen().Show({point.x, point.y, 1, 1}).At(0, 0);
    }
    /// Clicks the empty mark in the row of an object. Marks are at the left in their column.
    void CheckMayMove(const QString& name) const {
        const ScreenArea row = m_operator->WaitForText(name), header = m_operator->WaitForText("May move");
        const ScreenPoint box{header.x + 5 * m_operator->Scale(), row.Middle().y};
        Screen().Click(box);
        // A click on the viewer comes by another connection. Handled between press and release of this one, it
        // keeps the mark as it is.
        m_operator->WaitFor("a check mark", [&] { return HasDarkPixel(box, 4 * m_operator->Scale()); });
    }
    /// Whether a pixel within a distance is as dark as texts and check marks.
    [[nodiscard]] bool HasDarkPixel(ScreenPoint middle, int distance) const {
        constexpr std::uint32_t kDarkest = 0x60;  // of each channel
        const int side = 2 * distance + 1;
        const ScreenShown shown = Screen().Show({middle.x - distance, middle.y - distance, side, side});
        for (int i = 0; i < side * side; ++i) {
            const std::uint32_t color = shown.At(i % side, i / side);
            if (std::max({color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF}) < kDarkest) return true;
        }
        return false;
    }
    /// The colour at a point of the viewer, see Operator::InViewer().
    [[nodiscard]] std::uint32_t ColorAt(double x, double y) const { return ColorAt(m_operator->InViewer(x, y)); }
    [[nodiscard]] std::uint32_t Middle() const { return ColorAt(0.5, 0.5); }
    /// Keys go to the viewer after a click on it. The click is handled when this returns: a key that follows at once
    /// comes by another connection, and may be the first.
    void GiveKeyboardToViewer() const {
        Screen().Click(m_operator->InViewer(0.02, 0.5));
        (void)m_operator->WaitForStillPicture();
    }
    static constexpr std::uint32_t kBackground = Operator::kBackground;

    std::unique_ptr<Operator> m_operator;
    ScreenShown m_first;  ///< of the viewer, after the start with a scan
};

inline std::string NameOfDesktop(const testing::TestParamInfo<DesktopKind>& info) { return info.param.name; }
