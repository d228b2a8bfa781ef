// Names of files for objects that are exported together.
#pragma once
#include <QString>
#include <QStringList>
#include <string_view>

/// @p name with @p extension in place of the extension of a known type; other texts after a point belong to the name.
[[nodiscard]] QString WithExtension(const QString& name, std::string_view extension);

/// One name of a file in a folder per object, in their order. No two are equal, also where upper and lower case are the
/// same: later ones get a number. What no file name may hold is replaced.
/// @param names  of the objects; an empty one becomes "object"
[[nodiscard]] QStringList ExportNames(const QStringList& names, std::string_view extension);
