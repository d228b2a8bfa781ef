// A look at the start of a file: which of the readers reads it rightly.
#pragma once
#include <string>

/// Who a file is for.
enum class FileLook {
    Viewer,   ///< the viewer reads it, or says why it cannot
    Grid,     ///< a grid that the host reads
    Process,  ///< scenepane-read: another format, or a form of ply or stl that the viewer refuses or misreads
    Points    ///< free points, no mesh
};

/// By the extension, which must be known, and the header of ply and stl files: a binary ply file with coordinates in
/// double precision is shown as nonsense by the viewer, for example. A file that cannot be opened is for the viewer.
[[nodiscard]] FileLook LookAt(const std::string& file);

/// Whether scenepane-read may read what the viewer has refused: it reads polygons and much else, which a header does
/// not always show.
[[nodiscard]] bool HasSecondReader(const std::string& file);
