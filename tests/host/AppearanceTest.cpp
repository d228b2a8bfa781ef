// The themes of the windows.
#include "Appearance.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QPalette>
#include <QSettings>
#include <QToolTip>
#include <utility>

#include "ToolAction.h"
#include "host/ColorContrast.h"
#include "host/MainWindowFixture.h"

namespace {

class AppearanceTest : public MainWindowFixture {
protected:
    AppearanceTest() { StoreAppearance(Appearance::Desktop); }
    ~AppearanceTest() override {
        StoreAppearance(Appearance::Desktop);
        ShowAppearance(Appearance::Desktop);
    }
};

TEST_F(AppearanceTest, HasLegibleTextInBothThemes) {
    using Role = QPalette::ColorRole;
    const std::pair<Role, Role> pairs[] = {{QPalette::WindowText, QPalette::Window},
                                           {QPalette::Text, QPalette::Base},
                                           {QPalette::Text, QPalette::AlternateBase},
                                           {QPalette::ButtonText, QPalette::Button},
                                           {QPalette::HighlightedText, QPalette::Highlight},
                                           {QPalette::Link, QPalette::Window},
                                           {QPalette::Link, QPalette::Base},
                                           {QPalette::ToolTipText, QPalette::ToolTipBase}};
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
        ShowAppearance(appearance);
        const QPalette palette = QApplication::palette();
        for (const auto& [text, ground] : pairs)
            EXPECT_GE(Contrast(palette.color(text), palette.color(ground)), 4.5) << text << " on " << ground;
        EXPECT_GE(Contrast(palette.color(QPalette::Disabled, QPalette::WindowText), palette.color(QPalette::Window)),
                  2.5);
        EXPECT_EQ(IsDark(palette), appearance == Appearance::Dark);
        EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipBase), palette.color(QPalette::ToolTipBase));
    }
}

TEST_F(AppearanceTest, ChangesAnOpenWindowAndStaysForTheNextOne) {
    Show();
    const QPalette desktop = m_window->palette();
    EXPECT_TRUE(MenuAction("As the desktop").isChecked());
    Trigger("Dark");
    EXPECT_TRUE(WaitUntil([&] { return IsDark(m_window->palette()); }));
    for (const QDockWidget* const dock : m_window->findChildren<QDockWidget*>())
        EXPECT_TRUE(IsDark(dock->widget()->palette())) << dock->objectName().toStdString();
    EXPECT_EQ(StoredAppearance(), Appearance::Dark);
    Show();
    EXPECT_TRUE(MenuAction("Dark").isChecked());
    Trigger("Light");
    EXPECT_TRUE(WaitUntil([&] { return !IsDark(m_window->palette()); }));
    Trigger("As the desktop");
    // The window of the light theme may have the colour of the desktop's.
    const auto isDesktop = [&](QPalette::ColorRole role) {
        return m_window->palette().color(role).rgb() == desktop.color(role).rgb();
    };
    EXPECT_TRUE(WaitUntil([&] { return isDesktop(QPalette::Window) && isDesktop(QPalette::Text); }));
    EXPECT_EQ(StoredAppearance(), Appearance::Desktop);
}

TEST_F(AppearanceTest, IsThatOfTheDesktopWithoutAValidValue) {
    for (const char* const text : {"", "blue", "2"}) {
        QSettings("scenepane", "scenepane").setValue("window/appearance", text);
        EXPECT_EQ(StoredAppearance(), Appearance::Desktop) << text;
    }
}

}  // namespace
