// Free points and lines in the window: imports by menu, drop and command line, their panel, and Clear.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTreeWidget>
#include <QUrl>
#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "ColorButton.h"
#include "MarkerPanel.h"
#include "PointsDialog.h"
#include "PointsJob.h"
#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"
#include "host/ModalDialogs.h"

namespace {

/// A point in the middle of the fitted view, and two that make the view 14 units wide.
constexpr const char* kRedCross = "0 0 0 255 0 0\n10 10 0 255 0 0\n5 5 0 255 0 0\n";
constexpr const char* kNoColors = "0 0 0\n10 10 0\n5 5 0\n";
constexpr std::uint32_t kRed = 0xFF0000;

class MainWindowMarkers : public MainWindowFixture {
protected:
    [[nodiscard]] QTreeWidget& List() const { return Find<QTreeWidget>("pointSets"); }
    [[nodiscard]] QTreeWidgetItem& Row(int row) const { return *List().topLevelItem(row); }
    [[nodiscard]] std::vector<std::string> PointRows() const {
        std::vector<std::string> names;
        for (int i = 0; i < List().topLevelItemCount(); ++i)
            names.push_back(Row(i).text(MarkerPanel::kName).toStdString());
        return names;
    }
    /// Writes a point file. @return its path
    [[nodiscard]] std::string Write(const std::string& name, std::string_view text) const {
        WriteText(m_folder / name, text);
        return m_folder / name;
    }
    /// Imports without the dialog.
    void ImportPoints(const std::vector<std::string>& files, const PointsLook& look = {}) {
        m_window->ImportPointFiles(files, look);
        WaitForImports();
    }
    void Drop(const std::vector<std::string>& files) const {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& file : files) urls += QUrl::fromLocalFile(QString::fromStdString(file));
        data.setUrls(urls);
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_window.get(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_window.get(), &drop);
        EXPECT_TRUE(drop.isAccepted());
    }
    static void Xdotool(const std::string& commands) { ASSERT_EQ(std::system(("xdotool " + commands).c_str()), 0); }
    static std::string At(const QPoint& point) { return std::to_string(point.x()) + " " + std::to_string(point.y()); }
    static std::string MiddleOf(const QWidget& widget) { return At(widget.mapToGlobal(widget.rect().center())); }
    static void Click(const QWidget& widget, const QPoint& place) {
        Xdotool("mousemove " + At(widget.mapToGlobal(place)) + " click 1");
    }
    /// Chooses a file in a dialog of files that is open.
    static void Choose(QFileDialog& dialog, const std::string& file) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(file));
        static_cast<QDialog&>(dialog).accept();
    }
    /// The set that an import would get as its id: how many the viewer has, when none of a lower id was deleted.
    [[nodiscard]] int NextId() const {
        constexpr float kPoint[3] = {};
        const int id = Methods().ImportPoints(1, kPoint, kPoint, 1.0f);
        Methods().DeletePoints(id);
        return id;
    }
    /// A text file that is read for a while.
    [[nodiscard]] std::string WriteLarge() const {
        std::ofstream file(m_folder / "large.xyz");
        for (int i = 0; i < 300'000; ++i) file << i % 100 << ' ' << i / 100 % 100 << " 0\n";
        return m_folder / "large.xyz";
    }
};

// ---- by pointer and keyboard

TEST_F(MainWindowMarkers, ImportsByTheMenuWithTheOpacityOfTheSlider) {
    Show();
    const std::string file = Write("a.xyzrgb", kRedCross);
    int percent = 100;
    bool isFileChosen = false;
    const DialogAnswer<QFileDialog> chosen([&](QFileDialog& dialog) {
        EXPECT_TRUE(dialog.nameFilters().value(0).contains("*.xyz *.xyzrgb"));
        EXPECT_TRUE(dialog.nameFilters().value(0).contains("*.ply"));
        isFileChosen = true;
        Choose(dialog, file);
    });
    const DialogAnswer<PointsDialog> answer([&](PointsDialog& dialog) {
        auto* const slider = dialog.findChild<QSlider*>("alpha");
        QObject::connect(slider, &QSlider::valueChanged, [&percent](int value) { percent = value; });
        // The handle is at the right end.
        const QPoint end(slider->width() - 4, slider->height() / 2);
        Xdotool("mousemove " + At(slider->mapToGlobal(end)) + " mousedown 1 mousemove " + MiddleOf(*slider) +
                " mouseup 1");
        ASSERT_TRUE(WaitUntil([&] { return percent < 100; }));
        for (QPushButton* const button : dialog.findChildren<QPushButton*>())
            if (button->text() == "&Import") Click(*button, button->rect().center());
    });
    // The file menu, then its entry.
    QAction* const menu = m_window->menuBar()->actions().value(0);
    Click(*m_window->menuBar(), m_window->menuBar()->actionGeometry(menu).center());
    ASSERT_TRUE(WaitUntil([&] { return menu->menu()->isVisible(); }));
    Click(*menu->menu(), menu->menu()->actionGeometry(&MenuAction("Import free points...")).center());
    ASSERT_TRUE(WaitUntil([&] { return !PointRows().empty(); })) << isFileChosen << answer.WasShown();
    EXPECT_EQ(PointRows(), std::vector<std::string>{"a.xyzrgb"});
    EXPECT_NEAR(percent, 50, 10);
    EXPECT_EQ(Row(0).text(MarkerPanel::kOpacity), QString("%1 %").arg(percent));
    EXPECT_EQ(Row(0).text(MarkerPanel::kPoints), "3");
    const std::uint32_t pixel = MiddlePixel();
    EXPECT_NEAR(pixel >> 16, percent * 2.55 + (100 - percent) * 0.25, 2.0);
    EXPECT_LT(pixel & 0xFF, 0x32u) << "the background shines through";
    EXPECT_GT(pixel & 0xFF, 0x05u);
}

TEST_F(MainWindowMarkers, HidesShowsAndDeletesASetByPointerAndKey) {
    Show();
    m_window->activateWindow();
    ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
    ImportPoints({Write("a.xyzrgb", kRedCross)});
    ASSERT_EQ(MiddlePixel(), kRed);
    m_window->findChild<QDockWidget*>("markers")->raise();
    ASSERT_TRUE(WaitUntil([&] { return List().isVisible() && !List().visibleRegion().isEmpty(); }));
    const QRect row = List().visualItemRect(&Row(0));
    const QPoint mark(row.left() + row.height() / 2, row.center().y());
    Click(*List().viewport(), mark);
    ASSERT_TRUE(WaitUntil([&] { return Row(0).checkState(MarkerPanel::kName) == Qt::Unchecked; }));
    EXPECT_EQ(MiddlePixel(), kBackground);
    Click(*List().viewport(), mark);
    ASSERT_TRUE(WaitUntil([&] { return Row(0).checkState(MarkerPanel::kName) == Qt::Checked; }));
    EXPECT_EQ(MiddlePixel(), kRed);
    Click(*List().viewport(), row.center());
    ASSERT_TRUE(WaitUntil([&] { return List().currentItem() != nullptr && List().hasFocus(); }));
    Xdotool("key Delete");
    ASSERT_TRUE(WaitUntil([&] { return PointRows().empty(); }));
    EXPECT_EQ(MiddlePixel(), kBackground);
    EXPECT_EQ(NextId(), 0);
}

TEST_F(MainWindowMarkers, SwitchesLinesByPointer) {
    Show();
    // Dark on a white background, through the middle of the first view.
    m_window->ShowBackground({0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF});
    const DialogAnswer<QFileDialog> chosen(
        [&](QFileDialog& dialog) { Choose(dialog, Write("a.txt", "-100 0 0\n100 0 0\n\n0 -100 0\n0 100 0\n")); });
    Trigger("Import lines...");
    auto& lines = Find<QCheckBox>("lines");
    EXPECT_EQ(lines.text(), "Show lines (2)");
    EXPECT_TRUE(lines.isChecked());
    EXPECT_NE(Methods().GetLine3DDrawingMode(), 0);
    EXPECT_LT(MiddlePixel() & 0xFF, 0x30u) << "dark";
    m_window->findChild<QDockWidget*>("markers")->raise();
    ASSERT_TRUE(WaitUntil([&] { return !lines.visibleRegion().isEmpty(); }));
    Click(lines, {8, lines.height() / 2});
    ASSERT_TRUE(WaitUntil([&] { return Methods().GetLine3DDrawingMode() == 0; }));
    EXPECT_EQ(MiddlePixel(), 0xFFFFFFu);
    Click(lines, {8, lines.height() / 2});
    ASSERT_TRUE(WaitUntil([&] { return Methods().GetLine3DDrawingMode() != 0; }));
    EXPECT_LT(MiddlePixel() & 0xFF, 0x30u) << "dark";
}

// ---- drops, files of the command line

TEST_F(MainWindowMarkers, AsksOnceForAllPointFilesOfADrop) {
    Show();
    int dialogs = 0;
    QString names;
    WriteStl(m_folder / "mesh.stl");
    Drop({Write("a.xyz", kNoColors), m_folder / "mesh.stl", Write("b.CSV", "x,y,z\n1,2,3\n"),
          Write("c.pcd",
                "VERSION .7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\nWIDTH 1\nHEIGHT 1\n"
                "VIEWPOINT 0 0 0 1 0 0 0\nPOINTS 1\nDATA ascii\n1 2 3\n")});
    const DialogAnswer<PointsDialog> answer([&](PointsDialog& dialog) {
        ++dialogs;
        names = dialog.findChild<QLabel*>("files")->text();
        dialog.findChild<QSpinBox*>("alphaNumber")->setValue(40);
        dialog.findChild<ColorButton*>("pointColor")->SetPacked(0x0000FF);
        dialog.accept();
    });
    ASSERT_TRUE(WaitUntil([&] { return PointRows().size() == 3; })) << Messages();
    EXPECT_EQ(PointRows(), (std::vector<std::string>{"a.xyz", "b.CSV", "c.pcd"}));
    EXPECT_EQ(Rows(), std::vector<std::string>{"mesh.stl"});
    EXPECT_EQ(names, "a.xyz\nb.CSV\nc.pcd");
    EXPECT_EQ(dialogs, 1);
    for (int row = 0; row < 3; ++row) EXPECT_EQ(Row(row).text(MarkerPanel::kOpacity), "40 %");
    EXPECT_EQ(Messages(), "");
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
    // The next dialog starts with what was chosen.
    PointsLook next;
    const DialogAnswer<PointsDialog> second([&](PointsDialog& dialog) {
        next = dialog.Look();
        dialog.reject();
    });
    Drop({m_folder / "a.xyz"});
    ASSERT_TRUE(WaitUntil([&] { return second.WasShown() && !Messages().empty(); }));
    EXPECT_EQ(next.alpha, 0.4f);
    EXPECT_EQ(next.color, 0x0000FF);
}

TEST_F(MainWindowMarkers, AsksForMeshFilesThatHoldOnlyPoints) {
    Show();
    const std::string ply =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n1 2 3\n";
    // The header of the first one says it, the other one must be read.
    for (const auto& [name, text] :
         {std::pair<const char*, std::string>{"a.ply", ply}, {"b.obj", "v 0 0 0\nv 1 0 0\n"}}) {
        const std::size_t before = PointRows().size();
        Drop({Write(name, text)});
        const DialogAnswer<PointsDialog> answer([](PointsDialog& dialog) { dialog.accept(); });
        ASSERT_TRUE(WaitUntil([&] { return PointRows().size() > before; })) << name << ' ' << Messages();
        WaitForImports();
    }
    EXPECT_EQ(PointRows(), (std::vector<std::string>{"a.ply", "b.obj"}));
    EXPECT_EQ(Row(1).text(MarkerPanel::kPoints), "2");
    EXPECT_EQ(Messages(), "");
    EXPECT_EQ(ObjectsInViewer(), 0);
}

TEST_F(MainWindowMarkers, AddsNothingWhenTheDialogIsCancelled) {
    Show();
    const std::string file = Write("a.xyz", kNoColors);
    Drop({file});
    const DialogAnswer<PointsDialog> answer([](PointsDialog& dialog) { dialog.reject(); });
    ASSERT_TRUE(WaitUntil([&] { return !Messages().empty(); }));
    EXPECT_EQ(Messages(), file + ": not opened, cancelled");
    EXPECT_FALSE(m_window->IsImporting());
    EXPECT_TRUE(PointRows().empty());
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    EXPECT_EQ(NextId(), 0);
}

TEST_F(MainWindowMarkers, AsksAgainForFilesThatCameWhileItAsked) {
    Show();
    const std::string first = Write("a.xyz", kNoColors), second = Write("b.xyz", kNoColors);
    std::vector<QString> asked;
    DialogAnswer<PointsDialog> answer([&](PointsDialog& dialog) {
        asked.push_back(dialog.findChild<QLabel*>("files")->text());
        m_window->OpenFiles({second});
        dialog.accept();
    });
    m_window->OpenFiles({first});
    ASSERT_TRUE(WaitUntil([&] { return answer.WasShown(); }));
    const DialogAnswer<PointsDialog> next([&](PointsDialog& dialog) {
        asked.push_back(dialog.findChild<QLabel*>("files")->text());
        dialog.accept();
    });
    ASSERT_TRUE(WaitUntil([&] { return PointRows().size() == 2; }));
    EXPECT_EQ(asked, (std::vector<QString>{"a.xyz", "b.xyz"}));
}

TEST_F(MainWindowMarkers, AsksForPointFilesThatWereOpenedBeforeTheViewerExists) {
    HostOptions options;
    options.files = {Write("a.xyzrgb", kRedCross)};
    EXPECT_FALSE(MainWindow(options).HaveAllFilesAdded());
    const DialogAnswer<PointsDialog> answer([](PointsDialog& dialog) { dialog.accept(); });
    Show(options);
    ASSERT_TRUE(WaitUntil([&] { return !PointRows().empty(); }));
    EXPECT_EQ(MiddlePixel(), kRed);
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
}

TEST_F(MainWindowMarkers, OpensThePointsAndLinesOfItsOptionsWithoutADialog) {
    WriteStl(m_folder / "mesh.stl");
    HostOptions options;
    options.files = {m_folder / "mesh.stl"};
    options.pointFiles = {Write("a.xyz", "0 0 0\n100 100 0\n50 50 0\n"), Write("b.xyz", "1 1 1\n")};
    options.lineFiles = {Write("lines", "0 0 0\n1 1 1\n")};
    options.import.color = 0x0000FF;
    options.zoom = 1.5f;
    const DialogAnswer<PointsDialog> answer([](PointsDialog& dialog) { dialog.reject(); });
    Show(options);
    ASSERT_TRUE(WaitUntil([&] { return PointRows().size() == 2 && !m_window->IsImporting(); }));
    EXPECT_FALSE(answer.WasShown());
    EXPECT_EQ(Rows(), std::vector<std::string>{"mesh.stl"});
    EXPECT_EQ(Row(0).text(MarkerPanel::kOpacity), "100 %");
    EXPECT_EQ(MiddlePixel(), kRed) << "the view is fitted to the mesh and to the points";
    EXPECT_EQ(View()[6], 50.0f);
    EXPECT_EQ(View()[9], 1.5f);
    EXPECT_EQ(Find<QCheckBox>("lines").text(), "Show lines (1)");
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
}

// ---- failures and cancelling

TEST_F(MainWindowMarkers, ReportsAFileThatAddedNothingInOneLineAndKeepsTheScene) {
    Show();
    ImportPoints({Write("good.xyzrgb", kRedCross)});
    std::vector<std::string> failed;
    QObject::connect(m_window.get(), &MainWindow::FileFailed, [&](const std::string& file, const std::string& reason) {
        EXPECT_FALSE(reason.empty());
        EXPECT_EQ(reason.find(file), std::string::npos) << reason;
        failed.push_back(file);
    });
    const std::string damaged = Write("damaged.xyz", "0 0 0\n1 x 0\n");
    ImportPoints({damaged, m_folder / "none.pcd", Write("second.xyzrgb", kRedCross)});
    m_window->ImportLineFiles({m_folder / "none.lines", Write("text.lines", "no line\n")});
    EXPECT_EQ(failed, (std::vector<std::string>{damaged, m_folder / "none.pcd", m_folder / "none.lines",
                                                m_folder / "text.lines"}));
    const QStringList lines = m_window->Messages().toPlainText().split('\n');
    ASSERT_EQ(lines.size(), 4) << Messages();
    for (int i = 0; i < 4; ++i) {
        const QString start = QString::fromStdString(failed[static_cast<std::size_t>(i)] + ": nothing added: ");
        EXPECT_TRUE(lines[i].startsWith(start) && lines[i].size() > start.size()) << lines[i].toStdString();
    }
    EXPECT_TRUE(lines[0].contains("line 2")) << lines[0].toStdString();
    EXPECT_EQ(PointRows(), (std::vector<std::string>{"good.xyzrgb", "second.xyzrgb"}));
    EXPECT_EQ(NextId(), 2);
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    EXPECT_EQ(Methods().GetLine3DDrawingMode(), 0) << "there is no line to draw";
}

TEST_F(MainWindowMarkers, CancelledByItsButtonAddsNothingOfTheFileInProgress) {
    Show();
    const std::string large = WriteLarge(), later = Write("later.xyz", kNoColors);
    m_window->ImportPointFiles({large, later}, {});
    QObject::connect(m_window->findChild<PointsJob*>(), &PointsJob::Progress, &Find<QToolButton>("importCancel"),
                     &QToolButton::click);
    WaitForImports();
    EXPECT_TRUE(PointRows().empty());
    EXPECT_EQ(NextId(), 0);
    EXPECT_EQ(Messages(), large + ": not opened, cancelled\n" + later + ": not opened, cancelled");
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    ImportPoints({later});
    EXPECT_EQ(PointRows(), std::vector<std::string>{"later.xyz"}) << "the next import works as usual";
}

TEST_F(MainWindowMarkers, StaysUsableWhileAFileIsRead) {
    Show();
    m_window->ImportPointFiles({WriteLarge()}, {});
    const auto& progress = Find<QProgressBar>("importBar");
    bool wasTurned = false;
    std::vector<int> values;
    QObject::connect(m_window->findChild<PointsJob*>(), &PointsJob::Progress, [&] {
        values.push_back(progress.value());
        if (!wasTurned) m_window->ShowView(KV_ScenePane::ViewFromMinusZYUp);
        wasTurned = true;
        EXPECT_TRUE(m_window->IsImporting());
        EXPECT_EQ(View()[0], -1.0f);
    });
    WaitForImports();
    EXPECT_TRUE(wasTurned);
    EXPECT_GE(values.size(), 2u);
    EXPECT_TRUE(std::ranges::is_sorted(values)) << "how many steps are seen depends on the load of the machine";
    EXPECT_EQ(PointRows(), std::vector<std::string>{"large.xyz"});
    EXPECT_EQ(Row(0).text(MarkerPanel::kPoints), "300000");
}

TEST_F(MainWindowMarkers, NamesTheFileInWorkAndSaysWhenItIsAdded) {
    const std::string small = Write("small.xyz", "0 0 0\n1 1 1\n");
    Show();
    m_window->ImportPointFiles({WriteLarge(), small}, {});
    const auto& text = Find<QLabel>("importText");
    EXPECT_EQ(text.textFormat(), Qt::PlainText) << "a name may look like tags";
    std::vector<std::string> texts;
    const auto* const job = m_window->findChild<PointsJob*>();
    const auto add = [&] { texts.push_back(text.text().toStdString()); };
    QObject::connect(job, &PointsJob::Reading, add);  // after those of the progress
    QObject::connect(job, &PointsJob::Adding, add);
    WaitForImports();
    EXPECT_EQ(texts, (std::vector<std::string>{"Reading large.xyz", "Adding large.xyz to the scene",
                                               "Reading small.xyz", "Adding small.xyz to the scene"}));
}

TEST_F(MainWindowMarkers, ClosedOrDestroyedDuringAnImportEndsItFirst) {
    const std::string large = WriteLarge();
    Show();
    m_window->ImportPointFiles({large}, {});
    m_window->ImportPointFiles({large}, {});
    bool hasStarted = false;
    QObject::connect(m_window->findChild<PointsJob*>(), &PointsJob::Progress, [&] { hasStarted = true; });
    ASSERT_TRUE(WaitUntil([&] { return hasStarted; }));
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(m_window->IsImporting());
    m_window.reset();
    for (int eventLoops = 0; eventLoops < 3; ++eventLoops) {
        Show();
        m_window->ImportPointFiles({large}, {});
        m_window->ImportPointFiles({large}, {});
        for (int i = 0; i < eventLoops; ++i) QCoreApplication::processEvents();
        EXPECT_TRUE(m_window->IsImporting());
        m_window.reset();
    }
    Show();
    ImportPoints({large});
    EXPECT_EQ(PointRows().size(), 1u);
}

// ---- view, Clear, meshes

TEST_F(MainWindowMarkers, FitsTheViewToTheFirstPointsOnly) {
    Show();
    ImportPoints({Write("a.xyzrgb", kRedCross)});
    const std::array<float, 10> view = View();
    EXPECT_EQ(view[6], 5.0f);
    ImportPoints({Write("far.xyz", "1000 1000 0\n1010 1000 0\n")});
    EXPECT_EQ(View(), view);
    WriteStl(m_folder / "mesh.stl");
    Import({m_folder / "mesh.stl"});
    EXPECT_EQ(View(), view) << "a mesh after the points does not move the view either";
    Trigger("Fit the view");
    EXPECT_EQ(View()[6], 505.0f);
    Row(1).setCheckState(MarkerPanel::kName, Qt::Unchecked);
    Trigger("Fit the view");
    EXPECT_EQ(View()[6], 5.0f) << "hidden points do not count";
}

TEST_F(MainWindowMarkers, FitsTheViewToTheFirstLinesOfAnEmptyScene) {
    Show();
    m_window->ImportLineFiles({Write("a.lines", "1000 0 0\n1200 100 0\n")});
    EXPECT_EQ(View()[6], 1100.0f);
    EXPECT_EQ(View()[7], 50.0f);
    EXPECT_LT(MiddlePixel() & 0xFF, 0x20u) << "the line is dark, the background is not";
    EXPECT_EQ(NextId(), 0) << "no points are left";
    const std::array<float, 10> view = View();
    m_window->ImportLineFiles({Write("b.lines", "0 0 0\n1 0 0\n")});
    EXPECT_EQ(View(), view);
    ClearByMenu();
    const std::array<float, 10> cleared = View();
    m_window->ImportLineFiles({Write("point.lines", "7 7 7\n7 7 7\n")});
    EXPECT_EQ(View(), cleared) << "a line without extent gives no view";
    ImportPoints({Write("a.xyzrgb", kRedCross)});
    EXPECT_EQ(View()[6], 5.0f) << "lines do not count for points";
    ClearByMenu();
    ImportPoints({m_folder / "a.xyzrgb"});
    const std::array<float, 10> points = View();
    m_window->ImportLineFiles({m_folder / "a.lines"});
    EXPECT_EQ(View(), points);
}

TEST_F(MainWindowMarkers, ClearRemovesObjectsPointsAndLines) {
    Show();
    WriteStl(m_folder / "mesh.stl");
    Import({m_folder / "mesh.stl"});
    ImportPoints({Write("a.xyzrgb", kRedCross), Write("b.xyzrgb", kRedCross)});
    m_window->ImportLineFiles({Write("lines", "-100 5 0\n100 5 0\n")});
    ClearByMenu();
    EXPECT_TRUE(PointRows().empty());
    EXPECT_EQ(NextId(), 0);
    EXPECT_EQ(Find<QCheckBox>("lines").text(), "Show lines (0)");
    EXPECT_EQ(MiddlePixel(), kBackground);
    EXPECT_EQ(View()[6], 0.0f) << "the view is that of an empty scene";
    m_window->ImportLineFiles({m_folder / "lines"});
    EXPECT_EQ(Find<QCheckBox>("lines").text(), "Show lines (1)") << "the ids of the lines are free again";
    ImportPoints({m_folder / "a.xyzrgb"});
    EXPECT_EQ(View()[6], 5.0f) << "points are fitted as in a new window";
}

TEST_F(MainWindowMarkers, UsesTheVerticesOfAMeshFileAsPoints) {
    Show();
    ImportPoints({Write("tetra.ply", TetraPlyText())});
    EXPECT_EQ(PointRows(), std::vector<std::string>{"tetra.ply"}) << Messages();
    EXPECT_EQ(Row(0).text(MarkerPanel::kPoints), "4");
    EXPECT_EQ(ObjectsInViewer(), 0);
}

}  // namespace
