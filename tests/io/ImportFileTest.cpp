// The import that returns its reason, and the reason of the last import or export of a viewer.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "KV_ScenePane/MeshBuffers.h"
#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"
#include "io/MeshBytes.h"
#include "io/PlySample.h"
#include "io/ScanSample.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::ImportOptions;
using KV_ScenePane::WidePath;

constexpr Float3 kA{0, 0, 0}, kB{4, 0, 0}, kC{0, 4, 0};
constexpr char kMissing[] = "cannot be opened: No such file or directory";
constexpr char kUnknown[] = "unknown file type, not one of stl, ois, msh, ply, hps, xdt, pax and pcm";

MeshBytes Text(const std::string& text) { return Padded(text, text.size()); }

/// A grid of 5 x 5 points with two confidences: 1 in the left three columns, 9 in the others.
ScanSample Grid() {
    ScanSample scan(5, 5, 1000);
    for (std::size_t pixel = 0; pixel < 25; ++pixel)
        if (pixel % 5 >= 2) scan.confidence[pixel] = 9;
    return scan;
}

std::unique_ptr<KV_ScenePane::ScenePane> NoPictureViewer() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    std::string reason;
    auto viewer = CreateScenePane(request, &reason);
    if (viewer == nullptr) throw std::runtime_error(reason);
    return viewer;
}

class FileOfAViewer : public testing::Test {
protected:
    FileOfAViewer() { methods().InitializeKVReg(); }
    ~FileOfAViewer() override { methods().FinalizeKVReg(); }

    KV_ScenePane::_DKV_ScenePane& methods() { return viewer->Methods(); }
    [[nodiscard]] std::string Path(const std::string& name) const { return folder / name; }
    [[nodiscard]] std::string Written(const std::string& name, const MeshBytes& bytes) const {
        WriteBytes(Path(name), bytes);
        return Path(name);
    }
    [[nodiscard]] std::string OneTriangle() const { return Written("one.stl", StlHead(1) + StlRecord(kA, kB, kC)); }
    /// Vertices of the last object.
    int VertexCount() {
        std::int32_t vertices = 0, triangles = 0;
        methods().GetMeshDataSize(static_cast<std::int16_t>(methods().GetNumObjects() - 1), &vertices, &triangles);
        return vertices;
    }

    ScratchFolder folder;
    CapturedDebugOutput output;
    std::unique_ptr<KV_ScenePane::ScenePane> viewer = NoPictureViewer();
    std::string reason = "of a former call";
};
using ImportFile = FileOfAViewer;
using LastError = FileOfAViewer;

TEST_F(ImportFile, AddsAnObjectOfEveryFormatOfTheViewer) {
    const MeshBytes ois = Packed(3, 1, kA, kB, kC, 0, 1, 2);
    const MeshBytes msh = Packed(3, 1, kA, kC, kB, kC, kC, kC, kA, 0, 1, 2);
    Grid().WritePcm(Path("grid.pcm"));
    (void)viewer->ImportFile(OneTriangle(), {}, nullptr);
    methods().ExportMesh(0, WidePath(Path("one.hps")).c_str());
    const std::vector<std::string> files = {OneTriangle(),
                                            Written("one.OIS", ois),
                                            Written("one.msh", msh),
                                            Written("one.ply", Text(ply_sample::TextTriangle())),
                                            Path("one.hps"),
                                            Path("grid.pcm"),
                                            Written("grid.pax", Grid().Pax()),
                                            Written("grid.Xdt", Grid().Xdt())};
    int count = 1;
    for (const std::string& file : files) {
        reason = "of a former call";
        EXPECT_TRUE(viewer->ImportFile(file, {}, &reason)) << file;
        EXPECT_EQ(reason, "") << file;
        EXPECT_EQ(viewer->LastError(), "");
        EXPECT_EQ(methods().GetNumObjects(), ++count) << file;
    }
}

struct Refused {
    const char* file;
    MeshBytes bytes;  // none: there is no such file
    const char* reason;
};
const Refused kRefused[] = {
    {"missing.stl", {}, kMissing},
    {"missing.ply", {}, kMissing},
    {"missing.pcm", {}, kMissing},
    {"missing.pax", {}, kMissing},
    {"missing.hps", {}, "File not found."},
    {"short.ois", Text("abc"), "ends before its counts"},
    {"short.xdt", Text("abc"), "ends before the size of its grid"},
    {"line.xdt", ScanSample(9, 1, 1).Xdt(), "its valid points form no triangle"},
    {"text.ply", Text("any"), "Magic number in PLY header not found."},
    {"text.hps", Text("any"), "Invalid file."},
    {"mesh.obj", Text("v 0 0 0"), kUnknown},
    {"mesh", Text("any"), kUnknown},
};

TEST_F(ImportFile, ReturnsTheReasonWithoutASink) {
    for (const Refused& row : kRefused) {
        if (!row.bytes.empty()) WriteBytes(Path(row.file), row.bytes);
        EXPECT_FALSE(viewer->ImportFile(Path(row.file), {}, &reason)) << row.file;
        EXPECT_EQ(reason, row.reason) << row.file;
        EXPECT_EQ(viewer->LastError(), row.reason) << row.file;
        EXPECT_FALSE(viewer->ImportFile(Path(row.file), {}, nullptr)) << row.file;
    }
    EXPECT_EQ(methods().GetNumObjects(), 0);
}

TEST_F(ImportFile, RefusesPathsThatNoFileHas) {
    EXPECT_FALSE(viewer->ImportFile("", {}, &reason));
    EXPECT_EQ(reason, "the path is empty");
    EXPECT_FALSE(viewer->ImportFile(OneTriangle() + std::string("\0.stl", 5), {}, &reason));
    EXPECT_EQ(reason, "the path holds a zero byte");
}

TEST_F(ImportFile, OpensAPathWhoseBytesAreNotUtf8) {
    EXPECT_TRUE(viewer->ImportFile(Written("gr\xFC\xDF.stl", StlHead(1) + StlRecord(kA, kB, kC)), {}, &reason));
    EXPECT_EQ(reason, "");
}

TEST_F(ImportFile, ReturnsRemarksAboutAFileThatItHasAdded) {
    const MeshBytes cut = Cut(StlHead(2) + StlRecord(kA, kB, kC) + StlRecord(kA, kC, kB), 84 + 60);
    EXPECT_TRUE(viewer->ImportFile(Written("cut.stl", cut), {}, &reason));
    EXPECT_EQ(reason, "1 of 2 triangles are in the file");
    EXPECT_EQ(viewer->LastError(), "");
}

TEST_F(ImportFile, WritesTheLinesOfTheMethodsToTheDebugOutput) {
    (void)viewer->ImportFile(Path("missing.stl"), {}, &reason);
    EXPECT_EQ(output.Take(), "ImportStl(): " + Path("missing.stl") + ": " + kMissing + "\n");
    (void)viewer->ImportFile(Path("missing.ply"), {}, &reason);
    EXPECT_EQ(output.Take(), "ImportMesh(): " + Path("missing.ply") + ": " + kMissing + "\n");
    (void)viewer->ImportFile(Path("mesh.obj"), {}, &reason);
    EXPECT_EQ(output.Take(), "ImportFile(): " + Path("mesh.obj") + ": " + kUnknown + "\n");
}

TEST_F(ImportFile, ReadsScansWithItsOptionsAndLeavesThoseOfTheViewer) {
    Grid().WritePcm(Path("grid.pcm"));
    methods().SetScanSkipVal(7);
    methods().SetConfidenceFilter(8);
    ASSERT_TRUE(viewer->ImportFile(Path("grid.pcm"), {}, &reason));
    EXPECT_EQ(VertexCount(), 25);
    EXPECT_EQ(methods().GetObjectColor(0), 0xC8D4DC);
    ASSERT_TRUE(viewer->ImportFile(Path("grid.pcm"), {.skip = 2, .color = 0x010203}, &reason));
    const int thinned = VertexCount();
    EXPECT_LT(thinned, 10);
    EXPECT_EQ(methods().GetObjectColor(1), 0x010203);
    ASSERT_TRUE(viewer->ImportFile(Path("grid.pcm"), {.confidence = 9}, &reason));
    EXPECT_EQ(VertexCount(), 15);
    EXPECT_FALSE(viewer->ImportFile(Path("grid.pcm"), {.confidence = 10}, &reason));
    EXPECT_EQ(reason, "no pixel passes the confidence limit 10");
    EXPECT_EQ(methods().GetScanSkipVal(), 7);
    EXPECT_EQ(ControlOf(*viewer).m_fConfidenceFilter, 8);
    methods().SetScanSkipVal(2);
    methods().SetConfidenceFilter(0);
    methods().ImportScan(WidePath(Path("grid.pcm")).c_str(), 0);
    EXPECT_EQ(VertexCount(), thinned);
}

TEST_F(ImportFile, RefusesTheObjectThatHasNoIndex) {
    auto& meshes = ControlOf(*viewer).m_vpMeshes;
    meshes.assign(32766, std::make_shared<Mesh>(L"", false));
    EXPECT_TRUE(viewer->ImportFile(OneTriangle(), {}, &reason));
    EXPECT_FALSE(viewer->ImportFile(OneTriangle(), {}, &reason));
    EXPECT_EQ(reason, "the scene is full: it has 32767 objects");
    EXPECT_EQ(meshes.size(), 32767u);
}

TEST_F(ImportFile, RefusesScansButNotMeshesDuringAParallelImport) {
    Grid().WritePcm(Path("grid.pcm"));
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    methods().BeginParallelImport(&control, &entry);
    EXPECT_FALSE(viewer->ImportFile(Path("grid.pcm"), {}, &reason));
    EXPECT_EQ(reason, "a parallel import is running: scans go to its entry");
    EXPECT_TRUE(viewer->ImportFile(OneTriangle(), {}, &reason));
    methods().EndParallelImport();
    EXPECT_EQ(methods().GetNumObjects(), 1);
}

TEST_F(ImportFile, PassesOnWhatTheSinkThrowsAndHasDoneItsWork) {
    const MeshBytes cut = Cut(StlHead(2) + StlRecord(kA, kB, kC) + StlRecord(kA, kC, kB), 84 + 60);
    const std::string file = Written("cut.stl", cut);
    KV_ScenePane::SetDebugOutputSink([](std::string_view) { throw std::length_error("of the host"); });
    EXPECT_THROW((void)viewer->ImportFile(file, {}, &reason), std::length_error);
    EXPECT_EQ(reason, "1 of 2 triangles are in the file");
    EXPECT_EQ(methods().GetNumObjects(), 1);
    EXPECT_THROW((void)viewer->ImportFile(Path("missing.stl"), {}, &reason), std::length_error);
    EXPECT_EQ(reason, kMissing);
    EXPECT_EQ(viewer->LastError(), kMissing);
}

TEST_F(ImportFile, MayEndTheViewerInTheSink) {
    KV_ScenePane::SetDebugOutputSink([this](std::string_view) {
        viewer->Methods().FinalizeKVReg();
        viewer.reset();
    });
    KV_ScenePane::ScenePane& called = *viewer;
    EXPECT_FALSE(called.ImportFile(Path("missing.stl"), {}, &reason));
    EXPECT_EQ(reason, kMissing);
    EXPECT_EQ(viewer, nullptr);
    viewer = NoPictureViewer();  // for the destructor of the fixture
    methods().InitializeKVReg();
}

TEST_F(ImportFile, OfAnotherViewerInTheSinkHasAReasonOfItsOwn) {
    const auto other = NoPictureViewer();
    std::string inner;
    int calls = 0;
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        if (calls++ == 0) (void)other->ImportFile(Path("mesh.obj"), {}, &inner);
    });
    EXPECT_FALSE(viewer->ImportFile(Path("missing.stl"), {}, &reason));
    EXPECT_EQ(reason, kMissing);
    EXPECT_EQ(inner, kUnknown);
    EXPECT_EQ(calls, 2);
}

TEST_F(ImportFile, GivesOneLineForAnyText) {
    const std::string header = "ply\nformat ascii 1.0\nelement vertex 1\x1B[2J\n";
    EXPECT_FALSE(viewer->ImportFile(Written("escape.ply", Text(header)), {}, &reason));
    EXPECT_NE(reason, "");
    EXPECT_EQ(reason.find_first_of("\n\x1B"), std::string::npos) << reason;
}

TEST_F(LastError, IsEmptyBeforeTheFirstFile) { EXPECT_EQ(viewer->LastError(), ""); }

/// A call that fails, by the methods of the host surface.
struct Failing {
    const char* name;
    std::function<void(KV_ScenePane::_DKV_ScenePane& methods, const std::string& folder)> call;
    const char* reason;
};

const Failing kFailing[] = {
    {"Stl", [](auto& m, auto& f) { m.ImportMesh(WidePath(f + "/no.stl").c_str()); }, kMissing},
    {"PlyThatThrows", [](auto& m, auto& f) { m.ImportMesh(WidePath(f + "/no.ply").c_str()); }, kMissing},
    {"Scan", [](auto& m, auto& f) { m.ImportScan(WidePath(f + "/no.pax").c_str(), 0); }, kMissing},
    {"NullPath", [](auto& m, auto&) { m.ImportMesh(nullptr); }, "the path is empty"},
    {"NoMesh", [](auto& m, auto&) { m.ImportMeshedMeasurement(nullptr, L"", 0); }, "there is no mesh"},
    {"NoArray", [](auto& m, auto&) { m.ImportMeshFromMemory(3, 0, nullptr, nullptr); },
     "there is no array of vertices"},
    {"EmptyGrid", [](auto& m, auto&) { m.ImportMeasurementFromMemory(0, 0, nullptr, nullptr, nullptr, 0); },
     "its grid has no pixel"},
    {"StlIntoNoFolder", [](auto& m, auto& f) { m.ExportMesh(0, WidePath(f + "/no/a.stl").c_str()); },
     "cannot open the folder: No such file or directory"},
    {"PlyIntoNoFolder", [](auto& m, auto& f) { m.ExportMesh(0, WidePath(f + "/no/a.ply").c_str()); },
     "cannot open the folder: No such file or directory"},
    {"HpsIntoNoFolder", [](auto& m, auto& f) { m.ExportMesh(0, WidePath(f + "/no/a.hps").c_str()); },
     "cannot be saved: No such file or directory"},
    {"ExportOfNoType", [](auto& m, auto& f) { m.ExportMesh(0, WidePath(f + "/a.obj").c_str()); },
     "unknown file type, not one of stl, ply and hps"},
};

TEST_F(LastError, IsTheReasonOfAMethodThatFailed) {
    ASSERT_TRUE(viewer->ImportFile(OneTriangle(), {}, nullptr));
    for (const Failing& row : kFailing) {
        try {
            row.call(methods(), Path("."));
        } catch (const std::exception&) {  // as some of them always did
        }
        EXPECT_EQ(viewer->LastError(), row.reason) << row.name;
    }
    EXPECT_EQ(methods().GetNumObjects(), 1);
}

TEST_F(LastError, IsEmptyAfterASuccess) {
    const std::string one = OneTriangle();
    const float corners[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::int32_t triangle[] = {0, 1, 2};
    const std::function<void()> calls[] = {
        [&] { methods().ImportMesh(WidePath(one).c_str()); },
        [&] { methods().ExportMesh(0, WidePath(Path("a.stl")).c_str()); },
        [&] { methods().ExportMesh(0, WidePath(Path("a.ply")).c_str()); },
        [&] { methods().ExportMesh(0, WidePath(Path("a.hps")).c_str()); },
        [&] { methods().ImportMeshFromMemory(3, 1, corners, triangle); },
    };
    for (const auto& call : calls) {
        (void)viewer->ImportFile(Path("missing.stl"), {}, nullptr);
        ASSERT_EQ(viewer->LastError(), kMissing);
        call();
        EXPECT_EQ(viewer->LastError(), "");
    }
}

TEST_F(LastError, IsEmptyForAScanThatIsStagedByItsViewer) {
    Grid().WritePcm(Path("grid.pcm"));
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    methods().BeginParallelImport(&control, &entry);
    methods().ImportScan(WidePath(Path("missing.pcm")).c_str(), 0);
    EXPECT_EQ(viewer->LastError(), kMissing);
    methods().ImportScan(WidePath(Path("grid.pcm")).c_str(), 0);
    EXPECT_EQ(viewer->LastError(), "");
    methods().EndParallelImport();
}

TEST_F(LastError, BelongsToOneViewer) {
    const auto other = NoPictureViewer();
    (void)other->ImportFile(Path("missing.stl"), {}, nullptr);
    EXPECT_EQ(other->LastError(), kMissing);
    EXPECT_EQ(viewer->LastError(), "");
}

}  // namespace
