// Shows a mesh made in memory on an off-screen viewer, aligns it by pairs of points, tests points against a cut mask,
// reads a file of points and calls the libraries beside the viewer; exit status 0 when all is well.
#include <KV_ScenePane/CutMask.h>
#include <KV_ScenePane/PointFiles.h>
#include <KV_ScenePane/ScenePane.h>
#include <KV_UtilsLantern/KV_UtilsLantern.h>
#include <MSRDLL/Msr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

KV_ScenePane::MeshBuffers Square() {
    KV_ScenePane::MeshBuffers mesh(false);
    mesh.m_vVertices.resize(4);
    for (std::size_t i = 0; i < 4; ++i) {
        mesh.m_vVertices[i].x = i % 2 == 0 ? 0.0f : 10.0f;
        mesh.m_vVertices[i].y = i < 2 ? 0.0f : 10.0f;
        mesh.m_vVertices[i].nz = 1.0f;
    }
    mesh.m_vTriangles = {{{0, 1, 2}}, {{1, 3, 2}}};
    return mesh;
}

int Fail(const std::string& reason) {
    std::fprintf(stderr, "consumer: %s\n", reason.c_str());
    return 1;
}

}  // namespace

int main() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = 200;
    request.height = 100;
    std::string reason;
    const auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    if (!pane) return Fail("no viewer: " + reason);

    const KV_ScenePane::MeshBuffers square = Square();
    pane->Methods().ImportMeshedMeasurement(&square, L"square", 0x0000FF);
    if (pane->Methods().GetNumObjects() != 1) return Fail("the mesh is not in the scene");
    std::int32_t vertices = 0, triangles = 0;
    pane->Methods().GetMeshDataSize(0, &vertices, &triangles);
    if (vertices != 4 || triangles != 2) return Fail("the mesh has other counts");

    pane->Methods().CenterView();
    KV_ScenePane::Picture picture;
    if (!pane->CapturePicture(&picture)) return Fail("no picture");
    if (picture.width != 200 || picture.height != 100) return Fail("the picture has another size");

    // Up by 5: the viewer finds the library for pairs of points in the installed tree.
    const KV_ScenePane::AlignmentPair pairs[] = {
        {{{0, 0, 0}, {}}, {{0, 0, 5}, {}}}, {{{9, 0, 0}, {}}, {{9, 0, 5}, {}}}, {{{0, 9, 0}, {}}, {{0, 9, 5}, {}}}};
    pane->Methods().AddVariableObject(0);
    if (!pane->AlignByPairs(pairs)) return Fail("no alignment");
    if (std::abs(pane->GetAlignmentResult().transform[11] - 5) > 1e-5) return Fail("another transform");
    const float from[] = {0, 0, 0, 9, 0, 0}, to[] = {0, 0, 5, 9, 0, 5};
    float motion[12];
    if (LANDLL_PickPointMatching(2, from, to, motion) != 0) return Fail("no match of two pairs");
    if (std::abs(motion[11] - 5) > 1e-5f) return Fail("another match");

    ACAD::CutMask mask;
    mask.m_nKind = ACAD::CutKindOutside;  // without a pixel: removes everything
    std::uint32_t removed[1] = {0};
    if (!mask.MarkVertices(square.m_vVertices, removed) || removed[0] != 0xF) return Fail("the mask removes others");
    std::vector<KV_ScenePane::Vertex> points = square.m_vVertices;
    if (!mask.InvalidateVertices(points) || points[3].gridIndex != 0xFFFFFFFF) return Fail("a point has its pixel");

    KV_ScenePane::PointCloud cloud;
    if (KV_ScenePane::ReadPointFile("/nowhere.xyz", &cloud, &reason, {})) return Fail("points that are not there");
    if (reason != "cannot be opened: No such file or directory") return Fail("another reason: " + reason);

    MsrStorage::MSR measurement;
    if (measurement.Load(L"/nowhere.pcm", false, true, false)) return Fail("a file that is not there was loaded");
    return 0;
}
