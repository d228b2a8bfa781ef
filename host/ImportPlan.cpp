// Cuts the list of files into runs.
#include "ImportPlan.h"

#include <algorithm>

#include "FileLook.h"

namespace {

ImportRun::Kind KindOf(const std::string& file) {
    switch (LookAt(file)) {
        case FileLook::Grid:
            return ImportRun::Kind::Grids;
        case FileLook::Process:
            return ImportRun::Kind::Process;
        case FileLook::Viewer:
        case FileLook::Points:
            break;
    }
    return ImportRun::Kind::Viewer;
}

}  // namespace

std::vector<ImportRun> PlanImport(const std::vector<std::string>& files, std::size_t threads) {
    using Kind = ImportRun::Kind;
    std::vector<ImportRun> runs;
    const std::size_t first = std::max<std::size_t>(threads, 1);
    std::size_t gridLimit = first;  // of the current run of grids
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Kind kind = KindOf(files[i]);
        const std::size_t limit = kind == Kind::Grids ? gridLimit : first;
        const bool isSame = kind != Kind::Viewer && !runs.empty() && runs.back().kind == kind;
        const bool isFull = isSame && runs.back().files.size() == limit;
        if (isFull && kind == Kind::Grids) gridLimit *= 2;
        if (!isSame || isFull) runs.push_back({kind, {}});
        runs.back().files.push_back(i);
    }
    return runs;
}
