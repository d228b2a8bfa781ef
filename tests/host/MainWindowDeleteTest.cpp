// Objects that are deleted in the window and restored, with cuts, alignments, imports and saves around; the question
// before the scene is cleared.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QCoreApplication>
#include <QToolButton>
#include <algorithm>

#include "AlignCommands.h"
#include "DeletionCommands.h"
#include "PickPanel.h"
#include "SceneReport.h"
#include "TransformCommands.h"
#include "host/CutFixture.h"
#include "host/MeshFiles.h"

namespace {

using Indices = std::vector<int>;

constexpr Matrix4 kMotion{1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 0, 0, 0, 1};
constexpr Matrix4 kOther{1, 0, 0, 9, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

class MainWindowDelete : public CutFixture {
protected:
    static inline const QPointF kCentre{0.5, 0.5};

    void SetUp() override {
        CutFixture::SetUp();
        WriteStl(m_folder / "part.stl");
    }
    [[nodiscard]] ObjectList& List() const { return m_window->Objects(); }
    [[nodiscard]] Indices Present() const { return List().PresentObjects(); }
    [[nodiscard]] DeletionCommands& Deletions() const { return m_window->Deletions(); }
    /// The frame has a pixel of the sheets.
    [[nodiscard]] bool IsSomethingDrawn() const { return IsObjectAt(kCentre); }
    [[nodiscard]] std::string Title() const { return m_window->windowTitle().toStdString(); }
    [[nodiscard]] std::string Counts() const { return Find<QLabel>("sceneCounts").toolTip().toStdString(); }
    [[nodiscard]] static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
    /// Gives the list the keyboard.
    void FocusList() const {
        List().setFocus();
        ASSERT_TRUE(WaitUntil([&] { return List().hasFocus(); }));
    }
    void Move(int object, const Matrix4& transform) const {
        m_window->Transforms().Begin("alignment by points");
        SetTransformOf(Methods(), static_cast<std::int16_t>(object), transform);
        (void)m_window->Transforms().End();
    }
    [[nodiscard]] float PlaceOf(int object) const {
        return TransformOf(Methods(), static_cast<std::int16_t>(object)).value()[3];
    }
    [[nodiscard]] bool OfferIsShown() const { return Find<QWidget>("undoOffer").isVisible(); }
};

// ---- one step

TEST_F(MainWindowDelete, RestoresWhatTheDeleteKeyRemovedByCtrlZ) {
    const KV_ScenePane::Picture before = DrawFrame();
    FocusList();
    List().Select({0, 1});
    Xdotool("key Delete");
    ASSERT_TRUE(WaitUntil([&] { return Present().empty(); }));
    EXPECT_FALSE(IsSomethingDrawn());
    EXPECT_EQ(Title(), "scenepane[*]");
    EXPECT_EQ(Counts().substr(0, 8), "0 object");
    EXPECT_EQ(UndoText(), "Undo deletion (2)");
    Xdotool("key ctrl+z");
    ASSERT_TRUE(WaitUntil([&] { return Present() == Indices{0, 1}; })) << "both are one step";
    EXPECT_EQ(Title(), "front.pcm and 1 more[*] - scenepane");
    EXPECT_EQ(Counts().substr(0, 8), "2 object");
    EXPECT_EQ(List().SelectedObjects(), (Indices{0, 1}));
    List().clearSelection();  // and with it the boxes
    EXPECT_EQ(DrawFrame().pixels, before.pixels);
    EXPECT_EQ(UndoText(), "Undo");
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
}

TEST_F(MainWindowDelete, OffersUndoInTheStatusBar) {
    m_window->RemoveObjects({1});
    ASSERT_TRUE(OfferIsShown());
    EXPECT_EQ(Find<QLabel>("undoOfferText").text().toStdString(), "back.pcm deleted");
    EXPECT_EQ(Present(), Indices{0});
    QToolButton& undo = Find<QToolButton>("undoOfferButton");
    QCoreApplication::processEvents();  // the button gets its place
    Xdotool("mousemove " + At(undo.mapToGlobal(undo.rect().center())) + " click 1");
    ASSERT_TRUE(WaitUntil([&] { return Present() == Indices{0, 1}; }));
    EXPECT_FALSE(OfferIsShown());
    EXPECT_TRUE(Has(StatusText(), "1 object")) << StatusText();
    EXPECT_TRUE(Has(StatusText(), "restored")) << StatusText();
}

TEST_F(MainWindowDelete, RestoresOneDeletionAfterTheOther) {
    m_window->RemoveObjects({0});
    m_window->RemoveObjects({1});
    m_window->Undo();
    EXPECT_EQ(Present(), Indices{1});
    EXPECT_EQ(UndoText(), "Undo deletion (1)");
    m_window->Undo();
    EXPECT_EQ(Present(), (Indices{0, 1}));
    m_window->Undo();
    EXPECT_EQ(Present(), (Indices{0, 1}));
}

TEST_F(MainWindowDelete, IgnoresObjectsThatAreNotThere) {
    m_window->RemoveObjects({});
    m_window->RemoveObjects({-1, 7});
    EXPECT_EQ(Deletions().UndoCount(), 0);
    EXPECT_FALSE(OfferIsShown());
    m_window->RemoveObjects({0});
    m_window->RemoveObjects({0});
    m_window->Undo();
    EXPECT_EQ(Present(), (Indices{0, 1}));
    EXPECT_EQ(Deletions().UndoCount(), 0);
}

// ---- what a deleted object is not

TEST_F(MainWindowDelete, CountsForNothing) {
    Import({m_folder / "part.stl"});
    List().SetMayMove({true, true, false});
    Move(0, kMotion);
    ASSERT_TRUE(m_window->isWindowModified());
    m_window->RemoveObjects({0});
    EXPECT_FALSE(m_window->isWindowModified()) << "its transform is not saved, but it is deleted";
    EXPECT_EQ(m_window->Transforms().MovedRows(), Indices{});
    EXPECT_FALSE(m_window->Transforms().CanTakeBack());
    EXPECT_EQ(List().MovingRows(), Indices{1});
    EXPECT_EQ(Title(), "back.pcm and 1 more[*] - scenepane");
    KV_ScenePane::SurfacePoint hit;
    ASSERT_TRUE(m_window->Pane()->PickSurface(m_viewer->width() / 2, m_viewer->height() / 2, &hit));
    EXPECT_NE(hit.object, 0);
    m_window->RemoveObjects({1, 2});
    Tool("cutPolygonInside").trigger();
    EXPECT_FALSE(IsRunning());
    EXPECT_TRUE(Has(StatusText(), "There is no object to cut")) << StatusText();
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    Trigger("Clear");
    EXPECT_FALSE(dialog.WasShown()) << "the scene is empty";
}

TEST_F(MainWindowDelete, HasNoTransformInFiles) {
    ASSERT_TRUE(m_window->SaveTransforms(m_folder / "both.json"));
    Move(1, kMotion);
    m_window->RemoveObjects({0});
    ASSERT_TRUE(m_window->LoadTransforms(m_folder / "both.json"));
    EXPECT_TRUE(Has(StatusText(), "transforms for 1 of 1 objects, 1 moved")) << StatusText();
    EXPECT_EQ(PlaceOf(1), 0.0f) << "the transform of back.pcm and not that of front.pcm";
    ASSERT_TRUE(m_window->SaveTransforms(m_folder / "one.json"));
    EXPECT_TRUE(Has(StatusText(), "1 transform saved")) << StatusText();
    EXPECT_EQ(ObjectsInViewer(), 1) << "the save has made the deletion final";
    EXPECT_EQ(Deletions().UndoCount(), 0);
    EXPECT_FALSE(OfferIsShown());
}

TEST_F(MainWindowDelete, ShowsPicksOnItAsDeletedUntilItIsRestored) {
    m_window->ChoosePickMode(KV_ScenePane::PickModePoints);
    m_window->Pane()->SendMouse({.kind = KV_ScenePane::MouseInput::Kind::DoubleClick,
                                 .flags = KV_ScenePane::kMouseLeft,
                                 .x = m_viewer->width() / 2,
                                 .y = m_viewer->height() / 2});
    const auto pick = [&] { return Find<QLabel>("lastPick").toolTip().toStdString(); };
    const std::string before = pick();
    ASSERT_TRUE(Has(before, "front.pcm: ")) << before;
    m_window->RemoveObjects({0});
    EXPECT_TRUE(Has(pick(), "front.pcm (deleted)")) << pick();
    m_window->Undo();
    EXPECT_EQ(pick(), before);
    m_window->RemoveObjects({0});
    Import({m_folder / "part.stl"});
    EXPECT_TRUE(Has(pick(), "front.pcm (deleted)")) << pick();
    m_window->ChoosePickMode(KV_ScenePane::PickModeOff);
}

// ---- what a restored object has

TEST_F(MainWindowDelete, RestoresVisibilityColourNameAndOrder) {
    Import({m_folder / "part.stl"});
    m_window->ColorObject(0, 0x123456);
    List().Row(0)->setText(ObjectList::kName, "Lid");
    List().Row(1)->setCheckState(ObjectList::kName, Qt::Unchecked);
    List().SortBy(ObjectList::kName, Qt::DescendingOrder);
    const auto shown = [&] {
        std::string rows;
        for (int row = 0; row < List().topLevelItemCount(); ++row) {
            if (!List().topLevelItem(row)->isHidden())
                rows += List().topLevelItem(row)->text(ObjectList::kName).toStdString() + ' ';
        }
        return rows;
    };
    const std::string before = shown();
    const KV_ScenePane::Picture frame = DrawFrame();
    m_window->RemoveObjects({0, 1});
    EXPECT_EQ(shown(), "part.stl ");
    m_window->Undo();
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(List().NameOf(0).toStdString(), "Lid");
    EXPECT_EQ(Methods().GetObjectColor(0), 0x123456);
    EXPECT_FALSE(List().IsHidden(0));
    EXPECT_TRUE(List().IsHidden(1)) << "it was hidden before";
    List().clearSelection();
    EXPECT_EQ(DrawFrame().pixels, frame.pixels);
}

TEST_F(MainWindowDelete, RestoresAnObjectWithoutAnAlignmentThatWasTakenBack) {
    Move(0, kMotion);
    m_window->RemoveObjects({0});
    m_window->Undo();
    EXPECT_EQ(PlaceOf(0), 5.0f);
    EXPECT_TRUE(m_window->Transforms().CanTakeBack());
    m_window->Transforms().Begin("alignment by hand");
    SetTransformOf(Methods(), 0, kOther);
    SetTransformOf(Methods(), 1, kOther);
    (void)m_window->Transforms().End();
    m_window->RemoveObjects({0});
    m_window->Transforms().TakeBack();
    EXPECT_EQ(PlaceOf(1), 0.0f);
    m_window->Undo();
    EXPECT_EQ(PlaceOf(0), 5.0f) << "where it was before the alignment that was taken back";
}

TEST_F(MainWindowDelete, CanBeUndoneAfterAPlacementOfTheClipPlane) {
    m_window->RemoveObjects({1});
    Trigger("Place at data");
    EXPECT_EQ(UndoText(), "Undo deletion (1)");
    m_window->Undo();
    EXPECT_EQ(Present(), (Indices{0, 1}));
    Find<QCheckBox>("clipOn").setChecked(false);
}

TEST_F(MainWindowDelete, LeavesNoBoxOfASelectionInThePicture) {
    m_window->RemoveObjects({1});
    const KV_ScenePane::Picture without = DrawFrame();
    m_window->Undo();
    List().Select({1});
    EXPECT_NE(DrawFrame().pixels, without.pixels);
    m_window->RemoveObjects({1});
    EXPECT_EQ(DrawFrame().pixels, without.pixels);
}

// ---- cuts

TEST_F(MainWindowDelete, AndCutsAreTakenBackInTheReverseOrder) {
    m_window->RemoveObjects({1});
    Cut("cutPolygonInside");
    EXPECT_FALSE(OfferIsShown()) << "undo takes the cut back now";
    m_window->RemoveObjects({0});
    EXPECT_EQ(UndoText(), "Undo deletion (1)");
    Xdotool("key ctrl+z");
    ASSERT_TRUE(WaitUntil([&] { return Present() == Indices{0}; }));
    EXPECT_LT(Vertices(0), 3600);
    EXPECT_EQ(UndoText(), "Undo cut (1)");
    Xdotool("key ctrl+z");
    ASSERT_TRUE(WaitUntil([&] { return Vertices(0) == 3600; }));
    EXPECT_EQ(Present(), Indices{0}) << "it was deleted before the cut";
    EXPECT_EQ(Methods().GetNumObjects(), 2);
    EXPECT_EQ(UndoText(), "Undo deletion (1)");
    Xdotool("key ctrl+z");
    ASSERT_TRUE(WaitUntil([&] { return Present() == Indices{0, 1}; }));
    EXPECT_EQ(Vertices(1), 3600) << "the cut has not concerned it";
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowDelete, KeepsEarlierCuts) {
    Cut("cutPolygonInside");
    const int vertices = Vertices(0);
    m_window->RemoveObjects({0});
    EXPECT_TRUE(m_window->isWindowModified()) << "back.pcm was cut, too";
    m_window->Undo();
    EXPECT_EQ(Vertices(0), vertices);
    m_window->Undo();
    EXPECT_EQ(Vertices(0), 3600);
    EXPECT_EQ(Vertices(1), 3600);
}

TEST_F(MainWindowDelete, StaysFinalWhenAnOlderCutIsTakenBack) {
    m_window->RemoveObjects({1});
    ASSERT_TRUE(CutByCall());
    m_window->DeleteObject(1);
    ASSERT_EQ(ObjectsInViewer(), 1);
    m_window->Undo();
    EXPECT_EQ(Steps(), 0);
    EXPECT_EQ(ObjectsInViewer(), 1) << "it was deleted before the cut";
    EXPECT_EQ(Present(), Indices{0});
    EXPECT_EQ(Vertices(0), 3600);
}

TEST_F(MainWindowDelete, IsNamedWhenACutIsTakenBackThatIsOlder) {
    ASSERT_TRUE(CutByCall());
    m_window->RemoveObjects({1});
    Import({m_folder / "part.stl"});
    ASSERT_EQ(ObjectsInViewer(), 2) << "front.pcm and part.stl";
    const DialogAnswer<FileListDialog> answer([](FileListDialog& dialog) { dialog.Press(QDialogButtonBox::Yes); });
    m_window->Undo();
    EXPECT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm"}));
    EXPECT_TRUE(Has(StatusText(), "Removed, because opened after the cut: part.stl.")) << StatusText();
    EXPECT_TRUE(Has(StatusText(), "Restored, because deleted after the cut: back.pcm.")) << StatusText();
}

// ---- the end of the undo

TEST_F(MainWindowDelete, IsFinalFromTheNextImportOn) {
    m_window->RemoveObjects({0});
    ASSERT_EQ(ObjectsInViewer(), 2) << "hidden";
    Import({m_folder / "part.stl"});
    EXPECT_EQ(ObjectsInViewer(), 2) << "back.pcm and part.stl";
    EXPECT_EQ(Rows(), (std::vector<std::string>{"back.pcm", "part.stl"}));
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
    EXPECT_FALSE(OfferIsShown());
    m_window->Undo();
    EXPECT_EQ(Present(), (Indices{0, 1}));
}

TEST_F(MainWindowDelete, IsFinalFromTheNextImportOfPointsOn) {
    WriteText(m_folder / "a.xyz", "0 0 0\n1 1 1\n");
    m_window->RemoveObjects({0});
    m_window->ImportPointFiles({m_folder / "a.xyz"}, {});
    WaitForImports();
    EXPECT_EQ(ObjectsInViewer(), 1) << "back.pcm";
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
    EXPECT_FALSE(OfferIsShown());
}

TEST_F(MainWindowDelete, IsForgottenWithTheScene) {
    m_window->RemoveObjects({0});
    m_window->ClearScene();
    EXPECT_EQ(ObjectsInViewer(), 0);
    EXPECT_FALSE(OfferIsShown());
    m_window->Undo();
    EXPECT_EQ(ObjectsInViewer(), 0);
    EXPECT_EQ(Title(), "scenepane[*]");
}

TEST_F(MainWindowDelete, IsForgottenWithAViewerThatIsLost) {
    m_window->RemoveObjects({0});
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return Has(Messages(), "There is no viewer:"); }));
    EXPECT_FALSE(OfferIsShown());
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
    m_window->Undo();
}

TEST_F(MainWindowDelete, ClosesWithoutAQuestionAboutDeletedObjects) {
    Cut("cutPolygonInside");
    Move(0, kMotion);
    m_window->RemoveObjects({0, 1});
    EXPECT_TRUE(Has(Messages(), "Deleted with cuts and transforms that are not saved.")) << Messages();
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(dialog.WasShown());
}

TEST_F(MainWindowDelete, IsNotPossibleWhileAnImportRuns) {
    m_window->OpenFiles(ManyPcms(3));
    ASSERT_TRUE(m_window->IsImporting());
    m_window->RemoveObjects({0});
    EXPECT_EQ(Deletions().UndoCount(), 0);
    WaitForImports();
    EXPECT_EQ(Present().size(), 5u);
}

// ---- the whole scene

TEST_F(MainWindowDelete, ClearingAsksByItsKeyAndCancelKeepsTheScene) {
    ClickOn(m_window->Messages());
    std::string question;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel, &question);
        Xdotool("key ctrl+l");
        ASSERT_TRUE(WaitUntil([&] { return dialog.WasShown(); }));
    }
    EXPECT_EQ(ObjectsInViewer(), 2);
    EXPECT_TRUE(Has(question, "2 object")) << question;
    EXPECT_FALSE(Has(question, "Not saved")) << question;
    {
        const auto dialog = Answer(QDialogButtonBox::Yes);
        ClickOn(m_window->Messages());  // without a window manager nothing else returns the keyboard to the window
        ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
        Xdotool("key ctrl+l");
        ASSERT_TRUE(WaitUntil([&] { return ObjectsInViewer() == 0; }));
    }
    EXPECT_EQ(Title(), "scenepane[*]");
    const auto dialog = Answer(QDialogButtonBox::Yes);
    Trigger("Clear");
    EXPECT_FALSE(dialog.WasShown()) << "the scene is empty";
}

TEST_F(MainWindowDelete, ClearingNamesWhatIsLost) {
    Move(1, kMotion);
    ASSERT_TRUE(CutByCall());
    WriteText(m_folder / "a.lines", "0 0 0\n10 10 0\n");
    m_window->ImportLineFiles({m_folder / "a.lines"});
    WriteText(m_folder / "a.xyz", "0 0 0\n1 1 1\n");
    m_window->ImportPointFiles({m_folder / "a.xyz"}, {});
    WaitForImports();
    EXPECT_TRUE(Has(Title(), "front.pcm and 2 more")) << Title();
    std::string question;
    const auto dialog = Answer(QDialogButtonBox::Cancel, &question);
    Trigger("Clear");
    EXPECT_TRUE(Has(question, "2 object")) << question;
    EXPECT_TRUE(Has(question, "1 set")) << question;
    EXPECT_TRUE(Has(question, "1 line")) << question;
    EXPECT_TRUE(Has(question, "Not saved:")) << question;
    EXPECT_TRUE(Has(question, "front.pcm: cuts")) << question;
    EXPECT_TRUE(Has(question, "back.pcm: cuts\nback.pcm: transform")) << question;
    EXPECT_EQ(ObjectsInViewer(), 2);
}

}  // namespace
