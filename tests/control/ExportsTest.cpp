// What the shared library shows to a host: its exported symbols and its name for the loader.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

/// What @p command writes to its standard output.
std::string OutputOf(const std::string& command) {
    struct Close {
        void operator()(FILE* pipe) const { EXPECT_EQ(pclose(pipe), 0); }
    };
    const std::unique_ptr<FILE, Close> pipe(popen(command.c_str(), "r"));
    std::string text;
    char part[4096];
    while (fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    return text;
}

const std::set<std::string> kCppFunctions = {"ACAD::CutMask::InvalidateVertices", "ACAD::CutMask::MarkVertices",
                                             "KV_ScenePane::CreateScenePane",     "KV_ScenePane::LibraryVersion",
                                             "KV_ScenePane::ReadPointFile",       "KV_ScenePane::SetDebugOutputSink"};

// Programs are linked to these: a name that is missing is an incompatible library.
const std::set<std::string> kCFunctions = {"kv_align_by_pairs",
                                           "kv_alignment_result",
                                           "kv_capture_picture",
                                           "kv_clip_height_result",
                                           "kv_connect",
                                           "kv_create",
                                           "kv_cut_mask_read",
                                           "kv_cut_save_entries",
                                           "kv_cut_with_lasso",
                                           "kv_destroy",
                                           "kv_event_descriptor",
                                           "kv_file_error",
                                           "kv_frame_statistics_result",
                                           "kv_get_property",
                                           "kv_graphics_info",
                                           "kv_has_window",
                                           "kv_import_file",
                                           "kv_invoke",
                                           "kv_is_modified",
                                           "kv_last_error",
                                           "kv_load_properties",
                                           "kv_member_at",
                                           "kv_member_by_id",
                                           "kv_member_by_name",
                                           "kv_member_count",
                                           "kv_mesh_create",
                                           "kv_mesh_destroy",
                                           "kv_native_window",
                                           "kv_object_has_colors",
                                           "kv_object_name",
                                           "kv_pick_surface",
                                           "kv_process_events",
                                           "kv_put_property",
                                           "kv_reparent",
                                           "kv_save_properties",
                                           "kv_send_key",
                                           "kv_send_mouse",
                                           "kv_set_debug_output",
                                           "kv_set_scale",
                                           "kv_undo_step_count",
                                           "kv_version",
                                           "kv_version_number",
                                           "kv_window_request_init"};

TEST(TheLibrary, ExportsTheCInterfaceAndSixFunctionsOfCppAndNoData) {
    std::istringstream lines(OutputOf("nm -D -C --defined-only '" KV_LIBRARY_FILE "'"));
    std::set<std::string> functions;
    for (std::string address, type, name; lines >> address >> type && std::getline(lines >> std::ws, name);) {
        EXPECT_EQ(type, "T") << name << " is not a function";
        functions.insert(name.substr(0, name.find('(')));
    }
    std::set<std::string> expected = kCppFunctions;
    expected.insert(kCFunctions.begin(), kCFunctions.end());
    EXPECT_EQ(functions, expected);
}

TEST(TheLibrary, ExportsEveryFunctionThatTheCHeaderDeclares) {
    std::ifstream file(KV_SOURCE_DIR "/include/KV_ScenePane/kv_scenepane.h");
    const std::string header(std::istreambuf_iterator<char>(file), {});
    const std::regex declaration("KV_API [^;(]*?(kv_\\w+)\\(");
    std::set<std::string> declared;
    for (std::sregex_iterator found(header.begin(), header.end(), declaration), end; found != end; ++found)
        declared.insert((*found)[1]);
    EXPECT_EQ(declared, kCFunctions);
}

TEST(TheLibrary, HasTheMajorVersionInTheNameThatProgramsAreLinkedTo) {
    const std::string dynamic = OutputOf("readelf -d --wide '" KV_LIBRARY_FILE "'");
    std::smatch name;
    ASSERT_TRUE(std::regex_search(dynamic, name, std::regex("\\(SONAME\\).*\\[(.*)\\]"))) << dynamic;
    const std::string version = KV_EXPECTED_VERSION;
    EXPECT_EQ(name[1], "libKV_ScenePane.so." + version.substr(0, version.find('.')));
}

}  // namespace
