// The text beside the measurements: what was scanned, how, and the true transforms.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace simulate {

struct WrittenScan {
    std::string file;  ///< name without folder
    Transform toWorld{};
    std::size_t measured = 0;  ///< pixels
};

/// JSON: {"shape", "seed", "scanner": {...}, "scans": [{"file", "measured", "transform"}]}. A transform is 16 numbers,
/// row-major, sensor to world, millimetres; every number reads back to the very float.
[[nodiscard]] std::string DescribeScans(const Options& options, const std::vector<WrittenScan>& scans);

}  // namespace simulate
