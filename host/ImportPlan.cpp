// Cuts the list of files into runs.
#include "ImportPlan.h"

#include <algorithm>

#include "FileTypes.h"

std::vector<ImportRun> PlanImport(const std::vector<std::string>& files, std::size_t threads) {
    std::vector<ImportRun> runs;
    std::size_t limit = std::max<std::size_t>(threads, 1);  // of the current parallel run
    for (std::size_t i = 0; i < files.size(); ++i) {
        const FileType* const type = FindFileType(files[i]);
        const bool parallel = type != nullptr && type->readByHost;
        const bool isFull = parallel && !runs.empty() && runs.back().parallel && runs.back().files.size() == limit;
        if (isFull) limit *= 2;
        // Only consecutive parallel files share a run.
        if (!parallel || isFull || runs.empty() || !runs.back().parallel) runs.push_back({parallel, {}});
        runs.back().files.push_back(i);
    }
    return runs;
}
