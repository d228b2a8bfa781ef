// Any bytes as a pcd file: refused in one line, or finite points in proportion to the file, which are read as the same
// points after they were written as binary pcd.
#include <cmath>
#include <cstring>
#include <functional>
#include <span>
#include <string>

#include "Require.h"
#include "io/ByteInput.h"
#include "io/LzfInput.h"
#include "io/PcdFile.h"
#include "io/ReadProgress.h"

namespace {

using KV_ScenePane::PointCloud;

PointCloud Read(std::span<const std::byte> bytes) {
    MemoryInput input(bytes);
    double last = 0;
    const std::function<bool(double)> report = [&last](double part) {
        Require(part > last && part < 1);
        last = part;
        return true;
    };
    ReadProgress progress(report, bytes.size());
    return ReadPcd(input, progress);
}

void RequireSameAfterWriting(const PointCloud& cloud) {
    const std::size_t points = cloud.xyz.size() / 3;
    std::string bytes =
        "FIELDS x y z rgb\nSIZE 4 4 4 4\nTYPE F F F U\nPOINTS " + std::to_string(points) + "\nDATA binary\n";
    for (std::size_t i = 0; i < cloud.xyz.size(); i += 3) {
        std::uint32_t packed = 0;
        for (std::size_t k = i; !cloud.colors.empty() && k < i + 3; ++k)
            packed = packed << 8 | static_cast<std::uint32_t>(std::lround(cloud.colors[k] * 255));
        bytes.append(reinterpret_cast<const char*>(&cloud.xyz[i]), 12);
        bytes.append(reinterpret_cast<const char*>(&packed), 4);
    }
    const PointCloud back = Read(std::as_bytes(std::span(bytes)));
    Require(back.xyz == cloud.xyz && (cloud.colors.empty() || back.colors == cloud.colors));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const PointCloud cloud = Read(std::as_bytes(std::span(data, size)));
        Require(!cloud.xyz.empty() && cloud.xyz.size() % 3 == 0);
        Require(cloud.colors.empty() || cloud.colors.size() == cloud.xyz.size());
        Require(cloud.xyz.size() <= LzfInput::LargestSize(size));  // a coordinate has a byte at least
        for (const float value : cloud.xyz) Require(std::isfinite(value));
        for (const float color : cloud.colors) Require(color >= 0 && color <= 1);
        RequireSameAfterWriting(cloud);
    } catch (const FileReadError& error) {
        Require(std::string(error.what()).find('\n') == std::string::npos);
    }
    return 0;
}
