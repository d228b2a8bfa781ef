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
    EXPECT_EQ(Text(), "");
    m_window->Messages().clear();
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Center()[2], 15.0f);
    EXPECT_EQ(Messages(), "");
}

TEST_F(MainWindowClipScenes, SaysThatThereAreNoObjectsAsLongAsItWaitsForThem) {
    const std::string text = "There are no objects: the clip plane is placed at the first ones that are opened.";
    On().click();
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
    m_window->ClearScene();
    EXPECT_EQ(Text(), text);
    On().click();
    EXPECT_EQ(Text(), "");
    On().click();
    EXPECT_EQ(Text(), text);
    Number("clipCenterZ").setValue(5);
    EXPECT_EQ(Text(), "") << "the user has placed it";
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Center()[2], 5.0f);
}

TEST_F(MainWindowClipScenes, HasBeenMovedBySmallStepsFarFromTheOrigin) {
    m_window->ClearScene();
    WriteTwoLevels(m_folder / "far.ply", 500'000, 5'000'000);
    Import({m_folder / "far.ply"});
    On().click();
    ASSERT_EQ(Fields()[2], 10);
    m_window->ShowView(KV_ScenePane::ViewFromMinusYZUp);
    EXPECT_FALSE(Settings().moved);
    for (int i = 1; i <= 20; ++i) {  // as a drag does from frame to frame
        Methods().SetClipPlane(500'050, 5'000'050, 10 + static_cast<float>(i) / 10, 0, 0, 1);
        m_window->Clip().FollowViewer();
    }
    EXPECT_EQ(Fields()[2], 12);
    EXPECT_TRUE(Settings().moved);
    On().click();
    On().click();
    EXPECT_EQ(Center()[2], 12.0f);
    Press("clipPlace");
    EXPECT_FALSE(Settings().moved);
    Xdotool("mousemove " + At(Middle()) + " click 1");
    TypeInViewer("Up");
    EXPECT_EQ(Fields()[2], 11);
    EXPECT_TRUE(Settings().moved);
}

TEST_F(MainWindowClipScenes, HasBeenMovedByStepsThatAreEachLostInRounding) {
    On().click();
    float z = 10;
    for (int i = 0; i < 8; ++i) {
        z = std::nextafter(z, 20.0f);
        Methods().SetClipPlane(50, 50, z, 0, 0, 1);
        m_window->Clip().FollowViewer();
        if (i > 0) continue;
        EXPECT_FALSE(Settings().moved) << "a fit may round the height so";
    }
    EXPECT_TRUE(Settings().moved);
}

TEST_F(MainWindowClipScenes, HasNotBeenMovedByAFitFarFromTheOrigin) {
    m_window->ClearScene();
    WriteTwoLevels(m_folder / "far.ply", 500'000, 5'000'000);
    Import({m_folder / "far.ply"});
    On().click();
    Methods().SetClipPlane(0, 0, 10, 0, 0, 1);
    m_window->Clip().FollowViewer();
    Trigger("Fit the view");
    EXPECT_TRUE(WaitUntil([&] { return Fields()[0] == 500'050; })) << Fields()[0];
    EXPECT_FALSE(Settings().moved);
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
    Import({m_folder / "level.ply"});
    EXPECT_EQ(count(), 2) << "not again for each file";
    Press("clipFlip");
    EXPECT_EQ(Text().find(warning), std::string::npos) << Text();
}

TEST_F(MainWindowClipScenes, WarnsByTheFarthestCornerOfTheBoxes) {
    On().click();
    struct Row {
        Point normal, inside, outside;
    };
    for (const auto& [normal, inside, outside] :
         {Row{{1, 0, 0}, {99.9f, 0, 0}, {100.1f, 0, 0}}, Row{{-1, 0, 0}, {0.1f, 0, 0}, {-0.1f, 0, 0}},
          Row{{0, 1, 0}, {0, 99.9f, 0}, {0, 100.1f, 0}}, Row{{0, -1, 0}, {0, 0.1f, 0}, {0, -0.1f, 0}},
          Row{{0, 0, 1}, {0, 0, 19.9f}, {0, 0, 20.1f}}, Row{{0, 0, -1}, {0, 0, 0.1f}, {0, 0, -0.1f}},
          Row{{1, -1, 0}, {99.9f, 0, 0}, {100.1f, 0, 0}}}) {
        for (const bool isInside : {true, false}) {
            const Point& center = isInside ? inside : outside;
            Methods().SetClipPlane(center[0], center[1], center[2], normal[0], normal[1], normal[2]);
            m_window->Clip().FollowViewer();
            EXPECT_EQ(Text().find("cuts away all objects") == std::string::npos, isInside)
                << testing::PrintToString(normal) << testing::PrintToString(center);
        }
    }
}

TEST_F(MainWindowClipScenes, WarnsWhenTheObjectsThatItLeavesAreHiddenOrDeleted) {
    WriteText(m_folder / "higher.ply", PlyHeader(4, 2) + "0 0 40\n9 0 40\n9 9 50\n0 9 50\n3 0 1 2\n3 0 2 3\n");
    Import({m_folder / "higher.ply"});
    On().click();
    Number("clipCenterZ").setValue(30);
    const auto count = [&] { return QString::fromStdString(Messages()).count("cuts away all objects"); };
    const auto check = [&](int row, Qt::CheckState state) {
        m_window->Objects().topLevelItem(row)->setCheckState(ObjectList::kName, state);
    };
    EXPECT_EQ(count(), 0);
    check(1, Qt::Unchecked);
    EXPECT_NE(Text().find("cuts away all objects"), std::string::npos) << Text();
    EXPECT_EQ(count(), 1);
    check(0, Qt::Unchecked);
    EXPECT_EQ(Text().find("cuts away all objects"), std::string::npos) << "no object is shown anyway";
    check(0, Qt::Checked);
    check(1, Qt::Checked);
    EXPECT_EQ(Text().find("cuts away all objects"), std::string::npos) << Text();
    const int before = static_cast<int>(count());
    emit m_window->Objects().DeletionWanted({1});
    EXPECT_NE(Text().find("cuts away all objects"), std::string::npos) << Text();
    EXPECT_EQ(count(), before + 1);
}

TEST_F(MainWindowClipScenes, WarnsWithoutAdvisingThePlacementThatHasCutAwayAll) {
    WriteText(m_folder / "lower.ply", PlyHeader(4, 2) + "0 0 4\n9 0 4\n9 9 5\n0 9 5\n3 0 1 2\n3 0 2 3\n");
    On().click();
    Import({m_folder / "lower.ply"});
    m_window->Objects().topLevelItem(0)->setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_NE(Text().find("cuts away all objects: move it, flip it"), std::string::npos) << Text();
    Number("clipCenterZ").setValue(11);
    EXPECT_NE(Text().find("cuts away all objects: flip it, place it at the data"), std::string::npos) << Text();
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

TEST_F(MainWindowClipScenes, IsKeptFarFromTheOrigin) {
    On().click();
    Methods().SetClipPlane(2e7f, 3, 4e12f, 1, 0, 0);
    m_window->Clip().FollowViewer();
    for (int start = 0; start < 2; ++start) {
        EXPECT_EQ(Fields(), (std::array<double, 6>{2e7, 3, static_cast<double>(4e12f), 1, 0, 0})) << start;
        EXPECT_EQ(Center(), (Point{2e7f, 3, 4e12f})) << start;
        EXPECT_EQ(Normal(), (Point{1, 0, 0})) << start;
        EXPECT_TRUE(On().isChecked()) << start;
        if (start == 0) Restart();
    }
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
