// Lassos by the pointer and the keys in the host's window: the six ways, their ends, and undo.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QMenu>
#include <QSpinBox>
#include <QToolBar>

#include "AnimationDriver.h"
#include "AnimationPanel.h"
#include "ColorButton.h"
#include "NeedlePanel.h"
#include "host/CutFixture.h"
#include "host/MeshFiles.h"

namespace {

using MainWindowCut = CutFixture;

constexpr QPointF kCentre(0.5, 0.5), kBeside(0.5, 0.35);

TEST_F(MainWindowCut, ShowsBothSheetsAtTheStart) {
    EXPECT_TRUE(IsObjectAt(kCentre));
    EXPECT_TRUE(IsObjectAt(kBeside));
    EXPECT_FALSE(IsObjectAt({0.02, 0.02}));
    EXPECT_EQ(Vertices(0), 3600);
    EXPECT_EQ(Vertices(1), 3600);
    EXPECT_FALSE(m_window->isWindowModified());
}

struct WayCase {
    const char* tool;
    KV_ScenePane::SegmentationMode mode;
    bool isFreehand;
    bool leavesCentre, leavesBeside, cutsBack;
};
void PrintTo(const WayCase& way, std::ostream* out) { *out << way.tool; }

const WayCase kWays[] = {
    {"cutPolygonOutside", KV_ScenePane::PolygonOutside, false, true, false, true},
    {"cutPolygonInside", KV_ScenePane::PolygonInside, false, false, true, true},
    {"cutPolygonVisible", KV_ScenePane::PolygonVisible, false, true, true, false},
    {"cutFreehandOutside", KV_ScenePane::FreehandOutside, true, true, false, true},
    {"cutFreehandInside", KV_ScenePane::FreehandInside, true, false, true, true},
    {"cutFreehandVisible", KV_ScenePane::FreehandVisible, true, true, true, false},
};

class MainWindowCutWay : public CutFixture, public testing::WithParamInterface<WayCase> {
protected:
    void ExpectItsResult() const {
        EXPECT_EQ(IsObjectAt(kCentre), GetParam().leavesCentre);
        EXPECT_EQ(IsObjectAt(kBeside), GetParam().leavesBeside);
        EXPECT_LT(Vertices(0), 3600) << "the front sheet";
        EXPECT_EQ(Vertices(1) < 3600, GetParam().cutsBack) << "the sheet behind it";
        ExpectListOfTheViewer();
        EXPECT_EQ(UndoText(), "Undo cut (1)");
        EXPECT_TRUE(m_window->isWindowModified());
        EXPECT_FALSE(HintIsShown());
        EXPECT_FALSE(Tool(GetParam().tool).isChecked());
        EXPECT_EQ(StatusText().substr(0, 5), "Cut: ") << StatusText();
    }
};

TEST_P(MainWindowCutWay, CutsByClicks) {
    Start(GetParam().tool);
    EXPECT_TRUE(HintIsShown());
    EXPECT_TRUE(Tool(GetParam().tool).isChecked());
    Click({kMiddle[0], kMiddle[1], kMiddle[2]});
    EXPECT_TRUE(IsRunning());
    RightClick(kMiddle[3]);
    EXPECT_FALSE(IsRunning());
    ExpectItsResult();
}

TEST_P(MainWindowCutWay, CutsByAStrokeAndClicks) {
    if (!GetParam().isFreehand) GTEST_SKIP() << "a polygon is not drawn by strokes";
    Start(GetParam().tool);
    Stroke({{0.45, 0.45}, {0.5, 0.45}, {0.55, 0.45}, {0.55, 0.5}});
    Click({{0.55, 0.55}});
    RightClick({0.45, 0.55});
    EXPECT_FALSE(IsRunning());
    ExpectItsResult();
}

TEST_P(MainWindowCutWay, RemovesWhatTheSameLassoRemovesByACall) {
    Cut(GetParam().tool);
    const std::vector<int> byPointer{Vertices(0), Vertices(1)};
    Tool("cutUndo").trigger();
    ASSERT_EQ(Vertices(0), 3600);
    // The pixels that the pointer was at.
    Corners pixels;
    for (const QPointF& corner : kMiddle)
        pixels.push_back({QPointF(corner.x() * m_viewer->width(), corner.y() * m_viewer->height()).toPoint()});
    for (QPointF& pixel : pixels) pixel = {pixel.x() / m_viewer->width(), pixel.y() / m_viewer->height()};
    ASSERT_TRUE(CutByCall(GetParam().mode, pixels));
    EXPECT_EQ((std::vector<int>{Vertices(0), Vertices(1)}), byPointer);
}

INSTANTIATE_TEST_SUITE_P(Ways, MainWindowCutWay, testing::ValuesIn(kWays),
                         [](const auto& row) { return std::string(row.param.tool); });

TEST_F(MainWindowCut, StartsByKeysWhateverHasTheKeyboard) {
    const struct {
        const char* key;
        const char* tool;
    } kKeys[] = {{"o", "cutPolygonOutside"},       {"i", "cutPolygonInside"},
                 {"v", "cutPolygonVisible"},       {"shift+o", "cutFreehandOutside"},
                 {"shift+i", "cutFreehandInside"}, {"shift+v", "cutFreehandVisible"}};
    const auto tryAll = [&](const std::string& focus) {
        for (const auto& [key, tool] : kKeys) {
            Xdotool(std::string("key ") + key);
            EXPECT_TRUE(WaitUntil([&] { return Tool(tool).isChecked(); })) << key << " in " << focus;
            EXPECT_TRUE(HintIsShown());
            Xdotool("key Escape");
            EXPECT_TRUE(WaitUntil([&] { return !IsRunning(); })) << key << " in " << focus;
            EXPECT_FALSE(Tool(tool).isChecked());
            EXPECT_EQ(StatusText(), "Nothing was cut.");
        }
    };
    Xdotool("mousemove " + Pixel({0.5, 0.5}) + " click 1");
    WaitForViewerFocus();
    tryAll("the viewer");
    ClickOn(m_window->Messages());
    tryAll("the messages");
    EXPECT_EQ(Steps(), 0);
}

TEST_F(MainWindowCut, IsCancelledByEscapeInTheViewerAndElsewhere) {
    Start("cutPolygonInside");
    Click({kMiddle[0], kMiddle[1], kMiddle[2]});
    Xdotool("key Escape");
    ASSERT_TRUE(WaitUntil([&] { return !IsRunning(); }));
    Start("cutFreehandInside");
    Click({kMiddle[0], kMiddle[1], kMiddle[2]});
    Find<QToolBar>("mainTools").hide();                // the others have space for all of their tools
    auto& box = Find<QSpinBox>("lassoOpacityInside");  // an input of the window has the keyboard
    ClickOn(box);
    ASSERT_TRUE(WaitUntil([&] { return box.hasFocus(); }));
    Xdotool("key Escape");
    ASSERT_TRUE(WaitUntil([&] { return !IsRunning(); }));
    EXPECT_FALSE(HintIsShown());
    EXPECT_EQ(Steps(), 0);
    EXPECT_EQ(Vertices(0), 3600);
    EXPECT_FALSE(m_window->isWindowModified());
    Start("cutPolygonInside");
    Tool("cutCancel").trigger();
    EXPECT_FALSE(IsRunning());
}

TEST_F(MainWindowCut, ChangesTheWayOfALassoThatRuns) {
    Start("cutPolygonInside");
    Click({kMiddle[0], kMiddle[1]});
    Tool("cutFreehandOutside").trigger();
    EXPECT_TRUE(Tool("cutFreehandOutside").isChecked());
    EXPECT_FALSE(Tool("cutPolygonInside").isChecked());
    EXPECT_TRUE(HintIsShown());
    Tool("cutFreehandOutside").trigger();  // its own tool again
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(Tool("cutFreehandOutside").isChecked());
}

TEST_F(MainWindowCut, SaysThatNothingWasCut) {
    Cut("cutPolygonInside", {{0.01, 0.01}, {0.05, 0.01}, {0.05, 0.05}});
    EXPECT_EQ(StatusText(), "Nothing was cut.");
    EXPECT_EQ(UndoText(), "Undo");
    EXPECT_FALSE(m_window->isWindowModified());
}

TEST_F(MainWindowCut, NeedsAnObject) {
    m_window->ClearScene();
    Tool("cutPolygonInside").trigger();
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(Tool("cutPolygonInside").isChecked());
    EXPECT_EQ(StatusText(), "There is no object to cut.");
}

TEST_F(MainWindowCut, EndsWithTheToolReleasedHoweverTheViewerEndsIt) {
    Start("cutPolygonInside");
    Methods().EndSegmentation();
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(Tool("cutPolygonInside").isChecked());
    Start("cutFreehandInside");
    Click({kMiddle[0]});
    m_window->ClearScene();
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(Tool("cutFreehandInside").isChecked());
    EXPECT_FALSE(HintIsShown());
    Import({m_folder / "front.pcm"});
    Start("cutPolygonOutside");
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() == nullptr; }));
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(HintIsShown());
    EXPECT_FALSE(Tool("cutPolygonOutside").isChecked());
    EXPECT_FALSE(Tool("cutPolygonOutside").isEnabled());
}

TEST_F(MainWindowCut, KeepsAllOtherUsesOfTheSceneAwayFromALasso) {
    const QStringList others{"Clear",  "Open...", "Fit the view", "From +Z, Y up", "Export selected object...",
                             "Shadows"};
    for (const QString& other : others) EXPECT_TRUE(MenuAction(other).isEnabled()) << other.toStdString();
    Start("cutPolygonInside");
    for (const QString& other : others) EXPECT_FALSE(MenuAction(other).isEnabled()) << other.toStdString();
    EXPECT_FALSE(m_window->Objects().isEnabled());
    EXPECT_TRUE(m_window->Messages().isEnabled());
    EXPECT_FALSE(Tool("cutSave").isEnabled());
    Tool("cutCancel").trigger();
    for (const QString& other : others) EXPECT_TRUE(MenuAction(other).isEnabled()) << other.toStdString();
    EXPECT_TRUE(m_window->Objects().isEnabled());
}

TEST_F(MainWindowCut, OpensFilesOnlyAfterTheLasso) {
    WriteStl(m_folder / "part.stl");
    Start("cutPolygonInside");
    m_window->OpenFiles({m_folder / "part.stl"});
    EXPECT_FALSE(m_window->IsImporting());
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    Tool("cutCancel").trigger();
    ASSERT_TRUE(WaitUntil([&] { return m_window->HaveAllFilesAdded() && !m_window->IsImporting(); }));
    EXPECT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm", "part.stl"}));
    m_window->OpenFiles({m_folder / "part.stl"});
    ASSERT_TRUE(m_window->IsImporting());
    EXPECT_FALSE(Tool("cutPolygonInside").isEnabled()) << "no lasso during an import";
    WaitForImports();
    EXPECT_TRUE(Tool("cutPolygonInside").isEnabled());
}

TEST_F(MainWindowCut, TakesTwoQuickPressesAtOnePlaceAsTwoCorners) {
    const auto view = View();
    Find<QCheckBox>("needleCreate").click();
    Start("cutPolygonInside");
    Xdotool("mousemove " + Pixel(kMiddle[0]) + " click --repeat 2 --delay 10 1");
    Click({kMiddle[1], kMiddle[2]});
    EXPECT_TRUE(IsRunning());
    EXPECT_EQ(View(), view) << "a double click fits the view";
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 0) << "a double click creates a needle";
    RightClick(kMiddle[3]);
    EXPECT_EQ(Steps(), 1);
    EXPECT_FALSE(IsObjectAt(kCentre));
    EXPECT_NE(Methods().GetNeedlePickingMode(), 0) << "as before the lasso";
}

TEST_F(MainWindowCut, DoesNotDragANeedle) {
    m_window->Needles().SwitchCreation(true);
    ASSERT_NE(Methods().CreateNeedle(1, 30, 30, 0, 30, 30, -10), 0);
    Methods().SelectNeedle(1);
    std::array<float, 6> before{}, after{};
    (void)Methods().GetNeedle(1, &before[0], &before[1], &before[2], &before[3], &before[4], &before[5]);
    Start("cutFreehandInside");
    Stroke({{0.45, 0.45}, {0.55, 0.45}, {0.55, 0.55}});
    RightClick({0.45, 0.55});
    (void)Methods().GetNeedle(1, &after[0], &after[1], &after[2], &after[3], &after[4], &after[5]);
    EXPECT_EQ(after, before);
    EXPECT_EQ(Steps(), 1);
    m_window->Needles().SwitchCreation(false);
    Methods().DeleteNeedles();
}

TEST_F(MainWindowCut, OpensNoPickMenuWithItsRightClick) {
    m_window->ChoosePickMode(KV_ScenePane::PickModePoints);
    Xdotool("mousemove " + Pixel(kCentre) + " click --repeat 2 --delay 10 1");
    WaitForInput();
    ASSERT_EQ(Methods().GetNumberOfPickPointSpheres(), 1);
    Cut("cutPolygonInside");
    EXPECT_EQ(Steps(), 1);
    EXPECT_EQ(m_window->findChild<QMenu*>("pickMenu"), nullptr);
    EXPECT_EQ(Methods().GetNumberOfPickPointSpheres(), 1) << "points that were picked stay";
    RightClick(kCentre);  // the menu works again
    EXPECT_TRUE(WaitUntil([&] { return m_window->findChild<QMenu*>("pickMenu") != nullptr; }));
    m_window->findChild<QMenu*>("pickMenu")->close();
}

TEST_F(MainWindowCut, WorksInTheDelayedScheme) {
    m_window->ChooseMouseScheme(MouseScheme::Delayed);
    Cut("cutPolygonInside");
    EXPECT_EQ(Steps(), 1);
    EXPECT_FALSE(IsObjectAt(kCentre));
    // The scheme is as before: the right button turns.
    const auto view = View();
    Drag("3", {90, 0});
    EXPECT_TRUE(WaitUntil([&] { return View() != view; }));
}

TEST_F(MainWindowCut, KeepsTheSwitchOfTheSpaceBar) {
    auto& spacebar = Find<QCheckBox>("animationSpacebar");
    const auto turnsAfterSpace = [&] {
        const auto count = [&] { return m_window->Events().Text().count("CustomKeyDown(nChar = 32,"); };
        const auto before = count();
        Xdotool("key space");
        EXPECT_TRUE(WaitUntil([&] { return count() > before; }));
        return m_window->findChild<AnimationPanel*>()->Driver().IsDriving();
    };
    ASSERT_FALSE(spacebar.isChecked());
    Cut("cutPolygonInside");
    EXPECT_FALSE(turnsAfterSpace());
    spacebar.click();
    Start("cutPolygonInside");
    Click({kCentre});
    EXPECT_FALSE(turnsAfterSpace()) << "during the lasso";
    Tool("cutCancel").trigger();
    EXPECT_TRUE(turnsAfterSpace());
    Start("cutPolygonInside");
    EXPECT_TRUE(WaitUntil([&] { return !m_window->findChild<AnimationPanel*>()->Driver().IsDriving(); }))
        << "the scene stands still during a lasso";
}

TEST_F(MainWindowCut, IsTakenBackStepByStep) {
    Cut("cutPolygonInside");
    const int afterFirst = Vertices(0);
    Cut("cutPolygonInside", {{0.45, 0.3}, {0.55, 0.3}, {0.55, 0.4}});
    EXPECT_EQ(UndoText(), "Undo cut (2)");
    EXPECT_LT(Vertices(0), afterFirst);
    Xdotool("key ctrl+z");  // the viewer has the keyboard
    ASSERT_TRUE(WaitUntil([&] { return UndoText() == "Undo cut (1)"; }));
    EXPECT_EQ(Vertices(0), afterFirst);
    EXPECT_TRUE(m_window->isWindowModified());
    EXPECT_EQ(StatusText(), "The cut was taken back; 1 can be taken back, too.");
    ClickOn(m_window->Messages());
    Xdotool("key ctrl+z");
    ASSERT_TRUE(WaitUntil([&] { return UndoText() == "Undo"; }));
    EXPECT_EQ(Vertices(0), 3600);
    EXPECT_TRUE(IsObjectAt(kCentre));
    EXPECT_FALSE(m_window->isWindowModified());
    EXPECT_FALSE(Tool("cutUndo").isEnabled());
    ExpectListOfTheViewer();
}

TEST_F(MainWindowCut, RestoresTheListWithTheObjectsOfTheCut) {
    WriteStl(m_folder / "part.stl");
    Import({m_folder / "part.stl"});  // an object without a name in the viewer
    ASSERT_TRUE(CutByCall());
    m_window->ColorObject(1, 0x123456);
    m_window->ShowObject(1, false);
    m_window->Objects().topLevelItem(1)->setCheckState(ObjectList::kName, Qt::Unchecked);
    m_window->Objects().setCurrentItem(m_window->Objects().topLevelItem(1));
    m_window->DeleteObject(0);
    Import(ManyPcms(1));
    ASSERT_EQ(Rows(), (std::vector<std::string>{"back.pcm", "part.stl", "0.pcm"}));
    {
        const DialogAnswer<FileListDialog> answer([](FileListDialog& dialog) {
            EXPECT_NE(dialog.Text().indexOf("also removes what was opened after it:\n0.pcm"), -1)
                << dialog.Text().toStdString();
            dialog.Press(QDialogButtonBox::Cancel);
        });
        Tool("cutUndo").trigger();
        EXPECT_TRUE(answer.WasShown());
        EXPECT_EQ(Rows().size(), 3u) << "cancelled";
        EXPECT_EQ(Steps(), 1);
    }
    const DialogAnswer<FileListDialog> answer([](FileListDialog& dialog) { dialog.Press(QDialogButtonBox::Yes); });
    Tool("cutUndo").trigger();
    EXPECT_TRUE(answer.WasShown());
    EXPECT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm", "part.stl"}));
    ExpectListOfTheViewer();
    EXPECT_EQ(Vertices(0), 3600);
    EXPECT_EQ(m_window->Objects().indexOfTopLevelItem(m_window->Objects().currentItem()), 1) << "still back.pcm";
    EXPECT_TRUE(m_window->Objects().IsHidden(1));
    EXPECT_FALSE(m_window->Objects().IsHidden(0));
    EXPECT_NE(StatusText().find("Removed, because opened after the cut: 0.pcm"), std::string::npos) << StatusText();
    EXPECT_NE(Messages().find("Removed, because opened after the cut: 0.pcm"), std::string::npos) << Messages();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(static_cast<ColorButton*>(
                      m_window->Objects().itemWidget(m_window->Objects().topLevelItem(i), ObjectList::kColor))
                      ->Packed(),
                  Methods().GetObjectColor(static_cast<std::int16_t>(i)));
}

// The viewer announces a cut before it makes an undo step, which may fail.
TEST_F(MainWindowCut, RestoresTheListAlsoAfterAnAnnouncedCutThatFailed) {
    WriteStl(m_folder / "part.stl");
    Import({m_folder / "part.stl"});  // only the list has its name
    ASSERT_TRUE(CutByCall());
    m_window->DeleteObject(2);
    m_window->Cuts().OnCutAboutToApply();
    m_window->Cuts().OnLassoEnded(-1);
    Tool("cutUndo").trigger();
    EXPECT_EQ(Rows(), (std::vector<std::string>{"front.pcm", "back.pcm", "part.stl"}));
    ExpectListOfTheViewer();
}

TEST_F(MainWindowCut, ShowsEachObjectAsTheListSaysAfterAnUndo) {
    ASSERT_TRUE(CutByCall());
    const auto hide = [&](int row) {
        m_window->Objects().topLevelItem(row)->setCheckState(ObjectList::kName, Qt::Unchecked);
    };
    hide(0);
    hide(1);
    EXPECT_FALSE(IsObjectAt(kBeside));
    Tool("cutUndo").trigger();
    EXPECT_TRUE(m_window->Objects().IsHidden(0));
    EXPECT_TRUE(m_window->Objects().IsHidden(1));
    EXPECT_FALSE(IsObjectAt(kBeside)) << "the restored objects were visible when they were cut";
}

TEST_F(MainWindowCut, KeepsTheNamesOfPickedObjects) {
    ASSERT_TRUE(CutByCall());
    m_window->ChoosePickMode(KV_ScenePane::PickModePoints);
    const KV_ScenePane::Picture frame = DrawFrame();
    m_window->Pane()->SendMouse({.kind = KV_ScenePane::MouseInput::Kind::DoubleClick,
                                 .flags = KV_ScenePane::kMouseLeft,
                                 .x = frame.width / 2,
                                 .y = static_cast<int>(frame.height * 0.35)});
    ASSERT_EQ(Methods().GetNumberOfPickPointSpheres(), 1);
    const auto object = [&] { return Find<QLabel>("lastPick").text().toStdString(); };
    EXPECT_EQ(object().substr(0, 10), "front.pcm:") << object();
    m_window->DeleteObject(1);
    Tool("cutUndo").trigger();
    EXPECT_EQ(object().substr(0, 10), "front.pcm:") << object();
    m_window->ChoosePickMode(KV_ScenePane::PickModeOff);
}

TEST_F(MainWindowCut, RemembersColoursAndOpacitiesAtTheNextStart) {
    emit Find<ColorButton>("lassoColorInside").ColorChosen(0x00FF00);
    Find<QSpinBox>("lassoOpacityOutside").setValue(40);
    m_window.reset();
    PointerFixture::SetUp();
    EXPECT_EQ(Find<ColorButton>("lassoColorInside").Packed(), 0x00FF00);
    EXPECT_EQ(Find<QSpinBox>("lassoOpacityInside").value(), 50);
    EXPECT_EQ(Find<ColorButton>("lassoColorOutside").Packed(), 0);
    EXPECT_EQ(Find<QSpinBox>("lassoOpacityOutside").value(), 40);
}

TEST_F(MainWindowCut, TintsAFreehandLassoWithItsColoursAlsoWithThoseThatTheViewerRefuses) {
    emit Find<ColorButton>("lassoColorInside").ColorChosen(0x00FF00);
    Find<QSpinBox>("lassoOpacityInside").setValue(100);
    Start("cutFreehandInside");
    Click({kMiddle[0], kMiddle[1], kMiddle[2], kMiddle[3]});
    EXPECT_EQ(PixelAt(kCentre), 0x00FF00u);
    Tool("cutCancel").trigger();
    for (const std::int32_t refused : {0x0000FF, 0xFFFF00}) {  // red without opacity, opaque cyan
        emit Find<ColorButton>("lassoColorInside").ColorChosen(refused);
        Find<QSpinBox>("lassoOpacityInside").setValue(refused == 0x0000FF ? 0 : 100);
        Cut("cutFreehandInside");
        EXPECT_EQ(Steps(), 1) << std::hex << refused << Messages();
        EXPECT_EQ(Messages().find("color"), std::string::npos) << Messages();
        Tool("cutUndo").trigger();
    }
}

TEST_F(MainWindowCut, FollowsAWindowThatIsResizedMeanwhile) {
    Start("cutFreehandInside");
    Click({kMiddle[0], kMiddle[1]});
    const QSize before = m_viewer->size();
    m_window->resize(m_window->width() - 80, m_window->height() - 60);
    ASSERT_TRUE(WaitUntil([&] { return m_viewer->width() != before.width(); }));
    Click({kMiddle[2]});
    RightClick(kMiddle[3]);
    EXPECT_EQ(Steps(), 1);
    EXPECT_FALSE(IsObjectAt(kCentre));
    EXPECT_TRUE(IsObjectAt(kBeside));
}

}  // namespace
