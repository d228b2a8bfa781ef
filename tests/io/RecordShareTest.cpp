// Files that end before or after the data that they announce: the object is added as before, and one line says what is
// missing or left over.
#include "io/RecordShare.h"

#include <gtest/gtest.h>

#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/MeshBytes.h"
#include "io/PlySample.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;

constexpr Float3 kA{0, 0, 0}, kB{4, 0, 0}, kC{0, 4, 0}, kD{4, 4, 0};

MeshBytes Text(const std::string& text) { return Padded(text, text.size()); }

/// Three triangles.
MeshBytes Stl(std::size_t size) {
    return Cut(StlHead(3) + StlRecord(kA, kB, kC) + StlRecord(kB, kC, kD) + StlRecord(kA, kB, kD), size);
}

/// Four vertices and two triangles.
MeshBytes Ois(std::size_t size) { return Cut(Packed(4, 2, kA, kB, kC, kD, 0, 1, 2, 1, 2, 3), size); }
MeshBytes Msh(std::size_t size) {
    return Cut(Packed(4, 2, kA, kD, kB, kD, kC, kD, kD, kD, kA, 0, 1, 2, kA, 1, 2, 3), size);
}

/// Four rows of four pixels, 12 bytes each after the 4 bytes of the size.
MeshBytes Xdt(std::size_t size) { return Cut(ScanSample(4, 4, 1000).Xdt(), size); }

MeshBytes TextPly(const std::string& after) { return Text(ply_sample::TextTriangle() + after); }
MeshBytes BinaryPly(const std::string& after) { return Text(ply_sample::BinaryTriangle() + after); }

struct SharedFile {
    const char* name;  // of the test
    const char* file;
    MeshBytes bytes;
    std::string line;  ///< empty for a whole file
};
void PrintTo(const SharedFile& row, std::ostream* out) { *out << row.name; }

const SharedFile kFiles[] = {
    {"StlWhole", "a.stl", Stl(84 + 150), ""},
    {"StlLastByteMissing", "a.stl", Stl(84 + 149), "2 of 3 triangles are in the file"},
    {"StlBetweenTriangles", "a.stl", Stl(84 + 100), "2 of 3 triangles are in the file"},
    {"StlHalf", "a.stl", Stl(84 + 75), "1 of 3 triangles are in the file"},
    {"OisWhole", "a.ois", Ois(80), ""},
    {"OisLastByteMissing", "a.ois", Ois(79), "1 of 2 triangles are in the file"},
    {"OisNoTriangle", "a.ois", Ois(56), "0 of 2 triangles are in the file"},
    {"OisVertexMissing", "a.ois", Ois(55), "3 of 4 vertices and 0 of 2 triangles are in the file"},
    {"OisOfPointsAlone", "a.ois", Cut(Packed(3, 0, kA, kB, kC), 8 + 24), "2 of 3 vertices are in the file"},
    {"MshWhole", "a.msh", Msh(8 + 96 + 48), ""},
    {"MshLastByteMissing", "a.msh", Msh(8 + 96 + 47), "1 of 2 triangles are in the file"},
    {"MshVertexMissing", "a.msh", Msh(8 + 95), "3 of 4 vertices and 0 of 2 triangles are in the file"},
    {"XdtWhole", "a.xdt", Xdt(4 + 192), ""},
    {"XdtLastByteMissing", "a.xdt", Xdt(4 + 191), "15 of 16 pixels are in the file"},
    {"XdtHalf", "a.xdt", Xdt(4 + 96), "8 of 16 pixels are in the file"},
    {"PlyTextWhole", "a.ply", TextPly(""), ""},
    {"PlyTextAndWhiteSpace", "a.ply", TextPly(" \r\n\t\n"), ""},
    {"PlyTextAndMore", "a.ply", TextPly("\n 7 8\n"), "4 bytes follow the end of its data"},
    {"PlyBinaryWhole", "a.ply", BinaryPly(""), ""},
    {"PlyBinaryAndMore", "a.ply", BinaryPly("x\n"), "2 bytes follow the end of its data"},
};

class ImportOfAFile : public testing::TestWithParam<SharedFile> {
protected:
    ScratchFolder folder;
    NoPictureControl c;
};

TEST_P(ImportOfAFile, SaysWhatIsMissingOrLeftOver) {
    const std::string path = folder / GetParam().file;
    WriteBytes(path, GetParam().bytes);
    if (path.ends_with("xdt"))
        c->ImportScan(WidePath(path).c_str(), 0);
    else
        c->ImportMesh(WidePath(path).c_str());
    ASSERT_EQ(c->GetNumObjects(), 1);
    const std::string& line = GetParam().line;
    EXPECT_EQ(c.debugOutput.Text(), line.empty() ? "" : path + ": " + line + "\n");
}
INSTANTIATE_TEST_SUITE_P(Files, ImportOfAFile, testing::ValuesIn(kFiles),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
