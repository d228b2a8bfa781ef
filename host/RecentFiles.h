// The files and folders that were used last, for File > Open recent and for the file dialogs. Paths are kept as their
// bytes: a name need not be UTF-8.
#pragma once
#include <QString>
#include <string>
#include <vector>

inline constexpr std::size_t kMaxRecentFiles = 10;

/// Paths that were opened last, the newest first: absolute, in bytes, each once, kMaxRecentFiles at most. Entries of
/// the settings that are no such paths are left out.
[[nodiscard]] std::vector<std::string> StoredRecentFiles();
/// Puts the paths at the top, the first one uppermost. Paths without a file are left out, and of many the last ones.
/// @param files  in bytes; relative ones are made absolute
void AddRecentFiles(const std::vector<std::string>& files);
void ClearRecentFiles();

/// The kinds of file dialogs, each of which opens in its last folder.
enum class FolderUse { Open, Export, Picture, Needles, Transforms, Logo };

/// The folder of the last file that a dialog of this kind has returned, or else one of Open; empty, which is the
/// program's current folder, where there is none or it is gone.
[[nodiscard]] QString StoredFolder(FolderUse use);
/// @param file  that the user chose in a dialog; an empty one changes nothing
void StoreFolderOf(FolderUse use, const QString& file);
