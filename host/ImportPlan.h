// The steps in which a list of files is imported so that the objects have the order of the files.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

/// Files next to each other in the list that are imported the same way.
struct ImportRun {
    bool parallel = false;           ///< files that worker threads read; else one file, imported by the viewer itself
    std::vector<std::size_t> files;  ///< positions in the list
};

/// Consecutive files that the host reads itself (FileType::readByHost) make parallel runs. The viewer adds their
/// objects at the end of a run: the first one has a file for each thread, so that the first objects come soon. Each
/// further one has twice as many: at its end all threads wait for the last one, so there must be few runs. Every other
/// file is a run by itself, because the viewer appends its object to the list at once.
/// @param threads  that read files; 0 counts as 1
[[nodiscard]] std::vector<ImportRun> PlanImport(const std::vector<std::string>& files, std::size_t threads);
