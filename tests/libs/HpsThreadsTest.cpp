// Hps files whose positions are decoded on a second thread while the first one decodes the triangles; for the thread
// sanitizer.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <thread>

#include "HpsSample.h"

namespace {

using namespace HpsSample;

/// A mesh with enough positions for a second thread.
SampleMesh LargeMesh() {
    SampleMesh mesh;
    std::mt19937 random(1);
    constexpr std::uint32_t kVertexCount = 20'000;
    for (std::uint32_t i = 0; i < 3 * kVertexCount; ++i) {
        mesh.positions.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
        mesh.indices.push_back(static_cast<std::int32_t>(random() % kVertexCount));
    }
    return mesh;
}

/// The mesh of a file; null when it cannot be read.
std::optional<SampleMesh> Read(const std::string& path) {
    const ObjectPointer reader = MakeReader();
    Object* found = nullptr;
    if (OpenError(reader.get(), path) != 0 || hps_reader::kMesh(reader.get(), &found) != kSucceeded) return {};
    return ContentOf(ObjectPointer(found).get());
}

TEST(HpsThreads, AMeshThatIsDecodedOnTwoThreadsIsReadToTheBit) {
    const ScratchFolder folder;
    const SampleMesh mesh = LargeMesh();
    ASSERT_EQ(Save(mesh, folder / "mesh.hps"), kSucceeded);
    const std::optional<SampleMesh> read = Read(folder / "mesh.hps");
    ASSERT_TRUE(read);
    EXPECT_TRUE(SameBits(read->positions, mesh.positions));
    EXPECT_EQ(read->indices, mesh.indices);
}

TEST(HpsThreads, DamageIsReportedByTheCodeOfThePartOnWhicheverThreadFindsIt) {
    const ScratchFolder folder;
    const Parts whole(LargeMesh());
    const struct {
        const char* name;
        bool areFacetsDamaged, arePositionsDamaged;
        std::int32_t code;
    } rows[] = {{"positions", false, true, 4}, {"facets", true, false, 5}, {"both", true, true, 5}};
    for (const auto& row : rows) {
        Parts parts = whole;
        if (row.areFacetsDamaged) parts.facets.pop_back();
        if (row.arePositionsDamaged) parts.positions.pop_back();
        WriteBytes(folder / "damaged.hps", parts.File());
        EXPECT_EQ(OpenError(MakeReader().get(), folder / "damaged.hps"), row.code) << row.name;
        EXPECT_EQ(Component::LiveCount(), 0) << row.name;
    }
}

TEST(HpsThreads, ReadersOnSeveralThreadsAreIndependent) {
    const ScratchFolder folder;
    const SampleMesh mesh = LargeMesh();
    ASSERT_EQ(Save(mesh, folder / "mesh.hps"), kSucceeded);
    std::vector<std::optional<SampleMesh>> read(3);
    std::vector<std::thread> threads;
    for (auto& one : read) threads.emplace_back([&] { one = Read(folder / "mesh.hps"); });
    for (std::thread& thread : threads) thread.join();
    for (const auto& one : read) EXPECT_TRUE(one && one->indices == mesh.indices);
    EXPECT_EQ(Component::LiveCount(), 0);
}

}  // namespace
