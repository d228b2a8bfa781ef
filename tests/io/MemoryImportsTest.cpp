// Grids and meshes in the host's memory.
#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

#include "io/ScanSample.h"
#include "support/ControlFixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kNoMesh[] = "SetScanData(): CreateInternalMesh() returned nullptr\n";

void ExpectNoRequest(const WindowProbe& window) {
    EXPECT_EQ(window.refreshes + window.invalidates + window.eraseInvalidates, 0);
}

// ---- a grid

void ImportGrid(CKV_ScenePaneCtrl& control, const ScanSample& scan, std::int32_t color = 0x332211) {
    control.ImportMeasurementFromMemory(scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                                        scan.trafo.data(), color);
}

TEST(ImportMeasurementFromMemory, AddsAnObjectWithoutScaling) {
    NoPictureControl c;
    ScanSample scan(3, 3, 1000);
    scan.trafo[3] = 5000;
    ImportGrid(*c, scan);
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& mesh = *c->m_vpMeshes[0];
    EXPECT_EQ(mesh.GetVertexCount(), 9u);
    EXPECT_EQ(mesh.GetTriangleCount(), 8u);
    EXPECT_EQ(mesh.m_fBoundingBox[0], 5000);
    EXPECT_EQ(mesh.m_fBoundingBox[1], 7000);
    EXPECT_EQ(mesh.m_fBoundingBox[3], 2000);
    EXPECT_EQ(mesh.m_Trafo.m_dTranslation[0], 5000);
    EXPECT_EQ(c->GetObjectColor(0), 0x332211);
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates, 0);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST(ImportMeasurementFromMemory, HasTheNameOfTheLastImportedFile) {
    NoPictureControl c;
    ImportGrid(*c, ScanSample(3, 3, 1));
    EXPECT_EQ(c->m_vpMeshes[0]->m_sName, L"");
    c->ImportScan(L"no/such/file.pax", 0);
    ImportGrid(*c, ScanSample(3, 3, 1));
    ASSERT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(c->m_vpMeshes[1]->m_sName, L"no/such/file.pax");
    EXPECT_EQ(c->m_strScanPath, L"no/such/file.pax");
}

TEST(ImportMeasurementFromMemory, SkipsConfidenceBelowTheLimitOnly) {
    NoPictureControl c;
    c->SetConfidenceFilter(0.25f);
    ScanSample scan(3, 3, 1);
    scan.confidence[kMiddle] = 0.25f;
    ImportGrid(*c, scan);
    scan.confidence[kMiddle] = std::nextafter(0.25f, 0.0f);
    ImportGrid(*c, scan);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 9u);
    EXPECT_EQ(c->m_vpMeshes[1]->GetVertexCount(), 8u);
}

TEST(ImportMeasurementFromMemory, KeepsNoReferenceToTheHostsArrays) {
    NoPictureControl c;
    {
        ScanSample scan(3, 3, 1);
        ImportGrid(*c, scan);
        scan.points.assign(27, 99);
    }
    EXPECT_EQ(c->m_vpMeshes[0]->m_fBoundingBox[1], 2);
}

TEST(ImportMeasurementFromMemory, ReportsThatAGridGaveNoMesh) {
    NoPictureControl c;
    c->SetConfidenceFilter(2);
    ImportGrid(*c, ScanSample(3, 3, 1));
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(
        c.debugOutput.Text(),
        std::string("ImportMeasurementFromMemory(): (no file): no pixel passes the confidence limit 2\n") + kNoMesh);
    EXPECT_EQ(c.window->eraseInvalidates, 1);
}

TEST(ImportMeasurementFromMemory, AddsAnEmptyObjectWhereTheseAreAllowed) {
    NoPictureControl c;
    c->SetConfidenceFilter(2);
    c->SetAllowEmptyObjects(-1);
    ImportGrid(*c, ScanSample(3, 3, 1));
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 0u);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST(ImportMeasurementFromMemory, RefusesAnImpossibleSizeBeforeItReadsAnything) {
    NoPictureControl c;
    const float nothing[16] = {};
    const std::pair<int, int> sizes[] = {
        {0, 3}, {3, 0}, {-1, 3}, {3, -1}, {-4, -4}, {32768, 1}, {1, 32768}, {70000, 1000000}, {2147483647, 2147483647}};
    for (const auto& [width, height] : sizes) {
        c.debugOutput.Clear();
        c->ImportMeasurementFromMemory(width, height, nothing, nothing, nothing, 0);
        EXPECT_EQ(c->GetNumObjects(), 0) << width << " x " << height;
        EXPECT_THAT(c.debugOutput.Text(), testing::EndsWith("\n")) << width << " x " << height;
    }
}

TEST(ImportMeasurementFromMemory, AcceptsTheLargestSides) {
    NoPictureControl c;
    ImportGrid(*c, ScanSample(32767, 2, 1));
    ImportGrid(*c, ScanSample(2, 32767, 1));
    ASSERT_EQ(c->GetNumObjects(), 2);
    for (const auto& mesh : c->m_vpMeshes) {
        EXPECT_EQ(mesh->GetVertexCount(), 65534u);
        EXPECT_EQ(mesh->GetTriangleCount(), 65532u);
    }
    EXPECT_EQ(c->m_vpMeshes[1]->m_vVertices.back().gridIndex, (32766u << 16) | 1u);
}

TEST(ImportMeasurementFromMemory, RefusesASkipValueBelowOneWithAReason) {
    NoPictureControl c;
    for (const std::int16_t skip : {std::int16_t{0}, std::int16_t{-1}}) {
        c.debugOutput.Clear();
        c->SetScanSkipVal(skip);
        ImportGrid(*c, ScanSample(3, 3, 1));
        EXPECT_EQ(c->GetNumObjects(), 0);
        EXPECT_THAT(c.debugOutput.Text(), HasSubstr("skip"));
    }
}

// ---- a mesh that the host made

MeshBuffers HostMesh(bool hasColors) {
    MeshBuffers mesh(hasColors);
    mesh.m_vVertices = {{.x = 0, .y = 0, .z = 1, .nx = 0.5f, .ny = 0, .nz = 0, .color = 0xFF102030, .gridIndex = 7},
                        {.x = 4, .y = 0, .z = 2, .nx = 0, .ny = -3, .nz = 0, .color = 0xFF102030, .gridIndex = 8},
                        {.x = 0, .y = 5, .z = 3, .nx = 0, .ny = 0, .nz = 0, .color = 0xFF102030, .gridIndex = 9}};
    mesh.m_vTriangles = {{{0, 2, 1}}};
    return mesh;
}

bool Same(const Vertex& a, const Vertex& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(ImportMeshedMeasurement, CopiesTheMeshWithUnchangedNormals) {
    NoPictureControl c;
    const MeshBuffers mesh = HostMesh(true);
    c->ImportMeshedMeasurement(&mesh, L"host's own.pcm", 0x332211);
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& object = *c->m_vpMeshes[0];
    ASSERT_EQ(object.GetVertexCount(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(Same(object.m_vVertices[i], HostMesh(true).m_vVertices[i])) << "vertex " << i;
        EXPECT_TRUE(Same(mesh.m_vVertices[i], HostMesh(true).m_vVertices[i])) << "the host's vertex " << i;
    }
    ASSERT_EQ(object.GetTriangleCount(), 1u);
    EXPECT_EQ(object.m_vTriangles[0].v[1], 2);
    EXPECT_EQ(object.m_sName, L"host's own.pcm");
    EXPECT_EQ(c->m_strScanPath, L"") << "only files set it";
    EXPECT_TRUE(object.m_bHasVertexColors);
    EXPECT_FALSE(object.m_bGrayColors);
    EXPECT_EQ(c->GetObjectColor(0), 0x332211) << "vertex colours do not change the object's colour";
    EXPECT_TRUE(object.m_bBuffersDirty);
    EXPECT_EQ(object.m_fBoundingBox[1], 4);
    EXPECT_EQ(object.m_fBoundingBox[5], 3);
    ExpectNoRequest(*c.window);
}

TEST(ImportMeshedMeasurement, KnowsWhetherTheVerticesHaveColors) {
    NoPictureControl c;
    MeshBuffers mesh = HostMesh(false);
    for (Vertex& vertex : mesh.m_vVertices) vertex.color = 0xFF777777;
    c->ImportMeshedMeasurement(&mesh, L"", 0);
    EXPECT_FALSE(c->m_vpMeshes[0]->m_bHasVertexColors);
    EXPECT_TRUE(c->m_vpMeshes[0]->m_bGrayColors);
}

TEST(ImportMeshedMeasurement, IgnoresTheSettingsOfGrids) {
    NoPictureControl c;
    c->SetScanSkipVal(0);
    c->SetConfidenceFilter(9);
    const MeshBuffers empty(false);
    c->ImportMeshedMeasurement(&empty, L"empty", 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 0u);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

// ---- bare arrays

TEST(ImportMeshFromMemory, AppendsAnObjectWithoutVertices) {
    NoPictureControl c;
    c->ImportMeshFromMemory(0, 0, nullptr, nullptr);
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& mesh = *c->m_vpMeshes[0];
    EXPECT_EQ(mesh.GetVertexCount() + mesh.GetTriangleCount(), 0u);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(mesh.m_fBoundingBox[i], i % 2 == 0 ? 0.99f : -0.99f);
    ExpectNoRequest(*c.window);
}

TEST(ImportMeshFromMemory, CountsBelowZeroAsNone) {
    NoPictureControl c;
    c->ImportMeshFromMemory(-3, -1, nullptr, nullptr);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 0u);
}

TEST(ImportMeshFromMemory, FillsPlainVerticesWithoutNameOrColors) {
    NoPictureControl c;
    c->ImportScan(L"some.pax", 0);
    const float xyz[] = {0, 0, 0, 4, 0, 0, 0, 5, 0, 0, 0, 6};
    const std::int32_t corners[] = {0, 1, 2};
    c.window->Forget();
    c->ImportMeshFromMemory(4, 1, xyz, corners);
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& mesh = *c->m_vpMeshes[0];
    ASSERT_EQ(mesh.GetVertexCount(), 4u);
    EXPECT_EQ(mesh.m_sName, L"");
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_TRUE(Same(mesh.m_vVertices[1], {.x = 4, .nz = 1}));
    EXPECT_TRUE(Same(mesh.m_vVertices[2], {.y = 5, .nz = 1}));
    EXPECT_TRUE(Same(mesh.m_vVertices[3], {.z = 6})) << "no triangle uses it";
    EXPECT_EQ(mesh.m_vTriangles[0].v[2], 2);
    EXPECT_EQ(mesh.m_fBoundingBox[1], 4);
    EXPECT_EQ(mesh.m_fBoundingBox[3], 5);
    EXPECT_EQ(mesh.m_fBoundingBox[5], 6);
    ExpectNoRequest(*c.window);
}

TEST(ImportMeshFromMemory, LeavesNormalsShorterWherePerpendicularFacesMeet) {
    NoPictureControl c;
    // a floor and a wall over the edge from (0, 0, 0) to (1, 0, 0)
    const float xyz[] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    const std::int32_t corners[] = {0, 1, 2, 0, 1, 3};
    c->ImportMeshFromMemory(4, 2, xyz, corners);
    const auto& vertices = c->m_vpMeshes[0]->m_vVertices;
    for (const std::size_t i : {0u, 1u}) {
        EXPECT_FLOAT_EQ(vertices[i].nx, 0);
        EXPECT_FLOAT_EQ(vertices[i].ny, -0.5f);
        EXPECT_FLOAT_EQ(vertices[i].nz, 0.5f);
        EXPECT_NEAR(std::hypot(vertices[i].ny, vertices[i].nz), 0.70710678, 1e-6);
    }
    EXPECT_FLOAT_EQ(vertices[2].nz, 1);
    EXPECT_FLOAT_EQ(vertices[3].ny, -1);
}

TEST(ImportMeshFromMemory, CancelsOppositeFacesAndCountsDegenerateOnes) {
    NoPictureControl c;
    const float xyz[] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 2, 0, 0};
    const std::int32_t opposite[] = {0, 1, 2, 0, 2, 1};
    c->ImportMeshFromMemory(4, 2, xyz, opposite);
    EXPECT_TRUE(Same(c->m_vpMeshes[0]->m_vVertices[2], {.y = 1}));
    const std::int32_t degenerate[] = {0, 1, 2, 0, 1, 3};  // the second one is a line
    c->ImportMeshFromMemory(4, 2, xyz, degenerate);
    EXPECT_EQ(c->m_vpMeshes[1]->m_vVertices[0].nz, 0.5f);
    EXPECT_EQ(c->m_vpMeshes[1]->m_vVertices[2].nz, 1.0f);
    EXPECT_EQ(c->m_vpMeshes[1]->m_vVertices[3].nz, 0.0f);
}

TEST(ImportMeshFromMemory, KeepsVerticesWithoutTrianglesThatNoDrawModeShows) {
    OffscreenControl c(64, 64);
    const float xyz[] = {0, 0, 0, 10, 0, 0, 0, 10, 0};
    KV_ScenePane::Picture empty, picture;
    c->CenterView();
    for (std::int16_t mode = 0; mode <= 6; ++mode) {
        c->m_vpMeshes.clear();
        c->SetDrawMode(mode);
        ASSERT_TRUE(c->CapturePicture(&empty));
        c->ImportMeshFromMemory(3, 0, xyz, nullptr);
        ASSERT_EQ(c->GetNumObjects(), 1);
        ASSERT_TRUE(c->CapturePicture(&picture));
        EXPECT_EQ(picture.pixels, empty.pixels) << "draw mode " << mode;
    }
    std::int32_t points = 0, triangles = 9;
    c->GetMeshDataSize(0, &points, &triangles);
    EXPECT_EQ(points, 3);
    EXPECT_EQ(triangles, 0);
    for (const Vertex& vertex : c->m_vpMeshes[0]->m_vVertices) EXPECT_EQ(vertex.nx + vertex.ny + vertex.nz, 0);
}

TEST(ImportMeshFromMemory, KeepsNoReferenceToTheHostsArrays) {
    NoPictureControl c;
    std::vector<float> xyz{0, 0, 0, 1, 0, 0, 0, 1, 0};
    std::vector<std::int32_t> corners{0, 1, 2};
    c->ImportMeshFromMemory(3, 1, xyz.data(), corners.data());
    xyz.assign(9, 5);
    corners.assign(3, 0);
    EXPECT_EQ(c->m_vpMeshes[0]->m_vVertices[1].x, 1);
    EXPECT_EQ(c->m_vpMeshes[0]->m_vTriangles[0].v[2], 2);
}

}  // namespace
