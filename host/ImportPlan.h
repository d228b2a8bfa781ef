// In which steps a list of files is imported so that the objects end in the order of the files.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

/// Files next to each other in the list that are imported the same way.
struct ImportRun {
    bool parallel = false;           ///< pcm files, on worker threads; else one file, by the viewer itself
    std::vector<std::size_t> files;  ///< positions in the list
};

/// pcm files that follow each other make one parallel run; every other file is a run of its own, since the viewer puts
/// its object into the list at once.
[[nodiscard]] std::vector<ImportRun> PlanImport(const std::vector<std::string>& files);
