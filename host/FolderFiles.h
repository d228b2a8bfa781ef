// The files that opening a folder opens.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

/// Far more than a scene holds; a folder such as a home folder must not keep the window busy.
struct FolderLimits {
    std::size_t files = 2000;     ///< that are returned
    std::size_t entries = 50000;  ///< that are looked at
    int depth = 16;               ///< of folders below the first one
};

/// A folder whose files are not known.
struct UnreadFolder {
    std::string path;    ///< in bytes
    std::string reason;  ///< kUnreadFolder with that of the system
};

struct FolderFiles {
    /// In bytes, in natural order of their paths: the files of a folder before those of its folders.
    std::vector<std::string> files;
    /// In the order of the walk.
    std::vector<UnreadFolder> unread;
    /// There may be more: the limit of files or entries was reached. Which ones are left out is not defined.
    bool isCut = false;
};

/// The files of types that the window opens in a folder and those below it. Each folder is visited once, also where
/// links lead back to it. Left out are names that begin with a dot, and txt and csv files, most of which are not
/// points.
/// @param folder  path in bytes
[[nodiscard]] FolderFiles FilesInFolder(const std::string& folder, const FolderLimits& limits = {});
