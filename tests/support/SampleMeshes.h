// Mesh files of other programs, in a folder that not every machine has: shared/data/meshes beside or above the build.
#pragma once
#include <filesystem>
#include <string>

/// Path of the folder with a slash at its end; empty when there is none.
inline std::string SampleMeshFolder() {
    std::error_code error;
    std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (; !error && folder.has_relative_path(); folder = folder.parent_path()) {
        const std::filesystem::path meshes = folder / "shared/data/meshes";
        if (std::filesystem::is_directory(meshes, error)) return meshes.string() + "/";
        error.clear();
    }
    return {};
}
