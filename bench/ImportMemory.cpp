// Peak and resident memory of imports: one large scan, its first frame, and a thousand times import and ClearData.
// Prints one line a figure; no benchmark library, since it measures the process and not a time.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "KV_ScenePane/ScenePane.h"
#include "ProcessMemory.h"
#include "ScanFixture.h"

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
    {
        const BenchScan scan = MakeBenchScan(2048, 1536);
        ResetPeak();
        const double before = StatusMiB("VmRSS");
        import(scan);
        std::int32_t vertices = 0, triangles = 0;
        methods.GetMeshDataSize(0, &vertices, &triangles);
        const double mesh = (32.0 * vertices + 12.0 * triangles) / (1 << 20);
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
