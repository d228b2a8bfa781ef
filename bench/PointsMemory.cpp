// Memory of 10 million free points, in the arrays of the host and in the driver's copy: after the import, and at the
// peak of the first frames. Prints one line per figure. Run it with each driver (scripts/with_driver.sh).
//   points_memory [POINTS [SIZE]]      SIZE: of a point, scene units; the scene is 100 units wide
#include <malloc.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "ProcessMemory.h"

int main(int argc, char** argv) {
    const std::size_t count = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10'000'000;
    const float size = argc > 2 ? std::strtof(argv[2], nullptr) : 0.05f;
    KV_ScenePane::WindowRequest request;
    request.width = 1024;
    request.height = 768;
    std::string reason;
    const auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    if (!pane) {
        std::fprintf(stderr, "no viewer: %s\n", reason.c_str());
        return 1;
    }
    auto& methods = pane->Methods();
    methods.SetPointCloudRenderPointSize(size);
    KV_ScenePane::Picture picture;
    pane->CapturePicture(&picture);
    KV_ScenePane::GraphicsInfo info;
    if (pane->GetGraphicsInfo(&info)) std::printf("%zu points of size %g on %s\n", count, size, info.renderer.c_str());

    malloc_trim(0);
    ResetPeak();
    const double start = StatusMiB("VmRSS");
    const auto print = [&](const char* what) {
        const double perPoint = 1048576.0 / static_cast<double>(count);
        std::printf("%-40s %6.1f bytes per point, peak %6.1f\n", what, (StatusMiB("VmRSS") - start) * perPoint,
                    (StatusMiB("VmHWM") - start) * perPoint);
    };
    {
        std::vector<float> xyz(3 * count), colors(3 * count);
        std::mt19937 random(1);
        std::uniform_real_distribution<float> coordinate(-50, 50), channel(0, 1);
        for (float& value : xyz) value = coordinate(random);
        for (float& value : colors) value = channel(random);
        print("arrays of the host");
        methods.ImportPoints(static_cast<std::int32_t>(count), xyz.data(), colors.data(), 1.0f);
        print("with the driver's copy");
    }
    malloc_trim(0);
    ResetPeak();
    print("without the arrays");
    methods.CenterView();
    for (int i = 1; i <= 3; ++i) {
        pane->CapturePicture(&picture);
        print(("after frame " + std::to_string(i)).c_str());
    }
    malloc_trim(0);
    print("after a trim");
}
