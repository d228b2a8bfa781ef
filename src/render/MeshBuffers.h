// The buffers of a mesh in graphics memory. VertexPacking.h packs their bytes, MeshDraw.h draws them.
#pragma once
#include <memory>
#include <vector>

#include "geometry/Mesh.h"

/// Uploads vertices and indices, after which the mesh is no longer dirty; without triangles there is nothing to upload.
/// When graphics memory is short, the mesh has no buffers and m_bBuffersFailed is set until a later build succeeds.
/// OpenGL errors from before are pending afterwards, too, except for those that no call can raise at will, such as
/// GL_OUT_OF_MEMORY. The context must be current.
void BuildBuffers(Mesh& mesh);

/// Deletes the buffers that exist; the context that they belong to must be current.
void ReleaseBuffers(Mesh& mesh);

/// Writes one line to the debugger output for each mesh whose build has failed since it was last reported. Call it
/// outside a frame: the sink belongs to the host, which may call the viewer.
/// @param meshes  the list of the scene, whose positions the lines name; it may change during the call
void ReportFailedBuffers(const std::vector<std::shared_ptr<Mesh>>& meshes);
