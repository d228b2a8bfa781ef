// Reads the masks of cuts: cut_mask_host
//
// The program makes an off-screen viewer with a small mesh, cuts it twice by a lasso, and prints what the masks hold.
// It includes public headers only and needs no display.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "KV_ScenePane/CutMask.h"
#include "KV_ScenePane/ScenePane.h"

namespace {

using KV_ScenePane::LassoPoint;
using KV_ScenePane::Vertex;

/// Five vertices in the plane z = 0 whose middle one belongs to every triangle.
KV_ScenePane::MeshBuffers Plate() {
    KV_ScenePane::MeshBuffers mesh(false);
    const float positions[5][2] = {{0, 0}, {-10, -10}, {10, -10}, {10, 10}, {-10, 10}};
    for (const auto& position : positions) {
        Vertex& vertex = mesh.m_vVertices.emplace_back();
        vertex.x = position[0], vertex.y = position[1], vertex.nz = 1;
    }
    mesh.m_vTriangles = {{{0, 1, 2}}, {{0, 2, 3}}, {{0, 3, 4}}, {{0, 4, 1}}};
    return mesh;
}

/// The mask at an address that an event or GetCutMasks() has delivered.
void PrintMask(std::int64_t address) {
    const auto& mask = *reinterpret_cast<const ACAD::CutMask*>(address);
    const std::int32_t width = mask.m_nViewport[2], height = mask.m_nViewport[3];
    std::size_t pixels = 0;
    for (std::size_t i = 0; i < mask.m_vBits.m_uCount; ++i) pixels += mask.m_vBits.IsSet(i) ? 1 : 0;
    const auto& [left, top, right, bottom] = mask.m_rcBounds;
    std::printf("kind %u, window %d x %d, %zu pixels in %d %d %d %d\n", mask.m_nKind, width, height, pixels, left, top,
                right, bottom);
    std::printf("%zu depths\n", mask.m_vDepth.size());
}

/// Which of the host's own points the cut would remove.
void PrintRemoved(const ACAD::CutMask& mask, const std::vector<Vertex>& points) {
    std::vector<std::uint32_t> bits((points.size() + 31) / 32);
    if (!mask.MarkVertices(points, bits)) std::printf("no point is removed\n");
    for (std::size_t i = 0; i < points.size(); ++i)
        if ((bits[i / 32] >> (i % 32) & 1) != 0) std::printf("point %zu is removed\n", i);
}

class Events final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    void CutMaskApplied(std::int64_t addr) override {
        std::printf("cut: ");
        PrintMask(addr);
    }
};

}  // namespace

int main() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = 200;
    request.height = 100;
    std::string reason;
    Events events;  // outlives the viewer
    const auto viewer = CreateScenePane(request, &reason);
    if (!viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    viewer->Connect(&events);
    auto& methods = viewer->Methods();
    const KV_ScenePane::MeshBuffers plate = Plate();
    methods.ImportMeshedMeasurement(&plate, L"first", 0xC8D4DC);
    methods.ImportMeshedMeasurement(&plate, L"second", 0xC8D4DC);
    methods.CenterView();

    methods.SetObjectVisibility(1, 0);  // hidden objects are never cut
    const std::vector<LassoPoint> middle = {{0.25, 0.25}, {0.75, 0.25}, {0.75, 0.75}, {0.25, 0.75}};
    viewer->CutWithLasso(KV_ScenePane::PolygonInside, middle);
    methods.SetObjectVisibility(1, 1);
    const std::vector<LassoPoint> corner = {{0.0, 0.0}, {0.1, 0.0}, {0.1, 0.1}};
    viewer->CutWithLasso(KV_ScenePane::PolygonOutside, corner);

    // Each mask once, although several objects may have it; sorted by address, so not in the order of the cuts.
    std::int32_t count = 0;
    methods.GetCutMasks(&count, nullptr);
    std::vector<const ACAD::CutMask*> masks(static_cast<std::size_t>(count));
    if (methods.GetCutMasks(&count, masks.data()) == KV_ScenePane::kVariantFalse) return 1;
    std::printf("%d masks\n", count);
    std::vector<Vertex> points(2);
    points[1].x = 1e6f;  // far outside the window
    for (const ACAD::CutMask* mask : masks) {
        if (mask->m_nKind == ACAD::CutKindInside) PrintRemoved(*mask, points);
    }
    return 0;
}
