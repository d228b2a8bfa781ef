// Runs the example in C: what it prints of a simulated scan, and the picture that it writes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

#include "support/ScratchFolder.h"

namespace {

struct Ended {
    int status = -1;
    std::string output;  ///< standard output and standard error
};

Ended RunCommand(const std::string& command) {
    Ended run;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> part{};
    while (fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) run.output += part.data();
    const int ended = pclose(pipe);
    if (WIFEXITED(ended)) run.status = WEXITSTATUS(ended);
    return run;
}

/// The pixels of a PPM file of 320 x 240.
std::string PixelsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    const std::string head = "P6\n320 240\n255\n";
    EXPECT_TRUE(bytes.starts_with(head)) << path;
    EXPECT_EQ(bytes.size(), head.size() + std::size_t{320} * 240 * 3);
    return bytes.starts_with(head) ? bytes.substr(head.size()) : "";
}

TEST(CHost, PrintsTheCountsAndTheEventsOfAScanAndWritesItsPicture) {
    const ScratchFolder folder;
    const Ended simulated =
        RunCommand("'" SIMULATE_SCANS "' --shape sphere --scans 1 --size 160x120 --noise 0 --dropout 0 --out '" +
                   folder.Path().string() + "'");
    ASSERT_EQ(simulated.status, 0) << simulated.output;
    const std::string scan = folder / "sphere_001.pcm", picture = folder / "picture.ppm";
    ASSERT_TRUE(std::filesystem::exists(scan)) << simulated.output;

    const Ended run = RunCommand("'" C_HOST "' '" + scan + "' '" + picture + "'");
    EXPECT_EQ(run.status, 0) << run.output;
    const auto numberAfter = [&](const std::string& text) {
        const std::size_t found = run.output.find(text);
        return found == std::string::npos ? -1 : std::stol(run.output.substr(found + text.size()));
    };
    EXPECT_TRUE(run.output.starts_with("KV_ScenePane " KV_EXPECTED_VERSION "\nobjects: 1\n")) << run.output;
    // The sphere covers a good part of the 19,200 pixels; a grid has about two triangles per vertex.
    const long vertices = numberAfter("vertices: "), triangles = numberAfter("triangles: ");
    EXPECT_GT(vertices, 1000) << run.output;
    EXPECT_LT(vertices, 160 * 120);
    EXPECT_GT(triangles, vertices * 3 / 2);
    EXPECT_LT(triangles, vertices * 2);
    std::smatch event;
    const std::regex direction("event ViewDirectionChanged: vx (\\S+) vy (\\S+) vz (\\S+)\nevents: 1\n");
    ASSERT_TRUE(std::regex_search(run.output, event, direction)) << run.output;
    // The drag to the right turns the view, which was along the y axis, about the vertical of the screen, z.
    const double x = std::stod(event[1]), y = std::stod(event[2]);
    EXPECT_GT(std::abs(x), 0.05) << run.output;
    EXPECT_GT(y, 0.5) << run.output;
    EXPECT_NEAR(x * x + y * y, 1, 0.005) << run.output;
    EXPECT_NEAR(std::stod(event[3]), 0, 0.002) << run.output;
    EXPECT_TRUE(run.output.ends_with("picture: 320 x 240\n")) << run.output;

    const std::string pixels = PixelsOf(picture);
    ASSERT_FALSE(pixels.empty());
    EXPECT_EQ(pixels.substr(0, 3), "\x19\x19\x32") << "the background in the corner";
    EXPECT_NE(pixels.substr(3 * (120 * 320 + 160), 3), "\x19\x19\x32") << "the sphere in the middle";
}

TEST(CHost, SaysWhyAFileWasRefused) {
    const ScratchFolder folder;
    const Ended run = RunCommand("'" C_HOST "' /nowhere.pcm '" + (folder / "picture.ppm") + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("/nowhere.pcm"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("objects: 0\n"), std::string::npos) << run.output;
    EXPECT_FALSE(std::filesystem::exists(folder / "picture.ppm"));
}

TEST(CHost, ReportsAPictureThatCannotBeWritten) {
    const ScratchFolder folder;
    std::ofstream(folder / "triangle.ply")
        << "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
           "element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n9 0 0\n0 9 0\n3 0 1 2\n";
    const Ended run = RunCommand("'" C_HOST "' '" + (folder / "triangle.ply") + "' /nowhere/picture.ppm");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("vertices: 3\ntriangles: 1\n"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("/nowhere/picture.ppm: No such file or directory"), std::string::npos) << run.output;
}

TEST(CHost, ShowsItsUsage) {
    const Ended run = RunCommand("'" C_HOST "'");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "Usage: c_host FILE PICTURE\n");
}

}  // namespace
