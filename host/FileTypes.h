// The file types that the host opens and writes: one table for the command line, the dialogs and the imports.
#pragma once
#include <string>
#include <string_view>

enum class FileKind {
    Scan,   ///< a measured grid: imported with skip value, confidence limit and colour
    Mesh,   ///< imported as it is
    Points  ///< free points, which are no object of the scene
};

/// Who reads the files of a type.
enum class ReadBy {
    Viewer,   ///< a method of the viewer, on its thread
    Host,     ///< the host, on any thread: it passes the grid to the entry of a parallel import, or the points
    Process,  ///< scenepane-read, a process for each file; the host passes the mesh to the viewer
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
    /// ply and stl files that the viewer does not read rightly are for the process, too; see FileLook.h.
    ReadBy readBy;
    /// Named in sentences that list types; the others are "and others".
    bool isListed = true;
};

inline constexpr FileType kFileTypes[] = {
    {"pcm", "PCM scans", FileKind::Scan, true, false, ReadBy::Host},
    {"pax", "PAX scans", FileKind::Scan, true, false, ReadBy::Viewer},
    {"xdt", "XDT scans", FileKind::Scan, true, false, ReadBy::Viewer},
    {"ply", "PLY meshes", FileKind::Mesh, true, true, ReadBy::Viewer},
    {"stl", "STL meshes", FileKind::Mesh, true, true, ReadBy::Viewer},
    {"hps", "HPS meshes", FileKind::Mesh, true, true, ReadBy::Viewer},
    {"ois", "OIS meshes", FileKind::Mesh, true, false, ReadBy::Viewer},
    {"msh", "MSH meshes", FileKind::Mesh, true, false, ReadBy::Viewer},
    {"obj", "OBJ meshes", FileKind::Mesh, true, false, ReadBy::Process},
    {"off", "OFF meshes", FileKind::Mesh, true, false, ReadBy::Process},
    {"gltf", "glTF scenes", FileKind::Mesh, true, false, ReadBy::Process},
    {"glb", "binary glTF scenes", FileKind::Mesh, true, false, ReadBy::Process},
    {"3mf", "3MF models", FileKind::Mesh, true, false, ReadBy::Process},
    {"dae", "Collada scenes", FileKind::Mesh, true, false, ReadBy::Process},
    {"3ds", "3DS scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ac", "AC3D scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ac3d", "AC3D scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"amf", "AMF scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ase", "ASE scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"b3d", "B3D scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"blend", "Blender scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"cob", "COB scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"dxf", "DXF scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"fbx", "FBX scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ifc", "IFC scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"iqm", "IQM scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"irrmesh", "Irrlicht scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"lwo", "LWO scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"lws", "LWS scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"lxo", "LXO scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"md2", "MD2 scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"md3", "MD3 scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ms3d", "MS3D scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ndo", "NDO scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"nff", "NFF scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"ogex", "OGEX scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"pmx", "PMX scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"q3o", "Q3O scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"q3s", "Q3S scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"sib", "SIB scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"smd", "SMD scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"x", "X scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"x3d", "X3D scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"xgl", "XGL scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"zae", "zipped Collada scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"zgl", "ZGL scenes", FileKind::Mesh, true, false, ReadBy::Process, false},
    {"xyz", "XYZ points", FileKind::Points, false, false, ReadBy::Host},
    {"xyzrgb", "XYZRGB points", FileKind::Points, false, false, ReadBy::Host},
    {"txt", "text files of points", FileKind::Points, false, false, ReadBy::Host},
    {"asc", "ASC points", FileKind::Points, false, false, ReadBy::Host},
    {"csv", "CSV points", FileKind::Points, false, false, ReadBy::Host},
    {"pcd", "PCD points", FileKind::Points, false, false, ReadBy::Host},
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

/// The extensions of a selection as part of a sentence: "ply, stl and hps", or "obj, off and others" where some are not
/// listed.
/// @param conjunction  before the last one: "and", "or"
[[nodiscard]] std::string ExtensionList(bool (*isSelected)(const FileType&), std::string_view conjunction);

/// The extensions of a selection as a file dialog expects them: "*.ply *.stl *.hps".
[[nodiscard]] std::string ExtensionPatterns(bool (*isSelected)(const FileType&));
