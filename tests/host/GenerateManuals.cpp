// generate-manuals: writes the man pages and the completions for bash of both programs into docs/, or checks that those
// there are current. It is not installed.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "CommandLine.h"
#include "simulate-scans/CommandLine.h"

namespace {

struct Manual {
    const char* path;  ///< below docs/
    std::string (*text)();
};

constexpr Manual kManuals[] = {{"scenepane.1", ManPage},
                               {"completions/scenepane", BashCompletion},
                               {"simulate-scans.1", simulate::ManPage},
                               {"completions/simulate-scans", simulate::BashCompletion}};

std::string ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// @return whether the file is current afterwards
bool Handle(const Manual& manual, const std::filesystem::path& docs, bool writes) {
    const std::filesystem::path path = docs / manual.path;
    const std::string text = manual.text();
    if (ContentOf(path) == text) return true;
    if (!writes) {
        std::fprintf(stderr, "docs/%s: not current; run generate-manuals --write docs\n", manual.path);
        return false;
    }
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) std::fprintf(stderr, "%s: cannot be written\n", path.c_str());
    return !file.fail();
}

int Run(const std::string& mode, const std::filesystem::path& docs) {
    if (mode != "--write" && mode != "--check") return 2;
    bool isCurrent = true;
    for (const Manual& manual : kManuals) isCurrent = Handle(manual, docs, mode == "--write") && isCurrent;
    return isCurrent ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int status = argc == 3 ? Run(argv[1], argv[2]) : 2;
        if (status == 2) std::fputs("usage: generate-manuals --write|--check DOCS\n", stderr);
        return status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "generate-manuals: %s\n", error.what());
        return 1;
    }
}
