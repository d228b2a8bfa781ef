// The life of a viewer, its callbacks, errors and the debugger output, for programs in C.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"
#include "KV_ScenePane/kv_scenepane.h"
#include "control/CInterfacePanes.h"
#include "control/RecordingViewer.h"
#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"

namespace {

kv_status SetPickMode(kv_pane* pane) {  // fires PickPointCountChanged
    const kv_value mode{.type = KV_SHORT, .as = {.i16 = 5}};
    return kv_invoke(pane, KV_SetPickMode, &mode, 1, nullptr);
}

// ---- the request

TEST(KvWindowRequest, StartsWithTheDefaultsOfTheRequestInCpp) {
    kv_window_request request;
    std::memset(&request, 0x5A, sizeof request);
    kv_window_request_init(&request);
    const KV_ScenePane::WindowRequest defaults;
    EXPECT_EQ(request.size, sizeof request);
    EXPECT_EQ(request.kind, static_cast<std::int32_t>(defaults.kind));
    EXPECT_EQ(request.x, defaults.x);
    EXPECT_EQ(request.y, defaults.y);
    EXPECT_EQ(request.width, defaults.width);
    EXPECT_EQ(request.height, defaults.height);
    EXPECT_EQ(request.gl_major, defaults.glMajor);
    EXPECT_EQ(request.gl_minor, defaults.glMinor);
    EXPECT_EQ(request.samples, defaults.samples);
    EXPECT_EQ(request.gpu, defaults.gpu);
    EXPECT_EQ(request.parent, defaults.parent);
    EXPECT_EQ(request.display, nullptr);
    EXPECT_EQ(request.title, nullptr);
    EXPECT_EQ(request.scale, defaults.scale);
    EXPECT_EQ(request.show_message, nullptr);
    EXPECT_EQ(request.show_about, nullptr);
    EXPECT_EQ(request.user, nullptr);
}

TEST(KvWindowRequest, IsRefusedWithTheReason) {
    struct Row {
        std::function<void(kv_window_request&)> change;
        const char* reason;
    };
    const Row rows[] = {
        {[](auto& r) { r.size = 0; }, "kv_create: the member size must be sizeof(kv_window_request), not 0"},
        {[](auto& r) { r.size = 8; }, "kv_create: the member size must be sizeof(kv_window_request), not 8"},
        {[](auto& r) { r.size = 103; }, "kv_create: the member size must be sizeof(kv_window_request), not 103"},
        {[](auto& r) { r.kind = 4; }, "kv_create: kind must be KV_CHILD to KV_NO_PICTURE, 0 to 3, not 4"},
        {[](auto& r) { r.kind = -1; }, "kv_create: kind must be KV_CHILD to KV_NO_PICTURE, 0 to 3, not -1"}};
    for (const Row& row : rows) {
        kv_window_request request = Request(KV_NO_PICTURE);
        row.change(request);
        EXPECT_EQ(kv_create(&request), nullptr) << row.reason;
        EXPECT_STREQ(kv_last_error(), row.reason);
    }
    EXPECT_EQ(kv_create(nullptr), nullptr);
    EXPECT_STREQ(kv_last_error(), "kv_create: the request is null");
}

std::int32_t NeverCalled(void*, const char*, const char*) {
    ADD_FAILURE() << "called";
    return 1;
}

TEST(KvWindowRequest, OfAnOlderVersionLeavesTheLaterMembersAtTheirDefaults) {
    kv_window_request request = Request(KV_NO_PICTURE);
    request.show_about = &NeverCalled;
    request.size = offsetof(kv_window_request, show_about);
    const Pane pane(request);
    std::string output;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view text) { output += text; });
    EXPECT_EQ(kv_invoke(pane, KV_AboutBox, nullptr, 0, nullptr), KV_DONE);
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_NE(output.find("Version 5.5"), std::string::npos) << output;
}

TEST(KvWindowRequest, OfALaterVersionIsAcceptedWhileItsUnknownMembersAreZero) {
    struct Later {
        kv_window_request known;
        std::int64_t unknown[2];
    } later{Request(KV_NO_PICTURE), {0, 0}};
    later.known.size = sizeof later;
    kv_pane* pane = kv_create(&later.known);
    EXPECT_NE(pane, nullptr) << kv_last_error();
    kv_destroy(pane);
    later.unknown[1] = 1;
    EXPECT_EQ(kv_create(&later.known), nullptr);
    EXPECT_STREQ(kv_last_error(),
                 "kv_create: the request is of a later version: its size is 120, this library knows 104 bytes");
}

TEST(KvCreate, SaysWhyThereIsNoViewer) {
    kv_window_request request = Request(KV_CHILD);
    request.display = ":987654";
    EXPECT_EQ(kv_create(&request), nullptr);
    EXPECT_NE(std::string(kv_last_error()).find(":987654"), std::string::npos) << kv_last_error();
}

TEST(KvCreate, ShowsAMessageAndReportsTheFailureOfTheCallback) {
    struct Shown {
        std::string text;
        std::int32_t answer = 0;
    } shown;
    kv_window_request request = Request(KV_OFF_SCREEN);
    request.gl_major = 9;
    request.user = &shown;
    request.show_message = [](void* user, const char* text) {
        static_cast<Shown*>(user)->text = text;
        return static_cast<Shown*>(user)->answer;
    };
    EXPECT_EQ(kv_create(&request), nullptr);
    EXPECT_NE(shown.text, "");
    EXPECT_TRUE(std::string(kv_last_error()).starts_with("OpenGL 9.3 is not offered by the driver: request 3.3 to "))
        << kv_last_error();
    shown.answer = 6;
    EXPECT_EQ(kv_create(&request), nullptr);
    EXPECT_STREQ(kv_last_error(), "show_message returned 6");
}

// ---- errors

TEST(KvLastError, IsEmptyBeforeTheFirstFailureAndBelongsToItsThread) {
    EXPECT_EQ(kv_create(nullptr), nullptr);
    std::string ofTheThread = "not read";
    std::thread([&] { ofTheThread = kv_last_error(); }).join();
    EXPECT_EQ(ofTheThread, "");
    EXPECT_STREQ(kv_last_error(), "kv_create: the request is null");
}

TEST(KvLastError, StaysWhileCallsSucceed) {
    const Pane pane(KV_NO_PICTURE);
    EXPECT_EQ(kv_invoke(pane, 3, nullptr, 0, nullptr), KV_UNKNOWN_ID);
    EXPECT_EQ(kv_invoke(pane, KV_ClearData, nullptr, 0, nullptr), KV_DONE);
    EXPECT_STREQ(kv_last_error(), "no method has the id 3");
}

TEST(KvCalls, TurnExceptionsIntoAStatusAndAText) {
    RecordedPane recorded;
    struct Row {
        std::function<void()> inside;
        const char* text;
    };
    const Row rows[] = {{[] { throw std::runtime_error("the disk is full"); }, "kv_process_events: the disk is full"},
                        {[] { throw std::bad_alloc(); }, "out of memory"},
                        {[] { throw 5; }, "an exception of an unknown type"}};
    for (const Row& row : rows) {
        recorded.viewer->process = row.inside;
        EXPECT_EQ(kv_process_events(recorded.pane), KV_FAILED) << row.text;
        EXPECT_STREQ(kv_last_error(), row.text);
    }
    recorded.viewer->process = [] {};
    EXPECT_EQ(kv_process_events(recorded.pane), KV_DONE);
}

TEST(KvCalls, ReportWhatAMethodThrowsUnderItsName) {
    const Pane pane(KV_NO_PICTURE);
    const kv_value path{.type = KV_UTF8, .as = {.utf8 = "/nowhere.ply"}};
    EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "ImportMesh: Magic number in PLY header not found.");
    EXPECT_EQ(kv_invoke(pane, KV_ClearData, nullptr, 0, nullptr), KV_DONE) << "the viewer goes on working";
}

/// All functions that return a status.
std::vector<std::pair<const char*, std::function<kv_status(kv_pane*)>>> StatusFunctions() {
    static kv_value value;
    value = {.type = KV_SHORT, .as = {.i16 = 1}};
    static kv_surface_point hit;
    static kv_clip_height height;
    static kv_frame_statistics frames;
    return {{"kv_process_events", [](kv_pane* p) { return kv_process_events(p); }},
            {"kv_reparent", [](kv_pane* p) { return kv_reparent(p, 1, 0, 0); }},
            {"kv_set_scale", [](kv_pane* p) { return kv_set_scale(p, 1); }},
            {"kv_send_mouse", [](kv_pane* p) { return kv_send_mouse(p, KV_MOUSE_MOVE, 0, 1, 1, 0); }},
            {"kv_send_key", [](kv_pane* p) { return kv_send_key(p, 1, 65, 1, 0); }},
            {"kv_invoke", [](kv_pane* p) { return kv_invoke(p, KV_ClearData, nullptr, 0, nullptr); }},
            {"kv_get_property", [](kv_pane* p) { return kv_get_property(p, KV_PROPERTY_DrawMode, &value); }},
            {"kv_put_property", [](kv_pane* p) { return kv_put_property(p, KV_PROPERTY_DrawMode, &value); }},
            {"kv_connect", [](kv_pane* p) { return kv_connect(p, nullptr, nullptr); }},
            {"kv_capture_picture", [](kv_pane* p) { return kv_capture_picture(p, nullptr, 0, nullptr, nullptr); }},
            {"kv_pick_surface", [](kv_pane* p) { return kv_pick_surface(p, 0, 0, &hit); }},
            {"kv_cut_with_lasso", [](kv_pane* p) { return kv_cut_with_lasso(p, 0, nullptr, 0, nullptr); }},
            {"kv_align_by_pairs", [](kv_pane* p) { return kv_align_by_pairs(p, nullptr, 0, nullptr); }},
            {"kv_alignment_result", [](kv_pane* p) { return kv_alignment_result(p, nullptr, nullptr, nullptr, 0); }},
            {"kv_clip_height_result", [](kv_pane* p) { return kv_clip_height_result(p, &height); }},
            {"kv_frame_statistics_result", [](kv_pane* p) { return kv_frame_statistics_result(p, &frames); }},
            {"kv_load_properties", [](kv_pane* p) { return kv_load_properties(p, "", 0); }}};
}

void ExpectUnusable(kv_pane* pane, const std::string& why) {
    for (const auto& [name, call] : StatusFunctions()) {
        EXPECT_EQ(call(pane), KV_BAD_ARGUMENTS) << name;
        EXPECT_EQ(kv_last_error(), name + why);
    }
    char text[4] = "abc";
    EXPECT_EQ(kv_event_descriptor(pane), -1);
    EXPECT_EQ(kv_has_window(pane), 0);
    EXPECT_EQ(kv_native_window(pane), 0u);
    EXPECT_EQ(kv_object_name(pane, 0, text, sizeof text), KV_NO_TEXT);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(kv_graphics_info(pane, nullptr, 0), KV_NO_TEXT);
    EXPECT_EQ(kv_object_has_colors(pane, 0), 0);
    EXPECT_EQ(kv_undo_step_count(pane), 0);
    EXPECT_EQ(kv_cut_save_entries(pane, 1, nullptr, 0), 0u);
    EXPECT_EQ(kv_save_properties(pane, KV_PROPERTIES_TEXT, nullptr, 0), KV_NO_TEXT);
    EXPECT_EQ(kv_is_modified(pane), 0);
    EXPECT_EQ(kv_last_error(), "kv_is_modified" + why);
}

TEST(KvCalls, WithoutAViewerAreRefused) { ExpectUnusable(nullptr, ": the viewer is null"); }

// ---- callbacks

TEST(KvCallbacks, MayDestroyTheirViewerInsideItsCalls) {
    Pane pane(KV_NO_PICTURE);
    int events = 0;
    Handler handler = [&](std::int32_t) {
        ++events;
        kv_pane* const destroyed = pane;
        pane.Destroy();
        ExpectUnusable(destroyed, ": the viewer is destroyed");
        kv_destroy(destroyed);  // once more, while its call has not returned
        return 0;
    };
    ConnectHandler(pane, handler);
    EXPECT_EQ(SetPickMode(pane), KV_DONE);
    EXPECT_EQ(events, 1);
}

TEST(KvCallbacks, MayDestroyTheirViewerInsideACallThatACallbackMade) {
    for (const std::int32_t answer : {0, 1}) {
        Pane pane(KV_NO_PICTURE);
        int depth = 0;
        kv_status inner = -1;
        Handler handler = [&](std::int32_t) {
            if (++depth == 1)
                inner = SetPickMode(pane);
            else
                pane.Destroy();
            return depth-- == 2 ? answer : 0;
        };
        ConnectHandler(pane, handler);
        EXPECT_EQ(SetPickMode(pane), KV_DONE) << answer;
        EXPECT_EQ(inner, answer == 0 ? KV_DONE : KV_HANDLER_FAILED);
    }
}

TEST(KvCallbacks, EndTheCallThatCausedThemWhenTheyFailAndTheViewerGoesOnWorking) {
    const Pane pane(KV_NO_PICTURE);
    std::int32_t answer = 7;
    Handler handler = [&](std::int32_t) { return answer; };
    ConnectHandler(pane, handler);
    kv_value result{.type = KV_FLOAT, .as = {.f32 = 4}};
    kv_value sphere[] = {{.type = KV_FLOAT, .as = {.f32 = 1}},
                         {.type = KV_FLOAT, .as = {.f32 = 2}},
                         {.type = KV_FLOAT, .as = {.f32 = 3}},
                         {.type = KV_LONG, .as = {.i32 = 0}}};
    EXPECT_EQ(kv_invoke(pane, KV_AddPickPointSphere, sphere, 4, &result), KV_HANDLER_FAILED);
    EXPECT_STREQ(kv_last_error(), "the callback of the event PickPointCountChanged returned 7");
    EXPECT_EQ(result.type, KV_FLOAT) << "unchanged";
    answer = 0;
    EXPECT_EQ(kv_invoke(pane, KV_AddPickPointSphere, sphere, 4, &result), KV_DONE);
    EXPECT_EQ(result.type, KV_LONG);
    EXPECT_EQ(result.as.i32, 1) << "the sphere of the failed call is there";
}

TEST(KvCallbacks, ThatFailInACallOfAnotherCallbackEndThatCallOnly) {
    const Pane pane(KV_NO_PICTURE);
    int depth = 0;
    kv_status inner = KV_DONE;
    Handler handler = [&](std::int32_t) {
        if (depth == 1) return 2;
        ++depth;
        inner = SetPickMode(pane);
        return 0;
    };
    ConnectHandler(pane, handler);
    EXPECT_EQ(SetPickMode(pane), KV_DONE);
    EXPECT_EQ(inner, KV_HANDLER_FAILED);
}

TEST(KvCallbacks, OfOneViewerMayDestroyAnother) {
    Pane first(KV_NO_PICTURE), second(KV_NO_PICTURE);
    Handler handler = [&](std::int32_t) {
        second.Destroy();
        return 0;
    };
    ConnectHandler(first, handler);
    EXPECT_EQ(SetPickMode(first), KV_DONE);
    EXPECT_EQ(SetPickMode(second), KV_BAD_ARGUMENTS);
    EXPECT_EQ(SetPickMode(first), KV_DONE);
}

TEST(KvCallbacks, ShowTheAboutDialog) {
    struct Shown {
        std::string title, line;
        std::int32_t answer = 0;
    } shown;
    kv_window_request request = Request(KV_NO_PICTURE);
    request.user = &shown;
    request.show_about = [](void* user, const char* title, const char* line) {
        auto& me = *static_cast<Shown*>(user);
        me.title = title, me.line = line;
        return me.answer;
    };
    const Pane pane(request);
    EXPECT_EQ(kv_invoke(pane, KV_AboutBox, nullptr, 0, nullptr), KV_DONE);
    EXPECT_EQ(shown.title, "About KV_ScenePane Control");
    EXPECT_EQ(shown.line, "KV_ScenePane Control, Version 5.5");
    shown.answer = 3;
    EXPECT_EQ(kv_invoke(pane, KV_AboutBox, nullptr, 0, nullptr), KV_HANDLER_FAILED);
    EXPECT_STREQ(kv_last_error(), "show_about returned 3");
}

TEST(KvDestroy, AcceptsNull) { kv_destroy(nullptr); }

TEST(KvDestroy, CallsNoCallbackAnyMore) {
    Pane pane(KV_NO_PICTURE);
    ASSERT_EQ(SetPickMode(pane), KV_DONE);
    int events = 0;
    Handler handler = [&](std::int32_t) { return ++events; };
    ConnectHandler(pane, handler);
    pane.Destroy();
    EXPECT_EQ(events, 0);
}

// ---- texts of methods

TEST(KvTextArguments, InUtf8ReachTheControlSeveralInOneCall) {
    const Pane pane(KV_NO_PICTURE);
    const kv_value texts[] = {
        {.type = KV_UTF8, .as = {.utf8 = "\xC3\xA4"}},  // so short that the string holds it itself
        {.type = KV_UTF8, .as = {.utf8 = "a version whose text is longer than a short one"}}};
    EXPECT_EQ(kv_invoke(pane, KV_SetHpsSourceApp, texts, 2, nullptr), KV_DONE);
    const CKV_ScenePaneCtrl& control = ControlOf(*static_cast<kv_pane*>(pane)->m_pViewer);
    EXPECT_EQ(control.m_hpsSourceApp, "\xE4") << "as these files store it";
    EXPECT_EQ(control.m_hpsSourceVersion, "a version whose text is longer than a short one");
}

// ---- the debugger output and the version

TEST(KvDebugOutput, GoesToTheCallbackUntilItIsReplaced) {
    const Pane pane(KV_NO_PICTURE);
    std::string output;
    kv_set_debug_output(
        [](void* user, const char* text, std::size_t size) { static_cast<std::string*>(user)->append(text, size); },
        &output);
    const kv_value path{.type = KV_UTF8, .as = {.utf8 = "/nowhere.stl"}};
    EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_DONE);
    EXPECT_NE(output.find("/nowhere.stl"), std::string::npos) << output;
    output.clear();
    kv_set_debug_output(nullptr, nullptr);
    testing::internal::CaptureStderr();
    EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_DONE);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("/nowhere.stl"), std::string::npos);
    EXPECT_EQ(output, "");
}

TEST(KvDebugOutput, MayDestroyTheViewerThatWrites) {
    static kv_pane* pane;
    kv_window_request request = Request(KV_NO_PICTURE);
    pane = kv_create(&request);
    ASSERT_NE(pane, nullptr);
    kv_set_debug_output([](void*, const char*, std::size_t) { kv_destroy(std::exchange(pane, nullptr)); }, nullptr);
    const kv_value path{.type = KV_UTF8, .as = {.utf8 = "/nowhere.stl"}};
    EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_DONE);
    EXPECT_EQ(pane, nullptr);
    kv_set_debug_output(nullptr, nullptr);
}

TEST(KvVersion, IsThatOfTheLibrary) {
    std::string onAThread;
    std::thread([&] { onAThread = kv_version(); }).join();
    EXPECT_EQ(onAThread, KV_EXPECTED_VERSION);
}

// KV_EXPECTED_VERSION is the version of the CMake project.
TEST(KvVersion, IsThatOfTheMacrosAndOfTheProject) {
    const auto text = [](int major, int minor, int patch) {
        return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
    };
    EXPECT_EQ(text(KV_SCENEPANE_VERSION_MAJOR, KV_SCENEPANE_VERSION_MINOR, KV_SCENEPANE_VERSION_PATCH),
              KV_EXPECTED_VERSION);
    EXPECT_EQ(kv_version_number(), KV_SCENEPANE_VERSION);
    EXPECT_EQ(KV_ScenePane::LibraryVersion(), KV_SCENEPANE_VERSION);
    static_assert(KV_SCENEPANE_MAKE_VERSION(5, 12, 3) == 51203);
    static_assert(KV_SCENEPANE_MAKE_VERSION(5, 99, 99) < KV_SCENEPANE_MAKE_VERSION(6, 0, 0));
}

// ---- files

/// What a text function of one viewer returns.
std::string FileErrorOf(kv_pane* pane) {
    std::string text(200, 'x');
    const std::size_t size = kv_file_error(pane, text.data(), text.size());
    return size < text.size() ? text.substr(0, size) : "too long, or no text";
}

TEST(KvImportFile, PassesItsArgumentsOn) {
    const RecordedPane recorded;
    EXPECT_EQ(kv_import_file(recorded.pane, "a b.stl", 3, 0.5f, 0x102030), KV_DONE);
    EXPECT_EQ(recorded.viewer->imported, "a b.stl 3 0.500000 1056816");
    recorded.viewer->refusal = "no such thing";
    EXPECT_EQ(kv_import_file(recorded.pane, "b", 1, 0, 0), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "no such thing");
    EXPECT_EQ(FileErrorOf(recorded.pane), "no such thing");
}

TEST(KvImportFile, RefusesBadArguments) {
    const RecordedPane recorded;
    EXPECT_EQ(kv_import_file(nullptr, "a.stl", 1, 0, 0), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "kv_import_file: the viewer is null");
    EXPECT_EQ(kv_import_file(recorded.pane, nullptr, 1, 0, 0), KV_BAD_ARGUMENTS);
    EXPECT_STREQ(kv_last_error(), "kv_import_file: the path is null");
    for (const std::int32_t skip : {0, -1, 32768, 65537}) {
        EXPECT_EQ(kv_import_file(recorded.pane, "a.stl", skip, 0, 0), KV_BAD_ARGUMENTS);
        EXPECT_EQ(kv_last_error(), "kv_import_file: skip must be 1 to 32767, not " + std::to_string(skip));
    }
    EXPECT_EQ(recorded.viewer->imported, "");
    EXPECT_EQ(kv_file_error(nullptr, nullptr, 0), KV_NO_TEXT);
}

TEST(KvFileError, IsTheReasonOfTheLastFile) {
    const Pane pane(KV_NO_PICTURE);
    EXPECT_EQ(FileErrorOf(pane), "");
    const kv_value path{.type = KV_UTF8, .as = {.utf8 = "/nowhere.stl"}};
    testing::internal::CaptureStderr();
    EXPECT_EQ(kv_invoke(pane, KV_ImportMesh, &path, 1, nullptr), KV_DONE);
    EXPECT_EQ(FileErrorOf(pane), "cannot be opened: No such file or directory");
    EXPECT_EQ(kv_import_file(pane, "/nowhere.obj", 1, 0, 0), KV_FAILED);
    (void)testing::internal::GetCapturedStderr();
    EXPECT_EQ(FileErrorOf(pane), kv_last_error());
}

}  // namespace
