// When the reduced drawing is on for a drag, on an off-screen viewer: the choices, the limit of a slow scene, and what
// the viewer's store and its modified mark show of it.
#include "ReducedDrawing.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <memory>
#include <vector>

#include "Settings.h"
#include "host/QtUnderXvfb.h"

namespace {

using namespace KV_ScenePane;
using Kind = MouseInput::Kind;

constexpr MouseInput kPress{Kind::LeftDown, kMouseLeft, 50, 50, 0};
constexpr MouseInput kMove{Kind::Move, kMouseLeft, 60, 50, 0};
constexpr MouseInput kRelease{Kind::LeftUp, 0, 60, 50, 0};
constexpr double kNever = 1e9, kEvery = 0;  // limits of a slow frame

class ReducedDrawingTest : public testing::Test {
protected:
    void SetUp() override {
        ForgetSettings();
        WindowRequest request;
        pane = CreateScenePane(request, nullptr);  // draws its first frame
        ASSERT_NE(pane, nullptr);
        Make();
    }
    void TearDown() override {
        reducing.reset();
        ForgetSettings();
    }
    /// As at the start of the program.
    void Make() {
        reducing = std::make_unique<ReducedDrawing>(nullptr);
        reducing->SetViewer(pane.get());
    }
    [[nodiscard]] bool Property() const { return pane->Methods().GetMoveReduced() != kVariantFalse; }
    void Draw() const { pane->Methods().PerformRefresh(); }
    void StartDrag() const {
        reducing->See(kPress, true);
        reducing->See(kMove, true);
    }

    std::unique_ptr<ScenePane> pane;
    std::unique_ptr<ReducedDrawing> reducing;
};

// ---- drags

TEST_F(ReducedDrawingTest, IsOnFromTheFirstMoveToTheReleaseOfADragOfASlowScene) {
    reducing->SetSlowFrame(kEvery);
    reducing->See(kPress, true);
    EXPECT_FALSE(Property()) << "a click draws nothing reduced";
    reducing->See(kMove, true);
    EXPECT_TRUE(Property());
    EXPECT_TRUE(reducing->IsOn());
    reducing->See(kRelease, true);
    EXPECT_FALSE(Property());
    EXPECT_FALSE(reducing->IsOn());
}

TEST_F(ReducedDrawingTest, ASceneIsSlowAboveTheLimitOnly) {
    EXPECT_EQ(ReducedDrawing::kSlowFrame, 0.1);
    Draw();
    const double seconds = pane->GetFrameStatistics().seconds;
    reducing->SetSlowFrame(seconds);
    StartDrag();
    EXPECT_FALSE(Property());
    reducing->See(kRelease, true);
    reducing->SetSlowFrame(seconds * 0.999);
    StartDrag();
    EXPECT_TRUE(Property());
}

TEST_F(ReducedDrawingTest, IsOffForTheWheelForMovesWithoutAButtonAndWhereNothingIsDragged) {
    reducing->SetSlowFrame(kEvery);
    reducing->See({Kind::Wheel, 0, 50, 50, kWheelNotch}, true);
    reducing->See({Kind::Wheel, kMouseLeft, 50, 50, kWheelNotch}, true);
    reducing->See({Kind::Move, 0, 60, 50, 0}, true);
    reducing->See({Kind::Move, kMouseCtrl | kMouseShift, 60, 50, 0}, true);
    EXPECT_FALSE(Property());
    reducing->See(kPress, false);
    reducing->See(kMove, false);
    EXPECT_FALSE(Property());
}

TEST_F(ReducedDrawingTest, StaysOnWhileAButtonIsHeldAndAcrossTheWheel) {
    reducing->SetSlowFrame(kEvery);
    StartDrag();
    reducing->See({Kind::RightDown, kMouseLeft | kMouseRight, 60, 50, 0}, true);
    reducing->See({Kind::LeftUp, kMouseRight, 60, 50, 0}, true);
    reducing->See({Kind::Wheel, 0, 60, 50, kWheelNotch}, true);
    EXPECT_TRUE(Property());
    reducing->See({Kind::Move, 0, 60, 50, 0}, true);  // the release was lost
    EXPECT_FALSE(Property());
}

// The frames of a reduced drag are quick: they say nothing about the scene.
TEST_F(ReducedDrawingTest, KnowsASlowSceneByItsLastFullFrame) {
    reducing->SetSlowFrame(kEvery);
    StartDrag();
    Draw();
    reducing->See(kRelease, true);
    reducing->SetSlowFrame(kNever);
    StartDrag();
    EXPECT_TRUE(Property()) << "no full frame was drawn since";
    reducing->See(kRelease, true);
    Draw();
    StartDrag();
    EXPECT_FALSE(Property()) << "the last full frame was quick";
}

TEST_F(ReducedDrawingTest, EachStepOfTheDragAndItsReleaseDrawOneFrame) {
    reducing->SetSlowFrame(kEvery);
    std::vector<bool> reduced;  // when the viewer handles the input
    pane->SetMouseFilter([&](const MouseInput& input) {
        reducing->See(input, true);
        reduced.push_back(Property());
        return false;
    });
    const auto framesOf = [&](const MouseInput& input) {
        const std::uint64_t before = pane->GetFrameStatistics().count;
        pane->SendMouse(input);
        pane->ProcessEvents();
        return pane->GetFrameStatistics().count - before;
    };
    pane->ProcessEvents();
    EXPECT_EQ(framesOf(kPress), 0u);
    EXPECT_EQ(framesOf(kMove), 1u);
    EXPECT_EQ(framesOf(kRelease), 1u);
    EXPECT_EQ(reduced, (std::vector{false, true, false})) << "the frame of the release is a full one";
}

// ---- what others see of it

TEST_F(ReducedDrawingTest, LeavesTheViewerUnmodified) {
    (void)pane->SaveProperties(PropertyFormat::Text);
    reducing->SetSlowFrame(kEvery);
    StartDrag();
    EXPECT_FALSE(pane->IsModified());
    reducing->See(kRelease, true);
    EXPECT_FALSE(pane->IsModified());
    EXPECT_NE(pane->SaveProperties(PropertyFormat::Text).find("MoveReduced=0"), std::string::npos);
}

TEST_F(ReducedDrawingTest, AnnouncesItselfBeforeItChangesTheProperty) {
    reducing->SetSlowFrame(kEvery);
    pane->Methods().SetDrawMode(DrawModePoints);  // by the user
    int announced = 0;
    QObject::connect(reducing.get(), &ReducedDrawing::AboutToStart, [&] {
        ++announced;
        EXPECT_TRUE(pane->IsModified());
        EXPECT_FALSE(Property());
    });
    StartDrag();
    reducing->See(kMove, true);
    EXPECT_EQ(announced, 1);
}

TEST_F(ReducedDrawingTest, KeepsAChangeOfTheUserDuringTheDragModified) {
    reducing->SetSlowFrame(kEvery);
    StartDrag();
    pane->Methods().SetDrawMode(DrawModePoints);
    reducing->End();
    EXPECT_TRUE(pane->IsModified());
    EXPECT_FALSE(Property());
}

// ---- the choice

TEST_F(ReducedDrawingTest, IsTheUsersAlwaysOrNeverInstead) {
    reducing->SetSlowFrame(kEvery);
    reducing->Choose(ReducedChoice::Never);
    StartDrag();
    EXPECT_FALSE(Property());
    reducing->See(kRelease, true);
    reducing->Choose(ReducedChoice::Always);
    EXPECT_TRUE(Property());
    EXPECT_TRUE(pane->IsModified()) << "this one is stored";
    StartDrag();
    EXPECT_FALSE(reducing->IsOn());
    reducing->See(kRelease, true);
    EXPECT_TRUE(Property());
}

TEST_F(ReducedDrawingTest, TheChoiceIsThatOfTheNextStart) {
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Automatic) << "the first start";
    reducing->Choose(ReducedChoice::Never);
    Make();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Never);
    reducing->Choose(ReducedChoice::Always);
    Make();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Always) << "by the property of the viewer";
    reducing->Choose(ReducedChoice::Automatic);
    Make();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Automatic);
}

TEST_F(ReducedDrawingTest, ADamagedSettingIsAutomatic) {
    OpenSettings().setValue("view/reducedAutomatically", "perhaps");
    Make();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Automatic);
}

TEST_F(ReducedDrawingTest, AChoiceDuringADragEndsIt) {
    reducing->SetSlowFrame(kEvery);
    StartDrag();
    reducing->Choose(ReducedChoice::Never);
    EXPECT_FALSE(Property());
    reducing->See(kMove, true);
    EXPECT_FALSE(Property());
}

TEST_F(ReducedDrawingTest, FollowsThePropertyThatOthersSet) {
    QMenu menu;
    const QList<QAction*> actions = reducing->FillMenu(menu);
    ASSERT_EQ(actions.size(), 3);
    EXPECT_TRUE(actions[0]->isChecked());
    pane->Methods().SetMoveReduced(kVariantTrue);
    reducing->Follow();
    EXPECT_TRUE(actions[1]->isChecked());
    pane->Methods().SetMoveReduced(kVariantFalse);
    reducing->Follow();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Never) << "switched off on the property page";
    EXPECT_TRUE(actions[2]->isChecked());
    actions[0]->trigger();
    EXPECT_EQ(reducing->Choice(), ReducedChoice::Automatic);
}

}  // namespace
