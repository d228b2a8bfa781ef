// The kept matrices and viewport are to the bit those that OpenGL has, whatever has changed the view.
#include <GL/glew.h>

#include <array>
#include <bit>
#include <functional>

#include "platform/CurrentContext.h"
#include "view/CameraHelp.h"

namespace {

template <typename To, typename From>
std::array<To, 16> Bits(const std::array<From, 16>& matrix) {
    return std::bit_cast<std::array<To, 16>>(matrix);
}

/// Compares with queries of OpenGL. The first use of a value after a change reads it, later ones do not.
void ExpectAsOpenGlHasThem(CKV_ScenePaneCtrl& control, const std::string& after) {
    ASSERT_TRUE(control.MakeContextCurrent());
    ViewMatrices& kept = control.m_viewMatrices;
    ViewMatrices::Matrix modelView{}, projection{};
    ViewMatrices::FloatMatrix projectionAsFloats{};
    ViewMatrices::Rectangle viewport{};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelView.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    glGetFloatv(GL_PROJECTION_MATRIX, projectionAsFloats.data());
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    for (int use = 0; use < 2; ++use) {
        EXPECT_EQ(Bits<std::uint64_t>(kept.ModelView()), Bits<std::uint64_t>(modelView)) << after;
        EXPECT_EQ(Bits<std::uint64_t>(kept.Projection()), Bits<std::uint64_t>(projection)) << after;
        EXPECT_EQ(Bits<std::uint32_t>(kept.ProjectionAsFloats()), Bits<std::uint32_t>(projectionAsFloats)) << after;
        EXPECT_EQ(kept.Viewport(), viewport) << after;
    }
}

struct Change {
    const char* name;
    std::function<void(OffscreenControl&)> apply;
};

const Change kChanges[] = {
    {"nothing", [](OffscreenControl&) {}},
    {"SetViewMode", [](OffscreenControl& c) { c->SetViewMode(KV_ScenePane::ViewObliqueZUp); }},
    {"CenterView", [](OffscreenControl& c) { c->CenterView(); }},
    {"SetViewParams",
     [](OffscreenControl& c) {
         SetView(*c, {0.8f, 0, 0.6f}, {0, 1, 0}, {1, -2, 3}, 1.7f);
     }},
    {"PanView", [](OffscreenControl& c) { c->PanView(3, -5); }},
    {"ZoomView", [](OffscreenControl& c) { c->ZoomView(0, 40); }},
    {"a centre at 0",
     [](OffscreenControl& c) {
         c->SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
         c->m_fViewCenter = {0.0f, 0.0f, 0.0f};
         c->SetupViewMatrices();
     }},
    {"zeros of the other sign",
     [](OffscreenControl& c) {
         c->m_fViewCenter = {-0.0f, -0.0f, -0.0f};
         c->m_fAxisY[2] = -0.0f;
         c->SetupViewMatrices();
     }},
    {"a resize",
     [](OffscreenControl& c) {
         c.window->Resize(333, 777);
         c->PerformRefresh();
     }},
    {"a resize back",
     [](OffscreenControl& c) {
         c.window->Resize(640, 480);
         c->PerformRefresh();
     }},
    {"a height of 0",
     [](OffscreenControl& c) {
         c.window->Resize(200, 0);
         c->PerformRefresh();
     }},
    {"SetSize", [](OffscreenControl& c) { c->SetSize(300, 200); }},
    {"a screenshot",
     [](OffscreenControl& c) {
         std::vector<std::uint32_t> pixels(std::size_t{2048} * 2048);
         c->CaptureScreenShot(pixels.data());
     }},
    {"a frame with axes and shadows",
     [](OffscreenControl& c) {
         c->m_nShowAxes = 1;
         c->SetShadowMode(1);
         c->PerformRefresh();
         c->PerformRefresh();
     }},
    {"a frame with the clip plane",
     [](OffscreenControl& c) {
         c->m_bClipPlaneActive = c->m_bClipPlaneVisible = 1;
         c->PerformRefresh();
     }},
    {"a scene without size",
     [](OffscreenControl& c) {
         c->m_fSceneSize = 0;
         c->SetupViewMatrices();
     }},
    {"a centre that is not a number",
     [](OffscreenControl& c) {
         c->m_fViewCenter[1] = NAN;
         c->SetupViewMatrices();
     }},
    {"a new context",
     [](OffscreenControl& c) {
         c->m_fViewCenter = {};
         c->m_fSceneSize = 100;
         c->RecreateOpenglContext(3, 3, 0);
     }},
    {"ClearData", [](OffscreenControl& c) { c->ClearData(); }},
};

TEST(ViewMatrices, AreThoseOfOpenGlAfterEveryChange) {
    OffscreenControl c;
    AddBox(*c, {-3, -2, -1}, {4, 5, 6});
    for (const Change& change : kChanges) {
        change.apply(c);
        ExpectAsOpenGlHasThem(*c, change.name);
    }
}

TEST(ViewMatrices, OfAFormerViewAreStillRightWhenItReturns) {
    OffscreenControl c;
    for (int round = 0; round < 3; ++round)
        for (std::int16_t mode = 0; mode < 8; ++mode) {
            c->SetViewMode(mode);
            ExpectAsOpenGlHasThem(*c, "view mode " + std::to_string(mode));
            c->SetViewMode(static_cast<std::int16_t>(7 - mode / 2));
            ExpectAsOpenGlHasThem(*c, "view mode " + std::to_string(7 - mode / 2));
        }
}

TEST(ViewMatrices, BelongToOneControl) {
    OffscreenControl first(400, 400), second(100, 100);  // the second one's context is current now
    first->m_fSceneSize = 400;
    first->SetupViewMatrices();
    ASSERT_TRUE(second->MakeContextCurrent());
    std::int32_t x = 0, y = 0;
    first->ProjectPoint(50, 20, 0, &x, &y);
    EXPECT_NEAR(x, 250, 1);
    EXPECT_NEAR(y, 180, 1);
    ExpectAsOpenGlHasThem(*first, "the first");
    ExpectAsOpenGlHasThem(*second, "the second");
}

TEST(ViewMatrices, AreZeroWithoutAContext) {
    NoPictureControl c;
    double x = 7, y = 7;
    c->ProjectPointDouble(1, 2, 3, &x, &y);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, c->m_nHeight);
}

TEST(ViewMatrices, AreReadAgainInANewContext) {
    OffscreenControl c(400, 400);
    std::int32_t x = 0, y = 0;
    c->ProjectPoint(1, 2, 3, &x, &y);
    c->m_fSceneSize = 10;
    c->RecreateOpenglContext(3, 3, 0);
    c->PerformRefresh();
    ExpectAsOpenGlHasThem(*c, "a new context");
}

}  // namespace
