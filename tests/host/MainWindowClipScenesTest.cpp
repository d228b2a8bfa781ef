// The clip plane of the window from scene to scene, and from start to start.
#include "host/ClipFixture.h"

namespace {

class MainWindowClipScenes : public ClipFixture {};

// ---- scenes

TEST_F(MainWindowClipScenes, IsPlacedAtTheFirstObjectsOfAScene) {
    m_window->ClearScene();
    On().click();
    EXPECT_NE(StatusText().find("There are no objects"), std::string::npos) << StatusText();
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
    Import({m_folder / "level.ply"});
    EXPECT_EQ(Center()[2], 10.0f) << "later objects do not move it";
}

TEST_F(MainWindowClipScenes, StaysWhereTheUserMovedItInANewScene) {
    On().click();
    Number("clipCenterZ").setValue(15);
    m_window->ClearScene();
    EXPECT_TRUE(On().isChecked());
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Center()[2], 15.0f);
    EXPECT_NE(Messages().find("levels.ply"), 0u) << "and nothing is said about it";
}

TEST_F(MainWindowClipScenes, WarnsWhenItCutsAwayAllObjects) {
    const std::string warning = "The clip plane cuts away all objects";
    const auto count = [&] { return QString::fromStdString(Messages()).count(QString::fromStdString(warning)); };
    Number("clipCenterZ").setValue(19.9);
    On().click();
    EXPECT_EQ(count(), 0);
    Number("clipCenterZ").setValue(20.1);
    EXPECT_NE(Text().find(warning), std::string::npos) << Text();
    EXPECT_EQ(count(), 0) << "the user who moves it sees it";
    On().click();
    EXPECT_EQ(Text().find(warning), std::string::npos) << Text();
    On().click();
    EXPECT_EQ(count(), 1);
    m_window->ClearScene();
    EXPECT_EQ(Text(), "");
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(count(), 2);
    EXPECT_NE(StatusText().find(warning), std::string::npos) << StatusText();
    Press("clipFlip");
    EXPECT_EQ(Text().find(warning), std::string::npos) << Text();
}

// ---- what is kept

TEST_F(MainWindowClipScenes, IsKeptForTheNextStart) {
    LookFromTheSideAtHeight15();
    Press("clipFlip");
    Shown().click();
    emit Find<ColorButton>("clipColor").ColorChosen(0x112233);
    emit Find<ColorButton>("clipOutlineColor").ColorChosen(0x445566);
    const ClipSettings before = Settings();
    Restart();
    EXPECT_EQ(Settings(), before);
    EXPECT_TRUE(On().isChecked());
    EXPECT_TRUE(MenuAction("Clip the scene").isChecked());
    EXPECT_FALSE(MenuAction("Show the plane").isChecked());
    EXPECT_TRUE(Find<QLabel>("clipState").isVisible());
    EXPECT_EQ(Fields()[2], 15);
    EXPECT_EQ(Normal(), (Point{0, 0, -1}));
    EXPECT_EQ(Find<ColorButton>("clipColor").Packed(), 0x112233);
    EXPECT_EQ(Find<ColorButton>("clipOutlineColor").Packed(), 0x445566);
    Import({m_folder / "levels.ply"});
    m_window->ShowView(KV_ScenePane::ViewFromPlusZYUp);
    EXPECT_GT(ObjectPixels().left, 1000);
    EXPECT_EQ(ObjectPixels().right, 0) << "it clips the next scene";
}

TEST_F(MainWindowClipScenes, IsKeptAsTheMouseLeftIt) {
    LookFromTheSideAtHeight15();
    const QPoint arrow = OnArrow();
    Xdotool("mousemove " + At(arrow) + " mousedown 1 mousemove " + At(arrow + QPoint(0, -20)) + " mouseup 1");
    WaitForInput();
    Restart();
    EXPECT_EQ(Center()[2], 17.0f);
    EXPECT_EQ(Fields()[2], 17);
}

TEST_F(MainWindowClipScenes, IsStoredWhileTheWindowIsOpen) {
    Number("clipCenterZ").setValue(6);
    EXPECT_TRUE(WaitUntil([&] { return StoredClip().center[2] == 6.0f; }));
}

TEST_F(MainWindowClipScenes, ThatNobodyMovedIsPlacedAtTheFirstObjectsAfterAStart) {
    On().click();
    Restart();
    EXPECT_TRUE(On().isChecked());
    EXPECT_EQ(Fields()[2], 10);
    WriteText(m_folder / "higher.ply", PlyHeader(4, 2) + "0 0 40\n9 0 40\n9 9 50\n0 9 50\n3 0 1 2\n3 0 2 3\n");
    Import({m_folder / "higher.ply"});
    EXPECT_NEAR(Fields()[2], 45, 1e-4) << "the mean height of four vertices";
}

TEST_F(MainWindowClipScenes, ReturnsToAFirstStart) {
    LookFromTheSideAtHeight15();
    Press("clipAlongX");
    emit Find<ColorButton>("clipColor").ColorChosen(0x112233);
    Press("clipReset");
    EXPECT_EQ(Settings(), ClipSettings());
    EXPECT_FALSE(On().isChecked());
    EXPECT_EQ(Center(), (Point{0, 0, 10}));
    EXPECT_EQ(Normal(), (Point{0, 0, 1}));
    EXPECT_EQ(Find<ColorButton>("clipColor").Packed(), ClipSettings().color);
    EXPECT_EQ(Text(), "");
    m_window->ShowView(KV_ScenePane::ViewFromPlusZYUp);
    EXPECT_GT(ObjectPixels().left, 1000);
    EXPECT_GT(ObjectPixels().right, 1000);
}

TEST_F(MainWindowClipScenes, IsKeptWhenTheViewerIsLost) {
    On().click();
    Number("clipCenterZ").setValue(15);
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return !m_window->Clip().isEnabled(); }));
    EXPECT_FALSE(Find<QLabel>("clipState").isVisible());
    EXPECT_TRUE(WaitUntil([&] { return !MenuAction("Clip the scene").isEnabled(); }));
    m_window->Clip().PlaceAtData();
    EXPECT_EQ(Settings().center[2], 15.0f);
    m_window.reset();
    EXPECT_EQ(StoredClip().center[2], 15.0f);
    EXPECT_TRUE(StoredClip().on);
}

}  // namespace
