// The description that is written beside the scans: object, settings and true transforms.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace simulate {

/// One scan that was written.
struct WrittenScan {
    std::string file;  ///< name without folder
    Transform toWorld{};
    std::size_t measured = 0;  ///< number of pixels with a point
};

/// JSON: {"version": 1, "shape", "seed", "format", "unit", "scanner": {...}, "scans": [{"file", "measured",
/// "transform"}]}. A transform is 16 numbers, row-major 4 x 4, sensor to world, millimetres. Each number has enough
/// digits to give the same float when it is read.
[[nodiscard]] std::string DescribeScans(const Options& options, const std::vector<WrittenScan>& scans);

}  // namespace simulate
