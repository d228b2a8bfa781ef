// The menus and the tool bars as a whole: letters, keys, wording, and the table of all keys.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <map>
#include <set>

#include "ColorButton.h"
#include "MainToolBar.h"
#include "NumberBox.h"
#include "ScanImportDialog.h"
#include "ShortcutDialog.h"
#include "host/PointerFixture.h"

namespace {

class MainWindowMenus : public MainWindowFixture {
protected:
    void SetUp() override { Show(); }
    /// All menus of the menu bar, with those in them.
    [[nodiscard]] std::vector<const QMenu*> Menus() const {
        std::vector<const QMenu*> menus;
        for (const QAction* const action : m_window->menuBar()->actions()) Add(action->menu(), &menus);
        return menus;
    }

private:
    static void Add(const QMenu* menu, std::vector<const QMenu*>* menus) {
        if (menu == nullptr) return;
        menus->push_back(menu);
        for (const QAction* const action : menu->actions()) Add(action->menu(), menus);
    }
};

TEST_F(MainWindowMenus, AreInTheUsualOrder) {
    QStringList titles;
    for (const QAction* const action : m_window->menuBar()->actions()) titles << QString(action->text()).remove('&');
    EXPECT_EQ(titles, (QStringList{"File", "Edit", "View", "Render", "Tools", "Help"}));
    const QMenu& edit = *m_window->menuBar()->actions().at(1)->menu();
    EXPECT_TRUE(edit.actions().front()->text().remove('&').startsWith("Undo"));
}

TEST_F(MainWindowMenus, MarkNoLetterTwiceInOneMenu) {
    int letters = 0;
    for (const QMenu* const menu : Menus()) {
        std::map<QKeySequence, QString> owners;
        for (const QAction* const action : menu->actions()) {
            const QKeySequence letter = QKeySequence::mnemonic(action->text());
            if (letter.isEmpty() || !action->isVisible()) continue;
            ++letters;
            const auto [other, isNew] = owners.try_emplace(letter, action->text());
            EXPECT_TRUE(isNew) << menu->title().toStdString() << ": " << action->text().toStdString() << " and "
                               << other->second.toStdString();
        }
    }
    EXPECT_GT(letters, 30);
}

// Escape ends what runs: its actions are enabled one at a time.
TEST_F(MainWindowMenus, HaveEachKeyForOneActionOfTheWindow) {
    std::map<QKeySequence, const QAction*> owners;
    int keys = 0;
    for (const QAction* const action : m_window->findChildren<QAction*>()) {
        if (action->shortcutContext() != Qt::WindowShortcut) continue;
        for (const QKeySequence& key : action->shortcuts()) {
            if (key == QKeySequence(Qt::Key_Escape)) continue;
            ++keys;
            const auto [other, isNew] = owners.try_emplace(key, action);
            EXPECT_TRUE(isNew || other->second == action)
                << key.toString().toStdString() << ": " << action->text().toStdString() << " and "
                << other->second->text().toStdString();
        }
    }
    EXPECT_GT(keys, 35);
    const std::pair<const char*, const char*> usual[] = {
        {"Open...", "Ctrl+O"}, {"Quit", "Ctrl+Q"},     {"Fit the view", "Home"},
        {"Shortcuts", "F1"},   {"Full screen", "F11"}, {"Export selected object...", "Ctrl+E"}};
    for (const auto& [text, key] : usual)
        EXPECT_TRUE(MenuAction(text).shortcuts().contains(QKeySequence(key))) << text << ", " << key;
}

TEST_F(MainWindowMenus, HaveNoWordsForProgrammers) {
    // Modes by number, names of methods, and parts of the program.
    const QRegularExpression words(R"(\b(mode &?\d|second mode|host|nullptr|viewer's|callback|event loop)\b|\w\(\))",
                                   QRegularExpression::CaseInsensitiveOption);
    for (const char* const found : {"Mode 3", "the Host", "SetScanData() failed"})
        ASSERT_TRUE(words.match(found).hasMatch()) << found;
    int texts = 0;
    for (const QAction* const action : m_window->findChildren<QAction*>()) {
        for (const QString& text : {action->text(), action->toolTip(), action->statusTip()}) {
            ++texts;
            EXPECT_FALSE(words.match(text).hasMatch()) << text.toStdString();
        }
    }
    for (const QWidget* const widget : m_window->findChildren<QWidget*>()) {
        ++texts;
        EXPECT_FALSE(words.match(widget->toolTip()).hasMatch()) << widget->toolTip().toStdString();
    }
    EXPECT_GT(texts, 300);
}

// ---- the main tool bar

TEST_F(MainWindowMenus, MainToolsHaveTipsThatNameTheirKeys) {
    int tools = 0;
    for (const QAction* const action : Find<QToolBar>("mainTools").actions()) {
        if (action->isSeparator() || action->text().isEmpty()) continue;
        ++tools;
        EXPECT_FALSE(action->icon().isNull()) << action->text().toStdString();
        const QString keys = QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText);
        EXPECT_FALSE(keys.isEmpty()) << action->text().toStdString();
        EXPECT_TRUE(action->toolTip().contains('(' + keys + ')')) << action->toolTip().toStdString();
    }
    EXPECT_EQ(tools, 12) << "open, fit, eight views, shadows, picture";
}

TEST_F(MainWindowMenus, ToolBarsFitBesideEachOtherOnASmallScreen) {
    m_window->resize(1350, 700);
    const auto hidden = [&] {
        QStringList names;
        for (const QToolBar* const bar : m_window->findChildren<QToolBar*>()) {
            for (QAction* const action : bar->actions()) {
                // The tints of the lasso are no actions with a text.
                if (!action->text().isEmpty() && !bar->widgetForAction(action)->isVisible()) names << action->text();
            }
        }
        return names.join(", ").toStdString();
    };
    EXPECT_TRUE(WaitUntil([&] { return m_window->width() == 1350 && hidden().empty(); })) << hidden();
}

TEST_F(MainWindowMenus, TheModeButtonShowsTheModeOfTheViewer) {
    const auto& button = Find<QToolButton>("drawModeButton");
    const auto picture = [](const QIcon& icon) { return icon.pixmap(QSize(24, 24), 1.0).toImage(); };
    EXPECT_EQ(picture(button.icon()), picture(MenuAction("Gouraud shaded").icon()));
    Trigger("Wireframe");
    EXPECT_EQ(picture(button.icon()), picture(MenuAction("Wireframe").icon()));
    EXPECT_EQ(button.toolTip(), "Render mode: Wireframe");
    Methods().SetDrawMode(KV_ScenePane::DrawModeFlat);
    EXPECT_TRUE(WaitUntil([&] { return picture(button.icon()) == picture(MenuAction("Flat shaded").icon()); }));
    EXPECT_EQ(button.menu()->actions().size(), 8);
}

TEST_F(MainWindowMenus, MainToolsCanBeHidden) {
    auto& bar = Find<QToolBar>("mainTools");
    EXPECT_TRUE(bar.isVisible());
    Trigger("Main tools");
    EXPECT_FALSE(bar.isVisible());
    Trigger("Main tools");
    EXPECT_TRUE(bar.isVisible());
}

// ---- the table of keys

TEST_F(MainWindowMenus, TheTableOfKeysHasEveryActionOfTheWindow) {
    std::multiset<std::string> expected, listed;
    for (const QAction* const action : m_window->findChildren<QAction*>()) {
        if (action->shortcuts().isEmpty() || action->text().isEmpty()) continue;
        QString text = QString(action->text()).remove('&');
        if (text.endsWith("...")) text.chop(3);
        expected.insert(
            (QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText) + ' ' + text).toStdString());
    }
    for (const ShortcutRow& row : ActionShortcuts(*m_window)) {
        listed.insert((row.keys + ' ' + row.text).toStdString());
        EXPECT_FALSE(row.group.isEmpty());
        EXPECT_FALSE(row.text.isEmpty()) << row.keys.toStdString();
    }
    EXPECT_EQ(listed, expected);
    EXPECT_GT(expected.size(), 40u);
}

TEST_F(MainWindowMenus, TheTableOfKeysFollowsANewAction) {
    auto* const action = new QAction("&Something new...", m_window.get());
    action->setShortcut(Qt::CTRL | Qt::ALT | Qt::Key_F7);
    m_window->menuBar()->actions().front()->menu()->addAction(action);
    const std::vector<ShortcutRow> rows = ActionShortcuts(*m_window);
    EXPECT_NE(std::find(rows.begin(), rows.end(), ShortcutRow{"File", "Ctrl+Alt+F7", "Something new"}), rows.end());
}

TEST_F(MainWindowMenus, TheTableOfKeysHasTheMouseOfTheChosenScheme) {
    const auto inputFor = [&](MouseScheme scheme, const QString& text) {
        for (const ShortcutRow& row : ViewerInputs(scheme)) {
            if (row.text == text) return row.keys.toStdString();
        }
        return std::string("none");
    };
    EXPECT_EQ(inputFor(MouseScheme::Normal, "Turn the view"), "Left drag");
    EXPECT_EQ(inputFor(MouseScheme::Flipped, "Turn the view"), "Right drag");
    EXPECT_EQ(inputFor(MouseScheme::Delayed, "Move the view"), "Drag with both buttons");
    EXPECT_EQ(inputFor(MouseScheme::Flipped, "Fit the view"), "none") << "a double click does nothing then";
}

class MainWindowShortcutKey : public PointerFixture {};

TEST_F(MainWindowShortcutKey, OpensTheTableAndTheSearchFindsAKey) {
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Xdotool("key F1");
    ASSERT_TRUE(WaitUntil([&] {
        const auto* const dialog = m_window->findChild<ShortcutDialog*>();
        return dialog != nullptr && dialog->isActiveWindow();
    }));
    const auto& table = Find<QTreeWidget>("shortcuts");
    const auto shown = [&] {
        std::vector<std::string> rows;
        for (int i = 0; i < table.topLevelItemCount(); ++i) {
            if (!table.topLevelItem(i)->isHidden()) rows.push_back(table.topLevelItem(i)->text(1).toStdString());
        }
        return rows;
    };
    EXPECT_GT(shown().size(), 50u);
    EXPECT_EQ(table.horizontalScrollBar()->maximum(), 0) << "all columns are visible";
    Xdotool("type 'ctrl+o'");
    EXPECT_TRUE(WaitUntil([&] { return shown() == std::vector<std::string>{"Open"}; }));
    Find<QLineEdit>("shortcutSearch").setText("clip plane along");
    EXPECT_EQ(shown(), std::vector<std::string>{"Move the clip plane along its normal, while it is shown"});
    Xdotool("key Escape");
    EXPECT_TRUE(WaitUntil([&] { return !m_window->findChild<ShortcutDialog*>()->isVisible(); }));
}

// ---- scan import settings

class ScanImport : public testing::Test {};

TEST_F(ScanImport, ShowsAndReturnsAllSettings) {
    const ImportSettings before{.skip = 3, .confidence = 0.123456f, .color = 0x112233};
    ScanImportDialog dialog(before);
    auto& skip = *dialog.findChild<QSpinBox*>("skip");
    auto& confidence = *dialog.findChild<QDoubleSpinBox*>("confidence");
    EXPECT_EQ(skip.value(), 3);
    EXPECT_NEAR(confidence.value(), 0.1235, 1e-9);
    EXPECT_EQ(dialog.findChild<ColorButton*>("scanColor")->Packed(), 0x112233);
    EXPECT_EQ(dialog.Settings().confidence, before.confidence) << "the digits that the field does not show";
    skip.setValue(7);
    confidence.setValue(0.5);
    dialog.findChild<ColorButton*>("scanColor")->SetPacked(0x445566);
    const ImportSettings after = dialog.Settings();
    EXPECT_EQ(after.skip, 7);
    EXPECT_EQ(after.confidence, 0.5f);
    EXPECT_EQ(after.color, 0x445566);
}

}  // namespace
