// Formats that the library parses: what becomes of transforms, colours and images. The files are written by hand.
#include "LibraryScene.h"

#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <new>

#include "ForeignFile.h"
#include "KV_ScenePane/PathText.h"
#include "Sandbox.h"
#include "io/CPLYFile.h"
#include "io/PlyMesh.h"
#include "support/ScratchFolder.h"

namespace {

using Kind = ReaderResult::Kind;

const std::string kSquare =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0.25 0.25\nvt 0.75 0.25\nvt 0.75 0.75\nvt 0.25 0.75\n";

class LibraryScene : public testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(m_folder / name, std::ios::binary) << text;
        return m_folder / name;
    }
    /// Pixels as 0xRRGGBB, the top row first.
    void WritePng(const std::string& name, unsigned width, const std::vector<unsigned>& pixels) const {
        std::vector<png_byte> bytes;
        for (const unsigned pixel : pixels)
            for (const unsigned shift : {16U, 8U, 0U}) bytes.push_back(static_cast<png_byte>(pixel >> shift & 0xFF));
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = width;
        image.height = static_cast<png_uint_32>(pixels.size() / width);
        image.format = PNG_FORMAT_RGB;
        ASSERT_NE(png_image_write_to_file(&image, (m_folder / name).c_str(), 0, bytes.data(), 0, nullptr), 0);
    }
    [[nodiscard]] std::vector<std::uint32_t> ColorsOf(const ReaderResult& result) const {
        std::vector<std::uint32_t> colors;
        for (const Vertex& vertex : result.mesh.m_vVertices) colors.push_back(vertex.color);
        return colors;
    }

    const ScratchFolder m_folder;
};

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kWhite = 0xFFFFFFFF;

TEST_F(LibraryScene, OfObjHasItsCornersOnceAndNormals) {
    const ReaderResult result = ReadForeignFile(Write("a.obj", kSquare + "f 1 2 3 4\n"));
    ASSERT_EQ(result.kind, Kind::Mesh);
    EXPECT_EQ(result.mesh.m_vVertices.size(), 4u);
    EXPECT_EQ(result.mesh.m_vTriangles.size(), 2u);
    EXPECT_FALSE(result.mesh.m_bHasColors);
    for (const Vertex& vertex : result.mesh.m_vVertices) EXPECT_EQ(vertex.nz, 1.0f);
}

TEST_F(LibraryScene, KeepsTheNormalsOfTheFile) {
    const ReaderResult result = ReadForeignFile(Write("a.obj", kSquare + "vn 0 1 0\nf 1//1 2//1 3//1\n"));
    for (const Vertex& vertex : result.mesh.m_vVertices) EXPECT_EQ(vertex.ny, 1.0f);
}

TEST_F(LibraryScene, HasTheColoursOfItsMaterials) {
    Write("m.mtl", "newmtl a\nKd 1 0 0\nnewmtl b\nKd 0 0 1\n");
    const ReaderResult result =
        ReadForeignFile(Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1 2 3\nusemtl b\nf 1 3 4\n"));
    EXPECT_TRUE(result.mesh.m_bHasColors);
    EXPECT_EQ(ColorsOf(result), (std::vector<std::uint32_t>{kRed, kRed, kRed, kBlue, kBlue, kBlue}));
}

TEST_F(LibraryScene, HasTheColoursOfItsVertices) {
    const ReaderResult result =
        ReadForeignFile(Write("a.obj", "v 0 0 0 1 0 0\nv 1 0 0 0 1 0\nv 0 1 0 0 0 1\nf 1 2 3\n"));
    EXPECT_EQ(ColorsOf(result), (std::vector<std::uint32_t>{kRed, kGreen, kBlue}));
}

TEST_F(LibraryScene, WithoutMaterialsHasNoColours) {
    for (const auto& [name, text] : {std::pair<const char*, std::string>{"a.obj", kSquare + "f 1 2 3\n"},
                                     {"a.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n"}}) {
        const ReaderResult result = ReadForeignFile(Write(name, text));
        EXPECT_EQ(result.mesh.m_vTriangles.size(), 1u) << name;
        EXPECT_FALSE(result.mesh.m_bHasColors) << name;
    }
}

TEST_F(LibraryScene, WithOneImageForAllIsAPlyFileWithIt) {
    WritePng("two.png", 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    Write("m.mtl", "newmtl a\nKd 1 1 1\nmap_Kd two.png\n");
    const ReaderResult result =
        ReadForeignFile(Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3 4/4\n"));
    ASSERT_EQ(result.kind, Kind::TexturedMesh) << result.text;
    const std::string ply = Write("out.ply", {result.plyFile.begin(), result.plyFile.end()});
    const PlyMeshData data = ReadPlyMesh(KV_ScenePane::WidePath(ply));
    EXPECT_TRUE(data.m_bHasTexture);
    EXPECT_EQ(data.GetVertexCount(), 4u);
    EXPECT_EQ(data.GetTriangleCount(), 2u);
    EXPECT_EQ(data.m_vTexCoords, (std::vector<float>{0.25f, 0.25f, 0.75f, 0.25f, 0.75f, 0.75f,  //
                                                     0.25f, 0.25f, 0.75f, 0.75f, 0.25f, 0.75f}));
    std::ifstream image(m_folder / "two.png", std::ios::binary);
    EXPECT_EQ(data.m_vImageBytes, (std::vector<std::uint8_t>{std::istreambuf_iterator<char>(image), {}}));
}

TEST_F(LibraryScene, WithSeveralImagesHasTheirColoursAtItsVertices) {
    WritePng("two.png", 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    WritePng("red.png", 1, {0xFF0000});
    Write("m.mtl", "newmtl a\nmap_Kd two.png\nnewmtl b\nmap_Kd C:\\\\work\\\\red.png\nnewmtl c\nmap_Kd none.png\n");
    const ReaderResult result = ReadForeignFile(Write(
        "a.obj",
        "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3\nusemtl b\nf 1/1 3/3 4/4\nusemtl c\nf 1/1 2/2 4/4\n"));
    ASSERT_EQ(result.kind, Kind::Mesh);
    // v = 0 is the bottom row: blue, white; above it red, green.
    const std::vector<std::uint32_t> expected = {kBlue, kWhite, kGreen, kRed, kRed, kRed, kWhite, kWhite, kWhite};
    EXPECT_EQ(ColorsOf(result), expected);
    EXPECT_EQ(result.text, "its image is not shown: there is no file none.png");
}

TEST_F(LibraryScene, WhoseImageIsNoneIsShownWithoutIt) {
    Write("bad.png", "no image");
    Write("m.mtl", "newmtl a\nmap_Kd bad.png\n");
    const ReaderResult result =
        ReadForeignFile(Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3\n"));
    EXPECT_EQ(result.kind, Kind::Mesh);
    EXPECT_EQ(result.text, "its image is not shown: it is no png or jpeg file, or damaged");
}

TEST_F(LibraryScene, DoesNotOpenFilesElsewhere) {
    const std::string elsewhere = Write("secret.mtl", "newmtl a\nKd 1 0 0\n");
    ASSERT_EQ(mkdir((m_folder / "sub").c_str(), 0700), 0);
    const ReaderResult result =
        ReadForeignFile(Write("sub/a.obj", "mtllib " + elsewhere + "\n" + kSquare + "usemtl a\nf 1 2 3\n"));
    EXPECT_FALSE(result.mesh.m_bHasColors) << "an absolute path names no file of this machine";
    for (const char* const name : {"../secret.mtl", "../sub/../secret.mtl", "%2e%2e/secret.mtl", "..\\secret.mtl"}) {
        const std::string text = "mtllib " + std::string(name) + "\n" + kSquare + "usemtl a\nf 1 2 3\n";
        EXPECT_FALSE(ReadForeignFile(Write("sub/a.obj", text)).mesh.m_bHasColors) << name;
    }
}

std::string ReasonFor(const std::string& file) {
    try {
        (void)ReadForeignFile(file);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "accepted";
}

TEST_F(LibraryScene, WhoseFileOfMaterialsIsMissingHasALine) {
    const std::string faces = kSquare + "usemtl a\nf 1 2 3\n";
    constexpr const char* kMissing = "the colours of its materials are not shown: there is no file my m.mtl";
    EXPECT_EQ(ReadForeignFile(Write("a.obj", "mtllib  my m.mtl \r\n" + faces)).text, kMissing);
    EXPECT_EQ(ReadForeignFile(Write("a.obj", "mtllib my m.mtl\n" + kSquare + "f 1 2 3\n")).text, "") << "unused";
    Write("a.mtl", "newmtl a\nKd 1 0 0\n");
    const ReaderResult own = ReadForeignFile(Write("a.obj", "mtllib my m.mtl\n" + faces));
    EXPECT_TRUE(own.mesh.m_bHasColors);
    EXPECT_EQ(own.text, "");
}

TEST_F(LibraryScene, OfDamagedFilesIsRefused) {
    const std::string vertices = "OFF\n4 2 0\n0 0 0\n1 0 0\n0 1 0 \n0 0 1\n";
    const char* const kCut = "Unexpected end of data.";
    const std::pair<std::string, const char*> files[] = {
        {vertices + "3 0 1 2\n3 0 1 7\n", "triangle 1 refers to vertex 7 of 4"},
        {vertices + "3 0 1 2\n3 0 1 -1\n", "triangle 1 refers to vertex -1 of 4"},
        {vertices + "3 0 1 2\n3 0", kCut},
        {vertices + "3 0 1 2\n", kCut},
        {vertices + "3 0 1 2\n3000000000 0 1 2\n", kCut},
        {"OFF\n4 2 0\n0 0 0\n1 0", kCut},
        {"OFF\n900000000 900000000 0\n0 0 0\n", kCut},
        {"OFF\n3 1 0\n0 0 0\n1 zero 0\n", "line 4: there is \"zero\" in place of a number"}};
    for (const auto& [text, reason] : files) EXPECT_EQ(ReasonFor(Write("a.off", text)), reason) << text;
    EXPECT_EQ(ReasonFor(Write("a.obj", "v 0 0 0\nv nan 1 0\nv 0 1 0\nf 1 2 3\n")),
              "line 2: there is \"nan\" in place of a number");
    for (const char* const whole : {"OFF 3 1 0\n# a\n0 0 0\n1 0 0\n\n0 1 0\n3 0 1 2 255 0 0\n",
                                    "COFF\n3 1 0\n0 0 0 9 9 9 9\n1 0 0 9 9 9 9\n0 1 0 9 9 9 9\n3 0 1 2\n"})
        EXPECT_EQ(ReasonFor(Write("a.off", whole)), "accepted") << whole;
}

TEST_F(LibraryScene, SaysWhyInWordsWithoutPaths) {
    constexpr const char* kOther = "its content is not of the type that its name says";
    EXPECT_EQ(ReasonFor(Write("cut.glb", std::string("glTF\2\0\0\0\xFF\0\0\0", 12))), kOther);
    EXPECT_EQ(ReasonFor(Write("a.3mf", "hello")), kOther);
    for (const char* const name : {"a.3mf", "a.off", "a.obj", "a.ply", "a.dae"})
        EXPECT_EQ(ReasonFor(Write(name, "")), "the file is empty") << name;
    ASSERT_EQ(mkfifo((m_folder / "f.glb").c_str(), 0600), 0);
    EXPECT_EQ(ReasonFor(m_folder / "f.glb"), "is not a regular file");
    const std::string missing = ReasonFor(Write(
        "a.gltf",
        R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":36,"uri":"none.bin"}],"bufferViews":[{"buffer":0,"byteLength":36}],"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"nodes":[{"mesh":0}],"scenes":[{"nodes":[0]}],"scene":0})"));
    EXPECT_NE(missing.find("none.bin"), std::string::npos) << missing;
    EXPECT_EQ(missing.find(m_folder.Path().string()), std::string::npos) << missing;
}

TEST_F(LibraryScene, ThatNeedsMoreMemoryThanThereIsRunsOutOfIt) {
    if (!KV_LIMITS_MEMORY) GTEST_SKIP() << "no limit of memory under a sanitizer";
    const std::string file =
        Write("a.gltf",
              R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"buffers":[{"byteLength":3,"uri":"data:a/b;base64,AAAA"}],
        "bufferViews":[{"buffer":0,"byteLength":3}],
        "accessors":[{"componentType":5126,"count":300000000,"type":"VEC3","sparse":{"count":1,
        "indices":{"bufferView":0,"componentType":5121},"values":{"bufferView":0}}}]})");
    const pid_t child = fork();
    if (child == 0) {
        SetLimits({std::uint64_t{1} << 30, 0});
        try {
            (void)ReadForeignFile(file);
        } catch (const std::bad_alloc&) {
            _exit(0);
        } catch (const std::exception&) {
            _exit(2);
        }
        _exit(3);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(LibraryScene, OfGltfHasTheTransformsOfItsNodesAndColoursAsOnTheScreen) {
    const char* const gltf =
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"mesh":0,"translation":[10,0,0],"scale":[2,2,2]}],
        "materials":[{"pbrMetallicRoughness":{"baseColorFactor":[0.5,0,1,1]}}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0},"material":0}]}],
        "buffers":[{"byteLength":36,"uri":"data.bin"}],"bufferViews":[{"buffer":0,"byteLength":36}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]}]})";
    const float corners[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    Write("data.bin", {reinterpret_cast<const char*>(corners), sizeof corners});
    const ReaderResult result = ReadForeignFile(Write("a.gltf", gltf));
    ASSERT_EQ(result.mesh.m_vVertices.size(), 3u) << result.text;
    EXPECT_EQ(result.mesh.m_vVertices[1].x, 12.0f);
    EXPECT_EQ(result.mesh.m_vVertices[2].y, 2.0f);
    // Half of the light is 188 of 255 on a screen (sRGB).
    EXPECT_EQ(ColorsOf(result), std::vector<std::uint32_t>(3, 0xFFBC00FF));
}

TEST_F(LibraryScene, OfCollada) {
    const char* const dae =
        R"(<?xml version="1.0"?><COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
        <asset><up_axis>Z_UP</up_axis></asset><library_geometries><geometry id="g"><mesh><source id="p">
        <float_array id="pa" count="9">0 0 0 1 0 0 0 1 0</float_array><technique_common>
        <accessor source="#pa" count="3" stride="3"><param name="X" type="float"/><param name="Y" type="float"/>
        <param name="Z" type="float"/></accessor></technique_common></source>
        <vertices id="v"><input semantic="POSITION" source="#p"/></vertices>
        <triangles count="1"><input semantic="VERTEX" source="#v" offset="0"/><p>0 1 2</p></triangles></mesh></geometry>
        </library_geometries><library_visual_scenes><visual_scene id="s"><node><translate>0 0 5</translate>
        <instance_geometry url="#g"/></node></visual_scene></library_visual_scenes>
        <scene><instance_visual_scene url="#s"/></scene></COLLADA>)";
    const ReaderResult result = ReadForeignFile(Write("a.dae", dae));
    ASSERT_EQ(result.mesh.m_vVertices.size(), 3u) << result.text;
    EXPECT_EQ(result.mesh.m_vVertices[0].z, 5.0f);
}

TEST_F(LibraryScene, OfPointsAlonePassesThemOn) {
    const ReaderResult obj = ReadForeignFile(Write("a.obj", "v 1 2 3\nv 4 5 6 1 0 0\nv nan 0 0\n"));
    EXPECT_EQ(obj.kind, Kind::Points);
    EXPECT_EQ(ColorsOf(obj), (std::vector<std::uint32_t>{kWhite, kRed}));
    EXPECT_EQ(obj.text, "1 points without finite coordinates are left out");
}

}  // namespace
