// The host's look at the mouse before the viewer: what it sees and when, what it keeps from the viewer, and what it may
// do meanwhile.
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "view/InputHelp.h"
#include "view/UserInput.h"

namespace {

using KV_ScenePane::MouseInput;
using Kind = MouseInput::Kind;
constexpr auto L = Button::Left, M = Button::Middle, R = Button::Right;

struct InputWay {
    const char* name;
    std::unique_ptr<UserInput> (*makeUser)();
};
void PrintTo(const InputWay& way, std::ostream* out) { *out << way.name; }

class MouseFilter : public testing::TestWithParam<InputWay> {
protected:
    MouseFilter() { user->MoveTo(300, 200); }
    ~MouseFilter() override { viewer->SetMouseFilter({}); }
    /// Installs a filter that keeps what it sees and what mode the viewer has then. @param answer  of the filter
    void Watch(bool answer) {
        viewer->SetMouseFilter([this, answer](const MouseInput& input) {
            seen.push_back(input);
            modes.push_back(viewer->m_nInteractionMode);
            return answer;
        });
    }
    [[nodiscard]] std::vector<Kind> KindsSeen() const {
        std::vector<Kind> kinds;
        for (const MouseInput& input : seen) kinds.push_back(input.kind);
        return kinds;
    }

    const std::unique_ptr<UserInput> user = GetParam().makeUser();
    TestControl& viewer = user->Viewer();
    std::vector<MouseInput> seen;
    std::vector<std::int32_t> modes;
};

INSTANTIATE_TEST_SUITE_P(Ways, MouseFilter,
                         testing::Values(InputWay{"ByCalls", &MakeCallInput},
                                         InputWay{"RealPointer", &MakePointerInput}),
                         [](const auto& row) { return row.param.name; });

TEST_P(MouseFilter, SeesEveryInputBeforeTheViewerHandlesIt) {
    Watch(false);
    user->Press(R);
    EXPECT_EQ(viewer->m_nInteractionMode, ModePan);
    user->MoveTo(310, 205);
    user->Release(R);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    user->Press(M);
    user->Release(M);
    user->Wheel(1);
    user->DoubleClick();
    EXPECT_EQ(KindsSeen(), (std::vector{Kind::RightDown, Kind::Move, Kind::RightUp, Kind::MiddleDown, Kind::MiddleUp,
                                        Kind::Wheel, Kind::LeftDown, Kind::LeftUp, Kind::DoubleClick, Kind::LeftUp}));
    ASSERT_EQ(modes.size(), 10u);
    EXPECT_EQ(modes[0], ModeIdle) << "the press";
    EXPECT_EQ(modes[1], ModePan);
    EXPECT_EQ(modes[2], ModePan) << "the release";
    EXPECT_EQ(modes[4], ModeRotate) << "the release of the middle button";
    EXPECT_EQ(seen[0].flags, kRight);
    EXPECT_EQ(seen[1].x, 310);
    EXPECT_EQ(seen[1].y, 205);
    EXPECT_EQ(seen[2].flags, 0u);
    EXPECT_EQ(seen[5].delta, KV_ScenePane::kWheelNotch);
}

TEST_P(MouseFilter, KeepsFromTheViewerWhatItReturnsTrueFor) {
    Watch(true);
    const float zoom = viewer->m_fZoom;
    const Float3 right = viewer->m_fAxisX;
    for (const Button button : {L, M, R}) {
        user->Press(button);
        EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
        EXPECT_FALSE(viewer.window->HasCapture());
        user->MoveTo(300 + 20 * static_cast<int>(button), 260);
        user->Release(button);
    }
    user->Wheel(1);
    EXPECT_EQ(seen.size(), 10u);
    EXPECT_EQ(viewer->m_fZoom, zoom);
    EXPECT_EQ(viewer->m_fAxisX, right);
    viewer->SetMouseFilter({});
    user->Wheel(1);
    EXPECT_EQ(seen.size(), 10u) << "an empty filter removes it";
    EXPECT_NE(viewer->m_fZoom, zoom);
}

TEST_P(MouseFilter, SeesAPressOfTheDelayedSchemeAtOnce) {
    viewer->SetIGDRotation(1);
    Watch(true);
    user->Press(R);
    user->Release(R);
    EXPECT_EQ(KindsSeen(), (std::vector{Kind::RightDown, Kind::RightUp}));
    EXPECT_FALSE(viewer->m_mouseDispatch.pending) << "an ignored press is not delayed either";
    Watch(false);
    user->Press(R);
    EXPECT_EQ(seen.size(), 3u);
    EXPECT_TRUE(viewer->m_mouseDispatch.pending);
    EndDispatchDelay(viewer);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeRotate);
    EXPECT_EQ(seen.size(), 3u) << "the dispatch of the delayed press is no input";
    user->Release(R);
}

TEST_P(MouseFilter, LivesUntilItReturnsWhenItIsReplacedMeanwhile) {
    const auto owned = std::make_shared<int>();
    int later = 0;
    long ownersInside = 0;
    viewer->SetMouseFilter(
        [this, &later, &ownersInside, watched = std::weak_ptr(owned), mine = owned](const MouseInput&) {
            viewer->SetMouseFilter([&later](const MouseInput&) {
                ++later;
                return true;
            });
            ownersInside = watched.use_count();
            return true;
        });
    user->Press(L);
    EXPECT_EQ(ownersInside, 2) << "the filter was destroyed while it ran";
    EXPECT_EQ(owned.use_count(), 1) << "the former filter was not destroyed";
    EXPECT_EQ(later, 0);
    user->Release(L);
    EXPECT_EQ(later, 1);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST_P(MouseFilter, MayBeReplacedByOneThatSeesWhatItsPredecessorDoesAtItsEnd) {
    // What the former filter owns sends an input while it is destroyed: the viewer must have the new one by then.
    struct Sender {
        TestControl& viewer;
        ~Sender() { viewer->SendMouse({.kind = Kind::Wheel, .delta = KV_ScenePane::kWheelNotch}); }
    };
    viewer->SetMouseFilter([sender = std::make_shared<Sender>(viewer)](const MouseInput&) { return false; });
    Watch(true);
    EXPECT_EQ(KindsSeen(), std::vector{Kind::Wheel});
}

TEST_P(MouseFilter, MayCallMethodsOfTheViewer) {
    // The press is handled after the call: by the scheme that the filter has chosen.
    viewer->SetMouseFilter([this](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) viewer->FlipMouseButtons(1);
        return false;
    });
    user->Press(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModePan);
    user->Release(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST_P(MouseFilter, ThatRemovesTheWindowLeavesAViewerThatIgnoresTheInput) {
    viewer->SetMouseFilter([this](const MouseInput& input) {
        if (input.kind == Kind::LeftDown) viewer->RecreateOpenglContext(9, 9, 0);  // refused
        return false;
    });
    viewer->SendMouse({.kind = Kind::LeftDown, .flags = kLeft, .x = 300, .y = 200});
    EXPECT_FALSE(viewer->HasWindow());
    EXPECT_FALSE(viewer.window->HasCapture());
}

TEST(ThrowingMouseFilter, ReachesTheCallerAndTheInputIsNotHandled) {
    const auto user = MakeCallInput();
    TestControl& viewer = user->Viewer();
    user->MoveTo(300, 200);
    bool throws = true;
    viewer->SetMouseFilter([&throws](const MouseInput&) -> bool {
        if (throws) throw std::runtime_error("filter");
        return false;
    });
    EXPECT_THROW(viewer->SendMouse({.kind = Kind::LeftDown, .flags = kLeft, .x = 300, .y = 200}), std::runtime_error);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    throws = false;
    user->Press(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeRotate);
    user->Release(L);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

TEST(ThrowingMouseFilter, LosesNoLaterInputOfTheWindow) {
    const auto user = MakePointerInput();
    TestControl& viewer = user->Viewer();
    user->MoveTo(300, 200);
    int thrown = 0;
    viewer->SetMouseFilter([&thrown](const MouseInput& input) -> bool {
        if (input.kind == Kind::LeftDown && ++thrown == 1) throw std::runtime_error("filter");
        return false;
    });
    EXPECT_THROW(user->DoubleClick(), std::runtime_error);
    const auto& heard = viewer.window->mouseHeard;
    PumpUntil(*viewer, "the rest of the double click", [&] {
        return heard.back().kind == Kind::LeftUp && heard.size() >= 4 &&
               heard[heard.size() - 2].kind == Kind::DoubleClick;
    });
    EXPECT_EQ(thrown, 1);
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
}

// A menu of its own event loop at the press of a button: the release comes while the filter runs.
TEST(MouseFilterWithAnEventLoop, KeepsAPressWhoseReleaseCameMeanwhile) {
    const auto user = MakePointerInput();
    TestControl& viewer = user->Viewer();
    user->MoveTo(300, 200);
    std::vector<Kind> order;
    viewer->SetMouseFilter([&](const MouseInput& input) {
        order.push_back(input.kind);
        if (input.kind != Kind::LeftDown) return false;
        PumpUntil(*viewer, "the release", [&] { return order.back() == Kind::LeftUp; });
        return true;  // the viewer never sees the press whose release it has handled
    });
    user->DoubleClick();
    EXPECT_EQ(order, (std::vector{Kind::LeftDown, Kind::LeftUp, Kind::DoubleClick, Kind::LeftUp}));
    EXPECT_EQ(viewer->m_nInteractionMode, ModeIdle);
    EXPECT_FALSE(viewer.window->HasCapture());
}

}  // namespace
