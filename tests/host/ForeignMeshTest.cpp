// Files that scenepane-read reads, in the runs without a window.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

const std::string kSquare = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
const std::string kTwoQuads =
    "ply\nformat ascii 1.0\nelement vertex 6\nproperty float x\nproperty float y\nproperty float z\n"
    "element face 2\nproperty list uchar int vertex_indices\nend_header\n"
    "0 0 0\n1 0 0\n1 1 0\n0 1 0\n2 0 0\n2 1 0\n4 0 1 2 3\n4 1 4 5 2\n";

class ForeignMesh : public testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& text) const {
        WriteText(m_folder / name, text);
        return m_folder / name;
    }
    /// A png file of one pixel above another.
    void WriteImage(const std::string& name, png_byte topRed, png_byte bottomBlue) const {
        const png_byte bytes[] = {topRed, 0, 0, 0, 0, bottomBlue};
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = 1;
        image.height = 2;
        image.format = PNG_FORMAT_RGB;
        ASSERT_NE(png_image_write_to_file(&image, (m_folder / name).c_str(), 0, bytes, 0, nullptr), 0);
    }
    [[nodiscard]] std::string InfoOf(int status, const std::string& errors = "") {
        m_options.json = true;
        const Printed out, err;
        EXPECT_EQ(RunInfo(m_options, out, err), status);
        EXPECT_EQ(err.Text(), errors);
        return out.Text();
    }

    const ScratchFolder m_folder;
    HostOptions m_options;
};

TEST_F(ForeignMesh, IsAnObjectAmongTheOthersInTheOrderOfTheFiles) {
    WriteXdt(m_folder / "c.xdt", 2, 2);
    m_options.files = {Write("a.obj", kSquare + "f 1 2 3 4\n"), Write("b.ply", kTwoQuads), m_folder / "c.xdt",
                       Write("d.stl",
                             "solid a\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\n"
                             "endfacet\nendsolid\n")};
    const std::string json = InfoOf(kExitGood);
    std::size_t before = 0;
    const char* const expected[] = {
        "a.obj\", \"vertices\": 4, \"triangles\": 2", "b.ply\", \"vertices\": 6, \"triangles\": 4",
        "c.xdt\", \"vertices\": 4, \"triangles\": 2", "d.stl\", \"vertices\": 3, \"triangles\": 1"};
    for (const char* const object : expected) {
        const std::size_t at = json.find(object);
        EXPECT_NE(at, std::string::npos) << object << '\n' << json;
        EXPECT_GE(at, before);
        before = at;
    }
    EXPECT_NE(json.find("\"color\": \"FFFFFF\""), std::string::npos) << "as meshes without colours of other formats";
}

TEST_F(ForeignMesh, IsConvertedToTheFormatsOfTheViewer) {
    m_options.files = {Write("a.obj", kSquare + "f 1 2 3 4\n")};
    m_options.exportPath = m_folder / "out.stl";
    const Printed err;
    EXPECT_EQ(RunConvert(m_options, err), kExitGood) << err.Text();
    EXPECT_EQ(std::filesystem::file_size(m_options.exportPath), 84u + 2 * 50);
}

TEST_F(ForeignMesh, OfPointsAloneCountsUnderPoints) {
    m_options.files = {Write("a.obj", "v 1 2 3\nv 4 5 6\n"), Write("b.xyz", "0 0 0 \n1 1 1\n2 2 2\n"),
                       Write("c.ply",
                             "ply\nformat binary_big_endian 1.0\nelement vertex 1\nproperty uchar x\n"
                             "property uchar y\nproperty uchar z\nend_header\nabc")};
    const std::string json = InfoOf(kExitGood);
    EXPECT_NE(json.find("{\"objects\": [],\n\"failed\": [],\n\"warnings\": [],\n\"points\": [\n  {\"file\": \"" +
                        m_options.files[0] + "\", \"count\": 2, \"box\": [1, 4, 2, 5, 3, 6], \"hasColors\": false}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("b.xyz\", \"count\": 3"), std::string::npos) << json;
    EXPECT_NE(json.find("c.ply\", \"count\": 1, \"box\": [97, 97, 98, 98, 99, 99]"), std::string::npos) << json;
}

TEST_F(ForeignMesh, OfPointsAloneIsNotConverted) {
    m_options.files = {Write("a.obj", "v 1 2 3\n")};
    m_options.exportPath = m_folder / "out.stl";
    const Printed err;
    EXPECT_EQ(RunConvert(m_options, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + m_options.files[0] +
                  ": the file has points but no triangles: free points can be shown and counted, but are no "
                  "object\n");
    EXPECT_FALSE(std::filesystem::exists(m_options.exportPath));
}

TEST_F(ForeignMesh, WithAnImageShowsItAndIsWrittenWithIt) {
    WriteImage("a.png", 200, 100);
    Write("m.mtl", "newmtl a\nmap_Kd a.png\n");
    m_options.files = {Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3 4/4\n")};
    m_options.picturePath = m_folder / "out.png";
    m_options.width = m_options.height = 100;
    const Printed err;
    ASSERT_EQ(RunScreenshot(m_options, err), kExitGood) << err.Text();
    const Png png = ReadPng(m_options.picturePath);
    const unsigned above = png.At(50, 30), below = png.At(50, 70);
    EXPECT_GT(above >> 16, 100u) << "the top row of the image is red";
    EXPECT_LT(above & 0xFF, 30u);
    EXPECT_GT(below & 0xFF, 50u) << "the bottom row is blue";
    EXPECT_LT(below >> 16, 30u);

    m_options.exportPath = m_folder / "out.ply";
    ASSERT_EQ(RunConvert(m_options, err), kExitGood) << err.Text();
    const auto bytesOf = [](const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_TRUE(bytesOf(m_options.exportPath).ends_with(bytesOf(m_folder / "a.png"))) << "the image as it was";
}

TEST_F(ForeignMesh, LeavesNoTemporaryFiles) {
    const ScratchFolder temporary;
    setenv("TMPDIR", temporary.Path().c_str(), 1);
    WriteImage("a.png", 200, 100);
    Write("m.mtl", "newmtl a\nmap_Kd a.png\n");
    m_options.files = {Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3 4/4\n")};
    EXPECT_NE(InfoOf(kExitGood).find("\"triangles\": 2"), std::string::npos);
    unsetenv("TMPDIR");
    EXPECT_EQ(temporary.FileCount(), 0u);
}

TEST_F(ForeignMesh, WithAnImageOpensWithoutTheFolderOfTemporaryFiles) {
    setenv("TMPDIR", (m_folder / "none").c_str(), 1);
    WriteImage("a.png", 200, 100);
    Write("m.mtl", "newmtl a\nmap_Kd a.png\n");
    m_options.files = {Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3 4/4\n")};
    const std::string json = InfoOf(kExitGood);
    unsetenv("TMPDIR");
    EXPECT_NE(json.find("\"name\": \"" + m_options.files[0] + "\", \"vertices\": 4, \"triangles\": 2"),
              std::string::npos)
        << "with the name of a mesh without an image\n"
        << json;
}

TEST_F(ForeignMesh, WithSomethingLeftOutHasAWarning) {
    Write("m.mtl", "newmtl a\nmap_Kd none.png\n");
    m_options.files = {Write("a.obj", "mtllib m.mtl\n" + kSquare + "usemtl a\nf 1/1 2/2 3/3\nl 1 2\n")};
    const std::string json = InfoOf(kExitGood, "scenepane: " + m_options.files[0] +
                                                   ": its image is not shown: there is no file none.png beside it; its "
                                                   "lines are not shown\n");
    EXPECT_NE(json.find("\"warnings\": [\n  {\"file\": "), std::string::npos) << json;
}

TEST_F(ForeignMesh, WithCoordinatesThatAreNotFiniteSaysSo) {
    m_options.files = {Write("a.ply",
                             "ply\nformat ascii 1.0\nobj_info any\nelement vertex 3\nproperty float x\n"
                             "property float y\nproperty float z\nelement face 1\n"
                             "property list uchar int vertex_indices\nend_header\n0 0 nan\n1 0 0\n0 1 inf\n3 0 1 2\n")};
    const std::string json =
        InfoOf(kExitGood, "scenepane: " + m_options.files[0] +
                              ": 2 coordinates are not finite: triangles may be missing there: export "
                              "the file again from its source\n");
    EXPECT_NE(json.find("\"triangles\": 1"), std::string::npos) << json;
}

TEST_F(ForeignMesh, ThatNobodyCanReadHasTheReasonOfItsReader) {
    m_options.files = {Write("a.ply", kTwoQuads.substr(0, kTwoQuads.size() - 3)), Write("b.gltf", "{")};
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitFailure);
    EXPECT_NE(err.Text().find("a.ply: the file is cut short: copy or export it again from its source\n"),
              std::string::npos)
        << err.Text();
    EXPECT_NE(err.Text().find("b.gltf: "), std::string::npos) << err.Text();
}

}  // namespace
