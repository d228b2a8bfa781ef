// Alignments in the window: which objects may move, the pane of the transform, take back, and the files.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <cmath>
#include <fstream>
#include <iterator>

#include "TransformCommands.h"
#include "TransformFile.h"
#include "TransformPanel.h"
#include "host/CutSaveFixture.h"

namespace {

/// Turned by @p angle about Z, then moved.
Matrix4 Turned(double angle, float x, float y, float z) {
    const auto c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
    return {c, -s, 0, x, s, c, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
}

KV_ScenePane::AlignmentPoint Applied(const Matrix4& m, const KV_ScenePane::AlignmentPoint& p) {
    KV_ScenePane::AlignmentPoint result;
    for (std::size_t row = 0; row < 3; ++row) {
        double sum = static_cast<double>(m[4 * row + 3]);
        for (std::size_t i = 0; i < 3; ++i)
            sum += static_cast<double>(m[4 * row + i]) * static_cast<double>(p.point[i]);
        result.point[row] = static_cast<float>(sum);
    }
    return result;
}

class MainWindowTransforms : public CutSaveFixture {
protected:
    [[nodiscard]] QAction& TakeBackAction() const { return Find<QAction>("takeBackAlignment"); }
    [[nodiscard]] std::string TakeBackText() const { return TakeBackAction().text().remove('&').toStdString(); }
    [[nodiscard]] Matrix4 TransformOfObject(int object) const {
        return TransformOf(Methods(), static_cast<std::int16_t>(object)).value();
    }
    [[nodiscard]] bool IsMoved(int object) const {
        return m_window->Pane()->PlanCutSave().at(static_cast<std::size_t>(object)).isMoved;
    }
    void ExpectAt(int object, const Matrix4& expected) const {
        EXPECT_TRUE(IsSameTransform(TransformOfObject(object), expected))
            << object << "\n"
            << TransformText(TransformOfObject(object)).toStdString() << "not\n"
            << TransformText(expected).toStdString();
    }
    [[nodiscard]] QString Mark(int row) const {
        return m_window->Objects().topLevelItem(row)->text(ObjectList::kMoved);
    }
    [[nodiscard]] std::string Box(int row) const {
        // Below the path.
        return m_window->Objects()
            .Row(row)
            ->toolTip(ObjectList::kSize)
            .section('\n', 1)
            .replace('\n', ", ")
            .toStdString();
    }
    [[nodiscard]] std::string Shown(const char* label) const { return Find<QLabel>(label).text().toStdString(); }
    void Select(int row) const { m_window->Objects().setCurrentItem(m_window->Objects().topLevelItem(row)); }
    /// As an alignment by points of the operator does.
    void Align(const std::vector<int>& objects, const Matrix4& motion, const QString& name = "alignment by points") {
        Methods().ResetVariableObjects();
        for (const int object : objects) Methods().AddVariableObject(static_cast<std::int16_t>(object));
        std::vector<KV_ScenePane::AlignmentPair> pairs(4);
        const float points[4][3] = {{0, 0, 0}, {50, 0, 0}, {0, 50, 0}, {0, 0, 50}};
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            std::copy_n(points[i], 3, pairs[i].moving.point);
            pairs[i].fixed = Applied(motion, pairs[i].moving);
        }
        m_window->Transforms().Begin(name);
        ASSERT_TRUE(m_window->Pane()->AlignByPairs(pairs));
        EXPECT_EQ(m_window->Transforms().End(), static_cast<int>(objects.size()));
    }
    [[nodiscard]] std::string TransformFile() const { return m_folder / "transforms.json"; }

    static inline const Matrix4 kHome = Turned(0, 0, 0, 0);
    // By numbers that floats hold, but for the last digit.
    static inline const Matrix4 kMotion{0.6f, -0.8f, 0, 10, 0.8f, 0.6f, 0, -20, 0, 0, 1, 5, 0, 0, 0, 1};
};

// ---- the column

TEST_F(MainWindowTransforms, KeepsWhatMayMoveOverCutsDeletionsAndUndo) {
    ObjectList& list = m_window->Objects();
    Import(ManyPcms(1));
    EXPECT_EQ(list.MovingRows(), std::vector<int>{});
    list.topLevelItem(1)->setCheckState(ObjectList::kMayMove, Qt::Checked);
    EXPECT_TRUE(IsObjectAt({0.5, 0.35})) << "all are visible";
    CutFront();
    EXPECT_EQ(list.MovingRows(), std::vector<int>{1});
    list.topLevelItem(2)->setCheckState(ObjectList::kMayMove, Qt::Checked);
    m_window->DeleteObject(0);
    EXPECT_EQ(list.MovingRows(), (std::vector<int>{0, 1}));
    Tool("cutUndo").trigger();
    EXPECT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm", "0.pcm"}));
    EXPECT_EQ(list.MovingRows(), (std::vector<int>{1, 2})) << "as it was chosen last";
}

// ---- the pane

TEST_F(MainWindowTransforms, ShowsTheTransformOfTheCurrentObject) {
    EXPECT_EQ(Shown("transformName"), "Select an object in the list.");
    Select(1);
    EXPECT_EQ(Shown("transformName"), "back.pcm");
    EXPECT_EQ(Shown("transformState"), "As imported");
    EXPECT_EQ(Shown("transform00"), "1.000000");
    Align({1}, kMotion);
    EXPECT_EQ(Shown("transform00"), "0.600000");
    EXPECT_EQ(Shown("transform01"), "-0.800000");
    EXPECT_EQ(Shown("transform03"), "10.0000");
    EXPECT_EQ(Shown("transform13"), "-20.0000");
    EXPECT_EQ(Shown("transformState"), "Moved, not saved");
    EXPECT_EQ(Mark(1), "moved");
    EXPECT_EQ(Mark(0), "");
    Select(0);
    EXPECT_EQ(Shown("transformName"), "front.pcm");
    EXPECT_EQ(Shown("transformState"), "As imported");
    Select(1);
    Find<QPushButton>("transformCopy").click();
    EXPECT_EQ(QApplication::clipboard()->text(), TransformText(TransformOfObject(1)));
    TakeBackAction().trigger();
    EXPECT_EQ(Shown("transform03"), "0.0000");
    EXPECT_EQ(Shown("transformState"), "As imported");
    EXPECT_EQ(Mark(1), "");
    m_window->DeleteObject(1);
    EXPECT_EQ(Shown("transformName"), "front.pcm") << "the only one that is left";
    m_window->ClearScene();
    EXPECT_EQ(Shown("transformName"), "Select an object in the list.");
}

TEST_F(MainWindowTransforms, FollowsAnAlignmentThatRuns) {
    Select(0);
    m_window->Transforms().Begin("alignment by hand");
    (void)Methods().SetTrafoOfScan(0, 1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    Methods().PerformInvalidate();  // the viewer handles it, as it handles a drag
    EXPECT_TRUE(WaitUntil([&] { return Shown("transform03") == "7.0000"; }));
    EXPECT_EQ(m_window->Transforms().End(), 1);
}

TEST_F(MainWindowTransforms, ShowsTheBoxesOfMovedObjects) {
    ASSERT_EQ(Box(1), "x 0 … 59, y 0 … 59, z 9.99 … 10.01");
    Align({1}, Turned(0, 100, 0, 0));
    EXPECT_EQ(Box(1), "x 100 … 159, y 0 … 59, z 9.99 … 10.01");
    TakeBackAction().trigger();
    EXPECT_EQ(Box(1), "x 0 … 59, y 0 … 59, z 9.99 … 10.01");
}

// ---- take back

TEST_F(MainWindowTransforms, TakesBackAsManyAlignmentsAsWereMade) {
    EXPECT_EQ(TakeBackText(), "Take back alignment");
    EXPECT_FALSE(TakeBackAction().isEnabled());
    Align({0, 1}, kMotion);
    const Matrix4 first = TransformOfObject(0);
    EXPECT_EQ(TakeBackText(), "Take back alignment by points (2 scans)");
    Align({0}, kMotion, "alignment by hand");
    EXPECT_EQ(TakeBackText(), "Take back alignment by hand (1 scan)");
    EXPECT_TRUE(TakeBackAction().isEnabled());
    TakeBackAction().trigger();
    ExpectAt(0, first);
    ExpectAt(1, first);
    EXPECT_EQ(StatusText(), "Taken back: alignment by hand (1 scan)");
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    ExpectAt(1, kHome);
    EXPECT_EQ(TakeBackText(), "Take back alignment");
    EXPECT_FALSE(TakeBackAction().isEnabled());
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowTransforms, MakesNoLevelOfAnAlignmentThatMovedNothing) {
    m_window->Transforms().Begin("alignment by hand");
    EXPECT_TRUE(m_window->Transforms().IsOpen());
    EXPECT_EQ(m_window->Transforms().End(), 0);
    EXPECT_FALSE(TakeBackAction().isEnabled());
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowTransforms, TakesNothingBackDuringAnAlignment) {
    Align({0}, kMotion);
    const Matrix4 aligned = TransformOfObject(0);
    m_window->Transforms().Begin("alignment by hand");
    EXPECT_FALSE(TakeBackAction().isEnabled());
    EXPECT_FALSE(MenuAction("Load transforms...").isEnabled());
    m_window->Transforms().TakeBack();
    ExpectAt(0, aligned);
    EXPECT_EQ(m_window->Transforms().End(), 0);
    EXPECT_TRUE(TakeBackAction().isEnabled());
}

TEST_F(MainWindowTransforms, TakesBackWithDeletionsAndImportsInBetween) {
    Import(ManyPcms(1));
    Align({1, 2}, kMotion);
    m_window->DeleteObject(0);
    Import({Front()});
    ASSERT_EQ(Rows(), (std::vector<std::string>{"back.pcm", "0.pcm", "front.pcm"}));
    EXPECT_EQ(TakeBackText(), "Take back alignment by points (2 scans)");
    m_window->DeleteObject(1);
    EXPECT_EQ(TakeBackText(), "Take back alignment by points (1 scan)");
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    ExpectAt(1, kHome);
}

TEST_F(MainWindowTransforms, TakesBackNoAlignmentOfDeletedObjectsOnly) {
    Align({1}, kMotion);
    Align({0}, kMotion, "alignment by hand");
    m_window->DeleteObject(0);
    EXPECT_EQ(TakeBackText(), "Take back alignment by points (1 scan)") << "the one before";
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    EXPECT_FALSE(TakeBackAction().isEnabled());
    Align({0}, kMotion);
    m_window->DeleteObject(0);
    EXPECT_EQ(TakeBackText(), "Take back alignment");
    EXPECT_FALSE(TakeBackAction().isEnabled());
}

TEST_F(MainWindowTransforms, ForgetsAlignmentsWithTheScene) {
    Align({0}, kMotion);
    m_window->ClearScene();
    EXPECT_FALSE(TakeBackAction().isEnabled());
    Import({Front()});
    EXPECT_FALSE(TakeBackAction().isEnabled());
    EXPECT_EQ(Mark(0), "");
    EXPECT_FALSE(m_window->isWindowModified());
}

// ---- with cuts

// Floats round: scans with poses of their own, near and far from the origin.
TEST_F(MainWindowTransforms, LetsCutsBeSavedAfterAnAlignmentWasTakenBack) {
    m_window->ClearScene();
    const Matrix4 poses[] = {Turned(0.7, 12.345f, -678.9f, 0.001f), Turned(-2.1, 54321.09f, 1234567.0f, -98765.4f),
                             Turned(3.1415, -1e6f, 3e-5f, 4e5f)};
    std::vector<std::string> files;
    for (const Matrix4& pose : poses) {
        files.push_back(m_folder / ("pose" + std::to_string(files.size()).append(".pcm")));
        WritePlacedPcm(files.back(), 60, 60, pose);
    }
    Import(files);
    ASSERT_EQ(ObjectsInViewer(), 3);
    std::vector<Matrix4> imported;
    for (int i = 0; i < 3; ++i) {
        imported.push_back(TransformOfObject(i));
        EXPECT_NEAR(imported[i][3], poses[i][3], 0.1) << i;  // the file has other units, so it rounds
    }
    for (int times = 0; times < 20; ++times) {
        Align({0, 1, 2}, Turned(0.1 + times, 1e5f, -3.0f, 0.7f));
        EXPECT_TRUE(IsMoved(0) && IsMoved(1) && IsMoved(2)) << times;
    }
    while (TakeBackAction().isEnabled()) TakeBackAction().trigger();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(IsMoved(i)) << i;
        ExpectAt(i, imported[i]);
    }
}

TEST_F(MainWindowTransforms, SavesACutOfAnObjectThatIsBackInItsPlace) {
    CutFront();
    Align({0}, kMotion);
    {
        const auto refusal = Answer(QDialogButtonBox::Close);
        Tool("cutSave").trigger();
        EXPECT_TRUE(refusal.WasShown());
    }
    const std::string before = Bytes(Front());
    TakeBackAction().trigger();
    ASSERT_FALSE(IsMoved(0));
    (void)Save();
    EXPECT_NE(Bytes(Front()), before);
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowTransforms, LeavesAnObjectInItsPlaceWhenACutOfBeforeIsUndone) {
    CutFront();
    Align({0, 1}, kMotion);
    const Matrix4 aligned = TransformOfObject(0);
    Tool("cutUndo").trigger();
    EXPECT_EQ(Vertices(0), 3600);
    ExpectAt(0, aligned);
    ExpectAt(1, aligned);
    EXPECT_EQ(Mark(0), "moved");
    EXPECT_EQ(Box(0).substr(0, 4), Box(1).substr(0, 4)) << "the list shows the box of now";
    EXPECT_EQ(TakeBackText(), "Take back alignment by points (2 scans)");
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    ExpectAt(1, kHome);
    EXPECT_FALSE(IsMoved(0));
}

TEST_F(MainWindowTransforms, UndoesACutOfAfterAnAlignmentAndKeepsTheAlignment) {
    Align({0, 1}, Turned(0, 1, 0, 0));
    const Matrix4 aligned = TransformOfObject(0);
    CutFront();
    ExpectAt(0, aligned);
    Tool("cutUndo").trigger();
    ExpectAt(0, aligned);
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    EXPECT_FALSE(m_window->Pane()->PlanCutSave()[0].isCutWhileMoved);
    // Taken back first, undone then.
    Align({0, 1}, Turned(0, 1, 0, 0));
    CutFront();
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    Tool("cutUndo").trigger();
    ExpectAt(0, kHome);
    EXPECT_FALSE(IsMoved(0));
    EXPECT_EQ(Mark(0), "");
    EXPECT_FALSE(TakeBackAction().isEnabled());
}

TEST_F(MainWindowTransforms, PlacesADeletedObjectThatAnUndoBringsBack) {
    CutFront();
    Align({0, 1}, kMotion);
    const Matrix4 aligned = TransformOfObject(0);
    m_window->DeleteObject(0);
    Tool("cutUndo").trigger();
    ASSERT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm"}));
    ExpectAt(0, aligned);
    // The same with the alignment taken back while the object is deleted.
    CutFront();
    m_window->DeleteObject(0);
    TakeBackAction().trigger();
    Tool("cutUndo").trigger();
    ASSERT_EQ(ObjectsInViewer(), 2);
    ExpectAt(0, kHome);
    ExpectAt(1, kHome);
}

// A host object could be moved by others than the tools of alignments.
TEST_F(MainWindowTransforms, LeavesAnObjectWhereItIsWhenItIsCut) {
    MoveFront(1.0f);
    CutFront();
    EXPECT_EQ(TransformOfObject(0)[3], 1.0f);
    MoveFront(2.0f);
    Tool("cutUndo").trigger();
    EXPECT_EQ(TransformOfObject(0)[3], 2.0f);
}

// ---- files

TEST_F(MainWindowTransforms, SavesAndLoadsTransforms) {
    Align({1}, kMotion);
    const Matrix4 aligned = TransformOfObject(1);
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    EXPECT_EQ(StatusText(), TransformFile() + ": 2 transforms saved");
    EXPECT_FALSE(m_window->isWindowModified());
    Select(1);
    EXPECT_EQ(Shown("transformState"), "Moved, saved");
    m_window->ClearScene();
    Import({Back(), Front()});
    Select(0);
    ASSERT_TRUE(m_window->LoadTransforms(TransformFile()));
    EXPECT_EQ(StatusText(), TransformFile() + ": transforms for 2 of 2 objects, 1 moved");
    ExpectAt(0, aligned);
    ExpectAt(1, kHome);
    EXPECT_EQ(Shown("transformState"), "Moved, saved");
    EXPECT_EQ(Mark(0), "moved");
    EXPECT_FALSE(m_window->isWindowModified()) << "a file has it";
    EXPECT_EQ(TakeBackText(), "Take back load of transforms (1 scan)");
    TakeBackAction().trigger();
    ExpectAt(0, kHome);
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowTransforms, NamesObjectsWithoutATransform) {
    Align({0, 1}, kMotion);
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    m_window->DeleteObject(0);
    Import(ManyPcms(1));
    TakeBackAction().trigger();
    ASSERT_TRUE(m_window->LoadTransforms(TransformFile()));
    EXPECT_TRUE(Has(Messages(), "0.pcm")) << Messages();
    EXPECT_TRUE(Has(Messages(), "front.pcm")) << Messages();
    EXPECT_EQ(StatusText(), TransformFile() + ": transforms for 1 of 2 objects, 1 moved");
    EXPECT_TRUE(IsMoved(0));
    EXPECT_FALSE(IsMoved(1));
}

TEST_F(MainWindowTransforms, ChangesNothingByAFileThatIsRefused) {
    Align({0}, kMotion);
    const Matrix4 aligned = TransformOfObject(0);
    for (const char* const content :
         {"", "{", "{\"version\": 1, \"scans\": [{\"file\": \"front.pcm\", \"transform\": [1, 2]}]}",
          "{\"version\": 1, \"scans\": [{\"file\": \"front.pcm\", \"transform\": "
          "[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]}, {\"file\": 3}]}"}) {
        std::ofstream(TransformFile()) << content;
        EXPECT_FALSE(m_window->LoadTransforms(TransformFile())) << content;
        EXPECT_TRUE(Has(StatusText(), TransformFile() + ": no transforms loaded: ")) << StatusText();
        ExpectAt(0, aligned);
        EXPECT_EQ(TakeBackText(), "Take back alignment by points (1 scan)");
    }
    EXPECT_FALSE(m_window->LoadTransforms(m_folder / "none.json"));
    EXPECT_TRUE(m_window->isWindowModified());
}

TEST_F(MainWindowTransforms, SaysThatAFileConcernsNoOpenObject) {
    std::ofstream(TransformFile()) << "{\"version\": 1, \"scans\": [{\"file\": \"other.pcm\", \"transform\": "
                                      "[1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]}]}";
    EXPECT_FALSE(m_window->LoadTransforms(TransformFile()));
    EXPECT_EQ(StatusText(), TransformFile() + ": transforms for 0 of 2 objects, 0 moved");
    EXPECT_TRUE(Has(Messages(), "other.pcm")) << Messages();
    EXPECT_FALSE(TakeBackAction().isEnabled());
}

TEST_F(MainWindowTransforms, KeepsTheFileOfBeforeWhenItCannotBeWritten) {
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    const std::string before = Bytes(TransformFile());
    Align({0}, kMotion);
    EXPECT_FALSE(m_window->SaveTransforms(m_folder / "none/transforms.json"));
    EXPECT_TRUE(Has(StatusText(), "transforms.json: not written: ")) << StatusText();
    EXPECT_TRUE(m_window->isWindowModified()) << "nothing is saved";
    // A translation that no reader accepts.
    (void)Methods().SetTrafoOfScan(1, 1, 0, 0, 2e9f, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    EXPECT_FALSE(m_window->SaveTransforms(TransformFile()));
    EXPECT_EQ(Bytes(TransformFile()), before);
    (void)Methods().SetTrafoOfScan(1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
}

// The name that is offered is the same for all scans of a folder.
TEST_F(MainWindowTransforms, KeepsWhatAFileHasOfScansThatAreNotOpen) {
    Align({0, 1}, kMotion);
    const Matrix4 aligned = TransformOfObject(1);
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    m_window->ClearScene();
    Import({Front()});
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    EXPECT_EQ(StatusText(), TransformFile() + ": 1 transform saved; 1 transform of scans that are not open kept");
    Import({Back()});
    ASSERT_TRUE(m_window->LoadTransforms(TransformFile()));
    ExpectAt(0, kHome);
    ExpectAt(1, aligned);
}

TEST_F(MainWindowTransforms, OffersTheFolderOfTheScans) {
    std::string name, folder;
    const DialogAnswer<QFileDialog> dialog([&](QFileDialog& files) {
        name = files.selectedFiles().value(0).toStdString();
        files.reject();
    });
    Trigger("Save transforms...");
    EXPECT_TRUE(dialog.WasShown());
    EXPECT_EQ(name, TransformFile());
    Align({0}, kMotion);
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    const DialogAnswer<QFileDialog> load([&](QFileDialog& files) {
        name = files.selectedFiles().value(0).toStdString();
        files.findChild<QLineEdit*>()->setText("");
        files.reject();
    });
    name.clear();
    Trigger("Load transforms...");
    EXPECT_TRUE(load.WasShown());
    EXPECT_EQ(name, TransformFile()) << "it exists";
}

// ---- what is not saved

TEST_F(MainWindowTransforms, AsksAboutAlignmentsBeforeTheyAreLost) {
    Align({1}, kMotion);
    EXPECT_TRUE(m_window->isWindowModified());
    std::string question;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel, &question);
        EXPECT_FALSE(Close());
    }
    EXPECT_TRUE(Has(question, "back.pcm")) << question;
    EXPECT_FALSE(Has(question, "front.pcm")) << question;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel);
        Trigger("Clear");
        EXPECT_TRUE(dialog.WasShown());
    }
    EXPECT_EQ(ObjectsInViewer(), 2);
    {
        const auto dialog = Answer(QDialogButtonBox::Discard);
        EXPECT_TRUE(Close());
        EXPECT_TRUE(dialog.WasShown());
    }
}

TEST_F(MainWindowTransforms, ClosesAfterTheTransformsWereSavedByTheQuestion) {
    Align({1}, kMotion);
    bool wasAskedForFile = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (auto* const question = qobject_cast<FileListDialog*>(modal)) question->Press(QDialogButtonBox::Save);
        if (auto* const files = qobject_cast<QFileDialog*>(modal)) {
            wasAskedForFile = true;
            QMetaObject::invokeMethod(files, "accept");
        }
    });
    timer.start(10);
    EXPECT_TRUE(Close());
    EXPECT_TRUE(wasAskedForFile);
    EXPECT_TRUE(Has(Bytes(TransformFile()), "back.pcm"));
}

TEST_F(MainWindowTransforms, AsksNothingAboutAlignmentsThatWereTakenBackOrSaved) {
    Align({1}, kMotion);
    TakeBackAction().trigger();
    EXPECT_FALSE(m_window->isWindowModified());
    Align({1}, kMotion);
    ASSERT_TRUE(m_window->SaveTransforms(TransformFile()));
    EXPECT_FALSE(m_window->isWindowModified());
    Align({1}, kMotion);
    EXPECT_TRUE(m_window->isWindowModified()) << "moved again since";
    TakeBackAction().trigger();
    EXPECT_FALSE(m_window->isWindowModified()) << "as in the file";
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Close());
    EXPECT_FALSE(dialog.WasShown());
}

}  // namespace
