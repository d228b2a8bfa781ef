// The seam between a mesh and the code that draws it: geometry links no graphics library, so the drawing code installs
// its functions here. Installed by render/MeshDraw.h.
#pragma once
#include <cstdint>

class Mesh;

/// What a mesh asks of the drawing code. All three act on the rendering context that is current.
struct MeshGraphics {
    /// Mesh::Draw().
    void (*draw)(Mesh& mesh, std::int32_t mode, bool reduced);
    /// Mesh::ReleaseBuffers().
    void (*releaseBuffers)(Mesh& mesh);
    /// Deletes the texture object of that name, never 0.
    void (*deleteTexture)(std::uint32_t name);
};

/// Installs the drawing code for all meshes of the process; any thread, repeated calls are harmless. Without it a mesh
/// draws nothing, and it has no buffers or texture to release: only the drawing code makes them.
/// @param graphics  not copied, must outlive the last mesh; null removes the drawing code
/// @return what was installed before, or null
const MeshGraphics* InstallMeshGraphics(const MeshGraphics* graphics);
