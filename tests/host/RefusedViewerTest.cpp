// On a window system that cannot contain the viewer, the host keeps running and shows why.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <cstdlib>

#include "MainWindow.h"
#include "MessagePane.h"
#include "PropertyDialog.h"
#include "ReducedDrawing.h"
#include "host/ModalDialogs.h"
#include "host/ScanFiles.h"
#include "host/WaitUntil.h"

namespace {

TEST(MainWindowWithoutAViewer, ShowsTheReasonAndNamesTheFilesThatItCannotOpen) {
    unsetenv("DISPLAY");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    char program[] = "host_refusal_tests";
    char* arguments[] = {program, nullptr};
    int count = 1;
    const QApplication application(count, arguments);
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 2, 2);
    HostOptions options;
    options.files = {folder / "a.xdt", folder / "b.xyz"};
    options.pointFiles = {folder / "c.xyz"};
    options.lineFiles = {folder / "d.lines"};
    options.needleFiles = {folder / "e.json"};
    MainWindow window(options);
    window.show();
    ASSERT_TRUE(WaitUntil([&] { return window.Messages().toPlainText().contains("e.json"); }));
    EXPECT_EQ(window.Pane(), nullptr);
    EXPECT_FALSE(window.HaveAllFilesAdded());
    const QString start = "There is no viewer: ";
    bool shown = false;
    for (const QLabel* const label : window.findChildren<QLabel*>())
        shown = shown || (label->isVisible() && label->text().startsWith(start) && label->text().size() > start.size());
    EXPECT_TRUE(shown);
    for (const char* const name : {"a.xdt", "b.xyz", "c.xyz", "d.lines", "e.json"}) {
        const QString line = QString::fromStdString(folder / name) + ": not opened, there is no viewer";
        EXPECT_EQ(window.Messages().toPlainText().count(line), 1) << name;
    }
    window.OpenFiles({folder / "a.xdt"});
    EXPECT_FALSE(window.HaveAllFilesAdded());
    window.ClearScene();
    window.ShowView(KV_ScenePane::ViewFromPlusXZUp);
    window.ChoosePickMode(KV_ScenePane::PickModePoints);
    window.ClearPickPoints();
    window.MovePickPoint(0);
    window.CopyPickDistance();
    EXPECT_FALSE(window.IsImporting());
    window.ShowDrawMode(KV_ScenePane::DrawModePoints);
    window.Reducing().Choose(ReducedChoice::Always);
    window.ShowProperties();
    EXPECT_EQ(window.findChild<PropertyDialog*>(), nullptr);
    const DialogAnswer<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "About KV_ScenePane Control");
        box.accept();
    });
    window.ShowAbout();
    EXPECT_TRUE(answer.WasShown());
}

}  // namespace
