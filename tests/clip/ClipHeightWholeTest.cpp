// Whole estimates of the clip height, with the component library: against a slow reference on random scenes, on
// simulated scans of objects whose levels are known, and their memory.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <random>

#include "clip/ClipHeight.h"
#include "clip/ClipHeightReference.h"
#include "simulate-scans/Blocks.h"
#include "simulate-scans/RayCaster.h"
#include "simulate-scans/ScanFiles.h"
#include "simulate-scans/Scanner.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::ClipHeight;

// ---- random scenes

std::string Text(const ReferenceClipHeight& expected) {
    return "rule " + std::to_string(expected.kind) + ", height " + std::to_string(expected.height) + ", bins of " +
           std::to_string(expected.binWidth) + ", rms " + std::to_string(expected.rms);
}

/// A hundredth of a bin for heights of bins; the sums of the mean and the variance round.
void ExpectLikeReference(const ClipHeight& found, const ReferenceClipHeight& expected) {
    EXPECT_EQ(found.found, expected.found);
    EXPECT_EQ(found.kind, expected.kind) << Text(expected);
    EXPECT_NEAR(found.height, expected.height, 0.01 * expected.binWidth + 1e-6 * std::abs(expected.height))
        << Text(expected);
}

/// A surface over a square of 40 units around the origin, with a block, a cap or waves on it, in some objects.
class RandomScene {
public:
    explicit RandomScene(unsigned seed) : m_random(seed) {
        m_fSlopeX = Between(-0.15f, 0.15f), m_fSlopeY = Between(-0.15f, 0.15f);
        m_fBlock = Between(0.4f, 2.5f), m_fBlockEdge = Between(-4, 9);
        m_fCap = Between(8, 25), m_fWaves = Between(0, 3), m_fNoise = Between(0.01f, 0.2f);
        if (Between(0, 1) < 0.5f) m_fSlopeX = m_fSlopeY = 0;
        m_shape = static_cast<int>(seed % 4);
    }
    std::vector<std::shared_ptr<Mesh>> Make() {
        const float size = m_shape == 3 ? Between(200, 400) : 40;
        std::vector<std::shared_ptr<Mesh>> meshes;
        const int objects = 1 + static_cast<int>(m_random() % 4);
        for (int object = 0; object < objects; ++object) {
            auto mesh = std::make_shared<Mesh>(L"", false);
            mesh->m_iVisible = object != 1;
            for (int i = 0; i < 8000 / objects; ++i)
                mesh->m_vVertices.push_back(PointAt(size * Between(-0.5f, 0.5f), size * Between(-0.5f, 0.5f)));
            meshes.push_back(std::move(mesh));
        }
        return meshes;
    }

private:
    float Between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_random); }
    Vertex PointAt(float x, float y) {
        Vertex vertex{.x = x, .y = y, .z = m_fSlopeX * x + m_fSlopeY * y + Between(-m_fNoise, m_fNoise)};
        const float dx = x, dy = y + 10;  // from the spot
        if (m_shape == 0 && dx > m_fBlockEdge) vertex.z += m_fBlock;
        if (m_shape == 1) vertex.z += std::sqrt(std::max(0.0f, m_fCap * m_fCap - dx * dx - dy * dy));
        if (m_shape == 2) vertex.z += m_fWaves * std::sin(0.5f * dx) * std::cos(0.4f * dy);
        vertex.nz = Between(-0.2f, 1);
        return vertex;
    }

    std::mt19937 m_random;
    int m_shape;
    float m_fSlopeX, m_fSlopeY, m_fBlock, m_fBlockEdge, m_fCap, m_fWaves, m_fNoise;
};

TEST(ClipHeightOfRandomScenes, IsThatOfTheReference) {
    NoPictureControl viewer;
    viewer->InitializeKVReg();
    std::map<KV_ScenePane::ClipHeightKind, int> kinds;
    int secondLevels = 0;
    for (unsigned seed = 0; seed < 48; ++seed) {
        SCOPED_TRACE(seed);
        viewer->m_vpMeshes = RandomScene(seed).Make();
        const ReferenceClipHeight expected = ReferenceEstimate(viewer->m_vpMeshes);
        ExpectLikeReference(viewer->EstimateClipHeight(), expected);
        ++kinds[expected.kind];
        secondLevels += expected.secondLevel;
    }
    viewer->FinalizeKVReg();
    EXPECT_GE(kinds[KV_ScenePane::HeightFromAllPoints], 10);
    EXPECT_GE(kinds[KV_ScenePane::HeightFlatSpot], 10);
    EXPECT_GE(kinds[KV_ScenePane::HeightCurvedSpot], 10);
    EXPECT_GE(secondLevels, 3);
}

// ---- simulated scans: the sensor looks down from 400 millimetres, once straight and twice from a side

simulate::Transform PoseAbove(float tiltDeg) {
    const float angle = tiltDeg * 3.14159265f / 180, s = std::sin(angle), c = std::cos(angle);
    return {c, 0, s, 400 * s, 0, 1, 0, 0, -s, 0, c, 400 * c, 0, 0, 0, 1};
}

class ClipHeightOfScans : public testing::Test {
protected:
    ClipHeightOfScans() { viewer->InitializeKVReg(); }
    ~ClipHeightOfScans() override { viewer->FinalizeKVReg(); }

    /// Adds three scans of the object, of about 90000 points each.
    void Scan(const simulate::TriangleMesh& object) {
        const ScratchFolder folder;
        const simulate::RayCaster caster(object);
        simulate::ScannerSettings settings;
        settings.width = settings.height = 300;
        settings.parallel = true;
        settings.objectRadius = simulate::RadiusAroundOrigin(object);
        int number = 0;
        for (const float tilt : {0.0f, 20.0f, -20.0f}) {
            const std::string path = folder / ("scan" + std::to_string(number) + ".pcm");
            simulate::WriteScan(path, simulate::FileFormat::Pcm,
                                simulate::MeasureFrom(caster, PoseAbove(tilt), settings, number, 1));
            viewer->ImportScan(std::wstring(path.begin(), path.end()).c_str(), 0xFFFFFF);
            ++number;
        }
        ASSERT_EQ(viewer->m_vpMeshes.size(), 3u);
        viewer->CenterView();
    }

    NoPictureControl viewer;
};

/// A plate of 80 x 80 with its top at z = 2, and a block on it over x from @p edge on, with its top at z = 2 + height.
/// The spot is at (0, -20).
simulate::TriangleMesh PlateWithBlock(float edge, float height) {
    simulate::BlockGrid grid;
    grid.breaks[0] = {-40, edge, 40};
    grid.breaks[1] = {-40, 40};
    grid.breaks[2] = {-3, 2, 2 + height};
    grid.blockAt = [](int x, int, int z) { return simulate::Block{.solid = z == 0 || x == 1}; };
    return simulate::MeshOf(grid);
}

// The block covers 29 % of the circle of 12 units: its top is the second level, 0.41 times as high as the main one.
TEST_F(ClipHeightOfScans, OfAPlateWithALowBlockIsTheTopOfTheBlock) {
    ASSERT_NO_FATAL_FAILURE(Scan(PlateWithBlock(4, 2.5f)));
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipHeight.kind, KV_ScenePane::HeightFlatSpot);
    EXPECT_NEAR(viewer->m_clipHeight.height, 4.5, 0.02);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[0], 0, 0.5);
    EXPECT_NEAR(viewer->m_clipPlane.GetCenter()[1], 0, 0.5);
}

// Without a second level near the spot: a standard deviation, the noise of 0.02, above the plate.
TEST_F(ClipHeightOfScans, OfAPlateIsJustAboveItsTop) {
    ASSERT_NO_FATAL_FAILURE(Scan(PlateWithBlock(20, 2.5f)));
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipHeight.kind, KV_ScenePane::HeightFlatSpot);
    EXPECT_NEAR(viewer->m_clipHeight.height, 2.02, 0.015);
}

/// A sphere around (0, -20, 0) that reaches to z = 15, on a plate of 80 x 80 at z = 0.
simulate::TriangleMesh PlateWithBall() {
    simulate::BlockGrid grid;
    grid.breaks[0] = {-40, 40};
    grid.breaks[1] = {-40, 40};
    grid.breaks[2] = {-3, 0};
    grid.blockAt = [](int, int, int) { return simulate::Block{.solid = true}; };
    simulate::TriangleMesh mesh = simulate::MeshOf(grid);
    const simulate::TriangleMesh ball =
        simulate::StarShape(40, [](simulate::Vec3 direction) { return direction * 15.0f; });
    for (const simulate::Vec3& corner : ball.corners) mesh.corners.push_back(corner + simulate::Vec3{0, -20, 0});
    return mesh;
}

// Within 12 units of its axis the ball goes from 15 down to 9: that is the foot. The kernel moves it by a part of its
// half width of 0.15.
TEST_F(ClipHeightOfScans, OfABallIsTheLowestHeightNearTheSpot) {
    ASSERT_NO_FATAL_FAILURE(Scan(PlateWithBall()));
    viewer->PlaceClipPlaneAtData();
    EXPECT_EQ(viewer->m_clipHeight.kind, KV_ScenePane::HeightCurvedSpot);
    EXPECT_NEAR(viewer->m_clipHeight.height, 9, 0.15);
}

TEST_F(ClipHeightOfScans, IsThatOfTheReference) {
    ASSERT_NO_FATAL_FAILURE(Scan(PlateWithBlock(4, 2.5f)));
    ExpectLikeReference(viewer->EstimateClipHeight(), ReferenceEstimate(viewer->m_vpMeshes));
}

// ---- what the library refuses

TEST(ClipHeightOfALevelSurface, IsRefusedByTheLibrary) {
    NoPictureControl viewer;
    viewer->InitializeKVReg();
    AddMesh(*viewer, {{.x = 0, .y = 0, .z = 5, .nz = 1}, {.x = 1, .y = 0, .z = 5, .nz = 1}}, {});
    try {
        (void)viewer->EstimateClipHeight();
        ADD_FAILURE() << "a histogram without a range";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "an invalid argument was passed to an interface method");
    }
    viewer->FinalizeKVReg();
}

TEST(ClipHeightOfASurfaceFromBelow, IsNotFound) {
    NoPictureControl viewer;
    viewer->InitializeKVReg();
    std::vector<Vertex> vertices;
    for (int i = 0; i < 20; ++i) vertices.push_back({.x = 0, .y = 0, .z = 0.1f * static_cast<float>(i), .nz = -1});
    AddMesh(*viewer, vertices, {});
    EXPECT_FALSE(viewer->EstimateClipHeight().found);
    viewer->FinalizeKVReg();
}

TEST(ClipHeightBeforeTheRegistryIsStarted, NamesTheMissingObject) {
    NoPictureControl viewer;
    AddMesh(*viewer, {{.x = 0, .y = 0, .z = 5, .nz = 1}, {.x = 1, .y = 0, .z = 6, .nz = 1}}, {});
    try {
        viewer->PlaceClipPlaneAtData();
        ADD_FAILURE() << "the registry is not started";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "the component library gives no object {9D7D1BCB-F55C-4D00-9793-96553FE8F32E}: is the registry "
                     "started (InitializeKVReg)?");
    }
}

// ---- memory

#if !defined(__SANITIZE_ADDRESS__)  // it keeps freed memory and adds its own

/// From /proc/self/status, in kilobytes.
double StatusKilobytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (double kilobytes = 0; word == key + ":" && status >> kilobytes) return kilobytes;
    throw std::runtime_error("no " + key);
}

// All of them are within 12 units of the spot. A vector that doubles would need up to 3 times the memory of the points.
TEST(ClipHeightMemory, IsThatOfTheCollectedPoints) {
    constexpr std::size_t kCount = 2'200'000;  // just above 2^21, where doubling costs most
    NoPictureControl viewer;
    viewer->InitializeKVReg();
    std::vector<Vertex> vertices(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        vertices[i].x = static_cast<float>(i % 1483) / 150;
        vertices[i].y = static_cast<float>(i) / static_cast<float>(kCount) * 10;
        vertices[i].z = 0.01f * static_cast<float>(i % 10);
        vertices[i].nz = 1;
    }
    AddMesh(*viewer, std::move(vertices), {});
    viewer->m_vpMeshes[0]->ShrinkToFit();
    malloc_trim(0);
    std::ofstream peak("/proc/self/clear_refs");
    if (!(peak << 5 << std::flush)) GTEST_SKIP() << "the system does not reset the peak of the memory";
    const double before = StatusKilobytes("VmHWM");
    EXPECT_EQ(viewer->EstimateClipHeight().kind, KV_ScenePane::HeightFlatSpot);
    const double points = 12.0 * kCount / 1024;
    EXPECT_LE(StatusKilobytes("VmHWM") - before, 1.3 * points);
    EXPECT_GE(StatusKilobytes("VmHWM") - before, 0.9 * points) << "the peak is not measured";
    viewer->FinalizeKVReg();
}

#endif

}  // namespace
