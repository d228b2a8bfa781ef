// Clouds that other programs wrote. The expected numbers of points and boxes were made by other readers.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>

#include "KV_ScenePane/PointFiles.h"
#include "io/PointFile.h"

namespace {

struct CloudSample {
    const char* path;
    std::size_t points;
    bool hasColors;
    std::array<float, 6> box;  ///< smallest x, y, z, largest x, y, z, rounded to 6 digits after the point
};

const CloudSample kClouds[] = {
    // text, image-like with holes in the first one
    {"grids/PointCloudLibrary+blog/blogweb/spectrolab/adasta/img/hanger_000000.pcd",
     32764,
     false,
     {-3.197235f, -3.499024f, 0, 4.034306f, 0.547978f, 15.2f}},
    {"grids/PointCloudLibrary+blog/blogweb/tocs/mfallon/pcd/cloud_relative.pcd",
     4800,
     true,
     {-0.343637f, -1.406238f, -0.563701f, 3.48234f, 0.745129f, 1.269304f}},
    // compressed, with holes
    {"grids/PointCloudLibrary+data/tutorials/pairwise/capture0001.pcd",
     249647,
     false,
     {-1.72282f, -1.195277f, 1.512f, 1.223437f, 0.780963f, 3.157f}},
    {"grids/PointCloudLibrary+pcl/test/office1.pcd",
     254456,
     true,
     {-2.645476f, -2.196429f, 1.833f, 1.50436f, 1.581246f, 5.364f}},
    {"grids/PointCloudLibrary+pcl/test/table_scene_mug_stereo_textured.pcd",
     209280,
     true,
     {-0.45643f, -0.51074f, 0.69001f, 0.71518f, 0.17923f, 2.5927f}},
    // binary
    {"grids/PointCloudLibrary+pcl/test/colored_cloud.pcd",
     1000,
     true,
     {-0.887101f, -0.650735f, 0.882f, 0.4888f, -0.37549f, 1.532f}},
    // ply: binary with 62 properties, with carriage returns, text with faces and obj_info
    {"meshes/visgl+loaders.gl/modules/ply/test/data/gaussian/train-1000.ply",
     1000,
     false,
     {-13.021034f, -3.921983f, -3.821728f, 10.293158f, 1.968311f, 13.821733f}},
    {"meshes/nzfeng+points-as-tori/data/tooth.ply",
     2048,
     false,
     {-0.554585f, -0.79142f, -0.665331f, 0.539966f, 0.997341f, 0.513408f}},
    {"meshes/daavoo+pyntcloud/tests/data/voxelgrid.ply", 6, false, {0, 0, 0, 1, 1, 1}},
    {"meshes/mikedh+trimesh/models/reference.ply",
     845,
     true,
     {-74.126701f, -82.787003f, -100.442001f, 74.126701f, 105.775002f, 2.86529f}},
    {"meshes/daavoo+pyntcloud/examples/data/ankylosaurus_mesh.ply",
     34820,
     true,
     {-0.430782f, 0.948018f, 2.60685f, 0.579267f, 1.29069f, 3.21088f}},
};

class PointSampleFiles : public testing::Test {
protected:
    void SetUp() override {
        if (std::string(KV_SAMPLES_DIR).empty()) GTEST_SKIP() << "configured without sample files";
        ASSERT_TRUE(std::filesystem::is_directory(KV_SAMPLES_DIR)) << KV_SAMPLES_DIR;
    }
};

TEST_F(PointSampleFiles, HaveTheExpectedPoints) {
    for (const CloudSample& sample : kClouds) {
        SCOPED_TRACE(sample.path);
        const auto cloud = ReadPoints(std::string(KV_SAMPLES_DIR "/") + sample.path, {});
        EXPECT_EQ(cloud.xyz.size(), 3 * sample.points);
        EXPECT_EQ(cloud.colors.size(), sample.hasColors ? 3 * sample.points : 0);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            float smallest = std::numeric_limits<float>::max(), largest = std::numeric_limits<float>::lowest();
            for (std::size_t i = axis; i < cloud.xyz.size(); i += 3) {
                smallest = std::min(smallest, cloud.xyz[i]);
                largest = std::max(largest, cloud.xyz[i]);
            }
            EXPECT_NEAR(smallest, sample.box[axis], 1e-5f * (1 + std::abs(smallest)));
            EXPECT_NEAR(largest, sample.box[axis + 3], 1e-5f * (1 + std::abs(largest)));
        }
        EXPECT_TRUE(std::ranges::all_of(cloud.colors, [](float color) { return color >= 0 && color <= 1; }));
    }
}

}  // namespace
