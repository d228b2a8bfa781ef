// The seam to the drawing code: what a mesh asks of it, and that a mesh needs none.
#include "geometry/MeshGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/Mesh.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> g_calls;

constexpr MeshGraphics kRecorder{
    .draw = [](Mesh&, std::int32_t mode,
               bool reduced) { g_calls.push_back("draw " + std::to_string(mode) + (reduced ? " reduced" : "")); },
    .releaseBuffers = [](Mesh&) { g_calls.emplace_back("release buffers"); },
    .deleteTexture = [](std::uint32_t name) { g_calls.push_back("delete texture " + std::to_string(name)); }};

class MeshGraphicsSeam : public testing::Test {
protected:
    MeshGraphicsSeam() { g_calls.clear(); }
    ~MeshGraphicsSeam() override { InstallMeshGraphics(m_former); }

    const MeshGraphics* m_former = InstallMeshGraphics(nullptr);
};

TEST_F(MeshGraphicsSeam, AMeshWithoutDrawingCodeDrawsNothingAndIsDestroyed) {
    {
        Mesh mesh(L"", false);
        mesh.m_pTexture = std::make_shared<Mesh::Texture>(7, nullptr, std::vector<std::uint8_t>());
        mesh.Draw(3, false);
        mesh.ReleaseBuffers();
        EXPECT_TRUE(mesh.m_bBuffersDirty) << "nothing was built";
    }
    EXPECT_THAT(g_calls, IsEmpty());
}

TEST_F(MeshGraphicsSeam, AMeshPassesItsDrawingOnAndReleasesItsBuffersWhenItIsDestroyed) {
    InstallMeshGraphics(&kRecorder);
    {
        Mesh mesh(L"", false);
        mesh.Draw(3, true);
        mesh.Draw(0, false);
    }
    EXPECT_THAT(g_calls, ElementsAre("draw 3 reduced", "draw 0", "release buffers"));
}

TEST_F(MeshGraphicsSeam, ATextureIsDeletedByNameUnlessItHasNone) {
    InstallMeshGraphics(&kRecorder);
    { const Mesh::Texture texture(7, nullptr, {}); }
    { const Mesh::Texture withoutContext(0, nullptr, {}); }
    EXPECT_THAT(g_calls, ElementsAre("delete texture 7"));
}

}  // namespace
