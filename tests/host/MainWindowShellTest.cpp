// Place, panes, full screen, recent files and folders of the window, and what it remembers for the next one.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <filesystem>

#include "EventPane.h"
#include "RecentFiles.h"
#include "Settings.h"
#include "ViewerWidget.h"
#include "WindowIcon.h"
#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"
#include "host/ModalDialogs.h"
#include "host/UnprivilegedUser.h"

namespace {

class MainWindowShell : public MainWindowFixture {
protected:
    [[nodiscard]] QDockWidget& Dock(const QString& name) const { return Find<QDockWidget>(name); }
    [[nodiscard]] std::vector<std::string> OpenDocks() const {
        std::vector<std::string> names;
        for (const auto* const dock : m_window->findChildren<QDockWidget*>())
            if (!dock->isHidden()) names.push_back(dock->objectName().toStdString());
        return names;
    }
    /// As the menu shows it. @param name  of the action
    void Switch(const QString& name) const { Find<QAction>(name).trigger(); }
    /// Closes the window, which stores what it remembers, and shows another one.
    void Restart(const HostOptions& options = {}) {
        ASSERT_TRUE(m_window->close());
        Show(options);
    }
    /// The entries of the recent files, without their digits.
    [[nodiscard]] QList<QAction*> RecentFiles() const {
        for (auto* const menu : m_window->findChildren<QMenu*>()) {
            if (menu->title().remove('&') != "Open recent") continue;
            emit menu->aboutToShow();
            return menu->actions();
        }
        throw std::runtime_error("no menu of recent files");
    }
};

// ---- panes

TEST_F(MainWindowShell, NamesOfPanesThatShareAPlaceAreWhole) {
    Show();
    const auto isOfPanes = [](const QTabBar* bar) { return bar->isVisible() && bar->count() > 1; };
    int bars = 0;
    for (const auto* const bar : m_window->findChildren<QTabBar*>(Qt::FindDirectChildrenOnly)) {
        if (!isOfPanes(bar)) continue;
        ++bars;
        for (int tab = 0; tab < bar->count(); ++tab)
            EXPECT_GT(bar->tabRect(tab).width(), bar->fontMetrics().horizontalAdvance(bar->tabText(tab)))
                << bar->tabText(tab).toStdString();
    }
    EXPECT_GT(bars, 0);
}

TEST_F(MainWindowShell, APaneThatItsMenuOpensIsInFrontOfThoseAtItsPlace) {
    Show();
    for (const char* const name : {"alignment", "transform", "events"}) {
        Dock(name).toggleViewAction()->trigger();
        EXPECT_TRUE(WaitUntil([&] { return !Dock(name).visibleRegion().isEmpty(); })) << name;
    }
    EXPECT_TRUE(Dock("transform").visibleRegion().isEmpty());
}

TEST_F(MainWindowShell, TheFirstStartShowsNeitherMessagesNorEvents) {
    Show();
    EXPECT_TRUE(Dock("messages").isHidden());
    EXPECT_TRUE(Dock("events").isHidden());
    EXPECT_FALSE(Dock("objects").isHidden());
}

TEST_F(MainWindowShell, AProblemOpensTheMessagesAndLeavesTheKeyboardWhereItIs) {
    Show();
    QWidget* const focus = QApplication::focusWidget();
    m_window->Messages().AddText("only information");
    EXPECT_TRUE(Dock("messages").isHidden());
    Import({m_folder / "none.pcm"});
    EXPECT_FALSE(Dock("messages").isHidden());
    EXPECT_TRUE(WaitUntil([&] { return m_window->Messages().isVisible(); }));
    EXPECT_EQ(QApplication::focusWidget(), focus);
    Dock("messages").close();
    m_window->Messages().AddText("more information");
    EXPECT_TRUE(Dock("messages").isHidden()) << "closed by the user";
    m_window->Messages().AddProblem("a failure");
    EXPECT_FALSE(Dock("messages").isHidden());
}

TEST_F(MainWindowShell, MessagesAndEventsAreCleared) {
    Show();
    m_window->Messages().AddProblem("a failure");
    Find<QPushButton>("clearMessages").click();
    EXPECT_EQ(Messages(), "");
    m_window->Events().AddLine("an event");
    Find<QPushButton>("clearEvents").click();
    EXPECT_EQ(m_window->Events().Text(), "");
}

TEST_F(MainWindowShell, PanesThatTheWindowHasOpenedStartClosedAndThoseOfTheUserOpen) {
    Show();
    m_window->Messages().AddProblem("a failure");
    Dock("events").toggleViewAction()->trigger();
    Dock("objects").toggleViewAction()->trigger();
    Restart();
    EXPECT_TRUE(Dock("messages").isHidden());
    EXPECT_FALSE(Dock("events").isHidden());
    EXPECT_TRUE(Dock("objects").isHidden());
    Dock("messages").toggleViewAction()->trigger();
    Restart();
    EXPECT_FALSE(Dock("messages").isHidden());
}

TEST_F(MainWindowShell, HidingAllPanesAndBackRestoresThemAtTheirSizes) {
    Show();
    Dock("events").toggleViewAction()->trigger();
    const int wide = Dock("objects").width() + 50;
    m_window->resizeDocks({&Dock("objects")}, {wide}, Qt::Horizontal);
    ASSERT_TRUE(WaitUntil([&] { return Dock("objects").width() == wide; }));
    const std::vector<std::string> open = OpenDocks();
    const int viewer = m_window->centralWidget()->width();
    Switch("hidePanes");
    EXPECT_TRUE(OpenDocks().empty());
    EXPECT_TRUE(WaitUntil([&] { return m_window->centralWidget()->width() == m_window->width(); }));
    m_window->Messages().AddProblem("a failure");
    EXPECT_TRUE(Dock("messages").isHidden()) << "until the panes are back";
    Switch("hidePanes");
    EXPECT_FALSE(Dock("messages").isHidden());
    Dock("messages").close();
    EXPECT_EQ(OpenDocks(), open);
    EXPECT_TRUE(WaitUntil([&] { return Dock("objects").width() == wide; }));
    EXPECT_TRUE(WaitUntil([&] { return m_window->centralWidget()->width() == viewer; }));
}

TEST_F(MainWindowShell, AWindowThatEndsWithHiddenPanesStartsWithThem) {
    Show();
    const std::vector<std::string> open = OpenDocks();
    Switch("hidePanes");
    Restart();
    EXPECT_EQ(OpenDocks(), open);
}

// ---- place and full screen

TEST_F(MainWindowShell, TheNextWindowHasPlaceAndSizeOfTheLastOne) {
    Show();
    m_window->setGeometry(60, 70, 1001, 702);
    ASSERT_TRUE(WaitUntil([&] { return m_window->size() == QSize(1001, 702); }));
    Restart();
    EXPECT_TRUE(WaitUntil([&] { return m_window->geometry() == QRect(60, 70, 1001, 702); }))
        << m_window->geometry().x() << ' ' << m_window->geometry().y() << ' ' << m_window->width() << ' '
        << m_window->height();
}

TEST_F(MainWindowShell, FullScreenEndsWithTheSameKeyOrEscape) {
    Show();
    QAction& leave = Find<QAction>("leaveFullScreen");
    EXPECT_FALSE(leave.isEnabled());
    Switch("fullScreen");
    EXPECT_TRUE(m_window->isFullScreen());
    EXPECT_TRUE(leave.isEnabled());
    leave.trigger();
    EXPECT_FALSE(m_window->isFullScreen());
    EXPECT_FALSE(Find<QAction>("fullScreen").isChecked());
    Switch("fullScreen");
    Switch("fullScreen");
    EXPECT_FALSE(m_window->isFullScreen());
    Switch("fullScreen");
    Restart();
    EXPECT_FALSE(m_window->isFullScreen()) << "is not remembered";
}

TEST_F(MainWindowShell, EscapeBelongsToALassoBeforeItLeavesFullScreen) {
    WritePcm(m_folder / "a.pcm", 60, 60);
    Show();
    Import({m_folder / "a.pcm"});
    Switch("fullScreen");
    QAction& cancel = Find<QAction>("cutCancel");
    Find<QAction>("cutPolygonInside").trigger();
    ASSERT_TRUE(WaitUntil([&] { return cancel.isEnabled(); }));
    EXPECT_FALSE(Find<QAction>("leaveFullScreen").isEnabled());
    cancel.trigger();
    ASSERT_TRUE(WaitUntil([&] { return !cancel.isEnabled(); }));
    EXPECT_TRUE(m_window->isFullScreen());
    EXPECT_TRUE(Find<QAction>("leaveFullScreen").isEnabled());
}

// ---- settings

TEST_F(MainWindowShell, TheNextWindowHasTheViewOfTheLastOne) {
    Show();
    Trigger("Flipped: left moves, right turns");
    Trigger("About the vertical axis");
    m_window->ShowBackground({0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000});
    m_window->ShowPointSize(5);
    Restart();
    EXPECT_TRUE(MenuAction("Flipped: left moves, right turns").isChecked());
    EXPECT_TRUE(MenuAction("About the vertical axis").isChecked());
    EXPECT_EQ(MiddlePixel(), 0x0000FFu);
    EXPECT_EQ(StoredView().pointSize, 5.0f);
}

TEST_F(MainWindowShell, RememberedImportSettingsAreShownAndThoseOfTheCommandLineCountMore) {
    const auto note = [&] { return Find<QLabel>("importNote").text().toStdString(); };
    Show();
    EXPECT_FALSE(Find<QLabel>("importNote").isVisible());
    StoreSkip(4);
    StoreConfidence(0.5f);
    Restart();
    EXPECT_TRUE(Find<QLabel>("importNote").isVisible());
    EXPECT_EQ(note(), "Skip 4, confidence from 0.5");
    HostOptions options;
    options.import.skip = 1;
    options.given.skip = true;
    options.import.confidence = 0.25f;
    Restart(options);
    EXPECT_EQ(note(), "Confidence from 0.25");
    Restart();
    EXPECT_EQ(note(), "Skip 4, confidence from 0.5") << "the command line is not stored";
}

TEST_F(MainWindowShell, AResetAsksAndMakesThisWindowAndTheNextOneLikeAFirstStart) {
    Show();
    const std::vector<std::string> open = OpenDocks();
    const QColor ofDesktop = QApplication::palette().color(QPalette::Window);
    Trigger("Dark");
    ASSERT_NE(QApplication::palette().color(QPalette::Window), ofDesktop);
    Trigger("Flipped: left moves, right turns");
    m_window->ShowBackground({0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000});
    Dock("objects").toggleViewAction()->trigger();
    AddRecentFiles({m_folder.Path()});
    {
        const DialogAnswer<QMessageBox> no([](QMessageBox& box) { box.reject(); });
        Trigger("Reset settings...");
        EXPECT_TRUE(no.WasShown());
    }
    EXPECT_TRUE(MenuAction("Flipped: left moves, right turns").isChecked());
    EXPECT_EQ(StoredRecentFiles().size(), 1u);
    {
        const DialogAnswer<QMessageBox> yes([](QMessageBox& box) {
            for (const char* const lost : {"recent files", "appearance", "reduced drawing"})
                EXPECT_TRUE(box.informativeText().contains(lost)) << lost;
            for (QAbstractButton* const button : box.buttons())
                if (box.buttonRole(button) == QMessageBox::DestructiveRole) return button->click();
            box.reject();
        });
        Trigger("Reset settings...");
        EXPECT_TRUE(yes.WasShown());
    }
    EXPECT_TRUE(StoredRecentFiles().empty());
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), ofDesktop);
    EXPECT_TRUE(MenuAction("As the desktop").isChecked());
    for (int start = 0; start < 2; ++start) {
        EXPECT_TRUE(MenuAction("Normal: left turns, right moves").isChecked()) << start;
        EXPECT_EQ(MiddlePixel(), kBackground) << start;
        EXPECT_EQ(OpenDocks(), open) << start;
        Restart();
    }
}

TEST_F(MainWindowShell, AResetDuringALassoReachesTheMouseButtons) {
    WritePcm(m_folder / "a.pcm", 60, 60);
    Show();
    Import({m_folder / "a.pcm"});
    Trigger("Flipped: left moves, right turns");
    Trigger("About the vertical axis");
    Find<QAction>("cutPolygonInside").trigger();
    ASSERT_TRUE(WaitUntil([&] { return Find<QAction>("cutCancel").isEnabled(); }));
    m_window->ResetSettings();
    EXPECT_TRUE(MenuAction("Normal: left turns, right moves").isChecked());
    EXPECT_TRUE(MenuAction("Free").isChecked());
}

TEST_F(MainWindowShell, AResetShowsTheSamplesOfAFirstStartInTheirMenu) {
    Show();
    Find<QAction>("samples0").trigger();
    m_window->ResetSettings();
    auto* const menu = qobject_cast<QMenu*>(Find<QAction>("samples0").associatedObjects().value(0));
    ASSERT_NE(menu, nullptr);
    emit menu->aboutToShow();
    EXPECT_TRUE(Find<QAction>("samples4").isChecked());
}

// ---- recent files and folders

TEST_F(MainWindowShell, WhatWasOpenedIsInTheListAndOpensAgain) {
    WritePcm(m_folder / "a & b.pcm", 60, 60);
    Show();
    WriteText(m_folder / "damaged.pcm", "any");
    Import({m_folder / "a & b.pcm", m_folder / "none.pcm", m_folder / "damaged.pcm"});
    QList<QAction*> entries = RecentFiles();
    ASSERT_EQ(entries.size(), 3) << "the file, a separator and the command";
    EXPECT_TRUE(entries[0]->text().startsWith("&1  a && b.pcm")) << entries[0]->text().toStdString();
    entries[0]->trigger();
    EXPECT_TRUE(WaitUntil([&] { return !m_window->IsImporting() && Rows().size() == 2; }));
    std::filesystem::remove(m_folder / "a & b.pcm");
    EXPECT_FALSE(RecentFiles()[0]->isEnabled());
    RecentFiles().last()->trigger();
    EXPECT_EQ(RecentFiles().size(), 3);
    EXPECT_FALSE(RecentFiles()[0]->isEnabled()) << "says that there is none";
}

TEST_F(MainWindowShell, AFolderOpensTheFilesInItInTheirOrder) {
    std::filesystem::create_directory(m_folder.Path() / "in");
    for (const char* const name : {"in/s10.pcm", "in/s2.pcm", "in/s1.pcm"}) WritePcm(m_folder / name, 60, 60);
    Show();
    Import({m_folder / "in"});
    EXPECT_EQ(Rows(), (std::vector<std::string>{"s1.pcm", "s2.pcm", "s10.pcm"}));
    EXPECT_EQ(RecentFiles().size(), 3) << "the folder, a separator and the command";
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
}

TEST_F(MainWindowShell, AFolderThatCannotBeReadIsReportedWithTheReason) {
    const std::filesystem::path folder = m_folder.Path() / "scans", closed = folder / "closed";
    std::filesystem::create_directories(closed);
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms(0755));
    std::filesystem::permissions(closed, std::filesystem::perms::none);
    Show();
    {
        const UnprivilegedUser user;
        if (!user.HasEffect()) GTEST_SKIP() << "this process cannot change its user";
        m_window->OpenFiles({folder.string()});
    }
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
    EXPECT_TRUE(WaitUntil([this] { return !Messages().empty(); }));
    EXPECT_EQ(
        Messages(),
        closed.string() + ": nothing added: the folder could not be read: Permission denied: check its permissions");
}

TEST_F(MainWindowShell, AFolderWithoutAKnownFileIsReported) {
    Show();
    Import({m_folder.Path()});
    EXPECT_TRUE(WaitUntil([&] {
        return QString::fromStdString(Messages()).contains("the folder holds no file that can be opened");
    })) << Messages();
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
}

// ---- icon

TEST(WindowIcon, IsDrawnAtTheSizesOfTaskBars) {
    const QIcon icon = WindowIcon();
    for (const int side : {16, 32, 48, 64, 128}) {
        const QImage image = icon.pixmap(side).toImage();
        ASSERT_EQ(image.size(), QSize(side, side));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "the corner is round";
        EXPECT_EQ(image.pixelColor(side / 2, side / 2).alpha(), 255);
        EXPECT_NE(image.pixelColor(side / 2, side / 2), image.pixelColor(side / 2, side / 8)) << "a surface on a field";
    }
}

}  // namespace
