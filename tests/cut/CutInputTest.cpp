// The press that starts a freehand session, and what keeps it from starting.
#include <functional>
#include <stdexcept>
#include <tuple>

#include <GL/glew.h>

#include "KV_ScenePane/ScenePane.h"
#include "view/InputHelp.h"

namespace {

/// Waits for the first click of a freehand session.
struct WaitingControl : InputControl {
    explicit WaitingControl(std::int16_t mode = KV_ScenePane::FreehandInside) {
        control->StartSegmentation(mode);
        window->Forget();
    }
    [[nodiscard]] const CutSession& Session() const { return *control->m_pCutSession; }
};

TEST(CutSessionStart, MovesTheTexturesIntoTheSession) {
    WaitingControl c;
    const CutMaskTextures* const textures = c->m_pCutMask.get();
    ASSERT_NE(textures, nullptr);
    c->OnLeftDown(kLeft, 160, 120);
    ASSERT_NE(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutMask, nullptr);
    EXPECT_EQ(c.Session().m_pTextures.get(), textures);
    EXPECT_EQ(c.Session().m_ptStart, (LassoPixel{160, 120}));
    EXPECT_EQ(c.Session().m_uProgram, c->m_progUseMask);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.RepaintRequests(), 1);
    EXPECT_TRUE(c.window->modalMessages.empty());
}

TEST(CutSessionStart, OnTheBorderOrOutsideBeginsBesideIt) {
    for (const auto& [at, start] : {std::pair<LassoPixel, LassoPixel>{{0, 0}, {1, 1}},
                                    {{639, 479}, {638, 478}},
                                    {{-50, 240}, {1, 240}},
                                    {{INT32_MAX, INT32_MIN}, {638, 1}}}) {
        WaitingControl c;
        c->OnLeftDown(kLeft, at.x, at.y);
        ASSERT_NE(c->m_pCutSession, nullptr);
        EXPECT_EQ(c.Session().m_ptStart, start);
    }
}

TEST(CutSessionStart, TintsWhatGoesWithTheInsideColour) {
    for (std::int16_t mode = KV_ScenePane::FreehandOutside; mode <= KV_ScenePane::FreehandVisible; ++mode) {
        WaitingControl c(mode);
        c->SetLassoCuttingColors(0x112233, 1, 0x445566, 0.5f);
        c->OnLeftDown(kLeft, 160, 120);
        ASSERT_NE(c->m_pCutSession, nullptr);
        EXPECT_EQ(c.Session().m_uLineColor, 0xFFFFFF00u);
        EXPECT_EQ(c.Session().m_uFillColor, mode == 3 ? 0x7F445566u : 0xFF112233u) << mode;
        EXPECT_EQ(c.Session().m_uOutsideColor, mode == 3 ? 0xFF112233u : 0x7F445566u) << mode;
    }
}

struct RefusedTint {
    const char* name;
    std::int16_t mode;
    std::int32_t inside;
    float insideOpacity;
    std::int32_t outside;
    float outsideOpacity;
    const char* reason;
};
void PrintTo(const RefusedTint& row, std::ostream* out) { *out << row.name; }

const RefusedTint kRefusedTints[] = {
    {"InvisibleRedInside", 4, 255, 0, 0, 0, "Cannot use internal marker color"},
    {"InvisibleRedOutside", 4, 0, 0.5f, 255, 0, "Cannot use internal marker color"},
    {"RedOfNoOpacity", 5, 255, NAN, 0, 0, "Cannot use internal marker color"},
    {"InsideLikeTheLine", 4, 0xFFFF00, 1, 0, 0, "Fill and lasso color must be different"},
    {"OutsideLikeTheLineWhereItIsFilled", 3, 255, 0.5f, 0xFFFF00, 2, "Fill and lasso color must be different"},
};
class CutSessionStartRefuses : public testing::TestWithParam<RefusedTint> {};

// No exception leaves the handler, and the textures are gone with their OpenGL objects.
TEST_P(CutSessionStartRefuses, AndPassesTheReasonToTheMessageChannel) {
    const RefusedTint& row = GetParam();
    WaitingControl c(row.mode);
    const std::uint32_t texture = c->m_pCutMask->m_uFillTexture;
    c->SetLassoCuttingColors(row.inside, row.insideOpacity, row.outside, row.outsideOpacity);
    EXPECT_NO_THROW(c->OnLeftDown(kLeft, 160, 120));
    EXPECT_EQ(c.window->modalMessages, (std::vector<std::string>{row.reason}));
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c->m_pCutMask, nullptr);
    EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
    ASSERT_TRUE(c->MakeContextCurrent());
    EXPECT_EQ(glIsTexture(texture), GL_FALSE);
    EXPECT_EQ(c.RepaintRequests(), 0);
    // Further clicks and moves find nothing.
    c.window->Forget();
    c->OnLeftDown(kLeft, 200, 120);
    c->OnMouseMoved(kLeft, 220, 120);
    c->OnMouseMoved(0, 240, 120);
    EXPECT_EQ(c.RepaintRequests(), 0);
    EXPECT_TRUE(c.window->modalMessages.empty());
    EXPECT_EQ(c->m_pCutSession, nullptr);
    // The next session is a new one.
    c->SetLassoCuttingColors(255, 0.5f, 0, 0);
    c->StartSegmentation(row.mode);
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_NE(c->m_pCutSession, nullptr);
}
INSTANTIATE_TEST_SUITE_P(Tints, CutSessionStartRefuses, testing::ValuesIn(kRefusedTints),
                         [](const auto& row) { return row.param.name; });

TEST(CutSessionStart, ThatFailsDeletesTheTexturesOfItsOwnContext) {
    WaitingControl c, other;
    const std::uint32_t texture = c->m_pCutMask->m_uFillTexture, others = other->m_pCutMask->m_uFillTexture;
    c->SetLassoCuttingColors(255, 0, 0, 0);
    ASSERT_TRUE(other->MakeContextCurrent());
    c->OnLeftDown(kLeft, 160, 120);
    ASSERT_TRUE(c->MakeContextCurrent());
    EXPECT_EQ(glIsTexture(texture), GL_FALSE);
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(glIsTexture(others), GL_TRUE);
}

TEST(CutSessionStart, AllowsAnOutsideLikeTheLine) {
    WaitingControl c;
    c->SetLassoCuttingColors(255, 0.5f, 0xFFFF00, 1);
    c->OnLeftDown(kLeft, 160, 120);
    EXPECT_NE(c->m_pCutSession, nullptr);
}

// The images are those of the window at the start of the segmentation, the press is in the window of now.
TEST(CutSessionStart, NeedsThreePixelsOnEverySide) {
    for (const auto& [atStart, atPress, starts] : {std::tuple<WindowSize, WindowSize, bool>{{2, 2}, {2, 2}, false},
                                                   {{2, 100}, {2, 100}, false},
                                                   {{100, 2}, {100, 2}, false},
                                                   {{1, 1}, {1, 1}, false},
                                                   {{0, 0}, {0, 0}, false},
                                                   {{0, 50}, {0, 50}, false},
                                                   {{2, 2}, {100, 100}, false},
                                                   {{100, 100}, {2, 100}, false},
                                                   {{100, 100}, {0, 0}, false},
                                                   {{3, 3}, {3, 3}, true},
                                                   {{100, 100}, {3, 3}, true}}) {
        InputControl c;
        c.window->Resize(atStart.width, atStart.height);
        c->StartSegmentation(KV_ScenePane::FreehandInside);
        c.window->Resize(atPress.width, atPress.height);
        const bool waits = c->m_pCutMask != nullptr;
        c.window->Forget();
        c->OnLeftDown(kLeft, 1, 1);
        EXPECT_EQ(c->m_pCutSession != nullptr, starts) << atStart.width << " x " << atStart.height;
        EXPECT_EQ(c->m_nInteractionMode, ModeMaskLasso);
        EXPECT_EQ(c.RepaintRequests(), starts ? 1 : 0);
        EXPECT_TRUE(c.window->modalMessages.empty());
        EXPECT_EQ(c->m_pCutMask != nullptr, waits && !starts) << "the textures wait on";
        c->PerformRefresh();
        ASSERT_TRUE(c->MakeContextCurrent());
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        c->FinishSegmentation(true);
    }
}

// ---- the message of a session that cannot start: the host may do anything in it

class CutSessionMessage : public testing::Test {
protected:
    CutSessionMessage() {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
        request.width = 200, request.height = 100;
        request.showMessage = [this](const std::string& text) {
            messages.push_back(text);
            inside();
        };
        viewer = KV_ScenePane::CreateScenePane(request, nullptr);
        Start();
    }
    /// A session that waits for its first click, with colours that it cannot have.
    void Start() {
        viewer->Methods().SetLassoCuttingColors(255, 0, 0, 0);
        viewer->Methods().StartSegmentation(KV_ScenePane::FreehandInside);
    }
    void Press() { viewer->SendMouse({KV_ScenePane::MouseInput::Kind::LeftDown, kLeft, 100, 50, 0}); }

    std::vector<std::string> messages;
    std::function<void()> inside = [] {};
    std::unique_ptr<KV_ScenePane::ScenePane> viewer;
};

TEST_F(CutSessionMessage, MayDestroyTheViewer) {
    inside = [this] { viewer.reset(); };
    Press();
    EXPECT_EQ(viewer, nullptr);
    EXPECT_EQ(messages.size(), 1u);
}

TEST_F(CutSessionMessage, MayMakeTheContextAgainOrClearTheScene) {
    inside = [this] {
        viewer->Methods().RecreateOpenglContext(3, 3, 0);
        viewer->Methods().ClearData();
    };
    Press();
    Press();
    EXPECT_EQ(messages.size(), 1u);
    viewer->Methods().PerformRefresh();
}

TEST_F(CutSessionMessage, MayStartAnotherSession) {
    inside = [this] {
        viewer->Methods().SetLassoCuttingColors(255, 0.5f, 0, 0);
        viewer->Methods().StartSegmentation(KV_ScenePane::FreehandInside);
        Press();
    };
    Press();
    EXPECT_EQ(messages.size(), 1u);
    viewer->Methods().PerformRefresh();
    viewer->Methods().EndSegmentation();
}

TEST_F(CutSessionMessage, MayThrow) {
    inside = [] { throw std::runtime_error("of the host"); };
    EXPECT_THROW(Press(), std::runtime_error);
    EXPECT_NO_THROW(Press()) << "nothing waits any more";
    viewer->Methods().EndSegmentation();
}

// ---- points

TEST(CutSessionStart, TruncatesThePixelInSinglePrecision) {
    WaitingControl c;
    c->StartCutSession(0.3f, 0.7f);  // 192.000006 and 335.99999
    ASSERT_NE(c->m_pCutSession, nullptr);
    const LassoPixel expected{static_cast<std::int32_t>(640.0f * 0.3f), static_cast<std::int32_t>(480.0f * 0.7f)};
    EXPECT_EQ(c.Session().m_ptStart, expected);
}

TEST(CutSessionStart, OfAPointThatIsNoNumberBeginsAtTheBorder) {
    WaitingControl c;
    c->StartCutSession(NAN, INFINITY);
    ASSERT_NE(c->m_pCutSession, nullptr);
    EXPECT_EQ(c.Session().m_ptStart, (LassoPixel{1, 478}));
}

TEST(CutSessionInput, WithoutASessionDoesNothing) {
    InputControl c({.mode = ModeMaskLasso});
    c->AddCutSessionPoint(0.5f, 0.5f);
    c->PreviewCutSessionPoint(0.5f, 0.5f);
    c->StartCutSession(0.5f, 0.5f);
    EXPECT_EQ(c->m_pCutSession, nullptr);
    EXPECT_EQ(c.RepaintRequests(), 0);
}

TEST(CutSessionInput, DragsAddPointsAndMovesWithoutButtonPreviewThem) {
    WaitingControl c;
    c->OnMouseMoved(kLeft, 30, 30);
    EXPECT_EQ(c.RepaintRequests(), 0) << "before the first click";
    c->OnLeftDown(kLeft, 160, 120);
    c.window->Forget();
    c->OnMouseMoved(kLeft, 170, 120);
    EXPECT_EQ(c.Session().m_vPending, (std::vector<LassoPixel>{{170, 120}}));
    c->OnMouseMoved(0, 180, 130);
    EXPECT_EQ(c.Session().m_optPreview, (LassoPixel{180, 130}));
    EXPECT_EQ(c.Session().m_vPending.size(), 1u);
    c->OnLeftDown(kLeft, 190, 140);
    EXPECT_EQ(c.Session().m_vPending.back(), (LassoPixel{190, 140}));
    EXPECT_EQ(c.Session().GetLastPoint(), (LassoPixel{190, 140}));
    EXPECT_EQ(c.window->eraseInvalidates, 3);
    EXPECT_EQ(c.RepaintRequests(), 3);
    c->OnLeftUp(kLeft, 190, 140);
    EXPECT_EQ(c.RepaintRequests(), 3);
}

}  // namespace
