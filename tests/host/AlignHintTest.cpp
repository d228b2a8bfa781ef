// The texts of the hint, and its height.
#include "AlignHint.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "host/QtUnderXvfb.h"

namespace {

using Phase = KV_ScenePane::AlignmentPhase;

AlignHintState State(AlignProgress progress, MouseScheme scheme = MouseScheme::Normal, bool isPlaneShown = false) {
    return {progress, scheme, isPlaneShown, "front.pcm"};
}

TEST(AlignHintText, IsEmptyWithoutAnAlignment) {
    EXPECT_TRUE(HintOf(State({})).task.isEmpty());
    EXPECT_TRUE(HintOf(State({})).keys.isEmpty());
}

TEST(AlignHintText, NamesTheButtonsOfEachScheme) {
    const auto task = [](MouseScheme scheme) { return HintOf(State({Phase::ByHand, 0, 0}, scheme)).task; };
    EXPECT_TRUE(task(MouseScheme::Normal).contains("left button turns"));
    EXPECT_TRUE(task(MouseScheme::Normal).contains("right button moves"));
    EXPECT_TRUE(task(MouseScheme::Flipped).contains("right button turns"));
    EXPECT_TRUE(task(MouseScheme::Flipped).contains("left button moves"));
    EXPECT_TRUE(task(MouseScheme::Delayed).contains("right button turns"));
    EXPECT_TRUE(task(MouseScheme::Delayed).contains("Shift it moves"));
}

TEST(AlignHintText, CountsThePoints) {
    const auto task = [](AlignProgress progress) { return HintOf(State(progress)).task.toStdString(); };
    EXPECT_EQ(task({Phase::PickMoving, 0, 0}), "Align by points: click points on what will move, front.pcm (bright).");
    EXPECT_EQ(task({Phase::PickMoving, 1, 0}),
              "Align by points: click points on what will move, front.pcm (bright): 1 point.");
    EXPECT_EQ(task({Phase::PickMoving, 3, 0}),
              "Align by points: click points on what will move, front.pcm (bright): 3 points.");
    EXPECT_NE(task({Phase::PickFixed, 3, 1}).find("point 2 of 3."), std::string::npos);
    EXPECT_EQ(task({Phase::PickFixed, 3, 1}).find("ends the alignment"), std::string::npos);
    EXPECT_NE(task({Phase::PickFixed, 3, 2}).find("point 3 of 3. It ends the alignment."), std::string::npos);
}

TEST(AlignHintText, NamesThreeObjectsAtMostAndShortensLongNames) {
    EXPECT_EQ(ObjectNames({}).toStdString(), "");
    EXPECT_EQ(ObjectNames({"a.pcm"}).toStdString(), "a.pcm");
    EXPECT_EQ(ObjectNames({"a", "b", "c"}).toStdString(), "a, b, c");
    EXPECT_EQ(ObjectNames({"a", "b", "c", "d", "e"}).toStdString(), "a, b, c and 2 more");
    EXPECT_EQ(ObjectNames({"a%2", "b", "c", "d"}).toStdString(), "a%2, b, c and 1 more") << "a place in a name stays";
    EXPECT_EQ(ObjectNames({"a_measurement_with_a_long_name_007.pcm"}).toStdString(), "a_measurement_…me_007.pcm");
}

TEST(AlignHintText, NamesNoBrightnessOfObjectsWithColoursOfTheirOwn) {
    for (const AlignProgress& progress :
         {AlignProgress{Phase::ByHand, 0, 0}, {Phase::PickMoving, 1, 0}, {Phase::PickFixed, 2, 1}}) {
        AlignHintState state = State(progress);
        EXPECT_TRUE(HintOf(state).task.contains("(bright)"));
        state.hasColors = true;
        EXPECT_FALSE(HintOf(state).task.contains("bright"));
    }
}

TEST(AlignHintText, NamesOnlyTheKeysThatDoSomething) {
    const auto keys = [](AlignProgress progress) { return HintOf(State(progress)).keys; };
    EXPECT_FALSE(keys({Phase::PickMoving, 0, 0}).contains("Space"));
    EXPECT_FALSE(keys({Phase::PickMoving, 0, 0}).contains("Delete"));
    EXPECT_TRUE(keys({Phase::PickMoving, 1, 0}).contains("Space: continue"));
    EXPECT_TRUE(keys({Phase::PickMoving, 1, 0}).contains("Delete: drop"));
    EXPECT_FALSE(keys({Phase::PickFixed, 2, 0}).contains("Delete"));
    EXPECT_FALSE(keys({Phase::PickFixed, 2, 1}).contains("Space"));
    EXPECT_TRUE(keys({Phase::PickFixed, 2, 1}).contains("Delete: drop"));
    EXPECT_TRUE(keys({Phase::PickFixed, 2, 1}).contains("Esc: end without moving"));
    EXPECT_TRUE(keys({Phase::ByHand, 0, 0}).contains("Esc: finish"));
}

TEST(AlignHintText, SaysWhatCtrlDrags) {
    const AlignProgress byHand{Phase::ByHand, 0, 0};
    EXPECT_TRUE(HintOf(State(byHand)).keys.contains("Ctrl and drag: the view"));
    EXPECT_TRUE(HintOf(State(byHand, MouseScheme::Delayed)).keys.contains("with the right button: the view"));
    EXPECT_TRUE(HintOf(State(byHand, MouseScheme::Normal, true)).keys.contains("the clip plane"));
}

TEST(AlignHint, IsShownOnlyDuringAnAlignment) {
    QWidget window;
    AlignHint hint(&window);
    window.show();
    EXPECT_FALSE(hint.isVisible());
    hint.Show(State({Phase::ByHand, 0, 0}));
    EXPECT_TRUE(hint.isVisible());
    hint.Show(State({}));
    EXPECT_FALSE(hint.isVisible());
}

TEST(AlignHint, HasOneHeightForAllPhasesOfAnAlignmentAtAnyWidth) {
    const AlignProgress phases[] = {{Phase::PickMoving, 0, 0},
                                    {Phase::PickMoving, 1, 0},
                                    {Phase::PickMoving, 12, 0},
                                    {Phase::PickFixed, 12, 0},
                                    {Phase::PickFixed, 12, 11}};
    for (const MouseScheme scheme : {MouseScheme::Normal, MouseScheme::Delayed}) {
        for (const int width : {250, 400, 520, 700, 900, 1500}) {
            AlignHint hint;
            hint.Show(State(phases[0], scheme));
            hint.resize(width, 10);
            const int height = hint.heightForWidth(width);
            EXPECT_GT(height, 2 * hint.fontMetrics().height() - 1);
            for (const AlignProgress& phase : phases) {
                hint.Show(State(phase, scheme));
                EXPECT_EQ(hint.heightForWidth(width), height)
                    << width << ' ' << hint.findChild<QLabel*>("alignTask")->text().toStdString();
            }
        }
    }
}

}  // namespace
