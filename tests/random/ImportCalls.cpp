// Random imports and exports: arrays, grids, files that are right, wrong or missing, and imports on several threads.
#include <array>
#include <cmath>
#include <fstream>
#include <thread>

#include "KV_ScenePane/PathText.h"
#include "io/ScanSample.h"
#include "random/RandomRun.h"

namespace {

using Triangles = std::vector<std::array<std::int32_t, 3>>;

constexpr std::size_t kMostObjects = 14;
constexpr int kScanWidth = 6, kScanHeight = 5;
constexpr const char* kScans[] = {"a.pcm", "B.PCM", "c.pax", "d.xdt"};

bool IsFull(const RandomRun& run) { return run.model.objects.size() + run.model.staged.size() >= kMostObjects; }

/// One grid of the host at most, whose place is then known: all of them have the index -1.
bool HasStagedGrid(const Model& model) {
    return std::ranges::any_of(model.staged, [](const auto& staged) { return staged.first == -1; });
}

/// Appends an object, or stages it.
void AddObject(Model& model, ObjectPtr object, std::int32_t index = -1) {
    if (model.importing)
        model.staged.emplace_back(index, std::move(object));
    else
        model.objects.push_back(std::move(object));
}

std::vector<float> SomeVertices(RandomRun& run, std::int32_t count) {
    std::vector<float> numbers(3 * static_cast<std::size_t>(count));
    for (float& number : numbers)
        number = run.random.Chance(0.998) ? run.random.Float(-60, 60) : run.random.WildFloat();
    return numbers;
}

Triangles SomeTriangles(RandomRun& run, std::int32_t vertexCount, std::int32_t count) {
    Triangles triangles(static_cast<std::size_t>(vertexCount == 0 ? 0 : count));
    for (auto& triangle : triangles)
        for (std::int32_t& corner : triangle) corner = run.random.Int(0, vertexCount - 1);
    return triangles;
}

ObjectPtr MakeObject(const std::vector<float>& numbers, Triangles triangles, std::wstring name = {}) {
    auto object = std::make_shared<ModelObject>();
    std::vector<Point> points(numbers.size() / 3);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]};
    object->TakePoints(std::move(points), std::move(triangles));
    object->pointsExact = object->pointsKnown;
    object->name = std::move(name);
    return object;
}

void ImportMeshFromMemory(RandomRun& run) {
    if (IsFull(run)) return;
    const std::int32_t vertexCount = run.random.Chance(0.05) ? 0 : run.random.Int(3, 12);
    std::vector<float> numbers = SomeVertices(run, vertexCount);
    Triangles triangles = SomeTriangles(run, vertexCount, run.random.Int(0, 12));
    const auto triangleCount = static_cast<std::int32_t>(triangles.size());
    run.model.objects.push_back(MakeObject(numbers, triangles));
    run.Call("ImportMeshFromMemory",
             {vertexCount, triangleCount, static_cast<void*>(numbers.data()), static_cast<void*>(triangles.data())});
    run.AdoptObject(run.model.objects.size() - 1);
}

void ImportMeshedMeasurement(RandomRun& run) {
    if (IsFull(run) || (run.model.importing && HasStagedGrid(run.model))) return;
    KV_ScenePane::MeshBuffers buffers(run.random.Chance(0.5));
    const std::int32_t vertexCount = run.random.Int(0, 9);
    const std::vector<float> numbers = SomeVertices(run, vertexCount);
    Triangles triangles = SomeTriangles(run, vertexCount, run.random.Int(0, 9));
    for (std::size_t i = 0; i < numbers.size(); i += 3)
        buffers.m_vVertices.push_back({numbers[i], numbers[i + 1], numbers[i + 2], 0, 0, 1, 0xFF102030u});
    for (const auto& triangle : triangles) buffers.m_vTriangles.push_back({{triangle[0], triangle[1], triangle[2]}});
    const bool hasName = run.random.Chance(0.7);
    const std::wstring name = run.random.Chance(0.2) ? L"mesh.pcm" : L"mesh";
    const std::int32_t color = run.random.WildInt();
    ObjectPtr object = MakeObject(numbers, std::move(triangles), hasName ? name : L"");
    object->color = ColorAfterStore(static_cast<std::uint32_t>(color));
    AddObject(run.model, std::move(object));
    run.Call("ImportMeshedMeasurement", {static_cast<void*>(&buffers), hasName ? name.c_str() : nullptr, color});
    if (!run.model.importing) run.AdoptObject(run.model.objects.size() - 1);
}

/// An object from a grid whose pixels are all valid: a flat one, in scene units.
ObjectPtr MakeGridObject(int width, int height, std::wstring name, std::int32_t color, double spacing = 1) {
    auto object = std::make_shared<ModelObject>();
    object->vertexCount = width * height;
    object->triangleCount = 2 * (width - 1) * (height - 1);
    object->name = std::move(name);
    object->color = ColorAfterStore(static_cast<std::uint32_t>(color));
    ModelObject corners;  // the order of the vertices is not known, the box is
    corners.TakePoints({{0, 0, 0}, {spacing * (width - 1), spacing * (height - 1), 0}}, {});
    object->boxKnown = true;
    object->box = corners.box;
    return object;
}

/// A new object of which nothing is known but that it may be there.
void AdoptNewObject(RandomRun& run, const std::wstring& name) {
    const auto count = std::get<std::int16_t>(run.Ask("GetNumObjects", {}));
    const std::int16_t before = run.model.ObjectCount();
    run.Require(count == before || count == before + 1, "an import has changed the number of objects otherwise");
    if (count == before) return;
    auto object = std::make_shared<ModelObject>();
    object->vertexCount = -1;
    object->name = name;
    object->transform.known = false;
    run.model.objects.push_back(std::move(object));
    run.AdoptObject(run.model.objects.size() - 1);
    run.model.objects.back()->color =
        static_cast<std::uint32_t>(std::get<std::int32_t>(run.Ask("GetObjectColor", {before})));
}

bool AllPixelsCount(const Model& model) { return model.skip == 1 && !(model.confidence > 1.0f); }

void ImportMeasurementFromMemory(RandomRun& run) {
    Random& random = run.random;
    Model& model = run.model;
    if (IsFull(run)) return;
    const bool wildSize = random.Chance(0.1);
    const std::int32_t width = wildSize ? random.OneOf<std::int32_t>({0, -1, INT32_MIN}) : random.Int(2, 5);
    const std::int32_t height = random.Int(2, 5);
    const bool plain = !wildSize && AllPixelsCount(model) && random.Chance(0.8);
    if (model.importing && (!plain || HasStagedGrid(model))) return;
    ScanSample scan(std::max(width, 0), height, 1.0f);
    if (!plain)
        for (float& number : scan.points) number = random.Chance(0.9) ? number : random.WildFloat();
    const std::int32_t color = random.WildInt();
    std::vector<AutomationValue> arguments{width,
                                           height,
                                           static_cast<void*>(scan.points.data()),
                                           static_cast<void*>(scan.confidence.data()),
                                           static_cast<void*>(scan.trafo.data()),
                                           color};
    if (plain) AddObject(model, MakeGridObject(width, height, model.scanPath, color));
    run.Call("ImportMeasurementFromMemory", std::move(arguments));
    if (!plain) return AdoptNewObject(run, model.scanPath);
    if (!model.importing) run.AdoptObject(model.objects.size() - 1);
}

void ImportScan(RandomRun& run) {
    Model& model = run.model;
    if (IsFull(run)) return;
    const bool isThere = run.random.Chance(0.7);
    std::string file = isThere ? kScans[run.random.Index(std::size(kScans))]
                               : run.random.OneOf<const char*>({"missing.pcm", "missing.pax", "garbage.pcm", "a.png",
                                                                "garbage.xdt", "no extension"});
    const bool plain = isThere && AllPixelsCount(model);
    if (model.importing && (!plain || HasStagedGrid(model))) return;
    const std::string path = (run.folder / file).string();
    if (isThere && file.ends_with("m"))
        std::filesystem::copy_file(run.folder / "whole.pcm_", path, std::filesystem::copy_options::overwrite_existing);
    if (isThere && file.ends_with("M"))
        std::filesystem::copy_file(run.folder / "whole.pcm_", path, std::filesystem::copy_options::overwrite_existing);
    const std::wstring wide = KV_ScenePane::WidePath(path);
    const std::int32_t color = run.random.WildInt();
    model.scanPath = wide;
    if (plain) AddObject(model, MakeGridObject(kScanWidth, kScanHeight, wide, color, file == "c.pax" ? 1000 : 1));
    run.Call("ImportScan", {wide.c_str(), color});
    if (!plain) return AdoptNewObject(run, wide);
    if (!model.importing) run.AdoptObject(model.objects.size() - 1);
}

// ---- on threads of the host

void BeginParallelImport(RandomRun& run) {
    void* control = nullptr;
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    run.Call("BeginParallelImport", {static_cast<void*>(&control), static_cast<void*>(&entry)});
    run.Require(control != nullptr && entry != nullptr, "no entry");
    run.model.importing = true;
    if (!AllPixelsCount(run.model)) return;
    const std::int32_t count = run.random.Int(0, 3), first = run.random.Int(0, 1'000'000);
    const ScanSample scan(4, 3, 1000.0f);
    const std::uint32_t color = 0x80FF;
    std::vector<std::thread> threads;
    for (std::int32_t i = 0; i < count; ++i) {
        // Neighbours only by chance: nothing else has the same index in one import.
        const std::int32_t index = first + (count - i) * 10;
        const auto hasIndex = [index](const auto& staged) { return staged.first == index; };
        if (IsFull(run) || std::ranges::any_of(run.model.staged, hasIndex)) continue;
        AddObject(run.model, MakeGridObject(4, 3, L"thread.pcm", static_cast<std::int32_t>(color)), index);
        threads.emplace_back([=, &scan] {
            entry(control, L"thread.pcm", 4, 3, scan.points.data(), scan.confidence.data(), scan.trafo.data(),
                  scan.classification.data(), nullptr, color, index);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

void EndParallelImport(RandomRun& run) {
    Model& model = run.model;
    std::ranges::sort(model.staged, {}, [](const auto& staged) { return staged.first; });
    const std::size_t first = model.objects.size();
    for (auto& [index, object] : model.staged) model.objects.push_back(std::move(object));
    model.staged.clear();
    model.importing = false;
    run.Call("EndParallelImport", {});
    for (std::size_t i = first; i < model.objects.size(); ++i) run.AdoptObject(i);
}

// ---- mesh files

void ImportMesh(RandomRun& run) {
    if (IsFull(run)) return;
    const std::string file = run.random.OneOf<const char*>(
        {"tetrahedron.ply", "tetrahedron.stl", "e1.ply", "e2.ply", "garbage.ply", "missing.ply", "garbage.stl",
         "missing.stl", "a.png", "e1.stl", "e1.hps", "garbage.hps", "", "garbage.ois", "garbage.msh"});
    const std::wstring wide = file.empty() ? L"" : KV_ScenePane::WidePath((run.folder / file).string());
    const bool isGood = file.starts_with("tetrahedron") || run.exports.contains(wide);
    Expected expected;
    if (file == "garbage.ply" || file == "missing.ply") expected.failure = Expected::Always;
    if (file.ends_with("hps") || (!isGood && file.ends_with("ply"))) expected.failure = Expected::Maybe;
    if (isGood) expected.failure = Expected::Never;
    run.Call("ImportMesh", {file.empty() ? nullptr : wide.c_str()}, expected);
    const std::size_t before = run.model.objects.size();
    AdoptNewObject(run, wide);
    const bool isBad = file.starts_with("garbage") || file.starts_with("missing") || file == "a.png" || file.empty();
    if (isBad) run.Require(run.model.objects.size() == before, "an object from no file");
    if (!isGood) return;
    run.Require(!run.model.objects.empty() && run.model.objects.back()->name == wide, "nothing was added");
    const auto [vertices, triangles] = file.starts_with("tetrahedron") ? std::pair{4, 4} : run.exports.at(wide);
    const ModelObject& object = *run.model.objects.back();
    run.Require(object.vertexCount == vertices && object.triangleCount == triangles, "another number of vertices");
}

void ExportMesh(RandomRun& run) {
    const auto index = run.SomeObject();
    if (!index) return;
    const std::string file =
        run.random.OneOf<const char*>({"e1.ply", "e2.ply", "e1.stl", "e1.hps", "e1.txt", "no/such/folder.ply"});
    const std::wstring wide = KV_ScenePane::WidePath((run.folder / file).string());
    const ModelObject& object = *run.model.ObjectAt(*index);
    run.exports.erase(wide);
    const bool countsAreKept =
        file.starts_with("e") && file.ends_with("ply") && object.pointsKnown && object.triangleCount > 0;
    run.Call("ExportMesh", {*index, wide.c_str()},
             {.failure = file.ends_with("hps") ? Expected::Maybe : Expected::Never});
    if (countsAreKept) run.exports[wide] = {object.vertexCount, object.triangleCount};
}

constexpr CallRow kRows[] = {{"ImportMeshFromMemory", 6, ImportMeshFromMemory},
                             {"ImportMeshedMeasurement", 1, ImportMeshedMeasurement},
                             {"ImportMeasurementFromMemory", 1.5, ImportMeasurementFromMemory},
                             {"ImportScan", 1.5, ImportScan},
                             {"BeginParallelImport", 0.3, BeginParallelImport},
                             {"EndParallelImport", 0.5, EndParallelImport},
                             {"ImportMesh", 1, ImportMesh},
                             {"ExportMesh", 1, ExportMesh}};

void WriteText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

std::span<const CallRow> ImportCalls() { return kRows; }

void PrepareFiles(const std::filesystem::path& folder) {
    WriteText(folder / "tetrahedron.ply",
              "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\nproperty float z\n"
              "element face 4\nproperty list uchar int vertex_indices\nend_header\n"
              "0 0 0\n30 0 0\n0 30 0\n0 0 30\n3 0 2 1\n3 0 1 3\n3 0 3 2\n3 1 2 3\n");
    const float corners[4][3] = {{0, 0, 0}, {30, 0, 0}, {0, 30, 0}, {0, 0, 30}};
    const int faces[4][3] = {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};
    ScanBytes stl(80);  // the header
    const std::uint32_t faceCount = 4;
    AppendNumbers(stl, &faceCount, 1);
    for (const auto& face : faces) {
        const float normal[3] = {};
        const std::uint16_t attributes = 0;
        AppendNumbers(stl, normal, 3);
        for (const int corner : face) AppendNumbers(stl, corners[corner], 3);
        AppendNumbers(stl, &attributes, 1);
    }
    WriteBytes((folder / "tetrahedron.stl").string(), stl);
    for (const char* name : {"garbage.ply", "garbage.stl", "garbage.hps", "garbage.ois", "garbage.msh", "garbage.pcm"})
        WriteText(folder / name, "this is no such file");
    WriteText(folder / "garbage.xdt", std::string("\x05\x00\x05", 3));
    const ScanSample scan(kScanWidth, kScanHeight, 1000.0f);
    for (const char* name : {"a.pcm", "c.pax", "d.xdt"}) scan.Write((folder / name).string());
    std::filesystem::copy_file(folder / "a.pcm", folder / "whole.pcm_");
}
