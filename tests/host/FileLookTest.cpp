#include "FileLook.h"

#include <gtest/gtest.h>

#include <string>

#include "host/MeshFiles.h"
#include "host/ScanFiles.h"

namespace {

const std::string kXyz = "property float x\nproperty float y\nproperty float z\n";
const std::string kFaces = "element face 1\nproperty list uchar int vertex_indices\n";

std::string Ply(const std::string& format, const std::string& vertices, const std::string& rest = kFaces) {
    return "ply\nformat " + format + " 1.0\nelement vertex 3\n" + vertices + rest + "end_header\n";
}
const std::string kText = "ascii", kBinary = "binary_little_endian";

std::string BinaryStl(const std::string& header, std::uint32_t announced, std::uint32_t written) {
    std::string file = header;
    file.resize(80, '\0');
    for (int shift = 0; shift < 32; shift += 8) file += static_cast<char>(announced >> shift & 0xFF);
    return file + std::string(50 * written, '\0');
}

struct Look {
    const char* name;
    const char* file;
    std::string bytes;
    FileLook expected;
};
void PrintTo(const Look& row, std::ostream* out) { *out << row.name; }

const Look kLooks[] = {
    {"Grid", "a.pcm", "", FileLook::Grid},
    {"GridOfTheViewer", "a.pax", "", FileLook::Viewer},
    {"Points", "a.xyz", "", FileLook::Points},
    {"ForeignType", "a.OBJ", "", FileLook::Process},
    {"UnknownType", "a.dat", "", FileLook::Viewer},
    {"PlainPly", "a.ply", Ply(kText, kXyz), FileLook::Viewer},
    {"PlainBinaryPly", "a.PLY", Ply(kBinary, kXyz), FileLook::Viewer},
    {"NoPlyAtAll", "a.ply", "any", FileLook::Viewer},
    {"PlyWithObjectInformation", "a.ply", Ply(kText, "obj_info any\n" + kXyz), FileLook::Process},
    {"BigEndianPly", "a.ply", Ply("binary_big_endian", kXyz), FileLook::Process},
    {"PlyOfAnotherVersion", "a.ply", "ply\nformat ascii 1.1\nelement vertex 3\n" + kXyz + kFaces + "end_header\n",
     FileLook::Process},
    {"PlyWithOtherTypeNames", "a.ply", Ply(kText, "property int32 x\nproperty float y\nproperty float z\n"),
     FileLook::Process},
    {"TextPlyOfDoubles", "a.ply", Ply(kText, "property double x\nproperty double y\nproperty double z\n"),
     FileLook::Viewer},
    {"BinaryPlyOfDoubles", "a.ply", Ply(kBinary, "property double x\nproperty double y\nproperty double z\n"),
     FileLook::Process},
    {"BinaryPlyOfWholeNumbers", "a.ply", Ply(kBinary, "property int x\nproperty int y\nproperty int z\n"),
     FileLook::Process},
    {"PlyWithColoursOfBytes", "a.ply",
     Ply(kBinary, kXyz + "property uchar red\nproperty uchar green\nproperty uchar blue\n"), FileLook::Viewer},
    {"PlyWithColoursOfWords", "a.ply",
     Ply(kBinary, kXyz + "property ushort red\nproperty ushort green\nproperty ushort blue\n"), FileLook::Process},
    {"TextPlyWithColoursAsFractions", "a.ply",
     Ply(kText, kXyz + "property float red\nproperty float green\nproperty float blue\n"), FileLook::Process},
    {"PlyWithListsAtItsVertices", "a.ply", Ply(kText, kXyz + "property list uchar int more\n"), FileLook::Process},
    {"PlyWithoutFaces", "a.ply", Ply(kText, kXyz, ""), FileLook::Points},
    {"PlyOfNoFaces", "a.ply", Ply(kText, kXyz, "element face 0\nproperty list uchar int vertex_indices\n"),
     FileLook::Points},
    {"PlyOfStrips", "a.ply", Ply(kText, kXyz, "element tristrips 1\nproperty list int int vertex_indices\n"),
     FileLook::Process},
    {"PlyWithMixedLineEnds", "a.ply",
     "ply\r\nformat binary_little_endian 1.0\nelement vertex 3\n" + kXyz + kFaces + "end_header\n", FileLook::Process},
    {"PlyWithAnImageThatIsNotThere", "a.ply",
     Ply(kText, "comment TextureFile none.png\n" + kXyz + "property float s\nproperty float t\n"), FileLook::Viewer},
    {"PlyWithAnImage", "a.ply",
     Ply(kText, "comment TextureFile a.ply\n" + kXyz + "property float s\nproperty float t\n"), FileLook::Process},
    {"BinaryStl", "a.stl", BinaryStl("any", 2, 2), FileLook::Viewer},
    {"BinaryStlThatBeginsWithSolid", "a.stl", BinaryStl("solid any", 2, 2), FileLook::Viewer},
    {"BinaryStlThatWasCutOff", "a.stl", BinaryStl("solid any", 4, 2), FileLook::Viewer},
    {"BinaryStlWithoutTriangles", "a.stl", BinaryStl("solid any", 0, 0), FileLook::Viewer},
    {"TextStl", "a.stl", "solid a\nfacet normal 0 0 1\nouter loop\n" + std::string(100, ' '), FileLook::Process},
    {"ShortTextStl", "a.STL", "solid\nendsolid\n", FileLook::Process},
    {"TextStlInUpperCase", "a.stl", "SOLID A\nFACET NORMAL 0 0 1\nOUTER LOOP\n" + std::string(100, ' '),
     FileLook::Process},
    {"TextStlAfterAComment", "a.stl", "# by hand\n solid a\n" + std::string(100, ' '), FileLook::Process},
    {"EmptyStl", "a.stl", "", FileLook::Viewer},
};
class FileLooks : public testing::TestWithParam<Look> {};

TEST_P(FileLooks, LeadToTheReaderThatReadsTheFileRightly) {
    const ScratchFolder folder;
    const std::string file = folder / GetParam().file;
    WriteText(file, GetParam().bytes);
    EXPECT_EQ(LookAt(file), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Look, FileLooks, testing::ValuesIn(kLooks), [](const auto& row) { return row.param.name; });

TEST(FileLook, OfAFileThatCannotBeOpenedIsThatOfTheViewer) {
    const ScratchFolder folder;
    EXPECT_EQ(LookAt(folder / "none.ply"), FileLook::Viewer);
    EXPECT_EQ(LookAt(folder / "none.stl"), FileLook::Viewer);
}

}  // namespace
