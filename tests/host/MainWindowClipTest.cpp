// The pane of the clip plane and the viewer: each follows what the user does in the other.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <array>
#include <cmath>
#include <exception>
#include <vector>

#include "ClipPanel.h"
#include "ColorButton.h"
#include "NumberBox.h"
#include "host/ClipScene.h"
#include "host/PointerFixture.h"

namespace {

using Point = std::array<float, 3>;

/// Two squares at the heights 0 and 20, seen from +Z with x to the right unless a test looks from elsewhere.
class MainWindowClip : public PointerFixture {
protected:
    void SetUp() override {
        ForgetStoredClip();
        WriteTwoLevels(m_folder / "levels.ply");
        WriteOneLevel(m_folder / "level.ply");
        StartWindow();
        Import({m_folder / "levels.ply"});
        ASSERT_EQ(ObjectsInViewer(), 1) << Messages();
        m_window->ShowView(KV_ScenePane::ViewFromPlusZYUp);
    }
    void TearDown() override {
        m_window.reset();
        ForgetStoredClip();
    }
    void StartWindow() {
        PointerFixture::SetUp();
        Find<QDockWidget>("clip").raise();
    }
    /// Ends the window and starts another one with an empty scene.
    void Restart() {
        m_window.reset();
        StartWindow();
    }

    [[nodiscard]] QCheckBox& On() const { return Find<QCheckBox>("clipOn"); }
    [[nodiscard]] QCheckBox& Shown() const { return Find<QCheckBox>("clipShown"); }
    [[nodiscard]] NumberBox& Number(const char* name) const { return Find<NumberBox>(name); }
    void Press(const char* name) const { Find<QPushButton>(name).click(); }
    [[nodiscard]] std::string Text() const { return Find<QLabel>("clipText").text().toStdString(); }
    [[nodiscard]] std::string StatusText() const { return m_window->statusBar()->currentMessage().toStdString(); }
    [[nodiscard]] const ClipSettings& Settings() const { return m_window->Clip().Settings(); }

    /// Centre and normal of the viewer.
    [[nodiscard]] std::array<float, 6> InViewer() const {
        std::array<float, 6> p{};
        Methods().GetClipPlane(&p[0], &p[1], &p[2], &p[3], &p[4], &p[5]);
        return p;
    }
    [[nodiscard]] Point Center() const { return {InViewer()[0], InViewer()[1], InViewer()[2]}; }
    /// Without the rounding of the viewer's rotation.
    [[nodiscard]] Point Normal() const {
        Point normal{InViewer()[3], InViewer()[4], InViewer()[5]};
        for (float& part : normal) part = std::round(part * 1e6f) / 1e6f + 0.0f;
        return normal;
    }
    /// The numbers of the fields: centre, normal.
    [[nodiscard]] std::array<double, 6> Fields() const {
        return {Number("clipCenterX").value(), Number("clipCenterY").value(), Number("clipCenterZ").value(),
                Number("clipNormalX").value(), Number("clipNormalY").value(), Number("clipNormalZ").value()};
    }
    /// The fields have the numbers of the viewer, to their digits.
    void ExpectFieldsOfTheViewer() const {
        const auto fields = Fields();
        const auto viewer = InViewer();
        for (std::size_t i = 0; i < fields.size(); ++i)
            EXPECT_NEAR(fields[i], static_cast<double>(viewer[i]), 1e-4) << "number " << i;
    }

    /// Pixels of objects in the left and the right half of a frame; not while the plane is drawn.
    struct Halves {
        int left = 0, right = 0;
    };
    [[nodiscard]] Halves ObjectPixels() const {
        const KV_ScenePane::Picture frame = DrawFrame();
        Halves count;
        for (std::size_t i = 0; i < frame.pixels.size(); ++i) {
            if ((frame.pixels[i] & 0xFFFFFF) == kBackground) continue;
            const bool isLeft = static_cast<int>(i) % frame.width < frame.width / 2;
            ++(isLeft ? count.left : count.right);
        }
        return count;
    }
    /// The pixels that change with the colour of the handles.
    [[nodiscard]] std::vector<QPoint> HandlePixels() const {
        const auto draw = [&](std::int32_t color) {
            emit Find<ColorButton>("clipHandleColor").ColorChosen(color);
            return DrawFrame();
        };
        const KV_ScenePane::Picture red = draw(0x0000FF), green = draw(0x00FF00);
        std::vector<QPoint> pixels;
        for (std::size_t i = 0; i < red.pixels.size(); ++i) {
            const int index = static_cast<int>(i);
            if (red.pixels[i] != green.pixels[i]) pixels.emplace_back(index % red.width, index / red.width);
        }
        return pixels;
    }
    /// A pixel on the upper arrow, of the desktop. Seen from -Y the arrow is the handle at the right.
    [[nodiscard]] QPoint OnArrow() const {
        const std::vector<QPoint> pixels = HandlePixels();
        if (pixels.empty()) throw std::runtime_error("no handle is drawn");
        int right = 0;
        for (const QPoint& pixel : pixels) right = std::max(right, pixel.x());
        std::vector<QPoint> arrow;
        for (const QPoint& pixel : pixels) {
            if (pixel.x() > right - 30) arrow.push_back(pixel);
        }
        const auto mean = [](const std::vector<QPoint>& of) {
            QPoint sum;
            for (const QPoint& pixel : of) sum += pixel;
            return sum / static_cast<int>(of.size());
        };
        const int middle = mean(arrow).y();
        std::erase_if(arrow, [&](const QPoint& pixel) { return pixel.y() >= middle; });
        return m_viewer->mapToGlobal(mean(arrow));
    }
    /// The plane, shown and 15 above the lower square, seen from the side; moved by the user.
    void LookFromTheSideAtHeight15() const {
        On().click();
        Number("clipCenterZ").setValue(15);
        m_window->ShowView(KV_ScenePane::ViewFromMinusYZUp);
    }
    /// A key that the viewer gets: it must have been pressed before.
    void TypeInViewer(const std::string& key) const {
        WaitForViewerFocus();
        Xdotool("key " + key);
        WaitForInput();
    }
    void CtrlDoubleClick() const {
        Xdotool("mousemove " + At(Middle()) + " keydown ctrl click --repeat 2 --delay 20 1 keyup ctrl");
        WaitForInput();
    }
    /// What the viewer throws when it cannot place the plane.
    [[nodiscard]] std::string PlacementError() const {
        try {
            Methods().SetClipPlaneEnabled(1);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "it threw nothing";
    }
};

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
    EXPECT_EQ(Center(), (Point{50, 50, 3.25f})) << "the viewer places a plane that it is told to show";
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
    Trigger("Centre");
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
    Trigger("Centre");
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

TEST_F(MainWindowClip, IsPlacedAtTheDataByADoubleClickWithCtrl) {
    LookFromTheSideAtHeight15();
    EXPECT_TRUE(Settings().moved);
    CtrlDoubleClick();
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
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
    std::string text = PlyHeader(4, 2);
    WriteText(m_folder / "down.ply", text + "0 0 0\n0 100 0\n100 100 3\n100 0 3\n3 0 1 2\n3 0 2 3\n");
    text = PlyHeader(8, 4) + "0 0 0\n0 100 0\n40 100 0\n40 0 0\n60 0 20\n60 100 20\n100 100 20\n100 0 20\n";
    WriteText(m_folder / "down.ply", text + "3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n");
    m_window->ClearScene();
    Import({m_folder / "down.ply"});
    Press("clipPlace");
    EXPECT_EQ(Center(), (Point{50, 50, -20}));
    for (const std::string& said : {Text(), StatusText(), Messages()})
        EXPECT_NE(said.find("No height was found in the data: the clip plane is at z = -20."), std::string::npos)
            << said;
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
    EXPECT_GT(reason.size(), 5u) << reason;
    Shown().click();
    EXPECT_EQ(ObjectPixels().left + ObjectPixels().right, 0) << "the plane is above the square and keeps what is above";
    Number("clipCenterZ").setValue(3);
    EXPECT_GT(ObjectPixels().left, 1000);
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

// ---- scenes

TEST_F(MainWindowClip, IsPlacedAtTheFirstObjectsOfAScene) {
    m_window->ClearScene();
    On().click();
    EXPECT_NE(StatusText().find("There are no objects"), std::string::npos) << StatusText();
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Fields(), (std::array<double, 6>{50, 50, 10, 0, 0, 1}));
    EXPECT_EQ(Text(), "Height found in the data: 10 (mean of all points)");
    Import({m_folder / "level.ply"});
    EXPECT_EQ(Center()[2], 10.0f) << "later objects do not move it";
}

TEST_F(MainWindowClip, StaysWhereTheUserMovedItInANewScene) {
    On().click();
    Number("clipCenterZ").setValue(15);
    m_window->ClearScene();
    EXPECT_TRUE(On().isChecked());
    Import({m_folder / "levels.ply"});
    EXPECT_EQ(Center()[2], 15.0f);
    EXPECT_NE(Messages().find("levels.ply"), 0u) << "and nothing is said about it";
}

TEST_F(MainWindowClip, WarnsWhenItCutsAwayAllObjects) {
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

TEST_F(MainWindowClip, IsKeptForTheNextStart) {
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

TEST_F(MainWindowClip, IsKeptAsTheMouseLeftIt) {
    LookFromTheSideAtHeight15();
    const QPoint arrow = OnArrow();
    Xdotool("mousemove " + At(arrow) + " mousedown 1 mousemove " + At(arrow + QPoint(0, -20)) + " mouseup 1");
    WaitForInput();
    Restart();
    EXPECT_EQ(Center()[2], 17.0f);
    EXPECT_EQ(Fields()[2], 17);
}

TEST_F(MainWindowClip, IsStoredWhileTheWindowIsOpen) {
    Number("clipCenterZ").setValue(6);
    EXPECT_TRUE(WaitUntil([&] { return StoredClip().center[2] == 6.0f; }));
}

TEST_F(MainWindowClip, ThatNobodyMovedIsPlacedAtTheFirstObjectsAfterAStart) {
    On().click();
    Restart();
    EXPECT_TRUE(On().isChecked());
    EXPECT_EQ(Fields()[2], 10);
    WriteText(m_folder / "higher.ply", PlyHeader(4, 2) + "0 0 40\n9 0 40\n9 9 50\n0 9 50\n3 0 1 2\n3 0 2 3\n");
    Import({m_folder / "higher.ply"});
    EXPECT_NEAR(Fields()[2], 45, 1e-4) << "the mean height of four vertices";
}

TEST_F(MainWindowClip, ReturnsToAFirstStart) {
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

TEST_F(MainWindowClip, IsKeptWhenTheViewerIsLost) {
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
