// The normals of meshes that come as arrays.
#pragma once
#include "geometry/Vertex.h"

/// Sets each vertex normal to the mean of the unit normals of its faces, not renormalised: shorter than 1 where the
/// faces around a vertex differ in direction. Degenerate faces count as zero. (Mesh::ComputeVertexNormals() differs on
/// purpose.) Indices must be valid.
void ComputeMeanNormals(MeshBuffers& buffers);
