// Pick-point spheres: the list, its events, the nearest one to a pixel, and frames with spheres.
#include <functional>
#include <limits>

#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"
#include "support/BareContext.h"

using namespace lighting;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

/// Calls a function at each event about the spheres.
struct SphereEvents final : KV_ScenePane::_DKV_ScenePaneEvents {
    std::vector<std::int32_t> counts;
    std::function<void(std::int32_t)> handler;
    void PickPointCountChanged(std::int32_t newCount) override {
        counts.push_back(newCount);
        if (handler) handler(newCount);
    }
};

// A unit of the scene is 24 pixels; the origin is at (160, 120).
class PickPointSpheres : public SceneTest {
protected:
    PickPointSpheres() {
        pane->Connect(&events);
        pane->PerformRefresh();  // adopts the size of the window
        Look(320, 240);
        pane.window->Forget();
    }
    std::int32_t AddSphere(const Vec3& at, std::uint32_t color = 0xFF) {
        return pane->AddPickPointSphere(static_cast<float>(at[0]), static_cast<float>(at[1]), static_cast<float>(at[2]),
                                        static_cast<std::int32_t>(color));
    }
    [[nodiscard]] std::vector<Float3> Places() const {
        std::vector<Float3> places;
        for (std::int32_t id = 0; id < pane->GetNumberOfPickPointSpheres(); ++id) {
            Float3 p{};
            pane->GetPickPointSphereCoords(id, &p[0], &p[1], &p[2]);
            places.push_back(p);
        }
        return places;
    }

    /// A sphere in the middle of a pixel.
    std::int32_t AddSphereAt(int x, int y, double z = 0) {
        return AddSphere(camera.PointAt(x, y, {0, 0, z}, {0, 0, 1}));
    }

    SphereEvents events;
};

// ---- the list

TEST_F(PickPointSpheres, HaveTheirIndexAsId) {
    EXPECT_EQ(AddSphere({1, 2, 3}, 0x112233), 0);
    EXPECT_EQ(AddSphere({4, 5, 6}, 0x445566), 1);
    EXPECT_EQ(AddSphere({7, 8, 9}, 0x778899), 2);
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), 3);
    EXPECT_EQ(Places(), (std::vector<Float3>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
    EXPECT_EQ(events.counts, (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(PickPointSpheres, MoveDownWhenAnEarlierOneIsRemoved) {
    AddSphere({1, 2, 3}, 0x112233), AddSphere({4, 5, 6}, 0x445566), AddSphere({7, 8, 9}, 0x778899);
    pane->RemovePickPointSphere(0);
    EXPECT_EQ(Places(), (std::vector<Float3>{{4, 5, 6}, {7, 8, 9}}));
    EXPECT_EQ(pane->m_vPickPointSpheres[1].color, 0x778899u);
    pane->RemovePickPointSphere(1);
    EXPECT_EQ(Places(), (std::vector<Float3>{{4, 5, 6}}));
    pane->RemovePickPointSphere(0);
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), 0);
    EXPECT_EQ(events.counts, (std::vector<std::int32_t>{1, 2, 3, 2, 1, 0}));
}

TEST_F(PickPointSpheres, KeepTheirColourWhenTheyAreMoved) {
    AddSphere({1, 2, 3}, 0x112233), AddSphere({4, 5, 6}, 0x445566);
    pane->MovePickPointSphere(1, -1, -2, -3);
    EXPECT_EQ(Places(), (std::vector<Float3>{{1, 2, 3}, {-1, -2, -3}}));
    EXPECT_EQ(pane->m_vPickPointSpheres[1].color, 0x445566u);
    EXPECT_EQ(events.counts.size(), 2u) << "a move is no change of the count";
}

TEST_F(PickPointSpheres, AreDroppedByTheModeAndKeptByClearData) {
    AddSphere({1, 2, 3});
    pane->ClearData();
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), 1);
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), 0);
}

struct Change {
    const char* name;
    std::function<void(CKV_ScenePaneCtrl&)> call;
    std::int32_t count;  ///< that the event reports; -1 without an event
};
void PrintTo(const Change& row, std::ostream* out) { *out << row.name; }

class PickPointSphereChange : public PickPointSpheres, public testing::WithParamInterface<Change> {};

INSTANTIATE_TEST_SUITE_P(Table, PickPointSphereChange,
                         testing::Values(Change{"Add", [](auto& c) { EXPECT_EQ(c.AddPickPointSphere(1, 2, 3, 4), 2); },
                                                3},
                                         Change{"Remove", [](auto& c) { c.RemovePickPointSphere(0); }, 1},
                                         Change{"Clear", [](auto& c) { c.ClearPickPointSpheres(); }, 0},
                                         Change{"Move", [](auto& c) { c.MovePickPointSphere(1, 0, 0, 0); }, -1}),
                         [](const auto& row) { return row.param.name; });

TEST_P(PickPointSphereChange, FiresItsEventAfterTheChangeAndBeforeTheRepaint) {
    AddSphere({0, 0, 0}), AddSphere({1, 1, 1});
    pane.window->Forget();
    events.counts.clear();
    events.handler = [&](std::int32_t count) {
        EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), count);
        EXPECT_EQ(pane.window->refreshes, 0);
    };
    GetParam().call(*pane);
    EXPECT_EQ(pane.window->refreshes, 1);
    EXPECT_EQ(pane.window->invalidates + pane.window->eraseInvalidates, 0);
    if (GetParam().count < 0)
        EXPECT_TRUE(events.counts.empty());
    else
        EXPECT_EQ(events.counts, (std::vector<std::int32_t>{GetParam().count}));
}

TEST_F(PickPointSpheres, ClearedTwiceFireTheirEventTwice) {
    pane->ClearPickPointSpheres();
    pane->ClearPickPointSpheres();
    EXPECT_EQ(events.counts, (std::vector<std::int32_t>{0, 0}));
    EXPECT_EQ(pane.window->refreshes, 2);
}

// ---- handlers that change the list

struct Meddler {
    const char* name;
    std::function<void(CKV_ScenePaneCtrl&)> call;
    std::int32_t left;  ///< spheres after a sphere was added to two
};
void PrintTo(const Meddler& row, std::ostream* out) { *out << row.name; }

class PickPointSphereHandler : public PickPointSpheres, public testing::WithParamInterface<Meddler> {
protected:
    /// The first event calls the method.
    void Arm() {
        events.counts.clear();
        events.handler = [&](std::int32_t) {
            events.handler = {};
            GetParam().call(*pane);
        };
    }
};

INSTANTIATE_TEST_SUITE_P(
    Table, PickPointSphereHandler,
    testing::Values(Meddler{"RemovesTheFirst", [](auto& c) { c.RemovePickPointSphere(0); }, 2},
                    Meddler{"RemovesTheLast",
                            [](auto& c) { c.RemovePickPointSphere(c.GetNumberOfPickPointSpheres() - 1); }, 2},
                    Meddler{"ClearsThem", [](auto& c) { c.ClearPickPointSpheres(); }, 0},
                    Meddler{"SetsThePickMode", [](auto& c) { c.SetPickMode(KV_ScenePane::PickModePoints); }, 0},
                    Meddler{"AddsAnother", [](auto& c) { c.AddPickPointSphere(7, 7, 7, 7); }, 4},
                    Meddler{"ClearsTheData", [](auto& c) { c.ClearData(); }, 3},
                    Meddler{"RecreatesTheContext", [](auto& c) { c.RecreateOpenglContext(3, 3, 0); }, 3},
                    Meddler{"DisconnectsTheEvents", [](auto& c) { c.Connect(nullptr); }, 3}),
    [](const auto& row) { return row.param.name; });

TEST_P(PickPointSphereHandler, OfAnAdditionDoesNotChangeTheIdThatIsReturned) {
    AddSphere({0, 0, 0}), AddSphere({1, 1, 1});
    Arm();
    EXPECT_EQ(AddSphere({2, 2, 2}), 2);
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), GetParam().left);
    EXPECT_EQ(events.counts[0], 3);
    Frame();
}

TEST_P(PickPointSphereHandler, OfARemovalMayChangeTheList) {
    AddSphere({0, 0, 0}), AddSphere({1, 1, 1}), AddSphere({2, 2, 2}), AddSphere({3, 3, 3});
    Arm();
    pane->RemovePickPointSphere(1);  // three are left, as after the addition above
    EXPECT_EQ(pane->GetNumberOfPickPointSpheres(), GetParam().left);
    EXPECT_EQ(events.counts[0], 3);
    Frame();
}

#ifndef NDEBUG
TEST_F(PickPointSpheres, RefuseIdsThatAreNotInTheList) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    float f = 0;
    EXPECT_DEATH(pane->RemovePickPointSphere(0), "IsIndex");
    AddSphere({0, 0, 0});
    for (const std::int32_t id : {-1, 1, INT32_MIN, INT32_MAX}) {
        EXPECT_DEATH(pane->RemovePickPointSphere(id), "IsIndex");
        EXPECT_DEATH(pane->MovePickPointSphere(id, 0, 0, 0), "IsIndex");
        EXPECT_DEATH(pane->GetPickPointSphereCoords(id, &f, &f, &f), "IsIndex");
    }
}
#endif

// ---- the nearest one

TEST_F(PickPointSpheres, NearestIsFoundByPixelsInAnyPickMode) {
    EXPECT_EQ(pane->FindNearestPickPointSphere(0, 0), -1);
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{0, 2, 5}) {
        pane->SetPickMode(mode);
        AddSphere({-3, 0, 0}), AddSphere({3, 0, -4}), AddSphere({0, 2, 900});  // (88,120), (232,120), (160,72)
        EXPECT_EQ(pane->FindNearestPickPointSphere(88, 120), 0);
        EXPECT_EQ(pane->FindNearestPickPointSphere(0, 239), 0);
        EXPECT_EQ(pane->FindNearestPickPointSphere(190, 120), 1);
        EXPECT_EQ(pane->FindNearestPickPointSphere(160, 72), 2) << "behind the eye, and outside the depth range";
        EXPECT_EQ(pane->FindNearestPickPointSphere(160, 100), 2);
        EXPECT_EQ(pane->FindNearestPickPointSphere(5000, -70), 1) << "any distance counts";
    }
}

TEST_F(PickPointSpheres, NearestWithATieIsTheLowestId) {
    AddSphereAt(280, 120), AddSphereAt(112, 120), AddSphereAt(208, 120, 5), AddSphereAt(112, 120, 3);
    AddSphereAt(160, 72), AddSphereAt(160, 168);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160, 120), 1);
    EXPECT_EQ(pane->FindNearestPickPointSphere(112, 120), 1) << "two at the same pixel";
    EXPECT_EQ(pane->FindNearestPickPointSphere(161, 120), 2);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160, 119), 4);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160, 121), 5);
    EXPECT_EQ(pane->FindNearestPickPointSphere(159, 121), 1);
}

TEST_F(PickPointSpheres, NearestIsComparedInPixelsTruncatedToWholeOnes) {
    // At 160.2 and at 160.9: the same pixel 160, though the second is nearer to 161.
    AddSphere({0.2 / 24, 0.5 / 24, 0}), AddSphere({0.9 / 24, 0.5 / 24, 0});
    EXPECT_EQ(pane->FindNearestPickPointSphere(161, 120), 0);
}

TEST_F(PickPointSpheres, NearestIsComputedWithoutOverflow) {
    AddSphereAt(160, 120), AddSphereAt(24160, 120);
    // The square of 65536 is 0 in 32 bits.
    EXPECT_EQ(pane->FindNearestPickPointSphere(160 + 65536, 120), 1);
    pane->RemovePickPointSphere(1);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160 + 46340, 120), 0);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160 + 46341, 120), -1);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160, 120 - 46340), 0);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160, 120 - 46341), -1);
    EXPECT_EQ(pane->FindNearestPickPointSphere(160 + 32767, 120 + 32767), 0);   // 2147352578
    EXPECT_EQ(pane->FindNearestPickPointSphere(160 + 32769, 120 + 32768), -1);  // 2147549185
    for (const std::int32_t x : {INT32_MIN, INT32_MAX})
        for (const std::int32_t y : {INT32_MIN, 120, INT32_MAX}) {
            EXPECT_EQ(pane->FindNearestPickPointSphere(x, y), -1);
            EXPECT_EQ(pane->FindNearestPickPointSphere(y, x), -1);
        }
}

TEST_F(PickPointSpheres, NearestSkipsProjectionsThatAreNotFiniteOrDoNotFit) {
    for (const double odd : {double{kNan}, double{kInf}, double{-kInf}, 1e9, -1e9, 3e38}) {
        pane->ClearPickPointSpheres();
        AddSphere({odd, 0, 0}), AddSphere({0, odd, 0});
        EXPECT_EQ(pane->FindNearestPickPointSphere(INT32_MIN, INT32_MIN), -1) << odd;
        EXPECT_EQ(pane->FindNearestPickPointSphere(160, 120), -1) << odd;
        AddSphere({100, 0, 0});
        EXPECT_EQ(pane->FindNearestPickPointSphere(160, 120), 2) << odd;
    }
}

TEST_F(PickPointSpheres, NearestIsFoundByTheViewOfTheirControl) {
    AddSphere({-3, 0, 0}), AddSphere({3, 0, 0});
    TestControl other(WindowKind::OffScreen, 640, 100);
    other->PerformRefresh();
    other->SetViewMode(5);
    other->SetViewMode(7);  // x to the left
    const BareContext foreign;
    EXPECT_EQ(pane->FindNearestPickPointSphere(88, 120), 0);
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(pane->FindNearestPickPointSphere(232, 120), 1);
    other->AddPickPointSphere(-3, 0, 0, 0);
    EXPECT_EQ(pane->FindNearestPickPointSphere(88, 120), 0);
}

TEST_F(PickPointSpheres, OfThousandsTheNearestIsFound) {
    for (int i = 0; i < 3000; ++i) pane->m_vPickPointSpheres.push_back({0.01f * static_cast<float>(i % 60), 4, 0, 0});
    pane->m_vPickPointSpheres[2345] = {1, 1, 0, 0};
    EXPECT_EQ(pane->FindNearestPickPointSphere(184, 96), 2345);
}

TEST(PickPointSpheresWithoutAPicture, AreKeptAndNoneIsNearest) {
    NoPictureControl control;
    EXPECT_EQ(control->AddPickPointSphere(1, 2, 3, 4), 0);
    EXPECT_EQ(control->FindNearestPickPointSphere(0, 0), -1);
    control->MovePickPointSphere(0, 4, 5, 6);
    Float3 p{};
    control->GetPickPointSphereCoords(0, &p[0], &p[1], &p[2]);
    EXPECT_EQ(p, (Float3{4, 5, 6}));
    control->RemovePickPointSphere(0);
    EXPECT_EQ(control->GetNumberOfPickPointSpheres(), 0);
}

// ---- frames

class PickPointSphereFrames : public PickPointSpheres {
protected:
    PickPointSphereFrames() {
        pane->SetPickRadius(0.5f);
        ShowSpheres();
    }
    void ShowSpheres() {
        pane->m_nPickMode = KV_ScenePane::PickModePoints;
        pane->m_bPickPointValid = 1;
    }
    /// The colour of a point that faces the camera.
    [[nodiscard]] Vec3 LitFront(const Vec3& color) const {
        Surface surface;
        surface.color = color;
        return FixedFunction(camera, surface);
    }
};

TEST_F(PickPointSphereFrames, ShowThemInModeFiveAfterAPickOnly) {
    pane->m_bPickPointValid = 0;
    Add({.center = {-4, -4, 0}, .half = 0.5});  // rows from 204 on
    const auto isShown = [&] {
        Frame();
        return DrawnPixelsIn(240, 20, 300, 80) > 0;  // beside the centre cross of mode 1
    };
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    AddSphereAt(270, 50);
    EXPECT_FALSE(isShown()) << "before a pick";
    Float3 hit{};
    EXPECT_EQ(pane->PickObjectAt(160, 60, &hit), -1);
    EXPECT_FALSE(isShown()) << "after a pick without a hit";
    ASSERT_EQ(pane->PickObjectAt(64, 216, &hit), 0);
    EXPECT_TRUE(isShown());
    for (std::int32_t mode = -1; mode < 10; ++mode) {
        pane->m_nPickMode = mode;
        EXPECT_EQ(isShown(), mode == 5) << mode;
    }
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    AddSphereAt(270, 50);
    EXPECT_FALSE(isShown()) << "the mode drops the pick";
}

TEST_F(PickPointSphereFrames, ShowEachAtItsPlaceInItsLitColour) {
    AddSphere({-2, 1, 0}, HostColor(255, 128, 0));  // (112, 96)
    AddSphere({2, -1, 3}, HostColor(0, 64, 255));   // (208, 144)
    Frame();
    ExpectPixel(112, 96, LitFront({1, 128 / 255.0, 0}), 3);
    ExpectPixel(208, 144, LitFront({0, 64 / 255.0, 1}), 3);
    // A radius of 12 pixels; the 20 slices have corners on both axes.
    for (const auto& [x, y] : {std::pair{112, 96}, {208, 144}}) {
        EXPECT_EQ(DrawnPixelsIn(x - 15, y - 15, x - 12, y + 15) + DrawnPixelsIn(x + 12, y - 15, x + 15, y + 15), 0);
        EXPECT_EQ(DrawnPixelsIn(x - 15, y - 15, x + 15, y - 12) + DrawnPixelsIn(x - 15, y + 12, x + 15, y + 15), 0);
        EXPECT_GT(DrawnPixelsIn(x - 12, y - 2, x - 10, y + 2), 2);
        EXPECT_GT(DrawnPixelsIn(x - 2, y + 10, x + 2, y + 12), 2);
        const double polygon = 10 * 144 * std::sin(18 * 3.14159265358979 / 180);
        EXPECT_NEAR(DrawnPixelsIn(x - 15, y - 15, x + 15, y + 15), polygon, 12);
    }
    EXPECT_EQ(PixelsThatAreNotBackground(), DrawnPixelsIn(97, 81, 127, 111) + DrawnPixelsIn(193, 129, 223, 159));
    // Smooth shading: darker towards the rim.
    EXPECT_LT(ColorAt(112, 86)[0], ColorAt(112, 96)[0]);
}

TEST_F(PickPointSphereFrames, ShareOneRadius) {
    AddSphere({-2, 0, 0}), AddSphere({2, 0, 0});
    pane->SetPickRadius(1.0f);
    Frame();
    EXPECT_GT(DrawnPixelsIn(112 - 24, 118, 112 - 21, 122), 4);
    EXPECT_GT(DrawnPixelsIn(208 + 21, 118, 208 + 24, 122), 4);
}

TEST_F(PickPointSphereFrames, AreTestedAgainstTheObjectsAndNotTintedByThem) {
    Add({.center = {0, 0, 0}, .half = 4}, {1, 0, 0});  // red light
    AddSphere({-2, 0, -1}, HostColor(0, 255, 0)), AddSphere({2, 0, 1}, HostColor(0, 255, 0));
    for (const std::int16_t mode : std::initializer_list<std::int16_t>{1, 2, 3, 5}) {
        pane->m_nDrawMode = mode;
        Frame();
        ExpectPixel(208, 120, LitFront({0, 1, 0}), 3);
        if (mode != 1) {
            EXPECT_GT(ColorAt(112, 120)[0], 0.5) << "hidden by the object";
        }
    }
    pane->SetShadowMode(1);
    pane->m_nDrawMode = 3;
    Frame();
    ExpectPixel(208, 120, LitFront({0, 1, 0}), 3);
}

// The boxes of selected objects show through objects; the spheres before them must not leave the depth test enabled.
TEST_F(PickPointSphereFrames, LeaveTheSelectionVisibleThroughObjects) {
    Add({.center = {0, 0, 0}, .half = 1});
    Add({.center = {0, 0, 2}, .half = 3});
    pane->AddSelection(0);
    Frame();
    const auto without = picture.pixels;
    int ofBox = 0;
    for (int y = 90; y < 150; ++y)
        for (int x = 130; x < 190; ++x) ofBox += DistanceAt(x, y, {0.0, 0.4, 0.9}) <= kTolerance ? 1 : 0;
    ASSERT_GT(ofBox, 100) << "the box does not show";
    AddSphere({5, 4, 0});  // (280, 24)
    Frame();
    for (std::size_t y = 40; y < 240; ++y)
        ASSERT_TRUE(std::equal(&without[320 * y], &without[320 * y + 320], &picture.pixels[320 * y])) << y;
    EXPECT_GT(DrawnPixelsIn(268, 12, 292, 36), 300);
}

TEST_F(PickPointSphereFrames, RestoreTheOpenGlState) {
    AddSphere({0, 0, 0}, 0x123456), AddSphere({kNan, kInf, 0}, 0x123456);
    Frame();
    pane->m_bInDraw = 1;
    for (const bool enabled : {false, true}) {
        for (const GLenum name : {GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL})
            enabled ? glEnable(name) : glDisable(name);
        GlSnapshot before = TakeGlSnapshot();
        pane->DrawPickPointSpheres();
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        GlSnapshot after = TakeGlSnapshot();
        // While it follows the colour it is that of the last glColor(), and the next one sets it.
        if (enabled) before.erase("front GL_DIFFUSE"), after.erase("front GL_DIFFUSE");
        ExpectSameGlState(before, after, "DrawPickPointSpheres");
    }
    pane->m_bInDraw = 0;
}

TEST_F(PickPointSphereFrames, ThatAreNotFiniteDisturbNothing) {
    Add({.center = {-4, -3, 0}, .half = 1});
    AddSphere({-2, 1, 0}, 0x80FF);
    Frame();
    const auto expected = picture.pixels;
    for (const float odd : {kNan, kInf, -kInf}) {
        AddSphere({odd, 0, 0}), AddSphere({0, odd, 0}), AddSphere({0, 0, odd});
        AddSphere({odd, odd, odd});
    }
    Frame();
    EXPECT_EQ(picture.pixels, expected);
    pane->CenterView();
    EXPECT_EQ(pane->m_fViewCenter, (Float3{-4, -3, 0}));
}

TEST_F(PickPointSphereFrames, AreRepeatedExactly) {
    Add({});
    AddSphere({1, 1, 3}, 0x80FF);
    Frame();
    const auto first = picture.pixels;
    for (int i = 0; i < 3; ++i) {
        Frame();
        EXPECT_EQ(picture.pixels, first);
    }
}

TEST_F(PickPointSphereFrames, AreMissingInScreenshotsAndTheirBox) {
    Add({});
    const Box before = pane->GetPictureBoundingBox();
    AddSphere({0, 0, 9}, HostColor(0, 255, 0)), AddSphere({500, 0, 0}, HostColor(0, 255, 0));
    EXPECT_EQ(pane->GetPictureBoundingBox().max, before.max);
    std::vector<std::uint32_t> shot(2048 * 2048);
    pane->CaptureScreenShot(shot.data());
    int green = 0;
    for (const std::uint32_t p : shot) green += (p >> 8 & 0xFF) > (p >> 16 & 0xFF) + 50 ? 1 : 0;
    EXPECT_EQ(green, 0);
}

}  // namespace
