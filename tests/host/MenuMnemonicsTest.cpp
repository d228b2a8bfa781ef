// The underlined letters of the menus in every language of the window.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QTranslator>

#include "Language.h"
#include "host/MainWindowFixture.h"

namespace {

class MenuMnemonics : public MainWindowFixture, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        m_before = QLocale();
        QLocale::setDefault(QLocale(GetParam()));
        TranslateWindow();
        Show();
    }
    void TearDown() override {
        m_window.reset();
        for (QTranslator* const translator : qApp->findChildren<QTranslator*>()) delete translator;
        QLocale::setDefault(m_before);
    }
    /// Letters that more than one entry of a menu has, with their entries.
    [[nodiscard]] static QStringList Collisions(const QList<QAction*>& entries) {
        QMap<QString, QStringList> byLetter;
        for (const QAction* const entry : entries) {
            const QKeySequence mnemonic = QKeySequence::mnemonic(entry->text());
            if (!mnemonic.isEmpty()) byLetter[mnemonic.toString()] << entry->text();
        }
        QStringList collisions;
        for (const QStringList& texts : byLetter) {
            if (texts.size() > 1) collisions << texts.join(" / ");
        }
        return collisions;
    }
    QLocale m_before;
};

TEST_P(MenuMnemonics, AreDifferentInEachMenu) {
    EXPECT_EQ(Collisions(m_window->menuBar()->actions()).join('\n').toStdString(), "");
    int menus = 0;
    for (const QMenu* const menu : m_window->findChildren<QMenu*>()) {
        menus += menu->actions().isEmpty() ? 0 : 1;
        EXPECT_EQ(Collisions(menu->actions()).join('\n').toStdString(), "") << "in " << menu->title().toStdString();
    }
    EXPECT_GT(menus, 8);
}

TEST_P(MenuMnemonics, AreThoseOfTheLanguage) {
    const bool isGerman = QLocale().language() == QLocale::German;
    EXPECT_EQ(m_window->menuBar()->actions().front()->text(), isGerman ? "&Datei" : "&File");
}

INSTANTIATE_TEST_SUITE_P(Languages, MenuMnemonics, testing::Values("en", "de"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
