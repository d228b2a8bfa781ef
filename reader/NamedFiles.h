// The files that a mesh file names: materials, images, buffers.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Finds them beside the mesh file. Paths of other machines ("C:\\scans\\a.png", "/home/x/a.png") are found by their
/// last part. Only regular files are opened.
class NamedFiles {
public:
    /// @param mainFile  path of the mesh file, in bytes
    explicit NamedFiles(const std::string& mainFile);

    /// The path of a file that exists; empty when there is none.
    [[nodiscard]] std::string Find(const std::string& name) const;
    /// The whole file; empty when there is none or it cannot be read.
    [[nodiscard]] std::vector<std::uint8_t> Load(const std::string& name) const;

private:
    std::string m_sMainFile;
    std::string m_sFolder;  // with a slash at its end; empty for the current one
};
