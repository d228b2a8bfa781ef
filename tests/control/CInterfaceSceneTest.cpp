// Pictures, picks, names, cuts, alignments, meshes and stores of properties, for programs in C.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "KV_ScenePane/CutMask.h"
#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/kv_scenepane.h"
#include "control/RecordingViewer.h"

namespace {

constexpr std::int32_t kWidth = 64, kHeight = 48;

/// A viewer with a square of 20 x 20 in the plane z = 0 that covers the middle of the window.
class SceneOfC : public testing::Test {
protected:
    SceneOfC() : pane(Create(KV_OFF_SCREEN)) {
        if (pane == nullptr) return;
        AddSquare(pane);
        Invoke(KV_CenterView, {});
    }
    ~SceneOfC() override { kv_destroy(pane); }

    void SetUp() override { ASSERT_NE(pane, nullptr) << kv_last_error(); }

    static kv_pane* Create(std::int32_t kind) {
        kv_window_request request;
        kv_window_request_init(&request);
        request.kind = kind;
        request.width = kWidth, request.height = kHeight;
        return kv_create(&request);
    }

    /// Named "square" with a character outside ASCII, coloured by its vertices.
    static void AddSquare(kv_pane* pane) {
        std::vector<kv_vertex> vertices;
        for (const auto& [x, y] : {std::pair{-10.0f, -10.0f}, {10.0f, -10.0f}, {-10.0f, 10.0f}, {10.0f, 10.0f}})
            vertices.push_back({x, y, 0, 0, 0, 1, 0xFF00FF00, 0});
        const std::int32_t triangles[] = {0, 1, 2, 1, 3, 2};
        kv_mesh* mesh = kv_mesh_create(vertices.data(), vertices.size(), triangles, 2, 1);
        ASSERT_NE(mesh, nullptr) << kv_last_error();
        const kv_value arguments[] = {{.type = KV_POINTER, .as = {.pointer = mesh}},
                                      {.type = KV_UTF8, .as = {.utf8 = "squ\xC3\xA4re"}},
                                      {.type = KV_LONG, .as = {.i32 = 0x0000FF}}};
        EXPECT_EQ(kv_invoke(pane, KV_ImportMeshedMeasurement, arguments, 3, nullptr), KV_DONE) << kv_last_error();
        kv_mesh_destroy(mesh);
    }

    kv_value Invoke(std::int32_t id, const std::vector<kv_value>& arguments) const {
        kv_value result{};
        EXPECT_EQ(kv_invoke(pane, id, arguments.data(), arguments.size(), &result), KV_DONE) << kv_last_error();
        return result;
    }

    kv_pane* pane;
};

kv_value Short(std::int16_t value) { return {.type = KV_SHORT, .as = {.i16 = value}}; }

// ---- pictures

using KvCapturePicture = SceneOfC;

TEST_F(KvCapturePicture, ReadsTheSizeWithoutAFrame) {
    std::int32_t width = 0, height = 0;
    EXPECT_EQ(kv_capture_picture(pane, nullptr, 0, &width, &height), KV_DONE);
    EXPECT_EQ(width, kWidth);
    EXPECT_EQ(height, kHeight);
    EXPECT_EQ(kv_capture_picture(pane, nullptr, 0, nullptr, nullptr), KV_DONE);
}

TEST_F(KvCapturePicture, CopiesTheFrameTopRowFirst) {
    Invoke(KV_SetBackgroundColorsFourCorners, {{.type = KV_LONG, .as = {.i32 = 0x0000FF}},
                                               {.type = KV_LONG, .as = {.i32 = 0x0000FF}},
                                               {.type = KV_LONG, .as = {.i32 = 0xFF0000}},
                                               {.type = KV_LONG, .as = {.i32 = 0xFF0000}}});
    std::vector<std::uint32_t> pixels(kWidth * kHeight + 1, 0x12345678u);
    std::int32_t width = 0, height = 0;
    ASSERT_EQ(kv_capture_picture(pane, pixels.data(), pixels.size() - 1, &width, &height), KV_DONE) << kv_last_error();
    EXPECT_EQ(width, kWidth);
    EXPECT_EQ(height, kHeight);
    const auto red = [](std::uint32_t pixel) { return (pixel >> 16) & 0xFF; };
    const auto green = [](std::uint32_t pixel) { return (pixel >> 8) & 0xFF; };
    const auto blue = [](std::uint32_t pixel) { return pixel & 0xFF; };
    EXPECT_GT(red(pixels[0]), 200u) << "the top left corner is red";
    EXPECT_LT(blue(pixels[0]), 50u);
    EXPECT_GT(blue(pixels[kWidth * kHeight - 1]), 200u) << "the bottom right corner is blue";
    EXPECT_GT(green(pixels[kWidth * kHeight / 2 + kWidth / 2]), 50u) << "the square is green";
    EXPECT_EQ(pixels.back(), 0x12345678u);
}

TEST_F(KvCapturePicture, RefusesAnArrayThatIsTooSmall) {
    std::vector<std::uint32_t> pixels(kWidth * kHeight, 0x12345678u);
    std::int32_t width = -5, height = -5;
    for (const std::size_t capacity : {std::size_t{0}, pixels.size() - 1}) {
        EXPECT_EQ(kv_capture_picture(pane, pixels.data(), capacity, &width, &height), KV_BAD_ARGUMENTS);
        EXPECT_EQ(kv_last_error(),
                  "kv_capture_picture: the picture has 64 x 48 pixels, there is room for " + std::to_string(capacity));
    }
    EXPECT_EQ(pixels[0], 0x12345678u);
    EXPECT_EQ(width, kWidth) << "what is needed";
    EXPECT_EQ(height, kHeight);
}

TEST_F(KvCapturePicture, FailsWhilePaintingIsBlocked) {
    Invoke(KV_BlockPaintEvents, {Short(-1)});
    std::vector<std::uint32_t> pixels(kWidth * kHeight);
    EXPECT_EQ(kv_capture_picture(pane, pixels.data(), pixels.size(), nullptr, nullptr), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "kv_capture_picture: no frame was drawn, painting is blocked or the window is gone");
    Invoke(KV_BlockPaintEvents, {Short(0)});
    EXPECT_EQ(kv_capture_picture(pane, pixels.data(), pixels.size(), nullptr, nullptr), KV_DONE);
}

TEST(KvCapturePictureWithoutAPicture, Fails) {
    kv_window_request request;
    kv_window_request_init(&request);
    request.kind = KV_NO_PICTURE;
    kv_pane* pane = kv_create(&request);
    ASSERT_NE(pane, nullptr);
    std::int32_t width = -5;
    EXPECT_EQ(kv_capture_picture(pane, nullptr, 0, &width, nullptr), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "kv_capture_picture: there is no window, or the viewer has no picture");
    EXPECT_EQ(width, -5);
    EXPECT_EQ(kv_graphics_info(pane, nullptr, 0), KV_NO_TEXT);
    EXPECT_STREQ(kv_last_error(), "kv_graphics_info: there is no window, or the viewer has no picture");
    kv_destroy(pane);
}

TEST(KvFrameStatistics, AreThoseOfTheViewer) {
    RecordedPane recorded;
    recorded.viewer->frames = {0x123456789AULL, 0.25};
    kv_frame_statistics frames{};
    EXPECT_EQ(kv_frame_statistics_result(recorded.pane, &frames), KV_DONE);
    EXPECT_EQ(frames.count, 0x123456789AULL);
    EXPECT_EQ(frames.seconds, 0.25);
}

// ---- picks and texts

using KvPickSurface = SceneOfC;

TEST_F(KvPickSurface, FindsTheObjectUnderThePixelOrNone) {
    Invoke(KV_PerformRefresh, {});
    kv_surface_point hit{};
    EXPECT_EQ(kv_pick_surface(pane, kWidth / 2, kHeight / 2, &hit), KV_DONE);
    EXPECT_EQ(hit.object, 0);
    EXPECT_GE(hit.triangle, 0);
    EXPECT_NEAR(hit.point[0], 0, 1);
    EXPECT_NEAR(hit.point[1], 0, 1);
    EXPECT_NEAR(hit.point[2], 0, 1e-4);
    EXPECT_GT(hit.distance, 0);
    EXPECT_EQ(kv_pick_surface(pane, 0, 0, &hit), KV_DONE);
    EXPECT_EQ(hit.object, -1);
    EXPECT_EQ(hit.triangle, -1);
}

using KvTextFunctions = SceneOfC;

TEST_F(KvTextFunctions, FillBuffersOfAnyCapacityUpToTheZero) {
    const std::string name = "squ\xC3\xA4re";
    for (std::size_t capacity = 0; capacity <= name.size() + 2; ++capacity) {
        std::vector<char> buffer(capacity + 1, '#');
        EXPECT_EQ(kv_object_name(pane, 0, buffer.data(), capacity), name.size()) << capacity;
        EXPECT_EQ(buffer[capacity], '#') << capacity << ": written past the end";
        if (capacity == 0) continue;
        EXPECT_EQ(std::string(buffer.data()), name.substr(0, capacity - 1)) << capacity;
    }
    EXPECT_EQ(kv_object_name(pane, 0, nullptr, 0), name.size());
}

TEST_F(KvTextFunctions, DistinguishAnEmptyNameFromABadIndex) {
    float corners[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    std::int32_t triangle[] = {0, 1, 2};
    Invoke(KV_ImportMeshFromMemory, {{.type = KV_LONG, .as = {.i32 = 3}},
                                     {.type = KV_LONG, .as = {.i32 = 1}},
                                     {.type = KV_POINTER, .as = {.pointer = corners}},
                                     {.type = KV_POINTER, .as = {.pointer = triangle}}});
    EXPECT_EQ(kv_object_name(pane, 2, nullptr, 0), KV_NO_TEXT);
    EXPECT_EQ(kv_object_name(pane, 1, nullptr, 0), 0u) << "although the error of the last call is still there";
}

TEST_F(KvTextFunctions, FailForAnObjectThatIsNotThere) {
    for (const std::int32_t index : {-1, 1, 32767, 32768, 65536, INT32_MIN, INT32_MAX}) {
        char buffer[4] = "abc";
        EXPECT_EQ(kv_object_name(pane, index, buffer, sizeof buffer), KV_NO_TEXT) << index;
        EXPECT_EQ(kv_last_error(), "kv_object_name: there is no object " + std::to_string(index));
        EXPECT_STREQ(buffer, "") << index;
        EXPECT_EQ(kv_object_has_colors(pane, index), 0) << index;
        EXPECT_EQ(kv_last_error(), "kv_object_has_colors: there is no object " + std::to_string(index));
    }
    EXPECT_EQ(kv_object_has_colors(pane, 0), 1);
}

TEST_F(KvTextFunctions, NameTheGraphicsInFourLines) {
    std::string text(kv_graphics_info(pane, nullptr, 0), '\0');
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(kv_graphics_info(pane, text.data(), text.size() + 1), text.size());
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3) << text;
}

// ---- cuts

using KvCuts = SceneOfC;
constexpr double kLeftHalf[] = {0, 0, 0.5, 0, 0.5, 0.99, 0, 0.99};

TEST_F(KvCuts, ByLassoChangeTheObjectsAndCanBeTakenBack) {
    std::int32_t changed = -5;
    EXPECT_EQ(kv_undo_step_count(pane), 0);
    EXPECT_EQ(kv_cut_with_lasso(pane, KV_PolygonInside, kLeftHalf, 4, &changed), KV_DONE);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(kv_undo_step_count(pane), 1);
    kv_surface_point hit{};
    EXPECT_EQ(kv_pick_surface(pane, kWidth / 2 - 4, kHeight / 2, &hit), KV_DONE);
    EXPECT_EQ(hit.object, -1) << "the left half is gone";
    Invoke(KV_PerformUndo, {});
    EXPECT_EQ(kv_undo_step_count(pane), 0);
    const double corner[] = {0, 0, 0.01, 0, 0.01, 0.01};
    EXPECT_EQ(kv_cut_with_lasso(pane, KV_PolygonInside, corner, 3, &changed), KV_DONE);
    EXPECT_EQ(changed, 0) << "nothing is there";
    EXPECT_EQ(kv_cut_with_lasso(pane, KV_PolygonInside, corner, 3, nullptr), KV_DONE);
}

TEST_F(KvCuts, OfAnUnknownModeAreRefused) {
    for (const std::int32_t mode : {-1, 6, 65536}) {
        std::int32_t changed = -5;
        EXPECT_EQ(kv_cut_with_lasso(pane, mode, kLeftHalf, 4, &changed), KV_BAD_ARGUMENTS);
        EXPECT_EQ(kv_last_error(), "kv_cut_with_lasso: mode must be 0 to 5, not " + std::to_string(mode));
        EXPECT_EQ(changed, -5);
    }
}

TEST_F(KvCuts, HandOutTheirMask) {
    struct Masks {
        int events = 0;
        kv_cut_mask mask{};
        bool isInside = false, isOutside = true;

        static std::int32_t Read(void* user, std::int32_t id, const kv_value* arguments, std::size_t count) {
            if (id != KV_EVENT_CutMaskApplied) return 0;
            auto& me = *static_cast<Masks*>(user);
            ++me.events;
            EXPECT_EQ(count, 1u);
            EXPECT_EQ(arguments[0].type, KV_INT64);
            kv_cut_mask_read(reinterpret_cast<const void*>(arguments[0].as.i64), &me.mask);
            me.isInside = me.IsSet(2, 2), me.isOutside = me.IsSet(kWidth - 2, 2);
            return 0;
        }
        [[nodiscard]] bool IsSet(std::size_t x, std::size_t y) const {
            const std::size_t bit = y * kWidth + x;
            return ((mask.bits[bit / 32] >> (bit % 32)) & 1) != 0;
        }
    } masks;
    kv_connect(pane, &Masks::Read, &masks);
    EXPECT_EQ(kv_cut_with_lasso(pane, KV_PolygonInside, kLeftHalf, 4, nullptr), KV_DONE);
    EXPECT_EQ(masks.events, 1);
    EXPECT_EQ(masks.mask.kind, 0u);
    EXPECT_EQ(masks.mask.viewport[2], kWidth);
    EXPECT_EQ(masks.mask.viewport[3], kHeight);
    EXPECT_EQ(masks.mask.bit_count, static_cast<std::size_t>(kWidth * kHeight));
    EXPECT_TRUE(masks.isInside);
    EXPECT_FALSE(masks.isOutside);
    EXPECT_EQ(masks.mask.depth, nullptr);
    EXPECT_EQ(masks.mask.depth_count, 0u);
}

TEST(KvCutMask, IsReadMemberByMember) {
    ACAD::CutMask mask;
    mask.m_nKind = ACAD::CutKindVisibleInside;
    for (std::size_t i = 0; i < 16; ++i) {
        mask.m_dProjection[i] = 100.0 + static_cast<double>(i);
        mask.m_dModelView[i] = 200.0 + static_cast<double>(i);
    }
    mask.m_nViewport = {1, 2, 3, 4};
    mask.m_rcBounds = {5, 6, 7, 8};
    mask.m_vBits = {{0xFFFu}, 12};
    mask.m_vDepth = {0.5f, 0.25f};
    kv_cut_mask read{};
    kv_cut_mask_read(&mask, &read);
    EXPECT_EQ(read.kind, 2u);
    EXPECT_EQ(read.projection[15], 115.0);
    EXPECT_EQ(read.model_view[15], 215.0);
    EXPECT_EQ(read.viewport[3], 4);
    EXPECT_EQ(read.bounds[3], 8);
    EXPECT_EQ(read.bits, mask.m_vBits.m_vWords.data());
    EXPECT_EQ(read.bit_count, 12u);
    EXPECT_EQ(read.depth, mask.m_vDepth.data());
    EXPECT_EQ(read.depth_count, 2u);
}

TEST(KvCutSaveEntries, AreThePlannedOnesOrThoseOfTheLastSave) {
    RecordedPane recorded;
    KV_ScenePane::CutSaveEntry entry;
    entry.object = 7;
    entry.outcome = KV_ScenePane::CutFileNotWritten;
    entry.file = KV_ScenePane::WidePath("/sc\xC3\xA4n \xFF.pcm");
    entry.reason = "the disk is full";
    entry.numberOfCuts = 3;
    entry.isMoved = entry.isCutWhileMoved = entry.isNothingLeft = true;
    recorded.viewer->saved = {{}, entry};
    recorded.viewer->planned = {entry};

    EXPECT_EQ(kv_cut_save_entries(recorded.pane, 0, nullptr, 0), 2u);
    kv_cut_save_entry entries[3];
    std::memset(entries, 0x5A, sizeof entries);
    EXPECT_EQ(kv_cut_save_entries(recorded.pane, 0, entries, 1), 2u);
    EXPECT_EQ(entries[0].object, 0);
    EXPECT_EQ(entries[0].outcome, 2);
    EXPECT_STREQ(entries[0].file, "");
    EXPECT_EQ(entries[1].object, 0x5A5A5A5A) << "past the capacity";
    EXPECT_EQ(kv_cut_save_entries(recorded.pane, 0, entries, 3), 2u);
    EXPECT_EQ(entries[1].object, 1) << "the place in the list: the index in an entry wraps";
    EXPECT_EQ(entries[1].outcome, 5);
    EXPECT_EQ(entries[1].cut_count, 3);
    EXPECT_EQ(entries[1].is_moved, 1);
    EXPECT_EQ(entries[1].is_cut_while_moved, 1);
    EXPECT_EQ(entries[1].is_nothing_left, 1);
    EXPECT_STREQ(entries[1].file, "/sc\xC3\xA4n \xFF.pcm");
    EXPECT_STREQ(entries[1].reason, "the disk is full");
    EXPECT_EQ(entries[2].object, 0x5A5A5A5A);
    EXPECT_EQ(kv_cut_save_entries(recorded.pane, 1, entries, 3), 1u);
    EXPECT_EQ(entries[0].cut_count, 3);
}

// ---- alignments and the clip plane

using KvAlignment = SceneOfC;

TEST_F(KvAlignment, ByPairsMovesTheVariableObjects) {
    Invoke(KV_AddVariableObject, {Short(0)});
    const kv_alignment_pair pairs[] = {{{0, 0, 0}, {0, 0, 1}, {0, 0, 5}, {0, 0, 1}},
                                       {{9, 0, 0}, {0, 1, 0}, {9, 0, 5}, {1, 0, 0}},
                                       {{0, 9, 0}, {0, 0, 1}, {0, 9, 5}, {0, 0, 1}}};
    kv_alignment found{};
    EXPECT_EQ(kv_align_by_pairs(pane, pairs, 3, &found), KV_DONE);
    EXPECT_EQ(found.is_found, 1);
    EXPECT_EQ(found.pair_count, 3u);
    EXPECT_NEAR(found.transform[11], 5, 1e-6);
    EXPECT_NEAR(found.rms, 0, 1e-6);
    float v[16];
    std::vector<kv_value> trafo = {Short(0)};
    for (float& value : v) trafo.push_back({.type = KV_POINTER, .as = {.pointer = &value}});
    EXPECT_EQ(Invoke(KV_GetTrafoOfScan, trafo).as.i16, 0);
    EXPECT_NEAR(v[11], 5, 1e-5);

    kv_alignment again{};
    kv_alignment_pair used[3];
    std::memset(used, 0x5A, sizeof used);
    double residuals[3] = {-1, -1, -1};
    EXPECT_EQ(kv_alignment_result(pane, &again, used, residuals, 2), KV_DONE);
    EXPECT_EQ(again.pair_count, 3u);
    EXPECT_EQ(used[1].moving[0], 9);
    EXPECT_EQ(used[1].fixed[2], 5);
    EXPECT_EQ(used[1].moving_normal[1], 1);
    EXPECT_EQ(used[1].fixed_normal[0], 1);
    EXPECT_NEAR(residuals[1], 0, 1e-6);
    EXPECT_EQ(residuals[2], -1) << "past the capacity";
    EXPECT_EQ(kv_alignment_result(pane, nullptr, nullptr, nullptr, 0), KV_DONE);
    EXPECT_EQ(kv_align_by_pairs(pane, pairs, 3, nullptr), KV_DONE);
}

TEST_F(KvAlignment, WithoutASolutionIsNotFound) {
    const kv_alignment_pair same[] = {{{1, 1, 1}, {}, {2, 2, 2}, {}}, {{1, 1, 1}, {}, {2, 2, 2}, {}}};
    kv_alignment found{};
    found.is_found = -5;
    EXPECT_EQ(kv_align_by_pairs(pane, same, 2, &found), KV_DONE);
    EXPECT_EQ(found.is_found, 0);
    EXPECT_EQ(kv_align_by_pairs(pane, nullptr, 0, &found), KV_DONE);
    EXPECT_EQ(found.is_found, 0);
}

TEST(KvClipHeight, IsThatOfTheViewer) {
    RecordedPane recorded;
    recorded.viewer->clipHeight = {true, 12.5f, KV_ScenePane::HeightCurvedSpot};
    kv_clip_height height{};
    EXPECT_EQ(kv_clip_height_result(recorded.pane, &height), KV_DONE);
    EXPECT_EQ(height.found, 1);
    EXPECT_EQ(height.height, 12.5f);
    EXPECT_EQ(height.kind, 3);
    recorded.viewer->clipHeight = {};
    EXPECT_EQ(kv_clip_height_result(recorded.pane, &height), KV_DONE);
    EXPECT_EQ(height.found, 0);
    EXPECT_EQ(height.height, -20.0f);
}

// ---- meshes

TEST(KvMesh, IsACopyOfTheArraysOnAnyThread) {
    kv_vertex vertices[] = {{1, 2, 3, 4, 5, 6, 0x11223344, 0x00070008}, {}, {}};
    std::int32_t triangles[] = {2, 1, 0};
    for (const std::int32_t hasColors : {0, 1, 2}) {
        kv_mesh* mesh = nullptr;
        std::thread([&] { mesh = kv_mesh_create(vertices, 3, triangles, 1, hasColors); }).join();
        ASSERT_NE(mesh, nullptr);
        const auto& buffers = *reinterpret_cast<const KV_ScenePane::MeshBuffers*>(mesh);
        EXPECT_EQ(buffers.HasColors(), hasColors != 0);
        ASSERT_EQ(buffers.GetVertices().size(), 3u);
        EXPECT_EQ(std::memcmp(buffers.GetVertices().data(), vertices, sizeof vertices), 0);
        ASSERT_EQ(buffers.GetTriangles().size(), 1u);
        EXPECT_EQ(std::memcmp(buffers.GetTriangles().data(), triangles, sizeof triangles), 0);
        kv_mesh_destroy(mesh);
    }
    kv_mesh_destroy(nullptr);
}

TEST(KvMesh, MayBeEmpty) {
    kv_mesh* mesh = kv_mesh_create(nullptr, 0, nullptr, 0, 0);
    EXPECT_NE(mesh, nullptr);
    kv_mesh_destroy(mesh);
}

TEST(KvMesh, IsRefusedForAnIndexThatIsNotOneOfAVertex) {
    const kv_vertex vertices[3] = {};
    for (const std::int32_t index : {-1, 3, INT32_MIN, INT32_MAX})
        for (const std::size_t place : {std::size_t{0}, std::size_t{5}}) {
            std::int32_t triangles[] = {0, 1, 2, 2, 1, 0};
            triangles[place] = index;
            EXPECT_EQ(kv_mesh_create(vertices, 3, triangles, 2, 0), nullptr) << index;
            EXPECT_EQ(kv_last_error(), "kv_mesh_create: triangle " + std::to_string(place / 3) + " has the vertex " +
                                           std::to_string(index) + ", there are 3");
        }
}

TEST(KvMesh, IsRefusedWhenMemoryIsShort) {
    const kv_vertex vertex{};
    EXPECT_EQ(kv_mesh_create(&vertex, SIZE_MAX / 4, nullptr, 0, 0), nullptr);
    EXPECT_STREQ(kv_last_error(), "out of memory");
}

// ---- persisted properties

TEST(KvSaveProperties, WritesTheStoreLikeAText) {
    RecordedPane recorded;
    recorded.viewer->store = std::string("a\0b", 3);
    char buffer[16];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(kv_save_properties(recorded.pane, KV_PROPERTIES_BINARY, buffer, sizeof buffer), 3u);
    EXPECT_EQ(std::string(buffer, 5), std::string("a\0b\0#", 5));
    EXPECT_EQ(kv_save_properties(recorded.pane, KV_PROPERTIES_TEXT, buffer, 3), 7u);
    EXPECT_EQ(std::string(buffer, 3), std::string("a\0\0", 3));
    EXPECT_EQ(kv_save_properties(recorded.pane, KV_PROPERTIES_BINARY, nullptr, 0), 3u);
    for (const std::int32_t format : {-1, 2}) {
        EXPECT_EQ(kv_save_properties(recorded.pane, format, buffer, sizeof buffer), KV_NO_TEXT);
        EXPECT_EQ(kv_last_error(),
                  "kv_save_properties: format must be KV_PROPERTIES_TEXT or KV_PROPERTIES_BINARY, "
                  "not " +
                      std::to_string(format));
        EXPECT_STREQ(buffer, "");
    }
}

TEST(KvLoadProperties, SaysWhyAStoreWasRefused) {
    RecordedPane recorded;
    recorded.viewer->store = std::string("a\0b", 3);
    EXPECT_EQ(kv_load_properties(recorded.pane, "a\0b", 3), KV_DONE);
    EXPECT_EQ(kv_load_properties(recorded.pane, "a\0b", 2), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "the store is damaged");
}

TEST(KvIsModified, IsThatOfTheViewer) {
    RecordedPane recorded;
    EXPECT_EQ(kv_is_modified(recorded.pane), 0);
    recorded.viewer->modified = true;
    EXPECT_EQ(kv_is_modified(recorded.pane), 1);
}

using KvPersistedProperties = SceneOfC;

TEST_F(KvPersistedProperties, GoThroughAStoreOfEitherFormat) {
    for (const std::int32_t format : {KV_PROPERTIES_TEXT, KV_PROPERTIES_BINARY}) {
        const kv_value mode = Short(5), other = Short(1);
        EXPECT_EQ(kv_put_property(pane, KV_PROPERTY_DrawMode, &mode), KV_DONE);
        EXPECT_EQ(kv_is_modified(pane), 1);
        EXPECT_GT(kv_save_properties(pane, format, nullptr, 0), 0u);
        EXPECT_EQ(kv_is_modified(pane), 1) << "nothing was written";
        char store[4096];
        const std::size_t size = kv_save_properties(pane, format, store, sizeof store);
        ASSERT_LT(size, sizeof store);
        EXPECT_EQ(kv_is_modified(pane), 0);
        EXPECT_EQ(kv_put_property(pane, KV_PROPERTY_DrawMode, &other), KV_DONE);
        EXPECT_EQ(kv_load_properties(pane, store, size), KV_DONE) << kv_last_error();
        kv_value read{};
        EXPECT_EQ(kv_get_property(pane, KV_PROPERTY_DrawMode, &read), KV_DONE);
        EXPECT_EQ(read.as.i16, 5) << format;
        EXPECT_EQ(kv_load_properties(pane, "damaged", 7), KV_FAILED) << format;
        EXPECT_NE(std::string(kv_last_error()), "");
    }
}

}  // namespace
