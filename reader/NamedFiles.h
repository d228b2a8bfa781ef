// The files that a mesh file names: materials, images, buffers.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Finds them beside the mesh file. Paths of other machines ("C:\\scans\\a.png", "/home/x/a.png") are found by their
/// last part, and so are those that lead out of the folder of the mesh by "..". Symbolic links are followed: whoever
/// can put one into the folder chooses its target. A name that no file has is tried with its percent codes decoded
/// ("my%20mesh.bin"). Only regular files are opened.
class NamedFiles {
public:
    /// @param mainFile  path of the mesh file, in bytes
    explicit NamedFiles(const std::string& mainFile);

    /// The path of a file that exists; empty when there is none.
    [[nodiscard]] std::string Find(const std::string& name) const;
    /// The whole file; empty when there is none or it cannot be read.
    [[nodiscard]] std::vector<std::uint8_t> Load(const std::string& name) const;

private:
    /// @param path  as written or decoded, with slashes
    [[nodiscard]] std::string FindInFolder(const std::string& path) const;

    std::string m_sMainFile;
    std::string m_sFolder;  // with a slash at its end; empty for the current one
};
