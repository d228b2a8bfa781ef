// Cuts and files in the host's window: the question before a save, its summary, and what is asked before cuts are lost.
#include <gtest/gtest.h>

#include <filesystem>

#include "ClipPanel.h"
#include "DeletionCommands.h"
#include "host/CutSaveFixture.h"
#include "host/MeshFiles.h"

namespace {

class MainWindowCutSave : public CutSaveFixture {};

TEST_F(MainWindowCutSave, AsksBeforeItRewritesTheFilesAndNamesThem) {
    const std::string before = Bytes(Front());
    CutFront();
    const std::string question = Save(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Has(question, "Save cuts? This rewrites 1 file:")) << question;
    EXPECT_TRUE(Has(question, Front())) << question;
    EXPECT_FALSE(Has(question, Back())) << "it has no cut: " << question;
    EXPECT_TRUE(Has(question, "undo does not bring files back")) << question;
    EXPECT_FALSE(Has(question, "clip plane")) << question;
    EXPECT_FALSE(Has(question, "confidence")) << question;
    EXPECT_EQ(Bytes(Front()), before);
    EXPECT_TRUE(m_window->isWindowModified());
}

TEST_F(MainWindowCutSave, WritesTheFilesAndSaysSo) {
    const std::string front = Bytes(Front()), back = Bytes(Back());
    CutFront();
    (void)Save();
    EXPECT_NE(Bytes(Front()), front);
    EXPECT_EQ(Bytes(Back()), back);
    EXPECT_EQ(StatusText(), "Cuts saved: 1 written");
    EXPECT_TRUE(Has(Messages(), Front() + ": written")) << Messages();
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_EQ(UndoText(), "Undo cut (1)");
    // The file has what the window shows.
    const int shown = Vertices(0);
    m_window->ClearScene();
    Import({Front()});
    EXPECT_EQ(Vertices(0), shown);
}

TEST_F(MainWindowCutSave, IsReachedByItsKeys) {
    CutFront();
    std::string text;
    const auto dialog = Answer(QDialogButtonBox::Cancel, &text);
    Xdotool("key ctrl+shift+s");
    EXPECT_TRUE(WaitUntil([&] { return dialog.WasShown(); }));
    EXPECT_TRUE(Has(text, Front())) << text;
}

TEST_F(MainWindowCutSave, SaysThatUndoLeavesTheFileCut) {
    CutFront();
    (void)Save();
    const std::string saved = Bytes(Front());
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonVisible, {{0.45, 0.3}, {0.55, 0.3}, {0.5, 0.4}}));
    Tool("cutUndo").trigger();
    EXPECT_FALSE(Has(StatusText(), "stays cut")) << "this cut was not saved: " << StatusText();
    EXPECT_FALSE(m_window->isWindowModified());
    Tool("cutUndo").trigger();
    EXPECT_TRUE(Has(StatusText(), "The file stays cut: front.pcm.")) << StatusText();
    EXPECT_EQ(Bytes(Front()), saved);
    EXPECT_FALSE(m_window->isWindowModified()) << "nothing is left to save";
}

TEST_F(MainWindowCutSave, HasNothingUnsavedWhenOneOfTwoSavedCutsIsTakenBack) {
    CutFront();
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonVisible, {{0.45, 0.3}, {0.55, 0.3}, {0.5, 0.4}}));
    (void)Save();
    Tool("cutUndo").trigger();
    EXPECT_FALSE(m_window->isWindowModified()) << "the file has the cut that is left";
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonVisible, {{0.45, 0.6}, {0.55, 0.6}, {0.5, 0.7}}));
    EXPECT_TRUE(m_window->isWindowModified());
}

TEST_F(MainWindowCutSave, NamesEveryFileThatTheClipPlaneConcernsAndTheFilter) {
    m_window->Clip().SwitchClipping(true);
    m_window->Clip().SwitchPlane(false);  // a hidden one clips as well
    CutFront();
    const std::string question = Save(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Has(question, "Save cuts? This rewrites 2 files:")) << question;
    EXPECT_TRUE(Has(question, Front())) << question;
    EXPECT_TRUE(Has(question, Back() + " (clip plane only)")) << question;
    EXPECT_TRUE(Has(question, "The clip plane is active")) << question;
    m_window->Clip().Reset();
    ImportSettings filtered;
    filtered.confidence = 0.5f;
    m_window->SetImportSettings(filtered);
    Import(ManyPcms(1));
    const std::string second = Save(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Has(second, "The confidence filter is above 0")) << second;
    EXPECT_FALSE(Has(second, "plane")) << second;
}

TEST_F(MainWindowCutSave, HasNothingToDoWithoutACut) {
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    Tool("cutSave").trigger();
    EXPECT_FALSE(dialog.WasShown());
    EXPECT_EQ(StatusText(), "Nothing was saved: no new cut concerns a pcm file.");
}

TEST_F(MainWindowCutSave, NamesAFileAndALinkToItInOneLine) {
    const std::string link = m_folder / "link.pcm";
    std::filesystem::create_symlink("front.pcm", link);
    Import({link});
    CutFront();
    const std::string question = Save(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Has(question, "This rewrites 1 file:\n" + Front() + ", which is also " + link)) << question;
}

TEST_F(MainWindowCutSave, SaysWhatItSkips) {
    WriteStl(m_folder / "part.stl");
    Import({m_folder / "part.stl"});
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonOutside, {{0.99, 0.99}, {0.98, 0.99}, {0.99, 0.98}}));  // all of it
    const std::string summary = SaveWithSummary();
    EXPECT_TRUE(Has(summary, "Cuts saved: 2 written, 1 skipped")) << summary;
    EXPECT_TRUE(Has(summary, (m_folder / "part.stl") + ": skipped, only pcm files can hold cuts")) << summary;
    EXPECT_TRUE(m_window->isWindowModified()) << "the mesh";
    // An export keeps its cuts.
    EXPECT_TRUE(m_window->ExportObjectTo(2, m_folder / "cut.ply"));
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_TRUE(Close());
}

// ---- before cuts are lost

TEST_F(MainWindowCutSave, ClosesWithoutAQuestionWhenNothingIsUnsaved) {
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    EXPECT_TRUE(Close());
    EXPECT_FALSE(dialog.WasShown());
}

TEST_F(MainWindowCutSave, KeepsTheWindowOpenUntilCutsAreDiscarded) {
    CutFront();
    const std::string before = Bytes(Front());
    std::string question;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel, &question);
        EXPECT_FALSE(Close());
    }
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_TRUE(Has(question, "There are cuts that are not saved:")) << question;
    EXPECT_TRUE(Has(question, "Save rewrites 1 file:\n" + Front())) << question;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel);
        Trigger("Quit");
        EXPECT_TRUE(dialog.WasShown());
    }
    EXPECT_TRUE(m_window->isVisible());
    {
        const auto dialog = Answer(QDialogButtonBox::Discard);
        EXPECT_TRUE(Close());
    }
    EXPECT_FALSE(m_window->isVisible());
    EXPECT_EQ(Bytes(Front()), before);
}

TEST_F(MainWindowCutSave, ClosesAfterASave) {
    CutFront();
    const std::string before = Bytes(Front());
    const auto dialog = Answer(QDialogButtonBox::Save);
    EXPECT_TRUE(Close());
    EXPECT_TRUE(dialog.WasShown());
    EXPECT_NE(Bytes(Front()), before);
}

TEST_F(MainWindowCutSave, KeepsTheWindowOpenWhenTheSaveFails) {
    CutFront();
    std::filesystem::remove(Front());
    int answered = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* const dialog = qobject_cast<FileListDialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr) dialog->Press(answered++ == 0 ? QDialogButtonBox::Save : QDialogButtonBox::Close);
    });
    timer.start(10);
    EXPECT_FALSE(Close());
    EXPECT_EQ(answered, 2) << "the question and the summary";
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_TRUE(m_window->isWindowModified());
}

TEST_F(MainWindowCutSave, AsksBeforeTheSceneIsCleared) {
    CutFront();
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel);
        Trigger("Clear");
        EXPECT_TRUE(dialog.WasShown());
    }
    EXPECT_EQ(ObjectsInViewer(), 2);
    {
        std::string question;
        const auto dialog = Answer(QDialogButtonBox::Yes, &question);
        Trigger("Clear");
        EXPECT_TRUE(Has(question, "2 object")) << question;
        EXPECT_TRUE(Has(question, "front.pcm: cuts")) << question;
        EXPECT_FALSE(Has(question, "back.pcm")) << question;
        EXPECT_TRUE(Has(question, "There is no undo")) << question;
    }
    EXPECT_EQ(ObjectsInViewer(), 0);
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_EQ(UndoText(), "Undo");
    EXPECT_TRUE(Close()) << "nothing is left to save";
}

TEST_F(MainWindowCutSave, NamesTheCutsThatADeletionLosesAndRestoresThem) {
    CutFront();
    const int vertices = Vertices(0);
    const auto dialog = Answer(QDialogButtonBox::Cancel);
    m_window->RemoveObjects({1});
    EXPECT_FALSE(Has(Messages(), "cuts that are not saved")) << "back.pcm has no cut: " << Messages();
    m_window->RemoveObjects({0});
    EXPECT_TRUE(Has(Messages(), "Deleted with cuts that are not saved.")) << Messages();
    EXPECT_FALSE(m_window->isWindowModified()) << "nothing is left to save";
    m_window->Undo();
    EXPECT_TRUE(m_window->isWindowModified());
    EXPECT_EQ(Vertices(0), vertices);
    EXPECT_FALSE(dialog.WasShown());
}

TEST_F(MainWindowCutSave, WritesNoCutsOfDeletedObjects) {
    CutFront();
    const std::string before = Bytes(Front());
    m_window->RemoveObjects({0});
    Tool("cutSave").trigger();
    EXPECT_TRUE(Has(Messages(), "Nothing was saved")) << Messages();
    EXPECT_EQ(Bytes(Front()), before);
    m_window->Undo();
    ASSERT_EQ(m_window->Objects().PresentObjects().size(), 2u) << "nothing was saved: the deletion is not final";
    m_window->RemoveObjects({1});
    std::string question;
    const auto dialog = Answer(QDialogButtonBox::Save, &question);
    Tool("cutSave").trigger();
    EXPECT_TRUE(Has(question, Front())) << question;
    EXPECT_NE(Bytes(Front()), before);
    EXPECT_EQ(ObjectsInViewer(), 1) << "a save makes the deletion final";
    EXPECT_EQ(m_window->Deletions().UndoCount(), 0);
}

TEST_F(MainWindowCutSave, OffersNoSaveForObjectsThatAreFromNoPcmFile) {
    m_window->ClearScene();
    WriteStl(m_folder / "part.stl");
    Import({m_folder / "part.stl"});
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonOutside, {{0.99, 0.99}, {0.98, 0.99}, {0.99, 0.98}}));
    EXPECT_TRUE(m_window->isWindowModified());
    Tool("cutSave").trigger();
    EXPECT_TRUE(Has(Messages(), (m_folder / "part.stl") + ": skipped, only pcm files can hold cuts")) << Messages();
    std::string question;
    {
        const auto dialog = Answer(QDialogButtonBox::Discard, &question);
        EXPECT_TRUE(Close());
    }
    EXPECT_TRUE(Has(question, "part.stl: only pcm files can hold cuts; export the object to keep them")) << question;
    EXPECT_FALSE(Has(question, "Save rewrites")) << question;
}

TEST_F(MainWindowCutSave, AsksNothingWhenTheViewerIsLost) {
    CutFront();
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() == nullptr; }));
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
    EXPECT_FALSE(Tool("cutSave").isEnabled());
    EXPECT_TRUE(Close());
}

}  // namespace
