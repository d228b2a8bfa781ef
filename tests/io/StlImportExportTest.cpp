// ImportMesh and ExportMesh with stl, ois and msh: the effects on scene, files and debugger output.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <stdexcept>

#include "KV_ScenePane/PathText.h"
#include "host/CommaLocale.h"
#include "io/MeshBytes.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::WidePath;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr Float3 kA{0, 0, 5}, kB{2, 0, 5}, kC{0, 2, 5}, kD{2, 2, 5};

/// A square in the plane z = 5, facing up.
MeshBytes Square() { return StlFile({{kA, kB, kC}, {kC, kB, kD}}); }

class StlFiles : public testing::Test {
protected:
    std::wstring Import(const MeshBytes& bytes, const std::string& name) {
        const std::wstring path = WidePath(folder / name);
        WriteBytes(folder / name, bytes);
        c->ImportMesh(path.c_str());
        return path;
    }
    [[nodiscard]] Mesh& Last() { return *c->m_vpMeshes.back(); }

    ScratchFolder folder;
    NoPictureControl c;
};

Vertex At(float x, float y, float z) {
    Vertex vertex;
    vertex.x = x;
    vertex.y = y;
    vertex.z = z;
    return vertex;
}

void ExpectBox(const Mesh& mesh, const std::array<float, 6>& box) {
    std::array<float, 6> b{};
    mesh.GetBoundingBox(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5]);
    EXPECT_THAT(b, testing::ElementsAreArray(box));
}

}  // namespace

TEST_F(StlFiles, BecomeObjectsWithUnitNormals) {
    Import(Square(), "square.stl");
    ASSERT_EQ(c->GetNumObjects(), 1);
    const Mesh& mesh = Last();
    EXPECT_EQ(mesh.m_vVertices.size(), 4u);
    EXPECT_EQ(mesh.m_vTriangles.size(), 2u);
    for (const Vertex& v : mesh.m_vVertices) EXPECT_THAT((std::array{v.nx, v.ny, v.nz}), ElementsAre(0, 0, 1));
    ExpectBox(mesh, {0, 2, 0, 2, 5 - 0.01f, 5 + 0.01f});
    EXPECT_EQ(mesh.m_sName, L"");
    EXPECT_FALSE(mesh.m_bHasVertexColors);
    EXPECT_FALSE(mesh.m_bGrayColors);
    EXPECT_TRUE(mesh.m_bBuffersDirty);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(StlFiles, ReturnZeroOrMinusOne) {
    WriteBytes(folder / "good.stl", Square());
    WriteBytes(folder / "none.stl", StlHead(0));
    WriteBytes(folder / "empty.ois", Packed(0, 0));
    EXPECT_EQ(c->ImportStl(WidePath(folder / "good.stl").c_str()), 0);
    EXPECT_EQ(c->ImportStl(WidePath(folder / "none.stl").c_str()), -1);
    EXPECT_EQ(c->ImportStl(WidePath(folder / "missing.stl").c_str()), -1);
    EXPECT_EQ(c->ImportOis(WidePath(folder / "empty.ois").c_str()), 0);
    EXPECT_EQ(c->ImportOis(WidePath(folder / "missing.ois").c_str()), -1);
    EXPECT_EQ(c->ImportMsh(WidePath(folder / "empty.ois").c_str()), 0);
    EXPECT_EQ(c->ImportMsh(WidePath(folder / "missing.msh").c_str()), -1);
    EXPECT_EQ(c->GetNumObjects(), 3);
}

TEST_F(StlFiles, ChangeNothingAndReportOneLineWhenRefused) {
    Import(Square(), "good.stl");
    const auto before = c->m_vpMeshes;
    const std::string textStl = "solid part\n" + std::string(200, ' ') + "endsolid part\n";
    const struct {
        const char* name;
        const char* operation;
        MeshBytes bytes;
        const char* reason;
    } rows[] = {
        {"none.stl", "ImportStl", StlHead(0), "holds no triangle"},
        {"text.stl", "ImportStl", Padded(textStl, textStl.size()),
         "holds less than half of the mesh that it announces; it starts with \"solid\": stl as text is not read"},
        {"bad.ois", "ImportOis", Packed(1, 1, Float3{}, 0, 0, 1), "triangle 0 refers to vertex 1, but there are 1"},
        {"bad.msh", "ImportMsh", Packed(-1, 0), "announces a negative count"},
    };
    for (const auto& row : rows) {
        Import(row.bytes, row.name);
        EXPECT_EQ(c.debugOutput.Take(),
                  std::string(row.operation) + "(): " + (folder / row.name) + ": " + row.reason + "\n");
        EXPECT_EQ(c->m_vpMeshes, before);
    }
}

TEST_F(StlFiles, GetNormalsFromOisAndKeepThoseOfMsh) {
    Import(Packed(3, 1, kA, kB, kC, 0, 1, 2), "triangle.ois");
    for (const Vertex& v : Last().m_vVertices) EXPECT_THAT((std::array{v.nx, v.ny, v.nz}), ElementsAre(0, 0, 1));
    ExpectBox(Last(), {0, 2, 0, 2, 5 - 0.01f, 5 + 0.01f});
    const Float3 n{3, 4, 5};
    Import(Packed(3, 1, kA, n, kB, n, kC, n, Float3{}, 0, 1, 2), "triangle.msh");
    for (const Vertex& v : Last().m_vVertices) EXPECT_THAT((std::array{v.nx, v.ny, v.nz}), ElementsAre(3, 4, 5));
    ExpectBox(Last(), {0, 2, 0, 2, 5 - 0.01f, 5 + 0.01f});
    EXPECT_EQ(Last().m_sName, L"");
    EXPECT_FALSE(Last().m_bGrayColors);
    EXPECT_EQ(c->GetNumObjects(), 2);
}

TEST_F(StlFiles, CanBeEmptyAsOisOrMshButNotAsStl) {
    Import(Packed(0, 0), "empty.ois");
    Import(Packed(0, 0), "empty.msh");
    Import(StlHead(0), "empty.stl");
    ASSERT_EQ(c->GetNumObjects(), 2);
    ExpectBox(Last(), {0.99f, -0.99f, 0.99f, -0.99f, 0.99f, -0.99f});
    Import(Packed(1, 0, kD), "point.ois");
    EXPECT_EQ(Last().m_vVertices.size(), 1u);
    EXPECT_EQ(Last().m_vVertices[0].nz, 0.0f);
}

TEST_F(StlFiles, AreNotStagedDuringAParallelImport) {
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&control, &entry);
    Import(Square(), "square.stl");
    EXPECT_EQ(c->m_vpMeshes.size(), 1u);
    c->EndParallelImport();
    EXPECT_EQ(c->m_vpMeshes.size(), 1u);
}

TEST_F(StlFiles, AreNotStagedAsOisOrMshEither) {
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    c->BeginParallelImport(&control, &entry);
    Import(Packed(0, 0), "empty.ois");
    EXPECT_EQ(c->m_vpMeshes.size(), 1u);
    Import(Packed(0, 0), "empty.msh");
    EXPECT_EQ(c->m_vpMeshes.size(), 2u);
    c->EndParallelImport();
    EXPECT_EQ(c->m_vpMeshes.size(), 2u);
}

TEST_F(StlFiles, DoNotDependOnTheProcessLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "the system cannot make locales";
    Import(Square(), "ÜBER größe 模.STL");
    ASSERT_EQ(c->GetNumObjects(), 1);
    EXPECT_EQ(Last().m_vVertices[1].x, 2.0f);
    c->ExportMesh(0, WidePath(folder / "zurück 模.StL").c_str());
    EXPECT_EQ(ReadBytes(folder / "zurück 模.StL").size(), 84u + 2 * 50u);
}

// ---- export

TEST_F(StlFiles, AreReplacedAsAWholeByAnExport) {
    Import(Square(), "square.stl");
    WriteBytes(folder / "out.stl", MeshBytes(10'000, std::byte{1}));
    c->ExportMesh(0, WidePath(folder / "out.stl").c_str());
    const Float3 up{0, 0, 1}, upToo{-0.0f, 0, 1};  // -2 x 0 - 0 x 0 in the second product
    EXPECT_EQ(ReadBytes(folder / "out.stl"), Padded("Generated by Kavelin Messtechnik", 80) + Packed(std::uint32_t{2}) +
                                                 Packed(up, kA, kB, kC, std::uint16_t{0}) +
                                                 Packed(upToo, kC, kB, kD, std::uint16_t{0}));
    EXPECT_EQ(folder.FileCount(), 2u) << "no other file remains";
    EXPECT_EQ(c.window->waitCursorsBegun, c.window->waitCursorsEnded);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST_F(StlFiles, AreWrittenFromTheObjectOfTheIndex) {
    Import(Square(), "square.stl");
    AddMesh(*c, {At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, {{{0, 1, 2}}});
    c->ExportMesh(1, WidePath(folder / "out.stl").c_str());
    EXPECT_EQ(ReadBytes(folder / "out.stl").size(), 84u + 50u);
}

TEST_F(StlFiles, ShowTheWaitCursorOnceTheExportIsOpen) {
    AddMesh(*c, {At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, {{{0, 1, 2}}});
    c->ExportMesh(0, WidePath(folder / "out.stl").c_str());
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
    c.window->Forget();
    c->ExportMesh(0, WidePath(folder / "no such folder/out.stl").c_str());
    EXPECT_EQ(c.window->waitCursorsBegun, 0) << "nothing to wait for";
    EXPECT_THAT(c.debugOutput.Text(), HasSubstr("ExportStl(): " + (folder / "no such folder/out.stl") + ": "));
    EXPECT_EQ(c.debugOutput.Text().back(), '\n');
}

TEST_F(StlFiles, AreNotWrittenToSpecialFiles) {
    AddMesh(*c, {At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, {{{0, 1, 2}}});
    std::filesystem::create_directory(folder / "folder.stl");
    c->ExportMesh(0, WidePath(folder / "folder.stl").c_str());
    EXPECT_THAT(c.debugOutput.Take(), HasSubstr("ExportStl(): "));
    ASSERT_EQ(mkfifo((folder / "pipe.stl").c_str(), 0600), 0);
    c->ExportMesh(0, WidePath(folder / "pipe.stl").c_str());
    EXPECT_THAT(c.debugOutput.Take(), HasSubstr("ExportStl(): "));
    EXPECT_EQ(folder.FileCount(), 2u);
}

TEST_F(StlFiles, AreNotReplacedByAnExportWithABadTriangle) {
    std::vector<Triangle> triangles(20'000, Triangle{{0, 1, 2}});
    Mesh& mesh = AddMesh(*c, {At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)}, std::move(triangles));
    mesh.m_vTriangles.back().v[1] = 3;
    const MeshBytes old(33, std::byte{7});
    WriteBytes(folder / "out.stl", old);
    EXPECT_THAT([&] { c->ExportMesh(0, WidePath(folder / "out.stl").c_str()); },
                testing::ThrowsMessage<std::out_of_range>(testing::StrEq("invalid vector subscript")));
    EXPECT_EQ(ReadBytes(folder / "out.stl"), old);
    EXPECT_EQ(folder.FileCount(), 1u);
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}
