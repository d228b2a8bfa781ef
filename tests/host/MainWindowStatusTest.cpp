// Status bar and title of the window: what they say after imports, picks, failures and frames.
#include <gtest/gtest.h>

#include <QDockWidget>
#include <QTextBlock>
#include <QToolButton>

#include "StatusLine.h"
#include "host/MeshFiles.h"
#include "host/PicksFixture.h"

namespace {

class MainWindowStatus : public PicksFixture {
protected:
    [[nodiscard]] std::string Shown(const char* label) const { return Find<QLabel>(label).text().toStdString(); }
    [[nodiscard]] std::string Title() const { return m_window->windowTitle().toStdString(); }
    [[nodiscard]] QToolButton& Counter() const { return Find<QToolButton>("failedFiles"); }
    [[nodiscard]] static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(MainWindowStatus, CountsWhatIsShownAndWhatIsThere) {
    // (30 - 1)^2 * 2 and (10 - 1)^2 * 2 triangles
    EXPECT_TRUE(Has(Shown("sceneCounts"), "2 object")) << Shown("sceneCounts");
    EXPECT_TRUE(Has(Shown("sceneCounts"), "1,844 triangle") || Has(Shown("sceneCounts"), "1844 triangle"))
        << Shown("sceneCounts");
    m_window->Objects().Row(0)->setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_TRUE(Has(Shown("sceneCounts"), "1 of 2 object")) << Shown("sceneCounts");
    EXPECT_TRUE(Has(Shown("sceneCounts"), ", 162 of ")) << Shown("sceneCounts");
    m_window->DeleteObject(0);
    EXPECT_TRUE(Has(Shown("sceneCounts"), "1 object")) << Shown("sceneCounts");
    EXPECT_TRUE(Has(Shown("sceneCounts"), "162 triangle")) << Shown("sceneCounts");
    m_window->ClearScene();
    EXPECT_TRUE(Has(Shown("sceneCounts"), "0 object")) << Shown("sceneCounts");
}

TEST_F(MainWindowStatus, ShowsTheTimeOfFramesThatTheViewerDraws) {
    // What was drawn until now is shown.
    const auto frames = [&] { return m_window->Pane()->GetFrameStatistics().count; };
    ASSERT_TRUE(WaitUntil([&] { return !Find<QLabel>("frameTime").text().isEmpty(); }));
    m_window->findChild<StatusLine*>()->ShowFrameTime(0);
    ASSERT_TRUE(Find<QLabel>("frameTime").text().isEmpty());
    const auto before = frames();
    Methods().PerformInvalidate();
    ASSERT_TRUE(WaitUntil([&] { return frames() > before; }));
    EXPECT_TRUE(WaitUntil([&] { return Find<QLabel>("frameTime").text().endsWith("s"); }));
}

TEST_F(MainWindowStatus, CopiesTheLastPick) {
    Trigger("Points on objects");
    auto& copy = Find<QToolButton>("copyLastPick");
    EXPECT_FALSE(copy.isVisible());
    const KV_ScenePane::SurfacePoint hit = Surface(OnB());
    DoubleClick(OnB());
    ASSERT_TRUE(copy.isVisible());
    copy.click();
    EXPECT_EQ(Clipboard(), Text(hit, "\t"));
    DoubleClick(OnA());
    Find<QAction>("copyLastDistanceAction").trigger();
    EXPECT_EQ(Clipboard(), Find<QLabel>("distance").text().toStdString());
    m_window->ClearScene();
    EXPECT_FALSE(copy.isVisible());
}

TEST_F(MainWindowStatus, CountsFailedFilesUntilTheyAreLookedAt) {
    EXPECT_FALSE(Counter().isVisible());
    // Enough messages that the first failure is out of sight.
    std::vector<std::string> files;
    for (int i = 0; i < 30; ++i) {
        files.push_back(m_folder / ("bad" + std::to_string(i) + ".pcm"));
        WriteText(files.back(), "no scan");
    }
    Import({m_folder / "a.xdt", files[0]});
    ASSERT_TRUE(Counter().isVisible());
    EXPECT_EQ(Counter().text().toStdString().substr(0, 6), "1 file") << Counter().text().toStdString();
    Import({files.begin() + 1, files.end()});
    EXPECT_EQ(Counter().text().toStdString().substr(0, 7), "30 file");
    auto& dock = Find<QDockWidget>("messages");
    dock.hide();
    Counter().click();
    EXPECT_TRUE(WaitUntil([&] { return dock.isVisible(); }));
    EXPECT_FALSE(Counter().isVisible());
    EXPECT_TRUE(m_window->Messages().textCursor().block().text().contains("bad0.pcm"));
    const QRect line = m_window->Messages().cursorRect();
    EXPECT_TRUE(m_window->Messages().viewport()->rect().contains(line.center()));
    Import({files[5]});
    EXPECT_EQ(Counter().text().toStdString().substr(0, 6), "1 file") << "those that were looked at do not count";
}

TEST_F(MainWindowStatus, NamesTheOpenFilesInTheTitle) {
    EXPECT_EQ(Title(), "a.xdt and 1 more[*] - scenepane");
    m_window->DeleteObject(0);
    EXPECT_EQ(Title(), "b.xdt[*] - scenepane");
    m_window->ClearScene();
    EXPECT_EQ(Title(), "scenepane[*]");
    WriteText(m_folder / "p.xyz", "0 0 0\n1 1 1\n");
    m_window->ImportPointFiles({m_folder / "p.xyz"}, {});
    WaitForImports();
    EXPECT_EQ(Title(), "p.xyz[*] - scenepane");
    WriteText(m_folder / "bad.pcm", "no scan");
    Import({m_folder / "bad.pcm"});
    EXPECT_EQ(Title(), "p.xyz[*] - scenepane") << "a file that failed is not open";
}

TEST_F(MainWindowStatus, ShowsEverythingInAWindowOfASmallScreen) {
    Trigger("Points on objects");
    DoubleClick(PixelOf(20, 20));
    DoubleClick(PixelOf(21.3f, 22.7f));
    m_window->resize(1366, 700);
    ASSERT_TRUE(WaitUntil([&] { return m_window->width() == 1366; }));
    ASSERT_TRUE(WaitUntil([&] { return Shown("lastPick").ends_with("mm"); }));
    EXPECT_TRUE(Shown("lastPick").starts_with("a.xdt:")) << Shown("lastPick");
    EXPECT_TRUE(Has(Shown("sceneCounts"), "triangle"));
    EXPECT_TRUE(WaitUntil([&] { return Shown("frameTime").ends_with("s"); }));
}

}  // namespace
