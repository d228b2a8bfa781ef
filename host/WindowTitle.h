// The title of the window.
#pragma once
#include <QString>
#include <string>
#include <vector>

/// "scan.pcm[*] - scenepane", where Qt replaces [*] by the mark of unsaved changes; "scan.pcm and 2 more" for several
/// files, and the program's name alone without one.
/// @param files  paths in bytes, in the order in which they are named; a file that is there twice counts once
[[nodiscard]] QString WindowTitle(const std::vector<std::string>& files);
