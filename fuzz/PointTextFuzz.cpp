// Any bytes as a text of points: refused in one line, or finite points in proportion to the file, which are read as the
// same points after they were written as text.
#include <charconv>
#include <cmath>
#include <span>
#include <string>

#include "Require.h"
#include "io/ByteInput.h"
#include "io/PointText.h"
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
    return ReadPointText(input, progress);
}

void Append(std::string& text, float value, char after) {
    char digits[64];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    text += after;
}

void RequireSameAfterWriting(const PointCloud& cloud) {
    std::string text;
    const bool hasColors = !cloud.colors.empty();
    for (std::size_t i = 0; i < cloud.xyz.size(); i += 3) {
        for (std::size_t k = i; k < i + 3; ++k) Append(text, cloud.xyz[k], k == i + 2 && !hasColors ? '\n' : ' ');
        for (std::size_t k = i; hasColors && k < i + 3; ++k) Append(text, cloud.colors[k], k == i + 2 ? '\n' : ' ');
    }
    const PointCloud back = Read(std::as_bytes(std::span(text)));
    Require(back.xyz == cloud.xyz && back.colors == cloud.colors);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const PointCloud cloud = Read(std::as_bytes(std::span(data, size)));
        Require(!cloud.xyz.empty() && cloud.xyz.size() % 3 == 0 && cloud.xyz.capacity() <= (size + 1) / 2);
        Require(cloud.colors.empty() || cloud.colors.size() == cloud.xyz.size());
        for (const float value : cloud.xyz) Require(std::isfinite(value));
        for (const float color : cloud.colors) Require(color >= 0 && color <= 1);
        RequireSameAfterWriting(cloud);
    } catch (const FileReadError& error) {
        Require(std::string(error.what()).find('\n') == std::string::npos);
    }
    return 0;
}
