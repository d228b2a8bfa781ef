// Imports in the window: objects are shown as they arrive, a few per frame, with progress and Cancel at each stage.
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QToolButton>
#include <algorithm>
#include <optional>
#include <utility>

#include "ImportJob.h"
#include "ImportProgress.h"
#include "ScenePreparation.h"
#include "TransformFile.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"
#include "host/XFocus.h"

namespace {

class MainWindowImport : public MainWindowFixture {
protected:
    /// What was there when a frame of the preparation was about to be drawn.
    struct Frame {
        int visibleObjects = 0, checkedRows = 0, drawnBefore = 0;
        bool isReading = false;
        QString text;
        int value = 0, steps = 0;
    };

    void SetUp() override { Show(); }
    /// Starts the import and records its frames. @param atFrame  called before each of them
    void Start(const std::vector<std::string>& files, const std::function<void(const Frame&)>& atFrame = {}) {
        m_window->OpenFiles(files);
        const auto* const preparation = m_window->findChild<ScenePreparation*>();
        ASSERT_NE(preparation, nullptr);
        QObject::connect(preparation, &ScenePreparation::AboutToDraw, m_window.get(), [this, preparation, atFrame] {
            const auto& bar = Find<QProgressBar>("importBar");
            const QString text = Find<QLabel>("importText").text();
            Frame frame{.visibleObjects = preparation->ShownCount(),
                        .drawnBefore = preparation->DrawnCount(),
                        .isReading = text == "Preparing the picture",  // the rest is counted
                        .text = text,
                        .value = bar.value(),
                        .steps = bar.maximum()};
            for (const ObjectRow& row : m_window->Objects().Rows()) frame.checkedRows += row.isVisible ? 1 : 0;
            m_frames.push_back(frame);
            if (atFrame) atFrame(frame);
        });
    }
    /// A window that shows no object of the import of @p files before all of them are read: their transforms come
    /// from a file. The frames come afterwards, 1 object with the first one.
    void ShowForPreparation(const std::vector<std::string>& files) {
        HostOptions options;
        options.transformFile = m_folder / "transforms.json";
        std::string reason;
        const Matrix4 identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        ASSERT_TRUE(WriteTransformFile(options.transformFile, {{files[0], identity}}, &reason)) << reason;
        Show(options);
    }
    [[nodiscard]] std::uint64_t FramesOfViewer() const { return m_window->Pane()->GetFrameStatistics().count; }
    [[nodiscard]] std::vector<bool> CheckMarks() const {
        std::vector<bool> marks;
        for (const ObjectRow& row : m_window->Objects().Rows()) marks.push_back(row.isVisible);
        return marks;
    }
    /// The view of one fit over all visible objects.
    [[nodiscard]] std::array<float, 10> FittedView() const {
        Methods().CenterView();
        return View();
    }
    /// Scans of the same size side by side. @return their paths
    [[nodiscard]] std::vector<std::string> Stairs(int count) const {
        std::vector<std::string> files;
        for (int i = 0; i < count; ++i) {
            files.push_back(m_folder / ("stair" + std::to_string(100 + i) + ".pcm"));
            WritePcm(files.back(), 60, 60, 40.0f * static_cast<float>(i));
        }
        return files;
    }
    /// The middle part of a widget as the X server has it.
    [[nodiscard]] QImage OnScreen(const QWidget& widget) const {
        const QPoint corner = widget.mapTo(m_window.get(), QPoint(0, 0));
        return m_window->screen()
            ->grabWindow(m_window->winId(), corner.x(), corner.y(), widget.width(), widget.height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }

    std::vector<Frame> m_frames;
};

TEST_F(MainWindowImport, DrawsLessThanThreeTimesTheSceneInAllItsFrames) {
    const std::uint64_t before = FramesOfViewer();
    Start(ManyPcms(40));
    WaitForImports();
    ASSERT_GE(m_frames.size(), 4u);
    int shown = 0;
    double drawn = 0;
    for (const Frame& frame : m_frames) {
        EXPECT_EQ(frame.drawnBefore, shown);
        EXPECT_GT(frame.visibleObjects, shown);
        EXPECT_LE(frame.visibleObjects - shown, std::max(1.0, ScenePreparation::kGrowth * shown));
        EXPECT_EQ(frame.checkedRows, frame.visibleObjects) << "the list says what is visible";
        shown = frame.visibleObjects;
        drawn += shown;
    }
    EXPECT_EQ(m_frames.front().visibleObjects, 1) << "the first object comes with the first frame";
    EXPECT_EQ(shown, 40);
    EXPECT_LT(drawn, 3 * 40);
    EXPECT_EQ(CheckMarks(), std::vector<bool>(40, true));
    for (int i = 0; i < 20; ++i) QCoreApplication::processEvents();
    // The frames that nobody needs: one when reading ends, when the view is fitted, when the progress is hidden ...
    EXPECT_LE(FramesOfViewer() - before, m_frames.size() + 2);
}

TEST_F(MainWindowImport, ShowsTheFirstObjectWhileOtherFilesAreRead) {
    Start(ManyPcms(40));
    WaitForImports();
    ASSERT_FALSE(m_frames.empty());
    EXPECT_TRUE(m_frames.front().isReading);
    EXPECT_FALSE(m_frames.back().isReading);
}

TEST_F(MainWindowImport, NamesTheFilesAgainAfterAFrameWhileTheyAreRead) {
    std::vector<QString> texts;
    Start(ManyPcms(40));
    const auto* const preparation = m_window->findChild<ScenePreparation*>();
    QObject::connect(preparation, &ScenePreparation::Drawn, m_window.get(),
                     [&] { texts.push_back(Find<QLabel>("importText").text()); });
    WaitForImports();
    ASSERT_FALSE(texts.empty());
    ASSERT_FALSE(m_frames.empty());
    EXPECT_EQ(m_frames.front().text, "Preparing the picture");
    EXPECT_EQ(texts.front().left(8), "Reading ") << texts.front().toStdString();
}

TEST_F(MainWindowImport, NeverShowsAFullBarDuringAFrame) {
    Start(ManyPcms(40));
    WaitForImports();
    int preparing = 0;
    for (const Frame& frame : m_frames) {
        EXPECT_LT(frame.value, frame.steps);
        if (frame.isReading) continue;
        ++preparing;
        EXPECT_EQ(frame.text, QString("Preparing the picture: %1 of 40 objects").arg(frame.drawnBefore));
        EXPECT_EQ(frame.value, frame.drawnBefore);
        EXPECT_EQ(frame.steps, 40);
    }
    EXPECT_GE(preparing, 1);
    EXPECT_TRUE(Find<ImportProgress>("importProgress").isHidden());
}

TEST_F(MainWindowImport, OfLaterFilesDrawsAtMostTwoFramesAfterTheyAreRead) {
    Import(ManyPcms(5));
    Start(Stairs(6));
    WaitForImports();
    EXPECT_EQ(CheckMarks(), std::vector<bool>(11, true));
    const auto isRest = [](const Frame& frame) { return !frame.isReading; };
    EXPECT_LE(std::ranges::count_if(m_frames, isRest), 2) << "6 objects beside 5 that are visible";
}

TEST_F(MainWindowImport, KeepsTheOrderOfTheFilesInTheListAndInTheViewer) {
    std::vector<std::string> files = Stairs(9);
    WriteStl(m_folder / "part.stl");
    files.insert(files.begin() + 4, m_folder / "part.stl");
    Start(files);
    WaitForImports();
    ASSERT_EQ(ObjectsInViewer(), 10);
    const std::vector<ObjectRow> rows = m_window->Objects().Rows();
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_EQ(rows[i].file, files[i]);
        if (i == 4) continue;
        float box[6];
        Methods().GetObjectBoundingBox(static_cast<std::int16_t>(i), &box[0], &box[1], &box[2], &box[3], &box[4],
                                       &box[5]);
        EXPECT_NEAR(box[4], 40.0f * static_cast<float>(i < 4 ? i : i - 1), 0.1f) << i;
    }
}

// ---- the view

TEST_F(MainWindowImport, EndsWithTheViewOfOneFitOverAllObjects) {
    Start(Stairs(12));
    WaitForImports();
    const std::array<float, 10> view = View();
    EXPECT_NEAR(view[8], 220.0f, 0.1f) << "the middle of the heights 0 to 440";
    EXPECT_EQ(view, FittedView());
}

TEST_F(MainWindowImport, LeavesTheViewToTheUserOnceHeHasMovedIt) {
    std::optional<std::array<float, 10>> moved;
    Start(Stairs(40), [&](const Frame& frame) {
        if (moved || !frame.isReading) return;
        // As a drag: between two frames.
        QMetaObject::invokeMethod(
            m_window.get(),
            [&] {
                Methods().SetViewParams(1, 0, 0, 0, 1, 0, 5, 6, 7, 2, 0);
                moved = View();
            },
            Qt::QueuedConnection);
    });
    WaitForImports();
    ASSERT_TRUE(moved);
    EXPECT_EQ(View(), *moved);
}

TEST_F(MainWindowImport, OfLaterFilesDoesNotMoveTheView) {
    Import(ManyPcms(1));
    const std::array<float, 10> view = View();
    Start(Stairs(12));
    WaitForImports();
    EXPECT_EQ(View(), view);
}

// ---- cancel

TEST_F(MainWindowImport, StatusBarCountsTheObjectsOfTheListWhileItRuns) {
    int frames = 0;
    Start(ManyPcms(40), [&](const Frame&) {
        ++frames;
        const QString counts = Find<QLabel>("sceneCounts").toolTip();
        EXPECT_TRUE(counts.contains(QString("%1 object").arg(m_window->Objects().ObjectCount())))
            << counts.toStdString();
    });
    WaitForImports();
    EXPECT_GT(frames, 0);
}

TEST_F(MainWindowImport, CancelledWhileFilesAreReadSaysWhatWasKept) {
    m_window->OpenFiles(ManyPcms(100));
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Progress, &Find<QToolButton>("importCancel"),
                     &QToolButton::click);
    WaitForImports();
    const int kept = ObjectsInViewer();
    ASSERT_GE(kept, 1);
    ASSERT_LT(kept, 100);
    const QString text =
        QString("Import cancelled: %1 of 100 files kept; %2 were not opened").arg(kept).arg(100 - kept);
    EXPECT_TRUE(m_window->Messages().toPlainText().endsWith(text)) << Messages();
    EXPECT_EQ(CheckMarks(), std::vector<bool>(static_cast<std::size_t>(kept), true)) << "what was kept is shown";
    EXPECT_EQ(View(), FittedView());
}

TEST_F(MainWindowImport, EscapeCancelsItAndNothingWithoutOne) {
    const auto& escape = Find<QAction>("importEscape");
    EXPECT_FALSE(escape.isEnabled());
    m_window->OpenFiles(ManyPcms(100));
    EXPECT_TRUE(escape.isEnabled());
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Progress, &escape, &QAction::trigger);
    WaitForImports();
    EXPECT_FALSE(escape.isEnabled());
    EXPECT_NE(Messages().find("Import cancelled: "), std::string::npos) << Messages();
}

TEST_F(MainWindowImport, CancelledDuringThePreparationKeepsTheRestHidden) {
    const std::vector<std::string> files = ManyPcms(40);
    ShowForPreparation(files);
    Start(files, [&](const Frame&) { Find<QToolButton>("importCancel").click(); });
    WaitForImports();
    ASSERT_FALSE(m_frames.empty());
    const int shown = m_frames.back().visibleObjects;
    ASSERT_EQ(shown, 1);
    ASSERT_EQ(ObjectsInViewer(), 40);
    std::vector<bool> marks(40, false);
    std::fill_n(marks.begin(), shown, true);
    EXPECT_EQ(CheckMarks(), marks);
    const QString text =
        QString("Cancelled: %1 of 40 new objects are shown; the check marks in the list show the others").arg(shown);
    EXPECT_TRUE(m_window->Messages().toPlainText().endsWith(text)) << Messages();
    EXPECT_TRUE(m_window->HaveAllFilesAdded());
    EXPECT_TRUE(m_window->Objects().isEnabled());
    m_window->Objects().Row(39)->setCheckState(ObjectList::kName, Qt::Checked);
    for (int i = 0; i < shown; ++i) m_window->ShowObject(i, false);
    const std::uint32_t pixel = MiddlePixel();
    m_window->ShowObject(39, false);
    EXPECT_NE(pixel, MiddlePixel()) << "the check mark shows the object";
}

// ---- ends of the window and of the viewer

TEST_F(MainWindowImport, EndsWithAWindowThatIsClosedDuringThePreparation) {
    bool closed = false;
    const std::vector<std::string> files = ManyPcms(40);
    ShowForPreparation(files);
    Start(files, [&](const Frame&) { closed = closed || m_window->close(); });
    WaitForImports();
    ASSERT_TRUE(closed);
    EXPECT_LT(m_frames.back().visibleObjects, 40);
    m_window.reset();
}

TEST_F(MainWindowImport, EndsWithAWindowThatIsDestroyedDuringThePreparation) {
    bool isPreparing = false;
    const std::vector<std::string> files = ManyPcms(40);
    ShowForPreparation(files);
    Start(files, [&](const Frame&) { isPreparing = true; });
    ASSERT_TRUE(WaitUntil([&] { return isPreparing || !m_window->IsImporting(); }));
    EXPECT_TRUE(isPreparing);
    m_window.reset();
}

TEST_F(MainWindowImport, EndsWithAViewerThatIsLostDuringThePreparation) {
    bool destroyed = false;
    const std::vector<std::string> files = ManyPcms(40);
    ShowForPreparation(files);
    testing::internal::CaptureStderr();  // of the viewer, when it is asked for objects that are gone
    Start(files, [&](const Frame&) {
        if (!std::exchange(destroyed, true)) DestroyXWindow(m_window->Pane()->NativeWindow());
    });
    const bool isLost = WaitUntil([&] { return Messages().find("There is no viewer:") != std::string::npos; });
    for (int i = 0; i < 20; ++i) QCoreApplication::processEvents();
    const std::string output = testing::internal::GetCapturedStderr();
    ASSERT_TRUE(isLost);
    EXPECT_EQ(output.find("out of range"), std::string::npos) << output;
    EXPECT_FALSE(m_window->IsImporting());
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(m_window->findChild<ScenePreparation*>(), nullptr);
}

// ---- during the preparation

TEST_F(MainWindowImport, OpensFilesAfterThePreparationDuringWhichTheyCame) {
    WriteStl(m_folder / "part.stl");
    bool added = false;
    Start(ManyPcms(40), [&](const Frame& frame) {
        if (frame.isReading || std::exchange(added, true)) return;
        m_window->OpenFiles({m_folder / "part.stl"});
        EXPECT_EQ(m_window->findChildren<ScenePreparation*>().size(), 1);
    });
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 41 && !m_window->IsImporting(); }));
    EXPECT_EQ(Rows().back(), "part.stl");
    EXPECT_EQ(CheckMarks(), std::vector<bool>(41, true));
}

TEST_F(MainWindowImport, AllowsNoChangeOfTheObjectsBeforeItsEnd) {
    int refused = 0;
    Start(ManyPcms(10), [&](const Frame& frame) {
        if (frame.isReading) return;
        EXPECT_TRUE(m_window->IsImporting());
        EXPECT_FALSE(m_window->Objects().isEnabled());
        EXPECT_FALSE(m_window->ExportObjectTo(0, m_folder / "a.ply"));
        m_window->ClearScene();
        EXPECT_EQ(ObjectsInViewer(), 10);
        ++refused;
    });
    WaitForImports();
    EXPECT_GE(refused, 1);
}

// ---- the progress is on the screen before the thread blocks

TEST_F(MainWindowImport, PaintsTheNameOfAFileBeforeTheViewerReadsIt) {
    const std::vector<std::string> files = {m_folder / "first %2.stl", m_folder / "second.stl"};
    for (const std::string& file : files) WriteStl(file);
    m_window->OpenFiles(files);
    auto& label = Find<QLabel>("importText");
    int seen = 0;
    QObject::connect(m_window->findChild<ImportJob*>(), &ImportJob::Reading, [&](int file, bool isBlocking) {
        EXPECT_TRUE(isBlocking);
        const QString name = file == 0 ? "first %2.stl" : "second.stl";
        EXPECT_EQ(label.text(), QString("Reading %1 (%2 of 2)").arg(name, QString::number(file + 1)));
        const QImage expected = label.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QImage shown = OnScreen(label);
        ASSERT_EQ(shown.size(), expected.size());
        EXPECT_EQ(shown, expected) << "on the screen is something else";
        ++seen;
    });
    WaitForImports();
    EXPECT_EQ(seen, 2);
}

TEST_F(MainWindowImport, ChangesNoHeightOfTheStatusBar) {
    const int height = m_window->statusBar()->height();
    const QSize viewer = m_window->findChild<ViewerWidget*>()->size();
    Start(ManyPcms(10), [&](const Frame&) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        EXPECT_EQ(m_window->statusBar()->height(), height);
        EXPECT_EQ(m_window->findChild<ViewerWidget*>()->size(), viewer) << "another size costs a frame";
    });
    WaitForImports();
    EXPECT_FALSE(m_frames.empty());
}

}  // namespace
