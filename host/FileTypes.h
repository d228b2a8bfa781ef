// The file types that the host opens and writes: one table for the command line, the dialogs and the imports.
#pragma once
#include <string>
#include <string_view>

enum class FileKind {
    Scan,   ///< a measured grid: imported with skip value, confidence limit and colour
    Mesh,   ///< imported as it is
    Points  ///< free points, which are no object of the scene
};

/// One row of the table. A new format needs a row here and nothing else in the host.
struct FileType {
    /// Lower case, without the dot.
    std::string_view extension;
    /// Of several files, in English: "PLY meshes".
    const char* description;
    FileKind kind;
    /// The viewer opens it and adds an object. False for points: the host reads their files.
    bool canImport;
    /// The viewer writes it.
    bool canExport;
    /// The host reads the file itself and passes the grid to the entry of a parallel import, so that several files can
    /// be read at once. The viewer reads all other files.
    bool readByHost;
};

inline constexpr FileType kFileTypes[] = {
    {"pcm", "PCM scans", FileKind::Scan, true, false, true},
    {"pax", "PAX scans", FileKind::Scan, true, false, false},
    {"xdt", "XDT scans", FileKind::Scan, true, false, false},
    {"ply", "PLY meshes", FileKind::Mesh, true, true, false},
    {"stl", "STL meshes", FileKind::Mesh, true, true, false},
    {"hps", "HPS meshes", FileKind::Mesh, true, true, false},
    {"ois", "OIS meshes", FileKind::Mesh, true, false, false},
    {"msh", "MSH meshes", FileKind::Mesh, true, false, false},
    {"xyz", "XYZ points", FileKind::Points, false, false, false},
    {"xyzrgb", "XYZRGB points", FileKind::Points, false, false, false},
    {"txt", "text files of points", FileKind::Points, false, false, false},
    {"asc", "ASC points", FileKind::Points, false, false, false},
    {"csv", "CSV points", FileKind::Points, false, false, false},
    {"pcd", "PCD points", FileKind::Points, false, false, false},
};

// Selections of rows for the lists below.
[[nodiscard]] constexpr bool IsImported(const FileType& type) { return type.canImport; }
[[nodiscard]] constexpr bool IsImportedScan(const FileType& type) {
    return type.canImport && type.kind == FileKind::Scan;
}
[[nodiscard]] constexpr bool IsImportedMesh(const FileType& type) {
    return type.canImport && type.kind == FileKind::Mesh;
}
[[nodiscard]] constexpr bool IsPoints(const FileType& type) { return type.kind == FileKind::Points; }
[[nodiscard]] constexpr bool IsExported(const FileType& type) { return type.canExport; }

/// The text after the last dot of the path in lower case, or the whole path without a dot: the viewer's own rule.
/// Only ASCII letters are folded, whatever the locale.
[[nodiscard]] std::string ExtensionOf(std::string_view path);

/// The row of a file by its extension; null for an unknown one.
[[nodiscard]] const FileType* FindFileType(std::string_view path);

/// The extensions of a selection as part of a sentence: "ply, stl and hps".
/// @param conjunction  before the last one: "and", "or"
[[nodiscard]] std::string ExtensionList(bool (*isSelected)(const FileType&), std::string_view conjunction);

/// The extensions of a selection as a file dialog expects them: "*.ply *.stl *.hps".
[[nodiscard]] std::string ExtensionPatterns(bool (*isSelected)(const FileType&));
