// The steps in which a list of files is imported so that the objects have the order of the files.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

/// Files next to each other in the list that are imported the same way.
struct ImportRun {
    enum class Kind {
        Viewer,  ///< one file, imported by the viewer on its thread
        Grids,   ///< worker threads read them and pass their grids to the viewer
        Process  ///< worker threads run scenepane-read for them, then the viewer is given what it found
    };
    Kind kind = Kind::Viewer;
    std::vector<std::size_t> files;  ///< positions in the list
};

/// Consecutive files that are read beside the viewer make runs by threads. The viewer adds the objects of a run at its
/// end: the first run of grids has a file for each thread, so that the first objects come soon. Each further one has
/// twice as many: at its end all threads wait for the last one, so there must be few runs. Runs of processes have a
/// file for each thread, as their results wait in memory. Every other file is a run by itself, because the viewer
/// appends its object to the list at once. Looks at the start of ply and stl files (FileLook.h).
/// @param threads  that read files; 0 counts as 1
[[nodiscard]] std::vector<ImportRun> PlanImport(const std::vector<std::string>& files, std::size_t threads);
