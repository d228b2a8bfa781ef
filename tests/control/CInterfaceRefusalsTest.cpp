// What the functions of the C interface refuse: null pointers, pictures without pixels; and the event that no input
// fires.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "KV_ScenePane/kv_scenepane.h"
#include "control/CInterfacePane.h"
#include "control/CInterfacePanes.h"
#include "control/RecordingViewer.h"
#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"
#include "support/XvfbServer.h"

namespace {

// ---- null pointers

TEST(KvNullPointers, AreRefusedWithTheReason) {
    const Pane pane(KV_NO_PICTURE);
    struct Row {
        std::function<kv_status()> call;
        const char* reason;
    };
    const Row rows[] = {
        {[&] { return kv_pick_surface(pane, 0, 0, nullptr); }, "kv_pick_surface: the hit is null"},
        {[&] { return kv_cut_with_lasso(pane, 0, nullptr, 3, nullptr); }, "kv_cut_with_lasso: the points are null"},
        {[&] { return kv_align_by_pairs(pane, nullptr, 3, nullptr); }, "kv_align_by_pairs: the pairs are null"},
        {[&] { return kv_clip_height_result(pane, nullptr); }, "kv_clip_height_result: the height is null"},
        {[&] { return kv_frame_statistics_result(pane, nullptr); },
         "kv_frame_statistics_result: the statistics are null"},
        {[&] { return kv_load_properties(pane, nullptr, 1); }, "kv_load_properties: the store is null"},
        {[&] { return kv_get_property(pane, KV_PROPERTY_DrawMode, nullptr); }, "DrawMode: the value is null"},
        {[&] { return kv_put_property(pane, KV_PROPERTY_DrawMode, nullptr); }, "DrawMode: the value is null"},
        {[&] { return kv_invoke(pane, KV_SetPickMode, nullptr, 1, nullptr); }, "SetPickMode: the arguments are null"}};
    for (const Row& row : rows) {
        EXPECT_EQ(row.call(), KV_BAD_ARGUMENTS) << row.reason;
        EXPECT_STREQ(kv_last_error(), row.reason);
    }
}

TEST(KvNullPointers, OfTextsAreRefusedUnlessTheCapacityIsZero) {
    RecordedPane recorded;
    recorded.viewer->store = "store";
    recorded.viewer->modified = true;
    EXPECT_EQ(kv_save_properties(recorded.pane, KV_PROPERTIES_BINARY, nullptr, 1), KV_NO_TEXT);
    EXPECT_STREQ(kv_last_error(), "kv_save_properties: the buffer is null");
    EXPECT_EQ(kv_object_name(recorded.pane, 0, nullptr, 9), KV_NO_TEXT);
    EXPECT_STREQ(kv_last_error(), "kv_object_name: the buffer is null");
    EXPECT_EQ(kv_graphics_info(recorded.pane, nullptr, 9), KV_NO_TEXT);
    EXPECT_STREQ(kv_last_error(), "kv_graphics_info: the buffer is null");
}

TEST(KvNullPointers, OfMeshesAreRefused) {
    const kv_vertex vertex{};
    EXPECT_EQ(kv_mesh_create(nullptr, 1, nullptr, 0, 0), nullptr);
    EXPECT_STREQ(kv_last_error(), "kv_mesh_create: the vertices are null");
    EXPECT_EQ(kv_mesh_create(&vertex, 1, nullptr, 1, 0), nullptr);
    EXPECT_STREQ(kv_last_error(), "kv_mesh_create: the triangles are null");
}

TEST(KvNullPointers, WhereNothingIsReturnedLeaveAnError) {
    EXPECT_EQ(kv_create(nullptr), nullptr);
    kv_window_request_init(nullptr);
    EXPECT_STREQ(kv_last_error(), "kv_window_request_init: the request is null");
    const ACAD::CutMask read;
    kv_cut_mask_read(&read, nullptr);
    EXPECT_STREQ(kv_last_error(), "kv_cut_mask_read: the mask is null");
    kv_cut_mask mask;
    std::memset(&mask, 0x5A, sizeof mask);
    kv_cut_mask_read(nullptr, &mask);
    EXPECT_STREQ(kv_last_error(), "kv_cut_mask_read: the address is null");
    EXPECT_EQ(mask.bits, nullptr);
    EXPECT_EQ(mask.bit_count, 0u);
    EXPECT_EQ(mask.depth, nullptr);
    EXPECT_EQ(mask.depth_count, 0u);
}

TEST(KvNullPointers, OfSaveEntriesReadTheirNumber) {
    RecordedPane recorded;
    recorded.viewer->saved = {{}, {}};
    EXPECT_EQ(kv_cut_save_entries(recorded.pane, 0, nullptr, 5), 2u);
}

// ---- pictures without pixels

kv_status SetSize(kv_pane* pane, std::int16_t width, std::int16_t height) {
    const kv_value size[] = {{.type = KV_SHORT, .as = {.i16 = width}}, {.type = KV_SHORT, .as = {.i16 = height}}};
    return kv_invoke(pane, KV_SetSize, size, 2, nullptr);
}

void ExpectNoPicture(kv_pane* pane) {
    std::vector<std::uint32_t> pixels(100);
    for (const auto& [width, height] : {std::pair<std::int16_t, std::int16_t>{-1, 5}, {0, 10}, {10, 0}, {0, 0}}) {
        ASSERT_EQ(SetSize(pane, width, height), KV_DONE);
        const std::string reason = "kv_capture_picture: the drawing area of " + std::to_string(width) + " x " +
                                   std::to_string(height) + " pixels has none";
        for (std::uint32_t* to : {static_cast<std::uint32_t*>(nullptr), pixels.data()}) {
            std::int32_t w = -5, h = -5;
            EXPECT_EQ(kv_capture_picture(pane, to, pixels.size(), &w, &h), KV_FAILED);
            EXPECT_EQ(kv_last_error(), reason);
            EXPECT_EQ(w, -5);
            EXPECT_EQ(h, -5);
        }
    }
    ASSERT_EQ(SetSize(pane, 10, 5), KV_DONE);
    std::int32_t w = -5, h = -5;
    EXPECT_EQ(kv_capture_picture(pane, pixels.data(), pixels.size(), &w, &h), KV_DONE) << kv_last_error();
    EXPECT_EQ(w, 10);
    EXPECT_EQ(h, 5);
}

TEST(KvCapturePictureOfAnAreaWithoutPixels, FailsWithThatReason) {
    ExpectNoPicture(Pane(KV_OFF_SCREEN));
    XvfbServer::Shared();
    ExpectNoPicture(Pane(KV_TOP_LEVEL));
}

// ---- SelectViewDirection, which no input fires: the control does inside another event

/// A square around (4, 5, 3) with a vertex there, seen along an axis through that point that has no coordinate 0.
void AddSquare(kv_pane* pane) {
    std::vector<kv_vertex> vertices;
    for (const auto& [x, y] : {std::pair{-9.0f, -9.0f}, {9.0f, -9.0f}, {-9.0f, 9.0f}, {9.0f, 9.0f}, {0.0f, 0.0f}})
        vertices.push_back({4 + x, 5 + y, 3, 0, 0, 1, 0, 0});
    const std::int32_t triangles[] = {0, 1, 4, 1, 3, 4, 3, 2, 4, 2, 0, 4};
    kv_mesh* mesh = kv_mesh_create(vertices.data(), vertices.size(), triangles, 4, 0);
    const kv_value arguments[] = {{.type = KV_POINTER, .as = {.pointer = mesh}},
                                  {.type = KV_UTF8, .as = {.utf8 = "square"}},
                                  {.type = KV_LONG, .as = {.i32 = 0}}};
    EXPECT_EQ(kv_invoke(pane, KV_ImportMeshedMeasurement, arguments, 3, nullptr), KV_DONE) << kv_last_error();
    kv_mesh_destroy(mesh);
    EXPECT_EQ(kv_invoke(pane, KV_CenterView, nullptr, 0, nullptr), KV_DONE);
    std::vector<kv_value> view;  // axes to the right and up, centre, zoom
    for (const float number : {2.0f / 3, -2.0f / 3, 1.0f / 3, 1.0f / 3, 2.0f / 3, 2.0f / 3, 4.0f, 5.0f, 3.0f, 1.0f})
        view.push_back({.type = KV_FLOAT, .as = {.f32 = number}});
    view.push_back({.type = KV_SHORT, .as = {.i16 = 0}});
    EXPECT_EQ(kv_invoke(pane, KV_SetViewParams, view.data(), view.size(), nullptr), KV_DONE) << kv_last_error();
}

/// Receives the events of a viewer, and fires SelectViewDirection inside PickPointCountChanged.
struct ViewDirectionHost {
    explicit ViewDirectionHost(std::int32_t answerOfHost = 0) : answer(answerOfHost) {
        AddSquare(pane);
        kv_connect(pane, &ViewDirectionHost::OnEvent, this);
    }
    kv_status Fire() {
        const kv_value mode{.type = KV_SHORT, .as = {.i16 = KV_PickModeCross}};
        return kv_invoke(pane, KV_SetPickMode, &mode, 1, nullptr);
    }
    static std::int32_t OnEvent(void* user, std::int32_t id, const kv_value* arguments, std::size_t count) {
        auto& self = *static_cast<ViewDirectionHost*>(user);
        if (id == KV_EVENT_PickPointCountChanged) {
            ControlOf(*static_cast<kv_pane*>(self.pane)->m_pViewer).OnRightDoubleClick(0, 1, 1);
            return 0;
        }
        EXPECT_EQ(id, KV_EVENT_SelectViewDirection);
        EXPECT_EQ(id, 1);
        ++self.events;
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(arguments[i].type, KV_FLOAT) << i;
            self.numbers.push_back(arguments[i].as.f32);
        }
        if (self.destroys) self.pane.Destroy();
        return self.answer;
    }

    Pane pane{KV_OFF_SCREEN};
    std::int32_t answer;
    bool destroys = false;
    int events = 0;
    std::vector<float> numbers;
};

TEST(KvSelectViewDirection, HasThePointAndTheDirectionAsSixFloats) {
    ViewDirectionHost host;
    EXPECT_EQ(host.Fire(), KV_DONE) << kv_last_error();
    EXPECT_EQ(host.events, 1);
    const float expected[] = {4, 5, 3, -2.0f / 3, -1.0f / 3, 2.0f / 3};
    ASSERT_EQ(host.numbers.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(host.numbers[i], expected[i], 1e-4) << i;
}

TEST(KvSelectViewDirection, EndsTheCallWhenTheHandlerFails) {
    ViewDirectionHost host(1);
    EXPECT_EQ(host.Fire(), KV_HANDLER_FAILED);
    EXPECT_STREQ(kv_last_error(), "the callback of the event SelectViewDirection returned 1");
    host.answer = 0;
    EXPECT_EQ(host.Fire(), KV_DONE) << "the viewer goes on working";
    EXPECT_EQ(host.events, 2);
}

TEST(KvSelectViewDirection, MayDestroyTheViewer) {
    ViewDirectionHost host;
    host.destroys = true;
    EXPECT_EQ(host.Fire(), KV_DONE);
    EXPECT_EQ(host.events, 1);
    EXPECT_EQ(host.Fire(), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "kv_invoke: the viewer is null");
}

}  // namespace
