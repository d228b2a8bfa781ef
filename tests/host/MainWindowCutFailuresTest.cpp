// Saves that are refused or fail, and what the window remembers of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "ClipPanel.h"
#include "host/CutSaveFixture.h"
#include "host/RefusedMemory.h"

namespace {

class MainWindowCutFailures : public CutSaveFixture {
protected:
    static inline const Corners kAbove{{0.45, 0.3}, {0.55, 0.3}, {0.55, 0.35}, {0.45, 0.35}};
    static inline const Corners kBelow{{0.45, 0.65}, {0.55, 0.65}, {0.55, 0.7}, {0.45, 0.7}};

    [[nodiscard]] std::string Elsewhere() const { return m_folder / "elsewhere.pcm"; }
    void TakeFrontAway() const { std::filesystem::rename(Front(), Elsewhere()); }
    void BringFrontBack() const { std::filesystem::rename(Elsewhere(), Front()); }

    /// The file has lost the pixels inside of kMiddle: as many as the object, in a rectangle around its centre.
    void ExpectFrontWithoutTheMiddle() const {
        const MsrStorage::PcmMeasurement file = MsrStorage::ReadPcmFile(Front());
        ASSERT_EQ(file.m_iWidth * file.m_iHeight, 3600);
        int count = 0, left = 60, right = -1, low = 60, high = -1;
        for (int i = 0; i < 3600; ++i) {
            if (file.m_pClassification[static_cast<std::size_t>(i)] != 250) continue;
            ++count;
            left = std::min(left, i % 60);
            right = std::max(right, i % 60);
            low = std::min(low, i / 60);
            high = std::max(high, i / 60);
        }
        EXPECT_GT(count, 0);
        EXPECT_EQ(count, 3600 - Vertices(0));
        EXPECT_EQ(count, (right - left + 1) * (high - low + 1));
        // The corners of the lasso may be half a point beside the middle.
        EXPECT_LE(std::abs(left + right - 59), 1) << left << " to " << right;
        EXPECT_LE(std::abs(low + high - 59), 1) << low << " to " << high;
    }
};

// ---- moved objects

TEST_F(MainWindowCutFailures, RefusesWhileAnObjectThatItWouldWriteIsMoved) {
    const std::string before = Bytes(Front());
    CutFront();
    MoveFront(5);
    const std::string refusal = Save(QDialogButtonBox::Close);
    EXPECT_TRUE(Has(refusal, Front() + ": moved since its import, take back the alignment first")) << refusal;
    EXPECT_TRUE(Has(Messages(), "take back the alignment first")) << Messages();
    EXPECT_EQ(Bytes(Front()), before);
    EXPECT_TRUE(m_window->isWindowModified());
    // At the place of its import again it is saved.
    MoveFront(0);
    (void)Save();
    EXPECT_FALSE(m_window->isWindowModified());
    ExpectFrontWithoutTheMiddle();
}

TEST_F(MainWindowCutFailures, RefusesAnObjectThatWasCutWhileItWasMoved) {
    const std::string before = Bytes(Front());
    const std::string text = Front() +
                             ": was cut while it was moved; undo these cuts, take back the alignment first, "
                             "and cut again";
    MoveFront(5);
    CutFront();
    EXPECT_TRUE(Has(Save(QDialogButtonBox::Close), text)) << Messages();
    MoveFront(0);
    EXPECT_TRUE(Has(Save(QDialogButtonBox::Close), text)) << Messages();
    EXPECT_EQ(Bytes(Front()), before);
    EXPECT_TRUE(m_window->isWindowModified());
    // What the text says.
    Tool("cutUndo").trigger();
    MoveFront(0);
    CutFront();
    (void)Save();
    EXPECT_FALSE(m_window->isWindowModified());
    ExpectFrontWithoutTheMiddle();
}

// ---- files that cannot be written

TEST_F(MainWindowCutFailures, ReportsAFileThatFailsAndKeepsTheMark) {
    CutFront();
    TakeFrontAway();
    const std::string summary = SaveWithSummary();
    EXPECT_TRUE(Has(summary, Front() + ": failed, ")) << summary;
    EXPECT_TRUE(Has(summary, "Cuts saved: 0 written, 1 failed")) << summary;
    EXPECT_TRUE(Has(summary, "undo these cuts and draw them again")) << summary;
    EXPECT_TRUE(Has(Messages(), Front() + ": failed, ")) << Messages();
    EXPECT_TRUE(m_window->isWindowModified()) << "the viewer has dropped the cut, the file does not have it";
    // No further save writes it, so the window offers none.
    Tool("cutSave").trigger();
    EXPECT_EQ(StatusText(), "Nothing was saved: what has failed is not written again.");
    std::string closing;
    {
        const auto dialog = Answer(QDialogButtonBox::Cancel, &closing);
        EXPECT_FALSE(Close());
    }
    EXPECT_TRUE(Has(closing, Front() + ": a save has failed; undo the cut and draw it again")) << closing;
    EXPECT_FALSE(Has(closing, "Save rewrites")) << closing;
    // Taken back, cut again, and saved.
    BringFrontBack();
    Tool("cutUndo").trigger();
    EXPECT_FALSE(m_window->isWindowModified());
    CutFront();
    (void)Save();
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_TRUE(Close());
}

TEST_F(MainWindowCutFailures, KeepsTheMarkOfACutThatAnUndoRestoresAndNoFileHas) {
    CutFront();
    (void)Save();
    CutFront(kAbove);
    CutFront(kBelow);
    TakeFrontAway();
    (void)SaveWithSummary();
    BringFrontBack();
    Tool("cutUndo").trigger();
    EXPECT_EQ(StatusText(), "The cut was taken back; 2 can be taken back, too.") << "it is in no file";
    EXPECT_TRUE(m_window->isWindowModified()) << "the second cut is in no file";
    (void)Save();
    EXPECT_FALSE(m_window->isWindowModified());
    const int shown = Vertices(0);
    m_window->ClearScene();
    Import({Front()});
    EXPECT_EQ(Vertices(0), shown);
}

TEST_F(MainWindowCutFailures, NamesWhatFailedBeforeInTheSummaryOfOtherFiles) {
    OpenMessages();
    CutFront();
    TakeFrontAway();
    (void)SaveWithSummary();
    ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonVisible));  // through the hole of front.pcm
    const std::string summary = SaveWithSummary();
    EXPECT_TRUE(Has(summary, "Cuts saved: 1 written, 1 failed before")) << summary;
    EXPECT_TRUE(Has(summary, Front() + ": a save has failed; undo the cut and draw it again")) << summary;
}

TEST_F(MainWindowCutFailures, SaysHowAClipPlaneThatFailedIsWritten) {
    m_window->Clip().SwitchClipping(true);
    (void)Methods().SetClipPlane(20, 30, 5, 1, 0, 0);
    TakeFrontAway();
    const std::string summary = SaveWithSummary();
    EXPECT_TRUE(Has(summary, "Cuts saved: 1 written, 1 failed")) << summary;
    EXPECT_TRUE(Has(summary, "move it a little, or open the file again")) << summary;
    EXPECT_FALSE(Has(summary, "undo")) << summary;
    EXPECT_FALSE(m_window->isWindowModified()) << "a plane is no cut";
    BringFrontBack();
    const std::string before = Bytes(Front());
    Tool("cutSave").trigger();
    EXPECT_EQ(StatusText(), "Nothing was saved: what has failed is not written again.");
    EXPECT_TRUE(Has(Messages(), Front() + ": a save of the clip plane has failed; move the plane a little, or open the "
                                          "file again"))
        << Messages();
    EXPECT_EQ(Bytes(Front()), before);
    // What the text says.
    (void)Methods().SetClipPlane(20.1f, 30, 5, 1, 0, 0);
    (void)Save();
    EXPECT_EQ(StatusText(), "Cuts saved: 2 written");
    EXPECT_NE(Bytes(Front()), before);
    Tool("cutSave").trigger();
    EXPECT_EQ(StatusText(), "Nothing was saved: no new cut concerns a pcm file.");
    m_window->Clip().Reset();  // the window stores its settings
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(MainWindowCutFailures, OffersTheCutsAgainForWhichMemoryWasShort) {
    const std::string before = Bytes(Front());
    CutFront();
    // Above the arrays of the file and below its vertices.
    const std::string summary = SaveWithSummary([](int dialog) { g_refusedBytes = dialog == 0 ? 100'000 : SIZE_MAX; });
    EXPECT_TRUE(Has(summary, "Cuts saved: 0 written, 1 failed")) << summary;
    EXPECT_TRUE(Has(summary, "there is not enough memory")) << summary;
    EXPECT_TRUE(Has(summary, "The viewer still has cuts")) << summary;
    EXPECT_FALSE(Has(summary, "undo")) << summary;
    EXPECT_EQ(Bytes(Front()), before);
    EXPECT_TRUE(m_window->isWindowModified());
    (void)Save();
    EXPECT_EQ(StatusText(), "Cuts saved: 1 written");
    EXPECT_FALSE(m_window->isWindowModified());
    ExpectFrontWithoutTheMiddle();
}
#endif

}  // namespace
