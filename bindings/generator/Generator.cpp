// The command line of generate-bindings, and which files it makes.
#include "Generator.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>

#include "WriteIds.h"
#include "WritePython.h"
#include "WriteReference.h"

namespace bindings {
namespace {

constexpr std::string_view kUsage =
    "usage: generate-bindings --source ROOT [--write] [--check] [--python FOLDER]\n"
    "\n"
    "Makes what follows from the automation table and the docstrings of the public headers.\n"
    "  --source ROOT    root of the source tree\n"
    "  --write          writes the files that are checked in\n"
    "  --check          exits with 1 when one of them is not current\n"
    "  --python FOLDER  writes the generated files of the Python package into FOLDER\n";

struct Options {
    std::filesystem::path source, python;
    bool write = false, check = false, help = false;
};

/// Nothing for a wrong command line.
std::optional<Options> ParseCommandLine(std::span<const std::string_view> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view option = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (option == "--write")
            options.write = true;
        else if (option == "--check")
            options.check = true;
        else if (option == "--help")
            options.help = true;
        else if (option == "--source" && hasValue)
            options.source = arguments[++i];
        else if (option == "--python" && hasValue)
            options.python = arguments[++i];
        else
            return std::nullopt;
    }
    const bool doesSomething = options.write || options.check || !options.python.empty();
    if (!options.help && (options.source.empty() || !doesSomething)) return std::nullopt;
    return options;
}

// A file that is current is left alone, so that nothing that depends on it is built again.
void WriteFile(const std::filesystem::path& file, const std::string& text, std::ostream& output) {
    if (FileText(file) == text) return;
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) throw SourceError(file.string() + ": cannot be written");
    output << "wrote " << file.string() << "\n";
}

/// Number of checked-in files that are not current.
int CheckFiles(const Surface& surface, const std::filesystem::path& root, std::ostream& errors) {
    int failures = 0;
    for (const CheckedInFile& file : CheckedInFiles()) {
        if (FileText(root / file.path) == file.text(surface)) continue;
        errors << file.path << ": not current; run generate-bindings --source . --write\n";
        ++failures;
    }
    return failures;
}

int Generate(const Options& options, std::ostream& output, std::ostream& errors) {
    const Surface surface = JoinSurface(ReadHeaders(options.source));
    if (options.write)
        for (const CheckedInFile& file : CheckedInFiles())
            WriteFile(options.source / file.path, file.text(surface), output);
    if (!options.python.empty()) {
        std::filesystem::create_directories(options.python);
        for (const auto& [name, text] : PythonFiles(surface)) WriteFile(options.python / name, text, output);
    }
    return options.check && CheckFiles(surface, options.source, errors) > 0 ? 1 : 0;
}

}  // namespace

std::span<const CheckedInFile> CheckedInFiles() {
    static const std::array<CheckedInFile, 2> files{
        {{"include/KV_ScenePane/kv_scenepane_ids.h", IdsHeader}, {"docs/automation.md", ReferenceText}}};
    return files;
}

int Run(std::span<const std::string_view> arguments, std::ostream& output, std::ostream& errors) {
    const std::optional<Options> options = ParseCommandLine(arguments);
    if (!options) {
        errors << kUsage;
        return 2;
    }
    if (options->help) {
        output << kUsage;
        return 0;
    }
    try {
        return Generate(*options, output, errors);
    } catch (const std::exception& error) {
        errors << error.what() << "\n";
        return 1;
    }
}

}  // namespace bindings
