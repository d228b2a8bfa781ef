// The files that the arguments of a command line name: files, folders and lists of files.
#pragma once
#include <string>
#include <vector>

#include "SceneReport.h"

struct InputFiles {
    std::vector<std::string> files;     ///< bytes, in the order of the arguments
    std::vector<FailedFile> failed;     ///< folders and lists that name no file
    std::vector<std::string> warnings;  ///< lines
};

/// "@LIST": the argument names a text file of names. A file whose name begins with "@" is "./@NAME".
[[nodiscard]] bool IsFileList(const std::string& argument);

/// The arguments with all files of a folder (FolderFiles.h) in place of the folder, and the lines of a list in place of
/// the list. A line is a file or a folder as it is typed in a command, without a list in it; blank lines count for
/// nothing. A list is a regular file or a pipe.
[[nodiscard]] InputFiles ExpandedFiles(const std::vector<std::string>& arguments);

/// The same, with folders left as they are: the window opens them itself.
[[nodiscard]] InputFiles ExpandedLists(const std::vector<std::string>& arguments);

/// The arguments with the names of lists that come from pipes in place of these lists, which can be read only once.
[[nodiscard]] std::vector<std::string> WithoutPipedLists(const std::vector<std::string>& arguments);
