// Writes the JSON text directly: it is too short to need a library.
#include "Description.h"

#include <cstdint>

#include "NumberText.h"

namespace simulate {
namespace {

/// One element of "scans".
std::string DescribeScan(const WrittenScan& scan) {
    std::string text = R"(    {"file": ")" + scan.file + R"(", "measured": )" +
                       NumberText(std::uint64_t{scan.measured}) + R"(, "transform": [)";
    for (std::size_t i = 0; i < scan.toWorld.size(); ++i) text += (i == 0 ? "" : ", ") + NumberText(scan.toWorld[i]);
    return text + "]}";
}

}  // namespace

// No name needs escaping in JSON: ParseCommandLine() refuses such characters.
std::string DescribeScans(const Options& options, const std::vector<WrittenScan>& scans) {
    const ScannerSettings& scanner = options.scanner;
    std::string text = "{\n";
    text += "  \"version\": 1,\n";  // of "scans", which the viewer's host reads: docs/formats/transforms.md
    text += R"(  "shape": ")" + options.shape + "\",\n";
    text += R"(  "seed": )" + NumberText(scanner.seed) + ",\n";
    text += R"(  "format": ")" + std::string(NameOf(options.format)) + "\",\n";
    text += R"(  "unit": "millimetre",)"
            "\n";
    text += R"(  "scanner": {"width": )" + NumberText(scanner.width) + R"(, "height": )" + NumberText(scanner.height) +
            R"(, "rays": ")" + (scanner.parallel ? "parallel" : "pinhole") + R"(", "distance": )" +
            NumberText(scanner.distance) + R"(, "noise": )" + NumberText(scanner.noise) + R"(, "dropout": )" +
            NumberText(scanner.dropout) + R"(, "maxAngle": )" + NumberText(scanner.maxIncidenceDeg) +
            R"(, "colors": )" + (scanner.colors ? "true" : "false") + "},\n";
    // One line per scan.
    text += "  \"scans\": [\n";
    for (std::size_t i = 0; i < scans.size(); ++i)
        text += DescribeScan(scans[i]) + (i + 1 < scans.size() ? ",\n" : "\n");
    return text + "  ]\n}\n";
}

}  // namespace simulate
