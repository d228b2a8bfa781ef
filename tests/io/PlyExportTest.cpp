// ExportMesh to ply: the content of the file, and targets that cannot be written.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/PlyMeshWriter.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string FileText(const std::string& path) {
    const auto bytes = ReadBytes(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The writer's bytes for these arrays; PlyMeshWriterTest.cpp compares them with bytes made by hand.
std::string Expected(std::span<const Vertex> vertices, std::span<const Triangle> triangles,
                     std::span<const TexCoord> texCoords = {}, std::span<const std::uint8_t> image = {}) {
    const auto file = PlyMeshWriter(vertices, triangles, texCoords, image).Assemble();
    return {reinterpret_cast<const char*>(file.bytes.get()), file.size};
}

const std::vector<Vertex> kCorners = {
    {1, 2, 3, 0, 0, 1, 0xFF112233}, {4, 5, 6, 0, 1, 0, 0xFF445566}, {7, 8, 9, 1, 0, 0, 0xFF778899}};

TEST(ExportPly, WritesTheChosenMesh) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, {{}}, {});
    AddMesh(*c, kCorners, {{{2, 1, 0}}});
    c->ExportMesh(1, WidePath(folder / "a.ply").c_str());
    const Triangle triangle{{2, 1, 0}};
    EXPECT_EQ(FileText(folder / "a.ply"), Expected(kCorners, {&triangle, 1}));
}

TEST(ExportPly, WritesPositionsInTheWorldFrame) {
    const ScratchFolder folder;
    NoPictureControl c;
    Mesh& mesh = AddMesh(*c, kCorners, {{{0, 1, 2}}});
    mesh.m_Trafo.Set(1, 0, 0, 0, 1, 0, 0, 0, 1, 100, 0, 0);
    mesh.ApplyTrafo(mesh.m_Trafo);
    c->ExportMesh(0, WidePath(folder / "a.ply").c_str());
    std::vector<Vertex> moved = kCorners;
    for (Vertex& vertex : moved) vertex.x += 100;
    EXPECT_EQ(FileText(folder / "a.ply"), Expected(moved, mesh.m_vTriangles));
}

TEST(ExportPly, WritesTextureCoordinatesOfAMeshThatLostItsImage) {
    const ScratchFolder folder;
    NoPictureControl c;
    Mesh& mesh = AddMesh(*c, kCorners, {{{0, 1, 2}}});
    mesh.m_vTexCoords = {{0, 0}, {1, 0}, {0, 1}};
    c->ExportMesh(0, WidePath(folder / "a.ply").c_str());
    EXPECT_EQ(FileText(folder / "a.ply"), Expected(kCorners, mesh.m_vTriangles, mesh.m_vTexCoords));
}

TEST(ExportPly, ReportsWhyNothingWasWritten) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, kCorners, {});
    const std::string path = folder / "missing/a.ply";
    EXPECT_NO_THROW(c->ExportMesh(0, WidePath(path).c_str()));
    EXPECT_EQ(c.debugOutput.Take(), "ExportPly(): " + path + ": cannot open the folder: No such file or directory\n");
}

TEST(ExportPly, DoesNotReplaceDevicesAndOtherSpecialFiles) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, kCorners, {});
    const std::string device = folder / "full.ply";
    std::filesystem::create_symlink("/dev/full", device);
    c->ExportMesh(0, WidePath(device).c_str());
    EXPECT_THAT(c.debugOutput.Take(), StartsWith("ExportPly(): " + device + ": not a regular file"));
    EXPECT_TRUE(std::filesystem::is_character_file(device));

    std::filesystem::create_directory(folder / "folder.ply");
    c->ExportMesh(0, WidePath(folder / "folder.ply").c_str());
    EXPECT_THAT(c.debugOutput.Take(), HasSubstr("cannot be written: Is a directory\n"));
    EXPECT_EQ(folder.FileCount(), 2u);
}

TEST(ExportPly, ReplacesTheFileThatALinkPointsTo) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, kCorners, {});
    WriteBytes(folder / "real.ply", {});
    std::filesystem::create_symlink("real.ply", folder / "link.ply");
    c->ExportMesh(0, WidePath(folder / "link.ply").c_str());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.ply"));
    EXPECT_EQ(FileText(folder / "real.ply"), Expected(kCorners, {}));
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

}  // namespace
