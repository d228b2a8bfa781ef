// Any bytes as a ply file of points: refused in one line, or finite points in proportion to the file.
#include <cmath>
#include <functional>
#include <span>
#include <string>

#include "Require.h"
#include "io/ByteInput.h"
#include "io/PlyPoints.h"
#include "io/ReadProgress.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryInput input(std::as_bytes(std::span(data, size)));
    double last = 0;
    const std::function<bool(double)> report = [&last](double part) {
        Require(part > last && part < 1);
        last = part;
        return true;
    };
    ReadProgress progress(report, size);
    try {
        const KV_ScenePane::PointCloud cloud = ReadPlyPoints(input, progress);
        Require(!cloud.xyz.empty() && cloud.xyz.size() % 3 == 0 && cloud.xyz.size() <= size);
        Require(cloud.colors.empty() || cloud.colors.size() == cloud.xyz.size());
        for (const float value : cloud.xyz) Require(std::isfinite(value));
        for (const float color : cloud.colors) Require(color >= 0 && color <= 1);
    } catch (const FileReadError& error) {
        Require(std::string(error.what()).find('\n') == std::string::npos);
    }
    return 0;
}
