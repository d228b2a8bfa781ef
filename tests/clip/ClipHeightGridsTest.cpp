// The clip height of real scans of a table and a floor. The files are no part of this tree: KV_SAMPLES_DIR of the
// configure step names their folder.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "simulate-scans/ScanFiles.h"
#include "simulate-scans/Scanner.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

/// Unpacks LZF: a byte below 32 is followed by that many bytes and one more, another one is a repetition.
std::vector<std::uint8_t> Unpack(const std::uint8_t* packed, std::size_t packedSize, std::size_t size) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(size);
    for (std::size_t i = 0; i < packedSize;) {
        const std::uint8_t control = packed[i++];
        if (control < 32) {
            bytes.insert(bytes.end(), packed + i, packed + i + control + 1);
            i += control + std::size_t{1};
            continue;
        }
        std::size_t length = control >> 5;
        if (length == 7) length += packed[i++];
        const std::size_t back = (static_cast<std::size_t>(control & 31) << 8 | packed[i++]) + 1;
        for (std::size_t k = 0; k < length + 2; ++k) bytes.push_back(bytes.at(bytes.size() - back));
    }
    EXPECT_EQ(bytes.size(), size);
    return bytes;
}

struct Grid {
    int width = 0, height = 0;
    std::vector<float> x, y, z;  ///< metres; NaN where nothing was measured
};

/// A compressed pcd file whose first fields are x, y, z, each stored as a whole.
Grid ReadGrid(const std::string& path) {
    const std::vector<std::byte> file = ReadBytes(path);
    const std::string text(reinterpret_cast<const char*>(file.data()), file.size());
    Grid grid;
    std::istringstream header(text);
    std::string line;
    while (std::getline(header, line) && line != "DATA binary_compressed") {
        std::istringstream words(line);
        std::string keyword;
        words >> keyword;
        if (keyword == "WIDTH") words >> grid.width;
        if (keyword == "HEIGHT") words >> grid.height;
    }
    std::uint32_t sizes[2] = {};
    const auto data = static_cast<std::size_t>(header.tellg());
    std::memcpy(sizes, file.data() + data, sizeof(sizes));
    const auto bytes =
        Unpack(reinterpret_cast<const std::uint8_t*>(file.data()) + data + sizeof(sizes), sizes[0], sizes[1]);
    const auto pixels = static_cast<std::size_t>(grid.width) * static_cast<std::size_t>(grid.height);
    std::size_t offset = 0;
    for (std::vector<float>* axis : {&grid.x, &grid.y, &grid.z}) {
        axis->resize(pixels);
        std::memcpy(axis->data(), bytes.data() + offset, 4 * pixels);
        offset += 4 * pixels;
    }
    return grid;
}

struct RealScan {
    const char* path;
    /// Rows of a rotation, a scale and a translation from the sensor (metres) to a frame in which the support is level
    /// at z = 0, found once by a plane through it; the scene is 80 units wide.
    std::array<double, 12> toLevel;
    KV_ScenePane::ClipHeightKind kind;
    double lowest, highest;  ///< heights at which a person would cut the scene to see what is on the support
};

const RealScan kScans[] = {
    // A mug, 12 units high, on a table whose points are from -1.2 to 1.2.
    {"grids/PointCloudLibrary+pcl/test/table_scene_mug_stereo_textured.pcd",
     {-159.929, 0, -4.76460, 11.1030, 3.99192, 87.3493, -133.993, 102.858, 2.60115, -134.053, -87.3105, 84.5662},
     KV_ScenePane::HeightFromAllPoints,
     0.5,
     2.5},
    // Things of 5 to 20 units on a desk whose points are from -1 to 1.
    {"grids/PointCloudLibrary+pcl/test/grabber_sequences/pcd/frame_20121214T142255.814212.pcd",
     {-88.4424, 0, -8.89826, 1.38720, 6.15936, 64.1518, -61.2197, 47.6848, 6.42194, -61.5287, -63.8295, 63.5202},
     KV_ScenePane::HeightFromAllPoints,
     1.0,
     4.0},
    // Furniture 20 units high on a rough floor, whose points are from -2 to 2.
    {"grids/PointCloudLibrary+data/tutorials/pairwise/capture0001.pcd",
     {-42.4270, 0, 13.2384, -18.6203, 0.158826, 44.4412, 0.509010, 21.3565, -13.2375, 0.533214, -42.4240, 108.486},
     KV_ScenePane::HeightFlatSpot,
     0.0,
     2.0},
};

/// The scan in the level frame, without what is more than 40 units from the middle of the support.
simulate::ScanGrid LevelScan(const Grid& grid, const std::array<double, 12>& m) {
    simulate::ScanGrid scan;
    scan.width = grid.width;
    scan.height = grid.height;
    scan.toWorld = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (std::size_t i = 0; i < grid.x.size(); ++i) {
        std::array<double, 3> p{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            p[axis] =
                m[4 * axis] * grid.x[i] + m[4 * axis + 1] * grid.y[i] + m[4 * axis + 2] * grid.z[i] + m[4 * axis + 3];
        const bool measured = std::hypot(p[0], p[1]) < 40 && std::abs(p[2]) < 40;  // false for NaN
        for (const double coordinate : p) scan.points.push_back(measured ? static_cast<float>(coordinate) : 0.0f);
        scan.confidence.push_back(measured ? 1 : simulate::kConfidenceNotMeasured);
        scan.classes.push_back(measured ? 40 : simulate::kClassNotMeasured);
    }
    return scan;
}

TEST(ClipHeightOfRealScans, IsWhereAPersonWouldCutThem) {
    if (std::string(KV_SAMPLES_DIR).empty()) GTEST_SKIP() << "configured without sample files";
    for (const RealScan& row : kScans) {
        SCOPED_TRACE(row.path);
        NoPictureControl viewer;
        viewer->InitializeKVReg();
        const ScratchFolder folder;
        const std::string path = folder / "level.pax";
        simulate::WriteScan(path, simulate::FileFormat::Pax,
                            LevelScan(ReadGrid(std::string(KV_SAMPLES_DIR "/") + row.path), row.toLevel));
        viewer->ImportScan(std::wstring(path.begin(), path.end()).c_str(), 0xFFFFFF);
        ASSERT_EQ(viewer->m_vpMeshes.size(), 1u);
        EXPECT_GT(viewer->m_vpMeshes[0]->GetVertexCount(), 50000u);
        viewer->PlaceClipPlaneAtData();
        EXPECT_EQ(viewer->m_clipHeight.kind, row.kind);
        EXPECT_GT(viewer->m_clipHeight.height, row.lowest);
        EXPECT_LT(viewer->m_clipHeight.height, row.highest);
        viewer->FinalizeKVReg();
    }
}

}  // namespace
