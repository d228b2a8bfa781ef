// Alignments by the pointer and the keys in the host's window: both ways, their hints, keys and ends.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <cmath>

#include "AnimationDriver.h"
#include "AnimationPanel.h"
#include "ColorButton.h"
#include "NeedlePanel.h"
#include "host/AlignFixture.h"
#include "host/MeshFiles.h"

namespace {

using MainWindowAlign = AlignFixture;

constexpr Matrix4 kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// ---- by points

TEST_F(MainWindowAlign, MovesTheScanOntoThePickedPoints) {
    StartAlign("alignByPoints");
    EXPECT_EQ(Progress(), (AlignProgress{Phase::PickMoving, 0, 0}));
    Click(kThree);
    EXPECT_EQ(Progress(), (AlignProgress{Phase::PickMoving, 3, 0}));
    EXPECT_NE(Task().find("3 points"), std::string::npos) << Task();
    Press("space");
    EXPECT_EQ(Progress(), (AlignProgress{Phase::PickFixed, 3, 0}));
    Click({kThree[0]});
    EXPECT_NE(Task().find("point 2 of 3"), std::string::npos) << Task();
    Click({kThree[1], kThree[2]});
    ExpectNothingLeftOfTheAlignment();
    EXPECT_EQ(EndsReported(), 1);
    Matrix4 expected = kIdentity;
    expected[11] = 10.0f;
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(Transform(0)[i], expected[i], 2e-5f) << i;
    EXPECT_EQ(Transform(1), kIdentity);
    EXPECT_EQ(StatusText().substr(0, 36), "Aligned by 3 points: 1 object moved;") << StatusText();
    EXPECT_NE(Messages().find(StatusText()), std::string::npos);
    EXPECT_EQ(Find<QTreeWidget>("residuals").topLevelItemCount(), 3);
    EXPECT_TRUE(Find<QTreeWidget>("residuals").isVisible()) << "the pane is raised";
}

TEST_F(MainWindowAlign, IsTakenBack) {
    AlignByPoints(kThree, kThree);
    ASSERT_NEAR(Transform(0)[11], 10.0f, 1e-4f);
    Tool("takeBackAlignment").trigger();
    EXPECT_NEAR(Transform(0)[11], 0.0f, 1e-4f);
    EXPECT_FALSE(Tool("takeBackAlignment").isEnabled());
}

TEST_F(MainWindowAlign, PicksOnePointByADoubleClickAndTwoByQuickClicksAtTwoPlaces) {
    Find<QCheckBox>("needleCreate").click();
    StartAlign("alignByPoints");
    const auto view = View();
    Xdotool("mousemove " + Pixel(kThree[0]) + " click --repeat 2 --delay 10 1");
    WaitForInput();
    EXPECT_EQ(Progress().moving, 1);
    EXPECT_EQ(View(), view) << "a double click fits the view";
    Xdotool("mousemove " + Pixel(kThree[1]) + " click 1 mousemove " + Pixel(kThree[2]) + " click 1");
    WaitForInput();
    EXPECT_EQ(Progress().moving, 3);
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 0) << "a double click creates a needle";
    Press("Escape");
    EXPECT_NE(Methods().GetNeedlePickingMode(), 0) << "as before the alignment";
}

TEST_F(MainWindowAlign, SaysWhyPointsGiveNoTransform) {
    const QPointF besideAll{0.02, 0.5};  // a press there: the next one is no double click
    AlignByPoints({kThree[0], besideAll, kThree[0]}, {kThree[1], kThree[2]});
    EXPECT_EQ(StatusText(),
              "No transform was found: the points on the moving scans are all at one place. Nothing was moved.");
    EXPECT_EQ(Transform(0), kIdentity);
    EXPECT_FALSE(Tool("takeBackAlignment").isEnabled());
    EXPECT_EQ(Find<QTreeWidget>("residuals").topLevelItemCount(), 2);
    ExpectNothingLeftOfTheAlignment();
    // A result of before is not reported again.
    StartAlign("alignByPoints");
    Press("Escape");
    EXPECT_EQ(StatusText(), "Alignment by points: ended, nothing was moved.");
}

TEST_F(MainWindowAlign, ActsOnItsKeysOnceWhateverHasTheKeyboard) {
    const auto tryAll = [&](const std::string& focus, const std::function<void(const char*)>& press) {
        StartAlign("alignByPoints");
        Click(kThree);
        if (focus != "viewer") ClickOn(m_window->Messages());
        press("Delete");
        EXPECT_TRUE(WaitUntil([&] { return Progress().moving == 2; })) << focus;
        press("space");
        EXPECT_TRUE(WaitUntil([&] { return Progress().phase == Phase::PickFixed; })) << focus;
        EXPECT_EQ(Progress().moving, 2) << focus;
        press("space");  // means nothing in this phase
        press("Delete");
        press("Escape");
        EXPECT_TRUE(WaitUntil([&] { return !IsAligning(); })) << focus;
        EXPECT_EQ(ObjectsInViewer(), 2) << focus << ": Delete deletes the current object of the list";
    };
    m_window->Objects().setCurrentItem(m_window->Objects().topLevelItem(0));
    tryAll("viewer", [&](const char* key) { Press(key); });
    tryAll("messages", [&](const char* key) { Xdotool(std::string("key ") + key); });
    EXPECT_EQ(EndsReported(), 2);
}

TEST_F(MainWindowAlign, GivesTheKeyboardToTheViewerAtTheStart) {
    for (const char* const tool : {"alignByHand", "alignByPoints"}) {
        ClickOn(m_window->Messages());
        Tool(tool).trigger();
        WaitForKeys();
        Xdotool("key Escape");
        EXPECT_TRUE(WaitUntil([&] { return !IsAligning(); })) << tool;
    }
}

TEST_F(MainWindowAlign, KeepsTheSwitchOfTheSpaceBar) {
    const auto turns = [&] { return m_window->findChild<AnimationPanel*>()->Driver().IsDriving(); };
    Find<QCheckBox>("animationSpacebar").click();
    StartAlign("alignByPoints");
    const auto presses = [&] { return m_window->Events().Text().count("CustomKeyDown(nChar = 32,"); };
    const auto before = presses();
    Xdotool("key space");  // and no other key after it, which would stop the turntable
    ASSERT_TRUE(WaitUntil([&] { return presses() > before; }));
    EXPECT_FALSE(turns()) << "during an alignment";
    Press("Escape");
    Xdotool("key space");
    EXPECT_TRUE(WaitUntil(turns)) << "after it, as before";
    StartAlign("alignByHand");
    EXPECT_FALSE(turns()) << "the scene stands still during an alignment";
}

TEST_F(MainWindowAlign, HasTheKeysAsTools) {
    StartAlign("alignByPoints");
    EXPECT_FALSE(Tool("alignContinue").isEnabled());
    EXPECT_FALSE(Tool("alignDrop").isEnabled());
    Click(kThree);
    Tool("alignDrop").trigger();
    EXPECT_EQ(Progress().moving, 2);
    Tool("alignContinue").trigger();
    EXPECT_EQ(Progress().phase, Phase::PickFixed);
    EXPECT_FALSE(Tool("alignContinue").isEnabled());
    Tool("alignFinish").trigger();
    EXPECT_EQ(StatusText(), "Alignment by points: ended, nothing was moved.");
    EXPECT_FALSE(Tool("alignFinish").isEnabled());
    ExpectNothingLeftOfTheAlignment();
}

TEST_F(MainWindowAlign, KeepsTheSizeOfTheViewerFromTheFirstPointToTheLast) {
    StartAlign("alignByPoints");
    const QSize size = m_viewer->size();
    Click({kThree[0]});
    EXPECT_EQ(m_viewer->size(), size);
    Press("space");
    EXPECT_EQ(m_viewer->size(), size);
}

// ---- by hand

struct SchemeCase {
    const char* name;
    MouseScheme scheme;
    const char* turns;
    const char* moves;  // null: two buttons
};
void PrintTo(const SchemeCase& scheme, std::ostream* out) { *out << scheme.name; }

class MainWindowAlignScheme : public AlignFixture, public testing::WithParamInterface<SchemeCase> {};

TEST_P(MainWindowAlignScheme, TurnsAndMovesByTheButtonsOfTheHint) {
    m_window->ChooseMouseScheme(GetParam().scheme);
    StartAlign("alignByHand");
    const auto view = View();
    DragWith(GetParam().turns, {60, 0});
    const Matrix4 turned = Transform(0);
    EXPECT_GT(std::abs(turned[0] - 1.0f) + std::abs(turned[2]), 1e-3f) << "not turned";
    EXPECT_EQ(Transform(1), kIdentity);
    if (GetParam().moves != nullptr) {
        DragWith(GetParam().moves, {60, 0});
    } else {
        Xdotool("keydown shift");
        DragWith(GetParam().turns, {60, 0});
        Xdotool("keyup shift");
    }
    const Matrix4 moved = Transform(0);
    for (const std::size_t i : {0, 1, 2, 4, 5, 6, 8, 9, 10}) EXPECT_EQ(moved[i], turned[i]) << "turned by the move";
    EXPECT_GT(std::abs(moved[3] - turned[3]), 1.0f) << "not moved";
    EXPECT_EQ(View(), view) << "the view stays";
    Press("Escape");
    ExpectNothingLeftOfTheAlignment();
    EXPECT_EQ(Transform(0), moved) << "Escape takes nothing back";
    EXPECT_EQ(StatusText().substr(0, 35), "Aligned by hand: 1 object turned by") << StatusText();
    EXPECT_TRUE(Tool("takeBackAlignment").isEnabled());
}

INSTANTIATE_TEST_SUITE_P(Schemes, MainWindowAlignScheme,
                         testing::Values(SchemeCase{"Normal", MouseScheme::Normal, "1", "3"},
                                         SchemeCase{"Flipped", MouseScheme::Flipped, "3", "1"},
                                         SchemeCase{"Delayed", MouseScheme::Delayed, "3", nullptr}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(MainWindowAlign, DragsTheViewWithCtrl) {
    for (const char* const tool : {"alignByHand", "alignByPoints"}) {
        StartAlign(tool);
        const auto view = View();
        Xdotool("keydown ctrl");
        DragWith("1", {60, 0});
        Xdotool("keyup ctrl");
        EXPECT_NE(View(), view) << tool;
        EXPECT_EQ(Transform(0), kIdentity) << tool;
        EXPECT_EQ(Progress().moving, 0) << tool;
        Press("Escape");
    }
    EXPECT_EQ(StatusText(), "Alignment by points: ended, nothing was moved.");
    EXPECT_NE(Messages().find("Alignment by hand: nothing was moved."), std::string::npos);
}

TEST_F(MainWindowAlign, ShowsHowFarTheHandHasMoved) {
    StartAlign("alignByHand");
    DragWith("3", {60, 0});
    Press("Escape");
    const float distance = std::abs(Transform(0)[3]);
    EXPECT_EQ(StatusText(), "Aligned by hand: 1 object turned by 0.00°, its centre moved by " +
                                QString::number(distance, 'f', 2).toStdString() + " mm.");
}

// ---- what must be right before the start

TEST_F(MainWindowAlign, SaysWhatToChangeWhenTheObjectsDoNotAllowIt) {
    const auto trigger = [&](const char* tool) {
        Tool(tool).trigger();
        EXPECT_FALSE(IsAligning()) << tool;
        EXPECT_FALSE(Tool(tool).isChecked()) << tool;
        return StatusText();
    };
    m_window->Objects().SetMayMove({false, false});
    for (const char* const tool : {"alignByHand", "alignByPoints"}) {
        EXPECT_EQ(trigger(tool).substr(0, 34), "Nothing may move: check \"May move\"") << tool;
    }
    m_window->Objects().SetMayMove({true, true});
    EXPECT_EQ(trigger("alignByPoints").substr(0, 22), "All objects may move: ");
    Tool("alignByHand").trigger();
    EXPECT_TRUE(IsAligning()) << "all of them can be moved by hand";
    Tool("alignFinish").trigger();
    m_window->ClearScene();
    EXPECT_EQ(trigger("alignByHand"), "There is no object to align.");
}

TEST_F(MainWindowAlign, ByHandNeedsAMouseThatMovesTheScene) {
    QAction& mouse = MenuAction("Mouse moves the scene");
    mouse.setChecked(false);
    Tool("alignByHand").trigger();
    EXPECT_FALSE(IsAligning());
    EXPECT_FALSE(Tool("alignByHand").isChecked());
    EXPECT_EQ(StatusText(), "The mouse moves nothing: switch \"Mouse moves the scene\" on in the View menu.");
    mouse.setChecked(true);
    StartAlign("alignByHand");
    EXPECT_FALSE(mouse.isEnabled()) << "it is needed meanwhile";
    Press("Escape");
    EXPECT_TRUE(mouse.isEnabled());
}

TEST_F(MainWindowAlign, MovesNoHiddenObject) {
    QTreeWidgetItem& front = *m_window->Objects().topLevelItem(0);
    front.setCheckState(ObjectList::kName, Qt::Unchecked);
    for (const char* const tool : {"alignByHand", "alignByPoints"}) {
        Tool(tool).trigger();
        EXPECT_FALSE(IsAligning()) << tool;
        EXPECT_FALSE(Tool(tool).isChecked()) << tool;
        EXPECT_EQ(StatusText(), "front.pcm is hidden and would move unseen: show it, or uncheck \"May move\".");
    }
    front.setCheckState(ObjectList::kName, Qt::Checked);
    m_window->Objects().topLevelItem(1)->setCheckState(ObjectList::kName, Qt::Unchecked);
    StartAlign("alignByHand");
    Press("Escape");
}

TEST_F(MainWindowAlign, ShowsNoNumbersOfAnotherAlignment) {
    const auto pairs = [&] { return Find<QTreeWidget>("residuals").topLevelItemCount(); };
    AlignByPoints(kThree, kThree);
    ASSERT_EQ(pairs(), 3);
    Tool("takeBackAlignment").trigger();
    EXPECT_EQ(pairs(), 0);
    AlignByPoints(kThree, kThree);
    ASSERT_EQ(pairs(), 3);
    StartAlign("alignByPoints");
    EXPECT_EQ(pairs(), 0);
    Press("Escape");
    EXPECT_EQ(pairs(), 0);
}

TEST_F(MainWindowAlign, SaysWhatSpaceWaitsFor) {
    StartAlign("alignByPoints");
    Press("space");
    EXPECT_TRUE(WaitUntil([&] { return StatusText().starts_with("Space continues after the first point"); }));
    Press("Escape");
}

TEST_F(MainWindowAlign, NamesTheObjectsThatMove) {
    StartAlign("alignByHand");
    EXPECT_NE(Task().find("front.pcm (bright)"), std::string::npos) << Task();
    Press("Escape");
}

TEST_F(MainWindowAlign, FinishesOneBeforeAnother) {
    StartAlign("alignByHand");
    DragWith("3", {60, 0});
    Tool("alignByPoints").trigger();
    EXPECT_EQ(m_window->Alignments().RunningWay(), AlignWay::ByPoints);
    EXPECT_EQ(EndsReported(), 1);
    EXPECT_NE(Transform(0)[3], 0.0f) << "what the first one moved stays";
    Tool("alignByPoints").trigger();  // its own tool again
    ExpectNothingLeftOfTheAlignment();
    EXPECT_EQ(EndsReported(), 2);
}

TEST_F(MainWindowAlign, RunsWithoutALassoOnly) {
    Start("cutPolygonInside");
    EXPECT_FALSE(Tool("alignByHand").isEnabled());
    EXPECT_FALSE(Tool("alignByPoints").isEnabled());
    Tool("cutCancel").trigger();
    StartAlign("alignByPoints");
    for (const char* const tool : {"cutPolygonInside", "cutFreehandVisible", "cutUndo", "cutSave"})
        EXPECT_FALSE(Tool(tool).isEnabled()) << tool;
    Press("i");  // the key of a lasso
    EXPECT_FALSE(IsRunning());
    Press("Escape");
    EXPECT_TRUE(Tool("cutPolygonInside").isEnabled());
}

// ---- the rest of the window meanwhile

TEST_F(MainWindowAlign, AllowsTheViewToChangeButNotTheObjects) {
    ASSERT_TRUE(CutByCall());
    const QStringList scene{"Clear",
                            "Open...",
                            "Export selected object...",
                            "Save screenshot of the whole scene (2048 x 2048)...",
                            "Centre cross",
                            "Import lines..."};
    const QStringList view{"Fit the view", "From +Z, Y up", "Shadows", "Clip the scene"};
    for (const char* const tool : {"alignByHand", "alignByPoints"}) {
        StartAlign(tool);
        for (const QString& text : scene) EXPECT_FALSE(MenuAction(text).isEnabled()) << text.toStdString();
        for (const QString& text : view) EXPECT_TRUE(MenuAction(text).isEnabled()) << text.toStdString();
        EXPECT_FALSE(Tool("cutUndo").isEnabled());
        EXPECT_FALSE(m_window->Objects().isEnabled());
        EXPECT_TRUE(m_window->Messages().isEnabled());
        Press("Escape");
        for (const QString& text : scene) EXPECT_TRUE(MenuAction(text).isEnabled()) << text.toStdString();
        EXPECT_TRUE(Tool("cutUndo").isEnabled());
        EXPECT_TRUE(m_window->Objects().isEnabled());
    }
}

TEST_F(MainWindowAlign, ShowsTheColoursOfTheObjectsAndNotTheDimmedOnes) {
    const auto shown = [&](int row) {
        auto* const item = m_window->Objects().topLevelItem(row);
        return static_cast<ColorButton*>(m_window->Objects().itemWidget(item, ObjectList::kColor))->Packed();
    };
    StartAlign("alignByHand");
    EXPECT_EQ(ColorsOfViewer()[0], m_colors[0]);
    EXPECT_NE(ColorsOfViewer()[1], m_colors[1]);
    EXPECT_EQ(shown(1), m_colors[1]);
    Press("Escape");
    EXPECT_EQ(shown(1), m_colors[1]);
    ExpectNothingLeftOfTheAlignment();
}

TEST_F(MainWindowAlign, OpensFilesOnlyAfterwards) {
    WriteStl(m_folder / "part.stl");
    StartAlign("alignByPoints");
    m_window->OpenFiles({m_folder / "part.stl"});
    EXPECT_FALSE(m_window->IsImporting());
    Press("Escape");
    ASSERT_TRUE(WaitUntil([&] { return m_window->HaveAllFilesAdded() && !m_window->IsImporting(); }));
    EXPECT_EQ(ObjectsInViewer(), 3);
    m_window->OpenFiles({m_folder / "part.stl"});
    ASSERT_TRUE(m_window->IsImporting());
    EXPECT_FALSE(Tool("alignByHand").isEnabled()) << "no alignment during an import";
    WaitForImports();
    EXPECT_TRUE(Tool("alignByHand").isEnabled());
}

TEST_F(MainWindowAlign, DoesNotDragANeedle) {
    m_window->Needles().SwitchCreation(true);
    ASSERT_NE(Methods().CreateNeedle(1, 30, 30, 0, 30, 30, -10), 0);
    Methods().SelectNeedle(1);
    std::array<float, 6> before{}, after{};
    (void)Methods().GetNeedle(1, &before[0], &before[1], &before[2], &before[3], &before[4], &before[5]);
    StartAlign("alignByHand");
    DragWith("1", {60, 0});
    EXPECT_NE(Transform(0), kIdentity);
    (void)Methods().GetNeedle(1, &after[0], &after[1], &after[2], &after[3], &after[4], &after[5]);
    EXPECT_EQ(after, before);
    Press("Escape");
    m_window->Needles().SwitchCreation(false);
    Methods().DeleteNeedles();
}

// ---- other ends

TEST_F(MainWindowAlign, EndsHoweverTheViewerOrTheSceneEndsIt) {
    StartAlign("alignByPoints");
    Methods().FinishInteraction();
    ExpectNothingLeftOfTheAlignment();
    StartAlign("alignByHand");
    m_window->DeleteObject(0);
    EXPECT_FALSE(IsAligning());
    EXPECT_EQ(ColorsOfViewer(), std::vector<std::int32_t>{m_colors[1]});
    m_window->Objects().SetMayMove({true});
    StartAlign("alignByHand");
    m_window->ClearScene();
    EXPECT_FALSE(IsAligning());
    EXPECT_EQ(Task(), "");
    EXPECT_EQ(EndsReported(), 3);
}

TEST_F(MainWindowAlign, EndsWithTheViewer) {
    StartAlign("alignByHand");
    DestroyXWindow(m_window->Pane()->NativeWindow());
    ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() == nullptr; }));
    EXPECT_FALSE(IsAligning());
    EXPECT_EQ(Task(), "");
    EXPECT_FALSE(Tool("alignByHand").isEnabled());
    EXPECT_FALSE(Tool("alignFinish").isEnabled());
}

TEST_F(MainWindowAlign, EndsBeforeTheWindowCloses) {
    StartAlign("alignByPoints");
    Click(kThree);
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(IsAligning());
    EXPECT_EQ(ColorsOfViewer(), m_colors);
    EXPECT_EQ(EndsReported(), 1);
}

TEST_F(MainWindowAlign, IsAskedAboutWhenTheWindowCloses) {
    StartAlign("alignByHand");
    DragWith("3", {60, 0});
    std::string question;
    {
        const auto answer = Answer(Button::Cancel, &question);
        EXPECT_FALSE(m_window->close());
    }
    EXPECT_NE(question.find("front.pcm"), std::string::npos) << question;
    ExpectNothingLeftOfTheAlignment();
}

TEST_F(MainWindowAlign, EndsWithTheWindow) {
    StartAlign("alignByHand");
    DragWith("3", {60, 0});
    m_window.reset();
    QCoreApplication::processEvents();  // nothing is left that calls the viewer
    EXPECT_EQ(m_window, nullptr);
}

}  // namespace
