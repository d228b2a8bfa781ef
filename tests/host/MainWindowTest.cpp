#include "MainWindow.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDockWidget>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QUrl>
#include <cstdlib>

#include "ImportJob.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"

namespace {

using MainWindowTest = MainWindowFixture;

TEST_F(MainWindowTest, EmbedsTheViewerAtTheSizeOfItsWidget) {
    Show();
    auto* const widget = m_window->findChild<ViewerWidget*>();
    const QSize before = widget->size();
    const auto pictureSize = [&] {
        const KV_ScenePane::Picture picture = DrawFrame();
        return QSize(picture.width, picture.height);
    };
    EXPECT_EQ(pictureSize(), before);
    m_window->resize(m_window->width() - 70, m_window->height() - 31);
    ASSERT_TRUE(WaitUntil([&] { return widget->width() != before.width() && widget->height() != before.height(); }));
    EXPECT_EQ(pictureSize(), widget->size());
}

TEST_F(MainWindowTest, LeavesSpaceForItsFrameOnTheScreen) {
    HostOptions options;
    options.width = options.height = 4000;
    Show(options);
    const QSize screen = m_window->screen()->availableSize();
    EXPECT_EQ(m_window->size(), screen - QSize(16, 48)) << "with space for a title bar and borders";
}

TEST_F(MainWindowTest, FitsOnASmallScreenWhateverPaneIsShown) {
    Show();
    Find<QCheckBox>("needleCreate").setChecked(true);  // its pane shows a long text
    int panes = 0;
    for (auto* const dock : m_window->findChildren<QDockWidget*>()) {
        dock->raise();
        QApplication::processEvents();
        EXPECT_LE(m_window->minimumSizeHint().height(), 700) << dock->windowTitle().toStdString();
        ++panes;
    }
    EXPECT_GE(panes, 9);
}

TEST_F(MainWindowTest, ShowsSeveralObjectsAtTheFirstStart) {
    Show();
    m_window->resize(1280, 900);
    ASSERT_TRUE(WaitUntil([&] { return m_window->height() == 900; }));
    Import(ManyPcms(6));
    QApplication::processEvents();
    const QTreeWidget& list = m_window->Objects();
    const QRect row = list.visualItemRect(list.topLevelItem(4));
    EXPECT_TRUE(list.viewport()->rect().contains(QRect(1, row.top(), 1, row.height())))
        << list.viewport()->height() << " pixels for rows of " << row.height();
    EXPECT_LE(m_window->minimumSizeHint().width(), 1280);
}

TEST_F(MainWindowTest, OpensFilesOfAllKindsInTheirOrder) {
    Show();
    WritePcm(m_folder / "a.pcm", 40, 40);
    WritePcm(m_folder / "b.pcm", 3, 2);
    WritePax(m_folder / "c.pax", 4, 3);
    WritePcm(m_folder / "d.pcm", 5, 2);
    WriteXdt(m_folder / "e.xdt", 2, 2);
    Import({m_folder / "a.pcm", m_folder / "b.pcm", m_folder / "c.pax", m_folder / "d.pcm", m_folder / "e.xdt"});
    EXPECT_EQ(Rows(), (std::vector<std::string>{"a.pcm", "b.pcm", "c.pax", "d.pcm", "e.xdt"}));
    EXPECT_EQ(ObjectsInViewer(), 5);
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
    EXPECT_EQ(Messages(), "");
    const QTreeWidgetItem& row = *m_window->Objects().topLevelItem(2);
    EXPECT_EQ(row.text(ObjectList::kVertices), "12");
    EXPECT_EQ(row.text(ObjectList::kTriangles), "12");  // 3 x 2 cells
    EXPECT_EQ(row.text(ObjectList::kSize), "3.000 × 2.000 × 0.020");
}

TEST_F(MainWindowTest, OpensTheFilesOfItsOptionsWithTheirSettings) {
    WritePcm(m_folder / "a.pcm", 11, 11);
    HostOptions options;
    options.files = {m_folder / "a.pcm"};
    options.import.skip = 2;
    options.import.color = 0x0000FF;
    options.drawMode = KV_ScenePane::DrawModeWireframe;
    options.view = KV_ScenePane::ViewFromMinusZYUp;
    options.zoom = 2.0f;
    Show(options);
    ASSERT_TRUE(WaitUntil([&] { return !Rows().empty(); }));
    KV_ScenePane::_DKV_ScenePane& methods = m_window->Pane()->Methods();
    EXPECT_EQ(m_window->Objects().topLevelItem(0)->text(ObjectList::kVertices),
              "35");  // 6 x 6 cells of 2 x 2 pixels without the corner cell, which has a single pixel
    EXPECT_EQ(methods.GetObjectColor(0), 0x0000FF);
    EXPECT_EQ(methods.GetDrawMode(), KV_ScenePane::DrawModeWireframe);
    float right[3], up[3], center[3], zoom = 0;
    methods.GetViewParams(&right[0], &right[1], &right[2], &up[0], &up[1], &up[2], &center[0], &center[1], &center[2],
                          &zoom);
    EXPECT_EQ(right[0], -1.0f);
    EXPECT_EQ(up[1], 1.0f);
    EXPECT_EQ(center[0], 5.25f);  // from the first cell, at 0.5, to the last, at 10
    EXPECT_EQ(zoom, 2.0f);
}

TEST_F(MainWindowTest, ReportsEveryFileThatAddedNothing) {
    Show();
    WriteBytes(m_folder / "damaged.pcm", {std::byte{1}});
    WriteBytes(m_folder / "short.pax", {std::byte{1}});
    WriteBytes(m_folder / "foreign.dat", {std::byte{1}});
    WriteXdt(m_folder / "good.xdt", 2, 2);
    Import({m_folder / "none.pcm", m_folder / "damaged.pcm", m_folder / "short.pax", m_folder / "foreign.dat",
            m_folder / "good.xdt"});
    EXPECT_EQ(Rows(), std::vector<std::string>{"good.xdt"});
    const std::string messages = Messages();
    EXPECT_NE(messages.find("none.pcm: nothing added: there is no such file: check its name and its folder"),
              std::string::npos)
        << messages;
    EXPECT_NE(messages.find("damaged.pcm: nothing added: the file is cut short after 1 bytes"), std::string::npos);
    EXPECT_NE(messages.find("short.pax: nothing added: the file is cut short"), std::string::npos) << messages;
    EXPECT_NE(messages.find("foreign.dat: nothing added: the type of the file is not known: it is none of pcm, pax, "
                            "xdt, ply, stl, hps, ois, msh, obj, off, gltf, glb, 3mf, dae and others"),
              std::string::npos)
        << messages;
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
}

TEST_F(MainWindowTest, ShowsADifferentReasonForEachDamageOfAPcmFile) {
    Show();
    std::vector<std::string> files, failures;
    std::string messages;
    const std::vector<DamagedPcm> damaged = WriteDamagedPcms(m_folder);
    for (const DamagedPcm& file : damaged) {
        files.push_back(file.path);
        messages += (messages.empty() ? "" : "\n") + file.path + ": nothing added: " + file.reason;
    }
    // The command line prints these, so that it has the same reasons.
    QObject::connect(m_window.get(), &MainWindow::FileFailed,
                     [&](const std::string& file, const std::string& reason) { failures.push_back(file + reason); });
    Import(files);
    EXPECT_EQ(Messages(), messages);
    ASSERT_EQ(failures.size(), damaged.size());
    for (std::size_t i = 0; i < damaged.size(); ++i) EXPECT_EQ(failures[i], damaged[i].path + damaged[i].reason);
}

TEST_F(MainWindowTest, ShowsWhatTheViewerWritesToTheDebuggerOutput) {
    Show();
    float box[6];
    m_window->Pane()->Methods().GetObjectBoundingBox(5, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_TRUE(WaitUntil([&] { return Messages().find("- objectIdx = 5") != std::string::npos; }));
}

TEST_F(MainWindowTest, HidesAndShowsAnObjectByItsCheckMark) {
    Show();
    WriteXdt(m_folder / "a.xdt", 11, 11);
    Import({m_folder / "a.xdt"});
    EXPECT_NE(MiddlePixel(), kBackground);
    m_window->Objects().topLevelItem(0)->setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_EQ(MiddlePixel(), kBackground);
    m_window->Objects().topLevelItem(0)->setCheckState(ObjectList::kName, Qt::Checked);
    EXPECT_NE(MiddlePixel(), kBackground);
}

TEST_F(MainWindowTest, ColoursAndDeletesObjects) {
    Show();
    WriteXdt(m_folder / "a.xdt", 11, 11);
    WriteXdt(m_folder / "b.xdt", 3, 3);
    Import({m_folder / "a.xdt", m_folder / "b.xdt"});
    m_window->ColorObject(1, 0x00FF00);
    EXPECT_EQ(m_window->Pane()->Methods().GetObjectColor(1), 0x00FF00);
    EXPECT_NE(m_window->Pane()->Methods().GetObjectColor(0), 0x00FF00);
    m_window->DeleteObject(0);
    EXPECT_EQ(Rows(), std::vector<std::string>{"b.xdt"});
    ASSERT_EQ(ObjectsInViewer(), 1);
    EXPECT_EQ(m_window->Pane()->Methods().GetObjectColor(0), 0x00FF00);
    m_window->Objects().topLevelItem(0)->setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_EQ(MiddlePixel(), kBackground) << "the check mark belongs to the object's new index";
}

TEST_F(MainWindowTest, ClearsTheSceneAndFitsTheNextOne) {
    Show();
    WriteXdt(m_folder / "a.xdt", 11, 11);
    WriteXdt(m_folder / "far.xdt", 11, 11, 5000.0f);
    Import({m_folder / "a.xdt"});
    m_window->ClearScene();
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(ObjectsInViewer(), 0);
    EXPECT_EQ(MiddlePixel(), kBackground);
    Import({m_folder / "far.xdt"});
    EXPECT_EQ(Rows(), std::vector<std::string>{"far.xdt"});
    EXPECT_NE(MiddlePixel(), kBackground);
}

TEST_F(MainWindowTest, FollowsItsMenus) {
    Show();
    WriteXdt(m_folder / "a.xdt", 11, 11);
    Import({m_folder / "a.xdt"});
    KV_ScenePane::_DKV_ScenePane& methods = m_window->Pane()->Methods();
    Trigger("Wireframe");
    EXPECT_EQ(methods.GetDrawMode(), KV_ScenePane::DrawModeWireframe);
    Trigger("Lit per pixel");
    EXPECT_EQ(methods.GetDrawMode(), KV_ScenePane::DrawModePerPixel);
    EXPECT_FALSE(MenuAction("Shadows").isEnabled()) << "that mode would show no object";
    Trigger("Gouraud shaded");
    Trigger("Shadows");
    EXPECT_EQ(methods.GetShadowMode(), 1);
    Trigger("Shadows");
    EXPECT_EQ(methods.GetShadowMode(), 0);
    Trigger("From -Z, Y up");
    float right[3], up[3], center[3], zoom;
    methods.GetViewParams(&right[0], &right[1], &right[2], &up[0], &up[1], &up[2], &center[0], &center[1], &center[2],
                          &zoom);
    EXPECT_EQ(right[0], -1.0f);
    methods.SetViewParams(1, 0, 0, 0, 1, 0, 500, 500, 0, 1, 0);
    EXPECT_EQ(MiddlePixel(), kBackground);
    Trigger("Fit the view");
    EXPECT_NE(MiddlePixel(), kBackground);
    ClearByMenu();
    EXPECT_TRUE(Rows().empty());
}

TEST_F(MainWindowTest, ShowsTheBackgroundColoursAtTheirCorners) {
    Show();
    m_window->ShowBackground({0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF});
    const KV_ScenePane::Picture picture = DrawFrame();
    const std::size_t last = picture.pixels.size() - 1, width = static_cast<std::size_t>(picture.width);
    EXPECT_GT((picture.pixels[0] >> 16) & 0xFF, 250u);         // top left red
    EXPECT_GT((picture.pixels[width - 1] >> 8) & 0xFF, 250u);  // top right green
    EXPECT_GT(picture.pixels[last - width + 1] & 0xFF, 250u);  // bottom left blue
    EXPECT_GT(std::min({(picture.pixels[last] >> 16) & 0xFF, (picture.pixels[last] >> 8) & 0xFF,
                        picture.pixels[last] & 0xFF}),
              250u);
}

TEST_F(MainWindowTest, OpensDroppedFilesByTheBytesOfTheirNames) {
    Show();
    WriteXdt(m_folder / "\xff d.xdt", 2, 2);
    QMimeData data;
    const QByteArray encoded = QByteArray::fromStdString("file://" + (m_folder / "%FF%20d.xdt"));
    data.setUrls({QUrl::fromEncoded(encoded), QUrl("http://host/a.pcm")});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window.get(), &drop);
    WaitForImports();
    EXPECT_EQ(ObjectsInViewer(), 1);
    EXPECT_EQ(Messages(), "");
}

TEST_F(MainWindowTest, OpensFilesThatWereAddedDuringAnImportAfterIt) {
    Show();
    const std::vector<std::string> pcms = ManyPcms(4);
    WriteXdt(m_folder / "z.xdt", 2, 2);
    m_window->OpenFiles(pcms);
    EXPECT_TRUE(m_window->IsImporting());
    m_window->OpenFiles({m_folder / "z.xdt"});
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 5; }));
    EXPECT_EQ(Rows().back(), "z.xdt");
}

TEST_F(MainWindowTest, CancelledByItsButtonStartsNoFurtherFile) {
    Show();
    std::vector<std::string> files;
    for (const char* const name : {"a.pax", "b.pax", "c.pax"}) {
        files.push_back(m_folder / name);
        WritePax(files.back(), 3, 3);
    }
    m_window->OpenFiles(files);
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Progress, &Find<QToolButton>("importCancel"),
                     &QToolButton::click);
    WaitForImports();
    EXPECT_EQ(Rows(), std::vector<std::string>{"a.pax"});
    EXPECT_NE(Messages().find("b.pax: not opened, cancelled"), std::string::npos) << Messages();
    EXPECT_NE(Messages().find("c.pax: not opened, cancelled"), std::string::npos) << Messages();
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    Import({m_folder / "c.pax"});
    EXPECT_EQ(Rows(), (std::vector<std::string>{"a.pax", "c.pax"})) << "the next import works as usual";
}

TEST_F(MainWindowTest, CancelledDuringAParallelImportKeepsTheFinishedFiles) {
    Show();
    m_window->OpenFiles(ManyPcms(40));
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Progress, m_window.get(),
                     &MainWindow::CancelImport);
    WaitForImports();
    const int opened = ObjectsInViewer();
    EXPECT_GE(opened, 1);
    ASSERT_EQ(static_cast<int>(Rows().size()), opened);
    for (int i = 0; i < opened; ++i) EXPECT_EQ(Rows()[static_cast<std::size_t>(i)], std::to_string(i) + ".pcm");
    const QString messages = m_window->Messages().toPlainText();
    EXPECT_EQ(messages.count("not opened, cancelled"), 40 - opened);
}

TEST_F(MainWindowTest, ClosedDuringAnImportEndsItFirst) {
    Show();
    m_window->OpenFiles(ManyPcms(40));
    bool hasStarted = false;
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Progress, m_window.get(),
                     [&] { hasStarted = true; });
    ASSERT_TRUE(WaitUntil([&] { return hasStarted; }));
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(m_window->IsImporting());
    EXPECT_GE(ObjectsInViewer(), 1) << "the finished files are in the viewer";
    m_window.reset();
}

TEST_F(MainWindowTest, DestroyedDuringAnImportEndsIt) {
    for (int eventLoops = 0; eventLoops < 3; ++eventLoops) {
        Show();
        m_window->OpenFiles(ManyPcms(30));
        for (int i = 0; i < eventLoops; ++i) QCoreApplication::processEvents();
        EXPECT_TRUE(m_window->IsImporting() || ObjectsInViewer() == 30);
        m_window.reset();
    }
    Show();
    Import({m_folder / "0.pcm"});
    EXPECT_EQ(ObjectsInViewer(), 1);
}

TEST_F(MainWindowTest, RunsItsShortcutsAlsoWhileThePointerIsOverTheViewer) {
    Show();
    const QPoint middle = m_window->findChild<ViewerWidget*>()->mapToGlobal(QPoint(200, 200));
    const std::string command =
        "xdotool mousemove " + std::to_string(middle.x()) + " " + std::to_string(middle.y()) + " key 2 key ctrl+1";
    m_window->activateWindow();
    ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
    ASSERT_EQ(std::system(command.c_str()), 0);
    KV_ScenePane::_DKV_ScenePane& methods = m_window->Pane()->Methods();
    float right[3] = {0, 0, 0}, rest[7];
    EXPECT_TRUE(WaitUntil([&] {
        methods.GetViewParams(&right[0], &right[1], &right[2], &rest[0], &rest[1], &rest[2], &rest[3], &rest[4],
                              &rest[5], &rest[6]);
        return right[1] == 1.0f;  // the view from +X has Y to the right
    }));
    EXPECT_TRUE(WaitUntil([&] { return methods.GetDrawMode() == KV_ScenePane::DrawModeWireframe; }));
}

TEST_F(MainWindowTest, RunsTheShortcutsOfKeysThatTheViewerReports) {
    Show();
    emit m_window->findChild<ViewerWidget*>()->KeyPressed('3', Qt::NoModifier);
    float right[3] = {0, 0, 0}, rest[7];
    EXPECT_TRUE(WaitUntil([&] {
        m_window->Pane()->Methods().GetViewParams(&right[0], &right[1], &right[2], &rest[0], &rest[1], &rest[2],
                                                  &rest[3], &rest[4], &rest[5], &rest[6]);
        return right[1] == -1.0f;  // the view from -X
    }));
}

TEST_F(MainWindowTest, OpenedTwiceShowsTwoViewers) {
    WriteXdt(m_folder / "a.xdt", 11, 11);
    Show();
    Import({m_folder / "a.xdt"});
    {
        MainWindow other({});
        other.show();
        ASSERT_TRUE(WaitUntil([&] { return other.Pane() != nullptr && other.Logo().isEnabled(); }));
        EXPECT_EQ(other.Pane()->Methods().GetNumObjects(), 0);
    }
    EXPECT_NE(MiddlePixel(), kBackground) << "the first viewer still works after the second is closed";
}

}  // namespace
