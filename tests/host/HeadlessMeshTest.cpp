// Mesh files without a window: the output of --info, the reasons of a refusal, and --convert.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include "Headless.h"
#include "MessageTable.h"
#include "PngFile.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"

namespace {

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
    return count;
}

/// What --info --json prints of one file that adds an object.
std::string InfoOf(const std::string& file) {
    HostOptions options;
    options.json = true;
    options.files = {file};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood) << err.Text();
    EXPECT_EQ(err.Text(), "");
    return out.Text();
}

/// Asserts that --convert writes the file and prints nothing.
void Convert(const std::string& from, const std::string& to) {
    HostOptions options;
    options.files = {from};
    options.exportPath = to;
    const Printed err;
    ASSERT_EQ(RunConvert(options, err), kExitGood) << err.Text();
    ASSERT_EQ(err.Text(), "");
}

/// An encoded picture of one pixel.
std::vector<std::byte> SmallPng(const ScratchFolder& folder) {
    std::string reason;
    EXPECT_TRUE(WritePng(folder / "pixel.png", {1, 1, {0xFF336699}}, &reason)) << reason;
    return ReadBytes(folder / "pixel.png");
}

constexpr const char* kTetra = "\"vertices\": 4, \"triangles\": 4, \"box\": [0, 1, 0, 1, 0, 1]";

TEST(MeshInfo, ReportsEveryFormatInAnyCaseOfItsExtension) {
    const ScratchFolder folder;
    WriteText(folder / "a.ply", TetraPlyText());
    WriteStl(folder / "b.STL");
    WriteOis(folder / "c.ois");
    WriteMsh(folder / "d.Msh");
    Convert(folder / "a.ply", folder / "e.hps");
    for (const char* const name : {"a.ply", "b.STL", "c.ois", "d.Msh", "e.hps"}) {
        const std::string json = InfoOf(folder / name);
        EXPECT_NE(json.find(kTetra), std::string::npos) << name << '\n' << json;
        EXPECT_NE(json.find("\"file\": \"" + (folder / name) + '"'), std::string::npos) << json;
    }
}

TEST(MeshInfo, ReportsATexturedFileWithoutOpenGl) {
    const ScratchFolder folder;
    WriteTexturedPly(folder / "a.ply", SmallPng(folder));
    EXPECT_NE(InfoOf(folder / "a.ply").find(kTetra), std::string::npos);
}

TEST(MeshInfo, ReportsScansAndMeshesInTheirOrder) {
    const ScratchFolder folder;
    WriteXdt(folder / "a.xdt", 2, 2);
    WriteStl(folder / "b.stl");
    WritePcm(folder / "c.pcm", 3, 2);
    HostOptions options;
    options.files = {folder / "a.xdt", folder / "b.stl", folder / "c.pcm"};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    const std::string text = out.Text();
    EXPECT_LT(text.find("a.xdt\n  index          0\n"), text.find("b.stl\n  index          1\n")) << text;
    EXPECT_LT(text.find("b.stl\n  index          1\n"), text.find("c.pcm\n  index          2\n")) << text;
    EXPECT_NE(text.find("c.pcm\n  index          2\n"), std::string::npos) << text;
}

struct BadMesh {
    const char* name;
    const char* file;
    std::string bytes;
    const char* reason;  ///< part of the line; empty where any reason will do
};
void PrintTo(const BadMesh& row, std::ostream* out) { *out << row.name; }

const std::string kStlHeader(80, '\0');
const std::string kZeroCount(4, '\0');

const BadMesh kBadMeshes[] = {
    {"PlyOfOtherText", "a.ply", "no mesh at all", ""},
    {"PlyCutShortInItsHeader", "a.ply", "ply\nformat ascii 1.0\nelement vertex 3\n", ""},
    {"PlyWithFewerPointsThanAnnounced", "a.ply", PlyHeader(3, 1) + "0 0 0\n1 0 0\n", ""},
    {"PlyWithoutPoints", "a.ply", PlyHeader(0, 0), "no triangle"},
    {"PlyWithAnIndexOutside", "a.ply", PlyHeader(3, 1) + "0 0 0\n1 0 0\n1 1 0\n3 0 1 3\n", ""},
    {"TextStlThatEndsInATriangle", "a.stl", "solid cube\n facet normal 0 0 1\n  outer loop\n   vertex 0 0 0\n",
     "the file is cut short"},
    {"TextStlWithAWordForANumber", "a.stl", "solid cube\n facet\n  outer loop\n   vertex 0 nought 0\n",
     "in line 4 there is \"nought\" in place of a number"},
    {"StlWithoutTriangles", "a.stl", kStlHeader + kZeroCount, ""},
    {"StlCutShort", "a.stl", kStlHeader.substr(1), ""},
    {"OisOfNegativeCount", "a.ois", "\xff\xff\xff\xff\1\1\1\1", ""},
    {"MshThatEndsInItsCounts", "a.msh", "\1", ""},
    {"HpsOfOtherText", "a.hps", "no mesh at all", "this is no hps file, or it is damaged"},
    {"HpsWithoutBytes", "a.hps", "", ""},
    {"ObjOfOtherText", "a.obj", "no mesh at all", "no triangle"},
    {"UnknownType", "a.dat", "v 0 0 0\n", "the type of the file is not known: it is none of pcm"},
};
class MeshIsRefused : public testing::TestWithParam<BadMesh> {};

TEST_P(MeshIsRefused, InOneLineWithItsNameOnceAndTheReason) {
    const ScratchFolder folder;
    const std::string file = folder / GetParam().file;
    WriteText(file, GetParam().bytes);
    WriteStl(folder / "good.stl");
    HostOptions options;
    options.files = {file, folder / "good.stl"};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitFailure);
    const std::string line = err.Text(), start = "scenepane: " + file + ": ";
    EXPECT_EQ(line.substr(0, start.size()), start);
    EXPECT_EQ(CountOf(line, file), 1u) << line;
    EXPECT_EQ(std::ranges::count(line, '\n'), 1) << line;
    EXPECT_NE(line.find(GetParam().reason, start.size()), std::string::npos) << line;
    EXPECT_EQ(line.find("nothing in it could be imported"), std::string::npos)
        << "the general sentence in place of a reason: " << line;
    EXPECT_EQ(line.find("()"), std::string::npos) << "no names of functions: " << line;
    EXPECT_NE(out.Text().find("good.stl\n  index          0\n"), std::string::npos) << "the scene was as before";
}
INSTANTIATE_TEST_SUITE_P(Mesh, MeshIsRefused, testing::ValuesIn(kBadMeshes),
                         [](const auto& row) { return row.param.name; });

// ---- --convert

struct Formats {
    const char* name;
    const char* from;
    const char* to;
};
void PrintTo(const Formats& row, std::ostream* out) { *out << row.name; }

const Formats kFormats[] = {
    {"StlToPly", "stl", "ply"}, {"PlyToStl", "ply", "stl"}, {"PlyToHps", "ply", "hps"}, {"OisToPly", "ois", "ply"},
    {"MshToHps", "msh", "hps"}, {"OisToStl", "ois", "STL"}, {"PlyToPly", "ply", "ply"},
};
class ConvertsMeshes : public testing::TestWithParam<Formats> {};

TEST_P(ConvertsMeshes, WithTheirVerticesAndTriangles) {
    const ScratchFolder folder;
    WriteText(folder / "in.ply", TetraPlyText());
    WriteStl(folder / "in.stl");
    WriteOis(folder / "in.ois");
    WriteMsh(folder / "in.msh");
    const std::string out = folder / (std::string("out.") + GetParam().to);
    Convert(folder / (std::string("in.") + GetParam().from), out);
    const std::string json = InfoOf(out);
    EXPECT_NE(json.find(kTetra), std::string::npos) << json;
}
INSTANTIATE_TEST_SUITE_P(Convert, ConvertsMeshes, testing::ValuesIn(kFormats),
                         [](const auto& row) { return row.param.name; });

TEST(Convert, AppliesTheImportOptionsToAScan) {
    const ScratchFolder folder;
    WritePcm(folder / "a.pcm", 11, 11);
    HostOptions options;
    options.files = {folder / "a.pcm"};
    options.exportPath = folder / "a.ply";
    options.import.skip = 2;
    const Printed err;
    EXPECT_EQ(RunConvert(options, err), kExitGood) << err.Text();
    EXPECT_NE(InfoOf(folder / "a.ply").find("\"vertices\": 35,"), std::string::npos)
        << "6 x 6 cells without the corner cell, which has a single pixel";
}

TEST(Convert, KeepsTheImageOfATextureByteForByte) {
    const ScratchFolder folder;
    const std::vector<std::byte> image = SmallPng(folder);
    WriteTexturedPly(folder / "a.ply", image);
    Convert(folder / "a.ply", folder / "b.hps");
    Convert(folder / "b.hps", folder / "c.ply");
    const std::vector<std::byte> bytes = ReadBytes(folder / "c.ply");
    ASSERT_GT(bytes.size(), image.size());
    EXPECT_TRUE(std::equal(image.rbegin(), image.rend(), bytes.rbegin()));
}

TEST(Convert, NamesTheProgramInAnHpsFile) {
    const ScratchFolder folder;
    WriteStl(folder / "a.stl");
    Convert(folder / "a.stl", folder / "a.hps");
    const std::vector<std::byte> bytes = ReadBytes(folder / "a.hps");
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t name = text.find("scenepane");
    ASSERT_NE(name, std::string_view::npos);
    EXPECT_NE(text.find("5.5.0", name), std::string_view::npos);
}

TEST(Convert, ReplacesAnOlderFile) {
    const ScratchFolder folder;
    WriteStl(folder / "a.stl");
    WriteText(folder / "a.ply", "old");
    Convert(folder / "a.stl", folder / "a.ply");
    EXPECT_NE(InfoOf(folder / "a.ply").find(kTetra), std::string::npos);
    Convert(folder / "a.stl", folder / "a.ply");  // the same bytes again count as written
}

TEST(Convert, WritesNothingWhenTheImportFails) {
    const ScratchFolder folder;
    WriteText(folder / "out.ply", "old");
    HostOptions options;
    options.files = {folder / "none.stl"};
    options.exportPath = folder / "out.ply";
    const Printed err;
    EXPECT_EQ(RunConvert(options, err), kExitFailure);
    EXPECT_EQ(err.Text(),
              "scenepane: " + (folder / "none.stl") + ": there is no such file: check its name and its folder\n");
    EXPECT_EQ(ReadBytes(folder / "out.ply").size(), 3u);
}

class ConvertFails : public testing::TestWithParam<const char*> {};

TEST_P(ConvertFails, InOneLineWhenItsFileCannotBeWritten) {
    const ScratchFolder folder;
    WriteStl(folder / "a.stl");
    ASSERT_EQ(mkdir((folder / (std::string("folder.") + GetParam())).c_str(), 0700), 0);
    for (const std::string& name : {std::string("no/out."), std::string("folder.")}) {
        HostOptions options;
        options.files = {folder / "a.stl"};
        options.exportPath = folder / (name + GetParam());
        const Printed err;
        EXPECT_EQ(RunConvert(options, err), kExitFailure);
        const std::string line = err.Text(), start = "scenepane: " + options.exportPath + ": not written: ";
        EXPECT_EQ(line.substr(0, start.size()), start);
        EXPECT_GT(line.size(), start.size() + 1) << "there is a reason";
        EXPECT_EQ(CountOf(line, options.exportPath), 1u) << line;
        EXPECT_EQ(std::ranges::count(line, '\n'), 1) << line;
        EXPECT_EQ(folder.FileCount(), 2u) << "no temporary file remains";
    }
}
INSTANTIATE_TEST_SUITE_P(Convert, ConvertFails, testing::Values("ply", "stl", "hps"),
                         [](const auto& row) { return std::string(row.param); });

TEST(MeshPicture, ShowsAMeshFile) {
    unsetenv("DISPLAY");
    const ScratchFolder folder;
    WriteStl(folder / "a.stl");
    HostOptions options;
    options.picturePath = folder / "a.png";
    options.width = options.height = 100;
    options.files = {folder / "a.stl"};
    const Printed err;
    EXPECT_EQ(RunScreenshot(options, err), kExitGood) << err.Text();
    // Seen along Z the triangle covers the lower left half of its box, which lies around the middle.
    const Png png = ReadPng(options.picturePath);
    EXPECT_NE(png.At(45, 55), 0x191932u);
    EXPECT_EQ(png.At(5, 5), 0x191932u);
}

// ---- coordinates that are not finite, and files that add nothing

TEST(Info, PrintsTheNumberOfCoordinatesThatAreNotFiniteAndAddsTheFile) {
    const ScratchFolder folder;
    WriteStl(folder / "odd.stl", {{{{0, 0, 5}, {2, 0, 5}, {INFINITY, NAN, 6}}}});
    HostOptions options;
    options.json = true;
    options.files = {folder / "odd.stl"};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    EXPECT_EQ(
        err.Text(),
        "scenepane: " + (folder / "odd.stl") +
            ": 2 coordinates are not finite: triangles may be missing there: export the file again from its source\n");
    EXPECT_NE(out.Text().find("\"box\": [0, 2, -0.01, 0.01, 5, 6]"), std::string::npos) << out.Text();
    options.exportPath = folder / "out.ply";
    const Printed convertErr;
    EXPECT_EQ(RunConvert(options, convertErr), kExitGood);
    EXPECT_EQ(convertErr.Text(), err.Text());
}

TEST(Info, SaysThatAnObjectWithoutFinitePointsShowsNothing) {
    const ScratchFolder folder;
    WriteStl(folder / "odd.stl", {{{{NAN, 0, 5}, {NAN, 0, 5}, {INFINITY, 1, 6}}}});
    HostOptions options;
    options.json = true;
    options.files = {folder / "odd.stl"};
    const Printed out, err;
    EXPECT_EQ(RunInfo(options, out, err), kExitGood);
    const std::string start = "scenepane: " + (folder / "odd.stl") + ": ";
    EXPECT_EQ(err.Text(), start +
                              "3 coordinates are not finite: triangles may be missing there: export the file again "
                              "from its source\n" +
                              start + kNoFiniteCoordinate + "\n");
}

struct Refused {
    const char* name;
    void (*write)(const std::string& path);
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

const Refused kRefused[] = {
    {"missing.ply", [](const std::string&) {}, "there is no such file: check its name and its folder"},
    {"unknown.dat", [](const std::string& path) { WriteText(path, "any"); },
     "the type of the file is not known: it is none of pcm, pax, xdt, ply, stl, hps, ois, msh, obj, off, gltf, glb, "
     "3mf, "
     "dae and others"},
    {"pipe.ply", [](const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }, "is not a regular file"},
    {"text.ply", [](const std::string& path) { WriteText(path, "any"); },
     "this is no ply file, whatever its name says"},
    {"text.pcm", [](const std::string& path) { WriteText(path, "any"); },
     "the file is cut short after 3 bytes: copy or export it again from its source"},
    {"low.pcm", [](const std::string& path) { WritePcm(path, 3, 3, 0, 4.5f); },
     "no point is left: none has the confidence 5: lower the limit of the import"},
    {"low.pax", [](const std::string& path) { WritePax(path, 3, 3); },
     "no point is left: none has the confidence 5: lower the limit of the import"},
    {"line.xdt", [](const std::string& path) { WriteXdt(path, 9, 1); },
     "no triangle is left: nowhere are three neighbouring points valid: lower the confidence limit or measure again"},
    {"none.xdt", [](const std::string& path) { WriteText(path, std::string(4, '\0')); },
     "the scan is empty: its grid has no points"},
    {"short.pax",
     [](const std::string& path) {
         WritePax(path, 3, 3);
         ASSERT_EQ(truncate(path.c_str(), 4 + 9 * 16 + 60), 0);
     },
     "the file is cut short: copy or export it again from its source"},
};
class RefusedFile : public testing::TestWithParam<Refused> {};

TEST_P(RefusedFile, EndsAConversionWithItsReasonAlone) {
    const ScratchFolder folder;
    const std::string path = folder / GetParam().name;
    ASSERT_NO_FATAL_FAILURE(GetParam().write(path));
    HostOptions options;
    options.files = {path};
    options.exportPath = folder / "out.stl";
    options.import.confidence = 5;
    const std::string line = "scenepane: " + path + ": " + GetParam().reason + "\n";
    const Printed err, out, infoErr;
    EXPECT_EQ(RunConvert(options, err), kExitFailure);
    EXPECT_EQ(err.Text(), line);
    EXPECT_EQ(RunInfo(options, out, infoErr), kExitFailure);
    EXPECT_EQ(infoErr.Text(), line);
    EXPECT_EQ(CountOf(out.Text(), GetParam().reason), 1u);
}
INSTANTIATE_TEST_SUITE_P(Convert, RefusedFile, testing::ValuesIn(kRefused), [](const auto& row) {
    std::string name = row.param.name;
    std::ranges::replace(name, '.', '_');
    return name;
});

}  // namespace
