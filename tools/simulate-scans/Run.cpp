// Computes one scan after the other, with all threads on the same one, so that only one grid is in memory at a time.
#include "Run.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "CommandLine.h"
#include "Description.h"
#include "RayCaster.h"
#include "ScanFiles.h"
#include "Shapes.h"
#include "options/TerminalText.h"

namespace simulate {
namespace {

/// PREFIX_001.pcm and so on.
std::string FileName(const Options& options, int number) {
    std::string digits = std::to_string(number);
    digits.insert(0, 3 - std::min<std::size_t>(3, digits.size()), '0');
    return options.prefix + "_" + digits + "." + NameOf(options.format);
}

/// Calls @p write for a file. @throws std::runtime_error with the name of the file and the reason of the failure
void WriteNamed(const std::filesystem::path& path, const std::function<void()>& write) {
    try {
        write();
    } catch (const std::exception& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

/// Writes all scans, then the description, then prints the throughput.
void SimulateScans(Options options, std::ostream& output) {
    using Clock = std::chrono::steady_clock;
    ScannerSettings& scanner = options.scanner;
    const TriangleMesh mesh = MakeShape(options.shape);
    scanner.objectRadius = RadiusAroundOrigin(mesh);  // so that the object fills the picture
    const RayCaster object(mesh);
    const int threads =
        options.threads > 0 ? options.threads : static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    std::filesystem::create_directories(options.folder);

    // Only the casting of rays is timed, not the writing of files.
    std::vector<WrittenScan> written;
    std::chrono::duration<double> castTime{};
    for (const Transform& pose : PosesAround(options.scans, scanner.distance)) {
        const auto number = static_cast<int>(written.size()) + 1;
        const auto start = Clock::now();
        ScanGrid grid = MeasureFrom(object, pose, scanner, number, threads);
        castTime += Clock::now() - start;
        written.push_back({FileName(options, number), pose, grid.MeasuredCount()});
        const std::filesystem::path path = options.folder / written.back().file;
        WriteNamed(path, [&] { WriteScan(path, options.format, std::move(grid)); });
        output << ProgramOptions::TerminalText(path.string()) << ": " << written.back().measured << " points"
               << std::endl;
    }
    // Last, so that a description is there only when all its scans are.
    const std::filesystem::path description = options.folder / (options.prefix + ".json");
    WriteNamed(description, [&] { WriteText(description, DescribeScans(options, written)); });
    const double rays = 1e-6 * options.scans * scanner.width * scanner.height;
    output << ProgramOptions::TerminalText(description.string()) << "\n"
           << std::fixed << std::setprecision(1) << rays << " Mray in " << std::setprecision(2) << castTime.count()
           << " s on " << threads << (threads == 1 ? " thread: " : " threads: ") << rays / castTime.count()
           << " Mray/s\n";
}

}  // namespace

int Run(std::span<const std::string_view> arguments, std::ostream& output, std::ostream& errors) {
    try {
        Options options = ParseCommandLine(arguments);
        if (options.help) {
            output << HelpText();
        } else if (options.version) {
            output << "simulate-scans " KV_VERSION "\n";
        } else {
            SimulateScans(std::move(options), output);
        }
        // A full disk or a closed pipe shows at the flush only.
        output.flush();
        if (output) return 0;
        errors << "simulate-scans: standard output cannot be written\n";
        return 1;
    } catch (const UsageError& error) {
        errors << "simulate-scans: " << ProgramOptions::TerminalText(error.what()) << " (see --help)\n";
        return 2;
    } catch (const std::exception& error) {
        errors << "simulate-scans: " << ProgramOptions::TerminalText(error.what()) << "\n";
        return 1;
    }
}

}  // namespace simulate
