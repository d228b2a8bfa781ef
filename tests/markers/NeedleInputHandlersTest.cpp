// Needles by the input handlers of the viewer: contexts, samples, directions, odd coordinates, handlers of the host
// that call back. NeedleInputTest.cpp has the user's side.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "control/ScenePaneHandle.h"
#include "markers/NeedlePlate.h"
#include "support/DriverTraits.h"
#include "support/GlNow.h"
#include "view/InputHelp.h"

namespace {

class NeedleInputHandlers : public testing::Test {
protected:
    NeedleInputHandlers() {
        SetScene(*viewer);
        viewer->Connect(&events);
    }
    void DoubleClickAt(Pixel pixel) { viewer->OnDoubleClick(kLeft, pixel.x, pixel.y); }
    void PressAt(Pixel pixel) {
        viewer->OnLeftDown(kLeft, pixel.x, pixel.y);
        viewer->OnLeftUp(0, pixel.x, pixel.y);
    }

    OffscreenControl viewer;
    NeedleEvents events;
};

TEST_F(NeedleInputHandlers, OfADoubleClickAloneDeselectTheOtherNeedleFirst) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    viewer.window->Forget();
    std::vector<int> refreshes;
    events.inside = [&](const std::string&) { refreshes.push_back(viewer.window->refreshes); };
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Deselected 7", "Created 8", "Selected 8"}));
    EXPECT_EQ(refreshes, (std::vector{0, 0, 0}));
    EXPECT_EQ(viewer.window->refreshes, 3) << "after the creation, after the pick, at the end";
}

TEST_F(NeedleInputHandlers, OfThePressBeforeADoubleClickDeselectTheOtherNeedle) {
    AddNeedle(*viewer, 7, -40, 0);
    viewer->SelectNeedle(7);
    events.Take();
    PressAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Created 8", "Selected 8"}));
}

TEST_F(NeedleInputHandlers, PointANeedleInItsOwnDirectionWhenNoVertexFacesTheViewer) {
    viewer->m_vpMeshes.clear();
    AddPlate(*viewer, -1);
    viewer->PerformRefresh();
    DoubleClickAt(PixelOf(15, 20));
    ASSERT_EQ(viewer->GetNumberOfNeedles(), 1);
    const float along = kLength * (1440.0f - 5) / 1920;  // by the window depth of the surface
    ExpectNear(viewer->m_vNeedles[0].pin, {15, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles[0].head, {15 + along, 20 + along, 5 + along}, "head");
}

TEST_F(NeedleInputHandlers, PointANeedleToTheViewerByAVertexOfAHiddenObject) {
    viewer->m_vpMeshes.clear();
    AddPlate(*viewer, -1);
    AddPlate(*viewer, 1).m_iVisible = 0;
    viewer->PerformRefresh();
    DoubleClickAt(PixelOf(15, 20));
    ExpectNear(viewer->m_vNeedles.at(0).head, {15, 20, 25}, "head");
}

TEST_F(NeedleInputHandlers, PointANeedleToTheViewerInAnotherView) {
    viewer->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    DoubleClickAt({320, 240});
    const Needle& needle = viewer->m_vNeedles.at(0);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(needle.head[i] - needle.pin[i], kLength * viewer->m_fAxisZ[i], 1e-4) << i;
    EXPECT_NEAR(needle.pin[2], 5, 0.5) << "on the plate, within a pixel";
}

TEST_F(NeedleInputHandlers, UseTheContextOfTheirOwnViewer) {
    OffscreenControl other(100, 80);
    other->CenterView();
    const auto makeForeign = [&] { ASSERT_TRUE(other->MakeContextCurrent()); };
    makeForeign();
    DoubleClickAt(PixelOf(15, 20));
    ExpectNear(viewer->m_vNeedles.at(0).pin, {15, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles.at(0).head, {15, 20, 25}, "head");
    makeForeign();
    PressAt(PixelOf(-50, 0));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{});
    makeForeign();
    PressAt(PixelOf(15, 20));
    EXPECT_EQ(SelectedIdsOf(*viewer), Ids{1});
    makeForeign();
    viewer->OnMouseMoved(kLeft, PixelOf(-15, 10).x, PixelOf(-15, 10).y);
    ExpectNear(viewer->m_vNeedles[0].head, {-15, 10, 25}, "head");
    makeForeign();
    viewer->DeleteNeedles();
    EXPECT_TRUE(viewer->m_vNeedles.empty());
}

TEST_F(NeedleInputHandlers, ReadTheDepthOfAWindowWithSamples) {
    ASSERT_TRUE(viewer->MakeContextCurrent());
    const int samples = AvailableSamples(4);
    if (samples == 0) GTEST_SKIP() << "the driver has no samples";
    AddNeedle(*viewer, 7, -40, 0);
    viewer->RecreateOpenglContext(3, 3, samples);
    SetScene(*viewer);
    EXPECT_EQ(IdsOf(*viewer), Ids{7}) << "needles survive their context";
    events.Take();
    PressAt(PixelOf(-40, 0));
    DoubleClickAt(PixelOf(15, 20));
    EXPECT_EQ(events.Take(), (EventList{"Selected 7", "Deselected 7", "Created 8", "Selected 8"}));
    ExpectNear(viewer->m_vNeedles.at(1).pin, {15, 20, 5}, "pin");
    EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
}

// The view has the new size at once, the picture with the next frame.
TEST_F(NeedleInputHandlers, FindTheSurfaceOfTheNewSizeBeforeItsFirstFrame) {
    viewer->SetSize(640, 240);  // now one unit per pixel
    DoubleClickAt({320, 10});
    EXPECT_EQ(events.Take(), EventList{}) << "the last frame shows the plate there";
    viewer->SetSize(640, 480);
    viewer->PerformRefresh();
    viewer->SetSize(640, 240);
    DoubleClickAt({330, 100});
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Selected 1"}));
    ExpectNear(viewer->m_vNeedles.at(0).pin, {10, 20, 5}, "pin");
    ExpectNear(viewer->m_vNeedles.at(0).head, {10, 20, 25}, "head");
}

TEST_F(NeedleInputHandlers, FindNothingInANewSizeThatHasNoFrame) {
    viewer->BlockPaintEvents(-1);
    viewer->SetSize(640, 240);
    for (const Pixel pixel : {Pixel{320, 10}, {330, 100}}) DoubleClickAt(pixel);
    EXPECT_EQ(events.Take(), EventList{});
    viewer->BlockPaintEvents(0);
    for (const auto& [width, height] : {std::pair{0, 0}, {640, 0}, {0, 480}, {-3, -2}}) {
        viewer->SetSize(static_cast<std::int16_t>(width), static_cast<std::int16_t>(height));
        for (const Pixel pixel : {Pixel{0, 0}, {0, 1}, {320, 240}}) DoubleClickAt(pixel);
    }
    EXPECT_EQ(events.Take(), EventList{});
    EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
}

TEST_F(NeedleInputHandlers, SelectNoNeedleByAHeadOfInfiniteRadius) {
    viewer->SetNeedleRenderParameters(kLength, std::numeric_limits<float>::infinity(), 0xFF, 1, 0x505050, 1, 0xFF0000,
                                      0xFF00);
    viewer->CreateNeedle(1, 0, 0, 0, std::numeric_limits<float>::infinity(), 0, 0);
    viewer->CreateNeedle(2, 0, 0, 0, 0, 0, 0);
    viewer->SetNeedleRenderParameters(kLength, kHeadRadius, 0xFF, 1, 0x505050, 1, 0xFF0000, 0xFF00);
    AddNeedle(*viewer, 7, -40, 0);
    events.Take();
    PressAt(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    PressAt(PixelOf(30, 30));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
}

TEST_F(NeedleInputHandlers, IgnoreNeedlesThatAreNowhere) {
    const float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();
    viewer->CreateNeedle(1, kNan, kNan, kNan, kNan, kNan, kNan);
    viewer->CreateNeedle(2, 0, 0, 0, kInf, 0, -kInf);
    viewer->CreateNeedle(3, kInf, 0, 0, 0, 3e38f, 0);
    AddNeedle(*viewer, 7, -40, 0);
    events.Take();
    PressAt(PixelOf(-40, 0));
    EXPECT_EQ(events.Take(), EventList{"Selected 7"});
    PressAt(PixelOf(0, 0));
    EXPECT_EQ(events.Take(), EventList{"Deselected 7"});
    Float3 hit{};
    EXPECT_EQ(viewer->PickObjectAt(320, 240, &hit), 0);
    viewer->CenterView();
    EXPECT_EQ(viewer->m_fViewCenter, (Float3{0, 0, 5})) << "the fit is that of the plate";
}

TEST_F(NeedleInputHandlers, DoNothingOutsideTheWindow) {
    viewer->SetMaxNumberOfNeedles(0);
    for (const Pixel pixel : {Pixel{-1, 200}, {640, 200}, {300, -1}, {300, 481}, {-30000, 30000}}) DoubleClickAt(pixel);
    EXPECT_EQ(events.Take(), EventList{});
    EXPECT_EQ(GlErrorOf(*viewer), GLenum{GL_NO_ERROR});
}

TEST(NeedleInputWithoutAPicture, DoesNothing) {
    NoPictureControl viewer;
    NeedleEvents events;
    viewer->Connect(&events);
    viewer->SetNeedlePickingMode(-1);
    viewer->CreateNeedle(1, 0, 0, 0, 0, 0, 0);
    viewer->SelectNeedle(1);
    viewer->OnMouseMoved(kLeft, 10, 10);
    viewer->OnDoubleClick(kLeft, 10, 10);
    EXPECT_EQ(events.Take(), (EventList{"Created 1", "Selected 1"}));
    viewer->OnLeftDown(kLeft, 10, 10);
    EXPECT_EQ(events.Take(), EventList{"Deselected 1"});
    EXPECT_EQ(viewer->m_vNeedles.at(0).head, (Float3{0, 0, 0}));
}

// ---- handlers of the host that call back

TEST_F(NeedleInputHandlers, MayFindTheListEmptyAfterEachEvent) {
    for (const char* const when : {"Deselected 7", "Created 8", "Selected 8"}) {
        for (const bool clears : {false, true}) {
            SCOPED_TRACE(testing::Message() << when << ", clears data " << clears);
            events.inside = {};
            viewer->DeleteNeedles();
            viewer->m_vpMeshes.clear();
            SetScene(*viewer);
            AddNeedle(*viewer, 7, -40, 0);
            viewer->SelectNeedle(7);
            events.Take();
            events.inside = [&](const std::string& event) {
                if (event != when) return;
                if (clears) viewer->ClearData();
                viewer->DeleteNeedles();
            };
            DoubleClickAt(PixelOf(15, 20));
            EXPECT_EQ(viewer->GetNumberOfNeedles(), 0);
            EXPECT_EQ(std::ranges::count(events.list, "Deleted 8"), 1);
            const auto deleted = std::ranges::find(events.list, "Deleted 8");
            EXPECT_EQ(std::ranges::count(deleted, events.list.end(), "Selected 8"), 0) << "it was gone";
        }
    }
}

TEST_F(NeedleInputHandlers, MayFindAnotherSelectionAfterAnEvent) {
    for (const char* const when : {"Deselected 9", "Created 8"}) {
        SCOPED_TRACE(when);
        events.inside = {};
        viewer->DeleteNeedles();
        AddNeedle(*viewer, 7, -40, 0);
        AddNeedle(*viewer, 9, 40, 10);
        viewer->SelectNeedle(9);
        events.Take();
        events.inside = [&](const std::string& event) {
            if (event == when) viewer->SelectNeedle(7);
        };
        DoubleClickAt(PixelOf(0, 20));
        EXPECT_EQ(SelectedIdsOf(*viewer), Ids{8}) << "the needle of the double click alone";
        const EventList found = events.Take();
        if (std::string(when) == "Created 8")
            EXPECT_EQ(found, (EventList{"Deselected 9", "Created 8", "Selected 7", "Deselected 7", "Selected 8"}));
        else
            EXPECT_EQ(found, (EventList{"Deselected 9", "Selected 7", "Deselected 7", "Created 8", "Selected 8"}));
    }
}

TEST(NeedleInputThatDestroysTheViewer, EndsWithTheEvent) {
    for (const std::size_t events : {1u, 2u, 3u}) {
        for (const bool isPress : {false, true}) {
            KV_ScenePane::WindowRequest request;
            request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
            request.width = 640, request.height = 480;
            auto viewer = KV_ScenePane::CreateScenePane(request, nullptr);
            ASSERT_NE(viewer, nullptr);
            CKV_ScenePaneCtrl& control = ControlOf(*viewer);
            SetScene(control);
            AddNeedle(control, 7, -40, 0);
            AddNeedle(control, 9, 40, 10);
            control.SelectNeedle(7);
            NeedleEvents host;
            host.inside = [&](const std::string&) {
                if (host.list.size() == events) viewer.reset();
            };
            viewer->Connect(&host);
            using Kind = KV_ScenePane::MouseInput::Kind;
            const Pixel pixel = isPress ? PixelOf(40, 10) : PixelOf(15, 20);
            KV_ScenePane::ScenePane& handle = *viewer;
            handle.SendMouse({.kind = isPress ? Kind::LeftDown : Kind::DoubleClick,
                              .flags = KV_ScenePane::kMouseLeft,
                              .x = pixel.x,
                              .y = pixel.y});
            const std::size_t most = isPress ? 2 : 3;
            EXPECT_EQ(host.list.size(), std::min(events, most));
            EXPECT_EQ(viewer == nullptr, events <= most);
        }
    }
}

}  // namespace
