// Names of files for objects that are exported, and of their formats.
#pragma once
#include <QString>
#include <QStringList>
#include <string_view>

struct FileType;

[[nodiscard]] QString ToText(std::string_view ascii);

/// Shown by the dialogs of an export, one per type: "PLY meshes (*.ply)".
[[nodiscard]] QString FilterOf(const FileType& type);

/// @p name with @p extension in place of the extension of a known type; other texts after a point belong to the name.
[[nodiscard]] QString WithExtension(const QString& name, std::string_view extension);

/// One name of a file in a folder per object, in their order. No two are equal, also where upper and lower case are the
/// same: later ones get a number. What no file name may hold is replaced.
/// @param names  of the objects; an empty one becomes "object"
[[nodiscard]] QStringList ExportNames(const QStringList& names, std::string_view extension);
