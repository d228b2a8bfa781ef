// The pane of the clip plane and the viewer: each follows what the user does in the other.
#include <QScreen>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/ClipFixture.h"

namespace {

class MainWindowClip : public ClipFixture {};

// ---- on and off

TEST_F(MainWindowClip, StartsWithAWholeScene) {
    EXPECT_FALSE(On().isChecked());
    EXPECT_TRUE(Shown().isChecked());
    EXPECT_FALSE(Find<QLabel>("clipState").isVisible());
    EXPECT_GT(ObjectPixels().left, 1000);
    EXPECT_GT(ObjectPixels().right, 1000);
}

TEST_F(MainWindowClip, IsPlacedAtTheDataWhenItIsSwitchedOnFirst) {
    On().click();
    EXPECT_EQ(Center(), (Point{50, 50, 10}));
    EXPECT_EQ(Normal(), (Point{0, 0, 1}));
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
    EXPECT_TRUE(MenuAction("Clip the scene").isChecked());
    EXPECT_TRUE(Find<QLabel>("clipState").isVisible());
    EXPECT_FALSE(HandlePixels().empty());
}

TEST_F(MainWindowClip, CutsOffWhatIsBehindThePlane) {
    Shown().click();
    On().click();
    EXPECT_EQ(ObjectPixels().left, 0);
    EXPECT_GT(ObjectPixels().right, 1000);
    Press("clipFlip");
    EXPECT_EQ(Normal(), (Point{0, 0, -1}));
    EXPECT_GT(ObjectPixels().left, 1000);
    EXPECT_EQ(ObjectPixels().right, 0);
    On().click();
    EXPECT_GT(ObjectPixels().right, 1000);
    EXPECT_FALSE(Find<QLabel>("clipState").isVisible());
}

TEST_F(MainWindowClip, KeepsThePlaneThatTheUserMovedWhenItIsSwitchedOffAndOn) {
    On().click();
    Press("clipAlongX");
    Number("clipCenterZ").setValue(3.25);
    On().click();
    On().click();
    EXPECT_EQ(Center(), (Point{50, 50, 3.25f}));
    EXPECT_EQ(Normal(), (Point{1, 0, 0}));
    Shown().click();
    Shown().click();
    EXPECT_EQ(Center(), (Point{50, 50, 3.25f})) << "the viewer places a plane that is to be shown";
    EXPECT_EQ(Normal(), (Point{1, 0, 0}));
}

TEST_F(MainWindowClip, AppliesAPlaneThatWasMovedWhileItWasOff) {
    Number("clipCenterZ").setValue(4);
    EXPECT_FALSE(Find<QLabel>("clipState").isVisible());
    On().click();
    EXPECT_EQ(Center()[2], 4.0f);
}

TEST_F(MainWindowClip, IsPlacedAgainWhenNobodyHasMovedIt) {
    On().click();
    On().click();
    Methods().SetClipPlane(1, 2, 10, 0, 0, 1);  // as a fit of the view does: within its own surface
    m_window->Clip().FollowViewer();
    EXPECT_EQ(Fields()[0], 1);
    On().click();
    EXPECT_EQ(Center(), (Point{50, 50, 10}));
}

TEST_F(MainWindowClip, HidesThePlaneAndGoesOnClipping) {
    On().click();
    EXPECT_FALSE(HandlePixels().empty());
    Trigger("Show the plane");
    EXPECT_FALSE(Shown().isChecked());
    EXPECT_TRUE(HandlePixels().empty());
    EXPECT_EQ(ObjectPixels().left, 0);
    Shown().click();
    EXPECT_TRUE(MenuAction("Show the plane").isChecked());
    EXPECT_FALSE(HandlePixels().empty());
}

TEST_F(MainWindowClip, IsSwitchedByItsKeyInTheViewer) {
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Xdotool("key p");
    EXPECT_TRUE(WaitUntil([&] { return On().isChecked(); }));
}

// ---- numbers

TEST_F(MainWindowClip, FollowsWhatIsTypedAndKeepsTheTextMeanwhile) {
    On().click();
    const auto typeInto = [&](const char* name, const std::string& keys) {
        Number(name).setFocus();
        Number(name).selectAll();
        Xdotool("type -- " + keys);
    };
    typeInto("clipCenterX", "-12.50");
    ASSERT_TRUE(WaitUntil([&] { return Center()[0] == -12.5f && Number("clipCenterX").text() == "-12.50"; }));
    typeInto("clipNormalX", "2");
    ASSERT_TRUE(WaitUntil([&] { return std::abs(Normal()[0] - 2 / std::sqrt(5.0f)) < 1e-6f; }));
    m_window->Clip().FollowViewer();
    EXPECT_EQ(Number("clipNormalX").text(), "2") << "not the unit vector while the user types";
    EXPECT_EQ(Number("clipNormalZ").text(), "1");
    Trigger("Fit the view");
    ASSERT_TRUE(WaitUntil([&] { return Fields()[0] != -12.5; }));
    EXPECT_EQ(Number("clipNormalX").text(), "2") << "the centre alone has moved";
    typeInto("clipNormalY", "2");
    ASSERT_TRUE(WaitUntil([&] { return std::abs(Normal()[1] - 2 / 3.0f) < 1e-6f; }));
    EXPECT_EQ(Number("clipNormalX").text(), "2") << "the three are typed one after the other";
    Xdotool("key Return");
    ASSERT_TRUE(WaitUntil([&] { return Number("clipNormalX").text() == "0.666667"; }));
    ExpectFieldsOfTheViewer();
    typeInto("clipNormalZ", "5");
    ASSERT_TRUE(WaitUntil([&] { return Number("clipNormalZ").text() == "5"; }));
    Number("clipCenterY").setFocus();
    EXPECT_LT(Number("clipNormalZ").value(), 1.0) << "the keyboard has left the normal";
    ExpectFieldsOfTheViewer();
    EXPECT_TRUE(On().isChecked()) << "typed letters and digits are no shortcuts";
}

TEST_F(MainWindowClip, KeepsWhatIsTypedWhenTheViewerHasMovedThePlaneJustBefore) {
    On().click();
    Number("clipCenterX").setValue(3);
    Trigger("Fit the view");  // the plane goes to x = 50, and no frame follows yet
    Number("clipCenterX").setValue(7);
    EXPECT_EQ(Center(), (Point{7, 50, 10}));
    EXPECT_EQ(Fields()[0], 7);
    Trigger("Fit the view");
    Number("clipNormalX").setValue(1);
    EXPECT_EQ(Center(), (Point{50, 50, 10}));
    EXPECT_EQ(Fields()[0], 50);
}

TEST_F(MainWindowClip, KeepsItsNumbersWhileThePlaneOfTheViewerHasNone) {
    On().click();
    Methods().SetClipPlane(NAN, 1, 2, 0, 0, 1);
    m_window->Clip().FollowViewer();
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_EQ(Settings().center, (Point{50, 50, 10}));
}

TEST_F(MainWindowClip, KeepsThePlaneAndMarksANormalWithoutDirection) {
    On().click();
    const QColor plain = Number("clipNormalZ").palette().color(QPalette::Base);
    Number("clipNormalZ").setFocus();
    Number("clipNormalZ").setValue(0);
    EXPECT_EQ(Normal(), (Point{0, 0, 1}));
    EXPECT_NE(Text().find("0, 0, 0"), std::string::npos) << Text();
    EXPECT_NE(Number("clipNormalZ").palette().color(QPalette::Base), plain);
    Number("clipNormalY").setValue(-4);
    EXPECT_EQ(Normal(), (Point{0, -1, 0}));
    EXPECT_EQ(Number("clipNormalZ").palette().color(QPalette::Base), plain);
    EXPECT_EQ(Text().find("0, 0, 0"), std::string::npos) << Text();
    Number("clipNormalY").setValue(0);
    EXPECT_NE(Number("clipNormalZ").palette().color(QPalette::Base), plain) << "what the fields show has no direction";
    Number("clipCenterX").setFocus();
    EXPECT_EQ(Number("clipNormalY").value(), -1) << "the plane that clips";
    EXPECT_EQ(Number("clipNormalZ").palette().color(QPalette::Base), plain);
}

TEST_F(MainWindowClip, TurnsAboutItsCentreByTheButtonsOfTheAxes) {
    On().click();
    const std::pair<const char*, Point> buttons[] = {
        {"clipAlongX", {1, 0, 0}}, {"clipAlongY", {0, 1, 0}}, {"clipAlongZ", {0, 0, 1}}};
    for (const auto& [name, normal] : buttons) {
        for (int press = 0; press < 2; ++press) {
            Press(name);
            EXPECT_EQ(Normal(), normal) << name << ", press " << press;
            EXPECT_EQ(Center(), (Point{50, 50, 10})) << name;
            ExpectFieldsOfTheViewer();
        }
    }
    Trigger("Flip");
    EXPECT_EQ(Normal(), (Point{0, 0, -1}));
    EXPECT_EQ(Number("clipNormalX").text(), "0") << "without a sign";
    Trigger("Normal along +Y");
    EXPECT_EQ(Normal(), (Point{0, 1, 0}));
}

TEST_F(MainWindowClip, FollowsAViewThatIsFitted) {
    On().click();
    Number("clipCenterX").setValue(3);
    Trigger("Fit the view");
    ASSERT_TRUE(WaitUntil([&] { return Fields()[0] == 50; }));
    EXPECT_EQ(Center(), (Point{50, 50, 10}));
    EXPECT_TRUE(Settings().moved);
}

// ---- mouse and keys

TEST_F(MainWindowClip, FollowsADragOfItsArrowWhileItGoesOn) {
    LookFromTheSideAtHeight15();
    const QPoint arrow = OnArrow();
    Xdotool("mousemove " + At(arrow) + " mousedown 1 mousemove " + At(arrow + QPoint(0, -20)));
    ASSERT_TRUE(WaitUntil([&] { return Fields()[2] == 17; })) << "10 pixels are one scene unit, not " << Fields()[2];
    Xdotool("mousemove " + At(arrow + QPoint(0, 30)));
    EXPECT_TRUE(WaitUntil([&] { return Fields()[2] == 12; })) << Fields()[2];
    Xdotool("mouseup 1");
    WaitForInput();
    ExpectFieldsOfTheViewer();
    EXPECT_EQ(Center()[2], 12.0f);
}

TEST_F(MainWindowClip, FollowsADragThatEscapeTakesBack) {
    LookFromTheSideAtHeight15();
    const QPoint arrow = OnArrow();
    Xdotool("mousemove " + At(arrow) + " mousedown 1 mousemove " + At(arrow + QPoint(0, -20)));
    ASSERT_TRUE(WaitUntil([&] { return Fields()[2] == 17; })) << Fields()[2];
    WaitForViewerFocus();
    Xdotool("key Escape");
    EXPECT_TRUE(WaitUntil([&] { return Fields()[2] == 15; })) << Fields()[2];
    Xdotool("mouseup 1");
}

TEST_F(MainWindowClip, HasNotBeenMovedByADragThatEscapeTakesBack) {
    On().click();
    m_window->ShowView(KV_ScenePane::ViewFromMinusYZUp);
    const QPoint arrow = OnArrow();
    Xdotool("mousemove " + At(arrow) + " mousedown 1 mousemove " + At(arrow + QPoint(0, -20)));
    ASSERT_TRUE(WaitUntil([&] { return Fields()[2] == 12; })) << Fields()[2];
    EXPECT_TRUE(Settings().moved);
    WaitForViewerFocus();
    Xdotool("key Escape");
    EXPECT_TRUE(WaitUntil([&] { return Fields()[2] == 10; })) << Fields()[2];
    Xdotool("mouseup 1");
    EXPECT_FALSE(Settings().moved) << "the next scene is to place it";
}

TEST_F(MainWindowClip, FollowsADragWithCtrlThatTiltsIt) {
    LookFromTheSideAtHeight15();
    Xdotool("mousemove " + At(Middle()) + " keydown ctrl mousedown 1 mousemove " + At(Middle() + QPoint(0, 40)) +
            " mousemove " + At(Middle() + QPoint(0, 80)));
    EXPECT_TRUE(WaitUntil([&] { return Fields()[5] < 0.99; })) << "the normal in the fields is that of the viewer";
    Xdotool("mouseup 1 keyup ctrl");
    WaitForInput();
    ExpectFieldsOfTheViewer();
    EXPECT_TRUE(Settings().moved);
}

TEST_F(MainWindowClip, FollowsTheArrowKeysOfTheViewer) {
    LookFromTheSideAtHeight15();
    Xdotool("mousemove " + At(Middle()) + " click 1");
    TypeInViewer("Up");
    EXPECT_EQ(Fields()[2], 16);
    TypeInViewer("Down");
    TypeInViewer("Down");
    EXPECT_EQ(Fields()[2], 14);
}

// The press of Ctrl draws the highlighted plane; the letter and the release of Ctrl arrive during that frame.
TEST_F(MainWindowClip, ShownLeavesShortcutsWithCtrlThatAreTypedFast) {
    constexpr std::int32_t kSide = 500;
    std::vector<float> vertices;
    std::vector<std::int32_t> triangles;
    vertices.reserve(std::size_t{3} * kSide * kSide);
    triangles.reserve(std::size_t{6} * kSide * kSide);
    for (std::int32_t i = 0; i < kSide * kSide; ++i) {
        const auto x = static_cast<float>(i % kSide), y = static_cast<float>(i / kSide);
        vertices.insert(vertices.end(), {x, y, 16});
        if (i % kSide + 1 == kSide || i / kSide + 1 == kSide) continue;
        triangles.insert(triangles.end(), {i, i + 1, i + kSide + 1, i, i + kSide + 1, i + kSide});
    }
    Methods().ImportMeshFromMemory(static_cast<std::int32_t>(vertices.size() / 3),
                                   static_cast<std::int32_t>(triangles.size() / 3), vertices.data(), triangles.data());
    LookFromTheSideAtHeight15();
    m_window->ShowView(KV_ScenePane::ViewFromPlusZYUp);
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForInput();
    for (const int mode : {1, 2, 3, 1, 2}) {
        // In the background: the window must be handling events when the keys arrive.
        ASSERT_EQ(std::system(("xdotool key ctrl+" + std::to_string(mode) + " &").c_str()), 0);
        EXPECT_TRUE(WaitUntil([&] { return Methods().GetDrawMode() == mode; })) << mode;
    }
}

TEST_F(MainWindowClip, IsPlacedAtTheDataByADoubleClickWithCtrl) {
    LookFromTheSideAtHeight15();
    EXPECT_TRUE(Settings().moved);
    CtrlDoubleClick();
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_FALSE(Settings().moved);
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
}

TEST_F(MainWindowClip, IsPlacedByADoubleClickWithCtrlWhereItIs) {
    LookFromTheSideAtHeight15();
    CtrlDoubleClick();
    Number("clipCenterZ").setValue(9);
    Number("clipCenterZ").setValue(10);
    EXPECT_TRUE(Settings().moved);
    CtrlDoubleClick();
    EXPECT_FALSE(Settings().moved) << "the plane does not change, and is placed at the data";
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
}

TEST_F(MainWindowClip, HasBeenMovedWhenTheHeightOfTheDataIsTyped) {
    On().click();
    Trigger("Flipped: left moves, right turns");
    CtrlDoubleClick();  // places nothing with flipped buttons
    Number("clipCenterZ").setValue(9);
    Number("clipCenterZ").setValue(10);
    m_window->Clip().FollowViewer();
    EXPECT_TRUE(Settings().moved);
}

TEST_F(MainWindowClip, IsPlacedByAMiddleClickWithCtrlInTheDelayedScheme) {
    LookFromTheSideAtHeight15();
    Trigger("Delayed: right turns, both move, left picks");
    Xdotool("mousemove " + At(Middle()) + " keydown ctrl mousedown 2");
    EXPECT_TRUE(WaitUntil([&] { return Fields()[2] == 10; })) << Fields()[2];
    Xdotool("mouseup 2 keyup ctrl");
    EXPECT_FALSE(Settings().moved);
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
}

// ---- placement

TEST_F(MainWindowClip, IsPlacedAtTheDataByItsButton) {
    Number("clipCenterZ").setValue(-300);
    Press("clipPlace");
    EXPECT_TRUE(On().isChecked());
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_FALSE(HandlePixels().empty());
}

TEST_F(MainWindowClip, IsPlacedAtTheDataWhileItIsHidden) {
    On().click();
    Shown().click();
    Number("clipCenterZ").setValue(-300);
    Press("clipPlace");
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_EQ(Center()[2], 10.0f);
    EXPECT_TRUE(HandlePixels().empty());
    EXPECT_EQ(ObjectPixels().left, 0);
}

TEST_F(MainWindowClip, SaysThatNoHeightWasFound) {
    // Nothing but surfaces that face down: neither of the two weights counts them.
    const std::string text =
        PlyHeader(8, 4) + "0 0 0\n0 100 0\n40 100 0\n40 0 0\n60 0 20\n60 100 20\n100 100 20\n100 0 20\n";
    WriteText(m_folder / "down.ply", text + "3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n");
    m_window->ClearScene();
    Import({m_folder / "down.ply"});
    Press("clipPlace");
    EXPECT_EQ(Center(), (Point{50, 50, -20}));
    for (const std::string& said : {Text(), StatusText(), Messages()})
        EXPECT_NE(said.find("No height was found in the data: the clip plane is at z = -20."), std::string::npos)
            << said;
    Number("clipCenterZ").setValue(5);
    EXPECT_EQ(Text(), "") << "the plane is somewhere else";
    Press("clipPlace");
    EXPECT_NE(Text(), "");
    On().click();
    EXPECT_EQ(Text(), "");
    On().click();
    m_window->ShowView(KV_ScenePane::ViewFromMinusYZUp);
    m_window->Messages().clear();
    CtrlDoubleClick();
    TypeInViewer("Up");
    EXPECT_EQ(Fields()[2], -19);
    EXPECT_EQ(Text(), "");
    TypeInViewer("Down");
    EXPECT_EQ(Fields()[2], -20);
    EXPECT_EQ(Text(), "") << "this was no placement";
    EXPECT_EQ(Messages(), "") << "of the placement where the plane was, and of the keys";
}

TEST_F(MainWindowClip, SaysWhyItCannotBePlacedAndClipsWhereItIs) {
    m_window->ClearScene();
    Import({m_folder / "level.ply"});
    Number("clipCenterZ").setValue(7);
    Press("clipPlace");
    EXPECT_EQ(Center()[2], 7.0f);
    EXPECT_TRUE(On().isChecked());
    const std::string reason = PlacementError();
    for (const std::string& said : {Text(), StatusText(), Messages()}) {
        EXPECT_NE(said.find("laced at the data: " + reason), std::string::npos) << said;
    }
    EXPECT_NE(StatusText().find(reason + ". Clipping is on, and the plane is where it was."), std::string::npos);
    EXPECT_GT(reason.size(), 5u) << reason;
    Shown().click();
    EXPECT_EQ(ObjectPixels().left + ObjectPixels().right, 0) << "the plane is above the square and keeps what is above";
    Number("clipCenterZ").setValue(3);
    EXPECT_GT(ObjectPixels().left, 1000);
}

TEST_F(MainWindowClip, IsShownOnTheScreenWhenItCannotBePlaced) {
    m_window->ClearScene();
    Import({m_folder / "level.ply"});
    Number("clipCenterZ").setValue(7);
    const auto onScreen = [&] {
        const QPoint at = Middle();
        return m_viewer->screen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage().pixel(0, 0) & 0xFFFFFF;
    };
    ASSERT_TRUE(WaitUntil([&] { return onScreen() != kBackground; }));
    const QRgb square = onScreen();
    Press("clipPlace");
    EXPECT_TRUE(WaitUntil([&] { return onScreen() != square; })) << "the plane is between the eye and the square";
}

TEST_F(MainWindowClip, SurvivesAnExceptionOfTheViewerAndShowsIt) {
    m_window->ClearScene();
    Import({m_folder / "level.ply"});
    On().click();
    Number("clipCenterZ").setValue(3);
    m_window->Messages().clear();
    const std::string reason = PlacementError();
    CtrlDoubleClick();
    const std::string expected = "The viewer could not finish what was asked for: " + reason;
    EXPECT_NE(Messages().find(expected), std::string::npos) << Messages();
    EXPECT_NE(StatusText().find(expected), std::string::npos) << StatusText();
    EXPECT_EQ(Center()[2], 3.0f);
    CtrlDoubleClick();
    EXPECT_NE(Messages().find(expected, Messages().find(expected) + 1), std::string::npos) << "the second one as well";
    TypeInViewer("Up");
    EXPECT_EQ(Fields()[2], 4) << "the viewer goes on working";
}

}  // namespace
