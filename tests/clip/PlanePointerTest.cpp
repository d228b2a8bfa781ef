// A user at the handles of the clip plane, from the hover to the end of a drag: by calls, and by the real pointer.
#include <cmath>
#include <numbers>

#include "clip/PlaneUser.h"

namespace {

constexpr auto L = Button::Left;

// ---- hovering

TEST_P(PlaneUnderThePointer, TurnsHotOverEachHandleAndBack) {
    LookObliquely();
    const Pixel onFace = PixelOnPlane(12, 8, 0);
    const Rgb cold = At(ShownFrame(), onFace);
    ASSERT_GT(cold[0], kBackground[0] + 50);
    const std::pair<Pixel, PlaneHandle> handles[] = {
        {Arrow(), kArrow}, {Ball(0), {0, PlaneHandle::kSphere}}, {Ball(1), {1, PlaneHandle::kSphere}}};
    for (const auto& [place, handle] : handles) {
        SCOPED_TRACE(testing::Message() << "kind " << handle.kind << ", index " << handle.index);
        viewer.window->Forget();
        MoveTo(place);
        EXPECT_EQ(plane.GetPick(), handle);
        EXPECT_EQ(viewer.window->swaps, 1);
        ExpectShownHot(onFace, cold);
        MoveTo(place + Pixel{1, 1});
        EXPECT_EQ(plane.GetPick(), handle);
        EXPECT_EQ(viewer.window->swaps, 1) << "nothing has changed";
        MoveTo(kNowhere);
        EXPECT_FALSE(plane.IsPicked());
        EXPECT_EQ(viewer.window->swaps, 2);
        EXPECT_EQ(At(ShownFrame(), onFace), cold);
        MoveTo(onFace);
        EXPECT_FALSE(plane.IsPicked()) << "the face is no handle";
        EXPECT_EQ(viewer.window->swaps, 2);
    }
}

TEST_P(PlaneUnderThePointer, ShowsTheAxisOfABallUnderThePointer) {
    LookObliquely();
    const Pixel axisOfBall0 = PixelOnPlane(10, 0, 0), axisOfBall1 = PixelOnPlane(0, 10, 0);
    const auto guides = [&] {
        const auto frame = ShownFrame();
        return std::pair(GreenAround(frame, axisOfBall0) > 0, GreenAround(frame, axisOfBall1) > 0);
    };
    EXPECT_EQ(guides(), std::pair(false, false));
    MoveTo(Ball(0));
    EXPECT_EQ(guides(), std::pair(true, false));
    MoveTo(kNowhere);
    MoveTo(Ball(1));
    EXPECT_EQ(guides(), std::pair(false, true));
    user->Press(L);
    user->MoveTo(Ball(1).x + 1, Ball(1).y);
    EXPECT_TRUE(guides().second) << "also while it is dragged";
    user->Release(L);
    MoveTo(kNowhere);
    EXPECT_EQ(guides(), std::pair(false, false));
}

// ---- drags of handles

TEST_P(PlaneUnderThePointer, MovesAlongItsNormalByTheArrow) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle);
    MoveTo(arrow + Pixel{7, -25});
    ExpectPlane({0, 0, 2.5}, {0, 0, 1});
    MoveTo(arrow + Pixel{-300, 40});
    ExpectPlane({0, 0, -4}, {0, 0, 1});
    EXPECT_EQ(viewer.window->swaps, 3) << "hover and moves, one frame each";
    EXPECT_FALSE(viewer.window->HasCapture());
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(arrow + Pixel{0, -90});
    MoveTo(kNowhere);
    ExpectPlane({0, 0, -4}, {0, 0, 1});
}

TEST_P(PlaneUnderThePointer, FollowsTheArrowOutOfTheWindow) {
    const Pixel arrow = Arrow();
    MoveTo(arrow);
    user->Press(L);
    user->MoveTo(700, arrow.y + 10);
    ExpectPlane({0, 0, -1}, {0, 0, 1});
    user->MoveTo(arrow.x, 520);
    ExpectPlane({0, 0, (arrow.y - 520) / 10.0}, {0, 0, 1});
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(arrow);
    ExpectPlane({0, 0, (arrow.y - 520) / 10.0}, {0, 0, 1});
    EXPECT_TRUE(user->OthersCanGrabThePointer());
}

TEST_P(PlaneUnderThePointer, TiltsByABall) {
    const Pixel center = PixelOf({0, 0, 0}), ball = Ball(1);
    const int reach = center.x - ball.x;
    const Pixel onCircle = center + Pixel{reach / 2, -static_cast<int>(std::lround(reach * std::sqrt(3) / 2))};
    EXPECT_EQ(GreenAround(ShownFrame(), onCircle), 0);
    MoveTo(ball);
    EXPECT_GT(GreenAround(ShownFrame(), onCircle), 0) << "the circle on which the ball moves";
    user->Press(L);
    const int diagonal = static_cast<int>(std::lround(reach * std::numbers::sqrt2 / 2));
    MoveTo(center + Pixel{-diagonal, -diagonal});
    const double half = std::numbers::sqrt2 / 2;
    ExpectPlane({0, 0, 0}, {half, 0, half}, 0.006);  // the search ends within 0.3 degrees
    EXPECT_GT(GreenAround(ShownFrame(), onCircle), 0);
    MoveTo(center + Pixel{0, -40});  // inside the circle the angle counts
    ExpectPlane({0, 0, 0}, {1, 0, 0}, 0.006);
    user->Release(L);
    EXPECT_EQ(Mode(), ModeIdle);
    MoveTo(kNowhere);
    ExpectPlane({0, 0, 0}, {1, 0, 0}, 0.006);
    EXPECT_EQ(GreenAround(ShownFrame(), onCircle), 0);
}

TEST_P(PlaneUnderThePointer, HidesTheOtherKindOfHandleDuringADrag) {
    LookObliquely();
    const ShownHandles all{true, true};
    EXPECT_EQ(Shown(), all);
    MoveTo(Arrow());
    user->Press(L);
    user->MoveTo(Arrow().x + 1, Arrow().y);
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = true, .balls = false}));
    user->Release(L);
    EXPECT_EQ(Shown(), all);
    MoveTo(kNowhere);
    MoveTo(Ball(0));
    user->Press(L);
    user->MoveTo(Ball(0).x + 1, Ball(0).y);
    EXPECT_EQ(Shown(), (ShownHandles{.arrow = false, .balls = true}));
    user->Release(L);
    EXPECT_EQ(Shown(), all);
}

TEST_P(PlaneUnderThePointer, IsPutBackByEscapeWhileTheButtonIsHeld) {
    viewer->SetClipPlane(0, 0, 1, 0.1f, 0, 0.9f);
    const auto before = plane.m_dMatrix;
    const Float3 axis = viewer->m_fAxisX;
    for (const bool byArrow : {true, false}) {
        SCOPED_TRACE(byArrow ? "arrow" : "ball");
        const Pixel handle = byArrow ? Arrow() : Ball(1);
        MoveTo(handle);
        user->Press(L);
        ASSERT_EQ(Mode(), ModePlaneHandle);
        MoveTo(handle + Pixel{30, -60});
        ASSERT_NE(plane.m_dMatrix, before);
        user->Type(KV_ScenePane::kKeyEscape);
        EXPECT_EQ(plane.m_dMatrix, before);
        EXPECT_EQ(Mode(), ModeIdle);
        EXPECT_EQ(Shown(), (ShownHandles{true, true}));
        MoveTo(handle + Pixel{60, -30});
        MoveTo(handle);
        MoveTo(handle + Pixel{0, 90});
        user->Release(L);
        EXPECT_EQ(plane.m_dMatrix, before);
        EXPECT_EQ(viewer->m_fAxisX, axis);
        EXPECT_EQ(Mode(), ModeIdle);
        // And it can be dragged again; farther than 2 pixels from the first press, which no double click is.
        MoveTo(handle + (byArrow ? Pixel{0, -3} : Pixel{3, 0}));
        user->Press(L);
        ASSERT_EQ(Mode(), ModePlaneHandle);
        MoveTo(handle + Pixel{30, -60});
        EXPECT_NE(plane.m_dMatrix, before);
        user->Release(L);
        plane.m_dMatrix = before;
        Settle();
    }
}

TEST_P(PlaneUnderThePointer, ReturnsTheTiltedNormalAndLosesTheTwistWhenItIsSet) {
    const Pixel center = PixelOf({0, 0, 0}), ball = Ball(1);
    const int diagonal = static_cast<int>(std::lround((center.x - ball.x) * std::numbers::sqrt2 / 2));
    MoveTo(ball);
    user->Press(L);
    MoveTo(center + Pixel{-diagonal, -diagonal});
    user->Release(L);
    Look(KV_ScenePane::ViewFromPlusXZUp);       // y to the right: the other ball is at the left
    const Pixel other = Ball(0) + Pixel{3, 0};  // the first press was at the same place: no double click
    MoveTo(other);
    ASSERT_EQ(plane.GetPick(), (PlaneHandle{0, PlaneHandle::kSphere}));
    user->Press(L);
    MoveTo(other + Pixel{40, -90});
    user->Release(L);

    const CenterAndNormal got = Get();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(got.normal[i], static_cast<float>(plane.GetNormal()[i]));
    EXPECT_GT(got.normal[0], 0.1);
    EXPECT_GT(got.normal[1], 0.1);
    Plane shortest;
    shortest.SetNormal({got.normal[0], got.normal[1], got.normal[2]});
    EXPECT_GT(std::abs(plane.m_dMatrix[1] - shortest.m_dMatrix[1]), 0.05) << "the drags have twisted the plane";
    viewer->SetClipPlane(got.center[0], got.center[1], got.center[2], got.normal[0], got.normal[1], got.normal[2]);
    for (std::size_t i = 0; i < 11; ++i) EXPECT_NEAR(plane.m_dMatrix[i], shortest.m_dMatrix[i], 1e-12) << i;
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(Get().normal[i], got.normal[i], 1e-6);
}

TEST_P(PlaneUnderThePointer, DoesNotReactByTheArrowWhenItIsSeenFaceOn) {
    LookFromAbove();
    MoveTo(Arrow());
    ASSERT_EQ(plane.GetPick(), kArrow);
    user->Press(L);
    EXPECT_EQ(Mode(), ModePlaneHandle);
    for (const Pixel& to : {Pixel{600, 20}, {5, 470}, {320, 240}}) {
        MoveTo(to);
        ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
    }
    user->Release(L);
    ExpectPlane({0, 0, 0}, {0, 0, 1}, 0);
}

INSTANTIATE_TEST_SUITE_P(Ways, PlaneUnderThePointer, BothWays(), NameOfWay);

}  // namespace
