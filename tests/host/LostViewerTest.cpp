// The viewer's window is destroyed from outside: imports end before the viewer, and every file is reported.
#include <gtest/gtest.h>

#include <QApplication>
#include <fstream>

#include "ImportJob.h"
#include "PointsDialog.h"
#include "PointsJob.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"
#include "host/ModalDialogs.h"
#include "host/XFocus.h"

namespace {

class LostViewer : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        QObject::connect(m_window.get(), &MainWindow::FileFailed,
                         [this](const std::string&, const std::string& reason) {
                             if (reason == "not opened, there is no viewer") ++m_withoutViewer;
                         });
        // While the viewer is gone and the queued reports have not been made yet.
        QObject::connect(m_window->findChild<ViewerWidget*>(), &ViewerWidget::Refused, [this] {
            m_isLost = true;
            m_wasImporting = m_window->IsImporting();
        });
    }
    void DestroyWindow() {
        if (!std::exchange(m_isDestroyed, true)) DestroyXWindow(m_window->Pane()->NativeWindow());
    }
    /// The viewer is gone, and all that belongs to its end has run.
    void WaitForEnd() {
        ASSERT_TRUE(WaitUntil([&] { return Messages().find("There is no viewer:") != std::string::npos; }));
        for (int i = 0; i < 20; ++i) QCoreApplication::processEvents();  // calls of the import that were queued
    }
    /// The import that runs ends with the viewer.
    template <class Job>
    void LoseDuring() {
        QObject::connect(m_window->findChild<Job*>(), &Job::Progress, [this] { DestroyWindow(); });
        WaitForEnd();
        ASSERT_TRUE(m_isLost);
        EXPECT_FALSE(m_wasImporting) << "the import calls a viewer that is gone";
        EXPECT_GE(m_withoutViewer, 1) << "the import was over before";
        EXPECT_FALSE(m_window->IsImporting());
        EXPECT_EQ(m_window->findChild<Job*>(), nullptr);
        EXPECT_TRUE(Rows().empty());
        EXPECT_FALSE(m_window->HaveAllFilesAdded());
    }

    bool m_isDestroyed = false, m_isLost = false, m_wasImporting = false;
    int m_withoutViewer = 0;  // files
};

TEST_F(LostViewer, EndsAnImportOfPoints) {
    std::ofstream file(m_folder / "a.xyz");
    for (int i = 0; i < 20'000; ++i) file << i % 100 << ' ' << i / 100 << " 0\n";
    file.close();
    m_window->ImportPointFiles(std::vector<std::string>(300, m_folder / "a.xyz"), {});
    m_window->ImportPointFiles({m_folder / "a.xyz"}, {});  // it waits
    LoseDuring<PointsJob>();
}

TEST_F(LostViewer, EndsAnImportOfMeshes) {
    WriteStl(m_folder / "a.stl");
    m_window->OpenFiles(std::vector<std::string>(2'000, m_folder / "a.stl"));
    LoseDuring<ImportJob>();
}

TEST_F(LostViewer, EndsAnImportByThreads) {
    const std::vector<std::string> files = ManyPcms(20);
    std::vector<std::string> many;
    for (int i = 0; i < 50; ++i) many.insert(many.end(), files.begin(), files.end());
    m_window->OpenFiles(many);
    LoseDuring<ImportJob>();
}

TEST_F(LostViewer, IsReportedAtOnceForLaterFiles) {
    DestroyWindow();
    WaitForEnd();
    m_window->OpenFiles({m_folder / "a.stl", m_folder / "b.xyz"});
    m_window->ImportPointFiles({m_folder / "c.xyz"}, {});
    m_window->ImportLineFiles({m_folder / "d.lines"});
    EXPECT_EQ(m_withoutViewer, 4);
    for (const char* const name : {"a.stl", "b.xyz", "c.xyz", "d.lines"})
        EXPECT_NE(Messages().find((m_folder / name) + ": not opened, there is no viewer"), std::string::npos) << name;
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
}

TEST_F(LostViewer, IsReportedForTheFilesOfADialogThatIsAccepted) {
    m_window->OpenFiles({m_folder / "a.xyz"});
    auto* const dialog = m_window->findChild<PointsDialog*>();
    ASSERT_NE(dialog, nullptr);
    DestroyWindow();
    WaitForEnd();
    EXPECT_EQ(m_withoutViewer, 0);
    dialog->accept();
    EXPECT_EQ(m_withoutViewer, 1);
    EXPECT_NE(Messages().find("a.xyz: not opened, there is no viewer"), std::string::npos) << Messages();
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
}

TEST(ClosedWindow, HasNotAddedTheFilesThatWaited) {
    for (int kind = 0; kind < 5; ++kind) {
        HostOptions options;
        if (kind == 0) options.files = {"a.stl"};
        if (kind == 1) options.files = {"a.xyz"};
        if (kind == 2) options.pointFiles = {"a.xyz"};
        if (kind == 3) options.lineFiles = {"a.lines"};
        if (kind == 4) options.needleFiles = {"a.json"};
        MainWindow window(options);
        EXPECT_TRUE(window.close());
        EXPECT_FALSE(window.HaveAllFilesAdded()) << kind;
    }
}

}  // namespace
