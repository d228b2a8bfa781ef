// Cuts the list of files into runs.
#include "ImportPlan.h"

#include "FileTypes.h"

std::vector<ImportRun> PlanImport(const std::vector<std::string>& files) {
    std::vector<ImportRun> runs;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const FileType* const type = FindFileType(files[i]);
        const bool parallel = type != nullptr && type->readByHost;
        // Only consecutive parallel files share a run.
        if (!parallel || runs.empty() || !runs.back().parallel) runs.push_back({parallel, {}});
        runs.back().files.push_back(i);
    }
    return runs;
}
