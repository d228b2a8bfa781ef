// Every import of a mesh or a grid with coordinates that are infinite or NaN: the object is added with the box of the
// finite ones, and one line gives their number. Parallel imports: ParallelImportTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/MeshBytes.h"
#include "io/PlySample.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr Float3 kA{0, 0, 0}, kB{4, 0, 0}, kC{0, 4, 0}, kOdd{kInf, NAN, 2};

/// kA, kB, kC as a triangle, and a second one of kB, kC and kOdd.
struct OddFile {
    const char* name;  // of the file
    MeshBytes bytes;
    std::size_t count;
    std::string missing = {};  ///< in the line before, about a file that was cut off
};
void PrintTo(const OddFile& row, std::ostream* out) { *out << row.name; }

MeshBytes Text(const std::string& text) { return Padded(text, text.size()); }

MeshBytes Ply() {
    using namespace ply_sample;
    return Text(kBinary + Vertices(4) + Faces(2) + kEnd + Corners() + Floats({kInf, NAN, 2}) + Face(0, 1, 2) +
                Face(1, 2, 3));
}

/// Four rows of four pixels around the origin; the last pixel is at kOdd, one that the confidence masks is NaN.
ScanSample OddScan(float spacing) {
    ScanSample scan(4, 4, spacing);
    scan.SetPoint(15, {kInf, NAN, 2 * spacing});
    scan.SetPoint(12, {NAN, NAN, NAN});
    scan.confidence[12] = -1;
    return scan;
}

MeshBytes Xdt() {
    ScanSample scan = OddScan(1000);
    scan.SetPoint(12, {-kInf, -kInf, -kInf});  // one negative number three times: not measured
    return scan.Xdt();
}

const OddFile kFiles[] = {
    // A corner of an stl counts as often as it is in the file; its normal does not.
    {"a.stl", StlHead(2) + StlRecord(kA, kB, kC) + Packed(Float3{NAN, 0, 0}, kB, kOdd, kOdd, std::uint16_t{0}), 4},
    // Where the file ends, the last corner is repeated: only what was read counts.
    {"cut.stl", Cut(StlHead(2) + StlRecord(kA, kB, kC) + StlRecord(kB, kOdd, kC), 84 + 50 + 12 + 20), 2,
     "1 of 2 triangles are in the file"},
    {"a.ply", Ply(), 2},
    {"a.ois", Packed(4, 2, kA, kB, kC, kOdd, 0, 1, 2, 1, 2, 3), 2},
    {"cut.ois", Cut(Packed(5, 0, kA, kB, kC, kOdd, kA), 8 + 3 * 12 + 8), 2, "3 of 5 vertices are in the file"},
    {"a.msh", Packed(4, 1, kA, kOdd, kB, kOdd, kC, kOdd, kOdd, kA, Float3{NAN, 0, 0}, 0, 1, 2), 2},
    {"a.pax", OddScan(1).Pax(), 2},
    {"a.xdt", Xdt(), 2},
};

class FileWithOddCoordinates : public testing::TestWithParam<OddFile> {
protected:
    ScratchFolder folder;
    NoPictureControl c;
};

void Import(CKV_ScenePaneCtrl& control, const std::string& path) {
    const bool isScan = path.ends_with("pax") || path.ends_with("xdt") || path.ends_with("pcm");
    if (isScan)
        control.ImportScan(WidePath(path).c_str(), 0);
    else
        control.ImportMesh(WidePath(path).c_str());
}

std::string LineAbout(const std::string& file, std::size_t count) {
    return file + ": " + std::to_string(count) + " coordinates are not finite\n";
}

void ExpectFiniteBox(const Mesh& mesh) {
    for (const float bound : mesh.m_fBoundingBox) EXPECT_TRUE(std::isfinite(bound));
    EXPECT_EQ(mesh.m_fBoundingBox[0], 0.0f);
    EXPECT_TRUE(mesh.HasPosition());
}

TEST_P(FileWithOddCoordinates, IsAddedWithOneLineAndAFiniteBox) {
    const std::string path = folder / GetParam().name;
    WriteBytes(path, GetParam().bytes);
    Import(*c, path);
    ASSERT_EQ(c->GetNumObjects(), 1);
    const std::string& missing = GetParam().missing;
    EXPECT_EQ(c.debugOutput.Text(),
              (missing.empty() ? "" : path + ": " + missing + "\n") + LineAbout(path, GetParam().count));
    ExpectFiniteBox(*c->m_vpMeshes[0]);
}
INSTANTIATE_TEST_SUITE_P(Import, FileWithOddCoordinates, testing::ValuesIn(kFiles), [](const auto& row) {
    std::string name = row.param.name;
    name[name.find('.')] = '_';
    return name;
});

class OddImport : public testing::Test {
protected:
    ScratchFolder folder;
    NoPictureControl c;
};

TEST_F(OddImport, OfAPcmIsAddedWithOneLineAndAFiniteBox) {
    for (const int skip : {1, 2}) {  // counted before the grid is thinned
        c->SetScanSkipVal(static_cast<std::int16_t>(skip));
        OddScan(1000).Write(folder / "a.pcm");
        Import(*c, folder / "a.pcm");
        ASSERT_EQ(c->GetNumObjects(), skip);
        EXPECT_EQ(c.debugOutput.Take(), LineAbout(folder / "a.pcm", 2));
        for (const float bound : c->m_vpMeshes.back()->m_fBoundingBox) EXPECT_TRUE(std::isfinite(bound));
    }
}

TEST_F(OddImport, OfAnHpsFileIsAddedWithOneLineAndAFiniteBox) {
    AddMesh(*c, {{.x = 0}, {.x = 4}, {.y = 4}, {.x = kInf, .y = NAN, .z = 2}}, {{{0, 1, 2}}, {{1, 2, 3}}});
    c->InitializeKVReg();
    c->ExportMesh(0, WidePath(folder / "a.hps").c_str());
    ASSERT_EQ(c.debugOutput.Take(), "");
    Import(*c, folder / "a.hps");
    c->FinalizeKVReg();
    ASSERT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(c.debugOutput.Text(), LineAbout(folder / "a.hps", 2));
    ExpectFiniteBox(*c->m_vpMeshes[1]);
}

TEST_F(OddImport, OfAGridInMemoryIsAddedWithOneLineAndAFiniteBox) {
    const ScanSample scan = OddScan(1);
    c->ImportMeasurementFromMemory(4, 4, scan.points.data(), scan.confidence.data(), scan.trafo.data(), 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.debugOutput.Text(), LineAbout("(no file)", 2));
    ExpectFiniteBox(*c->m_vpMeshes[0]);
}

TEST_F(OddImport, OfAMeshInMemoryIsAddedWithOneLineAndAFiniteBox) {
    const float vertices[] = {0, 0, 0, 4, 0, 0, 0, 4, 0, kInf, NAN, 2};
    const std::int32_t triangles[] = {0, 1, 2, 1, 2, 3};
    c->ImportMeshFromMemory(4, 2, vertices, triangles);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.debugOutput.Text(), LineAbout("(no file)", 2));
    ExpectFiniteBox(*c->m_vpMeshes[0]);
}

TEST_F(OddImport, OfAMeshOfTheHostIsAddedWithOneLineAndAFiniteBox) {
    MeshBuffers mesh(false);
    mesh.m_vVertices.assign(2000, {.x = 4, .nx = NAN});  // more than one block of the copy
    mesh.m_vVertices[0] = {};
    mesh.m_vVertices[1999] = {.x = kInf, .y = NAN, .z = 2};
    mesh.m_vTriangles = {{{0, 1, 2}}};
    c->ImportMeshedMeasurement(&mesh, L"/d/a.mesh", 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.debugOutput.Text(), LineAbout("/d/a.mesh", 2));
    ExpectFiniteBox(*c->m_vpMeshes[0]);
    EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), 2000u);
    EXPECT_EQ(c->m_vpMeshes[0]->m_vVertices[1998].x, 4);
}

TEST_F(OddImport, OfACoordinateThatOverflowsInTheTransformHasNoLine) {
    ScanSample scan(3, 3, 1);
    scan.trafo[3] = 3e38f;
    scan.trafo[0] = 3e38f;
    c->ImportMeasurementFromMemory(3, 3, scan.points.data(), scan.confidence.data(), scan.trafo.data(), 0);
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(c.debugOutput.Text(), "");
    for (const float bound : c->m_vpMeshes[0]->m_fBoundingBox) EXPECT_TRUE(std::isfinite(bound));
}

TEST_F(OddImport, ThatAddsNothingHasOnlyTheLineWithItsReason) {
    using namespace ply_sample;
    WriteBytes(folder / "points.ply", Text(kBinary + Vertices(1) + kEnd + Floats({NAN, 0, 0})));
    Import(*c, folder / "points.ply");
    EXPECT_EQ(c.debugOutput.Text(), "ImportPly(): " + (folder / "points.ply") + ": holds no faces\n");
}

}  // namespace
