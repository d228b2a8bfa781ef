// Frames of objects with infinite or NaN coordinates: what has finite coordinates is drawn as it is without them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "KV_ScenePane/Modes.h"
#include "render/SceneFixture.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

/// A draw mode, with or without shadows.
struct OddFrame {
    std::int16_t mode;
    bool shadows;
};
void PrintTo(const OddFrame& row, std::ostream* out) { *out << row.mode << (row.shadows ? " with shadows" : ""); }

class FrameWithOddCoordinates : public SceneTest, public testing::WithParamInterface<OddFrame> {
protected:
    /// Fits the view and draws.
    KV_ScenePane::Picture Fitted() {
        pane->CenterView();
        Frame();
        return picture;
    }
};

TEST_P(FrameWithOddCoordinates, ShowsTheFiniteOnesAsWithoutThem) {
    pane->SetDrawMode(GetParam().mode);
    pane->SetShadowMode(GetParam().shadows ? 1 : 0);
    const Square square{.center = {1, 2, 3}};
    Add(square, {0.2, 0.9, 0.4});
    const KV_ScenePane::Picture expected = Fitted();
    ASSERT_GT(PixelsThatAreNotBackground(), 0);
    // An object that is nowhere, and one whose triangles have an edge of the square and a point at infinity.
    const Vec3 up{0, 0, 1};
    std::vector<Vertex> corners = square.Vertices();
    for (const Vec3& p : {Vec3{kInf, 2, 3}, Vec3{1, -kInf, kInf}, Vec3{NAN, NAN, NAN}})
        corners.push_back(MakeVertex(p, up));
    Mesh& nowhere = AddMesh(*pane, {corners[6], corners[6], corners[6]}, {{{0, 1, 2}}});
    Mesh& partly = AddMesh(*pane, corners, {{{0, 1, 4}}, {{0, 5, 2}}, {{0, 6, 3}}});
    for (Mesh* mesh : {&nowhere, &partly}) std::copy_n(pane->m_vpMeshes[0]->m_fColor, 3, mesh->m_fColor);
    pane->AddSelection(1);
    const KV_ScenePane::Picture found = Fitted();
    ASSERT_EQ(found.pixels.size(), expected.pixels.size());
    std::size_t different = 0;
    for (std::size_t i = 0; i < found.pixels.size(); ++i) different += found.pixels[i] != expected.pixels[i] ? 1 : 0;
    EXPECT_EQ(different, 0u);
}

/// All that show objects: with shadows, lighting per pixel shows none.
std::vector<OddFrame> OddFrames() {
    std::vector<OddFrame> rows;
    using namespace KV_ScenePane;
    for (const std::int16_t mode : {DrawModePoints, DrawModeWireframe, DrawModeFlat, DrawModeGouraud,
                                    DrawModeBoundingBoxes, DrawModePerPixel, DrawModeShadowMap})
        for (const bool shadows : {false, true})
            if (mode != DrawModePerPixel || !shadows) rows.push_back({mode, shadows});
    return rows;
}
INSTANTIATE_TEST_SUITE_P(AllModes, FrameWithOddCoordinates, testing::ValuesIn(OddFrames()), [](const auto& row) {
    return "Mode" + std::to_string(row.param.mode) + (row.param.shadows ? "WithShadows" : "");
});

}  // namespace
