// Every import that adds nothing writes exactly one line with its file and the reason, in any locale.
#include <gmock/gmock.h>
#include <libintl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstring>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/MeshBytes.h"
#include "io/PlySample.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;

MeshBytes Text(const std::string& text) { return Padded(text, text.size()); }

MeshBytes Scan(const char* kind, bool isMasked) {
    ScanSample scan(3, 3, 1000);
    if (isMasked && kind == std::string("xdt")) scan.points.assign(27, -1.0f);
    return kind == std::string("xdt") ? scan.Xdt() : scan.Pax();
}

/// A file that adds nothing. The confidence limit of all rows is 5, and all confidences are 1.
struct Refused {
    const char* name;       // of the file below the scratch folder
    const char* file;       // its content: a text; null when there is no such file
    MeshBytes bytes;        // its content in place of the text
    const char* operation;  // that the line names
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

constexpr char kMissing[] = "cannot be opened: No such file or directory";
constexpr char kNotMesh[] = "unknown file type, not one of stl, ois, msh, ply and hps";
constexpr char kNotScan[] = "unknown file type, not one of xdt, pax and pcm";
constexpr char kMasked[] = "no pixel passes the confidence limit 5";

const Refused kMeshes[] = {
    {"missing.stl", nullptr, {}, "ImportStl", kMissing},
    {"missing.ois", nullptr, {}, "ImportOis", kMissing},
    {"missing.msh", nullptr, {}, "ImportMsh", kMissing},
    {"missing.ply", nullptr, {}, "ImportMesh", kMissing},
    {"missing.hps", nullptr, {}, "ImportHps", "File not found."},
    {"missing.obj", nullptr, {}, "ImportMesh", kNotMesh},
    {"missing", nullptr, {}, "ImportMesh", kNotMesh},
    {"scan.pcm", "any", {}, "ImportMesh", kNotMesh},
    {"folder.stl", "", {}, "ImportStl", "is not a regular file"},
    {"folder.ply", "", {}, "ImportMesh", "is not a regular file"},
    {"empty.stl", "", {}, "ImportStl", "holds no triangle"},
    {"none.stl", nullptr, StlHead(0), "ImportStl", "holds no triangle"},
    {"short.ois", "abc", {}, "ImportOis", "ends before its counts"},
    {"bad.msh", nullptr, Packed(-1, 0), "ImportMsh", "announces a negative count"},
    {"bad.ois", nullptr, Packed(1, 1, Float3{}, 0, 0, 1), "ImportOis",
     "triangle 0 refers to vertex 1, but there are 1"},
    {"text.ply", "any", {}, "ImportMesh", "Magic number in PLY header not found."},
    {"points.ply", nullptr,
     Text(std::string(ply_sample::kBinary) + ply_sample::Vertices(3) + ply_sample::kEnd + ply_sample::Corners()),
     "ImportPly", "holds no faces"},
    {"text.hps", "any", {}, "ImportHps", "Invalid file."},
};

const Refused kScans[] = {
    {"missing.pcm", nullptr, {}, "ImportScan", kMissing},
    {"missing.pax", nullptr, {}, "ImportPax", kMissing},
    {"missing.xdt", nullptr, {}, "ImportXdt", kMissing},
    {"missing.obj", nullptr, {}, "ImportScan", kNotScan},
    {"missing", nullptr, {}, "ImportScan", kNotScan},
    {"mesh.stl", "any", {}, "ImportScan", kNotScan},
    {"folder.pax", "", {}, "ImportPax", "is not a regular file"},
    {"short.pcm", "any", {}, "ImportScan", "header is cut short at byte 3"},
    {"short.xdt", "abc", {}, "ImportXdt", "ends before the size of its grid"},
    {"none.pax", nullptr, Packed(std::int16_t{0}, std::int16_t{9}, kIdentity), "ImportScan", "its grid has no pixel"},
    {"none.xdt", nullptr, Packed(std::int16_t{9}, std::int16_t{0}), "ImportScan", "its grid has no pixel"},
    {"negative.xdt", nullptr, Packed(std::int16_t{-9}, std::int16_t{9}), "ImportXdt",
     "announces a grid of negative size"},
    {"transform.pax", nullptr, Cut(Scan("pax", false), 4 + 9 * 16 + 63), "ImportPax",
     "ends before the end of its transform"},
    {"masked.pax", nullptr, Scan("pax", true), "ImportScan", kMasked},
    {"masked.xdt", nullptr, Scan("xdt", true), "ImportScan", "no pixel was measured"},
    {"line.xdt", nullptr, ScanSample(9, 1, 1).Xdt(), "ImportScan", "its valid points form no triangle"},
};

class RefusedImport : public testing::TestWithParam<Refused> {
protected:
    RefusedImport() {
        const Refused& row = GetParam();
        if (std::string(row.name).starts_with("folder"))
            ::mkdir(Path().c_str(), 0700);
        else if (row.file != nullptr)
            WriteBytes(Path(), Text(row.file));
        else if (!row.bytes.empty())
            WriteBytes(Path(), row.bytes);
        c->SetConfidenceFilter(5);
        c->InitializeKVReg();
    }
    ~RefusedImport() override { c->FinalizeKVReg(); }

    [[nodiscard]] std::string Path() const { return folder / GetParam().name; }
    /// The line with the reason is the only one that names the file.
    void ExpectOneReason() const {
        EXPECT_EQ(c->GetNumObjects(), 0);
        std::string text = c.debugOutput.Text();
        const std::string fixedLine = "SetScanData(): CreateInternalMesh() returned nullptr\n";
        if (text.ends_with(fixedLine)) text.resize(text.size() - fixedLine.size());
        EXPECT_EQ(text, GetParam().operation + std::string("(): ") + Path() + ": " + GetParam().reason + "\n");
    }

    ScratchFolder folder;
    NoPictureControl c;
};
class RefusedMesh : public RefusedImport {};
class RefusedScan : public RefusedImport {};

TEST_P(RefusedMesh, WritesOneLineWithFileAndReason) {
    try {
        c->ImportMesh(WidePath(Path()).c_str());
    } catch (const std::exception&) {  // ply files are refused by an exception
    }
    ExpectOneReason();
}

TEST_P(RefusedScan, WritesOneLineWithFileAndReason) {
    c->ImportScan(WidePath(Path()).c_str(), 0);
    ExpectOneReason();
}

std::string NameOf(const testing::TestParamInfo<Refused>& row) {
    std::string name = row.param.name;
    std::ranges::replace(name, '.', '_');
    return name;
}
INSTANTIATE_TEST_SUITE_P(Import, RefusedMesh, testing::ValuesIn(kMeshes), NameOf);
INSTANTIATE_TEST_SUITE_P(Import, RefusedScan, testing::ValuesIn(kScans), NameOf);

TEST(ImportScanWithoutAPath, WritesOneLine) {
    NoPictureControl c;
    for (const wchar_t* path : {static_cast<const wchar_t*>(nullptr), L""}) {
        c->ImportScan(path, 0);
        EXPECT_EQ(c.debugOutput.Take(), "ImportScan(): (no file): the path is empty\n");
    }
    EXPECT_EQ(c->GetNumObjects(), 0);
}

TEST(ImportFromMemoryWithoutArrays, WritesOneLine) {
    NoPictureControl c;
    const float numbers[16] = {};
    const std::int32_t triangle[3] = {};
    c->ImportMeshFromMemory(1, 0, nullptr, triangle);
    EXPECT_EQ(c.debugOutput.Take(), "ImportMeshFromMemory(): (no file): there is no array of vertices\n");
    c->ImportMeshFromMemory(1, 1, numbers, nullptr);
    EXPECT_EQ(c.debugOutput.Take(), "ImportMeshFromMemory(): (no file): there is no array of triangles\n");
    c->ImportMeshedMeasurement(nullptr, L"/d/a", 0);
    EXPECT_EQ(c.debugOutput.Take(), "ImportMeshedMeasurement(): /d/a: there is no mesh\n");
    EXPECT_EQ(c->GetNumObjects(), 0);
    c->ImportMeshFromMemory(0, 0, nullptr, nullptr);
    EXPECT_EQ(c->GetNumObjects(), 1) << "an empty mesh needs no arrays";
    EXPECT_EQ(c.debugOutput.Take(), "");
}

// ---- locales

class GroupedComma : public std::numpunct<char> {
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\1"; }
};

/// A catalogue of messages (the format of gettext) that translates one text of the C library.
MeshBytes Catalogue(const std::string& from, const std::string& to) {
    constexpr std::uint32_t kTable = 28, kTexts = kTable + 2 * 2 * 8;
    const std::string header = "Content-Type: text/plain; charset=UTF-8\n";
    const auto size = [](const std::string& text) { return static_cast<std::uint32_t>(text.size()); };
    const std::uint32_t fromAt = kTexts + 1, headerAt = fromAt + size(from) + 1, toAt = headerAt + size(header) + 1;
    const std::string texts = std::string(1, '\0') + from + '\0' + header + '\0' + to + '\0';
    return Packed(0x950412DEu, 0u, 2u, kTable, kTable + 16, 0u, 0u,  // the head
                  0u, kTexts, size(from), fromAt,                    // the texts to translate, the empty one first
                  size(header), headerAt, size(to), toAt) +
           Text(texts);
}

/// Everything about the process that could change the text of a reason.
class HostileLocale {
public:
    HostileLocale() : m_before(std::locale::global(std::locale(std::locale(), new GroupedComma))) {
        ::mkdir((m_folder / "xx").c_str(), 0700);
        ::mkdir((m_folder / "xx/LC_MESSAGES").c_str(), 0700);
        WriteBytes(m_folder / "xx/LC_MESSAGES/libc.mo", Catalogue("No such file or directory", "weg"));
        ::setenv("LANGUAGE", "xx", 1);
        std::setlocale(LC_ALL, "C.UTF-8");
        ::bindtextdomain("libc", m_folder.Path().c_str());
    }
    ~HostileLocale() {
        std::setlocale(LC_ALL, "C");
        std::locale::global(m_before);
        ::unsetenv("LANGUAGE");
    }
    HostileLocale(const HostileLocale&) = delete;
    HostileLocale& operator=(const HostileLocale&) = delete;

private:
    ScratchFolder m_folder;
    std::locale m_before;
};

// The suite runs in a process of its own: it changes the locale.
TEST(ReasonsInAnotherLocale, AreTheSame) {
    const HostileLocale locale;
    ASSERT_STREQ(std::strerror(ENOENT), "weg") << "the catalogue is in use";
    std::ostringstream grouped;
    grouped << 1234;
    ASSERT_EQ(grouped.str(), "1.2.3.4");
    const ScratchFolder folder;
    NoPictureControl c;
    const auto scan = [&](const std::string& name) {
        c->ImportScan(WidePath(folder / name).c_str(), 0);
        return c.debugOutput.Take();
    };
    const auto line = [&](const char* operation, const std::string& name, const std::string& reason) {
        return operation + std::string("(): ") + (folder / name) + ": " + reason + "\n";
    };
    for (const auto& [name, operation] :
         {std::pair{"a.pcm", "ImportScan"}, {"a.pax", "ImportPax"}, {"a.xdt", "ImportXdt"}})
        EXPECT_THAT(scan(name), testing::StartsWith(line(operation, name, kMissing)));
    c->ImportMesh(WidePath(folder / "a.stl").c_str());
    EXPECT_EQ(c.debugOutput.Take(), line("ImportStl", "a.stl", kMissing));
    c->SetConfidenceFilter(1234.5f);
    ScanSample(3, 3, 1).Write(folder / "b.pax");
    EXPECT_THAT(scan("b.pax"),
                testing::StartsWith(line("ImportScan", "b.pax", "no pixel passes the confidence limit 1234.5")));
    c->SetScanSkipVal(-1234);
    EXPECT_THAT(scan("b.pax"), testing::StartsWith(line("ImportScan", "b.pax", "the skip value -1234 is below 1")));
    // Texts of the system in exports, and large numbers.
    AddMesh(*c, {{}, {}, {}}, {{{0, 1, 2}}});
    for (const auto& [name, operation] : {std::pair{"no/a.stl", "ExportStl"}, {"no/a.ply", "ExportPly"}}) {
        c->ExportMesh(0, WidePath(folder / name).c_str());
        EXPECT_EQ(c.debugOutput.Take(), line(operation, name, "cannot open the folder: No such file or directory"));
    }
    const std::vector<float> vertices(3 * 2000, INFINITY);
    c->ImportMeshFromMemory(2000, 0, vertices.data(), nullptr);
    EXPECT_EQ(c.debugOutput.Take(), "(no file): 6000 coordinates are not finite\n");
    float box[6] = {};
    c->GetObjectBoundingBox(1234, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    EXPECT_THAT(c.debugOutput.Take(), testing::HasSubstr("- objectIdx = 1234\n"));
}

}  // namespace
