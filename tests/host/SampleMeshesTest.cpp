// Mesh files that other programs wrote, opened as a user opens them. The table beside this file has one line per file:
// its path, a tab, and what comes of it. The counts are those of the inventory of the samples, which other readers
// made.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "DebugCapture.h"
#include "FileImport.h"
#include "KV_ScenePane/ScenePane.h"

namespace {

std::map<std::string, std::string> ExpectedResults() {
    std::map<std::string, std::string> expected;
    std::ifstream in(KV_SAMPLE_TABLE);
    for (std::string line; std::getline(in, line);) {
        const std::size_t tab = line.find('\t');
        if (tab != std::string::npos) expected[line.substr(0, tab)] = line.substr(tab + 1);
    }
    return expected;
}

std::string ResultOf(KV_ScenePane::ScenePane& pane, const std::string& file) {
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    const ImportResult result = ImportFile(methods, file, {});
    const std::string note = result.text.empty() ? "" : "; " + result.text;
    if (result.state == ImportResult::State::Failed) return "refused: " + result.text;
    if (result.state == ImportResult::State::Points)
        return std::to_string(result.points->xyz.size() / 3) + " points" + note;
    std::int32_t vertices = 0, triangles = 0;
    methods.GetMeshDataSize(0, &vertices, &triangles);
    methods.DeleteObject(0);
    return std::to_string(triangles) + " triangles, " + std::to_string(vertices) + " vertices" + note;
}

TEST(SampleMeshes, OpenAsTheTableSays) {
    const std::filesystem::path folder = std::filesystem::path(KV_SAMPLES_DIR) / "meshes";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "there are no sample files";
    const std::map<std::string, std::string> expected = ExpectedResults();
    EXPECT_GT(expected.size(), 150u) << "the table";
    const DebugRouter router([](std::string_view) {});
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    const auto pane = CreateScenePane(request, nullptr);
    std::map<std::string, std::string> results;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const std::string path = std::filesystem::relative(entry.path(), folder).string();
        results[path] = ResultOf(*pane, entry.path().string());
        const auto row = expected.find(path);
        EXPECT_EQ(results[path], row == expected.end() ? "no line in the table" : row->second) << path;
    }
    EXPECT_EQ(results.size(), expected.size()) << "files that are in the table alone";
    if (!HasFailure()) return;
    std::ofstream out("sample_meshes.txt");  // of this run, in the folder of the test
    for (const auto& [path, result] : results) out << path << '\t' << result << '\n';
}

}  // namespace
