// Peak and resident memory of imports: stl files of a million triangles, one large scan, its first frame, and import
// and ClearData repeated a thousand times. Prints one line per figure. It does not use the benchmark library, because
// it measures the process and not a time.
#include <malloc.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "ProcessMemory.h"
#include "ScanFixture.h"
#include "StlFixture.h"

namespace {

std::unique_ptr<KV_ScenePane::ScenePane> MakePane() {
    KV_ScenePane::WindowRequest request;
    request.width = 1024;
    request.height = 768;
    std::string reason;
    auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    if (!pane) std::fprintf(stderr, "no viewer: %s\n", reason.c_str());
    return pane;
}

/// Memory of the vertices and triangles of object 0.
double MeshMiB(KV_ScenePane::_DKV_ScenePane& methods, std::int32_t& vertices, std::int32_t& triangles) {
    methods.GetMeshDataSize(0, &vertices, &triangles);
    return (32.0 * vertices + 12.0 * triangles) / (1 << 20);
}

/// Imports one generated file and prints its memory figures.
void StlImport(KV_ScenePane::_DKV_ScenePane& methods, const char* name, StlOrder order) {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("kv-memory-" + std::to_string(getpid()) + ".stl")).string();
    double file = 0;
    {
        const std::vector<std::byte> bytes = MakeBenchStl(1, order);
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file = static_cast<double>(bytes.size()) / (1 << 20);
    }
    malloc_trim(0);  // memory freed earlier would be reused and hide the peak
    ResetPeak();
    const double before = StatusMiB("VmRSS");
    methods.ImportMesh(KV_ScenePane::WidePath(path).c_str());
    const double peak = StatusMiB("VmHWM") - before, after = StatusMiB("VmRSS") - before;
    std::filesystem::remove(path);
    std::int32_t vertices = 0, triangles = 0;
    const double mesh = MeshMiB(methods, vertices, triangles);
    std::printf("%s, file of %.1f MiB: mesh of %d vertices, %d triangles, %.1f MiB\n", name, file, vertices, triangles,
                mesh);
    std::printf("  peak over the start while importing: %.1f MiB (target: %.1f), resident after it: %.1f MiB\n", peak,
                2 * mesh + file, after);
    methods.ClearData();
}

}  // namespace

int main() {
    const auto pane = MakePane();
    if (!pane) return 1;
    auto& methods = pane->Methods();
    const auto import = [&](const BenchScan& scan) {
        methods.ImportMeasurementFromMemory(scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                                            scan.trafo, 0xB0C8D8);
    };
    std::printf("resident with an open viewer and nothing else: %.1f MiB\n", StatusMiB("VmRSS"));
    StlImport(methods, "stl in mesh order", StlOrder::Mesh);
    StlImport(methods, "stl shuffled", StlOrder::Shuffled);
    StlImport(methods, "stl triangle soup", StlOrder::Soup);
    {
        const BenchScan scan = MakeBenchScan(2048, 1536);
        ResetPeak();
        const double before = StatusMiB("VmRSS");
        import(scan);
        std::int32_t vertices = 0, triangles = 0;
        const double mesh = MeshMiB(methods, vertices, triangles);
        std::printf("one 2048 x 1536 scan: mesh of %d vertices, %d triangles, %.1f MiB\n", vertices, triangles, mesh);
        std::printf("  peak over the start while importing: %.1f MiB, resident after it: %.1f MiB\n",
                    StatusMiB("VmHWM") - before, StatusMiB("VmRSS") - before);
        methods.CenterView();
        methods.PerformRefresh();
        std::printf("  peak over the start after the first frame: %.1f MiB, resident: %.1f MiB\n",
                    StatusMiB("VmHWM") - before, StatusMiB("VmRSS") - before);
        methods.ClearData();
        methods.PerformRefresh();
        std::printf("resident after ClearData and a frame: %.1f MiB\n", StatusMiB("VmRSS"));
    }
    const BenchScan small = MakeBenchScan(640, 480);
    for (int i = 1; i <= 1000; ++i) {
        import(small);
        methods.ClearData();
        if (i == 1 || i == 10 || i == 100 || i == 1000)
            std::printf("resident after %4d times import and ClearData of 640 x 480: %.1f MiB\n", i,
                        StatusMiB("VmRSS"));
    }
    return 0;
}
