// The bytes of written ply files, compared with bytes made by hand.
#include "io/PlyMeshWriter.h"

#include <gmock/gmock.h>

#include <cstring>
#include <system_error>

#include "KV_ScenePane/PathText.h"
#include "support/ScratchFolder.h"

namespace {

constexpr char kMagicToCount[] =
    "ply\n"
    "format binary_little_endian 1.0\n"
    "comment created by kavelin messtechnik gmbh\n"
    "element vertex ";
constexpr char kPositionsAndNormals[] =
    "\nproperty float x\n"
    "property float y\n"
    "property float z\n"
    "property float nx\n"
    "property float ny\n"
    "property float nz\n";
constexpr char kColors[] = "property uchar red\nproperty uchar green\nproperty uchar blue\n";

std::string Text(const PlyMeshWriter& writer) {
    const auto file = writer.Assemble();
    return {reinterpret_cast<const char*>(file.bytes.get()), file.size};
}

template <class... Numbers>
std::string Floats(Numbers... numbers) {
    const float values[] = {static_cast<float>(numbers)...};
    return {reinterpret_cast<const char*>(values), sizeof values};
}

std::string Ints(std::initializer_list<std::int32_t> values) {
    return {reinterpret_cast<const char*>(std::data(values)), values.size() * sizeof(std::int32_t)};
}

Vertex MakeVertex(float first, std::uint32_t color) {
    return {first, first + 1, first + 2, first + 3, first + 4, first + 5, color, 0x77665544};
}

}  // namespace

TEST(PlyMeshWriter, WritesAnEmptyMeshAsAHeaderAlone) {
    EXPECT_EQ(Text(PlyMeshWriter({}, {}, {}, {})),
              std::string(kMagicToCount) + "0" + kPositionsAndNormals + "end_header\n");
}

TEST(PlyMeshWriter, WritesPositionsNormalsColorsAndFaces) {
    const Vertex vertices[] = {MakeVertex(1, 0xFF102030), MakeVertex(11, 0xFF000000), MakeVertex(21, 0x80FFFEFD)};
    const Triangle triangles[] = {{{0, 1, 2}}, {{2, 1, 0}}};
    EXPECT_EQ(Text(PlyMeshWriter(vertices, triangles, {}, {})),
              std::string(kMagicToCount) + "3" + kPositionsAndNormals + kColors +
                  "element face 2\nproperty list uchar int vertex_indices\nend_header\n" +  //
                  Floats(1, 2, 3, 4, 5, 6) + "\x10\x20\x30" +                               //
                  Floats(11, 12, 13, 14, 15, 16) + std::string(3, '\0') +                   //
                  Floats(21, 22, 23, 24, 25, 26) + "\xFF\xFE\xFD" +                         //
                  "\x03" + Ints({0, 1, 2}) + "\x03" + Ints({2, 1, 0}));
}

TEST(PlyMeshWriter, WritesNoColorsWhenTheFirstVertexIsBlack) {
    // The alpha of the first vertex is not compared.
    const Vertex vertices[] = {MakeVertex(1, 0xFF000000), MakeVertex(11, 0xFFFFFFFF)};
    EXPECT_EQ(Text(PlyMeshWriter(vertices, {}, {}, {})), std::string(kMagicToCount) + "2" + kPositionsAndNormals +
                                                             "end_header\n" + Floats(1, 2, 3, 4, 5, 6) +
                                                             Floats(11, 12, 13, 14, 15, 16));
}

TEST(PlyMeshWriter, WritesANewRecordAsWhite) {
    EXPECT_EQ(Text(PlyMeshWriter(1, 0)), std::string(kMagicToCount) + "1" + kPositionsAndNormals + kColors +
                                             "end_header\n" + Floats(0, 0, 0, 0, 0, 0) + "\xFF\xFF\xFF");
}

TEST(PlyMeshWriter, WritesTextureCoordinatesAndTheImageUnchanged) {
    const Vertex vertices[3] = {};
    const Triangle triangles[] = {{{0, 1, 2}}, {{1, 2, 0}}};
    const TexCoord texCoords[] = {{0, 0.5f}, {1, 1.5f}, {2, 2.5f}, {3, 3.5f}, {4, 4.5f}, {5, 5.5f}};
    const std::uint8_t image[] = {0, 10, 13, 255};
    EXPECT_EQ(Text(PlyMeshWriter(vertices, triangles, texCoords, image)),
              std::string(kMagicToCount) + "3" + kPositionsAndNormals +
                  "element face 2\nproperty list uchar int vertex_indices\nproperty list uint8 float texcoord\n" +
                  "element texture 4\nproperty uchar bytes\nend_header\n" + std::string(3 * 24, '\0') +  //
                  "\x03" + Ints({0, 1, 2}) + "\x06" + Floats(0, 0.5, 1, 1.5, 2, 2.5) +                   //
                  "\x03" + Ints({1, 2, 0}) + "\x06" + Floats(3, 3.5, 4, 4.5, 5, 5.5) +                   //
                  std::string("\0\n\r\xFF", 4));
}

TEST(PlyMeshWriter, WritesAnImageWithoutFaces) {
    const std::uint8_t image[] = {7};
    EXPECT_EQ(Text(PlyMeshWriter({}, {}, {}, image)), std::string(kMagicToCount) + "0" + kPositionsAndNormals +
                                                          "element texture 1\nproperty uchar bytes\nend_header\n" +
                                                          "\x07");
}

TEST(PlyMeshWriter, KeepsTheBitsOfNanAndNegativeZero) {
    const std::uint32_t bits[] = {0x7FC12345, 0xFF812345, 0x80000000, 0x00000001, 0x7F800000, 0xFFFFFFFF};
    Vertex vertex;
    std::memcpy(static_cast<void*>(&vertex), bits, sizeof bits);
    const std::string text = Text(PlyMeshWriter({&vertex, 1}, {}, {}, {}));
    EXPECT_EQ(text.substr(text.size() - sizeof bits), std::string(reinterpret_cast<const char*>(bits), sizeof bits));
}

TEST(PlyMeshWriter, ReplacesAnOldLongerFile) {
    const ScratchFolder folder;
    const std::string path = folder / "r\xC3\xB6hre.ply";
    WriteBytes(path, std::vector<std::byte>(10000));
    const PlyMeshWriter writer(2, 1);
    writer.Write(KV_ScenePane::WidePath(path));
    const auto bytes = ReadBytes(path);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()), Text(writer));
    EXPECT_EQ(folder.FileCount(), 1u);
}

TEST(PlyMeshWriter, RefusesATargetThatCannotBeOpened) {
    const ScratchFolder folder;
    EXPECT_THROW(PlyMeshWriter(0, 0).Write(KV_ScenePane::WidePath(folder / "missing/a.ply")), std::system_error);
    EXPECT_THROW(PlyMeshWriter(0, 0).Write(folder.Path().wstring()), std::system_error);
    EXPECT_EQ(folder.FileCount(), 0u);
}
