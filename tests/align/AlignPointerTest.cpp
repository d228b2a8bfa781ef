// An alignment by hand from its start to its end, by calls of a host on an off-screen viewer and by the real pointer
// and keyboard on one in a window of an X server: both must move the scans alike, and as the test computes.
#include <string>

#include "align/HandScene.h"
#include "render/ReadFrame.h"
#include "view/UserInput.h"

namespace {

constexpr auto L = Button::Left, R = Button::Right;

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

/// Two scans at the same place: 0 stays, 1 moves. An eighth of a unit per pixel.
class HandAtTheViewer {
public:
    explicit HandAtTheViewer(std::unique_ptr<UserInput> input) : user(std::move(input)) {
        for (const std::uint32_t color : {0x4040FFu, 0x40FF40u}) pane.m_vpMeshes.push_back(MakeScan(color));
        pane.AddVariableObject(1);
        pane.m_fSceneSize = 60;
        pane.SetViewParams(0.8f, 0.6f, 0, -0.36f, 0.48f, 0.8f, 3, 2, 1, 1, 1);
        pane.PerformRefresh();
        user->MoveTo(320, 240);
        viewer.events.events.clear();
    }
    void Begin() {
        pane.AlignInteractive();
        pivot = ToDouble3(dynamic_cast<CAlignInteractiveDlg&>(*pane.m_pInteractionDlg).m_fPivot);
    }
    /// The press is handled when this returns, in each scheme.
    void Press(Button button) {
        user->Press(button);
        EndDispatchDelay(viewer);
    }
    /// The first move begins the drag.
    void Drag(Button button, int x, int y, int dx, int dy) {
        user->MoveTo(x, y);
        Press(button);
        user->MoveTo(x + 1, y);
        user->MoveTo(x + 1 + dx, y + dy);
        user->Release(button);
    }
    void Expect(const Pose& step) {
        expected = After(step, expected);
        pivot = step(pivot);
    }
    void ExpectShift(double dx, double dy) { Expect(ShiftBy(HandCamera(pane).Travel(dx, dy))); }
    void ExpectRotation(int mode, double dx, double dy) { Expect(HandCamera(pane).Rotate(mode, dx, dy, pivot)); }
    void Check() const {
        EXPECT_LT(Difference(PoseOfScan(pane, 1), expected), 1e-3);
        EXPECT_LT(Difference(PoseOfScan(pane, 0), Pose{}), 1e-9);
    }
    [[nodiscard]] std::vector<std::string> Events() const {
        std::vector<std::string> names;
        for (const auto& event : viewer.events.events)
            if (event.name != "CustomKeyDown") names.push_back(event.name);
        return names;
    }
    /// What the operator sees, as far as the driver of the window and of the surface agree.
    std::vector<std::uint32_t> ShownFrame() {
        EXPECT_TRUE(pane.MakeContextCurrent());
        pane.m_frameTarget.Resolve();
        return ReadFrame(UserInput::kWidth, UserInput::kHeight);
    }

    std::unique_ptr<UserInput> user;
    TestControl& viewer = user->Viewer();
    CKV_ScenePaneCtrl& pane = *viewer;
    Pose expected;
    Double3 pivot{};
};

/// Brightest pixel of the frame by one channel: 16 red, 8 green, 0 blue.
int Brightest(const std::vector<std::uint32_t>& frame, int shift) {
    int brightest = 0;
    for (const std::uint32_t pixel : frame) {
        const auto channel = [&](int s) { return static_cast<int>(pixel >> s & 0xFF); };
        const int others = shift == 16 ? channel(8) : channel(16);
        if (channel(shift) > 2 * others) brightest = std::max(brightest, channel(shift));
    }
    return brightest;
}

class AlignmentByHand : public testing::TestWithParam<InputWay> {
protected:
    HandAtTheViewer hand{GetParam().makeUser()};
    UserInput& user = *hand.user;
};

TEST_P(AlignmentByHand, TurnsAndShiftsFromTheStartToTheEnd) {
    const int bright = Brightest(hand.ShownFrame(), 16);
    hand.Begin();
    const int dim = Brightest(hand.ShownFrame(), 16);
    EXPECT_GT(bright, 40) << "the fixed scan is not in the picture";
    EXPECT_LT(dim, bright / 2);
    hand.Drag(L, 320, 240, 60, -25);
    hand.ExpectRotation(3, 60, -25);
    hand.Check();
    hand.Drag(R, 200, 300, 35, 80);
    hand.ExpectShift(35, 80);
    hand.Check();
    hand.pane.SetRotationMode(0);
    hand.Drag(L, 300, 200, 40, 50);
    hand.ExpectRotation(0, 40, 50);
    hand.Drag(L, 600, 60, 8, 30);  // rolls, on the right above the centre
    hand.Expect(HandCamera(hand.pane).Roll(8, -30, hand.pivot));
    hand.Check();
    EXPECT_EQ(hand.pane.m_nInteractionMode, ModeAlignInteractive);
    EXPECT_TRUE(hand.Events().empty());
    user.Type(KV_ScenePane::kKeyEscape);
    EXPECT_EQ(hand.Events(), std::vector<std::string>{"AlignmentDone"});
    EXPECT_EQ(hand.pane.m_pInteractionDlg, nullptr);
    EXPECT_EQ(Brightest(hand.ShownFrame(), 16) > bright / 2, true) << "bright again";
    hand.Check();
    const Float3 axis = hand.pane.m_fAxisX;
    hand.pane.SetRotationMode(3);
    hand.Drag(L, 320, 240, 50, 0);
    EXPECT_NE(hand.pane.m_fAxisX, axis) << "the mouse is the view's again";
    hand.Check();
    EXPECT_TRUE(user.OthersCanGrabThePointer());
}

TEST_P(AlignmentByHand, MovesTheViewWithCtrlAndZoomsByTheWheelWithoutAJump) {
    hand.Begin();
    user.HoldCtrl(true);
    hand.Drag(L, 320, 240, 30, 10);
    user.HoldCtrl(false);
    hand.Check();
    user.MoveTo(300, 200);
    hand.Press(R);
    user.MoveTo(301, 200);
    user.MoveTo(311, 205);
    hand.ExpectShift(10, 5);
    user.Wheel(2);
    user.MoveTo(321, 225);
    hand.ExpectShift(10, 20);
    user.Release(R);
    hand.Check();
}

TEST_P(AlignmentByHand, FollowsShiftAndChordInTheDelayedScheme) {
    hand.pane.SetIGDRotation(1);
    hand.Begin();
    hand.Drag(R, 320, 240, 40, 20);
    hand.ExpectRotation(3, 40, 20);
    hand.Check();
    user.MoveTo(300, 200);
    hand.Press(R);
    user.MoveTo(301, 200);
    user.MoveTo(311, 210);
    hand.ExpectRotation(3, 10, 10);
    user.HoldShift(true);
    user.MoveTo(331, 240);
    hand.ExpectShift(20, 30);
    user.HoldShift(false);
    user.MoveTo(336, 240);
    hand.ExpectRotation(3, 5, 0);
    hand.Check();
    hand.Press(L);  // the chord
    user.MoveTo(337, 240);
    user.MoveTo(367, 230);
    hand.ExpectShift(30, -10);
    hand.Check();
    user.Release(L);
    user.Release(R);
    hand.Check();
    user.MoveTo(20, 20);
    hand.Check();
    hand.pane.FinishInteraction();
    EXPECT_EQ(hand.Events(), std::vector<std::string>{"AlignmentDone"});
}

TEST_P(AlignmentByHand, FollowsAMouseOutsideTheWindow) {
    hand.Begin();
    user.MoveTo(600, 400);
    hand.Press(R);
    user.MoveTo(601, 400);
    user.MoveTo(700, 520);
    hand.ExpectShift(99, 120);
    user.Release(R);
    hand.Check();
}
INSTANTIATE_TEST_SUITE_P(Ways, AlignmentByHand,
                         testing::Values(InputWay{"ByCalls", &MakeCallInput},
                                         InputWay{"RealPointer", &MakePointerInput}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BothWaysOfInput, MoveTheScanToTheSameBits) {
    HandAtTheViewer byCalls(MakeCallInput()), byPointer(MakePointerInput());
    for (HandAtTheViewer* const hand : {&byCalls, &byPointer}) {
        hand->Begin();
        for (int i = 0; i < 5; ++i) {
            hand->Drag(L, 300 + 10 * i, 200 + 7 * i, 31 - 9 * i, 12 * i - 20);
            hand->Drag(R, 200 + 10 * i, 300 - 7 * i, 13 * i - 25, 17 - 11 * i);
        }
        hand->user->Type(KV_ScenePane::kKeyEscape);
        EXPECT_EQ(hand->Events(), std::vector<std::string>{"AlignmentDone"});
    }
    const Mesh& a = *byCalls.pane.m_vpMeshes[1];
    const Mesh& b = *byPointer.pane.m_vpMeshes[1];
    EXPECT_TRUE(std::ranges::equal(a.m_Trafo.m_dQuat, b.m_Trafo.m_dQuat));
    EXPECT_TRUE(std::ranges::equal(a.m_Trafo.m_dTranslation, b.m_Trafo.m_dTranslation));
    for (std::size_t i = 0; i < a.m_vVertices.size(); ++i) {
        EXPECT_EQ(a.m_vVertices[i].x, b.m_vVertices[i].x);
        EXPECT_EQ(a.m_vVertices[i].nz, b.m_vVertices[i].nz);
    }
    EXPECT_GT(Difference(PoseOfScan(byCalls.pane, 1), Pose{}), 1) << "it moved";
}

}  // namespace
